/* The absolute difference of two small images, in C99. */
#include <stdio.h>

#include "lumcv.h"

int main(void) {
    const Lum8u before[2][4] = {{10, 20, 30, 40}, {50, 60, 70, 80}};
    const Lum8u after[2][4] = {{10, 25, 20, 40}, {50, 90, 70, 0}};
    Lum8u difference[2][4];
    const LumSize size = {4, 2};

    const LumStatus status = lumiAbsDiff_8u_C1R(before[0], 4, after[0], 4, difference[0], 4, size);
    if (status != lumStatusOk) {
        fprintf(stderr, "difference: status %d\n", (int)status);
        return 1;
    }
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) printf("%4d", difference[y][x]);
        printf("\n");
    }
    return 0;
}

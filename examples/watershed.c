/* Two touching discs parted by watersheds that grow from a seed in each. */
#include <string.h>

#include "check.h"

enum { width = 40, height = 16 };

/* How far a pixel is from the nearer of the two centres. */
static int distance(int x, int y) {
    const int left = (x - 13) * (x - 13) + 4 * (y - 8) * (y - 8);
    const int right = (x - 26) * (x - 26) + 4 * (y - 8) * (y - 8);
    return left < right ? left : right;
}

int main(void) {
    static Lum8u relief[height][width], markers[height][width];
    const LumSize size = {width, height};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            /* The rims of the discs, and the seam between them, are ridges. */
            const int d = distance(x, y);
            relief[y][x] = (Lum8u)(d < 100 ? d : d < 200 ? 200 - d : 0);
        }
    markers[8][13] = 1;
    markers[8][26] = 2;
    memset(markers[0], 3, width); /* the background, from the upper edge */

    Lum32s bytes = 0;
    CHECK(lumiSegmentWatershedGetBufferSize_8u_C1R(size, &bytes));
    Lum8u* buffer = memoryOf(bytes);
    CHECK(lumiSegmentWatershed_8u_C1IR(relief[0], width, markers[0], width, size, lumSpatialNormInf,
                                       lumSegmentQueue | lumSegmentBorder8, buffer));
    free(buffer);

    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) putchar(markers[y][x] <= 3 ? '0' + markers[y][x] : '|');
        putchar('\n');
    }
    return 0;
}

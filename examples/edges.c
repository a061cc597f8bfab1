/* The edges of a disc, drawn as text. */
#include "check.h"

enum { width = 40, height = 20 };

int main(void) {
    static Lum8u picture[height][width], edges[height][width];
    const LumSize size = {width, height};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const int dx = x - width / 2, dy = 2 * (y - height / 2);
            picture[y][x] = dx * dx + dy * dy < 15 * 15 ? 200 : 40;
        }

    const int sobel = 2;
    Lum32s bytes = 0;
    CHECK(lumiCannyBorderGetSize(size, sobel, lumMask3x3, lumType8u, &bytes));
    Lum8u* buffer = memoryOf(bytes);
    CHECK(lumiCannyBorder_8u_C1R(picture[0], width, edges[0], width, size, sobel, lumMask3x3,
                                 lumBorderReplicate, 0, 100.0F, 300.0F, lumNormL2, buffer));
    free(buffer);

    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) putchar(edges[y][x] != 0 ? '#' : '.');
        putchar('\n');
    }
    return 0;
}

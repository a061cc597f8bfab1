/* A Gaussian blur of a bright square at the edge of a region, with every kind of border. */
#include "check.h"

enum { width = 10, height = 8, margin = 2, step = width + 2 * margin };

/* One row of the blurred region. */
static void blur(const char* name, const Lum8u* region, LumBorderType border) {
    const LumSize size = {width, height};
    const Lum8u borderValue = 200;
    Lum8u blurred[height][width];
    Lum32s specBytes = 0, bufferBytes = 0;
    CHECK(lumiFilterGaussianGetBufferSize(size, 5, lumType8u, 1, &specBytes, &bufferBytes));
    LumFilterGaussianSpec* spec = memoryOf(specBytes);
    Lum8u* buffer = memoryOf(bufferBytes);
    CHECK(lumiFilterGaussianInit(size, 5, 1.0F, border, lumType8u, 1, spec, buffer));
    CHECK(
        lumiFilterGaussian_8u_C1R(region, step, blurred[0], width, size, border, &borderValue, spec, buffer));
    printf("%-10s", name);
    for (int x = 0; x < width; ++x) printf("%4d", blurred[0][x]);
    printf("\n");
    free(buffer);
    free(spec);
}

int main(void) {
    /* The region lies inside a larger picture, whose pixels around it are 50. */
    Lum8u picture[height + 2 * margin][step];
    for (int y = 0; y < height + 2 * margin; ++y)
        for (int x = 0; x < step; ++x) {
            const int isInside = x >= margin && x < margin + width && y >= margin && y < margin + height;
            picture[y][x] = !isInside ? 50 : x < margin + 4 && y < margin + 4 ? 255 : 0;
        }
    const Lum8u* region = &picture[margin][margin];

    blur("replicate", region, lumBorderReplicate);
    blur("mirror", region, lumBorderMirror);
    blur("constant", region, lumBorderConstant);
    blur("in memory", region, lumBorderInMemory);
    /* The rows above exist in memory; the other sides are mirrored. */
    blur("top only", region, lumBorderMirror | lumBorderInMemoryTop);
    return 0;
}

/* A picture blurred, how far the two differ, and the deviation around each pixel: sizes, specs and buffers in C99.
 *
 *     local_contrast IN.pgm BLURRED.pgm DEVIATION.pgm
 */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "lumcv.h"
#include "lumcv_status.h"

/* The statuses below 0 are errors; a host without more to do gives up with their sentence. */
static void check(LumStatus status, const char* call) {
    if (status >= 0) return;
    fprintf(stderr, "%s: %s: %s\n", call, lumStatusName(status), lumStatusSentence(status));
    exit(1);
}
#define CHECK(call) check(call, #call)

static void* allocate(size_t bytes) {
    void* block = malloc(bytes);
    if (block == NULL) {
        fprintf(stderr, "no memory for %zu bytes\n", bytes);
        exit(1);
    }
    return block;
}

static Lum8u* readPgm(const char* name, LumSize* size) {
    FILE* file = fopen(name, "rb");
    int width = 0, height = 0, most = 0;
    if (file == NULL || fscanf(file, "P5 %5d %5d %5d", &width, &height, &most) != 3 || width < 1 ||
        height < 1 || most != 255 || fgetc(file) == EOF) {
        fprintf(stderr, "%s: not a binary PGM of 8 bits\n", name);
        exit(1);
    }
    size->width = width;
    size->height = height;
    Lum8u* pixels = allocate((size_t)width * (size_t)height);
    if (fread(pixels, (size_t)width, (size_t)height, file) != (size_t)height) {
        fprintf(stderr, "%s: cut short\n", name);
        exit(1);
    }
    fclose(file);
    return pixels;
}

static void writePgm(const char* name, const Lum8u* pixels, LumSize size) {
    FILE* file = fopen(name, "wb");
    if (file == NULL || fprintf(file, "P5\n%d %d\n255\n", (int)size.width, (int)size.height) < 0 ||
        fwrite(pixels, (size_t)size.width, (size_t)size.height, file) != (size_t)size.height ||
        fclose(file) != 0) {
        fprintf(stderr, "%s: cannot be written\n", name);
        exit(1);
    }
}

int main(int argc, char** argv) {
    if (argc != 4) {
        fprintf(stderr, "usage: local_contrast IN.pgm BLURRED.pgm DEVIATION.pgm\n");
        return 2;
    }
    LumSize size;
    Lum8u* picture = readPgm(argv[1], &size);
    const size_t pixels = (size_t)size.width * (size_t)size.height;
    Lum8u* blurred = allocate(pixels);
    const int step = size.width; /* rows lie one after the other */

    /* 1. Sizes. The spec of this form of the Gaussian has the size that GetBufferSize reports, not GetSpecSize. */
    const Lum32f sigma = 1.5F;
    const int taps = 9; /* 2 * ceil(2.5 * sigma) + 1 */
    Lum32s specBytes, bufferBytes;
    CHECK(lumiFilterGaussianGetBufferSize(size, taps, lumType8u, 1, &specBytes, &bufferBytes));

    /* 2. The object, built once. */
    LumFilterGaussianSpec* spec = allocate((size_t)specBytes);
    Lum8u* buffer = allocate((size_t)bufferBytes);
    CHECK(lumiFilterGaussianInit(size, taps, sigma, lumBorderReplicate, lumType8u, 1, spec, buffer));

    /* 3. Runs, as many as there are pictures of this size. */
    CHECK(lumiFilterGaussianBorder_8u_C1R(picture, step, blurred, step, size, 0, spec, buffer));
    writePgm(argv[2], blurred, size);
    free(buffer);
    free(spec);

    /* What the blur has taken away. This norm has a form with a mask only; this mask selects every pixel. */
    Lum8u* everywhere = allocate(pixels);
    memset(everywhere, 255, pixels);
    Lum64f distance;
    CHECK(lumiNormDiff_L2_8u_C1MR(picture, step, blurred, step, everywhere, step, size, &distance));
    free(everywhere);
    printf("L2 distance of the blurred picture: %.3f\n", distance);

    /* The deviation in 7 x 7 pixels around each, from sums of pixels and of squares: exact in integers and in double
     * precision. Integral images have a row and a column more than the picture; the result has no border. */
    const LumRect window = {0, 0, 7, 7};
    if (size.width < window.width || size.height < window.height) {
        fprintf(stderr, "%s: smaller than the window\n", argv[1]);
        return 1;
    }
    const size_t columns = (size_t)size.width + 1;
    const size_t cells = columns * ((size_t)size.height + 1);
    Lum32s* sums = allocate(cells * sizeof(*sums));
    Lum64f* squares = allocate(cells * sizeof(*squares));
    const int sumStep = (int)(columns * sizeof(*sums));
    const int squareStep = (int)(columns * sizeof(*squares));
    CHECK(lumiSqrIntegral_8u32s64f_C1R(picture, step, sums, sumStep, squares, squareStep, size, 0, 0));

    const LumSize inner = {size.width - window.width + 1, size.height - window.height + 1};
    Lum32f* deviations = allocate((size_t)inner.width * (size_t)inner.height * sizeof(*deviations));
    const int deviationStep = inner.width * (int)sizeof(*deviations);
    CHECK(lumiRectStdDev_32s32f_C1R(sums, sumStep, squares, squareStep, deviations, deviationStep, inner,
                                    window));

    Lum32f least, largest;
    LumPoint leastPlace, place;
    CHECK(lumiMinMaxIndx_32f_C1R(deviations, deviationStep, inner, &least, &largest, &leastPlace, &place));
    printf("largest deviation: %.3f around (%d, %d)\n", largest, (int)place.x + window.width / 2,
           (int)place.y + window.height / 2);

    /* No deviation of 8-bit pixels is above 127.5. */
    Lum8u* shown = allocate((size_t)inner.width * (size_t)inner.height);
    for (size_t i = 0; i < (size_t)inner.width * (size_t)inner.height; ++i)
        shown[i] = (Lum8u)(2 * deviations[i]);
    writePgm(argv[3], shown, inner);
    free(shown);
    free(deviations);
    free(squares);
    free(sums);
    free(blurred);
    free(picture);
    return 0;
}

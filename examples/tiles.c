/* A picture that is larger than the memory for it, blurred strip by strip: to the last bit the blur of the whole. */
#include <string.h>

#include "check.h"

enum { width = 1200, height = 900, kernelSize = 9, reach = kernelSize / 2 };

/* Row y of the picture, as a file or a camera would give it. */
static void readRow(int y, Lum8u* row) {
    unsigned noise = (unsigned)y * 2654435761U;
    for (int x = 0; x < width; ++x) {
        noise = noise * 1664525U + 1013904223U;
        row[x] = (Lum8u)((x * y / 700 + (noise >> 27)) & 255);
    }
}

/* Blurs the picture in strips of stripRows rows, and returns a checksum of the result. */
static unsigned blurInStrips(int stripRows, size_t* memory) {
    const LumSize strip = {width, stripRows};
    const LumBorderType border = lumBorderMirror;
    Lum32s specBytes = 0, bufferBytes = 0;
    CHECK(lumiFilterGaussianGetBufferSize(strip, kernelSize, lumType8u, 1, &specBytes, &bufferBytes));
    LumFilterGaussianSpec* spec = memoryOf(specBytes);
    Lum8u* buffer = memoryOf(bufferBytes);
    CHECK(lumiFilterGaussianInit(strip, kernelSize, 2.0F, border, lumType8u, 1, spec, buffer));

    /* The strip with the rows that the filter reads above and below it, and its result. */
    Lum8u* rows = memoryOf((stripRows + 2 * reach) * width);
    Lum8u* result = memoryOf(stripRows * width);
    *memory = (size_t)specBytes + bufferBytes + (size_t)(2 * stripRows + 2 * reach) * width;

    unsigned checksum = 0;
    int nextRow = 0; /* the first row that has not been read */
    for (int y = 0; y < height; y += stripRows) {
        const int count = height - y < stripRows ? height - y : stripRows;
        /* What the last strip has read and this one needs again: the rows around their seam. */
        if (y > 0) memmove(rows, rows + stripRows * width, 2 * reach * width);
        for (; nextRow < y + count + reach && nextRow < height; ++nextRow)
            readRow(nextRow, rows + (nextRow - y + reach) * width);
        /* A side on which another strip lies is in memory; the others have the border. */
        LumBorderType sides = border;
        if (y > 0) sides |= lumBorderInMemoryTop;
        if (y + count < height) sides |= lumBorderInMemoryBottom;
        const LumSize size = {width, count};
        CHECK(lumiFilterGaussian_8u_C1R(rows + reach * width, width, result, width, size, sides, NULL, spec,
                                        buffer));
        for (int i = 0; i < count * width; ++i) checksum = checksum * 16777619U ^ result[i];
    }
    free(result);
    free(rows);
    free(buffer);
    free(spec);
    return checksum;
}

int main(void) {
    size_t stripMemory = 0, wholeMemory = 0;
    const unsigned strips = blurInStrips(20, &stripMemory);
    const unsigned whole = blurInStrips(height, &wholeMemory);
    printf("strips %s the whole; memory below %s\n", strips == whole ? "equal" : "differ from",
           stripMemory < 150000 && wholeMemory > 2000000 ? "150 kB instead of 2 MB" : "no limit");
    return strips == whole ? 0 : 1;
}

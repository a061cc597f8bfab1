/* A square that moves over a noisy background: what the model of the background takes for foreground. */
#include "check.h"

enum { width = 32, height = 12, frames = 40, side = 5 };

int main(void) {
    static Lum8u frame[height][width][3], foreground[height][width];
    const LumSize size = {width, height};
    LumFGMMParams params = {0};
    params.history = 100;
    params.mixtures = 4;
    params.varInit = 15;
    params.varMin = 4;
    params.varMax = 75;
    params.matchBackground = 16;
    params.backgroundRatio = 0.9F;
    params.matchGenerate = 9;
    params.complexityPrior = 0.05F;
    params.shadowValue = 127;
    params.shadowRatio = 0.5F;

    Lum32s bytes = 0;
    CHECK(lumiFGMMGetBufferSize_8u_C3R(size, params.mixtures, &bytes));
    LumFGMMState* state = memoryOf(bytes);
    CHECK(lumiFGMMInit_8u_C3R(size, params.mixtures, &params, state));

    unsigned noise = 1;
    for (int t = 0; t < frames; ++t) {
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                const int left = t - (frames - width / 2),
                          isSquare = x >= left && x < left + side && y >= 3 && y < 3 + side;
                noise = noise * 1664525U + 1013904223U;
                for (int c = 0; c < 3; ++c)
                    frame[y][x][c] =
                        (Lum8u)((isSquare && left >= 0 ? 220 : 60 + 40 * c) + (int)(noise >> 30));
            }
        CHECK(
            lumiFGMMForeground_8u_C3R(frame[0][0], 3 * width, foreground[0], width, size, state, NULL, -1.0));
    }
    free(state);

    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) putchar(foreground[y][x] == 255 ? '#' : '.');
        putchar('\n');
    }
    return 0;
}

// The corners of two rectangles: the smaller eigenvalue of the gradients around each pixel, and its peaks.
#include <cstdio>
#include <vector>

#include "check.h"

int main() {
    constexpr LumSize size = {64, 48};
    std::vector<Lum8u> picture(size.width * size.height, 30);
    const auto fill = [&](LumRect place, Lum8u value) {
        for (int y = place.y; y < place.y + place.height; ++y)
            for (int x = place.x; x < place.x + place.width; ++x) picture[y * size.width + x] = value;
    };
    fill({10, 8, 20, 15}, 220);
    fill({40, 25, 14, 16}, 120);

    Lum32s bytes = 0;
    CHECK(lumiMinEigenValGetBufferSize_8u32f_C1R(size, 3, 3, &bytes));
    std::vector<Lum8u> eigenBuffer(bytes);
    std::vector<Lum32f> response(size.width * size.height);
    const int responseStep = size.width * static_cast<int>(sizeof(Lum32f));
    CHECK(lumiMinEigenVal_8u32f_C1R(picture.data(), size.width, response.data(), responseStep, size, 0, 3, 3,
                                    eigenBuffer.data()));

    CHECK(lumiFindPeaks3x3GetBufferSize_32f_C1R(size.width, &bytes));
    std::vector<Lum8u> peakBuffer(bytes);
    std::vector<LumPoint> corners(100);
    int count = 0;
    CHECK(lumiFindPeaks3x3_32f_C1R(response.data(), responseStep, size, 1e-3F, corners.data(),
                                   static_cast<int>(corners.size()), &count, lumSpatialNormInf, 2,
                                   peakBuffer.data()));
    std::printf("%d corners\n", count);
    for (int i = 0; i < count; ++i)
        std::printf("%3d %3d\n", static_cast<int>(corners[i].x), static_cast<int>(corners[i].y));
    return 0;
}

// A scratch across a slope of grey, repaired from its surroundings.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "check.h"

int main() {
    constexpr LumSize size = {48, 32};
    constexpr float radius = 4;
    std::vector<Lum8u> original(size.width * size.height), mask(original.size(), 0);
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) {
            original[y * size.width + x] = static_cast<Lum8u>(20 + 3 * x + 2 * y);
            if (std::abs(x - y - 8) <= 1) mask[y * size.width + x] = 1;
        }
    std::vector<Lum8u> picture = original;
    for (std::size_t i = 0; i < picture.size(); ++i)
        if (mask[i] != 0) picture[i] = 255;

    // Distances from the rim of the scratch order the repair.
    Lum32s bytes = 0;
    CHECK(lumiFastMarchingGetBufferSize_8u32f_C1R(size, &bytes));
    std::vector<Lum8u> marchBuffer(bytes);
    std::vector<Lum32f> distances(original.size());
    const int distancesStep = size.width * static_cast<int>(sizeof(Lum32f));
    CHECK(lumiFastMarching_8u32f_C1R(mask.data(), size.width, distances.data(), distancesStep, size, 0,
                                     marchBuffer.data()));

    Lum32s bufferBytes = 0;
    CHECK(
        lumiInpaintGetSize(mask.data(), size.width, size, radius, lumInpaintFront, 1, &bytes, &bufferBytes));
    std::vector<Lum8u> block(bytes), buffer(bufferBytes);
    LumInpaintState* state = nullptr;
    CHECK(lumiInpaintInit_8u_C1R(&state, distances.data(), distancesStep, mask.data(), size.width, size,
                                 radius, lumInpaintFront, block.data(), buffer.data()));
    std::vector<Lum8u> repaired(original.size());
    CHECK(lumiInpaint_8u_C1R(picture.data(), size.width, repaired.data(), size.width, size, state,
                             buffer.data()));

    int worstBefore = 0, worstAfter = 0;
    for (std::size_t i = 0; i < original.size(); ++i) {
        worstBefore = std::max(worstBefore, std::abs(picture[i] - original[i]));
        worstAfter = std::max(worstAfter, std::abs(repaired[i] - original[i]));
    }
    std::printf("largest error %d before, %d after\n", worstBefore, worstAfter);
    return 0;
}

#include "kernels/feature/set_pixels.h"

#include "support/guarded_image.h"

using namespace support;
using namespace lum::kernels;

TEST(SetPixels, NextIsTheFirstOneFromAPlaceOn) {
    std::mt19937 engine(4);
    for (int count = 1; count <= 140; ++count)
        for (unsigned share : {1U, 7U, 90U}) {
            GuardedImage<Lum8u> row(count, 1, {.offset = static_cast<int>(engine() % 33)});
            row.fill([&](int, int, int) { return engine() % share == 0 ? 1 + engine() % 255 : 0; });
            for (int x = 0; x <= count; ++x)
                ASSERT_EQ(nextSetPixelScalar(row.data(), x, count), nextSetPixel(row.data(), x, count));
        }
}

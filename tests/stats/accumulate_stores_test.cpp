// Which stores a masked product or weighted sum chooses. The stores themselves leave the same pixels; but the first
// four pixels of a row, when they are stored ahead of the others, have changed what a mask over the accumulator's own
// bytes tells of the pixels after them.
#include <vector>

#include "stats/accumulate_members.h"
#include "support/cache_report.h"
#include "support/member_test.h"
#include "support/status_checks.h"

using namespace support;
using namespace accumulators;

namespace {

constexpr int width = 20;

/// The bytes a pixel that the choice counts.
template <class Family, class T> constexpr int bytesOfPixel = 0;
template <> constexpr int bytesOfPixel<Products, Lum8u> = 7;
template <> constexpr int bytesOfPixel<Products, Lum16u> = 9;
template <> constexpr int bytesOfPixel<Products, Lum32f> = 13;
template <> constexpr int bytesOfPixel<Weighted, Lum8u> = 5;
template <> constexpr int bytesOfPixel<Weighted, Lum16u> = 7;
template <> constexpr int bytesOfPixel<Weighted, Lum32f> = 9;

template <class Family, class T> std::vector<float> sumsUnderThemselves(int height) {
    GuardedImage<T> src(width, height);
    src.fill([](int x, int, int) { return 1 + x % 5; });
    alignas(16) float sums[3 * width] = {};
    // No byte of this single is 0, so the first four pixels are selected; then come bytes of 0.
    for (int y = 0; y < height; ++y) sums[y * width] = 1.1111111F;
    const int step = 4 * width;
    EXPECT_STATUS(lumStatusOk, Family::masked(Arguments<T>{src.data(), src.step(), src.data(), src.step(),
                                                           reinterpret_cast<const Lum8u*>(sums), step, sums,
                                                           step, LumSize{width, height}, 0.5F}));
    return {sums, sums + height * width};
}

MEMBER_TEST_SUITE(AccumulatorStores, AskingMembers);

} // namespace

MEMBER_TEST(AccumulatorStores, StreamFromTheThresholdOn) {
    using Family = typename TypeParam::Family;
    using T = typename TypeParam::Source;
    for (int height : {1, 2, 3}) {
        const auto sums = [&](int cacheBytes, LumStatus status = lumStatusOk) {
            CacheReport report(cacheBytes, status);
            return sumsUnderThemselves<Family, T>(height);
        };
        const std::vector<float> ordinary = sums(hugeCache);
        const std::vector<float> streaming = sums(tinyCache);
        ASSERT_FALSE(sameBits(ordinary, streaming));
        const int bytes = bytesOfPixel<Family, T> * width * height;
        EXPECT_TRUE(sameBits(ordinary, sums(bytes + 1)));
        EXPECT_TRUE(sameBits(streaming, sums(bytes)));
        EXPECT_TRUE(sameBits(streaming, sums(hugeCache, lumStatusOutOfRange))) << "no cache is known";
    }
}

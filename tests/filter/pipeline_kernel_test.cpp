#include "filter/pipeline_kernel.h"

#include <vector>

using namespace lum;

namespace {

template <class K> std::int64_t magnitudesOf(const std::vector<K>& kernel) {
    return sumOfMagnitudes(kernel.data(), static_cast<int>(kernel.size()));
}

template <class S> bool exact(const std::vector<S>& kernel, int divisor) {
    return sumsAreExact(kernel.data(), static_cast<int>(kernel.size()), divisor);
}

} // namespace

TEST(PipelineKernel, MagnitudesOfLongKernelsAddUpBeyondThirtyTwoBits) {
    std::vector<Lum16s> kernel(70001, 32767);
    for (std::size_t k = 0; k < kernel.size(); k += 2) kernel[k] = -32767;
    EXPECT_EQ(70001LL * 32767, magnitudesOf(kernel));
    EXPECT_EQ(131073LL * 32768, magnitudesOf(std::vector<Lum16s>(131073, -32768)));
    EXPECT_EQ(70001LL * 65535, magnitudesOf(std::vector<Lum16u>(70001, 65535)));
}

TEST(PipelineKernel, SumsAreExactUpToTwoToTheTwentyFourOverAPowerOfTwo) {
    // 32768 x 512 and 65535 x 256 are the largest products of a whole sum.
    EXPECT_TRUE(exact<Lum16s>({500, -12}, 1));
    EXPECT_FALSE(exact<Lum16s>({500, -13}, 1));
    EXPECT_TRUE(exact<Lum16u>({250, 6}, 1));
    EXPECT_FALSE(exact<Lum16u>({250, 7}, 1));
    for (int divisor : {2, 0x40000000, -1, -4, static_cast<int>(0x80000000U)})
        EXPECT_TRUE(exact<Lum16s>({500, -12}, divisor)) << divisor;
    for (int divisor : {3, 0x7FFFFFFF, -6}) EXPECT_FALSE(exact<Lum16s>({500, -12}, divisor)) << divisor;
    // A sum that is small only when it wraps: 2^17 x 32768 is 2^32.
    EXPECT_FALSE(exact(std::vector<Lum16s>(1 << 17, -32768), 1));
}

#include <climits>
#include <cmath>
#include <cstdint>
#include <vector>

#include "support/guarded_image.h"
#include "support/member_test.h"
#include "support/status_checks.h"

using namespace support;

namespace {

LumStatus generate(Lum16s* kernel, int size, int order, int sign) {
    return lumiGenSobelKernel_16s(kernel, size, order, sign);
}
LumStatus generate(Lum32f* kernel, int size, int order, int sign) {
    return lumiGenSobelKernel_32f(kernel, size, order, sign);
}

/// The kernel in a block that ends at an unreadable page.
template <class T> std::vector<T> kernel(int size, int order, int sign = 1) {
    GuardedImage<T> block(size, 1);
    EXPECT_STATUS(lumStatusOk, generate(block.data(), size, order, sign));
    EXPECT_TRUE(block.outsideUntouched());
    return block.pixels();
}

/// (1 + z)^(size - order - 1) times (z - 1)^order, by multiplying polynomials; coefficients modulo 2^64.
std::vector<std::int64_t> polynomial(int size, int order) {
    std::vector<std::int64_t> all{1};
    for (int factor = 0; factor < size - 1; ++factor) {
        const int constant = factor < size - order - 1 ? 1 : -1;
        std::vector<std::int64_t> next(all.size() + 1, 0);
        for (std::size_t i = 0; i < all.size(); ++i) {
            next[i + 1] += all[i];
            next[i] += constant * all[i];
        }
        all = next;
    }
    return all;
}

using Elements = testing::Types<Lum16s, Lum32f>;
MEMBER_TEST_SUITE(SobelKernelTypes, Elements);

} // namespace

MEMBER_TEST(SobelKernelTypes, KnownKernels) {
    using Row = std::vector<TypeParam>;
    EXPECT_EQ(Row({1}), kernel<TypeParam>(1, 0));
    EXPECT_EQ(Row({1, 2, 1}), kernel<TypeParam>(3, 0));
    EXPECT_EQ(Row({-1, 0, 1}), kernel<TypeParam>(3, 1));
    EXPECT_EQ(Row({1, -2, 1}), kernel<TypeParam>(3, 2));
    EXPECT_EQ(Row({1, 4, 6, 4, 1}), kernel<TypeParam>(5, 0));
    EXPECT_EQ(Row({-1, -2, 0, 2, 1}), kernel<TypeParam>(5, 1));
    EXPECT_EQ(Row({1, 0, -2, 0, 1}), kernel<TypeParam>(5, 2));
    EXPECT_EQ(Row({1, -4, 6, -4, 1}), kernel<TypeParam>(5, 4));
}

MEMBER_TEST(SobelKernelTypes, ProductsOfSmoothingsAndDifferences) {
    // 13 taps stay within 16 bits
    for (int size = 1; size <= 13; size += 2)
        for (int order = 0; order < size; ++order) {
            const auto expected = polynomial(size, order);
            const auto actual = kernel<TypeParam>(size, order);
            for (int i = 0; i < size; ++i)
                ASSERT_EQ(static_cast<TypeParam>(expected[i]), actual[i]) << size << " " << order << " " << i;
        }
}

MEMBER_TEST(SobelKernelTypes, NegativeSignNegatesAllElements) {
    for (int sign : {-1, INT_MIN}) {
        const auto negated = kernel<TypeParam>(7, 3, sign);
        const auto plain = kernel<TypeParam>(7, 3, 0);
        for (int i = 0; i < 7; ++i) EXPECT_EQ(plain[i], static_cast<TypeParam>(-negated[i]));
    }
    EXPECT_EQ(kernel<TypeParam>(7, 3, 0), kernel<TypeParam>(7, 3, INT_MAX));
}

MEMBER_TEST(SobelKernelTypes, OrderOfTheKernelSizeIsSizeError) {
    GuardedImage<TypeParam> block(5, 1);
    EXPECT_REFUSED(lumStatusSizeError, block, generate(block.data(), 5, 5, 1));
    EXPECT_REFUSED(lumStatusSizeError, block, generate(block.data(), 5, INT_MAX, 1));
    EXPECT_REFUSED(lumStatusSizeError, block, generate(block.data(), 5, -1, 1));
}

MEMBER_TEST(SobelKernelTypes, EvenSizesAndSizesBelowOneAreSizeErrors) {
    GuardedImage<TypeParam> block(5, 1);
    for (int size : {0, 2, 4, -1, -3, INT_MIN})
        EXPECT_REFUSED(lumStatusSizeError, block, generate(block.data(), size, 0, 1));
    EXPECT_STATUS(lumStatusNullPointer, generate(static_cast<TypeParam*>(nullptr), 0, -1, 1));
}

TEST(SobelKernel, Words16sWrapBeyond16Bits) {
    for (int size : {19, 33, 65})
        for (int order : {0, 1, 7}) {
            const auto expected = polynomial(size, order);
            const auto actual = kernel<Lum16s>(size, order);
            for (int i = 0; i < size; ++i)
                ASSERT_EQ(static_cast<Lum16s>(expected[i]), actual[i]) << size << " " << i;
        }
    // the middle of 19 taps is 48620
    EXPECT_EQ(48620 - 65536, kernel<Lum16s>(19, 0)[9]);
}

TEST(SobelKernel, NegatedZeroOfFloatsKeepsItsSign) {
    const auto negated = kernel<Lum32f>(3, 1, -1);
    EXPECT_EQ((std::vector<Lum32f>{1, 0, -1}), negated);
    EXPECT_TRUE(std::signbit(negated[1]));
}

TEST(SobelKernel, FloatsHoldLargeKernels) {
    const auto row = kernel<Lum32f>(101, 0);
    EXPECT_NEAR(std::log2(row[50]), 100 - std::log2(std::sqrt(50 * 3.14159265358979)), 0.01);
    EXPECT_EQ(100.0F, row[1]);
}

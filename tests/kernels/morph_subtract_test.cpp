#include <cmath>
#include <limits>

#include "kernels/morph/bit_subtract.h"
#include "kernels/morph/subtract.h"
#include "support/guarded_image.h"
#include "support/member_test.h"

using namespace support;
using lum::kernels::Negatives;
using lum::kernels::OtherOperand;
using lum::kernels::Subtraction;

namespace {

enum class Target { minuend, subtrahend, apart };

template <class T> void fillWithExtremes(GuardedImage<T>& image, unsigned seed) {
    std::mt19937 engine(seed);
    image.fill([&](int, int, int) -> T {
        switch (engine() % 8) {
        case 0:
            return std::numeric_limits<T>::max();
        case 1:
            return std::numeric_limits<T>::lowest();
        case 2:
            return 0;
        default:
            return static_cast<T>(static_cast<int>(engine() % 512) - 256);
        }
    });
}

template <class T> void expectSameForms(int width, Target target, Negatives negatives, Placement placement) {
    std::vector<T> results[2];
    for (bool scalar : {true, false}) {
        GuardedImage<T> minuend(width, 3, placement), subtrahend(width, 3, placement),
            apart(width, 3, placement);
        fillWithExtremes(minuend, 1U + width);
        fillWithExtremes(subtrahend, 2U + width);
        apart.fill([](int, int, int) { return 55; });
        auto& dst = target == Target::minuend ? minuend : target == Target::subtrahend ? subtrahend : apart;
        const auto subtract = scalar ? Subtraction<T>::scalar : Subtraction<T>::vectors;
        subtract({minuend.data(), minuend.step()}, {subtrahend.data(), subtrahend.step()},
                 {dst.data(), dst.step()}, width, 3, negatives);
        ASSERT_TRUE(dst.outsideUntouched());
        results[scalar] = dst.pixels();
    }
    ASSERT_TRUE(sameBits(results[0], results[1])) << width;
}

using Elements = testing::Types<Lum8u, Lum16u, Lum16s, Lum32f>;
MEMBER_TEST_SUITE(MorphSubtract, Elements);

/// Rows of bits in whole bytes at a guard, from any bit.
struct Bits {
    GuardedImage<Lum8u> bytes;
    int bit;

    Bits(int width, int bitOffset, unsigned seed, Guard guard)
        : bytes((bitOffset + width + 7) / 8, 3, {.guard = guard}), bit(bitOffset) {
        bytes.fillRandom(seed);
    }
    bool at(int x, int y) const { return bytes.at((x + bit) / 8, y) >> ((x + bit) % 8) & 1; }
};

void expectBits(int width, int otherBit, int dstBit, OtherOperand role, Guard guard, bool scalar) {
    const Bits other(width, otherBit, 3U + width, guard), before(width, dstBit, 4U + width, guard);
    Bits dst(width, dstBit, 4U + width, guard);
    const auto subtract = scalar ? lum::kernels::subtractBitsScalar : lum::kernels::subtractBits;
    subtract({{other.bytes.data(), other.bytes.step()}, otherBit}, role,
             {{dst.bytes.data(), dst.bytes.step()}, dstBit}, width, 3);
    for (int y = 0; y < 3; ++y)
        for (int x = -dstBit; x < 8 * dst.bytes.elements() - dstBit; ++x) {
            const bool own = before.at(x, y);
            bool expected = own;
            if (x >= 0 && x < width)
                expected = role == OtherOperand::minuend ? other.at(x, y) && !own : own && !other.at(x, y);
            ASSERT_EQ(expected, dst.at(x, y))
                << x << " of " << width << ", bits " << otherBit << " and " << dstBit;
        }
}

} // namespace

MEMBER_TEST(MorphSubtract, FormsAgreeOnEveryWidthAndTarget) {
    for (int width = 1; width <= 150; ++width)
        for (Target target : {Target::minuend, Target::subtrahend, Target::apart})
            for (Negatives negatives : {Negatives::keep, Negatives::clear})
                for (Guard guard : {Guard::after, Guard::before})
                    expectSameForms<TypeParam>(width, target, negatives,
                                               {.padding = width % 3, .offset = width % 17, .guard = guard});
}

TEST(MorphSubtractValues, IntegersSaturate) {
    const Lum8u a8[] = {5, 9, 255}, b8[] = {9, 5, 0};
    Lum8u d8[3];
    Subtraction<Lum8u>::vectors({a8, 3}, {b8, 3}, {d8, 3}, 3, 1, Negatives::keep);
    EXPECT_EQ((std::vector<Lum8u>{0, 4, 255}), (std::vector<Lum8u>{d8, d8 + 3}));
    const Lum16s a16[] = {-30000, 30000, -5}, b16[] = {30000, -30000, 7};
    Lum16s d16[3];
    Subtraction<Lum16s>::vectors({a16, 6}, {b16, 6}, {d16, 6}, 3, 1, Negatives::keep);
    EXPECT_EQ((std::vector<Lum16s>{-32768, 32767, -12}), (std::vector<Lum16s>{d16, d16 + 3}));
    Subtraction<Lum16s>::vectors({a16, 6}, {b16, 6}, {d16, 6}, 3, 1, Negatives::clear);
    EXPECT_EQ((std::vector<Lum16s>{0, 32767, 0}), (std::vector<Lum16s>{d16, d16 + 3}));
}

TEST(MorphSubtractValues, OnlyFloatsBelowZeroBecomeZero) {
    constexpr float nan = std::numeric_limits<float>::quiet_NaN(),
                    inf = std::numeric_limits<float>::infinity();
    std::vector<float> a, b;
    for (int i = 0; i < 5; ++i)
        for (float value : {1.5F, -0.0F, nan, -inf, 7.0F, 0.0F}) a.push_back(value);
    for (int i = 0; i < 5; ++i)
        for (float value : {2.0F, 0.0F, 1.0F, 1.0F, 7.0F, 1e-40F}) b.push_back(value);
    for (auto subtract : {Subtraction<Lum32f>::vectors, Subtraction<Lum32f>::scalar}) {
        std::vector<float> d(a.size());
        subtract({a.data(), 0}, {b.data(), 0}, {d.data(), 0}, static_cast<std::ptrdiff_t>(a.size()), 1,
                 Negatives::clear);
        for (std::size_t i = 0; i < d.size(); i += 6) {
            EXPECT_TRUE(d[i] == 0 && !std::signbit(d[i]));
            EXPECT_TRUE(d[i + 1] == 0 && std::signbit(d[i + 1]));
            EXPECT_TRUE(std::isnan(d[i + 2]));
            EXPECT_EQ(0, d[i + 3]);
            EXPECT_TRUE(d[i + 4] == 0 && !std::signbit(d[i + 4]));
            EXPECT_EQ(0, d[i + 5]);
        }
        subtract({a.data(), 0}, {b.data(), 0}, {d.data(), 0}, static_cast<std::ptrdiff_t>(a.size()), 1,
                 Negatives::keep);
        EXPECT_EQ(-0.5F, d[0]);
        EXPECT_EQ(-inf, d[3]);
    }
}

TEST(MorphSubtractBits, EveryWidthAndOffset) {
    for (int width = 1; width <= 40; ++width)
        for (int otherBit = 0; otherBit < 8; ++otherBit)
            for (int dstBit = 0; dstBit < 8; ++dstBit)
                for (OtherOperand role : {OtherOperand::minuend, OtherOperand::subtrahend})
                    for (bool scalar : {true, false})
                        expectBits(width, otherBit, dstBit, role, width % 2 ? Guard::after : Guard::before,
                                   scalar);
}

TEST(MorphSubtractBits, LongRowsInBlocks) {
    for (int width : {127, 128, 129, 130, 511, 512, 520, 700, 1025})
        for (int otherBit : {0, 1, 7})
            for (int dstBit : {0, 3, 7})
                for (Guard guard : {Guard::after, Guard::before})
                    for (OtherOperand role : {OtherOperand::minuend, OtherOperand::subtrahend})
                        for (bool scalar : {true, false})
                            expectBits(width, otherBit, dstBit, role, guard, scalar);
}

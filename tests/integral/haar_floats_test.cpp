#include <algorithm>
#include <cmath>
#include <limits>

#include "support/haar_stages.h"

using namespace support;

namespace {

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr LumSize window{7, 6};

/// Rows that end in pixels one at a time, in four, eight and sixteen at a time, and in all of them.
constexpr int widths[] = {1, 4, 8, 16, 33};

/// Counts on entry for regions of a number of pixels: most set, some, few.
std::vector<Lum32s> densities(int pixels) { return {pixels, std::max(1, pixels / 5), 1}; }

enum class Member { plain, mixed };

/// Pixels that stay of a mask of ones.
template <class Src>
Lum32s staying(Member member, const GuardedImage<Src>& src, const GuardedImage<Lum32f>& norm, Lum32s onEntry,
               Lum32f threshold, LumHaarClassifier* spec) {
    GuardedImage<Lum8u> mask(norm.size().width, norm.size().height);
    mask.fill([](int, int, int) { return 1; });
    Lum32s positive = onEntry;
    const HaarCall<HaarMember<Src, Lum32f>> call{.src = src.data(),
                                                 .srcStep = src.step(),
                                                 .tilt = src.data(),
                                                 .tiltStep = src.step(),
                                                 .norm = norm.data(),
                                                 .normStep = norm.step(),
                                                 .mask = mask.data(),
                                                 .maskStep = mask.step(),
                                                 .size = mask.size(),
                                                 .positive = &positive,
                                                 .threshold = threshold,
                                                 .spec = spec};
    EXPECT_STATUS(lumStatusOk, member == Member::plain ? applyHaar(call) : applyMixedHaar(call));
    return positive;
}

/// Whole mantissas with exponents that differ, so that every sum of them rounds.
void fillRounding(GuardedImage<Lum32f>& image, std::mt19937& engine) {
    image.fill([&](int, int, int) {
        const auto mantissa = static_cast<float>(static_cast<int>(engine() % 16777216U) - 8388608);
        return std::ldexp(mantissa, static_cast<int>(engine() % 9) - 20);
    });
}
/// Integers of every length: short ones are floats, long ones round to them.
void fillRounding(GuardedImage<Lum32s>& image, std::mt19937& engine) {
    image.fill([&](int, int, int) {
        const auto longest = static_cast<Lum32s>(engine());
        return longest >> engine() % 32;
    });
}

/// The sum of a classifier at a place, each operation rounded to a float.
template <class Src>
float classifierSum(const HaarWeak<Lum32f>& weak, const GuardedImage<Src>& src, int x, int y,
                    bool firstNegated) {
    const auto term = [&](std::size_t k) {
        if constexpr (std::is_same_v<Src, Lum32f>) {
            const HaarReads& r = weak.reads[k];
            const auto at = [&](HaarPlace p) { return src.at(x + p.x, y + p.y); };
            if (k == 0 && firstNegated) return at(r.b) - at(r.a) + at(r.c) - at(r.d);
        }
        return static_cast<float>(rectangleSum(src, x, y, weak.reads[k])) * weak.weights[k];
    };
    float t = term(0);
    for (std::size_t k = 1; k < weak.reads.size(); ++k) t = t + term(k);
    return t;
}

/// A pixel whose deviation is the sum itself takes `above`; with the next larger deviation it takes `below`. So a sum
/// that differs in its last bit, or is formed in another order, is seen.
template <class Src> void expectSumToTheLastBit(Member member, bool firstNegated) {
    for (int width : widths)
        for (unsigned seed = 0; seed < 20; ++seed) {
            std::mt19937 engine(seed);
            // One classifier of all the rectangles, of which the first seed has many.
            auto arrays = randomHaar<Lum32f>(engine, seed == 0 ? 60 : 1, window, HaarForm::upright);
            arrays.num = {static_cast<Lum32s>(arrays.rects.size())};
            for (float& weight : arrays.weights)
                weight = static_cast<float>(static_cast<int>(engine() % 20000) - 10000) / 777;
            float& first = arrays.weights[0];
            if (firstNegated)
                first = -1;
            else if (static_cast<int>(first) == -1)
                first = 3.3F;
            arrays.thresholds = {1};
            arrays.below = {0};
            arrays.above = {1};
            HaarSpec<Lum32f> spec(arrays);
            const auto weak = inCallersOrder(arrays, uprightReads)[0];

            GuardedImage<Src> src(width + window.width, 2 + window.height);
            fillRounding(src, engine);
            GuardedImage<Lum32f> sums(width, 2);
            sums.fill([&](int x, int y, int) {
                return classifierSum(weak, src, x, y, firstNegated && member == Member::plain);
            });
            GuardedImage<Lum32f> justAbove(width, 2);
            justAbove.fill([&](int x, int y, int) { return std::nextafter(sums.at(x, y), infinity); });
            for (Lum32s onEntry : densities(2 * width)) {
                ASSERT_EQ(2 * width, staying(member, src, sums, onEntry, 1, spec.get()))
                    << "width " << width << ", seed " << seed;
                ASSERT_EQ(0, staying(member, src, justAbove, onEntry, 1, spec.get()))
                    << "width " << width << ", seed " << seed;
            }
        }
}

} // namespace

TEST(ApplyHaarClassifier_32f, SumIsTheStatedOneToTheLastBit) {
    expectSumToTheLastBit<Lum32f>(Member::plain, false);
}

TEST(ApplyHaarClassifier_32f, SumWithANegatedFirstTermIsTheStatedOneToTheLastBit) {
    expectSumToTheLastBit<Lum32f>(Member::plain, true);
}

TEST(ApplyHaarClassifier_32s32f, SumIsTheStatedOneToTheLastBit) {
    for (bool firstIsMinusOne : {false, true}) expectSumToTheLastBit<Lum32s>(Member::plain, firstIsMinusOne);
}

TEST(ApplyMixedHaarClassifier_32f, SumIsTheStatedOneToTheLastBit) {
    for (bool firstIsMinusOne : {false, true}) expectSumToTheLastBit<Lum32f>(Member::mixed, firstIsMinusOne);
}

TEST(ApplyMixedHaarClassifier_32s32f, SumIsTheStatedOneToTheLastBit) {
    for (bool firstIsMinusOne : {false, true}) expectSumToTheLastBit<Lum32s>(Member::mixed, firstIsMinusOne);
}

TEST(HaarFloats, LimitIsTheProductRoundedToAFloat) {
    const float threshold = 1.2345679F;
    for (Member member : {Member::plain, Member::mixed})
        for (float firstWeight : {2.0F, -1.0F})
            for (int width : widths) {
                HaarArrays<Lum32f> arrays;
                arrays.add({{0, 0, width, 1}}, {firstWeight}, threshold, 0, 1);
                HaarSpec<Lum32f> spec(arrays);
                std::mt19937 engine(static_cast<unsigned>(width));
                GuardedImage<Lum32f> norm(width, 1);
                norm.fill([&](int, int, int) { return static_cast<float>(engine() % 16777216U) / 1000; });
                GuardedImage<Lum32f> src(2 * width, 2);
                // Corner A alone, so that the sum times the weight is the limit itself.
                src.fill([&](int x, int y, int) {
                    return y == 1 && x >= width ? threshold * norm.at(x - width, 0) / firstWeight : 0.0F;
                });
                for (Lum32s onEntry : densities(width))
                    EXPECT_EQ(width, staying(member, src, norm, onEntry, 1, spec.get())) << "width " << width;
            }
}

TEST(ApplyHaarClassifier_32f, NaNTakesBelowAndClearsThePixelOnEveryWidth) {
    for (int width : widths)
        for (float firstWeight : {2.0F, -1.0F})
            for (Lum32s onEntry : densities(width)) {
                const auto run = [&](float deviation, float below, float above, float stageThreshold) {
                    HaarArrays<Lum32f> arrays;
                    arrays.add({{0, 0, 1, 1}}, {firstWeight}, 1, below, above);
                    HaarSpec<Lum32f> spec(arrays);
                    const GuardedImage<Lum32f> zeros(width + 1, 2);
                    GuardedImage<Lum32f> norm(width, 1);
                    norm.fill([&](int, int, int) { return deviation; });
                    return staying(Member::plain, zeros, norm, onEntry, stageThreshold, spec.get());
                };
                EXPECT_EQ(width, run(notANumber, 2, 1, 2)) << "takes below";
                EXPECT_EQ(0, run(notANumber, 1, 2, 2)) << "does not take above";
                EXPECT_EQ(0, run(-1, 1, notANumber, -1e30F)) << "a total that is NaN";
                EXPECT_EQ(0, run(-1, 1, 1, notANumber)) << "a threshold of the stage that is NaN";
            }
}

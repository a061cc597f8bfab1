#include <cstring>
#include <limits>

#include "integral/haar_object.h"
#include "kernels/integral/haar.h"
#include "support/haar_stages.h"

using namespace support;

namespace {

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr LumSize window{7, 6};

LumStatus apply(const Lum32f* src, int srcStep, const Lum32f* norm, int normStep, Lum8u* mask, int maskStep,
                LumSize size, Lum32s* positive, Lum32f threshold, LumHaarClassifier* spec, int) {
    return lumiApplyHaarClassifier_32f_C1R(src, srcStep, norm, normStep, mask, maskStep, size, positive,
                                           threshold, spec);
}
LumStatus apply(const Lum32s* src, int srcStep, const Lum32f* norm, int normStep, Lum8u* mask, int maskStep,
                LumSize size, Lum32s* positive, Lum32f threshold, LumHaarClassifier* spec, int) {
    return lumiApplyHaarClassifier_32s32f_C1R(src, srcStep, norm, normStep, mask, maskStep, size, positive,
                                              threshold, spec);
}
LumStatus apply(const Lum32s* src, int srcStep, const Lum32s* norm, int normStep, Lum8u* mask, int maskStep,
                LumSize size, Lum32s* positive, Lum32s threshold, LumHaarClassifier* spec, int scaleFactor) {
    return lumiApplyHaarClassifier_32s_C1RSfs(src, srcStep, norm, normStep, mask, maskStep, size, positive,
                                              threshold, spec, scaleFactor);
}

template <class T> class HaarApply : public testing::Test {};
TYPED_TEST_SUITE(HaarApply, HaarMembers);

/// The images of a call on a region, the integral image exactly as large as the windows of its pixels reach.
template <class M> struct Scene {
    GuardedImage<typename M::Src> src;
    GuardedImage<typename M::Norm> norm;
    GuardedImage<Lum8u> mask;

    Scene(LumSize size, Placement placement, unsigned seed)
        : src(size.width + window.width, size.height + window.height, forWords(placement)),
          norm(size.width, size.height, forWords(placement)),
          mask(size.width, size.height, placement) {
        src.fillRandom(seed);
        norm.fillRandom(seed + 1);
        fillMask(mask, seed + 2, 1);
    }
    LumStatus call(Lum32s* positive, typename M::Value threshold, LumHaarClassifier* spec, int scaleFactor) {
        return apply(src.data(), src.step(), norm.data(), norm.step(), mask.data(), mask.step(), mask.size(),
                     positive, threshold, spec, scaleFactor);
    }
};

/// As the contract states each pixel, for stages of lumiHaarClassifierInit.
template <class M>
std::pair<std::vector<Lum8u>, int> expected(const Scene<M>& s, const HaarArrays<typename M::Value>& arrays,
                                            typename M::Value threshold, int scaleFactor, bool firstNegated) {
    const auto weaks = regrouped(inCallersOrder(arrays, uprightReads));
    return expectedMask(s.mask, [&](int x, int y) {
        if constexpr (std::is_same_v<typename M::Norm, Lum32s>) {
            return staysByIntegers(
                weaks, s.norm.at(x, y), threshold, -scaleFactor,
                [&](const auto& w, int k) { return rectangleSum(s.src, x, y, w.reads[k]); });
        } else {
            constexpr bool ofFloats = std::is_same_v<typename M::Src, Lum32f>;
            const auto term = [&](const HaarWeak<Lum32f>& w, int k) {
                if constexpr (ofFloats) {
                    const HaarReads& r = w.reads[k];
                    const auto at = [&](HaarPlace p) { return s.src.at(x + p.x, y + p.y); };
                    if (k == 0 && firstNegated) return at(r.b) - at(r.a) + at(r.c) - at(r.d);
                }
                return static_cast<float>(rectangleSum(s.src, x, y, w.reads[k])) * w.weights[k];
            };
            return staysByFloats(weaks, s.norm.at(x, y), threshold,
                                 ofFloats ? Unordered::isBelow : Unordered::isAbove, term);
        }
    });
}

/// A threshold of the stage that about half of the pixels pass, whatever the sums are.
template <class Value> constexpr Value middleThreshold = 0;

/// One call on one shape, the density forced by the count on entry, against the statement above.
template <class M>
void expectStated(LumSize size, Placement placement, unsigned seed, bool firstNegated, int maskOneIn,
                  int area_per_positive) {
    std::mt19937 engine(seed);
    auto arrays = randomHaar<typename M::Value>(engine, 5, window, HaarForm::upright);
    if (firstNegated) {
        std::size_t first = 0;
        for (int count : arrays.num) {
            arrays.weights[first] = static_cast<typename M::Value>(-1.25);
            first += static_cast<std::size_t>(count);
        }
    }
    HaarSpec<typename M::Value> spec(arrays);
    Scene<M> scene(size, placement, seed + 3);
    fillMask(scene.mask, seed + 4, maskOneIn);
    const int scaleFactor = -static_cast<int>(seed % 3);
    const auto [mask, count] =
        expected(scene, arrays, middleThreshold<typename M::Value>, scaleFactor, firstNegated);

    Lum32s positive = std::max(1, size.width * size.height / area_per_positive);
    ASSERT_EQ(lumStatusOk,
              scene.call(&positive, middleThreshold<typename M::Value>, spec.get(), scaleFactor));
    ASSERT_EQ(mask, scene.mask.pixels()) << "width " << size.width << ", seed " << seed;
    ASSERT_EQ(count, positive);
    ASSERT_TRUE(scene.mask.outsideUntouched());
    ASSERT_TRUE(scene.src.untouched() && scene.norm.untouched());
}

/// One pixel, one classifier of one rectangle whose sum is the difference of two elements of a column of zeros.
struct OnePixel {
    Lum32f src[4] = {0, 0, 0, 0};
    Lum32f norm = 1;
    Lum8u mask = 9;
    Lum32s positive = 1;
    float below = 1, above = 2;
    float threshold = 0;

    /// The total of the stage is what the stage's threshold separates.
    bool reaches(float stageThreshold, float weight = 2) {
        HaarArrays<Lum32f> arrays;
        arrays.add({{0, 0, 1, 1}}, {weight}, threshold, below, above);
        HaarSpec<Lum32f> spec(arrays);
        mask = 9;
        positive = 1;
        EXPECT_STATUS(lumStatusOk, lumiApplyHaarClassifier_32f_C1R(src, 8, &norm, 4, &mask, 1, {1, 1},
                                                                   &positive, stageThreshold, spec.get()));
        EXPECT_EQ(positive == 1 ? 9 : 0, mask);
        return positive == 1;
    }
    bool takesAbove() { return reaches(2) && !reaches(3); }
    bool takesBelow() { return reaches(1) && !reaches(2); }
};

struct OnePixelOfIntegers {
    Lum32s src[4] = {0, 0, 0, 0};
    Lum32s norm = 1;
    Lum32s threshold = 0;
    Lum32s weight = 1;

    bool takesAbove(int scaleFactor = 0) {
        HaarArrays<Lum32s> arrays;
        arrays.add({{0, 0, 1, 1}}, {weight}, threshold, 1, 2);
        HaarSpec<Lum32s> spec(arrays);
        Lum8u mask = 1;
        Lum32s positive = 1;
        EXPECT_STATUS(lumStatusOk, lumiApplyHaarClassifier_32s_C1RSfs(src, 8, &norm, 4, &mask, 1, {1, 1},
                                                                      &positive, 2, spec.get(), scaleFactor));
        return positive == 1;
    }
};

} // namespace

TEST(ApplyHaarClassifier_32f, TwoPixelsAndOneClassifierByHand) {
    // A rectangle of one pixel, with the weight 2: the pixels 5 and 3 give 10 and 6, and 7 x the norm 1 is the limit.
    const Lum32f src[] = {0, 0, 0, //
                          0, 5, 8};
    const Lum32f norm[] = {1, 1};
    Lum8u mask[] = {9, 9};
    Lum32s positive = 2;
    HaarArrays<Lum32f> arrays;
    arrays.add({{0, 0, 1, 1}}, {2}, 7, 1, 4);
    HaarSpec<Lum32f> spec(arrays);
    EXPECT_STATUS(lumStatusOk,
                  lumiApplyHaarClassifier_32f_C1R(src, sizeof(src) / 2, norm, sizeof(norm), mask,
                                                  sizeof(mask), {2, 1}, &positive, 2, spec.get()));
    EXPECT_EQ(9, mask[0]) << "above the limit: 4 reaches the stage's threshold of 2";
    EXPECT_EQ(0, mask[1]) << "below it: 1 does not";
    EXPECT_EQ(1, positive);
}

TYPED_TEST(HaarApply, AllKernelsGiveTheStatedMaskOnEveryWidth) {
    for (bool firstNegated : {false, true})
        for (int areaPerPositive : {1, 5, 100})
            for (int width = 1; width <= 40; ++width) {
                const auto seed = static_cast<unsigned>(1000 * areaPerPositive + width);
                expectStated<TypeParam>({width, 9}, {}, seed, firstNegated, 1 + width % 5, areaPerPositive);
                expectStated<TypeParam>({width, 3},
                                        {.padding = 3, .offset = width % 17, .guard = Guard::before},
                                        seed + 1, firstNegated, 1 + width % 3 * 9, areaPerPositive);
            }
}

TYPED_TEST(HaarApply, RandomStagesOnLargerRegions) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    for (unsigned round = 0; round < 40; ++round)
        expectStated<TypeParam>({static_cast<int>(41 + (seed + 7 * round) % 90), 11},
                                {.padding = static_cast<int>(round % 3)}, seed + round, round % 2 == 1,
                                1 + static_cast<int>(round % 20), std::vector<int>{1, 6, 9}[round % 3]);
}

TYPED_TEST(HaarApply, ScalarKernelAgreesOnEveryDensity) {
    using Value = typename TypeParam::Value;
    using Norm = typename TypeParam::Norm;
    std::mt19937 engine(11);
    const auto arrays = randomHaar<Value>(engine, 6, window, HaarForm::upright);
    HaarSpec<Value> spec(arrays);
    const auto agree = [&](const auto& rule, const auto& stageOf) {
        for (int width = 1; width <= 70; ++width)
            for (int oneIn : {1, 3, 12}) {
                Scene<TypeParam> scene({width, 4}, {}, static_cast<unsigned>(width));
                const auto stage = stageOf(scene);
                const auto run = [&](auto kernel) {
                    fillMask(scene.mask, static_cast<unsigned>(width), oneIn);
                    const lum::kernels::HaarRegion<Norm> region{{scene.norm.data(), scene.norm.step()},
                                                                {scene.mask.data(), scene.mask.step()},
                                                                scene.mask.size()};
                    const int count = kernel(region);
                    EXPECT_TRUE(scene.mask.outsideUntouched());
                    return std::pair(count, scene.mask.pixels());
                };
                const auto scalar = run([&](const auto& region) {
                    return lum::kernels::applyHaarScalar(rule, stage, region, Value{});
                });
                for (auto density : {lum::kernels::HaarDensity::dense, lum::kernels::HaarDensity::middle,
                                     lum::kernels::HaarDensity::sparse, lum::kernels::HaarDensity::unknown}) {
                    const auto vector = run([&](const auto& region) {
                        return lum::kernels::applyHaar(rule, stage, region, Value{}, density);
                    });
                    ASSERT_EQ(scalar, vector) << "width " << width << ", one in " << oneIn;
                }
            }
    };
    const auto recordsOf = [&](Scene<TypeParam>& scene) {
        const auto* offsets = lum::rebuildHaarOffsets(*spec.get(), scene.src.step());
        if constexpr (std::is_same_v<typename TypeParam::Src, Lum32s>)
            return lum::kernels::HaarRecordStage<Value>{{scene.src.data(), scene.src.step()},
                                                        spec.get()->classifierCount,
                                                        spec.get()->classifiers,
                                                        offsets};
        else
            return lum::kernels::HaarTableStage{{scene.src.data(), scene.src.step()},
                                                lum::rebuildHaarTables(*spec.get(), scene.src.step())};
    };
    if constexpr (std::is_same_v<typename TypeParam::Src, Lum32f>) {
        agree(lum::kernels::HaarWithNegatedFirst{}, recordsOf);
        agree(lum::kernels::HaarWithWeightedFirst{}, recordsOf);
    } else if constexpr (std::is_same_v<Norm, Lum32f>) {
        agree(lum::kernels::HaarUnorderedAbove{}, recordsOf);
    } else {
        for (unsigned shift : {0U, 3U, 40U, 64U, 200U}) agree(lum::kernels::HaarIntegers{shift}, recordsOf);
    }
}

TYPED_TEST(HaarApply, TablesStayInTheQueriedSizeAtEveryAlignment) {
    using Value = typename TypeParam::Value;
    std::mt19937 engine(5);
    for (int classifiers : {1, 3, 17, 40}) {
        const auto arrays = randomHaar<Value>(engine, classifiers, window, HaarForm::upright);
        const int bytes = queriedHaarSize(arrays);
        Scene<TypeParam> scene({12, 2}, {}, 6);
        std::vector<std::vector<Lum8u>> masks;
        for (int offset = 0; offset < 64; ++offset) {
            std::vector<Lum8u> block(static_cast<std::size_t>(bytes) + 128, 0xA5);
            const auto start = (reinterpret_cast<std::uintptr_t>(block.data()) + 63) / 64 * 64;
            auto* spec = reinterpret_cast<LumHaarClassifier*>(start + static_cast<unsigned>(offset));
            ASSERT_EQ(lumStatusOk, initHaar(HaarForm::upright, spec, arrays));
            fillMask(scene.mask, 1, 1);
            Lum32s positive = 24;
            ASSERT_EQ(lumStatusOk, scene.call(&positive, 0, spec, 0));
            const Lum8u* end = reinterpret_cast<const Lum8u*>(spec) + bytes;
            EXPECT_TRUE(std::all_of(end, static_cast<const Lum8u*>(block.data() + block.size()),
                                    [](Lum8u byte) { return byte == 0xA5; }))
                << "offset " << offset;
            masks.push_back(scene.mask.pixels());
        }
        for (const auto& mask : masks) EXPECT_EQ(masks[0], mask);
    }
}

TYPED_TEST(HaarApply, TablesFollowTheStepOfEachCall) {
    using Value = typename TypeParam::Value;
    std::mt19937 engine(9);
    const auto arrays = randomHaar<Value>(engine, 4, window, HaarForm::upright);
    HaarSpec<Value> spec(arrays);
    for (int padding : {0, 5, 1}) {
        Scene<TypeParam> scene({21, 6}, {.padding = padding}, 6);
        const auto [mask, count] = expected(scene, arrays, Value{}, 0, false);
        Lum32s positive = 126;
        EXPECT_STATUS(lumStatusOk, scene.call(&positive, Value{}, spec.get(), 0));
        EXPECT_EQ(mask, scene.mask.pixels());
        EXPECT_EQ(count, positive);
    }
}

TYPED_TEST(HaarApply, PositiveOfZeroOnEntryLeavesTheMaskAndStaysZero) {
    using Value = typename TypeParam::Value;
    std::mt19937 engine(9);
    HaarSpec<Value> spec(randomHaar<Value>(engine, 3, window, HaarForm::upright));
    Scene<TypeParam> scene({20, 3}, {}, 6);
    Lum32s positive = 0;
    EXPECT_REFUSED(lumStatusOk, scene.mask,
                   scene.call(&positive, std::numeric_limits<Value>::max(), spec.get(), 0));
    EXPECT_EQ(0, positive);
}

TYPED_TEST(HaarApply, MaskOfZerosGivesZero) {
    using Value = typename TypeParam::Value;
    std::mt19937 engine(9);
    HaarSpec<Value> spec(randomHaar<Value>(engine, 3, window, HaarForm::upright));
    for (Lum32s onEntry : {1, 10, 60, 1000, -5}) {
        Scene<TypeParam> scene({20, 3}, {}, 6);
        scene.mask.fill([](int, int, int) { return 0; });
        Lum32s positive = onEntry;
        EXPECT_REFUSED(lumStatusOk, scene.mask, scene.call(&positive, Value{}, spec.get(), 0));
        EXPECT_EQ(0, positive);
    }
}

TYPED_TEST(HaarApply, CountOnEntryOnlyChoosesTheWay) {
    using Value = typename TypeParam::Value;
    std::mt19937 engine(10);
    const auto arrays = randomHaar<Value>(engine, 3, window, HaarForm::upright);
    HaarSpec<Value> spec(arrays);
    for (Lum32s onEntry :
         {1, 7, 8, 9, 14, 15, 16, 60, 61, 0x7FFFFFFF, -1, std::numeric_limits<Lum32s>::min()}) {
        Scene<TypeParam> scene({20, 3}, {}, 6);
        const auto [mask, count] = expected(scene, arrays, Value{}, 0, false);
        Lum32s positive = onEntry;
        EXPECT_STATUS(lumStatusOk, scene.call(&positive, Value{}, spec.get(), 0));
        EXPECT_EQ(mask, scene.mask.pixels());
        EXPECT_EQ(count, positive);
    }
}

TYPED_TEST(HaarApply, TiltedStageReadsItsCornersFromThePlaceOfThePixel) {
    using Value = typename TypeParam::Value;
    std::mt19937 engine(21);
    HaarArrays<Value> arrays;
    arrays.add({{3, 0, 2, 3}, {2, 1, 1, 3}}, {Value{1}, Value{2}}, 0, -1, 1);
    HaarSpec<Value> spec(arrays, HaarForm::tilted);
    Scene<TypeParam> scene({18, 4}, {}, 6);
    // The leftmost corner lies one column before the pixel's.
    const LumSize region{17, 4};
    const auto weaks = inCallersOrder(arrays, tiltedReads);
    std::vector<Lum8u> mask(17 * 4, 1);
    Lum32s positive = 17 * 4;
    EXPECT_STATUS(lumStatusOk,
                  apply(scene.src.data() + 1, scene.src.step(), scene.norm.data(), scene.norm.step(),
                        mask.data(), 17, region, &positive, Value{}, spec.get(), 0));
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 17; ++x) {
            const auto sum = [&](const auto& w, int k) {
                return rectangleSum(scene.src, x + 1, y, w.reads[k]);
            };
            bool stays;
            if constexpr (std::is_same_v<Value, Lum32f>)
                stays = staysByFloats(
                    weaks, scene.norm.at(x, y), 0, Unordered::isBelow,
                    [&](const auto& w, int k) { return static_cast<float>(sum(w, k)) * w.weights[k]; });
            else
                stays = staysByIntegers(weaks, scene.norm.at(x, y), 0, 0, sum);
            EXPECT_EQ(stays ? 1 : 0, mask[y * 17 + x]) << x << ", " << y;
        }
}

TYPED_TEST(HaarApply, ChecksInTheirOrderAndNothingWritten) {
    using Value = typename TypeParam::Value;
    using Norm = typename TypeParam::Norm;
    using Src = typename TypeParam::Src;
    std::mt19937 engine(9);
    HaarSpec<Value> spec(randomHaar<Value>(engine, 3, window, HaarForm::upright));
    Scene<TypeParam> scene({8, 3}, {}, 6);
    Lum32s positive = 24;
    constexpr bool scaled = std::is_same_v<Value, Lum32s>;
    const Src* src = scene.src.data();
    const Norm* norm = scene.norm.data();
    Lum8u* mask = scene.mask.data();
    const int srcStep = scene.src.step(), normStep = scene.norm.step(), maskStep = scene.mask.step();
    const Value high = std::numeric_limits<Value>::max();

    for (LumSize size : {LumSize{8, 3}, LumSize{0, 0}}) {
        EXPECT_REFUSED(
            lumStatusNullPointer, scene.mask,
            apply(static_cast<Src*>(nullptr), 1, norm, 1, mask, 1, size, &positive, high, spec.get(), 1));
        EXPECT_REFUSED(
            lumStatusNullPointer, scene.mask,
            apply(src, 1, static_cast<Norm*>(nullptr), 1, mask, 1, size, &positive, high, spec.get(), 1));
        EXPECT_REFUSED(lumStatusNullPointer, scene.mask,
                       apply(src, 1, norm, 1, nullptr, 1, size, &positive, high, spec.get(), 1));
        EXPECT_REFUSED(lumStatusNullPointer, scene.mask,
                       apply(src, 1, norm, 1, mask, 1, size, nullptr, high, spec.get(), 1));
        EXPECT_REFUSED(lumStatusNullPointer, scene.mask,
                       apply(src, 1, norm, 1, mask, 1, size, &positive, high, nullptr, 1));
    }
    for (LumSize size : {LumSize{0, 3}, LumSize{8, 0}, LumSize{-8, 3}, LumSize{8, -3}})
        EXPECT_REFUSED(lumStatusSizeError, scene.mask,
                       apply(src, 1, norm, 1, mask, 1, size, &positive, high, spec.get(), 1));
    for (int bad : {31, 0, -32}) {
        EXPECT_REFUSED(lumStatusStepError, scene.mask,
                       apply(src, bad, norm, 33, mask, maskStep, {8, 3}, &positive, high, spec.get(), 1));
        EXPECT_REFUSED(lumStatusStepError, scene.mask,
                       apply(src, 33, norm, bad, mask, maskStep, {8, 3}, &positive, high, spec.get(), 1));
    }
    EXPECT_REFUSED(lumStatusStepError, scene.mask,
                   apply(src, 33, norm, 33, mask, 7, {8, 3}, &positive, high, spec.get(), 1));
    EXPECT_REFUSED(lumStatusStepError, scene.mask,
                   apply(src, 0x7FFFFFFC, norm, 0x7FFFFFFC, mask, 0x7FFFFFFF, {0x7FFFFFFF, 3}, &positive,
                         high, spec.get(), 1));
    for (int odd : {33, 34, 35}) {
        EXPECT_REFUSED(lumStatusStepAlignmentError, scene.mask,
                       apply(src, odd, norm, normStep, mask, 8, {8, 3}, &positive, high, spec.get(), 1));
        EXPECT_REFUSED(lumStatusStepAlignmentError, scene.mask,
                       apply(src, srcStep, norm, odd, mask, 8, {8, 3}, &positive, high, spec.get(), 1));
    }
    auto* scratch = spec.get()->scratch;
    spec.get()->scratch = nullptr;
    if (scaled) EXPECT_REFUSED(lumStatusBadArgument, scene.mask, scene.call(&positive, high, spec.get(), 1));
    EXPECT_REFUSED(lumStatusNullPointer, scene.mask, scene.call(&positive, high, spec.get(), 0));
    Lum32s none = 0;
    EXPECT_REFUSED(lumStatusNullPointer, scene.mask, scene.call(&none, high, spec.get(), 0));
    spec.get()->scratch = scratch;
    EXPECT_EQ(24, positive);
    EXPECT_STATUS(lumStatusOk, scene.call(&positive, high, spec.get(), 0));
}

TEST(ApplyHaarClassifier_32f, SumAtTheLimitTakesAbove) {
    OnePixel pixel;
    pixel.src[3] = 3;
    pixel.norm = 2;
    pixel.threshold = 3;
    EXPECT_TRUE(pixel.takesAbove()) << "2 x 3 = 3 x 2";
    pixel.threshold = 3.0001F;
    EXPECT_TRUE(pixel.takesBelow());
}

TEST(ApplyHaarClassifier_32f, NaNInNormOrSumTakesBelow) {
    OnePixel pixel;
    pixel.norm = notANumber;
    EXPECT_TRUE(pixel.takesBelow());
    pixel.norm = 1;
    pixel.src[2] = notANumber;
    EXPECT_TRUE(pixel.takesBelow());
}

TEST(ApplyHaarClassifier_32f, TotalThatIsNaNClearsThePixel) {
    OnePixel pixel;
    pixel.above = notANumber;
    EXPECT_FALSE(pixel.reaches(-1e30F));
    pixel.above = 1;
    EXPECT_FALSE(pixel.reaches(notANumber));
}

TEST(ApplyHaarClassifier_32f, FirstWeightThatTruncatesToMinusOneIsNotMultiplied) {
    OnePixel pixel;
    pixel.src[3] = 8;
    pixel.threshold = -9;
    EXPECT_TRUE(pixel.reaches(2, -1.75F)) << "-8, not -14";
    pixel.threshold = -7;
    EXPECT_FALSE(pixel.reaches(2, -1.75F));
    pixel.threshold = -15;
    EXPECT_FALSE(pixel.reaches(2, -2.0F)) << "-16";
}

TEST(ApplyHaarClassifier_32f, RectangleSumRoundsFromCornerAToCornerD) {
    // ((3 - 1) - 1e8) + 1e8 is 0 in floats, and so is ((1 - 3) + 1e8) - 1e8; in pairs the sums are 2 and -2.
    for (float weight : {2.0F, -1.0F})
        for (int width : {1, 4, 16, 32}) {
            HaarArrays<Lum32f> arrays;
            arrays.add({{0, 0, 32, 1}}, {weight}, 0, 1, 2);
            arrays.add({{0, 0, 32, 1}}, {weight}, 1, 1, 2);
            HaarSpec<Lum32f> spec(arrays);
            GuardedImage<Lum32f> src(width + 32, 2);
            src.fill([](int x, int y, int) { return y == 0 ? 1e8F : x < 32 ? 1.0F : 3.0F; });
            const std::vector<float> norm(width, 1);
            for (float stageThreshold : {3.0F, 4.0F}) {
                std::vector<Lum8u> mask(width, 1);
                Lum32s positive = width;
                EXPECT_STATUS(lumStatusOk, lumiApplyHaarClassifier_32f_C1R(
                                               src.data(), src.step(), norm.data(), 4 * width, mask.data(),
                                               width, {width, 1}, &positive, stageThreshold, spec.get()));
                EXPECT_EQ(stageThreshold == 3 ? width : 0, positive) << "at 0, not at 1";
            }
        }
}

TEST(ApplyHaarClassifier_32s32f, SumsWrapBeforeTheyAreConverted) {
    HaarArrays<Lum32f> arrays;
    arrays.add({{0, 0, 1, 1}}, {1}, 0, 1, 2);
    HaarSpec<Lum32f> spec(arrays);
    // A - B = 2^31 wraps to -2^31.
    const Lum32s src[4] = {0, 0, -1, 0x7FFFFFFF};
    const float norm = 1;
    Lum8u mask = 1;
    Lum32s positive = 1;
    EXPECT_STATUS(lumStatusOk, lumiApplyHaarClassifier_32s32f_C1R(src, 8, &norm, 4, &mask, 1, {1, 1},
                                                                  &positive, 2, spec.get()));
    EXPECT_EQ(0, positive);
}

TEST(ApplyHaarClassifier_32s32f, FirstWeightIsMultipliedWhateverItIs) {
    HaarArrays<Lum32f> arrays;
    arrays.add({{0, 0, 1, 1}}, {-1.75F}, -10, 1, 2);
    HaarSpec<Lum32f> spec(arrays);
    const Lum32s src[4] = {0, 0, 0, 8};
    const float norm = 1;
    Lum8u mask = 1;
    Lum32s positive = 1;
    EXPECT_STATUS(lumStatusOk, lumiApplyHaarClassifier_32s32f_C1R(src, 8, &norm, 4, &mask, 1, {1, 1},
                                                                  &positive, 2, spec.get()));
    EXPECT_EQ(0, positive) << "-14 is below -10";
}

TEST(ApplyHaarClassifier_32s32f, NaNTakesAboveAndATotalOfNaNStays) {
    HaarArrays<Lum32f> arrays;
    arrays.add({{0, 0, 1, 1}}, {1}, 1, 1, 2);
    HaarSpec<Lum32f> spec(arrays);
    const std::vector<Lum32s> src(2 * 33, 0);
    for (int width : {1, 4, 16, 32})
        for (float stageThreshold : {2.0F, notANumber}) {
            const std::vector<float> norm(width, notANumber);
            std::vector<Lum8u> mask(width, 1);
            Lum32s positive = width;
            EXPECT_STATUS(lumStatusOk, lumiApplyHaarClassifier_32s32f_C1R(
                                           src.data(), 132, norm.data(), width * 4, mask.data(), width,
                                           {width, 1}, &positive, stageThreshold, spec.get()));
            EXPECT_EQ(width, positive);
        }
}

TEST(ApplyHaarClassifier_32s, ScaleFactorAboveZeroIsRefusedAndZeroShiftsNothing) {
    HaarArrays<Lum32s> arrays;
    arrays.add({{0, 0, 1, 1}}, {1}, 5, 1, 2);
    HaarSpec<Lum32s> spec(arrays);
    const Lum32s src[4] = {0, 0, 0, 5};
    const Lum32s norm = 1;
    Lum8u mask = 1;
    Lum32s positive = 1;
    for (int scaleFactor : {1, 2, 0x7FFFFFFF})
        EXPECT_STATUS(lumStatusBadArgument,
                      lumiApplyHaarClassifier_32s_C1RSfs(src, 8, &norm, 4, &mask, 1, {1, 1}, &positive, 2,
                                                         spec.get(), scaleFactor));
    EXPECT_STATUS(lumStatusOk, lumiApplyHaarClassifier_32s_C1RSfs(src, 8, &norm, 4, &mask, 1, {1, 1},
                                                                  &positive, 2, spec.get(), 0));
    EXPECT_EQ(1, positive) << "5 is not below 5";
}

TEST(ApplyHaarClassifier_32s, NegativeScaleFactorShiftsTheSumToTheLeft) {
    OnePixelOfIntegers pixel;
    pixel.src[3] = 5;
    pixel.threshold = 20;
    EXPECT_FALSE(pixel.takesAbove(0));
    EXPECT_FALSE(pixel.takesAbove(-1));
    EXPECT_TRUE(pixel.takesAbove(-2));
    EXPECT_TRUE(pixel.takesAbove(-60));
    pixel.src[3] = 8;
    EXPECT_FALSE(pixel.takesAbove(-60)) << "8 x 2^60 is the sign bit";
    EXPECT_FALSE(pixel.takesAbove(-61)) << "all bits are gone";
    pixel.threshold = 1;
    for (int scaleFactor : {-64, -65, -96, -128, std::numeric_limits<int>::min()})
        EXPECT_FALSE(pixel.takesAbove(scaleFactor)) << "all bits are gone at " << scaleFactor;
}

TEST(ApplyHaarClassifier_32s, ProductsHave64BitsAndSumsWrapAt32) {
    OnePixelOfIntegers pixel;
    pixel.src[3] = 0x7FFFFFFF;
    pixel.weight = 0x7FFFFFFF;
    pixel.norm = 0x7FFFFFFF;
    pixel.threshold = 0x7FFFFFFF;
    EXPECT_TRUE(pixel.takesAbove());
    pixel.weight = 0x7FFFFFFE;
    EXPECT_FALSE(pixel.takesAbove());
    pixel.src[2] = -1;
    pixel.weight = -1;
    pixel.threshold = 1;
    EXPECT_TRUE(pixel.takesAbove()) << "-2^31 x -1 = 2^31, above 2^31 - 1";
}

TEST(ApplyHaarClassifier_32s, TotalsWrapAt32Bits) {
    HaarArrays<Lum32s> arrays;
    for (int i = 0; i < 2; ++i) arrays.add({{0, 0, 1, 1}}, {1}, 0, 0, 0x7FFFFFFF);
    HaarSpec<Lum32s> spec(arrays);
    for (int width : {1, 16}) {
        const std::vector<Lum32s> zeros(2 * 17, 0);
        std::vector<Lum8u> mask(width, 1);
        Lum32s positive = width;
        EXPECT_STATUS(lumStatusOk,
                      lumiApplyHaarClassifier_32s_C1RSfs(zeros.data(), 68, zeros.data(), 68, mask.data(),
                                                         width, {width, 1}, &positive, -1, spec.get(), 0));
        EXPECT_EQ(0, positive) << "2 x (2^31 - 1) is -2";
    }
}

TEST(ApplyHaarClassifier_32f, TotalsAreSummedInTheOrderOfTheRecords) {
    // 1e8 + 1 - 1e8 is 0 in this order; the caller's order would give 1.
    HaarArrays<Lum32f> arrays;
    arrays.add({{0, 0, 1, 1}, {0, 0, 1, 1}, {0, 0, 1, 1}}, {2, 2, 2}, 0, 0, -1e8F);
    arrays.add({{0, 0, 1, 1}, {0, 0, 1, 1}}, {2, 2}, 0, 0, 1e8F);
    arrays.add({{0, 0, 1, 1}, {0, 0, 1, 1}}, {2, 2}, 0, 0, 1);
    HaarSpec<Lum32f> spec(arrays);
    const std::vector<float> zeros(2 * 17, 0);
    for (int width : {1, 16}) {
        std::vector<Lum8u> mask(width, 1);
        Lum32s positive = width;
        EXPECT_STATUS(lumStatusOk,
                      lumiApplyHaarClassifier_32f_C1R(zeros.data(), 68, zeros.data(), 68, mask.data(), width,
                                                      {width, 1}, &positive, 0.5F, spec.get()));
        EXPECT_EQ(0, positive);
    }
}

#include <cstring>
#include <limits>

#include "integral/haar_object.h"
#include "kernels/integral/haar.h"
#include "support/haar_stages.h"
#include "support/member_test.h"

using namespace support;

namespace {

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr LumSize window{7, 6};

MEMBER_TEST_SUITE(HaarApply, HaarMembers);

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
    HaarCall<M> call(Lum32s* positive, typename M::Value threshold, LumHaarClassifier* spec,
                     int scaleFactor = 0) {
        return haarCall<M>(src, norm, mask, positive, threshold, spec, scaleFactor);
    }
    LumStatus run(Lum32s* positive, typename M::Value threshold, LumHaarClassifier* spec,
                  int scaleFactor = 0) {
        return applyHaar(call(positive, threshold, spec, scaleFactor));
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
                  int areaPerPositive) {
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

    Lum32s positive = std::max(1, size.width * size.height / areaPerPositive);
    ASSERT_EQ(lumStatusOk, scene.run(&positive, middleThreshold<typename M::Value>, spec.get(), scaleFactor));
    ASSERT_EQ(mask, scene.mask.pixels()) << "width " << size.width << ", seed " << seed;
    ASSERT_EQ(count, positive);
    ASSERT_TRUE(scene.mask.outsideUntouched());
    ASSERT_TRUE(scene.src.untouched() && scene.norm.untouched());
}

/// A row of pixels on integral images of two rows. All are set in the mask on entry, and those that stay are counted.
template <class M> struct Row {
    using Value = typename M::Value;
    std::vector<typename M::Src> src;
    std::vector<typename M::Norm> norm;
    std::vector<Lum8u> mask = std::vector<Lum8u>(norm.size(), 9);
    Lum32s positive = static_cast<Lum32s>(norm.size());

    LumStatus run(const HaarArrays<Value>& arrays, Value threshold, int scaleFactor = 0) {
        HaarSpec<Value> spec(arrays);
        return applyHaar<M>({.src = src.data(),
                             .srcStep = static_cast<int>(src.size() / 2 * sizeof(src[0])),
                             .norm = norm.data(),
                             .normStep = static_cast<int>(norm.size() * sizeof(norm[0])),
                             .mask = mask.data(),
                             .maskStep = static_cast<int>(mask.size()),
                             .size = {static_cast<int>(norm.size()), 1},
                             .positive = &positive,
                             .threshold = threshold,
                             .spec = spec.get(),
                             .scaleFactor = scaleFactor});
    }
    Lum32s staying(const HaarArrays<Value>& arrays, Value threshold, int scaleFactor = 0) {
        EXPECT_STATUS(lumStatusOk, run(arrays, threshold, scaleFactor));
        return positive;
    }
};

/// One classifier of one rectangle of one pixel.
template <class Value>
HaarArrays<Value> oneClassifier(Value weight, Value threshold, Value below, Value above) {
    HaarArrays<Value> arrays;
    arrays.add({{0, 0, 1, 1}}, {weight}, threshold, below, above);
    return arrays;
}

/// One pixel, one classifier whose sum is the difference of two elements of a column of zeros.
struct OnePixel {
    std::vector<Lum32f> src{0, 0, 0, 0};
    Lum32f norm = 1;
    float below = 1, above = 2;
    float threshold = 0;

    /// The total of the stage is what the stage's threshold separates.
    bool reaches(float stageThreshold, float weight = 2) const {
        Row<HaarOfFloats> row{src, {norm}};
        const bool stays = row.staying(oneClassifier(weight, threshold, below, above), stageThreshold) == 1;
        EXPECT_EQ(stays ? 9 : 0, row.mask[0]);
        return stays;
    }
    bool takesAbove() const { return reaches(2) && !reaches(3); }
    bool takesBelow() const { return reaches(1) && !reaches(2); }
};

struct OnePixelOfIntegers {
    std::vector<Lum32s> src{0, 0, 0, 0};
    Lum32s norm = 1;
    Lum32s threshold = 0;
    Lum32s weight = 1;

    bool takesAbove(int scaleFactor = 0) const {
        Row<HaarOfIntegers> row{src, {norm}};
        return row.staying(oneClassifier(weight, threshold, 1, 2), 2, scaleFactor) == 1;
    }
};

} // namespace

TEST(ApplyHaarClassifier_32f, TwoPixelsAndOneClassifierByHand) {
    // A rectangle of one pixel, with the weight 2: the pixels 5 and 3 give 10 and 6, and 7 x the norm 1 is the limit.
    Row<HaarOfFloats> row{{0, 0, 0, //
                           0, 5, 8},
                          {1, 1}};
    HaarArrays<Lum32f> arrays;
    arrays.add({{0, 0, 1, 1}}, {2}, 7, 1, 4);
    EXPECT_STATUS(lumStatusOk, row.run(arrays, 2));
    EXPECT_EQ(9, row.mask[0]) << "above the limit: 4 reaches the stage's threshold of 2";
    EXPECT_EQ(0, row.mask[1]) << "below it: 1 does not";
    EXPECT_EQ(1, row.positive);
}

MEMBER_TEST(HaarApply, AllKernelsGiveTheStatedMaskOnEveryWidth) {
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

MEMBER_TEST(HaarApply, RandomStagesOnLargerRegions) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    for (unsigned round = 0; round < 40; ++round)
        expectStated<TypeParam>({static_cast<int>(41 + (seed + 7 * round) % 90), 11},
                                {.padding = static_cast<int>(round % 3)}, seed + round, round % 2 == 1,
                                1 + static_cast<int>(round % 20), std::vector<int>{1, 6, 9}[round % 3]);
}

MEMBER_TEST(HaarApply, ScalarKernelAgreesOnEveryDensity) {
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

MEMBER_TEST(HaarApply, TablesStayInTheQueriedSizeAtEveryAlignment) {
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
            ASSERT_EQ(lumStatusOk, scene.run(&positive, 0, spec));
            const Lum8u* end = reinterpret_cast<const Lum8u*>(spec) + bytes;
            EXPECT_TRUE(std::all_of(end, static_cast<const Lum8u*>(block.data() + block.size()),
                                    [](Lum8u byte) { return byte == 0xA5; }))
                << "offset " << offset;
            masks.push_back(scene.mask.pixels());
        }
        for (const auto& mask : masks) EXPECT_EQ(masks[0], mask);
    }
}

MEMBER_TEST(HaarApply, TablesFollowTheStepOfEachCall) {
    using Value = typename TypeParam::Value;
    std::mt19937 engine(9);
    const auto arrays = randomHaar<Value>(engine, 4, window, HaarForm::upright);
    HaarSpec<Value> spec(arrays);
    for (int padding : {0, 5, 1}) {
        Scene<TypeParam> scene({21, 6}, {.padding = padding}, 6);
        const auto [mask, count] = expected(scene, arrays, Value{}, 0, false);
        Lum32s positive = 126;
        EXPECT_STATUS(lumStatusOk, scene.run(&positive, Value{}, spec.get()));
        EXPECT_EQ(mask, scene.mask.pixels());
        EXPECT_EQ(count, positive);
    }
}

MEMBER_TEST(HaarApply, PositiveOfZeroOnEntryLeavesTheMaskAndStaysZero) {
    using Value = typename TypeParam::Value;
    std::mt19937 engine(9);
    HaarSpec<Value> spec(randomHaar<Value>(engine, 3, window, HaarForm::upright));
    Scene<TypeParam> scene({20, 3}, {}, 6);
    Lum32s positive = 0;
    EXPECT_REFUSED(lumStatusOk, scene.mask,
                   scene.run(&positive, std::numeric_limits<Value>::max(), spec.get()));
    EXPECT_EQ(0, positive);
}

MEMBER_TEST(HaarApply, MaskOfZerosGivesZero) {
    using Value = typename TypeParam::Value;
    std::mt19937 engine(9);
    HaarSpec<Value> spec(randomHaar<Value>(engine, 3, window, HaarForm::upright));
    for (Lum32s onEntry : {1, 10, 60, 1000, -5}) {
        Scene<TypeParam> scene({20, 3}, {}, 6);
        scene.mask.fill([](int, int, int) { return 0; });
        Lum32s positive = onEntry;
        EXPECT_REFUSED(lumStatusOk, scene.mask, scene.run(&positive, Value{}, spec.get()));
        EXPECT_EQ(0, positive);
    }
}

MEMBER_TEST(HaarApply, CountOnEntryOnlyChoosesTheWay) {
    using Value = typename TypeParam::Value;
    std::mt19937 engine(10);
    const auto arrays = randomHaar<Value>(engine, 3, window, HaarForm::upright);
    HaarSpec<Value> spec(arrays);
    for (Lum32s onEntry :
         {1, 7, 8, 9, 14, 15, 16, 60, 61, 0x7FFFFFFF, -1, std::numeric_limits<Lum32s>::min()}) {
        Scene<TypeParam> scene({20, 3}, {}, 6);
        const auto [mask, count] = expected(scene, arrays, Value{}, 0, false);
        Lum32s positive = onEntry;
        EXPECT_STATUS(lumStatusOk, scene.run(&positive, Value{}, spec.get()));
        EXPECT_EQ(mask, scene.mask.pixels());
        EXPECT_EQ(count, positive);
    }
}

MEMBER_TEST(HaarApply, TiltedStageReadsItsCornersFromThePlaceOfThePixel) {
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
    auto call = scene.call(&positive, Value{}, spec.get());
    call.src += 1;
    call.mask = mask.data();
    call.maskStep = 17;
    call.size = region;
    EXPECT_STATUS(lumStatusOk, applyHaar(call));
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

MEMBER_TEST(HaarApply, ChecksInTheirOrderAndNothingWritten) {
    using Value = typename TypeParam::Value;
    using Call = HaarCall<TypeParam>;
    std::mt19937 engine(9);
    HaarSpec<Value> spec(randomHaar<Value>(engine, 3, window, HaarForm::upright));
    Scene<TypeParam> scene({8, 3}, {}, 6);
    Lum32s positive = 24;
    const Value high = std::numeric_limits<Value>::max();
    const auto refused = [&](LumStatus status, auto spoil) {
        // The scale factor is wrong in every call.
        Call call = scene.call(&positive, high, spec.get(), 1);
        spoil(call);
        EXPECT_REFUSED(status, scene.mask, applyHaar(call));
    };

    expectNullsThenSizesRefused<TypeParam>(scene.call(&positive, high, spec.get(), 1), scene.mask,
                                           applyHaar<TypeParam>, false);
    struct Steps {
        LumStatus expected;
        int src;
        int norm;
        int mask;
        LumSize size{8, 3};
    };
    const int good = 32;
    std::vector<Steps> table;
    for (int bad : {31, 0, -32}) {
        table.push_back({lumStatusStepError, bad, 33, 8});
        table.push_back({lumStatusStepError, 33, bad, 8});
    }
    table.push_back({lumStatusStepError, 33, 33, 7});
    table.push_back({lumStatusStepError, 0x7FFFFFFC, 0x7FFFFFFC, 0x7FFFFFFF, {0x7FFFFFFF, 3}});
    for (int odd : {33, 34, 35}) {
        table.push_back({lumStatusStepAlignmentError, odd, good, 8});
        table.push_back({lumStatusStepAlignmentError, scene.src.step(), odd, 8});
    }
    for (const Steps& steps : table)
        refused(steps.expected, [&](Call& c) {
            c.srcStep = steps.src;
            c.normStep = steps.norm;
            c.maskStep = steps.mask;
            c.size = steps.size;
        });
    auto* scratch = spec.get()->scratch;
    spec.get()->scratch = nullptr;
    if (std::is_same_v<Value, Lum32s>) refused(lumStatusBadArgument, [](Call&) {});
    refused(lumStatusNullPointer, [](Call& c) { c.scaleFactor = 0; });
    Lum32s none = 0;
    EXPECT_REFUSED(lumStatusNullPointer, scene.mask, scene.run(&none, high, spec.get()));
    spec.get()->scratch = scratch;
    EXPECT_EQ(24, positive);
    EXPECT_STATUS(lumStatusOk, scene.run(&positive, high, spec.get()));
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
            Scene<HaarOfFloats> scene({width, 1}, {}, 1);
            GuardedImage<Lum32f> src(width + 32, 2);
            src.fill([](int x, int y, int) { return y == 0 ? 1e8F : x < 32 ? 1.0F : 3.0F; });
            scene.norm.fill([](int, int, int) { return 1; });
            for (float stageThreshold : {3.0F, 4.0F}) {
                fillMask(scene.mask, 1, 1);
                Lum32s positive = width;
                auto call = scene.call(&positive, stageThreshold, spec.get());
                call.src = src.data();
                call.srcStep = src.step();
                EXPECT_STATUS(lumStatusOk, applyHaar(call));
                EXPECT_EQ(stageThreshold == 3 ? width : 0, positive) << "at 0, not at 1";
            }
        }
}

TEST(ApplyHaarClassifier_32s32f, SumsWrapBeforeTheyAreConverted) {
    // A - B = 2^31 wraps to -2^31.
    Row<HaarOfIntegersAndFloats> row{{0, 0, -1, 0x7FFFFFFF}, {1}};
    EXPECT_EQ(0, row.staying(oneClassifier<Lum32f>(1, 0, 1, 2), 2));
}

TEST(ApplyHaarClassifier_32s32f, FirstWeightIsMultipliedWhateverItIs) {
    Row<HaarOfIntegersAndFloats> row{{0, 0, 0, 8}, {1}};
    EXPECT_EQ(0, row.staying(oneClassifier<Lum32f>(-1.75F, -10, 1, 2), 2)) << "-14 is below -10";
}

TEST(ApplyHaarClassifier_32s32f, NaNTakesAboveAndATotalOfNaNStays) {
    for (int width : {1, 4, 16, 32})
        for (float stageThreshold : {2.0F, notANumber}) {
            Row<HaarOfIntegersAndFloats> row{std::vector<Lum32s>(2 * 33),
                                             std::vector<float>(width, notANumber)};
            EXPECT_EQ(width, row.staying(oneClassifier<Lum32f>(1, 1, 1, 2), stageThreshold));
        }
}

TEST(ApplyHaarClassifier_32s, ScaleFactorAboveZeroIsRefusedAndZeroShiftsNothing) {
    Row<HaarOfIntegers> row{{0, 0, 0, 5}, {1}};
    const auto arrays = oneClassifier(1, 5, 1, 2);
    for (int scaleFactor : {1, 2, 0x7FFFFFFF})
        EXPECT_STATUS(lumStatusBadArgument, row.run(arrays, 2, scaleFactor));
    EXPECT_STATUS(lumStatusOk, row.run(arrays, 2, 0));
    EXPECT_EQ(1, row.positive) << "5 is not below 5";
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
    for (int width : {1, 16}) {
        Row<HaarOfIntegers> row{std::vector<Lum32s>(2 * 17), std::vector<Lum32s>(width)};
        EXPECT_EQ(0, row.staying(arrays, -1)) << "2 x (2^31 - 1) is -2";
    }
}

TEST(ApplyHaarClassifier_32f, TotalsAreSummedInTheOrderOfTheRecords) {
    // 1e8 + 1 - 1e8 is 0 in this order; the caller's order would give 1.
    HaarArrays<Lum32f> arrays;
    arrays.add({{0, 0, 1, 1}, {0, 0, 1, 1}, {0, 0, 1, 1}}, {2, 2, 2}, 0, 0, -1e8F);
    arrays.add({{0, 0, 1, 1}, {0, 0, 1, 1}}, {2, 2}, 0, 0, 1e8F);
    arrays.add({{0, 0, 1, 1}, {0, 0, 1, 1}}, {2, 2}, 0, 0, 1);
    for (int width : {1, 16}) {
        Row<HaarOfFloats> row{std::vector<float>(2 * 17), std::vector<float>(width)};
        EXPECT_EQ(0, row.staying(arrays, 0.5F));
    }
}

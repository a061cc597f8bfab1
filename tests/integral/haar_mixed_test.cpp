#include <limits>

#include "integral/haar_object.h"
#include "kernels/integral/haar.h"
#include "support/haar_stages.h"
#include "support/member_test.h"

using namespace support;

namespace {

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr LumSize window{8, 7};

MEMBER_TEST_SUITE(HaarMixed, HaarMembers);

/// The images of a call. The tilted image has two columns and rows more than its windows: those that make the base of
/// a tilted classifier one row below and one element to the right of a pixel's place.
template <class M> struct Scene {
    GuardedImage<typename M::Src> src;
    GuardedImage<typename M::Src> tilt;
    GuardedImage<typename M::Norm> norm;
    GuardedImage<Lum8u> mask;

    Scene(LumSize size, Placement placement, unsigned seed, int oneIn = 1)
        : src(size.width + window.width, size.height + window.height, forWords(placement)),
          tilt(size.width + window.width + 1, size.height + window.height + 1, forWords(placement)),
          norm(size.width, size.height, forWords(placement)),
          mask(size.width, size.height, placement) {
        src.fillRandom(seed);
        norm.fillRandom(seed + 1);
        tilt.fillRandom(seed + 2);
        fillMask(mask, seed + 3, oneIn);
    }
    HaarCall<M> call(Lum32s* positive, typename M::Value threshold, LumHaarClassifier* spec,
                     int scaleFactor = 0) {
        auto call = haarCall<M>(src, norm, mask, positive, threshold, spec, scaleFactor);
        call.tilt = tilt.data();
        call.tiltStep = tilt.step();
        return call;
    }
    LumStatus run(Lum32s* positive, typename M::Value threshold, LumHaarClassifier* spec,
                  int scaleFactor = 0) {
        return applyMixedHaar(call(positive, threshold, spec, scaleFactor));
    }
};

template <class M>
std::pair<std::vector<Lum8u>, int> expected(const Scene<M>& s,
                                            const std::vector<HaarWeak<typename M::Value>>& weaks,
                                            typename M::Value threshold, int scaleFactor) {
    return expectedMask(s.mask, [&](int x, int y) {
        const auto sum = [&](const auto& w, int k) {
            return w.tilted ? rectangleSum(s.tilt, x + 1, y + 1, w.reads[k])
                            : rectangleSum(s.src, x, y, w.reads[k]);
        };
        if constexpr (std::is_same_v<typename M::Norm, Lum32s>)
            return staysByIntegers(weaks, s.norm.at(x, y), threshold, -scaleFactor, sum);
        else
            return staysByFloats(
                weaks, s.norm.at(x, y), threshold, Unordered::isAbove,
                [&](const auto& w, int k) { return static_cast<float>(sum(w, k)) * w.weights[k]; });
    });
}

/// A stage whose classifiers fit as upright and as tilted ones, some of them tilted with the flag.
template <class M> void expectStated(LumSize size, Placement placement, unsigned seed, int maskOneIn) {
    using Value = typename M::Value;
    std::mt19937 engine(seed);
    auto arrays = randomHaar<Value>(engine, 5, window, HaarForm::tilted);
    if (seed % 2 == 0) arrays.weights[0] = static_cast<Value>(-1.25);
    HaarSpec<Value> spec(arrays);
    std::vector<Lum8u> tilted(5);
    for (auto& byte : tilted) byte = engine() % 2 ? 3 : 0;
    const auto tilt = std::is_same_v<Value, Lum32f> ? lumiTiltHaarFeatures_32f : lumiTiltHaarFeatures_32s;
    ASSERT_EQ(lumStatusOk, tilt(tilted.data(), 1, spec.get()));
    auto weaks = inCallersOrder(arrays, uprightReads);
    const auto asTilted = inCallersOrder(arrays, tiltedReads);
    for (std::size_t i = 0; i < weaks.size(); ++i)
        if (tilted[i]) {
            weaks[i].reads = asTilted[i].reads;
            weaks[i].tilted = true;
        }
    Scene<M> scene(size, placement, seed + 3, maskOneIn);
    const int scaleFactor = -static_cast<int>(seed % 3);
    const auto [mask, count] = expected(scene, regrouped(weaks), Value{}, scaleFactor);
    const auto before = spec.bytes();

    Lum32s positive = -77;
    ASSERT_EQ(lumStatusOk, scene.run(&positive, Value{}, spec.get(), scaleFactor));
    ASSERT_EQ(mask, scene.mask.pixels()) << "width " << size.width << ", seed " << seed;
    ASSERT_EQ(count, positive);
    ASSERT_TRUE(scene.mask.outsideUntouched());
    ASSERT_EQ(before, spec.bytes()) << "the object is only read";
}

/// One pixel through the 32f member, with the stage's threshold at 2: val1 is 1, val2 is 2.
bool takesAbove(const float (&src)[4], float norm, float weight, float threshold) {
    HaarArrays<Lum32f> arrays;
    arrays.add({{0, 0, 1, 1}}, {weight}, threshold, 1, 2);
    HaarSpec<Lum32f> spec(arrays);
    Lum8u mask = 1;
    Lum32s positive = 0;
    EXPECT_STATUS(lumStatusOk, applyMixedHaar<HaarOfFloats>({.src = src,
                                                             .srcStep = 8,
                                                             .tilt = src,
                                                             .tiltStep = 8,
                                                             .norm = &norm,
                                                             .normStep = 4,
                                                             .mask = &mask,
                                                             .maskStep = 1,
                                                             .size = {1, 1},
                                                             .positive = &positive,
                                                             .threshold = 2,
                                                             .spec = spec.get()}));
    EXPECT_EQ(mask, positive);
    return positive == 1;
}

} // namespace

TEST(ApplyMixedHaarClassifier_32f, FirstWeightIsAlwaysMultiplied) {
    EXPECT_FALSE(takesAbove({0, 0, 0, 8}, 1, -1.75F, -13)) << "-14 is below -13; -8 would not be";
    EXPECT_TRUE(takesAbove({0, 0, 0, 8}, 1, -1.75F, -14));
}

MEMBER_TEST(HaarMixed, GivesTheStatedMaskOnEveryWidth) {
    for (int oneIn : {1, 4, 15})
        for (int width = 1; width <= 40; ++width) {
            const auto seed = static_cast<unsigned>(100 * oneIn + width);
            expectStated<TypeParam>({width, 5}, {}, seed, oneIn);
            expectStated<TypeParam>({width, 2}, {.padding = 3, .offset = width % 17, .guard = Guard::before},
                                    seed + 1, oneIn);
        }
}

MEMBER_TEST(HaarMixed, RandomStagesOnLargerRegions) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    for (unsigned round = 0; round < 40; ++round)
        expectStated<TypeParam>({static_cast<int>(41 + (seed + 7 * round) % 90), 9},
                                {.padding = static_cast<int>(round % 3)}, seed + round,
                                1 + static_cast<int>(round % 20));
}

MEMBER_TEST(HaarMixed, ScalarKernelAgrees) {
    using Value = typename TypeParam::Value;
    using Rule = std::conditional_t<std::is_same_v<Value, Lum32s>, lum::kernels::HaarIntegers,
                                    lum::kernels::HaarUnorderedAbove>;
    std::mt19937 engine(11);
    HaarSpec<Value> spec(randomHaar<Value>(engine, 6, window, HaarForm::tilted));
    const Lum8u tilted[6] = {1, 0, 1, 0, 0, 1};
    lumiTiltHaarFeatures_32f(tilted, 1, spec.get());
    for (int width = 1; width <= 70; ++width) {
        Scene<TypeParam> vector({width, 3}, {}, static_cast<unsigned>(width), 1 + width % 7);
        Scene<TypeParam> scalar({width, 3}, {}, static_cast<unsigned>(width), 1 + width % 7);
        Lum32s positive = 0;
        ASSERT_EQ(lumStatusOk, vector.run(&positive, Value{}, spec.get()));
        const lum::kernels::HaarMixedStage<typename TypeParam::Src, Value> stage{
            {scalar.src.data(), scalar.src.step()},
            {scalar.tilt.data(), scalar.tilt.step()},
            spec.get()->classifierCount,
            spec.get()->classifiers};
        EXPECT_EQ(positive, lum::kernels::applyHaarScalar(Rule{}, stage,
                                                          {{scalar.norm.data(), scalar.norm.step()},
                                                           {scalar.mask.data(), scalar.mask.step()},
                                                           scalar.mask.size()},
                                                          Value{}));
        ASSERT_EQ(scalar.mask.pixels(), vector.mask.pixels()) << "width " << width;
    }
}

MEMBER_TEST(HaarMixed, StageOfTiltedInitReadsTiltInTheCallersOrder) {
    using Value = typename TypeParam::Value;
    std::mt19937 engine(31);
    const auto arrays = randomHaar<Value>(engine, 5, window, HaarForm::tilted);
    HaarSpec<Value> spec(arrays, HaarForm::tilted);
    auto weaks = inCallersOrder(arrays, tiltedReads);
    for (auto& weak : weaks) weak.tilted = true;
    Scene<TypeParam> scene({37, 4}, {}, 8);
    const auto [mask, count] = expected(scene, weaks, Value{}, 0);
    Lum32s positive = 0;
    EXPECT_STATUS(lumStatusOk, scene.run(&positive, Value{}, spec.get()));
    EXPECT_EQ(mask, scene.mask.pixels());
    EXPECT_EQ(count, positive);
}

MEMBER_TEST(HaarMixed, CountOnEntryIsNotRead) {
    using Value = typename TypeParam::Value;
    HaarArrays<Value> arrays;
    arrays.add({{0, 0, 1, 1}}, {1}, 0, 1, 1);
    HaarSpec<Value> spec(arrays);
    Scene<TypeParam> scene({20, 3}, {}, 6);
    Lum32s positive = 0;
    EXPECT_STATUS(lumStatusOk, scene.run(&positive, 1, spec.get()));
    EXPECT_EQ(60, positive);
}

MEMBER_TEST(HaarMixed, ScratchIsNotTested) {
    using Value = typename TypeParam::Value;
    HaarArrays<Value> arrays;
    arrays.add({{0, 0, 1, 1}}, {1}, 0, 1, 1);
    HaarSpec<Value> spec(arrays);
    spec.get()->scratch = nullptr;
    Scene<TypeParam> scene({20, 3}, {}, 6);
    Lum32s positive = 0;
    EXPECT_STATUS(lumStatusOk, scene.run(&positive, 1, spec.get()));
    EXPECT_EQ(60, positive);
}

MEMBER_TEST(HaarMixed, TotalOfNoClassifiersIsZero) {
    LumHaarClassifier none{};
    for (int oneIn : {1, 12}) {
        Scene<TypeParam> scene({37, 3}, {}, 6, oneIn);
        const auto [mask, count] = expectedMask(scene.mask, [](int, int) { return true; });
        Lum32s positive = 0;
        EXPECT_REFUSED(lumStatusOk, scene.mask, scene.run(&positive, 0, &none));
        EXPECT_EQ(count, positive);
        EXPECT_STATUS(lumStatusOk, scene.run(&positive, 1, &none));
        EXPECT_EQ(0, positive);
        EXPECT_EQ(std::vector<Lum8u>(mask.size(), 0), scene.mask.pixels());
    }
}

MEMBER_TEST(HaarMixed, ChecksInTheirOrderAndNothingWritten) {
    using Value = typename TypeParam::Value;
    using Call = HaarCall<TypeParam>;
    HaarArrays<Value> arrays;
    arrays.add({{0, 0, 1, 1}}, {1}, 0, 1, 1);
    HaarSpec<Value> spec(arrays);
    Scene<TypeParam> scene({8, 3}, {}, 6);
    Lum32s positive = 24;
    const Value high = std::numeric_limits<Value>::max();
    const auto refused = [&](LumStatus status, auto spoil) {
        // The scale factor is wrong in every call.
        Call call = scene.call(&positive, high, spec.get(), 1);
        spoil(call);
        EXPECT_REFUSED(status, scene.mask, applyMixedHaar(call));
    };

    expectNullsThenSizesRefused<TypeParam>(scene.call(&positive, high, spec.get(), 1), scene.mask,
                                           applyMixedHaar<TypeParam>, true);
    struct Steps {
        LumStatus expected;
        int src;
        int tilt;
        int norm;
        int mask;
        LumSize size{8, 3};
    };
    const int good = 36;
    const int largest = 0x7FFFFFFC;
    std::vector<Steps> table;
    for (int bad : {31, 0, -32}) {
        table.push_back({lumStatusStepError, bad, 33, 33, 8});
        table.push_back({lumStatusStepError, 33, bad, 33, 8});
        table.push_back({lumStatusStepError, 33, 33, bad, 8});
    }
    table.push_back({lumStatusStepError, 33, 33, 33, 7});
    // 4 bytes of each of 2^31 - 1 pixels are more than any step.
    table.push_back({lumStatusStepError, largest, largest, largest, 0x7FFFFFFF, {0x7FFFFFFF, 3}});
    for (int odd : {33, 34, 35}) {
        table.push_back({lumStatusStepAlignmentError, odd, good, good, 8});
        table.push_back({lumStatusStepAlignmentError, good, odd, good, 8});
        table.push_back({lumStatusStepAlignmentError, good, good, odd, 8});
    }
    for (const Steps& steps : table)
        refused(steps.expected, [&](Call& c) {
            c.srcStep = steps.src;
            c.tiltStep = steps.tilt;
            c.normStep = steps.norm;
            c.maskStep = steps.mask;
            c.size = steps.size;
        });
    if (std::is_same_v<Value, Lum32s>) refused(lumStatusBadArgument, [](Call&) {});
    EXPECT_EQ(24, positive);
}

TEST(ApplyMixedHaarClassifier_32f, NaNInNormTakesAbove) {
    EXPECT_TRUE(takesAbove({0, 0, 0, 0}, notANumber, 1, 1));
    EXPECT_FALSE(takesAbove({0, 0, 0, 0}, 1, 1, 1));
    EXPECT_TRUE(takesAbove({0, 0, 0, notANumber}, 1, 1, 1));
}

TEST(ApplyMixedHaarClassifier_32f, TotalThatIsNaNKeepsThePixel) {
    HaarArrays<Lum32f> arrays;
    arrays.add({{0, 0, 1, 1}}, {1}, 0, notANumber, notANumber);
    HaarSpec<Lum32f> spec(arrays);
    for (int width : {1, 4, 16, 32}) {
        Scene<HaarOfFloats> scene({width, 1}, {}, 1);
        scene.src.fill([](int, int, int) { return 0; });
        scene.tilt.fill([](int, int, int) { return 0; });
        scene.norm.fill([](int, int, int) { return 0; });
        Lum32s positive = 0;
        EXPECT_STATUS(lumStatusOk, scene.run(&positive, 1e30F, spec.get()));
        EXPECT_EQ(width, positive);
    }
}

#include <limits>

#include "integral/haar_object.h"
#include "kernels/integral/haar.h"
#include "support/haar_stages.h"

using namespace support;

namespace {

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr LumSize window{8, 7};

LumStatus apply(const Lum32f* src, int srcStep, const Lum32f* tilt, int tiltStep, const Lum32f* norm,
                int normStep, Lum8u* mask, int maskStep, LumSize size, Lum32s* positive, Lum32f threshold,
                const LumHaarClassifier* spec, int) {
    return lumiApplyMixedHaarClassifier_32f_C1R(src, srcStep, tilt, tiltStep, norm, normStep, mask, maskStep,
                                                size, positive, threshold, spec);
}
LumStatus apply(const Lum32s* src, int srcStep, const Lum32s* tilt, int tiltStep, const Lum32f* norm,
                int normStep, Lum8u* mask, int maskStep, LumSize size, Lum32s* positive, Lum32f threshold,
                const LumHaarClassifier* spec, int) {
    return lumiApplyMixedHaarClassifier_32s32f_C1R(src, srcStep, tilt, tiltStep, norm, normStep, mask,
                                                   maskStep, size, positive, threshold, spec);
}
LumStatus apply(const Lum32s* src, int srcStep, const Lum32s* tilt, int tiltStep, const Lum32s* norm,
                int normStep, Lum8u* mask, int maskStep, LumSize size, Lum32s* positive, Lum32s threshold,
                const LumHaarClassifier* spec, int scaleFactor) {
    return lumiApplyMixedHaarClassifier_32s_C1RSfs(src, srcStep, tilt, tiltStep, norm, normStep, mask,
                                                   maskStep, size, positive, threshold, spec, scaleFactor);
}

template <class T> class HaarMixed : public testing::Test {};
TYPED_TEST_SUITE(HaarMixed, HaarMembers);

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
    LumStatus call(Lum32s* positive, typename M::Value threshold, const LumHaarClassifier* spec,
                   int scaleFactor) {
        return apply(src.data(), src.step(), tilt.data(), tilt.step(), norm.data(), norm.step(), mask.data(),
                     mask.step(), mask.size(), positive, threshold, spec, scaleFactor);
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
    ASSERT_EQ(lumStatusOk, scene.call(&positive, Value{}, spec.get(), scaleFactor));
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
    EXPECT_STATUS(lumStatusOk, lumiApplyMixedHaarClassifier_32f_C1R(src, 8, src, 8, &norm, 4, &mask, 1,
                                                                    {1, 1}, &positive, 2, spec.get()));
    EXPECT_EQ(mask, positive);
    return positive == 1;
}

} // namespace

TEST(ApplyMixedHaarClassifier_32f, FirstWeightIsAlwaysMultiplied) {
    EXPECT_FALSE(takesAbove({0, 0, 0, 8}, 1, -1.75F, -13)) << "-14 is below -13; -8 would not be";
    EXPECT_TRUE(takesAbove({0, 0, 0, 8}, 1, -1.75F, -14));
}

TYPED_TEST(HaarMixed, GivesTheStatedMaskOnEveryWidth) {
    for (int oneIn : {1, 4, 15})
        for (int width = 1; width <= 40; ++width) {
            const auto seed = static_cast<unsigned>(100 * oneIn + width);
            expectStated<TypeParam>({width, 5}, {}, seed, oneIn);
            expectStated<TypeParam>({width, 2}, {.padding = 3, .offset = width % 17, .guard = Guard::before},
                                    seed + 1, oneIn);
        }
}

TYPED_TEST(HaarMixed, RandomStagesOnLargerRegions) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    for (unsigned round = 0; round < 40; ++round)
        expectStated<TypeParam>({static_cast<int>(41 + (seed + 7 * round) % 90), 9},
                                {.padding = static_cast<int>(round % 3)}, seed + round,
                                1 + static_cast<int>(round % 20));
}

TYPED_TEST(HaarMixed, ScalarKernelAgrees) {
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
        ASSERT_EQ(lumStatusOk, vector.call(&positive, Value{}, spec.get(), 0));
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

TYPED_TEST(HaarMixed, StageOfTiltedInitReadsTiltInTheCallersOrder) {
    using Value = typename TypeParam::Value;
    std::mt19937 engine(31);
    const auto arrays = randomHaar<Value>(engine, 5, window, HaarForm::tilted);
    HaarSpec<Value> spec(arrays, HaarForm::tilted);
    auto weaks = inCallersOrder(arrays, tiltedReads);
    for (auto& weak : weaks) weak.tilted = true;
    Scene<TypeParam> scene({37, 4}, {}, 8);
    const auto [mask, count] = expected(scene, weaks, Value{}, 0);
    Lum32s positive = 0;
    EXPECT_STATUS(lumStatusOk, scene.call(&positive, Value{}, spec.get(), 0));
    EXPECT_EQ(mask, scene.mask.pixels());
    EXPECT_EQ(count, positive);
}

TYPED_TEST(HaarMixed, CountOnEntryIsNotRead) {
    using Value = typename TypeParam::Value;
    HaarArrays<Value> arrays;
    arrays.add({{0, 0, 1, 1}}, {1}, 0, 1, 1);
    HaarSpec<Value> spec(arrays);
    Scene<TypeParam> scene({20, 3}, {}, 6);
    Lum32s positive = 0;
    EXPECT_STATUS(lumStatusOk, scene.call(&positive, 1, spec.get(), 0));
    EXPECT_EQ(60, positive);
}

TYPED_TEST(HaarMixed, ScratchIsNotTested) {
    using Value = typename TypeParam::Value;
    HaarArrays<Value> arrays;
    arrays.add({{0, 0, 1, 1}}, {1}, 0, 1, 1);
    HaarSpec<Value> spec(arrays);
    spec.get()->scratch = nullptr;
    Scene<TypeParam> scene({20, 3}, {}, 6);
    Lum32s positive = 0;
    EXPECT_STATUS(lumStatusOk, scene.call(&positive, 1, spec.get(), 0));
    EXPECT_EQ(60, positive);
}

TYPED_TEST(HaarMixed, TotalOfNoClassifiersIsZero) {
    const LumHaarClassifier none{};
    for (int oneIn : {1, 12}) {
        Scene<TypeParam> scene({37, 3}, {}, 6, oneIn);
        const auto [mask, count] = expectedMask(scene.mask, [](int, int) { return true; });
        Lum32s positive = 0;
        EXPECT_REFUSED(lumStatusOk, scene.mask, scene.call(&positive, 0, &none, 0));
        EXPECT_EQ(count, positive);
        EXPECT_STATUS(lumStatusOk, scene.call(&positive, 1, &none, 0));
        EXPECT_EQ(0, positive);
        EXPECT_EQ(std::vector<Lum8u>(mask.size(), 0), scene.mask.pixels());
    }
}

TYPED_TEST(HaarMixed, ChecksInTheirOrderAndNothingWritten) {
    using Value = typename TypeParam::Value;
    using Norm = typename TypeParam::Norm;
    using Src = typename TypeParam::Src;
    HaarArrays<Value> arrays;
    arrays.add({{0, 0, 1, 1}}, {1}, 0, 1, 1);
    HaarSpec<Value> spec(arrays);
    Scene<TypeParam> scene({8, 3}, {}, 6);
    Lum32s positive = 24;
    const Src* src = scene.src.data();
    const Src* tilt = scene.tilt.data();
    const Norm* norm = scene.norm.data();
    Lum8u* mask = scene.mask.data();
    const Src* noSrc = nullptr;
    const Norm* noNorm = nullptr;
    const int good = 36;
    const Value high = std::numeric_limits<Value>::max();
    const auto* object = spec.get();

    for (LumSize size : {LumSize{8, 3}, LumSize{0, 0}}) {
        EXPECT_REFUSED(lumStatusNullPointer, scene.mask,
                       apply(noSrc, 1, tilt, 1, norm, 1, mask, 1, size, &positive, high, object, 1));
        EXPECT_REFUSED(lumStatusNullPointer, scene.mask,
                       apply(src, 1, noSrc, 1, norm, 1, mask, 1, size, &positive, high, object, 1));
        EXPECT_REFUSED(lumStatusNullPointer, scene.mask,
                       apply(src, 1, tilt, 1, noNorm, 1, mask, 1, size, &positive, high, object, 1));
        EXPECT_REFUSED(lumStatusNullPointer, scene.mask,
                       apply(src, 1, tilt, 1, norm, 1, nullptr, 1, size, &positive, high, object, 1));
        EXPECT_REFUSED(lumStatusNullPointer, scene.mask,
                       apply(src, 1, tilt, 1, norm, 1, mask, 1, size, nullptr, high, object, 1));
        EXPECT_REFUSED(lumStatusNullPointer, scene.mask,
                       apply(src, 1, tilt, 1, norm, 1, mask, 1, size, &positive, high, nullptr, 1));
    }
    for (LumSize size : {LumSize{0, 3}, LumSize{8, 0}, LumSize{-8, 3}, LumSize{8, -3}})
        EXPECT_REFUSED(lumStatusSizeError, scene.mask,
                       apply(src, 1, tilt, 1, norm, 1, mask, 1, size, &positive, high, object, 1));
    const LumSize size{8, 3};
    for (int bad : {31, 0, -32}) {
        EXPECT_REFUSED(lumStatusStepError, scene.mask,
                       apply(src, bad, tilt, 33, norm, 33, mask, 8, size, &positive, high, object, 1));
        EXPECT_REFUSED(lumStatusStepError, scene.mask,
                       apply(src, 33, tilt, bad, norm, 33, mask, 8, size, &positive, high, object, 1));
        EXPECT_REFUSED(lumStatusStepError, scene.mask,
                       apply(src, 33, tilt, 33, norm, bad, mask, 8, size, &positive, high, object, 1));
    }
    EXPECT_REFUSED(lumStatusStepError, scene.mask,
                   apply(src, 33, tilt, 33, norm, 33, mask, 7, size, &positive, high, object, 1));
    // 4 bytes of each of 2^31 - 1 pixels are more than any step.
    EXPECT_REFUSED(lumStatusStepError, scene.mask,
                   apply(src, 0x7FFFFFFC, tilt, 0x7FFFFFFC, norm, 0x7FFFFFFC, mask, 0x7FFFFFFF,
                         {0x7FFFFFFF, 3}, &positive, high, object, 1));
    for (int odd : {33, 34, 35}) {
        EXPECT_REFUSED(lumStatusStepAlignmentError, scene.mask,
                       apply(src, odd, tilt, good, norm, good, mask, 8, size, &positive, high, object, 1));
        EXPECT_REFUSED(lumStatusStepAlignmentError, scene.mask,
                       apply(src, good, tilt, odd, norm, good, mask, 8, size, &positive, high, object, 1));
        EXPECT_REFUSED(lumStatusStepAlignmentError, scene.mask,
                       apply(src, good, tilt, good, norm, odd, mask, 8, size, &positive, high, object, 1));
    }
    if (std::is_same_v<Value, Lum32s>) {
        EXPECT_REFUSED(lumStatusBadArgument, scene.mask, scene.call(&positive, high, object, 1));
    }
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
    const std::vector<float> zeros(2 * 33, 0);
    for (int width : {1, 4, 16, 32}) {
        std::vector<Lum8u> mask(width, 5);
        Lum32s positive = 0;
        EXPECT_STATUS(lumStatusOk, lumiApplyMixedHaarClassifier_32f_C1R(
                                       zeros.data(), 132, zeros.data(), 132, zeros.data(), 132, mask.data(),
                                       width, {width, 1}, &positive, 1e30F, spec.get()));
        EXPECT_EQ(width, positive);
    }
}

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

#include "integral/haar_object.h"
#include "support/haar_stages.h"
#include "support/member_test.h"

using namespace support;

namespace {

constexpr bool pointersHave32Bits = sizeof(void*) == 4;

/// A stage of classifiers with a number of rectangles each; classifier i has the threshold i.
template <class Value = Lum32f>
HaarArrays<Value> stageOf(const std::vector<int>& counts, Value firstWeight = -1) {
    HaarArrays<Value> arrays;
    for (std::size_t i = 0; i < counts.size(); ++i) {
        std::vector<LumRect> rects;
        std::vector<Value> weights;
        for (int k = 0; k < counts[i]; ++k) {
            rects.push_back({static_cast<int>(i) + k, k, 2, 1 + k});
            weights.push_back(k == 0 ? firstWeight : static_cast<Value>(k + 1));
        }
        const auto value = static_cast<Value>(i);
        arrays.add(rects, weights, value, value + 100, value + 200);
    }
    return arrays;
}

template <class Value> std::vector<int> countsHeld(HaarSpec<Value>& spec) {
    std::vector<int> counts;
    for (int i = 0; i < spec.get()->classifierCount; ++i) counts.push_back(spec.get()->classifiers[i].count);
    return counts;
}

/// One of the four functions that build an object.
template <class Element, auto function> struct HaarInitOf {
    using Value = Element;
    static constexpr auto init = function;
};
using HaarInits = testing::Types<HaarInitOf<Lum32f, &lumiHaarClassifierInit_32f>,
                                 HaarInitOf<Lum32s, &lumiHaarClassifierInit_32s>,
                                 HaarInitOf<Lum32f, &lumiTiltedHaarClassifierInit_32f>,
                                 HaarInitOf<Lum32s, &lumiTiltedHaarClassifierInit_32s>>;

LumStatus initWithRect(HaarForm form, LumRect rect) {
    HaarArrays<Lum32f> arrays;
    arrays.add({{0, 0, 1, 1}, rect}, {-1, 2}, 0, 0, 0);
    GuardedBlock block(queriedHaarSize(arrays));
    return initHaar(form, block.as<LumHaarClassifier>(), arrays);
}

int firstWeightFlag(std::vector<Lum32f> firstWeights, HaarForm form = HaarForm::upright) {
    HaarArrays<Lum32f> arrays;
    for (float weight : firstWeights) arrays.add({{0, 0, 1, 1}, {0, 0, 1, 1}}, {weight, 5}, 0, 0, 0);
    return HaarSpec<Lum32f>(arrays, form).get()->firstWeightMinusOne;
}

} // namespace

TEST(HaarClassifierGetSize, IsTheFormulaOfClassifiersAndRectangles) {
    const Lum32s num[3] = {3, 2, 7};
    const int n = 12, l = 3;
    Lum32s integers = 0, floats = 0;
    EXPECT_STATUS(lumStatusOk, lumiHaarClassifierGetSize(lumType32s, {640, 480}, num, l, &integers));
    EXPECT_STATUS(lumStatusOk, lumiHaarClassifierGetSize(lumType32f, {640, 480}, num, l, &floats));
    const int object = l * sizeof(lum::kernels::HaarClassifierRecord) + 36 * n + sizeof(LumHaarClassifier);
    EXPECT_EQ(object + 4 * sizeof(void*) * n + 64, integers);
    EXPECT_EQ(object + 12 * l + (4 * sizeof(void*) + 8) * n + 384 + 64, floats);
    if (pointersHave32Bits) {
        EXPECT_EQ(24 * l + 36 * n + 52 + 16 * n + 64, integers);
        EXPECT_EQ(24 * l + 36 * n + 52 + (12 * l + 16 * n + 4 * n + 4 * n + 384) + 64, floats);
    }
}

TEST(HaarClassifierGetSize, RegionHasNoEffect) {
    const Lum32s num[1] = {2};
    Lum32s small = 0, large = 0;
    EXPECT_STATUS(lumStatusOk, lumiHaarClassifierGetSize(lumType32f, {1, 1}, num, 1, &small));
    EXPECT_STATUS(lumStatusOk,
                  lumiHaarClassifierGetSize(lumType32f, {0x7FFFFFFF, 0x7FFFFFFF}, num, 1, &large));
    EXPECT_EQ(small, large);
}

TEST(HaarClassifierGetSize, NullPointersThenSizesThenTypeAndNothingWritten) {
    const Lum32s num[2] = {2, 0};
    Lum32s size = 77;
    EXPECT_STATUS(lumStatusNullPointer, lumiHaarClassifierGetSize(lumType8u, {0, 0}, nullptr, 0, &size));
    EXPECT_STATUS(lumStatusNullPointer, lumiHaarClassifierGetSize(lumType8u, {0, 0}, num, 0, nullptr));
    for (int length : {0, -1})
        EXPECT_STATUS(lumStatusSizeError, lumiHaarClassifierGetSize(lumType8u, {1, 1}, num, length, &size));
    for (LumSize region : {LumSize{0, 1}, LumSize{1, 0}, LumSize{-1, 1}, LumSize{1, -1}})
        EXPECT_STATUS(lumStatusSizeError, lumiHaarClassifierGetSize(lumType8u, region, num, 1, &size));
    EXPECT_STATUS(lumStatusSizeError, lumiHaarClassifierGetSize(lumType8u, {1, 1}, num, 2, &size));
    for (LumDataType type : {LumDataType{lumType8u}, LumDataType{lumType64f}, 12, 0, -1})
        EXPECT_STATUS(lumStatusDataTypeError, lumiHaarClassifierGetSize(type, {1, 1}, num, 1, &size));
    EXPECT_EQ(77, size);
}

MEMBER_TEST_SUITE(HaarInit, HaarInits);

MEMBER_TEST(HaarInit, NullPointersThenLengthThenCountsAndNothingWritten) {
    using Value = typename TypeParam::Value;
    const auto arrays = stageOf<Value>({4, 3, 2});
    GuardedBlock block(queriedHaarSize(arrays));
    const std::vector<Lum8u> before(block.as(), block.as() + block.size());
    constexpr int nothing = -1;
    for (int missing : {nothing, 0, 1, 2, 3, 4, 5, 6})
        for (int length : {3, 0, -3})
            for (int refusedCount : {nothing, 0, 1, 2})
                for (Lum32s count : {0, -1}) {
                    if (missing == nothing && length > 0 && refusedCount == nothing) continue;
                    std::vector<Lum32s> num = arrays.num;
                    if (refusedCount != nothing) num[static_cast<std::size_t>(refusedCount)] = count;
                    const auto given = [&](int index, auto* pointer) {
                        return index == missing ? nullptr : pointer;
                    };
                    const auto status = TypeParam::init(
                        given(0, block.template as<LumHaarClassifier>()), given(1, arrays.rects.data()),
                        given(2, arrays.weights.data()), given(3, arrays.thresholds.data()),
                        given(4, arrays.below.data()), given(5, arrays.above.data()),
                        given(6, std::as_const(num).data()), length);
                    if (missing != nothing)
                        EXPECT_STATUS(lumStatusNullPointer, status) << "without pointer " << missing;
                    else
                        EXPECT_STATUS(lumStatusSizeError, status) << length << ", count " << refusedCount;
                    ASSERT_EQ(before, std::vector<Lum8u>(block.as(), block.as() + block.size()));
                }
}

TEST(HaarClassifierInit, CountsThreeTwoFourTwoAreHeldAsTwoTwoThreeFour) {
    HaarSpec<Lum32f> spec(stageOf({3, 2, 4, 2}));
    EXPECT_EQ((std::vector<int>{2, 2, 3, 4}), countsHeld(spec));
    const std::vector<int> origins = {1, 3, 0, 2};
    for (int i = 0; i < 4; ++i) {
        const auto& record = spec.get()->classifiers[i];
        EXPECT_EQ(origins[i] << 8, record.origin);
        EXPECT_EQ(static_cast<float>(origins[i]), record.threshold.real);
        EXPECT_EQ(static_cast<float>(origins[i] + 100), record.below.real);
        EXPECT_EQ(static_cast<float>(origins[i] + 200), record.above.real);
        EXPECT_EQ(origins[i], record.features[0].dx) << "features go with their classifier";
    }
    EXPECT_EQ(2, spec.get()->pairCount);
    EXPECT_EQ(3, spec.get()->pairAndTripleCount);
}

TEST(HaarClassifierInit, OfOneAndManyRectanglesComeLastInTheCallersOrder) {
    HaarSpec<Lum32s> spec(stageOf<Lum32s>({1, 3, 5, 2, 1, 3}));
    EXPECT_EQ((std::vector<int>{2, 3, 3, 1, 5, 1}), countsHeld(spec));
    EXPECT_EQ(1, spec.get()->pairCount);
    EXPECT_EQ(3, spec.get()->pairAndTripleCount);
    EXPECT_EQ(0 << 8, spec.get()->classifiers[3].origin);
    EXPECT_EQ(2, spec.get()->classifiers[4].threshold.integer);
}

TEST(HaarClassifierInit, FeaturesLieAfterTheRecordsInTheirOrder) {
    HaarSpec<Lum32f> spec(stageOf({3, 2, 4, 2}));
    const LumHaarClassifier& object = *spec.get();
    EXPECT_EQ(reinterpret_cast<const Lum8u*>(spec.get() + 1),
              reinterpret_cast<const Lum8u*>(object.classifiers));
    const auto* next = reinterpret_cast<const lum::kernels::HaarFeature*>(object.classifiers + 4);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(next, object.classifiers[i].features);
        next += object.classifiers[i].count;
    }
    const auto end = reinterpret_cast<std::uintptr_t>(next);
    EXPECT_EQ((end + 63) / 64 * 64, reinterpret_cast<std::uintptr_t>(object.scratch));
}

TEST(HaarClassifierInit, HeaderHoldsCountsExtentAndFlags) {
    HaarArrays<Lum32f> arrays;
    arrays.add({{4, 7, 3, 2}, {6, 5, 10, 1}}, {-1, 2}, 0.5F, 1, 2);
    arrays.add({{9, 8, 2, 20}}, {-1}, 0.5F, 1, 2);
    for (HaarForm form : {HaarForm::upright, HaarForm::tilted}) {
        if (form == HaarForm::tilted) arrays.rects[2] = {9, 8, 2, 10};
        HaarSpec<Lum32f> spec(arrays, form);
        EXPECT_EQ(2, spec.get()->classifierCount);
        EXPECT_EQ(3, spec.get()->featureCount);
        EXPECT_EQ(3, spec.get()->sortedFeatureCount);
        EXPECT_EQ(4, spec.get()->minX);
        EXPECT_EQ(5, spec.get()->minY);
        EXPECT_EQ(16 - 4, spec.get()->rangeX);
        EXPECT_EQ((form == HaarForm::tilted ? 18 : 28) - 5, spec.get()->rangeY);
        EXPECT_EQ(form == HaarForm::tilted ? 1 : 0, spec.get()->tilted);
        EXPECT_EQ(1, spec.get()->firstWeightMinusOne);
    }
}

#if UINTPTR_MAX == 0xFFFFFFFFU
TEST(HaarClassifierInit, ObjectOf32BitsIsHeaderThenRecordsThenFeatures) {
    HaarArrays<Lum32s> arrays;
    arrays.add({{1, 2, 3, 4}}, {-7}, 11, 12, 13);
    HaarSpec<Lum32s> spec(arrays);
    std::vector<Lum32s> words(13 + 6 + 9);
    std::memcpy(words.data(), spec.get(), words.size() * 4);
    const auto address = [&](int word) {
        return static_cast<Lum32s>(reinterpret_cast<std::uintptr_t>(spec.get())) + 4 * word;
    };
    const Lum32s scratch = static_cast<Lum32s>((static_cast<unsigned>(address(28)) + 63U) & ~63U);
    EXPECT_EQ((std::vector<Lum32s>{1, 1,           address(13), 1,  2,  3, 4, 0, 0, 0, 1, 0, scratch, //
                                   1, address(19), 11,          12, 13, 0,                            //
                                   4, 6,           1,           6,  4,  2, 1, 2, -7}),
              words);
}
#endif

TEST(HaarClassifierInit, FirstWeightsThatTruncateToMinusOneSetTheFlag) {
    EXPECT_EQ(1, firstWeightFlag({-1}));
    EXPECT_EQ(1, firstWeightFlag({-1, -1.5F, std::nextafter(-2.0F, 0.0F)}));
    EXPECT_EQ(1, firstWeightFlag({-1, -1}, HaarForm::tilted));
    EXPECT_EQ(0, firstWeightFlag({-1, -2, -1}));
    EXPECT_EQ(0, firstWeightFlag({-1, -1, std::nextafter(-1.0F, 0.0F)}));
    EXPECT_EQ(0, firstWeightFlag({1}));
    EXPECT_EQ(0, firstWeightFlag({-1, 3}, HaarForm::tilted));
    for (float odd :
         {std::numeric_limits<float>::quiet_NaN(), -std::numeric_limits<float>::infinity(), -4294967297.0F})
        EXPECT_EQ(0, firstWeightFlag({odd}));
    EXPECT_EQ(0, HaarSpec<Lum32s>(stageOf<Lum32s>({2, 2}, -1)).get()->firstWeightMinusOne);
}

TEST(HaarClassifierInit, RectangleOutsideOrEmptyIsBadArgument) {
    for (HaarForm form : {HaarForm::upright, HaarForm::tilted}) {
        EXPECT_STATUS(lumStatusOk, initWithRect(form, {0, 0, 1, 1}));
        for (LumRect rect : {LumRect{-1, 0, 1, 1}, LumRect{0, -1, 1, 1}, LumRect{0, 0, 0, 1},
                             LumRect{0, 0, 1, 0}, LumRect{5, 0, -1, 1}, LumRect{5, 0, 1, -1}})
            EXPECT_STATUS(lumStatusBadArgument, initWithRect(form, rect));
    }
    EXPECT_STATUS(lumStatusOk, initWithRect(HaarForm::upright, {2, 0, 1, 4}));
}

TEST(HaarClassifierInit, RectangleCheckThatFailsLeavesWhatCameBefore) {
    HaarArrays<Lum32f> arrays;
    arrays.add({{0, 0, 1, 1}, {0, 0, 1, 1}, {0, 0, 1, 1}}, {-1, 2, 3}, 30, 0, 0);
    arrays.add({{0, 0, 2, 2}, {0, 0, 0, 1}}, {-1, 2}, 20, 0, 0);
    arrays.add({{0, 0, 3, 3}, {0, 0, 1, 1}}, {-1, 2}, 21, 0, 0);
    GuardedBlock block(queriedHaarSize(arrays));
    auto* spec = block.as<LumHaarClassifier>();
    EXPECT_STATUS(lumStatusBadArgument, initHaar(HaarForm::upright, spec, arrays));
    const auto* records = reinterpret_cast<const lum::kernels::HaarClassifierRecord*>(spec + 1);
    EXPECT_EQ(20, records[0].threshold.real);
    Lum8u untouched[sizeof(*records)];
    std::memset(untouched, 0xA5, sizeof untouched);
    EXPECT_EQ(0, std::memcmp(untouched, records + 1, sizeof untouched)) << "returns at once";
}

TEST(HaarClassifierInit, PartlyBuiltObjectHasNoClassifiersAndNoTables) {
    HaarArrays<Lum32f> arrays;
    arrays.add({{0, 0, 1, 1}, {0, 0, 0, 1}}, {-1, 2}, 0, 0, 0);
    for (HaarForm form : {HaarForm::upright, HaarForm::tilted}) {
        GuardedBlock block(queriedHaarSize(arrays));
        auto* spec = block.as<LumHaarClassifier>();
        EXPECT_STATUS(lumStatusBadArgument, initHaar(form, spec, arrays));
        EXPECT_EQ(0, spec->classifierCount);
        EXPECT_EQ(nullptr, spec->scratch);
    }
}

TEST(HaarClassifierInit, ExtentAndWindowAreThoseOfAllRectangles) {
    for (std::size_t largest = 0; largest < 4; ++largest) {
        std::vector<LumRect> rects(4, LumRect{4, 5, 2, 2});
        rects[largest] = {1, 2, 10, 30};
        HaarArrays<Lum32f> arrays;
        arrays.add(rects, {-1, 1, 1, 1}, 0, 0, 0);
        HaarSpec<Lum32f> spec(arrays);
        EXPECT_EQ(1, spec.get()->minX);
        EXPECT_EQ(2, spec.get()->minY);
        EXPECT_EQ(10, spec.get()->rangeX);
        EXPECT_EQ(30, spec.get()->rangeY);
        LumSize size{-1, -1};
        EXPECT_STATUS(lumStatusOk, lumiGetHaarClassifierSize_32f(spec.get(), &size));
        EXPECT_EQ(11, size.width) << "rectangle " << largest;
        EXPECT_EQ(32, size.height) << "rectangle " << largest;
    }
}

TEST(TiltedHaarClassifierInit, HeightMayBeOneAboveX) {
    EXPECT_STATUS(lumStatusBadArgument, initWithRect(HaarForm::tilted, {2, 0, 1, 4}));
    EXPECT_STATUS(lumStatusOk, initWithRect(HaarForm::tilted, {2, 0, 1, 3}));
    EXPECT_STATUS(lumStatusOk, initWithRect(HaarForm::tilted, {0x7FFFFFFF, 0, 1, 3}));
}

TEST(TiltedHaarClassifierInit, KeepsTheCallersOrderAndMarksEveryRecord) {
    HaarArrays<Lum32f> arrays;
    for (int i = 0; i < 4; ++i) {
        const int count = std::vector<int>{3, 2, 4, 2}[i];
        arrays.add(std::vector<LumRect>(count, {5, i, 2, 3}), std::vector<Lum32f>(count, -1), 0, 0, 0);
    }
    HaarSpec<Lum32f> spec(arrays, HaarForm::tilted);
    EXPECT_EQ((std::vector<int>{3, 2, 4, 2}), countsHeld(spec));
    EXPECT_EQ(0, spec.get()->pairCount);
    EXPECT_EQ(0, spec.get()->pairAndTripleCount);
    EXPECT_EQ(11, spec.get()->sortedFeatureCount);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(i << 8 | 1, spec.get()->classifiers[i].origin);
}

TEST(TiltedHaarClassifierInit, CornersAreThoseOfTheTiltedRectangle) {
    HaarArrays<Lum32s> arrays;
    arrays.add({{10, 20, 3, 5}}, {2}, 0, 0, 0);
    HaarSpec<Lum32s> spec(arrays, HaarForm::tilted);
    const auto& f = spec.get()->classifiers[0].features[0];
    EXPECT_EQ((std::vector<int>{8, 28, 5, 25, 13, 23, 10, 20, 2}),
              (std::vector<int>{f.ax, f.ay, f.bx, f.by, f.cx, f.cy, f.dx, f.dy, f.weight.integer}));
}

TEST(GetHaarClassifierSize, IsTheLargestCxAndTheLargestAy) {
    HaarArrays<Lum32f> arrays;
    arrays.add({{2, 2, 10, 3}}, {-1}, 0, 0, 0);
    arrays.add({{4, 6, 2, 30}}, {-1}, 0, 0, 0);
    LumSize size{-1, -1};
    EXPECT_STATUS(lumStatusOk, lumiGetHaarClassifierSize_32f(HaarSpec<Lum32f>(arrays).get(), &size));
    EXPECT_EQ(12, size.width);
    EXPECT_EQ(36, size.height);
    arrays.rects[1] = {4, 6, 2, 5};
    EXPECT_STATUS(lumStatusOk,
                  lumiGetHaarClassifierSize_32s(HaarSpec<Lum32f>(arrays, HaarForm::tilted).get(), &size));
    EXPECT_EQ(12, size.width);
    EXPECT_EQ(15, size.height) << "2 + 10 + 3";
}

TEST(GetHaarClassifierSize, OfNoClassifiersIsZero) {
    LumHaarClassifier empty{};
    LumSize size{-1, -1};
    EXPECT_STATUS(lumStatusOk, lumiGetHaarClassifierSize_32s(&empty, &size));
    EXPECT_EQ(0, size.width);
    EXPECT_EQ(0, size.height);
}

TEST(GetHaarClassifierSize, NullPointers) {
    LumHaarClassifier empty{};
    LumSize size{-1, -1};
    EXPECT_STATUS(lumStatusNullPointer, lumiGetHaarClassifierSize_32f(nullptr, &size));
    EXPECT_STATUS(lumStatusNullPointer, lumiGetHaarClassifierSize_32f(&empty, nullptr));
    EXPECT_EQ(-1, size.width);
}

TEST(TiltHaarFeatures, MaskIsInTheCallersOrder) {
    HaarSpec<Lum32f> spec(stageOf({3, 2, 4, 2}));
    const Lum8u mask[4] = {0, 7, 1, 0};
    EXPECT_STATUS(lumStatusOk, lumiTiltHaarFeatures_32f(mask, 1, spec.get()));
    EXPECT_EQ(1, spec.get()->tilted);
    std::vector<int> origins;
    for (int i = 0; i < 4; ++i) origins.push_back(spec.get()->classifiers[i].origin);
    EXPECT_EQ((std::vector<int>{1, 3 << 8, 0 << 8, 1}), origins);
}

TEST(TiltHaarFeatures, ClassifiersOfALongStageKeepTheirIndex) {
    // Indices of 8 and of 16 bits and more; a mask byte of the highest bit alone is not zero.
    const int length = 70000;
    HaarArrays<Lum32f> arrays;
    for (int i = 0; i < length; ++i) arrays.add({{0, 0, 1, 1}}, {1}, 0, 0, 0);
    HaarSpec<Lum32f> spec(arrays);
    std::vector<Lum8u> mask(length, 0);
    mask[256] = mask[65536] = 128;
    std::vector<int> expected(length);
    for (int i = 0; i < length; ++i) expected[i] = i << 8;
    const auto origins = [&] {
        std::vector<int> all(length);
        for (int i = 0; i < length; ++i) all[i] = spec.get()->classifiers[i].origin;
        return all;
    };
    EXPECT_TRUE(expected == origins());
    EXPECT_STATUS(lumStatusOk, lumiTiltHaarFeatures_32f(mask.data(), 1, spec.get()));
    expected[256] = expected[65536] = 1;
    EXPECT_TRUE(expected == origins());
}

TEST(TiltHaarFeatures, BothFlagsGiveTheirCornersAndLeaveTheOthers) {
    HaarArrays<Lum32s> arrays;
    arrays.add({{10, 20, 3, 5}, {11, 30, 4, 2}}, {2, 3}, 0, 0, 0);
    arrays.add({{10, 20, 3, 5}, {11, 30, 4, 2}}, {2, 3}, 0, 0, 0);
    for (int flag : {0, 1, -1}) {
        HaarSpec<Lum32s> spec(arrays);
        const Lum8u mask[2] = {0, 255};
        EXPECT_STATUS(lumStatusOk, lumiTiltHaarFeatures_32s(mask, flag, spec.get()));
        for (int classifier = 0; classifier < 2; ++classifier)
            for (int k = 0; k < 2; ++k) {
                const LumRect& rect = arrays.rects[k];
                const HaarReads expected = classifier == 0 ? uprightReads(rect)
                                           : flag == 0     ? tiltedReadsAboutLowerLeft(rect)
                                                           : tiltedReads(rect);
                const auto& f = spec.get()->classifiers[classifier].features[k];
                EXPECT_EQ((std::vector<int>{expected.a.x, expected.a.y, expected.b.x, expected.b.y,
                                            expected.c.x, expected.c.y, expected.d.x, expected.d.y}),
                          (std::vector<int>{f.ax, f.ay, f.bx, f.by, f.cx, f.cy, f.dx, f.dy}))
                    << "flag " << flag << ", rectangle " << k;
                EXPECT_EQ(arrays.weights[k], f.weight.integer);
            }
    }
}

TEST(TiltHaarFeatures, SecondCallIsBadArgumentWhateverItsMask) {
    HaarSpec<Lum32f> spec(stageOf({2, 2}));
    const Lum8u some[2] = {1, 0};
    const Lum8u none[2] = {0, 0};
    EXPECT_STATUS(lumStatusOk, lumiTiltHaarFeatures_32f(some, 0, spec.get()));
    const auto before = spec.bytes();
    EXPECT_STATUS(lumStatusBadArgument, lumiTiltHaarFeatures_32f(some, 0, spec.get()));
    EXPECT_STATUS(lumStatusBadArgument, lumiTiltHaarFeatures_32f(none, 0, spec.get()));
    EXPECT_EQ(before, spec.bytes());
}

TEST(TiltHaarFeatures, TiltedObjectIsBadArgument) {
    HaarArrays<Lum32s> arrays;
    arrays.add({{5, 5, 2, 2}}, {1}, 0, 0, 0);
    HaarSpec<Lum32s> spec(arrays, HaarForm::tilted);
    const Lum8u mask[1] = {1};
    EXPECT_STATUS(lumStatusBadArgument, lumiTiltHaarFeatures_32s(mask, 1, spec.get()));
}

TEST(TiltHaarFeatures, MaskOfZerosLeavesTheObject) {
    HaarSpec<Lum32f> spec(stageOf({2, 3}));
    const auto before = spec.bytes();
    const Lum8u none[2] = {0, 0};
    EXPECT_STATUS(lumStatusOk, lumiTiltHaarFeatures_32f(none, 1, spec.get()));
    EXPECT_EQ(before, spec.bytes());
}

TEST(TiltHaarFeatures, NullPointers) {
    HaarSpec<Lum32f> spec(stageOf({2}));
    const Lum8u mask[1] = {1};
    EXPECT_STATUS(lumStatusNullPointer, lumiTiltHaarFeatures_32f(nullptr, 0, spec.get()));
    EXPECT_STATUS(lumStatusNullPointer, lumiTiltHaarFeatures_32s(mask, 0, nullptr));
}

#include "lumcv.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "segment/fill_members.h"
#include "support/guarded_image.h"
#include "support/member_test.h"
#include "support/status_checks.h"

using namespace fills;
using namespace support;

namespace {

constexpr auto exact4 = member<Rule::exact, 4, Lum8u, 1>;
constexpr auto exact8 = member<Rule::exact, 8, Lum8u, 1>;
constexpr auto range4 = member<Rule::range, 4, Lum8u, 1>;
constexpr auto grad4 = member<Rule::grad, 4, Lum8u, 1>;
constexpr auto grad8 = member<Rule::grad, 8, Lum8u, 1>;

constexpr LumFillRegion garbage{-7, {-7, -7, -7}, {-7, -7, -7, -7}};

bool sameRegion(const LumFillRegion& a, const LumFillRegion& b) {
    return a.area == b.area && std::equal(a.value, a.value + 3, b.value) && a.rect.x == b.rect.x &&
           a.rect.y == b.rect.y && a.rect.width == b.rect.width && a.rect.height == b.rect.height;
}

std::string told(const LumFillRegion& region) {
    return "area " + std::to_string(region.area) + " rect " + std::to_string(region.rect.x) + " " +
           std::to_string(region.rect.y) + " " + std::to_string(region.rect.width) + " " +
           std::to_string(region.rect.height);
}

template <class T> LumFillRegion regionOf(const Outcome<T>& outcome, const auto& newVal) {
    LumFillRegion region{outcome.area, {0, 0, 0}, outcome.rect};
    std::copy(newVal.begin(), newVal.end(), region.value);
    return region;
}

template <class M> using ValuesOf = typename M::Values;

/// A fill of a guarded image, with a buffer of exactly the queried size that ends at an unreadable page.
template <class M> struct Filling {
    using T = typename M::Element;
    GuardedImage<T> image;
    LumFillRegion region = garbage;
    LumStatus status = lumStatusOk;

    Filling(const M& fill, const std::vector<T>& elements, LumSize size, LumPoint seed,
            const ValuesOf<M>& newVal, const ValuesOf<M>& minDelta = {}, const ValuesOf<M>& maxDelta = {},
            int shift = 0)
        : image(size.width, size.height,
                {.channels = M::channels,
                 .padding = shift % 3 * static_cast<int>(sizeof(T)),
                 .offset = shift,
                 .guard = shift % 2 == 0 ? Guard::after : Guard::before}) {
        const int perRow = size.width * M::channels;
        image.fill([&](int x, int y, int c) { return elements[y * perRow + x * M::channels + c]; });
        GuardedBlock buffer(fill.bufferBytes(size), shift % 2 == 0 ? Guard::after : Guard::before, shift);
        status = fill.call({.srcDst = image.data(),
                            .step = image.step(),
                            .size = size,
                            .seed = seed,
                            .newVal = newVal,
                            .minDelta = minDelta,
                            .maxDelta = maxDelta,
                            .region = &region,
                            .buffer = buffer.as<>()});
        EXPECT_TRUE(image.outsideUntouched());
    }
};

/// A picture drawn with one character a pixel.
std::vector<Lum8u> drawn(std::initializer_list<const char*> rows) {
    std::vector<Lum8u> pixels;
    for (const char* row : rows)
        for (; *row != 0; ++row) pixels.push_back(static_cast<Lum8u>(*row));
    return pixels;
}

MEMBER_TEST_SUITE(FloodFillMembers, ExactFills);
MEMBER_TEST_SUITE(ExactFill, ExactFills);
MEMBER_TEST_SUITE(RangeFill, SimilarFills);
MEMBER_TEST_SUITE(GradFill, SimilarFills);

/// Elements of few different values, so that regions are large and of every shape.
template <class M>
std::vector<typename M::Element> fewValues(std::mt19937& engine, LumSize size, int values) {
    std::vector<typename M::Element> elements(static_cast<std::size_t>(size.width) * size.height *
                                              M::channels);
    const int different = M::channels == 3 ? 2 : values;
    for (auto& element : elements)
        element = static_cast<typename M::Element>(engine() % 10 < 6 ? 0 : engine() % different);
    return elements;
}

LumSize randomSize(std::mt19937& engine) {
    switch (engine() % 4) {
    case 0:
        return {1 + static_cast<int>(engine() % 5), 1 + static_cast<int>(engine() % 40)};
    case 1:
        return {1 + static_cast<int>(engine() % 200), 1 + static_cast<int>(engine() % 6)};
    default:
        return {1 + static_cast<int>(engine() % 30), 1 + static_cast<int>(engine() % 20)};
    }
}

template <class M> ValuesOf<M> all(int value) {
    ValuesOf<M> values;
    values.fill(static_cast<typename M::Element>(value));
    return values;
}

int runsOf(int full) {
#ifdef LUMCV_SANITIZED
    return full / 4;
#else
    return full;
#endif
}

} // namespace

TEST(FloodFill_4Con_8u_C1IR, FillsWhatTouchesTheSeedByEdges) {
    Filling run(exact4,
                drawn({"..a..", //
                       ".aa.a", //
                       "aa.aa"}),
                {5, 3}, {2, 0}, {'#'});
    EXPECT_EQ(drawn({"..#..", //
                     ".##.a", //
                     "##.aa"}),
              run.image.pixels());
    EXPECT_TRUE(sameRegion({5, {'#', 0, 0}, {0, 0, 3, 3}}, run.region)) << told(run.region);
}

TEST(FloodFill_8Con_8u_C1IR, FillsWhatTouchesTheSeedByCorners) {
    Filling run(exact8,
                drawn({"..a..", //
                       ".aa.a", //
                       "aa.a."}),
                {5, 3}, {2, 0}, {'#'});
    EXPECT_EQ(drawn({"..#..", //
                     ".##.#", //
                     "##.#."}),
              run.image.pixels());
    EXPECT_TRUE(sameRegion({7, {'#', 0, 0}, {0, 0, 5, 3}}, run.region)) << told(run.region);
}

TEST(FloodFill_Range4Con_8u_C1IR, FillsWhatLiesAroundTheSeedsValue) {
    Filling run(range4,
                {10, 12, 14, 16, //
                 30, 9, 30, 12},
                {4, 2}, {1, 0}, {99}, {3}, {2});
    EXPECT_EQ((std::vector<Lum8u>{99, 99, 99, 16, 30, 99, 30, 12}), run.image.pixels());
    EXPECT_TRUE(sameRegion({4, {99, 0, 0}, {0, 0, 3, 2}}, run.region)) << told(run.region);
}

TEST(FloodFill_Grad4Con_8u_C1IR, FillsWhatIsReachedBySmallSteps) {
    Filling run(grad4,
                {10, 12, 14, 16, //
                 30, 9, 30, 12},
                {4, 2}, {1, 0}, {99}, {3}, {2});
    // 12 to 9 is a step of 3 down, 16 to 12 one of 4.
    EXPECT_EQ((std::vector<Lum8u>{99, 99, 99, 99, 30, 99, 30, 12}), run.image.pixels());
    EXPECT_TRUE(sameRegion({5, {99, 0, 0}, {0, 0, 4, 2}}, run.region)) << told(run.region);
}

TEST(FloodFillGetSize, FollowsTheFormula) {
    Lum32s bytes = 0;
    EXPECT_STATUS(lumStatusOk, lumiFloodFillGetSize({1, 1}, &bytes));
    EXPECT_EQ(38, bytes);
    EXPECT_STATUS(lumStatusOk, lumiFloodFillGetSize({7, 5}, &bytes));
    EXPECT_EQ(6 * 35 + 32, bytes);
    EXPECT_STATUS(lumStatusOk, lumiFloodFillGetSize_Grad({7, 5}, &bytes));
    EXPECT_EQ(16 * 35 + 9 * 7 + 64, bytes);
    // The 64-bit count keeps its low half.
    EXPECT_STATUS(lumStatusOk, lumiFloodFillGetSize({65536, 65536}, &bytes));
    EXPECT_EQ(32, bytes);
    EXPECT_STATUS(lumStatusOk, lumiFloodFillGetSize({40000, 30000}, &bytes));
    EXPECT_EQ(static_cast<Lum32s>(7200000032LL), bytes);
    EXPECT_STATUS(lumStatusOk, lumiFloodFillGetSize_Grad({40000, 30000}, &bytes));
    EXPECT_EQ(static_cast<Lum32s>(19200000000LL + 40002LL * 30002 + 64), bytes);
}

TEST(FloodFillGetSize, RefusesNullAndEmptyRegions) {
    for (const auto query : {lumiFloodFillGetSize, lumiFloodFillGetSize_Grad}) {
        Lum32s bytes = -3;
        EXPECT_STATUS(lumStatusNullPointer, query({0, 1}, nullptr));
        EXPECT_STATUS(lumStatusSizeError, query({0, 1}, &bytes));
        EXPECT_STATUS(lumStatusSizeError, query({1, 0}, &bytes));
        EXPECT_STATUS(lumStatusSizeError, query({-4, -4}, &bytes));
        EXPECT_EQ(-3, bytes);
    }
}

MEMBER_TEST(ExactFill, NewValueOfTheSeedChangesNothing) {
    using M = TypeParam;
    for (const M& fill : membersOf<Rule::exact, M>()) {
        SCOPED_TRACE(fill.name());
        std::vector<typename M::Element> elements(30 * M::channels, 5);
        Filling run(fill, elements, {6, 5}, {2, 2}, all<M>(5));
        EXPECT_STATUS(lumStatusOk, run.status);
        EXPECT_TRUE(run.image.untouched());
        EXPECT_TRUE(sameRegion(garbage, run.region));
    }
}

MEMBER_TEST(ExactFill, EveryRegionIsThatOfEqualPixels) {
    using M = TypeParam;
    for (const M& fill : membersOf<Rule::exact, M>()) {
        SCOPED_TRACE(fill.name());
        std::mt19937 engine(11);
        for (int i = 0; i < runsOf(600); ++i) {
            const LumSize size = randomSize(engine);
            const auto elements = fewValues<M>(engine, size, 2 + i % 3);
            const LumPoint seed{static_cast<int>(engine() % size.width),
                                static_cast<int>(engine() % size.height)};
            const Picture<M> picture(elements, size);
            const auto newVal = all<M>(i % 5 == 0 ? 1 : 9);
            if (newVal == picture.at(seed.x, seed.y)) continue;
            const auto expected =
                fillByPixels(fill, picture, seed, newVal, [](auto from, auto to) { return from == to; });
            Filling run(fill, elements, size, seed, newVal, {}, {}, i % 64);
            ASSERT_TRUE(sameBits(expected.pixels, run.image.pixels())) << "run " << i;
            ASSERT_TRUE(sameRegion(regionOf(expected, newVal), run.region))
                << told(run.region) << " in run " << i;
        }
    }
}

MEMBER_TEST(RangeFill, EveryRunFollowsTheRules) {
    using M = TypeParam;
    using T = typename M::Element;
    for (const M& fill : membersOf<Rule::range, M>()) {
        SCOPED_TRACE(fill.name());
        std::mt19937 engine(12);
        int cut = 0;
        for (int i = 0; i < runsOf(800); ++i) {
            const LumSize size = randomSize(engine);
            const int spread = i % 2 == 0 ? 4 : 40;
            std::vector<T> elements(static_cast<std::size_t>(size.width) * size.height * M::channels);
            for (T& element : elements) element = static_cast<T>(100 + engine() % spread);
            const LumPoint seed{static_cast<int>(engine() % size.width),
                                static_cast<int>(engine() % size.height)};
            const Picture<M> picture(elements, size);
            typename M::Values low, high, below, above;
            const auto newVal = all<M>(i % 3 == 0 ? 100 + engine() % spread : 250);
            for (int c = 0; c < M::channels; ++c) {
                below[c] = static_cast<T>(engine() % spread);
                above[c] = static_cast<T>(engine() % spread);
                low[c] = static_cast<T>(picture.at(seed.x, seed.y)[c] - below[c]);
                high[c] = static_cast<T>(picture.at(seed.x, seed.y)[c] + above[c]);
            }
            const auto expected = fillByRuns(fill, picture, seed, newVal, low, high);
            const auto whole = fillByPixels(fill, picture, seed, newVal, [&](auto, auto to) {
                for (int c = 0; c < M::channels; ++c)
                    if (to[c] < low[c] || to[c] > high[c]) return false;
                return true;
            });
            if (whole.pixels != expected.pixels) ++cut;
            Filling run(fill, elements, size, seed, newVal, below, above, i % 64);
            ASSERT_TRUE(sameBits(expected.pixels, run.image.pixels())) << "run " << i;
            ASSERT_TRUE(sameRegion(regionOf(expected, newVal), run.region))
                << told(run.region) << " in run " << i;
        }
        EXPECT_GT(cut, 0) << "no fill of the runs was cut off";
    }
}

MEMBER_TEST(GradFill, EveryRunFollowsTheRules) {
    using M = TypeParam;
    using T = typename M::Element;
    for (const M& fill : membersOf<Rule::grad, M>()) {
        SCOPED_TRACE(fill.name());
        std::mt19937 engine(13);
        for (int i = 0; i < runsOf(800); ++i) {
            const LumSize size = randomSize(engine);
            const int spread = 2 + i % 30;
            std::vector<T> elements(static_cast<std::size_t>(size.width) * size.height * M::channels);
            for (T& element : elements) element = static_cast<T>(engine() % spread);
            if (i % 7 == 0) elements.front() = std::numeric_limits<T>::max();
            const LumPoint seed{static_cast<int>(engine() % size.width),
                                static_cast<int>(engine() % size.height)};
            const Picture<M> picture(elements, size);
            typename M::Values below, above;
            for (int c = 0; c < M::channels; ++c) {
                below[c] = static_cast<T>(engine() % spread / 2);
                above[c] = static_cast<T>(engine() % spread / 2);
            }
            const auto accepts = [&](auto candidate, auto reference) {
                for (int c = 0; c < M::channels; ++c) {
                    const double step = static_cast<double>(candidate[c]) - reference[c];
                    if (step < -static_cast<double>(below[c]) || step > above[c]) return false;
                }
                return true;
            };
            const auto newVal = all<M>(static_cast<int>(engine() % spread));
            const auto expected = fillBySteps(fill, picture, seed, newVal, accepts);
            Filling run(fill, elements, size, seed, newVal, below, above, i % 64);
            ASSERT_TRUE(sameBits(expected.pixels, run.image.pixels())) << "run " << i;
            ASSERT_TRUE(sameRegion(regionOf(expected, newVal), run.region))
                << told(run.region) << " in run " << i;
            if (below == above) {
                const auto whole = fillByPixels(fill, picture, seed, newVal,
                                                [&](auto from, auto to) { return accepts(to, from); });
                ASSERT_TRUE(sameBits(whole.pixels, run.image.pixels())) << "run " << i;
            }
        }
    }
}

MEMBER_TEST(RangeFill, UniformImageWithAMemberAsNewValueEnds) {
    using M = TypeParam;
    for (const M& fill : membersOf<Rule::range, M>()) {
        SCOPED_TRACE(fill.name());
        for (LumSize size : {LumSize{1, 1},
                             {1, 2},
                             {1, 3},
                             {2, 1},
                             {3, 1},
                             {2, 2},
                             {1, 8},
                             {3, 3},
                             {4, 4},
                             {1, 40},
                             {40, 1},
                             {2, 30},
                             {17, 9},
                             {64, 3}}) {
            const Picture<M> picture(std::vector<typename M::Element>(
                                         static_cast<std::size_t>(size.width) * size.height * M::channels, 7),
                                     size);
            for (LumPoint seed :
                 {LumPoint{0, 0}, {size.width / 2, size.height / 2}, {size.width - 1, size.height - 1}}) {
                const auto expected = fillByRuns(fill, picture, seed, all<M>(7), all<M>(5), all<M>(8));
                Filling run(fill, picture.elements(), size, seed, all<M>(7), all<M>(2), all<M>(1));
                ASSERT_EQ(lumStatusOk, run.status);
                ASSERT_TRUE(sameRegion(regionOf(expected, all<M>(7)), run.region)) << told(run.region);
            }
        }
    }
}

MEMBER_TEST(RangeFill, RingOnePixelWideEnds) {
    using M = TypeParam;
    for (const M& fill : membersOf<Rule::range, M>()) {
        SCOPED_TRACE(fill.name());
        // A ring through which a fill that meets its own pixels would go round for ever.
        const LumSize size{40, 40};
        std::vector<typename M::Element> elements(
            static_cast<std::size_t>(size.width) * size.height * M::channels, 200);
        for (int y = 1; y < 39; ++y)
            for (int x = 1; x < 39; ++x)
                if (x == 1 || y == 1 || x == 38 || y == 38)
                    for (int c = 0; c < M::channels; ++c) elements[(y * 40 + x) * M::channels + c] = 7;
        const auto expected =
            fillByRuns(fill, Picture<M>(elements, size), {1, 20}, all<M>(8), all<M>(5), all<M>(9));
        Filling run(fill, elements, size, {1, 20}, all<M>(8), all<M>(2), all<M>(2));
        EXPECT_TRUE(sameBits(expected.pixels, run.image.pixels()));
        EXPECT_TRUE(sameRegion(regionOf(expected, all<M>(8)), run.region)) << told(run.region);
    }
}

TEST(FloodFill_Range4Con_8u_C1IR, FourToSevenPixelsFillTheFirstRunOnly) {
    Filling run(range4, {7, 7, 7, 7, 7, 7}, {2, 3}, {0, 1}, {9});
    EXPECT_EQ((std::vector<Lum8u>{7, 7, 9, 9, 7, 7}), run.image.pixels());
    EXPECT_TRUE(sameRegion({2, {9, 0, 0}, {0, 1, 2, 1}}, run.region)) << told(run.region);
    Filling three(range4, {7, 7, 7}, {1, 3}, {0, 1}, {9});
    EXPECT_EQ((std::vector<Lum8u>{9, 9, 9}), three.image.pixels());
    EXPECT_TRUE(sameRegion({3, {9, 0, 0}, {0, 0, 1, 3}}, three.region)) << told(three.region);
}

MEMBER_TEST(FloodFillMembers, SingleRowIsOneRun) {
    using M = TypeParam;
    for (const M& fill : membersOfAllRules<M>()) {
        SCOPED_TRACE(fill.name());
        std::vector<typename M::Element> elements;
        for (int value : {1, 1, 2, 2, 2, 2, 9, 2})
            for (int c = 0; c < M::channels; ++c) elements.push_back(static_cast<typename M::Element>(value));
        for (int x = 2; x < 6; ++x) {
            Filling run(fill, elements, {8, 1}, {x, 0}, all<M>(30));
            for (int i = 0; i < 8; ++i)
                EXPECT_EQ(i >= 2 && i < 6 ? 30 : elements[i * M::channels],
                          run.image.at(i, 0, M::channels - 1));
            LumFillRegion expected{4, {30, 0, 0}, {2, 0, 4, 1}};
            if (M::channels == 3) expected.value[1] = expected.value[2] = 30;
            EXPECT_TRUE(sameRegion(expected, run.region)) << told(run.region);
        }
    }
}

MEMBER_TEST(FloodFillMembers, ArgumentsAreTestedInOrder) {
    using M = TypeParam;
    using T = typename M::Element;
    for (const M& fill : membersOfAllRules<M>()) {
        SCOPED_TRACE(fill.name());
        GuardedImage<T> image(5, 4, {.channels = M::channels, .padding = 2 * sizeof(T)});
        image.fillRandom(3);
        GuardedBlock buffer(fill.bufferBytes(image.size()));
        LumFillRegion region = garbage;
        const typename M::A good{.srcDst = image.data(),
                                 .step = image.step(),
                                 .size = image.size(),
                                 .seed = {1, 1},
                                 .newVal = all<M>(3),
                                 .minDelta = all<M>(1),
                                 .maxDelta = all<M>(1),
                                 .region = &region,
                                 .buffer = buffer.as<>()};
        const auto with = [&](auto... changes) {
            auto a = good;
            (changes(a), ...);
            return fill.call(a);
        };
        const auto noImage = [](auto& a) { a.srcDst = nullptr; };
        const auto noRegion = [](auto& a) { a.region = nullptr; };
        const auto noBuffer = [](auto& a) { a.buffer = nullptr; };
        const auto noWidth = [](auto& a) { a.size.width = 0; };
        const auto noHeight = [](auto& a) { a.size.height = -1; };
        const int row = 5 * M::channels * static_cast<int>(sizeof(T));
        const auto shortStep = [&](auto& a) { a.step = row - 1; };
        const auto negativeStep = [&](auto& a) { a.step = -a.step; };
        const auto oddStep = [&](auto& a) { a.step = row + 1; };
        for (const auto change : {LumPoint{-1, 1}, {5, 1}, {1, -1}, {1, 4}}) {
            const auto outside = [&](auto& a) { a.seed = change; };
            EXPECT_REFUSED(lumStatusOutOfRange, image, with(outside));
            if (sizeof(T) > 1) EXPECT_REFUSED(lumStatusStepAlignmentError, image, with(outside, oddStep));
            EXPECT_REFUSED(lumStatusStepError, image, with(outside, shortStep));
        }
        for (const auto& pointer : {0, 1, 2}) {
            const auto missing = [&](auto& a) {
                pointer == 0 ? noImage(a) : pointer == 1 ? noRegion(a) : noBuffer(a);
            };
            EXPECT_REFUSED(lumStatusNullPointer, image, with(missing));
            EXPECT_REFUSED(lumStatusNullPointer, image, with(missing, noWidth, shortStep));
        }
        EXPECT_REFUSED(lumStatusSizeError, image, with(noWidth, shortStep));
        EXPECT_REFUSED(lumStatusSizeError, image, with(noHeight, negativeStep));
        EXPECT_REFUSED(lumStatusStepError, image, with(shortStep));
        EXPECT_REFUSED(lumStatusStepError, image, with(negativeStep));
        if (sizeof(T) > 1) EXPECT_REFUSED(lumStatusStepAlignmentError, image, with(oddStep));
        EXPECT_TRUE(sameRegion(garbage, region));
    }
}

TEST(FloodFill_4Con_8u_C3IR, NullValuesAreRefused) {
    GuardedImage<Lum8u> image(4, 4, {.channels = 3});
    image.fillRandom(3);
    GuardedBlock buffer(2000);
    LumFillRegion region = garbage;
    const Lum8u v[3] = {1, 2, 3};
    const auto call = [&](const Lum8u* newVal, const Lum8u* below, const Lum8u* above, auto member) {
        return member(image.data(), image.step(), LumSize{0, 4}, LumPoint{9, 9}, newVal, below, above,
                      &region, buffer.as<>());
    };
    EXPECT_REFUSED(lumStatusNullPointer, image,
                   lumiFloodFill_4Con_8u_C3IR(image.data(), image.step(), {0, 4}, {0, 0}, nullptr, &region,
                                              buffer.as<>()));
    for (const auto member : {lumiFloodFill_Range4Con_8u_C3IR, lumiFloodFill_Range8Con_8u_C3IR,
                              lumiFloodFill_Grad4Con_8u_C3IR, lumiFloodFill_Grad8Con_8u_C3IR}) {
        EXPECT_REFUSED(lumStatusNullPointer, image, call(nullptr, v, v, member));
        EXPECT_REFUSED(lumStatusNullPointer, image, call(v, nullptr, v, member));
        EXPECT_REFUSED(lumStatusNullPointer, image, call(v, v, nullptr, member));
        EXPECT_REFUSED(lumStatusSizeError, image, call(v, v, v, member));
    }
}

TEST(FloodFill_Grad4Con_32f_C1IR, NegativeDeltaIsOutOfRange) {
    GuardedImage<Lum32f> image(4, 4);
    image.fillRandom(5);
    GuardedBlock buffer(2000);
    LumFillRegion region = garbage;
    const auto call = [&](float below, float above, int step) {
        return lumiFloodFill_Grad4Con_32f_C1IR(image.data(), step, image.size(), {1, 1}, 5, below, above,
                                               &region, buffer.as<>());
    };
    EXPECT_REFUSED(lumStatusOutOfRange, image, call(-1, 1, image.step()));
    EXPECT_REFUSED(lumStatusOutOfRange, image, call(1, -0.5F, image.step()));
    EXPECT_REFUSED(lumStatusStepAlignmentError, image, call(-1, 1, image.step() + 1));
    EXPECT_TRUE(sameRegion(garbage, region));
    EXPECT_STATUS(lumStatusOk, call(-0.0F, -0.0F, image.step()));
}

TEST(FloodFill_Range8Con_32f_C1IR, NegativeDeltasFillTheSeedAlone) {
    Filling run(member<Rule::range, 8, Lum32f, 1>, std::vector<Lum32f>(20, 4.F), {5, 4}, {2, 1}, {8.F},
                {-1.F}, {-1.F});
    EXPECT_TRUE(sameRegion({1, {8, 0, 0}, {2, 1, 1, 1}}, run.region)) << told(run.region);
    EXPECT_EQ(8.F, run.image.at(2, 1));
}

MEMBER_TEST(FloodFillMembers, NanStopsEveryWalk) {
    using M = TypeParam;
    using T = typename M::Element;
    for (const M& fill : membersOfAllRules<M>()) {
        SCOPED_TRACE(fill.name());
        if constexpr (std::is_floating_point_v<T>) {
            const T nan = std::numeric_limits<T>::quiet_NaN();
            const LumSize size{7, 5};
            std::vector<T> elements(35 * M::channels, T{3});
            // A closed ring of NaN, in the last channel, around the seed's three columns.
            for (int y = 0; y < 5; ++y)
                for (int x : {1, 5}) elements[(y * 7 + x) * M::channels + M::channels - 1] = nan;
            const auto delta = all<M>(1000);
            Filling run(fill, elements, size, {3, 2}, all<M>(9), delta, delta);
            EXPECT_EQ(15, run.region.area);
            EXPECT_EQ(2, run.region.rect.x);
            EXPECT_EQ(3, run.region.rect.width);
            Filling onNan(fill, elements, size, {1, 2}, all<M>(9), delta, delta);
            EXPECT_EQ(1, onNan.region.area) << "a seed of NaN is filled alone";
            EXPECT_EQ(9, onNan.image.at(1, 2, M::channels - 1));
        }
    }
}

TEST(FloodFill_4Con_32f_C1IR, MinusZeroEqualsZero) {
    constexpr auto fill = member<Rule::exact, 4, Lum32f, 1>;
    Filling run(fill, {0.F, -0.F, 1.F, 0.F}, {4, 1}, {0, 0}, {2.F});
    EXPECT_EQ((std::vector<Lum32f>{2, 2, 1, 0}), run.image.pixels());
    Filling same(fill, {0.F, -0.F}, {2, 1}, {0, 0}, {-0.F});
    EXPECT_TRUE(same.image.untouched());
    EXPECT_TRUE(sameRegion(garbage, same.region));
}

TEST(FloodFill_Grad4Con_8u_C1IR, RightwardsARunAlsoJoinsItsFinder) {
    // From 10 to 20 on the lower row no step of 5 leads, but each pixel is within 5 of the one above it.
    Filling right(grad4,
                  {12, 16, 20, //
                   10, 18, 23},
                  {3, 2}, {0, 0}, {99}, {5}, {5});
    EXPECT_EQ((std::vector<Lum8u>{99, 99, 99, 99, 99, 99}), right.image.pixels());
    // Steps up of at most 6 and down of none: to the left only the neighbour on the row counts.
    Filling order(grad4,
                  {10, 10, 30, //
                   16, 9, 15},
                  {3, 2}, {0, 0}, {99}, {0}, {6});
    EXPECT_EQ((std::vector<Lum8u>{99, 99, 30, 99, 9, 15}), order.image.pixels());
}

TEST(FloodFill_Grad8Con_8u_C1IR, FirstRunOnTheLastRowSkipsTheRowBelow) {
    Filling run(grad8,
                {1, 2, 3, //
                 4, 5, 6, //
                 7, 8, 9},
                {3, 3}, {1, 2}, {0}, {4}, {4});
    EXPECT_EQ(std::vector<Lum8u>(9, 0), run.image.pixels());
    EXPECT_TRUE(sameRegion({9, {0, 0, 0}, {0, 0, 3, 3}}, run.region)) << told(run.region);
}

#include "lumcv.h"

#include <gtest/gtest.h>

#include <random>
#include <tuple>

#include "kernels/segment/label_runs.h"
#include "support/guarded_image.h"
#include "support/member_test.h"
#include "support/status_checks.h"

using namespace support;

namespace {

template <class T> struct InPlace {
    using Source = T;
    using Label = T;
    static constexpr Lum32s top = std::numeric_limits<T>::max();
};
struct To32s {
    using Source = Lum8u;
    using Label = Lum32s;
    static constexpr Lum32s top = std::numeric_limits<Lum32s>::max();
};

struct Arguments {
    LumSize size;
    Lum32s minLabel = 1;
    Lum32s maxLabel = 254;
    LumSpatialNorm norm = lumSpatialNormInf;
    Lum32s* count;
    Lum8u* buffer;
};

LumStatus call(InPlace<Lum8u>, Lum8u* src, int step, Lum8u*, int, const Arguments& a) {
    return lumiLabelMarkers_8u_C1IR(src, step, a.size, a.minLabel, a.maxLabel, a.norm, a.count, a.buffer);
}
LumStatus call(InPlace<Lum16u>, Lum16u* src, int step, Lum16u*, int, const Arguments& a) {
    return lumiLabelMarkers_16u_C1IR(src, step, a.size, a.minLabel, a.maxLabel, a.norm, a.count, a.buffer);
}
LumStatus call(To32s, const Lum8u* src, int step, Lum32s* dst, int dstStep, const Arguments& a) {
    return lumiLabelMarkers_8u32s_C1R(src, step, dst, dstStep, a.size, a.minLabel, a.maxLabel, a.norm,
                                      a.count, a.buffer);
}

using Members = testing::Types<InPlace<Lum8u>, InPlace<Lum16u>, To32s>;
MEMBER_TEST_SUITE(LabelMarkers, Members);

std::size_t bufferBytes(LumSize size) {
    Lum32s bytes = 0;
    EXPECT_EQ(lumStatusOk, lumiLabelMarkersGetBufferSize_8u_C1R(size, &bytes));
    return static_cast<std::size_t>(bytes);
}

/// What a call writes: the labels in rows without padding, and their number.
struct Outcome {
    std::vector<Lum32s> labels;
    Lum32s count = -5;
};

template <class M, class T>
Outcome labelled(const std::vector<T>& pixels, LumSize size, Arguments a, int shift = 0) {
    const Placement placement{
        .padding = shift % 3 * 4, .offset = shift, .guard = shift % 2 == 0 ? Guard::after : Guard::before};
    GuardedImage<typename M::Source> src(size.width, size.height, placement);
    src.fill([&](int x, int y, int) { return pixels[y * size.width + x]; });
    GuardedImage<typename M::Label> dst(size.width, size.height, placement);
    GuardedBlock buffer(bufferBytes(size), placement.guard, shift);
    Outcome outcome;
    a.size = size;
    a.count = &outcome.count;
    a.buffer = buffer.as<>();
    EXPECT_STATUS(lumStatusOk, call(M{}, src.data(), src.step(), dst.data(), dst.step(), a));
    EXPECT_TRUE(src.outsideUntouched());
    EXPECT_TRUE(dst.outsideUntouched());
    if constexpr (sizeof(typename M::Source) == sizeof(typename M::Label)) {
        const auto labels = src.pixels();
        outcome.labels.assign(labels.begin(), labels.end());
    } else {
        EXPECT_TRUE(src.untouched());
        outcome.labels = dst.pixels();
    }
    return outcome;
}

/// Region by region, pixel by pixel, in raster order.
template <class T> Outcome reference(const std::vector<T>& pixels, LumSize size, const Arguments& a) {
    Outcome outcome{std::vector<Lum32s>(pixels.size()), 0};
    Lum32s label = a.minLabel;
    for (int start = 0; start < static_cast<int>(pixels.size()); ++start) {
        if (pixels[start] == 0 || outcome.labels[start] != 0) continue;
        std::vector<int> pending{start};
        outcome.labels[start] = label;
        while (!pending.empty()) {
            const int x = pending.back() % size.width;
            const int y = pending.back() / size.width;
            pending.pop_back();
            for (int dy = -1; dy <= 1; ++dy)
                for (int dx = -1; dx <= 1; ++dx) {
                    if (a.norm == lumSpatialNormL1 && dx != 0 && dy != 0) continue;
                    if (x + dx < 0 || y + dy < 0 || x + dx >= size.width || y + dy >= size.height) continue;
                    const int place = (y + dy) * size.width + x + dx;
                    if (pixels[place] == 0 || outcome.labels[place] != 0) continue;
                    outcome.labels[place] = label;
                    pending.push_back(place);
                }
        }
        ++outcome.count;
        label = label == a.maxLabel ? a.minLabel : label + 1;
    }
    return outcome;
}

template <class M>
void expectReference(const std::vector<typename M::Source>& pixels, LumSize size, int shift) {
    for (LumSpatialNorm norm : {lumSpatialNormInf, lumSpatialNormL1})
        for (auto [first, last] : {std::pair{1, 254}, {3, 7}, {5, 5}, {1, M::top - 1}}) {
            const Arguments a{.size = size,
                              .minLabel = first,
                              .maxLabel = last,
                              .norm = norm,
                              .count = nullptr,
                              .buffer = nullptr};
            const Outcome expected = reference(pixels, size, a);
            const Outcome outcome = labelled<M>(pixels, size, a, shift);
            ASSERT_EQ(expected.count, outcome.count)
                << size.width << " x " << size.height << " norm " << norm;
            ASSERT_TRUE(sameBits(expected.labels, outcome.labels)) << size.width << " x " << size.height;
        }
}

} // namespace

MEMBER_TEST(LabelMarkers, RegionsAreNumberedInRasterOrder) {
    const std::vector<typename TypeParam::Source> pixels{0, 9, 0, 0, 7, //
                                                         1, 0, 0, 0, 7, //
                                                         0, 0, 2, 0, 0};
    const Arguments a{.size = {}, .minLabel = 10, .count = nullptr, .buffer = nullptr};
    const Outcome eight = labelled<TypeParam>(pixels, {5, 3}, a);
    EXPECT_EQ(3, eight.count);
    EXPECT_EQ((std::vector<Lum32s>{0, 10, 0, 0, 11, 10, 0, 0, 0, 11, 0, 0, 12, 0, 0}), eight.labels);
    Arguments four = a;
    four.norm = lumSpatialNormL1;
    const Outcome outcome = labelled<TypeParam>(pixels, {5, 3}, four);
    EXPECT_EQ(4, outcome.count);
    EXPECT_EQ((std::vector<Lum32s>{0, 10, 0, 0, 11, 12, 0, 0, 0, 11, 0, 0, 13, 0, 0}), outcome.labels);
}

MEMBER_TEST(LabelMarkers, EmptyImageHasNoRegion) {
    const Outcome outcome = labelled<TypeParam>(std::vector<typename TypeParam::Source>(60), {12, 5},
                                                {.size = {}, .count = nullptr, .buffer = nullptr});
    EXPECT_EQ(0, outcome.count);
    EXPECT_EQ(std::vector<Lum32s>(60), outcome.labels);
}

MEMBER_TEST(LabelMarkers, LabelsRepeatWhenTheyRunOut) {
    const std::vector<typename TypeParam::Source> pixels{1, 0, 1, 0, 1, 0, 1, 0, 1};
    const Outcome outcome = labelled<TypeParam>(
        pixels, {9, 1}, {.size = {}, .minLabel = 4, .maxLabel = 5, .count = nullptr, .buffer = nullptr});
    EXPECT_EQ(5, outcome.count);
    EXPECT_EQ((std::vector<Lum32s>{4, 0, 5, 0, 4, 0, 5, 0, 4}), outcome.labels);
}

MEMBER_TEST(LabelMarkers, LargestSourceValueIsAnyOther) {
    using T = typename TypeParam::Source;
    const T top = std::numeric_limits<T>::max();
    const Outcome outcome = labelled<TypeParam>(std::vector<T>{top, 1, top, 0, 2}, {5, 1},
                                                {.size = {}, .count = nullptr, .buffer = nullptr});
    EXPECT_EQ((std::vector<Lum32s>{1, 1, 1, 0, 2}), outcome.labels);
}

MEMBER_TEST(LabelMarkers, EveryWidthFollowsTheReference) {
    using T = typename TypeParam::Source;
    std::mt19937 engine(21);
    for (int width = 1; width <= 140; ++width) {
        const LumSize size{width, 1 + width % 7};
        const int zeros = 1 + width % 5;
        std::vector<T> pixels(static_cast<std::size_t>(size.width) * size.height);
        for (T& pixel : pixels)
            pixel = static_cast<T>(static_cast<int>(engine() % 6) < zeros ? 0 : 1 + engine() % 255);
        ASSERT_NO_FATAL_FAILURE(expectReference<TypeParam>(pixels, size, width % 64));
    }
}

MEMBER_TEST(LabelMarkers, RegionsThatMeetLateAreOne) {
    using T = typename TypeParam::Source;
    // Spirals, combs and ladders, whose branches meet rows after they begin.
    for (LumSize size : {LumSize{41, 41}, {64, 30}, {33, 50}, {3, 40}, {1, 30}})
        for (int pattern = 0; pattern < 6; ++pattern) {
            std::vector<T> pixels(static_cast<std::size_t>(size.width) * size.height);
            for (int y = 0; y < size.height; ++y)
                for (int x = 0; x < size.width; ++x) {
                    const int ring = std::min({x, y, size.width - 1 - x, size.height - 1 - y});
                    const bool set[6] = {x % 2 == 0 || y == size.height - 1,
                                         x % 2 == 0 || y == size.height / 2,
                                         ring % 2 == 0 && !(x == ring && y == ring + 1),
                                         (x + y) % 2 == 0,
                                         x % 2 == 0 || y % 3 == 2,
                                         y % 2 == 0 || (x == (y / 2 % 2 == 0 ? size.width - 1 : 0))};
                    pixels[y * size.width + x] = set[pattern] ? 3 : 0;
                }
            ASSERT_NO_FATAL_FAILURE(expectReference<TypeParam>(pixels, size, 5));
        }
}

TEST(LabelMarkersGetBufferSize, IsThatOfTheFloodFill) {
    for (const auto query : {lumiLabelMarkersGetBufferSize_8u_C1R, lumiLabelMarkersGetBufferSize_16u_C1R,
                             lumiLabelMarkersGetBufferSize_8u32s_C1R}) {
        Lum32s bytes = -3;
        EXPECT_STATUS(lumStatusNullPointer, query({0, 0}, nullptr));
        EXPECT_STATUS(lumStatusSizeError, query({0, 1}, &bytes));
        EXPECT_STATUS(lumStatusSizeError, query({1, 0}, &bytes));
        EXPECT_EQ(-3, bytes);
        EXPECT_STATUS(lumStatusOk, query({13, 7}, &bytes));
        EXPECT_EQ(6 * 91 + 32, bytes);
        EXPECT_STATUS(lumStatusOk, query({65536, 65536}, &bytes));
        EXPECT_EQ(32, bytes);
    }
}

TEST(LabelMarkersGetBufferSize, HoldsTheRunsOfEveryImage) {
    for (int width = 1; width <= 300; ++width)
        for (int height = 1; height <= 300; ++height)
            ASSERT_LE(lum::kernels::labelRunsBytes({width, height}), 6U * width * height + 32);
    for (int side : {1, 2, 3, 1000, 1001}) {
        ASSERT_LE(lum::kernels::labelRunsBytes({side, 100001}), 600006U * side + 32);
        ASSERT_LE(lum::kernels::labelRunsBytes({100001, side}), 600006U * side + 32);
    }
}

TEST(LabelRuns, MostRunsStayWithinTheirBytes) {
    for (int width = 1; width <= 140; ++width) {
        const LumSize size{width, 1 + width % 6};
        GuardedImage<Lum8u> src(width, size.height);
        src.fill([](int x, int, int) { return x % 2 == 0 ? 1 : 0; });
        GuardedImage<Lum32s> dst(width, size.height);
        GuardedBlock block(lum::kernels::labelRunsBytes(size), Guard::after, width % 8);
        const std::size_t regions = lum::kernels::labelRuns<Lum8u, Lum32s>(
            {src.data(), src.step()}, {dst.data(), dst.step()}, size, lum::kernels::Connected::four,
            {1, 1000}, block.as<unsigned char>());
        ASSERT_EQ(static_cast<std::size_t>(width + 1) / 2, regions);
        for (int x = 0; x < width; ++x) ASSERT_EQ(x % 2 == 0 ? x / 2 + 1 : 0, dst.at(x, size.height - 1));
    }
}

MEMBER_TEST(LabelMarkers, ArgumentsAreTestedInOrder) {
    using M = TypeParam;
    using Source = typename M::Source;
    using Label = typename M::Label;
    GuardedImage<Source> src(6, 4, {.padding = 8});
    src.fillRandom(1);
    GuardedImage<Label> dst(6, 4, {.padding = 8});
    GuardedBlock buffer(bufferBytes(src.size()));
    Lum32s count = -5;
    constexpr bool inPlace = sizeof(Source) == sizeof(Label);
    const Arguments good{.size = src.size(), .count = &count, .buffer = buffer.as<>()};
    const auto refused = [&](LumStatus expected, const Arguments& a, Source* s, int srcStep, Label* d,
                             int dstStep) {
        EXPECT_STATUS(expected, call(M{}, s, srcStep, d, dstStep, a));
        EXPECT_TRUE(src.untouched());
        EXPECT_TRUE(dst.untouched());
        EXPECT_EQ(-5, count);
    };
    const auto with = [&](LumStatus expected, auto change) {
        Arguments a = good;
        change(a);
        refused(expected, a, src.data(), src.step(), dst.data(), dst.step());
    };
    Arguments worst = good;
    worst.size = {0, 4};
    worst.norm = 2;
    refused(lumStatusNullPointer, worst, nullptr, 1, dst.data(), 1);
    if (!inPlace) refused(lumStatusNullPointer, worst, src.data(), 1, nullptr, 1);
    worst.buffer = nullptr;
    refused(lumStatusNullPointer, worst, src.data(), 1, dst.data(), 1);
    worst.buffer = good.buffer;
    worst.count = nullptr;
    refused(lumStatusNullPointer, worst, src.data(), 1, dst.data(), 1);
    worst.count = good.count;
    refused(lumStatusSizeError, worst, src.data(), 1, dst.data(), 1);
    worst.size = {6, -1};
    refused(lumStatusSizeError, worst, src.data(), 1, dst.data(), 1);
    worst.size = good.size;
    const int row = 6 * static_cast<int>(sizeof(Source));
    refused(lumStatusStepError, worst, src.data(), row - 1, dst.data(), dst.step() + 1);
    refused(lumStatusStepError, worst, src.data(), -src.step(), dst.data(), dst.step() + 1);
    if (!inPlace) refused(lumStatusStepError, worst, src.data(), src.step(), dst.data(), 23);
    if (!inPlace) refused(lumStatusStepAlignmentError, worst, src.data(), src.step(), dst.data(), 25);
    if (sizeof(Source) == 2) refused(lumStatusStepAlignmentError, worst, src.data(), row + 1, dst.data(), 0);
    refused(lumStatusBadArgument, worst, src.data(), src.step(), dst.data(), dst.step());
    with(lumStatusBadArgument, [](Arguments& a) { a.minLabel = 0; });
    with(lumStatusBadArgument, [](Arguments& a) { a.maxLabel = M::top; });
    with(lumStatusBadArgument, [](Arguments& a) { a.minLabel = 255, a.maxLabel = 254; });
    with(lumStatusBadArgument, [](Arguments& a) { a.norm = -1; });
    // The ends of what is accepted.
    EXPECT_EQ(
        1,
        labelled<M>(
            std::vector<Source>{1}, {1, 1},
            {.size = {}, .minLabel = M::top - 1, .maxLabel = M::top - 1, .count = nullptr, .buffer = nullptr})
            .count);
}

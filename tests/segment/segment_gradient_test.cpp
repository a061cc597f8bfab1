#include "lumcv.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <deque>
#include <random>

#include "kernels/segment/gradient_growing.h"
#include "support/guarded_image.h"
#include "support/member_test.h"
#include "support/status_checks.h"

using namespace support;

namespace {

template <int channelCount> struct Member {
    static constexpr int channels = channelCount;
    static constexpr auto call = channels == 1 ? lumiSegmentGradient_8u_C1IR : lumiSegmentGradient_8u_C3IR;
    static constexpr auto bufferSize =
        channels == 1 ? lumiSegmentGradientGetBufferSize_8u_C1R : lumiSegmentGradientGetBufferSize_8u_C3R;
};

using Members = testing::Types<Member<1>, Member<3>>;
MEMBER_TEST_SUITE(SegmentGradient, Members);

struct Scene {
    LumSize size;
    std::vector<Lum8u> pixels;
    std::vector<Lum8u> markers;
};

template <class M>
std::vector<Lum8u> segmented(const Scene& scene, LumSpatialNorm norm, Lum32s flags, int shift = 0) {
    const Guard guard = shift % 2 == 0 ? Guard::after : Guard::before;
    const auto [width, height] = scene.size;
    GuardedImage<Lum8u> src(width, height,
                            {.channels = M::channels, .padding = shift % 3, .offset = shift, .guard = guard});
    GuardedImage<Lum8u> markers(width, height, {.padding = shift % 5, .offset = shift, .guard = guard});
    src.fill([&](int x, int y, int c) { return scene.pixels[(y * width + x) * M::channels + c]; });
    markers.fill([&](int x, int y, int) { return scene.markers[y * width + x]; });
    Lum32s bytes = 0;
    EXPECT_STATUS(lumStatusOk, M::bufferSize(scene.size, &bytes));
    GuardedBlock buffer(static_cast<std::size_t>(bytes), guard, shift);
    EXPECT_STATUS(lumStatusOk, M::call(src.data(), src.step(), markers.data(), markers.step(), scene.size,
                                       norm, flags, buffer.as<>()));
    EXPECT_TRUE(src.untouched());
    EXPECT_TRUE(markers.outsideUntouched());
    return markers.pixels();
}

/// A row of grey pixels between two rows of frame; each pixel has its value in one of the channels.
template <class M> Scene rowInFrame(const std::vector<int>& values, const std::vector<int>& markers) {
    const int width = static_cast<int>(values.size());
    Scene scene{{width, 3},
                std::vector<Lum8u>(static_cast<std::size_t>(width) * 3 * M::channels, 9),
                std::vector<Lum8u>(static_cast<std::size_t>(width) * 3, 0)};
    for (int x = 0; x < width; ++x) {
        for (int c = 0; c < M::channels; ++c)
            scene.pixels[(width + x) * M::channels + c] = static_cast<Lum8u>(values[x]);
        scene.markers[width + x] = static_cast<Lum8u>(markers[x]);
    }
    return scene;
}

std::vector<int> middleRow(const std::vector<Lum8u>& markers) {
    const std::size_t width = markers.size() / 3;
    return {markers.begin() + static_cast<std::ptrdiff_t>(width),
            markers.begin() + static_cast<std::ptrdiff_t>(2 * width)};
}

/// The growth by its steps, with a queue a difference.
template <class M> std::vector<Lum8u> reference(const Scene& scene, LumSpatialNorm norm, Lum32s flags) {
    static const int dx[8] = {-1, 1, 0, 0, -1, 1, -1, 1};
    static const int dy[8] = {0, 0, -1, 1, -1, -1, 1, 1};
    const auto [w, h] = scene.size;
    const int neighbours = norm == 0 ? 8 : 4;
    const int compared = (flags & 128) != 0 ? 8 : (flags & 64) != 0 ? 4 : 0;
    std::vector<Lum8u> marks = scene.markers;
    for (int i = 0; i < w * h; ++i)
        if (i % w == 0 || i % w == w - 1 || i / w == 0 || i / w == h - 1) marks[i] = 255;
    const auto difference = [&](int a, int b) {
        int largest = 0;
        for (int c = 0; c < M::channels; ++c)
            largest = std::max(
                largest, std::abs(scene.pixels[a * M::channels + c] - scene.pixels[b * M::channels + c]));
        return largest;
    };
    const auto neighbour = [&](int p, int i) { return p + dy[i] * w + dx[i]; };
    std::array<std::deque<int>, 256> queues;
    for (int p = 0; p < w * h; ++p) {
        if (marks[p] != 0) continue;
        int smallest = 256;
        for (int i = 0; i < neighbours; ++i) {
            const int q = neighbour(p, i);
            if (marks[q] >= 1 && marks[q] <= 254) smallest = std::min(smallest, difference(p, q));
        }
        if (smallest == 256) continue;
        queues[smallest].push_back(p);
        marks[p] = 255;
    }
    bool grew = false;
    for (int level = 0; level < 256;) {
        if (queues[level].empty()) {
            ++level;
            continue;
        }
        grew = true;
        const int p = queues[level].front();
        queues[level].pop_front();
        int smallest = 256;
        int label = 0;
        for (int i = 0; i < neighbours; ++i) {
            const int q = neighbour(p, i);
            if (marks[q] < 1 || marks[q] > 254) continue;
            const int d = difference(p, q);
            if (d > smallest || (d == smallest && marks[q] == 254)) continue;
            smallest = d;
            label = marks[q];
        }
        for (int i = 0; i < compared; ++i) {
            const int other = marks[neighbour(p, i)];
            if (other >= 1 && other <= 253 && other != label) {
                label = 254;
                break;
            }
        }
        marks[p] = static_cast<Lum8u>(label);
        for (int i = 0; i < neighbours; ++i) {
            const int q = neighbour(p, i);
            if (marks[q] != 0) continue;
            const int d = difference(p, q);
            queues[d].push_back(q);
            marks[q] = 255;
            level = std::min(level, d);
        }
    }
    return grew ? marks : scene.markers;
}

template <class M> Scene randomScene(std::mt19937& engine, LumSize size) {
    Scene scene{size, {}, {}};
    const auto pixels = static_cast<std::size_t>(size.width) * size.height;
    const int levels = engine() % 3 == 0 ? 2 : engine() % 2 == 0 ? 12 : 256;
    for (std::size_t i = 0; i < pixels * M::channels; ++i)
        scene.pixels.push_back(static_cast<Lum8u>(engine() % levels));
    scene.markers.assign(pixels, 0);
    for (int i = static_cast<int>(engine() % 8); i > 0; --i) {
        const int left = static_cast<int>(engine() % size.width);
        const int top = static_cast<int>(engine() % size.height);
        const Lum8u label = engine() % 6 == 0   ? 255
                            : engine() % 6 == 0 ? 254
                                                : static_cast<Lum8u>(1 + engine() % 4);
        for (int y = top; y < std::min<int>(top + 3, size.height); ++y)
            for (int x = left; x < std::min<int>(left + 2, size.width); ++x)
                scene.markers[y * size.width + x] = label;
    }
    return scene;
}

} // namespace

MEMBER_TEST(SegmentGradient, SmallDifferencesGrowFirst) {
    using M = TypeParam;
    // From the left over steps of 1, from the right over one of 40 only.
    const Scene scene = rowInFrame<M>({0, 10, 11, 12, 13, 53, 0}, {0, 1, 0, 0, 0, 2, 0});
    EXPECT_EQ((std::vector<int>{255, 1, 1, 1, 1, 2, 255}), middleRow(segmented<M>(scene, 1, 0)));
    EXPECT_EQ((std::vector<int>{255, 1, 1, 1, 254, 2, 255}),
              middleRow(segmented<M>(scene, 1, lumSegmentBorder4)));
}

MEMBER_TEST(SegmentGradient, FrameReads255AndLosesItsSeeds) {
    using M = TypeParam;
    Scene scene = rowInFrame<M>({5, 5, 5, 5, 5}, {3, 0, 7, 0, 0});
    const auto result = segmented<M>(scene, 0, 0);
    EXPECT_EQ((std::vector<Lum8u>{255, 255, 255, 255, 255, 255, 7, 7, 7, 255, 255, 255, 255, 255, 255}),
              result);
}

MEMBER_TEST(SegmentGradient, NothingIsWrittenWhereNoSeedCanGrow) {
    using M = TypeParam;
    // No seed, seeds in the frame only, seeds everywhere, and seeds of 255.
    for (const auto& markers :
         {std::vector<int>{0, 0, 0, 0, 0}, {4, 0, 0, 0, 4}, {1, 2, 3, 4, 5}, {0, 255, 255, 0, 0}}) {
        const Scene scene = rowInFrame<M>({5, 6, 7, 8, 9}, markers);
        for (LumSpatialNorm norm : {0, 1})
            EXPECT_EQ(scene.markers, segmented<M>(scene, norm, lumSegmentBorder8));
    }
}

MEMBER_TEST(SegmentGradient, ImagesOfFrameOnlyStayAsTheyAre) {
    using M = TypeParam;
    for (LumSize size : {LumSize{1, 1}, {2, 9}, {9, 2}, {1, 30}, {30, 1}}) {
        std::mt19937 engine(60);
        const Scene scene = randomScene<M>(engine, size);
        EXPECT_EQ(scene.markers, segmented<M>(scene, 0, 192));
    }
}

MEMBER_TEST(SegmentGradient, OfTwoAlikeTheLaterNeighbourCounts) {
    using M = TypeParam;
    const Scene scene = rowInFrame<M>({0, 10, 12, 14, 0}, {0, 1, 0, 2, 0});
    EXPECT_EQ((std::vector<int>{255, 1, 2, 2, 255}), middleRow(segmented<M>(scene, 1, 0)));
    // A later one of 254 does not.
    const Scene other = rowInFrame<M>({0, 10, 12, 14, 0}, {0, 1, 0, 254, 0});
    EXPECT_EQ((std::vector<int>{255, 1, 1, 254, 255}), middleRow(segmented<M>(other, 1, 0)));
    const Scene first = rowInFrame<M>({0, 10, 12, 14, 0}, {0, 254, 0, 1, 0});
    EXPECT_EQ((std::vector<int>{255, 254, 1, 1, 255}), middleRow(segmented<M>(first, 1, 0)));
}

MEMBER_TEST(SegmentGradient, SeedOf255IsNoLabelAndStays) {
    using M = TypeParam;
    const Scene scene = rowInFrame<M>({0, 10, 12, 14, 15, 0}, {0, 1, 0, 255, 0, 0});
    EXPECT_EQ((std::vector<int>{255, 1, 1, 255, 0, 255}), middleRow(segmented<M>(scene, 1, 0)));
}

MEMBER_TEST(SegmentGradient, EightWinsWhereBothFlagsAreSet) {
    using M = TypeParam;
    std::mt19937 engine(61);
    bool differ = false;
    for (int i = 0; i < 30; ++i) {
        const Scene scene = randomScene<M>(engine, {30, 20});
        const auto eight = segmented<M>(scene, 0, lumSegmentBorder8);
        EXPECT_EQ(eight, segmented<M>(scene, 0, lumSegmentBorder8 | lumSegmentBorder4 | 0x333F));
        differ |= eight != segmented<M>(scene, 0, lumSegmentBorder4);
    }
    EXPECT_TRUE(differ);
}

TEST(SegmentGradient_8u_C3IR, LargestChannelDifferenceCounts) {
    // The middle pixel is 9 from the left one in one channel, and 6 from the right one in all three.
    Scene scene{{5, 3}, std::vector<Lum8u>(45, 0), std::vector<Lum8u>(15, 0)};
    const Lum8u row[3][3] = {{50, 50, 59}, {50, 50, 50}, {56, 44, 56}};
    for (int x = 0; x < 3; ++x)
        for (int c = 0; c < 3; ++c) scene.pixels[(6 + x) * 3 + c] = row[x][c];
    scene.markers[6] = 1;
    scene.markers[8] = 2;
    EXPECT_EQ((std::vector<int>{255, 1, 2, 2, 255}), middleRow(segmented<Member<3>>(scene, 1, 0)));
}

MEMBER_TEST(SegmentGradient, EveryRunFollowsTheSteps) {
    using M = TypeParam;
    std::mt19937 engine(62);
    for (int i = 0; i < 1200; ++i) {
        const LumSize size{1 + static_cast<int>(engine() % 40), 1 + static_cast<int>(engine() % 25)};
        const Scene scene = randomScene<M>(engine, size);
        const Lum32s flags = i / 2 % 4 * 64;
        ASSERT_TRUE(sameBits(reference<M>(scene, i % 2, flags), segmented<M>(scene, i % 2, flags, i % 64)))
            << "run " << i << ": " << size.width << " x " << size.height;
    }
}

MEMBER_TEST(SegmentGradient, LargeImagesFollowTheSteps) {
    using M = TypeParam;
    std::mt19937 engine(63);
    for (LumSize size : {LumSize{128, 128}, {127, 129}, {5462, 3}, {3, 5462}, {190, 140}}) {
        Scene scene = randomScene<M>(engine, size);
        scene.markers[size.width + 1] = 9;
        for (Lum32s flags : {0, 64, 128})
            ASSERT_TRUE(sameBits(reference<M>(scene, 0, flags), segmented<M>(scene, 0, flags, 3)))
                << size.width << " x " << size.height;
    }
}

MEMBER_TEST(SegmentGradient, BufferSizeFollowsTheFormulaAndIsEnough) {
    using M = TypeParam;
    for (int width = 1; width <= 250; ++width)
        for (int height = 1; height <= 250; ++height) {
            Lum32s bytes = 0;
            EXPECT_STATUS(lumStatusOk, M::bufferSize({width, height}, &bytes));
            ASSERT_EQ(13 * width * height + 103, bytes);
            ASSERT_LE(lum::kernels::growthBytes({width, height}), static_cast<std::size_t>(bytes));
        }
    Lum32s bytes = -3;
    EXPECT_STATUS(lumStatusNullPointer, M::bufferSize({0, 1}, nullptr));
    EXPECT_STATUS(lumStatusSizeError, M::bufferSize({0, 1}, &bytes));
    EXPECT_STATUS(lumStatusSizeError, M::bufferSize({1, -1}, &bytes));
    EXPECT_EQ(-3, bytes);
    EXPECT_STATUS(lumStatusOk, M::bufferSize({40000, 30000}, &bytes));
    EXPECT_EQ(static_cast<Lum32s>(static_cast<std::uint32_t>(15600000103ULL)), bytes);
}

MEMBER_TEST(SegmentGradient, ArgumentsAreTestedInOrder) {
    using M = TypeParam;
    GuardedImage<Lum8u> src(6, 5, {.channels = M::channels, .padding = 3});
    GuardedImage<Lum8u> markers(6, 5, {.padding = 3});
    markers.fill([](int x, int, int) { return x == 2; });
    GuardedBlock buffer(13 * 30 + 103);
    struct Row {
        LumStatus expected;
        const Lum8u* src;
        int srcStep;
        Lum8u* markers;
        int markersStep;
        LumSize size;
        LumSpatialNorm norm;
        Lum8u* buffer;
    };
    const Lum8u* s = src.data();
    Lum8u* m = markers.data();
    Lum8u* b = buffer.as<>();
    const int row = 6 * M::channels;
    const Row table[] = {
        {lumStatusNullPointer, nullptr, 1, m, 1, {0, 5}, 2, b},
        {lumStatusNullPointer, s, 1, nullptr, 1, {0, 5}, 2, b},
        {lumStatusNullPointer, s, 1, m, 1, {0, 5}, 2, nullptr},
        {lumStatusSizeError, s, 1, m, 1, {0, 5}, 2, b},
        {lumStatusSizeError, s, 1, m, 1, {6, -5}, 2, b},
        {lumStatusStepError, s, row - 1, m, 9, {6, 5}, 2, b},
        {lumStatusStepError, s, row, m, 5, {6, 5}, 2, b},
        {lumStatusStepError, s, -row, m, 9, {6, 5}, 2, b},
        {lumStatusBadArgument, s, row, m, 6, {6, 5}, -1, b},
        {lumStatusBadArgument, s, row, m, 6, {6, 5}, 2, b},
        {lumStatusBadArgument, s, row, m, 6, {6, 5}, 3, b},
    };
    for (const Row& r : table)
        EXPECT_REFUSED(r.expected, markers,
                       M::call(r.src, r.srcStep, r.markers, r.markersStep, r.size, r.norm, 64, r.buffer));
}

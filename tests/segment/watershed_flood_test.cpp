#include "lumcv.h"

#include <gtest/gtest.h>

#include <deque>
#include <map>

#include "kernels/segment/watershed_flood.h"
#include "segment/watershed_members.h"
#include "support/member_test.h"

using namespace watersheds;
using namespace support;

namespace {

using Bytes = Member<Lum8u, Lum8u>;

MEMBER_TEST_SUITE(WatershedFlood, Integer);

struct Offset {
    int dx, dy;
};

/// The flood by its rules, with a queue a level.
template <class M> std::vector<typename M::Marker> reference(Scene<M> scene, Lum32s norm, Lum32s flags) {
    const std::vector<Offset> order{{-1, 0}, {1, 0}, {0, -1}, {0, 1}, {-1, -1}, {1, -1}, {-1, 1}, {1, 1}};
    const std::vector<Offset> compared{{0, -1}, {-1, 0}, {1, 0}, {0, 1}, {-1, -1}, {1, -1}, {-1, 1}, {1, 1}};
    const int neighbours = norm == 0 ? 8 : 4;
    const bool four = (flags & 64) != 0;
    const bool eight = (flags & 128) != 0;
    auto& marks = scene.markers;
    std::map<int, std::deque<int>> queues;
    const auto isLabel = [](int mark) { return mark != 0 && mark != boundary<M>; };
    const auto markAt = [&](int x, int y) {
        return scene.holds(x, y) ? int{marks[scene.at(x, y)]} : int{boundary<M>};
    };

    for (int y = 0; y < scene.size.height; ++y)
        for (int x = 0; x < scene.size.width; ++x) {
            const int p = scene.at(x, y);
            if (!isLabel(marks[p])) continue;
            for (int i = 0; i < neighbours; ++i)
                if (markAt(x + order[i].dx, y + order[i].dy) == 0) {
                    queues[scene.relief[p]].push_back(p);
                    break;
                }
            if (!four && !eight) continue;
            for (int i = 0; i < (eight ? 8 : 4); ++i) {
                const int other = markAt(x + compared[i].dx, y + compared[i].dy);
                if (isLabel(other) && other != marks[p]) {
                    marks[p] = boundary<M>;
                    break;
                }
            }
        }
    while (!queues.empty()) {
        const int level = queues.begin()->first;
        auto& queue = queues.begin()->second;
        if (queue.empty()) {
            queues.erase(queues.begin());
            continue;
        }
        const int p = queue.front();
        queue.pop_front();
        const int px = p % scene.size.width;
        const int py = p / scene.size.width;
        for (int i = 0; i < neighbours; ++i) {
            const int x = px + order[i].dx;
            const int y = py + order[i].dy;
            if (markAt(x, y) != 0) continue;
            const int q = scene.at(x, y);
            if (!four && !eight) {
                marks[q] = marks[p];
            } else {
                std::vector<int> labels;
                if (isLabel(marks[p])) labels.push_back(marks[p]);
                for (int k = 0; k < (four ? 4 : 8); ++k) {
                    const int other = markAt(x + compared[k].dx, y + compared[k].dy);
                    if (isLabel(other)) labels.push_back(other);
                }
                const bool agree =
                    !labels.empty() && std::equal(labels.begin() + 1, labels.end(), labels.begin());
                marks[q] = agree ? static_cast<typename M::Marker>(labels[0]) : boundary<M>;
            }
            queues[std::max<int>(scene.relief[q], level)].push_back(q);
        }
    }
    return marks;
}

} // namespace

TEST(SegmentWatershed_8u_C1IR, BasinsFillUpToTheRidgeBetweenThem) {
    const Scene<Bytes> scene{{7, 1}, {0, 1, 2, 9, 3, 2, 0}, {5, 0, 0, 0, 0, 0, 6}};
    EXPECT_EQ((std::vector<Lum8u>{5, 5, 5, 5, 6, 6, 6}), segmented(scene, 1, lumSegmentQueue));
    EXPECT_EQ((std::vector<Lum8u>{5, 5, 5, 255, 6, 6, 6}),
              segmented(scene, 1, lumSegmentQueue | lumSegmentBorder4));
}

MEMBER_TEST(WatershedFlood, NoSeedLeavesTheMarkers) {
    using M = TypeParam;
    const Scene<M> scene{{5, 4}, std::vector<Lum8u>(20, 3), std::vector<typename M::Marker>(20, 0)};
    for (Lum32s flags : boundaryFlags) EXPECT_EQ(scene.markers, segmented(scene, 0, lumSegmentQueue | flags));
}

MEMBER_TEST(WatershedFlood, OfMarkersThatTouchTheFirstMetTurn) {
    using M = TypeParam;
    const Scene<M> scene{{6, 1}, std::vector<Lum8u>(6, 3), {1, 1, 1, 2, 2, 2}};
    const auto b = boundary<M>;
    EXPECT_EQ((std::vector<typename M::Marker>{1, 1, b, 2, 2, 2}),
              segmented(scene, 1, lumSegmentQueue | lumSegmentBorder4));
    EXPECT_EQ(scene.markers, segmented(scene, 1, lumSegmentQueue));
}

MEMBER_TEST(WatershedFlood, BoundaryOnEntrySpreadsNoLabel) {
    using M = TypeParam;
    const auto b = boundary<M>;
    const Scene<M> scene{{5, 1}, std::vector<Lum8u>(5, 3), {0, 0, b, 0, 4}};
    EXPECT_EQ((std::vector<typename M::Marker>{0, 0, b, 4, 4}), segmented(scene, 0, lumSegmentQueue));
    const Scene<M> alone{{3, 1}, {1, 2, 3}, {0, b, 0}};
    EXPECT_EQ(alone.markers, segmented(alone, 0, lumSegmentQueue | lumSegmentBorder8));
}

MEMBER_TEST(WatershedFlood, BothFlagsScanEightAndFloodFour) {
    using M = TypeParam;
    // Markers that touch at a corner only: eight neighbours see the contact, four do not.
    const Scene<M> scene{{2, 2}, {1, 1, 1, 1}, {1, 0, 0, 2}};
    const auto both = segmented(scene, 1, lumSegmentQueue | lumSegmentBorder4 | lumSegmentBorder8);
    EXPECT_EQ(boundary<M>, both[0]);
    EXPECT_EQ(1, segmented(scene, 1, lumSegmentQueue | lumSegmentBorder4)[0]);
    std::mt19937 engine(5);
    for (int i = 0; i < 20; ++i) {
        const auto other = randomScene<M>(engine, {20, 20});
        EXPECT_EQ(reference(other, 0, 192), segmented(other, 0, lumSegmentQueue | 192));
    }
}

MEMBER_TEST(WatershedFlood, EveryRunFollowsTheRules) {
    using M = TypeParam;
    std::mt19937 engine(41);
    for (int i = 0; i < runsOf(1500); ++i) {
        const auto scene = randomScene<M>(engine, randomSize(engine));
        const Lum32s flags = boundaryFlags[i % 4];
        ASSERT_TRUE(
            sameBits(reference(scene, i / 4 % 2, flags),
                     segmented(scene, i / 4 % 2, lumSegmentQueue | flags | (i % 3 == 0 ? 2 : 0), i % 64)))
            << "run " << i << ": " << scene.size.width << " x " << scene.size.height;
    }
}

MEMBER_TEST(WatershedFlood, LargeImagesFollowTheRules) {
    using M = TypeParam;
    std::mt19937 engine(42);
    for (LumSize size : {LumSize{128, 128}, {127, 129}, {200, 170}, {16384, 1}, {1, 16384}, {3, 6000}}) {
        auto scene = randomScene<M>(engine, size);
        scene.markers[engine() % scene.markers.size()] = 77;
        for (Lum32s flags : boundaryFlags)
            ASSERT_TRUE(sameBits(reference(scene, flags / 64 % 2, flags),
                                 segmented(scene, flags / 64 % 2, lumSegmentQueue | flags, 7)))
                << size.width << " x " << size.height << " flags " << flags;
    }
}

MEMBER_TEST(WatershedFlood, BufferHoldsEveryQueue) {
    using M = TypeParam;
    const auto enough = [](LumSize size) {
        Lum32s bytes = 0;
        EXPECT_STATUS(lumStatusOk, M::bufferSize(size, &bytes));
        return lum::kernels::floodBytes<typename M::Marker>(size) <= static_cast<std::size_t>(bytes);
    };
    for (int width = 1; width <= 260; ++width)
        for (int height = 1; height <= 260; ++height)
            ASSERT_TRUE(enough({width, height})) << width << " x " << height;
    for (int small = 1; small <= 40; ++small)
        for (int large : {1000, 4095, 8191, 8192, 16383, 16384, 16385, 40000, 1000000}) {
            ASSERT_TRUE(enough({small, large})) << small << " x " << large;
            ASSERT_TRUE(enough({large, small})) << large << " x " << small;
        }
}

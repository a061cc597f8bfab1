#include <limits>

#include "motion/flow_scene.h"
#include "support/member_test.h"

using namespace support;

namespace {

MEMBER_TEST_SUITE(Flow, FlowElements);

/// A picture of one level by its values.
template <class Value> FlowPyramid<Lum32f> floats(LumSize size, Value value) {
    return FlowPyramid<Lum32f>(size, 0, [&](int x, int y) { return 255 * value(x, y); });
}

} // namespace

MEMBER_TEST(Flow, ShiftByAPixelIsFoundByHand) {
    const auto before = still<TypeParam>(0);
    const auto after = moved<TypeParam>({1, 0, 0}, 0);
    for (LumSize region : {windowsOnly, wholeLevels}) {
        const Tracked t = track<TypeParam>(before, after, {{60, 50}}, {{60, 50}}, region, {.maxLevel = 0});
        ASSERT_EQ(0, t.call);
        EXPECT_EQ(0, t.status[0]);
        EXPECT_NEAR(61, t.next[0].x, 0.01);
        EXPECT_NEAR(50, t.next[0].y, 0.01);
        EXPECT_LT(t.error[0], FlowMembers<TypeParam>::scale * 0.6);
    }
}

MEMBER_TEST(Flow, FlatPictureLosesThePointAndKeepsTheGuess) {
    const FlowPyramid<TypeParam> flat({40, 40}, 0, [](int, int) { return 100; });
    for (LumSize region : {windowsOnly, wholeLevels}) {
        const Tracked t = track<TypeParam>(flat, flat, {{20, 20}}, {{20.5F, 19}}, region, {.maxLevel = 0});
        EXPECT_EQ(0, t.call);
        EXPECT_EQ(1, t.status[0]);
        EXPECT_EQ(20.5F, t.next[0].x);
        EXPECT_EQ(19, t.next[0].y);
        EXPECT_EQ(0, t.error[0]);
    }
}

MEMBER_TEST(Flow, PointLostBelowKeepsTheEntryOfTheLevelAbove) {
    // Level 1 has texture, level 0 is flat.
    FlowPyramid<TypeParam> before({80, 80}, 1, [](int, int) { return 100; });
    FlowPyramid<TypeParam> after({80, 80}, 1, [](int, int) { return 100; });
    const auto fine = FlowPyramid<TypeParam>({40, 40}, 0, [](int x, int y) { return texture(x, y); });
    const auto fineMoved =
        FlowPyramid<TypeParam>({40, 40}, 0, [](int x, int y) { return texture(x - 1, y); });
    before.record.images[1] = const_cast<TypeParam*>(fine.level(0).data());
    before.record.steps[1] = fine.level(0).step();
    after.record.images[1] = const_cast<TypeParam*>(fineMoved.level(0).data());
    after.record.steps[1] = fineMoved.level(0).step();
    for (LumSize region : {windowsOnly, LumSize{60, 60}, wholeLevels}) {
        const Tracked t =
            track<TypeParam>(before, after, {{40, 40}}, {{40, 40}}, region, {.winSize = 11, .maxLevel = 1});
        EXPECT_EQ(0, t.call);
        EXPECT_EQ(1, t.status[0]);
        EXPECT_NEAR(42, t.next[0].x, 0.05);
        EXPECT_NEAR(40, t.next[0].y, 0.05);
        EXPECT_EQ(0, t.error[0]);
    }
}

MEMBER_TEST(Flow, GuessOutsideTheSecondPictureIsLost) {
    const auto before = still<TypeParam>(1);
    const auto after = moved<TypeParam>({1, 0, 0}, 1);
    for (LumSize region : {windowsOnly, wholeLevels}) {
        const Tracked t = track<TypeParam>(before, after, {{60, 50}, {60, 50}}, {{500, 50}, {60, -90.5F}},
                                           region, {.maxLevel = 1});
        EXPECT_EQ(0, t.call);
        EXPECT_EQ(2, t.status[0]);
        EXPECT_EQ(500, t.next[0].x);
        EXPECT_EQ(2, t.status[1]);
        EXPECT_EQ(-90.5F, t.next[1].y);
        EXPECT_EQ(0, t.error[1]);
    }
}

MEMBER_TEST(Flow, PointOutsideTheFirstPictureIsLost) {
    const auto before = still<TypeParam>(0);
    for (LumSize region : {windowsOnly, wholeLevels})
        for (LumPoint32f far : {LumPoint32f{-300, 20}, LumPoint32f{3e9F, 20},
                                LumPoint32f{20, std::numeric_limits<float>::quiet_NaN()}}) {
            const Tracked t = track<TypeParam>(before, before, {far}, {{20, 20}}, region, {.maxLevel = 0});
            EXPECT_EQ(0, t.call);
            EXPECT_EQ(1, t.status[0]);
            EXPECT_EQ(20, t.next[0].x);
        }
}

MEMBER_TEST(Flow, ThresholdOfZeroEndsByIterationsOrOscillation) {
    const auto before = still<TypeParam>(0);
    const auto after = moved<TypeParam>({0.5, 0.25, 0}, 0);
    for (int iterations : {1, 2, 40}) {
        const Tracked t = track<TypeParam>(before, after, {{60, 50}}, {{60, 50}}, windowsOnly,
                                           {.maxLevel = 0, .maxIterations = iterations, .threshold = 0});
        EXPECT_EQ(0, t.status[0]);
        EXPECT_NEAR(60.5, t.next[0].x, iterations == 1 ? 0.2 : 0.02);
    }
}

TEST(FlowOfFloats, AlternatingStepsEndOnTheirMidpoint) {
    // The slope of the second bowl is twice that of the first: a step takes a point to the other side of the centre.
    const auto bowl = [](double slope) {
        return floats({41, 41},
                      [=](int x, int y) { return slope * ((x - 20) * (x - 20) + (y - 20) * (y - 20)) / 2; });
    };
    const auto before = bowl(1);
    const auto after = bowl(2);
    for (LumSize region : {windowsOnly, wholeLevels})
        for (int iterations : {1, 2, 10, 11}) {
            const Tracked t =
                track<Lum32f>(before, after, {{20, 20}}, {{20.25F, 20.5F}}, region,
                              {.winSize = 11, .maxLevel = 0, .maxIterations = iterations, .threshold = 0});
            EXPECT_EQ(0, t.status[0]);
            EXPECT_NEAR(iterations == 1 ? 19.75 : 20, t.next[0].x, 1e-3) << iterations;
            EXPECT_NEAR(iterations == 1 ? 19.5 : 20, t.next[0].y, 1e-3) << iterations;
        }
}

TEST(FlowOfFloats, WindowOfAPixelHasNoDeterminant) {
    const auto picture = floats({20, 20}, [](int x, int y) { return x * x + 3 * y; });
    for (LumSize region : {windowsOnly, wholeLevels}) {
        const Tracked t =
            track<Lum32f>(picture, picture, {{9, 9}}, {{9, 9}}, region, {.winSize = 1, .maxLevel = 0});
        EXPECT_EQ(1, t.status[0]);
    }
}

TEST(FlowOfFloats, ErrorLeavesOutTheLastRowAndColumn) {
    // The second picture is brighter in the window's last row and column alone; the gradients there are those of both.
    const auto before = floats({40, 40}, [](int x, int y) { return texture(x, y); });
    const auto after =
        floats({40, 40}, [](int x, int y) { return texture(x, y) + (x == 23 || y == 23 ? 50 : 0); });
    const FlowSearch search{.winSize = 7, .maxLevel = 0, .maxIterations = 1};
    const Tracked t = track<Lum32f>(before, after, {{20, 20}}, {{20, 20}}, windowsOnly, search);
    EXPECT_EQ(0, t.status[0]);
    EXPECT_EQ(0, t.error[0]);
    const auto inside =
        floats({40, 40}, [](int x, int y) { return texture(x, y) + (x == 22 && y == 22 ? 50 : 0); });
    const Tracked seen = track<Lum32f>(before, inside, {{20, 20}}, {{20, 20}}, windowsOnly, search);
    EXPECT_NEAR(std::sqrt(2500.0 / 36), seen.error[0], 1e-3);
}

MEMBER_TEST(Flow, PointsThatLeaveTheCoarsestLevelOnlyAreLostThere) {
    const auto before = still<TypeParam>();
    const auto after = moved<TypeParam>({0, 0, 0});
    std::vector<LumPoint32f> points{{70, 60}, {500, 500}, {80, 50}};
    const Tracked t = track<TypeParam>(before, after, points, points, wholeLevels, {});
    EXPECT_EQ((std::vector<Lum8s>{0, 3, 0}), t.status);
}

MEMBER_TEST(Flow, MissingLevelOfTheSecondPyramidLosesEveryPoint) {
    const auto before = still<TypeParam>(1);
    auto after = moved<TypeParam>({1, 0, 0}, 1);
    after.record.images[0] = nullptr;
    for (LumSize region : {windowsOnly, LumSize{100, 100}, wholeLevels}) {
        const Tracked t = track<TypeParam>(before, after, {{60, 50}, {80, 60}}, {{60, 50}, {80, 60}}, region,
                                           {.maxLevel = 1});
        EXPECT_EQ(0, t.call);
        EXPECT_EQ((std::vector<Lum8s>{1, 1}), t.status);
        EXPECT_EQ((std::vector<Lum32f>{0, 0}), t.error);
        EXPECT_NEAR(61, t.next[0].x, 0.1);
    }
}

MEMBER_TEST(Flow, MissingLevelOfTheFirstPyramidEndsTheLevel) {
    auto before = still<TypeParam>(1);
    const auto after = moved<TypeParam>({1, 0, 0}, 1);
    before.record.steps[0] = 10;
    // Level after level: both points have come down to level 1, the first of them was about to go on.
    const Tracked small = track<TypeParam>(before, after, {{60, 50}, {80, 60}}, {{60, 50}, {80, 60}},
                                           wholeLevels, {.maxLevel = 1});
    EXPECT_EQ((std::vector<Lum8s>{0, 1}), small.status);
    EXPECT_NEAR(61, small.next[0].x, 0.1);
    EXPECT_NEAR(81, small.next[1].x, 0.1);
    EXPECT_GT(small.error[0], 0);
    EXPECT_LT(small.error[0], 4 * FlowMembers<TypeParam>::scale);
    // Point after point, unless levels are narrower and lower than the state's: the second one was never looked at.
    for (LumSize region : {windowsOnly, LumSize{wholeLevels.width, windowsOnly.height},
                           LumSize{windowsOnly.width, wholeLevels.height}}) {
        const Tracked large = track<TypeParam>(before, after, {{60, 50}, {80, 60}}, {{60, 50}, {80, 60}},
                                               region, {.maxLevel = 1});
        EXPECT_EQ((std::vector<Lum8s>{0, 2}), large.status);
        EXPECT_EQ(80, large.next[1].x);
    }
}

MEMBER_TEST(Flow, MissingLevelInTheMiddleEndsThere) {
    auto before = still<TypeParam>(2);
    const auto after = moved<TypeParam>({1, 0, 0}, 2);
    before.record.steps[1] = 10;
    // Level 1 ends with the first point, which has its status by then and goes on at level 0; the second has not come so far.
    const Tracked t = track<TypeParam>(before, after, {{60, 50}, {80, 60}}, {{60, 50}, {80, 60}}, wholeLevels,
                                       {.maxLevel = 2});
    EXPECT_EQ((std::vector<Lum8s>{0, 2}), t.status);
    EXPECT_NEAR(61, t.next[0].x, 0.1);
    EXPECT_NEAR(81, t.next[1].x, 0.3);
}

MEMBER_TEST(Flow, LevelTwoAboveAMissingOneLeavesItsErrors) {
    auto before = still<TypeParam>(2);
    const auto after = moved<TypeParam>({1, 0, 0}, 2);
    before.record.steps[0] = 10;
    // Level 2 is followed as a whole, the levels below it point after point: the second point ends on level 2.
    const Tracked t = track<TypeParam>(before, after, {{60, 50}, {80, 60}}, {{60, 50}, {80, 60}}, {60, 60},
                                       {.maxLevel = 2});
    EXPECT_EQ((std::vector<Lum8s>{0, 2}), t.status);
    EXPECT_GT(t.error[1], 0);
    EXPECT_LT(t.error[1], 20 * FlowMembers<TypeParam>::scale);
}

MEMBER_TEST(Flow, SecondPyramidMayHaveOtherSizes) {
    const auto before = still<TypeParam>(0);
    const FlowPyramid<TypeParam> after({100, 70}, 0, [](int x, int y) { return texture(x - 0.5, y); });
    const Tracked t = track<TypeParam>(before, after, {{50, 40}, {120, 90}}, {{50, 40}, {120, 90}},
                                       wholeLevels, {.maxLevel = 0});
    EXPECT_EQ(0, t.status[0]);
    EXPECT_NEAR(50.5, t.next[0].x, 0.02);
    EXPECT_EQ(1, t.status[1]);
}

MEMBER_TEST(Flow, StatesServeManyCallsAndRegions) {
    const auto before = still<TypeParam>();
    const auto after = moved<TypeParam>({1.5, -0.5, 0});
    const auto points = gridOfPoints(sceneSize, 25, 20);
    const Tracked once = track<TypeParam>(before, after, points, points, {100, 100}, {});
    FlowState<TypeParam> state({100, 100}, 15);
    for (int run = 0; run < 3; ++run) {
        auto next = points;
        std::vector<Lum8s> status(points.size());
        std::vector<Lum32f> error(points.size());
        ASSERT_EQ(0, FlowMembers<TypeParam>::run(&before.record, &after.record, points.data(), next.data(),
                                                 status.data(), error.data(), static_cast<int>(points.size()),
                                                 15, 2, 30, 0.001F, state.state));
        EXPECT_EQ(0, std::memcmp(next.data(), once.next.data(), points.size() * sizeof(LumPoint32f)));
        EXPECT_EQ(once.error, error);
    }
}

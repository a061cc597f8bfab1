#include <array>
#include <limits>

#include "kernels/motion/subpix.h"
#include "motion/subpix_members.h"
#include "motion/subpix_placement.h"
#include "support/argument_order.h"
#include "support/member_test.h"
#include "support/status_checks.h"

using namespace support;

namespace {

using Everything = testing::Types<SubpixMembers<Lum8u, Lum8u>, SubpixMembers<Lum8u, Lum16u>,
                                  SubpixMembers<Lum16u, Lum16u>, SubpixMembers<Lum8u, Lum32f>,
                                  SubpixMembers<Lum16u, Lum32f>, SubpixMembers<Lum32f, Lum32f>>;
MEMBER_TEST_SUITE(Subpix, Everything);

template <class Members>
bool isScaled =
    std::is_same_v<typename Members::Source, Lum8u>&& std::is_same_v<typename Members::Result, Lum16u>;

/// A source of given rows, a patch and the call between them.
template <class Members> struct InsideScene {
    using S = typename Members::Source;
    using D = typename Members::Result;
    GuardedImage<S> src;
    GuardedImage<D> dst;

    explicit InsideScene(LumSize patch, Placement srcPlacement = {}, Placement dstPlacement = {})
        : src(patch.width + 1, patch.height + 1, srcPlacement),
          dst(patch.width, patch.height, dstPlacement) {}

    Inside<S, D> arguments(float dx, float dy, int scaleFactor = 0) {
        return {src.data(), src.step(), dst.data(), dst.step(), dst.size(), dx, dy, scaleFactor};
    }
};

template <class Members> struct AroundScene {
    using S = typename Members::Source;
    using D = typename Members::Result;
    GuardedImage<S> src;
    GuardedImage<D> dst;
    LumPoint first{-77, -77};
    LumPoint last{-77, -77};

    AroundScene(LumSize source, LumSize patch, Placement srcPlacement = {}, Placement dstPlacement = {})
        : src(source.width, source.height, srcPlacement), dst(patch.width, patch.height, dstPlacement) {}

    Around<S, D> arguments(LumPoint32f point, int scaleFactor = 0) {
        return {src.data(), src.step(), src.size(), dst.data(), dst.step(),
                dst.size(), point,      &first,     &last,      scaleFactor};
    }
};

using Bytes = SubpixMembers<Lum8u, Lum8u>;
using Scaled = SubpixMembers<Lum8u, Lum16u>;

/// The four weights of a position, read through a source with one pixel of 2 and the scale of a half.
std::array<int, 4> weightsOfScaled(float dx, float dy) {
    std::array<int, 4> weights{};
    for (int i = 0; i < 4; ++i) {
        InsideScene<Scaled> scene({1, 1});
        scene.src.fill([&](int x, int y, int) { return 2 * y + x == i ? 2 : 0; });
        EXPECT_EQ(0, Scaled::callInside(scene.arguments(dx, dy, -13)));
        weights[i] = scene.dst.at(0, 0);
    }
    return weights;
}

LumPoint spanOf(LumSize source, LumSize patch, LumPoint32f point, bool first) {
    AroundScene<Bytes> scene(source, patch);
    EXPECT_EQ(0, Bytes::callAround(scene.arguments(point)));
    return first ? scene.first : scene.last;
}

} // namespace

MEMBER_TEST(Subpix, QuarterOfTheWayIsWeighedByHand) {
    InsideScene<TypeParam> scene({1, 1});
    // 0.75 * 0.5 * 16 + 0.25 * 0.5 * 80 + 0.75 * 0.5 * 48 + 0.25 * 0.5 * 112 = 48
    scene.src.fill([](int x, int y, int) { return x == 0 ? (y == 0 ? 16 : 48) : (y == 0 ? 80 : 112); });
    ASSERT_EQ(0, TypeParam::callInside(scene.arguments(0.25F, 0.5F)));
    EXPECT_EQ(48, scene.dst.at(0, 0));
}

MEMBER_TEST(Subpix, PatchAroundAPointIsWeighedByHand) {
    AroundScene<TypeParam> scene({4, 3}, {2, 1});
    scene.src.fill([](int x, int y, int) { return 10 * x + 40 * y; });
    ASSERT_EQ(0, TypeParam::callAround(scene.arguments({1.0F, 1.25F})));
    // The left column of two around 1 is 0.5; row 1.25 has the value 50.
    EXPECT_EQ(55, scene.dst.at(0, 0));
    EXPECT_EQ(65, scene.dst.at(1, 0));
    EXPECT_EQ(0, scene.first.x);
    EXPECT_EQ(0, scene.first.y);
    EXPECT_EQ(1, scene.last.x);
    EXPECT_EQ(0, scene.last.y);
}

MEMBER_TEST(Subpix, NegativePositionHasTheFractionAboveTheLowerInteger) {
    InsideScene<TypeParam> negative({5, 3});
    InsideScene<TypeParam> positive({5, 3});
    negative.src.fillRandom(1);
    positive.src.fillRandom(1);
    for (float whole : {0.0F, -1.0F, -1000.0F}) {
        ASSERT_EQ(0, TypeParam::callInside(negative.arguments(whole - 0.25F, whole - 0.5F)));
        ASSERT_EQ(0, TypeParam::callInside(positive.arguments(0.75F, 17.5F)));
        EXPECT_TRUE(sameBits(positive.dst.pixels(), negative.dst.pixels())) << whole;
    }
}

TEST(SubpixFixedPoint, PositionOnAPixelStillLeaksIntoItsNeighbours) {
    EXPECT_EQ((std::array<int, 4>{16381, 1, 1, 1}), weightsOfScaled(0, 0));
}

TEST(SubpixFixedPoint, FlatPatchKeepsItsValue) {
    for (float fx : {0.0F, 0.1F, 0.5F, 0.77F, 0.99999F})
        for (int value : {0, 1, 100, 254, 255}) {
            InsideScene<Bytes> scene({20, 2});
            scene.src.fill([&](int, int, int) { return value; });
            ASSERT_EQ(0, Bytes::callInside(scene.arguments(fx, 1 - fx)));
            for (Lum8u pixel : scene.dst.pixels()) ASSERT_EQ(value, pixel) << fx;
        }
}

TEST(SubpixFixedPoint, EqualWeightsGiveUpTheExcessInTheirOrder) {
    // Four equal weights of 4097.
    EXPECT_EQ((std::array<int, 4>{4093, 4097, 4097, 4097}), weightsOfScaled(0.5F, 0.5F));
    // Left ones equal, and greater than the right ones.
    EXPECT_EQ((std::array<int, 4>{8189, 1, 8193, 1}), weightsOfScaled(0, 0.5F));
    // Right ones equal and greatest: the upper one.
    EXPECT_EQ((std::array<int, 4>{2049, 6141, 2049, 6145}), weightsOfScaled(0.75F, 0.5F));
    // Lower ones equal and greatest: the left one.
    EXPECT_EQ((std::array<int, 4>{2049, 2049, 6141, 6145}), weightsOfScaled(0.5F, 0.75F));
    // The lower right one alone.
    EXPECT_EQ((std::array<int, 4>{1025, 3073, 3073, 9213}), weightsOfScaled(0.75F, 0.75F));
}

TEST(SubpixFixedPoint, WeightsOfAllFractionsAddUpAsStated) {
    for (int ax = 0; ax < 16384; ax += 37)
        for (int ay = 1; ay < 16384; ay += 1021) {
            const auto expected = plainFixedWeights(ax, ay);
            const auto found = lum::fixedWeights(ax, ay, lum::kernels::FixedScale(0));
            ASSERT_EQ(expected, (std::array<long long, 4>{found.w00, found.w01, found.w10, found.w11}))
                << ax << ", " << ay;
        }
}

TEST(SubpixFixedPoint, ScaleOfZeroRoundsByAHalf) {
    InsideScene<Scaled> scene({1, 1});
    scene.src.fill([](int x, int, int) { return x; });
    // About a half, which is rounded up; a little less is rounded down.
    ASSERT_EQ(0, Scaled::callInside(scene.arguments(0.5F, 0, 0)));
    EXPECT_EQ(1, scene.dst.at(0, 0));
    ASSERT_EQ(0, Scaled::callInside(scene.arguments(0.499F, 0, 0)));
    EXPECT_EQ(0, scene.dst.at(0, 0));
}

TEST(SubpixFixedPoint, ScaleFactorMovesTheBinaryPoint) {
    InsideScene<Scaled> scene({9, 2});
    scene.src.fillRandom(4);
    for (int scale = -13; scale <= 17; ++scale)
        for (float dx : {0.0F, 0.3F}) {
            const auto a = scene.arguments(dx, 0.7F, scale);
            ASSERT_EQ(0, Scaled::callInside(a));
            ASSERT_TRUE(sameBits(plainInside(scene.src, a), scene.dst.pixels())) << scale;
        }
}

TEST(SubpixFixedPoint, ScaleReachesTheEdgesToo) {
    AroundScene<Scaled> scene({3, 3}, {9, 9});
    scene.src.fill([](int, int, int) { return 200; });
    ASSERT_EQ(0, Scaled::callAround(scene.arguments({1, 1}, -4)));
    for (Lum16u pixel : scene.dst.pixels()) ASSERT_EQ(3200, pixel);
}

TEST(SubpixFixedPoint, ScaledResultsSaturate) {
    InsideScene<Scaled> scene({9, 1});
    scene.src.fill([](int, int, int) { return 255; });
    ASSERT_EQ(0, Scaled::callInside(scene.arguments(0, 0, -9)));
    for (Lum16u pixel : scene.dst.pixels()) ASSERT_EQ(65535, pixel);
}

MEMBER_TEST(Subpix, EveryWidthPositionAndPlacementInside) {
    using S = typename TypeParam::Source;
    using D = typename TypeParam::Result;
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 engine(seed);
    std::vector<int> widths{127, 128, 129, 130, 200, 391};
    for (int width = 1; width <= 70; ++width) widths.push_back(width);
    const auto position = [&] {
        const unsigned kind = engine() % 8;
        if (kind == 0) return 0.0F;
        if (kind == 1) return static_cast<float>(engine() % 5) - 2;
        return static_cast<float>(engine() % 100000) / 25000 - 2;
    };
    for (int width : widths)
        for (Guard guard : {Guard::after, Guard::before}) {
            const auto placement = [&](int size) {
                return Placement{.padding = static_cast<int>(engine() % 5) * size,
                                 .offset = static_cast<int>(engine() % 33),
                                 .guard = guard};
            };
            InsideScene<TypeParam> scene({width, 1 + static_cast<int>(engine() % 4)}, placement(sizeof(S)),
                                         placement(sizeof(D)));
            scene.src.fillRandom(engine());
            const auto a = scene.arguments(position(), position(),
                                           isScaled<TypeParam> ? static_cast<int>(engine() % 8) - 4 : 0);
            ASSERT_EQ(0, TypeParam::callInside(a));
            ASSERT_TRUE(sameBits(plainInside(scene.src, a), scene.dst.pixels()))
                << width << " at " << a.dx << ", " << a.dy;
            ASSERT_TRUE(scene.src.untouched() && scene.dst.outsideUntouched());
        }
}

MEMBER_TEST(Subpix, EveryPlaceOfAPatchAroundAPoint) {
    using S = typename TypeParam::Source;
    using D = typename TypeParam::Result;
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 engine(seed);
    for (int run = 0; run < 3000; ++run) {
        const auto side = [&](int most) { return 1 + static_cast<int>(engine() % most); };
        const auto placement = [&](int size) {
            return Placement{.padding = static_cast<int>(engine() % 3) * size,
                             .offset = static_cast<int>(engine() % 17),
                             .guard = engine() % 2 == 0 ? Guard::after : Guard::before};
        };
        const LumSize source{side(engine() % 4 == 0 ? 60 : 9), side(9)};
        const LumSize patch{side(engine() % 4 == 0 ? 60 : 9), side(9)};
        AroundScene<TypeParam> scene(source, patch, placement(sizeof(S)), placement(sizeof(D)));
        scene.src.fillRandom(engine());
        const auto place = [&](int length, int patchLength) {
            const float span = static_cast<float>(length + 3 * patchLength);
            const float p =
                static_cast<float>(engine() % 10000) / 10000 * span - 1.5F * static_cast<float>(patchLength);
            return engine() % 4 == 0 ? std::nearbyint(p * 2) / 2 : p;
        };
        const auto a = scene.arguments({place(source.width, patch.width), place(source.height, patch.height)},
                                       isScaled<TypeParam> ? static_cast<int>(engine() % 8) - 4 : 0);
        ASSERT_EQ(0, TypeParam::callAround(a));
        const auto expected = plainAround(scene.src, a);
        ASSERT_TRUE(sameBits(expected.pixels, scene.dst.pixels()))
            << source.width << " x " << source.height << ", " << patch.width << " x " << patch.height
            << " at " << a.point.x << ", " << a.point.y;
        ASSERT_EQ(expected.first.x, scene.first.x);
        ASSERT_EQ(expected.first.y, scene.first.y);
        ASSERT_EQ(expected.last.x, scene.last.x);
        ASSERT_EQ(expected.last.y, scene.last.y);
        ASSERT_TRUE(scene.src.untouched() && scene.dst.outsideUntouched());
    }
}

TEST(SubpixIntersect, PatchOnTheLastColumnIsCutThere) {
    EXPECT_EQ(
        1,
        spanOf({10, 10}, {5, 5}, {9, 4}, false).x); // columns 7 and 8, and not 9, which has none at its right
    EXPECT_EQ(4, spanOf({10, 10}, {5, 5}, {9, 4}, false).y);
    EXPECT_EQ(0, spanOf({10, 10}, {5, 5}, {9, 4}, true).x);
}

TEST(SubpixIntersect, PatchOnTheFirstColumnBeginsInside) {
    EXPECT_EQ(2, spanOf({10, 10}, {5, 5}, {0, 4}, true).x);
    EXPECT_EQ(4, spanOf({10, 10}, {5, 5}, {0, 4}, false).x);
}

MEMBER_TEST(Subpix, PatchFarAtTheLeftRepeatsTheFirstColumn) {
    AroundScene<TypeParam> scene({6, 6}, {4, 3});
    scene.src.fill([](int x, int y, int) { return 10 * y + x; });
    ASSERT_EQ(0, TypeParam::callAround(scene.arguments({-1000, 2})));
    EXPECT_EQ(4, scene.first.x);
    EXPECT_EQ(-1, scene.last.x);
    EXPECT_EQ(0, scene.first.y);
    EXPECT_EQ(2, scene.last.y);
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 4; ++x) EXPECT_EQ(10 * (y + 1), scene.dst.at(x, y));
}

// The position is one of 32 bits, where the patch begins is not.
MEMBER_TEST(Subpix, PatchMayBeginBeyondThirtyTwoBits) {
    AroundScene<TypeParam> scene({6, 6}, {512, 3});
    scene.src.fill([](int x, int y, int) { return 10 * y + x; });
    ASSERT_EQ(0, TypeParam::callAround(scene.arguments({-2147483648.0F, 2})));
    EXPECT_EQ(512, scene.first.x);
    EXPECT_EQ(-1, scene.last.x);
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 512; ++x) ASSERT_EQ(10 * (y + 1), scene.dst.at(x, y));
}

MEMBER_TEST(Subpix, PatchFarAtTheRightRepeatsTheLastPixels) {
    for (float far : {1000.0F, 3e9F, 1e30F, std::numeric_limits<float>::infinity()}) {
        AroundScene<TypeParam> scene({6, 6}, {4, 3});
        scene.src.fill([](int x, int y, int) { return 10 * y + x; });
        ASSERT_EQ(0, TypeParam::callAround(scene.arguments({far, far})));
        EXPECT_EQ(0, scene.first.x);
        EXPECT_EQ(-1, scene.last.x);
        EXPECT_EQ(0, scene.first.y);
        EXPECT_EQ(-1, scene.last.y);
        for (auto pixel : scene.dst.pixels()) EXPECT_EQ(55, pixel) << far;
    }
}

MEMBER_TEST(Subpix, PositionsThatNoIndexHoldsAreFarOutside) {
    for (float far :
         {-3e9F, -1e30F, -std::numeric_limits<float>::infinity(), std::numeric_limits<float>::quiet_NaN()}) {
        AroundScene<TypeParam> scene({6, 6}, {4, 3});
        scene.src.fill([](int x, int y, int) { return 7 + 10 * y + x; });
        ASSERT_EQ(0, TypeParam::callAround(scene.arguments({far, far})));
        EXPECT_EQ(4, scene.first.x);
        EXPECT_EQ(-1, scene.last.x);
        EXPECT_EQ(3, scene.first.y);
        EXPECT_EQ(-1, scene.last.y);
        for (auto pixel : scene.dst.pixels()) EXPECT_EQ(7, pixel) << far;
    }
}

MEMBER_TEST(Subpix, PositionsWithoutFractionInsideDoNoHarm) {
    for (float far : {8388608.0F, -3e9F, 1e30F}) {
        InsideScene<TypeParam> scene({9, 1});
        scene.src.fill([](int, int, int) { return 7; });
        ASSERT_EQ(0, TypeParam::callInside(scene.arguments(far, far)));
        for (auto pixel : scene.dst.pixels()) EXPECT_NEAR(7, pixel, 1e-5) << far;
    }
    InsideScene<TypeParam> scene({9, 1});
    EXPECT_EQ(0, TypeParam::callInside(scene.arguments(std::numeric_limits<float>::quiet_NaN(), -INFINITY)));
}

TEST(SubpixFloats, LeastFractionsAreKept) {
    // A neighbour of 1e12 shows the least weight.
    const auto leak = []<class Members>(Members, int place) {
        InsideScene<Members> scene({1, 1});
        using S = typename Members::Source;
        const double large = std::is_same_v<S, Lum32f> ? 1e12 : std::numeric_limits<S>::max();
        scene.src.fill([&](int x, int y, int) { return 2 * y + x == place ? large : 0; });
        EXPECT_EQ(0, Members::callInside(scene.arguments(0, 0)));
        return scene.dst.at(0, 0) / large;
    };
    EXPECT_NEAR(1e-6, leak(SubpixMembers<Lum8u, Lum32f>{}, 1), 1e-12);
    EXPECT_NEAR(1e-9, leak(SubpixMembers<Lum8u, Lum32f>{}, 2), 1e-15);
    EXPECT_NEAR(1e-6, leak(SubpixMembers<Lum16u, Lum32f>{}, 1), 1e-12);
    EXPECT_NEAR(1e-9, leak(SubpixMembers<Lum16u, Lum32f>{}, 2), 1e-15);
    EXPECT_NEAR(1e-6, leak(SubpixMembers<Lum32f, Lum32f>{}, 1), 3e-12);
    EXPECT_NEAR(1e-6, leak(SubpixMembers<Lum32f, Lum32f>{}, 2), 3e-12);
}

MEMBER_TEST(Subpix, VectorAgreesWithScalarBitForBit) {
    using S = typename TypeParam::Source;
    using D = typename TypeParam::Result;
    using Kernel = lum::kernels::Sampling<S, D>;
    typename Kernel::Quad quad = [] {
        if constexpr (PlainSampler<S, D>::fixed)
            return lum::fixedWeights(3000, 9999, lum::kernels::FixedScale(0));
        else
            return lum::floatWeights(0.3F, 0.6F);
    }();
    typename Kernel::Pair pair = [] {
        if constexpr (PlainSampler<S, D>::fixed)
            return typename Kernel::Pair{13384, 3000, lum::kernels::FixedScale(0)};
        else
            return typename Kernel::Pair{0.7F, 0.3F};
    }();
    for (int width = 1; width <= 140; ++width)
        for (int offset : {0, 1, 7}) {
            const Placement placement{.offset = offset};
            // Up to more rows than two bands of the vector form have.
            const int height = std::array{2, 3, 16, 17, 35}[width % 5];
            GuardedImage<S> src(width + 1, height + 1, placement);
            src.fillRandom(width);
            GuardedImage<D> scalar(width, height, placement);
            GuardedImage<D> vector(width, height, placement);
            const lum::Image<const S> from{src.data(), src.step()};
            Kernel::patchScalar(from, {scalar.data(), scalar.step()}, scalar.size(), quad);
            Kernel::patch(from, {vector.data(), vector.step()}, vector.size(), quad);
            ASSERT_TRUE(sameBits(scalar.pixels(), vector.pixels())) << width;
            Kernel::rowScalar(src.row(height), scalar.row(1), width, pair);
            Kernel::row(src.row(height), vector.row(1), width, pair);
            ASSERT_TRUE(sameBits(scalar.pixels(), vector.pixels())) << width;
            ASSERT_TRUE(vector.outsideUntouched());
        }
}

MEMBER_TEST(Subpix, StatusesInsideComeInTheirOrder) {
    using S = typename TypeParam::Source;
    using D = typename TypeParam::Result;
    using A = Inside<S, D>;
    constexpr int srcRow = 8 * sizeof(S);
    constexpr int dstRow = 8 * sizeof(D);
    InsideScene<TypeParam> scene({8, 2}, {.padding = 16}, {.padding = 16});
    std::vector<Fault<A>> faults{
        {"src null", 0, lumStatusNullPointer, [](A& a) { a.src = nullptr; }},
        {"dst null", 0, lumStatusNullPointer, [](A& a) { a.dst = nullptr; }},
        {"width 0", 1, lumStatusSizeError, [](A& a) { a.size.width = 0; }},
        {"height negative", 1, lumStatusSizeError, [](A& a) { a.size.height = -1; }},
        {"srcStep short", 2, lumStatusStepError, [](A& a) { a.srcStep = srcRow - 1; }},
        {"dstStep short", 2, lumStatusStepError, [](A& a) { a.dstStep = dstRow - 1; }},
        {"srcStep negative", 2, lumStatusStepError, [](A& a) { a.srcStep = -srcRow; }},
        {"dstStep negative", 2, lumStatusStepError, [](A& a) { a.dstStep = -dstRow; }},
    };
    if (sizeof(S) > 1)
        faults.push_back(
            {"srcStep odd", 3, lumStatusStepAlignmentError, [](A& a) { a.srcStep = srcRow + 1; }});
    if (sizeof(D) > 1)
        faults.push_back(
            {"dstStep odd", 3, lumStatusStepAlignmentError, [](A& a) { a.dstStep = dstRow + 1; }});
    expectStatusesInOrder(scene.arguments(0, 0), faults, [&](const A& a) {
        scene.dst.fill([](int, int, int) { return 9; });
        const LumStatus status = TypeParam::callInside(a);
        if (status != lumStatusOk) {
            EXPECT_TRUE(scene.dst.untouched());
        }
        return status;
    });
}

MEMBER_TEST(Subpix, StatusesAroundAPointComeInTheirOrder) {
    using S = typename TypeParam::Source;
    using D = typename TypeParam::Result;
    using A = Around<S, D>;
    constexpr int srcRow = 8 * sizeof(S);
    constexpr int dstRow = 6 * sizeof(D);
    AroundScene<TypeParam> scene({8, 4}, {6, 2}, {.padding = 16}, {.padding = 16});
    std::vector<Fault<A>> faults{
        {"src null", 0, lumStatusNullPointer, [](A& a) { a.src = nullptr; }},
        {"dst null", 0, lumStatusNullPointer, [](A& a) { a.dst = nullptr; }},
        {"pMin null", 0, lumStatusNullPointer, [](A& a) { a.pMin = nullptr; }},
        {"pMax null", 0, lumStatusNullPointer, [](A& a) { a.pMax = nullptr; }},
        {"source width 0", 1, lumStatusSizeError, [](A& a) { a.srcSize.width = 0; }},
        {"source height 0", 1, lumStatusSizeError, [](A& a) { a.srcSize.height = 0; }},
        {"patch width negative", 1, lumStatusSizeError, [](A& a) { a.dstSize.width = -6; }},
        {"patch height 0", 1, lumStatusSizeError, [](A& a) { a.dstSize.height = 0; }},
        {"srcStep short", 2, lumStatusStepError, [](A& a) { a.srcStep = srcRow - 1; }},
        {"dstStep short", 2, lumStatusStepError, [](A& a) { a.dstStep = dstRow - 1; }},
    };
    if (sizeof(S) > 1)
        faults.push_back(
            {"srcStep odd", 3, lumStatusStepAlignmentError, [](A& a) { a.srcStep = srcRow + 1; }});
    if (sizeof(D) > 1)
        faults.push_back(
            {"dstStep odd", 3, lumStatusStepAlignmentError, [](A& a) { a.dstStep = dstRow + 1; }});
    expectStatusesInOrder(scene.arguments({2, 2}), faults, [&](const A& a) {
        scene.dst.fill([](int, int, int) { return 9; });
        scene.first = scene.last = {-77, -77};
        const LumStatus status = TypeParam::callAround(a);
        if (status != lumStatusOk) {
            EXPECT_TRUE(scene.dst.untouched());
            EXPECT_TRUE(scene.first.x == -77 && scene.last.y == -77);
        }
        return status;
    });
}

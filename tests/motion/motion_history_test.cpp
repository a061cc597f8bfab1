#include <cmath>
#include <limits>

#include "kernels/motion/motion_history.h"
#include "lumcv.h"
#include "support/argument_order.h"
#include "support/guarded_image.h"
#include "support/member_test.h"

using namespace support;

namespace {

template <class T> struct Arguments {
    const T* silhouette;
    int silhouetteStep;
    Lum32f* mhi;
    int mhiStep;
    LumSize size;
    float timestamp;
    float duration;
};

LumStatus call(const Arguments<Lum8u>& a) {
    return lumiUpdateMotionHistory_8u32f_C1IR(a.silhouette, a.silhouetteStep, a.mhi, a.mhiStep, a.size,
                                              a.timestamp, a.duration);
}
LumStatus call(const Arguments<Lum16u>& a) {
    return lumiUpdateMotionHistory_16u32f_C1IR(a.silhouette, a.silhouetteStep, a.mhi, a.mhiStep, a.size,
                                               a.timestamp, a.duration);
}
LumStatus call(const Arguments<Lum32f>& a) {
    return lumiUpdateMotionHistory_32f_C1IR(a.silhouette, a.silhouetteStep, a.mhi, a.mhiStep, a.size,
                                            a.timestamp, a.duration);
}

template <class T> struct Scene {
    GuardedImage<T> silhouette;
    GuardedImage<Lum32f> mhi;

    explicit Scene(LumSize size, Placement silhouettePlacement = {}, Placement mhiPlacement = {})
        : silhouette(size.width, size.height, silhouettePlacement),
          mhi(size.width, size.height, mhiPlacement) {}

    Arguments<T> arguments(float timestamp, float duration) {
        return {silhouette.data(), silhouette.step(), mhi.data(), mhi.step(),
                mhi.size(),        timestamp,         duration};
    }
};

using Elements = testing::Types<Lum8u, Lum16u, Lum32f>;
MEMBER_TEST_SUITE(MotionHistory, Elements);

/// Times around the threshold, and what compares with nothing.
float anyTime(std::mt19937& engine) {
    switch (engine() % 12) {
    case 0:
        return std::numeric_limits<float>::quiet_NaN();
    case 1:
        return -0.0F;
    case 2:
        return std::numeric_limits<float>::infinity();
    default:
        return static_cast<float>(static_cast<int>(engine() % 41) - 20) / 2;
    }
}

template <class T> T anySilhouette(std::mt19937& engine) {
    if constexpr (std::is_floating_point_v<T>) {
        const T values[] = {0, -0.0F, 1, 1e-30F, std::numeric_limits<T>::quiet_NaN(), 0};
        return values[engine() % 6];
    } else {
        return static_cast<T>(
            engine() % 3 == 0 ? engine() % 2 * (std::numeric_limits<T>::max() - engine() % 256) : 0);
    }
}

} // namespace

MEMBER_TEST(MotionHistory, MotionNowTakesTheTimeAndOldMotionIsCleared) {
    Scene<TypeParam> scene({5, 1});
    scene.silhouette.fill([](int x, int, int) { return x == 0 || x == 4 ? 1 : 0; });
    const float before[] = {3, 7, 8, 9, 20};
    scene.mhi.fill([&](int x, int, int) { return before[x]; });
    ASSERT_EQ(0, call(scene.arguments(10, 2)));
    EXPECT_EQ((std::vector<Lum32f>{10, 0, 8, 9, 10}), scene.mhi.pixels());
}

MEMBER_TEST(MotionHistory, DurationOfZeroClearsWhatLiesBeforeNow) {
    Scene<TypeParam> scene({4, 1});
    const float before[] = {9.999F, 10, 11, -5};
    scene.mhi.fill([&](int x, int, int) { return before[x]; });
    ASSERT_EQ(0, call(scene.arguments(10, 0)));
    EXPECT_EQ((std::vector<Lum32f>{0, 10, 11, 0}), scene.mhi.pixels());
}

MEMBER_TEST(MotionHistory, TimeExactlyAtTheThresholdStays) {
    Scene<TypeParam> scene({2, 1});
    // The difference is formed in single precision.
    const float threshold = 1000.1F - 0.3F;
    scene.mhi.fill([&](int x, int, int) { return x == 0 ? threshold : std::nextafter(threshold, 0.0F); });
    ASSERT_EQ(0, call(scene.arguments(1000.1F, 0.3F)));
    EXPECT_EQ((std::vector<Lum32f>{threshold, 0}), scene.mhi.pixels());
}

MEMBER_TEST(MotionHistory, TimestampInThePastLeavesLaterTimes) {
    Scene<TypeParam> scene({3, 1});
    const float before[] = {100, 4, 2};
    scene.mhi.fill([&](int x, int, int) { return before[x]; });
    ASSERT_EQ(0, call(scene.arguments(5, 2)));
    EXPECT_EQ((std::vector<Lum32f>{100, 4, 0}), scene.mhi.pixels());
}

MEMBER_TEST(MotionHistory, SilhouetteWinsOverClearing) {
    Scene<TypeParam> scene({20, 1});
    scene.silhouette.fill([](int, int, int) { return 1; });
    scene.mhi.fill([](int, int, int) { return -100; });
    ASSERT_EQ(0, call(scene.arguments(5, 2)));
    EXPECT_EQ(std::vector<Lum32f>(20, 5.0F), scene.mhi.pixels());
}

MEMBER_TEST(MotionHistory, NotANumberInTheHistoryStays) {
    Scene<TypeParam> scene({33, 1});
    scene.mhi.fill([](int, int, int) { return std::numeric_limits<float>::quiet_NaN(); });
    ASSERT_EQ(0, call(scene.arguments(5, 2)));
    EXPECT_TRUE(scene.mhi.untouched());
}

TEST(MotionHistoryOfFloats, NegativeZeroIsStillAndNotANumberMoves) {
    Scene<Lum32f> scene({40, 1});
    scene.silhouette.fill(
        [](int x, int, int) { return x % 2 == 0 ? -0.0F : std::numeric_limits<float>::quiet_NaN(); });
    scene.mhi.fill([](int, int, int) { return 4; });
    ASSERT_EQ(0, call(scene.arguments(5, 2)));
    for (int x = 0; x < 40; ++x) EXPECT_EQ(x % 2 == 0 ? 4 : 5, scene.mhi.at(x, 0));
}

MEMBER_TEST(MotionHistory, EveryWidthAndPlacementAgreesWithTheRule) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 engine(seed);
    for (int width = 1; width <= 150; ++width)
        for (Guard guard : {Guard::after, Guard::before}) {
            const auto placement = [&](int size) {
                return Placement{.padding = static_cast<int>(engine() % 4) * size,
                                 .offset = static_cast<int>(engine() % 33),
                                 .guard = guard};
            };
            Scene<TypeParam> scene({width, 3}, placement(sizeof(TypeParam)), placement(4));
            scene.silhouette.fill([&](int, int, int) { return anySilhouette<TypeParam>(engine); });
            scene.mhi.fill([&](int, int, int) { return anyTime(engine); });
            const float now = static_cast<float>(engine() % 11);
            const float duration = static_cast<float>(engine() % 11) / 2;
            std::vector<Lum32f> expected = scene.mhi.pixels();
            const std::vector<TypeParam> moving = scene.silhouette.pixels();
            for (std::size_t i = 0; i < expected.size(); ++i) {
                if (!(moving[i] == 0))
                    expected[i] = now;
                else if (expected[i] < now - duration)
                    expected[i] = 0.0F;
            }
            ASSERT_EQ(0, call(scene.arguments(now, duration)));
            ASSERT_TRUE(sameBits(expected, scene.mhi.pixels())) << width;
            ASSERT_TRUE(scene.mhi.outsideUntouched() && scene.silhouette.untouched());
        }
}

MEMBER_TEST(MotionHistory, VectorAgreesWithScalarBitForBit) {
    std::mt19937 engine(5);
    for (int width = 1; width <= 100; ++width) {
        const Placement placement{.offset = width % 9};
        GuardedImage<TypeParam> silhouette(width, 2, placement);
        GuardedImage<Lum32f> scalar(width, 2, placement);
        GuardedImage<Lum32f> vector(width, 2, placement);
        silhouette.fill([&](int, int, int) { return anySilhouette<TypeParam>(engine); });
        scalar.fill([&](int, int, int) { return anyTime(engine); });
        vector.fill([&](int x, int y, int) { return scalar.at(x, y); });
        const lum::Image<const TypeParam> moving{silhouette.data(), silhouette.step()};
        lum::kernels::updateMotionHistoryScalar(moving, lum::Image<Lum32f>{scalar.data(), scalar.step()},
                                                scalar.size(), 5.0F, 2.0F);
        lum::kernels::updateMotionHistory(moving, lum::Image<Lum32f>{vector.data(), vector.step()},
                                          vector.size(), 5.0F, 2.0F);
        ASSERT_TRUE(sameBits(scalar.pixels(), vector.pixels())) << width;
    }
}

MEMBER_TEST(MotionHistory, TwoThousandFramesKeepTheTimesExactly) {
    // A bar wanders over the picture, a column a frame; times stay for 30 frames.
    Scene<TypeParam> scene({37, 4});
    scene.mhi.fill([](int, int, int) { return 0; });
    std::vector<int> lastMotion(37, 0);
    for (int frame = 1; frame <= 2000; ++frame) {
        const int bar = frame * 7 % 37;
        lastMotion[bar] = frame;
        scene.silhouette.fill([&](int x, int, int) { return x == bar ? 1 : 0; });
        ASSERT_EQ(0, call(scene.arguments(static_cast<float>(frame), 30)));
        for (int x = 0; x < 37; ++x)
            ASSERT_EQ(lastMotion[x] >= frame - 30 ? lastMotion[x] : 0, scene.mhi.at(x, 3)) << frame;
    }
}

MEMBER_TEST(MotionHistory, StatusesComeInTheirOrder) {
    using A = Arguments<TypeParam>;
    constexpr int row = 8 * sizeof(TypeParam);
    Scene<TypeParam> scene({8, 2}, {.padding = 16}, {.padding = 16});
    std::vector<Fault<A>> faults{
        {"silhouette null", 0, lumStatusNullPointer, [](A& a) { a.silhouette = nullptr; }},
        {"mhi null", 0, lumStatusNullPointer, [](A& a) { a.mhi = nullptr; }},
        {"width 0", 1, lumStatusSizeError, [](A& a) { a.size.width = 0; }},
        {"height 0", 1, lumStatusSizeError, [](A& a) { a.size.height = 0; }},
        {"silhouetteStep short", 2, lumStatusStepError, [](A& a) { a.silhouetteStep = row - 1; }},
        {"mhiStep short", 2, lumStatusStepError, [](A& a) { a.mhiStep = 31; }},
        {"mhiStep negative", 2, lumStatusStepError, [](A& a) { a.mhiStep = -32; }},
        {"mhiStep odd", 3, lumStatusStepAlignmentError, [](A& a) { a.mhiStep = 34; }},
        {"duration negative", 4, lumStatusOutOfRange, [](A& a) { a.duration = -1e-30F; }},
    };
    if (sizeof(TypeParam) > 1)
        faults.push_back(
            {"silhouetteStep odd", 3, lumStatusStepAlignmentError, [](A& a) { a.silhouetteStep = row + 1; }});
    expectStatusesInOrder(scene.arguments(5, 2), faults, [&](const A& a) {
        scene.mhi.fill([](int, int, int) { return 1; });
        const LumStatus status = call(a);
        EXPECT_EQ(status != lumStatusOk, scene.mhi.untouched());
        return status;
    });
}

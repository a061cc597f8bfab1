#include <limits>

#include "kernels/motion/flow_gradient.h"
#include "kernels/motion/flow_sums.h"
#include "motion/flow_scene.h"
#include "support/argument_order.h"

using namespace support;

namespace {

template <class T> class Flow : public testing::Test {};
using Elements = testing::Types<Lum8u, Lum16u, Lum32f>;
TYPED_TEST_SUITE(Flow, Elements);

constexpr LumSize sceneSize{150, 120};

/// Where a point of the first picture lies in the second one.
struct Motion {
    double dx, dy, angle;

    LumPoint32f of(LumPoint32f p) const {
        const double x = p.x - 75.0;
        const double y = p.y - 60.0;
        return {static_cast<float>(75 + std::cos(angle) * x - std::sin(angle) * y + dx),
                static_cast<float>(60 + std::sin(angle) * x + std::cos(angle) * y + dy)};
    }
    /// The second picture: the texture at the place that has moved here.
    double value(double x, double y) const {
        const double u = x - dx - 75;
        const double v = y - dy - 60;
        return texture(75 + std::cos(angle) * u + std::sin(angle) * v,
                       60 - std::sin(angle) * u + std::cos(angle) * v);
    }
};

template <class T> FlowPyramid<T> still(int last = 2, Guard guard = Guard::after) {
    return FlowPyramid<T>(
        sceneSize, last, [](int x, int y) { return texture(x, y); }, guard);
}
template <class T> FlowPyramid<T> moved(Motion motion, int last = 2, Guard guard = Guard::after) {
    return FlowPyramid<T>(
        sceneSize, last, [=](int x, int y) { return motion.value(x, y); }, guard);
}

double distance(LumPoint32f a, LumPoint32f b) { return std::hypot(a.x - b.x, a.y - b.y); }

double median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2),
                     values.end());
    return values[values.size() / 2];
}

constexpr Motion motions[] = {{0, 0, 0},       {0.4, -0.3, 0}, {3.25, 1.5, 0},
                              {-7.5, 5.25, 0}, {1, 0.5, 0.03}, {0, 0, -0.03}};

/// A tracker in plain double precision, level after level.
template <class T> class PlainTracker {
  public:
    PlainTracker(const FlowPyramid<T>& before, const FlowPyramid<T>& after, LumSize region,
                 const FlowSearch& search)
        : before_(before), after_(after), region_(region), search_(search) {}

    struct Result {
        double x, y;
        int status;
        double error;
    };

    Result follow(LumPoint32f from, LumPoint32f guess) const {
        Result r{guess.x, guess.y, search_.maxLevel + 1, 0};
        for (int k = search_.maxLevel; k >= 0; --k)
            if (!step(k, from, r)) break;
        return r;
    }

  private:
    struct Window {
        int side;
        double x, y; // position of the first pixel
        int firstX, firstY, lastX, lastY;
    };

    static Window placed(const GuardedImage<T>& image, int side, double px, double py) {
        Window w{side, px - (side - 1) * 0.5, py - (side - 1) * 0.5, 0, 0, 0, 0};
        const auto span = [&](double c, int length, int& first, int& last) {
            const int i = static_cast<int>(std::floor(c));
            first = std::min(std::max(-i, 0), side);
            last = side - 1 - std::max(i + side - 1 - (length - 2), 0);
            if (i >= length) first = 0, last = -1;
            if (i <= -side) last = -1;
        };
        span(w.x, image.size().width, w.firstX, w.lastX);
        span(w.y, image.size().height, w.firstY, w.lastY);
        return w;
    }
    static double pixel(const GuardedImage<T>& image, int x, int y) {
        return image.at(std::clamp(x, 0, image.size().width - 1), std::clamp(y, 0, image.size().height - 1));
    }
    template <class Value> static double bilinear(double x, double y, Value value) {
        const int ix = static_cast<int>(std::floor(x));
        const int iy = static_cast<int>(std::floor(y));
        const double fx = x - ix;
        const double fy = y - iy;
        return (1 - fx) * (1 - fy) * value(ix, iy) + fx * (1 - fy) * value(ix + 1, iy) +
               (1 - fx) * fy * value(ix, iy + 1) + fx * fy * value(ix + 1, iy + 1);
    }
    static double at(const GuardedImage<T>& image, double x, double y) {
        return bilinear(x, y, [&](int i, int j) { return pixel(image, i, j); });
    }
    template <class Value> static void gradient(Value value, double& dx, double& dy) {
        dx = dy = 0;
        const double weights[] = {3, 10, 3};
        for (int i = -1; i <= 1; ++i) {
            dx += weights[i + 1] * (value(1, i) - value(-1, i)) / 32;
            dy += weights[i + 1] * (value(i, 1) - value(i, -1)) / 32;
        }
    }

    bool step(int k, LumPoint32f from, Result& r) const {
        const GuardedImage<T>& first = before_.level(k);
        const GuardedImage<T>& second = after_.level(k);
        bool small = true;
        for (int i = search_.maxLevel; i >= k; --i)
            small = small && before_.level(i).size().width < region_.width &&
                    before_.level(i).size().height < region_.height;
        const double rate = std::pow(0.5, k);
        const double p1x = from.x * rate;
        const double p1y = from.y * rate;
        double p2x = r.x * rate;
        double p2y = r.y * rate;
        const int win = search_.winSize;
        const Window outer = placed(first, win + 2, p1x, p1y);
        const int minX = outer.firstX > 0 ? outer.firstX - 1 : 0;
        const int minY = outer.firstY > 0 ? outer.firstY - 1 : 0;
        const int maxX = outer.lastX > win ? outer.lastX - 2 : outer.lastX - 1;
        const int maxY = outer.lastY > win ? outer.lastY - 2 : outer.lastY - 1;
        double prevX = 0;
        double prevY = 0;
        for (int iteration = 0;; ++iteration) {
            const Window inner = placed(second, win, p2x, p2y);
            const int x0 = std::max(minX, inner.firstX);
            const int y0 = std::max(minY, inner.firstY);
            const int x1 = std::min(maxX, inner.lastX);
            const int y1 = std::min(maxY, inner.lastY);
            if (x0 > x1 || y0 > y1) {
                r = {p2x / rate, p2y / rate, k + 1, 0};
                return false;
            }
            double xx = 0, xy = 0, yy = 0, bx = 0, by = 0, squares = 0;
            for (int y = y0; y <= y1; ++y)
                for (int x = x0; x <= x1; ++x) {
                    const double ix = outer.x + 1 + x;
                    const double iy = outer.y + 1 + y;
                    double dx, dy;
                    if (small) {
                        const auto derivative = [&](int i, int j, bool alongX) {
                            double gx, gy;
                            gradient([&](int u, int v) { return pixel(first, i + u, j + v); }, gx, gy);
                            return alongX ? gx : gy;
                        };
                        dx = bilinear(ix, iy, [&](int i, int j) { return derivative(i, j, true); });
                        dy = bilinear(ix, iy, [&](int i, int j) { return derivative(i, j, false); });
                    } else {
                        gradient([&](int u, int v) { return at(first, ix + u, iy + v); }, dx, dy);
                    }
                    const double d = at(first, ix, iy) - at(second, inner.x + x, inner.y + y);
                    xx += dx * dx, xy += dx * dy, yy += dy * dy, bx += dx * d, by += dy * d;
                    if (x < x1 && y < y1) squares += d * d;
                }
            const double det = xx * yy - xy * xy;
            if (det < 2.220446049250313e-16) {
                r.status = k + 1;
                r.error = 0;
                return false;
            }
            const double vx = (yy * bx - xy * by) / det;
            const double vy = (xx * by - xy * bx) / det;
            p2x += vx;
            p2y += vy;
            r.error = squares > 0 ? std::sqrt(squares / ((x1 - x0) * (y1 - y0))) : 0;
            if (vx * vx + vy * vy < static_cast<double>(search_.threshold) * search_.threshold) break;
            if (iteration > 0 && std::abs(vx + prevX) < 3.4526698300124393e-4 &&
                std::abs(vy + prevY) < 3.4526698300124393e-4) {
                p2x -= vx / 2;
                p2y -= vy / 2;
                break;
            }
            prevX = vx;
            prevY = vy;
            if (iteration + 1 >= search_.maxIterations) break;
        }
        r.x = p2x / rate;
        r.y = p2y / rate;
        r.status = k;
        return true;
    }

    const FlowPyramid<T>& before_;
    const FlowPyramid<T>& after_;
    LumSize region_;
    const FlowSearch& search_;
};

/// A picture of one level by its values.
template <class Value> FlowPyramid<Lum32f> floats(LumSize size, Value value) {
    return FlowPyramid<Lum32f>(size, 0, [&](int x, int y) { return 255 * value(x, y); });
}

} // namespace

TYPED_TEST(Flow, ShiftByAPixelIsFoundByHand) {
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

TYPED_TEST(Flow, TranslationsAndRotationsAreFound) {
    const auto before = still<TypeParam>();
    const auto points = gridOfPoints(sceneSize, 25, 9);
    for (const Motion& motion : motions) {
        const auto after = moved<TypeParam>(motion);
        for (int winSize : {15, 21}) {
            std::vector<LumPoint32f> byRoute[2];
            for (LumSize region : {windowsOnly, wholeLevels}) {
                const Tracked t =
                    track<TypeParam>(before, after, points, points, region, {.winSize = winSize});
                ASSERT_EQ(0, t.call);
                std::vector<double> errors;
                for (std::size_t i = 0; i < points.size(); ++i) {
                    EXPECT_EQ(0, t.status[i]);
                    errors.push_back(distance(t.next[i], motion.of(points[i])));
                }
                EXPECT_LT(median(errors), 0.05)
                    << motion.dx << ", " << motion.dy << ", " << motion.angle << ": " << winSize;
                byRoute[region.width != 1] = t.next;
            }
            std::vector<double> differences;
            for (std::size_t i = 0; i < points.size(); ++i)
                differences.push_back(distance(byRoute[0][i], byRoute[1][i]));
            EXPECT_LT(median(differences), 0.05);
        }
    }
}

TYPED_TEST(Flow, EveryPointAgreesWithThePlainTracker) {
    const Motion motion{2.2, -1.4, 0.01};
    for (Guard guard : {Guard::after, Guard::before}) {
        const auto before = still<TypeParam>(2, guard);
        const auto after = moved<TypeParam>(motion, 2, guard);
        // Up to the edges and beyond them.
        auto points = gridOfPoints(sceneSize, -6, 17);
        for (const FlowSearch& search : {FlowSearch{.winSize = 9}, FlowSearch{.winSize = 12, .maxLevel = 1},
                                         FlowSearch{.winSize = 21, .maxLevel = 0}})
            for (LumSize region : {windowsOnly, LumSize{100, 100}, wholeLevels}) {
                const Tracked t = track<TypeParam>(before, after, points, points, region, search, 3);
                ASSERT_EQ(0, t.call);
                const PlainTracker<TypeParam> plain(before, after, region, search);
                int compared = 0;
                for (std::size_t i = 0; i < points.size(); ++i) {
                    const auto expected = plain.follow(points[i], points[i]);
                    // Where windows of a few pixels jump about, rounding decides.
                    if (expected.status == 0 &&
                        std::hypot(expected.x - points[i].x, expected.y - points[i].y) > 6)
                        continue;
                    ++compared;
                    ASSERT_EQ(expected.status, t.status[i]) << points[i].x << ", " << points[i].y;
                    EXPECT_NEAR(expected.x, t.next[i].x, 2e-3) << points[i].x << ", " << points[i].y;
                    EXPECT_NEAR(expected.y, t.next[i].y, 2e-3) << points[i].x << ", " << points[i].y;
                    EXPECT_NEAR(expected.error, t.error[i], 2e-3 * FlowMembers<TypeParam>::scale) << i;
                }
                EXPECT_GT(compared, static_cast<int>(points.size() * 9 / 10));
            }
        EXPECT_TRUE(before.untouched() && after.untouched());
    }
}

TYPED_TEST(Flow, FlatPictureLosesThePointAndKeepsTheGuess) {
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

TYPED_TEST(Flow, PointLostBelowKeepsTheEntryOfTheLevelAbove) {
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

TYPED_TEST(Flow, GuessOutsideTheSecondPictureIsLost) {
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

TYPED_TEST(Flow, PointOutsideTheFirstPictureIsLost) {
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

TYPED_TEST(Flow, ThresholdOfZeroEndsByIterationsOrOscillation) {
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

TYPED_TEST(Flow, PointsThatLeaveTheCoarsestLevelOnlyAreLostThere) {
    const auto before = still<TypeParam>();
    const auto after = moved<TypeParam>({0, 0, 0});
    std::vector<LumPoint32f> points{{70, 60}, {500, 500}, {80, 50}};
    const Tracked t = track<TypeParam>(before, after, points, points, wholeLevels, {});
    EXPECT_EQ((std::vector<Lum8s>{0, 3, 0}), t.status);
}

TYPED_TEST(Flow, MissingLevelOfTheSecondPyramidLosesEveryPoint) {
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

TYPED_TEST(Flow, MissingLevelOfTheFirstPyramidEndsTheLevel) {
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
    // Point after point: the second one was never looked at.
    const Tracked large = track<TypeParam>(before, after, {{60, 50}, {80, 60}}, {{60, 50}, {80, 60}},
                                           windowsOnly, {.maxLevel = 1});
    EXPECT_EQ((std::vector<Lum8s>{0, 2}), large.status);
    EXPECT_EQ(80, large.next[1].x);
}

TYPED_TEST(Flow, LevelTwoAboveAMissingOneLeavesItsErrors) {
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

TYPED_TEST(Flow, SecondPyramidMayHaveOtherSizes) {
    const auto before = still<TypeParam>(0);
    const FlowPyramid<TypeParam> after({100, 70}, 0, [](int x, int y) { return texture(x - 0.5, y); });
    const Tracked t = track<TypeParam>(before, after, {{50, 40}, {120, 90}}, {{50, 40}, {120, 90}},
                                       wholeLevels, {.maxLevel = 0});
    EXPECT_EQ(0, t.status[0]);
    EXPECT_NEAR(50.5, t.next[0].x, 0.02);
    EXPECT_EQ(1, t.status[1]);
}

TYPED_TEST(Flow, StatesServeManyCallsAndRegions) {
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

TEST(FlowSize, FormulasOfTheThreeTypes) {
    struct Case {
        int winSize;
        LumSize size;
        Lum32s bytes8u, bytes16u, bytes32f;
    };
    // W = 15, H = 9, B = 30; W = 645, H = 485, B = 1290.
    for (const Case& c : {Case{1,
                               {10, 4},
                               160 * 4 + 2 * (30 + 270) + 90,
                               4 * (30 + 405 + 48 * 4) + 84,
                               4 * (30 + 270 + 48 * 4) + 84},
                          Case{21,
                               {640, 480},
                               960 * 24 + 2 * (1290 + 2 * 645 * 485) + 90,
                               4 * (1290 + 3 * 645 * 485 + 288 * 24) + 84,
                               4 * (1290 + 2 * 645 * 485 + 288 * 24) + 84}}) {
        Lum32s bytes = 0;
        EXPECT_EQ(0, lumiOpticalFlowPyrLKGetSize(c.winSize, c.size, lumType8u, 0, &bytes));
        EXPECT_EQ(c.bytes8u, bytes);
        EXPECT_EQ(0, lumiOpticalFlowPyrLKGetSize(c.winSize, c.size, lumType16u, 7, &bytes));
        EXPECT_EQ(c.bytes16u, bytes);
        EXPECT_EQ(0, lumiOpticalFlowPyrLKGetSize(c.winSize, c.size, lumType32f, -1, &bytes));
        EXPECT_EQ(c.bytes32f, bytes);
    }
}

TEST(FlowSize, StatusesComeInTheirOrder) {
    struct A {
        int winSize = 5;
        LumSize size{20, 10};
        LumDataType type = lumType8u;
        Lum32s* bytes;
    };
    Lum32s bytes = -7;
    const std::vector<Fault<A>> faults{
        {"winSize 0", 0, lumStatusSizeError, [](A& a) { a.winSize = 0; }},
        {"width 0", 0, lumStatusSizeError, [](A& a) { a.size.width = 0; }},
        {"height negative", 0, lumStatusSizeError, [](A& a) { a.size.height = -1; }},
        {"type 16s", 1, lumStatusDataTypeError, [](A& a) { a.type = lumType16s; }},
        {"type 64f", 1, lumStatusDataTypeError, [](A& a) { a.type = lumType64f; }},
        {"size null", 2, lumStatusNullPointer, [](A& a) { a.bytes = nullptr; }},
    };
    expectStatusesInOrder(A{.bytes = &bytes}, faults, [&](const A& a) {
        bytes = -7;
        const LumStatus status = lumiOpticalFlowPyrLKGetSize(a.winSize, a.size, a.type, 0, a.bytes);
        EXPECT_EQ(status != lumStatusOk, bytes == -7);
        return status;
    });
}

TYPED_TEST(Flow, InitStatusesComeInTheirOrder) {
    GuardedBlock block(FlowState<TypeParam>::bytesFor({20, 10}, 5));
    LumOpticalFlowState* state = nullptr;
    struct A {
        LumOpticalFlowState** state;
        LumSize size{20, 10};
        int winSize = 5;
        Lum8u* memory;
    };
    const std::vector<Fault<A>> faults{
        {"winSize 0", 0, lumStatusSizeError, [](A& a) { a.winSize = 0; }},
        {"width 0", 0, lumStatusSizeError, [](A& a) { a.size.width = 0; }},
        {"height 0", 0, lumStatusSizeError, [](A& a) { a.size.height = 0; }},
        {"state null", 1, lumStatusNullPointer, [](A& a) { a.state = nullptr; }},
        {"memory null", 1, lumStatusNullPointer, [](A& a) { a.memory = nullptr; }},
    };
    expectStatusesInOrder(A{.state = &state, .memory = block.as()}, faults, [&](const A& a) {
        state = nullptr;
        const LumStatus status = FlowMembers<TypeParam>::init(a.state, a.size, a.winSize, 3, a.memory);
        EXPECT_EQ(status != lumStatusOk, state == nullptr);
        return status;
    });
}

TYPED_TEST(Flow, StateHoldsWhatInitWasGiven) {
    for (std::size_t spare = 0; spare < 20; ++spare) {
        GuardedBlock block(FlowState<TypeParam>::bytesFor({20, 10}, 5), Guard::after, spare);
        LumOpticalFlowState* state = nullptr;
        ASSERT_EQ(0, FlowMembers<TypeParam>::init(&state, {20, 10}, 5, 3, block.as()));
        Lum32s words[7];
        std::memcpy(words, state, sizeof words);
        const Lum32s unwritten = static_cast<Lum32s>(0xA5A5A5A5);
        EXPECT_EQ((std::vector<Lum32s>{20, 10, 1, FlowMembers<TypeParam>::type, unwritten, 3, 5}),
                  std::vector<Lum32s>(words, words + 7));
        std::uintptr_t work;
        std::memcpy(&work, reinterpret_cast<unsigned char*>(state) + (sizeof(void*) == 4 ? 28 : 32),
                    sizeof work);
        EXPECT_EQ(0U, work % 16);
        EXPECT_GE(work, reinterpret_cast<std::uintptr_t>(state) + 32);
    }
}

TYPED_TEST(Flow, CallStatusesComeInTheirOrder) {
    const auto before = still<TypeParam>(1);
    const auto after = still<TypeParam>(2);
    FlowState<TypeParam> state({100, 100}, 9);
    const LumPoint32f from{60, 50};
    LumPoint32f to{};
    Lum8s status = 0;
    Lum32f error = 0;
    struct A {
        const LumPyramid* pyramid1;
        const LumPyramid* pyramid2;
        const LumPoint32f* from;
        LumPoint32f* to;
        Lum8s* status;
        Lum32f* error;
        LumOpticalFlowState* state;
        int count = 1;
        int winSize = 9;
        int maxLevel = 1;
        int iterations = 5;
        float threshold = 0.1F;
    };
    const std::vector<Fault<A>> faults{
        {"pyramid1 null", 0, lumStatusNullPointer, [](A& a) { a.pyramid1 = nullptr; }},
        {"pyramid2 null", 0, lumStatusNullPointer, [](A& a) { a.pyramid2 = nullptr; }},
        {"state null", 0, lumStatusNullPointer, [](A& a) { a.state = nullptr; }},
        {"prevPoints null", 0, lumStatusNullPointer, [](A& a) { a.from = nullptr; }},
        {"nextPoints null", 0, lumStatusNullPointer, [](A& a) { a.to = nullptr; }},
        {"status null", 0, lumStatusNullPointer, [](A& a) { a.status = nullptr; }},
        {"error null", 0, lumStatusNullPointer, [](A& a) { a.error = nullptr; }},
        {"no points", 1, lumStatusSizeError, [](A& a) { a.count = 0; }},
        {"winSize 0", 1, lumStatusSizeError, [](A& a) { a.winSize = 0; }},
        {"winSize of another state", 2, lumStatusSizeError, [](A& a) { a.winSize = 10; }},
        {"maxLevel negative", 3, lumStatusBadArgument, [](A& a) { a.maxLevel = -1; }},
        {"no iterations", 3, lumStatusBadArgument, [](A& a) { a.iterations = 0; }},
        {"threshold negative", 3, lumStatusBadArgument, [](A& a) { a.threshold = -1e-20F; }},
        {"maxLevel above the first pyramid", 3, lumStatusBadArgument, [](A& a) { a.maxLevel = 2; }},
        {"maxLevel above the second pyramid", 3, lumStatusBadArgument,
         [](A& a) { std::swap(a.pyramid1, a.pyramid2), a.maxLevel = 2; }},
    };
    const A good{.pyramid1 = &before.record,
                 .pyramid2 = &after.record,
                 .from = &from,
                 .to = &to,
                 .status = &status,
                 .error = &error,
                 .state = state.state};
    expectStatusesInOrder(good, faults, [&](const A& a) {
        to = {61, 51};
        status = -77;
        error = -77;
        const LumStatus result =
            FlowMembers<TypeParam>::run(a.pyramid1, a.pyramid2, a.from, a.to, a.status, a.error, a.count,
                                        a.winSize, a.maxLevel, a.iterations, a.threshold, a.state);
        if (result != lumStatusOk) {
            EXPECT_TRUE(to.x == 61 && to.y == 51 && status == -77 && error == -77);
        } else {
            EXPECT_EQ(0, status);
        }
        return result;
    });
}

TYPED_TEST(Flow, DerivativesOfLevelsAgreeWithTheStencil) {
    using namespace lum::kernels;
    using D = Derivative<TypeParam>;
    for (int width : {1, 2, 3, 7, 8, 9, 15, 16, 17, 31, 33, 70})
        for (int height : {1, 2, 5}) {
            GuardedImage<TypeParam> level(
                width, height, {.padding = 2 * static_cast<int>(sizeof(TypeParam)), .offset = width % 5});
            level.fill(
                [&](int x, int y, int) { return texture(7 * x, 5 * y) * FlowMembers<TypeParam>::scale; });
            const std::size_t pitch = width + 5;
            std::vector<D> dx[2], dy[2];
            for (int form = 0; form < 2; ++form) {
                dx[form].assign(pitch * height, D{7});
                dy[form].assign(pitch * height, D{7});
                GuardedBlock work(2 * (width + 2) * sizeof(D));
                const lum::Image<const TypeParam> image{level.data(), level.step()};
                (form == 0 ? LevelGradient<TypeParam>::drawScalar : LevelGradient<TypeParam>::draw)(
                    image, level.size(), dx[form].data(), dy[form].data(), pitch, work.as<D>());
            }
            ASSERT_TRUE(sameBits(dx[0], dx[1]) && sameBits(dy[0], dy[1])) << width << " x " << height;
            const auto pixel = [&](int x, int y) {
                return static_cast<double>(
                    level.at(std::clamp(x, 0, width - 1), std::clamp(y, 0, height - 1)));
            };
            for (int y = 0; y < height; ++y)
                for (int x = 0; x < width; ++x) {
                    double sumX = 0, sumY = 0;
                    const double weights[] = {3, 10, 3};
                    for (int i = -1; i <= 1; ++i) {
                        sumX += weights[i + 1] / 32 * (pixel(x + 1, y + i) - pixel(x - 1, y + i));
                        sumY += weights[i + 1] / 32 * (pixel(x + i, y + 1) - pixel(x + i, y - 1));
                    }
                    const double scale = scaleOfDerivative<TypeParam>;
                    const double tolerance = std::is_integral_v<TypeParam> ? 0 : 1e-5;
                    ASSERT_NEAR(sumX, dx[1][pitch * y + x] * scale, tolerance);
                    ASSERT_NEAR(sumY, dy[1][pitch * y + x] * scale, tolerance);
                }
            ASSERT_EQ(D{7}, dx[1][width]);
        }
}

TEST(FlowKernels, SumsAgreeWithTheirScalarForms) {
    using namespace lum::kernels;
    std::mt19937 engine(3);
    for (int width = 1; width <= 40; ++width)
        for (int height : {1, 2, 7}) {
            const int pitch = static_cast<int>(flowPitch(width));
            std::vector<double> values(pitch * height), dx(pitch * height), dy(pitch * height);
            GuardedImage<Lum32f> moving(static_cast<int>(flowElements(pitch, height)), 1);
            const auto any = [&] { return static_cast<float>(engine() % 65536) / 256; };
            for (int i = 0; i < pitch * height; ++i)
                if (i % pitch < width) values[i] = any(), dx[i] = any() - 128, dy[i] = any() - 128;
            moving.fill(
                [&](int i, int, int) { return i < pitch * (height + 1) && i % pitch <= width ? any() : 0; });
            const FlowWindows windows{values.data(), dx.data(), dy.data(), moving.data(),
                                      pitch,         width,     height};
            const FloatQuad weights{0.28F, 0.12F, 0.42F, 0.18F};
            const GradientSums scalar = gradientSumsScalar(windows);
            const GradientSums vector = gradientSums(windows);
            ASSERT_TRUE(scalar.xx == vector.xx && scalar.xy == vector.xy && scalar.yy == vector.yy);
            const MismatchSums scalarB = mismatchSumsScalar(windows, weights);
            const MismatchSums vectorB = mismatchSums(windows, weights);
            ASSERT_TRUE(scalarB.x == vectorB.x && scalarB.y == vectorB.y);
            ASSERT_EQ(squaredErrorScalar(windows, weights), squaredError(windows, weights));
            double squares = 0, xx = 0, xy = 0, yy = 0, bx = 0, by = 0;
            for (int y = 0; y < height; ++y)
                for (int x = 0; x < width; ++x) {
                    const int i = y * pitch + x;
                    const Lum32f* above = moving.data() + y * pitch + x;
                    const Lum32f* below = above + pitch;
                    const double d =
                        values[i] - (0.28 * above[0] + 0.12 * above[1] + 0.42 * below[0] + 0.18 * below[1]);
                    xx += dx[i] * dx[i], xy += dx[i] * dy[i], yy += dy[i] * dy[i];
                    bx += dx[i] * d, by += dy[i] * d;
                    if (x < width - 1 && y < height - 1) squares += d * d;
                }
            ASSERT_NEAR(xx, vector.xx, 1e-6);
            ASSERT_NEAR(xy, vector.xy, 1e-6);
            ASSERT_NEAR(yy, vector.yy, 1e-6);
            ASSERT_NEAR(bx, vectorB.x, 2);
            ASSERT_NEAR(by, vectorB.y, 2);
            ASSERT_NEAR(squares, squaredError(windows, weights), 2);
        }
}

TYPED_TEST(Flow, CopiesAsFloatsAreFilledUpWithZeros) {
    using namespace lum::kernels;
    for (int width = 1; width <= 40; ++width)
        for (int pitch : {static_cast<int>(flowPitch(width - 1)), width + 9}) {
            GuardedImage<TypeParam> src(
                width, 3, {.padding = 2 * static_cast<int>(sizeof(TypeParam)), .offset = width % 4});
            src.fillRandom(width);
            for (auto copy : {copyAsFloatsScalar<TypeParam>, copyAsFloats<TypeParam>}) {
                GuardedImage<Lum32f> dst(3 * pitch + flowColumns, 1);
                dst.fill([](int, int, int) { return 7; });
                copy({src.data(), src.step()}, src.size(), dst.data(), pitch);
                for (int i = 0; i < 3 * pitch + flowColumns; ++i) {
                    const bool inside = i < 3 * pitch && i % pitch < width;
                    ASSERT_EQ(inside ? static_cast<float>(src.at(i % pitch, i / pitch)) : 0, dst.at(i, 0))
                        << width;
                }
            }
        }
}

TEST(FlowKernels, WindowGradientAgreesWithItsScalarForm) {
    for (int width = 1; width <= 210; ++width) {
        GuardedImage<Lum32f> window(width + 2, 5);
        window.fillRandom(width);
        const LumSize size{width, 3};
        std::vector<std::vector<double>> results[2];
        for (int form = 0; form < 2; ++form) {
            GuardedImage<Lum64f> values(width, 3), dx(width, 3), dy(width, 3);
            (form == 0 ? lum::kernels::windowGradientScalar : lum::kernels::windowGradient)(
                lum::Image<const Lum32f>{window.data(), window.step()}, size, {values.data(), values.step()},
                {dx.data(), dx.step()}, {dy.data(), dy.step()});
            results[form] = {values.pixels(), dx.pixels(), dy.pixels()};
        }
        for (int i = 0; i < 3; ++i) ASSERT_TRUE(sameBits(results[0][i], results[1][i])) << width;
        EXPECT_EQ(window.at(1, 1), results[1][0][0]);
    }
}

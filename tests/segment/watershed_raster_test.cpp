#include "lumcv.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>

#include "kernels/segment/watershed_raster.h"
#include "segment/watershed_members.h"
#include "support/member_test.h"

using namespace watersheds;
using namespace support;

namespace {

using Bytes = Member<Lum8u, Lum8u>;
using Floats = Member<Lum32f, Lum16u>;

MEMBER_TEST_SUITE(WatershedRaster, All);

/// A cost as a pair; that of an integer relief has only a word.
struct Cost {
    float level;
    Lum32s word;

    bool below(const Cost& other) const {
        return level < other.level || (level == other.level && word < other.word);
    }
    bool atMost(const Cost& other) const {
        return level < other.level || (level == other.level && word <= other.word);
    }
};

Lum32s added(Lum32s a, Lum32s b) {
    return static_cast<Lum32s>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}

const int gains[64] = {19, 18, 18, 17, 17, 16, 16, 15, 15, 14, 14, 14, 13, 13, 12, 12, 11, 11, 11, 10, 10, 9,
                       9,  9,  8,  8,  8,  7,  7,  7,  6,  6,  6,  5,  5,  5,  4,  4,  4,  4,  3,  3,  3,  3,
                       2,  2,  2,  2,  2,  1,  1,  1,  1,  1,  1,  1,  0,  0,  0,  0,  0,  0,  0,  0};

/// The raster engine by its steps, on whole arrays.
template <class M> class Reference {
    using Marker = typename M::Marker;
    static constexpr bool isFloat = std::is_floating_point_v<typename M::Relief>;

  public:
    Reference(const Scene<M>& scene, int norm)
        : s_(scene), norm_(!isFloat && scene.size.width == 1 ? 1 : norm) {
        const std::size_t pixels = s_.markers.size();
        cost_.resize(pixels);
        from_.resize(pixels);
        active_.assign(pixels, 0);
        for (std::size_t i = 0; i < pixels; ++i) {
            if (s_.markers[i] != 0)
                cost_[i] = isFloat ? Cost{static_cast<float>(s_.relief[i]), 0}
                                   : Cost{0, static_cast<Lum32s>(s_.relief[i]) << 23};
            else
                cost_[i] = isFloat ? Cost{3.4028235e38F, 0x7FFFFFFF} : Cost{0, 0x7FC00000};
            from_[i] = s_.markers[i] != 0 ? 0 : 9;
            wasBoundary_.push_back(s_.markers[i] == boundary<M>);
        }
    }

    std::vector<Marker> run(Lum32s flags) {
        const auto [w, h] = s_.size;
        for (int x = 0; x < w; ++x) take(x, 0, {5}, false);
        for (int x = w - 1; x >= 0; --x) take(x, 0, {1}, true);
        for (int y = 1; y < h; ++y) {
            for (int x = 0; x < w; ++x) take(x, y, rightward(3), false);
            for (int x = w - 1; x >= 0; --x) take(x, y, {1, 3}, true);
        }
        sweep(false, false);
        while (sweep(true, true) && sweep(false, true)) {
        }
        if ((flags & 192) != 0) draw(flags);
        return s_.markers;
    }

  private:
    /// Neighbours by their number: 1 right, then against the clock.
    static constexpr int dx[10] = {0, 1, 1, 0, -1, -1, -1, 0, 1, 0};
    static constexpr int dy[10] = {0, 0, -1, -1, -1, 0, 1, 1, 1, 0};

    std::vector<int> rightward(int vertical) const {
        if (norm_ == 1 || norm_ == 3) return {5, vertical};
        return vertical == 3 ? std::vector<int>{5, 4, 3, 2} : std::vector<int>{5, 6, 7, 8};
    }

    struct Offer {
        Cost cost;
        int from = 0;
    };

    /// The best candidate before the last hop and the floor; from 0 where there is none.
    Offer best(int x, int y, const std::vector<int>& neighbours) const {
        std::vector<Offer> offers;
        for (int n : neighbours) {
            if (!s_.holds(x + dx[n], y + dy[n])) continue;
            const int i = s_.at(x + dx[n], y + dy[n]);
            if (wasBoundary_[i]) continue;
            const int addend = norm_ == 2 ? (n % 2 == 1 ? 10 : 14) : norm_ == 3 ? (isFloat ? 255 : 63) : 0;
            offers.push_back({{cost_[i].level, added(cost_[i].word, addend)}, n});
        }
        if (offers.empty()) return {};
        Offer result = offers[0];
        for (const Offer& offer : offers)
            if (offer.cost.below(result.cost)) result = offer;
        if (norm_ == 3 && offers.size() == 2) {
            const Offer& other = result.from == offers[0].from ? offers[1] : offers[0];
            const Lum32s d = added(other.cost.word, -result.cost.word);
            if constexpr (isFloat) {
                const bool same = result.cost.level == other.cost.level;
                if (same && d >= 0 && d < 256) {
                    const float root = std::sqrt(131072.F - static_cast<float>(d * d));
                    const float sum = static_cast<float>(added(result.cost.word, other.cost.word)) + root;
                    result.cost.word = static_cast<Lum32s>(sum * 0.5F + 0.5F) - 255;
                }
            } else if (d >= 0 && d <= 63) {
                result.cost.word = added(result.cost.word, -gains[d]);
            }
        }
        return result;
    }

    Cost arrived(const Cost& candidate, int pixel) const {
        if constexpr (isFloat) {
            const float level = s_.relief[pixel];
            return level > candidate.level ? Cost{level, 0} : Cost{candidate.level, added(candidate.word, 1)};
        } else {
            return {0, std::max(added(candidate.word, 1), static_cast<Lum32s>(s_.relief[pixel]) << 23)};
        }
    }

    bool take(int x, int y, const std::vector<int>& neighbours, bool onlyLower) {
        const int p = s_.at(x, y);
        if (from_[p] == 0) return false;
        const Offer offer = best(x, y, neighbours);
        if (offer.from == 0) return false;
        const Cost cost = arrived(offer.cost, p);
        if (onlyLower && !cost.below(cost_[p])) return false;
        cost_[p] = cost;
        from_[p] = offer.from;
        s_.markers[p] = s_.markers[s_.at(x + dx[offer.from], y + dy[offer.from])];
        return true;
    }

    bool visit(int x, int y, const std::vector<int>& neighbours, bool onlyActive) {
        const int p = s_.at(x, y);
        if (from_[p] == 0 || (onlyActive && !active_[p])) return false;
        bool changed = take(x, y, neighbours, true);
        if (!changed && from_[p] != 9) {
            const Marker label = s_.markers[s_.at(x + dx[from_[p]], y + dy[from_[p]])];
            changed = label != s_.markers[p];
            s_.markers[p] = label;
        }
        if (!changed) {
            active_[p] = 0;
            return false;
        }
        for (int n = 1; n <= 8; ++n)
            if (s_.holds(x + dx[n], y + dy[n])) active_[s_.at(x + dx[n], y + dy[n])] = 1;
        return true;
    }

    bool sweep(bool downward, bool onlyActive) {
        const auto [w, h] = s_.size;
        bool changed = false;
        for (int i = 1; i < h; ++i) {
            const int y = downward ? i : h - 1 - i;
            const int vertical = downward ? 3 : 7;
            for (int x = 0; x < w; ++x) changed |= visit(x, y, rightward(vertical), onlyActive);
            for (int x = w - 1; x >= 0; --x) changed |= visit(x, y, {1, vertical}, onlyActive);
        }
        return changed;
    }

    void draw(Lum32s flags) {
        const auto [w, h] = s_.size;
        const bool four = w == 1 || (isFloat ? (flags & 128) == 0 : (flags & 64) != 0);
        auto& m = s_.markers;
        const auto right = [&](int p) {
            if (m[p] == m[p + 1]) return false;
            if (cost_[p].atMost(cost_[p + 1])) {
                m[p + 1] = boundary<M>;
                return true;
            }
            m[p] = boundary<M>;
            return false;
        };
        for (int x = 0; x + 1 < w; ++x)
            if (right(x)) ++x;
        for (int y = 1; y < h; ++y) {
            int skipped = -1;
            for (int x = 0; x < w; ++x) {
                const int p = s_.at(x, y);
                const int u = p - w;
                bool replaced = false;
                if (m[u] != boundary<M> && m[u] != m[p]) {
                    if (cost_[p].below(cost_[u])) {
                        m[u] = boundary<M>;
                    } else {
                        m[p] = boundary<M>;
                        replaced = true;
                    }
                }
                if (four && !replaced && skipped != x && x + 1 < w && right(p)) skipped = x + 1;
            }
            if (four) continue;
            for (int x = 0; x < w; ++x)
                for (int side : {-1, 1}) {
                    if (x + side < 0 || x + side >= w) continue;
                    const int p = s_.at(x, y);
                    const int u = p - w + side;
                    if (m[u] == boundary<M> || m[u] == m[p]) continue;
                    m[cost_[p].below(cost_[u]) ? u : p] = boundary<M>;
                }
        }
    }

    Scene<M> s_;
    int norm_;
    std::vector<Cost> cost_;
    std::vector<int> from_;
    std::vector<char> active_;
    std::vector<bool> wasBoundary_;
};

template <class M> void expectReference(const Scene<M>& scene, int norm, Lum32s flags, int shift) {
    Reference<M> reference(scene, norm);
    ASSERT_TRUE(sameBits(reference.run(flags), segmented(scene, norm, lumSegmentDistance | flags, shift)))
        << scene.size.width << " x " << scene.size.height << ", norm " << norm << ", flags " << flags;
}

} // namespace

TEST(SegmentWatershed_8u_C1IR, PlateausAreSharedOutByDistance) {
    const Scene<Bytes> scene{{8, 1}, std::vector<Lum8u>(8, 4), {5, 0, 0, 0, 0, 0, 0, 6}};
    EXPECT_EQ((std::vector<Lum8u>{5, 5, 5, 5, 6, 6, 6, 6}), segmented(scene, 1, lumSegmentDistance));
    // Pixels 3 and 4 are three hops from their markers: on a tie the right one is drawn.
    EXPECT_EQ((std::vector<Lum8u>{5, 5, 5, 5, 255, 6, 6, 6}),
              segmented(scene, 1, lumSegmentDistance | lumSegmentBorder4));
}

TEST(SegmentWatershed_8u_C1IR, LowPassesWinOverShortOnes) {
    // The way round through the low row is longer than the one over the ridge.
    const Scene<Bytes> scene{{4, 2}, {0, 200, 50, 90, 0, 0, 0, 0}, {1, 0, 0, 2, 0, 0, 0, 0}};
    EXPECT_EQ((std::vector<Lum8u>{1, 1, 1, 2, 1, 1, 1, 1}), segmented(scene, 1, lumSegmentDistance));
}

MEMBER_TEST(WatershedRaster, NoSeedLeavesTheMarkers) {
    using M = TypeParam;
    const Scene<M> scene{
        {9, 7}, std::vector<typename M::Relief>(63, 3), std::vector<typename M::Marker>(63, 0)};
    for (int norm = 0; norm < 4; ++norm)
        for (Lum32s flags : boundaryFlags)
            EXPECT_EQ(scene.markers, segmented(scene, norm, lumSegmentDistance | flags));
}

MEMBER_TEST(WatershedRaster, BoundaryOnEntryIsPassedByNoLabel) {
    using M = TypeParam;
    const auto b = boundary<M>;
    const Scene<M> scene{{5, 1}, std::vector<typename M::Relief>(5, 3), {0, 0, b, 0, 4}};
    for (int norm = 0; norm < 4; ++norm)
        EXPECT_EQ((std::vector<typename M::Marker>{0, 0, b, 4, 4}),
                  segmented(scene, norm, lumSegmentDistance));
}

MEMBER_TEST(WatershedRaster, ColumnRunsAsFourNeighbours) {
    using M = TypeParam;
    std::mt19937 engine(50);
    const auto scene = randomScene<M>(engine, {1, 40});
    if (std::is_integral_v<typename M::Relief>) {
        for (int norm : {0, 2, 3}) EXPECT_EQ(segmented(scene, 1, 2), segmented(scene, norm, 2));
    }
    EXPECT_EQ(segmented(scene, 1, 2 | lumSegmentBorder4), segmented(scene, 1, 2 | lumSegmentBorder8));
}

MEMBER_TEST(WatershedRaster, BothFlagsAreFourOfIntegersAndEightOfFloats) {
    using M = TypeParam;
    std::mt19937 engine(51);
    bool differ = false;
    for (int i = 0; i < 20; ++i) {
        const auto scene = randomScene<M>(engine, {25, 25});
        const auto four = segmented(scene, 0, 2 | lumSegmentBorder4);
        const auto eight = segmented(scene, 0, 2 | lumSegmentBorder8);
        const auto both = segmented(scene, 0, 2 | lumSegmentBorder4 | lumSegmentBorder8);
        EXPECT_EQ(std::is_integral_v<typename M::Relief> ? four : eight, both);
        differ |= four != eight;
    }
    EXPECT_TRUE(differ);
}

MEMBER_TEST(WatershedRaster, FourNeighbourBoundariesAreClosed) {
    using M = TypeParam;
    std::mt19937 engine(52);
    for (int i = 0; i < 40; ++i) {
        const auto scene = randomScene<M>(engine, randomSize(engine));
        const auto result = segmented(scene, i % 4, 2 | lumSegmentBorder4);
        for (int y = 0; y < scene.size.height; ++y)
            for (int x = 0; x < scene.size.width; ++x)
                for (int n : {scene.at(x + 1, y), scene.at(x, y + 1)}) {
                    if ((n == scene.at(x + 1, y) && x + 1 == scene.size.width) ||
                        n >= static_cast<int>(result.size()))
                        continue;
                    const auto a = result[scene.at(x, y)];
                    const auto b = result[n];
                    if (a != boundary<M> && b != boundary<M>) {
                        ASSERT_EQ(a, b) << x << ", " << y;
                    }
                }
    }
}

MEMBER_TEST(WatershedRaster, EveryRunFollowsTheSteps) {
    using M = TypeParam;
    std::mt19937 engine(53);
    for (int i = 0; i < runsOf(1600); ++i) {
        const auto scene = randomScene<M>(engine, randomSize(engine));
        ASSERT_NO_FATAL_FAILURE(expectReference(scene, i % 4, boundaryFlags[i / 4 % 4], i % 64))
            << "run " << i;
    }
}

MEMBER_TEST(WatershedRaster, LabyrinthsFollowTheSteps) {
    using M = TypeParam;
    // A way that turns at every wall takes many sweeps, in which labels are replaced again and again.
    std::mt19937 engine(54);
    for (int i = 0; i < runsOf(64); ++i) {
        Scene<M> scene{{60, 41}, {}, std::vector<typename M::Marker>(60 * 41, 0)};
        for (int y = 0; y < 41; ++y)
            for (int x = 0; x < 60; ++x) {
                const bool wall = y % 2 == 1 && x != (y / 2 % 2 == 0 ? 59 : 0);
                scene.relief.push_back(static_cast<typename M::Relief>(wall         ? 250
                                                                       : i % 2 == 0 ? 3
                                                                                    : engine() % 4));
            }
        scene.markers[i % 2400] = 5;
        scene.markers[2459 - i] = 6;
        ASSERT_NO_FATAL_FAILURE(expectReference(scene, i % 4, boundaryFlags[i / 4 % 4], 0)) << "run " << i;
    }
}

TEST(SegmentWatershed_32f16u_C1IR, UnusualLevelsFollowTheSteps) {
    std::mt19937 engine(55);
    const float infinity = std::numeric_limits<float>::infinity();
    const float values[] = {0, -0.F, -5, 1e-40F, 3.4028235e38F, infinity, -infinity, 2, 2};
    for (int i = 0; i < 400; ++i) {
        auto scene = randomScene<Floats>(engine, randomSize(engine));
        for (float& level : scene.relief) level = values[engine() % (i % 2 == 0 ? 9 : 2)];
        ASSERT_NO_FATAL_FAILURE(expectReference(scene, i % 4, boundaryFlags[i / 4 % 4], i % 64))
            << "run " << i;
    }
}

TEST(SegmentWatershed_32f16u_C1IR, NanEndsAndSpreadsNothingLower) {
    std::mt19937 engine(56);
    for (int i = 0; i < 200; ++i) {
        auto scene = randomScene<Floats>(engine, randomSize(engine));
        for (float& level : scene.relief)
            if (engine() % 4 == 0) level = std::numeric_limits<float>::quiet_NaN();
        ASSERT_NO_FATAL_FAILURE(expectReference(scene, i % 3, boundaryFlags[i / 4 % 4], 0)) << "run " << i;
    }
}

TEST(SegmentWatershed_32f16u_C1IR, FloatsAndIntegersOfOneReliefAgreeInUnitHops) {
    std::mt19937 engine(57);
    for (int i = 0; i < 60; ++i) {
        const auto floats = randomScene<Floats>(engine, {2 + static_cast<int>(engine() % 30), 20});
        Scene<Member<Lum8u, Lum16u>> integers{floats.size, {}, floats.markers};
        for (float level : floats.relief) integers.relief.push_back(static_cast<Lum8u>(level));
        const Lum32s flags = 2 | boundaryFlags[i % 3];
        EXPECT_EQ(segmented(integers, i % 2, flags), segmented(floats, i % 2, flags));
    }
}

MEMBER_TEST(WatershedRaster, BufferSizesFollowTheFormulas) {
    using M = TypeParam;
    const auto expected = [](std::uint32_t w, std::uint32_t h) {
        const auto sum = [](std::uint32_t a, std::uint32_t b) {
            return std::max(static_cast<Lum32s>(a), static_cast<Lum32s>(b));
        };
        if (std::is_floating_point_v<typename M::Relief>)
            return static_cast<Lum32s>(((w + 3) & ~3U) * 9 * h + (h + 2) + 64);
        if (sizeof(typename M::Marker) == 1)
            return sum(12 * w * h + (w + 2) * (h + 2) + 36, (6 * h + 2) * ((w + 31) & ~31U) + h + 66);
        return sum(12 * w * h + (2 * w + 4) * (h + 2) + 36, (6 * h + 2) * ((2 * w + 31) & ~31U) + h + 66);
    };
    using namespace lum::kernels;
    constexpr bool isFloat = std::is_floating_point_v<typename M::Relief>;
    for (LumSize size :
         {LumSize{1, 1}, {1, 9}, {9, 1}, {31, 32}, {33, 7}, {640, 480}, {20000, 20000}, {16000, 12000}}) {
        Lum32s bytes = 0;
        EXPECT_STATUS(lumStatusOk, M::bufferSize(size, &bytes));
        EXPECT_EQ(expected(size.width, size.height), bytes) << size.width << " x " << size.height;
    }
    for (int width = 1; width <= 150; ++width)
        for (int height = 1; height <= 150; ++height) {
            const std::size_t needed = isFloat ? rasterBytes<FloatCost>({width, height}) + 63
                                               : rasterBytes<IntegerCost>({width, height}) + 31;
            ASSERT_LE(needed, static_cast<std::size_t>(expected(width, height)));
        }
    Lum32s bytes = -3;
    EXPECT_STATUS(lumStatusNullPointer, M::bufferSize({0, 1}, nullptr));
    EXPECT_STATUS(lumStatusSizeError, M::bufferSize({0, 1}, &bytes));
    EXPECT_STATUS(lumStatusSizeError, M::bufferSize({1, -1}, &bytes));
    EXPECT_EQ(-3, bytes);
}

MEMBER_TEST(WatershedRaster, ArgumentsAreTestedInOrder) {
    using M = TypeParam;
    using Relief = typename M::Relief;
    using Marker = typename M::Marker;
    constexpr bool isFloat = std::is_floating_point_v<Relief>;
    GuardedImage<Relief> relief(6, 4, {.padding = 8});
    relief.fill([](int, int, int) { return 1; });
    GuardedImage<Marker> markers(6, 4, {.padding = 8});
    markers.fill([](int x, int, int) { return x == 1; });
    GuardedBlock buffer(5000);
    struct Arguments {
        const Relief* src;
        int srcStep;
        Marker* markers;
        int markersStep;
        LumSize size;
        Lum32s norm;
        Lum32s flags;
        Lum8u* buffer;
    };
    const Arguments worst{
        relief.data(), 6 * static_cast<int>(sizeof(Relief)) - 1, markers.data(), 1, {0, 4}, 9, 0,
        buffer.as<>()};
    const auto refused = [&](LumStatus expected, const Arguments& a) {
        EXPECT_REFUSED(
            expected, markers,
            M::call(a.src, a.srcStep, a.markers, a.markersStep, a.size, a.norm, a.flags, a.buffer));
    };
    for (int missing = 0; missing < 3; ++missing) {
        Arguments a = worst;
        if (missing == 0) a.src = nullptr;
        if (missing == 1) a.markers = nullptr;
        if (missing == 2) a.buffer = nullptr;
        refused(lumStatusNullPointer, a);
    }
    Arguments a = worst;
    refused(lumStatusSizeError, a);
    a.size = {6, 0};
    refused(lumStatusSizeError, a);
    a.size = {6, 4};
    refused(lumStatusStepError, a);
    // A step of the relief that is odd but long enough: the step of the markers is tested first.
    a.srcStep = relief.step() + 1;
    refused(lumStatusStepError, a);
    a.markersStep = -markers.step();
    refused(lumStatusStepError, a);
    a.markersStep = markers.step() + 1;
    if (sizeof(Marker) == 2 || isFloat) refused(lumStatusStepAlignmentError, a);
    a.markersStep = markers.step();
    if (isFloat) refused(lumStatusStepAlignmentError, a);
    a.srcStep = relief.step();
    refused(lumStatusBadArgument, a);
    for (Lum32s flags : {0, 64, 192, 4}) {
        a.norm = 0;
        a.flags = flags;
        refused(lumStatusBadArgument, a);
    }
    for (Lum32s norm : {-1, 4}) {
        a.norm = norm;
        a.flags = lumSegmentDistance;
        refused(lumStatusBadArgument, a);
    }
    for (Lum32s norm : {-1, 2, 3}) {
        a.norm = norm;
        a.flags = lumSegmentQueue | lumSegmentDistance;
        refused(isFloat ? lumStatusModeError : lumStatusBadArgument, a);
    }
    if (isFloat) {
        a.norm = 0;
        refused(lumStatusModeError, a);
    }
}

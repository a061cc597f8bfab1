#include "canny_members.h"

using namespace support;

namespace {

/// A detector run on gradients that are written out as rows of numbers.
template <class T> struct SmallCase {
    LumSize size;
    std::vector<T> dx;
    std::vector<T> dy;
};

template <class T>
std::vector<Lum8u> edgesOf(const CannyForm<T>& form, const SmallCase<T>& given, float low, float high) {
    const auto [width, height] = given.size;
    GuardedImage<T> dx(width, height), dy(width, height);
    dx.fill([&](int x, int y, int) { return given.dx[y * width + x]; });
    dy.fill([&](int x, int y, int) { return given.dy[y * width + x]; });
    GuardedImage<Lum8u> dst(width, height);
    dst.fill([](int, int, int) { return 77; });
    GuardedBlock buffer(cannyBufferSize(given.size));
    EXPECT_STATUS(lumStatusOk, form.run(dx, dy, dst, low, high, buffer.as()));
    return dst.pixels();
}

/// A row of horizontal gradients.
template <class T>
std::vector<Lum8u> edgesOfRow(const CannyForm<T>& form, const std::vector<T>& dx, float low, float high) {
    return edgesOf<T>(form, {{static_cast<int>(dx.size()), 1}, dx, std::vector<T>(dx.size())}, low, high);
}

using Bytes = std::vector<Lum8u>;

template <class T>
void expectPlainEdges(const CannyForm<T>& form, LumSize size, Placement placement, std::mt19937& engine) {
    GuardedImage<T> dx(size.width, size.height, placement), dy(size.width, size.height, placement);
    // few values, so that neighbours are often equal; now and then the extremes
    const int reach = 1 + static_cast<int>(engine() % 12);
    const auto component = [&](int, int, int) {
        if (engine() % 50 == 0) return static_cast<T>(engine() % 2 == 0 ? -32768 : 32767);
        const int steps = static_cast<int>(engine() % (2 * reach + 1)) - reach;
        return static_cast<T>(std::is_same_v<T, Lum16s> ? 3 * steps : 0.75 * steps);
    };
    dx.fill(component);
    dy.fill(component);
    const float low = static_cast<float>(engine() % 16) / 2;
    const float high = low + static_cast<float>(engine() % 40);
    Placement ofBytes = placement;
    ofBytes.padding = static_cast<int>(engine() % 4);
    GuardedImage<Lum8u> dst(size.width, size.height, ofBytes);
    dst.fill([](int, int, int) { return 3; });
    GuardedBlock buffer(cannyBufferSize(size), Guard::after, engine() % 33);
    ASSERT_EQ(lumStatusOk, form.run(dx, dy, dst, low, high, buffer.as()));
    ASSERT_EQ(plainEdges(form, dx, dy, low, high), dst.pixels())
        << form.name << " " << size.width << "x" << size.height << " thresholds " << low << ", " << high;
    ASSERT_TRUE(dst.outsideUntouched());
}

} // namespace

TEST(Canny, ARidgeBesideWeakerColumnsIsAnEdgeByHand) {
    // a step from left to right: the middle column is the ridge, and its weak end joins its strong pixels
    const SmallCase<Lum16s> step{
        {5, 3}, {0, 10, 90, 10, 0, 0, 10, 90, 10, 0, 0, 10, 40, 10, 0}, std::vector<Lum16s>(15)};
    for (const auto& form : forms16s)
        EXPECT_EQ((Bytes{0, 0, 255, 0, 0, 0, 0, 255, 0, 0, 0, 0, 255, 0, 0}), edgesOf(form, step, 20, 60))
            << form.name;
}

TEST(Canny, EveryFormFollowsThePlainRuleOnEveryWidth) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 engine(seed);
    std::vector<int> widths{127, 128, 129, 200};
    for (int width = 1; width <= 70; ++width) widths.push_back(width);
    for (int width : widths)
        for (int height : {1, 2, 3, 7})
            for (Guard guard : {Guard::after, Guard::before}) {
                const Placement odd{.offset = static_cast<int>(engine() % 16) * 4, .guard = guard};
                for (const auto& form : forms16s) expectPlainEdges(form, {width, height}, odd, engine);
                for (const auto& form : forms32f) expectPlainEdges(form, {width, height}, odd, engine);
            }
}

TEST(Canny, MagnitudesSaturateAt65535) {
    // both sums are 65535: the plateau keeps its first pixel only
    const SmallCase<Lum16s> pair{{3, 1}, {0, -32768, -32768}, {0, -32768, -32767}};
    EXPECT_EQ((Bytes{0, 255, 255}), edgesOf(forms16s[0], pair, 65534, 65534));
    EXPECT_EQ((Bytes{0, 0, 0}), edgesOf(forms16s[0], pair, 65535, 65535));
    const SmallCase<Lum16s> row{{3, 1}, {0, -32768, -32768}, {0, 13000, 13573}};
    EXPECT_EQ((Bytes{0, 0, 255}), edgesOf(forms16s[0], row, 0, 0));
}

TEST(Canny, SquaresReachTwoToThe31) {
    const SmallCase<Lum16s> corner{{1, 1}, {-32768}, {-32768}};
    EXPECT_EQ((Bytes{255}), edgesOf(forms16s[2], corner, 46340, 46340));
    EXPECT_EQ((Bytes{0}), edgesOf(forms16s[2], corner, 46341, 46341));
    EXPECT_EQ((Bytes{0}), edgesOf(forms16s[2], corner, 1e20F, 1e20F));
}

TEST(Canny, ThresholdsOfSquaresAreSquared) {
    // 100 squared is 10000, 200 squared 40000
    for (Lum16s m : {100, 101, 200, 201}) {
        EXPECT_EQ((Bytes{Lum8u(m > 200 ? 255 : 0)}), edgesOfRow<Lum16s>(forms16s[2], {m}, 100, 200)) << m;
        EXPECT_EQ((Bytes{Lum8u(m > 200 ? 255 : 0)}), edgesOfRow<Lum32f>(forms32f[2], {float(m)}, 100, 200))
            << m;
    }
    // a ridge of 101 joins an edge, one of 100 does not count
    EXPECT_EQ((Bytes{0, 255}), edgesOf<Lum16s>(forms16s[2], {{2, 1}, {0, 201}, {100, 0}}, 100, 200));
    EXPECT_EQ((Bytes{255, 255}), edgesOf<Lum16s>(forms16s[2], {{2, 1}, {0, 201}, {101, 0}}, 100, 200));
}

TEST(Canny, IntegersCompareWithTheIntegralPartOfAThreshold) {
    EXPECT_EQ((Bytes{0}), edgesOfRow<Lum16s>(forms16s[0], {3}, 3.9F, 3.9F));
    EXPECT_EQ((Bytes{255}), edgesOfRow<Lum16s>(forms16s[0], {4}, 3.9F, 4.0F - 0.05F));
}

TEST(Canny, EqualityWithTheLowThresholdSurvivesIn32fAlone) {
    // the first pixel is exactly at the low threshold, beside an edge
    const SmallCase<Lum32f> pair{{2, 1}, {0, 9}, {5, 0}};
    EXPECT_EQ((Bytes{255, 255}), edgesOf(forms32f[0], pair, 5, 8));
    EXPECT_EQ((Bytes{0, 255}), edgesOf(forms32f[1], pair, 5, 8));
    EXPECT_EQ((Bytes{0, 255}), edgesOf(forms32f[2], pair, 5, 8));
    for (const auto& form : forms16s)
        EXPECT_EQ((Bytes{0, 255}), edgesOf<Lum16s>(form, {{2, 1}, {0, 9}, {5, 0}}, 5, 8)) << form.name;
}

TEST(Canny, APixelAtEqualThresholdsOnlyJoins) {
    EXPECT_EQ((Bytes{0}), edgesOfRow<Lum32f>(forms32f[0], {5}, 5, 5));
    EXPECT_EQ((Bytes{255, 255}), edgesOf<Lum32f>(forms32f[0], {{2, 1}, {0, 9}, {5, 0}}, 5, 5));
}

TEST(Canny, AZeroMagnitudeIsNoRidgeWithALowThresholdOfZero) {
    EXPECT_EQ((Bytes{0, 0}), edgesOfRow<Lum32f>(forms32f[0], {0, 0}, 0, 0));
}

TEST(Canny, AHorizontalPlateauKeepsItsFirstPixel) {
    for (const auto& form : forms16s)
        EXPECT_EQ((Bytes{0, 255, 0, 0, 0}), edgesOfRow<Lum16s>(form, {0, 7, 7, 7, 0}, 1, 2)) << form.name;
    for (const auto& form : forms32f)
        EXPECT_EQ((Bytes{0, 255, 0, 0, 0}), edgesOfRow<Lum32f>(form, {0, 7, 7, 7, 0}, 1, 2)) << form.name;
}

TEST(Canny, AVerticalPlateauKeepsItsTopPixel) {
    const SmallCase<Lum16s> column{{1, 5}, std::vector<Lum16s>(5), {0, 7, 7, 7, 0}};
    for (const auto& form : forms16s)
        EXPECT_EQ((Bytes{0, 255, 0, 0, 0}), edgesOf(form, column, 1, 2)) << form.name;
}

TEST(Canny, DiagonalPlateausKeepNothing) {
    // two equal pixels along the gradient refuse each other
    const SmallCase<Lum16s> falling{{2, 2}, {5, 0, 0, 5}, {5, 0, 0, 5}};
    const SmallCase<Lum16s> rising{{2, 2}, {0, 5, -5, 0}, {0, -5, 5, 0}};
    for (const auto& form : forms16s) {
        EXPECT_EQ((Bytes{0, 0, 0, 0}), edgesOf(form, falling, 1, 2)) << form.name;
        EXPECT_EQ((Bytes{0, 0, 0, 0}), edgesOf(form, rising, 1, 2)) << form.name;
    }
    // across the gradient they stay
    const SmallCase<Lum16s> across{{2, 2}, {5, 0, 0, 5}, {-5, 0, 0, -5}};
    EXPECT_EQ((Bytes{255, 0, 0, 255}), edgesOf(forms16s[0], across, 1, 2));
}

TEST(Canny, ASignedZeroHasASignIn32f) {
    // dx is a subnormal's worth of nothing beside dy, so the direction is vertical whatever the sign
    EXPECT_EQ((Bytes{255}), edgesOf<Lum32f>(forms32f[0], {{1, 1}, {-0.0F}, {4}}, 1, 2));
}

TEST(Canny, EdgesAreFollowedAlongALongSpiral) {
    // one strong pixel at the centre of a spiral one pixel wide
    constexpr int side = 41;
    std::vector<Lum16s> dy(side * side), dx(side * side);
    std::vector<Lum8u> expected(side * side);
    int x = 0, y = 0, stepX = 1, stepY = 0;
    const auto marked = [&](int u, int v) {
        return u >= 0 && v >= 0 && u < side && v < side && expected[v * side + u] != 0;
    };
    expected[0] = 255;
    for (int turns = 0; turns < 2;) {
        const int u = x + stepX, v = y + stepY;
        const bool open =
            u >= 0 && v >= 0 && u < side && v < side && !marked(u, v) && !marked(u + stepX, v + stepY);
        if (open) {
            x = u;
            y = v;
            expected[y * side + x] = 255;
            turns = 0;
        } else {
            const int turned = stepX;
            stepX = -stepY;
            stepY = turned;
            ++turns;
        }
    }
    // every pixel of the spiral is a ridge: its gradient points to a neighbour that is not on it
    for (int v = 0; v < side; ++v)
        for (int u = 0; u < side; ++u) {
            if (!marked(u, v)) continue;
            if (!marked(u - 1, v) && !marked(u + 1, v))
                dx[v * side + u] = 50;
            else if (!marked(u, v - 1) && !marked(u, v + 1))
                dy[v * side + u] = 50;
            else if (!marked(u - 1, v - 1) && !marked(u + 1, v + 1))
                dx[v * side + u] = dy[v * side + u] = 25;
            else
                dx[v * side + u] = 25, dy[v * side + u] = -25;
        }
    (dx[y * side + x] != 0 ? dx : dy)[y * side + x] *= 2;
    EXPECT_EQ(expected, edgesOf<Lum16s>(forms16s[0], {{side, side}, dx, dy}, 10, 75));
    EXPECT_EQ(Bytes(side * side), edgesOf<Lum16s>(forms16s[0], {{side, side}, dx, dy}, 10, 100));
}

TEST(Canny, WidthsBeyondTheNarrowSizeFormulaWork) {
    for (int width : {65532, 65533, 70000}) {
        std::vector<Lum16s> dx(width);
        Bytes expected(width);
        for (int x = 1; x < width; x += 1000) {
            dx[x] = 9;
            expected[x] = 255;
        }
        EXPECT_EQ(expected, edgesOfRow<Lum16s>(forms16s[0], dx, 1, 2));
    }
}

TEST(Canny, SizesFollowTheirFormula) {
    for (LumSize size :
         {LumSize{1, 1}, LumSize{7, 3}, LumSize{1920, 1080}, LumSize{65532, 1}, LumSize{1, 65532}}) {
        EXPECT_EQ((5 * size.height + 10) * (size.width + 2) + 16 * size.width + 160, cannyBufferSize(size));
    }
    for (LumSize size : {LumSize{65533, 1}, LumSize{1, 65533}, LumSize{100000, 100}})
        EXPECT_EQ((9 * size.height + 18) * (size.width + 2) + 16 * size.width + 160, cannyBufferSize(size));
    for (LumSize size : {LumSize{7, 3}, LumSize{65533, 2}}) {
        Lum32s bytes = 0;
        EXPECT_STATUS(lumStatusOk, lumiCannyGetSize_L(longSize(size), &bytes));
        EXPECT_EQ(cannyBufferSize(size), bytes);
    }
}

TEST(Canny, SizeQueriesRefuseInOrder) {
    Lum32s bytes = 5;
    EXPECT_STATUS(lumStatusNullPointer, lumiCannyGetSize({0, 0}, nullptr));
    EXPECT_STATUS(lumStatusNullPointer, lumiCannyGetSize_L({0, 0}, nullptr));
    for (LumSize size : {LumSize{0, 1}, LumSize{1, 0}, LumSize{-4, 1}}) {
        EXPECT_STATUS(lumStatusSizeError, lumiCannyGetSize(size, &bytes));
        EXPECT_STATUS(lumStatusSizeError, lumiCannyGetSize_L(longSize(size), &bytes));
    }
    EXPECT_EQ(5, bytes);
}

namespace {

/// The arguments of a call, with the mistakes of the table below.
template <class T> struct CannyArguments {
    GuardedImage<T> derivative{6, 4};
    GuardedImage<Lum8u> result{6, 4};
    std::vector<Lum8u> memory = std::vector<Lum8u>(4096);
    const T* dx = derivative.data();
    const T* dy = derivative.data();
    int dxStep = derivative.step();
    int dyStep = derivative.step();
    Lum8u* dst = result.data();
    int dstStep = result.step();
    LumSize size{6, 4};
    float low = 1;
    float high = 2;
    LumNormKind norm = lumNormL1;
    Lum8u* buffer = memory.data();

    LumStatus call() const {
        return plainCanny<T>()(dx, dxStep, dy, dyStep, dst, dstStep, size, low, high, buffer);
    }
    LumStatus callLong() const {
        return longCanny<T>()(dx, dxStep, dy, dyStep, dst, dstStep, longSize(size), low, high, norm, buffer);
    }
};

template <class T> struct Mistake {
    LumStatus status;
    void (*make)(CannyArguments<T>&);
    bool longOnly = false;
};

template <class T> void expectRefusalsInOrder() {
    using A = CannyArguments<T>;
    // in the order of the tests: of any two mistakes the earlier one is reported
    const std::vector<Mistake<T>> mistakes = {
        {lumStatusNullPointer, [](A& a) { a.dx = nullptr; }},
        {lumStatusNullPointer, [](A& a) { a.dy = nullptr; }},
        {lumStatusNullPointer, [](A& a) { a.dst = nullptr; }},
        {lumStatusNullPointer, [](A& a) { a.buffer = nullptr; }},
        {lumStatusSizeError, [](A& a) { a.size.width = 0; }},
        {lumStatusSizeError, [](A& a) { a.size.height = -1; }},
        {lumStatusStepError, [](A& a) { a.dxStep = 6 * sizeof(T) - 1; }},
        {lumStatusStepError, [](A& a) { a.dyStep = -64; }},
        {lumStatusStepError, [](A& a) { a.dstStep = 5; }},
        {lumStatusStepAlignmentError, [](A& a) { a.dxStep = 6 * sizeof(T) + 1; }},
        {lumStatusStepAlignmentError, [](A& a) { a.dyStep = 7 * sizeof(T) - 1; }},
        {lumStatusBadArgument, [](A& a) { a.low = -0.5F; }},
        {lumStatusBadArgument, [](A& a) { a.high = 0.5F; }},
        {lumStatusNormError, [](A& a) { a.norm = lumNormInf; }, true},
    };
    for (std::size_t i = 0; i < mistakes.size(); ++i)
        for (std::size_t j = i; j < mistakes.size(); ++j) {
            A arguments;
            mistakes[j].make(arguments);
            mistakes[i].make(arguments);
            EXPECT_REFUSED(mistakes[i].status, arguments.result, arguments.callLong());
            if (!mistakes[i].longOnly && !mistakes[j].longOnly) {
                EXPECT_REFUSED(mistakes[i].status, arguments.result, arguments.call());
            }
        }
    A exact;
    EXPECT_STATUS(lumStatusOk, exact.call());
    exact.norm = lumNormL2;
    EXPECT_STATUS(lumStatusOk, exact.callLong());
    exact.norm = lumNormL1 | lumNormL2;
    EXPECT_STATUS(lumStatusNormError, exact.callLong());
}

} // namespace

TEST(Canny, RefusesInOrder16s) { expectRefusalsInOrder<Lum16s>(); }
TEST(Canny, RefusesInOrder32f) { expectRefusalsInOrder<Lum32f>(); }

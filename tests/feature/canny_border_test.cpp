#include "canny_members.h"
#include "derivative_masks.h"

using namespace support;

namespace {

/// A filter of the detector.
struct Filter {
    const char* name;
    int kind;
    LumMaskSize mask;
    const DerivativeMask& weights;
};

const std::vector<Filter> filters = {
    {"Sobel 3", 2, lumMask3x3, sobel3},
    {"Sobel 5", 2, lumMask5x5, sobel5},
    {"Scharr", 5, lumMask3x3, scharr3},
};

struct Detection {
    Filter filter;
    LumSize size;
    LumBorderType border;
    LumNormKind norm;
    float low;
    float high;
    Lum8u value = 90;
};

int bufferSize(const Detection& d) {
    Lum32s bytes = 0;
    EXPECT_STATUS(lumStatusOk,
                  lumiCannyBorderGetSize(d.size, d.filter.kind, d.filter.mask, lumType8u, &bytes));
    return bytes;
}

LumStatus detect(const Detection& d, const GuardedImage<Lum8u>& src, GuardedImage<Lum8u>& dst,
                 Lum8u* buffer) {
    return lumiCannyBorder_8u_C1R(src.data(), src.step(), dst.data(), dst.step(), d.size, d.filter.kind,
                                  d.filter.mask, d.border, d.value, d.low, d.high, d.norm, buffer);
}

int directionByAngle(double dx, double dy) {
    double angle = std::atan2(dy, dx);
    if (angle < 0) angle += std::acos(-1.0);
    if (angle < 0.3926991F) return 1;
    if (angle <= 1.1780972F) return 4;
    if (angle < 1.9634955F) return 3;
    if (angle <= 2.7488937F) return 2;
    return 1;
}

int directionByBounds(float dx, float dy) {
    const float adx = std::fabs(dx);
    const float ady = std::fabs(dy);
    const float lower = lowerTangent * adx;
    if (ady > adx + adx + lower) return 3;
    if (lower > ady) return 1;
    return (dx < 0) == (dy < 0) ? 4 : 2;
}

std::vector<Lum8u> plainDetection(const Detection& d, const GuardedImage<Lum8u>& src) {
    const bool narrow = std::min(d.size.width, d.size.height) < d.filter.mask / 10;
    return plainEdges(
        d.size,
        [&](int x, int y) {
            const Gradient g = gradientAt(src, x, y, d.filter.weights, d.border, d.value);
            const float m = d.norm == lumNormL1 ? static_cast<float>(std::fabs(g.dx) + std::fabs(g.dy))
                                                : std::sqrt(static_cast<float>(g.dx * g.dx + g.dy * g.dy));
            return PlainGradient{g.dx, g.dy, above(m, d.low),
                                 narrow
                                     ? directionByAngle(g.dx, g.dy)
                                     : directionByBounds(static_cast<float>(g.dx), static_cast<float>(g.dy))};
        },
        d.high);
}

void expectPlainDetection(const Detection& d, std::mt19937& engine, Guard guard = Guard::after) {
    GuardedImage<Lum8u> src(d.size.width, d.size.height,
                            {.padding = static_cast<int>(engine() % 3),
                             .offset = static_cast<int>(engine() % 17),
                             .guard = guard,
                             .margin = marginsInMemory(d.border, d.filter.weights.reach())});
    // flat steps, noise of few values, or any bytes
    const unsigned texture = engine() % 3;
    src.fill([&](int x, int y, int) {
        return texture == 0   ? (x * 3 + y * 5) / 8 % 2 * 200
               : texture == 1 ? engine() % 3 * 20
                              : engine() % 256;
    });
    GuardedImage<Lum8u> dst(d.size.width, d.size.height, {.padding = 1, .guard = guard});
    dst.fill([](int, int, int) { return 7; });
    GuardedBlock buffer(bufferSize(d), Guard::after, engine() % 33);
    ASSERT_EQ(lumStatusOk, detect(d, src, dst, buffer.as()));
    ASSERT_EQ(plainDetection(d, src), dst.pixels())
        << d.filter.name << " " << d.size.width << "x" << d.size.height << " border " << d.border << " norm "
        << d.norm << " thresholds " << d.low << ", " << d.high;
    ASSERT_TRUE(dst.outsideUntouched());
    ASSERT_TRUE(src.untouched());
}

std::vector<LumBorderType> acceptedBorders() {
    std::vector<LumBorderType> all;
    for (LumBorderType border : everyBorder())
        if ((border & 15) != lumBorderMirror) all.push_back(border);
    return all;
}

} // namespace

TEST(CannyBorder, AStepHasOneEdgeByHand) {
    // columns 0 0 0 8 8 8: dx is 0 0 32 32 0 0, a plateau that keeps its left column
    GuardedImage<Lum8u> src(6, 3), dst(6, 3);
    src.fill([](int x, int, int) { return x < 3 ? 0 : 8; });
    for (LumNormKind norm : {lumNormL1, lumNormL2}) {
        const Detection d{filters[0], {6, 3}, lumBorderReplicate, norm, 10, 31.5F};
        GuardedBlock buffer(bufferSize(d));
        EXPECT_STATUS(lumStatusOk, detect(d, src, dst, buffer.as()));
        for (int y = 0; y < 3; ++y)
            for (int x = 0; x < 6; ++x) EXPECT_EQ(x == 2 ? 255 : 0, dst.at(x, y));
    }
}

TEST(CannyBorder, EveryFilterNormAndWidthFollowsThePlainRule) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 engine(seed);
    for (const Filter& filter : filters)
        for (LumNormKind norm : {lumNormL1, lumNormL2})
            for (int width = 1; width <= 72; ++width)
                for (Guard guard : {Guard::after, Guard::before}) {
                    const float low = static_cast<float>(engine() % 1000) / 4;
                    expectPlainDetection({filter,
                                          {width, 1 + static_cast<int>(engine() % 9)},
                                          lumBorderReplicate,
                                          norm,
                                          low,
                                          low + static_cast<float>(engine() % 500)},
                                         engine, guard);
                }
}

TEST(CannyBorder, EveryBorderOnEveryShape) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 engine(seed);
    for (const Filter& filter : filters)
        for (LumBorderType border : acceptedBorders())
            for (LumSize size : {LumSize{1, 1}, LumSize{2, 6}, LumSize{6, 2}, LumSize{3, 3}, LumSize{4, 30},
                                 LumSize{30, 4}, LumSize{33, 12}})
                for (LumNormKind norm : {lumNormL1, lumNormL2}) {
                    const float low = static_cast<float>(engine() % 300);
                    expectPlainDetection(
                        {filter, size, border, norm, low, low + static_cast<float>(engine() % 300)}, engine,
                        engine() % 2 == 0 ? Guard::after : Guard::before);
                }
}

TEST(CannyBorder, NarrowRegionsTakeTheDirectionOfTheAngle) {
    // The gradient at x = 1 is (-6726, 2786): horizontal by the bounds, which its stronger left neighbour would
    // refuse, and rising by the angle, whose neighbours lie outside.
    ASSERT_EQ(1, directionByBounds(-6726, 2786));
    ASSERT_EQ(2, directionByAngle(-6726, 2786));
    const int columns[] = {255, 141, 140, 0, 0, 0};
    const int rows[] = {0, 0, 0, 58, 58};
    GuardedImage<Lum8u> src(2, 1, {.margin = 2}), dst(2, 1);
    src.fill([&](int x, int y, int) {
        const int corner = x != 3 ? 0 : y == 2 ? 6 : y == -2 ? 4 : 0;
        return columns[x + 2] + (x == -2 ? 0 : rows[y + 2]) + corner;
    });
    const Gradient gradient = gradientAt<Lum8u>(src, 1, 0, sobel5, lumBorderInMemory, 0);
    ASSERT_EQ(-6726, gradient.dx);
    ASSERT_EQ(2786, gradient.dy);
    for (LumNormKind norm : {lumNormL1, lumNormL2}) {
        const Detection d{filters[1], {2, 1}, lumBorderInMemory, norm, 10, 20};
        GuardedBlock buffer(bufferSize(d));
        EXPECT_STATUS(lumStatusOk, detect(d, src, dst, buffer.as()));
        EXPECT_EQ(255, dst.at(0, 0));
        EXPECT_EQ(255, dst.at(1, 0));
    }
}

TEST(CannyBorder, MagnitudesOutsideTheRegionAreZeroEvenInMemory) {
    // a ramp that goes on in memory: its magnitudes are equal everywhere, and the first column is the ridge
    const Detection d{filters[0], {8, 8}, lumBorderInMemory, lumNormL1, 1, 2};
    GuardedImage<Lum8u> src(8, 8, {.margin = 1}), dst(8, 8);
    src.fill([](int x, int, int) { return 20 + 5 * x; });
    GuardedBlock buffer(bufferSize(d));
    EXPECT_STATUS(lumStatusOk, detect(d, src, dst, buffer.as()));
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x) EXPECT_EQ(x == 0 ? 255 : 0, dst.at(x, y));
}

TEST(CannyBorder, TheResultMayTakeThePlaceOfTheSource) {
    std::mt19937 engine(5);
    const Detection d{filters[1], {70, 40}, lumBorderConstant, lumNormL2, 300, 900};
    GuardedImage<Lum8u> src(70, 40);
    src.fill([&](int x, int y, int) { return (x / 9 + y / 7) % 2 * 150 + engine() % 20; });
    const auto expected = plainDetection(d, src);
    GuardedBlock buffer(bufferSize(d));
    EXPECT_STATUS(lumStatusOk, detect(d, src, src, buffer.as()));
    EXPECT_EQ(expected, src.pixels());
}

TEST(CannyBorder, SizesFollowTheirFormula) {
    const auto roundedUp = [](int n) { return (n + 31) / 32 * 32; };
    for (LumSize size : {LumSize{1, 1}, LumSize{2, 2}, LumSize{3, 2}, LumSize{3, 3}, LumSize{4, 5},
                         LumSize{5, 4}, LumSize{5, 5}, LumSize{1920, 1080}, LumSize{70000, 2}})
        for (int side : {3, 5}) {
            const int a = size.width + side - 1;
            const int b = size.height + side - 1;
            int expected = roundedUp(16 * a) + roundedUp(a * b) + roundedUp(4 * a * b) + 64;
            if (size.width < side || size.height < side) expected += roundedUp(a * b);
            Lum32s bytes = 0;
            EXPECT_STATUS(lumStatusOk, lumiCannyBorderGetSize(size, 77, side * 11, 99, &bytes));
            EXPECT_EQ(expected, bytes);
        }
}

TEST(CannyBorder, TheSizeQueryRefusesInOrder) {
    Lum32s bytes = 5;
    EXPECT_STATUS(lumStatusNullPointer, lumiCannyBorderGetSize({0, 0}, 2, 0, lumType8u, nullptr));
    EXPECT_STATUS(lumStatusSizeError, lumiCannyBorderGetSize({0, 3}, 2, 0, lumType8u, &bytes));
    EXPECT_STATUS(lumStatusSizeError, lumiCannyBorderGetSize({3, -3}, 2, 0, lumType8u, &bytes));
    EXPECT_STATUS(lumStatusMaskSizeError, lumiCannyBorderGetSize({3, 3}, 2, 53, lumType8u, &bytes));
    EXPECT_EQ(5, bytes);
}

namespace {

struct Arguments {
    GuardedImage<Lum8u> image{6, 4, {.margin = 2}};
    GuardedImage<Lum8u> result{6, 4};
    std::vector<Lum8u> memory = std::vector<Lum8u>(4096);
    const Lum8u* src = image.data();
    Lum8u* dst = result.data();
    LumSize size{6, 4};
    int kind = 2;
    LumMaskSize mask = lumMask3x3;
    LumBorderType border = lumBorderReplicate;
    float low = 1;
    float high = 2;
    LumNormKind norm = lumNormL1;
    Lum8u* buffer = memory.data();

    LumStatus call() const {
        return lumiCannyBorder_8u_C1R(src, image.step(), dst, result.step(), size, kind, mask, border, 0, low,
                                      high, norm, buffer);
    }
};

struct Mistake {
    LumStatus status;
    void (*make)(Arguments&);
};

} // namespace

TEST(CannyBorder, RefusesInOrder) {
    const std::vector<Mistake> mistakes = {
        {lumStatusMaskSizeError, [](Arguments& a) { a.mask = 35; }},
        {lumStatusNullPointer, [](Arguments& a) { a.src = nullptr; }},
        {lumStatusNullPointer, [](Arguments& a) { a.dst = nullptr; }},
        {lumStatusNullPointer, [](Arguments& a) { a.buffer = nullptr; }},
        {lumStatusSizeError, [](Arguments& a) { a.size.width = 0; }},
        {lumStatusSizeError, [](Arguments& a) { a.size.height = -1; }},
        {lumStatusBadArgument, [](Arguments& a) { a.kind = 3; }},
        {lumStatusBadArgument, [](Arguments& a) { a.norm = lumNormInf; }},
        {lumStatusBadArgument, [](Arguments& a) { a.low = -1; }},
        {lumStatusBadArgument, [](Arguments& a) { a.high = 0.5F; }},
        {lumStatusBorderError, [](Arguments& a) { a.border = lumBorderMirror; }},
    };
    for (std::size_t i = 0; i < mistakes.size(); ++i)
        for (std::size_t j = i; j < mistakes.size(); ++j) {
            Arguments arguments;
            mistakes[j].make(arguments);
            mistakes[i].make(arguments);
            EXPECT_REFUSED(mistakes[i].status, arguments.result, arguments.call());
        }
    Arguments scharr5;
    scharr5.kind = 5;
    scharr5.mask = lumMask5x5;
    scharr5.src = nullptr;
    EXPECT_REFUSED(lumStatusMaskSizeError, scharr5.result, scharr5.call());
}

TEST(CannyBorder, AcceptsItsBordersAndNoOthers) {
    for (LumBorderType border = -300; border <= 4200; ++border) {
        Arguments arguments;
        arguments.border = border;
        const LumBorderType kind = border & 15;
        const bool accepted = border >= 0 && border <= 255 && (border == 0xF0 || kind == 1 || kind == 6);
        EXPECT_STATUS(accepted ? lumStatusOk : lumStatusBorderError, arguments.call()) << border;
    }
}

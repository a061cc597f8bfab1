#include <climits>

#include "derivative_masks.h"
#include "support/status_checks.h"

using namespace support;

namespace {

struct Suppression {
    LumSize size;
    int filter = 2;
    LumMaskSize mask = lumMask3x3;
    int window = 3;
    Lum8u threshold = 25;
    LumBorderType border = lumBorderReplicate;
};

std::ostream& operator<<(std::ostream& out, const Suppression& s) {
    return out << s.size.width << "x" << s.size.height << " filter " << s.filter << " mask " << s.mask
               << " window " << s.window << " threshold " << +s.threshold << " border " << s.border;
}

constexpr Lum8u borderValue = 130;

int bufferSize(const Suppression& s) {
    Lum32s bytes = 0;
    EXPECT_STATUS(lumStatusOk,
                  lumiLineSuppressionGetBufferSize(s.size, s.mask, s.window, lumType8u, 1, &bytes));
    return bytes;
}

LumStatus call(const Suppression& s, const GuardedImage<Lum8u>& src, const GuardedImage<Lum8u>& feature,
               GuardedImage<Lum8u>& dst, Lum8u* buffer) {
    return lumiLineSuppression_8u_C1R(src.data(), src.step(), feature.data(), feature.step(), dst.data(),
                                      dst.step(), s.size, s.filter, s.mask, s.window, s.threshold, s.border,
                                      borderValue, buffer);
}

const DerivativeMask& maskOf(const Suppression& s) {
    return s.filter == 8 ? central3 : s.filter == 5 ? scharr3 : s.mask == lumMask3x3 ? sobel3 : sobel5;
}

bool isKept(const Suppression& s, const GuardedImage<Lum8u>& src, int x, int y) {
    double a = 0, b = 0, c = 0;
    const int before = s.window >> 1;
    for (int j = 0; j < s.window; ++j)
        for (int i = 0; i < s.window; ++i) {
            const Gradient g =
                gradientAt(src, x - before + i, y - before + j, maskOf(s), s.border, borderValue);
            a += g.dx * g.dx;
            b += g.dx * g.dy;
            c += g.dy * g.dy;
        }
    const double whole = 255.0 + s.threshold;
    return (a * c - b * b) * (whole * whole) >= 255.0 * s.threshold * ((a + c) * (a + c));
}

Margins marginsOf(const Suppression& s) {
    const int reach = maskOf(s).reach();
    const int before = (s.window >> 1) + reach;
    const int after = (s.window >> 1) - ((s.window + 1) & 1) + reach;
    Margins margins;
    if (s.border & lumBorderInMemoryTop) margins.top = before;
    if (s.border & lumBorderInMemoryLeft) margins.left = before;
    if (s.border & lumBorderInMemoryBottom) margins.bottom = after;
    if (s.border & lumBorderInMemoryRight) margins.right = after;
    return margins;
}

/// Returns how many features were kept.
int expectSuppressed(const Suppression& s, std::mt19937& engine, Guard guard = Guard::after) {
    GuardedImage<Lum8u> src(
        s.size.width, s.size.height,
        {.padding = static_cast<int>(engine() % 3), .guard = guard, .margin = marginsOf(s)});
    const bool noise = engine() % 2 == 0;
    src.fill([&](int x, int y, int) {
        const int random = static_cast<int>(engine() % 256);
        return noise ? random : ((x + 99) / 9 + (y + 99) / 5) % 2 * 150 + random % 3;
    });
    GuardedImage<Lum8u> feature(s.size.width, s.size.height, {.padding = 3, .guard = guard});
    feature.fill([&](int, int, int) { return engine() % 3 == 0 ? 0 : 1 + engine() % 255; });
    GuardedImage<Lum8u> dst(s.size.width, s.size.height, {.padding = 1, .guard = guard});
    GuardedBlock buffer(bufferSize(s), Guard::after, engine() % 65);
    EXPECT_STATUS(lumStatusOk, call(s, src, feature, dst, buffer.as()));
    int kept = 0;
    for (int y = 0; y < s.size.height; ++y)
        for (int x = 0; x < s.size.width; ++x) {
            const bool keeps = isKept(s, src, x, y);
            kept += keeps;
            EXPECT_EQ(keeps ? feature.at(x, y) : 0, dst.at(x, y)) << x << "," << y << " of " << s;
        }
    EXPECT_TRUE(dst.outsideUntouched());
    EXPECT_TRUE(feature.untouched());
    return kept;
}

const std::vector<std::pair<int, LumMaskSize>> filters = {
    {2, lumMask3x3}, {2, lumMask5x5}, {5, lumMask3x3}, {8, lumMask3x3}};

} // namespace

TEST(LineSuppression, AStepLosesItsFeaturesAndACornerKeepsThem) {
    // a bright quarter: its straight sides are lines, its corner is none
    GuardedImage<Lum8u> src(24, 24), feature(24, 24), dst(24, 24);
    src.fill([](int x, int y, int) { return x >= 12 && y >= 12 ? 200 : 0; });
    feature.fill([](int, int, int) { return 9; });
    const Suppression s{src.size()};
    GuardedBlock buffer(bufferSize(s));
    EXPECT_STATUS(lumStatusOk, call(s, src, feature, dst, buffer.as()));
    EXPECT_EQ(9, dst.at(12, 12)) << "the corner";
    EXPECT_EQ(0, dst.at(12, 20)) << "the left side";
    EXPECT_EQ(0, dst.at(20, 12)) << "the upper side";
    EXPECT_EQ(9, dst.at(3, 3)) << "flat ground";
}

TEST(LineSuppression, EveryWidthFilterAndThresholdFollowsTheFormula) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 engine(seed);
    int kept = 0, all = 0;
    for (int width = 1; width <= 70; ++width)
        for (const auto& [filter, mask] : filters) {
            const Suppression s{{width, 1 + width % 7},
                                filter,
                                mask,
                                1 + static_cast<int>(engine() % 6),
                                static_cast<Lum8u>(engine() % 200),
                                lumBorderReplicate};
            kept += expectSuppressed(s, engine, engine() % 2 == 0 ? Guard::after : Guard::before);
            all += s.size.width * s.size.height;
            if (HasFailure()) return;
        }
    EXPECT_GT(kept, all / 20);
    EXPECT_LT(kept, all - all / 20);
}

TEST(LineSuppression, EveryBorderExtendsTheSource) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 engine(seed);
    for (LumBorderType border : everyBorder()) {
        if ((border & 15) == lumBorderMirror) continue;
        for (LumSize size : {LumSize{1, 1}, LumSize{3, 2}, LumSize{11, 6}, LumSize{20, 9}}) {
            const auto& [filter, mask] = filters[engine() % filters.size()];
            expectSuppressed({size, filter, mask, 1 + static_cast<int>(engine() % 5), 40, border}, engine,
                             engine() % 2 == 0 ? Guard::after : Guard::before);
            if (HasFailure()) return;
        }
    }
}

TEST(LineSuppression, WindowsWiderThanTheImageWork) {
    std::mt19937 engine(5);
    for (int window : {9, 16, 40})
        expectSuppressed({{7, 5}, 2, lumMask5x5, window, 30, lumBorderConstant}, engine);
}

TEST(LineSuppression, AThresholdOfZeroKeepsAll) {
    std::mt19937 engine(6);
    for (const auto& [filter, mask] : filters) {
        const Suppression s{{33, 9}, filter, mask, 3, 0};
        EXPECT_EQ(33 * 9, expectSuppressed(s, engine));
    }
}

TEST(LineSuppression, TheHighestThresholdKeepsEqualEigenvalues) {
    // one bright pixel: its gradients are the same along both axes
    GuardedImage<Lum8u> src(9, 9), feature(9, 9), dst(9, 9);
    src.fill([](int x, int y, int) { return x == 4 && y == 4 ? 77 : 0; });
    feature.fill([](int, int, int) { return 1; });
    const Suppression s{.size = src.size(), .threshold = 255};
    GuardedBlock buffer(bufferSize(s));
    EXPECT_STATUS(lumStatusOk, call(s, src, feature, dst, buffer.as()));
    EXPECT_EQ(1, dst.at(4, 4));
    EXPECT_EQ(0, dst.at(5, 4));
}

TEST(LineSuppression, ItsBufferIsThatOfTheHarrisResponse) {
    for (LumSize size : {LumSize{1, 1}, LumSize{640, 480}})
        for (LumDataType type : {lumType8u, lumType32f})
            for (int window : {1, 3, 8}) {
                Lum32s bytes = 0, harris = 0;
                EXPECT_STATUS(lumStatusOk,
                              lumiLineSuppressionGetBufferSize(size, lumMask5x5, window, type, 1, &bytes));
                EXPECT_STATUS(lumStatusOk,
                              lumiHarrisCornerGetBufferSize(size, lumMask5x5, window, type, 1, &harris));
                EXPECT_EQ(harris, bytes);
            }
    Lum32s bytes = 7;
    const auto query = lumiLineSuppressionGetBufferSize;
    EXPECT_STATUS(lumStatusNullPointer, query({0, 0}, 0, 0, 0, 0, nullptr));
    EXPECT_STATUS(lumStatusSizeError, query({0, 1}, 0, 0, 0, 0, &bytes));
    EXPECT_STATUS(lumStatusMaskSizeError, query({1, 1}, 35, 0, 0, 0, &bytes));
    EXPECT_STATUS(lumStatusDataTypeError, query({1, 1}, lumMask3x3, 0, lumType16s, 0, &bytes));
    EXPECT_STATUS(lumStatusCountError, query({1, 1}, lumMask5x5, 0, lumType8u, 0, &bytes));
    EXPECT_STATUS(lumStatusSizeError, query({1, 1}, lumMask3x3, 0, lumType8u, 1, &bytes));
    EXPECT_EQ(7, bytes);
}

namespace {

struct Arguments {
    GuardedImage<Lum8u> image{6, 4, {.margin = 4}};
    GuardedImage<Lum8u> given{6, 4};
    GuardedImage<Lum8u> result{6, 4};
    std::vector<Lum8u> memory = std::vector<Lum8u>(8192);
    const Lum8u* src = image.data();
    const Lum8u* feature = given.data();
    Lum8u* dst = result.data();
    int srcStep = image.step();
    int featureStep = given.step();
    int dstStep = result.step();
    LumSize size{6, 4};
    int filter = 2;
    LumMaskSize mask = lumMask3x3;
    int window = 3;
    LumBorderType border = lumBorderReplicate;
    Lum8u* buffer = memory.data();

    LumStatus call() const {
        return lumiLineSuppression_8u_C1R(src, srcStep, feature, featureStep, dst, dstStep, size, filter,
                                          mask, window, 9, border, 0, buffer);
    }
};

struct Mistake {
    LumStatus status;
    void (*make)(Arguments&);
};

} // namespace

TEST(LineSuppression, RefusesInOrder) {
    const std::vector<Mistake> mistakes = {
        {lumStatusNullPointer, [](Arguments& a) { a.src = nullptr; }},
        {lumStatusNullPointer, [](Arguments& a) { a.feature = nullptr; }},
        {lumStatusNullPointer, [](Arguments& a) { a.dst = nullptr; }},
        {lumStatusNullPointer, [](Arguments& a) { a.buffer = nullptr; }},
        {lumStatusSizeError, [](Arguments& a) { a.size.width = 0; }},
        {lumStatusSizeError, [](Arguments& a) { a.size.height = -1; }},
        {lumStatusAlgorithmError, [](Arguments& a) { a.filter = 3; }},
        {lumStatusMaskSizeError, [](Arguments& a) { a.mask = 35; }},
        {lumStatusBorderError, [](Arguments& a) { a.border = lumBorderMirror; }},
        {lumStatusSizeError, [](Arguments& a) { a.window = 0; }},
        {lumStatusStepError, [](Arguments& a) { a.srcStep = -64; }},
        {lumStatusStepError, [](Arguments& a) { a.featureStep = -64; }},
        {lumStatusStepError, [](Arguments& a) { a.dstStep = -64; }},
        {lumStatusInPlaceNotSupported, [](Arguments& a) { a.feature = a.dst; }},
    };
    for (std::size_t i = 0; i < mistakes.size(); ++i)
        for (std::size_t j = i; j < mistakes.size(); ++j) {
            Arguments arguments;
            mistakes[j].make(arguments);
            if (i != j) mistakes[i].make(arguments);
            EXPECT_REFUSED(mistakes[i].status, arguments.result, arguments.call());
        }
    for (int filter : {5, 8}) {
        Arguments arguments;
        arguments.filter = filter;
        arguments.mask = lumMask5x5;
        EXPECT_REFUSED(lumStatusMaskSizeError, arguments.result, arguments.call());
    }
}

TEST(LineSuppression, AcceptsItsBordersAndNoOthers) {
    for (LumBorderType border = -300; border <= 4200; ++border) {
        Arguments arguments;
        arguments.border = border;
        const LumBorderType kind = border & 15;
        const bool accepted = border >= 0 && border <= 255 && (border == 0xF0 || kind == 1 || kind == 6);
        EXPECT_STATUS(accepted ? lumStatusOk : lumStatusBorderError, arguments.call()) << border;
    }
}

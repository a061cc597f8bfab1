#include <climits>
#include <cmath>

#include "derivative_masks.h"
#include "support/status_checks.h"

using namespace support;

namespace {

struct Response {
    LumSize size;
    int filterKind = 2;
    LumMaskSize mask = lumMask3x3;
    int window = 3;
    LumBorderType border = lumBorderReplicate;
    float k = 0.04F;
    float scale = 1;
};

std::ostream& operator<<(std::ostream& out, const Response& r) {
    return out << r.size.width << "x" << r.size.height << " filter " << r.filterKind << " mask " << r.mask
               << " window " << r.window << " border " << r.border;
}

template <class T> struct Members;
template <> struct Members<Lum8u> {
    static constexpr auto run = lumiHarrisCorner_8u32f_C1R;
    static constexpr LumDataType type = lumType8u;
};
template <> struct Members<Lum32f> {
    static constexpr auto run = lumiHarrisCorner_32f_C1R;
    static constexpr LumDataType type = lumType32f;
};

template <class T> int bufferSize(const Response& r) {
    Lum32s bytes = 0;
    EXPECT_STATUS(lumStatusOk,
                  lumiHarrisCornerGetBufferSize(r.size, r.mask, r.window, Members<T>::type, 1, &bytes));
    return bytes;
}

constexpr int borderValue = 130;

template <class T>
LumStatus call(const Response& r, const GuardedImage<T>& src, GuardedImage<float>& dst, Lum8u* buffer) {
    return Members<T>::run(src.data(), src.step(), dst.data(), dst.step(), r.size, r.filterKind, r.mask,
                           r.window, r.k, r.scale, r.border, static_cast<T>(borderValue), buffer);
}

const DerivativeMask& maskOf(const Response& r) {
    return r.filterKind == 8      ? central3
           : r.filterKind == 5    ? scharr3
           : r.mask == lumMask3x3 ? sobel3
                                  : sobel5;
}

/// The formula; gradient(x, y) may lie outside the region.
template <class Gradients> float plainResponse(const Response& r, int x, int y, Gradients gradient) {
    float a = 0, b = 0, c = 0;
    const int before = r.window >> 1;
    for (int j = 0; j < r.window; ++j) {
        float alongA = 0, alongB = 0, alongC = 0;
        for (int i = 0; i < r.window; ++i) {
            const auto [dx, dy] = gradient(x - before + i, y - before + j);
            alongA += dx * dx;
            alongB += dx * dy;
            alongC += dy * dy;
        }
        a += alongA;
        b += alongB;
        c += alongC;
    }
    const float share = 1.0F / static_cast<float>(r.window * r.window);
    a *= share;
    b *= share;
    c *= share;
    const auto factor = static_cast<float>(std::pow(r.window, 4) * static_cast<double>(r.scale));
    const float t = a + c;
    return ((a * c - b * b) - t * (r.k * t)) * factor;
}

struct Derivatives {
    float dx;
    float dy;
};

/// What must exist in memory: as far as the window and the derivative reach together.
Margins marginsOf(const Response& r) {
    Margins margins;
    const int reach = maskOf(r).reach();
    const int before = (r.window >> 1) + reach;
    const int after = (r.window >> 1) - ((r.window + 1) & 1) + reach;
    if (r.border & lumBorderInMemoryTop) margins.top = before;
    if (r.border & lumBorderInMemoryLeft) margins.left = before;
    if (r.border & lumBorderInMemoryBottom) margins.bottom = after;
    if (r.border & lumBorderInMemoryRight) margins.right = after;
    return margins;
}

template <class T> void expectResponses(const Response& r, std::mt19937& engine, Guard guard = Guard::after) {
    GuardedImage<T> src(r.size.width, r.size.height,
                        {.padding = static_cast<int>(engine() % 3 * sizeof(T)),
                         .offset = static_cast<int>(engine() % 17),
                         .guard = guard,
                         .margin = marginsOf(r)});
    const bool noise = engine() % 2 == 0;
    src.fill([&](int x, int y, int) {
        const int random = static_cast<int>(engine() % 256);
        return noise ? random : ((x + 99) / 4 + (y + 99) / 3) % 2 * 150 + random % 9;
    });
    GuardedImage<float> dst(r.size.width, r.size.height, {.padding = 8, .guard = guard});
    GuardedBlock buffer(bufferSize<T>(r), Guard::after, engine() % 65);
    ASSERT_EQ(lumStatusOk, call(r, src, dst, buffer.as()));
    for (int y = 0; y < r.size.height; ++y)
        for (int x = 0; x < r.size.width; ++x) {
            const float expected = plainResponse(r, x, y, [&](int u, int v) {
                const Gradient g = gradientAt<T>(src, u, v, maskOf(r), r.border, static_cast<T>(borderValue));
                return Derivatives{static_cast<float>(g.dx), static_cast<float>(g.dy)};
            });
            ASSERT_EQ(expected, dst.at(x, y)) << x << "," << y << " of " << r;
        }
    ASSERT_TRUE(dst.outsideUntouched());
}

const std::vector<std::pair<int, LumMaskSize>> filters = {
    {2, lumMask3x3}, {2, lumMask5x5}, {5, lumMask3x3}, {8, lumMask3x3}};

} // namespace

TEST(Harris, OneBrightPixelByHand) {
    // Sobel over a pixel of 4: dx * dx sums to 192 in the window around it, as dy * dy, and dx * dy to 0
    GuardedImage<Lum8u> src(3, 3);
    src.fill([](int x, int y, int) { return x == 1 && y == 1 ? 4 : 0; });
    const Response r{.size = {3, 3}, .k = 0.25F};
    GuardedBlock buffer(bufferSize<Lum8u>(r));
    GuardedImage<float> dst(3, 3);
    EXPECT_STATUS(lumStatusOk, call(r, src, dst, buffer.as()));
    EXPECT_NEAR(192.0 * 192 - 0.25 * 384 * 384, dst.at(1, 1), 0.01);
    const Response doubled{.size = {3, 3}, .k = 0, .scale = 2};
    EXPECT_STATUS(lumStatusOk, call(doubled, src, dst, buffer.as()));
    EXPECT_NEAR(2 * 192.0 * 192, dst.at(1, 1), 0.02);
}

TEST(Harris, EveryFilterWindowAndWidthFollowsTheFormula) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 engine(seed);
    for (int width = 1; width <= 70; ++width)
        for (const auto& [kind, mask] : filters) {
            const Response r{
                {width, 1 + width % 5}, kind, mask, 1 + static_cast<int>(engine() % 7), lumBorderReplicate};
            expectResponses<Lum8u>(r, engine);
            expectResponses<Lum32f>(r, engine, Guard::before);
        }
}

TEST(Harris, EveryBorderExtendsTheSource) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 engine(seed);
    for (LumBorderType border : everyBorder())
        for (LumSize size : {LumSize{1, 1}, LumSize{2, 3}, LumSize{5, 1}, LumSize{9, 6}, LumSize{21, 5}})
            for (int window : {1, 2, 3, 4, 5}) {
                const auto& [kind, mask] = filters[engine() % filters.size()];
                const Response r{size, kind, mask, window, border};
                const Guard guard = engine() % 2 == 0 ? Guard::after : Guard::before;
                if (engine() % 2 == 0)
                    expectResponses<Lum8u>(r, engine, guard);
                else
                    expectResponses<Lum32f>(r, engine, guard);
            }
}

TEST(Harris, WindowsWiderThanTheImageWork) {
    std::mt19937 engine(5);
    for (int window : {9, 16, 40})
        for (LumBorderType border : {lumBorderReplicate, lumBorderMirror, lumBorderConstant})
            expectResponses<Lum8u>({{7, 5}, 2, lumMask5x5, window, border}, engine);
}

TEST(Harris, AnEvenWindowReachesFurtherUpAndLeft) {
    // gradients at one place only: a pair of steps one column wide; the window of 4 that holds it lies 1 before to 2 after
    GuardedImage<Lum8u> src(15, 15);
    src.fill([](int x, int y, int) { return x == 7 && y == 7 ? 9 : 0; });
    const Response r{.size = {15, 15}, .filterKind = 8, .window = 4, .k = 0};
    GuardedBlock buffer(bufferSize<Lum8u>(r));
    GuardedImage<float> dst(15, 15);
    EXPECT_STATUS(lumStatusOk, call(r, src, dst, buffer.as()));
    // dx lies at x = 6 and 8 in row 7, dy at y = 6 and 8 in column 7; x sees columns x - 2 .. x + 1
    for (int y = 0; y < 15; ++y)
        for (int x = 0; x < 15; ++x) {
            const auto sees = [&](int u, int v) {
                return u >= x - 2 && u <= x + 1 && v >= y - 2 && v <= y + 1;
            };
            const int a = sees(6, 7) + sees(8, 7);
            const int c = sees(7, 6) + sees(7, 8);
            EXPECT_EQ(81.0F * 81.0F * a * c, dst.at(x, y)) << x << "," << y;
        }
}

TEST(Harris, FloatsAreFormedColumnsFirstInTheStatedOrder) {
    GuardedImage<float> src(41, 7, {.margin = 4});
    src.fillRandom(6);
    for (const auto& [kind, mask] : filters) {
        const int filterKind = kind;
        const bool five = mask == lumMask5x5;
        const Response r{{41, 7}, kind, mask, 3, lumBorderInMemory};
        const auto smooth = [&](auto v) -> float {
            if (filterKind == 8) return v(0);
            if (filterKind == 5) return 3.0F * (v(-1) + v(1)) + 10.0F * v(0);
            if (!five) return (v(-1) + v(1)) + 2.0F * v(0);
            return ((v(-2) + v(2)) + 4.0F * (v(-1) + v(1))) + 6.0F * v(0);
        };
        const auto difference = [&](auto v) -> float {
            return five ? (v(2) - v(-2)) + 2.0F * (v(1) - v(-1)) : v(1) - v(-1);
        };
        GuardedBlock buffer(bufferSize<float>(r));
        GuardedImage<float> dst(41, 7);
        ASSERT_EQ(lumStatusOk, call(r, src, dst, buffer.as()));
        for (int y = 0; y < 7; ++y)
            for (int x = 0; x < 41; ++x)
                ASSERT_EQ(plainResponse(r, x, y,
                                        [&](int u, int v) {
                                            const auto column = [&](auto stage, int i) {
                                                return stage([&](int j) { return src.at(u + i, v + j); });
                                            };
                                            return Derivatives{
                                                difference([&](int i) { return column(smooth, i); }),
                                                smooth([&](int i) { return column(difference, i); })};
                                        }),
                          dst.at(x, y));
    }
}

TEST(Harris, SizeQueryRefusesInOrder) {
    Lum32s bytes = 7;
    const auto query = lumiHarrisCornerGetBufferSize;
    EXPECT_STATUS(lumStatusNullPointer, query({0, 0}, 0, 0, 0, 0, nullptr));
    EXPECT_STATUS(lumStatusSizeError, query({0, 1}, 0, 0, 0, 0, &bytes));
    EXPECT_STATUS(lumStatusSizeError, query({1, -1}, 0, 0, 0, 0, &bytes));
    EXPECT_STATUS(lumStatusMaskSizeError, query({1, 1}, 35, 0, 0, 0, &bytes));
    EXPECT_STATUS(lumStatusDataTypeError, query({1, 1}, lumMask3x3, 0, lumType16u, 0, &bytes));
    EXPECT_STATUS(lumStatusCountError, query({1, 1}, lumMask5x5, 0, lumType8u, 3, &bytes));
    EXPECT_STATUS(lumStatusSizeError, query({1, 1}, lumMask3x3, 0, lumType32f, 1, &bytes));
    EXPECT_EQ(7, bytes);
    EXPECT_STATUS(lumStatusOk, query({INT_MAX, 5}, lumMask3x3, INT_MAX, lumType8u, 1, &bytes));
    EXPECT_EQ(INT_MAX, bytes);
}

namespace {

template <class T> struct Arguments {
    GuardedImage<T> image{6, 4, {.margin = 4}};
    GuardedImage<float> result{6, 4};
    std::vector<Lum8u> memory = std::vector<Lum8u>(8192);
    const T* src = image.data();
    int srcStep = image.step();
    float* dst = result.data();
    int dstStep = result.step();
    LumSize size{6, 4};
    int kind = 2;
    LumMaskSize mask = lumMask3x3;
    int window = 3;
    LumBorderType border = lumBorderReplicate;
    Lum8u* buffer = memory.data();

    LumStatus call() const {
        return Members<T>::run(src, srcStep, dst, dstStep, size, kind, mask, window, 0.04F, 1, border, T{0},
                               buffer);
    }
};

template <class T> struct Mistake {
    LumStatus status;
    void (*make)(Arguments<T>&);
};

template <class T> void expectRefusalsInOrder() {
    using A = Arguments<T>;
    std::vector<Mistake<T>> mistakes = {
        {lumStatusNullPointer, [](A& a) { a.src = nullptr; }},
        {lumStatusNullPointer, [](A& a) { a.dst = nullptr; }},
        {lumStatusNullPointer, [](A& a) { a.buffer = nullptr; }},
        {lumStatusSizeError, [](A& a) { a.size.width = 0; }},
        {lumStatusSizeError, [](A& a) { a.size.height = -1; }},
        {lumStatusAlgorithmError, [](A& a) { a.kind = 3; }},
        {lumStatusMaskSizeError, [](A& a) { a.mask = 35; }},
        {lumStatusBorderError, [](A& a) { a.border = lumBorderDefaultValue; }},
        {lumStatusSizeError, [](A& a) { a.window = 0; }},
        {lumStatusStepError, [](A& a) { a.srcStep = -64; }},
        {lumStatusStepError, [](A& a) { a.dstStep = -64; }},
        {lumStatusInPlaceNotSupported, [](A& a) { a.src = reinterpret_cast<const T*>(a.dst); }},
    };
    if constexpr (std::is_same_v<T, Lum32f>)
        mistakes.insert(mistakes.begin() + 5, {{lumStatusStepAlignmentError, [](A& a) { a.srcStep = 66; }},
                                               {lumStatusStepAlignmentError, [](A& a) { a.dstStep = -65; }}});
    for (std::size_t i = 0; i < mistakes.size(); ++i)
        for (std::size_t j = i; j < mistakes.size(); ++j) {
            A arguments;
            mistakes[j].make(arguments);
            if (i != j) mistakes[i].make(arguments);
            EXPECT_REFUSED(mistakes[i].status, arguments.result, arguments.call());
        }
    for (int kind : {5, 8}) {
        A arguments;
        arguments.kind = kind;
        arguments.mask = lumMask5x5;
        EXPECT_REFUSED(lumStatusMaskSizeError, arguments.result, arguments.call());
        arguments.mask = lumMask3x3;
        EXPECT_STATUS(lumStatusOk, arguments.call());
    }
    A five;
    five.mask = lumMask5x5;
    EXPECT_STATUS(lumStatusOk, five.call());
}

} // namespace

TEST(Harris, RefusesInOrder8u) { expectRefusalsInOrder<Lum8u>(); }
TEST(Harris, RefusesInOrder32f) { expectRefusalsInOrder<Lum32f>(); }

TEST(Harris, StepsBelowTheRowAreTakenAsTheyAre) {
    // every row of the source is the same
    Arguments<Lum8u> arguments;
    arguments.srcStep = 0;
    arguments.size.height = 2;
    EXPECT_STATUS(lumStatusOk, arguments.call());
}

TEST(Harris, AcceptsItsBordersAndNoOthers) {
    for (LumBorderType border = -300; border <= 4200; ++border) {
        Arguments<Lum8u> arguments;
        arguments.border = border;
        const LumBorderType kind = border & 15;
        const bool accepted =
            border >= 0 && border <= 255 && (border == 0xF0 || kind == 1 || kind == 3 || kind == 6);
        EXPECT_STATUS(accepted ? lumStatusOk : lumStatusBorderError, arguments.call()) << border;
    }
}

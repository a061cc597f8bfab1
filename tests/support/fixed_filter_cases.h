// What all filters with built-in kernels are held to: their masks on every border, their checks, their work
// memory.
#pragma once

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>
#include <memory>
#include <type_traits>
#include <vector>

#include "support/border_walk.h"
#include "support/guarded_image.h"
#include "support/status_checks.h"

namespace support {

/// A filter and its query. The mask of a size is rows of weights; result(sum) is what a sum of the mask
/// becomes.
template <class Source, class Result> struct FixedFilter {
    using T = Source;
    using D = Result;
    LumStatus (*run)(const T*, int, D*, int, LumSize, LumMaskSize, LumBorderType, T, Lum8u*);
    LumStatus (*query)(LumSize, LumMaskSize, Lum32s*);
    std::vector<std::vector<int>> (*mask)(int taps);
    D (*result)(double sum, int taps);
};

inline std::vector<std::vector<int>> outerProduct(const std::vector<int>& column,
                                                  const std::vector<int>& row) {
    std::vector<std::vector<int>> mask;
    for (int y : column) {
        mask.emplace_back();
        for (int x : row) mask.back().push_back(y * x);
    }
    return mask;
}

constexpr LumMaskSize maskSizes[] = {lumMask3x3, lumMask5x5};
constexpr int tapsOfMask(LumMaskSize maskSize) { return maskSize / 10; }

template <class F> int queriedBuffer(const F& filter, LumSize size, LumMaskSize maskSize) {
    Lum32s bytes = 0;
    EXPECT_STATUS(lumStatusOk, filter.query(size, maskSize, &bytes));
    return bytes;
}

/// The results of three taps over 3 x 3 pixels with zeros around them.
template <class F>
std::vector<typename F::D> amongZeros(const F& filter, const std::vector<typename F::T>& pixels) {
    const LumSize size{3, 3};
    std::vector<typename F::D> results(9);
    std::vector<Lum8u> buffer(queriedBuffer(filter, size, lumMask3x3));
    EXPECT_STATUS(lumStatusOk, filter.run(pixels.data(), 3 * sizeof(typename F::T), results.data(),
                                          3 * sizeof(typename F::D), size, lumMask3x3, lumBorderConstant, 0,
                                          buffer.data()));
    return results;
}

/// The sum of the mask over one pixel. A row that is constant is so all along.
template <class F>
double maskSum(const F& filter, int taps, const GuardedImage<typename F::T>& src, int x, int y,
               LumBorderType border, typename F::T value) {
    const auto mask = filter.mask(taps);
    const auto [width, height] = src.size();
    double sum = 0;
    for (int j = 0; j < taps; ++j)
        for (int i = 0; i < taps; ++i) {
            const int row = borderWalk(y - taps / 2 + j, height, border & 15, border & lumBorderInMemoryTop,
                                       border & lumBorderInMemoryBottom);
            const int column = borderWalk(x - taps / 2 + i, width, border & 15,
                                          border & lumBorderInMemoryLeft, border & lumBorderInMemoryRight);
            sum += mask[j][i] *
                   static_cast<double>(row == INT_MAX || column == INT_MAX ? value : src.at(column, row));
        }
    return sum;
}

/// All results of a call over whole numbers, on which floats too are exact, every byte.
template <class F>
void expectMask(const F& filter, LumSize size, LumMaskSize maskSize, LumBorderType border,
                Placement placement = {}, int bufferShift = 0) {
    using T = typename F::T;
    placement.margin = marginsInMemory(border, tapsOfMask(maskSize) / 2);
    GuardedImage<T> src(size.width, size.height, placement);
    placement.margin = 0;
    GuardedImage<typename F::D> dst(size.width, size.height, placement);
    std::mt19937 engine(size.width + 100 * size.height + border);
    src.fill([&](int, int, int) { return engine() % 256; });
    dst.fill([](int, int, int) { return 99; });
    const T value = 200;
    GuardedBlock buffer(queriedBuffer(filter, size, maskSize), Guard::after, bufferShift);
    ASSERT_EQ(lumStatusOk, filter.run(src.data(), src.step(), dst.data(), dst.step(), size, maskSize, border,
                                      value, buffer.as()));
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) {
            const int taps = tapsOfMask(maskSize);
            ASSERT_EQ(filter.result(maskSum(filter, taps, src, x, y, border, value), taps), dst.at(x, y))
                << x << "," << y << " of " << size.width << "x" << size.height << " mask " << maskSize
                << " border " << border;
        }
    ASSERT_TRUE(dst.outsideUntouched());
}

template <class F> void expectMaskOnEveryWidthAndBothGuards(const F& filter) {
    for (LumMaskSize maskSize : maskSizes)
        for (int width = 1; width <= 70; ++width)
            for (Guard guard : {Guard::after, Guard::before})
                expectMask(filter, {width, 4}, maskSize, lumBorderReplicate,
                           {.padding = 4 * (width % 3), .guard = guard});
}

template <class F> void expectMaskOnEveryBorder(const F& filter) {
    for (LumMaskSize maskSize : maskSizes)
        for (LumBorderType border : everyBorder())
            for (LumSize size : {LumSize{1, 1}, LumSize{1, 7}, LumSize{2, 2}, LumSize{3, 1}, LumSize{4, 3},
                                 LumSize{21, 11}, LumSize{100, 6}})
                for (Guard guard : {Guard::after, Guard::before})
                    expectMask(filter, size, maskSize, border, {.guard = guard});
}

template <class F> void expectExactBuffersSufficeAtEveryAlignment(const F& filter) {
    for (LumMaskSize maskSize : maskSizes)
        for (int shift = 0; shift < 64; ++shift)
            expectMask(filter, {1 + shift % 33, 3}, maskSize, lumBorderMirror,
                       {.offset = shift, .guard = Guard::before}, shift);
}

/// A flat image of each whole number of a byte; a few of them with every border, the constant one of the same
/// value.
template <class F> void expectOfFlatImages(const F& filter, double (*expected)(double value)) {
    using T = typename F::T;
    const LumSize size{23, 6};
    for (LumMaskSize maskSize : maskSizes) {
        GuardedBlock buffer(queriedBuffer(filter, size, maskSize));
        for (int v = 0; v < 256; ++v) {
            GuardedImage<T> src(size.width, size.height, {.margin = 2});
            GuardedImage<typename F::D> dst(size.width, size.height);
            src.fill([&](int, int, int) { return v; });
            const auto borders = v % 51 == 0 ? everyBorder() : std::vector<LumBorderType>{lumBorderReplicate};
            for (LumBorderType border : borders) {
                ASSERT_EQ(lumStatusOk, filter.run(src.data(), src.step(), dst.data(), dst.step(), size,
                                                  maskSize, border, static_cast<T>(v), buffer.as()));
                for (auto pixel : dst.pixels())
                    ASSERT_EQ(expected(v), pixel) << "mask " << maskSize << " border " << border;
            }
        }
    }
}

/// Floats that are no whole numbers: within the rounding of a few operations of the exact sum.
template <class F> void expectCloseOnFloats(const F& filter, double scale3, double scale5) {
    const LumSize size{67, 19};
    GuardedImage<float> src(size.width, size.height, {.margin = 2});
    GuardedImage<float> dst(size.width, size.height);
    src.fillRandom(20240131);
    for (LumMaskSize maskSize : maskSizes)
        for (LumBorderType border : everyBorder()) {
            GuardedBlock buffer(queriedBuffer(filter, size, maskSize));
            ASSERT_EQ(lumStatusOk, filter.run(src.data(), src.step(), dst.data(), dst.step(), size, maskSize,
                                              border, 12.3F, buffer.as()));
            const int taps = tapsOfMask(maskSize);
            const double scale = taps == 3 ? scale3 : scale5;
            for (int y = 0; y < size.height; ++y)
                for (int x = 0; x < size.width; ++x)
                    ASSERT_NEAR(scale * maskSum(filter, taps, src, x, y, border, 12.3F), dst.at(x, y),
                                scale * 1000 * 128 * 1e-6);
        }
}

/// Floats that are no whole numbers, every bit: expression(taps, pixel) is a result in single precision, in the order
/// of its operations, and pixel(i, k) the pixel under tap i of row k.
template <class F, class Expression> void expectOrderOnFloats(const F& filter, Expression expression) {
    const LumSize size{37, 9};
    GuardedImage<float> src(size.width, size.height, {.margin = 2});
    GuardedImage<float> dst(size.width, size.height);
    src.fillRandom(20240131);
    for (LumMaskSize maskSize : maskSizes) {
        const int taps = tapsOfMask(maskSize);
        GuardedBlock buffer(queriedBuffer(filter, size, maskSize));
        ASSERT_EQ(lumStatusOk, filter.run(src.data(), src.step(), dst.data(), dst.step(), size, maskSize,
                                          lumBorderInMemory, 0, buffer.as()));
        std::vector<float> expected;
        for (int y = 0; y < size.height; ++y)
            for (int x = 0; x < size.width; ++x)
                expected.push_back(expression(
                    taps, [&](int i, int k) { return src.at(x - taps / 2 + i, y - taps / 2 + k); }));
        EXPECT_TRUE(sameBits(expected, dst.pixels())) << "mask " << maskSize;
    }
}

template <class F> void expectChecksInOrder(const F& filter) {
    using T = typename F::T;
    using D = typename F::D;
    GuardedImage<T> src(4, 2);
    GuardedImage<D> dst(4, 2);
    GuardedBlock block(queriedBuffer(filter, src.size(), lumMask5x5));
    Lum8u* buffer = block.as();
    for (LumSize size : {LumSize{4, 2}, LumSize{0, 0}}) {
        EXPECT_REFUSED(lumStatusNullPointer, dst,
                       filter.run(nullptr, 0, dst.data(), 0, size, 0, 0, T{}, buffer));
        EXPECT_REFUSED(lumStatusNullPointer, dst,
                       filter.run(src.data(), 0, nullptr, 0, size, 0, 0, T{}, buffer));
        EXPECT_REFUSED(lumStatusNullPointer, dst,
                       filter.run(src.data(), 0, dst.data(), 0, size, 0, 0, T{}, nullptr));
    }
    const auto run = [&](LumSize size, int srcStep, int dstStep, int border, int maskSize) {
        return filter.run(src.data(), srcStep, dst.data(), dstStep, size, maskSize, border, T{}, buffer);
    };
    for (LumSize size : {LumSize{0, 2}, LumSize{4, 0}, LumSize{-1, 2}, LumSize{4, INT_MIN}})
        EXPECT_REFUSED(lumStatusSizeError, dst, run(size, 0, 0, 0, 0));
    EXPECT_REFUSED(lumStatusStepError, dst, run({4, 2}, src.step() - 1, dst.step(), 0, 0));
    EXPECT_REFUSED(lumStatusStepError, dst, run({4, 2}, src.step(), dst.step() - 1, 0, 0));
    EXPECT_REFUSED(lumStatusStepError, dst, run({4, 2}, src.step() + 1, dst.step() - 1, 0, 0));
    EXPECT_REFUSED(lumStatusStepError, dst, run({4, 2}, -src.step(), dst.step(), 0, 0));
    if constexpr (sizeof(D) > 1)
        EXPECT_REFUSED(lumStatusStepError, dst, run({INT_MAX, 2}, INT_MAX, INT_MAX, 0, 0));
    if constexpr (sizeof(T) > 1)
        EXPECT_REFUSED(lumStatusStepAlignmentError, dst, run({4, 2}, src.step() + 1, dst.step(), 0, 0));
    if constexpr (sizeof(D) > 1)
        EXPECT_REFUSED(lumStatusStepAlignmentError, dst, run({4, 2}, src.step(), dst.step() + 1, 0, 0));
    for (int border : {0, 2, 4, 5, 7, 0x10, 0xE0, 0xF5, 0x100, 0x101, 0x1F0, -1, INT_MIN, INT_MAX})
        EXPECT_REFUSED(lumStatusBorderError, dst, run({4, 2}, src.step(), dst.step(), border, 0));
    for (int maskSize : {0, 3, 5, 34, 35, 53, 77, -33, INT_MAX})
        EXPECT_REFUSED(lumStatusMaskSizeError, dst,
                       run({4, 2}, src.step(), dst.step(), lumBorderMirror, maskSize));
}

/// The query against its formula: bytes per row of a tile of 16 columns, bytes per tap and constant bytes, and those
/// of the two pipelines: per tap and constant for the rows, per group of four columns and constant for the columns.
struct SizeFormula {
    int perTileRow;
    int perTap;
    int constantBytes;
    int rowPerTap;
    int rowConstant;
    int columnPerColumn;
    int columnConstant;
};

template <class F> void expectSizes(const F& filter, SizeFormula formula) {
    for (LumMaskSize maskSize : maskSizes)
        for (int width : {1, 4, 5, 15, 16, 17, 639, 640, 1920, 40001}) {
            const int taps = tapsOfMask(maskSize);
            const int bytes = formula.perTileRow * ((width + 15) / 16) * (taps == 3 ? 21 : 25) +
                              formula.perTap * taps + formula.constantBytes + formula.rowPerTap * taps +
                              formula.rowConstant + formula.columnPerColumn * ((width + 3) / 4 * 4) +
                              formula.columnConstant;
            EXPECT_EQ(bytes, queriedBuffer(filter, {width, 1}, maskSize)) << "width " << width;
            EXPECT_EQ(bytes, queriedBuffer(filter, {width, 5000}, maskSize));
        }
    Lum32s bytes = -7;
    EXPECT_STATUS(lumStatusNullPointer, filter.query({0, 0}, 0, nullptr));
    for (LumSize size : {LumSize{0, 1}, LumSize{1, 0}, LumSize{INT_MIN, 1}, LumSize{1, -1}})
        EXPECT_STATUS(lumStatusSizeError, filter.query(size, 0, &bytes));
    for (int maskSize : {0, 3, 35, 53, -55, 77})
        EXPECT_STATUS(lumStatusMaskSizeError, filter.query({1, 1}, maskSize, &bytes));
    EXPECT_EQ(-7, bytes);
}

/// A kernel that makes a row of results from `taps` rows, extended ones if they are bytes, against its scalar
/// twin. All rows end at unreadable pages.
template <class T, class D, class Kernel>
void expectRowsAgree(int width, int taps, Kernel scalarKernel, Kernel vectorKernel) {
    const int length = std::is_same_v<T, Lum8u> ? width + taps - 1 : width;
    std::vector<std::unique_ptr<GuardedImage<T>>> rows;
    std::vector<const T*> pointers;
    for (int k = 0; k < taps; ++k) {
        rows.push_back(std::make_unique<GuardedImage<T>>(length, 1));
        pointers.push_back(rows.back()->fillRandom(width + k).data());
    }
    GuardedImage<D> scalar(width, 1);
    GuardedImage<D> vector(width, 1);
    scalarKernel(pointers.data(), scalar.data(), width);
    vectorKernel(pointers.data(), vector.data(), width);
    EXPECT_TRUE(sameBits(scalar.pixels(), vector.pixels())) << width;
}

/// A kernel along one row, which it may overwrite, against its scalar twin.
template <class Kernel>
void expectInPlaceAgrees(int width, int taps, Kernel scalarKernel, Kernel vectorKernel) {
    GuardedImage<float> row(width + taps - 1, 1);
    GuardedImage<float> scalar(width, 1);
    row.fillRandom(width);
    scalarKernel(row.data(), scalar.data(), width);
    vectorKernel(row.data(), row.data(), width);
    EXPECT_EQ(0, std::memcmp(scalar.data(), row.data(), width * sizeof(float))) << width;
}

} // namespace support

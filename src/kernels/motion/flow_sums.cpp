#include "kernels/motion/flow_sums.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "frame/lanes.h"
#include "frame/lanes_aligned.h"
#include "frame/lanes_convert.h"

namespace lum::kernels {
namespace {

double totalOf(const double* sums) {
    return ((sums[0] + sums[4]) + (sums[2] + sums[6])) + ((sums[1] + sums[5]) + (sums[3] + sums[7]));
}

class ScalarSum {
  public:
    void add(std::ptrdiff_t x, double value) { sums_[x % flowColumns] = sums_[x % flowColumns] + value; }
    double total() const { return totalOf(sums_); }

  private:
    double sums_[flowColumns] = {};
};

using Doubles = Block<double, flowColumns>;

LUM_LANE double totalOf(Doubles sums) {
    double each[flowColumns];
    store(sums, each);
    return totalOf(each);
}

/// Columns summed at a time. Where the registers do not hold the sums of all of them, each half takes the window by itself;
/// that changes no sum.
constexpr int columnsOfPass = isOneVector<double, 4> ? 8 : 4;

/// What the windows differ by at an element.
double differenceAt(const FlowWindows& windows, std::ptrdiff_t i, const FloatQuad& weights) {
    const Lum32f* above = windows.moved + i;
    return windows.values[i] - static_cast<double>(blended<Lum32f>(above, above + windows.pitch, weights));
}

template <int N> struct WeightBlocks {
    Block<float, N> w00, w01, w10, w11;

    explicit WeightBlocks(const FloatQuad& w)
        : w00(broadcast<N>(w.w00)),
          w01(broadcast<N>(w.w01)),
          w10(broadcast<N>(w.w10)),
          w11(broadcast<N>(w.w11)) {}
};

template <int N>
LUM_LANE Block<double, N> differencesAt(const Lum64f* values, const Lum32f* above, const Lum32f* below,
                                        const WeightBlocks<N>& w) {
    const auto moved = ((w.w00 * loadFromMultipleOf16<N>(above) + w.w01 * load<N>(above + 1)) +
                        w.w10 * loadFromMultipleOf16<N>(below)) +
                       w.w11 * load<N>(below + 1);
    return loadFromMultipleOf16<N>(values) - toDouble(moved);
}

/// The mismatch of N columns of each flowColumns.
template <int N>
void addMismatch(const FlowWindows& windows, const FloatQuad& weights, int first, double* sumsX,
                 double* sumsY) {
    const WeightBlocks<N> w(weights);
    auto sumX = zeros<double, N>();
    auto sumY = sumX;
    const std::ptrdiff_t count = std::ptrdiff_t{windows.pitch} * windows.height;
    const Lum32f* below = windows.moved + windows.pitch;
    // All rows in one go: what is added between them is a product of 0.
    for (std::ptrdiff_t i = first; i < count; i += flowColumns) {
        const auto difference = differencesAt<N>(windows.values + i, windows.moved + i, below + i, w);
        sumX = sumX + loadFromMultipleOf16<N>(windows.dx + i) * difference;
        sumY = sumY + loadFromMultipleOf16<N>(windows.dy + i) * difference;
    }
    store(sumX, sumsX + first);
    store(sumY, sumsY + first);
}

/// The gradient of N columns of each flowColumns.
template <int N>
void addGradient(const FlowWindows& windows, int first, double* sumsXX, double* sumsXY, double* sumsYY) {
    auto xx = zeros<double, N>();
    auto xy = xx;
    auto yy = xx;
    const std::ptrdiff_t count = std::ptrdiff_t{windows.pitch} * windows.height;
    for (std::ptrdiff_t i = first; i < count; i += flowColumns) {
        const auto dx = loadFromMultipleOf16<N>(windows.dx + i);
        const auto dy = loadFromMultipleOf16<N>(windows.dy + i);
        xx = xx + dx * dx;
        xy = xy + dx * dy;
        yy = yy + dy * dy;
    }
    store(xx, sumsXX + first);
    store(xy, sumsXY + first);
    store(yy, sumsYY + first);
}

} // namespace

GradientSums gradientSumsScalar(const FlowWindows& windows) {
    ScalarSum xx, xy, yy;
    const std::ptrdiff_t count = std::ptrdiff_t{windows.pitch} * windows.height;
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        const double dx = windows.dx[i];
        const double dy = windows.dy[i];
        xx.add(i, dx * dx);
        xy.add(i, dx * dy);
        yy.add(i, dy * dy);
    }
    return {xx.total(), xy.total(), yy.total()};
}

GradientSums gradientSums(const FlowWindows& windows) {
    double xx[flowColumns];
    double xy[flowColumns];
    double yy[flowColumns];
    for (int first = 0; first < flowColumns; first += columnsOfPass)
        addGradient<columnsOfPass>(windows, first, xx, xy, yy);
    return {totalOf(xx), totalOf(xy), totalOf(yy)};
}

MismatchSums mismatchSumsScalar(const FlowWindows& windows, const FloatQuad& weights) {
    ScalarSum sumX, sumY;
    const std::ptrdiff_t count = std::ptrdiff_t{windows.pitch} * windows.height;
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        const double difference = differenceAt(windows, i, weights);
        sumX.add(i, windows.dx[i] * difference);
        sumY.add(i, windows.dy[i] * difference);
    }
    return {sumX.total(), sumY.total()};
}

MismatchSums mismatchSums(const FlowWindows& windows, const FloatQuad& weights) {
    double sumsX[flowColumns];
    double sumsY[flowColumns];
    for (int first = 0; first < flowColumns; first += columnsOfPass)
        addMismatch<columnsOfPass>(windows, weights, first, sumsX, sumsY);
    return {totalOf(sumsX), totalOf(sumsY)};
}

double squaredErrorScalar(const FlowWindows& windows, const FloatQuad& weights) {
    ScalarSum sum;
    for (int y = 0; y < windows.height - 1; ++y)
        for (int x = 0; x < windows.width - 1; ++x) {
            const double difference = differenceAt(windows, std::ptrdiff_t{windows.pitch} * y + x, weights);
            sum.add(x, difference * difference);
        }
    return sum.total();
}

double squaredError(const FlowWindows& windows, const FloatQuad& weights) {
    const WeightBlocks<flowColumns> w(weights);
    const int whole = (windows.width - 1) / flowColumns * flowColumns;
    std::int64_t flags[flowColumns] = {};
    for (int x = whole; x < windows.width - 1; ++x) flags[x - whole] = -1;
    const Doubles counted = bitsAs<double>(load<flowColumns>(flags));
    Doubles sum = zeros<double, flowColumns>();
    for (int y = 0; y < windows.height - 1; ++y) {
        const Lum64f* values = windows.values + std::ptrdiff_t{windows.pitch} * y;
        const Lum32f* above = windows.moved + std::ptrdiff_t{windows.pitch} * y;
        const Lum32f* below = above + windows.pitch;
        for (int x = 0; x < whole; x += flowColumns) {
            const Doubles difference = differencesAt<flowColumns>(values + x, above + x, below + x, w);
            sum = sum + difference * difference;
        }
        // the last block, of which the columns before the window's last one count
        const Doubles difference =
            differencesAt<flowColumns>(values + whole, above + whole, below + whole, w);
        sum = sum + (difference * difference & counted);
    }
    return totalOf(sum);
}

template <class T> void copyAsFloatsScalar(Image<const T> src, LumSize size, Lum32f* dst, int pitch) {
    for (int y = 0; y < size.height; ++y, dst += pitch) {
        const T* row = src.row(y);
        for (int x = 0; x < size.width; ++x) dst[x] = static_cast<float>(row[x]);
        std::fill(dst + size.width, dst + pitch, 0.0F);
    }
    std::fill(dst, dst + flowColumns, 0.0F);
}

template <class T> void copyAsFloats(Image<const T> src, LumSize size, Lum32f* dst, int pitch) {
    constexpr int N = 8;
    if (size.width < N || pitch - size.width > N) return copyAsFloatsScalar(src, size, dst, pitch);
    const auto copyBlock = [](const T* from, Lum32f* to) {
        if constexpr (std::is_same_v<T, Lum32f>)
            store(load<N>(from), to);
        else
            store(toFloat(load<N>(from)), to);
    };
    for (int y = 0; y < size.height; ++y, dst += pitch) {
        const T* row = src.row(y);
        // more zeros than there will be in the end
        store(zeros<float, N>(), dst + pitch - N);
        int x = 0;
        for (; x <= size.width - N; x += N) copyBlock(row + x, dst + x);
        // tail: overlapping last vector
        if (x < size.width) copyBlock(row + size.width - N, dst + size.width - N);
    }
    std::fill(dst, dst + flowColumns, 0.0F);
}

template void copyAsFloatsScalar(Image<const Lum8u>, LumSize, Lum32f*, int);
template void copyAsFloatsScalar(Image<const Lum16u>, LumSize, Lum32f*, int);
template void copyAsFloatsScalar(Image<const Lum32f>, LumSize, Lum32f*, int);
template void copyAsFloats(Image<const Lum8u>, LumSize, Lum32f*, int);
template void copyAsFloats(Image<const Lum16u>, LumSize, Lum32f*, int);
template void copyAsFloats(Image<const Lum32f>, LumSize, Lum32f*, int);

} // namespace lum::kernels

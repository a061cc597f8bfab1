#include "kernels/motion/flow_sums.h"

#include <cstdint>

#include "frame/lanes.h"
#include "frame/lanes_convert.h"

namespace lum::kernels {
namespace {

/// A sum a column of eight.
class ScalarSum {
  public:
    void add(std::ptrdiff_t x, double value) { sums_[x % flowColumns] = sums_[x % flowColumns] + value; }
    double total() const {
        return ((sums_[0] + sums_[4]) + (sums_[2] + sums_[6])) +
               ((sums_[1] + sums_[5]) + (sums_[3] + sums_[7]));
    }

  private:
    double sums_[flowColumns] = {};
};

using Doubles = Block<double, flowColumns>;

LUM_LANE double totalOf(Doubles sums) {
    double each[flowColumns];
    store(sums, each);
    return ((each[0] + each[4]) + (each[2] + each[6])) + ((each[1] + each[5]) + (each[3] + each[7]));
}

LUM_LANE Doubles differences(const FlowWindows& windows, std::ptrdiff_t i) {
    return load<flowColumns>(windows.values + i) - toDouble(load<flowColumns>(windows.moved + i));
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
    Doubles xx = zeros<double, flowColumns>();
    Doubles xy = xx;
    Doubles yy = xx;
    const std::ptrdiff_t count = std::ptrdiff_t{windows.pitch} * windows.height;
    for (std::ptrdiff_t i = 0; i < count; i += flowColumns) {
        const Doubles dx = load<flowColumns>(windows.dx + i);
        const Doubles dy = load<flowColumns>(windows.dy + i);
        xx = xx + dx * dx;
        xy = xy + dx * dy;
        yy = yy + dy * dy;
    }
    return {totalOf(xx), totalOf(xy), totalOf(yy)};
}

MismatchSums mismatchSumsScalar(const FlowWindows& windows) {
    ScalarSum sumX, sumY;
    const std::ptrdiff_t count = std::ptrdiff_t{windows.pitch} * windows.height;
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        const double difference = windows.values[i] - static_cast<double>(windows.moved[i]);
        sumX.add(i, windows.dx[i] * difference);
        sumY.add(i, windows.dy[i] * difference);
    }
    return {sumX.total(), sumY.total()};
}

MismatchSums mismatchSums(const FlowWindows& windows) {
    Doubles sumX = zeros<double, flowColumns>();
    Doubles sumY = sumX;
    const std::ptrdiff_t count = std::ptrdiff_t{windows.pitch} * windows.height;
    for (std::ptrdiff_t i = 0; i < count; i += flowColumns) {
        const Doubles difference = differences(windows, i);
        sumX = sumX + load<flowColumns>(windows.dx + i) * difference;
        sumY = sumY + load<flowColumns>(windows.dy + i) * difference;
    }
    return {totalOf(sumX), totalOf(sumY)};
}

double squaredErrorScalar(const FlowWindows& windows) {
    ScalarSum sum;
    for (int y = 0; y < windows.height - 1; ++y)
        for (int x = 0; x < windows.width - 1; ++x) {
            const std::ptrdiff_t i = std::ptrdiff_t{windows.pitch} * y + x;
            const double difference = windows.values[i] - static_cast<double>(windows.moved[i]);
            sum.add(x, difference * difference);
        }
    return sum.total();
}

double squaredError(const FlowWindows& windows) {
    const int whole = (windows.width - 1) / flowColumns * flowColumns;
    std::int64_t flags[flowColumns] = {};
    for (int x = whole; x < windows.width - 1; ++x) flags[x - whole] = -1;
    const Doubles counted = bitsAs<double>(load<flowColumns>(flags));
    Doubles sum = zeros<double, flowColumns>();
    for (int y = 0; y < windows.height - 1; ++y) {
        const std::ptrdiff_t row = std::ptrdiff_t{windows.pitch} * y;
        for (int x = 0; x < whole; x += flowColumns) {
            const Doubles difference = differences(windows, row + x);
            sum = sum + difference * difference;
        }
        // the last block, of which the columns before the last one count
        const Doubles difference = differences(windows, row + whole);
        sum = sum + (difference * difference & counted);
    }
    return totalOf(sum);
}

} // namespace lum::kernels

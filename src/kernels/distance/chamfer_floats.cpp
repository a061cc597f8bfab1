// Every step of a chain of floats rounds, so the chain along a row has one order, and each pixel waits for the one
// before it. Four rows of a band are therefore handled side by side, each late enough that what it reads in the row
// before it is finished: four chains that do not wait for each other.
#include "kernels/distance/chamfer_floats.h"

#include "kernels/distance/chamfer_rows.h"
#include "kernels/distance/chamfer_steps.h"

namespace lum::kernels {
namespace {

constexpr int bandRows = 4;
constexpr int blockPixels = 16;
/// A row follows the one before it at the distance of a block and of the steps that reach ahead.
constexpr int lag = blockPixels + chamferReach;

/// One pass. A direction of 1 is the first pass, which reads the picture, -1 the second. Rows and columns are counted
/// from where the pass begins.
template <ChamferSteps steps, int direction> class Pass {
  public:
    Pass(Image<const Lum8u> src, Image<float> dst, LumSize size, const ChamferMetric<float>& metric)
        : src_(src), dst_(dst), size_(size), metric_(metric), lengths_(metric), list_(metric) {}

    void run() {
        const bool lastRowIsSpecial = metric_.doubleStepsInLastRow;
        const int begin = lastRowIsSpecial && !first ? 1 : 0;
        const int end = lastRowIsSpecial && first ? size_.height - 1 : size_.height;
        if (begin > 0) lastRow();
        int row = begin;
        for (; row <= end - bandRows; row += bandRows) band<bandRows>(row);
        for (; row < end; ++row) band<1>(row);
        if (end < size_.height) lastRow();
    }

  private:
    static constexpr bool first = direction == 1;

    int yOf(int row) const { return first ? row : size_.height - 1 - row; }
    int xOf(int column) const { return first ? column : size_.width - 1 - column; }

    template <int rows> void band(int firstRow) {
        float* blocks[rows];
        for (int lead = 0; lead < size_.width + (rows - 1) * lag; lead += blockPixels) {
            int whole = 0;
            for (int r = 0; r < rows; ++r) {
                const int column = lead - r * lag;
                if (column < chamferReach || column > size_.width - chamferReach - blockPixels)
                    pixels(firstRow + r, std::max(column, 0), std::min(column + blockPixels, size_.width),
                           list_);
                else
                    blocks[whole++] = overRows(firstRow + r, column);
            }
            if (whole == rows)
                alongRows<rows>(blocks);
            else
                for (int r = 0; r < whole; ++r) alongRows<1>(blocks + r);
        }
    }

    /// Pixels at the ends of a row, each on its own: what blocks need before them, and the tail, scalar.
    void pixels(int row, int begin, int end, const StepList<float>& list) {
        const int y = yOf(row);
        for (int column = begin; column < end; ++column) {
            const int x = xOf(column);
            float& distance = dst_.row(y)[x];
            if constexpr (first) distance = src_.row(y)[x] == 0 ? 0 : farthest<float>;
            distance = shortestChain(dst_, size_, x, y, direction, list, distance);
        }
    }

    /// A block with its chains over the rows before; where its first pixel lies.
    float* overRows(int row, int column) {
        const int y = yOf(row);
        const int left = first ? column : xOf(column) - blockPixels + 1;
        float* place = dst_.row(y) + left;
        const auto start = [&] {
            if constexpr (first)
                return startingDistances<float, blockPixels>(src_.row(y) + left);
            else
                return load<blockPixels>(place);
        }();
        store(overRowsBefore<steps>(start, rowsBefore(dst_, size_.height, y, direction), left, lengths_),
              place);
        return dst_.row(y) + xOf(column);
    }

    /// The chains along several rows at once, a pixel of each at a time.
    template <int rows> void alongRows(float* const* blocks) {
        float one[rows];
        float two[rows];
#pragma GCC unroll 4
        for (int r = 0; r < rows; ++r) {
            one[r] = blocks[r][-direction];
            two[r] = blocks[r][-2 * direction];
        }
        for (int i = 0; i < blockPixels; ++i) {
#pragma GCC unroll 4
            for (int r = 0; r < rows; ++r) {
                float& distance = blocks[r][i * direction];
                float shortest = distance;
                if constexpr (steps == ChamferSteps::window) {
                    shortest = std::min(shortest, two[r] + metric_.doubleAxial);
                    two[r] = one[r];
                }
                one[r] = std::min(shortest, one[r] + metric_.axial);
                distance = one[r];
            }
        }
    }

    /// The row in which steps of two pixels count as well.
    void lastRow() {
        StepList<float> list(metric_);
        list.add(-2, 0, metric_.doubleAxial);
        pixels(first ? size_.height - 1 : 0, 0, size_.width, list);
    }

    Image<const Lum8u> src_;
    Image<float> dst_;
    LumSize size_;
    ChamferMetric<float> metric_;
    ChamferLengths<float, blockPixels> lengths_;
    StepList<float> list_;
};

template <ChamferSteps steps>
void passes(Image<const Lum8u> src, Image<float> dst, LumSize size, const ChamferMetric<float>& metric) {
    Pass<steps, 1>(src, dst, size, metric).run();
    Pass<steps, -1>(src, dst, size, metric).run();
}

} // namespace

void chamferFloats(Image<const Lum8u> src, Image<float> dst, LumSize size,
                   const ChamferMetric<float>& metric) {
    switch (metric.steps) {
    case ChamferSteps::axial:
        return passes<ChamferSteps::axial>(src, dst, size, metric);
    case ChamferSteps::eight:
        return passes<ChamferSteps::eight>(src, dst, size, metric);
    case ChamferSteps::knight:
        return passes<ChamferSteps::knight>(src, dst, size, metric);
    case ChamferSteps::window:
        return passes<ChamferSteps::window>(src, dst, size, metric);
    }
}

} // namespace lum::kernels

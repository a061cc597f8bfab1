// Boundaries between the regions of a label image, in place.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#include "frame/lanes_reduce.h"

namespace lum::kernels {

/// A row of labels and the one above it, which may be null. A pixel becomes `border` where a neighbour that comes
/// before it in raster order is neither `border` nor its equal: left and up, or with corners those at up as well.
/// Lum8u, Lum16u.
template <class T> class BoundedRow {
  public:
    BoundedRow(T* row, const T* above, int width, T border, bool corners)
        : row_(row), above_(above), width_(width), border_(border), corners_(corners) {}

    /// The pixels x .. end - 1, one at a time.
    void drawScalar(int x, int end) const {
        for (; x < end; ++x) {
            bool isBorder = x > 0 && differs(row_[x - 1], row_[x]);
            if (above_ != nullptr) {
                isBorder |= differs(above_[x], row_[x]);
                isBorder |= corners_ && x > 0 && differs(above_[x - 1], row_[x]);
                isBorder |= corners_ && x < width_ - 1 && differs(above_[x + 1], row_[x]);
            }
            if (isBorder) row_[x] = border_;
        }
    }

    /// The whole row, a block at a time.
    void draw() const {
        constexpr int N = 32;
        drawScalar(0, 1);
        int x = 1;
        // whole blocks whose neighbours are all in the row
        for (; x < width_ - N; x += N) {
            const auto labels = load<N>(row_ + x);
            // A left neighbour that turns counts no more, so that of a row of differing pixels every other one turns.
            std::uint32_t left = signBits(differ(load<N>(row_ + x - 1), labels));
            std::uint32_t turned = 0;
            if (above_ != nullptr) {
                auto mask = differ(load<N>(above_ + x), labels);
                if (corners_)
                    mask = mask | differ(load<N>(above_ + x - 1), labels) |
                           differ(load<N>(above_ + x + 1), labels);
                turned = signBits(mask);
            }
            for (left &= ~turned; left != 0; left &= left - 1) {
                const std::uint32_t bit = left & (0 - left);
                if ((turned & bit >> 1) == 0) turned |= bit;
            }
            for (; turned != 0; turned &= turned - 1) row_[x + std::countr_zero(turned)] = border_;
        }
        // tail: scalar, one pixel at a time
        if (x < width_) drawScalar(x, width_);
    }

  private:
    bool differs(T neighbour, T label) const { return neighbour != border_ && neighbour != label; }

    template <int N> MaskOf<T, N> differ(Block<T, N> neighbours, Block<T, N> labels) const {
        return ~((neighbours == broadcast<N>(border_)) | (neighbours == labels));
    }

    T* row_;
    const T* above_;
    int width_;
    T border_;
    bool corners_;
};

} // namespace lum::kernels

// The smallest rectangle around runs of pixels.
#pragma once

#include <algorithm>

#include "lumcv/types.h"

namespace lum::kernels {

/// Holds at least one run.
class BoundingBox {
  public:
    BoundingBox(int y, int left, int right) : top_(y), bottom_(y), left_(left), right_(right) {}

    void widen(int y, int left, int right) {
        top_ = std::min(top_, y);
        bottom_ = std::max(bottom_, y);
        left_ = std::min(left_, left);
        right_ = std::max(right_, right);
    }

    LumRect rect() const { return {left_, top_, right_ - left_ + 1, bottom_ - top_ + 1}; }

  private:
    int top_;
    int bottom_;
    int left_;
    int right_;
};

} // namespace lum::kernels

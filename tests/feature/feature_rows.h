// Rows of kernels between guards: inputs that end, or begin, at an unreadable page, at every alignment of elements.
#pragma once

#include <gtest/gtest.h>
#include <vector>

#include "support/guarded_image.h"

namespace support {

/// `count` elements that lie at one end of a page, `shift` elements away from the unreadable one.
template <class T> class GuardedRow {
  public:
    GuardedRow(std::ptrdiff_t count, Guard guard, int shift = 0)
        : pages_((count + shift) * sizeof(T), guard),
          first_(reinterpret_cast<T*>(pages_.bytes()) + (guard == Guard::before ? shift : 0)),
          count_(count) {
        std::memset(pages_.bytes(), 0xA5, pages_.size());
    }

    template <class Value> GuardedRow& fill(Value value) {
        for (std::ptrdiff_t x = 0; x < count_; ++x) first_[x] = static_cast<T>(value(x));
        return *this;
    }
    T* data() { return first_; }
    std::vector<T> elements() const { return {first_, first_ + count_}; }

  private:
    GuardedPages pages_;
    T* first_;
    std::ptrdiff_t count_;
};

inline std::vector<int> kernelWidths() {
    std::vector<int> widths{95, 96, 97, 128, 129, 191, 257};
    for (int width = 1; width <= 70; ++width) widths.push_back(width);
    return widths;
}

/// Calls body(width, guard, shift) for all widths, both guards and some alignments.
template <class Body> void onEveryRow(Body body) {
    for (int width : kernelWidths())
        for (Guard guard : {Guard::after, Guard::before})
            for (int shift : {0, 1, 3, 8}) body(width, guard, shift);
}

} // namespace support

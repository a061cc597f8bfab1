// The pixels of a row by a rule that looks at one pixel alone: where members begin and end, and writing over them.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>

#include "lumcv/types.h"

namespace lum::kernels {

/// A pixel's elements.
template <class T, int channels> using Pixel = std::array<T, channels>;

/// Members are the pixels that equal a value; floats are compared as numbers.
template <class T, int channels> struct EqualTo {
    using Element = T;
    static constexpr int channelCount = channels;
    Pixel<T, channels> value;

    bool accepts(int channel, T v) const { return v == value[channel]; }
};

/// Members are the pixels between two limits.
template <class T, int channels> struct Between {
    using Element = T;
    static constexpr int channelCount = channels;
    Pixel<T, channels> low;
    Pixel<T, channels> high;

    bool accepts(int channel, T v) const { return low[channel] <= v && v <= high[channel]; }
};

/// Whether all channels of a pixel are accepted.
template <class Rule> bool isMember(const Rule& rule, const typename Rule::Element* pixel) {
    for (int c = 0; c < Rule::channelCount; ++c)
        if (!rule.accepts(c, pixel[c])) return false;
    return true;
}

/// The rows of an image by a rule and the value that is written, one pixel at a time. Columns are counted in pixels; ends
/// lie one pixel after the last.
template <class Rule> class ScalarRow {
  public:
    using T = typename Rule::Element;
    static constexpr int channels = Rule::channelCount;

    ScalarRow(const Rule& rule, const Pixel<T, channels>& newVal) : rule_(rule), newVal_(newVal) {}

    /// The first member in x .. end - 1, or end.
    int firstMember(const T* row, int x, int end) const {
        while (x < end && !isMember(rule_, row + std::ptrdiff_t{x} * channels)) ++x;
        return x;
    }

    /// The end of the members from x on.
    int membersEnd(const T* row, int x, int end) const {
        while (x < end && isMember(rule_, row + std::ptrdiff_t{x} * channels)) ++x;
        return x;
    }

    /// The first of the members that lie directly before x, or x.
    int membersBegin(const T* row, int x) const {
        while (x > 0 && isMember(rule_, row + std::ptrdiff_t{x - 1} * channels)) --x;
        return x;
    }

    /// Sets the pixels x .. end - 1.
    void write(T* row, int x, int end) const {
        for (; x < end; ++x) std::copy(newVal_.begin(), newVal_.end(), row + std::ptrdiff_t{x} * channels);
    }

  private:
    Rule rule_;
    Pixel<T, channels> newVal_;
};

} // namespace lum::kernels

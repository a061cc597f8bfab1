// The pixels of a row by a rule that looks at one pixel alone: where members begin and end, and writing over them.
#pragma once

#include <algorithm>
#include <array>

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

/// One pixel at a time. Columns are counted in pixels; ends lie one pixel after the last.
template <class Rule> struct ScalarRow {
    using T = typename Rule::Element;
    static constexpr int channels = Rule::channelCount;

    /// The first member in x .. end - 1, or end.
    static int firstMember(const Rule& rule, const T* row, int x, int end) {
        while (x < end && !isMember(rule, row + std::ptrdiff_t{x} * channels)) ++x;
        return x;
    }

    /// The end of the members from x on.
    static int membersEnd(const Rule& rule, const T* row, int x, int end) {
        while (x < end && isMember(rule, row + std::ptrdiff_t{x} * channels)) ++x;
        return x;
    }

    /// The first of the members that lie directly before x, or x.
    static int membersBegin(const Rule& rule, const T* row, int x) {
        while (x > 0 && isMember(rule, row + std::ptrdiff_t{x - 1} * channels)) --x;
        return x;
    }

    /// Sets the pixels x .. end - 1.
    static void write(T* row, int x, int end, const Pixel<T, channels>& value) {
        for (; x < end; ++x) std::copy(value.begin(), value.end(), row + std::ptrdiff_t{x} * channels);
    }
};

template <class Rule> using RowOf = ScalarRow<Rule>;

} // namespace lum::kernels

// The column stage of a rectangle: windows of neighbouring rows share the rows they have in common. Lines have elements of
// their own type, in which the order of values is the same.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "frame/image.h"
#include "frame/lanes_parts.h"
#include "kernels/morph/blocks.h"
#include "kernels/morph/operation.h"

namespace lum::kernels {

/// What words are compared as: short vectors know the stronger of signed ones only, so unsigned ones move by half their
/// range.
template <class T>
using ComparedAs = std::conditional_t<std::is_same_v<T, Lum16u> && vectorBytes == 16, Lum16s, T>;

/// An element as a line has it, and back.
template <class To, class From> LUM_LANE To movedTo(From value) {
    if constexpr (std::is_same_v<To, From>)
        return value;
    else
        return static_cast<To>(value ^ 0x8000);
}
template <class To, class From, int N> LUM_LANE Block<To, N> movedTo(Block<From, N> values) {
    if constexpr (std::is_same_v<To, From>)
        return values;
    else
        return bitsAs<To>(values ^ broadcast<N>(static_cast<From>(0x8000)));
}

/// Image elements T, elements of lines Line: T itself or ComparedAs<T>.
template <MorphOp op, class T, class Line> struct ColumnWindows {
    /// N elements of the image, as lines have them.
    template <int N> LUM_LANE static auto read(const T* place) { return movedTo<Line>(take<N>(place)); }

    /// A number, whatever the element is.
    template <class V> LUM_LANE static V number(V value) {
        if constexpr (std::is_same_v<V, float>)
            return stronger<op>(weakest<op, float>, value);
        else if constexpr (std::is_floating_point_v<T>)
            return stronger<op>(broadcast<V::count>(weakest<op, T>), value);
        else
            return value;
    }

    /// Elements of a block whose windows of more than three rows are formed together: with eight registers, those of 32-bit
    /// code, two vectors, so that what four windows share stays in them.
    template <int N>
    static constexpr int ofPart = sizeof(void*) == 4 ? std::min(N, 2 * OneVector<T>::count) : N;

    /// The rows that the next four windows see for the first time; rows that lie far apart are not predicted by the machine.
    LUM_LANE static void prefetchFour(const T* const (&rows)[4], std::ptrdiff_t x) {
#pragma GCC unroll 4
        for (int i = 0; i < 4; ++i)
            __builtin_prefetch(
                reinterpret_cast<const void*>(reinterpret_cast<std::uintptr_t>(rows[i]) + x * sizeof(T)));
    }

    /// Four windows of three rows: line i is that of rows i .. i + 2.
    static void fourOfThree(Image<const T> rows, Image<Line> lines, std::ptrdiff_t count) {
        const T* const next[4] = {rows.row(6), rows.row(7), rows.row(8), rows.row(9)};
        const T* const row[6] = {rows.row(0), rows.row(1), rows.row(2),
                                 rows.row(3), rows.row(4), rows.row(5)};
        Line* const line[4] = {lines.row(0), lines.row(1), lines.row(2), lines.row(3)};
        forEachBlock<T>(count, [&]<int N>(std::ptrdiff_t x) LUM_BLOCK_BODY {
            prefetchFour(next, x);
            const auto upper = stronger<op>(number(read<N>(row[1] + x)), read<N>(row[2] + x));
            put(stronger<op>(upper, read<N>(row[0] + x)), line[0] + x);
            put(stronger<op>(upper, read<N>(row[3] + x)), line[1] + x);
            const auto lower = stronger<op>(number(read<N>(row[3] + x)), read<N>(row[4] + x));
            put(stronger<op>(lower, read<N>(row[2] + x)), line[2] + x);
            put(stronger<op>(lower, read<N>(row[5] + x)), line[3] + x);
        });
    }

    /// Four windows of `height` rows, four at least; the compiler may know how many.
    template <class Height>
    LUM_LANE static void four(Image<const T> rows, Height height, Image<Line> lines, std::ptrdiff_t count) {
        const T* const upper[3] = {rows.row(0), rows.row(1), rows.row(2)};
        const T* const lower[3] = {rows.row(height), rows.row(height + 1), rows.row(height + 2)};
        Line* const line[4] = {lines.row(0), lines.row(1), lines.row(2), lines.row(3)};
        const T* const next[4] = {rows.row(height + 3), rows.row(height + 4), rows.row(height + 5),
                                  rows.row(height + 6)};
        forEachBlock<T>(count, [&]<int N>(std::ptrdiff_t first) LUM_BLOCK_BODY {
            prefetchFour(next, first);
            constexpr int n = ofPart<N>;
            forParts<n, N>([&](int part) LUM_BLOCK_BODY {
                const std::ptrdiff_t x = first + part;
                const T* row = rows.row(3) + x;
                auto shared = number(read<n>(row));
                for (std::ptrdiff_t i = 4; i < height; ++i) {
                    row = Image<const T>{row, rows.step}.row(1);
                    shared = stronger<op>(shared, read<n>(row));
                }
                // Downward from the shared rows, and upward.
                const auto withTwo = stronger<op>(shared, read<n>(upper[2] + x));
                const auto withOne = stronger<op>(withTwo, read<n>(upper[1] + x));
                put(stronger<op>(withOne, read<n>(upper[0] + x)), line[0] + x);
                put(stronger<op>(withOne, read<n>(lower[0] + x)), line[1] + x);
                const auto below = stronger<op>(number(read<n>(lower[0] + x)), read<n>(lower[1] + x));
                put(stronger<op>(withTwo, below), line[2] + x);
                put(stronger<op>(stronger<op>(shared, below), read<n>(lower[2] + x)), line[3] + x);
            });
        });
    }
    static void fourOfFive(Image<const T> rows, Image<Line> lines, std::ptrdiff_t count) {
        four(rows, std::integral_constant<std::ptrdiff_t, 5>(), lines, count);
    }
    static void fourOf(Image<const T> rows, std::ptrdiff_t height, Image<Line> lines, std::ptrdiff_t count) {
        four(rows, height, lines, count);
    }

    /// The windows of `height` rows of `lineCount` neighbouring rows, at most as many as a window has rows: line i is
    /// that of rows i .. i + height - 1, as far as these lie in first .. last - 1.
    static void several(Image<const T> rows, std::ptrdiff_t height, std::ptrdiff_t first, std::ptrdiff_t last,
                        Image<Line> lines, std::ptrdiff_t lineCount, std::ptrdiff_t count) {
        const auto exists = [&](std::ptrdiff_t i) { return i >= first && i < last; };
        forEachBlock<T>(count, [&]<int N>(std::ptrdiff_t x) LUM_BLOCK_BODY {
            // What all of them share, then upward with a row more each.
            auto window = spread<N>(weakest<op, Line>);
            for (std::ptrdiff_t i = std::max(lineCount - 1, first); i < std::min(height, last); ++i)
                window = stronger<op>(window, read<N>(rows.row(i) + x));
            put(window, lines.row(lineCount - 1) + x);
            for (std::ptrdiff_t i = lineCount - 2; i >= 0; --i) {
                if (exists(i)) window = stronger<op>(window, read<N>(rows.row(i) + x));
                put(window, lines.row(i) + x);
            }
            // The rows below the first window, downward.
            window = spread<N>(weakest<op, Line>);
            for (std::ptrdiff_t i = 1; i < lineCount; ++i) {
                if (exists(height + i - 1))
                    window = stronger<op>(window, read<N>(rows.row(height + i - 1) + x));
                Line* const line = lines.row(i) + x;
                put(stronger<op>(take<N>(line), window), line);
            }
        });
    }

    /// Takes a value for each channel into a line that begins with the first channel.
    static void takeIn(const Line* values, int channels, Line* line, std::ptrdiff_t count) {
        constexpr int mostChannels = 4;
        constexpr int most = blockElements<T> + mostChannels;
        Line pattern[most];
        for (int i = 0; i < most; ++i) pattern[i] = values[i % channels];
        forEachBlock<T>(count, [&]<int N>(std::ptrdiff_t x) LUM_BLOCK_BODY {
            put(stronger<op>(take<N>(line + x), take<N>(pattern + x % channels)), line + x);
        });
    }
};

} // namespace lum::kernels

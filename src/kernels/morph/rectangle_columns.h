// The column stage of a rectangle: windows of neighbouring rows share the rows they have in common.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "frame/image.h"
#include "kernels/morph/blocks.h"
#include "kernels/morph/operation.h"

namespace lum::kernels {

template <MorphOp op, class T> struct ColumnWindows {
    /// A number, whatever the element is.
    template <class V> LUM_LANE static V number(V value) {
        if constexpr (std::is_same_v<V, float>)
            return stronger<op>(weakest<op, float>, value);
        else if constexpr (std::is_floating_point_v<T>)
            return stronger<op>(broadcast<V::count>(weakest<op, T>), value);
        else
            return value;
    }

    /// The rows that the next four windows see for the first time; rows that lie far apart are not predicted by the machine.
    LUM_LANE static void prefetchFour(const T* const (&rows)[4], std::ptrdiff_t x) {
        for (const T* row : rows)
            __builtin_prefetch(
                reinterpret_cast<const void*>(reinterpret_cast<std::uintptr_t>(row) + x * sizeof(T)));
    }

    /// Four windows of three rows: line i is that of rows i .. i + 2.
    static void fourOfThree(Image<const T> rows, Image<T> lines, std::ptrdiff_t count) {
        const T* const next[4] = {rows.row(6), rows.row(7), rows.row(8), rows.row(9)};
        const T* const row[6] = {rows.row(0), rows.row(1), rows.row(2),
                                 rows.row(3), rows.row(4), rows.row(5)};
        T* const line[4] = {lines.row(0), lines.row(1), lines.row(2), lines.row(3)};
        forEachBlock<T>(count, [&]<int N>(std::ptrdiff_t x) LUM_BLOCK_BODY {
            prefetchFour(next, x);
            const auto upper = stronger<op>(number(take<N>(row[1] + x)), take<N>(row[2] + x));
            put(stronger<op>(upper, take<N>(row[0] + x)), line[0] + x);
            put(stronger<op>(upper, take<N>(row[3] + x)), line[1] + x);
            const auto lower = stronger<op>(number(take<N>(row[3] + x)), take<N>(row[4] + x));
            put(stronger<op>(lower, take<N>(row[2] + x)), line[2] + x);
            put(stronger<op>(lower, take<N>(row[5] + x)), line[3] + x);
        });
    }

    /// Four windows of `height` rows, four at least.
    static void four(Image<const T> rows, std::ptrdiff_t height, Image<T> lines, std::ptrdiff_t count) {
        const T* const upper[3] = {rows.row(0), rows.row(1), rows.row(2)};
        const T* const lower[3] = {rows.row(height), rows.row(height + 1), rows.row(height + 2)};
        T* const line[4] = {lines.row(0), lines.row(1), lines.row(2), lines.row(3)};
        const T* const next[4] = {rows.row(height + 3), rows.row(height + 4), rows.row(height + 5),
                                  rows.row(height + 6)};
        forEachBlock<T>(count, [&]<int N>(std::ptrdiff_t x) LUM_BLOCK_BODY {
            prefetchFour(next, x);
            const T* row = rows.row(3) + x;
            auto shared = number(take<N>(row));
            for (std::ptrdiff_t i = 4; i < height; ++i) {
                row = Image<const T>{row, rows.step}.row(1);
                shared = stronger<op>(shared, take<N>(row));
            }
            // Downward from the shared rows, and upward.
            const auto withTwo = stronger<op>(shared, take<N>(upper[2] + x));
            const auto withOne = stronger<op>(withTwo, take<N>(upper[1] + x));
            put(stronger<op>(withOne, take<N>(upper[0] + x)), line[0] + x);
            put(stronger<op>(withOne, take<N>(lower[0] + x)), line[1] + x);
            const auto below = stronger<op>(number(take<N>(lower[0] + x)), take<N>(lower[1] + x));
            put(stronger<op>(withTwo, below), line[2] + x);
            put(stronger<op>(stronger<op>(shared, below), take<N>(lower[2] + x)), line[3] + x);
        });
    }

    /// The windows of `height` rows of `lineCount` neighbouring rows, at most as many as a window has rows: line i is
    /// that of rows i .. i + height - 1, as far as these lie in first .. last - 1.
    static void several(Image<const T> rows, std::ptrdiff_t height, std::ptrdiff_t first, std::ptrdiff_t last,
                        Image<T> lines, std::ptrdiff_t lineCount, std::ptrdiff_t count) {
        const auto exists = [&](std::ptrdiff_t i) { return i >= first && i < last; };
        forEachBlock<T>(count, [&]<int N>(std::ptrdiff_t x) LUM_BLOCK_BODY {
            // What all of them share, then upward with a row more each.
            auto window = spread<N>(weakest<op, T>);
            for (std::ptrdiff_t i = std::max(lineCount - 1, first); i < std::min(height, last); ++i)
                window = stronger<op>(window, take<N>(rows.row(i) + x));
            put(window, lines.row(lineCount - 1) + x);
            for (std::ptrdiff_t i = lineCount - 2; i >= 0; --i) {
                if (exists(i)) window = stronger<op>(window, take<N>(rows.row(i) + x));
                put(window, lines.row(i) + x);
            }
            // The rows below the first window, downward.
            window = spread<N>(weakest<op, T>);
            for (std::ptrdiff_t i = 1; i < lineCount; ++i) {
                if (exists(height + i - 1))
                    window = stronger<op>(window, take<N>(rows.row(height + i - 1) + x));
                T* const line = lines.row(i) + x;
                put(stronger<op>(take<N>(line), window), line);
            }
        });
    }

    /// Takes a value for each channel into a line that begins with the first channel.
    static void takeIn(const T* values, int channels, T* line, std::ptrdiff_t count) {
        constexpr int mostChannels = 4;
        constexpr int most = blockElements<T> + mostChannels;
        T pattern[most];
        for (int i = 0; i < most; ++i) pattern[i] = values[i % channels];
        forEachBlock<T>(count, [&]<int N>(std::ptrdiff_t x) LUM_BLOCK_BODY {
            put(stronger<op>(take<N>(line + x), take<N>(pattern + x % channels)), line + x);
        });
    }
};

} // namespace lum::kernels

#include "kernels/motion/flow_gradient.h"

#include <algorithm>

#include "frame/instances.h"
#include "frame/lanes.h"
#include "frame/lanes_convert.h"

namespace lum::kernels {
namespace {

/// 16u becomes the derivative's scale before the stencil, 32f after it; of 8u 32 times the derivative is kept.
template <class T> inline constexpr float scaleBefore = std::is_same_v<T, Lum16u> ? 0.03125F : 1.0F;
template <class T> inline constexpr float scaleAfter = std::is_same_v<T, Lum32f> ? 0.03125F : 1.0F;

template <class T> Derivative<T> valueOf(T pixel) {
    if constexpr (std::is_same_v<T, Lum16u>)
        return static_cast<float>(pixel) * scaleBefore<T>;
    else
        return pixel;
}
template <class T, int N> LUM_LANE auto valuesAt(const T* place) {
    if constexpr (std::is_same_v<T, Lum8u>)
        return widen<Lum16s>(load<N>(place));
    else if constexpr (std::is_same_v<T, Lum16u>)
        return toFloat(load<N>(place)) * broadcast<N>(scaleBefore<T>);
    else
        return load<N>(place);
}

// The same formulas serve single values and blocks; the weights are in the same form as the values.

template <class V> LUM_LANE V smoothed(V a, V b, V c, V three, V ten) { return three * (a + c) + ten * b; }

/// Integers of 16 bits that C++ would otherwise widen.
template <class T> Derivative<T> smoothedValue(Derivative<T> a, Derivative<T> b, Derivative<T> c) {
    return static_cast<Derivative<T>>(3 * (a + c) + 10 * b);
}
template <class T> Derivative<T> differenceOf(Derivative<T> a, Derivative<T> b) {
    return static_cast<Derivative<T>>(a - b);
}
/// Columns of three rows: smoothed ones, for the derivative along x, and differences, for that along y.
template <class T> struct Columns {
    Derivative<T>* smooth;
    Derivative<T>* difference;
};

template <class T>
void columnsScalar(const T* above, const T* middle, const T* below, std::ptrdiff_t begin, std::ptrdiff_t end,
                   Columns<T> columns) {
    for (std::ptrdiff_t x = begin; x < end; ++x) {
        const auto a = valueOf(above[x]);
        const auto c = valueOf(below[x]);
        columns.smooth[x] = smoothedValue<T>(a, valueOf(middle[x]), c);
        columns.difference[x] = differenceOf<T>(c, a);
    }
}

template <class T>
void rowScalar(Columns<T> columns, std::ptrdiff_t begin, std::ptrdiff_t end, Derivative<T>* dx,
               Derivative<T>* dy) {
    for (std::ptrdiff_t x = begin; x < end; ++x) {
        const auto* smooth = columns.smooth + x;
        const auto* difference = columns.difference + x;
        if constexpr (std::is_same_v<T, Lum8u>) {
            dx[x] = differenceOf<T>(smooth[1], smooth[-1]);
            dy[x] = smoothedValue<T>(difference[-1], difference[0], difference[1]);
        } else {
            dx[x] = differenceOf<T>(smooth[1], smooth[-1]) * scaleAfter<T>;
            dy[x] = smoothedValue<T>(difference[-1], difference[0], difference[1]) * scaleAfter<T>;
        }
    }
}

template <class T, int N>
LUM_LANE void columnsOfBlock(const T* above, const T* middle, const T* below, Derivative<T>* smooth,
                             Derivative<T>* difference) {
    using D = Derivative<T>;
    const auto a = valuesAt<T, N>(above);
    const auto c = valuesAt<T, N>(below);
    store(smoothed(a, valuesAt<T, N>(middle), c, broadcast<N>(D{3}), broadcast<N>(D{10})), smooth);
    store(c - a, difference);
}

template <class T, int N>
LUM_LANE void rowOfBlock(const Derivative<T>* smooth, const Derivative<T>* difference, Derivative<T>* dx,
                         Derivative<T>* dy) {
    using D = Derivative<T>;
    auto alongX = load<N>(smooth + 1) - load<N>(smooth - 1);
    auto alongY = smoothed(load<N>(difference - 1), load<N>(difference), load<N>(difference + 1),
                           broadcast<N>(D{3}), broadcast<N>(D{10}));
    if constexpr (std::is_same_v<T, Lum32f>) {
        alongX = alongX * broadcast<N>(scaleAfter<T>);
        alongY = alongY * broadcast<N>(scaleAfter<T>);
    }
    store(alongX, dx);
    store(alongY, dy);
}

/// The rows of a level, each by its three neighbours; edges replicate.
template <class T, class ColumnsOf, class RowOf>
void drawRows(Image<const T> level, LumSize size, Derivative<T>* dx, Derivative<T>* dy, std::ptrdiff_t pitch,
              Derivative<T>* work, ColumnsOf columnsOf, RowOf rowOf) {
    const std::ptrdiff_t width = size.width;
    // One more element on either side of a row.
    const Columns<T> columns{work + 1, work + width + 3};
    for (std::ptrdiff_t y = 0; y < size.height; ++y) {
        columnsOf(level.row(std::max<std::ptrdiff_t>(y - 1, 0)), level.row(y),
                  level.row(std::min<std::ptrdiff_t>(y + 1, size.height - 1)), columns);
        for (auto* row : {columns.smooth, columns.difference}) {
            row[-1] = row[0];
            row[width] = row[width - 1];
        }
        rowOf(columns, dx + y * pitch, dy + y * pitch);
    }
}

/// Elements of a block: 32 bytes of results. Tail of a row of a level: scalar.
template <class T> constexpr int blockOf = 32 / static_cast<int>(sizeof(Derivative<T>));

} // namespace

template <class T>
void LevelGradient<T>::drawScalar(Image<const T> level, LumSize size, Result* dx, Result* dy,
                                  std::ptrdiff_t pitch, Result* work) {
    drawRows(
        level, size, dx, dy, pitch, work,
        [&](const T* above, const T* middle, const T* below, Columns<T> columns) {
            columnsScalar(above, middle, below, 0, size.width, columns);
        },
        [&](Columns<T> columns, Result* dxRow, Result* dyRow) {
            rowScalar(columns, 0, size.width, dxRow, dyRow);
        });
}

template <class T>
void LevelGradient<T>::draw(Image<const T> level, LumSize size, Result* dx, Result* dy, std::ptrdiff_t pitch,
                            Result* work) {
    constexpr int N = blockOf<T>;
    const std::ptrdiff_t whole = size.width - size.width % N;
    drawRows(
        level, size, dx, dy, pitch, work,
        [&](const T* above, const T* middle, const T* below, Columns<T> columns) {
            for (std::ptrdiff_t x = 0; x < whole; x += N)
                columnsOfBlock<T, N>(above + x, middle + x, below + x, columns.smooth + x,
                                     columns.difference + x);
            columnsScalar(above, middle, below, whole, size.width, columns);
        },
        [&](Columns<T> columns, Result* dxRow, Result* dyRow) {
            for (std::ptrdiff_t x = 0; x < whole; x += N)
                rowOfBlock<T, N>(columns.smooth + x, columns.difference + x, dxRow + x, dyRow + x);
            rowScalar(columns, whole, size.width, dxRow, dyRow);
        });
}

LUM_STRUCT_INSTANCES(LevelGradient, (Lum8u), (Lum16u), (Lum32f));

namespace {

/// Three rows of a window, from the column in front of the first result.
struct WindowRows {
    const Lum32f* above;
    const Lum32f* middle;
    const Lum32f* below;
};

float smoothedAt(const WindowRows& rows, std::ptrdiff_t x) {
    return smoothed(rows.above[x], rows.middle[x], rows.below[x], 3.0F, 10.0F);
}
float differenceAt(const WindowRows& rows, std::ptrdiff_t x) { return rows.below[x] - rows.above[x]; }

void windowPixel(const WindowRows& rows, std::ptrdiff_t x, Lum64f& value, Lum64f& dx, Lum64f& dy) {
    value = rows.middle[x + 1];
    dx = (smoothedAt(rows, x + 2) - smoothedAt(rows, x)) * 0.03125F;
    dy = smoothed(differenceAt(rows, x), differenceAt(rows, x + 1), differenceAt(rows, x + 2), 3.0F, 10.0F) *
         0.03125F;
}

/// Results of one step, and the columns that the stack holds of three rows.
constexpr int windowBlock = 8;
constexpr int windowColumns = 64;

struct WindowColumns {
    alignas(32) float smooth[windowColumns + windowBlock];
    alignas(32) float difference[windowColumns + windowBlock];
};

/// Calls for blocks at 0, 8, ... Tail: overlapping last vector.
template <class Draw> LUM_LANE void forBlocks(int width, Draw draw) {
    int x = 0;
    for (; x <= width - windowBlock; x += windowBlock) draw(x);
    if (x < width) draw(width - windowBlock);
}

/// A row of `width` results from column x on, of which there are 8 to windowColumns.
void windowRow(const WindowRows& rows, std::ptrdiff_t x, int width, WindowColumns& columns, Lum64f* values,
               Lum64f* dx, Lum64f* dy) {
    constexpr int N = windowBlock;
    const auto three = broadcast<N>(3.0F);
    const auto ten = broadcast<N>(10.0F);
    const auto scale = broadcast<N>(0.03125F);
    forBlocks(width + 2, [&](int i) {
        const auto above = load<N>(rows.above + x + i);
        const auto below = load<N>(rows.below + x + i);
        store(smoothed(above, load<N>(rows.middle + x + i), below, three, ten), columns.smooth + i);
        store(below - above, columns.difference + i);
    });
    forBlocks(width, [&](int i) {
        const float* smooth = columns.smooth + i;
        const float* difference = columns.difference + i;
        store(toDouble(load<N>(rows.middle + x + i + 1)), values + i);
        store(toDouble((load<N>(smooth + 2) - load<N>(smooth)) * scale), dx + i);
        store(toDouble(smoothed(load<N>(difference), load<N>(difference + 1), load<N>(difference + 2), three,
                                ten) *
                       scale),
              dy + i);
    });
}

WindowRows windowRows(Image<const Lum32f> window, std::ptrdiff_t y) {
    return {window.row(y), window.row(y + 1), window.row(y + 2)};
}

} // namespace

void windowGradientScalar(Image<const Lum32f> window, LumSize size, Image<Lum64f> values, Image<Lum64f> dx,
                          Image<Lum64f> dy) {
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x)
            windowPixel(windowRows(window, y), x, values.row(y)[x], dx.row(y)[x], dy.row(y)[x]);
}

void windowGradient(Image<const Lum32f> window, LumSize size, Image<Lum64f> values, Image<Lum64f> dx,
                    Image<Lum64f> dy) {
    if (size.width < windowBlock) return windowGradientScalar(window, size, values, dx, dy);
    WindowColumns columns;
    for (int begin = 0; begin < size.width; begin += windowColumns) {
        const int x = std::min(begin, size.width - windowBlock);
        const int width = std::min(size.width - x, windowColumns);
        for (int y = 0; y < size.height; ++y)
            windowRow(windowRows(window, y), x, width, columns, values.row(y) + x, dx.row(y) + x,
                      dy.row(y) + x);
    }
}

} // namespace lum::kernels

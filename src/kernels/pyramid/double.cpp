#include "kernels/pyramid/double.h"

#include "frame/instances.h"
#include "kernels/pyramid/in_blocks.h"
#include "kernels/pyramid/load_floats.h"
#include "kernels/pyramid/rounded.h"

namespace lum::kernels {
namespace {

// The formulas, of floats and of blocks of floats.
inline float evenOf(float middle, float before, float after) {
    return (6 * middle + before + after) * 0.125F;
}
inline float oddOf(float middle, float after) { return (middle + after) * 4 * 0.125F; }
inline float endOf(float middle, float neighbour) { return (6 * middle + 2 * neighbour) * 0.125F; }

template <int N>
LUM_LANE Block<float, N> evenOf(Block<float, N> middle, Block<float, N> before, Block<float, N> after) {
    return (broadcast<N>(6.0F) * middle + before + after) * broadcast<N>(0.125F);
}
template <int N> LUM_LANE Block<float, N> oddOf(Block<float, N> middle, Block<float, N> after) {
    return (middle + after) * broadcast<N>(4.0F) * broadcast<N>(0.125F);
}
template <int N> LUM_LANE Block<float, N> endOf(Block<float, N> middle, Block<float, N> neighbour) {
    return (broadcast<N>(6.0F) * middle + broadcast<N>(2.0F) * neighbour) * broadcast<N>(0.125F);
}

constexpr int blockLength = 16;

LUM_LANE void prefetchForWriting(const void* place) {
    constexpr int write = 1;
    constexpr int secondLevel = 2;
    __builtin_prefetch(place, write, secondLevel);
}

} // namespace

template <class T, int channels> void doubleRowScalar(const T* src, std::ptrdiff_t pixels, float* dst) {
    for (std::ptrdiff_t i = 0; i < pixels; ++i, src += channels, dst += 2 * channels)
        for (int c = 0; c < channels; ++c) {
            dst[c] = evenOf(src[c], src[c - channels], src[c + channels]);
            dst[c + channels] = oddOf(src[c], src[c + channels]);
        }
}

template <class T, int channels> void doubleRow(const T* src, std::ptrdiff_t pixels, float* dst) {
    std::ptrdiff_t i = 0;
    if constexpr (channels == 1) {
        // 16 pixels per iteration
        for (; i <= pixels - blockLength; i += blockLength)
            forVectors<float, blockLength>([&]<int n>(int part) LUM_INLINED {
                const T* place = src + i + part;
                const auto middle = loadFloats<n>(place);
                const auto after = loadFloats<n>(place + 1);
                const auto even = evenOf(middle, loadFloats<n>(place - 1), after);
                store(interleave(even, oddOf(middle, after)), dst + 2 * (i + part));
            });
    } else {
        // One pixel per iteration. The fourth element is that of the next pixel, which follows in memory, and its place
        // in the result is written again by the odd result or by the next iteration.
        for (; i < pixels - 1; ++i) {
            const auto middle = loadFloats<4>(src + 3 * i);
            const auto after = loadFloats<4>(src + 3 * i + 3);
            store(evenOf(middle, loadFloats<4>(src + 3 * i - 3), after), dst + 6 * i);
            store(oddOf(middle, after), dst + 6 * i + 3);
        }
    }
    // tail: scalar, one pixel at a time
    doubleRowScalar<T, channels>(src + i * channels, pixels - i, dst + 2 * i * channels);
}

template <class T> void doubleEndPixel(const T* pixel, const T* neighbour, int channels, float* dst) {
    for (int c = 0; c < channels; ++c) {
        dst[c] = endOf(pixel[c], neighbour[c]);
        dst[c + channels] = oddOf(pixel[c], neighbour[c]);
    }
}

template <class T> void doubleEvenRowScalar(const DoubledRows& rows, std::ptrdiff_t count, T* dst) {
    const bool isEnd = rows.above == rows.below;
    for (std::ptrdiff_t i = 0; i < count; ++i)
        dst[i] = rounded<T>(isEnd ? endOf(rows.row[i], rows.below[i])
                                  : evenOf(rows.row[i], rows.above[i], rows.below[i]));
}

template <class T> void doubleEvenRow(const DoubledRows& rows, std::ptrdiff_t count, T* dst, const T* ahead) {
    constexpr int N = blockLength;
    const float *const above = rows.above, *const row = rows.row, *const below = rows.below;
    if (above == below)
        inBlocks<N>(
            count,
            [&](std::ptrdiff_t x) LUM_INLINED {
                prefetchForWriting(ahead + x);
                storeRounded<T, N>(
                    [&]<int n>(int i)
                        LUM_INLINED { return endOf(load<n>(row + x + i), load<n>(below + x + i)); },
                    dst + x);
            },
            [&](std::ptrdiff_t i) { dst[i] = rounded<T>(endOf(row[i], below[i])); });
    else
        inBlocks<N>(
            count,
            [&](std::ptrdiff_t x) LUM_INLINED {
                prefetchForWriting(ahead + x);
                storeRounded<T, N>(
                    [&]<int n>(int i) LUM_INLINED {
                        return evenOf(load<n>(row + x + i), load<n>(above + x + i), load<n>(below + x + i));
                    },
                    dst + x);
            },
            [&](std::ptrdiff_t i) { dst[i] = rounded<T>(evenOf(row[i], above[i], below[i])); });
}

template <class T> void doubleOddRowScalar(const DoubledRows& rows, std::ptrdiff_t count, T* dst) {
    for (std::ptrdiff_t i = 0; i < count; ++i) dst[i] = rounded<T>(oddOf(rows.row[i], rows.below[i]));
}

template <class T> void doubleOddRow(const DoubledRows& rows, std::ptrdiff_t count, T* dst, const T* ahead) {
    constexpr int N = blockLength;
    const float *const row = rows.row, *const below = rows.below;
    inBlocks<N>(
        count,
        [&](std::ptrdiff_t x) LUM_INLINED {
            prefetchForWriting(ahead + x);
            storeRounded<T, N>(
                [&]<int n>(int i) LUM_INLINED { return oddOf(load<n>(row + x + i), load<n>(below + x + i)); },
                dst + x);
        },
        [&](std::ptrdiff_t i) { dst[i] = rounded<T>(oddOf(row[i], below[i])); });
}

LUM_INSTANCES(doubleRowScalar, (Lum16u, 1), (Lum16u, 3), (Lum32f, 1), (Lum32f, 3));
LUM_INSTANCES(doubleRow, (Lum16u, 1), (Lum16u, 3), (Lum32f, 1), (Lum32f, 3));
LUM_INSTANCES(doubleEndPixel, (Lum16u), (Lum32f));
LUM_INSTANCES(doubleEvenRowScalar, (Lum16u), (Lum32f));
LUM_INSTANCES(doubleEvenRow, (Lum16u), (Lum32f));
LUM_INSTANCES(doubleOddRowScalar, (Lum16u), (Lum32f));
LUM_INSTANCES(doubleOddRow, (Lum16u), (Lum32f));

} // namespace lum::kernels

#include "kernels/morph/subtract.h"

#include <type_traits>

#include "frame/convert.h"
#include "frame/instances.h"
#include "frame/lanes.h"

namespace lum::kernels {
namespace {

template <Negatives negatives, class T> T difference(T a, T b) {
    if constexpr (std::is_floating_point_v<T>) {
        const T d = a - b;
        return negatives == Negatives::clear && d < 0 ? T{0} : d;
    } else {
        const T d = saturated<T>(a - b);
        return negatives == Negatives::clear && d < 0 ? T{0} : d;
    }
}

template <Negatives negatives, class T, int N> LUM_LANE Block<T, N> difference(Block<T, N> a, Block<T, N> b) {
    const auto none = zeros<T, N>();
    if constexpr (std::is_floating_point_v<T>) {
        const auto d = a - b;
        return negatives == Negatives::clear ? andNot(bitsAs<T>(d < none), d) : d;
    } else {
        const auto d = subSaturated(a, b);
        return negatives == Negatives::clear && std::is_signed_v<T> ? max(d, none) : d;
    }
}

/// Whole blocks from x on; the first element that is left.
template <Negatives negatives, int N, class T>
std::ptrdiff_t subtractBlocks(const T* minuend, const T* subtrahend, T* dst, std::ptrdiff_t x,
                              std::ptrdiff_t count) {
    for (; x <= count - N; x += N)
        store(difference<negatives>(load<N>(minuend + x), load<N>(subtrahend + x)), dst + x);
    return x;
}

template <Negatives negatives, class T>
void subtractElements(const T* minuend, const T* subtrahend, T* dst, std::ptrdiff_t x, std::ptrdiff_t count) {
    for (; x < count; ++x) dst[x] = difference<negatives>(minuend[x], subtrahend[x]);
}

template <Negatives negatives, class T>
void subtractRow(const T* minuend, const T* subtrahend, T* dst, std::ptrdiff_t count) {
    // 64 bytes per iteration, then 16; tail: scalar, since dst may be an operand and must not be visited twice
    constexpr int N = 64 / sizeof(T);
    std::ptrdiff_t x = subtractBlocks<negatives, N>(minuend, subtrahend, dst, 0, count);
    x = subtractBlocks<negatives, N / 4>(minuend, subtrahend, dst, x, count);
    subtractElements<negatives>(minuend, subtrahend, dst, x, count);
}

template <Negatives negatives, class T>
void subtractRowScalar(const T* minuend, const T* subtrahend, T* dst, std::ptrdiff_t count) {
    subtractElements<negatives>(minuend, subtrahend, dst, 0, count);
}

template <class T>
void forEachRow(Image<const T> minuend, Image<const T> subtrahend, Image<T> dst, std::ptrdiff_t rowElements,
                std::ptrdiff_t rows, void (*subtractOne)(const T*, const T*, T*, std::ptrdiff_t)) {
    for (std::ptrdiff_t y = 0; y < rows; ++y)
        subtractOne(minuend.row(y), subtrahend.row(y), dst.row(y), rowElements);
}

} // namespace

template <class T>
void Subtraction<T>::vectors(Image<const T> minuend, Image<const T> subtrahend, Image<T> dst,
                             std::ptrdiff_t rowElements, std::ptrdiff_t rows, Negatives negatives) {
    forEachRow(minuend, subtrahend, dst, rowElements, rows,
               negatives == Negatives::keep ? subtractRow<Negatives::keep, T>
                                            : subtractRow<Negatives::clear, T>);
}

template <class T>
void Subtraction<T>::scalar(Image<const T> minuend, Image<const T> subtrahend, Image<T> dst,
                            std::ptrdiff_t rowElements, std::ptrdiff_t rows, Negatives negatives) {
    forEachRow(minuend, subtrahend, dst, rowElements, rows,
               negatives == Negatives::keep ? subtractRowScalar<Negatives::keep, T>
                                            : subtractRowScalar<Negatives::clear, T>);
}

LUM_STRUCT_INSTANCES(Subtraction, (Lum8u), (Lum16u), (Lum16s), (Lum32f));

} // namespace lum::kernels

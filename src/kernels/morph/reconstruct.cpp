#include "kernels/morph/reconstruct.h"

#include "frame/instances.h"
#include "frame/lanes_reduce.h"
#include "kernels/morph/blocks.h"

namespace lum::kernels {
namespace {

template <MorphOp op, class T> LUM_LANE T limited(T value, T limit) {
    if constexpr (op == MorphOp::dilate)
        return value < limit ? value : limit;
    else
        return value > limit ? value : limit;
}
template <MorphOp op, class T, int N> LUM_LANE Block<T, N> limited(Block<T, N> value, Block<T, N> limit) {
    if constexpr (op == MorphOp::dilate)
        return min(value, limit);
    else
        return max(value, limit);
}

/// Whether an element of a is stronger than that of b.
template <MorphOp op, class T> LUM_LANE bool anyStronger(T a, T b) {
    if constexpr (op == MorphOp::dilate)
        return a > b;
    else
        return a < b;
}
template <MorphOp op, class T, int N> LUM_LANE bool anyStronger(Block<T, N> a, Block<T, N> b) {
    if constexpr (op == MorphOp::dilate)
        return any(a > b);
    else
        return any(a < b);
}

/// An element raised by one neighbour.
template <MorphOp op, class V> LUM_LANE V raised(V value, V neighbour, V limit) {
    return limited<op>(stronger<op>(value, neighbour), limit);
}

/// Raises N elements of a row to those of a neighbouring row; `left` and `right` lead to the diagonal ones.
template <MorphOp op, Neighbours neighbours, int N, class T>
LUM_LANE bool mergeAt(T* marker, const T* neighbour, const T* limit, std::ptrdiff_t left,
                      std::ptrdiff_t right) {
    const auto value = take<N>(marker);
    auto strongest = stronger<op>(value, take<N>(neighbour));
    if constexpr (neighbours == Neighbours::eight) {
        strongest = stronger<op>(strongest, take<N>(neighbour + left));
        strongest = stronger<op>(strongest, take<N>(neighbour + right));
    }
    const auto result = limited<op>(strongest, take<N>(limit));
    put(result, marker);
    return anyStronger<op>(result, value);
}

/// From `first` on, in the direction of `step`, while first + step x i is one of `count` elements.
template <MorphOp op, int step, class T>
LUM_LANE void spreadOver(T* marker, const T* limit, std::ptrdiff_t first, std::ptrdiff_t count) {
    T value = marker[first - step];
    for (std::ptrdiff_t i = 0, x = first; i < count; ++i, x += step) {
        value = raised<op>(marker[x], value, limit[x]);
        marker[x] = value;
    }
}

template <MorphOp op, Neighbours neighbours, class T>
bool mergeScalar(T* marker, const T* neighbour, const T* limit, std::ptrdiff_t count) {
    bool changed = false;
    for (std::ptrdiff_t x = 0; x < count; ++x)
        changed |= mergeAt<op, neighbours, 1>(marker + x, neighbour + x, limit + x, x > 0 ? -1 : 0,
                                              x < count - 1 ? 1 : 0);
    return changed;
}

template <MorphOp op, Neighbours neighbours, class T>
bool merge(T* marker, const T* neighbour, const T* limit, std::ptrdiff_t count) {
    if (count < 3) return mergeScalar<op, neighbours>(marker, neighbour, limit, count);
    const std::ptrdiff_t last = count - 1;
    bool changed = mergeAt<op, neighbours, 1>(marker, neighbour, limit, 0, 1);
    changed |= mergeAt<op, neighbours, 1>(marker + last, neighbour + last, limit + last, -1, 0);
    forEachBlock<T>(count - 2, [&]<int N>(std::ptrdiff_t i) LUM_BLOCK_BODY {
        const std::ptrdiff_t x = i + 1;
        changed |= mergeAt<op, neighbours, N>(marker + x, neighbour + x, limit + x, -1, 1);
    });
    return changed;
}

} // namespace

template <MorphOp op, class T>
void ReconstructRowScalar<op, T>::clip(T* marker, const T* limit, std::ptrdiff_t count) {
    for (std::ptrdiff_t x = 0; x < count; ++x) marker[x] = limited<op>(marker[x], limit[x]);
}

template <MorphOp op, class T>
void ReconstructRow<op, T>::clip(T* marker, const T* limit, std::ptrdiff_t count) {
    forEachBlock<T>(count, [=]<int N>(std::ptrdiff_t x) LUM_BLOCK_BODY {
        put(limited<op>(take<N>(marker + x), take<N>(limit + x)), marker + x);
    });
}

template <MorphOp op, class T>
bool ReconstructRowScalar<op, T>::mergeNearest(T* marker, const T* neighbour, const T* limit,
                                               std::ptrdiff_t count) {
    return mergeScalar<op, Neighbours::four>(marker, neighbour, limit, count);
}
template <MorphOp op, class T>
bool ReconstructRowScalar<op, T>::mergeThree(T* marker, const T* neighbour, const T* limit,
                                             std::ptrdiff_t count) {
    return mergeScalar<op, Neighbours::eight>(marker, neighbour, limit, count);
}

template <MorphOp op, class T>
bool ReconstructRow<op, T>::mergeNearest(T* marker, const T* neighbour, const T* limit,
                                         std::ptrdiff_t count) {
    return merge<op, Neighbours::four>(marker, neighbour, limit, count);
}
template <MorphOp op, class T>
bool ReconstructRow<op, T>::mergeThree(T* marker, const T* neighbour, const T* limit, std::ptrdiff_t count) {
    return merge<op, Neighbours::eight>(marker, neighbour, limit, count);
}

template <MorphOp op, class T>
void ReconstructRowScalar<op, T>::spread(T* marker, const T* limit, std::ptrdiff_t count) {
    spreadOver<op, 1>(marker, limit, 1, count - 1);
    spreadOver<op, -1>(marker, limit, count - 2, count - 1);
}

template <MorphOp op, class T>
void ReconstructRow<op, T>::spread(T* marker, const T* limit, std::ptrdiff_t count) {
    constexpr int N = blockElements<T>;
    /// Whether an element of the block would be raised by the one before it.
    const auto isRaised = [=](std::ptrdiff_t x, int before) {
        const auto value = load<N>(marker + x);
        return anyStronger<op>(raised<op>(value, load<N>(marker + x + before), load<N>(limit + x)), value);
    };
    // Blocks in which nothing moves are passed; the others, and the tails, are scalar: one element at a time.
    std::ptrdiff_t x = 1;
    for (; x <= count - N; x += N)
        if (isRaised(x, -1)) spreadOver<op, 1>(marker, limit, x, N);
    if (x < count) spreadOver<op, 1>(marker, limit, x, count - x);
    x = count - 2;
    for (; x >= N - 1; x -= N)
        if (isRaised(x - (N - 1), 1)) spreadOver<op, -1>(marker, limit, x, N);
    if (x >= 0) spreadOver<op, -1>(marker, limit, x, x + 1);
}

LUM_STRUCT_INSTANCES(ReconstructRow, (MorphOp::dilate, Lum8u), (MorphOp::dilate, Lum16u),
                     (MorphOp::dilate, Lum32f), (MorphOp::dilate, Lum64f), (MorphOp::erode, Lum8u),
                     (MorphOp::erode, Lum16u), (MorphOp::erode, Lum32f), (MorphOp::erode, Lum64f));
LUM_STRUCT_INSTANCES(ReconstructRowScalar, (MorphOp::dilate, Lum8u), (MorphOp::dilate, Lum16u),
                     (MorphOp::dilate, Lum32f), (MorphOp::dilate, Lum64f), (MorphOp::erode, Lum8u),
                     (MorphOp::erode, Lum16u), (MorphOp::erode, Lum32f), (MorphOp::erode, Lum64f));

} // namespace lum::kernels

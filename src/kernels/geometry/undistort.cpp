#include "kernels/geometry/undistort.h"

#include <cstring>
#include <type_traits>

#include "frame/convert.h"
#include "frame/instances.h"
#include "frame/lanes_reduce.h"
#include "frame/lanes_truncate.h"

namespace lum::kernels {
namespace {

/// The places that lie between four pixels of a source: from the first pixel to before the last, in x and in
/// y.
struct Inside {
    float lastX;
    float lastY;

    explicit Inside(LumSize size)
        : lastX(static_cast<float>(size.width - 1)), lastY(static_cast<float>(size.height - 1)) {}

    // Comparisons with a NaN are false.
    bool operator()(Place<float> p) const { return p.x >= 0 && p.x < lastX && p.y >= 0 && p.y < lastY; }

    LUM_LANE Block<Lum32s, 4> operator()(const Place<Float4>& p) const {
        const auto zero = zeros<float, 4>();
        return (p.x >= zero) & (p.x < broadcast<4>(lastX)) & (p.y >= zero) & (p.y < broadcast<4>(lastY));
    }
};

/// The weights of the four pixels around a place: upper left and right, lower left and right.
template <class Value> struct Weights {
    Value upperLeft;
    Value upperRight;
    Value lowerLeft;
    Value lowerRight;

    Weights(Value u, Value v)
        : upperLeft((all<Value>(1.0F) - u) * (all<Value>(1.0F) - v)),
          upperRight(u * (all<Value>(1.0F) - v)),
          lowerLeft((all<Value>(1.0F) - u) * v),
          lowerRight(u * v) {}

    Value sum(Value s00, Value s01, Value s10, Value s11) const {
        return (s00 * upperLeft + s01 * upperRight) + (s10 * lowerLeft + s11 * lowerRight);
    }
};

template <class T, int channels>
void sampleOne(Image<const T> src, Place<float> place, const Inside& inside, T* dst) {
    if (!inside(place)) return;
    const int column = truncatedIndex(place.x);
    const int row = truncatedIndex(place.y);
    const Weights<float> weights(place.x - static_cast<float>(column), place.y - static_cast<float>(row));
    const T* upper = src.row(row) + static_cast<std::ptrdiff_t>(column) * channels;
    const T* lower = src.row(row + 1) + static_cast<std::ptrdiff_t>(column) * channels;
    for (int c = 0; c < channels; ++c) {
        const float value =
            weights.sum(static_cast<float>(upper[c]), static_cast<float>(upper[c + channels]),
                        static_cast<float>(lower[c]), static_cast<float>(lower[c + channels]));
        if constexpr (std::is_integral_v<T>)
            dst[c] = halfUpTruncated<T>(value);
        else
            dst[c] = value;
    }
}

/// Elements anywhere in memory as one integer.
template <class Integer> int loadBits(const void* place) {
    Integer bits;
    std::memcpy(&bits, place, sizeof(bits));
    return static_cast<int>(bits);
}

/// Neighbours in a row, one pair to each element: the left ones and the right ones.
struct Pairs {
    Float4 left;
    Float4 right;
};

// The four pixels of a group lie anywhere, one to a lane: these loads put vectors of 16 bytes together, lane by lane, in
// every build.
Pairs loadPairs(const Lum8u* p, const Lum8u* q, const Lum8u* r, const Lum8u* s) {
    __m128i bits = _mm_cvtsi32_si128(loadBits<Lum16u>(p));
    bits = _mm_insert_epi16(bits, loadBits<Lum16u>(q), 2);
    bits = _mm_insert_epi16(bits, loadBits<Lum16u>(r), 4);
    bits = _mm_insert_epi16(bits, loadBits<Lum16u>(s), 6);
    const auto pairs = blockOf<Lum32s, 4>(bits);
    return {toFloat(pairs & broadcast<4>(0xFF)), toFloat(pairs >> 8)};
}

Pairs loadPairs(const Lum16u* p, const Lum16u* q, const Lum16u* r, const Lum16u* s) {
    const auto pair = [](const Lum16u* place) { return _mm_cvtsi32_si128(loadBits<Lum32s>(place)); };
    const auto pairs = blockOf<std::uint32_t, 4>(
        _mm_unpacklo_epi64(_mm_unpacklo_epi32(pair(p), pair(q)), _mm_unpacklo_epi32(pair(r), pair(s))));
    const auto left = pairs & broadcast<4>(std::uint32_t{0xFFFF});
    return {toFloat(bitsAs<Lum32s>(left)), toFloat(bitsAs<Lum32s>(pairs >> 16))};
}

Pairs loadPairs(const Lum32f* p, const Lum32f* q, const Lum32f* r, const Lum32f* s) {
    const auto two = [](const Lum32f* first, const Lum32f* second) {
        const auto half = [](const Lum32f* place) {
            return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(place));
        };
        return _mm_castsi128_ps(_mm_unpacklo_epi64(half(first), half(second)));
    };
    return {{_mm_shuffle_ps(two(p, q), two(r, s), _MM_SHUFFLE(2, 0, 2, 0))},
            {_mm_shuffle_ps(two(p, q), two(r, s), _MM_SHUFFLE(3, 1, 3, 1))}};
}

// Two neighbouring pixels of three channels are six elements; the loads stay within them, and the fourth element is any
// value.
Pairs loadC3(const Lum8u* p) {
    const auto right = bitsAs<Lum8u>(bitsAs<std::uint32_t>(load<4>(p + 2)) >> 8);
    return {toFloat(load<4>(p)), toFloat(right)};
}

Pairs loadC3(const Lum16u* p) {
    const auto right = bitsAs<Lum16u>(bitsAs<std::uint64_t>(load<4>(p + 2)) >> 16);
    return {toFloat(load<4>(p)), toFloat(right)};
}

Pairs loadC3(const Lum32f* p) {
    const __m128i right = _mm_srli_si128(rawInteger(load<4>(p + 2).v), 4);
    return {load<4>(p), blockOf<float, 4>(right)};
}

/// Four results as elements, the first ones of the vector.
template <class T> auto asElements(Float4 results) {
    if constexpr (std::is_integral_v<T>) {
        constexpr Lum8u none = 0x80;
        alignas(16) static constexpr Lum8u lowBytes[16] = {0,    4,    8,    12,   none, none, none, none,
                                                           none, none, none, none, none, none, none, none};
        alignas(16) static constexpr Lum8u lowWords[16] = {0,    1,    4,    5,    8,    9,    12,   13,
                                                           none, none, none, none, none, none, none, none};
        const auto bytes = bitsAs<Lum8u>(halfUpTruncated<T>(results));
        return bitsAs<T>(shuffleUnits(bytes, load<16>(sizeof(T) == 1 ? lowBytes : lowWords)));
    } else {
        return results;
    }
}

constexpr unsigned allFour = 15;

/// Four pixels of one channel; `taken` has a bit for each that lies inside.
template <class T> LUM_LANE void storeTaken(Float4 results, unsigned taken, T* dst) {
    alignas(16) T elements[16 / sizeof(T)];
    store(asElements<T>(results), elements);
    if (taken == allFour)
        std::memcpy(dst, elements, 4 * sizeof(T));
    else
        for (int i = 0; i < 4; ++i)
            if (taken >> i & 1) dst[i] = elements[i];
}

// Inline in the loop over a row, or the four places would go through memory.
template <class T, int channels>
LUM_LANE void sampleFour(Image<const T> src, const Place<Float4>& place, const Inside& inside, T* dst) {
    const auto mask = inside(place);
    const unsigned taken = signBits(mask);
    if (taken == 0) return;
    // Pixels that are not taken read at (0, 0), which lies in every source that has a place inside.
    const Float4 x = place.x & bitsAs<float>(mask);
    const Float4 y = place.y & bitsAs<float>(mask);
    const auto column = truncated(x);
    const auto row = truncated(y);
    const Float4 u = x - toFloat(column);
    const Float4 v = y - toFloat(row);

    alignas(16) int columns[4];
    alignas(16) int rows[4];
    store(column, columns);
    store(row, rows);
    const auto upper = [&](int i) {
        return src.row(rows[i]) + static_cast<std::ptrdiff_t>(columns[i]) * channels;
    };
    const auto lower = [&](const T* pixel) { return Image<const T>(pixel, src.step).row(1); };

    // The next row of the result reads one row further down, along a curve that the hardware does not predict.
    __builtin_prefetch(lower(lower(upper(0))));

    if constexpr (channels == 1) {
        const T* p = upper(0);
        const T* q = upper(1);
        const T* r = upper(2);
        const T* s = upper(3);
        const Pairs above = loadPairs(p, q, r, s);
        const Pairs below = loadPairs(lower(p), lower(q), lower(r), lower(s));
        const Weights<Float4> weights(u, v);
        storeTaken<T>(weights.sum(above.left, above.right, below.left, below.right), taken, dst);
    } else {
        alignas(16) float fractionsX[4];
        alignas(16) float fractionsY[4];
        store(u, fractionsX);
        store(v, fractionsY);
        for (int i = 0; i < 4; ++i) {
            if (!(taken >> i & 1)) continue;
            const T* pixel = upper(i);
            const Pairs above = loadC3(pixel);
            const Pairs below = loadC3(lower(pixel));
            const Weights<Float4> weights(broadcast<4>(fractionsX[i]), broadcast<4>(fractionsY[i]));
            alignas(16) T elements[16 / sizeof(T)];
            store(asElements<T>(weights.sum(above.left, above.right, below.left, below.right)), elements);
            std::memcpy(dst + 3 * i, elements, 3 * sizeof(T));
        }
    }
}

template <Stores stores, class Model, class Columns>
void mapRows(const Model& model, const Columns& columns, Image<Lum32f> xMap, Image<Lum32f> yMap,
             LumSize size) {
    for (int y = 0; y < size.height; ++y) {
        float* xRow = xMap.row(y);
        float* yRow = yMap.row(y);
        const auto row = model.row(y);
        int x = 0;
        // 16 pixels per iteration
        for (; x <= size.width - 16; x += 16)
            forVectors<float, 16>([&]<int n>(int i) LUM_INLINED {
                const auto place = model.place(columns.template at<Block<float, n>>(x + i), row);
                store<stores>(place.x, xRow + x + i);
                store<stores>(place.y, yRow + x + i);
            });
        // 4 pixels per iteration
        for (; x <= size.width - 4; x += 4) {
            const auto place = model.place(columns.template at<Float4>(x), row);
            store(place.x, xRow + x);
            store(place.y, yRow + x);
        }
        // tail: scalar, one pixel at a time
        for (; x < size.width; ++x) {
            const Place<float> place = model.place(columns.template at<float>(x), row);
            xRow[x] = place.x;
            yRow[x] = place.y;
        }
    }
    if constexpr (stores == Stores::streaming) storeFence();
}

} // namespace

template <class Model>
void mapScalar(const Model& model, Image<Lum32f> xMap, Image<Lum32f> yMap, LumSize size) {
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) {
            const Place<float> place = model.place(model.template column<float>(x), model.row(y));
            xMap.row(y)[x] = place.x;
            yMap.row(y)[x] = place.y;
        }
}

template <class Model, class Columns>
void map(const Model& model, const Columns& columns, Image<Lum32f> xMap, Image<Lum32f> yMap, LumSize size,
         Stores stores) {
    if (stores == Stores::streaming && isStreamable(xMap) && isStreamable(yMap))
        mapRows<Stores::streaming>(model, columns, xMap, yMap, size);
    else
        mapRows<Stores::ordinary>(model, columns, xMap, yMap, size);
}

template <class T, int channels>
void undistortScalar(const RadialModel& model, Image<const T> src, Image<T> dst, LumSize size) {
    const Inside inside(size);
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x)
            sampleOne<T, channels>(src, model.place(model.column<float>(x), model.row(y)), inside,
                                   dst.row(y) + static_cast<std::ptrdiff_t>(x) * channels);
}

template <class T, int channels, class Columns>
void undistort(const RadialModel& model, const Columns& columns, Image<const T> src, Image<T> dst,
               LumSize size) {
    const Inside inside(size);
    const auto& inLoop = columns.inLoop();
    for (int y = 0; y < size.height; ++y) {
        const RadialModel::Row row = model.row(y);
        T* result = dst.row(y);
        int x = 0;
        // 4 pixels per iteration
        for (; x <= size.width - 4; x += 4, result += 4 * channels)
            sampleFour<T, channels>(src, model.place(inLoop.template at<Float4>(x), row), inside, result);
        // tail: scalar, one pixel at a time
        for (; x < size.width; ++x, result += channels)
            sampleOne<T, channels>(src, model.place(inLoop.template at<float>(x), row), inside, result);
    }
}

LUM_INSTANCES(mapScalar, (RadialModel), (TangentialModel));
LUM_INSTANCES(map, (RadialModel, ComputedColumns<RadialModel>), (RadialModel, PreparedColumns<RadialModel>),
              (TangentialModel, ComputedColumns<TangentialModel>),
              (TangentialModel, PreparedColumns<TangentialModel>));
LUM_INSTANCES(undistortScalar, (Lum8u, 1), (Lum8u, 3), (Lum16u, 1), (Lum16u, 3), (Lum32f, 1), (Lum32f, 3));
using Computed = ComputedColumns<RadialModel>;
using Prepared = PreparedColumns<RadialModel>;
LUM_INSTANCES(undistort, (Lum8u, 1, Computed), (Lum8u, 3, Computed), (Lum16u, 1, Computed),
              (Lum16u, 3, Computed), (Lum32f, 1, Computed), (Lum32f, 3, Computed), (Lum8u, 1, Prepared),
              (Lum8u, 3, Prepared), (Lum16u, 1, Prepared), (Lum16u, 3, Prepared), (Lum32f, 1, Prepared),
              (Lum32f, 3, Prepared));

} // namespace lum::kernels

#include "kernels/geometry/undistort.h"

#include <cstring>
#include <type_traits>

#include "frame/convert.h"
#include "frame/vector.h"

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

    __m128 operator()(const Place<Float4>& p) const {
        const __m128 zero = _mm_setzero_ps();
        const __m128 x =
            _mm_and_ps(_mm_cmpge_ps(p.x.lanes, zero), _mm_cmplt_ps(p.x.lanes, _mm_set1_ps(lastX)));
        const __m128 y =
            _mm_and_ps(_mm_cmpge_ps(p.y.lanes, zero), _mm_cmplt_ps(p.y.lanes, _mm_set1_ps(lastY)));
        return _mm_and_ps(x, y);
    }
};

/// The weights of the four pixels around a place: upper left and right, lower left and right.
template <class Value> struct Weights {
    Value upperLeft;
    Value upperRight;
    Value lowerLeft;
    Value lowerRight;

    Weights(Value u, Value v)
        : upperLeft((Value(1.0F) - u) * (Value(1.0F) - v)),
          upperRight(u * (Value(1.0F) - v)),
          lowerLeft((Value(1.0F) - u) * v),
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

/// Neighbours in a row, one pair to each lane: the left ones and the right ones.
struct Pairs {
    Float4 left;
    Float4 right;
};

Pairs loadPairs(const Lum8u* p, const Lum8u* q, const Lum8u* r, const Lum8u* s) {
    __m128i pairs = _mm_cvtsi32_si128(loadBits<Lum16u>(p));
    pairs = _mm_insert_epi16(pairs, loadBits<Lum16u>(q), 2);
    pairs = _mm_insert_epi16(pairs, loadBits<Lum16u>(r), 4);
    pairs = _mm_insert_epi16(pairs, loadBits<Lum16u>(s), 6);
    return {_mm_cvtepi32_ps(_mm_and_si128(pairs, _mm_set1_epi32(0xFF))),
            _mm_cvtepi32_ps(_mm_srli_epi32(pairs, 8))};
}

Pairs loadPairs(const Lum16u* p, const Lum16u* q, const Lum16u* r, const Lum16u* s) {
    const auto pair = [](const Lum16u* place) { return _mm_cvtsi32_si128(loadBits<Lum32s>(place)); };
    const __m128i pairs =
        _mm_unpacklo_epi64(_mm_unpacklo_epi32(pair(p), pair(q)), _mm_unpacklo_epi32(pair(r), pair(s)));
    return {_mm_cvtepi32_ps(_mm_and_si128(pairs, _mm_set1_epi32(0xFFFF))),
            _mm_cvtepi32_ps(_mm_srli_epi32(pairs, 16))};
}

Pairs loadPairs(const Lum32f* p, const Lum32f* q, const Lum32f* r, const Lum32f* s) {
    const __m128 first = _mm_castsi128_ps(_mm_unpacklo_epi64(loadHalf(p), loadHalf(q)));
    const __m128 second = _mm_castsi128_ps(_mm_unpacklo_epi64(loadHalf(r), loadHalf(s)));
    return {_mm_shuffle_ps(first, second, _MM_SHUFFLE(2, 0, 2, 0)),
            _mm_shuffle_ps(first, second, _MM_SHUFFLE(3, 1, 3, 1))};
}

// Two neighbouring pixels of three channels are six elements; the loads stay within them, and the fourth lane
// is any value.
Pairs loadC3(const Lum8u* p) {
    const __m128i zero = _mm_setzero_si128();
    const auto widened = [&](__m128i bytes) {
        return _mm_cvtepi32_ps(_mm_unpacklo_epi16(_mm_unpacklo_epi8(bytes, zero), zero));
    };
    const __m128i left = _mm_cvtsi32_si128(loadBits<Lum32s>(p));
    const __m128i right = _mm_cvtsi32_si128(loadBits<Lum32s>(p + 2));
    return {widened(left), widened(_mm_srli_epi32(right, 8))};
}

Pairs loadC3(const Lum16u* p) {
    const __m128i zero = _mm_setzero_si128();
    const auto widened = [&](__m128i words) { return _mm_cvtepi32_ps(_mm_unpacklo_epi16(words, zero)); };
    return {widened(loadHalf(p)), widened(_mm_srli_epi64(loadHalf(p + 2), 16))};
}

Pairs loadC3(const Lum32f* p) {
    const __m128i right = loadVector<Access::unaligned>(p + 2);
    return {_mm_loadu_ps(p), _mm_castsi128_ps(_mm_srli_si128(right, 4))};
}

/// The low byte or word of each lane, next to one another in the low lanes.
template <class T> __m128i narrowed(__m128i values) {
    if constexpr (sizeof(T) == 1)
        return _mm_shuffle_epi8(values,
                                _mm_setr_epi8(0, 4, 8, 12, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1));
    else
        return _mm_shuffle_epi8(values,
                                _mm_setr_epi8(0, 1, 4, 5, 8, 9, 12, 13, -1, -1, -1, -1, -1, -1, -1, -1));
}

/// Float4 results as elements, in the low lanes.
template <class T> __m128i asElements(const Float4& results) {
    if constexpr (std::is_integral_v<T>)
        return narrowed<T>(halfUpTruncated<T>(results.lanes));
    else
        return _mm_castps_si128(results.lanes);
}

constexpr int allFour = 15;

/// Float4 pixels of one channel; `taken` has a bit for each that lies inside.
template <class T> void storeTaken(const Float4& results, int taken, T* dst) {
    alignas(16) T elements[16 / sizeof(T)];
    storeVector<Access::aligned>(elements, asElements<T>(results));
    if (taken == allFour)
        std::memcpy(dst, elements, 4 * sizeof(T));
    else
        for (int i = 0; i < 4; ++i)
            if (taken >> i & 1) dst[i] = elements[i];
}

// Inline in the loop over a row, or the four places would go through memory.
template <class T, int channels>
[[gnu::always_inline]] inline void sampleFour(Image<const T> src, const Place<Float4>& place,
                                              const Inside& inside, T* dst) {
    const __m128 mask = inside(place);
    const int taken = _mm_movemask_ps(mask);
    if (taken == 0) return;
    // Pixels that are not taken read at (0, 0), which lies in every source that has a place inside.
    const __m128 x = _mm_and_ps(place.x.lanes, mask);
    const __m128 y = _mm_and_ps(place.y.lanes, mask);
    const __m128i column = truncatedIndex(x);
    const __m128i row = truncatedIndex(y);
    const Float4 u = _mm_sub_ps(x, _mm_cvtepi32_ps(column));
    const Float4 v = _mm_sub_ps(y, _mm_cvtepi32_ps(row));

    alignas(16) int columns[4];
    alignas(16) int rows[4];
    storeVector<Access::aligned>(columns, column);
    storeVector<Access::aligned>(rows, row);
    const auto upper = [&](int i) {
        return src.row(rows[i]) + static_cast<std::ptrdiff_t>(columns[i]) * channels;
    };
    const auto lower = [&](const T* pixel) { return Image<const T>(pixel, src.step).row(1); };

    // The next row of the result reads one row further down, along a curve that the hardware does not predict.
    _mm_prefetch(reinterpret_cast<const char*>(lower(lower(upper(0)))), _MM_HINT_T0);

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
        storeFloats<Access::aligned>(fractionsX, u.lanes);
        storeFloats<Access::aligned>(fractionsY, v.lanes);
        for (int i = 0; i < 4; ++i) {
            if (!(taken >> i & 1)) continue;
            const T* pixel = upper(i);
            const Pairs above = loadC3(pixel);
            const Pairs below = loadC3(lower(pixel));
            const Weights<Float4> weights(fractionsX[i], fractionsY[i]);
            const Float4 sum = weights.sum(above.left, above.right, below.left, below.right);
            alignas(16) T elements[16 / sizeof(T)];
            storeVector<Access::aligned>(elements, asElements<T>(sum));
            std::memcpy(dst + 3 * i, elements, 3 * sizeof(T));
        }
    }
}

template <Access access, Stores stores, class Model, class Columns>
void mapRows(const Model& model, const Columns& columns, Image<Lum32f> xMap, Image<Lum32f> yMap,
             LumSize size) {
    for (int y = 0; y < size.height; ++y) {
        float* xRow = xMap.row(y);
        float* yRow = yMap.row(y);
        const auto row = model.row(y);
        int x = 0;
        // 4 pixels per iteration
        for (; x <= size.width - 4; x += 4) {
            const Place<Float4> place = model.place(columns.template at<Float4>(x), row);
            storeFloats<access, stores>(xRow + x, place.x.lanes);
            storeFloats<access, stores>(yRow + x, place.y.lanes);
        }
        // tail, one pixel at a time
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
    if (!alignedForVectors(xMap, yMap))
        mapRows<Access::unaligned, Stores::ordinary>(model, columns, xMap, yMap, size);
    else if (stores == Stores::ordinary)
        mapRows<Access::aligned, Stores::ordinary>(model, columns, xMap, yMap, size);
    else
        mapRows<Access::aligned, Stores::streaming>(model, columns, xMap, yMap, size);
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
    for (int y = 0; y < size.height; ++y) {
        const RadialModel::Row row = model.row(y);
        T* result = dst.row(y);
        int x = 0;
        // 4 pixels per iteration
        for (; x <= size.width - 4; x += 4, result += 4 * channels)
            sampleFour<T, channels>(src, model.place(columns.template at<Float4>(x), row), inside, result);
        // tail, one pixel at a time
        for (; x < size.width; ++x, result += channels)
            sampleOne<T, channels>(src, model.place(columns.template at<float>(x), row), inside, result);
    }
}

template decltype(mapScalar<RadialModel>) mapScalar<RadialModel>;
template decltype(mapScalar<TangentialModel>) mapScalar<TangentialModel>;
template decltype(map<RadialModel, ComputedColumns<RadialModel>>)
    map<RadialModel, ComputedColumns<RadialModel>>;
template decltype(map<RadialModel, PreparedColumns<RadialModel>>)
    map<RadialModel, PreparedColumns<RadialModel>>;
template decltype(map<TangentialModel, ComputedColumns<TangentialModel>>)
    map<TangentialModel, ComputedColumns<TangentialModel>>;
template decltype(map<TangentialModel, PreparedColumns<TangentialModel>>)
    map<TangentialModel, PreparedColumns<TangentialModel>>;

template decltype(undistortScalar<Lum8u, 1>) undistortScalar<Lum8u, 1>;
template decltype(undistortScalar<Lum8u, 3>) undistortScalar<Lum8u, 3>;
template decltype(undistortScalar<Lum16u, 1>) undistortScalar<Lum16u, 1>;
template decltype(undistortScalar<Lum16u, 3>) undistortScalar<Lum16u, 3>;
template decltype(undistortScalar<Lum32f, 1>) undistortScalar<Lum32f, 1>;
template decltype(undistortScalar<Lum32f, 3>) undistortScalar<Lum32f, 3>;

using Computed = ComputedColumns<RadialModel>;
template decltype(undistort<Lum8u, 1, Computed>) undistort<Lum8u, 1, Computed>;
template decltype(undistort<Lum8u, 3, Computed>) undistort<Lum8u, 3, Computed>;
template decltype(undistort<Lum16u, 1, Computed>) undistort<Lum16u, 1, Computed>;
template decltype(undistort<Lum16u, 3, Computed>) undistort<Lum16u, 3, Computed>;
template decltype(undistort<Lum32f, 1, Computed>) undistort<Lum32f, 1, Computed>;
template decltype(undistort<Lum32f, 3, Computed>) undistort<Lum32f, 3, Computed>;

using Prepared = PreparedColumns<RadialModel>;
template decltype(undistort<Lum8u, 1, Prepared>) undistort<Lum8u, 1, Prepared>;
template decltype(undistort<Lum8u, 3, Prepared>) undistort<Lum8u, 3, Prepared>;
template decltype(undistort<Lum16u, 1, Prepared>) undistort<Lum16u, 1, Prepared>;
template decltype(undistort<Lum16u, 3, Prepared>) undistort<Lum16u, 3, Prepared>;
template decltype(undistort<Lum32f, 1, Prepared>) undistort<Lum32f, 1, Prepared>;
template decltype(undistort<Lum32f, 3, Prepared>) undistort<Lum32f, 3, Prepared>;

} // namespace lum::kernels

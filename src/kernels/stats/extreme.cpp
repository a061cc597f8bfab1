#include "kernels/stats/extreme.h"

#include <type_traits>

namespace lum::kernels {
namespace {

__m128i minimum(__m128 candidates, __m128 best) { return _mm_castps_si128(_mm_min_ps(candidates, best)); }
__m128i maximum(__m128 candidates, __m128 best) { return _mm_castps_si128(_mm_max_ps(candidates, best)); }

/// Values in lanes that the vector instructions can compare: those know signed 16-bit lanes only, so the order of
/// unsigned ones is shifted by half their range.
template <class T> __m128i comparable(__m128i values) {
    if constexpr (std::is_same_v<T, Lum16u>)
        return _mm_xor_si128(values, _mm_set1_epi16(static_cast<short>(0x8000)));
    else
        return values;
}

/// The lowest element of comparable lanes, as a value.
template <class T> T firstElement(__m128i lanes) {
    const int bits = _mm_cvtsi128_si32(comparable<T>(lanes));
    T value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

template <class T> __m128i broadcast(T value) {
    if constexpr (std::is_same_v<T, Lum8u>)
        return _mm_set1_epi8(static_cast<char>(value));
    else if constexpr (std::is_same_v<T, Lum16u>)
        return comparable<T>(_mm_set1_epi16(static_cast<short>(value)));
    else
        return _mm_castps_si128(_mm_set1_ps(value));
}

/// Toward smaller values. Equal lanes and NaN candidates leave the best as it is, bit for bit.
template <class T> struct Lowest {
    static constexpr T start = lowestStart<T>;

    static __m128i better(__m128i candidates, __m128i best) {
        if constexpr (std::is_same_v<T, Lum8u>)
            return _mm_min_epu8(candidates, best);
        else if constexpr (std::is_same_v<T, Lum16u>)
            return _mm_min_epi16(candidates, best);
        else
            return minimum(_mm_castsi128_ps(candidates), _mm_castsi128_ps(best));
    }
    /// All ones is the largest integer, and NaN.
    static __m128i without(__m128i excluded, __m128i values) { return _mm_or_si128(excluded, values); }
};

/// Toward larger values.
template <class T> struct Highest {
    static constexpr T start = highestStart<T>;

    static __m128i better(__m128i candidates, __m128i best) {
        if constexpr (std::is_same_v<T, Lum8u>)
            return _mm_max_epu8(candidates, best);
        else if constexpr (std::is_same_v<T, Lum16u>)
            return _mm_max_epi16(candidates, best);
        else
            return maximum(_mm_castsi128_ps(candidates), _mm_castsi128_ps(best));
    }
    static __m128i without(__m128i excluded, __m128i values) {
        return std::is_integral_v<T> ? _mm_andnot_si128(excluded, values) : _mm_or_si128(excluded, values);
    }
};

/// The search in one direction. Two vectors of candidates run side by side, because floats take four cycles to
/// compare. They start at the best value found so far in all lanes, so a row that holds nothing better leaves
/// them as they were: the row is looked at once after its end, and no index is carried through it.
template <class T, class Direction> struct Search {
    int row;
    T value = Direction::start;
    __m128i best = broadcast(value);
    __m128i even = best;
    __m128i odd = best;

    explicit Search(int firstRow) : row(firstRow) {}

    void endRow(int y) {
        __m128i lanes = Direction::better(odd, even);
        if (_mm_movemask_epi8(_mm_cmpeq_epi8(lanes, best)) == 0xFFFF) return;
        lanes = Direction::better(_mm_srli_si128(lanes, 8), lanes);
        lanes = Direction::better(_mm_srli_si128(lanes, 4), lanes);
        if constexpr (sizeof(T) <= 2) lanes = Direction::better(_mm_srli_si128(lanes, 2), lanes);
        if constexpr (sizeof(T) == 1) lanes = Direction::better(_mm_srli_si128(lanes, 1), lanes);
        value = firstElement<T>(lanes);
        row = y;
        best = even = odd = broadcast(value);
    }
};

template <Sides sides, class T, int channels, class Selection>
Extremes<T> vectorRows(const Pixels<T, channels>& pixels, const Selection& selection, LumSize size,
                       int firstRow) {
    constexpr int lanes = lanesOf<T>;
    const PixelVectors<T, channels> vectors(pixels);
    Search<T, Lowest<T>> low(firstRow);
    Search<T, Highest<T>> high(firstRow);

    const auto look = [&](const T* row, int x, __m128i excluded, __m128i& lowest, __m128i& highest) {
        __m128i forLowest = vectors.at(row, x);
        __m128i forHighest = forLowest;
        if constexpr (Selection::isMask) {
            forLowest = Lowest<T>::without(excluded, forLowest);
            forHighest = Highest<T>::without(excluded, forHighest);
        }
        if constexpr (includes(sides, Sides::lowest))
            lowest = Lowest<T>::better(comparable<T>(forLowest), lowest);
        if constexpr (includes(sides, Sides::highest))
            highest = Highest<T>::better(comparable<T>(forHighest), highest);
    };

    for (int y = firstRow; y < size.height; ++y) {
        const T* row = pixels.row(y);
        const auto selected = selection.row(y);
        int x = 0;
        // two vectors per iteration
        for (; x <= size.width - 2 * lanes; x += 2 * lanes) {
            const VectorPair excluded = selected.template excludedInTwo<T>(x);
            look(row, x, excluded.even, low.even, high.even);
            look(row, x + lanes, excluded.odd, low.odd, high.odd);
        }
        // one more whole vector
        if (x <= size.width - lanes) look(row, x, selected.template excluded<T>(x), low.even, high.even);
        // the last pixels of the row, some of them for the second time
        if (const int last = size.width - lanes; size.width % lanes != 0)
            look(row, last, selected.template excluded<T>(last), low.odd, high.odd);
        if constexpr (includes(sides, Sides::lowest)) low.endRow(y);
        if constexpr (includes(sides, Sides::highest)) high.endRow(y);
    }
    return {low.value, high.value, low.row, high.row};
}

} // namespace

template <class T, int channels, class Selection>
Extremes<T> extremesScalar(const Pixels<T, channels>& pixels, const Selection& selection, LumSize size,
                           Sides sides, int firstRow) {
    const bool wantsLowest = includes(sides, Sides::lowest);
    const bool wantsHighest = includes(sides, Sides::highest);
    Extremes<T> found;
    found.lowestRow = found.highestRow = firstRow;
    for (int y = firstRow; y < size.height; ++y) {
        const T* row = pixels.row(y);
        const auto selected = selection.row(y);
        for (int x = 0; x < size.width; ++x) {
            // One condition, so that its branch is seldom taken; one on the mask alone could not be predicted.
            const unsigned isSelected = selected.selects(x);
            const T value = pixels.at(row, x);
            if ((isSelected & wantsLowest & (value < found.lowest)) != 0) {
                found.lowest = value;
                found.lowestRow = y;
            }
            if ((isSelected & wantsHighest & (value > found.highest)) != 0) {
                found.highest = value;
                found.highestRow = y;
            }
        }
    }
    return found;
}

template <class T, int channels, class Selection>
Extremes<T> extremes(const Pixels<T, channels>& pixels, const Selection& selection, LumSize size, Sides sides,
                     int firstRow) {
    if (size.width < lanesOf<T>) return extremesScalar(pixels, selection, size, sides, firstRow);
    switch (sides) {
    case Sides::lowest:
        return vectorRows<Sides::lowest>(pixels, selection, size, firstRow);
    case Sides::highest:
        return vectorRows<Sides::highest>(pixels, selection, size, firstRow);
    case Sides::both:
        break;
    }
    return vectorRows<Sides::both>(pixels, selection, size, firstRow);
}

template <class T, int channels, class Selection>
LumPoint firstPlace(const Pixels<T, channels>& pixels, const Selection& selection, LumSize size, T value,
                    int fromRow) {
    for (int y = fromRow; y < size.height; ++y) {
        const T* row = pixels.row(y);
        const auto selected = selection.row(y);
        for (int x = 0; x < size.width; ++x)
            if (pixels.at(row, x) == value && selected.selects(x)) return {x, y};
    }
    return {-1, 0};
}

int firstSelectedRow(Image<const Lum8u> mask, LumSize size) {
    for (int y = 0; y < size.height; ++y) {
        const Lum8u* bytes = mask.row(y);
        int x = 0;
        // 16 bytes per iteration
        for (; x <= size.width - 16; x += 16)
            if (_mm_movemask_epi8(excludedLanes<Lum8u>(bytes + x)) != 0xFFFF) return y;
        // tail, one byte at a time
        for (; x < size.width; ++x)
            if (bytes[x] != 0) return y;
    }
    return size.height;
}

template decltype(extremesScalar<Lum8u, 1, AllPixels>) extremesScalar<Lum8u, 1, AllPixels>;
template decltype(extremesScalar<Lum8u, 1, MaskedPixels>) extremesScalar<Lum8u, 1, MaskedPixels>;
template decltype(extremesScalar<Lum8u, 3, AllPixels>) extremesScalar<Lum8u, 3, AllPixels>;
template decltype(extremesScalar<Lum8u, 3, MaskedPixels>) extremesScalar<Lum8u, 3, MaskedPixels>;
template decltype(extremesScalar<Lum16u, 1, AllPixels>) extremesScalar<Lum16u, 1, AllPixels>;
template decltype(extremesScalar<Lum16u, 1, MaskedPixels>) extremesScalar<Lum16u, 1, MaskedPixels>;
template decltype(extremesScalar<Lum16u, 3, AllPixels>) extremesScalar<Lum16u, 3, AllPixels>;
template decltype(extremesScalar<Lum16u, 3, MaskedPixels>) extremesScalar<Lum16u, 3, MaskedPixels>;
template decltype(extremesScalar<Lum32f, 1, AllPixels>) extremesScalar<Lum32f, 1, AllPixels>;
template decltype(extremesScalar<Lum32f, 1, MaskedPixels>) extremesScalar<Lum32f, 1, MaskedPixels>;
template decltype(extremesScalar<Lum32f, 3, AllPixels>) extremesScalar<Lum32f, 3, AllPixels>;
template decltype(extremesScalar<Lum32f, 3, MaskedPixels>) extremesScalar<Lum32f, 3, MaskedPixels>;
template decltype(extremes<Lum8u, 1, AllPixels>) extremes<Lum8u, 1, AllPixels>;
template decltype(extremes<Lum8u, 1, MaskedPixels>) extremes<Lum8u, 1, MaskedPixels>;
template decltype(extremes<Lum8u, 3, AllPixels>) extremes<Lum8u, 3, AllPixels>;
template decltype(extremes<Lum8u, 3, MaskedPixels>) extremes<Lum8u, 3, MaskedPixels>;
template decltype(extremes<Lum16u, 1, AllPixels>) extremes<Lum16u, 1, AllPixels>;
template decltype(extremes<Lum16u, 1, MaskedPixels>) extremes<Lum16u, 1, MaskedPixels>;
template decltype(extremes<Lum16u, 3, AllPixels>) extremes<Lum16u, 3, AllPixels>;
template decltype(extremes<Lum16u, 3, MaskedPixels>) extremes<Lum16u, 3, MaskedPixels>;
template decltype(extremes<Lum32f, 1, AllPixels>) extremes<Lum32f, 1, AllPixels>;
template decltype(extremes<Lum32f, 1, MaskedPixels>) extremes<Lum32f, 1, MaskedPixels>;
template decltype(extremes<Lum32f, 3, AllPixels>) extremes<Lum32f, 3, AllPixels>;
template decltype(extremes<Lum32f, 3, MaskedPixels>) extremes<Lum32f, 3, MaskedPixels>;
template decltype(firstPlace<Lum8u, 1, AllPixels>) firstPlace<Lum8u, 1, AllPixels>;
template decltype(firstPlace<Lum8u, 1, MaskedPixels>) firstPlace<Lum8u, 1, MaskedPixels>;
template decltype(firstPlace<Lum8u, 3, AllPixels>) firstPlace<Lum8u, 3, AllPixels>;
template decltype(firstPlace<Lum8u, 3, MaskedPixels>) firstPlace<Lum8u, 3, MaskedPixels>;
template decltype(firstPlace<Lum16u, 1, AllPixels>) firstPlace<Lum16u, 1, AllPixels>;
template decltype(firstPlace<Lum16u, 1, MaskedPixels>) firstPlace<Lum16u, 1, MaskedPixels>;
template decltype(firstPlace<Lum16u, 3, AllPixels>) firstPlace<Lum16u, 3, AllPixels>;
template decltype(firstPlace<Lum16u, 3, MaskedPixels>) firstPlace<Lum16u, 3, MaskedPixels>;
template decltype(firstPlace<Lum32f, 1, AllPixels>) firstPlace<Lum32f, 1, AllPixels>;
template decltype(firstPlace<Lum32f, 1, MaskedPixels>) firstPlace<Lum32f, 1, MaskedPixels>;
template decltype(firstPlace<Lum32f, 3, AllPixels>) firstPlace<Lum32f, 3, AllPixels>;
template decltype(firstPlace<Lum32f, 3, MaskedPixels>) firstPlace<Lum32f, 3, MaskedPixels>;

} // namespace lum::kernels

#include "kernels/stats/norm.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <type_traits>

#include "kernels/stats/norm_totals.h"

namespace lum::kernels {
namespace {

/// Integers as magnitudes, floats with their sign.
template <class T> T difference(T a, T b) {
    if constexpr (std::is_integral_v<T>)
        return static_cast<T>(a > b ? a - b : b - a);
    else
        return a - b;
}

template <class T> __m128i differences(__m128i a, __m128i b) {
    // One of the two differences that saturate at zero is always 0.
    if constexpr (std::is_same_v<T, Lum8u>)
        return _mm_or_si128(_mm_subs_epu8(a, b), _mm_subs_epu8(b, a));
    else if constexpr (std::is_same_v<T, Lum16u>)
        return _mm_or_si128(_mm_subs_epu16(a, b), _mm_subs_epu16(b, a));
    else
        return _mm_castps_si128(_mm_sub_ps(_mm_castsi128_ps(a), _mm_castsi128_ps(b)));
}

/// The value of a pixel that counts, and 0 of one that does not: adding it changes no sum.
template <class T> T counted(T value, Lum8u selected) {
    using Bits = std::conditional_t<std::is_integral_v<T>, T, std::uint32_t>;
    const auto bits = std::bit_cast<Bits>(value);
    return std::bit_cast<T>(static_cast<Bits>(bits & (0U - static_cast<unsigned>(selected != 0))));
}

/// All ones but in the last `count` lanes.
template <class T> __m128i allLanesButLast(int count) {
    alignas(16) static constexpr auto onesThenZeros = [] {
        std::array<unsigned char, 32> bytes{};
        for (int i = 0; i < 16; ++i) bytes[i] = 0xFF;
        return bytes;
    }();
    return loadVector<Access::unaligned>(onesThenZeros.data() + count * sizeof(T));
}

template <NormOf of, NormKind kind, class T, int channels>
NormTotals scalarRows(const Pixels<T, channels>& first, const Pixels<T, channels>& second,
                      Image<const Lum8u> mask, LumSize size) {
    NormTotal<kind, T> ofFirst;
    NormTotal<kind, T> ofSecond;
    for (int y = 0; y < size.height; ++y) {
        const T* a = first.row(y);
        const T* b = second.row(y);
        const Lum8u* selected = mask.row(y);
        for (int x = 0; x < size.width; ++x) {
            T value = first.at(a, x);
            if constexpr (of != NormOf::image) value = difference(value, second.at(b, x));
            ofFirst.add(counted(value, selected[x]), x, size.width);
            if constexpr (of == NormOf::differenceAndSecond)
                ofSecond.add(counted(second.at(b, x), selected[x]), x, size.width);
        }
        ofFirst.endScalarRow();
        ofSecond.endScalarRow();
    }
    return {ofFirst.value(), ofSecond.value()};
}

template <NormOf of, NormKind kind, class T, int channels>
NormTotals vectorRows(const Pixels<T, channels>& first, const Pixels<T, channels>& second,
                      Image<const Lum8u> mask, LumSize size) {
    constexpr int lanes = lanesOf<T>;
    constexpr bool withSecond = of == NormOf::differenceAndSecond;
    const PixelVectors<T, channels> vectors(first);
    NormTotal<kind, T> ofFirst;
    NormTotal<kind, T> ofSecond;

    for (int y = 0; y < size.height; ++y) {
        const T* a = first.row(y);
        const T* b = second.row(y);
        const Lum8u* selected = mask.row(y);
        const auto add = [&](int x, __m128i excluded, int parity) {
            __m128i values = vectors.at(a, x);
            if constexpr (of != NormOf::image) {
                const __m128i subtrahends = vectors.at(b, x);
                values = differences<T>(values, subtrahends);
                if constexpr (withSecond) ofSecond.addVector(_mm_andnot_si128(excluded, subtrahends), parity);
            }
            ofFirst.addVector(_mm_andnot_si128(excluded, values), parity);
        };

        int x = 0;
        for (;;) {
            const int end = x + std::min(size.width - x, vectorsPerBlock * lanes);
            // two vectors per iteration
            for (; x <= end - 2 * lanes; x += 2 * lanes) {
                const VectorPair excluded = excludedPair<T>(selected + x);
                add(x, excluded.even, 0);
                add(x + lanes, excluded.odd, 1);
            }
            if (size.width - x < 2 * lanes) break;
            ofFirst.endBlock();
            if constexpr (withSecond) ofSecond.endBlock();
        }
        // one more whole vector
        if (x <= size.width - lanes) {
            add(x, excludedLanes<T>(selected + x), 0);
            x += lanes;
        }
        // the last pixels: a vector that ends with the row, of which only these count
        if (x < size.width) {
            const int last = size.width - lanes;
            const __m128i countedBefore = allLanesButLast<T>(size.width - x);
            add(last, _mm_or_si128(excludedLanes<T>(selected + last), countedBefore), 1);
        }
        ofFirst.endRow();
        if constexpr (withSecond) ofSecond.endRow();
    }
    return {ofFirst.value(), ofSecond.value()};
}

} // namespace

template <NormKind kind, class T, int channels>
NormTotals normScalar(NormOf of, const Pixels<T, channels>& first, const Pixels<T, channels>& second,
                      Image<const Lum8u> mask, LumSize size) {
    switch (of) {
    case NormOf::image:
        return scalarRows<NormOf::image, kind>(first, second, mask, size);
    case NormOf::difference:
        return scalarRows<NormOf::difference, kind>(first, second, mask, size);
    case NormOf::differenceAndSecond:
        break;
    }
    return scalarRows<NormOf::differenceAndSecond, kind>(first, second, mask, size);
}

template <NormKind kind, class T, int channels>
NormTotals norm(NormOf of, const Pixels<T, channels>& first, const Pixels<T, channels>& second,
                Image<const Lum8u> mask, LumSize size) {
    if (size.width < lanesOf<T>) return normScalar<kind>(of, first, second, mask, size);
    switch (of) {
    case NormOf::image:
        return vectorRows<NormOf::image, kind>(first, second, mask, size);
    case NormOf::difference:
        return vectorRows<NormOf::difference, kind>(first, second, mask, size);
    case NormOf::differenceAndSecond:
        break;
    }
    return vectorRows<NormOf::differenceAndSecond, kind>(first, second, mask, size);
}

template decltype(normScalar<NormKind::inf, Lum8u, 1>) normScalar<NormKind::inf, Lum8u, 1>;
template decltype(normScalar<NormKind::inf, Lum8u, 3>) normScalar<NormKind::inf, Lum8u, 3>;
template decltype(normScalar<NormKind::inf, Lum16u, 1>) normScalar<NormKind::inf, Lum16u, 1>;
template decltype(normScalar<NormKind::inf, Lum16u, 3>) normScalar<NormKind::inf, Lum16u, 3>;
template decltype(normScalar<NormKind::inf, Lum32f, 1>) normScalar<NormKind::inf, Lum32f, 1>;
template decltype(normScalar<NormKind::inf, Lum32f, 3>) normScalar<NormKind::inf, Lum32f, 3>;
template decltype(normScalar<NormKind::l1, Lum8u, 1>) normScalar<NormKind::l1, Lum8u, 1>;
template decltype(normScalar<NormKind::l1, Lum8u, 3>) normScalar<NormKind::l1, Lum8u, 3>;
template decltype(normScalar<NormKind::l1, Lum16u, 1>) normScalar<NormKind::l1, Lum16u, 1>;
template decltype(normScalar<NormKind::l1, Lum16u, 3>) normScalar<NormKind::l1, Lum16u, 3>;
template decltype(normScalar<NormKind::l1, Lum32f, 1>) normScalar<NormKind::l1, Lum32f, 1>;
template decltype(normScalar<NormKind::l1, Lum32f, 3>) normScalar<NormKind::l1, Lum32f, 3>;
template decltype(normScalar<NormKind::l2, Lum8u, 1>) normScalar<NormKind::l2, Lum8u, 1>;
template decltype(normScalar<NormKind::l2, Lum8u, 3>) normScalar<NormKind::l2, Lum8u, 3>;
template decltype(normScalar<NormKind::l2, Lum16u, 1>) normScalar<NormKind::l2, Lum16u, 1>;
template decltype(normScalar<NormKind::l2, Lum16u, 3>) normScalar<NormKind::l2, Lum16u, 3>;
template decltype(normScalar<NormKind::l2, Lum32f, 1>) normScalar<NormKind::l2, Lum32f, 1>;
template decltype(normScalar<NormKind::l2, Lum32f, 3>) normScalar<NormKind::l2, Lum32f, 3>;
template decltype(norm<NormKind::inf, Lum8u, 1>) norm<NormKind::inf, Lum8u, 1>;
template decltype(norm<NormKind::inf, Lum8u, 3>) norm<NormKind::inf, Lum8u, 3>;
template decltype(norm<NormKind::inf, Lum16u, 1>) norm<NormKind::inf, Lum16u, 1>;
template decltype(norm<NormKind::inf, Lum16u, 3>) norm<NormKind::inf, Lum16u, 3>;
template decltype(norm<NormKind::inf, Lum32f, 1>) norm<NormKind::inf, Lum32f, 1>;
template decltype(norm<NormKind::inf, Lum32f, 3>) norm<NormKind::inf, Lum32f, 3>;
template decltype(norm<NormKind::l1, Lum8u, 1>) norm<NormKind::l1, Lum8u, 1>;
template decltype(norm<NormKind::l1, Lum8u, 3>) norm<NormKind::l1, Lum8u, 3>;
template decltype(norm<NormKind::l1, Lum16u, 1>) norm<NormKind::l1, Lum16u, 1>;
template decltype(norm<NormKind::l1, Lum16u, 3>) norm<NormKind::l1, Lum16u, 3>;
template decltype(norm<NormKind::l1, Lum32f, 1>) norm<NormKind::l1, Lum32f, 1>;
template decltype(norm<NormKind::l1, Lum32f, 3>) norm<NormKind::l1, Lum32f, 3>;
template decltype(norm<NormKind::l2, Lum8u, 1>) norm<NormKind::l2, Lum8u, 1>;
template decltype(norm<NormKind::l2, Lum8u, 3>) norm<NormKind::l2, Lum8u, 3>;
template decltype(norm<NormKind::l2, Lum16u, 1>) norm<NormKind::l2, Lum16u, 1>;
template decltype(norm<NormKind::l2, Lum16u, 3>) norm<NormKind::l2, Lum16u, 3>;
template decltype(norm<NormKind::l2, Lum32f, 1>) norm<NormKind::l2, Lum32f, 1>;
template decltype(norm<NormKind::l2, Lum32f, 3>) norm<NormKind::l2, Lum32f, 3>;

} // namespace lum::kernels

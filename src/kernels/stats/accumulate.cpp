#include "kernels/stats/accumulate.h"

#include <algorithm>
#include <bit>

#include "frame/vector.h"

namespace lum::kernels {
namespace {

// What is added to the old value, for a single and for a vector of floats alike.
template <class F> F term(AccumulateSum, F s, F, F) { return s; }
template <class F> F term(AccumulateSquares, F s, F, F) { return s * s; }
template <class F> F term(AccumulateProducts, F s1, F s2, F) { return s1 * s2; }
template <class F> F term(AccumulateWeighted rule, F s, F, F a) { return (s - a) * rule.alpha; }

template <class Rule> constexpr bool hasTwoSources = std::is_same_v<Rule, AccumulateProducts>;

/// What a mask byte of 0 does. Where it skips a scalar step, whole vectors add 0.
enum class MaskedOut { skips, clearsFirstSource, clearsTerm };
template <class Rule> constexpr MaskedOut maskedOut = MaskedOut::skips;
template <> constexpr MaskedOut maskedOut<AccumulateProducts> = MaskedOut::clearsFirstSource;
template <> constexpr MaskedOut maskedOut<AccumulateWeighted> = MaskedOut::clearsTerm;

/// a where `chosen` has its bits set, b elsewhere.
float chosenBits(unsigned chosen, float a, float b) {
    return std::bit_cast<float>((std::bit_cast<unsigned>(a) & chosen) |
                                (std::bit_cast<unsigned>(b) & ~chosen));
}

// Float16 pixels are four quarters of a vector of floats each. Their elements T fill one vector or more, of
// which each holds some of the quarters.
template <class T> constexpr int vectorsOf16 = sizeof(T);
template <class T> constexpr int quartersOfVector = 4 / vectorsOf16<T>;

/// The floats of a quarter, from the vector that holds it.
template <class T, int quarter> __m128 floatsOf(__m128i elements) {
    const __m128i zero = _mm_setzero_si128();
    if constexpr (std::is_same_v<T, Lum32f>) {
        return _mm_castsi128_ps(elements);
    } else if constexpr (std::is_same_v<T, Lum16u>) {
        return _mm_cvtepi32_ps(quarter % 2 == 0 ? _mm_unpacklo_epi16(elements, zero)
                                                : _mm_unpackhi_epi16(elements, zero));
    } else {
        constexpr char at = 4 * quarter;
        const __m128i places =
            _mm_setr_epi8(at, -1, -1, -1, at + 1, -1, -1, -1, at + 2, -1, -1, -1, at + 3, -1, -1, -1);
        return _mm_cvtepi32_ps(_mm_shuffle_epi8(elements, places));
    }
}

/// Of a byte for each of 16 pixels, those of the vector of elements T that holds a quarter, as wide as T.
template <class T, int quarter> __m128i widenedBytes(__m128i bytes) {
    if constexpr (std::is_same_v<T, Lum8u>) {
        return bytes;
    } else if constexpr (std::is_same_v<T, Lum16u>) {
        return quarter < 2 ? _mm_unpacklo_epi8(bytes, bytes) : _mm_unpackhi_epi8(bytes, bytes);
    } else {
        constexpr char at = 4 * quarter;
        return _mm_shuffle_epi8(bytes, _mm_setr_epi8(at, at, at, at, at + 1, at + 1, at + 1, at + 1, at + 2,
                                                     at + 2, at + 2, at + 2, at + 3, at + 3, at + 3, at + 3));
    }
}

/// Float4 elements T, in the low bytes of a vector.
template <Access access, class T> __m128i loadFour(const T* elements) {
    if constexpr (std::is_same_v<T, Lum32f>)
        return loadVector<access>(elements);
    else if constexpr (std::is_same_v<T, Lum16u>)
        return loadHalf(elements);
    else
        return _mm_loadu_si32(elements);
}

/// All bits of a byte set where the mask is 0.
__m128i zeroBytes(__m128i maskBytes) { return _mm_cmpeq_epi8(maskBytes, _mm_setzero_si128()); }

/// Products of floats can be NaN under a zero mask byte; then an accumulator that is NaN already stays as it is.
template <class Rule, class T>
constexpr bool
    maskedOutCanBeNaN = (maskedOut<Rule> == MaskedOut::clearsFirstSource) && std::is_same_v<T, Lum32f>;

// The sum that a pixel becomes where what is added can be NaN too: of two NaNs an addition keeps whichever the
// compiler puts first.
float sumKeepingNaN(float a, float added) { return a != a ? a : a + added; }
__m128 sumKeepingNaN(__m128 a, __m128 added) {
    const __m128 isNaN = _mm_cmpunord_ps(a, a);
    return _mm_or_ps(_mm_and_ps(isNaN, a), _mm_andnot_ps(isNaN, a + added));
}

/// One row of all images; the second source or the mask is null where there is none.
template <bool masked, class Rule, class T> class Row {
  public:
    Row(Rule rowRule, const T* source1, const T* source2, const Lum8u* convolveRow, Lum32f* accumulator)
        : rule(rowRule), src1(source1), src2(source2), mask(convolveRow), srcDst(accumulator) {}

    /// The pixels before `end` that no group holds.
    void scalarSteps(int x, int end) const {
        for (; x < end; ++x) scalarStep(x);
    }

    /// Whole groups from x on; the place where they end, at most 3 pixels before the end.
    template <Access srcAccess, Access dstAccess> int groups(int x, int end) const {
        // 16 pixels per iteration
        for (; x <= end - 16; x += 16) groupOf16<srcAccess, dstAccess>(x);
        // 4 pixels per iteration
        for (; x <= end - 4; x += 4) groupOf4<srcAccess, dstAccess, Stores::ordinary>(x);
        return x;
    }

    template <Access srcAccess, Access dstAccess, Stores stores> void groupOf4(int x) const {
        const __m128i first = loadFour<srcAccess>(src1 + x);
        const __m128i second = hasTwoSources<Rule> ? loadFour<srcAccess>(src2 + x) : first;
        const __m128i excluded = masked ? zeroBytes(_mm_loadu_si32(mask + x)) : __m128i{};
        quarterOfGroup<dstAccess, stores, 0>(first, second, excluded, srcDst + x);
    }

    /// Pixels before the accumulator's first 16-byte boundary; all, where it never reaches one.
    int pixelsToAlignment(int width) const {
        const auto address = reinterpret_cast<std::uintptr_t>(srcDst);
        if (address % sizeof(Lum32f) != 0) return width;
        return std::min(width, static_cast<int>((0U - address) % 16 / sizeof(Lum32f)));
    }

    /// Whether the sources permit aligned loads from x on. Elements narrower than the accumulator's are
    /// loaded in one way only.
    bool sourcesAligned(int x) const {
        return std::is_same_v<T, Lum32f> && isVectorAligned(src1 + x) &&
               (!hasTwoSources<Rule> || isVectorAligned(src2 + x));
    }
    bool allAligned() const {
        return isVectorAligned(srcDst) && (!std::is_same_v<T, Lum32f> || sourcesAligned(0));
    }

  private:
    void scalarStep(int x) const {
        if constexpr (masked && maskedOut<Rule> == MaskedOut::skips)
            if (mask[x] == 0) return;
        const float a = srcDst[x];
        const auto s1 = static_cast<float>(src1[x]);
        const auto s2 = hasTwoSources<Rule> ? static_cast<float>(src2[x]) : 0.0F;
        if constexpr (!masked || maskedOut<Rule> == MaskedOut::skips) {
            srcDst[x] = a + term(rule, s1, s2, a);
        } else {
            const unsigned selected = mask[x] != 0 ? ~0U : 0U;
            float added = 0;
            if constexpr (maskedOut<Rule> == MaskedOut::clearsFirstSource)
                added = term(rule, chosenBits(selected, s1, 0.0F), s2, a);
            else
                added = chosenBits(selected, term(rule, s1, s2, a), 0.0F);
            srcDst[x] = maskedOutCanBeNaN<Rule, T> ? sumKeepingNaN(a, added) : a + added;
        }
    }

    /// Float4 pixels of the accumulator; their elements and the bytes of masked-out pixels are loaded already.
    template <Access dstAccess, Stores stores, int quarter>
    void quarterOfGroup(__m128i first, __m128i second, __m128i excluded, Lum32f* place) const {
        if constexpr (masked && maskedOut<Rule> != MaskedOut::clearsTerm)
            first = _mm_andnot_si128(widenedBytes<T, quarter>(excluded), first);
        const __m128 a = loadFloats<dstAccess>(place);
        __m128 added = term(rule, floatsOf<T, quarter>(first), floatsOf<T, quarter>(second), a);
        if constexpr (masked && maskedOut<Rule> == MaskedOut::clearsTerm)
            added = _mm_andnot_ps(_mm_castsi128_ps(widenedBytes<Lum32f, quarter>(excluded)), added);
        if constexpr (masked && maskedOutCanBeNaN<Rule, T>)
            storeFloats<dstAccess, stores>(place, sumKeepingNaN(a, added));
        else
            storeFloats<dstAccess, stores>(place, a + added);
    }

    /// Vector `index` of those that hold the elements of 16 pixels.
    template <Access srcAccess, Access dstAccess, int index>
    void vectorOfGroup(int x, __m128i excluded) const {
        constexpr int quarters = quartersOfVector<T>;
        constexpr int quarter = index * quarters;
        x += 4 * quarter;
        const __m128i first = loadVector<srcAccess>(src1 + x);
        const __m128i second = hasTwoSources<Rule> ? loadVector<srcAccess>(src2 + x) : first;
        quarterOfGroup<dstAccess, Stores::ordinary, quarter>(first, second, excluded, srcDst + x);
        if constexpr (quarters >= 2)
            quarterOfGroup<dstAccess, Stores::ordinary, quarter + 1>(first, second, excluded, srcDst + x + 4);
        if constexpr (quarters == 4) {
            quarterOfGroup<dstAccess, Stores::ordinary, 2>(first, second, excluded, srcDst + x + 8);
            quarterOfGroup<dstAccess, Stores::ordinary, 3>(first, second, excluded, srcDst + x + 12);
        }
    }

    template <Access srcAccess, Access dstAccess> void groupOf16(int x) const {
        const __m128i excluded = masked ? zeroBytes(loadVector<Access::unaligned>(mask + x)) : __m128i{};
        vectorOfGroup<srcAccess, dstAccess, 0>(x, excluded);
        if constexpr (vectorsOf16<T> >= 2) vectorOfGroup<srcAccess, dstAccess, 1>(x, excluded);
        if constexpr (vectorsOf16<T> == 4) {
            vectorOfGroup<srcAccess, dstAccess, 2>(x, excluded);
            vectorOfGroup<srcAccess, dstAccess, 3>(x, excluded);
        }
    }

    Rule rule;
    const T* src1;
    const T* src2;
    const Lum8u* mask;
    Lum32f* srcDst;
};

/// The images of a call; without a mask its image is empty.
template <bool masked, class Rule, class T> struct Images {
    Rule rule;
    AccumulatorSources<T> sources;
    Image<const Lum8u> mask;
    Image<Lum32f> srcDst;

    Row<masked, Rule, T> row(int y) const {
        return {rule, sources.first.row(y), hasTwoSources<Rule> ? sources.second.row(y) : nullptr,
                masked ? mask.row(y) : nullptr, srcDst.row(y)};
    }
};

template <bool masked, class Rule, class T>
void scalarRows(const Images<masked, Rule, T>& images, LumSize size) {
    for (int y = 0; y < size.height; ++y) images.row(y).scalarSteps(0, size.width);
}

/// Rows whose accumulator is aligned by scalar steps ahead of the groups.
template <bool masked, class Rule, class T>
void peeledRows(const Images<masked, Rule, T>& images, LumSize size) {
    for (int y = 0; y < size.height; ++y) {
        const Row<masked, Rule, T> row = images.row(y);
        // scalar steps to the accumulator's alignment, all of them where it is out of reach
        int x = row.pixelsToAlignment(size.width);
        row.scalarSteps(0, x);
        // whole groups
        x = row.sourcesAligned(x) ? row.template groups<Access::aligned, Access::aligned>(x, size.width)
                                  : row.template groups<Access::unaligned, Access::aligned>(x, size.width);
        // tail, 1 to 3 scalar steps
        row.scalarSteps(x, size.width);
    }
}

/// Rows that begin with groups at once, aligned or not. Of a row's streaming stores there is only the first.
template <bool masked, class Rule, class T>
void unpeeledRows(const Images<masked, Rule, T>& images, LumSize size, Stores stores) {
    // Only sources of floats take part in the alignment.
    constexpr Access alignedSources = std::is_same_v<T, Lum32f> ? Access::aligned : Access::unaligned;
    for (int y = 0; y < size.height; ++y) {
        const Row<masked, Rule, T> row = images.row(y);
        const bool aligned = row.allAligned();
        int x = 0;
        if (aligned && stores == Stores::streaming && size.width >= 4) {
            row.template groupOf4<alignedSources, Access::aligned, Stores::streaming>(x);
            x += 4;
        }
        // whole groups; a row narrower than 4 has none
        x = aligned ? row.template groups<alignedSources, Access::aligned>(x, size.width)
                    : row.template groups<Access::unaligned, Access::unaligned>(x, size.width);
        // tail, 1 to 3 scalar steps
        row.scalarSteps(x, size.width);
    }
    storeFence();
}

} // namespace

template <class Rule, class T>
void accumulateScalar(Rule rule, AccumulatorSources<T> sources, Image<Lum32f> srcDst, LumSize size) {
    scalarRows<false, Rule, T>({rule, sources, {nullptr, 0}, srcDst}, size);
}

template <class Rule, class T>
void accumulate(Rule rule, AccumulatorSources<T> sources, Image<Lum32f> srcDst, LumSize size) {
    peeledRows<false, Rule, T>({rule, sources, {nullptr, 0}, srcDst}, size);
}

template <class Rule, class T>
void accumulateMaskedScalar(Rule rule, AccumulatorSources<T> sources, Image<const Lum8u> mask,
                            Image<Lum32f> srcDst, LumSize size) {
    scalarRows<true, Rule, T>({rule, sources, mask, srcDst}, size);
}

template <class Rule, class T>
void accumulateMasked(Rule rule, AccumulatorSources<T> sources, Image<const Lum8u> mask, Image<Lum32f> srcDst,
                      LumSize size, Stores stores) {
    if constexpr (maskedOut<Rule> == MaskedOut::skips)
        peeledRows<true, Rule, T>({rule, sources, mask, srcDst}, size);
    else
        unpeeledRows<true, Rule, T>({rule, sources, mask, srcDst}, size, stores);
}

template decltype(accumulateScalar<AccumulateSum, Lum8u>) accumulateScalar<AccumulateSum, Lum8u>;
template decltype(accumulateScalar<AccumulateSum, Lum16u>) accumulateScalar<AccumulateSum, Lum16u>;
template decltype(accumulateScalar<AccumulateSquares, Lum8u>) accumulateScalar<AccumulateSquares, Lum8u>;
template decltype(accumulateScalar<AccumulateSquares, Lum16u>) accumulateScalar<AccumulateSquares, Lum16u>;
template decltype(accumulateScalar<AccumulateSquares, Lum32f>) accumulateScalar<AccumulateSquares, Lum32f>;
template decltype(accumulateScalar<AccumulateProducts, Lum8u>) accumulateScalar<AccumulateProducts, Lum8u>;
template decltype(accumulateScalar<AccumulateProducts, Lum16u>) accumulateScalar<AccumulateProducts, Lum16u>;
template decltype(accumulateScalar<AccumulateProducts, Lum32f>) accumulateScalar<AccumulateProducts, Lum32f>;
template decltype(accumulateScalar<AccumulateWeighted, Lum8u>) accumulateScalar<AccumulateWeighted, Lum8u>;
template decltype(accumulateScalar<AccumulateWeighted, Lum16u>) accumulateScalar<AccumulateWeighted, Lum16u>;
template decltype(accumulateScalar<AccumulateWeighted, Lum32f>) accumulateScalar<AccumulateWeighted, Lum32f>;
template decltype(accumulate<AccumulateSum, Lum8u>) accumulate<AccumulateSum, Lum8u>;
template decltype(accumulate<AccumulateSum, Lum16u>) accumulate<AccumulateSum, Lum16u>;
template decltype(accumulate<AccumulateSquares, Lum8u>) accumulate<AccumulateSquares, Lum8u>;
template decltype(accumulate<AccumulateSquares, Lum16u>) accumulate<AccumulateSquares, Lum16u>;
template decltype(accumulate<AccumulateSquares, Lum32f>) accumulate<AccumulateSquares, Lum32f>;
template decltype(accumulate<AccumulateProducts, Lum8u>) accumulate<AccumulateProducts, Lum8u>;
template decltype(accumulate<AccumulateProducts, Lum16u>) accumulate<AccumulateProducts, Lum16u>;
template decltype(accumulate<AccumulateProducts, Lum32f>) accumulate<AccumulateProducts, Lum32f>;
template decltype(accumulate<AccumulateWeighted, Lum8u>) accumulate<AccumulateWeighted, Lum8u>;
template decltype(accumulate<AccumulateWeighted, Lum16u>) accumulate<AccumulateWeighted, Lum16u>;
template decltype(accumulate<AccumulateWeighted, Lum32f>) accumulate<AccumulateWeighted, Lum32f>;
template decltype(accumulateMaskedScalar<AccumulateSum, Lum8u>) accumulateMaskedScalar<AccumulateSum, Lum8u>;
template decltype(accumulateMaskedScalar<AccumulateSum, Lum16u>)
    accumulateMaskedScalar<AccumulateSum, Lum16u>;
template decltype(accumulateMaskedScalar<AccumulateSum, Lum32f>)
    accumulateMaskedScalar<AccumulateSum, Lum32f>;
template decltype(accumulateMaskedScalar<AccumulateSquares, Lum8u>)
    accumulateMaskedScalar<AccumulateSquares, Lum8u>;
template decltype(accumulateMaskedScalar<AccumulateSquares, Lum16u>)
    accumulateMaskedScalar<AccumulateSquares, Lum16u>;
template decltype(accumulateMaskedScalar<AccumulateSquares, Lum32f>)
    accumulateMaskedScalar<AccumulateSquares, Lum32f>;
template decltype(accumulateMaskedScalar<AccumulateProducts, Lum8u>)
    accumulateMaskedScalar<AccumulateProducts, Lum8u>;
template decltype(accumulateMaskedScalar<AccumulateProducts, Lum16u>)
    accumulateMaskedScalar<AccumulateProducts, Lum16u>;
template decltype(accumulateMaskedScalar<AccumulateProducts, Lum32f>)
    accumulateMaskedScalar<AccumulateProducts, Lum32f>;
template decltype(accumulateMaskedScalar<AccumulateWeighted, Lum8u>)
    accumulateMaskedScalar<AccumulateWeighted, Lum8u>;
template decltype(accumulateMaskedScalar<AccumulateWeighted, Lum16u>)
    accumulateMaskedScalar<AccumulateWeighted, Lum16u>;
template decltype(accumulateMaskedScalar<AccumulateWeighted, Lum32f>)
    accumulateMaskedScalar<AccumulateWeighted, Lum32f>;
template decltype(accumulateMasked<AccumulateSum, Lum8u>) accumulateMasked<AccumulateSum, Lum8u>;
template decltype(accumulateMasked<AccumulateSum, Lum16u>) accumulateMasked<AccumulateSum, Lum16u>;
template decltype(accumulateMasked<AccumulateSum, Lum32f>) accumulateMasked<AccumulateSum, Lum32f>;
template decltype(accumulateMasked<AccumulateSquares, Lum8u>) accumulateMasked<AccumulateSquares, Lum8u>;
template decltype(accumulateMasked<AccumulateSquares, Lum16u>) accumulateMasked<AccumulateSquares, Lum16u>;
template decltype(accumulateMasked<AccumulateSquares, Lum32f>) accumulateMasked<AccumulateSquares, Lum32f>;
template decltype(accumulateMasked<AccumulateProducts, Lum8u>) accumulateMasked<AccumulateProducts, Lum8u>;
template decltype(accumulateMasked<AccumulateProducts, Lum16u>) accumulateMasked<AccumulateProducts, Lum16u>;
template decltype(accumulateMasked<AccumulateProducts, Lum32f>) accumulateMasked<AccumulateProducts, Lum32f>;
template decltype(accumulateMasked<AccumulateWeighted, Lum8u>) accumulateMasked<AccumulateWeighted, Lum8u>;
template decltype(accumulateMasked<AccumulateWeighted, Lum16u>) accumulateMasked<AccumulateWeighted, Lum16u>;
template decltype(accumulateMasked<AccumulateWeighted, Lum32f>) accumulateMasked<AccumulateWeighted, Lum32f>;

} // namespace lum::kernels

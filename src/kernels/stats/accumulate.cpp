#include "kernels/stats/accumulate.h"

#include <algorithm>
#include <bit>

#include "frame/instances.h"
#include "frame/lanes_parts.h"
#include "frame/lanes_products.h"

namespace lum::kernels {
namespace {

// What is added to the old value, for one float and for a vector of them alike.
template <class F> F term(AccumulateSum, F s, F, F) { return s; }
template <class F> F term(AccumulateSquares, F s, F, F) { return s * s; }
template <class F> F term(AccumulateProducts, F s1, F s2, F) { return s1 * s2; }
template <class F> F term(AccumulateWeighted rule, F s, F, F a) { return (s - a) * rule.alpha; }

template <class Rule> constexpr bool hasTwoSources = std::is_same_v<Rule, AccumulateProducts>;

/// Products of bytes are formed as words, which is exact too: one conversion to floats instead of two.
template <class Rule, class T>
constexpr bool productsAreWords = hasTwoSources<Rule>&& std::is_same_v<T, Lum8u>;
template <int n> LUM_LANE Block<Lum16u, n> wordProducts(Block<Lum8u, n> a, Block<Lum8u, n> b) {
    if constexpr (vectorBytes == 16 && n >= 16) {
        // Bytes of even number as words, those of odd number as 256 times themselves: masks take any port, unlike unpacking.
        const auto evenBytes = broadcast<n / 2>(Lum16u{0xFF});
        const auto first = bitsAs<Lum16u>(a);
        const auto second = bitsAs<Lum16u>(b);
        return interleave((first & evenBytes) * (second & evenBytes),
                          multiplyHigh(andNot(evenBytes, first), andNot(evenBytes, second)));
    } else {
        return widen<Lum16u>(a) * widen<Lum16u>(b);
    }
}

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

/// Products of floats can be NaN under a zero mask byte; then an accumulator that is NaN already stays as it is.
template <class Rule, class T>
constexpr bool
    maskedOutCanBeNaN = (maskedOut<Rule> == MaskedOut::clearsFirstSource) && std::is_same_v<T, Lum32f>;

// The sum that a pixel becomes where what is added can be NaN too: of two NaNs an addition keeps whichever the
// compiler puts first.
float sumKeepingNaN(float a, float added) { return a != a ? a : a + added; }
template <int n> LUM_LANE Block<float, n> sumKeepingNaN(Block<float, n> a, Block<float, n> added) {
    return select(a != a, a, a + added);
}

/// One row of all images; the second source or the mask is null where there is none.
template <bool masked, class Rule, class T> class Row {
  public:
    Row(Rule rowRule, const T* source1, const T* source2, const Lum8u* maskRow, Lum32f* accumulator)
        : rule(rowRule), src1(source1), src2(source2), mask(maskRow), srcDst(accumulator) {}

    /// The pixels before `end` that no group holds.
    void scalarSteps(int x, int end) const {
        for (; x < end; ++x) scalarStep(x);
    }

    /// Whole groups from x on; the place where they end, at most 3 pixels before the end.
    LUM_LANE int groups(int x, int end) const {
        // Only floats are operands in memory, which short vectors take at multiples of 16 bytes.
        if constexpr (std::is_same_v<T, Lum32f>)
            if (isAligned(x)) return groups<true>(x, end);
        return groups<false>(x, end);
    }

    template <bool aligned> LUM_LANE int groups(int x, int end) const {
        const int largeEnd = x + (end - x) / 16 * 16;
        const int smallEnd = x + (end - x) / 4 * 4;
        // 16 pixels per iteration
        for (; x < largeEnd; x += 16) group<16, aligned>(x);
        // 4 pixels per iteration
        for (; x < smallEnd; x += 4) group<4, aligned>(x);
        return x;
    }

    /// One group of whole vectors, which reads its mask before it stores.
    template <int pixels, bool aligned, Stores stores = Stores::ordinary> LUM_LANE void group(int x) const {
        constexpr int ofVector = std::min(pixels, OneVector<T>::count);
        auto excluded = zeros<std::int8_t, pixels>();
        if constexpr (masked) excluded = load<pixels>(mask + x) == zeros<Lum8u, pixels>();
        forParts<ofVector, pixels>([&](int i) LUM_INLINED {
            auto first = load<ofVector>(operand<aligned>(src1 + x + i));
            auto second = first;
            if constexpr (hasTwoSources<Rule>) second = load<ofVector>(operand<aligned>(src2 + x + i));
            if constexpr (masked && maskedOut<Rule> != MaskedOut::clearsTerm)
                first = andNot(bitsAs<T>(widenMask<T, ofVector>(excluded, i)), first);
            const auto firstOrProducts = [&] {
                if constexpr (productsAreWords<Rule, T>)
                    return wordProducts(first, second);
                else
                    return first;
            }();
            forVectors<float, ofVector>([&]<int n>(int j) LUM_INLINED {
                Lum32f* place = operand < aligned || groupsAreAligned > (srcDst + x + i + j);
                const auto a = load<n>(place);
                auto added = toFloatPart<n>(firstOrProducts, j);
                if constexpr (!productsAreWords<Rule, T>)
                    added = term(rule, added, toFloatPart<n>(second, j), a);
                if constexpr (masked && maskedOut<Rule> == MaskedOut::clearsTerm)
                    added = andNot(bitsAs<float>(widenMask<float, n>(excluded, i + j)), added);
                if constexpr (masked && maskedOutCanBeNaN<Rule, T>)
                    store<stores>(sumKeepingNaN(a, added), place);
                else
                    store<stores>(a + added, place);
            });
        });
    }

    /// Pixels before the accumulator's first boundary of that many bytes; all, where it never reaches one.
    int pixelsToBoundary(int bytes, int width) const {
        const auto address = reinterpret_cast<std::uintptr_t>(srcDst);
        if (address % sizeof(Lum32f) != 0) return width;
        return std::min(width, static_cast<int>((0U - address) % bytes / sizeof(Lum32f)));
    }

    /// Whether the accumulator, and a source of floats, lie at multiples of 16 bytes from x on.
    bool isAligned(int x) const {
        return isMultipleOf16(srcDst + x) &&
               (!std::is_same_v<T, Lum32f> ||
                (isMultipleOf16(src1 + x) && (!hasTwoSources<Rule> || isMultipleOf16(src2 + x))));
    }

  private:
    /// Scalar steps lead to the first group.
    static constexpr bool groupsAreAligned = !masked || maskedOut<Rule> == MaskedOut::skips;

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

    template <bool aligned, class U> LUM_LANE static U* operand(U* place) {
        if constexpr (aligned) return static_cast<U*>(__builtin_assume_aligned(place, 16));
        return place;
    }

    static bool isMultipleOf16(const void* place) {
        return reinterpret_cast<std::uintptr_t>(place) % 16 == 0;
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

/// Rows whose groups begin at a boundary of the accumulator, after scalar steps. Under a mask -0.0 tells these from groups, so
/// there the boundary is that of the contract.
template <bool masked, class Rule, class T>
void peeledRows(const Images<masked, Rule, T>& images, LumSize size) {
    constexpr int boundary = masked ? 16 : streamingAlignment;
    for (int y = 0; y < size.height; ++y) {
        const Row<masked, Rule, T> row = images.row(y);
        // scalar steps to the boundary, all of them where it is out of reach
        int x = row.pixelsToBoundary(boundary, size.width);
        row.scalarSteps(0, x);
        // whole groups
        x = row.groups(x, size.width);
        // tail: scalar, 1 to 3 elements
        row.scalarSteps(x, size.width);
    }
}

/// Rows that begin with groups at once, aligned or not. Of a row's streaming stores there is only the first.
template <bool masked, class Rule, class T>
void unpeeledRows(const Images<masked, Rule, T>& images, LumSize size, Stores stores) {
    for (int y = 0; y < size.height; ++y) {
        const Row<masked, Rule, T> row = images.row(y);
        int x = 0;
        if (stores == Stores::streaming && size.width >= 4 && row.isAligned(0)) {
            row.template group<4, true, Stores::streaming>(x);
            x += 4;
        }
        // whole groups; a row narrower than 4 has none
        x = row.groups(x, size.width);
        // tail: scalar, 1 to 3 elements
        row.scalarSteps(x, size.width);
    }
    storeFence();
}

} // namespace

template <class Rule, class T>
void Accumulate<Rule, T>::scalar(Rule rule, Sources sources, Image<Lum32f> srcDst, LumSize size) {
    scalarRows<false, Rule, T>({rule, sources, {nullptr, 0}, srcDst}, size);
}

template <class Rule, class T>
void Accumulate<Rule, T>::vectors(Rule rule, Sources sources, Image<Lum32f> srcDst, LumSize size) {
    peeledRows<false, Rule, T>({rule, sources, {nullptr, 0}, srcDst}, size);
}

template <class Rule, class T>
void Accumulate<Rule, T>::maskedScalar(Rule rule, Sources sources, Image<const Lum8u> mask,
                                       Image<Lum32f> srcDst, LumSize size) {
    scalarRows<true, Rule, T>({rule, sources, mask, srcDst}, size);
}

template <class Rule, class T>
void Accumulate<Rule, T>::masked(Rule rule, Sources sources, Image<const Lum8u> mask, Image<Lum32f> srcDst,
                                 LumSize size, Stores stores) {
    if constexpr (maskedOut<Rule> == MaskedOut::skips)
        peeledRows<true, Rule, T>({rule, sources, mask, srcDst}, size);
    else
        unpeeledRows<true, Rule, T>({rule, sources, mask, srcDst}, size, stores);
}

LUM_STRUCT_INSTANCES(Accumulate, (AccumulateSum, Lum8u), (AccumulateSum, Lum16u), (AccumulateSum, Lum32f),
                     (AccumulateSquares, Lum8u), (AccumulateSquares, Lum16u), (AccumulateSquares, Lum32f),
                     (AccumulateProducts, Lum8u), (AccumulateProducts, Lum16u), (AccumulateProducts, Lum32f),
                     (AccumulateWeighted, Lum8u), (AccumulateWeighted, Lum16u), (AccumulateWeighted, Lum32f));

} // namespace lum::kernels

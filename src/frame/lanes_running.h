// Running sums along a row of bytes, 32 of them at a time: of the bytes, and of their squares.
#pragma once

#include "frame/lanes_ahead.h"
#include "frame/lanes_products.h"
#include "frame/lanes_reduce.h"

namespace lum {

namespace lanes_detail {

/// The elements that lie `distance` before those of a; the first ones are the last ones of `previous`.
template <int distance, class T, int N>
LUM_LANE Block<T, N> elementsBefore(Block<T, N> previous, Block<T, N> a) {
    constexpr int bytes = distance * static_cast<int>(sizeof(T));
    if constexpr (Block<T, N>::registerBytes == 16) {
        return blockOf<T, N>(_mm_alignr_epi8(rawInteger(a.v), rawInteger(previous.v), 16 - bytes));
    } else if constexpr (Block<T, N>::registerBytes == 32) {
        const __m256i between = _mm256_permute2x128_si256(rawInteger(previous.v), rawInteger(a.v), 0x21);
        return blockOf<T, N>(_mm256_alignr_epi8(rawInteger(a.v), between, 16 - bytes));
    } else {
        static_assert(bytes % 8 == 0);
        return blockOf<T, N>(_mm512_alignr_epi64(rawInteger(a.v), rawInteger(previous.v), 8 - bytes / 8));
    }
}

/// The first 1, 2, 3 and 4 of four bytes added up, or their squares; `group` counts fours of bytes.
template <int group> LUM_LANE Block<std::int32_t, 4> sumsInFour(Block<std::uint8_t, 16> bytes) {
    constexpr char p = 4 * group;
    constexpr char none = -1;
    const auto spread = blockOf<std::uint8_t, 16>(_mm_setr_epi8(p, none, none, none, p, p + 1, none, none, p,
                                                                p + 1, p + 2, none, p, p + 1, p + 2, p + 3));
    const auto pairs = multiplyAddPairs(shuffleUnits(bytes, spread), broadcast<16>(std::int8_t{1}));
    return multiplyAddPairs(pairs, broadcast<8>(std::int16_t{1}));
}
template <int group> LUM_LANE Block<std::int32_t, 4> squareSumsInFour(Block<std::uint8_t, 16> bytes) {
    constexpr char p = 4 * group;
    constexpr char none = -1;
    const auto spread = blockOf<std::uint8_t, 16>(_mm_setr_epi8(
        p, none, none, none, p, none, p + 1, none, p + 2, none, none, none, p + 2, none, p + 3, none));
    const auto firstPairToSecond = blockOf<std::uint8_t, 16>(
        _mm_setr_epi8(none, none, none, none, none, none, none, none, 4, 5, 6, 7, 4, 5, 6, 7));
    const auto words = bitsAs<std::int16_t>(shuffleUnits(bytes, spread));
    const auto pairs = multiplyAddPairs(words, words);
    return pairs + bitsAs<std::int32_t>(shuffleUnits(bitsAs<std::uint8_t>(pairs), firstPairToSecond));
}

LUM_LANE std::int32_t firstElement(auto a) {
    if constexpr (sizeof(a) > 16)
        return firstElement(lowHalf(a));
    else
        return _mm_cvtsi128_si32(rawInteger(a.v));
}

} // namespace lanes_detail

/// What is summed of a byte.
enum class SumOf { bytes, squares };

/// Wrapping sums of all bytes of a row, or of their squares, before each byte.
template <SumOf of> class RunningSums {
  public:
    /// `before` is the sum before the byte that precedes the first one.
    explicit RunningSums(std::int32_t before) : sum_(broadcast<held>(before)) {}

    /// Calls use(sums, i) with blocks of the sums before the N bytes at `place`, from the i-th on; reads those and the
    /// byte before them, from which the next call goes on.
    template <int N, class Use> LUM_LANE void next(const std::uint8_t* place, Use use) {
        if constexpr (N == 32) {
            add(load<16>(place - 1), use, 0);
            add(load<16>(place + 15), use, 16);
        } else {
            add(load<N>(place - 1), use, 0);
        }
    }

    /// The sum before the byte that precedes the next one.
    std::int32_t before() const { return lanes_detail::firstElement(sum_); }

  private:
    static constexpr int held = vectorBytes / 4;

    template <int N, class Use> LUM_LANE void add(Block<std::uint8_t, N> bytes, Use use, int i) {
        if constexpr (vectorBytes == 16) {
            const auto unit = blockOf<std::uint8_t, 16>(rawInteger(bytes.v));
            addEight<0>(unit, use, i);
            if constexpr (N == 16) addEight<2>(unit, use, i + 8);
        } else if constexpr (!isOneVector<std::int32_t, N>) {
            add(lowHalf(bytes), use, i);
            add(highHalf(bytes), use, i + N / 2);
        } else {
            auto values = widen<std::int32_t>(bytes);
            if constexpr (of == SumOf::squares)
                values = multiplyAddPairs(bitsAs<std::int16_t>(values), bitsAs<std::int16_t>(values));
            const auto sums = runningSums(values);
            const auto last = lastElementEverywhere(sums);
            if constexpr (N == held) {
                use(sums + sum_, i);
                sum_ = sum_ + last;
            } else {
                use(sums + lowHalf(sum_), i);
                sum_ = sum_ + join(last, last);
            }
        }
    }

    // The sums within eight bytes do not wait for the sum so far: the chain is one addition and one broadcast.
    template <int group, class Use> LUM_LANE void addEight(Block<std::uint8_t, 16> bytes, Use use, int i) {
        const auto first = inFour<group>(bytes);
        const auto whole = inFour<group + 1>(bytes) + lastElementEverywhere(first) + sum_;
        use(first + sum_, i);
        use(whole, i + 4);
        sum_ = lastElementEverywhere(whole);
    }
    template <int group> LUM_LANE static Block<std::int32_t, 4> inFour(Block<std::uint8_t, 16> bytes) {
        if constexpr (of == SumOf::bytes)
            return lanes_detail::sumsInFour<group>(bytes);
        else
            return lanes_detail::squareSumsInFour<group>(bytes);
    }

    Block<std::int32_t, held> sum_;
};

#if defined(__AVX2__)
/// RunningSums of bytes, 32 at a time, without a chain: a sum is that of the vector before it and a sum of as many bytes
/// as lie between the two, which grows from fours of bytes by sums of neighbours.
class RunningByteSums {
  public:
    explicit RunningByteSums(const std::uint8_t* place, std::int32_t before)
        : previous_(bitsAs<std::uint8_t>(broadcast<n / 8>(std::uint64_t{place[-1]} << 56))),
          sums_(broadcast<n / 2>(before)) {}

    template <int N, class Use> LUM_LANE void next(const std::uint8_t* place, Use use) {
        static_assert(N == 32);
        add(load<n>(place), use, 0);
        if constexpr (n < N) add(load<n>(place + n), use, n);
    }

    std::int32_t before() const { return lanes_detail::firstElement(lastElementEverywhere(sums_)); }

  private:
    static constexpr int n = vectorBytes / 2;

    template <class Use> LUM_LANE void add(Block<std::uint8_t, n> bytes, Use use, int i) {
        using lanes_detail::elementsBefore;
        const auto fours = sumsOfFourBefore(previous_, bytes);
        const auto eights = fours + elementsBefore<4>(fours_, fours);
        auto between = eights;
        if constexpr (n == 32) between = eights + elementsBefore<8>(eights_, eights);
        previous_ = bytes;
        fours_ = fours;
        eights_ = eights;
        sums_ = sums_ + widen<std::int32_t>(lowHalf(between));
        use(sums_, i);
        sums_ = sums_ + widen<std::int32_t>(highHalf(between));
        use(sums_, i + n / 2);
    }

    /// Of the four bytes before each one.
    LUM_LANE static Block<std::uint16_t, n> sumsOfFourBefore(Block<std::uint8_t, n> previous,
                                                             Block<std::uint8_t, n> bytes) {
#    if defined(__AVX512BW__) && defined(__AVX512VL__) && defined(__AVX512DQ__)
        // Each unit of 16 bytes has the eight before its sums and the eight at them.
        const __m512i units = _mm512_permutex2var_epi64(_mm512_castsi256_si512(rawInteger(bytes.v)),
                                                        _mm512_setr_epi64(11, 0, 0, 1, 1, 2, 2, 3),
                                                        _mm512_castsi256_si512(rawInteger(previous.v)));
        return blockOf<std::uint16_t, n>(_mm512_dbsad_epu8(_mm512_setzero_si512(), units, 0xE9));
#    else
        const __m128i first = _mm_alignr_epi8(rawInteger(bytes.v), rawInteger(previous.v), 8);
        const __m256i units = _mm256_inserti128_si256(_mm256_castsi128_si256(first), rawInteger(bytes.v), 1);
        return blockOf<std::uint16_t, n>(_mm256_mpsadbw_epu8(units, _mm256_setzero_si256(), 0b100100));
#    endif
    }

    Block<std::uint8_t, n> previous_;
    Block<std::uint16_t, n> fours_ = zeros<std::uint16_t, n>();
    Block<std::uint16_t, n> eights_ = zeros<std::uint16_t, n>();
    Block<std::int32_t, n / 2> sums_;
};
#endif

/// The running sums of blocks of 32 bytes, from the one at `place` on, before whose predecessor the sum is 0.
template <SumOf of> auto runningSumsFrom([[maybe_unused]] const std::uint8_t* place) {
#if defined(__AVX2__)
    if constexpr (of == SumOf::bytes)
        return RunningByteSums(place, 0);
    else
#endif
        return RunningSums<of>(0);
}

} // namespace lum

// Vectors of a fixed number of elements. A Block<T, N> holds N elements of T in as many vectors of the target as they
// take: 64 bytes are four vectors of 16 bytes, two of 32 or one of 64. Kernels say how many elements they work on, as
// the contract of the library does, and never ask how wide a vector is; so one source serves every build with the
// same bits.
//
// Elements are in memory order, element 0 first, through every conversion. Integer arithmetic wraps. Each operation
// of floating point rounds once, by the caller's rounding mode; nothing is contracted. A comparison gives a mask: per
// element, all bits set or none, as signed integers of the element's size.
//
// A block below 16 bytes lies in the low part of one vector, integers only.
#pragma once

#include <cstdint>
#include <cstring>
#include <immintrin.h>
#include <type_traits>
#include <utility>

#include "frame/image.h"
#include "frame/stores.h"
#include "lumcv/types.h"

// Inlined whatever the size of the kernel: an operation is an instruction or a few.
#define LUM_LANE [[gnu::always_inline]] inline
// The same for a lambda, after its parameters.
#define LUM_INLINED __attribute__((always_inline))

namespace lum {

/// Bytes of the target's vectors.
#if defined(__AVX512BW__) && defined(__AVX512VL__) && defined(__AVX512DQ__)
inline constexpr int vectorBytes = 64;
#elif defined(__AVX2__)
inline constexpr int vectorBytes = 32;
#else
inline constexpr int vectorBytes = 16;
#endif

template <int bytes>
using SignedOf = std::conditional_t<
    bytes == 1, std::int8_t,
    std::conditional_t<bytes == 2, std::int16_t, std::conditional_t<bytes == 4, std::int32_t, std::int64_t>>>;
template <int bytes> using UnsignedOf = std::make_unsigned_t<SignedOf<bytes>>;

/// A vector type of the compiler, wrapped so that templates can deduce it.
template <class T, int bytes> struct VectorOf { typedef T Type __attribute__((vector_size(bytes))); };

/// More than one vector: two halves.
template <class T, int N> struct Block {
    using Element = T;
    static constexpr int count = N;
    Block<T, N / 2> low;
    Block<T, N / 2> high;
};

/// One vector, or the low part of one.
template <class T, int N>
requires(N* static_cast<int>(sizeof(T)) <= vectorBytes) struct Block<T, N> {
    using Element = T;
    static constexpr int count = N;
    static constexpr int bytes = N * static_cast<int>(sizeof(T));
    static constexpr int registerBytes = bytes < 16 ? 16 : bytes;
    static_assert(bytes >= 16 || std::is_integral_v<T>,
                  "unused lanes of floating point could raise exceptions");
    using Vector = typename VectorOf<T, registerBytes>::Type;
    using Unsigned = typename VectorOf<std::conditional_t<std::is_integral_v<T>, UnsignedOf<sizeof(T)>, T>,
                                       registerBytes>::Type;
    Vector v;
};

template <class T, int N> inline constexpr bool isOneVector = N* static_cast<int>(sizeof(T)) <= vectorBytes;
template <class T, int N> using MaskOf = Block<SignedOf<sizeof(T)>, N>;

using Float4 = Block<float, 4>;
using Float16 = Block<float, 16>;

/// The vector as the type that instructions take, and back.
template <class V> LUM_LANE auto rawInteger(V v) {
    if constexpr (sizeof(V) == 16)
        return reinterpret_cast<__m128i>(v);
    else if constexpr (sizeof(V) == 32)
        return reinterpret_cast<__m256i>(v);
    else
        return reinterpret_cast<__m512i>(v);
}
template <class T, int N, class Raw> LUM_LANE Block<T, N> blockOf(Raw value) {
    return {reinterpret_cast<typename Block<T, N>::Vector>(value)};
}

/// Calls work<n>(i) for the parts i .. i + n - 1 of N elements, as large as one vector holds: for a long expression
/// whose values should stay in registers. T is the widest element of the expression.
template <class T, int N, class Work> LUM_LANE void forVectors(Work work) {
    constexpr int held = vectorBytes / static_cast<int>(sizeof(T));
    constexpr int n = N < held ? N : held;
    [&]<int... part>(std::integer_sequence<int, part...>) LUM_INLINED {
        (work.template operator()<n>(part * n), ...);
    }
    (std::make_integer_sequence<int, N / n>());
}

/// The block whose parts, as large as one vector holds, are work(part of a, index of its first element): for a long
/// expression whose values should stay in registers. `a` has elements of the widest type of the expression.
template <class T, int N, class Work>
LUM_LANE Block<T, N> mapVectors(Block<T, N> a, Work work, int first = 0) {
    if constexpr (!isOneVector<T, N>)
        return {mapVectors(a.low, work, first), mapVectors(a.high, work, first + N / 2)};
    else
        return work(a, first);
}

/// The block whose parts work<n>(i) gives, one vector after the other: for a long expression whose values should stay
/// in registers until its results are narrowed together.
template <class T, int N, class Work> LUM_LANE Block<T, N> fromVectors(Work work, int i = 0) {
    if constexpr (isOneVector<T, N>) {
        return work.template operator()<N>(i);
    } else {
        const auto low = fromVectors<T, N / 2>(work, i);
        const auto high = fromVectors<T, N / 2>(work, i + N / 2);
        return {low, high};
    }
}

/// Calls work<n>(i) for blocks i .. i + n - 1 that follow one another from `first` towards `end`: as many elements as one
/// vector of T holds, again and again, then at most one block of each half of that down to `least`. Returns where they
/// end, fewer than `least` elements before `end`. With T smaller than what is computed, n elements are several vectors,
/// whose arithmetic overlaps.
template <class T, int least, class Work, class Index>
LUM_LANE Index forBlocks(Index first, Index end, Work work) {
    constexpr int held = vectorBytes / static_cast<int>(sizeof(T));
    static_assert(least <= held);
    Index i = first;
    for (; i <= end - held; i += held) work.template operator()<held>(i);
    const auto halves = [&]<int n>(auto self, std::integral_constant<int, n>) LUM_INLINED {
        if constexpr (n >= least) {
            if (i <= end - n) {
                work.template operator()<n>(i);
                i += n;
            }
            self(self, std::integral_constant<int, n / 2>());
        }
    };
    halves(halves, std::integral_constant<int, held / 2>());
    return i;
}

// ---- load, store, broadcast

/// N elements from any address.
template <int N, class T> LUM_LANE Block<std::remove_const_t<T>, N> load(T* place) {
    using U = std::remove_const_t<T>;
    if constexpr (!isOneVector<U, N>) {
        return {load<N / 2>(place), load<N / 2>(place + N / 2)};
    } else if constexpr (Block<U, N>::bytes == 8) {
        return blockOf<U, N>(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(place)));
    } else if constexpr (Block<U, N>::bytes == 4) {
        // Through a register: a vector put together in memory waits for its parts to be stored.
        int bits;
        std::memcpy(&bits, place, sizeof bits);
        return blockOf<U, N>(_mm_cvtsi32_si128(bits));
    } else {
        Block<U, N> block{};
        std::memcpy(&block.v, place, Block<U, N>::bytes);
        return block;
    }
}

/// The block to any address.
template <class T, int N> LUM_LANE void store(Block<T, N> block, T* place) {
    if constexpr (!isOneVector<T, N>) {
        store(block.low, place);
        store(block.high, place + N / 2);
    } else if constexpr (Block<T, N>::bytes == 8) {
        _mm_storel_epi64(reinterpret_cast<__m128i*>(place), rawInteger(block.v));
    } else {
        std::memcpy(place, &block.v, Block<T, N>::bytes);
    }
}

/// Streaming stores need an address that is a multiple of this.
inline constexpr int streamingAlignment = vectorBytes;
inline bool isStreamable(const void* place) {
    return reinterpret_cast<std::uintptr_t>(place) % streamingAlignment == 0;
}

/// All rows of an image.
template <class T> bool isStreamable(Image<T> image) {
    return isStreamable(image.first) && image.step % streamingAlignment == 0;
}

/// The block past the cache, to a multiple of streamingAlignment; a kernel that may have done so ends with storeFence().
template <class T, int N> LUM_LANE void storeStreaming(Block<T, N> block, T* place) {
    static_assert(N * sizeof(T) >= 16, "only whole vectors are streamed");
    if constexpr (!isOneVector<T, N>) {
        storeStreaming(block.low, place);
        storeStreaming(block.high, place + N / 2);
    } else if constexpr (Block<T, N>::bytes == 16) {
        _mm_stream_si128(reinterpret_cast<__m128i*>(place), rawInteger(block.v));
    } else if constexpr (Block<T, N>::bytes == 32) {
        _mm256_stream_si256(reinterpret_cast<__m256i*>(place), rawInteger(block.v));
    } else {
        _mm512_stream_si512(reinterpret_cast<__m512i*>(place), rawInteger(block.v));
    }
}
template <Stores stores, class T, int N> LUM_LANE void store(Block<T, N> block, T* place) {
    if constexpr (stores == Stores::streaming)
        storeStreaming(block, place);
    else
        store(block, place);
}

/// The first `count` elements, 0 <= count <= N, and nothing after them in memory; the others are 0.
template <int N, class T> LUM_LANE Block<std::remove_const_t<T>, N> loadPartial(T* place, int count) {
    using U = std::remove_const_t<T>;
    alignas(64) U staged[N] = {};
    std::memcpy(staged, place, static_cast<std::size_t>(count) * sizeof(T));
    return load<N>(staged);
}
template <class T, int N> LUM_LANE void storePartial(Block<T, N> block, T* place, int count) {
    alignas(64) T staged[N];
    store(block, staged);
    std::memcpy(place, staged, static_cast<std::size_t>(count) * sizeof(T));
}

/// The value in every element.
template <int N, class T> LUM_LANE Block<T, N> broadcast(T value) {
    if constexpr (!isOneVector<T, N>) {
        const auto half = broadcast<N / 2>(value);
        return {half, half};
    } else {
        return {value - typename Block<T, N>::Vector{}};
    }
}
template <class T, int N> LUM_LANE Block<T, N> zeros() {
    if constexpr (!isOneVector<T, N>)
        return {zeros<T, N / 2>(), zeros<T, N / 2>()};
    else
        return {typename Block<T, N>::Vector{}};
}

// ---- halves and reinterpretation

template <class T, int N> LUM_LANE Block<T, N / 2> lowHalf(Block<T, N> a) {
    if constexpr (!isOneVector<T, N>) {
        return a.low;
    } else {
        if constexpr (Block<T, N>::bytes <= 16)
            return blockOf<T, N / 2>(rawInteger(a.v));
        else if constexpr (Block<T, N>::bytes == 32)
            return blockOf<T, N / 2>(_mm256_castsi256_si128(rawInteger(a.v)));
        else
            return blockOf<T, N / 2>(_mm512_castsi512_si256(rawInteger(a.v)));
    }
}
template <class T, int N> LUM_LANE Block<T, N / 2> highHalf(Block<T, N> a) {
    if constexpr (!isOneVector<T, N>) {
        return a.high;
    } else {
        if constexpr (Block<T, N>::bytes <= 16)
            return blockOf<T, N / 2>(_mm_srli_si128(rawInteger(a.v), (Block<T, N>::bytes / 2)));
        else if constexpr (Block<T, N>::bytes == 32)
            return blockOf<T, N / 2>(_mm256_extracti128_si256(rawInteger(a.v), 1));
        else
            return blockOf<T, N / 2>(_mm512_extracti64x4_epi64(rawInteger(a.v), 1));
    }
}

/// Both blocks, one after the other.
template <class T, int N> LUM_LANE Block<T, 2 * N> join(Block<T, N> low, Block<T, N> high) {
    constexpr int bytes = 2 * N * static_cast<int>(sizeof(T));
    if constexpr (bytes > vectorBytes) {
        return {low, high};
    } else if constexpr (bytes == 8) {
        return blockOf<T, 2 * N>(_mm_unpacklo_epi32(rawInteger(low.v), rawInteger(high.v)));
    } else if constexpr (bytes == 16) {
        return blockOf<T, 2 * N>(_mm_unpacklo_epi64(rawInteger(low.v), rawInteger(high.v)));
    } else if constexpr (bytes == 32) {
        return blockOf<T, 2 * N>(
            _mm256_inserti128_si256(_mm256_castsi128_si256(rawInteger(low.v)), rawInteger(high.v), 1));
    } else {
        return blockOf<T, 2 * N>(
            _mm512_inserti64x4(_mm512_castsi256_si512(rawInteger(low.v)), rawInteger(high.v), 1));
    }
}

/// The same bits as elements of another type of the same or another size.
template <class U, class T, int N> LUM_LANE auto bitsAs(Block<T, N> a) {
    constexpr int M = N * static_cast<int>(sizeof(T)) / static_cast<int>(sizeof(U));
    if constexpr (!isOneVector<T, N>)
        return Block<U, M>{bitsAs<U>(a.low), bitsAs<U>(a.high)};
    else
        return blockOf<U, M>(rawInteger(a.v));
}

// ---- arithmetic and bits

#define LUM_LANE_OPERATOR(symbol)                                                                            \
    template <class T, int N> LUM_LANE Block<T, N> operator symbol(Block<T, N> a, Block<T, N> b) {           \
        if constexpr (!isOneVector<T, N>) {                                                                  \
            return {a.low symbol b.low, a.high symbol b.high};                                               \
        } else {                                                                                             \
            using Unsigned = typename Block<T, N>::Unsigned;                                                 \
            return {reinterpret_cast<typename Block<T, N>::Vector>(                                          \
                reinterpret_cast<Unsigned>(a.v) symbol reinterpret_cast<Unsigned>(b.v))};                    \
        }                                                                                                    \
    }
LUM_LANE_OPERATOR(+)
LUM_LANE_OPERATOR(-)
LUM_LANE_OPERATOR(*)
#undef LUM_LANE_OPERATOR

/// One value in every element of a vector, for blocks of any size. Made before a loop it is broadcast once, whatever the
/// loop stores.
template <class T> struct Uniform {
    Block<T, vectorBytes / static_cast<int>(sizeof(T))> vector;

    explicit Uniform(T value) : vector(broadcast<vectorBytes / static_cast<int>(sizeof(T))>(value)) {}
    Uniform() = default;

    /// As a block of at most one vector.
    template <int N> LUM_LANE Block<T, N> block() const {
        if constexpr (N == decltype(vector)::count)
            return vector;
        else if constexpr (2 * N == decltype(vector)::count)
            return lowHalf(vector);
        else
            return lowHalf(lowHalf(vector));
    }
};
template <class T, int N> LUM_LANE Block<T, N> operator*(Block<T, N> a, const Uniform<T>& factor) {
    if constexpr (!isOneVector<T, N>)
        return {a.low * factor, a.high * factor};
    else
        return a * factor.template block<N>();
}

/// A factor for every element.
template <class T, int N> LUM_LANE Block<T, N> operator*(T factor, Block<T, N> a) {
    return broadcast<N>(factor) * a;
}
template <class T, int N> LUM_LANE Block<T, N> operator*(Block<T, N> a, T factor) {
    return a * broadcast<N>(factor);
}

template <class T, int N> LUM_LANE Block<T, N> operator/(Block<T, N> a, Block<T, N> b) {
    static_assert(std::is_floating_point_v<T>);
    if constexpr (!isOneVector<T, N>)
        return {a.low / b.low, a.high / b.high};
    else
        return {a.v / b.v};
}

// Bit operations take elements of floating point too, by their bits.
#define LUM_LANE_BITS(symbol)                                                                                \
    template <class T, int N> LUM_LANE Block<T, N> operator symbol(Block<T, N> a, Block<T, N> b) {           \
        if constexpr (!isOneVector<T, N>) {                                                                  \
            return {a.low symbol b.low, a.high symbol b.high};                                               \
        } else {                                                                                             \
            using Bits = typename VectorOf<UnsignedOf<sizeof(T)>, Block<T, N>::registerBytes>::Type;         \
            return {reinterpret_cast<typename Block<T, N>::Vector>(reinterpret_cast<Bits>(a.v)               \
                                                                       symbol reinterpret_cast<Bits>(b.v))}; \
        }                                                                                                    \
    }
LUM_LANE_BITS(&)
LUM_LANE_BITS(|)
LUM_LANE_BITS(^)
#undef LUM_LANE_BITS

template <class T, int N> LUM_LANE Block<T, N> operator~(Block<T, N> a) {
    if constexpr (!isOneVector<T, N>)
        return {~a.low, ~a.high};
    else
        return {~a.v};
}

/// The bits of b where those of a are clear.
template <class T, int N> LUM_LANE Block<T, N> andNot(Block<T, N> a, Block<T, N> b) {
    if constexpr (!isOneVector<T, N>)
        return {andNot(a.low, b.low), andNot(a.high, b.high)};
    else if constexpr (Block<T, N>::registerBytes == 16)
        return blockOf<T, N>(_mm_andnot_si128(rawInteger(a.v), rawInteger(b.v)));
    else if constexpr (Block<T, N>::registerBytes == 32)
        return blockOf<T, N>(_mm256_andnot_si256(rawInteger(a.v), rawInteger(b.v)));
    else
        return blockOf<T, N>(_mm512_andnot_si512(rawInteger(a.v), rawInteger(b.v)));
}

/// Shifts of each element; to the right, signed elements keep their sign.
template <class T, int N> LUM_LANE Block<T, N> operator<<(Block<T, N> a, int bits) {
    if constexpr (!isOneVector<T, N>)
        return {a.low << bits, a.high << bits};
    else
        return {reinterpret_cast<typename Block<T, N>::Vector>(
            reinterpret_cast<typename Block<T, N>::Unsigned>(a.v) << bits)};
}
template <class T, int N> LUM_LANE Block<T, N> operator>>(Block<T, N> a, int bits) {
    if constexpr (!isOneVector<T, N>) {
        return {a.low >> bits, a.high >> bits};
    } else if constexpr (sizeof(T) == 4) {
        // A count that is not known here moves to a vector register by one instruction.
        const auto x = rawInteger(a.v);
        constexpr bool isSigned = std::is_signed_v<T>;
        if constexpr (Block<T, N>::registerBytes == 16)
            return blockOf<T, N>(isSigned ? _mm_srai_epi32(x, bits) : _mm_srli_epi32(x, bits));
        else if constexpr (Block<T, N>::registerBytes == 32)
            return blockOf<T, N>(isSigned ? _mm256_srai_epi32(x, bits) : _mm256_srli_epi32(x, bits));
        else if (__builtin_constant_p(bits))
            return {a.v >> bits};
        else
            return blockOf<T, N>(isSigned ? _mm512_sra_epi32(x, _mm_cvtsi32_si128(bits))
                                          : _mm512_srl_epi32(x, _mm_cvtsi32_si128(bits)));
    } else {
        return {a.v >> bits};
    }
}

// ---- comparisons and selection

#define LUM_LANE_COMPARISON(symbol)                                                                          \
    template <class T, int N> LUM_LANE MaskOf<T, N> operator symbol(Block<T, N> a, Block<T, N> b) {          \
        if constexpr (!isOneVector<T, N>)                                                                    \
            return {a.low symbol b.low, a.high symbol b.high};                                               \
        else                                                                                                 \
            return {reinterpret_cast<typename MaskOf<T, N>::Vector>(a.v symbol b.v)};                        \
    }
LUM_LANE_COMPARISON(==)
LUM_LANE_COMPARISON(!=)
LUM_LANE_COMPARISON(<)
LUM_LANE_COMPARISON(<=)
LUM_LANE_COMPARISON(>)
LUM_LANE_COMPARISON(>=)
#undef LUM_LANE_COMPARISON

/// Per element, a where the mask is set, b elsewhere. The mask is all bits or none.
template <class T, int N> LUM_LANE Block<T, N> select(MaskOf<T, N> mask, Block<T, N> a, Block<T, N> b) {
    if constexpr (!isOneVector<T, N>) {
        return {select(mask.low, a.low, b.low), select(mask.high, a.high, b.high)};
    } else {
        const auto bits = bitsAs<T>(mask);
        constexpr int bytes = Block<T, N>::registerBytes;
        const auto m = rawInteger(bits.v);
        const auto x = rawInteger(a.v);
        const auto y = rawInteger(b.v);
        if constexpr (vectorBytes == 16)
            return (bits & a) | andNot(bits, b);
        else if constexpr (vectorBytes == 32 && bytes == 16)
            return blockOf<T, N>(_mm_blendv_epi8(y, x, m));
        else if constexpr (vectorBytes == 32)
            return blockOf<T, N>(_mm256_blendv_epi8(y, x, m));
        else if constexpr (bytes == 16) // bit by bit, m ? x : y
            return blockOf<T, N>(_mm_ternarylogic_epi64(m, x, y, 0xCA));
        else if constexpr (bytes == 32)
            return blockOf<T, N>(_mm256_ternarylogic_epi64(m, x, y, 0xCA));
        else
            return blockOf<T, N>(_mm512_ternarylogic_epi64(m, x, y, 0xCA));
    }
}

// ---- extremes, absolute values and saturating arithmetic

/// The smaller and the larger per element. In floating point they are (a < b ? a : b) and (a > b ? a : b): of a NaN,
/// and of two zeros, the second operand is the result.
template <class T, int N> LUM_LANE Block<T, N> min(Block<T, N> a, Block<T, N> b) {
    constexpr int bytes = N * static_cast<int>(sizeof(T));
    if constexpr (!isOneVector<T, N>)
        return {min(a.low, b.low), min(a.high, b.high)};
    else if constexpr (std::is_same_v<T, float> && bytes == 16)
        return {_mm_min_ps(a.v, b.v)};
    else if constexpr (std::is_same_v<T, float> && bytes == 32)
        return {_mm256_min_ps(a.v, b.v)};
    else if constexpr (std::is_same_v<T, float>)
        return {_mm512_min_ps(a.v, b.v)};
    else if constexpr (std::is_same_v<T, double> && bytes == 16)
        return {_mm_min_pd(a.v, b.v)};
    else if constexpr (std::is_same_v<T, double> && bytes == 32)
        return {_mm256_min_pd(a.v, b.v)};
    else if constexpr (std::is_same_v<T, double>)
        return {_mm512_min_pd(a.v, b.v)};
    else if constexpr (std::is_same_v<T, std::uint16_t> && vectorBytes == 16) // no such instruction
        return a - blockOf<T, N>(_mm_subs_epu16(rawInteger(a.v), rawInteger(b.v)));
    else
        return {a.v < b.v ? a.v : b.v};
}
template <class T, int N> LUM_LANE Block<T, N> max(Block<T, N> a, Block<T, N> b) {
    constexpr int bytes = N * static_cast<int>(sizeof(T));
    if constexpr (!isOneVector<T, N>)
        return {max(a.low, b.low), max(a.high, b.high)};
    else if constexpr (std::is_same_v<T, float> && bytes == 16)
        return {_mm_max_ps(a.v, b.v)};
    else if constexpr (std::is_same_v<T, float> && bytes == 32)
        return {_mm256_max_ps(a.v, b.v)};
    else if constexpr (std::is_same_v<T, float>)
        return {_mm512_max_ps(a.v, b.v)};
    else if constexpr (std::is_same_v<T, double> && bytes == 16)
        return {_mm_max_pd(a.v, b.v)};
    else if constexpr (std::is_same_v<T, double> && bytes == 32)
        return {_mm256_max_pd(a.v, b.v)};
    else if constexpr (std::is_same_v<T, double>)
        return {_mm512_max_pd(a.v, b.v)};
    else if constexpr (std::is_same_v<T, std::uint16_t> && vectorBytes == 16) // no such instruction
        return b + blockOf<T, N>(_mm_subs_epu16(rawInteger(a.v), rawInteger(b.v)));
    else
        return {a.v > b.v ? a.v : b.v};
}

/// Sums that stay within the element's range; elements of 8 and 16 bits.
template <class T, int N> LUM_LANE Block<T, N> addSaturated(Block<T, N> a, Block<T, N> b) {
    static_assert(std::is_integral_v<T> && sizeof(T) <= 2);
    if constexpr (!isOneVector<T, N>) {
        return {addSaturated(a.low, b.low), addSaturated(a.high, b.high)};
    } else {
        const auto x = rawInteger(a.v);
        const auto y = rawInteger(b.v);
        constexpr int bytes = Block<T, N>::registerBytes;
        constexpr bool isByte = sizeof(T) == 1;
        if constexpr (std::is_unsigned_v<T>) {
            if constexpr (bytes == 16)
                return blockOf<T, N>(isByte ? _mm_adds_epu8(x, y) : _mm_adds_epu16(x, y));
            else if constexpr (bytes == 32)
                return blockOf<T, N>(isByte ? _mm256_adds_epu8(x, y) : _mm256_adds_epu16(x, y));
            else
                return blockOf<T, N>(isByte ? _mm512_adds_epu8(x, y) : _mm512_adds_epu16(x, y));
        } else {
            if constexpr (bytes == 16)
                return blockOf<T, N>(isByte ? _mm_adds_epi8(x, y) : _mm_adds_epi16(x, y));
            else if constexpr (bytes == 32)
                return blockOf<T, N>(isByte ? _mm256_adds_epi8(x, y) : _mm256_adds_epi16(x, y));
            else
                return blockOf<T, N>(isByte ? _mm512_adds_epi8(x, y) : _mm512_adds_epi16(x, y));
        }
    }
}
/// Differences that stay within the element's range; elements of 8 and 16 bits.
template <class T, int N> LUM_LANE Block<T, N> subSaturated(Block<T, N> a, Block<T, N> b) {
    static_assert(std::is_integral_v<T> && sizeof(T) <= 2);
    if constexpr (!isOneVector<T, N>) {
        return {subSaturated(a.low, b.low), subSaturated(a.high, b.high)};
    } else {
        const auto x = rawInteger(a.v);
        const auto y = rawInteger(b.v);
        constexpr int bytes = Block<T, N>::registerBytes;
        constexpr bool isByte = sizeof(T) == 1;
        if constexpr (std::is_unsigned_v<T>) {
            if constexpr (bytes == 16)
                return blockOf<T, N>(isByte ? _mm_subs_epu8(x, y) : _mm_subs_epu16(x, y));
            else if constexpr (bytes == 32)
                return blockOf<T, N>(isByte ? _mm256_subs_epu8(x, y) : _mm256_subs_epu16(x, y));
            else
                return blockOf<T, N>(isByte ? _mm512_subs_epu8(x, y) : _mm512_subs_epu16(x, y));
        } else {
            if constexpr (bytes == 16)
                return blockOf<T, N>(isByte ? _mm_subs_epi8(x, y) : _mm_subs_epi16(x, y));
            else if constexpr (bytes == 32)
                return blockOf<T, N>(isByte ? _mm256_subs_epi8(x, y) : _mm256_subs_epi16(x, y));
            else
                return blockOf<T, N>(isByte ? _mm512_subs_epi8(x, y) : _mm512_subs_epi16(x, y));
        }
    }
}

template <class T, int N> LUM_LANE Block<T, N> abs(Block<T, N> a);

/// |a - b|, exact: unsigned elements of 8 and 16 bits, and floats, whose difference rounds once and loses its sign bit.
template <class T, int N> LUM_LANE Block<T, N> absDiff(Block<T, N> a, Block<T, N> b) {
    if constexpr (std::is_integral_v<T>) {
        static_assert(std::is_unsigned_v<T>);
        return subSaturated(a, b) | subSaturated(b, a);
    } else {
        return abs(a - b);
    }
}

/// The magnitude. In floating point the sign bit is cleared; the lowest integer keeps its bits.
template <class T, int N> LUM_LANE Block<T, N> abs(Block<T, N> a) {
    if constexpr (!isOneVector<T, N>) {
        return {abs(a.low), abs(a.high)};
    } else if constexpr (std::is_floating_point_v<T>) {
        using Bits = UnsignedOf<sizeof(T)>;
        return a & bitsAs<T>(broadcast<N>(static_cast<Bits>(static_cast<Bits>(~Bits{0}) >> 1)));
    } else {
        static_assert(std::is_signed_v<T> && sizeof(T) <= 4);
        const auto x = rawInteger(a.v);
        if constexpr (Block<T, N>::registerBytes == 16)
            return blockOf<T, N>(sizeof(T) == 1   ? _mm_abs_epi8(x)
                                 : sizeof(T) == 2 ? _mm_abs_epi16(x)
                                                  : _mm_abs_epi32(x));
        else if constexpr (Block<T, N>::registerBytes == 32)
            return blockOf<T, N>(sizeof(T) == 1   ? _mm256_abs_epi8(x)
                                 : sizeof(T) == 2 ? _mm256_abs_epi16(x)
                                                  : _mm256_abs_epi32(x));
        else
            return blockOf<T, N>(sizeof(T) == 1   ? _mm512_abs_epi8(x)
                                 : sizeof(T) == 2 ? _mm512_abs_epi16(x)
                                                  : _mm512_abs_epi32(x));
    }
}

template <class T, int N> LUM_LANE Block<T, N> sqrt(Block<T, N> a) {
    constexpr int bytes = N * static_cast<int>(sizeof(T));
    constexpr bool isFloat = std::is_same_v<T, float>;
    static_assert(std::is_floating_point_v<T>);
    if constexpr (!isOneVector<T, N>)
        return {sqrt(a.low), sqrt(a.high)};
    else if constexpr (isFloat && bytes == 16)
        return {_mm_sqrt_ps(a.v)};
    else if constexpr (isFloat && bytes == 32)
        return {_mm256_sqrt_ps(a.v)};
    else if constexpr (isFloat)
        return {_mm512_sqrt_ps(a.v)};
    else if constexpr (bytes == 16)
        return {_mm_sqrt_pd(a.v)};
    else if constexpr (bytes == 32)
        return {_mm256_sqrt_pd(a.v)};
    else
        return {_mm512_sqrt_pd(a.v)};
}

} // namespace lum

// Rows of bits, many at a time. A line may be read from any bit: 32 bits are taken from the word that holds the first of them
// and the word after it, so lines can be read a few bytes beyond their end.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "kernels/morph/blocks.h"
#include "kernels/morph/operation.h"

namespace lum::kernels {

/// What blocks may read and write beyond the end of a line.
inline constexpr std::ptrdiff_t bitLineSlack = 72;

template <MorphOp op, class V> LUM_LANE V joinBits(V a, V b) {
    if constexpr (op == MorphOp::dilate)
        return a | b;
    else
        return a & b;
}

/// A place in a line: 1 to 8 bits into a byte, so that no word is shifted by its whole width.
struct BitPlace {
    const Lum8u* byte;
    int shift;

    /// Bit i of a line, which may lie before its first byte.
    static BitPlace of(const Lum8u* line, std::ptrdiff_t i) {
        const std::ptrdiff_t byte = (i - 1) >> 3;
        return {line + byte, static_cast<int>(i - 8 * byte)};
    }
};

/// N bytes as words, or one byte.
template <int N> LUM_LANE auto takeBytes(const Lum8u* place) {
    if constexpr (N == 1)
        return *place;
    else
        return load<N / 4>(reinterpret_cast<const std::uint32_t*>(place));
}
LUM_LANE void putBytes(Lum8u value, Lum8u* place) { *place = value; }
template <int N> LUM_LANE void putBytes(Block<std::uint32_t, N> value, Lum8u* place) {
    store(value, reinterpret_cast<std::uint32_t*>(place));
}

/// The bits from a place on, x bytes further.
template <int N> LUM_LANE auto takeBits(BitPlace place, std::ptrdiff_t x) {
    const Lum8u* const byte = place.byte + x;
    if constexpr (N == 1)
        return static_cast<Lum8u>((byte[0] | byte[1] << 8) >> place.shift);
    else
        return (takeBytes<N>(byte) >> place.shift) | (takeBytes<N>(byte + 4) << (32 - place.shift));
}

template <MorphOp op> struct BitRows {
    /// Windows of twice the width, or less: line[i] and line[i + distance] are joined. Blocks run over the end.
    static void growInPlace(Lum8u* line, std::ptrdiff_t bytes, std::ptrdiff_t distance) {
        grow(line, line, bytes, distance);
    }

    static void grow(const Lum8u* line, Lum8u* out, std::ptrdiff_t bytes, std::ptrdiff_t distance) {
        constexpr int N = 64;
        if (distance % 8 == 0) {
            const Lum8u* const ahead = line + distance / 8;
            for (std::ptrdiff_t x = 0; x < bytes; x += N)
                putBytes(joinBits<op>(takeBytes<N>(line + x), takeBytes<N>(ahead + x)), out + x);
        } else {
            const BitPlace ahead = BitPlace::of(line, distance);
            for (std::ptrdiff_t x = 0; x < bytes; x += N)
                putBytes(joinBits<op>(takeBytes<N>(line + x), takeBits<N>(ahead, x)), out + x);
        }
    }

    /// The join of lines read at places.
    template <int count> static void join(const BitPlace (&places)[count], Lum8u* out, std::ptrdiff_t bytes) {
        forEachBlock<Lum8u>(bytes, [&]<int N>(std::ptrdiff_t x) LUM_BLOCK_BODY {
            auto bits = takeBits<N>(places[0], x);
            for (int i = 1; i < count; ++i) bits = joinBits<op>(bits, takeBits<N>(places[i], x));
            putBytes(bits, out + x);
        });
    }

    /// The join of any number of lines, with what `out` holds if that is to be kept.
    static void joinMany(const BitPlace* places, int count, Lum8u* out, std::ptrdiff_t bytes, bool joinsOut) {
        forEachBlock<Lum8u>(bytes, [&]<int N>(std::ptrdiff_t x) LUM_BLOCK_BODY {
            auto bits = takeBits<N>(places[0], x);
            for (int i = 1; i < count; ++i) bits = joinBits<op>(bits, takeBits<N>(places[i], x));
            if (joinsOut) bits = joinBits<op>(bits, takeBytes<N>(out + x));
            putBytes(bits, out + x);
        });
    }

    /// The join of whole rows.
    static void joinRows(Image<const Lum8u> rows, std::ptrdiff_t count, Lum8u* out, std::ptrdiff_t bytes) {
        forEachBlock<Lum8u>(bytes, [&]<int N>(std::ptrdiff_t x) LUM_BLOCK_BODY {
            const Lum8u* row = rows.first + x;
            auto bits = takeBytes<N>(row);
            for (std::ptrdiff_t i = 1; i < count; ++i) {
                row = Image<const Lum8u>{row, rows.step}.row(1);
                bits = joinBits<op>(bits, takeBytes<N>(row));
            }
            putBytes(bits, out + x);
        });
    }
};

/// Sets bits first .. last - 1 of a line, which may lie before its first byte.
inline void setBits(Lum8u* line, std::ptrdiff_t first, std::ptrdiff_t last, bool value) {
    for (std::ptrdiff_t i = first; i < last;) {
        const std::ptrdiff_t byte = i >> 3;
        const std::ptrdiff_t end = last < 8 * (byte + 1) ? last : 8 * (byte + 1);
        const auto bits = static_cast<Lum8u>(((1U << (end - i)) - 1) << (i - 8 * byte));
        line[byte] = static_cast<Lum8u>(value ? line[byte] | bits : line[byte] & ~bits);
        i = end;
    }
}

inline bool bitAt(const Lum8u* line, std::ptrdiff_t i) { return (line[i >> 3] >> (i & 7) & 1) != 0; }

/// Calls write(bytes), which writes whole bytes, and gives back the bits of the first and the last byte that do not belong to
/// the `count` bits from `bit` on.
template <class Write>
LUM_LANE void keepingOtherBits(Lum8u* row, int bit, std::ptrdiff_t count, Write write) {
    const std::ptrdiff_t bytes = (bit + count + 7) >> 3;
    const auto before = static_cast<Lum8u>((1U << bit) - 1);
    const auto after = static_cast<Lum8u>(~0U << (((bit + count - 1) & 7) + 1));
    const Lum8u first = row[0];
    const Lum8u last = row[bytes - 1];
    write(bytes);
    row[0] = static_cast<Lum8u>((row[0] & ~before) | (first & before));
    row[bytes - 1] = static_cast<Lum8u>((row[bytes - 1] & ~after) | (last & after));
}

} // namespace lum::kernels

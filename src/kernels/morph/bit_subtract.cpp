#include "kernels/morph/bit_subtract.h"

#include <cstdint>

#include "frame/lanes.h"

namespace lum::kernels {
namespace {

template <OtherOperand role, class Bits> LUM_LANE Bits difference(Bits other, Bits own) {
    return role == OtherOperand::minuend ? other & ~own : own & ~other;
}

/// A row of the other image, seen from the bytes of dst: byte k of dst meets the bits from bit `shift` of byte k on.
struct ShiftedRow {
    const Lum8u* bytes;
    int shift;

    int byte(std::ptrdiff_t k) const {
        const int low = bytes[k] >> shift;
        return shift == 0 ? low : low | bytes[k + 1] << (8 - shift);
    }
};

/// Whole bytes from k on, N at a time; the first byte that is left. The words of N bytes and of the N bytes one further on
/// hold all bits, and no byte is read that has none.
template <OtherOperand role, int N>
std::ptrdiff_t subtractBlocks(ShiftedRow other, Lum8u* dst, std::ptrdiff_t k, std::ptrdiff_t end) {
    const auto words = [](const Lum8u* place) {
        return load<N / 4>(reinterpret_cast<const std::uint32_t*>(place));
    };
    for (; k <= end - N; k += N) {
        auto bits = words(other.bytes + k);
        if (other.shift != 0)
            bits = (bits >> other.shift) | (words(other.bytes + k + 1) << (8 - other.shift));
        store(difference<role>(bits, words(dst + k)), reinterpret_cast<std::uint32_t*>(dst + k));
    }
    return k;
}

template <OtherOperand role>
void subtractBytes(ShiftedRow other, Lum8u* dst, std::ptrdiff_t k, std::ptrdiff_t end) {
    for (; k < end; ++k) dst[k] = static_cast<Lum8u>(difference<role>(other.byte(k), int{dst[k]}));
}

template <OtherOperand role> struct Vectors {
    static void bytes(ShiftedRow other, Lum8u* dst, std::ptrdiff_t k, std::ptrdiff_t end) {
        // 64 bytes per iteration, then 16; tail: scalar, since dst is read and must not be visited twice
        k = subtractBlocks<role, 64>(other, dst, k, end);
        k = subtractBlocks<role, 16>(other, dst, k, end);
        subtractBytes<role>(other, dst, k, end);
    }
};
template <OtherOperand role> struct Scalar {
    static void bytes(ShiftedRow other, Lum8u* dst, std::ptrdiff_t k, std::ptrdiff_t end) {
        subtractBytes<role>(other, dst, k, end);
    }
};

/// The first and the last byte of dst may hold other pixels, and their bits may end before the bytes that they meet.
template <OtherOperand role, class Form>
void subtractRows(BitImage<const Lum8u> other, BitImage<Lum8u> dst, std::ptrdiff_t width,
                  std::ptrdiff_t height) {
    const int distance = other.bit - dst.bit;
    const std::ptrdiff_t last = (dst.bit + width - 1) >> 3;
    const std::ptrdiff_t otherLast = (other.bit + width - 1) >> 3;
    const int firstBits = 0xFF << dst.bit;
    const int lastBits = 0xFF >> (7 - ((dst.bit + width - 1) & 7));
    for (std::ptrdiff_t y = 0; y < height; ++y) {
        const Lum8u* const bytes = other.bytes.row(y);
        Lum8u* const out = dst.bytes.row(y);
        const auto subtractEdge = [&](std::ptrdiff_t k, int within) {
            int bits = 0;
            for (int b = 0; b < 8; ++b) {
                const std::ptrdiff_t i = 8 * k + b + distance;
                const bool inside = (within >> b & 1) != 0 && i >= 0 && (i >> 3) <= otherLast;
                bits |= inside && (bytes[i >> 3] >> (i & 7) & 1) != 0 ? 1 << b : 0;
            }
            const int value = difference<role>(bits, int{out[k]});
            out[k] = static_cast<Lum8u>((value & within) | (out[k] & ~within));
        };
        if (last == 0) {
            subtractEdge(0, firstBits & lastBits);
            continue;
        }
        subtractEdge(0, firstBits & 0xFF);
        Form::bytes({bytes + (distance >> 3), distance & 7}, out, 1, last);
        subtractEdge(last, lastBits);
    }
}

} // namespace

void subtractBits(BitImage<const Lum8u> other, OtherOperand role, BitImage<Lum8u> dst, std::ptrdiff_t width,
                  std::ptrdiff_t height) {
    const auto rows = role == OtherOperand::minuend
                          ? subtractRows<OtherOperand::minuend, Vectors<OtherOperand::minuend>>
                          : subtractRows<OtherOperand::subtrahend, Vectors<OtherOperand::subtrahend>>;
    rows(other, dst, width, height);
}

void subtractBitsScalar(BitImage<const Lum8u> other, OtherOperand role, BitImage<Lum8u> dst,
                        std::ptrdiff_t width, std::ptrdiff_t height) {
    const auto rows = role == OtherOperand::minuend
                          ? subtractRows<OtherOperand::minuend, Scalar<OtherOperand::minuend>>
                          : subtractRows<OtherOperand::subtrahend, Scalar<OtherOperand::subtrahend>>;
    rows(other, dst, width, height);
}

} // namespace lum::kernels

#include "kernels/pyramid/double_8u.h"

#include "frame/instances.h"
#include "frame/lanes_reduce.h"
#include "kernels/pyramid/in_blocks.h"

namespace lum::kernels {
namespace {

/// s / 64, to nearest, ties to even.
inline Lum8u roundedShare(unsigned s) { return static_cast<Lum8u>((s + 31 + (s >> 6 & 1)) >> 6); }
template <int N> LUM_LANE Block<Lum16u, N> roundedShare(Block<Lum16u, N> s) {
    return (s + ((s >> 6) & broadcast<N>(Lum16u{1})) + broadcast<N>(Lum16u{31})) >> 6;
}

inline unsigned evenSum(unsigned middle, unsigned before, unsigned after) {
    return 6 * middle + before + after;
}
inline unsigned oddSum(unsigned middle, unsigned after) { return 4 * (middle + after); }
template <int N>
LUM_LANE Block<Lum16u, N> evenSum(Block<Lum16u, N> middle, Block<Lum16u, N> before, Block<Lum16u, N> after) {
    return (middle << 2) + (middle << 1) + before + after;
}
template <int N> LUM_LANE Block<Lum16u, N> oddSum(Block<Lum16u, N> middle, Block<Lum16u, N> after) {
    return (middle + after) << 2;
}

/// Pixels of three bytes, those of even index and those of odd index in turn, in a vector of 16 bytes and a half.
constexpr Lum8u evenInFront[16] = {0, 1, 2, 255, 255, 255, 3, 4, 5, 255, 255, 255, 6, 7, 8, 255};
constexpr Lum8u oddInFront[16] = {255, 255, 255, 0, 1, 2, 255, 255, 255, 3, 4, 5, 255, 255, 255, 6};
constexpr Lum8u evenAtEnd[16] = {255, 255, 9, 10, 11, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255};
constexpr Lum8u oddAtEnd[16] = {7, 8, 255, 255, 255, 9, 10, 11, 255, 255, 255, 255, 255, 255, 255, 255};

} // namespace

void doubleColumn8uScalar(const Lum8u* above, const Lum8u* row, const Lum8u* below, std::ptrdiff_t count,
                          Lum16u* even, Lum16u* odd) {
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        even[i] = static_cast<Lum16u>(evenSum(row[i], above[i], below[i]));
        odd[i] = static_cast<Lum16u>(oddSum(row[i], below[i]));
    }
}

void doubleColumn8u(const Lum8u* above, const Lum8u* row, const Lum8u* below, std::ptrdiff_t count,
                    Lum16u* even, Lum16u* odd) {
    constexpr int N = 32;
    inBlocks<N>(
        count,
        [&](std::ptrdiff_t x) LUM_INLINED {
            forVectors<Lum16u, N>([&]<int n>(int i) LUM_INLINED {
                const auto middle = widen<Lum16u>(load<n>(row + x + i));
                const auto after = widen<Lum16u>(load<n>(below + x + i));
                store(evenSum(middle, widen<Lum16u>(load<n>(above + x + i)), after), even + x + i);
                store(oddSum(middle, after), odd + x + i);
            });
        },
        [&](std::ptrdiff_t i) { doubleColumn8uScalar(above + i, row + i, below + i, 1, even + i, odd + i); });
}

template <int channels> void doubleRow8uScalar(const Lum16u* src, std::ptrdiff_t pixels, Lum8u* dst) {
    for (std::ptrdiff_t i = 0; i < pixels; ++i, src += channels, dst += 2 * channels)
        for (int c = 0; c < channels; ++c) {
            dst[c] = roundedShare(evenSum(src[c], src[c - channels], src[c + channels]));
            dst[c + channels] = roundedShare(oddSum(src[c], src[c + channels]));
        }
}

template <int channels> void doubleRow8u(const Lum16u* src, std::ptrdiff_t pixels, Lum8u* dst) {
    std::ptrdiff_t i = 0;
    if constexpr (channels == 1) {
        constexpr int N = 32;
        inBlocks<N>(
            pixels,
            [&](std::ptrdiff_t x) LUM_INLINED {
                forVectors<Lum16u, N>([&]<int n>(int part) LUM_INLINED {
                    const Lum16u* place = src + x + part;
                    const auto middle = load<n>(place);
                    const auto after = load<n>(place + 1);
                    const auto even = roundedShare(evenSum(middle, load<n>(place - 1), after));
                    const auto odd = roundedShare(oddSum(middle, after));
                    store(bitsAs<Lum8u>(even | (odd << 8)), dst + 2 * (x + part));
                });
            },
            [&](std::ptrdiff_t x) { doubleRow8uScalar<1>(src + x, 1, dst + 2 * x); });
        return;
    } else {
        // Four pixels per iteration: of 16 elements the last four are those of pixels that follow in memory.
        const auto evenFront = load<16>(evenInFront);
        const auto oddFront = load<16>(oddInFront);
        const auto evenEnd = load<16>(evenAtEnd);
        const auto oddEnd = load<16>(oddAtEnd);
        for (; i <= pixels - 6; i += 4) {
            const auto middle = load<16>(src + 3 * i);
            const auto after = load<16>(src + 3 * i + 3);
            const auto evenWords = roundedShare(evenSum(middle, load<16>(src + 3 * i - 3), after));
            const auto oddWords = roundedShare(oddSum(middle, after));
            const auto even = narrowSaturated<Lum8u>(bitsAs<Lum16s>(evenWords));
            const auto odd = narrowSaturated<Lum8u>(bitsAs<Lum16s>(oddWords));
            store(shuffleUnits(even, evenFront) | shuffleUnits(odd, oddFront), dst + 6 * i);
            store(lowHalf(shuffleUnits(even, evenEnd) | shuffleUnits(odd, oddEnd)), dst + 6 * i + 16);
        }
    }
    // tail: scalar, one pixel at a time
    doubleRow8uScalar<channels>(src + i * channels, pixels - i, dst + 2 * i * channels);
}

LUM_INSTANCES(doubleRow8uScalar, (1), (3));
LUM_INSTANCES(doubleRow8u, (1), (3));

} // namespace lum::kernels

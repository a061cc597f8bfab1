#include "kernels/pyramid/halve.h"

#include "frame/instances.h"
#include "frame/lanes_products.h"
#include "frame/lanes_reduce.h"
#include "kernels/pyramid/in_blocks.h"

namespace lum::kernels {
namespace {

template <int channels> inline Lum16u binomialSum(const Lum8u* middle) {
    constexpr int next = channels;
    return static_cast<Lum16u>(middle[-2 * next] + middle[2 * next] + 4 * (middle[-next] + middle[next]) +
                               6 * middle[0]);
}

/// s / 256, to nearest, ties to even.
inline Lum8u roundedShare(unsigned s) { return static_cast<Lum8u>((s + 127 + (s >> 8 & 1)) >> 8); }

inline unsigned columnSum(const Lum16u* const* rows, std::ptrdiff_t i) {
    return rows[0][i] + rows[4][i] + 4U * (rows[1][i] + rows[3][i]) + 6U * rows[2][i];
}

/// A pair of taps for neighbouring bytes.
template <int N> LUM_LANE Block<Lum8s, N> taps(int first, int second) {
    return bitsAs<Lum8s>(broadcast<N / 2>(static_cast<Lum16s>(first | second << 8)));
}

/// Bytes of neighbouring pixels of three channels beside each other, for two pairs of pixels.
constexpr Lum8u pairsOfThreeChannels[16] = {0, 3, 1, 4, 2, 5, 6, 9, 7, 10, 8, 11, 0x80, 0x80, 0x80, 0x80};

/// The sums of `window` bytes from the first tap of the first result on, with each later pair of taps `pair` bytes on;
/// order() brings the bytes of each pair together.
template <int N, class Order>
LUM_LANE Block<Lum16s, N / 2> pairedSums(const Lum8u* window, int pair, Order order) {
    return multiplyAddPairs(order(load<N>(window)), taps<N>(1, 4)) +
           multiplyAddPairs(order(load<N>(window + pair)), taps<N>(6, 4)) +
           multiplyAddPairs(order(load<N>(window + 2 * pair)), taps<N>(1, 0));
}

} // namespace

template <int channels> void halveRowScalar(const Lum8u* src, std::ptrdiff_t pixels, Lum16u* dst) {
    for (std::ptrdiff_t i = 0; i < pixels; ++i)
        for (int c = 0; c < channels; ++c)
            dst[i * channels + c] = binomialSum<channels>(src + 2 * i * channels + c);
}

template <int channels> void halveRow(const Lum8u* src, std::ptrdiff_t pixels, Lum16u* dst) {
    std::ptrdiff_t i = 0;
    if constexpr (channels == 1) {
        // 32 results per iteration. The last load takes one pixel more than they need: the last result is left out.
        inBlocks<32>(
            pixels - 1,
            [&](std::ptrdiff_t x) LUM_INLINED {
                forVectors<Lum8u, 64>([&]<int n>(int part) LUM_INLINED {
                    const auto sums =
                        pairedSums<n>(src + 2 * x + part - 2, 2, [](auto bytes) { return bytes; });
                    store(bitsAs<Lum16u>(sums), dst + x + part / 2);
                });
            },
            [&](std::ptrdiff_t x) { dst[x] = binomialSum<1>(src + 2 * x); });
        i = pixels - 1;
    } else {
        // Two pixels per iteration. The loads take seven bytes more than they need, and the two elements after the
        // results are written again by the next iteration or the tail.
        const auto order = load<16>(pairsOfThreeChannels);
        for (; i < pixels - 3; i += 2) {
            const auto sums =
                pairedSums<16>(src + 6 * i - 6, 6, [&](auto bytes) { return shuffleUnits(bytes, order); });
            store(bitsAs<Lum16u>(sums), dst + 3 * i);
        }
    }
    // tail: scalar, one pixel at a time
    halveRowScalar<channels>(src + 2 * i * channels, pixels - i, dst + i * channels);
}

void halveColumnScalar(const Lum16u* const* rows, std::ptrdiff_t count, Lum8u* dst) {
    for (std::ptrdiff_t i = 0; i < count; ++i) dst[i] = roundedShare(columnSum(rows, i));
}

void halveColumn(const Lum16u* const* rows, std::ptrdiff_t count, Lum8u* dst) {
    constexpr int N = 64;
    const Lum16u* const own[] = {rows[0], rows[1], rows[2], rows[3], rows[4]};
    // Sums fit 16 bits, and so do they with what rounds them.
    const auto share = [&]<int n>(std::ptrdiff_t x) LUM_INLINED {
        const auto at = [&](int row) LUM_INLINED { return load<n>(own[row] + x); };
        const auto middle = at(2);
        const auto inner = at(1) + at(3) + middle;
        const auto sum = at(0) + at(4) + (inner << 2) + (middle << 1);
        const auto tie = (sum >> 8) & broadcast<n>(Lum16u{1});
        return (sum + tie + broadcast<n>(Lum16u{127})) >> 8;
    };
    inBlocks<N>(
        count,
        [&](std::ptrdiff_t x) LUM_INLINED {
            forVectors<Lum8u, N>([&]<int bytes>(int part) LUM_INLINED {
                const auto shares = fromVectors<Lum16u, bytes>(
                    [&]<int n>(int i) LUM_INLINED { return share.template operator()<n>(x + part + i); });
                store(narrowSaturated<Lum8u>(bitsAs<Lum16s>(shares)), dst + x + part);
            });
        },
        [&](std::ptrdiff_t i) { dst[i] = roundedShare(columnSum(rows, i)); });
}

LUM_INSTANCES(halveRowScalar, (1), (3));
LUM_INSTANCES(halveRow, (1), (3));

} // namespace lum::kernels

#include "kernels/filter/row_pipeline_pairs.h"

namespace lum::kernels {
namespace {

template <class R>
constexpr Rounding roundingOf = std::is_signed_v<R> ? Rounding::nearestEven : Rounding::truncated;

template <class Pairing, Scaling scaling, class S, class R>
void pairedRowOfLength(TapsOfRow<S> taps, R* dst, int count, PairWeights weights, float scale) {
    switch (weights.count) {
    case 3:
        pairedEights<Pairing, 3, roundingOf<R>, scaling, S>(taps, weights, scale, dst, 0, count);
        break;
    case 5:
        pairedEights<Pairing, 5, roundingOf<R>, scaling, S>(taps, weights, scale, dst, 0, count);
        break;
    default:
        pairedEights<Pairing, 0, roundingOf<R>, scaling, S>(taps, weights, scale, dst, 0, count);
    }
}

template <class Pairing, class S, class R>
void pairedRowScaled(TapsOfRow<S> taps, R* dst, int count, PairWeights weights, float scale) {
    if constexpr (std::is_signed_v<R>) {
        if (scale == 1.0F) return pairedRowOfLength<Pairing, Scaling::none>(taps, dst, count, weights, scale);
    }
    pairedRowOfLength<Pairing, Scaling::multiplied>(taps, dst, count, weights, scale);
}

} // namespace

template <class S, class R>
void pairRowScalar(const S* src, int spacing, R* dst, int count, PairWeights weights, float scale) {
    const TapsOfRow<S> taps{src, spacing};
    for (int i = 0; i < count; ++i) {
        int sum = 0;
        for (int k = 0; k < weights.count; ++k) sum += weights.one(k) * taps.at(k)[i];
        dst[i] = resultOf<R, roundingOf<R>>(static_cast<float>(sum) * scale);
    }
}

template <class S, class R>
void pairRow(const S* src, int spacing, R* dst, int count, PairWeights weights, float scale) {
    const TapsOfRow<S> taps{src, spacing};
    if (spacing == 1)
        pairedRowScaled<Neighbours>(taps, dst, count, weights, scale);
    else
        pairedRowScaled<Interleaved>(taps, dst, count, weights, scale);
}

template decltype(pairRowScalar<Lum8u, Lum16s>) pairRowScalar<Lum8u, Lum16s>;
template decltype(pairRowScalar<Lum16s, Lum16s>) pairRowScalar<Lum16s, Lum16s>;
template decltype(pairRowScalar<Lum16u, Lum16u>) pairRowScalar<Lum16u, Lum16u>;
template decltype(pairRow<Lum8u, Lum16s>) pairRow<Lum8u, Lum16s>;
template decltype(pairRow<Lum16s, Lum16s>) pairRow<Lum16s, Lum16s>;
template decltype(pairRow<Lum16u, Lum16u>) pairRow<Lum16u, Lum16u>;

} // namespace lum::kernels

// The weights of a kernel by number. Each is put into all elements of a vector once per row, and the numbers of taps that
// are used most, three and five, are known to the compiler, which keeps their weights in registers.
#pragma once

#include <array>

#include "frame/convert_lanes.h"
#include "kernels/filter/taps.h"

namespace lum::kernels {

/// Taps whose weights are kept at most; those of longer kernels are formed where they are used.
inline constexpr int maxCachedTaps = 64;

/// The weights of exactly `taps` taps, or of up to maxCachedTaps.
template <class T, int taps> class CachedWeights {
  public:
    static constexpr bool isFew = taps < maxCachedTaps;

    template <class Weight> LUM_LANE CachedWeights(int count, int weights, Weight weight) : count_(count) {
        if constexpr (isFew) {
#pragma GCC unroll 8
            for (int k = 0; k < weights; ++k) weights_[k] = Uniform<T>(weight(k));
        } else {
            for (int k = 0; k < weights; ++k) weights_[k] = Uniform<T>(weight(k));
        }
    }
    int count() const { return taps == maxCachedTaps ? count_ : taps; }
    const Uniform<T>& at(int k) const { return weights_[k]; }

  private:
    int count_;
    std::array<Uniform<T>, taps + 1> weights_;
};

/// The weights of any number of taps.
template <class T, class Weight> class WeightsAtUse {
  public:
    static constexpr bool isFew = false;

    WeightsAtUse(int count, Weight weight) : count_(count), weight_(weight) {}
    int count() const { return count_; }
    LUM_LANE Uniform<T> at(int k) const { return Uniform<T>(weight_(k)); }

  private:
    int count_;
    Weight weight_;
};

/// work(weights), where weights.count() is the number of taps, and weights.at(k) holds weight(k) for k below
/// weightsOf(taps), which is one more than the taps at most.
template <class T, class WeightsOf, class Weight, class Work>
LUM_LANE auto withWeights(int taps, WeightsOf weightsOf, Weight weight, Work work) {
    if (taps == 3) return work(CachedWeights<T, 3>(taps, weightsOf(3), weight));
    if (taps == 5) return work(CachedWeights<T, 5>(taps, weightsOf(5), weight));
    if (taps <= maxCachedTaps) return work(CachedWeights<T, maxCachedTaps>(taps, weightsOf(taps), weight));
    return work(WeightsAtUse<T, Weight>(taps, weight));
}

/// The same with a weight per tap.
template <class T, class Weight, class Work> LUM_LANE auto withWeights(int taps, Weight weight, Work work) {
    return withWeights<T>(
        taps, [](int count) { return count; }, weight, work);
}

/// Where the taps of a stage read: elements `stride` apart along one row, or rows one below the other.
template <class S> struct AlongRow {
    const S* first;
    std::ptrdiff_t stride;
    const S* at(int k) const { return first + k * stride; }
};
template <class S> struct DownRows {
    const S* const* rows;
    const S* at(int k) const { return rows[k]; }
};

/// The sums with a further weighted tap added, product and addition in single precision.
template <int N, class S>
LUM_LANE Block<float, N> withTap(Block<float, N> sums, const S* tap, const Uniform<float>& weight) {
    if constexpr (std::is_floating_point_v<S>)
        return mapVectors(sums, [&]<int n>(Block<float, n> sum, int i)
                                    LUM_INLINED { return sum + load<n>(tap + i) * weight; });
    else
        return sums + loadFloats<N>(tap) * weight;
}

/// N sums of weighted taps from x on, in order of the taps.
template <int N, class Source, class Weights>
LUM_LANE Block<float, N> weightedSums(const Source& source, const Weights& weights, std::ptrdiff_t x) {
    const int taps = weights.count();
    auto sums = loadFloats<N>(source.at(0) + x) * weights.at(0);
#pragma GCC unroll 4
    for (int k = 1; k < taps; ++k) sums = withTap(sums, source.at(k) + x, weights.at(k));
    return sums;
}

/// work<n>(i) for the parts of N sums, or their results as a block. Few taps are summed one vector after the other, so that
/// little waits in registers; many for all vectors at once, which share a weight and the steps of the loop.
template <class Weights, int N, class Work> LUM_LANE void forSums(Work work) {
    if constexpr (Weights::isFew)
        forVectors<float, N>(work);
    else
        work.template operator()<N>(0);
}
template <class Weights, class Result, int N, class Work> LUM_LANE Block<Result, N> fromSums(Work work) {
    static_assert(sizeof(Result) == sizeof(float));
    if constexpr (Weights::isFew)
        return fromVectors<Result, N>(work);
    else
        return work.template operator()<N>(0);
}

/// One such sum, with weights that weight(k) gives. Inline without fail: a float that returns from a call passes through the
/// x87 unit in a 32-bit build.
template <class Source, class Weight>
LUM_LANE float weightedSum(const Source& source, int taps, Weight weight, std::ptrdiff_t x) {
    float sum = weight(0) * static_cast<float>(source.at(0)[x]);
    for (int k = 1; k < taps; ++k) sum += weight(k) * static_cast<float>(source.at(k)[x]);
    return sum;
}

} // namespace lum::kernels

#include <algorithm>
#include <cstring>
#include <limits>
#include <type_traits>

#include "frame/convert.h"
#include "frame/vector.h"
#include "kernels/filter/gaussian.h"
#include "kernels/filter/gaussian_sums.h"

namespace lum::kernels {
namespace {

/// To nearest even. A sum above all integers is held at the largest value of the type; one below them all converts
/// to the smallest integer, which the packing holds at the smallest value of the type.
template <class T> __m128i rounded(__m128 sums) {
    return nearestEvenLanes(_mm_min_ps(sums, _mm_set1_ps(std::numeric_limits<T>::max())));
}

template <Access access, Stores stores> inline void storeTurn(const GaussianSums& sums, Lum8u* dst) {
    const __m128i low = _mm_packs_epi32(rounded<Lum8u>(sums.vectors[0]), rounded<Lum8u>(sums.vectors[1]));
    const __m128i high = _mm_packs_epi32(rounded<Lum8u>(sums.vectors[2]), rounded<Lum8u>(sums.vectors[3]));
    storeVector<access, stores>(dst, _mm_packus_epi16(low, high));
}

template <Access access, Stores stores> inline void storeTurn(const GaussianSums& sums, Lum16s* dst) {
    storeVector<access, stores>(
        dst, _mm_packs_epi32(rounded<Lum16s>(sums.vectors[0]), rounded<Lum16s>(sums.vectors[1])));
    storeVector<access, stores>(
        dst + 8, _mm_packs_epi32(rounded<Lum16s>(sums.vectors[2]), rounded<Lum16s>(sums.vectors[3])));
}

inline __m128i packedUnsigned(__m128 low, __m128 high) {
    const __m128 zero = _mm_setzero_ps();
    return packedWordsUnsigned(rounded<Lum16u>(_mm_max_ps(zero, low)),
                               rounded<Lum16u>(_mm_max_ps(zero, high)));
}

template <Access access, Stores stores> inline void storeTurn(const GaussianSums& sums, Lum16u* dst) {
    storeVector<access, stores>(dst, packedUnsigned(sums.vectors[0], sums.vectors[1]));
    storeVector<access, stores>(dst + 8, packedUnsigned(sums.vectors[2], sums.vectors[3]));
}

template <Access access, Stores stores> inline void storeTurn(const GaussianSums& sums, Lum32f* dst) {
#pragma GCC unroll 4
    for (int i = 0; i < 4; ++i) storeFloats<access, stores>(dst + 4 * i, sums.vectors[i]);
}

template <int radius> class SumOfRadius {
  public:
    SumOfRadius(const GaussianRing& ring, const float* weights) {
        for (int j = 0; j <= 2 * radius; ++j) rows_[j] = ring.row(j);
        for (int j = 0; j <= radius; ++j) lanes_[j] = _mm_set1_ps(weights[j]);
    }

    inline GaussianSums at(std::ptrdiff_t x) const {
        GaussianSums sums;
        addPair<Pair::first, Access::aligned>(sums, rows_[0] + x, rows_[2 * radius] + x, lanes_[0]);
#pragma GCC unroll 3
        for (int j = 1; j < radius; ++j)
            addPair<Pair::further, Access::aligned>(sums, rows_[j] + x, rows_[2 * radius - j] + x, lanes_[j]);
        addMiddle<Access::aligned>(sums, rows_[radius] + x, lanes_[radius]);
        return sums;
    }

  private:
    const float* rows_[2 * radius + 1];
    __m128 lanes_[radius + 1];
};

/// Of the pairs after the first, one upper or one lower row, but never both, is the first on the other side of the
/// ring's end: they are two stretches of neighbouring slots.
class SumOfAnyRadius {
  public:
    SumOfAnyRadius(const GaussianRing& ring, const float* weights)
        : weights_(weights),
          radius_(ring.radius),
          slotLength_(ring.slotLength),
          firstAbove_(ring.row(0)),
          firstBelow_(ring.row(2 * ring.radius)),
          middle_(ring.row(ring.radius)) {
        const int beforeTheEnd = std::min(ring.top, ring.rows() - ring.top);
        split_ = std::clamp(beforeTheEnd, 1, radius_);
        above_ = ring.row(split_);
        below_ = ring.row(2 * radius_ - split_);
    }

    inline GaussianSums at(std::ptrdiff_t x) const {
        GaussianSums sums;
        addPair<Pair::first, Access::aligned>(sums, firstAbove_ + x, firstBelow_ + x,
                                              _mm_set1_ps(weights_[0]));
        addPairs(sums, firstAbove_ + slotLength_ + x, firstBelow_ - slotLength_ + x, 1, split_);
        addPairs(sums, above_ + x, below_ + x, split_, radius_);
        addMiddle<Access::aligned>(sums, middle_ + x, _mm_set1_ps(weights_[radius_]));
        return sums;
    }

  private:
    inline void addPairs(GaussianSums& sums, const float* above, const float* below, int first,
                         int end) const {
        for (const float* weight = weights_ + first; weight < weights_ + end; ++weight) {
            addPair<Pair::further, Access::aligned>(sums, above, below, _mm_set1_ps(*weight));
            above += slotLength_;
            below -= slotLength_;
        }
    }

    const float* weights_;
    int radius_;
    int split_;
    std::ptrdiff_t slotLength_;
    const float* firstAbove_;
    const float* firstBelow_;
    const float* above_;
    const float* below_;
    const float* middle_;
};

template <class T, class Sum, Stores stores>
void column(const GaussianRing& ring, std::ptrdiff_t count, const float* weights, T* dst) {
    constexpr Access access = stores == Stores::streaming ? Access::aligned : Access::unaligned;
    const Sum sum(ring, weights);
    std::ptrdiff_t x = 0;
    // 16 elements per iteration
    for (; x <= count - gaussianBlock; x += gaussianBlock) storeTurn<access, stores>(sum.at(x), dst + x);
    // tail, part of a block
    if (x < count) {
        T elements[gaussianBlock];
        storeTurn<Access::unaligned, Stores::ordinary>(sum.at(x), elements);
        std::memcpy(dst + x, elements, (count - x) * sizeof(T));
    }
}

template <class T, Stores stores> GaussianColumn<T>* columnOfRadius(int radius) {
    switch (radius) {
    case 1:
        return column<T, SumOfRadius<1>, stores>;
    case 2:
        return column<T, SumOfRadius<2>, stores>;
    case 3:
        return column<T, SumOfRadius<3>, stores>;
    default:
        return column<T, SumOfAnyRadius, stores>;
    }
}

/// A comparison with NaN is false, here and in the vector form.
template <class T> T result(float sum) {
    if constexpr (std::is_floating_point_v<T>) {
        return sum;
    } else {
        constexpr float highest = std::numeric_limits<T>::max();
        return nearestEven<T>(sum < highest ? sum : highest);
    }
}

} // namespace

template <class T>
void gaussianColumnScalar(const GaussianRing& ring, std::ptrdiff_t count, const float* weights, T* dst) {
    const int last = 2 * ring.radius;
    for (std::ptrdiff_t x = 0; x < count; ++x) {
        float sum = (ring.row(0)[x] + ring.row(last)[x]) * weights[0];
        for (int j = 1; j < ring.radius; ++j) sum += (ring.row(j)[x] + ring.row(last - j)[x]) * weights[j];
        dst[x] = result<T>(sum + ring.row(ring.radius)[x] * weights[ring.radius]);
    }
}

template <class T> GaussianColumn<T>* gaussianColumn(int radius, Stores stores) {
    return stores == Stores::streaming ? columnOfRadius<T, Stores::streaming>(radius)
                                       : columnOfRadius<T, Stores::ordinary>(radius);
}

template decltype(gaussianColumnScalar<Lum8u>) gaussianColumnScalar<Lum8u>;
template decltype(gaussianColumnScalar<Lum16u>) gaussianColumnScalar<Lum16u>;
template decltype(gaussianColumnScalar<Lum16s>) gaussianColumnScalar<Lum16s>;
template decltype(gaussianColumnScalar<Lum32f>) gaussianColumnScalar<Lum32f>;
template decltype(gaussianColumn<Lum8u>) gaussianColumn<Lum8u>;
template decltype(gaussianColumn<Lum16u>) gaussianColumn<Lum16u>;
template decltype(gaussianColumn<Lum16s>) gaussianColumn<Lum16s>;
template decltype(gaussianColumn<Lum32f>) gaussianColumn<Lum32f>;

} // namespace lum::kernels

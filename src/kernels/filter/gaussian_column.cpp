#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>

#include "frame/convert_lanes.h"
#include "frame/instances.h"
#include "frame/lanes_parts.h"
#include "kernels/filter/gaussian.h"
#include "kernels/filter/gaussian_sums.h"

namespace lum::kernels {
namespace {

template <int radius> class SumOfRadius {
  public:
    SumOfRadius(const GaussianRing& ring, const float* weights) {
        for (int j = 0; j <= 2 * radius; ++j) rows_[j] = ring.row(j);
        for (int j = 0; j <= radius; ++j) weights_[j] = Uniform(weights[j]);
    }

    template <int n> LUM_LANE Block<float, n> at(std::ptrdiff_t x) const {
        auto sums = firstPair<Rows::aligned, n>(rows_[0] + x, rows_[2 * radius] + x, weights_[0]);
#pragma GCC unroll 3
        for (int j = 1; j < radius; ++j)
            sums = withPair<Rows::aligned>(sums, rows_[j] + x, rows_[2 * radius - j] + x, weights_[j]);
        return withMiddle<Rows::aligned>(sums, rows_[radius] + x, weights_[radius]);
    }

  private:
    const float* rows_[2 * radius + 1];
    Uniform<float> weights_[radius + 1];
};

/// Of the pairs after the first, one upper or one lower row, but never both, is the first on the other side of the
/// ring's end: they are two stretches of neighbouring slots. A loop over pairs has registers to spare, and gains nothing
/// from operands in memory.
class SumOfAnyRadius {
  public:
    SumOfAnyRadius(const GaussianRing& ring, const float* weights)
        : weights_(weights),
          outermost_(weights[0]),
          centre_(weights[ring.radius]),
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

    template <int n> LUM_LANE Block<float, n> at(std::ptrdiff_t x) const {
        auto sums = firstPair<Rows::anywhere, n>(firstAbove_ + x, firstBelow_ + x, outermost_);
        sums = withPairs(sums, firstAbove_ + slotLength_ + x, firstBelow_ - slotLength_ + x, 1, split_);
        sums = withPairs(sums, above_ + x, below_ + x, split_, radius_);
        return withMiddle<Rows::anywhere>(sums, middle_ + x, centre_);
    }

  private:
    template <int n>
    LUM_LANE Block<float, n> withPairs(Block<float, n> sums, const float* above, const float* below,
                                       int first, int end) const {
        for (const float* weight = weights_ + first; weight < weights_ + end; ++weight) {
            sums = withPair<Rows::anywhere>(sums, above, below, Uniform(*weight));
            above += slotLength_;
            below -= slotLength_;
        }
        return sums;
    }

    const float* weights_;
    Uniform<float> outermost_;
    Uniform<float> centre_;
    int radius_;
    int split_;
    std::ptrdiff_t slotLength_;
    const float* firstAbove_;
    const float* firstBelow_;
    const float* above_;
    const float* below_;
    const float* middle_;
};

/// Whether sums of bytes along both axes fit integers of 32 bits. The weights of a Gaussian have the sum 1; others may be
/// anything.
bool sumsFitIntegers(const float* weights, int radius) {
    constexpr float most = 1000;
    static_assert(255 * most * most < 2147483648.0F);
    float sum = std::fabs(weights[radius]);
    for (int j = 0; j < radius; ++j) sum += 2 * std::fabs(weights[j]);
    return sum < most;
}

/// n sums from bytes that lie as gaussianPlace() says, as bytes in order.
template <int n, Range range, class Sum>
LUM_LANE Block<Lum8u, n> placedBytes(const Sum& sum, std::ptrdiff_t x) {
    const auto integers = toIntegers<Lum8u, Rounding::nearestEven, range>(sum.template at<n>(x));
    const auto low = lowHalf(integers);
    const auto high = highHalf(integers);
    return narrowUnits<Lum8u>(narrowUnits<Lum16s>(lowHalf(low), highHalf(low)),
                              narrowUnits<Lum16s>(lowHalf(high), highHalf(high)));
}

/// Asks for what lies at x in the rows ahead. Line by line, on the way of the sums, nothing waits for it as it would for a
/// whole row at once.
template <Stores stores, class T>
LUM_LANE void prefetch(const GaussianRowsAhead<T>& ahead, std::ptrdiff_t x) {
    constexpr int secondLevel = 2;
    __builtin_prefetch(ahead.src + x, 0, secondLevel);
    if constexpr (stores == Stores::ordinary) __builtin_prefetch(ahead.dst + x, 1, secondLevel);
}

template <class T, class Sum, Range range, Stores stores, Looks looks>
void column(const GaussianRing& ring, std::ptrdiff_t count, const float* weights, T* dst,
            const GaussianRowsAhead<T>& rowsAhead) {
    const Sum sum(ring, weights);
    const GaussianRowsAhead<T> ahead = rowsAhead;
    const auto block = [&](std::ptrdiff_t x) LUM_INLINED {
        if constexpr (looks == Looks::ahead) prefetch<stores>(ahead, x);
        return toElements<T, Rounding::nearestEven>(sum.template at<gaussianBlock>(x));
    };
    std::ptrdiff_t x = 0;
    if constexpr (std::is_same_v<T, Lum8u>) {
        constexpr int n = OneVector<Lum8u>::count;
        // one vector of bytes per iteration
        for (; x <= count - n; x += n) {
            if constexpr (looks == Looks::ahead)
                if (n == 64 || x % 64 == 0) prefetch<stores>(ahead, x);
            store<stores>(placedBytes<n, range>(sum, x), dst + x);
        }
    }
    // 16 elements per iteration
    for (; x <= count - gaussianBlock; x += gaussianBlock) store<stores>(block(x), dst + x);
    // tail: staged copy
    if (x < count) storePartial(block(x), dst + x, static_cast<int>(count - x));
}

template <class T, Range range, Stores stores, Looks looks> GaussianColumn<T>* columnOfRadius(int radius) {
    switch (radius) {
    case 1:
        return column<T, SumOfRadius<1>, range, stores, looks>;
    case 2:
        return column<T, SumOfRadius<2>, range, stores, looks>;
    case 3:
        return column<T, SumOfRadius<3>, range, stores, looks>;
    default:
        return column<T, SumOfAnyRadius, range, stores, looks>;
    }
}

template <class T, Range range> GaussianColumn<T>* columnOfStores(int radius, Stores stores, Looks looks) {
    if (stores == Stores::streaming)
        return looks == Looks::ahead ? columnOfRadius<T, range, Stores::streaming, Looks::ahead>(radius)
                                     : columnOfRadius<T, range, Stores::streaming, Looks::here>(radius);
    return looks == Looks::ahead ? columnOfRadius<T, range, Stores::ordinary, Looks::ahead>(radius)
                                 : columnOfRadius<T, range, Stores::ordinary, Looks::here>(radius);
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
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        const std::ptrdiff_t x = gaussianPlace<T>(i, count);
        float sum = (ring.row(0)[x] + ring.row(last)[x]) * weights[0];
        for (int j = 1; j < ring.radius; ++j) sum += (ring.row(j)[x] + ring.row(last - j)[x]) * weights[j];
        dst[i] = result<T>(sum + ring.row(ring.radius)[x] * weights[ring.radius]);
    }
}

template <class T>
GaussianColumn<T>* gaussianColumn(int radius, const float* weights, Stores stores, Looks looks) {
    if constexpr (std::is_same_v<T, Lum8u>)
        if (sumsFitIntegers(weights, radius))
            return columnOfStores<T, Range::of32Bits>(radius, stores, looks);
    return columnOfStores<T, Range::any>(radius, stores, looks);
}

LUM_INSTANCES(gaussianColumnScalar, (Lum8u), (Lum16u), (Lum16s), (Lum32f));
LUM_INSTANCES(gaussianColumn, (Lum8u), (Lum16u), (Lum16s), (Lum32f));

} // namespace lum::kernels

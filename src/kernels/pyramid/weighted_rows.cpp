#include "kernels/pyramid/weighted_rows.h"

#include "frame/instances.h"
#include "kernels/pyramid/in_blocks.h"
#include "kernels/pyramid/rounded.h"

namespace lum::kernels {
namespace {

template <class T>
inline T weightedElement(const float* const* rows, const float* weights, int radius, std::ptrdiff_t i) {
    float sum = (rows[0][i] + rows[2 * radius][i]) * weights[0];
    for (int j = 1; j < radius; ++j) sum += (rows[j][i] + rows[2 * radius - j][i]) * weights[j];
    return rounded<T>(sum + rows[radius][i] * weights[radius]);
}

constexpr int blockLength = 16;

/// The pointers and weights of a radius that is known to the compiler, held where no store can change them.
template <int radius> class FixedWindow {
  public:
    FixedWindow(const float* const* rows, const float* weights) {
        for (int j = 0; j <= 2 * radius; ++j) rows_[j] = rows[j];
        for (int j = 0; j <= radius; ++j) weights_[j] = weights[j];
    }

    template <int n> LUM_LANE Block<float, n> sum(std::ptrdiff_t i) const {
        Block<float, n> sum = pair<n>(0, i) * broadcast<n>(weights_[0]);
#pragma GCC unroll 3
        for (int j = 1; j < radius; ++j) sum = sum + pair<n>(j, i) * broadcast<n>(weights_[j]);
        return sum + load<n>(rows_[radius] + i) * broadcast<n>(weights_[radius]);
    }

  private:
    template <int n> LUM_LANE Block<float, n> pair(int j, std::ptrdiff_t i) const {
        return load<n>(rows_[j] + i) + load<n>(rows_[2 * radius - j] + i);
    }

    const float* rows_[2 * radius + 1];
    float weights_[radius + 1];
};

/// Of any radius, a whole block at once: a weight and two row pointers are read for it once.
class AnyWindow {
  public:
    AnyWindow(const float* const* rows, const float* weights, int radius)
        : rows_(rows), weights_(weights), radius_(radius) {}

    LUM_LANE Block<float, blockLength> sum(std::ptrdiff_t i) const {
        auto sum = pair(0, i) * broadcast<blockLength>(weights_[0]);
        for (int j = 1; j < radius_; ++j) sum = sum + pair(j, i) * broadcast<blockLength>(weights_[j]);
        return sum + load<blockLength>(rows_[radius_] + i) * broadcast<blockLength>(weights_[radius_]);
    }

  private:
    LUM_LANE Block<float, blockLength> pair(int j, std::ptrdiff_t i) const {
        return load<blockLength>(rows_[j] + i) + load<blockLength>(rows_[2 * radius_ - j] + i);
    }

    const float* const* rows_;
    const float* weights_;
    int radius_;
};

template <int radius, class T>
void weightedFixed(const float* const* rows, const float* weights, std::ptrdiff_t count, T* dst) {
    const FixedWindow<radius> window(rows, weights);
    inBlocks<blockLength>(
        count,
        [&](std::ptrdiff_t x) LUM_INLINED {
            storeRounded<T, blockLength>(
                [&]<int n>(int i) LUM_INLINED { return window.template sum<n>(x + i); }, dst + x);
        },
        [&](std::ptrdiff_t x) { dst[x] = weightedElement<T>(rows, weights, radius, x); });
}

} // namespace

template <class T>
void weightedRowsScalar(const float* const* rows, const float* weights, int radius, std::ptrdiff_t count,
                        T* dst) {
    for (std::ptrdiff_t i = 0; i < count; ++i) dst[i] = weightedElement<T>(rows, weights, radius, i);
}

template <class T>
void weightedRows(const float* const* rows, const float* weights, int radius, std::ptrdiff_t count, T* dst) {
    if (radius == 1) return weightedFixed<1>(rows, weights, count, dst);
    if (radius == 2) return weightedFixed<2>(rows, weights, count, dst);
    if (radius == 3) return weightedFixed<3>(rows, weights, count, dst);
    const AnyWindow window(rows, weights, radius);
    inBlocks<blockLength>(
        count, [&](std::ptrdiff_t x) LUM_INLINED { store(rounded<T>(window.sum(x)), dst + x); },
        [&](std::ptrdiff_t x) { dst[x] = weightedElement<T>(rows, weights, radius, x); });
}

LUM_INSTANCES(weightedRowsScalar, (Lum8u), (Lum16u), (Lum32f));
LUM_INSTANCES(weightedRows, (Lum8u), (Lum16u), (Lum32f));

} // namespace lum::kernels

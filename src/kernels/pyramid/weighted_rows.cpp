#include "kernels/pyramid/weighted_rows.h"

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

/// 16 elements: four accumulators of 16 bytes leave registers for a pair of rows and a weight.
constexpr int blockLength = 16;
using FloatBlock = Block<float, blockLength>;

LUM_LANE FloatBlock pairSum(const float* const* rows, int j, int last, std::ptrdiff_t i) {
    return load<blockLength>(rows[j] + i) + load<blockLength>(rows[last - j] + i);
}

/// With a radius known to the compiler, or any where it is 0.
template <int fixedRadius, class T>
void weightedBlocks(const float* const* rows, const float* weights, int anyRadius, std::ptrdiff_t count,
                    T* dst) {
    const int radius = fixedRadius > 0 ? fixedRadius : anyRadius;
    inBlocks<blockLength>(
        count,
        [&](std::ptrdiff_t i) {
            FloatBlock sum = pairSum(rows, 0, 2 * radius, i) * broadcast<blockLength>(weights[0]);
            for (int j = 1; j < radius; ++j)
                sum = sum + pairSum(rows, j, 2 * radius, i) * broadcast<blockLength>(weights[j]);
            sum = sum + load<blockLength>(rows[radius] + i) * broadcast<blockLength>(weights[radius]);
            store(rounded<T>(sum), dst + i);
        },
        [&](std::ptrdiff_t i) { dst[i] = weightedElement<T>(rows, weights, radius, i); });
}

} // namespace

template <class T>
void weightedRowsScalar(const float* const* rows, const float* weights, int radius, std::ptrdiff_t count,
                        T* dst) {
    for (std::ptrdiff_t i = 0; i < count; ++i) dst[i] = weightedElement<T>(rows, weights, radius, i);
}

template <class T>
void weightedRows(const float* const* rows, const float* weights, int radius, std::ptrdiff_t count, T* dst) {
    if (radius == 1)
        weightedBlocks<1>(rows, weights, radius, count, dst);
    else if (radius == 2)
        weightedBlocks<2>(rows, weights, radius, count, dst);
    else
        weightedBlocks<0>(rows, weights, radius, count, dst);
}

template decltype(weightedRowsScalar<Lum8u>) weightedRowsScalar<Lum8u>;
template decltype(weightedRowsScalar<Lum16u>) weightedRowsScalar<Lum16u>;
template decltype(weightedRowsScalar<Lum32f>) weightedRowsScalar<Lum32f>;
template decltype(weightedRows<Lum8u>) weightedRows<Lum8u>;
template decltype(weightedRows<Lum16u>) weightedRows<Lum16u>;
template decltype(weightedRows<Lum32f>) weightedRows<Lum32f>;

} // namespace lum::kernels

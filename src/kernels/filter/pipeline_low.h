// The low-precision stages: sums of words in 16 bits that wrap, for kernels whose sums fit.
#pragma once

#include "frame/image.h"
#include "kernels/filter/pipeline_weights.h"

namespace lum::kernels {

/// A sum without a divisor is a result as it is; else it is multiplied and shifted right arithmetically by
/// 14.
struct LowScale {
    bool undivided;
    Lum16s multiplier;
};

/// Coefficients, each in eight lanes, on a multiple of 16 bytes.
struct LowWeights {
    const Lum16s* lanes;
    int count;

    Lum16s one(int k) const { return lanes[8 * k]; }
    __m128i eight(int k) const { return _mm_load_si128(reinterpret_cast<const __m128i*>(lanes + 8 * k)); }
};

void spreadLowWeights(const Lum16s* kernel, int count, Lum16s* lanes);

/// dst[i] from the sum over k of weight[k] x src[i + k x spacing], wrapped to 16 bits; the scaled value is
/// saturated. The count is a multiple of 8.
void lowRowScalar(const Lum16s* src, int spacing, Lum16s* dst, int count, LowWeights weights, LowScale scale);
void lowRow(const Lum16s* src, int spacing, Lum16s* dst, int count, LowWeights weights, LowScale scale);

/// The same with the sum wrapped to 32 bits, of whose scaled value the low 16 bits are kept; any count.
void lowRowRest(const Lum16s* src, int spacing, Lum16s* dst, int count, LowWeights weights, LowScale scale);

/// dst(i, y) from the sum over k of kernel[k] x srcRows[y + k][i]: the first `blocks` results of a row, a
/// multiple of 8, as in lowRow(), the others as in lowRowRest(). The width of `size` counts elements.
void lowColumnsScalar(const Lum16s* const* srcRows, Image<Lum16s> dst, LumSize size, int blocks,
                      const Lum16s* kernel, int kernelSize, LowScale scale);
void lowColumns(const Lum16s* const* srcRows, Image<Lum16s> dst, LumSize size, int blocks,
                const Lum16s* kernel, int kernelSize, LowScale scale);

/// Five symmetric taps over a divisor of 16: (kernel[2] s2 + kernel[1] (s1 + s3) + kernel[0] (s0 + s4)) >> 4,
/// with the sum wrapped to 16 bits. Streaming stores go to whole cache lines of dst; the caller closes
/// them.
void symmetricRowScalar(const Lum16s* src, int spacing, Lum16s* dst, int count, const Lum16s* kernel);
void symmetricRow(const Lum16s* src, int spacing, Lum16s* dst, int count, const Lum16s* kernel,
                  Stores stores);

/// The same down the columns, two rows of results a step. The width of `size` counts elements. Aligned access
/// asks for all rows, of the source and of dst, on multiples of 16 bytes; only then are stores streaming.
void symmetricColumnsScalar(const Lum16s* const* srcRows, Image<Lum16s> dst, LumSize size,
                            const Lum16s* kernel);
void symmetricColumns(const Lum16s* const* srcRows, Image<Lum16s> dst, LumSize size, const Lum16s* kernel,
                      Access access, Stores stores);

} // namespace lum::kernels

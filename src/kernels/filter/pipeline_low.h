// The low-precision stages: sums of words in 16 bits that wrap, for kernels whose sums fit.
#pragma once

#include "frame/image.h"
#include "frame/stores.h"
#include "lumcv/types.h"

namespace lum::kernels {

/// A sum without a divisor is a result as it is; else it is multiplied and shifted right arithmetically by
/// 14.
struct LowScale {
    bool undivided;
    Lum16s multiplier;
};

struct LowKernel {
    const Lum16s* coefficients;
    int count;
    LowScale scale;
};

/// dst[i] from the sum over k of coefficients[k] x src[i + k x spacing], wrapped to 16 bits; the scaled value is
/// saturated. The count is a multiple of 8.
void lowRowScalar(const Lum16s* src, int spacing, Lum16s* dst, int count, const LowKernel& kernel);
void lowRow(const Lum16s* src, int spacing, Lum16s* dst, int count, const LowKernel& kernel);

/// The same with the sum wrapped to 32 bits, of whose scaled value the low 16 bits are kept; any count.
void lowRowRest(const Lum16s* src, int spacing, Lum16s* dst, int count, const LowKernel& kernel);

/// dst(i, y) from the sum over k of coefficients[k] x srcRows[y + k][i]: the first `blockElements` results of a row, a
/// multiple of 8, as in lowRow(), the others as in lowRowRest(). The width of `size` counts elements.
void lowColumnsScalar(const Lum16s* const* srcRows, Image<Lum16s> dst, LumSize size, int blockElements,
                      const LowKernel& kernel);
void lowColumns(const Lum16s* const* srcRows, Image<Lum16s> dst, LumSize size, int blockElements,
                const LowKernel& kernel);

/// Five symmetric taps over a divisor of 16: (kernel[2] s2 + kernel[1] (s1 + s3) + kernel[0] (s0 + s4)) >> 4,
/// with the sum wrapped to 16 bits. Streaming stores go to whole cache lines of dst; the caller closes
/// them.
void symmetricRowScalar(const Lum16s* src, int spacing, Lum16s* dst, int count, const Lum16s* kernel);
void symmetricRow(const Lum16s* src, int spacing, Lum16s* dst, int count, const Lum16s* kernel,
                  Stores stores);

/// The same down the columns, two rows of results at a time. The width of `size` counts elements. Streaming stores take rows
/// of dst that can be streamed to.
void symmetricColumnsScalar(const Lum16s* const* srcRows, Image<Lum16s> dst, LumSize size,
                            const Lum16s* kernel);
void symmetricColumns(const Lum16s* const* srcRows, Image<Lum16s> dst, LumSize size, const Lum16s* kernel,
                      Stores stores);

} // namespace lum::kernels

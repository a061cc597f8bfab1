// The members of the row and column stages under one call, for tests that run over all of them; borders and
// roundings as plainly as they can be said.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "support/guarded_image.h"
#include "support/status_checks.h"

namespace pipelines {

using namespace support;

/// Arguments of a row stage; a null borderValue is passed on as such by members of three channels.
template <class S, class R> struct RowCall {
    const S* src;
    int srcStep;
    R* const* dstRows;
    LumSize roiSize;
    const R* kernel;
    int kernelSize;
    int xAnchor;
    LumBorderType border;
    const S* borderValue;
    int divisor;
    Lum8u* buffer;
};

template <class S, class R, int channelCount, bool lowPrecision, auto function, auto query> struct RowMember {
    using Source = S;
    using Result = R;
    using Kernel = R;
    static constexpr int channels = channelCount;
    static constexpr bool low = lowPrecision;

    static LumStatus call(const RowCall<S, R>& a) {
        if constexpr (channels == 1) {
            const S value = a.borderValue == nullptr ? S{} : *a.borderValue;
            return passed(a, value);
        } else {
            return passed(a, a.borderValue);
        }
    }

    static LumStatus bufferSize(LumSize roiSize, int kernelSize, Lum32s* bytes) {
        return query(roiSize, kernelSize, bytes);
    }

    static int bytes(int kernelSize) {
        Lum32s size = -1;
        EXPECT_STATUS(lumStatusOk, query({1, 1}, kernelSize, &size));
        return size;
    }

  private:
    static LumStatus passed(const RowCall<S, R>& a, auto value) {
        if constexpr (std::is_same_v<S, Lum32f>)
            return function(a.src, a.srcStep, a.dstRows, a.roiSize, a.kernel, a.kernelSize, a.xAnchor,
                            a.border, value, a.buffer);
        else
            return function(a.src, a.srcStep, a.dstRows, a.roiSize, a.kernel, a.kernelSize, a.xAnchor,
                            a.border, value, a.divisor, a.buffer);
    }
};

using Row16sC1 = RowMember<Lum16s, Lum16s, 1, false, lumiFilterRowBorderPipeline_16s_C1R,
                           lumiFilterRowBorderPipelineGetBufferSize_16s_C1R>;
using Row16sC3 = RowMember<Lum16s, Lum16s, 3, false, lumiFilterRowBorderPipeline_16s_C3R,
                           lumiFilterRowBorderPipelineGetBufferSize_16s_C3R>;
using Row16uC1 = RowMember<Lum16u, Lum16u, 1, false, lumiFilterRowBorderPipeline_16u_C1R,
                           lumiFilterRowBorderPipelineGetBufferSize_16u_C1R>;
using Row16uC3 = RowMember<Lum16u, Lum16u, 3, false, lumiFilterRowBorderPipeline_16u_C3R,
                           lumiFilterRowBorderPipelineGetBufferSize_16u_C3R>;
using Row32fC1 = RowMember<Lum32f, Lum32f, 1, false, lumiFilterRowBorderPipeline_32f_C1R,
                           lumiFilterRowBorderPipelineGetBufferSize_32f_C1R>;
using Row32fC3 = RowMember<Lum32f, Lum32f, 3, false, lumiFilterRowBorderPipeline_32f_C3R,
                           lumiFilterRowBorderPipelineGetBufferSize_32f_C3R>;
using Row8u16sC1 = RowMember<Lum8u, Lum16s, 1, false, lumiFilterRowBorderPipeline_8u16s_C1R,
                             lumiFilterRowBorderPipelineGetBufferSize_8u16s_C1R>;
using Row8u16sC3 = RowMember<Lum8u, Lum16s, 3, false, lumiFilterRowBorderPipeline_8u16s_C3R,
                             lumiFilterRowBorderPipelineGetBufferSize_8u16s_C3R>;
using RowLowC1 = RowMember<Lum16s, Lum16s, 1, true, lumiFilterRowBorderPipeline_Low_16s_C1R,
                           lumiFilterRowBorderPipelineGetBufferSize_Low_16s_C1R>;
using RowLowC3 = RowMember<Lum16s, Lum16s, 3, true, lumiFilterRowBorderPipeline_Low_16s_C3R,
                           lumiFilterRowBorderPipelineGetBufferSize_Low_16s_C3R>;

template <class S, class R> struct ColumnCall {
    const S* const* srcRows;
    R* dst;
    int dstStep;
    LumSize roiSize;
    const S* kernel;
    int kernelSize;
    int divisor;
    Lum8u* buffer;
};

template <class S, class R, int channelCount, bool lowPrecision, auto function, auto query>
struct ColumnMember {
    using Source = S;
    using Result = R;
    using Kernel = S;
    static constexpr int channels = channelCount;
    static constexpr bool low = lowPrecision;

    static LumStatus call(const ColumnCall<S, R>& a) {
        if constexpr (std::is_same_v<S, Lum32f>)
            return function(a.srcRows, a.dst, a.dstStep, a.roiSize, a.kernel, a.kernelSize, a.buffer);
        else
            return function(a.srcRows, a.dst, a.dstStep, a.roiSize, a.kernel, a.kernelSize, a.divisor,
                            a.buffer);
    }

    static LumStatus bufferSize(LumSize roiSize, int kernelSize, Lum32s* bytes) {
        return query(roiSize, kernelSize, bytes);
    }

    static int bytes(int width) {
        Lum32s size = -1;
        EXPECT_STATUS(lumStatusOk, query({width, 1}, 1, &size));
        return size;
    }
};

using Column16s8sC1 = ColumnMember<Lum16s, Lum8s, 1, false, lumiFilterColumnPipeline_16s8s_C1R,
                                   lumiFilterColumnPipelineGetBufferSize_16s8s_C1R>;
using Column16s8sC3 = ColumnMember<Lum16s, Lum8s, 3, false, lumiFilterColumnPipeline_16s8s_C3R,
                                   lumiFilterColumnPipelineGetBufferSize_16s8s_C3R>;
using Column16s8uC1 = ColumnMember<Lum16s, Lum8u, 1, false, lumiFilterColumnPipeline_16s8u_C1R,
                                   lumiFilterColumnPipelineGetBufferSize_16s8u_C1R>;
using Column16s8uC3 = ColumnMember<Lum16s, Lum8u, 3, false, lumiFilterColumnPipeline_16s8u_C3R,
                                   lumiFilterColumnPipelineGetBufferSize_16s8u_C3R>;
using Column16sC1 = ColumnMember<Lum16s, Lum16s, 1, false, lumiFilterColumnPipeline_16s_C1R,
                                 lumiFilterColumnPipelineGetBufferSize_16s_C1R>;
using Column16sC3 = ColumnMember<Lum16s, Lum16s, 3, false, lumiFilterColumnPipeline_16s_C3R,
                                 lumiFilterColumnPipelineGetBufferSize_16s_C3R>;
using Column16uC1 = ColumnMember<Lum16u, Lum16u, 1, false, lumiFilterColumnPipeline_16u_C1R,
                                 lumiFilterColumnPipelineGetBufferSize_16u_C1R>;
using Column16uC3 = ColumnMember<Lum16u, Lum16u, 3, false, lumiFilterColumnPipeline_16u_C3R,
                                 lumiFilterColumnPipelineGetBufferSize_16u_C3R>;
using Column32fC1 = ColumnMember<Lum32f, Lum32f, 1, false, lumiFilterColumnPipeline_32f_C1R,
                                 lumiFilterColumnPipelineGetBufferSize_32f_C1R>;
using Column32fC3 = ColumnMember<Lum32f, Lum32f, 3, false, lumiFilterColumnPipeline_32f_C3R,
                                 lumiFilterColumnPipelineGetBufferSize_32f_C3R>;
using ColumnLowC1 = ColumnMember<Lum16s, Lum16s, 1, true, lumiFilterColumnPipeline_Low_16s_C1R,
                                 lumiFilterColumnPipelineGetBufferSize_Low_16s_C1R>;
using ColumnLowC3 = ColumnMember<Lum16s, Lum16s, 3, true, lumiFilterColumnPipeline_Low_16s_C3R,
                                 lumiFilterColumnPipelineGetBufferSize_Low_16s_C3R>;

/// Place of element i of an extended row, or -1 for the constant: the reflection is walked pixel by pixel.
inline int placeOf(int i, int width, LumBorderType border) {
    if (i >= 0 && i < width) return i;
    if ((border & (i < 0 ? lumBorderInMemoryLeft : lumBorderInMemoryRight)) != 0) return i;
    const int kind = border & 15;
    if (kind == lumBorderConstant) return -1;
    if (kind == lumBorderReplicate || width == 1) return i < 0 ? 0 : width - 1;
    while (i < 0 || i >= width) i = i < 0 ? -i : 2 * (width - 1) - i;
    return i;
}

/// Pixel i of the extended row.
template <class S>
S extended(const S* row, int i, int channel, int width, int channels, LumBorderType border, const S* value) {
    const bool inside = i >= 0 && i < width;
    const int place = placeOf(i, width, border);
    if (!inside && place == -1 && (border & 15) == lumBorderConstant &&
        (border & (i < 0 ? lumBorderInMemoryLeft : lumBorderInMemoryRight)) == 0)
        return value[channel];
    return row[place * channels + channel];
}

enum class Rounded { nearestEven, truncated };

/// Clamped and rounded in double precision, which holds every float exactly.
template <class R> R result(float sum, Rounded rounded) {
    if constexpr (std::is_floating_point_v<R>) return sum;
    const double value =
        std::clamp<double>(sum, std::numeric_limits<R>::min(), std::numeric_limits<R>::max());
    return static_cast<R>(rounded == Rounded::nearestEven ? std::nearbyint(value) : std::trunc(value));
}

/// The coefficients of a call, scaled in single precision.
template <class K> std::vector<float> scaledKernel(const std::vector<K>& kernel, int divisor) {
    std::vector<float> scaled;
    const float factor = 1.0F / static_cast<float>(divisor);
    for (K coefficient : kernel)
        scaled.push_back(std::is_floating_point_v<K> ? coefficient
                                                     : static_cast<float>(coefficient) * factor);
    return scaled;
}

inline std::int64_t magnitudes(const auto& kernel) {
    std::int64_t sum = 0;
    for (auto k : kernel) sum += std::abs(static_cast<int>(k));
    return sum;
}

/// A kernel of one of several characters: small, with full range, with the lowest word, or with a magnitude sum
/// around the limit of exact pair sums.
template <class K> std::vector<K> randomKernel(int size, std::mt19937& engine) {
    std::vector<K> kernel(size);
    const int character = engine() % 5;
    for (K& k : kernel) {
        if constexpr (std::is_floating_point_v<K>)
            k = static_cast<float>(static_cast<int>(engine() % 2001) - 1000) / 64;
        else if (character == 0)
            k = static_cast<K>(engine());
        else
            k = static_cast<K>(std::is_signed_v<K> ? static_cast<int>(engine() % 61) - 20 : engine() % 61);
    }
    if constexpr (std::is_same_v<K, Lum16s>) {
        if (character == 1) kernel[engine() % size] = -32768;
        if (character == 2) {
            for (K& k : kernel) k = 0;
            kernel[0] = 32767;
            kernel[size - 1] = 32767;
            kernel[size / 2] = static_cast<K>(engine() % 3 + (size > 2 ? 0 : 32000));
        }
    }
    if (character == 3)
        for (int k = 0; k < size / 2; ++k) kernel[size - 1 - k] = kernel[k];
    return kernel;
}

} // namespace pipelines

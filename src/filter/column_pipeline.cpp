#include "filter/column_pipeline.h"

#include <type_traits>

#include "filter/column_stage.h"
#include "filter/pipeline_kernel.h"
#include "frame/arena.h"
#include "frame/instances.h"
#include "kernels/filter/column_pipeline_float.h"
#include "kernels/filter/column_pipeline_pairs.h"
#include "kernels/filter/column_pipeline_three.h"

namespace lum {
namespace {

/// Of a row's elements, whole groups of sixteen from its start are rounded to nearest even, in every path and
/// whatever the alignment; the others as the member rounds one at a time.
constexpr int roundedElements(int elements) { return elements / 16 * 16; }

/// Results of Lum8u and Lum16u round alike everywhere; Lum32f has nothing to round.
template <class R>
constexpr Rounding restRounding =
    std::is_integral_v<R>&& std::is_signed_v<R> ? Rounding::truncated : Rounding::nearestEven;

/// The ring lies on a multiple of 32 bytes.
template <class S, class R> kernels::RingOfThree ringOf(const ColumnArguments<S, R, S>& a, int channels) {
    Arena arena(a.buffer);
    arena.align(32);
    const std::ptrdiff_t elements = static_cast<std::ptrdiff_t>(roundedUp(a.roiSize.width, 4)) * channels;
    return {arena.allocate<float>(3 * elements), elements};
}

template <class R>
void filterThreeTaps(const ColumnArguments<Lum16s, R, Lum16s>& a, int channels, float scale) {
    const auto weight = kernels::scaledWeight(kernels::Taps<Lum16s>{a.kernel, 3, scale});
    const kernels::ThreeWeights weights{weight(0), weight(1), weight(2), a.kernel[0] == a.kernel[2],
                                        sumOfMagnitudes(a.kernel, 3) < 65535};
    const LumSize size{a.roiSize.width * channels, a.roiSize.height};
    kernels::threeTapColumns<R>(a.srcRows, {a.dst, a.dstStep}, size,
                                {roundedElements(size.width), restRounding<R>}, weights, ringOf(a, channels));
}

template <class S, class R> void filterColumns(const ColumnArguments<S, R, S>& a, int channels, float scale) {
    const LumSize size{a.roiSize.width * channels, a.roiSize.height};
    const bool oneRounding = restRounding<R> == Rounding::nearestEven;
    const kernels::RowRounding rounded{oneRounding ? size.width : roundedElements(size.width),
                                       restRounding<R>};
    const kernels::Taps<S> taps{a.kernel, a.kernelSize, scale};
    if constexpr (std::is_integral_v<S>) {
        if (sumsAreExact(a.kernel, a.kernelSize, a.divisor))
            return kernels::pairedColumns<S, R>(a.srcRows, {a.dst, a.dstStep}, size, rounded, taps);
    }
    kernels::weightedColumns<S, R>(a.srcRows, {a.dst, a.dstStep}, size, rounded, taps);
}

} // namespace

template <class S, class R, int channels>
LumStatus columnPipeline(const S* const* srcRows, R* dst, int dstStep, LumSize roiSize, const S* kernel,
                         int kernelSize, int divisor, Lum8u* buffer) {
    const ColumnArguments<S, R, S> arguments{srcRows, dst,        dstStep, roiSize,
                                             kernel,  kernelSize, divisor, buffer};
    if (auto s = columnFailure(arguments, rowBytes<R>(roiSize.width, channels))) return s;
    const float scale = 1.0F / static_cast<float>(divisor);
    if constexpr (std::is_same_v<S, Lum16s>) {
        if (kernelSize == 3) {
            filterThreeTaps(arguments, channels, scale);
            return lumStatusOk;
        }
    }
    filterColumns(arguments, channels, scale);
    return lumStatusOk;
}

template <int channels>
LumStatus columnPipelineOfFloats(const Lum32f* const* srcRows, Lum32f* dst, int dstStep, LumSize roiSize,
                                 const Lum32f* kernel, int kernelSize, Lum8u* buffer) {
    const ColumnArguments<Lum32f, Lum32f, Lum32f> arguments{srcRows, dst,        dstStep, roiSize,
                                                            kernel,  kernelSize, 1,       buffer};
    if (auto s = columnFailure(arguments, rowBytes<Lum32f>(roiSize.width, channels))) return s;
    filterColumns(arguments, channels, 1.0F);
    return lumStatusOk;
}

LUM_INSTANCES(columnPipeline, (Lum16s, Lum8s, 1), (Lum16s, Lum8s, 3), (Lum16s, Lum8u, 1), (Lum16s, Lum8u, 3),
              (Lum16s, Lum16s, 1), (Lum16s, Lum16s, 3), (Lum16u, Lum16u, 1), (Lum16u, Lum16u, 3));
LUM_INSTANCES(columnPipelineOfFloats, (1), (3));

} // namespace lum

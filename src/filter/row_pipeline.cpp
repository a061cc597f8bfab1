#include "filter/row_pipeline.h"

#include "filter/pipeline_kernel.h"
#include "filter/row_stage.h"
#include "frame/instances.h"
#include "kernels/filter/row_pipeline_float.h"
#include "kernels/filter/row_pipeline_pairs.h"

namespace lum {
namespace {

using kernels::Taps;

/// The coefficients times the scale, once per call.
template <class K> Taps<Lum32f> weightsIn(Lum32f* weights, const Taps<K>& taps) {
    const auto weight = kernels::scaledWeight(taps);
    for (int k = 0; k < taps.count; ++k) weights[k] = weight(k);
    return {weights, taps.count, 1.0F};
}

/// The divisor tests of the members, in their places.
template <class S, int channels> constexpr RowTests rowTests() {
    using enum RowTests::Divisor;
    if constexpr (std::is_same_v<S, Lum32f>)
        return {none, channels == 3};
    else if constexpr (std::is_same_v<S, Lum16u>)
        return {beforeBorder, false};
    else if constexpr (std::is_same_v<S, Lum16s>)
        return {channels == 1 ? beforeBorder : afterBorder, channels == 3};
    else
        return {channels == 1 ? afterBorder : beforeBorder, channels == 3};
}

/// How the interior of a row of Lum8u or Lum16s is made. Of its elements, the whole groups of eight from its
/// start are rounded to nearest even and the rest truncated, as are the border stretches; never by alignment.
enum class Interior { pairs, weights, truncated };

template <class S> Interior interiorOf(const Lum16s* kernel, int kernelSize, int width, int divisor) {
    const std::int64_t magnitudes = sumOfMagnitudes(kernel, kernelSize);
    if (kernelSize == 3 || kernelSize == 5) {
        // Three products of a byte and a word cannot pass 32 bits; undivided they are exact whatever the
        // kernel.
        const bool exact = std::is_same_v<S, Lum8u> && kernelSize == 3 && divisor == 1;
        return exact || magnitudes < 65535 ? Interior::pairs : Interior::weights;
    }
    if (width - kernelSize <= 15) return Interior::truncated;
    // A sum of 65535 keeps every pair sum below 2^31.
    return magnitudes <= 65535 && !holdsLowest(kernel, kernelSize) ? Interior::pairs : Interior::weights;
}

template <class S> void filterRows(const RowArguments<S, Lum16s, Lum16s>& a, int channels) {
    const Interior interior = interiorOf<S>(a.kernel, a.kernelSize, a.roiSize.width, a.divisor);
    const Taps<Lum16s> taps{a.kernel, a.kernelSize, 1.0F / static_cast<float>(a.divisor)};
    const RowWork<S> work(a.buffer, a.kernelSize, channels);
    const Taps<Lum32f> weights = weightsIn(work.weights, taps);
    const auto truncated = [&](const S* window, Lum16s* dst, int count) {
        kernels::weightedRow(window, channels, dst, count, weights, Rounding::truncated);
    };
    walkRows(a, channels, work.extended, truncated, [&](const S* window, Lum16s* dst, int count) {
        const int rounded = interior == Interior::truncated ? 0 : count / 8 * 8;
        if (interior == Interior::pairs)
            kernels::pairRow(window, channels, dst, rounded, taps);
        else
            kernels::weightedRow(window, channels, dst, rounded, weights, Rounding::nearestEven);
        truncated(window + rounded, dst + rounded, count - rounded);
    });
}

/// One sum for all results of a row. Lum16u truncates everywhere, Lum32f has nothing to round. Where the sums
/// of words are exact, the interior may form them in pairs.
template <class T> void filterUniformRows(const RowArguments<T, T, T>& a, int channels, float scale) {
    const Taps<T> taps{a.kernel, a.kernelSize, scale};
    const RowWork<T> work(a.buffer, a.kernelSize, channels);
    const Taps<Lum32f> weights = weightsIn(work.weights, taps);
    const auto results = [&](const T* window, T* dst, int count) {
        kernels::weightedRow(window, channels, dst, count, weights, Rounding::truncated);
    };
    if constexpr (std::is_integral_v<T>) {
        if (sumsAreExact(a.kernel, a.kernelSize, a.divisor))
            return walkRows(a, channels, work.extended, results, [&](const T* window, T* dst, int count) {
                const int blocks = count / 8 * 8;
                kernels::pairRow(window, channels, dst, blocks, taps);
                results(window + blocks, dst + blocks, count - blocks);
            });
    }
    walkRows(a, channels, work.extended, results, results);
}

} // namespace

template <class S, class R, int channels>
LumStatus rowPipeline(const S* src, int srcStep, R* const* dstRows, LumSize roiSize, const R* kernel,
                      int kernelSize, int xAnchor, LumBorderType border, BorderValue<S, channels> borderValue,
                      int divisor, Lum8u* buffer) {
    const RowArguments<S, R, R> arguments{
        src,     srcStep, dstRows, roiSize, kernel, kernelSize, xAnchor, border, borderPointer(borderValue),
        divisor, buffer};
    if (auto s = checkArguments<channels, rowTests<S, channels>()>(arguments)) return s;
    if constexpr (std::is_same_v<S, Lum16u>)
        filterUniformRows(arguments, channels, 1.0F / static_cast<float>(divisor));
    else
        filterRows(arguments, channels);
    return lumStatusOk;
}

template <int channels>
LumStatus rowPipelineOfFloats(const Lum32f* src, int srcStep, Lum32f* const* dstRows, LumSize roiSize,
                              const Lum32f* kernel, int kernelSize, int xAnchor, LumBorderType border,
                              BorderValue<Lum32f, channels> borderValue, Lum8u* buffer) {
    const RowArguments<Lum32f, Lum32f, Lum32f> arguments{
        src, srcStep, dstRows, roiSize, kernel, kernelSize, xAnchor, border, borderPointer(borderValue),
        1,   buffer};
    if (auto s = checkArguments<channels, rowTests<Lum32f, channels>()>(arguments)) return s;
    filterUniformRows(arguments, channels, 1.0F);
    return lumStatusOk;
}

LUM_INSTANCES(rowPipeline, (Lum8u, Lum16s, 1), (Lum8u, Lum16s, 3), (Lum16s, Lum16s, 1), (Lum16s, Lum16s, 3),
              (Lum16u, Lum16u, 1), (Lum16u, Lum16u, 3));
LUM_INSTANCES(rowPipelineOfFloats, (1), (3));

} // namespace lum

#include "rows.h"

#include <memory>
#include <string>
#include <type_traits>

namespace bench {
namespace {

constexpr int largestBorder = 8;

/// Binomial kernels, which sum to a power of two, and a row of whole numbers that do not.
template <class K> std::vector<K> binomial(int taps) {
    std::vector<K> kernel(taps, K{0});
    kernel[0] = 1;
    for (int pass = 1; pass < taps; ++pass)
        for (int i = pass; i > 0; --i) kernel[i] = static_cast<K>(kernel[i] + kernel[i - 1]);
    return kernel;
}

/// What a row of the report filters, and how.
struct Work {
    int taps;
    int channels = 1;
    LumBorderType border = lumBorderReplicate;
    /// Multiplies all coefficients of integer kernels.
    int weight = 1;
};

template <class T, class D, class K, class Call> Setup separable(Call call, Work work) {
    return [call, work] {
        struct Run {
            Plane<T> src;
            Plane<D> dst;
            std::vector<Lum8u> spec, buffer;
        };
        // A border in memory lies inside the picture: the region is smaller by it on each side.
        const int inset = work.border == lumBorderInMemory ? largestBorder : 0;
        const LumSize region{width - 2 * inset, height - 2 * inset};
        auto run = std::make_shared<Run>(sceneAs<T>(work.channels), Plane<D>(work.channels));
        constexpr bool integers = std::is_same_v<K, Lum16s>;
        constexpr LumDataType kernelType = integers ? lumType16s : lumType32f;
        constexpr LumDataType dataType = sizeof(T) == 1   ? lumType8u
                                         : sizeof(T) == 4 ? lumType32f
                                         : integers       ? lumType16s
                                                          : lumType16u;
        const LumSize taps{work.taps, work.taps};
        Lum32s bytes = 0;
        lumiFilterSeparableGetSpecSize(taps, kernelType, work.channels, &bytes);
        run->spec.resize(bytes);
        lumiFilterSeparableGetBufferSize(region, taps, dataType, kernelType, work.channels, &bytes);
        run->buffer.resize(bytes);
        auto* spec = reinterpret_cast<LumFilterSeparableSpec*>(run->spec.data());
        std::vector<K> kernel = binomial<K>(work.taps);
        const int sum = (1 << (work.taps - 1)) * work.weight;
        if constexpr (integers) {
            for (K& coefficient : kernel) coefficient = static_cast<K>(coefficient * work.weight);
            lumiFilterSeparableInit_16s(kernel.data(), kernel.data(), taps, sum, 0, dataType, work.channels,
                                        spec);
        } else {
            for (K& coefficient : kernel) coefficient /= static_cast<K>(sum);
            lumiFilterSeparableInit_32f(kernel.data(), kernel.data(), taps, dataType, work.channels, spec);
        }
        return [run, call, work, region, inset, spec] {
            const T* src = run->src.data + inset * (width + 1) * work.channels;
            static const T values[4] = {};
            if constexpr (std::is_invocable_v<Call, const T*, int, D*, int, LumSize, LumBorderType, T,
                                              const LumFilterSeparableSpec*, Lum8u*>)
                call(src, run->src.step(), run->dst.data, run->dst.step(), region, work.border, values[0],
                     spec, run->buffer.data());
            else
                call(src, run->src.step(), run->dst.data, run->dst.step(), region, work.border, values, spec,
                     run->buffer.data());
        };
    };
}

const RowFile file([] {
    constexpr auto of8u = lumiFilterSeparable_8u_C1R;
    for (int taps : {3, 5, 7, 15}) {
        const std::string count = std::to_string(taps);
        const std::string size = '_' + count + 'x' + count;
        row("FilterSeparable_8u" + size, separable<Lum8u, Lum8u, Lum16s>(of8u, {taps}));
        row("FilterSeparable_16s" + size,
            separable<Lum16s, Lum16s, Lum16s>(lumiFilterSeparable_16s_C1R, {taps}));
        row("FilterSeparable_16u" + size,
            separable<Lum16u, Lum16u, Lum32f>(lumiFilterSeparable_16u_C1R, {taps}));
        row("FilterSeparable_32f" + size,
            separable<Lum32f, Lum32f, Lum32f>(lumiFilterSeparable_32f_C1R, {taps}));
    }
    row("FilterSeparable_8u16s_5x5", separable<Lum8u, Lum16s, Lum16s>(lumiFilterSeparable_8u16s_C1R, {5}));
    // Kernels whose sums pass 16 bits, and kernels whose sums integers cannot replace
    row("FilterSeparable_8u_5x5_words", separable<Lum8u, Lum8u, Lum16s>(of8u, {.taps = 5, .weight = 17}));
    row("FilterSeparable_8u_5x5_floats", separable<Lum8u, Lum8u, Lum16s>(of8u, {.taps = 5, .weight = 5003}));
    row("FilterSeparable_8u_C3_5x5",
        separable<Lum8u, Lum8u, Lum16s>(lumiFilterSeparable_8u_C3R, {.taps = 5, .channels = 3}));
    row("FilterSeparable_8u_C4_5x5",
        separable<Lum8u, Lum8u, Lum16s>(lumiFilterSeparable_8u_C4R, {.taps = 5, .channels = 4}));
    row("FilterSeparable_32f_C3_5x5",
        separable<Lum32f, Lum32f, Lum32f>(lumiFilterSeparable_32f_C3R, {.taps = 5, .channels = 3}));
    row("FilterSeparable_8u_5x5_mirror",
        separable<Lum8u, Lum8u, Lum16s>(of8u, {.taps = 5, .border = lumBorderMirror}));
    row("FilterSeparable_8u_5x5_constant",
        separable<Lum8u, Lum8u, Lum16s>(of8u, {.taps = 5, .border = lumBorderConstant}));
    row("FilterSeparable_8u_5x5_inmemory",
        separable<Lum8u, Lum8u, Lum16s>(of8u, {.taps = 5, .border = lumBorderInMemory}));
});

} // namespace
} // namespace bench

#include "rows.h"

#include <memory>

namespace bench {
namespace {

constexpr int largestBorder = 2;

/// A filter with built-in kernels. A border in memory lies inside the picture: the region is smaller by it on
/// each side.
template <class T, class D, class Call, class Query>
Setup fixedFilter(Call call, Query query, LumMaskSize maskSize, LumBorderType border = lumBorderReplicate) {
    return [call, query, maskSize, border] {
        struct Run {
            Plane<T> src;
            Plane<D> dst;
            std::vector<Lum8u> buffer;
        };
        auto run = std::make_shared<Run>(sceneAs<T>(), Plane<D>());
        const int inset = border == lumBorderInMemory ? largestBorder : 0;
        const LumSize region{width - 2 * inset, height - 2 * inset};
        Lum32s bytes = 0;
        query(region, maskSize, &bytes);
        run->buffer.resize(bytes);
        return [run, call, maskSize, border, region, inset] {
            call(run->src.data + inset * (width + 1), run->src.step(), run->dst.data, run->dst.step(), region,
                 maskSize, border, T{0}, run->buffer.data());
        };
    };
}

template <class T, class Call> Setup reduction(Call call, LumSpatialNorm norm) {
    return [call, norm] {
        struct Run {
            Plane<T> src, dst;
        };
        auto run = std::make_shared<Run>(sceneAs<T>(3), Plane<T>());
        return [run, call, norm] {
            call(run->src.data, run->src.step(), run->dst.data, run->dst.step(), size, norm);
        };
    };
}

const RowFile file([] {
    constexpr auto cross8u = lumiFilterSobelCrossBorder_8u16s_C1R;
    constexpr auto cross32f = lumiFilterSobelCrossBorder_32f_C1R;
    constexpr auto laplacian8u = lumiFilterLaplacianBorder_8u16s_C1R;
    constexpr auto laplacian32f = lumiFilterLaplacianBorder_32f_C1R;
    constexpr auto lowpass8u = lumiFilterLowpassBorder_8u_C1R;
    constexpr auto lowpass32f = lumiFilterLowpassBorder_32f_C1R;
    const auto cross = [=](LumMaskSize mask, LumBorderType border = lumBorderReplicate) {
        return fixedFilter<Lum8u, Lum16s>(cross8u, lumiFilterSobelCrossGetBufferSize_8u16s_C1R, mask, border);
    };
    row("FilterSobelCross_8u16s_3", cross(lumMask3x3));
    row("FilterSobelCross_8u16s_5", cross(lumMask5x5));
    row("FilterSobelCross_8u16s_3_mirror", cross(lumMask3x3, lumBorderMirror));
    row("FilterSobelCross_8u16s_3_constant", cross(lumMask3x3, lumBorderConstant));
    row("FilterSobelCross_8u16s_3_inmemory", cross(lumMask3x3, lumBorderInMemory));
    for (LumMaskSize mask : {lumMask3x3, lumMask5x5}) {
        const std::string taps = mask == lumMask3x3 ? "3" : "5";
        row("FilterSobelCross_32f_" + taps,
            fixedFilter<Lum32f, Lum32f>(cross32f, lumiFilterSobelCrossGetBufferSize_32f_C1R, mask));
        row("FilterLaplacian_8u16s_" + taps,
            fixedFilter<Lum8u, Lum16s>(laplacian8u, lumiFilterLaplacianGetBufferSize_8u16s_C1R, mask));
        row("FilterLaplacian_32f_" + taps,
            fixedFilter<Lum32f, Lum32f>(laplacian32f, lumiFilterLaplacianGetBufferSize_32f_C1R, mask));
        row("FilterLowpass_8u_" + taps,
            fixedFilter<Lum8u, Lum8u>(lowpass8u, lumiFilterLowpassGetBufferSize_8u_C1R, mask));
        row("FilterLowpass_32f_" + taps,
            fixedFilter<Lum32f, Lum32f>(lowpass32f, lumiFilterLowpassGetBufferSize_32f_C1R, mask));
    }
    for (LumSpatialNorm norm : {lumSpatialNormInf, lumSpatialNormL1, lumSpatialNormL2}) {
        const std::string name = norm == lumSpatialNormInf ? "Inf" : norm == lumSpatialNormL1 ? "L1" : "L2";
        row("GradientColorToGray_8u_" + name, reduction<Lum8u>(lumiGradientColorToGray_8u_C3C1R, norm));
        row("GradientColorToGray_16u_" + name, reduction<Lum16u>(lumiGradientColorToGray_16u_C3C1R, norm));
        row("GradientColorToGray_32f_" + name, reduction<Lum32f>(lumiGradientColorToGray_32f_C3C1R, norm));
    }
});

} // namespace
} // namespace bench

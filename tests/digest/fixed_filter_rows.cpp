#include "digest/digest.h"

namespace digest {
namespace {

using Row = std::function<void(Digest&, const Case&)>;

constexpr LumBorderType borders[] = {lumBorderReplicate, lumBorderMirror, lumBorderConstant,
                                     lumBorderInMemory,
                                     lumBorderMirror | lumBorderInMemoryTop | lumBorderInMemoryLeft};

template <class Query> Row size(Query query) {
    return [=](Digest& digest, const Case& c) {
        for (const LumMaskSize mask : {lumMask3x3, lumMask5x5}) {
            Lum32s bytes = 0;
            digest.add(query(c.size, mask, &bytes));
            digest.add(bytes);
        }
    };
}

template <class S, class D, class Query, class Member> Row filtered(Query query, Member member) {
    return [=](Digest& digest, const Case& c) {
        Picture<S> src(c.size, 1, c.offset, 2);
        src.fill(c.seed);
        for (const LumMaskSize mask : {lumMask3x3, lumMask5x5})
            for (const LumBorderType border : borders) {
                Lum32s bytes = 0;
                query(c.size, mask, &bytes);
                Memory buffer(bytes);
                Picture<D> dst(c.size, 1, c.offset);
                digest.add(call(member, src, dst, c.size, mask, border, S{77}, static_cast<Lum8u*>(buffer)));
                dst.addTo(digest);
            }
    };
}

template <class T, class Member> Row kernel(Member member) {
    return [=](Digest& digest, const Case&) {
        for (int taps = 1; taps <= 15; taps += 2)
            for (int order = 0; order < taps; ++order) {
                T kernel[15] = {};
                digest.add(member(kernel, taps, order, order % 2 == 0 ? 1 : -1));
                for (const T element : kernel) digest.add(element);
            }
    };
}

template <class T, class Member> Row colourGradient(Member member) {
    return [=](Digest& digest, const Case& c) {
        Picture<T> src(c.size, 3, c.offset);
        src.fill(c.seed);
        for (const LumSpatialNorm norm : {lumSpatialNormInf, lumSpatialNormL1, lumSpatialNormL2}) {
            Picture<T> dst(c.size, 1, c.offset);
            digest.add(call(member, src, dst, c.size, norm));
            dst.addTo(digest);
        }
    };
}

const RowFile file("fixed_filter", [] {
    row("lumiFilterSobelCrossGetBufferSize_8u16s_C1R", size(lumiFilterSobelCrossGetBufferSize_8u16s_C1R));
    row("lumiFilterSobelCrossBorder_8u16s_C1R",
        filtered<Lum8u, Lum16s>(lumiFilterSobelCrossGetBufferSize_8u16s_C1R,
                                lumiFilterSobelCrossBorder_8u16s_C1R));
    row("lumiFilterSobelCrossGetBufferSize_32f_C1R", size(lumiFilterSobelCrossGetBufferSize_32f_C1R));
    row("lumiFilterSobelCrossBorder_32f_C1R",
        filtered<Lum32f, Lum32f>(lumiFilterSobelCrossGetBufferSize_32f_C1R,
                                 lumiFilterSobelCrossBorder_32f_C1R));
    row("lumiFilterLaplacianGetBufferSize_8u16s_C1R", size(lumiFilterLaplacianGetBufferSize_8u16s_C1R));
    row("lumiFilterLaplacianBorder_8u16s_C1R",
        filtered<Lum8u, Lum16s>(lumiFilterLaplacianGetBufferSize_8u16s_C1R,
                                lumiFilterLaplacianBorder_8u16s_C1R));
    row("lumiFilterLaplacianGetBufferSize_32f_C1R", size(lumiFilterLaplacianGetBufferSize_32f_C1R));
    row("lumiFilterLaplacianBorder_32f_C1R",
        filtered<Lum32f, Lum32f>(lumiFilterLaplacianGetBufferSize_32f_C1R,
                                 lumiFilterLaplacianBorder_32f_C1R));
    row("lumiFilterLowpassGetBufferSize_8u_C1R", size(lumiFilterLowpassGetBufferSize_8u_C1R));
    row("lumiFilterLowpassBorder_8u_C1R",
        filtered<Lum8u, Lum8u>(lumiFilterLowpassGetBufferSize_8u_C1R, lumiFilterLowpassBorder_8u_C1R));
    row("lumiFilterLowpassGetBufferSize_32f_C1R", size(lumiFilterLowpassGetBufferSize_32f_C1R));
    row("lumiFilterLowpassBorder_32f_C1R",
        filtered<Lum32f, Lum32f>(lumiFilterLowpassGetBufferSize_32f_C1R, lumiFilterLowpassBorder_32f_C1R));
    row("lumiGenSobelKernel_16s", kernel<Lum16s>(lumiGenSobelKernel_16s));
    row("lumiGenSobelKernel_32f", kernel<Lum32f>(lumiGenSobelKernel_32f));
    row("lumiGradientColorToGray_8u_C3C1R", colourGradient<Lum8u>(lumiGradientColorToGray_8u_C3C1R));
    row("lumiGradientColorToGray_16u_C3C1R", colourGradient<Lum16u>(lumiGradientColorToGray_16u_C3C1R));
    row("lumiGradientColorToGray_32f_C3C1R", colourGradient<Lum32f>(lumiGradientColorToGray_32f_C3C1R));
});

} // namespace
} // namespace digest

#include "rows.h"

#include <memory>
#include <utility>

namespace bench {
namespace {

template <class T> constexpr LumDataType dataTypeOf = lumType8u;
template <> constexpr LumDataType dataTypeOf<Lum16u> = lumType16u;
template <> constexpr LumDataType dataTypeOf<Lum16s> = lumType16s;
template <> constexpr LumDataType dataTypeOf<Lum32f> = lumType32f;

/// A filter of a number of taps with the sigma that fits them, on the inner part of a picture where the border is in
/// memory, else on all of it.
template <class T, class Run>
Setup gaussianOf(Run run, int kernelSize, int channels = 1, LumBorderType border = lumBorderReplicate) {
    return [=] {
        struct Work {
            Plane<T> src, dst;
            std::vector<Lum64f> spec;
            std::vector<Lum8u> buffer;
        };
        Lum32s specBytes = 0;
        Lum32s initBytes = 0;
        Lum32s bufferBytes = 0;
        const LumSizeL all{width, height};
        const LumDataType type = dataTypeOf<T>;
        lumiFilterGaussianGetSpecSize_L(kernelSize, type, channels, &specBytes, &initBytes);
        lumiFilterGaussianGetBufferSize_L(all, kernelSize, type, border, channels, &bufferBytes);
        auto work = std::make_shared<Work>(sceneAs<T>(channels), Plane<T>(channels),
                                           std::vector<Lum64f>(specBytes / sizeof(Lum64f) + 1),
                                           std::vector<Lum8u>(bufferBytes));
        auto* spec = reinterpret_cast<LumFilterGaussianSpecL*>(work->spec.data());
        const float sigma = 0.3F * (static_cast<float>(kernelSize / 2) - 1) + 0.8F;
        lumiFilterGaussianInit_L(all, kernelSize, sigma, border, type, channels, spec, work->buffer.data());

        const int margin = border == lumBorderInMemory ? kernelSize / 2 : 0;
        const LumSizeL region{width - 2 * margin, height - 2 * margin};
        const int inward = margin * (width + 1) * channels;
        return [=] {
            const T borderValue[3] = {100, 100, 100};
            run(work->src.data + inward, work->src.step(), work->dst.data + inward, work->dst.step(), region,
                border, borderValue, spec, work->buffer.data());
        };
    };
}

const RowFile file([] {
    for (int taps : {3, 5, 7, 15}) {
        const std::string name = "_k" + std::to_string(taps);
        row("FilterGaussian_8u" + name, gaussianOf<Lum8u>(lumiFilterGaussian_8u_C1R_L, taps));
        row("FilterGaussian_16u" + name, gaussianOf<Lum16u>(lumiFilterGaussian_16u_C1R_L, taps));
        row("FilterGaussian_16s" + name, gaussianOf<Lum16s>(lumiFilterGaussian_16s_C1R_L, taps));
        row("FilterGaussian_32f" + name, gaussianOf<Lum32f>(lumiFilterGaussian_32f_C1R_L, taps));
        row("FilterGaussian_8u_C3" + name, gaussianOf<Lum8u>(lumiFilterGaussian_8u_C3R_L, taps, 3));
        row("FilterGaussian_32f_C3" + name, gaussianOf<Lum32f>(lumiFilterGaussian_32f_C3R_L, taps, 3));
    }
    const std::pair<const char*, LumBorderType> borders[] = {
        {"_mirror", lumBorderMirror}, {"_constant", lumBorderConstant}, {"_memory", lumBorderInMemory}};
    for (const auto& [name, border] : borders)
        for (int taps : {5, 15})
            row("FilterGaussian_8u_k" + std::to_string(taps) + name,
                gaussianOf<Lum8u>(lumiFilterGaussian_8u_C1R_L, taps, 1, border));
});

} // namespace

} // namespace bench

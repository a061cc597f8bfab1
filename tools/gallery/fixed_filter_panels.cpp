// Panels of the filters with built-in kernels.
#include "gallery/panel.h"
#include "gallery/timing.h"
#include "gallery/work_memory.h"
#include "lumcv.h"
#include "tones.h"

namespace tools {
namespace {

/// Signed results up to here keep their shades; larger ones are plain black or white.
constexpr double laplacianReach = 900;
constexpr double crossReach = 500;

using SizeQuery = decltype(&lumiFilterLaplacianGetBufferSize_8u16s_C1R);

template <class T>
using FixedFilter = LumStatus (*)(const Lum8u*, int, T*, int, LumSize, LumMaskSize, LumBorderType, Lum8u,
                                  Lum8u*);

/// A filter of the grey picture; its milliseconds go into the exhibit.
template <class T>
Plane<T> filtered(const Picture& grey, const std::string& name, FixedFilter<T> filter, SizeQuery bufferSize,
                  LumMaskSize maskSize, Exhibit& exhibit) {
    Lum32s bytes = 0;
    expectOk(bufferSize(grey.size(), maskSize, &bytes), "the size query of " + name);
    WorkMemory buffer(bytes);
    Plane<T> result(grey.width, grey.height);
    exhibit.milliseconds = fastestTurn(name, [&] {
        return filter(grey.data(), grey.step(), result.data(), result.step(), grey.size(), maskSize,
                      lumBorderReplicate, 0, buffer.bytes());
    });
    return result;
}

Panel derivativePanel(const Subject& subject, Panel panel, FixedFilter<Lum16s> filter, SizeQuery bufferSize,
                      double reach) {
    panel.parameters = "5 x 5, edge repeated; 0 is middle grey";
    panel.draw = [&subject, name = panel.function, filter, bufferSize, reach] {
        Exhibit exhibit;
        exhibit.picture = scaledAboutZero(
            filtered<Lum16s>(subject.grey, name, filter, bufferSize, lumMask5x5, exhibit), reach);
        return exhibit;
    };
    return panel;
}

Exhibit lowpass(const Subject& subject) {
    Exhibit exhibit;
    exhibit.picture =
        filtered<Lum8u>(subject.grey, "lumiFilterLowpassBorder_8u_C1R", lumiFilterLowpassBorder_8u_C1R,
                        lumiFilterLowpassGetBufferSize_8u_C1R, lumMask5x5, exhibit);
    return exhibit;
}

/// A step of the three channels toward the lower right, as one channel.
Exhibit gradient(const Subject& subject, LumSpatialNorm norm) {
    constexpr int stride = 2;
    const Picture& picture = subject.colour;
    const Picture moved = shifted(picture, stride, stride);
    Picture steps(picture.width, picture.height, 3);
    expectOk(lumiAbsDiff_8u_C3R(picture.data(), picture.step(), moved.data(), moved.step(), steps.data(),
                                steps.step(), steps.size()),
             "lumiAbsDiff_8u_C3R");
    Picture result(picture.width, picture.height);
    Exhibit exhibit;
    exhibit.milliseconds = fastestTurn("lumiGradientColorToGray_8u_C3C1R", [&] {
        return lumiGradientColorToGray_8u_C3C1R(steps.data(), steps.step(), result.data(), result.step(),
                                                result.size(), norm);
    });
    exhibit.picture = falseColours(scaled(result));
    return exhibit;
}

Panel gradientPanel(const Subject& subject, const char* name, LumSpatialNorm norm, const char* parameters) {
    return {std::string("colour-gradient-") + name, std::string("Colour steps, ") + name,
            "lumiGradientColorToGray_8u_C3C1R", parameters,
            [&subject, norm] { return gradient(subject, norm); }};
}

} // namespace

std::vector<Panel> fixedFilterPanels(const Subject& subject) {
    return {
        derivativePanel(subject, {"laplacian", "Laplacian", "lumiFilterLaplacianBorder_8u16s_C1R", "", {}},
                        lumiFilterLaplacianBorder_8u16s_C1R, lumiFilterLaplacianGetBufferSize_8u16s_C1R,
                        laplacianReach),
        derivativePanel(
            subject, {"cross-derivative", "Cross derivative", "lumiFilterSobelCrossBorder_8u16s_C1R", "", {}},
            lumiFilterSobelCrossBorder_8u16s_C1R, lumiFilterSobelCrossGetBufferSize_8u16s_C1R, crossReach),
        {"low-pass", "Low-pass", "lumiFilterLowpassBorder_8u_C1R", "5 x 5, edge repeated",
         [&subject] { return lowpass(subject); }},
        gradientPanel(subject, "largest", lumSpatialNormInf, "norm 0: the largest channel of a step"),
        gradientPanel(subject, "mean", lumSpatialNormL1, "norm 1: the mean of the channels of a step"),
        gradientPanel(subject, "root", lumSpatialNormL2, "norm 2: the root of the mean square of a step"),
    };
}

} // namespace tools

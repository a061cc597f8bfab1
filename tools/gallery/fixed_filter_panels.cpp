// Panels of the filters with built-in kernels.
#include <algorithm>
#include <cstdio>

#include "gallery/panel.h"
#include "gallery/timing.h"
#include "gallery/work_memory.h"
#include "lumcv.h"
#include "tones.h"

namespace tools {
namespace {

using SizeQuery = decltype(&lumiFilterLaplacianGetBufferSize_8u16s_C1R);

template <class T>
using FixedFilter = LumStatus (*)(const Lum8u*, int, T*, int, LumSize, LumMaskSize, LumBorderType, Lum8u,
                                  Lum8u*);

/// A filter of the grey picture; its milliseconds go into the drawn panel.
template <class T>
Plane<T> filtered(const Picture& grey, const std::string& name, FixedFilter<T> filter, SizeQuery bufferSize,
                  LumMaskSize maskSize, DrawnPanel& drawn) {
    Lum32s bytes = 0;
    expectOk(bufferSize(grey.size(), maskSize, &bytes), "the size query of " + name);
    WorkMemory buffer(bytes);
    Plane<T> result(grey.width, grey.height);
    drawn.time(name, TOOLS_SHOWN(filter(grey.data(), grey.step(), result.data(), result.step(), grey.size(),
                                        maskSize, lumBorderReplicate, 0, buffer.bytes())));
    return result;
}

Panel derivativePanel(const Subject& subject, Panel panel, FixedFilter<Lum16s> filter, SizeQuery bufferSize) {
    panel.parameters = "5 x 5, edge repeated; signed roots, 0 is middle grey";
    panel.draw = [&subject, name = panel.function, filter, bufferSize] {
        DrawnPanel drawn;
        drawn.picture =
            signedRoots(filtered<Lum16s>(subject.grey, name, filter, bufferSize, lumMask5x5, drawn));
        return drawn;
    };
    return panel;
}

DrawnPanel lowpass(const Subject& subject) {
    DrawnPanel drawn;
    drawn.picture =
        filtered<Lum8u>(subject.grey, "lumiFilterLowpassBorder_8u_C1R", lumiFilterLowpassBorder_8u_C1R,
                        lumiFilterLowpassGetBufferSize_8u_C1R, lumMask5x5, drawn);
    return drawn;
}

double meanOf(const Picture& grey) {
    Lum64f mean = 0;
    Lum64f deviation = 0;
    expectOk(lumiMean_StdDev_8u_C1R(grey.data(), grey.step(), grey.size(), &mean, &deviation),
             "lumiMean_StdDev_8u_C1R");
    return mean;
}

/// Steps of which each channel has its own direction, so that edges of all kinds differ in their channels: red across,
/// green down, blue toward the lower right.
Picture stepsOf(const Picture& picture) {
    constexpr int stride = 2;
    Picture moved(picture.width, picture.height, 3);
    for (int y = 0; y < moved.height; ++y)
        for (int x = 0; x < moved.width; ++x)
            for (int c = 0; c < 3; ++c)
                moved.at(x, y, c) =
                    picture.at(c == 1 ? x : std::max(x - stride, 0), c == 0 ? y : std::max(y - stride, 0), c);
    Picture steps(picture.width, picture.height, 3);
    expectOk(lumiAbsDiff_8u_C3R(picture.data(), picture.step(), moved.data(), moved.step(), steps.data(),
                                steps.step(), steps.size()),
             "lumiAbsDiff_8u_C3R");
    return steps;
}

/// Steps as one channel, on one scale for all norms.
DrawnPanel gradient(const Subject& subject, LumSpatialNorm norm) {
    constexpr double brightest = 128;
    const Picture& picture = subject.colour;
    const Picture steps = stepsOf(picture);
    Picture result(picture.width, picture.height);
    DrawnPanel drawn;
    drawn.time("lumiGradientColorToGray_8u_C3C1R",
               TOOLS_SHOWN(lumiGradientColorToGray_8u_C3C1R(steps.data(), steps.step(), result.data(),
                                                            result.step(), result.size(), norm)));
    drawn.picture = falseColours(scaled(result, 0, brightest));
    char text[80];
    std::snprintf(text, sizeof text, "mean over the picture: %.2f", meanOf(result));
    drawn.numbers = {text};
    return drawn;
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
                        lumiFilterLaplacianBorder_8u16s_C1R, lumiFilterLaplacianGetBufferSize_8u16s_C1R),
        derivativePanel(
            subject, {"cross-derivative", "Cross derivative", "lumiFilterSobelCrossBorder_8u16s_C1R", "", {}},
            lumiFilterSobelCrossBorder_8u16s_C1R, lumiFilterSobelCrossGetBufferSize_8u16s_C1R),
        {"low-pass", "Low-pass", "lumiFilterLowpassBorder_8u_C1R", "5 x 5, edge repeated",
         [&subject] { return lowpass(subject); }},
        gradientPanel(subject, "largest", lumSpatialNormInf, "norm 0: the largest channel of a step"),
        gradientPanel(subject, "mean", lumSpatialNormL1, "norm 1: the mean of the channels of a step"),
        gradientPanel(subject, "root", lumSpatialNormL2, "norm 2: the root of the mean square of a step"),
    };
}

} // namespace tools

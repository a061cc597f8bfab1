// Panels of the linear filters that take any kernel: the two stages alone, the separable filter, and the Gaussian.
#include <array>
#include <cmath>
#include <cstdio>

#include "gallery/panel.h"
#include "gallery/timing.h"
#include "gallery/work_memory.h"
#include "lumcv.h"
#include "tones.h"

namespace tools {
namespace {

/// Taps of a derivative along a row, {-1, -2, 0, 2, 1}.
constexpr int derivativeTaps = 5;

/// An average along a column.
constexpr int averaged = 31;

/// A kernel that takes from both neighbours, in both directions.
constexpr Lum16s sharpening[] = {-1, 6, -1};
constexpr int sharpeningSum = 4;

constexpr float sigmas[] = {1, 3, 8};

DrawnPanel rowStage(const Subject& subject) {
    const Picture& grey = subject.grey;
    std::array<Lum16s, derivativeTaps> kernel{};
    expectOk(lumiGenSobelKernel_16s(kernel.data(), derivativeTaps, 1, 1), "lumiGenSobelKernel_16s");
    Lum32s bufferSize = 0;
    expectOk(lumiFilterRowBorderPipelineGetBufferSize_8u16s_C1R(grey.size(), derivativeTaps, &bufferSize),
             "lumiFilterRowBorderPipelineGetBufferSize_8u16s_C1R");
    WorkMemory buffer(bufferSize);
    Plane<Lum16s> result(grey.width, grey.height);
    std::vector<Lum16s*> rows;
    rows.reserve(static_cast<std::size_t>(result.height));
    for (int y = 0; y < result.height; ++y) rows.push_back(result.row(y));

    DrawnPanel drawn;
    drawn.time("lumiFilterRowBorderPipeline_8u16s_C1R",
               TOOLS_SHOWN(lumiFilterRowBorderPipeline_8u16s_C1R(
                   grey.data(), grey.step(), rows.data(), grey.size(), kernel.data(), derivativeTaps,
                   derivativeTaps / 2, lumBorderMirror, 0, 1, buffer.bytes())));
    drawn.picture = signedRoots(result);
    return drawn;
}

DrawnPanel columnStage(const Subject& subject) {
    const Picture& grey = subject.grey;
    const Plane<Lum16s> source = converted<Lum16s>(grey);
    const std::vector<Lum16s> kernel(averaged, 1);
    // Rows above and below the picture are its first and its last one, named again.
    std::vector<const Lum16s*> rows;
    for (int y = -averaged / 2; y < grey.height + averaged / 2; ++y)
        rows.push_back(source.row(std::clamp(y, 0, grey.height - 1)));
    Lum32s bufferSize = 0;
    expectOk(lumiFilterColumnPipelineGetBufferSize_16s8u_C1R(grey.size(), averaged, &bufferSize),
             "lumiFilterColumnPipelineGetBufferSize_16s8u_C1R");
    WorkMemory buffer(bufferSize);

    DrawnPanel drawn{Picture(grey.width, grey.height)};
    Picture& result = drawn.picture;
    drawn.time("lumiFilterColumnPipeline_16s8u_C1R",
               TOOLS_SHOWN(lumiFilterColumnPipeline_16s8u_C1R(rows.data(), result.data(), result.step(),
                                                              result.size(), kernel.data(), averaged,
                                                              averaged, buffer.bytes())));
    return drawn;
}

DrawnPanel sharpened(const Subject& subject) {
    const Picture& picture = subject.colour;
    const LumSize kernelSize{3, 3};
    Lum32s specSize = 0;
    Lum32s bufferSize = 0;
    expectOk(lumiFilterSeparableGetSpecSize(kernelSize, lumType16s, 3, &specSize),
             "lumiFilterSeparableGetSpecSize");
    expectOk(
        lumiFilterSeparableGetBufferSize(picture.size(), kernelSize, lumType8u, lumType16s, 3, &bufferSize),
        "lumiFilterSeparableGetBufferSize");
    WorkMemory spec(specSize);
    WorkMemory buffer(bufferSize);
    auto* kernels = spec.as<LumFilterSeparableSpec>();
    expectOk(lumiFilterSeparableInit_16s(sharpening, sharpening, kernelSize, sharpeningSum, 0, lumType8u, 3,
                                         kernels),
             "lumiFilterSeparableInit_16s");

    DrawnPanel drawn{Picture(picture.width, picture.height, 3)};
    Picture& result = drawn.picture;
    const Lum8u borderValue[3] = {};
    drawn.time("lumiFilterSeparable_8u_C3R",
               TOOLS_SHOWN(lumiFilterSeparable_8u_C3R(picture.data(), picture.step(), result.data(),
                                                      result.step(), result.size(), lumBorderReplicate,
                                                      borderValue, kernels, buffer.bytes())));
    return drawn;
}

/// Three deviations to each side hold all but a few thousandths of a Gaussian.
int gaussianTaps(float sigma) { return 2 * static_cast<int>(std::ceil(3 * sigma)) + 1; }

DrawnPanel gaussian(const Subject& subject, float sigma) {
    const Picture& picture = subject.colour;
    const LumSizeL size{picture.width, picture.height};
    const int taps = gaussianTaps(sigma);
    Lum32s specSize = 0;
    Lum32s initSize = 0;
    Lum32s bufferSize = 0;
    expectOk(lumiFilterGaussianGetSpecSize_L(taps, lumType8u, 3, &specSize, &initSize),
             "lumiFilterGaussianGetSpecSize_L");
    expectOk(lumiFilterGaussianGetBufferSize_L(size, taps, lumType8u, lumBorderMirror, 3, &bufferSize),
             "lumiFilterGaussianGetBufferSize_L");
    WorkMemory spec(specSize);
    WorkMemory scratch(initSize);
    WorkMemory buffer(bufferSize);
    auto* kernel = spec.as<LumFilterGaussianSpecL>();
    expectOk(
        lumiFilterGaussianInit_L(size, taps, sigma, lumBorderMirror, lumType8u, 3, kernel, scratch.bytes()),
        "lumiFilterGaussianInit_L");

    DrawnPanel drawn{Picture(picture.width, picture.height, 3)};
    Picture& result = drawn.picture;
    drawn.time(
        "lumiFilterGaussian_8u_C3R_L",
        TOOLS_SHOWN(lumiFilterGaussian_8u_C3R_L(picture.data(), picture.step(), result.data(), result.step(),
                                                size, lumBorderMirror, nullptr, kernel, buffer.bytes())));
    return drawn;
}

Panel gaussianPanel(const Subject& subject, float sigma) {
    const std::string width = std::to_string(static_cast<int>(sigma));
    const std::string taps = std::to_string(gaussianTaps(sigma));
    return {"gaussian-" + width, "Gaussian, sigma " + width, "lumiFilterGaussian_8u_C3R_L",
            taps + " x " + taps + " taps, edge mirrored",
            [&subject, sigma] { return gaussian(subject, sigma); }};
}

} // namespace

std::vector<Panel> filterPanels(const Subject& subject) {
    std::vector<Panel> panels = {
        {"row-stage", "A row stage: derivative", "lumiFilterRowBorderPipeline_8u16s_C1R",
         "{-1, -2, 0, 2, 1} along the rows, edge mirrored; signed roots, 0 is middle grey",
         [&subject] { return rowStage(subject); }},
        {"column-stage", "A column stage: average", "lumiFilterColumnPipeline_16s8u_C1R",
         "over " + std::to_string(averaged) + " rows, edge repeated",
         [&subject] { return columnStage(subject); }},
        {"sharpened", "Sharpened", "lumiFilterSeparable_8u_C3R",
         "{-1, 6, -1} / 4 along both axes, edge repeated", [&subject] { return sharpened(subject); }},
    };
    for (const float sigma : sigmas) panels.push_back(gaussianPanel(subject, sigma));
    return panels;
}

} // namespace tools

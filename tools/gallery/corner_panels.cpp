// Panels of edges and corners.
#include <algorithm>
#include <cmath>

#include "drawing.h"
#include "gallery/panel.h"
#include "gallery/timing.h"
#include "gallery/work_memory.h"
#include "tones.h"

namespace tools {
namespace {

constexpr int sobel = 2;
constexpr int window = 3;
constexpr float lowThreshold = 60;
constexpr float highThreshold = 140;

DrawnPanel edges(const Subject& subject) {
    const Picture& grey = subject.grey;
    Lum32s bytes = 0;
    expectOk(lumiCannyBorderGetSize(grey.size(), sobel, lumMask3x3, lumType8u, &bytes),
             "lumiCannyBorderGetSize");
    WorkMemory buffer(bytes);
    DrawnPanel drawn;
    drawn.picture = Picture(grey.width, grey.height);
    drawn.time("lumiCannyBorder_8u_C1R",
               TOOLS_SHOWN(lumiCannyBorder_8u_C1R(grey.data(), grey.step(), drawn.picture.data(),
                                                  drawn.picture.step(), grey.size(), sobel, lumMask3x3,
                                                  lumBorderReplicate, 0, lowThreshold, highThreshold,
                                                  lumNormL2, buffer.bytes())));
    const auto& pixels = drawn.picture.elements;
    drawn.numbers = {std::to_string(std::count(pixels.begin(), pixels.end(), 255)) + " pixels on edges"};
    return drawn;
}

/// The Harris response, about 1 at a strong corner; its milliseconds go into the drawn panel.
Plane<Lum32f> response(const Picture& grey, DrawnPanel& drawn) {
    Lum32s bytes = 0;
    expectOk(lumiHarrisCornerGetBufferSize(grey.size(), lumMask3x3, window, lumType8u, 1, &bytes),
             "lumiHarrisCornerGetBufferSize");
    WorkMemory buffer(bytes);
    Plane<Lum32f> result(grey.width, grey.height);
    drawn.time("lumiHarrisCorner_8u32f_C1R",
               TOOLS_SHOWN(lumiHarrisCorner_8u32f_C1R(grey.data(), grey.step(), result.data(), result.step(),
                                                      grey.size(), sobel, lumMask3x3, window, 0.04F, 1e-12F,
                                                      lumBorderReplicate, 0, buffer.bytes())));
    return result;
}

DrawnPanel harris(const Subject& subject) {
    DrawnPanel drawn;
    Plane<Lum32f> result = response(subject.grey, drawn);
    // the fourth root, so that weak corners show beside strong ones
    for (float& value : result.elements) value = std::copysign(std::sqrt(std::sqrt(std::fabs(value))), value);
    drawn.picture = scaledAboutZero(result, 1);
    return drawn;
}

DrawnPanel smallerEigenvalues(const Subject& subject) {
    const Picture& grey = subject.grey;
    Lum32s bytes = 0;
    expectOk(lumiMinEigenValGetBufferSize_8u32f_C1R(grey.size(), 3, window, &bytes),
             "lumiMinEigenValGetBufferSize_8u32f_C1R");
    WorkMemory buffer(bytes);
    Plane<Lum32f> result(grey.width, grey.height);
    DrawnPanel drawn;
    drawn.time("lumiMinEigenVal_8u32f_C1R",
               TOOLS_SHOWN(lumiMinEigenVal_8u32f_C1R(grey.data(), grey.step(), result.data(), result.step(),
                                                     grey.size(), 0, 3, window, buffer.bytes())));
    for (float& value : result.elements) value = std::sqrt(std::max(value, 0.0F));
    drawn.picture = falseColours(scaled(result));
    return drawn;
}

/// The places of the strongest responses that are local peaks.
DrawnPanel corners(const Subject& subject) {
    constexpr std::size_t shown = 60;
    DrawnPanel drawn;
    const Plane<Lum32f> scores = response(subject.grey, drawn);
    drawn.picture = colourOf(subject.grey);
    if (std::min(scores.width, scores.height) < 3) {
        drawn.numbers = {"too narrow for peaks"};
        return drawn;
    }
    Lum32s bytes = 0;
    expectOk(lumiFindPeaks3x3GetBufferSize_32f_C1R(scores.width, &bytes),
             "lumiFindPeaks3x3GetBufferSize_32f_C1R");
    WorkMemory buffer(bytes);
    std::vector<LumPoint> places(scores.elements.size());
    int count = 0;
    drawn.time("lumiFindPeaks3x3_32f_C1R",
               TOOLS_SHOWN(lumiFindPeaks3x3_32f_C1R(scores.data(), scores.step(), scores.size(), 1e-4F,
                                                    places.data(), static_cast<int>(places.size()), &count,
                                                    lumSpatialNormInf, 1, buffer.bytes())));
    places.resize(count);
    const auto score = [&](LumPoint place) { return scores.at(place.x, place.y); };
    std::stable_sort(places.begin(), places.end(),
                     [&](LumPoint a, LumPoint b) { return score(a) > score(b); });
    places.resize(std::min(places.size(), shown));
    for (LumPoint place : places) drawCross(drawn.picture, place, orange, 7);
    if (places.empty()) drawNotice(drawn.picture, "no corner found");
    drawn.numbers = {std::to_string(count) + " peaks above the threshold, " + std::to_string(places.size()) +
                     " strongest corners shown"};
    return drawn;
}

} // namespace

std::vector<Panel> cornerPanels(const Subject& subject) {
    return {
        {"canny-edges", "Edges", "lumiCannyBorder_8u_C1R", "Sobel 3 x 3, L2, thresholds 60 and 140",
         [&subject] { return edges(subject); }},
        {"harris-response", "Harris response", "lumiHarrisCorner_8u32f_C1R",
         "Sobel 3 x 3, window 3, k = 0.04; fourth root, 0 is middle grey",
         [&subject] { return harris(subject); }},
        {"smaller-eigenvalue", "Smaller eigenvalue", "lumiMinEigenVal_8u32f_C1R",
         "Sobel 3 x 3, block 3; square root", [&subject] { return smallerEigenvalues(subject); }},
        {"strongest-corners", "Strongest corners", "lumiFindPeaks3x3_32f_C1R", "peaks of the Harris response",
         [&subject] { return corners(subject); }},
    };
}

} // namespace tools

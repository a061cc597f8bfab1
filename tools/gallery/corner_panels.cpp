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

Exhibit edges(const Subject& subject) {
    const Picture& grey = subject.grey;
    Lum32s bytes = 0;
    expectOk(lumiCannyBorderGetSize(grey.size(), sobel, lumMask3x3, lumType8u, &bytes),
             "lumiCannyBorderGetSize");
    WorkMemory buffer(bytes);
    Exhibit exhibit;
    exhibit.picture = Picture(grey.width, grey.height);
    exhibit.milliseconds = fastestTurn("lumiCannyBorder_8u_C1R", [&] {
        return lumiCannyBorder_8u_C1R(
            grey.data(), grey.step(), exhibit.picture.data(), exhibit.picture.step(), grey.size(), sobel,
            lumMask3x3, lumBorderReplicate, 0, lowThreshold, highThreshold, lumNormL2, buffer.bytes());
    });
    const auto& pixels = exhibit.picture.elements;
    exhibit.numbers = {std::to_string(std::count(pixels.begin(), pixels.end(), 255)) + " pixels on edges"};
    return exhibit;
}

/// The Harris response, about 1 at a strong corner; its milliseconds go into the exhibit.
Plane<Lum32f> response(const Picture& grey, Exhibit& exhibit) {
    Lum32s bytes = 0;
    expectOk(lumiHarrisCornerGetBufferSize(grey.size(), lumMask3x3, window, lumType8u, 1, &bytes),
             "lumiHarrisCornerGetBufferSize");
    WorkMemory buffer(bytes);
    Plane<Lum32f> result(grey.width, grey.height);
    exhibit.milliseconds = fastestTurn("lumiHarrisCorner_8u32f_C1R", [&] {
        return lumiHarrisCorner_8u32f_C1R(grey.data(), grey.step(), result.data(), result.step(), grey.size(),
                                          sobel, lumMask3x3, window, 0.04F, 1e-12F, lumBorderReplicate, 0,
                                          buffer.bytes());
    });
    return result;
}

Exhibit harris(const Subject& subject) {
    Exhibit exhibit;
    Plane<Lum32f> result = response(subject.grey, exhibit);
    // the fourth root, so that weak corners show beside strong ones
    for (float& value : result.elements) value = std::copysign(std::sqrt(std::sqrt(std::fabs(value))), value);
    exhibit.picture = scaledAboutZero(result, 1);
    return exhibit;
}

Exhibit smallerEigenvalues(const Subject& subject) {
    const Picture& grey = subject.grey;
    Lum32s bytes = 0;
    expectOk(lumiMinEigenValGetBufferSize_8u32f_C1R(grey.size(), 3, window, &bytes),
             "lumiMinEigenValGetBufferSize_8u32f_C1R");
    WorkMemory buffer(bytes);
    Plane<Lum32f> result(grey.width, grey.height);
    Exhibit exhibit;
    exhibit.milliseconds = fastestTurn("lumiMinEigenVal_8u32f_C1R", [&] {
        return lumiMinEigenVal_8u32f_C1R(grey.data(), grey.step(), result.data(), result.step(), grey.size(),
                                         0, 3, window, buffer.bytes());
    });
    for (float& value : result.elements) value = std::sqrt(std::max(value, 0.0F));
    exhibit.picture = falseColours(scaled(result));
    return exhibit;
}

/// The places of the strongest responses that are local peaks.
Exhibit corners(const Subject& subject) {
    constexpr std::size_t shown = 60;
    Exhibit exhibit;
    const Plane<Lum32f> scores = response(subject.grey, exhibit);
    exhibit.picture = colourOf(subject.grey);
    if (std::min(scores.width, scores.height) < 3) {
        exhibit.numbers = {"too narrow for peaks"};
        return exhibit;
    }
    Lum32s bytes = 0;
    expectOk(lumiFindPeaks3x3GetBufferSize_32f_C1R(scores.width, &bytes),
             "lumiFindPeaks3x3GetBufferSize_32f_C1R");
    WorkMemory buffer(bytes);
    std::vector<LumPoint> places(scores.elements.size());
    int count = 0;
    exhibit.milliseconds = fastestTurn("lumiFindPeaks3x3_32f_C1R", [&] {
        return lumiFindPeaks3x3_32f_C1R(scores.data(), scores.step(), scores.size(), 1e-4F, places.data(),
                                        static_cast<int>(places.size()), &count, lumSpatialNormInf, 1,
                                        buffer.bytes());
    });
    places.resize(count);
    const auto score = [&](LumPoint place) { return scores.at(place.x, place.y); };
    std::sort(places.begin(), places.end(), [&](LumPoint a, LumPoint b) { return score(a) > score(b); });
    places.resize(std::min(places.size(), shown));
    for (LumPoint place : places) drawCross(exhibit.picture, place, orange, 7);
    exhibit.numbers = {std::to_string(count) + " peaks above the threshold, " +
                       std::to_string(places.size()) + " strongest corners shown"};
    return exhibit;
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

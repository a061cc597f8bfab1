// Panels of segmentation: regions grown from seeds, filled, labelled, and removed where they are too small.
#include <algorithm>
#include <cstdio>

#include "drawing.h"
#include "gallery/panel.h"
#include "gallery/timing.h"
#include "gallery/work_memory.h"
#include "segmenter.h"
#include "tones.h"

namespace tools {
namespace {

constexpr int seedCount = 120;
constexpr Lum8u fillReach = 45;
constexpr int speckleSize = 40;
constexpr Lum16s depthReach = 640;

template <class Query> WorkMemory memoryFor(Query query, const char* function, LumSize size) {
    Lum32s bytes = 0;
    expectOk(query(size, &bytes), function);
    return WorkMemory(bytes);
}

void markSeeds(Picture& picture, const std::vector<LumPoint>& seeds) {
    const int reach = std::max(picture.width / 160, 3);
    for (const LumPoint& seed : seeds) drawCross(picture, seed, orange, reach);
}

/// The picture with bright lines where the labels hold a boundary.
template <class T> Picture withLines(const Picture& colour, const Plane<T>& labels, T boundary) {
    Picture result = colour;
    for (int y = 0; y < result.height; ++y)
        for (int x = 0; x < result.width; ++x)
            if (labels.at(x, y) == boundary) drawPixel(result, x, y, lime);
    return result;
}

DrawnPanel watershedRegions(const Subject& subject) {
    const Picture relief = gradientOf(subject.colour);
    const std::vector<LumPoint> seeds = spreadSeeds(relief, seedCount);
    Plane<Lum8u> labels;
    WorkMemory buffer = memoryFor(lumiSegmentWatershedGetBufferSize_8u_C1R,
                                  "lumiSegmentWatershedGetBufferSize_8u_C1R", relief.size());
    DrawnPanel drawn;
    drawn.time(
        "lumiSegmentWatershed_8u_C1IR",
        [&] {
            labels = Plane<Lum8u>(relief.width, relief.height);
            Lum8u label = 0;
            for (const LumPoint& seed : seeds) labels.at(seed.x, seed.y) = ++label;
        },
        TOOLS_SHOWN(lumiSegmentWatershed_8u_C1IR(relief.data(), relief.step(), labels.data(), labels.step(),
                                                 labels.size(), lumSpatialNormInf,
                                                 lumSegmentQueue | lumSegmentBorder4, buffer.bytes())));
    drawn.picture = withLines<Lum8u>(subject.colour, labels, 255);
    markSeeds(drawn.picture, seeds);
    return drawn;
}

DrawnPanel gradientRegions(const Subject& subject) {
    const Picture& picture = subject.colour;
    const std::vector<LumPoint> seeds = spreadSeeds(gradientOf(picture), seedCount);
    Plane<Lum8u> labels;
    WorkMemory buffer = memoryFor(lumiSegmentGradientGetBufferSize_8u_C3R,
                                  "lumiSegmentGradientGetBufferSize_8u_C3R", picture.size());
    DrawnPanel drawn;
    drawn.time(
        "lumiSegmentGradient_8u_C3IR",
        [&] {
            labels = Plane<Lum8u>(picture.width, picture.height);
            Lum8u label = 0;
            for (const LumPoint& seed : seeds) labels.at(seed.x, seed.y) = ++label;
        },
        TOOLS_SHOWN(lumiSegmentGradient_8u_C3IR(picture.data(), picture.step(), labels.data(), labels.step(),
                                                labels.size(), lumSpatialNormInf, lumSegmentBorder4,
                                                buffer.bytes())));
    drawn.picture = paintedRegions(picture, converted<Lum16u>(labels), seedCount);
    return drawn;
}

DrawnPanel filledRegion(const Subject& subject) {
    const LumSize size = subject.colour.size();
    const LumPoint seed{size.width / 2, size.height / 3};
    const Lum8u newValue[3] = {magenta.red, magenta.green, magenta.blue};
    const Lum8u reach[3] = {fillReach, fillReach, fillReach};
    WorkMemory buffer = memoryFor(lumiFloodFillGetSize, "lumiFloodFillGetSize", size);
    LumFillRegion region{};
    DrawnPanel drawn;
    Picture& picture = drawn.picture;
    drawn.time(
        "lumiFloodFill_Range8Con_8u_C3IR", [&] { picture = subject.colour; },
        TOOLS_SHOWN(lumiFloodFill_Range8Con_8u_C3IR(picture.data(), picture.step(), size, seed, newValue,
                                                    reach, reach, &region, buffer.bytes())));
    drawBox(picture, region.rect, lime, std::max(size.width / 400, 2));
    drawCross(picture, seed, black, std::max(size.width / 100, 6), 3);
    char text[80];
    std::snprintf(text, sizeof text, "%.0f pixels in %d x %d", region.area, region.rect.width,
                  region.rect.height);
    drawn.numbers = {text};
    return drawn;
}

/// Neighbouring numbers get colours far from each other.
Colour colourOfLabel(Lum32s label) {
    const auto [red, green, blue] = falseColour(static_cast<Lum8u>(40 + label * 97 % 216));
    return {red, green, blue};
}

DrawnPanel labelledComponents(const Subject& subject) {
    const Picture& grey = subject.grey;
    double total = 0;
    for (const Lum8u tone : grey.elements) total += tone;
    const double mean = total / static_cast<double>(grey.elements.size());
    Picture bright(grey.width, grey.height);
    std::transform(grey.elements.begin(), grey.elements.end(), bright.elements.begin(),
                   [&](Lum8u tone) { return tone > mean ? Lum8u{255} : Lum8u{0}; });
    Plane<Lum32s> labels(grey.width, grey.height);
    WorkMemory buffer = memoryFor(lumiLabelMarkersGetBufferSize_8u32s_C1R,
                                  "lumiLabelMarkersGetBufferSize_8u32s_C1R", grey.size());
    Lum32s count = 0;
    DrawnPanel drawn{Picture(grey.width, grey.height, 3)};
    drawn.time("lumiLabelMarkers_8u32s_C1R",
               TOOLS_SHOWN(lumiLabelMarkers_8u32s_C1R(bright.data(), bright.step(), labels.data(),
                                                      labels.step(), labels.size(), 1, 1000000,
                                                      lumSpatialNormInf, &count, buffer.bytes())));
    for (int y = 0; y < labels.height; ++y)
        for (int x = 0; x < labels.width; ++x)
            if (labels.at(x, y) != 0) drawPixel(drawn.picture, x, y, colourOfLabel(labels.at(x, y)));
    drawn.numbers = {std::to_string(count) + " components brighter than the mean"};
    return drawn;
}

/// The picture's tones as depths, smooth but for wrong values in small groups, as matching of two views leaves them.
Plane<Lum16s> noisyDepth(const Picture& grey) {
    Plane<Lum16s> depth(grey.width, grey.height);
    for (int y = 0; y < grey.height; ++y)
        for (int x = 0; x < grey.width; ++x) {
            int sum = 0;
            for (int dy = -2; dy <= 2; ++dy)
                for (int dx = -2; dx <= 2; ++dx)
                    sum += grey.at(std::clamp(x + dx, 0, grey.width - 1),
                                   std::clamp(y + dy, 0, grey.height - 1));
            depth.at(x, y) = static_cast<Lum16s>(16 + sum * 3 / 5);
        }
    unsigned state = 1;
    const auto next = [&](int limit) {
        state = state * 1664525U + 1013904223U;
        return static_cast<int>((state >> 8) % static_cast<unsigned>(limit));
    };
    const int groups = grey.width * grey.height / 900;
    for (int i = 0; i < groups; ++i) {
        const LumPoint place{next(grey.width), next(grey.height)};
        const auto wrong = static_cast<Lum16s>(16 + next(3800));
        const LumPoint end{std::min(place.x + 1 + next(6), grey.width),
                           std::min(place.y + 1 + next(6), grey.height)};
        for (int y = place.y; y < end.y; ++y)
            for (int x = place.x; x < end.x; ++x) depth.at(x, y) = wrong;
    }
    return depth;
}

DrawnPanel withoutSpeckles(const Subject& subject) {
    const Plane<Lum16s> noisy = noisyDepth(subject.grey);
    Plane<Lum16s> cleaned;
    Lum32s bytes = 0;
    expectOk(lumiMarkSpecklesGetBufferSize(noisy.size(), lumType16s, 1, &bytes),
             "lumiMarkSpecklesGetBufferSize");
    WorkMemory buffer(bytes);
    DrawnPanel drawn;
    drawn.time(
        "lumiMarkSpeckles_16s_C1IR", [&] { cleaned = noisy; },
        TOOLS_SHOWN(lumiMarkSpeckles_16s_C1IR(cleaned.data(), cleaned.step(), cleaned.size(), 0, speckleSize,
                                              depthReach, lumNormInf, buffer.bytes())));
    const auto removed = std::count(cleaned.elements.begin(), cleaned.elements.end(), Lum16s{0});
    drawn.picture = stacked(falseColours(scaled(noisy, 0, 3840)), falseColours(scaled(cleaned, 0, 3840)));
    drawn.numbers = {std::to_string(removed) + " pixels removed"};
    return drawn;
}

} // namespace

std::vector<Panel> segmentPanels(const Subject& subject) {
    const std::string seeds = std::to_string(seedCount) + " seeds";
    return {
        {"watershed-regions", "Watersheds from seeds", "lumiSegmentWatershed_8u_C1IR", seeds,
         [&subject] { return watershedRegions(subject); }},
        {"gradient-regions", "Regions of similar pixels", "lumiSegmentGradient_8u_C3IR", seeds,
         [&subject] { return gradientRegions(subject); }},
        {"filled-region", "A filled region and its box", "lumiFloodFill_Range8Con_8u_C3IR",
         "within " + std::to_string(fillReach) + " of the seed",
         [&subject] { return filledRegion(subject); }},
        {"labelled-components", "Components by number", "lumiLabelMarkers_8u32s_C1R", "eight neighbours",
         [&subject] { return labelledComponents(subject); }},
        {"speckles-removed", "Depths, and without speckles", "lumiMarkSpeckles_16s_C1IR",
         "at most " + std::to_string(speckleSize) + " pixels, " + std::to_string(depthReach) + " apart",
         [&subject] { return withoutSpeckles(subject); }},
    };
}

} // namespace tools

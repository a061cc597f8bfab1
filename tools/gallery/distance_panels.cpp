// Panels of the distance fields: distances from the edges of a picture, a marched band, and a scratched picture repaired.
#include <algorithm>
#include <cmath>
#include <cstdio>

#include "drawing.h"
#include "gallery/contours.h"
#include "gallery/panel.h"
#include "gallery/timing.h"
#include "gallery/work_memory.h"
#include "lumcv.h"
#include "repair.h"
#include "tones.h"

namespace tools {
namespace {

constexpr float band = 20;
constexpr float repairRadius = 5;

/// Black where the picture's brightness steps most, white elsewhere: about one pixel in fifty is black.
Picture edgesOf(const Picture& grey) {
    Plane<Lum32s> steps(grey.width, grey.height);
    for (int y = 0; y + 1 < grey.height; ++y)
        for (int x = 0; x + 1 < grey.width; ++x)
            steps.at(x, y) =
                std::abs(grey.at(x + 1, y) - grey.at(x, y)) + std::abs(grey.at(x, y + 1) - grey.at(x, y));
    std::vector<Lum32s> sorted = steps.elements;
    const auto place = sorted.end() - static_cast<std::ptrdiff_t>(1 + sorted.size() / 50);
    std::nth_element(sorted.begin(), place, sorted.end());
    const Lum32s least = std::max(*place, 1);
    Picture edges(grey.width, grey.height);
    for (std::size_t i = 0; i < edges.elements.size(); ++i)
        edges.elements[i] = steps.elements[i] >= least ? 0 : 255;
    return edges;
}

DrawnPanel chamfer(const Picture& edges) {
    Lum32f metrics[3];
    expectOk(lumiGetDistanceTransformMask_32f(5, 2, metrics), "lumiGetDistanceTransformMask_32f");
    Plane<Lum32f> distances(edges.width, edges.height);
    DrawnPanel drawn;
    drawn.time("lumiDistanceTransform_5x5_8u32f_C1R",
               TOOLS_SHOWN(lumiDistanceTransform_5x5_8u32f_C1R(edges.data(), edges.step(), distances.data(),
                                                               distances.step(), edges.size(), metrics)));
    drawn.picture = withContours(distances);
    return drawn;
}

Plane<Lum32f> exactDistances(const Picture& edges, DrawnPanel& drawn) {
    Plane<Lum32f> distances(edges.width, edges.height);
    Lum32s bytes = 0;
    expectOk(lumiTrueDistanceTransformGetBufferSize_8u32f_C1R(edges.size(), &bytes),
             "lumiTrueDistanceTransformGetBufferSize_8u32f_C1R");
    WorkMemory buffer(bytes);
    drawn.time("lumiTrueDistanceTransform_8u32f_C1R", TOOLS_SHOWN(lumiTrueDistanceTransform_8u32f_C1R(
                                                          edges.data(), edges.step(), distances.data(),
                                                          distances.step(), edges.size(), buffer.bytes())));
    return distances;
}

DrawnPanel exact(const Picture& edges) {
    DrawnPanel drawn;
    const Plane<Lum32f> distances = exactDistances(edges, drawn);
    char text[80];
    std::snprintf(text, sizeof text, "at most %.1f pixels", rangeOf(distances).second);
    drawn.numbers = {text};
    drawn.picture = withContours(distances);
    return drawn;
}

/// How far the chamfer distances are from the exact ones.
DrawnPanel chamferError(const Picture& edges) {
    Lum32f metrics[3];
    expectOk(lumiGetDistanceTransformMask_32f(5, 2, metrics), "lumiGetDistanceTransformMask_32f");
    DrawnPanel drawn;
    Plane<Lum32f> error = exactDistances(edges, drawn);
    drawn = {};
    Plane<Lum32f> distances(edges.width, edges.height);
    expectOk(lumiDistanceTransform_5x5_8u32f_C1R(edges.data(), edges.step(), distances.data(),
                                                 distances.step(), edges.size(), metrics),
             "lumiDistanceTransform_5x5_8u32f_C1R");
    for (std::size_t i = 0; i < error.elements.size(); ++i)
        error.elements[i] = std::fabs(error.elements[i] - distances.elements[i]);
    char text[80];
    std::snprintf(text, sizeof text, "at most %.2f pixels", rangeOf(error).second);
    drawn.picture = falseColours(scaled(error));
    drawn.numbers = {text};
    return drawn;
}

/// White strokes and blots across the picture.
Picture scratchesOn(const Picture& picture) {
    const int w = picture.width;
    const int h = picture.height;
    Picture mask(w, h);
    const int thickness = std::max(2, std::min(w, h) / 90);
    drawLine(mask, {w / 12, h / 7}, {w * 9 / 10, h * 5 / 9}, white, thickness);
    drawLine(mask, {w * 7 / 8, h / 10}, {w / 5, h * 8 / 9}, white, thickness);
    drawLine(mask, {w / 3, h / 15}, {w * 4 / 9, h * 14 / 15}, white, thickness);
    drawLine(mask, {w / 20, h * 3 / 5}, {w * 19 / 20, h * 4 / 5}, white, thickness);
    drawText(mask, w / 4, h / 3, "SCRATCHED", white, std::max(1, w / 160));
    return mask;
}

DrawnPanel marchedBand(const Subject& subject) {
    const Picture mask = scratchesOn(subject.picture);
    DrawnPanel drawn;
    Plane<Lum32f> distances = marched(mask, band);
    drawn.milliseconds = millisecondsOf([&] { distances = marched(mask, band); });
    drawn.code = "lumiFastMarching_8u32f_C1R(mask.data(), mask.step(), distances.data(), distances.step(), "
                 "mask.size(), band, buffer.bytes())";
    const auto [least, largest] = rangeOf(distances);
    char text[80];
    std::snprintf(text, sizeof text, "from %.1f to %.1f pixels", least, largest);
    drawn.numbers = {text};
    drawn.picture = withContours(distances);
    return drawn;
}

Picture scratched(const Subject& subject) {
    const Picture mask = scratchesOn(subject.picture);
    Picture picture = subject.colour;
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x)
            if (mask.at(x, y) != 0) drawPixel(picture, x, y, white);
    return picture;
}

DrawnPanel repaired(const Subject& subject, int method) {
    DrawnPanel drawn;
    const Picture damaged = scratched(subject);
    Inpainting inpainting(scratchesOn(subject.picture), 3, repairRadius, method);
    drawn.milliseconds = millisecondsOf([&] { drawn.picture = inpainting.repaired(damaged); });
    drawn.code = "lumiInpaint_8u_C3R(damaged.data(), damaged.step(), repaired.data(), repaired.step(), "
                 "damaged.size(), state, buffer.bytes())";
    double total = 0;
    for (std::size_t i = 0; i < damaged.elements.size(); ++i)
        total += std::abs(drawn.picture.elements[i] - subject.colour.elements[i]);
    char text[80];
    std::snprintf(text, sizeof text, "away from the picture by %.2f tones on average",
                  total / static_cast<double>(damaged.elements.size()));
    drawn.numbers = {text};
    return drawn;
}

} // namespace

std::vector<Panel> distancePanels(const Subject& subject) {
    const auto ofEdges = [&subject](DrawnPanel (*draw)(const Picture&)) {
        return [&subject, draw] { return draw(edgesOf(subject.grey)); };
    };
    return {
        {"distance-edges", "Edges", "", "the strongest steps of brightness",
         [&subject] { return DrawnPanel{edgesOf(subject.grey)}; }},
        {"distance-chamfer", "Chamfer distance from the edges", "lumiDistanceTransform_5x5_8u32f_C1R",
         "steps of 1, 1.4 and 2.1969", ofEdges(chamfer), "distance-edges"},
        {"distance-exact", "Exact distance from the edges", "lumiTrueDistanceTransform_8u32f_C1R", "",
         ofEdges(exact), "distance-edges"},
        {"distance-error", "How far they differ", "", "steps of 1, 1.4 and 2.1969", ofEdges(chamferError),
         "distance-edges"},
        {"marched-band", "Marched around scratches", "lumiFastMarching_8u32f_C1R", "radius 20",
         [&subject] { return marchedBand(subject); }},
        {"inpaint-scratched", "A scratched picture", "", "",
         [&subject] { return DrawnPanel{scratched(subject)}; }},
        {"inpaint-front", "Repaired along the front", "lumiInpaint_8u_C3R", "lumInpaintFront, radius 5",
         [&subject] { return repaired(subject, lumInpaintFront); }, "inpaint-scratched"},
        {"inpaint-isophote", "Repaired along the level lines", "lumiInpaint_8u_C3R",
         "lumInpaintIsophote, radius 5", [&subject] { return repaired(subject, lumInpaintIsophote); },
         "inpaint-scratched"},
    };
}

} // namespace tools

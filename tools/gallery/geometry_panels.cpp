// Panels of the lens geometry: a picture as a lens would bend it, the same corrected, and the pixels along a line.
#include <algorithm>
#include <cmath>
#include <cstdio>

#include "drawing.h"
#include "gallery/contours.h"
#include "gallery/panel.h"
#include "gallery/timing.h"
#include "gallery/work_memory.h"
#include "lumcv.h"
#include "tones.h"

namespace tools {
namespace {

/// A lens that bends straight lines outward, as wide ones do.
constexpr float k1 = -0.28F;
constexpr float k2 = 0.06F;

struct Lens {
    float focalLength;
    float cx, cy;
};

Lens lensFor(const Picture& picture) {
    return {0.6F * static_cast<float>(std::max(picture.width, picture.height)),
            static_cast<float>(picture.width - 1) / 2, static_cast<float>(picture.height - 1) / 2};
}

Lum8u between(const Picture& picture, double x, double y, int channel) {
    const int left = static_cast<int>(x);
    const int top = static_cast<int>(y);
    const int right = std::min(left + 1, picture.width - 1);
    const int bottom = std::min(top + 1, picture.height - 1);
    const double across = x - left;
    const double down = y - top;
    const double upper =
        picture.at(left, top, channel) * (1 - across) + picture.at(right, top, channel) * across;
    const double lower =
        picture.at(left, bottom, channel) * (1 - across) + picture.at(right, bottom, channel) * across;
    return static_cast<Lum8u>(std::lround(upper * (1 - down) + lower * down));
}

/// The picture as the lens would show it. The model gives the bent place of a straight one; the way back is found
/// by repetition, which converges fast for a lens as mild as this.
Picture bent(const Picture& picture) {
    constexpr int repetitions = 24;
    const Lens lens = lensFor(picture);
    Picture result(picture.width, picture.height, picture.channels);
    for (int y = 0; y < result.height; ++y)
        for (int x = 0; x < result.width; ++x) {
            const double dx = static_cast<float>(x) - lens.cx;
            const double dy = static_cast<float>(y) - lens.cy;
            double stretch = 1;
            for (int i = 0; i < repetitions; ++i) {
                const double r2 =
                    (dx * dx + dy * dy) * stretch * stretch / (lens.focalLength * lens.focalLength);
                stretch = 1 / (1 + k1 * r2 + k2 * r2 * r2);
            }
            const double sx = lens.cx + dx * stretch;
            const double sy = lens.cy + dy * stretch;
            if (sx < 0 || sy < 0 || sx > picture.width - 1 || sy > picture.height - 1) continue;
            for (int c = 0; c < result.channels; ++c) result.at(x, y, c) = between(picture, sx, sy, c);
        }
    return result;
}

WorkMemory columnTerms(LumSize size) {
    Lum32s bytes = 0;
    expectOk(lumiUndistortGetSize(size, &bytes), "lumiUndistortGetSize");
    return WorkMemory(bytes);
}

DrawnPanel corrected(const Subject& subject) {
    const Picture source = bent(subject.colour);
    const Lens lens = lensFor(source);
    WorkMemory buffer = columnTerms(source.size());
    DrawnPanel drawn{Picture(source.width, source.height, 3)};
    Picture& result = drawn.picture;
    drawn.time("lumiUndistortRadial_8u_C3R",
               TOOLS_SHOWN(lumiUndistortRadial_8u_C3R(
                   source.data(), source.step(), result.data(), result.step(), result.size(),
                   lens.focalLength, lens.focalLength, lens.cx, lens.cy, k1, k2, buffer.bytes())));
    double total = 0;
    for (std::size_t i = 0; i < result.elements.size(); ++i)
        total += std::abs(result.elements[i] - subject.colour.elements[i]);
    char text[80];
    std::snprintf(text, sizeof text, "away from the picture by %.1f tones on average",
                  total / static_cast<double>(result.elements.size()));
    drawn.numbers = {text};
    return drawn;
}

/// How far the lens moves each pixel.
DrawnPanel distances(const Subject& subject) {
    const Picture& picture = subject.picture;
    const Lens lens = lensFor(picture);
    WorkMemory buffer = columnTerms(picture.size());
    Plane<Lum32f> xMap(picture.width, picture.height);
    Plane<Lum32f> yMap(picture.width, picture.height);
    DrawnPanel drawn;
    drawn.time("lumiCreateMapCameraUndistort_32f_C1R",
               TOOLS_SHOWN(lumiCreateMapCameraUndistort_32f_C1R(
                   xMap.data(), xMap.step(), yMap.data(), yMap.step(), xMap.size(), lens.focalLength,
                   lens.focalLength, lens.cx, lens.cy, k1, k2, 0, 0, buffer.bytes())));
    for (int y = 0; y < xMap.height; ++y)
        for (int x = 0; x < xMap.width; ++x)
            xMap.at(x, y) =
                std::hypot(xMap.at(x, y) - static_cast<float>(x), yMap.at(x, y) - static_cast<float>(y));
    char text[80];
    std::snprintf(text, sizeof text, "at most %.1f pixels", rangeOf(xMap).second);
    drawn.numbers = {text};
    drawn.picture = withContours(xMap);
    return drawn;
}

struct Line {
    LumPoint from, to;
};

/// From the upper left to the lower right, off the corners.
Line lineAcross(const Picture& picture) {
    return {{picture.width / 24, picture.height / 9},
            {picture.width - 1 - picture.width / 24, picture.height - 1 - picture.height / 5}};
}

DrawnPanel sampledLine(const Subject& subject) {
    const Picture& picture = subject.colour;
    const Line ends = lineAcross(picture);
    const LumPoint from = ends.from;
    const LumPoint to = ends.to;
    const int samples = std::max(std::abs(to.x - from.x), std::abs(to.y - from.y)) + 1;
    Picture line(samples, 1, 3);
    DrawnPanel drawn;
    drawn.time("lumiSampleLine_8u_C3R",
               TOOLS_SHOWN(lumiSampleLine_8u_C3R(picture.data(), picture.step(), picture.size(), line.data(),
                                                 from, to)));

    std::vector<Curve> curves = {
        {{}, {255, 96, 84}, "red"}, {{}, {96, 220, 110}, "green"}, {{}, {96, 160, 255}, "blue"}};
    for (int c = 0; c < 3; ++c)
        for (int x = 0; x < samples; ++x) curves[c].values.push_back(line.at(x, 0, c));
    Picture marked = picture;
    drawLine(marked, from, to, black, 4);
    drawLine(marked, from, to, cyan, 2);
    drawn.picture = stacked(marked, plot({picture.width, std::max(picture.height / 2, 1)}, curves, 0, 255));
    drawn.numbers = {std::to_string(samples) + " samples"};
    return drawn;
}

std::string textOf(Line line) {
    char text[80];
    std::snprintf(text, sizeof text, "from (%d, %d) to (%d, %d)", line.from.x, line.from.y, line.to.x,
                  line.to.y);
    return text;
}

} // namespace

std::vector<Panel> geometryPanels(const Subject& subject) {
    char lens[80];
    std::snprintf(lens, sizeof lens, "k1 %.2f, k2 %.2f, focal length %.0f pixels", k1, k2,
                  lensFor(subject.picture).focalLength);
    return {
        {"through-a-lens", "Seen through a lens", "", lens,
         [&subject] { return DrawnPanel{bent(subject.colour)}; }},
        {"lens-corrected", "Corrected again", "lumiUndistortRadial_8u_C3R", lens,
         [&subject] { return corrected(subject); }, "through-a-lens"},
        {"lens-map", "How far pixels move", "lumiCreateMapCameraUndistort_32f_C1R", lens,
         [&subject] { return distances(subject); }},
        {"sampled-line", "Along a line", "lumiSampleLine_8u_C3R", textOf(lineAcross(subject.picture)),
         [&subject] { return sampledLine(subject); }},
    };
}

} // namespace tools

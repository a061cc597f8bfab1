// Panels of the corner search: corners with the direction of their brighter side, on the picture.
#include <algorithm>
#include <cmath>
#include <cstdio>

#include "drawing.h"
#include "gallery/panel.h"
#include "gallery/timing.h"
#include "gallery/work_memory.h"
#include "lumcv.h"
#include "tones.h"

namespace tools {
namespace {

constexpr int threshold = 24;
constexpr int bins = 32;
constexpr int flags = lumFastNCorners | lumFastNScore | lumFastNSuppression | lumFastNOrientation;

struct Circle {
    int radius;
    int arcLength;
};

/// A corner's ring, and a stroke from it to its brighter side. Angles count from the left over below.
void drawCorner(Picture& picture, const LumFastNCorner& corner, int radius) {
    constexpr double degree = 3.14159265358979 / 180;
    const Colour colour = corner.type == 0 ? orange : cyan;
    const double angle = corner.angle * degree;
    const LumPoint tip{corner.x - static_cast<int>(std::lround(3 * radius * std::cos(angle))),
                       corner.y + static_cast<int>(std::lround(3 * radius * std::sin(angle)))};
    drawLine(picture, {corner.x, corner.y}, tip, colour);
    drawBox(picture, {corner.x - radius, corner.y - radius, 2 * radius + 1, 2 * radius + 1}, colour, 1);
}

DrawnPanel corners(const Subject& subject, Circle circle) {
    const Picture& grey = subject.grey;
    Lum32s bytes = 0;
    expectOk(
        lumiFastNGetSize(grey.size(), circle.radius, circle.arcLength, bins, flags, lumType8u, 1, &bytes),
        "lumiFastNGetSize");
    WorkMemory spec(bytes);
    auto* object = spec.as<LumFastNSpec>();
    expectOk(lumiFastNInit(grey.size(), circle.radius, circle.arcLength, bins, flags, threshold, lumType8u, 1,
                           object),
             "lumiFastNInit");
    expectOk(lumiFastNGetBufferSize(object, grey.size(), &bytes), "lumiFastNGetBufferSize");
    WorkMemory buffer(bytes);
    Picture marks(grey.width, grey.height);
    Picture scores(grey.width, grey.height);
    Lum32s count = 0;
    DrawnPanel drawn;
    drawn.time("lumiFastN_8u_C1R", TOOLS_SHOWN(lumiFastN_8u_C1R(
                                       grey.data(), grey.step(), marks.data(), marks.step(), scores.data(),
                                       scores.step(), &count, {0, 0}, grey.size(), object, buffer.bytes())));

    // PanelSection for one at least: a list is never null.
    std::vector<LumFastNCorner> list(std::max(count, 1));
    expectOk(lumiFastN2DToVec_8u(marks.data(), marks.step(), scores.data(), scores.step(), list.data(),
                                 grey.size(), count, &count, object),
             "lumiFastN2DToVec_8u");
    list.resize(count);
    std::stable_sort(list.begin(), list.end(),
                     [](const auto& a, const auto& b) { return a.score > b.score; });
    constexpr std::size_t mostDrawn = 600;
    list.resize(std::min(list.size(), mostDrawn));
    drawn.picture = colourOf(grey);
    for (Lum8u& tone : drawn.picture.elements) tone = static_cast<Lum8u>(tone * 3 / 5);
    for (const LumFastNCorner& corner : list) drawCorner(drawn.picture, corner, circle.radius);
    if (list.empty()) drawNotice(drawn.picture, "no corner found");
    drawn.numbers = {std::to_string(count) + " corners, the " + std::to_string(list.size()) +
                     " strongest drawn"};
    return drawn;
}

Panel cornersPanel(const Subject& subject, Circle circle) {
    char text[96];
    std::snprintf(text, sizeof text, "circle of radius %d, arcs of %d, threshold %d, suppressed",
                  circle.radius, circle.arcLength, threshold);
    return {"corners-of-circle-" + std::to_string(circle.radius),
            "Corners, with the direction of the brighter side", "lumiFastN_8u_C1R", text,
            [&subject, circle] { return corners(subject, circle); }};
}

} // namespace

std::vector<Panel> fastPanels(const Subject& subject) {
    return {cornersPanel(subject, {3, 9}), cornersPanel(subject, {9, 30})};
}

} // namespace tools

// Panels of the line searches: lines and segments over the edges that they were found in.
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

constexpr LumPoint32f delta{1, 3.14159F / 180};
constexpr int mostLines = 12;
constexpr int mostSegments = 1000;

/// The share of the picture's longer side that a line or a segment must have in pixels.
int lengthWanted(const Picture& picture, int partOfSide) {
    return std::max(std::max(picture.width, picture.height) / partOfSide, 1);
}

Picture edgesOf(const Picture& grey) {
    Lum32s bytes = 0;
    expectOk(lumiCannyBorderGetSize(grey.size(), 2, lumMask3x3, lumType8u, &bytes), "lumiCannyBorderGetSize");
    WorkMemory buffer(bytes);
    Picture edges(grey.width, grey.height);
    expectOk(lumiCannyBorder_8u_C1R(grey.data(), grey.step(), edges.data(), edges.step(), grey.size(), 2,
                                    lumMask3x3, lumBorderReplicate, 0, 120, 280, lumNormL2, buffer.bytes()),
             "lumiCannyBorder_8u_C1R");
    return edges;
}

/// The edges, dim, in colour.
Picture ground(const Picture& edges) {
    Picture picture = colourOf(edges);
    for (Lum8u& tone : picture.elements) tone = static_cast<Lum8u>(tone / 2 + 20);
    return picture;
}

/// A line across the whole picture, from the foot of its normal in both directions.
void drawWholeLine(Picture& picture, LumPoint32f line) {
    const double c = std::cos(line.y);
    const double s = std::sin(line.y);
    const double reach = std::hypot(picture.width, picture.height);
    const auto at = [&](double along) {
        return LumPoint{static_cast<int>(std::lround(line.x * c - along * s)),
                        static_cast<int>(std::lround(line.x * s + along * c))};
    };
    drawLine(picture, at(-reach), at(reach), orange);
}

DrawnPanel lines(const Subject& subject) {
    const Picture edges = edgesOf(subject.grey);
    Lum32s bytes = 0;
    expectOk(lumiHoughLineGetSize_8u_C1R(edges.size(), delta, mostLines, &bytes),
             "lumiHoughLineGetSize_8u_C1R");
    WorkMemory buffer(bytes);
    std::vector<LumPoint32f> found(mostLines);
    int count = 0;
    DrawnPanel drawn;
    drawn.time("lumiHoughLine_8u32f_C1R",
               TOOLS_SHOWN(lumiHoughLine_8u32f_C1R(edges.data(), edges.step(), edges.size(), delta,
                                                   lengthWanted(edges, 8), found.data(), mostLines, &count,
                                                   buffer.bytes())));
    drawn.picture = ground(edges);
    for (int i = 0; i < count; ++i) drawWholeLine(drawn.picture, found[i]);
    if (count == 0) drawNotice(drawn.picture, "no line found");
    drawn.numbers = {std::to_string(count) + " lines"};
    return drawn;
}

DrawnPanel segments(const Subject& subject) {
    const Picture edges = edgesOf(subject.grey);
    Lum32s specBytes = 0;
    Lum32s bufferBytes = 0;
    expectOk(lumiHoughProbLineGetSize_8u_C1R(edges.size(), delta, &specBytes, &bufferBytes),
             "lumiHoughProbLineGetSize_8u_C1R");
    WorkMemory spec(specBytes);
    WorkMemory buffer(bufferBytes);
    auto* object = spec.as<LumHoughProbSpec>();
    expectOk(lumiHoughProbLineInit_8u32f_C1R(edges.size(), delta, 0, object),
             "lumiHoughProbLineInit_8u32f_C1R");
    std::vector<Lum32s> found(4 * mostSegments);
    int count = 0;
    const int length = lengthWanted(edges, 20);
    DrawnPanel drawn;
    drawn.time(
        "lumiHoughProbLine_8u32f_C1R",
        TOOLS_SHOWN(lumiHoughProbLine_8u32f_C1R(edges.data(), edges.step(), edges.size(), length, length, 3,
                                                found.data(), mostSegments, &count, buffer.bytes(), object)));
    drawn.picture = ground(edges);
    for (int i = 0; i < count; ++i) {
        const Lum32s* s = found.data() + static_cast<std::size_t>(4) * i;
        drawLine(drawn.picture, {s[0], s[1]}, {s[2], s[3]}, i % 2 == 0 ? lime : cyan, 2);
    }
    if (count == 0) drawNotice(drawn.picture, "no segment found");
    drawn.numbers = {std::to_string(count) + " segments"};
    return drawn;
}

} // namespace

std::vector<Panel> houghPanels(const Subject& subject) {
    char lineText[96];
    char segmentText[96];
    std::snprintf(lineText, sizeof lineText, "1 pixel, 1 degree, above %d votes, at most %d lines",
                  lengthWanted(subject.grey, 8), mostLines);
    std::snprintf(segmentText, sizeof segmentText, "1 pixel, 1 degree, %d pixels long, gaps of 3",
                  lengthWanted(subject.grey, 20));
    return {
        {"lines", "Lines over the edges", "lumiHoughLine_8u32f_C1R", lineText,
         [&subject] { return lines(subject); }},
        {"segments", "Segments over the edges", "lumiHoughProbLine_8u32f_C1R", segmentText,
         [&subject] { return segments(subject); }},
    };
}

} // namespace tools

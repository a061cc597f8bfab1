// Panels of morphology: the compound operators, by a disc.
#include <algorithm>
#include <string>
#include <vector>

#include "gallery/panel.h"
#include "gallery/timing.h"
#include "gallery/work_memory.h"
#include "lumcv.h"
#include "tones.h"

namespace tools {
namespace {

using Operator = decltype(&lumiMorphOpenBorder_8u_C1R);

/// Cells of a square whose centres lie within the radius, with a little more so that the outline is round.
std::vector<Lum8u> disc(int radius) {
    std::vector<Lum8u> cells;
    for (int y = -radius; y <= radius; ++y)
        for (int x = -radius; x <= radius; ++x) cells.push_back(x * x + y * y <= radius * radius + radius);
    return cells;
}

/// An operator with what its panel needs.
struct Shown {
    const char* file;
    const char* title;
    const char* function;
    Operator member;
    /// The disc is as many pixels in a picture 960 pixels wide, and more or less in others.
    int radius;
    bool isDifference;

    int radiusIn(const Picture& grey) const { return std::max(1, radius * grey.width / 960); }
};

constexpr Shown operators[] = {
    {"opening", "Opening: bright details go", "lumiMorphOpenBorder_8u_C1R", lumiMorphOpenBorder_8u_C1R, 6,
     false},
    {"closing", "Closing: dark details go", "lumiMorphCloseBorder_8u_C1R", lumiMorphCloseBorder_8u_C1R, 6,
     false},
    {"morphological-gradient", "Morphological gradient", "lumiMorphGradientBorder_8u_C1R",
     lumiMorphGradientBorder_8u_C1R, 2, true},
    {"top-hat", "Top-hat: the bright details", "lumiMorphTophatBorder_8u_C1R", lumiMorphTophatBorder_8u_C1R,
     6, true},
    {"black-hat", "Black-hat: the dark details", "lumiMorphBlackhatBorder_8u_C1R",
     lumiMorphBlackhatBorder_8u_C1R, 6, true},
};

/// What the operator leaves; differences are stretched to the whole range of tones.
DrawnPanel compound(const Subject& subject, const Shown& shown) {
    const Picture& grey = subject.grey;
    const int radius = shown.radiusIn(grey);
    const LumSize maskSize{2 * radius + 1, 2 * radius + 1};
    const std::vector<Lum8u> mask = disc(radius);
    Lum32s specSize = 0;
    Lum32s bufferSize = 0;
    expectOk(lumiMorphAdvGetSize_8u_C1R(grey.size(), maskSize, &specSize, &bufferSize),
             "lumiMorphAdvGetSize_8u_C1R");
    WorkMemory object(specSize);
    WorkMemory buffer(bufferSize);
    auto* spec = object.as<LumMorphPairState>();
    expectOk(lumiMorphAdvInit_8u_C1R(grey.size(), mask.data(), maskSize, spec, buffer.bytes()),
             "lumiMorphAdvInit_8u_C1R");

    DrawnPanel drawn{Picture(grey.width, grey.height)};
    Picture& result = drawn.picture;
    drawn.time(shown.function,
               TOOLS_SHOWN(shown.member(grey.data(), grey.step(), result.data(), result.step(), result.size(),
                                        lumBorderReplicate, 0, spec, buffer.bytes())));
    if (shown.isDifference) result = scaled(result);
    return drawn;
}

} // namespace

std::vector<Panel> morphPanels(const Subject& subject) {
    std::vector<Panel> panels;
    for (const Shown& shown : operators) {
        const std::string side = std::to_string(2 * shown.radiusIn(subject.grey) + 1);
        panels.push_back({shown.file, shown.title, shown.function,
                          "disc of " + side + " x " + side + " cells, edge repeated" +
                              (shown.isDifference ? "; differences stretched" : ""),
                          [&subject, &shown] { return compound(subject, shown); }});
    }
    return panels;
}

} // namespace tools

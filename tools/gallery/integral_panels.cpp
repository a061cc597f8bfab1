// Panels of the integral images, upright and tilted, and of what is read from them.
#include <algorithm>
#include <cstdio>

#include "gallery/contours.h"
#include "gallery/panel.h"
#include "gallery/timing.h"
#include "lumcv.h"
#include "tones.h"

namespace tools {
namespace {

constexpr int window = 9;

std::string printed(const char* format, double value) {
    char text[80];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

/// An integral image of the grey picture, wider and taller than it by `extra`.
Plane<Lum32f> sumsOf(const Picture& grey, int extra, const char* name,
                     decltype(&lumiIntegral_8u32f_C1R) function, DrawnPanel& drawn) {
    Plane<Lum32f> sums(grey.width + extra, grey.height + extra);
    drawn.time(name,
               TOOLS_SHOWN(function(grey.data(), grey.step(), sums.data(), sums.step(), grey.size(), 0)));
    drawn.picture = withContours(sums);
    return sums;
}

DrawnPanel integral(const Subject& subject) {
    DrawnPanel drawn;
    const auto sums = sumsOf(subject.grey, 1, "lumiIntegral_8u32f_C1R", lumiIntegral_8u32f_C1R, drawn);
    drawn.numbers = {printed("sum of all pixels: %.2f million", sums.elements.back() / 1e6)};
    return drawn;
}

DrawnPanel tilted(const Subject& subject) {
    DrawnPanel drawn;
    sumsOf(subject.grey, 2, "lumiTiltedIntegral_8u32f_C1R", lumiTiltedIntegral_8u32f_C1R, drawn);
    return drawn;
}

int windowOf(const Subject& subject) { return std::min({window, subject.grey.width, subject.grey.height}); }

DrawnPanel localDeviation(const Subject& subject) {
    const Picture& grey = subject.grey;
    Plane<Lum32s> sums(grey.width + 1, grey.height + 1);
    Plane<Lum64f> squares(grey.width + 1, grey.height + 1);
    expectOk(lumiSqrIntegral_8u32s64f_C1R(grey.data(), grey.step(), sums.data(), sums.step(), squares.data(),
                                          squares.step(), grey.size(), 0, 0),
             "lumiSqrIntegral_8u32s64f_C1R");
    const int side = windowOf(subject);
    Plane<Lum32f> deviation(grey.width + 1 - side, grey.height + 1 - side);
    DrawnPanel drawn;
    drawn.time("lumiRectStdDev_32s32f_C1R",
               TOOLS_SHOWN(lumiRectStdDev_32s32f_C1R(sums.data(), sums.step(), squares.data(), squares.step(),
                                                     deviation.data(), deviation.step(), deviation.size(),
                                                     {0, 0, side, side})));
    drawn.numbers = {printed("largest deviation: %.1f", rangeOf(deviation).second)};
    drawn.picture = falseColours(scaled(deviation));
    return drawn;
}

} // namespace

std::vector<Panel> integralPanels(const Subject& subject) {
    const std::string side = std::to_string(windowOf(subject));
    const std::string lines = std::to_string(contourLevels) + " contour lines";
    return {
        {"integral", "Integral image", "lumiIntegral_8u32f_C1R", "sums above and to the left; " + lines,
         [&subject] { return integral(subject); }},
        {"tilted-integral", "Tilted integral image", "lumiTiltedIntegral_8u32f_C1R",
         "sums of the cone above; " + lines, [&subject] { return tilted(subject); }},
        {"local-deviation", "Local deviation", "lumiRectStdDev_32s32f_C1R",
         "of windows of " + side + " x " + side + " pixels, from integral images",
         [&subject] { return localDeviation(subject); }},
    };
}

} // namespace tools

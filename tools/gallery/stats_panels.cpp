// Panels of the statistics: an average that follows a moving picture, and what is known of a picture's values.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

#include "drawing.h"
#include "gallery/panel.h"
#include "gallery/timing.h"
#include "lumcv.h"
#include "tones.h"

namespace tools {
namespace {

constexpr int frames = 24;
constexpr int pixelsAFrame = 3;
constexpr float alpha = 0.12F;

/// One channel of a picture as a plane of its own.
Picture channelOf(const Picture& picture, int channel) {
    Picture plane(picture.width, picture.height);
    for (int y = 0; y < plane.height; ++y)
        for (int x = 0; x < plane.width; ++x) plane.at(x, y) = picture.at(x, y, channel);
    return plane;
}

/// The average of frames in which the picture moves to the right, a plane a channel.
DrawnPanel runningAverage(const Subject& subject) {
    const Picture& picture = subject.picture;
    DrawnPanel drawn{Picture(picture.width, picture.height, picture.channels)};
    drawn.milliseconds = std::numeric_limits<double>::infinity();
    drawn.code = "lumiAddWeighted_8u32f_C1IR(frame.data(), frame.step(), average.data(), average.step(), "
                 "average.size(), alpha)";
    for (int channel = 0; channel < picture.channels; ++channel) {
        const Picture plane = channelOf(picture, channel);
        Plane<Lum32f> average = converted<Lum32f>(plane);
        for (int frame = 1; frame <= frames; ++frame) {
            const Picture moved = shifted(plane, pixelsAFrame * frame, 0);
            LumStatus status = lumStatusOk;
            const double milliseconds = millisecondsOf([&] {
                status = lumiAddWeighted_8u32f_C1IR(moved.data(), moved.step(), average.data(),
                                                    average.step(), average.size(), alpha);
            });
            expectOk(status, "lumiAddWeighted_8u32f_C1IR");
            drawn.milliseconds = std::min(drawn.milliseconds, milliseconds);
        }
        const Picture tones = scaled(average, 0, 255);
        for (int y = 0; y < picture.height; ++y)
            for (int x = 0; x < picture.width; ++x) drawn.picture.at(x, y, channel) = tones.at(x, y);
    }
    return drawn;
}

std::string placed(const char* what, Lum32f value, LumPoint place) {
    char text[80];
    std::snprintf(text, sizeof text, "%s %.0f, at (%d, %d)", what, value, place.x, place.y);
    return text;
}

/// A marked place: what is said of it, and where.
struct Mark {
    LumPoint place;
    std::string text;
    Colour colour;
};

/// Crosses at two places, each with a label beside it where there is room for it. The second label goes under the first
/// where it would cover it, or above it at the bottom of the picture.
void markBoth(Picture& picture, const Mark& first, const Mark& second) {
    const int scale = labelScale(picture);
    const int away = 8 * scale;
    const auto boxOf = [&](const Mark& mark) {
        const LumSize size = textSize(mark.text, scale);
        const LumPoint place = mark.place;
        const bool roomAtRight = place.x + size.width + 2 * away < picture.width;
        const bool roomBelow = place.y + size.height + 2 * away < picture.height;
        return LumRect{roomAtRight ? place.x + away : std::max(place.x - size.width - away, away / 2),
                       roomBelow ? place.y + away / 2 : place.y - size.height - away, size.width,
                       size.height};
    };
    LumRect box = boxOf(first);
    LumRect other = boxOf(second);
    const int lines = box.height + away;
    if (std::abs(other.y - box.y) < lines && other.x < box.x + box.width + away &&
        box.x < other.x + other.width + away)
        other.y = std::max(box.y, 0) + lines + other.height < picture.height ? std::max(box.y, 0) + lines
                                                                             : box.y - lines;
    for (LumRect* label : {&box, &other}) label->y = std::max(label->y, 0);
    drawLabel(picture, box.x, box.y, first.text, first.colour, scale);
    drawLabel(picture, other.x, other.y, second.text, second.colour, scale);
    for (const Mark& mark : {first, second}) drawCross(picture, mark.place, mark.colour, 6 * scale, scale);
}

std::string moments(Lum64f mean, Lum64f deviation) {
    char text[80];
    std::snprintf(text, sizeof text, "mean %.2f, standard deviation %.2f", mean, deviation);
    return text;
}

/// Mean, deviation and norms of a picture's values.
std::vector<std::string> totals(const Picture& grey) {
    Lum64f mean = 0;
    Lum64f deviation = 0;
    expectOk(lumiMean_StdDev_8u_C1R(grey.data(), grey.step(), grey.size(), &mean, &deviation),
             "lumiMean_StdDev_8u_C1R");
    const Picture everywhere(grey.width, grey.height, 1, 255);
    Lum64f largest = 0;
    Lum64f sum = 0;
    Lum64f length = 0;
    const auto norm = [&](auto function, const char* name, Lum64f& value) {
        expectOk(
            function(grey.data(), grey.step(), everywhere.data(), everywhere.step(), grey.size(), &value),
            name);
    };
    norm(lumiNorm_Inf_8u_C1MR, "lumiNorm_Inf_8u_C1MR", largest);
    norm(lumiNorm_L1_8u_C1MR, "lumiNorm_L1_8u_C1MR", sum);
    norm(lumiNorm_L2_8u_C1MR, "lumiNorm_L2_8u_C1MR", length);
    char norms[120];
    std::snprintf(norms, sizeof norms, "norms: Inf %.0f, L1 %.0f, L2 %.1f", largest, sum, length);
    return {moments(mean, deviation), norms};
}

DrawnPanel extremes(const Subject& subject) {
    const Picture& grey = subject.grey;
    Lum32f least = 0;
    Lum32f largest = 0;
    LumPoint leastPlace{};
    LumPoint largestPlace{};
    DrawnPanel drawn{colourOf(grey)};
    drawn.time("lumiMinMaxIndx_8u_C1R",
               TOOLS_SHOWN(lumiMinMaxIndx_8u_C1R(grey.data(), grey.step(), grey.size(), &least, &largest,
                                                 &leastPlace, &largestPlace)));
    const auto whole = [](Lum32f value) { return std::to_string(static_cast<int>(value)); };
    const Mark ofLeast{leastPlace, "least " + whole(least), cyan};
    const Mark ofLargest{largestPlace, "largest " + whole(largest), orange};
    markBoth(drawn.picture, ofLeast, ofLargest);
    drawn.numbers = {placed("least", least, leastPlace), placed("largest", largest, largestPlace)};
    for (std::string& line : totals(grey)) drawn.numbers.push_back(std::move(line));
    return drawn;
}

/// An ellipse in the middle, 255 inside and 0 outside.
Picture ellipse(LumSize size) {
    Picture mask(size.width, size.height);
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) {
            const double across = (x + 0.5) / size.width * 2 - 1;
            const double down = (y + 0.5) / size.height * 2 - 1;
            if (across * across + down * down < 0.7) mask.at(x, y) = 255;
        }
    return mask;
}

/// What is known of the pixels that a mask selects; the others are shown dark.
DrawnPanel insideMask(const Subject& subject) {
    const Picture& grey = subject.grey;
    const Picture moved = shifted(grey, pixelsAFrame, 0);
    const Picture mask = ellipse(grey.size());
    Lum64f mean = 0;
    Lum64f deviation = 0;
    DrawnPanel drawn{subject.colour};
    drawn.time("lumiMean_StdDev_8u_C1MR",
               TOOLS_SHOWN(lumiMean_StdDev_8u_C1MR(grey.data(), grey.step(), mask.data(), mask.step(),
                                                   grey.size(), &mean, &deviation)));
    Lum64f relative = 0;
    expectOk(lumiNormRel_L2_8u_C1MR(moved.data(), moved.step(), grey.data(), grey.step(), mask.data(),
                                    mask.step(), grey.size(), &relative),
             "lumiNormRel_L2_8u_C1MR");
    for (int y = 0; y < grey.height; ++y)
        for (int x = 0; x < grey.width; ++x)
            for (int c = 0; c < 3 && mask.at(x, y) == 0; ++c)
                drawn.picture.at(x, y, c) = static_cast<Lum8u>(drawn.picture.at(x, y, c) / 5);
    char change[120];
    std::snprintf(change, sizeof change, "moved by %d pixels it differs by %.1f %% (L2)", pixelsAFrame,
                  relative * 100);
    drawn.numbers = {moments(mean, deviation)};
    // A black picture has nothing to be compared with.
    if (std::isfinite(relative)) drawn.numbers.emplace_back(change);
    return drawn;
}

} // namespace

std::vector<Panel> statsPanels(const Subject& subject) {
    char weight[80];
    std::snprintf(weight, sizeof weight, "%d frames, %d pixels apart, alpha %.2f; timed by the frame", frames,
                  pixelsAFrame, alpha);
    return {
        {"running-average", "An average that follows", "lumiAddWeighted_8u32f_C1IR", weight,
         [&subject] { return runningAverage(subject); }},
        {"extremes", "Darkest and brightest", "lumiMinMaxIndx_8u_C1R",
         "the picture in grey; first places in scan order", [&subject] { return extremes(subject); }},
        {"inside-a-mask", "Inside a mask", "lumiMean_StdDev_8u_C1MR", "an ellipse of the picture in grey",
         [&subject] { return insideMask(subject); }},
    };
}

} // namespace tools

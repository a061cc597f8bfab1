#include "drawing.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stb/stb_easy_font.h>

#include "tones.h"

namespace tools {
namespace {

std::string printable(const std::string& text) {
    std::string result = text;
    for (char& c : result)
        if (c != '\n' && (c < ' ' || c > '~')) c = '?';
    return result;
}

/// A box of the font, as four corners of which the first is the top left and the third the bottom right.
struct Corner {
    float x, y, z;
    unsigned char colour[4];
};
constexpr std::size_t bytesOfCharacter = 64 * 12;

constexpr Colour paper{18, 20, 26};
constexpr Colour grid{52, 56, 68};
constexpr Colour faint{130, 136, 150};

std::string numberText(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.4g", value);
    return text;
}

} // namespace

void drawPixel(Picture& picture, int x, int y, Colour colour) {
    if (x < 0 || y < 0 || x >= picture.width || y >= picture.height) return;
    if (picture.channels == 1) {
        picture.at(x, y) =
            static_cast<Lum8u>((299 * colour.red + 587 * colour.green + 114 * colour.blue) / 1000);
        return;
    }
    picture.at(x, y, 0) = colour.red;
    picture.at(x, y, 1) = colour.green;
    picture.at(x, y, 2) = colour.blue;
}

void fillBox(Picture& picture, LumRect box, Colour colour) {
    const int right = std::min(picture.width, box.x + box.width);
    const int bottom = std::min(picture.height, box.y + box.height);
    for (int y = std::max(0, box.y); y < bottom; ++y)
        for (int x = std::max(0, box.x); x < right; ++x) drawPixel(picture, x, y, colour);
}

void drawBox(Picture& picture, LumRect box, Colour colour, int thickness) {
    const int t = std::min({thickness, box.width, box.height});
    fillBox(picture, {box.x, box.y, box.width, t}, colour);
    fillBox(picture, {box.x, box.y + box.height - t, box.width, t}, colour);
    fillBox(picture, {box.x, box.y, t, box.height}, colour);
    fillBox(picture, {box.x + box.width - t, box.y, t, box.height}, colour);
}

void drawLine(Picture& picture, LumPoint from, LumPoint to, Colour colour, int thickness) {
    const int dx = to.x - from.x;
    const int dy = to.y - from.y;
    const int steps = std::max(std::abs(dx), std::abs(dy));
    for (int i = 0; i <= steps; ++i) {
        const double part = steps == 0 ? 0.0 : static_cast<double>(i) / steps;
        const int x = static_cast<int>(std::lround(from.x + part * dx)) - (thickness - 1) / 2;
        const int y = static_cast<int>(std::lround(from.y + part * dy)) - (thickness - 1) / 2;
        fillBox(picture, {x, y, thickness, thickness}, colour);
    }
}

void drawCross(Picture& picture, LumPoint centre, Colour colour, int reach, int thickness) {
    constexpr int gap = 3;
    const int half = (thickness - 1) / 2;
    fillBox(picture, {centre.x - reach, centre.y - half, reach - gap, thickness}, colour);
    fillBox(picture, {centre.x + gap + 1, centre.y - half, reach - gap, thickness}, colour);
    fillBox(picture, {centre.x - half, centre.y - reach, thickness, reach - gap}, colour);
    fillBox(picture, {centre.x - half, centre.y + gap + 1, thickness, reach - gap}, colour);
}

LumSize textSize(const std::string& text, int scale) {
    std::string plain = printable(text);
    return {stb_easy_font_width(plain.data()) * scale, stb_easy_font_height(plain.data()) * scale};
}

void drawText(Picture& picture, int x, int y, const std::string& text, Colour colour, int scale) {
    std::string plain = printable(text);
    std::vector<Corner> corners((plain.size() + 1) * bytesOfCharacter / sizeof(Corner));
    const int boxes = stb_easy_font_print(0, 0, plain.data(), nullptr, corners.data(),
                                          static_cast<int>(corners.size() * sizeof(Corner)));
    for (int i = 0; i < boxes; ++i) {
        const Corner& first = corners[4 * i];
        const Corner& last = corners[4 * i + 2];
        fillBox(picture,
                {x + static_cast<int>(first.x) * scale, y + static_cast<int>(first.y) * scale,
                 static_cast<int>(last.x - first.x) * scale, static_cast<int>(last.y - first.y) * scale},
                colour);
    }
}

void drawLabel(Picture& picture, int x, int y, const std::string& text, Colour colour, int scale) {
    const LumSize size = textSize(text, scale);
    const int margin = 3 * scale;
    fillBox(picture, {x, y, size.width + 2 * margin, size.height - 2 * scale + 2 * margin}, paper);
    drawText(picture, x + margin, y + margin, text, colour, scale);
}

int labelScale(const Picture& picture) { return std::clamp(picture.width / 240, 1, 8); }

void drawNotice(Picture& picture, const std::string& text) {
    const int scale = labelScale(picture);
    const LumSize size = textSize(text, scale);
    drawLabel(picture, std::max((picture.width - size.width) / 2, 0), picture.height / 2, text, white, scale);
}

Picture stacked(const Picture& above, const Picture& below) {
    Picture result(std::max(above.width, below.width), above.height + below.height, 3);
    fillBox(result, {0, 0, result.width, result.height}, paper);
    int top = 0;
    for (const Picture* part : {&above, &below}) {
        const Picture colour = colourOf(*part);
        for (int y = 0; y < colour.height; ++y)
            std::copy_n(colour.row(y), colour.width * 3, result.row(top + y));
        top += part->height;
    }
    return result;
}

Picture plot(LumSize size, const std::vector<Curve>& curves, double least, double largest) {
    constexpr int divisions = 5;
    Picture picture(size.width, size.height, 3);
    const int scale = labelScale(picture);
    const int margin = 14 * scale;
    fillBox(picture, {0, 0, size.width, size.height}, paper);
    const double range = largest > least ? largest - least : 1.0;
    const auto levelAt = [&](int i) { return least + range * i / divisions; };
    int left = margin;
    for (int i = 0; i <= divisions; ++i)
        left = std::max(left, textSize(numberText(levelAt(i)), scale).width + 8 * scale);
    const int bottom = size.height - 1 - margin;
    const int usedHeight = std::max(1, size.height - 2 * margin);
    const int usedWidth = std::max(1, size.width - left - margin);
    const auto place = [&](double value) {
        const double part = std::isfinite(value) ? std::clamp((value - least) / range, 0.0, 1.0) : 0.0;
        return bottom - static_cast<int>(std::lround(part * (usedHeight - 1)));
    };
    for (int i = 0; i <= divisions; ++i) {
        const std::string text = numberText(levelAt(i));
        const int y = place(levelAt(i));
        fillBox(picture, {left, y, usedWidth, 1}, grid);
        drawText(picture, left - textSize(text, scale).width - 4 * scale, y - 4 * scale, text, faint, scale);
    }
    int legend = left;
    for (const Curve& curve : curves) {
        const auto count = static_cast<int>(curve.values.size());
        LumPoint before{};
        for (int i = 0; i < count; ++i) {
            const double part = count > 1 ? static_cast<double>(i) / (count - 1) : 0.0;
            const LumPoint point{left + static_cast<int>(std::lround(part * (usedWidth - 1))),
                                 place(curve.values[i])};
            drawLine(picture, i == 0 ? point : before, point, curve.colour, 2);
            before = point;
        }
        drawText(picture, legend, 2 * scale, curve.name, curve.colour, scale);
        legend += textSize(curve.name, scale).width + 2 * margin;
    }
    return picture;
}

} // namespace tools

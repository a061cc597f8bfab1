// Marks on pictures: boxes, crosses, lines, text and plots. Whatever lies outside the picture is left out.
#pragma once

#include <string>
#include <vector>

#include "picture.h"

namespace tools {

struct Colour {
    Lum8u red, green, blue;
};

inline constexpr Colour white{255, 255, 255};
inline constexpr Colour black{0, 0, 0};
inline constexpr Colour orange{255, 150, 40};
inline constexpr Colour cyan{60, 220, 235};
inline constexpr Colour lime{150, 235, 70};
inline constexpr Colour magenta{240, 90, 190};

/// One pixel; a grey picture takes the colour's brightness.
void drawPixel(Picture& picture, int x, int y, Colour colour);
void fillBox(Picture& picture, LumRect box, Colour colour);
/// The outline, `thickness` pixels wide, inside the box.
void drawBox(Picture& picture, LumRect box, Colour colour, int thickness = 2);
void drawLine(Picture& picture, LumPoint from, LumPoint to, Colour colour, int thickness = 1);
/// Two strokes that leave the marked pixel itself free.
void drawCross(Picture& picture, LumPoint centre, Colour colour, int reach = 9, int thickness = 2);

/// Size in pixels of a text of one or more lines.
LumSize textSize(const std::string& text, int scale = 2);
/// The text's top left corner lies at (x, y). Characters beyond ASCII show as question marks.
void drawText(Picture& picture, int x, int y, const std::string& text, Colour colour, int scale = 2);
/// The text on a dark plate that keeps it legible on any ground.
void drawLabel(Picture& picture, int x, int y, const std::string& text, Colour colour = white, int scale = 2);

/// The scale of text that can still be read where the picture is shown in a third of its width.
int labelScale(const Picture& picture);

/// A label in the middle: that there is nothing to be seen.
void drawNotice(Picture& picture, const std::string& text);

/// One picture above the other, in colour, on the plot's ground where one is narrower.
Picture stacked(const Picture& above, const Picture& below);

/// A curve of a plot: values at equal distances along x.
struct Curve {
    std::vector<double> values;
    Colour colour;
    std::string name;
};

/// A picture of curves over one scale from `least` to `largest`, with a grid and the names as a legend.
Picture plot(LumSize size, const std::vector<Curve>& curves, double least, double largest);

} // namespace tools

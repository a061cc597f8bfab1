// Panels of the frame: a picture, the same moved by a few pixels, and their difference.
#include "gallery/panel.h"
#include "gallery/timing.h"
#include "lumcv.h"
#include "picture_file.h"
#include "tones.h"

namespace tools {
namespace {

constexpr int dx = 5;
constexpr int dy = 3;

DrawnPanel difference(const Subject& subject) {
    const Picture& first = subject.picture;
    const Picture second = shifted(first, dx, dy);
    DrawnPanel drawn{Picture(first.width, first.height, first.channels)};
    Picture& result = drawn.picture;
    const auto call = first.channels == 1 ? lumiAbsDiff_8u_C1R : lumiAbsDiff_8u_C3R;
    drawn.time("lumiAbsDiff_8u", TOOLS_SHOWN(call(first.data(), first.step(), second.data(), second.step(),
                                                  result.data(), result.step(), result.size())));
    return drawn;
}

} // namespace

std::vector<Panel> framePanels(const Subject& subject) {
    const std::string move = std::to_string(dx) + " pixels right, " + std::to_string(dy) + " down";
    const char* function = subject.picture.channels == 1 ? "lumiAbsDiff_8u_C1R" : "lumiAbsDiff_8u_C3R";
    return {
        {"picture", "The picture", "", describe(subject.picture),
         [&subject] { return DrawnPanel{subject.picture}; }},
        {"picture-moved", "The picture moved", "", move,
         [&subject] { return DrawnPanel{shifted(subject.picture, dx, dy)}; }},
        {"absolute-difference", "What the move changes", function, "the picture, and the picture moved",
         [&subject] { return difference(subject); }},
    };
}

} // namespace tools

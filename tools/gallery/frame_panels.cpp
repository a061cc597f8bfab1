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

Exhibit difference(const Subject& subject) {
    const Picture& first = subject.picture;
    const Picture second = shifted(first, dx, dy);
    Exhibit exhibit{Picture(first.width, first.height, first.channels)};
    Picture& result = exhibit.picture;
    const auto call = first.channels == 1 ? lumiAbsDiff_8u_C1R : lumiAbsDiff_8u_C3R;
    exhibit.milliseconds = fastestTurn("lumiAbsDiff_8u", [&] {
        return call(first.data(), first.step(), second.data(), second.step(), result.data(), result.step(),
                    result.size());
    });
    return exhibit;
}

} // namespace

std::vector<Panel> framePanels(const Subject& subject) {
    const std::string move = std::to_string(dx) + " pixels right, " + std::to_string(dy) + " down";
    const char* function = subject.picture.channels == 1 ? "lumiAbsDiff_8u_C1R" : "lumiAbsDiff_8u_C3R";
    return {
        {"picture", "The picture", "", describe(subject.picture),
         [&subject] { return Exhibit{subject.picture}; }},
        {"picture-moved", "The picture moved", "", move,
         [&subject] { return Exhibit{shifted(subject.picture, dx, dy)}; }},
        {"absolute-difference", "What the move changes", function, "the picture, and the picture moved",
         [&subject] { return difference(subject); }},
    };
}

} // namespace tools

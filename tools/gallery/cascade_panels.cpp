// Panels of the Haar cascades: what the program's own cascade finds.
#include <algorithm>
#include <cstdio>

#include "cascade.h"
#include "detector.h"
#include "drawing.h"
#include "gallery/panel.h"
#include "gallery/timing.h"

namespace tools {
namespace {

Exhibit discs(const Subject& subject) {
    std::vector<Detection> detections;
    const double milliseconds =
        millisecondsOf([&] { detections = detect(subject.grey, brightDiscCascade()); });
    Exhibit exhibit{subject.colour};
    for (const auto& [box, hits] : detections) {
        drawBox(exhibit.picture, box, lime, std::max(1, box.width / 24));
        drawLabel(exhibit.picture, box.x, box.y + box.height + 2, std::to_string(hits), white, 1);
    }
    char searched[64];
    std::snprintf(searched, sizeof searched, "all sizes searched in %.0f ms", milliseconds);
    exhibit.numbers = {"discs found: " + std::to_string(detections.size()), searched};
    return exhibit;
}

} // namespace

std::vector<Panel> cascadePanels(const Subject& subject) {
    return {{"bright-discs", "Bright discs, with the windows that agree", "",
             "six stages of bright-disc.json, on integral images and deviations of every size",
             [&subject] { return discs(subject); }}};
}

} // namespace tools

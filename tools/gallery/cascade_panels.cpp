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

DrawnPanel discs(const Subject& subject) {
    std::vector<Detection> detections;
    const double milliseconds =
        millisecondsOf([&] { detections = detect(subject.grey, brightDiscCascade()); });
    DrawnPanel drawn{subject.colour};
    for (const auto& [box, hits] : detections) {
        drawBox(drawn.picture, box, lime, std::max(1, box.width / 24));
        drawLabel(drawn.picture, box.x, box.y + box.height + 2, std::to_string(hits), white,
                  std::max(1, labelScale(drawn.picture) - 1));
    }
    if (detections.empty()) drawNotice(drawn.picture, "no disc found");
    char searched[64];
    std::snprintf(searched, sizeof searched, "all sizes searched in %.0f ms", milliseconds);
    drawn.numbers = {"discs found: " + std::to_string(detections.size()), searched};
    return drawn;
}

} // namespace

std::vector<Panel> cascadePanels(const Subject& subject) {
    return {{"bright-discs", "Bright discs, with the windows that agree", "",
             "six stages of bright-disc.json, on integral images and deviations of every size",
             [&subject] { return discs(subject); }}};
}

} // namespace tools

#include <cstdio>

#include "commands.h"
#include "failure.h"
#include "files/output_file.h"
#include "picture_file.h"
#include "tones.h"
#include "tracker.h"

namespace tools {

void track(const TrackOptions& options) {
    const Picture first = readPicture(options.first);
    const Picture second = readPicture(options.second);
    if (first.width != second.width || first.height != second.height)
        throw Failure("the two pictures must have one size: " + options.first + " is " + describe(first) +
                      ", " + options.second + " is " + describe(second));
    expectWritable(options.output, 3);

    const Picture before = greyOf(first);
    const std::vector<LumPoint32f> points = texturedPoints(before, 16);
    const Tracking tracking = followPoints(before, greyOf(second), points);
    Picture marked = colourOf(second);
    drawTracks(marked, tracking.tracks);
    writePicture(options.output, marked);
    std::FILE* const lines = streamOfLines(options.output);
    for (const auto& [from, to, error] : tracking.tracks)
        std::fprintf(lines, "%.2f %.2f %.2f %.2f %.2f\n", static_cast<double>(from.x),
                     static_cast<double>(from.y), static_cast<double>(to.x), static_cast<double>(to.y),
                     static_cast<double>(error));
}

} // namespace tools

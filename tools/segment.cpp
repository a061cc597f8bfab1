#include <cstdio>

#include "commands.h"
#include "failure.h"
#include "files/output_file.h"
#include "picture_file.h"
#include "segmenter.h"
#include "tones.h"

namespace tools {

void segment(const SegmentOptions& options) {
    const Picture picture = colourOf(readPicture(options.picture));
    expectWritable(options.output, 3);
    const int most = mostSeeds(picture.size());
    if (options.seeds < 1 || options.seeds > most)
        throw Failure("--seeds must be 1 to " + std::to_string(most) + " for this picture");

    const Picture relief = gradientOf(picture);
    Plane<Lum16u> labels = watersheds(relief, spreadSeeds(relief, options.seeds));
    std::vector<long> pixels(static_cast<std::size_t>(options.seeds));
    for (const Lum16u label : labels.elements) ++pixels[label - 1U];
    drawBoundaries(labels);
    writePicture(options.output, paintedRegions(picture, labels, options.seeds));
    std::FILE* const lines = streamOfLines(options.output);
    for (const long count : pixels) std::fprintf(lines, "%ld\n", count);
}

} // namespace tools

#include <algorithm>
#include <cstdio>

#include "cascade.h"
#include "commands.h"
#include "detector.h"
#include "drawing.h"
#include "files/output_file.h"
#include "picture_file.h"
#include "tones.h"

namespace tools {

void detect(const DetectOptions& options) {
    const Cascade cascade = options.cascade ? readCascade(*options.cascade) : brightDiscCascade();
    const Picture picture = readPicture(options.picture);
    expectWritable(options.output, 3);

    Picture marked = colourOf(picture);
    const std::vector<Detection> detections = detect(greyOf(picture), cascade);
    for (const Detection& detection : detections)
        drawBox(marked, detection.box, lime, std::max(1, detection.box.width / 30));
    writePicture(options.output, marked);
    for (const auto& [box, hits] : detections)
        std::fprintf(streamOfLines(options.output), "%d %d %d %d\n", box.x, box.y, box.width, box.height);
    std::fprintf(stderr, "%zu found\n", detections.size());
}

} // namespace tools

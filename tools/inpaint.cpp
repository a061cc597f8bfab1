#include <algorithm>

#include "commands.h"
#include "failure.h"
#include "lumcv.h"
#include "picture_file.h"
#include "repair.h"
#include "tones.h"

namespace tools {

void inpaint(const InpaintOptions& options) {
    // Between black and white: files that compress with losses have neither.
    constexpr Lum8u brightest = 127;
    constexpr float largestRadius = 100;
    // NaN is refused, too.
    if (!(options.radius >= 1 && options.radius <= largestRadius))
        throw Failure("--radius must lie in 1 to 100");
    const Picture picture = readPicture(options.picture);
    Picture mask = greyOf(readPicture(options.mask));
    if (mask.width != picture.width || mask.height != picture.height)
        throw Failure("the mask must have the picture's size: " + options.picture + " is " +
                      describe(picture) + ", " + options.mask + " is " + describe(mask));
    expectWritable(options.output, picture.channels);
    for (Lum8u& element : mask.elements) element = element > brightest ? 255 : 0;

    const int method = options.method == "isophote" ? lumInpaintIsophote : lumInpaintFront;
    Inpainting inpainting(mask, picture.channels, options.radius, method);
    writePicture(options.output, inpainting.repaired(picture));
}

} // namespace tools

#include "commands.h"
#include "failure.h"
#include "lumcv.h"
#include "picture_file.h"

namespace tools {

void absDiff(const AbsDiffOptions& options) {
    const Picture first = readPicture(options.first);
    const Picture second = readPicture(options.second);
    if (first.width != second.width || first.height != second.height || first.channels != second.channels)
        throw Failure("the two pictures must have one size and kind: " + options.first + " is " +
                      describe(first) + ", " + options.second + " is " + describe(second));
    expectWritable(options.output, first.channels);

    Picture difference(first.width, first.height, first.channels);
    const auto call = first.channels == 1 ? lumiAbsDiff_8u_C1R : lumiAbsDiff_8u_C3R;
    expectOk(call(first.data(), first.step(), second.data(), second.step(), difference.data(),
                  difference.step(), difference.size()),
             "lumiAbsDiff_8u");
    writePicture(options.output, difference);
}

} // namespace tools

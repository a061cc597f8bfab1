#include "picture_file.h"

#include <unistd.h>

#include "codecs/codec.h"
#include "failure.h"
#include "files/input_file.h"
#include "files/output_file.h"

namespace tools {
namespace {

constexpr std::size_t largestPicture = std::size_t{1} << 30;

Format expectFormat(const std::string& path) {
    if (path == "-") return Format::pnm;
    const auto format = formatOf(path);
    if (!format) throw Failure("cannot be written: the name must end in " + writableEndings());
    return *format;
}

} // namespace

Picture readPicture(const std::string& path) {
    return named(nameOfInput(path),
                 [&] { return decoded(readFile(path, largestPicture, expectReasonableBeginning)); });
}

void expectWritable(const std::string& path, int channels) {
    named(nameOfOutput(path), [&] {
        expectEncodable(expectFormat(path), channels);
        if (path != "-") return expectReplaceable(path);
        if (isatty(STDOUT_FILENO) != 0) throw Failure("is a terminal, where a picture cannot be seen");
    });
}

void writePicture(const std::string& path, const Picture& picture) {
    expectWritable(path, picture.channels);
    named(nameOfOutput(path), [&] { writeFile(path, encoded(picture, expectFormat(path))); });
}

std::string writableEndings(bool ofColour) {
    std::string endings = hasPngAndJpeg() ? ".png, .jpg, " : "";
    endings += ofColour ? ".ppm" : ".pgm, .ppm";
    return endings + ", .pnm or .pam";
}

std::string describe(const Picture& picture) {
    return std::to_string(picture.width) + " x " + std::to_string(picture.height) +
           (picture.channels == 3 ? " colour" : " grey");
}

} // namespace tools

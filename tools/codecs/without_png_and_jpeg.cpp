// What a build without libpng and libjpeg-turbo says of their formats.
#include "codecs/jpeg.h"
#include "codecs/png.h"

namespace tools {
namespace {

[[noreturn]] void refuseToRead(const char* format) {
    throw Failure(std::string("is a ") + format + " picture, and this build reads PNM and PAM only");
}

[[noreturn]] void refuseToWrite() { throw Failure("cannot be written: this build writes PNM and PAM only"); }

} // namespace

PictureHeader pngHeader(std::string_view) { refuseToRead("PNG"); }
Picture readPng(std::string_view) { refuseToRead("PNG"); }
std::string pngBytes(const Picture&) { refuseToWrite(); }

std::optional<PictureHeader> jpegHeader(std::string_view) { refuseToRead("JPEG"); }
Picture readJpeg(std::string_view) { refuseToRead("JPEG"); }
std::string jpegBytes(const Picture&) { refuseToWrite(); }

} // namespace tools

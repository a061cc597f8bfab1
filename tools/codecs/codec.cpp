#include "codecs/codec.h"

#include <filesystem>

#include "codecs/header.h"
#include "codecs/jpeg.h"
#include "codecs/png.h"
#include "codecs/pnm.h"
#include "tones.h"

namespace tools {
namespace {

enum class Kind { png, jpeg, pnm };

/// What the first bytes say; a Failure when they are those of no picture that this build reads.
Kind kindOf(std::string_view bytes) {
    if (looksLikePnm(bytes)) return Kind::pnm;
    if (looksLikePng(bytes)) return Kind::png;
    if (looksLikeJpeg(bytes)) return Kind::jpeg;
    throw Failure("is not a " + namesOfFormats() + " picture");
}

} // namespace

bool hasPngAndJpeg() {
#ifdef LUMCV_PNG_AND_JPEG
    return true;
#else
    return false;
#endif
}

std::string namesOfFormats() { return hasPngAndJpeg() ? "PNG, JPEG, PNM or PAM" : "PNM or PAM"; }

void expectReasonableBeginning(std::string_view beginning) {
    try {
        switch (kindOf(beginning)) {
        case Kind::pnm:
            return expectReasonable(pnmHeader(beginning));
        case Kind::png:
            return expectReasonable(pngHeader(beginning));
        case Kind::jpeg:
            if (const auto header = jpegHeader(beginning)) expectReasonable(*header);
        }
    } catch (const CutShort&) {
        // The rest may tell.
    }
}

Picture decoded(std::string_view bytes) {
    switch (kindOf(bytes)) {
    case Kind::png:
        return readPng(bytes);
    case Kind::jpeg:
        return readJpeg(bytes);
    default:
        return readPnm(bytes);
    }
}

std::string encoded(const Picture& picture, Format format) {
    expectEncodable(format, picture.channels);
    switch (format) {
    case Format::png:
        return pngBytes(picture);
    case Format::jpeg:
        return jpegBytes(picture);
    case Format::ppm:
        return pnmBytes(colourOf(picture));
    case Format::pam:
        return pamBytes(picture);
    default:
        return pnmBytes(picture);
    }
}

std::optional<Format> formatOf(const std::string& path) {
    std::string ending = std::filesystem::path(path).extension().string();
    for (char& c : ending)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    if (ending == ".png") return Format::png;
    if (ending == ".jpg" || ending == ".jpeg") return Format::jpeg;
    if (ending == ".pgm") return Format::pgm;
    if (ending == ".ppm") return Format::ppm;
    if (ending == ".pnm") return Format::pnm;
    if (ending == ".pam") return Format::pam;
    return std::nullopt;
}

void expectEncodable(Format format, int channels) {
    if (format == Format::pgm && channels != 1)
        throw Failure("cannot be written: a PGM file holds no colour, a PPM file does");
    if ((format == Format::png || format == Format::jpeg) && !hasPngAndJpeg())
        throw Failure("cannot be written: this build writes PNM and PAM only");
}

} // namespace tools

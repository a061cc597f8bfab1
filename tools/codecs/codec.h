// Pictures as the bytes of files: PNG, JPEG, PNM (PBM, PGM, PPM) and PAM, 8 bits a channel for the program whatever
// the bytes hold.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "picture.h"

namespace tools {

enum class Format { png, jpeg, pgm, ppm, pnm, pam };

/// Whether this build reads and writes PNG and JPEG, which take libraries that not every machine has for every build.
bool hasPngAndJpeg();

/// "PNG, JPEG, PNM or PAM", of what this build reads.
std::string namesOfFormats();

/// A Failure when the beginning of a file is that of no picture, or of one that is too large. What the beginning does
/// not tell yet is passed over.
void expectReasonableBeginning(std::string_view beginning);

/// A picture of one channel (grey) or three; an alpha channel is dropped. Bytes that are no picture, are cut short or
/// damaged, cannot fill the size that they claim, or hold no pixel or too many are a Failure; of the last three
/// nothing is decoded.
Picture decoded(std::string_view bytes);

/// A PGM file holds no colour, which is a Failure; in a PPM file grey becomes colour.
std::string encoded(const Picture& picture, Format format);

/// What the ending of a file's name tells.
std::optional<Format> formatOf(const std::string& path);

/// A Failure when this build cannot write such a picture.
void expectEncodable(Format format, int channels);

} // namespace tools

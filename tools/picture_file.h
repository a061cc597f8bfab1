// Pictures in files: PNG, JPEG, PNM and PAM. The path "-" is standard input, and standard output.
#pragma once

#include <string>

#include "picture.h"

namespace tools {

/// A picture of one channel (grey) or three; an alpha channel is dropped. Files that are not pictures, are cut
/// short, or hold no pixel or too many are a Failure.
Picture readPicture(const std::string& path);

/// Writes the picture in the format that the name's ending tells; to standard output as PGM or PPM.
void writePicture(const std::string& path, const Picture& picture);

/// Whether writePicture() could write such a picture to a file of this name; a Failure when not. Asked before
/// long work, so that it is not done in vain.
void expectWritable(const std::string& path, int channels);

/// The endings that writePicture() knows in this build, for messages; with all of them, or with those that hold
/// colour only.
std::string writableEndings(bool ofColour = false);

/// "640 x 427 colour", for messages.
std::string describe(const Picture& picture);

} // namespace tools

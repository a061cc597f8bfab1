// Pictures in files: PNG, JPEG, PGM and PPM, 8 bits a channel for the program whatever the file holds.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "picture.h"

namespace tools {

/// The most that is read: pixels of a picture, and pixels along a side.
inline constexpr std::int64_t largestPixels = std::int64_t{1} << 28;
inline constexpr int largestSide = 65535;

/// A picture of one channel (grey) or three; an alpha channel is dropped. Files that are not pictures, are cut
/// short, or hold no pixel or too many are a Failure.
Picture readPicture(const std::string& path);

/// Writes the picture in the format that the name's ending tells.
void writePicture(const std::string& path, const Picture& picture);

/// Whether writePicture() could write such a picture to a file of this name; a Failure when not. Asked before
/// long work, so that it is not done in vain.
void expectWritable(const std::string& path, int channels);

/// Puts a whole file in place, or leaves the place as it was: the bytes go to a temporary name beside it first.
void writeFile(const std::string& path, const std::string& bytes);

/// "640 x 427 colour", for messages.
std::string describe(const Picture& picture);

} // namespace tools

// What a picture's file says of itself before any pixel of it is read, and the limits that hold then.
#pragma once

#include <cstdint>
#include <string>

#include "failure.h"

namespace tools {

/// The most that is read: pixels of a picture, and pixels along a side.
inline constexpr std::int64_t largestPixels = std::int64_t{1} << 28;
inline constexpr int largestSide = 65535;

struct PictureHeader {
    std::int64_t width = 0;
    std::int64_t height = 0;
    /// Both as the file has them, which may be beyond any number here: "99999999999999999999 x 5".
    std::string size;

    PictureHeader(std::int64_t columns, std::int64_t rows)
        : width(columns), height(rows), size(std::to_string(columns) + " x " + std::to_string(rows)) {}
    PictureHeader(std::int64_t columns, std::int64_t rows, std::string text)
        : width(columns), height(rows), size(std::move(text)) {}
};

/// The file ends before what it must hold.
struct CutShort : Failure {
    CutShort() : Failure("is cut short") {}
};

inline void expectReasonable(const PictureHeader& header) {
    if (header.width < 1 || header.height < 1) throw Failure("holds no pixel");
    if (header.width > largestSide || header.height > largestSide ||
        header.width * header.height > largestPixels)
        throw Failure("is too large: " + header.size + " pixels");
}

} // namespace tools

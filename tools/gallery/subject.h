// What a gallery is made of.
#pragma once

#include <optional>
#include <string>

#include "lumcv.h"
#include "picture.h"

namespace tools {

/// The picture that all panels start from.
struct Subject {
    /// The file's name, or what the built-in scene is called.
    std::string name;
    /// The size of the file's picture, which was shrunk when it is another one.
    LumSize sizeOfFile{0, 0};
    /// Grey or colour, as it came.
    Picture picture;
    Picture grey;
    Picture colour;
};

/// The picture of a file, or the built-in scene; shrunk to 2 megapixels unless all of it is asked for.
Subject subjectOf(const std::optional<std::string>& path, bool fullSize);

/// The picture at a scale up to 1, with a pixel along each side at least; larger scales leave it as it is.
Picture shrunkBy(const Picture& picture, double scale);

} // namespace tools

#include "gallery/subject.h"

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "files/input_file.h"
#include "picture_file.h"
#include "scene.h"
#include "shrinking.h"
#include "tones.h"

namespace tools {

Picture shrunkBy(const Picture& picture, double scale) {
    if (scale >= 1) return picture;
    return shrunk(picture, {std::max(1, static_cast<int>(picture.width * scale)),
                            std::max(1, static_cast<int>(picture.height * scale))});
}

Subject subjectOf(const std::optional<std::string>& path, bool fullSize) {
    constexpr double mostPixels = 2e6;
    Subject subject;
    subject.name =
        path ? std::filesystem::path(nameOfInput(*path)).filename().string() : "the built-in scene";
    subject.picture = path ? readPicture(*path) : builtInScene();
    subject.sizeOfFile = subject.picture.size();
    if (!fullSize)
        subject.picture =
            shrunkBy(subject.picture, std::sqrt(mostPixels / subject.picture.width / subject.picture.height));
    subject.grey = greyOf(subject.picture);
    subject.colour = colourOf(subject.picture);
    return subject;
}

} // namespace tools

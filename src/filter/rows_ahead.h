// When a run asks for rows ahead of those it works on.
#pragma once

#include <algorithm>
#include <cstdint>

#include "frame/check.h"
#include "frame/image.h"

namespace lum {

/// Whether two pictures are so large that a run finds few of its rows in a cache, where asking for rows ahead pays; in
/// smaller ones it would only cost.
template <class T> bool areBeyondCaches(LumSize size, int channels) {
    constexpr std::int64_t cacheBytes = 0x400000;
    return 2 * rowBytes<T>(size.width, channels) * size.height > cacheBytes;
}

/// The row that is needed some rows after row y; at the end of the picture, one that is needed no more.
template <class T> const T* rowAhead(Image<T> image, int y, int rowsAhead, int height) {
    return image.row(std::min(y + rowsAhead, height - 1));
}

} // namespace lum

// The walk of a window of rows down an image.
#pragma once

namespace lum {

/// Calls make(y) for each of `height` rows, after load(j) for all rows j from y - before to y + after, which may lie outside
/// the image. Each row is loaded once, when the window reaches it, so a ring of before + 1 + after rows holds them all.
template <class Load, class Make> void slideWindow(int height, int before, int after, Load load, Make make) {
    for (int y = -before; y < after; ++y) load(y);
    for (int y = 0; y < height; ++y) {
        load(y + after);
        make(y);
    }
}

} // namespace lum

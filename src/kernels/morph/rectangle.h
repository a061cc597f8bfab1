// The strongest element of a full rectangle around each pixel. Columns come first: the windows of a few rows share
// what they have in common (van Herk, Pattern Recognition Letters 13, 1992; Gil and Werman, IEEE PAMI 15, 1993), and each leaves a line. The
// windows of a line then grow in place, by a factor a step, until they are as wide as the rectangle.
#pragma once

#include <cstddef>

#include "frame/image.h"
#include "kernels/morph/extended_image.h"
#include "kernels/morph/operation.h"

namespace lum::kernels {

/// A run over a region of width x height pixels. The rectangle reaches reachX pixels to the left and right of its
/// centre, and reachY up and down. A window that leaves what is readable is cut to it, and takes in `outside`, one
/// element a channel, if that is not null.
template <class T> struct RectangleRun {
    Image<const T> src;
    Image<T> dst;
    std::ptrdiff_t width, height;
    int channels;
    std::ptrdiff_t reachX, reachY;
    ReadableMargins readable;
    const T* outside;
    /// Work memory: one line of the widened image at least; more of it makes the run faster.
    void* work;
    std::size_t workBytes;
};

/// Lum8u, Lum16u, Lum16s, Lum32f. In floats a NaN in the image is passed over.
template <MorphOp op, class T> void strongestOfRectangle(const RectangleRun<T>& run);

} // namespace lum::kernels

// The strongest element under the set cells of any mask around each pixel. The cells of a mask row are taken as runs. For each
// source row the strongest of 1, 2, 4, ... neighbouring pixels are worked out once, for all mask rows that see it, and
// a run takes one or a few of them (chords; Urbach and Wilkinson, IEEE Transactions on Image Processing 17, 2008).
#pragma once

#include <cstddef>

#include "frame/image.h"
#include "kernels/morph/extended_image.h"
#include "kernels/morph/operation.h"

namespace lum::kernels {

/// Cells row after row, set where not 0; width and height are odd, and the middle cell is the centre.
struct Mask {
    const Lum8u* cells;
    std::ptrdiff_t width, height;
};

template <class T> struct MaskRun {
    ExtendedImage<T> src;
    Image<T> dst;
    Mask mask;
    /// Work memory: at least src.elements(src.width + mask.width - 1) elements for each row of the mask; more of it makes
    /// the run faster.
    void* work;
    std::size_t workBytes;
};

/// Lum8u, Lum16u, Lum16s, Lum32f. Starts from the weakest finite element; a NaN in the image is passed over.
template <MorphOp op, class T> void strongestOfMask(const MaskRun<T>& run);

} // namespace lum::kernels

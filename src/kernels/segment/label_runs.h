// Labels of connected regions from the runs of their rows.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/image.h"
#include "kernels/segment/flood_fill.h"

namespace lum::kernels {

/// Labels in turn, from the first to the last and again from the first.
class Labels {
  public:
    Labels(std::int32_t first, std::int32_t last) : first_(first), last_(last), next_(first) {}

    /// The next label, which is taken where `taken` is 1 and stays the next where it is 0.
    std::int32_t next(std::uint32_t taken) {
        const std::int32_t label = next_;
        const std::int32_t following = label == last_ ? first_ : label + 1;
        next_ = taken != 0 ? following : label;
        return label;
    }

  private:
    std::int32_t first_;
    std::int32_t last_;
    std::int32_t next_;
};

/// Bytes of the block of labelRuns(), whose address needs no alignment: at most 4 a pixel and 3 more.
std::size_t labelRunsBytes(LumSize size);

/// Writes a label of its own over each connected region of pixels other than 0, in the raster order of their first
/// pixels, and 0 elsewhere; gives the number of regions. Images of one type are one image. Lum8u to Lum8u and Lum32s,
/// Lum16u to Lum16u.
template <class Src, class Dst>
std::size_t labelRuns(Image<const Src> src, Image<Dst> dst, LumSize size, Connected connected, Labels labels,
                      unsigned char* block);

} // namespace lum::kernels

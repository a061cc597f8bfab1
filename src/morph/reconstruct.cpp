#include "morph/reconstruct.h"

#include <cstdint>
#include <cstring>

#include "frame/check.h"
#include "frame/image.h"
#include "frame/instances.h"
#include "kernels/morph/reconstruct.h"

namespace lum {
namespace {

using kernels::MorphOp;
using kernels::Neighbours;
using kernels::ReconstructRow;

/// What a row owes its neighbours: it has changed since the row below, or above, was merged with it.
enum Owed : Lum8u { nothing = 0, toBelow = 1, toAbove = 2 };

/// The marker in place, its limits, and what each row owes. After a visit a row is stable in itself, and towards the
/// row it was merged with.
template <MorphOp op, class T, Neighbours neighbours> class Sweeps {
  public:
    Sweeps(Image<const T> limits, Image<T> marker, LumSize size, Lum8u* owed)
        : limits_(limits), marker_(marker), size_(size), owed_(owed) {}

    /// Alternates downward and upward until no row owes another anything.
    void run() {
        for (int y = 0; y < size_.height; ++y) visitFirst(y);
        for (bool changed = true; changed;) {
            changed = upward();
            if (changed) changed = downward();
        }
    }

  private:
    using Row = ReconstructRow<op, T>;

    /// The first visit brings a row under its limits and takes in the row above.
    void visitFirst(int y) {
        Row::clip(marker_.row(y), limits_.row(y), size_.width);
        if (y > 0) merge(y, y - 1);
        Row::spread(marker_.row(y), limits_.row(y), size_.width);
        owed_[y] = toAbove;
    }

    bool merge(int y, int neighbour) {
        constexpr auto mergeRow = neighbours == Neighbours::eight ? &Row::mergeThree : &Row::mergeNearest;
        return mergeRow(marker_.row(y), marker_.row(neighbour), limits_.row(y), size_.width);
    }

    bool visit(int y, int neighbour) {
        const bool changed = merge(y, neighbour);
        if (changed) {
            Row::spread(marker_.row(y), limits_.row(y), size_.width);
            owed_[y] = toBelow | toAbove;
        }
        return changed;
    }

    bool downward() {
        bool changed = false;
        for (int y = 1; y < size_.height; ++y) {
            if ((owed_[y - 1] & toBelow) == 0) continue;
            owed_[y - 1] &= toAbove;
            changed |= visit(y, y - 1);
        }
        return changed;
    }

    bool upward() {
        bool changed = false;
        for (int y = size_.height - 2; y >= 0; --y) {
            if ((owed_[y + 1] & toAbove) == 0) continue;
            owed_[y + 1] &= toBelow;
            changed |= visit(y, y + 1);
        }
        return changed;
    }

    Image<const T> limits_;
    Image<T> marker_;
    LumSize size_;
    Lum8u* owed_;
};

} // namespace

LumStatus reconstructBufferSize(LumSize roiSize, LumDataType dataType, int numChannels, Lum32s* bufferSize) {
    const bool known =
        dataType == lumType8u || dataType == lumType16u || dataType == lumType32f || dataType == lumType64f;
    if (auto s = firstFailure(checkNotNull(bufferSize), checkSize(roiSize),
                              errorIf(!known, lumStatusDataTypeError),
                              errorIf(numChannels != 1, lumStatusCountError)))
        return s;
    const auto width = static_cast<std::uint32_t>(roiSize.width);
    const auto height = static_cast<std::uint32_t>(roiSize.height);
    std::uint32_t bytes = 0;
    switch (dataType) {
    case lumType8u:
        bytes = 4 * width + height + 161;
        break;
    case lumType16u:
        bytes = 2 * (4 * width + height) + 322;
        break;
    case lumType32f:
        bytes = 16 * width + height + 164;
        break;
    default:
        bytes = 32 * width + height + 168;
        break;
    }
    *bufferSize = static_cast<Lum32s>(bytes);
    return lumStatusOk;
}

template <MorphOp op, class T>
LumStatus Reconstruct<op, T>::run(const T* src, int srcStep, T* srcDst, int srcDstStep, LumSize roiSize,
                                  Lum8u* buffer, LumSpatialNorm connectivity) {
    if (auto s = firstFailure(checkNotNull(src, srcDst, buffer), checkSize(roiSize),
                              checkStep(rowBytes<T>(roiSize.width), srcStep, srcDstStep),
                              checkStepAlignment<T>(srcStep, srcDstStep),
                              errorIf(connectivity != lumSpatialNormInf && connectivity != lumSpatialNormL1,
                                      lumStatusBadArgument)))
        return s;
    const Image<const T> limits{src, srcStep};
    const Image<T> marker{srcDst, srcDstStep};
    if (connectivity == lumSpatialNormInf)
        Sweeps<op, T, Neighbours::eight>(limits, marker, roiSize, buffer).run();
    else
        Sweeps<op, T, Neighbours::four>(limits, marker, roiSize, buffer).run();
    return lumStatusOk;
}

LUM_STRUCT_INSTANCES(Reconstruct, (MorphOp::dilate, Lum8u), (MorphOp::dilate, Lum16u),
                     (MorphOp::dilate, Lum32f), (MorphOp::dilate, Lum64f), (MorphOp::erode, Lum8u),
                     (MorphOp::erode, Lum16u), (MorphOp::erode, Lum32f), (MorphOp::erode, Lum64f));

} // namespace lum

#include "morph/dilate_erode.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "frame/arena.h"
#include "frame/check.h"
#include "frame/instances.h"
#include "kernels/morph/mask.h"
#include "kernels/morph/rectangle.h"
#include "morph/border.h"
#include "morph/objects.h"
#include "morph/sizes.h"

namespace lum {
namespace {

using kernels::MorphOp;

constexpr int mostChannels = 4;

template <class T> void copyRows(Image<const T> src, Image<T> dst, LumSizeL roiSize, int channels) {
    for (std::intptr_t y = 0; y < roiSize.height; ++y)
        std::memmove(dst.row(y), src.row(y), roiSize.width * channels * sizeof(T));
}

/// The bytes that every work area has which was queried for this region or a larger one. A region that exceeds the mask
/// may be asked less for than one that does not.
template <class T> std::size_t certainBytes(LumSizeL roiSize, LumSizeL box, int channels) {
    using Sizes = MorphSizes<std::uint64_t>;
    const LumSizeL exceeding{std::max(roiSize.width, box.width + 1),
                             std::max(roiSize.height, box.height + 1)};
    return static_cast<std::size_t>(std::min(Sizes(roiSize, box).runBufferBytes(sizeof(T), channels),
                                             Sizes(exceeding, box).runBufferBytes(sizeof(T), channels)));
}

/// Which types refuse to work in place; the others are not tested.
template <MorphOp op, class T>
constexpr bool refusesInPlace = std::is_same_v<T, Lum16s> ||
                                (std::is_same_v<T, Lum16u> && op == MorphOp::erode);

template <MorphOp op, class T> LumStatus checkInPlace(const T* src, const T* dst) {
    return errorIf(refusesInPlace<op, T> && src == dst, lumStatusInPlaceNotSupported);
}

/// Steps and their alignment; then the border, of which dilation and the long members fold the first stage.
template <class T>
LumStatus checkGeometry(auto roiSize, int channels, LumBorderType border, bool folds, auto... steps) {
    return firstFailure(checkSize(roiSize), checkStep(rowBytes<T>(roiSize.width, channels), steps...),
                        checkStepAlignment<T>(steps...),
                        checkMorphBorder(border, folds ? withStagesFolded(border) : border,
                                         isMorphKind(morphBorderKind(border))));
}

template <MorphOp op, class T>
LumStatus runPlain(const T* src, int srcStep, T* dst, int dstStep, LumSize roiSize, int channels,
                   LumBorderType border, const T* borderValue, const LumMorphMaskRecord* spec,
                   Lum8u* buffer) {
    constexpr bool folds = op == MorphOp::dilate;
    if (auto s = firstFailure(checkNotNull(src, dst, spec, buffer), constantMissing(border, borderValue),
                              checkGeometry<T>(roiSize, channels, border, folds, srcStep, dstStep),
                              checkInPlace<op>(src, dst)))
        return s;
    runMorphology<op, T>({src, srcStep}, {dst, dstStep}, {roiSize.width, roiSize.height}, channels,
                         folds ? withStagesFolded(border) : border, borderValue, *spec, buffer);
    return lumStatusOk;
}

template <MorphOp op, class T>
LumStatus runLong(const T* src, std::intptr_t srcStep, T* dst, std::intptr_t dstStep, LumSizeL roiSize,
                  int channels, LumBorderType border, const T* borderValue, const LumMorphLongState* spec,
                  Lum8u* buffer) {
    const bool isBytePlane = std::is_same_v<T, Lum8u> && channels == 1;
    if (auto s =
            firstFailure(checkNotNull(src, dst, spec, buffer),
                         checkGeometry<T>(roiSize, channels, border, true, srcStep, dstStep),
                         constantMissing(border, borderValue),
                         checkBelowLimit(roiSize, isBytePlane ? lumStatusSizeError : lumStatusSizeOverflow,
                                         srcStep, dstStep),
                         checkInPlace<op>(src, dst)))
        return s;
    runMorphology<op, T>({src, srcStep}, {dst, dstStep}, roiSize, channels, withStagesFolded(border),
                         borderValue, *spec->maskRecord, buffer);
    return lumStatusOk;
}

} // namespace

template <MorphOp op, class T>
void runMorphology(Image<const T> src, Image<T> dst, LumSizeL roiSize, int channels, LumBorderType border,
                   const T* borderValue, const LumMorphMaskRecord& mask, Lum8u* buffer) {
    const LumSizeL box{mask.width, mask.height};
    if ((box.width == 1 && box.height == 1) || (mask.shapeFlags & shapeEmpty) != 0)
        return copyRows(src, dst, roiSize, channels);

    const LumBorderType kind = morphBorderKind(border);
    T values[mostChannels];
    std::fill_n(values, mostChannels, kernels::weakestFinite<op, T>);
    if (kind == lumBorderConstant) std::copy_n(borderValue, channels, values);

    const std::intptr_t reachX = (box.width - 1) >> 1;
    const std::intptr_t reachY = (box.height - 1) >> 1;
    const kernels::ReadableMargins readable = readableMargins(border, reachY, reachY, reachX, reachX);
    Lum8u* const work = alignedUp(buffer, 32);
    const std::size_t workBytes = certainBytes<T>(roiSize, box, channels) - (work - buffer);

    if ((mask.shapeFlags & shapeFullRectangle) != 0) {
        // A window of a full rectangle already holds every pixel that replication and reflection would add to it, and a
        // neutral element only matters to infinities.
        const bool joinsValue = kind == lumBorderConstant ||
                                (kind == lumBorderDefaultValue && std::numeric_limits<T>::has_infinity);
        kernels::strongestOfRectangle<op>(
            kernels::RectangleRun<T>{src, dst, roiSize.width, roiSize.height, channels, reachX, reachY,
                                     readable, joinsValue ? values : nullptr, work, workBytes});
        return;
    }
    const kernels::Outside outside = kind == lumBorderReplicate ? kernels::Outside::repeat
                                     : kind == lumBorderMirror  ? kernels::Outside::reflect
                                                                : kernels::Outside::fill;
    kernels::strongestOfMask<op>(
        kernels::MaskRun<T>{{src, roiSize.width, roiSize.height, channels, readable, outside, values},
                            dst,
                            {mask.cells, box.width, box.height},
                            work,
                            workBytes});
}

template <MorphOp op, class T>
LumStatus SingleChannelMorphology<op, T>::border(const T* src, int srcStep, T* dst, int dstStep,
                                                 LumSize roiSize, LumBorderType border, T borderValue,
                                                 const LumMorphMaskRecord* spec, Lum8u* buffer) {
    return runPlain<op>(src, srcStep, dst, dstStep, roiSize, 1, border, &borderValue, spec, buffer);
}

template <MorphOp op, class T>
LumStatus SingleChannelMorphology<op, T>::borderLong(const T* src, std::intptr_t srcStep, T* dst,
                                                     std::intptr_t dstStep, LumSizeL roiSize,
                                                     LumBorderType border, const T* borderValue,
                                                     const LumMorphLongState* spec, Lum8u* buffer) {
    return runLong<op>(src, srcStep, dst, dstStep, roiSize, 1, border, borderValue, spec, buffer);
}

template <MorphOp op, class T, int channels>
LumStatus ColourMorphology<op, T, channels>::border(const T* src, int srcStep, T* dst, int dstStep,
                                                    LumSize roiSize, LumBorderType border,
                                                    const T* borderValue, const LumMorphMaskRecord* spec,
                                                    Lum8u* buffer) {
    return runPlain<op>(src, srcStep, dst, dstStep, roiSize, channels, border, borderValue, spec, buffer);
}

template <MorphOp op, class T, int channels>
LumStatus ColourMorphology<op, T, channels>::borderLong(const T* src, std::intptr_t srcStep, T* dst,
                                                        std::intptr_t dstStep, LumSizeL roiSize,
                                                        LumBorderType border, const T* borderValue,
                                                        const LumMorphLongState* spec, Lum8u* buffer) {
    return runLong<op>(src, srcStep, dst, dstStep, roiSize, channels, border, borderValue, spec, buffer);
}

LUM_STRUCT_INSTANCES(SingleChannelMorphology, (MorphOp::dilate, Lum8u), (MorphOp::dilate, Lum16u),
                     (MorphOp::dilate, Lum16s), (MorphOp::dilate, Lum32f), (MorphOp::erode, Lum8u),
                     (MorphOp::erode, Lum16u), (MorphOp::erode, Lum16s), (MorphOp::erode, Lum32f));
LUM_STRUCT_INSTANCES(ColourMorphology, (MorphOp::dilate, Lum8u, 3), (MorphOp::dilate, Lum8u, 4),
                     (MorphOp::dilate, Lum32f, 3), (MorphOp::dilate, Lum32f, 4), (MorphOp::erode, Lum8u, 3),
                     (MorphOp::erode, Lum8u, 4), (MorphOp::erode, Lum32f, 3), (MorphOp::erode, Lum32f, 4));

} // namespace lum

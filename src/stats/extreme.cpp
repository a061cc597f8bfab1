#include "stats/extreme.h"

#include <type_traits>

#include "frame/check.h"
#include "frame/instances.h"
#include "kernels/stats/extreme.h"

namespace lum {
namespace {

using kernels::AllPixels;
using kernels::ExtremesOf;
using kernels::MaskedPixels;
using kernels::Pixels;
using kernels::Sides;

/// What one side is to be reported in; null where it is not wanted.
struct Side {
    Lum32f* value;
    LumPoint* place;

    bool wanted() const { return value != nullptr || place != nullptr; }
    void write(Lum32f foundValue, LumPoint foundPlace) const {
        if (value != nullptr) *value = foundValue;
        if (place != nullptr) *place = foundPlace;
    }
};

/// Writes a side, given the value found and a row that has no occurrence above it. Inlined: on small regions its arguments
/// would take as long as what it does.
template <class T, int channels, class Selection>
[[gnu::always_inline]] inline void report(const Side& side, const Pixels<T, channels>& pixels,
                                          const Selection& selection, LumSize size, T value, int fromRow) {
    if (!side.wanted()) return;
    // Zeros of both signs are equal: the one at the place found is reported.
    const bool signIsOpen = std::is_floating_point_v<T> && value == 0;
    if (side.place == nullptr && !signIsOpen) {
        *side.value = static_cast<Lum32f>(value);
        return;
    }
    const LumPoint place =
        ExtremesOf<T, channels, Selection>::firstPlace(pixels, selection, size, value, fromRow);
    if (signIsOpen) value = pixels.at(pixels.row(place.y), place.x);
    side.write(static_cast<Lum32f>(value), place);
}

/// No pixel above firstRow is selected.
template <class T, int channels, class Selection>
void findAndReport(const Pixels<T, channels>& pixels, const Selection& selection, LumSize size, int firstRow,
                   const Side& lowest, const Side& highest) {
    if (!lowest.wanted() && !highest.wanted()) return;
    const Sides sides = !highest.wanted() ? Sides::lowest : !lowest.wanted() ? Sides::highest : Sides::both;
    const auto found = ExtremesOf<T, channels, Selection>::vectors(pixels, selection, size, sides, firstRow);
    // Only NaN leaves both sides where the search started; then there is no place to look for.
    const bool onlyNaN = sides == Sides::both && found.highest < found.lowest;
    report(lowest, pixels, selection, size, found.lowest, onlyNaN ? size.height : found.lowestRow);
    report(highest, pixels, selection, size, found.highest, onlyNaN ? size.height : found.highestRow);
}

/// With a mask. The warning goes to a call that selects nothing, and to one that asks for nothing: then the mask
/// is not even read. A place of (0, 0) whose mask byte is 0, or a value of 0 under a mask of zeros only, can be
/// reported for an empty mask alone, so the mask itself tells what the outputs would.
template <class T, int channels>
LumStatus findMaskedAndReport(const Pixels<T, channels>& pixels, Image<const Lum8u> mask, LumSize size,
                              const Side& lowest, const Side& highest) {
    if (!lowest.wanted() && !highest.wanted()) return lumStatusEmptyMask;
    const int firstRow = kernels::firstSelectedRow(mask, size);
    if (firstRow == size.height) {
        lowest.write(0, {0, 0});
        highest.write(0, {0, 0});
        return lumStatusEmptyMask;
    }
    findAndReport(pixels, MaskedPixels{mask}, size, firstRow, lowest, highest);
    return lumStatusOk;
}

// The tests and the work of the members; in a single-channel member the channel is the first.

template <int channels, class T>
LumStatus ofImage(const T* src, int srcStep, LumSize roiSize, int coi, const Side& lowest,
                  const Side& highest) {
    if (auto s = firstFailure(checkNotNull(src), checkSize(roiSize),
                              checkStep(rowBytes<T>(roiSize.width, channels), srcStep),
                              checkStepAlignment<T>(srcStep), checkChannelOfInterest(coi)))
        return s;
    findAndReport(Pixels<T, channels>{{src, srcStep}, coi - 1}, AllPixels{}, roiSize, 0, lowest, highest);
    return lumStatusOk;
}

template <int channels, class T>
LumStatus ofMaskedImage(const T* src, int srcStep, const Lum8u* mask, int maskStep, LumSize roiSize, int coi,
                        const Side& lowest, const Side& highest) {
    if (auto s = firstFailure(
            checkNotNull(src, mask), checkSize(roiSize),
            checkStep(rowBytes<T>(roiSize.width, channels), srcStep), checkStepAlignment<T>(srcStep),
            checkStep(rowBytes<Lum8u>(roiSize.width), maskStep), checkChannelOfInterest(coi)))
        return s;
    return findMaskedAndReport(Pixels<T, channels>{{src, srcStep}, coi - 1}, {mask, maskStep}, roiSize,
                               lowest, highest);
}

} // namespace

template <class T>
LumStatus minMaxIndx(const T* src, int srcStep, LumSize roiSize, Lum32f* minVal, Lum32f* maxVal,
                     LumPoint* minIndex, LumPoint* maxIndex) {
    return ofImage<1>(src, srcStep, roiSize, 1, {minVal, minIndex}, {maxVal, maxIndex});
}

template <class T>
LumStatus minMaxIndxMasked(const T* src, int srcStep, const Lum8u* mask, int maskStep, LumSize roiSize,
                           Lum32f* minVal, Lum32f* maxVal, LumPoint* minIndex, LumPoint* maxIndex) {
    return ofMaskedImage<1>(src, srcStep, mask, maskStep, roiSize, 1, {minVal, minIndex}, {maxVal, maxIndex});
}

template <class T>
LumStatus minMaxIndxOfChannel(const T* src, int srcStep, LumSize roiSize, int coi, Lum32f* minVal,
                              Lum32f* maxVal, LumPoint* minIndex, LumPoint* maxIndex) {
    return ofImage<3>(src, srcStep, roiSize, coi, {minVal, minIndex}, {maxVal, maxIndex});
}

template <class T>
LumStatus minMaxIndxMaskedOfChannel(const T* src, int srcStep, const Lum8u* mask, int maskStep,
                                    LumSize roiSize, int coi, Lum32f* minVal, Lum32f* maxVal,
                                    LumPoint* minIndex, LumPoint* maxIndex) {
    return ofMaskedImage<3>(src, srcStep, mask, maskStep, roiSize, coi, {minVal, minIndex},
                            {maxVal, maxIndex});
}

LUM_INSTANCES(minMaxIndx, (Lum8u), (Lum16u), (Lum32f));
LUM_INSTANCES(minMaxIndxMasked, (Lum8u), (Lum16u), (Lum32f));
LUM_INSTANCES(minMaxIndxOfChannel, (Lum8u), (Lum16u), (Lum32f));
LUM_INSTANCES(minMaxIndxMaskedOfChannel, (Lum8u), (Lum16u), (Lum32f));

} // namespace lum

#include "kernels/integral/haar.h"

#include <bit>

#include "frame/instances.h"
#include "frame/lanes_reduce.h"

namespace lum::kernels {
namespace {

/// Whether the pixel's total reaches the threshold of the stage.
template <class Rule, class Stage>
bool pixelStays(const Rule& rule, const Stage& stage, int x, int y, typename Rule::Norm norm,
                typename Rule::Value threshold) {
    typename Rule::Value total{};
    for (typename Stage::Cursor cursor(stage, x, y); !cursor.atEnd(); cursor.nextClassifier()) {
        auto t = rule.first(cursor.corners(), cursor.weight());
        cursor.nextRectangle();
        for (int further = cursor.rectangles() - 1; further > 0; --further) {
            t = rule.further(t, cursor.corners(), cursor.weight());
            cursor.nextRectangle();
        }
        const bool below = rule.below(t, cursor.threshold(), norm);
        total = Rule::sum(total, below ? cursor.below() : cursor.above());
    }
    return Rule::stays(total, threshold);
}

/// Takes the mask byte of one pixel; returns 1 if it is still set.
template <class Rule, class Stage>
int takePixel(const Rule& rule, const Stage& stage, int x, int y, typename Rule::Norm norm, Lum8u& mask,
              typename Rule::Value threshold) {
    if (mask == 0) return 0;
    if (pixelStays(rule, stage, x, y, norm, threshold)) return 1;
    mask = 0;
    return 0;
}

/// One bit for each byte that is not 0.
template <int pixels> LUM_LANE unsigned setBits(Block<Lum8u, pixels> bytes) {
    return signBits(bytes == zeros<Lum8u, pixels>()) ^ ((1U << pixels) - 1);
}

/// The number of bytes that are not 0. What a vector holds after the group is 0.
template <int pixels> LUM_LANE int setBytes(Block<Lum8u, pixels> bytes) {
    const auto vector = blockOf<Lum8u, 16>(rawInteger(bytes.v));
    return static_cast<int>(sumOf(byteSums(min(vector, broadcast<16>(Lum8u{1})))));
}

/// 0xFF for each pixel of the group whose total reaches the threshold.
template <int pixels, class Rule, class Stage>
LUM_LANE Block<Lum8u, pixels> groupStays(const Rule& rule, const Stage& stage, int x, int y,
                                         const typename Rule::Norm* norm, typename Rule::Value threshold) {
    typename Rule::template Group<pixels> group(rule);
    for (typename Stage::Cursor cursor(stage, x, y); !cursor.atEnd(); cursor.nextClassifier()) {
        group.first(cursor.corners(), cursor.weight());
        cursor.nextRectangle();
        for (int further = cursor.rectangles() - 1; further > 0; --further) {
            group.further(cursor.corners(), cursor.weight());
            cursor.nextRectangle();
        }
        group.decide(cursor.threshold(), norm, cursor.below(), cursor.above());
    }
    return bitsAs<Lum8u>(narrowSaturated<std::int8_t>(group.stays(threshold)));
}

/// Whether at most `count` bits are set.
template <int count> bool atMost(unsigned bits) {
    for (int i = 0; i < count; ++i) bits &= bits - 1;
    return bits == 0;
}

/// Takes a group of pixels; returns how many of its pixels are still set. A group without a set pixel is skipped;
/// of at most `alone` set pixels, each is taken by itself.
template <int pixels, int alone, class Rule, class Stage>
int takeGroup(const Rule& rule, const Stage& stage, int x, int y, const typename Rule::Norm* norm,
              Lum8u* mask, typename Rule::Value threshold) {
    const auto bytes = load<pixels>(mask);
    unsigned bits = setBits(bytes);
    if (bits == 0) return 0;
    if (alone > 0 && atMost<alone>(bits)) {
        int positive = 0;
        for (; bits != 0; bits &= bits - 1) {
            const int i = std::countr_zero(bits);
            positive += takePixel(rule, stage, x + i, y, norm[i], mask[i], threshold);
        }
        return positive;
    }
    const auto stay = bytes & groupStays<pixels>(rule, stage, x, y, norm, threshold);
    store(stay, mask);
    return setBytes(stay);
}

template <int pixels, int alone, class Rule, class Stage>
int rowsOfGroups(const Rule& rule, const Stage& stage, const HaarRegion<typename Rule::Norm>& region,
                 typename Rule::Value threshold) {
    unsigned positive = 0;
    for (int y = 0; y < region.size.height; ++y) {
        const typename Rule::Norm* norm = region.norm.row(y);
        Lum8u* mask = region.mask.row(y);
        int x = 0;
        // whole groups
        for (; x <= region.size.width - pixels; x += pixels)
            positive += takeGroup<pixels, alone>(rule, stage, x, y, norm + x, mask + x, threshold);
        // four pixels per iteration
        for (; x <= region.size.width - 4; x += 4)
            positive += takeGroup<4, 1>(rule, stage, x, y, norm + x, mask + x, threshold);
        // tail: scalar, one pixel at a time
        for (; x < region.size.width; ++x)
            positive += takePixel(rule, stage, x, y, norm[x], mask[x], threshold);
    }
    return static_cast<int>(positive);
}

} // namespace

template <class Rule, class Stage>
int applyHaarScalar(const Rule& rule, const Stage& stage, const HaarRegion<typename Rule::Norm>& region,
                    typename Rule::Value threshold) {
    unsigned positive = 0;
    for (int y = 0; y < region.size.height; ++y) {
        const typename Rule::Norm* norm = region.norm.row(y);
        Lum8u* mask = region.mask.row(y);
        for (int x = 0; x < region.size.width; ++x)
            positive += takePixel(rule, stage, x, y, norm[x], mask[x], threshold);
    }
    return static_cast<int>(positive);
}

template <class Rule, class Stage>
int applyHaar(const Rule& rule, const Stage& stage, const HaarRegion<typename Rule::Norm>& region,
              typename Rule::Value threshold, HaarDensity density) {
    // In 16-byte vectors eight pixels cost as much as about three taken alone, the dense group as much as four.
    switch (density) {
    case HaarDensity::dense:
        return rowsOfGroups<Rule::densePixels, 0>(rule, stage, region, threshold);
    case HaarDensity::middle:
        return rowsOfGroups<8, 0>(rule, stage, region, threshold);
    case HaarDensity::sparse:
        return rowsOfGroups<8, 2>(rule, stage, region, threshold);
    case HaarDensity::unknown:
        break;
    }
    return rowsOfGroups<Rule::densePixels, 3>(rule, stage, region, threshold);
}

// Stages of one integral image, then those of an upright and a tilted one.
LUM_INSTANCES(applyHaarScalar, (HaarWithNegatedFirst, HaarTableStage),
              (HaarWithWeightedFirst, HaarTableStage), (HaarUnorderedAbove, HaarRecordStage<Lum32f>),
              (HaarIntegers, HaarRecordStage<Lum32s>), (HaarUnorderedAbove, HaarMixedStage<Lum32f, Lum32f>),
              (HaarUnorderedAbove, HaarMixedStage<Lum32s, Lum32f>),
              (HaarIntegers, HaarMixedStage<Lum32s, Lum32s>));
LUM_INSTANCES(applyHaar, (HaarWithNegatedFirst, HaarTableStage), (HaarWithWeightedFirst, HaarTableStage),
              (HaarUnorderedAbove, HaarRecordStage<Lum32f>), (HaarIntegers, HaarRecordStage<Lum32s>),
              (HaarUnorderedAbove, HaarMixedStage<Lum32f, Lum32f>),
              (HaarUnorderedAbove, HaarMixedStage<Lum32s, Lum32f>),
              (HaarIntegers, HaarMixedStage<Lum32s, Lum32s>));

} // namespace lum::kernels

#include "integral/haar_init.h"

#include <algorithm>
#include <limits>
#include <type_traits>

#include "frame/check.h"
#include "frame/instances.h"
#include "integral/haar_object.h"

namespace lum {
namespace {

using kernels::HaarClassifierRecord;
using kernels::HaarFeature;
using kernels::HaarValue;

LumStatus anyCountBelowOne(const Lum32s* num, int length) {
    return errorIf(std::any_of(num, num + length, [](Lum32s count) { return count < 1; }),
                   lumStatusSizeError);
}

/// The sum of the counts, wrapping.
std::size_t total(const Lum32s* num, int length) {
    std::uint32_t sum = 0;
    for (int i = 0; i < length; ++i) sum += static_cast<std::uint32_t>(num[i]);
    return sum;
}

Lum32s wrappingSum(Lum32s a, Lum32s b) {
    return static_cast<Lum32s>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}
Lum32s wrappingDifference(Lum32s a, Lum32s b) {
    return static_cast<Lum32s>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}

HaarValue valueOf(Lum32f value) { return {.real = value}; }
HaarValue valueOf(Lum32s value) { return {.integer = value}; }

bool truncatesToMinusOne(Lum32f weight) { return weight > -2.0F && weight <= -1.0F; }

bool isUsable(const LumRect& rect, HaarRectangles rectangles) {
    if (rect.x < 0 || rect.y < 0 || rect.width < 1 || rect.height < 1) return false;
    return rectangles == HaarRectangles::upright || rect.height - 1 <= rect.x;
}

HaarFeature uprightFeature(const LumRect& rect) {
    const Lum32s right = wrappingSum(rect.x, rect.width);
    const Lum32s bottom = wrappingSum(rect.y, rect.height);
    return {right, bottom, rect.x, bottom, right, rect.y, rect.x, rect.y, {}};
}

HaarFeature tiltedFeature(const LumRect& rect) {
    const Lum32s cx = wrappingSum(rect.x, rect.width);
    const Lum32s cy = wrappingSum(rect.y, rect.width);
    const Lum32s bx = rect.x - rect.height;
    const Lum32s by = wrappingSum(rect.y, rect.height);
    return {wrappingDifference(cx, rect.height),
            wrappingSum(cy, rect.height),
            bx,
            by,
            cx,
            cy,
            rect.x,
            rect.y,
            {}};
}

/// The smallest rectangle around rectangles.
struct Extent {
    Lum32s left = std::numeric_limits<Lum32s>::max();
    Lum32s top = std::numeric_limits<Lum32s>::max();
    Lum32s right = std::numeric_limits<Lum32s>::min();
    Lum32s bottom = std::numeric_limits<Lum32s>::min();

    void add(const LumRect& rect) {
        left = std::min(left, rect.x);
        top = std::min(top, rect.y);
        right = std::max(right, wrappingSum(rect.x, rect.width));
        bottom = std::max(bottom, wrappingSum(rect.y, rect.height));
    }
};

/// The caller's arrays; those of the rectangles hold all classifiers' in sequence.
template <class Value> struct Classifiers {
    const LumRect* rects;
    const Value* weights;
    const Value* thresholds;
    const Value* below;
    const Value* above;
    const Lum32s* num;
    int length;
};

/// Fills an object's records and features, classifier by classifier.
template <class Value, HaarRectangles rectangles> class Builder {
  public:
    Builder(const HaarObject& object, const Classifiers<Value>& given)
        : record_(object.records), feature_(object.features), given_(given) {}

    /// The classifiers whose count of rectangles is chosen, in the caller's order; false at a rectangle that cannot
    /// be.
    template <class Chosen> bool append(Chosen chosen) {
        std::size_t first = 0;
        for (int i = 0; i < given_.length; ++i) {
            const Lum32s count = given_.num[i];
            if (chosen(count) && !appendClassifier(i, first)) return false;
            first += static_cast<std::size_t>(count);
        }
        return true;
    }

    const Extent& extent() const { return extent_; }
    bool allFirstWeightsMinusOne() const { return allFirstWeightsMinusOne_; }

  private:
    bool appendClassifier(int index, std::size_t first) {
        const Lum32s count = given_.num[index];
        const auto tiltedBit = rectangles == HaarRectangles::tilted ? 1U : 0U;
        *record_++ = {.count = count,
                      .features = feature_,
                      .threshold = valueOf(given_.thresholds[index]),
                      .below = valueOf(given_.below[index]),
                      .above = valueOf(given_.above[index]),
                      .origin = static_cast<Lum32s>(static_cast<std::uint32_t>(index) << 8 | tiltedBit)};
        if constexpr (std::is_same_v<Value, Lum32f>)
            allFirstWeightsMinusOne_ &= truncatesToMinusOne(given_.weights[first]);
        for (std::size_t i = first; i < first + static_cast<std::size_t>(count); ++i) {
            const LumRect& rect = given_.rects[i];
            if (!isUsable(rect, rectangles)) return false;
            *feature_ = rectangles == HaarRectangles::tilted ? tiltedFeature(rect) : uprightFeature(rect);
            feature_->weight = valueOf(given_.weights[i]);
            ++feature_;
            extent_.add(rect);
        }
        return true;
    }

    HaarClassifierRecord* record_;
    HaarFeature* feature_;
    const Classifiers<Value>& given_;
    Extent extent_;
    bool allFirstWeightsMinusOne_ = std::is_same_v<Value, Lum32f>;
};

} // namespace

LumStatus haarClassifierGetSize(LumDataType dataType, LumSize roiSize, const Lum32s* num, int length,
                                Lum32s* size) {
    if (auto s = firstFailure(checkNotNull(num, size), checkCount(length), checkSize(roiSize))) return s;
    if (auto s =
            firstFailure(anyCountBelowOne(num, length),
                         errorIf(dataType != lumType32s && dataType != lumType32f, lumStatusDataTypeError)))
        return s;
    const auto classifiers = static_cast<std::size_t>(length);
    const std::size_t features = total(num, length);
    const HaarObject object(nullptr, classifiers, features);
    *size = static_cast<Lum32s>(object.bytesToFeaturesEnd +
                                haarTableBytes(dataType == lumType32f, classifiers, features));
    return lumStatusOk;
}

template <class Value, HaarRectangles rectangles>
LumStatus haarClassifierInit(LumHaarClassifier* spec, const LumRect* rects, const Value* weights,
                             const Value* thresholds, const Value* val1, const Value* val2, const Lum32s* num,
                             int length) {
    if (auto s =
            firstFailure(checkNotNull(spec, rects, weights, thresholds, val1, val2, num), checkCount(length)))
        return s;
    if (auto s = anyCountBelowOne(num, length)) return s;

    const std::size_t features = total(num, length);
    const HaarObject object(spec, static_cast<std::size_t>(length), features);
    *spec = {};
    spec->classifiers = object.records;
    const Classifiers<Value> given{rects, weights, thresholds, val1, val2, num, length};
    Builder<Value, rectangles> builder(object, given);
    const auto isPair = [](Lum32s count) { return count == 2; };
    const auto isTriple = [](Lum32s count) { return count == 3; };
    if constexpr (rectangles == HaarRectangles::tilted) {
        if (!builder.append([](Lum32s) { return true; })) return lumStatusBadArgument;
        spec->tilted = 1;
    } else {
        if (!builder.append(isPair) || !builder.append(isTriple) ||
            !builder.append([&](Lum32s count) { return !isPair(count) && !isTriple(count); }))
            return lumStatusBadArgument;
        spec->pairCount = static_cast<Lum32s>(std::count_if(num, num + length, isPair));
        spec->pairAndTripleCount =
            spec->pairCount + static_cast<Lum32s>(std::count_if(num, num + length, isTriple));
    }
    const Extent& extent = builder.extent();
    spec->minX = extent.left;
    spec->minY = extent.top;
    spec->rangeX = wrappingDifference(extent.right, extent.left);
    spec->rangeY = wrappingDifference(extent.bottom, extent.top);
    spec->classifierCount = length;
    spec->featureCount = static_cast<Lum32s>(features);
    spec->sortedFeatureCount = spec->featureCount;
    spec->firstWeightMinusOne = builder.allFirstWeightsMinusOne() ? 1 : 0;
    spec->scratch = object.scratch;
    return lumStatusOk;
}

LUM_INSTANCES(haarClassifierInit, (Lum32f, HaarRectangles::upright), (Lum32s, HaarRectangles::upright),
              (Lum32f, HaarRectangles::tilted), (Lum32s, HaarRectangles::tilted));

} // namespace lum

#include "integral/haar_features.h"

#include <algorithm>
#include <span>

#include "frame/check.h"
#include "frame/instances.h"
#include "integral/haar_object.h"

namespace lum {
namespace {

using kernels::HaarClassifierRecord;
using kernels::HaarFeature;

std::span<HaarFeature> featuresOf(const HaarClassifierRecord& record) {
    return {record.features, static_cast<std::size_t>(record.count)};
}

/// A coordinate that is moved; wraps.
Lum32s moved(Lum32s coordinate, std::uint32_t distance) {
    return static_cast<Lum32s>(static_cast<std::uint32_t>(coordinate) + distance);
}

std::uint32_t distance(Lum32s from, Lum32s to) {
    return static_cast<std::uint32_t>(to) - static_cast<std::uint32_t>(from);
}

/// The upright rectangle turned about its lower left corner.
void tiltAboutLowerLeft(HaarFeature& feature) {
    const HaarFeature old = feature;
    const std::uint32_t width = distance(old.dx, old.ax);
    const std::uint32_t minusHeight = distance(old.by, old.dy);
    feature.ax = old.bx;
    feature.ay = old.by;
    feature.bx = moved(old.bx, minusHeight);
    feature.by = moved(old.by, minusHeight);
    feature.cx = moved(old.bx, width);
    feature.cy = moved(old.by, 0 - width);
    feature.dx = moved(old.bx, width + minusHeight);
    feature.dy = moved(old.by, minusHeight - width);
}

/// The upright rectangle turned about its upper left corner: the form of a tilted Init.
void tiltAboutUpperLeft(HaarFeature& feature) {
    const HaarFeature old = feature;
    const std::uint32_t width = distance(old.dx, old.ax);
    const std::uint32_t minusHeight = distance(old.by, old.dy);
    feature.cx = old.ax;
    feature.cy = moved(old.dy, width);
    feature.ax = moved(old.ax, minusHeight);
    feature.ay = moved(old.ay, width);
    feature.bx = moved(old.dx, minusHeight);
    feature.by = old.ay;
}

} // namespace

LumStatus getHaarClassifierSize(const LumHaarClassifier* spec, LumSize* size) {
    if (auto s = checkNotNull(spec, size)) return s;
    LumSize window{0, 0};
    for (int i = 0; i < spec->classifierCount; ++i)
        for (const HaarFeature& feature : featuresOf(spec->classifiers[i])) {
            window.width = std::max(window.width, feature.cx);
            window.height = std::max(window.height, feature.ay);
        }
    *size = window;
    return lumStatusOk;
}

template <class Value> LumStatus tiltHaarFeatures(const Lum8u* mask, Lum32s flag, LumHaarClassifier* spec) {
    if (auto s = checkNotNull(mask, spec)) return s;
    if ((spec->tilted & 1) != 0) return lumStatusBadArgument;
    for (int i = 0; i < spec->classifierCount; ++i) {
        HaarClassifierRecord& record = spec->classifiers[i];
        if (mask[static_cast<std::uint32_t>(record.origin) >> 8] == 0) continue;
        for (HaarFeature& feature : featuresOf(record))
            flag == 0 ? tiltAboutLowerLeft(feature) : tiltAboutUpperLeft(feature);
        record.origin = 1;
        spec->tilted |= 1;
    }
    return lumStatusOk;
}

LUM_INSTANCES(tiltHaarFeatures, (Lum32f), (Lum32s));

} // namespace lum

#include "kernels/distance/inpaint_gradients.h"

#include "frame/convert.h"
#include "frame/instances.h"

namespace lum::kernels {
namespace {

/// Calls visit(x, y) for the pixels of the region that are marked.
template <class Visit> void forMarked(LumSize size, Image<const Lum8u> marked, Visit visit) {
    for (int y = 0; y < size.height; ++y) {
        const Lum8u* row = marked.row(y);
        for (int x = 0; x < size.width; ++x)
            if (row[x] != 0) visit(x, y);
    }
}

/// A derivative along one axis at the edge of the hole. Sides outside the region are null.
template <class Axis> void leaveOutUnknown(const Axis& axis, const Lum8u* before, const Lum8u* after) {
    const bool beforeUnknown = before != nullptr && *before != inpaintKnown;
    const bool afterUnknown = after != nullptr && *after != inpaintKnown;
    if (!beforeUnknown && !afterUnknown) return;
    const bool beforeKnown = before != nullptr && !beforeUnknown;
    const bool afterKnown = after != nullptr && !afterUnknown;
    if (beforeKnown)
        axis.fromBefore();
    else if (afterKnown)
        axis.fromAfter();
    else
        axis.none();
}

/// 4096 times a derivative of the distances, from the values of two pixels one or two apart.
Lum16s scaledDifference(float from, float to, bool twoApart) {
    const float difference = twoApart ? (to - from) * 0.5F : to - from;
    return truncated<Lum16s>(difference * 4096);
}

} // namespace

template <InpaintMethod method, int channels>
void inpaintGradients(const InpaintRegion& region, Image<const Lum8u> marked) {
    forMarked(region.size, marked, [&](int x, int y) {
        inpaintAxisX<method, channels>(region, x, y).from(x > 0, x < region.size.width - 1);
        inpaintAxisY<method, channels>(region, x, y).from(y > 0, y < region.size.height - 1);
    });
}

template <InpaintMethod method, int channels>
void inpaintGradientsAtHole(const InpaintRegion& region, Image<const Lum8u> marked) {
    forMarked(region.size, marked, [&](int x, int y) {
        const Lum8u* mask = region.mask.row(y) + x;
        leaveOutUnknown(inpaintAxisX<method, channels>(region, x, y), x > 0 ? mask - 1 : nullptr,
                        x < region.size.width - 1 ? mask + 1 : nullptr);
        leaveOutUnknown(inpaintAxisY<method, channels>(region, x, y),
                        y > 0 ? mask - region.mask.step : nullptr,
                        y < region.size.height - 1 ? mask + region.mask.step : nullptr);
    });
}

void inpaintDistanceGradients(const InpaintRegion& region) {
    const int lastX = region.size.width - 1;
    const int lastY = region.size.height - 1;
    forMarked(region.size, region.mask, [&](int x, int y) {
        const int left = x > 0 ? x - 1 : x;
        const int right = x < lastX ? x + 1 : x;
        const int top = y > 0 ? y - 1 : y;
        const int bottom = y < lastY ? y + 1 : y;
        const float* row = region.distances.row(y);
        Lum16s* gradient = region.distanceGradient.row(y) + static_cast<std::ptrdiff_t>(x) * 2;
        gradient[0] = scaledDifference(row[left], row[right], right - left == 2);
        gradient[1] = scaledDifference(region.distances.row(top)[x], region.distances.row(bottom)[x],
                                       bottom - top == 2);
    });
}

LUM_INSTANCES(inpaintGradients, (InpaintMethod::front, 1), (InpaintMethod::front, 3),
              (InpaintMethod::isophote, 1), (InpaintMethod::isophote, 3));
LUM_INSTANCES(inpaintGradientsAtHole, (InpaintMethod::front, 1), (InpaintMethod::front, 3),
              (InpaintMethod::isophote, 1), (InpaintMethod::isophote, 3));

} // namespace lum::kernels

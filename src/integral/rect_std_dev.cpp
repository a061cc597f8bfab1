#include "integral/rect_std_dev.h"

#include "frame/check.h"
#include "frame/image.h"
#include "frame/instances.h"

namespace lum {
namespace {

/// Elements that a row of the integral images must have, in wrapping 32-bit arithmetic.
template <Shape shape> Lum32s elementsOfRow(LumSize roiSize, LumRect rect) {
    const auto wide = [](Lum32s value) { return static_cast<unsigned>(value); };
    unsigned elements = wide(rect.width) + wide(roiSize.width) + wide(rect.x);
    if constexpr (shape == Shape::tilted) elements += wide(rect.y) + wide(rect.height) - 1;
    return static_cast<Lum32s>(elements);
}

// The rectangle's own tests come last: the tests of the steps have used it by then.
template <Shape shape, class Sum, class Square, class Out>
LumStatus check(const Sum* src, int srcStep, const Square* sqr, int sqrStep, const Out* dst, int dstStep,
                LumSize roiSize, LumRect rect) {
    const Lum32s elements = elementsOfRow<shape>(roiSize, rect);
    return firstFailure(
        checkNotNull(src, sqr, dst), checkSize(roiSize), checkStep(rowBytes<Sum>(elements), srcStep),
        checkStep(rowBytes<Out>(roiSize.width), dstStep), checkStep(rowBytes<Square>(elements), sqrStep),
        checkStepAlignment<Sum>(srcStep), checkStepAlignment<Out>(dstStep),
        checkStepAlignment<Square>(sqrStep), errorIf(rect.x < 0 || rect.y < 0, lumStatusSizeError),
        checkCount(rect.width, rect.height));
}

/// The element of an integral image at a column and a row, either of which may lie before its first.
template <class T> Image<const T> seenFrom(Image<const T> image, std::ptrdiff_t column, std::ptrdiff_t row) {
    return {image.row(row) + column, image.step};
}

template <Shape shape, class T> kernels::Corners<T> cornersIn(Image<const T> image, LumRect rect) {
    const std::ptrdiff_t x = rect.x;
    const std::ptrdiff_t y = rect.y;
    const std::ptrdiff_t w = rect.width;
    const std::ptrdiff_t h = rect.height;
    if constexpr (shape == Shape::upright)
        return {seenFrom(image, x + w, y + h), seenFrom(image, x + w, y), seenFrom(image, x, y),
                seenFrom(image, x, y + h)};
    else
        return {seenFrom(image, x - y, x + y), seenFrom(image, x - y + w, x + y + w),
                seenFrom(image, x - y + w - h, x + y + w + h), seenFrom(image, x - y - h, x + y + h)};
}

template <Shape shape> double pixelsIn(LumRect rect) {
    const double sides = static_cast<double>(rect.width) * static_cast<double>(rect.height);
    return shape == Shape::upright ? sides : 2 * sides;
}

/// 2 to the power of minus the factor, by a shift of a signed 32-bit 1 whose count is taken modulo 32. A
/// shift by 31 therefore gives a negative scale.
double scaleOf(int scaleFactor) {
    const auto factor = static_cast<unsigned>(scaleFactor);
    const auto shifted = [](unsigned count) {
        return static_cast<double>(static_cast<Lum32s>(1U << count % 32));
    };
    return scaleFactor < 0 ? shifted(0 - factor) : 1.0 / shifted(factor);
}

} // namespace

template <Shape shape>
LumStatus rectStdDevScaled(const Lum32s* src, int srcStep, const Lum32s* sqr, int sqrStep, Lum32s* dst,
                           int dstStep, LumSize roiSize, LumRect rect, int scaleFactor) {
    if (auto s = check<shape>(src, srcStep, sqr, sqrStep, dst, dstStep, roiSize, rect)) return s;
    kernels::scaledDeviation<shape>(cornersIn<shape, Lum32s>({src, srcStep}, rect),
                                    cornersIn<shape, Lum32s>({sqr, sqrStep}, rect), {dst, dstStep}, roiSize,
                                    pixelsIn<shape>(rect), scaleOf(scaleFactor));
    return lumStatusOk;
}

template <Shape shape, class Sum>
LumStatus rectStdDev(const Sum* src, int srcStep, const Lum64f* sqr, int sqrStep, Lum32f* dst, int dstStep,
                     LumSize roiSize, LumRect rect) {
    if (auto s = check<shape>(src, srcStep, sqr, sqrStep, dst, dstStep, roiSize, rect)) return s;
    kernels::deviation<shape, Sum>(cornersIn<shape, Sum>({src, srcStep}, rect),
                                   cornersIn<shape, Lum64f>({sqr, sqrStep}, rect), {dst, dstStep}, roiSize,
                                   pixelsIn<shape>(rect));
    return lumStatusOk;
}

LUM_INSTANCES(rectStdDevScaled, (Shape::upright), (Shape::tilted));
LUM_INSTANCES(rectStdDev, (Shape::upright, Lum32s), (Shape::upright, Lum32f), (Shape::tilted, Lum32s),
              (Shape::tilted, Lum32f));

} // namespace lum

// The deviations of rectangles under test: members by shape and element types, and integral images to place the
// rectangles in.
#pragma once

#include <gtest/gtest.h>
#include <type_traits>

#include "kernels/integral/rect_std_dev.h"
#include "lumcv.h"
#include "support/guarded_image.h"

namespace deviations {

using lum::kernels::Shape;

/// The arguments of a member; only those of integers take the scale factor.
template <class Sum, class Square, class Out> struct Call {
    const Sum* src;
    int srcStep;
    const Square* sqr;
    int sqrStep;
    Out* dst;
    int dstStep;
    LumSize size;
    LumRect rect;
    int scaleFactor = 0;
};

/// One member: its shape, its elements and its export.
template <Shape itsShape, class SumType, class SquareType, class OutType, auto member> struct Member {
    static constexpr Shape shape = itsShape;
    using Sum = SumType;
    using Square = SquareType;
    using Out = OutType;
    using Arguments = Call<Sum, Square, Out>;

    static LumStatus call(const Arguments& a) {
        if constexpr (std::is_integral_v<Out>)
            return member(a.src, a.srcStep, a.sqr, a.sqrStep, a.dst, a.dstStep, a.size, a.rect,
                          a.scaleFactor);
        else
            return member(a.src, a.srcStep, a.sqr, a.sqrStep, a.dst, a.dstStep, a.size, a.rect);
    }
};
using Scaled = Member<Shape::upright, Lum32s, Lum32s, Lum32s, lumiRectStdDev_32s_C1RSfs>;
using Members =
    testing::Types<Scaled, Member<Shape::upright, Lum32s, Lum64f, Lum32f, lumiRectStdDev_32s32f_C1R>,
                   Member<Shape::upright, Lum32f, Lum64f, Lum32f, lumiRectStdDev_32f_C1R>,
                   Member<Shape::tilted, Lum32s, Lum32s, Lum32s, lumiTiltedRectStdDev_32s_C1RSfs>,
                   Member<Shape::tilted, Lum32s, Lum64f, Lum32f, lumiTiltedRectStdDev_32s32f_C1R>,
                   Member<Shape::tilted, Lum32f, Lum64f, Lum32f, lumiTiltedRectStdDev_32f_C1R>>;

/// Corner k of the rectangle: its column and row where the result is (0, 0).
template <Shape shape> LumPoint corner(LumRect r, int k) {
    if (shape == Shape::upright) {
        const LumPoint corners[] = {
            {r.x + r.width, r.y + r.height}, {r.x + r.width, r.y}, {r.x, r.y}, {r.x, r.y + r.height}};
        return corners[k];
    }
    const int row = r.x + r.y;
    const int column = r.x - r.y;
    const LumPoint corners[] = {{column, row},
                                {column + r.width, row + r.width},
                                {column + r.width - r.height, row + r.width + r.height},
                                {column - r.height, row + r.height}};
    return corners[k];
}

/// An integral image in which every corner of a rectangle lies, whatever the shape, and its element (0, 0).
template <class T> struct IntegralImage {
    support::GuardedImage<T> image;
    int column;

    IntegralImage(LumSize places, LumRect r, int padding = 0)
        : image(places.width + 2 * (r.x + r.y + r.width + r.height),
                places.height + r.x + r.y + r.width + r.height, {.padding = padding}),
          column(r.y + r.height) {}

    /// Elements and rows as given, element (0, 0) in the given column.
    IntegralImage(LumSize whole, int columnOfFirst)
        : image(whole.width, whole.height), column(columnOfFirst) {}

    const T* data() const { return image.data() + column; }
    int step() const { return image.step(); }
    T at(int x, int y) const { return image.at(x + column, y); }
};

/// The arguments of a call that fills an image.
template <class M>
typename M::Arguments callOf(const IntegralImage<typename M::Sum>& src,
                             const IntegralImage<typename M::Square>& sqr,
                             support::GuardedImage<typename M::Out>& dst, LumRect rect, int scaleFactor = 0) {
    return {src.data(), src.step(), sqr.data(), sqr.step(), dst.data(),
            dst.step(), dst.size(), rect,       scaleFactor};
}
template <class M>
LumStatus run(const IntegralImage<typename M::Sum>& src, const IntegralImage<typename M::Square>& sqr,
              support::GuardedImage<typename M::Out>& dst, LumRect rect, int scaleFactor = 0) {
    return M::call(callOf<M>(src, sqr, dst, rect, scaleFactor));
}

} // namespace deviations

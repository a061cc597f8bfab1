#include "rows.h"

#include <memory>

namespace bench {
namespace {

/// An integral image of the scene; tilted ones have two columns and rows more than the scene.
template <class T> Plane<T> integralPlane(int extra = 1) {
    return Plane<T>(1, height + extra, width + extra);
}

template <class Source, class Sum, class Call> Setup sums(Call call, int extra = 1) {
    return [call, extra] {
        struct Images {
            Plane<Source> src;
            Plane<Sum> dst;
        };
        auto images = std::make_shared<Images>(sceneAs<Source>(), integralPlane<Sum>(extra));
        return [images, call] {
            call(images->src.data, images->src.step(), images->dst.data, images->dst.step());
        };
    };
}

template <class Sum, class Square, class Call> Setup sumsAndSquares(Call call, int extra = 1) {
    return [call, extra] {
        struct Images {
            Plane<Lum8u> src;
            Plane<Sum> dst;
            Plane<Square> sqr;
        };
        auto images = std::make_shared<Images>(sceneAs<Lum8u>(), integralPlane<Sum>(extra),
                                               integralPlane<Square>(extra));
        return [images, call] {
            call(images->src.data, images->src.step(), images->dst.data, images->dst.step(), images->sqr.data,
                 images->sqr.step(), size, Sum{0}, Square{0});
        };
    };
}

/// Deviations of a rectangle from integral images that `fill` makes of the scene. A tilted rectangle lies so far to
/// the right that no corner's column is negative.
template <class Sum, class Square, class Out, class Fill, class Call>
void deviationRow(const char* name, Fill fill, Call call, bool tilted = false) {
    const LumRect rectangle{tilted ? 21 : 1, 1, 20, 20};
    const LumSize places{width - (tilted ? 63 : 21), height - (tilted ? 63 : 21)};
    const auto setup = [=] {
        struct Images {
            Plane<Sum> sum;
            Plane<Square> square;
            Plane<Out> dst;
        };
        const int extra = tilted ? 2 : 1;
        auto images =
            std::make_shared<Images>(integralPlane<Sum>(extra), integralPlane<Square>(extra), Plane<Out>());
        fill(scene().data, scene().step(), images->sum.data, images->sum.step(), images->square.data,
             images->square.step(), size, Sum{0}, Square{0});
        return [=] {
            call(images->sum.data, images->sum.step(), images->square.data, images->square.step(),
                 images->dst.data, images->dst.step(), places, rectangle);
        };
    };
    row(name, setup, static_cast<double>(places.width) * places.height);
}

/// A deviation with a scale factor as a call like those without.
template <class Member> auto halved(Member member) {
    return [member](const Lum32s* src, int srcStep, const Lum32s* sqr, int sqrStep, Lum32s* dst, int dstStep,
                    LumSize roiSize, LumRect rect) {
        return member(src, srcStep, sqr, sqrStep, dst, dstStep, roiSize, rect, 1);
    };
}

const RowFile file([] {
    row("Integral_8u32s", sums<Lum8u, Lum32s>([](const Lum8u* src, int srcStep, Lum32s* dst, int dstStep) {
            lumiIntegral_8u32s_C1R(src, srcStep, dst, dstStep, size, 0);
        }));
    row("Integral_8u32f", sums<Lum8u, Lum32f>([](const Lum8u* src, int srcStep, Lum32f* dst, int dstStep) {
            lumiIntegral_8u32f_C1R(src, srcStep, dst, dstStep, size, 0);
        }));
    row("Integral_32f", sums<Lum32f, Lum32f>([](const Lum32f* src, int srcStep, Lum32f* dst, int dstStep) {
            lumiIntegral_32f_C1R(src, srcStep, dst, dstStep, size);
        }));
    row("SqrIntegral_8u32s", sumsAndSquares<Lum32s, Lum32s>(lumiSqrIntegral_8u32s_C1R));
    row("SqrIntegral_8u32s64f", sumsAndSquares<Lum32s, Lum64f>(lumiSqrIntegral_8u32s64f_C1R));
    row("SqrIntegral_8u32f64f", sumsAndSquares<Lum32f, Lum64f>(lumiSqrIntegral_8u32f64f_C1R));
    row("TiltedIntegral_8u32s", sums<Lum8u, Lum32s>(
                                    [](const Lum8u* src, int srcStep, Lum32s* dst, int dstStep) {
                                        lumiTiltedIntegral_8u32s_C1R(src, srcStep, dst, dstStep, size, 0);
                                    },
                                    2));
    row("TiltedIntegral_8u32f", sums<Lum8u, Lum32f>(
                                    [](const Lum8u* src, int srcStep, Lum32f* dst, int dstStep) {
                                        lumiTiltedIntegral_8u32f_C1R(src, srcStep, dst, dstStep, size, 0);
                                    },
                                    2));
    row("TiltedSqrIntegral_8u32s", sumsAndSquares<Lum32s, Lum32s>(lumiTiltedSqrIntegral_8u32s_C1R, 2));
    row("TiltedSqrIntegral_8u32s64f", sumsAndSquares<Lum32s, Lum64f>(lumiTiltedSqrIntegral_8u32s64f_C1R, 2));
    row("TiltedSqrIntegral_8u32f64f", sumsAndSquares<Lum32f, Lum64f>(lumiTiltedSqrIntegral_8u32f64f_C1R, 2));
    deviationRow<Lum32s, Lum32s, Lum32s>("RectStdDev_32s", lumiSqrIntegral_8u32s_C1R,
                                         halved(lumiRectStdDev_32s_C1RSfs));
    deviationRow<Lum32s, Lum64f, Lum32f>("RectStdDev_32s32f", lumiSqrIntegral_8u32s64f_C1R,
                                         lumiRectStdDev_32s32f_C1R);
    deviationRow<Lum32f, Lum64f, Lum32f>("RectStdDev_32f", lumiSqrIntegral_8u32f64f_C1R,
                                         lumiRectStdDev_32f_C1R);
    deviationRow<Lum32s, Lum32s, Lum32s>("TiltedRectStdDev_32s", lumiTiltedSqrIntegral_8u32s_C1R,
                                         halved(lumiTiltedRectStdDev_32s_C1RSfs), true);
    deviationRow<Lum32s, Lum64f, Lum32f>("TiltedRectStdDev_32s32f", lumiTiltedSqrIntegral_8u32s64f_C1R,
                                         lumiTiltedRectStdDev_32s32f_C1R, true);
    deviationRow<Lum32f, Lum64f, Lum32f>("TiltedRectStdDev_32f", lumiTiltedSqrIntegral_8u32f64f_C1R,
                                         lumiTiltedRectStdDev_32f_C1R, true);
});

} // namespace

} // namespace bench

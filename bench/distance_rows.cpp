#include "rows.h"

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace bench {
namespace {

/// A picture of edges: 0 where the scene's brightness steps, 255 elsewhere; about one pixel in twenty is 0.
Plane<Lum8u> edges() {
    constexpr int step = 24;
    Plane<Lum8u> plane;
    const Plane<Lum8u>& source = scene();
    for (int i = 0; i < pixels; ++i) {
        const int right = source.data[std::min(i + 1, pixels - 1)];
        const int below = source.data[std::min(i + width, pixels - 1)];
        const int difference = std::abs(right - source.data[i]) + std::abs(below - source.data[i]);
        plane.data[i] = difference >= step ? 0 : 255;
    }
    return plane;
}

template <class T, class Length, class Member> Setup chamfer(Member member, Length a, Length b, Length c) {
    return [=] {
        struct Images {
            Plane<Lum8u> src = edges();
            Plane<T> dst;
            Length metrics[3];
        };
        auto images = std::make_shared<Images>();
        images->metrics[0] = a;
        images->metrics[1] = b;
        images->metrics[2] = c;
        return [images, member] {
            member(images->src.data, images->src.step(), images->dst.data, images->dst.step(), size,
                   images->metrics);
        };
    };
}

Setup trueDistance() {
    struct Images {
        Plane<Lum8u> src = edges();
        Plane<Lum32f> dst;
        std::vector<Lum8u> buffer;
    };
    auto images = std::make_shared<Images>();
    Lum32s bytes = 0;
    lumiTrueDistanceTransformGetBufferSize_8u32f_C1R(size, &bytes);
    images->buffer.resize(static_cast<std::size_t>(bytes));
    return [images] {
        return [images] {
            lumiTrueDistanceTransform_8u32f_C1R(images->src.data, images->src.step(), images->dst.data,
                                                images->dst.step(), size, images->buffer.data());
        };
    };
}

const RowFile file([] {
    row("DistanceTransform_3x3_8u_L1", chamfer<Lum8u>(lumiDistanceTransform_3x3_8u_C1R, 1, 2, 0));
    row("DistanceTransform_3x3_8u_L2", chamfer<Lum8u>(lumiDistanceTransform_3x3_8u_C1R, 2, 3, 0));
    row("DistanceTransform_5x5_8u_L2", chamfer<Lum8u>(lumiDistanceTransform_5x5_8u_C1R, 5, 7, 11));
    row("DistanceTransform_5x5_8u(irregular)", chamfer<Lum8u>(lumiDistanceTransform_5x5_8u_C1R, 5, 4, 6));
    row("DistanceTransform_3x3_8u16u_L1", chamfer<Lum16u>(lumiDistanceTransform_3x3_8u16u_C1R, 1, 2, 0));
    row("DistanceTransform_3x3_8u16u_L2", chamfer<Lum16u>(lumiDistanceTransform_3x3_8u16u_C1R, 2, 3, 0));
    row("DistanceTransform_5x5_8u16u_L2", chamfer<Lum16u>(lumiDistanceTransform_5x5_8u16u_C1R, 5, 7, 11));
    row("DistanceTransform_5x5_8u16u(irregular)",
        chamfer<Lum16u>(lumiDistanceTransform_5x5_8u16u_C1R, 5, 4, 6));
    row("DistanceTransform_3x3_8u32f_L1",
        chamfer<Lum32f>(lumiDistanceTransform_3x3_8u32f_C1R, 1.0F, 2.0F, 0.0F));
    row("DistanceTransform_3x3_8u32f_L2",
        chamfer<Lum32f>(lumiDistanceTransform_3x3_8u32f_C1R, 0.955F, 1.3693F, 0.0F));
    row("DistanceTransform_5x5_8u32f_L2",
        chamfer<Lum32f>(lumiDistanceTransform_5x5_8u32f_C1R, 1.0F, 1.4F, 2.1969F));
    row("DistanceTransform_5x5_8u32f(irregular)",
        chamfer<Lum32f>(lumiDistanceTransform_5x5_8u32f_C1R, 5.0F, 4.0F, 6.0F));
    row("TrueDistanceTransform_8u32f", trueDistance());
});

} // namespace

} // namespace bench

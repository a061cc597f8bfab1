#include "rows.h"

#include <memory>

namespace bench {
namespace {

template <class T, class Call> Setup differenceOf(Call call, int channels = 1) {
    return [call, channels] {
        struct Images {
            Plane<T> a, b, dst;
        };
        auto images =
            std::make_shared<Images>(sceneAs<T>(channels), sceneAs<T>(channels, true), Plane<T>(channels));
        return [images, call] {
            call(images->a.data, images->a.step(), images->b.data, images->b.step(), images->dst.data,
                 images->dst.step(), size);
        };
    };
}

template <class T, class Value, class Call> Setup differenceToConstant(Call call, Value value) {
    return [call, value] {
        struct Images {
            Plane<T> src, dst;
        };
        auto images = std::make_shared<Images>(sceneAs<T>(), Plane<T>());
        return [images, call, value] {
            call(images->src.data, images->src.step(), images->dst.data, images->dst.step(), size, value);
        };
    };
}

const RowFile file([] {
    row("AbsDiff_8u", differenceOf<Lum8u>(lumiAbsDiff_8u_C1R));
    row("AbsDiff_8u_C3", differenceOf<Lum8u>(lumiAbsDiff_8u_C3R, 3));
    row("AbsDiff_16u", differenceOf<Lum16u>(lumiAbsDiff_16u_C1R));
    row("AbsDiff_32f", differenceOf<Lum32f>(lumiAbsDiff_32f_C1R));
    row("AbsDiff_16u_streaming", withStreamingStores(differenceOf<Lum16u>(lumiAbsDiff_16u_C1R)));
    row("AbsDiff_32f_streaming", withStreamingStores(differenceOf<Lum32f>(lumiAbsDiff_32f_C1R)));
    row("AbsDiffC_8u", differenceToConstant<Lum8u>(lumiAbsDiffC_8u_C1R, 100));
    row("AbsDiffC_16u", differenceToConstant<Lum16u>(lumiAbsDiffC_16u_C1R, 100));
    row("AbsDiffC_32f", differenceToConstant<Lum32f>(lumiAbsDiffC_32f_C1R, 100.0F));
});

} // namespace

} // namespace bench

#include "rows.h"

#include <memory>

namespace bench {
namespace {

constexpr float alpha = 0.0625F;
constexpr int maskPercent = 60;

template <class T> struct Images {
    Plane<T> first = sceneAs<T>();
    Plane<T> second = sceneAs<T>(1, true);
    Plane<Lum8u> selected = mask(maskPercent);
    Plane<Lum32f> sum = sceneAs<Lum32f>();
};

/// The call gets the images of a row; each row has its own.
template <class T, class Call> Setup over(Call call) {
    return [call] {
        auto images = std::make_shared<Images<T>>();
        return [images, call] { call(*images); };
    };
}

template <class T, class Call> Setup added(Call call) {
    return over<T>(
        [call](Images<T>& i) { call(i.first.data, i.first.step(), i.sum.data, i.sum.step(), size); });
}

template <class T, class Call> Setup addedMasked(Call call) {
    return over<T>([call](Images<T>& i) {
        call(i.first.data, i.first.step(), i.selected.data, i.selected.step(), i.sum.data, i.sum.step(),
             size);
    });
}

template <class T, class Call> Setup multiplied(Call call) {
    return over<T>([call](Images<T>& i) {
        call(i.first.data, i.first.step(), i.second.data, i.second.step(), i.sum.data, i.sum.step(), size);
    });
}

template <class T, class Call> Setup multipliedMasked(Call call) {
    return over<T>([call](Images<T>& i) {
        call(i.first.data, i.first.step(), i.second.data, i.second.step(), i.selected.data, i.selected.step(),
             i.sum.data, i.sum.step(), size);
    });
}

template <class T, class Call> Setup weighted(Call call) {
    return over<T>(
        [call](Images<T>& i) { call(i.first.data, i.first.step(), i.sum.data, i.sum.step(), size, alpha); });
}

template <class T, class Call> Setup weightedMasked(Call call) {
    return over<T>([call](Images<T>& i) {
        call(i.first.data, i.first.step(), i.selected.data, i.selected.step(), i.sum.data, i.sum.step(), size,
             alpha);
    });
}

Setup weightedOutOfPlace() {
    return over<Lum32f>([](Images<Lum32f>& i) {
        lumiAddWeighted_32f_C1R(i.first.data, i.first.step(), i.second.data, i.second.step(), i.sum.data,
                                i.sum.step(), size, alpha);
    });
}

const RowFile file([] {
    row("Add_8u32f", added<Lum8u>(lumiAdd_8u32f_C1IR));
    row("Add_16u32f", added<Lum16u>(lumiAdd_16u32f_C1IR));
    row("Add_8u32f_mask", addedMasked<Lum8u>(lumiAdd_8u32f_C1IMR));
    row("Add_16u32f_mask", addedMasked<Lum16u>(lumiAdd_16u32f_C1IMR));
    row("Add_32f_mask", addedMasked<Lum32f>(lumiAdd_32f_C1IMR));
    row("AddSquare_8u32f", added<Lum8u>(lumiAddSquare_8u32f_C1IR));
    row("AddSquare_16u32f", added<Lum16u>(lumiAddSquare_16u32f_C1IR));
    row("AddSquare_32f", added<Lum32f>(lumiAddSquare_32f_C1IR));
    row("AddSquare_8u32f_mask", addedMasked<Lum8u>(lumiAddSquare_8u32f_C1IMR));
    row("AddSquare_16u32f_mask", addedMasked<Lum16u>(lumiAddSquare_16u32f_C1IMR));
    row("AddSquare_32f_mask", addedMasked<Lum32f>(lumiAddSquare_32f_C1IMR));
    row("AddProduct_8u32f", multiplied<Lum8u>(lumiAddProduct_8u32f_C1IR));
    row("AddProduct_16u32f", multiplied<Lum16u>(lumiAddProduct_16u32f_C1IR));
    row("AddProduct_32f", multiplied<Lum32f>(lumiAddProduct_32f_C1IR));
    row("AddProduct_8u32f_mask", multipliedMasked<Lum8u>(lumiAddProduct_8u32f_C1IMR));
    row("AddProduct_16u32f_mask", multipliedMasked<Lum16u>(lumiAddProduct_16u32f_C1IMR));
    row("AddProduct_32f_mask", multipliedMasked<Lum32f>(lumiAddProduct_32f_C1IMR));
    row("AddWeighted_8u32f", weighted<Lum8u>(lumiAddWeighted_8u32f_C1IR));
    row("AddWeighted_16u32f", weighted<Lum16u>(lumiAddWeighted_16u32f_C1IR));
    row("AddWeighted_32f", weighted<Lum32f>(lumiAddWeighted_32f_C1IR));
    row("AddWeighted_8u32f_mask", weightedMasked<Lum8u>(lumiAddWeighted_8u32f_C1IMR));
    row("AddWeighted_16u32f_mask", weightedMasked<Lum16u>(lumiAddWeighted_16u32f_C1IMR));
    row("AddWeighted_32f_mask", weightedMasked<Lum32f>(lumiAddWeighted_32f_C1IMR));
    row("AddWeighted_32f_outofplace", weightedOutOfPlace());
});

} // namespace
} // namespace bench

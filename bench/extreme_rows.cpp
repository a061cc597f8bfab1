#include "rows.h"

#include <memory>

namespace bench {
namespace {

struct Found {
    Lum32f minVal, maxVal;
    LumPoint minIndex, maxIndex;
};

template <class T, class Call> Setup extremes(Call call, int channels, bool masked) {
    return [call, channels, masked] {
        struct Images {
            Plane<T> src;
            Plane<Lum8u> selection;
            Found found;
        };
        auto images = std::make_shared<Images>(sceneAs<T>(channels), masked ? mask(50) : Plane<Lum8u>());
        return [images, call] { call(images->src, images->selection, images->found); };
    };
}

template <class T, class Member> Setup plain(Member member) {
    return extremes<T>(
        [member](const Plane<T>& src, const Plane<Lum8u>&, Found& f) {
            member(src.data, src.step(), size, &f.minVal, &f.maxVal, &f.minIndex, &f.maxIndex);
        },
        1, false);
}

template <class T, class Member> Setup minimum(Member member) {
    return extremes<T>(
        [member](const Plane<T>& src, const Plane<Lum8u>&, Found& f) {
            member(src.data, src.step(), size, &f.minVal, nullptr, &f.minIndex, nullptr);
        },
        1, false);
}

template <class T, class Member> Setup masked(Member member) {
    return extremes<T>(
        [member](const Plane<T>& src, const Plane<Lum8u>& selection, Found& f) {
            member(src.data, src.step(), selection.data, selection.step(), size, &f.minVal, &f.maxVal,
                   &f.minIndex, &f.maxIndex);
        },
        1, true);
}

template <class T, class Member> Setup ofChannel(Member member) {
    return extremes<T>(
        [member](const Plane<T>& src, const Plane<Lum8u>&, Found& f) {
            member(src.data, src.step(), size, 2, &f.minVal, &f.maxVal, &f.minIndex, &f.maxIndex);
        },
        3, false);
}

template <class T, class Member> Setup maskedOfChannel(Member member) {
    return extremes<T>(
        [member](const Plane<T>& src, const Plane<Lum8u>& selection, Found& f) {
            member(src.data, src.step(), selection.data, selection.step(), size, 2, &f.minVal, &f.maxVal,
                   &f.minIndex, &f.maxIndex);
        },
        3, true);
}

const RowFile file([] {
    row("MinMaxIndx_8u", plain<Lum8u>(lumiMinMaxIndx_8u_C1R));
    row("MinMaxIndx_16u", plain<Lum16u>(lumiMinMaxIndx_16u_C1R));
    row("MinMaxIndx_32f", plain<Lum32f>(lumiMinMaxIndx_32f_C1R));
    row("MinMaxIndx_8u_min", minimum<Lum8u>(lumiMinMaxIndx_8u_C1R));
    row("MinMaxIndx_32f_min", minimum<Lum32f>(lumiMinMaxIndx_32f_C1R));
    row("MinMaxIndx_8u_mask", masked<Lum8u>(lumiMinMaxIndx_8u_C1MR));
    row("MinMaxIndx_16u_mask", masked<Lum16u>(lumiMinMaxIndx_16u_C1MR));
    row("MinMaxIndx_32f_mask", masked<Lum32f>(lumiMinMaxIndx_32f_C1MR));
    row("MinMaxIndx_8u_C3C", ofChannel<Lum8u>(lumiMinMaxIndx_8u_C3CR));
    row("MinMaxIndx_16u_C3C", ofChannel<Lum16u>(lumiMinMaxIndx_16u_C3CR));
    row("MinMaxIndx_32f_C3C", ofChannel<Lum32f>(lumiMinMaxIndx_32f_C3CR));
    row("MinMaxIndx_8u_C3C_mask", maskedOfChannel<Lum8u>(lumiMinMaxIndx_8u_C3CMR));
    row("MinMaxIndx_16u_C3C_mask", maskedOfChannel<Lum16u>(lumiMinMaxIndx_16u_C3CMR));
    row("MinMaxIndx_32f_C3C_mask", maskedOfChannel<Lum32f>(lumiMinMaxIndx_32f_C3CMR));
});

} // namespace

} // namespace bench

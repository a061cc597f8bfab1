#include "rows.h"

#include <memory>

namespace bench {
namespace {

constexpr int maskPercent = 60;
constexpr int coi = 2;

/// A row's images, and where it leaves its results.
template <class T> struct Images {
    Plane<T> src;
    Plane<Lum8u> selected = mask(maskPercent);
    Lum64f mean = 0;
    Lum64f stdDev = 0;

    explicit Images(int channels) : src(sceneAs<T>(channels)) {}
};

template <class T, class Call> Setup over(int channels, Call call) {
    return [channels, call] {
        auto images = std::make_shared<Images<T>>(channels);
        return [images, call] { call(*images); };
    };
}

template <class T, class Call> Setup meanMasked(Call call) {
    return over<T>(1, [call](Images<T>& i) {
        call(i.src.data, i.src.step(), i.selected.data, i.selected.step(), size, &i.mean);
    });
}

template <class T, class Call> Setup meanOfChannelMasked(Call call) {
    return over<T>(3, [call](Images<T>& i) {
        call(i.src.data, i.src.step(), i.selected.data, i.selected.step(), size, coi, &i.mean);
    });
}

template <class T, class Call> Setup meanStdDev(Call call) {
    return over<T>(1, [call](Images<T>& i) { call(i.src.data, i.src.step(), size, &i.mean, &i.stdDev); });
}

template <class T, class Call> Setup meanStdDevMasked(Call call) {
    return over<T>(1, [call](Images<T>& i) {
        call(i.src.data, i.src.step(), i.selected.data, i.selected.step(), size, &i.mean, &i.stdDev);
    });
}

template <class T, class Call> Setup meanStdDevOfChannel(Call call) {
    return over<T>(3,
                   [call](Images<T>& i) { call(i.src.data, i.src.step(), size, coi, &i.mean, &i.stdDev); });
}

template <class T, class Call> Setup meanStdDevOfChannelMasked(Call call) {
    return over<T>(3, [call](Images<T>& i) {
        call(i.src.data, i.src.step(), i.selected.data, i.selected.step(), size, coi, &i.mean, &i.stdDev);
    });
}

/// Values so close to one another that the deviation takes its second pass.
Setup meanStdDevOfFlatScene() {
    return [] {
        auto images = std::make_shared<Images<Lum32f>>(1);
        for (int i = 0; i < pixels; ++i) images->src.data[i] += 10000;
        return [images] {
            lumiMean_StdDev_32f_C1R(images->src.data, images->src.step(), size, &images->mean,
                                    &images->stdDev);
        };
    };
}

const RowFile file([] {
    row("Mean_8u_mask", meanMasked<Lum8u>(lumiMean_8u_C1MR));
    row("Mean_16u_mask", meanMasked<Lum16u>(lumiMean_16u_C1MR));
    row("Mean_32f_mask", meanMasked<Lum32f>(lumiMean_32f_C1MR));
    row("Mean_8u_C3C_mask", meanOfChannelMasked<Lum8u>(lumiMean_8u_C3CMR));
    row("Mean_16u_C3C_mask", meanOfChannelMasked<Lum16u>(lumiMean_16u_C3CMR));
    row("Mean_32f_C3C_mask", meanOfChannelMasked<Lum32f>(lumiMean_32f_C3CMR));
    row("Mean_StdDev_8u", meanStdDev<Lum8u>(lumiMean_StdDev_8u_C1R));
    row("Mean_StdDev_16u", meanStdDev<Lum16u>(lumiMean_StdDev_16u_C1R));
    row("Mean_StdDev_32f", meanStdDev<Lum32f>(lumiMean_StdDev_32f_C1R));
    row("Mean_StdDev_32f_two_passes", meanStdDevOfFlatScene());
    row("Mean_StdDev_8u_mask", meanStdDevMasked<Lum8u>(lumiMean_StdDev_8u_C1MR));
    row("Mean_StdDev_16u_mask", meanStdDevMasked<Lum16u>(lumiMean_StdDev_16u_C1MR));
    row("Mean_StdDev_32f_mask", meanStdDevMasked<Lum32f>(lumiMean_StdDev_32f_C1MR));
    row("Mean_StdDev_8u_C3C", meanStdDevOfChannel<Lum8u>(lumiMean_StdDev_8u_C3CR));
    row("Mean_StdDev_16u_C3C", meanStdDevOfChannel<Lum16u>(lumiMean_StdDev_16u_C3CR));
    row("Mean_StdDev_32f_C3C", meanStdDevOfChannel<Lum32f>(lumiMean_StdDev_32f_C3CR));
    row("Mean_StdDev_8u_C3C_mask", meanStdDevOfChannelMasked<Lum8u>(lumiMean_StdDev_8u_C3CMR));
    row("Mean_StdDev_16u_C3C_mask", meanStdDevOfChannelMasked<Lum16u>(lumiMean_StdDev_16u_C3CMR));
    row("Mean_StdDev_32f_C3C_mask", meanStdDevOfChannelMasked<Lum32f>(lumiMean_StdDev_32f_C3CMR));
});

} // namespace
} // namespace bench

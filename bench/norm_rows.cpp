#include "rows.h"

#include <memory>

namespace bench {
namespace {

template <class T, class Call> Setup under(Call call, int channels) {
    return [call, channels] {
        struct Images {
            Plane<T> a, b;
            Plane<Lum8u> selection;
            Lum64f value;
        };
        auto images =
            std::make_shared<Images>(sceneAs<T>(channels), sceneAs<T>(channels, true), mask(50), 0.0);
        return [images, call] { call(images->a, images->b, images->selection, &images->value); };
    };
}

template <class T, class Member> Setup norm(Member member) {
    return under<T>(
        [member](const Plane<T>& a, const Plane<T>&, const Plane<Lum8u>& selection, Lum64f* value) {
            member(a.data, a.step(), selection.data, selection.step(), size, value);
        },
        1);
}

template <class T, class Member> Setup normOfChannel(Member member) {
    return under<T>(
        [member](const Plane<T>& a, const Plane<T>&, const Plane<Lum8u>& selection, Lum64f* value) {
            member(a.data, a.step(), selection.data, selection.step(), size, 2, value);
        },
        3);
}

template <class T, class Member> Setup ofTwo(Member member) {
    return under<T>(
        [member](const Plane<T>& a, const Plane<T>& b, const Plane<Lum8u>& selection, Lum64f* value) {
            member(a.data, a.step(), b.data, b.step(), selection.data, selection.step(), size, value);
        },
        1);
}

template <class T, class Member> Setup ofTwoChannels(Member member) {
    return under<T>(
        [member](const Plane<T>& a, const Plane<T>& b, const Plane<Lum8u>& selection, Lum64f* value) {
            member(a.data, a.step(), b.data, b.step(), selection.data, selection.step(), size, 2, value);
        },
        3);
}

const RowFile file([] {
    row("Norm_Inf_8u_mask", norm<Lum8u>(lumiNorm_Inf_8u_C1MR));
    row("Norm_L1_8u_mask", norm<Lum8u>(lumiNorm_L1_8u_C1MR));
    row("Norm_L2_8u_mask", norm<Lum8u>(lumiNorm_L2_8u_C1MR));
    row("Norm_Inf_8u_C3C_mask", normOfChannel<Lum8u>(lumiNorm_Inf_8u_C3CMR));
    row("Norm_L1_8u_C3C_mask", normOfChannel<Lum8u>(lumiNorm_L1_8u_C3CMR));
    row("Norm_L2_8u_C3C_mask", normOfChannel<Lum8u>(lumiNorm_L2_8u_C3CMR));
    row("Norm_Inf_16u_mask", norm<Lum16u>(lumiNorm_Inf_16u_C1MR));
    row("Norm_L1_16u_mask", norm<Lum16u>(lumiNorm_L1_16u_C1MR));
    row("Norm_L2_16u_mask", norm<Lum16u>(lumiNorm_L2_16u_C1MR));
    row("Norm_Inf_16u_C3C_mask", normOfChannel<Lum16u>(lumiNorm_Inf_16u_C3CMR));
    row("Norm_L1_16u_C3C_mask", normOfChannel<Lum16u>(lumiNorm_L1_16u_C3CMR));
    row("Norm_L2_16u_C3C_mask", normOfChannel<Lum16u>(lumiNorm_L2_16u_C3CMR));
    row("Norm_Inf_32f_mask", norm<Lum32f>(lumiNorm_Inf_32f_C1MR));
    row("Norm_L1_32f_mask", norm<Lum32f>(lumiNorm_L1_32f_C1MR));
    row("Norm_L2_32f_mask", norm<Lum32f>(lumiNorm_L2_32f_C1MR));
    row("Norm_Inf_32f_C3C_mask", normOfChannel<Lum32f>(lumiNorm_Inf_32f_C3CMR));
    row("Norm_L1_32f_C3C_mask", normOfChannel<Lum32f>(lumiNorm_L1_32f_C3CMR));
    row("Norm_L2_32f_C3C_mask", normOfChannel<Lum32f>(lumiNorm_L2_32f_C3CMR));
    row("NormDiff_Inf_8u_mask", ofTwo<Lum8u>(lumiNormDiff_Inf_8u_C1MR));
    row("NormDiff_L1_8u_mask", ofTwo<Lum8u>(lumiNormDiff_L1_8u_C1MR));
    row("NormDiff_L2_8u_mask", ofTwo<Lum8u>(lumiNormDiff_L2_8u_C1MR));
    row("NormDiff_Inf_8u_C3C_mask", ofTwoChannels<Lum8u>(lumiNormDiff_Inf_8u_C3CMR));
    row("NormDiff_L1_8u_C3C_mask", ofTwoChannels<Lum8u>(lumiNormDiff_L1_8u_C3CMR));
    row("NormDiff_L2_8u_C3C_mask", ofTwoChannels<Lum8u>(lumiNormDiff_L2_8u_C3CMR));
    row("NormDiff_Inf_16u_mask", ofTwo<Lum16u>(lumiNormDiff_Inf_16u_C1MR));
    row("NormDiff_L1_16u_mask", ofTwo<Lum16u>(lumiNormDiff_L1_16u_C1MR));
    row("NormDiff_L2_16u_mask", ofTwo<Lum16u>(lumiNormDiff_L2_16u_C1MR));
    row("NormDiff_Inf_16u_C3C_mask", ofTwoChannels<Lum16u>(lumiNormDiff_Inf_16u_C3CMR));
    row("NormDiff_L1_16u_C3C_mask", ofTwoChannels<Lum16u>(lumiNormDiff_L1_16u_C3CMR));
    row("NormDiff_L2_16u_C3C_mask", ofTwoChannels<Lum16u>(lumiNormDiff_L2_16u_C3CMR));
    row("NormDiff_Inf_32f_mask", ofTwo<Lum32f>(lumiNormDiff_Inf_32f_C1MR));
    row("NormDiff_L1_32f_mask", ofTwo<Lum32f>(lumiNormDiff_L1_32f_C1MR));
    row("NormDiff_L2_32f_mask", ofTwo<Lum32f>(lumiNormDiff_L2_32f_C1MR));
    row("NormDiff_Inf_32f_C3C_mask", ofTwoChannels<Lum32f>(lumiNormDiff_Inf_32f_C3CMR));
    row("NormDiff_L1_32f_C3C_mask", ofTwoChannels<Lum32f>(lumiNormDiff_L1_32f_C3CMR));
    row("NormDiff_L2_32f_C3C_mask", ofTwoChannels<Lum32f>(lumiNormDiff_L2_32f_C3CMR));
    row("NormRel_Inf_8u_mask", ofTwo<Lum8u>(lumiNormRel_Inf_8u_C1MR));
    row("NormRel_L1_8u_mask", ofTwo<Lum8u>(lumiNormRel_L1_8u_C1MR));
    row("NormRel_L2_8u_mask", ofTwo<Lum8u>(lumiNormRel_L2_8u_C1MR));
    row("NormRel_Inf_8u_C3C_mask", ofTwoChannels<Lum8u>(lumiNormRel_Inf_8u_C3CMR));
    row("NormRel_L1_8u_C3C_mask", ofTwoChannels<Lum8u>(lumiNormRel_L1_8u_C3CMR));
    row("NormRel_L2_8u_C3C_mask", ofTwoChannels<Lum8u>(lumiNormRel_L2_8u_C3CMR));
    row("NormRel_Inf_16u_mask", ofTwo<Lum16u>(lumiNormRel_Inf_16u_C1MR));
    row("NormRel_L1_16u_mask", ofTwo<Lum16u>(lumiNormRel_L1_16u_C1MR));
    row("NormRel_L2_16u_mask", ofTwo<Lum16u>(lumiNormRel_L2_16u_C1MR));
    row("NormRel_Inf_16u_C3C_mask", ofTwoChannels<Lum16u>(lumiNormRel_Inf_16u_C3CMR));
    row("NormRel_L1_16u_C3C_mask", ofTwoChannels<Lum16u>(lumiNormRel_L1_16u_C3CMR));
    row("NormRel_L2_16u_C3C_mask", ofTwoChannels<Lum16u>(lumiNormRel_L2_16u_C3CMR));
    row("NormRel_Inf_32f_mask", ofTwo<Lum32f>(lumiNormRel_Inf_32f_C1MR));
    row("NormRel_L1_32f_mask", ofTwo<Lum32f>(lumiNormRel_L1_32f_C1MR));
    row("NormRel_L2_32f_mask", ofTwo<Lum32f>(lumiNormRel_L2_32f_C1MR));
    row("NormRel_Inf_32f_C3C_mask", ofTwoChannels<Lum32f>(lumiNormRel_Inf_32f_C3CMR));
    row("NormRel_L1_32f_C3C_mask", ofTwoChannels<Lum32f>(lumiNormRel_L1_32f_C3CMR));
    row("NormRel_L2_32f_C3C_mask", ofTwoChannels<Lum32f>(lumiNormRel_L2_32f_C3CMR));
});

} // namespace

} // namespace bench

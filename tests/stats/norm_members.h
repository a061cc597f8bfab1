// The 54 exported norms by norm, element type and layout.
#pragma once

#include "kernels/stats/norm.h"
#include "lumcv.h"

namespace support {

using lum::kernels::NormKind;

template <NormKind kind, class T> struct NormMembers;

template <> struct NormMembers<NormKind::inf, Lum8u> {
    using Element = Lum8u;
    static constexpr NormKind kind = NormKind::inf;
    static constexpr auto image = lumiNorm_Inf_8u_C1MR;
    static constexpr auto imageChannel = lumiNorm_Inf_8u_C3CMR;
    static constexpr auto difference = lumiNormDiff_Inf_8u_C1MR;
    static constexpr auto differenceChannel = lumiNormDiff_Inf_8u_C3CMR;
    static constexpr auto relative = lumiNormRel_Inf_8u_C1MR;
    static constexpr auto relativeChannel = lumiNormRel_Inf_8u_C3CMR;
};
template <> struct NormMembers<NormKind::inf, Lum16u> {
    using Element = Lum16u;
    static constexpr NormKind kind = NormKind::inf;
    static constexpr auto image = lumiNorm_Inf_16u_C1MR;
    static constexpr auto imageChannel = lumiNorm_Inf_16u_C3CMR;
    static constexpr auto difference = lumiNormDiff_Inf_16u_C1MR;
    static constexpr auto differenceChannel = lumiNormDiff_Inf_16u_C3CMR;
    static constexpr auto relative = lumiNormRel_Inf_16u_C1MR;
    static constexpr auto relativeChannel = lumiNormRel_Inf_16u_C3CMR;
};
template <> struct NormMembers<NormKind::inf, Lum32f> {
    using Element = Lum32f;
    static constexpr NormKind kind = NormKind::inf;
    static constexpr auto image = lumiNorm_Inf_32f_C1MR;
    static constexpr auto imageChannel = lumiNorm_Inf_32f_C3CMR;
    static constexpr auto difference = lumiNormDiff_Inf_32f_C1MR;
    static constexpr auto differenceChannel = lumiNormDiff_Inf_32f_C3CMR;
    static constexpr auto relative = lumiNormRel_Inf_32f_C1MR;
    static constexpr auto relativeChannel = lumiNormRel_Inf_32f_C3CMR;
};
template <> struct NormMembers<NormKind::l1, Lum8u> {
    using Element = Lum8u;
    static constexpr NormKind kind = NormKind::l1;
    static constexpr auto image = lumiNorm_L1_8u_C1MR;
    static constexpr auto imageChannel = lumiNorm_L1_8u_C3CMR;
    static constexpr auto difference = lumiNormDiff_L1_8u_C1MR;
    static constexpr auto differenceChannel = lumiNormDiff_L1_8u_C3CMR;
    static constexpr auto relative = lumiNormRel_L1_8u_C1MR;
    static constexpr auto relativeChannel = lumiNormRel_L1_8u_C3CMR;
};
template <> struct NormMembers<NormKind::l1, Lum16u> {
    using Element = Lum16u;
    static constexpr NormKind kind = NormKind::l1;
    static constexpr auto image = lumiNorm_L1_16u_C1MR;
    static constexpr auto imageChannel = lumiNorm_L1_16u_C3CMR;
    static constexpr auto difference = lumiNormDiff_L1_16u_C1MR;
    static constexpr auto differenceChannel = lumiNormDiff_L1_16u_C3CMR;
    static constexpr auto relative = lumiNormRel_L1_16u_C1MR;
    static constexpr auto relativeChannel = lumiNormRel_L1_16u_C3CMR;
};
template <> struct NormMembers<NormKind::l1, Lum32f> {
    using Element = Lum32f;
    static constexpr NormKind kind = NormKind::l1;
    static constexpr auto image = lumiNorm_L1_32f_C1MR;
    static constexpr auto imageChannel = lumiNorm_L1_32f_C3CMR;
    static constexpr auto difference = lumiNormDiff_L1_32f_C1MR;
    static constexpr auto differenceChannel = lumiNormDiff_L1_32f_C3CMR;
    static constexpr auto relative = lumiNormRel_L1_32f_C1MR;
    static constexpr auto relativeChannel = lumiNormRel_L1_32f_C3CMR;
};
template <> struct NormMembers<NormKind::l2, Lum8u> {
    using Element = Lum8u;
    static constexpr NormKind kind = NormKind::l2;
    static constexpr auto image = lumiNorm_L2_8u_C1MR;
    static constexpr auto imageChannel = lumiNorm_L2_8u_C3CMR;
    static constexpr auto difference = lumiNormDiff_L2_8u_C1MR;
    static constexpr auto differenceChannel = lumiNormDiff_L2_8u_C3CMR;
    static constexpr auto relative = lumiNormRel_L2_8u_C1MR;
    static constexpr auto relativeChannel = lumiNormRel_L2_8u_C3CMR;
};
template <> struct NormMembers<NormKind::l2, Lum16u> {
    using Element = Lum16u;
    static constexpr NormKind kind = NormKind::l2;
    static constexpr auto image = lumiNorm_L2_16u_C1MR;
    static constexpr auto imageChannel = lumiNorm_L2_16u_C3CMR;
    static constexpr auto difference = lumiNormDiff_L2_16u_C1MR;
    static constexpr auto differenceChannel = lumiNormDiff_L2_16u_C3CMR;
    static constexpr auto relative = lumiNormRel_L2_16u_C1MR;
    static constexpr auto relativeChannel = lumiNormRel_L2_16u_C3CMR;
};
template <> struct NormMembers<NormKind::l2, Lum32f> {
    using Element = Lum32f;
    static constexpr NormKind kind = NormKind::l2;
    static constexpr auto image = lumiNorm_L2_32f_C1MR;
    static constexpr auto imageChannel = lumiNorm_L2_32f_C3CMR;
    static constexpr auto difference = lumiNormDiff_L2_32f_C1MR;
    static constexpr auto differenceChannel = lumiNormDiff_L2_32f_C3CMR;
    static constexpr auto relative = lumiNormRel_L2_32f_C1MR;
    static constexpr auto relativeChannel = lumiNormRel_L2_32f_C3CMR;
};

/// A result and its status; the value is one that no call writes until a call has written.
struct Norm {
    LumStatus status;
    double value;
};
inline constexpr double untouchedNorm = -12345.75;

template <class T> struct ConstImage {
    const T* data;
    int step;
};

// coi 0 calls the single-channel member.

template <class Members, class T = typename Members::Element>
Norm normOf(ConstImage<T> src, ConstImage<Lum8u> mask, LumSize size, int coi = 0) {
    Norm norm{0, untouchedNorm};
    norm.status =
        coi == 0 ? Members::image(src.data, src.step, mask.data, mask.step, size, &norm.value)
                 : Members::imageChannel(src.data, src.step, mask.data, mask.step, size, coi, &norm.value);
    return norm;
}

template <class Members, class T = typename Members::Element>
Norm normOfDifference(ConstImage<T> a, ConstImage<T> b, ConstImage<Lum8u> mask, LumSize size, int coi = 0) {
    Norm norm{0, untouchedNorm};
    norm.status = coi == 0 ? Members::difference(a.data, a.step, b.data, b.step, mask.data, mask.step, size,
                                                 &norm.value)
                           : Members::differenceChannel(a.data, a.step, b.data, b.step, mask.data, mask.step,
                                                        size, coi, &norm.value);
    return norm;
}

template <class Members, class T = typename Members::Element>
Norm relativeNorm(ConstImage<T> a, ConstImage<T> b, ConstImage<Lum8u> mask, LumSize size, int coi = 0) {
    Norm norm{0, untouchedNorm};
    norm.status =
        coi == 0 ? Members::relative(a.data, a.step, b.data, b.step, mask.data, mask.step, size, &norm.value)
                 : Members::relativeChannel(a.data, a.step, b.data, b.step, mask.data, mask.step, size, coi,
                                            &norm.value);
    return norm;
}

} // namespace support

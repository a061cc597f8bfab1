#include "digest/digest.h"

namespace digest {
namespace {

using Row = std::function<void(Digest&, const Case&)>;

/// Of one image or of two; the channel of interest follows the size.
template <class T, int images, int channels, class Member, class... Coi> Row norm(Member member, Coi... coi) {
    return [=](Digest& digest, const Case& c) {
        Picture<T> a(c.size, channels, c.offset), b(c.size, channels, c.offset);
        Picture<Lum8u> mask(c.size);
        a.fill(c.seed);
        b.fill(c.seed + 100);
        mask.fill(c.seed + 200);
        Lum64f value = 0;
        if constexpr (images == 2)
            digest.add(call(member, a, b, mask, c.size, coi..., &value));
        else
            digest.add(call(member, a, mask, c.size, coi..., &value));
        digest.add(value);
    };
}

const RowFile file("norm", [] {
    row("lumiNorm_Inf_8u_C1MR", norm<Lum8u, 1, 1>(lumiNorm_Inf_8u_C1MR));
    row("lumiNorm_Inf_8u_C3CMR", norm<Lum8u, 1, 3>(lumiNorm_Inf_8u_C3CMR, 2));
    row("lumiNorm_Inf_16u_C1MR", norm<Lum16u, 1, 1>(lumiNorm_Inf_16u_C1MR));
    row("lumiNorm_Inf_16u_C3CMR", norm<Lum16u, 1, 3>(lumiNorm_Inf_16u_C3CMR, 2));
    row("lumiNorm_Inf_32f_C1MR", norm<Lum32f, 1, 1>(lumiNorm_Inf_32f_C1MR));
    row("lumiNorm_Inf_32f_C3CMR", norm<Lum32f, 1, 3>(lumiNorm_Inf_32f_C3CMR, 2));
    row("lumiNorm_L1_8u_C1MR", norm<Lum8u, 1, 1>(lumiNorm_L1_8u_C1MR));
    row("lumiNorm_L1_8u_C3CMR", norm<Lum8u, 1, 3>(lumiNorm_L1_8u_C3CMR, 2));
    row("lumiNorm_L1_16u_C1MR", norm<Lum16u, 1, 1>(lumiNorm_L1_16u_C1MR));
    row("lumiNorm_L1_16u_C3CMR", norm<Lum16u, 1, 3>(lumiNorm_L1_16u_C3CMR, 2));
    row("lumiNorm_L1_32f_C1MR", norm<Lum32f, 1, 1>(lumiNorm_L1_32f_C1MR));
    row("lumiNorm_L1_32f_C3CMR", norm<Lum32f, 1, 3>(lumiNorm_L1_32f_C3CMR, 2));
    row("lumiNorm_L2_8u_C1MR", norm<Lum8u, 1, 1>(lumiNorm_L2_8u_C1MR));
    row("lumiNorm_L2_8u_C3CMR", norm<Lum8u, 1, 3>(lumiNorm_L2_8u_C3CMR, 2));
    row("lumiNorm_L2_16u_C1MR", norm<Lum16u, 1, 1>(lumiNorm_L2_16u_C1MR));
    row("lumiNorm_L2_16u_C3CMR", norm<Lum16u, 1, 3>(lumiNorm_L2_16u_C3CMR, 2));
    row("lumiNorm_L2_32f_C1MR", norm<Lum32f, 1, 1>(lumiNorm_L2_32f_C1MR));
    row("lumiNorm_L2_32f_C3CMR", norm<Lum32f, 1, 3>(lumiNorm_L2_32f_C3CMR, 2));
    row("lumiNormDiff_Inf_8u_C1MR", norm<Lum8u, 2, 1>(lumiNormDiff_Inf_8u_C1MR));
    row("lumiNormDiff_Inf_8u_C3CMR", norm<Lum8u, 2, 3>(lumiNormDiff_Inf_8u_C3CMR, 2));
    row("lumiNormDiff_Inf_16u_C1MR", norm<Lum16u, 2, 1>(lumiNormDiff_Inf_16u_C1MR));
    row("lumiNormDiff_Inf_16u_C3CMR", norm<Lum16u, 2, 3>(lumiNormDiff_Inf_16u_C3CMR, 2));
    row("lumiNormDiff_Inf_32f_C1MR", norm<Lum32f, 2, 1>(lumiNormDiff_Inf_32f_C1MR));
    row("lumiNormDiff_Inf_32f_C3CMR", norm<Lum32f, 2, 3>(lumiNormDiff_Inf_32f_C3CMR, 2));
    row("lumiNormDiff_L1_8u_C1MR", norm<Lum8u, 2, 1>(lumiNormDiff_L1_8u_C1MR));
    row("lumiNormDiff_L1_8u_C3CMR", norm<Lum8u, 2, 3>(lumiNormDiff_L1_8u_C3CMR, 2));
    row("lumiNormDiff_L1_16u_C1MR", norm<Lum16u, 2, 1>(lumiNormDiff_L1_16u_C1MR));
    row("lumiNormDiff_L1_16u_C3CMR", norm<Lum16u, 2, 3>(lumiNormDiff_L1_16u_C3CMR, 2));
    row("lumiNormDiff_L1_32f_C1MR", norm<Lum32f, 2, 1>(lumiNormDiff_L1_32f_C1MR));
    row("lumiNormDiff_L1_32f_C3CMR", norm<Lum32f, 2, 3>(lumiNormDiff_L1_32f_C3CMR, 2));
    row("lumiNormDiff_L2_8u_C1MR", norm<Lum8u, 2, 1>(lumiNormDiff_L2_8u_C1MR));
    row("lumiNormDiff_L2_8u_C3CMR", norm<Lum8u, 2, 3>(lumiNormDiff_L2_8u_C3CMR, 2));
    row("lumiNormDiff_L2_16u_C1MR", norm<Lum16u, 2, 1>(lumiNormDiff_L2_16u_C1MR));
    row("lumiNormDiff_L2_16u_C3CMR", norm<Lum16u, 2, 3>(lumiNormDiff_L2_16u_C3CMR, 2));
    row("lumiNormDiff_L2_32f_C1MR", norm<Lum32f, 2, 1>(lumiNormDiff_L2_32f_C1MR));
    row("lumiNormDiff_L2_32f_C3CMR", norm<Lum32f, 2, 3>(lumiNormDiff_L2_32f_C3CMR, 2));
    row("lumiNormRel_Inf_8u_C1MR", norm<Lum8u, 2, 1>(lumiNormRel_Inf_8u_C1MR));
    row("lumiNormRel_Inf_8u_C3CMR", norm<Lum8u, 2, 3>(lumiNormRel_Inf_8u_C3CMR, 2));
    row("lumiNormRel_Inf_16u_C1MR", norm<Lum16u, 2, 1>(lumiNormRel_Inf_16u_C1MR));
    row("lumiNormRel_Inf_16u_C3CMR", norm<Lum16u, 2, 3>(lumiNormRel_Inf_16u_C3CMR, 2));
    row("lumiNormRel_Inf_32f_C1MR", norm<Lum32f, 2, 1>(lumiNormRel_Inf_32f_C1MR));
    row("lumiNormRel_Inf_32f_C3CMR", norm<Lum32f, 2, 3>(lumiNormRel_Inf_32f_C3CMR, 2));
    row("lumiNormRel_L1_8u_C1MR", norm<Lum8u, 2, 1>(lumiNormRel_L1_8u_C1MR));
    row("lumiNormRel_L1_8u_C3CMR", norm<Lum8u, 2, 3>(lumiNormRel_L1_8u_C3CMR, 2));
    row("lumiNormRel_L1_16u_C1MR", norm<Lum16u, 2, 1>(lumiNormRel_L1_16u_C1MR));
    row("lumiNormRel_L1_16u_C3CMR", norm<Lum16u, 2, 3>(lumiNormRel_L1_16u_C3CMR, 2));
    row("lumiNormRel_L1_32f_C1MR", norm<Lum32f, 2, 1>(lumiNormRel_L1_32f_C1MR));
    row("lumiNormRel_L1_32f_C3CMR", norm<Lum32f, 2, 3>(lumiNormRel_L1_32f_C3CMR, 2));
    row("lumiNormRel_L2_8u_C1MR", norm<Lum8u, 2, 1>(lumiNormRel_L2_8u_C1MR));
    row("lumiNormRel_L2_8u_C3CMR", norm<Lum8u, 2, 3>(lumiNormRel_L2_8u_C3CMR, 2));
    row("lumiNormRel_L2_16u_C1MR", norm<Lum16u, 2, 1>(lumiNormRel_L2_16u_C1MR));
    row("lumiNormRel_L2_16u_C3CMR", norm<Lum16u, 2, 3>(lumiNormRel_L2_16u_C3CMR, 2));
    row("lumiNormRel_L2_32f_C1MR", norm<Lum32f, 2, 1>(lumiNormRel_L2_32f_C1MR));
    row("lumiNormRel_L2_32f_C3CMR", norm<Lum32f, 2, 3>(lumiNormRel_L2_32f_C3CMR, 2));
});

} // namespace
} // namespace digest

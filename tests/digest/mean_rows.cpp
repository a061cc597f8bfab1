#include "digest/digest.h"

namespace digest {
namespace {

using Row = std::function<void(Digest&, const Case&)>;

/// The channel of interest follows the size.
template <class T, int channels, bool masked, class Member, class... Coi>
Row mean(Member member, Coi... coi) {
    return [=](Digest& digest, const Case& c) {
        Picture<T> src(c.size, channels, c.offset);
        Picture<Lum8u> mask(c.size);
        src.fill(c.seed);
        mask.fill(c.seed + 100);
        Lum64f value = 0;
        digest.add(call(member, src, mask, c.size, coi..., &value));
        digest.add(value);
    };
}

template <class T, int channels, bool masked, class Member, class... Coi>
Row meanAndDeviation(Member member, Coi... coi) {
    return [=](Digest& digest, const Case& c) {
        Picture<T> src(c.size, channels, c.offset);
        Picture<Lum8u> mask(c.size);
        src.fill(c.seed);
        mask.fill(c.seed + 100);
        Lum64f value = 0;
        Lum64f deviation = 0;
        if constexpr (masked)
            digest.add(call(member, src, mask, c.size, coi..., &value, &deviation));
        else
            digest.add(call(member, src, c.size, coi..., &value, &deviation));
        digest.add(value);
        digest.add(deviation);
    };
}

const RowFile file("mean", [] {
    row("lumiMean_8u_C1MR", mean<Lum8u, 1, true>(lumiMean_8u_C1MR));
    row("lumiMean_8u_C3CMR", mean<Lum8u, 3, true>(lumiMean_8u_C3CMR, 2));
    row("lumiMean_StdDev_8u_C1R", meanAndDeviation<Lum8u, 1, false>(lumiMean_StdDev_8u_C1R));
    row("lumiMean_StdDev_8u_C1MR", meanAndDeviation<Lum8u, 1, true>(lumiMean_StdDev_8u_C1MR));
    row("lumiMean_StdDev_8u_C3CR", meanAndDeviation<Lum8u, 3, false>(lumiMean_StdDev_8u_C3CR, 2));
    row("lumiMean_StdDev_8u_C3CMR", meanAndDeviation<Lum8u, 3, true>(lumiMean_StdDev_8u_C3CMR, 2));
    row("lumiMean_16u_C1MR", mean<Lum16u, 1, true>(lumiMean_16u_C1MR));
    row("lumiMean_16u_C3CMR", mean<Lum16u, 3, true>(lumiMean_16u_C3CMR, 2));
    row("lumiMean_StdDev_16u_C1R", meanAndDeviation<Lum16u, 1, false>(lumiMean_StdDev_16u_C1R));
    row("lumiMean_StdDev_16u_C1MR", meanAndDeviation<Lum16u, 1, true>(lumiMean_StdDev_16u_C1MR));
    row("lumiMean_StdDev_16u_C3CR", meanAndDeviation<Lum16u, 3, false>(lumiMean_StdDev_16u_C3CR, 2));
    row("lumiMean_StdDev_16u_C3CMR", meanAndDeviation<Lum16u, 3, true>(lumiMean_StdDev_16u_C3CMR, 2));
    row("lumiMean_32f_C1MR", mean<Lum32f, 1, true>(lumiMean_32f_C1MR));
    row("lumiMean_32f_C3CMR", mean<Lum32f, 3, true>(lumiMean_32f_C3CMR, 2));
    row("lumiMean_StdDev_32f_C1R", meanAndDeviation<Lum32f, 1, false>(lumiMean_StdDev_32f_C1R));
    row("lumiMean_StdDev_32f_C1MR", meanAndDeviation<Lum32f, 1, true>(lumiMean_StdDev_32f_C1MR));
    row("lumiMean_StdDev_32f_C3CR", meanAndDeviation<Lum32f, 3, false>(lumiMean_StdDev_32f_C3CR, 2));
    row("lumiMean_StdDev_32f_C3CMR", meanAndDeviation<Lum32f, 3, true>(lumiMean_StdDev_32f_C3CMR, 2));
});

} // namespace
} // namespace digest

#include "digest/digest.h"

namespace digest {
namespace {

using Row = std::function<void(Digest&, const Case&)>;

/// The channel of interest follows the size.
template <class T, int channels, bool masked, class Member, class... Coi>
Row extremes(Member member, Coi... coi) {
    return [=](Digest& digest, const Case& c) {
        Picture<T> src(c.size, channels, c.offset);
        Picture<Lum8u> mask(c.size);
        src.fill(c.seed);
        mask.fill(c.seed + 100);
        Lum32f values[2] = {};
        LumPoint places[2] = {};
        if constexpr (masked)
            digest.add(
                call(member, src, mask, c.size, coi..., &values[0], &values[1], &places[0], &places[1]));
        else
            digest.add(call(member, src, c.size, coi..., &values[0], &values[1], &places[0], &places[1]));
        for (int i = 0; i < 2; ++i) {
            digest.add(values[i]);
            digest.add(places[i].x);
            digest.add(places[i].y);
        }
    };
}

const RowFile file("extreme", [] {
    row("lumiMinMaxIndx_8u_C1R", extremes<Lum8u, 1, false>(lumiMinMaxIndx_8u_C1R));
    row("lumiMinMaxIndx_8u_C1MR", extremes<Lum8u, 1, true>(lumiMinMaxIndx_8u_C1MR));
    row("lumiMinMaxIndx_8u_C3CR", extremes<Lum8u, 3, false>(lumiMinMaxIndx_8u_C3CR, 2));
    row("lumiMinMaxIndx_8u_C3CMR", extremes<Lum8u, 3, true>(lumiMinMaxIndx_8u_C3CMR, 2));
    row("lumiMinMaxIndx_16u_C1R", extremes<Lum16u, 1, false>(lumiMinMaxIndx_16u_C1R));
    row("lumiMinMaxIndx_16u_C1MR", extremes<Lum16u, 1, true>(lumiMinMaxIndx_16u_C1MR));
    row("lumiMinMaxIndx_16u_C3CR", extremes<Lum16u, 3, false>(lumiMinMaxIndx_16u_C3CR, 2));
    row("lumiMinMaxIndx_16u_C3CMR", extremes<Lum16u, 3, true>(lumiMinMaxIndx_16u_C3CMR, 2));
    row("lumiMinMaxIndx_32f_C1R", extremes<Lum32f, 1, false>(lumiMinMaxIndx_32f_C1R));
    row("lumiMinMaxIndx_32f_C1MR", extremes<Lum32f, 1, true>(lumiMinMaxIndx_32f_C1MR));
    row("lumiMinMaxIndx_32f_C3CR", extremes<Lum32f, 3, false>(lumiMinMaxIndx_32f_C3CR, 2));
    row("lumiMinMaxIndx_32f_C3CMR", extremes<Lum32f, 3, true>(lumiMinMaxIndx_32f_C3CMR, 2));
});

} // namespace
} // namespace digest

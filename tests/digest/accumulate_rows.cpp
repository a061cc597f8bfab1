#include "digest/digest.h"

namespace digest {
namespace {

using Row = std::function<void(Digest&, const Case&)>;

/// A frame, or two, added to an accumulator, under a mask or not; further values come last.
template <class T, int sources, bool masked, class Member, class... Values>
Row accumulated(Member member, Values... values) {
    return [=](Digest& digest, const Case& c) {
        Picture<T> a(c.size, 1, c.offset), b(c.size, 1, c.offset);
        Picture<Lum8u> mask(c.size);
        Picture<Lum32f> sum(c.size, 1, c.offset);
        a.fill(c.seed);
        b.fill(c.seed + 100);
        mask.fill(c.seed + 200);
        sum.fill(c.seed + 300);
        if constexpr (sources == 2 && masked)
            digest.add(call(member, a, b, mask, sum, c.size, values...));
        else if constexpr (sources == 2)
            digest.add(call(member, a, b, sum, c.size, values...));
        else if constexpr (masked)
            digest.add(call(member, a, mask, sum, c.size, values...));
        else
            digest.add(call(member, a, sum, c.size, values...));
        sum.addTo(digest);
    };
}

void weightedOutOfPlace(Digest& digest, const Case& c) {
    Picture<Lum32f> a(c.size, 1, c.offset), b(c.size, 1, c.offset), dst(c.size);
    a.fill(c.seed);
    b.fill(c.seed + 100);
    digest.add(call(lumiAddWeighted_32f_C1R, a, b, dst, c.size, 0.3F));
    dst.addTo(digest);
}

const RowFile file("accumulate", [] {
    row("lumiAdd_8u32f_C1IR", accumulated<Lum8u, 1, false>(lumiAdd_8u32f_C1IR));
    row("lumiAdd_8u32f_C1IMR", accumulated<Lum8u, 1, true>(lumiAdd_8u32f_C1IMR));
    row("lumiAdd_16u32f_C1IR", accumulated<Lum16u, 1, false>(lumiAdd_16u32f_C1IR));
    row("lumiAdd_16u32f_C1IMR", accumulated<Lum16u, 1, true>(lumiAdd_16u32f_C1IMR));
    row("lumiAdd_32f_C1IMR", accumulated<Lum32f, 1, true>(lumiAdd_32f_C1IMR));
    row("lumiAddSquare_8u32f_C1IR", accumulated<Lum8u, 1, false>(lumiAddSquare_8u32f_C1IR));
    row("lumiAddSquare_8u32f_C1IMR", accumulated<Lum8u, 1, true>(lumiAddSquare_8u32f_C1IMR));
    row("lumiAddSquare_16u32f_C1IR", accumulated<Lum16u, 1, false>(lumiAddSquare_16u32f_C1IR));
    row("lumiAddSquare_16u32f_C1IMR", accumulated<Lum16u, 1, true>(lumiAddSquare_16u32f_C1IMR));
    row("lumiAddSquare_32f_C1IR", accumulated<Lum32f, 1, false>(lumiAddSquare_32f_C1IR));
    row("lumiAddSquare_32f_C1IMR", accumulated<Lum32f, 1, true>(lumiAddSquare_32f_C1IMR));
    row("lumiAddProduct_8u32f_C1IR", accumulated<Lum8u, 2, false>(lumiAddProduct_8u32f_C1IR));
    row("lumiAddProduct_8u32f_C1IMR", accumulated<Lum8u, 2, true>(lumiAddProduct_8u32f_C1IMR));
    row("lumiAddProduct_16u32f_C1IR", accumulated<Lum16u, 2, false>(lumiAddProduct_16u32f_C1IR));
    row("lumiAddProduct_16u32f_C1IMR", accumulated<Lum16u, 2, true>(lumiAddProduct_16u32f_C1IMR));
    row("lumiAddProduct_32f_C1IR", accumulated<Lum32f, 2, false>(lumiAddProduct_32f_C1IR));
    row("lumiAddProduct_32f_C1IMR", accumulated<Lum32f, 2, true>(lumiAddProduct_32f_C1IMR));
    row("lumiAddWeighted_8u32f_C1IR", accumulated<Lum8u, 1, false>(lumiAddWeighted_8u32f_C1IR, 0.3F));
    row("lumiAddWeighted_8u32f_C1IMR", accumulated<Lum8u, 1, true>(lumiAddWeighted_8u32f_C1IMR, 0.3F));
    row("lumiAddWeighted_16u32f_C1IR", accumulated<Lum16u, 1, false>(lumiAddWeighted_16u32f_C1IR, 0.3F));
    row("lumiAddWeighted_16u32f_C1IMR", accumulated<Lum16u, 1, true>(lumiAddWeighted_16u32f_C1IMR, 0.3F));
    row("lumiAddWeighted_32f_C1IR", accumulated<Lum32f, 1, false>(lumiAddWeighted_32f_C1IR, 0.3F));
    row("lumiAddWeighted_32f_C1IMR", accumulated<Lum32f, 1, true>(lumiAddWeighted_32f_C1IMR, 0.3F));
    row("lumiAddWeighted_32f_C1R", weightedOutOfPlace);
});

} // namespace
} // namespace digest

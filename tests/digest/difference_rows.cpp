#include "digest/digest.h"

namespace digest {
namespace {

template <class T, class Member>
std::function<void(Digest&, const Case&)> ofTwo(Member member, int channels = 1) {
    return [=](Digest& digest, const Case& c) {
        Picture<T> a(c.size, channels, c.offset), b(c.size, channels, c.offset), dst(c.size, channels);
        a.fill(c.seed);
        b.fill(c.seed + 100);
        digest.add(member(a.data(), a.step(), b.data(), b.step(), dst.data(), dst.step(), c.size));
        dst.addTo(digest);
    };
}

template <class T, class Member, class Value>
std::function<void(Digest&, const Case&)> ofConstant(Member member, Value value) {
    return [=](Digest& digest, const Case& c) {
        Picture<T> src(c.size, 1, c.offset), dst(c.size);
        src.fill(c.seed);
        digest.add(member(src.data(), src.step(), dst.data(), dst.step(), c.size, value));
        dst.addTo(digest);
    };
}

const RowFile file("difference", [] {
    row("lumiAbsDiff_8u_C1R", ofTwo<Lum8u>(lumiAbsDiff_8u_C1R));
    row("lumiAbsDiff_8u_C3R", ofTwo<Lum8u>(lumiAbsDiff_8u_C3R, 3));
    row("lumiAbsDiff_16u_C1R", ofTwo<Lum16u>(lumiAbsDiff_16u_C1R));
    row("lumiAbsDiff_32f_C1R", ofTwo<Lum32f>(lumiAbsDiff_32f_C1R));
    row("lumiAbsDiffC_8u_C1R", ofConstant<Lum8u>(lumiAbsDiffC_8u_C1R, 100));
    row("lumiAbsDiffC_16u_C1R", ofConstant<Lum16u>(lumiAbsDiffC_16u_C1R, 30000));
    row("lumiAbsDiffC_32f_C1R", ofConstant<Lum32f>(lumiAbsDiffC_32f_C1R, 12.5F));
});

} // namespace
} // namespace digest

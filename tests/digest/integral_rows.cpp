#include "digest/digest.h"

namespace digest {
namespace {

using Row = std::function<void(Digest&, const Case&)>;

/// Sums are larger than the region by a row and column, or by two.
LumSize largerBy(LumSize size, int extra) { return {size.width + extra, size.height + extra}; }

template <class T, class D, class Member, class... Values>
Row integral(Member member, int extra, Values... values) {
    return [=](Digest& digest, const Case& c) {
        Picture<T> src(c.size, 1, c.offset);
        Picture<D> dst(largerBy(c.size, extra), 1, c.offset);
        src.fill(c.seed);
        digest.add(call(member, src, dst, c.size, values...));
        dst.addTo(digest);
    };
}

template <class D, class Q, class Member, class... Values>
Row squares(Member member, int extra, Values... values) {
    return [=](Digest& digest, const Case& c) {
        Picture<Lum8u> src(c.size, 1, c.offset);
        Picture<D> dst(largerBy(c.size, extra), 1, c.offset);
        Picture<Q> sqr(largerBy(c.size, extra));
        src.fill(c.seed);
        digest.add(call(member, src, dst, sqr, c.size, values...));
        dst.addTo(digest);
        sqr.addTo(digest);
    };
}

/// Deviations over rectangles that stay within the sums of a picture larger than the region.
template <class S, class Q, class D, class Sums, class Member, class... Values>
Row deviation(Sums sums, Member member, int extra, Values... values) {
    return [=](Digest& digest, const Case& c) {
        constexpr int margin = 12;
        const LumSize whole = largerBy(c.size, margin);
        Picture<Lum8u> picture(whole, 1, c.offset);
        Picture<S> src(largerBy(whole, extra), 1, c.offset);
        Picture<Q> sqr(largerBy(whole, extra));
        Picture<D> dst(c.size, 1, c.offset);
        picture.fill(c.seed);
        call(sums, picture, src, sqr, whole, S{0}, Q{0});
        const LumRect rect = extra == 1 ? LumRect{1, 2, 5, 4} : LumRect{5, 1, 4, 3};
        digest.add(call(member, src, sqr, dst, c.size, rect, values...));
        dst.addTo(digest);
    };
}

const RowFile file("integral", [] {
    row("lumiIntegral_8u32s_C1R", integral<Lum8u, Lum32s>(lumiIntegral_8u32s_C1R, 1, 7));
    row("lumiIntegral_8u32f_C1R", integral<Lum8u, Lum32f>(lumiIntegral_8u32f_C1R, 1, 7.0F));
    row("lumiIntegral_32f_C1R", integral<Lum32f, Lum32f>(lumiIntegral_32f_C1R, 1));
    row("lumiTiltedIntegral_8u32s_C1R", integral<Lum8u, Lum32s>(lumiTiltedIntegral_8u32s_C1R, 2, 7));
    row("lumiTiltedIntegral_8u32f_C1R", integral<Lum8u, Lum32f>(lumiTiltedIntegral_8u32f_C1R, 2, 7.0F));
    row("lumiSqrIntegral_8u32s_C1R", squares<Lum32s, Lum32s>(lumiSqrIntegral_8u32s_C1R, 1, 7, 9));
    row("lumiSqrIntegral_8u32s64f_C1R", squares<Lum32s, Lum64f>(lumiSqrIntegral_8u32s64f_C1R, 1, 7, 9.0));
    row("lumiSqrIntegral_8u32f64f_C1R", squares<Lum32f, Lum64f>(lumiSqrIntegral_8u32f64f_C1R, 1, 7.0F, 9.0));
    row("lumiTiltedSqrIntegral_8u32s_C1R", squares<Lum32s, Lum32s>(lumiTiltedSqrIntegral_8u32s_C1R, 2, 7, 9));
    row("lumiTiltedSqrIntegral_8u32s64f_C1R",
        squares<Lum32s, Lum64f>(lumiTiltedSqrIntegral_8u32s64f_C1R, 2, 7, 9.0));
    row("lumiTiltedSqrIntegral_8u32f64f_C1R",
        squares<Lum32f, Lum64f>(lumiTiltedSqrIntegral_8u32f64f_C1R, 2, 7.0F, 9.0));
    row("lumiRectStdDev_32s_C1RSfs",
        deviation<Lum32s, Lum32s, Lum32s>(lumiSqrIntegral_8u32s_C1R, lumiRectStdDev_32s_C1RSfs, 1, 1));
    row("lumiRectStdDev_32s32f_C1R",
        deviation<Lum32s, Lum64f, Lum32f>(lumiSqrIntegral_8u32s64f_C1R, lumiRectStdDev_32s32f_C1R, 1));
    row("lumiRectStdDev_32f_C1R",
        deviation<Lum32f, Lum64f, Lum32f>(lumiSqrIntegral_8u32f64f_C1R, lumiRectStdDev_32f_C1R, 1));
    row("lumiTiltedRectStdDev_32s_C1RSfs",
        deviation<Lum32s, Lum32s, Lum32s>(lumiTiltedSqrIntegral_8u32s_C1R, lumiTiltedRectStdDev_32s_C1RSfs, 2,
                                          1));
    row("lumiTiltedRectStdDev_32s32f_C1R",
        deviation<Lum32s, Lum64f, Lum32f>(lumiTiltedSqrIntegral_8u32s64f_C1R, lumiTiltedRectStdDev_32s32f_C1R,
                                          2));
    row("lumiTiltedRectStdDev_32f_C1R", deviation<Lum32f, Lum64f, Lum32f>(lumiTiltedSqrIntegral_8u32f64f_C1R,
                                                                          lumiTiltedRectStdDev_32f_C1R, 2));
});

} // namespace
} // namespace digest

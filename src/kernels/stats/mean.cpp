#include "kernels/stats/mean.h"

#include <algorithm>

#include "kernels/stats/mean_lanes.h"

namespace lum::kernels {
namespace {

/// Stands where there is no mask.
Image<const Lum8u> noMask() { return {nullptr, 0}; }

/// The pixels of a region one by one: visit(pixel) for each that is selected. Without a mask its image is
/// empty.
template <int channels, bool masked, class T, class Visit>
void forEachSelected(Image<const T> src, Image<const Lum8u> mask, LumSize size, Visit visit) {
    for (int y = 0; y < size.height; ++y) {
        const T* row = src.row(y);
        const Lum8u* convolveRow = masked ? mask.row(y) : nullptr;
        for (int x = 0; x < size.width; ++x)
            if (!masked || convolveRow[x] != 0) visit(row[x * channels]);
    }
}

template <int channels, bool masked, class T>
RegionSums<T> scalarSums(Image<const T> src, Image<const Lum8u> mask, LumSize size) {
    RegionSums<T> region{};
    forEachSelected<channels, masked>(src, mask, size, [&](T p) {
        ++region.count;
        region.sum += p;
        if constexpr (std::is_same_v<T, Lum16u>)
            region.squares += std::int64_t{p - middleOf16u} * (p - middleOf16u);
        else
            region.squares += static_cast<Total<T>>(p * p);
    });
    return region;
}

template <int channels, bool masked>
Lum64f scalarDeviations(Image<const Lum32f> src, Image<const Lum8u> mask, LumSize size, Lum32f centre) {
    Lum64f squares = 0;
    forEachSelected<channels, masked>(src, mask, size, [&](Lum32f p) {
        const Lum32f deviation = p - centre;
        squares += deviation * deviation;
    });
    return squares;
}

/// Pixels of a row that a block may hold. A block of a channel reads up to the last element of its last pixel
/// and two more, so the row's last pixel is never in one.
template <int channels> constexpr int pixelsInReach(int width) { return channels == 1 ? width : width - 1; }

/// All bits of a byte set for the first pixels of a block.
__m128i firstPixels(int count) {
    static constexpr std::int8_t bytes[2 * pixelsOfBlock] = {-1, -1, -1, -1, -1, -1, -1, -1,
                                                             -1, -1, -1, -1, -1, -1, -1, -1};
    return loadVector<Access::unaligned>(bytes + pixelsOfBlock - count);
}

struct Totals {
    WideLanes sums;
    WideLanes squares;
    WideLanes excluded;
};

/// One row added to the totals, by lanes that begin as the empty ones. Out of line, so that the totals stay
/// in memory and the registers, of which 32-bit code has eight, are left to the lanes.
template <int channels, bool masked, class T, class Lanes>
[[gnu::noinline]] void addRow(Totals& totals, const Lanes& empty, const T* row, const Lum8u* mask,
                              int width) {
    const __m128i zero = _mm_setzero_si128();
    const int reach = pixelsInReach<channels>(width);
    const int turnsEnd = reach / pixelsOfBlock * pixelsOfBlock;
    int x = 0;
    while (x < turnsEnd) {
        const int stretchEnd = x + std::min(turnsEnd - x, blocksOfStretch * pixelsOfBlock);
        Lanes lanes = empty;
        __m128i excluded = zero;
        // 16 pixels per iteration
        for (; x < stretchEnd; x += pixelsOfBlock) {
            PixelBlock<T, channels, masked> block{row + x * channels, zero};
            if constexpr (masked) {
                block.excluded = _mm_cmpeq_epi8(loadVector<Access::unaligned>(mask + x), zero);
                excluded = _mm_sub_epi8(excluded, block.excluded);
            }
            lanes.add(block);
        }
        totals.sums.add(lanes.wideSums());
        totals.squares.add(lanes.wideSquares());
        if constexpr (masked) totals.excluded.add(_mm_sad_epu8(excluded, zero));
    }
    if (x == width) return;

    Lanes lanes = empty;
    // up to 15 pixels more, in a block that ends with them and leaves out those before
    if (x < reach && reach >= pixelsOfBlock) {
        const int start = reach - pixelsOfBlock;
        const __m128i before = firstPixels(x - start);
        PixelBlock<T, channels, true> block{row + start * channels, before};
        if constexpr (masked) {
            const __m128i zeros = _mm_cmpeq_epi8(loadVector<Access::unaligned>(mask + start), zero);
            block.excluded = _mm_or_si128(before, zeros);
            totals.excluded.add(_mm_sad_epu8(_mm_sub_epi8(zero, _mm_andnot_si128(before, zeros)), zero));
        }
        lanes.add(block);
        x = reach;
    }
    // tail, one pixel at a time
    int excluded = 0;
    for (; x < width; ++x) {
        const unsigned kept = !masked || mask[x] != 0 ? ~0U : 0U;
        if constexpr (masked) excluded += static_cast<int>(kept + 1);
        lanes.add(row[x * channels], kept);
    }
    totals.sums.add(lanes.wideSums());
    totals.squares.add(lanes.wideSquares());
    if constexpr (masked) totals.excluded.add(_mm_cvtsi32_si128(excluded));
}

template <int channels, bool masked, class T, class Lanes>
RegionSums<T> added(const Lanes& empty, Image<const T> src, Image<const Lum8u> mask, LumSize size) {
    Totals totals;
    for (int y = 0; y < size.height; ++y)
        addRow<channels, masked>(totals, empty, src.row(y), masked ? mask.row(y) : nullptr, size.width);
    const std::int64_t pixels = std::int64_t{size.width} * size.height;
    RegionSums<T> region{pixels - totals.excluded.sum<std::int64_t>(), totals.sums.sum<Total<T>>(),
                         totals.squares.sum<Total<T>>()};
    if constexpr (std::is_same_v<T, Lum16u>) region.sum += middleOf16u * region.count;
    return region;
}

} // namespace

template <class T, int channels> RegionSums<T> sumsScalar(Image<const T> src, LumSize size) {
    return scalarSums<channels, false>(src, noMask(), size);
}

template <class T, int channels> RegionSums<T> sums(Image<const T> src, LumSize size) {
    return added<channels, false>(SumLanes<T, true>{}, src, noMask(), size);
}

template <class T, int channels>
RegionSums<T> maskedSumsScalar(Image<const T> src, Image<const Lum8u> mask, LumSize size) {
    return scalarSums<channels, true>(src, mask, size);
}

template <class T, int channels>
RegionSums<T> maskedSums(Image<const T> src, Image<const Lum8u> mask, LumSize size) {
    return added<channels, true>(SumLanes<T, true>{}, src, mask, size);
}

template <class T, int channels>
RegionSums<T> maskedSum(Image<const T> src, Image<const Lum8u> mask, LumSize size) {
    return added<channels, true>(SumLanes<T, false>{}, src, mask, size);
}

template <int channels> Lum64f squaredDeviationsScalar(Image<const Lum32f> src, LumSize size, Lum32f centre) {
    return scalarDeviations<channels, false>(src, noMask(), size, centre);
}

template <int channels> Lum64f squaredDeviations(Image<const Lum32f> src, LumSize size, Lum32f centre) {
    return added<channels, false>(DeviationLanes(centre), src, noMask(), size).squares;
}

template <int channels>
Lum64f maskedSquaredDeviationsScalar(Image<const Lum32f> src, Image<const Lum8u> mask, LumSize size,
                                     Lum32f centre) {
    return scalarDeviations<channels, true>(src, mask, size, centre);
}

template <int channels>
Lum64f maskedSquaredDeviations(Image<const Lum32f> src, Image<const Lum8u> mask, LumSize size,
                               Lum32f centre) {
    return added<channels, true>(DeviationLanes(centre), src, mask, size).squares;
}

template decltype(sumsScalar<Lum8u, 1>) sumsScalar<Lum8u, 1>;
template decltype(sumsScalar<Lum8u, 3>) sumsScalar<Lum8u, 3>;
template decltype(sumsScalar<Lum16u, 1>) sumsScalar<Lum16u, 1>;
template decltype(sumsScalar<Lum16u, 3>) sumsScalar<Lum16u, 3>;
template decltype(sumsScalar<Lum32f, 1>) sumsScalar<Lum32f, 1>;
template decltype(sumsScalar<Lum32f, 3>) sumsScalar<Lum32f, 3>;
template decltype(sums<Lum8u, 1>) sums<Lum8u, 1>;
template decltype(sums<Lum8u, 3>) sums<Lum8u, 3>;
template decltype(sums<Lum16u, 1>) sums<Lum16u, 1>;
template decltype(sums<Lum16u, 3>) sums<Lum16u, 3>;
template decltype(sums<Lum32f, 1>) sums<Lum32f, 1>;
template decltype(sums<Lum32f, 3>) sums<Lum32f, 3>;
template decltype(maskedSumsScalar<Lum8u, 1>) maskedSumsScalar<Lum8u, 1>;
template decltype(maskedSumsScalar<Lum8u, 3>) maskedSumsScalar<Lum8u, 3>;
template decltype(maskedSumsScalar<Lum16u, 1>) maskedSumsScalar<Lum16u, 1>;
template decltype(maskedSumsScalar<Lum16u, 3>) maskedSumsScalar<Lum16u, 3>;
template decltype(maskedSumsScalar<Lum32f, 1>) maskedSumsScalar<Lum32f, 1>;
template decltype(maskedSumsScalar<Lum32f, 3>) maskedSumsScalar<Lum32f, 3>;
template decltype(maskedSums<Lum8u, 1>) maskedSums<Lum8u, 1>;
template decltype(maskedSums<Lum8u, 3>) maskedSums<Lum8u, 3>;
template decltype(maskedSums<Lum16u, 1>) maskedSums<Lum16u, 1>;
template decltype(maskedSums<Lum16u, 3>) maskedSums<Lum16u, 3>;
template decltype(maskedSums<Lum32f, 1>) maskedSums<Lum32f, 1>;
template decltype(maskedSums<Lum32f, 3>) maskedSums<Lum32f, 3>;
template decltype(maskedSum<Lum8u, 1>) maskedSum<Lum8u, 1>;
template decltype(maskedSum<Lum8u, 3>) maskedSum<Lum8u, 3>;
template decltype(maskedSum<Lum16u, 1>) maskedSum<Lum16u, 1>;
template decltype(maskedSum<Lum16u, 3>) maskedSum<Lum16u, 3>;
template decltype(maskedSum<Lum32f, 1>) maskedSum<Lum32f, 1>;
template decltype(maskedSum<Lum32f, 3>) maskedSum<Lum32f, 3>;
template decltype(squaredDeviationsScalar<1>) squaredDeviationsScalar<1>;
template decltype(squaredDeviationsScalar<3>) squaredDeviationsScalar<3>;
template decltype(squaredDeviations<1>) squaredDeviations<1>;
template decltype(squaredDeviations<3>) squaredDeviations<3>;
template decltype(maskedSquaredDeviationsScalar<1>) maskedSquaredDeviationsScalar<1>;
template decltype(maskedSquaredDeviationsScalar<3>) maskedSquaredDeviationsScalar<3>;
template decltype(maskedSquaredDeviations<1>) maskedSquaredDeviations<1>;
template decltype(maskedSquaredDeviations<3>) maskedSquaredDeviations<3>;

} // namespace lum::kernels

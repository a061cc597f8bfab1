#include "kernels/stats/mean.h"

#include "frame/instances.h"
#include "kernels/stats/mean_floats.h"
#include "kernels/stats/mean_integers.h"

namespace lum::kernels {
namespace {

/// Given where there is no mask.
Image<const Lum8u> noMask() { return {nullptr, 0}; }

/// The pixels of a region one by one: visit(pixel) for each that is selected. Without a mask its image is empty.
template <bool masked, class T, int channels, class Visit>
void forEachSelected(const Pixels<T, channels>& src, Image<const Lum8u> mask, LumSize size, Visit visit) {
    for (int y = 0; y < size.height; ++y) {
        const T* row = src.row(y);
        const Lum8u* maskRow = masked ? mask.row(y) : nullptr;
        for (int x = 0; x < size.width; ++x)
            if (!masked || maskRow[x] != 0) visit(src.at(row, x));
    }
}

template <bool masked, bool squared, class T, int channels>
RegionSums<T> scalarSums(const Pixels<T, channels>& src, Image<const Lum8u> mask, LumSize size) {
    RegionSums<T> region{};
    forEachSelected<masked>(src, mask, size, [&](T p) {
        ++region.count;
        region.sum += p;
        if constexpr (squared && std::is_same_v<T, Lum16u>)
            region.squares += std::int64_t{p - middleOf16u} * (p - middleOf16u);
        else if constexpr (squared)
            region.squares += static_cast<Total<T>>(p * p);
    });
    return region;
}

template <bool masked, int channels>
Lum64f scalarDeviations(const Pixels<Lum32f, channels>& src, Image<const Lum8u> mask, LumSize size,
                        Lum32f centre) {
    Lum64f squares = 0;
    forEachSelected<masked>(src, mask, size, [&](Lum32f p) {
        const Lum32f deviation = p - centre;
        squares += deviation * deviation;
    });
    return squares;
}

template <bool masked, int channels, class Lanes>
RegionSums<Lum32f> sumsByLanes(const Lanes& empty, const Pixels<Lum32f, channels>& src,
                               Image<const Lum8u> mask, LumSize size) {
    FloatTotals totals;
    int y = 0;
    if constexpr (channels == 1)
        if (size.width >= 4 && size.width < pixelsOfBlock)
            for (; y <= size.height - 4; y += 4)
                addFourRows<masked>(totals, empty, src.image, mask, y, size.width);
    for (; y < size.height; ++y)
        addRow<channels, masked>(totals, empty, src.row(y) + src.channel, masked ? mask.row(y) : nullptr,
                                 size.width);
    const std::int64_t pixels = std::int64_t{size.width} * size.height;
    const auto sumOfBoth = [](Double2 lanes) {
        double both[2];
        store(lanes, both);
        return both[0] + both[1];
    };
    return {pixels - static_cast<std::int64_t>(totals.excluded.total() + totals.excludedSingly),
            sumOfBoth(totals.sums), sumOfBoth(totals.squares)};
}

template <bool masked, bool squared, class T, int channels>
RegionSums<T> vectorSums(const Pixels<T, channels>& src, Image<const Lum8u> mask, LumSize size) {
    if constexpr (std::is_floating_point_v<T>) {
        return sumsByLanes<masked>(SumLanes<squared>{}, src, mask, size);
    } else {
        constexpr int leastWidth = channels == 1 ? LastBlock<T>::leastWidth : lanesOf<T>;
        if (size.width < leastWidth) return scalarSums<masked, squared>(src, mask, size);
        IntegerTotals totals;
        const bool isNarrow = channels == 1 && size.width < pixelsOfGroup<T, channels>;
        if (isNarrow) {
            if constexpr (channels == 1) addNarrowRows<masked, squared>(totals, src, mask, size);
        } else {
            const PixelVectors<T, channels> vectors(src);
            for (int y = 0; y < size.height; ++y)
                addRow<masked, squared>(totals, vectors, src.row(y), masked ? mask.row(y) : nullptr,
                                        size.width);
        }
        const std::int64_t pixels = std::int64_t{size.width} * size.height;
        RegionSums<T> region{pixels - static_cast<std::int64_t>(totals.excluded.total()), totals.sum.total(),
                             totals.squares.total()};
        if constexpr (std::is_same_v<T, Lum16u>) region.sum += middleOf16u * region.count;
        return region;
    }
}

} // namespace

template <class T, int channels> RegionSums<T> SumsOf<T, channels>::scalar(PixelsOf src, LumSize size) {
    return scalarSums<false, true>(src, noMask(), size);
}

template <class T, int channels> RegionSums<T> SumsOf<T, channels>::vectors(PixelsOf src, LumSize size) {
    return vectorSums<false, true>(src, noMask(), size);
}

template <class T, int channels>
RegionSums<T> SumsOf<T, channels>::maskedScalar(PixelsOf src, Image<const Lum8u> mask, LumSize size) {
    return scalarSums<true, true>(src, mask, size);
}

template <class T, int channels>
RegionSums<T> SumsOf<T, channels>::masked(PixelsOf src, Image<const Lum8u> mask, LumSize size) {
    return vectorSums<true, true>(src, mask, size);
}

template <class T, int channels>
RegionSums<T> SumsOf<T, channels>::maskedWithoutSquares(PixelsOf src, Image<const Lum8u> mask, LumSize size) {
    return vectorSums<true, false>(src, mask, size);
}

template <int channels> Lum64f DeviationsOf<channels>::scalar(PixelsOf src, LumSize size, Lum32f centre) {
    return scalarDeviations<false>(src, noMask(), size, centre);
}

template <int channels> Lum64f DeviationsOf<channels>::vectors(PixelsOf src, LumSize size, Lum32f centre) {
    return sumsByLanes<false>(DeviationLanes(centre), src, noMask(), size).squares;
}

template <int channels>
Lum64f DeviationsOf<channels>::maskedScalar(PixelsOf src, Image<const Lum8u> mask, LumSize size,
                                            Lum32f centre) {
    return scalarDeviations<true>(src, mask, size, centre);
}

template <int channels>
Lum64f DeviationsOf<channels>::masked(PixelsOf src, Image<const Lum8u> mask, LumSize size, Lum32f centre) {
    return sumsByLanes<true>(DeviationLanes(centre), src, mask, size).squares;
}

LUM_STRUCT_INSTANCES(SumsOf, (Lum8u, 1), (Lum8u, 3), (Lum16u, 1), (Lum16u, 3), (Lum32f, 1), (Lum32f, 3));
LUM_STRUCT_INSTANCES(DeviationsOf, (1), (3));

} // namespace lum::kernels

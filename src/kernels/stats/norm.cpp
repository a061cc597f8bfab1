#include "kernels/stats/norm.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <type_traits>

#include "frame/instances.h"
#include "kernels/stats/norm_totals.h"

namespace lum::kernels {
namespace {

/// Integers as magnitudes, floats with their sign.
template <class T> T difference(T a, T b) {
    if constexpr (std::is_integral_v<T>)
        return static_cast<T>(a > b ? a - b : b - a);
    else
        return a - b;
}

/// The value of a pixel that counts, and 0 of one that does not: adding it changes no sum.
template <class T> T counted(T value, Lum8u selected) {
    using Bits = std::conditional_t<std::is_integral_v<T>, T, std::uint32_t>;
    const auto bits = std::bit_cast<Bits>(value);
    return std::bit_cast<T>(static_cast<Bits>(bits & (0U - static_cast<unsigned>(selected != 0))));
}

/// Whether rows that hold no group of vectors are added up in a way of their own.
template <class T, int channels> inline constexpr bool hasNarrowRows = channels == 1 && std::is_integral_v<T>;

template <NormOf of, NormKind kind, class T, int channels>
NormTotals scalarRows(const Pixels<T, channels>& first, const Pixels<T, channels>& second,
                      Image<const Lum8u> mask, LumSize size) {
    NormTotal<kind, T> ofFirst;
    NormTotal<kind, T> ofSecond;
    for (int y = 0; y < size.height; ++y) {
        const T* a = first.row(y);
        const T* b = second.row(y);
        const Lum8u* selected = mask.row(y);
        for (int x = 0; x < size.width; ++x) {
            T value = first.at(a, x);
            if constexpr (of != NormOf::image) value = difference(value, second.at(b, x));
            ofFirst.add(counted(value, selected[x]), x, size.width);
            if constexpr (of == NormOf::differenceAndSecond)
                ofSecond.add(counted(second.at(b, x), selected[x]), x, size.width);
        }
        ofFirst.endScalarRow();
        ofSecond.endScalarRow();
    }
    return {ofFirst.value(), ofSecond.value()};
}

/// Blocks of both images added to what takes them; pixel i of an iteration is their first, and counted(block) has 0 where a
/// pixel does not count. Those of the second image count only where they are asked for.
template <NormOf of, class Blocks, class T, int n, class Counted>
LUM_LANE void addPixels(Blocks& ofFirst, Blocks& ofSecond, Block<T, n> values, Block<T, n> subtrahends,
                        Counted counted, int i) {
    if constexpr (of != NormOf::image) {
        if constexpr (std::is_integral_v<T>)
            values = absDiff(values, subtrahends);
        else
            values = values - subtrahends;
        if constexpr (of == NormOf::differenceAndSecond) ofSecond.addBlock(counted(subtrahends), i);
    }
    ofFirst.addBlock(counted(values), i);
}

/// What keeps the pixels of a block that are not excluded.
template <class T, int n> LUM_LANE auto withoutExcluded(MaskOf<T, n> isExcluded) {
    return [excluded = bitsAs<T>(isExcluded)](Block<T, n> values)
               LUM_INLINED { return andNot(excluded, values); };
}

/// One row added to what takes its blocks.
template <NormOf of, class T, int channels, class Blocks>
LUM_LANE void addRow(Blocks& ofFirst, Blocks& ofSecond, const PixelVectors<T, channels>& vectors, const T* a,
                     const T* b, const Lum8u* mask, int width) {
    constexpr bool withSecond = of == NormOf::differenceAndSecond;
    constexpr int unit = lanesOf<T>;
    constexpr int pair = 2 * OneVector<T>::count;
    // Shuffles of channels leave registers for two vectors at a time.
    constexpr int group =
        channels == 1 ? Blocks::pixelsPerIteration : std::min(Blocks::pixelsPerIteration, pair);
    // Two vectors share the comparison of their mask bytes.
    constexpr int sharing = std::min({group, OneVector<Lum8u>::count, pair});

    // n pixels from x on; the first of them is pixel i of its iteration.
    const auto addCounted = [&]<int n>(int x, int i, auto counted) LUM_INLINED {
        const auto values = vectors.template block<n>(a, x);
        addPixels<of>(ofFirst, ofSecond, values,
                      of == NormOf::image ? values : vectors.template block<n>(b, x), counted, i);
    };
    const auto add = [&]<int n>(int x, int i, MaskOf<T, n> isExcluded) LUM_INLINED {
        addCounted.template operator()<n>(x, i, withoutExcluded<T, n>(isExcluded));
    };

    int x = 0;
    for (;;) {
        const int end = Blocks::hasStretches ? x + std::min(width - x, unitsOfStretch * unit) : width;
        // up to 64 bytes of pixels per iteration
        for (; x <= end - group; x += group)
            forParts<sharing, group>([&](int i) LUM_INLINED {
                const auto selected = load<sharing>(mask + x + i);
                if constexpr (sizeof(T) == 1) {
                    addCounted.template operator()<sharing>(
                        x + i, i,
                        [&](Block<T, sharing> values) LUM_INLINED { return whereSet(selected, values); });
                } else {
                    const auto excluded = selected == zeros<Lum8u, sharing>();
                    forVectors<T, sharing>([&]<int n>(int j) LUM_INLINED {
                        add.template operator()<n>(x + i + j, i + j, widenMask<T, n>(excluded, j));
                    });
                }
            });
        if (!Blocks::hasStretches || width - x < group) break;
        ofFirst.endStretch();
        if constexpr (withSecond) ofSecond.endStretch();
    }
    // 16 bytes of pixels per iteration
    for (; x <= width - unit; x += unit)
        add.template operator()<unit>(x, 0, widenMask<T, unit>(load<unit>(mask + x) == zeros<Lum8u, unit>()));
    // tail: masked last vector, of which only the last pixels count
    if (x < width) {
        const int last = width - unit;
        const auto excluded = load<unit>(mask + last) == zeros<Lum8u, unit>();
        add.template operator()<unit>(last, unit, widenMask<T, unit>(excluded | allButLast<unit>(width - x)));
    }
    ofFirst.endStretch();
    if constexpr (withSecond) ofSecond.endStretch();
}

/// The same through the lanes of a row.
template <NormOf of, class T, int channels, class Total>
LUM_LANE void addRowOfLanes(Total& ofFirst, Total& ofSecond, const PixelVectors<T, channels>& vectors,
                            const T* a, const T* b, const Lum8u* mask, int width) {
    typename Total::Lanes first;
    typename Total::Lanes second;
    addRow<of>(first, second, vectors, a, b, mask, width);
    ofFirst.add(first);
    if constexpr (of == NormOf::differenceAndSecond) ofSecond.add(second);
}

/// The same out of line, so that the registers, of which 32-bit code has eight, are left to the lanes.
template <NormOf of, class T, int channels, class Total>
[[gnu::noinline]] void addLongRow(Total& ofFirst, Total& ofSecond, const PixelVectors<T, channels>& vectors,
                                  const T* a, const T* b, const Lum8u* mask, int width) {
    addRowOfLanes<of>(ofFirst, ofSecond, vectors, a, b, mask, width);
}

/// Rows of one channel of integers that hold no group of vectors. What a row has is too little to carry over at its end, so
/// many of them share their sums.
template <NormOf of, NormKind kind, class T>
NormTotals narrowRows(const Pixels<T, 1>& first, const Pixels<T, 1>& second, Image<const Lum8u> mask,
                      LumSize size) {
    constexpr int unit = lanesOf<T>;
    constexpr int rowsOfStretch = unitsOfStretch * 16 / bytesOfGroup;
    constexpr auto zeroBytes = zeros<Lum8u, unit>;
    const int unitsEnd = size.width - size.width % unit;
    const LastBlock<T> last(size.width);
    const auto repeated = last.repeated(size.width);
    NormTotal<kind, T, 16> ofFirst;
    NormTotal<kind, T, 16> ofSecond;
    const auto add = [&](Block<T, unit> values, Block<T, unit> subtrahends, Block<std::int8_t, unit> excluded)
                         LUM_INLINED {
                             addPixels<of>(ofFirst, ofSecond, values, subtrahends,
                                           withoutExcluded<T, unit>(widenMask<T, unit>(excluded)), 0);
                         };
    for (int y = 0; y < size.height;) {
        for (const int end = y + std::min(size.height - y, rowsOfStretch); y < end; ++y) {
            const T* a = first.row(y);
            const T* b = second.row(y);
            const Lum8u* selected = mask.row(y);
            // 16 bytes of pixels per iteration
            for (int x = 0; x < unitsEnd; x += unit)
                add(load<unit>(a + x), load<unit>(b + x), load<unit>(selected + x) == zeroBytes());
            // tail: masked last block
            if (unitsEnd < size.width)
                add(last.load(a), last.load(b), (last.load(selected) == zeroBytes()) | repeated);
        }
        ofFirst.endStretch();
        ofSecond.endStretch();
    }
    return {ofFirst.value(), ofSecond.value()};
}

template <NormOf of, NormKind kind, class T, int channels>
NormTotals vectorRows(const Pixels<T, channels>& first, const Pixels<T, channels>& second,
                      Image<const Lum8u> mask, LumSize size) {
    if constexpr (hasNarrowRows<T, channels>)
        if (size.width < bytesOfGroup / static_cast<int>(sizeof(T)))
            return narrowRows<of, kind>(first, second, mask, size);
    const PixelVectors<T, channels> vectors(first);
    NormTotal<kind, T> ofFirst;
    NormTotal<kind, T> ofSecond;
    for (int y = 0; y < size.height; ++y) {
        const T* a = first.row(y);
        const T* b = second.row(y);
        const Lum8u* selected = mask.row(y);
        if constexpr (kind == NormKind::inf || std::is_integral_v<T>)
            addRow<of>(ofFirst, ofSecond, vectors, a, b, selected, size.width);
        else if (channels == 1 && size.width < bytesOfGroup / static_cast<int>(sizeof(T)))
            addRowOfLanes<of>(ofFirst, ofSecond, vectors, a, b, selected, size.width);
        else
            addLongRow<of>(ofFirst, ofSecond, vectors, a, b, selected, size.width);
    }
    return {ofFirst.value(), ofSecond.value()};
}

} // namespace

template <NormKind kind, class T, int channels>
NormTotals MaskedTotals<kind, T, channels>::scalar(NormOf of, PixelsOf first, PixelsOf second,
                                                   Image<const Lum8u> mask, LumSize size) {
    switch (of) {
    case NormOf::image:
        return scalarRows<NormOf::image, kind>(first, second, mask, size);
    case NormOf::difference:
        return scalarRows<NormOf::difference, kind>(first, second, mask, size);
    case NormOf::differenceAndSecond:
        break;
    }
    return scalarRows<NormOf::differenceAndSecond, kind>(first, second, mask, size);
}

template <NormKind kind, class T, int channels>
NormTotals MaskedTotals<kind, T, channels>::vectors(NormOf of, PixelsOf first, PixelsOf second,
                                                    Image<const Lum8u> mask, LumSize size) {
    constexpr int leastWidth = hasNarrowRows<T, channels> ? LastBlock<T>::leastWidth : lanesOf<T>;
    if (size.width < leastWidth) return scalar(of, first, second, mask, size);
    switch (of) {
    case NormOf::image:
        return vectorRows<NormOf::image, kind>(first, second, mask, size);
    case NormOf::difference:
        return vectorRows<NormOf::difference, kind>(first, second, mask, size);
    case NormOf::differenceAndSecond:
        break;
    }
    return vectorRows<NormOf::differenceAndSecond, kind>(first, second, mask, size);
}

LUM_STRUCT_INSTANCES(MaskedTotals, (NormKind::inf, Lum8u, 1), (NormKind::inf, Lum8u, 3),
                     (NormKind::inf, Lum16u, 1), (NormKind::inf, Lum16u, 3), (NormKind::inf, Lum32f, 1),
                     (NormKind::inf, Lum32f, 3), (NormKind::l1, Lum8u, 1), (NormKind::l1, Lum8u, 3),
                     (NormKind::l1, Lum16u, 1), (NormKind::l1, Lum16u, 3), (NormKind::l1, Lum32f, 1),
                     (NormKind::l1, Lum32f, 3), (NormKind::l2, Lum8u, 1), (NormKind::l2, Lum8u, 3),
                     (NormKind::l2, Lum16u, 1), (NormKind::l2, Lum16u, 3), (NormKind::l2, Lum32f, 1),
                     (NormKind::l2, Lum32f, 3));

} // namespace lum::kernels

#include "kernels/stats/extreme.h"

#include <algorithm>
#include <bit>
#include <type_traits>

#include "frame/instances.h"

namespace lum::kernels {
namespace {

/// What values are compared as. Short vectors know the order of signed words only, so that of unsigned ones is shifted by
/// half their range.
template <class T> using Comparable = std::conditional_t<std::is_same_v<T, Lum16u>, Lum16s, T>;

template <class T, int n> LUM_LANE Block<Comparable<T>, n> comparable(Block<T, n> values) {
    if constexpr (std::is_same_v<T, Lum16u>)
        return bitsAs<Lum16s>(values ^ broadcast<n>(Lum16u{0x8000}));
    else
        return values;
}

/// Toward smaller values. Equal elements and NaN candidates leave the best as it is, bit for bit.
template <class T> struct Lowest {
    static constexpr T start = lowestStart<T>;

    template <class B> LUM_LANE static B better(B candidates, B best) { return min(candidates, best); }
    static T better(T candidate, T best) { return candidate < best ? candidate : best; }
    /// All ones is the largest integer, and NaN.
    template <class B> LUM_LANE static B without(B excluded, B values) { return excluded | values; }
};

/// Toward larger values.
template <class T> struct Highest {
    static constexpr T start = highestStart<T>;

    template <class B> LUM_LANE static B better(B candidates, B best) { return max(candidates, best); }
    static T better(T candidate, T best) { return candidate > best ? candidate : best; }
    template <class B> LUM_LANE static B without(B excluded, B values) {
        return std::is_integral_v<T> ? andNot(excluded, values) : excluded | values;
    }
};

/// The search in one direction. Two vectors of candidates, of so many bytes, run side by side, because floats take four
/// cycles to compare. They start at the best value found so far in all elements, so rows that hold nothing better leave them
/// as they were: they are looked at once after their end, and no index is carried through them.
template <class T, class Direction, int bytes = vectorBytes> class Search {
    using Lanes = Block<Comparable<T>, bytes / static_cast<int>(sizeof(T))>;

  public:
    explicit Search(int firstRow) : row(firstRow) {}

    int row;
    T value = Direction::start;

    /// Vectors of even and of odd index have candidates of their own.
    template <int n> LUM_LANE void look(Block<T, n> values, int index) {
        Lanes& lanes = index % 2 == 0 ? even_ : odd_;
        lanes = Direction::better(replaceFirst(lanes, comparable(values)), lanes);
    }

    /// After row y, or after rows of which y is the first.
    void endRows(int y) {
        const Lanes lanes = Direction::better(odd_, even_);
        if (!any(bitsAs<Lum8u>(lanes) != bitsAs<Lum8u>(best_))) return;
        value = bestOf(lanes);
        row = y;
        best_ = even_ = odd_ = everywhere(value);
    }

  private:
    static Lanes everywhere(T value) { return comparable(broadcast<Lanes::count>(value)); }

    /// Halves are compared until one element is left, or 16 bytes of floats.
    template <int n> static T bestOf(Block<Comparable<T>, n> lanes) {
        if constexpr (n > (std::is_integral_v<T> ? 1 : lanesOf<T>)) {
            return bestOf(Direction::better(highHalf(lanes), lowHalf(lanes)));
        } else if constexpr (n == 1) {
            return onlyElement(bitsAs<T>(comparable(bitsAs<T>(lanes))));
        } else {
            T elements[n];
            store(lanes, elements);
            T best = elements[0];
#pragma GCC unroll 4
            for (int i = 1; i < n; ++i) best = Direction::better(elements[i], best);
            return best;
        }
    }

    Lanes best_ = everywhere(value);
    Lanes even_ = best_;
    Lanes odd_ = best_;
};

/// Narrower rows are looked at one pixel at a time.
template <class T, int channels>
inline constexpr int leastWidth = channels == 1 ? LastBlock<T>::leastWidth : lanesOf<T>;

/// Rows of 64 bytes and more hold a group of vectors that are looked at together, and so do those of two vectors.
template <class T> inline constexpr int largestGroup = std::max<int>(2 * OneVector<T>::count, 64 / sizeof(T));

/// Rows of one channel that hold no group of vectors. Looking at each row after its end takes longer than such a row, so all
/// of them end together, and the place of what they hold is looked for from the first of them on.
template <class T, class Selection>
Extremes<T> narrowRows(const Pixels<T, 1>& pixels, const Selection& selection, LumSize size, Sides sides,
                       int firstRow) {
    constexpr int unit = lanesOf<T>;
    const int unitsEnd = size.width - size.width % unit;
    const LastBlock<T> last(size.width);
    Search<T, Lowest<T>, 16> low(firstRow);
    Search<T, Highest<T>, 16> high(firstRow);
    // As many blocks as share the comparison of their mask bytes.
    constexpr int sharing = std::min(2 * unit, 16);
    const int sharedEnd = size.width - size.width % sharing;
    const auto look = [&](Block<T, unit> values, MaskOf<T, unit> isExcluded, int index) LUM_INLINED {
        const auto excluded = bitsAs<T>(isExcluded);
        low.look(Lowest<T>::without(excluded, values), index);
        high.look(Highest<T>::without(excluded, values), index);
    };
    for (int y = firstRow; y < size.height; ++y) {
        const T* row = pixels.row(y);
        const auto selected = selection.row(y);
        // 16 or 32 bytes of pixels per iteration
        for (int x = 0; x < sharedEnd; x += sharing) {
            const auto excluded = selected.template excluded<sharing>(x);
            forParts<unit, sharing>([&](int i) LUM_INLINED {
                look(load<unit>(row + x + i), widenMask<T, unit>(excluded, i), 0);
            });
        }
        if (sharedEnd == size.width) continue;
        // at most one block more
        if (sharedEnd < unitsEnd)
            look(load<unit>(row + sharedEnd), widenMask<T, unit>(selected.template excluded<unit>(sharedEnd)),
                 0);
        // tail: overlapping last block
        if (unitsEnd < size.width) look(last.load(row), widenMask<T, unit>(selected.excluded(last)), 0);
    }
    low.endRows(firstRow);
    high.endRows(firstRow);
    Extremes<T> found;
    found.lowestRow = found.highestRow = firstRow;
    if (includes(sides, Sides::lowest)) found.lowest = low.value;
    if (includes(sides, Sides::highest)) found.highest = high.value;
    return found;
}

template <Sides sides, class T, int channels, class Selection>
Extremes<T> vectorRows(const Pixels<T, channels>& pixels, const Selection& selection, LumSize size,
                       int firstRow) {
    constexpr int unit = lanesOf<T>;
    // Four short vectors where each takes no more than its load and comparison.
    constexpr int group = channels == 1 && !Selection::isMask ? largestGroup<T> : 2 * OneVector<T>::count;
    // Two vectors share the comparison of their mask bytes.
    constexpr int sharing = std::min(2 * OneVector<T>::count, OneVector<Lum8u>::count);
    const int groupsEnd = size.width - size.width % group;
    const int unitsEnd = size.width - size.width % unit;
    const PixelVectors<T, channels> vectors(pixels);
    Search<T, Lowest<T>> low(firstRow);
    Search<T, Highest<T>> high(firstRow);

    for (int y = firstRow; y < size.height; ++y) {
        const T* row = pixels.row(y);
        const auto selected = selection.row(y);
        const auto look = [&]<int n>(int x, int index, MaskOf<T, n> isExcluded) LUM_INLINED {
            auto forLowest = vectors.template block<n>(row, x);
            auto forHighest = forLowest;
            if constexpr (Selection::isMask) {
                const auto excluded = bitsAs<T>(isExcluded);
                forLowest = Lowest<T>::without(excluded, forLowest);
                forHighest = Highest<T>::without(excluded, forHighest);
            }
            if constexpr (includes(sides, Sides::lowest)) low.look(forLowest, index);
            if constexpr (includes(sides, Sides::highest)) high.look(forHighest, index);
        };
        const auto lookAtUnit = [&](int x, int index) LUM_INLINED {
            look.template operator()<unit>(x, index, widenMask<T, unit>(selected.template excluded<unit>(x)));
        };
        int x = 0;
        // two or four vectors per iteration
        for (; x < groupsEnd; x += group)
            forParts<sharing, group>([&](int i) LUM_INLINED {
                const auto excluded = selected.template excluded<sharing>(x + i);
                forVectors<T, sharing>([&]<int n>(int j) LUM_INLINED {
                    look.template operator()<n>(x + i + j, (i + j) / n, widenMask<T, n>(excluded, j));
                });
            });
        // 16 bytes of pixels per iteration
        for (; x < unitsEnd; x += unit) lookAtUnit(x, 0);
        // tail: overlapping last vector
        if (unitsEnd < size.width) lookAtUnit(size.width - unit, 1);
        if constexpr (includes(sides, Sides::lowest)) low.endRows(y);
        if constexpr (includes(sides, Sides::highest)) high.endRows(y);
    }
    return {low.value, high.value, low.row, high.row};
}

} // namespace

template <class T, int channels, class Selection>
Extremes<T> ExtremesOf<T, channels, Selection>::scalar(PixelsOf pixels, const Selection& selection,
                                                       LumSize size, Sides sides, int firstRow) {
    const bool wantsLowest = includes(sides, Sides::lowest);
    const bool wantsHighest = includes(sides, Sides::highest);
    Extremes<T> found;
    found.lowestRow = found.highestRow = firstRow;
    for (int y = firstRow; y < size.height; ++y) {
        const T* row = pixels.row(y);
        const auto selected = selection.row(y);
        for (int x = 0; x < size.width; ++x) {
            // One condition, so that its branch is seldom taken; one on the mask alone could not be predicted.
            const unsigned isSelected = selected.selects(x);
            const T value = pixels.at(row, x);
            if ((isSelected & wantsLowest & (value < found.lowest)) != 0) {
                found.lowest = value;
                found.lowestRow = y;
            }
            if ((isSelected & wantsHighest & (value > found.highest)) != 0) {
                found.highest = value;
                found.highestRow = y;
            }
        }
    }
    return found;
}

template <class T, int channels, class Selection>
Extremes<T> ExtremesOf<T, channels, Selection>::vectors(PixelsOf pixels, const Selection& selection,
                                                        LumSize size, Sides sides, int firstRow) {
    if (size.width < leastWidth<T, channels>) return scalar(pixels, selection, size, sides, firstRow);
    if constexpr (channels == 1)
        if (size.width < largestGroup<T>) return narrowRows(pixels, selection, size, sides, firstRow);
    switch (sides) {
    case Sides::lowest:
        return vectorRows<Sides::lowest>(pixels, selection, size, firstRow);
    case Sides::highest:
        return vectorRows<Sides::highest>(pixels, selection, size, firstRow);
    case Sides::both:
        break;
    }
    return vectorRows<Sides::both>(pixels, selection, size, firstRow);
}

template <class T, int channels, class Selection>
LumPoint ExtremesOf<T, channels, Selection>::firstPlace(PixelsOf pixels, const Selection& selection,
                                                        LumSize size, T value, int fromRow) {
    constexpr int unit = lanesOf<T>;
    constexpr bool hasLastBlock = channels == 1;
    const bool isScalar = size.width < leastWidth<T, channels>;
    const int unitsEnd = isScalar ? 0 : size.width - size.width % unit;
    const PixelVectors<T, channels> vectors(pixels);
    const LastBlock<T> last(size.width);
    const auto sought = broadcast<unit>(value);
    for (int y = fromRow; y < size.height; ++y) {
        const T* row = pixels.row(y);
        const auto selected = selection.row(y);
        // A bit for each element of a block that is sought. Few blocks hold any: the mask is looked at for those.
        const auto found = [&](Block<T, unit> values, auto excluded) LUM_INLINED {
            const auto equal = values == sought;
            const auto bits = signBits(equal);
            return bits == 0 ? bits : signBits(andNot(widenMask<T, unit>(excluded()), equal));
        };
        int x = 0;
        // 32 bytes of pixels per iteration, up to those that hold an equal one
        for (; x < unitsEnd - unit; x += 2 * unit) {
            const auto block = [&](int i) LUM_INLINED { return vectors.template block<unit>(row, x + i); };
            if (signBits((block(0) == sought) | (block(unit) == sought)) != 0) break;
        }
        // 16 bytes of pixels per iteration
        for (; x < unitsEnd; x += unit) {
            const auto excluded = [&]() LUM_INLINED { return selected.template excluded<unit>(x); };
            if (const auto bits = found(vectors.template block<unit>(row, x), excluded))
                return {x + std::countr_zero(bits), y};
        }
        if (hasLastBlock && !isScalar) {
            // tail: overlapping last block
            if (unitsEnd == size.width) continue;
            const auto excluded = [&]() LUM_INLINED { return selected.excluded(last); };
            if (const auto bits = found(last.load(row), excluded))
                return {last.place(std::countr_zero(bits)), y};
        } else {
            // tail: scalar, one pixel at a time
            for (; x < size.width; ++x)
                if (pixels.at(row, x) == value && selected.selects(x)) return {x, y};
        }
    }
    return {-1, 0};
}

int firstSelectedRow(Image<const Lum8u> mask, LumSize size) {
    for (int y = 0; y < size.height; ++y) {
        const Lum8u* bytes = mask.row(y);
        int x = 0;
        // 16 bytes per iteration
        for (; x <= size.width - 16; x += 16)
            if (any(load<16>(bytes + x) != zeros<Lum8u, 16>())) return y;
        // tail: scalar, one byte at a time
        for (; x < size.width; ++x)
            if (bytes[x] != 0) return y;
    }
    return size.height;
}

LUM_STRUCT_INSTANCES(ExtremesOf, (Lum8u, 1, AllPixels), (Lum8u, 1, MaskedPixels), (Lum8u, 3, AllPixels),
                     (Lum8u, 3, MaskedPixels), (Lum16u, 1, AllPixels), (Lum16u, 1, MaskedPixels),
                     (Lum16u, 3, AllPixels), (Lum16u, 3, MaskedPixels), (Lum32f, 1, AllPixels),
                     (Lum32f, 1, MaskedPixels), (Lum32f, 3, AllPixels), (Lum32f, 3, MaskedPixels));

} // namespace lum::kernels

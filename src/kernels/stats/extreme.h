// The smallest and the largest value of a region: the scalar form and the vector form with the same result; and the search
// for the place of each.
#pragma once

#include <limits>

#include "kernels/pixels.h"

namespace lum::kernels {

/// What is looked for; nothing is computed for the other side.
enum class Sides { lowest = 1, highest = 2, both = 3 };
constexpr bool includes(Sides sides, Sides side) {
    return (static_cast<int>(sides) & static_cast<int>(side)) != 0;
}

/// Every pixel counts.
struct AllPixels {
    static constexpr bool isMask = false;

    AllPixels row(int) const { return {}; }
    bool selects(int) const { return true; }
    template <int n> LUM_LANE Block<std::int8_t, n> excluded(int) const { return zeros<std::int8_t, n>(); }
    template <class T> LUM_LANE Block<std::int8_t, lanesOf<T>> excluded(const LastBlock<T>&) const {
        return zeros<std::int8_t, lanesOf<T>>();
    }
};

/// The pixels with a mask byte other than 0 count.
struct MaskedPixels {
    static constexpr bool isMask = true;
    Image<const Lum8u> mask;

    struct Row {
        const Lum8u* bytes;
        bool selects(int x) const { return bytes[x] != 0; }
        /// Those of n pixels from x on that do not count.
        template <int n> LUM_LANE Block<std::int8_t, n> excluded(int x) const {
            return load<n>(bytes + x) == zeros<Lum8u, n>();
        }
        template <class T> LUM_LANE Block<std::int8_t, lanesOf<T>> excluded(const LastBlock<T>& last) const {
            return last.load(bytes) == zeros<Lum8u, lanesOf<T>>();
        }
    };
    Row row(int y) const { return {mask.row(y)}; }
};

/// Nothing is beyond these: where a search starts.
template <class T>
constexpr T highestStart = std::numeric_limits<T>::has_infinity ? -std::numeric_limits<T>::infinity()
                                                                : std::numeric_limits<T>::min();
template <class T>
constexpr T lowestStart = std::numeric_limits<T>::has_infinity ? std::numeric_limits<T>::infinity()
                                                               : std::numeric_limits<T>::max();

/// The values found, and a row above which no row holds each: in the scalar form the row that holds it, and the first row
/// searched where no pixel went beyond the start. NaN loses every comparison. A 0 of floats may have either sign.
template <class T> struct Extremes {
    T lowest = lowestStart<T>;
    T highest = highestStart<T>;
    int lowestRow = 0;
    int highestRow = 0;
};

/// Lum8u, Lum16u, Lum32f; channels 1 and 3; AllPixels and MaskedPixels.
template <class T, int channels, class Selection> struct ExtremesOf {
    using PixelsOf = const Pixels<T, channels>&;

    /// Both search the rows from firstRow on; none above it holds a selected pixel.
    static Extremes<T> scalar(PixelsOf pixels, const Selection& selection, LumSize size, Sides sides,
                              int firstRow = 0);
    static Extremes<T> vectors(PixelsOf pixels, const Selection& selection, LumSize size, Sides sides,
                               int firstRow = 0);

    /// The first selected pixel in scan order that equals the value, in the given row or below; (-1, 0) where there is
    /// none.
    static LumPoint firstPlace(PixelsOf pixels, const Selection& selection, LumSize size, T value,
                               int fromRow);
};

/// The first row in which a byte of the mask is not 0; the height where there is none. Reads the mask up to there.
int firstSelectedRow(Image<const Lum8u> mask, LumSize size);

} // namespace lum::kernels

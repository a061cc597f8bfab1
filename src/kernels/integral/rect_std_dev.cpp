#include "kernels/integral/rect_std_dev.h"

#include <cmath>
#include <type_traits>

#include "frame/convert.h"
#include "frame/instances.h"
#include "frame/lanes_truncate.h"

namespace lum::kernels {
namespace {

/// The order in which a - b + c - d is summed: each order rounds differently.
enum class Order { fromTheLeft, pairs, positivesFirst };

template <Order order, class Value> Value combined(Value a, Value b, Value c, Value d) {
    if constexpr (order == Order::fromTheLeft)
        return ((a - b) + c) - d;
    else if constexpr (order == Order::pairs)
        return (a - b) + (c - d);
    else
        return (a + c) - (b + d);
}

/// The order in the integral of squares and, where it is not of integers, in that of pixels.
template <Shape shape, class Sum>
constexpr Order orderOf = std::is_integral_v<Sum>
                              ? (shape == Shape::upright ? Order::fromTheLeft : Order::positivesFirst)
                              : (shape == Shape::upright ? Order::pairs : Order::fromTheLeft);

/// The four corners' elements in one row of the result.
template <class T> struct CornerRows {
    const T* a;
    const T* b;
    const T* c;
    const T* d;

    CornerRows(const Corners<T>& corners, int y)
        : a(corners.a.row(y)), b(corners.b.row(y)), c(corners.c.row(y)), d(corners.d.row(y)) {}
};

/// The sum over the rectangle at pixel x, and at x and its right neighbours.
Lum32s wrappedSum(const CornerRows<Lum32s>& rows, int x) {
    const auto at = [x](const Lum32s* row) { return static_cast<unsigned>(row[x]); };
    return static_cast<Lum32s>(at(rows.a) - at(rows.b) + at(rows.c) - at(rows.d));
}
template <int N> LUM_LANE Block<Lum32s, N> wrappedSums(const CornerRows<Lum32s>& rows, int x) {
    return (load<N>(rows.a + x) - load<N>(rows.b + x)) + (load<N>(rows.c + x) - load<N>(rows.d + x));
}

/// The same of floats or doubles, which round at each step.
template <Order order, class T> T roundedSum(const CornerRows<T>& rows, int x) {
    return combined<order>(rows.a[x], rows.b[x], rows.c[x], rows.d[x]);
}
template <Order order, int N, class T> LUM_LANE Block<T, N> roundedSums(const CornerRows<T>& rows, int x) {
    return combined<order>(load<N>(rows.a + x), load<N>(rows.b + x), load<N>(rows.c + x),
                           load<N>(rows.d + x));
}

// The comparison is also false for a NaN, and the maximum of a NaN and 0 in this order is 0.
float notBelowZero(float variance) { return variance > 0 ? variance : 0.0F; }
template <int N> LUM_LANE Block<float, N> notBelowZero(Block<float, N> variances) {
    return max(variances, zeros<float, N>());
}

/// Integer sums, deviation times a scale.
template <Shape shape> class ScaledDeviation {
  public:
    using SumElement = Lum32s;
    using SquareElement = Lum32s;
    using Result = Lum32s;

    ScaledDeviation(double pixels, double scale) : pixels_(nearestFloat(pixels)), scale_(scale) {}

    Lum32s one(const CornerRows<Lum32s>& sums, const CornerRows<Lum32s>& squares, int x) const {
        const float mean = static_cast<float>(wrappedSum(sums, x)) / pixels_;
        const float meanSquare = static_cast<float>(wrappedSum(squares, x)) / pixels_;
        float variance;
        if constexpr (shape == Shape::upright)
            variance = meanSquare - mean * mean;
        else
            variance =
                nearestFloat(double{meanSquare} - static_cast<double>(mean) * static_cast<double>(mean));
        return truncatedTo32s(std::sqrt(double{notBelowZero(variance)}) * scale_ + 0.5);
    }

    template <int N>
    LUM_LANE Block<Lum32s, N> block(const CornerRows<Lum32s>& sums, const CornerRows<Lum32s>& squares,
                                    int x) const {
        const auto pixels = broadcast<N>(pixels_);
        const auto means = toFloat(wrappedSums<N>(sums, x)) / pixels;
        const auto meanSquares = toFloat(wrappedSums<N>(squares, x)) / pixels;
        Block<float, N> variances;
        if constexpr (shape == Shape::upright) {
            variances = meanSquares - means * means;
        } else {
            const auto wide = toDouble(means);
            variances = toFloat(toDouble(meanSquares) - wide * wide);
        }
        const auto scaled = sqrt(toDouble(notBelowZero(variances))) * scale_ + broadcast<N>(0.5);
        return truncatedTo32s(scaled);
    }

  private:
    float pixels_;
    double scale_;
};

/// Sums of integers or floats with squares in doubles, deviation in single precision.
template <Shape shape, class Sum> class Deviation {
  public:
    using SumElement = Sum;
    using SquareElement = Lum64f;
    using Result = Lum32f;

    explicit Deviation(double pixels)
        : floatPixels_(nearestFloat(pixels)), pixels_(pixels), reciprocal_(1.0 / pixels) {}

    Lum32f one(const CornerRows<Sum>& sums, const CornerRows<Lum64f>& squares, int x) const {
        const double mean = meanOf(sums, x);
        const double square = roundedSum<order>(squares, x);
        const double meanSquare = byReciprocal ? square * reciprocal_ : square / pixels_;
        return std::sqrt(notBelowZero(nearestFloat(meanSquare - mean * mean)));
    }

    template <int N>
    LUM_LANE Block<Lum32f, N> block(const CornerRows<Sum>& sums, const CornerRows<Lum64f>& squares,
                                    int x) const {
        const auto means = meansOf<N>(sums, x);
        const auto meanSquares = perPixel(roundedSums<order, N>(squares, x));
        return sqrt(notBelowZero(toFloat(meanSquares - means * means)));
    }

  private:
    static constexpr Order order = orderOf<shape, Sum>;
    static constexpr bool byReciprocal = shape == Shape::upright && std::is_floating_point_v<Sum>;

    double meanOf(const CornerRows<Sum>& sums, int x) const {
        if constexpr (std::is_integral_v<Sum>)
            return static_cast<float>(wrappedSum(sums, x)) / floatPixels_;
        else if constexpr (shape == Shape::upright)
            return double{roundedSum<order>(sums, x)} * reciprocal_;
        else
            return combined<order>(double{sums.a[x]}, double{sums.b[x]}, double{sums.c[x]},
                                   double{sums.d[x]}) /
                   pixels_;
    }

    template <int N> LUM_LANE Block<double, N> meansOf(const CornerRows<Sum>& sums, int x) const {
        if constexpr (std::is_integral_v<Sum>)
            return toDouble(toFloat(wrappedSums<N>(sums, x)) / broadcast<N>(floatPixels_));
        else if constexpr (shape == Shape::upright)
            return perPixel(toDouble(roundedSums<order, N>(sums, x)));
        else
            return perPixel(combined<order>(toDouble(load<N>(sums.a + x)), toDouble(load<N>(sums.b + x)),
                                            toDouble(load<N>(sums.c + x)), toDouble(load<N>(sums.d + x))));
    }

    template <int N> LUM_LANE Block<double, N> perPixel(Block<double, N> values) const {
        if constexpr (byReciprocal)
            return values * reciprocal_;
        else
            return values / broadcast<N>(pixels_);
    }

    float floatPixels_;
    double pixels_;
    double reciprocal_;
};

template <bool inVectors, class Recipe>
void rowsOf(const Recipe& recipe, const Corners<typename Recipe::SumElement>& sum,
            const Corners<typename Recipe::SquareElement>& square, Image<typename Recipe::Result> dst,
            LumSize size) {
    for (int y = 0; y < size.height; ++y) {
        const CornerRows sums(sum, y);
        const CornerRows squares(square, y);
        auto* result = dst.row(y);
        int x = 0;
        if constexpr (inVectors) {
            // 16 pixels per iteration
            for (; x <= size.width - 16; x += 16)
                forVectors<float, 16>([&]<int n>(int i) LUM_INLINED {
                    store(recipe.template block<n>(sums, squares, x + i), result + x + i);
                });
            // 4 pixels per iteration
            for (; x <= size.width - 4; x += 4) store(recipe.template block<4>(sums, squares, x), result + x);
        }
        // tail: scalar, one pixel at a time
        for (; x < size.width; ++x) result[x] = recipe.one(sums, squares, x);
    }
}

} // namespace

template <Shape shape>
void scaledDeviationScalar(const Corners<Lum32s>& sum, const Corners<Lum32s>& square, Image<Lum32s> dst,
                           LumSize size, double pixels, double scale) {
    rowsOf<false>(ScaledDeviation<shape>(pixels, scale), sum, square, dst, size);
}

template <Shape shape>
void scaledDeviation(const Corners<Lum32s>& sum, const Corners<Lum32s>& square, Image<Lum32s> dst,
                     LumSize size, double pixels, double scale) {
    rowsOf<true>(ScaledDeviation<shape>(pixels, scale), sum, square, dst, size);
}

template <Shape shape, class Sum>
void deviationScalar(const Corners<Sum>& sum, const Corners<Lum64f>& square, Image<Lum32f> dst, LumSize size,
                     double pixels) {
    rowsOf<false>(Deviation<shape, Sum>(pixels), sum, square, dst, size);
}

template <Shape shape, class Sum>
void deviation(const Corners<Sum>& sum, const Corners<Lum64f>& square, Image<Lum32f> dst, LumSize size,
               double pixels) {
    rowsOf<true>(Deviation<shape, Sum>(pixels), sum, square, dst, size);
}

LUM_INSTANCES(scaledDeviationScalar, (Shape::upright), (Shape::tilted));
LUM_INSTANCES(scaledDeviation, (Shape::upright), (Shape::tilted));
LUM_INSTANCES(deviationScalar, (Shape::upright, Lum32s), (Shape::upright, Lum32f), (Shape::tilted, Lum32s),
              (Shape::tilted, Lum32f));
LUM_INSTANCES(deviation, (Shape::upright, Lum32s), (Shape::upright, Lum32f), (Shape::tilted, Lum32s),
              (Shape::tilted, Lum32f));

} // namespace lum::kernels

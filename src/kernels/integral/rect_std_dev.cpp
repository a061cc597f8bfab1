#include "kernels/integral/rect_std_dev.h"

#include <cmath>
#include <type_traits>

#include "frame/convert.h"
#include "frame/vector.h"

namespace lum::kernels {
namespace {

float sum(float p, float q) { return p + q; }
double sum(double p, double q) { return p + q; }
__m128 sum(__m128 p, __m128 q) { return _mm_add_ps(p, q); }
__m128d sum(__m128d p, __m128d q) { return _mm_add_pd(p, q); }
float difference(float p, float q) { return p - q; }
double difference(double p, double q) { return p - q; }
__m128 difference(__m128 p, __m128 q) { return _mm_sub_ps(p, q); }
__m128d difference(__m128d p, __m128d q) { return _mm_sub_pd(p, q); }

/// The order in which a - b + c - d is summed: each order rounds differently.
enum class Order { fromTheLeft, pairs, positivesFirst };

template <Order order, class Value> Value combined(Value a, Value b, Value c, Value d) {
    if constexpr (order == Order::fromTheLeft)
        return difference(sum(difference(a, b), c), d);
    else if constexpr (order == Order::pairs)
        return sum(difference(a, b), difference(c, d));
    else
        return difference(sum(a, c), sum(b, d));
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

/// Sums over the rectangle at pixel x, and at x and its right neighbours.
Lum32s wrappedSum(const CornerRows<Lum32s>& rows, int x) {
    const auto at = [x](const Lum32s* row) { return static_cast<unsigned>(row[x]); };
    return static_cast<Lum32s>(at(rows.a) - at(rows.b) + at(rows.c) - at(rows.d));
}

__m128i wrappedSumsOfFour(const CornerRows<Lum32s>& rows, int x) {
    const auto at = [x](const Lum32s* row) { return loadVector<Access::unaligned>(row + x); };
    return _mm_add_epi32(_mm_sub_epi32(at(rows.a), at(rows.b)), _mm_sub_epi32(at(rows.c), at(rows.d)));
}

template <Order order> double doubleSum(const CornerRows<Lum64f>& rows, int x) {
    return combined<order>(rows.a[x], rows.b[x], rows.c[x], rows.d[x]);
}

template <Order order> __m128d doubleSumsOfTwo(const CornerRows<Lum64f>& rows, int x) {
    const auto at = [x](const Lum64f* row) { return _mm_loadu_pd(row + x); };
    return combined<order>(at(rows.a), at(rows.b), at(rows.c), at(rows.d));
}

/// Float4 values in double precision.
struct FourDoubles {
    __m128d low;
    __m128d high;

    static FourDoubles of(__m128 floats) {
        return {_mm_cvtps_pd(floats), _mm_cvtps_pd(_mm_movehl_ps(floats, floats))};
    }
    __m128 rounded() const { return _mm_movelh_ps(_mm_cvtpd_ps(low), _mm_cvtpd_ps(high)); }
    FourDoubles times(__m128d factor) const { return {_mm_mul_pd(low, factor), _mm_mul_pd(high, factor)}; }
    FourDoubles over(__m128d divisor) const { return {_mm_div_pd(low, divisor), _mm_div_pd(high, divisor)}; }
    FourDoubles lessSquaresOf(const FourDoubles& means) const {
        return {_mm_sub_pd(low, _mm_mul_pd(means.low, means.low)),
                _mm_sub_pd(high, _mm_mul_pd(means.high, means.high))};
    }
};

// The comparison is also false for a NaN, and the maximum of a NaN and 0 in this order is 0.
float notBelowZero(float variance) { return variance > 0 ? variance : 0.0F; }
__m128 notBelowZero(__m128 variances) { return _mm_max_ps(variances, _mm_setzero_ps()); }

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

    void four(const CornerRows<Lum32s>& sums, const CornerRows<Lum32s>& squares, int x, Lum32s* dst) const {
        const __m128 pixels = _mm_set1_ps(pixels_);
        const __m128 means = _mm_div_ps(_mm_cvtepi32_ps(wrappedSumsOfFour(sums, x)), pixels);
        const __m128 meanSquares = _mm_div_ps(_mm_cvtepi32_ps(wrappedSumsOfFour(squares, x)), pixels);
        __m128 variances;
        if constexpr (shape == Shape::upright)
            variances = _mm_sub_ps(meanSquares, _mm_mul_ps(means, means));
        else
            variances = FourDoubles::of(meanSquares).lessSquaresOf(FourDoubles::of(means)).rounded();
        const FourDoubles clamped = FourDoubles::of(notBelowZero(variances));
        storeVector<Access::unaligned>(dst, _mm_unpacklo_epi64(scaled(clamped.low), scaled(clamped.high)));
    }

  private:
    __m128i scaled(__m128d variances) const {
        const __m128d products = _mm_mul_pd(_mm_sqrt_pd(variances), _mm_set1_pd(scale_));
        return truncatedTo32s(_mm_add_pd(products, _mm_set1_pd(0.5)));
    }

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
        : singlePixels_(nearestFloat(pixels)), pixels_(pixels), reciprocal_(1.0 / pixels) {}

    Lum32f one(const CornerRows<Sum>& sums, const CornerRows<Lum64f>& squares, int x) const {
        const double mean = meanOf(sums, x);
        const double square = doubleSum<order>(squares, x);
        const double meanSquare = byReciprocal ? square * reciprocal_ : square / pixels_;
        return std::sqrt(notBelowZero(nearestFloat(meanSquare - mean * mean)));
    }

    void four(const CornerRows<Sum>& sums, const CornerRows<Lum64f>& squares, int x, Lum32f* dst) const {
        const FourDoubles square{doubleSumsOfTwo<order>(squares, x), doubleSumsOfTwo<order>(squares, x + 2)};
        const __m128 variances = perPixel(square).lessSquaresOf(meansOfFour(sums, x)).rounded();
        storeFloats<Access::unaligned>(dst, _mm_sqrt_ps(notBelowZero(variances)));
    }

  private:
    static constexpr Order order = orderOf<shape, Sum>;
    static constexpr bool byReciprocal = shape == Shape::upright && std::is_floating_point_v<Sum>;

    double meanOf(const CornerRows<Sum>& sums, int x) const {
        if constexpr (std::is_integral_v<Sum>)
            return static_cast<float>(wrappedSum(sums, x)) / singlePixels_;
        else if constexpr (shape == Shape::upright)
            return double{combined<order>(sums.a[x], sums.b[x], sums.c[x], sums.d[x])} * reciprocal_;
        else
            return combined<order>(double{sums.a[x]}, double{sums.b[x]}, double{sums.c[x]},
                                   double{sums.d[x]}) /
                   pixels_;
    }

    FourDoubles meansOfFour(const CornerRows<Sum>& sums, int x) const {
        if constexpr (std::is_integral_v<Sum>) {
            const __m128 floats = _mm_cvtepi32_ps(wrappedSumsOfFour(sums, x));
            return FourDoubles::of(_mm_div_ps(floats, _mm_set1_ps(singlePixels_)));
        } else {
            const auto at = [x](const Lum32f* row) { return loadFloats<Access::unaligned>(row + x); };
            if constexpr (shape == Shape::upright) {
                return perPixel(
                    FourDoubles::of(combined<order>(at(sums.a), at(sums.b), at(sums.c), at(sums.d))));
            } else {
                const FourDoubles a = FourDoubles::of(at(sums.a));
                const FourDoubles b = FourDoubles::of(at(sums.b));
                const FourDoubles c = FourDoubles::of(at(sums.c));
                const FourDoubles d = FourDoubles::of(at(sums.d));
                return perPixel({combined<order>(a.low, b.low, c.low, d.low),
                                 combined<order>(a.high, b.high, c.high, d.high)});
            }
        }
    }

    FourDoubles perPixel(const FourDoubles& values) const {
        if constexpr (byReciprocal)
            return values.times(_mm_set1_pd(reciprocal_));
        else
            return values.over(_mm_set1_pd(pixels_));
    }

    float singlePixels_;
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
        // 4 pixels per iteration
        if constexpr (inVectors)
            for (; x <= size.width - 4; x += 4) recipe.four(sums, squares, x, result + x);
        // tail, one pixel at a time
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

template decltype(scaledDeviationScalar<Shape::upright>) scaledDeviationScalar<Shape::upright>;
template decltype(scaledDeviationScalar<Shape::tilted>) scaledDeviationScalar<Shape::tilted>;
template decltype(scaledDeviation<Shape::upright>) scaledDeviation<Shape::upright>;
template decltype(scaledDeviation<Shape::tilted>) scaledDeviation<Shape::tilted>;
template decltype(deviationScalar<Shape::upright, Lum32s>) deviationScalar<Shape::upright, Lum32s>;
template decltype(deviationScalar<Shape::upright, Lum32f>) deviationScalar<Shape::upright, Lum32f>;
template decltype(deviationScalar<Shape::tilted, Lum32s>) deviationScalar<Shape::tilted, Lum32s>;
template decltype(deviationScalar<Shape::tilted, Lum32f>) deviationScalar<Shape::tilted, Lum32f>;
template decltype(deviation<Shape::upright, Lum32s>) deviation<Shape::upright, Lum32s>;
template decltype(deviation<Shape::upright, Lum32f>) deviation<Shape::upright, Lum32f>;
template decltype(deviation<Shape::tilted, Lum32s>) deviation<Shape::tilted, Lum32s>;
template decltype(deviation<Shape::tilted, Lum32f>) deviation<Shape::tilted, Lum32f>;

} // namespace lum::kernels

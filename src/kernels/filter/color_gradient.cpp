#include "kernels/filter/color_gradient.h"

#include <cmath>
#include <type_traits>

#include "frame/convert.h"
#include "frame/instances.h"
#include "frame/lanes_products.h"
#include "frame/lanes_reduce.h"
#include "kernels/pixels.h"

namespace lum::kernels {
namespace {

/// A channel of n pixels each.
template <class T, int n> struct Channels { Block<T, n> r, g, b; };

/// Unsigned elements as signed ones of twice the size, in halves of units.
template <class T, int n> LUM_LANE auto widenUnits(Block<T, n> a) {
    using Wide = SignedOf<2 * sizeof(T)>;
    const auto halves = interleaveUnits(a, zeros<T, n>());
    return UnitHalves<Wide, n / 2>{bitsAs<Wide>(halves.low), bitsAs<Wide>(halves.high)};
}

/// The block that reduce(r, g, b) makes of channels in wider elements, from either half.
template <class T, int n, class Reduce>
LUM_LANE Block<T, n> reduceWide(const Channels<T, n>& c, Reduce reduce) {
    const auto r = widenUnits(c.r);
    const auto g = widenUnits(c.g);
    const auto b = widenUnits(c.b);
    const auto low = reduce(r.low, g.low, b.low);
    return narrowUnits<T>(low, reduce(r.high, g.high, b.high));
}

/// Largest channel: its value, and a block of values at once.
struct Largest {
    template <class T> static T one(T r, T g, T b) {
        const T larger = r > g ? r : g;
        return larger > b ? larger : b;
    }
    template <class T, int n> LUM_LANE static Block<T, n> block(const Channels<T, n>& c) {
        return max(max(c.r, c.g), c.b);
    }
};

constexpr float third = 1.0F / 3.0F;

constexpr Lum8u meanOfSum(int sum) { return static_cast<Lum8u>((sum * 1365 + 2048) >> 12); }

/// Of the half that is added before the shift, a product of words takes 2047.5: no sum of bytes tells the difference.
constexpr Lum16s halfFactor = 1365 * 8;
static_assert([] {
    for (int sum = 0; sum <= 3 * 255; ++sum)
        if (((2 * sum + 3) * halfFactor) >> 16 != meanOfSum(sum)) return false;
    return true;
}());

struct Mean {
    static Lum8u one(Lum8u r, Lum8u g, Lum8u b) { return meanOfSum(r + g + b); }
    static Lum16u one(Lum16u r, Lum16u g, Lum16u b) { return static_cast<Lum16u>((r + g + b + 1) / 3); }
    static Lum32f one(Lum32f r, Lum32f g, Lum32f b) { return (r + g + b) * third; }

    template <class T, int n> LUM_LANE static Block<T, n> block(const Channels<T, n>& c) {
        if constexpr (sizeof(T) == 1) {
            return reduceWide(
                c, []<int m>(Block<Lum16s, m> r, Block<Lum16s, m> g, Block<Lum16s, m> b) LUM_INLINED {
                    const auto sum = r + g + b;
                    return multiplyHigh(sum + sum + broadcast<m>(Lum16s{3}), broadcast<m>(halfFactor));
                });
        } else if constexpr (sizeof(T) == 2) {
            // The factor is above a third by so little that the product of no sum of words reaches the next integer, and
            // that of no multiple of three stays below it, in any rounding mode.
            return reduceWide(
                c, []<int m>(Block<Lum32s, m> r, Block<Lum32s, m> g, Block<Lum32s, m> b) LUM_INLINED {
                    return truncated(toFloat(r + g + b + broadcast<m>(1)) * broadcast<m>(third));
                });
        } else {
            return (c.r + c.g + c.b) * broadcast<n>(third);
        }
    }
};

/// The square root of a third: of integers, which are rounded, white stays white.
constexpr float rootOfThird = 0.57735026F;

struct Root {
    template <class T> static T one(T r, T g, T b) {
        const auto x = static_cast<float>(r);
        const auto y = static_cast<float>(g);
        const auto z = static_cast<float>(b);
        const float root = std::sqrt(x * x + y * y + z * z) * rootOfThird;
        if constexpr (std::is_integral_v<T>)
            return nearestEven<T>(root);
        else
            return root;
    }

    template <class T, int n> LUM_LANE static Block<T, n> block(const Channels<T, n>& c) {
        if constexpr (sizeof(T) == 1) {
            // Squares of bytes and their sums are exact in integers and in single precision alike.
            return reduceWide(
                c, []<int m>(Block<Lum16s, m> r, Block<Lum16s, m> g, Block<Lum16s, m> b) LUM_INLINED {
                    const auto firstTwo = interleaveUnits(r, g);
                    const auto last = interleaveUnits(b, zeros<Lum16s, m>());
                    const auto rounded = [](auto pairs, auto lastOnes) LUM_INLINED {
                        return nearestEven(scaled(
                            toFloat(multiplyAddPairs(pairs, pairs) + multiplyAddPairs(lastOnes, lastOnes))));
                    };
                    return narrowUnits<Lum16s>(rounded(firstTwo.low, last.low),
                                               rounded(firstTwo.high, last.high));
                });
        } else if constexpr (sizeof(T) == 2) {
            // The limit comes before the conversion, as everywhere.
            return reduceWide(c, []<int m>(Block<Lum32s, m> r, Block<Lum32s, m> g,
                                           Block<Lum32s, m> b) LUM_INLINED {
                return nearestEven(min(ofFloats(toFloat(r), toFloat(g), toFloat(b)), broadcast<m>(65535.0F)));
            });
        } else {
            return ofFloats(c.r, c.g, c.b);
        }
    }

  private:
    template <int n> LUM_LANE static Block<float, n> scaled(Block<float, n> sums) {
        return sqrt(sums) * broadcast<n>(rootOfThird);
    }
    template <int n>
    LUM_LANE static Block<float, n> ofFloats(Block<float, n> r, Block<float, n> g, Block<float, n> b) {
        return scaled(r * r + g * g + b * b);
    }
};

template <class Reduction, class T>
void reduceRow(const T* pixels, T* result, std::ptrdiff_t first, std::ptrdiff_t last) {
    for (std::ptrdiff_t x = first; x < last; ++x)
        result[x] = Reduction::one(pixels[3 * x], pixels[3 * x + 1], pixels[3 * x + 2]);
}

template <class Reduction, class T> void reduceScalar(Image<const T> src, Image<T> dst, LumSize size) {
    for (int y = 0; y < size.height; ++y) reduceRow<Reduction>(src.row(y), dst.row(y), 0, size.width);
}

template <class Reduction, class T> void reduce(Image<const T> src, Image<T> dst, LumSize size) {
    using Channel = PixelVectors<T, 3>;
    const Channel r(Pixels<T, 3>{src, 0});
    const Channel g(Pixels<T, 3>{src, 1});
    const Channel b(Pixels<T, 3>{src, 2});
    for (int y = 0; y < size.height; ++y) {
        const T* pixels = src.row(y);
        T* result = dst.row(y);
        // a vector of results per iteration
        const int x = forBlocks<T, lanesOf<T>>(0, size.width, [&]<int n>(int i) LUM_INLINED {
            const Channels<T, n> channels{r.template block<n>(pixels, i), g.template block<n>(pixels, i),
                                          b.template block<n>(pixels, i)};
            store(Reduction::block(channels), result + i);
        });
        // tail: scalar, one pixel at a time
        reduceRow<Reduction>(pixels, result, x, size.width);
    }
}

} // namespace

template <class T> void largestOfThreeScalar(Image<const T> src, Image<T> dst, LumSize size) {
    reduceScalar<Largest>(src, dst, size);
}
template <class T> void largestOfThree(Image<const T> src, Image<T> dst, LumSize size) {
    reduce<Largest>(src, dst, size);
}
template <class T> void meanOfThreeScalar(Image<const T> src, Image<T> dst, LumSize size) {
    reduceScalar<Mean>(src, dst, size);
}
template <class T> void meanOfThree(Image<const T> src, Image<T> dst, LumSize size) {
    reduce<Mean>(src, dst, size);
}
template <class T> void rootOfSquaresScalar(Image<const T> src, Image<T> dst, LumSize size) {
    reduceScalar<Root>(src, dst, size);
}
template <class T> void rootOfSquares(Image<const T> src, Image<T> dst, LumSize size) {
    reduce<Root>(src, dst, size);
}

LUM_INSTANCES(largestOfThreeScalar, (Lum8u), (Lum16u), (Lum32f));
LUM_INSTANCES(largestOfThree, (Lum8u), (Lum16u), (Lum32f));
LUM_INSTANCES(meanOfThreeScalar, (Lum8u), (Lum16u), (Lum32f));
LUM_INSTANCES(meanOfThree, (Lum8u), (Lum16u), (Lum32f));
LUM_INSTANCES(rootOfSquaresScalar, (Lum8u), (Lum16u), (Lum32f));
LUM_INSTANCES(rootOfSquares, (Lum8u), (Lum16u), (Lum32f));

} // namespace lum::kernels

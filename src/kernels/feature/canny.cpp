#include "kernels/feature/canny.h"

#include <bit>
#include <cmath>
#include <cstring>

#include "frame/instances.h"
#include "frame/lanes_products.h"
#include "frame/lanes_reduce.h"
#include "kernels/feature/blocks.h"

namespace lum::kernels {
namespace {

constexpr float tangentOfEighth = std::bit_cast<float>(0x3ED413CDU);       // 0.41421357
constexpr float tangentOfThreeEighths = std::bit_cast<float>(0x401A827AU); // 2.4142137

/// The bound above which a gradient is vertical: of caller-made gradients one product, of the detector's own a sum.
enum class UpperBound { product, sum };

template <UpperBound bound, class V> LUM_LANE V upperBound(V adx, V lower, V three) {
    if constexpr (bound == UpperBound::product)
        return adx * three;
    else
        return (adx + adx) + lower;
}

template <UpperBound bound> Lum8u directionOf(float dx, float dy, bool sameSign) {
    const float adx = std::fabs(dx);
    const float ady = std::fabs(dy);
    const float lower = adx * tangentOfEighth;
    if (ady < lower) return directionHorizontal;
    if (upperBound<bound>(adx, lower, tangentOfThreeEighths) < ady) return directionVertical;
    return sameSign ? directionFalling : directionRising;
}

/// Directions of eight gradients from masks of 16 bits.
LUM_LANE Block<Lum8u, 8> directionsOf(Block<Lum16s, 8> horizontal, Block<Lum16s, 8> vertical,
                                      Block<Lum16s, 8> differentSigns) {
    // the mask of different signs is -1
    const auto diagonal = broadcast<8>(Lum16s{directionFalling}) + differentSigns + differentSigns;
    const auto straight = select(horizontal, broadcast<8>(Lum16s{directionHorizontal}),
                                 broadcast<8>(Lum16s{directionVertical}));
    return narrowSaturated<Lum8u>(select(horizontal | vertical, straight, diagonal));
}

template <UpperBound bound>
LUM_LANE Block<Lum8u, 8> directionsOf(Block<float, 8> adx, Block<float, 8> ady,
                                      Block<Lum16s, 8> differentSigns) {
    const auto lower = adx * broadcast<8>(tangentOfEighth);
    const auto upper = upperBound<bound>(adx, lower, broadcast<8>(tangentOfThreeEighths));
    return directionsOf(narrowSaturated<Lum16s>(ady < lower), narrowSaturated<Lum16s>(upper < ady),
                        differentSigns);
}

/// Up to here the integral parts of both bounds are those of (27146 * adx) >> 16 and of 2 * adx more, so integers
/// suffice: 1393 * 27146 / 65536 is above 577, the bound of 1393 below it.
constexpr Lum16u largestOfIntegralBounds = 1392;

/// The same where no adx is above largestOfIntegralBounds; where adx and ady are 0 nothing is asked of the direction.
LUM_LANE Block<Lum8u, 8> directionsOfSmall(Block<Lum16u, 8> adx, Block<Lum16u, 8> ady,
                                           Block<Lum16s, 8> differentSigns) {
    const auto lower = multiplyHigh(adx, broadcast<8>(Lum16u{27146}));
    return directionsOf(ady <= lower, ady > (adx + adx) + lower, differentSigns);
}

/// A mask of eight elements with 16 bits for each.
template <class S> LUM_LANE Block<Lum16s, 8> mask16(Block<S, 8> mask) {
    if constexpr (sizeof(S) == 2)
        return mask;
    else
        return narrowSaturated<Lum16s>(mask);
}

/// Eight bytes of the map.
template <class M>
LUM_LANE Block<Lum8u, 8> suppressed(const MagnitudeRows<M>& rows, const Lum8u* directions, std::ptrdiff_t x,
                                    Block<M, 8> high) {
    const M* previous = rows.previous + x;
    const M* current = rows.current + x;
    const M* next = rows.next + x;
    const auto m = load<8>(current);
    const auto isAbove = [m](const M* place) { return mask16(m > load<8>(place)); };
    const auto isNotBelow = [m](const M* place) { return mask16(m >= load<8>(place)); };
    const auto direction = widen<Lum16s>(load<8>(directions + x));
    const auto isHorizontal = direction == broadcast<8>(Lum16s{directionHorizontal});
    auto ridge = isHorizontal & isAbove(current - 1) & isNotBelow(current + 1);
    const auto isVertical = direction == broadcast<8>(Lum16s{directionVertical});
    ridge = ridge | (isVertical & isAbove(previous) & isNotBelow(next));
    const auto isFalling = direction == broadcast<8>(Lum16s{directionFalling});
    ridge = ridge | (isFalling & isAbove(previous - 1) & isAbove(next + 1));
    // a magnitude of 0 is above no neighbour, whatever its direction
    const auto isRising = direction == broadcast<8>(Lum16s{directionRising});
    ridge = ridge | (isRising & isAbove(previous + 1) & isAbove(next - 1));
    const auto edges = narrowSaturated<Lum8s>(ridge & mask16(m > high));
    const auto ridges = narrowSaturated<Lum8s>(ridge) & broadcast<8>(static_cast<Lum8s>(mapRidge));
    return bitsAs<Lum8u>(ridges | edges);
}

/// Magnitudes that do not count are 0.
template <Magnitude magnitude, class M> M counted(M value, M low) {
    const bool counts = magnitude == Magnitude::sumKeepingEqual ? !(value < low) : value > low;
    return counts ? value : M{0};
}
template <Magnitude magnitude, class M, int N>
LUM_LANE Block<M, N> counted(Block<M, N> values, Block<M, N> low) {
    if constexpr (magnitude == Magnitude::sumKeepingEqual)
        return andNot(bitsAs<M>(values < low), values);
    else
        return values & bitsAs<M>(values > low);
}

// ---- gradients of integers

template <Magnitude magnitude> MagnitudeElement<Lum16s, magnitude> magnitudeOf(Lum16s dx, Lum16s dy) {
    const auto adx = static_cast<std::uint32_t>(std::abs(int{dx}));
    const auto ady = static_cast<std::uint32_t>(std::abs(int{dy}));
    if constexpr (magnitude == Magnitude::sum)
        return static_cast<Lum16u>(adx + ady < 65535 ? adx + ady : 65535);
    else if constexpr (magnitude == Magnitude::squares)
        return adx * adx + ady * ady;
    else
        return std::sqrt(static_cast<float>(static_cast<Lum32s>(adx * adx + ady * ady)));
}

template <Magnitude magnitude> LUM_LANE auto magnitudesOf(Block<Lum16s, 8> dx, Block<Lum16s, 8> dy) {
    if constexpr (magnitude == Magnitude::sum) {
        return addSaturated(bitsAs<Lum16u>(abs(dx)), bitsAs<Lum16u>(abs(dy)));
    } else {
        const auto pairs = interleave(dx, dy);
        const auto squares = multiplyAddPairs(pairs, pairs);
        if constexpr (magnitude == Magnitude::squares)
            return bitsAs<std::uint32_t>(squares);
        else
            return sqrt(toFloat(squares));
    }
}

/// Eight pixels of a row; `largest` is what no |dx| is above.
template <Magnitude magnitude, UpperBound bound, int largest, class M = MagnitudeElement<Lum16s, magnitude>>
LUM_LANE void storeGradients(Block<Lum16s, 8> dx, Block<Lum16s, 8> dy, Block<M, 8> low, M* magnitudes,
                             Lum8u* directions) {
    const auto values = counted<magnitude>(magnitudesOf<magnitude>(dx, dy), low);
    store(values, magnitudes);
    // of the lowest integer the magnitude has the sign bit, so both are unsigned
    const auto adx = bitsAs<Lum16u>(abs(dx));
    const auto ady = bitsAs<Lum16u>(abs(dy));
    const auto differentSigns = (dx ^ dy) >> 15;
    if (largest > largestOfIntegralBounds && any(adx > broadcast<8>(largestOfIntegralBounds)))
        store(directionsOf<bound>(toFloat(widen<Lum32s>(adx)), toFloat(widen<Lum32s>(ady)), differentSigns),
              directions);
    else
        store(directionsOfSmall(adx, ady, differentSigns), directions);
}

// ---- gradients of floats

template <Magnitude magnitude, class V> LUM_LANE V magnitudeOfFloats(V dx, V dy, V adx, V ady) {
    if constexpr (magnitude == Magnitude::squares)
        return dx * dx + dy * dy;
    else
        return adx + ady;
}

} // namespace

template <Magnitude magnitude, class D>
void magnitudeRowScalar(const D* dx, const D* dy, std::ptrdiff_t count, MagnitudeElement<D, magnitude> low,
                        MagnitudeElement<D, magnitude>* magnitudes, Lum8u* directions) {
    for (std::ptrdiff_t x = 0; x < count; ++x) {
        bool sameSign;
        if constexpr (std::is_same_v<D, Lum16s>) {
            magnitudes[x] = counted<magnitude>(magnitudeOf<magnitude>(dx[x], dy[x]), low);
            sameSign = (dx[x] < 0) == (dy[x] < 0);
        } else {
            magnitudes[x] = counted<magnitude>(
                magnitudeOfFloats<magnitude>(dx[x], dy[x], std::fabs(dx[x]), std::fabs(dy[x])), low);
            sameSign = std::signbit(dx[x]) == std::signbit(dy[x]);
        }
        directions[x] = directionOf<UpperBound::product>(dx[x], dy[x], sameSign);
    }
}

template <Magnitude magnitude, class D>
void magnitudeRow(const D* dx, const D* dy, std::ptrdiff_t count, MagnitudeElement<D, magnitude> low,
                  MagnitudeElement<D, magnitude>* magnitudes, Lum8u* directions) {
    if (count < 8) return magnitudeRowScalar<magnitude>(dx, dy, count, low, magnitudes, directions);
    const auto lowest = broadcast<8>(low);
    // 8 pixels per iteration
    forBlocks<8>(count, [&](std::ptrdiff_t x) {
        const auto dxs = load<8>(dx + x);
        const auto dys = load<8>(dy + x);
        if constexpr (std::is_same_v<D, Lum16s>) {
            storeGradients<magnitude, UpperBound::product, 32768>(dxs, dys, lowest, magnitudes + x,
                                                                  directions + x);
        } else {
            const auto adx = abs(dxs);
            const auto ady = abs(dys);
            const auto values = counted<magnitude>(magnitudeOfFloats<magnitude>(dxs, dys, adx, ady), lowest);
            store(values, magnitudes + x);
            if (!any(values != zeros<float, 8>())) return;
            const auto differentSigns = narrowSaturated<Lum16s>(bitsAs<Lum32s>(dxs ^ dys) >> 31);
            store(directionsOf<UpperBound::product>(adx, ady, differentSigns), directions + x);
        }
    });
}

template <Derivative kind, Magnitude magnitude>
void gradientMagnitudeRowScalar(const Lum16s* smooth, const Lum16s* difference, std::ptrdiff_t count,
                                MagnitudeElement<Lum16s, magnitude> low,
                                MagnitudeElement<Lum16s, magnitude>* magnitudes, Lum8u* directions) {
    for (std::ptrdiff_t x = 0; x < count; ++x) {
        const auto dx = static_cast<Lum16s>(differenced<kind>([&](int i) { return int{smooth[x + i]}; }));
        const auto dy = static_cast<Lum16s>(smoothed<kind>([&](int i) { return int{difference[x + i]}; }));
        magnitudes[x] = counted<magnitude>(magnitudeOf<magnitude>(dx, dy), low);
        directions[x] = directionOf<UpperBound::sum>(dx, dy, (dx < 0) == (dy < 0));
    }
}

template <Derivative kind, Magnitude magnitude>
void gradientMagnitudeRow(const Lum16s* smooth, const Lum16s* difference, std::ptrdiff_t count,
                          MagnitudeElement<Lum16s, magnitude> low,
                          MagnitudeElement<Lum16s, magnitude>* magnitudes, Lum8u* directions) {
    if (count < 8)
        return gradientMagnitudeRowScalar<kind, magnitude>(smooth, difference, count, low, magnitudes,
                                                           directions);
    constexpr int largest = kind == Derivative::sobel3    ? 4 * 255
                            : kind == Derivative::scharr3 ? 16 * 255
                                                          : 48 * 255;
    const auto lowest = broadcast<8>(low);
    // 8 pixels per iteration
    forBlocks<8>(count, [&](std::ptrdiff_t x) {
        const auto dx = differenced<kind>([&](int i) { return load<8>(smooth + x + i); });
        const auto dy = smoothed<kind>([&](int i) { return load<8>(difference + x + i); });
        storeGradients<magnitude, UpperBound::sum, largest>(dx, dy, lowest, magnitudes + x, directions + x);
    });
}

template <Derivative kind, Magnitude magnitude>
void gradientMagnitudeRowByAngle(const Lum16s* smooth, const Lum16s* difference, std::ptrdiff_t count,
                                 MagnitudeElement<Lum16s, magnitude> low,
                                 MagnitudeElement<Lum16s, magnitude>* magnitudes, Lum8u* directions) {
    constexpr double pi = 3.14159265358979323846;
    gradientMagnitudeRowScalar<kind, magnitude>(smooth, difference, count, low, magnitudes, directions);
    for (std::ptrdiff_t x = 0; x < count; ++x) {
        if (magnitudes[x] == 0) continue;
        const double dx = differenced<kind>([&](int i) { return int{smooth[x + i]}; });
        const double dy = smoothed<kind>([&](int i) { return int{difference[x + i]}; });
        double angle = std::atan2(dy, dx);
        if (angle < 0) angle += pi;
        directions[x] = angle < 0.3926991F    ? directionHorizontal
                        : angle <= 1.1780972F ? directionFalling
                        : angle < 1.9634955F  ? directionVertical
                        : angle <= 2.7488937F ? directionRising
                                              : directionHorizontal;
    }
}

template <class M>
void suppressRowScalar(const MagnitudeRows<M>& rows, const Lum8u* directions, std::ptrdiff_t count, M high,
                       Lum8u* mapRow) {
    const auto [previous, current, next] = rows;
    for (std::ptrdiff_t x = 0; x < count; ++x) {
        const M m = current[x];
        bool ridge = false;
        if (m != 0) switch (directions[x]) {
            case directionHorizontal:
                ridge = current[x - 1] < m && current[x + 1] <= m;
                break;
            case directionVertical:
                ridge = previous[x] < m && next[x] <= m;
                break;
            case directionFalling:
                ridge = previous[x - 1] < m && next[x + 1] < m;
                break;
            default:
                ridge = previous[x + 1] < m && next[x - 1] < m;
            }
        mapRow[x] = !ridge ? mapNothing : m > high ? mapEdge : mapRidge;
    }
}

template <class M>
void suppressRow(const MagnitudeRows<M>& rows, const Lum8u* directions, std::ptrdiff_t count, M high,
                 Lum8u* mapRow) {
    if (count < 16) return suppressRowScalar(rows, directions, count, high, mapRow);
    const auto highest = broadcast<8>(high);
    // 16 pixels per iteration, in halves; in fewer the test for magnitudes would be hard to predict
    forBlocks<16>(count, [&](std::ptrdiff_t x) {
        if (!any(load<16>(rows.current + x) != zeros<M, 16>())) {
            store(zeros<Lum8u, 16>(), mapRow + x);
            return;
        }
        store(join(suppressed(rows, directions, x, highest), suppressed(rows, directions, x + 8, highest)),
              mapRow + x);
    });
}

std::uint32_t* joinRowScalar(Lum8u* mapRow, std::ptrdiff_t mapWidth, std::ptrdiff_t count,
                             std::uint32_t firstPosition, std::uint32_t* top) {
    for (std::ptrdiff_t x = 0; x < count; ++x) {
        if (mapRow[x] != mapRidge) continue;
        const Lum8u* above = mapRow + x - mapWidth;
        const Lum8u* below = mapRow + x + mapWidth;
        // the lowest bit is that of an edge
        const int neighbours =
            above[-1] | above[0] | above[1] | mapRow[x - 1] | mapRow[x + 1] | below[-1] | below[0] | below[1];
        if ((neighbours & 1) == 0) continue;
        mapRow[x] = mapEdge;
        *top++ = firstPosition + static_cast<std::uint32_t>(x);
    }
    return top;
}

std::uint32_t* joinRow(Lum8u* mapRow, std::ptrdiff_t mapWidth, std::ptrdiff_t count,
                       std::uint32_t firstPosition, std::uint32_t* top) {
    std::ptrdiff_t x = 0;
    const auto one = broadcast<16>(Lum8u{1});
    // 16 pixels per iteration; what joins is rare, so that is the test
    for (; x <= count - 16; x += 16) {
        const Lum8u* above = mapRow + x - mapWidth;
        const Lum8u* below = mapRow + x + mapWidth;
        const auto beside = [](const Lum8u* row) { return load<16>(row - 1) | load<16>(row + 1); };
        const auto neighbours =
            (beside(above) | load<16>(above)) | (beside(below) | load<16>(below)) | beside(mapRow + x);
        const auto cells = load<16>(mapRow + x);
        // the lowest bit is that of an edge
        const auto joins = (cells == broadcast<16>(mapRidge)) & ((neighbours & one) == one);
        if (!any(joins)) continue;
        store(cells | bitsAs<Lum8u>(joins), mapRow + x);
        for (std::uint32_t left = signBits(joins); left != 0; left &= left - 1)
            *top++ = firstPosition + static_cast<std::uint32_t>(x + std::countr_zero(left));
    }
    // tail: scalar, one element at a time
    return joinRowScalar(mapRow + x, mapWidth, count - x, firstPosition + static_cast<std::uint32_t>(x), top);
}

void followEdges(Lum8u* map, std::ptrdiff_t mapWidth, const std::uint32_t* bottom, std::uint32_t* top) {
    // the ridges among three neighbours; a ridge has its highest bit but not its lowest, an edge both
    const auto ridgesAt = [](const Lum8u* first) {
        std::uint32_t bytes;
        std::memcpy(&bytes, first, sizeof(bytes));
        return bytes & ~(bytes << 7) & 0x808080U;
    };
    while (top != bottom) {
        Lum8u* above = map + *--top - mapWidth - 1;
        const std::uint32_t ridges[] = {ridgesAt(above), ridgesAt(above + mapWidth),
                                        ridgesAt(above + 2 * mapWidth)};
        // most neighbours are edges already
        if ((ridges[0] | ridges[1] | ridges[2]) == 0) continue;
        for (std::uint32_t left : ridges) {
            for (; left != 0; left &= left - 1) {
                const int column = std::countr_zero(left) / 8;
                above[column] = mapEdge;
                *top++ = static_cast<std::uint32_t>(above + column - map);
            }
            above += mapWidth;
        }
    }
}

void edgeRowScalar(const Lum8u* mapRow, std::ptrdiff_t count, Lum8u* dst) {
    for (std::ptrdiff_t x = 0; x < count; ++x) dst[x] = mapRow[x] == mapEdge ? 255 : 0;
}

void edgeRow(const Lum8u* mapRow, std::ptrdiff_t count, Lum8u* dst) {
    if (count < 64) return edgeRowScalar(mapRow, count, dst);
    // 64 pixels per iteration
    forBlocks<64>(count, [&](std::ptrdiff_t x) {
        store(bitsAs<Lum8u>(load<64>(mapRow + x) == broadcast<64>(mapEdge)), dst + x);
    });
}

LUM_INSTANCES(magnitudeRowScalar, (Magnitude::sum, Lum16s), (Magnitude::squares, Lum16s),
              (Magnitude::sumKeepingEqual, Lum32f), (Magnitude::sum, Lum32f), (Magnitude::squares, Lum32f));
LUM_INSTANCES(magnitudeRow, (Magnitude::sum, Lum16s), (Magnitude::squares, Lum16s),
              (Magnitude::sumKeepingEqual, Lum32f), (Magnitude::sum, Lum32f), (Magnitude::squares, Lum32f));
LUM_INSTANCES(gradientMagnitudeRowScalar, (Derivative::sobel3, Magnitude::sum),
              (Derivative::sobel3, Magnitude::root), (Derivative::sobel5, Magnitude::sum),
              (Derivative::sobel5, Magnitude::root), (Derivative::scharr3, Magnitude::sum),
              (Derivative::scharr3, Magnitude::root));
LUM_INSTANCES(gradientMagnitudeRow, (Derivative::sobel3, Magnitude::sum),
              (Derivative::sobel3, Magnitude::root), (Derivative::sobel5, Magnitude::sum),
              (Derivative::sobel5, Magnitude::root), (Derivative::scharr3, Magnitude::sum),
              (Derivative::scharr3, Magnitude::root));
LUM_INSTANCES(gradientMagnitudeRowByAngle, (Derivative::sobel3, Magnitude::sum),
              (Derivative::sobel3, Magnitude::root), (Derivative::sobel5, Magnitude::sum),
              (Derivative::sobel5, Magnitude::root), (Derivative::scharr3, Magnitude::sum),
              (Derivative::scharr3, Magnitude::root));
LUM_INSTANCES(suppressRowScalar, (Lum16u), (std::uint32_t), (Lum32f));
LUM_INSTANCES(suppressRow, (Lum16u), (std::uint32_t), (Lum32f));

} // namespace lum::kernels

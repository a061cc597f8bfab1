#include "kernels/distance/inpaint.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "frame/convert.h"
#include "frame/lanes_products.h"
#include "kernels/distance/inpaint_disc.h"
#include "kernels/distance/inpaint_gradients.h"

namespace lum::kernels {
namespace {

/// Sums of weights below this say nothing: the four pixels next to the repaired one decide.
constexpr float leastWeight = 0.0001F;
constexpr float firstWeight = 1e-30F;

/// A known pixel in the disc: its elements, where the repaired one is from it, and what weighs it.
struct Neighbour {
    const Lum8u* pixel;
    const Lum16s* gradient;
    float distance;
    Lum32s towardX, towardY;
};

/// A pixel from the weights along the gradient of the distances, which all channels share.
template <int channels> class FrontValue {
  public:
    /// The pixel's own distance and the gradient of the distances there.
    FrontValue(const InpaintRegion& region, int x, int y) : distance_(region.distances.row(y)[x]) {
        const Lum16s* gradient = region.distanceGradient.row(y) + static_cast<std::ptrdiff_t>(x) * 2;
        gradientX_ = gradient[0];
        gradientY_ = gradient[1];
    }

    /// The neighbours of a stage, with the weights of the table.
    void add(const InpaintStage<channels>& stage) {
        constexpr int blockCount = InpaintStage<channels>::blockCount;
        using Floats = typename InpaintStage<channels>::Floats;
        InpaintTerms<channels> weights;
        InpaintTerms<channels> parts[channels];
        InpaintTerms<channels> alongX[channels];
        InpaintTerms<channels> alongY[channels];
        const auto gradient = repeatedPair<blockCount>(gradientX_, gradientY_);
        for (int i = 0; i < stage.count(); i += blockCount) {
            const auto toward = stage.toward(i);
            const Floats along = toFloat(multiplyAddPairs(toward, gradient));
            const auto level = broadcast<blockCount>(levelDirection);
            const Floats direction = select(abs(along) < level, level, along);
            const Floats apart = abs(stage.distances(i) - broadcast<blockCount>(distance_));
            const Floats closeness =
                broadcast<blockCount>(closenessScale) / (apart + broadcast<blockCount>(1.0F));
            const Floats weight = abs(closeness * stage.weights(i) * direction);
            store(weight, weights + i);
            for (int c = 0; c < channels; ++c) {
                const auto slope = stage.gradients(c, i);
                store(stage.pixels(c, i) * weight, parts[c] + i);
                store(toFloat(multiplyAddPairs(slope, firstOfPairs(toward))) * weight, alongX[c] + i);
                store(toFloat(multiplyAddPairs(slope, secondOfPairs(toward))) * weight, alongY[c] + i);
            }
        }
        for (int i = 0; i < stage.count(); ++i) {
            weight_ += weights[i];
            for (int c = 0; c < channels; ++c) {
                sum_[c] += parts[c][i];
                a_[c] -= alongX[c][i];
                b_[c] -= alongY[c][i];
            }
        }
    }
    void addAtBorder(const Neighbour& n, float d2) {
        add(n, std::fabs(closeness(n) / (std::sqrt(d2) * d2) * direction(n)));
    }

    bool isVague(int) const { return weight_ < leastWeight; }
    void beginFallback(int c) { a_[c] = b_[c] = 0; }
    /// A direct neighbour; its weight is shared, too.
    void addDirect(const Lum8u* pixel, float weight) {
        weight_ += weight;
        for (int c = 0; c < channels; ++c) sum_[c] += static_cast<float>(pixel[c]) * weight;
    }

    Lum8u value(int c) const {
        const double a = a_[c];
        const double b = b_[c];
        const double length = nearestFloat(std::sqrt(a * a + b * b));
        return saturated<Lum8u>(truncatedTo32s((a + b) / (length + 1e-20) + 0.5 + sum_[c] / weight_));
    }

  private:
    /// What the direction counts where it is across the gradient.
    static constexpr float levelDirection = 2.5e-25F;
    static constexpr float closenessScale = 0.00024414063F;

    float direction(const Neighbour& n) const {
        const auto along = static_cast<float>(gradientX_ * n.towardX + gradientY_ * n.towardY);
        return std::fabs(along) < levelDirection ? levelDirection : along;
    }
    float closeness(const Neighbour& n) const {
        return 0.00024414063F / (std::fabs(n.distance - distance_) + 1);
    }

    void add(const Neighbour& n, float weight) {
        weight_ += weight;
        for (int c = 0; c < channels; ++c) {
            sum_[c] += static_cast<float>(n.pixel[c]) * weight;
            a_[c] -= static_cast<float>(n.gradient[2 * c] * n.towardX) * weight;
            b_[c] -= static_cast<float>(n.gradient[2 * c + 1] * n.towardY) * weight;
        }
    }

    float distance_;
    int gradientX_, gradientY_;
    float weight_ = firstWeight;
    float sum_[channels] = {};
    float a_[channels] = {};
    float b_[channels] = {};
};

/// A pixel from the weights across the gradient of the picture, each channel by its own.
template <int channels> class IsophoteValue {
  public:
    IsophoteValue(const InpaintRegion&, int, int) { std::fill_n(weight_, channels, firstWeight); }

    void add(const InpaintStage<channels>& stage) {
        constexpr int blockCount = InpaintStage<channels>::blockCount;
        using Floats = typename InpaintStage<channels>::Floats;
        const auto one = broadcast<blockCount>(1.0F);
        for (int c = 0; c < channels; ++c) {
            InpaintTerms<channels> weights, parts;
            for (int i = 0; i < stage.count(); i += blockCount) {
                const auto slope = stage.gradients(c, i);
                const auto toward = stage.toward(i);
                // x of one times y of the other, both ways.
                const auto turned = swappedPairs(slope);
                const Floats along = abs(toFloat(multiplyAddPairs(turned, firstOfPairs(toward)) -
                                                 multiplyAddPairs(turned, secondOfPairs(toward))));
                // A gradient that is not level is at least 1 long; the others are not divided by 0.
                const Floats length = sqrt(max(toFloat(multiplyAddPairs(slope, slope)), one));
                const Floats factor = select(along == zeros<float, blockCount>(),
                                             broadcast<blockCount>(levelFactor), along / length);
                const Floats weight = stage.weights(i) * factor;
                store(weight, weights + i);
                store(stage.pixels(c, i) * weight, parts + i);
            }
            for (int i = 0; i < stage.count(); ++i) {
                weight_[c] += weights[i];
                sum_[c] += parts[i];
            }
        }
    }
    void addAtBorder(const Neighbour& n, float d2) {
        const float weight = 1 / (std::sqrt(d2) * (d2 * d2 + 1));
        for (int c = 0; c < channels; ++c) {
            const int gx = n.gradient[2 * c];
            const int gy = n.gradient[2 * c + 1];
            const int along = std::abs(n.towardY * gx - n.towardX * gy);
            const float factor =
                along == 0 ? levelFactor
                           : static_cast<float>(along) / std::sqrt(static_cast<float>(gx * gx + gy * gy));
            addTo(c, n.pixel[c], weight * factor);
        }
    }

    bool isVague(int c) const { return weight_[c] < leastWeight; }
    void beginFallback(int) {}
    void addTo(int c, Lum8u element, float weight) {
        weight_[c] += weight;
        sum_[c] += static_cast<float>(element) * weight;
    }

    Lum8u value(int c) const { return saturated<Lum8u>(truncatedTo32s(sum_[c] / weight_[c] + 0.5)); }

  private:
    /// What the gradient counts where it points to the repaired pixel.
    static constexpr float levelFactor = 1e-6F;

    float weight_[channels];
    float sum_[channels] = {};
};

template <InpaintMethod method, int channels> class Repair {
    using Value =
        std::conditional_t<method == InpaintMethod::front, FrontValue<channels>, IsophoteValue<channels>>;

  public:
    explicit Repair(const InpaintRegion& region) : region_(region) {}

    void pixel(int x, int y) {
        Value value(region_, x, y);
        const bool interior = isInterior(x, region_.size.width) && isInterior(y, region_.size.height);
        if (interior)
            addTable(value, x, y);
        else
            addDisc(value, x, y);
        fallBack(value, x, y, interior ? 255.0F : 1.0F);
        Lum8u* dst = region_.image.row(y) + static_cast<std::ptrdiff_t>(x) * channels;
        for (int c = 0; c < channels; ++c) dst[c] = value.value(c);
        region_.mask.row(y)[x] = inpaintKnown;
        refreshAround(x, y);
    }

  private:
    bool isInterior(int place, int count) const {
        return place >= region_.reach && place < count - region_.reach;
    }

    bool isKnown(int x, int y) const {
        return x >= 0 && x < region_.size.width && y >= 0 && y < region_.size.height &&
               region_.mask.row(y)[x] == inpaintKnown;
    }

    void addTable(Value& value, int x, int y) {
        const InpaintNeighbour* from = region_.neighbours;
        const InpaintNeighbour* end = from + region_.neighbourCount;
        while (from != end) {
            from = stage_.fill(region_, x, y, from, end);
            value.add(stage_);
        }
    }

    /// Where the square does not lie in the region: the disc has the whole radius, with tests of the region's bounds.
    void addDisc(Value& value, int x, int y) const {
        const int r = region_.reach;
        for (int dy = -r; dy <= r; ++dy)
            for (int dx = -r; dx <= r; ++dx) {
                const int d2 = dx * dx + dy * dy;
                if (d2 == 0 || d2 > r * r || !isKnown(x + dx, y + dy)) continue;
                const std::ptrdiff_t column = x + dx;
                value.addAtBorder({region_.image.row(y + dy) + column * channels,
                                   region_.imageGradient.row(y + dy) + column * channels * 2,
                                   region_.distances.row(y + dy)[column], -dx, -dy},
                                  static_cast<float>(d2));
            }
    }

    void fallBack(Value& value, int x, int y, float weight) const {
        bool vague[channels];
        for (int c = 0; c < channels; ++c) {
            vague[c] = value.isVague(c);
            if (vague[c]) value.beginFallback(c);
        }
        constexpr int directions[4][2] = {{0, -1}, {-1, 0}, {1, 0}, {0, 1}};
        for (const auto& [dx, dy] : directions) {
            if (!isKnown(x + dx, y + dy)) continue;
            const Lum8u* pixel = region_.image.row(y + dy) + static_cast<std::ptrdiff_t>(x + dx) * channels;
            if constexpr (method == InpaintMethod::front) {
                if (vague[0]) value.addDirect(pixel, weight);
            } else {
                for (int c = 0; c < channels; ++c)
                    if (vague[c]) value.addTo(c, pixel[c], weight);
            }
        }
    }

    /// The derivatives that a pixel takes part in since it is known.
    void refreshAround(int x, int y) const {
        refreshX(x, y);
        refreshY(x, y);
        if (isKnown(x - 1, y)) refreshX(x - 1, y);
        if (isKnown(x + 1, y)) refreshX(x + 1, y);
        if (isKnown(x, y - 1)) refreshY(x, y - 1);
        if (isKnown(x, y + 1)) refreshY(x, y + 1);
    }
    void refreshX(int x, int y) const {
        inpaintAxisX<method, channels>(region_, x, y).from(isKnown(x - 1, y), isKnown(x + 1, y));
    }
    void refreshY(int x, int y) const {
        inpaintAxisY<method, channels>(region_, x, y).from(isKnown(x, y - 1), isKnown(x, y + 1));
    }

    const InpaintRegion& region_;
    InpaintStage<channels> stage_;
};

} // namespace

float inpaintWeight(InpaintMethod method, int dx, int dy) {
    const auto d2 = static_cast<float>(dx * dx + dy * dy);
    const float d = std::sqrt(d2);
    return method == InpaintMethod::front ? 1 / (d2 * d) : 1 / (d * (d2 * d2 + 1));
}

std::uint64_t inpaintEntry(float distance, std::uint64_t place) {
    // A float has 23 bits of fraction, so the low bits of it as a double are free.
    return std::bit_cast<std::uint64_t>(static_cast<double>(distance)) | place;
}

template <InpaintMethod method, int channels>
void inpaintPixels(const InpaintRegion& region, const std::uint64_t* order, std::intptr_t count) {
    Repair<method, channels> repair(region);
    constexpr std::uint64_t placeMask = (std::uint64_t{1} << inpaintPlaceBits) - 1;
    for (std::intptr_t i = 0; i < count; ++i) {
        const auto place = static_cast<int>(order[i] & placeMask);
        repair.pixel(place % region.size.width, place / region.size.width);
    }
}

template void inpaintPixels<InpaintMethod::front, 1>(const InpaintRegion&, const std::uint64_t*,
                                                     std::intptr_t);
template void inpaintPixels<InpaintMethod::front, 3>(const InpaintRegion&, const std::uint64_t*,
                                                     std::intptr_t);
template void inpaintPixels<InpaintMethod::isophote, 1>(const InpaintRegion&, const std::uint64_t*,
                                                        std::intptr_t);
template void inpaintPixels<InpaintMethod::isophote, 3>(const InpaintRegion&, const std::uint64_t*,
                                                        std::intptr_t);

} // namespace lum::kernels

#include "kernels/motion/mixture.h"

#include <algorithm>

#include "frame/convert.h"

namespace lum::kernels {
namespace {

struct Colour {
    float red, green, blue;
};

float squaredDistance(const ModeMean& mean, const Colour& p) {
    const float red = mean.red - p.red;
    const float green = mean.green - p.green;
    const float blue = mean.blue - p.blue;
    return red * red + green * green + blue * blue;
}

/// The modes of one pixel.
struct Modes {
    ModeMean* means;
    ModeWeight* weights;

    /// Puts a mode at a place, or further up in front of modes that have no greater weight; where it lies in the end.
    int placeAtOrAbove(int place, const ModeMean& mean, const ModeWeight& weight) {
        while (place > 0 && !(weights[place - 1].weight > weight.weight)) {
            means[place] = means[place - 1];
            weights[place] = weights[place - 1];
            --place;
        }
        means[place] = mean;
        weights[place] = weight;
        return place;
    }
};

struct Match {
    bool mode = false;
    bool background = false;
};

/// Decays the weights, moves the first mode that matches toward the colour, and normalises.
Match decayAndMatch(Modes modes, int count, const Colour& p, const MixtureRules& rules) {
    const float remaining = 1 - rules.rate;
    Match match;
    float total = 0;
    int counted = count;
    for (int k = 0; k < counted; ++k) {
        float w = modes.weights[k].weight * remaining - rules.decay;
        int place = k;
        if (!match.mode) {
            const ModeMean mean = modes.means[k];
            const float variance = modes.weights[k].variance;
            const float distance = squaredDistance(mean, p);
            if (total < rules.backgroundRatio && distance < rules.matchBackground * variance)
                match.background = true;
            if (distance < rules.matchGenerate * variance) {
                match.mode = true;
                w = w + rules.rate;
                const float q = w != 0 ? rules.rate / w : 0;
                const ModeMean moved{mean.red - q * (mean.red - p.red),
                                     mean.green - q * (mean.green - p.green),
                                     mean.blue - q * (mean.blue - p.blue)};
                const float spread =
                    std::min(std::max(variance + q * (distance - variance), rules.varMin), rules.varMax);
                place = modes.placeAtOrAbove(k, moved, {w, spread});
            }
        }
        // A mode without weight keeps its place; the last one of the list is left out instead.
        if (w < rules.decay) {
            w = 0;
            --counted;
        }
        total = total + w;
        modes.weights[place].weight = w;
    }
    if (total != 0)
        for (int k = 0; k < counted; ++k) modes.weights[k].weight = modes.weights[k].weight / total;
    return match;
}

/// Gives the colour a mode of its own; the number of modes afterwards.
int addMode(Modes modes, int count, const Colour& p, const MixtureRules& rules) {
    if (count < rules.mixtures) ++count;
    float weight = 1;
    if (count > 1) {
        weight = rules.rate;
        for (int k = 0; k < count - 1; ++k)
            modes.weights[k].weight = modes.weights[k].weight * (1 - rules.rate);
    }
    modes.placeAtOrAbove(count - 1, {p.red, p.green, p.blue}, {weight, rules.varInit});
    return count;
}

/// Whether a mode of the background, darkened, explains the colour.
bool isShadow(Modes modes, int count, const Colour& p, const MixtureRules& rules) {
    float total = 0;
    for (int k = 0; k < count; ++k) {
        const ModeMean& mean = modes.means[k];
        const float num = p.red * mean.red + p.green * mean.green + p.blue * mean.blue;
        const float den = mean.red * mean.red + mean.green * mean.green + mean.blue * mean.blue;
        if (den == 0) return false;
        if (num <= den && num >= rules.shadowRatio * den) {
            const float ratio = num / den;
            const ModeMean darkened{ratio * mean.red, ratio * mean.green, ratio * mean.blue};
            const float limit = rules.matchBackground * modes.weights[k].variance * ratio * ratio;
            if (limit > squaredDistance(darkened, p)) return true;
        }
        total = total + modes.weights[k].weight;
        if (total > rules.backgroundRatio) return false;
    }
    return false;
}

} // namespace

void updateMixtures(const Lum8u* src, Lum8u* dst, std::ptrdiff_t width, const MixtureRow& row,
                    const MixtureRules& rules) {
    for (std::ptrdiff_t x = 0; x < width; ++x) {
        const Colour p{static_cast<float>(src[3 * x]), static_cast<float>(src[3 * x + 1]),
                       static_cast<float>(src[3 * x + 2])};
        const Modes modes{row.means + x * row.stride, row.weights + x * row.stride};
        int count = row.counts[x];
        const Match match = decayAndMatch(modes, count, p, rules);
        if (!match.mode) count = addMode(modes, count, p, rules);
        row.counts[x] = static_cast<Lum8u>(count);
        if (match.background)
            dst[x] = 0;
        else
            dst[x] = rules.shadows && isShadow(modes, count, p, rules) ? rules.shadowValue : 255;
    }
}

void drawBackground(Lum8u* dst, std::ptrdiff_t width, const MixtureRow& row, float backgroundRatio) {
    for (std::ptrdiff_t x = 0; x < width; ++x) {
        const ModeMean* means = row.means + x * row.stride;
        const ModeWeight* weights = row.weights + x * row.stride;
        float total = 0;
        ModeMean sum{0, 0, 0};
        for (int k = 0; k < row.counts[x]; ++k) {
            const float w = weights[k].weight;
            sum = {sum.red + w * means[k].red, sum.green + w * means[k].green, sum.blue + w * means[k].blue};
            total = total + w;
            if (total > backgroundRatio) break;
        }
        const float scale = total != 0 ? 1 / total : 0;
        dst[3 * x] = nearestEven<Lum8u>(sum.red * scale);
        dst[3 * x + 1] = nearestEven<Lum8u>(sum.green * scale);
        dst[3 * x + 2] = nearestEven<Lum8u>(sum.blue * scale);
    }
}

} // namespace lum::kernels

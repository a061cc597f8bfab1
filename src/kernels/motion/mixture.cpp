#include "kernels/motion/mixture.h"

#include <algorithm>
#include <utility>

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

    /// Moves the mode at a place up, in front of modes that have no greater weight than the given one; where it ends.
    int moveUp(int place, float weight) {
        for (; place > 0 && !(weights[place - 1].weight > weight); --place) {
            std::swap(means[place], means[place - 1]);
            std::swap(weights[place], weights[place - 1]);
        }
        return place;
    }
};

struct Match {
    bool mode = false;
    bool background = false;
};

/// Moves a mode toward the colour, and its variance toward the distance. Field by field: a record put together first would
/// have to wait in memory for its parts.
[[gnu::always_inline]] inline void moveToward(const Colour& p, ModeMean& mean, float& variance,
                                              float distance, float q, const MixtureRules& rules) {
    mean.red = mean.red - q * (mean.red - p.red);
    mean.green = mean.green - q * (mean.green - p.green);
    mean.blue = mean.blue - q * (mean.blue - p.blue);
    variance = std::min(std::max(variance + q * (distance - variance), rules.varMin), rules.varMax);
}

/// The weights from place k on lose their share; the number of modes that count, and their total.
struct Decayed {
    int counted;
    float total;
};
[[gnu::always_inline]] inline Decayed decay(ModeWeight* weights, int k, int counted, float total,
                                            float remaining, const MixtureRules& rules) {
    for (; k < counted; ++k) {
        float w = weights[k].weight * remaining - rules.decay;
        // A mode without weight keeps its place; the last one of the list is left out instead.
        if (w < rules.decay) {
            w = 0;
            --counted;
        }
        total = total + w;
        weights[k].weight = w;
    }
    return {counted, total};
}

[[gnu::always_inline]] inline void normalise(ModeWeight* weights, const Decayed& decayed) {
    if (decayed.total != 0)
        for (int k = 0; k < decayed.counted; ++k) weights[k].weight = weights[k].weight / decayed.total;
}

/// The most frequent case, in fewer steps: the first mode matches and keeps weight, so that no mode changes its place.
/// Where it does not hold nothing has changed.
[[gnu::always_inline]] inline bool matchFirst(Modes modes, int count, const Colour& p,
                                              const MixtureRules& rules, Match& match) {
    if (count == 0) return false;
    const float variance = modes.weights[0].variance;
    const float distance = squaredDistance(modes.means[0], p);
    const float remaining = 1 - rules.rate;
    const float w = modes.weights[0].weight * remaining - rules.decay + rules.rate;
    if (!(distance < rules.matchGenerate * variance) || !(w > 0 && w >= rules.decay)) return false;

    match = {true, 0 < rules.backgroundRatio && distance < rules.matchBackground * variance};
    moveToward(p, modes.means[0], modes.weights[0].variance, distance, rules.rate / w, rules);
    if (count == 1) {
        modes.weights[0].weight = 1; // w / w
        return true;
    }
    modes.weights[0].weight = w;
    normalise(modes.weights, decay(modes.weights, 1, count, w, remaining, rules));
    return true;
}

/// Decays the weights, moves the first mode that matches toward the colour, and normalises.
[[gnu::noinline]] Match matchAny(Modes modes, int count, Colour p, const MixtureRules& rules) {
    const float remaining = 1 - rules.rate;
    Match match;
    Decayed decayed{count, 0};
    int k = 0;
    for (; k < decayed.counted && !match.mode; ++k) {
        float w = modes.weights[k].weight * remaining - rules.decay;
        int place = k;
        const float variance = modes.weights[k].variance;
        const float distance = squaredDistance(modes.means[k], p);
        if (decayed.total < rules.backgroundRatio && distance < rules.matchBackground * variance)
            match.background = true;
        if (distance < rules.matchGenerate * variance) {
            match.mode = true;
            w = w + rules.rate;
            const float q = w != 0 ? rules.rate / w : 0;
            moveToward(p, modes.means[k], modes.weights[k].variance, distance, q, rules);
            place = modes.moveUp(k, w);
        }
        if (w < rules.decay) {
            w = 0;
            --decayed.counted;
        }
        decayed.total = decayed.total + w;
        modes.weights[place].weight = w;
    }
    normalise(modes.weights, decay(modes.weights, k, decayed.counted, decayed.total, remaining, rules));
    return match;
}

/// Gives the colour a mode of its own; the number of modes afterwards.
[[gnu::noinline]] int addMode(Modes modes, int count, Colour p, const MixtureRules& rules) {
    if (count < rules.mixtures) ++count;
    float weight = 1;
    if (count > 1) {
        weight = rules.rate;
        for (int k = 0; k < count - 1; ++k)
            modes.weights[k].weight = modes.weights[k].weight * (1 - rules.rate);
    }
    modes.means[count - 1] = {p.red, p.green, p.blue};
    modes.weights[count - 1] = {weight, rules.varInit};
    modes.moveUp(count - 1, weight);
    return count;
}

/// Whether a mode of the background, darkened, explains the colour.
[[gnu::noinline]] bool isShadow(Modes modes, int count, Colour p, const MixtureRules& rules) {
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

void updateMixtures(const float* colours, Lum8u* dst, std::ptrdiff_t width, const MixtureRow& givenRow,
                    const MixtureRules& givenRules) {
    // Copies, which no store into the model can change.
    const MixtureRow row = givenRow;
    const MixtureRules rules = givenRules;
    for (std::ptrdiff_t x = 0; x < width; ++x) {
        const Colour p{colours[3 * x], colours[3 * x + 1], colours[3 * x + 2]};
        const Modes modes{row.means + x * row.stride, row.weights + x * row.stride};
        int count = row.counts[x];
        Match match;
        if (!matchFirst(modes, count, p, rules, match)) {
            match = matchAny(modes, count, p, givenRules);
            if (!match.mode) {
                count = addMode(modes, count, p, givenRules);
                row.counts[x] = static_cast<Lum8u>(count);
            }
        }
        if (match.background)
            dst[x] = 0;
        else
            dst[x] = rules.shadows && isShadow(modes, count, p, givenRules) ? rules.shadowValue : 255;
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

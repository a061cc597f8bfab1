// Mixtures of Gaussian colour modes, a pixel at a time: update by a frame's row, and the background of a row.
#pragma once

#include <cstddef>

#include "lumcv/types.h"

namespace lum::kernels {

struct ModeMean {
    float red, green, blue;
};
struct ModeWeight {
    float weight, variance;
};

/// The modes of a row's pixels, `stride` places for each pixel, in order of falling weight.
struct MixtureRow {
    ModeMean* means;
    ModeWeight* weights;
    Lum8u* counts;
    std::ptrdiff_t stride;
};

struct MixtureRules {
    /// Share of the frame in the model, and what each weight loses.
    float rate;
    float decay;
    /// Modes that a pixel may have, at most 255.
    int mixtures;
    float varInit;
    float varMin;
    float varMax;
    float matchBackground;
    float backgroundRatio;
    float matchGenerate;
    float shadowRatio;
    Lum8u shadowValue;
    bool shadows;
};

/// Updates the mixtures by a row of colours, three floats a pixel, and tells background (0), shadow and foreground (255).
void updateMixtures(const float* colours, Lum8u* dst, std::ptrdiff_t width, const MixtureRow& row,
                    const MixtureRules& rules);

/// The mean of the first modes, up to the one that makes the weights exceed the ratio; three channels.
void drawBackground(Lum8u* dst, std::ptrdiff_t width, const MixtureRow& row, float backgroundRatio);

} // namespace lum::kernels

// Stages of a Haar cascade over the pixels of a mask: the scalar form, and the vector form with the same result.
#pragma once

#include "kernels/integral/haar_arithmetic.h"
#include "kernels/integral/haar_stage.h"

namespace lum::kernels {

/// How the set pixels of a mask are taken; the result is the same.
enum class HaarDensity {
    dense,  ///< groups of vectors with a set pixel, as large as the registers hold
    middle, ///< groups of eight pixels with a set one
    sparse, ///< groups of eight pixels; few set ones are taken one by one
    unknown ///< groups as for dense; few set pixels are taken one by one
};

/// The images beside the integral images.
template <class Norm> struct HaarRegion {
    Image<const Norm> norm;
    Image<Lum8u> mask;
    LumSize size;
};

/// Sets the mask bytes of pixels whose total is below the threshold to 0; returns how many pixels are still set.
template <class Rule, class Stage>
int applyHaarScalar(const Rule& rule, const Stage& stage, const HaarRegion<typename Rule::Norm>& region,
                    typename Rule::Value threshold);
template <class Rule, class Stage>
int applyHaar(const Rule& rule, const Stage& stage, const HaarRegion<typename Rule::Norm>& region,
              typename Rule::Value threshold, HaarDensity density);

} // namespace lum::kernels

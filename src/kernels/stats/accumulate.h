// Rows of running sums: an accumulator of floats updated in place from one or two sources, with or without a
// mask. Each operation rounds by itself, in the order written; integer sources become floats first, which is
// exact.
#pragma once

#include <type_traits>

#include "frame/image.h"
#include "frame/stores.h"

namespace lum::kernels {

// What is added to the accumulator's old value a, for sources s, s1, s2.

/// s
struct AccumulateSum {};
/// s x s
struct AccumulateSquares {};
/// s1 x s2
struct AccumulateProducts {};
/// (s - a) x alpha
struct AccumulateWeighted {
    Lum32f alpha;
};

/// The images that a rule reads; rules of one source never touch the second.
template <class T> struct AccumulatorSources {
    Image<const T> first;
    Image<const T> second;

    AccumulatorSources(Image<const T> src) : first(src), second(src) {}
    AccumulatorSources(Image<const T> src1, Image<const T> src2) : first(src1), second(src2) {}
};

/// Lum8u, Lum16u, Lum32f.
template <class Rule, class T> struct Accumulate {
    using Sources = AccumulatorSources<T>;

    /// a + term for every pixel.
    static void scalar(Rule rule, Sources sources, Image<Lum32f> srcDst, LumSize size);
    static void vectors(Rule rule, Sources sources, Image<Lum32f> srcDst, LumSize size);

    /// a + term where the mask is not 0. Elsewhere sums and sums of squares add 0 in whole vectors and skip the pixel in
    /// scalar steps, which a -0.0 in the accumulator can tell apart; products are formed with a first source of 0; weighted
    /// sums add 0. The scalar form consists of scalar steps only.
    static void maskedScalar(Rule rule, Sources sources, Image<const Lum8u> mask, Image<Lum32f> srcDst,
                             LumSize size);
    /// Products and weighted sums take the stores; sums and sums of squares have ordinary ones only.
    static void masked(Rule rule, Sources sources, Image<const Lum8u> mask, Image<Lum32f> srcDst,
                       LumSize size, Stores stores);
};

} // namespace lum::kernels

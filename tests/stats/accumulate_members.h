// The accumulators under test: families by their rule, members by their source type, all called in one way.
#pragma once

#include <gtest/gtest.h>

#include "kernels/stats/accumulate.h"
#include "lumcv.h"
#include "support/guarded_image.h"

namespace accumulators {

/// The arguments of every member; each takes those that it has.
template <class T> struct Arguments {
    const T* src1;
    int src1Step;
    const T* src2;
    int src2Step;
    const Lum8u* mask;
    int maskStep;
    Lum32f* srcDst;
    int srcDstStep;
    LumSize size;
    float alpha;
};

template <class T> struct Exports;
template <> struct Exports<Lum8u> {
    static constexpr auto add = lumiAdd_8u32f_C1IR;
    static constexpr auto addMasked = lumiAdd_8u32f_C1IMR;
    static constexpr auto addSquare = lumiAddSquare_8u32f_C1IR;
    static constexpr auto addSquareMasked = lumiAddSquare_8u32f_C1IMR;
    static constexpr auto addProduct = lumiAddProduct_8u32f_C1IR;
    static constexpr auto addProductMasked = lumiAddProduct_8u32f_C1IMR;
    static constexpr auto addWeighted = lumiAddWeighted_8u32f_C1IR;
    static constexpr auto addWeightedMasked = lumiAddWeighted_8u32f_C1IMR;
};
template <> struct Exports<Lum16u> {
    static constexpr auto add = lumiAdd_16u32f_C1IR;
    static constexpr auto addMasked = lumiAdd_16u32f_C1IMR;
    static constexpr auto addSquare = lumiAddSquare_16u32f_C1IR;
    static constexpr auto addSquareMasked = lumiAddSquare_16u32f_C1IMR;
    static constexpr auto addProduct = lumiAddProduct_16u32f_C1IR;
    static constexpr auto addProductMasked = lumiAddProduct_16u32f_C1IMR;
    static constexpr auto addWeighted = lumiAddWeighted_16u32f_C1IR;
    static constexpr auto addWeightedMasked = lumiAddWeighted_16u32f_C1IMR;
};
template <> struct Exports<Lum32f> {
    static constexpr auto addMasked = lumiAdd_32f_C1IMR;
    static constexpr auto addSquare = lumiAddSquare_32f_C1IR;
    static constexpr auto addSquareMasked = lumiAddSquare_32f_C1IMR;
    static constexpr auto addProduct = lumiAddProduct_32f_C1IR;
    static constexpr auto addProductMasked = lumiAddProduct_32f_C1IMR;
    static constexpr auto addWeighted = lumiAddWeighted_32f_C1IR;
    static constexpr auto addWeightedMasked = lumiAddWeighted_32f_C1IMR;
};

// A family: its two calls, and the value of one pixel straight from the formula. A pixel is in a whole vector
// or in a scalar step, which matters to an excluded one.

struct Sum {
    static constexpr bool twoSources = false;
    static constexpr bool asksForTheCache = false;
    static lum::kernels::AccumulateSum rule(float) { return {}; }
    template <class T> static constexpr bool hasPlain = !std::is_same_v<T, Lum32f>;

    template <class T> static LumStatus plain(const Arguments<T>& a) {
        return Exports<T>::add(a.src1, a.src1Step, a.srcDst, a.srcDstStep, a.size);
    }
    template <class T> static LumStatus masked(const Arguments<T>& a) {
        return Exports<T>::addMasked(a.src1, a.src1Step, a.mask, a.maskStep, a.srcDst, a.srcDstStep, a.size);
    }
    static float value(float a, float s, float, float) { return a + s; }
    static float valueMaskedOut(float a, float, bool inVector) { return inVector ? a + 0.0F : a; }
};

struct Squares {
    static constexpr bool twoSources = false;
    static constexpr bool asksForTheCache = false;
    static lum::kernels::AccumulateSquares rule(float) { return {}; }
    template <class T> static constexpr bool hasPlain = true;

    template <class T> static LumStatus plain(const Arguments<T>& a) {
        return Exports<T>::addSquare(a.src1, a.src1Step, a.srcDst, a.srcDstStep, a.size);
    }
    template <class T> static LumStatus masked(const Arguments<T>& a) {
        return Exports<T>::addSquareMasked(a.src1, a.src1Step, a.mask, a.maskStep, a.srcDst, a.srcDstStep,
                                           a.size);
    }
    static float value(float a, float s, float, float) {
        const float square = s * s;
        return a + square;
    }
    static float valueMaskedOut(float a, float, bool inVector) { return inVector ? a + 0.0F : a; }
};

struct Products {
    static constexpr bool twoSources = true;
    static constexpr bool asksForTheCache = true;
    static lum::kernels::AccumulateProducts rule(float) { return {}; }
    template <class T> static constexpr bool hasPlain = true;

    template <class T> static LumStatus plain(const Arguments<T>& a) {
        return Exports<T>::addProduct(a.src1, a.src1Step, a.src2, a.src2Step, a.srcDst, a.srcDstStep, a.size);
    }
    template <class T> static LumStatus masked(const Arguments<T>& a) {
        return Exports<T>::addProductMasked(a.src1, a.src1Step, a.src2, a.src2Step, a.mask, a.maskStep,
                                            a.srcDst, a.srcDstStep, a.size);
    }
    static float value(float a, float s1, float s2, float) {
        const float product = s1 * s2;
        return a + product;
    }
    static float valueMaskedOut(float a, float s2, bool) {
        const float product = 0.0F * s2;
        return a + product;
    }
};

struct Weighted {
    static constexpr bool twoSources = false;
    static constexpr bool asksForTheCache = true;
    static lum::kernels::AccumulateWeighted rule(float alpha) { return {alpha}; }
    template <class T> static constexpr bool hasPlain = true;

    template <class T> static LumStatus plain(const Arguments<T>& a) {
        return Exports<T>::addWeighted(a.src1, a.src1Step, a.srcDst, a.srcDstStep, a.size, a.alpha);
    }
    template <class T> static LumStatus masked(const Arguments<T>& a) {
        return Exports<T>::addWeightedMasked(a.src1, a.src1Step, a.mask, a.maskStep, a.srcDst, a.srcDstStep,
                                             a.size, a.alpha);
    }
    static float value(float a, float s, float, float alpha) {
        const float difference = s - a;
        const float step = difference * alpha;
        return a + step;
    }
    static float valueMaskedOut(float a, float, bool) { return a + 0.0F; }
};

template <class FamilyOf, class SourceOf> struct Member {
    using Family = FamilyOf;
    using Source = SourceOf;
};

using Members = testing::Types<Member<Sum, Lum8u>, Member<Sum, Lum16u>, Member<Sum, Lum32f>,
                               Member<Squares, Lum8u>, Member<Squares, Lum16u>, Member<Squares, Lum32f>,
                               Member<Products, Lum8u>, Member<Products, Lum16u>, Member<Products, Lum32f>,
                               Member<Weighted, Lum8u>, Member<Weighted, Lum16u>, Member<Weighted, Lum32f>>;

/// Products and weighted sums: their masked members ask for the cache, and skip no scalar step.
using AskingMembers =
    testing::Types<Member<Products, Lum8u>, Member<Products, Lum16u>, Member<Products, Lum32f>,
                   Member<Weighted, Lum8u>, Member<Weighted, Lum16u>, Member<Weighted, Lum32f>>;

/// Calls the masked or the unmasked member; the one that does not exist answers lumStatusOk.
template <class Family, class T> LumStatus call(bool masked, const Arguments<T>& arguments) {
    if (masked) return Family::masked(arguments);
    if constexpr (Family::template hasPlain<T>)
        return Family::plain(arguments);
    else
        return lumStatusOk;
}

/// The images of a call, the accumulator placed by itself, and the second source too where it is told.
template <class T> struct Scene {
    support::GuardedImage<T> src1, src2;
    support::GuardedImage<Lum8u> mask;
    support::GuardedImage<Lum32f> srcDst;

    Scene(int width, int height, support::Placement sources, support::Placement accumulator)
        : Scene(width, height, sources, sources, accumulator) {}
    Scene(int width, int height, support::Placement sources, support::Placement second,
          support::Placement accumulator)
        : src1(width, height, sources),
          src2(width, height, second),
          mask(width, height, {.padding = 3, .guard = sources.guard}),
          srcDst(width, height, accumulator) {}

    void fillRandom(unsigned seed) {
        src1.fillRandom(seed);
        src2.fillRandom(seed + 1);
        srcDst.fillRandom(seed + 2);
        std::mt19937 engine(seed + 3);
        // every second mask byte is 0, the others are any value
        mask.fill([&](int, int, int) { return engine() % 2 == 0 ? 0 : engine() % 255 + 1; });
    }

    Arguments<T> arguments(float alpha = 0.375F) {
        return {src1.data(), src1.step(),   src2.data(),   src2.step(),   mask.data(),
                mask.step(), srcDst.data(), srcDst.step(), srcDst.size(), alpha};
    }
};

} // namespace accumulators

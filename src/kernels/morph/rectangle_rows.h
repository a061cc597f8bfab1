// The row stage of a rectangle: windows of a line grow until they are as wide as the rectangle.
#pragma once

#include <algorithm>
#include <cstddef>

#include "frame/lanes_ahead.h"
#include "kernels/morph/blocks.h"
#include "kernels/morph/operation.h"
#include "kernels/morph/rectangle_columns.h"

namespace lum::kernels {

/// Joins windows of one width to windows of a larger one: `terms` of them, `spacing` elements apart, but for the last, which
/// may overlap the one before it.
struct GrowingStep {
    int terms;
    std::ptrdiff_t spacing;
    std::ptrdiff_t last;
};

/// Elements T of a line, as which windows are compared, and Out of the image.
template <MorphOp op, class T, class Out> class RowWindows {
  public:
    /// Windows of `width` elements that lie `stride` apart in memory.
    RowWindows(std::ptrdiff_t width, std::ptrdiff_t stride) {
        for (std::ptrdiff_t have = 1; have < width;) {
            const int terms = termsTowards(width, have);
            const std::ptrdiff_t next = std::min(width, have * terms);
            steps_[count_++] = {terms, have * stride, (next - have) * stride};
            have = next;
        }
        reach_ = (width - 1) * stride;
    }

    /// out[x] is the strongest of the window that begins at line[x], x in 0 .. count - 1. The line is overwritten, to a
    /// block beyond its last element, line[count - 1 + (width - 1) x stride].
    void run(T* line, Out* out, std::ptrdiff_t count) const {
        std::ptrdiff_t remaining = count + reach_;
        for (int i = 0; i + 1 < count_; ++i) {
            remaining -= steps_[i].last;
            growInPlace(steps_[i], line, remaining);
        }
        const GrowingStep last = steps_[count_ - 1];
        if (count >= blockElements<T>) return grow(last, line, out, count);
        // Tail: staged copy.
        growInPlace(last, line, count);
        std::transform(line, line + count, out, [](T value) { return movedTo<Out>(value); });
    }

  private:
    static constexpr int mostTerms = 7;
    static constexpr int mostSteps = 16;

    /// A step that overwrites the line.
    struct InPlace {};

    /// Few steps of even factors: a term costs a load, a step a store as well.
    static int termsTowards(std::ptrdiff_t width, std::ptrdiff_t have) {
        const std::ptrdiff_t factor = (width + have - 1) / have;
        if (factor <= mostTerms) return static_cast<int>(factor);
        int steps = 1;
        for (std::ptrdiff_t reached = 5; reached < factor; reached *= 5) ++steps;
        // Threes end in a step of pixels again.
        if (factor <= 15) return 3;
        int terms = 2;
        while (power(terms, steps) < factor) ++terms;
        return terms;
    }
    static std::ptrdiff_t power(int base, int exponent) {
        std::ptrdiff_t result = 1;
        for (int i = 0; i < exponent; ++i) result *= base;
        return result;
    }

    template <int terms, int N> LUM_LANE static auto joined(GrowingStep step, const T* line) {
        auto window = take<N>(line);
#pragma GCC unroll 8
        for (int i = 1; i < terms - 1; ++i) window = stronger<op>(window, take<N>(line + i * step.spacing));
        return stronger<op>(window, take<N>(line + step.last));
    }

    /// Upward through the line, so that no element is read after it was written; blocks run over its end.
    template <int terms> static void growLine(GrowingStep step, T* line, std::ptrdiff_t count) {
        constexpr int N = blockElements<T>;
        for (std::ptrdiff_t x = 0; x < count; x += N) put(joined<terms, N>(step, line + x), line + x);
    }
    template <int terms>
    static void growInto(GrowingStep step, const T* line, Out* out, std::ptrdiff_t count) {
        constexpr int N = blockElements<T>;
        forEachWholeBlock<N>(count, [&](std::ptrdiff_t x) LUM_BLOCK_BODY {
            put(movedTo<Out>(joined<terms, N>(step, line + x)), out + x);
        });
    }

    /// Steps of 3 to 5 windows that lie a distance apart which is known beforehand, but for the last. Loads and shifts are in
    /// balance, and whole vectors are loaded once.
    template <int terms, int stride, int M>
    LUM_LANE static auto joinedKnown(const T* place, std::ptrdiff_t last) {
        const auto first = take<M>(place);
        auto window = stronger<op>(first, loadAhead<stride>(first, place));
        window = stronger<op>(window, loadAhead<2 * stride>(first, place));
        if constexpr (terms == 3) return window;
        if constexpr (terms > 4) window = stronger<op>(window, take<M>(place + 3 * stride));
        return stronger<op>(window, take<M>(place + last));
    }
    template <int stride>
    static constexpr int ofKnown = (stride * sizeof(T) < 16 ? 32 : 64) / static_cast<int>(sizeof(T));
    template <int terms, int stride>
    static void growKnown(T* line, InPlace, std::ptrdiff_t last, std::ptrdiff_t count) {
        constexpr int N = ofKnown<stride>;
        for (std::ptrdiff_t x = 0; x < count; x += N)
            put(joinedKnown<terms, stride, N>(line + x, last), line + x);
    }
    template <int terms, int stride>
    static void growKnown(const T* line, Out* out, std::ptrdiff_t last, std::ptrdiff_t count) {
        constexpr int N = ofKnown<stride>;
        forEachWholeBlock<N>(count, [=](std::ptrdiff_t x) LUM_BLOCK_BODY {
            put(movedTo<Out>(joinedKnown<terms, stride, N>(line + x, last)), out + x);
        });
    }
    template <int stride, class Source, class Target>
    static bool growKnown(GrowingStep step, Source* line, Target out, std::ptrdiff_t count) {
        switch (step.terms) {
        case 3:
            if (step.last != 2 * stride) return false;
            growKnown<3, stride>(line, out, step.last, count);
            return true;
        case 4:
            growKnown<4, stride>(line, out, step.last, count);
            return true;
        case 5:
            growKnown<5, stride>(line, out, step.last, count);
            return true;
        default:
            return false;
        }
    }
    /// Whether the step was one of those.
    template <class Source, class Target>
    static bool growKnownStep(GrowingStep step, Source* line, Target out, std::ptrdiff_t count) {
        switch (step.spacing) {
        case 1:
            return growKnown<1>(step, line, out, count);
        case 3:
            return growKnown<3>(step, line, out, count);
        case 4:
            return growKnown<4>(step, line, out, count);
        case 16:
            return growKnown<16>(step, line, out, count);
        default:
            return false;
        }
    }

    /// A step has 3 to 5 terms, or 7 where it is the only one: more are too many, two steps of 2 are one of 4, and widths
    /// are odd.
    static void growInPlace(GrowingStep step, T* line, std::ptrdiff_t count) {
        if (growKnownStep(step, line, InPlace{}, count)) return;
        switch (step.terms) {
        case 3:
            return growLine<3>(step, line, count);
        case 4:
            return growLine<4>(step, line, count);
        case 5:
            return growLine<5>(step, line, count);
        default:
            return growLine<7>(step, line, count);
        }
    }
    static void grow(GrowingStep step, const T* line, Out* out, std::ptrdiff_t count) {
        if (growKnownStep(step, line, out, count)) return;
        switch (step.terms) {
        case 3:
            return growInto<3>(step, line, out, count);
        case 4:
            return growInto<4>(step, line, out, count);
        case 5:
            return growInto<5>(step, line, out, count);
        default:
            return growInto<7>(step, line, out, count);
        }
    }

    GrowingStep steps_[mostSteps];
    int count_ = 0;
    std::ptrdiff_t reach_ = 0;
};

} // namespace lum::kernels

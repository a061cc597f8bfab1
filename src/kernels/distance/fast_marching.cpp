#include "kernels/distance/fast_marching.h"

#include "kernels/distance/eikonal.h"

namespace lum::kernels {
namespace {

/// Directions of a sweep over the rows and of a pass along one.
enum Vertical { down = 1, up = -1 };
enum Horizontal { rightward = 1, leftward = -1 };

/// The bit of a pixel that is looked at in a pass.
constexpr Lum8u passBit(Vertical vertical, Horizontal horizontal) {
    return static_cast<Lum8u>((vertical == down ? 1 : 4) << (horizontal == rightward ? 0 : 1));
}
constexpr Lum8u bothPasses(Vertical vertical) {
    return passBit(vertical, rightward) | passBit(vertical, leftward);
}
constexpr Vertical opposite(Vertical vertical) { return vertical == down ? up : down; }
constexpr Horizontal opposite(Horizontal horizontal) {
    return horizontal == rightward ? leftward : rightward;
}

/// How a pass over pixels that have a value chooses them, and what it leaves for later sweeps.
enum class Visits {
    all,        // every pixel, and no flags
    allAndFlag, // every pixel; flags what the next sweep is to look at
    flagged,    // pixels that are flagged, and those after a change
};

template <bool hasBand> class March {
    using Rules = Eikonal<hasBand>;

  public:
    March(Image<const Lum8u> src, Image<float> dst, LumSize size, float radius, const SweepFlags& flags)
        : src_(src), dst_(dst), size_(size), lowest_(-(radius + 1e-5F)), flags_(flags) {}

    void run() {
        firstRow();
        if (size_.height == 1) return;
        firstSweepDown();
        flags_.rows[size_.height - 1] = 0;
        if (!sweep<Visits::allAndFlag, up>()) return;
        while (true) {
            flags_.rows[0] = 0;
            if (!sweep<Visits::flagged, down>()) return;
            flags_.rows[size_.height - 1] = 0;
            if (!sweep<Visits::flagged, up>()) return;
        }
    }

  private:
    bool isInside(int x, int y) const { return src_.row(y)[x] != 0; }

    /// What the first pass over a pixel outside writes.
    float firstOutside(OutsideUpdate update) const {
        return update.kind == OutsideUpdate::distance && update.value < lowest_ ? 0 : update.value;
    }

    /// A later pass over a pixel inside; whether the pixel changed.
    static bool improveInside(float& present, float value) {
        if (!(value < present)) return false;
        present = value;
        return true;
    }
    /// The same outside. Writing the contour is a change only in the sweep that flags every pixel it changes.
    template <Visits visits> bool improveOutside(float& present, OutsideUpdate update) const {
        if (update.kind == OutsideUpdate::none) return false;
        if (update.kind == OutsideUpdate::contour) {
            present = contourDistance;
            return visits == Visits::allAndFlag;
        }
        if (!(update.value >= lowest_) || !(present == 0 || update.value > present)) return false;
        present = update.value;
        return true;
    }

    /// A later pass over a pixel from its neighbour in the row before, or in its own row.
    template <Visits visits> bool improveFromOne(int x, int y, float neighbour) {
        float& present = dst_.row(y)[x];
        if (isInside(x, y)) return improveInside(present, Rules::insideFromOne(neighbour));
        if constexpr (hasBand) return improveOutside<visits>(present, Rules::outsideFromOne(neighbour));
        return false;
    }
    template <Visits visits> bool improve(int x, int y, float a, float b) {
        float& present = dst_.row(y)[x];
        if (isInside(x, y)) return improveInside(present, Rules::inside(a, b));
        if constexpr (hasBand) return improveOutside<visits>(present, Rules::outside(a, b));
        return false;
    }

    void firstRow() {
        float* row = dst_.row(0);
        row[0] = isInside(0, 0) ? unknownDistance : 0;
        for (int x = 1; x < size_.width; ++x) row[x] = firstFromOne(x, 0, row[x - 1]);
        for (int x = size_.width - 2; x >= 0; --x) improveFromOne<Visits::all>(x, 0, row[x + 1]);
    }

    float firstFromOne(int x, int y, float neighbour) const {
        if (isInside(x, y)) return Rules::insideFromOne(neighbour);
        return hasBand ? firstOutside(Rules::outsideFromOne(neighbour)) : 0;
    }

    void firstSweepDown() {
        for (int y = 1; y < size_.height; ++y) {
            const float* before = dst_.row(y - 1);
            float* row = dst_.row(y);
            row[0] = firstFromOne(0, y, before[0]);
            for (int x = 1; x < size_.width; ++x) {
                if (isInside(x, y))
                    row[x] = Rules::inside(before[x], row[x - 1]);
                else
                    row[x] = hasBand ? firstOutside(Rules::outside(before[x], row[x - 1])) : 0;
            }
            pass<Visits::all, down, leftward>(y);
        }
        for (int y = 0; y < size_.height; ++y) flags_.rows[y] = 1;
    }

    /// Later passes over all rows but the first in the direction; whether any pixel changed.
    template <Visits visits, Vertical vertical> bool sweep() {
        bool changed = false;
        for (int i = 1; i < size_.height; ++i) {
            const int y = vertical == down ? i : size_.height - 1 - i;
            if (visits == Visits::flagged && flags_.rows[y] == 0) continue;
            flags_.rows[y] = 0;
            const bool rightChanged = pass<visits, vertical, rightward>(y);
            const bool leftChanged = pass<visits, vertical, leftward>(y);
            if (!rightChanged && !leftChanged) continue;
            changed = true;
            flags_.rows[y - 1] = flags_.rows[y] = flags_.rows[y + 1] = 1;
        }
        return changed;
    }

    template <Visits visits, Vertical vertical, Horizontal horizontal> bool pass(int y) {
        constexpr Lum8u bit = passBit(vertical, horizontal);
        const float* before = dst_.row(y - vertical);
        const float* row = dst_.row(y);
        Lum8u* flags = flags_.pixels.row(y);
        bool anyChanged = false;
        bool changed = false;
        for (int i = 0; i < size_.width; ++i) {
            const int x = horizontal == rightward ? i : size_.width - 1 - i;
            if constexpr (visits == Visits::flagged) {
                if ((flags[x] & bit) == 0 && !changed) continue;
                flags[x] &= static_cast<Lum8u>(~bit);
            }
            changed = i == 0 ? improveFromOne<visits>(x, y, before[x])
                             : improve<visits>(x, y, before[x], row[x - horizontal]);
            if (!changed) continue;
            anyChanged = true;
            if constexpr (visits != Visits::all) flagAround<visits, vertical, horizontal>(x, y);
        }
        return anyChanged;
    }

    /// Flags what a changed pixel may change.
    template <Visits visits, Vertical vertical, Horizontal horizontal> void flagAround(int x, int y) {
        constexpr Vertical next = opposite(vertical);
        constexpr bool all = visits == Visits::allAndFlag;
        Lum8u* row = flags_.pixels.row(y);
        const int following = x + horizontal;
        const int preceding = x - horizontal;
        if (following >= 0 && following < size_.width)
            row[following] |= all ? bothPasses(next) : passBit(next, horizontal);
        if (preceding >= 0 && preceding < size_.width)
            row[preceding] |= all ? bothPasses(next) : passBit(next, opposite(horizontal));
        flags_.pixels.row(y - vertical)[x] |= bothPasses(next);
        if constexpr (!all) flags_.pixels.row(y + vertical)[x] |= bothPasses(vertical);
    }

    Image<const Lum8u> src_;
    Image<float> dst_;
    LumSize size_;
    float lowest_;
    SweepFlags flags_;
};

} // namespace

void fastMarching(Image<const Lum8u> src, Image<float> dst, LumSize size, float radius,
                  const SweepFlags& flags) {
    if (radius > 0)
        March<true>(src, dst, size, radius, flags).run();
    else
        March<false>(src, dst, size, radius, flags).run();
}

} // namespace lum::kernels

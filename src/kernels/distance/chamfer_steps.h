// The steps of a chamfer metric one by one, with tests of the region's bounds: the plain form of a pass, and what the
// vector form does at the ends of its rows.
#pragma once

#include <array>

#include "kernels/distance/chamfer.h"

namespace lum::kernels {

/// The steps of the first pass, which goes down and to the right; the second pass takes them in the other direction.
template <class T> class StepList {
  public:
    struct Step {
        int dx, dy;
        T length;
    };

    explicit StepList(const ChamferMetric<T>& m) {
        add(-1, 0, m.axial);
        add(0, -1, m.axial);
        if (m.steps == ChamferSteps::axial) return;
        addBoth(1, -1, m.diagonal);
        if (m.steps == ChamferSteps::eight) return;
        addBoth(2, -1, m.knight);
        addBoth(1, -2, m.knight);
        if (m.steps == ChamferSteps::knight) return;
        add(-2, 0, m.doubleAxial);
        add(0, -2, m.doubleAxial);
        addBoth(2, -2, m.doubleDiagonal);
    }

    void add(int dx, int dy, T length) { steps_[count_++] = {dx, dy, length}; }

    const Step* begin() const { return steps_.data(); }
    const Step* end() const { return steps_.data() + count_; }

  private:
    void addBoth(int dx, int dy, T length) {
        add(-dx, dy, length);
        add(dx, dy, length);
    }

    std::array<Step, 13> steps_;
    int count_ = 0;
};

/// Whether a place moved by a signed distance is still one of `count`.
inline bool staysWithin(int place, int distance, int count) {
    return distance < 0 ? place >= -distance : place < count - distance;
}

/// The shorter of a distance and the chains over the neighbours of (x, y) inside the region. A direction of 1 is that
/// of the first pass, -1 that of the second.
template <class T>
T shortestChain(Image<T> dst, LumSize size, int x, int y, int direction, const StepList<T>& steps,
                T distance) {
    for (const auto& step : steps) {
        const int dx = direction * step.dx;
        const int dy = direction * step.dy;
        if (staysWithin(x, dx, size.width) && staysWithin(y, dy, size.height))
            distance = std::min(distance, chained(dst.row(y + dy)[x + dx], step.length));
    }
    return distance;
}

} // namespace lum::kernels

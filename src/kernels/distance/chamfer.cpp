#include "kernels/distance/chamfer.h"

#include "kernels/distance/chamfer_floats.h"
#include "kernels/distance/chamfer_integers.h"
#include "kernels/distance/chamfer_steps.h"

namespace lum::kernels {
namespace {

/// The steps of the last row.
template <class T> StepList<T> lastRowSteps(const ChamferMetric<T>& metric) {
    StepList<T> steps(metric);
    if (metric.doubleStepsInLastRow) steps.add(-2, 0, metric.doubleAxial);
    return steps;
}

template <class T> void startScalar(Image<const Lum8u> src, Image<T> dst, LumSize size) {
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) dst.row(y)[x] = src.row(y)[x] == 0 ? T{0} : farthest<T>;
}

/// Both passes over distances that are 0 or a chain each; whether any of them got shorter.
template <class T> bool passesScalar(Image<T> dst, LumSize size, const ChamferMetric<T>& metric) {
    const StepList<T> steps(metric);
    const StepList<T> ofLastRow = lastRowSteps(metric);
    bool changed = false;
    const auto visit = [&](int x, int y, int direction) {
        T& distance = dst.row(y)[x];
        const StepList<T>& stepsOfRow = y == size.height - 1 ? ofLastRow : steps;
        const T shortest = shortestChain(dst, size, x, y, direction, stepsOfRow, distance);
        changed = changed || shortest < distance;
        distance = shortest;
    };
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) visit(x, y, 1);
    for (int y = size.height - 1; y >= 0; --y)
        for (int x = size.width - 1; x >= 0; --x) visit(x, y, -1);
    return changed;
}

} // namespace

template <class T>
void chamferScalar(Image<const Lum8u> src, Image<T> dst, LumSize size, const ChamferMetric<T>& metric) {
    startScalar(src, dst, size);
    passesScalar(dst, size, metric);
}

template <class T>
void chamfer(Image<const Lum8u> src, Image<T> dst, LumSize size, const ChamferMetric<T>& metric) {
    if constexpr (std::is_integral_v<T>)
        chamferIntegers(src, dst, size, metric);
    else
        chamferFloats(src, dst, size, metric);
}

template <class T>
void chamferRelaxed(Image<const Lum8u> src, Image<T> dst, LumSize size, const ChamferMetric<T>& metric) {
    startScalar(src, dst, size);
    while (passesScalar(dst, size, metric)) continue;
}

template void chamferScalar(Image<const Lum8u>, Image<Lum8u>, LumSize, const ChamferMetric<Lum8u>&);
template void chamferScalar(Image<const Lum8u>, Image<Lum16u>, LumSize, const ChamferMetric<Lum16u>&);
template void chamferScalar(Image<const Lum8u>, Image<Lum32f>, LumSize, const ChamferMetric<Lum32f>&);
template void chamfer(Image<const Lum8u>, Image<Lum8u>, LumSize, const ChamferMetric<Lum8u>&);
template void chamfer(Image<const Lum8u>, Image<Lum16u>, LumSize, const ChamferMetric<Lum16u>&);
template void chamfer(Image<const Lum8u>, Image<Lum32f>, LumSize, const ChamferMetric<Lum32f>&);
template void chamferRelaxed(Image<const Lum8u>, Image<Lum8u>, LumSize, const ChamferMetric<Lum8u>&);
template void chamferRelaxed(Image<const Lum8u>, Image<Lum16u>, LumSize, const ChamferMetric<Lum16u>&);
template void chamferRelaxed(Image<const Lum8u>, Image<Lum32f>, LumSize, const ChamferMetric<Lum32f>&);

} // namespace lum::kernels

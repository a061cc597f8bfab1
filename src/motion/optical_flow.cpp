#include "motion/optical_flow.h"

#include <algorithm>
#include <cmath>

#include "frame/check.h"
#include "frame/convert.h"
#include "frame/image.h"
#include "kernels/motion/flow_gradient.h"
#include "kernels/motion/flow_sums.h"
#include "kernels/motion/subpix.h"
#include "motion/flow_state.h"
#include "motion/subpix.h"

namespace lum {
namespace {

using kernels::Derivative;
using kernels::FlowWindows;
using kernels::GradientSums;
using kernels::LevelGradient;
using kernels::MismatchSums;
using kernels::Sampling;

constexpr double leastDeterminant = 2.220446049250313e-16;
/// sqrt(2^-23).
constexpr double oscillation = 3.4526698300124393e-4;

/// A level of a pyramid. It can be sampled where it has an image of sufficient step.
template <class T> struct Level {
    Image<const T> image;
    LumSize size;
    float rate;
    bool usable;

    Level(const LumPyramid& pyramid, int level)
        : image(static_cast<const T*>(pyramid.images[level]), pyramid.steps[level]),
          size(pyramid.rois[level]),
          rate(nearestFloat(pyramid.rates[level])) {
        const Lum32s step = pyramid.steps[level];
        usable =
            firstFailure(checkNotNull(image.first), checkSize(size), checkStep(rowBytes<T>(size.width), step),
                         checkStepAlignment<T>(step)) == lumStatusOk;
    }
};

/// Columns and rows of a window, the last ones included.
struct Rectangle {
    int x0, y0, x1, y1;

    bool empty() const { return x0 > x1 || y0 > y1; }
    bool operator==(const Rectangle&) const = default;
};

/// The first pixel of a rectangle in the second picture.
struct Origin {
    std::int64_t x, y;

    bool operator==(const Origin&) const = default;
};

LumPoint32f scaled(LumPoint32f point, float rate) { return {point.x * rate, point.y * rate}; }

/// What the iterations on a level work by.
struct Search {
    int winSize;
    int maxIterations;
    double squaredThreshold;
};

enum class Step { followed, lost, noImage };

struct Point {
    LumPoint32f prev;
    LumPoint32f& next;
    Lum32f& error;
};

/// One level of both pyramids.
template <class T> class LevelTracker {
  public:
    LevelTracker(const LumPyramid& pyramid1, const LumPyramid& pyramid2, int level, const Search& search,
                 const FlowWork& work)
        : first_(pyramid1, level),
          second_(pyramid2, level),
          search_(search),
          work_(work),
          isLast_(level == 0),
          // Only the last level that is reached leaves its error, and without an image any level may be that.
          wantsError_(!allBelowUsable(pyramid1, level)) {}

    /// Prepares the derivatives of the whole level.
    void differentiate() {
        if (!first_.usable) return;
        const std::ptrdiff_t pitch = std::ptrdiff_t{first_.size.width} + 5;
        const std::ptrdiff_t elements = pitch * (std::ptrdiff_t{first_.size.height} + 5);
        Arena arena(work_.levels);
        dx_ = arena.allocate<Derivative<T>>(elements);
        dy_ = arena.allocate<Derivative<T>>(elements);
        pitch_ = pitch;
        LevelGradient<T>::draw(first_.image, first_.size, dx_, dy_, pitch,
                               arena.allocate<Derivative<T>>(2 * (std::size_t{2} + first_.size.width)));
    }

    Step follow(const Point& point) const;

    /// Asks for the memory that following a point will need.
    void prefetch(LumPoint32f prev, LumPoint32f next) const;

  private:
    /// Where the window of the first picture lies; one pixel more on each side.
    struct Template {
        PatchSpan x;
        PatchSpan y;
        Rectangle inside;
    };

    /// Whether a smaller level follows, and every such level has an image of the first picture.
    static bool allBelowUsable(const LumPyramid& pyramid, int level) {
        bool usable = level > 0;
        while (--level >= 0) usable = usable && Level<T>(pyramid, level).usable;
        return usable;
    }

    Template placedTemplate(LumPoint32f at) const {
        const int side = search_.winSize + 2;
        const PatchSpan x = placedPatch(first_.size.width, side, at.x);
        const PatchSpan y = placedPatch(first_.size.height, side, at.y);
        // Of the inner window; the outer one begins a column and a row before it.
        const auto innerFirst = [](int i) { return i > 0 ? i - 1 : i; };
        const auto innerLast = [&](int i) { return i > search_.winSize ? i - 2 : i - 1; };
        return {x, y, {innerFirst(x.first), innerFirst(y.first), innerLast(x.last), innerLast(y.last)}};
    }

    FlowWindows windowsOf(const Rectangle& r) const {
        const int width = r.x1 - r.x0 + 1;
        const int height = r.y1 - r.y0 + 1;
        return {work_.values, work_.dx, work_.dy, work_.moved, static_cast<int>(kernels::flowPitch(width)),
                width,        height};
    }

    std::ptrdiff_t stepOfDerivatives() const { return pitch_ * static_cast<int>(sizeof(Derivative<T>)); }
    void drawTemplate(const Template& window, const Rectangle& r, const FlowWindows& windows) const;

    Level<T> first_;
    Level<T> second_;
    const Search& search_;
    const FlowWork& work_;
    bool isLast_;
    bool wantsError_;
    Derivative<T>* dx_ = nullptr;
    Derivative<T>* dy_ = nullptr;
    std::ptrdiff_t pitch_ = 0;
};

/// The elements that fill up the rows.
template <class Element> void clearPadding(Element* window, const FlowWindows& windows) {
    for (int y = 0; y < windows.height; ++y) {
        Element* row = window + std::ptrdiff_t{windows.pitch} * y;
        std::fill(row + windows.width, row + windows.pitch, Element{0});
    }
}

/// The first picture and its derivatives in a rectangle of the window.
template <class T>
void LevelTracker<T>::drawTemplate(const Template& window, const Rectangle& r,
                                   const FlowWindows& windows) const {
    const LumSize size{windows.width, windows.height};
    const auto rows = [&](Lum64f* first) {
        return Image<Lum64f>{first, std::ptrdiff_t{windows.pitch} * static_cast<int>(sizeof(Lum64f))};
    };
    const float fx = window.x.fraction;
    const float fy = window.y.fraction;
    if (dx_ != nullptr) {
        const std::ptrdiff_t x = window.x.start + 1 + r.x0;
        const std::ptrdiff_t y = window.y.start + 1 + r.y0;
        const kernels::FloatQuad weights = floatWeights(fx, fy);
        Sampling<T, Lum64f>::patch({first_.image.row(y) + x, first_.image.step}, rows(work_.values), size,
                                   weights);

        using D = Derivative<T>;
        constexpr float scale = kernels::scaleOfDerivative<T>;
        const kernels::FloatQuad limited = floatWeights(std::max(fx, 1e-6F), std::max(fy, 1e-6F));
        const kernels::FloatQuad scaled{limited.w00 * scale, limited.w01 * scale, limited.w10 * scale,
                                        limited.w11 * scale};
        const std::ptrdiff_t place = y * pitch_ + x;
        const std::ptrdiff_t step = stepOfDerivatives();
        Sampling<D, Lum64f>::patch({dx_ + place, step}, rows(work_.dx), size, scaled);
        Sampling<D, Lum64f>::patch({dy_ + place, step}, rows(work_.dy), size, scaled);
    } else {
        const int side = search_.winSize + 2;
        const Image<Lum32f> around{work_.around, std::ptrdiff_t{side} * static_cast<int>(sizeof(Lum32f))};
        drawPlacedPatch<T>(first_.image, first_.size, around, {side, side}, window.x, window.y);
        kernels::windowGradient(Image<Lum32f>{around.row(r.y0) + r.x0, around.step}, size, rows(work_.values),
                                rows(work_.dx), rows(work_.dy));
    }
    for (Lum64f* padded : {work_.values, work_.dx, work_.dy}) clearPadding(padded, windows);
}

/// The equations of a window, of which the right side changes with each iteration.
struct Equations {
    GradientSums g{};
    double det = 0;

    Equations() = default;
    explicit Equations(const GradientSums& sums) : g(sums), det(sums.xx * sums.yy - sums.xy * sums.xy) {}

    bool solvable() const { return !(det < leastDeterminant); }
    double x(const MismatchSums& b) const { return (g.yy * b.x - g.xy * b.y) / det; }
    double y(const MismatchSums& b) const { return (g.xx * b.y - g.xy * b.x) / det; }
};

template <class T> Step LevelTracker<T>::follow(const Point& point) const {
    if (!first_.usable) return Step::noImage;
    const float rate = first_.rate;
    const Template window = placedTemplate(scaled(point.prev, rate));
    LumPoint32f p2 = scaled(point.next, rate);
    const auto lost = [&] {
        point.error = 0;
        return Step::lost;
    };

    Rectangle rectangle{};
    Origin origin{};
    FlowWindows windows{};
    kernels::FloatQuad weights{};
    Equations equations;
    double prevDx = 0;
    double prevDy = 0;
    for (int iteration = 0;; ++iteration) {
        if (!second_.usable) return lost();
        const PatchSpan x = placedPatch(second_.size.width, search_.winSize, p2.x);
        const PatchSpan y = placedPatch(second_.size.height, search_.winSize, p2.y);
        const Rectangle common{std::max(window.inside.x0, x.first), std::max(window.inside.y0, y.first),
                               std::min(window.inside.x1, x.last), std::min(window.inside.y1, y.last)};
        if (common.empty()) {
            point.next = {p2.x / rate, p2.y / rate};
            return lost();
        }
        const bool isNew = iteration == 0 || common != rectangle;
        if (isNew) {
            rectangle = common;
            windows = windowsOf(rectangle);
            drawTemplate(window, rectangle, windows);
            equations = Equations(kernels::gradientSums(windows));
        }
        // As long as the position moves by fractions of a pixel, only the weights change.
        if (const Origin now{x.start + rectangle.x0, y.start + rectangle.y0}; isNew || now != origin) {
            origin = now;
            kernels::copyAsFloats(Image<const T>{second_.image.row(origin.y) + origin.x, second_.image.step},
                                  {windows.width + 1, windows.height + 1}, work_.moved, windows.pitch);
        }
        if (!equations.solvable()) return lost();

        weights = floatWeights(x.fraction, y.fraction);
        const MismatchSums b = kernels::mismatchSums(windows, weights);
        const double dx = equations.x(b);
        const double dy = equations.y(b);
        p2 = {nearestFloat(p2.x + dx), nearestFloat(p2.y + dy)};
        if (dx * dx + dy * dy < search_.squaredThreshold) break;
        if (iteration > 0 && std::fabs(dx + prevDx) < oscillation && std::fabs(dy + prevDy) < oscillation) {
            p2 = {nearestFloat(p2.x - dx / 2), nearestFloat(p2.y - dy / 2)};
            break;
        }
        prevDx = dx;
        prevDy = dy;
        if (iteration + 1 >= search_.maxIterations) break;
    }

    point.next = isLast_ ? p2 : LumPoint32f{p2.x / rate, p2.y / rate};
    if (wantsError_) {
        const double sum = kernels::squaredError(windows, weights);
        const double count = static_cast<double>(windows.width - 1) * (windows.height - 1);
        point.error = sum > 0 ? nearestFloat(std::sqrt(sum / count)) : 0;
    }
    return Step::followed;
}

/// Asks for the rows of a window, which lie far apart in memory.
template <class Element>
void prefetchWindow(Image<const Element> image, LumSize size, std::int64_t x, std::int64_t y, int side) {
    const std::int64_t left = std::clamp<std::int64_t>(x, 0, size.width - 1);
    const std::int64_t right = std::clamp<std::int64_t>(x + side, 0, size.width - 1);
    const std::int64_t end = std::min<std::int64_t>(y + side + 1, size.height);
    for (std::int64_t row = std::max<std::int64_t>(y, 0); row < end; ++row) {
        const Element* first = image.row(row);
        __builtin_prefetch(first + left);
        __builtin_prefetch(first + right);
    }
}

template <class T> void LevelTracker<T>::prefetch(LumPoint32f prev, LumPoint32f next) const {
    if (!first_.usable || !second_.usable) return;
    const int side = search_.winSize;
    const LumPoint32f p1 = scaled(prev, first_.rate);
    const LumPoint32f p2 = scaled(next, first_.rate);
    const PatchSpan x = placedPatch(first_.size.width, side + 2, p1.x);
    const PatchSpan y = placedPatch(first_.size.height, side + 2, p1.y);
    prefetchWindow(first_.image, first_.size, x.start, y.start, side + 2);
    prefetchWindow(second_.image, second_.size, placedPatch(second_.size.width, side, p2.x).start,
                   placedPatch(second_.size.height, side, p2.y).start, side);
    if (dx_ == nullptr) return;
    for (const auto* derivative : {dx_, dy_})
        prefetchWindow(Image<const Derivative<T>>{derivative, stepOfDerivatives()}, first_.size, x.start + 1,
                       y.start + 1, side);
}

/// The points of a call, each with the level at which it is: one more than the next level to look at.
struct Points {
    const LumPoint32f* prev;
    LumPoint32f* next;
    Lum8s* status;
    Lum32f* error;
    int count;
};

/// Follows a point on a level; its status is then the level, or one more where it is lost.
template <class T> Step followPoint(const LevelTracker<T>& tracker, int level, const Points& points, int i) {
    points.status[i] = static_cast<Lum8s>(level);
    const Step step = tracker.follow({points.prev[i], points.next[i], points.error[i]});
    if (step == Step::lost) points.status[i] = static_cast<Lum8s>(level + 1);
    return step;
}

/// The first point from i on that has come down to a level.
int nextPoint(const Points& points, int i, int level) {
    while (i < points.count && points.status[i] != static_cast<Lum8s>(level + 1)) ++i;
    return i;
}

/// The finest of the small levels is the one after this one; -1 where all are small.
int firstLargeLevel(const LumPyramid& pyramid, int maxLevel, const LumOpticalFlowState& state) {
    int level = maxLevel;
    while (level >= 0 && pyramid.rois[level].width < state.width && pyramid.rois[level].height < state.height)
        --level;
    return level;
}

/// Levels that fit the state, one after the other: the derivatives of a level serve all points.
template <class T>
void followSmallLevels(const LumPyramid& pyramid1, const LumPyramid& pyramid2, int maxLevel, int split,
                       const Search& search, const FlowWork& work, const Points& points) {
    for (int level = maxLevel; level > split; --level) {
        LevelTracker<T> tracker(pyramid1, pyramid2, level, search, work);
        tracker.differentiate();
        int i = nextPoint(points, 0, level);
        while (i < points.count) {
            const int following = nextPoint(points, i + 1, level);
            if (following < points.count) tracker.prefetch(points.prev[following], points.next[following]);
            if (followPoint(tracker, level, points, i) == Step::noImage) break;
            i = following;
        }
    }
}

/// The other levels, one point after the other: only the windows are looked at.
template <class T>
void followLargeLevels(const LumPyramid& pyramid1, const LumPyramid& pyramid2, int split,
                       const Search& search, const FlowWork& work, const Points& points) {
    const LevelTracker<T> coarsest(pyramid1, pyramid2, split, search, work);
    for (int i = nextPoint(points, 0, split); i < points.count;) {
        const int following = nextPoint(points, i + 1, split);
        Step step = Step::followed;
        for (int level = split; level >= 0 && step == Step::followed; --level) {
            // The next windows: of the level below, where the point may have moved a little, or of the next point.
            if (level > 0)
                LevelTracker<T>(pyramid1, pyramid2, level - 1, search, work)
                    .prefetch(points.prev[i], points.next[i]);
            else if (following < points.count)
                coarsest.prefetch(points.prev[following], points.next[following]);
            step = followPoint(LevelTracker<T>(pyramid1, pyramid2, level, search, work), level, points, i);
        }
        if (step == Step::noImage) break;
        i = following;
    }
}

} // namespace

template <class T>
LumStatus opticalFlow(const LumPyramid* pyramid1, const LumPyramid* pyramid2, const LumPoint32f* prevPoints,
                      LumPoint32f* nextPoints, Lum8s* status, Lum32f* error, int numPoints, int winSize,
                      int maxLevel, int maxIterations, Lum32f threshold, LumOpticalFlowState* state) {
    if (auto s = firstFailure(checkNotNull(pyramid1, pyramid2, state, prevPoints, nextPoints, status, error),
                              checkCount(numPoints, winSize)))
        return s;
    if (auto s = firstFailure(
            errorIf(winSize != state->winSize, lumStatusSizeError),
            errorIf(maxLevel < 0 || maxIterations < 1 || threshold < 0, lumStatusBadArgument),
            errorIf(maxLevel > pyramid1->level || maxLevel > pyramid2->level, lumStatusBadArgument)))
        return s;
    std::fill(status, status + numPoints, static_cast<Lum8s>(maxLevel + 1));
    const Search search{winSize, maxIterations,
                        static_cast<double>(threshold) * static_cast<double>(threshold)};
    const FlowWork work(state->work, winSize);
    const Points points{prevPoints, nextPoints, status, error, numPoints};
    const int split = firstLargeLevel(*pyramid1, maxLevel, *state);
    followSmallLevels<T>(*pyramid1, *pyramid2, maxLevel, split, search, work, points);
    if (split >= 0) followLargeLevels<T>(*pyramid1, *pyramid2, split, search, work, points);
    return lumStatusOk;
}

template LumStatus opticalFlow<Lum8u>(const LumPyramid*, const LumPyramid*, const LumPoint32f*, LumPoint32f*,
                                      Lum8s*, Lum32f*, int, int, int, int, Lum32f, LumOpticalFlowState*);
template LumStatus opticalFlow<Lum16u>(const LumPyramid*, const LumPyramid*, const LumPoint32f*, LumPoint32f*,
                                       Lum8s*, Lum32f*, int, int, int, int, Lum32f, LumOpticalFlowState*);
template LumStatus opticalFlow<Lum32f>(const LumPyramid*, const LumPyramid*, const LumPoint32f*, LumPoint32f*,
                                       Lum8s*, Lum32f*, int, int, int, int, Lum32f, LumOpticalFlowState*);

} // namespace lum

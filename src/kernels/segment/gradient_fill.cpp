#include "kernels/segment/gradient_fill.h"

#include <cstring>

#include "frame/instances.h"
#include "kernels/segment/bounding_box.h"
#include "kernels/segment/row_search.h"

namespace lum::kernels {
namespace {

/// One byte a pixel, in a frame of one pixel: 1 where it is taken, as the frame is, so that no walk leaves the image.
class TakenMap {
  public:
    TakenMap(Lum8u* bytes, LumSize size)
        : first_(bytes + static_cast<std::ptrdiff_t>(size.width) + 3), step_(std::ptrdiff_t{size.width} + 2) {
        std::memset(bytes, 1, static_cast<std::size_t>(step_));
        for (std::ptrdiff_t y = 0; y < size.height; ++y) {
            Lum8u* pixels = row(y);
            pixels[-1] = 1;
            std::memset(pixels, 0, static_cast<std::size_t>(size.width));
            pixels[size.width] = 1;
        }
        std::memset(row(size.height) - 1, 1, static_cast<std::size_t>(step_));
    }

    Lum8u* row(std::ptrdiff_t y) const { return first_ + y * step_; }

  private:
    Lum8u* first_;
    std::ptrdiff_t step_;
};

template <Connected connected, class Rule> class StepFill {
    using T = typename Rule::Element;
    static constexpr int channels = Rule::channelCount;
    static constexpr bool corners = connected == Connected::eight;

  public:
    StepFill(const Rule& rule, Image<T> image, LumSize size, const Pixel<T, channels>& newVal,
             Lum8u* takenMap, RunStack& stack)
        : rule_(rule),
          image_(image),
          size_(size),
          rows_({newVal}, newVal),
          taken_(takenMap, size),
          stack_(stack) {}

    FilledRegion from(LumPoint seed) {
        const T* row = image_.row(seed.y);
        Lum8u* taken = taken_.row(seed.y);
        taken[seed.x] = 1;
        int right = seed.x;
        for (; joins(row, taken, right + 1, right); ++right) taken[right + 1] = 1;
        const int left = growLeft(row, taken, seed.x);
        stack_.push(runWithoutParent(seed.y, left, right, 1));
        BoundingBox box(seed.y, left, right);
        std::int64_t area = 0;
        while (!stack_.empty()) {
            const Run run = stack_.pop();
            box.widen(run.y, run.left, run.right);
            searchAround<corners>(run, size_.width,
                                  [&](int y, int from, int to, int dir) { search(run, y, from, to, dir); });
            rows_.write(image_.row(run.y), run.left, run.right + 1);
            area += run.right + 1 - run.left;
        }
        return {area, box.rect()};
    }

  private:
    const T* pixel(const T* row, int x) const { return row + std::ptrdiff_t{x} * channels; }

    /// Whether a pixel that is not taken may join a neighbour on its row.
    bool joins(const T* row, const Lum8u* taken, int x, int neighbour) const {
        return !taken[x] && rule_.accepts(pixel(row, x), pixel(row, neighbour));
    }

    /// Takes the pixels at the left of a run that begins at x; gives its new beginning.
    int growLeft(const T* row, Lum8u* taken, int x) const {
        for (; joins(row, taken, x - 1, x); --x) taken[x - 1] = 1;
        return x;
    }

    /// Whether a pixel next to the run that searches may join one of its pixels.
    bool joinsRun(const T* row, int x, const Run& run, const T* rowOfRun) const {
        const T* candidate = pixel(row, x);
        const auto joinsAt = [&](int column) {
            return run.left <= column && column <= run.right &&
                   rule_.accepts(candidate, pixel(rowOfRun, column));
        };
        return (corners && joinsAt(x - 1)) || joinsAt(x) || (corners && joinsAt(x + 1));
    }

    void search(const Run& run, int y, int x, int end, int dir) {
        if (y < 0 || y >= size_.height) return;
        const T* rowOfRun = image_.row(run.y);
        const T* row = image_.row(y);
        Lum8u* taken = taken_.row(y);
        for (; x < end; ++x) {
            if (taken[x] || !joinsRun(row, x, run, rowOfRun)) continue;
            taken[x] = 1;
            const int left = growLeft(row, taken, x);
            // To the right a pixel may also join the run that searches.
            while (!taken[x + 1] &&
                   (rule_.accepts(pixel(row, x + 1), pixel(row, x)) || joinsRun(row, x + 1, run, rowOfRun)))
                taken[++x] = 1;
            stack_.push({y, left, x, run.left, run.right, dir});
            // The pixel after the run has failed the test of a start.
            ++x;
        }
    }

    Rule rule_;
    Image<T> image_;
    LumSize size_;
    /// Only for writing.
    VectorRow<EqualTo<T, channels>> rows_;
    TakenMap taken_;
    RunStack& stack_;
};

} // namespace

template <Connected connected, class Rule>
FilledRegion fillSteps(const Rule& rule, Image<typename Rule::Element> image, LumSize size, LumPoint seed,
                       const Pixel<typename Rule::Element, Rule::channelCount>& newVal, Lum8u* takenMap,
                       RunStack& stack) {
    return StepFill<connected, Rule>(rule, image, size, newVal, takenMap, stack).from(seed);
}

LUM_INSTANCES(fillSteps, (Connected::four, Within<Lum8u, 1>), (Connected::eight, Within<Lum8u, 1>),
              (Connected::four, Within<Lum8u, 3>), (Connected::eight, Within<Lum8u, 3>),
              (Connected::four, Within<Lum16u, 1>), (Connected::eight, Within<Lum16u, 1>),
              (Connected::four, Within<Lum16u, 3>), (Connected::eight, Within<Lum16u, 3>),
              (Connected::four, Within<Lum32f, 1>), (Connected::eight, Within<Lum32f, 1>),
              (Connected::four, Within<Lum32f, 3>), (Connected::eight, Within<Lum32f, 3>));

} // namespace lum::kernels

#include "kernels/segment/flood_fill.h"

#include "frame/instances.h"
#include "kernels/segment/bounding_box.h"
#include "kernels/segment/region_sweeps.h"
#include "kernels/segment/row_search.h"

namespace lum::kernels {
namespace {

template <Connected connected, class Rule> class Fill {
    using T = typename Rule::Element;
    static constexpr bool corners = connected == Connected::eight;

  public:
    Fill(const Rule& rule, Image<T> image, LumSize size, const Pixel<T, Rule::channelCount>& newVal,
         RunStack& stack, CutOff cutOff)
        : rows_(rule, newVal), image_(image), size_(size), stack_(stack), cutOff_(cutOff) {}

    FilledRegion from(LumPoint seed) {
        T* row = image_.row(seed.y);
        // The seed is filled whether the rule accepts it or not.
        const int left = rows_.membersBegin(row, seed.x);
        const int end = rows_.membersEnd(row, seed.x + 1, size_.width);
        fill(row, left, end);
        BoundingBox box(seed.y, left, end - 1);
        if (size_.height > 1)
            push(runWithoutParent(seed.y, left, end - 1, seed.y == size_.height - 1 ? -1 : 1));
        while (!stack_.empty()) {
            if constexpr (Rule::channelCount == 1)
                if (found_ >= nextTry_ && finishedBySweeps(box)) break;
            const Run run = stack_.pop();
            --pending_;
            box.widen(run.y, run.left, run.right);
            searchAround(run);
        }
        return {area_, box.rect()};
    }

  private:
    /// Many short runs are found faster all at once, as bits, than one after the other. What is found is the same: runs
    /// so few in all cannot reach the cut-off. Otherwise, or where sweeps would take too long, nothing has changed.
    bool finishedBySweeps(BoundingBox& box) {
        nextTry_ = 2 * found_;
        const std::span<unsigned char> block = stack_.unused();
        if (area_ >= longRun * found_ || cutOff_.found != 0 || size_.width < searchBlock<T> ||
            block.size() < RegionSweeps::bytes(size_))
            return false;
        RegionSweeps sweeps(block.data(), size_, corners,
                            {[](const void* fill, int y, int begin, int end, PixelBits* words) {
                                 const Fill& self = *static_cast<const Fill*>(fill);
                                 self.rows_.members(self.image_.row(y), self.size_.width, begin, end, words);
                             },
                             this});
        std::int64_t known = 0;
        for (RunStack waiting = stack_; !waiting.empty();) {
            const Run run = waiting.pop();
            sweeps.add(run.y, run.left, run.right);
            known += run.right + 1 - run.left;
        }
        nextTry_ = never;
        if (!sweeps.grow()) return false;
        const GrownRegion region = sweeps.region();
        if (cutOff_.pending != 0 && found_ + region.runs - pending_ >= cutOff_.pending) return false;
        for (int y = region.top; y <= region.bottom; ++y)
            rows_.writeSet(image_.row(y), size_.width, region.left / 64, region.right / 64 + 1,
                           sweeps.row(y));
        area_ += region.area - known;
        box.widen(region.top, region.left, region.right);
        box.widen(region.bottom, region.left, region.right);
        return true;
    }

    /// The row away from the parent first, then the parent's row where the parent did not cover it.
    void searchAround(const Run& run) {
        const int from = corners && run.left > 0 ? run.left - 1 : run.left;
        const int end = corners && run.right + 1 < size_.width ? run.right + 2 : run.right + 1;
        search(run, run.y - run.dir, from, end, run.dir);
        search(run, run.y + run.dir, from, run.parentLeft, -run.dir);
        search(run, run.y + run.dir, run.parentRight + 1, end, -run.dir);
    }

    /// Every run of members that reaches into the columns x .. end - 1 of a row.
    void search(const Run& parent, int y, int x, int end, int dir) {
        if (y < 0 || y >= size_.height || x >= end) return;
        T* row = image_.row(y);
        x = rows_.firstMember(row, x, end);
        if (x == end) return;
        int left = rows_.membersBegin(row, x);
        for (;;) {
            const int runEnd = rows_.membersEnd(row, x + 1, size_.width);
            fill(row, left, runEnd);
            push({y, left, runEnd - 1, parent.left, parent.right, dir});
            // The pixel at the end of a run is no member, nor is the one before the next run.
            if (runEnd >= end - 1) return;
            x = rows_.firstMember(row, runEnd + 1, end);
            if (x == end) return;
            left = x;
        }
    }

    void fill(T* row, int left, int end) {
        rows_.write(row, left, end);
        area_ += end - left;
        ++found_;
    }

    void push(const Run& run) {
        if (cutOffReached_) return;
        stack_.push(run);
        ++pending_;
        if (pending_ == cutOff_.pending || found_ == cutOff_.found) {
            cutOffReached_ = true;
            stack_.clear();
        }
    }

    VectorRow<Rule> rows_;
    Image<T> image_;
    LumSize size_;
    RunStack& stack_;
    CutOff cutOff_;
    std::int64_t area_ = 0;
    std::int64_t found_ = 0;
    std::int64_t pending_ = 0;
    bool cutOffReached_ = false;

    /// Mean pixels of runs that need no sweeps.
    static constexpr std::int64_t longRun = 256;
    static constexpr std::int64_t never = INT64_MAX;
    /// Runs found at which sweeps are worth their preparation, at first and after they were not.
    std::int64_t nextTry_ = 64 + std::int64_t{size_.width} * size_.height / 4096;
};

} // namespace

template <Connected connected, class Rule>
FilledRegion fillRegion(const Rule& rule, Image<typename Rule::Element> image, LumSize size, LumPoint seed,
                        const Pixel<typename Rule::Element, Rule::channelCount>& newVal, RunStack& stack,
                        CutOff cutOff) {
    return Fill<connected, Rule>(rule, image, size, newVal, stack, cutOff).from(seed);
}

LUM_INSTANCES(fillRegion, (Connected::four, EqualTo<Lum8u, 1>), (Connected::eight, EqualTo<Lum8u, 1>),
              (Connected::four, EqualTo<Lum8u, 3>), (Connected::eight, EqualTo<Lum8u, 3>),
              (Connected::four, EqualTo<Lum16u, 1>), (Connected::eight, EqualTo<Lum16u, 1>),
              (Connected::four, EqualTo<Lum16u, 3>), (Connected::eight, EqualTo<Lum16u, 3>),
              (Connected::four, EqualTo<Lum32s, 1>), (Connected::eight, EqualTo<Lum32s, 1>),
              (Connected::four, EqualTo<Lum32f, 1>), (Connected::eight, EqualTo<Lum32f, 1>),
              (Connected::four, EqualTo<Lum32f, 3>), (Connected::eight, EqualTo<Lum32f, 3>),
              (Connected::four, Between<Lum8u, 1>), (Connected::eight, Between<Lum8u, 1>),
              (Connected::four, Between<Lum8u, 3>), (Connected::eight, Between<Lum8u, 3>),
              (Connected::four, Between<Lum16u, 1>), (Connected::eight, Between<Lum16u, 1>),
              (Connected::four, Between<Lum16u, 3>), (Connected::eight, Between<Lum16u, 3>),
              (Connected::four, Between<Lum32f, 1>), (Connected::eight, Between<Lum32f, 1>),
              (Connected::four, Between<Lum32f, 3>), (Connected::eight, Between<Lum32f, 3>));

} // namespace lum::kernels

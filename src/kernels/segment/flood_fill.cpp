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
            if constexpr (Rule::channelCount == 1) {
                if (found_ >= nextTry_ && sweepsAreWorthIt()) {
                    const GrownRegion rest = sweep({rows_, image_, size_, stack_, mostRunsLeft()});
                    if (rest.area >= 0) {
                        area_ += rest.area;
                        box.widen(rest.top, rest.left, rest.right);
                        box.widen(rest.bottom, rest.left, rest.right);
                        break;
                    }
                }
            }
            const Run run = stack_.pop();
            --pending_;
            box.widen(run.y, run.left, run.right);
            searchAround<corners>(run, size_.width,
                                  [&](int y, int from, int to, int dir) { search(run, y, from, to, dir); });
        }
        return {area_, box.rect()};
    }

  private:
    /// Copies, so that the fill itself, whose address nobody has, is kept in registers.
    struct Pending {
        VectorRow<Rule> rows;
        Image<T> image;
        LumSize size;
        RunStack runs;
        std::int64_t mostRuns;
    };

    /// Many short runs are found faster all at once, as bits, than one after the other.
    bool sweepsAreWorthIt() {
        const bool areShort = area_ < longRun * found_;
        nextTry_ = areShort ? never : 2 * found_;
        return areShort && cutOff_.found == 0 && size_.width >= searchBlock<T> && size_.width <= widestSwept;
    }

    /// Runs so few in all that the fill cannot be cut off: more may still be found, beside those that wait.
    std::int64_t mostRunsLeft() const {
        return cutOff_.pending == 0 ? never : cutOff_.pending - found_ + pending_ - 1;
    }

    /// Fills what the pending runs reach; the area is that beside theirs. It is -1, and nothing has changed, where there are
    /// too many runs or sweeps would take too long.
    [[gnu::noinline]] static GrownRegion sweep(Pending pending) {
        constexpr GrownRegion nothing{-1, 0, 0, 0, 0, 0};
        const std::span<unsigned char> block = pending.runs.unused();
        if (block.size() < RegionSweeps::bytes(pending.size)) return nothing;
        RegionSweeps sweeps(block.data(), pending.size, corners,
                            {[](const void* fill, int y, int begin, int end, PixelBits* words) {
                                 const auto& p = *static_cast<const Pending*>(fill);
                                 p.rows.members(p.image.row(y), p.size.width, begin, end, words);
                             },
                             &pending});
        std::int64_t known = 0;
        while (!pending.runs.empty()) {
            const Run run = pending.runs.pop();
            sweeps.add(run.y, run.left, run.right);
            known += run.right + 1 - run.left;
        }
        if (!sweeps.grow()) return nothing;
        GrownRegion region = sweeps.region();
        if (region.runs > pending.mostRuns) return nothing;
        for (int y = region.top; y <= region.bottom; ++y)
            pending.rows.writeSet(pending.image.row(y), pending.size.width, region.left / 64,
                                  region.right / 64 + 1, sweeps.row(y));
        region.area -= known;
        return region;
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
    /// Rows end in whole vectors of words, whose columns are numbers of 32 bits too.
    static constexpr int widestSwept = INT32_MAX - 1024;
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

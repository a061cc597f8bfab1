#include "kernels/segment/speckles.h"

#include <algorithm>
#include <bit>

#include "frame/arena.h"
#include "kernels/segment/joined_runs.h"
#include "kernels/segment/similar_runs.h"
#include "kernels/segment/write_run.h"

namespace lum::kernels {
namespace {

/// The runs of an image in raster order; of each pixel it is known in which run it is. A row begins where a run's
/// first column is 0.
template <class T> class SpeckleRuns {
  public:
    SpeckleRuns(unsigned char* block, Image<T> image, LumSize size) : image_(image), size_(size) {
        Arena arena(block);
        place(arena, size);
    }

    static std::size_t bytes(LumSize size) {
        SpeckleRuns runs(nullptr, {nullptr, 0}, size);
        Arena arena(nullptr);
        runs.place(arena, size);
        return arena.used();
    }

    void find(const SimilarPixels<T>& rule) {
        for (int y = 0; y < size_.height; ++y) {
            const RunNumber first = count_;
            SimilarRuns<T> row(rule, image_.row(y), y > 0 ? image_.row(y - 1) : nullptr);
            nextAbove_ = firstAbove_;
            add(row.scalarBits(0, 1), 0);
            int x = 1;
            // whole blocks
            for (; x <= size_.width - 32; x += 32) add(row.vectorBits(x, 32), x);
            // tail: the last block, without the pixels that are known
            if (const int left = size_.width - x; left > 0)
                add(size_.width > 32 ? row.vectorBits(size_.width - 32, left) : row.scalarBits(x, left), x);
            firstAbove_ = first;
        }
    }

    void writeOver(T value, std::int64_t maxSize) {
        sumSizes();
        int y = 0;
        for (RunNumber run = 0; run < count_; ++run) {
            const int left = lefts_[run];
            const int length = lengthOf(run);
            if (sizes_[parents_[run]] <= maxSize) writeRun(image_.row(y) + left, length, value);
            if (left + length == size_.width) ++y;
        }
    }

  private:
    /// Above every size, as a run's that belongs to no region.
    static constexpr std::uint32_t unlimited = 0x80000000U;

    void place(Arena& arena, LumSize size) {
        const std::size_t pixels =
            static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height);
        parents_ = arena.allocate<RunNumber>(pixels);
        lefts_ = arena.allocate<std::int32_t>(pixels);
        sizes_ = arena.allocate<std::uint32_t>(pixels);
    }

    /// The runs that begin in up to 32 pixels from x on, and their contacts with the row above.
    void add(const RunBits& bits, int x) {
        const RunNumber next = count_;
        for (std::uint32_t rest = bits.starts; rest != 0; rest &= rest - 1) {
            const int i = std::countr_zero(rest);
            parents_[count_] = count_;
            lefts_[count_] = x + i;
            sizes_[count_] = (bits.belonging >> i & 1U) != 0 ? 0 : unlimited;
            ++count_;
        }
        for (std::uint32_t rest = bits.contacts; rest != 0; rest &= rest - 1) {
            const std::uint32_t upTo = rest ^ (rest - 1);
            join(parents_, nextAbove_ + ones(bits.startsAbove & upTo) - 1,
                 next + ones(bits.starts & upTo) - 1);
        }
        nextAbove_ += ones(bits.startsAbove);
    }

    static RunNumber ones(std::uint32_t bits) { return static_cast<RunNumber>(std::popcount(bits)); }

    int lengthOf(RunNumber run) const {
        const int next = run + 1 < count_ ? lefts_[run + 1] : 0;
        return (next != 0 ? next : size_.width) - lefts_[run];
    }

    /// Parents become roots, whose sizes become those of their regions.
    void sumSizes() {
        for (RunNumber run = 0; run < count_; ++run) {
            const RunNumber root = parents_[run] = parents_[parents_[run]];
            const std::uint64_t sum = std::uint64_t{sizes_[root]} + static_cast<std::uint32_t>(lengthOf(run));
            sizes_[root] = static_cast<std::uint32_t>(std::min<std::uint64_t>(sum, unlimited));
        }
    }

    Image<T> image_;
    LumSize size_;
    RunNumber* parents_;
    std::int32_t* lefts_;
    std::uint32_t* sizes_;
    RunNumber count_ = 0;
    RunNumber firstAbove_ = 0;
    RunNumber nextAbove_ = 0;
};

} // namespace

std::size_t speckleBytes(LumSize size) { return SpeckleRuns<Lum8u>::bytes(size); }

template <class T>
void writeOverSpeckles(Image<T> image, LumSize size, const SpeckleRule<T>& rule, unsigned char* block) {
    SpeckleRuns<T> runs(block, image, size);
    runs.find({rule.speckleValue, rule.maxDifference});
    runs.writeOver(rule.speckleValue, rule.maxSize);
}

template decltype(writeOverSpeckles<Lum8u>) writeOverSpeckles<Lum8u>;
template decltype(writeOverSpeckles<Lum16u>) writeOverSpeckles<Lum16u>;
template decltype(writeOverSpeckles<Lum16s>) writeOverSpeckles<Lum16s>;
template decltype(writeOverSpeckles<Lum32f>) writeOverSpeckles<Lum32f>;

} // namespace lum::kernels

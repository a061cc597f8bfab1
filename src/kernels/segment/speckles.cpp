#include "kernels/segment/speckles.h"

#include <algorithm>
#include <bit>

#include "frame/arena.h"
#include "frame/instances.h"
#include "kernels/segment/joined_runs.h"
#include "kernels/segment/similar_runs.h"
#include "kernels/segment/write_run.h"

namespace lum::kernels {
namespace {

/// The runs of an image in raster order; of each pixel it is known in which run it is. A row begins where a run's
/// first column is 0.
template <class T> class SpeckleRuns {
  public:
    SpeckleRuns(Arena& arena, Image<T> image, LumSize size)
        : image_(image),
          size_(size),
          runs_(arena.allocate<RunNumber>(pixelCount(size)), pixelCount(size)),
          lefts_(arena.allocate<std::int32_t>(pixelCount(size))),
          sizes_(arena.allocate<std::uint32_t>(pixelCount(size))) {}

    void find(const SimilarPixels<T>& rule) {
        for (int y = 0; y < size_.height; ++y) {
            SimilarRuns<T> row(rule, image_.row(y), y > 0 ? image_.row(y - 1) : nullptr);
            runs_.beginRow();
            add(row.scalarBits(0, 1), 0);
            int x = 1;
            // whole blocks
            for (; x <= size_.width - 32; x += 32) add(row.vectorBits(x, 32), x);
            // tail: masked last vector, without the pixels that are known
            if (const int left = size_.width - x; left > 0)
                add(size_.width > 32 ? row.vectorBits(size_.width - 32, left) : row.scalarBits(x, left), x);
        }
    }

    void writeOver(T value, std::int64_t maxSize) {
        sumSizes();
        int y = 0;
        for (RunNumber run = 0; run < runs_.count(); ++run) {
            const int left = lefts_[run];
            const int length = lengthOf(run);
            if (sizes_[runs_.parents()[run]] <= maxSize) writeRun(image_.row(y) + left, length, value);
            if (left + length == size_.width) ++y;
        }
    }

  private:
    /// Above every size, as a run's that belongs to no region.
    static constexpr std::uint32_t unlimited = 0x80000000U;

    static std::size_t pixelCount(LumSize size) {
        return static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height);
    }

    /// The runs that begin in up to 32 pixels from x on, and their contacts with the row above.
    void add(const SimilarRunBits& bits, int x) {
        RunNumber run = runs_.count();
        for (std::uint32_t rest = bits.starts; rest != 0; rest &= rest - 1, ++run) {
            const int i = std::countr_zero(rest);
            lefts_[run] = x + i;
            sizes_[run] = (bits.belonging >> i & 1U) != 0 ? 0 : unlimited;
        }
        runs_.add(bits);
    }

    int lengthOf(RunNumber run) const {
        const int next = run + 1 < runs_.count() ? lefts_[run + 1] : 0;
        return (next != 0 ? next : size_.width) - lefts_[run];
    }

    /// Parents become roots, whose sizes become those of their regions.
    void sumSizes() {
        RunNumber* parents = runs_.parents();
        for (RunNumber run = 0; run < runs_.count(); ++run) {
            const RunNumber root = parents[run] = parents[parents[run]];
            const std::uint64_t sum = std::uint64_t{sizes_[root]} + static_cast<std::uint32_t>(lengthOf(run));
            sizes_[root] = static_cast<std::uint32_t>(std::min<std::uint64_t>(sum, unlimited));
        }
    }

    Image<T> image_;
    LumSize size_;
    JoinedRuns runs_;
    std::int32_t* lefts_;
    std::uint32_t* sizes_;
};

} // namespace

std::size_t speckleBytes(LumSize size) {
    Arena arena(nullptr);
    SpeckleRuns<Lum8u>(arena, {nullptr, 0}, size);
    return arena.used();
}

template <class T>
void writeOverSpeckles(Image<T> image, LumSize size, const SpeckleRule<T>& rule, unsigned char* block) {
    Arena arena(block);
    SpeckleRuns<T> runs(arena, image, size);
    runs.find({rule.speckleValue, rule.maxDifference});
    runs.writeOver(rule.speckleValue, rule.maxSize);
}

LUM_INSTANCES(writeOverSpeckles, (Lum8u), (Lum16u), (Lum16s), (Lum32f));

} // namespace lum::kernels

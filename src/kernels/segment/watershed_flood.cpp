#include "kernels/segment/watershed_flood.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <limits>

#include "frame/arena.h"
#include "frame/instances.h"
#include "kernels/segment/level_queues.h"
#include "kernels/segment/row_runs.h"
#include "kernels/segment/write_run.h"

namespace lum::kernels {
namespace {

constexpr int greyLevels = 256;

/// From this many pixels on the buffer has room for long chunks.
constexpr std::size_t manyPixels = 32768;
constexpr int longChunk = 32;
constexpr int shortChunk = 2;

/// Bits of the three by three pixels around one, four bits a row of which the highest is another pixel's.
constexpr std::uint32_t aroundEight = 0x757;
constexpr std::uint32_t aroundFour = 0x252;

/// Those bits in the order in which the flood reaches the pixels: left, right, up, down, and the corners from the top
/// left.
constexpr auto floodOrder = [] {
    std::array<Lum8u, 0x758> order{};
    constexpr int places[8] = {4, 6, 1, 9, 0, 2, 8, 10};
    for (std::size_t around = 0; around < order.size(); ++around)
        for (int i = 0; i < 8; ++i)
            if ((around >> places[i] & 1U) != 0) order[around] |= static_cast<Lum8u>(1 << i);
    return order;
}();

std::size_t pixelCount(LumSize size) {
    return static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height);
}

/// Marks and levels in a frame of one pixel, both by the number of the pixel in the frame.
template <class Marker, int chunkWords> struct FloodMaps {
    using Queues = LevelQueues<greyLevels, chunkWords>;

    std::size_t step;
    Marker* marks;
    /// Without the frame: that of the first pixel of the image is the first.
    Lum8u* levels;
    unsigned char* pool;

    FloodMaps(Arena& arena, LumSize size) : step(static_cast<std::size_t>(size.width) + 2) {
        const auto height = static_cast<std::size_t>(size.height);
        marks = arena.align(alignof(Marker)).template allocate<Marker>(step * (height + 2));
        levels = arena.allocate<Lum8u>(step * height - 2);
        pool = arena.allocate<unsigned char>(Queues::poolBytes(pixelCount(size)));
    }

    std::size_t firstPixel() const { return step + 1; }
};

template <class Marker, int chunkWords, Connected connected> class Flood {
    using Maps = FloodMaps<Marker, chunkWords>;
    static constexpr Marker boundary = std::numeric_limits<Marker>::max();
    static constexpr std::uint32_t neighbours = connected == Connected::eight ? aroundEight : aroundFour;

  public:
    Flood(Arena& arena, LumSize size, FloodBoundaries boundaries)
        : maps_(arena, size), queues_(maps_.pool), size_(size) {
        const std::ptrdiff_t step = rowStep();
        reached_ = {-1, 1, -step, step, -step - 1, -step + 1, step - 1, step + 1};
        seedsCompared_ = comparedBits(boundaries.atSeeds);
        floodCompared_ = comparedBits(boundaries.atFlood);
    }

    void run(Image<const Lum8u> relief, Image<Marker> markers) {
        copyIn(relief, markers);
        for (int y = 0; y < size_.height; ++y) scanRow(y);
        for (int level = 0; level < greyLevels; ++level)
            while (!queues_.empty(level)) {
                lookAhead(queues_.after(level, pixelsAhead));
                spread(queues_.pop(level), level);
            }
        for (int y = 0; y < size_.height; ++y)
            std::memcpy(markers.row(y), rowOfMarks(y),
                        static_cast<std::size_t>(size_.width) * sizeof(Marker));
    }

  private:
    Marker* rowOfMarks(std::ptrdiff_t y) const {
        return maps_.marks + maps_.firstPixel() + static_cast<std::size_t>(y) * maps_.step;
    }
    int levelOf(std::size_t pixel) const { return maps_.levels[pixel - maps_.firstPixel()]; }

    void copyIn(Image<const Lum8u> relief, Image<Marker> markers) {
        const auto width = static_cast<std::size_t>(size_.width);
        writeRun(maps_.marks, static_cast<std::ptrdiff_t>(maps_.step), boundary);
        for (int y = 0; y < size_.height; ++y) {
            Marker* row = rowOfMarks(y);
            row[-1] = boundary;
            std::memcpy(row, markers.row(y), width * sizeof(Marker));
            row[width] = boundary;
            std::memcpy(maps_.levels + static_cast<std::size_t>(y) * maps_.step, relief.row(y), width);
        }
        writeRun(rowOfMarks(size_.height) - 1, static_cast<std::ptrdiff_t>(maps_.step), boundary);
    }

    /// Queues the markers of a row from which the flood can spread, and draws boundaries where markers touch.
    void scanRow(int y) {
        Marker* row = rowOfMarks(y);
        vectorRuns(row, size_.width, [&](int left, int end) {
            for (int x = left; x < end; ++x) {
                if (row[x] == boundary) continue;
                const auto pixel = static_cast<std::size_t>(row + x - maps_.marks);
                const auto marks = around(row + x);
                if ((signBits(marks == zeros<Marker, 16>()) & neighbours) != 0)
                    queues_.push(levelOf(pixel), static_cast<std::uint32_t>(pixel));
                if ((othersBits(marks, row[x]) & seedsCompared_) != 0) row[x] = boundary;
            }
        });
    }

    void spread(std::size_t pixel, int level) {
        Marker* from = maps_.marks + pixel;
        const Marker label = *from;
        const std::uint32_t unlabelled = signBits(around(from) == zeros<Marker, 16>()) & neighbours;
        for (std::uint32_t rest = floodOrder[unlabelled]; rest != 0; rest &= rest - 1) {
            Marker* mark = from + reached_[std::countr_zero(rest)];
            *mark = floodCompared_ == 0 ? label : labelBetween(label, mark);
            const auto reached = static_cast<std::size_t>(mark - maps_.marks);
            queues_.push(std::max(levelOf(reached), level), static_cast<std::uint32_t>(reached));
        }
    }

    /// The only label that meets at a pixel; a boundary where several do, or none.
    Marker labelBetween(Marker from, const Marker* mark) const {
        const auto marks = around(mark);
        const Marker label =
            from != boundary ? from : anyLabelOf(mark, othersBits(marks, boundary) & floodCompared_);
        return (othersBits(marks, label) & floodCompared_) != 0 ? boundary : label;
    }

    /// A label around a pixel, of those whose bits are set; a boundary where there is none.
    Marker anyLabelOf(const Marker* mark, std::uint32_t labels) const {
        if (labels == 0) return boundary;
        const int place = std::countr_zero(labels);
        return mark[(place / 4 - 1) * rowStep() + place % 4 - 1];
    }

    /// Labels other than the given one, which is one itself or a boundary.
    static std::uint32_t othersBits(Block<Marker, 16> marks, Marker label) {
        const auto ignored = (marks == zeros<Marker, 16>()) | (marks == broadcast<16>(boundary));
        return signBits(~(ignored | (marks == broadcast<16>(label))));
    }

    /// The pixels around one, four a row and a fourth row that counts for nothing.
    Block<Marker, 16> around(const Marker* mark) const {
        const Marker* first = mark - 1;
        const auto below = load<4>(first + rowStep());
        return join(join(load<4>(first - rowStep()), load<4>(first)), join(below, below));
    }

    /// Has the surroundings of a pixel that is popped a little later brought nearer.
    void lookAhead(std::size_t pixel) const {
        const Marker* mark = maps_.marks + pixel;
        __builtin_prefetch(mark - rowStep());
        __builtin_prefetch(mark);
        __builtin_prefetch(mark + rowStep());
        const Lum8u* level = maps_.levels + (pixel - maps_.firstPixel());
        __builtin_prefetch(level - rowStep());
        __builtin_prefetch(level);
        __builtin_prefetch(level + rowStep());
    }

    std::ptrdiff_t rowStep() const { return static_cast<std::ptrdiff_t>(maps_.step); }

    static std::uint32_t comparedBits(FloodBoundaries::Rule rule) {
        return rule == FloodBoundaries::eight ? aroundEight : rule == FloodBoundaries::four ? aroundFour : 0;
    }

    static constexpr int pixelsAhead = 4;

    Maps maps_;
    typename Maps::Queues queues_;
    LumSize size_;
    std::array<std::ptrdiff_t, 8> reached_;
    /// Neighbours that have a say in boundaries.
    std::uint32_t seedsCompared_;
    std::uint32_t floodCompared_;
};

template <class Marker, int chunkWords>
void flood(Image<const Lum8u> relief, Image<Marker> markers, LumSize size, Connected connected,
           FloodBoundaries boundaries, unsigned char* block) {
    Arena arena(block);
    if (connected == Connected::eight)
        Flood<Marker, chunkWords, Connected::eight>(arena, size, boundaries).run(relief, markers);
    else
        Flood<Marker, chunkWords, Connected::four>(arena, size, boundaries).run(relief, markers);
}

} // namespace

template <class Marker> std::size_t floodBytes(LumSize size) {
    Arena arena(nullptr);
    if (pixelCount(size) >= manyPixels)
        FloodMaps<Marker, longChunk>(arena, size);
    else
        FloodMaps<Marker, shortChunk>(arena, size);
    return arena.used() + alignof(Marker) - 1;
}

template <class Marker>
void floodWatershed(Image<const Lum8u> relief, Image<Marker> markers, LumSize size, Connected connected,
                    FloodBoundaries boundaries, unsigned char* block) {
    if (pixelCount(size) >= manyPixels)
        flood<Marker, longChunk>(relief, markers, size, connected, boundaries, block);
    else
        flood<Marker, shortChunk>(relief, markers, size, connected, boundaries, block);
}

template std::size_t floodBytes<Lum8u>(LumSize);
template std::size_t floodBytes<Lum16u>(LumSize);
LUM_INSTANCES(floodWatershed, (Lum8u), (Lum16u));

} // namespace lum::kernels

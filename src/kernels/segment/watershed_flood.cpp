#include "kernels/segment/watershed_flood.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

#include "frame/arena.h"
#include "kernels/segment/level_queues.h"
#include "kernels/segment/row_runs.h"
#include "kernels/segment/write_run.h"

namespace lum::kernels {
namespace {

constexpr int greyLevels = 256;

/// From this many pixels on the pool of long chunks is smaller than that of short ones.
constexpr std::size_t manyPixels = 16384;

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
    static constexpr int neighbours = connected == Connected::eight ? 8 : 4;

  public:
    Flood(Arena& arena, LumSize size, FloodBoundaries boundaries)
        : maps_(arena, size), queues_(maps_.pool), size_(size), boundaries_(boundaries) {
        const auto step = static_cast<std::ptrdiff_t>(maps_.step);
        searched_ = {-1, 1, -step, step, -step - 1, -step + 1, step - 1, step + 1};
        compared_ = {-step, -1, 1, step, -step - 1, -step + 1, step - 1, step + 1};
    }

    void run(Image<const Lum8u> relief, Image<Marker> markers) {
        copyIn(relief, markers);
        for (int y = 0; y < size_.height; ++y) scanRow(y);
        for (int level = 0; level < greyLevels; ++level)
            while (!queues_.empty(level)) spread(queues_.pop(level), level);
        for (int y = 0; y < size_.height; ++y)
            std::memcpy(markers.row(y), rowOfMarks(y),
                        static_cast<std::size_t>(size_.width) * sizeof(Marker));
    }

  private:
    Marker* rowOfMarks(std::ptrdiff_t y) const {
        return maps_.marks + maps_.firstPixel() + static_cast<std::size_t>(y) * maps_.step;
    }
    int levelOf(std::size_t pixel) const { return maps_.levels[pixel - maps_.firstPixel()]; }
    static bool isLabel(Marker mark) { return mark != 0 && mark != boundary; }

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
                for (int i = 0; i < neighbours; ++i)
                    if (row[x + searched_[i]] == 0) {
                        queues_.push(levelOf(pixel), static_cast<std::uint32_t>(pixel));
                        break;
                    }
                if (boundaries_.atSeeds != FloodBoundaries::none && touchesAnotherLabel(row + x))
                    row[x] = boundary;
            }
        });
    }

    bool touchesAnotherLabel(const Marker* mark) const {
        const int count = boundaries_.atSeeds == FloodBoundaries::eight ? 8 : 4;
        for (int i = 0; i < count; ++i)
            if (isLabel(mark[compared_[i]]) && mark[compared_[i]] != *mark) return true;
        return false;
    }

    void spread(std::size_t pixel, int level) {
        Marker* from = maps_.marks + pixel;
        const Marker label = *from;
        for (int i = 0; i < neighbours; ++i) {
            Marker* mark = from + searched_[i];
            if (*mark != 0) continue;
            *mark = boundaries_.atFlood == FloodBoundaries::none ? label : labelBetween(label, mark);
            const auto reached = static_cast<std::size_t>(mark - maps_.marks);
            queues_.push(std::max(levelOf(reached), level), static_cast<std::uint32_t>(reached));
        }
    }

    /// The only label that meets at a pixel; a boundary where several do, or none.
    Marker labelBetween(Marker from, const Marker* mark) const {
        const int count = boundaries_.atFlood == FloodBoundaries::eight ? 8 : 4;
        Marker label = isLabel(from) ? from : Marker{0};
        for (int i = 0; i < count; ++i) {
            const Marker other = mark[compared_[i]];
            if (!isLabel(other) || other == label) continue;
            if (label != 0) return boundary;
            label = other;
        }
        return label != 0 ? label : boundary;
    }

    Maps maps_;
    typename Maps::Queues queues_;
    LumSize size_;
    FloodBoundaries boundaries_;
    /// Neighbours in the order in which the flood reaches them, and in which labels are compared.
    std::array<std::ptrdiff_t, 8> searched_;
    std::array<std::ptrdiff_t, 8> compared_;
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
        FloodMaps<Marker, 16>(arena, size);
    else
        FloodMaps<Marker, 2>(arena, size);
    return arena.used() + alignof(Marker) - 1;
}

template <class Marker>
void floodWatershed(Image<const Lum8u> relief, Image<Marker> markers, LumSize size, Connected connected,
                    FloodBoundaries boundaries, unsigned char* block) {
    if (pixelCount(size) >= manyPixels)
        flood<Marker, 16>(relief, markers, size, connected, boundaries, block);
    else
        flood<Marker, 2>(relief, markers, size, connected, boundaries, block);
}

template std::size_t floodBytes<Lum8u>(LumSize);
template std::size_t floodBytes<Lum16u>(LumSize);
template decltype(floodWatershed<Lum8u>) floodWatershed<Lum8u>;
template decltype(floodWatershed<Lum16u>) floodWatershed<Lum16u>;

} // namespace lum::kernels

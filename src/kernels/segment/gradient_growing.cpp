#include "kernels/segment/gradient_growing.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>

#include "frame/arena.h"
#include "frame/instances.h"
#include "kernels/segment/level_queues.h"

namespace lum::kernels {
namespace {

/// Pixels wait in queues by their difference.
constexpr int differences = 256;

/// From this many pixels on the pool of long chunks is smaller than that of short ones.
constexpr std::size_t manyPixels = 16384;

constexpr Lum8u unlabelled = 0;
constexpr Lum8u boundary = 254;
/// Of pixels in a queue and of the frame.
constexpr Lum8u queued = 255;

/// A pixel with its label, so that one look at memory gives both.
template <int channels> struct LabelledPixel;

template <> struct LabelledPixel<1> {
    Lum8u value;
    Lum8u label;

    int differenceTo(const LabelledPixel& other) const { return std::abs(value - other.value); }
    static LabelledPixel of(const Lum8u* pixel, Lum8u label) { return {*pixel, label}; }
};

template <> struct LabelledPixel<3> {
    std::array<Lum8u, 3> values;
    Lum8u label;

    int differenceTo(const LabelledPixel& other) const {
        return std::max({std::abs(values[0] - other.values[0]), std::abs(values[1] - other.values[1]),
                         std::abs(values[2] - other.values[2])});
    }
    static LabelledPixel of(const Lum8u* pixel, Lum8u label) {
        return {{pixel[0], pixel[1], pixel[2]}, label};
    }
};

std::size_t pixelCount(LumSize size) {
    return static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height);
}

template <int channels, int chunkWords> struct GrowthMaps {
    using Queues = LevelQueues<differences, chunkWords>;

    LabelledPixel<channels>* pixels;
    unsigned char* pool;

    GrowthMaps(Arena& arena, LumSize size)
        : pixels(arena.allocate<LabelledPixel<channels>>(pixelCount(size))),
          pool(arena.allocate<unsigned char>(Queues::poolBytes(pixelCount(size)))) {}
};

template <int channels, int chunkWords, Connected connected> class Growth {
    using Pixel = LabelledPixel<channels>;
    static constexpr int neighbours = connected == Connected::eight ? 8 : 4;

  public:
    Growth(Arena& arena, LumSize size, GrowthBoundaries boundaries)
        : maps_(arena, size),
          queues_(maps_.pool),
          size_(size),
          compared_(boundaries == GrowthBoundaries::eight  ? 8
                    : boundaries == GrowthBoundaries::four ? 4
                                                           : 0) {
        const std::ptrdiff_t step = size.width;
        offsets_ = {-1, 1, -step, step, -step - 1, -step + 1, step - 1, step + 1};
    }

    void run(Image<const Lum8u> src, Image<Lum8u> markers) {
        copyIn(src, markers);
        int level = queueSeeds();
        if (level == differences) return;
        while (level < differences) {
            if (queues_.empty(level))
                ++level;
            else
                level = std::min(level, settle(queues_.pop(level)));
        }
        for (int y = 0; y < size_.height; ++y) {
            Lum8u* labels = markers.row(y);
            const Pixel* row = rowOf(y);
            for (int x = 0; x < size_.width; ++x) labels[x] = row[x].label;
        }
    }

  private:
    static bool isLabel(Lum8u label) { return label != unlabelled && label != queued; }

    Pixel* rowOf(int y) const {
        return maps_.pixels + static_cast<std::size_t>(y) * static_cast<std::size_t>(size_.width);
    }

    void copyIn(Image<const Lum8u> src, Image<const Lum8u> markers) {
        for (int y = 0; y < size_.height; ++y) {
            const bool isFrame = y == 0 || y == size_.height - 1;
            const Lum8u* values = src.row(y);
            const Lum8u* labels = markers.row(y);
            Pixel* row = rowOf(y);
            for (int x = 0; x < size_.width; ++x)
                row[x] = Pixel::of(values + std::ptrdiff_t{x} * channels, isFrame ? queued : labels[x]);
            row[0].label = row[size_.width - 1].label = queued;
        }
    }

    /// Queues the unlabelled pixels beside a label; gives the lowest level with one.
    int queueSeeds() {
        int lowest = differences;
        for (int y = 1; y < size_.height - 1; ++y) {
            Pixel* row = rowOf(y);
            for (int x = 1; x < size_.width - 1; ++x) {
                if (row[x].label != unlabelled) continue;
                int smallest = differences;
                for (int i = 0; i < neighbours; ++i) {
                    const Pixel& other = row[x + offsets_[i]];
                    if (isLabel(other.label)) smallest = std::min(smallest, row[x].differenceTo(other));
                }
                if (smallest == differences) continue;
                enqueue(row + x, smallest);
                lowest = std::min(lowest, smallest);
            }
        }
        return lowest;
    }

    void enqueue(Pixel* pixel, int level) {
        pixel->label = queued;
        queues_.push(level, static_cast<std::uint32_t>(pixel - maps_.pixels));
    }

    /// Labels a pixel and queues its unlabelled neighbours; gives the lowest level of theirs.
    int settle(std::size_t number) {
        Pixel* pixel = maps_.pixels + number;
        pixel->label = labelFor(pixel);
        int lowest = differences;
        for (int i = 0; i < neighbours; ++i) {
            Pixel* other = pixel + offsets_[i];
            if (other->label != unlabelled) continue;
            const int difference = pixel->differenceTo(*other);
            enqueue(other, difference);
            lowest = std::min(lowest, difference);
        }
        return lowest;
    }

    Lum8u labelFor(const Pixel* pixel) const {
        int smallest = differences;
        Lum8u label = unlabelled;
        for (int i = 0; i < neighbours; ++i) {
            const Pixel& other = pixel[offsets_[i]];
            if (!isLabel(other.label)) continue;
            const int difference = pixel->differenceTo(other);
            if (difference < smallest || (difference == smallest && other.label != boundary)) {
                smallest = difference;
                label = other.label;
            }
        }
        for (int i = 0; i < compared_; ++i) {
            const Lum8u other = pixel[offsets_[i]].label;
            if (isLabel(other) && other != boundary && other != label) return boundary;
        }
        return label;
    }

    GrowthMaps<channels, chunkWords> maps_;
    typename GrowthMaps<channels, chunkWords>::Queues queues_;
    LumSize size_;
    /// Neighbours that make a pixel a boundary.
    int compared_;
    std::array<std::ptrdiff_t, 8> offsets_;
};

template <int channels, int chunkWords>
void grow(Image<const Lum8u> src, Image<Lum8u> markers, LumSize size, Connected connected,
          GrowthBoundaries boundaries, unsigned char* block) {
    Arena arena(block);
    if (connected == Connected::eight)
        Growth<channels, chunkWords, Connected::eight>(arena, size, boundaries).run(src, markers);
    else
        Growth<channels, chunkWords, Connected::four>(arena, size, boundaries).run(src, markers);
}

} // namespace

std::size_t growthBytes(LumSize size) {
    Arena arena(nullptr);
    if (pixelCount(size) >= manyPixels)
        GrowthMaps<3, 16>(arena, size);
    else
        GrowthMaps<3, 2>(arena, size);
    return arena.used();
}

template <int channels>
void growRegions(Image<const Lum8u> src, Image<Lum8u> markers, LumSize size, Connected connected,
                 GrowthBoundaries boundaries, unsigned char* block) {
    // An image of fewer rows or columns is all frame.
    if (size.width < 3 || size.height < 3) return;
    if (pixelCount(size) >= manyPixels)
        grow<channels, 16>(src, markers, size, connected, boundaries, block);
    else
        grow<channels, 2>(src, markers, size, connected, boundaries, block);
}

LUM_INSTANCES(growRegions, (1), (3));

} // namespace lum::kernels

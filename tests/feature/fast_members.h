// Calls of the corner search on guarded images, and the same results from the definition.
#pragma once

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include "kernels/feature/fast_circle.h"
#include "lumcv.h"
#include "support/guarded_image.h"
#include "support/status_checks.h"

namespace support {

struct FastParameters {
    LumSize size{40, 30};
    int radius = 3;
    int arcLength = 9;
    int bins = 32;
    int flags = lumFastNCorners | lumFastNScore;
    float threshold = 20;
    LumDataType dataType = lumType8u;
    int channels = 1;
};

inline constexpr int fastRadii[] = {1, 2, 3, 5, 7, 9};

inline LumStatus fastSize(const FastParameters& p, Lum32s* bytes) {
    return lumiFastNGetSize(p.size, p.radius, p.arcLength, p.bins, p.flags, p.dataType, p.channels, bytes);
}
inline LumStatus fastInit(const FastParameters& p, LumFastNSpec* spec) {
    return lumiFastNInit(p.size, p.radius, p.arcLength, p.bins, p.flags, p.threshold, p.dataType, p.channels,
                         spec);
}
inline Lum32s fastSpecSize(const FastParameters& p) {
    Lum32s bytes = 0;
    EXPECT_STATUS(lumStatusOk, fastSize(p, &bytes));
    return bytes;
}

/// An object in a block of exactly the queried size, some bytes off the page's end.
class FastSpec {
  public:
    explicit FastSpec(const FastParameters& p, std::size_t spare = 0)
        : block_(fastSpecSize(p), Guard::after, spare) {
        EXPECT_STATUS(lumStatusOk, fastInit(p, get()));
    }
    LumFastNSpec* get() { return block_.as<LumFastNSpec>(); }
    Lum8u* record() { return block_.as() + block_.as()[0]; }
    /// Word `index` of the record.
    template <class T = Lum32s> T field(int index) {
        T value;
        std::memcpy(&value, record() + 4 * index, sizeof value);
        return value;
    }
    void setField(int index, Lum32s value) { std::memcpy(record() + 4 * index, &value, sizeof value); }

  private:
    GuardedBlock block_;
};

inline constexpr int untouchedCount = -77;

/// What a search writes; images have the tile's size, all bytes 99 before.
struct FastResult {
    LumStatus status = 0;
    Lum32s count = untouchedCount;
    std::shared_ptr<GuardedImage<Lum8u>> corners;
    std::shared_ptr<GuardedImage<Lum8u>> scores;
};

inline FastResult searchCorners(const GuardedImage<Lum8u>& image, FastSpec& spec, LumPoint offset,
                                LumSize tile, Placement placement = {}, std::size_t bufferSpare = 0) {
    FastResult result;
    result.corners = std::make_shared<GuardedImage<Lum8u>>(tile.width, tile.height, placement);
    result.scores = std::make_shared<GuardedImage<Lum8u>>(tile.width, tile.height, placement);
    for (auto& plane : {result.corners, result.scores}) plane->fill([](int, int, int) { return 99; });
    Lum32s bytes = 0;
    EXPECT_STATUS(lumStatusOk, lumiFastNGetBufferSize(spec.get(), tile, &bytes));
    GuardedBlock buffer(bytes, Guard::after, bufferSpare);
    result.status = lumiFastN_8u_C1R(image.data(), image.step(), result.corners->data(),
                                     result.corners->step(), result.scores->data(), result.scores->step(),
                                     &result.count, offset, tile, spec.get(), buffer.as());
    EXPECT_TRUE(result.corners->outsideUntouched());
    EXPECT_TRUE(result.scores->outsideUntouched());
    return result;
}

/// Searches the whole image.
inline FastResult searchCorners(const GuardedImage<Lum8u>& image, const FastParameters& p) {
    FastSpec spec(p);
    return searchCorners(image, spec, {0, 0}, p.size);
}

/// From the definition: every arc of every pixel.
class FastDefinition {
  public:
    FastDefinition(const GuardedImage<Lum8u>& image, const FastParameters& p)
        : image_(image),
          p_(p),
          points_(lum::kernels::circleOf(p.radius)),
          perimeter_(lum::kernels::perimeterOf(p.radius)) {}

    int score(int x, int y) const {
        if (!isInside(x, y)) return 0;
        const int best = std::max(reach(x, y, 1), reach(x, y, -1));
        return best > static_cast<int>(p_.threshold) ? best : 0;
    }
    int mark(int x, int y) const {
        if (score(x, y) == 0) return 0;
        const int type = reach(x, y, 1) > static_cast<int>(p_.threshold) ? 64 : 128;
        return type | ((p_.flags & lumFastNOrientation) != 0 ? bin(x, y) : 0);
    }

  private:
    bool isInside(int x, int y) const {
        return x >= p_.radius && y >= p_.radius && x < p_.size.width - p_.radius &&
               y < p_.size.height - p_.radius;
    }
    /// The largest, over all arcs, of the smallest difference in a direction (1 brighter, -1 darker).
    int reach(int x, int y, int direction) const {
        int best = -255;
        for (int start = 0; start < perimeter_; ++start) {
            int smallest = 255;
            for (int i = 0; i < p_.arcLength; ++i)
                smallest = std::min(smallest, direction * difference(x, y, (start + i) % perimeter_));
            best = std::max(best, smallest);
        }
        return best;
    }
    int tone(int x, int y, int k) const { return image_.at(x + points_[k].x, y + points_[k].y); }
    int difference(int x, int y, int k) const { return tone(x, y, k) - image_.at(x, y); }
    int bin(int x, int y) const {
        float s1 = 0;
        float s2 = 0;
        for (int k = 0; k < (perimeter_ == 16 ? 8 : perimeter_); ++k) {
            const int d = perimeter_ == 16 ? tone(x, y, k) - tone(x, y, k + 8) : difference(x, y, k);
            const double angle = k * 2 * 3.14159265358979323846 / perimeter_;
            s1 += static_cast<float>(d) * static_cast<float>(std::sin(angle));
            s2 += static_cast<float>(d) * static_cast<float>(std::cos(angle));
        }
        if (perimeter_ == 16) s1 += 1e-6F;
        auto direction = static_cast<float>(std::atan2(double{s2}, double{s1}));
        if (direction < 0) direction += 6.2831853071795864F;
        const int result = static_cast<int>(direction * static_cast<float>(p_.bins * 0.15915494309189535));
        return result == p_.bins ? 0 : result & 63;
    }

    const GuardedImage<Lum8u>& image_;
    const FastParameters p_;
    const LumPoint* points_;
    int perimeter_;
};

/// Tones of a few levels in patches, so that corners of both kinds are many.
inline void fillPatches(GuardedImage<Lum8u>& image, unsigned seed, int patch = 4, int noise = 8) {
    std::mt19937 engine(seed);
    const unsigned key = engine();
    image.fill([&](int x, int y, int) {
        const unsigned cell = ((x / patch * 73856093U) ^ (y / patch * 19349663U) ^ key) * 2654435761U;
        return ((cell ^ cell >> 15) * 2246822519U >> 30) * 70 + engine() % noise;
    });
}

} // namespace support

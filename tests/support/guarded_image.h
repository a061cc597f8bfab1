// Images and blocks of exact size, with an unreadable page at one end and canaries wherever nothing may be
// written. A call that reads or writes past the guard crashes; one that writes a canary fails its test.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>
#include <type_traits>
#include <vector>

#include "lumcv.h"

namespace support {

/// Pages of which one, before or after the usable bytes, can be neither read nor written.
class GuardedPages {
  public:
    enum class Guard { after, before };

    GuardedPages(std::size_t bytes, Guard guard);
    ~GuardedPages();
    GuardedPages(const GuardedPages&) = delete;
    GuardedPages& operator=(const GuardedPages&) = delete;

    /// The usable bytes: they end at the guard, or begin right after it.
    unsigned char* bytes() const { return bytes_; }
    std::size_t size() const { return size_; }

  private:
    unsigned char* mapping_;
    std::size_t mappingSize_;
    unsigned char* bytes_;
    std::size_t size_;
};

using Guard = GuardedPages::Guard;

/// Pixels around a region that exist in memory and may be read, never written, side by side.
struct Margins {
    int top;
    int bottom;
    int left;
    int right;

    constexpr Margins(int everySide = 0)
        : top(everySide), bottom(everySide), left(everySide), right(everySide) {}
};

/// How a guarded image lies in memory.
struct Placement {
    int channels = 1;
    /// Bytes added to each row's step.
    int padding = 0;
    /// Bytes, at most 64, between the image and the guard: they shift its alignment, and are canaries.
    int offset = 0;
    Guard guard = Guard::after;
    /// The end of the region that faces the guard lies right at it where it has no margin.
    Margins margin = 0;
};

/// A region of elements T. Rows of `width` pixels of `channels` elements; the last row has no padding.
template <class T> class GuardedImage {
  public:
    GuardedImage(int width, int height, Placement placement = {})
        : width_(width),
          height_(height),
          placement_(placement),
          pages_(bytesNeeded(width, height, placement), placement.guard) {
        const Margins margin = placement.margin;
        step_ = stepOf(width, placement);
        unsigned char* start = pages_.bytes() + (placement.guard == Guard::before ? placement.offset : 0);
        first_ = start + static_cast<std::size_t>(margin.top) * step_ + margin.left * pixelBytes();
        std::memset(pages_.bytes(), canary, pages_.size());
        for (int y = -margin.top; y < height + margin.bottom; ++y)
            std::memset(row(y) - margin.left * placement.channels, 0,
                        widthInMemory(width, margin) * pixelBytes());
        before_.assign(pages_.bytes(), pages_.bytes() + pages_.size());
    }

    T* data() { return row(0); }
    const T* data() const { return row(0); }
    int step() const { return step_; }
    LumSize size() const { return {width_, height_}; }
    int elements() const { return width_ * placement_.channels; }

    T* row(int y) { return reinterpret_cast<T*>(first_ + static_cast<std::ptrdiff_t>(y) * step_); }
    const T* row(int y) const {
        return reinterpret_cast<const T*>(first_ + static_cast<std::ptrdiff_t>(y) * step_);
    }
    /// Coordinates may lie in the margin.
    T& at(int x, int y, int channel = 0) { return row(y)[x * placement_.channels + channel]; }
    const T& at(int x, int y, int channel = 0) const { return row(y)[x * placement_.channels + channel]; }

    /// Sets every element of the region and its margin: value(x, y, channel).
    template <class Value> GuardedImage& fill(Value value) {
        const Margins margin = placement_.margin;
        for (int y = -margin.top; y < height_ + margin.bottom; ++y)
            for (int x = -margin.left; x < width_ + margin.right; ++x)
                for (int c = 0; c < placement_.channels; ++c) at(x, y, c) = static_cast<T>(value(x, y, c));
        before_.assign(pages_.bytes(), pages_.bytes() + pages_.size());
        return *this;
    }

    /// Every element of the region and its margin from a seed: integers over their range, floats in -1000..1000.
    GuardedImage& fillRandom(unsigned seed) {
        std::mt19937 engine(seed);
        return fill([&](int, int, int) {
            if constexpr (std::is_floating_point_v<T>)
                return static_cast<T>(static_cast<int>(engine() % 2000001) - 1000000) / 1000;
            else
                return static_cast<T>(engine());
        });
    }

    /// The region's elements, row by row, without padding.
    std::vector<T> pixels() const {
        std::vector<T> all;
        for (int y = 0; y < height_; ++y) all.insert(all.end(), row(y), row(y) + elements());
        return all;
    }

    /// Whether every byte outside the region's pixels is as it was after construction or the last fill.
    bool outsideUntouched() const {
        for (std::size_t i = 0; i < before_.size(); ++i)
            if (pages_.bytes()[i] != before_[i] && !isPixelByte(pages_.bytes() + i)) return false;
        return true;
    }

    /// Whether not a byte has changed since construction or the last fill.
    bool untouched() const { return std::memcmp(before_.data(), pages_.bytes(), before_.size()) == 0; }

  private:
    static constexpr unsigned char canary = 0xC7;

    static int widthInMemory(int width, Margins margin) { return margin.left + width + margin.right; }
    static int stepOf(int width, const Placement& p) {
        return static_cast<int>(widthInMemory(width, p.margin) * p.channels * sizeof(T)) + p.padding;
    }
    static std::size_t bytesNeeded(int width, int height, const Placement& p) {
        const std::size_t rows = p.margin.top + height + p.margin.bottom;
        return rows * stepOf(width, p) - p.padding + p.offset;
    }
    int pixelBytes() const { return static_cast<int>(placement_.channels * sizeof(T)); }
    bool isPixelByte(const unsigned char* place) const {
        const std::ptrdiff_t distance = place - first_;
        if (distance < 0) return false;
        return distance / step_ < height_ && distance % step_ < width_ * pixelBytes();
    }

    int width_;
    int height_;
    Placement placement_;
    int step_;
    GuardedPages pages_;
    unsigned char* first_;
    std::vector<unsigned char> before_;
};

/// Work memory or an object of exactly the queried size, against an unreadable page. Filled with a pattern, so
/// that nothing is zero by luck. Spare bytes between the block and the page shift its alignment; a test whose block
/// goes with a spare byte written fails.
class GuardedBlock {
  public:
    explicit GuardedBlock(std::size_t bytes, Guard guard = Guard::after, std::size_t spare = 0);
    ~GuardedBlock();

    template <class T = Lum8u> T* as() { return reinterpret_cast<T*>(start_); }
    std::size_t size() const { return size_; }

  private:
    static constexpr unsigned char pattern = 0xA5;

    GuardedPages pages_;
    unsigned char* start_;
    std::size_t size_;
};

/// The bits of two runs of elements are the same.
template <class T> bool sameBits(const std::vector<T>& a, const std::vector<T>& b) {
    return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0);
}

} // namespace support

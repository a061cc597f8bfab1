// Digests of what every export writes for fixed inputs. Each build gives the same digests, whatever its pointers and
// vectors: they are listed in tests/digest/<family>.tsv, a line an export.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

#include "digest/memory.h"
#include "lumcv.h"

namespace digest {

/// A running digest of bytes (64-bit FNV-1a).
class Digest {
  public:
    void addBytes(const void* bytes, std::size_t count);
    /// A value without padding; of any NaN only that it is one.
    template <class T> void add(T value) {
        if constexpr (std::is_floating_point_v<T>)
            if (value != value) value = static_cast<T>(__builtin_nan(""));
        addBytes(&value, sizeof value);
    }
    std::uint64_t value() const { return value_; }

  private:
    std::uint64_t value_ = 0xCBF29CE484222325U;
};

/// Numbers that are the same everywhere.
class Numbers {
  public:
    explicit Numbers(std::uint32_t seed) : state_(seed * 2654435761U + 1) {}
    std::uint32_t next();
    /// 0 to limit - 1.
    int below(int limit) { return static_cast<int>(next() % static_cast<std::uint32_t>(limit)); }

  private:
    std::uint64_t state_;
};

/// A picture in memory of its own: `margin` pixels on every side that exist, rows padded as the surroundings say, and the
/// first pixel of the whole `offset` bytes away from a multiple of 64. It holds garbage until it is filled or cleared.
template <class T> class Picture {
  public:
    explicit Picture(LumSize size, int channels = 1, int offset = 0, int margin = 0)
        : size_(size),
          channels_(channels),
          margin_(margin),
          step_(rowBytes() + surroundings().padding),
          block_(static_cast<std::size_t>(step_) * (size.height + 2 * margin) - surroundings().padding,
                 offset) {
        first_ = block_.data() + static_cast<std::ptrdiff_t>(margin) * step_ +
                 margin * channels * static_cast<int>(sizeof(T));
        keep();
    }
    Picture(const Picture&) = delete;
    Picture& operator=(const Picture&) = delete;

    T* data() const { return row(0); }
    T* row(int y) const { return reinterpret_cast<T*>(first_ + static_cast<std::ptrdiff_t>(y) * step_); }
    int step() const { return step_; }
    LumSize size() const { return size_; }
    int channels() const { return channels_; }

    /// Every pixel 0, margins too.
    Picture& clear() {
        for (int y = -margin_; y < size_.height + margin_; ++y)
            std::memset(row(y) - margin_ * channels_, 0, rowBytes());
        keep();
        return *this;
    }

    /// Smooth shapes with noise and some extremes in every pixel, margins too: bytes of the whole range, 16 and 32 bits
    /// of a wide one, floats from -40 to about 150.
    Picture& fill(std::uint32_t seed) {
        Numbers numbers(seed);
        for (int y = -margin_; y < size_.height + margin_; ++y)
            for (int i = -margin_ * channels_; i < (size_.width + margin_) * channels_; ++i) {
                const int noise = numbers.below(64);
                const int extreme = numbers.below(16);
                const int value = extreme == 0   ? 0
                                  : extreme == 1 ? 255
                                                 : (i / channels_ * 3 + y * 5 + noise + 400) & 255;
                if constexpr (std::is_floating_point_v<T>)
                    row(y)[i] = static_cast<T>(value * 0.75 - 40);
                else if constexpr (sizeof(T) == 1)
                    row(y)[i] = static_cast<T>(value);
                else
                    row(y)[i] = static_cast<T>(std::is_signed_v<T> ? value * 193 - 20000 : value * 257);
            }
        keep();
        return *this;
    }

    /// The elements of the region.
    void addTo(Digest& digest) const {
        for (int y = 0; y < size_.height; ++y)
            for (int i = 0; i < size_.width * channels_; ++i) digest.add(row(y)[i]);
    }

  private:
    int rowBytes() const { return (size_.width + 2 * margin_) * channels_ * static_cast<int>(sizeof(T)); }
    /// Nothing but the pixels of the region may change from now on.
    void keep() {
        block_.keepAllBut(first_, step_, size_.width * channels_ * static_cast<int>(sizeof(T)), size_.height);
    }

    LumSize size_;
    int channels_;
    int margin_;
    int step_;
    Block block_;
    unsigned char* first_;
};

/// Memory for an object or a buffer: of exactly this size, off every alignment, with bytes that are not 0.
class Memory {
  public:
    explicit Memory(std::size_t bytes = 0) : block_(new Block(bytes, 3)) {}
    template <class T> T* as() const { return reinterpret_cast<T*>(block_->data()); }
    Lum8u* data() const { return block_->data(); }
    std::size_t size() const { return block_->size(); }
    operator Lum8u*() const { return data(); }

  private:
    std::unique_ptr<Block> block_;
};

/// The arguments that a value takes: an image is its first pixel and its step.
template <class T> auto argumentsOf(const Picture<T>& picture) {
    return std::make_tuple(picture.data(), picture.step());
}
template <class T> auto argumentsOf(T value) { return std::make_tuple(value); }

/// The member called with these values.
template <class Member, class... Values> auto call(Member member, const Values&... values) {
    return std::apply(member, std::tuple_cat(argumentsOf(values)...));
}

/// What a row runs over: small and wide regions, at several alignments.
struct Case {
    LumSize size;
    int offset;
    std::uint32_t seed;
};
const std::vector<Case>& cases();

/// Adds the digest of an export: `run` calls it for every case and adds what it wrote, its status included.
using Run = std::function<void(Digest&, const Case&)>;
void row(const std::string& name, Run run);

/// The rows of a family, by the name of the export.
struct Family {
    std::string name;
    std::map<std::string, Run> rows;
};
/// All families in the order of their names.
const std::vector<Family>& families();

/// The rows of a family: one at namespace scope in each <family>_rows.cpp.
struct RowFile {
    RowFile(const char* family, void (*rows)());
};

} // namespace digest

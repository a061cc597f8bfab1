// The pixels that a statistic looks at: those of a single-channel image or of one channel of three, all of them
// or those that a mask selects; one at a time for the scalar forms, a block at a time for the others.
#pragma once

#include <array>

#include "frame/image.h"
#include "frame/lanes_parts.h"

namespace lum::kernels {

/// Elements, and so pixels of one channel, in 16 bytes: the smallest block that a statistic takes.
template <class T> constexpr int lanesOf = 16 / sizeof(T);

/// One channel of an image: the only one (channels 1), or that of the given index of three (channels 3).
template <class T, int channels> struct Pixels {
    Image<const T> image;
    int channel = 0;

    const T* row(int y) const { return image.row(y); }
    T at(const T* row, int x) const { return row[channels * x + channel]; }
};

/// Byte shuffles that move one channel of 48 bytes of three-channel pixels together: [channel][vector]. What a
/// vector does not hold becomes 0.
template <class T> struct ChannelShuffles {
    alignas(16) std::array<std::array<std::array<unsigned char, 16>, 3>, 3> bytes{};

    constexpr ChannelShuffles() {
        constexpr int size = sizeof(T);
        for (int channel = 0; channel < 3; ++channel)
            for (int vector = 0; vector < 3; ++vector)
                for (int i = 0; i < 16; ++i) {
                    const int source = (3 * (i / size) + channel) * size + i % size;
                    bytes[channel][vector][i] = source / 16 == vector ? source % 16 : 0x80;
                }
    }
};
template <class T> inline constexpr ChannelShuffles<T> channelShuffles;

/// Reads the elements of n neighbouring pixels, from pixel x of a row on, as blocks of 16 bytes or more.
template <class T, int channels> class PixelVectors;

template <class T> class PixelVectors<T, 1> {
  public:
    explicit PixelVectors(const Pixels<T, 1>&) {}
    template <int n> LUM_LANE Block<T, n> block(const T* row, int x) const { return load<n>(row + x); }
};

template <class T> class PixelVectors<T, 3> {
  public:
    explicit PixelVectors(const Pixels<T, 3>& pixels)
        : shuffles_(channelShuffles<T>.bytes[pixels.channel].data()) {}

    template <int n> LUM_LANE Block<T, n> block(const T* row, int x) const {
        return bitsAs<T>(third<n>(row + 3 * x, 0) | third<n>(row + 3 * x, 1) | third<n>(row + 3 * x, 2));
    }

  private:
    /// What the first, second or third 16 bytes of every 48 have of the channel.
    template <int n> LUM_LANE Block<Lum8u, n * sizeof(T)> third(const T* place, int index) const {
        const auto bytes = bitsAs<Lum8u>(loadUnits<n>(place + index * lanesOf<T>, 3 * lanesOf<T>));
        const auto* shuffle =
            static_cast<const unsigned char*>(__builtin_assume_aligned(shuffles_ + index, 16));
        return shuffleUnits(bytes, repeatUnit<bytes.count>(load<16>(shuffle)));
    }

    const std::array<unsigned char, 16>* shuffles_;
};

/// All ones but in the last `count` of n bytes: excludes what an overlapping last vector has before its row's last pixels.
template <int n> LUM_LANE Block<std::int8_t, n> allButLast(int count) {
    static constexpr auto onesThenZeros = [] {
        std::array<std::int8_t, 2 * n> bytes{};
        for (int i = 0; i < n; ++i) bytes[i] = -1;
        return bytes;
    }();
    return load<n>(onesThenZeros.data() + count);
}

/// The last pixels of a row of one channel as a block, and the bytes of its mask. After whole blocks of 16 bytes it overlaps
/// them. A row of integers that is shorter than a block, but no shorter than half of one, is read as two halves that
/// overlap each other.
template <class T> class LastBlock {
    static constexpr int count = lanesOf<T>;
    static constexpr int half = count / 2;
    static constexpr bool hasHalves = std::is_integral_v<T>;

  public:
    /// Of the rows that this is for.
    static constexpr int leastWidth = hasHalves ? half : count;

    explicit LastBlock(int width) : low_(width < count ? 0 : width - count), high_(width - half) {}

    /// Elements T, or as many bytes.
    template <class U> LUM_LANE Block<U, count> load(const U* row) const {
        if constexpr (hasHalves)
            return join(lum::load<half>(row + low_), lum::load<half>(row + high_));
        else
            return lum::load<count>(row + low_);
    }
    /// The pixel that an element of the block is.
    int place(int element) const { return element < half ? low_ + element : high_ + element - half; }
    /// All ones where an element is one of a whole block too, or of the lower half.
    static Block<std::int8_t, count> repeated(int width) {
        if constexpr (hasHalves)
            if (width < count) return join(zeros<std::int8_t, half>(), allButLast<half>(width - half));
        return allButLast<count>(width % count);
    }

  private:
    int low_;
    int high_;
};

} // namespace lum::kernels

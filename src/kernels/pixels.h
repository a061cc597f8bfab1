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

} // namespace lum::kernels

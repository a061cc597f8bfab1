// The known pixels of a disc, and the sums over them: staged side by side, weighed in vectors, and added one by one in
// the disc's order.
#pragma once

#include <cstring>

#include "frame/lanes_convert.h"
#include "kernels/distance/inpaint.h"

namespace lum::kernels {

template <class T> T* inpaintAtByte(T* pointer, std::intptr_t bytes) {
    using Byte = std::conditional_t<std::is_const_v<T>, const unsigned char, unsigned char>;
    return reinterpret_cast<T*>(reinterpret_cast<Byte*>(pointer) + bytes);
}

/// As many known neighbours as are weighed at once, in the table's order.
template <int channels> class InpaintStage {
  public:
    static constexpr int capacity = 128;
    static constexpr int blockCount = 8;
    using Floats = Block<float, blockCount>;
    using Pairs = Block<Lum16s, 2 * blockCount>;

    /// Takes neighbours from the table until the stage is full; where the rest of the table begins.
    const InpaintNeighbour* fill(const InpaintRegion& region, int x, int y, const InpaintNeighbour* from,
                                 const InpaintNeighbour* end) {
        const Lum8u* pixel = region.image.row(y) + static_cast<std::ptrdiff_t>(x) * channels;
        const Lum8u* mask = region.mask.row(y) + x;
        const float* distance = region.distances.row(y) + x;
        const Lum16s* gradient = region.imageGradient.row(y) + static_cast<std::ptrdiff_t>(x) * channels * 2;
        if (end - from > capacity) end = from + capacity;
        count_ = 0;
        for (; from != end; ++from) {
            // Every neighbour is staged, and the next one takes its place if it is not known: no branch to predict.
            const int i = count_;
            distance_[i] = *inpaintAtByte(distance, from->inDistances);
            weight_[i] = from->weight;
            toward_[i] = {static_cast<Lum16s>(from->towardX), static_cast<Lum16s>(from->towardY)};
            const Lum16s* pairs = inpaintAtByte(gradient, from->inGradient);
            for (int c = 0; c < channels; ++c) {
                pixel_[c][i] = pixel[from->inImage + c];
                gradient_[c][i] = {pairs[2 * c], pairs[2 * c + 1]};
            }
            count_ += mask[from->inMask] == inpaintKnown ? 1 : 0;
        }
        return end;
    }

    int count() const { return count_; }

    LUM_LANE Floats distances(int i) const { return load<blockCount>(distance_ + i); }
    LUM_LANE Floats weights(int i) const { return load<blockCount>(weight_ + i); }
    LUM_LANE Floats pixels(int c, int i) const { return toFloat(load<blockCount>(pixel_[c] + i)); }
    LUM_LANE Pairs toward(int i) const { return pairsOf(toward_ + i); }
    LUM_LANE Pairs gradients(int c, int i) const { return pairsOf(gradient_[c] + i); }

  private:
    struct Pair {
        Lum16s x, y;
    };
    LUM_LANE static Pairs pairsOf(const Pair* pairs) {
        return load<2 * blockCount>(reinterpret_cast<const Lum16s*>(pairs));
    }

    int count_ = 0;
    // What the last block holds after the last neighbour is weighed as well, and added nowhere; it is never undefined.
    float distance_[capacity] = {};
    float weight_[capacity] = {};
    Pair toward_[capacity] = {};
    Lum8u pixel_[channels][capacity] = {};
    Pair gradient_[channels][capacity] = {};
};

/// Numbers of a stage's neighbours, to be added in their order.
template <int channels> using InpaintTerms = float[InpaintStage<channels>::capacity];

/// The same pair N times.
template <int N> LUM_LANE Block<Lum16s, 2 * N> repeatedPair(int first, int second) {
    const std::uint32_t low = static_cast<std::uint32_t>(first) & 0xFFFF;
    return bitsAs<Lum16s>(broadcast<N>(low | static_cast<std::uint32_t>(second) << 16));
}
/// In pairs of 16 bits: one that keeps the first of each pair, and one that swaps the two.
template <int N> LUM_LANE Block<Lum16s, N> firstOfPairs(Block<Lum16s, N> pairs) {
    return bitsAs<Lum16s>(bitsAs<Lum32s>(pairs) & broadcast<N / 2>(Lum32s{0xFFFF}));
}
template <int N> LUM_LANE Block<Lum16s, N> secondOfPairs(Block<Lum16s, N> pairs) {
    return bitsAs<Lum16s>(bitsAs<Lum32s>(pairs) & broadcast<N / 2>(~Lum32s{0xFFFF}));
}
template <int N> LUM_LANE Block<Lum16s, N> swappedPairs(Block<Lum16s, N> pairs) {
    const auto bits = bitsAs<std::uint32_t>(pairs);
    return bitsAs<Lum16s>((bits << 16) | (bits >> 16));
}

} // namespace lum::kernels

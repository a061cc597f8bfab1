// Queues of pixels, one a level, first in, first out: what floods and growing regions go by.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "frame/arena.h"

namespace lum::kernels {

/// Pixels by number, in chunks of chunkWords - 1 that are taken from a pool as a queue grows and go back to it as the
/// queue is read. Neighbours in a queue are neighbours in memory but for the ends of chunks. A chunk is a power of two
/// of words and lies on a multiple of its size: its first word is the number of the next one in its queue.
template <int levels, int chunkWords> class LevelQueues {
  public:
    using Pixel = std::uint32_t;

    /// Bytes for `pixels` that wait at one time: whole chunks, and two more a level, whose chunks may be full in part
    /// at both ends. A chunk for one pixel is never full in part.
    static constexpr std::size_t poolBytes(std::size_t pixels) {
        constexpr std::size_t perChunk = chunkWords - 1;
        const std::size_t chunks = perChunk == 1 ? pixels : (pixels + perChunk - 1) / perChunk + 2 * levels;
        return chunks * chunkBytes + chunkBytes - 1;
    }

    explicit LevelQueues(unsigned char* pool)
        : pool_(reinterpret_cast<Pixel*>(alignedUp(pool, chunkBytes))) {}

    bool empty(int level) const { return head_[level] == nullptr; }

    void push(int level, Pixel pixel) {
        Pixel* place = tail_[level];
        if (atChunkEnd(place)) {
            const std::uint32_t chunk = take();
            if (place != nullptr)
                *chunkBefore(place) = chunk;
            else
                head_[level] = firstPlace(chunk);
            place = firstPlace(chunk);
        }
        *place = pixel;
        tail_[level] = place + 1;
    }

    /// The first pixel of a queue that is not empty.
    Pixel pop(int level) {
        Pixel* place = head_[level];
        const Pixel pixel = *place++;
        if (place == tail_[level]) {
            giveBack(chunkBefore(place));
            head_[level] = tail_[level] = nullptr;
        } else {
            if (atChunkEnd(place)) {
                Pixel* read = chunkBefore(place);
                place = firstPlace(*read);
                giveBack(read);
            }
            head_[level] = place;
        }
        return pixel;
    }

    /// The pixel at a number of places after the first one of a queue that is not empty; the first one itself where
    /// that is in another chunk, or not there.
    Pixel after(int level, int places) const {
        const Pixel* first = head_[level];
        const Pixel* last = tail_[level] - 1;
        const Pixel* place = first + places;
        const bool isThere =
            chunkOf(place) == chunkOf(first) && (chunkOf(last) != chunkOf(first) || place <= last);
        return isThere ? *place : *first;
    }

  private:
    static constexpr std::size_t chunkBytes = chunkWords * sizeof(Pixel);
    static constexpr std::uint32_t none = 0xFFFFFFFF;

    /// Also where there is no chunk yet.
    static bool atChunkEnd(const Pixel* place) {
        return (reinterpret_cast<std::uintptr_t>(place) & (chunkBytes - 1)) == 0;
    }
    static std::uintptr_t chunkOf(const Pixel* place) {
        return reinterpret_cast<std::uintptr_t>(place) & ~(chunkBytes - 1);
    }
    /// The chunk of the word in front of a place.
    static Pixel* chunkBefore(Pixel* place) {
        return reinterpret_cast<Pixel*>((reinterpret_cast<std::uintptr_t>(place) - 1) & ~(chunkBytes - 1));
    }
    Pixel* firstPlace(std::uint32_t chunk) const { return pool_ + std::size_t{chunk} * chunkWords + 1; }

    std::uint32_t take() {
        if (free_ == none) return unused_++;
        const std::uint32_t chunk = free_;
        free_ = pool_[std::size_t{chunk} * chunkWords];
        return chunk;
    }
    void giveBack(Pixel* chunk) {
        *chunk = free_;
        free_ = static_cast<std::uint32_t>((chunk - pool_) / chunkWords);
    }

    Pixel* pool_;
    /// Chunks that were used and are not; those from unused_ on never were.
    std::uint32_t free_ = none;
    std::uint32_t unused_ = 0;
    std::array<Pixel*, levels> head_{};
    std::array<Pixel*, levels> tail_{};
};

} // namespace lum::kernels

// The memory that a row gives to the library, and what lies around it.
#pragma once

#include <cstddef>
#include <vector>

namespace digest {

/// How every block of memory lies from now on: set before rows run, never while they do.
struct Surroundings {
    /// An unreadable page lies after each block, or before it, `shift` bytes away. Or blocks may be larger than the
    /// machine's memory, as long as little of them is touched: those are neither filled with garbage nor watched.
    enum class Guard { none, after, before, sparse };
    Guard guard = Guard::none;
    int shift = 0;
    /// Bytes after each row of a picture.
    int padding = 16;
    /// What memory holds before it is written.
    unsigned char garbage = 0xA5;
};
Surroundings& surroundings();

/// The number of blocks, of those that have ended, that were written where nothing may be written.
int strayWrites();

/// Some bytes. Those around them, and of a picture those outside its region, must not change as long as the block lives.
class Block {
  public:
    /// Where no page guards it, the block begins `offset` bytes after a multiple of 64.
    Block(std::size_t bytes, int offset);
    ~Block();
    Block(const Block&) = delete;
    Block& operator=(const Block&) = delete;

    unsigned char* data() const { return data_; }
    std::size_t size() const { return size_; }
    bool contains(const void* place) const { return place >= data_ && place < data_ + size_; }

    /// From now on only the rows of a region may change.
    void keepAllBut(const unsigned char* first, std::ptrdiff_t step, int rowBytes, int rows);

    /// The region of a picture, from the first byte of the block on; no rows where the block is no picture.
    struct Region {
        std::ptrdiff_t first, step;
        int rowBytes, rows;
    };
    const Region& region() const { return region_; }

    /// The blocks of this thread that live.
    static const std::vector<Block*>& living();

  private:
    std::size_t size_;
    /// What was allocated, and within it what can be read and written.
    unsigned char* memory_;
    std::size_t memorySize_;
    unsigned char* start_;
    unsigned char* end_;
    unsigned char* data_;
    bool isMapped_;
    bool isWatched_;
    Region region_;
    std::vector<unsigned char> before_;
};

} // namespace digest

#include "digest/memory.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "support/pages.h"

namespace digest {
namespace {

std::atomic<int> strays{0};

std::vector<Block*>& livingBlocks() {
    thread_local std::vector<Block*> blocks;
    return blocks;
}

unsigned char* pagesOf(std::size_t bytes) {
    auto* first = static_cast<unsigned char*>(support::mapPages(bytes));
    if (first == nullptr) std::abort();
    return first;
}

/// Pages of which one can be neither read nor written.
unsigned char* guardedPages(std::size_t bytes, std::size_t guarded) {
    auto* first = pagesOf(bytes);
    if (!support::forbidPage(first + guarded)) std::abort();
    return first;
}

} // namespace

Surroundings& surroundings() {
    static Surroundings all;
    return all;
}

int strayWrites() { return strays; }

const std::vector<Block*>& Block::living() { return livingBlocks(); }

Block::Block(std::size_t bytes, int offset)
    : size_(bytes),
      isMapped_(surroundings().guard != Surroundings::Guard::none),
      isWatched_(surroundings().guard != Surroundings::Guard::sparse),
      region_{} {
    const auto [guard, shift, padding, garbage] = surroundings();
    livingBlocks().push_back(this);
    if (!isWatched_) {
        memorySize_ = bytes + 1;
        start_ = memory_ = data_ = pagesOf(memorySize_);
        end_ = memory_ + memorySize_;
        return;
    }
    if (isMapped_) {
        const std::size_t page = support::pageBytes();
        const std::size_t usable = (bytes + shift + page - 1) / page * page;
        const bool isAfter = guard == Surroundings::Guard::after;
        memorySize_ = usable + page;
        memory_ = guardedPages(memorySize_, isAfter ? usable : 0);
        start_ = memory_ + (isAfter ? 0 : page);
        end_ = start_ + usable;
        data_ = isAfter ? end_ - shift - bytes : start_ + shift;
    } else {
        memorySize_ = bytes + 192;
        memory_ = static_cast<unsigned char*>(std::malloc(memorySize_));
        start_ = memory_;
        end_ = memory_ + memorySize_;
        data_ = memory_ + (64 - reinterpret_cast<std::uintptr_t>(memory_) % 64) + offset;
    }
    std::memset(start_, garbage, end_ - start_);
}

Block::~Block() {
    auto& blocks = livingBlocks();
    blocks.erase(std::find(blocks.begin(), blocks.end(), this));
    const auto isGarbage = [](unsigned char byte) { return byte == surroundings().garbage; };
    if (isWatched_ &&
        (!std::all_of(start_, data_, isGarbage) || !std::all_of(data_ + size_, end_, isGarbage)))
        ++strays;
    if (!before_.empty()) {
        for (int y = 0; y < region_.rows; ++y) {
            const std::ptrdiff_t row = region_.first + y * region_.step;
            std::memcpy(before_.data() + row, data_ + row, region_.rowBytes);
        }
        if (std::memcmp(before_.data(), data_, size_) != 0) ++strays;
    }
    if (isMapped_)
        support::unmapPages(memory_, memorySize_);
    else
        std::free(memory_);
}

void Block::keepAllBut(const unsigned char* first, std::ptrdiff_t step, int rowBytes, int rows) {
    if (!isWatched_) return;
    region_ = {first - data_, step, rowBytes, rows};
    before_.assign(data_, data_ + size_);
}

} // namespace digest

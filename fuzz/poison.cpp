#include "poison.h"

#include <sanitizer/asan_interface.h> // its macros do nothing in a build without the sanitizer

namespace fuzz {

using contract::Call;
using digest::Block;

namespace {

/// The bytes of a whole row on either side of its region.
std::ptrdiff_t marginBytes(const Block::Region& region) { return region.first % region.step; }
std::ptrdiff_t marginRows(const Block::Region& region) { return region.first / region.step; }

std::ptrdiff_t integer(const Call& call, int argument, int field = 0) {
    return static_cast<std::ptrdiff_t>(
        call.arguments[argument].number(call.callee->types[argument].fields[field]));
}

} // namespace

Poison::Poison(const Call& call) {
    for (const Block* block : Block::living()) {
        if (block->region().rows == 0) continue;
        forbidGaps(*block);
        forbidMargins(*block, call);
    }
}

Poison::~Poison() {
    for (const auto& [first, bytes] : places_) ASAN_UNPOISON_MEMORY_REGION(first, bytes);
}

void Poison::forbid(unsigned char* first, std::ptrdiff_t bytes) {
    if (bytes <= 0) return;
    ASAN_POISON_MEMORY_REGION(first, bytes);
    // The sanitizer keeps account of eight bytes at a time; at the end it may have left some open, never closed more.
    places_.emplace_back(first, bytes);
}

void Poison::forbidGaps(const Block& block) {
    const Block::Region& region = block.region();
    const std::ptrdiff_t used = region.rowBytes + 2 * marginBytes(region);
    const std::ptrdiff_t rows = region.rows + 2 * marginRows(region);
    for (std::ptrdiff_t y = 0; y + 1 < rows; ++y)
        forbid(block.data() + y * region.step + used, region.step - used);
}

void Poison::forbidMargins(const Block& block, const Call& call) {
    const Block::Region& region = block.region();
    const int src = call.callee->indexOf("src");
    const int step = call.callee->indexOf("srcStep");
    const int border = call.callee->indexOf("border");
    const bool isSource = region.first > 0 && src >= 0 && step >= 0 && border >= 0 &&
                          call.callee->indexOf("borderValue") >= 0 &&
                          call.arguments[src].pointer() == block.data() + region.first &&
                          integer(call, step) == region.step;
    if (!isSource) return;
    const auto kind = static_cast<unsigned>(integer(call, border));
    const bool hasTop = (kind & lumBorderInMemoryTop) != 0 || (kind & lumBorderFirstStageInMemoryTop) != 0;
    const bool hasBottom =
        (kind & lumBorderInMemoryBottom) != 0 || (kind & lumBorderFirstStageInMemoryBottom) != 0;
    const bool hasLeft = (kind & lumBorderInMemoryLeft) != 0 || (kind & lumBorderFirstStageInMemoryLeft) != 0;
    const bool hasRight =
        (kind & lumBorderInMemoryRight) != 0 || (kind & lumBorderFirstStageInMemoryRight) != 0;
    const std::ptrdiff_t above = marginRows(region);
    const std::ptrdiff_t beside = marginBytes(region);
    const std::ptrdiff_t wholeRow = region.rowBytes + 2 * beside;
    for (std::ptrdiff_t y = -above; y < region.rows + above; ++y) {
        unsigned char* const row = block.data() + (y + above) * region.step;
        if ((y < 0 && !hasTop) || (y >= region.rows && !hasBottom)) {
            forbid(row, wholeRow);
            continue;
        }
        if (!hasLeft) forbid(row, beside);
        if (!hasRight) forbid(row + beside + region.rowBytes, beside);
    }
}

} // namespace fuzz

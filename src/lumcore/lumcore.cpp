#include "lumcore.h"

#include <atomic>
#include <cpuid.h>
#include <cstdint>

namespace {

/// The processor's leaf of deterministic cache parameters, and the other vendor's leaf of the same layout.
constexpr unsigned cacheLeaf = 4;
constexpr unsigned extendedCacheLeaf = 0x8000001D;
constexpr unsigned instructionCache = 2;

/// The largest data or unified cache that a leaf describes; 0 where it describes none.
std::uint64_t largestCacheOf(unsigned leaf) {
    std::uint64_t largest = 0;
    unsigned eax = 0;
    unsigned ebx = 0;
    unsigned ecx = 0;
    unsigned edx = 0;
    for (unsigned index = 0; index < 32 && __get_cpuid_count(leaf, index, &eax, &ebx, &ecx, &edx); ++index) {
        const unsigned type = eax & 0x1F;
        if (type == 0) break;
        if (type == instructionCache) continue;
        const std::uint64_t ways = (ebx >> 22) + 1;
        const std::uint64_t partitions = ((ebx >> 12) & 0x3FF) + 1;
        const std::uint64_t lineBytes = (ebx & 0xFFF) + 1;
        const std::uint64_t sets = std::uint64_t{ecx} + 1;
        const std::uint64_t bytes = ways * partitions * lineBytes * sets;
        if (bytes > largest) largest = bytes;
    }
    return largest;
}

/// 0 where the processor describes no data cache.
int32_t largestCache() {
    std::uint64_t largest = largestCacheOf(cacheLeaf);
    if (largest == 0) largest = largestCacheOf(extendedCacheLeaf);
    return static_cast<int32_t>(largest < INT32_MAX ? largest : INT32_MAX);
}

} // namespace

LumStatus lumGetMaxCacheSizeB(int32_t* bytes) {
    // The answer never changes, and asking costs as much as a small image where a hypervisor answers for the
    // processor: it is asked once. Threads that meet here store the same number.
    static std::atomic<int32_t> known{-1};

    if (bytes == nullptr) return lumStatusNullPointer;
    int32_t largest = known.load(std::memory_order_relaxed);
    if (largest < 0) {
        largest = largestCache();
        known.store(largest, std::memory_order_relaxed);
    }
    if (largest == 0) return lumStatusOutOfRange;
    *bytes = largest;
    return lumStatusOk;
}

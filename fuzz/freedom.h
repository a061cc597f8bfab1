// How far an argument may be changed without asking the caller for other memory: what a fuzzer may do to a call, and
// still hold the library responsible for every access.
#pragma once

#include "library/contract/calls.h"

namespace fuzz {

enum class Freedom {
    /// Any value: thresholds, selectors, weights, anchors.
    any,
    /// A selector or a scale that all calls of a sequence share, as sizes are worked out from it.
    shared,
    /// A size that all calls of a sequence share, no larger than it is: pixels around the region and arrays suffice for it.
    sharedAtMost,
    /// Smaller, 0 or negative.
    atMost,
    /// A point, a size or a rectangle of a region: only smaller in each of its numbers, 0 or negative.
    region,
    /// The step of an image, which the export tests: only such as no image can have.
    step,
    /// Which sides of the region exist in memory.
    border,
    /// A pointer: may be null.
    pointer,
    /// Says what the memory holds, so it is left alone.
    kept,
};

/// Whether the contract of an export has faults of an argument that give this status.
bool tests(const contract::Export& callee, LumStatus status, const std::string& argument);

Freedom freedomOf(const contract::Export& callee, std::size_t argument);

/// A query of sizes.
bool isQuery(const contract::Export& callee);

/// Whether the numbers of a query say how much of a picture or list it reads.
bool readsMemory(const contract::Export& callee);

/// Memory whose contents are nobody's but the library's: objects, and buffers for work.
bool isScratch(const contract::Export& callee, std::size_t argument);

/// The elements of a list that an argument points to and that the library only reads, 0 where it is no such list.
std::size_t listLength(const contract::Call& call, std::size_t argument);

} // namespace fuzz

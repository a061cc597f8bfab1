// Bytes that no call may touch, made unreadable for the length of a call.
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "digest/memory.h"
#include "library/contract/calls.h"

namespace fuzz {

/// While it lives the address sanitizer, where the build has it, reports any access to the gaps between rows of pictures, and to pixels around the
/// source's region on sides that the call does not announce as in memory.
class Poison {
  public:
    explicit Poison(const contract::Call& call);
    ~Poison();
    Poison(const Poison&) = delete;
    Poison& operator=(const Poison&) = delete;

  private:
    void forbid(unsigned char* first, std::ptrdiff_t bytes);
    void forbidGaps(const digest::Block& block);
    void forbidMargins(const digest::Block& block, const contract::Call& call);

    std::vector<std::pair<unsigned char*, std::size_t>> places_;
};

} // namespace fuzz

// Placing objects and rows in caller memory. The same sequence of takes, over a null block, is a size query.
#pragma once

#include <cstddef>
#include <cstdint>

namespace lum {

/// The first multiple of a power of two at or above the value.
template <class Integer> constexpr Integer roundedUp(Integer value, Integer powerOfTwo) {
    return (value + (powerOfTwo - 1)) & ~(powerOfTwo - 1);
}

/// The first address at or after the pointer that is a multiple of a power of two.
template <class T> T* alignedUp(T* pointer, std::uintptr_t powerOfTwo) {
    return reinterpret_cast<T*>(roundedUp(reinterpret_cast<std::uintptr_t>(pointer), powerOfTwo));
}

/// Takes pieces of a block, one after the other. Alignment is that of addresses, so a block need have none.
class Arena {
  public:
    explicit Arena(void* block) : start_(reinterpret_cast<std::uintptr_t>(block)), position_(start_) {}

    /// Moves to the next multiple of a power of two.
    Arena& align(std::uintptr_t powerOfTwo) {
        position_ = roundedUp(position_, powerOfTwo);
        return *this;
    }

    /// Leaves bytes unused.
    Arena& skip(std::size_t bytes) {
        position_ += bytes;
        return *this;
    }

    /// The next `count` elements.
    template <class T> T* allocate(std::size_t count = 1) {
        T* piece = reinterpret_cast<T*>(position_);
        position_ += count * sizeof(T);
        return piece;
    }

    /// Bytes from the start of the block to the end of the last piece.
    std::size_t used() const { return position_ - start_; }

  private:
    std::uintptr_t start_;
    std::uintptr_t position_;
};

} // namespace lum

// The bytes of a fuzzer's input, taken one after another as decisions; after the last byte every decision is 0.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>

namespace fuzz {

class Choices {
  public:
    Choices(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

    std::uint8_t byte() { return at_ < size_ ? data_[at_++] : 0; }
    std::uint64_t bytes(int count) {
        std::uint64_t value = 0;
        for (int i = 0; i < count; ++i) value |= std::uint64_t{byte()} << (8 * i);
        return value;
    }
    /// 0 to limit - 1.
    std::size_t below(std::size_t limit) { return bytes(limit > 256 ? 2 : 1) % limit; }
    template <class T> T among(std::initializer_list<T> values) {
        return values.begin()[below(values.size())];
    }

  private:
    const std::uint8_t* data_;
    std::size_t size_;
    std::size_t at_ = 0;
};

} // namespace fuzz

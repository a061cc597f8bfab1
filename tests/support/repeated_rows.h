// Pictures whose addresses exceed what 32 bits count, in the memory of a few rows.
#pragma once

#include <cstddef>
#include <sys/mman.h>
#include <unistd.h>

#include "lumcv.h"

namespace support {

/// Rows that repeat after `period` of them: what is written to one is read from all its copies.
class RepeatedRows {
  public:
    /// Rows of `width` elements and a few more.
    RepeatedRows(int width, int elementBytes, int rows, int period)
        : step_(pageMultiple((width + 2) * elementBytes)) {
        const std::size_t chunk = static_cast<std::size_t>(step_) * period;
        const std::size_t chunks = rows / period + 2;
        const int file = memfd_create("rows", 0);
        if (file < 0 || ftruncate(file, static_cast<off_t>(chunk)) != 0) return;
        bytes_ = chunk * chunks;
        void* all = mmap(nullptr, bytes_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (all != MAP_FAILED) memory_ = static_cast<Lum8u*>(all);
        for (std::size_t i = 0; memory_ != nullptr && i < chunks; ++i)
            if (mmap(memory_ + i * chunk, chunk, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_FIXED, file, 0) ==
                MAP_FAILED)
                isWhole_ = false;
        close(file);
    }
    ~RepeatedRows() {
        if (memory_ != nullptr) munmap(memory_, bytes_);
    }
    RepeatedRows(const RepeatedRows&) = delete;
    RepeatedRows& operator=(const RepeatedRows&) = delete;

    bool isThere() const { return memory_ != nullptr && isWhole_; }
    int step() const { return step_; }
    template <class T = Lum8u> T* row(int y = 0) const {
        return reinterpret_cast<T*>(memory_ + static_cast<std::ptrdiff_t>(step_) * y);
    }

  private:
    static int pageMultiple(int bytes) { return (bytes + 4095) / 4096 * 4096; }

    int step_;
    std::size_t bytes_ = 0;
    Lum8u* memory_ = nullptr;
    bool isWhole_ = true;
};

} // namespace support

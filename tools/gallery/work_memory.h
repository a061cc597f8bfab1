// Blocks for the objects and the work buffers of a call, of the sizes that the library reports.
#pragma once

#include <vector>

#include "lumcv.h"

namespace tools {

class WorkMemory {
  public:
    explicit WorkMemory(Lum32s bytes) : bytes_(static_cast<std::size_t>(bytes)) {}
    Lum8u* bytes() { return bytes_.data(); }
    template <class T> T* as() { return reinterpret_cast<T*>(bytes_.data()); }

  private:
    std::vector<Lum8u> bytes_;
};

} // namespace tools

// Which pixels belong to a region of similar ones, and which neighbours are of one region.
#pragma once

#include <cmath>
#include <cstdint>
#include <type_traits>

#include "frame/lanes_reduce.h"
#include "lumcv/types.h"

namespace lum::kernels {

/// One pixel at a time, and 32 at a time with a bit each. Lum8u, Lum16u, Lum16s, Lum32f.
template <class T> class SimilarPixels {
  public:
    /// A pixel of `excluded` belongs to no region, nor does NaN.
    SimilarPixels(T excluded, T maxDifference) : excluded_(excluded), maxDifference_(maxDifference) {}

    bool belongs(T v) const { return v == v && v != excluded_; }

    bool similar(T a, T b) const {
        if constexpr (std::is_floating_point_v<T>)
            return std::fabs(a - b) <= maxDifference_;
        else
            return (a < b ? b - a : a - b) <= maxDifference_;
    }

    std::uint32_t belonging(const T* place) const {
        const auto v = load<32>(place);
        if constexpr (std::is_floating_point_v<T>)
            return signBits((v == v) & (v != broadcast<32>(excluded_)));
        else
            return signBits(v != broadcast<32>(excluded_));
    }

    std::uint32_t similarTo(const T* a, const T* b) const {
        if constexpr (std::is_floating_point_v<T>) {
            return signBits(absDiff(load<32>(a), load<32>(b)) <= broadcast<32>(maxDifference_));
        } else {
            if (maxDifference_ < 0) return 0;
            using U = UnsignedOf<sizeof(T)>;
            const auto x = load<32>(a);
            const auto y = load<32>(b);
            // Exact in as many bits without a sign.
            const auto difference = bitsAs<U>(max(x, y) - min(x, y));
            const auto excess = subSaturated(difference, broadcast<32>(static_cast<U>(maxDifference_)));
            return signBits(excess == zeros<U, 32>());
        }
    }

  private:
    T excluded_;
    T maxDifference_;
};

} // namespace lum::kernels

#include "kernels/stats/accumulate_weighted.h"

#include <algorithm>
#include <cstdint>

#include "frame/vector.h"

namespace lum::kernels {
namespace {

/// One formula for a single and for a vector of floats.
template <class F> F weighted(F s1, F s2, Lum32f alpha) { return s2 + (s1 - s2) * alpha; }

bool onElement(const Lum32f* place) { return reinterpret_cast<std::uintptr_t>(place) % sizeof(Lum32f) == 0; }

/// Elements of a row before its first 16-byte boundary.
int elementsToAlignment(const Lum32f* row, int width) {
    return std::min(width,
                    static_cast<int>((0U - reinterpret_cast<std::uintptr_t>(row)) % 16 / sizeof(Lum32f)));
}

template <Access dstAccess>
void vectorRows(Image<const Lum32f> src1, Image<const Lum32f> src2, Image<Lum32f> dst, LumSize size,
                Lum32f alpha) {
    for (int y = 0; y < size.height; ++y) {
        const Lum32f* s1 = src1.row(y);
        const Lum32f* s2 = src2.row(y);
        Lum32f* result = dst.row(y);
        const auto four = [&](int x) {
            storeFloats<dstAccess>(result + x, weighted(loadFloats<Access::unaligned>(s1 + x),
                                                        loadFloats<Access::unaligned>(s2 + x), alpha));
        };
        int x = 0;
        // up to 3 elements to the destination's alignment
        if constexpr (dstAccess == Access::aligned) {
            const int head = elementsToAlignment(result, size.width);
            for (; x < head; ++x) result[x] = weighted(s1[x], s2[x], alpha);
        }
        // 16 elements per iteration
        for (; x <= size.width - 16; x += 16) {
            four(x);
            four(x + 4);
            four(x + 8);
            four(x + 12);
        }
        // 4 elements per iteration
        for (; x <= size.width - 4; x += 4) four(x);
        // tail, one element at a time
        for (; x < size.width; ++x) result[x] = weighted(s1[x], s2[x], alpha);
    }
}

} // namespace

void weightedSumScalar(Image<const Lum32f> src1, Image<const Lum32f> src2, Image<Lum32f> dst, LumSize size,
                       Lum32f alpha) {
    for (int y = 0; y < size.height; ++y) {
        const Lum32f* s1 = src1.row(y);
        const Lum32f* s2 = src2.row(y);
        Lum32f* result = dst.row(y);
        for (int x = 0; x < size.width; ++x) result[x] = weighted(s1[x], s2[x], alpha);
    }
}

void weightedSum(Image<const Lum32f> src1, Image<const Lum32f> src2, Image<Lum32f> dst, LumSize size,
                 Lum32f alpha) {
    // Steps are whole elements, so what holds for the first row holds for all.
    const bool bothSourcesOffElement = !onElement(src1.first) && !onElement(src2.first);
    if (bothSourcesOffElement || !onElement(dst.first))
        vectorRows<Access::unaligned>(src1, src2, dst, size, alpha);
    else
        vectorRows<Access::aligned>(src1, src2, dst, size, alpha);
}

} // namespace lum::kernels

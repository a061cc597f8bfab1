#include "kernels/stats/accumulate_weighted.h"

#include <algorithm>
#include <cstdint>

#include "frame/lanes.h"

namespace lum::kernels {
namespace {

/// One formula for a float and for a block of them.
template <class F> F weighted(F s1, F s2, Lum32f alpha) { return s2 + (s1 - s2) * alpha; }

/// Elements of a row before the first place where no vector lies across two lines of the cache; none where no element
/// of the row begins at one.
int elementsToAlignment(const Lum32f* row, int width) {
    const auto address = reinterpret_cast<std::uintptr_t>(row);
    if (address % sizeof(Lum32f) != 0) return 0;
    return std::min(width, static_cast<int>((0U - address) % streamingAlignment / sizeof(Lum32f)));
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
    for (int y = 0; y < size.height; ++y) {
        const Lum32f* s1 = src1.row(y);
        const Lum32f* s2 = src2.row(y);
        Lum32f* result = dst.row(y);
        const auto block = [&]<int n>(int x) LUM_INLINED {
            store(weighted(load<n>(s1 + x), load<n>(s2 + x), alpha), result + x);
        };
        int x = 0;
        // up to 15 elements to the alignment of the destination
        const int head = elementsToAlignment(result, size.width);
        for (; x < head; ++x) result[x] = weighted(s1[x], s2[x], alpha);
        // 16 elements per iteration
        for (; x <= size.width - 16; x += 16)
            forVectors<float, 16>([&]<int n>(int i) LUM_INLINED { block.template operator()<n>(x + i); });
        // 4 elements per iteration
        for (; x <= size.width - 4; x += 4) block.template operator()<4>(x);
        // tail: scalar, one element at a time
        for (; x < size.width; ++x) result[x] = weighted(s1[x], s2[x], alpha);
    }
}

} // namespace lum::kernels

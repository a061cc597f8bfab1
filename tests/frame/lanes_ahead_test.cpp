#include "frame/lanes_ahead.h"

#include <gtest/gtest.h>
#include <numeric>
#include <vector>

#include "support/guarded_image.h"

using namespace lum;

namespace {

/// A block some elements ahead is what lies there; no more than 16 bytes after the first block are read.
template <class T, int N, int ahead> void expectAhead() {
    constexpr std::size_t elements = N + std::max<std::size_t>(ahead, 16 / sizeof(T));
    support::GuardedBlock memory(elements * sizeof(T), support::Guard::after);
    T* const place = memory.as<T>();
    std::iota(place, place + elements, T{1});
    T result[N];
    store(loadAhead<ahead>(load<N>(static_cast<const T*>(place)), static_cast<const T*>(place)), result);
    for (int i = 0; i < N; ++i)
        EXPECT_EQ(place[i + ahead], result[i]) << i << " of " << N << ", " << ahead << " ahead";
}

template <class T> void expectAllDistances() {
    constexpr int vector = 16 / static_cast<int>(sizeof(T));
    expectAhead<T, vector, 1>();
    expectAhead<T, 2 * vector, 1>();
    expectAhead<T, 4 * vector, 1>();
    expectAhead<T, 2 * vector, 2>();
    expectAhead<T, 2 * vector, 3>();
    expectAhead<T, 4 * vector, vector - 1>();
    expectAhead<T, 4 * vector, vector>();
    expectAhead<T, 4 * vector, vector + 1>();
}

} // namespace

TEST(LanesAhead, HoldsTheElementsThatFollow) {
    expectAllDistances<Lum8u>();
    expectAllDistances<Lum16u>();
    expectAllDistances<Lum16s>();
    expectAllDistances<Lum32f>();
    expectAllDistances<Lum64f>();
}

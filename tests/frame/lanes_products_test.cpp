#include "frame/lanes_products.h"

#include <gtest/gtest.h>

using namespace lum;

namespace {

template <int N> void expectWholeProducts() {
    std::uint32_t a[N];
    std::uint32_t b[N];
    for (int i = 0; i < N; ++i) {
        a[i] = 0xFFFFFFFFU - static_cast<std::uint32_t>(i);
        b[i] = 0xFFFFFFFFU / (static_cast<std::uint32_t>(i) + 1);
    }
    std::uint64_t products[N / 2];
    store(evenProducts(load<N>(a), load<N>(b)), products);
    for (int i = 0; i < N / 2; ++i) EXPECT_EQ(std::uint64_t{a[2 * i]} * b[2 * i], products[i]) << i;
}

} // namespace

TEST(LanesProducts, OfEvenElementsAreWhole) {
    expectWholeProducts<4>();
    expectWholeProducts<8>();
    expectWholeProducts<16>();
    expectWholeProducts<32>();
}

#include "frame/lanes_transpose.h"

#include <gtest/gtest.h>

using namespace lum;

namespace {

/// Element i of row k is 100 k + i; in each unit of four, rows become columns.
template <int N> void expectTransposedUnits() {
    float rows[4][N];
    for (int k = 0; k < 4; ++k)
        for (int i = 0; i < N; ++i) rows[k][i] = static_cast<float>(100 * k + i);
    auto a = load<N>(rows[0]);
    auto b = load<N>(rows[1]);
    auto c = load<N>(rows[2]);
    auto d = load<N>(rows[3]);
    transposeUnits(a, b, c, d);
    float columns[4][N];
    store(a, columns[0]);
    store(b, columns[1]);
    store(c, columns[2]);
    store(d, columns[3]);
    for (int k = 0; k < 4; ++k)
        for (int i = 0; i < N; ++i) EXPECT_EQ(rows[i % 4][i / 4 * 4 + k], columns[k][i]) << k << ", " << i;
}

} // namespace

TEST(LanesTranspose, RowsOfEachUnitBecomeItsColumns) {
    expectTransposedUnits<4>();
    if constexpr (vectorBytes >= 32) expectTransposedUnits<vectorBytes / 4>();
    if constexpr (vectorBytes == 64) expectTransposedUnits<8>();
}

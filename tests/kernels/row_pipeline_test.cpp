#include "kernels/filter/row_pipeline_float.h"
#include "kernels/filter/row_pipeline_pairs.h"

#include "filter/pipeline_members.h"

using lum::Rounding;
using namespace lum::kernels;
using namespace pipelines;

namespace {

template <class S, class R> void expectWeightedRowsAgree(int taps, int spacing, Rounding rounding) {
    std::mt19937 engine(taps);
    const auto kernel = randomKernel<R>(taps, engine);
    std::vector<Lum32f> weights;
    for (R k : kernel) weights.push_back(static_cast<float>(k) * (1.0F / 7));
    const Taps<Lum32f> all{weights.data(), taps, 1.0F};
    for (int count = 0; count <= 70; ++count) {
        const Guard guard = count % 2 == 0 ? Guard::after : Guard::before;
        GuardedImage<S> src(count + (taps - 1) * spacing, 1, {.offset = count % 5, .guard = guard});
        src.fillRandom(count);
        GuardedImage<R> expected(std::max(count, 1), 1, {.guard = guard});
        GuardedImage<R> actual(std::max(count, 1), 1, {.offset = count % 7, .guard = guard});
        weightedRowScalar(src.data(), spacing, expected.data(), count, all, rounding);
        weightedRow(src.data(), spacing, actual.data(), count, all, rounding);
        ASSERT_TRUE(sameBits(expected.pixels(), actual.pixels())) << "count " << count << " taps " << taps;
        ASSERT_TRUE(actual.outsideUntouched());
    }
}

template <class S, class R> void expectPairRowsAgree(int taps, int spacing, float scale) {
    std::mt19937 engine(taps);
    std::vector<R> kernel(taps);
    for (R& k : kernel)
        k = static_cast<R>(std::is_signed_v<R> ? static_cast<int>(engine() % 4001) - 2000 : engine() % 2000);
    const Taps<R> all{kernel.data(), taps, scale};
    for (int count = 0; count <= 72; count += 8) {
        const Guard guard = count % 16 == 0 ? Guard::after : Guard::before;
        GuardedImage<S> src(count + (taps - 1) * spacing, 1, {.offset = count % 5, .guard = guard});
        src.fillRandom(count);
        GuardedImage<R> expected(std::max(count, 1), 1, {.guard = guard});
        GuardedImage<R> actual(std::max(count, 1), 1, {.offset = count % 7, .guard = guard});
        pairRowScalar(src.data(), spacing, expected.data(), count, all);
        pairRow(src.data(), spacing, actual.data(), count, all);
        ASSERT_TRUE(sameBits(expected.pixels(), actual.pixels())) << "count " << count << " taps " << taps;
        ASSERT_TRUE(actual.outsideUntouched());
    }
}

} // namespace

TEST(RowPipelineKernels, ThreeTapsByHand) {
    const Lum16s src[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
    const Lum16s kernel[] = {1, -2, 3};
    const Taps<Lum16s> taps{kernel, 3, 0.25F};
    Lum16s dst[8];
    const Lum32f weights[] = {0.25F, -0.5F, 0.75F};
    weightedRow(src, 1, dst, 8, {weights, 3, 1.0F}, Rounding::nearestEven);
    EXPECT_EQ(2, dst[0]); // (1 - 4 + 9) / 4 = 1.5, to even
    EXPECT_EQ(2, dst[1]); // (2 - 6 + 12) / 4
    EXPECT_EQ(5, dst[7]); // (8 - 18 + 30) / 4
    pairRow(src, 1, dst, 8, taps);
    EXPECT_EQ(2, dst[0]);
    EXPECT_EQ(5, dst[7]);
}

TEST(RowPipelineKernels, VectorAgreesWithScalarInSinglePrecision) {
    for (int taps : {1, 2, 3, 5, 8, 65})
        for (int spacing : {1, 3})
            for (Rounding rounding : {Rounding::nearestEven, Rounding::truncated}) {
                expectWeightedRowsAgree<Lum8u, Lum16s>(taps, spacing, rounding);
                expectWeightedRowsAgree<Lum16s, Lum16s>(taps, spacing, rounding);
                expectWeightedRowsAgree<Lum16u, Lum16u>(taps, spacing, rounding);
                expectWeightedRowsAgree<Lum32f, Lum32f>(taps, spacing, rounding);
            }
}

TEST(RowPipelineKernels, VectorAgreesWithScalarInPairs) {
    for (int taps = 1; taps <= 9; ++taps)
        for (int spacing : {1, 3})
            for (float scale : {1.0F, 1.0F / 3, -1.0F / 4096}) {
                expectPairRowsAgree<Lum8u, Lum16s>(taps, spacing, scale);
                expectPairRowsAgree<Lum16s, Lum16s>(taps, spacing, scale);
                expectPairRowsAgree<Lum16u, Lum16u>(taps, spacing, scale);
            }
}

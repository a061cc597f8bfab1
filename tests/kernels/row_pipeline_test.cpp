#include "kernels/filter/row_pipeline_float.h"
#include "kernels/filter/row_pipeline_pairs.h"

#include "filter/pipeline_members.h"

using namespace lum::kernels;
using namespace pipelines;

namespace {

template <class S, class R> void expectSingleRowsAgree(int taps, int spacing, Rounding rounding) {
    std::mt19937 engine(taps);
    const auto kernel = randomKernel<R>(taps, engine);
    GuardedBlock lanes(16 * taps);
    spreadWeights(kernel.data(), taps, 1.0F / 7, lanes.as<float>());
    for (int count = 0; count <= 70; ++count) {
        const Guard guard = count % 2 == 0 ? Guard::after : Guard::before;
        GuardedImage<S> src(count + (taps - 1) * spacing, 1, {.offset = count % 5, .guard = guard});
        src.fillRandom(count);
        GuardedImage<R> expected(std::max(count, 1), 1, {.guard = guard});
        GuardedImage<R> actual(std::max(count, 1), 1, {.offset = count % 7, .guard = guard});
        const Weights weights{lanes.as<float>(), taps};
        weightedRowScalar(src.data(), spacing, expected.data(), count, weights, rounding);
        weightedRow(src.data(), spacing, actual.data(), count, weights, rounding);
        ASSERT_TRUE(sameBits(expected.pixels(), actual.pixels())) << "count " << count << " taps " << taps;
        ASSERT_TRUE(actual.outsideUntouched());
    }
}

template <class S, class R> void expectPairRowsAgree(int taps, int spacing, float scale) {
    std::mt19937 engine(taps);
    std::vector<Lum16s> kernel(taps);
    for (Lum16s& k : kernel)
        k = static_cast<Lum16s>(std::is_signed_v<R> ? static_cast<int>(engine() % 4001) - 2000
                                                    : engine() % 2000);
    GuardedBlock lanes(16 * pairVectors(taps));
    spreadPairs(kernel.data(), taps, lanes.as<Lum16s>());
    for (int count = 0; count <= 72; count += 8) {
        const Guard guard = count % 16 == 0 ? Guard::after : Guard::before;
        GuardedImage<S> src(count + (taps - 1) * spacing, 1, {.offset = count % 5, .guard = guard});
        src.fillRandom(count);
        GuardedImage<R> expected(std::max(count, 1), 1, {.guard = guard});
        GuardedImage<R> actual(std::max(count, 1), 1, {.offset = count % 7, .guard = guard});
        const PairWeights weights{lanes.as<Lum16s>(), taps};
        pairRowScalar(src.data(), spacing, expected.data(), count, weights, scale);
        pairRow(src.data(), spacing, actual.data(), count, weights, scale);
        ASSERT_TRUE(sameBits(expected.pixels(), actual.pixels())) << "count " << count << " taps " << taps;
        ASSERT_TRUE(actual.outsideUntouched());
    }
}

} // namespace

TEST(RowPipelineKernels, VectorAgreesWithScalarInSinglePrecision) {
    for (int taps : {1, 2, 3, 5, 8})
        for (int spacing : {1, 3})
            for (Rounding rounding : {Rounding::nearestEven, Rounding::truncated}) {
                expectSingleRowsAgree<Lum8u, Lum16s>(taps, spacing, rounding);
                expectSingleRowsAgree<Lum16s, Lum16s>(taps, spacing, rounding);
                expectSingleRowsAgree<Lum16u, Lum16u>(taps, spacing, rounding);
                expectSingleRowsAgree<Lum32f, Lum32f>(taps, spacing, rounding);
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

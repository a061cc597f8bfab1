// Each kernel in its vector form against its scalar form: all widths, all alignments, memory that ends at an unreadable
// page, every byte.
#include <cmath>
#include <deque>
#include <functional>
#include <random>

#include "kernels/pyramid/double.h"
#include "kernels/pyramid/double_8u.h"
#include "kernels/pyramid/halve.h"
#include "kernels/pyramid/halve_float.h"
#include "kernels/pyramid/interpolate.h"
#include "kernels/pyramid/split.h"
#include "kernels/pyramid/weighted_rows.h"
#include "kernels/to_floats.h"
#include "support/guarded_image.h"
#include "support/member_test.h"

using namespace support;
using namespace lum;

namespace {

std::vector<int> counts() {
    std::vector<int> all{96, 97, 127, 128, 129, 160, 191, 255, 256, 257, 400};
    for (int count = 1; count <= 70; ++count) all.push_back(count);
    return all;
}

/// A row of `count` elements between `before` and `after` more, all of which may be read and nothing else, filled from
/// the engine.
template <class T> class Source {
  public:
    Source(std::mt19937& engine, int count, int before = 0, int after = 0)
        : image_(count + before + after, 1,
                 {.offset = static_cast<int>(engine() % 33),
                  .guard = engine() % 2 == 0 ? Guard::after : Guard::before}),
          before_(before) {
        image_.fillRandom(engine());
    }
    /// Each element at most `largest`.
    void limit(unsigned largest) {
        for (int i = 0; i < image_.elements(); ++i)
            image_.row(0)[i] = static_cast<T>(image_.row(0)[i] % (largest + 1));
    }
    const T* data() const { return image_.row(0) + before_; }

  private:
    GuardedImage<T> image_;
    int before_;
};

/// Two results of the same length, of the two forms; nothing outside of them may be written.
template <class T> class Results {
  public:
    Results(std::mt19937& engine, int count)
        : scalar_(count, 1),
          vector_(count, 1,
                  {.offset = static_cast<int>(engine() % 33),
                   .guard = engine() % 2 == 0 ? Guard::after : Guard::before}) {}
    T* scalar() { return scalar_.data(); }
    T* vector() { return vector_.data(); }
    void expectSame() const {
        EXPECT_TRUE(vector_.outsideUntouched());
        EXPECT_TRUE(scalar_.outsideUntouched());
        ASSERT_TRUE(sameBits(scalar_.pixels(), vector_.pixels()));
    }

  private:
    GuardedImage<T> scalar_;
    GuardedImage<T> vector_;
};

using Elements = testing::Types<Lum8u, Lum16u, Lum32f>;
MEMBER_TEST_SUITE(PyramidKernels, Elements);

/// Runs the test for each count with its own seed.
void forEachCount(const std::function<void(int, std::mt19937&)>& test) {
    const unsigned seed = std::random_device{}();
    for (int count : counts()) {
        SCOPED_TRACE(testing::Message() << "seed " << seed << ", count " << count);
        std::mt19937 engine(seed + static_cast<unsigned>(count));
        test(count, engine);
        if (testing::Test::HasFatalFailure()) return;
    }
}

} // namespace

MEMBER_TEST(PyramidKernels, WeightedRows) {
    using T = TypeParam;
    forEachCount([](int count, std::mt19937& engine) {
        for (int radius : {1, 2, 3, 7}) {
            std::deque<Source<float>> sources;
            std::vector<const float*> rows;
            for (int k = 0; k <= 2 * radius; ++k) sources.emplace_back(engine, count);
            for (const auto& source : sources) rows.push_back(source.data());
            std::vector<float> weights(radius + 1);
            for (float& weight : weights)
                weight = static_cast<float>(static_cast<int>(engine() % 2001) - 500) / 4096;
            if (engine() % 4 == 0) weights[0] = 1e9F; // beyond 32 bits in both directions
            Results<T> results(engine, count);
            kernels::weightedRowsScalar<T>(rows.data(), weights.data(), radius, count, results.scalar());
            kernels::weightedRows<T>(rows.data(), weights.data(), radius, count, results.vector());
            ASSERT_NO_FATAL_FAILURE(results.expectSame());
        }
    });
}

MEMBER_TEST(PyramidKernels, BlendedAndStoredRows) {
    using T = TypeParam;
    forEachCount([](int count, std::mt19937& engine) {
        const Source<float> first(engine, count);
        const Source<float> second(engine, count);
        const float fraction = static_cast<float>(engine() % 1000) / 1000;
        Results<T> blended(engine, count);
        kernels::blendRowsScalar<T>(first.data(), second.data(), fraction, count, blended.scalar());
        kernels::blendRows<T>(first.data(), second.data(), fraction, count, blended.vector());
        ASSERT_NO_FATAL_FAILURE(blended.expectSame());
        Results<T> stored(engine, count);
        kernels::storeRowScalar<T>(first.data(), count, stored.scalar());
        kernels::storeRow<T>(first.data(), count, stored.vector());
        ASSERT_NO_FATAL_FAILURE(stored.expectSame());
    });
}

MEMBER_TEST(PyramidKernels, FloatsOfElements) {
    using T = TypeParam;
    forEachCount([](int count, std::mt19937& engine) {
        const Source<T> source(engine, count);
        Results<float> results(engine, count);
        kernels::toFloatsScalar<T>(source.data(), count, results.scalar());
        kernels::toFloats<T>(source.data(), count, results.vector());
        ASSERT_NO_FATAL_FAILURE(results.expectSame());
    });
}

namespace {

template <class T, int channels> void expectSameSplit(int pixels, std::mt19937& engine) {
    const Source<T> source(engine, pixels * channels);
    Results<float> even(engine, (pixels + 1) / 2 * channels);
    Results<float> odd(engine, std::max(pixels / 2, 1) * channels);
    kernels::splitPixelsScalar<T, channels>(source.data(), pixels, even.scalar(), odd.scalar());
    kernels::splitPixels<T, channels>(source.data(), pixels, even.vector(), odd.vector());
    ASSERT_NO_FATAL_FAILURE(even.expectSame());
    ASSERT_NO_FATAL_FAILURE(odd.expectSame());
}

template <class T, int channels> void expectSameHalves(int pixels, std::mt19937& engine) {
    const Source<T> source(engine, pixels * channels, 0, channels);
    Results<float> results(engine, 2 * pixels * channels);
    kernels::interpolateHalvesScalar<T, channels>(source.data(), pixels, results.scalar());
    kernels::interpolateHalves<T, channels>(source.data(), pixels, results.vector());
    ASSERT_NO_FATAL_FAILURE(results.expectSame());
}

template <class T, int channels> void expectSameDoubledRow(int pixels, std::mt19937& engine) {
    const Source<T> source(engine, pixels * channels, channels, channels);
    Results<float> results(engine, 2 * pixels * channels);
    kernels::doubleRowScalar<T, channels>(source.data(), pixels, results.scalar());
    kernels::doubleRow<T, channels>(source.data(), pixels, results.vector());
    ASSERT_NO_FATAL_FAILURE(results.expectSame());
}

} // namespace

namespace {

template <class T, int channels> void expectSameFiveTaps(int pixels, std::mt19937& engine) {
    const Source<T> source(engine, (2 * pixels - 1) * channels, 2 * channels, 2 * channels);
    const float weights[] = {0.0625F, -0.3F, 0.9F};
    Results<float> results(engine, pixels * channels);
    kernels::halveFiveScalar<T, channels>(source.data(), weights, pixels, results.scalar());
    kernels::halveFive<T, channels>(source.data(), weights, pixels, results.vector());
    ASSERT_NO_FATAL_FAILURE(results.expectSame());
}

} // namespace

MEMBER_TEST(PyramidKernels, FiveTapsAtEverySecondPixel) {
    forEachCount([](int pixels, std::mt19937& engine) {
        ASSERT_NO_FATAL_FAILURE((expectSameFiveTaps<TypeParam, 1>(pixels, engine)));
        ASSERT_NO_FATAL_FAILURE((expectSameFiveTaps<TypeParam, 3>(pixels, engine)));
    });
}

MEMBER_TEST(PyramidKernels, EvenAndOddPixels) {
    forEachCount([](int pixels, std::mt19937& engine) {
        ASSERT_NO_FATAL_FAILURE((expectSameSplit<TypeParam, 1>(pixels, engine)));
        ASSERT_NO_FATAL_FAILURE((expectSameSplit<TypeParam, 3>(pixels, engine)));
    });
}

MEMBER_TEST(PyramidKernels, PixelsAndHalfWayBetweenThem) {
    forEachCount([](int pixels, std::mt19937& engine) {
        ASSERT_NO_FATAL_FAILURE((expectSameHalves<TypeParam, 1>(pixels, engine)));
        ASSERT_NO_FATAL_FAILURE((expectSameHalves<TypeParam, 3>(pixels, engine)));
    });
}

MEMBER_TEST(PyramidKernels, DoubledRows) {
    using T = TypeParam;
    if constexpr (sizeof(T) > 1)
        forEachCount([](int count, std::mt19937& engine) {
            ASSERT_NO_FATAL_FAILURE((expectSameDoubledRow<T, 1>(count, engine)));
            ASSERT_NO_FATAL_FAILURE((expectSameDoubledRow<T, 3>(count, engine)));
            const Source<float> above(engine, count);
            const Source<float> row(engine, count);
            const Source<float> below(engine, count);
            for (const kernels::DoubledRows& rows :
                 {kernels::DoubledRows{above.data(), row.data(), below.data()},
                  kernels::DoubledRows{below.data(), row.data(), below.data()}}) {
                Results<T> even(engine, count);
                kernels::doubleEvenRowScalar<T>(rows, count, even.scalar());
                kernels::doubleEvenRow<T>(rows, count, even.vector(), even.scalar());
                ASSERT_NO_FATAL_FAILURE(even.expectSame());
                Results<T> odd(engine, count);
                kernels::doubleOddRowScalar<T>(rows, count, odd.scalar());
                kernels::doubleOddRow<T>(rows, count, odd.vector(), odd.scalar());
                ASSERT_NO_FATAL_FAILURE(odd.expectSame());
            }
        });
    else
        forEachCount([](int count, std::mt19937& engine) {
            const Source<Lum8u> above(engine, count);
            const Source<Lum8u> row(engine, count);
            const Source<Lum8u> below(engine, count);
            Results<Lum16u> even(engine, count);
            Results<Lum16u> odd(engine, count);
            kernels::doubleColumn8uScalar(above.data(), row.data(), below.data(), count, even.scalar(),
                                          odd.scalar());
            kernels::doubleColumn8u(above.data(), row.data(), below.data(), count, even.vector(),
                                    odd.vector());
            ASSERT_NO_FATAL_FAILURE(even.expectSame());
            ASSERT_NO_FATAL_FAILURE(odd.expectSame());
        });
}

namespace {

template <int channels> void expectSameBytes(int pixels, std::mt19937& engine) {
    Source<Lum16u> words(engine, pixels * channels, channels, channels);
    words.limit(8 * 255);
    Results<Lum8u> doubled(engine, 2 * pixels * channels);
    kernels::doubleRow8uScalar<channels>(words.data(), pixels, doubled.scalar());
    kernels::doubleRow8u<channels>(words.data(), pixels, doubled.vector());
    ASSERT_NO_FATAL_FAILURE(doubled.expectSame());

    const Source<Lum8u> bytes(engine, (2 * pixels - 1) * channels, 2 * channels, 2 * channels);
    Results<Lum16u> halved(engine, pixels * channels);
    kernels::halveRowScalar<channels>(bytes.data(), pixels, halved.scalar());
    kernels::halveRow<channels>(bytes.data(), pixels, halved.vector());
    ASSERT_NO_FATAL_FAILURE(halved.expectSame());
}

} // namespace

TEST(PyramidKernels8u, RowsOfBothDirections) {
    forEachCount([](int pixels, std::mt19937& engine) {
        ASSERT_NO_FATAL_FAILURE(expectSameBytes<1>(pixels, engine));
        ASSERT_NO_FATAL_FAILURE(expectSameBytes<3>(pixels, engine));
    });
}

TEST(PyramidKernels8u, HalvedColumns) {
    forEachCount([](int count, std::mt19937& engine) {
        std::deque<Source<Lum16u>> sources;
        std::vector<const Lum16u*> rows;
        for (int k = 0; k < 5; ++k)
            sources.emplace_back(engine, count).limit(engine() % 2 == 0 ? 16 * 255 : 20);
        for (const auto& source : sources) rows.push_back(source.data());
        Results<Lum8u> results(engine, count);
        kernels::halveColumnScalar(rows.data(), count, results.scalar());
        kernels::halveColumn(rows.data(), count, results.vector());
        ASSERT_NO_FATAL_FAILURE(results.expectSame());
    });
}

TEST(PyramidKernels8u, EveryColumnSumRoundsToEven) {
    // All sums from 0 to 255 * 256, made of the middle row's sixes and the outer row.
    for (int base = 0; base <= 65280; base += 256) {
        Lum16u rows[5][256] = {};
        for (int i = 0; i < 256 && base + i <= 65280; ++i) {
            int sum = base + i;
            const auto take = [&](int weight) {
                const int value = std::min(sum / weight, 16 * 255);
                sum -= value * weight;
                return static_cast<Lum16u>(value);
            };
            rows[2][i] = take(6);
            rows[1][i] = take(4);
            rows[3][i] = take(4);
            rows[0][i] = take(1);
            rows[4][i] = take(1);
            ASSERT_EQ(0, sum);
        }
        const Lum16u* const pointers[] = {rows[0], rows[1], rows[2], rows[3], rows[4]};
        Lum8u results[256];
        kernels::halveColumn(pointers, 256, results);
        for (int i = 0; i < 256 && base + i <= 65280; ++i)
            ASSERT_EQ(static_cast<int>(std::nearbyint((base + i) / 256.0)), results[i]) << base + i;
    }
}

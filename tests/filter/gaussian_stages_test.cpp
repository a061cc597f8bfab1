#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "kernels/filter/gaussian.h"
#include "kernels/to_floats.h"
#include "support/guarded_image.h"
#include "support/member_test.h"

using namespace lum;
using namespace lum::kernels;
using namespace support;

namespace {

using Elements = testing::Types<Lum8u, Lum16u, Lum16s, Lum32f>;
MEMBER_TEST_SUITE(GaussianStages, Elements);

std::ptrdiff_t wholeBlocks(std::ptrdiff_t count) {
    return (count + gaussianBlock - 1) / gaussianBlock * gaussianBlock;
}

/// Aligned floats with an unreadable page after the last.
class Floats {
  public:
    explicit Floats(std::ptrdiff_t count) : block_(count * sizeof(float)) {}
    float* data() { return block_.as<float>(); }

  private:
    GuardedBlock block_;
};

std::vector<float> randomWeights(int radius, std::mt19937& engine) {
    std::vector<float> weights;
    for (int i = 0; i <= radius; ++i) weights.push_back(static_cast<float>(engine() % 1000) / 4000);
    return weights;
}

void fillRandom(float* values, std::ptrdiff_t count, std::mt19937& engine) {
    for (std::ptrdiff_t i = 0; i < count; ++i)
        values[i] = static_cast<float>(static_cast<int>(engine() % 200001) - 100000) / 7;
}

/// A ring of aligned slots, each row of it read in whole blocks.
struct Ring {
    int radius;
    std::ptrdiff_t slotLength;
    Floats slots;

    Ring(int ringRadius, std::ptrdiff_t count)
        : radius(ringRadius),
          slotLength(wholeBlocks(count)),
          slots((2 * ringRadius + 1) * wholeBlocks(count)) {}
    GaussianRing with(int top) { return {slots.data(), slotLength, radius, top}; }
    std::ptrdiff_t length() const { return (2 * radius + 1) * slotLength; }
};

/// The stage in vectors; the rows that it asks for are of no consequence.
template <class T>
void columnStage(int radius, Stores stores, Looks looks, const GaussianRing& ring, std::ptrdiff_t count,
                 const float* weights, T* dst) {
    gaussianColumn<T>(radius, weights, stores, looks)(ring, count, weights, dst, {dst, dst});
}

} // namespace

TEST(GaussianRowStage, PairsAreAddedInwardAndTheCentreLast) {
    // 2^24 swallows a 1 that is added to it alone, so each order of the sum has a result of its own.
    const float big = 16777216.0F;
    const float weights[] = {1, 1, 1};
    auto centreOf = [&](std::vector<float> window) {
        std::vector<float> src(gaussianBlock + 4);
        std::copy(window.begin(), window.end(), src.begin());
        alignas(64) float out[gaussianBlock];
        gaussianRow<Lum32f>(2, 1)(src.data() + 2, 1, weights, 2, out);
        return out[0];
    };
    EXPECT_EQ(big, centreOf({big, 1, 0, 0, 0}));
    EXPECT_EQ(0.0F, centreOf({big, 1, -big, 0, 0}));
    EXPECT_EQ(1.0F, centreOf({big, 1, 0, 0, -big}));
    EXPECT_EQ(big + 2, centreOf({1, 1, big, 0, 0}));
    EXPECT_EQ(big, centreOf({1, big, 0, 0, 0}));
    EXPECT_EQ(1.0F, centreOf({1, big, 0, -big, 0}));
}

TEST(GaussianColumnStage, PairsAreAddedInwardAndTheMiddleLast) {
    const float big = 16777216.0F;
    for (int radius : {2, 4}) {
        const std::vector<float> weights(radius + 1, 1.0F);
        auto middleOf = [&](std::vector<float> outerRows, float middle) {
            Ring ring(radius, 1);
            std::fill(ring.slots.data(), ring.slots.data() + ring.length(), 0.0F);
            for (std::size_t j = 0; j < outerRows.size(); ++j)
                ring.slots.data()[static_cast<std::ptrdiff_t>(j) * ring.slotLength] = outerRows[j];
            ring.slots.data()[radius * ring.slotLength] = middle;
            float result = 0;
            columnStage(radius, Stores::ordinary, Looks::here, ring.with(0), 1, weights.data(), &result);
            return result;
        };
        EXPECT_EQ(big, middleOf({big, 1}, 0));
        EXPECT_EQ(0.0F, middleOf({big, 1}, -big));
        EXPECT_EQ(big + 2, middleOf({1, 1}, big));
    }
}

MEMBER_TEST(GaussianStages, FloatsOfEveryLengthAndAlignment) {
    for (int count = 0; count <= 70; ++count)
        for (int offset : {0, 1, 2, 3, 7, 15}) {
            GuardedImage<TypeParam> src(count + 1, 1, {.offset = offset});
            src.fillRandom(count);
            const TypeParam* elements = src.data() + 1;
            GuardedImage<Lum32f> expected(count + 1, 1);
            GuardedImage<Lum32f> actual(count + 1, 1);
            toFloatsScalar(elements, count, expected.data());
            toFloats(elements, count, actual.data());
            ASSERT_TRUE(sameBits(expected.pixels(), actual.pixels())) << count << " elements";
            for (int i = 0; i < count; ++i) ASSERT_EQ(static_cast<float>(elements[i]), actual.data()[i]);
            ASSERT_TRUE(actual.outsideUntouched());
        }
}

MEMBER_TEST(GaussianStages, FloatsAreExactAtTheEndsOfTheRange) {
    using Limits = std::numeric_limits<TypeParam>;
    std::vector<TypeParam> src;
    for (int i = 0; i < 37; ++i) src.push_back(i % 2 ? Limits::lowest() : Limits::max());
    std::vector<float> floats(src.size());
    toFloats(src.data(), static_cast<std::ptrdiff_t>(src.size()), floats.data());
    for (std::size_t i = 0; i < src.size(); ++i) EXPECT_EQ(static_cast<float>(src[i]), floats[i]);
}

namespace {

void fillRandom(Lum8u* values, std::ptrdiff_t count, std::mt19937& engine) {
    for (std::ptrdiff_t i = 0; i < count; ++i) values[i] = static_cast<Lum8u>(engine());
}

/// `fill` fills the rows to be filtered.
template <class S, class Fill> void expectRowsAgree(unsigned seed, Fill fill) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 engine(seed);
    for (int channels : {1, 3})
        for (int radius : {1, 2, 3, 4, 5, 7, 15})
            for (int count = channels; count <= 150 * channels; count += channels) {
                const auto weights = randomWeights(radius, engine);
                const int reach = radius * channels;
                const std::ptrdiff_t whole = wholeBlocks(count);
                GuardedBlock block((whole + 2 * reach) * sizeof(S));
                S* src = block.as<S>();
                fill(src, whole + 2 * reach, engine);
                Floats out(whole);
                std::vector<float> expected(count);
                gaussianRowScalar(src + reach, count, channels, weights.data(), radius, expected.data());
                gaussianRow<S>(radius, channels)(src + reach, count, weights.data(), radius, out.data());
                ASSERT_TRUE(sameBits(expected, std::vector<float>(out.data(), out.data() + count)))
                    << 2 * radius + 1 << " taps, " << count << " elements of " << channels << " channels";
            }
}

} // namespace

TEST(GaussianRowStage, VectorAgreesWithScalar) {
    expectRowsAgree<Lum32f>(
        20, [](float* values, std::ptrdiff_t count, auto& engine) { fillRandom(values, count, engine); });
}

TEST(GaussianRowStage, VectorOfBytesAgreesWithScalar) {
    expectRowsAgree<Lum8u>(
        23, [](Lum8u* values, std::ptrdiff_t count, auto& engine) { fillRandom(values, count, engine); });
}

TEST(GaussianRowStage, BytesGiveTheSumsOfTheirFloats) {
    constexpr int count = 200;
    constexpr int radius = 2;
    std::mt19937 engine(24);
    // Weights of which products are denormal, vanish or round in their last bit.
    for (const std::vector<float>& weights : std::vector<std::vector<float>>{
             {0.1F, 0.2F, 0.4F}, {1e-40F, 1e-38F, 1.0F}, {1.4e-45F, 0.0F, 0.99999994F}, {0, 0, 1}}) {
        std::vector<Lum8u> bytes(wholeBlocks(count) + 2 * radius);
        fillRandom(bytes.data(), static_cast<std::ptrdiff_t>(bytes.size()), engine);
        std::fill(bytes.begin() + 40, bytes.begin() + 60, Lum8u{0});
        std::fill(bytes.begin() + 60, bytes.begin() + 80, Lum8u{255});
        const std::vector<float> floats(bytes.begin(), bytes.end());
        Floats ofBytes(wholeBlocks(count));
        Floats ofFloats(wholeBlocks(count));
        gaussianRow<Lum8u>(radius, 1)(bytes.data() + radius, count, weights.data(), radius, ofBytes.data());
        gaussianRow<Lum32f>(radius, 1)(floats.data() + radius, count, weights.data(), radius,
                                       ofFloats.data());
        for (int i = 0; i < count; ++i) {
            const float sum = ofBytes.data()[gaussianPlace<Lum8u>(i, count)];
            ASSERT_EQ(0, std::memcmp(&sum, &ofFloats.data()[i], sizeof sum)) << "element " << i;
        }
    }
}

TEST(GaussianPlaces, EveryElementHasItsOwnAmongThoseOfItsVector) {
    for (std::ptrdiff_t count : {1, 16, 63, 64, 65, 200}) {
        std::vector<int> taken(count);
        for (std::ptrdiff_t i = 0; i < count; ++i) {
            const std::ptrdiff_t place = gaussianPlace<Lum8u>(i, count);
            ASSERT_TRUE(place >= 0 && place < count);
            EXPECT_EQ(i / vectorBytes, place / vectorBytes);
            ++taken[place];
            EXPECT_EQ(i, gaussianPlace<Lum16u>(i, count));
        }
        EXPECT_EQ(std::vector<int>(count, 1), taken);
    }
}

MEMBER_TEST(GaussianStages, ColumnVectorAgreesWithScalarFromEveryTop) {
    constexpr unsigned seed = 21;
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 engine(seed);
    for (int radius : {1, 2, 3, 4, 5, 7})
        for (int count = 1; count <= 150; count += radius > 3 || count > 70 ? 9 : 1) {
            const auto weights = randomWeights(radius, engine);
            Ring ring(radius, count);
            fillRandom(ring.slots.data(), ring.length(), engine);
            for (int top = 0; top <= 2 * radius; ++top) {
                std::vector<TypeParam> expected(count);
                gaussianColumnScalar(ring.with(top), count, weights.data(), expected.data());
                for (Stores stores : {Stores::ordinary, Stores::streaming})
                    for (Looks looks : {Looks::here, Looks::ahead}) {
                        GuardedImage<TypeParam> dst(count, 1, {.guard = Guard::before});
                        columnStage(radius, stores, looks, ring.with(top), count, weights.data(), dst.data());
                        ASSERT_TRUE(sameBits(expected, dst.pixels()))
                            << 2 * radius + 1 << " taps, " << count << " elements, top " << top;
                        ASSERT_TRUE(dst.outsideUntouched());
                    }
            }
        }
}

MEMBER_TEST(GaussianStages, ColumnStoresAtAnyAlignment) {
    constexpr int count = 117;
    std::mt19937 engine(22);
    const auto weights = randomWeights(2, engine);
    Ring ring(2, count);
    fillRandom(ring.slots.data(), ring.length(), engine);
    std::vector<TypeParam> expected(count);
    gaussianColumnScalar(ring.with(3), count, weights.data(), expected.data());
    for (int offset = 0; offset < 16; ++offset)
        for (Guard guard : {Guard::before, Guard::after}) {
            GuardedImage<TypeParam> dst(count, 1, {.offset = offset, .guard = guard});
            columnStage(2, Stores::ordinary, Looks::here, ring.with(3), count, weights.data(), dst.data());
            ASSERT_TRUE(sameBits(expected, dst.pixels())) << "offset " << offset;
            ASSERT_TRUE(dst.outsideUntouched());
        }
}

MEMBER_TEST(GaussianStages, ColumnSaturatesByValueAndRoundsToEven) {
    // The middle row alone, with weight 1: sums are its values.
    const float infinity = std::numeric_limits<float>::infinity();
    const std::vector<float> values{
        0.5F,      1.5F,        2.5F,      254.5F,
        255.5F,    256.0F,      -0.5F,     -1.5F,
        -0.0F,     32766.5F,    32767.5F,  32768.0F,
        65534.5F,  65535.5F,    -32767.5F, -32768.5F,
        -32769.0F, 1e6F,        -1e6F,     3e9F,
        -3e9F,     1e20F,       -1e20F,    infinity,
        -infinity, 0.49999997F, 100.0F,    std::numeric_limits<float>::quiet_NaN()};
    const int count = static_cast<int>(values.size());
    const float weights[] = {0, 1};
    Ring ring(1, count);
    std::fill(ring.slots.data(), ring.slots.data() + ring.length(), 0.0F);
    for (int i = 0; i < count; ++i)
        ring.slots.data()[ring.slotLength + gaussianPlace<TypeParam>(i, count)] = values[i];
    std::vector<TypeParam> scalar(count);
    std::vector<TypeParam> vector(count);
    gaussianColumnScalar(ring.with(0), count, weights, scalar.data());
    // Chosen for weights that give such sums of bytes.
    const float large[] = {1e9F, 1e9F};
    gaussianColumn<TypeParam>(1, large, Stores::ordinary, Looks::here)(
        ring.with(0), count, weights, vector.data(), {vector.data(), vector.data()});
    for (int i = 0; i < count; ++i) {
        if constexpr (std::is_integral_v<TypeParam>) {
            const double lowest = std::numeric_limits<TypeParam>::min();
            const double highest = std::numeric_limits<TypeParam>::max();
            const double value = values[i];
            const double clamped = value >= highest || value != value ? highest : std::max(value, lowest);
            EXPECT_EQ(static_cast<TypeParam>(std::nearbyint(clamped)), vector[i]) << value;
        } else {
            EXPECT_EQ(0, std::memcmp(&vector[i], &scalar[i], sizeof(float))) << values[i];
        }
        EXPECT_EQ(0, std::memcmp(&vector[i], &scalar[i], sizeof(TypeParam))) << values[i];
    }
}

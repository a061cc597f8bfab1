#include "kernels/filter/separable.h"
#include "kernels/to_floats.h"

#include <bit>
#include <cstring>
#include <memory>
#include <random>
#include <span>
#include <vector>

#include "support/guarded_image.h"

using namespace lum::kernels;
using namespace support;

namespace {

template <class K> std::vector<K> someKernel(int taps, int magnitude) {
    std::mt19937 engine(taps);
    std::vector<K> kernel(taps);
    for (K& k : kernel) k = static_cast<K>(static_cast<int>(engine() % (2 * magnitude + 1)) - magnitude);
    return kernel;
}

/// Floats that end at an unreadable page.
struct Floats {
    GuardedImage<float> image;
    explicit Floats(int count, unsigned seed = 1) : image(count, 1) { image.fillRandom(seed); }
    float* data() { return image.data(); }
};

template <class K> void expectRowsAgree(int width, int taps, int channels) {
    const auto kernel = someKernel<K>(taps, 50);
    const Taps<K> t{kernel.data(), taps, std::is_same_v<K, float> ? 1.0F : 0.3F};
    Floats extended(width + (taps - 1) * channels);
    Floats scalar(width);
    Floats vector(width);
    separableRowScalar(extended.data(), t, channels, scalar.data(), width);
    separableRow(extended.data(), t, channels, vector.data(), width);
    ASSERT_TRUE(sameBits(scalar.image.pixels(), vector.image.pixels())) << width << " " << taps;
    // in place
    separableRow(extended.data(), t, channels, extended.data(), width);
    ASSERT_EQ(0, std::memcmp(scalar.data(), extended.data(), width * sizeof(float))) << width << " " << taps;
}

template <class T> void expectExactRowsAgree(int width, int taps, int channels, int magnitude) {
    const auto kernel = someKernel<Lum16s>(taps, magnitude);
    const Taps<Lum16s> t{kernel.data(), taps, 0.3F};
    ASSERT_TRUE(rowSumsAreExact<T>(t));
    const int length = width + (taps - 1) * channels;
    GuardedImage<T> extended(length, 1);
    extended.fillRandom(width);
    Floats floats(length);
    Floats scalar(width);
    toFloatsScalar(extended.data(), length, floats.data());
    separableRowScalar(floats.data(), t, channels, scalar.data(), width);
    for (float& value : std::span(scalar.data(), width)) value += 0.0F; // integers have no negative zero
    // in the memory of the result, at its end
    Floats result(length);
    T* atEnd = reinterpret_cast<T*>(result.data() + length) - length;
    std::memcpy(atEnd, extended.data(), length * sizeof(T));
    separableRowExact(atEnd, t, channels, result.data(), width);
    ASSERT_EQ(0, std::memcmp(scalar.data(), result.data(), width * sizeof(float))) << width << " " << taps;
}

template <class K, class D> void expectColumnsAgree(int width, int taps, int magnitude) {
    const auto kernel = someKernel<K>(taps, magnitude);
    const Taps<K> t{kernel.data(), taps, std::is_same_v<K, float> ? 1.0F : 0.013F};
    std::vector<std::unique_ptr<Floats>> rows;
    std::vector<const float*> pointers;
    for (int k = 0; k < taps; ++k) {
        rows.push_back(std::make_unique<Floats>(width, k + 1));
        pointers.push_back(rows.back()->data());
    }
    GuardedImage<D> scalar(width, 1);
    GuardedImage<D> vector(width, 1);
    separableColumnScalar(pointers.data(), t, scalar.data(), width);
    separableColumn(pointers.data(), t, vector.data(), width);
    ASSERT_TRUE(sameBits(scalar.pixels(), vector.pixels())) << width << " " << taps;
    if constexpr (std::is_same_v<D, Lum32f>) {
        GuardedImage<D> ahead(width, 1);
        separableColumnAhead(pointers.data(), t, ahead.data(), width, {rows[0]->data(), vector.data()});
        ASSERT_TRUE(sameBits(scalar.pixels(), ahead.pixels())) << width << " " << taps;
    }
}

/// Three, five, up to 64 taps, and more.
constexpr int tapCounts[] = {1, 2, 3, 4, 5, 6, 11, 64, 65};

} // namespace

TEST(SeparableKernels, WeightedSumsAlongARowAndDownColumns) {
    const float row[] = {1, 2, 3, 4, 5};
    const Lum16s kernel[] = {1, 0, -2};
    const Taps<Lum16s> taps{kernel, 3, 0.5F};
    float sums[3];
    separableRow(row, taps, 1, sums, 3);
    EXPECT_EQ(-2.5F, sums[0]); // (1 x 1 + 2 x 0 - 3 x 2) x 0.5
    EXPECT_EQ(-3.0F, sums[1]);
    EXPECT_EQ(-3.5F, sums[2]);
    const float low[] = {9, 900};
    const float high[] = {2, 1};
    const float* const rows[] = {low, high, high};
    Lum8u results[2];
    separableColumn(rows, taps, results, 2);
    EXPECT_EQ(2, results[0]); // 5 x 0.5, truncated
    EXPECT_EQ(255, results[1]);
}

TEST(SeparableKernels, RowsAgreeWithScalarAlsoInPlace) {
    for (int width = 1; width <= 70; ++width)
        for (int taps : tapCounts)
            for (int channels : {1, 3, 4}) {
                expectRowsAgree<Lum16s>(width, taps, channels);
                expectRowsAgree<Lum32f>(width, taps, channels);
            }
}

TEST(SeparableKernels, ExactRowsAgreeWithFloatsAlsoInPlace) {
    for (int width = 1; width <= 70; ++width)
        for (int taps : tapCounts)
            for (int channels : {1, 3, 4}) {
                expectExactRowsAgree<Lum8u>(width, taps, channels, taps > 11 ? 2 : 10);
                expectExactRowsAgree<Lum8u>(width, taps, channels, taps > 11 ? 900 : 1900);
                expectExactRowsAgree<Lum16s>(width, taps, channels, taps > 11 ? 7 : 15);
            }
}

TEST(SeparableKernels, ColumnsAgreeWithScalar) {
    for (int width = 1; width <= 70; ++width)
        for (int taps : tapCounts)
            for (int magnitude : {2, 300}) {
                expectColumnsAgree<Lum16s, Lum8u>(width, taps, magnitude);
                expectColumnsAgree<Lum16s, Lum16s>(width, taps, magnitude);
                expectColumnsAgree<Lum32f, Lum16u>(width, taps, magnitude);
                expectColumnsAgree<Lum32f, Lum32f>(width, taps, magnitude);
            }
}

TEST(SeparableKernels, SumsAreExactUpToTheLargestKernels) {
    const auto exact = [](auto element, std::vector<Lum16s> kernel) {
        return rowSumsAreExact<decltype(element)>({kernel.data(), static_cast<int>(kernel.size()), 1.0F});
    };
    // 255 x 65793 is the last multiple of 255 below 2^24; 32768 x 512 is 2^24
    EXPECT_TRUE(exact(Lum8u{}, {32767, -32768, 258}));
    EXPECT_FALSE(exact(Lum8u{}, {32767, -32768, 259}));
    EXPECT_TRUE(exact(Lum16s{}, {500, -12}));
    EXPECT_FALSE(exact(Lum16s{}, {500, -13}));
}

TEST(SeparableKernels, ExtremeSumsOfBytesAndWords) {
    for (const std::vector<Lum16s>& kernel : {std::vector<Lum16s>{127},
                                              {-127},
                                              {127, 0},
                                              {64, 63},
                                              {-64, -63},
                                              {128},
                                              {-128},
                                              {128, 0, 0},
                                              {100, -28},
                                              {32767, 32767, 1},
                                              {-32768, -32768, -257}}) {
        const int taps = static_cast<int>(kernel.size());
        const Taps<Lum16s> t{kernel.data(), taps, 1.0F};
        ASSERT_TRUE(rowSumsAreExact<Lum8u>(t));
        std::vector<Lum8u> white(40 + taps, 255);
        std::vector<float> result(40);
        separableRowExact(white.data(), t, 1, result.data(), 40);
        int sum = 0;
        for (int k : kernel) sum += 255 * k;
        for (float value : result) ASSERT_EQ(static_cast<float>(sum), value);
    }
}

#include "frame/lanes_words_times.h"

#include <cstring>
#include <numeric>
#include <vector>

#include <gtest/gtest.h>

#include "frame/lanes_aligned.h"

using namespace lum;

namespace {

constexpr int n = vectorBytes / 2;

/// The products of n words as they lie in memory: those of each unit's low half, then those of its high half.
std::vector<float> productsInOrder(const Lum16u* words, float factor) {
    const auto halves = WordFactor(factor).times(load<n>(words));
    float low[n / 2];
    float high[n / 2];
    store(halves.low, low);
    store(halves.high, high);
    std::vector<float> products;
    for (int unit = 0; unit < n / 2; unit += 4) {
        products.insert(products.end(), low + unit, low + unit + 4);
        products.insert(products.end(), high + unit, high + unit + 4);
    }
    return products;
}

} // namespace

TEST(WordFactor, ProductOfEveryWordRoundsOnce) {
    for (float factor : {0.1F, 1.0F, 0.33333334F, 0.99999994F, 3e-39F, 1.4e-45F, 0.0F})
        for (int first = 0; first < 65536; first += n) {
            Lum16u words[n];
            std::iota(words, words + n, static_cast<Lum16u>(first));
            const std::vector<float> products = productsInOrder(words, factor);
            for (int i = 0; i < n; ++i) {
                const float expected = static_cast<float>(words[i]) * factor;
                ASSERT_EQ(0, std::memcmp(&expected, &products[i], sizeof expected))
                    << words[i] << " times " << factor;
            }
        }
}

TEST(LoadAligned, GivesTheElementsInOrder) {
    alignas(64) float place[32];
    std::iota(place, place + 32, 1.0F);
    float elements[16];
    store(loadAligned<16>(place), elements);
    EXPECT_EQ(0, std::memcmp(place, elements, sizeof elements));
    store(loadAligned<4>(place + 4), elements);
    EXPECT_EQ(0, std::memcmp(place + 4, elements, 16));
    store(loadAligned<16>(place + 16), elements);
    EXPECT_EQ(0, std::memcmp(place + 16, elements, sizeof elements));
}

TEST(LoadAligned, OfMultiplesOf16GivesTheElementsInOrder) {
    alignas(64) float place[28];
    std::iota(place, place + 28, 1.0F);
    float elements[16];
    for (int first : {0, 4, 8, 12}) {
        store(loadFromMultipleOf16<16>(place + first), elements);
        EXPECT_EQ(0, std::memcmp(place + first, elements, sizeof elements)) << first;
    }
}

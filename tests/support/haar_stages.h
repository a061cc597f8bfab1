// Stages of Haar cascades in tests: random ones, their objects in blocks of exactly the queried size, and a plain
// statement of what a stage does at a pixel that shares nothing with the library.
#pragma once

#include <cstdint>
#include <memory>
#include <random>
#include <type_traits>
#include <utility>
#include <vector>

#include "support/guarded_image.h"
#include "support/status_checks.h"

namespace support {

/// The element types of an apply call: of the integral images, and of the deviations, weights and totals.
template <class SrcElement, class NormElement> struct HaarMember {
    using Src = SrcElement;
    using Norm = NormElement;
    using Value = NormElement;
};
using HaarOfFloats = HaarMember<Lum32f, Lum32f>;
using HaarOfIntegersAndFloats = HaarMember<Lum32s, Lum32f>;
using HaarOfIntegers = HaarMember<Lum32s, Lum32s>;
using HaarMembers = testing::Types<HaarOfFloats, HaarOfIntegersAndFloats, HaarOfIntegers>;

/// The placement of a mask, for images of words beside it.
inline Placement forWords(Placement ofMask) {
    ofMask.padding *= 4;
    return ofMask;
}

/// The arrays that an Init takes.
template <class Value> struct HaarArrays {
    std::vector<LumRect> rects;
    std::vector<Value> weights;
    std::vector<Value> thresholds;
    std::vector<Value> below;
    std::vector<Value> above;
    std::vector<Lum32s> num;

    int length() const { return static_cast<int>(num.size()); }

    void add(std::vector<LumRect> itsRects, std::vector<Value> itsWeights, Value threshold, Value itsBelow,
             Value itsAbove) {
        rects.insert(rects.end(), itsRects.begin(), itsRects.end());
        weights.insert(weights.end(), itsWeights.begin(), itsWeights.end());
        thresholds.push_back(threshold);
        below.push_back(itsBelow);
        above.push_back(itsAbove);
        num.push_back(static_cast<Lum32s>(itsRects.size()));
    }
};

enum class HaarForm { upright, tilted };

inline LumStatus initHaar(HaarForm form, LumHaarClassifier* spec, const HaarArrays<Lum32f>& a) {
    const auto init =
        form == HaarForm::tilted ? lumiTiltedHaarClassifierInit_32f : lumiHaarClassifierInit_32f;
    return init(spec, a.rects.data(), a.weights.data(), a.thresholds.data(), a.below.data(), a.above.data(),
                a.num.data(), a.length());
}
inline LumStatus initHaar(HaarForm form, LumHaarClassifier* spec, const HaarArrays<Lum32s>& a) {
    const auto init =
        form == HaarForm::tilted ? lumiTiltedHaarClassifierInit_32s : lumiHaarClassifierInit_32s;
    return init(spec, a.rects.data(), a.weights.data(), a.thresholds.data(), a.below.data(), a.above.data(),
                a.num.data(), a.length());
}

template <class Value> int queriedHaarSize(const HaarArrays<Value>& arrays) {
    Lum32s size = 0;
    EXPECT_STATUS(lumStatusOk,
                  lumiHaarClassifierGetSize(std::is_same_v<Value, Lum32f> ? lumType32f : lumType32s, {1, 1},
                                            arrays.num.data(), arrays.length(), &size));
    return size;
}

/// A built stage in a block that ends at an unreadable page.
template <class Value> class HaarSpec {
  public:
    explicit HaarSpec(const HaarArrays<Value>& arrays, HaarForm form = HaarForm::upright)
        : block_(queriedHaarSize(arrays)) {
        EXPECT_STATUS(lumStatusOk, initHaar(form, get(), arrays));
    }
    LumHaarClassifier* get() { return block_.template as<LumHaarClassifier>(); }
    std::vector<Lum8u> bytes() { return {block_.as(), block_.as() + block_.size()}; }

  private:
    GuardedBlock block_;
};

/// Classifiers of 1 to 4 rectangles in a window of the given size, one of them reaching its far corner. Tilted
/// rectangles fit a tilted integral image that begins one column before the first pixel's place.
template <class Value>
HaarArrays<Value> randomHaar(std::mt19937& engine, int classifiers, LumSize window, HaarForm form) {
    const auto upTo = [&](int highest) { return static_cast<int>(engine() % (highest + 1)); };
    const auto value = [&](int range) {
        if constexpr (std::is_same_v<Value, Lum32f>)
            return static_cast<float>(upTo(2000) - 1000) / 1000 * static_cast<float>(range);
        else
            return upTo(2 * range) - range;
    };
    const auto rectangle = [&]() -> LumRect {
        for (;;) {
            const LumRect r{upTo(window.width - 1), upTo(window.height - 1), 1 + upTo(window.width - 1),
                            1 + upTo(window.height - 1)};
            if (form == HaarForm::upright && r.x + r.width <= window.width && r.y + r.height <= window.height)
                return r;
            if (form == HaarForm::tilted && r.height <= r.x + 1 && r.x + r.width <= window.width &&
                r.y + r.width + r.height <= window.height)
                return r;
        }
    };
    HaarArrays<Value> arrays;
    for (int i = 0; i < classifiers; ++i) {
        std::vector<LumRect> rects(1 + upTo(3));
        std::vector<Value> weights(rects.size());
        for (auto& r : rects) r = rectangle();
        for (auto& w : weights) w = value(9);
        if (i == 0 && form == HaarForm::upright) rects[0] = {0, 0, window.width, window.height};
        arrays.add(rects, weights, value(3), value(20), value(20));
    }
    return arrays;
}

/// The arguments of an apply call; each takes those that it has.
template <class M> struct HaarCall {
    const typename M::Src* src;
    int srcStep;
    const typename M::Src* tilt = nullptr;
    int tiltStep = 0;
    const typename M::Norm* norm;
    int normStep;
    Lum8u* mask;
    int maskStep;
    LumSize size;
    Lum32s* positive;
    typename M::Value threshold;
    LumHaarClassifier* spec;
    int scaleFactor = 0;
};

template <class M> LumStatus applyHaar(const HaarCall<M>& c) {
    const auto call = [&](auto member, auto... scaleFactor) {
        return member(c.src, c.srcStep, c.norm, c.normStep, c.mask, c.maskStep, c.size, c.positive,
                      c.threshold, c.spec, scaleFactor...);
    };
    if constexpr (std::is_same_v<typename M::Norm, Lum32s>)
        return call(lumiApplyHaarClassifier_32s_C1RSfs, c.scaleFactor);
    else if constexpr (std::is_same_v<typename M::Src, Lum32s>)
        return call(lumiApplyHaarClassifier_32s32f_C1R);
    else
        return call(lumiApplyHaarClassifier_32f_C1R);
}

template <class M> LumStatus applyMixedHaar(const HaarCall<M>& c) {
    const auto call = [&](auto member, auto... scaleFactor) {
        return member(c.src, c.srcStep, c.tilt, c.tiltStep, c.norm, c.normStep, c.mask, c.maskStep, c.size,
                      c.positive, c.threshold, c.spec, scaleFactor...);
    };
    if constexpr (std::is_same_v<typename M::Norm, Lum32s>)
        return call(lumiApplyMixedHaarClassifier_32s_C1RSfs, c.scaleFactor);
    else if constexpr (std::is_same_v<typename M::Src, Lum32s>)
        return call(lumiApplyMixedHaarClassifier_32s32f_C1R);
    else
        return call(lumiApplyMixedHaarClassifier_32f_C1R);
}

struct HaarPlace {
    int x, y;
};

/// Where a rectangle reads an integral image, relative to the pixel's place.
struct HaarReads {
    HaarPlace a, b, c, d;
};

inline HaarReads uprightReads(const LumRect& r) {
    return {{r.x + r.width, r.y + r.height}, {r.x, r.y + r.height}, {r.x + r.width, r.y}, {r.x, r.y}};
}
inline HaarReads tiltedReads(const LumRect& r) {
    return {{r.x + r.width - r.height, r.y + r.width + r.height},
            {r.x - r.height, r.y + r.height},
            {r.x + r.width, r.y + r.width},
            {r.x, r.y}};
}
inline HaarReads tiltedReadsAboutLowerLeft(const LumRect& r) {
    return {{r.x, r.y + r.height},
            {r.x - r.height, r.y},
            {r.x + r.width, r.y + r.height - r.width},
            {r.x + r.width - r.height, r.y - r.width}};
}

/// A classifier as the caller means it.
template <class Value> struct HaarWeak {
    int index;
    std::vector<HaarReads> reads;
    std::vector<Value> weights;
    Value threshold, below, above;
    bool tilted = false;
};

template <class Value>
std::vector<HaarWeak<Value>> inCallersOrder(const HaarArrays<Value>& arrays,
                                            HaarReads (*readsOf)(const LumRect&)) {
    std::vector<HaarWeak<Value>> all;
    std::size_t next = 0;
    for (int i = 0; i < arrays.length(); ++i) {
        HaarWeak<Value> weak{i, {}, {}, arrays.thresholds[i], arrays.below[i], arrays.above[i]};
        for (int k = 0; k < arrays.num[i]; ++k, ++next) {
            weak.reads.push_back(readsOf(arrays.rects[next]));
            weak.weights.push_back(arrays.weights[next]);
        }
        all.push_back(weak);
    }
    return all;
}

/// Pairs first, then triples, then the rest.
template <class Value> std::vector<HaarWeak<Value>> regrouped(const std::vector<HaarWeak<Value>>& weaks) {
    std::vector<HaarWeak<Value>> all;
    for (int group : {2, 3, 0})
        for (const auto& weak : weaks) {
            const auto count = static_cast<int>(weak.reads.size());
            if (count == group || (group == 0 && count != 2 && count != 3)) all.push_back(weak);
        }
    return all;
}

/// Whether a pixel stays, from floats; sumOf(weak, rectangle) is a rectangle's sum as a single. The two differ where
/// something cannot be compared: plain stages of floats then take `below` and clear the pixel.
enum class Unordered { isBelow, isAbove };
template <class SumOf>
bool staysByFloats(const std::vector<HaarWeak<Lum32f>>& weaks, float norm, float stageThreshold,
                   Unordered unordered, SumOf sumOf) {
    float total = 0;
    for (const auto& weak : weaks) {
        float t = sumOf(weak, 0);
        for (std::size_t k = 1; k < weak.reads.size(); ++k) t = t + sumOf(weak, k);
        const float limit = weak.threshold * norm;
        const bool below = unordered == Unordered::isBelow ? !(t >= limit) : limit > t;
        total = total + (below ? weak.below : weak.above);
    }
    return unordered == Unordered::isBelow ? total >= stageThreshold : !(stageThreshold > total);
}

/// Whether a pixel stays, from integers; sumOf(weak, rectangle) is a rectangle's sum, wrapped.
template <class SumOf>
bool staysByIntegers(const std::vector<HaarWeak<Lum32s>>& weaks, Lum32s norm, Lum32s stageThreshold,
                     int shift, SumOf sumOf) {
    Lum32s total = 0;
    for (const auto& weak : weaks) {
        std::uint64_t t = 0;
        for (std::size_t k = 0; k < weak.reads.size(); ++k)
            t += static_cast<std::uint64_t>(std::int64_t{sumOf(weak, k)} * weak.weights[k]);
        for (int bit = 0; bit < shift; ++bit) t = t + t;
        const bool below = static_cast<std::int64_t>(t) < std::int64_t{weak.threshold} * norm;
        total = static_cast<Lum32s>(static_cast<std::uint32_t>(total) +
                                    static_cast<std::uint32_t>(below ? weak.below : weak.above));
    }
    return total >= stageThreshold;
}

/// The sum of a rectangle around the place (x, y) of an integral image.
inline float rectangleSum(const GuardedImage<Lum32f>& image, int x, int y, const HaarReads& r) {
    const auto at = [&](HaarPlace p) { return image.at(x + p.x, y + p.y); };
    return at(r.a) - at(r.b) - at(r.c) + at(r.d);
}
inline Lum32s rectangleSum(const GuardedImage<Lum32s>& image, int x, int y, const HaarReads& r) {
    const auto at = [&](HaarPlace p) { return static_cast<std::uint32_t>(image.at(x + p.x, y + p.y)); };
    return static_cast<Lum32s>(at(r.a) - at(r.b) - at(r.c) + at(r.d));
}

/// What a call should leave in the mask, and the number of set pixels.
template <class Stays>
std::pair<std::vector<Lum8u>, int> expectedMask(const GuardedImage<Lum8u>& mask, Stays stays) {
    std::vector<Lum8u> pixels = mask.pixels();
    int count = 0;
    const LumSize size = mask.size();
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) {
            Lum8u& pixel = pixels[static_cast<std::size_t>(y) * size.width + x];
            if (pixel == 0) continue;
            if (stays(x, y))
                ++count;
            else
                pixel = 0;
        }
    return {pixels, count};
}

/// A mask with about one set byte in `one in`, of different values.
inline void fillMask(GuardedImage<Lum8u>& mask, unsigned seed, int oneIn) {
    std::mt19937 engine(seed);
    mask.fill([&](int, int, int) { return engine() % oneIn == 0 ? 1 + engine() % 255 : 0; });
}

} // namespace support

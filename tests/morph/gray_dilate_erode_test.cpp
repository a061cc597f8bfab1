#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <random>

#include "lumcv.h"
#include "support/guarded_image.h"
#include "support/member_test.h"
#include "support/status_checks.h"

using namespace support;

namespace {

template <class T> struct GrayMembers;
template <> struct GrayMembers<Lum8u> {
    using Weight = Lum32s;
    static constexpr auto dilate = lumiGrayDilateBorder_8u_C1R;
    static constexpr auto erode = lumiGrayErodeBorder_8u_C1R;
    static constexpr auto getSize = lumiMorphGrayGetSize_8u_C1R;
    static constexpr auto init = lumiMorphGrayInit_8u_C1R;
};
template <> struct GrayMembers<Lum32f> {
    using Weight = Lum32f;
    static constexpr auto dilate = lumiGrayDilateBorder_32f_C1R;
    static constexpr auto erode = lumiGrayErodeBorder_32f_C1R;
    static constexpr auto getSize = lumiMorphGrayGetSize_32f_C1R;
    static constexpr auto init = lumiMorphGrayInit_32f_C1R;
};

template <class T> struct WeightMask {
    LumSize size;
    LumPoint anchor;
    std::vector<typename GrayMembers<T>::Weight> weights;
};

template <class T> struct GrayObject {
    GuardedBlock block;
    LumMorphGrayState* state;

    GrayObject(LumSize roiSize, const WeightMask<T>& mask, int spare = 0)
        : block(bytes(roiSize, mask), Guard::after, spare), state(block.template as<LumMorphGrayState>()) {
        EXPECT_EQ(lumStatusOk,
                  GrayMembers<T>::init(state, roiSize, mask.weights.data(), mask.size, mask.anchor));
    }

  private:
    static Lum32s bytes(LumSize roiSize, const WeightMask<T>& mask) {
        Lum32s result = 0;
        EXPECT_EQ(lumStatusOk, GrayMembers<T>::getSize(roiSize, mask.weights.data(), mask.size, &result));
        return result;
    }
};

/// By definition.
template <class T>
T valueAt(bool dilates, const GuardedImage<T>& src, int x, int y, const WeightMask<T>& mask) {
    using Weight = typename GrayMembers<T>::Weight;
    Weight best = std::is_same_v<T, Lum8u>
                      ? (dilates ? 0 : 255)
                      : (dilates ? -std::numeric_limits<float>::max() : std::numeric_limits<float>::max());
    for (int j = 0; j < mask.size.height; ++j)
        for (int i = 0; i < mask.size.width; ++i) {
            const int px = std::clamp(x + i - mask.anchor.x, 0, src.size().width - 1);
            const int py = std::clamp(y + j - mask.anchor.y, 0, src.size().height - 1);
            const Weight weight = mask.weights[j * mask.size.width + i];
            Weight sum;
            if constexpr (std::is_same_v<T, Lum8u>)
                sum = static_cast<Lum32s>(static_cast<unsigned>(weight) + src.at(px, py));
            else
                sum = weight + src.at(px, py);
            if (dilates ? sum > best : sum < best) best = sum;
        }
    if constexpr (std::is_same_v<T, Lum8u>)
        return static_cast<Lum8u>(std::clamp(best, 0, 255));
    else
        return best;
}

template <class T>
void expectDefinition(const GuardedImage<T>& src, const WeightMask<T>& mask, LumSize madeFor, int spare = 0) {
    const LumSize size = src.size();
    GrayObject<T> object(madeFor, mask, spare);
    for (bool dilates : {true, false}) {
        GuardedImage<T> dst(size.width, size.height, {.padding = 8});
        auto* const member = dilates ? GrayMembers<T>::dilate : GrayMembers<T>::erode;
        ASSERT_EQ(lumStatusOk, member(src.data(), src.step(), dst.data(), dst.step(), size,
                                      lumBorderReplicate, object.state));
        for (int y = 0; y < size.height; ++y)
            for (int x = 0; x < size.width; ++x)
                ASSERT_EQ(valueAt(dilates, src, x, y, mask), dst.at(x, y))
                    << (dilates ? "dilation " : "erosion ") << x << ", " << y << " of " << size.width << " x "
                    << size.height << ", mask " << mask.size.width << " x " << mask.size.height;
        EXPECT_TRUE(dst.outsideUntouched());
    }
}

using Elements = testing::Types<Lum8u, Lum32f>;
MEMBER_TEST_SUITE(GrayDilateErode, Elements);

} // namespace

MEMBER_TEST(GrayDilateErode, ErosionAddsTheWeights) {
    using T = TypeParam;
    GuardedImage<T> src(20, 3);
    src.fill([](int, int, int) { return 100; });
    GrayObject<T> object({20, 3}, {{1, 1}, {0, 0}, {10}});
    GuardedImage<T> dst(20, 3);
    ASSERT_EQ(lumStatusOk, GrayMembers<T>::erode(src.data(), src.step(), dst.data(), dst.step(), {20, 3},
                                                 lumBorderReplicate, object.state));
    for (T value : dst.pixels()) EXPECT_EQ(T{110}, value);
}

TEST(GrayBytes, ResultsAreClamped) {
    GuardedImage<Lum8u> src(40, 4);
    src.fill([](int x, int, int) { return x * 6; });
    for (int weight : {200, 255, 256, 1000, INT32_MAX - 255, INT32_MAX - 254, INT32_MAX, -200, -255, -256,
                       -1000, INT32_MIN})
        expectDefinition<Lum8u>(src, {{3, 1}, {1, 0}, {weight, 0, -(weight / 2)}}, {40, 4});
}

TEST(GrayFloats, ResultsAreNotClampedAndNaNIsPassedOver) {
    constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
    for (int width : {4, 40}) {
        GuardedImage<Lum32f> src(width, 4);
        src.fill([](int x, int y, int) {
            return x == 2 && y == 1 ? notANumber : 1e6F * static_cast<float>(x - y);
        });
        expectDefinition<Lum32f>(src, {{3, 3}, {1, 1}, {1, 2, 3, -4, 5, 6, 7, 8, 9e9F}}, {width, 4});
    }
}

MEMBER_TEST(GrayDilateErode, RandomRunsGiveTheDefinition) {
    using T = TypeParam;
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937 engine(seed);
    const auto below = [&](int n) { return static_cast<int>(engine() % n); };
    for (int i = 0; i < 300; ++i) {
        const LumSize size{1 + below(80), 1 + below(10)};
        const Guard guard = below(2) == 0 ? Guard::after : Guard::before;
        GuardedImage<T> src(size.width, size.height,
                            {.offset = static_cast<int>(sizeof(T)) * below(8), .guard = guard});
        src.fillRandom(engine());
        WeightMask<T> mask{{1 + below(9), 1 + below(9)}, {0, 0}, {}};
        mask.anchor = {below(mask.size.width), below(mask.size.height)};
        mask.weights.resize(mask.size.width * mask.size.height);
        for (auto& weight : mask.weights)
            weight = static_cast<typename GrayMembers<T>::Weight>(below(600) - 300);
        expectDefinition<T>(src, mask, {size.width + below(3), size.height + below(3)}, below(16));
        if (testing::Test::HasFatalFailure()) return;
    }
}

MEMBER_TEST(GrayDilateErode, RefusesInOrder) {
    using T = TypeParam;
    constexpr int row = 4 * static_cast<int>(sizeof(T));
    GuardedImage<T> src(4, 3);
    GuardedImage<T> dst(4, 3);
    GrayObject<T> object({4, 3}, {{1, 1}, {0, 0}, {1}});
    const auto expect = [&](LumStatus status, const T* source, int srcStep, T* target, int dstStep,
                            LumSize roiSize, LumBorderType border, const LumMorphGrayState* spec) {
        EXPECT_REFUSED(status, dst,
                       GrayMembers<T>::dilate(source, srcStep, target, dstStep, roiSize, border, spec));
        EXPECT_REFUSED(status, dst,
                       GrayMembers<T>::erode(source, srcStep, target, dstStep, roiSize, border, spec));
    };
    const T* const s = src.data();
    T* const d = dst.data();
    expect(lumStatusNullPointer, nullptr, row, d, row, {0, 3}, 1, object.state);
    expect(lumStatusNullPointer, s, row, nullptr, row, {0, 3}, 1, object.state);
    expect(lumStatusNullPointer, s, row, d, row, {0, 3}, 1, nullptr);
    expect(lumStatusSizeError, s, -1, d, row, {0, 3}, 1, object.state);
    expect(lumStatusSizeError, s, -1, d, row, {4, -3}, 1, object.state);
    expect(lumStatusStepError, s, row - 1, d, row + 1, {4, 3}, 6, object.state);
    expect(lumStatusStepError, s, row, d, row - 1, {4, 3}, 6, object.state);
    if (sizeof(T) > 1) {
        expect(lumStatusStepAlignmentError, s, row + 2, d, row, {4, 3}, 6, object.state);
        expect(lumStatusStepAlignmentError, s, row, d, row + 2, {4, 3}, 6, object.state);
    }
    for (LumBorderType border : {0, 3, 5, 6, 0xF0, 0x11, -1}) {
        expect(lumStatusBadArgument, s, row, d, row, {4, 3}, border, object.state);
        expect(lumStatusBadArgument, s, 2 * row, d, 2 * row, {5, 3}, border, object.state);
    }
    expect(lumStatusSizeError, s, 2 * row, d, 2 * row, {5, 3}, 1, object.state);
    expect(lumStatusSizeError, s, row, d, row, {4, 4}, 1, object.state);
}

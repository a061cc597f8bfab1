#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <random>

#include "support/border_walk.h"
#include "support/control_word.h"
#include "support/guarded_image.h"
#include "support/member_test.h"
#include "support/status_checks.h"

using namespace support;

namespace {

/// The arguments of a member.
template <class T, class D> struct Call {
    const T* src;
    int srcStep;
    D* dst;
    int dstStep;
    LumSize size;
    LumBorderType border;
    const T* values;
    const LumFilterSeparableSpec* spec;
    Lum8u* buffer;
};

/// A member of the family: source, result, channels, and its two names.
template <class Source, class Result, class Kernel, int channelCount, auto plainName, auto wideName>
struct Member {
    using T = Source;
    using D = Result;
    using K = Kernel;
    static constexpr int channels = channelCount;
    static constexpr bool integers = std::is_same_v<K, Lum16s>;

    static auto valueArgument(const T* values) {
        if constexpr (channels == 1)
            return *values;
        else
            return values;
    }
    static LumStatus plain(const Call<T, D>& c) {
        return plainName(c.src, c.srcStep, c.dst, c.dstStep, c.size, c.border, valueArgument(c.values),
                         c.spec, c.buffer);
    }
    static LumStatus wide(const Call<T, D>& c) {
        return wideName(c.src, c.srcStep, c.dst, c.dstStep, {c.size.width, c.size.height}, c.border,
                        valueArgument(c.values), c.spec, c.buffer);
    }
    static constexpr LumDataType dataType = sizeof(T) == 1   ? lumType8u
                                            : sizeof(T) == 4 ? lumType32f
                                            : integers       ? lumType16s
                                                             : lumType16u;
    static constexpr LumDataType kernelType = integers ? lumType16s : lumType32f;
};

using Of8uC1 = Member<Lum8u, Lum8u, Lum16s, 1, lumiFilterSeparable_8u_C1R, lumiFilterSeparable_8u_C1R_L>;
using Of8uC3 = Member<Lum8u, Lum8u, Lum16s, 3, lumiFilterSeparable_8u_C3R, lumiFilterSeparable_8u_C3R_L>;
using Of8uC4 = Member<Lum8u, Lum8u, Lum16s, 4, lumiFilterSeparable_8u_C4R, lumiFilterSeparable_8u_C4R_L>;
using Of8u16sC1 =
    Member<Lum8u, Lum16s, Lum16s, 1, lumiFilterSeparable_8u16s_C1R, lumiFilterSeparable_8u16s_C1R_L>;
using Of8u16sC3 =
    Member<Lum8u, Lum16s, Lum16s, 3, lumiFilterSeparable_8u16s_C3R, lumiFilterSeparable_8u16s_C3R_L>;
using Of8u16sC4 =
    Member<Lum8u, Lum16s, Lum16s, 4, lumiFilterSeparable_8u16s_C4R, lumiFilterSeparable_8u16s_C4R_L>;
using Of16sC1 = Member<Lum16s, Lum16s, Lum16s, 1, lumiFilterSeparable_16s_C1R, lumiFilterSeparable_16s_C1R_L>;
using Of16sC3 = Member<Lum16s, Lum16s, Lum16s, 3, lumiFilterSeparable_16s_C3R, lumiFilterSeparable_16s_C3R_L>;
using Of16sC4 = Member<Lum16s, Lum16s, Lum16s, 4, lumiFilterSeparable_16s_C4R, lumiFilterSeparable_16s_C4R_L>;
using Of16uC1 = Member<Lum16u, Lum16u, Lum32f, 1, lumiFilterSeparable_16u_C1R, lumiFilterSeparable_16u_C1R_L>;
using Of16uC3 = Member<Lum16u, Lum16u, Lum32f, 3, lumiFilterSeparable_16u_C3R, lumiFilterSeparable_16u_C3R_L>;
using Of16uC4 = Member<Lum16u, Lum16u, Lum32f, 4, lumiFilterSeparable_16u_C4R, lumiFilterSeparable_16u_C4R_L>;
using Of32fC1 = Member<Lum32f, Lum32f, Lum32f, 1, lumiFilterSeparable_32f_C1R, lumiFilterSeparable_32f_C1R_L>;
using Of32fC3 = Member<Lum32f, Lum32f, Lum32f, 3, lumiFilterSeparable_32f_C3R, lumiFilterSeparable_32f_C3R_L>;
using Of32fC4 = Member<Lum32f, Lum32f, Lum32f, 4, lumiFilterSeparable_32f_C4R, lumiFilterSeparable_32f_C4R_L>;

/// Two kernels and their divisor (1 where they are of 32f).
template <class K> struct Kernels {
    std::vector<K> x;
    std::vector<K> y;
    int divisor = 1;

    LumSize size() const { return {static_cast<int>(x.size()), static_cast<int>(y.size())}; }
};

template <class M> class Spec {
  public:
    explicit Spec(const Kernels<typename M::K>& kernels, int shift = 0)
        : block_(queriedSize(kernels), Guard::after, shift) {
        if constexpr (M::integers)
            EXPECT_STATUS(lumStatusOk, lumiFilterSeparableInit_16s(kernels.x.data(), kernels.y.data(),
                                                                   kernels.size(), kernels.divisor, 7,
                                                                   M::dataType, M::channels, writable()));
        else
            EXPECT_STATUS(lumStatusOk,
                          lumiFilterSeparableInit_32f(kernels.x.data(), kernels.y.data(), kernels.size(),
                                                      M::dataType, M::channels, writable()));
    }
    const LumFilterSeparableSpec* get() { return writable(); }

  private:
    static int queriedSize(const Kernels<typename M::K>& kernels) {
        Lum32s size = 0;
        EXPECT_STATUS(lumStatusOk,
                      lumiFilterSeparableGetSpecSize(kernels.size(), M::kernelType, M::channels, &size));
        return size;
    }
    LumFilterSeparableSpec* writable() { return reinterpret_cast<LumFilterSeparableSpec*>(block_.as()); }
    GuardedBlock block_;
};

template <class M> int bufferSize(LumSize roi, LumSize kernel) {
    Lum32s size = 0;
    EXPECT_STATUS(lumStatusOk, lumiFilterSeparableGetBufferSize(roi, kernel, M::dataType, M::kernelType,
                                                                M::channels, &size));
    return size;
}

template <class D> D clampedAndTruncated(float value) {
    if constexpr (std::is_same_v<D, float>) {
        return value;
    } else {
        if (!(value > static_cast<float>(std::numeric_limits<D>::min())))
            return std::numeric_limits<D>::min();
        if (value > static_cast<float>(std::numeric_limits<D>::max())) return std::numeric_limits<D>::max();
        return static_cast<D>(static_cast<int>(value));
    }
}

/// The formula, pixel by pixel.
template <class M>
std::vector<typename M::D> expected(const GuardedImage<typename M::T>& src,
                                    const Kernels<typename M::K>& kernels, LumBorderType border,
                                    const typename M::T* values) {
    const auto [width, height] = src.size();
    const int w = kernels.size().width;
    const int h = kernels.size().height;
    const int kind = border & 15;
    const float scale = 1.0F / static_cast<float>(kernels.divisor);
    const auto rowResult = [&](int x, int row, int c) {
        const int y =
            borderWalk(row, height, kind, border & lumBorderInMemoryTop, border & lumBorderInMemoryBottom);
        if (y == INT_MAX) {
            float sum = 0;
            for (auto k : kernels.x) sum += static_cast<float>(k);
            return static_cast<float>(values[c]) * sum * scale;
        }
        float sum = 0;
        for (int i = 0; i < w; ++i) {
            const int place = borderWalk(x - (w - 1) / 2 + i, width, kind, border & lumBorderInMemoryLeft,
                                         border & lumBorderInMemoryRight);
            const float element = static_cast<float>(place == INT_MAX ? values[c] : src.at(place, y, c));
            const float product = static_cast<float>(kernels.x[i]) * element;
            sum = i == 0 ? product : sum + product;
        }
        return sum * scale;
    };
    std::vector<typename M::D> all;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            for (int c = 0; c < M::channels; ++c) {
                float sum = 0;
                for (int k = 0; k < h; ++k) {
                    const float product =
                        static_cast<float>(kernels.y[k]) * rowResult(x, y - (h - 1) / 2 + k, c);
                    sum = k == 0 ? product : sum + product;
                }
                all.push_back(clampedAndTruncated<typename M::D>(sum * scale));
            }
    return all;
}

/// Values of four channels for a constant border.
template <class T>
constexpr std::array<T, 4> someValues{static_cast<T>(200), static_cast<T>(3), static_cast<T>(77),
                                      static_cast<T>(120)};

struct Case {
    int width = 8;
    int height = 4;
    LumBorderType border = lumBorderReplicate;
    Placement placement{};
    int blockShift = 0;
    unsigned seed = 1;
};

/// Both names of the member against the formula, every byte.
template <class M> void expectFormula(const Case& c, const Kernels<typename M::K>& kernels) {
    Placement placement = c.placement;
    placement.channels = M::channels;
    placement.margin = marginsInMemory(c.border, std::max(kernels.size().width, kernels.size().height) / 2);
    GuardedImage<typename M::T> src(c.width, c.height, placement);
    placement.margin = 0;
    GuardedImage<typename M::D> dst(c.width, c.height, placement);
    src.fillRandom(c.seed);
    Spec<M> spec(kernels, c.blockShift);
    GuardedBlock buffer(bufferSize<M>(src.size(), kernels.size()), Guard::after, c.blockShift);
    const auto* values = someValues<typename M::T>.data();
    const auto wanted = expected<M>(src, kernels, c.border, values);
    for (auto call : {M::plain, M::wide}) {
        dst.fill([](int, int, int) { return 99; });
        ASSERT_EQ(lumStatusOk, call({src.data(), src.step(), dst.data(), dst.step(), src.size(), c.border,
                                     values, spec.get(), buffer.as()}));
        ASSERT_TRUE(sameBits(wanted, dst.pixels()))
            << c.width << "x" << c.height << " border " << c.border << " taps " << kernels.size().width << "x"
            << kernels.size().height << " seed " << c.seed << " shift " << c.blockShift;
        ASSERT_TRUE(dst.outsideUntouched());
    }
}

/// Kernels whose magnitude chooses the integer sums of bytes, of words, or sums of floats.
template <class K> Kernels<K> randomKernels(std::mt19937& engine, int w, int h) {
    Kernels<K> kernels{std::vector<K>(w), std::vector<K>(h)};
    if constexpr (std::is_same_v<K, Lum16s>) {
        const int magnitudes[] = {3, 9, 60, 900, 32768};
        const int magnitude = magnitudes[engine() % 5];
        for (auto* kernel : {&kernels.x, &kernels.y})
            for (auto& k : *kernel)
                k = static_cast<K>(static_cast<int>(engine() % (2 * magnitude)) - magnitude);
        kernels.divisor = static_cast<int>(engine() % (3 * magnitude)) - magnitude;
        if (kernels.divisor == 0) kernels.divisor = 1;
    } else {
        for (auto* kernel : {&kernels.x, &kernels.y})
            for (auto& k : *kernel) k = static_cast<float>(static_cast<int>(engine() % 2001) - 700) / 1500.0F;
    }
    return kernels;
}

template <class K> Kernels<K> smoothing(int w, int h) {
    Kernels<K> kernels{std::vector<K>(w), std::vector<K>(h)};
    for (int i = 0; i < w; ++i) kernels.x[i] = static_cast<K>(1 + i);
    for (int i = 0; i < h; ++i) kernels.y[i] = static_cast<K>(h - i);
    if constexpr (std::is_same_v<K, Lum16s>) kernels.divisor = (w * (w + 1) + h * (h + 1)) / 4 + 1;
    return kernels;
}

/// Images and an object for calls that are refused; tests spoil a call that passes.
template <class M> struct Refusals {
    using T = typename M::T;
    using D = typename M::D;
    GuardedImage<T> src{4, 2, {.channels = M::channels}};
    GuardedImage<D> dst{4, 2, {.channels = M::channels}};
    Kernels<typename M::K> kernels = smoothing<typename M::K>(3, 3);
    Spec<M> spec{kernels};
    GuardedBlock buffer{static_cast<std::size_t>(bufferSize<M>(src.size(), kernels.size()))};
    const Call<T, D> passing{src.data(),         src.step(),           dst.data(), dst.step(), {4, 2},
                             lumBorderReplicate, someValues<T>.data(), spec.get(), buffer.as()};
};

using Members = testing::Types<Of8uC1, Of8uC3, Of8uC4, Of8u16sC1, Of8u16sC3, Of8u16sC4, Of16sC1, Of16sC3,
                               Of16sC4, Of16uC1, Of16uC3, Of16uC4, Of32fC1, Of32fC3, Of32fC4>;
MEMBER_TEST_SUITE(SeparableMembers, Members);

/// One call of a member of one channel over a region without padding.
template <class M>
std::vector<typename M::D> filtered(std::vector<typename M::T> pixels, LumSize size,
                                    const Kernels<typename M::K>& kernels, LumBorderType border,
                                    typename M::T value = 0) {
    std::vector<typename M::D> result(pixels.size());
    Spec<M> spec(kernels);
    GuardedBlock buffer(bufferSize<M>(size, kernels.size()));
    EXPECT_STATUS(lumStatusOk, M::plain({.src = pixels.data(),
                                         .srcStep = static_cast<int>(size.width * sizeof(typename M::T)),
                                         .dst = result.data(),
                                         .dstStep = static_cast<int>(size.width * sizeof(typename M::D)),
                                         .size = size,
                                         .border = border,
                                         .values = &value,
                                         .spec = spec.get(),
                                         .buffer = buffer.as()}));
    return result;
}

} // namespace

TEST(Separable, ThreeTapsByHand) {
    // Along the rows (5, 8, 11) / 4, (17, 20, 23) / 4 and (29, 32, 35) / 4; a row less the row after it is -3.
    const auto results = filtered<Of16sC1>({1, 2, 3, 4, 5, 6, 7, 8, 9}, {3, 3}, {{1, 2, 1}, {1, 0, -1}, 4},
                                           lumBorderReplicate);
    EXPECT_EQ((std::vector<Lum16s>{0, 0, 0, -1, -1, -1, 0, 0, 0}), results); // -0.75 and -1.5, truncated
}

MEMBER_TEST(SeparableMembers, EveryWidthAndBothGuards) {
    using K = typename TypeParam::K;
    for (int taps : {3, 5, 4})
        for (int width = 1; width <= 70; ++width) {
            const Guard guard = width % 2 == 0 ? Guard::after : Guard::before;
            expectFormula<TypeParam>({.width = width,
                                      .height = 3,
                                      .placement = {.guard = guard},
                                      .seed = static_cast<unsigned>(width)},
                                     smoothing<K>(taps, taps));
        }
}

MEMBER_TEST(SeparableMembers, EveryBorderOnRegionsSmallerAndLargerThanTheKernel) {
    using K = typename TypeParam::K;
    for (LumBorderType border : everyBorder())
        for (LumSize size : {LumSize{1, 1}, LumSize{2, 3}, LumSize{3, 2}, LumSize{19, 9}})
            for (LumSize taps : {LumSize{1, 1}, LumSize{3, 5}, LumSize{8, 7}})
                expectFormula<TypeParam>(
                    {.width = size.width,
                     .height = size.height,
                     .border = border,
                     .placement = {.guard = taps.width == 3 ? Guard::before : Guard::after}},
                    smoothing<K>(taps.width, taps.height));
}

MEMBER_TEST(SeparableMembers, RandomKernelsOfEveryMagnitude) {
    using K = typename TypeParam::K;
    const unsigned seed = 20240131;
    SCOPED_TRACE(seed);
    std::mt19937 engine(seed);
    const auto borders = everyBorder();
    for (int round = 0; round < 120; ++round) {
        const int w = 1 + static_cast<int>(engine() % 9);
        const int h = 1 + static_cast<int>(engine() % 9);
        const Case c{.width = 1 + static_cast<int>(engine() % 60),
                     .height = 1 + static_cast<int>(engine() % 12),
                     .border = borders[engine() % borders.size()],
                     .placement = {.padding = static_cast<int>(4 * (engine() % 5)),
                                   .offset = static_cast<int>(engine() % 17),
                                   .guard = engine() % 2 == 0 ? Guard::after : Guard::before},
                     .blockShift = static_cast<int>(engine() % 64),
                     .seed = static_cast<unsigned>(engine())};
        expectFormula<TypeParam>(c, randomKernels<K>(engine, w, h));
    }
}

MEMBER_TEST(SeparableMembers, BuffersOfExactlyTheQueriedSizeAtEveryAlignment) {
    using K = typename TypeParam::K;
    for (int shift = 0; shift < 64; ++shift)
        for (int taps : {1, 2, 5})
            expectFormula<TypeParam>({.width = 16 + shift / 4, .height = 4, .blockShift = shift},
                                     smoothing<K>(taps, taps + 1));
}

TEST(Separable, BuffersOfTheSmallestRegionsAtEveryAlignment) {
    // Rows that end at every place of a vector, and kernels whose part after the ring is long enough to fill the
    // vectors of each row, just too short, or far from it.
    for (int width = 1; width <= 4; ++width)
        for (int w = 1; w <= 3; ++w)
            for (int h = 1; h <= 10; ++h)
                for (int shift = 0; shift < 64; ++shift) {
                    expectFormula<Of8uC1>({.width = width, .height = 2, .blockShift = shift},
                                          smoothing<Lum16s>(w, h));
                    if (testing::Test::HasFatalFailure()) return;
                }
}

MEMBER_TEST(SeparableMembers, WideRowsAndLongKernels) {
    using K = typename TypeParam::K;
    expectFormula<TypeParam>({.width = 641, .height = 12, .border = lumBorderMirror}, smoothing<K>(21, 19));
    expectFormula<TypeParam>({.width = 9, .height = 7, .border = lumBorderMirror}, smoothing<K>(40, 33));
}

TEST(Separable, FloatsOfAPictureBeyondTheCaches) {
    expectFormula<Of32fC1>({.width = 1030, .height = 520}, smoothing<Lum32f>(3, 3));
}

MEMBER_TEST(SeparableMembers, NullPointersComeFirst) {
    Refusals<TypeParam> r;
    for (auto call : {TypeParam::plain, TypeParam::wide})
        for (LumSize size : {LumSize{4, 2}, LumSize{0, 0}}) {
            const auto refused = [&](auto spoil) {
                auto arguments = r.passing;
                arguments.srcStep = arguments.dstStep = arguments.border = 0;
                arguments.size = size;
                spoil(arguments);
                EXPECT_REFUSED(lumStatusNullPointer, r.dst, call(arguments));
            };
            refused([](auto& a) { a.src = nullptr; });
            refused([](auto& a) { a.dst = nullptr; });
            refused([](auto& a) { a.spec = nullptr; });
            refused([](auto& a) { a.buffer = nullptr; });
        }
}

MEMBER_TEST(SeparableMembers, SizesBorderValueStepsAlignmentBorderInOrder) {
    using T = typename TypeParam::T;
    Refusals<TypeParam> r;
    struct Row {
        LumStatus expected;
        LumSize size;
        int srcStep;
        int dstStep;
        LumBorderType border;
        const T* values;
    };
    const T* values = r.passing.values;
    const int srcStep = r.passing.srcStep;
    const int dstStep = r.passing.dstStep;
    std::vector<Row> table;
    for (LumSize size : {LumSize{0, 2}, LumSize{4, 0}, LumSize{-1, 2}, LumSize{4, INT_MIN}})
        table.push_back({lumStatusSizeError, size, 0, 0, 0, values});
    if (TypeParam::channels > 1)
        for (int border : {1, 0, 256}) table.push_back({lumStatusNullPointer, {4, 2}, 0, 0, border, nullptr});
    table.push_back({lumStatusStepError, {4, 2}, srcStep - 1, dstStep, 0, values});
    table.push_back({lumStatusStepError, {4, 2}, srcStep, dstStep - 1, 0, values});
    table.push_back({lumStatusStepError, {4, 2}, srcStep + 1, dstStep - 1, 0, values});
    table.push_back({lumStatusStepError, {4, 2}, -srcStep, dstStep, 0, values});
    table.push_back({lumStatusStepError, {INT_MAX, 2}, INT_MAX, INT_MAX - 1, 0, values});
    if (sizeof(T) > 1)
        table.push_back({lumStatusStepAlignmentError, {4, 2}, srcStep + 1, dstStep, 0, values});
    if (sizeof(typename TypeParam::D) > 1)
        table.push_back({lumStatusStepAlignmentError, {4, 2}, srcStep, dstStep + 1, 0, values});
    for (LumBorderType border : {0, 2, 4, 5, 7, 0x10, 0xE0, 0xF5, 0x100, 0x101, 0x1F0, -1, INT_MIN, INT_MAX})
        table.push_back({lumStatusBorderError, {4, 2}, srcStep, dstStep, border, values});
    for (auto call : {TypeParam::plain, TypeParam::wide})
        for (const Row& row : table)
            EXPECT_REFUSED(row.expected, r.dst,
                           call({r.src.data(), row.srcStep, r.dst.data(), row.dstStep, row.size, row.border,
                                 row.values, r.spec.get(), r.buffer.as()}));
}

TEST(Separable, OneTapOfTheDivisorCopiesUnlessScalingsFallShort) {
    std::vector<Lum8u> pixels(256);
    for (int i = 0; i < 256; ++i) pixels[i] = static_cast<Lum8u>(i);
    for (int d : {1, 2, 64, 1024})
        EXPECT_EQ(pixels,
                  (filtered<Of8uC1>(pixels, {64, 4}, {{static_cast<Lum16s>(d)}, {static_cast<Lum16s>(d)}, d},
                                    lumBorderReplicate)));
    int oneLower = 0;
    for (int d = 1; d < 200; ++d) {
        const auto result = filtered<Of8uC1>(
            pixels, {64, 4}, {{static_cast<Lum16s>(d)}, {static_cast<Lum16s>(d)}, d}, lumBorderReplicate);
        const float scale = 1.0F / static_cast<float>(d);
        for (int i = 0; i < 256; ++i) {
            const float row = static_cast<float>(d * i) * scale;
            const float column = static_cast<float>(d) * row * scale;
            ASSERT_EQ(static_cast<int>(column), result[i]) << d << " " << i;
            ASSERT_TRUE(result[i] == i || result[i] == i - 1);
            oneLower += result[i] != i;
        }
    }
    EXPECT_GT(oneLower, 0);
}

TEST(Separable, DivisorsAreFloatsBeforeTheirReciprocalIsTaken) {
    // 16777217 is 2^24 as a float: 2^30 over it is 2^6 in the row stage, and 2^24 over it 1 in the column stage.
    // Over the integer itself the result lies below 1.
    const Kernels<Lum16s> kernels{std::vector<Lum16s>(4, 16384), std::vector<Lum16s>(16, 16384), 16777217};
    EXPECT_EQ(std::vector<Lum16s>(120, 1),
              (filtered<Of16sC1>(std::vector<Lum16s>(120, 16384), {40, 3}, kernels, lumBorderReplicate)));
}

TEST(Separable, ResultsTruncateTowardZero) {
    // 29 / 10 in the row stage, once more by 1 / 10 of a column tap of 10
    EXPECT_EQ(std::vector<Lum16s>({2, -2, 2, -2, 0}),
              (filtered<Of16sC1>({29, -29, 25, -25, 9}, {5, 1}, {{1}, {10}, 10}, lumBorderReplicate)));
    EXPECT_EQ(std::vector<Lum16u>({2, 3, 3, 4, 0}),
              (filtered<Of16uC1>({29, 31, 39, 49, 9}, {5, 1}, {{0.1F}, {1.0F}}, lumBorderReplicate)));
}

TEST(Separable, ResultsClampToTheirRange) {
    const Kernels<Lum16s> large{{32767}, {32767}};
    const Kernels<Lum16s> negative{{32767}, {-32768}};
    const std::vector<Lum8u> bytes(21, 255);
    EXPECT_EQ(std::vector<Lum8u>(21, 255), (filtered<Of8uC1>(bytes, {21, 1}, large, lumBorderReplicate)));
    EXPECT_EQ(std::vector<Lum8u>(21, 0), (filtered<Of8uC1>(bytes, {21, 1}, negative, lumBorderReplicate)));
    EXPECT_EQ(std::vector<Lum16s>(21, 32767),
              (filtered<Of8u16sC1>(bytes, {21, 1}, large, lumBorderReplicate)));
    EXPECT_EQ(std::vector<Lum16s>(21, -32768),
              (filtered<Of8u16sC1>(bytes, {21, 1}, negative, lumBorderReplicate)));
    const std::vector<Lum16u> words(21, 65535);
    EXPECT_EQ(std::vector<Lum16u>(21, 65535),
              (filtered<Of16uC1>(words, {21, 1}, {{1e30F}, {1e30F}}, lumBorderReplicate)));
    EXPECT_EQ(std::vector<Lum16u>(21, 0),
              (filtered<Of16uC1>(words, {21, 1}, {{1e30F}, {-1e30F}}, lumBorderReplicate)));
    // infinity - infinity is no number, and gives 0 in every stretch of a row
    EXPECT_EQ(std::vector<Lum16u>(21, 0),
              (filtered<Of16uC1>(words, {21, 1}, {{1e38F, -1e38F}, {1.0F}}, lumBorderReplicate)));
}

TEST(Separable, MirrorOfOneRowResolvesToIt) {
    const std::vector<Lum16s> row{5, -7, 100, 3};
    EXPECT_EQ(std::vector<Lum16s>({5 * 31, -7 * 31, 3100, 93}),
              (filtered<Of16sC1>(row, {4, 1}, {{1}, {1, 2, 4, 8, 16}}, lumBorderMirror)));
}

TEST(Separable, ConstantBorderOfANormalisedKernelIsItsValue) {
    // flat image of the border's value: no result may show where the region ends
    for (Lum8u v : {0, 1, 77, 254, 255})
        EXPECT_EQ(std::vector<Lum8u>(35, v),
                  (filtered<Of8uC1>(std::vector<Lum8u>(35, v), {7, 5}, {{1, 4, 6, 4, 1}, {1, 2, 8, 4, 1}, 16},
                                    lumBorderConstant, v)));
    // a column tap on the row above alone shows that row
    EXPECT_EQ(std::vector<Lum8u>(5, 90),
              (filtered<Of8uC1>(std::vector<Lum8u>(5, 1), {5, 1}, {{1, 2, 1}, {4, 0, 0}, 4},
                                lumBorderConstant, 90)));
}

TEST(Separable, ConstantRowsTakeNoHorizontalBorder) {
    // in memory at the left, where there is 50; the row above is the constant everywhere
    const Lum8u pixels[] = {50, 1, 1, 1};
    Lum8u result[3] = {};
    const Kernels<Lum16s> kernels{{1, 0, 0}, {1, 0, 0}};
    Spec<Of8uC1> spec(kernels);
    GuardedBlock buffer(bufferSize<Of8uC1>({3, 1}, {3, 3}));
    const Lum8u value = 9;
    ASSERT_EQ(lumStatusOk, Of8uC1::plain({.src = pixels + 1,
                                          .srcStep = 3,
                                          .dst = result,
                                          .dstStep = 3,
                                          .size = {3, 1},
                                          .border = lumBorderConstant | lumBorderInMemoryLeft,
                                          .values = &value,
                                          .spec = spec.get(),
                                          .buffer = buffer.as()}));
    EXPECT_EQ(9, result[0]);
    EXPECT_EQ(9, result[2]);
}

TEST(Separable, EvenKernelsHaveOneMoreTapToTheRightAndBelow) {
    const std::vector<Lum8u> pixels{10, 20, 30, 40, 50, 60, 70, 80, 90};
    // of four taps the second is at the pixel itself, and the fourth two pixels on
    EXPECT_EQ(pixels, (filtered<Of8uC1>(pixels, {3, 3}, {{0, 1, 0, 0}, {0, 1, 0, 0}}, lumBorderReplicate)));
    EXPECT_EQ(std::vector<Lum8u>({90, 0, 0, 0, 0, 0, 0, 0, 0}),
              (filtered<Of8uC1>(pixels, {3, 3}, {{0, 0, 0, 1}, {0, 0, 0, 1}}, lumBorderConstant)));
    // of two taps the first
    EXPECT_EQ(std::vector<Lum8u>({50, 60, 60, 80, 90, 90, 80, 90, 90}),
              (filtered<Of8uC1>(pixels, {3, 3}, {{0, 1}, {0, 1}}, lumBorderReplicate)));
}

TEST(Separable, TheSpecServesEverySmallerRegion) {
    const Kernels<Lum16s> kernels{{1, 2, 1}, {1, 2, 1}, 4};
    Spec<Of8uC1> spec(kernels);
    GuardedBlock buffer(bufferSize<Of8uC1>({40, 40}, {3, 3}));
    for (LumSize size : {LumSize{40, 40}, LumSize{13, 2}, LumSize{1, 1}}) {
        GuardedImage<Lum8u> src(size.width, size.height);
        GuardedImage<Lum8u> dst(size.width, size.height);
        src.fillRandom(3);
        const Lum8u value = 0;
        ASSERT_EQ(lumStatusOk, Of8uC1::plain({src.data(), src.step(), dst.data(), dst.step(), size,
                                              lumBorderMirror, &value, spec.get(), buffer.as()}));
        EXPECT_TRUE(sameBits(expected<Of8uC1>(src, kernels, lumBorderMirror, &value), dst.pixels()));
    }
}

TEST(Separable, FloatsKeepDenormalsInfinitiesAndNaN) {
    constexpr float infinity = std::numeric_limits<float>::infinity();
    constexpr float tiny = std::numeric_limits<float>::denorm_min();
    const Kernels<Lum32f> copy{{1.0F}, {1.0F}};
    const auto result = filtered<Of32fC1>({tiny, -tiny, infinity, -infinity, -0.0F, NAN, 1e-40F}, {7, 1},
                                          copy, lumBorderReplicate);
    EXPECT_EQ(tiny, result[0]);
    EXPECT_EQ(-tiny, result[1]);
    EXPECT_EQ(infinity, result[2]);
    EXPECT_EQ(-infinity, result[3]);
    EXPECT_TRUE(std::signbit(result[4]));
    EXPECT_TRUE(std::isnan(result[5]));
    EXPECT_EQ(1e-40F, result[6]);
}

namespace {

constexpr unsigned flags = 0x003F;
constexpr unsigned denormalFlag = 0x0002;
constexpr unsigned inexactFlag = 0x0020;
constexpr unsigned denormalMask = 0x0100;

const std::vector<Lum32f> powersOfTwo = {0.5F, 0.25F, 0.25F};
const std::vector<Lum32f> inexactTap = {0.0F, 0.3F, 0.0F};

/// The bits that a run over pixels of one value changes of the control word it starts with.
unsigned changedByARun(unsigned word, float pixel, LumBorderType border = lumBorderReplicate,
                       const std::vector<Lum32f>& kernelX = powersOfTwo) {
    const std::vector<float> pixels(9, pixel);
    std::vector<float> result(9);
    Spec<Of32fC1> spec({kernelX, {1.0F, 2.0F, 1.0F}});
    GuardedBlock buffer(bufferSize<Of32fC1>({9, 1}, {3, 3}));
    LumStatus status = lumStatusOk;
    unsigned changed = 0;
    {
        const ControlWord callers(word);
        status = Of32fC1::plain(
            {pixels.data(), 36, result.data(), 36, {9, 1}, border, &pixel, spec.get(), buffer.as()});
        changed = callers.changed();
    }
    EXPECT_STATUS(lumStatusOk, status);
    return changed;
}

} // namespace

TEST(Separable, DenormalExceptionIsMaskedDuringARun) {
    const unsigned unmasked = 0x1F80 & ~denormalMask;
    // a denormal operand would trap in the run if the mask were not set
    EXPECT_EQ(0U, changedByARun(unmasked, 1e-41F));
    EXPECT_EQ(0U, changedByARun(unmasked, 1e-41F, lumBorderConstant));
    EXPECT_EQ(0U, changedByARun(unmasked, 1.0F));
}

TEST(Separable, TheFlagOfADenormalOperandDoesNotReachTheCaller) {
    EXPECT_EQ(0U, changedByARun(0x1F80, 1e-41F));
    EXPECT_EQ(0U, changedByARun(0x1F80 | denormalFlag, 1e-41F));
}

TEST(Separable, OtherFlagsOfARunStayUnlessTheWordIsRestored) {
    if (!hasExceptionFlags()) GTEST_SKIP() << "the machine does not keep the flags of exceptions";
    const auto changed = [](unsigned word, float pixel) {
        return changedByARun(word, pixel, lumBorderReplicate, inexactTap);
    };
    EXPECT_EQ(inexactFlag, changed(0x1F80, 3.0F));
    // the whole word, where a denormal operand raised its flag or the mask was set for the run
    EXPECT_EQ(0U, changed(0x1F80, 1e-41F));
    EXPECT_EQ(0U, changed(0x1F80 & ~denormalMask, 3.0F));
}

TEST(Separable, FlushModesOfTheCallerAreHisOwn) {
    const unsigned flushing = 0x9FC0;
    EXPECT_EQ(0U, changedByARun(flushing, 1.0F) & ~flags);
}

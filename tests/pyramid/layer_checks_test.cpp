#include <algorithm>
#include <cstring>
#include <limits>
#include <optional>
#include <random>

#include "layer_members.h"
#include "pyramid/layer_down_state.h"
#include "pyramid/layer_up_state.h"
#include "support/member_test.h"
#include "support/status_checks.h"

using namespace support;

namespace {

constexpr int largest = std::numeric_limits<int>::max();
const float notANumber = std::numeric_limits<float>::quiet_NaN();

MEMBER_TEST_SUITE(LayerDownChecks, DownMembers);
MEMBER_TEST_SUITE(LayerUpChecks, UpMembers);
using AllMembers = testing::Types<Down8uC1, Down8uC3, Down16uC1, Down16uC3, Down32fC1, Down32fC3, Down32fC1L,
                                  Up8uC1, Up8uC3, Up16uC1, Up16uC3, Up32fC1, Up32fC3, Up32fC1L>;
MEMBER_TEST_SUITE(LayerChecks, AllMembers);

struct Query {
    LumSize srcRoi{20, 12};
    float rate = 2.0F;
    int kernelSize = 5;
    bool noStateSize = false;
    bool noBufferSize = false;
};
template <class Member> LumStatus refusedQuery(const Query& q) {
    Lum32s stateSize = -7;
    Lum32s bufferSize = -7;
    const LumStatus status =
        Member::getSize(q.srcRoi, q.rate, q.kernelSize, q.noStateSize ? nullptr : &stateSize,
                        q.noBufferSize ? nullptr : &bufferSize);
    EXPECT_EQ(-7, stateSize);
    EXPECT_EQ(-7, bufferSize);
    return status;
}

struct InitCall {
    LumSize srcRoi{20, 12};
    float rate = 2.0F;
    int kernelSize = 5;
    int mode = 2;
    bool noState = false;
    bool noKernel = false;
    bool noMemory = false;
    bool noBuffer = false;
};
/// A call that fails and writes nothing.
template <class Member> LumStatus refusedInit(const InitCall& c) {
    using Tap = typename Member::Tap;
    const Tap kernel[] = {1, 4, 6, 4, 1};
    typename Member::State* state = nullptr;
    std::vector<Lum8u> memory(5000, 0x5A);
    std::vector<Lum8u> buffer(500, 0x5A);
    const LumStatus status = Member::init(
        c.noState ? nullptr : &state, c.srcRoi, c.rate, c.noKernel ? nullptr : kernel, c.kernelSize, c.mode,
        c.noMemory ? nullptr : memory.data(), c.noBuffer ? nullptr : buffer.data());
    EXPECT_EQ(nullptr, state);
    EXPECT_EQ(std::vector<Lum8u>(5000, 0x5A), memory);
    EXPECT_EQ(std::vector<Lum8u>(500, 0x5A), buffer);
    return status;
}

constexpr LumSize badSizes[] = {{0, 9}, {9, 0}, {-4, 9}, {9, -1}};
const float badRates[] = {1.0F, 0.0F, -3.0F, 10.5F, notANumber};
constexpr int badKernelSizes[] = {-3, 0, 1, 2, 4, 6};

/// The size of the state of 16u and one channel in 32-bit builds.
double bytesOf16u(int W, int H, int K, int n) {
    const int a = K / 2;
    if (K < W && K < H) {
        const double P = (std::max(W, 2 * K) + 3) / 4 * 4;
        const double Q = std::max(H, 2 * K);
        return ((K + a + P) * 4 + 110) * K + 4 * P * Q + 4 * std::max(P, Q) + 96 * a + 8 * n + 352;
    }
    const double V = (W + 7) / 8 * 8;
    return ((K + H) * (K + V) + std::max<double>(V, H)) * 4 + (K + (a + K) * 2.0 * K) * 2 + 248 +
           (4 * V + 52) * K;
}

int stepsToOnePixel(LumSize size, float rate) {
    int steps = 0;
    for (; size.width > 1 || size.height > 1; ++steps) lumiGetPyramidDownROI(size, &size, rate);
    return steps;
}

} // namespace

// ---- sizes

MEMBER_TEST(LayerDownChecks, QueriesTestPointersThenSizesThenTheRest) {
    EXPECT_STATUS(lumStatusNullPointer,
                  refusedQuery<TypeParam>({.srcRoi = {0, 0}, .rate = 0, .noStateSize = true}));
    EXPECT_STATUS(lumStatusNullPointer,
                  refusedQuery<TypeParam>({.srcRoi = {0, 0}, .rate = 0, .noBufferSize = true}));
    for (LumSize size : badSizes)
        EXPECT_STATUS(lumStatusSizeError,
                      refusedQuery<TypeParam>({.srcRoi = size, .rate = 0, .kernelSize = 4}));
    for (float rate : badRates) EXPECT_STATUS(lumStatusBadArgument, refusedQuery<TypeParam>({.rate = rate}));
    for (int taps : badKernelSizes)
        EXPECT_STATUS(lumStatusBadArgument, refusedQuery<TypeParam>({.kernelSize = taps}));
}

MEMBER_TEST(LayerUpChecks, QueriesTestSizesThenTheRestThenPointers) {
    for (LumSize size : badSizes)
        EXPECT_STATUS(
            lumStatusSizeError,
            refusedQuery<TypeParam>({.srcRoi = size, .rate = 0, .kernelSize = 4, .noStateSize = true}));
    for (float rate : badRates)
        EXPECT_STATUS(lumStatusBadArgument, refusedQuery<TypeParam>({.rate = rate, .noStateSize = true}));
    for (int taps : badKernelSizes)
        EXPECT_STATUS(lumStatusBadArgument,
                      refusedQuery<TypeParam>({.kernelSize = taps, .noBufferSize = true}));
    EXPECT_STATUS(lumStatusNullPointer, refusedQuery<TypeParam>({.noStateSize = true}));
    EXPECT_STATUS(lumStatusNullPointer, refusedQuery<TypeParam>({.noBufferSize = true}));
}

MEMBER_TEST(LayerChecks, HugeQueriesEndAtTheLargestSize) {
    Lum32s stateSize = 0;
    Lum32s bufferSize = 0;
    ASSERT_EQ(lumStatusOk, TypeParam::getSize({1 << 29, 20}, 2.0F, largest, &stateSize, &bufferSize));
    EXPECT_EQ(largest, stateSize);
    EXPECT_EQ(largest, bufferSize);
}

TEST(LayerDownSizes, SixteenBitOneChannelFollowsTheFormula) {
    if constexpr (sizeof(void*) == 4) {
        for (float rate : {1.01F, 1.5F, 2.0F, 10.0F})
            for (int taps : {3, 5, 7, 21})
                for (int width : {1, 3, 5, 6, 7, 22, 41, 100, 640})
                    for (int height : {1, 3, 4, 7, 21, 22, 50, 480}) {
                        Lum32s stateSize = 0;
                        Lum32s bufferSize = 0;
                        ASSERT_EQ(lumStatusOk, lumiPyramidLayerDownGetSize_16u_C1R(
                                                   {width, height}, rate, taps, &stateSize, &bufferSize));
                        EXPECT_EQ(bytesOf16u(width, height, taps, stepsToOnePixel({width, height}, rate)),
                                  stateSize)
                            << width << " x " << height << ", " << taps << " taps";
                        EXPECT_EQ(8 * std::max(width, height), bufferSize);
                    }
        // By hand: P = 20, Q = 12, ((5 + 2 + 20) * 4 + 110) * 5 + 960 + 80 + 192 + 8 * 5 + 352.
        Lum32s stateSize = 0;
        Lum32s bufferSize = 0;
        ASSERT_EQ(lumStatusOk,
                  lumiPyramidLayerDownGetSize_16u_C1R({20, 12}, 2.0F, 5, &stateSize, &bufferSize));
        EXPECT_EQ(2714, stateSize);
    } else {
        Lum32s stateSize = 0;
        Lum32s bufferSize = 0;
        ASSERT_EQ(lumStatusOk,
                  lumiPyramidLayerDownGetSize_16u_C1R({20, 12}, 2.0F, 5, &stateSize, &bufferSize));
        EXPECT_GT(stateSize, 2714);
    }
}

// ---- initialisers

MEMBER_TEST(LayerDownChecks, InitsTestTheModeFirst) {
    for (int mode : {0, 1, 3, -2})
        EXPECT_STATUS(lumStatusBadArgument,
                      refusedInit<TypeParam>({.srcRoi = {0, 0}, .mode = mode, .noState = true}));
    EXPECT_STATUS(lumStatusNullPointer,
                  refusedInit<TypeParam>({.srcRoi = {0, 0}, .rate = 0, .noState = true}));
    EXPECT_STATUS(lumStatusNullPointer,
                  refusedInit<TypeParam>({.srcRoi = {0, 0}, .rate = 0, .noKernel = true}));
    EXPECT_STATUS(lumStatusNullPointer,
                  refusedInit<TypeParam>({.srcRoi = {0, 0}, .rate = 0, .noMemory = true}));
    EXPECT_STATUS(lumStatusNullPointer, refusedInit<TypeParam>({.rate = 0, .noBuffer = true}));
    EXPECT_STATUS(lumStatusNullPointer, refusedInit<TypeParam>({.kernelSize = 4, .noBuffer = true}));
    for (LumSize size : badSizes) {
        EXPECT_STATUS(lumStatusSizeError,
                      refusedInit<TypeParam>({.srcRoi = size, .rate = 0, .kernelSize = 4}));
        EXPECT_STATUS(lumStatusSizeError, refusedInit<TypeParam>({.srcRoi = size, .noBuffer = true}));
    }
    for (float rate : badRates) EXPECT_STATUS(lumStatusBadArgument, refusedInit<TypeParam>({.rate = rate}));
    for (int taps : badKernelSizes)
        EXPECT_STATUS(lumStatusBadArgument, refusedInit<TypeParam>({.kernelSize = taps}));
}

MEMBER_TEST(LayerDownChecks, TheBufferMayBeNullWithoutATable) {
    using Tap = typename TypeParam::Tap;
    const Tap kernel[] = {1, 4, 6, 4, 1};
    std::vector<Lum8u> memory(100000);
    for (LumSize size : {LumSize{5, 100}, LumSize{100, 5}, LumSize{1, 1}}) {
        typename TypeParam::State* state = nullptr;
        EXPECT_STATUS(lumStatusOk, TypeParam::init(&state, size, 2.0F, kernel, 5, 2, memory.data(), nullptr));
        ASSERT_NE(nullptr, state);
        EXPECT_EQ(nullptr, state->sizes);
        EXPECT_EQ(0, state->sizeCount);
    }
    typename TypeParam::State* state = nullptr;
    EXPECT_STATUS(lumStatusNullPointer,
                  TypeParam::init(&state, {6, 6}, 2.0F, kernel, 5, 2, memory.data(), nullptr));
}

MEMBER_TEST(LayerUpChecks, InitsTestTheModeLast) {
    for (LumSize size : badSizes)
        EXPECT_STATUS(
            lumStatusSizeError,
            refusedInit<TypeParam>({.srcRoi = size, .rate = 0, .kernelSize = 4, .mode = 0, .noState = true}));
    for (float rate : badRates)
        EXPECT_STATUS(lumStatusBadArgument,
                      refusedInit<TypeParam>({.rate = rate, .mode = 0, .noState = true}));
    for (int taps : badKernelSizes)
        EXPECT_STATUS(lumStatusBadArgument, refusedInit<TypeParam>({.kernelSize = taps, .noKernel = true}));
    EXPECT_STATUS(lumStatusNullPointer, refusedInit<TypeParam>({.mode = 0, .noState = true}));
    EXPECT_STATUS(lumStatusNullPointer, refusedInit<TypeParam>({.mode = 0, .noKernel = true}));
    EXPECT_STATUS(lumStatusNullPointer, refusedInit<TypeParam>({.mode = 0, .noMemory = true}));
    EXPECT_STATUS(lumStatusNullPointer, refusedInit<TypeParam>({.mode = 0, .noBuffer = true}));
    for (int mode : {0, 1, 3, -2})
        EXPECT_STATUS(lumStatusBadArgument, refusedInit<TypeParam>({.mode = mode}));
}

MEMBER_TEST(LayerChecks, TapsThatDifferGiveAWarning) {
    using Tap = typename TypeParam::Tap;
    const auto statusOf = [](std::vector<Tap> kernel) {
        return LayerState<TypeParam>({30, 20}, 2.0F, kernel).status();
    };
    EXPECT_STATUS(lumStatusOk, statusOf({1, 4, 6, 4, 1}));
    EXPECT_STATUS(lumStatusKernelNotSymmetric, statusOf({1, 4, 6, 4, 2}));
    EXPECT_STATUS(lumStatusKernelNotSymmetric, statusOf({1, 5, 6, 4, 1}));
    EXPECT_STATUS(lumStatusKernelNotSymmetric, statusOf({1, 2, -1}));
    if constexpr (std::is_floating_point_v<Tap>) {
        const float smallest = std::numeric_limits<float>::min();
        EXPECT_STATUS(lumStatusOk, statusOf({smallest, 1, 0}));
        EXPECT_STATUS(lumStatusKernelNotSymmetric, statusOf({std::nextafter(smallest, 1.0F), 1, 0}));
    }
}

MEMBER_TEST(LayerDownChecks, StatesHoldTheirFields) {
    using Tap = typename TypeParam::Tap;
    for (std::size_t spare = 0; spare < 9; ++spare) {
        const LayerState<TypeParam> object({20, 12}, 1.99999F, {1, 2, 4, 0, 7}, spare);
        const LumPyramidLayerDownState& state = *object.get();
        EXPECT_EQ(0U, reinterpret_cast<std::uintptr_t>(&state) % sizeof(void*));
        EXPECT_EQ(5, state.kernelSize);
        EXPECT_EQ(sizeof(typename TypeParam::T) == 1 ? lumType8u
                  : sizeof(Tap) == 2                 ? lumType16u
                                                     : lumType32f,
                  state.dataType);
        EXPECT_EQ(20, state.width);
        EXPECT_EQ(12, state.height);
        EXPECT_EQ(2, state.mode);
        EXPECT_EQ(1.99999F, state.rate);
        EXPECT_EQ(1, state.ready);
        ASSERT_NE(nullptr, state.sizes);
        ASSERT_EQ(stepsToOnePixel({20, 12}, 1.99999F) + 1, state.sizeCount);
        LumSize size{20, 12};
        for (int i = 0; i < state.sizeCount; ++i) {
            EXPECT_EQ(size.width, state.sizes[i].width);
            EXPECT_EQ(size.height, state.sizes[i].height);
            lumiGetPyramidDownROI(size, &size, 1.99999F);
        }
        // 1 2 4 2 1 of a sum of 10, with two bits more than are kept.
        if constexpr (std::is_integral_v<typename TypeParam::T>) {
            const auto* taps = static_cast<const Lum32s*>(state.kernelCopy);
            const int expected[] = {16384 / 10 >> 2, 32768 / 10 >> 2, 65536 / 10 >> 2, 32768 / 10 >> 2,
                                    16384 / 10 >> 2};
            EXPECT_TRUE(std::equal(taps, taps + 5, expected));
        } else {
            const auto* taps = static_cast<const Lum32f*>(state.kernelCopy);
            const float expected[] = {1 / 10.0F, 2 / 10.0F, 4 / 10.0F, 2 / 10.0F, 1 / 10.0F};
            EXPECT_TRUE(std::equal(taps, taps + 5, expected));
        }
    }
}

MEMBER_TEST(LayerDownChecks, TheMarkerTellsTheFastCases) {
    using Tap = typename TypeParam::Tap;
    const auto markerOf = [](float rate, std::vector<Tap> kernel) {
        return LayerState<TypeParam>({20, 12}, rate, kernel).get()->fastCase;
    };
    EXPECT_EQ(11, markerOf(2.0F, {1, 4, 6, 4, 1}));
    EXPECT_EQ(11, markerOf(1.99999F, {1, 4, 6, 9, 9}));
    EXPECT_EQ(1, markerOf(2.0F, {2, 8, 12, 8, 2}));
    EXPECT_EQ(1, markerOf(2.00001F, {1, 4, 6, 4, 6, 4, 1}));
    EXPECT_EQ(1, markerOf(2.0F, {1, 4, 5, 4, 1}));
    EXPECT_EQ(1, markerOf(2.0F, {1, 4, 1}));
    EXPECT_EQ(0, markerOf(1.99998F, {1, 4, 6, 4, 1}));
    EXPECT_EQ(0, markerOf(2.00002F, {1, 4, 6, 4, 1}));
    EXPECT_EQ(0, markerOf(3.0F, {1, 4, 6, 4, 1}));
}

// ---- runs

namespace {

template <class Member> struct Run {
    using T = typename Member::T;
    static constexpr int channels = Member::channels;
    static constexpr bool isDown = std::is_same_v<typename Member::State, LumPyramidLayerDownState>;
    static constexpr LumSize large{20, 12};
    static constexpr LumSize small{10, 6};

    GuardedImage<T> src{isDown ? 20 : 10, isDown ? 12 : 6, {.channels = channels}};
    GuardedImage<T> dst{isDown ? 10 : 20, isDown ? 6 : 12, {.channels = channels}};
    LayerState<Member> state{isDown ? large : small, 2.0F, {1, 4, 6, 4, 1}};

    const T* from = src.data();
    T* to = dst.data();
    typename Member::State* object = state.get();
    int srcStep = src.step();
    int dstStep = dst.step();
    LumSize srcRoi = src.size();
    LumSize dstRoi = dst.size();

    LumStatus call() const { return Member::run(from, srcStep, srcRoi, to, dstStep, dstRoi, object); }
    /// With one thing changed, which must be refused without writing.
    template <class Change> LumStatus refused(Change change) {
        Run changed;
        change(changed);
        const LumStatus status = changed.call();
        EXPECT_TRUE(changed.dst.untouched());
        return status;
    }
};

} // namespace

MEMBER_TEST(LayerChecks, RunsTestTheirArgumentsInOrder) {
    using R = Run<TypeParam>;
    using T = typename TypeParam::T;
    R run;
    EXPECT_STATUS(lumStatusOk, run.call());
    const auto emptySizes = [](R& r) { r.srcRoi = r.dstRoi = {0, 0}; };
    EXPECT_STATUS(lumStatusNullPointer, run.refused([&](R& r) { r.from = nullptr, emptySizes(r); }));
    EXPECT_STATUS(lumStatusNullPointer, run.refused([&](R& r) { r.to = nullptr, emptySizes(r); }));
    EXPECT_STATUS(lumStatusNullPointer, run.refused([&](R& r) { r.object = nullptr, emptySizes(r); }));
    for (LumSize size : badSizes) {
        EXPECT_STATUS(lumStatusSizeError,
                      run.refused([&](R& r) { r.srcRoi = size, r.srcStep = r.dstStep = 0; }));
        EXPECT_STATUS(lumStatusSizeError,
                      run.refused([&](R& r) { r.dstRoi = size, r.srcStep = r.dstStep = 0; }));
    }
    constexpr int size = sizeof(T);
    EXPECT_STATUS(lumStatusStepError, run.refused([&](R& r) { r.srcStep -= size, r.object->rate = 0; }));
    EXPECT_STATUS(lumStatusStepError, run.refused([&](R& r) { r.dstStep -= size, r.object->rate = 0; }));
    EXPECT_STATUS(lumStatusStepError, run.refused([&](R& r) { r.srcStep -= 1, r.dstStep += 1; }));
    EXPECT_STATUS(lumStatusStepError, run.refused([&](R& r) { r.dstStep -= 1, r.srcStep += 1; }));
    EXPECT_STATUS(lumStatusStepError, run.refused([&](R& r) { r.srcStep = -r.srcStep; }));
    if constexpr (size > 1) {
        EXPECT_STATUS(lumStatusStepAlignmentError,
                      run.refused([&](R& r) { r.srcStep += 1, r.object->rate = 0; }));
        EXPECT_STATUS(lumStatusStepAlignmentError,
                      run.refused([&](R& r) { r.dstStep += 1, r.object->rate = 0; }));
    }
    for (float rate : badRates)
        EXPECT_STATUS(lumStatusBadArgument, run.refused([&](R& r) {
            r.object->rate = rate, r.dstRoi.width -= 3, r.object->ready = 0;
        }));
    EXPECT_STATUS(lumStatusSizeError, run.refused([&](R& r) { r.dstRoi.width -= 2, r.object->ready = 0; }));
    EXPECT_STATUS(lumStatusSizeError, run.refused([&](R& r) { r.dstRoi.height -= 2, r.object->ready = 0; }));
    EXPECT_STATUS(lumStatusBadArgument, run.refused([&](R& r) { r.object->ready = 0; }));
    EXPECT_STATUS(lumStatusBadArgument, run.refused([&](R& r) { r.object->ready = 2; }));
}

MEMBER_TEST(LayerDownChecks, TheResultHasTheSizeBelowExactly) {
    using T = typename TypeParam::T;
    for (float rate : {2.0F, 1.5F, 3.7F}) {
        const LayerState<TypeParam> state({60, 40}, rate, {1, 4, 6, 4, 1});
        // In the table, and not in it.
        for (LumSize size : {LumSize{60, 40}, LumSize{51, 33}}) {
            LumSize expected{};
            lumiGetPyramidDownROI(size, &expected, rate);
            GuardedImage<T> src(size.width, size.height, {.channels = TypeParam::channels});
            for (int dx : {-1, 0, 1})
                for (int dy : {-1, 0, 1}) {
                    GuardedImage<T> dst(expected.width + dx, expected.height + dy,
                                        {.channels = TypeParam::channels});
                    EXPECT_STATUS(dx == 0 && dy == 0 ? lumStatusOk : lumStatusSizeError,
                                  runLayer(src, dst, state));
                }
        }
    }
}

MEMBER_TEST(LayerUpChecks, TheResultHasAnySizeInTheRange) {
    using T = typename TypeParam::T;
    for (float rate : {2.0F, 1.5F, 3.7F}) {
        const LumSize size{11, 7};
        const LayerState<TypeParam> state(size, rate, {1, 4, 6, 4, 1});
        LumSize least{};
        LumSize most{};
        lumiGetPyramidUpROI(size, &least, &most, rate);
        GuardedImage<T> src(size.width, size.height, {.channels = TypeParam::channels});
        for (int width = least.width - 1; width <= most.width + 1; ++width)
            for (int height : {least.height - 1, least.height, most.height, most.height + 1}) {
                GuardedImage<T> dst(width, height, {.channels = TypeParam::channels});
                const bool fits = width >= least.width && width <= most.width && height >= least.height &&
                                  height <= most.height;
                EXPECT_STATUS(fits ? lumStatusOk : lumStatusSizeError, runLayer(src, dst, state));
            }
    }
}

TEST(LayerWideSizes, SizesAboveAnIntAreRefused) {
    if constexpr (sizeof(std::intptr_t) > 4) {
        const auto tooLong = static_cast<std::intptr_t>(std::int64_t{1} << 31);
        const LumSizeL wrong{tooLong, 4};
        Lum32s a = -1;
        Lum32s b = -1;
        EXPECT_STATUS(lumStatusSizeError, lumiPyramidLayerDownGetSize_32f_C1R_L(wrong, 2.0F, 3, &a, &b));
        EXPECT_STATUS(lumStatusSizeError, lumiPyramidLayerUpGetSize_32f_C1R_L(wrong, 2.0F, 3, &a, &b));
        LumPyramidLayerDownState* down = nullptr;
        LumPyramidLayerUpState* up = nullptr;
        Lum8u block[8] = {};
        const float kernel[] = {1, 2, 1};
        EXPECT_STATUS(lumStatusSizeError,
                      lumiPyramidLayerDownInit_32f_C1R_L(&down, wrong, 2.0F, kernel, 3, 2, block, block));
        EXPECT_STATUS(lumStatusSizeError,
                      lumiPyramidLayerUpInit_32f_C1R_L(&up, wrong, 2.0F, kernel, 3, 2, block, block));
        EXPECT_EQ(-1, a + (down != nullptr) + (up != nullptr));
    } else {
        EXPECT_EQ(sizeof(int), sizeof(std::intptr_t));
    }
}

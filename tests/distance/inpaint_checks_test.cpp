#include <limits>

#include "inpaint_members.h"

using namespace support;
using namespace inpainting;

namespace {

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

int up(int bytes, int unit) { return (bytes + unit - 1) / unit * unit; }

/// A mask of the given rectangle, and everything an analysis of it takes.
struct Fixture {
    GuardedImage<Lum8u> mask{6, 5};
    GuardedImage<Lum32f> distances{6, 5};
    Sizes sizes;
    GuardedBlock stateBlock, buffer;
    LumInpaintState* state = nullptr;

    Fixture()
        : sizes((mask.fill([](int x, int y, int) { return x == 3 && y == 2; }), sizesOf(mask, {}))),
          stateBlock(static_cast<std::size_t>(sizes.state)),
          buffer(static_cast<std::size_t>(sizes.buffer)) {
        march(mask, distances);
    }
};

} // namespace

TEST(InpaintSizes, AreThoseOfTheBlocks) {
    if (sizeof(void*) != 4) return;
    for (const LumRect hole : {LumRect{20, 10, 1, 1}, {0, 0, 70, 40}, {3, 30, 8, 9}, {60, 0, 10, 3}})
        for (float radius : {1.0F, 1.9F, 3.0F, 7.5F})
            for (int channels : {1, 3})
                for (int method : {lumInpaintFront, lumInpaintIsophote}) {
                    GuardedImage<Lum8u> mask(70, 40);
                    mask.fill([&](int x, int y, int) {
                        return x >= hole.x && x < hole.x + hole.width && y >= hole.y &&
                               y < hole.y + hole.height;
                    });
                    const int r = static_cast<int>(radius);
                    const int w = std::min(hole.x + hole.width + r + 1, 70) - std::max(hole.x - r - 1, 0);
                    const int h = std::min(hole.y + hole.height + r + 1, 40) - std::max(hole.y - r - 1, 0);
                    Lum32s s1 = 0, b1 = 0, s2 = 0, b2 = 0;
                    ASSERT_EQ(lumStatusOk,
                              lumiMorphologyBorderGetSize_8u_C1R({w, h}, {2 * r + 1, 2 * r + 1}, &s1, &b1));
                    ASSERT_EQ(lumStatusOk, lumiMorphologyBorderGetSize_8u_C1R({w, h}, {3, 3}, &s2, &b2));
                    int state = ((up(s1, 16) + up(s2, 16) + 167) & ~63) +
                                up((56 * r + 28) * (2 * r + 1), 64) + up(8 * hole.width * hole.height, 64) +
                                (w + 63) / 64 * 128 * h + up(4 * w, 64) * h + up(4 * channels * w, 64) * h +
                                64;
                    if (method == lumInpaintFront) state += up(4 * w, 64) * h;
                    const Sizes sizes =
                        sizesOf(mask, {.radius = radius, .method = method, .channels = channels});
                    EXPECT_EQ(state, sizes.state);
                    EXPECT_EQ((2 * r + 1) * (2 * r + 1) + b1 + b2, sizes.buffer);
                }
}

TEST(InpaintSizes, StatusesInTheirOrder) {
    const GuardedImage<Lum8u> mask(6, 5);
    Lum32s stateSize = -1, bufferSize = -1;
    struct Case {
        LumStatus status;
        bool mask;
        int step;
        LumSize size;
        bool stateSize, bufferSize;
        float radius;
        int method, channels;
    };
    const LumSize size = mask.size();
    const Case cases[] = {
        {lumStatusNullPointer, false, 5, size, true, true, 1, 0, 1},
        {lumStatusStepError, true, 5, {6, 0}, true, true, 1, 0, 1},
        {lumStatusStepError, true, -1, {0, 5}, true, true, 1, 0, 1},
        {lumStatusSizeError, true, 6, {0, 5}, false, true, 1, 0, 1},
        {lumStatusSizeError, true, 6, {6, -5}, true, true, 1, 0, 1},
        {lumStatusSizeError, true, -6, {-6, 5}, true, true, 1, 0, 1},
        {lumStatusNullPointer, true, 6, size, false, true, 0.5F, 0, 1},
        {lumStatusNullPointer, true, 6, size, true, false, 1, 2, 1},
        {lumStatusBadArgument, true, 6, size, true, true, 0.99F, 0, 2},
        {lumStatusBadArgument, true, 6, size, true, true, -3, 0, 1},
        {lumStatusBadArgument, true, 6, size, true, true, notANumber, 0, 1},
        {lumStatusBadArgument, true, 6, size, true, true, 1, 2, 4},
        {lumStatusBadArgument, true, 6, size, true, true, 1, -1, 1},
        {lumStatusChannelCountError, true, 6, size, true, true, 1, 1, 2},
        {lumStatusChannelCountError, true, 6, size, true, true, 1, 0, 4},
        {lumStatusChannelCountError, true, 6, size, true, true, 1, 0, 0},
    };
    for (const Case& c : cases)
        EXPECT_STATUS(c.status, lumiInpaintGetSize(c.mask ? mask.data() : nullptr, c.step, c.size, c.radius,
                                                   c.method, c.channels, c.stateSize ? &stateSize : nullptr,
                                                   c.bufferSize ? &bufferSize : nullptr));
    EXPECT_EQ(-1, stateSize);
    EXPECT_EQ(-1, bufferSize);
}

TEST(InpaintInit, StatusesInTheirOrder) {
    Fixture f;
    const GuardedImage<Lum8u> emptyMask(6, 5);
    struct Case {
        LumStatus status;
        bool state, distances;
        int distancesStep;
        bool mask;
        int maskStep;
        LumSize size;
        float radius;
        int method;
        bool stateBuffer, initBuffer;
    };
    const LumSize size = f.mask.size();
    const Case cases[] = {
        {lumStatusNullPointer, true, true, 24, false, 6, {0, 5}, 3, 0, true, true},
        {lumStatusSizeError, true, true, 24, true, -1, {0, 5}, 3, 0, true, true},
        {lumStatusSizeError, false, true, 24, true, 6, {6, 0}, 3, 0, true, true},
        {lumStatusStepError, true, false, 24, true, 5, size, 3, 0, true, true},
        {lumStatusNullPointer, true, false, 23, true, 6, size, 3, 0, true, true},
        {lumStatusNullPointer, false, true, 23, true, 6, size, 3, 0, true, true},
        {lumStatusStepError, true, true, 23, true, 6, size, 3, 0, false, true},
        {lumStatusStepError, true, true, -24, true, 6, size, 3, 0, true, true},
        {lumStatusStepAlignmentError, true, true, 26, true, 6, size, 3, 0, false, true},
        {lumStatusNullPointer, true, true, 24, true, 6, size, 0, 0, false, true},
        {lumStatusNullPointer, true, true, 24, true, 6, size, 0, 0, true, false},
        {lumStatusBadArgument, true, true, 24, true, 6, size, 0.5F, 0, true, true},
        {lumStatusBadArgument, true, true, 24, true, 6, size, notANumber, 0, true, true},
        {lumStatusBadArgument, true, true, 24, true, 6, size, 1e9F, 0, true, true},
        {lumStatusBadArgument, true, true, 24, true, 6, size, 3, 2, true, true},
        {lumStatusBadArgument, true, true, 24, true, 6, size, 3, -1, true, true},
    };
    const std::vector<Lum8u> before(f.stateBlock.as<>(), f.stateBlock.as<>() + f.stateBlock.size());
    for (const auto init : {lumiInpaintInit_8u_C1R, lumiInpaintInit_8u_C3R})
        for (const Case& c : cases) {
            EXPECT_STATUS(c.status,
                          init(c.state ? &f.state : nullptr, c.distances ? f.distances.data() : nullptr,
                               c.distancesStep, c.mask ? f.mask.data() : nullptr, c.maskStep, c.size,
                               c.radius, c.method, c.stateBuffer ? f.stateBlock.as<>() : nullptr,
                               c.initBuffer ? f.buffer.as<>() : nullptr));
            EXPECT_EQ(nullptr, f.state);
            EXPECT_EQ(0, std::memcmp(before.data(), f.stateBlock.as<>(), before.size()));
        }
    // An empty mask needs no buffer, and its radius and method are tested all the same.
    for (const auto& [radius, method] : {std::pair{0.5F, 0}, {3.0F, 2}})
        EXPECT_STATUS(lumStatusBadArgument,
                      lumiInpaintInit_8u_C1R(&f.state, f.distances.data(), 24, emptyMask.data(), 6, size,
                                             radius, method, f.stateBlock.as<>(), nullptr));
    EXPECT_EQ(nullptr, f.state);
}

TEST(InpaintSizes, RadiusIsLimitedWhereThereIsAHole) {
    GuardedImage<Lum8u> mask(8, 8);
    for (int y = 0; y < 8; ++y) std::memset(mask.data() + y * mask.step(), 0, 8);
    const auto status = [&](float radius, Lum32s* state, Lum32s* buffer) {
        return lumiInpaintGetSize(mask.data(), mask.step(), {8, 8}, radius, lumInpaintFront, 1, state,
                                  buffer);
    };
    Lum32s state = 0;
    Lum32s buffer = -1;
    EXPECT_STATUS(lumStatusOk, status(5000, &state, &buffer));
    EXPECT_EQ(sizeof(void*) == 4 ? 128 : 192, state);
    EXPECT_EQ(0, buffer);
    mask.data()[mask.step() + 1] = 1;
    EXPECT_STATUS(lumStatusBadArgument, status(5000, &state, &buffer));
    EXPECT_STATUS(lumStatusOk, status(4377.5F, &state, &buffer));
}

TEST(InpaintRun, StatusesInTheirOrder) {
    Fixture f;
    ASSERT_EQ(lumStatusOk, lumiInpaintInit_8u_C1R(&f.state, f.distances.data(), 24, f.mask.data(), 6,
                                                  f.mask.size(), 3, 0, f.stateBlock.as<>(), f.buffer.as<>()));
    GuardedImage<Lum8u> src(6, 5, {.channels = 3}), dst(6, 5, {.channels = 3});
    dst.fillRandom(6);
    struct Case {
        LumStatus status;
        bool src, dst, state;
        LumSize size;
        int srcStep, dstStep;
        bool buffer;
    };
    const LumSize size = src.size();
    const Case cases[] = {
        {lumStatusNullPointer, false, true, true, {0, 5}, 6, 6, true},
        {lumStatusNullPointer, true, false, true, size, 5, 6, true},
        {lumStatusNullPointer, true, true, false, {6, 4}, 6, 6, true},
        {lumStatusSizeError, true, true, true, {0, 5}, 5, 6, true},
        {lumStatusSizeError, true, true, true, {6, -1}, 6, 6, false},
        {lumStatusSizeError, true, true, true, {5, 5}, 4, 6, true},
        {lumStatusSizeError, true, true, true, {6, 6}, 6, 5, true},
        {lumStatusStepError, true, true, true, size, 5, 6, false},
        {lumStatusStepError, true, true, true, size, 6, 5, true},
        {lumStatusStepError, true, true, true, size, -6, 6, true},
        {lumStatusNullPointer, true, true, true, size, 6, 6, false},
    };
    for (const Case& c : cases)
        EXPECT_REFUSED(c.status, dst,
                       lumiInpaint_8u_C1R(c.src ? src.data() : nullptr, c.srcStep,
                                          c.dst ? dst.data() : nullptr, c.dstStep, c.size,
                                          c.state ? f.state : nullptr, c.buffer ? f.buffer.as<>() : nullptr));
    // A state for one channel: the other tests come first.
    EXPECT_REFUSED(lumStatusStepError, dst,
                   lumiInpaint_8u_C3R(src.data(), 17, dst.data(), 18, size, f.state, f.buffer.as<>()));
    EXPECT_REFUSED(lumStatusNullPointer, dst,
                   lumiInpaint_8u_C3R(src.data(), 18, dst.data(), 18, size, f.state, nullptr));
    EXPECT_REFUSED(lumStatusBadArgument, dst,
                   lumiInpaint_8u_C3R(src.data(), 18, dst.data(), 18, size, f.state, f.buffer.as<>()));
    // So is the state of an empty mask.
    const GuardedImage<Lum8u> emptyMask(6, 5);
    ASSERT_EQ(lumStatusOk, lumiInpaintInit_8u_C3R(&f.state, f.distances.data(), 24, emptyMask.data(), 6, size,
                                                  3, 1, f.stateBlock.as<>(), nullptr));
    EXPECT_REFUSED(lumStatusBadArgument, dst,
                   lumiInpaint_8u_C1R(src.data(), 6, dst.data(), 6, size, f.state, nullptr));
    EXPECT_STATUS(lumStatusOk, lumiInpaint_8u_C3R(src.data(), 18, dst.data(), 18, size, f.state, nullptr));
}

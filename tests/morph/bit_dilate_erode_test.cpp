#include <gtest/gtest.h>
#include <random>

#include "kernels/morph/bit_mask.h"
#include "morph/morph_members.h"
#include "morph/sizes.h"
#include "support/status_checks.h"

using namespace support;

namespace {

/// A region of bits in exactly the bytes that hold it and its margins, against an unreadable page.
class Bits {
  public:
    Bits(LumSize size, int offset, Margins margin, Guard guard)
        : size_(size),
          margin_(margin),
          // The first bit of the first margin pixel lies in the first byte.
          start_((offset & 7) + 8 * ((margin.left + 7) / 8) - margin.left),
          bytes_((start_ % 8 + margin.left + size.width + margin.right + 7) / 8,
                 margin.top + size.height + margin.bottom, {.guard = guard}),
          offset_(start_ % 8 + margin.left) {}

    void fillRandom(unsigned seed) { bytes_.fillRandom(seed); }
    /// Few bits of the other value.
    void fillSparse(unsigned seed, bool common) {
        std::mt19937 engine(seed);
        bytes_.fill([&](int, int, int) {
            const int rare = engine() % 3 == 0 ? 1 << engine() % 8 : 0;
            return common ? 255 - rare : rare;
        });
    }

    Lum8u* first() { return bytes_.row(margin_.top); }
    const Lum8u* first() const { return bytes_.row(margin_.top); }
    int step() const { return bytes_.step(); }
    int offset() const { return offset_; }

    /// Coordinates may lie in the margin.
    bool at(int x, int y) const {
        const int bit = offset_ + x;
        return (bytes_.row(margin_.top + y)[bit >> 3] >> (bit & 7) & 1) != 0;
    }
    const std::vector<Lum8u> allBytes() const { return bytes_.pixels(); }
    bool outsideUntouched() const { return bytes_.outsideUntouched(); }
    bool untouched() const { return bytes_.untouched(); }
    LumSize size() const { return size_; }

  private:
    LumSize size_;
    Margins margin_;
    int start_;
    GuardedImage<Lum8u> bytes_;
    int offset_;
};

struct BitCall {
    LumSize roiSize;
    LumBorderType border = lumBorderReplicate;
    Lum8u value = 0;
    LumSize initSize = {0, 0};
    int spare = 0;

    LumSize madeFor() const { return initSize.width == 0 ? roiSize : initSize; }
};

constexpr LumSizeL wide(LumSize size) { return {size.width, size.height}; }

LumStatus runPlain(Operation operation, const BitCall& call, const CallerMask& mask, const Bits& src,
                   Bits& dst) {
    Lum32s specBytes = 0;
    Lum32s bufferBytes = 0;
    EXPECT_EQ(lumStatusOk,
              lumiMorphologyBorderGetSize_1u_C1R(call.madeFor(), mask.size, &specBytes, &bufferBytes));
    GuardedBlock spec(specBytes, Guard::after, call.spare);
    GuardedBlock buffer(bufferBytes, Guard::after, call.spare);
    auto* const state = spec.as<LumMorphBitState>();
    EXPECT_EQ(lumStatusOk, lumiMorphologyBorderInit_1u_C1R(call.madeFor(), mask.cells.data(), mask.size,
                                                           state, buffer.as()));
    auto* const member = operation == Operation::dilate ? lumiDilateBorder_1u_C1R : lumiErodeBorder_1u_C1R;
    return member(src.first(), src.step(), src.offset(), dst.first(), dst.step(), dst.offset(), call.roiSize,
                  call.border, call.value, state, buffer.as());
}

LumStatus runLong(Operation operation, const BitCall& call, const CallerMask& mask, const Bits& src,
                  Bits& dst) {
    Lum32s specBytes = 0;
    Lum32s bufferBytes = 0;
    EXPECT_EQ(lumStatusOk, lumiErodeGetSpecSize_L(wide(call.madeFor()), wide(mask.size), &specBytes));
    EXPECT_EQ(lumStatusOk,
              lumiErodeGetBufferSize_L(wide(call.madeFor()), wide(mask.size), lumType1u, 1, &bufferBytes));
    GuardedBlock spec(specBytes, Guard::after, call.spare);
    GuardedBlock buffer(bufferBytes, Guard::after, call.spare);
    auto* const state = spec.as<LumMorphLongState>();
    EXPECT_EQ(lumStatusOk, lumiErodeInit_L(wide(call.madeFor()), mask.cells.data(), wide(mask.size), state));
    auto* const member = operation == Operation::dilate ? lumiDilate_1u_C1R_L : lumiErode_1u_C1R_L;
    return member(src.first(), src.step(), src.offset(), dst.first(), dst.step(), dst.offset(),
                  wide(call.roiSize), call.border, &call.value, state, buffer.as());
}

/// The bit of one pixel by definition.
bool joinedUnderMask(Operation operation, const Bits& src, int x, int y, const CallerMask& mask,
                     LumBorderType border, bool value) {
    const bool dilates = operation == Operation::dilate;
    const LumBorderType kind = border & 15;
    const int anchorX = (mask.size.width - 1) / 2;
    const int anchorY = (mask.size.height - 1) / 2;
    const int left = (border & lumBorderInMemoryLeft) != 0 ? -anchorX : 0;
    const int right =
        src.size().width + ((border & lumBorderInMemoryRight) != 0 ? mask.size.width - 1 - anchorX : 0);
    const int top = (border & lumBorderInMemoryTop) != 0 ? -anchorY : 0;
    const int bottom =
        src.size().height + ((border & lumBorderInMemoryBottom) != 0 ? mask.size.height - 1 - anchorY : 0);
    for (int j = 0; j < mask.size.height; ++j)
        for (int i = 0; i < mask.size.width; ++i) {
            if (!mask.at(i, j)) continue;
            const int px = indexOutside(x + i - anchorX, left, right, kind);
            const int py = indexOutside(y + j - anchorY, top, bottom, kind);
            const bool isOutside = px == right || py == bottom;
            const bool bit = !isOutside ? src.at(px, py) : kind == lumBorderConstant ? value : !dilates;
            if (bit == dilates) return dilates;
        }
    return !dilates;
}

Margins marginsOf(LumBorderType border, LumSize mask) {
    Margins margins;
    margins.top = (border & lumBorderInMemoryTop) != 0 ? (mask.height - 1) / 2 : 0;
    margins.bottom = (border & lumBorderInMemoryBottom) != 0 ? mask.height / 2 : 0;
    margins.left = (border & lumBorderInMemoryLeft) != 0 ? (mask.width - 1) / 2 : 0;
    margins.right = (border & lumBorderInMemoryRight) != 0 ? mask.width / 2 : 0;
    return margins;
}

/// Every bit of the destination's bytes: those of the region by definition, the others as they were.
void expectDefinition(Operation operation, const BitCall& call, const CallerMask& mask, const Bits& src,
                      const Bits& before, const Bits& dst) {
    const int bits = 8 * static_cast<int>(dst.allBytes().size()) / call.roiSize.height;
    for (int y = 0; y < call.roiSize.height; ++y)
        for (int x = -dst.offset(); x < bits - dst.offset(); ++x) {
            const bool inside = x >= 0 && x < call.roiSize.width;
            const bool expected =
                inside ? joinedUnderMask(operation, src, x, y, mask, call.border, call.value != 0)
                       : before.at(x, y);
            ASSERT_EQ(expected, dst.at(x, y))
                << "pixel " << x << ", " << y << ", region " << call.roiSize.width << " x "
                << call.roiSize.height << ", mask " << mask.size.width << " x " << mask.size.height
                << ", border " << std::hex << call.border;
        }
    EXPECT_TRUE(dst.outsideUntouched());
}

struct Offsets {
    int src;
    int dst;
};

void runAll(const BitCall& call, const CallerMask& mask, unsigned seed, Offsets offsets,
            Guard guard = Guard::after) {
    Bits src(call.roiSize, offsets.src, marginsOf(call.border, mask.size), guard);
    for (Operation operation : {Operation::dilate, Operation::erode}) {
        if (seed % 3 == 0)
            src.fillRandom(seed);
        else
            src.fillSparse(seed, operation == Operation::erode);
        for (auto* run : {runPlain, runLong}) {
            Bits dst(call.roiSize, offsets.dst, 0, guard);
            Bits before(call.roiSize, offsets.dst, 0, guard);
            dst.fillRandom(seed + 1);
            before.fillRandom(seed + 1);
            ASSERT_EQ(lumStatusOk, run(operation, call, mask, src, dst));
            expectDefinition(operation, call, mask, src, before, dst);
            if (testing::Test::HasFatalFailure()) return;
        }
    }
}

} // namespace

TEST(BitDilateErode, ByHand) {
    // Ten pixels from bit 3: 0000100110, dilated by three in a row.
    const Lum8u src[] = {0b10000'000, 0b000'01100};
    Lum8u dst[] = {0b0000'0101, 0b1010'0000};
    Lum32s specBytes = 0;
    Lum32s bufferBytes = 0;
    const Lum8u mask[] = {1, 1, 1};
    ASSERT_EQ(lumStatusOk, lumiMorphologyBorderGetSize_1u_C1R({10, 1}, {3, 1}, &specBytes, &bufferBytes));
    GuardedBlock spec(specBytes);
    GuardedBlock buffer(bufferBytes);
    auto* const state = spec.as<LumMorphBitState>();
    ASSERT_EQ(lumStatusOk, lumiMorphologyBorderInit_1u_C1R({10, 1}, mask, {3, 1}, state, buffer.as()));
    ASSERT_EQ(lumStatusOk, lumiDilateBorder_1u_C1R(src, 2, 3, dst, 2, 3, {10, 1}, lumBorderReplicate, 0,
                                                   state, buffer.as()));
    EXPECT_EQ(0b11000'101, dst[0]);
    EXPECT_EQ(0b101'11111, dst[1]);
    ASSERT_EQ(lumStatusOk, lumiErodeBorder_1u_C1R(src, 2, 3, dst, 2, 3, {10, 1}, lumBorderDefaultValue, 0,
                                                  state, buffer.as()));
    EXPECT_EQ(0b00000'101, dst[0]);
    EXPECT_EQ(0b101'00000, dst[1]);
}

TEST(BitDilateErode, RandomRunsGiveTheDefinition) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937 engine(seed);
    const auto below = [&](int n) { return static_cast<int>(engine() % n); };
    for (int i = 0; i < 3000; ++i) {
        BitCall call;
        const bool isTiny = below(3) == 0;
        call.roiSize = {1 + below(isTiny ? 12 : 200), 1 + below(isTiny ? 5 : 16)};
        if (below(3) == 0) call.initSize = {call.roiSize.width + below(30), call.roiSize.height + below(30)};
        const int width = 1 + below(below(4) == 0 ? 70 : 9);
        const int height = 1 + below(below(4) == 0 ? 30 : 6);
        const int kinds[] = {lumBorderReplicate, lumBorderDefaultValue, lumBorderConstant};
        call.border = kinds[below(3)] | (below(2) == 0 ? below(16) << 4 : 0);
        call.value = static_cast<Lum8u>(below(3) * 4);
        call.spare = below(32);
        CallerMask mask =
            below(2) == 0 ? fullMask(width, height) : randomMask(width, height, 1 + below(99), engine);
        mask.cells[below(static_cast<int>(mask.cells.size()))] = 7;
        runAll(call, mask, engine(), {below(20), below(20)}, below(2) == 0 ? Guard::after : Guard::before);
        if (HasFatalFailure()) return;
    }
}

TEST(BitDilateErode, EachOffsetAndWidth) {
    for (int width : {1, 2, 7, 8, 9, 15, 16, 17, 63, 64, 65, 127, 128, 129, 200})
        for (int srcOffset = 0; srcOffset < 8; ++srcOffset)
            for (int dstOffset = 0; dstOffset < 8; ++dstOffset) {
                const BitCall call{.roiSize = {width, 3}};
                runAll(call, fullMask(3, 3), width, {srcOffset, dstOffset});
                runAll(call, CallerMask{{3, 3}, {0, 1, 0, 1, 1, 1, 0, 1, 0}}, width, {srcOffset, dstOffset});
                if (HasFatalFailure()) return;
            }
}

TEST(BitDilateErode, EachRectangle) {
    for (int width = 1; width <= 40; ++width)
        for (int height : {1, 2, 3, 7}) {
            runAll({.roiSize = {75, 9}, .border = lumBorderConstant, .value = 1}, fullMask(width, height),
                   width, {3, 6});
            runAll({.roiSize = {75, 9}, .border = lumBorderInMemory}, fullMask(width, height), width, {5, 1});
            if (HasFatalFailure()) return;
        }
}

TEST(BitDilateErode, MaskWiderThanTheRegion) {
    std::mt19937 engine(3);
    for (const CallerMask& mask :
         {fullMask(63, 5), randomMask(63, 5, 50, engine), randomMask(64, 64, 50, engine)})
        for (LumBorderType border : {lumBorderReplicate, lumBorderConstant, lumBorderDefaultValue}) {
            runAll({.roiSize = {9, 7}, .border = border, .value = 1}, mask, 3, {2, 4});
            runAll({.roiSize = {9, 7}, .border = border | lumBorderInMemoryLeft | lumBorderInMemoryBottom},
                   mask, 6, {2, 4});
            if (HasFatalFailure()) return;
        }
}

TEST(BitDilateErode, EvenMaskIsCentredLeftOfTheMiddle) {
    // A mask of two cells reaches one pixel to the right.
    const Lum8u src = 0b0001'0000;
    Lum8u dst = 0;
    Bits source({8, 1}, 0, 0, Guard::after);
    Bits result({8, 1}, 0, 0, Guard::after);
    *source.first() = src;
    ASSERT_EQ(lumStatusOk, runPlain(Operation::dilate, {.roiSize = {8, 1}}, fullMask(2, 1), source, result));
    dst = *result.first();
    EXPECT_EQ(0b0001'1000, dst);
}

TEST(BitDilateErode, EmptyAndOneCellMasksCopy) {
    for (const CallerMask& mask :
         {CallerMask{{1, 1}, {1}}, CallerMask{{1, 1}, {0}}, CallerMask{{4, 3}, std::vector<Lum8u>(12)}})
        for (int width : {1, 5, 8, 70, 200})
            for (int offset = 0; offset < 8; ++offset)
                for (Operation operation : {Operation::dilate, Operation::erode})
                    for (auto* run : {runPlain, runLong}) {
                        Bits src({width, 4}, offset, 0, Guard::after);
                        Bits dst({width, 4}, 7 - offset, 0, Guard::after);
                        Bits before({width, 4}, 7 - offset, 0, Guard::after);
                        src.fillRandom(width);
                        dst.fillRandom(1);
                        before.fillRandom(1);
                        const BitCall call{.roiSize = {width, 4}, .border = lumBorderConstant, .value = 1};
                        ASSERT_EQ(lumStatusOk, run(operation, call, mask, src, dst));
                        expectDefinition(operation, {.roiSize = {width, 4}}, fullMask(1, 1), src, before,
                                         dst);
                        if (HasFatalFailure()) return;
                    }
}

TEST(BitDilateErode, OffsetsAboveSevenPassBytes) {
    Lum8u src[4] = {0, 0b0000'1000, 0, 0};
    Lum32s specBytes = 0;
    Lum32s bufferBytes = 0;
    const CallerMask mask = fullMask(3, 1);
    ASSERT_EQ(lumStatusOk, lumiMorphologyBorderGetSize_1u_C1R({9, 1}, mask.size, &specBytes, &bufferBytes));
    GuardedBlock spec(specBytes);
    GuardedBlock buffer(bufferBytes);
    auto* const state = spec.as<LumMorphBitState>();
    ASSERT_EQ(lumStatusOk,
              lumiMorphologyBorderInit_1u_C1R({9, 1}, mask.cells.data(), mask.size, state, buffer.as()));
    // Bit 11 is bit 3 of the next byte.
    Lum8u dst[6] = {};
    ASSERT_EQ(lumStatusOk, lumiDilateBorder_1u_C1R(src, 4, 11, dst, 6, 26, {9, 1}, lumBorderReplicate, 0,
                                                   state, buffer.as()));
    const Lum8u expected[6] = {0, 0, 0, 0b0000'1100, 0, 0};
    EXPECT_TRUE(std::equal(dst, dst + 6, expected));
}

TEST(BitDilateErode, OtherKindsOfStateWriteNothing) {
    Lum32s specBytes = 0;
    Lum32s bufferBytes = 0;
    const CallerMask mask = fullMask(3, 3);
    ASSERT_EQ(lumStatusOk, lumiMorphologyBorderGetSize_1u_C1R({9, 2}, mask.size, &specBytes, &bufferBytes));
    GuardedBlock spec(specBytes);
    GuardedBlock buffer(bufferBytes);
    auto* const state = spec.as<LumMorphBitState>();
    ASSERT_EQ(lumStatusOk,
              lumiMorphologyBorderInit_1u_C1R({9, 2}, mask.cells.data(), mask.size, state, buffer.as()));
    const Lum8u src[4] = {255, 255, 255, 255};
    for (int kind : {1, 2, 4, -1, 1000}) {
        // The kind is the last of the object's fields.
        std::memcpy(spec.as() + 5 * sizeof(void*) + 12 * 4, &kind, 4);
        Lum8u dst[4] = {};
        EXPECT_EQ(lumStatusOk, lumiDilateBorder_1u_C1R(src, 2, 0, dst, 2, 0, {9, 2}, lumBorderReplicate, 0,
                                                       state, buffer.as()));
        EXPECT_EQ(lumStatusOk, lumiErodeBorder_1u_C1R(src, 2, 0, dst, 2, 0, {9, 2}, lumBorderReplicate, 0,
                                                      state, buffer.as()));
        for (Lum8u byte : dst) EXPECT_EQ(0, byte);
    }
}

TEST(BitDilateErode, LeastWorkMemoryIsAlwaysThere) {
    using namespace lum;
    for (int width = 1; width <= 70; ++width)
        for (int maskWidth = 1; maskWidth <= 70; ++maskWidth)
            for (int maskHeight = 1; maskHeight <= 12; ++maskHeight) {
                const MorphSizes<std::uint64_t> sizes(LumSize{width, 1}, LumSize{maskWidth, maskHeight});
                const kernels::BitMask mask{nullptr, maskWidth, maskHeight, (maskWidth - 1) / 2,
                                            (maskHeight - 1) / 2};
                ASSERT_LE(kernels::bitMaskLeastBytes(width, mask), sizes.bitBufferBytes())
                    << width << " under " << maskWidth << " x " << maskHeight;
                ASSERT_EQ(sizes.bitBufferBytes(), sizes.longBitBytes())
                    << width << " under " << maskWidth << " x " << maskHeight;
            }
}

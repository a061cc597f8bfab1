#include <algorithm>
#include <climits>

#include "morph/masks.h"

using namespace support;

namespace {

// The formulas in 64 bits, as the public header states them.

long long up(long long n, long long multiple) { return (n + multiple - 1) / multiple * multiple; }

struct Sizes {
    long long rw, rh, w, h;
    long long W = w | 1, H = h | 1;

    long long record() const { return W * H + 96 + 2 * (2 * W + 2) * H; }
    long long run(long long e, long long c) const {
        const long long lines = up(rw * c * e, 32) * H + up(W * c * e, 32) + (e == 1 ? 16 : e == 2 ? 32 : 64);
        long long t = (rw + W - 1) * (rh + H - 1);
        if (W < rw && H < rh)
            t = std::max(H > 1 ? (rw + W - 1) * (H / 2 + H - 1) : 0,
                         W > 1 ? (rh + H - 1) * (W + W / 2 - 1) : 0);
        return up(t * e * c, 32) + lines + 64;
    }
    long long bitState() const { return up(w * h, 16) + 96; }
    long long bitWork() const {
        const long long a = up((rw + w - 1) * h, 32) + up(rw, 32) * h + up(w, 32) + 32;
        const long long c = h * 20 + (h * h + 1) * (rw + 32) + 36;
        return std::max(a, c) + up(h * 24, 16) + up(w * h, 16) + (h * 16 + 63) / 16 * 16;
    }
    long long bitRun() const { return std::max(2 * h * up((rw + w) * 4, 16) + 16, bitWork()); }
    long long longBit() const { return std::max(((w + rw) * 8 + 30) / 32 * 32 * h + 16, bitWork()); }
    long long longState() const { return record() + longBit() + 8; }
    long long longRun(long long e, long long c) const { return std::max(run(e, c), longBit()); }
    long long between(long long e, long long c) const {
        return (h / 2 * 2 + rh) * up((w / 2 * 2 + rw) * e * c, 32);
    }
    long long longPair() const {
        const Sizes all{rw + 2 * W - 2, rh + 2 * H - 2, W, H};
        return 2 * all.longState() + 32 + W * H;
    }
    long long longPairRun(long long e, long long c) const {
        const Sizes one{rw + W - 1, rh + H - 1, w, h}, two{rw + 2 * W - 2, rh + 2 * H - 2, w, h};
        const long long largest = std::max({longRun(e, c), one.longRun(e, c), two.longRun(e, c)});
        return 2 * largest + two.rh * up(two.rw * c * e, 32);
    }
};

struct TypeOfRun {
    LumDataType type;
    int bytes;
};
constexpr TypeOfRun typesOfRuns[] = {
    {lumType1u, 1}, {lumType8u, 1}, {lumType16u, 2}, {lumType16s, 2}, {lumType32f, 4}};

constexpr Lum32s unwritten = -77;

} // namespace

TEST(MorphSizes, OfThreeByThreeOnTenByTenByHand) {
    const LumSize roi{10, 10}, mask{3, 3};
    const LumSizeL roiL{10, 10}, maskL{3, 3};
    Lum32s spec = 0, buffer = 0;
    EXPECT_STATUS(lumStatusOk, lumiMorphologyBorderGetSize_8u_C1R(roi, mask, &spec, &buffer));
    EXPECT_EQ(9 + 96 + 48, spec);
    EXPECT_EQ(64 + (3 * 32 + 32 + 16) + 64, buffer);
    EXPECT_STATUS(lumStatusOk, lumiMorphologyBorderGetSize_1u_C1R(roi, mask, &spec, &buffer));
    EXPECT_EQ(112, spec);
    EXPECT_EQ(708, buffer);
    EXPECT_STATUS(lumStatusOk, lumiErodeGetSpecSize_L(roiL, maskL, &spec));
    EXPECT_EQ(153 + 708 + 8, spec);
    EXPECT_STATUS(lumStatusOk, lumiErodeGetBufferSize_L(roiL, maskL, lumType8u, 1, &buffer));
    EXPECT_EQ(708, buffer);
    EXPECT_STATUS(lumStatusOk, lumiMorphAdvGetSize_8u_C1R(roi, mask, &spec, &buffer));
    EXPECT_EQ(2 * 153 + 32 + 9, spec);
    EXPECT_EQ(2 * 272 + 12 * 32, buffer);
    EXPECT_STATUS(lumStatusOk, lumiMorphGetSpecSize_L(roiL, maskL, lumType8u, 1, &spec));
    EXPECT_EQ(2 * 909 + 32 + 9, spec);
    EXPECT_STATUS(lumStatusOk, lumiMorphGetBufferSize_L(roiL, maskL, lumType8u, 1, &buffer));
    EXPECT_EQ(2 * 748 + 14 * 32, buffer);
}

TEST(MorphSizes, FollowTheirFormulas) {
    for (int rw : {1, 2, 5, 15, 16, 17, 320, 1920})
        for (int rh : {1, 2, 5, 16, 31, 240, 1080})
            for (int w : {1, 2, 3, 4, 5, 15, 16, 33, 64})
                for (int h : {1, 2, 3, 6, 7, 16, 31}) {
                    SCOPED_TRACE(testing::Message() << rw << "x" << rh << " mask " << w << "x" << h);
                    const Sizes sizes{rw, rh, w, h};
                    Lum32s spec = 0, buffer = 0;
                    for (const auto& member : morphObjectMembers()) {
                        SCOPED_TRACE(member.name);
                        const int e = member.elementBytes, c = member.channels;
                        ASSERT_EQ(lumStatusOk, member.getSize({rw, rh}, {w, h}, &spec, &buffer));
                        ASSERT_EQ(sizes.record(), spec);
                        ASSERT_EQ(sizes.run(e, c), buffer);
                        ASSERT_EQ(lumStatusOk, member.pairGetSize({rw, rh}, {w, h}, &spec, &buffer));
                        ASSERT_EQ(2 * sizes.record() + 32 + sizes.W * sizes.H, spec);
                        ASSERT_EQ(2 * sizes.run(e, c) + sizes.between(e, c), buffer);
                    }
                    ASSERT_EQ(lumStatusOk,
                              lumiMorphologyBorderGetSize_1u_C1R({rw, rh}, {w, h}, &spec, &buffer));
                    ASSERT_EQ(sizes.bitState(), spec);
                    ASSERT_EQ(sizes.bitRun(), buffer);
                    ASSERT_EQ(lumStatusOk, lumiMorphAdvGetSize_1u_C1R({rw, rh}, {w, h}, &spec, &buffer));
                    ASSERT_EQ(2 * sizes.bitState() + 32 + sizes.W * sizes.H, spec);
                    ASSERT_EQ(2 * sizes.bitRun() + sizes.between(1, 1), buffer);
                }
}

TEST(MorphSizes, OfLongFormsFollowTheirFormulas) {
    for (int rw : {1, 4, 17, 320, 1920})
        for (int rh : {1, 5, 31, 1080})
            for (int w : {1, 2, 3, 4, 15, 33})
                for (int h : {1, 2, 3, 6, 31}) {
                    SCOPED_TRACE(testing::Message() << rw << "x" << rh << " mask " << w << "x" << h);
                    const Sizes sizes{rw, rh, w, h};
                    for (auto getSpecSize : {lumiErodeGetSpecSize_L, lumiDilateGetSpecSize_L}) {
                        Lum32s spec = 0;
                        ASSERT_EQ(lumStatusOk, getSpecSize({rw, rh}, {w, h}, &spec));
                        ASSERT_EQ(sizes.longState(), spec);
                    }
                    for (auto [type, bytes] : typesOfRuns)
                        for (int channels : {1, 3, 4}) {
                            for (auto getBufferSize : {lumiErodeGetBufferSize_L, lumiDilateGetBufferSize_L}) {
                                Lum32s buffer = 0;
                                ASSERT_EQ(lumStatusOk,
                                          getBufferSize({rw, rh}, {w, h}, type, channels, &buffer));
                                ASSERT_EQ(sizes.longRun(bytes, channels), buffer);
                            }
                            Lum32s spec = 0, buffer = 0;
                            ASSERT_EQ(lumStatusOk,
                                      lumiMorphGetSpecSize_L({rw, rh}, {w, h}, type, channels, &spec));
                            ASSERT_EQ(sizes.longPair(), spec);
                            ASSERT_EQ(lumStatusOk,
                                      lumiMorphGetBufferSize_L({rw, rh}, {w, h}, type, channels, &buffer));
                            ASSERT_EQ(sizes.longPairRun(bytes, channels), buffer);
                        }
                }
}

TEST(MorphSizes, WrapIn32Bits) {
    Lum32s spec = 0, buffer = 0;
    EXPECT_STATUS(lumStatusOk, lumiMorphologyBorderGetSize_32f_C4R({INT_MAX, 7}, {1, 1}, &spec, &buffer));
    const Sizes sizes{INT_MAX, 7, 1, 1};
    // Lines of 2^31 - 1 pixels of 16 bytes wrap to no bytes.
    EXPECT_EQ(sizes.record(), spec);
    EXPECT_EQ(0 + (0 + 32 + 64) + 64, buffer);
}

TEST(MorphSizes, NullComesBeforeSize) {
    Lum32s size = unwritten;
    for (const auto& member : morphObjectMembers())
        for (auto getSize : {member.getSize, member.pairGetSize}) {
            EXPECT_STATUS(lumStatusNullPointer, getSize({0, 0}, {0, 0}, nullptr, &size));
            EXPECT_STATUS(lumStatusNullPointer, getSize({0, 0}, {0, 0}, &size, nullptr));
        }
    for (auto getSize : {lumiMorphologyBorderGetSize_1u_C1R, lumiMorphAdvGetSize_1u_C1R}) {
        EXPECT_STATUS(lumStatusNullPointer, getSize({0, 0}, {0, 0}, nullptr, &size));
        EXPECT_STATUS(lumStatusNullPointer, getSize({0, 0}, {0, 0}, &size, nullptr));
    }
    EXPECT_STATUS(lumStatusNullPointer, lumiErodeGetSpecSize_L({0, 0}, {0, 0}, nullptr));
    EXPECT_STATUS(lumStatusNullPointer, lumiDilateGetSpecSize_L({0, 0}, {0, 0}, nullptr));
    for (auto getSize : {lumiErodeGetBufferSize_L, lumiDilateGetBufferSize_L, lumiMorphGetSpecSize_L,
                         lumiMorphGetBufferSize_L})
        EXPECT_STATUS(lumStatusNullPointer, getSize({0, 0}, {0, 0}, 2, 2, nullptr));
    EXPECT_EQ(unwritten, size);
}

TEST(MorphSizes, AnySideBelowOneIsSizeError) {
    for (int side = 0; side < 4; ++side)
        for (int bad : {0, -1, INT_MIN}) {
            int sides[4] = {10, 10, 3, 3};
            sides[side] = bad;
            const LumSize roi{sides[0], sides[1]}, mask{sides[2], sides[3]};
            const LumSizeL roiL{sides[0], sides[1]}, maskL{sides[2], sides[3]};
            Lum32s spec = unwritten, buffer = unwritten;
            for (const auto& member : morphObjectMembers()) {
                EXPECT_STATUS(lumStatusSizeError, member.getSize(roi, mask, &spec, &buffer));
                EXPECT_STATUS(lumStatusSizeError, member.pairGetSize(roi, mask, &spec, &buffer));
            }
            EXPECT_STATUS(lumStatusSizeError, lumiMorphologyBorderGetSize_1u_C1R(roi, mask, &spec, &buffer));
            EXPECT_STATUS(lumStatusSizeError, lumiMorphAdvGetSize_1u_C1R(roi, mask, &spec, &buffer));
            EXPECT_STATUS(lumStatusSizeError, lumiErodeGetSpecSize_L(roiL, maskL, &spec));
            EXPECT_STATUS(lumStatusSizeError, lumiDilateGetSpecSize_L(roiL, maskL, &spec));
            for (auto getSize : {lumiErodeGetBufferSize_L, lumiDilateGetBufferSize_L, lumiMorphGetSpecSize_L,
                                 lumiMorphGetBufferSize_L})
                EXPECT_STATUS(lumStatusSizeError, getSize(roiL, maskL, 2, 2, &spec));
            EXPECT_EQ(unwritten, spec);
            EXPECT_EQ(unwritten, buffer);
        }
}

TEST(MorphSizes, TypeComesBeforeChannels) {
    for (auto getSize : {lumiErodeGetBufferSize_L, lumiDilateGetBufferSize_L, lumiMorphGetSpecSize_L,
                         lumiMorphGetBufferSize_L}) {
        Lum32s size = unwritten;
        for (LumDataType type : {-1, 2, 3, 4, 6, 8, 11, 12, 14, 19})
            EXPECT_STATUS(lumStatusDataTypeError, getSize({10, 10}, {3, 3}, type, 2, &size));
        for (auto [type, bytes] : typesOfRuns)
            for (int channels : {-1, 0, 2, 5})
                EXPECT_STATUS(lumStatusChannelCountError, getSize({10, 10}, {3, 3}, type, channels, &size));
        EXPECT_EQ(unwritten, size);
    }
}

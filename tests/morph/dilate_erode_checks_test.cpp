// Which arguments are refused, in which order, and that nothing is then written.
#include <gtest/gtest.h>

#include "morph/morph_members.h"
#include "support/member_test.h"
#include "support/status_checks.h"

using namespace support;

namespace {

template <class T, int channels> using Dilation = MorphMembers<Operation::dilate, T, channels>;
template <class T, int channels> using Erosion = MorphMembers<Operation::erode, T, channels>;

template <class Members> class MorphChecks {
  public:
    using T = typename Members::Element;
    static constexpr int row = 4 * Members::channels * static_cast<int>(sizeof(T));
    static constexpr bool dilates = Members::operation == Operation::dilate;

    /// Arguments, all of them right until a test changes one.
    struct Arguments {
        const T* src;
        std::intptr_t srcStep = row;
        T* dst;
        std::intptr_t dstStep = row;
        LumSizeL roiSize = {4, 3};
        LumBorderType border = lumBorderReplicate;
        const T* value;
        bool hasSpec = true;
        Lum8u* buffer;
    };

    MorphChecks()
        : src_(4, 3, {.channels = Members::channels}),
          dst_(4, 3, {.channels = Members::channels}),
          plain_({4, 3}, fullMask(3, 3)),
          long_({4, 3}, fullMask(3, 3)) {}

    Arguments good() {
        return {.src = src_.data(),
                .dst = dst_.data(),
                .value = value_,
                .buffer = long_.buffer.template as<Lum8u>()};
    }
    T* inPlace() { return src_.data(); }

    LumStatus plain(const Arguments& a) {
        const auto* const spec = a.hasSpec ? plain_.record : nullptr;
        const LumSize size{static_cast<int>(a.roiSize.width), static_cast<int>(a.roiSize.height)};
        const int srcStep = static_cast<int>(a.srcStep);
        const int dstStep = static_cast<int>(a.dstStep);
        if constexpr (Members::channels == 1)
            return Members::border(a.src, srcStep, a.dst, dstStep, size, a.border, T{}, spec, a.buffer);
        else
            return Members::border(a.src, srcStep, a.dst, dstStep, size, a.border, a.value, spec, a.buffer);
    }
    LumStatus inLong(const Arguments& a) {
        return Members::borderLong(a.src, a.srcStep, a.dst, a.dstStep, a.roiSize, a.border, a.value,
                                   a.hasSpec ? long_.state : nullptr, a.buffer);
    }

    /// Both forms answer alike, and write nothing where they refuse.
    void expectBoth(LumStatus status, const Arguments& a) {
        if (status == lumStatusOk) {
            EXPECT_EQ(status, plain(a));
            EXPECT_EQ(status, inLong(a));
        } else {
            EXPECT_REFUSED(status, dst_, plain(a));
            EXPECT_REFUSED(status, dst_, inLong(a));
        }
    }
    void expectPlain(LumStatus status, const Arguments& a) {
        EXPECT_EQ(status, plain(a)) << std::hex << a.border;
    }
    void expectLong(LumStatus status, const Arguments& a) {
        EXPECT_EQ(status, inLong(a)) << std::hex << a.border;
    }

  private:
    GuardedImage<T> src_;
    GuardedImage<T> dst_;
    MorphObject<Members> plain_;
    LongMorphObject<Members> long_;
    T value_[4] = {};
};

using AllMembers =
    testing::Types<Dilation<Lum8u, 1>, Dilation<Lum8u, 3>, Dilation<Lum8u, 4>, Dilation<Lum16u, 1>,
                   Dilation<Lum16s, 1>, Dilation<Lum32f, 1>, Dilation<Lum32f, 3>, Dilation<Lum32f, 4>,
                   Erosion<Lum8u, 1>, Erosion<Lum8u, 3>, Erosion<Lum8u, 4>, Erosion<Lum16u, 1>,
                   Erosion<Lum16s, 1>, Erosion<Lum32f, 1>, Erosion<Lum32f, 3>, Erosion<Lum32f, 4>>;
MEMBER_TEST_SUITE(MorphChecks, AllMembers);

constexpr std::intptr_t largest = 0x7FFFFFFF;

} // namespace

MEMBER_TEST(MorphChecks, NullPointersComeFirst) {
    MorphChecks<TypeParam> checks;
    for (int which = 0; which < 4; ++which) {
        auto a = checks.good();
        a.roiSize = {0, 3};
        if (which == 0) a.src = nullptr;
        if (which == 1) a.dst = nullptr;
        if (which == 2) a.hasSpec = false;
        if (which == 3) a.buffer = nullptr;
        checks.expectBoth(lumStatusNullPointer, a);
    }
}

MEMBER_TEST(MorphChecks, SizesComeBeforeSteps) {
    MorphChecks<TypeParam> checks;
    for (LumSizeL size : {LumSizeL{0, 3}, LumSizeL{4, 0}, LumSizeL{-4, 3}, LumSizeL{4, -3}}) {
        auto a = checks.good();
        a.roiSize = size;
        a.srcStep = -100;
        checks.expectBoth(lumStatusSizeError, a);
    }
}

MEMBER_TEST(MorphChecks, StepsComeBeforeTheirAlignment) {
    MorphChecks<TypeParam> checks;
    auto a = checks.good();
    a.srcStep = checks.row - 1;
    a.dstStep = checks.row + 1;
    a.border = 0;
    checks.expectBoth(lumStatusStepError, a);
    std::swap(a.srcStep, a.dstStep);
    checks.expectBoth(lumStatusStepError, a);
    a = checks.good();
    a.srcStep = -checks.row;
    checks.expectBoth(lumStatusStepError, a);
    a = checks.good();
    a.roiSize = {0x40000000, 3};
    checks.expectBoth(lumStatusStepError, a);
}

MEMBER_TEST(MorphChecks, AlignmentComesBeforeTheBorder) {
    MorphChecks<TypeParam> checks;
    if (sizeof(typename TypeParam::Element) == 1) return;
    auto a = checks.good();
    a.border = 0;
    a.srcStep = checks.row + 1;
    checks.expectBoth(lumStatusStepAlignmentError, a);
    a.srcStep = checks.row;
    a.dstStep = checks.row + 1;
    checks.expectBoth(lumStatusStepAlignmentError, a);
}

MEMBER_TEST(MorphChecks, BordersOutsideTheirRangeAndOtherKinds) {
    MorphChecks<TypeParam> checks;
    for (LumBorderType border :
         {0, 2, 4, 7, 15, 0x10, 0xE0, 0x700, 4096, 4096 + 0xF0, 4096 + 1, -1, -4096 + 1, 0xF2 - 0x10}) {
        auto a = checks.good();
        a.border = border;
        checks.expectBoth(lumStatusBorderError, a);
    }
    for (LumBorderType border : {1, 3, 5, 6, 0xF06, 0xF05}) {
        // In dilation the flags of the first stage count as sides in memory, which this image has none of.
        if (checks.dilates && border > 0xFF) continue;
        auto a = checks.good();
        a.border = border;
        checks.expectPlain(lumStatusOk, a);
    }
    // Not alone, all four sides in memory need one of the kinds.
    auto a = checks.good();
    a.border = 0xF2;
    checks.expectBoth(lumStatusBorderError, a);
    // The flags of the first stage count in the long members and in dilation.
    a.border = 0x700;
    checks.expectLong(lumStatusBorderError, a);
    if (!checks.dilates)
        for (LumBorderType border : {0xF00, 0x5A0, 0xFF0}) {
            a.border = border;
            checks.expectPlain(lumStatusBorderError, a);
        }
}

MEMBER_TEST(MorphChecks, ConstantValueIsNeededWhereItIsRead) {
    MorphChecks<TypeParam> checks;
    auto a = checks.good();
    a.value = nullptr;
    for (LumBorderType border : {lumBorderReplicate, lumBorderMirror, lumBorderDefaultValue}) {
        a.border = border;
        checks.expectBoth(lumStatusOk, a);
    }
    a = checks.good();
    a.value = nullptr;
    a.border = lumBorderConstant;
    checks.expectLong(lumStatusNullPointer, a);
    checks.expectPlain(TypeParam::channels == 1 ? lumStatusOk : lumStatusNullPointer, a);
    // With several channels it is tested with the other pointers, in the long members after the border.
    a.border = 4096 + lumBorderConstant;
    checks.expectLong(lumStatusBorderError, a);
    checks.expectPlain(TypeParam::channels == 1 ? lumStatusBorderError : lumStatusNullPointer, a);
    a.roiSize = {0, 0};
    checks.expectLong(lumStatusSizeError, a);
    checks.expectPlain(TypeParam::channels == 1 ? lumStatusSizeError : lumStatusNullPointer, a);
}

MEMBER_TEST(MorphChecks, LongMembersRefuseTheLargestSizes) {
    MorphChecks<TypeParam> checks;
    constexpr bool isBytePlane = sizeof(typename TypeParam::Element) == 1 && TypeParam::channels == 1;
    const LumStatus overflow = isBytePlane ? lumStatusSizeError : lumStatusSizeOverflow;
    auto a = checks.good();
    a.roiSize.height = largest;
    checks.expectLong(overflow, a);
    // The value comes before them, steps and working in place after them.
    a.border = lumBorderConstant;
    a.value = nullptr;
    checks.expectLong(lumStatusNullPointer, a);
    a = checks.good();
    a.roiSize.height = largest;
    a.dst = checks.inPlace();
    checks.expectLong(overflow, a);
    if (isBytePlane) {
        a = checks.good();
        a.srcStep = largest;
        a.dstStep = largest;
        a.roiSize.width = largest;
        checks.expectLong(overflow, a);
        a.roiSize.width = largest - 1;
        checks.expectLong(lumStatusStepError, a);
    }
    if (sizeof(typename TypeParam::Element) == 1) {
        a = checks.good();
        a.srcStep = largest;
        checks.expectLong(lumStatusStepError, a);
        a.srcStep = checks.row;
        a.dstStep = largest;
        checks.expectLong(lumStatusStepError, a);
        a.border = 0;
        checks.expectLong(lumStatusBorderError, a);
    }
}

MEMBER_TEST(MorphChecks, InPlaceIsRefusedByType) {
    MorphChecks<TypeParam> checks;
    using Element = typename TypeParam::Element;
    const bool refuses =
        std::is_same_v<Element, Lum16s> || (std::is_same_v<Element, Lum16u> && !checks.dilates);
    auto a = checks.good();
    a.dst = checks.inPlace();
    checks.expectBoth(refuses ? lumStatusInPlaceNotSupported : lumStatusOk, a);
    a.border = 0;
    checks.expectBoth(lumStatusBorderError, a);
}

namespace {

class BitChecks : public testing::TestWithParam<Operation> {
  public:
    struct Arguments {
        const Lum8u* src;
        std::intptr_t srcStep = 2;
        int srcBit = 0;
        Lum8u* dst;
        std::intptr_t dstStep = 2;
        int dstBit = 0;
        LumSizeL roiSize = {9, 3};
        LumBorderType border = lumBorderReplicate;
        const Lum8u* value;
        bool hasSpec = true;
        Lum8u* buffer;
    };

    BitChecks() : src_(2, 3), dst_(2, 3) {
        const CallerMask mask = fullMask(3, 3);
        Lum32s bytes = 0;
        EXPECT_EQ(lumStatusOk, lumiErodeInit_L({9, 3}, mask.cells.data(), {3, 3},
                                               reinterpret_cast<LumMorphLongState*>(long_)));
        EXPECT_EQ(lumStatusOk,
                  lumiMorphologyBorderInit_1u_C1R({9, 3}, mask.cells.data(), {3, 3},
                                                  reinterpret_cast<LumMorphBitState*>(plain_), buffer_));
        EXPECT_EQ(lumStatusOk, lumiErodeGetSpecSize_L({9, 3}, {3, 3}, &bytes));
        EXPECT_LE(bytes, static_cast<int>(sizeof long_));
        EXPECT_EQ(lumStatusOk, lumiErodeGetBufferSize_L({9, 3}, {3, 3}, lumType1u, 1, &bytes));
        EXPECT_LE(bytes, static_cast<int>(sizeof buffer_));
    }

    Arguments good() { return {.src = src_.data(), .dst = dst_.data(), .value = &value_, .buffer = buffer_}; }
    Lum8u* inPlace() { return src_.data(); }

    LumStatus plain(const Arguments& a) {
        auto* const member =
            GetParam() == Operation::dilate ? lumiDilateBorder_1u_C1R : lumiErodeBorder_1u_C1R;
        return member(a.src, static_cast<int>(a.srcStep), a.srcBit, a.dst, static_cast<int>(a.dstStep),
                      a.dstBit, {static_cast<int>(a.roiSize.width), static_cast<int>(a.roiSize.height)},
                      a.border, 0, a.hasSpec ? reinterpret_cast<const LumMorphBitState*>(plain_) : nullptr,
                      a.buffer);
    }
    LumStatus inLong(const Arguments& a) {
        auto* const member = GetParam() == Operation::dilate ? lumiDilate_1u_C1R_L : lumiErode_1u_C1R_L;
        return member(a.src, a.srcStep, a.srcBit, a.dst, a.dstStep, a.dstBit, a.roiSize, a.border, a.value,
                      a.hasSpec ? reinterpret_cast<const LumMorphLongState*>(long_) : nullptr, a.buffer);
    }
    void expectBoth(LumStatus status, const Arguments& a) {
        EXPECT_REFUSED(status, dst_, plain(a));
        EXPECT_REFUSED(status, dst_, inLong(a));
    }

  private:
    GuardedImage<Lum8u> src_;
    GuardedImage<Lum8u> dst_;
    Lum8u long_[4096];
    Lum8u plain_[512];
    Lum8u buffer_[4096];
    Lum8u value_ = 1;
};

} // namespace

TEST_P(BitChecks, RefusesInOrder) {
    auto a = good();
    a.roiSize = {0, 3};
    a.src = nullptr;
    expectBoth(lumStatusNullPointer, a);
    a = good();
    a.roiSize = {0, 3};
    a.srcStep = 0;
    expectBoth(lumStatusSizeError, a);
    for (int which : {0, 1}) {
        a = good();
        a.srcStep = 0;
        (which == 0 ? a.srcBit : a.dstBit) = -1;
        expectBoth(lumStatusSizeError, a);
    }
    // Nine pixels take two bytes, whatever the offset.
    for (int which : {0, 1}) {
        a = good();
        a.border = 0;
        (which == 0 ? a.srcStep : a.dstStep) = 1;
        expectBoth(lumStatusStepError, a);
    }
    for (LumBorderType border :
         {0, int{lumBorderMirror}, lumBorderMirror | lumBorderInMemoryTop, 4096 + 1, -1, 0xE0}) {
        a = good();
        a.border = border;
        a.dst = inPlace();
        expectBoth(lumStatusBorderError, a);
    }
    a = good();
    a.dst = inPlace();
    expectBoth(lumStatusInPlaceNotSupported, a);
    a.dstBit = 40;
    expectBoth(lumStatusInPlaceNotSupported, a);
}

TEST_P(BitChecks, LongMembersTestTheValueAndTheLargestSizes) {
    auto a = good();
    a.border = lumBorderConstant;
    a.value = nullptr;
    a.roiSize.height = largest;
    EXPECT_STATUS(lumStatusNullPointer, inLong(a));
    a.border = 4096 + lumBorderConstant;
    EXPECT_STATUS(lumStatusBorderError, inLong(a));
    a = good();
    a.roiSize.height = largest;
    a.dst = inPlace();
    EXPECT_STATUS(lumStatusSizeOverflow, inLong(a));
    a = good();
    a.roiSize.width = largest;
    a.srcStep = largest;
    a.dstStep = largest;
    EXPECT_STATUS(lumStatusSizeOverflow, inLong(a));
    a.roiSize.width = 9;
    a.dst = inPlace();
    EXPECT_STATUS(lumStatusStepError, inLong(a));
    a = good();
    a.value = nullptr;
    EXPECT_STATUS(lumStatusOk, inLong(a));
}

TEST_P(BitChecks, FirstStageFlagsNeedAKindInErosion) {
    auto a = good();
    a.roiSize = {1, 1};
    a.srcBit = 4;
    a.src += 2;
    for (LumBorderType border : {0xF00, 0x5A0}) {
        a.border = border;
        EXPECT_STATUS(GetParam() == Operation::dilate ? lumStatusOk : lumStatusBorderError, plain(a));
        EXPECT_STATUS(lumStatusOk, inLong(a));
    }
    a.border = 0xF00 | lumBorderReplicate;
    EXPECT_STATUS(lumStatusOk, plain(a));
}

INSTANTIATE_TEST_SUITE_P(Both, BitChecks, testing::Values(Operation::dilate, Operation::erode));

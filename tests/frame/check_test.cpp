#include "frame/check.h"

using namespace lum;

TEST(Check, FirstFailureIsTheFirstInOrder) {
    EXPECT_EQ(lumStatusOk, firstFailure(lumStatusOk, lumStatusOk));
    EXPECT_EQ(lumStatusSizeError, firstFailure(lumStatusOk, lumStatusSizeError, lumStatusStepError));
    EXPECT_EQ(lumStatusNullPointer, firstFailure(lumStatusNullPointer, lumStatusSizeError));
}

TEST(Check, AnyPointerAndAnySideCounts) {
    const int one = 1;
    const int* none = nullptr;
    EXPECT_EQ(lumStatusOk, checkNotNull(&one, &one));
    EXPECT_EQ(lumStatusNullPointer, checkNotNull(&one, none));
    EXPECT_EQ(lumStatusSizeError, checkSize(LumSize{1, 1}, LumSize{1, 0}));
    EXPECT_EQ(lumStatusSizeError, checkSize(LumSizeL{-1, 1}));
    EXPECT_EQ(lumStatusSizeError, checkCount(3, 0));
}

TEST(Check, StepsAreSignedAndRowsDoNotWrap) {
    EXPECT_EQ(lumStatusOk, checkStep(rowBytes<Lum16u>(10), 20, 21));
    EXPECT_EQ(lumStatusStepError, checkStep(rowBytes<Lum16u>(10), 20, 19));
    EXPECT_EQ(lumStatusStepError, checkStep(rowBytes<Lum8u>(1), -1));
    EXPECT_EQ(0x7FFFFFFFLL * 24, rowBytes<Lum64f>(0x7FFFFFFF, 3));
    EXPECT_EQ(lumStatusStepError, checkStep(rowBytes<Lum32f>(0x40000001), 4));
}

TEST(Check, RowsOfTheWidestRegionsDoNotWrap) {
    constexpr std::int64_t most = INT64_MAX;
    EXPECT_EQ(most / 12 * 12, rowBytes<Lum32f>(most / 12, 3));
    EXPECT_EQ(most, rowBytes<Lum32f>(most / 12 + 1, 3));
    EXPECT_EQ(lumStatusStepError, checkStep(rowBytes<Lum8u>(std::int64_t{1} << 62, 4), 32));
    EXPECT_EQ(INT64_MIN, rowBytes<Lum8u>(INT64_MIN, 3));
}

TEST(Check, AlignmentIsThatOfTheElement) {
    EXPECT_EQ(lumStatusOk, checkStepAlignment<Lum8u>(7));
    EXPECT_EQ(lumStatusStepAlignmentError, checkStepAlignment<Lum16u>(8, 7));
    EXPECT_EQ(lumStatusStepAlignmentError, checkStepAlignment<Lum32f>(6));
    EXPECT_EQ(lumStatusStepAlignmentError, checkStepAlignment<Lum64f>(12));
}

TEST(Check, ChannelsOfInterestCountFromOne) {
    EXPECT_EQ(lumStatusChannelOfInterestError, checkChannelOfInterest(0));
    EXPECT_EQ(lumStatusOk, checkChannelOfInterest(1));
    EXPECT_EQ(lumStatusOk, checkChannelOfInterest(3));
    EXPECT_EQ(lumStatusChannelOfInterestError, checkChannelOfInterest(4));
}

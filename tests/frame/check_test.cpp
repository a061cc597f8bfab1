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
    EXPECT_EQ(lumStatusOk, nullPointer(&one, &one));
    EXPECT_EQ(lumStatusNullPointer, nullPointer(&one, none));
    EXPECT_EQ(lumStatusSizeError, sizeBelowOne(LumSize{1, 1}, LumSize{1, 0}));
    EXPECT_EQ(lumStatusSizeError, sizeBelowOne(LumSizeL{-1, 1}));
    EXPECT_EQ(lumStatusSizeError, countBelowOne(3, 0));
}

TEST(Check, StepsAreSignedAndRowsDoNotWrap) {
    EXPECT_EQ(lumStatusOk, stepBelow(rowBytes<Lum16u>(10), 20, 21));
    EXPECT_EQ(lumStatusStepError, stepBelow(rowBytes<Lum16u>(10), 20, 19));
    EXPECT_EQ(lumStatusStepError, stepBelow(rowBytes<Lum8u>(1), -1));
    EXPECT_EQ(0x7FFFFFFFLL * 24, rowBytes<Lum64f>(0x7FFFFFFF, 3));
    EXPECT_EQ(lumStatusStepError, stepBelow(rowBytes<Lum32f>(0x40000001), 4));
}

TEST(Check, AlignmentIsThatOfTheElement) {
    EXPECT_EQ(lumStatusOk, stepMisaligned<Lum8u>(7));
    EXPECT_EQ(lumStatusStepAlignmentError, stepMisaligned<Lum16u>(8, 7));
    EXPECT_EQ(lumStatusStepAlignmentError, stepMisaligned<Lum32f>(6));
    EXPECT_EQ(lumStatusStepAlignmentError, stepMisaligned<Lum64f>(12));
}

TEST(Check, ChannelsOfInterestCountFromOne) {
    EXPECT_EQ(lumStatusChannelOfInterestError, channelOutsideThree(0));
    EXPECT_EQ(lumStatusOk, channelOutsideThree(1));
    EXPECT_EQ(lumStatusOk, channelOutsideThree(3));
    EXPECT_EQ(lumStatusChannelOfInterestError, channelOutsideThree(4));
}

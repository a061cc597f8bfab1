#include <cstring>

#include "lumcv.h"

TEST(GetLibVersion, ReturnsTheSamePointerOnEveryCall) {
    EXPECT_EQ(lumcvGetLibVersion(), lumcvGetLibVersion());
}

TEST(GetLibVersion, HoldsTheIdentityOfThisBuild) {
    const LumLibraryVersion* version = lumcvGetLibVersion();
    EXPECT_EQ(2021, version->major);
    EXPECT_EQ(11, version->minor);
    EXPECT_EQ(0, version->majorBuild);
    EXPECT_EQ(0xCD107B02U, version->build);
    EXPECT_STREQ("2021.11.0 (r0xcd107b02)", version->version);
    EXPECT_STREQ("Jan 30 2024", version->buildDate);
    const bool is64Bit = sizeof(void*) == 8;
    EXPECT_EQ(0, std::memcmp(version->targetCpu, is64Bit ? "x64" : "s8\0", 4));
    EXPECT_STREQ(is64Bit ? "lumCV Sprite (x64)" : "lumCV Sprite (s8)", version->name);
}

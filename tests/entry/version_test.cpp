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

// For the preprocessor too.
#if LUMCV_VERSION_NUMBER < LUMCV_VERSION_OF(1, 0, 0) || LUMCV_VERSION_NUMBER >= LUMCV_VERSION_OF(1000, 0, 0)
#    error "the version is out of range"
#endif

TEST(VersionMacros, TheNumberGrowsWithTheVersion) {
    EXPECT_EQ(LUMCV_VERSION_OF(LUMCV_VERSION_MAJOR, LUMCV_VERSION_MINOR, LUMCV_VERSION_PATCH),
              LUMCV_VERSION_NUMBER);
    EXPECT_GT(LUMCV_VERSION_OF(1, 2, 4), LUMCV_VERSION_OF(1, 2, 3));
    EXPECT_GT(LUMCV_VERSION_OF(1, 10, 0), LUMCV_VERSION_OF(1, 9, 99));
    EXPECT_GT(LUMCV_VERSION_OF(2, 0, 0), LUMCV_VERSION_OF(1, 99, 99));
}

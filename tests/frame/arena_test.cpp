#include "frame/arena.h"
#include "lumcv.h"

using namespace lum;

TEST(Arena, PiecesFollowOneAnother) {
    alignas(16) unsigned char block[64];
    Arena arena(block);
    EXPECT_EQ(reinterpret_cast<Lum32s*>(block), arena.allocate<Lum32s>(3));
    EXPECT_EQ(reinterpret_cast<Lum16s*>(block + 12), arena.allocate<Lum16s>(2));
    EXPECT_EQ(16U, arena.used());
}

TEST(Arena, AlignmentIsThatOfAddresses) {
    alignas(64) unsigned char block[256];
    for (int offset = 0; offset < 64; ++offset) {
        Arena arena(block + offset);
        const unsigned char* piece = arena.align(64).allocate<unsigned char>(1);
        EXPECT_EQ(offset == 0 ? block : block + 64, piece);
        EXPECT_EQ(static_cast<std::size_t>(piece + 1 - (block + offset)), arena.used());
    }
}

TEST(Arena, ANullBlockIsASizeQuery) {
    Arena arena(nullptr);
    arena.allocate<Lum64f>(2);
    arena.skip(3);
    arena.align(32).allocate<Lum8u>(5);
    EXPECT_EQ(37U, arena.used());
}

TEST(Arena, RoundsUpToPowersOfTwo) {
    EXPECT_EQ(0U, roundedUp(0U, 16U));
    EXPECT_EQ(16U, roundedUp(1U, 16U));
    EXPECT_EQ(16U, roundedUp(16U, 16U));
    EXPECT_EQ(32U, roundedUp(17U, 16U));
}

#include "frame/carve.h"
#include "lumcv.h"

using namespace lum;

TEST(Carve, PiecesLieBehindOneAnother) {
    alignas(16) unsigned char block[64];
    Carver carver(block);
    EXPECT_EQ(reinterpret_cast<Lum32s*>(block), carver.take<Lum32s>(3));
    EXPECT_EQ(reinterpret_cast<Lum16s*>(block + 12), carver.take<Lum16s>(2));
    EXPECT_EQ(16U, carver.used());
}

TEST(Carve, AlignmentIsThatOfAddresses) {
    alignas(64) unsigned char block[256];
    for (int offset = 0; offset < 64; ++offset) {
        Carver carver(block + offset);
        const unsigned char* piece = carver.align(64).take<unsigned char>(1);
        EXPECT_EQ(offset == 0 ? block : block + 64, piece);
        EXPECT_EQ(static_cast<std::size_t>(piece + 1 - (block + offset)), carver.used());
    }
}

TEST(Carve, ANullBlockIsASizeQuery) {
    Carver carver(nullptr);
    carver.take<Lum64f>(2);
    carver.skip(3);
    carver.align(32).take<Lum8u>(5);
    EXPECT_EQ(37U, carver.used());
}

TEST(Carve, RoundsUpToPowersOfTwo) {
    EXPECT_EQ(0U, roundedUp(0U, 16U));
    EXPECT_EQ(16U, roundedUp(1U, 16U));
    EXPECT_EQ(16U, roundedUp(16U, 16U));
    EXPECT_EQ(32U, roundedUp(17U, 16U));
}

#include <cstring>

#include "morph/masks.h"

using namespace support;

namespace {

constexpr LumSize region{20, 10};

template <class Cell> struct GrayMember {
    LumStatus (*getSize)(LumSize, const void*, LumSize, Lum32s*);
    LumStatus (*init)(LumMorphGrayState*, LumSize, const void*, LumSize, LumPoint);
};

template <class Cell> void expectCopied(const GrayMember<Cell>& member, LumSize size, LumPoint anchor) {
    std::vector<Cell> cells;
    for (int i = 0; i < size.width * size.height; ++i) cells.push_back(static_cast<Cell>(i - 5));
    Lum32s bytes = 0;
    ASSERT_EQ(lumStatusOk, member.getSize(region, cells.data(), size, &bytes));
    ASSERT_EQ(4 * size.width * size.height + (sizeof(void*) == 4 ? 28 : 32), bytes);
    GuardedBlock block(bytes, Guard::after, 3), array(4 * cells.size());
    std::memcpy(array.as(), cells.data(), 4 * cells.size());
    auto* state = block.as<LumMorphGrayState>();
    ASSERT_EQ(lumStatusOk, member.init(state, region, array.as<void>(), size, anchor));
    ASSERT_EQ(static_cast<void*>(state + 1), state->cells);
    ASSERT_EQ(0, std::memcmp(cells.data(), state->cells, 4 * cells.size()));
    ASSERT_EQ(size.width, state->width);
    ASSERT_EQ(size.height, state->height);
    ASSERT_EQ(anchor.x, state->anchorX);
    ASSERT_EQ(anchor.y, state->anchorY);
    ASSERT_EQ(region.width, state->roiWidth);
    ASSERT_EQ(region.height, state->roiHeight);
}

} // namespace

TEST(MorphGray, CopiesItsWeights) {
    for (int width = 1; width <= 5; ++width)
        for (int height = 1; height <= 5; ++height)
            for (int x = 0; x < width; ++x)
                for (int y = 0; y < height; ++y) {
                    expectCopied<Lum32s>({lumiMorphGrayGetSize_8u_C1R, lumiMorphGrayInit_8u_C1R},
                                         {width, height}, {x, y});
                    expectCopied<Lum32f>({lumiMorphGrayGetSize_32f_C1R, lumiMorphGrayInit_32f_C1R},
                                         {width, height}, {x, y});
                }
}

TEST(MorphGray, SizeWithoutMaskIsNullPointer) {
    const Lum32s cell = 0;
    for (auto getSize : {lumiMorphGrayGetSize_8u_C1R, lumiMorphGrayGetSize_32f_C1R}) {
        Lum32s size = -77;
        EXPECT_STATUS(lumStatusNullPointer, getSize({0, 0}, nullptr, {0, 0}, &size));
        EXPECT_STATUS(lumStatusNullPointer, getSize({0, 0}, &cell, {0, 0}, nullptr));
        for (int side = 0; side < 4; ++side) {
            int sides[4] = {20, 10, 3, 3};
            sides[side] = 0;
            EXPECT_STATUS(lumStatusSizeError,
                          getSize({sides[0], sides[1]}, &cell, {sides[2], sides[3]}, &size));
        }
        EXPECT_EQ(-77, size);
    }
}

TEST(MorphGray, AnchorOutsideIsTestedLast) {
    const std::vector<Lum32s> cells(6);
    GuardedImage<Lum8u> object(200, 1);
    auto* spec = reinterpret_cast<LumMorphGrayState*>(object.data());
    for (auto init : {lumiMorphGrayInit_8u_C1R, lumiMorphGrayInit_32f_C1R}) {
        EXPECT_REFUSED(lumStatusNullPointer, object, init(nullptr, {0, 0}, cells.data(), {0, 0}, {9, 9}));
        EXPECT_REFUSED(lumStatusNullPointer, object, init(spec, {0, 0}, nullptr, {0, 0}, {9, 9}));
        for (int side = 0; side < 4; ++side) {
            int sides[4] = {20, 10, 3, 2};
            sides[side] = 0;
            EXPECT_REFUSED(lumStatusSizeError, object,
                           init(spec, {sides[0], sides[1]}, cells.data(), {sides[2], sides[3]}, {9, 9}));
        }
        for (LumPoint anchor : {LumPoint{-1, 0}, LumPoint{3, 0}, LumPoint{0, -1}, LumPoint{0, 2}})
            EXPECT_REFUSED(lumStatusAnchorError, object, init(spec, region, cells.data(), {3, 2}, anchor));
    }
}

#include <limits>

#include "support/haar_stages.h"

using namespace support;

namespace {

constexpr Lum32s least = std::numeric_limits<Lum32s>::min();
constexpr Lum32s most = std::numeric_limits<Lum32s>::max();

/// Rows that end in pixels one at a time, in four, eight and sixteen at a time, and in all of them.
constexpr int widths[] = {1, 4, 8, 16, 33};

/// Of a row of pixels that are all alike, those that take `above`: a stage of one classifier with one rectangle.
struct Row {
    int width;

    int aboves(Lum32s sum, Lum32s weight, Lum32s threshold, Lum32s deviation, int scaleFactor) const {
        HaarArrays<Lum32s> arrays;
        arrays.add({{0, 0, width, 1}}, {weight}, threshold, 1, 2);
        HaarSpec<Lum32s> spec(arrays);
        GuardedImage<Lum32s> src(2 * width, 2);
        // Corner A alone.
        src.fill([&](int x, int y, int) { return y == 1 && x >= width ? sum : 0; });
        GuardedImage<Lum32s> norm(width, 1);
        norm.fill([&](int, int, int) { return deviation; });
        GuardedImage<Lum8u> mask(width, 1);
        mask.fill([](int, int, int) { return 1; });
        Lum32s positive = width;
        EXPECT_STATUS(lumStatusOk, lumiApplyHaarClassifier_32s_C1RSfs(
                                       src.data(), src.step(), norm.data(), norm.step(), mask.data(),
                                       mask.step(), mask.size(), &positive, 2, spec.get(), scaleFactor));
        return positive;
    }
};

} // namespace

TEST(ApplyHaarClassifier_32s, ProductsAtTheEndsOfTheirRangesAreComparedWhole) {
    for (int width : widths) {
        const Row row{width};
        EXPECT_EQ(width, row.aboves(most, most, least, most, -1))
            << "2^63 - 2^33 + 2 is above -2^62 + 2^31, by more than 63 bits hold";
        EXPECT_EQ(0, row.aboves(least, most, most, most, -1)) << "-2^63 + 2^32 is below 2^62 - 2^32 + 1";
        EXPECT_EQ(width, row.aboves(-1, least, 1, most, 0)) << "2^31 is above 2^31 - 1";
        EXPECT_EQ(0, row.aboves(1, least, 1, -most, 0)) << "-2^31 is below -2^31 + 1";
        EXPECT_EQ(width, row.aboves(most, 1, least, -1, -1)) << "2^32 - 2 is above 2^31";
        EXPECT_EQ(0, row.aboves(most, 1, least, -1, 0)) << "2^31 - 1 is below 2^31";
    }
}

TEST(ApplyHaarClassifier_32s, ShiftsOf64AndMoreLeaveNothingOfTheSum) {
    for (int width : widths) {
        const Row row{width};
        for (int scaleFactor : {-64, -65, -96, -128, least}) {
            EXPECT_EQ(0, row.aboves(most, 1, 1, 1, scaleFactor)) << "0 is below 1, at " << scaleFactor;
            EXPECT_EQ(width, row.aboves(-1, 1, 0, 1, scaleFactor)) << "0 is not below 0, at " << scaleFactor;
        }
    }
}

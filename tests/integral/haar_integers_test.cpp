#include <limits>

#include "support/haar_stages.h"

using namespace support;

namespace {

constexpr Lum32s least = std::numeric_limits<Lum32s>::min();
constexpr Lum32s most = std::numeric_limits<Lum32s>::max();

/// Rows that end in pixels one at a time, in four, eight and sixteen at a time, and in all of them.
constexpr int widths[] = {1, 4, 8, 16, 33};

/// A stage of one classifier with one rectangle, over a row of pixels that are all alike.
struct Stage {
    Lum32s sum;
    Lum32s weight;
    Lum32s threshold;
    Lum32s deviation;
    int scaleFactor;

    /// The pixels that take `above`.
    int aboves(int width) const {
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
        EXPECT_STATUS(lumStatusOk, applyHaar<HaarOfIntegers>({.src = src.data(),
                                                              .srcStep = src.step(),
                                                              .norm = norm.data(),
                                                              .normStep = norm.step(),
                                                              .mask = mask.data(),
                                                              .maskStep = mask.step(),
                                                              .size = mask.size(),
                                                              .positive = &positive,
                                                              .threshold = 2,
                                                              .spec = spec.get(),
                                                              .scaleFactor = scaleFactor}));
        return positive;
    }
};

} // namespace

TEST(ApplyHaarClassifier_32s, ProductsAtTheEndsOfTheirRangesAreComparedWhole) {
    const struct {
        Stage stage;
        bool takesAbove;
        const char* why;
    } table[] = {
        {{.sum = most, .weight = most, .threshold = least, .deviation = most, .scaleFactor = -1},
         true,
         "2^63 - 2^33 + 2 is above -2^62 + 2^31, by more than 63 bits hold"},
        {{.sum = least, .weight = most, .threshold = most, .deviation = most, .scaleFactor = -1},
         false,
         "-2^63 + 2^32 is below 2^62 - 2^32 + 1"},
        {{.sum = -1, .weight = least, .threshold = 1, .deviation = most, .scaleFactor = 0},
         true,
         "2^31 is above 2^31 - 1"},
        {{.sum = 1, .weight = least, .threshold = 1, .deviation = -most, .scaleFactor = 0},
         false,
         "-2^31 is below -2^31 + 1"},
        {{.sum = most, .weight = 1, .threshold = least, .deviation = -1, .scaleFactor = -1},
         true,
         "2^32 - 2 is above 2^31"},
        {{.sum = most, .weight = 1, .threshold = least, .deviation = -1, .scaleFactor = 0},
         false,
         "2^31 - 1 is below 2^31"},
    };
    for (int width : widths)
        for (const auto& row : table)
            EXPECT_EQ(row.takesAbove ? width : 0, row.stage.aboves(width)) << row.why;
}

TEST(ApplyHaarClassifier_32s, ShiftsOf64AndMoreLeaveNothingOfTheSum) {
    for (int width : widths)
        for (int scaleFactor : {-64, -65, -96, -128, least}) {
            const Stage positive{
                .sum = most, .weight = 1, .threshold = 1, .deviation = 1, .scaleFactor = scaleFactor};
            const Stage negative{
                .sum = -1, .weight = 1, .threshold = 0, .deviation = 1, .scaleFactor = scaleFactor};
            EXPECT_EQ(0, positive.aboves(width)) << "0 is below 1, at " << scaleFactor;
            EXPECT_EQ(width, negative.aboves(width)) << "0 is not below 0, at " << scaleFactor;
        }
}

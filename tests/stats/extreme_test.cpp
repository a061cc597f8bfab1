#include <bit>
#include <cmath>
#include <limits>
#include <optional>

#include "kernels/stats/extreme.h"
#include "support/guarded_image.h"
#include "support/member_test.h"
#include "support/status_checks.h"

using namespace support;

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

/// The exported members by element type.
template <class T> struct Members;
template <> struct Members<Lum8u> {
    static constexpr auto plain = lumiMinMaxIndx_8u_C1R;
    static constexpr auto masked = lumiMinMaxIndx_8u_C1MR;
    static constexpr auto channel = lumiMinMaxIndx_8u_C3CR;
    static constexpr auto maskedChannel = lumiMinMaxIndx_8u_C3CMR;
};
template <> struct Members<Lum16u> {
    static constexpr auto plain = lumiMinMaxIndx_16u_C1R;
    static constexpr auto masked = lumiMinMaxIndx_16u_C1MR;
    static constexpr auto channel = lumiMinMaxIndx_16u_C3CR;
    static constexpr auto maskedChannel = lumiMinMaxIndx_16u_C3CMR;
};
template <> struct Members<Lum32f> {
    static constexpr auto plain = lumiMinMaxIndx_32f_C1R;
    static constexpr auto masked = lumiMinMaxIndx_32f_C1MR;
    static constexpr auto channel = lumiMinMaxIndx_32f_C3CR;
    static constexpr auto maskedChannel = lumiMinMaxIndx_32f_C3CMR;
};

/// Four outputs, of which a set of bits says which are given; what is not given keeps a value no call writes.
struct Outputs {
    float minVal = 12345.75F;
    float maxVal = 12345.75F;
    LumPoint minIndex{-77, -77};
    LumPoint maxIndex{-77, -77};
};
enum Given : unsigned { minValue = 1, maxValue = 2, minPlace = 4, maxPlace = 8, all = 15 };

bool operator==(const Outputs& a, const Outputs& b) {
    return std::bit_cast<unsigned>(a.minVal) == std::bit_cast<unsigned>(b.minVal) &&
           std::bit_cast<unsigned>(a.maxVal) == std::bit_cast<unsigned>(b.maxVal) &&
           a.minIndex.x == b.minIndex.x && a.minIndex.y == b.minIndex.y && a.maxIndex.x == b.maxIndex.x &&
           a.maxIndex.y == b.maxIndex.y;
}
std::ostream& operator<<(std::ostream& stream, const Outputs& o) {
    return stream << o.minVal << " at (" << o.minIndex.x << ", " << o.minIndex.y << "), " << o.maxVal
                  << " at (" << o.maxIndex.x << ", " << o.maxIndex.y << ")";
}

struct Answer {
    LumStatus status;
    Outputs outputs;
};

/// coi 0 calls the single-channel member; mask null the unmasked one.
template <class T>
Answer minMax(const T* src, int step, const Lum8u* mask, int maskStep, LumSize size, int coi,
              unsigned given = all) {
    Answer a{};
    a.outputs = Outputs{};
    float* minVal = given & minValue ? &a.outputs.minVal : nullptr;
    float* maxVal = given & maxValue ? &a.outputs.maxVal : nullptr;
    LumPoint* minIndex = given & minPlace ? &a.outputs.minIndex : nullptr;
    LumPoint* maxIndex = given & maxPlace ? &a.outputs.maxIndex : nullptr;
    using Of = Members<T>;
    if (mask == nullptr && coi == 0)
        a.status = Of::plain(src, step, size, minVal, maxVal, minIndex, maxIndex);
    else if (mask == nullptr)
        a.status = Of::channel(src, step, size, coi, minVal, maxVal, minIndex, maxIndex);
    else if (coi == 0)
        a.status = Of::masked(src, step, mask, maskStep, size, minVal, maxVal, minIndex, maxIndex);
    else
        a.status =
            Of::maskedChannel(src, step, mask, maskStep, size, coi, minVal, maxVal, minIndex, maxIndex);
    return a;
}

/// A mask with bytes value(x, y).
struct Mask : GuardedImage<Lum8u> {
    Mask(int width, int height, auto value, Placement placement = {})
        : GuardedImage<Lum8u>(width, height, placement) {
        fill([&](int x, int y, int) { return value(x, y); });
    }
};

template <class T>
Answer minMax(const GuardedImage<T>& image, const Mask* mask = nullptr, int coi = 0, unsigned given = all) {
    return minMax(image.data(), image.step(), mask == nullptr ? nullptr : mask->data(),
                  mask == nullptr ? 0 : mask->step(), image.size(), coi, given);
}

/// The places and values by the plainest search, and the status from the outputs in five steps.
template <class T> Answer expected(const GuardedImage<T>& image, const Mask* mask, int coi, unsigned given) {
    struct Found {
        float value;
        LumPoint place;
    };
    std::optional<Found> lowest, highest;
    bool anySelected = false;
    const LumSize size = image.size();
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) {
            if (mask != nullptr && mask->at(x, y) == 0) continue;
            anySelected = true;
            const auto value = static_cast<float>(image.at(x, y, coi == 0 ? 0 : coi - 1));
            if (std::isnan(value)) continue;
            if (!lowest || value < lowest->value) lowest = Found{value, {x, y}};
            if (!highest || value > highest->value) highest = Found{value, {x, y}};
        }
    const Found nowhereLow = anySelected ? Found{infinity, {-1, 0}} : Found{0, {0, 0}};
    const Found nowhereHigh = anySelected ? Found{-infinity, {-1, 0}} : Found{0, {0, 0}};
    const Found low = lowest.value_or(nowhereLow);
    const Found high = highest.value_or(nowhereHigh);

    Answer answer{};
    Outputs& out = answer.outputs = Outputs{};
    if (given & minValue) out.minVal = low.value;
    if (given & maxValue) out.maxVal = high.value;
    if (given & minPlace) out.minIndex = low.place;
    if (given & maxPlace) out.maxIndex = high.place;
    if (mask == nullptr) return answer;

    const auto atExcludedOrigin = [&](LumPoint place) {
        return place.x == 0 && place.y == 0 && mask->at(0, 0) == 0;
    };
    bool empty = false;
    if (given & minPlace)
        empty = atExcludedOrigin(out.minIndex);
    else if (given & maxPlace)
        empty = atExcludedOrigin(out.maxIndex);
    else if (!(given & (minValue | maxValue)))
        empty = true;
    else if ((!(given & minValue) || out.minVal == 0) && (!(given & maxValue) || out.maxVal == 0))
        empty = !anySelected;
    answer.status = empty ? lumStatusEmptyMask : lumStatusOk;
    return answer;
}

template <class T> void expectFound(const GuardedImage<T>& image, const Mask* mask, int coi) {
    for (unsigned given = 0; given <= all; ++given) {
        const Answer right = expected(image, mask, coi, given);
        const Answer answer = minMax(image, mask, coi, given);
        ASSERT_EQ(right.status, answer.status) << "given " << given;
        ASSERT_EQ(right.outputs, answer.outputs)
            << "given " << given << ", width " << image.size().width << ", coi " << coi;
    }
}

using Elements = testing::Types<Lum8u, Lum16u, Lum32f>;
MEMBER_TEST_SUITE(MinMaxIndx, Elements);

/// Random images of few values, so that equal extremes are common; in 32f with NaN, infinities and both zeros.
template <class T> T fewValues(std::mt19937& engine, int spread) {
    const int value = static_cast<int>(engine() % spread);
    if constexpr (std::is_integral_v<T>) {
        const int top = std::numeric_limits<T>::max();
        return static_cast<T>(engine() % 2 == 0 ? value : top - value);
    } else {
        switch (engine() % 40) {
        case 0:
            return notANumber;
        case 1:
            return spread > 3 ? infinity : 1.5F;
        case 2:
            return spread > 3 ? -infinity : -1.5F;
        case 3:
            return -0.0F;
        case 4:
            return 0.0F;
        default:
            return static_cast<T>(value) - static_cast<T>(spread / 2) + 0.25F * spread;
        }
    }
}

} // namespace

TEST(MinMax, WorkedExample) {
    const Lum8u src[] = {5, 2, 9, //
                         2, 9, 7};
    float lowest = 0;
    float highest = 0;
    LumPoint lowestPlace{};
    LumPoint highestPlace{};
    EXPECT_STATUS(lumStatusOk,
                  lumiMinMaxIndx_8u_C1R(src, 3, {3, 2}, &lowest, &highest, &lowestPlace, &highestPlace));
    EXPECT_EQ(2, lowest);
    EXPECT_EQ(9, highest);
    // Of equal values the first one in scan order.
    EXPECT_EQ(1, lowestPlace.x);
    EXPECT_EQ(0, lowestPlace.y);
    EXPECT_EQ(2, highestPlace.x);
    EXPECT_EQ(0, highestPlace.y);
}

MEMBER_TEST(MinMaxIndx, EveryWidthMaskAndChannelAgreesWithThePlainSearch) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 engine(seed);
    for (int width = 1; width <= 70; ++width)
        for (int channels : {1, 3})
            for (Guard guard : {Guard::after, Guard::before}) {
                const int offset = static_cast<int>(engine() % 16 * sizeof(TypeParam));
                const int padding = static_cast<int>(engine() % 3 * sizeof(TypeParam));
                GuardedImage<TypeParam> image(
                    width, 5,
                    {.channels = channels, .padding = padding, .offset = offset % 64, .guard = guard});
                const int spread = 1 + static_cast<int>(engine() % 200);
                image.fill([&](int, int, int) { return fewValues<TypeParam>(engine, spread); });
                const unsigned share = 1 + engine() % 9;
                const Mask mask(width, 5,
                                [&](int, int) { return engine() % share == 0 ? 1 + engine() % 255 : 0; },
                                {.padding = padding, .offset = offset % 16, .guard = guard});
                for (int coi = channels == 1 ? 0 : 1; coi <= (channels == 1 ? 0 : 3); ++coi) {
                    expectFound(image, nullptr, coi);
                    expectFound(image, &mask, coi);
                    if (testing::Test::HasFatalFailure()) return;
                }
                ASSERT_TRUE(image.untouched() && mask.untouched());
            }
}

MEMBER_TEST(MinMaxIndx, VectorAgreesWithScalar) {
    using namespace lum::kernels;
    std::mt19937 engine(11);
    std::vector<int> widths{127, 129, 257, 1037};
    for (int width = 1; width <= 70; ++width) widths.push_back(width);
    for (int width : widths) {
        GuardedImage<TypeParam> image(width, 7, {.channels = 3, .padding = 8});
        image.fill([&](int, int, int) { return fewValues<TypeParam>(engine, 100); });
        const LumSize size = image.size();
        const Mask mask(width, 7, [&](int, int y) { return y < 2 ? 0 : engine() % 3; });
        const MaskedPixels masked{{mask.data(), mask.step()}};
        const auto expectSame = [&]<class Of>(Of, const auto& pixels, const auto& selection, int firstRow) {
            for (Sides sides : {Sides::lowest, Sides::highest, Sides::both}) {
                const auto scalar = Of::scalar(pixels, selection, size, sides, firstRow);
                const auto vector = Of::vectors(pixels, selection, size, sides, firstRow);
                EXPECT_EQ(scalar.lowest, vector.lowest);
                EXPECT_EQ(scalar.highest, vector.highest);
                // No row above the vector form's holds the value: from there on the same place is found.
                EXPECT_LE(vector.lowestRow, scalar.lowestRow);
                EXPECT_LE(vector.highestRow, scalar.highestRow);
                const auto expectSamePlace = [&](TypeParam value, int ofScalar, int ofVector) {
                    const LumPoint a = Of::firstPlace(pixels, selection, size, value, ofScalar);
                    const LumPoint b = Of::firstPlace(pixels, selection, size, value, ofVector);
                    EXPECT_TRUE(a.x == b.x && a.y == b.y);
                };
                if (includes(sides, Sides::lowest))
                    expectSamePlace(scalar.lowest, scalar.lowestRow, vector.lowestRow);
                if (includes(sides, Sides::highest))
                    expectSamePlace(scalar.highest, scalar.highestRow, vector.highestRow);
            }
        };
        const auto expectSameOfChannel = [&]<int channels>(int channel) {
            const Pixels<TypeParam, channels> pixels{{image.data(), image.step()}, channel};
            expectSame(ExtremesOf<TypeParam, channels, AllPixels>(), pixels, AllPixels{}, 0);
            for (int firstRow : {0, 1, 2})
                expectSame(ExtremesOf<TypeParam, channels, MaskedPixels>(), pixels, masked, firstRow);
        };
        expectSameOfChannel.template operator()<1>(0);
        for (int channel = 0; channel < 3; ++channel) expectSameOfChannel.template operator()<3>(channel);
    }
}

MEMBER_TEST(MinMaxIndx, OfTwoEqualExtremesInARowTheLeftOneIsReported) {
    for (int width : {5, 40, 200}) {
        GuardedImage<TypeParam> image(width, 3);
        image.fill([&](int x, int y, int) {
            if (y != 1) return 100;
            if (x == 1 || x == width - 1) return 3;
            return x == 2 || x == width - 2 ? 200 : 100;
        });
        const Answer answer = minMax(image);
        EXPECT_EQ((Outputs{3, 200, {1, 1}, {2, 1}}), answer.outputs);
    }
}

MEMBER_TEST(MinMaxIndx, OfEqualExtremesInTwoRowsTheUpperOneIsReported) {
    for (int width : {5, 40, 200}) {
        GuardedImage<TypeParam> image(width, 4);
        image.fill([&](int x, int y, int) {
            if (y == 1 && x == width - 1) return 3;
            if (y == 1 && x == width - 2) return 200;
            if (y >= 2 && x == 0) return y == 2 ? 3 : 200;
            return 100;
        });
        const Answer answer = minMax(image);
        EXPECT_EQ((Outputs{3, 200, {width - 1, 1}, {width - 2, 1}}), answer.outputs);
    }
}

MEMBER_TEST(MinMaxIndx, FlatImageLiesAtTheFirstPixelWhateverItsValue) {
    const TypeParam top = std::is_integral_v<TypeParam> ? std::numeric_limits<TypeParam>::max()
                                                        : static_cast<TypeParam>(infinity);
    const TypeParam bottom = std::is_integral_v<TypeParam> ? TypeParam{0} : static_cast<TypeParam>(-infinity);
    for (TypeParam value : {bottom, TypeParam{0}, TypeParam{7}, top})
        for (int width : {2, 16, 77}) {
            GuardedImage<TypeParam> image(width, 3);
            image.fill([&](int, int, int) { return value; });
            const auto single = static_cast<float>(value);
            EXPECT_EQ((Outputs{single, single, {0, 0}, {0, 0}}), minMax(image).outputs);
            // With a mask the first selected pixel, even where the value is that of no search at all.
            const Mask mask(width, 3, [](int x, int y) { return y == 1 && x != 0 ? 1 : 0; });
            EXPECT_EQ((Outputs{single, single, {1, 1}, {1, 1}}), minMax(image, &mask).outputs);
        }
}

MEMBER_TEST(MinMaxIndx, ColumnBeyondTheRowsAndPaddingDoNotCount) {
    GuardedImage<TypeParam> image(33, 3, {.padding = 16, .margin = 2});
    image.fill([](int x, int y, int) { return x < 0 || y < 0 || x >= 33 || y >= 3 ? x % 2 * 250 : 100 + x; });
    EXPECT_EQ((Outputs{100, 132, {0, 0}, {32, 0}}), minMax(image).outputs);
}

MEMBER_TEST(MinMaxIndx, MaskOfOnlyTheFirstPixelGivesItsPlaceAndOk) {
    for (int width : {4, 50}) {
        GuardedImage<TypeParam> image(width, 3);
        image.fill([](int x, int y, int) { return 10 + x + y; });
        const Mask mask(width, 3, [](int x, int y) { return x == 0 && y == 0 ? 1 : 0; });
        const Answer answer = minMax(image, &mask);
        EXPECT_STATUS(lumStatusOk, answer.status);
        EXPECT_EQ((Outputs{10, 10, {0, 0}, {0, 0}}), answer.outputs);
    }
}

MEMBER_TEST(MinMaxIndx, EmptyMaskWritesZerosToWhatIsGivenAndWarns) {
    for (int width : {4, 50}) {
        GuardedImage<TypeParam> image(width, 3);
        image.fill([](int, int, int) { return 10; });
        const Mask mask(width, 3, [](int, int) { return 0; });
        for (unsigned given = 0; given <= all; ++given) {
            const Answer answer = minMax(image, &mask, 0, given);
            const Outputs none;
            EXPECT_STATUS(lumStatusEmptyMask, answer.status);
            EXPECT_EQ((Outputs{given & minValue ? 0 : none.minVal, given & maxValue ? 0 : none.maxVal,
                               given & minPlace ? LumPoint{0, 0} : none.minIndex,
                               given & maxPlace ? LumPoint{0, 0} : none.maxIndex}),
                      answer.outputs);
        }
    }
}

MEMBER_TEST(MinMaxIndx, MaskedCallThatAsksForNothingWarnsForAnyMask) {
    GuardedImage<TypeParam> image(20, 3);
    const Mask full(20, 3, [](int, int) { return 255; });
    EXPECT_STATUS(lumStatusEmptyMask, minMax(image, &full, 0, 0).status);
    EXPECT_STATUS(lumStatusOk, minMax(image, nullptr, 0, 0).status);
}

MEMBER_TEST(MinMaxIndx, OnlyMinValOfZeroUnderSelectedPixelsIsOk) {
    GuardedImage<TypeParam> image(20, 3);
    image.fill([](int, int, int) { return 0; });
    const Mask last(20, 3, [](int x, int y) { return x == 19 && y == 2 ? 1 : 0; });
    const Mask none(20, 3, [](int, int) { return 0; });
    for (unsigned given : {minValue + 0U, maxValue + 0U, minValue | maxValue}) {
        EXPECT_STATUS(lumStatusOk, minMax(image, &last, 0, given).status);
        EXPECT_STATUS(lumStatusEmptyMask, minMax(image, &none, 0, given).status);
    }
}

MEMBER_TEST(MinMaxIndx, PlaceAtTheOriginWarnsOnlyUnderAMaskByteOfZero) {
    GuardedImage<TypeParam> image(20, 2);
    image.fill([](int x, int y, int) { return x == 0 && y == 0 ? 1 : 50; });
    const Mask atOrigin(20, 2, [](int, int) { return 128; });
    const Mask allButFirst(20, 2, [](int x, int y) { return x == 0 && y == 0 ? 0 : 1; });
    for (unsigned given : {minPlace + 0U, maxPlace + 0U, minPlace | maxPlace}) {
        EXPECT_STATUS(lumStatusOk, minMax(image, &atOrigin, 0, given).status);
        const Answer answer = minMax(image, &allButFirst, 0, given);
        EXPECT_STATUS(lumStatusOk, answer.status);
        if (given & minPlace) {
            EXPECT_EQ(1, answer.outputs.minIndex.x);
        }
    }
}

MEMBER_TEST(MinMaxIndx, NullPointersComeBeforeSizes) {
    GuardedImage<TypeParam> image(4, 2, {.channels = 3});
    const Mask mask(4, 2, [](int, int) { return 1; });
    const TypeParam* none = nullptr;
    const Lum8u* noMask = nullptr;
    using Of = Members<TypeParam>;
    for (LumSize size : {LumSize{4, 2}, LumSize{0, 0}}) {
        Outputs o;
        const auto refused = [&](LumStatus status) {
            EXPECT_STATUS(lumStatusNullPointer, status);
            EXPECT_EQ(Outputs{}, o);
        };
        refused(Of::plain(none, 1, size, &o.minVal, &o.maxVal, &o.minIndex, &o.maxIndex));
        refused(Of::channel(none, 1, size, 9, &o.minVal, &o.maxVal, &o.minIndex, &o.maxIndex));
        refused(Of::masked(none, 1, mask.data(), 0, size, &o.minVal, &o.maxVal, &o.minIndex, &o.maxIndex));
        refused(Of::masked(image.data(), 1, noMask, 0, size, &o.minVal, &o.maxVal, &o.minIndex, &o.maxIndex));
        refused(Of::maskedChannel(none, 1, mask.data(), 0, size, 9, &o.minVal, &o.maxVal, &o.minIndex,
                                  &o.maxIndex));
        refused(Of::maskedChannel(image.data(), 1, noMask, 0, size, 9, &o.minVal, &o.maxVal, &o.minIndex,
                                  &o.maxIndex));
    }
}

MEMBER_TEST(MinMaxIndx, EachWrongArgumentIsRefusedInOrder) {
    constexpr int size = sizeof(TypeParam);
    GuardedImage<TypeParam> image(4, 2, {.channels = 3, .padding = 16});
    const Mask mask(4, 2, [](int, int) { return 1; }, {.padding = 4});
    const auto status = [&](int step, int maskStep, LumSize roi, int coi) {
        const Answer answer =
            minMax<TypeParam>(image.data(), step, maskStep == 0 ? nullptr : mask.data(), maskStep, roi, coi);
        if (answer.status < 0) {
            EXPECT_EQ(Outputs{}, answer.outputs);
            // A call that asks for nothing is refused alike.
            EXPECT_STATUS(answer.status,
                          minMax<TypeParam>(image.data(), step, maskStep == 0 ? nullptr : mask.data(),
                                            maskStep, roi, coi, 0)
                              .status);
        }
        return answer.status;
    };
    constexpr int highest = std::numeric_limits<int>::max();
    const LumStatus misaligned = size == 1 ? lumStatusOk : lumStatusStepAlignmentError;
    for (int coi : {0, 2}) {
        const int row = 4 * size * (coi == 0 ? 1 : 3);
        for (int maskStep : {0, 4}) {
            // Sizes come before steps and coi.
            for (LumSize empty : {LumSize{0, 2}, LumSize{4, 0}, LumSize{-4, 2}, LumSize{4, -2}})
                EXPECT_STATUS(lumStatusSizeError, status(-1, maskStep, empty, coi == 0 ? 0 : 7));
            // A step of the row passes, and one byte less does not, odd or not.
            EXPECT_STATUS(lumStatusOk, status(row, maskStep, {4, 2}, coi));
            for (int step : {row - 1, row - size, 0, -row, std::numeric_limits<int>::min()})
                EXPECT_STATUS(lumStatusStepError, status(step, maskStep, {4, 2}, coi));
            EXPECT_STATUS(misaligned, status(row + 1, maskStep, {4, 2}, coi));
        }
        // The alignment of the image's step comes before the step of the mask.
        EXPECT_STATUS(size == 1 ? lumStatusStepError : misaligned, status(row + 1, 3, {4, 2}, coi));
        for (int maskStep : {3, 1, -4}) EXPECT_STATUS(lumStatusStepError, status(row, maskStep, {4, 2}, coi));
        // A row that would wrap in 32 bits is no small row.
        for (int maskStep : {0, highest})
            for (int width : {0x40000000, 0x55555556})
                EXPECT_STATUS(lumStatusStepError, status(row, maskStep, {width, 1}, coi));
    }
    // coi comes last.
    for (int coi : {-1, 4, highest, std::numeric_limits<int>::min()})
        for (int maskStep : {0, 4}) {
            EXPECT_STATUS(lumStatusChannelOfInterestError, status(12 * size, maskStep, {4, 2}, coi));
            EXPECT_STATUS(lumStatusStepError, status(12 * size - 1, maskStep, {4, 2}, coi));
            if (size > 1) {
                EXPECT_STATUS(misaligned, status(12 * size + 1, maskStep, {4, 2}, coi));
            }
            EXPECT_STATUS(lumStatusStepError, status(12 * size, 3, {4, 2}, coi));
        }
    Outputs o;
    EXPECT_STATUS(lumStatusChannelOfInterestError,
                  Members<TypeParam>::channel(image.data(), image.step(), image.size(), 0, &o.minVal,
                                              &o.maxVal, &o.minIndex, &o.maxIndex));
    EXPECT_STATUS(lumStatusChannelOfInterestError,
                  Members<TypeParam>::maskedChannel(image.data(), image.step(), mask.data(), mask.step(),
                                                    image.size(), 0, &o.minVal, &o.maxVal, &o.minIndex,
                                                    &o.maxIndex));
    EXPECT_EQ(Outputs{}, o);
}

TEST(MinMaxIndx_16u, ValuesAreComparedUnsigned) {
    GuardedImage<Lum16u> image(40, 2);
    image.fill([](int x, int y, int) { return 0x7FFF + (x * 13 + y * 7) % 5; });
    const auto answer = minMax(image);
    EXPECT_EQ(32767.0F, answer.outputs.minVal);
    EXPECT_EQ(32771.0F, answer.outputs.maxVal);
    expectFound<Lum16u>(image, nullptr, 0);
}

TEST(MinMaxIndx_32f, ImageOfNaNOnlyGivesTheStartsAndNoPlace) {
    for (int width : {1, 3, 4, 41}) {
        GuardedImage<Lum32f> image(width, 3);
        image.fill([](int, int, int) { return notANumber; });
        const Mask mask(width, 3, [](int, int) { return 1; });
        for (const Mask* selection : {static_cast<const Mask*>(nullptr), &mask}) {
            const Answer answer = minMax(image, selection);
            EXPECT_STATUS(lumStatusOk, answer.status);
            EXPECT_EQ((Outputs{infinity, -infinity, {-1, 0}, {-1, 0}}), answer.outputs);
            expectFound<Lum32f>(image, selection, 0);
        }
    }
}

TEST(MinMaxIndx_32f, NaNAsTheFirstSelectedPixelIsNoCandidate) {
    GuardedImage<Lum32f> image(30, 2);
    image.fill([](int x, int y, int) { return x == 2 && y == 0 ? notANumber : 5.0F + x; });
    const Mask mask(30, 2, [](int x, int y) { return y == 0 && (x == 2 || x == 9 || x == 11); });
    EXPECT_EQ((Outputs{14, 16, {9, 0}, {11, 0}}), minMax(image, &mask).outputs);
}

TEST(MinMaxIndx_32f, NaNAndInfinityAreToldApart) {
    for (int width : {3, 50}) {
        GuardedImage<Lum32f> image(width, 3);
        image.fill([&](int x, int y, int) { return y == 1 && x == width - 2 ? infinity : notANumber; });
        const LumPoint place{width - 2, 1};
        EXPECT_EQ((Outputs{infinity, infinity, place, place}), minMax(image).outputs);
        image.fill([&](int x, int y, int) { return y == 1 && x == width - 2 ? -infinity : notANumber; });
        EXPECT_EQ((Outputs{-infinity, -infinity, place, place}), minMax(image).outputs);
        expectFound<Lum32f>(image, nullptr, 0);
    }
}

TEST(MinMaxIndx_32f, NaNUnderAZeroMaskByteDoesNotCount) {
    GuardedImage<Lum32f> image(33, 3);
    image.fill([](int x, int, int) { return x % 2 == 0 ? notANumber : x; });
    const Mask mask(33, 3, [](int x, int) { return x % 2; });
    EXPECT_EQ((Outputs{1, 31, {1, 0}, {31, 0}}), minMax(image, &mask).outputs);
}

TEST(MinMaxIndx_32f, ZeroIsReportedWithTheSignOfItsFirstOccurrence) {
    for (int first : {0, 5, 17, 39})
        for (unsigned given : {minValue + 0U, maxValue + 0U, all + 0U}) {
            GuardedImage<Lum32f> image(40, 2);
            image.fill([&](int x, int y, int) {
                return y == 1 || x < first ? notANumber : (x == first ? -0.0F : 0.0F);
            });
            const Answer answer = minMax(image, nullptr, 0, given);
            if (given & minValue) {
                EXPECT_TRUE(std::signbit(answer.outputs.minVal));
            }
            if (given & maxValue) {
                EXPECT_TRUE(std::signbit(answer.outputs.maxVal));
            }
        }
}

TEST(MinMaxIndx_32f, DenormalsAreCompared) {
    GuardedImage<Lum32f> image(21, 2);
    const float tiny = std::numeric_limits<float>::denorm_min();
    image.fill([&](int x, int y, int) { return tiny * (50 + (x * 5 + y) % 21); });
    EXPECT_EQ(tiny * 50, minMax(image).outputs.minVal);
    EXPECT_EQ(tiny * 70, minMax(image).outputs.maxVal);
}

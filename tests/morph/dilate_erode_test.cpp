#include <gtest/gtest.h>

#include <string>
#include <type_traits>

#include "morph/morph_members.h"
#include "support/member_test.h"
#include "support/status_checks.h"

using namespace support;

namespace {

template <class T, int channels> using Dilation = MorphMembers<Operation::dilate, T, channels>;
template <class T, int channels> using Erosion = MorphMembers<Operation::erode, T, channels>;

// Sanitizers make the definition many times slower; what it is compared with is the same code in every build.
#ifdef LUMCV_SANITIZED
constexpr bool isSanitized = true;
#else
constexpr bool isSanitized = false;
#endif

/// What is run, but for the images.
template <class T> struct Call {
    LumSize roiSize;
    LumBorderType border = lumBorderReplicate;
    T value[4] = {};
    /// The region that the object and the work area are made for; width 0 for roiSize.
    LumSize initSize = {0, 0};
    int spare = 0;

    LumSize madeFor() const { return initSize.width == 0 ? roiSize : initSize; }
};

template <class Members, class T = typename Members::Element>
LumStatus runPlain(const Call<T>& run, const CallerMask& mask, const GuardedImage<T>& src,
                   GuardedImage<T>& dst) {
    MorphObject<Members> object(run.madeFor(), mask, run.spare);
    Lum8u* const buffer = object.buffer.template as<Lum8u>();
    if constexpr (Members::channels == 1)
        return Members::border(src.data(), src.step(), dst.data(), dst.step(), run.roiSize, run.border,
                               run.value[0], object.record, buffer);
    else
        return Members::border(src.data(), src.step(), dst.data(), dst.step(), run.roiSize, run.border,
                               run.value, object.record, buffer);
}

template <class Members, class T = typename Members::Element>
LumStatus runLong(const Call<T>& run, const CallerMask& mask, const GuardedImage<T>& src,
                  GuardedImage<T>& dst) {
    LongMorphObject<Members> object(run.madeFor(), mask, run.spare);
    return Members::borderLong(src.data(), src.step(), dst.data(), dst.step(),
                               {run.roiSize.width, run.roiSize.height}, run.border, run.value, object.state,
                               object.buffer.template as<Lum8u>());
}

/// A member of one element type. What the members differ in besides is data, so that the body of a test is compiled once for
/// all of them.
template <class T> struct Morphology {
    using Element = T;
    using Run = LumStatus (*)(const Call<T>&, const CallerMask&, const GuardedImage<T>&, GuardedImage<T>&);

    Operation operation;
    int channels;
    Run plain;
    Run inLong;

    bool dilates() const { return operation == Operation::dilate; }
    std::string name() const {
        return (dilates() ? "dilate, channels: " : "erode, channels: ") + std::to_string(channels);
    }
};

template <class Members>
constexpr Morphology<typename Members::Element> morphology{Members::operation, Members::channels,
                                                           runPlain<Members>, runLong<Members>};

template <class T> std::vector<Morphology<T>> allOf() {
    std::vector<Morphology<T>> all{morphology<Dilation<T, 1>>, morphology<Erosion<T, 1>>};
    if constexpr (std::is_same_v<T, Lum8u> || std::is_same_v<T, Lum32f>)
        for (const auto& several : {morphology<Dilation<T, 3>>, morphology<Dilation<T, 4>>,
                                    morphology<Erosion<T, 3>>, morphology<Erosion<T, 4>>})
            all.push_back(several);
    return all;
}

using Elements = testing::Types<Lum8u, Lum16u, Lum16s, Lum32f>;
MEMBER_TEST_SUITE(DilateErode, Elements);

/// The sides in memory have just the pixels that the mask reaches, and an unreadable page after them.
Margins marginsOf(LumBorderType border, LumSize mask) {
    Margins margins;
    margins.top = (border & lumBorderInMemoryTop) != 0 ? (mask.height | 1) / 2 : 0;
    margins.bottom = (border & lumBorderInMemoryBottom) != 0 ? (mask.height | 1) / 2 : 0;
    margins.left = (border & lumBorderInMemoryLeft) != 0 ? (mask.width | 1) / 2 : 0;
    margins.right = (border & lumBorderInMemoryRight) != 0 ? (mask.width | 1) / 2 : 0;
    return margins;
}

template <class T>
void expectDefinition(const Morphology<T>& member, const Call<T>& run, const CallerMask& mask,
                      const GuardedImage<T>& src, const GuardedImage<T>& dst) {
    for (int y = 0; y < run.roiSize.height; ++y)
        for (int x = 0; x < run.roiSize.width; ++x)
            for (int c = 0; c < member.channels; ++c)
                ASSERT_EQ(strongestUnderMask(member.operation, src, x, y, c, mask, run.border, run.value),
                          dst.at(x, y, c))
                    << "pixel " << x << ", " << y << " channel " << c << ", region " << run.roiSize.width
                    << " x " << run.roiSize.height << ", mask " << mask.size.width << " x "
                    << mask.size.height << ", border " << std::hex << run.border;
    EXPECT_TRUE(dst.outsideUntouched());
}

template <class T>
void runBothForms(const Morphology<T>& member, const std::type_identity_t<Call<T>>& run,
                  const CallerMask& mask, unsigned seed, Guard guard = Guard::after, int offset = 0) {
    const int channels = member.channels;
    GuardedImage<T> src(
        run.roiSize.width, run.roiSize.height,
        {.channels = channels, .offset = offset, .guard = guard, .margin = marginsOf(run.border, mask.size)});
    src.fillRandom(seed);
    for (const auto call : {member.plain, member.inLong}) {
        GuardedImage<T> dst(run.roiSize.width, run.roiSize.height,
                            {.channels = channels,
                             .padding = static_cast<int>(4 * sizeof(T)),
                             .offset = offset,
                             .guard = guard});
        ASSERT_EQ(lumStatusOk, call(run, mask, src, dst));
        expectDefinition(member, run, mask, src, dst);
        if (testing::Test::HasFatalFailure()) return;
    }
}

} // namespace

TEST(DilateErodeByHand, OfARowOfFive) {
    const CallerMask mask = fullMask(3, 1);
    GuardedImage<Lum8u> src(5, 1);
    src.fill([](int x, int, int) { return std::vector<int>{10, 30, 20, 5, 40}[x]; });
    GuardedImage<Lum8u> dst(5, 1);
    ASSERT_EQ(lumStatusOk, (runPlain<Dilation<Lum8u, 1>>({.roiSize = {5, 1}}, mask, src, dst)));
    EXPECT_EQ((std::vector<Lum8u>{30, 30, 30, 40, 40}), dst.pixels());
    ASSERT_EQ(lumStatusOk, (runPlain<Erosion<Lum8u, 1>>({.roiSize = {5, 1}}, mask, src, dst)));
    EXPECT_EQ((std::vector<Lum8u>{10, 10, 5, 5, 5}), dst.pixels());
    const Call<Lum8u> constant{.roiSize = {5, 1}, .border = lumBorderConstant, .value = {50}};
    ASSERT_EQ(lumStatusOk, (runPlain<Dilation<Lum8u, 1>>(constant, mask, src, dst)));
    EXPECT_EQ((std::vector<Lum8u>{50, 30, 30, 40, 50}), dst.pixels());
}

TEST(DilateErodeByHand, MaskIsNotReflected) {
    // Only the cell at the right: each pixel takes its right neighbour.
    const CallerMask mask{{3, 1}, {0, 0, 1}};
    GuardedImage<Lum8u> src(4, 1);
    src.fill([](int x, int, int) { return 10 * (x + 1); });
    GuardedImage<Lum8u> dst(4, 1);
    const Call<Lum8u> run{.roiSize = {4, 1}, .border = lumBorderMirror};
    ASSERT_EQ(lumStatusOk, (runPlain<Dilation<Lum8u, 1>>(run, mask, src, dst)));
    EXPECT_EQ((std::vector<Lum8u>{20, 30, 40, 30}), dst.pixels());
    ASSERT_EQ(lumStatusOk, (runPlain<Erosion<Lum8u, 1>>(run, mask, src, dst)));
    EXPECT_EQ((std::vector<Lum8u>{20, 30, 40, 30}), dst.pixels());
}

MEMBER_TEST(DilateErode, RandomRunsGiveTheDefinition) {
    using T = TypeParam;
    for (const Morphology<T>& member : allOf<T>()) {
        SCOPED_TRACE(member.name());
        const unsigned seed = std::random_device{}();
        SCOPED_TRACE(seed);
        std::mt19937 engine(seed);
        const auto below = [&](int n) { return static_cast<int>(engine() % n); };
        for (int i = 0; i < 40; ++i) {
            Call<T> run;
            const bool isTiny = below(3) == 0;
            run.roiSize = {1 + below(isTiny ? 8 : 90), 1 + below(isTiny ? 8 : 24)};
            if (below(2) == 0) run.initSize = {run.roiSize.width + below(30), run.roiSize.height + below(30)};
            const int width = 1 + below(below(4) == 0 ? 40 : 9);
            const int height = 1 + below(below(4) == 0 ? 40 : 9);
            const int kinds[] = {lumBorderReplicate, lumBorderMirror, lumBorderDefaultValue,
                                 lumBorderConstant};
            run.border = kinds[below(4)] | (below(2) == 0 ? below(16) << 4 : 0);
            for (T& value : run.value) value = static_cast<T>(engine());
            run.spare = below(32);
            CallerMask mask =
                below(2) == 0 ? fullMask(width, height) : randomMask(width, height, 1 + below(99), engine);
            // An empty mask and one of one cell are another matter.
            mask.cells[below(static_cast<int>(mask.cells.size()))] = 7;
            if (mask.cells.size() == 1) continue;
            runBothForms(member, run, mask, engine(), below(2) == 0 ? Guard::after : Guard::before,
                         below(8) * static_cast<int>(sizeof(T)));
            if (testing::Test::HasFatalFailure()) return;
        }
    }
}

MEMBER_TEST(DilateErode, EachWidthAndRectangle) {
    using T = TypeParam;
    for (const Morphology<T>& member : allOf<T>()) {
        SCOPED_TRACE(member.name());
        for (int width = 1; width <= 70; ++width)
            for (int side : {1, 2, 3, 5, 9, 16}) {
                if (side == 1 && width % 7 != 0) continue;
                // The definition takes long: with several channels, a third of the widths.
                if (member.channels > 1 && width % 3 != 0) continue;
                const CallerMask mask = fullMask(side == 1 ? 3 : side, side == 1 ? 1 : side);
                const Call<T> run{.roiSize = {width, 6 + width % 17},
                                  .border = width % 2 == 0 ? lumBorderReplicate : lumBorderDefaultValue};
                runBothForms(member, run, mask, width * 100 + side);
                if (testing::Test::HasFatalFailure()) return;
            }
    }
}

MEMBER_TEST(DilateErode, LargeRectanglesAndMasks) {
    using T = TypeParam;
    for (const Morphology<T>& member : allOf<T>()) {
        SCOPED_TRACE(member.name());
        std::mt19937 engine(5);
        for (const CallerMask& mask : {fullMask(63, 63), fullMask(1, 63), fullMask(31, 17), fullMask(81, 3),
                                       randomMask(63, 21, 50, engine), randomMask(31, 31, 90, engine),
                                       randomMask(63, 63, 50, engine)}) {
            // Regions that exceed the mask, that do not, and an object made for more. The definition takes long.
            for (LumSize size : {LumSize{68, 66}, LumSize{12, 65}, LumSize{5, 5}}) {
                if ((member.channels > 1 || isSanitized) && size.width > 20) continue;
                runBothForms(member,
                             Call<T>{.roiSize = size, .border = lumBorderMirror, .initSize = {70, 70}}, mask,
                             1);
                runBothForms(
                    member,
                    Call<T>{.roiSize = size,
                            .border = lumBorderConstant | lumBorderInMemoryTop | lumBorderInMemoryRight,
                            .value = {3, 1, 4, 2}},
                    mask, 2);
                if (testing::Test::HasFatalFailure()) return;
            }
        }
    }
}

MEMBER_TEST(DilateErode, EmptyAndOneCellMasksCopy) {
    using T = TypeParam;
    for (const Morphology<T>& member : allOf<T>()) {
        SCOPED_TRACE(member.name());
        std::mt19937 engine(1);
        GuardedImage<T> src(19, 7, {.channels = member.channels});
        src.fillRandom(3);
        for (const CallerMask& mask : {CallerMask{{1, 1}, {1}}, CallerMask{{1, 1}, {0}},
                                       randomMask(3, 3, 0, engine), randomMask(4, 5, 0, engine)})
            for (LumBorderType border : {lumBorderReplicate, lumBorderConstant})
                for (const auto call : {member.plain, member.inLong}) {
                    GuardedImage<T> dst(19, 7, {.channels = member.channels, .padding = 8});
                    ASSERT_EQ(lumStatusOk, call({.roiSize = {19, 7}, .border = border, .value = {1, 2, 3, 4}},
                                                mask, src, dst));
                    EXPECT_EQ(src.pixels(), dst.pixels());
                    EXPECT_TRUE(dst.outsideUntouched());
                }
    }
}

MEMBER_TEST(DilateErode, EvenMaskReachesRightAndDown) {
    using T = TypeParam;
    for (const Morphology<T>& member : allOf<T>()) {
        SCOPED_TRACE(member.name());
        const bool dilates = member.dilates();
        GuardedImage<T> src(5, 5, {.channels = member.channels});
        src.fill([&](int x, int y, int) { return (x == 2 && y == 2) == dilates ? 9 : 1; });
        GuardedImage<T> dst(5, 5, {.channels = member.channels});
        ASSERT_EQ(lumStatusOk, (member.plain({.roiSize = {5, 5}}, fullMask(2, 2), src, dst)));
        for (int y = 0; y < 5; ++y)
            for (int x = 0; x < 5; ++x) {
                const bool reached = (x == 1 || x == 2) && (y == 1 || y == 2);
                EXPECT_EQ(reached == dilates ? 9 : 1, dst.at(x, y)) << x << ", " << y;
            }
    }
}

MEMBER_TEST(DilateErode, DefaultValueIgnoresTheOutside) {
    using T = TypeParam;
    for (const Morphology<T>& member : allOf<T>()) {
        SCOPED_TRACE(member.name());
        std::mt19937 engine(9);
        const T extreme = neutralValue<T>(member.operation);
        GuardedImage<T> src(9, 9, {.channels = member.channels});
        src.fill([&](int, int, int) { return extreme; });
        for (const CallerMask& mask : {fullMask(5, 5), CallerMask{{3, 3}, {1, 0, 1, 0, 1, 0, 1, 0, 1}}}) {
            GuardedImage<T> dst(9, 9, {.channels = member.channels});
            ASSERT_EQ(lumStatusOk,
                      (member.plain({.roiSize = {9, 9}, .border = lumBorderDefaultValue}, mask, src, dst)));
            EXPECT_EQ(src.pixels(), dst.pixels());
        }
    }
}

MEMBER_TEST(DilateErode, AllSidesInMemoryNeedNoKind) {
    using T = TypeParam;
    for (const Morphology<T>& member : allOf<T>()) {
        SCOPED_TRACE(member.name());
        std::mt19937 engine(4);
        for (const CallerMask& mask : {fullMask(5, 3), randomMask(5, 5, 40, engine)})
            runBothForms(member, Call<T>{.roiSize = {37, 11}, .border = lumBorderInMemory}, mask, 8);
    }
}

MEMBER_TEST(DilateErode, OneColumnMaskReadsNoSides) {
    using T = TypeParam;
    for (const Morphology<T>& member : allOf<T>()) {
        SCOPED_TRACE(member.name());
        // Rows of one pixel right at an unreadable page, on either side.
        for (Guard guard : {Guard::after, Guard::before})
            for (LumBorderType border : {lumBorderReplicate, lumBorderMirror, lumBorderConstant})
                runBothForms(member, Call<T>{.roiSize = {1, 9}, .border = border, .value = {5, 5, 5, 5}},
                             fullMask(1, 3), 6, guard);
    }
}

MEMBER_TEST(DilateErode, FirstStageFlags) {
    using T = TypeParam;
    for (const Morphology<T>& member : allOf<T>()) {
        SCOPED_TRACE(member.name());
        const bool dilates = member.dilates();
        const CallerMask mask = fullMask(3, 3);
        GuardedImage<T> src(6, 6, {.channels = member.channels, .margin = 1});
        src.fillRandom(2);
        const auto resultOf = [&](auto call, LumBorderType border) {
            GuardedImage<T> dst(6, 6, {.channels = member.channels});
            EXPECT_EQ(lumStatusOk, call(Call<T>{.roiSize = {6, 6}, .border = border}, mask, src, dst))
                << border;
            return dst.pixels();
        };
        const auto inMemory = resultOf(member.plain, lumBorderInMemory);
        const auto replicated = resultOf(member.plain, lumBorderReplicate);
        EXPECT_NE(inMemory, replicated);
        // The long members and dilation fold them; erosion does not see them.
        EXPECT_EQ(inMemory, resultOf(member.inLong, 0xF00));
        EXPECT_EQ(inMemory, resultOf(member.inLong, 0x5A0));
        EXPECT_EQ(dilates ? inMemory : replicated, resultOf(member.plain, 0xF00 | lumBorderReplicate));
        if (dilates) {
            EXPECT_EQ(inMemory, resultOf(member.plain, 0xF00));
            EXPECT_EQ(inMemory, resultOf(member.plain, 0xFF0));
        }
    }
}

MEMBER_TEST(DilateErode, SourceIsNotWritten) {
    using T = TypeParam;
    for (const Morphology<T>& member : allOf<T>()) {
        SCOPED_TRACE(member.name());
        GuardedImage<T> src(40, 12, {.channels = member.channels, .margin = 2});
        src.fillRandom(2);
        GuardedImage<T> dst(40, 12, {.channels = member.channels});
        ASSERT_EQ(lumStatusOk, (member.plain({.roiSize = {40, 12}}, fullMask(5, 5), src, dst)));
        EXPECT_TRUE(src.untouched());
    }
}

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

void expectSpecialFloats(const Morphology<Lum32f>& member) {
    const float weakest = member.dilates() ? -infinity : infinity;
    const float weakestFinite = neutralValue<Lum32f>(member.operation);
    const CallerMask cross{{3, 3}, {0, 1, 0, 1, 1, 1, 0, 1, 0}};
    for (int width : {3, 5, 20, 70}) {
        GuardedImage<Lum32f> src(width, 6);
        GuardedImage<Lum32f> dst(width, 6);
        const auto run = [&](const CallerMask& mask, LumBorderType border) {
            return member.plain({.roiSize = {width, 6}, .border = border}, mask, src, dst);
        };
        // Infinities are numbers, but a mask with an empty cell starts from the finite neutral value.
        src.fill([&](int, int, int) { return weakest; });
        ASSERT_EQ(lumStatusOk, run(fullMask(3, 3), lumBorderReplicate));
        for (float value : dst.pixels()) ASSERT_EQ(weakest, value);
        ASSERT_EQ(lumStatusOk, run(cross, lumBorderReplicate));
        for (float value : dst.pixels()) ASSERT_EQ(weakestFinite, value);
        ASSERT_EQ(lumStatusOk, run(fullMask(3, 3), lumBorderDefaultValue));
        EXPECT_EQ(weakestFinite, dst.at(0, 3));
        EXPECT_EQ(weakest, dst.at(width / 2, 3));
        // A NaN is passed over wherever it lies.
        for (int at = 0; at < width * 6; ++at) {
            src.fill([&](int x, int y, int) {
                return y * width + x == at ? notANumber : static_cast<float>(x * 7 % 5 - y);
            });
            for (const CallerMask& mask : {fullMask(3, 3), fullMask(5, 1), fullMask(1, 5), cross}) {
                ASSERT_EQ(lumStatusOk, run(mask, lumBorderMirror));
                expectDefinition(member, {.roiSize = {width, 6}, .border = lumBorderMirror}, mask, src, dst);
            }
        }
    }
}

} // namespace

TEST(DilateFloats, InfinitiesAndNaN) { expectSpecialFloats(morphology<Dilation<Lum32f, 1>>); }
TEST(ErodeFloats, InfinitiesAndNaN) { expectSpecialFloats(morphology<Erosion<Lum32f, 1>>); }

TEST(DilateFloats, ConstantNaNIsPassedOver) {
    GuardedImage<Lum32f> src(20, 4);
    src.fillRandom(1);
    for (const CallerMask& mask : {fullMask(3, 3), CallerMask{{3, 1}, {1, 0, 1}}}) {
        const Call<Lum32f> run{.roiSize = {20, 4}, .border = lumBorderConstant, .value = {notANumber}};
        GuardedImage<Lum32f> dst(20, 4);
        ASSERT_EQ(lumStatusOk, (runPlain<Dilation<Lum32f, 1>>(run, mask, src, dst)));
        expectDefinition(morphology<Dilation<Lum32f, 1>>, run, mask, src, dst);
    }
}

TEST(DilateErodeInPlace, SixteenBitDilationSucceeds) {
    GuardedImage<Lum16u> image(20, 6);
    MorphObject<Dilation<Lum16u, 1>> object({20, 6}, fullMask(3, 3));
    EXPECT_EQ(lumStatusOk,
              lumiDilateBorder_16u_C1R(image.data(), image.step(), image.data(), image.step(), {20, 6},
                                       lumBorderReplicate, 0, object.record, object.buffer.as()));
    EXPECT_EQ(lumStatusInPlaceNotSupported,
              lumiErodeBorder_16u_C1R(image.data(), image.step(), image.data(), image.step(), {20, 6},
                                      lumBorderReplicate, 0, object.record, object.buffer.as()));
}

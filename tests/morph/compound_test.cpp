#include <cstring>

#include "morph/compound_members.h"
#include "support/member_test.h"

using namespace support;

namespace {

/// A comparison of a member with the reference.
template <class T> struct Trial {
    CompoundMember<T> member;
    MorphMask mask = MorphMask::full(3, 3);
    LumSize size{20, 9};
    LumBorderType border = lumBorderReplicate;
    int mode = 0;
    unsigned seed = 1;
    Placement placement = {};
    /// The region that the object is built for.
    LumSize initSize{0, 0};
    /// Small numbers make equal neighbours and, in floats, exact differences.
    int range = 256;
};

template <class T> T drawn(std::mt19937& engine, int range) {
    const int value = static_cast<int>(engine() % static_cast<unsigned>(range));
    if constexpr (std::is_unsigned_v<T>) return static_cast<T>(value);
    return static_cast<T>(value - range / 2);
}

template <class T> void expectAsReference(const Trial<T>& t) {
    SCOPED_TRACE(testing::Message() << t.member.name << " mask " << t.mask.width << "x" << t.mask.height
                                    << " region " << t.size.width << "x" << t.size.height << " border 0x"
                                    << std::hex << t.border << std::dec << " mode " << t.mode << " seed "
                                    << t.seed);
    const LumSize initSize = t.initSize.width == 0 ? t.size : t.initSize;
    CompoundMemory<T> memory(t.member, t.mask, initSize, t.placement.offset % 3);
    if (t.member.isLong) {
        ASSERT_EQ(lumStatusOk, lumiMorphSetMode(t.mode, memory.spec()));
    }
    const Windows windows = windowsOf(t.member, t.mask, t.mode % 2 == 1);
    const Margins margins =
        marginsFor(planOf(t.member.op, t.member.isLong, t.border), windows.first, windows.second);

    Placement placement = t.placement;
    placement.channels = t.member.channels;
    placement.margin = margins;
    GuardedImage<T> src(t.size.width, t.size.height, placement);
    placement.margin = 0;
    GuardedImage<T> dst(t.size.width, t.size.height, placement);
    std::mt19937 engine(t.seed);
    src.fill([&](int, int, int) { return drawn<T>(engine, t.range); });
    dst.fill([](int, int, int) { return 77; });
    Plane<T> plane(-margins.left, -margins.top, t.size.width + margins.right, t.size.height + margins.bottom,
                   t.member.channels);
    for (int y = plane.y0; y < plane.y1; ++y)
        for (int x = plane.x0; x < plane.x1; ++x)
            for (int c = 0; c < t.member.channels; ++c) plane.at(x, y, c) = src.at(x, y, c);
    const T value[] = {drawn<T>(engine, t.range), drawn<T>(engine, t.range), drawn<T>(engine, t.range),
                       drawn<T>(engine, t.range)};

    ASSERT_EQ(lumStatusOk, t.member.run({src.data(),
                                         src.step(),
                                         dst.data(),
                                         dst.step(),
                                         {t.size.width, t.size.height},
                                         t.border,
                                         value,
                                         memory.spec(),
                                         memory.buffer()}));
    const std::vector<T> expected =
        referenceCompound(t.member, plane, t.size, t.border, value, windows, t.mode >= 4);
    ASSERT_EQ(expected, dst.pixels());
    ASSERT_TRUE(dst.outsideUntouched());
    ASSERT_TRUE(src.untouched());
}

/// Borders that a member takes: each kind with a few sets of flags, and the flags alone.
std::vector<LumBorderType> bordersOf(Operator op, bool isLong) {
    std::vector<LumBorderType> borders{lumBorderInMemory};
    for (LumBorderType kind : {1, 3, 5, 6}) {
        if (op == Operator::gradient && !isLong && kind == 5) continue;
        for (LumBorderType flags : {0x000, 0x010, 0x0A0, 0x050, 0x0F0}) borders.push_back(kind | flags);
        if (op == Operator::gradient && !isLong) continue;
        for (LumBorderType flags : {0x100, 0xA00, 0x520, 0xF00, 0xFF0, 0x5A0})
            borders.push_back(kind | flags);
    }
    return borders;
}

template <class T> CompoundMember<T> memberOf(Operator op, bool isLong, int channels = 1) {
    for (const auto& member : compoundMembers<T>())
        if (member.op == op && member.isLong == isLong && member.channels == channels) return member;
    std::abort();
}

const MorphMask lShape = MorphMask::of({"#..", "#..", "###"});

using Elements = testing::Types<Lum8u, Lum16u, Lum16s, Lum32f>;
MEMBER_TEST_SUITE(Compound, Elements);

} // namespace

TEST(CompoundByHand, OpeningRemovesASpeckAndClosingAHole) {
    const MorphMask mask = MorphMask::full(3, 3);
    const auto open = memberOf<Lum8u>(Operator::open, false), close = memberOf<Lum8u>(Operator::close, false);
    const auto tophat = memberOf<Lum8u>(Operator::tophat, false);
    CompoundMemory<Lum8u> memory(open, mask, {5, 5});
    std::vector<Lum8u> image(25, 10), out(25);
    const auto run = [&](const CompoundMember<Lum8u>& member) {
        EXPECT_STATUS(lumStatusOk, member.run({image.data(),
                                               5,
                                               out.data(),
                                               5,
                                               {5, 5},
                                               lumBorderReplicate,
                                               nullptr,
                                               memory.spec(),
                                               memory.buffer()}));
    };
    image[12] = 200;
    run(open);
    EXPECT_EQ(std::vector<Lum8u>(25, 10), out);
    run(tophat);
    std::vector<Lum8u> speck(25, 0);
    speck[12] = 190;
    EXPECT_EQ(speck, out);
    image[12] = 3;
    run(close);
    EXPECT_EQ(std::vector<Lum8u>(25, 10), out);
}

TEST(CompoundByHand, SecondStageReplicatesTheIntermediate) {
    // The erosion leaves 1 1 5 of 1 9 5; dilating its replicated edge gives 1 5 5.
    const MorphMask mask = MorphMask::full(3, 1);
    const auto open = memberOf<Lum8u>(Operator::open, false);
    CompoundMemory<Lum8u> memory(open, mask, {3, 1});
    const Lum8u image[] = {1, 9, 5};
    std::vector<Lum8u> out(3);
    ASSERT_EQ(
        lumStatusOk,
        open.run(
            {image, 3, out.data(), 3, {3, 1}, lumBorderReplicate, nullptr, memory.spec(), memory.buffer()}));
    EXPECT_EQ((std::vector<Lum8u>{1, 5, 5}), out);
}

MEMBER_TEST(Compound, EveryMemberOnEveryBorder) {
    for (const auto& member : compoundMembers<TypeParam>())
        for (LumBorderType border : bordersOf(member.op, member.isLong))
            for (const auto& mask : {MorphMask::full(5, 3), lShape})
                expectAsReference<TypeParam>({.member = member,
                                              .mask = mask,
                                              .size = {21, 8},
                                              .border = border,
                                              .placement = {.offset = 1}});
}

MEMBER_TEST(Compound, MasksOfAllSizes) {
    for (const auto& member : compoundMembers<TypeParam>()) {
        if (member.channels != 1) continue;
        for (int width = 1; width <= 7; ++width)
            for (int height = 1; height <= 7; height += 1 + height % 2)
                expectAsReference<TypeParam>({.member = member,
                                              .mask = MorphMask::random(width, height, 5U * width + height),
                                              .size = {19, 11},
                                              .border = lumBorderReplicate | lumBorderInMemoryLeft});
    }
}

MEMBER_TEST(Compound, EvenMasksOfEveryChannelCount) {
    for (const auto& member : compoundMembers<TypeParam>())
        for (const auto& mask : {MorphMask::full(4, 2), MorphMask::of({"#..#", "....", "..##", "#..."})})
            for (LumBorderType border : {1, 3, 6, 0xF0})
                expectAsReference<TypeParam>(
                    {.member = member, .mask = mask, .size = {17, 9}, .border = border});
}

MEMBER_TEST(Compound, RegionsNotLargerThanTheMask) {
    for (const auto& member : compoundMembers<TypeParam>()) {
        if (member.channels == 4) continue;
        for (LumSize size : {LumSize{1, 1}, LumSize{1, 12}, LumSize{12, 1}, LumSize{5, 5}, LumSize{6, 4},
                             LumSize{4, 9}, LumSize{2, 2}})
            for (LumBorderType border : {1, 3, 6, 0x53, 0xA1, 0xF0})
                for (const auto& mask : {MorphMask::full(5, 5), MorphMask::random(5, 7, 3)})
                    expectAsReference<TypeParam>(
                        {.member = member, .mask = mask, .size = size, .border = border});
    }
}

MEMBER_TEST(Compound, RegionsSmallerThanThatOfTheObject) {
    // A narrow region is asked for more work memory than a wide one; it has to do with what the wide one has.
    for (const auto& member : compoundMembers<TypeParam>())
        for (LumSize initSize : {LumSize{6, 60}, LumSize{40, 40}, LumSize{60, 6}})
            for (LumSize size :
                 {LumSize{5, 60}, LumSize{1, 40}, LumSize{6, 5}, LumSize{40, 1}, LumSize{60, 5}}) {
                if (size.width > initSize.width || size.height > initSize.height) continue;
                for (LumBorderType border : {1, 0xF0, 0x66})
                    expectAsReference<TypeParam>({.member = member,
                                                  .mask = MorphMask::random(5, 5, 9),
                                                  .size = size,
                                                  .border = border,
                                                  .initSize = initSize});
            }
}

MEMBER_TEST(Compound, EveryWidthAndAlignment) {
    for (const auto& member : compoundMembers<TypeParam>()) {
        if (member.channels == 4) continue;
        for (int width = 1; width <= 70; width += member.channels) {
            Placement placement{.padding = static_cast<int>(sizeof(TypeParam)) * (width % 5),
                                .offset = width % 32};
            placement.guard = width % 2 == 0 ? Guard::after : Guard::before;
            expectAsReference<TypeParam>(
                {.member = member, .size = {width, 3}, .seed = 100U + width, .placement = placement});
        }
    }
}

MEMBER_TEST(Compound, RegionsOfManyWideRows) {
    // Enough bytes for two bands of rows.
    const LumSize size{16000 / static_cast<int>(sizeof(TypeParam)), 50};
    for (const auto& member : compoundMembers<TypeParam>()) {
        if (member.channels != 1) continue;
        expectAsReference<TypeParam>(
            {.member = member,
             .mask = MorphMask::of({"#..", ".#.", "..."}),
             .size = size,
             .border = lumBorderMirror | lumBorderInMemoryTop | lumBorderInMemoryLeft});
        expectAsReference<TypeParam>({.member = member,
                                      .mask = MorphMask::of({"#", "#", "."}),
                                      .size = size,
                                      .border = lumBorderInMemory});
    }
}

MEMBER_TEST(Compound, RegionsOfRowsTooWideForBands) {
    const LumSize size{50000 / static_cast<int>(sizeof(TypeParam)), 6};
    for (const auto& member : compoundMembers<TypeParam>()) {
        if (member.channels != 1) continue;
        for (const MorphMask& mask : {lShape, MorphMask::of({"##."})})
            expectAsReference<TypeParam>(
                {.member = member, .mask = mask, .size = size, .border = lumBorderInMemory});
    }
}

MEMBER_TEST(Compound, OneCellAndNoCellCopy) {
    for (const auto& member : compoundMembers<TypeParam>())
        for (const auto& mask : {MorphMask::full(1, 1), MorphMask::empty(1, 1), MorphMask::empty(3, 5)})
            for (LumBorderType border : {1, 6, 0xF0})
                expectAsReference<TypeParam>({.member = member, .mask = mask, .border = border});
}

MEMBER_TEST(Compound, ModesChangeTheSecondMaskAndTheSigns) {
    for (const auto& member : compoundMembers<TypeParam>()) {
        if (!member.isLong) continue;
        for (int mode : {0, 1, 4, 5})
            for (LumBorderType border : {1, 0xF0, 0x16})
                expectAsReference<TypeParam>(
                    {.member = member, .mask = lShape, .border = border, .mode = mode, .seed = 3});
    }
}

MEMBER_TEST(Compound, ElementsOfTheWholeRange) {
    for (const auto& member : compoundMembers<TypeParam>())
        for (unsigned seed = 1; seed <= 3; ++seed)
            expectAsReference<TypeParam>({.member = member,
                                          .mask = lShape,
                                          .border = lumBorderConstant,
                                          .mode = member.isLong ? 4 : 0,
                                          .seed = seed,
                                          .range = sizeof(TypeParam) == 1 ? 256 : 65536});
}

MEMBER_TEST(Compound, OpeningAndClosingWorkInPlace) {
    for (const auto& member : compoundMembers<TypeParam>()) {
        if (member.op != Operator::open && member.op != Operator::close) continue;
        const int bytesOfPixel = member.channels * static_cast<int>(sizeof(TypeParam));
        for (LumSize size : {LumSize{33, 12}, LumSize{16000 / bytesOfPixel, 50}})
            // The same image, and images that begin some rows apart.
            for (int rowsApart : {0, 5, -5}) {
                const int above = std::max(-rowsApart, 0);
                CompoundMemory<TypeParam> memory(member, lShape, size);
                GuardedImage<TypeParam> apart(size.width, size.height, {.channels = member.channels});
                GuardedImage<TypeParam> image(size.width, size.height + 5, {.channels = member.channels});
                image.fillRandom(4);
                const auto run = [&](TypeParam* dst) {
                    const LumSizeL roi{size.width, size.height};
                    ASSERT_EQ(lumStatusOk,
                              member.run({image.row(above), image.step(), dst, image.step(), roi,
                                          lumBorderReplicate, nullptr, memory.spec(), memory.buffer()}));
                };
                run(apart.data());
                run(image.row(above + rowsApart));
                for (int y = 0; y < size.height; ++y)
                    ASSERT_EQ(0, std::memcmp(apart.row(y), image.row(above + rowsApart + y),
                                             static_cast<std::size_t>(size.width) * bytesOfPixel))
                        << member.name << " row " << y << " of images " << rowsApart << " rows apart";
            }
    }
}

MEMBER_TEST(Compound, ARowInPlaceMayHaveAnyStep) {
    for (const auto& member : compoundMembers<TypeParam>()) {
        if (member.op != Operator::open && member.op != Operator::close) continue;
        const LumSize size{70, 1};
        CompoundMemory<TypeParam> memory(member, lShape, size);
        GuardedImage<TypeParam> apart(size.width, size.height, {.channels = member.channels});
        GuardedImage<TypeParam> image(size.width, size.height, {.channels = member.channels});
        image.fillRandom(5);
        const auto run = [&](TypeParam* dst, int dstStep) {
            ASSERT_EQ(lumStatusOk,
                      member.run({image.data(), image.step(), dst, dstStep, LumSizeL{size.width, size.height},
                                  lumBorderReplicate, nullptr, memory.spec(), memory.buffer()}));
        };
        run(apart.data(), apart.step());
        run(image.data(), 2 * image.step());
        EXPECT_EQ(apart.pixels(), image.pixels()) << member.name;
    }
}

MEMBER_TEST(Compound, RandomCalls) {
    const unsigned seed = std::random_device{}();
    testing::Test::RecordProperty("seed", static_cast<int>(seed));
    SCOPED_TRACE(seed);
    std::mt19937 engine(seed);
    const auto members = compoundMembers<TypeParam>();
    for (int i = 0; i < 300; ++i) {
        const auto below = [&](int limit) {
            return static_cast<int>(engine() % static_cast<unsigned>(limit));
        };
        const auto& member = members[below(static_cast<int>(members.size()))];
        const auto borders = bordersOf(member.op, member.isLong);
        const LumSize size{1 + below(40), 1 + below(20)};
        const MorphMask mask =
            below(3) == 0 ? MorphMask::full(1 + below(9), 1 + below(9))
                          : MorphMask::random(1 + below(9), 1 + below(9), static_cast<unsigned>(engine()), 3);
        expectAsReference<TypeParam>(
            {.member = member,
             .mask = mask,
             .size = size,
             .border = borders[below(static_cast<int>(borders.size()))],
             .mode = member.isLong ? below(2) + 4 * below(2) : 0,
             .seed = static_cast<unsigned>(engine()),
             .placement = {.padding = static_cast<int>(sizeof(TypeParam)) * below(9), .offset = below(33)},
             .initSize = {size.width + below(3) * below(30), size.height + below(3) * below(30)}});
    }
}

TEST(CompoundByHand, AsymmetricGradientsDifferBetweenTheForms) {
    const auto plain = memberOf<Lum8u>(Operator::gradient, false),
               wide = memberOf<Lum8u>(Operator::gradient, true);
    const MorphMask mask = MorphMask::of({"##."});
    CompoundMemory<Lum8u> plainMemory(plain, mask, {3, 1}), wideMemory(wide, mask, {3, 1});
    const Lum8u image[] = {10, 20, 40};
    std::vector<Lum8u> out(3);
    ASSERT_EQ(lumStatusOk, plain.run({image,
                                      3,
                                      out.data(),
                                      3,
                                      {3, 1},
                                      lumBorderReplicate,
                                      nullptr,
                                      plainMemory.spec(),
                                      plainMemory.buffer()}));
    EXPECT_EQ((std::vector<Lum8u>{0, 10, 20}), out);
    ASSERT_EQ(lumStatusOk, wide.run({image,
                                     3,
                                     out.data(),
                                     3,
                                     {3, 1},
                                     lumBorderReplicate,
                                     nullptr,
                                     wideMemory.spec(),
                                     wideMemory.buffer()}));
    EXPECT_EQ((std::vector<Lum8u>{0, 0, 0}), out);
}

TEST(CompoundByHand, LongFloatDifferencesKeepSignsByMode) {
    // In mode 1 the second stage is not the reflection, and a black-hat may fall below 0.
    const MorphMask mask = MorphMask::of({"##."});
    const Lum32f image[] = {1, 5, 2, 7};
    const auto blackhat = memberOf<Lum32f>(Operator::blackhat, true);
    CompoundMemory<Lum32f> memory(blackhat, mask, {4, 1});
    for (int mode : {1, 5}) {
        std::vector<Lum32f> out(4);
        ASSERT_EQ(lumStatusOk, lumiMorphSetMode(mode, memory.spec()));
        ASSERT_EQ(lumStatusOk, blackhat.run({image,
                                             16,
                                             out.data(),
                                             16,
                                             {4, 1},
                                             lumBorderReplicate,
                                             nullptr,
                                             memory.spec(),
                                             memory.buffer()}));
        // Dilated 1 5 5 7, eroded 1 1 5 5.
        const Lum32f below = mode == 5 ? 1.0F : 0.0F;
        EXPECT_EQ((std::vector<Lum32f>{0, -4 * below, 3, -2 * below}), out);
    }
}

TEST(CompoundByHand, PlainDifferencesOf16sKeepTheirSign) {
    // With memory on one side the erosion of the reflection misses what the dilation saw.
    const auto gradient = memberOf<Lum16s>(Operator::gradient, false);
    const MorphMask mask = MorphMask::full(3, 1);
    CompoundMemory<Lum16s> memory(gradient, mask, {3, 1});
    const Lum16s image[] = {-32768, 0, 32767};
    std::vector<Lum16s> out(3);
    ASSERT_EQ(
        lumStatusOk,
        gradient.run(
            {image, 6, out.data(), 6, {3, 1}, lumBorderReplicate, nullptr, memory.spec(), memory.buffer()}));
    EXPECT_EQ((std::vector<Lum16s>{32767, 32767, 32767}), out);
}

#include <functional>
#include <string>

#include "morph/compound_members.h"

using namespace support;

namespace {

struct BitCall {
    const Lum8u* src;
    std::intptr_t srcStep, srcBit;
    Lum8u* dst;
    std::intptr_t dstStep, dstBit;
    LumSizeL roiSize;
    LumBorderType border;
    const Lum8u* value;
    LumMorphPairState* spec;
    Lum8u* buffer;
};

struct BitMember {
    const char* name;
    Operator op;
    bool isLong;
    LumStatus (*run)(const BitCall&);
};

template <auto member> LumStatus callPlainBits(const BitCall& c) {
    return member(c.src, static_cast<int>(c.srcStep), static_cast<int>(c.srcBit), c.dst,
                  static_cast<int>(c.dstStep), static_cast<int>(c.dstBit),
                  {static_cast<int>(c.roiSize.width), static_cast<int>(c.roiSize.height)}, c.border,
                  c.value == nullptr ? Lum8u{0} : *c.value, c.spec, c.buffer);
}
template <auto member> LumStatus callLongBits(const BitCall& c) {
    return member(c.src, c.srcStep, c.srcBit, c.dst, c.dstStep, c.dstBit, c.roiSize, c.border, c.value,
                  c.spec, c.buffer);
}

const BitMember members[] = {
    {"Open", Operator::open, false, callPlainBits<lumiMorphOpenBorder_1u_C1R>},
    {"Close", Operator::close, false, callPlainBits<lumiMorphCloseBorder_1u_C1R>},
    {"Tophat", Operator::tophat, false, callPlainBits<lumiMorphTophatBorder_1u_C1R>},
    {"Blackhat", Operator::blackhat, false, callPlainBits<lumiMorphBlackhatBorder_1u_C1R>},
    {"Gradient", Operator::gradient, false, callPlainBits<lumiMorphGradientBorder_1u_C1R>},
    {"Open_L", Operator::open, true, callLongBits<lumiMorphOpen_1u_C1R_L>},
    {"Close_L", Operator::close, true, callLongBits<lumiMorphClose_1u_C1R_L>},
    {"Tophat_L", Operator::tophat, true, callLongBits<lumiMorphTophat_1u_C1R_L>},
    {"Blackhat_L", Operator::blackhat, true, callLongBits<lumiMorphBlackhat_1u_C1R_L>},
    {"Gradient_L", Operator::gradient, true, callLongBits<lumiMorphGradient_1u_C1R_L>},
};

class BitMemory {
  public:
    BitMemory(bool isLong, const MorphMask& mask, LumSize roi) : BitMemory(sizesFor(isLong, mask, roi)) {
        const std::vector<Lum8u> cells = mask.paddedCells(1);
        if (isLong) {
            EXPECT_STATUS(lumStatusOk, lumiMorphInit_L({roi.width, roi.height}, cells.data(), mask.sizeL(),
                                                       lumType1u, 1, spec()));
        } else {
            EXPECT_STATUS(lumStatusOk,
                          lumiMorphAdvInit_1u_C1R(roi, mask.cells.data(), mask.size(), spec(), buffer()));
        }
    }
    LumMorphPairState* spec() { return object_.as<LumMorphPairState>(); }
    Lum8u* buffer() { return work_.as(); }

  private:
    struct Sizes {
        Lum32s spec, buffer;
    };
    explicit BitMemory(Sizes sizes) : object_(sizes.spec), work_(sizes.buffer) {}
    static Sizes sizesFor(bool isLong, const MorphMask& mask, LumSize roi) {
        Sizes sizes{0, 0};
        const LumSizeL roiL{roi.width, roi.height};
        if (isLong) {
            EXPECT_STATUS(lumStatusOk, lumiMorphGetSpecSize_L(roiL, mask.sizeL(), lumType1u, 1, &sizes.spec));
            EXPECT_STATUS(lumStatusOk,
                          lumiMorphGetBufferSize_L(roiL, mask.sizeL(), lumType1u, 1, &sizes.buffer));
        } else {
            EXPECT_STATUS(lumStatusOk,
                          lumiMorphAdvGetSize_1u_C1R(roi, mask.size(), &sizes.spec, &sizes.buffer));
        }
        return sizes;
    }
    GuardedBlock object_;
    GuardedBlock work_;
};

/// A window of the cells as given, about an anchor; an even mask reaches further to the right and down.
Window bitWindow(const std::vector<Lum8u>& cells, int width, int height, int anchorX, int anchorY) {
    Window window{{}, anchorX, width - anchorX - 1, anchorY, height - anchorY - 1};
    for (int row = 0; row < height; ++row)
        for (int column = 0; column < width; ++column)
            if (cells[static_cast<std::size_t>(row) * width + column] != 0)
                window.offsets.push_back({column - anchorX, row - anchorY});
    if (window.offsets.empty()) window.left = window.right = window.top = window.bottom = 0;
    return window;
}

Windows bitWindows(const BitMember& member, const MorphMask& mask, bool sameForBoth) {
    const int w = mask.width, h = mask.height;
    Windows windows;
    if (member.isLong) {
        windows.first = bitWindow(mask.paddedCells(1), w | 1, h | 1, w / 2, h / 2);
        windows.second = bitWindow(mask.reflected(), w, h, (w - 1) / 2, (h - 1) / 2);
    } else {
        windows.first = bitWindow(mask.cells, w, h, (w - 1) / 2, (h - 1) / 2);
        windows.second = bitWindow(mask.reflected(), w, h, w / 2, h / 2);
    }
    if (sameForBoth || (member.op == Operator::gradient && !member.isLong)) windows.second = windows.first;
    return windows;
}

struct BitTrial {
    BitMember member;
    MorphMask mask = MorphMask::full(3, 3);
    LumSize size{20, 9};
    LumBorderType border = lumBorderReplicate;
    int mode = 0;
    unsigned seed = 1;
    int srcBit = 0, dstBit = 0;
    LumSize initSize{0, 0};
};

int bitOf(const GuardedImage<Lum8u>& image, int bit, int x, int y) {
    const int i = x + bit;
    return image.at(i >> 3, y) >> (i & 7) & 1;
}

void expectAsReference(const BitTrial& t) {
    SCOPED_TRACE(testing::Message() << t.member.name << " mask " << t.mask.width << "x" << t.mask.height
                                    << " region " << t.size.width << "x" << t.size.height << " border 0x"
                                    << std::hex << t.border << std::dec << " mode " << t.mode << " seed "
                                    << t.seed << " bits " << t.srcBit << "," << t.dstBit);
    BitMemory memory(t.member.isLong, t.mask, t.initSize.width == 0 ? t.size : t.initSize);
    ASSERT_EQ(lumStatusOk, lumiMorphSetMode(t.mode, memory.spec()));
    const Windows windows = bitWindows(t.member, t.mask, t.mode % 2 == 1);
    const Margins margins =
        marginsFor(planOf(t.member.op, t.member.isLong, t.border), windows.first, windows.second);

    // Bytes that hold a bit that may be read, and no others.
    const int firstByte = (t.srcBit - margins.left) >> 3,
              lastByte = (t.srcBit + t.size.width + margins.right - 1) >> 3;
    Margins bytes = margins;
    bytes.left = bytes.right = 0;
    GuardedImage<Lum8u> source(lastByte - firstByte + 1, t.size.height,
                               {.guard = t.seed % 2 ? Guard::after : Guard::before, .margin = bytes});
    GuardedImage<Lum8u> dst((t.dstBit + t.size.width + 7) / 8, t.size.height);
    std::mt19937 engine(t.seed);
    source.fill([&](int, int, int) { return engine() & (t.seed % 3 ? engine() : ~0U); });
    dst.fill([&](int, int, int) { return engine(); });
    const GuardedImage<Lum8u>& pixels = source;
    const int bit = t.srcBit - 8 * firstByte;
    Plane<Lum8u> plane(-margins.left, -margins.top, t.size.width + margins.right,
                       t.size.height + margins.bottom, 1);
    for (int y = plane.y0; y < plane.y1; ++y)
        for (int x = plane.x0; x < plane.x1; ++x)
            plane.at(x, y, 0) = bitOf(pixels, bit, x, y) ? Lum8u{255} : Lum8u{0};
    const Lum8u value = t.seed % 2 ? 255 : 0;
    std::vector<int> before;
    for (int y = 0; y < t.size.height; ++y)
        for (int x = -t.dstBit; x < 8 * dst.elements() - t.dstBit; ++x)
            before.push_back(bitOf(dst, t.dstBit, x, y));

    const Lum8u given = value == 0 ? 0 : 4;
    ASSERT_EQ(lumStatusOk, t.member.run({source.data() - firstByte,
                                         source.step(),
                                         t.srcBit,
                                         dst.data(),
                                         dst.step(),
                                         t.dstBit,
                                         {t.size.width, t.size.height},
                                         t.border,
                                         &given,
                                         memory.spec(),
                                         memory.buffer()}));
    const CompoundMember<Lum8u> asBytes{"", t.member.op, 1, t.member.isLong, nullptr};
    const std::vector<Lum8u> expected =
        referenceCompound(asBytes, plane, t.size, t.border, &value, windows, false);
    std::size_t i = 0;
    for (int y = 0; y < t.size.height; ++y)
        for (int x = -t.dstBit; x < 8 * dst.elements() - t.dstBit; ++x, ++i) {
            const bool inside = x >= 0 && x < t.size.width;
            const int want =
                inside ? expected[static_cast<std::size_t>(y) * t.size.width + x] != 0 : before[i];
            ASSERT_EQ(want, bitOf(dst, t.dstBit, x, y)) << x << "," << y;
        }
    ASSERT_TRUE(dst.outsideUntouched());
    ASSERT_TRUE(source.untouched());
}

std::vector<LumBorderType> bordersOf(Operator op, bool isLong) {
    std::vector<LumBorderType> borders{lumBorderInMemory};
    for (LumBorderType kind : {1, 5, 6}) {
        if (op == Operator::gradient && !isLong && kind == 5) continue;
        for (LumBorderType flags : {0x000, 0x010, 0x0A0, 0x050, 0x0F0}) borders.push_back(kind | flags);
        if (op == Operator::gradient && !isLong) continue;
        for (LumBorderType flags : {0x100, 0xA00, 0x520, 0xF00, 0xFF0, 0x5A0})
            borders.push_back(kind | flags);
    }
    return borders;
}

const MorphMask lShape = MorphMask::of({"#..", "#..", "###"});

} // namespace

TEST(BitCompound, OpeningRemovesASpeckByHand) {
    const MorphMask mask = MorphMask::full(2, 2);
    BitMemory memory(false, mask, {8, 4});
    // A block of two by two stays; a single bit in the corner stays where nothing lies outside.
    const Lum8u image[] = {0x03, 0x03, 0x00, 0x80};
    Lum8u out[4];
    ASSERT_EQ(lumStatusOk, lumiMorphOpenBorder_1u_C1R(image, 1, 0, out, 1, 0, {8, 4}, lumBorderDefaultValue,
                                                      0, memory.spec(), memory.buffer()));
    EXPECT_EQ((std::vector<Lum8u>{0x03, 0x03, 0x00, 0x80}), (std::vector<Lum8u>{out, out + 4}));
    ASSERT_EQ(lumStatusOk, lumiMorphOpenBorder_1u_C1R(image, 1, 0, out, 1, 0, {8, 4}, lumBorderConstant, 0,
                                                      memory.spec(), memory.buffer()));
    EXPECT_EQ((std::vector<Lum8u>{0x03, 0x03, 0x00, 0x00}), (std::vector<Lum8u>{out, out + 4}));
    ASSERT_EQ(lumStatusOk, lumiMorphTophatBorder_1u_C1R(image, 1, 0, out, 1, 0, {8, 4}, lumBorderConstant, 0,
                                                        memory.spec(), memory.buffer()));
    EXPECT_EQ((std::vector<Lum8u>{0x00, 0x00, 0x00, 0x80}), (std::vector<Lum8u>{out, out + 4}));
}

TEST(BitCompound, EveryMemberOnEveryBorder) {
    for (const auto& member : members)
        for (LumBorderType border : bordersOf(member.op, member.isLong))
            for (const auto& mask : {MorphMask::full(5, 3), lShape, MorphMask::of({"#.##", "...#"})})
                for (unsigned seed : {1U, 2U})
                    expectAsReference({.member = member,
                                       .mask = mask,
                                       .size = {37, 8},
                                       .border = border,
                                       .seed = seed,
                                       .srcBit = 3,
                                       .dstBit = 6});
}

TEST(BitCompound, EveryBitOffset) {
    for (const auto& member : members)
        for (int srcBit : {0, 1, 5, 7, 11, 40})
            for (int dstBit : {0, 2, 7, 8, 19})
                for (LumBorderType border : {1, 0xF0, 0x46})
                    expectAsReference({.member = member,
                                       .mask = lShape,
                                       .size = {23, 5},
                                       .border = border,
                                       .srcBit = srcBit,
                                       .dstBit = dstBit});
}

TEST(BitCompound, MasksOfAllSizes) {
    for (const auto& member : members)
        for (int width = 1; width <= 9; ++width)
            for (int height = 1; height <= 6; ++height)
                expectAsReference({.member = member,
                                   .mask = MorphMask::random(width, height, 7U * width + height),
                                   .size = {29, 11},
                                   .border = 0x41,
                                   .seed = static_cast<unsigned>(width)});
}

TEST(BitCompound, WidthsAndRegionsNotLargerThanTheMask) {
    for (const auto& member : members) {
        for (int width = 1; width <= 70; ++width)
            expectAsReference(
                {.member = member, .size = {width, 4}, .seed = 5U + width, .dstBit = width % 8});
        for (LumSize size : {LumSize{1, 1}, LumSize{1, 12}, LumSize{12, 1}, LumSize{5, 5}, LumSize{4, 9}})
            for (LumBorderType border : {1, 6, 0x51, 0xF0})
                for (const auto& mask :
                     {MorphMask::full(5, 5), MorphMask::random(6, 7, 3), MorphMask::full(1, 2)})
                    expectAsReference({.member = member,
                                       .mask = mask,
                                       .size = size,
                                       .border = border,
                                       .initSize = {size.width + 3, size.height + 40}});
    }
}

TEST(BitCompound, ObjectsOfTheSmallestSizes) {
    for (const auto& member : members)
        for (int width = 1; width <= 4; ++width)
            for (int height = 1; height <= 6; ++height)
                for (LumSize size : {LumSize{1, 1}, LumSize{2, 3}, LumSize{9, 1}})
                    for (LumBorderType border : {1, 0xF0})
                        expectAsReference({.member = member,
                                           .mask = MorphMask::full(width, height),
                                           .size = size,
                                           .border = border});
}

TEST(BitCompound, OneCellAndNoCellCopy) {
    for (const auto& member : members)
        for (const auto& mask : {MorphMask::full(1, 1), MorphMask::empty(1, 1), MorphMask::empty(3, 5)})
            for (LumBorderType border : {1, 6, 0xF0})
                expectAsReference(
                    {.member = member, .mask = mask, .border = border, .srcBit = 5, .dstBit = 3});
}

TEST(BitCompound, ModesChangeTheSecondMask) {
    for (const auto& member : members)
        for (int mode : {0, 1, 4, 5}) {
            if (mode % 2 == 1 && !member.isLong && member.op != Operator::gradient) {
                // The reflection of a mask of odd sides has its anchor.
                expectAsReference({.member = member, .mask = lShape, .mode = mode});
                continue;
            }
            expectAsReference({.member = member, .mask = lShape, .border = 0x91, .mode = mode, .seed = 3});
        }
}

TEST(BitCompound, RandomCalls) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937 engine(seed);
    const auto below = [&](int limit) { return static_cast<int>(engine() % static_cast<unsigned>(limit)); };
    for (int i = 0; i < 600; ++i) {
        const BitMember& member = members[below(10)];
        const auto borders = bordersOf(member.op, member.isLong);
        const LumSize size{1 + below(150), 1 + below(20)};
        expectAsReference(
            {.member = member,
             .mask = MorphMask::random(1 + below(12), 1 + below(9), static_cast<unsigned>(engine()),
                                       1U + below(3)),
             .size = size,
             .border = borders[below(static_cast<int>(borders.size()))],
             .mode = below(2),
             .seed = static_cast<unsigned>(engine()),
             .srcBit = below(16),
             .dstBit = below(16),
             .initSize = {size.width + below(3) * below(30), size.height + below(3) * below(30)}});
    }
}

TEST(BitCompoundChecks, FaultsInTheirOrder) {
    struct Fault {
        std::string field;
        LumStatus status;
        std::function<void(BitCall&)> apply;
    };
    for (const auto& member : members) {
        const bool isGradient = member.op == Operator::gradient;
        const bool sizesFirst = member.op != Operator::open && member.op != Operator::close;
        std::vector<Fault> faults;
        const auto add = [&](const char* field, LumStatus status, std::function<void(BitCall&)> apply) {
            faults.push_back({field, status, std::move(apply)});
        };
        if (member.isLong && sizesFirst) {
            add("width", lumStatusSizeOverflow, [](auto& c) { c.roiSize.width = 0x7FFFFFFF; });
            add("height", lumStatusSizeOverflow, [](auto& c) { c.roiSize.height = 0x7FFFFFFF; });
        }
        add("src", lumStatusNullPointer, [](auto& c) { c.src = nullptr; });
        add("dst", lumStatusNullPointer, [](auto& c) { c.dst = nullptr; });
        add("spec", lumStatusNullPointer, [](auto& c) { c.spec = nullptr; });
        add("buffer", lumStatusNullPointer, [](auto& c) { c.buffer = nullptr; });
        if (member.isLong)
            add("border", lumStatusNullPointer, [](auto& c) {
                c.border = lumBorderConstant;
                c.value = nullptr;
            });
        add("width", lumStatusSizeError, [](auto& c) { c.roiSize.width = 0; });
        add("height", lumStatusSizeError, [](auto& c) { c.roiSize.height = -1; });
        add("srcBit", lumStatusSizeError, [](auto& c) { c.srcBit = -1; });
        add("dstBit", lumStatusSizeError, [](auto& c) { c.dstBit = -8; });
        add("srcStep", lumStatusStepError, [](auto& c) { c.srcStep = 2; });
        add("dstStep", lumStatusStepError, [](auto& c) { c.dstStep = -3; });
        for (LumBorderType border : {-1, 0, 2, 3, 0x13, 0xF3, 0xE0, 0xF00, 4096, 4096 | 1})
            add("border", lumStatusBorderError, [=](auto& c) { c.border = border; });
        if (!member.isLong) {
            add("border", lumStatusBorderError, [](auto& c) { c.border = 0xF2; });
            if (isGradient)
                for (LumBorderType border : {5, 0x1F0, 0x101, 256 | 0xF0})
                    add("border", lumStatusBorderError, [=](auto& c) { c.border = border; });
            if (member.op == Operator::open || member.op == Operator::tophat)
                add("border", lumStatusBorderError, [](auto& c) { c.border = 0x1F0; });
        } else {
            if (!sizesFirst)
                add("height", lumStatusSizeOverflow, [](auto& c) { c.roiSize.height = 0x7FFFFFFF; });
            add("srcStep", lumStatusStepError, [](auto& c) { c.srcStep = 0x7FFFFFFF; });
            add("dstStep", lumStatusStepError, [](auto& c) { c.dstStep = 0x7FFFFFFF; });
        }
        if (isGradient)
            add("dst", lumStatusInPlaceNotSupported, [](auto& c) { c.dst = const_cast<Lum8u*>(c.src); });

        GuardedImage<Lum8u> src(5, 6, {.margin = 2}), dst(5, 6);
        BitMemory memory(member.isLong, lShape, {21, 6});
        const Lum8u value = 0;
        const BitCall good{src.data(), src.step(), 1,      dst.data(),    dst.step(),     2,
                           {21, 6},    1,          &value, memory.spec(), memory.buffer()};
        for (std::size_t i = 0; i < faults.size(); ++i)
            for (std::size_t j = i; j < faults.size(); ++j) {
                if (i != j && faults[i].field == faults[j].field) continue;
                BitCall call = good;
                faults[j].apply(call);
                if (i != j) faults[i].apply(call);
                ASSERT_EQ(faults[i].status, member.run(call)) << member.name << " " << i << "," << j;
                ASSERT_TRUE(dst.untouched());
                ASSERT_TRUE(src.untouched());
            }
        BitCall call = good;
        EXPECT_STATUS(lumStatusOk, member.run(call));
    }
}

TEST(BitCompoundChecks, WordsThatAreAccepted) {
    for (const auto& member : members) {
        std::vector<LumBorderType> words{1, 6, 0xF0, 0xF1};
        if (member.isLong)
            for (LumBorderType word : {5, 0x1F0, 0xFF0, 0xF2, 0xFF4}) words.push_back(word);
        else if (member.op == Operator::close || member.op == Operator::blackhat)
            for (LumBorderType word : {5, 0x101, 0x1F0, 0xFF0}) words.push_back(word);
        GuardedImage<Lum8u> src(5, 6, {.margin = 4}), dst(5, 6);
        BitMemory memory(member.isLong, lShape, {21, 6});
        const Lum8u value = 0;
        for (LumBorderType word : words)
            EXPECT_STATUS(lumStatusOk, member.run({src.data(),
                                                   src.step(),
                                                   1,
                                                   dst.data(),
                                                   dst.step(),
                                                   2,
                                                   {21, 6},
                                                   word,
                                                   &value,
                                                   memory.spec(),
                                                   memory.buffer()}))
                << member.name << " " << word;
    }
}

TEST(BitCompound, OtherKindsOfStatesLeaveTheDestination) {
    BitMemory memory(false, lShape, {21, 6});
    static_cast<LumMorphBitState*>(memory.spec()->first)->kind = 1;
    static_cast<LumMorphBitState*>(memory.spec()->second)->kind = 2;
    GuardedImage<Lum8u> src(3, 6), dst(3, 6);
    EXPECT_REFUSED(lumStatusOk, dst,
                   lumiMorphOpenBorder_1u_C1R(src.data(), src.step(), 0, dst.data(), dst.step(), 0, {21, 6},
                                              1, 0, memory.spec(), memory.buffer()));
}

#include "hough_members.h"

#include <climits>
#include <functional>

using namespace support;

namespace {

void expectDefinition(const GuardedImage<Lum8u>& image, const HoughSearch& search) {
    const HoughLines found = search(image);
    const HoughLines expected = HoughDefinition(image, search).lines();
    ASSERT_EQ(expected.status, found.status);
    ASSERT_EQ(expected.count, found.count);
    for (int i = 0; i < expected.count; ++i)
        ASSERT_TRUE(isSame(expected.lines[i], found.lines[i])) << i << " of " << expected.count;
}

/// Two angles: 0, of upright lines, and one of slanted lines.
constexpr LumPoint32f uprightAndSlanted{1, 2};

/// A row of 200 set pixels in the fiftieth row.
const GuardedImage<Lum8u>& rowOfPixels() {
    static GuardedImage<Lum8u> image(200, 100);
    for (int x = 0; x < 200; ++x) image.at(x, 50) = 1;
    return image;
}

} // namespace

TEST(HoughLine_8u32f_C1R, ARowOfPixelsIsAHorizontalLine) {
    // The sine of the 90th angle is 1023 / 1024, and 50 x 1023 + 512 is 50 times 1024 and a bit.
    const HoughLines found = HoughSearch{.threshold = 150}(rowOfPixels());
    EXPECT_EQ(lumStatusOk, found.status);
    ASSERT_EQ(1, found.count);
    EXPECT_EQ(50.0F, found.lines[0].x);
    EXPECT_EQ(90 * pixelAndDegree.y, found.lines[0].y);
}

TEST(HoughLine_8u32f_C1R, VotesMustExceedTheThreshold) {
    EXPECT_EQ(1, HoughSearch{.threshold = 199}(rowOfPixels()).count);
    EXPECT_EQ(0, HoughSearch{.threshold = 200}(rowOfPixels()).count);
}

TEST(HoughLine_8u32f_C1R, NoSetPixelGivesNoLine) {
    GuardedImage<Lum8u> image(33, 20);
    const HoughLines found = HoughSearch{.threshold = 1}(image);
    EXPECT_EQ(lumStatusOk, found.status);
    EXPECT_EQ(0, found.count);
}

TEST(HoughLine_8u32f_C1R, AgreesWithTheDefinition) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 engine(seed);
    for (int round = 0; round < 120; ++round) {
        const LumSize size{1 + static_cast<int>(engine() % 90), 1 + static_cast<int>(engine() % 60)};
        GuardedImage<Lum8u> image(size.width, size.height,
                                  {.padding = static_cast<int>(engine() % 4),
                                   .guard = engine() % 2 == 0 ? Guard::after : Guard::before});
        drawLines(image, engine(), static_cast<int>(engine() % 5), 2 + engine() % 60);
        const float rhos[] = {1, 0.5F, 0.013F, 1.7F, 10, static_cast<float>(size.width + size.height)};
        const float thetas[] = {houghPi / 180, 0.05F, 0.7F, houghPi};
        const HoughSearch search{.delta = {std::min(rhos[round % 6], rhos[5]), thetas[engine() % 4]},
                                 .threshold = 1 + static_cast<int>(engine() % 12),
                                 .maxLineCount = 1 + static_cast<int>(engine() % 40),
                                 .bufferSpare = engine() % 40};
        SCOPED_TRACE(testing::Message() << size.width << "x" << size.height << " delta " << search.delta.x
                                        << " " << search.delta.y);
        ASSERT_NO_FATAL_FAILURE(expectDefinition(image, search));
    }
}

TEST(HoughLine_8u32f_C1R, EveryPixelSetFillsTheBuffer) {
    for (int width : {1, 7, 8, 9, 31, 64}) {
        GuardedImage<Lum8u> image(width, 12);
        image.fill([](int, int, int) { return 255; });
        for (std::size_t spare = 0; spare < 33; ++spare)
            ASSERT_NO_FATAL_FAILURE(expectDefinition(
                image, {.delta = {1, 0.3F}, .threshold = 2, .maxLineCount = 3, .bufferSpare = spare}));
    }
}

TEST(HoughLine_8u32f_C1R, OfEqualNeighboursTheLowestRhoIsALine) {
    GuardedImage<Lum8u> image(8, 4);
    for (int y = 0; y < 4; ++y) image.at(2, y) = image.at(3, y) = 1;
    const HoughLines found = HoughSearch{.delta = uprightAndSlanted, .threshold = 3}(image);
    ASSERT_EQ(1, found.count);
    EXPECT_EQ(2.0F, found.lines[0].x);
}

TEST(HoughLine_8u32f_C1R, OfEqualNeighboursTheLowestThetaIsALine) {
    // A short column votes alike for many angles.
    GuardedImage<Lum8u> image(8, 4);
    for (int y = 0; y < 4; ++y) image.at(2, y) = 1;
    LumPoint32f range[2] = {{2, 0}, {2, 0.1F}};
    const HoughLines found = HoughSearch{.delta = {1, 0.001F}, .threshold = 3, .range = range}(image);
    ASSERT_EQ(1, found.count);
    EXPECT_EQ(0.0F, found.lines[0].y);
}

TEST(HoughLine_8u32f_C1R, OfEqualVotesTheFirstFoundStaysAhead) {
    // Three columns of equal length, at angle 0 in order of rho.
    GuardedImage<Lum8u> image(60, 40);
    for (int y = 0; y < 40; ++y) image.at(45, y) = image.at(5, y) = image.at(25, y) = 1;
    const HoughLines all = HoughSearch{.delta = uprightAndSlanted, .threshold = 30}(image);
    ASSERT_EQ(3, all.count);
    EXPECT_EQ(5.0F, all.lines[0].x);
    EXPECT_EQ(25.0F, all.lines[1].x);
    EXPECT_EQ(45.0F, all.lines[2].x);
    const HoughLines two = HoughSearch{.delta = uprightAndSlanted, .threshold = 30, .maxLineCount = 2}(image);
    EXPECT_EQ(lumStatusResultTruncated, two.status);
    ASSERT_EQ(2, two.count);
    EXPECT_EQ(25.0F, two.lines[1].x);
}

TEST(HoughLine_8u32f_C1R, AFullListTakesWhatIsStronger) {
    GuardedImage<Lum8u> image(60, 40);
    for (int y = 0; y < 40; ++y) {
        image.at(45, y) = 1;
        if (y < 30) image.at(25, y) = 1;
        if (y < 20) image.at(5, y) = 1;
    }
    const HoughLines two = HoughSearch{.delta = uprightAndSlanted, .threshold = 10, .maxLineCount = 2}(image);
    EXPECT_EQ(lumStatusResultTruncated, two.status);
    ASSERT_EQ(2, two.count);
    EXPECT_EQ(45.0F, two.lines[0].x);
    EXPECT_EQ(25.0F, two.lines[1].x);
}

TEST(HoughLine_8u32f_C1R, AWeakerLineBeyondAFullListTruncates) {
    GuardedImage<Lum8u> image(60, 40);
    for (int y = 0; y < 40; ++y) {
        image.at(5, y) = 1;
        if (y < 20) image.at(25, y) = 1;
    }
    const HoughSearch search{.delta = uprightAndSlanted, .threshold = 10, .maxLineCount = 1};
    EXPECT_EQ(lumStatusResultTruncated, search(image).status);
    EXPECT_EQ(5.0F, search(image).lines[0].x);
}

TEST(HoughLine_8u32f_C1R, ThetaOfExactlyPiPasses) {
    const HoughSearch search{.delta = {1, 3.14159F}, .threshold = 150};
    EXPECT_EQ(2, HoughCounts({200, 100}, search.delta).theta);
    EXPECT_EQ(lumStatusOk, search(rowOfPixels()).status);
    int count = untouchedLines;
    LumPoint32f line;
    const auto& image = rowOfPixels();
    GuardedBlock buffer(100000);
    EXPECT_STATUS(lumStatusBadArgument, lumiHoughLine_8u32f_C1R(image.data(), image.step(), image.size(),
                                                                {1, std::nextafter(3.14159F, 4.0F)}, 150,
                                                                &line, 1, &count, buffer.as()));
    EXPECT_EQ(untouchedLines, count);
}

TEST(HoughLine_8u32f_C1R, AColumnAMillionStepsAwayIsFound) {
    // 1024 pixels are 2^20 steps, of which 1024ths make 2^30. At the other angle each pixel votes for a line of its own.
    GuardedImage<Lum8u> image(1025, 3);
    for (int y = 0; y < 3; ++y) image.at(1024, y) = 1;
    const HoughLines found = HoughSearch{.delta = {1.0F / 1024, 3}, .threshold = 2}(image);
    EXPECT_EQ(lumStatusOk, found.status);
    ASSERT_EQ(1, found.count);
    EXPECT_EQ(1024.0F, found.lines[0].x);
    EXPECT_EQ(0.0F, found.lines[0].y);
}

TEST(HoughLine_8u32f_C1R, StepIsNotComparedWithTheWidth) {
    // Rows that overlap: one set byte is a diagonal.
    GuardedImage<Lum8u> image(70, 1);
    image.at(40, 0) = 1;
    int count = 0;
    LumPoint32f lines[4];
    GuardedBlock buffer(100000);
    EXPECT_STATUS(lumStatusOk, lumiHoughLine_8u32f_C1R(image.data(), 1, {40, 31}, {1, houghPi / 4}, 20, lines,
                                                       4, &count, buffer.as()));
    EXPECT_GT(count, 0);
}

// ---- the window

TEST(HoughLine_Region_8u32f_C1R, AgreesWithTheDefinition) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 engine(seed);
    for (int round = 0; round < 120; ++round) {
        const LumSize size{1 + static_cast<int>(engine() % 90), 1 + static_cast<int>(engine() % 60)};
        GuardedImage<Lum8u> image(size.width, size.height);
        drawLines(image, engine(), static_cast<int>(engine() % 5), 2 + engine() % 60);
        const float low = static_cast<float>(engine() % 200) / 100;
        LumPoint32f range[2] = {{static_cast<float>(engine() % 300) / 3 - 50, low},
                                {0, low + static_cast<float>(engine() % 200) / 100}};
        range[1].x = range[0].x + static_cast<float>(engine() % 200) / 3;
        const float rhos[] = {1, 0.5F, 1.7F};
        HoughSearch search{.delta = {std::min(rhos[round % 3], static_cast<float>(size.width + size.height)),
                                     round % 2 == 0 ? houghPi / 180 : 0.05F},
                           .threshold = 1 + static_cast<int>(engine() % 6),
                           .maxLineCount = 1 + static_cast<int>(engine() % 40),
                           .range = range};
        ASSERT_NO_FATAL_FAILURE(expectDefinition(image, search));
        for (const LumPoint32f& line : search(image).lines) {
            EXPECT_TRUE(line.x >= range[0].x && line.x <= range[1].x);
            EXPECT_TRUE(line.y >= range[0].y && line.y <= range[1].y);
        }
    }
}

TEST(HoughLine_Region_8u32f_C1R, TheWholePlaneIsTheClassicSearch) {
    GuardedImage<Lum8u> image(80, 50);
    drawLines(image, 7, 4, 20);
    LumPoint32f range[2] = {{-1000, -3}, {1000, 9}};
    const HoughLines whole = HoughSearch{}(image);
    const HoughLines window = HoughSearch{.range = range}(image);
    EXPECT_EQ(whole.status, window.status);
    EXPECT_EQ(whole.count, window.count);
    EXPECT_TRUE(
        std::equal(whole.lines.begin(), whole.lines.end(), window.lines.begin(), window.lines.end(), isSame));
}

TEST(HoughLine_Region_8u32f_C1R, ThetaBoundsAreClampedAndWrittenBack) {
    LumPoint32f range[2] = {{-1000, -3}, {1000, 9}};
    HoughSearch{.range = range}(rowOfPixels());
    EXPECT_EQ(-1000.0F, range[0].x);
    EXPECT_EQ(0.0F, range[0].y);
    EXPECT_EQ(1000.0F, range[1].x);
    EXPECT_EQ(3.14159F, range[1].y);
}

TEST(HoughLine_Region_8u32f_C1R, HighBelowLowIsAnEmptyRange) {
    const LumPoint32f empty[][2] = {{{5, 1}, {4, 2}}, {{5, 2}, {6, 1}}};
    for (const auto& given : empty) {
        LumPoint32f range[2] = {given[0], given[1]};
        const HoughLines found = HoughSearch{.range = range}(rowOfPixels());
        EXPECT_EQ(lumStatusEmptyRange, found.status);
        EXPECT_EQ(0, found.count);
        EXPECT_TRUE(isSame(range[0], given[0]) && isSame(range[1], given[1]));
    }
}

TEST(HoughLine_Region_8u32f_C1R, RangesBetweenIndicesHoldNoLine) {
    for (LumPoint32f low : {LumPoint32f{50.2F, 0}, LumPoint32f{0, 1.575F}, LumPoint32f{900, 0}}) {
        LumPoint32f range[2] = {low, {low.x + 0.5F, low.y + 0.005F}};
        const HoughLines found = HoughSearch{.range = range}(rowOfPixels());
        EXPECT_EQ(lumStatusOk, found.status);
        EXPECT_EQ(0, found.count);
    }
    LumPoint32f range[2] = {{NAN, 0}, {NAN, NAN}};
    EXPECT_EQ(0, HoughSearch{.range = range}(rowOfPixels()).count);
}

// ---- sizes and checks

TEST(HoughLineGetSize_8u_C1R, SizeIsTheFormula) {
    for (LumSize size : {LumSize{1, 1}, LumSize{640, 480}, LumSize{1920, 1080}})
        for (LumPoint32f delta : {pixelAndDegree, LumPoint32f{0.3F, 0.01F}, LumPoint32f{1e6F, 99}}) {
            const HoughCounts counts(size, delta);
            Lum32s bytes = 0;
            EXPECT_STATUS(lumStatusOk, lumiHoughLineGetSize_8u_C1R(size, delta, 37, &bytes));
            EXPECT_EQ(16 * counts.rho + 16 * 37 + 256 + 8 * counts.theta +
                          (4 * size.width + 48) * size.height,
                      bytes);
        }
}

TEST(HoughLineGetSize_8u_C1R, TooLargeAWarning) {
    // With four steps of rho and two of theta: 4 (2 x 2 + 4 + 4) + 20000 (4 (w + 8) + 16) + 96 + 16 m + 3 (4 x 8 + 32).
    const auto statusOf = [](int width, int maxLineCount) {
        Lum32s bytes = -7;
        const LumPoint32f delta{static_cast<float>(2 * (width + 20000) + 1) / 4.5F, 3};
        const LumStatus status = lumiHoughLineGetSize_8u_C1R({width, 20000}, delta, maxLineCount, &bytes);
        EXPECT_NE(-7, bytes);
        return status;
    };
    const int rest = (2147483647 - 20000 * 48 - 4 * 20000 * 26831 - (48 + 96 + 192)) / 16;
    EXPECT_STATUS(lumStatusOk, statusOf(26831, rest));
    EXPECT_STATUS(lumStatusBufferTooLarge, statusOf(26831, rest + 1));
    Lum32s bytes = 0;
    EXPECT_STATUS(lumStatusBufferTooLarge, lumiHoughLineGetSize_8u_C1R({40, 40}, {1e-9F, 1}, 1, &bytes));
    EXPECT_STATUS(lumStatusBufferTooLarge, lumiHoughLineGetSize_8u_C1R({40, 40}, {1, 1e-12F}, 1, &bytes));
    EXPECT_STATUS(lumStatusBufferTooLarge,
                  lumiHoughLineGetSize_8u_C1R({INT_MAX, INT_MAX}, pixelAndDegree, 1, &bytes));
}

TEST(HoughLineGetSize_8u_C1R, ChecksInOrder) {
    Lum32s bytes = -7;
    EXPECT_STATUS(lumStatusNullPointer, lumiHoughLineGetSize_8u_C1R({0, 0}, {0, 0}, 0, nullptr));
    EXPECT_STATUS(lumStatusSizeError, lumiHoughLineGetSize_8u_C1R({0, 5}, {0, 0}, 0, &bytes));
    EXPECT_STATUS(lumStatusSizeError, lumiHoughLineGetSize_8u_C1R({5, -1}, {0, 0}, 0, &bytes));
    for (LumPoint32f delta : {LumPoint32f{0, 1}, LumPoint32f{1, 0}, LumPoint32f{-1, 1}, LumPoint32f{1, NAN}})
        EXPECT_STATUS(lumStatusBadArgument, lumiHoughLineGetSize_8u_C1R({5, 5}, delta, 0, &bytes));
    EXPECT_EQ(-7, bytes);
}

namespace {

/// The arguments of both searches; each test breaks one, or one and all that are tested after it.
struct Arguments {
    GuardedImage<Lum8u> image{20, 10};
    GuardedImage<Lum32f> room{8, 1};
    GuardedBlock block{100000};
    LumPoint32f rangePlaces[2] = {{0, 0}, {9, 1}};
    int countPlace = untouchedLines;

    const Lum8u* src = image.data();
    int step = image.step();
    LumSize size{20, 10};
    LumPoint32f delta = pixelAndDegree;
    int threshold = 3;
    LumPoint32f* lines = reinterpret_cast<LumPoint32f*>(room.data());
    LumPoint32f* range = rangePlaces;
    int maxLineCount = 4;
    int* count = &countPlace;
    Lum8u* buffer = block.as();

    LumStatus classic() const {
        return lumiHoughLine_8u32f_C1R(src, step, size, delta, threshold, lines, maxLineCount, count, buffer);
    }
    LumStatus window() const {
        return lumiHoughLine_Region_8u32f_C1R(src, step, size, lines, range, maxLineCount, count, delta,
                                              threshold, buffer);
    }
};

using Change = std::function<void(Arguments&)>;

std::vector<std::pair<LumStatus, Change>> breaches() {
    return {
        {lumStatusNullPointer, [](auto& a) { a.src = nullptr; }},
        {lumStatusNullPointer, [](auto& a) { a.lines = nullptr; }},
        {lumStatusNullPointer, [](auto& a) { a.count = nullptr; }},
        {lumStatusNullPointer, [](auto& a) { a.buffer = nullptr; }},
        {lumStatusStepError, [](auto& a) { a.step = 0; }},
        {lumStatusStepError, [](auto& a) { a.step = -20; }},
        {lumStatusSizeError, [](auto& a) { a.size.width = 0; }},
        {lumStatusSizeError, [](auto& a) { a.size.height = -1; }},
        {lumStatusSizeError, [](auto& a) { a.maxLineCount = 0; }},
        {lumStatusBadArgument, [](auto& a) { a.delta.x = 0; }},
        {lumStatusBadArgument, [](auto& a) { a.delta.x = 30.001F; }},
        {lumStatusBadArgument, [](auto& a) { a.delta.y = 0; }},
        {lumStatusBadArgument, [](auto& a) { a.delta.y = 3.1416F; }},
        {lumStatusBadArgument, [](auto& a) { a.delta.y = NAN; }},
        {lumStatusBadArgument, [](auto& a) { a.threshold = 0; }},
    };
}

void expectOrder(LumStatus (Arguments::*call)() const) {
    const auto all = breaches();
    for (std::size_t first = 0; first < all.size(); ++first)
        for (std::size_t rest : {first + 1, all.size()}) {
            Arguments a;
            a.rangePlaces[1].x = -1;
            for (std::size_t i = rest; i-- > first;) all[i].second(a);
            EXPECT_STATUS(all[first].first, (a.*call)()) << first;
            EXPECT_TRUE(a.room.untouched());
            EXPECT_EQ(untouchedLines, a.countPlace);
        }
}

} // namespace

TEST(HoughLine_8u32f_C1R, ChecksInOrder) {
    expectOrder(&Arguments::classic);
    Arguments a;
    a.delta.x = 30;
    EXPECT_STATUS(lumStatusOk, a.classic());
}

TEST(HoughLine_Region_8u32f_C1R, ChecksInOrderBeforeTheEmptyRange) {
    expectOrder(&Arguments::window);
    Arguments a;
    a.range = nullptr;
    a.step = 0;
    EXPECT_STATUS(lumStatusNullPointer, a.window());
}

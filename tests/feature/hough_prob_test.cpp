#include <climits>
#include <cstdlib>
#include <functional>

#include "hough_members.h"

using namespace support;

namespace {

struct Segment {
    Lum32s x0, y0, x1, y1;
    bool operator==(const Segment&) const = default;
};

struct Segments {
    LumStatus status = 0;
    int count = untouchedLines;
    std::vector<Segment> list;
};

/// Three angles: upright, level, upright.
constexpr LumPoint32f uprightAndLevel{1, 1.5707F};

struct SegmentSearch {
    LumPoint32f delta = uprightAndLevel;
    int threshold = 10;
    int lineLength = 8;
    int lineGap = 2;
    int maxLineCount = 50;
    std::size_t spare = 1;

    Segments operator()(const GuardedImage<Lum8u>& image) const {
        Lum32s specBytes = 0;
        Lum32s bufferBytes = 0;
        EXPECT_STATUS(lumStatusOk,
                      lumiHoughProbLineGetSize_8u_C1R(image.size(), delta, &specBytes, &bufferBytes));
        GuardedBlock specBlock(specBytes, Guard::after, spare);
        GuardedBlock buffer(bufferBytes, Guard::after, spare);
        auto* spec = specBlock.as<LumHoughProbSpec>();
        EXPECT_STATUS(lumStatusOk, lumiHoughProbLineInit_8u32f_C1R(image.size(), delta, 0, spec));
        GuardedImage<Lum32s> room(4 * maxLineCount, 1);
        Segments result;
        result.status =
            lumiHoughProbLine_8u32f_C1R(image.data(), image.step(), image.size(), threshold, lineLength,
                                        lineGap, room.data(), maxLineCount, &result.count, buffer.as(), spec);
        for (int i = 0; i < result.count; ++i) {
            const Lum32s* s = room.data() + 4 * i;
            result.list.push_back({s[0], s[1], s[2], s[3]});
        }
        return result;
    }
};

/// Pixel by pixel, with plain containers.
class SegmentDefinition {
  public:
    SegmentDefinition(const GuardedImage<Lum8u>& image, const SegmentSearch& search)
        : size_(image.size()), search_(search), counts_(size_, search.delta) {
        float angle = 0;
        for (int t = 0; t < counts_.theta; ++t) {
            cosines_.push_back(static_cast<float>(std::cos(double{angle}) * (1 / double{search.delta.x})));
            sines_.push_back(static_cast<float>(std::sin(double{angle}) * (1 / double{search.delta.x})));
            angle += search.delta.y;
        }
        cells_.resize(static_cast<std::size_t>(counts_.rho) * counts_.theta);
        mask_.resize(static_cast<std::size_t>(size_.width) * size_.height);
        for (int y = 0; y < size_.height; ++y)
            for (int x = 0; x < size_.width; ++x)
                if (image.at(x, y) != 0) {
                    isFree(x, y) = 1;
                    points_.push_back({x, y});
                }
    }

    Segments run() {
        Segments result;
        result.count = 0;
        std::uint32_t lo = 0xFFFFFFFF;
        std::uint32_t hi = 0xFFFFFFFF;
        while (!points_.empty()) {
            const std::uint64_t product = std::uint64_t{lo} * 4164903690U + hi;
            lo = static_cast<std::uint32_t>(product);
            hi = static_cast<std::uint32_t>(product >> 32);
            const std::size_t index = lo % points_.size();
            const LumPoint point = points_[index];
            points_[index] = points_.back();
            points_.pop_back();
            if (isFree(point.x, point.y) == 0) continue;
            const int theta = vote(point);
            if (theta < 0) continue;
            const Segment segment = follow(point, cosines_[theta], sines_[theta]);
            const bool isGood = std::abs(segment.x1 - segment.x0) >= search_.lineLength ||
                                std::abs(segment.y1 - segment.y0) >= search_.lineLength;
            take(point, {segment.x0, segment.y0}, 1, isGood);
            take(point, {segment.x1, segment.y1}, -1, isGood);
            if (!isGood) continue;
            if (result.count == search_.maxLineCount) {
                result.status = lumStatusResultTruncated;
                return result;
            }
            result.list.push_back(segment);
            ++result.count;
        }
        return result;
    }

  private:
    Lum8u& isFree(int x, int y) { return mask_[static_cast<std::size_t>(y) * size_.width + x]; }
    /// Null where the vote leaves the plane; one that leaves its row goes on in the next.
    int* cell(int t, LumPoint p) {
        const float across = cosines_[t] * static_cast<float>(p.x);
        const float down = sines_[t] * static_cast<float>(p.y);
        const std::int64_t place =
            static_cast<int>(across + down) + counts_.half + std::int64_t{t} * counts_.rho;
        return place < 0 || place >= static_cast<std::int64_t>(cells_.size()) ? nullptr : &cells_[place];
    }
    /// The angle of the best cell, or -1 below the threshold.
    int vote(LumPoint point) {
        int best = search_.threshold - 1;
        int theta = -1;
        for (int t = 0; t < counts_.theta; ++t)
            if (int* votes = cell(t, point); votes != nullptr && ++*votes > best) {
                best = *votes;
                theta = t;
            }
        return theta;
    }
    void prepareWalk(float c, float s) {
        if (std::fabs(s) > std::fabs(c)) {
            dx_ = -s > 0 ? 65536 : -65536;
            dy_ = static_cast<int>(c * 65536 / std::fabs(s));
            offset_ = {0, 0x8000};
        } else {
            dx_ = static_cast<int>(-s * 65536 / std::fabs(c));
            dy_ = c > 0 ? 65536 : -65536;
            offset_ = {0x8000, 0};
        }
    }
    /// The pixel at a number of steps from the given one.
    LumPoint pixelOfWalk(LumPoint from, int steps) const {
        return {((from.x << 16) + offset_.x + steps * dx_) >> 16,
                ((from.y << 16) + offset_.y + steps * dy_) >> 16};
    }
    bool isInside(LumPoint p) const {
        return p.x >= 0 && p.y >= 0 && p.x < size_.width && p.y < size_.height;
    }
    Segment follow(LumPoint point, float c, float s) {
        prepareWalk(c, s);
        LumPoint ends[2] = {point, point};
        for (int side = 0; side < 2; ++side)
            for (int steps = 0, gap = 0;; ++steps) {
                const LumPoint p = pixelOfWalk(point, side == 0 ? steps : -steps);
                if (!isInside(p)) break;
                if (isFree(p.x, p.y) != 0) {
                    gap = 0;
                    ends[side] = p;
                } else if (++gap > search_.lineGap) {
                    break;
                }
            }
        return {ends[0].x, ends[0].y, ends[1].x, ends[1].y};
    }
    void take(LumPoint point, LumPoint end, int sign, bool isGood) {
        for (int steps = 0;; ++steps) {
            const LumPoint p = pixelOfWalk(point, sign * steps);
            if (isFree(p.x, p.y) != 0) {
                isFree(p.x, p.y) = 0;
                for (int t = 0; isGood && t < counts_.theta; ++t)
                    if (int* votes = cell(t, p)) --*votes;
            }
            if (p.x == end.x && p.y == end.y) break;
        }
    }

    LumSize size_;
    SegmentSearch search_;
    HoughCounts counts_;
    std::vector<float> cosines_, sines_;
    std::vector<int> cells_;
    std::vector<Lum8u> mask_;
    std::vector<LumPoint> points_;
    int dx_ = 0, dy_ = 0;
    LumPoint offset_{};
};

void expectDefinition(const GuardedImage<Lum8u>& image, const SegmentSearch& search) {
    const Segments found = search(image);
    const Segments expected = SegmentDefinition(image, search).run();
    ASSERT_EQ(expected.status, found.status);
    ASSERT_EQ(expected.count, found.count);
    ASSERT_TRUE(expected.list == found.list);
}

/// Set pixels of row 10 from one column to another.
void setRow(GuardedImage<Lum8u>& image, int from, int to) {
    for (int x = from; x <= to; ++x) image.at(x, 10) = 255;
}

} // namespace

TEST(HoughProbLine_8u32f_C1R, ARowOfPixelsIsOneSegment) {
    GuardedImage<Lum8u> image(60, 20);
    setRow(image, 5, 44);
    const Segments found = SegmentSearch{}(image);
    EXPECT_EQ(lumStatusOk, found.status);
    ASSERT_EQ(1, found.count);
    // The walk forward is the one to the left.
    EXPECT_EQ((Segment{5, 10, 44, 10}), found.list[0]);
}

TEST(HoughProbLine_8u32f_C1R, AgreesWithTheDefinition) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 engine(seed);
    const auto below = [&](int bound) { return static_cast<int>(engine() % static_cast<unsigned>(bound)); };
    int segments = 0;
    for (int round = 0; round < 200; ++round) {
        GuardedImage<Lum8u> image(
            1 + below(100), 1 + below(70),
            {.padding = below(4), .guard = below(2) == 0 ? Guard::after : Guard::before});
        drawLines(image, engine(), 1 + below(9), 3 + engine() % 60);
        const float rhos[] = {1, 0.5F, 0.05F, 2.5F, 40, 700};
        const SegmentSearch search{.delta = {rhos[round % 6], round % 4 == 0 ? 0.05F : houghPi / 180},
                                   .threshold = 2 + below(20),
                                   .lineLength = below(12),
                                   .lineGap = below(4),
                                   .maxLineCount = 1 + below(30),
                                   .spare = engine() % 5};
        SCOPED_TRACE(testing::Message() << image.size().width << "x" << image.size().height << " delta "
                                        << search.delta.x << " " << search.delta.y);
        ASSERT_NO_FATAL_FAILURE(expectDefinition(image, search));
        segments += search(image).count;
    }
    EXPECT_GT(segments, 200);
}

TEST(HoughProbLine_8u32f_C1R, EveryPixelSetFillsTheBuffer) {
    for (LumSize size : {LumSize{1, 1}, LumSize{1, 40}, LumSize{40, 1}, LumSize{7, 9}, LumSize{33, 20}})
        for (std::size_t spare = 0; spare < 5; ++spare)
            for (float rho : {1.0F, 3.0F, 500.0F}) {
                GuardedImage<Lum8u> image(size.width, size.height);
                image.fill([](int, int, int) { return 1; });
                ASSERT_NO_FATAL_FAILURE(expectDefinition(
                    image, {.delta = {rho, 0.2F}, .threshold = 3, .lineLength = 0, .spare = spare}));
            }
}

TEST(HoughProbLine_8u32f_C1R, LongStepsNeedWiderCells) {
    // With a step as long as the picture a cell could hold all its pixels.
    GuardedImage<Lum8u> image(300, 200);
    drawLines(image, 3, 12, 12);
    ASSERT_NO_FATAL_FAILURE(
        expectDefinition(image, {.delta = {90, 0.5F}, .threshold = 2000, .lineLength = 20}));
}

TEST(HoughProbLine_8u32f_C1R, VotesBesideTheirRowGoOnInTheNext) {
    // Two lines an angle, rho 0 and 1; of the last angle, where the cosine is nearly -1, the pixels from 23 on vote for -1.
    GuardedImage<Lum8u> image(31, 1);
    image.fill([](int, int, int) { return 1; });
    constexpr LumPoint32f delta{22, 0.5F};
    const HoughCounts counts(image.size(), delta);
    ASSERT_EQ(2, counts.rho);
    ASSERT_EQ(0, counts.half);
    ASSERT_EQ(7, counts.theta);
    for (int threshold = 1; threshold < 40; ++threshold)
        ASSERT_NO_FATAL_FAILURE(
            expectDefinition(image, {.delta = delta, .threshold = threshold, .lineLength = threshold % 5}))
            << threshold;
}

TEST(HoughProbLine_8u32f_C1R, TwiceTheSameSegmentsInTheSameOrder) {
    GuardedImage<Lum8u> image(90, 70);
    drawLines(image, 21, 9, 15);
    const Segments first = SegmentSearch{.delta = pixelAndDegree}(image);
    const Segments second = SegmentSearch{.delta = pixelAndDegree}(image);
    EXPECT_GT(first.count, 3);
    EXPECT_EQ(first.count, second.count);
    EXPECT_TRUE(first.list == second.list);
}

TEST(HoughProbLine_8u32f_C1R, GapZeroEndsAtTheFirstMissingPixel) {
    GuardedImage<Lum8u> image(60, 20);
    setRow(image, 5, 24);
    setRow(image, 26, 44);
    const Segments pieces = SegmentSearch{.threshold = 12, .lineGap = 0}(image);
    // The votes taken back are more than the piece has given, so the other piece does not reach the threshold.
    ASSERT_EQ(1, pieces.count);
    for (const Segment& s : pieces.list)
        EXPECT_TRUE(s == (Segment{5, 10, 24, 10}) || s == (Segment{26, 10, 44, 10})) << s.x0 << " " << s.x1;
    const Segments whole = SegmentSearch{.threshold = 12, .lineGap = 1}(image);
    ASSERT_EQ(1, whole.count);
    EXPECT_EQ((Segment{5, 10, 44, 10}), whole.list[0]);
}

TEST(HoughProbLine_8u32f_C1R, ShortSegmentsAreTakenButNotListed) {
    GuardedImage<Lum8u> image(60, 20);
    setRow(image, 5, 24);
    EXPECT_EQ(1, SegmentSearch{.lineLength = 19}(image).count);
    const Segments none = SegmentSearch{.lineLength = 20}(image);
    EXPECT_EQ(lumStatusOk, none.status);
    EXPECT_EQ(0, none.count);
}

TEST(HoughProbLine_8u32f_C1R, TheSecondOfTwoSegmentsTruncatesAListOfOne) {
    GuardedImage<Lum8u> image(60, 40);
    setRow(image, 5, 54);
    for (int x = 5; x <= 54; ++x) image.at(x, 30) = 9;
    const Segments both = SegmentSearch{}(image);
    ASSERT_EQ(2, both.count);
    EXPECT_EQ(lumStatusOk, both.status);
    const Segments one = SegmentSearch{.maxLineCount = 1}(image);
    EXPECT_EQ(lumStatusResultTruncated, one.status);
    ASSERT_EQ(1, one.count);
    EXPECT_EQ(both.list[0], one.list[0]);
}

TEST(HoughProbLine_8u32f_C1R, NoSetPixelGivesNoSegment) {
    GuardedImage<Lum8u> image(33, 20);
    const Segments none = SegmentSearch{.threshold = 1, .lineLength = 0}(image);
    EXPECT_EQ(lumStatusOk, none.status);
    EXPECT_EQ(0, none.count);
}

// ---- sizes, the object and checks

TEST(HoughProbLineGetSize_8u_C1R, SizesAreTheFormulas) {
    for (LumSize size : {LumSize{1, 1}, LumSize{640, 480}})
        for (LumPoint32f delta : {pixelAndDegree, LumPoint32f{0.3F, 0.01F}, LumPoint32f{1e6F, 99}}) {
            const HoughCounts counts(size, delta);
            Lum32s specBytes = 0;
            Lum32s bufferBytes = 0;
            EXPECT_STATUS(lumStatusOk,
                          lumiHoughProbLineGetSize_8u_C1R(size, delta, &specBytes, &bufferBytes));
            EXPECT_EQ(8 * counts.theta + 12, specBytes);
            EXPECT_EQ(9 * size.width * size.height + 4 * counts.rho * counts.theta, bufferBytes);
        }
}

TEST(HoughProbLineGetSize_8u_C1R, ChecksInOrder) {
    Lum32s a = -7;
    Lum32s b = -7;
    EXPECT_STATUS(lumStatusNullPointer, lumiHoughProbLineGetSize_8u_C1R({0, 0}, {0, 0}, nullptr, &b));
    EXPECT_STATUS(lumStatusNullPointer, lumiHoughProbLineGetSize_8u_C1R({0, 0}, {0, 0}, &a, nullptr));
    EXPECT_STATUS(lumStatusSizeError, lumiHoughProbLineGetSize_8u_C1R({0, 4}, {0, 0}, &a, &b));
    EXPECT_STATUS(lumStatusSizeError, lumiHoughProbLineGetSize_8u_C1R({4, -4}, {0, 0}, &a, &b));
    for (LumPoint32f delta : {LumPoint32f{0, 1}, LumPoint32f{1, 0}, LumPoint32f{-1, 1}, LumPoint32f{1, NAN}})
        EXPECT_STATUS(lumStatusBadArgument, lumiHoughProbLineGetSize_8u_C1R({4, 4}, delta, &a, &b));
    EXPECT_EQ(-7, a);
    EXPECT_EQ(-7, b);
}

TEST(HoughProbLineInit_8u32f_C1R, ObjectHoldsItsFields) {
    const LumPoint32f delta{0.4F, 0.01F};
    Lum32s bytes = 0;
    Lum32s bufferBytes = 0;
    ASSERT_EQ(lumStatusOk, lumiHoughProbLineGetSize_8u_C1R({9, 9}, delta, &bytes, &bufferBytes));
    GuardedBlock block(bytes, Guard::after, 3);
    ASSERT_EQ(lumStatusOk,
              lumiHoughProbLineInit_8u32f_C1R({9, 9}, delta, 4711, block.as<LumHoughProbSpec>()));
    const auto field = [&]<class T>(int offset, T value) {
        std::memcpy(&value, block.as() + offset, sizeof value);
        return value;
    };
    EXPECT_EQ(0.4F, field(0, 0.0F));
    EXPECT_EQ(0.01F, field(4, 0.0F));
    EXPECT_EQ(4711, field(8, Lum32s{0}));
    const double inverse = 1 / double{0.4F};
    float angle = 0;
    for (int t = 0; t < HoughCounts({9, 9}, delta).theta; ++t) {
        EXPECT_EQ(static_cast<float>(std::cos(double{angle}) * inverse), field(12 + 8 * t, 0.0F)) << t;
        EXPECT_EQ(static_cast<float>(std::sin(double{angle}) * inverse), field(16 + 8 * t, 0.0F)) << t;
        angle += 0.01F;
    }
}

TEST(HoughProbLineInit_8u32f_C1R, ChecksInOrder) {
    GuardedImage<Lum8u> block(2000, 1);
    auto* spec = reinterpret_cast<LumHoughProbSpec*>(block.data());
    EXPECT_STATUS(lumStatusNullPointer, lumiHoughProbLineInit_8u32f_C1R({0, 0}, {0, 0}, 0, nullptr));
    EXPECT_REFUSED(lumStatusSizeError, block, lumiHoughProbLineInit_8u32f_C1R({0, 4}, {0, 0}, 0, spec));
    EXPECT_REFUSED(lumStatusSizeError, block, lumiHoughProbLineInit_8u32f_C1R({4, 0}, {0, 0}, 0, spec));
    for (LumPoint32f delta : {LumPoint32f{0, 1}, LumPoint32f{1, 0}, LumPoint32f{NAN, 1}, LumPoint32f{1, -1}})
        EXPECT_REFUSED(lumStatusBadArgument, block, lumiHoughProbLineInit_8u32f_C1R({4, 4}, delta, 0, spec));
}

namespace {

struct Arguments {
    GuardedImage<Lum8u> image{20, 10};
    GuardedImage<Lum32s> room{16, 1};
    GuardedBlock specBlock{8 * 181 + 12}, block{9 * 200 + 4 * 61 * 181};
    int countPlace = untouchedLines;

    Arguments() {
        lumiHoughProbLineInit_8u32f_C1R({20, 10}, pixelAndDegree, 0, specBlock.as<LumHoughProbSpec>());
    }

    const Lum8u* src = image.data();
    int step = image.step();
    LumSize size{20, 10};
    int threshold = 3;
    int lineLength = 0;
    int lineGap = 0;
    Lum32s* lines = room.data();
    int maxLineCount = 4;
    int* count = &countPlace;
    Lum8u* buffer = block.as();
    const LumHoughProbSpec* spec = specBlock.as<LumHoughProbSpec>();

    LumStatus run() const {
        return lumiHoughProbLine_8u32f_C1R(src, step, size, threshold, lineLength, lineGap, lines,
                                           maxLineCount, count, buffer, spec);
    }
};

} // namespace

TEST(HoughProbLine_8u32f_C1R, ChecksInOrder) {
    const std::vector<std::pair<LumStatus, std::function<void(Arguments&)>>> all = {
        {lumStatusNullPointer, [](auto& a) { a.src = nullptr; }},
        {lumStatusNullPointer, [](auto& a) { a.lines = nullptr; }},
        {lumStatusNullPointer, [](auto& a) { a.count = nullptr; }},
        {lumStatusNullPointer, [](auto& a) { a.buffer = nullptr; }},
        {lumStatusNullPointer, [](auto& a) { a.spec = nullptr; }},
        {lumStatusSizeError, [](auto& a) { a.size.width = 0; }},
        {lumStatusSizeError, [](auto& a) { a.size.height = -1; }},
        {lumStatusSizeError, [](auto& a) { a.maxLineCount = 0; }},
        {lumStatusBadArgument, [](auto& a) { a.threshold = 0; }},
        {lumStatusBadArgument, [](auto& a) { a.lineLength = -1; }},
        {lumStatusBadArgument, [](auto& a) { a.lineGap = -1; }},
    };
    for (std::size_t first = 0; first < all.size(); ++first)
        for (std::size_t rest : {first + 1, all.size()}) {
            Arguments a;
            for (std::size_t i = rest; i-- > first;) all[i].second(a);
            EXPECT_STATUS(all[first].first, a.run()) << first;
            EXPECT_TRUE(a.room.untouched());
            EXPECT_EQ(untouchedLines, a.countPlace);
        }
    Arguments fine;
    EXPECT_STATUS(lumStatusOk, fine.run());
    EXPECT_EQ(0, fine.countPlace);
}

TEST(HoughProbLine_8u32f_C1R, StepMayBeNegative) {
    Arguments a;
    for (int x = 2; x < 18; ++x) a.image.at(x, 2) = 1;
    a.src = a.image.row(9);
    a.step = -a.image.step();
    EXPECT_STATUS(lumStatusOk, a.run());
    ASSERT_GE(a.countPlace, 1);
    EXPECT_EQ(7, a.lines[1]);
    EXPECT_EQ(7, a.lines[3]);
}

#include "fast_members.h"

#include <climits>

using namespace support;

namespace {

constexpr int plain = lumFastNCorners;
constexpr int scored = lumFastNCorners | lumFastNScore;
constexpr int suppressed = scored | lumFastNSuppression;

/// One pixel amid its circle: a 7 x 7 image whose only candidate is its centre.
struct OnePixel {
    GuardedImage<Lum8u> image{7, 7};
    FastParameters parameters{.size = {7, 7}};

    explicit OnePixel(int tone) {
        image.fill([&](int, int, int) { return tone; });
    }
    /// Positions of the circle from `first` on, as it goes round.
    OnePixel& arc(int first, int count, int tone) {
        const LumPoint* circle = lum::kernels::circleOf(3);
        for (int k = first; k < first + count; ++k)
            image.at(3 + circle[k % 16].x, 3 + circle[k % 16].y) = static_cast<Lum8u>(tone);
        return *this;
    }
    FastResult search() const { return searchCorners(image, parameters); }
    int mark() const { return search().corners->at(3, 3); }
    int score() const { return search().scores->at(3, 3); }
};

/// Every mark and score of a tile, and its count, against the definition.
class TileDefinition {
  public:
    TileDefinition(const GuardedImage<Lum8u>& image, const FastParameters& p, LumPoint offset, LumSize tile)
        : definition_(image, p),
          p_(p),
          left_(std::max(offset.x, 0)),
          top_(std::max(offset.y, 0)),
          right_(std::min(offset.x + tile.width, p.size.width)),
          bottom_(std::min(offset.y + tile.height, p.size.height)),
          isCut_(right_ - left_ < tile.width || bottom_ - top_ < tile.height) {}

    bool isInImage(int x, int y) const { return x >= left_ && y >= top_ && x < right_ && y < bottom_; }
    int score(int x, int y) const { return isInImage(x, y) ? definition_.score(x, y) : 0; }
    bool stays(int x, int y) const {
        if (score(x, y) == 0) return false;
        if ((p_.flags & lumFastNSuppression) == 0) return true;
        if (y == bottom_ - 1 && bottom_ != p_.size.height) return false;
        for (int dy = -1; dy <= 1; ++dy)
            for (int dx = -1; dx <= 1; ++dx)
                if (score(x + dx, y + dy) > score(x, y)) return false;
        return true;
    }
    int mark(int x, int y) const { return stays(x, y) ? definition_.mark(x, y) : 0; }
    LumStatus status() const { return isCut_ ? lumStatusRegionClipped : lumStatusOk; }

  private:
    FastDefinition definition_;
    FastParameters p_;
    int left_, top_, right_, bottom_;
    bool isCut_;
};

void expectTile(const GuardedImage<Lum8u>& image, const FastParameters& p, LumPoint offset, LumSize tile,
                Placement placement = {}) {
    SCOPED_TRACE(testing::Message() << "radius " << p.radius << " arc " << p.arcLength << " flags " << p.flags
                                    << " tile " << offset.x << "," << offset.y << " " << tile.width << "x"
                                    << tile.height);
    FastSpec spec(p, 1);
    const FastResult result = searchCorners(image, spec, offset, tile, placement, 1);
    const TileDefinition expected(image, p, offset, tile);
    ASSERT_EQ(expected.status(), result.status);
    int count = 0;
    for (int y = 0; y < tile.height; ++y)
        for (int x = 0; x < tile.width; ++x) {
            const LumPoint place{x + offset.x, y + offset.y};
            const bool isWritten = expected.isInImage(place.x, place.y);
            const bool hasScore = isWritten && (p.flags & lumFastNScore) != 0;
            const bool stays = expected.stays(place.x, place.y);
            count += stays;
            ASSERT_EQ(isWritten ? expected.mark(place.x, place.y) : 99, result.corners->at(x, y))
                << x << "," << y;
            ASSERT_EQ(!hasScore ? 99
                      : stays   ? expected.score(place.x, place.y)
                                : 0,
                      result.scores->at(x, y))
                << x << "," << y;
        }
    ASSERT_EQ(count, result.count);
}

} // namespace

TEST(FastN_8u_C1R, ABrightArcOfNineIsACorner) {
    // Nine pixels of 150 around one of 100, but the weakest of them is 141.
    OnePixel pixel(100);
    pixel.arc(4, 9, 150).arc(8, 1, 141);
    const FastResult result = pixel.search();
    EXPECT_EQ(lumStatusOk, result.status);
    EXPECT_EQ(1, result.count);
    EXPECT_EQ(64, result.corners->at(3, 3));
    EXPECT_EQ(41, result.scores->at(3, 3));
    const auto marks = result.corners->pixels();
    EXPECT_EQ(48, std::count(marks.begin(), marks.end(), 0));
}

TEST(FastN_8u_C1R, ADarkArcIsMarkedByBit7) {
    OnePixel pixel(100);
    pixel.arc(0, 12, 30);
    EXPECT_EQ(128, pixel.mark());
    EXPECT_EQ(70, pixel.score());
}

TEST(FastN_8u_C1R, AnArcOfEightIsNone) {
    for (int first = 0; first < 16; ++first) {
        EXPECT_EQ(0, OnePixel(100).arc(first, 8, 200).mark());
        EXPECT_EQ(64, OnePixel(100).arc(first, 9, 200).mark());
    }
}

TEST(FastN_8u_C1R, ArcsWrapFromTheLastPositionToTheFirst) {
    for (int first = 8; first < 16; ++first) EXPECT_EQ(128, OnePixel(100).arc(first, 9, 0).mark());
}

TEST(FastN_8u_C1R, ScoreIsTheBestArcsWeakestPixel) {
    // Of twelve bright pixels nine contiguous ones are 190.
    EXPECT_EQ(90, OnePixel(100).arc(2, 12, 125).arc(5, 9, 190).score());
}

TEST(FastN_8u_C1R, DifferenceMustExceedTheThreshold) {
    EXPECT_EQ(0, OnePixel(100).arc(0, 9, 120).mark());
    EXPECT_EQ(64, OnePixel(100).arc(0, 9, 121).mark());
    EXPECT_EQ(0, OnePixel(100).arc(0, 9, 80).mark());
    EXPECT_EQ(128, OnePixel(100).arc(0, 9, 79).mark());
}

TEST(FastN_8u_C1R, ThresholdZeroAcceptsADifferenceOfOne) {
    OnePixel pixel(100);
    pixel.arc(0, 9, 101).parameters.threshold = 0;
    EXPECT_EQ(64, pixel.mark());
    EXPECT_EQ(1, pixel.score());
}

TEST(FastN_8u_C1R, ThresholdIsTruncated) {
    OnePixel pixel(100);
    pixel.arc(0, 9, 121).parameters.threshold = 20.99F;
    EXPECT_EQ(64, pixel.mark());
}

TEST(FastN_8u_C1R, HugeThresholdsFindNothing) {
    OnePixel pixel(0);
    pixel.arc(0, 16, 255);
    for (float threshold : {255.0F, 1000.0F, 3e9F, INFINITY}) {
        pixel.parameters.threshold = threshold;
        EXPECT_EQ(0, pixel.mark());
    }
    pixel.parameters.threshold = 254;
    EXPECT_EQ(64, pixel.mark());
    EXPECT_EQ(255, pixel.score());
}

TEST(FastN_8u_C1R, ArcOfThePerimeterNeedsTheFullRing) {
    OnePixel pixel(100);
    pixel.arc(0, 16, 200).arc(7, 1, 150).parameters.arcLength = 16;
    EXPECT_EQ(64, pixel.mark());
    EXPECT_EQ(50, pixel.score());
    EXPECT_EQ(0, pixel.arc(7, 1, 120).mark());
}

TEST(FastN_8u_C1R, RadiusNineTakesOnePixelTwice) {
    GuardedImage<Lum8u> image(19, 19);
    image.fill([](int, int, int) { return 200; });
    const FastParameters full{.size = {19, 19}, .radius = 9, .arcLength = 52};
    image.at(9, 9) = 100;
    // Where a full circle would have a pixel of its own.
    image.at(0, 10) = 100;
    EXPECT_EQ(64, searchCorners(image, full).corners->at(9, 9));
    // At positions 12 and 14: of the 52 positions 49 are contiguous without them.
    image.at(0, 8) = 100;
    EXPECT_EQ(0, searchCorners(image, full).corners->at(9, 9));
    FastParameters most = full;
    most.arcLength = 49;
    EXPECT_EQ(64, searchCorners(image, most).corners->at(9, 9));
    most.arcLength = 50;
    EXPECT_EQ(0, searchCorners(image, most).corners->at(9, 9));
}

TEST(FastN_8u_C1R, EveryPixelAgreesWithTheDefinition) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 engine(seed);
    const auto below = [&](int bound) { return static_cast<int>(engine() % static_cast<unsigned>(bound)); };
    for (int radius : fastRadii)
        for (int flags :
             {plain, scored, suppressed, plain | lumFastNOrientation, suppressed | lumFastNOrientation})
            for (int round = 0; round < 3; ++round) {
                const int perimeter = lum::kernels::perimeterOf(radius);
                const FastParameters p{.size = {2 * radius + 1 + below(80), 2 * radius + 1 + below(12)},
                                       .radius = radius,
                                       .arcLength = perimeter / 2 + 1 + below(perimeter / 4),
                                       .bins = 1 + below(64),
                                       .flags = flags,
                                       .threshold = static_cast<float>(below(50))};
                const Placement placement{.padding = below(5),
                                          .offset = below(33),
                                          .guard = below(2) == 0 ? Guard::after : Guard::before};
                GuardedImage<Lum8u> image(p.size.width, p.size.height, placement);
                fillPatches(image, engine(), 1 + radius, 1 + below(12));
                ASSERT_NO_FATAL_FAILURE(expectTile(image, p, {0, 0}, p.size, placement));
            }
}

TEST(FastN_8u_C1R, TilesInsideAndAcrossEveryEdge) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 engine(seed);
    const auto below = [&](int bound) { return static_cast<int>(engine() % static_cast<unsigned>(bound)); };
    const LumSize size{60, 40};
    GuardedImage<Lum8u> image(size.width, size.height);
    fillPatches(image, engine());
    const int arcs[] = {5, 7, 9};
    for (int flags : {plain, suppressed, suppressed | lumFastNOrientation})
        for (int round = 0; round < 60; ++round) {
            const LumSize tile{1 + below(90), 1 + below(70)};
            const LumPoint offset{below(size.width + tile.width - 1) - tile.width + 1,
                                  below(size.height + tile.height - 1) - tile.height + 1};
            const FastParameters p{
                .size = size, .radius = fastRadii[round % 3], .arcLength = arcs[round % 3], .flags = flags};
            ASSERT_NO_FATAL_FAILURE(expectTile(image, p, offset, tile));
        }
}

TEST(FastN_8u_C1R, EveryLastRowOfATile) {
    GuardedImage<Lum8u> image(40, 24);
    fillPatches(image, 12);
    for (int height = 1; height <= 24; ++height)
        for (int flags : {scored, suppressed, suppressed | lumFastNOrientation})
            ASSERT_NO_FATAL_FAILURE(
                expectTile(image, {.size = {40, 24}, .flags = flags}, {0, 0}, {40, height}));
}

TEST(FastN_8u_C1R, TilesThatOverlapByTwoRowsJoin) {
    GuardedImage<Lum8u> image(64, 50);
    fillPatches(image, 5);
    const FastParameters p{.size = {64, 50}, .flags = suppressed};
    FastSpec spec(p);
    const FastResult whole = searchCorners(image, spec, {0, 0}, p.size);
    ASSERT_GT(whole.count, 20);
    for (int y = 0; y + 12 <= 50; y += 10) {
        const FastResult tile = searchCorners(image, spec, {0, y}, {64, 12});
        for (int row = 1; row < 11; ++row)
            for (int x = 0; x < 64; ++x) ASSERT_EQ(whole.corners->at(x, y + row), tile.corners->at(x, row));
    }
}

TEST(FastN_8u_C1R, TileOutsideTheImageIsClippedToNothing) {
    GuardedImage<Lum8u> image(40, 30);
    fillPatches(image, 5);
    FastSpec spec(FastParameters{});
    for (LumPoint offset :
         {LumPoint{40, 0}, LumPoint{0, 30}, LumPoint{-8, 0}, LumPoint{0, -8}, LumPoint{INT_MAX, 5},
          LumPoint{5, INT_MAX}, LumPoint{INT_MIN, 5}, LumPoint{5, INT_MIN}}) {
        const FastResult result = searchCorners(image, spec, offset, {8, 8});
        EXPECT_EQ(lumStatusRegionClipped, result.status);
        EXPECT_EQ(untouchedCount, result.count);
        EXPECT_TRUE(result.corners->untouched());
        EXPECT_TRUE(result.scores->untouched());
    }
}

TEST(FastN_8u_C1R, NoRowsAfterTheShrinkCountZero) {
    GuardedImage<Lum8u> image(40, 30);
    fillPatches(image, 5);
    FastSpec spec(FastParameters{});
    const FastResult band = searchCorners(image, spec, {0, 0}, {40, 3});
    EXPECT_EQ(lumStatusOk, band.status);
    EXPECT_EQ(0, band.count);
    EXPECT_EQ(std::vector<Lum8u>(120, 0), band.corners->pixels());
    EXPECT_EQ(std::vector<Lum8u>(120, 0), band.scores->pixels());
    const FastResult cut = searchCorners(image, spec, {0, 27}, {40, 4});
    EXPECT_EQ(lumStatusRegionClipped, cut.status);
    EXPECT_EQ(0, cut.count);
}

TEST(FastN_8u_C1R, ImageWithoutRoomForACircle) {
    for (int radius : fastRadii)
        for (LumSize size : {LumSize{1, 1}, LumSize{2 * radius, 40}, LumSize{40, 2 * radius}}) {
            GuardedImage<Lum8u> image(size.width, size.height);
            image.fillRandom(1);
            const FastResult result = searchCorners(image, {.size = size,
                                                            .radius = radius,
                                                            .arcLength = lum::kernels::perimeterOf(radius),
                                                            .flags = suppressed});
            EXPECT_EQ(lumStatusOk, result.status);
            EXPECT_EQ(0, result.count);
            EXPECT_EQ(std::vector<Lum8u>(size.width * size.height, 0), result.corners->pixels());
        }
}

TEST(FastN_8u_C1R, ScoresAreNotTouchedWithoutTheirFlag) {
    GuardedImage<Lum8u> image(40, 30);
    fillPatches(image, 5);
    EXPECT_TRUE(searchCorners(image, {.flags = plain}).scores->untouched());
}

TEST(FastN_8u_C1R, EqualNeighboursBothSurviveSuppression) {
    GuardedImage<Lum8u> image(20, 20);
    image.at(10, 10) = image.at(11, 10) = 200;
    const FastParameters p{.size = {20, 20}, .flags = suppressed};
    const FastResult result = searchCorners(image, p);
    EXPECT_EQ(2, result.count);
    EXPECT_EQ(128, result.corners->at(10, 10));
    EXPECT_EQ(128, result.corners->at(11, 10));
    image.at(11, 10) = 190;
    EXPECT_EQ(1, searchCorners(image, p).count);
}

TEST(FastN_8u_C1R, OrientationFollowsTheArc) {
    // One bright pixel of the arc exceeds the others, which are alike all round: its direction alone counts. Sines are
    // x of the angle and cosines are y, so position k has the angle of 90 degrees less k positions.

    for (int k = 1; k < 16; k += 2) {
        OnePixel pixel(100);
        pixel.arc(0, 16, 200).arc(k, 1, 250);
        pixel.parameters.flags = scored | lumFastNOrientation;
        pixel.parameters.bins = 8;
        const double degrees = std::fmod(450 - 22.5 * k, 360);
        EXPECT_EQ(64 | static_cast<int>(degrees / 45), pixel.mark()) << k;
    }
}

TEST(FastN_8u_C1R, BinBeyondTheLastIsTheFirst) {
    // A hair below 360 degrees rounds up to it.
    for (int bins : {1, 3, 64}) {
        OnePixel pixel(100);
        pixel.arc(0, 16, 200).arc(4, 1, 250);
        pixel.parameters.flags = scored | lumFastNOrientation;
        pixel.parameters.bins = bins;
        EXPECT_LT(pixel.mark() & 63, bins);
    }
}

TEST(FastN_8u_C1R, ObjectMayBeMoved) {
    GuardedImage<Lum8u> image(40, 30);
    fillPatches(image, 5);
    const FastParameters p{.flags = suppressed | lumFastNOrientation};
    FastSpec spec(p);
    const FastResult before = searchCorners(image, spec, {0, 0}, p.size);
    ASSERT_GT(before.count, 0);
    for (int shift = 0; shift < 9; ++shift) {
        FastSpec moved({.arcLength = 12}, shift);
        std::memcpy(static_cast<void*>(moved.get()), spec.get(), fastSpecSize(p));
        EXPECT_EQ(before.corners->pixels(), searchCorners(image, moved, {0, 0}, p.size).corners->pixels());
    }
}

TEST(FastN_8u_C1R, StepsAreNotTested) {
    GuardedImage<Lum8u> image(40, 30);
    fillPatches(image, 5);
    FastSpec spec({.flags = plain});
    GuardedBlock buffer(42 * 6 + 624);
    GuardedImage<Lum8u> corners(40, 30), oneRow(40, 1);
    Lum32s count = 0;
    EXPECT_STATUS(lumStatusOk,
                  lumiFastN_8u_C1R(image.row(29), -image.step(), corners.row(29), -corners.step(), nullptr, 0,
                                   &count, {0, 0}, {40, 30}, spec.get(), buffer.as()));
    EXPECT_GT(count, 0);
    EXPECT_STATUS(lumStatusOk, lumiFastN_8u_C1R(image.data(), image.step(), oneRow.data(), 0, nullptr, 0,
                                                &count, {0, 0}, {40, 30}, spec.get(), buffer.as()));
    EXPECT_TRUE(oneRow.outsideUntouched());
}

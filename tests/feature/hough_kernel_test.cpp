// The vector forms against the scalar ones: every width and count, against unreadable pages.
#include <cmath>

#include "kernels/feature/hough_prob.h"
#include "kernels/feature/hough_vote.h"
#include "support/guarded_image.h"

using namespace support;
using namespace lum::kernels;

namespace {

std::vector<int> rowWidths() {
    std::vector<int> widths{126, 127, 128, 129, 191, 192, 193, 320};
    for (int width = 1; width <= 70; ++width) widths.push_back(width);
    return widths;
}

Placement placementOf(std::mt19937& engine, int elementBytes = 1) {
    return {.offset = static_cast<int>(engine() % (65U / elementBytes)) * elementBytes,
            .guard = engine() % 2 == 0 ? Guard::after : Guard::before};
}

/// Records of points for pictures of a few rows, those of a row with a few columns or many.
struct Points {
    std::vector<std::uint64_t> storage;
    PointRows rows;

    Points(std::mt19937& engine, LumSize size) : storage(size.height * (pointRowBytes(size.width) / 8) + 4) {
        const auto start = reinterpret_cast<std::uintptr_t>(storage.data());
        auto* record = reinterpret_cast<unsigned char*>((start + 31) / 32 * 32);
        rows = {record, size.height};
        for (int y = 0; y < size.height; ++y) {
            const unsigned share = 1 + engine() % 9;
            auto* columns = reinterpret_cast<float*>(record + sizeof(Lum32s));
            Lum32s count = 0;
            for (int x = 0; x < size.width; ++x)
                if (engine() % share == 0) columns[count++] = static_cast<float>(x);
            std::memcpy(record, &count, sizeof count);
            record += pointRowBytes(count);
        }
    }
};

} // namespace

TEST(HoughKernel, ColumnsAreThoseOfTheScalarForm) {
    std::mt19937 engine(1);
    for (int width : rowWidths())
        for (unsigned share : {1U, 2U, 40U}) {
            GuardedImage<Lum8u> row(width, 1, placementOf(engine));
            row.fill([&](int, int, int) { return engine() % share == 0 ? 1 + engine() % 255 : 0; });
            std::vector<float> expected(width), columns(width);
            ASSERT_EQ(collectColumnsScalar(row.data(), width, expected.data()),
                      collectColumns(row.data(), width, columns.data()));
            ASSERT_EQ(expected, columns) << width;
        }
}

TEST(HoughKernel, VotesAreThoseOfTheScalarForm) {
    std::mt19937 engine(2);
    for (int width : rowWidths())
        for (float scale : {1024.0F, 300.5F, 9000.0F}) {
            const LumSize size{width, 7};
            const Points points(engine, size);
            const float angle = static_cast<float>(engine() % 3142) / 1000;
            const auto rhoCount = static_cast<Lum32s>(2 * (width + 7) * scale / 1024) + 3;
            const LineFan fan{std::trunc(std::cos(angle) * scale), std::trunc(std::sin(angle) * scale),
                              (rhoCount - 1) / 2};
            ASSERT_TRUE(votesStayInRow(fan, size, rhoCount));
            GuardedImage<Lum32s> cells(rhoCount + 2 * houghMargin, 2);
            voteScalar(fan, points.rows, cells.row(0) + houghMargin, rhoCount);
            vote(fan, points.rows, cells.row(1) + houghMargin);
            ASSERT_EQ(0, std::memcmp(cells.row(0), cells.row(1), cells.elements() * sizeof(Lum32s)))
                << width << " " << angle;
        }
}

TEST(HoughKernel, VotesBeyondTheMarginStayInTheRow) {
    std::mt19937 engine(3);
    const LumSize size{100, 5};
    const Points points(engine, size);
    for (float scale : {1e4F, 1e7F, 3e9F, 1e20F}) {
        const LineFan fan{-scale, scale, 10};
        EXPECT_FALSE(votesStayInRow(fan, size, 21));
        GuardedImage<Lum32s> cells(21 + 2 * houghMargin, 1);
        voteScalar(fan, points.rows, cells.data() + houghMargin, 21);
        EXPECT_TRUE(cells.outsideUntouched());
    }
}

TEST(HoughKernel, PeaksAreThoseOfTheScalarForm) {
    std::mt19937 engine(4);
    for (int count : rowWidths())
        for (unsigned levels : {2U, 4U, 30U}) {
            GuardedImage<Lum32s> cells(count + 2, 3, placementOf(engine, 4));
            cells.fill([&](int, int, int) { return engine() % levels; });
            const AngleRows rows{cells.row(0) + 1, cells.row(1) + 1, cells.row(2) + 1};
            for (int threshold : {0, 1, 3, 20})
                for (int index = 0; index <= count; ++index)
                    ASSERT_EQ(nextPeakScalar(rows, index, count, threshold),
                              nextPeak(rows, index, count, threshold))
                        << count << " from " << index;
        }
}

namespace {

/// A plane with its table at an odd address.
struct Plane {
    GuardedBlock table;
    LinePlane plane;

    Plane(LumSize size, int thetaCount, float step)
        : table(8 * thetaCount, Guard::after, 1), plane{table.as(), thetaCount, 0, 0} {
        plane.rhoCount = static_cast<Lum32s>((2 * (size.width + size.height) + 1) / step);
        plane.halfRho = (plane.rhoCount - 1) / 2;
        for (int t = 0; t < thetaCount; ++t) {
            const double angle = 3.14159 * t / thetaCount;
            const LumPoint32f direction{static_cast<float>(std::cos(angle) / step),
                                        static_cast<float>(std::sin(angle) / step)};
            std::memcpy(table.as() + 8 * t, &direction, sizeof direction);
        }
    }
    std::size_t cellCount() const { return static_cast<std::size_t>(plane.rhoCount) * plane.thetaCount; }
};

template <class Cell> void expectSameVotes(LumSize size, int thetaCount, float step) {
    std::mt19937 engine(thetaCount);
    const Plane p(size, thetaCount, step);
    ASSERT_TRUE(votesStayInRows(p.plane, size));
    std::vector<Cell> expected(p.cellCount()), cells(p.cellCount());
    for (int i = 0; i < 60; ++i) {
        const LumPoint point{static_cast<int>(engine() % size.width),
                             static_cast<int>(engine() % size.height)};
        BestVote wanted{static_cast<Lum32s>(engine() % 4), -1};
        BestVote best = wanted;
        addVotesScalar(p.plane, expected.data(), point, wanted);
        addVotes(p.plane, cells.data(), point, best);
        ASSERT_EQ(wanted.votes, best.votes);
        ASSERT_EQ(wanted.theta, best.theta);
        if (i % 3 == 0) {
            // Also of points that have not voted, so that cells fall below 0.
            const LumPoint other{point.x / 2, point.y};
            takeVotesScalar(p.plane, expected.data(), other);
            takeVotes(p.plane, cells.data(), other);
        }
        ASSERT_EQ(expected, cells);
    }
}

} // namespace

TEST(HoughProbKernel, VotesAreThoseOfTheScalarForm) {
    for (int thetaCount = 1; thetaCount <= 50; ++thetaCount)
        for (float step : {1.0F, 0.37F, 2.5F}) {
            expectSameVotes<Lum16s>({40, 23}, thetaCount, step);
            expectSameVotes<Lum32s>({17, 60}, thetaCount, step);
        }
}

TEST(HoughProbKernel, VotesBesideThePlaneAreNone) {
    const LumSize size{100, 1};
    Plane p(size, 9, 90);
    EXPECT_FALSE(votesStayInRows(p.plane, size));
    GuardedImage<Lum32s> cells(static_cast<int>(p.cellCount()), 1);
    BestVote best{0, 0};
    for (int x = 0; x < 100; ++x) addVotesScalar(p.plane, cells.data(), {x, 0}, best);
    EXPECT_TRUE(cells.outsideUntouched());
    p.plane.rhoCount = p.plane.halfRho = 0;
    addVotesScalar(p.plane, cells.data(), {5, 0}, best);
    EXPECT_TRUE(cells.outsideUntouched());
}

TEST(HoughProbKernel, BitsAreThoseOfTheScalarForm) {
    std::mt19937 engine(5);
    for (int width : rowWidths())
        for (unsigned share : {1U, 2U, 40U}) {
            GuardedImage<Lum8u> row(width, 1, placementOf(engine));
            row.fill([&](int, int, int) { return engine() % share == 0 ? 1 + engine() % 255 : 0; });
            GuardedImage<Lum8u> bits(bytesOfBits(width), 2);
            std::vector<std::uint32_t> expected(width), positions(width);
            ASSERT_EQ(collectBitsScalar(row.data(), width, bits.row(0), 1000, expected.data()),
                      collectBits(row.data(), width, bits.row(1), 1000, positions.data()));
            ASSERT_EQ(expected, positions);
            ASSERT_EQ(0, std::memcmp(bits.row(0), bits.row(1), bytesOfBits(width))) << width;
            ASSERT_TRUE(bits.outsideUntouched());
        }
}

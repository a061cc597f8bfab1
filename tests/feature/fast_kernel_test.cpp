// The vector forms against the scalar ones: every width, perimeter and arc, against unreadable pages.
#include "kernels/feature/fast.h"

#include "fast_members.h"

using namespace support;
using namespace lum::kernels;

namespace {

SegmentRow vectorForm(int perimeter) {
    switch (perimeter) {
    case 8:
        return segmentRow<8>;
    case 12:
        return segmentRow<12>;
    case 16:
        return segmentRow<16>;
    case 28:
        return segmentRow<28>;
    case 40:
        return segmentRow<40>;
    default:
        return segmentRow<52>;
    }
}

/// A row of `count` pixels with room for its circles and no more.
struct SegmentCase {
    int radius;
    int arcLength;
    int threshold;
    int count;
    Placement placement = {};

    template <class Fill> void expectSame(const Fill& fill) const {
        GuardedImage<Lum8u> image(count + 2 * radius, 2 * radius + 1, placement);
        fill(image);
        const SegmentTest test(radius, image.step(), arcLength, threshold);
        for (bool hasScores : {false, true}) {
            GuardedImage<Lum8u> marks(count, 2, placement), scores(count, 2, placement);
            const auto run = [&](SegmentRow form, int row) {
                return form(test, image.row(radius) + radius, marks.row(row),
                            hasScores ? scores.row(row) : nullptr, count);
            };
            const int expected = run(segmentRowScalar, 0);
            ASSERT_EQ(expected, run(vectorForm(test.perimeter), 1));
            ASSERT_EQ(0, std::memcmp(marks.row(0), marks.row(1), count))
                << "radius " << radius << " arc " << arcLength << " threshold " << threshold << " count "
                << count;
            ASSERT_EQ(0, std::memcmp(scores.row(0), scores.row(1), count));
            ASSERT_TRUE(marks.outsideUntouched() && scores.outsideUntouched());
        }
    }
    void expectSameOnPatches(unsigned seed) const {
        expectSame([&](auto& image) { fillPatches(image, seed, 1 + static_cast<int>(seed % 9)); });
    }
};

std::vector<int> rowWidths() {
    std::vector<int> widths{95, 96, 97, 127, 128, 129, 255, 300};
    for (int width = 1; width <= 70; ++width) widths.push_back(width);
    return widths;
}

} // namespace

TEST(FastKernel, VectorRowIsTheScalarRow) {
    unsigned seed = 1;
    for (int radius : fastRadii)
        for (int count : rowWidths())
            for (Guard guard : {Guard::after, Guard::before}) {
                const int half = perimeterOf(radius) / 2;
                const int arc = half + 1 + static_cast<int>(seed) % half;
                SegmentCase{radius,
                            arc,
                            static_cast<int>(seed * 7 % 60),
                            count,
                            {.offset = static_cast<int>(seed % 33), .guard = guard}}
                    .expectSameOnPatches(seed);
                ++seed;
            }
}

TEST(FastKernel, EveryArcLengthAndThreshold) {
    unsigned seed = 500;
    for (int radius : fastRadii)
        for (int arc = perimeterOf(radius) / 2 + 1; arc <= perimeterOf(radius); ++arc)
            for (int threshold : {0, 1, 30, 69, 140, 254, 255})
                SegmentCase{radius, arc, threshold, 61}.expectSameOnPatches(seed++);
}

TEST(FastKernel, TonesOfTheWholeRange) {
    std::mt19937 engine(99);
    for (int radius : fastRadii)
        for (int threshold = 0; threshold < 255; threshold += 6) {
            // Mostly one of the two extremes, in runs, so that arcs of one direction are found.
            SegmentCase{radius, perimeterOf(radius) / 2 + 1, threshold, 100}.expectSame([&](auto& image) {
                image.fill([&](int x, int y, int) {
                    return engine() % 30 == 0 ? engine() : (x / 5 + y / 4 + threshold) % 3 == 0 ? 255 : 0;
                });
            });
        }
}

TEST(FastKernel, VectorSuppressionIsTheScalarOne) {
    std::mt19937 engine(3);
    for (int count : rowWidths())
        for (Guard guard : {Guard::after, Guard::before})
            for (unsigned levels : {2U, 3U, 200U}) {
                const Placement placement{.offset = static_cast<int>(engine() % 33), .guard = guard};
                GuardedImage<Lum8u> scores(count + 2, 3, placement), marks(count, 1, placement);
                scores.fill([&](int, int, int) { return engine() % 3 == 0 ? engine() % levels : 0; });
                marks.fill([&](int x, int, int) { return scores.at(x + 1, 1) != 0 ? 64 : 0; });
                GuardedImage<Lum8u> dstMarks(count, 2, placement), dstScores(count, 2, placement);
                const ScoreRows rows{scores.row(0) + 1, scores.row(1) + 1, scores.row(2) + 1};
                ASSERT_EQ(suppressRowScalar(rows, marks.row(0), dstMarks.row(0), dstScores.row(0), count),
                          suppressRow(rows, marks.row(0), dstMarks.row(1), dstScores.row(1), count));
                ASSERT_EQ(0, std::memcmp(dstMarks.row(0), dstMarks.row(1), count)) << count;
                ASSERT_EQ(0, std::memcmp(dstScores.row(0), dstScores.row(1), count)) << count;
                ASSERT_TRUE(dstMarks.outsideUntouched() && dstScores.outsideUntouched());
            }
}

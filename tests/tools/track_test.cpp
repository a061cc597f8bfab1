#include <cmath>
#include <sstream>

#include "picture_file.h"
#include "program.h"
#include "tracker.h"

using namespace support;
using tools::Picture;
using tools::Track;

namespace {

/// A smooth picture with detail everywhere, of the place (x - dx, y - dy).
Picture textured(int width, int height, double dx = 0, double dy = 0) {
    Picture picture(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const double u = x - dx;
            const double v = y - dy;
            // Coarse waves for the small levels, fine ones for the picture itself.
            picture.at(x, y) =
                static_cast<Lum8u>(128 + 35 * std::sin(0.07 * u + 0.05 * v) +
                                   25 * std::sin(0.06 * v - 0.04 * u) + 25 * std::sin(0.31 * u + 0.13 * v) +
                                   20 * std::sin(0.23 * v - 0.17 * u) + 20 * std::sin(0.53 * u - 0.47 * v));
        }
    return picture;
}

class TrackCommand : public testing::Test {
  protected:
    ScratchDirectory scratch;

    std::string file(const std::string& name, const Picture& picture) {
        tools::writePicture(scratch / name, picture);
        return scratch / name;
    }
};

} // namespace

TEST(Tracker, FindsPointsOfAPictureThatMoved) {
    const Picture before = textured(160, 120);
    const Picture after = textured(160, 120, 4.5, -2.25);
    const auto points = tools::texturedPoints(before, 16);
    EXPECT_GT(points.size(), 40U);
    int close = 0;
    const auto tracking = tools::followPoints(before, after, points);
    for (const Track& track : tracking.tracks)
        close += std::hypot(track.to.x - track.from.x - 4.5, track.to.y - track.from.y + 2.25) < 0.2;
    EXPECT_GT(close, static_cast<int>(points.size() * 3 / 4));
}

TEST(Tracker, FlatPictureHasNoPoints) {
    const Picture flat(64, 48, 1, 100);
    const auto points = tools::texturedPoints(flat, 16);
    EXPECT_TRUE(points.empty());
    EXPECT_TRUE(tools::followPoints(flat, flat, points).tracks.empty());
}

TEST(Tracker, SmallPicturesAreTracked) {
    for (int side : {1, 2, 3, 5, 9}) {
        const Picture picture = textured(side, side);
        EXPECT_NO_THROW(tools::followPoints(picture, picture, {{0, 0}})) << side;
        EXPECT_NO_THROW(tools::texturedPoints(picture, 16)) << side;
    }
}

TEST(Tracker, ArrowsLieInsideThePicture) {
    Picture picture(50, 40, 3, 10);
    tools::drawTracks(picture, {{{-20, 5}, {70, 30}, 0}, {{10, 10}, {10.2F, 10}, 0}});
    EXPECT_NE(Picture(50, 40, 3, 10), picture);
}

TEST_F(TrackCommand, PrintsAndDrawsTheTracks) {
    const std::string first = file("a.pnm", textured(160, 120));
    const std::string second = file("b.pnm", textured(160, 120, 3, 0));
    const Outcome outcome = run({"track", first, second, "-o", scratch / "out.pnm"});
    EXPECT_EQ(0, outcome.status) << outcome.errors;
    std::istringstream lines(outcome.output);
    int tracks = 0;
    int close = 0;
    for (double x, y, u, v, error; lines >> x >> y >> u >> v >> error; ++tracks)
        close += std::hypot(u - x - 3, v - y) < 0.2;
    EXPECT_GT(tracks, 40);
    EXPECT_GT(close, tracks * 3 / 4);
    const Picture drawn = tools::readPicture(scratch / "out.pnm");
    EXPECT_EQ(160, drawn.width);
    EXPECT_EQ(3, drawn.channels);
}

TEST_F(TrackCommand, PicturesOfTwoSizesAreRefused) {
    const std::string first = file("a.pnm", textured(60, 40));
    const std::string second = file("b.pnm", textured(61, 40));
    expectRefused(run({"track", first, second, "-o", scratch / "out.pnm"}), "must have one size");
    EXPECT_FALSE(std::filesystem::exists(scratch / "out.pnm"));
}

TEST_F(TrackCommand, MissingPictureIsRefused) {
    const std::string first = file("a.pnm", textured(60, 40));
    expectRefused(run({"track", first, scratch / "none.pnm", "-o", scratch / "out.pnm"}), "none.pnm");
}

TEST_F(TrackCommand, UnknownEndingIsRefusedBeforeTheWork) {
    const std::string first = file("a.pnm", textured(60, 40));
    expectRefused(run({"track", first, first, "-o", scratch / "out.xyz"}), "out.xyz");
    EXPECT_FALSE(std::filesystem::exists(scratch / "out.xyz"));
}

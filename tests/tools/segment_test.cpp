#include <algorithm>
#include <numeric>
#include <set>
#include <sstream>

#include "failure.h"
#include "picture_file.h"
#include "program.h"
#include "scene.h"
#include "segmenter.h"

using namespace support;
using tools::Picture;

namespace {

/// Three vertical bands of one colour each.
Picture bands(int width, int height) {
    Picture picture(width, height, 3);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const int band = 3 * x / width;
            for (int c = 0; c < 3; ++c) picture.at(x, y, c) = static_cast<Lum8u>(c == band ? 200 : 30);
        }
    return picture;
}

/// A piece of the built-in scene.
Picture pieceOfScene(int width, int height) {
    const Picture whole = tools::builtInScene();
    Picture piece(width, height, whole.channels);
    for (int y = 0; y < height; ++y)
        std::copy_n(whole.row(y + 50) + 50 * whole.channels, width * whole.channels, piece.row(y));
    return piece;
}

std::vector<long> numbersIn(const std::string& text) {
    std::istringstream lines(text);
    std::vector<long> numbers;
    for (long number; lines >> number;) numbers.push_back(number);
    return numbers;
}

class Segment : public testing::Test {
  protected:
    ScratchDirectory scratch;

    std::string file(const std::string& name, const Picture& picture) {
        tools::writePicture(scratch / name, picture);
        return scratch / name;
    }
    Outcome segmented(const std::string& picture, const std::string& seeds) {
        return run({"segment", picture, "--seeds", seeds, "-o", scratch / "out.pnm"});
    }
};

} // namespace

TEST_F(Segment, BandsAreRegionsOfTheirColour) {
    const Picture picture = bands(90, 40);
    const Outcome outcome = segmented(file("in.pnm", picture), "3");
    EXPECT_EQ(0, outcome.status) << outcome.errors;
    EXPECT_EQ("", outcome.errors);
    const auto pixels = numbersIn(outcome.output);
    ASSERT_EQ(3U, pixels.size());
    for (const long count : pixels) EXPECT_NEAR(30 * 40, count, 2 * 40);
    const Picture painted = tools::readPicture(scratch / "out.pnm");
    for (int x : {5, 15, 25, 35, 45, 55, 65, 75, 85})
        for (int y : {3, 20, 36})
            for (int c = 0; c < 3; ++c)
                EXPECT_NEAR(picture.at(x, y, c), painted.at(x, y, c), 12) << x << ", " << y;
}

TEST_F(Segment, EveryNumberOfSeedsGivesAsManyRegions) {
    const std::string picture = file("in.pnm", pieceOfScene(120, 90));
    for (int seeds : {1, 2, 7, 40, 333}) {
        const auto pixels = numbersIn(segmented(picture, std::to_string(seeds)).output);
        EXPECT_EQ(static_cast<std::size_t>(seeds), pixels.size());
        EXPECT_EQ(120L * 90, std::accumulate(pixels.begin(), pixels.end(), 0L));
        EXPECT_TRUE(std::all_of(pixels.begin(), pixels.end(), [](long count) { return count >= 1; }));
    }
}

TEST_F(Segment, SeedsLieApartInEveryShape) {
    for (LumSize size : {LumSize{1, 1}, {1, 50}, {50, 1}, {3, 4}, {17, 90}, {200, 10}})
        for (int count = 1; count <= std::min(tools::mostSeeds(size), 300); ++count) {
            const auto seeds = tools::spreadSeeds(Picture(size.width, size.height), count);
            std::set<std::pair<int, int>> places;
            for (const LumPoint& seed : seeds) {
                ASSERT_TRUE(seed.x >= 0 && seed.y >= 0 && seed.x < size.width && seed.y < size.height);
                places.insert({seed.x, seed.y});
            }
            ASSERT_EQ(static_cast<std::size_t>(count), places.size()) << size.width << " x " << size.height;
        }
}

TEST_F(Segment, GreyPicturesAreTakenToo) {
    Picture grey(40, 30);
    for (int y = 0; y < 30; ++y)
        for (int x = 0; x < 40; ++x) grey.at(x, y) = x < 20 ? 50 : 180;
    EXPECT_EQ(2U, numbersIn(segmented(file("in.pgm", grey), "2").output).size());
}

TEST_F(Segment, WrongNumbersOfSeedsAreRefused) {
    const std::string picture = file("in.pnm", bands(9, 5));
    for (const char* seeds : {"0", "-3", "46", "70000"})
        expectRefused(segmented(picture, seeds), "--seeds must be 1 to 45");
    expectRefused(segmented(picture, "many"), "--seeds");
    expectRefused(segmented(picture, "1.5"), "--seeds");
    EXPECT_FALSE(std::filesystem::exists(scratch / "out.pnm"));
}

TEST_F(Segment, MissingArgumentsAndFilesAreRefused) {
    const std::string picture = file("in.pnm", bands(9, 5));
    expectRefused(run({"segment", picture, "-o", scratch / "out.pnm"}), "--seeds");
    expectRefused(run({"segment", picture, "--seeds", "3"}), "output");
    expectRefused(run({"segment", scratch / "none.pnm", "--seeds", "3", "-o", scratch / "out.pnm"}),
                  "none.pnm");
    expectRefused(run({"segment", picture, "--seeds", "3", "-o", scratch / "out.txt"}), "out.txt");
    expectRefused(run({"segment", picture, "--seeds", "3", "-o", scratch / "no/out.pnm"}), "out.pnm");
}

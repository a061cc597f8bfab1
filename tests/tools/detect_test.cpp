#include <cmath>
#include <functional>

#include "cascade.h"
#include "detector.h"
#include "failure.h"
#include "picture_file.h"
#include "program.h"
#include "scene.h"
#include "shrinking.h"
#include "tones.h"

using namespace support;
using tools::Detection;
using tools::Picture;

namespace {

const std::string discCascade = LUMCV_SHARE "/cascades/bright-disc.json";

struct Disc {
    double x, y, radius;
};

/// A grey picture, tone(x, y) with a grain of a few tones.
Picture painted(int width, int height, const std::function<double(double, double)>& tone) {
    Picture picture(width, height);
    unsigned state = 1;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            state = state * 1664525U + 1013904223U;
            const double grain = static_cast<double>(state >> 24) / 32 - 4;
            picture.at(x, y) = static_cast<Lum8u>(std::clamp(tone(x, y) + grain, 0.0, 255.0));
        }
    return picture;
}

double away(double x, double y, const Disc& disc) { return std::hypot(x - disc.x, y - disc.y); }

Picture withDiscs(int width, int height, const std::vector<Disc>& discs, double ground = 40,
                  double bright = 220) {
    return painted(width, height, [&](double x, double y) {
        double tone = ground + 20 * x / width;
        for (const Disc& disc : discs) {
            const double covered = std::clamp(disc.radius - away(x, y, disc) + 0.5, 0.0, 1.0);
            tone += (bright - tone) * covered;
        }
        return tone;
    });
}

std::vector<Detection> discsIn(const Picture& grey) {
    return tools::detect(grey, tools::readCascade(discCascade));
}

/// Each disc has exactly one box, at its place and about as large, and there are no others.
void expectFound(const std::vector<Disc>& discs, const std::vector<Detection>& detections) {
    EXPECT_EQ(discs.size(), detections.size());
    for (const Disc& disc : discs) {
        int found = 0;
        for (const Detection& detection : detections) {
            const LumRect& box = detection.box;
            const bool centred = std::hypot(box.x + box.width / 2.0 - disc.x,
                                            box.y + box.height / 2.0 - disc.y) < disc.radius * 0.25 + 1;
            const bool asLarge =
                box.width > 1.6 * disc.radius && box.width < 2.5 * disc.radius && box.width == box.height;
            found += centred && asLarge;
        }
        EXPECT_EQ(1, found) << "disc of radius " << disc.radius << " at " << disc.x << ", " << disc.y;
    }
}

/// Accepts every window, all of which is the object.
tools::Cascade acceptingAll(LumSize window) {
    tools::CascadeStage stage;
    stage.rectangles = {{0, 0, 1, 1}};
    stage.weights = {1};
    stage.thresholds = {0};
    stage.below = {1};
    stage.above = {1};
    stage.counts = {1};
    tools::Cascade cascade;
    cascade.window = window;
    cascade.object = {0, 0, window.width, window.height};
    cascade.stages = {stage};
    return cascade;
}

/// Finds pixels of tone 255 on ground of tone 0. In a window of 4 x 4 that holds one such pixel the tones deviate by
/// 61.7, and t is 255 - 255 / 16 where the pixel is at (1, 1), else it is below 0.
tools::Cascade brightPixelCascade() {
    tools::Cascade cascade = acceptingAll({4, 4});
    cascade.object = {1, 1, 1, 1};
    tools::CascadeStage& stage = cascade.stages[0];
    stage.rectangles = {{0, 0, 4, 4}, {1, 1, 1, 1}};
    stage.weights = {-1, 16};
    stage.thresholds = {3.8F * 16};
    stage.below = {0};
    stage.counts = {2};
    stage.threshold = 1;
    return cascade;
}

std::vector<int> numbersOf(const LumRect& box) { return {box.x, box.y, box.width, box.height}; }

class Detect : public testing::Test {
  protected:
    ScratchDirectory scratch;
};

} // namespace

TEST_F(Detect, FindsDiscsOfManySizes) {
    const std::vector<Disc> discs = {{40, 40, 8},    {100, 50, 11}, {180, 60, 17},  {300, 90, 30},
                                     {520, 140, 55}, {90, 240, 40}, {230, 260, 22}, {330, 300, 14}};
    expectFound(discs, discsIn(withDiscs(660, 360, discs)));
}

TEST_F(Detect, FindsADiscOfEverySizeFromTheWindowUp) {
    for (double radius = 7; radius < 90; radius *= 1.13) {
        const double centre = radius * 1.7 + 10.3;
        const int side = static_cast<int>(2 * centre);
        const std::vector<Disc> discs = {{centre, centre + 0.4, radius}};
        expectFound(discs, discsIn(withDiscs(side, side + 3, discs)));
    }
}

TEST_F(Detect, FindsDiscsOfLittleContrast) {
    const std::vector<Disc> discs = {{60, 60, 20}, {160, 60, 12}};
    expectFound(discs, discsIn(withDiscs(240, 120, discs, 90, 170)));
}

TEST_F(Detect, IsSilentWhereThereIsNoBrightDisc) {
    const Disc middle{100, 100, 30};
    const std::vector<std::pair<const char*, std::function<double(double, double)>>> pictures = {
        {"flat", [](double, double) { return 128.0; }},
        {"ramp", [](double x, double y) { return x / 2 + y / 3; }},
        {"stripes", [](double x, double) { return std::fmod(x, 24) < 12 ? 30.0 : 220.0; }},
        {"chequers",
         [](double x, double y) {
             return (static_cast<int>(x / 14) + static_cast<int>(y / 14)) % 2 ? 30.0 : 220.0;
         }},
        {"dark disc", [&](double x, double y) { return away(x, y, middle) < 30 ? 30.0 : 220.0; }},
        {"ring",
         [&](double x, double y) {
             const double distance = away(x, y, middle);
             return distance < 30 && distance > 16 ? 220.0 : 30.0;
         }},
        {"half disc", [&](double x, double y) { return away(x, y, middle) < 30 && x < 100 ? 220.0 : 30.0; }},
        {"cross",
         [](double x, double y) { return std::abs(x - 100) < 7 || std::abs(y - 100) < 7 ? 220.0 : 30.0; }},
        {"bar",
         [](double x, double y) { return std::abs(x - 100) < 60 && std::abs(y - 100) < 15 ? 220.0 : 30.0; }},
        {"waves", [](double x, double y) { return 128 + 100 * std::sin(x / 9) * std::sin(y / 17); }}};
    for (const auto& [name, tone] : pictures) EXPECT_EQ(0U, discsIn(painted(200, 200, tone)).size()) << name;
}

TEST_F(Detect, NothingIsFoundInPicturesSmallerThanTheWindow) {
    for (LumSize size : {LumSize{1, 1}, LumSize{19, 100}, LumSize{100, 19}})
        EXPECT_TRUE(discsIn(Picture(size.width, size.height)).empty());
    EXPECT_TRUE(discsIn(Picture(20, 20)).empty());
}

TEST_F(Detect, EveryPlaceOfEverySizeIsSearchedOnce) {
    for (const auto& [picture, hits] : {std::pair{LumSize{20, 20}, 1},
                                        {LumSize{24, 20}, 5},
                                        {LumSize{20, 24}, 5},
                                        // 5 x 5 places, and 1 in the picture of 20 x 20.
                                        {LumSize{24, 24}, 26}}) {
        const auto found = tools::detect(Picture(picture.width, picture.height), acceptingAll({20, 20}));
        ASSERT_EQ(1U, found.size());
        EXPECT_EQ(hits, found[0].hits) << picture.width << " x " << picture.height;
    }
    const auto alone = tools::detect(Picture(20, 20), acceptingAll({20, 20}));
    EXPECT_EQ((std::vector{0, 0, 20, 20}), numbersOf(alone[0].box));
}

TEST_F(Detect, GroupsOfFewerWindowsThanTheLeastAreDropped) {
    for (int leastHits : {26, 27}) {
        tools::Cascade cascade = acceptingAll({20, 20});
        cascade.leastHits = leastHits;
        EXPECT_EQ(leastHits == 26 ? 1U : 0U, tools::detect(Picture(24, 24), cascade).size());
    }
}

TEST_F(Detect, WindowsOfTheLeastDeviationAreLookedAt) {
    Picture picture(2, 1);
    picture.elements = {10, 14};
    tools::Cascade cascade = acceptingAll({2, 1});
    cascade.leastDeviation = 2;
    EXPECT_EQ(1U, tools::detect(picture, cascade).size());
    cascade.leastDeviation = 2.001F;
    EXPECT_EQ(0U, tools::detect(picture, cascade).size());
}

TEST_F(Detect, BoxesGoFromTheTopDownwardAndThenToTheRight) {
    Picture picture(60, 60);
    picture.at(45, 30) = picture.at(10, 30) = picture.at(40, 10) = 255;
    // The pixel at (45, 30) stays whole in the next size and is found there too, so that its group is the largest.
    tools::Cascade cascade = brightPixelCascade();
    cascade.leastDeviation = 46;
    std::vector<std::vector<int>> boxes;
    std::vector<int> hits;
    for (const Detection& detection : tools::detect(picture, cascade)) {
        boxes.push_back(numbersOf(detection.box));
        hits.push_back(detection.hits);
    }
    EXPECT_EQ((std::vector<std::vector<int>>{{40, 10, 1, 1}, {10, 30, 1, 1}, {45, 30, 1, 1}}), boxes);
    EXPECT_EQ((std::vector{1, 1, 2}), hits);
}

TEST_F(Detect, WindowsThatOverlapByMoreThanAHalfAreOneGroup) {
    // Windows of 4 x 4 that differ by one column have 3 of 5 columns in common, by two columns 2 of 6.
    for (const auto& [columns, groupHits] : {std::pair{1, std::vector{2}}, {2, std::vector{1, 1}}}) {
        Picture picture(60, 60);
        picture.at(20, 10) = picture.at(20 + columns, 10) = 255;
        tools::Cascade cascade = brightPixelCascade();
        cascade.leastDeviation = 61.5F;
        cascade.stages[0].thresholds = {2 * 16};
        std::vector<int> hits;
        for (const Detection& detection : tools::detect(picture, cascade)) hits.push_back(detection.hits);
        EXPECT_EQ(groupHits, hits) << columns << " columns";
    }
}

TEST_F(Detect, GroupInsideAnotherGivesWayToTheLargerOne) {
    // A square that is one pixel in smaller sizes, and to its lower left a pixel that only the picture itself has.
    const auto found = [](int squareX, int squareY) {
        Picture picture(60, 60);
        for (int y = squareY; y < squareY + 3; ++y)
            for (int x = squareX; x < squareX + 3; ++x) picture.at(x, y) = 255;
        picture.at(squareX - 2, squareY + 4) = 255;
        tools::Cascade cascade = brightPixelCascade();
        cascade.object = {0, 0, 4, 4};
        cascade.leastDeviation = 40;
        cascade.stages[0].thresholds = {3.5F * 16};
        return tools::detect(picture, cascade);
    };
    // The square is found in two sizes; the pixel's window, 4 x 4 at (19, 25), has its centre in theirs.
    const auto ofSquare = found(22, 22);
    ASSERT_EQ(1U, ofSquare.size());
    EXPECT_EQ((std::vector{18, 18, 11, 11}), numbersOf(ofSquare[0].box));
    EXPECT_EQ(2, ofSquare[0].hits);
    // Here it is found in one size, so that neither has more windows than the other.
    EXPECT_EQ(1U, found(21, 21).size());
}

TEST_F(Detect, CascadeThatAcceptsEverythingIsRefused) {
    tools::Cascade cascade = tools::brightDiscCascade();
    cascade.leastDeviation = 0;
    for (tools::CascadeStage& stage : cascade.stages) stage.threshold = -1e9F;
    EXPECT_THROW(tools::detect(Picture(600, 400), cascade), tools::Failure);
}

TEST_F(Detect, FiftyThousandWindowsAreTheMost) {
    // One row of places; the picture's next size is lower than the window.
    const tools::Cascade cascade = acceptingAll({20, 20});
    const auto found = tools::detect(Picture(50019, 20), cascade);
    ASSERT_EQ(1U, found.size());
    EXPECT_EQ(50000, found[0].hits);
    EXPECT_THROW(tools::detect(Picture(50020, 20), cascade), tools::Failure);
}

TEST_F(Detect, WindowsOfAllSizesCountTogether) {
    // 48000 places, and 20869 in the next size.
    EXPECT_THROW(tools::detect(Picture(24000, 2), acceptingAll({1, 1})), tools::Failure);
}

// A sanitizer takes more addresses than this limit leaves, and Windows has no such limit.
#if !defined(__SANITIZE_ADDRESS__) && !defined(_WIN32)
TEST_F(Detect, TheDetectorHoldsNoMoreWindowsThanTheMost) {
    const Picture large(2500, 2500);
    const std::string text = R"({"format": "lumcv-cascade-1", "name": "everything", "window": [1, 1],
        "object": [0, 0, 1, 1], "leastDeviation": 0, "leastHits": 1, "stages": [{"threshold": 0, "classifiers": [
        {"rectangles": [[0, 0, 1, 1, 1]], "threshold": 0, "below": 1, "above": 1}]}]})";
    tools::writePicture(scratch / "large.pgm", large);
    writeBytes(scratch / "everything.json", text);
    // What the picture and its integral images need; six million windows would need as much again.
    const Outcome outcome =
        runAfter("ulimit -v 262144;", {"detect", scratch / "large.pgm", "-o", scratch / "out.pnm",
                                       "--cascade", scratch / "everything.json"});
    expectRefused(outcome, "too many windows");
}
#endif

TEST_F(Detect, FindsTheDiscsOfTheBuiltInSceneAndNothingElse) {
    const std::vector<Disc> discs = {{78, 92, 34},  {178, 58, 15},  {206, 158, 10},
                                     {388, 74, 48}, {520, 128, 20}, {578, 52, 11},
                                     {752, 82, 27}, {868, 66, 40},  {906, 172, 13}};
    const Picture grey = tools::greyOf(tools::builtInScene());
    expectFound(discs, discsIn(grey));
    expectFound(discs, tools::detect(grey, tools::brightDiscCascade()));
}

TEST_F(Detect, ProgramPrintsBoxesAndDrawsThem) {
    const std::vector<Disc> discs = {{60, 50, 20}, {140, 70, 12}};
    const Picture picture = withDiscs(200, 120, discs);
    tools::writePicture(scratch / "in.pnm", picture);
    const Outcome outcome =
        run({"detect", scratch / "in.pnm", "-o", scratch / "out.pnm", "--cascade", discCascade});
    EXPECT_EQ(0, outcome.status) << outcome.errors;
    std::string expected;
    for (const auto& [box, hits] : discsIn(picture))
        expected += std::to_string(box.x) + " " + std::to_string(box.y) + " " + std::to_string(box.width) +
                    " " + std::to_string(box.height) + "\n";
    EXPECT_EQ(expected, outcome.output);
    EXPECT_EQ(2, std::count(expected.begin(), expected.end(), '\n'));
    EXPECT_EQ("2 found\n", outcome.errors);

    const Picture marked = tools::readPicture(scratch / "out.pnm");
    ASSERT_EQ(3, marked.channels);
    ASSERT_EQ(picture.width, marked.width);
    const LumRect box = discsIn(picture)[0].box;
    EXPECT_NE(marked.at(box.x, box.y, 1), marked.at(box.x, box.y, 2)) << "a coloured corner";
    EXPECT_EQ(picture.at(60, 50), marked.at(60, 50, 0));
}

TEST_F(Detect, PictureWithoutADiscPrintsNothing) {
    tools::writePicture(scratch / "in.pgm", painted(80, 60, [](double x, double) { return x; }));
    const Outcome outcome =
        run({"detect", scratch / "in.pgm", "-o", scratch / "out.ppm", "--cascade", discCascade});
    EXPECT_EQ(0, outcome.status) << outcome.errors;
    EXPECT_EQ("", outcome.output);
    EXPECT_EQ("0 found\n", outcome.errors);
    EXPECT_TRUE(std::filesystem::exists(scratch / "out.ppm"));
}

TEST_F(Detect, BuiltInCascadeIsTakenWithoutTheOption) {
    tools::writePicture(scratch / "in.pgm", withDiscs(200, 120, {{60, 50, 20}, {140, 70, 12}}));
    const Outcome asked =
        run({"detect", scratch / "in.pgm", "-o", scratch / "a.ppm", "--cascade", discCascade});
    const Outcome plain = run({"detect", scratch / "in.pgm", "-o", scratch / "b.ppm"});
    EXPECT_EQ(0, plain.status) << plain.errors;
    EXPECT_EQ(asked.output, plain.output);
    EXPECT_EQ(bytesOf(scratch / "a.ppm"), bytesOf(scratch / "b.ppm"));
}

TEST_F(Detect, PictureToStandardOutputSendsBoxesToTheOther) {
    tools::writePicture(scratch / "in.pgm", withDiscs(200, 120, {{60, 50, 20}, {140, 70, 12}}));
    const Outcome toFile = run({"detect", scratch / "in.pgm", "-o", scratch / "out.ppm"});
    const Outcome toStream = run({"detect", scratch / "in.pgm", "-o", "-"});
    EXPECT_EQ(bytesOf(scratch / "out.ppm"), toStream.output);
    EXPECT_EQ(toFile.output + "2 found\n", toStream.errors);
}

#ifndef _WIN32 // whose console is no file
TEST_F(Detect, TellsItsProgressOnATerminal) {
    tools::writePicture(scratch / "in.pgm", withDiscs(100, 80, {{60, 50, 20}}));
    const std::string shown = shownOnTerminal({"detect", scratch / "in.pgm", "-o", scratch / "out.ppm"});
    EXPECT_NE(std::string::npos, shown.find("1/10  searching 100 x 80 pixels")) << shown;
    EXPECT_NE(std::string::npos, shown.find("\r1 found")) << "after the wiped line: " << shown;
}
#endif

TEST_F(Detect, MissingOptionsAndFilesAreOneLine) {
    tools::writePicture(scratch / "picture.pgm", Picture(30, 30));
    expectRefused(run({"detect", scratch / "picture.pgm", "--cascade", discCascade}), "--output");
    expectRefused(run({"detect", scratch / "none.pgm", "-o", scratch / "out.pnm", "--cascade", discCascade}),
                  "none.pgm");
    expectRefused(run({"detect", scratch / "picture.pgm", "-o", scratch / "out.pnm", "--cascade",
                       scratch / "none.json"}),
                  "none.json");
    expectRefused(
        run({"detect", scratch / "picture.pgm", "-o", scratch / "out.pnm", "--cascade", scratch / "."}),
        "is a directory");
}

TEST_F(Detect, ShrunkPicturesHoldTheMeanOfEachArea) {
    Picture picture(4, 3);
    for (int i = 0; i < 12; ++i) picture.elements[i] = static_cast<Lum8u>(10 * i);
    EXPECT_EQ(picture, tools::shrunk(picture, {4, 3}));
    EXPECT_EQ(55, tools::shrunk(picture, {1, 1}).at(0, 0));
    const Picture half = tools::shrunk(picture, {2, 1});
    EXPECT_EQ((std::vector<Lum8u>{45, 65}), half.elements);
    // 4 columns in 3 parts: 0 and a third of 10, two thirds of 10 and of 20, a third of 20 and 30.
    const Picture thirds = tools::shrunk(picture, {3, 3});
    EXPECT_EQ(3, thirds.at(0, 0));
    EXPECT_EQ(15, thirds.at(1, 0));
    EXPECT_EQ(28, thirds.at(2, 0));
}

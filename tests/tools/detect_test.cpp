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

class Detect : public testing::Test {
  protected:
    ScratchDirectory scratch;

    std::string cascadeFile(const std::string& text) {
        writeBytes(scratch / "cascade.json", text);
        return scratch / "cascade.json";
    }
    /// The shipped cascade, with one place of its text changed.
    std::string changed(const std::string& from, const std::string& to) {
        std::string text = bytesOf(discCascade);
        const std::size_t at = text.find(from);
        EXPECT_NE(std::string::npos, at) << from;
        return text.replace(at, from.size(), to);
    }
    void expectCascadeRefused(const std::string& text, const std::string& reason) {
        tools::writePicture(scratch / "picture.pgm", Picture(30, 30));
        const Outcome outcome = run(
            {"detect", scratch / "picture.pgm", "-o", scratch / "out.png", "--cascade", cascadeFile(text)});
        expectRefused(outcome, reason);
        EXPECT_FALSE(std::filesystem::exists(scratch / "out.png"));
    }
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

TEST_F(Detect, CascadeThatAcceptsEverythingIsRefused) {
    tools::Cascade cascade = tools::brightDiscCascade();
    cascade.leastDeviation = 0;
    for (tools::CascadeStage& stage : cascade.stages) stage.threshold = -1e9F;
    EXPECT_THROW(tools::detect(Picture(600, 400), cascade), tools::Failure);
}

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
    tools::writePicture(scratch / "in.png", picture);
    const Outcome outcome =
        run({"detect", scratch / "in.png", "-o", scratch / "out.png", "--cascade", discCascade});
    EXPECT_EQ(0, outcome.status) << outcome.errors;
    std::string expected;
    for (const auto& [box, hits] : discsIn(picture))
        expected += std::to_string(box.x) + " " + std::to_string(box.y) + " " + std::to_string(box.width) +
                    " " + std::to_string(box.height) + "\n";
    EXPECT_EQ(expected, outcome.output);
    EXPECT_EQ(2, std::count(expected.begin(), expected.end(), '\n'));

    const Picture marked = tools::readPicture(scratch / "out.png");
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
    EXPECT_TRUE(std::filesystem::exists(scratch / "out.ppm"));
}

TEST_F(Detect, MissingOptionsAndFilesAreOneLine) {
    tools::writePicture(scratch / "picture.pgm", Picture(30, 30));
    expectRefused(run({"detect", scratch / "picture.pgm", "-o", scratch / "out.png"}), "--cascade");
    expectRefused(run({"detect", scratch / "picture.pgm", "--cascade", discCascade}), "--output");
    expectRefused(run({"detect", scratch / "none.pgm", "-o", scratch / "out.png", "--cascade", discCascade}),
                  "none.pgm");
    expectRefused(run({"detect", scratch / "picture.pgm", "-o", scratch / "out.png", "--cascade",
                       scratch / "none.json"}),
                  "none.json");
    expectRefused(
        run({"detect", scratch / "picture.pgm", "-o", scratch / "out.png", "--cascade", scratch / "."}),
        "cascade");
}

TEST_F(Detect, CascadesThatAreNotJsonAreRefused) {
    for (const char* text :
         {"", "{", "[1, 2", "{\"format\": }", "P5 3 3 255", "{\"threshold\": 1e999}", "\x80\xFF"})
        expectCascadeRefused(text, "is not JSON");
    expectCascadeRefused(bytesOf(discCascade).substr(0, 400), "is not JSON");
}

TEST_F(Detect, MalformedCascadesAreRefusedWithTheirPlace) {
    expectCascadeRefused("[]", "must be an object");
    expectCascadeRefused("{}", "format is missing");
    expectCascadeRefused(changed("lumcv-cascade-1", "lumcv-cascade-2"), "format");
    expectCascadeRefused(changed("\"bright disc on dark ground\"", "7"), "name must be a text");
    expectCascadeRefused(changed("[20, 20]", "[20]"), "window must be");
    expectCascadeRefused(changed("[20, 20]", "[20, 0]"), "window[1] must be from 1 to 512");
    expectCascadeRefused(changed("[20, 20]", "[20, 20.5]"), "window[1] must be a whole number");
    expectCascadeRefused(changed("[20, 20]", "[18446744073709551615, 20]"), "window[0]");
    expectCascadeRefused(changed("[20, 20]", "[19, 20]"), "must be from 1 to 19");
    expectCascadeRefused(changed("[3, 3, 14, 14]", "[3, 3, 18, 14]"), "object[2]");
    expectCascadeRefused(changed("[3, 3, 14, 14]", "{}"), "object must be");
    expectCascadeRefused(changed("\"leastDeviation\": 20", "\"leastDeviation\": -1"), "leastDeviation");
    expectCascadeRefused(changed("\"leastHits\": 3", "\"leastHits\": 0"), "leastHits");
    expectCascadeRefused(changed("\"leastHits\": 3,", ""), "leastHits is missing");
    expectCascadeRefused(changed("\"leastHits\": 3,", "\"leastHits\": 3, \"more\": 1,"), "more is not a key");
    expectCascadeRefused(changed("\"threshold\": 0.95", "\"threshold\": \"0.95\""),
                         "stages[0].classifiers[0].threshold must be a number");
    expectCascadeRefused(changed("\"threshold\": 0.95", "\"threshold\": 1e300"), "is too large");
    expectCascadeRefused(changed("[6, 6, 8, 8, 6.25]", "[6, 6, 8, 8]"),
                         "stages[0].classifiers[0].rectangles[1]");
    expectCascadeRefused(changed("[6, 6, 8, 8, 6.25]", "[6, 6, 15, 8, 6.25]"), "rectangles[1][2]");
    expectCascadeRefused(changed("[6, 6, 8, 8, 6.25]", "[6, -1, 8, 8, 6.25]"), "rectangles[1][1]");
    expectCascadeRefused(changed("[6, 6, 8, 8, 6.25]", "[6, 6, 8, 8, null]"), "rectangles[1][4]");
    expectCascadeRefused(changed("[[0, 0, 20, 20, -1], [6, 6, 8, 8, 6.25]]", "[]"), "at least one entry");
    const std::string text = bytesOf(discCascade);
    expectCascadeRefused(text.substr(0, text.find("\"stages\"")) + "\"stages\": []}",
                         "stages must be a list");
}

TEST_F(Detect, NestingWithoutEndIsRefused) { expectCascadeRefused(std::string(2000000, '['), "is not JSON"); }

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

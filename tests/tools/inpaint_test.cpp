#include "picture_file.h"
#include "program.h"

using namespace support;
using tools::Picture;

namespace {

/// A picture whose tones rise to the right, with an edge across.
Picture ramp(int channels) {
    Picture picture(60, 40, channels);
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x)
            for (int c = 0; c < channels; ++c)
                picture.at(x, y, c) = static_cast<Lum8u>(2 * x + 20 * c + (y < 20 ? 0 : 60));
    return picture;
}

/// A stroke from the left to the right.
Picture stroke(Lum8u tone, int channels = 1) {
    Picture mask(60, 40, channels);
    for (int x = 5; x < 55; ++x)
        for (int y = 9; y < 12; ++y)
            for (int c = 0; c < channels; ++c) mask.at(x, y, c) = tone;
    return mask;
}

class InpaintProgram : public testing::Test {
  protected:
    ScratchDirectory scratch;

    std::string file(const std::string& name, const Picture& picture) {
        tools::writePicture(scratch / name, picture);
        return scratch / name;
    }

    /// The picture with a white stroke, repaired by the program.
    Picture repaired(const Picture& whole, const Picture& mask, std::vector<std::string> options = {}) {
        Picture damaged = whole;
        for (int y = 9; y < 12; ++y)
            for (int x = 5; x < 55; ++x)
                for (int c = 0; c < whole.channels; ++c) damaged.at(x, y, c) = 255;
        std::vector<std::string> arguments = {"inpaint", file("damaged.pnm", damaged), file("mask.pnm", mask),
                                              "-o", scratch / "out.pnm"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const Outcome outcome = run(arguments);
        EXPECT_EQ(0, outcome.status) << outcome.errors;
        return tools::readPicture(scratch / "out.pnm");
    }
};

} // namespace

TEST_F(InpaintProgram, RepairsTheStrokeAndNothingElse) {
    for (int channels : {1, 3})
        for (const char* method : {"front", "isophote"}) {
            const Picture whole = ramp(channels);
            const Picture result = repaired(whole, stroke(255), {"--method", method, "--radius", "4"});
            ASSERT_EQ(channels, result.channels);
            for (int y = 0; y < 40; ++y)
                for (int x = 0; x < 60; ++x)
                    for (int c = 0; c < channels; ++c) {
                        const bool masked = x >= 5 && x < 55 && y >= 9 && y < 12;
                        ASSERT_NEAR(whole.at(x, y, c), result.at(x, y, c), masked ? 12 : 0) << x << ", " << y;
                    }
        }
}

TEST_F(InpaintProgram, OptionsChangeTheRepair) {
    const Picture whole = ramp(1);
    const Picture usual = repaired(whole, stroke(255));
    EXPECT_EQ(usual, repaired(whole, stroke(255), {"--method", "front", "--radius", "5"}));
    EXPECT_NE(usual, repaired(whole, stroke(255), {"--method", "isophote"}));
    EXPECT_NE(usual, repaired(whole, stroke(255), {"--radius", "1"}));
}

TEST_F(InpaintProgram, MasksCountWhereTheyAreBright) {
    const Picture whole = ramp(1);
    const Picture usual = repaired(whole, stroke(255));
    EXPECT_EQ(usual, repaired(whole, stroke(128)));
    EXPECT_EQ(usual, repaired(whole, stroke(200, 3)));
    EXPECT_EQ(255, repaired(whole, stroke(127)).at(30, 10));
}

TEST_F(InpaintProgram, WrongArgumentsAreOneLine) {
    const std::string picture = file("a.pnm", ramp(1));
    const std::string mask = file("m.pnm", stroke(255));
    const std::string out = scratch / "out.pnm";
    expectRefused(run({"inpaint", picture, "-o", out}), "MASK is required");
    expectRefused(run({"inpaint", picture, mask}), "--output");
    expectRefused(run({"inpaint", picture, mask, "-o", out, "--method", "guess"}), "--method");
    expectRefused(run({"inpaint", picture, mask, "-o", out, "--radius", "0.5"}), "--radius");
    expectRefused(run({"inpaint", picture, mask, "-o", out, "--radius", "nan"}), "--radius");
    expectRefused(run({"inpaint", picture, file("small.pnm", Picture(59, 40)), "-o", out}),
                  "the picture's size");
    expectRefused(run({"inpaint", picture, scratch / "none.pnm", "-o", out}), "none.pnm");
    expectRefused(run({"inpaint", picture, mask, "-o", scratch / "out.gif"}), "out.gif");
    EXPECT_FALSE(std::filesystem::exists(out));
}

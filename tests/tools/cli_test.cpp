#include <dlfcn.h>
#include <fcntl.h>
#include <pty.h>
#include <random>

#include "picture_file.h"
#include "program.h"
#include "scene.h"
#include "tones.h"

using namespace support;
using tools::Picture;

namespace {

/// A small picture with something in every pixel.
Picture pattern(int width, int height, int channels, int seed = 1) {
    Picture picture(width, height, channels);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            for (int c = 0; c < channels; ++c)
                picture.at(x, y, c) = static_cast<Lum8u>(x * 7 * seed + y * 13 + c * 50 + x * y * seed);
    return picture;
}

class Program : public testing::Test {
  protected:
    ScratchDirectory scratch;

    /// The picture in a file of the scratch directory.
    std::string file(const std::string& name, const Picture& picture) {
        tools::writePicture(scratch / name, picture);
        return scratch / name;
    }
    std::string file(const std::string& name, const std::string& bytes) {
        writeBytes(scratch / name, bytes);
        return scratch / name;
    }
    /// The gallery is asked for, and refuses; nothing is left after but what was there.
    void expectGalleryRefused(const std::string& picture, const std::string& text) {
        const auto before = scratch.files();
        expectRefused(run({"gallery", picture, "-o", scratch / "gallery"}), text);
        EXPECT_EQ(before, scratch.files());
        EXPECT_FALSE(std::filesystem::exists(scratch / "gallery"));
    }
};

} // namespace

TEST_F(Program, InfoTellsTheIdentityRecord) {
    const Outcome outcome = run({"info"});
    EXPECT_EQ(0, outcome.status);
    EXPECT_EQ("", outcome.errors);
    const LumLibraryVersion& library = *lumcvGetLibVersion();
    for (const char* text : {library.name, library.version, library.buildDate})
        EXPECT_NE(std::string::npos, outcome.output.find(text)) << outcome.output;
    EXPECT_NE(std::string::npos, outcome.output.find("largest cache  ")) << outcome.output;
    EXPECT_EQ(std::string::npos, outcome.output.find("unknown")) << outcome.output;
}

TEST_F(Program, InfoCountsTheExportsOfTheLibraryThatItRunsWith) {
    std::size_t exports = 0;
#define LUM_EXPORT(ordinal, name, ...) ++exports;
#include "entry/exports.inc"
#undef LUM_EXPORT
    const Outcome outcome = run({"info"});
    EXPECT_NE(std::string::npos, outcome.output.find("exports        " + std::to_string(exports) + "\n"))
        << outcome.output;
}

TEST_F(Program, HelpAndVersionSucceed) {
    for (const std::vector<std::string>& arguments : {std::vector<std::string>{"--help"},
                                                      {"gallery", "--help"},
                                                      {"absdiff", "-h"},
                                                      {"info", "--help"},
                                                      {"--version"}}) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(0, outcome.status);
        EXPECT_EQ("", outcome.errors);
        EXPECT_NE("", outcome.output);
    }
}

TEST_F(Program, WrongOptionsAreOneLine) {
    expectRefused(run({}), "a command is required");
    expectRefused(run({"juggle"}), "juggle");
    expectRefused(run({"info", "extra"}), "extra");
    expectRefused(run({"gallery"}), "--output");
    expectRefused(run({"gallery", "--colour", "-o", scratch / "g"}), "--colour");
    expectRefused(run({"absdiff", "a.png", "-o", scratch / "d.png"}), "B is required");
    expectRefused(run({"absdiff", "a.png", "b.png"}), "--output");
    EXPECT_TRUE(scratch.files().empty());
}

TEST_F(Program, StandardOutputThatCannotBeWrittenIsAnError) {
    const Outcome outcome = runBehind("exec >/dev/full;", {"info"});
    expectRefused(outcome, "standard output");
}

TEST_F(Program, AbsDiffOfGreyPictures) {
    const Picture a = pattern(70, 9, 1);
    const Picture b = pattern(70, 9, 1, 3);
    const Outcome outcome = run({"absdiff", file("a.png", a), file("b.pgm", b), "-o", scratch / "d.png"});
    EXPECT_EQ(0, outcome.status) << outcome.errors;
    const Picture difference = tools::readPicture(scratch / "d.png");
    ASSERT_EQ(1, difference.channels);
    for (int y = 0; y < 9; ++y)
        for (int x = 0; x < 70; ++x) ASSERT_EQ(std::abs(a.at(x, y) - b.at(x, y)), difference.at(x, y));
    EXPECT_EQ((std::vector<std::string>{"a.png", "b.pgm", "d.png"}), scratch.files());
}

TEST_F(Program, AbsDiffOfColourPictures) {
    const Picture a = pattern(31, 6, 3);
    const Picture b = pattern(31, 6, 3, 5);
    const Outcome outcome =
        run({"absdiff", file("a.ppm", a), file("b.png", b), "--output", scratch / "d.ppm"});
    EXPECT_EQ(0, outcome.status) << outcome.errors;
    const Picture difference = tools::readPicture(scratch / "d.ppm");
    ASSERT_EQ(a.elements.size(), difference.elements.size());
    for (std::size_t i = 0; i < a.elements.size(); ++i)
        ASSERT_EQ(std::abs(a.elements[i] - b.elements[i]), difference.elements[i]);
}

TEST_F(Program, AbsDiffReadsAndWritesEveryFormat) {
    const Picture picture = pattern(24, 16, 1);
    for (const char* input : {"a.png", "a.jpg", "a.jpeg", "a.pgm", "A.PNG"})
        for (const char* output : {"d.png", "d.jpg", "d.pgm", "d.ppm"}) {
            // A JPEG file is always one of colour.
            if (std::string(input).find(".jp") != std::string::npos && std::string(output) == "d.pgm")
                continue;
            const std::string path = file(input, picture);
            const Outcome outcome = run({"absdiff", path, path, "-o", scratch / output});
            ASSERT_EQ(0, outcome.status) << input << " " << output << ": " << outcome.errors;
            const Picture nothing = tools::readPicture(scratch / output);
            EXPECT_EQ(24, nothing.width);
            EXPECT_EQ(16, nothing.height);
            for (const Lum8u value : nothing.elements) ASSERT_LE(value, 2);
        }
}

TEST_F(Program, AbsDiffRefusesSizesThatDiffer) {
    const std::string kept = file("out.png", pattern(3, 3, 1));
    const std::string before = bytesOf(kept);
    expectRefused(
        run({"absdiff", file("a.png", pattern(20, 10, 1)), file("b.png", pattern(10, 20, 1)), "-o", kept}),
        "20 x 10 grey");
    EXPECT_EQ(before, bytesOf(kept));
}

TEST_F(Program, AbsDiffRefusesGreyBesideColour) {
    expectRefused(run({"absdiff", file("a.png", pattern(8, 8, 1)), file("b.png", pattern(8, 8, 3)), "-o",
                       scratch / "out.png"}),
                  "8 x 8 colour");
    EXPECT_EQ((std::vector<std::string>{"a.png", "b.png"}), scratch.files());
}

TEST_F(Program, AbsDiffRefusesAnOutputThatItCannotWrite) {
    const std::string a = file("a.png", pattern(8, 8, 3));
    const auto refused = [&](const std::string& output, const std::string& text) {
        expectRefused(run({"absdiff", a, a, "-o", output}), text);
    };
    refused(scratch / "out.tiff", "must end in .png");
    refused(scratch / "out", "must end in .png");
    refused(scratch / "out.pgm", "PGM file holds no colour");
    refused(a + "/out.png", "Not a directory");
    refused(scratch / "nowhere/out.png", "No such file or directory");
    std::filesystem::create_directory(scratch / "folder.png");
    refused(scratch / "folder.png", "no ordinary file");
    EXPECT_EQ((std::vector<std::string>{"a.png"}), scratch.files());
}

TEST_F(Program, AWriteThatFailsHalfWayLeavesNothing) {
    const std::string a = file("a.ppm", pattern(200, 200, 3));
    const std::string kept = file("out.ppm", pattern(3, 3, 3));
    const std::string before = bytesOf(kept);
    // Files end at 8 blocks.
    expectRefused(runBehind("ulimit -f 8;", {"absdiff", a, a, "-o", kept}), "cannot be written");
    EXPECT_EQ(before, bytesOf(kept));
    EXPECT_EQ((std::vector<std::string>{"a.ppm", "out.ppm"}), scratch.files());
}

TEST_F(Program, AFileLeftByAKilledProgramDoesNoHarm) {
    const std::string a = file("a.png", pattern(8, 8, 1));
    const std::string out = scratch / "out.png";
    // The shell's number becomes the program's.
    const Outcome outcome = runBehind(": > " + out + ".$$-0.part;", {"absdiff", a, a, "-o", out});
    EXPECT_EQ(0, outcome.status) << outcome.errors;
    EXPECT_EQ(3U, scratch.files().size());
}

#ifndef __SANITIZE_ADDRESS__ // which takes more addresses than these limits leave
TEST_F(Program, WhateverMemoryThereIsAPictureIsWrittenOrRefused) {
    // Noise does not compress, so that the encoder's memory grows most.
    Picture noise(1200, 900, 3);
    std::mt19937 engine(1);
    for (Lum8u& element : noise.elements) element = static_cast<Lum8u>(engine());
    const std::string a = file("a.ppm", noise);
    const std::string b = file("b.ppm", Picture(1200, 900, 3));
    const std::string out = scratch / "out.png";
    int refused = 0;
    for (int kibibytes = 16 * 1024; kibibytes <= 64 * 1024; kibibytes += 2 * 1024) {
        const Outcome outcome =
            runBehind("ulimit -v " + std::to_string(kibibytes) + ";", {"absdiff", a, b, "-o", out});
        if (outcome.status != 0) {
            ++refused;
            expectRefused(outcome, "memory");
        }
    }
    EXPECT_GT(refused, 0);
    EXPECT_TRUE(std::filesystem::exists(out));
}
#endif

TEST_F(Program, GalleryOfTheBuiltInScene) {
    const Outcome outcome = run({"gallery", "-o", scratch / "deep/er"});
    ASSERT_EQ(0, outcome.status) << outcome.errors;
    EXPECT_EQ("", outcome.errors) << "a pipe is no terminal";
    const std::string page = bytesOf(scratch / "deep/er/index.html");
    EXPECT_NE(std::string::npos, page.find("lumiAbsDiff_8u_C3R"));
    EXPECT_EQ(std::string::npos, page.find("http")) << "the page needs something from elsewhere";
    EXPECT_EQ(tools::builtInScene(), tools::readPicture(scratch / "deep/er/picture.png"));

    // Every file but the page is a picture that the page shows.
    std::size_t pictures = 0;
    for (const std::string& name : scratch.files()) {
        if (name == "deep/er/index.html") continue;
        ++pictures;
        const Picture picture = tools::readPicture(scratch / name);
        EXPECT_GT(picture.width, 0);
        EXPECT_NE(std::string::npos, page.find("src=\"" + name.substr(8) + "\"")) << name;
    }
    EXPECT_NE(std::string::npos, outcome.output.find(std::to_string(pictures) + " panels")) << outcome.output;
}

TEST_F(Program, GalleryShowsWhatAMoveChanges) {
    const Picture picture = pattern(40, 30, 1);
    ASSERT_EQ(0, run({"gallery", file("p.png", picture), "-o", scratch / "g"}).status);
    const Picture moved = tools::shifted(picture, 5, 3);
    EXPECT_EQ(picture, tools::readPicture(scratch / "g/picture.png"));
    EXPECT_EQ(moved, tools::readPicture(scratch / "g/picture-moved.png"));
    const Picture difference = tools::readPicture(scratch / "g/absolute-difference.png");
    for (std::size_t i = 0; i < picture.elements.size(); ++i)
        ASSERT_EQ(std::abs(picture.elements[i] - moved.elements[i]), difference.elements[i]);
    EXPECT_NE(std::string::npos, bytesOf(scratch / "g/index.html").find("lumiAbsDiff_8u_C1R"));
}

TEST_F(Program, GalleryTakesPicturesOfAnyShape) {
    for (const auto& [width, height] : {std::pair{1, 1}, {1, 50}, {50, 1}, {2, 3}, {7, 7}, {33, 17}})
        for (const int channels : {1, 3}) {
            const Outcome outcome =
                run({"gallery", file("p.png", pattern(width, height, channels)), "-o", scratch / "g"});
            EXPECT_EQ(0, outcome.status) << width << " x " << height << ": " << outcome.errors;
        }
}

TEST_F(Program, GalleryPageHoldsNamesAsText) {
    ASSERT_EQ(0, run({"gallery", file("a<b>&\"c\".png", pattern(5, 5, 1)), "-o", scratch / "g"}).status);
    const std::string page = bytesOf(scratch / "g/index.html");
    EXPECT_EQ(std::string::npos, page.find("a<b>"));
    EXPECT_NE(std::string::npos, page.find("a&lt;b&gt;&amp;&quot;c&quot;.png"));
}

TEST_F(Program, GalleryTellsItsProgressOnATerminal) {
    int terminal = -1;
    int programSide = -1;
    char name[256];
    ASSERT_EQ(0, openpty(&terminal, &programSide, name, nullptr, nullptr));
    const Outcome outcome = runBehind("exec 2>" + std::string(name) + ";", {"gallery", "-o", scratch / "g"});
    EXPECT_EQ(0, outcome.status);
    fcntl(terminal, F_SETFL, O_NONBLOCK);
    const std::string shown = readToEnd(terminal);
    close(programSide);
    close(terminal);
    EXPECT_NE(std::string::npos, shown.find("1/")) << shown;
    EXPECT_NE(std::string::npos, shown.find("The picture moved")) << shown;
    EXPECT_EQ('\r', shown.back()) << "the line is wiped at the end";
}

TEST_F(Program, GalleryRefusesADirectoryThatCannotBeMade) {
    const std::string a = file("a.png", pattern(8, 8, 1));
    expectRefused(run({"gallery", "-o", a + "/gallery"}), "cannot be made a directory");
    expectRefused(run({"gallery", "-o", a}), a);
    EXPECT_EQ((std::vector<std::string>{"a.png"}), scratch.files());
}

TEST_F(Program, GalleryRefusesAFileThatIsMissingOrNoPicture) {
    expectGalleryRefused(scratch / "missing.png", "No such file or directory");
    expectGalleryRefused(scratch / ".", "Is a directory");
    expectGalleryRefused(file("empty.png", std::string()), "is not a PNG, JPEG, PGM or PPM picture");
    expectGalleryRefused(file("text.png", "These are words.\n"), "is not a PNG, JPEG, PGM or PPM picture");
}

TEST_F(Program, GalleryRefusesAPictureThatIsCutShort) {
    for (const char* name : {"a.png", "a.jpg", "a.ppm"}) {
        const std::string path = file(name, pattern(60, 40, 3));
        const std::string bytes = bytesOf(path);
        for (const std::size_t part : {std::size_t{12}, bytes.size() / 2, bytes.size() - 1})
            expectGalleryRefused(file(name, bytes.substr(0, part)), path);
    }
}

TEST_F(Program, GalleryRefusesAPictureWithoutPixels) {
    expectGalleryRefused(file("a.pgm", "P5\n0 0\n255\n"), "holds no pixel");
    expectGalleryRefused(file("a.pgm", "P5\n0 7\n255\n"), "holds no pixel");
    expectGalleryRefused(file("a.ppm", "P6\n7 0\n255\n"), "holds no pixel");
}

TEST_F(Program, GalleryRefusesAPictureWithoutAName) {
    expectRefused(run({"gallery", "", "-o", scratch / "g"}), "cannot be opened");
    EXPECT_EQ(std::vector<std::string>{}, scratch.files());
}

TEST_F(Program, GalleryRefusesAHugePictureBeforeItIsDecoded) {
    expectGalleryRefused(file("a.pgm", "P5\n65536 1\n255\n"), "is too large: 65536 x 1 pixels");
    expectGalleryRefused(file("a.pgm", "P5\n65535 65535\n255\n"), "is too large");
    expectGalleryRefused(file("a.pgm", "P5\n99999999999999999999 5\n255\n"), "is too large");

    // A PNG file tells its size in bytes 16 to 23, a JPEG file after the marker of its frame.
    std::string png = bytesOf(file("a.png", pattern(8, 8, 1)));
    png[17] = png[21] = '\x01';
    expectGalleryRefused(file("a.png", png), "is too large: 65544 x 65544 pixels");
    png[16] = '\xFF';
    expectGalleryRefused(file("a.png", png), "is too large: 4278255624 x 65544 pixels");
    png[16] = png[17] = png[19] = '\0';
    expectGalleryRefused(file("a.png", png), "holds no pixel");
    // 16384 x 16384 pixels pass in 8 bits a channel, and are 2 GiB in 16
    png[18] = png[22] = 64;
    png[21] = png[23] = '\0';
    png[24] = 16;
    expectGalleryRefused(file("a.png", png), "is too large: 16384 x 16384 pixels");
    std::string jpeg = bytesOf(file("a.jpg", pattern(8, 8, 1)));
    const std::size_t frame = jpeg.find("\xFF\xC0");
    ASSERT_NE(std::string::npos, frame);
    jpeg[frame + 5] = jpeg[frame + 7] = '\xF0';
    expectGalleryRefused(file("a.jpg", jpeg), "is too large: 61448 x 61448 pixels");
}

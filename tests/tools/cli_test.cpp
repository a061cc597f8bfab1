#include <cstdlib>
#include <pty.h>
#include <random>
#include <sys/stat.h>

#include "codecs/codec.h"
#include "picture_file.h"
#include "program.h"

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
    /// A difference from the file is asked for, and refused; nothing is left after but what was there.
    void expectPictureRefused(const std::string& picture, const std::string& text) {
        const auto before = scratch.files();
        expectRefused(run({"absdiff", picture, picture, "-o", scratch / "out.ppm"}), text);
        EXPECT_EQ(before, scratch.files());
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
}

TEST_F(Program, InfoTellsWhatIsLoadedAndWhatTheProcessorHas) {
    const std::string output = run({"info"}).output;
    const std::string label = "library        ";
    const std::size_t place = output.find(label) + label.size();
    const std::string library = output.substr(place, output.find('\n', place) - place);
    // The loader may have been told another place, and looks further where the library is not there.
    const char* path = std::getenv("LD_LIBRARY_PATH");
    const std::string told = path != nullptr ? std::string(path) + "/liblumcv.so.1" : "";
    const std::string expected = std::filesystem::exists(told) ? told : LUMCV_LIBRARY;
    EXPECT_TRUE(std::filesystem::equivalent(expected, library)) << output;
    EXPECT_NE(std::string::npos, output.find("processor      x86-64")) << output;
#ifdef __x86_64__
    EXPECT_NE(std::string::npos, output.find("built for      x64")) << output;
#else
    EXPECT_NE(std::string::npos, output.find("built for      s8 (vectors of 16 bytes)")) << output;
#endif
    EXPECT_NE(std::string::npos, output.find("program        revision ")) << output;
    EXPECT_NE(std::string::npos, output.find("pictures       " + tools::namesOfFormats() + "\n")) << output;
    EXPECT_EQ(std::string::npos, output.find("unknown (status")) << output;
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
                                                      {"help"},
                                                      {"help", "gallery"},
                                                      {"help", "help"},
                                                      {"--version"}}) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(0, outcome.status);
        EXPECT_EQ("", outcome.errors);
        EXPECT_NE("", outcome.output);
    }
}

TEST_F(Program, HelpOfACommandIsWhatTheCommandTellsOfItself) {
    for (const std::string command :
         {"info", "absdiff", "detect", "inpaint", "segment", "track", "gallery"}) {
        const std::string told = run({"help", command}).output;
        EXPECT_EQ(run({command, "--help"}).output, told);
        EXPECT_NE(std::string::npos, told.find("lumcv " + command)) << told;
        EXPECT_NE(std::string::npos, run({"help"}).output.find("  " + command + " ")) << command;
    }
    expectRefused(run({"help", "juggle"}), "there is no command juggle");
}

TEST_F(Program, HintsNameTheHelpOfTheCommand) {
    expectRefused(run({"absdiff", "a.pnm"}), "(lumcv help absdiff tells its options)");
    expectRefused(run({"gallery", "--colour"}), "(lumcv help gallery tells its options)");
    expectRefused(run({"juggle"}), "(lumcv help tells the commands)");
    expectRefused(run({}), "(lumcv help tells the commands)");
}

TEST_F(Program, WrongOptionsAreOneLine) {
    expectRefused(run({}), "a command is required");
    expectRefused(run({"juggle"}), "juggle");
    expectRefused(run({"info", "extra"}), "extra");
    expectRefused(run({"gallery"}), "--output");
    expectRefused(run({"gallery", "--colour", "-o", scratch / "g"}), "--colour");
    expectRefused(run({"absdiff", "a.pnm", "-o", scratch / "d.pnm"}), "B is required");
    expectRefused(run({"absdiff", "a.pnm", "b.pnm"}), "--output");
    EXPECT_TRUE(scratch.files().empty());
}

TEST_F(Program, StandardOutputThatCannotBeWrittenIsAnError) {
    const Outcome outcome = runAfter("exec >/dev/full;", {"info"});
    expectRefused(outcome, "standard output");
}

TEST_F(Program, AbsDiffOfGreyPictures) {
    const Picture a = pattern(70, 9, 1);
    const Picture b = pattern(70, 9, 1, 3);
    const Outcome outcome = run({"absdiff", file("a.pnm", a), file("b.pgm", b), "-o", scratch / "d.pnm"});
    EXPECT_EQ(0, outcome.status) << outcome.errors;
    const Picture difference = tools::readPicture(scratch / "d.pnm");
    ASSERT_EQ(1, difference.channels);
    for (int y = 0; y < 9; ++y)
        for (int x = 0; x < 70; ++x) ASSERT_EQ(std::abs(a.at(x, y) - b.at(x, y)), difference.at(x, y));
    EXPECT_EQ((std::vector<std::string>{"a.pnm", "b.pgm", "d.pnm"}), scratch.files());
}

TEST_F(Program, AbsDiffOfColourPictures) {
    const Picture a = pattern(31, 6, 3);
    const Picture b = pattern(31, 6, 3, 5);
    const Outcome outcome =
        run({"absdiff", file("a.ppm", a), file("b.pnm", b), "--output", scratch / "d.ppm"});
    EXPECT_EQ(0, outcome.status) << outcome.errors;
    const Picture difference = tools::readPicture(scratch / "d.ppm");
    ASSERT_EQ(a.elements.size(), difference.elements.size());
    for (std::size_t i = 0; i < a.elements.size(); ++i)
        ASSERT_EQ(std::abs(a.elements[i] - b.elements[i]), difference.elements[i]);
}

TEST_F(Program, AbsDiffReadsAndWritesEveryFormat) {
    const Picture picture = pattern(24, 16, 1);
    std::vector<std::string> inputs = {"a.pnm", "a.pgm", "a.pam", "A.PGM"};
    std::vector<std::string> outputs = {"d.pnm", "d.pgm", "d.ppm", "d.pam"};
    if (tools::hasPngAndJpeg()) {
        inputs.insert(inputs.end(), {"a.png", "a.jpg", "a.jpeg", "A.PNG"});
        outputs.insert(outputs.end(), {"d.png", "d.jpg"});
    }
    for (const std::string& input : inputs)
        for (const std::string& output : outputs) {
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
    const std::string kept = file("out.pnm", pattern(3, 3, 1));
    const std::string before = bytesOf(kept);
    expectRefused(
        run({"absdiff", file("a.pnm", pattern(20, 10, 1)), file("b.pnm", pattern(10, 20, 1)), "-o", kept}),
        "20 x 10 grey");
    EXPECT_EQ(before, bytesOf(kept));
}

TEST_F(Program, AbsDiffRefusesGreyBesideColour) {
    expectRefused(run({"absdiff", file("a.pnm", pattern(8, 8, 1)), file("b.pnm", pattern(8, 8, 3)), "-o",
                       scratch / "out.pnm"}),
                  "8 x 8 colour");
    EXPECT_EQ((std::vector<std::string>{"a.pnm", "b.pnm"}), scratch.files());
}

TEST_F(Program, AbsDiffRefusesAnOutputThatItCannotWrite) {
    const std::string a = file("a.pnm", pattern(8, 8, 3));
    const auto refused = [&](const std::string& output, const std::string& text) {
        expectRefused(run({"absdiff", a, a, "-o", output}), text);
    };
    refused(scratch / "out.tiff", "must end in " + tools::writableEndings());
    refused(scratch / "out", "must end in " + tools::writableEndings());
    refused(scratch / "out.pgm", "PGM file holds no colour");
    refused(a + "/out.pnm", "Not a directory");
    refused(scratch / "nowhere/out.pnm", "No such file or directory");
    std::filesystem::create_directory(scratch / "folder.pnm");
    refused(scratch / "folder.pnm", "it is a directory");
    EXPECT_EQ((std::vector<std::string>{"a.pnm"}), scratch.files());
}

TEST_F(Program, AWriteThatFailsHalfWayLeavesNothing) {
    const std::string a = file("a.ppm", pattern(200, 200, 3));
    const std::string kept = file("out.ppm", pattern(3, 3, 3));
    const std::string before = bytesOf(kept);
    // Files end at 8 blocks.
    expectRefused(runAfter("ulimit -f 8;", {"absdiff", a, a, "-o", kept}), "cannot be written");
    EXPECT_EQ(before, bytesOf(kept));
    EXPECT_EQ((std::vector<std::string>{"a.ppm", "out.ppm"}), scratch.files());
}

TEST_F(Program, AFileLeftByAKilledProgramDoesNoHarm) {
    const std::string a = file("a.pnm", pattern(8, 8, 1));
    const std::string out = scratch / "out.pnm";
    // The shell's number becomes the program's.
    const Outcome outcome =
        runAfter(": > " + (scratch / ".lumcv-") + "$$-0.part;", {"absdiff", a, a, "-o", out});
    EXPECT_EQ(0, outcome.status) << outcome.errors;
    EXPECT_EQ(3U, scratch.files().size());
}

TEST_F(Program, PicturesComeFromStandardInputAndGoToStandardOutput) {
    const Picture a = pattern(20, 10, 3);
    const std::string path = file("a.ppm", a);
    const std::string other = file("b.ppm", Picture(20, 10, 3));
    const Outcome outcome = runAfter("exec <" + path + ";", {"absdiff", "-", other, "-o", "-"});
    EXPECT_EQ(0, outcome.status) << outcome.errors;
    EXPECT_EQ(bytesOf(path), outcome.output);
    expectRefused(runAfter("exec </dev/null;", {"absdiff", "-", other, "-o", "-"}),
                  "standard input is empty");
    const Outcome piped = runAfter("cat " + path + " |", {"absdiff", "-", other, "-o", "-"});
    EXPECT_EQ(bytesOf(path), piped.output);
}

TEST_F(Program, PicturesDoNotGoToATerminal) {
    int terminal = -1;
    int programSide = -1;
    char name[256];
    ASSERT_EQ(0, openpty(&terminal, &programSide, name, nullptr, nullptr));
    const std::string a = file("a.ppm", pattern(8, 8, 3));
    const Outcome outcome = runAfter("exec >" + std::string(name) + ";", {"absdiff", a, a, "-o", "-"});
    expectRefused(outcome, "standard output is a terminal");
    close(programSide);
    close(terminal);
}

TEST_F(Program, ExistingOutputKeepsItsModeAndItsLinks) {
    const std::string a = file("a.ppm", pattern(8, 8, 3));
    writeBytes(scratch / "real.ppm", "old");
    chmod((scratch / "real.ppm").c_str(), 0600);
    std::filesystem::create_symlink("real.ppm", scratch / "link.ppm");
    EXPECT_EQ(0, run({"absdiff", a, a, "-o", scratch / "link.ppm"}).status);
    EXPECT_TRUE(std::filesystem::is_symlink(scratch / "link.ppm"));
    EXPECT_EQ(8, tools::readPicture(scratch / "real.ppm").width);
    EXPECT_EQ(0600U, static_cast<unsigned>(std::filesystem::status(scratch / "real.ppm").permissions()));
}

TEST_F(Program, OutputNamesOf255BytesWork) {
    const std::string a = file("a.ppm", pattern(8, 8, 3));
    const std::string name = std::string(251, 'n').append(".ppm");
    EXPECT_EQ(0, run({"absdiff", a, a, "-o", scratch / name}).status);
    EXPECT_EQ((std::vector<std::string>{"a.ppm", name}), scratch.files());
}

TEST_F(Program, MissingAndWrongInputsAreToldWithTheReason) {
    expectPictureRefused(scratch / "missing.pnm", "No such file or directory");
    expectPictureRefused(scratch / ".", "is a directory");
    expectPictureRefused("", "cannot be opened: No such file or directory");
    expectPictureRefused(file("empty.pnm", std::string()), "empty.pnm is empty");
    expectPictureRefused(file("text.pnm", "These are words.\n"),
                         "is not a " + tools::namesOfFormats() + " picture");
}

TEST_F(Program, PipesAndDevicesAreRefusedAtOnce) {
    mkfifo((scratch / "pipe").c_str(), 0600);
    expectPictureRefused(scratch / "pipe", "is no ordinary file");
    expectPictureRefused("/dev/zero", "is no ordinary file");
    expectRefused(run({"detect", file("a.pgm", pattern(8, 8, 1)), "-o", scratch / "o.ppm", "--cascade",
                       scratch / "pipe"}),
                  "is no ordinary file");
    expectRefused(runAfter("exec </dev/zero;", {"absdiff", "-", "-", "-o", "-"}),
                  "is not a " + tools::namesOfFormats() + " picture");
}

TEST_F(Program, PicturesThatAreCutShortAreRefused) {
    std::vector<std::string> names = {"a.ppm", "a.pam"};
    if (tools::hasPngAndJpeg()) names.insert(names.end(), {"a.png", "a.jpg"});
    for (const std::string& name : names) {
        const std::string path = file(name, pattern(60, 40, 3));
        const std::string bytes = bytesOf(path);
        for (const std::size_t part : {std::size_t{12}, bytes.size() / 2, bytes.size() - 1})
            expectPictureRefused(file(name, bytes.substr(0, part)), path);
    }
}

TEST_F(Program, PicturesWithoutPixelsAreRefused) {
    expectPictureRefused(file("a.pgm", "P5\n0 0\n255\n"), "holds no pixel");
    expectPictureRefused(file("a.pgm", "P5\n0 7\n255\n"), "holds no pixel");
    expectPictureRefused(file("a.ppm", "P6\n7 0\n255\n"), "holds no pixel");
}

TEST_F(Program, HugePicturesAreRefusedBeforeTheyAreRead) {
    expectPictureRefused(file("a.pgm", "P5\n65536 1\n255\n"), "is too large: 65536 x 1 pixels");
    expectPictureRefused(file("a.pgm", "P5\n65535 65535\n255\n"), "is too large");
    expectPictureRefused(file("a.pgm", "P5\n99999999999999999999 5\n255\n"),
                         "is too large: 99999999999999999999 x 5 pixels");
    // The beginning of a stream without end is enough.
    expectRefused(
        runAfter("(printf 'P5 70000 70000 255 '; exec cat /dev/zero) |", {"absdiff", "-", "-", "-o", "-"}),
        "is too large: 70000 x 70000 pixels");
    if (!tools::hasPngAndJpeg()) return;
    // A PNG file tells its size in bytes 16 to 23, a JPEG file after the marker of its frame.
    std::string png = bytesOf(file("a.png", pattern(8, 8, 1)));
    png[17] = png[21] = '\x01';
    expectPictureRefused(file("a.png", png), "is too large: 65544 x 65544 pixels");
    png[16] = png[17] = png[19] = '\0';
    expectPictureRefused(file("a.png", png), "holds no pixel");
    std::string jpeg = bytesOf(file("a.jpg", pattern(8, 8, 1)));
    const std::size_t frame = jpeg.find("\xFF\xC0");
    ASSERT_NE(std::string::npos, frame);
    jpeg[frame + 5] = jpeg[frame + 7] = '\xF0';
    expectPictureRefused(file("a.jpg", jpeg), "is too large: 61448 x 61448 pixels");
}

TEST_F(Program, BytesOfFilesDoNotReachTheTerminal) {
    // A name, and what a file holds.
    const Outcome ofName = run({"absdiff",
                                scratch / "a\x9B"
                                          "2J\xC2\x9B"
                                          "b.pnm",
                                "b", "-o", "c.ppm"});
    const Outcome ofKey =
        run({"detect", file("a.pgm", pattern(30, 30, 1)), "-o", scratch / "o.ppm", "--cascade",
             file("c.json", std::string("{\"\xC2\x9B"
                                        "2J\": 1, \"\xC2\x9B"
                                        "2J\": 2}"))});
    const Outcome ofChunk =
        run({"absdiff", LUMCV_TEST_DATA "/csi.png", LUMCV_TEST_DATA "/csi.png", "-o", scratch / "o.ppm"});
    for (const Outcome& outcome : {ofName, ofKey, ofChunk}) {
        EXPECT_EQ(2, outcome.status);
        EXPECT_EQ(std::string::npos, outcome.errors.find('\x9B')) << outcome.errors;
        EXPECT_EQ(std::string::npos, outcome.errors.find('\xC2')) << outcome.errors;
    }
}

#ifndef __SANITIZE_ADDRESS__ // which takes more addresses than these limits leave
TEST_F(Program, WhateverMemoryThereIsAPictureIsWrittenOrRefused) {
    // Noise does not compress, so that the encoder's memory grows most.
    Picture noise(1200, 900, 3);
    std::mt19937 engine(1);
    for (Lum8u& element : noise.elements) element = static_cast<Lum8u>(engine());
    const std::string a = file("a.ppm", noise);
    const std::string b = file("b.ppm", Picture(1200, 900, 3));
    const std::string out = scratch / (tools::hasPngAndJpeg() ? "out.png" : "out.ppm");
    // The libraries must have their place; what happens then is tried.
    int kibibytes = 8 * 1024;
    while (runAfter("ulimit -v " + std::to_string(kibibytes) + ";", {"--version"}).status != 0)
        kibibytes += 1024;
    int refused = 0;
    for (const int most = kibibytes + 32 * 1024; kibibytes <= most; kibibytes += 2 * 1024) {
        const Outcome outcome =
            runAfter("ulimit -v " + std::to_string(kibibytes) + ";", {"absdiff", a, b, "-o", out});
        if (outcome.status != 0) {
            ++refused;
            expectRefused(outcome, "memory");
        }
    }
    EXPECT_GT(refused, 0);
    EXPECT_TRUE(std::filesystem::exists(out));
}
#endif

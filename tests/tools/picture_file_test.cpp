#include "picture_file.h"

#include <random>

#include "codecs/codec.h"
#include "failure.h"
#include "program.h"

using namespace support;
using tools::Picture;

namespace {

class PictureFile : public testing::Test {
  protected:
    ScratchDirectory scratch;

    Picture read(const std::string& bytes) {
        writeBytes(scratch / "picture", bytes);
        return tools::readPicture(scratch / "picture");
    }
    std::string refusal(const std::string& bytes) {
        try {
            read(bytes);
        } catch (const tools::Failure& failure) {
            return failure.what();
        }
        return "";
    }
    std::string encoded(const std::string& name, const Picture& picture) {
        tools::writePicture(scratch / name, picture);
        return bytesOf(scratch / name);
    }
};

/// A name of each format that holds colour in this build.
std::vector<std::string> colourFiles() {
    if (tools::hasPngAndJpeg()) return {"p.png", "p.jpg", "p.ppm", "p.pam"};
    return {"p.ppm", "p.pam"};
}

Picture pattern(int width, int height, int channels) {
    Picture picture(width, height, channels);
    for (std::size_t i = 0; i < picture.elements.size(); ++i)
        picture.elements[i] = static_cast<Lum8u>(i * i * 31 + i);
    return picture;
}

} // namespace

TEST_F(PictureFile, ExactFormatsGiveBackWhatWasWritten) {
    for (const int channels : {1, 3})
        for (const auto& [width, height] : {std::pair{1, 1}, {5, 3}, {64, 2}, {3, 71}})
            for (const std::string name : {"p.png", "p.ppm", "p.pgm", "p.pnm", "p.pam"}) {
                if (channels == 3 && name == "p.pgm") continue;
                if (!tools::hasPngAndJpeg() && name == "p.png") continue;
                const Picture picture = pattern(width, height, channels);
                const Picture result = read(encoded(name, picture));
                if (result.channels == channels) {
                    EXPECT_EQ(picture, result) << name;
                } else {
                    // Grey in a PPM file: three equal channels.
                    for (std::size_t i = 0; i < result.elements.size(); ++i)
                        ASSERT_EQ(picture.elements[i / 3], result.elements[i]);
                }
            }
}

TEST_F(PictureFile, JpegGivesBackNearlyWhatWasWritten) {
    if (!tools::hasPngAndJpeg()) GTEST_SKIP() << "this build reads no JPEG";
    Picture picture(40, 24, 3);
    for (int y = 0; y < 24; ++y)
        for (int x = 0; x < 40; ++x)
            for (int c = 0; c < 3; ++c) picture.at(x, y, c) = static_cast<Lum8u>(40 + 3 * x + 2 * y);
    const Picture result = read(encoded("p.jpg", picture));
    ASSERT_EQ(picture.elements.size(), result.elements.size());
    for (std::size_t i = 0; i < picture.elements.size(); ++i)
        ASSERT_NEAR(picture.elements[i], result.elements[i], 8);
}

TEST_F(PictureFile, PnmInDigitsAndWithComments) {
    const Picture grey = read("P2 # made by hand\n#another\n 3 2 255\n0 128 255\n1 2 3");
    EXPECT_EQ(3, grey.width);
    EXPECT_EQ(2, grey.height);
    EXPECT_EQ((std::vector<Lum8u>{0, 128, 255, 1, 2, 3}), grey.elements);
    const Picture colour = read("P3\n1 1\n255\n9 8 7\n");
    EXPECT_EQ(3, colour.channels);
    EXPECT_EQ((std::vector<Lum8u>{9, 8, 7}), colour.elements);
}

TEST_F(PictureFile, PnmValuesAreBroughtTo255) {
    EXPECT_EQ((std::vector<Lum8u>{0, 85, 255}), read("P2 3 1 3 0 1 3").elements);
    EXPECT_EQ((std::vector<Lum8u>{255, 128, 0}),
              read(std::string("P5 3 1 65535\n\xFF\xFF\x80\x80\x00\x00", 19)).elements);
    EXPECT_EQ((std::vector<Lum8u>{255}), read("P2 1 1 100 4000").elements) << "beyond the largest value";
}

TEST_F(PictureFile, PnmThatIsDamagedIsRefused) {
    EXPECT_NE("", refusal("P5 3 x 255\nabcdefghi"));
    EXPECT_NE("", refusal("P5 3 -3 255\nabcdefghi"));
    EXPECT_NE("", refusal("P5 1 1 0\na"));
    EXPECT_NE("", refusal("P5 1 1 65536\nab"));
    EXPECT_NE("", refusal("P2 2 1 255 7 seven"));
    EXPECT_NE("", refusal("P5 2 2"));
    EXPECT_NE("", refusal("P5 2 2 255"));
    EXPECT_NE("", refusal("P5#"));
}

TEST_F(PictureFile, EveryCutIsRefused) {
    for (const std::string& name : colourFiles()) {
        const std::string whole = encoded(name, pattern(19, 11, 3));
        ASSERT_EQ("", refusal(whole));
        for (std::size_t length = 0; length < whole.size(); ++length)
            ASSERT_NE("", refusal(whole.substr(0, length)))
                << name << " cut to " << length << " of " << whole.size();
    }
}

TEST_F(PictureFile, JpegKeepsGreyGrey) {
    if (!tools::hasPngAndJpeg()) GTEST_SKIP() << "this build reads no JPEG";
    EXPECT_EQ(1, read(encoded("p.jpg", pattern(19, 11, 1))).channels);
}

TEST_F(PictureFile, BuildsWithoutTheLibrariesSayWhatTheyRead) {
    if (tools::hasPngAndJpeg()) GTEST_SKIP() << "this build reads all formats";
    EXPECT_NE(std::string::npos,
              refusal("\x89PNG\r\n\x1A\n").find("is a PNG picture, and this build reads PNM"));
    EXPECT_NE(std::string::npos, refusal("\xFF\xD8\xFF").find("is a JPEG picture, and this build reads PNM"));
    EXPECT_THROW(encoded("p.png", pattern(3, 3, 1)), tools::Failure);
    EXPECT_THROW(encoded("p.jpg", pattern(3, 3, 1)), tools::Failure);
}

TEST_F(PictureFile, AJpegTableOfTooManyCodesIsRefused) {
    if (!tools::hasPngAndJpeg()) GTEST_SKIP() << "this build reads no JPEG";
    std::string bytes = encoded("p.jpg", pattern(16, 16, 3));
    const std::size_t tables = bytes.find("\xFF\xC4");
    ASSERT_NE(std::string::npos, tables);
    // Marker, length and kind of the table; then the counts of codes of 1 to 16 bits.
    for (const std::size_t count : {tables + 19, tables + 20}) bytes[count] = '\xFF';
    EXPECT_NE(std::string::npos, refusal(bytes).find("is damaged"));
}

TEST_F(PictureFile, AJpegScanOfTablesThatAreNotThereIsRefused) {
    if (!tools::hasPngAndJpeg()) GTEST_SKIP() << "this build reads no JPEG";
    // In the scan's header: marker, length, components; then each component and the numbers of its tables.
    for (const char tables : {'\x33', '\x77', '\xFF'}) {
        std::string bytes = encoded("p.jpg", pattern(16, 16, 1));
        const std::size_t scan = bytes.find("\xFF\xDA");
        ASSERT_NE(std::string::npos, scan);
        bytes[scan + 6] = tables;
        EXPECT_NE(std::string::npos, refusal(bytes).find("is damaged")) << refusal(bytes);
    }
}

TEST_F(PictureFile, FilesThatOnceDidHarmAreRefused) {
    for (const auto& [name, reason] : {std::pair{"base_noDQT.jpg", "Quantization table"},
                                       {"col_noDQT.jpg", "Quantization table"},
                                       {"bomb_base.jpg", "its data cannot fill 16383 x 16383 pixels"},
                                       {"crash_2_1.jpg", "a table of codes is missing"},
                                       {"csi.png", "invalid chunk type"}}) {
        const std::string text = refusal(bytesOf(LUMCV_TEST_DATA + std::string("/") + name));
        EXPECT_NE(std::string::npos, text.find(tools::hasPngAndJpeg() ? reason : "this build reads PNM"))
            << name << ": " << text;
    }
}

TEST_F(PictureFile, DataThatCannotFillTheSizeAreRefused) {
    if (!tools::hasPngAndJpeg()) GTEST_SKIP() << "this build reads PNM and PAM only";
    // A PNG file tells its size in bytes 16 to 23, a JPEG file after the marker of its frame.
    std::string png = encoded("p.png", pattern(9, 9, 1));
    png[18] = png[22] = '\x20';
    EXPECT_NE(std::string::npos, refusal(png).find("cannot fill 8201 x 8201 pixels")) << refusal(png);
    std::string jpeg = encoded("p.jpg", pattern(9, 9, 1));
    const std::size_t frame = jpeg.find("\xFF\xC0");
    ASSERT_NE(std::string::npos, frame);
    jpeg[frame + 5] = jpeg[frame + 7] = '\x20';
    EXPECT_NE(std::string::npos, refusal(jpeg).find("cannot fill 8201 x 8201 pixels")) << refusal(jpeg);
}

TEST_F(PictureFile, PamOfEveryDepth) {
    const auto pam = [](int depth, const std::string& samples, const std::string& more = "") {
        return "P7\n# a comment\nWIDTH 1\nHEIGHT 2\nDEPTH " + std::to_string(depth) + "\nMAXVAL 255\n" +
               more + "ENDHDR\n" + samples;
    };
    EXPECT_EQ((std::vector<Lum8u>{97, 98}), read(pam(1, "ab")).elements);
    EXPECT_EQ((std::vector<Lum8u>{97, 99}), read(pam(2, "abcd", "TUPLTYPE GRAYSCALE_ALPHA\n")).elements);
    EXPECT_EQ((std::vector<Lum8u>{97, 98, 99, 100, 101, 102}), read(pam(3, "abcdef")).elements);
    EXPECT_EQ((std::vector<Lum8u>{97, 98, 99, 101, 102, 103}), read(pam(4, "abcdefgh")).elements);
    EXPECT_NE(std::string::npos, refusal(pam(5, "abcdefghij")).find("channels"));
    EXPECT_NE(std::string::npos, refusal(pam(3, "abcde")).find("is cut short"));
    EXPECT_NE(std::string::npos, refusal("P7\nDEPTH 1\nMAXVAL 1\nENDHDR\na").find("no size"));
}

TEST_F(PictureFile, BitsAreBlackWhereTheyAreSet) {
    EXPECT_EQ((std::vector<Lum8u>{255, 0, 0, 255}), read("P1\n2 2\n0110").elements);
    const Picture wide = read(std::string("P4\n9 2\n\x80\x80\x01\x00", 11));
    EXPECT_EQ((std::vector<Lum8u>{0, 255, 255, 255, 255, 255, 255, 255, 0, 255, 255, 255, 255, 255, 255, 255,
                                  0, 255}),
              wide.elements);
    EXPECT_NE("", refusal("P1\n2 2\n012"));
    EXPECT_NE("", refusal(std::string("P4\n9 2\n\x80\x80\x01", 10)));
}

TEST_F(PictureFile, SizesInMessagesAreThoseOfTheFile) {
    EXPECT_NE(
        std::string::npos,
        refusal("P5 99999999999999999999 5 255 ").find("is too large: 99999999999999999999 x 5 pixels"));
    if (!tools::hasPngAndJpeg()) return;
    std::string png = encoded("p.png", pattern(8, 8, 1));
    png[16] = '\xFF';
    EXPECT_NE(std::string::npos, refusal(png).find("is too large: 4278190088 x 8 pixels")) << refusal(png);
}

TEST_F(PictureFile, AnEmptyFileIsCalledEmpty) { EXPECT_NE(std::string::npos, refusal("").find("is empty")); }

TEST_F(PictureFile, PngOfEveryKindIsRead) {
    if (!tools::hasPngAndJpeg()) GTEST_SKIP() << "this build reads no PNG";
    // Names tell the kind of pixels and their depth; all hold one colour, (85, 170, 255) or the grey 85.
    for (const std::string name : {"grey-1", "grey-2", "grey-4", "grey-8", "grey-16", "grey-alpha",
                                   "colour-8", "colour-16", "palette-2", "colour-alpha", "interlaced"}) {
        const Picture picture = tools::readPicture(LUMCV_TEST_DATA "/kinds/" + name + ".png");
        EXPECT_EQ(11, picture.width) << name;
        EXPECT_EQ(9, picture.height) << name;
        const bool isGrey = name.find("grey") == 0;
        ASSERT_EQ(isGrey ? 1 : 3, picture.channels) << name;
        const Lum8u grey = name == "grey-1" ? 255 : 85;
        for (std::size_t i = 0; i < picture.elements.size(); ++i)
            ASSERT_EQ(isGrey ? grey : 85 * (1 + i % 3), picture.elements[i]) << name;
    }
}

TEST_F(PictureFile, DamagedFilesAreReadOrRefused) {
    const unsigned seed = 20211130;
    SCOPED_TRACE(seed);
    std::mt19937 engine(seed);
    for (const std::string& name : colourFiles()) {
        const std::string whole = encoded(name, pattern(23, 14, 3));
        for (int round = 0; round < 400; ++round) {
            std::string damaged = whole;
            for (unsigned i = 0; i < 1 + round % 4U; ++i)
                damaged[engine() % damaged.size()] = static_cast<char>(engine());
            if (refusal(damaged).empty()) {
                const Picture picture = tools::readPicture(scratch / "picture");
                ASSERT_EQ(picture.elements.size(),
                          static_cast<std::size_t>(picture.width) * picture.height * picture.channels);
            }
        }
    }
}

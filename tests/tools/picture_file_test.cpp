#include "picture_file.h"

#include <random>

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
            for (const char* name : {"p.png", "p.ppm", "p.pgm"}) {
                if (channels == 3 && std::string(name) == "p.pgm") continue;
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
    for (const char* name : {"p.png", "p.jpg", "p.ppm"}) {
        const std::string whole = encoded(name, pattern(19, 11, 3));
        ASSERT_EQ("", refusal(whole));
        for (std::size_t length = 0; length < whole.size(); ++length)
            ASSERT_NE("", refusal(whole.substr(0, length)))
                << name << " cut to " << length << " of " << whole.size();
    }
}

TEST_F(PictureFile, AJpegTableOfTooManyCodesIsRefused) {
    std::string bytes = encoded("p.jpg", pattern(16, 16, 3));
    const std::size_t tables = bytes.find("\xFF\xC4");
    ASSERT_NE(std::string::npos, tables);
    // Marker, length and kind of the table; then the counts of codes of 1 to 16 bits.
    for (const std::size_t count : {tables + 19, tables + 20}) bytes[count] = '\xFF';
    EXPECT_NE(std::string::npos, refusal(bytes).find("a table of codes has too many"));
}

TEST_F(PictureFile, DamagedFilesAreReadOrRefused) {
    const unsigned seed = 20211130;
    SCOPED_TRACE(seed);
    std::mt19937 engine(seed);
    for (const char* name : {"p.png", "p.jpg", "p.ppm"}) {
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

TEST_F(PictureFile, AWrittenFileHasOrdinaryRights) {
    encoded("p.png", pattern(4, 4, 1));
    const mode_t mask = umask(0);
    umask(mask);
    const auto rights = std::filesystem::status(scratch / "p.png").permissions();
    EXPECT_EQ(0666U & ~mask, static_cast<unsigned>(rights));
}

#include "cascade.h"
#include "failure.h"
#include "picture_file.h"
#include "program.h"

using namespace support;
using tools::Picture;

namespace {

const std::string discCascade = LUMCV_SHARE "/cascades/bright-disc.json";

class CascadeFile : public testing::Test {
  protected:
    ScratchDirectory scratch;

    std::string fileOf(const std::string& text) {
        writeBytes(scratch / "cascade.json", text);
        return scratch / "cascade.json";
    }
    tools::Cascade read(const std::string& text) { return tools::readCascade(fileOf(text)); }
    /// The shipped cascade, with one place of its text changed.
    std::string changed(const std::string& from, const std::string& to) {
        std::string text = bytesOf(discCascade);
        const std::size_t at = text.find(from);
        EXPECT_NE(std::string::npos, at) << from;
        return text.replace(at, from.size(), to);
    }
    void expectCascadeRefused(const std::string& text, const std::string& reason) {
        tools::writePicture(scratch / "picture.pgm", Picture(30, 30));
        const Outcome outcome =
            run({"detect", scratch / "picture.pgm", "-o", scratch / "out.pnm", "--cascade", fileOf(text)});
        expectRefused(outcome, reason);
        EXPECT_LT(outcome.errors.size(), 1000U);
        EXPECT_FALSE(std::filesystem::exists(scratch / "out.pnm"));
    }
};

} // namespace

TEST_F(CascadeFile, CascadesThatAreNotJsonAreRefused) {
    for (const char* text :
         {"{", "[1, 2", "{\"format\": }", "P5 3 3 255", "{\"threshold\": 1e999}", "\x80\xFF"})
        expectCascadeRefused(text, "is not JSON");
    expectCascadeRefused(bytesOf(discCascade).substr(0, 400), "is not JSON");
    expectCascadeRefused("", "is empty");
}

TEST_F(CascadeFile, MalformedCascadesAreRefusedWithTheirPlace) {
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

TEST_F(CascadeFile, NestingWithoutEndIsRefused) {
    expectCascadeRefused(std::string(2000000, '['), "is not JSON");
}

TEST_F(CascadeFile, RectanglesLieInTheWindowOnEverySide) {
    const std::string rectangle = "[6, 6, 8, 8, 6.25]";
    EXPECT_NO_THROW(read(changed(rectangle, "[19, 19, 1, 1, 6.25]")));
    EXPECT_NO_THROW(read(changed(rectangle, "[0, 0, 20, 20, 6.25]")));
    for (const auto& [changedTo, place] :
         {std::pair{"[20, 6, 1, 8, 6.25]", "rectangles[1][0] must be from 0 to 19"},
          {"[-1, 6, 1, 8, 6.25]", "rectangles[1][0] must be from 0 to 19"},
          {"[6, 20, 8, 1, 6.25]", "rectangles[1][1] must be from 0 to 19"},
          {"[6, 6, 15, 8, 6.25]", "rectangles[1][2] must be from 1 to 14"},
          {"[6, 6, 0, 8, 6.25]", "rectangles[1][2] must be from 1 to 14"},
          {"[6, 7, 8, 14, 6.25]", "rectangles[1][3] must be from 1 to 13"},
          {"[6, 7, 8, 0, 6.25]", "rectangles[1][3] must be from 1 to 13"}})
        expectCascadeRefused(changed(rectangle, changedTo), place);
    expectCascadeRefused(changed("[3, 3, 14, 14]", "[3, 3, 14, 18]"), "object[3] must be from 1 to 17");
}

TEST_F(CascadeFile, WindowsHaveSidesOf512AtMost) {
    const LumSize window = read(changed("[20, 20]", "[512, 512]")).window;
    EXPECT_EQ(512, window.width);
    EXPECT_EQ(512, window.height);
    expectCascadeRefused(changed("[20, 20]", "[513, 20]"), "window[0] must be from 1 to 512");
    expectCascadeRefused(changed("[20, 20]", "[20, 513]"), "window[1] must be from 1 to 512");
}

TEST_F(CascadeFile, LeastHitsAreOneToAMillion) {
    EXPECT_EQ(1000000, read(changed("\"leastHits\": 3", "\"leastHits\": 1000000")).leastHits);
    for (const char* hits : {"0", "1000001", "4294967297", "9223372036854775808", "18446744073709551615"})
        expectCascadeRefused(changed("\"leastHits\": 3", std::string("\"leastHits\": ") + hits),
                             "leastHits must be from 1 to 1000000");
    expectCascadeRefused(changed("\"leastHits\": 3", "\"leastHits\": 18446744073709551616"),
                         "leastHits must be a whole number");
}

TEST_F(CascadeFile, PlacesNameTheStageAndTheClassifier) {
    const std::string third = "[0, 5, 2, 10, -20.0]], \"threshold\": ";
    expectCascadeRefused(changed(third + "0.4", third + "null"),
                         "stages[1].classifiers[2].threshold must be a number");
    expectCascadeRefused(changed("\"threshold\": 1.5,", "\"threshold\": 1.5, \"more\": 1,"),
                         "stages[0].more is not a key");
    expectCascadeRefused(changed("\"threshold\": 0.95,", "\"threshold\": 0.95, \"more\": 1,"),
                         "stages[0].classifiers[0].more is not a key");
}

TEST_F(CascadeFile, KeyThatIsThereTwiceIsRefused) {
    expectCascadeRefused(changed("\"leastHits\": 3,", "\"leastHits\": 3, \"leastHits\": 4,"),
                         "leastHits is there twice");
    expectCascadeRefused(changed("\"threshold\": 1.5,", "\"threshold\": 1.5, \"threshold\": 1.5,"),
                         "threshold is there twice");
    expectCascadeRefused(changed("\"below\": 0,", "\"below\": 0, \"below\": 0,"), "below is there twice");
    const std::string text = bytesOf(discCascade);
    expectCascadeRefused(text.substr(0, text.rfind('}')) + ", \"name\": \"after the stages\"}",
                         "name is there twice");
    // Keys of an object that has ended are no longer in the way.
    EXPECT_EQ(2U, read(text).stages[0].counts.size());
}

TEST_F(CascadeFile, BytesBehindANULAreNotIgnored) {
    const std::string text = bytesOf(discCascade);
    for (const std::string& after : {std::string(1, '\0'), std::string("\0more", 5)})
        expectCascadeRefused(text + after, "is not JSON: it holds a NUL");
}

TEST_F(CascadeFile, MessagesAreWholeAndShortWhateverTheFileHolds) {
    const auto withKey = [&](const std::string& key) {
        return changed("\"leastHits\": 3,", "\"leastHits\": 3, \"" + key + "\": 1,");
    };
    expectCascadeRefused(withKey("a\\u0000b"), "a b is not a key of this format");
    const std::string sixty(60, 'k');
    expectCascadeRefused(withKey(sixty), ": " + sixty + " is not a key");
    expectCascadeRefused(withKey(sixty + std::string(10000, 'k')), ": " + sixty + "... is not a key");
    expectCascadeRefused(changed("\"leastHits\": 3,", "\"" + sixty + "k\": 1, \"" + sixty + "k\": 1,"),
                         ": " + sixty + "... is there twice");
    // Two bytes of three of the character that lies across the end.
    expectCascadeRefused(withKey(std::string(58, 'k') + "\u20AC\u20AC"),
                         ": " + std::string(58, 'k') + "... is not");
    expectCascadeRefused("\"" + std::string(10000, 'k'), "is not JSON");
    expectCascadeRefused(changed("0.95", std::string(10000, '9')), "is not JSON");
}

TEST_F(CascadeFile, ThresholdsAreHeldTimesThePixelsOfTheWindow) {
    EXPECT_EQ(0.95F * 400, read(bytesOf(discCascade)).stages[0].thresholds[0]);
    EXPECT_EQ(0.95F * 1000, read(changed("[20, 20]", "[40, 25]")).stages[0].thresholds[0]);
}

TEST_F(CascadeFile, NumbersAreFloatsAndThresholdsStaySoOverTheWindow) {
    const auto withThreshold = [&](const std::string& number) {
        return changed("\"threshold\": 0.95", "\"threshold\": " + number);
    };
    EXPECT_EQ(8e35F * 400, read(withThreshold("8e35")).stages[0].thresholds[0]);
    EXPECT_EQ(-8e35F * 400, read(withThreshold("-8e35")).stages[0].thresholds[0]);
    for (const char* number : {"9e35", "-9e35", "3e38", "1e39", "-1e300"})
        expectCascadeRefused(withThreshold(number), "stages[0].classifiers[0].threshold is too large");
    expectCascadeRefused(changed("6.25", "1e39"), "stages[0].classifiers[0].rectangles[1][4] is too large");
}

TEST_F(CascadeFile, LeastDeviationBelowZeroIsRefusedHoweverSmall) {
    for (const char* deviation : {"-1", "-1e-50"})
        expectCascadeRefused(
            changed("\"leastDeviation\": 20", std::string("\"leastDeviation\": ") + deviation),
            "leastDeviation must not be below 0");
    EXPECT_EQ(0, read(changed("\"leastDeviation\": 20", "\"leastDeviation\": 1e-50")).leastDeviation);
}

TEST_F(CascadeFile, FilesOfMoreThan16MiBAreRefused) {
    const std::string text = bytesOf(discCascade);
    const std::size_t most = std::size_t{16} << 20;
    EXPECT_NO_THROW(read(text + std::string(most - text.size(), ' ')));
    expectCascadeRefused(text + std::string(most + 1 - text.size(), ' '), "is larger than 16 MiB");
}

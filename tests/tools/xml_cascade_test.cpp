#include "xml_cascade.h"

#include <random>
#include <sstream>

#include "cascade.h"
#include "detector.h"
#include "failure.h"
#include "program.h"
#include "scene.h"
#include "tones.h"

using namespace support;
using tools::Cascade;
using tools::Picture;

namespace {

/// Whether this build reads XML.
bool hasXml() {
    try {
        tools::readXmlCascade("<a/>");
    } catch (const tools::Failure& failure) {
        return std::string(failure.what()).find("reads JSON only") == std::string::npos;
    }
    return true;
}

class XmlCascade : public testing::Test {
  protected:
    ScratchDirectory scratch;

    void SetUp() override {
        if (!hasXml()) GTEST_SKIP() << "this build reads no XML";
    }
    Cascade read(const std::string& text) {
        writeBytes(scratch / "cascade.xml", text);
        return tools::readCascade(scratch / "cascade.xml");
    }
    void expectXmlRefused(const std::string& text, const std::string& reason) {
        try {
            read(text);
            ADD_FAILURE() << "accepted, but: " << reason;
        } catch (const tools::Failure& failure) {
            EXPECT_NE(std::string::npos, std::string(failure.what()).find(reason)) << failure.what();
        }
    }
};

/// One stage of one stump in a window of 8 x 6, in the later form.
std::string indexedForm(const std::string& rects = "<_>2 1 4 4 -1.</_><_>3 2 2 2 4.</_>",
                        const std::string& tilted = "0", const std::string& nodes = "0 -1 0 -2.5e-1") {
    return "<?xml version=\"1.0\"?>\n<storage>\n<cascade type_id=\"any\">\n<stageType>BOOST</stageType>\n"
           "<featureType>HAAR</featureType>\n<height>6</height>\n<width>8</width>\n<stageParams>\n"
           "<maxWeakCount>1</maxWeakCount></stageParams>\n<featureParams>\n<maxCatCount>0</maxCatCount>"
           "</featureParams>\n<stageNum>1</stageNum>\n<stages>\n<!-- stage 0 -->\n<_>\n"
           "<maxWeakCount>1</maxWeakCount>\n<stageThreshold>5.0e-01</"
           "stageThreshold>\n<weakClassifiers>\n<_>\n"
           "<internalNodes>\n            " +
           nodes +
           "</internalNodes>\n<leafValues>\n            1. "
           "2.</leafValues></_></weakClassifiers></_></stages>\n"
           "<features>\n<_>\n<rects>\n" +
           rects + "</rects>\n<tilted>" + tilted + "</tilted></_></features></cascade>\n</storage>\n";
}

/// The same in the earlier form.
std::string nestedForm() {
    return "<?xml version=\"1.0\"?>\n<storage>\n<my_cascade type_id=\"any\">\n<size>\n8 "
           "6</size>\n<stages>\n<_>\n"
           "<trees>\n<_>\n<_>\n<feature>\n<rects>\n<_>\n2 1 4 4 -1.</_>\n<_>\n3 2 2 2 4.</_></rects>\n"
           "<tilted>0</tilted></feature>\n<threshold>-2.5e-001</threshold>\n<left_val>1.</left_val>\n"
           "<right_val>2.</right_val></_></_></trees>\n<stage_threshold>0.5</stage_threshold>\n"
           "<parent>-1</parent>\n<next>-1</next></_></stages></my_cascade>\n</storage>\n";
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    const std::size_t at = text.find(from);
    EXPECT_NE(std::string::npos, at) << from;
    return text.replace(at, from.size(), to);
}

void expectTheStump(const Cascade& cascade) {
    EXPECT_EQ(8, cascade.window.width);
    EXPECT_EQ(6, cascade.window.height);
    ASSERT_TRUE(cascade.deviationArea);
    EXPECT_EQ(6, cascade.deviationArea->width);
    EXPECT_EQ(4, cascade.deviationArea->height);
    ASSERT_EQ(1U, cascade.stages.size());
    const tools::CascadeStage& stage = cascade.stages[0];
    EXPECT_EQ(0.5F - 1e-5F, stage.threshold);
    EXPECT_EQ((std::vector<Lum32s>{2}), stage.counts);
    EXPECT_EQ((std::vector<Lum32f>{-1, 4}), stage.weights);
    EXPECT_EQ((std::vector<Lum32f>{-0.25F * 24}), stage.thresholds);
    EXPECT_EQ((std::vector<Lum32f>{1}), stage.below);
    EXPECT_EQ((std::vector<Lum32f>{2}), stage.above);
    EXPECT_EQ(3, stage.rectangles[1].x);
    EXPECT_EQ(2, stage.rectangles[1].y);
}

Picture noise(LumSize size, unsigned seed) {
    Picture picture(size.width, size.height);
    std::mt19937 engine(seed);
    for (Lum8u& element : picture.elements) element = static_cast<Lum8u>(engine());
    return picture;
}

/// Sum of the pixels of a tilted rectangle: pairs of pixels along its sides, the first below the top corner.
double tiltedSum(const Picture& picture, const LumRect& rect) {
    double sum = 0;
    for (int i = 0; i < rect.width; ++i)
        for (int k = 0; k < rect.height; ++k)
            for (int pixel = -1; pixel <= 0; ++pixel)
                sum += picture.at(rect.x + i - k + pixel, rect.y + 1 + i + k);
    return sum;
}

double deviationInside(const Picture& picture) {
    double sum = 0;
    double squares = 0;
    const int count = (picture.width - 2) * (picture.height - 2);
    for (int y = 1; y + 1 < picture.height; ++y)
        for (int x = 1; x + 1 < picture.width; ++x) {
            sum += picture.at(x, y);
            squares += picture.at(x, y) * picture.at(x, y);
        }
    return std::sqrt(squares / count - sum / count * sum / count);
}

} // namespace

TEST_F(XmlCascade, BothFormsGiveTheSameStages) {
    expectTheStump(read(indexedForm()));
    expectTheStump(read(nestedForm()));
}

TEST_F(XmlCascade, LeavesMayBeNamedInEitherOrder) {
    const Cascade cascade = read(indexedForm("<_>2 1 4 4 -1.</_><_>3 2 2 2 4.</_>", "0", "-1 0 0 -2.5e-1"));
    EXPECT_EQ((std::vector<Lum32f>{2}), cascade.stages[0].below);
    EXPECT_EQ((std::vector<Lum32f>{1}), cascade.stages[0].above);
}

TEST_F(XmlCascade, WhatIsNotReadIsRefusedWithTheReason) {
    const std::string whole = indexedForm();
    expectXmlRefused("<a>", "is not XML");
    expectXmlRefused(whole.substr(0, whole.size() / 2), "is not XML");
    expectXmlRefused("<a/>", "holds no cascade");
    expectXmlRefused(replaced(whole, "BOOST", "OTHER"), "stageType is OTHER; only BOOST is read");
    expectXmlRefused(replaced(whole, "HAAR", "LBP"), "featureType is LBP; only HAAR is read");
    expectXmlRefused(replaced(whole, "<maxCatCount>0", "<maxCatCount>256"), "categories");
    expectXmlRefused(replaced(whole, "0 -1 0 -2.5e-1", "1 0 0 1. -1 -2 0 2."),
                     "a tree of more than one node");
    expectXmlRefused(replaced(whole, "0 -1 0 -2.5e-1", "0 1 0 1."), "a tree of depth above one");
    expectXmlRefused(replaced(whole, "0 -1 0 -2.5e-1", "0 -1 1 1."), "names a feature that is not there");
    expectXmlRefused(replaced(whole, "0 -1 0 -2.5e-1", "0 -1 0 nan"), "too large a threshold");
    expectXmlRefused(replaced(whole, "1. 2.</leaf", "1.</leaf"), "leafValues must be two numbers");
    expectXmlRefused(replaced(whole, "1. 2.</leaf", "1. 1e39</leaf"), "leafValues");
    expectXmlRefused(replaced(whole, "3 2 2 2 4.", "3 2 6 2 4."), "must lie in the window");
    expectXmlRefused(replaced(whole, "3 2 2 2 4.", "3 2 2 2"), "x, y, width, height and weight");
    expectXmlRefused(replaced(whole, "3 2 2 2 4.", "3 2 2.5 2 4."), "whole numbers");
    expectXmlRefused(replaced(whole, "<width>8", "<width>2"), "a window of 3 to 512 pixels");
    expectXmlRefused(replaced(whole, "<width>8", "<width>513"), "a window of 3 to 512 pixels");
    expectXmlRefused(replaced(whole, "<stageThreshold>5.0e-01</stageThreshold>", ""),
                     "has no stageThreshold");
    const std::string nested = nestedForm();
    expectXmlRefused(replaced(nested, "<left_val>1.</left_val>", "<left_node>1</left_node>"),
                     "a tree of depth above one");
    expectXmlRefused(replaced(nested, "</_></_></trees>", "</_><_/></_></trees>"),
                     "a tree of more than one node");
    expectXmlRefused(replaced(nested, "<next>-1", "<next>1"), "a branch of a tree of stages");
}

TEST_F(XmlCascade, PlacesAreTold) {
    expectXmlRefused(replaced(indexedForm(), "3 2 2 2 4.", "3 2 6 2 4."),
                     "/storage/cascade/features/_/rects/_");
}

TEST_F(XmlCascade, TiltedRectanglesLieInTheWindow) {
    EXPECT_NO_THROW(read(indexedForm("<_>3 0 3 3 1.</_>", "1")));
    for (const char* rect : {"2 0 3 3 1.", "6 0 3 3 1.", "3 1 3 3 1."})
        expectXmlRefused(indexedForm(std::string("<_>").append(rect).append("</_>"), "1"),
                         "must lie in the window");
}

TEST_F(XmlCascade, EntitiesAndNestingDoNoHarm) {
    const std::string bomb =
        R"(<?xml version="1.0"?><!DOCTYPE a [<!ENTITY b "bbbbbbbbbb"><!ENTITY c "&b;&b;&b;&b;&b;&b;">)"
        R"(<!ENTITY d "&c;&c;&c;&c;&c;&c;"><!ENTITY e "&d;&d;&d;&d;&d;&d;">]><a>&e;</a>)";
    expectXmlRefused(bomb, "holds no cascade");
    std::string deep;
    for (int i = 0; i < 500000; ++i) deep += "<a>";
    expectXmlRefused(deep, "is not XML");
}

TEST_F(XmlCascade, TiltedStumpsDecideAsTheirPixelsSay) {
    // The bright middle of a window against all of it, both tilted.
    const std::string rects = "<_>4 0 3 3 -1.</_><_>4 1 2 2 2.25</_>";
    Cascade cascade = read(indexedForm(rects, "1", "0 -1 0 0.05"));
    cascade.leastDeviation = 0;
    cascade.leastHits = 1;
    cascade.stages[0].threshold = 1.5F;
    int found = 0;
    for (unsigned seed = 1; seed <= 60; ++seed) {
        const Picture picture = noise(cascade.window, seed);
        const double sum = 2.25 * tiltedSum(picture, {4, 1, 2, 2}) - tiltedSum(picture, {4, 0, 3, 3});
        const bool expected = sum >= 0.05 * 24 * deviationInside(picture);
        EXPECT_EQ(expected ? 1U : 0U, tools::detect(picture, cascade).size()) << "seed " << seed;
        found += expected ? 1 : 0;
    }
    EXPECT_GT(found, 5);
    EXPECT_LT(found, 55);
}

TEST_F(XmlCascade, UprightAndTiltedStumpsShareAStage) {
    std::string text = indexedForm("<_>4 0 3 3 -1.</_><_>4 1 2 2 2.25</_>", "1", "0 -1 0 0.05");
    text = replaced(text, "1. 2.</leafValues></_>",
                    "0. 1.</leafValues></_><_><internalNodes>0 -1 1 0.</internalNodes><leafValues>0. "
                    "1.</leafValues></_>");
    text = replaced(text, "<features>\n",
                    "<features>\n<_><rects><_>0 0 8 6 -1.</_><_>2 2 4 2 6.</_></rects></_>");
    // The first feature is upright now, the second one tilted.
    text = replaced(text, "0 -1 0 0.05", "0 -1 1 0.05");
    text = replaced(text, "0 -1 1 0.<", "0 -1 0 0.<");
    Cascade cascade = read(text);
    EXPECT_EQ((std::vector<Lum8u>{1, 0}), cascade.stages[0].tilted);
    cascade.leastDeviation = 0;
    cascade.leastHits = 1;
    cascade.stages[0].threshold = 1.5F;
    int found = 0;
    for (unsigned seed = 1; seed <= 60; ++seed) {
        const Picture picture = noise(cascade.window, seed);
        const double tilted = 2.25 * tiltedSum(picture, {4, 1, 2, 2}) - tiltedSum(picture, {4, 0, 3, 3});
        double upright = 0;
        for (int y = 0; y < 6; ++y)
            for (int x = 0; x < 8; ++x)
                upright += picture.at(x, y) * (x >= 2 && x < 6 && y >= 2 && y < 4 ? 5 : -1);
        const bool expected = tilted >= 0.05 * 24 * deviationInside(picture) && upright >= 0;
        EXPECT_EQ(expected ? 1U : 0U, tools::detect(picture, cascade).size()) << "seed " << seed;
        found += expected ? 1 : 0;
    }
    EXPECT_GT(found, 3);
}

TEST_F(XmlCascade, DiscsAreFoundByTheCarriedCascadeInXml) {
    const Cascade discs = tools::brightDiscCascade();
    std::ostringstream features;
    std::ostringstream stages;
    int number = 0;
    for (const tools::CascadeStage& stage : discs.stages) {
        stages << "<_><stageThreshold>" << stage.threshold << "</stageThreshold><weakClassifiers>";
        std::size_t rect = 0;
        for (std::size_t i = 0; i < stage.counts.size(); ++i) {
            // Thresholds are for the mean over the window there, for the sum over its inside here.
            stages << "<_><internalNodes>0 -1 " << number++ << ' ' << stage.thresholds[i] / (18 * 18)
                   << "</internalNodes><leafValues>" << stage.below[i] << ' ' << stage.above[i]
                   << "</leafValues></_>";
            features << "<_><rects>";
            for (int k = 0; k < stage.counts[i]; ++k, ++rect) {
                const LumRect& r = stage.rectangles[rect];
                features << "<_>" << r.x << ' ' << r.y << ' ' << r.width << ' ' << r.height << ' '
                         << stage.weights[rect] << "</_>";
            }
            features << "</rects><tilted>0</tilted></_>";
        }
        stages << "</weakClassifiers></_>";
    }
    Cascade cascade =
        read("<storage><cascade><stageType>BOOST</stageType><featureType>HAAR</featureType>"
             "<height>20</height><width>20</width><stages>" +
             stages.str() + "</stages><features>" + features.str() + "</features></cascade></storage>");
    cascade.object = discs.object;
    cascade.leastDeviation = discs.leastDeviation;
    const Picture scene = tools::greyOf(tools::builtInScene());
    const auto expected = tools::detect(scene, discs);
    const auto found = tools::detect(scene, cascade);
    ASSERT_EQ(expected.size(), found.size());
    for (const tools::Detection& disc : expected)
        EXPECT_TRUE(std::any_of(found.begin(), found.end(),
                                [&](const tools::Detection& other) {
                                    return std::abs(disc.box.x - other.box.x) < 5 &&
                                           std::abs(disc.box.y - other.box.y) < 5 &&
                                           std::abs(disc.box.width - other.box.width) < 7;
                                }))
            << disc.box.x << ", " << disc.box.y;
}

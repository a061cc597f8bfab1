#include "drawing.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "exported_names.h"
#include "gallery/panel.h"
#include "scene.h"
#include "tones.h"

using namespace tools;

namespace {

/// How many pixels are not black.
int marked(const Picture& picture) {
    int count = 0;
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x)
            count += std::any_of(&picture.at(x, y), &picture.at(x, y) + picture.channels,
                                 [](Lum8u v) { return v != 0; });
    return count;
}

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();

} // namespace

TEST(Drawing, ABoxIsAnOutlineInsideItsRectangle) {
    Picture picture(20, 10, 3);
    drawBox(picture, {2, 1, 10, 6}, orange, 2);
    EXPECT_EQ(10 * 6 - 6 * 2, marked(picture));
    EXPECT_EQ(orange.red, picture.at(2, 1, 0));
    EXPECT_EQ(orange.blue, picture.at(11, 6, 2));
    EXPECT_EQ(0, picture.at(4, 3, 0));
    EXPECT_EQ(0, picture.at(12, 6, 0));
}

TEST(Drawing, ALineReachesBothEnds) {
    Picture picture(30, 20, 1);
    drawLine(picture, {3, 17}, {26, 2}, white);
    EXPECT_EQ(255, picture.at(3, 17));
    EXPECT_EQ(255, picture.at(26, 2));
    EXPECT_EQ(24, marked(picture));
}

TEST(Drawing, ACrossLeavesItsCentreFree) {
    Picture picture(40, 40, 3);
    drawCross(picture, {20, 20}, lime);
    EXPECT_EQ(0, picture.at(20, 20, 1));
    EXPECT_EQ(lime.green, picture.at(11, 20, 1));
    EXPECT_EQ(lime.green, picture.at(20, 28, 1));
}

TEST(Drawing, WhatLiesOutsideIsLeftOut) {
    Picture picture(12, 12, 3);
    drawBox(picture, {-100, -100, 50, 50}, white, 3);
    drawBox(picture, {11, 11, 50, 50}, white, 3);
    drawLine(picture, {-50, 5}, {60, 5}, cyan);
    drawCross(picture, {0, 11}, magenta);
    drawText(picture, -7, 4, "beyond both edges", white);
    drawLabel(picture, 8, 8, "label");
    EXPECT_NE(0, picture.at(0, 5, 1));
}

TEST(Drawing, TextKeepsToItsSize) {
    const std::string text = "sigma 2.5\nk = 7";
    const LumSize size = textSize(text, 2);
    Picture picture(size.width + 20, size.height + 20, 1);
    drawText(picture, 10, 10, text, white, 2);
    EXPECT_GT(marked(picture), 200);
    Picture within = picture;
    fillBox(within, {10, 10, size.width, size.height}, black);
    EXPECT_EQ(0, marked(within));
    drawText(picture, 0, 0, "\xC3\xA9\t\x7F", white);
}

TEST(Drawing, APlotShowsItsCurves) {
    const Picture picture =
        plot({300, 100}, {{{0, 1, 2, 3}, orange, "rising"}, {{3, notANumber, 0}, cyan, "broken"}}, 0, 3);
    int oranges = 0;
    for (int x = 0; x < 300; ++x)
        for (int y = 0; y < 100; ++y)
            oranges += picture.at(x, y, 0) == orange.red && picture.at(x, y, 2) == orange.blue;
    EXPECT_GT(oranges, 200);
    EXPECT_EQ(5, plot({5, 5}, {{{1}, white, "point"}, {{}, white, "nothing"}}, 1, 1).width);
}

TEST(Tones, GreyAndColour) {
    Picture colour(2, 1, 3);
    std::copy_n(std::begin({255, 255, 255, 10, 200, 30}), 6, colour.data());
    const Picture grey = greyOf(colour);
    EXPECT_EQ(255, grey.at(0, 0));
    EXPECT_EQ(static_cast<int>(0.299 * 10 + 0.587 * 200 + 0.114 * 30 + 0.5), grey.at(1, 0));
    EXPECT_EQ(grey, greyOf(colourOf(grey)));
}

TEST(Tones, ScalingClampsAndRounds) {
    Plane<Lum32f> plane(7, 1);
    plane.elements = {-5, 0, 0.5F, 1, 7, notANumber, infinity};
    EXPECT_EQ((std::vector<Lum8u>{0, 0, 128, 255, 255, 0, 255}), scaled(plane, 0, 1).elements);
    EXPECT_EQ((std::vector<Lum8u>{64, 128, 134, 140, 217, 0, 255}), scaledAboutZero(plane, 10).elements);
}

TEST(Tones, TheRangeIsThatOfFiniteValues) {
    Plane<Lum32f> plane(4, 1);
    plane.elements = {notANumber, -2, infinity, 6};
    EXPECT_EQ((std::pair{-2.0, 6.0}), rangeOf(plane));
    EXPECT_EQ((std::vector<Lum8u>{0, 0, 255, 255}), scaled(plane).elements);
    Plane<Lum32s> flat(3, 1, 1, 9);
    EXPECT_EQ((std::vector<Lum8u>{0, 0, 0}), scaled(flat).elements);
}

TEST(Tones, FalseColoursRunFromDarkToBright) {
    int before = -1;
    for (int place = 0; place < 256; ++place) {
        const auto colour = falseColour(static_cast<Lum8u>(place));
        const int brightness = 299 * colour[0] + 587 * colour[1] + 114 * colour[2];
        EXPECT_GE(brightness, before);
        before = brightness;
    }
}

TEST(Tones, AShiftRepeatsTheEdge) {
    Picture picture(3, 1);
    picture.elements = {1, 2, 3};
    EXPECT_EQ((std::vector<Lum8u>{1, 1, 2}), shifted(picture, 1, 0).elements);
    EXPECT_EQ((std::vector<Lum8u>{3, 3, 3}), shifted(picture, -9, 4).elements);
}

TEST(Scene, IsTheSameEverywhere) {
    const Picture scene = builtInScene();
    EXPECT_EQ(960, scene.width);
    EXPECT_EQ(540, scene.height);
    EXPECT_EQ(3, scene.channels);
    std::uint32_t sum = 2166136261U;
    for (const Lum8u value : scene.elements) sum = (sum ^ value) * 16777619U;
    EXPECT_EQ(2089393365U, sum);
}

TEST(ExportedNames, AreThoseOfTheList) {
    std::vector<std::string> expected;
#define LUM_EXPORT(ordinal, name, ...) expected.push_back(#name);
#include "entry/exports.inc"
#undef LUM_EXPORT
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(expected, exportedNames());
}

TEST(Gallery, FilesOfPanelsHaveNamesOfTheirOwn) {
    const Subject subject{"p", {4, 4}, Picture(4, 4, 3), Picture(4, 4), Picture(4, 4, 3)};
    std::vector<std::string> files;
    for (const PanelSection& section : panelSections())
        for (const Panel& panel : section.panels(subject)) {
            files.push_back(panel.file);
            EXPECT_EQ(std::string::npos,
                      panel.file.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789-"));
            EXPECT_FALSE(panel.title.empty());
        }
    std::sort(files.begin(), files.end());
    EXPECT_EQ(files.end(), std::adjacent_find(files.begin(), files.end()));
}

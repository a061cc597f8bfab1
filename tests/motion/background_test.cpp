#include <cmath>

#include "motion/background_model.h"

using namespace backgrounds;

TEST(Background, SecondFrameOfOneColourIsBackground) {
    Model model({4, 2});
    model.show({10, 20, 30});
    EXPECT_EQ(0, model.show({12, 20, 30}));
    const auto modes = model.modes();
    ASSERT_EQ(1U, modes.size());
    // 1 / min(4, 100): a = 0.25, w = 0.75 - 0.0125 + 0.25, q = a / w, and the weight is normalised to 1.
    const float decay = static_cast<float>(0.25 * static_cast<double>(0.05F));
    const float w = 0.75F - decay + 0.25F;
    EXPECT_EQ(1, modes[0].weight);
    EXPECT_EQ(10 - 0.25F / w * (10.0F - 12.0F), modes[0].mean[0]);
    EXPECT_EQ(225 + 0.25F / w * (4.0F - 225), modes[0].variance);
}

TEST(Background, FirstFrameGivesEveryPixelOneMode) {
    Model model({9, 3});
    EXPECT_EQ(255, model.show({10, 20, 30}));
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 9; ++x) {
            ASSERT_EQ(255, model.result.at(x, y));
            const auto modes = model.modes(x, y);
            ASSERT_EQ(1U, modes.size());
            EXPECT_EQ(1, modes[0].weight);
            EXPECT_EQ(225, modes[0].variance);
            EXPECT_EQ((std::array<float, 3>{10, 20, 30}), modes[0].mean);
        }
}

TEST(Background, FirstFrameWithShadowsIsItsOwnShadow) {
    Model model({4, 1}, 4, withShadows());
    EXPECT_EQ(127, model.show({10, 20, 30}));
}

TEST(Background, BlackFirstFrameStaysForegroundWithShadows) {
    Model model({4, 1}, 4, withShadows());
    EXPECT_EQ(255, model.show({0, 0, 0}));
}

TEST(Background, NewColourIsAModeOfTheLearningRate) {
    Model model({1, 1});
    model.show({10, 20, 30});
    EXPECT_EQ(255, model.show({200, 200, 200}, 0.125));
    const auto modes = model.modes();
    ASSERT_EQ(2U, modes.size());
    EXPECT_EQ(0.125F, modes[1].weight);
    EXPECT_EQ(0.875F, modes[0].weight);
    EXPECT_EQ(225, modes[1].variance);
    EXPECT_EQ(200, modes[1].mean[2]);
}

TEST(Background, NewModeMovesBeforeModesOfNoGreaterWeight) {
    Model model({1, 1});
    model.show({10, 20, 30});
    // Both have a weight of a half: the new one does not stay after its equal.
    model.show({200, 200, 200}, 0.5);
    EXPECT_EQ(200, model.modes()[0].mean[0]);
    EXPECT_EQ(10, model.modes()[1].mean[0]);
}

TEST(Background, FirstFrameUsesTheAutomaticRate) {
    // A rate of 0 would leave nothing to learn; the first frame's mode has the weight 1 in any case, so the second
    // frame's own rate tells: it counts as frame 2.
    LumFGMMParams params = usual;
    params.complexityPrior = 0;
    Model model({1, 1}, 4, params);
    model.show({10, 20, 30}, 0);
    EXPECT_EQ(255, model.show({200, 200, 200}, -1));
    EXPECT_EQ(0.25F, model.modes()[1].weight);
}

TEST(Background, HistoryBoundsTheAutomaticRate) {
    LumFGMMParams params = usual;
    params.history = 8;
    params.complexityPrior = 0;
    Model model({1, 1}, 4, params);
    for (int frame = 0; frame < 9; ++frame) model.show({10, 20, 30});
    model.show({200, 200, 200});
    EXPECT_EQ(0.125F, model.modes()[1].weight);
}

TEST(Background, HistoryOfZeroCountsAsOne) {
    LumFGMMParams params = usual;
    params.history = 0;
    Model model({1, 1}, 4, params);
    model.show({10, 20, 30});
    EXPECT_EQ(255, model.show({200, 200, 200}));
    EXPECT_EQ(1, model.modes()[0].weight);
    EXPECT_EQ(200, model.modes()[0].mean[0]);
}

TEST(Background, RateOfZeroKeepsTheWeights) {
    LumFGMMParams params = usual;
    params.complexityPrior = 0;
    Model model({1, 1}, 4, params);
    model.show({10, 20, 30});
    model.show({200, 200, 200}, 0.25);
    for (int frame = 0; frame < 10; ++frame) EXPECT_EQ(0, model.show({10, 20, 30}, 0));
    EXPECT_EQ(0.75F, model.modes()[0].weight);
    EXPECT_EQ(0.25F, model.modes()[1].weight);
}

TEST(Background, RateOfZeroAndAWeightOfZeroMakeNoNan) {
    LumFGMMParams params = usual;
    params.complexityPrior = 0;
    Model model({1, 1}, 4, params);
    model.show({10, 20, 30});
    // A new mode of weight 0, which the next frames match.
    model.show({200, 200, 200}, 0);
    for (int frame = 0; frame < 3; ++frame) model.show({200, 200, 201}, 0);
    for (const Mode& mode : model.modes()) {
        EXPECT_FALSE(std::isnan(mode.weight) || std::isnan(mode.variance) || std::isnan(mode.mean[0]));
        EXPECT_TRUE(mode.mean[0] == 10 || mode.mean[0] == 200);
    }
}

TEST(Background, TotalOfZeroLeavesTheWeights) {
    // A decay above every weight prunes the only mode.
    LumFGMMParams params = usual;
    params.complexityPrior = 10;
    Model model({1, 1}, 4, params);
    model.show({10, 20, 30});
    model.show({10, 20, 30}, 0.5);
    const auto modes = model.modes();
    ASSERT_EQ(1U, modes.size());
    EXPECT_EQ(0, modes[0].weight);
    const Colour background = model.drawBackground();
    EXPECT_EQ(0, background.red + background.green + background.blue);
}

TEST(Background, PrunedModeStaysWithoutWeight) {
    LumFGMMParams params = usual;
    params.complexityPrior = 0.5F;
    Model model({1, 1}, 4, params);
    model.show({10, 20, 30});
    model.show({200, 200, 200}, 0.05);
    for (int frame = 0; frame < 40; ++frame) model.show({10, 20, 30}, 0.05);
    const auto modes = model.modes();
    ASSERT_EQ(2U, modes.size());
    EXPECT_EQ(1, modes[0].weight);
    EXPECT_EQ(0, modes[1].weight);
}

TEST(Background, PruningLeavesTheListsLastModeOut) {
    // Three modes; the middle one falls below the decay first, and the last one, untouched, keeps its weight.
    LumFGMMParams params = usual;
    params.complexityPrior = 0;
    Model model({1, 1}, 4, params);
    model.show({10, 10, 10});
    model.show({100, 100, 100}, 0.0625);
    model.show({200, 200, 200}, 0.0625);
    auto before = model.modes();
    ASSERT_EQ(3U, before.size());
    ASSERT_GE(before[1].weight, before[2].weight);
    params.complexityPrior = 1;
    model.show({10, 10, 10}, 0.0625, &params);
    const auto after = model.modes();
    ASSERT_EQ(3U, after.size());
    EXPECT_EQ(0, after[1].weight);
    EXPECT_EQ(before[2].weight, after[2].weight);
    EXPECT_EQ(before[2].mean, after[2].mean);
}

TEST(Background, SmallerLimitKeepsStoredModesAndReplacesTheLast) {
    LumFGMMParams params = usual;
    params.complexityPrior = 0;
    Model model({2, 1}, 4, params);
    for (int i = 0; i < 4; ++i) model.show({60 * i, 60 * i, 60 * i}, 0.05);
    ASSERT_EQ(4U, model.modes(1).size());
    const auto before = model.modes(1);
    params.mixtures = 2;
    model.show({255, 0, 0}, 0.05, &params);
    const auto after = model.modes(1);
    ASSERT_EQ(4U, after.size());
    // The last one gave its place to the new colour, which then moved up among equals.
    int unknown = 0;
    for (const Mode& mode : after) unknown += mode.mean[1] == 0 && mode.mean[0] == 255;
    EXPECT_EQ(1, unknown);
    for (int k = 0; k < 3; ++k) {
        int found = 0;
        for (const Mode& mode : after) found += mode.mean == before[k].mean;
        EXPECT_EQ(1, found) << k;
    }
}

TEST(Background, SmallerLimitStopsGrowth) {
    LumFGMMParams params = usual;
    params.mixtures = 2;
    Model model({1, 1});
    model.show({0, 0, 0}, -1, &params);
    for (int i = 1; i < 4; ++i) model.show({60 * i, 60 * i, 60 * i}, 0.05);
    EXPECT_EQ(2U, model.modes().size());
}

TEST(Background, FullListReplacesItsLastMode) {
    Model model({1, 1}, 2);
    model.show({0, 0, 0});
    model.show({100, 100, 100}, 0.25);
    model.show({250, 250, 250}, 0.125);
    const auto modes = model.modes();
    ASSERT_EQ(2U, modes.size());
    EXPECT_EQ(0, modes[0].mean[0]);
    EXPECT_EQ(250, modes[1].mean[0]);
    EXPECT_EQ(0.125F, modes[1].weight);
}

TEST(Background, MoreThanAByteOfMixturesServesAsAByte) {
    LumFGMMParams params = usual;
    params.varInit = 0.01F;
    params.complexityPrior = 0;
    Model model({1, 1}, 300, params);
    for (int i = 0; i < 300; ++i) model.show({i % 256, i / 256 * 200, 9}, 0.001);
    EXPECT_EQ(255U, model.modes().size());
}

TEST(Background, BlackMeanEndsTheSearchForShadows) {
    LumFGMMParams params = withShadows();
    params.complexityPrior = 0;
    Model model({1, 1}, 4, params);
    // Black has the greater weight, so that it is looked at before the colour of which 120 would be a shadow.
    model.show({0, 0, 0});
    model.show({200, 200, 200}, 0.25);
    EXPECT_EQ(255, model.show({120, 120, 120}, 0.01));
}

TEST(Background, DarkenedBackgroundIsShadowDownToTheRatio) {
    for (const auto& [value, expected] :
         {std::pair{180, 127}, {110, 127}, {99, 255}, {40, 255}, {250, 255}}) {
        LumFGMMParams params = withShadows();
        params.matchBackground = 4;
        params.varInit = 20;
        Model model({1, 1}, 4, params);
        for (int frame = 0; frame < 20; ++frame) model.show({200, 200, 200});
        EXPECT_EQ(expected, model.show({value, value, value}, 0.01)) << value;
    }
}

TEST(Background, SearchForShadowsEndsWithTheBackground) {
    // A second colour of little weight is background only where the ratio asks for more weight than the first one has.
    for (const auto& [ratio, expected] : {std::pair{0.5F, 255}, {0.9999F, 127}}) {
        LumFGMMParams params = withShadows();
        params.backgroundRatio = ratio;
        params.complexityPrior = 0;
        Model model({1, 1}, 4, params);
        for (int frame = 0; frame < 30; ++frame) model.show({200, 10, 10});
        model.show({10, 200, 10}, 0.01);
        EXPECT_EQ(expected, model.show({7, 130, 7}, 0.001)) << ratio;
    }
}

TEST(Background, PictureIsTheMeanOfTheLeadingModes) {
    LumFGMMParams params = usual;
    params.complexityPrior = 0;
    Model model({1, 1}, 4, params);
    model.show({10, 20, 31});
    model.show({110, 120, 131}, 0.25);
    // The weights are 0.75 and 0.25; the first one alone does not exceed 0.9.
    Colour c = model.drawBackground();
    EXPECT_EQ(35, c.red);
    EXPECT_EQ(45, c.green);
    EXPECT_EQ(56, c.blue);
    params.backgroundRatio = 0.7F;
    model.show({10, 20, 31}, 0, &params);
    c = model.drawBackground();
    EXPECT_EQ(10, c.red);
    EXPECT_EQ(31, c.blue);
}

TEST(Background, PictureRoundsHalvesToEven) {
    LumFGMMParams params = usual;
    params.complexityPrior = 0;
    Model model({1, 1}, 4, params);
    model.show({10, 11, 255});
    model.show({211, 212, 0}, 0.5);
    const Colour c = model.drawBackground();
    EXPECT_EQ(110, c.red);   // 110.5
    EXPECT_EQ(112, c.green); // 111.5
    EXPECT_EQ(128, c.blue);  // 127.5
}

TEST(Background, PictureBeforeTheFirstFrameIsBlack) {
    Model model({6, 2});
    model.background.fill([](int, int, int) { return 99; });
    model.drawBackground();
    for (Lum8u value : model.background.pixels()) EXPECT_EQ(0, value);
    EXPECT_TRUE(model.background.outsideUntouched());
}

TEST(Background, ParametersGivenOnceStay) {
    Model model({1, 1});
    model.show({10, 20, 30});
    LumFGMMParams params = usual;
    params.varInit = 77;
    model.show({100, 20, 30}, 0.1, &params);
    model.show({10, 220, 30}, 0.1);
    int found = 0;
    for (const Mode& mode : model.modes()) found += mode.variance == 77;
    EXPECT_EQ(2, found);
}

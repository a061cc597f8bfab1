#include <array>
#include <cmath>

#include "lumcv.h"
#include "support/argument_order.h"
#include "support/guarded_image.h"

using namespace support;

namespace {

constexpr LumFGMMParams usual{.history = 100,
                              .mixtures = 4,
                              .varInit = 15 * 15,
                              .varMin = 4,
                              .varMax = 75 * 75,
                              .matchBackground = 16,
                              .backgroundRatio = 0.9F,
                              .matchGenerate = 9,
                              .complexityPrior = 0.05F,
                              .shadowValue = 127,
                              .shadowEnabled = 0,
                              .shadowRatio = 0.5F};

LumFGMMParams withShadows() {
    LumFGMMParams params = usual;
    params.shadowEnabled = 1;
    return params;
}

struct Colour {
    int red, green, blue;
};

/// What a model holds, read from its block by the published layout.
struct Mode {
    float weight;
    float variance;
    std::array<float, 3> mean;
};

/// A model in a block of exactly its size, and its frames.
class Model {
  public:
    explicit Model(LumSize size, int maxMixtures = 4, LumFGMMParams params = usual, std::size_t spare = 0)
        : size_(size),
          maxMixtures_(maxMixtures),
          block_(bytesFor(size, maxMixtures), spare % 2 == 0 ? Guard::after : Guard::before, spare),
          frame(size.width, size.height, {.channels = 3, .padding = 5}),
          result(size.width, size.height, {.padding = 3}),
          background(size.width, size.height, {.channels = 3, .padding = 1}) {
        EXPECT_EQ(0, lumiFGMMInit_8u_C3R(size, maxMixtures, &params, state()));
    }

    static std::size_t bytesFor(LumSize size, int maxMixtures) {
        Lum32s bytes = 0;
        EXPECT_EQ(0, lumiFGMMGetBufferSize_8u_C3R(size, maxMixtures, &bytes));
        return bytes;
    }

    LumFGMMState* state() { return block_.as<LumFGMMState>(); }

    LumStatus run(double rate = -1, const LumFGMMParams* params = nullptr) {
        return lumiFGMMForeground_8u_C3R(frame.data(), frame.step(), result.data(), result.step(), size_,
                                         state(), params, rate);
    }
    /// A frame of one colour; what its first pixel is.
    int show(Colour c, double rate = -1, const LumFGMMParams* params = nullptr) {
        frame.fill([&](int, int, int channel) {
            return channel == 0 ? c.red : channel == 1 ? c.green : c.blue;
        });
        EXPECT_EQ(0, run(rate, params));
        return result.at(0, 0);
    }
    Colour drawBackground(int x = 0, int y = 0) {
        EXPECT_EQ(0, lumiFGMMBackground_8u_C3R(background.data(), background.step(), size_, state()));
        return {background.at(x, y, 0), background.at(x, y, 1), background.at(x, y, 2)};
    }

    std::vector<float> rowBuffer() {
        std::vector<float> row(3 * size_.width);
        std::memcpy(row.data(), arrays()[0], sizeof(float) * row.size());
        return row;
    }
    std::vector<Mode> modes(int x = 0, int y = 0) {
        const auto arrays = this->arrays();
        const std::size_t pixel = static_cast<std::size_t>(size_.width) * y + x;
        std::vector<Mode> all;
        for (int k = 0; k < arrays[3][pixel]; ++k) {
            Mode mode;
            std::memcpy(mode.mean.data(), arrays[1] + 12 * (pixel * maxMixtures_ + k), 12);
            std::memcpy(&mode.weight, arrays[2] + 8 * (pixel * maxMixtures_ + k), 8);
            all.push_back(mode);
        }
        return all;
    }

  private:
    /// rowBuffer, means, weights with variances, and counts.
    std::array<const unsigned char*, 4> arrays() {
        const auto place = reinterpret_cast<std::uintptr_t>(block_.as());
        const auto* head = reinterpret_cast<unsigned char*>((place + 31) / 32 * 32);
        std::array<const unsigned char*, 4> all;
        std::memcpy(all.data(), head + sizeof(void*), sizeof all);
        return all;
    }

    LumSize size_;
    int maxMixtures_;
    GuardedBlock block_;

  public:
    GuardedImage<Lum8u> frame;
    GuardedImage<Lum8u> result;
    GuardedImage<Lum8u> background;
};

/// The model of one pixel, step by step.
class PlainPixel {
  public:
    PlainPixel(const LumFGMMParams& params, int limit) : p_(params), limit_(limit) {}

    int see(std::array<int, 3> colour, float a, float d) {
        const std::array<float, 3> p{static_cast<float>(colour[0]), static_cast<float>(colour[1]),
                                     static_cast<float>(colour[2])};
        bool matched = false;
        bool background = false;
        float total = 0;
        std::size_t c = modes.size();
        for (std::size_t k = 0; k < c; ++k) {
            std::size_t place = k;
            float w = modes[k].weight * (1 - a) - d;
            if (!matched) {
                const float v = modes[k].variance;
                const float distance = squared(modes[k].mean, p);
                if (total < p_.backgroundRatio && distance < p_.matchBackground * v) background = true;
                if (distance < p_.matchGenerate * v) {
                    matched = true;
                    w = w + a;
                    const float q = w == 0 ? 0 : a / w;
                    for (int i = 0; i < 3; ++i)
                        modes[k].mean[i] = modes[k].mean[i] - q * (modes[k].mean[i] - p[i]);
                    float spread = v + q * (distance - v);
                    if (spread < p_.varMin) spread = p_.varMin;
                    if (spread > p_.varMax) spread = p_.varMax;
                    modes[k].variance = spread;
                    for (; place > 0 && !(modes[place - 1].weight > w); --place)
                        std::swap(modes[place], modes[place - 1]);
                }
            }
            if (w < d) {
                w = 0;
                --c;
            }
            total = total + w;
            modes[place].weight = w;
        }
        if (total != 0)
            for (std::size_t k = 0; k < c; ++k) modes[k].weight = modes[k].weight / total;
        if (!matched) add(p, a);
        if (background) return 0;
        return p_.shadowEnabled != 0 && isShadow(p) ? p_.shadowValue : 255;
    }

    std::vector<Mode> modes;

  private:
    static float squared(const std::array<float, 3>& a, const std::array<float, 3>& b) {
        float sum = (a[0] - b[0]) * (a[0] - b[0]);
        sum = sum + (a[1] - b[1]) * (a[1] - b[1]);
        return sum + (a[2] - b[2]) * (a[2] - b[2]);
    }
    static float dot(const std::array<float, 3>& a, const std::array<float, 3>& b) {
        return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
    }
    void add(const std::array<float, 3>& p, float a) {
        if (static_cast<int>(modes.size()) < limit_) modes.push_back({});
        std::size_t place = modes.size() - 1;
        modes[place] = {1, p_.varInit, p};
        if (modes.size() == 1) return;
        modes[place].weight = a;
        for (std::size_t k = 0; k < place; ++k) modes[k].weight = modes[k].weight * (1 - a);
        for (; place > 0 && !(modes[place - 1].weight > a); --place)
            std::swap(modes[place], modes[place - 1]);
    }
    bool isShadow(const std::array<float, 3>& p) const {
        float total = 0;
        for (const Mode& mode : modes) {
            const float num = dot(p, mode.mean);
            const float den = dot(mode.mean, mode.mean);
            if (den == 0) return false;
            if (num <= den && num >= p_.shadowRatio * den) {
                const float r = num / den;
                const float distance = squared({r * mode.mean[0], r * mode.mean[1], r * mode.mean[2]}, p);
                if (p_.matchBackground * mode.variance * r * r > distance) return true;
            }
            total = total + mode.weight;
            if (total > p_.backgroundRatio) return false;
        }
        return false;
    }

    LumFGMMParams p_;
    int limit_;
};

} // namespace

TEST(Background, SizeIsTheSumOfTheArrays) {
    // 35 + 29 + ... rounded up to 32 each.
    EXPECT_EQ(64U + 128 + 256 + 1280 + 864 + 256, Model::bytesFor({7, 5}, 3));
    EXPECT_EQ(32U + 128 + 32 + 32 + 32 + 256, Model::bytesFor({1, 1}, 1));
}

TEST(Background, SizeWrapsInThirtyTwoBits) {
    Lum32s bytes = 0;
    EXPECT_EQ(0, lumiFGMMGetBufferSize_8u_C3R({65536, 32768}, 2, &bytes));
    EXPECT_EQ(static_cast<Lum32s>(0x80000000U + 128 + 1572864 + 256), bytes);
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

TEST(Background, InitClearsEveryByteOfTheBlock) {
    for (LumSize size : {LumSize{1, 1}, LumSize{7, 5}}) {
        const std::size_t bytes = Model::bytesFor(size, 3);
        std::vector<unsigned char> memory(bytes + 64, 0xA5);
        unsigned char* block =
            memory.data() + (64 - reinterpret_cast<std::uintptr_t>(memory.data()) % 64) % 32 + 5;
        ASSERT_EQ(0, lumiFGMMInit_8u_C3R(size, 3, &usual, reinterpret_cast<LumFGMMState*>(block)));
        auto* head =
            reinterpret_cast<unsigned char*>((reinterpret_cast<std::uintptr_t>(block) + 31) / 32 * 32);
        EXPECT_EQ(0, *reinterpret_cast<std::uint32_t*>(head));
        for (unsigned char* p = block; p != block + bytes; ++p)
            if (p < head || p >= head + 96) {
                ASSERT_EQ(0, *p) << p - block;
            }
        EXPECT_EQ(0xA5, block[bytes]);
    }
}

TEST(Background, EveryStepAgreesWithThePlainModel) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 engine(seed);
    for (int run = 0; run < 60; ++run) {
        LumFGMMParams params = usual;
        params.mixtures = 1 + static_cast<int>(engine() % 5);
        params.shadowEnabled = engine() % 2;
        params.varInit = 4 + static_cast<float>(engine() % 300);
        params.complexityPrior = engine() % 3 == 0 ? 0 : engine() % 3 == 0 ? 1.5F : 0.05F;
        params.backgroundRatio = engine() % 2 == 0 ? 0.9F : 0.5F;
        params.history = 1 + engine() % 60;
        const int limit = params.mixtures + static_cast<int>(engine() % 2);
        const LumSize size{1 + static_cast<int>(engine() % 40), 2};
        Model model(size, limit, params, engine() % 32);
        std::vector<PlainPixel> plain(size.width * size.height, PlainPixel(params, params.mixtures));
        const int palette = 2 + static_cast<int>(engine() % 4);
        for (int frame = 1; frame <= 60; ++frame) {
            model.frame.fill([&](int, int, int) { return engine() % palette * 60 + engine() % 20; });
            const double asked = engine() % 3 == 0 ? static_cast<double>(engine() % 100) / 200 : -1;
            ASSERT_EQ(0, model.run(asked, frame == 1 ? &params : nullptr));
            const double rate =
                asked < 0 || frame == 1 ? 1.0 / std::min<unsigned>(2 * frame, params.history) : asked;
            const auto a = static_cast<float>(rate);
            const auto d =
                static_cast<float>(static_cast<double>(a) * static_cast<double>(params.complexityPrior));
            for (int y = 0; y < size.height; ++y)
                for (int x = 0; x < size.width; ++x) {
                    PlainPixel& pixel = plain[y * size.width + x];
                    const int expected = pixel.see(
                        {model.frame.at(x, y, 0), model.frame.at(x, y, 1), model.frame.at(x, y, 2)}, a, d);
                    ASSERT_EQ(expected, model.result.at(x, y)) << frame << ": " << x << ", " << y;
                    const auto modes = model.modes(x, y);
                    ASSERT_EQ(pixel.modes.size(), modes.size());
                    for (std::size_t k = 0; k < modes.size(); ++k)
                        ASSERT_EQ(0, std::memcmp(&pixel.modes[k], &modes[k], sizeof(Mode)))
                            << frame << ": " << k;
                }
            ASSERT_TRUE(model.frame.untouched() && model.result.outsideUntouched());
        }
    }
}

TEST(Background, RowBufferKeepsTheLastRowAsFloats) {
    for (int width : {1, 5, 16, 33}) {
        Model model({width, 3}, 1);
        model.frame.fillRandom(width);
        ASSERT_EQ(0, model.run());
        const std::vector<float> row = model.rowBuffer();
        for (int i = 0; i < 3 * width; ++i)
            ASSERT_EQ(static_cast<float>(model.frame.at(i / 3, 2, i % 3)), row[i]) << width << ": " << i;
    }
}

TEST(Background, ResultMayLieOnTheFrame) {
    // Each row is read before its result is written.
    Model apart({29, 4});
    Model inPlace({29, 4});
    for (int frame = 0; frame < 5; ++frame) {
        apart.frame.fillRandom(frame / 2);
        inPlace.frame.fillRandom(frame / 2);
        ASSERT_EQ(0, apart.run());
        // The result at the end of the row: its first bytes lie on pixels that come after it.
        Lum8u* const end = inPlace.frame.data() + 2 * 29;
        ASSERT_EQ(0, lumiFGMMForeground_8u_C3R(inPlace.frame.data(), inPlace.frame.step(), end,
                                               inPlace.frame.step(), {29, 4}, inPlace.state(), nullptr, -1));
        for (int y = 0; y < 4; ++y)
            ASSERT_EQ(0, std::memcmp(&apart.result.at(0, y), end + y * inPlace.frame.step(), 29)) << frame;
    }
}

TEST(Background, TwoThousandFramesKeepTheWeightsNearOne) {
    std::mt19937 engine(11);
    LumFGMMParams params = usual;
    params.history = 500;
    Model model({24, 16}, 5, params);
    for (int frame = 0; frame < 2000; ++frame) {
        // Noise, a lamp that blinks and a box that passes.
        model.frame.fill([&](int x, int y, int c) {
            const bool box = (x + frame / 3) % 24 < 5 && y > 4 && y < 11;
            const bool lamp = x < 4 && y < 4 && frame / 7 % 2 == 0;
            return (box ? 200 : lamp ? 240 : 60 + 3 * x + 20 * c) + static_cast<int>(engine() % 9) - 4;
        });
        ASSERT_EQ(0, model.run());
        if (frame % 250 != 249) continue;
        for (int y = 0; y < 16; ++y)
            for (int x = 0; x < 24; ++x) {
                float total = 0;
                float before = 2;
                for (const Mode& mode : model.modes(x, y)) {
                    ASSERT_TRUE(mode.weight >= 0 && mode.weight <= before) << frame;
                    ASSERT_TRUE(mode.variance >= params.varMin && mode.variance <= params.varMax);
                    before = mode.weight;
                    total += mode.weight;
                }
                ASSERT_NEAR(1, total, 0.02) << frame << " at " << x << ", " << y;
            }
    }
    // What does not move is background, and the picture shows it.
    int wrong = 0;
    for (int x = 5; x < 24; ++x) wrong += model.result.at(x, 14) != 0;
    EXPECT_EQ(0, wrong);
    EXPECT_NEAR(60 + 3 * 20, model.drawBackground(20, 14).red, 2);
}

TEST(Background, SizeStatusesComeInTheirOrder) {
    struct A {
        LumSize size{4, 3};
        int maxMixtures = 2;
        Lum32s* bytes;
    };
    Lum32s bytes = -7;
    const std::vector<Fault<A>> faults{
        {"size null", 0, lumStatusNullPointer, [](A& a) { a.bytes = nullptr; }},
        {"width 0", 1, lumStatusSizeError, [](A& a) { a.size.width = 0; }},
        {"height negative", 1, lumStatusSizeError, [](A& a) { a.size.height = -3; }},
        {"no mixtures", 2, lumStatusBadArgument, [](A& a) { a.maxMixtures = 0; }},
    };
    expectStatusesInOrder(A{.bytes = &bytes}, faults, [&](const A& a) {
        bytes = -7;
        const LumStatus status = lumiFGMMGetBufferSize_8u_C3R(a.size, a.maxMixtures, a.bytes);
        EXPECT_EQ(status != lumStatusOk, bytes == -7);
        return status;
    });
}

TEST(Background, InitStatusesComeInTheirOrder) {
    GuardedBlock block(Model::bytesFor({4, 3}, 2));
    struct A {
        LumSize size{4, 3};
        int maxMixtures = 2;
        const LumFGMMParams* params = &usual;
        LumFGMMState* state;
    };
    const std::vector<Fault<A>> faults{
        {"params null", 0, lumStatusNullPointer, [](A& a) { a.params = nullptr; }},
        {"state null", 0, lumStatusNullPointer, [](A& a) { a.state = nullptr; }},
        {"width 0", 1, lumStatusSizeError, [](A& a) { a.size.width = 0; }},
        {"height 0", 1, lumStatusSizeError, [](A& a) { a.size.height = 0; }},
        {"no mixtures", 2, lumStatusBadArgument, [](A& a) { a.maxMixtures = 0; }},
    };
    expectStatusesInOrder(A{.state = block.as<LumFGMMState>()}, faults, [&](const A& a) {
        *block.as() = 0xA5;
        const LumStatus status = lumiFGMMInit_8u_C3R(a.size, a.maxMixtures, a.params, a.state);
        EXPECT_EQ(status != lumStatusOk, *block.as() == 0xA5);
        return status;
    });
}

TEST(Background, FrameStatusesComeInTheirOrder) {
    Model model({8, 2}, 3);
    LumFGMMParams tooMany = usual;
    LumFGMMParams none = usual;
    none.mixtures = 0;
    LumFGMMParams three = usual;
    three.mixtures = 3;
    struct A {
        const Lum8u* src;
        int srcStep = 29;
        Lum8u* dst;
        int dstStep = 11;
        LumSize size{8, 2};
        LumFGMMState* state;
        const LumFGMMParams* params;
    };
    const std::vector<Fault<A>> faults{
        {"src null", 0, lumStatusNullPointer, [](A& a) { a.src = nullptr; }},
        {"dst null", 0, lumStatusNullPointer, [](A& a) { a.dst = nullptr; }},
        {"state null", 0, lumStatusNullPointer, [](A& a) { a.state = nullptr; }},
        {"srcStep 0", 1, lumStatusStepError, [](A& a) { a.srcStep = 0; }},
        {"dstStep negative", 1, lumStatusStepError, [](A& a) { a.dstStep = -1; }},
        {"width 0", 2, lumStatusSizeError, [](A& a) { a.size.width = 0; }},
        {"height 0", 2, lumStatusSizeError, [](A& a) { a.size.height = 0; }},
        {"too many mixtures", 3, lumStatusBadArgument, [&](A& a) { a.params = &tooMany; }},
        {"no mixtures", 3, lumStatusBadArgument, [&](A& a) { a.params = &none; }},
    };
    const A good{
        .src = model.frame.data(), .dst = model.result.data(), .state = model.state(), .params = &three};
    expectStatusesInOrder(good, faults, [&](const A& a) {
        model.result.fill([](int, int, int) { return 9; });
        const LumStatus status =
            lumiFGMMForeground_8u_C3R(a.src, a.srcStep, a.dst, a.dstStep, a.size, a.state, a.params, -1);
        EXPECT_EQ(status != lumStatusOk, model.result.untouched());
        if (status != lumStatusOk) {
            EXPECT_TRUE(model.modes().empty());
        }
        return status;
    });
}

TEST(Background, PictureStatusesComeInTheirOrder) {
    Model model({8, 2});
    struct A {
        Lum8u* dst;
        int dstStep = 25;
        LumSize size{8, 2};
        LumFGMMState* state;
    };
    const std::vector<Fault<A>> faults{
        {"dst null", 0, lumStatusNullPointer, [](A& a) { a.dst = nullptr; }},
        {"state null", 0, lumStatusNullPointer, [](A& a) { a.state = nullptr; }},
        {"dstStep 0", 1, lumStatusStepError, [](A& a) { a.dstStep = 0; }},
        {"width 0", 2, lumStatusSizeError, [](A& a) { a.size.width = 0; }},
        {"height 0", 2, lumStatusSizeError, [](A& a) { a.size.height = 0; }},
    };
    expectStatusesInOrder(A{.dst = model.background.data(), .state = model.state()}, faults, [&](const A& a) {
        model.background.fill([](int, int, int) { return 9; });
        const LumStatus status = lumiFGMMBackground_8u_C3R(a.dst, a.dstStep, a.size, a.state);
        EXPECT_EQ(status != lumStatusOk, model.background.untouched());
        return status;
    });
}

TEST(Background, StepsShorterThanARowAreTaken) {
    Model model({4, 1});
    EXPECT_EQ(0, lumiFGMMForeground_8u_C3R(model.frame.data(), 1, model.result.data(), 1, {4, 1},
                                           model.state(), nullptr, -1));
}

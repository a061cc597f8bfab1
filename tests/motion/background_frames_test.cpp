#include "motion/background_model.h"

using namespace backgrounds;

namespace {

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
        params.backgroundRatio = std::array{0.9F, 0.5F, 0.0F, 1.0F}[engine() % 4];
        params.matchBackground = engine() % 3 == 0 ? 5 : 16;
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

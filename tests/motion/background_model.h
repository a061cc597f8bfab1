// Background models in tests: their parameters, their memory of exact size, and what they hold.
#pragma once

#include <array>
#include <gtest/gtest.h>
#include <vector>

#include "lumcv.h"
#include "support/guarded_image.h"

namespace backgrounds {

using namespace support;

inline constexpr LumFGMMParams usual{.history = 100,
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

inline LumFGMMParams withShadows() {
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

} // namespace backgrounds

// Calls of the line searches on guarded images, and the same results from the definition.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "lumcv.h"
#include "support/guarded_image.h"
#include "support/status_checks.h"

namespace support {

inline constexpr float houghPi = 3.14159F;
inline constexpr LumPoint32f pixelAndDegree{1, houghPi / 180};
inline constexpr int untouchedLines = -77;

/// The counts of the plane, as a caller works them out.
struct HoughCounts {
    int rho;
    int theta;
    int half;

    HoughCounts(LumSize size, LumPoint32f delta)
        : rho(static_cast<int>(static_cast<float>(2 * (size.width + size.height) + 1) / delta.x)),
          theta(static_cast<int>(double{houghPi} / double{delta.y}) + 1),
          half((rho - 1) / 2) {}
};

struct HoughLines {
    LumStatus status = 0;
    int count = untouchedLines;
    /// The lines that count tells of; none of a call that has failed.
    std::vector<LumPoint32f> lines;
};

inline bool isSame(LumPoint32f a, LumPoint32f b) { return a.x == b.x && a.y == b.y; }

/// The classic search, or that of a window, with memory of exactly the queried size.
struct HoughSearch {
    LumPoint32f delta = pixelAndDegree;
    int threshold = 5;
    int maxLineCount = 20;
    LumPoint32f* range = nullptr;
    std::size_t bufferSpare = 3;

    HoughLines operator()(const GuardedImage<Lum8u>& image) const {
        Lum32s bytes = 0;
        EXPECT_STATUS(lumStatusOk, lumiHoughLineGetSize_8u_C1R(image.size(), delta, maxLineCount, &bytes));
        GuardedBlock buffer(bytes, Guard::after, bufferSpare);
        GuardedImage<Lum32f> room(2 * maxLineCount, 1);
        auto* lines = reinterpret_cast<LumPoint32f*>(room.data());
        HoughLines result;
        if (range == nullptr)
            result.status =
                lumiHoughLine_8u32f_C1R(image.data(), image.step(), image.size(), delta, threshold, lines,
                                        maxLineCount, &result.count, buffer.as());
        else
            result.status =
                lumiHoughLine_Region_8u32f_C1R(image.data(), image.step(), image.size(), lines, range,
                                               maxLineCount, &result.count, delta, threshold, buffer.as());
        if (result.count > 0) result.lines.assign(lines, lines + result.count);
        return result;
    }
};

/// The whole accumulator at once, every cell looked at.
class HoughDefinition {
  public:
    HoughDefinition(const GuardedImage<Lum8u>& image, const HoughSearch& search)
        : search_(search), counts_(image.size(), search.delta) {
        const double scale = 1 / double{search.delta.x} * 1024;
        float angle = 0;
        for (int t = 0; t < counts_.theta; ++t) {
            votes_.emplace_back(counts_.rho + 2);
            const auto c = static_cast<float>(static_cast<int>(std::cos(double{angle}) * scale));
            const auto s = static_cast<float>(static_cast<int>(std::sin(double{angle}) * scale));
            if (isInRange(static_cast<float>(t) * search.delta.y, &LumPoint32f::y)) vote(image, t, c, s);
            angle += search.delta.y;
        }
    }

    HoughLines lines() const {
        struct Peak {
            LumPoint32f line;
            int votes;
        };
        std::vector<Peak> peaks;
        for (int t = 0; t < counts_.theta; ++t)
            for (int r = 0; r < counts_.rho; ++r)
                if (isPeak(r, t))
                    peaks.push_back({{rho(r), static_cast<float>(t) * search_.delta.y}, at(r, t)});
        std::stable_sort(peaks.begin(), peaks.end(),
                         [](const Peak& a, const Peak& b) { return a.votes > b.votes; });
        HoughLines result;
        const auto capacity = static_cast<std::size_t>(search_.maxLineCount);
        result.status = peaks.size() > capacity ? lumStatusResultTruncated : lumStatusOk;
        for (std::size_t i = 0; i < std::min(peaks.size(), capacity); ++i)
            result.lines.push_back(peaks[i].line);
        result.count = static_cast<int>(result.lines.size());
        return result;
    }

  private:
    float rho(int r) const { return static_cast<float>(r - counts_.half) * search_.delta.x; }
    bool isInRange(float value, float LumPoint32f::*member) const {
        return search_.range == nullptr ||
               (value >= search_.range[0].*member && value <= search_.range[1].*member);
    }
    void vote(const GuardedImage<Lum8u>& image, int t, float c, float s) {
        for (int y = 0; y < image.size().height; ++y)
            for (int x = 0; x < image.size().width; ++x) {
                if (image.at(x, y) == 0) continue;
                const float across = static_cast<float>(x) * c;
                const float down = static_cast<float>(y) * s;
                const auto scaled = static_cast<int>(std::nearbyint(across + down));
                const int r = ((scaled + 512) >> 10) + counts_.half;
                if (r < -1 || r > counts_.rho) continue;
                if (search_.range == nullptr ||
                    (r >= 0 && r < counts_.rho && isInRange(rho(r), &LumPoint32f::x)))
                    ++votes_[t][r + 1];
            }
    }
    /// Cells right beside the plane's rows are there too.
    int at(int r, int t) const { return t < 0 || t >= counts_.theta ? 0 : votes_[t][r + 1]; }
    bool isPeak(int r, int t) const {
        const int v = at(r, t);
        return v > search_.threshold && v > at(r - 1, t) && v >= at(r + 1, t) && v > at(r, t - 1) &&
               v >= at(r, t + 1);
    }

    HoughSearch search_;
    HoughCounts counts_;
    std::vector<std::vector<int>> votes_;
};

/// A few lines of pixels, and pixels of no line.
inline void drawLines(GuardedImage<Lum8u>& image, unsigned seed, int lines, unsigned share) {
    std::mt19937 engine(seed);
    const auto [width, height] = image.size();
    image.fill([&](int, int, int) { return engine() % share == 0 ? 1 + engine() % 255 : 0; });
    for (int i = 0; i < lines; ++i) {
        const auto coordinate = [&](int bound) {
            return static_cast<int>(engine() % static_cast<unsigned>(bound));
        };
        const LumPoint from{coordinate(width), coordinate(height)};
        const LumPoint to{coordinate(width), coordinate(height)};
        const int steps = std::max({std::abs(to.x - from.x), std::abs(to.y - from.y), 1});
        for (int k = 0; k <= steps; ++k)
            image.at(from.x + (to.x - from.x) * k / steps, from.y + (to.y - from.y) * k / steps) = 255;
    }
}

} // namespace support

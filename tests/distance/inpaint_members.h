// Inpainting under test: a hole with its distances, the three calls as one, and the repair written once more, pixel by
// pixel, from its description.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

#include "lumcv.h"
#include "support/guarded_image.h"
#include "support/status_checks.h"

namespace inpainting {

using support::Guard;
using support::GuardedBlock;
using support::GuardedImage;

/// What the analysis of a mask takes beside the mask.
struct Options {
    float radius = 3;
    int method = lumInpaintFront;
    int channels = 1;
};

struct Sizes {
    Lum32s state = -1;
    Lum32s buffer = -1;
};

inline Sizes sizesOf(const GuardedImage<Lum8u>& mask, const Options& options) {
    Sizes sizes;
    EXPECT_EQ(lumStatusOk, lumiInpaintGetSize(mask.data(), mask.step(), mask.size(), options.radius,
                                              options.method, options.channels, &sizes.state, &sizes.buffer));
    return sizes;
}

/// The distances of a mask, as they usually come.
inline void march(const GuardedImage<Lum8u>& mask, GuardedImage<Lum32f>& distances) {
    Lum32s bytes = 0;
    ASSERT_EQ(lumStatusOk, lumiFastMarchingGetBufferSize_8u32f_C1R(mask.size(), &bytes));
    std::vector<Lum8u> buffer(static_cast<std::size_t>(bytes));
    ASSERT_EQ(lumStatusOk, lumiFastMarching_8u32f_C1R(mask.data(), mask.step(), distances.data(),
                                                      distances.step(), mask.size(), 0, buffer.data()));
}

/// A state in memory of exactly its size, at any address.
class State {
  public:
    State(const GuardedImage<Lum8u>& mask, const GuardedImage<Lum32f>& distances, const Options& options,
          std::size_t spare = 1)
        : options_(options),
          sizes_(sizesOf(mask, options)),
          block_(static_cast<std::size_t>(sizes_.state), Guard::after, spare) {
        GuardedBlock buffer(static_cast<std::size_t>(sizes_.buffer), Guard::after, spare);
        const auto init = options.channels == 1 ? lumiInpaintInit_8u_C1R : lumiInpaintInit_8u_C3R;
        EXPECT_EQ(lumStatusOk,
                  init(&state_, distances.data(), distances.step(), mask.data(), mask.step(), mask.size(),
                       options.radius, options.method, block_.as<>(), buffer.as<>()));
        EXPECT_EQ(static_cast<void*>(block_.as<>()), static_cast<void*>(state_));
    }

    LumInpaintState* get() { return state_; }
    const Sizes& sizes() const { return sizes_; }

    LumStatus run(const GuardedImage<Lum8u>& src, GuardedImage<Lum8u>& dst) {
        GuardedBlock buffer(static_cast<std::size_t>(sizes_.buffer), Guard::after, 3);
        const auto call = options_.channels == 1 ? lumiInpaint_8u_C1R : lumiInpaint_8u_C3R;
        return call(src.data(), src.step(), dst.data(), dst.step(), src.size(), state_, buffer.as<>());
    }

  private:
    Options options_;
    Sizes sizes_;
    GuardedBlock block_;
    LumInpaintState* state_ = nullptr;
};

/// The repair on whole pictures: no working region but the limits that it sets.
class Reference {
  public:
    Reference(const GuardedImage<Lum8u>& src, const GuardedImage<Lum8u>& mask,
              const GuardedImage<Lum32f>& distances, const Options& options)
        : o_(options),
          w_(src.size().width),
          h_(src.size().height),
          r_(static_cast<int>(options.radius)),
          image_(src.pixels()),
          distance_(distances.pixels()),
          unknown_(mask.pixels()),
          derivatives_(image_.size()) {
        int x0 = w_, y0 = h_, x1 = -1, y1 = -1;
        for (int y = 0; y < h_; ++y)
            for (int x = 0; x < w_; ++x)
                if (unknown_[at(x, y)] != 0) {
                    x0 = std::min(x0, x), x1 = std::max(x1, x), y0 = std::min(y0, y), y1 = std::max(y1, y);
                    ++maskCount_;
                }
        left_ = std::max(0, x0 - r_ - 1), top_ = std::max(0, y0 - r_ - 1);
        right_ = std::min(w_ - 1, x1 + r_ + 1), bottom_ = std::min(h_ - 1, y1 + r_ + 1);
        if (maskCount_ > 0) run();
    }

    const std::vector<Lum8u>& pixels() const { return image_; }

  private:
    struct Derivative {
        int gx, gy;
    };

    std::size_t at(int x, int y) const { return static_cast<std::size_t>(y) * w_ + x; }
    int value(int x, int y, int c) const { return image_[at(x, y) * o_.channels + c]; }
    Derivative& gradient(int x, int y, int c) { return derivatives_[at(x, y) * o_.channels + c]; }
    bool within(int x, int y) const { return x >= left_ && x <= right_ && y >= top_ && y <= bottom_; }
    bool known(int x, int y) const { return within(x, y) && unknown_[at(x, y)] == 0; }
    bool front() const { return o_.method == lumInpaintFront; }

    int one(int from, int to) const { return front() ? to - from : 2 * std::abs(to - from); }
    int both(int before, int own, int after) const {
        return front() ? 2 * (after - before) : std::abs(after - own) + std::abs(own - before);
    }

    /// One derivative with the neighbours at (-dx, -dy) and (dx, dy) that may be used; unchanged with none.
    int derive(int x, int y, int dx, int dy, int c, bool before, bool after, int unchanged) const {
        const int own = value(x, y, c);
        if (before && after) return both(value(x - dx, y - dy, c), own, value(x + dx, y + dy, c));
        if (before) return one(value(x - dx, y - dy, c), own);
        if (after) return one(own, value(x + dx, y + dy, c));
        return unchanged;
    }

    void startGradients() {
        derivatives_.assign(image_.size(), {0, 0});
        for (int y = top_; y <= bottom_; ++y)
            for (int x = left_; x <= right_; ++x) {
                if (!known(x, y)) continue;
                bool near = false;
                for (int dy = -r_; dy <= r_; ++dy)
                    for (int dx = -r_; dx <= r_; ++dx)
                        near = near || (within(x + dx, y + dy) && !known(x + dx, y + dy));
                if (!near) continue;
                const bool beside =
                    isUnknown(x - 1, y) || isUnknown(x + 1, y) || isUnknown(x, y - 1) || isUnknown(x, y + 1);
                for (int c = 0; c < o_.channels; ++c) {
                    Derivative& g = gradient(x, y, c);
                    g.gx = derive(x, y, 1, 0, c, within(x - 1, y), within(x + 1, y), 0);
                    g.gy = derive(x, y, 0, 1, c, within(x, y - 1), within(x, y + 1), 0);
                    if (!beside) continue;
                    if (isUnknown(x - 1, y) || isUnknown(x + 1, y))
                        g.gx = derive(x, y, 1, 0, c, known(x - 1, y), known(x + 1, y), 0);
                    if (isUnknown(x, y - 1) || isUnknown(x, y + 1))
                        g.gy = derive(x, y, 0, 1, c, known(x, y - 1), known(x, y + 1), 0);
                }
            }
    }
    bool isUnknown(int x, int y) const { return within(x, y) && unknown_[at(x, y)] != 0; }

    static int scaled(float difference) {
        return static_cast<int>(std::min(std::max(difference * 4096, -32768.0F), 32767.0F));
    }
    /// The gradient of the distances along one axis.
    int slope(int x, int y, int dx, int dy) const {
        const bool before = within(x - dx, y - dy), after = within(x + dx, y + dy);
        const float own = distance_[at(x, y)];
        if (before && after)
            return scaled((distance_[at(x + dx, y + dy)] - distance_[at(x - dx, y - dy)]) * 0.5F);
        if (before) return scaled(own - distance_[at(x - dx, y - dy)]);
        if (after) return scaled(distance_[at(x + dx, y + dy)] - own);
        return 0;
    }

    struct Entry {
        float distance;
        int x, y;
    };

    void run() {
        startGradients();
        std::vector<Entry> order;
        for (int y = top_; y <= bottom_; ++y)
            for (int x = left_; x <= right_; ++x) {
                const float d = distance_[at(x, y)];
                if (d > 0 && !std::isinf(d) && order.size() < maskCount_) order.push_back({d, x, y});
            }
        std::stable_sort(order.begin(), order.end(),
                         [](const Entry& a, const Entry& b) { return a.distance < b.distance; });
        for (const Entry& entry : order) repair(entry.x, entry.y);
    }

    void repair(int x, int y) {
        const bool interior = x - r_ >= left_ && x + r_ <= right_ && y - r_ >= top_ && y + r_ <= bottom_;
        const float limit = interior ? o_.radius * o_.radius : static_cast<float>(r_ * r_);
        std::vector<float> sumW(o_.channels, 1e-30F), sumI(o_.channels, 0), a(o_.channels, 0),
            b(o_.channels, 0);
        // Pixels that only the distances select have no gradient of the distances.
        const bool masked = unknown_[at(x, y)] != 0;
        const int tx = masked ? slope(x, y, 1, 0) : 0, ty = masked ? slope(x, y, 0, 1) : 0;
        for (int dy = -r_; dy <= r_; ++dy)
            for (int dx = -r_; dx <= r_; ++dx) {
                const float d2 = static_cast<float>(dx * dx + dy * dy);
                if ((dx == 0 && dy == 0) || d2 > limit || !known(x + dx, y + dy)) continue;
                const float d = std::sqrt(d2);
                for (int c = 0; c < o_.channels; ++c) {
                    const Derivative g = gradient(x + dx, y + dy, c);
                    float weight;
                    if (front()) {
                        float dir = static_cast<float>(tx * -dx + ty * -dy);
                        if (std::fabs(dir) < 2.5e-25F) dir = 2.5e-25F;
                        const float t = 0.00024414063F /
                                        (std::fabs(distance_[at(x + dx, y + dy)] - distance_[at(x, y)]) + 1);
                        const float spread = d2 * d;
                        weight = interior ? std::fabs(t * (1 / spread) * dir) : std::fabs(t / spread * dir);
                    } else {
                        const int s = std::abs(-dx * -g.gy + -dy * g.gx);
                        const float factor =
                            s == 0 ? 1e-6F
                                   : static_cast<float>(s) /
                                         std::sqrt(static_cast<float>(g.gx * g.gx + g.gy * g.gy));
                        weight = 1 / (d * (d2 * d2 + 1)) * factor;
                    }
                    sumW[c] += weight;
                    sumI[c] += static_cast<float>(value(x + dx, y + dy, c)) * weight;
                    a[c] -= static_cast<float>(g.gx) * static_cast<float>(-dx) * weight;
                    b[c] -= static_cast<float>(g.gy) * static_cast<float>(-dy) * weight;
                }
            }
        std::vector<Lum8u> result;
        for (int c = 0; c < o_.channels; ++c) {
            if (sumW[c] < 0.0001F) {
                a[c] = b[c] = 0;
                for (const auto& [dx, dy] : {std::pair{0, -1}, {-1, 0}, {1, 0}, {0, 1}}) {
                    if (!known(x + dx, y + dy)) continue;
                    const float weight = interior ? 255.0F : 1.0F;
                    sumI[c] += static_cast<float>(value(x + dx, y + dy, c)) * weight;
                    sumW[c] += weight;
                }
            }
            const float quotient = sumI[c] / sumW[c];
            double v = quotient + 0.5;
            if (front()) {
                const double da = a[c], db = b[c];
                v = (da + db) /
                        (static_cast<double>(static_cast<float>(std::sqrt(da * da + db * db))) + 1e-20) +
                    0.5 + quotient;
            }
            result.push_back(static_cast<Lum8u>(std::min(std::max(std::trunc(v), 0.0), 255.0)));
        }
        for (int c = 0; c < o_.channels; ++c) image_[at(x, y) * o_.channels + c] = result[c];
        unknown_[at(x, y)] = 0;
        refresh(x, y, true, true);
        refresh(x - 1, y, true, false);
        refresh(x + 1, y, true, false);
        refresh(x, y - 1, false, true);
        refresh(x, y + 1, false, true);
    }

    void refresh(int x, int y, bool horizontal, bool vertical) {
        if (!within(x, y)) return;
        for (int c = 0; c < o_.channels; ++c) {
            Derivative& g = gradient(x, y, c);
            if (horizontal) g.gx = derive(x, y, 1, 0, c, known(x - 1, y), known(x + 1, y), g.gx);
            if (vertical) g.gy = derive(x, y, 0, 1, c, known(x, y - 1), known(x, y + 1), g.gy);
        }
    }

    Options o_;
    int w_, h_, r_;
    int left_ = 0, top_ = 0, right_ = 0, bottom_ = 0;
    std::size_t maskCount_ = 0;
    std::vector<Lum8u> image_;
    std::vector<Lum32f> distance_;
    std::vector<Lum8u> unknown_;
    std::vector<Derivative> derivatives_;
};

} // namespace inpainting

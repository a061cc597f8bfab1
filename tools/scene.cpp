#include "scene.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace tools {
namespace {

constexpr int width = 960;
constexpr int height = 540;
constexpr float horizon = 330;
constexpr float quay = 452;

/// A colour in tones from 0 to 255.
struct Tint {
    float red, green, blue;
};

Tint mixed(Tint a, Tint b, float part) {
    return {a.red + (b.red - a.red) * part, a.green + (b.green - a.green) * part,
            a.blue + (b.blue - a.blue) * part};
}

Tint brighter(Tint tint, float factor) {
    return {tint.red * factor, tint.green * factor, tint.blue * factor};
}

float unit(float value) { return std::clamp(value, 0.0F, 1.0F); }

/// From 0 at `from` to 1 at `to`, with a level start and end.
float eased(float from, float to, float value) {
    const float part = unit((value - from) / (to - from));
    return part * part * (3 - 2 * part);
}

/// A well-mixed number within [0, 1) for a place of a lattice.
float scattered(int x, int y, int seed) {
    std::uint32_t bits = static_cast<std::uint32_t>(x) * 0x9E3779B1U ^
                         static_cast<std::uint32_t>(y) * 0x85EBCA77U ^
                         static_cast<std::uint32_t>(seed) * 0xC2B2AE3DU;
    bits = (bits ^ bits >> 15) * 0x2C1B3C6DU;
    bits = (bits ^ bits >> 12) * 0x297A2D39U;
    bits ^= bits >> 15;
    return static_cast<float>(bits >> 8) / 16777216.0F;
}

/// Smooth noise within [0, 1]: scattered numbers at whole places, eased between them.
float noise(float x, float y, int seed) {
    const float left = std::floor(x);
    const float top = std::floor(y);
    const int column = static_cast<int>(left);
    const int row = static_cast<int>(top);
    const float across = eased(0, 1, x - left);
    const float down = eased(0, 1, y - top);
    const float upper =
        scattered(column, row, seed) * (1 - across) + scattered(column + 1, row, seed) * across;
    const float lower =
        scattered(column, row + 1, seed) * (1 - across) + scattered(column + 1, row + 1, seed) * across;
    return upper * (1 - down) + lower * down;
}

struct Disc {
    float x, y, radius;
};
constexpr Disc discs[] = {{78, 92, 34},  {178, 58, 15}, {206, 158, 10}, {388, 74, 48}, {520, 128, 20},
                          {578, 52, 11}, {752, 82, 27}, {868, 66, 40},  {906, 172, 13}};

float distance(float dx, float dy) { return std::sqrt(dx * dx + dy * dy); }

float distanceToSegment(float x, float y, float x0, float y0, float x1, float y1) {
    const float dx = x1 - x0;
    const float dy = y1 - y0;
    const float part = unit(((x - x0) * dx + (y - y0) * dy) / (dx * dx + dy * dy));
    return distance(x - x0 - part * dx, y - y0 - part * dy);
}

/// How much of a pixel lies on the inner side of an edge that it is `depth` pixels inside of.
float coverage(float depth) { return unit(depth + 0.5F); }

float inBox(float x, float y, float left, float top, float right, float bottom) {
    return coverage(x - left) * coverage(right - x) * coverage(y - top) * coverage(bottom - y);
}

class Painting {
  public:
    Painting() : canvas_(width, height, 3) {}

    /// Lays a colour over the pixels of a rectangle: part(x, y) says how much of each pixel it covers.
    template <class Part, class Paint>
    void lay(float left, float top, float right, float bottom, Part part, Paint paint) {
        const int x0 = std::max(0, static_cast<int>(left) - 1);
        const int x1 = std::min(width, static_cast<int>(right) + 2);
        const int y1 = std::min(height, static_cast<int>(bottom) + 2);
        for (int y = std::max(0, static_cast<int>(top) - 1); y < y1; ++y)
            for (int x = x0; x < x1; ++x) {
                const auto fx = static_cast<float>(x);
                const auto fy = static_cast<float>(y);
                const float covered = part(fx, fy);
                if (covered <= 0) continue;
                float* pixel = &canvas_.at(x, y);
                const Tint tint = mixed({pixel[0], pixel[1], pixel[2]}, paint(fx, fy), covered);
                pixel[0] = tint.red;
                pixel[1] = tint.green;
                pixel[2] = tint.blue;
            }
    }

    void line(float x0, float y0, float x1, float y1, float halfWidth, Tint tint) {
        const float reach = halfWidth + 1;
        lay(
            std::min(x0, x1) - reach, std::min(y0, y1) - reach, std::max(x0, x1) + reach,
            std::max(y0, y1) + reach,
            [=](float x, float y) { return coverage(halfWidth - distanceToSegment(x, y, x0, y0, x1, y1)); },
            [=](float, float) { return tint; });
    }

    void box(float left, float top, float right, float bottom, Tint tint) {
        lay(
            left, top, right, bottom, [=](float x, float y) { return inBox(x, y, left, top, right, bottom); },
            [=](float, float) { return tint; });
    }

    /// The picture, with a grain of a few tones.
    Picture finished() const {
        Picture picture(width, height, 3);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                const float grain = (scattered(x, y, 71) + scattered(x, y, 72) - 1) * 6;
                for (int c = 0; c < 3; ++c)
                    picture.at(x, y, c) =
                        static_cast<Lum8u>(std::clamp(canvas_.at(x, y, c) + grain + 0.5F, 0.0F, 255.0F));
            }
        return picture;
    }

  private:
    Plane<float> canvas_;
};

Tint skyAt(float y) {
    const Tint evening = mixed({9, 12, 30}, {30, 30, 70}, unit(y / 210));
    return mixed(evening, {236, 138, 84}, eased(185, horizon, y));
}

void paintSky(Painting& painting) {
    const auto all = [](float, float) { return 1.0F; };
    painting.lay(0, 0, width, horizon, all, [](float x, float y) {
        const float cloud =
            eased(0.5F, 0.85F, noise(x / 170, y / 16, 3) * 0.65F + noise(x / 60, y / 7, 4) * 0.35F);
        return mixed(skyAt(y), {250, 176, 120}, cloud * eased(205, 300, y) * 0.7F);
    });
    for (const Disc& disc : discs)
        painting.lay(
            disc.x - disc.radius, disc.y - disc.radius, disc.x + disc.radius, disc.y + disc.radius,
            [&](float x, float y) { return coverage(disc.radius - distance(x - disc.x, y - disc.y)); },
            [&](float x, float y) {
                const float mottle = noise(x * 4 / disc.radius, y * 4 / disc.radius, 5);
                const float rim = distance(x - disc.x, y - disc.y) / disc.radius;
                return brighter({255, 244, 208}, 0.97F - 0.1F * mottle * mottle - 0.1F * rim * rim);
            });
}

void paintHills(Painting& painting) {
    const auto hill = [&](float base, float swing, float stretch, int seed, Tint tint, Tint shade) {
        painting.lay(
            0, base - swing, width, horizon,
            [=](float x, float y) {
                const float ridge =
                    noise(x / stretch, 0, seed) * 0.75F + noise(x / stretch * 4, 0, seed + 1) * 0.25F;
                return coverage(y - (base - swing * ridge));
            },
            [=](float x, float y) { return mixed(tint, shade, noise(x / 7, y / 3, seed + 2)); });
    };
    hill(322, 92, 150, 11, {92, 66, 104}, {78, 56, 96});
    hill(330, 62, 95, 21, {52, 42, 76}, {38, 32, 62});
}

void paintWater(Painting& painting) {
    painting.lay(
        0, horizon, width, quay, [](float, float y) { return coverage(y - horizon); },
        [](float x, float y) {
            const float depth = (y - horizon) / (quay - horizon);
            const Tint mirror = skyAt(horizon - 6 - depth * 150);
            const float ripple = noise(x / (14 + 50 * depth), y / (1.5F + 3 * depth), 31);
            Tint tint = brighter(mirror, 0.45F + 0.45F * ripple);
            for (const Disc& disc : discs) {
                const float off = std::fabs(x - disc.x) / (disc.radius * 0.8F);
                tint = mixed(tint, {246, 206, 150}, unit(1 - off) * eased(0.55F, 0.8F, ripple) * 0.6F);
            }
            return tint;
        });
}

void paintBridge(Painting& painting) {
    constexpr float deck = 312;
    const Tint steel{206, 74, 48};
    const Tint cable{232, 196, 168};
    for (const float tower : {300.0F, 660.0F}) {
        for (int i = 1; i <= 8; ++i) {
            const float reach = 20.0F * static_cast<float>(i);
            const float top = 150 + 9.0F * static_cast<float>(8 - i);
            painting.line(tower, top, tower - reach, deck, 0.6F, cable);
            painting.line(tower, top, tower + reach, deck, 0.6F, cable);
        }
        painting.line(tower - 13, 362, tower - 4, 132, 3.5F, steel);
        painting.line(tower + 13, 362, tower + 4, 132, 3.5F, brighter(steel, 0.75F));
        painting.box(tower - 8, 196, tower + 8, 203, steel);
        painting.box(tower - 11, 262, tower + 11, 270, steel);
        painting.box(tower - 24, 356, tower + 24, 366, {70, 60, 72});
    }
    painting.box(-4, deck, width + 4, deck + 9, {58, 44, 58});
    painting.box(-4, deck, width + 4, deck + 2, {248, 190, 130});
}

void paintQuay(Painting& painting) {
    const auto onQuay = [](float, float y) { return coverage(y - quay); };
    painting.lay(0, quay, width, height, onQuay, [](float x, float y) {
        const float nearness = y - horizon;
        const float across = (x - 480) / nearness * 2.2F + 100;
        const float along = 900 / nearness + 100;
        const int parity = static_cast<int>(across) + static_cast<int>(along);
        const float wear = 0.8F + 0.25F * noise(x / 5, y / 3, 41) + 0.15F * noise(x / 40, y / 20, 42);
        return brighter(parity % 2 == 0 ? Tint{112, 92, 88} : Tint{176, 152, 132}, wear);
    });
    painting.box(-4, quay - 5, width + 4, quay + 2, {84, 66, 70});
}

void paintCrate(Painting& painting, float left, float top, float side, Tint wood) {
    painting.box(left, top, left + side, top + side, wood);
    const Tint plank = brighter(wood, 0.62F);
    const float edge = side * 0.06F;
    const float inset = edge * 1.4F;
    const float right = left + side - inset;
    const float bottom = top + side - inset;
    painting.line(left + inset, top + inset, right, top + inset, edge, plank);
    painting.line(left + inset, bottom, right, bottom, edge, plank);
    painting.line(left + inset, top + inset, left + inset, bottom, edge, plank);
    painting.line(right, top + inset, right, bottom, edge, plank);
    painting.line(left + inset, bottom, right, top + inset, edge, plank);
}

void paintThings(Painting& painting) {
    paintCrate(painting, 96, 418, 76, {198, 142, 84});
    paintCrate(painting, 176, 442, 54, {176, 120, 72});
    paintCrate(painting, 120, 366, 52, {214, 160, 100});

    // A life ring, its quarters red and white.
    const Disc ring{748, 458, 36};
    painting.lay(
        ring.x - ring.radius, ring.y - ring.radius, ring.x + ring.radius, ring.y + ring.radius,
        [=](float x, float y) {
            const float away = distance(x - ring.x, y - ring.y);
            return coverage(ring.radius - away) * coverage(away - ring.radius * 0.55F);
        },
        [=](float x, float y) {
            const float dx = x - ring.x;
            const float dy = y - ring.y;
            return dx * dy * (dx * dx - dy * dy) > 0 ? Tint{214, 52, 44} : Tint{236, 228, 220};
        });

    // A sail, lit from the left, with its mast.
    const auto below = [](float x, float y, float x0, float y0, float x1, float y1) {
        return ((x1 - x0) * (y - y0) - (y1 - y0) * (x - x0)) / distance(x1 - x0, y1 - y0);
    };
    painting.lay(
        430, 340, 520, 440,
        [=](float x, float y) {
            return coverage(below(x, y, 438, 424, 490, 344)) * coverage(490 - x) * coverage(424 - y);
        },
        [](float x, float) {
            return mixed({250, 232, 206}, {188, 150, 150}, (x - 438) / 56);
        });
    painting.line(492, 338, 492, 430, 1.5F, {70, 48, 44});
    painting.lay(
        430, 426, 530, 446,
        [=](float x, float y) {
            return coverage(y - 428) * coverage(442 - y) * coverage(below(x, y, 444, 442, 430, 428)) *
                   coverage(below(x, y, 530, 428, 512, 442));
        },
        [](float, float y) {
            return mixed({132, 62, 50}, {84, 38, 38}, (y - 428) / 14);
        });
}

} // namespace

Picture builtInScene() {
    Painting painting;
    paintSky(painting);
    paintHills(painting);
    paintWater(painting);
    paintBridge(painting);
    paintQuay(painting);
    paintThings(painting);
    return painting.finished();
}

} // namespace tools

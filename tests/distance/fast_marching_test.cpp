#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "support/guarded_image.h"
#include "support/status_checks.h"

using namespace support;

namespace {

const float contour = std::bit_cast<float>(0xAEDBE6FFU);

std::size_t bufferSize(LumSize size) {
    Lum32s bytes = 0;
    EXPECT_EQ(lumStatusOk, lumiFastMarchingGetBufferSize_8u32f_C1R(size, &bytes));
    return static_cast<std::size_t>(bytes);
}

LumStatus march(const GuardedImage<Lum8u>& src, GuardedImage<Lum32f>& dst, float radius,
                std::size_t spare = 1) {
    GuardedBlock buffer(bufferSize(src.size()), Guard::after, spare);
    return lumiFastMarching_8u32f_C1R(src.data(), src.step(), dst.data(), dst.step(), src.size(), radius,
                                      buffer.as<>());
}

std::vector<Lum32f> marched(const GuardedImage<Lum8u>& src, float radius) {
    GuardedImage<Lum32f> dst(src.size().width, src.size().height);
    dst.fillRandom(1);
    EXPECT_EQ(lumStatusOk, march(src, dst, radius));
    return dst.pixels();
}

/// A mask from text, outside at each point.
class TextMask : public GuardedImage<Lum8u> {
  public:
    explicit TextMask(const std::vector<const char*>& lines)
        : GuardedImage(static_cast<int>(std::strlen(lines[0])), static_cast<int>(lines.size())) {
        fill([&](int x, int y, int) { return lines[y][x] == '.' ? 0 : 200; });
    }
};

/// The sweeps once more, by their description: a whole picture of flags, a pass a function of two directions.
class Sweeps {
  public:
    Sweeps(const GuardedImage<Lum8u>& mask, float radius)
        : mask_(mask),
          w_(mask.size().width),
          h_(mask.size().height),
          radius_(radius),
          b_(radius + 1e-5F),
          value_(static_cast<std::size_t>(w_) * h_),
          flag_(static_cast<std::size_t>(w_) * (h_ + 2)),
          rowFlag_(static_cast<std::size_t>(h_) + 2) {
        run();
    }
    const std::vector<Lum32f>& values() const { return value_; }

  private:
    enum Mode { first, second, firstUp, later };

    float& at(int x, int y) { return value_[static_cast<std::size_t>(y) * w_ + x]; }
    int& flag(int x, int y) { return flag_[static_cast<std::size_t>(y + 1) * w_ + x]; }
    bool band() const { return radius_ > 0; }
    float limited(float v) const { return band() && v < 0 ? 0 : v; }

    /// Treats a pixel; whether it counts as changed. A neighbour that is missing is null.
    bool treat(int x, int y, const float* a, const float* b, Mode mode) {
        float& present = at(x, y);
        if (mask_.at(x, y) != 0) {
            float v;
            if (a && b) {
                const float p = limited(*a), q = limited(*b), d = p - q;
                if (std::fabs(d) < 1)
                    v = (p + q + std::sqrt(2 - d * d)) * 0.5F;
                else
                    v = std::min(p, q) + 1;
            } else {
                v = limited(a ? *a : *b) + 1;
            }
            if (mode != first && !(v < present)) return false;
            present = v;
            return true;
        }
        if (!band()) {
            if (mode == first) present = 0;
            return false;
        }
        const float p = a ? *a : *b, q = b ? *b : *a;
        if (p > 0 || q > 0) {
            present = contour;
            return mode == firstUp;
        }
        if (p == 0 && q == 0) {
            if (mode == first) present = 0;
            return false;
        }
        float v;
        if (!a || !b)
            v = p - 1;
        else if (p == 0 || q == 0)
            v = std::min(p, q) - 1;
        else if (std::fabs(p - q) < 1)
            v = (p + q - std::sqrt(2 - (p - q) * (p - q))) * 0.5F;
        else
            v = std::max(p, q) - 1;
        if (mode == first) {
            present = v >= -b_ ? v : 0;
            return true;
        }
        if (v >= -b_ && (present == 0 || v > present)) {
            present = v;
            return true;
        }
        return false;
    }

    bool pass(int y, int dy, int dx, Mode mode) {
        bool changed = false, any = false;
        const int own = (dy > 0 ? 1 : 4) * (dx > 0 ? 1 : 2);
        const int oppositeSame = (dy > 0 ? 4 : 1) * (dx > 0 ? 1 : 2),
                  oppositeOther = (dy > 0 ? 4 : 1) * (dx > 0 ? 2 : 1);
        const int oppositeBoth = dy > 0 ? 12 : 3, ownBoth = dy > 0 ? 3 : 12;
        for (int x = dx > 0 ? 0 : w_ - 1; x >= 0 && x < w_; x += dx) {
            if (mode == later) {
                if (!(flag(x, y) & own) && !changed) continue;
                flag(x, y) &= ~own;
            }
            const bool begins = x == (dx > 0 ? 0 : w_ - 1);
            changed = treat(x, y, &at(x, y - dy), begins ? nullptr : &at(x - dx, y), mode);
            if (!changed) continue;
            any = true;
            if (mode != firstUp && mode != later) continue;
            if (x + dx >= 0 && x + dx < w_) flag(x + dx, y) |= mode == firstUp ? oppositeBoth : oppositeSame;
            if (x - dx >= 0 && x - dx < w_) flag(x - dx, y) |= mode == firstUp ? oppositeBoth : oppositeOther;
            flag(x, y - dy) |= oppositeBoth;
            if (mode == later) flag(x, y + dy) |= ownBoth;
        }
        return any;
    }

    void run() {
        at(0, 0) = mask_.at(0, 0) != 0 ? 999999.0F : 0.0F;
        for (int x = 1; x < w_; ++x) treat(x, 0, nullptr, &at(x - 1, 0), first);
        for (int x = w_ - 2; x >= 0; --x) treat(x, 0, nullptr, &at(x + 1, 0), second);
        if (h_ == 1) return;
        for (int y = 1; y < h_; ++y) {
            pass(y, 1, 1, first);
            pass(y, 1, -1, second);
        }
        std::fill(rowFlag_.begin(), rowFlag_.end(), true);
        rowFlag_[h_] = false;
        bool any = false;
        for (int y = h_ - 2; y >= 0; --y) any |= row(y, -1, firstUp);
        for (int dy = 1; any; dy = -dy) {
            any = false;
            rowFlag_[dy > 0 ? 1 : h_] = false;
            for (int y = dy > 0 ? 1 : h_ - 2; y >= 0 && y < h_; y += dy)
                if (rowFlag_[y + 1]) any |= row(y, dy, later);
        }
    }

    bool row(int y, int dy, Mode mode) {
        rowFlag_[y + 1] = false;
        bool any = pass(y, dy, 1, mode);
        any |= pass(y, dy, -1, mode);
        if (any) rowFlag_[y] = rowFlag_[y + 1] = rowFlag_[y + 2] = true;
        return any;
    }

    const GuardedImage<Lum8u>& mask_;
    int w_, h_;
    float radius_, b_;
    std::vector<Lum32f> value_;
    std::vector<int> flag_;
    std::vector<char> rowFlag_;
};

/// Blobs, lines and single pixels.
void drawMask(GuardedImage<Lum8u>& mask, std::mt19937& engine) {
    struct Disc {
        int x, y, r2;
    };
    std::vector<Disc> discs;
    const auto below = [&](int n) { return static_cast<int>(engine() % static_cast<unsigned>(n)); };
    const int count = below(6);
    for (int i = 0; i < count; ++i) {
        const int r = 1 + below(1 + std::max(mask.size().width, mask.size().height) / 3);
        discs.push_back({below(mask.size().width), below(mask.size().height), r * r});
    }
    const unsigned noise = 1 + engine() % 60;
    const bool holes = engine() % 2 == 0;
    mask.fill([&](int x, int y, int) {
        bool inside = false;
        for (const Disc& disc : discs)
            inside = inside != ((x - disc.x) * (x - disc.x) + (y - disc.y) * (y - disc.y) <= disc.r2);
        if (noise > 2 && engine() % noise == 0) inside = !inside && !holes;
        return inside ? 1 + engine() % 255 : 0;
    });
}

} // namespace

TEST(FastMarching, WorkedExample) {
    const float diagonal = std::sqrt(2.0F) * 0.5F;
    // The corners of the square have two neighbours outside, and the pixels between them one; the middle lies between
    // distances of 1.
    const TextMask mask({".....", ".###.", ".###.", ".###.", "....."});
    const std::vector<Lum32f> d = marched(mask, 0);
    EXPECT_EQ(0, d[0]);
    EXPECT_EQ(diagonal, d[6]);
    const float edge = (0 + diagonal + std::sqrt(2 - diagonal * diagonal)) * 0.5F;
    EXPECT_EQ(edge, d[7]);
    EXPECT_EQ(edge, d[11]);
    EXPECT_EQ((edge + edge + std::sqrt(2.0F)) * 0.5F, d[12]);
}

TEST(FastMarching, OnePixelInside) {
    const TextMask mask({"...", ".#.", "..."});
    EXPECT_EQ(std::sqrt(2.0F) * 0.5F, marched(mask, 0)[4]);
    EXPECT_EQ(1.0F, marched(TextMask({".#."}), 0)[1]);
    EXPECT_EQ(1.0F, marched(TextMask({".", "#", "."}), 0)[1]);
    const std::vector<Lum32f> band = marched(mask, 1);
    EXPECT_EQ(contour, band[1]);
    EXPECT_EQ(contour, band[3]);
    EXPECT_EQ(contour, band[5]);
    EXPECT_EQ(contour, band[7]);
}

TEST(FastMarching, ZerosAreZeroWithAnyRadius) {
    const GuardedImage<Lum8u> mask(37, 9);
    for (float radius : {0.0F, -0.0F, 1.0F, 20.0F, 1e30F})
        EXPECT_EQ(std::vector<Lum32f>(37 * 9, 0.0F), marched(mask, radius));
}

TEST(FastMarching, WithoutZeroTheUnknownValueTravels) {
    GuardedImage<Lum8u> mask(3, 1);
    mask.fill([](int, int, int) { return 1; });
    EXPECT_EQ((std::vector<Lum32f>{999999, 1000000, 1000001}), marched(mask, 0));
    GuardedImage<Lum8u> square(4, 4);
    square.fill([](int, int, int) { return 1; });
    for (float radius : {0.0F, 3.0F}) {
        const std::vector<Lum32f> d = marched(square, radius);
        EXPECT_EQ(999999.0F, d[0]);
        for (float value : d) EXPECT_TRUE(value >= 999999.0F && value < 1000010.0F) << value;
    }
}

TEST(FastMarching, BandEndsAtTheRadius) {
    GuardedImage<Lum8u> mask(41, 41);
    mask.fill([](int x, int y, int) { return x == 20 && y == 20; });
    for (float radius : {0.5F, 1.0F, 2.0F, 7.25F}) {
        const std::vector<Lum32f> d = marched(mask, radius);
        bool reaches = false;
        for (int y = 0; y < 41; ++y)
            for (int x = 0; x < 41; ++x) {
                const float value = d[static_cast<std::size_t>(y) * 41 + x];
                const double away = std::hypot(x - 20, y - 20);
                if (away == 0) continue;
                EXPECT_LE(value, 0);
                EXPECT_GE(value, -(radius + 1e-5F));
                if (away > radius + 2) {
                    EXPECT_EQ(0, value) << x << ", " << y;
                }
                reaches = reaches || value <= -std::floor(radius);
            }
        if (radius >= 1) {
            EXPECT_TRUE(reaches);
        }
    }
}

TEST(FastMarching, BandIsContourNextToTheInside) {
    std::mt19937 engine(7);
    GuardedImage<Lum8u> mask(60, 50);
    drawMask(mask, engine);
    mask.fill([&](int x, int y, int) { return (x / 9 + y / 7) % 3 == 0; });
    const std::vector<Lum32f> d = marched(mask, 3);
    for (int y = 1; y < 49; ++y)
        for (int x = 1; x < 59; ++x) {
            const std::size_t i = static_cast<std::size_t>(y) * 60 + x;
            if (mask.at(x, y) != 0) continue;
            const bool touches =
                mask.at(x - 1, y) || mask.at(x + 1, y) || mask.at(x, y - 1) || mask.at(x, y + 1);
            EXPECT_EQ(touches, d[i] == contour) << x << ", " << y;
        }
}

TEST(FastMarching, RadiusZeroHasNoContour) {
    std::mt19937 engine(9);
    GuardedImage<Lum8u> mask(40, 30);
    drawMask(mask, engine);
    for (float radius : {0.0F, -0.0F})
        for (float value : marched(mask, radius)) EXPECT_TRUE(value >= 0);
}

TEST(FastMarching, InsideIsASolutionOfTheEquation) {
    std::mt19937 engine(10);
    GuardedImage<Lum8u> mask(80, 60);
    mask.fill([&](int x, int y, int) {
        return (x - 40) * (x - 40) + (y - 30) * (y - 30) < 600 && std::abs(x - y) > 2 && engine() % 50 != 0;
    });
    const std::vector<Lum32f> d = marched(mask, 0);
    const auto at = [&](int x, int y) { return d[static_cast<std::size_t>(y) * 80 + x]; };
    for (int y = 1; y < 59; ++y)
        for (int x = 1; x < 79; ++x) {
            if (mask.at(x, y) == 0) continue;
            const float a = std::min(at(x, y - 1), at(x, y + 1)), b = std::min(at(x - 1, y), at(x + 1, y));
            const float solved =
                std::fabs(a - b) < 1 ? (a + b + std::sqrt(2 - (a - b) * (a - b))) / 2 : std::min(a, b) + 1;
            EXPECT_NEAR(solved, at(x, y), 1e-4) << x << ", " << y;
        }
}

TEST(FastMarching, EverySizeAgreesWithThePlainSweeps) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 engine(seed);
    std::vector<int> widths{96, 127, 160, 300};
    for (int width = 1; width <= 70; ++width) widths.push_back(width);
    for (int width : widths)
        for (int height : {1, 2, 3, 4, 13, 34}) {
            GuardedImage<Lum8u> src(width, height,
                                    {.padding = static_cast<int>(engine() % 4),
                                     .offset = static_cast<int>(engine() % 33),
                                     .guard = engine() % 2 == 0 ? Guard::after : Guard::before});
            GuardedImage<Lum32f> dst(width, height,
                                     {.padding = static_cast<int>(engine() % 4 * 4),
                                      .offset = static_cast<int>(engine() % 33),
                                      .guard = engine() % 2 == 0 ? Guard::after : Guard::before});
            for (float radius : {0.0F, 1.0F, 4.7F, 20.0F, 1000.0F}) {
                drawMask(src, engine);
                dst.fillRandom(engine());
                ASSERT_EQ(lumStatusOk, march(src, dst, radius, engine() % 33));
                ASSERT_TRUE(sameBits(Sweeps(src, radius).values(), dst.pixels()))
                    << width << " x " << height << ", radius " << radius;
                ASSERT_TRUE(src.untouched() && dst.outsideUntouched());
            }
        }
}

TEST(FastMarching, WindingMasksNeedManySweeps) {
    // A spiral corridor: distances enter at its mouth and follow its bends.
    const auto spiral = [](int n) {
        std::vector<std::string> lines(static_cast<std::size_t>(n),
                                       std::string(static_cast<std::size_t>(n), '#'));
        int left = 0, right = n - 1;
        for (; left + 6 < right; left += 4, right -= 4) {
            for (int i = left; i <= right; ++i) {
                lines[left][i] = lines[right][i] = lines[i][left] = lines[i][right] = '.';
            }
            lines[left + 2][left] = '#';
        }
        return lines;
    };
    const auto lines = spiral(60);
    GuardedImage<Lum8u> mask(60, 60);
    mask.fill([&](int x, int y, int) { return lines[y][x] == '#'; });
    GuardedImage<Lum8u> inverse(60, 60);
    inverse.fill([&](int x, int y, int) { return mask.at(x, y) == 0; });
    for (float radius : {0.0F, 1.5F, 30.0F}) {
        EXPECT_TRUE(sameBits(Sweeps(mask, radius).values(), marched(mask, radius)));
        EXPECT_TRUE(sameBits(Sweeps(inverse, radius).values(), marched(inverse, radius)));
    }
}

TEST(FastMarching, BufferSize) {
    EXPECT_EQ(35U * 37 + 40, bufferSize({1, 1}));
    EXPECT_EQ(35U * 37 + 40, bufferSize({32, 1}));
    EXPECT_EQ(41U * 69 + 40, bufferSize({33, 7}));
    EXPECT_EQ(1114U * 1925 + 40, bufferSize({1920, 1080}));
    Lum32s bytes = -1;
    // Beyond 31 bits the product wraps.
    EXPECT_STATUS(lumStatusOk, lumiFastMarchingGetBufferSize_8u32f_C1R({1 << 24, 222}, &bytes));
    EXPECT_EQ(256 * 5 + 40, bytes);
}

TEST(FastMarching, StatusesOfTheSizeQueryInTheirOrder) {
    Lum32s bytes = -1;
    EXPECT_STATUS(lumStatusNullPointer, lumiFastMarchingGetBufferSize_8u32f_C1R({0, 1}, nullptr));
    for (const LumSize size : {LumSize{0, 1}, {1, 0}, {-3, 4}, {4, -3}})
        EXPECT_STATUS(lumStatusSizeError, lumiFastMarchingGetBufferSize_8u32f_C1R(size, &bytes));
    EXPECT_EQ(-1, bytes);
}

TEST(FastMarching, StatusesInTheirOrder) {
    GuardedImage<Lum8u> src(6, 5);
    GuardedImage<Lum32f> dst(6, 5);
    dst.fillRandom(3);
    GuardedBlock block(bufferSize(src.size()));
    struct Case {
        LumStatus status;
        bool src, dst, buffer;
        LumSize size;
        int srcStep, dstStep;
        float radius;
    };
    const LumSize size = src.size();
    const Case cases[] = {
        {lumStatusNullPointer, false, true, true, {0, 5}, 6, 24, -1},
        {lumStatusNullPointer, true, false, true, size, 5, 24, 0},
        {lumStatusNullPointer, true, true, false, {6, 0}, 6, 24, 0},
        {lumStatusSizeError, true, true, true, {0, 5}, -1, 24, 0},
        {lumStatusSizeError, true, true, true, {6, -5}, 6, 23, 0},
        {lumStatusStepError, true, true, true, size, 5, 25, 0},
        {lumStatusStepError, true, true, true, size, 6, 23, -1},
        {lumStatusStepError, true, true, true, size, -6, 24, 0},
        {lumStatusStepError, true, true, true, size, 6, -24, 0},
        {lumStatusStepAlignmentError, true, true, true, size, 6, 26, -1},
        {lumStatusBadArgument, true, true, true, size, 6, 24, -1e-30F},
        {lumStatusBadArgument, true, true, true, size, 6, 24, -std::numeric_limits<float>::infinity()},
    };
    for (const Case& c : cases)
        EXPECT_REFUSED(c.status, dst,
                       lumiFastMarching_8u32f_C1R(c.src ? src.data() : nullptr, c.srcStep,
                                                  c.dst ? dst.data() : nullptr, c.dstStep, c.size, c.radius,
                                                  c.buffer ? block.as<>() : nullptr));
}

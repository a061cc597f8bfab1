#include "kernels/motion/flow_gradient.h"
#include "kernels/motion/flow_sums.h"
#include "motion/flow_scene.h"
#include "support/member_test.h"

using namespace support;

namespace {

MEMBER_TEST_SUITE(Flow, FlowElements);

} // namespace

MEMBER_TEST(Flow, DerivativesOfLevelsAgreeWithTheStencil) {
    using namespace lum::kernels;
    using D = Derivative<TypeParam>;
    for (int width : {1, 2, 3, 7, 8, 9, 15, 16, 17, 31, 33, 70})
        for (int height : {1, 2, 5}) {
            GuardedImage<TypeParam> level(
                width, height, {.padding = 2 * static_cast<int>(sizeof(TypeParam)), .offset = width % 5});
            level.fill(
                [&](int x, int y, int) { return texture(7 * x, 5 * y) * FlowMembers<TypeParam>::scale; });
            const std::size_t pitch = width + 5;
            std::vector<D> dx[2], dy[2];
            for (int form = 0; form < 2; ++form) {
                dx[form].assign(pitch * height, D{7});
                dy[form].assign(pitch * height, D{7});
                GuardedBlock work(2 * (width + 2) * sizeof(D));
                const lum::Image<const TypeParam> image{level.data(), level.step()};
                (form == 0 ? LevelGradient<TypeParam>::drawScalar : LevelGradient<TypeParam>::draw)(
                    image, level.size(), dx[form].data(), dy[form].data(), pitch, work.as<D>());
            }
            ASSERT_TRUE(sameBits(dx[0], dx[1]) && sameBits(dy[0], dy[1])) << width << " x " << height;
            const auto pixel = [&](int x, int y) {
                return static_cast<double>(
                    level.at(std::clamp(x, 0, width - 1), std::clamp(y, 0, height - 1)));
            };
            for (int y = 0; y < height; ++y)
                for (int x = 0; x < width; ++x) {
                    double sumX = 0, sumY = 0;
                    const double weights[] = {3, 10, 3};
                    for (int i = -1; i <= 1; ++i) {
                        sumX += weights[i + 1] / 32 * (pixel(x + 1, y + i) - pixel(x - 1, y + i));
                        sumY += weights[i + 1] / 32 * (pixel(x + i, y + 1) - pixel(x + i, y - 1));
                    }
                    const double scale = scaleOfDerivative<TypeParam>;
                    const double tolerance = std::is_integral_v<TypeParam> ? 0 : 1e-5;
                    ASSERT_NEAR(sumX, dx[1][pitch * y + x] * scale, tolerance);
                    ASSERT_NEAR(sumY, dy[1][pitch * y + x] * scale, tolerance);
                }
            ASSERT_EQ(D{7}, dx[1][width]);
        }
}

TEST(FlowKernels, SumsAgreeWithTheirScalarForms) {
    using namespace lum::kernels;
    std::mt19937 engine(3);
    for (int width = 1; width <= 40; ++width)
        for (int height : {1, 2, 7}) {
            const int pitch = static_cast<int>(flowPitch(width));
            std::vector<double> values(pitch * height), dx(pitch * height), dy(pitch * height);
            GuardedImage<Lum32f> moving(static_cast<int>(flowElements(pitch, height)), 1);
            const auto any = [&] { return static_cast<float>(engine() % 65536) / 256; };
            for (int i = 0; i < pitch * height; ++i)
                if (i % pitch < width) values[i] = any(), dx[i] = any() - 128, dy[i] = any() - 128;
            moving.fill(
                [&](int i, int, int) { return i < pitch * (height + 1) && i % pitch <= width ? any() : 0; });
            const FlowWindows windows{values.data(), dx.data(), dy.data(), moving.data(),
                                      pitch,         width,     height};
            const FloatQuad weights{0.28F, 0.12F, 0.42F, 0.18F};
            const GradientSums scalar = gradientSumsScalar(windows);
            const GradientSums vector = gradientSums(windows);
            ASSERT_TRUE(scalar.xx == vector.xx && scalar.xy == vector.xy && scalar.yy == vector.yy);
            const MismatchSums scalarB = mismatchSumsScalar(windows, weights);
            const MismatchSums vectorB = mismatchSums(windows, weights);
            ASSERT_TRUE(scalarB.x == vectorB.x && scalarB.y == vectorB.y);
            ASSERT_EQ(squaredErrorScalar(windows, weights), squaredError(windows, weights));
            double squares = 0, xx = 0, xy = 0, yy = 0, bx = 0, by = 0;
            for (int y = 0; y < height; ++y)
                for (int x = 0; x < width; ++x) {
                    const int i = y * pitch + x;
                    const Lum32f* above = moving.data() + y * pitch + x;
                    const Lum32f* below = above + pitch;
                    const double d =
                        values[i] - (0.28 * above[0] + 0.12 * above[1] + 0.42 * below[0] + 0.18 * below[1]);
                    xx += dx[i] * dx[i], xy += dx[i] * dy[i], yy += dy[i] * dy[i];
                    bx += dx[i] * d, by += dy[i] * d;
                    if (x < width - 1 && y < height - 1) squares += d * d;
                }
            ASSERT_NEAR(xx, vector.xx, 1e-6);
            ASSERT_NEAR(xy, vector.xy, 1e-6);
            ASSERT_NEAR(yy, vector.yy, 1e-6);
            ASSERT_NEAR(bx, vectorB.x, 2);
            ASSERT_NEAR(by, vectorB.y, 2);
            ASSERT_NEAR(squares, squaredError(windows, weights), 2);
        }
}

MEMBER_TEST(Flow, CopiesAsFloatsAreFilledUpWithZeros) {
    using namespace lum::kernels;
    for (int width = 1; width <= 40; ++width)
        for (int pitch : {static_cast<int>(flowPitch(width - 1)), width + 9}) {
            GuardedImage<TypeParam> src(
                width, 3, {.padding = 2 * static_cast<int>(sizeof(TypeParam)), .offset = width % 4});
            src.fillRandom(width);
            for (auto copy : {copyAsFloatsScalar<TypeParam>, copyAsFloats<TypeParam>}) {
                GuardedImage<Lum32f> dst(3 * pitch + flowColumns, 1);
                dst.fill([](int, int, int) { return 7; });
                copy({src.data(), src.step()}, src.size(), dst.data(), pitch);
                for (int i = 0; i < 3 * pitch + flowColumns; ++i) {
                    const bool inside = i < 3 * pitch && i % pitch < width;
                    ASSERT_EQ(inside ? static_cast<float>(src.at(i % pitch, i / pitch)) : 0, dst.at(i, 0))
                        << width;
                }
            }
        }
}

TEST(FlowKernels, WindowGradientAgreesWithItsScalarForm) {
    for (int width = 1; width <= 210; ++width) {
        GuardedImage<Lum32f> window(width + 2, 5);
        window.fillRandom(width);
        const LumSize size{width, 3};
        std::vector<std::vector<double>> results[2];
        for (int form = 0; form < 2; ++form) {
            GuardedImage<Lum64f> values(width, 3), dx(width, 3), dy(width, 3);
            (form == 0 ? lum::kernels::windowGradientScalar : lum::kernels::windowGradient)(
                lum::Image<const Lum32f>{window.data(), window.step()}, size, {values.data(), values.step()},
                {dx.data(), dx.step()}, {dy.data(), dy.step()});
            results[form] = {values.pixels(), dx.pixels(), dy.pixels()};
        }
        for (int i = 0; i < 3; ++i) ASSERT_TRUE(sameBits(results[0][i], results[1][i])) << width;
        EXPECT_EQ(window.at(1, 1), results[1][0][0]);
    }
}

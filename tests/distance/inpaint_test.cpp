#include <limits>

#include "inpaint_members.h"

using namespace support;
using namespace inpainting;

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

/// Scratches, blots and single pixels.
void drawHole(GuardedImage<Lum8u>& mask, std::mt19937& engine) {
    struct Disc {
        int x, y, r2;
    };
    std::vector<Disc> discs;
    const auto below = [&](int n) { return static_cast<int>(engine() % static_cast<unsigned>(n)); };
    for (int i = below(4); i >= 0; --i) {
        const int r = below(6);
        discs.push_back({below(mask.size().width), below(mask.size().height), r * r});
    }
    const unsigned rarity = 20 + engine() % 400;
    mask.fill([&](int x, int y, int) {
        bool selected = engine() % rarity == 0;
        for (const Disc& disc : discs)
            selected = selected || (x - disc.x) * (x - disc.x) + (y - disc.y) * (y - disc.y) <= disc.r2;
        return selected ? 1 + engine() % 255 : 0;
    });
}

/// Smooth ground with edges and a little noise.
void drawPicture(GuardedImage<Lum8u>& picture, std::mt19937& engine) {
    const int slope = static_cast<int>(engine() % 7), edge = static_cast<int>(engine() % 60);
    const unsigned noise = 1 + engine() % 40;
    picture.fill([&](int x, int y, int c) {
        return (40 + slope * x + 2 * y + 30 * c + (x + y > edge ? 90 : 0) +
                static_cast<int>(engine() % noise)) &
               255;
    });
}

void expectSame(const Reference& reference, const GuardedImage<Lum8u>& dst) {
    const std::vector<Lum8u> actual = dst.pixels();
    ASSERT_EQ(reference.pixels().size(), actual.size());
    for (std::size_t i = 0; i < actual.size(); ++i)
        ASSERT_EQ(reference.pixels()[i], actual[i]) << "element " << i;
}

} // namespace

TEST(Inpaint, WorkedExample) {
    // One pixel in a picture of one grey: whatever weighs its neighbours, they all say the same.
    GuardedImage<Lum8u> src(9, 9), mask(9, 9), dst(9, 9);
    GuardedImage<Lum32f> distances(9, 9);
    src.fill([](int x, int y, int) { return x == 4 && y == 4 ? 0 : 77; });
    mask.fill([](int x, int y, int) { return x == 4 && y == 4; });
    march(mask, distances);
    for (int method : {lumInpaintFront, lumInpaintIsophote}) {
        State state(mask, distances, {.radius = 2, .method = method});
        ASSERT_EQ(lumStatusOk, state.run(src, dst));
        EXPECT_EQ(std::vector<Lum8u>(81, 77), dst.pixels());
    }
}

TEST(Inpaint, EmptyMaskCopies) {
    for (int channels : {1, 3})
        for (int method : {lumInpaintFront, lumInpaintIsophote}) {
            const GuardedImage<Lum8u> mask(33, 7);
            const GuardedImage<Lum32f> distances(33, 7);
            const Sizes sizes = sizesOf(mask, {.method = method, .channels = channels});
            EXPECT_EQ(sizeof(void*) == 4 ? 128 : 192, sizes.state);
            EXPECT_EQ(0, sizes.buffer);
            GuardedBlock block(static_cast<std::size_t>(sizes.state), Guard::after, 1);
            LumInpaintState* state = nullptr;
            const auto init = channels == 1 ? lumiInpaintInit_8u_C1R : lumiInpaintInit_8u_C3R;
            ASSERT_EQ(lumStatusOk, init(&state, distances.data(), distances.step(), mask.data(), mask.step(),
                                        mask.size(), 3, method, block.as<>(), nullptr));
            GuardedImage<Lum8u> src(33, 7, {.channels = channels}),
                dst(33, 7, {.channels = channels, .padding = 5});
            src.fillRandom(1);
            const auto run = channels == 1 ? lumiInpaint_8u_C1R : lumiInpaint_8u_C3R;
            ASSERT_EQ(lumStatusOk,
                      run(src.data(), src.step(), dst.data(), dst.step(), src.size(), state, nullptr));
            EXPECT_EQ(src.pixels(), dst.pixels());
            EXPECT_TRUE(dst.outsideUntouched());
        }
}

TEST(Inpaint, PixelsWithoutADistanceStayAndAreNeverKnown) {
    GuardedImage<Lum8u> src(20, 20), mask(20, 20), dst(20, 20);
    GuardedImage<Lum32f> distances(20, 20);
    src.fill([](int x, int y, int) { return x == 10 && y == 10 ? 250 : x == 11 && y == 10 ? 3 : 100; });
    mask.fill([](int x, int y, int) { return (x == 10 || x == 11) && y == 10; });
    for (float none : {0.0F, -1.0F, infinity, -infinity, notANumber}) {
        distances.fill([&](int x, int y, int) {
            return x == 10 && y == 10 ? none : x == 11 && y == 10 ? 1.0F : 0;
        });
        // The neighbour of unknown value 250 must not show; its distance is another matter in the weights.
        for (int method : {lumInpaintFront, lumInpaintIsophote}) {
            State state(mask, distances, {.method = method});
            ASSERT_EQ(lumStatusOk, state.run(src, dst));
            EXPECT_EQ(250, dst.at(10, 10));
            if (none == 0) {
                EXPECT_EQ(100, dst.at(11, 10));
            }
        }
    }
}

TEST(Inpaint, StateWithoutAnyDistanceNeedsNoBuffer) {
    GuardedImage<Lum8u> src(20, 20), mask(20, 20), dst(20, 20);
    const GuardedImage<Lum32f> distances(20, 20);
    src.fillRandom(2);
    mask.fill([](int x, int y, int) { return x == 10 && y == 10; });
    State state(mask, distances, {});
    ASSERT_EQ(lumStatusOk, lumiInpaint_8u_C1R(src.data(), src.step(), dst.data(), dst.step(), src.size(),
                                              state.get(), nullptr));
    EXPECT_EQ(src.pixels(), dst.pixels());
}

TEST(Inpaint, EqualDistancesAreRepairedByRows) {
    // The upper one of two pixels has no known neighbour within reach but the lower one, and is repaired first: to 0,
    // since nothing is known; the lower one then knows it.
    GuardedImage<Lum8u> src(3, 40), mask(3, 40), dst(3, 40);
    GuardedImage<Lum32f> distances(3, 40);
    src.fill([](int, int, int) { return 200; });
    mask.fill([](int, int y, int) { return y < 30; });
    distances.fill([](int, int y, int) { return y == 4 || y == 5 ? 2.0F : 0; });
    State state(mask, distances, {.radius = 1});
    ASSERT_EQ(lumStatusOk, state.run(src, dst));
    for (int x = 0; x < 3; ++x) {
        EXPECT_EQ(0, dst.at(x, 4));
        EXPECT_EQ(0, dst.at(x, 5));
    }
    const Reference reference(src, mask, distances, {.radius = 1});
    expectSame(reference, dst);
}

TEST(Inpaint, HolesAtTheEdgeUseTheTruncatedRadius) {
    // With 2.9 the disc has 24 neighbours inside, and the 12 of radius 2 beside an edge.
    GuardedImage<Lum8u> src(30, 30), mask(30, 30), dst(30, 30);
    GuardedImage<Lum32f> distances(30, 30);
    std::mt19937 engine(3);
    for (int method : {lumInpaintFront, lumInpaintIsophote})
        for (int at : {0, 1, 2, 15, 28, 29}) {
            const Options options{.radius = 2.9F, .method = method};
            drawPicture(src, engine);
            mask.fill([&](int x, int y, int) { return x == at && y >= 12 && y < 17; });
            march(mask, distances);
            State state(mask, distances, options);
            ASSERT_EQ(lumStatusOk, state.run(src, dst));
            expectSame(Reference(src, mask, distances, options), dst);
            if (at == 0 || (at == 15 && method == lumInpaintFront)) {
                GuardedImage<Lum8u> truncated(30, 30);
                State whole(mask, distances, {.radius = 2, .method = method});
                ASSERT_EQ(lumStatusOk, whole.run(src, truncated));
                EXPECT_EQ(at == 0, truncated.pixels() == dst.pixels())
                    << "column " << at << ", method " << method;
            }
        }
}

TEST(Inpaint, DiscOfMoreNeighboursThanAreWeighedAtOnce) {
    // With 8 it has 196.
    GuardedImage<Lum8u> mask(40, 35);
    GuardedImage<Lum32f> distances(40, 35);
    mask.fill([](int x, int y, int) { return x >= 18 && x < 22 && y >= 15 && y < 20; });
    march(mask, distances);
    std::mt19937 engine(6);
    for (int channels : {1, 3})
        for (int method : {lumInpaintFront, lumInpaintIsophote}) {
            const Options options{.radius = 8, .method = method, .channels = channels};
            GuardedImage<Lum8u> src(40, 35, {.channels = channels}), dst(40, 35, {.channels = channels});
            drawPicture(src, engine);
            State state(mask, distances, options);
            ASSERT_EQ(lumStatusOk, state.run(src, dst));
            expectSame(Reference(src, mask, distances, options), dst);
        }
}

TEST(Inpaint, PixelWithNothingKnownBecomesZero) {
    GuardedImage<Lum8u> src(31, 31), mask(31, 31), dst(31, 31);
    GuardedImage<Lum32f> distances(31, 31);
    src.fill([](int, int, int) { return 180; });
    mask.fill([](int x, int y, int) { return std::abs(x - 15) < 9 && std::abs(y - 15) < 9; });
    // The middle comes first, far from all that is known.
    distances.fill([](int x, int y, int) { return x == 15 && y == 15 ? 1.0F : 0; });
    for (int method : {lumInpaintFront, lumInpaintIsophote}) {
        State state(mask, distances, {.radius = 2, .method = method});
        ASSERT_EQ(lumStatusOk, state.run(src, dst));
        EXPECT_EQ(0, dst.at(15, 15));
    }
}

TEST(Inpaint, DirectNeighboursDecideWhereWeightsAreTooSmall) {
    // Level distances have no gradient, so all weights of the front are next to nothing.
    GuardedImage<Lum8u> src(21, 21), mask(21, 21), dst(21, 21);
    GuardedImage<Lum32f> distances(21, 21);
    src.fill([](int x, int, int) { return x < 10 ? 40 : 80; });
    mask.fill([](int x, int y, int) { return x == 10 && y == 10; });
    distances.fill([](int, int, int) { return 5.0F; });
    State state(mask, distances, {});
    ASSERT_EQ(lumStatusOk, state.run(src, dst));
    // (40 + 80 + 80 + 80) / 4, and no correction. The list has room for one entry: the first pixel of the region.
    const Reference reference(src, mask, distances, {});
    expectSame(reference, dst);
    distances.fill([](int x, int y, int) {
        return x == 10 && y == 10 ? 5.0F : std::abs(x - 10) + std::abs(y - 10) == 1 ? 0 : -3.0F;
    });
    State own(mask, distances, {});
    ASSERT_EQ(lumStatusOk, own.run(src, dst));
    EXPECT_EQ(70, dst.at(10, 10));
}

TEST(Inpaint, InPlaceEqualsOutOfPlace) {
    std::mt19937 engine(4);
    for (int channels : {1, 3}) {
        GuardedImage<Lum8u> src(50, 40, {.channels = channels}), dst(50, 40, {.channels = channels}),
            mask(50, 40);
        GuardedImage<Lum32f> distances(50, 40);
        drawPicture(src, engine);
        drawHole(mask, engine);
        march(mask, distances);
        State state(mask, distances, {.channels = channels});
        ASSERT_EQ(lumStatusOk, state.run(src, dst));
        ASSERT_EQ(lumStatusOk, state.run(src, src));
        EXPECT_EQ(dst.pixels(), src.pixels());
    }
}

TEST(Inpaint, ARowInPlaceMayHaveAnyStep) {
    GuardedImage<Lum8u> src(9, 1), dst(9, 1), mask(9, 1);
    GuardedImage<Lum32f> distances(9, 1);
    src.fill([](int x, int, int) { return 20 * x; });
    mask.fill([](int x, int, int) { return x == 3 || x == 4 ? 1 : 0; });
    march(mask, distances);
    State state(mask, distances, {});
    ASSERT_EQ(lumStatusOk, state.run(src, dst));
    GuardedBlock buffer(static_cast<std::size_t>(state.sizes().buffer), Guard::after, 3);
    ASSERT_EQ(lumStatusOk, lumiInpaint_8u_C1R(src.data(), src.step(), src.data(), 2 * src.step(), src.size(),
                                              state.get(), buffer.as<>()));
    EXPECT_EQ(dst.pixels(), src.pixels());
}

TEST(Inpaint, StateServesManyPicturesOfAnyStep) {
    std::mt19937 engine(5);
    GuardedImage<Lum8u> mask(64, 33);
    GuardedImage<Lum32f> distances(64, 33);
    drawHole(mask, engine);
    march(mask, distances);
    State state(mask, distances, {.radius = 4});
    for (int padding : {0, 7, 100}) {
        GuardedImage<Lum8u> src(64, 33, {.padding = 100 - padding}), dst(64, 33, {.padding = padding});
        drawPicture(src, engine);
        ASSERT_EQ(lumStatusOk, state.run(src, dst));
        expectSame(Reference(src, mask, distances, {.radius = 4}), dst);
    }
}

TEST(Inpaint, RandomHolesAgreeWithThePlainRepair) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 engine(seed);
    for (int i = 0; i < 260; ++i) {
        const int width = i < 60 ? 1 + static_cast<int>(engine() % 8) : 1 + static_cast<int>(engine() % 90);
        const int height = i < 60 ? 1 + static_cast<int>(engine() % 8) : 1 + static_cast<int>(engine() % 50);
        const Options options{.radius = 1 + static_cast<float>(engine() % 500) / 100,
                              .method = static_cast<int>(engine() % 2),
                              .channels = engine() % 2 == 0 ? 1 : 3};
        const auto placed = [&](int channels, int bytes) {
            return Placement{.channels = channels,
                             .padding = static_cast<int>(engine() % 4) * bytes,
                             .offset = static_cast<int>(engine() % 33),
                             .guard = engine() % 2 == 0 ? Guard::after : Guard::before};
        };
        GuardedImage<Lum8u> src(width, height, placed(options.channels, 1));
        GuardedImage<Lum8u> dst(width, height, placed(options.channels, 1));
        GuardedImage<Lum8u> mask(width, height, placed(1, 1));
        GuardedImage<Lum32f> distances(width, height, placed(1, 4));
        drawPicture(src, engine);
        drawHole(mask, engine);
        march(mask, distances);
        if (engine() % 4 == 0) // distances of any kind, and unlike the mask
            distances.fill([&](int, int, int) { return static_cast<float>(engine() % 9) / 2 - 1; });
        else
            distances.fill([&, all = distances.pixels()](int x, int y, int) { return all[y * width + x]; });
        State state(mask, distances, options, engine() % 33);
        ASSERT_EQ(lumStatusOk, state.run(src, dst));
        expectSame(Reference(src, mask, distances, options), dst);
        if (HasFatalFailure())
            FAIL() << width << " x " << height << ", radius " << options.radius << ", method "
                   << options.method << ", " << options.channels << " channels";
        ASSERT_TRUE(src.untouched() && mask.untouched() && distances.untouched() && dst.outsideUntouched());
    }
}

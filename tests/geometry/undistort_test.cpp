#include <cmath>
#include <limits>
#include <utility>

#include "geometry/undistort_members.h"
#include "support/guarded_image.h"
#include "support/member_test.h"
#include "support/status_checks.h"

using namespace lenses;
using namespace support;
using lum::kernels::TangentialModel;

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

MEMBER_TEST_SUITE(UndistortMembers, Members);

/// The place of a pixel by the radial model, one operation after the other.
LumPoint32f radialPlace(const Lens& lens, int column, int row) {
    const float x = static_cast<float>(column);
    const float y = static_cast<float>(row);
    const float fx2 = lens.fx * lens.fx;
    const float fy2 = lens.fy * lens.fy;
    const float inverseFx2 = 1.0F / fx2;
    const float inverseFy2 = 1.0F / fy2;
    const float dx = x - lens.cx;
    const float dy = y - lens.cy;
    const float dx2 = dx * dx;
    const float dy2 = dy * dy;
    const float a = dx2 * inverseFx2;
    const float b = dy2 * inverseFy2;
    float ofA = lens.k2 * a;
    ofA += lens.k1;
    ofA *= a;
    float ofB = lens.k2 * b;
    ofB += lens.k1;
    ofB *= b;
    float ofBoth = 2 * lens.k2;
    ofBoth *= a;
    ofBoth *= b;
    const float t = (ofA + ofB) + ofBoth;
    const float offsetX = dx * t;
    const float offsetY = dy * t;
    return {x + offsetX, y + offsetY};
}

LumPoint32f tangentialPlace(const Lens& lens, int column, int row) {
    const float x = (static_cast<float>(column) - lens.cx) / lens.fx;
    const float y = (static_cast<float>(row) - lens.cy) / lens.fy;
    const float xx = x * x;
    const float yy = y * y;
    const float r2 = xx + yy;
    const float linear = lens.k1 * r2;
    const float quadratic = lens.k2 * r2 * r2;
    const float radial = (1.0F + linear) + quadratic;
    const float twiceXx = 2 * x * x;
    const float twiceYy = 2 * y * y;
    const float movedX = (x * radial + 2 * lens.p1 * x * y) + lens.p2 * (r2 + twiceXx);
    const float movedY = (y * radial + lens.p1 * (r2 + twiceYy)) + 2 * lens.p2 * x * y;
    return {lens.fx * movedX + lens.cx, lens.fy * movedY + lens.cy};
}

/// What a pixel becomes, or what it holds already.
template <class T>
T expectedPixel(const GuardedImage<T>& src, const GuardedImage<T>& before, const Lens& lens, int x, int y,
                int c) {
    const LumPoint32f place = radialPlace(lens, x, y);
    const LumSize size = src.size();
    const bool inside = place.x >= 0 && place.x < static_cast<float>(size.width - 1) && place.y >= 0 &&
                        place.y < static_cast<float>(size.height - 1);
    if (!inside) return before.at(x, y, c);
    const int ix = static_cast<int>(place.x);
    const int iy = static_cast<int>(place.y);
    const float u = place.x - static_cast<float>(ix);
    const float v = place.y - static_cast<float>(iy);
    const float ul = (1 - u) * (1 - v);
    const float ur = u * (1 - v);
    const float ll = (1 - u) * v;
    const float lr = u * v;
    const float upper = src.at(ix, iy, c) * ul + src.at(ix + 1, iy, c) * ur;
    const float lower = src.at(ix, iy + 1, c) * ll + src.at(ix + 1, iy + 1, c) * lr;
    const float sum = upper + lower;
    return std::is_integral_v<T> ? static_cast<T>(sum + 0.5F) : static_cast<T>(sum);
}

/// Both routes of the exported call against each other, the scalar kernel and the formula.
template <class M> void expectCorrected(int width, int height, const Lens& lens, Placement placement = {}) {
    using T = typename M::Element;
    placement.channels = M::count;
    GuardedImage<T> src(width, height, placement);
    GuardedImage<T> before(width, height, placement);
    GuardedImage<T> scalar(width, height, placement);
    GuardedImage<T> computed(width, height, placement);
    GuardedImage<T> prepared(width, height, placement);
    src.fillRandom(width + 100 * height);
    for (GuardedImage<T>* image : {&before, &scalar, &computed, &prepared}) image->fillRandom(5);
    GuardedBlock buffer(bufferSize(src.size()));

    lum::kernels::undistortScalar<T, M::count>(lens.radial(), {src.data(), src.step()},
                                               {scalar.data(), scalar.step()}, src.size());
    ASSERT_EQ(lumStatusOk, M::run(src, computed, lens));
    ASSERT_EQ(lumStatusOk, M::run(src, prepared, lens, buffer.as()));
    ASSERT_TRUE(sameBits(scalar.pixels(), computed.pixels())) << "width " << width;
    ASSERT_TRUE(sameBits(scalar.pixels(), prepared.pixels())) << "width " << width;
    ASSERT_TRUE(computed.outsideUntouched());
    ASSERT_TRUE(prepared.outsideUntouched());
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            for (int c = 0; c < M::count; ++c)
                ASSERT_EQ(expectedPixel(src, before, lens, x, y, c), prepared.at(x, y, c)) << x << ", " << y;
}

/// How many pixels a call writes, in an image that holds 7 and is drawn on with 100.
template <class M> int writtenPixels(int width, int height, const Lens& lens, Lum8u* buffer = nullptr) {
    GuardedImage<typename M::Element> src(width, height, {.channels = M::count});
    GuardedImage<typename M::Element> dst(width, height, {.channels = M::count});
    src.fill([](int, int, int) { return 100; });
    dst.fill([](int, int, int) { return 7; });
    EXPECT_STATUS(lumStatusOk, M::run(src, dst, lens, buffer));
    int written = 0;
    for (auto value : dst.pixels()) {
        written += value == 100;
        EXPECT_TRUE(value == 100 || value == 7) << +value;
    }
    return written / M::count;
}

/// Calls work with a buffer at every distance below 32 bytes from an unreadable page at either end of it.
template <class Work> void forEveryPlaceOfABuffer(LumSize size, Work work) {
    for (Guard guard : {Guard::after, Guard::before})
        for (int offset = 0; offset < 32; ++offset) {
            SCOPED_TRACE(offset);
            GuardedImage<Lum8u> buffer(static_cast<int>(bufferSize(size)), 1,
                                       {.offset = offset, .guard = guard});
            work(buffer.data());
            EXPECT_TRUE(buffer.outsideUntouched());
        }
}

/// Both routes of the map call against each other, the scalar kernel and the formula.
template <class Model, class Formula>
void expectMaps(int width, int height, const Lens& lens, const Model& model, Formula formula, Placement ofX,
                Placement ofY) {
    GuardedImage<Lum32f> scalarX(width, height, ofX);
    GuardedImage<Lum32f> scalarY(width, height, ofY);
    GuardedImage<Lum32f> x(width, height, ofX);
    GuardedImage<Lum32f> y(width, height, ofY);
    lum::kernels::mapScalar(model, {scalarX.data(), scalarX.step()}, {scalarY.data(), scalarY.step()},
                            x.size());
    GuardedBlock buffer(bufferSize(x.size()));
    for (Lum8u* memory : {static_cast<Lum8u*>(nullptr), buffer.as()}) {
        x.fill([](int, int, int) { return -1; });
        y.fill([](int, int, int) { return -1; });
        ASSERT_EQ(lumStatusOk, maps(x, y, lens, memory));
        ASSERT_TRUE(sameBits(scalarX.pixels(), x.pixels())) << "width " << width;
        ASSERT_TRUE(sameBits(scalarY.pixels(), y.pixels())) << "width " << width;
        ASSERT_TRUE(x.outsideUntouched());
        ASSERT_TRUE(y.outsideUntouched());
    }
    for (int row = 0; row < height; ++row)
        for (int column = 0; column < width; ++column) {
            const LumPoint32f place = formula(lens, column, row);
            ASSERT_EQ(place.x, x.at(column, row)) << column << ", " << row;
            ASSERT_EQ(place.y, y.at(column, row)) << column << ", " << row;
        }
}

void expectBothModels(int width, int height, Placement ofX, Placement ofY) {
    const Lens radial{.k1 = -0.31F, .k2 = 0.12F};
    expectMaps(width, height, radial, radial.radial(), radialPlace, ofX, ofY);
    for (Lens lens :
         {Lens{.k1 = -0.31F, .k2 = 0.12F, .p1 = 0.01F, .p2 = -0.02F},
          Lens{.k1 = 0.3F, .k2 = -0.1F, .p1 = 0.01F}, Lens{.k1 = 0.3F, .k2 = -0.1F, .p2 = 0.03F}}) {
        const TangentialModel model{lens.fx, lens.fy, lens.cx, lens.cy, lens.k1, lens.k2, lens.p1, lens.p2};
        expectMaps(width, height, lens, model, tangentialPlace, ofX, ofY);
    }
}

void expectBothModels(int width, int height, Placement placement = {}) {
    expectBothModels(width, height, placement, placement);
}

} // namespace

TEST(UndistortRadial_8u_C1R, PixelsByHand) {
    const Lum8u src[] = {10, 20, 30, //
                         40, 50, 60, //
                         70, 80, 90};
    Lum8u dst[9] = {};
    const Lens lens{.fx = 1, .fy = 1, .cx = 1, .cy = 1, .k1 = -0.5F};
    EXPECT_STATUS(lumStatusOk, Undistort8u::call({src, 3, dst, 3, {3, 3}, lens}));
    // With k1 = -1 / 2, unit focal lengths and the centre at (1, 1), one step along an axis becomes half a step; the
    // corners, at a squared distance of 2, are read at the centre.
    EXPECT_EQ((std::vector<Lum8u>{50, 35, 50, //
                                  45, 50, 55, //
                                  50, 65, 50}),
              std::vector<Lum8u>(dst, dst + 9));
}

TEST(UndistortGetSize, Is24BytesAColumnOfARoundedWidthAnd32) {
    EXPECT_EQ(4U * 24 + 32, bufferSize({1, 1}));
    EXPECT_EQ(4U * 24 + 32, bufferSize({4, 9}));
    EXPECT_EQ(8U * 24 + 32, bufferSize({5, 1}));
    EXPECT_EQ(1920U * 24 + 32, bufferSize({1920, 1080}));
}

TEST(UndistortGetSize, WrapsWhereTheBytesOverflow) {
    Lum32s bytes = 0;
    EXPECT_STATUS(lumStatusOk, lumiUndistortGetSize({0x7FFFFFFD, 1}, &bytes));
    EXPECT_EQ(static_cast<Lum32s>(0x80000000U * 24U + 32U), bytes);
    EXPECT_STATUS(lumStatusOk, lumiUndistortGetSize({100000000, 1}, &bytes));
    EXPECT_EQ(static_cast<Lum32s>(2400000032U), bytes);
}

TEST(UndistortGetSize, NullPointerComesBeforeTheSize) {
    Lum32s bytes = 5;
    EXPECT_STATUS(lumStatusNullPointer, lumiUndistortGetSize({0, 0}, nullptr));
    for (LumSize size : {LumSize{0, 1}, LumSize{1, 0}, LumSize{-1, 1}, LumSize{1, -1}})
        EXPECT_STATUS(lumStatusSizeError, lumiUndistortGetSize(size, &bytes));
    EXPECT_EQ(5, bytes);
}

MEMBER_TEST(UndistortMembers, RoutesAgreeWithScalarAndFormulaOnEveryWidth) {
    const Lens lens{.k1 = -0.31F, .k2 = 0.12F};
    for (int width = 1; width <= 70; ++width) {
        expectCorrected<TypeParam>(width, 9, lens);
        expectCorrected<TypeParam>(
            width, 5, {.fx = 30, .fy = -25, .cx = width / 3.0F, .cy = 2.25F, .k1 = 0.4F, .k2 = -0.3F},
            {.padding = 8, .guard = Guard::before});
    }
    expectCorrected<TypeParam>(203, 41,
                               {.fx = 150, .fy = 140, .cx = 99.5F, .cy = 21, .k1 = 0.2F, .k2 = -0.1F});
}

MEMBER_TEST(UndistortMembers, RoutesAgreeOnEveryAlignment) {
    const Lens lens{.fx = 40, .fy = 40, .k1 = -0.31F, .k2 = 0.12F};
    for (int offset = 0; offset < 16; ++offset)
        expectCorrected<TypeParam>(37, 11, lens, {.padding = 4, .offset = offset, .guard = Guard::before});
}

MEMBER_TEST(UndistortMembers, WithoutDistortionAllButLastRowAndColumnAreCopied) {
    using T = typename TypeParam::Element;
    GuardedImage<T> src(13, 4, {.channels = TypeParam::count});
    GuardedImage<T> dst(13, 4, {.channels = TypeParam::count});
    src.fillRandom(1);
    dst.fillRandom(2);
    const GuardedImage<T>& written = dst;
    const std::vector<T> before = dst.pixels();
    EXPECT_STATUS(lumStatusOk, TypeParam::run(src, dst, {.cx = 5.5F, .cy = 1.5F}));
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 13; ++x)
            for (int c = 0; c < TypeParam::count; ++c) {
                const T kept = before[(y * 13 + x) * TypeParam::count + c];
                EXPECT_EQ(x < 12 && y < 3 ? src.at(x, y, c) : kept, written.at(x, y, c)) << x << ", " << y;
            }
}

MEMBER_TEST(UndistortMembers, LoneRowsAndColumnsAreNeverWritten) {
    EXPECT_EQ(0, writtenPixels<TypeParam>(40, 1, {}));
    EXPECT_EQ(0, writtenPixels<TypeParam>(1, 40, {}));
    EXPECT_EQ(1, writtenPixels<TypeParam>(2, 2, {}));
}

MEMBER_TEST(UndistortMembers, PlacesThatAreNoNumbersOrInfiniteAreNotTaken) {
    for (float bad : {notANumber, infinity, -infinity, 1e30F, -1e30F}) {
        EXPECT_EQ(0, writtenPixels<TypeParam>(21, 9, {.cx = 20.5F, .cy = 10.5F, .k1 = bad}));
        EXPECT_EQ(0, writtenPixels<TypeParam>(21, 9, {.cx = 20.5F, .cy = 10.5F, .k2 = bad}));
        GuardedBlock buffer(bufferSize({21, 9}));
        EXPECT_EQ(0, writtenPixels<TypeParam>(21, 9, {.cx = bad, .k1 = 0.1F}, buffer.as()));
        EXPECT_EQ(0, writtenPixels<TypeParam>(21, 9, {.cy = bad, .k1 = 0.1F}, buffer.as()));
    }
    EXPECT_EQ(0, writtenPixels<TypeParam>(21, 9, {.fx = notANumber}));
    EXPECT_EQ(20 * 8, writtenPixels<TypeParam>(21, 9, {.fx = infinity, .fy = -infinity, .k1 = 0.1F}));
    // The square of this focal length is 0, and its reciprocal infinite.
    EXPECT_EQ(0, writtenPixels<TypeParam>(21, 9, {.fx = 1e-30F, .cx = 3.5F, .k1 = 0.1F}));
    EXPECT_EQ(0, writtenPixels<TypeParam>(21, 9, {.fx = 1e-30F, .fy = 1e-30F, .cx = 3.5F, .k1 = 0.1F}));
}

MEMBER_TEST(UndistortMembers, BufferLiesAnywhereAndNothingBesideItIsWritten) {
    using T = typename TypeParam::Element;
    const Lens lens{.k1 = -0.31F, .k2 = 0.12F};
    GuardedImage<T> src(37, 5, {.channels = TypeParam::count});
    GuardedImage<T> expected(37, 5, {.channels = TypeParam::count});
    src.fillRandom(8);
    const auto call = [&](GuardedImage<T>& dst, Lum8u* buffer) {
        return TypeParam::run(src, dst, lens, buffer);
    };
    EXPECT_STATUS(lumStatusOk, call(expected, nullptr));
    forEveryPlaceOfABuffer(src.size(), [&](Lum8u* buffer) {
        GuardedImage<T> dst(37, 5, {.channels = TypeParam::count});
        EXPECT_STATUS(lumStatusOk, call(dst, buffer));
        EXPECT_TRUE(sameBits(expected.pixels(), dst.pixels()));
    });
}

MEMBER_TEST(UndistortMembers, LastPixelsOfTheSourceAreReadAndNothingAfterThem) {
    using T = typename TypeParam::Element;
    GuardedImage<T> src(12, 2, {.channels = TypeParam::count});
    GuardedImage<T> dst(12, 2, {.channels = TypeParam::count});
    src.fillRandom(1);
    // The first of the first four pixels is taken at (10, 0), so that its lower neighbours are the last two.
    const Lens lens{.fx = 1, .fy = 1, .cx = -4, .cy = 0, .k1 = 0.15625F};
    EXPECT_STATUS(lumStatusOk, TypeParam::run(src, dst, lens));
    for (int c = 0; c < TypeParam::count; ++c) EXPECT_EQ(src.at(10, 0, c), dst.at(0, 0, c));
}

TEST(UndistortRadial_32f_C1R, NaNsAndInfinitiesReachOnlyTheirNeighbours) {
    GuardedImage<Lum32f> src(12, 5);
    GuardedImage<Lum32f> dst(12, 5);
    const Lens lens;
    src.fill([](int x, int y, int) {
        return x == 5 && y == 2 ? notANumber : x == 9 && y == 1 ? infinity : 1.0F;
    });
    EXPECT_STATUS(lumStatusOk, Undistort32f::run(src, dst, lens));
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 11; ++x) {
            // An infinity with a weight of 0 is no number; at the pixel itself its weight is 1, but each of the other
            // weights is 0 and its pixel 1.
            const bool nearNaN = (x == 4 || x == 5) && (y == 1 || y == 2);
            const bool nearInfinity = (x == 8 || x == 9) && (y == 0 || y == 1);
            const bool isInfinity = x == 9 && y == 1;
            EXPECT_EQ(nearNaN || (nearInfinity && !isInfinity), std::isnan(dst.at(x, y))) << x << ", " << y;
            EXPECT_EQ(isInfinity, std::isinf(dst.at(x, y)));
        }
}

TEST(UndistortRadial_16u_C1R, WhitePictureStaysWhite) {
    const Lens lens{.fx = 31, .fy = 33, .cx = 30, .cy = 22, .k1 = -0.2F};
    for (int width : {64, 61}) {
        GuardedImage<Lum16u> src(width, 48);
        GuardedImage<Lum16u> dst(width, 48);
        src.fill([](int, int, int) { return 65535; });
        dst.fill([](int, int, int) { return 0; });
        EXPECT_STATUS(lumStatusOk, Undistort16u::run(src, dst, lens));
        int white = 0;
        for (Lum16u value : dst.pixels()) {
            EXPECT_TRUE(value == 0 || value == 65535) << value;
            white += value == 65535;
        }
        EXPECT_GT(white, width * 40);
    }
}

MEMBER_TEST(UndistortMembers, ChecksComeInTheirOrder) {
    using T = typename TypeParam::Element;
    GuardedImage<T> src(4, 2, {.channels = TypeParam::count, .padding = 8});
    GuardedImage<T> dst(4, 2, {.channels = TypeParam::count, .padding = 8});
    const int row = 4 * TypeParam::count * static_cast<int>(sizeof(T));
    const int step = src.step();
    const LumSize size = src.size();
    const Lens none{.fx = 0, .fy = 0};
    struct Row {
        LumStatus expected;
        Call<T> call;
    };
    const auto withSteps = [&](int srcStep, int dstStep) {
        return Call<T>{src.data(), srcStep, dst.data(), dstStep, size, none};
    };
    std::vector<Row> table{
        {lumStatusNullPointer, {nullptr, step, dst.data(), step, {0, 0}, none}},
        {lumStatusNullPointer, {src.data(), step, nullptr, step, {0, 0}, none}},
    };
    for (LumSize empty : {LumSize{0, 2}, LumSize{4, 0}, LumSize{-4, 2}, LumSize{4, -2}})
        table.push_back({lumStatusSizeError, {src.data(), 1, dst.data(), 1, empty, none}});
    for (int shortStep : {row - 1, 0, -step}) {
        table.push_back({lumStatusStepError, withSteps(shortStep, step)});
        table.push_back({lumStatusStepError, withSteps(step, shortStep)});
    }
    const int largest = 0x7FFFFFFC;
    table.push_back({lumStatusStepError, {src.data(), largest, dst.data(), largest, {0x7FFFFFFF, 1}, none}});
    if (sizeof(T) > 1) {
        table.push_back({lumStatusStepAlignmentError, withSteps(step + 1, step)});
        table.push_back({lumStatusStepAlignmentError, withSteps(step, step + 1)});
    }
    for (Lens lens : {Lens{.fx = 0}, Lens{.fy = 0}, Lens{.fx = -0.0F}, Lens{.fy = -0.0F}})
        table.push_back({lumStatusBadArgument, {src.data(), step, dst.data(), step, size, lens}});
    for (const Row& r : table) EXPECT_REFUSED(r.expected, dst, TypeParam::call(r.call));
    EXPECT_STATUS(lumStatusOk, TypeParam::call({src.data(), row, dst.data(), row, size, {}}));
}

TEST(CreateMapCameraUndistort_32f_C1R, RoutesAgreeWithScalarAndFormulaOnEveryWidth) {
    for (int width = 1; width <= 70; ++width) {
        expectBothModels(width, 3);
        expectBothModels(width, 3, {.padding = 4, .guard = Guard::before});
    }
}

TEST(CreateMapCameraUndistort_32f_C1R, RoutesAgreeOnEveryAlignment) {
    for (int offset = 0; offset < 16; ++offset)
        for (int padding : {0, 4, 12})
            expectBothModels(37, 2, {.padding = padding, .offset = offset, .guard = Guard::before});
}

TEST(CreateMapCameraUndistort_32f_C1R, LargeAlignedMapsAreTheSame) {
    for (int height : {255, 256, 257}) expectBothModels(512, height, {.guard = Guard::before});
    expectBothModels(1037, 131, {.padding = 12, .guard = Guard::before});
}

TEST(CreateMapCameraUndistort_32f_C1R, LargeMapsAreTheSameWhereNotBothAreAligned) {
    const Placement aligned{.guard = Guard::before};
    const Placement misaligned{.offset = 4, .guard = Guard::before};
    expectBothModels(512, 257, misaligned);
    expectBothModels(512, 257, aligned, misaligned);
    expectBothModels(512, 257, misaligned, aligned);
}

TEST(CreateMapCameraUndistort_32f_C1R, RoutesAgreeWhereTheMapsLieDifferently) {
    const Placement aligned{.guard = Guard::before};
    for (int offset : {0, 4, 8, 12})
        for (int padding : {0, 4}) {
            const Placement other{.padding = padding, .offset = offset, .guard = Guard::before};
            expectBothModels(16, 3, aligned, other);
            expectBothModels(16, 3, other, aligned);
        }
}

TEST(CreateMapCameraUndistort_32f_C1R, BufferLiesAnywhereAndNothingBesideItIsWritten) {
    const LumSize size{37, 5};
    for (Lens lens : {Lens{.k1 = -0.31F, .k2 = 0.12F}, Lens{.k1 = -0.31F, .p1 = 0.01F, .p2 = -0.02F}}) {
        GuardedImage<Lum32f> expectedX(37, 5);
        GuardedImage<Lum32f> expectedY(37, 5);
        EXPECT_STATUS(lumStatusOk, maps(expectedX, expectedY, lens));
        forEveryPlaceOfABuffer(size, [&](Lum8u* buffer) {
            GuardedImage<Lum32f> x(37, 5);
            GuardedImage<Lum32f> y(37, 5);
            EXPECT_STATUS(lumStatusOk, maps(x, y, lens, buffer));
            EXPECT_TRUE(sameBits(expectedX.pixels(), x.pixels()));
            EXPECT_TRUE(sameBits(expectedY.pixels(), y.pixels()));
        });
    }
}

TEST(CreateMapCameraUndistort_32f_C1R, MinusZeroIsNoTangentialCoefficient) {
    Lens lens{.fx = 40, .fy = 37, .cx = 17.3F, .cy = 4.7F, .k1 = -0.21F, .k2 = 0.03F};
    GuardedImage<Lum32f> radialX(37, 10);
    GuardedImage<Lum32f> radialY(37, 10);
    GuardedImage<Lum32f> x(37, 10);
    GuardedImage<Lum32f> y(37, 10);
    const auto call = [&](GuardedImage<Lum32f>& xMap, GuardedImage<Lum32f>& yMap) {
        return maps(xMap, yMap, lens);
    };
    EXPECT_STATUS(lumStatusOk, call(radialX, radialY));
    for (const auto& [first, second] : {std::pair{-0.0F, 0.0F}, {0.0F, -0.0F}, {-0.0F, -0.0F}}) {
        lens.p1 = first;
        lens.p2 = second;
        EXPECT_STATUS(lumStatusOk, call(x, y));
        EXPECT_TRUE(sameBits(radialX.pixels(), x.pixels()));
        EXPECT_TRUE(sameBits(radialY.pixels(), y.pixels()));
    }
}

TEST(CreateMapCameraUndistort_32f_C1R, PlacesOutsideAreWrittenToo) {
    GuardedImage<Lum32f> x(6, 2);
    GuardedImage<Lum32f> y(6, 2);
    const Lens lens{.fx = 1, .fy = 1, .cx = 0, .cy = 0, .k1 = 0.5F};
    EXPECT_STATUS(lumStatusOk, maps(x, y, lens));
    for (int column = 0; column < 6; ++column)
        EXPECT_EQ(column + 0.5F * column * column * column, x.at(column, 0));
    EXPECT_EQ(5 + 5 * 0.5F * 26, x.at(5, 1));
    EXPECT_EQ(1 + 0.5F * 26, y.at(5, 1));
}

TEST(CreateMapCameraUndistort_32f_C1R, OneTangentialCoefficientSelectsTheNormalisedModel) {
    GuardedImage<Lum32f> x(3, 1);
    GuardedImage<Lum32f> y(3, 1);
    const Lens first{.fx = 2, .fy = 4, .cx = 0, .cy = 1, .p1 = 0.5F};
    EXPECT_STATUS(lumStatusOk, maps(x, y, first));
    // X = 1, Y = -1/4, r2 = 17/16.
    EXPECT_EQ(2 * (1 - 0.25F), x.at(2, 0));
    EXPECT_EQ(4 * (-0.25F + 0.5F * (17 / 16.0F + 2 / 16.0F)) + 1, y.at(2, 0));
    const Lens second{.fx = 2, .fy = 4, .cx = 0, .cy = 1, .p2 = 0.5F};
    EXPECT_STATUS(lumStatusOk, maps(x, y, second));
    EXPECT_EQ(2 * (1 + 0.5F * (17 / 16.0F + 2)), x.at(2, 0));
    EXPECT_EQ(4 * (-0.25F - 0.25F) + 1, y.at(2, 0));
}

TEST(CreateMapCameraUndistort_32f_C1R, ChecksComeInTheirOrder) {
    GuardedImage<Lum32f> x(4, 2, {.padding = 8});
    GuardedImage<Lum32f> y(4, 2, {.padding = 8});
    const int step = x.step();
    const LumSize size = x.size();
    const Lens none{.fx = 0, .fy = 0};
    struct Row {
        LumStatus expected;
        MapCall call;
    };
    const auto withSteps = [&](int xStep, int yStep) {
        return MapCall{x.data(), xStep, y.data(), yStep, size, none};
    };
    std::vector<Row> table{
        {lumStatusNullPointer, {nullptr, step, y.data(), step, {0, 0}, none}},
        {lumStatusNullPointer, {x.data(), step, nullptr, step, {0, 0}, none}},
    };
    for (LumSize empty : {LumSize{0, 2}, LumSize{4, 0}, LumSize{-4, 2}, LumSize{4, -2}})
        table.push_back({lumStatusSizeError, {x.data(), 1, y.data(), 1, empty, none}});
    for (int shortStep : {15, 0, -16}) {
        table.push_back({lumStatusStepError, withSteps(shortStep, step + 1)});
        table.push_back({lumStatusStepError, withSteps(step + 1, shortStep)});
    }
    table.push_back({lumStatusStepAlignmentError, withSteps(18, step)});
    table.push_back({lumStatusStepAlignmentError, withSteps(step, 18)});
    for (Lens lens : {Lens{.fx = 0}, Lens{.fy = 0}, Lens{.fx = -0.0F}, Lens{.fy = -0.0F}, none})
        table.push_back({lumStatusBadArgument, {x.data(), step, y.data(), step, size, lens}});
    for (const Row& r : table) EXPECT_REFUSED(r.expected, x, maps(r.call));
    EXPECT_TRUE(y.untouched());
    EXPECT_STATUS(lumStatusOk, maps({x.data(), 16, y.data(), 16, size, {}}));
    // No product of focal lengths counts, which would be 0 here.
    EXPECT_STATUS(lumStatusOk, maps({x.data(), 16, y.data(), 16, size, {.fx = 1e-30F, .fy = 1e-30F}}));
}

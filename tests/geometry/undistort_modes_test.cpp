#include "geometry/undistort_members.h"
#include "support/control_word.h"
#include "support/guarded_image.h"
#include "support/member_test.h"
#include "support/status_checks.h"

using namespace lenses;
using namespace support;

namespace {

/// Control words of callers: every rounding mode, and denormals that are zeros as results and as operands.
constexpr unsigned flushesToZero = 0x8000;
constexpr unsigned denormalsAreZeros = 0x0040;
constexpr unsigned toNearest = 0x1F80;
constexpr unsigned downward = 0x3F80;
constexpr unsigned upward = 0x5F80;
constexpr unsigned towardZero = 0x7F80;
constexpr unsigned wordsOfCallers[] = {toNearest,
                                       downward,
                                       upward,
                                       towardZero,
                                       downward | flushesToZero | denormalsAreZeros,
                                       towardZero | flushesToZero};

/// A call's status, and that it leaves the control word as it finds it, but for the flags that arithmetic raises.
template <class Call> LumStatus statusUnder(unsigned word, Call call) {
    constexpr unsigned allButTheFlags = 0xFFC0;
    const ControlWord callers(word);
    const LumStatus status = call();
    const unsigned changed = callers.changed();
    EXPECT_EQ(0U, changed & allButTheFlags);
    return status;
}

MEMBER_TEST_SUITE(UndistortMembers, Members);

/// Both maps of a lens.
struct Maps {
    GuardedImage<Lum32f> x;
    GuardedImage<Lum32f> y;

    explicit Maps(LumSize size) : x(size.width, size.height), y(size.width, size.height) {}

    LumStatus fill(const Lens& lens, Lum8u* buffer = nullptr) { return maps(x, y, lens, buffer); }
    bool sameAs(const Maps& other) const {
        return sameBits(x.pixels(), other.x.pixels()) && sameBits(y.pixels(), other.y.pixels());
    }
};

} // namespace

MEMBER_TEST(UndistortMembers, PlacesAndPixelsAreTruncatedWhateverTheMode) {
    using T = typename TypeParam::Element;
    // Column 1 is taken at 1.5 and row 0 at 0: exact in every rounding mode.
    const Lens lens{.fx = 1, .fy = 1, .cx = 0, .cy = 0, .k1 = 0.5F};
    for (unsigned word : wordsOfCallers) {
        SCOPED_TRACE(word);
        GuardedImage<T> src(8, 2, {.channels = TypeParam::count});
        GuardedImage<T> dst(8, 2, {.channels = TypeParam::count});
        src.fill([](int x, int y, int c) { return (y == 0 ? 10 + 13 * x : 200) + c; });
        GuardedBlock buffer(bufferSize(src.size()));
        for (Lum8u* memory : {static_cast<Lum8u*>(nullptr), buffer.as()}) {
            dst.fill([](int, int, int) { return 0; });
            EXPECT_STATUS(lumStatusOk,
                          statusUnder(word, [&] { return TypeParam::run(src, dst, lens, memory); }));
            for (int c = 0; c < TypeParam::count; ++c) {
                EXPECT_EQ(static_cast<T>(10 + c), dst.at(0, 0, c));
                EXPECT_EQ(static_cast<T>(std::is_integral_v<T> ? 30 + c : 29.5 + c), dst.at(1, 0, c));
                EXPECT_EQ(static_cast<T>(88 + c), dst.at(2, 0, c)) << "at 6";
                EXPECT_EQ(T{0}, dst.at(3, 0, c)) << "at 16.5, outside";
            }
        }
    }
}

MEMBER_TEST(UndistortMembers, ArithmeticRoundsToNearestWhateverTheMode) {
    using T = typename TypeParam::Element;
    const Lens lens{.fx = 40, .fy = 37, .cx = 31.3F, .cy = 22.7F, .k1 = -0.21F, .k2 = 0.03F};
    GuardedImage<T> src(64, 48, {.channels = TypeParam::count});
    GuardedImage<T> expected(64, 48, {.channels = TypeParam::count});
    GuardedImage<T> dst(64, 48, {.channels = TypeParam::count});
    src.fillRandom(12);
    GuardedBlock buffer(bufferSize(src.size()));
    EXPECT_STATUS(lumStatusOk, TypeParam::run(src, expected, lens));
    for (unsigned word : wordsOfCallers)
        for (Lum8u* memory : {static_cast<Lum8u*>(nullptr), buffer.as()}) {
            SCOPED_TRACE(word);
            dst.fill([](int, int, int) { return 0; });
            EXPECT_STATUS(lumStatusOk,
                          statusUnder(word, [&] { return TypeParam::run(src, dst, lens, memory); }));
            EXPECT_TRUE(sameBits(expected.pixels(), dst.pixels()));
        }
}

MEMBER_TEST(UndistortMembers, DenormalFocalLengthsAreNotZeroWhateverTheMode) {
    using T = typename TypeParam::Element;
    GuardedImage<T> src(4, 4, {.channels = TypeParam::count});
    GuardedImage<T> dst(4, 4, {.channels = TypeParam::count});
    const auto call = [&](const Lens& lens) { return TypeParam::run(src, dst, lens); };
    for (unsigned word : {toNearest, toNearest | denormalsAreZeros}) {
        for (Lens lens : {Lens{.fx = 1e-40F}, Lens{.fx = -1e-40F}, Lens{.fy = 1e-40F}, Lens{.fy = -1e-40F}})
            EXPECT_STATUS(lumStatusOk, statusUnder(word, [&] { return call(lens); }));
        for (Lens lens : {Lens{.fx = 0}, Lens{.fy = -0.0F}})
            EXPECT_STATUS(lumStatusBadArgument, statusUnder(word, [&] { return call(lens); }));
    }
}

TEST(CreateMapCameraUndistort_32f_C1R, ArithmeticRoundsToNearestWhateverTheMode) {
    const LumSize size{37, 19};
    for (float tangential : {0.0F, 0.013F}) {
        const Lens lens{.fx = 40,
                        .fy = 37,
                        .cx = 17.3F,
                        .cy = 9.7F,
                        .k1 = -0.21F,
                        .k2 = 0.03F,
                        .p1 = tangential,
                        .p2 = -tangential};
        Maps expected(size);
        EXPECT_STATUS(lumStatusOk, expected.fill(lens));
        GuardedBlock buffer(bufferSize(size));
        for (unsigned word : wordsOfCallers)
            for (Lum8u* memory : {static_cast<Lum8u*>(nullptr), buffer.as()}) {
                SCOPED_TRACE(word);
                Maps actual(size);
                EXPECT_STATUS(lumStatusOk, statusUnder(word, [&] { return actual.fill(lens, memory); }));
                EXPECT_TRUE(actual.sameAs(expected));
            }
    }
}

TEST(CreateMapCameraUndistort_32f_C1R, DenormalFocalLengthsAreNotZeroWhateverTheMode) {
    Maps actual({4, 4});
    for (unsigned word : {toNearest, toNearest | denormalsAreZeros}) {
        for (Lens lens : {Lens{.fx = 1e-40F}, Lens{.fx = -1e-40F}, Lens{.fy = 1e-40F}, Lens{.fy = -1e-40F}})
            EXPECT_STATUS(lumStatusOk, statusUnder(word, [&] { return actual.fill(lens); }));
        for (Lens lens : {Lens{.fx = 0}, Lens{.fy = -0.0F}})
            EXPECT_STATUS(lumStatusBadArgument, statusUnder(word, [&] { return actual.fill(lens); }));
    }
}

TEST(CreateMapCameraUndistort_32f_C1R, DenormalTangentialTermsAreNotZeroWhateverTheMode) {
    const LumSize size{37, 19};
    const Lens radial{.fx = 3.3F, .fy = 3.7F, .cx = 0.7F, .cy = 0.3F, .k1 = 0.11F, .k2 = 0.03F};
    Maps radialMaps(size);
    EXPECT_STATUS(lumStatusOk, radialMaps.fill(radial));
    for (float denormal : {1e-40F, -1e-40F})
        for (bool isFirst : {true, false}) {
            Lens lens = radial;
            (isFirst ? lens.p1 : lens.p2) = denormal;
            Maps expected(size);
            EXPECT_STATUS(lumStatusOk, expected.fill(lens));
            EXPECT_FALSE(expected.sameAs(radialMaps));
            // The coefficient adds nothing to a float: the bits are those of its model with a term of 0.
            for (unsigned word :
                 {toNearest | denormalsAreZeros, toNearest | denormalsAreZeros | flushesToZero}) {
                Maps actual(size);
                EXPECT_STATUS(lumStatusOk, statusUnder(word, [&] { return actual.fill(lens); }));
                EXPECT_TRUE(actual.sameAs(expected));
            }
        }
}

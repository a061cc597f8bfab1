#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

#include "norm_members.h"
#include "support/guarded_image.h"
#include "support/member_test.h"
#include "support/status_checks.h"

using namespace support;

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr std::uint64_t bitsOfZeroOverZero = 0xFFF8000000000000;

template <class T> ConstImage<T> view(const GuardedImage<T>& image) { return {image.data(), image.step()}; }

using Everything = testing::Types<
    NormMembers<NormKind::inf, Lum8u>, NormMembers<NormKind::inf, Lum16u>, NormMembers<NormKind::inf, Lum32f>,
    NormMembers<NormKind::l1, Lum8u>, NormMembers<NormKind::l1, Lum16u>, NormMembers<NormKind::l1, Lum32f>,
    NormMembers<NormKind::l2, Lum8u>, NormMembers<NormKind::l2, Lum16u>, NormMembers<NormKind::l2, Lum32f>>;
MEMBER_TEST_SUITE(MaskedNorms, Everything);

/// Integers over their range; in 32f whole numbers so small that any order of summing them is exact.
template <class T> T elementFrom(std::mt19937& engine) {
    if constexpr (std::is_integral_v<T>)
        return static_cast<T>(engine() % 4 == 0 ? std::numeric_limits<T>::max() : engine());
    else
        return static_cast<T>(static_cast<int>(engine() % 201) - 100);
}

/// The total of one image or of a difference, in integers wide enough for the images of these tests.
template <class Members> class PlainTotal {
  public:
    void add(std::int64_t x) {
        const std::uint64_t magnitude = x < 0 ? -x : x;
        if constexpr (Members::kind == NormKind::inf)
            total_ = std::max(total_, magnitude);
        else
            total_ += Members::kind == NormKind::l1 ? magnitude : magnitude * magnitude;
    }
    double value() const {
        if constexpr (std::is_integral_v<typename Members::Element>)
            return static_cast<double>(total_);
        else
            return static_cast<double>(static_cast<float>(total_));
    }
    double norm() const { return Members::kind == NormKind::l2 ? std::sqrt(value()) : value(); }

  private:
    std::uint64_t total_ = 0;
};

template <class Members, class T = typename Members::Element>
void expectNorms(const GuardedImage<T>& a, const GuardedImage<T>& b, const GuardedImage<Lum8u>& mask,
                 int coi) {
    PlainTotal<Members> ofA, ofB, ofDifference;
    const int channel = coi == 0 ? 0 : coi - 1;
    for (int y = 0; y < a.size().height; ++y)
        for (int x = 0; x < a.size().width; ++x) {
            if (mask.at(x, y) == 0) continue;
            const auto valueOfA = static_cast<std::int64_t>(a.at(x, y, channel));
            const auto valueOfB = static_cast<std::int64_t>(b.at(x, y, channel));
            ofA.add(valueOfA);
            ofB.add(valueOfB);
            ofDifference.add(valueOfA - valueOfB);
        }
    const Norm image = normOf<Members>(view(a), view(mask), a.size(), coi);
    ASSERT_EQ(lumStatusOk, image.status);
    ASSERT_EQ(ofA.norm(), image.value);
    const Norm difference = normOfDifference<Members>(view(a), view(b), view(mask), a.size(), coi);
    ASSERT_EQ(lumStatusOk, difference.status);
    ASSERT_EQ(ofDifference.norm(), difference.value);
    const Norm relative = relativeNorm<Members>(view(a), view(b), view(mask), a.size(), coi);
    if (ofB.value() == 0) {
        ASSERT_EQ(lumStatusZeroDenominator, relative.status);
        if (ofDifference.value() == 0)
            ASSERT_EQ(bitsOfZeroOverZero, std::bit_cast<std::uint64_t>(relative.value));
        else
            ASSERT_EQ(std::numeric_limits<double>::infinity(), relative.value);
    } else {
        const double ratio = ofDifference.value() / ofB.value();
        ASSERT_EQ(lumStatusOk, relative.status);
        ASSERT_EQ(Members::kind == NormKind::l2 ? std::sqrt(ratio) : ratio, relative.value);
    }
}

} // namespace

TEST(MaskedNorm, WorkedExample) {
    const Lum8u a[] = {3, 4, 200};
    const Lum8u b[] = {1, 1, 9};
    const Lum8u mask[] = {1, 255, 0}; // leaves 3 and 4 of a, 1 and 1 of b
    const LumSize size{3, 1};
    double value = 0;
    EXPECT_STATUS(lumStatusOk, lumiNorm_Inf_8u_C1MR(a, 3, mask, 3, size, &value));
    EXPECT_EQ(4, value);
    EXPECT_STATUS(lumStatusOk, lumiNorm_L1_8u_C1MR(a, 3, mask, 3, size, &value));
    EXPECT_EQ(3 + 4, value);
    EXPECT_STATUS(lumStatusOk, lumiNorm_L2_8u_C1MR(a, 3, mask, 3, size, &value));
    EXPECT_EQ(5, value); // the root of 9 + 16
    EXPECT_STATUS(lumStatusOk, lumiNormDiff_L1_8u_C1MR(a, 3, b, 3, mask, 3, size, &value));
    EXPECT_EQ(2 + 3, value);
    EXPECT_STATUS(lumStatusOk, lumiNormRel_L1_8u_C1MR(a, 3, b, 3, mask, 3, size, &value));
    EXPECT_EQ(5.0 / 2.0, value);
}

MEMBER_TEST(MaskedNorms, EveryWidthMaskAndChannelAgreesWithThePlainFormula) {
    using T = typename TypeParam::Element;
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 engine(seed);
    std::vector<int> widths{128, 129, 255, 260, 391};
    for (int width = 1; width <= 70; ++width) widths.push_back(width);
    for (int width : widths)
        for (int channels : {1, 3})
            for (Guard guard : {Guard::after, Guard::before}) {
                const auto placement = [&](int ofChannels) {
                    return Placement{.channels = ofChannels,
                                     .padding = static_cast<int>(engine() % 5 * sizeof(T)),
                                     .offset = static_cast<int>(engine() % 33),
                                     .guard = guard};
                };
                GuardedImage<T> a(width, 4, placement(channels));
                GuardedImage<T> b(width, 4, placement(channels));
                GuardedImage<Lum8u> mask(width, 4, placement(1));
                const unsigned share = engine() % 5;
                mask.fill([&](int, int, int) { return share == 0 || engine() % share != 0 ? 0 : engine(); });
                // What the mask excludes must not show, whatever it is.
                const auto fill = [&](GuardedImage<T>& image) {
                    image.fill([&](int x, int y, int) {
                        if constexpr (std::is_floating_point_v<T>)
                            if (mask.at(x, y) == 0) return engine() % 2 == 0 ? notANumber : -infinity;
                        return elementFrom<T>(engine);
                    });
                };
                fill(a);
                fill(b);
                for (int coi = channels == 1 ? 0 : 1; coi <= (channels == 1 ? 0 : 3); ++coi) {
                    expectNorms<TypeParam>(a, b, mask, coi);
                    if (testing::Test::HasFatalFailure()) FAIL() << "width " << width << ", coi " << coi;
                }
                ASSERT_TRUE(a.untouched() && b.untouched() && mask.untouched());
            }
}

MEMBER_TEST(MaskedNorms, VectorAgreesWithScalarBitForBit) {
    using namespace lum::kernels;
    using T = typename TypeParam::Element;
    constexpr NormKind kind = TypeParam::kind;
    std::mt19937 engine(3);
    std::vector<int> widths{127, 129, 1037};
    for (int width = 1; width <= 70; ++width) widths.push_back(width);
    for (int width : widths) {
        GuardedImage<T> a(width, 3, {.channels = 3, .padding = 4});
        GuardedImage<T> b(width, 3, {.channels = 3});
        GuardedImage<Lum8u> mask(width, 3, {.padding = 1});
        a.fillRandom(width);
        b.fillRandom(width + 1);
        mask.fill([&](int, int, int) { return engine() % 3; });
        const lum::Image<const Lum8u> selected{mask.data(), mask.step()};
        const auto expectEqual = [&]<int channels>(int channel) {
            const Pixels<T, channels> first{{a.data(), a.step()}, channel};
            const Pixels<T, channels> second{{b.data(), b.step()}, channel};
            for (NormOf of : {NormOf::image, NormOf::difference, NormOf::differenceAndSecond}) {
                using Totals = MaskedTotals<kind, T, channels>;
                const NormTotals scalar = Totals::scalar(of, first, second, selected, a.size());
                const NormTotals vector = Totals::vectors(of, first, second, selected, a.size());
                EXPECT_EQ(std::bit_cast<std::uint64_t>(scalar.first),
                          std::bit_cast<std::uint64_t>(vector.first))
                    << "width " << width;
                EXPECT_EQ(std::bit_cast<std::uint64_t>(scalar.second),
                          std::bit_cast<std::uint64_t>(vector.second))
                    << "width " << width;
            }
        };
        expectEqual.template operator()<1>(0);
        for (int channel = 0; channel < 3; ++channel) expectEqual.template operator()<3>(channel);
    }
}

MEMBER_TEST(MaskedNorms, TheSameRowGivesTheSameBitsAtEveryAddress) {
    using T = typename TypeParam::Element;
    for (int width : {5, 16, 61, 200}) {
        std::uint64_t bits[3] = {};
        for (int offset = 0; offset < 17; ++offset) {
            const Placement placement{.padding = offset % 3 * 4, .offset = offset, .guard = Guard::before};
            GuardedImage<T> a(width, 3, placement);
            GuardedImage<T> b(width, 3, {.padding = 4, .offset = (5 * offset) % 23, .guard = Guard::before});
            GuardedImage<Lum8u> mask(width, 3, {.offset = offset * 3 % 16, .guard = Guard::before});
            a.fillRandom(1);
            b.fillRandom(2);
            mask.fill([](int x, int y, int) { return (x + y) % 3; });
            const double values[3] = {
                normOf<TypeParam>(view(a), view(mask), a.size()).value,
                normOfDifference<TypeParam>(view(a), view(b), view(mask), a.size()).value,
                relativeNorm<TypeParam>(view(a), view(b), view(mask), a.size()).value};
            for (int i = 0; i < 3; ++i) {
                if (offset == 0) bits[i] = std::bit_cast<std::uint64_t>(values[i]);
                EXPECT_EQ(bits[i], std::bit_cast<std::uint64_t>(values[i])) << "offset " << offset;
            }
        }
    }
}

MEMBER_TEST(MaskedNorms, EmptyMaskGivesZeroAndTheRelativeNormWarnsWithNaN) {
    using T = typename TypeParam::Element;
    for (int width : {1, 3, 50}) {
        GuardedImage<T> a(width, 2, {.channels = 3});
        GuardedImage<Lum8u> mask(width, 2);
        a.fillRandom(3);
        for (int coi : {0, 1, 2, 3}) {
            const Norm image = normOf<TypeParam>(view(a), view(mask), a.size(), coi);
            EXPECT_STATUS(lumStatusOk, image.status);
            EXPECT_EQ(0U, std::bit_cast<std::uint64_t>(image.value));
            const Norm difference = normOfDifference<TypeParam>(view(a), view(a), view(mask), a.size(), coi);
            EXPECT_STATUS(lumStatusOk, difference.status);
            EXPECT_EQ(0U, std::bit_cast<std::uint64_t>(difference.value));
            const Norm relative = relativeNorm<TypeParam>(view(a), view(a), view(mask), a.size(), coi);
            EXPECT_STATUS(lumStatusZeroDenominator, relative.status);
            EXPECT_EQ(bitsOfZeroOverZero, std::bit_cast<std::uint64_t>(relative.value));
        }
    }
}

MEMBER_TEST(MaskedNorms, ZeroSecondImageGivesInfinityOrNaNAndTheWarning) {
    using T = typename TypeParam::Element;
    for (int width : {3, 50}) {
        GuardedImage<T> a(width, 2);
        GuardedImage<T> zero(width, 2);
        GuardedImage<Lum8u> mask(width, 2);
        mask.fill([](int, int, int) { return 1; });
        a.fill([&](int x, int y, int) { return x == width - 1 && y == 1 ? 9 : 0; });
        const Norm infinite = relativeNorm<TypeParam>(view(a), view(zero), view(mask), a.size());
        EXPECT_EQ(2, infinite.status);
        EXPECT_EQ(std::numeric_limits<double>::infinity(), infinite.value);
        const Norm zeroOverZero = relativeNorm<TypeParam>(view(zero), view(zero), view(mask), a.size());
        EXPECT_EQ(2, zeroOverZero.status);
        EXPECT_EQ(bitsOfZeroOverZero, std::bit_cast<std::uint64_t>(zeroOverZero.value));
    }
}

MEMBER_TEST(MaskedNorms, EqualImagesHaveTheRelativeNormZero) {
    using T = typename TypeParam::Element;
    GuardedImage<T> a(37, 3, {.channels = 3});
    GuardedImage<Lum8u> mask(37, 3);
    mask.fill([](int, int, int) { return 255; });
    a.fill([](int x, int, int) { return 1 + x % 7; });
    for (int coi : {0, 1, 3}) {
        const Norm norm = relativeNorm<TypeParam>(view(a), view(a), view(mask), a.size(), coi);
        EXPECT_STATUS(lumStatusOk, norm.status);
        EXPECT_EQ(0U, std::bit_cast<std::uint64_t>(norm.value));
    }
}

MEMBER_TEST(MaskedNorms, NullPointersComeBeforeSizes) {
    using T = typename TypeParam::Element;
    using Of = TypeParam;
    const T pixels[12] = {};
    const Lum8u bytes[4] = {};
    const T* none = nullptr;
    const Lum8u* noMask = nullptr;
    double* nowhere = nullptr;
    for (LumSize size : {LumSize{4, 1}, LumSize{0, -1}}) {
        double v = untouchedNorm;
        for (LumStatus status : {
                 Of::image(none, 1, bytes, 1, size, &v),
                 Of::image(pixels, 1, noMask, 1, size, &v),
                 Of::image(pixels, 1, bytes, 1, size, nowhere),
                 Of::imageChannel(none, 1, bytes, 1, size, 9, &v),
                 Of::imageChannel(pixels, 1, noMask, 1, size, 9, &v),
                 Of::imageChannel(pixels, 1, bytes, 1, size, 9, nowhere),
                 Of::difference(none, 1, pixels, 1, bytes, 1, size, &v),
                 Of::difference(pixels, 1, none, 1, bytes, 1, size, &v),
                 Of::difference(pixels, 1, pixels, 1, noMask, 1, size, &v),
                 Of::difference(pixels, 1, pixels, 1, bytes, 1, size, nowhere),
                 Of::differenceChannel(none, 1, pixels, 1, bytes, 1, size, 9, &v),
                 Of::differenceChannel(pixels, 1, none, 1, bytes, 1, size, 9, &v),
                 Of::differenceChannel(pixels, 1, pixels, 1, noMask, 1, size, 9, &v),
                 Of::differenceChannel(pixels, 1, pixels, 1, bytes, 1, size, 9, nowhere),
                 Of::relative(none, 1, pixels, 1, bytes, 1, size, &v),
                 Of::relative(pixels, 1, none, 1, bytes, 1, size, &v),
                 Of::relative(pixels, 1, pixels, 1, noMask, 1, size, &v),
                 Of::relative(pixels, 1, pixels, 1, bytes, 1, size, nowhere),
                 Of::relativeChannel(none, 1, pixels, 1, bytes, 1, size, 9, &v),
                 Of::relativeChannel(pixels, 1, none, 1, bytes, 1, size, 9, &v),
                 Of::relativeChannel(pixels, 1, pixels, 1, noMask, 1, size, 9, &v),
                 Of::relativeChannel(pixels, 1, pixels, 1, bytes, 1, size, 9, nowhere),
             })
            EXPECT_STATUS(lumStatusNullPointer, status);
        EXPECT_EQ(untouchedNorm, v);
    }
}

MEMBER_TEST(MaskedNorms, EachWrongArgumentIsRefusedInOrder) {
    using T = typename TypeParam::Element;
    constexpr int size = sizeof(T);
    GuardedImage<T> image(4, 2, {.channels = 3, .padding = 16});
    GuardedImage<Lum8u> mask(4, 2, {.padding = 4});
    const T* data = image.data();

    /// All three families with either image step; a refused call writes nothing.
    const auto expectStatus = [&](LumStatus expected, int step, int maskStep, LumSize roi, int coi) {
        const int good = 12 * size;
        const LumStatus zero = expected == lumStatusOk ? lumStatusZeroDenominator : expected;
        const ConstImage<Lum8u> selected{mask.data(), maskStep};
        const Norm norms[] = {
            normOf<TypeParam>({data, step}, selected, roi, coi),
            normOfDifference<TypeParam>({data, step}, {data, good}, selected, roi, coi),
            normOfDifference<TypeParam>({data, good}, {data, step}, selected, roi, coi),
            relativeNorm<TypeParam>({data, step}, {data, good}, selected, roi, coi),
            relativeNorm<TypeParam>({data, good}, {data, step}, selected, roi, coi),
        };
        for (int i = 0; i < 5; ++i) {
            EXPECT_EQ(i < 3 ? expected : zero, norms[i].status)
                << "call " << i << ", step " << step << ", mask step " << maskStep << ", coi " << coi;
            if (expected < 0) {
                EXPECT_EQ(untouchedNorm, norms[i].value);
            }
        }
    };

    constexpr int lowest = std::numeric_limits<int>::min();
    constexpr int highest = std::numeric_limits<int>::max();
    const LumStatus misaligned = size == 1 ? lumStatusOk : lumStatusStepAlignmentError;
    for (int coi : {0, 1, 3}) {
        const int row = 4 * size * (coi == 0 ? 1 : 3);
        for (LumSize empty : {LumSize{0, 2}, LumSize{4, 0}, LumSize{-4, 2}, LumSize{4, -2}})
            expectStatus(lumStatusSizeError, -1, -1, empty, coi == 0 ? 0 : 7);
        expectStatus(lumStatusOk, row, 4, {4, 1}, coi);
        for (int step : {row - 1, row - size, 0, -row, lowest})
            expectStatus(lumStatusStepError, step, 4, {4, 1}, coi);
        expectStatus(misaligned, row + 1, 4, {4, 1}, coi);
        expectStatus(size == 1 ? lumStatusStepError : misaligned, row + 1, 3, {4, 1}, coi);
        for (int maskStep : {3, 0, -4, lowest}) expectStatus(lumStatusStepError, row, maskStep, {4, 1}, coi);
        // Of two images, all sizes come before all alignments, and each alignment counts by itself.
        for (auto* call : {normOfDifference<TypeParam>, relativeNorm<TypeParam>}) {
            const ConstImage<Lum8u> selected{mask.data(), 4};
            const auto status = [&](int step1, int step2) {
                return call({data, step1}, {data, step2}, selected, {4, 1}, coi).status;
            };
            EXPECT_STATUS(lumStatusStepError, status(row + 1, row - 1));
            EXPECT_STATUS(lumStatusStepError, status(row - 1, row + 1));
            if (size > 1) {
                EXPECT_STATUS(lumStatusStepAlignmentError, status(row + size / 2, row + size / 2));
            }
        }
        // A row that would wrap in 32 bits is no small row.
        expectStatus(lumStatusStepError, row, highest, {0x40000000, 1}, coi);
        expectStatus(lumStatusStepError, row, highest, {0x55555556, 1}, coi);
    }
    for (int coi : {-1, 4, highest, lowest}) {
        expectStatus(lumStatusChannelOfInterestError, 12 * size, 4, {4, 1}, coi);
        expectStatus(lumStatusStepError, 12 * size, 3, {4, 1}, coi);
    }
}

MEMBER_TEST(MaskedNorms, ChannelOfInterestZeroIsRefused) {
    using T = typename TypeParam::Element;
    const T pixels[12] = {};
    const Lum8u bytes[4] = {};
    constexpr int step = sizeof pixels;
    double v = untouchedNorm;
    EXPECT_STATUS(lumStatusChannelOfInterestError,
                  TypeParam::imageChannel(pixels, step, bytes, 4, {4, 1}, 0, &v));
    EXPECT_STATUS(lumStatusChannelOfInterestError,
                  TypeParam::differenceChannel(pixels, step, pixels, step, bytes, 4, {4, 1}, 0, &v));
    EXPECT_STATUS(lumStatusChannelOfInterestError,
                  TypeParam::relativeChannel(pixels, step, pixels, step, bytes, 4, {4, 1}, 0, &v));
    EXPECT_EQ(untouchedNorm, v);
}

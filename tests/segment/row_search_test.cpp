// The forms that work a block at a time against those that take one pixel at a time, up to unreadable pages.
#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "kernels/segment/row_runs.h"
#include "kernels/segment/row_search.h"
#include "kernels/segment/similar_runs.h"
#include "kernels/segment/write_run.h"
#include "support/guarded_image.h"
#include "support/member_test.h"

using namespace lum;
using namespace lum::kernels;
using namespace support;

namespace {

using Rules = testing::Types<EqualTo<Lum8u, 1>, EqualTo<Lum8u, 3>, EqualTo<Lum16u, 1>, EqualTo<Lum16u, 3>,
                             EqualTo<Lum32s, 1>, EqualTo<Lum32f, 1>, EqualTo<Lum32f, 3>, Between<Lum8u, 1>,
                             Between<Lum8u, 3>, Between<Lum16u, 1>, Between<Lum16u, 3>, Between<Lum32f, 1>,
                             Between<Lum32f, 3>>;
MEMBER_TEST_SUITE(RowSearch, Rules);

template <class T, int channels> void setLimits(EqualTo<T, channels>& rule) { rule.value.fill(T{50}); }
template <class T, int channels> void setLimits(Between<T, channels>& rule) {
    for (int c = 0; c < channels; ++c) {
        rule.low[c] = static_cast<T>(40 + c);
        rule.high[c] = std::is_same_v<T, Lum8u> ? T{255} : static_cast<T>(60 + 2 * c);
    }
}

/// Members in long runs with single pixels that are none, or the other way round.
template <class T> void fillRow(GuardedImage<T>& row, std::mt19937& engine) {
    const unsigned rare = 1 + engine() % 60;
    const bool inverse = engine() % 2 == 0;
    row.fill([&](int, int, int) {
        const bool isOther = (engine() % rare == 0) != inverse;
        if (!isOther) return T{50};
        if (std::is_floating_point_v<T> && engine() % 4 == 0) return std::numeric_limits<T>::quiet_NaN();
        return static_cast<T>(engine() % 2 == 0 ? 39 : engine() % 200);
    });
}

} // namespace

MEMBER_TEST(RowSearch, FindsWhatOnePixelAtATimeFinds) {
    using Rule = TypeParam;
    using T = typename Rule::Element;
    Rule rule;
    setLimits(rule);
    Pixel<T, Rule::channelCount> newVal;
    newVal.fill(T{7});
    const VectorRow<Rule> vector(rule, newVal);
    const ScalarRow<Rule> scalar(rule, newVal);
    std::mt19937 engine(91);
    for (int width = 1; width <= 150; ++width)
        for (int i = 0; i < 6; ++i) {
            GuardedImage<T> image(width, 1,
                                  {.channels = Rule::channelCount,
                                   .offset = (width + i) % 64,
                                   .guard = i % 2 == 0 ? Guard::after : Guard::before});
            fillRow(image, engine);
            const T* row = image.data();
            for (int k = 0; k < 20; ++k) {
                const int x = static_cast<int>(engine() % (width + 1));
                const int end = x + static_cast<int>(engine() % (width - x + 1));
                ASSERT_EQ(scalar.firstMember(row, x, end), vector.firstMember(row, x, end))
                    << width << " wide";
                ASSERT_EQ(scalar.membersEnd(row, x, end), vector.membersEnd(row, x, end)) << width << " wide";
                ASSERT_EQ(scalar.membersBegin(row, x), vector.membersBegin(row, x)) << width << " wide";
            }
        }
}

MEMBER_TEST(RowSearch, WritesWhatOnePixelAtATimeWrites) {
    using Rule = TypeParam;
    using T = typename Rule::Element;
    Pixel<T, Rule::channelCount> newVal;
    for (int c = 0; c < Rule::channelCount; ++c) newVal[c] = static_cast<T>(11 + c);
    const VectorRow<Rule> vector({}, newVal);
    const ScalarRow<Rule> scalar({}, newVal);
    std::mt19937 engine(92);
    for (int width = 1; width <= 260; ++width) {
        GuardedImage<T> image(width, 1,
                              {.channels = Rule::channelCount,
                               .offset = width % 64,
                               .guard = width % 2 == 0 ? Guard::after : Guard::before});
        image.fillRandom(static_cast<unsigned>(width));
        auto expected = image.pixels();
        const int x = static_cast<int>(engine() % width / 2);
        const int end = x + static_cast<int>(engine() % (width - x + 1));
        scalar.write(expected.data(), x, end);
        vector.write(image.data(), x, end);
        ASSERT_TRUE(sameBits(expected, image.pixels())) << x << " to " << end << " of " << width;
        ASSERT_TRUE(image.outsideUntouched());
    }
}

TEST(WriteRun, SetsEveryCountAndNothingElse) {
    for (int count = 0; count <= 300; ++count) {
        GuardedImage<Lum8u> image(count + 2, 1, {.offset = count % 64});
        writeRun(image.data() + 1, count, Lum8u{5});
        for (int x = 0; x < count + 2; ++x) ASSERT_EQ(x == 0 || x == count + 1 ? 0 : 5, image.at(x, 0));
    }
}

using RunElements = testing::Types<Lum8u, Lum16u>;
MEMBER_TEST_SUITE(RowRuns, RunElements);

MEMBER_TEST(RowRuns, AreThoseOfOnePixelAtATime) {
    using T = TypeParam;
    std::mt19937 engine(93);
    for (int width = 1; width <= 170; ++width)
        for (int i = 0; i < 12; ++i) {
            GuardedImage<T> image(
                width, 1, {.offset = (width + i) % 64, .guard = i % 2 == 0 ? Guard::after : Guard::before});
            T last = 0;
            image.fill([&](int, int, int) {
                if (engine() % (1 + i % 6 * 4) == 0)
                    last = static_cast<T>(engine() % 2 == 0 ? 0 : 256 * (engine() % 2) + 1);
                return last;
            });
            std::vector<std::pair<int, int>> scalar, vector;
            scalarRuns(image.data(), width, [&](int left, int end) { scalar.emplace_back(left, end); });
            vectorRuns(image.data(), width, [&](int left, int end) { vector.emplace_back(left, end); });
            ASSERT_EQ(scalar, vector) << width << " wide";
        }
}

using SimilarElements = testing::Types<Lum8u, Lum16u, Lum16s, Lum32f>;
MEMBER_TEST_SUITE(RunsOfSimilar, SimilarElements);

MEMBER_TEST(RunsOfSimilar, AreThoseOfOnePixelAtATime) {
    using T = TypeParam;
    std::mt19937 engine(94);
    for (int i = 0; i < 2000; ++i) {
        const int width = 33 + i % 90;
        GuardedImage<T> image(width, 2,
                              {.offset = i % 64, .guard = i % 2 == 0 ? Guard::after : Guard::before});
        const unsigned spread = 2 + engine() % 9;
        image.fill([&](int, int, int) {
            if (std::is_floating_point_v<T> && engine() % 20 == 0) return std::numeric_limits<T>::quiet_NaN();
            if (engine() % 20 == 0)
                return engine() % 2 == 0 ? std::numeric_limits<T>::max() : std::numeric_limits<T>::lowest();
            return static_cast<T>(engine() % spread);
        });
        const T difference = static_cast<T>(i % 7 == 0 ? -1 : static_cast<int>(engine() % 3));
        const SimilarPixels<T> rule(T{1}, difference);
        const T* above = i % 3 == 0 ? nullptr : image.row(0);
        SimilarRuns<T> scalar(rule, image.row(1), above);
        SimilarRuns<T> vector(rule, image.row(1), above);
        const auto expectSame = [&](const SimilarRunBits& a, const SimilarRunBits& b) {
            ASSERT_EQ(a.starts, b.starts);
            ASSERT_EQ(a.startsAbove, b.startsAbove);
            ASSERT_EQ(a.belonging, b.belonging);
            ASSERT_EQ(a.contacts, b.contacts);
        };
        ASSERT_NO_FATAL_FAILURE(expectSame(scalar.scalarBits(0, 1), vector.scalarBits(0, 1)));
        int x = 1;
        for (; x <= width - 32; x += 32)
            ASSERT_NO_FATAL_FAILURE(expectSame(scalar.scalarBits(x, 32), vector.vectorBits(x, 32)));
        if (const int left = width - x; left > 0) {
            ASSERT_NO_FATAL_FAILURE(
                expectSame(scalar.scalarBits(x, left), vector.vectorBits(width - 32, left)));
        }
    }
}

using OneChannel =
    testing::Types<EqualTo<Lum8u, 1>, EqualTo<Lum16u, 1>, EqualTo<Lum32s, 1>, EqualTo<Lum32f, 1>,
                   Between<Lum8u, 1>, Between<Lum16u, 1>, Between<Lum32f, 1>>;
MEMBER_TEST_SUITE(RowBits, OneChannel);

MEMBER_TEST(RowBits, AreReadAndWrittenAsOnePixelAtATime) {
    using Rule = TypeParam;
    using T = typename Rule::Element;
    Rule rule;
    setLimits(rule);
    const VectorRow<Rule> vector(rule, {T{7}});
    std::mt19937 engine(95);
    for (int width = searchBlock<T>; width <= 300; ++width) {
        GuardedImage<T> image(width, 1,
                              {.offset = width % 64, .guard = width % 2 == 0 ? Guard::after : Guard::before});
        fillRow(image, engine);
        const int end = 1 + static_cast<int>(engine() % 6);
        const int begin = static_cast<int>(engine() % end);
        std::vector<std::uint64_t> words(end - begin);
        vector.members(image.data(), width, begin, end, words.data());
        for (int x = 64 * begin; x < 64 * end; ++x)
            ASSERT_EQ(x < width && isMember(rule, image.data() + x),
                      (words[x / 64 - begin] >> x % 64 & 1) != 0)
                << x << " of " << width;
        const int used = (width + 63) / 64;
        std::vector<std::uint64_t> set(used);
        for (std::uint64_t& word : set)
            word = engine() % 4 == 0 ? ~std::uint64_t{0} : std::uint64_t{engine()} << 32 | engine();
        if (width % 64 != 0) set.back() &= (std::uint64_t{1} << width % 64) - 1;
        auto expected = image.pixels();
        for (int x = 64 * std::min(begin, used - 1); x < width; ++x)
            if ((set[x / 64] >> x % 64 & 1) != 0) expected[x] = T{7};
        vector.writeSet(image.data(), width, std::min(begin, used - 1), used, set.data());
        ASSERT_TRUE(sameBits(expected, image.pixels())) << width << " wide";
        ASSERT_TRUE(image.outsideUntouched());
    }
}

// Fills of many short runs, which go on as sweeps over a map of bits, and the sweeps alone.
#include "kernels/segment/region_sweeps.h"

#include <gtest/gtest.h>

#include "segment/fill_members.h"
#include "support/member_test.h"

using namespace fills;
using namespace support;
using lum::kernels::GrownRegion;
using lum::kernels::PixelBits;
using lum::kernels::RegionSweeps;

namespace {

/// Members of the picture as a pattern of its columns and rows; patterns from `structured` on need no chance.
enum Pattern {
    sparse,
    half,
    dense,
    structured,
    checker = structured,
    comb,
    spiral,
    waves,
    snake,
    bars,
    patternCount
};

bool isSet(int pattern, int x, int y, LumSize size, std::mt19937& engine) {
    const int ring = std::min({x, y, size.width - 1 - x, size.height - 1 - y});
    switch (pattern) {
    case sparse:
        return engine() % 100 < 45;
    case half:
        return engine() % 100 < 62;
    case dense:
        return engine() % 100 < 90;
    case checker:
        return (x + y) % 2 == 0;
    case comb:
        return x % 2 == 0 || y == size.height / 2;
    case spiral:
        return ring % 2 == 0 ? !(x == ring && y == ring + 1) : x == ring && y == ring + 1;
    case waves:
        return (x + 3 * y + (y / 5) * (x / 64)) % 7 < 5;
    case snake:
        return x % 2 == 0 || y == (x / 2 % 2 == 0 ? 0 : size.height - 1);
    default:
        return x % 70 != 69 - y % 3 && (y % 4 != 3 || x % 64 > 61 || x % 64 < 2);
    }
}

std::vector<bool> drawn(int pattern, LumSize size, std::mt19937& engine) {
    std::vector<bool> set;
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) set.push_back(isSet(pattern, x, y, size, engine));
    return set;
}

/// Widths around whole words and vectors, and others.
LumSize sizeOf(int i, std::mt19937& engine) {
    constexpr int widths[] = {32,  33,  63,  64,  65,  95,  127, 128, 129, 191,
                              193, 255, 257, 300, 511, 512, 513, 577, 640, 700};
    return {widths[i % 20], 20 + static_cast<int>(engine() % 25)};
}

MEMBER_TEST_SUITE(ManyRuns, ExactFills);
MEMBER_TEST_SUITE(ManySimilarRuns, SimilarFills);

template <class M>
void expectFilled(const M& fill, const std::vector<typename M::Element>& elements, LumSize size,
                  LumPoint seed, const Outcome<typename M::Element>& expected,
                  const typename M::Values& newVal, const typename M::Values& delta, int shift) {
    using T = typename M::Element;
    const Guard guard = shift % 2 == 0 ? Guard::after : Guard::before;
    GuardedImage<T> image(size.width, size.height,
                          {.channels = M::channels,
                           .padding = shift % 3 * static_cast<int>(sizeof(T)),
                           .offset = shift,
                           .guard = guard});
    const int perRow = size.width * M::channels;
    image.fill([&](int x, int y, int c) { return elements[y * perRow + x * M::channels + c]; });
    GuardedBlock buffer(fill.bufferBytes(size), guard, shift);
    LumFillRegion region{};
    ASSERT_EQ(lumStatusOk, fill.call({.srcDst = image.data(),
                                      .step = image.step(),
                                      .size = size,
                                      .seed = seed,
                                      .newVal = newVal,
                                      .minDelta = delta,
                                      .maxDelta = delta,
                                      .region = &region,
                                      .buffer = buffer.template as<>()}));
    ASSERT_TRUE(sameBits(expected.pixels, image.pixels()));
    ASSERT_TRUE(image.outsideUntouched());
    ASSERT_EQ(expected.area, region.area);
    ASSERT_EQ(expected.rect.x, region.rect.x);
    ASSERT_EQ(expected.rect.y, region.rect.y);
    ASSERT_EQ(expected.rect.width, region.rect.width);
    ASSERT_EQ(expected.rect.height, region.rect.height);
}

/// Calls test(elements, size, seed, i) for every pattern; elements are `in` and, elsewhere, `out`.
template <class M, class Test> void forPictures(typename M::Element in, typename M::Element out, Test test) {
    std::mt19937 engine(31);
#ifdef LUMCV_SANITIZED
    constexpr int count = 2 * patternCount;
#else
    constexpr int count = 5 * patternCount;
#endif
    for (int i = 0; i < count; ++i) {
        const LumSize size = sizeOf(i + i / 20, engine);
        const std::vector<bool> set = drawn(i % patternCount, size, engine);
        std::vector<typename M::Element> elements;
        for (const bool member : set) elements.insert(elements.end(), M::channels, member ? in : out);
        std::vector<int> members;
        for (std::size_t p = 0; p < set.size(); ++p)
            if (set[p]) members.push_back(static_cast<int>(p));
        const int seed = members[engine() % members.size()];
        SCOPED_TRACE(testing::Message() << "picture " << i << ", " << size.width << " x " << size.height);
        test(elements, size, LumPoint{seed % size.width, seed / size.width}, i);
    }
}

/// A map of members for sweeps, and their block of exactly the queried size.
struct Map {
    LumSize size;
    std::vector<bool> members;
    GuardedBlock block;
    RegionSweeps sweeps;

    Map(int pattern, LumSize mapSize, bool corners, int shift, std::mt19937& engine)
        : size(mapSize),
          members(drawn(pattern, mapSize, engine)),
          block(RegionSweeps::bytes(mapSize), Guard::after, static_cast<std::size_t>(shift)),
          sweeps(block.as<unsigned char>(), mapSize, corners, {readMembers, this}) {}

    bool isMember(int x, int y) const {
        return x >= 0 && y >= 0 && x < size.width && y < size.height && members[y * size.width + x];
    }

    static void readMembers(const void* map, int y, int begin, int end, PixelBits* words) {
        const Map& self = *static_cast<const Map*>(map);
        for (int i = begin; i < end; ++i) {
            words[i - begin] = 0;
            for (int k = 0; k < 64; ++k) words[i - begin] |= PixelBits{self.isMember(64 * i + k, y)} << k;
        }
    }
};

} // namespace

MEMBER_TEST(ManyRuns, EveryRegionIsThatOfEqualPixels) {
    using M = TypeParam;
    using T = typename M::Element;
    for (const M& fill : membersOf<Rule::exact, M>()) {
        SCOPED_TRACE(fill.name());
        forPictures<M>(T{3}, T{9}, [&](const auto& elements, LumSize size, LumPoint seed, int i) {
            typename M::Values newVal;
            newVal.fill(T{5});
            const auto expected = fillByPixels(fill, Picture<M>(elements, size), seed, newVal,
                                               [](auto from, auto to) { return from == to; });
            ASSERT_NO_FATAL_FAILURE(expectFilled(fill, elements, size, seed, expected, newVal, {}, i % 64));
        });
    }
}

MEMBER_TEST(ManySimilarRuns, EveryRunFollowsTheRules) {
    using M = TypeParam;
    using T = typename M::Element;
    for (const M& fill : membersOf<Rule::range, M>()) {
        SCOPED_TRACE(fill.name());
        forPictures<M>(T{30}, T{90}, [&](auto elements, LumSize size, LumPoint seed, int i) {
            std::mt19937 engine(static_cast<unsigned>(i));
            for (T& element : elements)
                if (element == T{30}) element = static_cast<T>(element + engine() % 3);
            typename M::Values newVal, delta, low, high;
            // Every fourth fill meets its own pixels and is cut off.
            newVal.fill(static_cast<T>(i % 4 == 3 ? 31 : 60));
            delta.fill(T{2});
            const Picture<M> picture(elements, size);
            for (int c = 0; c < M::channels; ++c) {
                low[c] = static_cast<T>(picture.at(seed.x, seed.y)[c] - 2);
                high[c] = static_cast<T>(picture.at(seed.x, seed.y)[c] + 2);
            }
            const auto expected = fillByRuns(fill, picture, seed, newVal, low, high);
            ASSERT_NO_FATAL_FAILURE(
                expectFilled(fill, elements, size, seed, expected, newVal, delta, i % 64));
        });
    }
}

TEST(RegionSweeps, RunsReachWhatOnePixelAtATimeReaches) {
    constexpr auto eight = member<Rule::exact, 8, Lum8u, 1>;
    constexpr auto four = member<Rule::exact, 4, Lum8u, 1>;
    std::mt19937 engine(41);
    int given = 0;
    for (int i = 0; i < 400; ++i) {
        const bool corners = i % 2 == 0;
        const LumSize size{1 + static_cast<int>(engine() % (i % 5 == 0 ? 1100 : 300)),
                           1 + static_cast<int>(engine() % 40)};
        Map map(static_cast<int>(engine() % patternCount), size, corners, i % 64, engine);
        // A run that is no member any more, as a fill has written it.
        const int y = static_cast<int>(engine() % size.height);
        const int x = static_cast<int>(engine() % size.width);
        std::vector<Lum8u> pixels;
        for (const bool set : map.members) pixels.push_back(set ? 1 : 0);
        int left = x;
        while (map.isMember(left - 1, y)) --left;
        int right = x;
        while (map.isMember(right + 1, y)) ++right;
        for (int k = left; k <= right; ++k) {
            map.members[y * size.width + k] = false;
            pixels[y * size.width + k] = 1;
        }
        map.sweeps.add(y, left, right);
        if (!map.sweeps.grow()) continue;
        ++given;
        const auto expected = fillByPixels(corners ? eight : four, Picture<Fill<Lum8u, 1>>(pixels, size),
                                           {x, y}, {7}, [](auto from, auto to) { return from == to; });
        std::int64_t runs = 0;
        for (int row = 0; row < size.height; ++row)
            for (int k = 0; k < size.width; ++k) {
                const bool reached = (map.sweeps.row(row)[k / 64] >> k % 64 & 1) != 0;
                ASSERT_EQ(expected.pixels[row * size.width + k] == 7, reached)
                    << i << ": " << k << ", " << row;
                if (reached && (k == 0 || expected.pixels[row * size.width + k - 1] != 7)) ++runs;
            }
        const GrownRegion region = map.sweeps.region();
        ASSERT_EQ(expected.area, static_cast<double>(region.area));
        ASSERT_EQ(runs, region.runs);
        ASSERT_EQ(expected.rect.y, region.top);
        ASSERT_EQ(expected.rect.y + expected.rect.height - 1, region.bottom);
        ASSERT_EQ(expected.rect.x, region.left);
        ASSERT_EQ(expected.rect.x + expected.rect.width - 1, region.right);
    }
    EXPECT_GT(given, 300);
}

TEST(RegionSweeps, WindingRegionsMakeThemGiveUp) {
    std::mt19937 engine(42);
    Map map(snake, {1024, 50}, false, 0, engine);
    map.sweeps.add(0, 0, 2);
    EXPECT_FALSE(map.sweeps.grow());
}

TEST(RegionSweeps, LongRunsAndNarrowPicturesNeedNone) {
    for (LumSize size : {LumSize{600, 300}, LumSize{5, 900}}) {
        GuardedImage<Lum8u> image(size.width, size.height);
        image.fill([](int, int, int) { return Lum8u{3}; });
        int bytes = 0;
        ASSERT_EQ(lumStatusOk, lumiFloodFillGetSize(size, &bytes));
        GuardedBlock buffer(static_cast<std::size_t>(bytes), Guard::after);
        LumFillRegion region{};
        ASSERT_EQ(lumStatusOk, lumiFloodFill_4Con_8u_C1IR(image.data(), image.step(), size, {0, 0}, 5,
                                                          &region, buffer.as<>()));
        EXPECT_EQ(size.width * size.height, region.area);
        EXPECT_EQ(std::vector<Lum8u>(image.pixels().size(), 5), image.pixels());
    }
}

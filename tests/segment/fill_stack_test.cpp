// Fills whose pending runs do not fit the buffer as records of six words, in buffers of exactly the queried size that
// end at an unreadable page.
#include "lumcv.h"

#include <gtest/gtest.h>

#include <memory>

#include "kernels/segment/run_stack.h"
#include "segment/fill_members.h"

using namespace fills;
using namespace support;

namespace {

using Bytes = Fill<Lum8u, 1>;

/// Fills images of one size, all in one buffer.
template <class M> class Filler {
    using T = typename M::Element;

  public:
    Filler(const M& fill, LumSize size, int shift)
        : fill_(fill),
          size_(size),
          image_(size.width, size.height, {.channels = M::channels}),
          buffer_(fill.bufferBytes(size), Guard::after, static_cast<std::size_t>(shift)) {}

    /// Of the pixels in `set`, those that the seed reaches have to be filled.
    void expectFilled(const std::vector<T>& elements, LumPoint seed, const typename M::Values& newVal,
                      const typename M::Values& delta, const Outcome<T>& expected) {
        const int perRow = size_.width * M::channels;
        image_.fill([&](int x, int y, int c) { return elements[y * perRow + x * M::channels + c]; });
        LumFillRegion region{};
        ASSERT_EQ(lumStatusOk, fill_.call({.srcDst = image_.data(),
                                           .step = image_.step(),
                                           .size = size_,
                                           .seed = seed,
                                           .newVal = newVal,
                                           .minDelta = delta,
                                           .maxDelta = delta,
                                           .region = &region,
                                           .buffer = buffer_.template as<>()}));
        ASSERT_TRUE(sameBits(expected.pixels, image_.pixels())) << size_.width << " x " << size_.height;
        ASSERT_EQ(expected.area, region.area);
        ASSERT_EQ(expected.rect.width, region.rect.width);
        ASSERT_EQ(expected.rect.height, region.rect.height);
    }

    const M& fill() const { return fill_; }

  private:
    M fill_;
    LumSize size_;
    GuardedImage<T> image_;
    GuardedBlock buffer_;
};

void expectRegion(Filler<Bytes>& filler, const std::vector<Lum8u>& pixels, LumSize size, LumPoint seed) {
    const auto expected = fillByPixels(filler.fill(), Picture<Bytes>(pixels, size), seed, {7},
                                       [](auto from, auto to) { return from == to; });
    filler.expectFilled(pixels, seed, {7}, {}, expected);
}

} // namespace

TEST(FillStack, EverySmallImageIsFilledFromEverySeed) {
    for (const Bytes& fill : membersOf<Rule::exact, Bytes>()) {
        SCOPED_TRACE(fill.name());
#ifdef LUMCV_SANITIZED
        const std::vector<LumSize> sizes{{1, 3}, {1, 8}, {3, 3}, {5, 2}, {3, 4}};
#else
        const std::vector<LumSize> sizes{{1, 3}, {1, 12}, {12, 1}, {3, 3}, {5, 2},
                                         {2, 5}, {5, 3},  {3, 5},  {7, 2}, {2, 7}};
#endif
        for (LumSize size : sizes) {
            const int count = size.width * size.height;
            Filler filler(fill, size, size.width % 8);
            std::vector<Lum8u> pixels(count);
            for (unsigned set = 1; set<1U << count; set += count> 12 ? 3 : 1) {
                for (int i = 0; i < count; ++i) pixels[i] = set >> i & 1U;
                // The first, the last and a middle one of those set.
                std::vector<int> seeds;
                for (int i = 0; i < count; ++i)
                    if (pixels[i] != 0) seeds.push_back(i);
                for (int i : {seeds.front(), seeds[seeds.size() / 2], seeds.back()})
                    ASSERT_NO_FATAL_FAILURE(
                        expectRegion(filler, pixels, size, {i % size.width, i / size.width}))
                        << size.width << " x " << size.height << ", set " << set << ", seed " << i;
            }
        }
    }
}

TEST(FillStack, CombsAroundAFullRowAreFilled) {
    for (const Bytes& fill : membersOf<Rule::exact, Bytes>()) {
        SCOPED_TRACE(fill.name());
        for (int width = 1; width <= 67; ++width)
            for (int height = 2; height <= 9; ++height)
                for (int pattern = 0; pattern < 6; ++pattern) {
                    const LumSize size{width, height};
                    std::vector<Lum8u> pixels(static_cast<std::size_t>(width) * height);
                    for (int y = 0; y < height; ++y)
                        for (int x = 0; x < width; ++x) {
                            const bool tooth = x % 2 == 0;
                            const bool set[6] = {tooth || y == height / 2, tooth || y % 3 == 1,
                                                 tooth || y % 2 == 1,
                                                 // Rows that touch at their corners only.
                                                 (x + y) % 2 == 0, y % 3 == 1 ? x % 4 == 1 : tooth,
                                                 y % 2 == 1 ? x % 4 == 1 : tooth};
                            pixels[y * width + x] = set[pattern];
                        }
                    Filler filler(fill, size, (width + height) % 8);
                    for (LumPoint seed : {LumPoint{0, 0},
                                          {width / 2, height / 2},
                                          {width - 1, height - 1},
                                          {width / 2 / 4 * 4 + (width > 1), height / 2}})
                        if (seed.x < width && pixels[seed.y * width + seed.x] != 0) {
                            ASSERT_NO_FATAL_FAILURE(expectRegion(filler, pixels, size, seed)) << pattern;
                        }
                }
    }
}

TEST(FillStack, RandomCombsAreFilled) {
    for (const Bytes& fill : membersOf<Rule::exact, Bytes>()) {
        SCOPED_TRACE(fill.name());
        std::mt19937 engine(81);
        for (int i = 0; i < 300; ++i) {
            const LumSize size{1 + 2 * static_cast<int>(engine() % 20), 2 + static_cast<int>(engine() % 12)};
            std::vector<Lum8u> pixels(static_cast<std::size_t>(size.width) * size.height);
            for (std::size_t p = 0; p < pixels.size(); ++p) {
                const std::size_t x = p % size.width;
                pixels[p] = x % 2 == 0 ? engine() % 16 != 0 : engine() % (1 + p / size.width % 3 * 3) == 0;
            }
            const int seed = static_cast<int>(engine() % pixels.size());
            if (pixels[seed] == 0) continue;
            Filler filler(fill, size, i % 8);
            ASSERT_NO_FATAL_FAILURE(
                expectRegion(filler, pixels, size, {seed % size.width, seed / size.width}));
        }
    }
}

TEST(FillStackOfSteps, OneRunAPixelFits) {
    // Three channels whose differences let a fill pass between rows and along a zigzag only, so that nearly every pixel
    // is a run of its own and three of four wait at a time.
    constexpr auto fill = member<Rule::grad, 8, Lum8u, 3>;
    using M = Fill<Lum8u, 3>;
    for (int height : {1, 2, 3, 8, 33, 60})
        for (int width : {1, 2, 3, 4, 5, 8, 9, 31}) {
            const LumSize size{width, height};
            std::vector<Lum8u> elements;
            for (int y = 0; y < height; ++y)
                for (int x = 0; x < width; ++x) {
                    const int zigzag = (y / 2 % 2 == 0 ? 2 : 1) % std::max(width, 1);
                    const bool isWay = x % 4 == zigzag;
                    elements.push_back(static_cast<Lum8u>(isWay ? 100 : x % 2 * 20 + 90));
                    elements.push_back(static_cast<Lum8u>(isWay ? 100 : y % 2 * 20 + 90));
                    elements.push_back(static_cast<Lum8u>(isWay ? 100 : (x + y) % 2 * 20 + 90));
                }
            const auto accepts = [](auto candidate, auto reference) {
                for (int c = 0; c < 3; ++c)
                    if (std::abs(candidate[c] - reference[c]) > 10) return false;
                return true;
            };
            Filler filler(fill, size, (width + height) % 8);
            for (LumPoint seed : {LumPoint{0, 0}, {width - 1, 0}, {width / 2, height - 1}}) {
                const auto expected = fillBySteps(fill, Picture<M>(elements, size), seed, {1, 2, 3}, accepts);
                ASSERT_NO_FATAL_FAILURE(
                    filler.expectFilled(elements, seed, {1, 2, 3}, {10, 10, 10}, expected));
            }
        }
}

TEST(RunStack, ComesBackInTheOppositeOrderThroughEveryFullBlock) {
    using lum::kernels::Run;
    // Blocks that hold all runs only as three words each.
    for (int count = 1; count <= 40; ++count)
        for (std::size_t extra : {0, 1, 5, 11, 12, 100}) {
            GuardedBlock block(12 * static_cast<std::size_t>(count) + 7 + extra, Guard::after, extra % 8);
            lum::kernels::RunStack stack(block.as<unsigned char>(), block.size());
            std::vector<Run> pushed;
            const auto popAndCompare = [&] {
                const Run run = stack.pop();
                const Run& expected = pushed.back();
                ASSERT_EQ(expected.y, run.y);
                ASSERT_EQ(expected.left, run.left);
                ASSERT_EQ(expected.right, run.right);
                ASSERT_EQ(expected.dir, run.dir);
                // Either the parent, or one that covers nothing.
                if (run.parentLeft != expected.parentLeft) {
                    ASSERT_EQ(run.right + 1, run.parentLeft);
                    ASSERT_EQ(run.right, run.parentRight);
                }
                pushed.pop_back();
            };
            std::mt19937 engine(static_cast<unsigned>(count));
            for (int i = 0; i < 400; ++i) {
                if (static_cast<int>(pushed.size()) < count && engine() % 3 != 0) {
                    pushed.push_back({i, i + 1, i + 5, i + 2, i + 3, i % 2 == 0 ? 1 : -1});
                    stack.push(pushed.back());
                } else if (!pushed.empty()) {
                    ASSERT_NO_FATAL_FAILURE(popAndCompare());
                }
                ASSERT_EQ(pushed.empty(), stack.empty());
            }
            while (!pushed.empty()) ASSERT_NO_FATAL_FAILURE(popAndCompare());
        }
}

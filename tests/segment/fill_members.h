// The flood fills under test, all called in one way, and plain references for them.
#pragma once

#include <array>
#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "lumcv.h"
#include "support/guarded_image.h"

namespace fills {

enum class Rule { exact, range, grad };

/// The arguments of every member; each takes those that it has.
template <class T, int channels> struct Arguments {
    T* srcDst;
    int step;
    LumSize size;
    LumPoint seed;
    std::array<T, channels> newVal{};
    std::array<T, channels> minDelta{};
    std::array<T, channels> maxDelta{};
    LumFillRegion* region;
    Lum8u* buffer;
};

template <Rule rule, int neighbours, class T, int channels> struct Export;
template <> struct Export<Rule::exact, 4, Lum8u, 1> {
    static constexpr auto call = lumiFloodFill_4Con_8u_C1IR;
};
template <> struct Export<Rule::exact, 4, Lum8u, 3> {
    static constexpr auto call = lumiFloodFill_4Con_8u_C3IR;
};
template <> struct Export<Rule::exact, 4, Lum16u, 1> {
    static constexpr auto call = lumiFloodFill_4Con_16u_C1IR;
};
template <> struct Export<Rule::exact, 4, Lum16u, 3> {
    static constexpr auto call = lumiFloodFill_4Con_16u_C3IR;
};
template <> struct Export<Rule::exact, 4, Lum32s, 1> {
    static constexpr auto call = lumiFloodFill_4Con_32s_C1IR;
};
template <> struct Export<Rule::exact, 4, Lum32f, 1> {
    static constexpr auto call = lumiFloodFill_4Con_32f_C1IR;
};
template <> struct Export<Rule::exact, 4, Lum32f, 3> {
    static constexpr auto call = lumiFloodFill_4Con_32f_C3IR;
};
template <> struct Export<Rule::exact, 8, Lum8u, 1> {
    static constexpr auto call = lumiFloodFill_8Con_8u_C1IR;
};
template <> struct Export<Rule::exact, 8, Lum8u, 3> {
    static constexpr auto call = lumiFloodFill_8Con_8u_C3IR;
};
template <> struct Export<Rule::exact, 8, Lum16u, 1> {
    static constexpr auto call = lumiFloodFill_8Con_16u_C1IR;
};
template <> struct Export<Rule::exact, 8, Lum16u, 3> {
    static constexpr auto call = lumiFloodFill_8Con_16u_C3IR;
};
template <> struct Export<Rule::exact, 8, Lum32s, 1> {
    static constexpr auto call = lumiFloodFill_8Con_32s_C1IR;
};
template <> struct Export<Rule::exact, 8, Lum32f, 1> {
    static constexpr auto call = lumiFloodFill_8Con_32f_C1IR;
};
template <> struct Export<Rule::exact, 8, Lum32f, 3> {
    static constexpr auto call = lumiFloodFill_8Con_32f_C3IR;
};
template <> struct Export<Rule::range, 4, Lum8u, 1> {
    static constexpr auto call = lumiFloodFill_Range4Con_8u_C1IR;
};
template <> struct Export<Rule::range, 4, Lum8u, 3> {
    static constexpr auto call = lumiFloodFill_Range4Con_8u_C3IR;
};
template <> struct Export<Rule::range, 4, Lum16u, 1> {
    static constexpr auto call = lumiFloodFill_Range4Con_16u_C1IR;
};
template <> struct Export<Rule::range, 4, Lum16u, 3> {
    static constexpr auto call = lumiFloodFill_Range4Con_16u_C3IR;
};
template <> struct Export<Rule::range, 4, Lum32f, 1> {
    static constexpr auto call = lumiFloodFill_Range4Con_32f_C1IR;
};
template <> struct Export<Rule::range, 4, Lum32f, 3> {
    static constexpr auto call = lumiFloodFill_Range4Con_32f_C3IR;
};
template <> struct Export<Rule::range, 8, Lum8u, 1> {
    static constexpr auto call = lumiFloodFill_Range8Con_8u_C1IR;
};
template <> struct Export<Rule::range, 8, Lum8u, 3> {
    static constexpr auto call = lumiFloodFill_Range8Con_8u_C3IR;
};
template <> struct Export<Rule::range, 8, Lum16u, 1> {
    static constexpr auto call = lumiFloodFill_Range8Con_16u_C1IR;
};
template <> struct Export<Rule::range, 8, Lum16u, 3> {
    static constexpr auto call = lumiFloodFill_Range8Con_16u_C3IR;
};
template <> struct Export<Rule::range, 8, Lum32f, 1> {
    static constexpr auto call = lumiFloodFill_Range8Con_32f_C1IR;
};
template <> struct Export<Rule::range, 8, Lum32f, 3> {
    static constexpr auto call = lumiFloodFill_Range8Con_32f_C3IR;
};
template <> struct Export<Rule::grad, 4, Lum8u, 1> {
    static constexpr auto call = lumiFloodFill_Grad4Con_8u_C1IR;
};
template <> struct Export<Rule::grad, 4, Lum8u, 3> {
    static constexpr auto call = lumiFloodFill_Grad4Con_8u_C3IR;
};
template <> struct Export<Rule::grad, 4, Lum16u, 1> {
    static constexpr auto call = lumiFloodFill_Grad4Con_16u_C1IR;
};
template <> struct Export<Rule::grad, 4, Lum16u, 3> {
    static constexpr auto call = lumiFloodFill_Grad4Con_16u_C3IR;
};
template <> struct Export<Rule::grad, 4, Lum32f, 1> {
    static constexpr auto call = lumiFloodFill_Grad4Con_32f_C1IR;
};
template <> struct Export<Rule::grad, 4, Lum32f, 3> {
    static constexpr auto call = lumiFloodFill_Grad4Con_32f_C3IR;
};
template <> struct Export<Rule::grad, 8, Lum8u, 1> {
    static constexpr auto call = lumiFloodFill_Grad8Con_8u_C1IR;
};
template <> struct Export<Rule::grad, 8, Lum8u, 3> {
    static constexpr auto call = lumiFloodFill_Grad8Con_8u_C3IR;
};
template <> struct Export<Rule::grad, 8, Lum16u, 1> {
    static constexpr auto call = lumiFloodFill_Grad8Con_16u_C1IR;
};
template <> struct Export<Rule::grad, 8, Lum16u, 3> {
    static constexpr auto call = lumiFloodFill_Grad8Con_16u_C3IR;
};
template <> struct Export<Rule::grad, 8, Lum32f, 1> {
    static constexpr auto call = lumiFloodFill_Grad8Con_32f_C1IR;
};
template <> struct Export<Rule::grad, 8, Lum32f, 3> {
    static constexpr auto call = lumiFloodFill_Grad8Con_32f_C3IR;
};

/// A member of one element type and number of channels. What the members differ in besides is data, so that the body of a
/// test is compiled once for all of them.
template <class T, int channelsOf> struct Fill {
    using Element = T;
    static constexpr int channels = channelsOf;
    using Values = std::array<T, channels>;
    using A = Arguments<T, channels>;

    Rule rule;
    int neighbours;
    LumStatus (*call)(const A&);

    std::size_t bufferBytes(LumSize size) const {
        Lum32s bytes = 0;
        EXPECT_EQ(lumStatusOk, rule == Rule::grad ? lumiFloodFillGetSize_Grad(size, &bytes)
                                                  : lumiFloodFillGetSize(size, &bytes));
        return static_cast<std::size_t>(bytes);
    }

    std::string name() const {
        const char* const names[] = {"exact ", "range ", "grad "};
        return names[static_cast<int>(rule)] + std::to_string(neighbours);
    }
};

template <Rule rule, int neighbours, class T, int channels>
LumStatus callExport(const Arguments<T, channels>& a) {
    constexpr auto member = Export<rule, neighbours, T, channels>::call;
    if constexpr (channels == 3 && rule == Rule::exact)
        return member(a.srcDst, a.step, a.size, a.seed, a.newVal.data(), a.region, a.buffer);
    else if constexpr (channels == 3)
        return member(a.srcDst, a.step, a.size, a.seed, a.newVal.data(), a.minDelta.data(), a.maxDelta.data(),
                      a.region, a.buffer);
    else if constexpr (rule == Rule::exact)
        return member(a.srcDst, a.step, a.size, a.seed, a.newVal[0], a.region, a.buffer);
    else
        return member(a.srcDst, a.step, a.size, a.seed, a.newVal[0], a.minDelta[0], a.maxDelta[0], a.region,
                      a.buffer);
}

/// A member by its rule, connectivity, element type and channels.
template <Rule rule, int neighbours, class T, int channels>
constexpr Fill<T, channels> member{rule, neighbours, callExport<rule, neighbours, T, channels>};

/// The members of a rule.
template <Rule rule, class Of> std::vector<Of> membersOf() {
    return {member<rule, 4, typename Of::Element, Of::channels>,
            member<rule, 8, typename Of::Element, Of::channels>};
}

/// The members of all rules.
template <class Of> std::vector<Of> membersOfAllRules() {
    std::vector<Of> all = membersOf<Rule::exact, Of>();
    if constexpr (!std::is_same_v<typename Of::Element, Lum32s>)
        for (const auto& ofRule : {membersOf<Rule::range, Of>(), membersOf<Rule::grad, Of>()})
            all.insert(all.end(), ofRule.begin(), ofRule.end());
    return all;
}

/// What the members of the exact rule exist for, and those of the other two.
using ExactFills = testing::Types<Fill<Lum8u, 1>, Fill<Lum8u, 3>, Fill<Lum16u, 1>, Fill<Lum16u, 3>,
                                  Fill<Lum32s, 1>, Fill<Lum32f, 1>, Fill<Lum32f, 3>>;
using SimilarFills = testing::Types<Fill<Lum8u, 1>, Fill<Lum8u, 3>, Fill<Lum16u, 1>, Fill<Lum16u, 3>,
                                    Fill<Lum32f, 1>, Fill<Lum32f, 3>>;

/// What a fill leaves: the pixels in rows without padding, and the record.
template <class T> struct Outcome {
    std::vector<T> pixels;
    double area = 0;
    LumRect rect{};
};

/// An image in rows without padding, with pixels compared and set as a whole.
template <class M> class Picture {
  public:
    using T = typename M::Element;
    using Values = typename M::Values;

    Picture(std::vector<T> elements, LumSize size) : elements_(std::move(elements)), size_(size) {}

    bool holds(int x, int y) const { return x >= 0 && y >= 0 && x < size_.width && y < size_.height; }
    Values at(int x, int y) const {
        Values values;
        for (int c = 0; c < M::channels; ++c) values[c] = elements_[(y * size_.width + x) * M::channels + c];
        return values;
    }
    void set(int x, int y, const Values& values) {
        for (int c = 0; c < M::channels; ++c) elements_[(y * size_.width + x) * M::channels + c] = values[c];
    }
    LumSize size() const { return size_; }
    const std::vector<T>& elements() const { return elements_; }

  private:
    std::vector<T> elements_;
    LumSize size_;
};

/// Grows a box, empty at first.
inline void include(LumRect& box, int y, int left, int right) {
    if (box.width == 0) {
        box = {left, y, right - left + 1, 1};
        return;
    }
    const int x = std::min(box.x, left);
    const int top = std::min(box.y, y);
    box = {x, top, std::max(box.x + box.width, right + 1) - x, std::max(box.y + box.height, y + 1) - top};
}

/// Every pixel that is reached by steps between neighbours, joins(from, to): for rules without an order.
template <class M, class Joins>
Outcome<typename M::Element> fillByPixels(const M& fill, Picture<M> picture, LumPoint seed,
                                          const typename M::Values& newVal, Joins joins) {
    const LumSize size = picture.size();
    std::vector<bool> reached(static_cast<std::size_t>(size.width) * size.height);
    std::vector<LumPoint> pending{seed};
    reached[seed.y * size.width + seed.x] = true;
    Outcome<typename M::Element> outcome;
    for (std::size_t i = 0; i < pending.size(); ++i) {
        const LumPoint p = pending[i];
        include(outcome.rect, p.y, p.x, p.x);
        for (int dy = -1; dy <= 1; ++dy)
            for (int dx = -1; dx <= 1; ++dx) {
                if (fill.neighbours == 4 && dx != 0 && dy != 0) continue;
                const int x = p.x + dx;
                const int y = p.y + dy;
                if (!picture.holds(x, y) || reached[y * size.width + x]) continue;
                if (!joins(picture.at(p.x, p.y), picture.at(x, y))) continue;
                reached[y * size.width + x] = true;
                pending.push_back({x, y});
            }
    }
    for (const LumPoint& p : pending) picture.set(p.x, p.y, newVal);
    outcome.area = static_cast<double>(pending.size());
    outcome.pixels = picture.elements();
    return outcome;
}

struct Run {
    int y, left, right, parentLeft, parentRight, dir;
};

/// The columns of a row that a popped run searches: the row away from its parent, then what the parent left.
struct Search {
    int y, from, to, dir;
};
inline std::vector<Search> searchesOf(const Run& run, int neighbours, LumSize size) {
    int from = run.left;
    int to = run.right;
    if (neighbours == 8) {
        from = std::max(from - 1, 0);
        to = std::min(to + 1, size.width - 1);
    }
    std::vector<Search> searches;
    if (run.y - run.dir >= 0 && run.y - run.dir < size.height)
        searches.push_back({run.y - run.dir, from, to, run.dir});
    if (run.y + run.dir >= 0 && run.y + run.dir < size.height) {
        searches.push_back({run.y + run.dir, from, run.parentLeft - 1, -run.dir});
        searches.push_back({run.y + run.dir, run.parentRight + 1, to, -run.dir});
    }
    return searches;
}

/// The fixed-range fill by its rules, run by run, with its cut-off.
template <class M>
Outcome<typename M::Element> fillByRuns(const M& fill, Picture<M> picture, LumPoint seed,
                                        const typename M::Values& newVal, const typename M::Values& low,
                                        const typename M::Values& high) {
    const LumSize size = picture.size();
    const auto inRange = [&](const typename M::Values& v) {
        bool all = true;
        for (int c = 0; c < M::channels; ++c) all = all && v[c] >= low[c] && v[c] <= high[c];
        return all;
    };
    const std::size_t capacity = static_cast<std::size_t>(size.width) * size.height / 4;
    const bool meetsItself = inRange(newVal);
    std::vector<Run> stack;
    Outcome<typename M::Element> outcome;
    long found = 0;
    bool over = false;
    const auto grow = [&](int x, int y) {
        picture.set(x, y, newVal);
        int left = x;
        while (left > 0 && inRange(picture.at(left - 1, y))) picture.set(--left, y, newVal);
        int right = x;
        while (right < size.width - 1 && inRange(picture.at(right + 1, y))) picture.set(++right, y, newVal);
        outcome.area += right - left + 1;
        ++found;
        return std::pair{left, right};
    };
    const auto push = [&](const Run& run) {
        if (over) return;
        stack.push_back(run);
        over = (capacity > 0 && stack.size() >= capacity) ||
               (meetsItself && found >= long{size.width} * size.height);
        if (over) stack.clear();
    };
    const auto [first, last] = grow(seed.x, seed.y);
    include(outcome.rect, seed.y, first, last);
    if (size.height > 1) push({seed.y, first, last, last + 1, last, seed.y == size.height - 1 ? -1 : 1});
    while (!stack.empty()) {
        const Run run = stack.back();
        stack.pop_back();
        include(outcome.rect, run.y, run.left, run.right);
        for (const Search& search : searchesOf(run, fill.neighbours, size))
            for (int x = search.from; x <= search.to; ++x) {
                if (!inRange(picture.at(x, search.y))) continue;
                const auto [left, right] = grow(x, search.y);
                push({search.y, left, right, run.left, run.right, search.dir});
                x = right + 1;
            }
    }
    outcome.pixels = picture.elements();
    return outcome;
}

/// The floating-range fill by its rules, run by run: accepts(candidate, reference).
template <class M, class Accepts>
Outcome<typename M::Element> fillBySteps(const M& fill, Picture<M> picture, LumPoint seed,
                                         const typename M::Values& newVal, Accepts accepts) {
    const LumSize size = picture.size();
    std::vector<std::vector<bool>> taken(size.height, std::vector<bool>(size.width));
    std::vector<Run> stack;
    Outcome<typename M::Element> outcome;
    const auto beside = [&](int x, int neighbour, int y) {
        return picture.holds(x, y) && !taken[y][x] && accepts(picture.at(x, y), picture.at(neighbour, y));
    };
    const auto besideRun = [&](int x, int y, const Run& run) {
        if (!picture.holds(x, y) || taken[y][x]) return false;
        for (int column = fill.neighbours == 8 ? x - 1 : x; column <= (fill.neighbours == 8 ? x + 1 : x);
             ++column)
            if (column >= run.left && column <= run.right &&
                accepts(picture.at(x, y), picture.at(column, run.y)))
                return true;
        return false;
    };
    int right = seed.x;
    int left = seed.x;
    taken[seed.y][seed.x] = true;
    while (beside(right + 1, right, seed.y)) taken[seed.y][++right] = true;
    while (beside(left - 1, left, seed.y)) taken[seed.y][--left] = true;
    stack.push_back(fill.neighbours == 8
                        ? Run{seed.y, left, right, std::min(right + 2, size.width), right + 2, 1}
                        : Run{seed.y, left, right, right + 1, right, 1});
    while (!stack.empty()) {
        const Run run = stack.back();
        stack.pop_back();
        include(outcome.rect, run.y, run.left, run.right);
        for (const Search& search : searchesOf(run, fill.neighbours, size))
            for (int x = search.from; x <= search.to; ++x) {
                const int y = search.y;
                if (!besideRun(x, y, run)) continue;
                taken[y][x] = true;
                int begin = x;
                while (beside(begin - 1, begin, y)) taken[y][--begin] = true;
                while (beside(x + 1, x, y) || besideRun(x + 1, y, run)) taken[y][++x] = true;
                stack.push_back({y, begin, x, run.left, run.right, search.dir});
                ++x;
            }
        for (int x = run.left; x <= run.right; ++x) picture.set(x, run.y, newVal);
        outcome.area += run.right - run.left + 1;
    }
    outcome.pixels = picture.elements();
    return outcome;
}

} // namespace fills

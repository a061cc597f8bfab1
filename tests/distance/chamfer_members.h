// The chamfer transforms under test: one record a member, and the passes written once more, pixel by pixel, from their
// formulas.
#pragma once

#include <cstdint>
#include <limits>
#include <type_traits>
#include <vector>

#include "lumcv.h"
#include "support/guarded_image.h"
#include "support/status_checks.h"

namespace chamfers {

/// One member: kernel size, element of the distances, length of a step, and its call.
template <int size, class T, class L, auto member> struct Member {
    using Element = T;
    using Length = L;
    static constexpr int kernelSize = size;
    static LumStatus call(const Lum8u* src, int srcStep, T* dst, int dstStep, LumSize roiSize,
                          const L* metrics) {
        return member(src, srcStep, dst, dstStep, roiSize, metrics);
    }
    static LumStatus call(const support::GuardedImage<Lum8u>& src, support::GuardedImage<T>& dst,
                          const L* metrics) {
        return member(src.data(), src.step(), dst.data(), dst.step(), src.size(), metrics);
    }
};

using Three8u = Member<3, Lum8u, Lum32s, lumiDistanceTransform_3x3_8u_C1R>;
using Three16u = Member<3, Lum16u, Lum32s, lumiDistanceTransform_3x3_8u16u_C1R>;
using Three32f = Member<3, Lum32f, Lum32f, lumiDistanceTransform_3x3_8u32f_C1R>;
using Five8u = Member<5, Lum8u, Lum32s, lumiDistanceTransform_5x5_8u_C1R>;
using Five16u = Member<5, Lum16u, Lum32s, lumiDistanceTransform_5x5_8u16u_C1R>;
using Five32f = Member<5, Lum32f, Lum32f, lumiDistanceTransform_5x5_8u32f_C1R>;

using Members = testing::Types<Three8u, Three16u, Three32f, Five8u, Five16u, Five32f>;

/// A picture without padding.
template <class T> struct Field {
    int width, height;
    std::vector<T> values;

    Field(int w, int h) : width(w), height(h), values(static_cast<std::size_t>(w) * h) {}
    T& at(int x, int y) { return values[static_cast<std::size_t>(y) * width + x]; }
    bool holds(int x, int y) const { return x >= 0 && x < width && y >= 0 && y < height; }
};

/// The transform of one member by its description: integers in 64 bits, floats one rounded addition a step.
template <class T, class L> class Reference {
    using Wide = std::conditional_t<std::is_integral_v<T>, std::int64_t, float>;
    static constexpr T largest = std::numeric_limits<T>::max();

  public:
    Reference(const support::GuardedImage<Lum8u>& src, const L* metrics, int kernelSize)
        : field_(src.size().width, src.size().height), src_(src) {
        a_ = metrics[0];
        b_ = metrics[1];
        if (kernelSize == 5) c_ = metrics[2];
        if (kernelSize == 3 || forwards())
            threeByThree();
        else
            fiveByFive();
    }

    const std::vector<T>& distances() const { return field_.values; }

  private:
    using List = std::vector<std::pair<std::pair<int, int>, Wide>>;

    static Wide twice(Wide v) { return v + v; }

    bool forwards() const {
        const Wide d = std::min(twice(a_), b_);
        if constexpr (std::is_integral_v<T>)
            return a_ + d <= c_;
        else
            return double(c_ - a_) - double(d) > -1e-7 * std::fabs(double(a_) + double(d));
    }
    bool regular() const {
        const Wide d = std::min(twice(a_), b_);
        if constexpr (std::is_integral_v<T>) {
            return d > a_ && c_ > 2 * a_ && 2 * c_ > 3 * d;
        } else {
            const double a = a_, dd = d, c = c_;
            if (a - dd > -1e-7 * std::fabs(dd)) return false;
            if (2 * a - c > -1e-7 * std::fabs(c)) return false;
            return !(1.5 * dd - c > -1e-7 * std::fabs(c));
        }
    }

    void start() {
        for (int y = 0; y < field_.height; ++y)
            for (int x = 0; x < field_.width; ++x) field_.at(x, y) = src_.at(x, y) == 0 ? T{0} : largest;
    }

    /// Whether the pixel got shorter over the neighbours of the list.
    bool relax(int x, int y, int sign, const List& list) {
        Wide best = field_.at(x, y);
        for (const auto& [offset, length] : list)
            if (field_.holds(x + sign * offset.first, y + sign * offset.second))
                best = std::min(best,
                                Wide(field_.at(x + sign * offset.first, y + sign * offset.second)) + length);
        const bool shorter = best < Wide(field_.at(x, y));
        field_.at(x, y) = static_cast<T>(best);
        return shorter;
    }

    bool cycle(const List& list, const List& lastRow) {
        bool changed = false;
        const int w = field_.width, h = field_.height;
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) changed |= relax(x, y, 1, y == h - 1 ? lastRow : list);
        for (int y = h - 1; y >= 0; --y)
            for (int x = w - 1; x >= 0; --x) changed |= relax(x, y, -1, y == h - 1 ? lastRow : list);
        return changed;
    }

    void threeByThree() {
        start();
        List list{{{-1, 0}, a_}, {{0, -1}, a_}};
        if (!(twice(a_) <= b_)) {
            list.push_back({{-1, -1}, b_});
            list.push_back({{1, -1}, b_});
        }
        List lastRow = list;
        const bool cheapDiagonal = !(twice(a_) <= b_) && a_ > b_;
        if (cheapDiagonal && field_.width >= 2 && field_.height >= 2) lastRow.push_back({{-2, 0}, twice(b_)});
        cycle(list, lastRow);
    }

    static List window(Wide one, Wide diagonal, Wide knight, Wide two, Wide twoDiagonal) {
        return {{{-1, 0}, one},      {{-2, 0}, two},     {{0, -1}, one},          {{-1, -1}, diagonal},
                {{1, -1}, diagonal}, {{-2, -1}, knight}, {{2, -1}, knight},       {{0, -2}, two},
                {{-1, -2}, knight},  {{1, -2}, knight},  {{-2, -2}, twoDiagonal}, {{2, -2}, twoDiagonal}};
    }

    void fiveByFive() {
        start();
        const Wide d = std::min(twice(a_), b_);
        if (field_.width < 4 || field_.height < 4) {
            const List raw = window(a_, d, c_, twice(a_), twice(d));
            while (cycle(raw, raw) && !regular()) continue;
            return;
        }
        if (regular()) {
            const List list{{{-1, 0}, a_},  {{0, -1}, a_}, {{-1, -1}, d},  {{1, -1}, d},
                            {{-2, -1}, c_}, {{2, -1}, c_}, {{-1, -2}, c_}, {{1, -2}, c_}};
            cycle(list, list);
            return;
        }
        const Wide bigA = std::min(a_, Wide(3 * c_));
        const Wide bigD = std::min(d, twice(c_));
        const Wide bigT = std::min(std::min(twice(bigD), twice(bigA)), twice(c_));
        const Wide bigE = std::min(c_ + bigA, twice(bigD));
        const List list = window(bigA, bigD, c_, bigT, bigE);
        cycle(list, list);
    }

    Field<T> field_;
    const support::GuardedImage<Lum8u>& src_;
    Wide a_ = 0, b_ = 0, c_ = 0;
};

} // namespace chamfers

// The compound operators, and their independent reference: plain erosions and dilations, one after the other.
#pragma once

#include <algorithm>
#include <climits>
#include <limits>
#include <type_traits>
#include <vector>

#include "morph/masks.h"
#include "support/border_walk.h"

namespace support {

enum class Operator { open, close, tophat, blackhat, gradient };

/// One call of a member of any form. A null value reaches members that take it by pointer.
template <class T> struct CompoundCall {
    const T* src;
    std::intptr_t srcStep;
    T* dst;
    std::intptr_t dstStep;
    LumSizeL roiSize;
    LumBorderType border;
    const T* value;
    LumMorphPairState* spec;
    Lum8u* buffer;
};

template <class T> struct CompoundMember {
    const char* name;
    Operator op;
    int channels;
    bool isLong;
    LumStatus (*run)(const CompoundCall<T>&);
};

template <auto member, class T> LumStatus callLong(const CompoundCall<T>& c) {
    return member(c.src, c.srcStep, c.dst, c.dstStep, c.roiSize, c.border, c.value, c.spec, c.buffer);
}

template <auto member, class T> LumStatus callPlain(const CompoundCall<T>& c) {
    const LumSize size{static_cast<int>(c.roiSize.width), static_cast<int>(c.roiSize.height)};
    const int srcStep = static_cast<int>(c.srcStep), dstStep = static_cast<int>(c.dstStep);
    if constexpr (std::is_invocable_v<decltype(member), const T*, int, T*, int, LumSize, LumBorderType,
                                      const T*, const LumMorphPairState*, Lum8u*>)
        return member(c.src, srcStep, c.dst, dstStep, size, c.border, c.value, c.spec, c.buffer);
    else
        return member(c.src, srcStep, c.dst, dstStep, size, c.border, c.value == nullptr ? T{} : *c.value,
                      c.spec, c.buffer);
}

// Both forms of the five operators of a type and channels.
#define LUM_COMPOUND_MEMBER(T, operation, name, suffix, channels)                                            \
    {#name "Border_" #suffix, Operator::operation, channels, false,                                          \
     callPlain<lumiMorph##name##Border_##suffix, T>},                                                        \
        {#name "_" #suffix "_L", Operator::operation, channels, true,                                        \
         callLong<lumiMorph##name##_##suffix##_L, T>},
#define LUM_COMPOUND_MEMBERS(T, suffix, channels)                                                            \
    LUM_COMPOUND_MEMBER(T, open, Open, suffix, channels)                                                     \
    LUM_COMPOUND_MEMBER(T, close, Close, suffix, channels)                                                   \
    LUM_COMPOUND_MEMBER(T, tophat, Tophat, suffix, channels)                                                 \
    LUM_COMPOUND_MEMBER(T, blackhat, Blackhat, suffix, channels)                                             \
    LUM_COMPOUND_MEMBER(T, gradient, Gradient, suffix, channels)

template <class T> std::vector<CompoundMember<T>> compoundMembers();
template <> inline std::vector<CompoundMember<Lum8u>> compoundMembers() {
    return {LUM_COMPOUND_MEMBERS(Lum8u, 8u_C1R, 1) LUM_COMPOUND_MEMBERS(Lum8u, 8u_C3R, 3)
                LUM_COMPOUND_MEMBERS(Lum8u, 8u_C4R, 4)};
}
template <> inline std::vector<CompoundMember<Lum16u>> compoundMembers() {
    return {LUM_COMPOUND_MEMBERS(Lum16u, 16u_C1R, 1)};
}
template <> inline std::vector<CompoundMember<Lum16s>> compoundMembers() {
    return {LUM_COMPOUND_MEMBERS(Lum16s, 16s_C1R, 1)};
}
template <> inline std::vector<CompoundMember<Lum32f>> compoundMembers() {
    return {LUM_COMPOUND_MEMBERS(Lum32f, 32f_C1R, 1) LUM_COMPOUND_MEMBERS(Lum32f, 32f_C3R, 3)
                LUM_COMPOUND_MEMBERS(Lum32f, 32f_C4R, 4)};
}
#undef LUM_COMPOUND_MEMBERS
#undef LUM_COMPOUND_MEMBER

template <class T> LumDataType dataTypeOf() {
    if constexpr (std::is_same_v<T, Lum8u>) return lumType8u;
    if constexpr (std::is_same_v<T, Lum16u>) return lumType16u;
    if constexpr (std::is_same_v<T, Lum16s>) return lumType16s;
    return lumType32f;
}

/// The object and the buffer of a member, of exactly the queried sizes.
template <class T> class CompoundMemory {
  public:
    CompoundMemory(const CompoundMember<T>& member, const MorphMask& mask, LumSize roi, int spare = 0)
        : CompoundMemory(sizesFor(member, mask, roi), spare) {
        const std::vector<Lum8u> cells = mask.paddedCells(paddingCell);
        if (member.isLong) {
            EXPECT_STATUS(lumStatusOk, lumiMorphInit_L({roi.width, roi.height}, cells.data(), mask.sizeL(),
                                                       dataTypeOf<T>(), member.channels, spec()));
        } else {
            EXPECT_STATUS(lumStatusOk,
                          objectMember(member).pairInit(roi, cells.data(), mask.size(), spec(), buffer()));
        }
    }
    LumMorphPairState* spec() { return object_.as<LumMorphPairState>(); }
    Lum8u* buffer() { return work_.as(); }

    /// What members that read beyond an even mask find there.
    static constexpr Lum8u paddingCell = 1;

    static const MorphObjectMember& objectMember(const CompoundMember<T>& member) {
        for (const auto& candidate : morphObjectMembers())
            if (candidate.type == dataTypeOf<T>() && candidate.channels == member.channels) return candidate;
        std::abort();
    }

  private:
    struct Sizes {
        Lum32s spec, buffer;
    };
    CompoundMemory(Sizes sizes, int spare)
        : object_(sizes.spec, Guard::after, spare), work_(sizes.buffer, Guard::after, spare) {}
    static Sizes sizesFor(const CompoundMember<T>& member, const MorphMask& mask, LumSize roi) {
        Sizes sizes{0, 0};
        if (member.isLong) {
            const LumSizeL roiL{roi.width, roi.height};
            const LumDataType type = dataTypeOf<T>();
            EXPECT_STATUS(lumStatusOk,
                          lumiMorphGetSpecSize_L(roiL, mask.sizeL(), type, member.channels, &sizes.spec));
            EXPECT_STATUS(lumStatusOk,
                          lumiMorphGetBufferSize_L(roiL, mask.sizeL(), type, member.channels, &sizes.buffer));
        } else {
            EXPECT_STATUS(lumStatusOk,
                          objectMember(member).pairGetSize(roi, mask.size(), &sizes.spec, &sizes.buffer));
        }
        return sizes;
    }

    GuardedBlock object_;
    GuardedBlock work_;
};

// ---- the reference

/// Where a stage looks, relative to the pixel; and how far at most.
struct Window {
    std::vector<std::pair<int, int>> offsets;
    int left, right, top, bottom;
};

/// A window of cells in an odd box that gains its empty column and row before or after them.
inline Window windowOf(const std::vector<Lum8u>& cells, int width, int height, bool before) {
    const int boxWidth = width | 1, boxHeight = height | 1;
    Window window{{}, boxWidth / 2, boxWidth / 2, boxHeight / 2, boxHeight / 2};
    for (int row = 0; row < height; ++row)
        for (int column = 0; column < width; ++column)
            if (cells[static_cast<std::size_t>(row) * width + column] != 0)
                window.offsets.push_back({column + (before ? boxWidth - width : 0) - boxWidth / 2,
                                          row + (before ? boxHeight - height : 0) - boxHeight / 2});
    return window;
}

/// Elements of a rectangle of pixels, which begins anywhere.
template <class T> struct Plane {
    int x0, y0, x1, y1, channels;
    std::vector<T> elements;

    Plane(int left, int top, int right, int bottom, int count)
        : x0(left),
          y0(top),
          x1(right),
          y1(bottom),
          channels(count),
          elements(static_cast<std::size_t>(right - left) * (bottom - top) * count) {}
    T& at(int x, int y, int c) {
        return elements.at((static_cast<std::size_t>(y - y0) * (x1 - x0) + (x - x0)) * channels + c);
    }
};

/// What one stage sees: a rectangle, and memory or a rule on each side of it.
struct StageRule {
    LumBorderType kind;
    bool top, bottom, left, right;

    StageRule(LumBorderType kindOfStage, LumBorderType flags)
        : kind(kindOfStage),
          top(flags & lumBorderInMemoryTop),
          bottom(flags & lumBorderInMemoryBottom),
          left(flags & lumBorderInMemoryLeft),
          right(flags & lumBorderInMemoryRight) {}
};

/// The largest or smallest element of each window over the rectangle of `out`. Memory that is read counts as part of the
/// region.
template <class T>
void referenceStage(bool dilates, Plane<T>& in, Plane<T>& out, StageRule rule, const T* value,
                    const Window& window) {
    if (window.offsets.empty()) {
        for (int y = out.y0; y < out.y1; ++y)
            for (int x = out.x0; x < out.x1; ++x)
                for (int c = 0; c < out.channels; ++c) out.at(x, y, c) = in.at(x, y, c);
        return;
    }
    const bool none = rule.kind == lumBorderDefaultValue;
    const LumBorderType kind = none ? LumBorderType{lumBorderConstant} : rule.kind;
    const T neutral = dilates ? std::numeric_limits<T>::lowest() : std::numeric_limits<T>::max();
    const auto place = [&](int i, int first, int last) {
        const int at = borderWalk(i - first, last - first, kind, false, false);
        return at == INT_MAX ? INT_MAX : at + first;
    };
    const int left = out.x0 - (rule.left ? window.left : 0), right = out.x1 + (rule.right ? window.right : 0);
    const int top = out.y0 - (rule.top ? window.top : 0), bottom = out.y1 + (rule.bottom ? window.bottom : 0);
    for (int y = out.y0; y < out.y1; ++y)
        for (int x = out.x0; x < out.x1; ++x)
            for (int c = 0; c < out.channels; ++c) {
                T best = neutral;
                for (auto [dx, dy] : window.offsets) {
                    const int px = place(x + dx, left, right), py = place(y + dy, top, bottom);
                    T pixel;
                    if (px == INT_MAX || py == INT_MAX)
                        pixel = none ? neutral : value[c];
                    else
                        pixel = in.at(px, py, c);
                    best = dilates ? std::max(best, pixel) : std::min(best, pixel);
                }
                out.at(x, y, c) = best;
            }
}

/// The words of the two stages and what the first gives beyond the region, as the operators describe them.
struct ReferencePlan {
    StageRule first, second;
    LumBorderType widened = 0;
};

inline ReferencePlan planOf(Operator op, bool isLong, LumBorderType border) {
    const LumBorderType kind = border & 15, low = border & 0xF0, high = (border & 0xF00) >> 4;
    const bool known = kind == 1 || kind == 3 || kind == 5 || kind == 6;
    const LumBorderType used = known ? kind : LumBorderType{lumBorderDefaultValue};
    if (op == Operator::gradient) return {{used, low}, {used, low}};
    if (!isLong) {
        const bool dilatesFirst = op == Operator::close || op == Operator::blackhat;
        return {{used, dilatesFirst ? low | high : low}, {used, 0}};
    }
    return {{used, low | high}, {used, low}, low};
}

/// What must be readable around the region.
inline Margins marginsFor(const ReferencePlan& plan, const Window& first, const Window& second) {
    const auto side = [&](bool memory, LumBorderType flag, int ofFirst, int ofSecond) {
        return (memory ? ofFirst : 0) + (plan.widened & flag ? ofSecond : 0);
    };
    Margins margins;
    margins.top = side(plan.first.top, lumBorderInMemoryTop, first.top, second.top);
    margins.bottom = side(plan.first.bottom, lumBorderInMemoryBottom, first.bottom, second.bottom);
    margins.left = side(plan.first.left, lumBorderInMemoryLeft, first.left, second.left);
    margins.right = side(plan.first.right, lumBorderInMemoryRight, first.right, second.right);
    return margins;
}

/// The windows of the stages of a member.
struct Windows {
    Window first, second;
};

template <class T>
Windows windowsOf(const CompoundMember<T>& member, const MorphMask& mask, bool sameForBoth) {
    const std::vector<Lum8u> box = mask.paddedCells(CompoundMemory<T>::paddingCell);
    std::vector<Lum8u> reflectedBox(box.rbegin(), box.rend());
    Windows windows;
    if (member.isLong) {
        windows.first = windowOf(box, mask.boxWidth(), mask.boxHeight(), true);
        windows.second = windowOf(mask.reflected(), mask.width, mask.height, true);
    } else {
        const bool asGiven = std::is_same_v<T, Lum8u> && member.channels != 3;
        windows.first = windowOf(mask.cells, mask.width, mask.height, true);
        windows.second = windowOf(asGiven ? mask.reflected() : reflectedBox, mask.width, mask.height, false);
    }
    if (sameForBoth || (member.op == Operator::gradient && !member.isLong)) windows.second = windows.first;
    return windows;
}

/// What is left of a difference.
template <class T> T referenceDifference(T a, T b, bool clears) {
    if constexpr (std::is_floating_point_v<T>) {
        const T d = a - b;
        return clears && d < 0 ? T{0} : d;
    } else {
        const int d = std::clamp<int>(a - b, std::numeric_limits<T>::lowest(), std::numeric_limits<T>::max());
        return static_cast<T>(clears && d < 0 ? 0 : d);
    }
}

template <class T>
std::vector<T> referenceCompound(const CompoundMember<T>& member, Plane<T>& src, LumSize size,
                                 LumBorderType border, const T* value, const Windows& windows,
                                 bool keepNegative) {
    const ReferencePlan plan = planOf(member.op, member.isLong, border);
    const Window& second = windows.second;
    const bool dilatesFirst = member.op != Operator::open && member.op != Operator::tophat;
    Plane<T> result(0, 0, size.width, size.height, member.channels);
    const bool clears = member.isLong
                            ? !keepNegative && !(std::is_same_v<T, Lum32f> && member.op == Operator::gradient)
                            : std::is_same_v<T, Lum32f>;
    if (member.op == Operator::gradient) {
        Plane<T> eroded = result;
        referenceStage(true, src, result, plan.first, value, windows.first);
        referenceStage(false, src, eroded, plan.second, value, second);
        for (std::size_t i = 0; i < result.elements.size(); ++i)
            result.elements[i] = referenceDifference(result.elements[i], eroded.elements[i], clears);
        return result.elements;
    }
    Plane<T> between(-(plan.widened & lumBorderInMemoryLeft ? second.left : 0),
                     -(plan.widened & lumBorderInMemoryTop ? second.top : 0),
                     size.width + (plan.widened & lumBorderInMemoryRight ? second.right : 0),
                     size.height + (plan.widened & lumBorderInMemoryBottom ? second.bottom : 0),
                     member.channels);
    referenceStage(dilatesFirst, src, between, plan.first, value, windows.first);
    referenceStage(!dilatesFirst, between, result, plan.second, value, second);
    if (member.op == Operator::open || member.op == Operator::close) return result.elements;
    std::size_t i = 0;
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x)
            for (int c = 0; c < member.channels; ++c, ++i) {
                const T own = result.elements[i], source = src.at(x, y, c);
                result.elements[i] = member.op == Operator::tophat ? referenceDifference(source, own, clears)
                                                                   : referenceDifference(own, source, clears);
            }
    return result.elements;
}

} // namespace support

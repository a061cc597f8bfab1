// The exported erosions and dilations by operation, element type and channels, their objects and their definition.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "lumcv.h"
#include "support/guarded_image.h"

namespace support {

enum class Operation { dilate, erode };

template <Operation operation, class T, int channels> struct MorphMembers;

template <> struct MorphMembers<Operation::dilate, Lum8u, 1> {
    using Element = Lum8u;
    static constexpr Operation operation = Operation::dilate;
    static constexpr int channels = 1;
    static constexpr LumDataType type = lumType8u;
    static constexpr auto border = lumiDilateBorder_8u_C1R;
    static constexpr auto borderLong = lumiDilate_8u_C1R_L;
    static constexpr auto getSize = lumiMorphologyBorderGetSize_8u_C1R;
    static constexpr auto init = lumiMorphologyBorderInit_8u_C1R;
};
template <> struct MorphMembers<Operation::dilate, Lum8u, 3> {
    using Element = Lum8u;
    static constexpr Operation operation = Operation::dilate;
    static constexpr int channels = 3;
    static constexpr LumDataType type = lumType8u;
    static constexpr auto border = lumiDilateBorder_8u_C3R;
    static constexpr auto borderLong = lumiDilate_8u_C3R_L;
    static constexpr auto getSize = lumiMorphologyBorderGetSize_8u_C3R;
    static constexpr auto init = lumiMorphologyBorderInit_8u_C3R;
};
template <> struct MorphMembers<Operation::dilate, Lum8u, 4> {
    using Element = Lum8u;
    static constexpr Operation operation = Operation::dilate;
    static constexpr int channels = 4;
    static constexpr LumDataType type = lumType8u;
    static constexpr auto border = lumiDilateBorder_8u_C4R;
    static constexpr auto borderLong = lumiDilate_8u_C4R_L;
    static constexpr auto getSize = lumiMorphologyBorderGetSize_8u_C4R;
    static constexpr auto init = lumiMorphologyBorderInit_8u_C4R;
};
template <> struct MorphMembers<Operation::dilate, Lum16u, 1> {
    using Element = Lum16u;
    static constexpr Operation operation = Operation::dilate;
    static constexpr int channels = 1;
    static constexpr LumDataType type = lumType16u;
    static constexpr auto border = lumiDilateBorder_16u_C1R;
    static constexpr auto borderLong = lumiDilate_16u_C1R_L;
    static constexpr auto getSize = lumiMorphologyBorderGetSize_16u_C1R;
    static constexpr auto init = lumiMorphologyBorderInit_16u_C1R;
};
template <> struct MorphMembers<Operation::dilate, Lum16s, 1> {
    using Element = Lum16s;
    static constexpr Operation operation = Operation::dilate;
    static constexpr int channels = 1;
    static constexpr LumDataType type = lumType16s;
    static constexpr auto border = lumiDilateBorder_16s_C1R;
    static constexpr auto borderLong = lumiDilate_16s_C1R_L;
    static constexpr auto getSize = lumiMorphologyBorderGetSize_16s_C1R;
    static constexpr auto init = lumiMorphologyBorderInit_16s_C1R;
};
template <> struct MorphMembers<Operation::dilate, Lum32f, 1> {
    using Element = Lum32f;
    static constexpr Operation operation = Operation::dilate;
    static constexpr int channels = 1;
    static constexpr LumDataType type = lumType32f;
    static constexpr auto border = lumiDilateBorder_32f_C1R;
    static constexpr auto borderLong = lumiDilate_32f_C1R_L;
    static constexpr auto getSize = lumiMorphologyBorderGetSize_32f_C1R;
    static constexpr auto init = lumiMorphologyBorderInit_32f_C1R;
};
template <> struct MorphMembers<Operation::dilate, Lum32f, 3> {
    using Element = Lum32f;
    static constexpr Operation operation = Operation::dilate;
    static constexpr int channels = 3;
    static constexpr LumDataType type = lumType32f;
    static constexpr auto border = lumiDilateBorder_32f_C3R;
    static constexpr auto borderLong = lumiDilate_32f_C3R_L;
    static constexpr auto getSize = lumiMorphologyBorderGetSize_32f_C3R;
    static constexpr auto init = lumiMorphologyBorderInit_32f_C3R;
};
template <> struct MorphMembers<Operation::dilate, Lum32f, 4> {
    using Element = Lum32f;
    static constexpr Operation operation = Operation::dilate;
    static constexpr int channels = 4;
    static constexpr LumDataType type = lumType32f;
    static constexpr auto border = lumiDilateBorder_32f_C4R;
    static constexpr auto borderLong = lumiDilate_32f_C4R_L;
    static constexpr auto getSize = lumiMorphologyBorderGetSize_32f_C4R;
    static constexpr auto init = lumiMorphologyBorderInit_32f_C4R;
};
template <> struct MorphMembers<Operation::erode, Lum8u, 1> {
    using Element = Lum8u;
    static constexpr Operation operation = Operation::erode;
    static constexpr int channels = 1;
    static constexpr LumDataType type = lumType8u;
    static constexpr auto border = lumiErodeBorder_8u_C1R;
    static constexpr auto borderLong = lumiErode_8u_C1R_L;
    static constexpr auto getSize = lumiMorphologyBorderGetSize_8u_C1R;
    static constexpr auto init = lumiMorphologyBorderInit_8u_C1R;
};
template <> struct MorphMembers<Operation::erode, Lum8u, 3> {
    using Element = Lum8u;
    static constexpr Operation operation = Operation::erode;
    static constexpr int channels = 3;
    static constexpr LumDataType type = lumType8u;
    static constexpr auto border = lumiErodeBorder_8u_C3R;
    static constexpr auto borderLong = lumiErode_8u_C3R_L;
    static constexpr auto getSize = lumiMorphologyBorderGetSize_8u_C3R;
    static constexpr auto init = lumiMorphologyBorderInit_8u_C3R;
};
template <> struct MorphMembers<Operation::erode, Lum8u, 4> {
    using Element = Lum8u;
    static constexpr Operation operation = Operation::erode;
    static constexpr int channels = 4;
    static constexpr LumDataType type = lumType8u;
    static constexpr auto border = lumiErodeBorder_8u_C4R;
    static constexpr auto borderLong = lumiErode_8u_C4R_L;
    static constexpr auto getSize = lumiMorphologyBorderGetSize_8u_C4R;
    static constexpr auto init = lumiMorphologyBorderInit_8u_C4R;
};
template <> struct MorphMembers<Operation::erode, Lum16u, 1> {
    using Element = Lum16u;
    static constexpr Operation operation = Operation::erode;
    static constexpr int channels = 1;
    static constexpr LumDataType type = lumType16u;
    static constexpr auto border = lumiErodeBorder_16u_C1R;
    static constexpr auto borderLong = lumiErode_16u_C1R_L;
    static constexpr auto getSize = lumiMorphologyBorderGetSize_16u_C1R;
    static constexpr auto init = lumiMorphologyBorderInit_16u_C1R;
};
template <> struct MorphMembers<Operation::erode, Lum16s, 1> {
    using Element = Lum16s;
    static constexpr Operation operation = Operation::erode;
    static constexpr int channels = 1;
    static constexpr LumDataType type = lumType16s;
    static constexpr auto border = lumiErodeBorder_16s_C1R;
    static constexpr auto borderLong = lumiErode_16s_C1R_L;
    static constexpr auto getSize = lumiMorphologyBorderGetSize_16s_C1R;
    static constexpr auto init = lumiMorphologyBorderInit_16s_C1R;
};
template <> struct MorphMembers<Operation::erode, Lum32f, 1> {
    using Element = Lum32f;
    static constexpr Operation operation = Operation::erode;
    static constexpr int channels = 1;
    static constexpr LumDataType type = lumType32f;
    static constexpr auto border = lumiErodeBorder_32f_C1R;
    static constexpr auto borderLong = lumiErode_32f_C1R_L;
    static constexpr auto getSize = lumiMorphologyBorderGetSize_32f_C1R;
    static constexpr auto init = lumiMorphologyBorderInit_32f_C1R;
};
template <> struct MorphMembers<Operation::erode, Lum32f, 3> {
    using Element = Lum32f;
    static constexpr Operation operation = Operation::erode;
    static constexpr int channels = 3;
    static constexpr LumDataType type = lumType32f;
    static constexpr auto border = lumiErodeBorder_32f_C3R;
    static constexpr auto borderLong = lumiErode_32f_C3R_L;
    static constexpr auto getSize = lumiMorphologyBorderGetSize_32f_C3R;
    static constexpr auto init = lumiMorphologyBorderInit_32f_C3R;
};
template <> struct MorphMembers<Operation::erode, Lum32f, 4> {
    using Element = Lum32f;
    static constexpr Operation operation = Operation::erode;
    static constexpr int channels = 4;
    static constexpr LumDataType type = lumType32f;
    static constexpr auto border = lumiErodeBorder_32f_C4R;
    static constexpr auto borderLong = lumiErode_32f_C4R_L;
    static constexpr auto getSize = lumiMorphologyBorderGetSize_32f_C4R;
    static constexpr auto init = lumiMorphologyBorderInit_32f_C4R;
};

/// A mask as the caller has it, row after row.
struct CallerMask {
    LumSize size;
    std::vector<Lum8u> cells;

    bool at(int x, int y) const { return cells[y * size.width + x] != 0; }
};

inline CallerMask fullMask(int width, int height) {
    return {{width, height}, std::vector<Lum8u>(static_cast<std::size_t>(width) * height, 1)};
}
/// Cells set with a probability of percent / 100; set cells hold any value but 0.
inline CallerMask randomMask(int width, int height, int percent, std::mt19937& engine) {
    CallerMask mask = fullMask(width, height);
    for (Lum8u& cell : mask.cells)
        cell = static_cast<int>(engine() % 100) < percent ? static_cast<Lum8u>(1 + engine() % 255) : 0;
    return mask;
}

/// An object and a work area of exactly the queried sizes.
template <class Members> struct MorphObject {
    GuardedBlock spec;
    GuardedBlock buffer;
    const LumMorphMaskRecord* record;

    MorphObject(LumSize roiSize, const CallerMask& mask, int spare = 0)
        : MorphObject(sizesOf(roiSize, mask.size), roiSize, mask, spare) {}

  private:
    struct Sizes {
        Lum32s spec;
        Lum32s buffer;
    };
    static Sizes sizesOf(LumSize roiSize, LumSize maskSize) {
        Sizes sizes{};
        if (Members::getSize(roiSize, maskSize, &sizes.spec, &sizes.buffer) != lumStatusOk) std::abort();
        return sizes;
    }
    MorphObject(Sizes sizes, LumSize roiSize, const CallerMask& mask, int spare)
        : spec(sizes.spec, Guard::after, spare), buffer(sizes.buffer, Guard::after, spare) {
        auto* const made = spec.template as<LumMorphMaskRecord>();
        if (Members::init(roiSize, mask.cells.data(), mask.size, made, buffer.template as<Lum8u>()) !=
            lumStatusOk)
            std::abort();
        record = made;
    }
};

/// The same for the long members.
template <class Members> struct LongMorphObject {
    GuardedBlock spec;
    GuardedBlock buffer;
    const LumMorphLongState* state;

    LongMorphObject(LumSize roiSize, const CallerMask& mask, int spare = 0)
        : spec(specBytes(roiSize, mask.size), Guard::after, spare),
          buffer(bufferBytes(roiSize, mask.size), Guard::after, spare) {
        auto* const made = spec.template as<LumMorphLongState>();
        if (lumiErodeInit_L(wide(roiSize), mask.cells.data(), wide(mask.size), made) != lumStatusOk)
            std::abort();
        state = made;
    }

  private:
    static LumSizeL wide(LumSize size) { return {size.width, size.height}; }
    static Lum32s specBytes(LumSize roiSize, LumSize maskSize) {
        Lum32s bytes = 0;
        if (lumiErodeGetSpecSize_L(wide(roiSize), wide(maskSize), &bytes) != lumStatusOk) std::abort();
        return bytes;
    }
    static Lum32s bufferBytes(LumSize roiSize, LumSize maskSize) {
        Lum32s bytes = 0;
        if (lumiErodeGetBufferSize_L(wide(roiSize), wide(maskSize), Members::type, Members::channels,
                                     &bytes) != lumStatusOk)
            std::abort();
        return bytes;
    }
};

/// The index whose element lies at i on an axis of which first .. last - 1 can be read; last for the value outside.
inline int indexOutside(int i, int first, int last, LumBorderType kind) {
    if (i >= first && i < last) return i;
    if (kind == lumBorderReplicate) return i < first ? first : last - 1;
    if (kind != lumBorderMirror) return last;
    while (i < first || i >= last) {
        if (last - first == 1) return first;
        i = i < first ? 2 * first - i : 2 * (last - 1) - i;
    }
    return i;
}

/// The value that loses against every other of its type, infinities excepted.
template <class T> constexpr T neutralValue(Operation operation) {
    return operation == Operation::dilate ? std::numeric_limits<T>::lowest() : std::numeric_limits<T>::max();
}

/// One pixel by definition. A NaN is passed over.
template <class T>
T strongestUnderMask(Operation operation, const GuardedImage<T>& src, int x, int y, int c,
                     const CallerMask& mask, LumBorderType border, const T* borderValue) {
    const bool dilates = operation == Operation::dilate;
    const LumBorderType kind = border & 15;
    const int boxWidth = mask.size.width | 1;
    const int boxHeight = mask.size.height | 1;
    const int reachX = boxWidth / 2;
    const int reachY = boxHeight / 2;
    const int left = (border & lumBorderInMemoryLeft) != 0 ? -reachX : 0;
    const int right = src.size().width + ((border & lumBorderInMemoryRight) != 0 ? reachX : 0);
    const int top = (border & lumBorderInMemoryTop) != 0 ? -reachY : 0;
    const int bottom = src.size().height + ((border & lumBorderInMemoryBottom) != 0 ? reachY : 0);
    bool any = false;
    T best{};
    for (int j = 0; j < mask.size.height; ++j)
        for (int i = 0; i < mask.size.width; ++i) {
            if (!mask.at(i, j)) continue;
            const int px = indexOutside(x + i + boxWidth - mask.size.width - reachX, left, right, kind);
            const int py = indexOutside(y + j + boxHeight - mask.size.height - reachY, top, bottom, kind);
            const bool isOutside = px == right || py == bottom;
            const T value = !isOutside                  ? src.at(px, py, c)
                            : kind == lumBorderConstant ? borderValue[c]
                                                        : neutralValue<T>(operation);
            if (value != value) continue;
            if (!any || (dilates ? value > best : value < best)) best = value;
            any = true;
        }
    return best;
}

} // namespace support

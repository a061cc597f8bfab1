#include "digest/digest.h"
#include "morph/objects.h"

namespace digest {
namespace {

/// A mask of odd sides that grows with the picture.
struct Mask {
    LumSize size;
    std::vector<Lum8u> cells;

    explicit Mask(const Case& c)
        : size{1 + 2 * static_cast<int>(c.seed % 4), 1 + 2 * static_cast<int>(c.seed % 3)} {
        Numbers numbers(c.seed);
        for (int i = 0; i < size.width * size.height; ++i)
            cells.push_back(static_cast<Lum8u>(numbers.below(3) == 0 ? 0 : 9));
    }
};

LumSizeL wide(LumSize size) { return {size.width, size.height}; }

void add(Digest& digest, const LumMorphMaskRecord& record) {
    for (Lum32s field : {Lum32s{record.width}, Lum32s{record.height}, Lum32s{record.anchorX},
                         Lum32s{record.anchorY}, Lum32s{record.boxWidth}, Lum32s{record.boxHeight},
                         Lum32s{record.rowsAreRuns}, Lum32s{record.isCross}, Lum32s{record.isKnownShape}})
        digest.add(field);
    digest.add(std::uint32_t{record.shapeFlags});
    digest.addBytes(record.cells, static_cast<std::size_t>(record.width) * record.height);
}
void add(Digest& digest, const LumMorphBitState& state) {
    for (Lum32s field : {Lum32s{state.width}, Lum32s{state.height}, Lum32s{state.anchorX},
                         Lum32s{state.anchorY}, Lum32s{state.rightReach}, Lum32s{state.bottomReach},
                         Lum32s{state.bufferRowBytes}, Lum32s{state.roiWidth}, Lum32s{state.kind}})
        digest.add(field);
    digest.addBytes(state.cells, static_cast<std::size_t>(state.width) * state.height);
}
void add(Digest& digest, const LumMorphLongState& state) {
    add(digest, *state.maskRecord);
    add(digest, *state.bitState);
}
template <class Element> void addPair(Digest& digest, const LumMorphPairState& pair) {
    add(digest, *static_cast<const Element*>(pair.first));
    add(digest, *static_cast<const Element*>(pair.second));
}

using GetSize = LumStatus (*)(LumSize, LumSize, Lum32s*, Lum32s*);

Run sizes(GetSize getSize) {
    return [=](Digest& digest, const Case& c) {
        Lum32s spec = 0, buffer = 0;
        for (int even : {0, 1}) {
            const LumSize mask = Mask(c).size;
            digest.add(getSize(c.size, {mask.width + even, mask.height + even}, &spec, &buffer));
            digest.add(spec);
            digest.add(buffer);
        }
    };
}

/// The object of any Init with a buffer, and how it is digested.
template <class Object, class Init>
Run object(GetSize getSize, Init init, void (*addObject)(Digest&, const Object&)) {
    return [=](Digest& digest, const Case& c) {
        const Mask mask(c);
        Lum32s specSize = 0, bufferSize = 0;
        getSize(c.size, mask.size, &specSize, &bufferSize);
        Memory spec(specSize), buffer(bufferSize);
        auto* built = reinterpret_cast<Object*>(spec.data());
        digest.add(init(c.size, mask.cells.data(), mask.size, built, buffer.data()));
        addObject(digest, *built);
    };
}

Run single(GetSize getSize, decltype(&lumiMorphologyBorderInit_8u_C1R) init) {
    return object<LumMorphMaskRecord>(getSize, init, add);
}
Run pair(GetSize getSize, decltype(&lumiMorphAdvInit_8u_C1R) init) {
    return object<LumMorphPairState>(getSize, init, addPair<LumMorphMaskRecord>);
}

Run longSpecSize(decltype(&lumiErodeGetSpecSize_L) getSize) {
    return [=](Digest& digest, const Case& c) {
        Lum32s size = 0;
        digest.add(getSize(wide(c.size), wide(Mask(c).size), &size));
        digest.add(size);
    };
}

constexpr LumDataType types[] = {lumType1u, lumType8u, lumType16u, lumType16s, lumType32f};

Run longSize(decltype(&lumiErodeGetBufferSize_L) getSize) {
    return [=](Digest& digest, const Case& c) {
        for (LumDataType type : types) {
            Lum32s size = 0;
            digest.add(getSize(wide(c.size), wide(Mask(c).size), type, 3, &size));
            digest.add(size);
        }
    };
}

Run longObject(decltype(&lumiErodeInit_L) init) {
    return [=](Digest& digest, const Case& c) {
        const Mask mask(c);
        Lum32s specSize = 0;
        lumiErodeGetSpecSize_L(wide(c.size), wide(mask.size), &specSize);
        Memory spec(specSize);
        auto* built = reinterpret_cast<LumMorphLongState*>(spec.data());
        digest.add(init(wide(c.size), mask.cells.data(), wide(mask.size), built));
        add(digest, *built);
    };
}

void longPair(Digest& digest, const Case& c, int mode, decltype(&lumiMorphSetMode) setMode) {
    const Mask mask(c);
    Lum32s specSize = 0;
    lumiMorphGetSpecSize_L(wide(c.size), wide(mask.size), lumType8u, 1, &specSize);
    Memory spec(specSize);
    auto* built = reinterpret_cast<LumMorphPairState*>(spec.data());
    digest.add(lumiMorphInit_L(wide(c.size), mask.cells.data(), wide(mask.size), lumType8u, 1, built));
    if (setMode != nullptr) digest.add(setMode(mode, built));
    addPair<LumMorphLongState>(digest, *built);
    digest.add(Lum32s{built->keepNegative});
}

Run modes(decltype(&lumiMorphSetMode) setMode) {
    return [=](Digest& digest, const Case& c) {
        for (int mode : {0, 1, 2, 4, 5}) longPair(digest, c, mode, setMode);
    };
}

/// A header holds one pointer.
constexpr Lum32s pointerGrowth = static_cast<Lum32s>(sizeof(void*)) - 4;

Run graySize(decltype(&lumiMorphGrayGetSize_8u_C1R) getSize) {
    return [=](Digest& digest, const Case& c) {
        Lum32s size = 0;
        digest.add(getSize(c.size, &size, Mask(c).size, &size));
        digest.add(size - pointerGrowth);
    };
}

Run grayObject(decltype(&lumiMorphGrayInit_8u_C1R) init) {
    return [=](Digest& digest, const Case& c) {
        const LumSize size = Mask(c).size;
        std::vector<Lum32s> weights;
        for (int i = 0; i < size.width * size.height; ++i) weights.push_back(i * 7 - 20);
        Lum32s specSize = 0;
        lumiMorphGrayGetSize_8u_C1R(c.size, weights.data(), size, &specSize);
        Memory spec(specSize);
        auto* built = reinterpret_cast<LumMorphGrayState*>(spec.data());
        digest.add(init(built, c.size, weights.data(), size, {size.width / 2, 0}));
        for (Lum32s field : {Lum32s{built->width}, Lum32s{built->height}, Lum32s{built->anchorX},
                             Lum32s{built->anchorY}, Lum32s{built->roiWidth}, Lum32s{built->roiHeight}})
            digest.add(field);
        digest.addBytes(built->cells, 4 * weights.size());
    };
}

const RowFile file("morph_object", [] {
    row("lumiMorphologyBorderGetSize_8u_C1R", sizes(lumiMorphologyBorderGetSize_8u_C1R));
    row("lumiMorphologyBorderGetSize_8u_C3R", sizes(lumiMorphologyBorderGetSize_8u_C3R));
    row("lumiMorphologyBorderGetSize_8u_C4R", sizes(lumiMorphologyBorderGetSize_8u_C4R));
    row("lumiMorphologyBorderGetSize_16u_C1R", sizes(lumiMorphologyBorderGetSize_16u_C1R));
    row("lumiMorphologyBorderGetSize_16s_C1R", sizes(lumiMorphologyBorderGetSize_16s_C1R));
    row("lumiMorphologyBorderGetSize_32f_C1R", sizes(lumiMorphologyBorderGetSize_32f_C1R));
    row("lumiMorphologyBorderGetSize_32f_C3R", sizes(lumiMorphologyBorderGetSize_32f_C3R));
    row("lumiMorphologyBorderGetSize_32f_C4R", sizes(lumiMorphologyBorderGetSize_32f_C4R));
    row("lumiMorphologyBorderGetSize_1u_C1R", sizes(lumiMorphologyBorderGetSize_1u_C1R));
    row("lumiMorphAdvGetSize_8u_C1R", sizes(lumiMorphAdvGetSize_8u_C1R));
    row("lumiMorphAdvGetSize_8u_C3R", sizes(lumiMorphAdvGetSize_8u_C3R));
    row("lumiMorphAdvGetSize_8u_C4R", sizes(lumiMorphAdvGetSize_8u_C4R));
    row("lumiMorphAdvGetSize_16u_C1R", sizes(lumiMorphAdvGetSize_16u_C1R));
    row("lumiMorphAdvGetSize_16s_C1R", sizes(lumiMorphAdvGetSize_16s_C1R));
    row("lumiMorphAdvGetSize_32f_C1R", sizes(lumiMorphAdvGetSize_32f_C1R));
    row("lumiMorphAdvGetSize_32f_C3R", sizes(lumiMorphAdvGetSize_32f_C3R));
    row("lumiMorphAdvGetSize_32f_C4R", sizes(lumiMorphAdvGetSize_32f_C4R));
    row("lumiMorphAdvGetSize_1u_C1R", sizes(lumiMorphAdvGetSize_1u_C1R));
    row("lumiMorphologyBorderInit_8u_C1R",
        single(lumiMorphologyBorderGetSize_8u_C1R, lumiMorphologyBorderInit_8u_C1R));
    row("lumiMorphologyBorderInit_8u_C3R",
        single(lumiMorphologyBorderGetSize_8u_C3R, lumiMorphologyBorderInit_8u_C3R));
    row("lumiMorphologyBorderInit_8u_C4R",
        single(lumiMorphologyBorderGetSize_8u_C4R, lumiMorphologyBorderInit_8u_C4R));
    row("lumiMorphologyBorderInit_16u_C1R",
        single(lumiMorphologyBorderGetSize_16u_C1R, lumiMorphologyBorderInit_16u_C1R));
    row("lumiMorphologyBorderInit_16s_C1R",
        single(lumiMorphologyBorderGetSize_16s_C1R, lumiMorphologyBorderInit_16s_C1R));
    row("lumiMorphologyBorderInit_32f_C1R",
        single(lumiMorphologyBorderGetSize_32f_C1R, lumiMorphologyBorderInit_32f_C1R));
    row("lumiMorphologyBorderInit_32f_C3R",
        single(lumiMorphologyBorderGetSize_32f_C3R, lumiMorphologyBorderInit_32f_C3R));
    row("lumiMorphologyBorderInit_32f_C4R",
        single(lumiMorphologyBorderGetSize_32f_C4R, lumiMorphologyBorderInit_32f_C4R));
    row("lumiMorphologyBorderInit_1u_C1R",
        object<LumMorphBitState>(lumiMorphologyBorderGetSize_1u_C1R, lumiMorphologyBorderInit_1u_C1R, add));
    row("lumiMorphAdvInit_8u_C1R", pair(lumiMorphAdvGetSize_8u_C1R, lumiMorphAdvInit_8u_C1R));
    row("lumiMorphAdvInit_8u_C3R", pair(lumiMorphAdvGetSize_8u_C3R, lumiMorphAdvInit_8u_C3R));
    row("lumiMorphAdvInit_8u_C4R", pair(lumiMorphAdvGetSize_8u_C4R, lumiMorphAdvInit_8u_C4R));
    row("lumiMorphAdvInit_16u_C1R", pair(lumiMorphAdvGetSize_16u_C1R, lumiMorphAdvInit_16u_C1R));
    row("lumiMorphAdvInit_16s_C1R", pair(lumiMorphAdvGetSize_16s_C1R, lumiMorphAdvInit_16s_C1R));
    row("lumiMorphAdvInit_32f_C1R", pair(lumiMorphAdvGetSize_32f_C1R, lumiMorphAdvInit_32f_C1R));
    row("lumiMorphAdvInit_32f_C3R", pair(lumiMorphAdvGetSize_32f_C3R, lumiMorphAdvInit_32f_C3R));
    row("lumiMorphAdvInit_32f_C4R", pair(lumiMorphAdvGetSize_32f_C4R, lumiMorphAdvInit_32f_C4R));
    row("lumiMorphAdvInit_1u_C1R",
        object<LumMorphPairState>(lumiMorphAdvGetSize_1u_C1R, lumiMorphAdvInit_1u_C1R,
                                  addPair<LumMorphBitState>));
    row("lumiErodeGetSpecSize_L", longSpecSize(lumiErodeGetSpecSize_L));
    row("lumiErodeGetBufferSize_L", longSize(lumiErodeGetBufferSize_L));
    row("lumiErodeInit_L", longObject(lumiErodeInit_L));
    row("lumiDilateGetSpecSize_L", longSpecSize(lumiDilateGetSpecSize_L));
    row("lumiDilateGetBufferSize_L", longSize(lumiDilateGetBufferSize_L));
    row("lumiDilateInit_L", longObject(lumiDilateInit_L));
    row("lumiMorphGetSpecSize_L", longSize(lumiMorphGetSpecSize_L));
    row("lumiMorphGetBufferSize_L", longSize(lumiMorphGetBufferSize_L));
    row("lumiMorphInit_L", [](Digest& digest, const Case& c) { longPair(digest, c, 0, nullptr); });
    row("lumiMorphSetMode", modes(lumiMorphSetMode));
    row("lumiMorphSetMode_L", modes(lumiMorphSetMode_L));
    row("lumiMorphGrayGetSize_8u_C1R", graySize(lumiMorphGrayGetSize_8u_C1R));
    row("lumiMorphGrayInit_8u_C1R", grayObject(lumiMorphGrayInit_8u_C1R));
    row("lumiMorphGrayGetSize_32f_C1R", graySize(lumiMorphGrayGetSize_32f_C1R));
    row("lumiMorphGrayInit_32f_C1R", grayObject(lumiMorphGrayInit_32f_C1R));
});

} // namespace
} // namespace digest

#include "digest/digest.h"

namespace digest {
namespace {

struct Mask {
    LumSize size;
    std::vector<Lum8u> cells;
};

const std::vector<Mask>& masks() {
    static const std::vector<Mask> all = {
        {{3, 3}, std::vector<Lum8u>(9, 1)},
        {{15, 5}, std::vector<Lum8u>(75, 1)},
        {{4, 3}, {0, 1, 1, 0, 1, 1, 1, 1, 0, 1, 0, 1}},
        {{7, 7}, {0, 0, 0, 1, 0, 0, 0, 0, 1, 1, 1, 1, 1, 0, 0, 1, 1, 1, 1, 1, 0, 1, 1, 1, 1,
                  1, 1, 1, 0, 1, 1, 1, 1, 1, 0, 0, 1, 1, 1, 1, 1, 0, 0, 0, 0, 1, 0, 0, 0}},
    };
    return all;
}

const LumBorderType borders[] = {lumBorderReplicate, lumBorderMirror,
                                 lumBorderConstant | lumBorderInMemoryTop,
                                 lumBorderDefaultValue | lumBorderInMemoryLeft, lumBorderInMemory};

template <class T, int channels, class Member>
std::function<void(Digest&, const Case&)> border(Member member) {
    return [=](Digest& digest, const Case& c) {
        Picture<T> src(c.size, channels, c.offset, 8), dst(c.size, channels);
        src.fill(c.seed);
        const T value[4] = {100, 50, 20, 10};
        for (const Mask& mask : masks())
            for (LumBorderType kind : borders) {
                Lum32s specBytes = 0;
                Lum32s bufferBytes = 0;
                digest.add(lumiMorphologyBorderGetSize_32f_C4R(c.size, mask.size, &specBytes, &bufferBytes));
                Memory spec(specBytes);
                Memory buffer(bufferBytes);
                auto* const record = spec.as<LumMorphMaskRecord>();
                digest.add(
                    lumiMorphologyBorderInit_8u_C1R(c.size, mask.cells.data(), mask.size, record, buffer));
                if constexpr (channels == 1)
                    digest.add(call(member, src, dst, c.size, kind, value[0], record, buffer.as<Lum8u>()));
                else
                    digest.add(call(member, src, dst, c.size, kind, &value[0], record, buffer.as<Lum8u>()));
                dst.addTo(digest);
            }
    };
}

template <class T, int channels, class Member>
std::function<void(Digest&, const Case&)> longForm(Member member, LumDataType type) {
    return [=](Digest& digest, const Case& c) {
        Picture<T> src(c.size, channels, c.offset, 8), dst(c.size, channels);
        src.fill(c.seed);
        const T value[4] = {100, 50, 20, 10};
        const LumSizeL size{c.size.width, c.size.height};
        for (const Mask& mask : masks())
            for (LumBorderType kind : borders) {
                const LumSizeL maskSize{mask.size.width, mask.size.height};
                Lum32s specBytes = 0;
                Lum32s bufferBytes = 0;
                digest.add(lumiErodeGetSpecSize_L(size, maskSize, &specBytes));
                digest.add(lumiErodeGetBufferSize_L(size, maskSize, type, channels, &bufferBytes));
                Memory spec(specBytes);
                Memory buffer(bufferBytes);
                auto* const state = spec.as<LumMorphLongState>();
                digest.add(lumiErodeInit_L(size, mask.cells.data(), maskSize, state));
                digest.add(call(member, src, dst, size, kind, &value[0], state, buffer.as<Lum8u>()));
                dst.addTo(digest);
            }
    };
}

/// Regions of bits: as many pixels as the case has bytes, from other bits in source and destination.
template <class State, class GetSize, class Init, class Member, class Size, class Value>
void addBits(Digest& digest, const Case& c, const Mask& mask, GetSize getSize, Init init, Member member,
             Size size, Value value) {
    Picture<Lum8u> src(c.size, 1, c.offset, 8), dst(c.size);
    src.fill(c.seed);
    dst.clear();
    Lum32s specBytes = 0;
    Lum32s bufferBytes = 0;
    getSize(mask, &specBytes, &bufferBytes);
    Memory spec(specBytes);
    Memory buffer(bufferBytes);
    auto* const state = spec.as<State>();
    digest.add(init(state, mask, buffer.as<Lum8u>()));
    for (LumBorderType kind :
         {int{lumBorderReplicate}, lumBorderConstant | lumBorderInMemoryTop, int{lumBorderInMemory}}) {
        digest.add(member(src.data(), src.step(), 3, dst.data(), dst.step(), 6, size, kind, value, state,
                          buffer.as<Lum8u>()));
        dst.addTo(digest);
    }
}

template <class Member> std::function<void(Digest&, const Case&)> bits(Member member) {
    return [=](Digest& digest, const Case& c) {
        for (const Mask& mask : masks())
            addBits<LumMorphBitState>(
                digest, c, mask,
                [&](const Mask& m, Lum32s* spec, Lum32s* buffer) {
                    lumiMorphologyBorderGetSize_1u_C1R(c.size, m.size, spec, buffer);
                },
                [&](LumMorphBitState* state, const Mask& m, Lum8u* buffer) {
                    return lumiMorphologyBorderInit_1u_C1R(c.size, m.cells.data(), m.size, state, buffer);
                },
                member, c.size, Lum8u{1});
    };
}

template <class Member> std::function<void(Digest&, const Case&)> longBits(Member member) {
    return [=](Digest& digest, const Case& c) {
        const LumSizeL size{c.size.width, c.size.height};
        static constexpr Lum8u value = 1;
        for (const Mask& mask : masks())
            addBits<LumMorphLongState>(
                digest, c, mask,
                [&](const Mask& m, Lum32s* spec, Lum32s* buffer) {
                    const LumSizeL maskSize{m.size.width, m.size.height};
                    lumiErodeGetSpecSize_L(size, maskSize, spec);
                    lumiErodeGetBufferSize_L(size, maskSize, lumType1u, 1, buffer);
                },
                [&](LumMorphLongState* state, const Mask& m, Lum8u*) {
                    return lumiErodeInit_L(size, m.cells.data(), {m.size.width, m.size.height}, state);
                },
                member, size, &value);
    };
}

template <class T, class Weight, class Init, class Member>
std::function<void(Digest&, const Case&)> gray(Init init, Member member) {
    return [=](Digest& digest, const Case& c) {
        Picture<T> src(c.size, 1, c.offset), dst(c.size);
        src.fill(c.seed);
        const Weight weights[15] = {-4, 3, -2, 10, 0, 7, -20, 5, 1, 300, -300, 2, 8, -9, 6};
        Lum32s specBytes = 0;
        lumiMorphGrayGetSize_8u_C1R(c.size, weights, {5, 3}, &specBytes);
        Memory spec(specBytes);
        auto* const state = spec.as<LumMorphGrayState>();
        digest.add(init(state, c.size, weights, LumSize{5, 3}, LumPoint{1, 2}));
        digest.add(call(member, src, dst, c.size, LumBorderType{lumBorderReplicate}, state));
        dst.addTo(digest);
    };
}

template <class T, class Member>
std::function<void(Digest&, const Case&)> reconstruction(Member member, LumDataType type, bool raises) {
    return [=](Digest& digest, const Case& c) {
        for (LumSpatialNorm connectivity : {lumSpatialNormInf, lumSpatialNormL1}) {
            Picture<T> limit(c.size, 1, c.offset), marker(c.size, 1, c.offset);
            limit.fill(c.seed);
            marker.fill(c.seed + 100);
            Numbers numbers(c.seed);
            for (int y = 0; y < c.size.height; ++y)
                for (int x = 0; x < c.size.width; ++x)
                    if (numbers.below(20) != 0) marker.row(y)[x] = static_cast<T>(raises ? 0 : 120);
            Lum32s bytes = 0;
            digest.add(lumiMorphReconstructGetBufferSize(c.size, type, 1, &bytes));
            Memory buffer(bytes);
            digest.add(call(member, limit, marker, c.size, buffer.as<Lum8u>(), connectivity));
            marker.addTo(digest);
        }
    };
}

const RowFile file("morph", [] {
    row("lumiDilateBorder_8u_C1R", border<Lum8u, 1>(lumiDilateBorder_8u_C1R));
    row("lumiDilateBorder_8u_C3R", border<Lum8u, 3>(lumiDilateBorder_8u_C3R));
    row("lumiDilateBorder_8u_C4R", border<Lum8u, 4>(lumiDilateBorder_8u_C4R));
    row("lumiDilateBorder_16u_C1R", border<Lum16u, 1>(lumiDilateBorder_16u_C1R));
    row("lumiDilateBorder_16s_C1R", border<Lum16s, 1>(lumiDilateBorder_16s_C1R));
    row("lumiDilateBorder_32f_C1R", border<Lum32f, 1>(lumiDilateBorder_32f_C1R));
    row("lumiDilateBorder_32f_C3R", border<Lum32f, 3>(lumiDilateBorder_32f_C3R));
    row("lumiDilateBorder_32f_C4R", border<Lum32f, 4>(lumiDilateBorder_32f_C4R));
    row("lumiDilate_8u_C1R_L", longForm<Lum8u, 1>(lumiDilate_8u_C1R_L, lumType8u));
    row("lumiDilate_8u_C3R_L", longForm<Lum8u, 3>(lumiDilate_8u_C3R_L, lumType8u));
    row("lumiDilate_8u_C4R_L", longForm<Lum8u, 4>(lumiDilate_8u_C4R_L, lumType8u));
    row("lumiDilate_16u_C1R_L", longForm<Lum16u, 1>(lumiDilate_16u_C1R_L, lumType16u));
    row("lumiDilate_16s_C1R_L", longForm<Lum16s, 1>(lumiDilate_16s_C1R_L, lumType16s));
    row("lumiDilate_32f_C1R_L", longForm<Lum32f, 1>(lumiDilate_32f_C1R_L, lumType32f));
    row("lumiDilate_32f_C3R_L", longForm<Lum32f, 3>(lumiDilate_32f_C3R_L, lumType32f));
    row("lumiDilate_32f_C4R_L", longForm<Lum32f, 4>(lumiDilate_32f_C4R_L, lumType32f));
    row("lumiDilateBorder_1u_C1R", bits(lumiDilateBorder_1u_C1R));
    row("lumiDilate_1u_C1R_L", longBits(lumiDilate_1u_C1R_L));
    row("lumiGrayDilateBorder_8u_C1R",
        gray<Lum8u, Lum32s>(lumiMorphGrayInit_8u_C1R, lumiGrayDilateBorder_8u_C1R));
    row("lumiGrayDilateBorder_32f_C1R",
        gray<Lum32f, Lum32f>(lumiMorphGrayInit_32f_C1R, lumiGrayDilateBorder_32f_C1R));
    row("lumiErodeBorder_8u_C1R", border<Lum8u, 1>(lumiErodeBorder_8u_C1R));
    row("lumiErodeBorder_8u_C3R", border<Lum8u, 3>(lumiErodeBorder_8u_C3R));
    row("lumiErodeBorder_8u_C4R", border<Lum8u, 4>(lumiErodeBorder_8u_C4R));
    row("lumiErodeBorder_16u_C1R", border<Lum16u, 1>(lumiErodeBorder_16u_C1R));
    row("lumiErodeBorder_16s_C1R", border<Lum16s, 1>(lumiErodeBorder_16s_C1R));
    row("lumiErodeBorder_32f_C1R", border<Lum32f, 1>(lumiErodeBorder_32f_C1R));
    row("lumiErodeBorder_32f_C3R", border<Lum32f, 3>(lumiErodeBorder_32f_C3R));
    row("lumiErodeBorder_32f_C4R", border<Lum32f, 4>(lumiErodeBorder_32f_C4R));
    row("lumiErode_8u_C1R_L", longForm<Lum8u, 1>(lumiErode_8u_C1R_L, lumType8u));
    row("lumiErode_8u_C3R_L", longForm<Lum8u, 3>(lumiErode_8u_C3R_L, lumType8u));
    row("lumiErode_8u_C4R_L", longForm<Lum8u, 4>(lumiErode_8u_C4R_L, lumType8u));
    row("lumiErode_16u_C1R_L", longForm<Lum16u, 1>(lumiErode_16u_C1R_L, lumType16u));
    row("lumiErode_16s_C1R_L", longForm<Lum16s, 1>(lumiErode_16s_C1R_L, lumType16s));
    row("lumiErode_32f_C1R_L", longForm<Lum32f, 1>(lumiErode_32f_C1R_L, lumType32f));
    row("lumiErode_32f_C3R_L", longForm<Lum32f, 3>(lumiErode_32f_C3R_L, lumType32f));
    row("lumiErode_32f_C4R_L", longForm<Lum32f, 4>(lumiErode_32f_C4R_L, lumType32f));
    row("lumiErodeBorder_1u_C1R", bits(lumiErodeBorder_1u_C1R));
    row("lumiErode_1u_C1R_L", longBits(lumiErode_1u_C1R_L));
    row("lumiGrayErodeBorder_8u_C1R",
        gray<Lum8u, Lum32s>(lumiMorphGrayInit_8u_C1R, lumiGrayErodeBorder_8u_C1R));
    row("lumiGrayErodeBorder_32f_C1R",
        gray<Lum32f, Lum32f>(lumiMorphGrayInit_32f_C1R, lumiGrayErodeBorder_32f_C1R));
    row("lumiMorphReconstructDilate_8u_C1IR",
        reconstruction<Lum8u>(lumiMorphReconstructDilate_8u_C1IR, lumType8u, true));
    row("lumiMorphReconstructDilate_16u_C1IR",
        reconstruction<Lum16u>(lumiMorphReconstructDilate_16u_C1IR, lumType16u, true));
    row("lumiMorphReconstructDilate_32f_C1IR",
        reconstruction<Lum32f>(lumiMorphReconstructDilate_32f_C1IR, lumType32f, true));
    row("lumiMorphReconstructDilate_64f_C1IR",
        reconstruction<Lum64f>(lumiMorphReconstructDilate_64f_C1IR, lumType64f, true));
    row("lumiMorphReconstructErode_8u_C1IR",
        reconstruction<Lum8u>(lumiMorphReconstructErode_8u_C1IR, lumType8u, false));
    row("lumiMorphReconstructErode_16u_C1IR",
        reconstruction<Lum16u>(lumiMorphReconstructErode_16u_C1IR, lumType16u, false));
    row("lumiMorphReconstructErode_32f_C1IR",
        reconstruction<Lum32f>(lumiMorphReconstructErode_32f_C1IR, lumType32f, false));
    row("lumiMorphReconstructErode_64f_C1IR",
        reconstruction<Lum64f>(lumiMorphReconstructErode_64f_C1IR, lumType64f, false));
    row("lumiMorphReconstructGetBufferSize", [](Digest& digest, const Case& c) {
        for (LumDataType type : {lumType8u, lumType16u, lumType16s, lumType32f, lumType64f}) {
            Lum32s bytes = 0;
            digest.add(lumiMorphReconstructGetBufferSize(c.size, type, 1, &bytes));
            digest.add(bytes);
        }
    });
});

} // namespace
} // namespace digest

#include "rows.h"

#include <memory>
#include <random>

namespace bench {
namespace {

struct Mask {
    LumSize size;
    std::vector<Lum8u> cells;
};

Mask rectangle(int width, int height) {
    return {{width, height}, std::vector<Lum8u>(static_cast<std::size_t>(width) * height, 1)};
}
Mask cross(int side) {
    Mask mask = rectangle(side, side);
    for (int i = 0; i < side * side; ++i) mask.cells[i] = i / side == side / 2 || i % side == side / 2;
    return mask;
}
Mask disc(int side) {
    Mask mask = rectangle(side, side);
    const int radius = side / 2;
    for (int y = -radius; y <= radius; ++y)
        for (int x = -radius; x <= radius; ++x)
            mask.cells[(y + radius) * side + x + radius] = x * x + y * y <= radius * radius;
    return mask;
}
/// Every other cell is set.
Mask randomCells(int side) {
    std::mt19937 engine(7);
    Mask mask = rectangle(side, side);
    for (Lum8u& cell : mask.cells) cell = engine() % 2;
    return mask;
}

template <class T, int channels> struct GetSize;
template <> struct GetSize<Lum8u, 1> { static constexpr auto size = lumiMorphologyBorderGetSize_8u_C1R; };
template <> struct GetSize<Lum8u, 3> { static constexpr auto size = lumiMorphologyBorderGetSize_8u_C3R; };
template <> struct GetSize<Lum8u, 4> { static constexpr auto size = lumiMorphologyBorderGetSize_8u_C4R; };
template <> struct GetSize<Lum16u, 1> { static constexpr auto size = lumiMorphologyBorderGetSize_16u_C1R; };
template <> struct GetSize<Lum16s, 1> { static constexpr auto size = lumiMorphologyBorderGetSize_16s_C1R; };
template <> struct GetSize<Lum32f, 1> { static constexpr auto size = lumiMorphologyBorderGetSize_32f_C1R; };
template <> struct GetSize<Lum32f, 3> { static constexpr auto size = lumiMorphologyBorderGetSize_32f_C3R; };
template <> struct GetSize<Lum32f, 4> { static constexpr auto size = lumiMorphologyBorderGetSize_32f_C4R; };

/// One Init serves all types.
template <class T, int channels, class Member> Setup border(Member member, const Mask& mask) {
    return [member, mask] {
        struct Work {
            Plane<T> src, dst;
            std::vector<Lum8u> spec, buffer;
        };
        Lum32s specBytes = 0;
        Lum32s bufferBytes = 0;
        GetSize<T, channels>::size(size, mask.size, &specBytes, &bufferBytes);
        auto work =
            std::make_shared<Work>(Work{sceneAs<T>(channels), Plane<T>(channels),
                                        std::vector<Lum8u>(specBytes), std::vector<Lum8u>(bufferBytes)});
        auto* const spec = reinterpret_cast<LumMorphMaskRecord*>(work->spec.data());
        lumiMorphologyBorderInit_8u_C1R(size, mask.cells.data(), mask.size, spec, work->buffer.data());
        return [work, member, spec] {
            static constexpr T value[4] = {};
            if constexpr (channels == 1)
                member(work->src.data, work->src.step(), work->dst.data, work->dst.step(), size,
                       lumBorderReplicate, T{}, spec, work->buffer.data());
            else
                member(work->src.data, work->src.step(), work->dst.data, work->dst.step(), size,
                       lumBorderReplicate, value, spec, work->buffer.data());
        };
    };
}

template <class T, int channels, class Member>
Setup longForm(Member member, LumDataType type, const Mask& mask) {
    return [member, type, mask] {
        struct Work {
            Plane<T> src, dst;
            std::vector<Lum8u> spec, buffer;
        };
        const LumSizeL wide{width, height};
        const LumSizeL maskSize{mask.size.width, mask.size.height};
        Lum32s specBytes = 0;
        Lum32s bufferBytes = 0;
        lumiDilateGetSpecSize_L(wide, maskSize, &specBytes);
        lumiDilateGetBufferSize_L(wide, maskSize, type, channels, &bufferBytes);
        auto work =
            std::make_shared<Work>(Work{sceneAs<T>(channels), Plane<T>(channels),
                                        std::vector<Lum8u>(specBytes), std::vector<Lum8u>(bufferBytes)});
        auto* const spec = reinterpret_cast<LumMorphLongState*>(work->spec.data());
        lumiDilateInit_L(wide, mask.cells.data(), maskSize, spec);
        return [work, member, spec, wide] {
            static constexpr T value[4] = {};
            member(work->src.data, work->src.step(), work->dst.data, work->dst.step(), wide,
                   lumBorderReplicate, value, spec, work->buffer.data());
        };
    };
}

/// A picture of bits: the scene above its middle tone.
template <class Member> Setup bits(Member member, const Mask& mask) {
    return [member, mask] {
        struct Work {
            Plane<Lum8u> src, dst;
            std::vector<Lum8u> spec, buffer;
        };
        Lum32s specBytes = 0;
        Lum32s bufferBytes = 0;
        lumiMorphologyBorderGetSize_1u_C1R(size, mask.size, &specBytes, &bufferBytes);
        auto work = std::make_shared<Work>(
            Work{Plane<Lum8u>(1, height, width / 8), Plane<Lum8u>(1, height, width / 8),
                 std::vector<Lum8u>(specBytes), std::vector<Lum8u>(bufferBytes)});
        for (int i = 0; i < pixels; ++i)
            work->src.data[i / 8] =
                static_cast<Lum8u>(work->src.data[i / 8] | (scene().data[i] > 127) << i % 8);
        auto* const spec = reinterpret_cast<LumMorphBitState*>(work->spec.data());
        lumiMorphologyBorderInit_1u_C1R(size, mask.cells.data(), mask.size, spec, work->buffer.data());
        return [work, member, spec] {
            member(work->src.data, work->src.step(), 0, work->dst.data, work->dst.step(), 0, size,
                   lumBorderReplicate, 0, spec, work->buffer.data());
        };
    };
}

template <class T, class Member, class GetGraySize, class Init>
Setup gray(Member member, GetGraySize getSize, Init init) {
    return [=] {
        struct Work {
            Plane<T> src, dst;
            std::vector<Lum8u> spec;
        };
        using Weight = std::conditional_t<std::is_same_v<T, Lum8u>, Lum32s, Lum32f>;
        const Weight weights[9] = {-4, -2, -4, -2, 0, -2, -4, -2, -4};
        Lum32s specBytes = 0;
        getSize(size, weights, {3, 3}, &specBytes);
        auto work = std::make_shared<Work>(Work{sceneAs<T>(), Plane<T>(), std::vector<Lum8u>(specBytes)});
        auto* const spec = reinterpret_cast<LumMorphGrayState*>(work->spec.data());
        init(spec, size, weights, {3, 3}, {1, 1});
        return [work, member, spec] {
            member(work->src.data, work->src.step(), work->dst.data, work->dst.step(), size,
                   lumBorderReplicate, spec);
        };
    };
}

/// The marker is the scene 40 levels darker; its copy into place is part of the work.
template <class T, class Member> Setup reconstruction(Member member, LumDataType type) {
    return [member, type] {
        struct Work {
            Plane<T> mask, start, marker;
            std::vector<Lum8u> buffer;
        };
        Lum32s bytes = 0;
        lumiMorphReconstructGetBufferSize(size, type, 1, &bytes);
        auto work =
            std::make_shared<Work>(Work{sceneAs<T>(), sceneAs<T>(), Plane<T>(), std::vector<Lum8u>(bytes)});
        const T bound = sizeof(T) == 2 ? 40 * 257 : 40;
        for (int i = 0; i < pixels; ++i)
            work->start.data[i] = work->start.data[i] > bound ? work->start.data[i] - bound : T{0};
        return [work, member] {
            std::copy_n(work->start.data, pixels, work->marker.data);
            member(work->mask.data, work->mask.step(), work->marker.data, work->marker.step(), size,
                   work->buffer.data(), lumSpatialNormInf);
        };
    };
}

const RowFile file([] {
    row("DilateBorder_8u_rect3", border<Lum8u, 1>(lumiDilateBorder_8u_C1R, rectangle(3, 3)));
    row("DilateBorder_8u_rect5", border<Lum8u, 1>(lumiDilateBorder_8u_C1R, rectangle(5, 5)));
    row("DilateBorder_8u_rect15", border<Lum8u, 1>(lumiDilateBorder_8u_C1R, rectangle(15, 15)));
    row("DilateBorder_8u_rect63", border<Lum8u, 1>(lumiDilateBorder_8u_C1R, rectangle(63, 63)));
    row("DilateBorder_8u_disc7", border<Lum8u, 1>(lumiDilateBorder_8u_C1R, disc(7)));
    row("DilateBorder_8u_disc15", border<Lum8u, 1>(lumiDilateBorder_8u_C1R, disc(15)));
    row("DilateBorder_8u_random7", border<Lum8u, 1>(lumiDilateBorder_8u_C1R, randomCells(7)));
    row("DilateBorder_8u_random15", border<Lum8u, 1>(lumiDilateBorder_8u_C1R, randomCells(15)));
    row("DilateBorder_8u_cross3", border<Lum8u, 1>(lumiDilateBorder_8u_C1R, cross(3)));
    row("DilateBorder_16u_rect5", border<Lum16u, 1>(lumiDilateBorder_16u_C1R, rectangle(5, 5)));
    row("DilateBorder_16s_rect5", border<Lum16s, 1>(lumiDilateBorder_16s_C1R, rectangle(5, 5)));
    row("DilateBorder_32f_rect5", border<Lum32f, 1>(lumiDilateBorder_32f_C1R, rectangle(5, 5)));
    row("DilateBorder_32f_C3_rect5", border<Lum32f, 3>(lumiDilateBorder_32f_C3R, rectangle(5, 5)));
    row("DilateBorder_32f_C4_rect5", border<Lum32f, 4>(lumiDilateBorder_32f_C4R, rectangle(5, 5)));
    row("DilateBorder_8u_C3_rect5", border<Lum8u, 3>(lumiDilateBorder_8u_C3R, rectangle(5, 5)));
    row("DilateBorder_8u_C4_rect5", border<Lum8u, 4>(lumiDilateBorder_8u_C4R, rectangle(5, 5)));
    row("ErodeBorder_8u_rect3", border<Lum8u, 1>(lumiErodeBorder_8u_C1R, rectangle(3, 3)));
    row("ErodeBorder_8u_rect5", border<Lum8u, 1>(lumiErodeBorder_8u_C1R, rectangle(5, 5)));
    row("ErodeBorder_8u_rect15", border<Lum8u, 1>(lumiErodeBorder_8u_C1R, rectangle(15, 15)));
    row("ErodeBorder_8u_disc7", border<Lum8u, 1>(lumiErodeBorder_8u_C1R, disc(7)));
    row("ErodeBorder_8u_cross3", border<Lum8u, 1>(lumiErodeBorder_8u_C1R, cross(3)));
    row("ErodeBorder_16u_rect5", border<Lum16u, 1>(lumiErodeBorder_16u_C1R, rectangle(5, 5)));
    row("ErodeBorder_32f_rect5", border<Lum32f, 1>(lumiErodeBorder_32f_C1R, rectangle(5, 5)));
    row("ErodeBorder_8u_C3_rect5", border<Lum8u, 3>(lumiErodeBorder_8u_C3R, rectangle(5, 5)));
    row("DilateBorder_1u_rect3", bits(lumiDilateBorder_1u_C1R, rectangle(3, 3)));
    row("DilateBorder_1u_rect15", bits(lumiDilateBorder_1u_C1R, rectangle(15, 15)));
    row("DilateBorder_1u_disc7", bits(lumiDilateBorder_1u_C1R, disc(7)));
    row("ErodeBorder_1u_rect3", bits(lumiErodeBorder_1u_C1R, rectangle(3, 3)));
    row("Dilate_L_8u_rect5", longForm<Lum8u, 1>(lumiDilate_8u_C1R_L, lumType8u, rectangle(5, 5)));
    row("Erode_L_32f_rect5", longForm<Lum32f, 1>(lumiErode_32f_C1R_L, lumType32f, rectangle(5, 5)));
    row("GrayDilateBorder_8u_3x3",
        gray<Lum8u>(lumiGrayDilateBorder_8u_C1R, lumiMorphGrayGetSize_8u_C1R, lumiMorphGrayInit_8u_C1R));
    row("GrayDilateBorder_32f_3x3",
        gray<Lum32f>(lumiGrayDilateBorder_32f_C1R, lumiMorphGrayGetSize_32f_C1R, lumiMorphGrayInit_32f_C1R));
    row("MorphReconstructDilate_8u", reconstruction<Lum8u>(lumiMorphReconstructDilate_8u_C1IR, lumType8u));
    row("MorphReconstructDilate_16u",
        reconstruction<Lum16u>(lumiMorphReconstructDilate_16u_C1IR, lumType16u));
    row("MorphReconstructDilate_32f",
        reconstruction<Lum32f>(lumiMorphReconstructDilate_32f_C1IR, lumType32f));
});

} // namespace
} // namespace bench

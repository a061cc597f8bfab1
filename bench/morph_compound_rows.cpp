#include "rows.h"

#include <memory>
#include <type_traits>
#include <utility>

namespace bench {
namespace {

struct Element {
    LumSize size;
    std::vector<Lum8u> cells;
};

Element rectangle(int side) {
    return {{side, side}, std::vector<Lum8u>(static_cast<std::size_t>(side) * side, 1)};
}

Element disc(int side) {
    Element element = rectangle(side);
    const int r = side / 2;
    for (int y = -r; y <= r; ++y)
        for (int x = -r; x <= r; ++x)
            if (x * x + y * y > r * r + r) element.cells[static_cast<std::size_t>(y + r) * side + x + r] = 0;
    return element;
}

LumSizeL sizeL() { return {width, height}; }

template <class T>
constexpr LumDataType typeOf = std::is_same_v<T, Lum8u>    ? lumType8u
                               : std::is_same_v<T, Lum16u> ? lumType16u
                               : std::is_same_v<T, Lum16s> ? lumType16s
                                                           : lumType32f;

/// The images of a row, with an object and work memory.
template <class T> struct Run {
    Plane<T> src, dst;
    std::vector<Lum8u> object, buffer;

    Run(Plane<T> source, Plane<T> result) : src(std::move(source)), dst(std::move(result)) {}
    void allocate(Lum32s specSize, Lum32s bufferSize) {
        object.resize(static_cast<std::size_t>(specSize));
        buffer.resize(static_cast<std::size_t>(bufferSize));
    }
    LumMorphPairState* spec() { return reinterpret_cast<LumMorphPairState*>(object.data()); }
};

template <class T> constexpr T black{};

template <class T, class GetSize, class Init, class Member>
Setup border(GetSize getSize, Init init, Member member, Element element, int channels = 1) {
    return [=] {
        auto run = std::make_shared<Run<T>>(sceneAs<T>(channels), Plane<T>(channels));
        Lum32s specSize = 0, bufferSize = 0;
        getSize(size, element.size, &specSize, &bufferSize);
        run->allocate(specSize, bufferSize);
        init(size, element.cells.data(), element.size, run->spec(), run->buffer.data());
        return [run, member] {
            constexpr bool byPointer =
                std::is_invocable_v<Member, const T*, int, T*, int, LumSize, LumBorderType, const T*,
                                    const LumMorphPairState*, Lum8u*>;
            if constexpr (byPointer)
                member(run->src.data, run->src.step(), run->dst.data, run->dst.step(), size,
                       lumBorderReplicate, nullptr, run->spec(), run->buffer.data());
            else
                member(run->src.data, run->src.step(), run->dst.data, run->dst.step(), size,
                       lumBorderReplicate, black<T>, run->spec(), run->buffer.data());
        };
    };
}

template <class T, class Member>
Setup longForm(Member member, Element element, int channels = 1, LumBorderType word = lumBorderReplicate) {
    return [=] {
        auto run = std::make_shared<Run<T>>(sceneAs<T>(channels), Plane<T>(channels));
        const LumSizeL maskSize{element.size.width, element.size.height};
        Lum32s specSize = 0, bufferSize = 0;
        lumiMorphGetSpecSize_L(sizeL(), maskSize, typeOf<T>, channels, &specSize);
        lumiMorphGetBufferSize_L(sizeL(), maskSize, typeOf<T>, channels, &bufferSize);
        run->allocate(specSize, bufferSize);
        lumiMorphInit_L(sizeL(), element.cells.data(), maskSize, typeOf<T>, channels, run->spec());
        return [run, member, word] {
            member(run->src.data, run->src.step(), run->dst.data, run->dst.step(), sizeL(), word, nullptr,
                   run->spec(), run->buffer.data());
        };
    };
}

/// The scene as bits: its bright half.
template <class Member> Setup bits(Member member, Element element) {
    return [=] {
        const int bytes = width / 8;
        auto run =
            std::make_shared<Run<Lum8u>>(Plane<Lum8u>(1, height, bytes), Plane<Lum8u>(1, height, bytes));
        const Plane<Lum8u>& grey = scene();
        for (int i = 0; i < pixels; ++i)
            run->src.data[i / 8] = static_cast<Lum8u>(run->src.data[i / 8] | (grey.data[i] > 127) << (i % 8));
        Lum32s specSize = 0, bufferSize = 0;
        lumiMorphAdvGetSize_1u_C1R(size, element.size, &specSize, &bufferSize);
        run->allocate(specSize, bufferSize);
        lumiMorphAdvInit_1u_C1R(size, element.cells.data(), element.size, run->spec(), run->buffer.data());
        return [run, member, bytes] {
            member(run->src.data, bytes, 0, run->dst.data, bytes, 0, size, lumBorderReplicate, 0, run->spec(),
                   run->buffer.data());
        };
    };
}

template <class Member> Setup bytes(Member member, Element element) {
    return border<Lum8u>(lumiMorphAdvGetSize_8u_C1R, lumiMorphAdvInit_8u_C1R, member, element);
}

const RowFile file([] {
    row("MorphOpenBorder_8u_rect5", bytes(lumiMorphOpenBorder_8u_C1R, rectangle(5)));
    row("MorphGradientBorder_8u_rect5", bytes(lumiMorphGradientBorder_8u_C1R, rectangle(5)));
    row("MorphTophatBorder_8u_rect5", bytes(lumiMorphTophatBorder_8u_C1R, rectangle(5)));
    row("MorphCloseBorder_8u_rect5", bytes(lumiMorphCloseBorder_8u_C1R, rectangle(5)));
    row("MorphBlackhatBorder_8u_rect5", bytes(lumiMorphBlackhatBorder_8u_C1R, rectangle(5)));
    row("MorphOpenBorder_8u_rect15", bytes(lumiMorphOpenBorder_8u_C1R, rectangle(15)));
    row("MorphOpenBorder_8u_disc7", bytes(lumiMorphOpenBorder_8u_C1R, disc(7)));
    row("MorphOpenBorder_16s_rect5", border<Lum16s>(lumiMorphAdvGetSize_16s_C1R, lumiMorphAdvInit_16s_C1R,
                                                    lumiMorphOpenBorder_16s_C1R, rectangle(5)));
    row("MorphTophatBorder_32f_rect5", border<Lum32f>(lumiMorphAdvGetSize_32f_C1R, lumiMorphAdvInit_32f_C1R,
                                                      lumiMorphTophatBorder_32f_C1R, rectangle(5)));
    row("MorphGradientBorder_8u_C3_rect5", border<Lum8u>(lumiMorphAdvGetSize_8u_C3R, lumiMorphAdvInit_8u_C3R,
                                                         lumiMorphGradientBorder_8u_C3R, rectangle(5), 3));
    row("MorphOpenBorder_1u_rect3", bits(lumiMorphOpenBorder_1u_C1R, rectangle(3)));
    row("MorphTophatBorder_1u_rect3", bits(lumiMorphTophatBorder_1u_C1R, rectangle(3)));
    row("MorphOpen_8u_L_rect5", longForm<Lum8u>(lumiMorphOpen_8u_C1R_L, rectangle(5)));
    row("MorphTophat_8u_L_rect5", longForm<Lum8u>(lumiMorphTophat_8u_C1R_L, rectangle(5)));
    row("MorphGradient_8u_L_rect5", longForm<Lum8u>(lumiMorphGradient_8u_C1R_L, rectangle(5)));
    row("MorphBlackhat_32f_L_rect5", longForm<Lum32f>(lumiMorphBlackhat_32f_C1R_L, rectangle(5)));
    row("MorphTophat_16s_L_rect5", longForm<Lum16s>(lumiMorphTophat_16s_C1R_L, rectangle(5)));
});

} // namespace
} // namespace bench

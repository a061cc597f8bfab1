#include "digest/digest.h"

namespace digest {
namespace {

using Row = std::function<void(Digest&, const Case&)>;

constexpr LumBorderType borders[] = {lumBorderReplicate, lumBorderMirror, lumBorderConstant,
                                     lumBorderInMemory,
                                     lumBorderMirror | lumBorderInMemoryTop | lumBorderInMemoryLeft};
constexpr LumSize kernelSize{5, 3};
constexpr Lum16s integersX[5] = {1, 4, 6, 4, 1};
constexpr Lum16s integersY[3] = {3, 10, 3};
constexpr Lum32f floatsX[5] = {0.0625F, 0.25F, 0.375F, 0.25F, 0.0625F};
constexpr Lum32f floatsY[3] = {0.1875F, 0.625F, 0.1875F};

LumSizeL wide(LumSize size) { return {size.width, size.height}; }

/// The size itself depends on the width of pointers.
template <class Query> LumStatus bufferStatus(const Case& c, Query query) {
    Lum32s bytes = 0;
    return query(c.size, kernelSize, lumType8u, lumType32f, 3, &bytes);
}
LumStatus bufferStatusLong(const Case& c) {
    Lum32s bytes = 0;
    return lumiFilterSeparableGetBufferSize_L(wide(c.size), wide(kernelSize), lumType8u, lumType32f, 3,
                                              &bytes);
}

void specSize(Digest& digest, const Case& c) {
    Lum32s bytes = 0;
    digest.add(lumiFilterSeparableGetSpecSize(c.size, lumType16s, 1, &bytes));
    digest.add(bytes);
}
void specSizeLong(Digest& digest, const Case& c) {
    Lum32s bytes = 0;
    digest.add(lumiFilterSeparableGetSpecSize_L(wide(c.size), lumType16s, 1, &bytes));
    digest.add(bytes);
}

/// A filter with its memory, by the functions with or without _L.
template <bool isLong> struct Filter {
    Memory spec;
    Memory buffer;
    LumStatus status;

    Filter(LumSize size, LumDataType type, LumDataType kernelType, int channels)
        : spec(specBytes(kernelType, channels)), buffer(bufferBytes(size, type, kernelType, channels)) {
        auto* object = spec.as<LumFilterSeparableSpec>();
        if constexpr (isLong)
            status = kernelType == lumType16s
                         ? lumiFilterSeparableInit_16s_L(integersX, integersY, wide(kernelSize), 256, 0, type,
                                                         channels, object)
                         : lumiFilterSeparableInit_32f_L(floatsX, floatsY, wide(kernelSize), type, channels,
                                                         object);
        else
            status = kernelType == lumType16s
                         ? lumiFilterSeparableInit_16s(integersX, integersY, kernelSize, 256, 0, type,
                                                       channels, object)
                         : lumiFilterSeparableInit_32f(floatsX, floatsY, kernelSize, type, channels, object);
    }

    static Lum32s specBytes(LumDataType kernelType, int channels) {
        Lum32s bytes = 0;
        lumiFilterSeparableGetSpecSize(kernelSize, kernelType, channels, &bytes);
        return bytes;
    }
    static Lum32s bufferBytes(LumSize size, LumDataType type, LumDataType kernelType, int channels) {
        Lum32s bytes = 0;
        lumiFilterSeparableGetBufferSize(size, kernelSize, type, kernelType, channels, &bytes);
        return bytes;
    }
};

template <class S, class D, int channels, bool isLong, class Member>
Row filtered(Member member, LumDataType type) {
    return [=](Digest& digest, const Case& c) {
        static constexpr S values[4] = {77, 5, 100, 30};
        Picture<S> src(c.size, channels, c.offset, 2);
        src.fill(c.seed);
        for (const LumDataType kernelType : {lumType16s, lumType32f})
            for (const LumBorderType border : borders) {
                Filter<isLong> filter(c.size, type, kernelType, channels);
                digest.add(filter.status);
                if (filter.status != lumStatusOk) continue;
                Picture<D> dst(c.size, channels, c.offset);
                const auto run = [&](auto size, auto value) {
                    return call(member, src, dst, size, border, value,
                                filter.spec.template as<LumFilterSeparableSpec>(),
                                filter.buffer.template as<Lum8u>());
                };
                const auto withValue = [&](auto size) {
                    if constexpr (channels == 1)
                        return run(size, values[0]);
                    else
                        return run(size, values);
                };
                if constexpr (isLong)
                    digest.add(withValue(wide(c.size)));
                else
                    digest.add(withValue(c.size));
                dst.addTo(digest);
            }
    };
}

const RowFile file("separable", [] {
    row("lumiFilterSeparableGetBufferSize",
        [](Digest& digest, const Case& c) { digest.add(bufferStatus(c, lumiFilterSeparableGetBufferSize)); });
    row("lumiFilterSeparableGetBufferSize_L",
        [](Digest& digest, const Case& c) { digest.add(bufferStatusLong(c)); });
    row("lumiFilterSeparableGetSpecSize", specSize);
    row("lumiFilterSeparableGetSpecSize_L", specSizeLong);
    row("lumiFilterSeparableInit_16s", [](Digest& digest, const Case& c) {
        digest.add(Filter<false>(c.size, lumType8u, lumType16s, 1).status);
    });
    row("lumiFilterSeparableInit_16s_L", [](Digest& digest, const Case& c) {
        digest.add(Filter<true>(c.size, lumType8u, lumType16s, 1).status);
    });
    row("lumiFilterSeparableInit_32f", [](Digest& digest, const Case& c) {
        digest.add(Filter<false>(c.size, lumType8u, lumType32f, 1).status);
    });
    row("lumiFilterSeparableInit_32f_L", [](Digest& digest, const Case& c) {
        digest.add(Filter<true>(c.size, lumType8u, lumType32f, 1).status);
    });
    row("lumiFilterSeparable_8u_C1R",
        filtered<Lum8u, Lum8u, 1, false>(lumiFilterSeparable_8u_C1R, lumType8u));
    row("lumiFilterSeparable_8u_C1R_L",
        filtered<Lum8u, Lum8u, 1, true>(lumiFilterSeparable_8u_C1R_L, lumType8u));
    row("lumiFilterSeparable_8u_C3R",
        filtered<Lum8u, Lum8u, 3, false>(lumiFilterSeparable_8u_C3R, lumType8u));
    row("lumiFilterSeparable_8u_C3R_L",
        filtered<Lum8u, Lum8u, 3, true>(lumiFilterSeparable_8u_C3R_L, lumType8u));
    row("lumiFilterSeparable_8u_C4R",
        filtered<Lum8u, Lum8u, 4, false>(lumiFilterSeparable_8u_C4R, lumType8u));
    row("lumiFilterSeparable_8u_C4R_L",
        filtered<Lum8u, Lum8u, 4, true>(lumiFilterSeparable_8u_C4R_L, lumType8u));
    row("lumiFilterSeparable_8u16s_C1R",
        filtered<Lum8u, Lum16s, 1, false>(lumiFilterSeparable_8u16s_C1R, lumType8u));
    row("lumiFilterSeparable_8u16s_C1R_L",
        filtered<Lum8u, Lum16s, 1, true>(lumiFilterSeparable_8u16s_C1R_L, lumType8u));
    row("lumiFilterSeparable_8u16s_C3R",
        filtered<Lum8u, Lum16s, 3, false>(lumiFilterSeparable_8u16s_C3R, lumType8u));
    row("lumiFilterSeparable_8u16s_C3R_L",
        filtered<Lum8u, Lum16s, 3, true>(lumiFilterSeparable_8u16s_C3R_L, lumType8u));
    row("lumiFilterSeparable_8u16s_C4R",
        filtered<Lum8u, Lum16s, 4, false>(lumiFilterSeparable_8u16s_C4R, lumType8u));
    row("lumiFilterSeparable_8u16s_C4R_L",
        filtered<Lum8u, Lum16s, 4, true>(lumiFilterSeparable_8u16s_C4R_L, lumType8u));
    row("lumiFilterSeparable_16s_C1R",
        filtered<Lum16s, Lum16s, 1, false>(lumiFilterSeparable_16s_C1R, lumType16s));
    row("lumiFilterSeparable_16s_C1R_L",
        filtered<Lum16s, Lum16s, 1, true>(lumiFilterSeparable_16s_C1R_L, lumType16s));
    row("lumiFilterSeparable_16s_C3R",
        filtered<Lum16s, Lum16s, 3, false>(lumiFilterSeparable_16s_C3R, lumType16s));
    row("lumiFilterSeparable_16s_C3R_L",
        filtered<Lum16s, Lum16s, 3, true>(lumiFilterSeparable_16s_C3R_L, lumType16s));
    row("lumiFilterSeparable_16s_C4R",
        filtered<Lum16s, Lum16s, 4, false>(lumiFilterSeparable_16s_C4R, lumType16s));
    row("lumiFilterSeparable_16s_C4R_L",
        filtered<Lum16s, Lum16s, 4, true>(lumiFilterSeparable_16s_C4R_L, lumType16s));
    row("lumiFilterSeparable_16u_C1R",
        filtered<Lum16u, Lum16u, 1, false>(lumiFilterSeparable_16u_C1R, lumType16u));
    row("lumiFilterSeparable_16u_C1R_L",
        filtered<Lum16u, Lum16u, 1, true>(lumiFilterSeparable_16u_C1R_L, lumType16u));
    row("lumiFilterSeparable_16u_C3R",
        filtered<Lum16u, Lum16u, 3, false>(lumiFilterSeparable_16u_C3R, lumType16u));
    row("lumiFilterSeparable_16u_C3R_L",
        filtered<Lum16u, Lum16u, 3, true>(lumiFilterSeparable_16u_C3R_L, lumType16u));
    row("lumiFilterSeparable_16u_C4R",
        filtered<Lum16u, Lum16u, 4, false>(lumiFilterSeparable_16u_C4R, lumType16u));
    row("lumiFilterSeparable_16u_C4R_L",
        filtered<Lum16u, Lum16u, 4, true>(lumiFilterSeparable_16u_C4R_L, lumType16u));
    row("lumiFilterSeparable_32f_C1R",
        filtered<Lum32f, Lum32f, 1, false>(lumiFilterSeparable_32f_C1R, lumType32f));
    row("lumiFilterSeparable_32f_C1R_L",
        filtered<Lum32f, Lum32f, 1, true>(lumiFilterSeparable_32f_C1R_L, lumType32f));
    row("lumiFilterSeparable_32f_C3R",
        filtered<Lum32f, Lum32f, 3, false>(lumiFilterSeparable_32f_C3R, lumType32f));
    row("lumiFilterSeparable_32f_C3R_L",
        filtered<Lum32f, Lum32f, 3, true>(lumiFilterSeparable_32f_C3R_L, lumType32f));
    row("lumiFilterSeparable_32f_C4R",
        filtered<Lum32f, Lum32f, 4, false>(lumiFilterSeparable_32f_C4R, lumType32f));
    row("lumiFilterSeparable_32f_C4R_L",
        filtered<Lum32f, Lum32f, 4, true>(lumiFilterSeparable_32f_C4R_L, lumType32f));
});

} // namespace
} // namespace digest

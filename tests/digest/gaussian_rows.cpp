#include "digest/digest.h"

namespace digest {
namespace {

using Row = std::function<void(Digest&, const Case&)>;

constexpr LumBorderType borders[] = {lumBorderReplicate, lumBorderMirror, lumBorderConstant,
                                     lumBorderInMemory,
                                     lumBorderMirror | lumBorderInMemoryTop | lumBorderInMemoryLeft};
constexpr int kernelSizes[] = {3, 5, 7, 15};
constexpr int largestReach = 7;
constexpr LumDataType types[] = {lumType8u, lumType16u, lumType16s, lumType32f};

LumSizeL wide(LumSize size) { return {size.width, size.height}; }

template <class Query> Row specSize(Query query) {
    return [=](Digest& digest, const Case& c) {
        for (const LumDataType type : types) {
            Lum32s spec = 0;
            Lum32s init = 0;
            digest.add(query(static_cast<int>(2 * c.seed + 1), type, 3, &spec, &init));
            digest.add(spec);
            digest.add(init);
        }
    };
}

void bufferSizeLong(Digest& digest, const Case& c) {
    for (const LumDataType type : types) {
        Lum32s bytes = 0;
        digest.add(lumiFilterGaussianGetBufferSize_L(wide(c.size), 5, type, lumBorderReplicate, 3, &bytes));
        digest.add(bytes);
    }
}

void bufferSize(Digest& digest, const Case& c) {
    for (const LumDataType type : types) {
        Lum32s spec = 0;
        Lum32s bytes = 0;
        digest.add(lumiFilterGaussianGetBufferSize(c.size, 5, type, 3, &spec, &bytes));
        digest.add(spec);
        digest.add(bytes);
    }
}

/// A filter of the _L functions with its memory.
struct LongFilter {
    Memory spec;
    Memory buffer;
    LumStatus status;

    LongFilter(LumSize size, int kernelSize, LumDataType type, int channels, LumBorderType border)
        : spec(specBytes(kernelSize, type, channels)),
          buffer(bufferBytes(size, kernelSize, type, channels, border)),
          status(lumiFilterGaussianInit_L(wide(size), kernelSize, 0.35F * static_cast<float>(kernelSize),
                                          border, type, channels, spec.as<LumFilterGaussianSpecL>(),
                                          buffer)) {}

    static Lum32s specBytes(int kernelSize, LumDataType type, int channels) {
        Lum32s bytes = 0;
        Lum32s init = 0;
        lumiFilterGaussianGetSpecSize_L(kernelSize, type, channels, &bytes, &init);
        return bytes;
    }
    static Lum32s bufferBytes(LumSize size, int kernelSize, LumDataType type, int channels,
                              LumBorderType border) {
        Lum32s bytes = 0;
        Lum32s spec = 0;
        Lum32s init = 0;
        lumiFilterGaussianGetBufferSize_L(wide(size), kernelSize, type, border, channels, &bytes);
        lumiFilterGaussianGetSpecSize_L(kernelSize, type, channels, &spec, &init);
        return bytes > init ? bytes : init;
    }
};

/// A filter of the functions without _L, whose object has the size that the query of the buffer gives.
struct PlainFilter {
    Memory spec;
    Memory buffer;
    LumStatus status;

    PlainFilter(LumSize size, int kernelSize, LumDataType type, int channels, LumBorderType border)
        : spec(bytesOf(size, kernelSize, type, channels).width),
          buffer(bytesOf(size, kernelSize, type, channels).height),
          status(lumiFilterGaussianInit(size, kernelSize, 0.35F * static_cast<float>(kernelSize), border,
                                        type, channels, spec.as<LumFilterGaussianSpec>(), buffer)) {}

    /// Of the object and of the buffer.
    static LumSize bytesOf(LumSize size, int kernelSize, LumDataType type, int channels) {
        LumSize bytes{};
        Lum32s spec = 0;
        Lum32s init = 0;
        lumiFilterGaussianGetBufferSize(size, kernelSize, type, channels, &bytes.width, &bytes.height);
        lumiFilterGaussianGetSpecSize(kernelSize, type, channels, &spec, &init);
        if (init > bytes.height) bytes.height = init;
        return bytes;
    }
};

void initLong(Digest& digest, const Case& c) {
    for (const int kernelSize : kernelSizes)
        digest.add(LongFilter(c.size, kernelSize, lumType16u, 1, lumBorderMirror).status);
}
void init(Digest& digest, const Case& c) {
    for (const int kernelSize : kernelSizes)
        digest.add(PlainFilter(c.size, kernelSize, lumType16u, 1, lumBorderMirror).status);
}

/// Every kernel size and border: `run(source, result, kernelSize, border)`.
template <class T> void forFilters(Digest& digest, const Case& c, int channels, auto run) {
    Picture<T> src(c.size, channels, c.offset, largestReach);
    src.fill(c.seed);
    for (const int kernelSize : kernelSizes)
        for (const LumBorderType border : borders) {
            Picture<T> dst(c.size, channels, c.offset);
            digest.add(run(src, dst, kernelSize, border));
            dst.addTo(digest);
        }
}

template <class T> constexpr T constants[3] = {77, 5, 100};

template <class T, class Member> Row filteredLong(Member member, LumDataType type, int channels) {
    return [=](Digest& digest, const Case& c) {
        forFilters<T>(
            digest, c, channels,
            [&](const Picture<T>& src, const Picture<T>& dst, int kernelSize, LumBorderType border) {
                LongFilter filter(c.size, kernelSize, type, channels, border);
                return call(member, src, dst, wide(c.size), border, constants<T>,
                            filter.spec.as<LumFilterGaussianSpecL>(), filter.buffer.as<Lum8u>());
            });
    };
}

template <class T, class Member> Row filtered(Member member, LumDataType type, int channels) {
    return [=](Digest& digest, const Case& c) {
        forFilters<T>(
            digest, c, channels,
            [&](const Picture<T>& src, const Picture<T>& dst, int kernelSize, LumBorderType border) {
                PlainFilter filter(c.size, kernelSize, type, channels, border);
                return call(member, src, dst, c.size, border, constants<T>,
                            filter.spec.as<LumFilterGaussianSpec>(), filter.buffer.as<Lum8u>());
            });
    };
}

template <class T, int channels, class Member> Row filteredBorder(Member member, LumDataType type) {
    return [=](Digest& digest, const Case& c) {
        forFilters<T>(
            digest, c, channels,
            [&](const Picture<T>& src, const Picture<T>& dst, int kernelSize, LumBorderType border) {
                PlainFilter filter(c.size, kernelSize, type, channels, border);
                if constexpr (channels == 1)
                    return call(member, src, dst, c.size, constants<T>[0],
                                filter.spec.as<LumFilterGaussianSpec>(), filter.buffer.as<Lum8u>());
                else
                    return call(member, src, dst, c.size, constants<T>,
                                filter.spec.as<LumFilterGaussianSpec>(), filter.buffer.as<Lum8u>());
            });
    };
}

const RowFile file("gaussian", [] {
    row("lumiFilterGaussianGetSpecSize_L", specSize(lumiFilterGaussianGetSpecSize_L));
    row("lumiFilterGaussianGetSpecSize", specSize(lumiFilterGaussianGetSpecSize));
    row("lumiFilterGaussianGetBufferSize_L", bufferSizeLong);
    row("lumiFilterGaussianGetBufferSize", bufferSize);
    row("lumiFilterGaussianInit_L", initLong);
    row("lumiFilterGaussianInit", init);
    row("lumiFilterGaussian_8u_C1R_L", filteredLong<Lum8u>(lumiFilterGaussian_8u_C1R_L, lumType8u, 1));
    row("lumiFilterGaussian_8u_C1R", filtered<Lum8u>(lumiFilterGaussian_8u_C1R, lumType8u, 1));
    row("lumiFilterGaussianBorder_8u_C1R",
        filteredBorder<Lum8u, 1>(lumiFilterGaussianBorder_8u_C1R, lumType8u));
    row("lumiFilterGaussian_8u_C3R_L", filteredLong<Lum8u>(lumiFilterGaussian_8u_C3R_L, lumType8u, 3));
    row("lumiFilterGaussian_8u_C3R", filtered<Lum8u>(lumiFilterGaussian_8u_C3R, lumType8u, 3));
    row("lumiFilterGaussianBorder_8u_C3R",
        filteredBorder<Lum8u, 3>(lumiFilterGaussianBorder_8u_C3R, lumType8u));
    row("lumiFilterGaussian_16u_C1R_L", filteredLong<Lum16u>(lumiFilterGaussian_16u_C1R_L, lumType16u, 1));
    row("lumiFilterGaussian_16u_C1R", filtered<Lum16u>(lumiFilterGaussian_16u_C1R, lumType16u, 1));
    row("lumiFilterGaussianBorder_16u_C1R",
        filteredBorder<Lum16u, 1>(lumiFilterGaussianBorder_16u_C1R, lumType16u));
    row("lumiFilterGaussian_16u_C3R_L", filteredLong<Lum16u>(lumiFilterGaussian_16u_C3R_L, lumType16u, 3));
    row("lumiFilterGaussian_16u_C3R", filtered<Lum16u>(lumiFilterGaussian_16u_C3R, lumType16u, 3));
    row("lumiFilterGaussianBorder_16u_C3R",
        filteredBorder<Lum16u, 3>(lumiFilterGaussianBorder_16u_C3R, lumType16u));
    row("lumiFilterGaussian_16s_C1R_L", filteredLong<Lum16s>(lumiFilterGaussian_16s_C1R_L, lumType16s, 1));
    row("lumiFilterGaussian_16s_C1R", filtered<Lum16s>(lumiFilterGaussian_16s_C1R, lumType16s, 1));
    row("lumiFilterGaussianBorder_16s_C1R",
        filteredBorder<Lum16s, 1>(lumiFilterGaussianBorder_16s_C1R, lumType16s));
    row("lumiFilterGaussian_16s_C3R_L", filteredLong<Lum16s>(lumiFilterGaussian_16s_C3R_L, lumType16s, 3));
    row("lumiFilterGaussian_16s_C3R", filtered<Lum16s>(lumiFilterGaussian_16s_C3R, lumType16s, 3));
    row("lumiFilterGaussianBorder_16s_C3R",
        filteredBorder<Lum16s, 3>(lumiFilterGaussianBorder_16s_C3R, lumType16s));
    row("lumiFilterGaussian_32f_C1R_L", filteredLong<Lum32f>(lumiFilterGaussian_32f_C1R_L, lumType32f, 1));
    row("lumiFilterGaussian_32f_C1R", filtered<Lum32f>(lumiFilterGaussian_32f_C1R, lumType32f, 1));
    row("lumiFilterGaussianBorder_32f_C1R",
        filteredBorder<Lum32f, 1>(lumiFilterGaussianBorder_32f_C1R, lumType32f));
    row("lumiFilterGaussian_32f_C3R_L", filteredLong<Lum32f>(lumiFilterGaussian_32f_C3R_L, lumType32f, 3));
    row("lumiFilterGaussian_32f_C3R", filtered<Lum32f>(lumiFilterGaussian_32f_C3R, lumType32f, 3));
    row("lumiFilterGaussianBorder_32f_C3R",
        filteredBorder<Lum32f, 3>(lumiFilterGaussianBorder_32f_C3R, lumType32f));
});

} // namespace
} // namespace digest

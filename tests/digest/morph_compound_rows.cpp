#include "digest/digest.h"

namespace digest {
namespace {

/// A mask that no reflection leaves as it is.
constexpr LumSize maskSize{5, 3};
constexpr Lum8u mask[] = {1, 1, 0, 0, 0, 0, 1, 1, 1, 0, 0, 0, 0, 0, 1};

constexpr int margin = 8;

template <class T>
constexpr LumDataType typeOf = std::is_same_v<T, Lum8u>    ? lumType8u
                               : std::is_same_v<T, Lum16u> ? lumType16u
                               : std::is_same_v<T, Lum16s> ? lumType16s
                                                           : lumType32f;

struct Element {
    Memory object, work;

    Element(Lum32s specSize, Lum32s bufferSize) : object(specSize), work(bufferSize) {}
    LumMorphPairState* spec() { return reinterpret_cast<LumMorphPairState*>(object.data()); }
    Lum8u* buffer() { return work.data(); }
};

template <class Init>
Element plainElement(decltype(&lumiMorphAdvGetSize_8u_C1R) getSize, Init init, LumSize size) {
    Lum32s specSize = 0, bufferSize = 0;
    getSize(size, maskSize, &specSize, &bufferSize);
    Element element(specSize, bufferSize);
    init(size, mask, maskSize, element.spec(), element.buffer());
    return element;
}

Element longElement(LumSizeL size, LumDataType type, int channels) {
    const LumSizeL side{maskSize.width, maskSize.height};
    Lum32s specSize = 0, bufferSize = 0;
    lumiMorphGetSpecSize_L(size, side, type, channels, &specSize);
    lumiMorphGetBufferSize_L(size, side, type, channels, &bufferSize);
    Element element(specSize, bufferSize);
    lumiMorphInit_L(size, mask, side, type, channels, element.spec());
    return element;
}

constexpr LumBorderType borders[] = {lumBorderReplicate, lumBorderMirror | lumBorderInMemoryLeft,
                                     lumBorderConstant | lumBorderInMemoryBottom, lumBorderInMemory};

/// Members that take the value by pointer, and those with one channel, which take it as it is.
template <class T, class GetSize, class Init, class Member>
Run plain(GetSize getSize, Init init, Member member, int channels) {
    return [=](Digest& digest, const Case& c) {
        Picture<T> src(c.size, channels, c.offset, margin), dst(c.size, channels);
        src.fill(c.seed);
        Element element = plainElement(getSize, init, c.size);
        const T value[] = {100, 30, 7, 90};
        for (LumBorderType border : borders) {
            const auto run = [&](auto borderValue) {
                return member(src.data(), src.step(), dst.data(), dst.step(), c.size, border, borderValue,
                              element.spec(), element.buffer());
            };
            if constexpr (std::is_invocable_v<Member, const T*, int, T*, int, LumSize, LumBorderType,
                                              const T*, const LumMorphPairState*, Lum8u*>)
                digest.add(run(value));
            else
                digest.add(run(value[0]));
            dst.addTo(digest);
        }
    };
}

template <class T, class Member> Run longForm(Member member, int channels) {
    return [=](Digest& digest, const Case& c) {
        Picture<T> src(c.size, channels, c.offset, margin), dst(c.size, channels);
        src.fill(c.seed);
        const LumSizeL size{c.size.width, c.size.height};
        Element element = longElement(size, typeOf<T>, channels);
        const T value[] = {100, 30, 7, 90};
        for (int mode : {0, 5})
            for (LumBorderType border : borders) {
                lumiMorphSetMode(mode, element.spec());
                digest.add(member(src.data(), src.step(), dst.data(), dst.step(), size, border, value,
                                  element.spec(), element.buffer()));
                dst.addTo(digest);
            }
    };
}

/// Bytes of the bits of a region, from any bit of the first byte on.
LumSize bytesOf(LumSize size) { return {(size.width + 7 + 7) / 8, size.height}; }

template <class Call> void digestBits(Digest& digest, const Case& c, Call call) {
    const int srcBit = static_cast<int>(c.seed % 8), dstBit = static_cast<int>(c.seed * 3 % 8);
    Picture<Lum8u> src(bytesOf(c.size), 1, c.offset, margin), dst(bytesOf(c.size));
    src.fill(c.seed);
    dst.clear();
    for (LumBorderType border : borders) {
        if ((border & 15) == lumBorderMirror) border += lumBorderDefaultValue - lumBorderMirror;
        digest.add(call(src, srcBit, dst, dstBit, border));
        dst.addTo(digest);
    }
}

template <class Member> Run plainBits(Member member) {
    return [=](Digest& digest, const Case& c) {
        Element element = plainElement(lumiMorphAdvGetSize_1u_C1R, lumiMorphAdvInit_1u_C1R, c.size);
        digestBits(digest, c, [&](auto& src, int srcBit, auto& dst, int dstBit, LumBorderType border) {
            return member(src.data(), src.step(), srcBit, dst.data(), dst.step(), dstBit, c.size, border, 1,
                          element.spec(), element.buffer());
        });
    };
}

template <class Member> Run longBits(Member member) {
    return [=](Digest& digest, const Case& c) {
        const LumSizeL size{c.size.width, c.size.height};
        Element element = longElement(size, lumType1u, 1);
        const Lum8u value = 1;
        digestBits(digest, c, [&](auto& src, int srcBit, auto& dst, int dstBit, LumBorderType border) {
            return member(src.data(), src.step(), srcBit, dst.data(), dst.step(), dstBit, size, border,
                          &value, element.spec(), element.buffer());
        });
    };
}

template <class Member> Run bytes(Member member) {
    return plain<Lum8u>(lumiMorphAdvGetSize_8u_C1R, lumiMorphAdvInit_8u_C1R, member, 1);
}
template <class Member> Run bytes3(Member member) {
    return plain<Lum8u>(lumiMorphAdvGetSize_8u_C3R, lumiMorphAdvInit_8u_C3R, member, 3);
}
template <class Member> Run bytes4(Member member) {
    return plain<Lum8u>(lumiMorphAdvGetSize_8u_C4R, lumiMorphAdvInit_8u_C4R, member, 4);
}
template <class Member> Run words(Member member) {
    return plain<Lum16u>(lumiMorphAdvGetSize_16u_C1R, lumiMorphAdvInit_16u_C1R, member, 1);
}
template <class Member> Run signedWords(Member member) {
    return plain<Lum16s>(lumiMorphAdvGetSize_16s_C1R, lumiMorphAdvInit_16s_C1R, member, 1);
}
template <class Member> Run floats(Member member) {
    return plain<Lum32f>(lumiMorphAdvGetSize_32f_C1R, lumiMorphAdvInit_32f_C1R, member, 1);
}
template <class Member> Run floats3(Member member) {
    return plain<Lum32f>(lumiMorphAdvGetSize_32f_C3R, lumiMorphAdvInit_32f_C3R, member, 3);
}
template <class Member> Run floats4(Member member) {
    return plain<Lum32f>(lumiMorphAdvGetSize_32f_C4R, lumiMorphAdvInit_32f_C4R, member, 4);
}

const RowFile file("morph_compound", [] {
    row("lumiMorphOpenBorder_8u_C1R", bytes(lumiMorphOpenBorder_8u_C1R));
    row("lumiMorphOpenBorder_8u_C3R", bytes3(lumiMorphOpenBorder_8u_C3R));
    row("lumiMorphOpenBorder_8u_C4R", bytes4(lumiMorphOpenBorder_8u_C4R));
    row("lumiMorphOpenBorder_16u_C1R", words(lumiMorphOpenBorder_16u_C1R));
    row("lumiMorphOpenBorder_16s_C1R", signedWords(lumiMorphOpenBorder_16s_C1R));
    row("lumiMorphOpenBorder_32f_C1R", floats(lumiMorphOpenBorder_32f_C1R));
    row("lumiMorphOpenBorder_32f_C3R", floats3(lumiMorphOpenBorder_32f_C3R));
    row("lumiMorphOpenBorder_32f_C4R", floats4(lumiMorphOpenBorder_32f_C4R));
    row("lumiMorphOpenBorder_1u_C1R", plainBits(lumiMorphOpenBorder_1u_C1R));
    row("lumiMorphOpen_8u_C1R_L", longForm<Lum8u>(lumiMorphOpen_8u_C1R_L, 1));
    row("lumiMorphOpen_8u_C3R_L", longForm<Lum8u>(lumiMorphOpen_8u_C3R_L, 3));
    row("lumiMorphOpen_8u_C4R_L", longForm<Lum8u>(lumiMorphOpen_8u_C4R_L, 4));
    row("lumiMorphOpen_16u_C1R_L", longForm<Lum16u>(lumiMorphOpen_16u_C1R_L, 1));
    row("lumiMorphOpen_16s_C1R_L", longForm<Lum16s>(lumiMorphOpen_16s_C1R_L, 1));
    row("lumiMorphOpen_32f_C1R_L", longForm<Lum32f>(lumiMorphOpen_32f_C1R_L, 1));
    row("lumiMorphOpen_32f_C3R_L", longForm<Lum32f>(lumiMorphOpen_32f_C3R_L, 3));
    row("lumiMorphOpen_32f_C4R_L", longForm<Lum32f>(lumiMorphOpen_32f_C4R_L, 4));
    row("lumiMorphOpen_1u_C1R_L", longBits(lumiMorphOpen_1u_C1R_L));
    row("lumiMorphCloseBorder_8u_C1R", bytes(lumiMorphCloseBorder_8u_C1R));
    row("lumiMorphCloseBorder_8u_C3R", bytes3(lumiMorphCloseBorder_8u_C3R));
    row("lumiMorphCloseBorder_8u_C4R", bytes4(lumiMorphCloseBorder_8u_C4R));
    row("lumiMorphCloseBorder_16u_C1R", words(lumiMorphCloseBorder_16u_C1R));
    row("lumiMorphCloseBorder_16s_C1R", signedWords(lumiMorphCloseBorder_16s_C1R));
    row("lumiMorphCloseBorder_32f_C1R", floats(lumiMorphCloseBorder_32f_C1R));
    row("lumiMorphCloseBorder_32f_C3R", floats3(lumiMorphCloseBorder_32f_C3R));
    row("lumiMorphCloseBorder_32f_C4R", floats4(lumiMorphCloseBorder_32f_C4R));
    row("lumiMorphCloseBorder_1u_C1R", plainBits(lumiMorphCloseBorder_1u_C1R));
    row("lumiMorphClose_8u_C1R_L", longForm<Lum8u>(lumiMorphClose_8u_C1R_L, 1));
    row("lumiMorphClose_8u_C3R_L", longForm<Lum8u>(lumiMorphClose_8u_C3R_L, 3));
    row("lumiMorphClose_8u_C4R_L", longForm<Lum8u>(lumiMorphClose_8u_C4R_L, 4));
    row("lumiMorphClose_16u_C1R_L", longForm<Lum16u>(lumiMorphClose_16u_C1R_L, 1));
    row("lumiMorphClose_16s_C1R_L", longForm<Lum16s>(lumiMorphClose_16s_C1R_L, 1));
    row("lumiMorphClose_32f_C1R_L", longForm<Lum32f>(lumiMorphClose_32f_C1R_L, 1));
    row("lumiMorphClose_32f_C3R_L", longForm<Lum32f>(lumiMorphClose_32f_C3R_L, 3));
    row("lumiMorphClose_32f_C4R_L", longForm<Lum32f>(lumiMorphClose_32f_C4R_L, 4));
    row("lumiMorphClose_1u_C1R_L", longBits(lumiMorphClose_1u_C1R_L));
    row("lumiMorphTophatBorder_8u_C1R", bytes(lumiMorphTophatBorder_8u_C1R));
    row("lumiMorphTophatBorder_8u_C3R", bytes3(lumiMorphTophatBorder_8u_C3R));
    row("lumiMorphTophatBorder_8u_C4R", bytes4(lumiMorphTophatBorder_8u_C4R));
    row("lumiMorphTophatBorder_16u_C1R", words(lumiMorphTophatBorder_16u_C1R));
    row("lumiMorphTophatBorder_16s_C1R", signedWords(lumiMorphTophatBorder_16s_C1R));
    row("lumiMorphTophatBorder_32f_C1R", floats(lumiMorphTophatBorder_32f_C1R));
    row("lumiMorphTophatBorder_32f_C3R", floats3(lumiMorphTophatBorder_32f_C3R));
    row("lumiMorphTophatBorder_32f_C4R", floats4(lumiMorphTophatBorder_32f_C4R));
    row("lumiMorphTophatBorder_1u_C1R", plainBits(lumiMorphTophatBorder_1u_C1R));
    row("lumiMorphTophat_8u_C1R_L", longForm<Lum8u>(lumiMorphTophat_8u_C1R_L, 1));
    row("lumiMorphTophat_8u_C3R_L", longForm<Lum8u>(lumiMorphTophat_8u_C3R_L, 3));
    row("lumiMorphTophat_8u_C4R_L", longForm<Lum8u>(lumiMorphTophat_8u_C4R_L, 4));
    row("lumiMorphTophat_16u_C1R_L", longForm<Lum16u>(lumiMorphTophat_16u_C1R_L, 1));
    row("lumiMorphTophat_16s_C1R_L", longForm<Lum16s>(lumiMorphTophat_16s_C1R_L, 1));
    row("lumiMorphTophat_32f_C1R_L", longForm<Lum32f>(lumiMorphTophat_32f_C1R_L, 1));
    row("lumiMorphTophat_32f_C3R_L", longForm<Lum32f>(lumiMorphTophat_32f_C3R_L, 3));
    row("lumiMorphTophat_32f_C4R_L", longForm<Lum32f>(lumiMorphTophat_32f_C4R_L, 4));
    row("lumiMorphTophat_1u_C1R_L", longBits(lumiMorphTophat_1u_C1R_L));
    row("lumiMorphBlackhatBorder_8u_C1R", bytes(lumiMorphBlackhatBorder_8u_C1R));
    row("lumiMorphBlackhatBorder_8u_C3R", bytes3(lumiMorphBlackhatBorder_8u_C3R));
    row("lumiMorphBlackhatBorder_8u_C4R", bytes4(lumiMorphBlackhatBorder_8u_C4R));
    row("lumiMorphBlackhatBorder_16u_C1R", words(lumiMorphBlackhatBorder_16u_C1R));
    row("lumiMorphBlackhatBorder_16s_C1R", signedWords(lumiMorphBlackhatBorder_16s_C1R));
    row("lumiMorphBlackhatBorder_32f_C1R", floats(lumiMorphBlackhatBorder_32f_C1R));
    row("lumiMorphBlackhatBorder_32f_C3R", floats3(lumiMorphBlackhatBorder_32f_C3R));
    row("lumiMorphBlackhatBorder_32f_C4R", floats4(lumiMorphBlackhatBorder_32f_C4R));
    row("lumiMorphBlackhatBorder_1u_C1R", plainBits(lumiMorphBlackhatBorder_1u_C1R));
    row("lumiMorphBlackhat_8u_C1R_L", longForm<Lum8u>(lumiMorphBlackhat_8u_C1R_L, 1));
    row("lumiMorphBlackhat_8u_C3R_L", longForm<Lum8u>(lumiMorphBlackhat_8u_C3R_L, 3));
    row("lumiMorphBlackhat_8u_C4R_L", longForm<Lum8u>(lumiMorphBlackhat_8u_C4R_L, 4));
    row("lumiMorphBlackhat_16u_C1R_L", longForm<Lum16u>(lumiMorphBlackhat_16u_C1R_L, 1));
    row("lumiMorphBlackhat_16s_C1R_L", longForm<Lum16s>(lumiMorphBlackhat_16s_C1R_L, 1));
    row("lumiMorphBlackhat_32f_C1R_L", longForm<Lum32f>(lumiMorphBlackhat_32f_C1R_L, 1));
    row("lumiMorphBlackhat_32f_C3R_L", longForm<Lum32f>(lumiMorphBlackhat_32f_C3R_L, 3));
    row("lumiMorphBlackhat_32f_C4R_L", longForm<Lum32f>(lumiMorphBlackhat_32f_C4R_L, 4));
    row("lumiMorphBlackhat_1u_C1R_L", longBits(lumiMorphBlackhat_1u_C1R_L));
    row("lumiMorphGradientBorder_8u_C1R", bytes(lumiMorphGradientBorder_8u_C1R));
    row("lumiMorphGradientBorder_8u_C3R", bytes3(lumiMorphGradientBorder_8u_C3R));
    row("lumiMorphGradientBorder_8u_C4R", bytes4(lumiMorphGradientBorder_8u_C4R));
    row("lumiMorphGradientBorder_16u_C1R", words(lumiMorphGradientBorder_16u_C1R));
    row("lumiMorphGradientBorder_16s_C1R", signedWords(lumiMorphGradientBorder_16s_C1R));
    row("lumiMorphGradientBorder_32f_C1R", floats(lumiMorphGradientBorder_32f_C1R));
    row("lumiMorphGradientBorder_32f_C3R", floats3(lumiMorphGradientBorder_32f_C3R));
    row("lumiMorphGradientBorder_32f_C4R", floats4(lumiMorphGradientBorder_32f_C4R));
    row("lumiMorphGradientBorder_1u_C1R", plainBits(lumiMorphGradientBorder_1u_C1R));
    row("lumiMorphGradient_8u_C1R_L", longForm<Lum8u>(lumiMorphGradient_8u_C1R_L, 1));
    row("lumiMorphGradient_8u_C3R_L", longForm<Lum8u>(lumiMorphGradient_8u_C3R_L, 3));
    row("lumiMorphGradient_8u_C4R_L", longForm<Lum8u>(lumiMorphGradient_8u_C4R_L, 4));
    row("lumiMorphGradient_16u_C1R_L", longForm<Lum16u>(lumiMorphGradient_16u_C1R_L, 1));
    row("lumiMorphGradient_16s_C1R_L", longForm<Lum16s>(lumiMorphGradient_16s_C1R_L, 1));
    row("lumiMorphGradient_32f_C1R_L", longForm<Lum32f>(lumiMorphGradient_32f_C1R_L, 1));
    row("lumiMorphGradient_32f_C3R_L", longForm<Lum32f>(lumiMorphGradient_32f_C3R_L, 3));
    row("lumiMorphGradient_32f_C4R_L", longForm<Lum32f>(lumiMorphGradient_32f_C4R_L, 4));
    row("lumiMorphGradient_1u_C1R_L", longBits(lumiMorphGradient_1u_C1R_L));
});

} // namespace
} // namespace digest

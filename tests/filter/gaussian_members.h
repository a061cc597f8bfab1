// The Gaussian members by element type and channel count, with objects and work memory of exactly the queried size.
#pragma once

#include "support/guarded_image.h"
#include "support/status_checks.h"

namespace gaussian {

using namespace support;

template <class T> constexpr LumDataType typeOf = lumType8u;
template <> constexpr LumDataType typeOf<Lum16u> = lumType16u;
template <> constexpr LumDataType typeOf<Lum16s> = lumType16s;
template <> constexpr LumDataType typeOf<Lum32f> = lumType32f;

/// The arguments of every form of a run; each takes those that it has.
template <class T> struct Call {
    const T* src;
    std::intptr_t srcStep;
    T* dst;
    std::intptr_t dstStep;
    LumSizeL size;
    int border;
    const T* value;
    const void* spec;
    Lum8u* buffer;
};

template <class T, int C> struct Exports;
#define EXPORTS(T, C)                                                                                        \
    template <> struct Exports<Lum##T, C> {                                                                  \
        static constexpr auto core = lumiFilterGaussian_##T##_C##C##R_L;                                     \
        static constexpr auto plain = lumiFilterGaussian_##T##_C##C##R;                                      \
        static constexpr auto border = lumiFilterGaussianBorder_##T##_C##C##R;                               \
    };
EXPORTS(8u, 1)
EXPORTS(8u, 3)
EXPORTS(16u, 1)
EXPORTS(16u, 3)
EXPORTS(16s, 1)
EXPORTS(16s, 3)
EXPORTS(32f, 1)
EXPORTS(32f, 3)
#undef EXPORTS

/// The members of one element type and channel count: the core with its own object, the plain form, and the form whose
/// border is in the object.
template <class T, int C> struct Members {
    using Element = T;
    static constexpr int channels = C;

    static LumStatus core(const Call<T>& c) {
        return Exports<T, C>::core(c.src, c.srcStep, c.dst, c.dstStep, c.size, c.border, c.value,
                                   static_cast<const LumFilterGaussianSpecL*>(c.spec), c.buffer);
    }
    static LumStatus plain(const Call<T>& c) {
        return Exports<T, C>::plain(c.src, static_cast<int>(c.srcStep), c.dst, static_cast<int>(c.dstStep),
                                    plainSize(c), c.border, c.value, frontSpec(c), c.buffer);
    }
    static LumStatus border(const Call<T>& c) {
        const auto run = [&](auto value) {
            return Exports<T, C>::border(c.src, static_cast<int>(c.srcStep), c.dst,
                                         static_cast<int>(c.dstStep), plainSize(c), value, frontSpec(c),
                                         c.buffer);
        };
        if constexpr (C == 1)
            return run(*c.value);
        else
            return run(c.value);
    }

  private:
    static LumSize plainSize(const Call<T>& c) {
        return {static_cast<int>(c.size.width), static_cast<int>(c.size.height)};
    }
    static const LumFilterGaussianSpec* frontSpec(const Call<T>& c) {
        return static_cast<const LumFilterGaussianSpec*>(c.spec);
    }
};

/// An object and the work memory of a run, each of exactly the queried size; `shift` bytes between them and the guard
/// give them any alignment.
template <class M> struct CoreFilter {
    using T = typename M::Element;
    GuardedBlock specBlock;
    GuardedBlock bufferBlock;

    CoreFilter(LumSize size, int K, float sigma, int border = lumBorderReplicate, int shift = 0)
        : specBlock(specBytes(K), Guard::after, shift),
          bufferBlock(bufferBytes(size, K, border), Guard::after, shift) {
        Lum8u scratch[64];
        EXPECT_STATUS(lumStatusOk,
                      lumiFilterGaussianInit_L({size.width, size.height}, K, sigma, border,
                                               typeOf<typename M::Element>, M::channels, spec(), scratch));
    }
    LumFilterGaussianSpecL* spec() { return specBlock.as<LumFilterGaussianSpecL>(); }
    Lum8u* buffer() { return bufferBlock.as<Lum8u>(); }
    Call<T> call(const GuardedImage<T>& src, GuardedImage<T>& dst, int border = lumBorderReplicate,
                 const T* value = nullptr) {
        return {src.data(), src.step(), dst.data(), dst.step(), {src.size().width, src.size().height},
                border,     value,      spec(),     buffer()};
    }
    LumStatus run(const GuardedImage<T>& src, GuardedImage<T>& dst, int border = lumBorderReplicate,
                  const T* value = nullptr) {
        return M::core(call(src, dst, border, value));
    }
    /// The weights: at the first 64-byte boundary after the five fields.
    float* half() {
        const auto place = (reinterpret_cast<std::uintptr_t>(spec()) + 20 + 63) / 64 * 64;
        return reinterpret_cast<float*>(place);
    }

    static Lum32s specBytes(int K) {
        Lum32s bytes = 0;
        Lum32s init = 0;
        EXPECT_STATUS(lumStatusOk, lumiFilterGaussianGetSpecSize_L(K, typeOf<typename M::Element>,
                                                                   M::channels, &bytes, &init));
        return bytes;
    }
    static Lum32s bufferBytes(LumSize size, int K, int border) {
        Lum32s bytes = 0;
        EXPECT_STATUS(lumStatusOk, lumiFilterGaussianGetBufferSize_L({size.width, size.height}, K,
                                                                     typeOf<typename M::Element>, border,
                                                                     M::channels, &bytes));
        return bytes;
    }
};

template <class M> struct FrontFilter {
    using T = typename M::Element;
    Lum32s specBytes = 0;
    Lum32s bufferBytes = 0;
    GuardedBlock specBlock;
    GuardedBlock bufferBlock;

    FrontFilter(LumSize size, int K, float sigma, int border = lumBorderReplicate, int shift = 0)
        : specBlock(query(size, K), Guard::after, shift), bufferBlock(bufferBytes, Guard::after, shift) {
        Lum8u scratch[64];
        EXPECT_STATUS(lumStatusOk, lumiFilterGaussianInit(size, K, sigma, border, typeOf<typename M::Element>,
                                                          M::channels, spec(), scratch));
    }
    LumFilterGaussianSpec* spec() { return specBlock.as<LumFilterGaussianSpec>(); }
    Lum8u* buffer() { return bufferBlock.as<Lum8u>(); }
    Call<T> call(const GuardedImage<T>& src, GuardedImage<T>& dst, int border, const T* value) {
        return {src.data(), src.step(), dst.data(), dst.step(), {src.size().width, src.size().height},
                border,     value,      spec(),     buffer()};
    }

  private:
    Lum32s query(LumSize size, int K) {
        EXPECT_STATUS(lumStatusOk, lumiFilterGaussianGetBufferSize(size, K, typeOf<typename M::Element>,
                                                                   M::channels, &specBytes, &bufferBytes));
        return specBytes;
    }
};

using AllMembers =
    testing::Types<Members<Lum8u, 1>, Members<Lum8u, 3>, Members<Lum16u, 1>, Members<Lum16u, 3>,
                   Members<Lum16s, 1>, Members<Lum16s, 3>, Members<Lum32f, 1>, Members<Lum32f, 3>>;

} // namespace gaussian

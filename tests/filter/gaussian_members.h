// The Gaussian members by element type and channel count, with objects and work memory of exactly the queried size.
#pragma once

#include "support/guarded_image.h"
#include "support/status_checks.h"

namespace gaussian {

using namespace support;

/// The members of one element type and channel count.
template <class T, int C> struct Members {
    using Element = T;
    static constexpr int channels = C;
};

template <class T> constexpr LumDataType typeOf = lumType8u;
template <> constexpr LumDataType typeOf<Lum16u> = lumType16u;
template <> constexpr LumDataType typeOf<Lum16s> = lumType16s;
template <> constexpr LumDataType typeOf<Lum32f> = lumType32f;

#define MEMBERS(T, C)                                                                                        \
    inline LumStatus runL(Members<Lum##T, C>, const Lum##T* src, intptr_t srcStep, Lum##T* dst,              \
                          intptr_t dstStep, LumSizeL size, int border, const Lum##T* value,                  \
                          const LumFilterGaussianSpecL* spec, Lum8u* buffer) {                               \
        return lumiFilterGaussian_##T##_C##C##R_L(src, srcStep, dst, dstStep, size, border, value, spec,     \
                                                  buffer);                                                   \
    }                                                                                                        \
    inline LumStatus runPlain(Members<Lum##T, C>, const Lum##T* src, int srcStep, Lum##T* dst, int dstStep,  \
                              LumSize size, int border, const Lum##T* value,                                 \
                              const LumFilterGaussianSpec* spec, Lum8u* buffer) {                            \
        return lumiFilterGaussian_##T##_C##C##R(src, srcStep, dst, dstStep, size, border, value, spec,       \
                                                buffer);                                                     \
    }
MEMBERS(8u, 1)
MEMBERS(8u, 3)
MEMBERS(16u, 1)
MEMBERS(16u, 3)
MEMBERS(16s, 1)
MEMBERS(16s, 3)
MEMBERS(32f, 1)
MEMBERS(32f, 3)
#undef MEMBERS

#define BORDER_MEMBER(T)                                                                                     \
    inline LumStatus runBorder(Members<Lum##T, 1>, const Lum##T* src, int srcStep, Lum##T* dst, int dstStep, \
                               LumSize size, const Lum##T* value, const LumFilterGaussianSpec* spec,         \
                               Lum8u* buffer) {                                                              \
        return lumiFilterGaussianBorder_##T##_C1R(src, srcStep, dst, dstStep, size, *value, spec, buffer);   \
    }                                                                                                        \
    inline LumStatus runBorder(Members<Lum##T, 3>, const Lum##T* src, int srcStep, Lum##T* dst, int dstStep, \
                               LumSize size, const Lum##T* value, const LumFilterGaussianSpec* spec,         \
                               Lum8u* buffer) {                                                              \
        return lumiFilterGaussianBorder_##T##_C3R(src, srcStep, dst, dstStep, size, value, spec, buffer);    \
    }
BORDER_MEMBER(8u)
BORDER_MEMBER(16u)
BORDER_MEMBER(16s)
BORDER_MEMBER(32f)
#undef BORDER_MEMBER

/// An object and the work memory of a run, each of exactly the queried size; `shift` bytes between them and the guard
/// give them any alignment.
template <class M> struct CoreFilter {
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

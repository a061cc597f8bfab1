// Runs of the separable filter: any row kernel and any column kernel over a whole region.
#pragma once

#include <cstdint>
#include <type_traits>

#include "lumcv/border.h"
#include "lumcv/separable.h"
#include "lumcv/status.h"
#include "lumcv/types.h"

namespace lum {

/// One value by value; of several channels, a pointer to a value each.
template <class T, int channels> using BorderValue = std::conditional_t<channels == 1, T, const T*>;

/// Source and result: 8u 8u, 8u 16s, 16s 16s with kernels of 16s; 16u 16u, 32f 32f with kernels of 32f. One,
/// three or four channels.
template <class T, class D, int channels>
LumStatus separableL(const T* src, std::intptr_t srcStep, D* dst, std::intptr_t dstStep, LumSizeL roiSize,
                     LumBorderType border, BorderValue<T, channels> borderValue,
                     const LumFilterSeparableSpec* spec, Lum8u* buffer);

template <class T, class D, int channels>
LumStatus separable(const T* src, int srcStep, D* dst, int dstStep, LumSize roiSize, LumBorderType border,
                    BorderValue<T, channels> borderValue, const LumFilterSeparableSpec* spec, Lum8u* buffer);

} // namespace lum

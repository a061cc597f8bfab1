// Work memory of the row and column pipelines, in bytes: what their size queries report, and what the filters that
// carry a pair of pipelines in their own sizes add up. All in wrapping 32-bit arithmetic.
#pragma once

#include "frame/arena.h"
#include "lumcv/types.h"

namespace lum {

/// Bytes of a row stage: bytes per tap, and constant bytes.
struct RowPipelineSize {
    unsigned perTap;
    unsigned constantBytes;

    constexpr Lum32s bytes(Lum32s kernelSize) const {
        return static_cast<Lum32s>(perTap * static_cast<unsigned>(kernelSize) + constantBytes);
    }
};

inline constexpr RowPipelineSize rowPipeline16sC1{48, 112};
inline constexpr RowPipelineSize rowPipeline16sC3{40, 96};
inline constexpr RowPipelineSize rowPipeline16uC1{48, 80};
inline constexpr RowPipelineSize rowPipeline16uC3{112, 80};
inline constexpr RowPipelineSize rowPipeline32fC1{64, 96};
inline constexpr RowPipelineSize rowPipeline32fC3{192, 64};
inline constexpr RowPipelineSize rowPipeline8u16sC1{36, 144};
inline constexpr RowPipelineSize rowPipeline8u16sC3{60, 144};
inline constexpr RowPipelineSize rowPipelineLow16sC1{24, 96};
inline constexpr RowPipelineSize rowPipelineLow16sC3{208, 96};

/// Bytes of a column stage: bytes per column, with the width rounded up to a group of columns, and constant bytes.
struct ColumnPipelineSize {
    unsigned perColumn;
    unsigned group;
    unsigned constantBytes;

    constexpr Lum32s bytes(Lum32s width) const {
        return static_cast<Lum32s>(perColumn * roundedUp(static_cast<unsigned>(width), group) +
                                   constantBytes);
    }
};

/// Results of 8s, 8u and 16s alike.
inline constexpr ColumnPipelineSize columnPipeline16sC1{12, 4, 64};
inline constexpr ColumnPipelineSize columnPipeline16sC3{36, 4, 64};
inline constexpr ColumnPipelineSize columnPipeline16u{0, 1, 32};
inline constexpr ColumnPipelineSize columnPipeline32f{0, 1, 32};
inline constexpr ColumnPipelineSize columnPipelineLow16sC1{12, 8, 64};
inline constexpr ColumnPipelineSize columnPipelineLow16sC3{36, 8, 64};

} // namespace lum

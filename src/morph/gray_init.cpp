#include "morph/gray_init.h"

#include <cstring>

#include "frame/check.h"
#include "morph/objects.h"

namespace lum {

LumStatus morphGrayGetSize(LumSize roiSize, const void* mask, LumSize maskSize, Lum32s* specSize) {
    if (auto s = firstFailure(checkNotNull(mask, specSize), checkSize(roiSize, maskSize))) return s;
    const std::uint32_t cells = static_cast<std::uint32_t>(maskSize.width) * maskSize.height;
    *specSize = static_cast<Lum32s>(4 * cells + sizeof(LumMorphGrayState));
    return lumStatusOk;
}

LumStatus morphGrayInit(LumMorphGrayState* spec, LumSize roiSize, const void* mask, LumSize maskSize,
                        LumPoint anchor) {
    const bool anchored =
        anchor.x >= 0 && anchor.x < maskSize.width && anchor.y >= 0 && anchor.y < maskSize.height;
    if (auto s = firstFailure(checkNotNull(mask, spec), checkSize(roiSize, maskSize),
                              errorIf(!anchored, lumStatusAnchorError)))
        return s;
    spec->cells = spec + 1;
    spec->width = maskSize.width;
    spec->height = maskSize.height;
    spec->anchorX = anchor.x;
    spec->anchorY = anchor.y;
    spec->roiWidth = roiSize.width;
    spec->roiHeight = roiSize.height;
    std::memcpy(spec->cells, mask, 4 * static_cast<std::size_t>(maskSize.width) * maskSize.height);
    return lumStatusOk;
}

} // namespace lum

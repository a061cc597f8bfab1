// Panels of morphology: reconstruction from a seed, and a bit image cleaned of specks.
#include <algorithm>
#include <string>
#include <vector>

#include "gallery/panel.h"
#include "gallery/timing.h"
#include "gallery/work_memory.h"
#include "lumcv.h"
#include "tones.h"

namespace tools {
namespace {

/// The pixel of the region's middle half that is brightest: where the seed lies.
LumPoint brightestInTheMiddle(const Picture& grey) {
    LumPoint best{grey.width / 2, grey.height / 2};
    for (int y = grey.height / 4; y < grey.height * 3 / 4; ++y)
        for (int x = grey.width / 4; x < grey.width * 3 / 4; ++x)
            if (grey.at(x, y) > grey.at(best.x, best.y)) best = {x, y};
    return best;
}

/// A single bright pixel grows under the picture.
DrawnPanel fromASeed(const Subject& subject) {
    const Picture& grey = subject.grey;
    const LumPoint seed = brightestInTheMiddle(grey);
    Lum32s bytes = 0;
    expectOk(lumiMorphReconstructGetBufferSize(grey.size(), lumType8u, 1, &bytes),
             "lumiMorphReconstructGetBufferSize");
    WorkMemory buffer(bytes);
    DrawnPanel drawn{Picture(grey.width, grey.height)};
    Picture& marker = drawn.picture;
    const auto onlyTheSeed = [&] {
        std::fill(marker.elements.begin(), marker.elements.end(), Lum8u{0});
        marker.at(seed.x, seed.y) = grey.at(seed.x, seed.y);
    };
    drawn.time(
        "lumiMorphReconstructDilate_8u_C1IR", onlyTheSeed,
        TOOLS_SHOWN(lumiMorphReconstructDilate_8u_C1IR(grey.data(), grey.step(), marker.data(), marker.step(),
                                                       marker.size(), buffer.bytes(), lumSpatialNormInf)));
    drawn.numbers = {"the seed lies at " + std::to_string(seed.x) + ", " + std::to_string(seed.y)};
    return drawn;
}

constexpr int bitsPerByte = 8;

/// The pixels above a level as bits.
Picture bitsAbove(const Picture& grey, int level) {
    Picture bits((grey.width + bitsPerByte - 1) / bitsPerByte, grey.height);
    for (int y = 0; y < grey.height; ++y)
        for (int x = 0; x < grey.width; ++x)
            bits.at(x / bitsPerByte, y) =
                static_cast<Lum8u>(bits.at(x / bitsPerByte, y) | (grey.at(x, y) > level) << x % bitsPerByte);
    return bits;
}
bool isSet(const Picture& bits, int x, int y) {
    return (bits.at(x / bitsPerByte, y) >> x % bitsPerByte & 1) != 0;
}

/// An erosion and a dilation of a bit image: what they take away is shown in red.
DrawnPanel withoutSpecks(const Subject& subject) {
    const Picture& grey = subject.grey;
    const Picture bits = bitsAbove(grey, 127);
    Picture eroded(bits.width, bits.height);
    Picture cleaned(bits.width, bits.height);
    const LumSize maskSize{3, 3};
    const std::vector<Lum8u> mask(9, 1);
    Lum32s specBytes = 0;
    Lum32s bufferBytes = 0;
    expectOk(lumiMorphologyBorderGetSize_1u_C1R(grey.size(), maskSize, &specBytes, &bufferBytes),
             "lumiMorphologyBorderGetSize_1u_C1R");
    WorkMemory object(specBytes);
    WorkMemory buffer(bufferBytes);
    auto* const spec = object.as<LumMorphBitState>();
    expectOk(lumiMorphologyBorderInit_1u_C1R(grey.size(), mask.data(), maskSize, spec, buffer.bytes()),
             "lumiMorphologyBorderInit_1u_C1R");
    DrawnPanel drawn{Picture(grey.width, grey.height, 3)};
    drawn.time("lumiErodeBorder_1u_C1R", TOOLS_SHOWN(lumiErodeBorder_1u_C1R(
                                             bits.data(), bits.step(), 0, eroded.data(), eroded.step(), 0,
                                             grey.size(), lumBorderDefaultValue, 0, spec, buffer.bytes())));
    expectOk(lumiDilateBorder_1u_C1R(eroded.data(), eroded.step(), 0, cleaned.data(), cleaned.step(), 0,
                                     grey.size(), lumBorderDefaultValue, 0, spec, buffer.bytes()),
             "lumiDilateBorder_1u_C1R");
    int removed = 0;
    for (int y = 0; y < grey.height; ++y)
        for (int x = 0; x < grey.width; ++x) {
            const bool stays = isSet(cleaned, x, y);
            const bool goes = isSet(bits, x, y) && !stays;
            removed += goes ? 1 : 0;
            const Lum8u others = stays ? 255 : 0;
            drawn.picture.at(x, y, 0) = goes ? 255 : others;
            drawn.picture.at(x, y, 1) = others;
            drawn.picture.at(x, y, 2) = others;
        }
    drawn.numbers = {std::to_string(removed) + " pixels go"};
    return drawn;
}

} // namespace

std::vector<Panel> reconstructionPanels(const Subject& subject) {
    return {
        {"reconstruction", "Reconstruction from a seed", "lumiMorphReconstructDilate_8u_C1IR",
         "one bright pixel, eight neighbours; the picture in grey is the limit",
         [&subject] { return fromASeed(subject); }},
        {"specks-removed", "Specks go from a bit image", "lumiErodeBorder_1u_C1R",
         "pixels above 127; erosion, then dilation, by 3 x 3 cells; what goes is red",
         [&subject] { return withoutSpecks(subject); }},
    };
}

} // namespace tools

// Panels of the pyramids: the layers of a picture on one sheet.
#include <algorithm>

#include "gallery/panel.h"
#include "gallery/timing.h"
#include "gallery/work_memory.h"
#include "lumcv.h"

namespace tools {
namespace {

constexpr Lum16s kernel[] = {1, 4, 6, 4, 1};
constexpr int taps = 5;
constexpr int mode = 2;

void copyInto(Picture& sheet, const Picture& layer, int left, int top) {
    for (int y = 0; y < layer.height; ++y)
        std::copy_n(layer.row(y), layer.width * layer.channels, &sheet.at(left, top + y));
}

/// The next smaller layer; its milliseconds go into the drawn panel.
Picture layerDown(const Picture& layer, float rate, DrawnPanel& drawn) {
    Lum32s stateBytes = 0;
    Lum32s bufferBytes = 0;
    expectOk(lumiPyramidLayerDownGetSize_8u_C3R(layer.size(), rate, taps, &stateBytes, &bufferBytes),
             "lumiPyramidLayerDownGetSize_8u_C3R");
    WorkMemory memory(stateBytes);
    WorkMemory buffer(bufferBytes);
    LumPyramidLayerDownState* state = nullptr;
    expectOk(lumiPyramidLayerDownInit_8u_C3R(&state, layer.size(), rate, kernel, taps, mode, memory.bytes(),
                                             buffer.bytes()),
             "lumiPyramidLayerDownInit_8u_C3R");
    LumSize size{};
    expectOk(lumiGetPyramidDownROI(layer.size(), &size, rate), "lumiGetPyramidDownROI");
    Picture smaller(size.width, size.height, layer.channels);
    drawn.time("lumiPyramidLayerDown_8u_C3R", TOOLS_SHOWN(lumiPyramidLayerDown_8u_C3R(
                                                  layer.data(), layer.step(), layer.size(), smaller.data(),
                                                  smaller.step(), smaller.size(), state)));
    return smaller;
}

/// The picture at the left, and its smaller layers one below the other.
DrawnPanel pyramid(const Subject& subject, float rate) {
    DrawnPanel drawn;
    std::vector<Picture> layers{subject.colour};
    while (layers.size() < 8 && std::min(layers.back().width, layers.back().height) >= 8) {
        DrawnPanel smaller;
        layers.push_back(layerDown(layers.back(), rate, layers.size() == 1 ? drawn : smaller));
    }
    int height = 0;
    for (std::size_t i = 1; i < layers.size(); ++i) height += layers[i].height;
    const int beside = layers.size() > 1 ? layers[1].width : 0;
    drawn.picture = Picture(subject.colour.width + beside, std::max(subject.colour.height, height), 3);
    copyInto(drawn.picture, layers[0], 0, 0);
    int top = 0;
    for (std::size_t i = 1; i < layers.size(); ++i) {
        copyInto(drawn.picture, layers[i], subject.colour.width, top);
        top += layers[i].height;
    }
    drawn.numbers = {std::to_string(layers.size()) + " layers, the smallest of " +
                     std::to_string(layers.back().width) + " x " + std::to_string(layers.back().height)};
    return drawn;
}

} // namespace

std::vector<Panel> pyramidPanels(const Subject& subject) {
    return {{"pyramid-of-rate-2", "A pyramid on one sheet", "lumiPyramidLayerDown_8u_C3R",
             "rate 2, kernel 1 4 6 4 1", [&subject] { return pyramid(subject, 2.0F); }, ""},
            {"pyramid-of-rate-1-5", "A pyramid of a general rate", "lumiPyramidLayerDown_8u_C3R",
             "rate 1.5, kernel 1 4 6 4 1", [&subject] { return pyramid(subject, 1.5F); }, ""}};
}

} // namespace tools

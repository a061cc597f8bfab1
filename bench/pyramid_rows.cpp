#include "rows.h"

#include <memory>

namespace bench {
namespace {

/// The functions of a layer operator.
template <class State, class T, class Tap> struct Layer {
    LumStatus (*getSize)(LumSize, Lum32f, int, Lum32s*, Lum32s*);
    LumStatus (*init)(State**, LumSize, Lum32f, const Tap*, int, int, Lum8u*, Lum8u*);
    LumStatus (*run)(const T*, int, LumSize, T*, int, LumSize, State*);
};

/// Binomial weights, which fall off to both sides: 1 4 6 4 1 for five taps.
template <class Tap> std::vector<Tap> binomial(int taps) {
    std::vector<Tap> kernel(1, 1);
    while (static_cast<int>(kernel.size()) < taps) {
        kernel.push_back(0);
        for (std::size_t i = kernel.size() - 1; i > 0; --i)
            kernel[i] = static_cast<Tap>(kernel[i] + kernel[i - 1]);
    }
    return kernel;
}

/// The layer of the whole picture, to the size below or to the most above.
template <class State, class T, class Tap>
Setup layerOf(Layer<State, T, Tap> layer, float rate, int taps, int channels, bool down) {
    return [=] {
        struct Work {
            Plane<T> src, dst;
            std::vector<Lum8u> memory;
            State* state = nullptr;
        };
        LumSize result{};
        LumSize least{};
        if (down)
            lumiGetPyramidDownROI(size, &result, rate);
        else
            lumiGetPyramidUpROI(size, &least, &result, rate);
        Lum32s stateBytes = 0;
        Lum32s bufferBytes = 0;
        layer.getSize(size, rate, taps, &stateBytes, &bufferBytes);
        auto work =
            std::make_shared<Work>(sceneAs<T>(channels), Plane<T>(channels, result.height, result.width),
                                   std::vector<Lum8u>(stateBytes));
        std::vector<Lum8u> buffer(bufferBytes);
        layer.init(&work->state, size, rate, binomial<Tap>(taps).data(), taps, 2, work->memory.data(),
                   buffer.data());
        return [=] {
            layer.run(work->src.data, work->src.step(), size, work->dst.data, work->dst.step(), result,
                      work->state);
        };
    };
}

#define LAYER(direction, suffix)                                                                             \
    Layer {                                                                                                  \
        lumiPyramidLayer##direction##GetSize_##suffix, lumiPyramidLayer##direction##Init_##suffix,           \
            lumiPyramidLayer##direction##_##suffix                                                           \
    }
const Layer down8u = LAYER(Down, 8u_C1R);
const Layer down8uC3 = LAYER(Down, 8u_C3R);
const Layer down16u = LAYER(Down, 16u_C1R);
const Layer down32f = LAYER(Down, 32f_C1R);
const Layer down32fC3 = LAYER(Down, 32f_C3R);
const Layer up8u = LAYER(Up, 8u_C1R);
const Layer up8uC3 = LAYER(Up, 8u_C3R);
const Layer up16u = LAYER(Up, 16u_C1R);
const Layer up32f = LAYER(Up, 32f_C1R);
const Layer up32fC3 = LAYER(Up, 32f_C3R);
#undef LAYER

const RowFile file([] {
    row("PyramidLayerDown_8u_C1_k5", layerOf(down8u, 2, 5, 1, true));
    row("PyramidLayerDown_8u_C1_k7", layerOf(down8u, 2, 7, 1, true));
    row("PyramidLayerDown_8u_C1_k5_rate1.5", layerOf(down8u, 1.5F, 5, 1, true));
    row("PyramidLayerDown_8u_C1_k5_rate3", layerOf(down8u, 3, 5, 1, true));
    row("PyramidLayerDown_8u_C3_k5", layerOf(down8uC3, 2, 5, 3, true));
    row("PyramidLayerDown_16u_C1_k5", layerOf(down16u, 2, 5, 1, true));
    row("PyramidLayerDown_32f_C1_k5", layerOf(down32f, 2, 5, 1, true));
    row("PyramidLayerDown_32f_C1_k5_rate1.5", layerOf(down32f, 1.5F, 5, 1, true));
    row("PyramidLayerDown_32f_C3_k5", layerOf(down32fC3, 2, 5, 3, true));
    row("PyramidLayerUp_8u_C1_k5(to 2x)", layerOf(up8u, 2, 5, 1, false));
    row("PyramidLayerUp_8u_C1_k7", layerOf(up8u, 2, 7, 1, false));
    row("PyramidLayerUp_8u_C1_k5_rate1.5", layerOf(up8u, 1.5F, 5, 1, false));
    row("PyramidLayerUp_8u_C1_k5_rate3", layerOf(up8u, 3, 5, 1, false));
    row("PyramidLayerUp_8u_C3_k5", layerOf(up8uC3, 2, 5, 3, false));
    row("PyramidLayerUp_16u_C1_k5", layerOf(up16u, 2, 5, 1, false));
    row("PyramidLayerUp_32f_C1_k5", layerOf(up32f, 2, 5, 1, false));
    row("PyramidLayerUp_32f_C3_k5", layerOf(up32fC3, 2, 5, 3, false));
});

} // namespace

} // namespace bench

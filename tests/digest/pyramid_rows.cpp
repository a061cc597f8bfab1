#include "digest/digest.h"

namespace digest {
namespace {

constexpr float rates[] = {1.3F, 2, 3};

void add(Digest& digest, LumSize size) {
    digest.add(size.width);
    digest.add(size.height);
}
void add(Digest& digest, LumSizeL size) {
    digest.add(static_cast<Lum32s>(size.width));
    digest.add(static_cast<Lum32s>(size.height));
}

template <class Size, class Member> std::function<void(Digest&, const Case&)> ofSizeBelow(Member member) {
    return [=](Digest& digest, const Case& c) {
        for (float rate : rates) {
            Size below{};
            digest.add(member({c.size.width, c.size.height}, &below, rate));
            add(digest, below);
        }
    };
}
template <class Size, class Member> std::function<void(Digest&, const Case&)> ofSizesAbove(Member member) {
    return [=](Digest& digest, const Case& c) {
        for (float rate : rates) {
            Size least{};
            Size most{};
            digest.add(member({c.size.width, c.size.height}, &least, &most, rate));
            add(digest, least);
            add(digest, most);
        }
    };
}

/// The bytes of a directory depend on the width of pointers, those of its buffer do not.
template <class Size, class Member> std::function<void(Digest&, const Case&)> ofDirectorySize(Member member) {
    return [=](Digest& digest, const Case& c) {
        for (float rate : rates) {
            Lum32s pyramidBytes = 0;
            Lum32s bufferBytes = 0;
            digest.add(member(&pyramidBytes, &bufferBytes, 4, Size{c.size.width, c.size.height}, rate));
            digest.add(bufferBytes);
        }
    };
}
template <class Size, class Member> std::function<void(Digest&, const Case&)> ofDirectory(Member member) {
    return [=](Digest& digest, const Case& c) {
        for (float rate : rates) {
            Lum32s pyramidBytes = 0;
            Lum32s bufferBytes = 0;
            lumiPyramidGetSize(&pyramidBytes, &bufferBytes, 4, c.size, rate);
            Memory memory(pyramidBytes);
            Memory buffer(bufferBytes);
            LumPyramid* pyramid = nullptr;
            digest.add(
                member(&pyramid, 4, Size{c.size.width, c.size.height}, rate, memory.data(), buffer.data()));
            digest.add(pyramid->level);
            for (int i = 0; i <= pyramid->level; ++i) {
                add(digest, pyramid->rois[i]);
                digest.add(pyramid->rates[i]);
            }
        }
    };
}

/// The functions of a layer operator.
template <class Size, class Step, class State, class T, class Tap> struct Layer {
    LumStatus (*getSize)(Size, Lum32f, int, Lum32s*, Lum32s*);
    LumStatus (*init)(State**, Size, Lum32f, const Tap*, int, int, Lum8u*, Lum8u*);
    LumStatus (*run)(const T*, Step, Size, T*, Step, Size, State*);
    int channels;
    bool down;

    /// The size of the result.
    LumSize resultOf(LumSize size, float rate) const {
        LumSize result{};
        LumSize least{};
        if (down)
            lumiGetPyramidDownROI(size, &result, rate);
        else
            lumiGetPyramidUpROI(size, &least, &result, rate);
        return result;
    }
};

enum class Part { size, init, run };

/// One function of the operator, at each rate and with a kernel of five and one of seven taps.
template <class Size, class Step, class State, class T, class Tap>
std::function<void(Digest&, const Case&)> ofLayer(Layer<Size, Step, State, T, Tap> layer, Part part) {
    return [=](Digest& digest, const Case& c) {
        const Tap kernel5[] = {1, 4, 6, 4, 1};
        const Tap kernel7[] = {1, 5, 9, 20, 9, 5, 2}; // not symmetric
        const Size size{c.size.width, c.size.height};
        for (float rate : rates)
            for (int taps : {5, 7}) {
                Lum32s stateBytes = 0;
                Lum32s bufferBytes = 0;
                const LumStatus sized = layer.getSize(size, rate, taps, &stateBytes, &bufferBytes);
                if (part == Part::size) {
                    digest.add(sized);
                    digest.add(bufferBytes);
                    continue;
                }
                Memory memory(stateBytes);
                Memory buffer(bufferBytes);
                State* state = nullptr;
                const LumStatus built = layer.init(&state, size, rate, taps == 5 ? kernel5 : kernel7, taps, 2,
                                                   memory.data(), buffer.data());
                if (part == Part::init) {
                    digest.add(built);
                    continue;
                }
                const LumSize result = layer.resultOf(c.size, rate);
                Picture<T> src(c.size, layer.channels, c.offset), dst(result, layer.channels);
                src.fill(c.seed);
                digest.add(layer.run(src.data(), src.step(), size, dst.data(), dst.step(),
                                     Size{result.width, result.height}, state));
                dst.addTo(digest);
            }
    };
}

#define LAYER_ROWS(direction, suffix, channels, down)                                                        \
    do {                                                                                                     \
        const Layer layer{lumiPyramidLayer##direction##GetSize_##suffix,                                     \
                          lumiPyramidLayer##direction##Init_##suffix,                                        \
                          lumiPyramidLayer##direction##_##suffix, channels, down};                           \
        row("lumiPyramidLayer" #direction "GetSize_" #suffix, ofLayer(layer, Part::size));                   \
        row("lumiPyramidLayer" #direction "Init_" #suffix, ofLayer(layer, Part::init));                      \
        row("lumiPyramidLayer" #direction "_" #suffix, ofLayer(layer, Part::run));                           \
    } while (false)

const RowFile file("pyramid", [] {
    row("lumiGetPyramidDownROI", ofSizeBelow<LumSize>(lumiGetPyramidDownROI));
    row("lumiGetPyramidDownROI_L", ofSizeBelow<LumSizeL>(lumiGetPyramidDownROI_L));
    row("lumiGetPyramidUpROI", ofSizesAbove<LumSize>(lumiGetPyramidUpROI));
    row("lumiGetPyramidUpROI_L", ofSizesAbove<LumSizeL>(lumiGetPyramidUpROI_L));
    row("lumiPyramidGetSize", ofDirectorySize<LumSize>(lumiPyramidGetSize));
    row("lumiPyramidGetSize_L", ofDirectorySize<LumSizeL>(lumiPyramidGetSize_L));
    row("lumiPyramidInit", ofDirectory<LumSize>(lumiPyramidInit));
    row("lumiPyramidInit_L", ofDirectory<LumSizeL>(lumiPyramidInit_L));
    LAYER_ROWS(Down, 8u_C1R, 1, true);
    LAYER_ROWS(Down, 8u_C3R, 3, true);
    LAYER_ROWS(Down, 16u_C1R, 1, true);
    LAYER_ROWS(Down, 16u_C3R, 3, true);
    LAYER_ROWS(Down, 32f_C1R, 1, true);
    LAYER_ROWS(Down, 32f_C3R, 3, true);
    LAYER_ROWS(Down, 32f_C1R_L, 1, true);
    LAYER_ROWS(Up, 8u_C1R, 1, false);
    LAYER_ROWS(Up, 8u_C3R, 3, false);
    LAYER_ROWS(Up, 16u_C1R, 1, false);
    LAYER_ROWS(Up, 16u_C3R, 3, false);
    LAYER_ROWS(Up, 32f_C1R, 1, false);
    LAYER_ROWS(Up, 32f_C3R, 3, false);
    LAYER_ROWS(Up, 32f_C1R_L, 1, false);
});
#undef LAYER_ROWS

} // namespace
} // namespace digest

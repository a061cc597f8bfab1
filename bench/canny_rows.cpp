// Edges of the scene, from its derivatives and from its bytes.
#include <memory>

#include "rows.h"

namespace bench {
namespace {

constexpr float low = 100;
constexpr float high = 200;

/// The Sobel derivatives of the scene; the rows and columns at the edge have none.
template <class T> Plane<T> derivative(int dx, int dy) {
    Plane<T> result;
    const Lum8u* pixel = scene().data;
    for (int y = 1; y < height - 1; ++y)
        for (int x = 1; x < width - 1; ++x) {
            const auto step = [&](int along, int across) {
                const int forward = (dx * along + dy * across) + (dy * along + dx * across) * width;
                const int backward = (-dx * along + dy * across) + (-dy * along + dx * across) * width;
                const int at = x + y * width;
                return pixel[at + forward] - pixel[at + backward];
            };
            result.data[x + y * width] = static_cast<T>(step(1, -1) + 2 * step(1, 0) + step(1, 1));
        }
    return result;
}

template <class T> struct FromDerivatives {
    Plane<T> dx = derivative<T>(1, 0);
    Plane<T> dy = derivative<T>(0, 1);
    Plane<Lum8u> edges;
    std::vector<Lum8u> buffer;

    FromDerivatives() {
        Lum32s bytes = 0;
        lumiCannyGetSize(size, &bytes);
        buffer.resize(bytes);
    }
};

template <class T, class Call> Setup fromDerivatives(Call call) {
    return [call] {
        auto run = std::make_shared<FromDerivatives<T>>();
        return [run, call] {
            call(run->dx.data, run->dx.step(), run->dy.data, run->dy.step(), run->edges.data,
                 run->edges.step(), size, low, high, run->buffer.data());
        };
    };
}

template <class T, class Call> Setup fromDerivatives(Call call, LumNormKind norm) {
    return [call, norm] {
        auto run = std::make_shared<FromDerivatives<T>>();
        return [run, call, norm] {
            call(run->dx.data, run->dx.step(), run->dy.data, run->dy.step(), run->edges.data,
                 run->edges.step(), {width, height}, low, high, norm, run->buffer.data());
        };
    };
}

Setup fromBytes(int filterKind, LumMaskSize mask, LumNormKind norm) {
    return [=] {
        struct Run {
            Plane<Lum8u> edges;
            std::vector<Lum8u> buffer;
        };
        auto run = std::make_shared<Run>();
        Lum32s bytes = 0;
        lumiCannyBorderGetSize(size, filterKind, mask, lumType8u, &bytes);
        run->buffer.resize(bytes);
        return [=] {
            lumiCannyBorder_8u_C1R(scene().data, scene().step(), run->edges.data, run->edges.step(), size,
                                   filterKind, mask, lumBorderReplicate, 0, low, high, norm,
                                   run->buffer.data());
        };
    };
}

const RowFile file([] {
    row("Canny_16s8u_L1(from dx,dy)", fromDerivatives<Lum16s>(lumiCanny_16s8u_C1R));
    row("Canny_16s8u_L2", fromDerivatives<Lum16s>(lumiCanny_16s8u_C1R_L, lumNormL2));
    row("Canny_32f8u_L1", fromDerivatives<Lum32f>(lumiCanny_32f8u_C1R));
    row("Canny_32f8u_L2", fromDerivatives<Lum32f>(lumiCanny_32f8u_C1R_L, lumNormL2));
    row("CannyBorder_8u_sobel3_L1", fromBytes(2, lumMask3x3, lumNormL1));
    row("CannyBorder_8u_sobel3_L2", fromBytes(2, lumMask3x3, lumNormL2));
    row("CannyBorder_8u_sobel5_L2", fromBytes(2, lumMask5x5, lumNormL2));
    row("CannyBorder_8u_scharr3_L1", fromBytes(5, lumMask3x3, lumNormL1));
});

} // namespace
} // namespace bench

// Rows of flood fill, labelling, speckles, watersheds and gradient segmentation. A call that changes its image works on
// a fresh copy each time, which its row includes.
#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>

#include "rows.h"

namespace bench {
namespace {

LumPoint middle() { return {width / 2, height / 2}; }

template <class Query> std::vector<Lum8u> bufferOf(Query query) {
    Lum32s bytes = 0;
    query(size, &bytes);
    return std::vector<Lum8u>(static_cast<std::size_t>(bytes));
}

/// A plane that a call changes, and what it was before.
template <class T> struct Canvas {
    Plane<T> original;
    Plane<T> image;
    std::vector<Lum8u> buffer;
    LumFillRegion region{};

    explicit Canvas(Plane<T> plane, std::vector<Lum8u> work)
        : original(std::move(plane)), image(original.channels), buffer(std::move(work)) {}

    void restore() {
        std::memcpy(image.data, original.data, static_cast<std::size_t>(image.step()) * height);
    }
};

/// call(canvas) on a fresh copy of a plane.
template <class T, class MakePlane, class Query, class Call>
Setup onCopy(MakePlane plane, Query query, Call call) {
    return [=] {
        auto canvas = std::make_shared<Canvas<T>>(plane(), bufferOf(query));
        return [canvas, call] {
            canvas->restore();
            call(*canvas);
        };
    };
}

template <class T> auto sceneOf(int channels = 1) {
    return [channels] { return sceneAs<T>(channels); };
}

/// The whole picture of one value, filled with another one and back.
template <class T, class Member> Setup flat(Member member) {
    return [member] {
        auto canvas = std::make_shared<Canvas<T>>(Plane<T>(), bufferOf(lumiFloodFillGetSize));
        return [canvas, member, value = T{}]() mutable {
            value = static_cast<T>(1 - value);
            member(canvas->image.data, canvas->image.step(), size, middle(), value, &canvas->region,
                   canvas->buffer.data());
        };
    };
}

template <class T>
auto flatInColour(LumStatus (*member)(T*, int, LumSize, LumPoint, const T*, LumFillRegion*, Lum8u*)) {
    return [member] {
        auto canvas = std::make_shared<Canvas<T>>(Plane<T>(3), bufferOf(lumiFloodFillGetSize));
        return [canvas, member, value = T{}]() mutable {
            value = static_cast<T>(1 - value);
            const T values[3] = {value, value, value};
            member(canvas->image.data, canvas->image.step(), size, middle(), values, &canvas->region,
                   canvas->buffer.data());
        };
    };
}

/// Bright and dark parts of the scene.
Plane<Lum8u> halves() {
    Plane<Lum8u> plane;
    for (int i = 0; i < pixels; ++i) plane.data[i] = scene().data[i] > 128 ? 255 : 0;
    return plane;
}

template <class T, class Member> Setup fixedRange(Member member, int delta) {
    return onCopy<T>(sceneOf<T>(), lumiFloodFillGetSize, [member, delta](Canvas<T>& c) {
        const T d = static_cast<T>(sizeof(T) == 2 ? 257 * delta : delta);
        member(c.image.data, c.image.step(), size, middle(), T{1}, d, d, &c.region, c.buffer.data());
    });
}

template <class T, class Member> Setup floatingRange(Member member, int delta) {
    return onCopy<T>(sceneOf<T>(), lumiFloodFillGetSize_Grad, [member, delta](Canvas<T>& c) {
        const T d = static_cast<T>(sizeof(T) == 2 ? 257 * delta : delta);
        member(c.image.data, c.image.step(), size, middle(), T{1}, d, d, &c.region, c.buffer.data());
    });
}

template <class T, class Member, class Query> Setup inColour(Member member, Query query, int delta) {
    return onCopy<T>(sceneOf<T>(3), query, [member, delta](Canvas<T>& c) {
        const T d = static_cast<T>(sizeof(T) == 2 ? 257 * delta : delta);
        const T values[3] = {1, 1, 1};
        const T deltas[3] = {d, d, d};
        member(c.image.data, c.image.step(), size, middle(), values, deltas, deltas, &c.region,
               c.buffer.data());
    });
}

template <class T, class Member> Setup labelInPlace(Member member) {
    const auto components = [] {
        Plane<T> plane;
        const Plane<Lum8u> source = halves();
        for (int i = 0; i < pixels; ++i) plane.data[i] = source.data[i];
        return plane;
    };
    return onCopy<T>(components, lumiLabelMarkersGetBufferSize_8u_C1R, [member](Canvas<T>& c) {
        Lum32s count;
        member(c.image.data, c.image.step(), size, 1, 254, lumSpatialNormInf, &count, c.buffer.data());
    });
}

Setup labelTo32s(LumSpatialNorm norm) {
    return [norm] {
        struct Images {
            Plane<Lum8u> src = halves();
            Plane<Lum32s> dst;
            std::vector<Lum8u> buffer = bufferOf(lumiLabelMarkersGetBufferSize_8u32s_C1R);
        };
        auto images = std::make_shared<Images>();
        return [images, norm] {
            Lum32s count;
            lumiLabelMarkers_8u32s_C1R(images->src.data, images->src.step(), images->dst.data,
                                       images->dst.step(), size, 1, 1000000, norm, &count,
                                       images->buffer.data());
        };
    };
}

/// A depth image: the scene in sixteenths, without its noise, and a wrong value at one pixel in fifty.
template <class T> Plane<T> depth() {
    Plane<T> plane;
    std::mt19937 engine(5);
    for (int i = 0; i < pixels; ++i) {
        const int value = engine() % 50 == 0 ? static_cast<int>(engine() % 256) : scene().data[i];
        plane.data[i] = static_cast<T>(sizeof(T) == 1 ? value : 16 * value);
    }
    return plane;
}

template <class T, class Member> Setup speckles(Member member) {
    const auto query = [](LumSize region, Lum32s* bytes) {
        return lumiMarkSpecklesGetBufferSize(region, lumType8u, 1, bytes);
    };
    return onCopy<T>(depth<T>, query, [member](Canvas<T>& c) {
        const T difference = static_cast<T>(sizeof(T) == 1 ? 10 : 160);
        member(c.image.data, c.image.step(), size, T{0}, 100, difference, lumNormInf, c.buffer.data());
    });
}

/// The magnitude of the scene's gradient.
template <class T> Plane<T> relief() {
    Plane<T> plane;
    const Lum8u* p = scene().data;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const int i = y * width + x;
            const int dx = p[x < width - 1 ? i + 1 : i] - p[x > 0 ? i - 1 : i];
            const int dy = p[y < height - 1 ? i + width : i] - p[y > 0 ? i - width : i];
            plane.data[i] = static_cast<T>(std::min(std::abs(dx) + std::abs(dy), 255));
        }
    return plane;
}

/// Markers of 5 x 5 pixels at the given distance.
template <class T> Plane<T> seeds(int distance) {
    Plane<T> plane;
    int label = 0;
    for (int y = distance / 2; y < height - 5; y += distance)
        for (int x = distance / 2; x < width - 5; x += distance, ++label)
            for (int i = 0; i < 25; ++i)
                plane.data[(y + i / 5) * width + x + i % 5] = static_cast<T>(1 + label % 250);
    return plane;
}

template <class Relief, class Marker, class Member, class Query>
Setup watershed(Member member, Query query, Lum32s norm, Lum32s flags) {
    return [=] {
        auto src = std::make_shared<Plane<Relief>>(relief<Relief>());
        auto canvas = std::make_shared<Canvas<Marker>>(seeds<Marker>(100), bufferOf(query));
        return [=] {
            canvas->restore();
            member(src->data, src->step(), canvas->image.data, canvas->image.step(), size, norm, flags,
                   canvas->buffer.data());
        };
    };
}

template <class Member> Setup gradient(Member member, int channels, LumSpatialNorm norm, Lum32s flags) {
    return [=] {
        auto src = std::make_shared<Plane<Lum8u>>(sceneAs<Lum8u>(channels));
        auto canvas = std::make_shared<Canvas<Lum8u>>(seeds<Lum8u>(100),
                                                      bufferOf(lumiSegmentGradientGetBufferSize_8u_C1R));
        return [=] {
            canvas->restore();
            member(src->data, src->step(), canvas->image.data, canvas->image.step(), size, norm, flags,
                   canvas->buffer.data());
        };
    };
}

template <class T, class Member> Setup bounds(Member member, LumSpatialNorm norm) {
    const auto regions = [] {
        Plane<T> plane;
        for (int i = 0; i < pixels; ++i)
            plane.data[i] = static_cast<T>(1 + (i % width / 37 + i / width / 29 * 7) % 200);
        return plane;
    };
    return onCopy<T>(regions, lumiFloodFillGetSize, [member, norm](Canvas<T>& c) {
        member(c.image.data, c.image.step(), size, T{255}, norm);
    });
}

const RowFile file([] {
    row("FloodFill_4Con_8u(flat image)", flat<Lum8u>(lumiFloodFill_4Con_8u_C1IR));
    row("FloodFill_8Con_8u(flat image)", flat<Lum8u>(lumiFloodFill_8Con_8u_C1IR));
    row("FloodFill_4Con_16u(flat image)", flat<Lum16u>(lumiFloodFill_4Con_16u_C1IR));
    row("FloodFill_4Con_32s(flat image)", flat<Lum32s>(lumiFloodFill_4Con_32s_C1IR));
    row("FloodFill_4Con_32f(flat image)", flat<Lum32f>(lumiFloodFill_4Con_32f_C1IR));
    row("FloodFill_4Con_8u_C3(flat image)", flatInColour<Lum8u>(lumiFloodFill_4Con_8u_C3IR));
    row("FloodFill_Range4Con_8u", fixedRange<Lum8u>(lumiFloodFill_Range4Con_8u_C1IR, 60));
    row("FloodFill_Range8Con_8u", fixedRange<Lum8u>(lumiFloodFill_Range8Con_8u_C1IR, 60));
    row("FloodFill_Range8Con_16u", fixedRange<Lum16u>(lumiFloodFill_Range8Con_16u_C1IR, 60));
    row("FloodFill_Range8Con_32f", fixedRange<Lum32f>(lumiFloodFill_Range8Con_32f_C1IR, 60));
    row("FloodFill_Range8Con_8u_C3",
        inColour<Lum8u>(lumiFloodFill_Range8Con_8u_C3IR, lumiFloodFillGetSize, 60));
    row("FloodFill_Grad4Con_8u", floatingRange<Lum8u>(lumiFloodFill_Grad4Con_8u_C1IR, 20));
    row("FloodFill_Grad8Con_8u", floatingRange<Lum8u>(lumiFloodFill_Grad8Con_8u_C1IR, 20));
    row("FloodFill_Grad8Con_16u", floatingRange<Lum16u>(lumiFloodFill_Grad8Con_16u_C1IR, 20));
    row("FloodFill_Grad8Con_32f", floatingRange<Lum32f>(lumiFloodFill_Grad8Con_32f_C1IR, 20));
    row("FloodFill_Grad8Con_8u_C3",
        inColour<Lum8u>(lumiFloodFill_Grad8Con_8u_C3IR, lumiFloodFillGetSize_Grad, 20));
    row("LabelMarkers_8u32s(components)", labelTo32s(lumSpatialNormInf));
    row("LabelMarkers_8u32s(components, four neighbours)", labelTo32s(lumSpatialNormL1));
    row("LabelMarkers_8u(components)", labelInPlace<Lum8u>(lumiLabelMarkers_8u_C1IR));
    row("LabelMarkers_16u(components)", labelInPlace<Lum16u>(lumiLabelMarkers_16u_C1IR));
    row("MarkSpeckles_8u", speckles<Lum8u>(lumiMarkSpeckles_8u_C1IR));
    row("MarkSpeckles_16u", speckles<Lum16u>(lumiMarkSpeckles_16u_C1IR));
    row("MarkSpeckles_16s", speckles<Lum16s>(lumiMarkSpeckles_16s_C1IR));
    row("MarkSpeckles_32f", speckles<Lum32f>(lumiMarkSpeckles_32f_C1IR));

    const auto ofBytes = lumiSegmentWatershedGetBufferSize_8u_C1R;
    const auto ofFloats = lumiSegmentWatershedGetBufferSize_32f16u_C1R;
    const auto bytes = [=](const char* name, Lum32s norm, Lum32s flags) {
        row(name, watershed<Lum8u, Lum8u>(lumiSegmentWatershed_8u_C1IR, ofBytes, norm, flags));
    };
    bytes("SegmentWatershed_8u(flood,from C3)", 0, lumSegmentQueue | lumSegmentBorder8);
    bytes("SegmentWatershed_8u(flood, no boundaries)", 0, lumSegmentQueue);
    bytes("SegmentWatershed_8u(flood, four neighbours)", 1, lumSegmentQueue | lumSegmentBorder4);
    bytes("SegmentWatershed_8u(raster, norm 0)", 0, lumSegmentDistance);
    bytes("SegmentWatershed_8u(raster, norm 1)", 1, lumSegmentDistance);
    bytes("SegmentWatershed_8u(raster, norm 2)", 2, lumSegmentDistance);
    bytes("SegmentWatershed_8u(raster, norm 3)", 3, lumSegmentDistance);
    bytes("SegmentWatershed_8u(raster, norm 0, boundaries)", 0, lumSegmentDistance | lumSegmentBorder8);
    row("SegmentWatershed_8u16u(flood)",
        watershed<Lum8u, Lum16u>(lumiSegmentWatershed_8u16u_C1IR, lumiSegmentWatershedGetBufferSize_8u16u_C1R,
                                 0, lumSegmentQueue | lumSegmentBorder8));
    row("SegmentWatershed_32f16u(raster, norm 0)",
        watershed<Lum32f, Lum16u>(lumiSegmentWatershed_32f16u_C1IR, ofFloats, 0, lumSegmentDistance));
    row("SegmentWatershed_32f16u(raster, norm 3)",
        watershed<Lum32f, Lum16u>(lumiSegmentWatershed_32f16u_C1IR, ofFloats, 3, lumSegmentDistance));

    row("SegmentGradient_8u", gradient(lumiSegmentGradient_8u_C1IR, 1, lumSpatialNormInf, 0));
    row("SegmentGradient_8u(four neighbours)", gradient(lumiSegmentGradient_8u_C1IR, 1, lumSpatialNormL1, 0));
    row("SegmentGradient_8u_C3",
        gradient(lumiSegmentGradient_8u_C3IR, 3, lumSpatialNormInf, lumSegmentBorder8));
    row("BoundSegments_8u", bounds<Lum8u>(lumiBoundSegments_8u_C1IR, lumSpatialNormInf));
    row("BoundSegments_16u", bounds<Lum16u>(lumiBoundSegments_16u_C1IR, lumSpatialNormL1));
});

} // namespace
} // namespace bench

#include "digest/digest.h"

#include <algorithm>

namespace digest {
namespace {

template <class Query> Memory bufferOf(Query query, LumSize size) {
    Lum32s bytes = 0;
    query(size, &bytes);
    return Memory(bytes);
}

template <class Query> std::function<void(Digest&, const Case&)> sizeOf(Query query) {
    return [=](Digest& digest, const Case& c) {
        Lum32s bytes = 0;
        digest.add(query(c.size, &bytes));
        digest.add(bytes);
    };
}

/// Elements of a few values, in regions of some size.
template <class T> void coarsen(Picture<T>& picture) {
    for (int y = 0; y < picture.size().height; ++y)
        for (int i = 0; i < picture.size().width * picture.channels(); ++i)
            picture.row(y)[i] = picture.row(y)[i] > static_cast<T>(40) ? T{50} : T{20};
}

LumPoint seedIn(const Case& c) { return {c.size.width / 2, c.size.height - 1}; }

void addRegion(Digest& digest, const LumFillRegion& region) {
    digest.add(region.area);
    for (const Lum64f value : region.value) digest.add(value);
    for (const Lum32s side : {region.rect.x, region.rect.y, region.rect.width, region.rect.height})
        digest.add(side);
}

/// A fill by call(image, seed, region, buffer).
template <class T, class Call>
std::function<void(Digest&, const Case&)> fill(int channels, bool isCoarse, bool isGrad, Call call) {
    return [=](Digest& digest, const Case& c) {
        Picture<T> image(c.size, channels, c.offset);
        image.fill(c.seed);
        if (isCoarse) coarsen(image);
        auto buffer =
            isGrad ? bufferOf(lumiFloodFillGetSize_Grad, c.size) : bufferOf(lumiFloodFillGetSize, c.size);
        LumFillRegion region{};
        digest.add(call(image, seedIn(c), &region, buffer.data()));
        addRegion(digest, region);
        image.addTo(digest);
    };
}

template <class T, class Member> auto exact(Member member) {
    return fill<T>(1, true, false,
                   [=](Picture<T>& image, LumPoint seed, LumFillRegion* region, Lum8u* buffer) {
                       return member(image.data(), image.step(), image.size(), seed, T{99}, region, buffer);
                   });
}

template <class T, class Member> auto exactC3(Member member) {
    return fill<T>(3, true, false,
                   [=](Picture<T>& image, LumPoint seed, LumFillRegion* region, Lum8u* buffer) {
                       const T newVal[3] = {99, 98, 97};
                       return member(image.data(), image.step(), image.size(), seed, newVal, region, buffer);
                   });
}

/// A tenth of what the elements of pictures span.
template <class T> constexpr T tenth = static_cast<T>(sizeof(T) == 2 ? 6000 : 25);

template <class T, class Member> auto range(Member member, bool isGrad = false) {
    return fill<T>(1, false, isGrad,
                   [=](Picture<T>& image, LumPoint seed, LumFillRegion* region, Lum8u* buffer) {
                       return member(image.data(), image.step(), image.size(), seed, T{99}, tenth<T>,
                                     static_cast<T>(2 * tenth<T>), region, buffer);
                   });
}

template <class T, class Member> auto rangeC3(Member member, bool isGrad = false) {
    return fill<T>(3, false, isGrad,
                   [=](Picture<T>& image, LumPoint seed, LumFillRegion* region, Lum8u* buffer) {
                       const T newVal[3] = {99, 98, 97};
                       const T delta[3] = {static_cast<T>(3 * tenth<T>), static_cast<T>(4 * tenth<T>),
                                           static_cast<T>(5 * tenth<T>)};
                       return member(image.data(), image.step(), image.size(), seed, newVal, delta, delta,
                                     region, buffer);
                   });
}

template <class T, class Member> std::function<void(Digest&, const Case&)> labels(Member member) {
    return [=](Digest& digest, const Case& c) {
        Picture<T> image(c.size, 1, c.offset);
        image.fill(c.seed);
        for (int y = 0; y < c.size.height; ++y)
            for (int x = 0; x < c.size.width; ++x) image.row(y)[x] = image.row(y)[x] % 2 == 0 ? 0 : 7;
        auto buffer = bufferOf(lumiLabelMarkersGetBufferSize_8u_C1R, c.size);
        for (LumSpatialNorm norm : {lumSpatialNormInf, lumSpatialNormL1}) {
            Lum32s count = 0;
            digest.add(member(image.data(), image.step(), c.size, 1, 200, norm, &count, buffer.data()));
            digest.add(count);
            image.addTo(digest);
        }
    };
}

void labelsTo32s(Digest& digest, const Case& c) {
    Picture<Lum8u> src(c.size, 1, c.offset);
    src.fill(c.seed);
    for (int y = 0; y < c.size.height; ++y)
        for (int x = 0; x < c.size.width; ++x) src.row(y)[x] &= 1;
    Picture<Lum32s> dst(c.size);
    auto buffer = bufferOf(lumiLabelMarkersGetBufferSize_8u32s_C1R, c.size);
    for (LumSpatialNorm norm : {lumSpatialNormInf, lumSpatialNormL1}) {
        Lum32s count = 0;
        digest.add(lumiLabelMarkers_8u32s_C1R(src.data(), src.step(), dst.data(), dst.step(), c.size, 1,
                                              100000, norm, &count, buffer.data()));
        digest.add(count);
        dst.addTo(digest);
    }
}

template <class T, class Member> std::function<void(Digest&, const Case&)> speckles(Member member) {
    return [=](Digest& digest, const Case& c) {
        Picture<T> image(c.size, 1, c.offset);
        image.fill(c.seed);
        Lum32s bytes = 0;
        lumiMarkSpecklesGetBufferSize(c.size, lumType8u, 1, &bytes);
        Memory buffer(bytes);
        digest.add(member(image.data(), image.step(), c.size, T{0}, 9, tenth<T>, lumNormInf, buffer.data()));
        image.addTo(digest);
    };
}

void specklesSize(Digest& digest, const Case& c) {
    Lum32s bytes = 0;
    digest.add(lumiMarkSpecklesGetBufferSize(c.size, lumType16s, 1, &bytes));
    digest.add(bytes);
}

/// A few markers of two pixels each.
template <class T> void plant(Picture<T>& markers, std::uint32_t seed) {
    markers.clear();
    Numbers numbers(seed);
    const auto [width, height] = markers.size();
    for (int i = 0; i < 6; ++i) {
        const int x = numbers.below(width);
        const int y = numbers.below(height);
        markers.row(y)[x] = static_cast<T>(1 + 40 * i);
        markers.row(std::min(y + 1, height - 1))[x] = static_cast<T>(1 + 40 * i);
    }
}

template <class Relief, class Marker, class Member, class Query>
std::function<void(Digest&, const Case&)> watershed(Member member, Query query) {
    return [=](Digest& digest, const Case& c) {
        Picture<Relief> relief(c.size, 1, c.offset);
        relief.fill(c.seed);
        auto buffer = bufferOf(query, c.size);
        for (Lum32s flags : {0, 64, 128, 192})
            for (Lum32s norm = 0; norm < 6; ++norm) {
                Picture<Marker> markers(c.size, 1, c.offset);
                plant(markers, c.seed);
                const Lum32s engine = norm < 4 ? lumSegmentDistance : lumSegmentQueue;
                digest.add(member(relief.data(), relief.step(), markers.data(), markers.step(), c.size,
                                  norm % 4, engine | flags, buffer.data()));
                markers.addTo(digest);
            }
    };
}

template <class Member> std::function<void(Digest&, const Case&)> gradient(Member member, int channels) {
    return [=](Digest& digest, const Case& c) {
        Picture<Lum8u> src(c.size, channels, c.offset);
        src.fill(c.seed);
        auto buffer = bufferOf(lumiSegmentGradientGetBufferSize_8u_C1R, c.size);
        for (Lum32s flags : {0, 64, 128})
            for (LumSpatialNorm norm : {lumSpatialNormInf, lumSpatialNormL1}) {
                Picture<Lum8u> markers(c.size, 1, c.offset);
                plant(markers, c.seed);
                digest.add(member(src.data(), src.step(), markers.data(), markers.step(), c.size, norm, flags,
                                  buffer.data()));
                markers.addTo(digest);
            }
    };
}

template <class T, class Member> std::function<void(Digest&, const Case&)> bounds(Member member) {
    return [=](Digest& digest, const Case& c) {
        for (LumSpatialNorm norm : {lumSpatialNormInf, lumSpatialNormL1}) {
            Picture<T> image(c.size, 1, c.offset);
            image.fill(c.seed);
            coarsen(image);
            digest.add(member(image.data(), image.step(), c.size, T{255}, norm));
            image.addTo(digest);
        }
    };
}

const RowFile file("segment", [] {
    row("lumiBoundSegments_16u_C1IR", bounds<Lum16u>(lumiBoundSegments_16u_C1IR));
    row("lumiBoundSegments_8u_C1IR", bounds<Lum8u>(lumiBoundSegments_8u_C1IR));
    row("lumiFloodFillGetSize", sizeOf(lumiFloodFillGetSize));
    row("lumiFloodFillGetSize_Grad", sizeOf(lumiFloodFillGetSize_Grad));
    row("lumiFloodFill_4Con_16u_C1IR", exact<Lum16u>(lumiFloodFill_4Con_16u_C1IR));
    row("lumiFloodFill_4Con_16u_C3IR", exactC3<Lum16u>(lumiFloodFill_4Con_16u_C3IR));
    row("lumiFloodFill_4Con_32f_C1IR", exact<Lum32f>(lumiFloodFill_4Con_32f_C1IR));
    row("lumiFloodFill_4Con_32f_C3IR", exactC3<Lum32f>(lumiFloodFill_4Con_32f_C3IR));
    row("lumiFloodFill_4Con_32s_C1IR", exact<Lum32s>(lumiFloodFill_4Con_32s_C1IR));
    row("lumiFloodFill_4Con_8u_C1IR", exact<Lum8u>(lumiFloodFill_4Con_8u_C1IR));
    row("lumiFloodFill_4Con_8u_C3IR", exactC3<Lum8u>(lumiFloodFill_4Con_8u_C3IR));
    row("lumiFloodFill_8Con_16u_C1IR", exact<Lum16u>(lumiFloodFill_8Con_16u_C1IR));
    row("lumiFloodFill_8Con_16u_C3IR", exactC3<Lum16u>(lumiFloodFill_8Con_16u_C3IR));
    row("lumiFloodFill_8Con_32f_C1IR", exact<Lum32f>(lumiFloodFill_8Con_32f_C1IR));
    row("lumiFloodFill_8Con_32f_C3IR", exactC3<Lum32f>(lumiFloodFill_8Con_32f_C3IR));
    row("lumiFloodFill_8Con_32s_C1IR", exact<Lum32s>(lumiFloodFill_8Con_32s_C1IR));
    row("lumiFloodFill_8Con_8u_C1IR", exact<Lum8u>(lumiFloodFill_8Con_8u_C1IR));
    row("lumiFloodFill_8Con_8u_C3IR", exactC3<Lum8u>(lumiFloodFill_8Con_8u_C3IR));
    row("lumiFloodFill_Grad4Con_16u_C1IR", range<Lum16u>(lumiFloodFill_Grad4Con_16u_C1IR, true));
    row("lumiFloodFill_Grad4Con_16u_C3IR", rangeC3<Lum16u>(lumiFloodFill_Grad4Con_16u_C3IR, true));
    row("lumiFloodFill_Grad4Con_32f_C1IR", range<Lum32f>(lumiFloodFill_Grad4Con_32f_C1IR, true));
    row("lumiFloodFill_Grad4Con_32f_C3IR", rangeC3<Lum32f>(lumiFloodFill_Grad4Con_32f_C3IR, true));
    row("lumiFloodFill_Grad4Con_8u_C1IR", range<Lum8u>(lumiFloodFill_Grad4Con_8u_C1IR, true));
    row("lumiFloodFill_Grad4Con_8u_C3IR", rangeC3<Lum8u>(lumiFloodFill_Grad4Con_8u_C3IR, true));
    row("lumiFloodFill_Grad8Con_16u_C1IR", range<Lum16u>(lumiFloodFill_Grad8Con_16u_C1IR, true));
    row("lumiFloodFill_Grad8Con_16u_C3IR", rangeC3<Lum16u>(lumiFloodFill_Grad8Con_16u_C3IR, true));
    row("lumiFloodFill_Grad8Con_32f_C1IR", range<Lum32f>(lumiFloodFill_Grad8Con_32f_C1IR, true));
    row("lumiFloodFill_Grad8Con_32f_C3IR", rangeC3<Lum32f>(lumiFloodFill_Grad8Con_32f_C3IR, true));
    row("lumiFloodFill_Grad8Con_8u_C1IR", range<Lum8u>(lumiFloodFill_Grad8Con_8u_C1IR, true));
    row("lumiFloodFill_Grad8Con_8u_C3IR", rangeC3<Lum8u>(lumiFloodFill_Grad8Con_8u_C3IR, true));
    row("lumiFloodFill_Range4Con_16u_C1IR", range<Lum16u>(lumiFloodFill_Range4Con_16u_C1IR));
    row("lumiFloodFill_Range4Con_16u_C3IR", rangeC3<Lum16u>(lumiFloodFill_Range4Con_16u_C3IR));
    row("lumiFloodFill_Range4Con_32f_C1IR", range<Lum32f>(lumiFloodFill_Range4Con_32f_C1IR));
    row("lumiFloodFill_Range4Con_32f_C3IR", rangeC3<Lum32f>(lumiFloodFill_Range4Con_32f_C3IR));
    row("lumiFloodFill_Range4Con_8u_C1IR", range<Lum8u>(lumiFloodFill_Range4Con_8u_C1IR));
    row("lumiFloodFill_Range4Con_8u_C3IR", rangeC3<Lum8u>(lumiFloodFill_Range4Con_8u_C3IR));
    row("lumiFloodFill_Range8Con_16u_C1IR", range<Lum16u>(lumiFloodFill_Range8Con_16u_C1IR));
    row("lumiFloodFill_Range8Con_16u_C3IR", rangeC3<Lum16u>(lumiFloodFill_Range8Con_16u_C3IR));
    row("lumiFloodFill_Range8Con_32f_C1IR", range<Lum32f>(lumiFloodFill_Range8Con_32f_C1IR));
    row("lumiFloodFill_Range8Con_32f_C3IR", rangeC3<Lum32f>(lumiFloodFill_Range8Con_32f_C3IR));
    row("lumiFloodFill_Range8Con_8u_C1IR", range<Lum8u>(lumiFloodFill_Range8Con_8u_C1IR));
    row("lumiFloodFill_Range8Con_8u_C3IR", rangeC3<Lum8u>(lumiFloodFill_Range8Con_8u_C3IR));
    row("lumiLabelMarkersGetBufferSize_16u_C1R", sizeOf(lumiLabelMarkersGetBufferSize_16u_C1R));
    row("lumiLabelMarkersGetBufferSize_8u32s_C1R", sizeOf(lumiLabelMarkersGetBufferSize_8u32s_C1R));
    row("lumiLabelMarkersGetBufferSize_8u_C1R", sizeOf(lumiLabelMarkersGetBufferSize_8u_C1R));
    row("lumiLabelMarkers_16u_C1IR", labels<Lum16u>(lumiLabelMarkers_16u_C1IR));
    row("lumiLabelMarkers_8u32s_C1R", labelsTo32s);
    row("lumiLabelMarkers_8u_C1IR", labels<Lum8u>(lumiLabelMarkers_8u_C1IR));
    row("lumiMarkSpecklesGetBufferSize", specklesSize);
    row("lumiMarkSpeckles_16s_C1IR", speckles<Lum16s>(lumiMarkSpeckles_16s_C1IR));
    row("lumiMarkSpeckles_16u_C1IR", speckles<Lum16u>(lumiMarkSpeckles_16u_C1IR));
    row("lumiMarkSpeckles_32f_C1IR", speckles<Lum32f>(lumiMarkSpeckles_32f_C1IR));
    row("lumiMarkSpeckles_8u_C1IR", speckles<Lum8u>(lumiMarkSpeckles_8u_C1IR));
    row("lumiSegmentGradientGetBufferSize_8u_C1R", sizeOf(lumiSegmentGradientGetBufferSize_8u_C1R));
    row("lumiSegmentGradientGetBufferSize_8u_C3R", sizeOf(lumiSegmentGradientGetBufferSize_8u_C3R));
    row("lumiSegmentGradient_8u_C1IR", gradient(lumiSegmentGradient_8u_C1IR, 1));
    row("lumiSegmentGradient_8u_C3IR", gradient(lumiSegmentGradient_8u_C3IR, 3));
    row("lumiSegmentWatershedGetBufferSize_32f16u_C1R", sizeOf(lumiSegmentWatershedGetBufferSize_32f16u_C1R));
    row("lumiSegmentWatershedGetBufferSize_8u16u_C1R", sizeOf(lumiSegmentWatershedGetBufferSize_8u16u_C1R));
    row("lumiSegmentWatershedGetBufferSize_8u_C1R", sizeOf(lumiSegmentWatershedGetBufferSize_8u_C1R));
    row("lumiSegmentWatershed_32f16u_C1IR",
        watershed<Lum32f, Lum16u>(lumiSegmentWatershed_32f16u_C1IR,
                                  lumiSegmentWatershedGetBufferSize_32f16u_C1R));
    row("lumiSegmentWatershed_8u16u_C1IR",
        watershed<Lum8u, Lum16u>(lumiSegmentWatershed_8u16u_C1IR,
                                 lumiSegmentWatershedGetBufferSize_8u16u_C1R));
    row("lumiSegmentWatershed_8u_C1IR",
        watershed<Lum8u, Lum8u>(lumiSegmentWatershed_8u_C1IR, lumiSegmentWatershedGetBufferSize_8u_C1R));
});

} // namespace
} // namespace digest

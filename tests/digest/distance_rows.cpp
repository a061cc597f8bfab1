#include "digest/digest.h"

namespace digest {
namespace {

/// Blots and single pixels of value 0 (or of other values, inverted), a few of each.
void drawBlots(const Picture<Lum8u>& picture, std::uint32_t seed, bool inverted) {
    Numbers numbers(seed);
    const LumSize size = picture.size();
    const int x0 = numbers.below(size.width);
    const int y0 = numbers.below(size.height);
    const int reach = 1 + numbers.below(6);
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) {
            const bool blot =
                (x - x0) * (x - x0) + (y - y0) * (y - y0) <= reach * reach || numbers.below(60) == 0;
            picture.row(y)[x] = static_cast<Lum8u>(blot != inverted ? 0 : 1 + numbers.below(255));
        }
}

template <class T, class Length, class Member>
std::function<void(Digest&, const Case&)> chamfer(Member member) {
    return [=](Digest& digest, const Case& c) {
        const Length metrics[][3] = {{1, 2, 3}, {2, 3, 4},  {5, 7, 11},
                                     {3, 2, 1}, {13, 6, 5}, {70000, 90000, 100000}};
        for (const auto& lengths : metrics) {
            Picture<Lum8u> src(c.size, 1, c.offset);
            Picture<T> dst(c.size);
            drawBlots(src, c.seed, false);
            digest.add(member(src.data(), src.step(), dst.data(), dst.step(), c.size, lengths));
            dst.addTo(digest);
        }
    };
}

template <class Member> std::function<void(Digest&, const Case&)> chamferInPlace(Member member) {
    return [=](Digest& digest, const Case& c) {
        const Lum32s lengths[3] = {5, 7, 11};
        Picture<Lum8u> picture(c.size, 1, c.offset);
        drawBlots(picture, c.seed, false);
        digest.add(member(picture.data(), picture.step(), c.size, lengths));
        picture.addTo(digest);
    };
}

template <class Length, class Member>
std::function<void(Digest&, const Case&)> standardLengths(Member member) {
    return [=](Digest& digest, const Case& c) {
        Length lengths[3] = {};
        digest.add(member(c.seed % 2 == 0 ? 3 : 5, static_cast<Lum32s>(c.seed % 3), lengths));
        for (Length length : lengths) digest.add(length);
    };
}

Memory bytesOf(Lum32s size) { return Memory(size); }

void trueDistance(Digest& digest, const Case& c) {
    Picture<Lum8u> src(c.size, 1, c.offset);
    Picture<Lum32f> dst(c.size);
    drawBlots(src, c.seed, false);
    Lum32s size = 0;
    lumiTrueDistanceTransformGetBufferSize_8u32f_C1R(c.size, &size);
    auto buffer = bytesOf(size);
    digest.add(lumiTrueDistanceTransform_8u32f_C1R(src.data(), src.step(), dst.data(), dst.step(), c.size,
                                                   buffer.data()));
    dst.addTo(digest);
}

void march(const Picture<Lum8u>& mask, const Picture<Lum32f>& distances, float radius) {
    Lum32s size = 0;
    lumiFastMarchingGetBufferSize_8u32f_C1R(mask.size(), &size);
    auto buffer = bytesOf(size);
    lumiFastMarching_8u32f_C1R(mask.data(), mask.step(), distances.data(), distances.step(), mask.size(),
                               radius, buffer.data());
}

void fastMarching(Digest& digest, const Case& c) {
    for (float radius : {0.0F, 3.5F, 20.0F}) {
        Picture<Lum8u> mask(c.size, 1, c.offset);
        Picture<Lum32f> distances(c.size);
        drawBlots(mask, c.seed, true);
        march(mask, distances, radius);
        distances.addTo(digest);
    }
}

void sizeOfQuery(Digest& digest, const Case& c, LumStatus (*query)(LumSize, Lum32s*)) {
    Lum32s size = 0;
    digest.add(query(c.size, &size));
    digest.add(size);
}

/// A hole, and everything that repairs it.
struct Hole {
    Picture<Lum8u> mask;
    Picture<Lum32f> distances;
    Memory block, buffer;
    LumInpaintState* state = nullptr;
    LumStatus status = lumStatusOk;

    Hole(const Case& c, int channels, int method) : mask(c.size, 1, c.offset), distances(c.size) {
        drawBlots(mask, c.seed, true);
        march(mask, distances, 0);
        Lum32s stateSize = 0;
        Lum32s bufferSize = 0;
        lumiInpaintGetSize(mask.data(), mask.step(), c.size, radius, method, channels, &stateSize,
                           &bufferSize);
        block = bytesOf(stateSize);
        buffer = bytesOf(bufferSize);
        const auto init = channels == 1 ? lumiInpaintInit_8u_C1R : lumiInpaintInit_8u_C3R;
        status = init(&state, distances.data(), distances.step(), mask.data(), mask.step(), c.size, radius,
                      method, block.data(), buffer.data());
    }

    static constexpr float radius = 3.7F;
};

template <int channels> void inpaint(Digest& digest, const Case& c) {
    for (int method : {lumInpaintFront, lumInpaintIsophote}) {
        Hole hole(c, channels, method);
        Picture<Lum8u> src(c.size, channels, c.offset);
        Picture<Lum8u> dst(c.size, channels);
        src.fill(c.seed);
        const auto run = channels == 1 ? lumiInpaint_8u_C1R : lumiInpaint_8u_C3R;
        digest.add(
            run(src.data(), src.step(), dst.data(), dst.step(), c.size, hole.state, hole.buffer.data()));
        dst.addTo(digest);
    }
}

template <int channels> void inpaintInit(Digest& digest, const Case& c) {
    for (int method : {lumInpaintFront, lumInpaintIsophote}) digest.add(Hole(c, channels, method).status);
}

/// The sizes hold pointers, which differ between builds: only the statuses count.
void inpaintSizes(Digest& digest, const Case& c) {
    Picture<Lum8u> mask(c.size, 1, c.offset);
    drawBlots(mask, c.seed, true);
    Lum32s stateSize = 0;
    Lum32s bufferSize = 0;
    for (float radius : {0.5F, 2.5F})
        digest.add(lumiInpaintGetSize(mask.data(), mask.step(), c.size, radius, lumInpaintFront, 3,
                                      &stateSize, &bufferSize));
}

const RowFile file("distance", [] {
    row("lumiDistanceTransform_3x3_8u_C1R", chamfer<Lum8u, Lum32s>(lumiDistanceTransform_3x3_8u_C1R));
    row("lumiDistanceTransform_3x3_8u16u_C1R", chamfer<Lum16u, Lum32s>(lumiDistanceTransform_3x3_8u16u_C1R));
    row("lumiDistanceTransform_3x3_8u32f_C1R", chamfer<Lum32f, Lum32f>(lumiDistanceTransform_3x3_8u32f_C1R));
    row("lumiDistanceTransform_5x5_8u_C1R", chamfer<Lum8u, Lum32s>(lumiDistanceTransform_5x5_8u_C1R));
    row("lumiDistanceTransform_5x5_8u16u_C1R", chamfer<Lum16u, Lum32s>(lumiDistanceTransform_5x5_8u16u_C1R));
    row("lumiDistanceTransform_5x5_8u32f_C1R", chamfer<Lum32f, Lum32f>(lumiDistanceTransform_5x5_8u32f_C1R));
    row("lumiDistanceTransform_3x3_8u_C1IR", chamferInPlace(lumiDistanceTransform_3x3_8u_C1IR));
    row("lumiDistanceTransform_5x5_8u_C1IR", chamferInPlace(lumiDistanceTransform_5x5_8u_C1IR));
    row("lumiGetDistanceTransformMask_32s", standardLengths<Lum32s>(lumiGetDistanceTransformMask_32s));
    row("lumiGetDistanceTransformMask_32f", standardLengths<Lum32f>(lumiGetDistanceTransformMask_32f));
    row("lumiGetDistanceTransformMask",
        standardLengths<Lum32f>([](Lum32s kernelSize, Lum32s norm, Lum32f* lengths) {
            return lumiGetDistanceTransformMask(10 * kernelSize + norm, lengths);
        }));
    row("lumiTrueDistanceTransform_8u32f_C1R", trueDistance);
    row("lumiTrueDistanceTransformGetBufferSize_8u32f_C1R", [](Digest& digest, const Case& c) {
        sizeOfQuery(digest, c, lumiTrueDistanceTransformGetBufferSize_8u32f_C1R);
    });
    row("lumiFastMarching_8u32f_C1R", fastMarching);
    row("lumiFastMarchingGetBufferSize_8u32f_C1R", [](Digest& digest, const Case& c) {
        sizeOfQuery(digest, c, lumiFastMarchingGetBufferSize_8u32f_C1R);
    });
    row("lumiInpaintGetSize", inpaintSizes);
    row("lumiInpaintInit_8u_C1R", inpaintInit<1>);
    row("lumiInpaintInit_8u_C3R", inpaintInit<3>);
    row("lumiInpaint_8u_C1R", inpaint<1>);
    row("lumiInpaint_8u_C3R", inpaint<3>);
});

} // namespace
} // namespace digest

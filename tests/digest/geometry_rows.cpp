#include "digest/digest.h"

namespace digest {
namespace {

using Row = std::function<void(Digest&, const Case&)>;

void undistortSize(Digest& digest, const Case& c) {
    Lum32s bytes = 0;
    digest.add(lumiUndistortGetSize(c.size, &bytes));
    digest.add(bytes);
}

/// A camera that sees the region: its focal lengths and centre.
struct Camera {
    float fx, fy, cx, cy;

    explicit Camera(LumSize size)
        : fx(0.9F * static_cast<float>(size.width)),
          fy(0.8F * static_cast<float>(size.width)),
          cx(0.5F * static_cast<float>(size.width)),
          cy(0.45F * static_cast<float>(size.height)) {}
};

Memory bufferFor(LumSize size) {
    Lum32s bytes = 0;
    lumiUndistortGetSize(size, &bytes);
    return Memory(bytes);
}

template <class T, class Member> Row undistorted(Member member, int channels) {
    return [=](Digest& digest, const Case& c) {
        Picture<T> src(c.size, channels, c.offset);
        src.fill(c.seed);
        const Camera camera(c.size);
        for (const float k1 : {-0.2F, 0.0F, 0.15F}) {
            Memory buffer = bufferFor(c.size);
            Picture<T> dst(c.size, channels, c.offset);
            dst.clear();
            digest.add(call(member, src, dst, c.size, camera.fx, camera.fy, camera.cx, camera.cy, k1, 0.02F,
                            buffer.as<Lum8u>()));
            dst.addTo(digest);
        }
    };
}

void undistortMap(Digest& digest, const Case& c) {
    Picture<Lum32f> xMap(c.size, 1, c.offset), yMap(c.size, 1, c.offset);
    const Camera camera(c.size);
    Memory buffer = bufferFor(c.size);
    digest.add(call(lumiCreateMapCameraUndistort_32f_C1R, xMap, yMap, c.size, camera.fx, camera.fy, camera.cx,
                    camera.cy, -0.2F, 0.02F, 0.001F, -0.002F, buffer.as<Lum8u>()));
    xMap.addTo(digest);
    yMap.addTo(digest);
}

template <class T, class Member> Row sampled(Member member, int channels) {
    return [=](Digest& digest, const Case& c) {
        Picture<T> src(c.size, channels, c.offset);
        src.fill(c.seed);
        const LumPoint first{0, c.size.height - 1};
        const LumPoint last{c.size.width - 1, c.size.height / 3};
        const int longest = c.size.width > c.size.height ? c.size.width : c.size.height;
        Picture<T> line({longest, 1}, channels);
        line.clear();
        digest.add(call(member, src, c.size, line.data(), first, last));
        line.addTo(digest);
    };
}

const RowFile file("geometry", [] {
    row("lumiUndistortGetSize", undistortSize);
    row("lumiCreateMapCameraUndistort_32f_C1R", undistortMap);
    row("lumiUndistortRadial_8u_C1R", undistorted<Lum8u>(lumiUndistortRadial_8u_C1R, 1));
    row("lumiSampleLine_8u_C1R", sampled<Lum8u>(lumiSampleLine_8u_C1R, 1));
    row("lumiUndistortRadial_8u_C3R", undistorted<Lum8u>(lumiUndistortRadial_8u_C3R, 3));
    row("lumiSampleLine_8u_C3R", sampled<Lum8u>(lumiSampleLine_8u_C3R, 3));
    row("lumiUndistortRadial_16u_C1R", undistorted<Lum16u>(lumiUndistortRadial_16u_C1R, 1));
    row("lumiSampleLine_16u_C1R", sampled<Lum16u>(lumiSampleLine_16u_C1R, 1));
    row("lumiUndistortRadial_16u_C3R", undistorted<Lum16u>(lumiUndistortRadial_16u_C3R, 3));
    row("lumiSampleLine_16u_C3R", sampled<Lum16u>(lumiSampleLine_16u_C3R, 3));
    row("lumiUndistortRadial_32f_C1R", undistorted<Lum32f>(lumiUndistortRadial_32f_C1R, 1));
    row("lumiSampleLine_32f_C1R", sampled<Lum32f>(lumiSampleLine_32f_C1R, 1));
    row("lumiUndistortRadial_32f_C3R", undistorted<Lum32f>(lumiUndistortRadial_32f_C3R, 3));
    row("lumiSampleLine_32f_C3R", sampled<Lum32f>(lumiSampleLine_32f_C3R, 3));
});

} // namespace
} // namespace digest

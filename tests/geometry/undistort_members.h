// The corrections of a lens under test: members by element type and channels, and the call for maps, all called with
// one description of a lens.
#pragma once

#include <cstddef>
#include <gtest/gtest.h>

#include "kernels/geometry/undistort.h"
#include "lumcv.h"
#include "support/guarded_image.h"
#include "support/status_checks.h"

namespace lenses {

/// What a call takes of a lens.
struct Lens {
    float fx = 100;
    float fy = 90;
    float cx = 20;
    float cy = 10;
    float k1 = 0;
    float k2 = 0;
    float p1 = 0;
    float p2 = 0;

    lum::kernels::RadialModel radial() const { return {fx, fy, cx, cy, k1, k2}; }
};

/// The arguments of a correction.
template <class T> struct Call {
    const T* src;
    int srcStep;
    T* dst;
    int dstStep;
    LumSize size;
    Lens lens;
    Lum8u* buffer = nullptr;
};

/// One member of the correction: its elements, their channels and its call.
template <class T, int channels, auto member> struct Member {
    using Element = T;
    static constexpr int count = channels;

    static LumStatus call(const Call<T>& c) {
        return member(c.src, c.srcStep, c.dst, c.dstStep, c.size, c.lens.fx, c.lens.fy, c.lens.cx, c.lens.cy,
                      c.lens.k1, c.lens.k2, c.buffer);
    }
    static LumStatus run(const support::GuardedImage<T>& src, support::GuardedImage<T>& dst, const Lens& lens,
                         Lum8u* buffer = nullptr) {
        return call({src.data(), src.step(), dst.data(), dst.step(), src.size(), lens, buffer});
    }
};

using Undistort8u = Member<Lum8u, 1, lumiUndistortRadial_8u_C1R>;
using Undistort16u = Member<Lum16u, 1, lumiUndistortRadial_16u_C1R>;
using Undistort32f = Member<Lum32f, 1, lumiUndistortRadial_32f_C1R>;
using Members = testing::Types<Undistort8u, Member<Lum8u, 3, lumiUndistortRadial_8u_C3R>, Undistort16u,
                               Member<Lum16u, 3, lumiUndistortRadial_16u_C3R>, Undistort32f,
                               Member<Lum32f, 3, lumiUndistortRadial_32f_C3R>>;

inline std::size_t bufferSize(LumSize size) {
    Lum32s bytes = 0;
    EXPECT_STATUS(lumStatusOk, lumiUndistortGetSize(size, &bytes));
    return static_cast<std::size_t>(bytes);
}

/// The arguments of the call for maps.
struct MapCall {
    Lum32f* x;
    int xStep;
    Lum32f* y;
    int yStep;
    LumSize size;
    Lens lens;
    Lum8u* buffer = nullptr;
};

inline LumStatus maps(const MapCall& c) {
    return lumiCreateMapCameraUndistort_32f_C1R(c.x, c.xStep, c.y, c.yStep, c.size, c.lens.fx, c.lens.fy,
                                                c.lens.cx, c.lens.cy, c.lens.k1, c.lens.k2, c.lens.p1,
                                                c.lens.p2, c.buffer);
}
inline LumStatus maps(support::GuardedImage<Lum32f>& x, support::GuardedImage<Lum32f>& y, const Lens& lens,
                      Lum8u* buffer = nullptr) {
    return maps({x.data(), x.step(), y.data(), y.step(), x.size(), lens, buffer});
}

} // namespace lenses

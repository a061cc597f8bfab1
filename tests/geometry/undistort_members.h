// The corrections of a lens under test: members by element type and channels, and the call for maps, all called with
// one description of a lens.
#pragma once

#include <cstddef>
#include <gtest/gtest.h>

#include "kernels/geometry/undistort.h"
#include "lumcv.h"
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

/// One member of the correction: its elements, their channels and its call.
template <class T, int channels, auto member> struct Member {
    using Element = T;
    static constexpr int count = channels;
    static LumStatus call(const T* src, int srcStep, T* dst, int dstStep, LumSize size, const Lens& lens,
                          Lum8u* buffer) {
        return member(src, srcStep, dst, dstStep, size, lens.fx, lens.fy, lens.cx, lens.cy, lens.k1, lens.k2,
                      buffer);
    }
};

using Undistort16u = Member<Lum16u, 1, lumiUndistortRadial_16u_C1R>;
using Undistort32f = Member<Lum32f, 1, lumiUndistortRadial_32f_C1R>;
using Members =
    testing::Types<Member<Lum8u, 1, lumiUndistortRadial_8u_C1R>, Member<Lum8u, 3, lumiUndistortRadial_8u_C3R>,
                   Undistort16u, Member<Lum16u, 3, lumiUndistortRadial_16u_C3R>, Undistort32f,
                   Member<Lum32f, 3, lumiUndistortRadial_32f_C3R>>;

inline std::size_t bufferSize(LumSize size) {
    Lum32s bytes = 0;
    EXPECT_STATUS(lumStatusOk, lumiUndistortGetSize(size, &bytes));
    return static_cast<std::size_t>(bytes);
}

inline LumStatus maps(Lum32f* x, int xStep, Lum32f* y, int yStep, LumSize size, const Lens& lens,
                      Lum8u* buffer) {
    return lumiCreateMapCameraUndistort_32f_C1R(x, xStep, y, yStep, size, lens.fx, lens.fy, lens.cx, lens.cy,
                                                lens.k1, lens.k2, lens.p1, lens.p2, buffer);
}

} // namespace lenses

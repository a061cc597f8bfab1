#include "geometry/undistort.h"

#include <bit>

#include "frame/arena.h"
#include "frame/check.h"
#include "frame/image.h"
#include "frame/instances.h"
#include "frame/rounding_mode.h"
#include "kernels/geometry/undistort.h"

namespace lum {
namespace {

using kernels::ComputedColumns;
using kernels::PreparedColumns;
using kernels::RadialModel;
using kernels::TangentialModel;

// Six terms a column are included in the size of the buffer; a model uses fewer.
constexpr unsigned bytesOfColumn = 6 * sizeof(float);
constexpr unsigned bufferAlignment = 32;
static_assert(RadialModel::terms * sizeof(float) <= bytesOfColumn);
static_assert(TangentialModel::terms * sizeof(float) <= bytesOfColumn);

/// Whether the value is 0 of either sign, by its bits: a caller may have denormals compare as zeros.
bool isZero(float value) { return std::bit_cast<unsigned>(value) << 1 == 0; }

LumStatus noFocalLength(float fx, float fy) {
    return errorIf(isZero(fx) || isZero(fy), lumStatusBadArgument);
}

/// Runs the work with the model's columns: prepared where there is a buffer for them, else computed as they
/// come.
template <class Model, class Work>
void withColumns(const Model& model, int width, Lum8u* buffer, const Work& work) {
    if (buffer == nullptr) {
        work(ComputedColumns<Model>{model});
    } else {
        auto* terms = Arena(buffer).align(bufferAlignment).template allocate<float>();
        work(PreparedColumns<Model>(model, width, terms));
    }
}

/// Maps of at least this many pixels are streamed.
constexpr std::int64_t pixelsOfLargeMap = 0x20000;

/// The optical centre, focal lengths and radial coefficients as a call gives them.
struct Lens {
    Lum32f fx, fy, cx, cy, k1, k2;

    RadialModel radial() const { return RadialModel(fx, fy, cx, cy, k1, k2); }
};

template <class Model>
void fillMaps(const Model& model, Image<Lum32f> xMap, Image<Lum32f> yMap, LumSize roiSize, Lum8u* buffer) {
    const bool large = std::int64_t{roiSize.width} * roiSize.height >= pixelsOfLargeMap;
    withColumns(model, roiSize.width, buffer, [&](const auto& columns) {
        kernels::map(model, columns, xMap, yMap, roiSize, large ? Stores::streaming : Stores::ordinary);
    });
}

template <class T, int channels>
[[gnu::noinline]] void undistorted(const Lens& lens, Image<const T> src, Image<T> dst, LumSize roiSize,
                                   Lum8u* buffer) {
    const RadialModel model = lens.radial();
    withColumns(model, roiSize.width, buffer, [&](const auto& columns) {
        kernels::undistort<T, channels>(model, columns, src, dst, roiSize);
    });
}

[[gnu::noinline]] void filledMaps(const Lens& lens, Lum32f p1, Lum32f p2, Image<Lum32f> xMap,
                                  Image<Lum32f> yMap, LumSize roiSize, Lum8u* buffer) {
    if (isZero(p1) && isZero(p2))
        fillMaps(lens.radial(), xMap, yMap, roiSize, buffer);
    else
        fillMaps(TangentialModel{lens.fx, lens.fy, lens.cx, lens.cy, lens.k1, lens.k2, p1, p2}, xMap, yMap,
                 roiSize, buffer);
}

} // namespace

LumStatus undistortGetSize(LumSize roiSize, Lum32s* size) {
    if (auto s = firstFailure(checkNotNull(size), checkSize(roiSize))) return s;
    const unsigned columns = roundedUp(static_cast<unsigned>(roiSize.width), 4U);
    *size = static_cast<Lum32s>(columns * bytesOfColumn + bufferAlignment);
    return lumStatusOk;
}

template <class T, int channels>
LumStatus undistortRadial(const T* src, int srcStep, T* dst, int dstStep, LumSize roiSize, Lum32f fx,
                          Lum32f fy, Lum32f cx, Lum32f cy, Lum32f k1, Lum32f k2, Lum8u* buffer) {
    if (auto s = firstFailure(checkNotNull(src, dst), checkSize(roiSize),
                              checkStep(rowBytes<T>(roiSize.width, channels), srcStep, dstStep),
                              checkStepAlignment<T>(srcStep, dstStep), noFocalLength(fx, fy)))
        return s;
    const NearestRounding rounding;
    undistorted<T, channels>({fx, fy, cx, cy, k1, k2}, {src, srcStep}, {dst, dstStep}, roiSize, buffer);
    return lumStatusOk;
}

LumStatus createMapCameraUndistort(Lum32f* xMap, int xStep, Lum32f* yMap, int yStep, LumSize roiSize,
                                   Lum32f fx, Lum32f fy, Lum32f cx, Lum32f cy, Lum32f k1, Lum32f k2,
                                   Lum32f p1, Lum32f p2, Lum8u* buffer) {
    if (auto s = firstFailure(checkNotNull(xMap, yMap), checkSize(roiSize),
                              checkStep(rowBytes<Lum32f>(roiSize.width), xStep, yStep),
                              checkStepAlignment<Lum32f>(xStep, yStep), noFocalLength(fx, fy)))
        return s;
    const NearestRounding rounding;
    filledMaps({fx, fy, cx, cy, k1, k2}, p1, p2, {xMap, xStep}, {yMap, yStep}, roiSize, buffer);
    return lumStatusOk;
}

LUM_INSTANCES(undistortRadial, (Lum8u, 1), (Lum8u, 3), (Lum16u, 1), (Lum16u, 3), (Lum32f, 1), (Lum32f, 3));

} // namespace lum

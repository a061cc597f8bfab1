// Corner measures of the scene, their peaks, and features along lines.
#include <memory>

#include "rows.h"

namespace bench {
namespace {

template <class T, class Call, class Query>
Setup eigen(Call call, Query query, int floatsPerPixel, int kernelKind, int aperture, int block) {
    return [=] {
        struct Run {
            Plane<T> src;
            Plane<Lum32f> dst;
            std::vector<Lum8u> buffer;
        };
        auto run = std::make_shared<Run>(sceneAs<T>(), Plane<Lum32f>(floatsPerPixel));
        Lum32s bytes = 0;
        query(size, aperture, block, &bytes);
        run->buffer.resize(bytes);
        return [=] {
            call(run->src.data, run->src.step(), run->dst.data, run->dst.step(), size, kernelKind, aperture,
                 block, run->buffer.data());
        };
    };
}

template <class T> struct Harris {
    Plane<T> src = sceneAs<T>();
    Plane<Lum32f> dst;
    std::vector<Lum8u> buffer;

    Harris(LumMaskSize mask, int window, LumDataType type) {
        Lum32s bytes = 0;
        lumiHarrisCornerGetBufferSize(size, mask, window, type, 1, &bytes);
        buffer.resize(bytes);
    }
};

template <class T, class Call>
Setup harris(Call call, LumDataType type, int filterKind, LumMaskSize mask, int window) {
    return [=] {
        auto run = std::make_shared<Harris<T>>(mask, window, type);
        return [=] {
            call(run->src.data, run->src.step(), run->dst.data, run->dst.step(), size, filterKind, mask,
                 window, 0.04F, 1.0F, lumBorderReplicate, T{0}, run->buffer.data());
        };
    };
}

Setup peaks(LumSpatialNorm norm) {
    return [=] {
        struct Run {
            Harris<Lum8u> harris{lumMask3x3, 3, lumType8u};
            std::vector<LumPoint> places = std::vector<LumPoint>(pixels);
            std::vector<Lum8u> buffer;
        };
        auto run = std::make_shared<Run>();
        Harris<Lum8u>& scores = run->harris;
        lumiHarrisCorner_8u32f_C1R(scores.src.data, scores.src.step(), scores.dst.data, scores.dst.step(),
                                   size, 2, lumMask3x3, 3, 0.04F, 1e-8F, lumBorderReplicate, 0,
                                   scores.buffer.data());
        Lum32s bytes = 0;
        lumiFindPeaks3x3GetBufferSize_32f_C1R(width, &bytes);
        run->buffer.resize(bytes);
        return [=] {
            int count = 0;
            lumiFindPeaks3x3_32f_C1R(run->harris.dst.data, run->harris.dst.step(), size, 1,
                                     run->places.data(), pixels, &count, norm, 1, run->buffer.data());
        };
    };
}

Setup lineSuppression() {
    return [] {
        struct Run {
            Plane<Lum8u> feature = mask(10);
            Plane<Lum8u> dst;
            std::vector<Lum8u> buffer;
        };
        auto run = std::make_shared<Run>();
        Lum32s bytes = 0;
        lumiLineSuppressionGetBufferSize(size, lumMask3x3, 3, lumType8u, 1, &bytes);
        run->buffer.resize(bytes);
        return [run] {
            lumiLineSuppression_8u_C1R(scene().data, scene().step(), run->feature.data, run->feature.step(),
                                       run->dst.data, run->dst.step(), size, 2, lumMask3x3, 3, 25,
                                       lumBorderReplicate, 0, run->buffer.data());
        };
    };
}

const RowFile file([] {
    constexpr auto smaller = lumiMinEigenVal_8u32f_C1R;
    constexpr auto systems = lumiEigenValsVecs_8u32f_C1R;
    constexpr auto query = lumiMinEigenValGetBufferSize_8u32f_C1R;
    constexpr auto queryOfFloats = lumiMinEigenValGetBufferSize_32f_C1R;
    row("MinEigenVal_8u32f_b3_a3", eigen<Lum8u>(smaller, query, 1, 0, 3, 3));
    row("MinEigenVal_8u32f_b5_a5", eigen<Lum8u>(smaller, query, 1, 0, 5, 5));
    row("MinEigenVal_8u32f_b3_scharr", eigen<Lum8u>(smaller, query, 1, 1, 3, 3));
    row("MinEigenVal_32f_b3_a3", eigen<Lum32f>(lumiMinEigenVal_32f_C1R, queryOfFloats, 1, 0, 3, 3));
    row("EigenValsVecs_8u32f_b3_a3", eigen<Lum8u>(systems, query, 6, 0, 3, 3));
    row("EigenValsVecs_32f_b3_a3", eigen<Lum32f>(lumiEigenValsVecs_32f_C1R, queryOfFloats, 6, 0, 3, 3));
    row("HarrisCorner_8u32f_3_3", harris<Lum8u>(lumiHarrisCorner_8u32f_C1R, lumType8u, 2, lumMask3x3, 3));
    row("HarrisCorner_8u32f_5_7", harris<Lum8u>(lumiHarrisCorner_8u32f_C1R, lumType8u, 2, lumMask5x5, 7));
    row("HarrisCorner_32f_3_3", harris<Lum32f>(lumiHarrisCorner_32f_C1R, lumType32f, 2, lumMask3x3, 3));
    row("FindPeaks3x3_32f_8", peaks(lumSpatialNormInf));
    row("FindPeaks3x3_32f_4", peaks(lumSpatialNormL1));
    row("LineSuppression_8u_3_3", lineSuppression());
});

} // namespace
} // namespace bench

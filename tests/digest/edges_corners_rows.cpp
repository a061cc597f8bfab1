#include <algorithm>

#include "digest/digest.h"

namespace digest {
namespace {

template <class Query, class... Arguments>
Memory buffer(Digest& digest, Query query, Arguments... arguments) {
    Lum32s bytes = 0;
    digest.add(query(arguments..., &bytes));
    digest.add(bytes);
    return Memory(bytes);
}

template <class T, class Member> std::function<void(Digest&, const Case&)> canny(Member member) {
    return [=](Digest& digest, const Case& c) {
        Picture<T> dx(c.size, 1, c.offset), dy(c.size, 1, c.offset);
        Picture<Lum8u> dst(c.size);
        dx.fill(c.seed);
        dy.fill(c.seed + 100);
        auto work = buffer(digest, lumiCannyGetSize, c.size);
        for (float low : {0.0F, 60.0F, 9000.0F}) {
            digest.add(member(dx.data(), dx.step(), dy.data(), dy.step(), dst.data(), dst.step(), c.size, low,
                              2 * low, work.data()));
            dst.addTo(digest);
        }
    };
}

template <class T, class Member> std::function<void(Digest&, const Case&)> cannyOfNorm(Member member) {
    return [=](Digest& digest, const Case& c) {
        const LumSizeL size{c.size.width, c.size.height};
        Picture<T> dx(c.size, 1, c.offset), dy(c.size, 1, c.offset);
        Picture<Lum8u> dst(c.size);
        dx.fill(c.seed);
        dy.fill(c.seed + 100);
        auto work = buffer(digest, lumiCannyGetSize_L, size);
        for (LumNormKind norm : {lumNormL1, lumNormL2})
            for (float low : {0.0F, 60.0F, 9000.0F}) {
                digest.add(member(dx.data(), dx.step(), dy.data(), dy.step(), dst.data(), dst.step(), size,
                                  low, 2 * low, norm, work.data()));
                dst.addTo(digest);
            }
    };
}

void cannyBorder(Digest& digest, const Case& c) {
    Picture<Lum8u> src(c.size, 1, c.offset, 2), dst(c.size);
    src.fill(c.seed);
    for (LumMaskSize mask : {lumMask3x3, lumMask5x5})
        for (int kind : {2, 5})
            for (LumNormKind norm : {lumNormL1, lumNormL2})
                for (LumBorderType border : {lumBorderReplicate, lumBorderConstant, lumBorderInMemory}) {
                    auto work =
                        buffer(digest, lumiCannyBorderGetSize, c.size, kind, mask, LumDataType{lumType8u});
                    digest.add(lumiCannyBorder_8u_C1R(src.data(), src.step(), dst.data(), dst.step(), c.size,
                                                      kind, mask, border, 99, 100, 400, norm, work.data()));
                    dst.addTo(digest);
                }
}

template <class T, class Member, class Query>
std::function<void(Digest&, const Case&)> eigen(Member member, Query query, int floats) {
    return [=](Digest& digest, const Case& c) {
        Picture<T> src(c.size, 1, c.offset);
        Picture<Lum32f> dst(c.size, floats);
        src.fill(c.seed);
        for (int kind : {0, 1, 2})
            for (int aperture : {3, 5})
                for (int block : {3, 5}) {
                    auto work = buffer(digest, query, c.size, aperture, block);
                    digest.add(member(src.data(), src.step(), dst.data(), dst.step(), c.size, kind, aperture,
                                      block, work.data()));
                    dst.addTo(digest);
                }
    };
}

template <class T, class Member, class Query>
std::function<void(Digest&, const Case&)> eigenBorder(Member member, Query query, int floats) {
    return [=](Digest& digest, const Case& c) {
        Picture<T> src(c.size, 1, c.offset, 1);
        Picture<Lum32f> dst(c.size, floats);
        src.fill(c.seed);
        auto work = buffer(digest, query, c.size, 3, 3);
        for (LumBorderType border : std::initializer_list<LumBorderType>{
                 lumBorderReplicate, lumBorderMirror, lumBorderDefaultValue, lumBorderConstant,
                 lumBorderInMemory, lumBorderMirror | lumBorderInMemoryTop,
                 lumBorderConstant | lumBorderFirstStageInMemoryLeft}) {
            digest.add(member(src.data(), src.step(), dst.data(), dst.step(), c.size, 0, 3, 3, border, T{50},
                              work.data()));
            dst.addTo(digest);
        }
    };
}

template <class T, class Member>
std::function<void(Digest&, const Case&)> harris(Member member, LumDataType type) {
    return [=](Digest& digest, const Case& c) {
        Picture<T> src(c.size, 1, c.offset, 5);
        Picture<Lum32f> dst(c.size);
        src.fill(c.seed);
        for (int kind : {2, 5, 8})
            for (LumMaskSize mask : {lumMask3x3, lumMask5x5})
                for (int window : {1, 3, 4})
                    for (LumBorderType border :
                         {lumBorderReplicate, lumBorderMirror, lumBorderConstant, lumBorderInMemory}) {
                        auto work =
                            buffer(digest, lumiHarrisCornerGetBufferSize, c.size, mask, window, type, 1);
                        digest.add(member(src.data(), src.step(), dst.data(), dst.step(), c.size, kind, mask,
                                          window, 0.04F, 1e-6F, border, T{50}, work.data()));
                        dst.addTo(digest);
                    }
    };
}

void lineSuppression(Digest& digest, const Case& c) {
    Picture<Lum8u> src(c.size, 1, c.offset, 5), feature(c.size), dst(c.size);
    src.fill(c.seed);
    feature.fill(c.seed + 100);
    for (int kind : {2, 5, 8})
        for (int window : {1, 3, 4})
            for (LumBorderType border : {lumBorderReplicate, lumBorderConstant, lumBorderInMemory}) {
                auto work = buffer(digest, lumiLineSuppressionGetBufferSize, c.size, LumMaskSize{lumMask3x3},
                                   window, LumDataType{lumType8u}, 1);
                digest.add(lumiLineSuppression_8u_C1R(src.data(), src.step(), feature.data(), feature.step(),
                                                      dst.data(), dst.step(), c.size, kind, lumMask3x3,
                                                      window, 60, border, 50, work.data()));
                dst.addTo(digest);
            }
}

template <class T, class Member, class Query>
std::function<void(Digest&, const Case&)> peaks(Member member, Query query, T threshold) {
    return [=](Digest& digest, const Case& c) {
        Picture<T> src(c.size, 1, c.offset);
        src.fill(c.seed);
        auto work = buffer(digest, query, c.size.width);
        std::vector<LumPoint> places(static_cast<std::size_t>(c.size.width) * c.size.height);
        for (LumSpatialNorm norm : {lumSpatialNormInf, lumSpatialNormL1})
            for (int most : {7, static_cast<int>(places.size())}) {
                int count = 0;
                digest.add(member(src.data(), src.step(), c.size, threshold, places.data(),
                                  std::min(most, static_cast<int>(places.size())), &count, norm, 1,
                                  work.data()));
                for (int i = 0; i < count; ++i) {
                    digest.add(places[i].x);
                    digest.add(places[i].y);
                }
            }
    };
}

template <class Query, class... Arguments>
std::function<void(Digest&, const Case&)> query(Query call, Arguments... arguments) {
    return [=](Digest& digest, const Case& c) { buffer(digest, call, c.size, arguments...); };
}

const RowFile file("edges_corners", [] {
    row("lumiCannyGetSize", query(lumiCannyGetSize));
    row("lumiCannyGetSize_L", [](Digest& digest, const Case& c) {
        buffer(digest, lumiCannyGetSize_L, LumSizeL{c.size.width, c.size.height});
    });
    row("lumiCanny_16s8u_C1R", canny<Lum16s>(lumiCanny_16s8u_C1R));
    row("lumiCanny_32f8u_C1R", canny<Lum32f>(lumiCanny_32f8u_C1R));
    row("lumiCanny_16s8u_C1R_L", cannyOfNorm<Lum16s>(lumiCanny_16s8u_C1R_L));
    row("lumiCanny_32f8u_C1R_L", cannyOfNorm<Lum32f>(lumiCanny_32f8u_C1R_L));
    row("lumiCannyBorderGetSize",
        query(lumiCannyBorderGetSize, 2, LumMaskSize{lumMask5x5}, LumDataType{lumType8u}));
    row("lumiCannyBorder_8u_C1R", cannyBorder);

    constexpr auto size8u = lumiMinEigenValGetBufferSize_8u32f_C1R;
    constexpr auto size32f = lumiMinEigenValGetBufferSize_32f_C1R;
    row("lumiMinEigenValGetBufferSize_8u32f_C1R", query(size8u, 3, 5));
    row("lumiMinEigenValGetBufferSize_32f_C1R", query(size32f, 3, 5));
    row("lumiEigenValsVecsGetBufferSize_8u32f_C1R", query(lumiEigenValsVecsGetBufferSize_8u32f_C1R, 5, 3));
    row("lumiEigenValsVecsGetBufferSize_32f_C1R", query(lumiEigenValsVecsGetBufferSize_32f_C1R, 5, 3));
    row("lumiMinEigenVal_8u32f_C1R", eigen<Lum8u>(lumiMinEigenVal_8u32f_C1R, size8u, 1));
    row("lumiMinEigenVal_32f_C1R", eigen<Lum32f>(lumiMinEigenVal_32f_C1R, size32f, 1));
    row("lumiMinEigenValBorder_8u32f_C1R", eigenBorder<Lum8u>(lumiMinEigenValBorder_8u32f_C1R, size8u, 1));
    row("lumiMinEigenValBorder_32f_C1R", eigenBorder<Lum32f>(lumiMinEigenValBorder_32f_C1R, size32f, 1));
    row("lumiEigenValsVecs_8u32f_C1R", eigen<Lum8u>(lumiEigenValsVecs_8u32f_C1R, size8u, 6));
    row("lumiEigenValsVecs_32f_C1R", eigen<Lum32f>(lumiEigenValsVecs_32f_C1R, size32f, 6));
    row("lumiEigenValsVecsBorder_8u32f_C1R",
        eigenBorder<Lum8u>(lumiEigenValsVecsBorder_8u32f_C1R, size8u, 6));
    row("lumiEigenValsVecsBorder_32f_C1R", eigenBorder<Lum32f>(lumiEigenValsVecsBorder_32f_C1R, size32f, 6));
    row("lumiHarrisCornerGetBufferSize",
        query(lumiHarrisCornerGetBufferSize, LumMaskSize{lumMask5x5}, 4, LumDataType{lumType8u}, 1));
    row("lumiHarrisCorner_8u32f_C1R", harris<Lum8u>(lumiHarrisCorner_8u32f_C1R, lumType8u));
    row("lumiHarrisCorner_32f_C1R", harris<Lum32f>(lumiHarrisCorner_32f_C1R, lumType32f));

    row("lumiFindPeaks3x3GetBufferSize_32f_C1R", [](Digest& digest, const Case& c) {
        buffer(digest, lumiFindPeaks3x3GetBufferSize_32f_C1R, c.size.width);
    });
    row("lumiFindPeaks3x3GetBufferSize_32s_C1R", [](Digest& digest, const Case& c) {
        buffer(digest, lumiFindPeaks3x3GetBufferSize_32s_C1R, c.size.width);
    });
    row("lumiFindPeaks3x3_32f_C1R",
        peaks<Lum32f>(lumiFindPeaks3x3_32f_C1R, lumiFindPeaks3x3GetBufferSize_32f_C1R, 20));
    row("lumiFindPeaks3x3_32s_C1R",
        peaks<Lum32s>(lumiFindPeaks3x3_32s_C1R, lumiFindPeaks3x3GetBufferSize_32s_C1R, 5000));
    row("lumiLineSuppressionGetBufferSize",
        query(lumiLineSuppressionGetBufferSize, LumMaskSize{lumMask5x5}, 4, LumDataType{lumType8u}, 1));
    row("lumiLineSuppression_8u_C1R", lineSuppression);
});

} // namespace
} // namespace digest

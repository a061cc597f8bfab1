#include "digest/digest.h"

namespace digest {
namespace {

using Row = std::function<void(Digest&, const Case&)>;

constexpr LumBorderType borders[] = {lumBorderReplicate, lumBorderMirror, lumBorderConstant,
                                     lumBorderInMemory};
constexpr int kernelSize = 3;
template <class K> constexpr K kernel[kernelSize] = {1, 3, 1};

template <class Query> Row size(Query query) {
    return [=](Digest& digest, const Case& c) {
        Lum32s bytes = 0;
        digest.add(query(c.size, 5, &bytes));
        digest.add(bytes);
    };
}

template <class Query> Lum32s bytesOf(Query query, LumSize size) {
    Lum32s bytes = 0;
    query(size, kernelSize, &bytes);
    return bytes;
}

/// The divisor is the last argument before the buffer, where there is one.
template <class S, class D, class K, int channels, class Query, class Member, class... Divisor>
Row rowStage(Query query, Member member, Divisor... divisor) {
    return [=](Digest& digest, const Case& c) {
        static constexpr S values[3] = {77, 5, 100};
        Picture<S> src(c.size, channels, c.offset, 1);
        src.fill(c.seed);
        for (const LumBorderType border : borders) {
            Picture<D> dst(c.size, channels, c.offset);
            std::vector<D*> dstRows;
            for (int y = 0; y < c.size.height; ++y) dstRows.push_back(dst.row(y));
            Memory buffer(bytesOf(query, c.size));
            const auto run = [&](auto value) {
                return call(member, src, dstRows.data(), c.size, kernel<K>, kernelSize, 1, border, value,
                            divisor..., buffer.as<Lum8u>());
            };
            if constexpr (channels == 1)
                digest.add(run(values[0]));
            else
                digest.add(run(values));
            dst.addTo(digest);
        }
    };
}

template <class S, class D, class K, int channels, class Query, class Member, class... Divisor>
Row columnStage(Query query, Member member, Divisor... divisor) {
    return [=](Digest& digest, const Case& c) {
        Picture<S> src({c.size.width, c.size.height + kernelSize - 1}, channels, c.offset);
        src.fill(c.seed);
        std::vector<const S*> srcRows;
        for (int y = 0; y < c.size.height + kernelSize - 1; ++y) srcRows.push_back(src.row(y));
        Picture<D> dst(c.size, channels, c.offset);
        Memory buffer(bytesOf(query, c.size));
        digest.add(
            call(member, srcRows.data(), dst, c.size, kernel<K>, kernelSize, divisor..., buffer.as<Lum8u>()));
        dst.addTo(digest);
    };
}

const RowFile file("pipeline", [] {
    row("lumiFilterRowBorderPipelineGetBufferSize_16s_C1R",
        size(lumiFilterRowBorderPipelineGetBufferSize_16s_C1R));
    row("lumiFilterRowBorderPipeline_16s_C1R",
        rowStage<Lum16s, Lum16s, Lum16s, 1>(lumiFilterRowBorderPipelineGetBufferSize_16s_C1R,
                                            lumiFilterRowBorderPipeline_16s_C1R, 5));
    row("lumiFilterRowBorderPipelineGetBufferSize_16s_C3R",
        size(lumiFilterRowBorderPipelineGetBufferSize_16s_C3R));
    row("lumiFilterRowBorderPipeline_16s_C3R",
        rowStage<Lum16s, Lum16s, Lum16s, 3>(lumiFilterRowBorderPipelineGetBufferSize_16s_C3R,
                                            lumiFilterRowBorderPipeline_16s_C3R, 5));
    row("lumiFilterRowBorderPipelineGetBufferSize_16u_C1R",
        size(lumiFilterRowBorderPipelineGetBufferSize_16u_C1R));
    row("lumiFilterRowBorderPipeline_16u_C1R",
        rowStage<Lum16u, Lum16u, Lum16u, 1>(lumiFilterRowBorderPipelineGetBufferSize_16u_C1R,
                                            lumiFilterRowBorderPipeline_16u_C1R, 5));
    row("lumiFilterRowBorderPipelineGetBufferSize_16u_C3R",
        size(lumiFilterRowBorderPipelineGetBufferSize_16u_C3R));
    row("lumiFilterRowBorderPipeline_16u_C3R",
        rowStage<Lum16u, Lum16u, Lum16u, 3>(lumiFilterRowBorderPipelineGetBufferSize_16u_C3R,
                                            lumiFilterRowBorderPipeline_16u_C3R, 5));
    row("lumiFilterRowBorderPipelineGetBufferSize_8u16s_C1R",
        size(lumiFilterRowBorderPipelineGetBufferSize_8u16s_C1R));
    row("lumiFilterRowBorderPipeline_8u16s_C1R",
        rowStage<Lum8u, Lum16s, Lum16s, 1>(lumiFilterRowBorderPipelineGetBufferSize_8u16s_C1R,
                                           lumiFilterRowBorderPipeline_8u16s_C1R, 5));
    row("lumiFilterRowBorderPipelineGetBufferSize_8u16s_C3R",
        size(lumiFilterRowBorderPipelineGetBufferSize_8u16s_C3R));
    row("lumiFilterRowBorderPipeline_8u16s_C3R",
        rowStage<Lum8u, Lum16s, Lum16s, 3>(lumiFilterRowBorderPipelineGetBufferSize_8u16s_C3R,
                                           lumiFilterRowBorderPipeline_8u16s_C3R, 5));
    row("lumiFilterRowBorderPipelineGetBufferSize_Low_16s_C1R",
        size(lumiFilterRowBorderPipelineGetBufferSize_Low_16s_C1R));
    row("lumiFilterRowBorderPipeline_Low_16s_C1R",
        rowStage<Lum16s, Lum16s, Lum16s, 1>(lumiFilterRowBorderPipelineGetBufferSize_Low_16s_C1R,
                                            lumiFilterRowBorderPipeline_Low_16s_C1R, 5));
    row("lumiFilterRowBorderPipelineGetBufferSize_Low_16s_C3R",
        size(lumiFilterRowBorderPipelineGetBufferSize_Low_16s_C3R));
    row("lumiFilterRowBorderPipeline_Low_16s_C3R",
        rowStage<Lum16s, Lum16s, Lum16s, 3>(lumiFilterRowBorderPipelineGetBufferSize_Low_16s_C3R,
                                            lumiFilterRowBorderPipeline_Low_16s_C3R, 5));
    row("lumiFilterRowBorderPipelineGetBufferSize_32f_C1R",
        size(lumiFilterRowBorderPipelineGetBufferSize_32f_C1R));
    row("lumiFilterRowBorderPipeline_32f_C1R",
        rowStage<Lum32f, Lum32f, Lum32f, 1>(lumiFilterRowBorderPipelineGetBufferSize_32f_C1R,
                                            lumiFilterRowBorderPipeline_32f_C1R));
    row("lumiFilterRowBorderPipelineGetBufferSize_32f_C3R",
        size(lumiFilterRowBorderPipelineGetBufferSize_32f_C3R));
    row("lumiFilterRowBorderPipeline_32f_C3R",
        rowStage<Lum32f, Lum32f, Lum32f, 3>(lumiFilterRowBorderPipelineGetBufferSize_32f_C3R,
                                            lumiFilterRowBorderPipeline_32f_C3R));
    row("lumiFilterColumnPipelineGetBufferSize_16s8s_C1R",
        size(lumiFilterColumnPipelineGetBufferSize_16s8s_C1R));
    row("lumiFilterColumnPipeline_16s8s_C1R",
        columnStage<Lum16s, Lum8s, Lum16s, 1>(lumiFilterColumnPipelineGetBufferSize_16s8s_C1R,
                                              lumiFilterColumnPipeline_16s8s_C1R, 5));
    row("lumiFilterColumnPipelineGetBufferSize_16s8s_C3R",
        size(lumiFilterColumnPipelineGetBufferSize_16s8s_C3R));
    row("lumiFilterColumnPipeline_16s8s_C3R",
        columnStage<Lum16s, Lum8s, Lum16s, 3>(lumiFilterColumnPipelineGetBufferSize_16s8s_C3R,
                                              lumiFilterColumnPipeline_16s8s_C3R, 5));
    row("lumiFilterColumnPipelineGetBufferSize_16s8u_C1R",
        size(lumiFilterColumnPipelineGetBufferSize_16s8u_C1R));
    row("lumiFilterColumnPipeline_16s8u_C1R",
        columnStage<Lum16s, Lum8u, Lum16s, 1>(lumiFilterColumnPipelineGetBufferSize_16s8u_C1R,
                                              lumiFilterColumnPipeline_16s8u_C1R, 5));
    row("lumiFilterColumnPipelineGetBufferSize_16s8u_C3R",
        size(lumiFilterColumnPipelineGetBufferSize_16s8u_C3R));
    row("lumiFilterColumnPipeline_16s8u_C3R",
        columnStage<Lum16s, Lum8u, Lum16s, 3>(lumiFilterColumnPipelineGetBufferSize_16s8u_C3R,
                                              lumiFilterColumnPipeline_16s8u_C3R, 5));
    row("lumiFilterColumnPipelineGetBufferSize_16s_C1R", size(lumiFilterColumnPipelineGetBufferSize_16s_C1R));
    row("lumiFilterColumnPipeline_16s_C1R",
        columnStage<Lum16s, Lum16s, Lum16s, 1>(lumiFilterColumnPipelineGetBufferSize_16s_C1R,
                                               lumiFilterColumnPipeline_16s_C1R, 5));
    row("lumiFilterColumnPipelineGetBufferSize_16s_C3R", size(lumiFilterColumnPipelineGetBufferSize_16s_C3R));
    row("lumiFilterColumnPipeline_16s_C3R",
        columnStage<Lum16s, Lum16s, Lum16s, 3>(lumiFilterColumnPipelineGetBufferSize_16s_C3R,
                                               lumiFilterColumnPipeline_16s_C3R, 5));
    row("lumiFilterColumnPipelineGetBufferSize_16u_C1R", size(lumiFilterColumnPipelineGetBufferSize_16u_C1R));
    row("lumiFilterColumnPipeline_16u_C1R",
        columnStage<Lum16u, Lum16u, Lum16u, 1>(lumiFilterColumnPipelineGetBufferSize_16u_C1R,
                                               lumiFilterColumnPipeline_16u_C1R, 5));
    row("lumiFilterColumnPipelineGetBufferSize_16u_C3R", size(lumiFilterColumnPipelineGetBufferSize_16u_C3R));
    row("lumiFilterColumnPipeline_16u_C3R",
        columnStage<Lum16u, Lum16u, Lum16u, 3>(lumiFilterColumnPipelineGetBufferSize_16u_C3R,
                                               lumiFilterColumnPipeline_16u_C3R, 5));
    row("lumiFilterColumnPipelineGetBufferSize_Low_16s_C1R",
        size(lumiFilterColumnPipelineGetBufferSize_Low_16s_C1R));
    row("lumiFilterColumnPipeline_Low_16s_C1R",
        columnStage<Lum16s, Lum16s, Lum16s, 1>(lumiFilterColumnPipelineGetBufferSize_Low_16s_C1R,
                                               lumiFilterColumnPipeline_Low_16s_C1R, 5));
    row("lumiFilterColumnPipelineGetBufferSize_Low_16s_C3R",
        size(lumiFilterColumnPipelineGetBufferSize_Low_16s_C3R));
    row("lumiFilterColumnPipeline_Low_16s_C3R",
        columnStage<Lum16s, Lum16s, Lum16s, 3>(lumiFilterColumnPipelineGetBufferSize_Low_16s_C3R,
                                               lumiFilterColumnPipeline_Low_16s_C3R, 5));
    row("lumiFilterColumnPipelineGetBufferSize_32f_C1R", size(lumiFilterColumnPipelineGetBufferSize_32f_C1R));
    row("lumiFilterColumnPipeline_32f_C1R",
        columnStage<Lum32f, Lum32f, Lum32f, 1>(lumiFilterColumnPipelineGetBufferSize_32f_C1R,
                                               lumiFilterColumnPipeline_32f_C1R));
    row("lumiFilterColumnPipelineGetBufferSize_32f_C3R", size(lumiFilterColumnPipelineGetBufferSize_32f_C3R));
    row("lumiFilterColumnPipeline_32f_C3R",
        columnStage<Lum32f, Lum32f, Lum32f, 3>(lumiFilterColumnPipelineGetBufferSize_32f_C3R,
                                               lumiFilterColumnPipeline_32f_C3R));
});

} // namespace
} // namespace digest

#include "rows.h"

#include <memory>
#include <numeric>

namespace bench {
namespace {

/// Taps that sum to about the divisor, binomial in shape, none zero.
template <class K> std::vector<K> smoothing(int taps, int& divisor) {
    std::vector<double> shape{1};
    while (static_cast<int>(shape.size()) < taps) {
        shape.push_back(0);
        for (std::size_t i = shape.size() - 1; i > 0; --i) shape[i] += shape[i - 1];
    }
    const double sum = std::accumulate(shape.begin(), shape.end(), 0.0);
    divisor = static_cast<int>(sum);
    std::vector<K> kernel;
    for (double tap : shape) kernel.push_back(static_cast<K>(sizeof(K) == 4 ? tap / sum : tap));
    return kernel;
}

/// The divisors of the rows: the sum of the taps, or a number that no float holds the inverse of.
enum class Divisor { powerOfTwo, odd };

template <class S, class R, class Call>
Setup rowStage(Call call, int channels, int taps, LumBorderType border = lumBorderReplicate,
               Divisor kind = Divisor::powerOfTwo) {
    return [=] {
        struct Work {
            Plane<S> src;
            Plane<R> dst;
            std::vector<R*> rows;
            std::vector<R> kernel;
            int divisor = 1;
            std::vector<Lum8u> buffer;
        };
        auto work = std::make_shared<Work>(sceneAs<S>(channels), Plane<R>(channels));
        for (int y = 0; y < height; ++y) work->rows.push_back(work->dst.data + y * width * channels);
        work->kernel = smoothing<R>(taps, work->divisor);
        if (kind == Divisor::odd) work->divisor += 3;
        work->buffer.resize(208 * taps + 144);
        // Sides in memory lie inside the picture.
        const int inset = (border & lumBorderInMemory) != 0 ? 16 : 0;
        return [work, call, channels, taps, border, inset] {
            static const S values[3] = {};
            const S* src = work->src.data + inset * channels;
            const LumSize roiSize{width - 2 * inset, height};
            if constexpr (sizeof(S) == 4) {
                if constexpr (std::is_invocable_v<Call, const S*, int, R* const*, LumSize, const R*, int, int,
                                                  int, S, Lum8u*>)
                    call(src, work->src.step(), work->rows.data(), roiSize, work->kernel.data(), taps,
                         taps / 2, border, values[0], work->buffer.data());
                else
                    call(src, work->src.step(), work->rows.data(), roiSize, work->kernel.data(), taps,
                         taps / 2, border, values, work->buffer.data());
            } else {
                if constexpr (std::is_invocable_v<Call, const S*, int, R* const*, LumSize, const R*, int, int,
                                                  int, S, int, Lum8u*>)
                    call(src, work->src.step(), work->rows.data(), roiSize, work->kernel.data(), taps,
                         taps / 2, border, values[0], work->divisor, work->buffer.data());
                else
                    call(src, work->src.step(), work->rows.data(), roiSize, work->kernel.data(), taps,
                         taps / 2, border, values, work->divisor, work->buffer.data());
            }
        };
    };
}

template <class S, class R, class Call>
Setup columnStage(Call call, int channels, int taps, Divisor kind = Divisor::powerOfTwo) {
    return [=] {
        struct Work {
            Plane<S> src;
            Plane<R> dst;
            std::vector<const S*> rows;
            std::vector<S> kernel;
            int divisor = 1;
            std::vector<Lum8u> buffer;
        };
        auto work = std::make_shared<Work>(sceneAs<S>(channels), Plane<R>(channels));
        for (int y = 0; y < height + taps - 1; ++y) {
            const int row = std::min(std::max(y - taps / 2, 0), height - 1);
            work->rows.push_back(work->src.data + row * width * channels);
        }
        work->kernel = smoothing<S>(taps, work->divisor);
        if (kind == Divisor::odd) work->divisor += 3;
        work->buffer.resize(36 * width + 64);
        return [work, call, taps] {
            if constexpr (sizeof(S) == 4)
                call(work->rows.data(), work->dst.data, work->dst.step(), size, work->kernel.data(), taps,
                     work->buffer.data());
            else
                call(work->rows.data(), work->dst.data, work->dst.step(), size, work->kernel.data(), taps,
                     work->divisor, work->buffer.data());
        };
    };
}

/// "_k5" after one channel's name, "_C3_k5" after three channels'.
std::string named(const char* stem, int channels, int taps) {
    return std::string(stem) + (channels == 3 ? "_C3" : "") + "_k" + std::to_string(taps);
}

template <class S, class R, class One, class Three> void rowStages(const char* stem, One one, Three three) {
    for (int taps : {3, 5, 11}) {
        row(named(stem, 1, taps), rowStage<S, R>(one, 1, taps));
        row(named(stem, 3, taps), rowStage<S, R>(three, 3, taps));
    }
}

template <class S, class R, class One, class Three>
void columnStages(const char* stem, One one, Three three) {
    for (int taps : {3, 5, 11}) {
        row(named(stem, 1, taps), columnStage<S, R>(one, 1, taps));
        row(named(stem, 3, taps), columnStage<S, R>(three, 3, taps));
    }
}

const RowFile file([] {
    rowStages<Lum8u, Lum16s>("FilterRowBorderPipeline_8u16s", lumiFilterRowBorderPipeline_8u16s_C1R,
                             lumiFilterRowBorderPipeline_8u16s_C3R);
    rowStages<Lum16s, Lum16s>("FilterRowBorderPipeline_16s", lumiFilterRowBorderPipeline_16s_C1R,
                              lumiFilterRowBorderPipeline_16s_C3R);
    rowStages<Lum16u, Lum16u>("FilterRowBorderPipeline_16u", lumiFilterRowBorderPipeline_16u_C1R,
                              lumiFilterRowBorderPipeline_16u_C3R);
    rowStages<Lum32f, Lum32f>("FilterRowBorderPipeline_32f", lumiFilterRowBorderPipeline_32f_C1R,
                              lumiFilterRowBorderPipeline_32f_C3R);
    rowStages<Lum16s, Lum16s>("FilterRowBorderPipeline_Low_16s", lumiFilterRowBorderPipeline_Low_16s_C1R,
                              lumiFilterRowBorderPipeline_Low_16s_C3R);
    row("FilterRowBorderPipeline_16u_k5_odd", rowStage<Lum16u, Lum16u>(lumiFilterRowBorderPipeline_16u_C1R, 1,
                                                                       5, lumBorderReplicate, Divisor::odd));

    const struct {
        const char* name;
        LumBorderType border;
    } borders[] = {{"replicate", lumBorderReplicate},
                   {"mirror", lumBorderMirror},
                   {"constant", lumBorderConstant},
                   {"memory", lumBorderInMemory},
                   {"mirrorBesideMemory", lumBorderMirror | lumBorderInMemoryLeft}};
    for (const auto& [name, border] : borders)
        for (int taps : {5, 11})
            row(named("FilterRowBorderPipeline_16s", 1, taps) + "_" + name,
                rowStage<Lum16s, Lum16s>(lumiFilterRowBorderPipeline_16s_C1R, 1, taps, border));

    columnStages<Lum16s, Lum8s>("FilterColumnPipeline_16s8s", lumiFilterColumnPipeline_16s8s_C1R,
                                lumiFilterColumnPipeline_16s8s_C3R);
    columnStages<Lum16s, Lum8u>("FilterColumnPipeline_16s8u", lumiFilterColumnPipeline_16s8u_C1R,
                                lumiFilterColumnPipeline_16s8u_C3R);
    columnStages<Lum16s, Lum16s>("FilterColumnPipeline_16s", lumiFilterColumnPipeline_16s_C1R,
                                 lumiFilterColumnPipeline_16s_C3R);
    columnStages<Lum16u, Lum16u>("FilterColumnPipeline_16u", lumiFilterColumnPipeline_16u_C1R,
                                 lumiFilterColumnPipeline_16u_C3R);
    columnStages<Lum32f, Lum32f>("FilterColumnPipeline_32f", lumiFilterColumnPipeline_32f_C1R,
                                 lumiFilterColumnPipeline_32f_C3R);
    columnStages<Lum16s, Lum16s>("FilterColumnPipeline_Low_16s", lumiFilterColumnPipeline_Low_16s_C1R,
                                 lumiFilterColumnPipeline_Low_16s_C3R);
    for (int taps : {3, 5, 11})
        row(named("FilterColumnPipeline_16s", 1, taps) + "_odd",
            columnStage<Lum16s, Lum16s>(lumiFilterColumnPipeline_16s_C1R, 1, taps, Divisor::odd));
});

} // namespace

} // namespace bench

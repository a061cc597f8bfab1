#include "digest/digest.h"

namespace digest {
namespace {

using Row = std::function<void(Digest&, const Case&)>;

constexpr int classifiers = 3;
/// Not constant, so that a test can give others for one call.
Lum32s rectangles[classifiers] = {2, 2, 3};
LumRect rects[7] = {{6, 1, 4, 4}, {6, 3, 4, 2}, {5, 2, 6, 3}, {7, 2, 2, 3},
                    {6, 1, 5, 2}, {6, 3, 3, 2}, {7, 2, 2, 2}};

/// A stage of three classifiers whose numbers are of type T: floats, or integers.
template <class T> struct Stage {
    Memory memory;
    LumStatus status;

    explicit Stage(bool isTilted) : memory(bytes()) {
        static constexpr T weights[7] = {-1, 2, -1, 3, -1, 2, 1};
        static constexpr T thresholds[classifiers] = {0, 1, -1};
        static constexpr T lower[classifiers] = {-3, 2, 1};
        static constexpr T upper[classifiers] = {4, -1, 2};
        const auto init = [&](auto member) {
            return member(object(), rects, weights, thresholds, lower, upper, rectangles, classifiers);
        };
        if constexpr (std::is_floating_point_v<T>)
            status = init(isTilted ? lumiTiltedHaarClassifierInit_32f : lumiHaarClassifierInit_32f);
        else
            status = init(isTilted ? lumiTiltedHaarClassifierInit_32s : lumiHaarClassifierInit_32s);
    }
    LumHaarClassifier* object() { return memory.as<LumHaarClassifier>(); }

    static Lum32s bytes() {
        Lum32s size = 0;
        lumiHaarClassifierGetSize(std::is_floating_point_v<T> ? lumType32f : lumType32s, {1, 1}, rectangles,
                                  classifiers, &size);
        return size;
    }
};

/// The size itself depends on the width of pointers.
void sizeStatus(Digest& digest, const Case& c) {
    Lum32s size = 0;
    digest.add(lumiHaarClassifierGetSize(lumType32f, c.size, rectangles, classifiers, &size));
}

template <class T, class Member> Row window(Member member) {
    return [=](Digest& digest, const Case&) {
        for (const bool isTilted : {false, true}) {
            Stage<T> stage(isTilted);
            LumSize size{};
            digest.add(member(stage.object(), &size));
            digest.add(size.width);
            digest.add(size.height);
        }
    };
}

template <class T, class Member> Row tilted(Member member) {
    return [=](Digest& digest, const Case&) {
        Stage<T> stage(false);
        const Lum8u mask[classifiers] = {1, 0, 1};
        digest.add(member(mask, 1, stage.object()));
    };
}

constexpr int windowSide = 24;

/// The picture with what a stage reads of it.
template <class S, class N> struct Field {
    LumSize whole;
    Picture<Lum8u> picture;
    Picture<S> sums;
    Picture<S> tilts;
    Picture<Lum64f> squares;
    Picture<N> norm;
    Picture<Lum8u> mask;

    explicit Field(const Case& c)
        : whole{c.size.width + windowSide, c.size.height + windowSide},
          picture(whole, 1, c.offset),
          sums({whole.width + 1, whole.height + 1}),
          tilts({whole.width + 2, whole.height + 2}),
          squares({whole.width + 2, whole.height + 2}),
          norm(c.size),
          mask(c.size) {
        picture.fill(c.seed);
        mask.fill(c.seed + 100);
        for (int y = 0; y < c.size.height; ++y)
            for (int x = 0; x < c.size.width; ++x) norm.row(y)[x] = static_cast<N>(3 + (x * 7 + y * 5) % 40);
    }
};

template <class T, class S, class N, class Sums, class Member, class... Scale>
Row applied(Sums sums, Member member, Scale... scale) {
    return [=](Digest& digest, const Case& c) {
        Field<S, N> field(c);
        call(sums, field.picture, field.sums, field.squares, field.whole, S{0}, 0.0);
        Stage<T> stage(false);
        Lum32s positive = c.size.width * c.size.height;
        digest.add(call(member, field.sums, field.norm, field.mask, c.size, &positive, T{1}, stage.object(),
                        scale...));
        digest.add(positive);
        field.mask.addTo(digest);
    };
}

template <class T, class S, class N, class Sums, class Tilts, class Member, class... Scale>
Row mixed(Sums sums, Tilts tilts, Member member, Scale... scale) {
    return [=](Digest& digest, const Case& c) {
        Field<S, N> field(c);
        call(sums, field.picture, field.sums, field.squares, field.whole, S{0}, 0.0);
        call(tilts, field.picture, field.tilts, field.squares, field.whole, S{0}, 0.0);
        Stage<T> stage(false);
        const Lum8u mask[classifiers] = {1, 0, 1};
        if constexpr (std::is_floating_point_v<T>)
            lumiTiltHaarFeatures_32f(mask, 1, stage.object());
        else
            lumiTiltHaarFeatures_32s(mask, 1, stage.object());
        Lum32s positive = c.size.width * c.size.height;
        digest.add(call(member, field.sums, field.tilts, field.norm, field.mask, c.size, &positive, T{1},
                        stage.object(), scale...));
        digest.add(positive);
        field.mask.addTo(digest);
    };
}

const RowFile file("haar", [] {
    row("lumiHaarClassifierGetSize", sizeStatus);
    row("lumiHaarClassifierInit_32f",
        [](Digest& digest, const Case&) { digest.add(Stage<Lum32f>(false).status); });
    row("lumiTiltedHaarClassifierInit_32f",
        [](Digest& digest, const Case&) { digest.add(Stage<Lum32f>(true).status); });
    row("lumiGetHaarClassifierSize_32f", window<Lum32f>(lumiGetHaarClassifierSize_32f));
    row("lumiTiltHaarFeatures_32f", tilted<Lum32f>(lumiTiltHaarFeatures_32f));
    row("lumiHaarClassifierInit_32s",
        [](Digest& digest, const Case&) { digest.add(Stage<Lum32s>(false).status); });
    row("lumiTiltedHaarClassifierInit_32s",
        [](Digest& digest, const Case&) { digest.add(Stage<Lum32s>(true).status); });
    row("lumiGetHaarClassifierSize_32s", window<Lum32s>(lumiGetHaarClassifierSize_32s));
    row("lumiTiltHaarFeatures_32s", tilted<Lum32s>(lumiTiltHaarFeatures_32s));
    row("lumiApplyHaarClassifier_32f_C1R",
        applied<Lum32f, Lum32f, Lum32f>(lumiSqrIntegral_8u32f64f_C1R, lumiApplyHaarClassifier_32f_C1R));
    row("lumiApplyHaarClassifier_32s32f_C1R",
        applied<Lum32f, Lum32s, Lum32f>(lumiSqrIntegral_8u32s64f_C1R, lumiApplyHaarClassifier_32s32f_C1R));
    row("lumiApplyHaarClassifier_32s_C1RSfs",
        applied<Lum32s, Lum32s, Lum32s>(lumiSqrIntegral_8u32s64f_C1R, lumiApplyHaarClassifier_32s_C1RSfs,
                                        -1));
    row("lumiApplyMixedHaarClassifier_32f_C1R",
        mixed<Lum32f, Lum32f, Lum32f>(lumiSqrIntegral_8u32f64f_C1R, lumiTiltedSqrIntegral_8u32f64f_C1R,
                                      lumiApplyMixedHaarClassifier_32f_C1R));
    row("lumiApplyMixedHaarClassifier_32s32f_C1R",
        mixed<Lum32f, Lum32s, Lum32f>(lumiSqrIntegral_8u32s64f_C1R, lumiTiltedSqrIntegral_8u32s64f_C1R,
                                      lumiApplyMixedHaarClassifier_32s32f_C1R));
    row("lumiApplyMixedHaarClassifier_32s_C1RSfs",
        mixed<Lum32s, Lum32s, Lum32s>(lumiSqrIntegral_8u32s64f_C1R, lumiTiltedSqrIntegral_8u32s64f_C1R,
                                      lumiApplyMixedHaarClassifier_32s_C1RSfs, -1));
});

} // namespace
} // namespace digest

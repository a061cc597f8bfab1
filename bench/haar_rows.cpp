#include "rows.h"

#include <array>
#include <cmath>
#include <cstring>
#include <memory>
#include <random>
#include <type_traits>

namespace bench {
namespace {

constexpr int window = 20;
LumSize region() { return {width - window, height - window}; }

/// A stage of 20 classifiers of 2 and 3 rectangles, as trained cascades have them: the whole of a feature has the
/// weight -1, a part of it 2 or 3. Its object stays where it is.
template <class Value> struct Stage {
    static constexpr int classifiers = 20;
    std::vector<unsigned char> block;
    LumHaarClassifier* spec;

    Stage() {
        std::mt19937 engine(3);
        const auto upTo = [&](int highest) { return static_cast<int>(engine() % (highest + 1)); };
        std::vector<LumRect> rects;
        std::vector<Value> weights, thresholds, below, above;
        std::vector<Lum32s> num;
        for (int i = 0; i < classifiers; ++i) {
            const int parts = 1 + (i % 3 == 0);
            const int partWidth = 2 + upTo(4), partHeight = 4 + upTo(10);
            const int x = upTo(window - 3 * partWidth - 1), y = upTo(window - partHeight - 4);
            rects.push_back({x, y, 3 * partWidth, partHeight});
            weights.push_back(-1);
            for (int part = 0; part < parts; ++part) {
                rects.push_back({x + part * partWidth, y, partWidth, partHeight});
                weights.push_back(parts == 1 ? 3 : 2);
            }
            thresholds.push_back(static_cast<Value>(upTo(10)));
            below.push_back(static_cast<Value>(-1 - upTo(3)));
            above.push_back(static_cast<Value>(1 + upTo(3)));
            num.push_back(1 + parts);
        }
        Lum32s bytes = 0;
        constexpr bool floats = std::is_same_v<Value, Lum32f>;
        lumiHaarClassifierGetSize(floats ? lumType32f : lumType32s, region(), num.data(), classifiers,
                                  &bytes);
        block.resize(static_cast<std::size_t>(bytes));
        spec = reinterpret_cast<LumHaarClassifier*>(block.data());
        if constexpr (floats)
            lumiHaarClassifierInit_32f(spec, rects.data(), weights.data(), thresholds.data(), below.data(),
                                       above.data(), num.data(), classifiers);
        else
            lumiHaarClassifierInit_32s(spec, rects.data(), weights.data(), thresholds.data(), below.data(),
                                       above.data(), num.data(), classifiers);
    }

    /// Every second classifier as a tilted one.
    void tiltHalf() {
        std::array<Lum8u, classifiers> chosen{};
        for (int i = 0; i < classifiers; i += 2) chosen[static_cast<std::size_t>(i)] = 1;
        lumiTiltHaarFeatures_32f(chosen.data(), 1, spec);
    }
};

/// The integral image of the scene, with the border that its definition has; wide enough for tilted reads.
template <class T> Plane<T> integralOfScene() {
    Plane<T> integral(1, height + 2 * window, width + 2 * window);
    const int step = width + 2 * window;
    for (int y = 0; y < height + 2 * window - 1; ++y) {
        int sum = 0;
        for (int x = 0; x < step - 1; ++x) {
            sum += scene().data[y % height * width + x % width];
            integral.data[(y + 1) * step + x + 1] = integral.data[y * step + x + 1] + static_cast<T>(sum);
        }
    }
    return integral;
}

template <class Src, class Norm> struct Images {
    Plane<Src> src = integralOfScene<Src>();
    Plane<Norm> norm = sceneAs<Norm>();
    Plane<Lum8u> start;
    Plane<Lum8u> work;
    Stage<Norm> stage;
    Lum32s set = 0;

    explicit Images(int percent) : start(percent == 100 ? Plane<Lum8u>() : mask(percent)) {
        if (percent == 100) std::memset(start.data, 255, static_cast<std::size_t>(start.count()));
        for (int y = 0; y < region().height; ++y)
            for (int x = 0; x < region().width; ++x) set += start.data[y * width + x] != 0;
    }

    /// Every call begins with the same mask; its copy belongs to the row.
    void restart() { std::memcpy(work.data, start.data, static_cast<std::size_t>(work.count())); }
};

template <class Src, class Norm, class Call> Setup plain(int percent, Call call) {
    return [percent, call] {
        auto images = std::make_shared<Images<Src, Norm>>(percent);
        return [images, call] {
            images->restart();
            Lum32s positive = images->set;
            call(images->src.data, images->src.step(), images->norm.data, images->norm.step(),
                 images->work.data, images->work.step(), region(), &positive, Norm{}, images->stage.spec);
        };
    };
}

template <class Src, class Norm, class Call> Setup mixed(int percent, Call call) {
    return [percent, call] {
        auto images = std::make_shared<Images<Src, Norm>>(percent);
        images->stage.tiltHalf();
        return [images, call] {
            images->restart();
            Lum32s positive = 0;
            // Tilted corners lie up to a window to the left: the region begins inside the image.
            const Src* place = images->src.data + window;
            call(place, images->src.step(), place, images->src.step(), images->norm.data, images->norm.step(),
                 images->work.data, images->work.step(), region(), &positive, Norm{}, images->stage.spec);
        };
    };
}

const RowFile file([] {
    const auto scaled = [](auto... arguments) { lumiApplyHaarClassifier_32s_C1RSfs(arguments..., -2); };
    const auto mixedScaled = [](auto... arguments) {
        lumiApplyMixedHaarClassifier_32s_C1RSfs(arguments..., -2);
    };
    const double places = static_cast<double>(region().width) * region().height;
    for (int percent : {100, 10, 1}) {
        const std::string share = "_20_" + std::to_string(percent) + "pct";
        row("ApplyHaar_32f" + share, plain<Lum32f, Lum32f>(percent, lumiApplyHaarClassifier_32f_C1R), places);
        row("ApplyHaar_32s32f" + share, plain<Lum32s, Lum32f>(percent, lumiApplyHaarClassifier_32s32f_C1R),
            places);
        row("ApplyHaar_32s" + share, plain<Lum32s, Lum32s>(percent, scaled), places);
        row("ApplyMixedHaar_32f" + share,
            mixed<Lum32f, Lum32f>(percent, lumiApplyMixedHaarClassifier_32f_C1R), places);
        row("ApplyMixedHaar_32s32f" + share,
            mixed<Lum32s, Lum32f>(percent, lumiApplyMixedHaarClassifier_32s32f_C1R), places);
        row("ApplyMixedHaar_32s" + share, mixed<Lum32s, Lum32s>(percent, mixedScaled), places);
    }
});

} // namespace

} // namespace bench

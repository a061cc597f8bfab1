#include "detector.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <string>
#include <utility>

#include "failure.h"
#include "progress.h"
#include "shrinking.h"

namespace tools {
namespace {

/// From one size of the picture to the next: small enough for windows that allow a tenth of their size.
constexpr double scaleStep = 1.15;

/// A cascade that accepts more windows than this knows nothing, and each is compared with all that it meets.
constexpr std::size_t mostWindows = 50000;

/// A stage of the library in a block of the program's. Neither moves once it is built.
class BuiltStage {
  public:
    BuiltStage(const CascadeStage& stage, LumSize region) : threshold_(stage.threshold) {
        const int length = static_cast<int>(stage.counts.size());
        Lum32s bytes = 0;
        expectOk(lumiHaarClassifierGetSize(lumType32f, region, stage.counts.data(), length, &bytes),
                 "lumiHaarClassifierGetSize");
        block_.resize(static_cast<std::size_t>(bytes));
        expectOk(lumiHaarClassifierInit_32f(spec(), stage.rectangles.data(), stage.weights.data(),
                                            stage.thresholds.data(), stage.below.data(), stage.above.data(),
                                            stage.counts.data(), length),
                 "lumiHaarClassifierInit_32f");
        // Corners as in the Init of tilted classifiers.
        constexpr Lum32s fromTheTop = 1;
        hasTilted_ = std::count(stage.tilted.begin(), stage.tilted.end(), 1) > 0;
        if (hasTilted_)
            expectOk(lumiTiltHaarFeatures_32f(stage.tilted.data(), fromTheTop, spec()),
                     "lumiTiltHaarFeatures_32f");
    }
    BuiltStage(BuiltStage&&) = default;

    LumHaarClassifier* spec() { return reinterpret_cast<LumHaarClassifier*>(block_.data()); }
    Lum32f threshold() const { return threshold_; }
    bool hasTilted() const { return hasTilted_; }

  private:
    std::vector<unsigned char> block_;
    Lum32f threshold_;
    bool hasTilted_ = false;
};

/// An accepted window, in pixels of the whole picture.
struct Hit {
    double x, y, width, height;

    double area() const { return width * height; }
};

/// The share of what two windows cover together that both cover.
double overlap(const Hit& a, const Hit& b) {
    const double across = std::min(a.x + a.width, b.x + b.width) - std::max(a.x, b.x);
    const double down = std::min(a.y + a.height, b.y + b.height) - std::max(a.y, b.y);
    if (across <= 0 || down <= 0) return 0;
    return across * down / (a.area() + b.area() - across * down);
}

/// Appends the windows that the cascade accepts in one size of the picture, `scale` times smaller than the whole.
void appendHits(const Picture& grey, const Cascade& cascade, std::vector<BuiltStage>& stages, double scale,
                std::vector<Hit>& hits) {
    Plane<Lum32s> sums(grey.width + 1, grey.height + 1);
    Plane<Lum64f> squares(grey.width + 1, grey.height + 1);
    expectOk(lumiSqrIntegral_8u32s64f_C1R(grey.data(), grey.step(), sums.data(), sums.step(), squares.data(),
                                          squares.step(), grey.size(), 0, 0),
             "lumiSqrIntegral_8u32s64f_C1R");

    const LumSize places{grey.width - cascade.window.width + 1, grey.height - cascade.window.height + 1};
    Plane<Lum32f> deviations(places.width, places.height);
    expectOk(lumiRectStdDev_32s32f_C1R(
                 sums.data(), sums.step(), squares.data(), squares.step(), deviations.data(),
                 deviations.step(), places,
                 cascade.deviationArea.value_or(LumRect{0, 0, cascade.window.width, cascade.window.height})),
             "lumiRectStdDev_32s32f_C1R");

    Plane<Lum8u> mask(places.width, places.height);
    std::transform(deviations.elements.begin(), deviations.elements.end(), mask.elements.begin(),
                   [&](Lum32f deviation) { return static_cast<Lum8u>(deviation >= cascade.leastDeviation); });
    auto positive = static_cast<Lum32s>(std::count(mask.elements.begin(), mask.elements.end(), 1));
    // A column before the tilted integral image, as the mixed member reads one element to the right of a place.
    Plane<Lum32s> tilted;
    if (std::any_of(stages.begin(), stages.end(),
                    [](const BuiltStage& stage) { return stage.hasTilted(); })) {
        tilted = Plane<Lum32s>(grey.width + 3, grey.height + 2);
        expectOk(lumiTiltedIntegral_8u32s_C1R(grey.data(), grey.step(), tilted.data() + 1, tilted.step(),
                                              grey.size(), 0),
                 "lumiTiltedIntegral_8u32s_C1R");
    }
    for (BuiltStage& stage : stages) {
        if (stage.hasTilted())
            expectOk(lumiApplyMixedHaarClassifier_32s32f_C1R(
                         sums.data(), sums.step(), tilted.data(), tilted.step(), deviations.data(),
                         deviations.step(), mask.data(), mask.step(), places, &positive, stage.threshold(),
                         stage.spec()),
                     "lumiApplyMixedHaarClassifier_32s32f_C1R");
        else
            expectOk(lumiApplyHaarClassifier_32s32f_C1R(sums.data(), sums.step(), deviations.data(),
                                                        deviations.step(), mask.data(), mask.step(), places,
                                                        &positive, stage.threshold(), stage.spec()),
                     "lumiApplyHaarClassifier_32s32f_C1R");
    }

    if (hits.size() + static_cast<std::size_t>(positive) > mostWindows)
        throw Failure("the cascade accepts too many windows of this picture");

    for (int y = 0; y < places.height && positive > 0; ++y)
        for (int x = 0; x < places.width; ++x)
            if (mask.at(x, y) != 0)
                hits.push_back(
                    {x * scale, y * scale, cascade.window.width * scale, cascade.window.height * scale});
}

/// Windows that overlap by more than a half, directly or through others, become one group.
class Groups {
  public:
    explicit Groups(const std::vector<Hit>& hits) : leader_(hits.size()) {
        std::iota(leader_.begin(), leader_.end(), std::size_t{0});
        // Along x, only those that begin before a window ends can overlap it.
        std::vector<std::size_t> order(leader_);
        std::sort(order.begin(), order.end(), [&](auto a, auto b) { return hits[a].x < hits[b].x; });
        for (std::size_t i = 0; i < order.size(); ++i)
            for (std::size_t k = i + 1; k < order.size(); ++k) {
                const Hit& left = hits[order[i]];
                const Hit& right = hits[order[k]];
                if (right.x >= left.x + left.width) break;
                if (overlap(left, right) > 0.5) leader_[leaderOf(order[i])] = leaderOf(order[k]);
            }
    }
    std::size_t leaderOf(std::size_t i) {
        while (leader_[i] != i) i = leader_[i] = leader_[leader_[i]];
        return i;
    }

  private:
    std::vector<std::size_t> leader_;
};

struct Mean {
    Hit sum{0, 0, 0, 0};
    int hits = 0;

    void add(const Hit& hit) {
        sum = {sum.x + hit.x, sum.y + hit.y, sum.width + hit.width, sum.height + hit.height};
        ++hits;
    }
    Hit mean() const { return {sum.x / hits, sum.y / hits, sum.width / hits, sum.height / hits}; }
};

bool centreWithin(const Hit& inner, const Hit& outer) {
    const double x = inner.x + inner.width / 2, y = inner.y + inner.height / 2;
    return x > outer.x && x < outer.x + outer.width && y > outer.y && y < outer.y + outer.height;
}

/// The part of a window that holds the object, in whole pixels.
LumRect objectIn(const Hit& window, const Cascade& cascade) {
    const double across = window.width / cascade.window.width;
    const double down = window.height / cascade.window.height;
    const auto rounded = [](double value) { return static_cast<int>(std::lround(value)); };
    return {rounded(window.x + cascade.object.x * across), rounded(window.y + cascade.object.y * down),
            rounded(cascade.object.width * across), rounded(cascade.object.height * down)};
}

/// The groups' mean windows; of groups of which one holds the centre of the other, only the one of the most hits.
std::vector<Detection> merged(const std::vector<Hit>& hits, const Cascade& cascade) {
    std::vector<Mean> means(hits.size());
    Groups groups(hits);
    for (std::size_t i = 0; i < hits.size(); ++i) means[groups.leaderOf(i)].add(hits[i]);
    std::erase_if(means, [&](const Mean& mean) { return mean.hits < cascade.leastHits; });
    std::stable_sort(means.begin(), means.end(),
                     [](const Mean& a, const Mean& b) { return a.hits > b.hits; });

    std::vector<Hit> kept;
    std::vector<Detection> detections;
    for (const Mean& group : means) {
        const Hit box = group.mean();
        if (std::any_of(kept.begin(), kept.end(), [&](const Hit& other) {
                return centreWithin(box, other) || centreWithin(other, box);
            }))
            continue;
        kept.push_back(box);
        detections.push_back({objectIn(box, cascade), group.hits});
    }
    std::sort(detections.begin(), detections.end(), [](const Detection& a, const Detection& b) {
        return std::pair(a.box.y, a.box.x) < std::pair(b.box.y, b.box.x);
    });
    return detections;
}

} // namespace

std::vector<Detection> detect(const Picture& grey, const Cascade& cascade) {
    std::vector<BuiltStage> stages;
    for (const CascadeStage& stage : cascade.stages) stages.emplace_back(stage, grey.size());

    // What is left of the picture at each scale.
    std::vector<std::pair<double, LumSize>> sizes;
    for (double scale = 1;; scale *= scaleStep) {
        const LumSize size{static_cast<int>(grey.width / scale), static_cast<int>(grey.height / scale)};
        if (size.width < cascade.window.width || size.height < cascade.window.height) break;
        sizes.emplace_back(scale, size);
    }
    std::vector<Hit> hits;
    Progress progress(sizes.size());
    for (const auto& [scale, size] : sizes) {
        progress.next("searching " + std::to_string(size.width) + " x " + std::to_string(size.height) +
                      " pixels");
        appendHits(scale == 1 ? grey : shrunk(grey, size), cascade, stages, scale, hits);
    }
    return merged(hits, cascade);
}

} // namespace tools

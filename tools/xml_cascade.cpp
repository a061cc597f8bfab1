#include "xml_cascade.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <initializer_list>
#include <iterator>
#include <pugixml.hpp>

#include "failure.h"

namespace tools {
namespace {

/// The deviation is taken inside the window's outermost pixels, so there must be some.
constexpr int leastWindow = 3;
constexpr int largestWindow = 512;
/// Trainers compare in other orders of sums; a total that misses its threshold by this much still passes.
constexpr float thresholdMargin = 1e-5F;
/// What detectors of these cascades look at, and take for an object.
constexpr float leastDeviation = 10;
constexpr int leastHits = 3;

[[noreturn]] void refuse(const pugi::xml_node& node, const std::string& reason) {
    throw Failure(node.path() + " " + reason);
}

/// Numbers between white space. Their text may go on, and the list be longer than the array, which is told by what is
/// returned: how many there are.
template <class T, std::size_t N> std::size_t numbersOf(const char* text, std::array<T, N>& numbers) {
    const char* const end = text + std::strlen(text);
    std::size_t count = 0;
    for (;;) {
        text += std::strspn(text, " \t\r\n");
        if (text == end) return count;
        T number{};
        const auto [next, error] = std::from_chars(text, end, number);
        if (error != std::errc() || (next != end && std::strchr(" \t\r\n", *next) == nullptr)) return N + 1;
        if (count < N) numbers[count] = number;
        ++count;
        text = next;
    }
}

template <class T, std::size_t N>
std::array<T, N> expectNumbers(const pugi::xml_node& node, const char* what) {
    std::array<T, N> numbers{};
    if (numbersOf(node.text().get(), numbers) != N) refuse(node, std::string("must be ") + what);
    for (const T number : numbers)
        if (!std::isfinite(static_cast<float>(number))) refuse(node, "is too large");
    return numbers;
}

pugi::xml_node expectChild(const pugi::xml_node& node, const char* name) {
    const pugi::xml_node child = node.child(name);
    if (!child) refuse(node, std::string("has no ") + name);
    return child;
}

int integerOf(const pugi::xml_node& node, const char* name) {
    return expectNumbers<int, 1>(expectChild(node, name), "a whole number")[0];
}

float floatOf(const pugi::xml_node& node, const char* name) {
    return expectNumbers<float, 1>(expectChild(node, name), "a number")[0];
}

/// Weighted rectangles, upright or tilted.
struct Feature {
    std::vector<LumRect> rectangles;
    std::vector<Lum32f> weights;
    bool isTilted = false;
};

/// Whether the rectangle lies in the window: a tilted one reaches from its top corner to the left by its height, to
/// the right by its width, and downward by both.
bool liesInside(const LumRect& rect, bool isTilted, LumSize window) {
    if (rect.x < 0 || rect.y < 0 || rect.width < 1 || rect.height < 1 || rect.x > window.width ||
        rect.y > window.height || rect.width > window.width || rect.height > window.height)
        return false;
    const int down = isTilted ? rect.width + rect.height : rect.height;
    return (!isTilted || rect.x >= rect.height) && rect.x + rect.width <= window.width &&
           rect.y + down <= window.height;
}

Feature readFeature(const pugi::xml_node& node, LumSize window) {
    Feature feature;
    if (node.child("tilted")) feature.isTilted = integerOf(node, "tilted") != 0;
    for (const pugi::xml_node& entry : expectChild(node, "rects").children("_")) {
        const auto numbers = expectNumbers<float, 5>(entry, "x, y, width, height and weight");
        LumRect rect{};
        int* const sides[] = {&rect.x, &rect.y, &rect.width, &rect.height};
        for (int i = 0; i < 4; ++i) {
            if (numbers[i] < 0 || numbers[i] > largestWindow || numbers[i] != std::floor(numbers[i]))
                refuse(entry, "must lie in the window, with whole numbers");
            *sides[i] = static_cast<int>(numbers[i]);
        }
        if (!liesInside(rect, feature.isTilted, window)) refuse(entry, "must lie in the window");
        feature.rectangles.push_back(rect);
        feature.weights.push_back(numbers[4]);
    }
    if (feature.rectangles.empty()) refuse(node, "has no rectangle");
    return feature;
}

LumSize expectWindow(const pugi::xml_node& node, int width, int height) {
    if (width < leastWindow || height < leastWindow || width > largestWindow || height > largestWindow)
        refuse(node, "must have a window of 3 to 512 pixels along each side");
    return {width, height};
}

/// A cascade without stages, that takes the deviation as the detectors of these files do.
Cascade emptyCascade(LumSize window) {
    Cascade cascade;
    cascade.window = window;
    cascade.object = {0, 0, window.width, window.height};
    cascade.deviationArea = LumRect{1, 1, window.width - 2, window.height - 2};
    cascade.leastDeviation = leastDeviation;
    cascade.leastHits = leastHits;
    return cascade;
}

/// One feature and what is added on either side of its threshold.
struct Stump {
    const Feature& feature;
    float threshold;
    float below;
    float above;
};

void append(const pugi::xml_node& node, const Stump& stump, const Cascade& cascade, CascadeStage& stage) {
    const Feature& feature = stump.feature;
    stage.rectangles.insert(stage.rectangles.end(), feature.rectangles.begin(), feature.rectangles.end());
    stage.weights.insert(stage.weights.end(), feature.weights.begin(), feature.weights.end());
    stage.counts.push_back(static_cast<Lum32s>(feature.rectangles.size()));
    stage.tilted.push_back(feature.isTilted ? 1 : 0);
    const LumRect& area = *cascade.deviationArea;
    const float threshold = stump.threshold * static_cast<float>(area.width * area.height);
    if (!std::isfinite(threshold)) refuse(node, "has too large a threshold");
    stage.thresholds.push_back(threshold);
    stage.below.push_back(stump.below);
    stage.above.push_back(stump.above);
}

void finish(const pugi::xml_node& node, CascadeStage stage, float threshold, Cascade& cascade) {
    if (stage.counts.empty()) refuse(node, "has no classifier");
    stage.threshold = threshold - thresholdMargin;
    cascade.stages.push_back(std::move(stage));
}

void expectText(const pugi::xml_node& node, const char* name, const char* text) {
    const pugi::xml_node child = expectChild(node, name);
    if (std::strcmp(child.text().get(), text) != 0)
        refuse(child, std::string("is ") + child.text().get() + "; only " + text + " is read");
}

/// The later form: classifiers name their features by number in a list of all.
Cascade readIndexedForm(const pugi::xml_node& node) {
    expectText(node, "stageType", "BOOST");
    expectText(node, "featureType", "HAAR");
    const pugi::xml_node categories = node.child("featureParams").child("maxCatCount");
    if (categories && integerOf(node.child("featureParams"), "maxCatCount") != 0)
        refuse(categories, "must be 0: features with categories are not read");
    Cascade cascade = emptyCascade(expectWindow(node, integerOf(node, "width"), integerOf(node, "height")));
    std::vector<Feature> features;
    for (const pugi::xml_node& entry : expectChild(node, "features").children("_"))
        features.push_back(readFeature(entry, cascade.window));

    for (const pugi::xml_node& stageNode : expectChild(node, "stages").children("_")) {
        CascadeStage stage;
        for (const pugi::xml_node& weak : expectChild(stageNode, "weakClassifiers").children("_")) {
            const pugi::xml_node tree = expectChild(weak, "internalNodes");
            std::array<float, 4> numbers{};
            if (const std::size_t count = numbersOf(tree.text().get(), numbers); count != 4)
                refuse(tree, count > 4 ? "is a tree of more than one node, or no list of numbers"
                                       : "must be left, right, feature and threshold");
            const auto leaves = expectNumbers<float, 2>(expectChild(weak, "leafValues"), "two numbers");
            const auto leafOf = [&](float child) {
                if (child != 0 && child != -1) refuse(tree, "is a tree of depth above one");
                return leaves[child == 0 ? 0 : 1];
            };
            if (!(numbers[2] >= 0 && numbers[2] < static_cast<float>(features.size()) &&
                  numbers[2] == std::floor(numbers[2])))
                refuse(tree, "names a feature that is not there");
            append(tree,
                   {features[static_cast<std::size_t>(numbers[2])], numbers[3], leafOf(numbers[0]),
                    leafOf(numbers[1])},
                   cascade, stage);
        }
        finish(stageNode, std::move(stage), floatOf(stageNode, "stageThreshold"), cascade);
    }
    return cascade;
}

/// The earlier form: each node of a tree holds its feature.
Cascade readNestedForm(const pugi::xml_node& node) {
    const auto size = expectNumbers<int, 2>(expectChild(node, "size"), "width and height");
    Cascade cascade = emptyCascade(expectWindow(node, size[0], size[1]));
    int number = 0;
    for (const pugi::xml_node& stageNode : expectChild(node, "stages").children("_")) {
        if (stageNode.child("parent") &&
            (integerOf(stageNode, "parent") != number - 1 || integerOf(stageNode, "next") != -1))
            refuse(stageNode, "is a branch of a tree of stages, which is not read");
        ++number;
        CascadeStage stage;
        for (const pugi::xml_node& tree : expectChild(stageNode, "trees").children("_")) {
            const auto nodes = tree.children("_");
            if (std::distance(nodes.begin(), nodes.end()) != 1)
                refuse(tree, "is a tree of more than one node");
            const pugi::xml_node stump = tree.child("_");
            if (stump.child("left_node") || stump.child("right_node"))
                refuse(stump, "is a tree of depth above one");
            append(stump,
                   {readFeature(expectChild(stump, "feature"), cascade.window), floatOf(stump, "threshold"),
                    floatOf(stump, "left_val"), floatOf(stump, "right_val")},
                   cascade, stage);
        }
        finish(stageNode, std::move(stage), floatOf(stageNode, "stage_threshold"), cascade);
    }
    return cascade;
}

} // namespace

Cascade readXmlCascade(const std::string& text) {
    pugi::xml_document document;
    const pugi::xml_parse_result result = document.load_buffer(text.data(), text.size());
    if (result.status == pugi::status_out_of_memory) throw std::bad_alloc();
    if (!result)
        throw Failure("is not XML: " + std::string(result.description()) + ", at byte " +
                      std::to_string(result.offset));
    for (const pugi::xml_node& node : document.document_element().children()) {
        if (!node.child("stages")) continue;
        Cascade cascade = node.child("size") ? readNestedForm(node) : readIndexedForm(node);
        if (cascade.stages.empty()) refuse(node.child("stages"), "must be a list with at least one entry");
        return cascade;
    }
    throw Failure("holds no cascade of stages");
}

} // namespace tools

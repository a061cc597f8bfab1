#include "integral/haar_object.h"

namespace lum {
namespace {

/// The offsets come first: objects of integers hold nothing else.
template <class T> T* takeTable(Arena& arena, std::size_t entries) {
    return arena.align(haarTableAlignment).allocate<T>(entries);
}

constexpr int tablesOfFloats = 6;

} // namespace

HaarObject::HaarObject(void* block, std::size_t classifierCount, std::size_t featureCount) {
    Arena arena(block);
    header = arena.allocate<LumHaarClassifier>();
    records = arena.allocate<kernels::HaarClassifierRecord>(classifierCount);
    features = arena.allocate<kernels::HaarFeature>(featureCount);
    bytesToFeaturesEnd = arena.used();
    scratch = takeTable<unsigned char>(arena, 0);
}

std::size_t haarTableBytes(bool floats, std::size_t classifiers, std::size_t features) {
    const std::size_t bytes = haarTableAlignment + features * sizeof(kernels::HaarOffsets);
    if (!floats) return bytes;
    // Thresholds and both values of each classifier; weights of the features; counts, as many as
    // features at most.
    return bytes + (3 * classifiers + 2 * features) * sizeof(Lum32f) + tablesOfFloats * haarTableAlignment;
}

kernels::HaarOffsets* rebuildHaarOffsets(const LumHaarClassifier& spec, int srcStep) {
    auto* offsets = reinterpret_cast<kernels::HaarOffsets*>(spec.scratch);
    const kernels::HaarFeature* features = spec.classifiers->features;
    for (int i = 0; i < spec.featureCount; ++i)
        offsets[i] = kernels::HaarOffsets::of(features[i], srcStep / static_cast<int>(sizeof(Lum32s)));
    return offsets;
}

kernels::HaarTables rebuildHaarTables(const LumHaarClassifier& spec, int srcStep) {
    const auto classifiers = static_cast<std::size_t>(spec.classifierCount);
    const auto features = static_cast<std::size_t>(spec.featureCount);
    kernels::HaarTables tables{};
    tables.classifiers = spec.classifierCount;
    Arena arena(spec.scratch);
    tables.offsets = takeTable<kernels::HaarOffsets>(arena, features);
    tables.weights = takeTable<Lum32f>(arena, features);
    tables.counts = takeTable<Lum32s>(arena, features);
    tables.thresholds = takeTable<Lum32f>(arena, classifiers);
    tables.below = takeTable<Lum32f>(arena, classifiers);
    tables.above = takeTable<Lum32f>(arena, classifiers);

    rebuildHaarOffsets(spec, srcStep);
    const kernels::HaarFeature* feature = spec.classifiers->features;
    for (std::size_t i = 0; i < features; ++i) tables.weights[i] = feature[i].weight.real;
    for (std::size_t i = 0; i < classifiers; ++i) {
        const kernels::HaarClassifierRecord& record = spec.classifiers[i];
        tables.counts[i] = record.count;
        tables.thresholds[i] = record.threshold.real;
        tables.below[i] = record.below.real;
        tables.above[i] = record.above.real;
    }
    return tables;
}

} // namespace lum

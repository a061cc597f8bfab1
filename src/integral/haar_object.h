// The object of a Haar stage and its place in caller memory: the header, the records of the classifiers, their
// features, and after the next 64-byte boundary the area in which plain apply calls lay out their tables.
#pragma once

#include <cstddef>

#include "frame/arena.h"
#include "kernels/integral/haar_stage.h"
#include "lumcv/haar.h"
#include "lumcv/types.h"

struct LumHaarClassifier {
    Lum32s classifierCount;
    Lum32s featureCount;
    lum::kernels::HaarClassifierRecord* classifiers;
    /// Smallest corner of the rectangles as given, and their extent from there; for the reader of an object only.
    Lum32s minX, minY;
    Lum32s rangeX, rangeY;
    /// Bit 0 is set if there are tilted classifiers.
    Lum32s tilted;
    /// Classifiers of 2 rectangles, and of 2 or 3: where the groups of an upright stage end.
    Lum32s pairCount;
    Lum32s pairAndTripleCount;
    Lum32s sortedFeatureCount;
    /// 1 if the first weight of each classifier truncates to -1; 0 in objects of integers.
    Lum32s firstWeightMinusOne;
    unsigned char* scratch;
};

static_assert(sizeof(void*) != 4 ||
              (sizeof(LumHaarClassifier) == 52 && offsetof(LumHaarClassifier, featureCount) == 4 &&
               offsetof(LumHaarClassifier, classifiers) == 8 && offsetof(LumHaarClassifier, minX) == 12 &&
               offsetof(LumHaarClassifier, rangeX) == 20 && offsetof(LumHaarClassifier, tilted) == 28 &&
               offsetof(LumHaarClassifier, pairCount) == 32 &&
               offsetof(LumHaarClassifier, pairAndTripleCount) == 36 &&
               offsetof(LumHaarClassifier, sortedFeatureCount) == 40 &&
               offsetof(LumHaarClassifier, firstWeightMinusOne) == 44 &&
               offsetof(LumHaarClassifier, scratch) == 48));

namespace lum {

inline constexpr std::uintptr_t haarTableAlignment = 64;

/// The pieces of an object for a number of classifiers and features.
struct HaarObject {
    LumHaarClassifier* header;
    kernels::HaarClassifierRecord* records;
    kernels::HaarFeature* features;
    std::size_t bytesToFeaturesEnd;
    unsigned char* scratch;

    HaarObject(void* block, std::size_t classifierCount, std::size_t featureCount);
};

/// Bytes that the tables of the plain apply calls take at most, from any address on: with the boundary that scratch
/// moves to, and for floats with one for each array.
std::size_t haarTableBytes(bool floats, std::size_t classifiers, std::size_t features);

/// The offsets of all features for a step of the integral image, at scratch.
kernels::HaarOffsets* rebuildHaarOffsets(const LumHaarClassifier& spec, int srcStep);

/// The offsets, and all else of a stage of floats after them, in the order of the records.
kernels::HaarTables rebuildHaarTables(const LumHaarClassifier& spec, int srcStep);

} // namespace lum

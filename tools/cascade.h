// Cascades of Haar stages as files; docs/cascade-format.md describes them.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "lumcv.h"

namespace tools {

/// One stage, as the arrays that lumiHaarClassifierInit_32f() takes.
struct CascadeStage {
    std::vector<LumRect> rectangles;
    std::vector<Lum32f> weights;
    /// Thresholds of the classifiers, in tones times the pixels of the deviation's area for a deviation of one tone.
    std::vector<Lum32f> thresholds;
    std::vector<Lum32f> below;
    std::vector<Lum32f> above;
    std::vector<Lum32s> counts;
    /// Not 0 for a classifier whose rectangles are tilted; empty when there is none.
    std::vector<Lum8u> tilted = {};
    Lum32f threshold = 0;
};

struct Cascade {
    LumSize window{0, 0};
    /// The part of an accepted window that holds what was looked for.
    LumRect object{0, 0, 0, 0};
    /// The part of the window over which the deviation of its tones is taken; all of it when there is none.
    std::optional<LumRect> deviationArea = std::nullopt;
    /// Windows whose tones deviate less are not looked at.
    Lum32f leastDeviation = 0;
    /// A detection is at least this many windows that the cascade accepts at nearly the same place.
    int leastHits = 1;
    std::vector<CascadeStage> stages;
};

/// The cascade of a file, in JSON or XML; a Failure tells what is wrong with it, and where.
Cascade readCascade(const std::string& path);

/// The cascade that the program carries: share/cascades/bright-disc.json, bright discs on dark ground.
Cascade brightDiscCascade();

} // namespace tools

// What a reader of cascades may do with any bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <numeric>

#include "cascade.h"
#include "failure.h"

namespace fuzz {

/// The arrays of a stage belong together, and its rectangles lie within the window.
inline void expectConsistent(const tools::Cascade& cascade) {
    const auto require = [](bool holds) {
        if (!holds) std::abort();
    };
    const LumSize window = cascade.window;
    require(window.width > 0 && window.height > 0 && !cascade.stages.empty());
    for (const tools::CascadeStage& stage : cascade.stages) {
        const std::size_t classifiers = stage.counts.size();
        require(classifiers > 0 && stage.thresholds.size() == classifiers &&
                stage.below.size() == classifiers && stage.above.size() == classifiers);
        require(stage.tilted.empty() || stage.tilted.size() == classifiers);
        std::size_t rectangles = 0;
        for (const Lum32s count : stage.counts) {
            require(count > 0);
            rectangles += static_cast<std::size_t>(count);
        }
        require(stage.rectangles.size() == rectangles && stage.weights.size() == rectangles);
        for (const LumRect& rect : stage.rectangles)
            require(rect.x >= 0 && rect.y >= 0 && rect.width > 0 && rect.height > 0 &&
                    rect.x <= window.width && rect.y <= window.height && rect.width <= window.width &&
                    rect.height <= window.height);
    }
}

template <class Read> void expectCascadeOrFailure(Read read) {
    try {
        expectConsistent(read());
    } catch (const tools::Failure&) {
    } catch (const std::bad_alloc&) {
    }
}

} // namespace fuzz

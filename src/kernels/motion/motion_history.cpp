#include "kernels/motion/motion_history.h"

#include "frame/instances.h"
#include "frame/lanes.h"
#include "frame/lanes_convert.h"

namespace lum::kernels {
namespace {

constexpr int pixelsOfBlock = 16;

/// All bits where there is no motion now; -0.0 is none, NaN is motion.
template <int N, class T> LUM_LANE Block<std::int32_t, N> stillAt(const T* silhouette) {
    const auto still = load<N>(silhouette) == zeros<T, N>();
    return widen<std::int32_t>(still);
}

template <class T>
LUM_LANE void updateBlock(const T* silhouette, Lum32f* history, Block<float, pixelsOfBlock> now,
                          Block<float, pixelsOfBlock> oldest) {
    const auto before = load<pixelsOfBlock>(history);
    // Cleared to +0.0, whose bits are all clear.
    const auto kept = andNot(bitsAs<float>(before < oldest), before);
    store(select(stillAt<pixelsOfBlock>(silhouette), kept, now), history);
}

template <class T>
void updateScalar(const T* silhouette, Lum32f* history, std::ptrdiff_t count, float now, float oldest) {
    for (std::ptrdiff_t x = 0; x < count; ++x) {
        if (silhouette[x] != 0)
            history[x] = now;
        else if (history[x] < oldest)
            history[x] = 0;
    }
}

} // namespace

template <class T>
void updateMotionHistoryScalar(Image<const T> silhouette, Image<Lum32f> history, LumSize size, float now,
                               float oldest) {
    for (int y = 0; y < size.height; ++y)
        updateScalar(silhouette.row(y), history.row(y), size.width, now, oldest);
}

template <class T>
void updateMotionHistory(Image<const T> silhouette, Image<Lum32f> history, LumSize size, float now,
                         float oldest) {
    const auto nows = broadcast<pixelsOfBlock>(now);
    const auto oldests = broadcast<pixelsOfBlock>(oldest);
    for (int y = 0; y < size.height; ++y) {
        const T* moving = silhouette.row(y);
        Lum32f* row = history.row(y);
        std::ptrdiff_t x = 0;
        for (; x <= size.width - pixelsOfBlock; x += pixelsOfBlock)
            updateBlock(moving + x, row + x, nows, oldests);
        // tail: scalar, one pixel at a time
        updateScalar(moving + x, row + x, size.width - x, now, oldest);
    }
}

LUM_INSTANCES(updateMotionHistoryScalar, (Lum8u), (Lum16u), (Lum32f));
LUM_INSTANCES(updateMotionHistory, (Lum8u), (Lum16u), (Lum32f));

} // namespace lum::kernels

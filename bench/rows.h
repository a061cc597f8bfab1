// Rows of the benchmark. Each works on one picture, of 1920 x 1080 pixels unless another size is asked for, and is
// reported as a multiple of a plain copy of the picture's 8-bit plane that is measured in the same process.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "lumcv.h"

namespace bench {

/// The size that the built-in picture is drawn in, and that files have.
inline constexpr LumSize fullSize{1920, 1080};

/// The picture's size. It is settled before any row is registered, and stays.
inline int width = fullSize.width;
inline int height = fullSize.height;
inline LumSize size = fullSize;
inline int pixels = width * height;

/// The least and the largest size that every row works on; widths are multiples of 8, because bits are a row's too.
inline constexpr LumSize leastSize{320, 240};
inline constexpr LumSize largestSize{4096, 4096};
void setSize(LumSize newSize);

/// A plane of a picture: rows of width x channels elements one after the other, 64-byte aligned.
template <class T> struct Plane {
    std::vector<T> storage;
    T* data;
    int channels;

    explicit Plane(int channelCount = 1, int planeHeight = height, int planeWidth = width)
        : storage(static_cast<std::size_t>(planeWidth) * planeHeight * channelCount + 64 / sizeof(T)),
          data(reinterpret_cast<T*>((reinterpret_cast<std::uintptr_t>(storage.data()) + 63) / 64 * 64)),
          channels(channelCount),
          stepBytes(static_cast<int>(planeWidth * channelCount * sizeof(T))) {}

    int step() const { return stepBytes; }
    int count() const { return static_cast<int>(storage.size() - 64 / sizeof(T)); }

  private:
    int stepBytes;
};

/// The scene: drawn by code, or read with --scene. In other sizes it is cut from the middle of the full picture, or
/// goes on beyond its sides in mirrored copies.
const Plane<Lum8u>& scene();
/// The scene moved by a few pixels, as a second picture.
const Plane<Lum8u>& movedScene();

/// A binary picture of edges: the strongest ridges of the scene's gradient, one pixel in twenty, or read with --edges.
const Plane<Lum8u>& edges();

/// The scene (or the moved scene) in elements T: 8-bit values, times 257 in 16 bits, as they are in 32f. Further
/// channels hold the scene moved by some columns.
template <class T> Plane<T> sceneAs(int channels = 1, bool moved = false) {
    Plane<T> plane(channels);
    const Plane<Lum8u>& source = moved ? movedScene() : scene();
    for (int i = 0; i < pixels; ++i)
        for (int c = 0; c < channels; ++c) {
            const int value = source.data[(i + 7 * c) % pixels];
            plane.data[i * channels + c] = static_cast<T>(sizeof(T) == 2 ? value * 257 : value);
        }
    return plane;
}

/// A mask with about the given share of selected pixels, in runs of a few pixels.
Plane<Lum8u> mask(int percent);

/// Prepares a row's images and returns its work; called only when the row runs.
using Setup = std::function<std::function<void()>()>;

/// The same work on a machine whose cache is smaller than any image, where a member has streaming stores.
Setup withStreamingStores(Setup setup);

/// A row of the report. The picture's pixels are counted unless the row says how many it works on.
void row(const std::string& name, Setup setup, double pixelsOfRow = pixels);

/// What a run measures: work on pictures, or what a call costs on a region of a few pixels.
enum class Measure { pictures, calls };

/// A file of rows: one at namespace scope in each file registers them when the program starts.
struct RowFile {
    explicit RowFile(void (*rows)(), Measure measure = Measure::pictures);
};

} // namespace bench

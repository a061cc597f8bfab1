// The built-in picture: shapes, texture and noise, the same on every machine, or a picture read from a PGM file.
#include "scene.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>

namespace bench {
namespace {

/// A plane of the full size, and one of the size of this run.
Plane<Lum8u> fullPlane() { return Plane<Lum8u>(1, fullSize.height, fullSize.width); }

/// Where position i of a side of the run's size lies in the full size: the middles meet, and beyond its ends the full
/// side goes on mirrored.
int mirrored(int i, int side, int fullSide) {
    const int period = 2 * fullSide;
    const int place = ((i + (fullSide - side) / 2) % period + period) % period;
    return std::min(place, period - 1 - place);
}

Plane<Lum8u> broughtToSize(const Plane<Lum8u>& full) {
    Plane<Lum8u> plane;
    for (int y = 0; y < height; ++y) {
        const Lum8u* row = full.data + mirrored(y, height, fullSize.height) * fullSize.width;
        for (int x = 0; x < width; ++x) plane.data[y * width + x] = row[mirrored(x, width, fullSize.width)];
    }
    return plane;
}

Plane<Lum8u> drawnScene() {
    const auto [width, height] = fullSize;
    Plane<Lum8u> plane = fullPlane();
    std::mt19937 engine(2021);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            int value = 60 + 80 * x / width + 40 * y / height;
            if ((x / 120 + y / 120) % 3 == 0) value += 50;
            const int dx = x % 320 - 160;
            const int dy = y % 270 - 135;
            if (dx * dx + dy * dy < 80 * 80) value = 230 - (dx * dx + dy * dy) / 80;
            if ((x * 3 + y * 5) % 64 < 6) value -= 35;
            value += static_cast<int>(engine() % 17) - 8;
            plane.data[y * width + x] = static_cast<Lum8u>(value < 0 ? 0 : value > 255 ? 255 : value);
        }
    return plane;
}

/// The magnitude of the gradient over 3 x 3 pixels, 0 where it is not the largest across the ridge.
std::vector<int> gradientRidges(const Plane<Lum8u>& picture) {
    std::vector<int> across(pixels), down(pixels), magnitudes(pixels), ridges(pixels);
    const auto inside = [](const auto& visit) {
        for (int y = 1; y < height - 1; ++y)
            for (int x = 1; x < width - 1; ++x) visit(y * width + x);
    };
    inside([&](int i) {
        const Lum8u* p = picture.data + i;
        across[i] = p[1 - width] + 2 * p[1] + p[1 + width] - p[-1 - width] - 2 * p[-1] - p[-1 + width];
        down[i] = p[width - 1] + 2 * p[width] + p[width + 1] - p[-width - 1] - 2 * p[-width] - p[1 - width];
        magnitudes[i] = std::abs(across[i]) + std::abs(down[i]);
    });
    inside([&](int i) {
        const int next = std::abs(across[i]) > std::abs(down[i]) ? 1 : width;
        if (magnitudes[i] > magnitudes[i - next] && magnitudes[i] >= magnitudes[i + next])
            ridges[i] = magnitudes[i];
    });
    return ridges;
}

Plane<Lum8u> strongestRidges(const Plane<Lum8u>& picture) {
    const std::vector<int> ridges = gradientRidges(picture);
    std::vector<int> sorted = ridges;
    std::nth_element(sorted.begin(), sorted.end() - pixels / 20, sorted.end());
    const int least = std::max(*(sorted.end() - pixels / 20), 1);
    Plane<Lum8u> plane;
    for (int i = 0; i < pixels; ++i) plane.data[i] = ridges[i] >= least ? 255 : 0;
    return plane;
}

/// What was read of files, in the full size; empty where the built-in picture serves.
std::unique_ptr<Plane<Lum8u>> sceneOfFile;
std::unique_ptr<Plane<Lum8u>> edgesOfFile;

[[noreturn]] void refuse(const std::string& path, const char* why) {
    std::fprintf(stderr, "lumcv_bench: %s: %s\n", path.c_str(), why);
    std::exit(2);
}

std::unique_ptr<Plane<Lum8u>> readPicture(const std::string& path) {
    auto plane = std::make_unique<Plane<Lum8u>>(fullPlane());
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (file == nullptr) refuse(path, "cannot be opened");
    int columns = 0;
    int rows = 0;
    int maximum = 0;
    if (std::fscanf(file, "P5 %d %d %d", &columns, &rows, &maximum) != 3 || maximum != 255)
        refuse(path, "is not a binary PGM file of 8 bits");
    if (columns != fullSize.width || rows != fullSize.height) refuse(path, "is not 1920 x 1080");
    std::fgetc(file);
    const auto bytes = static_cast<std::size_t>(plane->count());
    if (std::fread(plane->data, 1, bytes, file) != bytes) refuse(path, "is truncated");
    std::fclose(file);
    return plane;
}

} // namespace

void setSize(LumSize newSize) {
    size = newSize;
    width = newSize.width;
    height = newSize.height;
    pixels = width * height;
}

void readScene(const std::string& path) { sceneOfFile = readPicture(path); }
void readEdges(const std::string& path) { edgesOfFile = readPicture(path); }

// Both are made at the first look, after the options have been read.
const Plane<Lum8u>& scene() {
    static const Plane<Lum8u> plane = broughtToSize(sceneOfFile ? *sceneOfFile : drawnScene());
    return plane;
}

const Plane<Lum8u>& edges() {
    static const Plane<Lum8u> plane = edgesOfFile ? broughtToSize(*edgesOfFile) : strongestRidges(scene());
    return plane;
}

const Plane<Lum8u>& movedScene() {
    static const Plane<Lum8u> moved = [] {
        Plane<Lum8u> plane;
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                plane.data[y * width + x] = scene().data[(y + 3) % height * width + (x + 5) % width];
        return plane;
    }();
    return moved;
}

Plane<Lum8u> mask(int percent) {
    Plane<Lum8u> plane;
    std::mt19937 engine(7);
    Lum8u value = 0;
    for (int i = 0; i < pixels; ++i) {
        if (engine() % 8 == 0) value = static_cast<int>(engine() % 100) < percent ? 255 : 0;
        plane.data[i] = value;
    }
    return plane;
}

} // namespace bench

#include "segmenter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>

#include "drawing.h"
#include "failure.h"

namespace tools {
namespace {

constexpr Lum16u boundary = std::numeric_limits<Lum16u>::max();

/// The first of `parts` equal parts of a length.
int beginOf(int part, int parts, int length) {
    return static_cast<int>(static_cast<std::int64_t>(length) * part / parts);
}

LumPoint lowestPlace(const Picture& relief, LumRect part) {
    LumPoint place{part.x + part.width / 2, part.y + part.height / 2};
    for (int y = part.y; y < part.y + part.height; ++y)
        for (int x = part.x; x < part.x + part.width; ++x)
            if (relief.at(x, y) < relief.at(place.x, place.y)) place = {x, y};
    return place;
}

} // namespace

Picture gradientOf(const Picture& colour) {
    const auto [width, height] = colour.size();
    Picture sharp(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            int largest = 0;
            for (int c = 0; c < colour.channels; ++c) {
                const int across =
                    colour.at(std::min(x + 1, width - 1), y, c) - colour.at(std::max(x - 1, 0), y, c);
                const int down =
                    colour.at(x, std::min(y + 1, height - 1), c) - colour.at(x, std::max(y - 1, 0), c);
                largest = std::max(largest, std::abs(across) + std::abs(down));
            }
            sharp.at(x, y) = static_cast<Lum8u>(std::min(largest, 255));
        }
    Picture relief(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            int sum = 0;
            for (int dy = -1; dy <= 1; ++dy)
                for (int dx = -1; dx <= 1; ++dx)
                    sum += sharp.at(std::clamp(x + dx, 0, width - 1), std::clamp(y + dy, 0, height - 1));
            relief.at(x, y) = static_cast<Lum8u>(sum / 9);
        }
    return relief;
}

int mostSeeds(LumSize size) {
    const std::int64_t pixels = std::int64_t{size.width} * size.height;
    return static_cast<int>(std::min<std::int64_t>(pixels, boundary - 1));
}

std::vector<LumPoint> spreadSeeds(const Picture& relief, int count) {
    const auto [width, height] = relief.size();
    // Rows of parts that are about square; a row takes as many seeds as it is wide, and never more than columns.
    const double side = std::sqrt(static_cast<double>(width) * height / count);
    const int fewest = (count + width - 1) / width;
    const int rows = std::clamp(static_cast<int>(std::lround(height / side)), std::max(fewest, 1),
                                std::min(height, count));
    std::vector<LumPoint> seeds;
    for (int row = 0; row < rows; ++row) {
        const int top = beginOf(row, rows, height);
        const int bottom = beginOf(row + 1, rows, height);
        const int columns = beginOf(row + 1, rows, count) - beginOf(row, rows, count);
        for (int column = 0; column < columns; ++column) {
            const int left = beginOf(column, columns, width);
            const int right = beginOf(column + 1, columns, width);
            seeds.push_back(lowestPlace(relief, {left, top, right - left, bottom - top}));
        }
    }
    return seeds;
}

Plane<Lum16u> watersheds(const Picture& relief, const std::vector<LumPoint>& seeds) {
    Plane<Lum16u> labels(relief.width, relief.height);
    Lum16u label = 0;
    for (const LumPoint& seed : seeds) labels.at(seed.x, seed.y) = ++label;
    Lum32s bytes = 0;
    expectOk(lumiSegmentWatershedGetBufferSize_8u16u_C1R(labels.size(), &bytes),
             "lumiSegmentWatershedGetBufferSize_8u16u_C1R");
    if (bytes < 0) throw Failure("the picture is too large to be segmented");
    std::vector<Lum8u> buffer(static_cast<std::size_t>(bytes));
    expectOk(lumiSegmentWatershed_8u16u_C1IR(relief.data(), relief.step(), labels.data(), labels.step(),
                                             labels.size(), lumSpatialNormInf, lumSegmentQueue,
                                             buffer.data()),
             "lumiSegmentWatershed_8u16u_C1IR");
    return labels;
}

void drawBoundaries(Plane<Lum16u>& labels) {
    expectOk(
        lumiBoundSegments_16u_C1IR(labels.data(), labels.step(), labels.size(), boundary, lumSpatialNormL1),
        "lumiBoundSegments_16u_C1IR");
}

Picture paintedRegions(const Picture& colour, const Plane<Lum16u>& labels, int regions) {
    struct Sum {
        std::array<std::int64_t, 3> tones{};
        std::int64_t pixels = 0;
    };
    std::vector<Sum> sums(static_cast<std::size_t>(regions) + 1);
    const auto regionAt = [&](int x, int y) { return labels.at(x, y) <= regions ? labels.at(x, y) : 0; };
    for (int y = 0; y < colour.height; ++y)
        for (int x = 0; x < colour.width; ++x) {
            Sum& sum = sums[regionAt(x, y)];
            for (int c = 0; c < 3; ++c) sum.tones[c] += colour.at(x, y, c);
            ++sum.pixels;
        }
    Picture painted(colour.width, colour.height, 3);
    for (int y = 0; y < colour.height; ++y)
        for (int x = 0; x < colour.width; ++x) {
            const int region = regionAt(x, y);
            if (region == 0) continue;
            for (int c = 0; c < 3; ++c)
                painted.at(x, y, c) = static_cast<Lum8u>(sums[region].tones[c] / sums[region].pixels);
        }
    return painted;
}

} // namespace tools

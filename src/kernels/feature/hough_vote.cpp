#include "kernels/feature/hough_vote.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

#include "frame/convert.h"
#include "frame/lanes_reduce.h"

namespace lum::kernels {
namespace {

/// The sum in single precision, every product and sum rounded.
float scaledRho(const LineFan& fan, float x, float y) { return x * fan.cosine + y * fan.sine; }

/// The index of a line before the half is added; the sum of the rounding wraps.
Lum32s lineOf(float scaled) {
    return static_cast<Lum32s>(static_cast<unsigned>(nearestIndex(scaled)) + 512) >> 10;
}

/// A row's points.
struct PointRow {
    const float* columns;
    Lum32s count;

    explicit PointRow(const unsigned char* record)
        : columns(reinterpret_cast<const float*>(record + sizeof(Lum32s))) {
        std::memcpy(&count, record, sizeof count);
    }
};

} // namespace

// ---- points

int collectColumnsScalar(const Lum8u* row, int width, float* columns) {
    int count = 0;
    for (int x = 0; x < width; ++x)
        if (row[x] != 0) columns[count++] = static_cast<float>(x);
    return count;
}

int collectColumns(const Lum8u* row, int width, float* columns) {
    constexpr int pixels = 64;
    int count = 0;
    const auto collect = [&](Block<Lum8u, pixels> block, int x) {
        for (std::uint64_t bits = signBits(block != zeros<Lum8u, pixels>()); bits != 0; bits &= bits - 1)
            columns[count++] = static_cast<float>(x + std::countr_zero(bits));
    };
    int x = 0;
    for (; x <= width - pixels; x += pixels) collect(load<pixels>(row + x), x);
    // tail: staged copy
    if (x < width) collect(loadPartial<pixels>(row + x, width - x), x);
    return count;
}

// ---- votes

bool votesStayInRow(const LineFan& fan, LumSize size, Lum32s rhoCount) {
    // Rounding keeps the order of sums, so the corners hold the extremes.
    constexpr float largestExact = 0x1p30F;
    for (float x : {0.0F, static_cast<float>(size.width - 1)})
        for (float y : {0.0F, static_cast<float>(size.height - 1)}) {
            const float scaled = scaledRho(fan, x, y);
            if (!(std::fabs(scaled) < largestExact)) return false;
            const std::int64_t index = std::int64_t{lineOf(scaled)} + fan.half;
            if (index < -houghMargin || index >= std::int64_t{rhoCount} + houghMargin) return false;
        }
    return true;
}

void voteScalar(const LineFan& fan, const PointRows& points, Lum32s* cells, Lum32s rhoCount) {
    const unsigned char* record = points.first;
    for (int y = 0; y < points.height; ++y) {
        const PointRow row(record);
        for (int i = 0; i < row.count; ++i) {
            const std::int64_t index =
                std::int64_t{lineOf(scaledRho(fan, row.columns[i], static_cast<float>(y)))} + fan.half;
            const std::int64_t last = std::int64_t{rhoCount} + houghMargin - 1;
            ++cells[static_cast<std::ptrdiff_t>(std::clamp<std::int64_t>(index, -houghMargin, last))];
        }
        record += pointRowBytes(row.count);
    }
}

void vote(const LineFan& fan, const PointRows& points, Lum32s* cells) {
    constexpr int group = 16;
    const auto cosine = broadcast<group>(fan.cosine);
    const auto half = broadcast<group>(512);
    // Indices count from the middle of the row, which has a cell of its own.
    Lum32s* middle = cells + fan.half;
    const unsigned char* record = points.first;
    for (int y = 0; y < points.height; ++y) {
        const PointRow row(record);
        const float rowTerm = static_cast<float>(y) * fan.sine;
        const auto rowTerms = broadcast<group>(rowTerm);
        int i = 0;
        // 16 points per iteration
        for (; i <= row.count - group; i += group) {
            const auto scaled = load<group>(row.columns + i) * cosine + rowTerms;
            Lum32s indices[group];
            store((nearestEven(scaled) + half) >> 10, indices);
            for (Lum32s index : indices) ++middle[index];
        }
        // tail: scalar, one point at a time
        for (; i < row.count; ++i) ++middle[lineOf(row.columns[i] * fan.cosine + rowTerm)];
        record += pointRowBytes(row.count);
    }
}

// ---- peaks

Lum32s nextPeakScalar(const AngleRows& rows, Lum32s index, Lum32s end, Lum32s threshold) {
    for (; index < end; ++index) {
        const Lum32s votes = rows.row[index];
        if (votes > threshold && votes > rows.row[index - 1] && votes >= rows.row[index + 1] &&
            votes > rows.before[index] && votes >= rows.after[index])
            break;
    }
    return index;
}

Lum32s nextPeak(const AngleRows& rows, Lum32s index, Lum32s end, Lum32s threshold) {
    constexpr int group = 16;
    const auto least = broadcast<group>(threshold);
    for (; index <= end - group; index += group) {
        const auto votes = load<group>(rows.row + index);
        const auto high = votes > least;
        if (!any(high)) continue;
        const auto isPeak =
            high & (votes > load<group>(rows.row + index - 1)) & (votes > load<group>(rows.before + index)) &
            ~(load<group>(rows.row + index + 1) > votes) & ~(load<group>(rows.after + index) > votes);
        const std::uint32_t bits = signBits(isPeak);
        if (bits != 0) return index + std::countr_zero(bits);
    }
    return nextPeakScalar(rows, index, end, threshold);
}

} // namespace lum::kernels

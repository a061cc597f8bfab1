#include "shrinking.h"

#include <algorithm>
#include <vector>

namespace tools {
namespace {

/// Which pixels of a side the i-th of `count` equal parts covers, and how much of its ends.
struct Covered {
    int first, last;
    float ofFirst, ofLast;

    Covered(int i, int count, int side) {
        const double length = static_cast<double>(side) / count;
        const double from = i * length;
        const double to = std::min<double>((i + 1) * length, side);
        first = std::min(static_cast<int>(from), side - 1);
        last = std::clamp(static_cast<int>(to), first, side - 1);
        ofFirst = static_cast<float>(std::min<double>(first + 1, to) - from);
        ofLast = last == first ? 0 : static_cast<float>(to - last);
    }
    float length() const { return ofFirst + ofLast + static_cast<float>(std::max(0, last - first - 1)); }
};

} // namespace

Picture shrunk(const Picture& grey, LumSize size) {
    // Columns first: each row of the result then adds up whole rows.
    std::vector<Covered> columns;
    for (int x = 0; x < size.width; ++x) columns.emplace_back(x, size.width, grey.width);
    Plane<float> narrow(size.width, grey.height);
    for (int y = 0; y < grey.height; ++y) {
        const Lum8u* row = grey.row(y);
        for (int x = 0; x < size.width; ++x) {
            const Covered& part = columns[static_cast<std::size_t>(x)];
            float sum = static_cast<float>(row[part.first]) * part.ofFirst +
                        static_cast<float>(row[part.last]) * part.ofLast;
            for (int i = part.first + 1; i < part.last; ++i) sum += static_cast<float>(row[i]);
            narrow.at(x, y) = sum / part.length();
        }
    }
    Picture result(size.width, size.height);
    std::vector<float> sums(static_cast<std::size_t>(size.width));
    for (int y = 0; y < size.height; ++y) {
        const Covered part(y, size.height, grey.height);
        std::fill(sums.begin(), sums.end(), 0.0F);
        for (int i = part.first; i <= part.last; ++i) {
            const float share = i == part.first ? part.ofFirst : i == part.last ? part.ofLast : 1.0F;
            for (int x = 0; x < size.width; ++x) sums[static_cast<std::size_t>(x)] += narrow.at(x, i) * share;
        }
        for (int x = 0; x < size.width; ++x)
            result.at(x, y) = static_cast<Lum8u>(
                std::clamp(sums[static_cast<std::size_t>(x)] / part.length() + 0.5F, 0.0F, 255.0F));
    }
    return result;
}

} // namespace tools

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

Picture shrunk(const Picture& picture, LumSize size) {
    const int channels = picture.channels;
    std::vector<Covered> columns;
    columns.reserve(static_cast<std::size_t>(size.width));
    for (int x = 0; x < size.width; ++x) columns.emplace_back(x, size.width, picture.width);

    // Columns first: each row of the result then adds up whole rows. A row that two of them share is kept.
    std::vector<float> narrow(static_cast<std::size_t>(size.width) * channels);
    int narrowRow = -1;
    const auto makeNarrow = [&](int y) {
        if (narrowRow == y) return;
        narrowRow = y;
        const Lum8u* row = picture.row(y);
        float* result = narrow.data();
        for (const Covered& part : columns)
            for (int c = 0; c < channels; ++c) {
                float sum = static_cast<float>(row[part.first * channels + c]) * part.ofFirst +
                            static_cast<float>(row[part.last * channels + c]) * part.ofLast;
                for (int i = part.first + 1; i < part.last; ++i)
                    sum += static_cast<float>(row[i * channels + c]);
                *result++ = sum / part.length();
            }
    };

    Picture result(size.width, size.height, channels);
    std::vector<float> sums(narrow.size());
    for (int y = 0; y < size.height; ++y) {
        const Covered part(y, size.height, picture.height);
        std::fill(sums.begin(), sums.end(), 0.0F);
        for (int i = part.first; i <= part.last; ++i) {
            const float share = i == part.first ? part.ofFirst : i == part.last ? part.ofLast : 1.0F;
            makeNarrow(i);
            for (std::size_t k = 0; k < sums.size(); ++k) sums[k] += narrow[k] * share;
        }
        Lum8u* row = result.row(y);
        for (std::size_t k = 0; k < sums.size(); ++k)
            row[k] = static_cast<Lum8u>(std::clamp(sums[k] / part.length() + 0.5F, 0.0F, 255.0F));
    }
    return result;
}

} // namespace tools

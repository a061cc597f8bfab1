#include "kernels/morph/rectangle.h"

#include <algorithm>
#include <type_traits>

#include "frame/arena.h"
#include "frame/instances.h"
#include "kernels/morph/rectangle_columns.h"
#include "kernels/morph/rectangle_rows.h"

namespace lum::kernels {
namespace {

constexpr std::size_t lineAlignment = 64;

/// The elements of a line, with those outside the region, and a block that the row stage may run over.
template <class T> std::size_t lineBytes(std::ptrdiff_t width, int channels, std::ptrdiff_t reachX) {
    return ((width + 2 * reachX) * channels + blockElements<T>)*sizeof(T);
}

/// The image has elements T, lines have elements Line.
template <MorphOp op, class T, class Line> class Runner {
  public:
    explicit Runner(const RectangleRun<T>& run)
        : run_(run),
          needsRows_(run.reachX > 0),
          rows_(2 * run.reachX + 1, run.channels),
          height_(2 * run.reachY + 1),
          stripWidth_(stripWidth(run)),
          lines_(nullptr, 0) {
        for (int c = 0; c < run.channels; ++c)
            outside_[c] = movedTo<Line>(
                run.outside == nullptr ? weakest<op, T> : stronger<op>(weakest<op, T>, run.outside[c]));
        placeLines();
    }

    void run() {
        const std::ptrdiff_t cutAbove = run_.readable.top > 0 ? 0 : std::min(run_.reachY, run_.height);
        const std::ptrdiff_t cutBelow =
            run_.readable.bottom > 0 ? run_.height : std::max(cutAbove, run_.height - run_.reachY);
        for (std::ptrdiff_t y = 0; y < run_.height;) {
            const bool isWhole = y >= cutAbove && y < cutBelow;
            const std::ptrdiff_t zoneEnd = isWhole ? cutBelow : y < cutAbove ? cutAbove : run_.height;
            std::ptrdiff_t count = std::min({lineCount_, height_, zoneEnd - y});
            if (isWhole && height_ > 1 && height_ <= fewRows && lineCount_ >= 4 && zoneEnd - y >= 4)
                count = 4;
            for (std::ptrdiff_t x = 0; x < run_.width; x += stripWidth_)
                produce(x, y, std::min(stripWidth_, run_.width - x), count, isWhole);
            y += count;
        }
    }

  private:
    /// Above this number of rows, more than four windows share theirs.
    static constexpr std::ptrdiff_t fewRows = 9;
    static constexpr std::ptrdiff_t mostLines = 32;

    /// Rows are read from end to end, as the machine predicts it, unless they are very long. For high rectangles the lines
    /// of a strip are kept in the smallest cache.
    static std::ptrdiff_t stripWidth(const RectangleRun<T>& run) {
        const std::ptrdiff_t bytes = 2 * run.reachY + 1 <= fewRows ? 65536 : 1024;
        const std::ptrdiff_t pixels = bytes / static_cast<std::ptrdiff_t>(run.channels * sizeof(T));
        return std::min(run.width, std::max(pixels, 8 * run.reachX));
    }

    void placeLines() {
        if (!needsRows_) {
            lineCount_ = mostLines;
            return;
        }
        const std::size_t bytes = lineBytes<T>(stripWidth_, run_.channels, run_.reachX);
        const std::size_t aligned = roundedUp(bytes, lineAlignment);
        Line* first = static_cast<Line*>(run_.work);
        lineCount_ = 1;
        if (run_.workBytes >= lineAlignment + 2 * aligned) {
            first = alignedUp(first, lineAlignment);
            lineCount_ = std::min<std::ptrdiff_t>(mostLines, (run_.workBytes - lineAlignment) / aligned);
        }
        lines_ = {first, static_cast<std::ptrdiff_t>(aligned)};
        for (std::ptrdiff_t i = 0; i < lineCount_; ++i)
            std::fill_n(lines_.row(i) + elements(stripWidth_ + 2 * run_.reachX), blockElements<T>,
                        weakest<op, Line>);
    }

    std::ptrdiff_t elements(std::ptrdiff_t pixels) const { return pixels * run_.channels; }

    /// The rows y .. y + count - 1 of the destination in the strip of `width` columns from x on.
    void produce(std::ptrdiff_t x, std::ptrdiff_t y, std::ptrdiff_t width, std::ptrdiff_t count,
                 bool isWhole) {
        const ReadableMargins& readable = run_.readable;
        // What can be read of the columns that the windows see.
        const std::ptrdiff_t left = std::max(x - run_.reachX, -readable.left);
        const std::ptrdiff_t right = std::min(x + width + run_.reachX, run_.width + readable.right);
        const std::ptrdiff_t top = y - run_.reachY;
        const Image<const T> rows{run_.src.row(top) + elements(left), run_.src.step};
        const std::ptrdiff_t before = elements(left - (x - run_.reachX));
        const std::ptrdiff_t seen = elements(right - left);
        const Image<Line> lines = linesFrom(before, x, y);
        using Columns = ColumnWindows<op, T, Line>;
        if (isWhole && count == 4 && height_ == 3)
            Columns::fourOfThree(rows, lines, seen);
        else if (isWhole && count == 4 && height_ == 5)
            Columns::fourOfFive(rows, lines, seen);
        else if (isWhole && count == 4)
            Columns::fourOf(rows, height_, lines, seen);
        else
            Columns::several(rows, height_, -readable.top - top, run_.height + readable.bottom - top, lines,
                             count, seen);
        for (std::ptrdiff_t i = 0; i < count; ++i) {
            if (!isWhole && run_.outside != nullptr)
                Columns::takeIn(outside_, run_.channels, lines.row(i), seen);
            if (!needsRows_) continue;
            Line* const line = lines_.row(i);
            fill(line, before);
            fill(line + before + seen, elements(width + 2 * run_.reachX) - before - seen);
            rows_.run(line, run_.dst.row(y + i) + elements(x), elements(width));
        }
    }

    /// The lines, or the rows of the destination where these are results: then both have the same elements.
    Image<Line> linesFrom(std::ptrdiff_t before, std::ptrdiff_t x, std::ptrdiff_t y) const {
        if constexpr (std::is_same_v<T, Line>)
            if (!needsRows_) return {run_.dst.row(y) + elements(x), run_.dst.step};
        return lines_.shifted(before);
    }

    /// Whole pixels outside the region.
    void fill(Line* place, std::ptrdiff_t count) const {
        for (std::ptrdiff_t i = 0; i < count; i += run_.channels)
            for (int c = 0; c < run_.channels; ++c) place[i + c] = outside_[c];
    }

    const RectangleRun<T>& run_;
    const bool needsRows_;
    const RowWindows<op, Line, T> rows_;
    const std::ptrdiff_t height_;
    const std::ptrdiff_t stripWidth_;
    Image<Line> lines_;
    std::ptrdiff_t lineCount_ = 1;
    Line outside_[4];
};

} // namespace

template <MorphOp op, class T> void strongestOfRectangle(const RectangleRun<T>& run) {
    if (run.reachX > 0)
        Runner<op, T, ComparedAs<T>>(run).run();
    else
        Runner<op, T, T>(run).run();
}

LUM_INSTANCES(strongestOfRectangle, (MorphOp::dilate, Lum8u), (MorphOp::dilate, Lum16u),
              (MorphOp::dilate, Lum16s), (MorphOp::dilate, Lum32f), (MorphOp::erode, Lum8u),
              (MorphOp::erode, Lum16u), (MorphOp::erode, Lum16s), (MorphOp::erode, Lum32f));

} // namespace lum::kernels

#include "kernels/morph/rectangle.h"

#include <algorithm>

#include "frame/arena.h"
#include "kernels/morph/rectangle_columns.h"
#include "kernels/morph/rectangle_rows.h"

namespace lum::kernels {
namespace {

constexpr std::size_t lineAlignment = 64;

/// The elements of a line, with those outside the region, and a block that the row stage may run over.
template <class T> std::size_t lineBytes(std::ptrdiff_t width, int channels, std::ptrdiff_t reachX) {
    return ((width + 2 * reachX) * channels + blockElements<T>)*sizeof(T);
}

template <MorphOp op, class T> class Runner {
  public:
    explicit Runner(const RectangleRun<T>& run)
        : run_(run),
          needsRows_(run.reachX > 0),
          rows_(2 * run.reachX + 1, run.channels),
          height_(2 * run.reachY + 1),
          lines_(nullptr, 0) {
        for (int c = 0; c < run.channels; ++c)
            outside_[c] =
                run.outside == nullptr ? weakest<op, T> : stronger<op>(weakest<op, T>, run.outside[c]);
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
            if (isWhole && height_ <= fewRows && lineCount_ >= 4 && zoneEnd - y >= 4 && height_ > 1)
                count = 4;
            produce(y, count, isWhole);
            y += count;
        }
    }

  private:
    /// Above so many rows, more than four windows share theirs.
    static constexpr std::ptrdiff_t fewRows = 15;
    static constexpr std::ptrdiff_t mostLines = 16;

    void placeLines() {
        if (!needsRows_) {
            lineCount_ = mostLines;
            return;
        }
        const std::size_t bytes = lineBytes<T>(run_.width, run_.channels, run_.reachX);
        const std::size_t aligned = roundedUp(bytes, lineAlignment);
        T* first = static_cast<T*>(run_.work);
        lineCount_ = 1;
        if (run_.workBytes >= lineAlignment + 2 * aligned) {
            first = alignedUp(first, lineAlignment);
            lineCount_ = std::min<std::ptrdiff_t>(mostLines, (run_.workBytes - lineAlignment) / aligned);
        }
        lines_ = {first, static_cast<std::ptrdiff_t>(aligned)};
        for (std::ptrdiff_t i = 0; i < lineCount_; ++i)
            std::fill_n(lines_.row(i) + lineElements(), blockElements<T>, weakest<op, T>);
    }

    std::ptrdiff_t elements(std::ptrdiff_t pixels) const { return pixels * run_.channels; }
    std::ptrdiff_t lineElements() const { return elements(run_.width + 2 * run_.reachX); }

    /// Destination rows y .. y + count - 1.
    void produce(std::ptrdiff_t y, std::ptrdiff_t count, bool isWhole) {
        const ReadableMargins& readable = run_.readable;
        const std::ptrdiff_t top = y - run_.reachY;
        const Image<const T> rows{run_.src.row(top) - elements(readable.left), run_.src.step};
        const std::ptrdiff_t readableElements = elements(readable.left + run_.width + readable.right);
        const Image<T> lines = needsRows_ ? lines_.shifted(elements(run_.reachX - readable.left))
                                          : Image<T>{run_.dst.row(y), run_.dst.step};
        if (isWhole && count == 4 && height_ == 3)
            ColumnWindows<op, T>::fourOfThree(rows, lines, readableElements);
        else if (isWhole && count == 4 && height_ > 3)
            ColumnWindows<op, T>::four(rows, height_, lines, readableElements);
        else
            ColumnWindows<op, T>::several(rows, height_, -readable.top - top,
                                          run_.height + readable.bottom - top, lines, count,
                                          readableElements);
        for (std::ptrdiff_t i = 0; i < count; ++i) {
            if (!isWhole && run_.outside != nullptr)
                ColumnWindows<op, T>::takeIn(outside_, run_.channels, lines.row(i), readableElements);
            if (needsRows_) finishRow(lines_.row(i), run_.dst.row(y + i));
        }
    }

    void finishRow(T* line, T* dst) {
        fill(line, elements(run_.reachX - run_.readable.left));
        const std::ptrdiff_t end = elements(run_.reachX + run_.width + run_.readable.right);
        fill(line + end, lineElements() - end);
        rows_.run(line, dst, elements(run_.width));
    }

    /// Whole pixels outside the region.
    void fill(T* place, std::ptrdiff_t count) const {
        for (std::ptrdiff_t i = 0; i < count; i += run_.channels)
            for (int c = 0; c < run_.channels; ++c) place[i + c] = outside_[c];
    }

    const RectangleRun<T>& run_;
    const bool needsRows_;
    const RowWindows<op, T> rows_;
    const std::ptrdiff_t height_;
    Image<T> lines_;
    std::ptrdiff_t lineCount_ = 1;
    T outside_[4];
};

} // namespace

template <class T>
std::size_t rectangleLeastBytes(std::ptrdiff_t width, int channels, std::ptrdiff_t reachX) {
    return lineBytes<T>(width, channels, reachX);
}

template <MorphOp op, class T> void strongestOfRectangle(const RectangleRun<T>& run) {
    Runner<op, T>(run).run();
}

template std::size_t rectangleLeastBytes<Lum8u>(std::ptrdiff_t, int, std::ptrdiff_t);
template std::size_t rectangleLeastBytes<Lum16u>(std::ptrdiff_t, int, std::ptrdiff_t);
template std::size_t rectangleLeastBytes<Lum16s>(std::ptrdiff_t, int, std::ptrdiff_t);
template std::size_t rectangleLeastBytes<Lum32f>(std::ptrdiff_t, int, std::ptrdiff_t);

template void strongestOfRectangle<MorphOp::dilate>(const RectangleRun<Lum8u>&);
template void strongestOfRectangle<MorphOp::dilate>(const RectangleRun<Lum16u>&);
template void strongestOfRectangle<MorphOp::dilate>(const RectangleRun<Lum16s>&);
template void strongestOfRectangle<MorphOp::dilate>(const RectangleRun<Lum32f>&);
template void strongestOfRectangle<MorphOp::erode>(const RectangleRun<Lum8u>&);
template void strongestOfRectangle<MorphOp::erode>(const RectangleRun<Lum16u>&);
template void strongestOfRectangle<MorphOp::erode>(const RectangleRun<Lum16s>&);
template void strongestOfRectangle<MorphOp::erode>(const RectangleRun<Lum32f>&);

} // namespace lum::kernels

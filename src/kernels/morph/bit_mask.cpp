#include "kernels/morph/bit_mask.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "kernels/morph/bit_rows.h"
#include "kernels/morph/mask_plan.h"

namespace lum::kernels {
namespace {

/// Bytes that hold this number of bits from any bit of the first byte on.
constexpr std::ptrdiff_t bytesForBits(std::ptrdiff_t bits) { return (bits + 7 + 7) >> 3; }

/// A line of source bits with space for the margin before them, and for blocks that run over the end.
std::ptrdiff_t lineBytes(std::ptrdiff_t width, const BitMask& mask) {
    return bytesForBits(width + mask.width - 1) + 2;
}
std::ptrdiff_t stagedBytes(std::ptrdiff_t width, const BitMask& mask) {
    return lineBytes(width, mask) + (mask.anchorX >> 3) + 2 + bitLineSlack;
}

bool isFull(const BitMask& mask) {
    return std::all_of(mask.cells, mask.cells + mask.width * mask.height,
                       [](Lum8u cell) { return cell != 0; });
}

/// Source rows as bytes, with the margin pixels at both ends set: bit `firstBit() + x` of the staged line is pixel x.
class StagedRows {
  public:
    explicit StagedRows(const BitMaskRun& run)
        : run_(run),
          staged_(run.work + (run.mask.anchorX >> 3) + 2),
          firstByte_((run.src.bit - run.readable.left) >> 3),
          bytes_(((run.src.bit + run.width + run.readable.right - 1) >> 3) - firstByte_ + 1) {}

    Lum8u* line() const { return staged_; }
    std::ptrdiff_t bytes() const { return bytes_; }
    std::ptrdiff_t firstBit() const { return run_.src.bit - 8 * firstByte_; }
    const Lum8u* source(std::ptrdiff_t y) const { return run_.src.bytes.row(y) + firstByte_; }
    Image<const Lum8u> sourcesFrom(std::ptrdiff_t y) const { return {source(y), run_.src.bytes.step}; }

    /// The pixels that can not be read.
    void setMargins(bool left, bool right) const {
        const std::ptrdiff_t first = firstBit();
        const std::ptrdiff_t reach = run_.mask.width - 1 - run_.mask.anchorX;
        setBits(staged_, first - run_.mask.anchorX, first - run_.readable.left, left);
        setBits(staged_, first + run_.width + run_.readable.right, first + run_.width + reach, right);
    }

    bool leftmost() const { return bitAt(staged_, firstBit() - run_.readable.left); }
    bool rightmost() const { return bitAt(staged_, firstBit() + run_.width + run_.readable.right - 1); }

  private:
    const BitMaskRun& run_;
    Lum8u* const staged_;
    const std::ptrdiff_t firstByte_;
    const std::ptrdiff_t bytes_;
};

/// A full rectangle: rows are joined first, then windows of bits grow along the row.
template <MorphOp op> void joinUnderRectangle(const BitMaskRun& run) {
    constexpr bool dominant = op == MorphOp::dilate;
    const BitMask& mask = run.mask;
    const StagedRows rows(run);
    const std::ptrdiff_t top = -run.readable.top;
    const std::ptrdiff_t bottom = run.height + run.readable.bottom;
    // The outermost pixels are in the window already, so repeating them adds nothing.
    const bool margin = run.outside == Outside::fill ? run.value : !dominant;
    const auto grown = static_cast<std::ptrdiff_t>(
        std::bit_floor(static_cast<std::size_t>(std::max<std::ptrdiff_t>(mask.width - 1, 1))));
    // Of the destination's byte 0, bit 0.
    const std::ptrdiff_t first = rows.firstBit() - mask.anchorX - run.dst.bit;
    const BitPlace one[] = {BitPlace::of(rows.line(), first)};
    const BitPlace two[] = {one[0], BitPlace::of(rows.line(), first + mask.width - grown)};
    // The line with the margins at both ends.
    const std::ptrdiff_t before = (mask.anchorX >> 3) + 2;
    const std::ptrdiff_t all =
        before + ((rows.firstBit() + run.width + mask.width - 1 - mask.anchorX + 7) >> 3);

    for (std::ptrdiff_t y = 0; y < run.height; ++y) {
        Lum8u* const dst = run.dst.bytes.row(y);
        const std::ptrdiff_t firstRow = std::max(y - mask.anchorY, top);
        const std::ptrdiff_t lastRow = std::min(y - mask.anchorY + mask.height, bottom);
        const bool isCut = lastRow - firstRow < mask.height;
        if (isCut && margin == dominant) {
            setBits(dst, run.dst.bit, run.dst.bit + run.width, dominant);
            continue;
        }
        BitRows<op>::joinRows(rows.sourcesFrom(firstRow), lastRow - firstRow, rows.line(), rows.bytes());
        rows.setMargins(margin, margin);
        keepingOtherBits(dst, run.dst.bit, run.width, [&](std::ptrdiff_t bytes) {
            if (mask.width == 1) return BitRows<op>::join(one, dst, bytes);
            if (mask.width == 3) return BitRows<op>::joinThree(one[0], dst, bytes);
            for (std::ptrdiff_t distance = 1; distance < grown; distance *= 2)
                BitRows<op>::growInPlace(rows.line() - before, all - (2 * distance - 1) / 8, distance);
            BitRows<op>::join(two, dst, bytes);
        });
    }
}

/// Any mask, as in strongestOfMask(): lines of windows of 1, 2, 4, ... bits of each source row, and taps into them.
template <MorphOp op> class MaskRunner {
  public:
    explicit MaskRunner(const BitMaskRun& run)
        : run_(run),
          mask_{run.mask.cells, run.mask.width, run.mask.height},
          rows_(run),
          lineBytes_(lineBytes(run.width, run.mask)),
          lines_(run.work + stagedBytes(run.width, run.mask)) {
        const std::ptrdiff_t linesThatFit =
            (static_cast<std::ptrdiff_t>(run.workBytes) - stagedBytes(run.width, run.mask)) /
            (mask_.height * (lineBytes_ + bitLineSlack));
        classes_ =
            bestClasses(mask_, static_cast<int>(std::clamp<std::ptrdiff_t>(linesThatFit, 1, mostClasses)));
    }

    void run() {
        const std::ptrdiff_t anchorY = run_.mask.anchorY;
        for (std::ptrdiff_t i = 0; i < mask_.height - 1; ++i) prepareRow(i - anchorY, i);
        std::ptrdiff_t slot = 0;
        for (std::ptrdiff_t y = 0; y < run_.height; ++y) {
            prepareRow(y - anchorY + mask_.height - 1, slot == 0 ? mask_.height - 1 : slot - 1);
            Lum8u* const dst = run_.dst.bytes.row(y);
            keepingOtherBits(dst, run_.dst.bit, run_.width,
                             [&](std::ptrdiff_t bytes) { takeTaps(slot, dst, bytes); });
            slot = slot == mask_.height - 1 ? 0 : slot + 1;
        }
    }

  private:
    static constexpr int mostClasses = 6;
    static constexpr int mostTaps = 128;

    Lum8u* line(std::ptrdiff_t slot, int k) const {
        return lines_ + (slot * classes_ + k) * (lineBytes_ + bitLineSlack);
    }

    /// Bit i of the lines of a source row is the pixel under the mask's first column at bit i of the destination row.
    void prepareRow(std::ptrdiff_t y, std::ptrdiff_t slot) {
        const std::ptrdiff_t top = -run_.readable.top;
        const std::ptrdiff_t bottom = run_.height + run_.readable.bottom;
        const bool isOutside = y < top || y >= bottom;
        if (isOutside && run_.outside == Outside::fill) {
            for (int k = 0; k < classes_; ++k)
                std::memset(line(slot, k), run_.value ? 0xFF : 0, lineBytes_ + bitLineSlack);
            return;
        }
        std::memcpy(rows_.line(), rows_.source(std::clamp(y, top, bottom - 1)), rows_.bytes());
        if (run_.outside == Outside::fill)
            rows_.setMargins(run_.value, run_.value);
        else
            rows_.setMargins(rows_.leftmost(), rows_.rightmost());
        const BitPlace first[] = {
            BitPlace::of(rows_.line(), rows_.firstBit() - run_.mask.anchorX - run_.dst.bit)};
        BitRows<op>::join(first, line(slot, 0), lineBytes_);
        for (int k = 1; k < classes_; ++k)
            BitRows<op>::grow(line(slot, k - 1), line(slot, k), lineBytes_, std::ptrdiff_t{1} << (k - 1));
    }

    void takeTaps(std::ptrdiff_t slot, Lum8u* dst, std::ptrdiff_t bytes) const {
        BitPlace places[mostTaps];
        int count = 0;
        bool isLater = false;
        forEachRun(mask_, [&](std::ptrdiff_t row, std::ptrdiff_t column, std::ptrdiff_t length) {
            const int k = classOfRun(length, classes_);
            const std::ptrdiff_t window = std::ptrdiff_t{1} << k;
            std::ptrdiff_t place = slot + row;
            if (place >= mask_.height) place -= mask_.height;
            for (std::ptrdiff_t i = 0; i < length; i += window) {
                if (count == mostTaps) {
                    BitRows<op>::joinMany(places, count, dst, bytes, isLater);
                    isLater = true;
                    count = 0;
                }
                places[count++] = BitPlace::of(line(place, k), column + std::min(i, length - window));
            }
        });
        BitRows<op>::joinMany(places, count, dst, bytes, isLater);
    }

    const BitMaskRun& run_;
    const Mask mask_;
    const StagedRows rows_;
    const std::ptrdiff_t lineBytes_;
    Lum8u* const lines_;
    int classes_ = 1;
};

} // namespace

std::size_t bitMaskLeastBytes(std::ptrdiff_t width, const BitMask& mask) {
    return stagedBytes(width, mask) + mask.height * (lineBytes(width, mask) + bitLineSlack);
}

template <MorphOp op> void joinUnderMask(const BitMaskRun& run) {
    if (isFull(run.mask))
        joinUnderRectangle<op>(run);
    else
        MaskRunner<op>(run).run();
}

void copyBits(BitImage<const Lum8u> src, BitImage<Lum8u> dst, std::ptrdiff_t width, std::ptrdiff_t height,
              Lum8u* work) {
    const Lum8u cell = 1;
    joinUnderRectangle<MorphOp::dilate>(
        {src, dst, width, height, {&cell, 1, 1, 0, 0}, {}, Outside::repeat, false, work, 0});
}

template void joinUnderMask<MorphOp::dilate>(const BitMaskRun&);
template void joinUnderMask<MorphOp::erode>(const BitMaskRun&);

} // namespace lum::kernels

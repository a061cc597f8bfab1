#include "kernels/segment/label_runs.h"

#include <algorithm>
#include <array>
#include <bit>
#include <type_traits>

#include "frame/arena.h"
#include "frame/lanes_parts.h"
#include "kernels/segment/row_runs.h"
#include "kernels/segment/write_run.h"

namespace lum::kernels {
namespace {

template <class T> void addRow(JoinedRuns& runs, const T* row, const T* above, int width, bool corners) {
    RunContacts contacts(corners);
    runs.beginRow();
    forEachBlock(row, width, [&](std::uint32_t bits, int x) {
        std::uint32_t bitsAbove = 0;
        if (above != nullptr) {
            const int left = width - x;
            bitsAbove = left >= 32    ? setBits(above + x)
                        : width >= 32 ? setBits(above + width - 32) >> (32 - left)
                                      : setBits(above, left);
        }
        runs.add(contacts.of(bits, bitsAbove));
    });
}

/// A row has at most (width + 1) / 2 runs.
std::size_t mostRuns(LumSize size) {
    return (static_cast<std::size_t>(size.width) + 1) / 2 * static_cast<std::size_t>(size.height);
}

/// Turns parents into labels; gives the number of regions.
std::size_t labelRegions(RunNumber* parents, RunNumber count, Labels labels) {
    std::size_t regions = 0;
    for (RunNumber run = 0; run < count; ++run) {
        const RunNumber parent = parents[run];
        // Not a branch, which could not be predicted.
        const RunNumber isRoot = parent == run ? 1 : 0;
        const RunNumber chosen = 0 - isRoot;
        parents[run] = (static_cast<RunNumber>(labels.next(isRoot)) & chosen) | (parents[parent] & ~chosen);
        regions += isRoot;
    }
    return regions;
}

/// Writes the labels over a row's runs; gives the labels of the next row.
template <class T> const RunNumber* writeOver(T* row, int width, const RunNumber* labels) {
    // A run has been read to its end when it is written, and stays one where it is read again.
    vectorRuns(row, width,
               [&](int left, int end) { writeRun(row + left, end - left, static_cast<T>(*labels++)); });
    return labels;
}

/// Writes labels and zeros into another row.
template <class Src, class Dst>
const RunNumber* writeRow(const Src* src, Dst* dst, int width, const RunNumber* labels) {
    constexpr int N = 16;
    int begin = 0;
    Dst value = 0;
    // Whole blocks, beyond the end of a run, where the next one is written over them; the tail of the row by writeRun().
    const auto writeUpTo = [&](int end) {
        const auto block = broadcast<N>(value);
        for (; begin < end; begin += N) {
            if (begin > width - N) {
                writeRun(dst + begin, end - begin, value);
                break;
            }
            store(block, dst + begin);
        }
        begin = end;
    };
    std::uint32_t last = 0;
    forEachBlock(src, width, [&](std::uint32_t bits, int x) {
        std::uint32_t changes = bits ^ (bits << 1 | last);
        last = bits >> 31;
        for (; changes != 0; changes &= changes - 1) {
            writeUpTo(x + std::countr_zero(changes));
            value = value == 0 ? static_cast<Dst>(*labels++) : Dst{0};
        }
    });
    writeUpTo(width);
    return labels;
}

/// How four pixels take their labels from four of neighbouring runs, of which the first is that of the last run before the
/// pixels. The index is four bits of pixels, set where they are not 0, after that of the pixel before them.
struct LabelChoice {
    static constexpr int count = 32;
    alignas(16) std::array<std::array<unsigned char, 16>, count> bytes{};
    /// Runs that begin at the pixels.
    std::array<unsigned char, count> starts{};

    constexpr LabelChoice() {
        for (unsigned index = 0; index < count; ++index)
            for (unsigned i = 0; i < 4; ++i) {
                const bool before = (index >> i & 1) != 0;
                const bool isSet = (index >> (i + 1) & 1) != 0;
                if (isSet && !before) ++starts[index];
                for (unsigned k = 0; k < 4; ++k)
                    bytes[index][4 * i + k] =
                        static_cast<unsigned char>(isSet ? 4 * starts[index] + k : 0x80);
            }
    }
};
constexpr LabelChoice labelChoice;

/// What quadsOfRow() may read after the labels of a row's runs.
constexpr int labelsReadAhead = 3;

/// As writeRow(), four pixels at a time and with no branch on where runs begin and end, which nothing predicts. The label
/// before those of the row can be read, and labelsReadAhead after them.
const RunNumber* quadsOfRow(const Lum8u* src, Lum32s* dst, int width, const RunNumber* labels) {
    std::uint32_t last = 0;
    forEachBlock(src, width, [&](std::uint32_t bits, int x) {
        const std::uint32_t before = bits << 1 | last;
        last = bits >> 31;
        const int count = std::min(width - x, 32);
        const auto quad = [&](int i) LUM_INLINED {
            const std::uint32_t index = (i == 0 ? before : bits >> (i - 1)) % LabelChoice::count;
            const auto chosen =
                shuffleUnits(bitsAs<Lum8u>(load<4>(labels - 1)), load<16>(labelChoice.bytes[index].data()));
            labels += labelChoice.starts[index];
            return bitsAs<Lum32s>(chosen);
        };
        if (count == 32) {
            // 32 pixels of one value
            if (bits == before)
                return store(broadcast<32>(static_cast<Lum32s>(bits == 0 ? 0 : labels[-1])), dst + x);
            // 32 pixels
            forParts<4, 32>([&](int i) LUM_INLINED { store(quad(i), dst + x + i); });
            return;
        }
        int i = 0;
        // 4 pixels per iteration
        for (; i <= count - 4; i += 4) store(quad(i), dst + x + i);
        // tail: staged copy
        if (i < count) storePartial(quad(i), dst + x + i, count - i);
    });
    return labels;
}

} // namespace

std::size_t labelRunsBytes(LumSize size) {
    return mostRuns(size) * sizeof(RunNumber) + alignof(RunNumber) - 1;
}

template <class Src, class Dst>
std::size_t labelRuns(Image<const Src> src, Image<Dst> dst, LumSize size, Connected connected, Labels labels,
                      unsigned char* block) {
    JoinedRuns runs(reinterpret_cast<RunNumber*>(alignedUp(block, alignof(RunNumber))), mostRuns(size));
    for (int y = 0; y < size.height; ++y)
        addRow(runs, src.row(y), y > 0 ? src.row(y - 1) : nullptr, size.width, connected == Connected::eight);
    const std::size_t count = labelRegions(runs.parents(), runs.count(), labels);
    const RunNumber* const labelsBegin = runs.parents();
    const RunNumber* label = labelsBegin;
    for (int y = 0; y < size.height; ++y) {
        if constexpr (std::is_same_v<Src, Dst>) {
            label = writeOver(dst.row(y), size.width, label);
        } else {
            const auto read = static_cast<std::size_t>(label - labelsBegin);
            const std::size_t reached = read + mostRuns({size.width, 1}) + labelsReadAhead;
            if (read > 0 && reached <= mostRuns(size))
                label = quadsOfRow(src.row(y), dst.row(y), size.width, label);
            else
                label = writeRow(src.row(y), dst.row(y), size.width, label);
        }
    }
    return count;
}

template std::size_t labelRuns(Image<const Lum8u>, Image<Lum8u>, LumSize, Connected, Labels, unsigned char*);
template std::size_t labelRuns(Image<const Lum16u>, Image<Lum16u>, LumSize, Connected, Labels,
                               unsigned char*);
template std::size_t labelRuns(Image<const Lum8u>, Image<Lum32s>, LumSize, Connected, Labels, unsigned char*);

} // namespace lum::kernels

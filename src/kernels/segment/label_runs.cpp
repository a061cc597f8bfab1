#include "kernels/segment/label_runs.h"

#include <bit>
#include <type_traits>

#include "frame/arena.h"
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
        if (parent == run) {
            parents[run] = static_cast<RunNumber>(labels.next());
            ++regions;
        } else {
            parents[run] = parents[parent];
        }
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
    const RunNumber* label = runs.parents();
    for (int y = 0; y < size.height; ++y) {
        if constexpr (std::is_same_v<Src, Dst>)
            label = writeOver(dst.row(y), size.width, label);
        else
            label = writeRow(src.row(y), dst.row(y), size.width, label);
    }
    return count;
}

template std::size_t labelRuns(Image<const Lum8u>, Image<Lum8u>, LumSize, Connected, Labels, unsigned char*);
template std::size_t labelRuns(Image<const Lum16u>, Image<Lum16u>, LumSize, Connected, Labels,
                               unsigned char*);
template std::size_t labelRuns(Image<const Lum8u>, Image<Lum32s>, LumSize, Connected, Labels, unsigned char*);

} // namespace lum::kernels

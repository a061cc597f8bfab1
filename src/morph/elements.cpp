#include "morph/elements.h"

#include <cstddef>
#include <cstring>

#include "frame/arena.h"

namespace lum {
namespace {

/// The cells of a record: an odd number of columns and of rows.
struct Box {
    Lum8u* cells;
    std::ptrdiff_t width;
    std::ptrdiff_t height;

    bool isSet(std::ptrdiff_t row, std::ptrdiff_t column) const { return cells[row * width + column] != 0; }
};

void fillBox(const Box& box, const Lum8u* mask, LumSizeL size, MaskPadding padding) {
    const bool before = padding == MaskPadding::before;
    const std::ptrdiff_t firstRow = before ? box.height - size.height : 0;
    const std::ptrdiff_t firstColumn = before ? box.width - size.width : 0;
    for (std::ptrdiff_t i = 0; i < box.width * box.height; ++i) box.cells[i] = 0;
    for (std::ptrdiff_t row = 0; row < size.height; ++row)
        for (std::ptrdiff_t column = 0; column < size.width; ++column)
            if (mask[row * size.width + column] != 0)
                box.cells[(row + firstRow) * box.width + column + firstColumn] = 255;
}

void fillRowLists(const Box& box, Lum16u* lists) {
    for (std::ptrdiff_t row = 0; row < box.height; ++row, lists += box.width + 1) {
        std::ptrdiff_t count = 0;
        for (std::ptrdiff_t column = 0; column < box.width; ++column)
            if (box.isSet(row, column)) lists[++count] = static_cast<Lum16u>(column);
        lists[0] = static_cast<Lum16u>(count);
    }
}

/// The row in which a gap splits the cells is the last that is written.
bool fillRowRuns(const Box& box, Lum16u* runs) {
    constexpr std::ptrdiff_t none = 0xFFFF;
    for (std::ptrdiff_t row = 0; row < box.height; ++row, runs += 2) {
        std::ptrdiff_t count = 0, first = none, last = none;
        for (std::ptrdiff_t column = 0; column < box.width; ++column) {
            if (!box.isSet(row, column)) continue;
            if (count++ == 0) first = column;
            last = column;
        }
        runs[0] = static_cast<Lum16u>(count);
        runs[1] = static_cast<Lum16u>(first);
        if (count > 0 && last - first + 1 != count) return false;
    }
    return true;
}

/// The only line with `full` set cells, if no other has more than one; else -1.
template <class CountOfLine>
std::ptrdiff_t onlyFullLine(std::ptrdiff_t lines, std::ptrdiff_t full, CountOfLine countOfLine) {
    std::ptrdiff_t found = -1;
    for (std::ptrdiff_t line = 0; line < lines; ++line) {
        const std::ptrdiff_t count = countOfLine(line);
        if (count != full && count <= 1) continue;
        if (count != full || found >= 0) return -1;
        found = line;
    }
    return found;
}

/// Writes the cross's row and column over the first run. A row is full with as many cells as the box has rows, and a
/// column with as many as it has columns: only square boxes hold a cross.
bool findCross(const Box& box, Lum16u* runs) {
    if (box.width < 2 || box.height < 2) return false;
    const std::ptrdiff_t fullRow = onlyFullLine(box.height, box.height, [&](std::ptrdiff_t row) {
        std::ptrdiff_t count = 0;
        for (std::ptrdiff_t column = 0; column < box.width; ++column) count += box.isSet(row, column);
        return count;
    });
    if (fullRow < 0) return false;
    const std::ptrdiff_t fullColumn = onlyFullLine(box.width, box.width, [&](std::ptrdiff_t column) {
        std::ptrdiff_t count = 0;
        for (std::ptrdiff_t row = 0; row < box.height; ++row) count += box.isSet(row, column);
        return count;
    });
    if (fullColumn < 0) return false;
    runs[0] = static_cast<Lum16u>(fullRow);
    runs[1] = static_cast<Lum16u>(fullColumn);
    return true;
}

struct KnownShape {
    std::uint32_t flags;
    std::ptrdiff_t side;
    const char* cells;
};

constexpr KnownShape knownShapes[] = {{shapeCross3x3, 3,
                                       ".#."
                                       "###"
                                       ".#."},
                                      {shapeDiamond5x5, 5,
                                       "..#.."
                                       ".###."
                                       "#####"
                                       ".###."
                                       "..#.."},
                                      {shapeDisc7x7, 7,
                                       "...#..."
                                       ".#####."
                                       ".#####."
                                       "#######"
                                       ".#####."
                                       ".#####."
                                       "...#..."}};

bool matches(const Box& box, const KnownShape& shape) {
    if (box.width != shape.side || box.height != shape.side) return false;
    for (std::ptrdiff_t i = 0; i < shape.side * shape.side; ++i)
        if ((box.cells[i] != 0) != (shape.cells[i] == '#')) return false;
    return true;
}

std::uint32_t coverageFlags(const Box& box) {
    std::uint32_t flags = shapeFullRectangle | shapeEmpty;
    bool top = false, bottom = false, left = false, right = false;
    for (std::ptrdiff_t row = 0; row < box.height; ++row)
        for (std::ptrdiff_t column = 0; column < box.width; ++column) {
            if (!box.isSet(row, column)) {
                flags &= ~shapeFullRectangle;
                continue;
            }
            flags &= ~shapeEmpty;
            top |= row == 0;
            bottom |= row == box.height - 1;
            left |= column == 0;
            right |= column == box.width - 1;
        }
    return top && bottom && left && right ? flags : flags | shapeEmptyEdge;
}

} // namespace

void buildMaskRecord(LumMorphMaskRecord* record, const Lum8u* mask, LumSizeL size, MaskPadding padding) {
    Box box{nullptr, size.width | 1, size.height | 1};
    Arena arena(record + 1);
    box.cells = arena.allocate<Lum8u>(static_cast<std::size_t>(box.width * box.height));
    record->cells = box.cells;
    record->width = record->boxWidth = static_cast<Lum32s>(box.width);
    record->height = record->boxHeight = static_cast<Lum32s>(box.height);
    record->anchorX = static_cast<Lum32s>(size.width >> 1);
    record->anchorY = static_cast<Lum32s>(size.height >> 1);
    record->rowLists = arena.allocate<Lum16u>(static_cast<std::size_t>((box.width + 1) * box.height));
    record->rowRuns = arena.allocate<Lum16u>(static_cast<std::size_t>(2 * box.height));

    fillBox(box, mask, size, padding);
    fillRowLists(box, record->rowLists);
    record->rowsAreRuns = fillRowRuns(box, record->rowRuns);
    record->isCross = findCross(box, record->rowRuns);
    record->isKnownShape = 0;
    std::uint32_t flags = coverageFlags(box);
    if (record->rowsAreRuns) flags |= shapeRowsAreRuns;
    if (record->isCross) flags |= shapeCross;
    for (const KnownShape& shape : knownShapes)
        if (matches(box, shape)) {
            record->isKnownShape = 1;
            flags |= shape.flags | shapeKnown;
        }
    record->shapeFlags = flags;
}

void buildBitState(LumMorphBitState* state, const Lum8u* mask, LumSizeL size, LumPointL anchor,
                   std::intptr_t roiWidth) {
    auto* copy = reinterpret_cast<Lum8u*>(state + 1);
    const auto cells = static_cast<std::size_t>(size.width * size.height);
    bool empty = true;
    for (std::size_t i = 0; i < cells && empty; ++i) empty = mask[i] == 0;
    // The mask may begin in the bytes that the copy ends in.
    std::memmove(copy, mask, cells);

    state->cells = copy;
    state->cellsForRows = empty ? nullptr : copy;
    state->cellsForColumns = empty ? nullptr : copy;
    state->reserved0 = nullptr;
    state->reserved1 = empty ? copy : nullptr;
    state->width = static_cast<Lum32s>(size.width);
    state->height = static_cast<Lum32s>(size.height);
    state->anchorX = empty ? 0 : static_cast<Lum32s>(anchor.x);
    state->anchorY = empty ? 0 : static_cast<Lum32s>(anchor.y);
    state->rightReach = empty ? 0 : static_cast<Lum32s>(size.width - anchor.x - 1);
    state->bottomReach = empty ? 0 : static_cast<Lum32s>(size.height - anchor.y - 1);
    state->bufferRowBytes = static_cast<Lum32s>(roundedUp(static_cast<std::uint32_t>(roiWidth), 16U));
    state->scratchBytes = 0;
    state->reserved2 = 0;
    state->reserved3 = 1;
    state->roiWidth = static_cast<Lum32s>(roiWidth);
    state->reserved4 = -1;
    state->kind = empty ? bitKindEmpty : bitKindGeneral;
}

} // namespace lum

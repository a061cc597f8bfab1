// Masks and the objects that are built from them, in blocks of exactly the queried size.
#pragma once

#include <random>
#include <string>
#include <vector>

#include "morph/objects.h"
#include "support/guarded_image.h"
#include "support/status_checks.h"

namespace support {

struct MorphMask {
    int width;
    int height;
    std::vector<Lum8u> cells;

    /// Rows of '.' and '#'; a set cell has any value but 0.
    static MorphMask of(const std::vector<std::string>& rows) {
        MorphMask mask{static_cast<int>(rows[0].size()), static_cast<int>(rows.size()), {}};
        for (const auto& row : rows)
            for (char cell : row)
                mask.cells.push_back(cell == '#' ? static_cast<Lum8u>(1 + mask.cells.size() % 255) : 0);
        return mask;
    }
    static MorphMask full(int width, int height) {
        return {width, height, std::vector<Lum8u>(static_cast<std::size_t>(width) * height, 1)};
    }
    static MorphMask empty(int width, int height) {
        return {width, height, std::vector<Lum8u>(static_cast<std::size_t>(width) * height, 0)};
    }
    /// About one cell in `oneIn` is set.
    static MorphMask random(int width, int height, unsigned seed, unsigned oneIn = 2) {
        MorphMask mask = empty(width, height);
        std::mt19937 engine(seed);
        for (auto& cell : mask.cells)
            cell = engine() % oneIn == 0 ? static_cast<Lum8u>(1 + engine() % 255) : 0;
        return mask;
    }

    bool isSet(int row, int column) const {
        return cells[static_cast<std::size_t>(row) * width + column] != 0;
    }
    LumSize size() const { return {width, height}; }
    LumSizeL sizeL() const { return {width, height}; }
    int boxWidth() const { return width | 1; }
    int boxHeight() const { return height | 1; }
    int boxCells() const { return boxWidth() * boxHeight(); }

    /// The array as members that read it with odd sides need it: the mask, and other bytes up to the odd box.
    std::vector<Lum8u> paddedCells(Lum8u after = 0) const {
        std::vector<Lum8u> padded = cells;
        padded.resize(boxCells(), after);
        return padded;
    }
    /// Element k changes places with element N - 1 - k.
    std::vector<Lum8u> reflected() const { return {cells.rbegin(), cells.rend()}; }
};

/// The element types and channels of the objects without _L; 1u is apart.
struct MorphObjectMember {
    const char* name;
    int elementBytes;
    int channels;
    LumDataType type;
    LumStatus (*getSize)(LumSize, LumSize, Lum32s*, Lum32s*);
    LumStatus (*init)(LumSize, const Lum8u*, LumSize, LumMorphMaskRecord*, Lum8u*);
    LumStatus (*pairGetSize)(LumSize, LumSize, Lum32s*, Lum32s*);
    LumStatus (*pairInit)(LumSize, const Lum8u*, LumSize, LumMorphPairState*, Lum8u*);
};

inline const std::vector<MorphObjectMember>& morphObjectMembers() {
    static const std::vector<MorphObjectMember> members = {
        {"8u_C1R", 1, 1, lumType8u, lumiMorphologyBorderGetSize_8u_C1R, lumiMorphologyBorderInit_8u_C1R,
         lumiMorphAdvGetSize_8u_C1R, lumiMorphAdvInit_8u_C1R},
        {"8u_C3R", 1, 3, lumType8u, lumiMorphologyBorderGetSize_8u_C3R, lumiMorphologyBorderInit_8u_C3R,
         lumiMorphAdvGetSize_8u_C3R, lumiMorphAdvInit_8u_C3R},
        {"8u_C4R", 1, 4, lumType8u, lumiMorphologyBorderGetSize_8u_C4R, lumiMorphologyBorderInit_8u_C4R,
         lumiMorphAdvGetSize_8u_C4R, lumiMorphAdvInit_8u_C4R},
        {"16u_C1R", 2, 1, lumType16u, lumiMorphologyBorderGetSize_16u_C1R, lumiMorphologyBorderInit_16u_C1R,
         lumiMorphAdvGetSize_16u_C1R, lumiMorphAdvInit_16u_C1R},
        {"16s_C1R", 2, 1, lumType16s, lumiMorphologyBorderGetSize_16s_C1R, lumiMorphologyBorderInit_16s_C1R,
         lumiMorphAdvGetSize_16s_C1R, lumiMorphAdvInit_16s_C1R},
        {"32f_C1R", 4, 1, lumType32f, lumiMorphologyBorderGetSize_32f_C1R, lumiMorphologyBorderInit_32f_C1R,
         lumiMorphAdvGetSize_32f_C1R, lumiMorphAdvInit_32f_C1R},
        {"32f_C3R", 4, 3, lumType32f, lumiMorphologyBorderGetSize_32f_C3R, lumiMorphologyBorderInit_32f_C3R,
         lumiMorphAdvGetSize_32f_C3R, lumiMorphAdvInit_32f_C3R},
        {"32f_C4R", 4, 4, lumType32f, lumiMorphologyBorderGetSize_32f_C4R, lumiMorphologyBorderInit_32f_C4R,
         lumiMorphAdvGetSize_32f_C4R, lumiMorphAdvInit_32f_C4R},
    };
    return members;
}

} // namespace support

#include <cstring>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "entry/entry_table.h"
#include "support/cache_report.h"

namespace {

struct ListedName {
    int ordinal;
    std::string name;
};

const std::vector<ListedName>& list() {
    static const std::vector<ListedName> names = {
#define LUM_EXPORT(ordinal, name, ...) {ordinal, #name},
#include "entry/exports.inc"
#undef LUM_EXPORT
    };
    return names;
}

/// The names that one implementation serves; every other name has its own. (The first pair differs in the type of the
/// size, so that a function serves both only where the two types are the same words.)
const std::vector<std::set<std::string>> groups = {
    {"lumiCannyGetSize", "lumiCannyGetSize_L"},
    {"lumiEigenValsVecsGetBufferSize_32f_C1R", "lumiMinEigenValGetBufferSize_32f_C1R"},
    {"lumiEigenValsVecsGetBufferSize_8u32f_C1R", "lumiMinEigenValGetBufferSize_8u32f_C1R"},
    {"lumiFilterColumnPipelineGetBufferSize_16s8s_C1R", "lumiFilterColumnPipelineGetBufferSize_16s8u_C1R",
     "lumiFilterColumnPipelineGetBufferSize_16s_C1R"},
    {"lumiFilterColumnPipelineGetBufferSize_16s8s_C3R", "lumiFilterColumnPipelineGetBufferSize_16s8u_C3R",
     "lumiFilterColumnPipelineGetBufferSize_16s_C3R"},
    {"lumiFilterColumnPipelineGetBufferSize_32f_C1R", "lumiFilterColumnPipelineGetBufferSize_32f_C3R"},
    {"lumiFilterLowpassGetBufferSize_8u_C1R", "lumiFilterSobelCrossGetBufferSize_8u16s_C1R"},
    {"lumiFindPeaks3x3GetBufferSize_32f_C1R", "lumiFindPeaks3x3GetBufferSize_32s_C1R"},
    {"lumiGetHaarClassifierSize_32f", "lumiGetHaarClassifierSize_32s"},
    {"lumiLabelMarkersGetBufferSize_16u_C1R", "lumiLabelMarkersGetBufferSize_8u32s_C1R",
     "lumiLabelMarkersGetBufferSize_8u_C1R"},
    {"lumiMorphGrayGetSize_32f_C1R", "lumiMorphGrayGetSize_8u_C1R"},
    {"lumiMorphGrayInit_32f_C1R", "lumiMorphGrayInit_8u_C1R"},
    {"lumiMorphSetMode", "lumiMorphSetMode_L"},
    {"lumiMorphologyBorderInit_16s_C1R", "lumiMorphologyBorderInit_16u_C1R",
     "lumiMorphologyBorderInit_32f_C1R", "lumiMorphologyBorderInit_32f_C3R",
     "lumiMorphologyBorderInit_32f_C4R", "lumiMorphologyBorderInit_8u_C1R", "lumiMorphologyBorderInit_8u_C3R",
     "lumiMorphologyBorderInit_8u_C4R"},
    {"lumiSegmentGradientGetBufferSize_8u_C1R", "lumiSegmentGradientGetBufferSize_8u_C3R"},
};

std::set<std::string> groupOf(const std::string& name) {
    if (sizeof(LumSize) == sizeof(LumSizeL) || groups.front().count(name) == 0)
        for (const auto& group : groups)
            if (group.count(name) != 0) return group;
    return {name};
}

/// What any slot holds, whatever its type.
using Slot = void (*)();

std::vector<Slot> slots() {
    std::vector<Slot> all(lum::slotCount);
    static_assert(sizeof(Slot) * lum::slotCount == sizeof(lumEntryTable));
    std::memcpy(all.data(), &lumEntryTable, sizeof(lumEntryTable));
    return all;
}

/// Calls an export with nothing: every argument word is 0. The caller takes its words off the stack itself, so a
/// function that takes fewer of them does not mind.
LumStatus callWithNothing(Slot function) {
    using Words =
        LumStatus (*)(void*, void*, void*, void*, void*, void*, void*, void*, void*, void*, void*, void*,
                      void*, void*, void*, void*, void*, void*, void*, void*, void*, void*, void*, void*);
    void* const no = nullptr;
    return reinterpret_cast<Words>(function)(no, no, no, no, no, no, no, no, no, no, no, no, no, no, no, no,
                                             no, no, no, no, no, no, no, no);
}

} // namespace

TEST(Exports, OrdinalsFollowTheByteOrderOfTheNames) {
    ASSERT_EQ(680U, list().size());
    for (std::size_t i = 0; i < list().size(); ++i) {
        EXPECT_EQ(static_cast<int>(i) + 1, list()[i].ordinal);
        if (i > 0) {
            EXPECT_LT(std::strcmp(list()[i - 1].name.c_str(), list()[i].name.c_str()), 0) << list()[i].name;
        }
    }
}

TEST(Exports, EveryExportRefusesACallWithNothing) {
    // These test sizes before pointers, and those a mode.
    const std::set<std::string> sizesFirst = {"lumiFilterSeparableGetBufferSize_L",
                                              "lumiFilterSeparableGetSpecSize_L"};
    const auto isOf = [](const std::string& name, const char* start) { return name.rfind(start, 0) == 0; };
    const auto statusOf = [&](const std::string& name) {
        if (isOf(name, "lumiPyramidLayerDownInit_")) return lumStatusBadArgument;
        if (name == "lumiCannyBorder_8u_C1R") return lumStatusMaskSizeError;
        const bool isSizeFirst = sizesFirst.count(name) != 0 || isOf(name, "lumiPyramidLayerUpGetSize_") ||
                                 isOf(name, "lumiPyramidLayerUpInit_") ||
                                 isOf(name, "lumiOpticalFlowPyrLKInit_") ||
                                 name == "lumiOpticalFlowPyrLKGetSize";
        return isSizeFirst ? lumStatusSizeError : lumStatusNullPointer;
    };
    const auto all = slots();
    for (const ListedName& entry : list()) {
        if (entry.name == "lumcvGetLibVersion") continue;
        EXPECT_EQ(statusOf(entry.name), callWithNothing(all[entry.ordinal - 1])) << entry.name;
    }
}

TEST(Exports, NamesOfAGroupShareOneImplementationAndNoOthersDo) {
    const auto all = slots();
    std::map<Slot, std::set<std::string>> served;
    for (const ListedName& entry : list()) served[all[entry.ordinal - 1]].insert(entry.name);
    EXPECT_EQ(sizeof(LumSize) == sizeof(LumSizeL) ? 656U : 657U, served.size());
    for (const auto& [implementation, names] : served) {
        EXPECT_NE(nullptr, implementation);
        EXPECT_EQ(groupOf(*names.begin()), names);
    }
}

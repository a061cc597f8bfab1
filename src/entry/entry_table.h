// The entry table: one pointer an export, in ordinal order, each with the type of its public prototype.
#pragma once

#include "lumcv.h"

namespace lum {

struct EntryTable {
#define LUM_EXPORT(ordinal, name, ...) decltype(&::name) name;
#include "entry/exports.inc"
#undef LUM_EXPORT
};

inline constexpr int slotCount = 680;
static_assert(sizeof(EntryTable) == slotCount * sizeof(void*));

} // namespace lum

/// Read only once the library is loaded; the stubs are its only readers.
extern "C" const lum::EntryTable lumEntryTable;

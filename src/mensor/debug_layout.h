// debug_layout.h: where a debugger finds what it shows of units, converters and values. For the
// library's own use; not installed.
//
// A stripped library has no debug information, and a program's own covers only the classes whose
// headers it includes. So the library carries this table: the printers (tools/gdb/mensor_gdb.py)
// look up its one exported name and read everything else from memory. They call no function, so they
// work on a process that is stopped anywhere, and on its core file.
#ifndef MENSOR_DEBUG_LAYOUT_H
#define MENSOR_DEBUG_LAYOUT_H

#include <cstdint>

#include "mensor/mensor_export.h"

namespace mensor {
namespace detail {

// All fields are words of the machine; the printers know their order. Offsets are in bytes. A change
// of the fields, or of what they mean, needs another number of the version here and in the printers.
struct DebugLayout {
    static constexpr std::uintptr_t CurrentVersion = 1;

    std::uintptr_t Version;
    const void*
        Tables;  // address of the pointer to the tables, which is null before their creation
    std::uintptr_t TablesUnitLabel;
    std::uintptr_t UnitSymbol;
    std::uintptr_t TransformedSystemUnit;
    std::uintptr_t TransformedToSystem;
    std::uintptr_t ProductElements;
    std::uintptr_t ProductSystemUnit;
    std::uintptr_t PowerSize;
    std::uintptr_t PowerUnit;
    std::uintptr_t PowerPow;
    std::uintptr_t PowerRoot;
    std::uintptr_t CompoundFirst;
    std::uintptr_t CompoundSecond;
    std::uintptr_t AddOffset;
    std::uintptr_t MultiplyFactor;
    std::uintptr_t ValueNumber;
    std::uintptr_t ValueUnit;

    static constexpr DebugLayout make();
};

}  // namespace detail

extern MENSOR_API const detail::DebugLayout debugLayout;

}  // namespace mensor

#endif  // MENSOR_DEBUG_LAYOUT_H

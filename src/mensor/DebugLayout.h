// DebugLayout.h: the offsets of the members that a debugger shows. Not installed.
//
// A stripped library has no debug information, and that of a program covers only the classes whose
// headers it includes. So the library contains this table. The printers (tools/gdb/mensor_gdb.py)
// look up its exported name and read everything else from memory. They call no function, so they
// work on a process that is stopped anywhere and on a core file.
#ifndef MENSOR_DEBUGLAYOUT_H
#define MENSOR_DEBUGLAYOUT_H

#include <cstdint>

#include "mensor/mensor_export.h"

namespace mensor::detail {

// All fields are machine words, and the printers know their order. Offsets are in bytes. To change
// a field or its meaning, change the version here and in the printers.
struct DebugLayout {
    static constexpr std::uintptr_t CurrentVersion = 1;

    std::uintptr_t Version;
    const void*
        Tables;  // the address of the pointer to the tables, which is null until they are created
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

}  // namespace mensor::detail

namespace mensor {

extern MENSOR_API const detail::DebugLayout debugLayout;

}  // namespace mensor

#endif  // MENSOR_DEBUGLAYOUT_H

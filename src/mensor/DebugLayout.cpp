#include "mensor/DebugLayout.h"

#include <cstddef>

#include "mensor/AddConverter.h"
#include "mensor/Converter.h"
#include "mensor/MultiplyConverter.h"
#include "mensor/ProductUnit.h"
#include "mensor/Tables.h"
#include "mensor/TransformedUnit.h"
#include "mensor/Unit.h"
#include "mensor/UnitRationalPower.h"
#include "mensor/ValueWithUnit.h"

// Both compilers support offsetof in classes with virtual functions, as long as no base class is
// virtual.
#pragma GCC diagnostic ignored "-Winvalid-offsetof"

namespace mensor {

constexpr detail::DebugLayout detail::DebugLayout::make() {
    return {CurrentVersion,
            &createdTables,
            offsetof(detail::Tables, UnitLabel),
            offsetof(CUnit, m_Symbol),
            offsetof(CTransformedUnit, _systemUnit),
            offsetof(CTransformedUnit, _toSystem),
            offsetof(CProductUnit, m_Elements),
            offsetof(CProductUnit, m_SystemUnitCach),
            sizeof(CUnitRationalPower),
            offsetof(CUnitRationalPower, m_Unit),
            offsetof(CUnitRationalPower, m_Pow),
            offsetof(CUnitRationalPower, m_Root),
            offsetof(CCompound, m_First),
            offsetof(CCompound, m_Second),
            offsetof(CAddConverter, m_Offset),
            offsetof(CMultiplyConverter, m_Factor),
            offsetof(CValueWithUnit, m_Value),
            offsetof(CValueWithUnit, m_Unit)};
}

// A constant, so it is initialised before any code runs.
const detail::DebugLayout debugLayout = detail::DebugLayout::make();

}  // namespace mensor

#include "mensor/AlternateUnit.h"

#include <stdexcept>
#include <utility>

#include "mensor/BaseUnit.h"
#include "mensor/require.h"

namespace mensor {

CAlternateUnit::CAlternateUnit(string_t symbol, CUnitPtr baseUnits)
    : CDerivedUnit(symbol), m_BaseUnits(std::move(baseUnits)) {
    requireUnit(m_BaseUnits, "CAlternateUnit::CAlternateUnit");
}

CAlternateUnit::~CAlternateUnit() = default;

CAlternateUnitPtr CAlternateUnit::getInstance(const string_t& symbol, CUnitPtr parent) {
    requireUnit(parent, "CAlternateUnit::getInstance");
    CUnitPtr baseUnits = parent->baseUnits();
    CUnitPtr unit =
        CUnit::getInstance(std::make_shared<CAlternateUnit>(symbol, std::move(baseUnits)));
    if (dynamic_cast<CBaseUnit*>(unit.get()) != nullptr && unit->getSymbol() == symbol) {
        throwSymbolIsTaken(symbol);
    }
    // The hash code may belong to a unit of another kind. The result still points at it as an
    // alternate unit. All functions that are called through the pointer are virtual.
    return CAlternateUnitPtr(unit, reinterpret_cast<CAlternateUnit*>(unit.get()));
}

void CAlternateUnit::calculateHashCode() { m_HashCode = hashFromString(m_Symbol); }
CUnitPtr CAlternateUnit::getCtxDimension() { return m_BaseUnits->getCtxDimension(); }
CUnitPtr CAlternateUnit::getSystemUnit() { return shared_from_this(); }

bool CAlternateUnit::equals(CUnitPtr that) const {
    if (that.get() == this) {
        return true;
    }
    return that && that->baseUnits() == m_BaseUnits &&
           mensor::toStdString(that->getSymbol()) == mensor::toStdString(m_Symbol);
}

CConverterPtr CAlternateUnit::getCtxToDimension() { return m_BaseUnits->getCtxToDimension(); }
CUnitPtr CAlternateUnit::baseUnits() { return m_BaseUnits; }

}  // namespace mensor

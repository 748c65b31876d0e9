#include "mensor/BaseUnit.h"

#include <stdexcept>
#include <utility>

#include "mensor/tables.h"
#include "mensor/text_stream.h"

namespace mensor {

CBaseUnit::CBaseUnit(const string_t& symbol) : CUnit(symbol) {}
CBaseUnit::~CBaseUnit() = default;

CBaseUnitPtr CBaseUnit::getInstance(const string_t& symbol) {
    CUnitPtr unit = CUnit::getInstance(CUnitPtr(new CBaseUnit(symbol)));
    // The hash may belong to a unit of another kind; the pointer says base unit all the same, and no
    // member reached through it relies on that.
    return CBaseUnitPtr(unit, reinterpret_cast<CBaseUnit*>(unit.get()));
}

void CBaseUnit::setDimension(CUnitPtr dimension, CConverterPtr toDimension) {
    // Through the unit's own pointer, since `this` may be a unit of another kind, see getInstance.
    const auto self = std::dynamic_pointer_cast<CBaseUnit>(shared_from_this());
    if (!self) {
        detail::CTextStream message;
        message << "The unit with the symbol " << mensor::toStdString(getSymbol())
                << " is not a base unit and has no dimension of its own to set";
        throw std::logic_error(message.str());
    }
    self->m_Dimension = std::move(dimension);
    self->m_ToDimension = std::move(toDimension);
    detail::advance(detail::contextEpoch);
    detail::tables().Dimensions.clear();
    detail::tables().ToDimensions.clear();
}

CUnitPtr CBaseUnit::getBaseUnits() { return shared_from_this(); }

void CBaseUnit::calculateHashCode() { m_HashCode = hashFromString(m_Symbol); }

// Without a dimension set, a base unit is its own: answered anew each time rather than stored, so
// that threads asking at once write nothing and the unit does not own itself.
CUnitPtr CBaseUnit::getCtxDimension() { return m_Dimension ? m_Dimension : shared_from_this(); }

CUnitPtr CBaseUnit::getSystemUnit() { return shared_from_this(); }

bool CBaseUnit::equals(CUnitPtr that) const {
    return that && mensor::toStdString(that->getSymbol()) == mensor::toStdString(m_Symbol);
}

CConverterPtr CBaseUnit::getCtxToDimension() {
    return m_ToDimension ? m_ToDimension : CConverter::identity();
}

CUnitPtr CBaseUnit::baseUnits() { return shared_from_this(); }

}  // namespace mensor

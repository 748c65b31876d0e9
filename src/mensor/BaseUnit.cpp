#include "mensor/BaseUnit.h"

#include <stdexcept>
#include <utility>

#include "mensor/Tables.h"
#include "mensor/TextStream.h"

namespace mensor {

CBaseUnit::CBaseUnit(const string_t& symbol) : CUnit(symbol) {}
CBaseUnit::~CBaseUnit() = default;

CBaseUnitPtr CBaseUnit::getInstance(const string_t& symbol) {
    CUnitPtr unit = CUnit::getInstance(CUnitPtr(new CBaseUnit(symbol)));
    // The hash code may belong to a unit of another kind. The result still points at it as a base
    // unit, and no function that is called through the pointer may rely on that.
    return CBaseUnitPtr(unit, reinterpret_cast<CBaseUnit*>(unit.get()));
}

void CBaseUnit::setDimension(CUnitPtr dimension, CConverterPtr toDimension) {
    // `this` may point at a unit of another kind (see getInstance), so its class is checked at run
    // time.
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

// A base unit without a dimension is its own dimension. That is not stored, so that concurrent
// calls write nothing and the unit does not own itself.
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

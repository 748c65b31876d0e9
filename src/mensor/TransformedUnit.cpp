#include "mensor/TransformedUnit.h"

#include <stdexcept>
#include <utility>

#include "mensor/require.h"

namespace mensor {

namespace {

void requireConverter(const CConverterPtr& converter, const char* function) {
    if (!converter) {
        throw std::invalid_argument(std::string(function) + ": the converter is an empty pointer");
    }
}

}  // namespace

CTransformedUnit::CTransformedUnit(CUnitPtr systemUnit, CConverterPtr toSystem)
    : CDerivedUnit(string_t()), _systemUnit(std::move(systemUnit)), _toSystem(std::move(toSystem)) {
    requireUnit(_systemUnit, "CTransformedUnit::CTransformedUnit");
    requireConverter(_toSystem, "CTransformedUnit::CTransformedUnit");
}

CTransformedUnit::~CTransformedUnit() = default;

CUnitPtr CTransformedUnit::getInstance(CUnitPtr parent, CConverterPtr toParent) {
    requireUnit(parent, "CTransformedUnit::getInstance");
    requireConverter(toParent, "CTransformedUnit::getInstance");
    CUnitPtr system = parent->getSystemUnit();
    CConverterPtr toSystem = parent->getConverterTo(system)->concatenate(std::move(toParent));
    return std::dynamic_pointer_cast<CTransformedUnit>(CUnit::getInstance(
        std::make_shared<CTransformedUnit>(std::move(system), std::move(toSystem))));
}

CConverterPtr CTransformedUnit::toSystem() const { return _toSystem; }

void CTransformedUnit::calculateHashCode() {
    m_HashCode = static_cast<int>(static_cast<unsigned>(_systemUnit->hashCode()) +
                                  static_cast<unsigned>(_toSystem->hashCode()));
}

CUnitPtr CTransformedUnit::getCtxDimension() { return _systemUnit->getCtxDimension(); }
CUnitPtr CTransformedUnit::getSystemUnit() { return _systemUnit; }

bool CTransformedUnit::equals(CUnitPtr that) const {
    if (that.get() == this) {
        return true;
    }
    if (!that || that->getSystemUnit() != _systemUnit) {
        return false;
    }
    const auto* transformed = dynamic_cast<const CTransformedUnit*>(that.get());
    return transformed != nullptr && _toSystem->equals(transformed->_toSystem);
}

CConverterPtr CTransformedUnit::getCtxToDimension() {
    return requireGiven(_systemUnit->getCtxToDimension(), "getCtxToDimension")
        ->concatenate(_toSystem);
}

string_t CTransformedUnit::getSymbol() {
    // CConverter::getSymbol() is not virtual and always returns the empty text.
    requireConverterTo(getSystemUnit());
    return string_t();
}

}  // namespace mensor

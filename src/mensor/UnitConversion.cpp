#include "mensor/UnitConversion.h"

#include <memory>
#include <stdexcept>
#include <utility>

#include "mensor/Chain.h"
#include "mensor/TextStream.h"
#include "mensor/identity.h"
#include "mensor/require.h"

namespace mensor::detail {

CConverterPtr UnitConversion::chain(const CConverterPtr& ofFrom, const CConverterPtr& ofTo) {
    const CConverterPtr& identity = theIdentity();
    if (ofTo != identity) {
        return Chain::throughInverse(ofFrom, ofTo);
    }
    return ofFrom == identity ? identity : std::make_shared<CCompound>(ofFrom, identity);
}

const CUnitPtr& UnitConversion::dimensionLocked(const CUnitPtr& unit) {
    auto& dimensions = tables().Dimensions;
    const auto found = dimensions.find(unit);
    if (found != dimensions.end()) {
        return found->second;
    }
    const CUnitPtr dimension = requireGiven(unit->getCtxDimension(), "getCtxDimension");
    return dimensions.emplace(unit, dimension).first->second;
}

// Looks both units up in the tables under one lock. Returns copies: without the lock, the entry of
// a unit that is not registered may be removed at any time.
UnitConversion::Converters UnitConversion::lookUp(CUnit& from, const CUnitPtr& to) {
    const Lock lock(tables().Mutex);
    const CUnitPtr self = from.shared_from_this();
    const CUnitPtr dimension = dimensionLocked(self);
    if (dimension != dimensionLocked(to)) {
        CTextStream message;
        message << mensor::toStdString(from.getSymbol()) << " is not compatible with "
                << mensor::toStdString(to->getSymbol()) << " in current context";
        throw std::invalid_argument(message.str());
    }
    CConverterPtr ofFrom = toDimensionLocked(self, dimension);
    return {std::move(ofFrom), toDimensionLocked(to, dimension)};
}

// The entry of `unit` in toDimensions(), which is made if there is none. If the unit throws, the
// entry stays empty. The caller holds the mutex.
CConverterPtr UnitConversion::toDimensionLocked(const CUnitPtr& unit, const CUnitPtr& dimension) {
    auto& toDimensions = tables().ToDimensions;
    if (!toDimensions[unit]) {
        CConverterPtr toDimension = requireGiven(unit->getCtxToDimension(), "getCtxToDimension");
        toDimensions[unit] = std::move(toDimension);
    }
    const CConverterPtr& toDimension = toDimensions[unit];
    cacheLocked(unit, dimension, toDimension);
    return toDimension;
}

// Caches what the tables hold for `unit`. `toDimension` is the entry itself, which stays where it
// is if the unit is registered. Other units are not cached. The caller holds the mutex.
void UnitConversion::cacheLocked(const CUnitPtr& unit, const CUnitPtr& dimension,
                                 const CConverterPtr& toDimension) {
    if (tablesHandedOut.load(std::memory_order_relaxed) || !isRegisteredLocked(unit)) {
        return;
    }
    unit->m_CachedDimension.store(dimension.get(), std::memory_order_relaxed);
    unit->m_CachedToDimension.store(&toDimension, std::memory_order_relaxed);
    unit->m_CachedEpoch.store(contextEpoch.load(std::memory_order_relaxed),
                              std::memory_order_release);
}

}  // namespace mensor::detail

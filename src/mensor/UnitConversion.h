// UnitConversion.h: dimensions, converters between units, and their caches. Not installed.
//
// dimensions() and toDimensions() are tables, so a client may change them (Tables.h). Each
// registered unit caches its two entries in members of its own, where they are read without a lock.
#ifndef MENSOR_UNITCONVERSION_H
#define MENSOR_UNITCONVERSION_H

#include <atomic>

#include "mensor/Tables.h"
#include "mensor/Unit.h"

namespace mensor::detail {

struct UnitConversion {
    // The entry of `unit` in toDimensions() from the cache, or null if the cache has none. If it is
    // there, m_CachedDimension holds the dimension.
    static const CConverterPtr* cachedToDimension(const CUnit& unit) {
        if (unit.m_CachedEpoch.load(std::memory_order_acquire) !=
                contextEpoch.load(std::memory_order_acquire) ||
            tablesHandedOut.load(std::memory_order_acquire)) {
            return nullptr;
        }
        return unit.m_CachedToDimension.load(std::memory_order_relaxed);
    }

    // Returns whether both units have the same dimension. The caller has found both in the cache.
    static bool haveSameCachedDimension(const CUnit& left, const CUnit& right) {
        return left.m_CachedDimension.load(std::memory_order_relaxed) ==
               right.m_CachedDimension.load(std::memory_order_relaxed);
    }

    // use(from, to) with the converters of the two units to their dimension. Throws
    // std::invalid_argument if the units are not compatible.
    template <class Use>
    static auto useConverters(CUnit& from, const CUnitPtr& to, Use use) {
        const CConverterPtr* const ofFrom = cachedToDimension(from);
        const CConverterPtr* const ofTo = cachedToDimension(*to);
        if (ofFrom != nullptr && ofTo != nullptr && haveSameCachedDimension(from, *to)) {
            return use(*ofFrom, *ofTo);
        }
        const Converters converters = lookUp(from, to);
        return use(converters.OfFrom, converters.OfTo);
    }

    // ofTo->inverse()->concatenate(ofFrom), where `ofTo` is most often the identity converter.
    static CConverterPtr chain(const CConverterPtr& ofFrom, const CConverterPtr& ofTo);

    // The entry of `unit` in dimensions(), which is made if there is none. The caller holds the
    // mutex.
    static const CUnitPtr& dimensionLocked(const CUnitPtr& unit);

private:
    struct Converters {
        CConverterPtr OfFrom;
        CConverterPtr OfTo;
    };

    static Converters lookUp(CUnit& from, const CUnitPtr& to);
    static CConverterPtr toDimensionLocked(const CUnitPtr& unit, const CUnitPtr& dimension);
    static void cacheLocked(const CUnitPtr& unit, const CUnitPtr& dimension,
                            const CConverterPtr& toDimension);
};

}  // namespace mensor::detail

#endif  // MENSOR_UNITCONVERSION_H

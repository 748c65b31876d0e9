// UnitAlgebra.h: the algebra of units, with and without filling the caches. Not installed.
//
// Each unit caches the results of multiply, divide, pow and root. A cache is a vector with one
// entry for each id or exponent up to the largest one used.
//
// A result that is found in a cache needs the unit's own mutex alone. Otherwise lookUp() releases
// that mutex, and fill() locks the mutex of the process and then that of the unit. Two locks are
// always taken in this order, so no deadlock is possible. tests/model/locks.pml models lookUp(),
// fill() and makeLocked(), and scripts/check compares the lines that it quotes.
#ifndef MENSOR_UNITALGEBRA_H
#define MENSOR_UNITALGEBRA_H

#include <cstddef>
#include <vector>

#include "mensor/Tables.h"
#include "mensor/Unit.h"

namespace mensor::detail {

struct UnitAlgebra {
    // The entry `index` of `cache`, which belongs to `unit`. If the entry is empty, `make` makes
    // it.
    template <class Make>
    static CUnitPtr lookUp(CUnit& unit, int index, std::vector<CUnitPtr>& cache, const Make& make) {
        {
            const Lock lock(unit.m_LookupVectorMutex);
            const auto entry = static_cast<std::size_t>(index);
            if (entry < cache.size() && cache[entry]) {
                return cache[entry];
            }
        }
        return fill(unit, index, cache, make);
    }

    // The result of `make`, with the locks of fill(), but without a cache.
    template <class Make>
    static CUnitPtr makeLocked(CUnit& unit, const Make& make) {
        const Lock processLock(tables().Mutex);
        const Lock lock(unit.m_LookupVectorMutex);
        return make();
    }

    // left->multiply(right) and unit->pow(pow)->root(root) for texts and for folding a product.
    // They read the caches but do not fill them: most units that a text or a fold passes through
    // are never needed again, and a cache would be as long as the largest id. The caller holds
    // CUnit::mutex().
    //
    // There is one exception. Units that were never registered share the entry 0 of a cache, and
    // the first result there is the result for all of them. multiplyUncached() fills that entry.
    static CUnitPtr multiplyUncached(const CUnitPtr& left, const CUnitPtr& right);
    static CUnitPtr raiseUncached(const CUnitPtr& unit, int pow, int root);

private:
    // The slow path of lookUp(), kept out of line so that a hit stays short.
    template <class Make>
    [[gnu::noinline]] static CUnitPtr fill(CUnit& unit, int index, std::vector<CUnitPtr>& cache,
                                           const Make& make) {
        const Lock processLock(tables().Mutex);
        const Lock lock(unit.m_LookupVectorMutex);
        CUnitPtr result = CUnit::getUnitByIndexOrExpandTable(index, cache);
        if (!result) {
            result = make();
            cache[static_cast<std::size_t>(index)] = result;
        }
        return result;
    }

    static CUnitPtr divideUncached(const CUnitPtr& left, const CUnitPtr& right);
    static CUnitPtr powUncached(const CUnitPtr& unit, int n);
    static CUnitPtr rootUncached(const CUnitPtr& unit, int n);
};

}  // namespace mensor::detail

#endif  // MENSOR_UNITALGEBRA_H

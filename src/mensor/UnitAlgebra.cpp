#include "mensor/UnitAlgebra.h"

#include <limits>

#include "mensor/Factors.h"
#include "mensor/ProductUnit.h"

namespace mensor::detail {

namespace {

// The entry of a cache, or null if it is empty. fill() holds CUnit::mutex(), and so does the
// caller.
const CUnitPtr* find(const std::vector<CUnitPtr>& cache, int index) {
    const auto entry = static_cast<std::size_t>(index);
    return entry < cache.size() && cache[entry] ? &cache[entry] : nullptr;
}

}  // namespace

CUnitPtr UnitAlgebra::multiplyUncached(const CUnitPtr& left, const CUnitPtr& right) {
    if (right->m_Id <= 0) {
        return left->multiply(right);
    }
    if (const CUnitPtr* const known = find(left->m_MultiplyLookUp, right->m_Id)) {
        return *known;
    }
    // Every text and every fold begins with the dimensionless unit.
    return left == CProductUnit::one() && isOwnKind(*right)
               ? right
               : CProductUnit::getProductInstance(left, right);
}

CUnitPtr UnitAlgebra::divideUncached(const CUnitPtr& left, const CUnitPtr& right) {
    if (right->m_Id <= 0) {
        return left->divide(right);
    }
    const CUnitPtr* const known = find(left->m_DivideLookUp, right->m_Id);
    return known != nullptr ? *known : CProductUnit::getQuotientInstance(left, right);
}

CUnitPtr UnitAlgebra::raiseUncached(const CUnitPtr& unit, int pow, int root) {
    return rootUncached(powUncached(unit, pow), root);
}

CUnitPtr UnitAlgebra::powUncached(const CUnitPtr& unit, int n) {
    if (n == 0 || n == 1 || n == std::numeric_limits<int>::min()) {
        return unit->pow(n);  // fills no cache
    }
    if (n < 0) {
        return divideUncached(CProductUnit::one(), powUncached(unit, -n));
    }
    const CUnitPtr* const known = find(unit->m_PowLookUp, n - 2);
    return known != nullptr ? *known : CProductUnit::getPowInstance(unit, n);
}

CUnitPtr UnitAlgebra::rootUncached(const CUnitPtr& unit, int n) {
    if (n == 0 || n == 1 || n == std::numeric_limits<int>::min()) {
        return unit->root(n);  // fills no cache
    }
    if (n < 0) {
        return divideUncached(CProductUnit::one(), rootUncached(unit, -n));
    }
    const CUnitPtr* const known = find(unit->m_RootLookUp, n - 2);
    return known != nullptr ? *known : CProductUnit::getRootInstance(unit, n);
}

}  // namespace mensor::detail

#include "mensor/uncached.h"

#include <cstddef>
#include <limits>

#include "mensor/ProductUnit.h"
#include "mensor/factors.h"

namespace mensor {
namespace detail {

// What the slot holds, or none. Whoever fills a slot holds mutex(), too, so that suffices for a reader.
const CUnitPtr* Uncached::find(const std::vector<CUnitPtr>& slots, int index) {
    const auto slot = static_cast<std::size_t>(index);
    return slot < slots.size() && slots[slot] ? &slots[slot] : nullptr;
}

CUnitPtr Uncached::multiply(const CUnitPtr& left, const CUnitPtr& right) {
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

CUnitPtr Uncached::divide(const CUnitPtr& left, const CUnitPtr& right) {
    if (right->m_Id <= 0) {
        return left->divide(right);
    }
    const CUnitPtr* const known = find(left->m_DivideLookUp, right->m_Id);
    return known != nullptr ? *known : CProductUnit::getQuotientInstance(left, right);
}

CUnitPtr Uncached::raise(const CUnitPtr& unit, int pow, int root) {
    return Uncached::root(Uncached::pow(unit, pow), root);
}

CUnitPtr Uncached::pow(const CUnitPtr& unit, int n) {
    if (n == 0 || n == 1 || n == std::numeric_limits<int>::min()) {
        return unit->pow(n);  // which fills no slot
    }
    if (n < 0) {
        return divide(CProductUnit::one(), pow(unit, -n));
    }
    const CUnitPtr* const known = find(unit->m_PowLookUp, n - 2);
    return known != nullptr ? *known : CProductUnit::getPowInstance(unit, n);
}

CUnitPtr Uncached::root(const CUnitPtr& unit, int n) {
    if (n == 0 || n == 1 || n == std::numeric_limits<int>::min()) {
        return unit->root(n);  // which fills no slot
    }
    if (n < 0) {
        return divide(CProductUnit::one(), root(unit, -n));
    }
    const CUnitPtr* const known = find(unit->m_RootLookUp, n - 2);
    return known != nullptr ? *known : CProductUnit::getRootInstance(unit, n);
}

}  // namespace detail
}  // namespace mensor

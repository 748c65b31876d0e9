#include "mensor/tables.h"

#include "mensor/BaseUnit.h"
#include "mensor/ProductUnit.h"

namespace mensor {
namespace detail {

std::atomic<Tables*> createdTables{nullptr};

Tables& createTables() {
    static Tables TheTables;
    createdTables.store(&TheTables, std::memory_order_release);
    return TheTables;
}

// Units hold each other: in the caches of the algebra, m the m² whose root is m; as the system unit
// that a product remembers, often itself; as the dimension of a base unit. At exit those circles are
// opened, or nothing would free them and every leak checker would report them.
Tables::~Tables() {
    for (const auto& [hash, unit] : Instances) {
        unit->m_MultiplyLookUp.clear();
        unit->m_DivideLookUp.clear();
        unit->m_RootLookUp.clear();
        unit->m_PowLookUp.clear();
        if (auto* product = dynamic_cast<CProductUnit*>(unit.get())) {
            product->m_SystemUnitCach = nullptr;
        } else if (auto* base = dynamic_cast<CBaseUnit*>(unit.get())) {
            base->m_Dimension = nullptr;
        }
    }
}

std::atomic<bool> handedOut{false};
std::atomic<unsigned> contextEpoch{1};
std::atomic<unsigned> namesEpoch{1};

}  // namespace detail
}  // namespace mensor

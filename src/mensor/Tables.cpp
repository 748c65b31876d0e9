#include "mensor/Tables.h"

#include "mensor/Kept.h"

namespace mensor::detail {

std::atomic<Tables*> createdTables{nullptr};

Tables& createTables() {
    static CKept<Tables> TheTables;
    createdTables.store(&*TheTables, std::memory_order_release);
    return *TheTables;
}

bool isRegistered(const CUnitPtr& unit) {
    const Lock lock(tables().Mutex);
    return isRegisteredLocked(unit);
}

bool isRegisteredLocked(const CUnitPtr& unit) {
    const auto found = tables().Instances.find(unit->hashCode());
    return found != tables().Instances.end() && found->second == unit;
}

std::atomic<bool> tablesHandedOut{false};
std::atomic<unsigned> contextEpoch{1};
std::atomic<unsigned> namesEpoch{1};

}  // namespace mensor::detail

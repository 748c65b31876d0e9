// Tables.h: the tables of the process, and when cached answers are valid. Not installed. Clients
// reach the tables through the accessors of Unit.h and UnitFormat.h.
//
// Two caches keep answers of the tables: each unit caches its entries in dimensions() and
// toDimensions() (UnitConversion.h), and CTextCache caches which unit a text denotes. A cached
// answer is always the answer of the tables:
//
// - The library counts its own changes. contextEpoch changes when the dimensions are cleared, namesEpoch
//   when a label or alias is added or removed. An entry of another epoch is not used. All other changes
//   only add entries that no earlier answer depends on: units and symbols are never removed, and a symbol is
//   looked up after labels and aliases.
// - The library cannot count the changes of a client. So the first call of an accessor that hands out a
//   table sets tablesHandedOut before the client has the reference, and the caches are off from then on.
// - A lookup that runs while another thread changes a table may return the old answer. That change has not
//   returned yet.
#ifndef MENSOR_TABLES_H
#define MENSOR_TABLES_H

#include <atomic>
#include <cstddef>
#include <map>
#include <memory>
#include <mutex>

#include "mensor/Unit.h"
#include "mensor/mensor_global.h"

namespace mensor::detail {

using Lock = std::lock_guard<std::recursive_mutex>;

struct Tables {
    std::recursive_mutex Mutex;  // guards all maps
    std::map<string_t, CUnitPtr> Symbols;
    std::map<int, CUnitPtr> Instances;
    std::size_t MostInstances = static_cast<std::size_t>(-1);  // see RegistrationBound.h
    std::map<CUnitPtr, CUnitPtr> Dimensions;
    std::map<CUnitPtr, CConverterPtr> ToDimensions;
    std::map<string_t, CUnitPtr> LabelUnit;
    std::map<CUnitPtr, string_t> UnitLabel;
    std::map<string_t, CUnitPtr> AliasUnit;
};

// The tables of the process. Created on first use, never destroyed.
extern std::atomic<Tables*> createdTables;
Tables& createTables();
inline Tables& tables() {
    Tables* const created = createdTables.load(std::memory_order_acquire);
    return created != nullptr ? *created : createTables();
}

// Returns whether `unit` is the registered unit of its hash code. The caller of the second function
// holds the mutex.
bool isRegistered(const CUnitPtr& unit);
bool isRegisteredLocked(const CUnitPtr& unit);

// The epochs begin with 1. An entry of a cache with the epoch 0 is empty.
extern std::atomic<bool> tablesHandedOut;
extern std::atomic<unsigned> contextEpoch;
extern std::atomic<unsigned> namesEpoch;

// Begins the next epoch. The caller holds the mutex; CBaseUnit::setDimension is serialised by its
// caller.
inline void advance(std::atomic<unsigned>& epoch) {
    const unsigned next = epoch.load(std::memory_order_relaxed) + 1;
    if (next == 0) {
        tablesHandedOut.store(
            true);  // a number must not be used twice, so the caches stay off from here on
    }
    epoch.store(next);
}

}  // namespace mensor::detail

#endif  // MENSOR_TABLES_H

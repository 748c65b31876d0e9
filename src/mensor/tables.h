// tables.h: the tables of the process, and the short ways past them. For the library's own use; not
// installed. Clients reach the tables through the accessors of Unit.h and UnitFormat.h.
//
// Two things are remembered beside the tables: for each unit the answer of dimensions() and of
// toDimensions() (members of CUnit), and for texts that were parsed the unit they denote
// (RememberedTexts.h). Why neither can ever differ from what the tables say:
//
// - What the library itself changes is counted: contextEpoch when the dimensions are forgotten,
//   namesEpoch when a label or alias comes or goes. What was remembered under another number is void.
//   Other changes add what nobody could have been told before: units are never removed, nor is a
//   symbol, and a symbol gives way to labels and aliases.
// - What a client changes is not counted. So the first call of an accessor that hands out a table
//   ends the short ways for good (handedOut), before the client holds the reference.
// - An answer that is given while another thread changes the tables is the answer before that change,
//   which has not returned yet.
#ifndef MENSOR_TABLES_H
#define MENSOR_TABLES_H

#include <atomic>
#include <map>
#include <memory>
#include <mutex>

#include "mensor/Unit.h"
#include "mensor/mensor_global.h"

namespace mensor {
namespace detail {

using Lock = std::lock_guard<std::recursive_mutex>;

struct Tables {
    std::recursive_mutex Mutex;  // guards all maps
    std::map<string_t, CUnitPtr> Symbols;
    std::map<int, CUnitPtr> Instances;
    std::map<CUnitPtr, CUnitPtr> Dimensions;
    std::map<CUnitPtr, CConverterPtr> ToDimensions;
    std::map<string_t, CUnitPtr> LabelUnit;
    std::map<CUnitPtr, string_t> UnitLabel;
    std::map<string_t, CUnitPtr> AliasUnit;
};

// Created on first use, never destroyed.
extern std::atomic<Tables*> createdTables;
Tables& createTables();
inline Tables& tables() {
    Tables* const created = createdTables.load(std::memory_order_acquire);
    return created != nullptr ? *created : createTables();
}

// The epochs begin with 1, so 0 stands for "nothing remembered".
extern std::atomic<bool> handedOut;
extern std::atomic<unsigned> contextEpoch;
extern std::atomic<unsigned> namesEpoch;

// The next number of an epoch. Caller holds the mutex, or serialises setDimension as clients must.
inline void advance(std::atomic<unsigned>& epoch) {
    const unsigned next = epoch.load(std::memory_order_relaxed) + 1;
    if (next == 0) {
        handedOut.store(true);  // the numbers are used up, and none may come twice
    }
    epoch.store(next);
}

// The identity of the process, without counting a pointer to it.
extern std::atomic<const CConverterPtr*> createdIdentity;
const CConverterPtr& createIdentity();
inline const CConverterPtr& theIdentity() {
    const CConverterPtr* const created = createdIdentity.load(std::memory_order_acquire);
    return created != nullptr ? *created : createIdentity();
}

}  // namespace detail
}  // namespace mensor

#endif  // MENSOR_TABLES_H

#include "mensor/tables.h"

#include "mensor/kept.h"

namespace mensor {
namespace detail {

std::atomic<Tables*> createdTables{nullptr};

Tables& createTables() {
    static CKept<Tables> TheTables;
    createdTables.store(&*TheTables, std::memory_order_release);
    return *TheTables;
}

std::atomic<bool> handedOut{false};
std::atomic<unsigned> contextEpoch{1};
std::atomic<unsigned> namesEpoch{1};

}  // namespace detail
}  // namespace mensor

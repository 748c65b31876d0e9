#include "mensor/tables.h"

namespace mensor {
namespace detail {

Tables& tables() {
    static Tables TheTables;
    return TheTables;
}

std::atomic<bool> handedOut{false};
std::atomic<unsigned> contextEpoch{1};
std::atomic<unsigned> namesEpoch{1};

}  // namespace detail
}  // namespace mensor

#include "mensor_checked/RegistrationLimit.h"

#include "mensor_checked/Lock.h"

namespace mensor {
namespace checked {

namespace {

// Guarded by the lock.
std::size_t limit = static_cast<std::size_t>(-1);
std::size_t registered = 0;
int depth = 0;  // how many locks the thread that has the mutex holds

}  // namespace

Lock::Lock() : m_Guard(CUnit::mutex()) {
    if (depth++ == 0) {
        m_Bound.emplace(limit > registered ? limit - registered : 0);
    }
}

Lock::~Lock() {
    if (--depth == 0) {
        registered += m_Bound->used();
    }
}

void setRegistrationLimit(std::size_t units) {
    const Lock lock;
    limit = units;
}

std::size_t registeredUnits() {
    const Lock lock;
    return registered;
}

}  // namespace checked
}  // namespace mensor

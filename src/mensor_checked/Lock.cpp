#include "mensor_checked/Lock.h"

#include "mensor/Unit.h"

namespace mensor::checked {

namespace {

// Guarded by CUnit::mutex().
std::size_t limit = static_cast<std::size_t>(-1);
std::size_t count = 0;
const CRegistrationBound* outermost = nullptr;
int depth = 0;  // the number of locks that the thread with the mutex holds

}  // namespace

Lock::Lock() : m_Guard(CUnit::mutex()) {
    if (depth++ == 0) {
        m_Bound.emplace(limit > count ? limit - count : 0);
        outermost = &*m_Bound;
    }
}

Lock::~Lock() {
    if (--depth == 0) {
        count += m_Bound->used();
        outermost = nullptr;
    }
}

void Lock::setLimit(std::size_t units) const { limit = units; }

void Lock::requireRoom(std::size_t units) const {
    const std::size_t used = count + outermost->used();
    if (used > limit || units > limit - used) {
        throw CTooManyUnits();
    }
}

std::size_t Lock::registered() const { return count; }

}  // namespace mensor::checked

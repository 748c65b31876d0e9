// Lock.h: the lock that the companion holds while it asks the library. For its own use; not installed.
#ifndef MENSOR_CHECKED_LOCK_H
#define MENSOR_CHECKED_LOCK_H

#include <mutex>

#include "mensor/Unit.h"

namespace mensor {
namespace checked {

/// Held from the first question to the library to the last; see WarmUp.h.
class Lock {
public:
    Lock() : m_Guard(CUnit::mutex()) {}

private:
    const std::lock_guard<std::recursive_mutex> m_Guard;
};

}  // namespace checked
}  // namespace mensor

#endif  // MENSOR_CHECKED_LOCK_H

// Lock.h: the lock that the companion holds while it asks the library. For its own use; not installed.
#ifndef MENSOR_CHECKED_LOCK_H
#define MENSOR_CHECKED_LOCK_H

#include <mutex>
#include <optional>

#include "mensor/RegistrationBound.h"
#include "mensor/Unit.h"

namespace mensor {
namespace checked {

/// Held from the first question to the library to the last; see WarmUp.h. The outermost one of a thread
/// keeps the limit of what may be registered, and counts (RegistrationLimit.h).
class Lock {
public:
    Lock();
    ~Lock();
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

private:
    const std::lock_guard<std::recursive_mutex> m_Guard;
    std::optional<CRegistrationBound> m_Bound;  // of the outermost
};

}  // namespace checked
}  // namespace mensor

#endif  // MENSOR_CHECKED_LOCK_H

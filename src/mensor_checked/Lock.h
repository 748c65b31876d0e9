// Lock.h: the lock that the companion holds while it works. For its own use; not installed.
#ifndef MENSOR_CHECKED_LOCK_H
#define MENSOR_CHECKED_LOCK_H

#include <mutex>
#include <optional>

#include "mensor/RegistrationBound.h"
#include "mensor/Unit.h"

namespace mensor::checked {

/// Locks CUnit::mutex(). Each function of the companion holds one for all its work; locks of one thread
/// may nest. The outermost one enforces the limit of new units, and counts them (registration_limit.h).
class Lock {
public:
    Lock();
    ~Lock();
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

    /// Sets the limit of new units. It takes effect with the next outermost lock.
    void setLimit(std::size_t units) const;

    /// Throws CTooManyUnits if fewer than `units` new units may still be registered.
    void requireRoom(std::size_t units) const;

    /// Returns the number of new units, without those of the outermost lock that is held now.
    std::size_t registered() const;

private:
    const std::lock_guard<std::recursive_mutex> m_Guard;
    std::optional<CRegistrationBound> m_Bound;  // set in the outermost lock
};

}  // namespace mensor::checked

#endif  // MENSOR_CHECKED_LOCK_H

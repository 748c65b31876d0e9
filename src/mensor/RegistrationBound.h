// RegistrationBound.h: a bound on how many units a piece of a program registers.
//
//     CRegistrationBound bound(10);
//     const CUnitPtr unit = CUnit::fromString(text);   // throws CTooManyUnits before the 11th unit
//     bound.used();                                    // the number of new units
//
// Units are never removed. A program that reads untrusted texts can limit their number.
#ifndef MENSOR_REGISTRATIONBOUND_H
#define MENSOR_REGISTRATIONBOUND_H

#include <cstddef>
#include <mutex>
#include <stdexcept>

#include "mensor/mensor_export.h"

namespace mensor {

/// A new unit would be one more than a CRegistrationBound allows. The tables are as they were.
///
/// Class contract: caller serialises changes of one object; distinct objects any thread.
class MENSOR_API CTooManyUnits : public std::length_error {
public:
    CTooManyUnits();
    ~CTooManyUnits() override;
};

/// While the object exists, this thread can register only a limited number of units. Finding units that
/// are registered already is not limited.
///
/// The object holds CUnit::mutex(), so no other thread can register a unit. Bounds may be nested: the
/// smallest bound decides.
///
/// Class contract: caller serialises; made and destroyed by one thread.
class MENSOR_API CRegistrationBound {
public:
    /// At most `units` units.
    explicit CRegistrationBound(std::size_t units);
    ~CRegistrationBound();
    CRegistrationBound(const CRegistrationBound&) = delete;
    CRegistrationBound& operator=(const CRegistrationBound&) = delete;

    /// How many units have been registered since the object was made.
    std::size_t used() const;

private:
    std::lock_guard<std::recursive_mutex> m_Lock;
    std::size_t m_Before;  // units registered when it was made
    std::size_t m_Outer;   // the bound of the table that it replaced
};

}  // namespace mensor

#endif  // MENSOR_REGISTRATIONBOUND_H

// Values.h: reads and writes values as text, with all digits and independent of the locale.
//
//     checked::readValue("2.5 km").valueAs(SI::Meter());       // 2500, also under a comma locale
//     checked::readValue("2,5 km");                            // throws CReadError: DECIMAL_COMMA
//     checked::writeValue(0.1 + 0.2, SI::Meter());             // "0.30000000000000004 m"
//
//     value = number [blanks] unit      number as std::from_chars reads it, minus sign also U+2212
#ifndef MENSOR_CHECKED_VALUES_H
#define MENSOR_CHECKED_VALUES_H

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "mensor/Unit.h"
#include "mensor/ValueWithUnit.h"
#include "mensor_checked/Reading.h"
#include "mensor_checked/checked_export.h"

namespace mensor::checked {

/// What tryReadValue returns: a value or a refusal, never both.
struct CValueReading {
    double Value = 0.0;                 ///< in `Unit`
    CUnitPtr Unit;                      ///< empty when refused
    std::optional<CDiagnosis> Refusal;  ///< empty when read; positions count in the whole text
    std::vector<std::string> Notes;     ///< as in CReading

    explicit operator bool() const { return Unit != nullptr; }
};

/// Returns the value written in `text`: a number, optional blanks and a unit (readUnit).
///
/// A number without a unit is refused, unless CReadOptions::Dimensionless is set.
/// @throws CReadError  the text is refused.
/// @par Threads  Any thread, locks CUnit::mutex() (see warm_up.h).
MENSOR_CHECKED_API CValueWithUnit readValue(std::string_view text,
                                            const CReadOptions& options = {});

/// Like readValue, but returns refusals. Throws nothing but std::bad_alloc.
/// @par Threads  Any thread, locks CUnit::mutex() (see warm_up.h).
MENSOR_CHECKED_API CValueReading tryReadValue(std::string_view text,
                                              const CReadOptions& options = {});

/// Thrown for a value or a unit that has no text that reads back as the same.
///
/// Class contract: caller serialises changes of one object; distinct objects any thread.
class MENSOR_CHECKED_API CWriteError : public std::invalid_argument {
public:
    explicit CWriteError(const std::string& message);
    ~CWriteError() override;
};

/// Returns a text of `unit` that reads back as the same object, or none. It tries the standard notation,
/// the ASCII notation, the aliases of the unit and, for a product, the aliases of its factors. The text of
/// the dimensionless unit is "One".
/// @throws std::invalid_argument  `unit` is empty.
/// @par Threads  Any thread, locks CUnit::mutex() (see warm_up.h).
MENSOR_CHECKED_API std::optional<std::string> textOf(const CUnitPtr& unit);

/// Returns a text such as "2.5 km": the shortest digits that read back as the same double, a blank, and
/// textOf(unit).
/// @throws CWriteError  the unit has no text that reads back; or the value is not finite, and
///     CReadOptions::NotFinite is not set.
/// @throws std::invalid_argument  `unit` is empty.
/// @par Threads  Any thread, locks CUnit::mutex() (see warm_up.h).
MENSOR_CHECKED_API std::string writeValue(double value, const CUnitPtr& unit,
                                          const CReadOptions& options = {});
MENSOR_CHECKED_API std::string writeValue(const CValueWithUnit& value,
                                          const CReadOptions& options = {});

}  // namespace mensor::checked

#endif  // MENSOR_CHECKED_VALUES_H

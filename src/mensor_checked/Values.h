// Values.h: values as text, with every digit, in every locale.
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

namespace mensor {
namespace checked {

/// The outcome of reading a value without exceptions.
struct CValueReading {
    double Value = 0.0;                 ///< in `Unit`
    CUnitPtr Unit;                      ///< empty when refused
    std::optional<CDiagnosis> Refusal;  ///< positions count from the beginning of the whole text
    std::vector<std::string> Notes;     ///< as in CReading

    explicit operator bool() const { return Unit != nullptr; }
};

/// The value written in `text`: a number, nothing or blanks, a unit (readUnit).
///
/// A number alone is a value of the dimensionless unit only by CReadOptions::Dimensionless.
/// @throws CReadError  the text is refused.
/// @par Threads  Any thread, locks CUnit::mutex() (see WarmUp.h).
MENSOR_CHECKED_API CValueWithUnit readValue(std::string_view text,
                                            const CReadOptions& options = {});

/// The same without exceptions for refused texts. Only std::bad_alloc may pass.
/// @par Threads  Any thread, locks CUnit::mutex() (see WarmUp.h).
MENSOR_CHECKED_API CValueReading tryReadValue(std::string_view text,
                                              const CReadOptions& options = {});

/// A value or unit that cannot be written so that it would read back.
///
/// Class contract: caller serialises changes of one object; distinct objects any thread.
class MENSOR_CHECKED_API CWriteError : public std::invalid_argument {
public:
    explicit CWriteError(const std::string& message);
    ~CWriteError() override;
};

/// The text of `unit` that reads back as the same object: the standard notation, else the ASCII one,
/// else an alias, of a product the aliases of its factors; none if there is no such text. The dimensionless unit is "One".
/// @throws std::invalid_argument  `unit` is empty.
/// @par Threads  Any thread, locks CUnit::mutex() (see WarmUp.h).
MENSOR_CHECKED_API std::optional<std::string> textOf(const CUnitPtr& unit);

/// "2.5 km": the shortest digits that read back as the same double, a blank, and textOf the unit.
/// @throws CWriteError  the unit has no text; the value is not finite and the option is not set.
/// @throws std::invalid_argument  `unit` is empty.
/// @par Threads  Any thread, locks CUnit::mutex() (see WarmUp.h).
MENSOR_CHECKED_API std::string writeValue(double value, const CUnitPtr& unit,
                                          const CReadOptions& options = {});
MENSOR_CHECKED_API std::string writeValue(const CValueWithUnit& value,
                                          const CReadOptions& options = {});

}  // namespace checked
}  // namespace mensor

#endif  // MENSOR_CHECKED_VALUES_H

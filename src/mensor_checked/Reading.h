// Reading.h: units as people write them, read so that nothing comes back but the unit written.
//
//     checked::readUnit("W/(m²·K)");           // also "W/(m^2 K)", "W·m⁻²·K⁻¹", "W*m**-2*K**-1"
//     checked::readUnit("V/√Hz");
//     checked::readUnit("W/m²/K");             // throws CReadError: which of the two?
//
//     const auto reading = checked::tryReadUnit(line);
//     if (!reading) std::cerr << reading.Refusal->caret() << reading.Refusal->message() << '\n';
//
// The text is parsed and every name looked up before the library is asked for a unit, so a text
// refused for its form leaves the library's tables as they were. Then the library gives its one
// object for that unit, which is compared with what the text says: its factors, its dimension, and
// the factor by which it converts, within the rounding of its doubles (Verify.h). The library knows a unit by its hash code alone, and where two
// units meet in one hash code, the second to come is refused here (COLLISION), since it would
// silently be the first. It has a meaning all the same (readMeaning), by which its values can be
// converted.
//
// docs/reading.md holds the grammar and shows every refusal.
#ifndef MENSOR_CHECKED_READING_H
#define MENSOR_CHECKED_READING_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "mensor/Unit.h"
#include "mensor_checked/Meaning.h"
#include "mensor_checked/checked_export.h"
#include "mensor_exact/Diagnosis.h"
#include "mensor_exact/Reading.h"

namespace mensor {
namespace checked {

using exact::CDiagnosis;
using exact::CReadError;
using exact::CReadOptions;
using exact::eRefusal;
using exact::isName;
using exact::nameOf;

/// The outcome of a reading that does not throw: a unit or a refusal, never both.
struct CReading {
    CUnitPtr Unit;                      ///< empty when refused
    std::optional<CDiagnosis> Refusal;  ///< empty when read
    std::vector<std::string> Notes;     ///< what was read as something else by option, in sentences

    explicit operator bool() const { return Unit != nullptr; }
};

/// The outcome of reading a meaning that does not throw: a meaning or a refusal, never both.
struct CMeaningReading {
    std::optional<CMeaning> Meaning;    ///< empty when refused
    std::optional<CDiagnosis> Refusal;  ///< empty when read
    std::vector<std::string> Notes;     ///< as in CReading

    explicit operator bool() const { return Meaning.has_value(); }
};

/// The unit written in `text`, UTF-8.
///
/// "1" and "One", the name that the library prints, are the dimensionless unit.
/// @throws CReadError  the text is refused.
/// @par Threads  Any thread, locks CUnit::mutex() for the whole reading (see WarmUp.h).
MENSOR_CHECKED_API CUnitPtr readUnit(std::string_view text, const CReadOptions& options = {});

/// The same without exceptions for refused texts. Only std::bad_alloc may pass.
/// @par Threads  Any thread, locks CUnit::mutex() for the whole reading (see WarmUp.h).
MENSOR_CHECKED_API CReading tryReadUnit(std::string_view text, const CReadOptions& options = {});

/// What the unit written in `text` means, by the names that the registry has. The library is asked for
/// no product, so that nothing is registered and no other unit can be in the way:
///
///     checked::converter(checked::readMeaning("kg/(s·K)"), checked::readMeaning("g/(min·K)"));
///
/// The meaning of a name alone is meaningOf its unit. Factors beyond the range of double are no harm.
/// @throws CReadError  the text is refused.
/// @par Threads  Any thread, locks CUnit::mutex() for the whole reading (see WarmUp.h).
MENSOR_CHECKED_API CMeaning readMeaning(std::string_view text, const CReadOptions& options = {});

/// The same without exceptions for refused texts. Only std::bad_alloc may pass.
/// @par Threads  Any thread, locks CUnit::mutex() for the whole reading (see WarmUp.h).
MENSOR_CHECKED_API CMeaningReading tryReadMeaning(std::string_view text,
                                                  const CReadOptions& options = {});

}  // namespace checked
}  // namespace mensor

#endif  // MENSOR_CHECKED_READING_H

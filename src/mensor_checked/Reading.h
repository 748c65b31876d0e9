// Reading.h: reads units as people write them. A text gives the unit that is written, or a refusal.
//
//     checked::readUnit("W/(m²·K)");           // also "W/(m^2 K)", "W·m⁻²·K⁻¹", "W*m**-2*K**-1"
//     checked::readUnit("V/√Hz");
//     checked::readUnit("W/m²/K");             // throws CReadError: W/(m²·K) or W·K/m²?
//
//     const auto reading = checked::tryReadUnit(line);
//     if (!reading) std::cerr << reading.Refusal->caret() << reading.Refusal->message() << '\n';
//
// A text is parsed, and every name looked up, before the library is asked for a unit. So a text that is
// refused for its form leaves the library's tables as they were.
//
// Then the library gives its one object for the unit. The object is compared with the text: its factors,
// its dimension and its conversion factor, within the rounding of doubles (Verify.h). The library tells
// units apart by their hash codes alone. If two units have the same hash code, the second is silently the
// first. Such a text is refused here (COLLISION). readMeaning still gives its meaning, which converts
// its values.
//
// docs/reading.md describes the grammar and shows every refusal.
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

namespace mensor::checked {

using exact::CDiagnosis;
using exact::CReadError;
using exact::CReadOptions;
using exact::eRefusal;
using exact::isName;
using exact::nameOf;

/// What tryReadUnit returns: a unit or a refusal, never both.
struct CReading {
    CUnitPtr Unit;                      ///< empty when refused
    std::optional<CDiagnosis> Refusal;  ///< empty when read
    std::vector<std::string>
        Notes;  ///< sentences about texts that were read differently than written

    explicit operator bool() const { return Unit != nullptr; }
};

/// What tryReadMeaning returns: a meaning or a refusal, never both.
struct CMeaningReading {
    std::optional<CMeaning> Meaning;    ///< empty when refused
    std::optional<CDiagnosis> Refusal;  ///< empty when read
    std::vector<std::string> Notes;     ///< as in CReading

    explicit operator bool() const { return Meaning.has_value(); }
};

/// Returns the unit written in `text`, which is UTF-8.
///
/// "1" and "One" are the dimensionless unit. The library prints it as "One".
/// @throws CReadError  the text is refused.
/// @par Threads  Any thread, locks CUnit::mutex() for the whole reading (see warm_up.h).
MENSOR_CHECKED_API CUnitPtr readUnit(std::string_view text, const CReadOptions& options = {});

/// Like readUnit, but returns refusals. Throws nothing but std::bad_alloc.
/// @par Threads  Any thread, locks CUnit::mutex() for the whole reading (see warm_up.h).
MENSOR_CHECKED_API CReading tryReadUnit(std::string_view text, const CReadOptions& options = {});

/// Returns what the unit written in `text` means, by the names of the registry. The library builds no
/// product for it, so nothing is registered and a collision of hash codes does not matter:
///
///     checked::converter(checked::readMeaning("kg/(s·K)"), checked::readMeaning("g/(min·K)"));
///
/// The meaning of a single name is meaningOf its unit. Factors may be beyond the range of double.
/// @throws CReadError  the text is refused.
/// @par Threads  Any thread, locks CUnit::mutex() for the whole reading (see warm_up.h).
MENSOR_CHECKED_API CMeaning readMeaning(std::string_view text, const CReadOptions& options = {});

/// Like readMeaning, but returns refusals. Throws nothing but std::bad_alloc.
/// @par Threads  Any thread, locks CUnit::mutex() for the whole reading (see warm_up.h).
MENSOR_CHECKED_API CMeaningReading tryReadMeaning(std::string_view text,
                                                  const CReadOptions& options = {});

}  // namespace mensor::checked

#endif  // MENSOR_CHECKED_READING_H

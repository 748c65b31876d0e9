// Parsing.h: the units of the registry that a text names. For the companion's own use; not installed.
#ifndef MENSOR_CHECKED_PARSING_H
#define MENSOR_CHECKED_PARSING_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "mensor/Unit.h"
#include "mensor_checked/Reading.h"
#include "mensor_exact/Refusal.h"

namespace mensor::checked {

using exact::CSpan;
using exact::diagnose;

/// The companion throws this within itself. The public functions turn it into a result or a CReadError.
struct Refused {
    CDiagnosis Diagnosis;
};

/// One named unit of a text, with its exponent in the whole text.
struct CNamedUnit {
    CUnitPtr Unit;    ///< the unit of the name, or the unit of its differences. Empty
                      ///< for a name of the pack EVERYDAY whose unit was not asked for
    CUnitPtr Named;   ///< the unit of the name
    CSpan Name;       ///< where in the text the name is
    bool IsExact;     ///< as in CName
    bool HasOffset;   ///< as in CName
    bool IsPrefixed;  ///< the name is a prefix and an offset unit, such as "m°C"
    std::optional<CMeaning> Everyday;  ///< the meaning of a name of the pack EVERYDAY
    int Pow = 1;
    int Root = 1;  ///< positive; Pow/Root is in lowest terms
};

/// The result of parsing a text.
struct CParsed {
    std::vector<CNamedUnit> Factors;  ///< in their order; the dimensionless unit has none
    std::vector<std::string> Notes;
};

/// Returns a refusal in words, with the texts to write instead. The caller holds the lock.
CDiagnosis diagnosisOf(const exact::CRefusal& refusal);

/// Returns why the unit from byte `begin` of a value's text is refused for its form, or none if its form
/// is right. The caller holds the lock.
std::optional<CDiagnosis> formFault(std::string_view text, std::size_t begin,
                                    const CReadOptions& options);

/// Returns the factors of the unit written in `text`, and the notes on it. Only looks names up. With
/// `makesUnits`, it also makes the units of names of the pack EVERYDAY. The caller holds the lock.
/// @throws Refused  the form is wrong or a name unknown.
CParsed parsed(std::string_view text, const CReadOptions& options, bool makesUnits);

}  // namespace mensor::checked

#endif  // MENSOR_CHECKED_PARSING_H

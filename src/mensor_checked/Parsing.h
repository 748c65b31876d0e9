// Parsing.h: the units of the registry that a text names. For the companion's own use; not installed.
#ifndef MENSOR_CHECKED_PARSING_H
#define MENSOR_CHECKED_PARSING_H

#include <optional>
#include <string_view>
#include <vector>

#include "mensor/Unit.h"
#include "mensor_checked/Reading.h"
#include "mensor_exact/Refusal.h"

namespace mensor {
namespace checked {

using exact::CSpan;
using exact::diagnose;

/// A refusal on its way out of the companion.
struct Refused {
    CDiagnosis Diagnosis;
};

/// One named unit of a text and the exponent that it comes to have.
struct CFactor {
    CUnitPtr Unit;
    CUnitPtr Named;  ///< the unit of the name, which `Unit` may be the difference of
    CSpan Name;
    bool IsExact;     ///< as in CName
    bool HasOffset;   ///< as in CName
    bool IsPrefixed;  ///< whether the name is that of a scale without its offset
    int Pow = 1;
    int Root = 1;  ///< positive; the fraction is in lowest terms
};

/// A refusal in words, with what to write instead. The caller holds the lock.
CDiagnosis diagnosisOf(const exact::CRefusal& refusal);

/// Why the unit that begins at the byte `begin` of a value is refused for its form; none if it is not.
/// The caller holds the lock.
std::optional<CDiagnosis> formFault(std::string_view text, std::size_t begin,
                                    const CReadOptions& options);

/// The factors of the unit written in `text`, in their order. The dimensionless unit has none.
///
/// Looks names up and asks the library nothing else. The caller holds the lock.
/// @throws Refused
std::vector<CFactor> factorsOf(std::string_view text, const CReadOptions& options);

}  // namespace checked
}  // namespace mensor

#endif  // MENSOR_CHECKED_PARSING_H

// Parser.h: from text to named units with exponents. For the companion's own use; not installed.
#ifndef MENSOR_CHECKED_PARSER_H
#define MENSOR_CHECKED_PARSER_H

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "mensor/Unit.h"
#include "mensor_checked/Reading.h"

namespace mensor {
namespace checked {

constexpr std::size_t LongestText = 4096;  // code points
constexpr int DeepestNesting = 64;
constexpr int LargestExponent = 99;

/// A refusal on its way out of the parser.
struct Refused {
    CDiagnosis Diagnosis;
};

/// A piece of the text, in bytes.
struct CSpan {
    std::size_t Begin;
    std::size_t End;
};

/// One named unit of the text and the exponent that it comes to have.
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

/// The diagnosis of `span` in `text`.
CDiagnosis diagnose(eRefusal code, std::string_view text, CSpan span, std::string sentence);

/// The factors of the unit written in `text`, in their order. The dimensionless unit has none.
///
/// Looks names up and asks the library nothing else. The caller holds the lock.
/// @throws Refused
std::vector<CFactor> parse(std::string_view text, const CReadOptions& options);

}  // namespace checked
}  // namespace mensor

#endif  // MENSOR_CHECKED_PARSER_H

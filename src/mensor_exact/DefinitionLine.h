// DefinitionLine.h: the lines of a file of definitions, taken apart. For mensor's own libraries; not
// installed. The grammar is in DefinitionFile.h.
//
//     for (CDefinitionLines lines(text); lines.next();) {
//         CDefinitionLine definition;
//         if (const auto refusal = takeApart(lines.line(), definition)) { ...
#ifndef MENSOR_EXACT_DEFINITIONLINE_H
#define MENSOR_EXACT_DEFINITIONLINE_H

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "mensor_exact/Diagnosis.h"
#include "mensor_exact/Fraction.h"
#include "mensor_exact/Refusal.h"
#include "mensor_exact/exact_export.h"

namespace mensor::exact {

/// The lines of a text that define something.
class MENSOR_EXACT_API CDefinitionLines {
public:
    explicit CDefinitionLines(std::string_view text);

    /// Goes on to the next line that is not empty.
    bool next();

    std::string_view line() const { return m_Line; }  ///< without its end
    std::size_t number() const { return m_Number; }   ///< from 1

private:
    std::string_view m_Rest;
    std::string_view m_Line;
    std::size_t m_Number = 0;
};

/// A number and a unit in a line.
struct CLineValue {
    CFraction Number;
    CSpan NumberText;  ///< with its sign
    CSpan Unit;        ///< not read yet

    CSpan whole() const { return {NumberText.Begin, Unit.End}; }
};

/// The parts of a line.
struct CDefinitionLine {
    CSpan Name;
    bool TakesAway = false;          ///< "replace"
    std::optional<CLineValue> Size;  ///< none: a base unit. The number is above zero.
    std::optional<CLineValue> Zero;  ///< with its sign
};

/// Takes a line apart. Gives a diagnosis if it is refused for its form; `result` then has at most the name.
MENSOR_EXACT_API std::optional<CDiagnosis> takeApart(std::string_view line,
                                                     CDefinitionLine& result);

/// The diagnosis of `part` of `line`, counted from the beginning of the line. What it offers becomes
/// whole lines, without the comment.
MENSOR_EXACT_API CDiagnosis inLine(CDiagnosis diagnosis, std::string_view line, CSpan part);

/// Keeps the readings that `isAccepted` accepts.
MENSOR_EXACT_API void keepReadings(CDiagnosis& diagnosis,
                                   const std::function<bool(std::string_view)>& isAccepted);

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_DEFINITIONLINE_H

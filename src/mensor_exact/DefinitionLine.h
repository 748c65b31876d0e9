// DefinitionLine.h: splits the lines of a file of definitions into their parts. For mensor's own libraries;
// not installed. The grammar is in DefinitionFile.h.
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

/// Iterates over the lines of a text that contain a definition.
class MENSOR_EXACT_API CDefinitionLines {
public:
    explicit CDefinitionLines(std::string_view text);

    /// Moves to the next line with a definition. Returns false if there is none.
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
    std::optional<CLineValue> Size;  ///< empty for a base unit; the number is above zero
    std::optional<CLineValue> Zero;  ///< with its sign
};

/// Splits a line into its parts. Returns a diagnosis if the form of the line is wrong; `result` then has at
/// most the name.
MENSOR_EXACT_API std::optional<CDiagnosis> takeApart(std::string_view line,
                                                     CDefinitionLine& result);

/// Turns the diagnosis of `part` into a diagnosis of `line`. Its places count from the beginning of the line,
/// and its corrections are whole lines without the comment.
MENSOR_EXACT_API CDiagnosis inLine(CDiagnosis diagnosis, std::string_view line, CSpan part);

/// Removes the readings for which `isAccepted` returns false.
MENSOR_EXACT_API void keepReadings(CDiagnosis& diagnosis,
                                   const std::function<bool(std::string_view)>& isAccepted);

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_DEFINITIONLINE_H

// Diagnosis.h: why a text is refused, in words.
//
//     try {
//         exact::read("W/m²/K");
//     } catch (const exact::CReadError& error) {
//         std::cerr << error.diagnosis().caret() << error.what() << '\n';
//     }
//
// docs/reading.md shows every refusal.
#ifndef MENSOR_EXACT_DIAGNOSIS_H
#define MENSOR_EXACT_DIAGNOSIS_H

#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

#include "mensor_exact/exact_export.h"

namespace mensor::exact {

/// Why a text was refused. The numbers are part of the interface; new ones are added at the end.
enum class eRefusal : int {
    // The text.
    EMPTY = 1,             ///< nothing is written, and CReadOptions::Dimensionless is not set
    TOO_LONG,              ///< more than 4096 code points
    TOO_DEEP,              ///< more than 64 parentheses or roots inside each other
    MALFORMED_TEXT,        ///< not UTF-8, or a NUL
    UNEXPECTED_CHARACTER,  ///< a character that belongs to no unit
    // The grammar.
    UNKNOWN_NAME,            ///< no label, alias or symbol
    STRAY_NUMBER,            ///< a number that is neither an exponent nor the 1 of "1/s"
    MISSING_UNIT,            ///< an operator without a unit on one of its sides, or "()"
    MISSING_OPERATOR,        ///< two units without anything between them, "m²s" or "kg(m)"
    SECOND_DIVISION,         ///< "W/m²/K"
    PRODUCT_AFTER_DIVISION,  ///< "W/m·K"
    OPEN_BRACKET,            ///< a "(" or "[" that nothing closes
    STRAY_BRACKET,           ///< a ")" or "]" that nothing opens
    MALFORMED_EXPONENT,      ///< "m^", "m^(1", "m^x"
    INEXACT_EXPONENT,        ///< a decimal that is no small fraction, "m^0.333"
    EXPONENT_RANGE,          ///< numerator or denominator beyond 99, also of powers that meet
    SECOND_EXPONENT,         ///< "m^2^3"
    // The meaning.
    OFFSET_IN_PRODUCT,    ///< "J/°C", unless CReadOptions::Differences is set
    PREFIXED_OFFSET,      ///< "m°C", which the library knows without its offset; unless as above
    COLLISION,            ///< the library gives another unit, which has the same hash code
    DIMENSION_COLLISION,  ///< the right unit, but its dimension has the hash code of another one
    FACTOR_RANGE,         ///< the factor of the unit is no normal double
    REFUSED_BY_LIBRARY,   ///< the library threw; the sentence quotes it
    // Values (Values.h).
    NO_NUMBER,      ///< the text does not begin with a number
    DECIMAL_COMMA,  ///< "2,5 km"
    HEXADECIMAL,    ///< "0x10 m"
    NOT_FINITE,     ///< "nan" or "inf", unless CReadOptions::NotFinite is set
    NUMBER_RANGE,   ///< beyond the range of double
    // Codes (mensor_codes/Codes.h).
    UNKNOWN_CODE,  ///< no code of this system
    NO_MEANING,    ///< a code of this system that has no exact meaning
    // Definitions (DefinitionFile.h).
    NAME_TAKEN,            ///< the name of a definition means something else already
    DIFFERENT_DIMENSIONS,  ///< the unit of a zero measures something else than the unit defined
    // What people write.
    MISLEADING,  ///< would be read as something else than is meant: "300° K", "W/mK", "30 psi g";
                 ///< with CReadOptions::Strict also "pH", the picohenry
    // Registering (mensor_checked/RegistrationLimit.h).
    LIMIT_REACHED  ///< the companion has registered as many units as it may
};

/// The enumerator's own name, for logs and tables: "SECOND_DIVISION".
/// @par Threads  Any thread; takes no lock.
MENSOR_EXACT_API const char* nameOf(eRefusal code);

/// What is wrong with a text, and where.
///
/// What is offered was tried before: each reading is read, and so is the text with each suggestion in
/// place of the token.
///
/// Class contract: caller serialises changes of one object; distinct objects any thread.
struct MENSOR_EXACT_API CDiagnosis {
    eRefusal Code;
    std::string Text;          ///< the whole text, as it was given
    std::size_t Position = 0;  ///< where `Token` begins, in code points from 0
    std::size_t Byte = 0;      ///< the same in bytes
    std::string Token;         ///< what is refused, as it was written; empty at the end of the text
    std::string Sentence;      ///< a plain sentence in UTF-8, without a full stop
    /// What the text may have meant, each to be written instead; for a collision the two meanings:
    /// the text's and the one the library gives.
    std::vector<std::string> Readings;
    /// Known names near to an unknown one, best first.
    std::vector<std::string> Suggestions;
    /// The packs that have the unknown name, by their names: "customary".
    std::vector<std::string> Packs;

    /// All of it on one line: the sentence, then "(write ... or ...)", "(did you mean ...?)" and how to
    /// get a pack.
    std::string message() const;

    /// Two lines: the text, and carets under the token, each line ended. Characters that would break
    /// the line are shown as "?".
    std::string caret() const;
};

/// The throwing form of a refusal; what() is the diagnosis' message().
///
/// Class contract: caller serialises changes of one object; distinct objects any thread.
class MENSOR_EXACT_API CReadError : public std::invalid_argument {
public:
    explicit CReadError(CDiagnosis diagnosis);
    ~CReadError() override;
    CReadError(const CReadError&);
    CReadError& operator=(const CReadError&);

    const CDiagnosis& diagnosis() const noexcept;

private:
    CDiagnosis m_Diagnosis;
};

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_DIAGNOSIS_H

// Diagnosis.h: explains in words why a text is refused.
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

/// The reason of a refusal. The numbers are part of the interface. New ones are added at the end.
enum class eRefusal : int {
    // The text.
    EMPTY = 1,             ///< the text is empty, and CReadOptions::Dimensionless is not set
    TOO_LONG,              ///< more than 4096 code points
    TOO_DEEP,              ///< more than 64 parentheses or roots inside each other
    MALFORMED_TEXT,        ///< a byte that is not UTF-8, or a NUL
    UNEXPECTED_CHARACTER,  ///< a character that belongs to no unit
    // The grammar.
    UNKNOWN_NAME,            ///< a name that is no label, alias or symbol
    STRAY_NUMBER,            ///< a number that is neither an exponent nor the 1 of "1/s"
    MISSING_UNIT,            ///< an operator with no unit on one side, or "()"
    MISSING_OPERATOR,        ///< two units with no operator between them, "m²s" or "kg(m)"
    SECOND_DIVISION,         ///< "W/m²/K"
    PRODUCT_AFTER_DIVISION,  ///< "W/m·K"
    OPEN_BRACKET,            ///< a "(" or "[" that is not closed
    STRAY_BRACKET,           ///< a ")" or "]" that was not opened
    MALFORMED_EXPONENT,      ///< "m^", "m^(1", "m^x"
    INEXACT_EXPONENT,        ///< a decimal that is no small fraction, "m^0.333"
    EXPONENT_RANGE,   ///< a numerator or denominator beyond 99, also of the sum of two exponents
    SECOND_EXPONENT,  ///< "m^2^3"
    // The meaning.
    OFFSET_IN_PRODUCT,  ///< "J/°C", unless CReadOptions::Differences is set
    PREFIXED_OFFSET,  ///< "m°C", which libmensor has without an offset, unless Differences is set
    COLLISION,        ///< the registry gives another unit, which has the same hash code
    DIMENSION_COLLISION,  ///< the registry has the unit, but another dimension has the same hash code
    FACTOR_RANGE,         ///< the factor of the unit is no normal double
    REFUSED_BY_LIBRARY,  ///< libmensor threw an exception; the sentence quotes it
    // Values (Values.h).
    NO_NUMBER,      ///< the text does not begin with a number
    DECIMAL_COMMA,  ///< "2,5 km"
    HEXADECIMAL,    ///< "0x10 m"
    NOT_FINITE,     ///< "nan" or "inf", unless CReadOptions::NotFinite is set
    NUMBER_RANGE,   ///< beyond the range of double
    // Codes (mensor_codes/Codes.h).
    UNKNOWN_CODE,  ///< not a code of this system
    NO_MEANING,    ///< a code of this system that has no exact meaning
    // Definitions (DefinitionFile.h).
    NAME_TAKEN,            ///< the name of a definition has another meaning already
    DIFFERENT_DIMENSIONS,  ///< the zero of a definition has another dimension than its unit
    // Everyday spellings.
    MISLEADING,  ///< a text that probably means something else than it says: "300° K", "W/mK",
                 ///< "30 psi g"; with CReadOptions::Strict also "pH", the picohenry
    // Registering (mensor_checked/registration_limit.h).
    LIMIT_REACHED  ///< the companion has registered as many units as the program allows
};

/// Returns the name of the enumerator, for logs and tables: "SECOND_DIVISION".
/// @par Threads  Any thread; takes no lock.
MENSOR_EXACT_API const char* nameOf(eRefusal code);

/// Describes the error in a text and its place.
///
/// Every offer was tested: each reading is accepted, and so is the text with each suggestion in place
/// of the token.
///
/// Class contract: caller serialises changes of one object; distinct objects any thread.
struct MENSOR_EXACT_API CDiagnosis {
    eRefusal Code;
    std::string Text;          ///< the whole text, as it was given
    std::size_t Position = 0;  ///< where `Token` begins, in code points from 0
    std::size_t Byte = 0;      ///< the same in bytes
    std::string Token;         ///< the refused part of the text; empty at the end of the text
    std::string Sentence;      ///< a plain sentence in UTF-8, without a full stop
    /// Texts that the user may have meant and can write instead. For a collision: the meaning of the text
    /// and the meaning of the unit that the registry gives.
    std::vector<std::string> Readings;
    /// Known names that are similar to an unknown one, the best first.
    std::vector<std::string> Suggestions;
    /// The names of the packs that have the unknown name: "customary". Each of them is enough.
    std::vector<std::string> Packs;
    /// The packs that the text needs for its other names, apart from Packs[0].
    std::vector<std::string> MorePacks;
    /// If the text has another fault: corrected texts, which can be read with these packs.
    std::vector<std::string> WithPacks;

    /// Returns all of it in one line: the sentence, "(write ... or ...)", "(did you mean ...?)" and how
    /// to add a pack.
    std::string message() const;

    /// Returns two lines, each with its line end: the text, and carets under the token. Characters that
    /// would break the line become "?".
    std::string caret() const;
};

/// A refusal as an exception. what() returns diagnosis().message().
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

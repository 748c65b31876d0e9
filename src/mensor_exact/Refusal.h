// Refusal.h: the reason of a refusal, without allocated memory. diagnosis() makes the words.
#ifndef MENSOR_EXACT_REFUSAL_H
#define MENSOR_EXACT_REFUSAL_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "mensor_exact/Diagnosis.h"
#include "mensor_exact/exact_export.h"

namespace mensor::exact {

/// A part of a text, in bytes.
struct CSpan {
    std::size_t Begin = 0;
    std::size_t End = 0;

    std::string_view of(std::string_view text) const { return text.substr(Begin, End - Begin); }
};

struct CTrap;  // Traps.h, not installed

/// How the readings of a refused text are made from its parts.
enum class eReadings : std::uint8_t {
    NONE,
    TIMES,     ///< "·" before the token: "m²s" is "m²·s"
    ONE,       ///< "1" before the unit: "/s" is "1/s"
    FRACTION,  ///< brackets around the exponent Pieces[0] and the token: "m^1/2" is "m^(1/2)"
    POWER,     ///< brackets around the power Pieces[0]: "m^2^3" is "(m^2)^3"
    CHAIN,     ///< Pieces[0] is the "a" of "a/b/c": "a/(b·c)" or "a·c/b"
    VALUE,     ///< other forms of the number of a value: "2,5" is "2.5", "2,500" perhaps "2500"
    TRAP,      ///< the texts of Trap in place of the token; Pieces[0] is the name in the token
    JOIN,      ///< no blank before the token: "m ²" is "m²"
    CLOSE,     ///< a closing bracket at the end
    REMOVE,    ///< nothing in place of the token
    DOT,       ///< "·" in place of the hyphens: "N-m" is "N·m"
    DIVISOR    ///< the value divided by the token: "5 l/100km" is "0.05 l/km"; "mg/24h" is "mg/d"
};

/// A refusal. It allocates no memory. It refers to the text, which must outlive it.
///
/// Class contract: caller serialises changes of one object; distinct objects any thread.
struct MENSOR_EXACT_API CRefusal {
    eRefusal Code = eRefusal::EMPTY;
    std::string_view Text;      ///< the whole text, as it was given
    CSpan Token;                ///< the refused part; empty at the end of the text
    const char* Sentence = "";  ///< constant; "{}" is the token. Empty if Trap has the sentence
    eReadings Readings = eReadings::NONE;
    std::array<CSpan, 3> Pieces;
    std::size_t UnitBegin = 0;    ///< where the unit begins, after a number
    const CTrap* Trap = nullptr;  ///< what is said about a misleading text, if it is one

    std::string_view token() const noexcept { return Token.of(Text); }
    std::size_t position() const noexcept;  ///< where the token begins, in code points from 0

    /// Returns the text with `words` in place of the token.
    std::string replaced(std::string_view words) const;

    /// Returns the diagnosis without offers, which need a catalogue.
    CDiagnosis diagnosis() const;
};

/// Returns the diagnosis of `token` in `text`.
MENSOR_EXACT_API CDiagnosis diagnose(eRefusal code, std::string_view text, CSpan token,
                                     std::string sentence);

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_REFUSAL_H

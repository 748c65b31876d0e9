// Codes.h: units as devices and systems exchange them, by codes instead of names.
//
//     codes::read(eSystem::UNECE, "GL").toString();              // "kg/m³": a gram per litre
//     codes::read(eSystem::SENML, "Cel").toString();             // "K + 273.15"
//     codes::codeFor(eSystem::UNECE, exact::read("m³/h")).Code;  // "MQH"
//
//     const codes::CReading reading = codes::tryRead(eSystem::UNECE, "Cel");
//     if (!reading) std::cerr << codes::diagnose(reading.Refusal).message() << '\n';
//     // "Cel" is no code of UN/CEFACT; it is a valid code of UCUM and SenML
//
// A code has an exact meaning, or it is refused with the reason. Nothing is registered, kept or locked:
// the tables are constant data. The page docs/codes.md has them.
#ifndef MENSOR_CODES_CODES_H
#define MENSOR_CODES_CODES_H

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "mensor_codes/codes_export.h"
#include "mensor_exact/Diagnosis.h"
#include "mensor_exact/Meaning.h"
#include "mensor_exact/Refusal.h"

namespace mensor {
namespace codes {

/// Who has made the codes.
enum class eSystem : std::uint8_t {
    UNECE,         ///< UN/CEFACT Recommendation 20, common codes: "MTR"
    OPCUA,         ///< OPC UA, the unit id in decimal digits: "5067858"; see OpcUa.h
    UCUM,          ///< The Unified Code for Units of Measure, case-sensitive: "mg/dL"
    SENML,         ///< SenML, RFC 8428 and RFC 8798: "m", "km/h"
    OPENTELEMETRY  ///< units of metrics, UCUM with annotations: "{request}/s", "By"
};

/// All systems, in order.
inline constexpr eSystem AllSystems[] = {eSystem::UNECE, eSystem::OPCUA, eSystem::UCUM,
                                         eSystem::SENML, eSystem::OPENTELEMETRY};

/// How people call the system: "UN/CEFACT", "OPC UA", "UCUM", "SenML", "OpenTelemetry".
/// @par Threads  Any thread; takes no lock.
MENSOR_CODES_API const char* nameOf(eSystem system);

/// The system by a short name, for command lines and configurations: "unece", "opcua", "ucum", "senml",
/// "opentelemetry".
/// @par Threads  Any thread; takes no lock.
MENSOR_CODES_API std::optional<eSystem> systemNamed(std::string_view shortName);

/// The short name of the system.
/// @par Threads  Any thread; takes no lock.
MENSOR_CODES_API const char* shortNameOf(eSystem system);

/// Why a text is refused. It refers to the text, which must outlive it, and needs no memory.
///
/// Class contract: caller serialises changes of one object; distinct objects any thread.
struct CRefusal {
    exact::eRefusal Code = exact::eRefusal::EMPTY;
    eSystem System = eSystem::UNECE;
    std::string_view Text;      ///< the whole text, as it was given
    exact::CSpan Token;         ///< what is refused; empty at the end of the text
    std::string_view Sentence;  ///< constant; "{}" in it stands for the token in quotes. With
                                ///< NO_MEANING the reason alone
};

/// The outcome of a reading that does not throw.
///
/// Class contract: caller serialises changes of one object; distinct objects any thread.
struct CReading {
    std::optional<exact::CMeaning> Meaning;  ///< empty when refused
    CRefusal Refusal;                        ///< why. Of no meaning when read

    explicit operator bool() const { return Meaning.has_value(); }
};

/// What a code means. Codes are read as they are written: case counts, and blanks belong to no code.
/// @throws exact::CReadError  the code is refused: UNKNOWN_CODE if the system has no such code,
///                            NO_MEANING with the reason if it has no exact meaning; of UCUM also
///                            what is wrong with an expression.
/// @par Threads  Any thread; takes no lock.
MENSOR_CODES_API exact::CMeaning read(eSystem system, std::string_view code);

/// The same without exceptions for refused codes. Only std::bad_alloc may pass.
/// @par Threads  Any thread; takes no lock.
MENSOR_CODES_API CReading tryRead(eSystem system, std::string_view code);

/// Whether `text` is a code of the system, also one without an exact meaning.
/// @par Threads  Any thread; takes no lock.
MENSOR_CODES_API bool isCode(eSystem system, std::string_view text);

/// The refusal in words. Tells which other systems have the code, and names codes that are written
/// nearly so.
/// @par Threads  Any thread; takes no lock.
MENSOR_CODES_API exact::CDiagnosis diagnose(const CRefusal& refusal);

/// One row of a table. Texts are UTF-8; those that are views live as long as the library.
struct CCode {
    std::string Code;
    std::string_view Symbol;  ///< what displays show: "km/h"
    std::string_view Name;    ///< in English
    std::string_view
        Definition;           ///< what it is, as mensor_exact/Definitions.h has it; empty: refused
    std::string_view Source;  ///< where the definition is from, or why there is none
    std::string_view Note;    ///< which of several sizes it is, and the like; mostly empty
    std::string SameAs;       ///< the code that codeFor() gives for this meaning, if another one
    bool IsDeprecated = false;  ///< the system itself advises against it
};

/// The row of a code, also of a refused one. UCUM has rows for its atoms.
/// @par Threads  Any thread; takes no lock.
MENSOR_CODES_API std::optional<CCode> find(eSystem system, std::string_view code);

/// All rows, in the order of the table.
/// @par Threads  Any thread; takes no lock.
MENSOR_CODES_API std::vector<CCode> all(eSystem system);

/// Which code means what is asked for.
///
/// Class contract: caller serialises changes of one object; distinct objects any thread.
struct CMatch {
    std::string Code;  ///< means exactly this, marks included; empty: there is none
    std::vector<std::string> Synonyms;  ///< other codes of the same meaning
    std::string Nearest;   ///< without Code: the nearest of the same dimensions, if any
    double Deviation = 0;  ///< size of the nearest divided by the size asked for, less 1

    explicit operator bool() const { return !Code.empty(); }

    /// "MQH"; or "no code of UN/CEFACT means exactly this; the nearest is PS, smaller by 4e-07 of it".
    MENSOR_CODES_API std::string toString(eSystem system) const;
};

/// The code for a meaning. A scale with a zero of its own has no nearest code.
/// @par Threads  Any thread; takes no lock.
MENSOR_CODES_API CMatch codeFor(eSystem system, const exact::CMeaning& meaning);

}  // namespace codes
}  // namespace mensor

#endif  // MENSOR_CODES_CODES_H

// Codes.h: reads and writes the codes by which devices and systems exchange units.
//
//     codes::read(eSystem::UNECE, "GL").toString();              // "kg/m³": a gram per litre
//     codes::read(eSystem::SENML, "Cel").toString();             // "K + 273.15"
//     codes::codeFor(eSystem::UNECE, exact::read("m³/h")).Code;  // "MQH"
//
//     const codes::CReading reading = codes::tryRead(eSystem::UNECE, "Cel");
//     if (!reading) std::cerr << codes::diagnose(reading.Refusal).message() << '\n';
//     // "Cel" is no code of UN/CEFACT; it is a valid code of UCUM and SenML
//
// A code has an exact meaning, or it is refused with a reason. Nothing is registered, cached or locked:
// the tables are constant data. docs/codes.md describes them.
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

namespace mensor::codes {

/// A system of codes.
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

/// Returns the usual name of the system: "UN/CEFACT", "OPC UA", "UCUM", "SenML", "OpenTelemetry".
/// @par Threads  Any thread; takes no lock.
MENSOR_CODES_API const char* nameOf(eSystem system);

/// Returns the system with this short name, or none. The short names are for command lines and
/// configurations: "unece", "opcua", "ucum", "senml", "opentelemetry".
/// @par Threads  Any thread; takes no lock.
MENSOR_CODES_API std::optional<eSystem> systemNamed(std::string_view shortName);

/// Returns the short name of the system.
/// @par Threads  Any thread; takes no lock.
MENSOR_CODES_API const char* shortNameOf(eSystem system);

/// Why a text is refused. It holds views of the text, which must outlive it, and allocates no memory.
///
/// Class contract: caller serialises changes of one object; distinct objects any thread.
struct CRefusal {
    exact::eRefusal Code = exact::eRefusal::EMPTY;
    eSystem System = eSystem::UNECE;
    std::string_view Text;  ///< the whole text
    exact::CSpan Token;     ///< the refused part; empty at the end of the text
    /// A constant, in which diagnose() replaces "{}" by the token in quotes. If Code is NO_MEANING, it is
    /// the reason alone, which diagnose() completes to a sentence.
    std::string_view Sentence;
};

/// What tryRead returns: a meaning or a refusal.
///
/// Class contract: caller serialises changes of one object; distinct objects any thread.
struct CReading {
    std::optional<exact::CMeaning> Meaning;  ///< empty when refused
    CRefusal Refusal;                        ///< why it is refused; unspecified when read

    explicit operator bool() const { return Meaning.has_value(); }
};

/// Returns what a code means. Case counts, and no code has blanks.
/// @throws exact::CReadError  the code is refused: UNKNOWN_CODE if the system has no such code,
///                            NO_MEANING with the reason if it has no exact meaning. An expression of
///                            UCUM may also be malformed.
/// @par Threads  Any thread; takes no lock.
MENSOR_CODES_API exact::CMeaning read(eSystem system, std::string_view code);

/// Like read, but returns refusals. Throws nothing but std::bad_alloc.
/// @par Threads  Any thread; takes no lock.
MENSOR_CODES_API CReading tryRead(eSystem system, std::string_view code);

/// Returns true if `text` is a code of the system, with or without an exact meaning.
/// @par Threads  Any thread; takes no lock.
MENSOR_CODES_API bool isCode(eSystem system, std::string_view text);

/// Returns the refusal in words. It names other systems that have the code, and similar codes.
/// @par Threads  Any thread; takes no lock.
MENSOR_CODES_API exact::CDiagnosis diagnose(const CRefusal& refusal);

/// One row of a table. Texts are UTF-8; the views are valid as long as the library is loaded.
struct CCode {
    std::string Code;
    std::string_view Symbol;  ///< what displays show: "km/h"
    std::string_view Name;    ///< the English name
    std::string_view
        Definition;           ///< as in mensor_exact/Definitions.h; empty if the code is refused
    std::string_view Source;  ///< where the definition is from, or why there is none
    std::string_view Note;    ///< details, such as which of several sizes it is; usually empty
    std::string SameAs;  ///< the code that codeFor() gives for this meaning, if it is another one
    bool IsDeprecated = false;  ///< the system itself advises against it
};

/// Returns the row of a code, or none. Refused codes have rows, too. UCUM has rows for its atoms.
/// @par Threads  Any thread; takes no lock.
MENSOR_CODES_API std::optional<CCode> find(eSystem system, std::string_view code);

/// Returns all rows, in the order of the table.
/// @par Threads  Any thread; takes no lock.
MENSOR_CODES_API std::vector<CCode> all(eSystem system);

/// What codeFor returns: the code of a meaning, or the nearest one.
///
/// Class contract: caller serialises changes of one object; distinct objects any thread.
struct CMatch {
    std::string Code;  ///< means exactly this, including rad, sr and bit; empty if there is none
    std::vector<std::string> Synonyms;  ///< other codes of the same meaning
    std::string Nearest;   ///< if Code is empty: the code of the nearest size, or empty
    double Deviation = 0;  ///< the size of Nearest divided by the wanted size, minus 1

    explicit operator bool() const { return !Code.empty(); }

    /// Returns the code, or a sentence such as "no code of UN/CEFACT means exactly this; the nearest is
    /// PS, which is 3.9e-05 % smaller". It does not name a code that is more than a tenth larger or smaller.
    MENSOR_CODES_API std::string toString(eSystem system) const;
};

/// Returns the code of a meaning. An offset unit has no nearest code.
/// @par Threads  Any thread; takes no lock.
MENSOR_CODES_API CMatch codeFor(eSystem system, const exact::CMeaning& meaning);

}  // namespace mensor::codes

#endif  // MENSOR_CODES_CODES_H

// Reading.h: units and values as people write them, read exactly.
//
//     exact::read("W/(m²·K)");             // also "W/(m^2 K)", "W·m⁻²·K⁻¹", "W*m**-2*K**-1"
//     exact::read("ft", catalogue);        // a catalogue with the pack CUSTOMARY
//     exact::read("W/m²/K");               // throws CReadError: which of the two?
//     exact::readValue("2.5 km").Number;   // 5/2, exactly
//
//     const exact::CReading reading = exact::tryRead(line, catalogue);
//     if (!reading) std::cerr << exact::diagnose(reading.Refusal, catalogue).message() << '\n';
//
// Nothing is registered, kept or locked. Names come from an immutable catalogue (Definitions.h), which
// any number of threads may share. The grammar and all refusals are on the page docs/reading.md.
#ifndef MENSOR_EXACT_READING_H
#define MENSOR_EXACT_READING_H

#include <optional>
#include <string>
#include <string_view>

#include "mensor_exact/Definitions.h"
#include "mensor_exact/Diagnosis.h"
#include "mensor_exact/Fraction.h"
#include "mensor_exact/Meaning.h"
#include "mensor_exact/Notes.h"
#include "mensor_exact/Refusal.h"
#include "mensor_exact/exact_export.h"

namespace mensor::exact {

/// What a reader allows beyond the plain grammar.
struct CReadOptions {
    bool Dimensionless = false;  ///< the empty text is the dimensionless unit
    bool Differences = false;    ///< an offset unit in a product is its difference: "J/°C" is J/K
                                 ///< (but "W/m°C" stays refused: W/(m·K)?)
    bool Strict = false;  ///< what people use for something else is refused, too: "pH", "kg/cm²"
    bool NotFinite = false;  ///< values may be "nan", "inf", "infinity", with a sign; only where
                             ///< they are doubles
};

/// The outcome of a reading that does not throw.
///
/// Class contract: caller serialises changes of one object; distinct objects any thread.
struct CReading {
    std::optional<CMeaning> Meaning;  ///< empty when refused
    CRefusal Refusal;                 ///< why; it refers to the text. Of no meaning when read
    bool HasDifference = false;       ///< a scale with a zero of its own was read as a difference
    CNotes Notes;                     ///< remarks on the meaning

    explicit operator bool() const { return Meaning.has_value(); }
};

/// What the unit written in `text`, UTF-8, means.
///
/// "1" and "One" are the dimensionless unit. A name is looked up as it is written; then with
/// characters that Unicode has twice as the catalogue spells them, and the litre's "L" as "l"; and if
/// the catalogue has the pack EVERYDAY, as a word ("kilometres"), and with "u" as the micro sign.
/// @throws CReadError  the text is refused.
/// @par Threads  Any thread; takes no lock.
MENSOR_EXACT_API CMeaning read(std::string_view text,
                               const CCatalogue& catalogue = CCatalogue::builtIn(),
                               const CReadOptions& options = {});

/// The same without exceptions for refused texts. Only std::bad_alloc may pass.
///
/// For everyday texts, refused ones included, it allocates no memory but that of the result.
/// @par Threads  Any thread; takes no lock.
MENSOR_EXACT_API CReading tryRead(std::string_view text,
                                  const CCatalogue& catalogue = CCatalogue::builtIn(),
                                  const CReadOptions& options = {});

/// The refusal in words, with what to write instead. The catalogue is the one that was read with. Of
/// names that are equally near, those are offered that make the text compatible with `target`, if it is
/// not null.
/// @par Threads  Any thread; takes no lock.
MENSOR_EXACT_API CDiagnosis diagnose(const CRefusal& refusal,
                                     const CCatalogue& catalogue = CCatalogue::builtIn(),
                                     const CMeaning* target = nullptr);

/// The unit written in `text` in one plain notation, which definitions (Definitions.h) and the reader
/// both read: "W/(m²·K)" for "W·m**-2 K^-1", with the names as the catalogue spells them.
///
/// A difference is written as the unit that it is, "J/K" for "J/°C".
/// @throws CReadError  the text is refused.
/// @par Threads  Any thread; takes no lock.
MENSOR_EXACT_API std::string notationOf(std::string_view text,
                                        const CCatalogue& catalogue = CCatalogue::builtIn(),
                                        const CReadOptions& options = {});

/// A number and its unit.
struct CValue {
    CFraction Number;  ///< exactly as it is written
    CMeaning Unit;
};

/// The outcome of reading a value without exceptions.
///
/// Class contract: caller serialises changes of one object; distinct objects any thread.
struct CValueReading {
    std::optional<CValue> Value;  ///< empty when refused
    CRefusal Refusal;             ///< as in CReading
    CSpan Unit;                   ///< where the unit is written
    bool HasDifference = false;   ///< as in CReading
    CNotes Notes;                 ///< as in CReading

    explicit operator bool() const { return Value.has_value(); }
};

/// The value written in `text`: a number as docs/reading.md has it, nothing or blanks, a unit.
///
/// A number alone is a value of the dimensionless unit only by CReadOptions::Dimensionless. Numbers are
/// finite, whatever the options say.
/// @throws CReadError  the text is refused.
/// @par Threads  Any thread; takes no lock.
MENSOR_EXACT_API CValue readValue(std::string_view text,
                                  const CCatalogue& catalogue = CCatalogue::builtIn(),
                                  const CReadOptions& options = {});

/// The same without exceptions for refused texts. Only std::bad_alloc may pass.
/// @par Threads  Any thread; takes no lock.
MENSOR_EXACT_API CValueReading tryReadValue(std::string_view text,
                                            const CCatalogue& catalogue = CCatalogue::builtIn(),
                                            const CReadOptions& options = {});

/// Whether `text` is one name by the grammar, so that a unit labelled with it can be read:
/// "km", "[in_i]", but not "m2", "a b" or "".
/// @par Threads  Any thread; takes no lock.
MENSOR_EXACT_API bool isName(std::string_view text);

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_READING_H

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
// The functions register nothing, keep nothing and take no lock. Names come from an immutable catalogue
// (Definitions.h), which any number of threads may share. The page docs/reading.md has the grammar and all
// refusals.
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

/// Options that change which texts the reader accepts.
struct CReadOptions {
    bool Dimensionless = false;  ///< the empty text is the dimensionless unit
    bool Differences = false;    ///< an offset unit in a product is its difference: "J/°C" is J/K;
                                 ///< "W/m°C" stays refused: it may mean W/(m·K)
    bool Strict = false;         ///< refuses texts with another common use, too: "pH", "kg/cm²"
    bool NotFinite = false;  ///< values may be "nan", "inf" or "infinity", with a sign; only for
                             ///< functions that return a double
};

/// The outcome of a reading that does not throw.
///
/// Class contract: caller serialises changes of one object; distinct objects any thread.
struct CReading {
    std::optional<CMeaning> Meaning;  ///< empty when refused
    CRefusal Refusal;                 ///< the reason; refers to the text. Unused if accepted
    bool HasDifference = false;       ///< true if an offset unit was read as a difference
    CNotes Notes;                     ///< remarks on the meaning

    explicit operator bool() const { return Meaning.has_value(); }
};

/// Returns the meaning of the unit in `text`, which is UTF-8.
///
/// "1" and "One" are the dimensionless unit. The function looks up a name as it is written,
/// then with the catalogue's choice among equivalent Unicode characters, then with "l" for the litre's "L".
/// If the catalogue has the pack EVERYDAY, the name may also be a word ("kilometres") or have "u" in place
/// of the micro sign.
/// @throws CReadError  the text is refused.
/// @par Threads  Any thread; takes no lock.
MENSOR_EXACT_API CMeaning read(std::string_view text,
                               const CCatalogue& catalogue = CCatalogue::builtIn(),
                               const CReadOptions& options = {});

/// The same as read(), without an exception for a refused text. Throws nothing but std::bad_alloc.
///
/// For everyday texts, also refused ones, allocates no memory except for the result.
/// @par Threads  Any thread; takes no lock.
MENSOR_EXACT_API CReading tryRead(std::string_view text,
                                  const CCatalogue& catalogue = CCatalogue::builtIn(),
                                  const CReadOptions& options = {});

/// Returns the message of a refusal, with corrected texts. `catalogue` must be the one that refused the text.
/// If several names are equally similar and `target` is not null, the result has those that make the text
/// compatible with `target`.
/// @par Threads  Any thread; takes no lock.
MENSOR_EXACT_API CDiagnosis diagnose(const CRefusal& refusal,
                                     const CCatalogue& catalogue = CCatalogue::builtIn(),
                                     const CMeaning* target = nullptr);

/// Returns the unit in `text` in a plain notation that definitions (Definitions.h) and the reader both
/// accept: "W/(m²·K)" for "W·m**-2 K^-1", with the names as the catalogue spells them.
///
/// A difference has the name of its own unit: "J/K" for "J/°C".
/// @throws CReadError  the text is refused.
/// @par Threads  Any thread; takes no lock.
MENSOR_EXACT_API std::string notationOf(std::string_view text,
                                        const CCatalogue& catalogue = CCatalogue::builtIn(),
                                        const CReadOptions& options = {});

/// A number and its unit.
struct CValue {
    CFraction Number;  ///< exact
    CMeaning Unit;
};

/// The outcome of reading a value without exceptions.
///
/// Class contract: caller serialises changes of one object; distinct objects any thread.
struct CValueReading {
    std::optional<CValue> Value;  ///< empty when refused
    CRefusal Refusal;             ///< as in CReading
    CSpan Unit;                   ///< the place of the unit in the text
    bool HasDifference = false;   ///< as in CReading
    CNotes Notes;                 ///< as in CReading

    explicit operator bool() const { return Value.has_value(); }
};

/// Returns the value in `text`: a number, optional blanks and a unit. docs/reading.md has the grammar.
///
/// Accepts a number without a unit only with the option CReadOptions::Dimensionless. Accepts finite numbers
/// only, with any options.
/// @throws CReadError  the text is refused.
/// @par Threads  Any thread; takes no lock.
MENSOR_EXACT_API CValue readValue(std::string_view text,
                                  const CCatalogue& catalogue = CCatalogue::builtIn(),
                                  const CReadOptions& options = {});

/// The same as readValue(), without an exception for a refused text. Throws nothing but std::bad_alloc.
/// @par Threads  Any thread; takes no lock.
MENSOR_EXACT_API CValueReading tryReadValue(std::string_view text,
                                            const CCatalogue& catalogue = CCatalogue::builtIn(),
                                            const CReadOptions& options = {});

/// Returns true if `text` is one name by the grammar. A unit with this label can then be read:
/// "km", "[in_i]", but not "m2", "a b" or "".
/// @par Threads  Any thread; takes no lock.
MENSOR_EXACT_API bool isName(std::string_view text);

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_READING_H

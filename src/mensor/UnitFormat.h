// UnitFormat.h: the text of units: labels and aliases, the parser, and the two notations.
//
//     CUnitFormat::parseUnit("kg*m^2/s^2");                        // also "kg·m²/s²", "kg m2 /s2"
//     CUnitFormat::label(SI::Meter() * 1609.344, "mi");            // from now on written and read
//     CStandardUnitFormat::instance()->format(unit, "");           // "kg·m²/(s³·A)"
//     CASCIIUnitFormat::instance()->format(unit, "");              // "kg m^2 s^-3 A^-1"
//
// A label is read and written, and belongs to one unit. An alias is only read. The three tables
// belong to the process and are guarded by CUnit::mutex().
#ifndef MENSOR_UNITFORMAT_H
#define MENSOR_UNITFORMAT_H

#include <map>
#include <memory>
#include <vector>

#include "mensor/Unit.h"
#include "mensor/mensor_export.h"
#include "mensor/mensor_global.h"

namespace mensor {

class CUnitFormat;
using CUnitFormatPtr = std::shared_ptr<CUnitFormat>;

/// Reads units, stores their labels, and is the base of the notations.
///
/// Class contract: any thread. The destructors are not virtual: a notation is deleted as the class
/// that it was created as.
class MENSOR_API CUnitFormat {
public:
    /// The state of the parser.
    enum eState : int {
        DEFAULT,      ///< between tokens
        SYSTEM_NAME,  ///< inside a name in brackets, "[...]"
        NAME,         ///< inside a name
        EXPONENT,     ///< inside the number of a power or root
        MARKUP,       ///< inside a tag, "<...>", which is skipped
        ESCAPE        ///< inside an entity, "&...;", which is skipped
    };

    /// Returns `buffer` followed by the text of `unit`, which must not be empty.
    /// @throws std::invalid_argument  "Cannot format given Object as a Unit": the unit has neither label nor
    ///     symbol and is not a product.
    /// @par Threads  Any thread, locks CUnit::mutex().
    virtual string_t format(std::shared_ptr<CUnit> unit, string_t buffer) = 0;

    // Labels and aliases.

    /// Attaches `label` to `unit`, replacing its former label. Returns `unit`.
    ///
    /// The empty label is stored like any other, but it moves: the unit that had it loses it.
    /// @throws std::invalid_argument  "Label: m is a known symbol", or "Label: x is attached to a
    ///     different unit (must be detached first)", or `unit` is empty. The tables stay as they
    ///     were.
    /// @par Threads  Any thread, locks CUnit::mutex().
    static CUnitPtr label(CUnitPtr unit, const string_t& label);

    /// Adds `alias` as a name that the parser reads as `unit`. An alias that exists already keeps its
    /// unit. Returns `unit`.
    /// @throws std::invalid_argument  `unit` is empty.
    /// @par Threads  Any thread, locks CUnit::mutex().
    static CUnitPtr alias(CUnitPtr unit, string_t alias);

    /// Removes the label `name` and the alias `name` from `unit`. If `unit` has neither, nothing
    /// changes. Symbols stay.
    /// @par Threads  Any thread, locks CUnit::mutex().
    static void detach(const CUnitPtr& unit, const string_t& name);

    /// Returns the label of `unit`, else its symbol, which may be the empty text. `unit` must not
    /// be empty.
    /// @par Threads  Any thread, locks CUnit::mutex().
    static string_t labelFor(CUnitPtr unit);

    /// Returns the unit with this label, else with this alias, else with this symbol, else none.
    /// Names are compared exactly.
    /// @par Threads  Any thread, locks CUnit::mutex().
    static std::shared_ptr<CUnit> unitFor(const string_t& text);

    /// Labels one multiple of `unit` for each prefix: the prefix, then the text of the unit.
    ///
    ///     CUnitFormat::labelPrefixedUnit({KILO, MILLI}, mile);   // "kmi", "mmi"
    /// Throws what `label` throws. Labels that were attached before that stay.
    /// @par Threads  Any thread, locks CUnit::mutex() for each label, and what CUnit::multiply(double) locks.
    static void labelPrefixedUnit(const std::vector<ePrefix>& prefixes,
                                  std::shared_ptr<CUnit> unit);

    /// Returns every label, alias and symbol with its unit, as `unitFor` knows them. The result is
    /// a copy, so the caches of the library stay on. They are off once a client has one of the
    /// tables below.
    /// @par Threads  Any thread, locks CUnit::mutex().
    static std::map<string_t, std::shared_ptr<CUnit>> names();

    /// Returns a number that changes with the names. While it stays the same and is not 0, every
    /// label, alias and symbol that denoted a unit still denotes it. It is 0 once a client has one
    /// of the tables, because the client may change the table without the library noticing.
    ///
    ///     const unsigned version = CUnitFormat::namesVersion();
    ///     // later: version != 0 && version == CUnitFormat::namesVersion()
    /// @par Threads  Any thread; takes no lock.
    static unsigned namesVersion();

    /// The tables: the units of the labels, the labels of the units, and the units of the aliases.
    /// Calling one of these functions switches the caches of the library off, since the client may
    /// change the table.
    /// @par Threads  Caller serialises, by holding CUnit::mutex() for as long as the reference is used.
    static std::map<string_t, std::shared_ptr<CUnit>>& labelUnitMap();
    static std::map<std::shared_ptr<CUnit>, string_t>& unitLabelMap();  ///< as above
    static std::map<string_t, std::shared_ptr<CUnit>>& aliasUnitMap();  ///< as above

    // The parser.

    /// Returns the unit that `text` denotes. The empty text is the dimensionless unit.
    ///
    /// A power follows its name ("m2", "m^2", "m²"), and a second number is the root ("m^1:2"). A
    /// slash turns all that follows into divisors, and the next slash turns back: "m/s/kg" is
    /// m·s⁻¹·kg. Everything else between names is a separator. Numbers before names, tags and
    /// entities are skipped.
    /// @throws std::invalid_argument  "Label: xyz not recognized", or what the algebra throws.
    /// @throws std::out_of_range  an exponent does not fit an `int`.
    /// @par Threads  Any thread, locks CUnit::mutex() for each name, and then what the algebra of CUnit
    ///     locks.
    static CUnitPtr parseUnit(const string_t& text);

    static bool isUnitIdentifierPart(char_t c);  ///< whether a name may contain `c`
    static bool isExponent(char_t c);            ///< whether an exponent may contain `c`

    /// Returns the integer in `text`, written with ASCII or superscript digits, or 1 for the empty
    /// text. A "-" at any position makes it negative.
    /// @throws std::out_of_range  the number does not fit an `int`.
    static int parseExponent(const string_t& text);

protected:
    ~CUnitFormat() = default;
};

/// The typographic notation: superscripts, middle dot, fraction bar.
///
/// Class contract: any thread.
class MENSOR_API CStandardUnitFormat final : public CUnitFormat {
public:
    static CUnitFormatPtr instance();  ///< the one object of the process
    string_t format(std::shared_ptr<CUnit> unit, string_t buffer) override;

    /// Writes one factor: "m", "m²", "m^4", "m^1:2".
    static void append(string_t& buffer, const string_t& symbol, int pow, int root);

private:
    friend class CUnit;
    MENSOR_LOCAL static string_t write(const CUnitPtr& unit, string_t buffer);
};

/// The plain notation: "kg m^2 s^-2". Names are written unchanged, so they may contain other
/// characters.
///
/// Class contract: any thread.
class MENSOR_API CASCIIUnitFormat final : public CUnitFormat {
public:
    static CUnitFormatPtr instance();  ///< the one object of the process
    string_t format(std::shared_ptr<CUnit> unit, string_t buffer) override;
};

}  // namespace mensor

#endif  // MENSOR_UNITFORMAT_H

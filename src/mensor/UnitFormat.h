// UnitFormat.h: the text of units: labels and aliases, the parser, and the two notations.
//
//     CUnitFormat::parseUnit("kg*m^2/s^2");                        // also "kg·m²/s²", "kg m2 /s2"
//     CUnitFormat::label(SI::Meter() * 1609.344, "mi");            // from now on written and read
//     CStandardUnitFormat::instance()->format(unit, "");           // "kg·m²/(s³·A)"
//     CASCIIUnitFormat::instance()->format(unit, "");              // "kg m^2 s^-3 A^-1"
//
// A label serves for reading and writing and belongs to one unit; an alias is only read. The three
// tables belong to the process and are guarded by CUnit::mutex().
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

/// Reads units, keeps their labels, and is the base of the notations.
///
/// Class contract: any thread. The destructors are not virtual: the notations are deleted through
/// the type they were created with.
class MENSOR_API CUnitFormat {
public:
    /// Where the parser stands in the text.
    enum eState : int {
        DEFAULT,      ///< between tokens
        SYSTEM_NAME,  ///< inside a name in brackets, "[...]"
        NAME,         ///< inside a name
        EXPONENT,     ///< inside the number of a power or root
        MARKUP,       ///< inside a tag, "<...>", which is skipped
        ESCAPE        ///< inside an entity, "&...;", which is skipped
    };

    /// `buffer` followed by the text of `unit`, which must not be empty.
    /// @throws std::invalid_argument  "Cannot format given Object as a Unit": it has neither label
    ///     nor symbol and is not a product.
    /// @par Threads  Any thread, locks CUnit::mutex().
    virtual string_t format(std::shared_ptr<CUnit> unit, string_t buffer) = 0;

    // Labels and aliases.

    /// Attaches `label` to `unit`, replacing its former label; gives `unit`.
    ///
    /// The empty label is stored like any other and taken from whoever held it.
    /// @throws std::invalid_argument  "Label: m is a known symbol", or "Label: x is attached to a
    ///     different unit (must be detached first)", or `unit` is empty. The tables stay as they
    ///     were.
    /// @par Threads  Any thread, locks CUnit::mutex().
    static CUnitPtr label(CUnitPtr unit, const string_t& label);

    /// Lets `alias` be read as `unit`, unless it is an alias already: the first one wins, silently.
    /// Gives `unit`.
    /// @throws std::invalid_argument  `unit` is empty.
    /// @par Threads  Any thread, locks CUnit::mutex().
    static CUnitPtr alias(CUnitPtr unit, string_t alias);

    /// Takes the label or alias `name` from `unit`, whichever of them it is; where `unit` has neither,
    /// nothing changes. Symbols stay.
    /// @par Threads  Any thread, locks CUnit::mutex().
    static void detach(const CUnitPtr& unit, const string_t& name);

    /// The label of `unit`, else its symbol, which may be empty. `unit` must not be empty.
    /// @par Threads  Any thread, locks CUnit::mutex().
    static string_t labelFor(CUnitPtr unit);

    /// The unit with this label, else this alias, else this symbol; none if there is no such unit.
    /// The comparison is exact.
    /// @par Threads  Any thread, locks CUnit::mutex().
    static std::shared_ptr<CUnit> unitFor(const string_t& text);

    /// Labels one multiple of `unit` per prefix with the prefix before the unit's text.
    ///
    ///     CUnitFormat::labelPrefixedUnit({KILO, MILLI}, mile);   // "kmi", "mmi"
    /// Throws what `label` throws; the labels given before stay.
    /// @par Threads  Any thread, locks CUnit::mutex() for each label, and what CUnit::multiply(double) locks.
    static void labelPrefixedUnit(const std::vector<ePrefix>& prefixes,
                                  std::shared_ptr<CUnit> unit);

    /// All that `unitFor` knows: every label, alias and symbol, and the unit it stands for. A copy,
    /// so the library goes on answering from what it remembers, as it cannot once a client holds one
    /// of the tables below.
    /// @par Threads  Any thread, locks CUnit::mutex().
    static std::map<string_t, std::shared_ptr<CUnit>> names();

    /// A number for what names stand for: while it stays the same and is not 0, every label, alias
    /// and symbol that stood for a unit stands for it still. 0 from the moment that a client holds one
    /// of the tables, and may change it unseen.
    ///
    ///     const unsigned version = CUnitFormat::namesVersion();
    ///     // later: version != 0 && version == CUnitFormat::namesVersion()
    /// @par Threads  Any thread; takes no lock.
    static unsigned namesVersion();

    /// The tables: the units of the labels, the labels of the units, and the units of the aliases.
    /// @par Threads  Caller serialises, by holding CUnit::mutex() for as long as the reference is used.
    static std::map<string_t, std::shared_ptr<CUnit>>& labelUnitMap();
    static std::map<std::shared_ptr<CUnit>, string_t>& unitLabelMap();  ///< as above
    static std::map<string_t, std::shared_ptr<CUnit>>& aliasUnitMap();  ///< as above

    // The parser.

    /// The unit written in `text`; the empty text is the dimensionless unit.
    ///
    /// Names stand for themselves, powers behind them ("m2", "m^2", "m²"), a second number is the
    /// root ("m^1:2"). A slash turns all that follows into divisors, and the next slash turns back:
    /// "m/s/kg" is m·s⁻¹·kg. Everything else between names is a separator; numbers before names,
    /// tags and entities are dropped.
    /// @throws std::invalid_argument  "Label: xyz not recognized"; or what the algebra throws.
    /// @throws std::out_of_range  an exponent does not fit an `int`.
    /// @par Threads  Any thread, locks CUnit::mutex() for each name, and then what the algebra of CUnit
    ///     locks.
    static CUnitPtr parseUnit(const string_t& text);

    static bool isUnitIdentifierPart(char_t c);  ///< whether `c` may stand in a name
    static bool isExponent(char_t c);            ///< whether `c` may stand in an exponent

    /// The integer written in `text` with ASCII and superscript digits; 1 for the empty text.
    /// A "-" counts wherever it stands.
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

/// The plain notation: "kg m^2 s^-2". Names are written as they are and may hold other characters.
///
/// Class contract: any thread.
class MENSOR_API CASCIIUnitFormat final : public CUnitFormat {
public:
    static CUnitFormatPtr instance();  ///< the one object of the process
    string_t format(std::shared_ptr<CUnit> unit, string_t buffer) override;
};

}  // namespace mensor

#endif  // MENSOR_UNITFORMAT_H

// Unit.h: the unit of measure, the base of every kind of unit, and its algebra.
//
//     CUnitPtr speed = SI::Meter() / SI::Second();
//     CUnit::fromString("km/h")->convertValueToUnit(90, speed);   // 25
//     CUnit::fromString("kPa")->isCompatible(NonSI::Bar());       // true
//     (SI::Meter() ^ 2)->toStdString();                           // "m²"
//
// Every distinct unit is exactly one object, so units are compared by pointer and may serve as keys
// of maps. What makes two units the same is their hash code alone; the kinds of units (BaseUnit.h,
// AlternateUnit.h, TransformedUnit.h, ProductUnit.h) compute it from what defines them. A unit that
// has been registered lives until the process ends.
//
// Locks. mutex() guards the tables of this class and those of CUnitFormat. Each unit has a second
// one, m_LookupVectorMutex, for its four caches of the algebra. A thread that holds a unit's mutex takes
// no other lock, unless it took mutex() before it. So the library cannot hang by itself; docs/threads.md
// tells what clients' kinds of units must not do.
#ifndef MENSOR_UNIT_H
#define MENSOR_UNIT_H

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "mensor/Converter.h"
#include "mensor/UnitRationalPower.h"
#include "mensor/mensor_export.h"
#include "mensor/mensor_global.h"

namespace mensor {

namespace detail {
struct DebugLayout;
struct Uncached;
}  // namespace detail

/// The base of all units. Clients may derive kinds of their own and register them with
/// `getInstance`.
///
/// Class contract: any thread, unless a member says otherwise. Of a product, whatever looks at its parts
/// (`getSystemUnit`, `isSystemUnit`, `baseUnits`, `getCtxDimension`) locks what `multiply` locks.
class MENSOR_API CUnit : public std::enable_shared_from_this<CUnit> {
public:
    virtual ~CUnit();
    CUnit(const CUnit&) = delete;
    CUnit& operator=(const CUnit&) = delete;

    // What each kind of unit defines, in the order of the virtual table.

    /// Computes `m_HashCode`, the identity of the unit, from what defines it.
    /// @par Threads  Caller serialises; `getInstance` calls it before other threads know the unit.
    virtual void calculateHashCode() = 0;

    /// The unit's dimension as the base units have it now; `getDimension` is the cached form.
    virtual CUnitPtr getCtxDimension() = 0;

    /// The system unit of which this unit is a transformation; a system unit gives itself.
    virtual CUnitPtr getSystemUnit() = 0;

    /// Whether `that` is the same unit by what defines it. An empty pointer gives false.
    /// Canonical units are compared by pointer instead.
    virtual bool equals(CUnitPtr that) const = 0;

    /// The factors of the unit; anything but a product is the one factor (itself, 1, 1).
    virtual std::vector<CUnitRationalPower> elements();

    /// The converter from this unit to `getCtxDimension()`.
    virtual CConverterPtr getCtxToDimension() = 0;

    /// The expansion of a system unit into base units.
    /// @throws std::logic_error  "Unit with Id[ 7] and Symbol [] is not a system unit".
    virtual CUnitPtr baseUnits();

    /// The unit's own symbol, empty if it has none. Labels are asked of CUnitFormat::labelFor.
    virtual string_t getSymbol();

    // Identity.

    /// Stores the number of registration. For kinds of units; `getInstance` calls it.
    /// @par Threads  Caller serialises; `getInstance` calls it before other threads know the unit.
    void setId(int id);

    /// The identity key: units with the same hash code are one unit. 0 until computed.
    int hashCode() const { return m_HashCode; }

    /// Whether this unit is its own system unit.
    bool isSystemUnit();

    // Conversion.

    /// The dimension of this unit; two units can be converted when their dimensions are one object.
    /// @par Threads  Any thread, locks mutex(); the first time, the units of a product while it holds that.
    CUnitPtr getDimension();

    /// Whether values can be converted between this unit and `that`.
    ///
    ///     SI::Joule()->isCompatible(SI::Newton() * SI::Meter());   // true
    /// @throws std::invalid_argument  `that` is empty.
    /// @par Threads  Any thread, locks what `getDimension` locks.
    bool isCompatible(CUnitPtr that);

    /// The converter that takes values of this unit to values of `that`.
    ///
    /// For this very unit: the identity object. Otherwise built anew at each call, so keep it to
    /// convert many values. It goes on working as it was made if a base unit's dimension changes.
    ///
    ///     NonSI::Hour()->getConverterTo(SI::Second())->convert(1.5);   // 5400
    /// @throws std::invalid_argument  "m is not compatible with s in current context": the
    ///     dimensions differ; the symbols are empty for units that have none of their own.
    /// @throws std::logic_error  "Unit element  is non-linear, cannot convert": a factor of a
    ///     product has an offset.
    /// @par Threads  Any thread, locks what `getDimension` locks.
    CConverterPtr getConverterTo(CUnitPtr that);

    /// The same for the unit written in `text`; throws what `fromString` throws, too.
    /// @par Threads  Any thread, locks what `fromString` and then what `getDimension` locks.
    CConverterPtr getConverterTo(const string_t& text);

    /// `value`, given in this unit, expressed in `that`. Throws what `getConverterTo` throws.
    /// @par Threads  Any thread, locks what `getDimension` locks.
    double convertValueToUnit(double value, CUnitPtr that);

    // Algebra. The results are canonical: the same expression gives the same object.

    /// The unit whose values are this unit's minus `offset` (offset in this unit):
    /// `SI::Kelvin()->add(273.15)` is the degree Celsius.
    ///
    /// Identity looks at the slope alone: once the degree Celsius exists, the kelvin with any other
    /// offset is the degree Celsius. Empty if the identity belongs to a unit of another kind.
    /// @par Threads  Any thread, locks mutex(); of a product, before it what `multiply` locks.
    CUnitPtr add(double offset);

    /// The unit of the size of `factor` of this one: `SI::Meter()->multiply(1000)` is the kilometre.
    /// Empty if the identity belongs to a unit of another kind.
    /// @par Threads  Any thread, locks mutex(); of a product, before it what `multiply` of a unit locks.
    CUnitPtr multiply(double factor);

    /// The product of this unit and `that`, factors in this order where the product is new.
    /// @throws std::invalid_argument  `that` is empty.
    /// @throws std::overflow_error  an exponent leaves the range of `int`.
    /// @par Threads  Any thread, locks m_LookupVectorMutex; the first time mutex(), then it.
    CUnitPtr multiply(CUnitPtr that);

    /// The quotient of this unit and `that`; otherwise as `multiply`.
    /// @par Threads  Any thread, locks m_LookupVectorMutex; the first time mutex(), then it.
    CUnitPtr divide(CUnitPtr that);

    /// The root of order `n` of this unit; a negative order is the root's reciprocal.
    /// @throws std::invalid_argument  "Root's order of zero".
    /// @throws std::overflow_error  an exponent leaves the range of `int`.
    /// @par Threads  Any thread, locks m_LookupVectorMutex; the first time mutex(), then it.
    CUnitPtr root(int n);

    /// This unit to the power `n`; power 0 is the dimensionless unit.
    /// @throws std::overflow_error  an exponent leaves the range of `int`.
    /// @par Threads  Any thread, locks m_LookupVectorMutex; the first time mutex(), then it.
    CUnitPtr pow(int n);

    /// A system unit with a symbol of its own that stands for this one, as N stands for kg·m/s².
    ///
    /// A symbol that is an alternate unit already gives that unit, whatever it stands for.
    /// @throws std::logic_error  this unit is not a system unit, or "The symbol: m is currently
    ///     associated to another unit.".
    /// @par Threads  Any thread, locks mutex(); of a product, before it what `multiply` locks.
    CUnitPtr alternate(const string_t& symbol);

    // Text.

    /// The unit in the standard notation, "kg·m²/s²".
    /// @throws std::invalid_argument  "Cannot format given Object as a Unit": a transformed unit
    ///     without a label.
    /// @par Threads  Any thread, locks mutex().
    string_t toString();

    /// `toString()` as UTF-8 bytes.
    /// @par Threads  Any thread, locks mutex().
    std::string toStdString();

    /// `text` followed by the unit in the standard notation.
    /// @par Threads  Any thread, locks mutex().
    string_t appendTo(string_t text);

    /// The unit written in `text`, see CUnitFormat::parseUnit.
    ///
    ///     CUnit::fromString("km/h");
    /// @throws std::invalid_argument  "Label: xyz not recognized".
    /// @par Threads  Any thread, locks mutex() for each name and then what `multiply` and `pow` lock.
    static CUnitPtr fromString(const string_t& text);

    // The tables of the process. They only grow, and hold what they name for ever. Read or change
    // them under mutex(); the library's own lookups do.

    /// The canonical unit with exactly this symbol, or none. Labels and aliases are not asked.
    /// @par Threads  Any thread, locks mutex().
    static CUnitPtr searchSymbol(const string_t& symbol);

    /// The canonical unit with this hash code, or none.
    /// @par Threads  Any thread, locks mutex().
    static CUnitPtr searchHashCode(int hashCode);

    /// Every canonical unit that has a symbol.
    /// @par Threads  Caller serialises, by holding mutex() for as long as the reference is used.
    static std::map<string_t, CUnitPtr>& symbols();

    /// Every canonical unit by its hash code; never seen empty: the dimensionless unit is put in
    /// first, under the hash code that it has at that moment.
    /// @par Threads  Caller serialises, by holding mutex() for as long as the reference is used.
    static std::map<int, CUnitPtr>& instances();

    /// Cache: each unit that was asked, and its dimension.
    /// @par Threads  Caller serialises, by holding mutex() for as long as the reference is used.
    static std::map<CUnitPtr, CUnitPtr>& dimensions();

    /// Cache: each unit that was asked, and the converter to its dimension.
    /// @par Threads  Caller serialises, by holding mutex() for as long as the reference is used.
    static std::map<CUnitPtr, CConverterPtr>& toDimensions();

    /// The one lock of the tables above and of CUnitFormat's. Recursive, since the kinds of units
    /// are asked while it is held.
    static std::recursive_mutex& mutex();

protected:
    /// Does and throws all that `getConverterTo(that)` does, for kinds of units that do not need the
    /// converter itself.
    void requireConverterTo(const CUnitPtr& that);

    /// A unit that is not registered yet: no hash code, no id.
    explicit CUnit(const string_t& symbol);

    /// The canonical unit for `unit`: the one registered under the same hash code, else `unit`
    /// itself, registered now.
    ///
    /// No other comparison is made: the hash alone decides identity.
    /// @throws std::logic_error  "The symbol: x is currently associated to another unit."; the
    ///     tables stay as they were, as after any exception.
    /// @par Threads  Any thread, locks mutex().
    static CUnitPtr getInstance(CUnitPtr unit);

    /// The canonical unit for this one.
    CUnitPtr readResolve();

private:
    friend class CUnitFormat;
    friend struct detail::DebugLayout;
    friend struct detail::Uncached;

    MENSOR_LOCAL static CUnitPtr getUnitByIndexOrExpandTable(int index,
                                                             std::vector<CUnitPtr>& table);
    template <class Make>
    MENSOR_LOCAL CUnitPtr lookUp(int index, std::vector<CUnitPtr>& table, Make make);
    template <class Make>
    MENSOR_LOCAL CUnitPtr fill(int index, std::vector<CUnitPtr>& table, const Make& make);
    template <class Make>
    MENSOR_LOCAL CUnitPtr makeLocked(const Make& make);

    MENSOR_LOCAL const CConverterPtr* rememberedToDimension() const;
    MENSOR_LOCAL static void rememberDimension(const CUnitPtr& unit, const CUnitPtr& dimension,
                                               const CConverterPtr& toDimension);

    // The converters of two compatible units to their dimension.
    struct Route {
        CConverterPtr FromThis;
        CConverterPtr FromThat;
    };
    template <class Use>
    MENSOR_LOCAL auto useRouteTo(const CUnitPtr& that, Use use);
    MENSOR_LOCAL Route lookUpRouteTo(const CUnitPtr& that);
    MENSOR_LOCAL static CConverterPtr chain(const CConverterPtr& fromThis,
                                            const CConverterPtr& fromThat);
    MENSOR_LOCAL static const CUnitPtr& dimensionLocked(const CUnitPtr& unit);
    MENSOR_LOCAL static CConverterPtr toDimensionLocked(const CUnitPtr& unit,
                                                        const CUnitPtr& dimension);

protected:
    // Guards the four vectors below; order: see the top. Whoever fills a slot holds mutex(), too, so a
    // reader needs one of the two.
    std::recursive_mutex m_LookupVectorMutex;
    std::vector<CUnitPtr> m_MultiplyLookUp;  // multiply(unit), slot = the other unit's id
    std::vector<CUnitPtr> m_DivideLookUp;    // divide(unit), slot = the other unit's id
    std::vector<CUnitPtr> m_RootLookUp;      // root(n), slot = n - 2
    std::vector<CUnitPtr> m_PowLookUp;       // pow(n), slot = n - 2
    string_t m_Symbol;                       // as given; empty for units that have none
    int m_HashCode;                          // written by calculateHashCode(), 0 until then
    int m_Id;                                // written by getInstance(), 0 until then

private:
    // What dimensions() and toDimensions() say of this unit, void under another epoch (tables.h).
    // Written under mutex(), read without it; the epoch is written last and read first.
    std::atomic<unsigned> m_RememberedEpoch;
    std::atomic<const CUnit*> m_RememberedDimension;
    std::atomic<const CConverterPtr*> m_RememberedToDimension;
};

/// `unit->add(offset)`.
/// @par Threads  Any thread, locks what the member locks; so do all the operators.
MENSOR_API CUnitPtr operator+(const CUnitPtr& unit, double offset);
/// `unit->multiply(factor)`.
MENSOR_API CUnitPtr operator*(const CUnitPtr& unit, double factor);
/// `left->multiply(right)`.
MENSOR_API CUnitPtr operator*(const CUnitPtr& left, const CUnitPtr& right);
/// `left->divide(right)`.
MENSOR_API CUnitPtr operator/(const CUnitPtr& left, const CUnitPtr& right);
/// `unit->pow(n)`. Binds more loosely than `*` and `/`: write `(unit ^ 2)`.
MENSOR_API CUnitPtr operator^(const CUnitPtr& unit, int n);

}  // namespace mensor

#endif  // MENSOR_UNIT_H

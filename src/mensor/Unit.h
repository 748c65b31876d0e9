// Unit.h: the unit of measure, the base of every kind of unit, and its algebra.
//
//     CUnitPtr speed = SI::Meter() / SI::Second();
//     CUnit::fromString("km/h")->convertValueToUnit(90, speed);   // 25
//     CUnit::fromString("kPa")->isCompatible(NonSI::Bar());       // true
//     (SI::Meter() ^ 2)->toStdString();                           // "m²"
//
// Every distinct unit is exactly one object, so units are compared by pointer and can be the keys
// of maps. The hash code alone decides identity: units with the same hash code are one unit. Each
// kind of unit (BaseUnit.h, AlternateUnit.h, TransformedUnit.h, ProductUnit.h) computes it from its
// definition. A registered unit lives until the process ends.
//
// Locks. mutex() guards the tables of this class and those of CUnitFormat. Each unit has a mutex of
// its own, m_LookupVectorMutex, which guards its four caches of the algebra. A thread that holds
// the mutex of a unit takes no other lock, unless it took mutex() first. So the library cannot
// deadlock by itself. docs/threads.md says what the kinds of units of a client must not do.
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

/// The base of all units. Clients may derive kinds of their own and register them with
/// `getInstance`.
///
/// Class contract: any thread, unless a member says otherwise. For a product, the functions that
/// look at its factors (`getSystemUnit`, `isSystemUnit`, `baseUnits`, `getCtxDimension`) lock what
/// `multiply` locks.
class MENSOR_API CUnit : public std::enable_shared_from_this<CUnit> {
public:
    virtual ~CUnit();
    CUnit(const CUnit&) = delete;
    CUnit& operator=(const CUnit&) = delete;

    // The virtual functions that each kind of unit defines. Their order is that of the virtual
    // table.

    /// Computes `m_HashCode`, the identity of the unit, from its definition.
    /// @par Threads  Caller serialises; `getInstance` calls it before other threads know the unit.
    virtual void calculateHashCode() = 0;

    /// The dimension of the unit with the present dimensions of the base units. `getDimension`
    /// caches it.
    virtual CUnitPtr getCtxDimension() = 0;

    /// The system unit that this unit is a transformation of. A system unit returns itself.
    virtual CUnitPtr getSystemUnit() = 0;

    /// Returns whether `that` has the same definition. False for an empty pointer. To compare
    /// registered units, compare the pointers.
    virtual bool equals(CUnitPtr that) const = 0;

    /// The factors of the unit. A unit that is not a product has the single factor (itself, 1, 1).
    virtual std::vector<CUnitRationalPower> elements();

    /// The converter from this unit to `getCtxDimension()`.
    virtual CConverterPtr getCtxToDimension() = 0;

    /// The expansion of a system unit into base units.
    /// @throws std::logic_error  "Unit with Id[ 7] and Symbol [] is not a system unit".
    virtual CUnitPtr baseUnits();

    /// The symbol of the unit, or the empty text. CUnitFormat::labelFor returns the label.
    virtual string_t getSymbol();

    // Identity.

    /// Stores the id, the number of registration. `getInstance` calls it.
    /// @par Threads  Caller serialises; `getInstance` calls it before other threads know the unit.
    void setId(int id);

    /// The hash code, which decides identity: units with the same hash code are one unit. 0 until
    /// computed.
    int hashCode() const { return m_HashCode; }

    /// Returns whether this unit is its own system unit.
    bool isSystemUnit();

    // Conversion.

    /// The dimension of this unit. Two units are compatible when their dimensions are the same
    /// object.
    /// @par Threads  Any thread, locks mutex(). For a product, the first call also locks its units while it
    ///     holds mutex().
    CUnitPtr getDimension();

    /// Returns whether values can be converted between this unit and `that`.
    ///
    ///     SI::Joule()->isCompatible(SI::Newton() * SI::Meter());   // true
    /// @throws std::invalid_argument  `that` is empty.
    /// @par Threads  Any thread, locks what `getDimension` locks.
    bool isCompatible(CUnitPtr that);

    /// The converter that takes values of this unit to values of `that`.
    ///
    /// If `that` is this unit, the identity converter. Otherwise each call builds a new converter,
    /// so keep it to convert many values. A converter does not change when the dimension of a base
    /// unit is set.
    ///
    ///     NonSI::Hour()->getConverterTo(SI::Second())->convert(1.5);   // 5400
    /// @throws std::invalid_argument  "m is not compatible with s in current context": the
    ///     dimensions differ. A unit without a symbol is named by the empty text.
    /// @throws std::logic_error  "Unit element  is non-linear, cannot convert": a factor of a
    ///     product has an offset.
    /// @par Threads  Any thread, locks what `getDimension` locks.
    CConverterPtr getConverterTo(CUnitPtr that);

    /// The converter to the unit that `text` denotes. Also throws what `fromString` throws.
    /// @par Threads  Any thread, locks what `fromString` and then what `getDimension` locks.
    CConverterPtr getConverterTo(const string_t& text);

    /// Returns `value`, given in this unit, expressed in `that`. Throws what `getConverterTo`
    /// throws.
    /// @par Threads  Any thread, locks what `getDimension` locks.
    double convertValueToUnit(double value, CUnitPtr that);

    // Algebra. The results are registered units: the same expression gives the same object.

    /// The offset unit whose zero is at `offset` of this unit: `SI::Kelvin()->add(273.15)` is the
    /// degree Celsius.
    ///
    /// The hash code depends on the slope alone: once the degree Celsius exists, the kelvin with
    /// any other offset is the degree Celsius. Empty if the hash code belongs to a unit of another
    /// kind.
    /// @par Threads  Any thread, locks mutex(); for a product, before it what `multiply` locks.
    CUnitPtr add(double offset);

    /// The unit that is `factor` times this one: `SI::Meter()->multiply(1000)` is the kilometre.
    /// Empty if the hash code belongs to a unit of another kind.
    /// @par Threads  Any thread, locks mutex(); for a product, before it what `multiply` of a unit locks.
    CUnitPtr multiply(double factor);

    /// The product of this unit and `that`. A new product has its factors in this order.
    /// @throws std::invalid_argument  `that` is empty.
    /// @throws std::overflow_error  an exponent leaves the range of `int`.
    /// @par Threads  Any thread, locks m_LookupVectorMutex; a first call locks mutex() before it.
    CUnitPtr multiply(CUnitPtr that);

    /// The quotient of this unit and `that`. Throws what `multiply` throws.
    /// @par Threads  Any thread, locks m_LookupVectorMutex; a first call locks mutex() before it.
    CUnitPtr divide(CUnitPtr that);

    /// The root of order `n` of this unit. A negative order gives the reciprocal of the root.
    /// @throws std::invalid_argument  "Root's order of zero".
    /// @throws std::overflow_error  an exponent leaves the range of `int`.
    /// @par Threads  Any thread, locks m_LookupVectorMutex; a first call locks mutex() before it.
    CUnitPtr root(int n);

    /// This unit to the power `n`. The power 0 is the dimensionless unit.
    /// @throws std::overflow_error  an exponent leaves the range of `int`.
    /// @par Threads  Any thread, locks m_LookupVectorMutex; a first call locks mutex() before it.
    CUnitPtr pow(int n);

    /// A system unit with a symbol of its own that is equal to this one, as N is equal to kg·m/s².
    ///
    /// If an alternate unit has this symbol already, returns that unit, even if it is equal to
    /// another one.
    /// @throws std::logic_error  this unit is not a system unit, or "The symbol: m is currently
    ///     associated to another unit.".
    /// @par Threads  Any thread, locks mutex(); for a product, before it what `multiply` locks.
    CUnitPtr alternate(const string_t& symbol);

    // Text.

    /// The unit in the standard notation, "kg·m²/s²".
    /// @throws std::invalid_argument  "Cannot format given Object as a Unit": a transformed unit
    ///     without a label.
    /// @par Threads  Any thread, locks mutex().
    string_t toString();

    /// `toString()` in UTF-8 bytes.
    /// @par Threads  Any thread, locks mutex().
    std::string toStdString();

    /// Returns `text` followed by the unit in the standard notation.
    /// @par Threads  Any thread, locks mutex().
    string_t appendTo(string_t text);

    /// The unit that `text` denotes, see CUnitFormat::parseUnit.
    ///
    ///     CUnit::fromString("km/h");
    /// @throws std::invalid_argument  "Label: xyz not recognized".
    /// @par Threads  Any thread, locks mutex() for each name and then what `multiply` and `pow` lock.
    static CUnitPtr fromString(const string_t& text);

    // The tables of the process. They only grow and own their units until the process ends. Hold
    // mutex() to read or change them. An accessor that returns a reference switches the caches of
    // the library off, since the client may change the table.

    /// The registered unit with exactly this symbol, or none. Does not look at labels and aliases.
    /// @par Threads  Any thread, locks mutex().
    static CUnitPtr searchSymbol(const string_t& symbol);

    /// The registered unit with this hash code, or none.
    /// @par Threads  Any thread, locks mutex().
    static CUnitPtr searchHashCode(int hashCode);

    /// Every registered unit that has a symbol.
    /// @par Threads  Caller serialises, by holding mutex() for as long as the reference is used.
    static std::map<string_t, CUnitPtr>& symbols();

    /// Every registered unit by its hash code. The table is never empty: if it is, the
    /// dimensionless unit is added with the hash code that it has at that moment.
    /// @par Threads  Caller serialises, by holding mutex() for as long as the reference is used.
    static std::map<int, CUnitPtr>& instances();

    /// Cache of `getDimension`: units and their dimensions.
    /// @par Threads  Caller serialises, by holding mutex() for as long as the reference is used.
    static std::map<CUnitPtr, CUnitPtr>& dimensions();

    /// Cache of units and their converters to the dimension.
    /// @par Threads  Caller serialises, by holding mutex() for as long as the reference is used.
    static std::map<CUnitPtr, CConverterPtr>& toDimensions();

    /// The lock of the tables above and of those of CUnitFormat. Recursive, since the library calls
    /// virtual functions of units while it holds the lock.
    static std::recursive_mutex& mutex();

protected:
    /// Throws what `getConverterTo(that)` throws, and makes the same calls, but returns nothing.
    /// For kinds of units that do not need the converter.
    void requireConverterTo(const CUnitPtr& that);

    /// Creates a unit that is not registered: it has no hash code and no id.
    explicit CUnit(const string_t& symbol);

    /// Returns the registered unit with the hash code of `unit`. If there is none, registers `unit`
    /// and returns it. Nothing else is compared: the hash code alone decides identity.
    /// @throws std::logic_error  "The symbol: x is currently associated to another unit.". After any
    ///     exception the tables are as they were.
    /// @throws CTooManyUnits  a CRegistrationBound (RegistrationBound.h) does not allow a new unit.
    /// @par Threads  Any thread, locks mutex().
    static CUnitPtr getInstance(CUnitPtr unit);

    /// Returns getInstance() of this unit.
    CUnitPtr readResolve();

private:
    friend class CUnitFormat;
    friend struct detail::DebugLayout;
    friend struct detail::UnitAlgebra;
    friend struct detail::UnitConversion;

    // The entry `index` of a cache, which grows to have one. The caller holds the
    // m_LookupVectorMutex of the unit that the cache belongs to.
    MENSOR_LOCAL static CUnitPtr getUnitByIndexOrExpandTable(int index,
                                                             std::vector<CUnitPtr>& table);

protected:
    // Guards the four caches below; the order of locks is at the top. A thread that fills an entry
    // holds mutex() as well, so a reader needs only one of the two.
    std::recursive_mutex m_LookupVectorMutex;
    std::vector<CUnitPtr> m_MultiplyLookUp;  // multiply(unit), index: the id of the other unit
    std::vector<CUnitPtr> m_DivideLookUp;    // divide(unit), index: the id of the other unit
    std::vector<CUnitPtr> m_RootLookUp;      // root(n), index: n - 2
    std::vector<CUnitPtr> m_PowLookUp;       // pow(n), index: n - 2
    string_t m_Symbol;                       // as given; empty for units that have none
    int m_HashCode;                          // written by calculateHashCode(), 0 until then
    int m_Id;                                // written by getInstance(), 0 until then

private:
    // The entries of this unit in dimensions() and toDimensions(), cached in this epoch. Written
    // under mutex(), read without it. The epoch is written last and read first.
    std::atomic<unsigned> m_CachedEpoch;
    std::atomic<const CUnit*> m_CachedDimension;
    std::atomic<const CConverterPtr*> m_CachedToDimension;
};

/// `unit->add(offset)`.
/// @par Threads  Any thread, locks what the member function locks. This holds for all operators.
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

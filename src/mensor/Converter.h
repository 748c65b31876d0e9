// Converter.h: immutable functions of one double that take values from one unit to another.
//
//     CConverterPtr toMetre = CUnit::fromString("km")->getConverterTo(SI::Meter());
//     toMetre->convert(2.5);              // 2500
//     toMetre->inverse()->convert(2500);  // 2.5
//
//     Convert(2.5, CUnit::fromString("km")).to(SI::Meter());  // 2500
//
// a->concatenate(b) applies b first and then a. Converters are immutable once built; any thread may
// share them. Only CIdentity::inverse and concatenate need the object to be owned by a shared
// pointer, because they may return the object itself.
#ifndef MENSOR_CONVERTER_H
#define MENSOR_CONVERTER_H

#include <atomic>
#include <cstddef>
#include <memory>

#include "mensor/FlatPlan.h"
#include "mensor/mensor_export.h"
#include "mensor/mensor_global.h"

namespace mensor {

class CConverter;
class CUnit;

/// Shared ownership of a converter. Empty means "none".
using CConverterPtr = std::shared_ptr<CConverter>;
/// Shared ownership of a unit. Empty means "none". Two pointers denote the same unit exactly when
/// they point at the same object.
using CUnitPtr = std::shared_ptr<CUnit>;

/// The base of all converters. Clients may derive their own.
///
/// Class contract: any thread; a converter has no state that changes.
class MENSOR_API CConverter : public std::enable_shared_from_this<CConverter> {
public:
    virtual ~CConverter();

    /// The converter that undoes this one.
    virtual CConverterPtr inverse() = 0;

    /// `x`, a value in the source unit, expressed in the target unit.
    virtual double convert(double x) const = 0;

    /// The slope of `convert` at `x`, in target units per source unit.
    virtual double derivative(double x) const = 0;

    /// Returns whether this is a pure scaling, that is, has no offset.
    virtual bool isLinear() const = 0;

    /// Returns whether `other` is the same scaling: both linear, slopes equal in single precision.
    ///
    /// Slopes are compared as floats on purpose, which allows for rounding. An empty pointer gives
    /// false.
    virtual bool equals(CConverterPtr other) const;

    /// The bits of the slope at zero in single precision. All pure offsets have the same hash, that
    /// of the slope 1.
    int hashCode() const;

    /// The converter that applies `other` first and then this one.
    ///
    /// Returns this object when `other` is `identity()`, otherwise a new `CCompound(other, this)`.
    /// Constants are not combined, so the shape of a chain shows how it was built.
    /// @throws std::bad_weak_ptr  this object is not owned by a shared pointer.
    CConverterPtr concatenate(CConverterPtr other);

    /// Converts `count` values. Each result has the same bits as the result of `convert`.
    ///
    /// `values` and `results` are arrays of the caller: the same array, or two that do not overlap.
    ///
    ///     double samples[] = {0, 21.5, 100};
    ///     SI::Celsius()->getConverterTo(SI::Kelvin())->convertAll(samples, samples, 3);
    /// @throws std::invalid_argument  the arrays overlap in part, or one is null and `count` is not 0.
    ///     Nothing is written then.
    void convertAll(const double* values, double* results, std::size_t count) const;

    /// Returns the empty text. Only AddConverter and MultiplyConverter have a notation, and the
    /// function is not virtual.
    string_t getSymbol(CUnitPtr unit) const;

    /// The identity converter. There is one object in the process, so its address identifies it.
    static CConverterPtr identity();

protected:
    /// Does the work of `convertAll` after the arrays are checked. The default calls `convert` for
    /// each.
    virtual void convertArray(const double* values, double* results, std::size_t count) const;

    CConverter();
    CConverter(const CConverter&);
    CConverter& operator=(const CConverter&);
};

/// The converter that changes nothing. Use `CConverter::identity()`.
///
/// Class contract: any thread.
class MENSOR_API CIdentity : public CConverter {
public:
    CIdentity();
    ~CIdentity() override;

    /// Returns this object.
    /// @throws std::bad_weak_ptr  this object is not owned by a shared pointer.
    CConverterPtr inverse() override;
    double convert(double x) const override;
    double derivative(double x) const override;
    bool isLinear() const override;

    /// Returns `other`. Only a call through a pointer to CIdentity runs this, since `concatenate`
    /// is not virtual.
    CConverterPtr concatenate(CConverterPtr other);

protected:
    void convertArray(const double* values, double* results, std::size_t count) const override;
};

/// Two converters one after the other, made by `concatenate`.
///
/// A chain may have any length. Converting, inverting, comparing and destroying it needs a bounded
/// stack.
///
/// Class contract: any thread. The second step of a converter between units may be computed when it
/// is first asked for, under a lock of its own.
class MENSOR_API CCompound : public CConverter {
public:
    /// The converter that applies `first` and then `second`.
    /// @throws std::invalid_argument  one of the two is empty.
    CCompound(CConverterPtr first, CConverterPtr second);
    ~CCompound() override;
    CCompound(const CCompound&) = delete;
    CCompound& operator=(const CCompound&) = delete;

    /// A new compound of the inverses in reverse order.
    CConverterPtr inverse() override;
    double convert(double x) const override;
    /// The chain rule: the slope of the first step at `x`, times the slope of the second step at
    /// the value of the first.
    double derivative(double x) const override;
    /// Returns whether the first step is linear. The second step does not matter, so a scaling
    /// followed by an offset counts as linear.
    bool isLinear() const override;
    /// Returns whether `other` is a compound and its steps equal these, pair by pair.
    bool equals(CConverterPtr other) const override;

    CConverterPtr first() const;   ///< the step applied first
    CConverterPtr second() const;  ///< the step applied second

protected:
    void convertArray(const double* values, double* results, std::size_t count) const override;

private:
    friend struct detail::DebugLayout;

    friend struct detail::Chain;
    friend class detail::CFlatPlan;

    // Tells the constructor below that the second step is the inverse of this converter. The
    // inverse is computed when second() is first called.
    struct InverseOf {
        const CConverterPtr& Converter;
    };
    MENSOR_LOCAL CCompound(const CConverterPtr& first, InverseOf second);

    CConverterPtr m_First;  // applied first; never empty
    mutable CConverterPtr
        m_Second;  // applied second, or its inverse; see m_SecondIsReady; never empty
    mutable std::atomic<bool> m_SecondIsReady;  // set last; m_Second never changes after that
    detail::CFlatPlan m_Plan;                   // what convert() runs instead of the tree
};

using CCompoundPtr = std::shared_ptr<CCompound>;

/// One value and its unit, to be expressed in another unit.
///
/// Class contract: caller serialises changes of one object; distinct objects any thread.
class MENSOR_API Convert {
public:
    /// `value` expressed in `unit`.
    Convert(double value, std::shared_ptr<CUnit> unit);

    /// The value expressed in `unit`.
    ///
    ///     Convert(1.5, NonSI::Hour()).to(SI::Second());   // 5400
    /// @throws std::invalid_argument  the units are not compatible (see CUnit::getConverterTo), or
    ///     one of them is empty.
    /// @par Threads  Any thread, locks what CUnit::getConverterTo locks.
    double to(std::shared_ptr<CUnit> unit) const;

private:
    double m_Value;                 // expressed in m_Unit
    std::shared_ptr<CUnit> m_Unit;  // shared with the registry
};

}  // namespace mensor

#endif  // MENSOR_CONVERTER_H

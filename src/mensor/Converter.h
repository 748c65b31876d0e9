// Converter.h: immutable functions of one double that take values from one unit to another.
//
//     CConverterPtr toMetre = CUnit::fromString("km")->getConverterTo(SI::Meter());
//     toMetre->convert(2.5);              // 2500
//     toMetre->inverse()->convert(2500);  // 2.5
//
//     Convert(2.5, CUnit::fromString("km")).to(SI::Meter());  // 2500
//
// a->concatenate(b) applies b first and then a. Converters are immutable once built; any thread may
// share them. They live under shared pointers; only what hands out the object itself
// (CIdentity::inverse, concatenate) needs that.
#ifndef MENSOR_CONVERTER_H
#define MENSOR_CONVERTER_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "mensor/mensor_export.h"
#include "mensor/mensor_global.h"

namespace mensor {

class CConverter;
class CUnit;

/// Shared ownership of a converter; empty means "none".
using CConverterPtr = std::shared_ptr<CConverter>;
/// Shared ownership of a unit; empty means "none". Two pointers denote the same unit exactly when
/// they point at the same object.
using CUnitPtr = std::shared_ptr<CUnit>;

/// The base of all converters. Clients may derive their own.
///
/// Class contract: any thread; a converter holds no state that changes.
class MENSOR_API CConverter : public std::enable_shared_from_this<CConverter> {
public:
    virtual ~CConverter();

    /// The converter that undoes this one.
    virtual CConverterPtr inverse() = 0;

    /// `x`, a value in the source unit, expressed in the target unit.
    virtual double convert(double x) const = 0;

    /// The slope of `convert` at `x`, in target units per source unit.
    virtual double derivative(double x) const = 0;

    /// Whether this is a pure scaling, that is, has no offset.
    virtual bool isLinear() const = 0;

    /// Whether `other` is the same scaling: both linear, slopes equal in single precision.
    ///
    /// The tolerance of single precision is intended. An empty pointer gives false.
    virtual bool equals(CConverterPtr other) const;

    /// The bits of the slope at zero in single precision. Every pure offset has the hash of 1.
    int hashCode() const;

    /// The converter that applies `other` first and then this one.
    ///
    /// Gives this very object when `other` is `identity()`, otherwise a new `CCompound(other, this)`:
    /// nothing is folded, so that the shape of a chain tells how it was made.
    /// @throws std::bad_weak_ptr  this object is not owned by a shared pointer.
    CConverterPtr concatenate(CConverterPtr other);

    /// Converts `count` values at once: each result has the very bits that `convert` gives.
    ///
    /// `values` and `results` are arrays of the caller, the same one or two that do not overlap.
    ///
    ///     double samples[] = {0, 21.5, 100};
    ///     SI::Celsius()->getConverterTo(SI::Kelvin())->convertAll(samples, samples, 3);
    /// @throws std::invalid_argument  the arrays overlap in part, or one is null though `count` is
    ///     not 0; nothing has been written then.
    void convertAll(const double* values, double* results, std::size_t count) const;

    /// Empty: a converter seen through its base has no notation.
    string_t getSymbol(CUnitPtr unit) const;

    /// The one identity of the process, so it can be recognised by its address.
    static CConverterPtr identity();

protected:
    /// What `convertAll` does once it has checked the arrays; the default calls `convert` for each.
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

    /// This very object.
    /// @throws std::bad_weak_ptr  this object is not owned by a shared pointer.
    CConverterPtr inverse() override;
    double convert(double x) const override;
    double derivative(double x) const override;
    bool isLinear() const override;

    /// `other` itself. Reached only through a pointer to CIdentity: the base rule is not virtual.
    CConverterPtr concatenate(CConverterPtr other);

protected:
    void convertArray(const double* values, double* results, std::size_t count) const override;
};

/// Two converters one after the other, made by `concatenate`.
///
/// Chains may be of any length: converting, inverting, comparing and destroying them needs a bounded
/// stack.
///
/// Class contract: any thread. The steps of a converter to a unit may be inverted when they are first
/// asked for, under a lock that is held over nothing else.
class MENSOR_API CCompound : public CConverter {
public:
    /// The converter that applies `first` and then `second`.
    /// @throws std::invalid_argument  one of the two is empty.
    CCompound(CConverterPtr first, CConverterPtr second);
    struct InverseOf;  // for the library's own use
    MENSOR_LOCAL CCompound(const CConverterPtr& first, InverseOf second);
    ~CCompound() override;
    CCompound(const CCompound&) = delete;
    CCompound& operator=(const CCompound&) = delete;

    /// A new compound of the inverses in reverse order.
    CConverterPtr inverse() override;
    double convert(double x) const override;
    /// The chain rule: the slope of the first at `x` times that of the second at what the first
    /// makes of `x`.
    double derivative(double x) const override;
    /// What the first step says of itself. The second step is not asked: a scaling followed by an
    /// offset reports itself linear.
    bool isLinear() const override;
    /// Whether `other` is a compound too and its steps equal these, pair by pair.
    bool equals(CConverterPtr other) const override;

    CConverterPtr first() const;   ///< the step applied first
    CConverterPtr second() const;  ///< the step applied second

protected:
    void convertArray(const double* values, double* results, std::size_t count) const override;

private:
    friend struct detail::DebugLayout;

    // One step of the chain as convert() runs it: a known operation and its constant, or a converter
    // of a class that only its own convert() knows.
    struct Step {
        enum eKind { ADD, MULTIPLY, CALL } Kind;
        union {
            double Constant;
            const CConverter* Converter;
        };
    };
    static constexpr std::size_t LongestPlan = 32;

    struct Plan {
        const Step* Steps;
        std::size_t Count;
    };
    MENSOR_LOCAL static Plan planOf(const CConverter& child, Step& own);
    MENSOR_LOCAL static double run(const Step& step, double x);
    MENSOR_LOCAL static void runAll(const Step& step, const double* from, double* to,
                                    std::size_t count);
    MENSOR_LOCAL double runPlan(double x) const;
    MENSOR_LOCAL double walk(double x) const;
    MENSOR_LOCAL static double slopeOf(const CConverter& converter, double& x, bool isLast,
                                       int levels);
    MENSOR_LOCAL static double slopeOfChain(const CCompound& chain, double& x, bool isLast);
    MENSOR_LOCAL static CConverterPtr inverseOf(const CConverterPtr& converter, int levels);
    MENSOR_LOCAL static CConverterPtr inverseOfChain(CConverter& chain);

    MENSOR_LOCAL void join(Plan first, Plan second, bool secondIsTemporary);

    // The way to a unit, which ends with the inverse of the way from it: m_Second is what must be
    // inverted, and is inverted when somebody asks for it. convert() runs the plan and never does.
    friend class CUnit;
    MENSOR_LOCAL static CConverterPtr throughInverse(const CConverterPtr& first,
                                                     const CConverterPtr& toInvert);
    MENSOR_LOCAL const CConverterPtr& secondStep() const;
    MENSOR_LOCAL void invertSecond() const;

    CConverterPtr m_First;           // applied first; never empty
    mutable CConverterPtr m_Second;  // applied second; never empty; see m_SecondIsReady

    // The steps of both children in order, identities left out: what convert() runs instead of the
    // nest of virtual calls. Points at m_OwnStep, m_OwnSteps or the plan of a child, which the child's
    // pointer keeps alive. None for a chain longer than LongestPlan, which convert() walks.
    const Step* m_Steps;
    std::uint32_t m_StepCount;
    mutable std::atomic<bool> m_SecondIsReady;  // set last, and then m_Second never changes again
    Step m_OwnStep;
    std::unique_ptr<Step[]> m_OwnSteps;
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

// Conversion.h: conversions whose every result is right.
//
//     const auto toCelsius = CConversion::between("°F", "°C", catalogue);
//     toCelsius.convert(98.6);        // 37, the double nearest to the exact result
//     toCelsius.convertText("98.6");  // "37", from the decimal number itself
//     toCelsius.factor();             // "5/9"
//     toCelsius.offset();             // "-160/9"
//     CConversion::between("bar", "m");  // throws CError: cannot convert bar to m: pressure and length
//
// The double 98.6 is not the number 98.6 but a little less. `convert` takes the double for what it is,
// `convertText` the text.
#ifndef MENSOR_EXACT_CONVERSION_H
#define MENSOR_EXACT_CONVERSION_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "mensor_exact/Decimal.h"
#include "mensor_exact/Definitions.h"
#include "mensor_exact/Factor.h"
#include "mensor_exact/Fraction.h"
#include "mensor_exact/Meaning.h"
#include "mensor_exact/exact_export.h"

namespace mensor::exact {

struct CFastForm;  // what the fast ways know of a conversion

/// An exact number, which may be zero: Sign·Size.
struct COffset {
    int Sign = 0;  ///< -1, 0 or 1
    CFactor Size;  ///< one if the sign is 0
};

/// The way from values of one unit to values of another: factor·x + offset, exactly.
///
/// A value: a copy shares what is behind it, which nobody changes.
///
/// Class contract: caller serialises changes of one object; distinct objects any thread. Any number of
/// threads may share one that nobody changes.
class MENSOR_EXACT_API CConversion {
public:
    /// @throws CError  DIFFERENT_DIMENSIONS, TOO_LARGE; EXPONENT_RANGE: the ratio of the two factors has
    ///                 a root or a power of π beyond 99.
    CConversion(const CMeaning& from, const CMeaning& to);

    /// The same for two definitions (Definitions.h), often two names.
    /// @throws CError  as above, with the texts in the message, and what CCatalogue::evaluate throws.
    static CConversion between(std::string_view from, std::string_view to,
                               const CCatalogue& catalogue = CCatalogue::builtIn());

    /// `x` of one unit in the other, exactly, if the result is a fraction. The same as
    /// CConversion(from, to).convert(x), and quicker for a single value.
    /// @throws CError  DIFFERENT_DIMENSIONS, TOO_LARGE, EXPONENT_RANGE, as the constructor and `convert`.
    static std::optional<CFraction> convertOnce(const CFraction& x, const CMeaning& from,
                                                const CMeaning& to);

    CConversion(const CConversion&) noexcept;
    CConversion& operator=(const CConversion&) noexcept;
    ~CConversion();

    /// The conversion of differences, where only the sizes of the units count: 10 °C are 10 K.
    /// @throws CError  as the constructor.
    static CConversion ofDifferences(const CMeaning& from, const CMeaning& to);

    /// The double nearest to factor·x + offset, ties to even, for every double x.
    ///
    /// Subnormal results are rounded once, too. Half a place beyond the largest double and more is
    /// infinity. Infinities stay; NaN stays with its sign and payload, and becomes quiet if it was
    /// signalling. Without an offset zero keeps its sign; with one, a result that is exactly zero is +0.
    /// A result that is rounded to zero has the sign of the exact one.
    ///
    /// It assumes that the processor rounds to nearest and does not flush subnormal numbers to zero, as
    /// every program does that has not changed it.
    /// @throws std::bad_alloc  only where the numbers have more than about 2000 bits.
    // The call goes straight to the way that suits this conversion and the processor. It computes nothing
    // here, so a client's compiler cannot change a result.
    double convert(double x) const { return m_Convert(*m_Form, x); }

    /// Converts `count` values at once. Each result is rounded once, to the nearest number of its type, ties
    /// to even. Results that are doubles have the bits that `convert` gives.
    ///
    /// `values` and `results` are arrays of the caller that do not overlap. Arrays of one type may be the
    /// same one.
    ///
    ///     const std::int16_t counts[] = {-4000, 0, 21500};
    ///     double temperatures[3];
    ///     // Thousandths of °C, in °F: 24.8, 32, 70.7
    ///     const auto milli = CConversion::between("°C", "°F", catalogue).ofCounts(CFraction(1, 1000));
    ///     milli.convertAll(counts, temperatures, 3);
    /// @throws CError  ARRAYS: the arrays overlap otherwise, or one is null though `count` is not 0;
    ///     nothing has been written then.
    void convertAll(const double* values, double* results, std::size_t count) const;
    void convertAll(const double* values, float* results, std::size_t count) const;
    void convertAll(const float* values, double* results, std::size_t count) const;
    void convertAll(const float* values, float* results, std::size_t count) const;
    void convertAll(const std::int16_t* values, double* results, std::size_t count) const;
    void convertAll(const std::int16_t* values, float* results, std::size_t count) const;
    void convertAll(const std::int32_t* values, double* results, std::size_t count) const;
    void convertAll(const std::int32_t* values, float* results, std::size_t count) const;
    void convertAll(const std::int64_t* values, double* results, std::size_t count) const;
    void convertAll(const std::int64_t* values, float* results, std::size_t count) const;

    /// The conversion of raw counts. A count n means scale·n + offset in the source unit of this one.
    /// @throws CError  NOT_POSITIVE: the scale; TOO_LARGE; OFFSET_NOT_RATIONAL: the source unit has π or a
    ///     root, and the offset is not zero.
    CConversion ofCounts(const CFraction& scale, const CFraction& offset = 0) const;

    /// Whether `convert(x)` is exactly the result, not rounded. True of infinities and NaN.
    bool isExact(double x) const;

    /// The exact result, if it is a fraction.
    /// @throws CError  TOO_LARGE.
    std::optional<CFraction> convert(const CFraction& x) const;

    /// Converts a decimal number (as CFraction::ofText) exactly and writes the result.
    /// @throws CError  BAD_NUMBER, TOO_LARGE, OPTIONS; NUMBER_RANGE: the result does not end within 17
    ///                 digits, no number of digits was asked for, and its nearest double is zero or
    ///                 infinity.
    std::string convertText(std::string_view number, const CDecimalStyle& style = {}) const;

    /// The same for a number that is exact already.
    std::string convertText(const CFraction& number, const CDecimalStyle& style = {}) const;

    std::string factor() const;  ///< exactly: "5/9", "π/180", "1000^(1/2)"
    std::string offset() const;  ///< exactly, in the target unit: "0", "-160/9", "273.15"
    const CFactor& exactFactor() const noexcept;  ///< what factor() writes
    COffset exactOffset() const;                  ///< what offset() writes

    const CMeaning& from() const noexcept;
    const CMeaning& to() const noexcept;

    /// Whether the two units have the same marks (radian, steradian, bit). A conversion from rad/s to Hz
    /// is allowed, but may be a mistake.
    bool keepsMarks() const noexcept;

    CConversion inverse() const;

private:
    struct CPlan;
    struct CLinear;

    template <class In, class Out>
    void convertArray(const In* values, Out* results, std::size_t count) const;

    std::shared_ptr<const CPlan> m_Plan;
    const CFastForm* m_Form = nullptr;  // of the plan
    double (*m_Convert)(const CFastForm& form, double x) = nullptr;
};

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_CONVERSION_H

// Conversion.h: conversions between units. Every result is the correctly rounded one.
//
//     const auto toCelsius = CConversion::between("°F", "°C", catalogue);
//     toCelsius.convert(98.6);        // 37, the double nearest to the exact result
//     toCelsius.convertText("98.6");  // "37", from the decimal number itself
//     toCelsius.factor();             // "5/9"
//     toCelsius.offset();             // "-160/9"
//     CConversion::between("bar", "m");  // throws CError: cannot convert bar to m: pressure and length
//
// The double 98.6 is a little less than the number 98.6. `convert` takes the value of the double,
// `convertText` the number in the text.
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

struct CFastForm;  // FastForm.h, not installed

/// Which conversions are allowed. The radian, the steradian and the bit are 1, so rpm can be converted to
/// 1/min and byte to rad. That is hardly ever meant (docs/everyday.md).
enum class eKinds : std::uint8_t {
    COMPATIBLE,  ///< between units of the same dimension
    SAME         ///< only if none of these three counts as 1
};

/// The exact number Sign·Size, which may be zero.
struct COffset {
    int Sign = 0;  ///< -1, 0 or 1
    CFactor Size;  ///< one if the sign is 0
};

/// Converts values of one unit to values of another: factor·x + offset, exactly.
///
/// Copies are cheap. They share constant data.
///
/// Class contract: caller serialises changes of one object; distinct objects any thread. Any number of
/// threads may share an object that does not change.
class MENSOR_EXACT_API CConversion {
public:
    /// @throws CError  DIFFERENT_DIMENSIONS, TOO_LARGE; EXPONENT_RANGE: the ratio of the two factors has
    ///                 a root or a power of π beyond 99; DIFFERENT_MARKS with eKinds::SAME.
    CConversion(const CMeaning& from, const CMeaning& to, eKinds kinds = eKinds::COMPATIBLE);

    /// The same for two definitions (Definitions.h). A name is a definition, too.
    /// @throws CError  what the constructor and CCatalogue::evaluate throw. The message quotes the texts.
    static CConversion between(std::string_view from, std::string_view to,
                               const CCatalogue& catalogue = CCatalogue::builtIn(),
                               eKinds kinds = eKinds::COMPATIBLE);

    /// Returns CConversion(from, to).convert(x), the exact result if it is a fraction. This is faster for
    /// a single value.
    /// @throws CError  DIFFERENT_DIMENSIONS, TOO_LARGE, EXPONENT_RANGE, as the constructor and `convert`.
    static std::optional<CFraction> convertOnce(const CFraction& x, const CMeaning& from,
                                                const CMeaning& to);

    CConversion(const CConversion&) noexcept;
    CConversion& operator=(const CConversion&) noexcept;
    ~CConversion();

    /// Returns the conversion of differences. It leaves offsets out: a difference of 10 °C is one of 10
    /// K.
    /// @throws CError  what the constructor throws.
    static CConversion ofDifferences(const CMeaning& from, const CMeaning& to,
                                     eKinds kinds = eKinds::COMPATIBLE);

    /// Returns the double nearest to factor·x + offset, ties to even, for every double x.
    ///
    /// Subnormal results are rounded once, too. An exact result beyond the largest double by half a
    /// last place or more gives infinity. An infinity gives itself. NaN keeps its sign and payload, and
    /// a signalling NaN becomes quiet. Without an offset, zero keeps its sign. With an offset, a result
    /// that is exactly zero is +0. A result that is rounded to zero has the sign of the exact one.
    ///
    /// The processor must round to nearest and must not flush subnormal numbers to zero. This is so
    /// unless the program has changed it.
    /// @throws std::bad_alloc  only where the numbers have more than about 2000 bits.
    // Calls the function for this conversion and this processor directly. Nothing is computed in this
    // header, so the compiler of a client cannot change a result.
    double convert(double x) const { return m_Convert(*m_Form, x); }

    /// Converts `count` values. Each result is rounded once, to the nearest number of its type, ties to
    /// even. A double has the bits that `convert` gives.
    ///
    /// `values` and `results` are two arrays of the caller that do not overlap, or one and the same
    /// array.
    ///
    ///     const std::int16_t counts[] = {-4000, 0, 21500};
    ///     double temperatures[3];
    ///     // Thousandths of °C, in °F: 24.8, 32, 70.7
    ///     const auto milli = CConversion::between("°C", "°F", catalogue).ofCounts(CFraction(1, 1000));
    ///     milli.convertAll(counts, temperatures, 3);
    /// @throws CError  ARRAYS: the arrays overlap in part or have different types in one place, or one is
    ///     null and `count` is not 0. Then nothing is written.
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

    /// Returns the conversion of raw counts: a count n is scale·n + offset of the unit `from()`.
    /// @throws CError  NOT_POSITIVE: the scale; TOO_LARGE; OFFSET_NOT_RATIONAL: the source unit has π or a
    ///     root, and the offset is not zero.
    CConversion ofCounts(const CFraction& scale, const CFraction& offset = 0) const;

    /// Returns whether `convert(x)` is exact, so that nothing is rounded. True for infinities and
    /// NaN.
    bool isExact(double x) const;

    /// Returns the exact result if it is a fraction, else nothing.
    /// @throws CError  TOO_LARGE.
    std::optional<CFraction> convert(const CFraction& x) const;

    /// Converts a decimal number exactly and writes the result. CFraction::ofText reads the number.
    /// @throws CError  BAD_NUMBER, TOO_LARGE, OPTIONS; NUMBER_RANGE: the style names no number of digits,
    ///                 the result has more than 17 digits, and its nearest double is zero or infinity.
    std::string convertText(std::string_view number, const CDecimalStyle& style = {}) const;

    /// The same for an exact number.
    std::string convertText(const CFraction& number, const CDecimalStyle& style = {}) const;

    std::string factor() const;  ///< exactly: "5/9", "π/180", "1000^(1/2)"
    std::string offset() const;  ///< exactly, in the target unit: "0", "-160/9", "273.15"
    const CFactor& exactFactor() const noexcept;  ///< the number that factor() writes
    COffset exactOffset() const;                  ///< the number that offset() writes

    const CMeaning& from() const noexcept;
    const CMeaning& to() const noexcept;

    /// Returns whether both units have the same marks (radian, steradian, bit). A conversion from rad/s
    /// to Hz has different ones. It is allowed, but may be a mistake.
    bool keepsMarks() const noexcept;

    CConversion inverse() const;

private:
    struct MENSOR_EXACT_LOCAL CPlan;
    struct CLinear;

    template <class In, class Out>
    void convertArray(const In* values, Out* results, std::size_t count) const;

    std::shared_ptr<const CPlan> m_Plan;
    const CFastForm* m_Form = nullptr;  // part of the plan
    double (*m_Convert)(const CFastForm& form, double x) = nullptr;
};

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_CONVERSION_H

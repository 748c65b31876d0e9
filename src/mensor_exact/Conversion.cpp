#include "mensor_exact/Conversion.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <type_traits>
#include <utility>

#include "mensor_exact/Digits.h"
#include "mensor_exact/Enclosure.h"
#include "mensor_exact/Error.h"
#include "mensor_exact/FastForm.h"
#include "mensor_exact/Parts.h"
#include "mensor_exact/Rounding.h"
#include "mensor_exact/concatenate.h"
#include "mensor_exact/kinds.h"

namespace mensor::exact {

namespace {

// The precision, in bits, of the first bounds of an irrational factor. A random double needs about 110
// bits to be rounded, and the hardest double about 60 more.
constexpr int FirstBits = 240;

// Numerator/Denominator·2^Twos. The numerator has the sign.
struct CSigned {
    CWhole Numerator;
    CWhole Denominator;
    std::int64_t Twos;
};

// The sum of both, over a common denominator.
CSigned sum(const CSigned& a, const CSigned& b) {
    const std::int64_t twos = std::min(a.Twos, b.Twos);
    return {a.Numerator.shifted(a.Twos - twos) * b.Denominator +
                b.Numerator.shifted(b.Twos - twos) * a.Denominator,
            a.Denominator * b.Denominator, twos};
}

CSigned signedParts(const CFraction& fraction) {
    const CParts parts(fraction);
    const CWhole numerator = parts.numeratorWithFives();
    return {parts.Negative ? -numerator : numerator, parts.denominatorWithFives(), parts.Twos};
}

CNearest nearest(const CSigned& number, const CFormat& format) {
    return number.Numerator.isNegative()
               ? nearestQuotient(format, true, -number.Numerator, number.Denominator, number.Twos)
               : nearestQuotient(format, false, number.Numerator, number.Denominator, number.Twos);
}

double rounded(const CSigned& number) {
    return doubleOfBits(nearest(number, CFormat::ofDouble()).Bits);
}

CDigits roundedTo(const CSigned& number, int count) {
    CParts parts;
    parts.Negative = number.Numerator.isNegative();
    parts.Numerator = number.Numerator.size();
    parts.Denominator = number.Denominator;
    parts.Twos = number.Twos;
    return roundedDigits(parts, count);
}

bool isSame(const CNearest& a, const CNearest& b) { return a.Bits == b.Bits; }
bool isSame(double a, double b) { return bitsOfDouble(a) == bitsOfDouble(b); }
bool isSame(const CDigits& a, const CDigits& b) { return a == b; }

// Rounds factor·u + offset, which is irrational. Computes ever closer bounds until both round to the
// same result. The loop ends, because the borders between results are rational, so the number is not
// one of them.
template <class Round>
auto roundIrrational(const CFactor& factor, CEnclosure bounds, const CFraction& u,
                     const CFraction& offset, const Round& round) {
    const CSigned x = signedParts(u);
    const CSigned d = signedParts(offset);
    for (int bits = FirstBits;;) {
        const auto at = [&](const CWhole& bound) {
            return round(sum({bound * x.Numerator, x.Denominator, x.Twos + bounds.Twos}, d));
        };
        const auto one = at(bounds.Low);
        if (isSame(one, at(bounds.High))) {
            return one;
        }
        bits *= 2;
        bounds = enclose(factor, bits);
    }
}

// The leading bits of number·2^twos, where `number` is positive.
CLeading leadingOf(const CWhole& number, std::int64_t twos) {
    const auto extra = static_cast<std::int64_t>(number.bits()) - 192;
    const CWhole kept = number.shifted(-extra);
    return {{kept.shifted(-128).low(), kept.shifted(-64).low(), kept.low()},
            twos + extra,
            kept.shifted(extra) == number};
}

// The leading bits of numerator/denominator·2^twos, where both are positive.
CLeading leadingOf(const CWhole& numerator, const CWhole& denominator, std::int64_t twos) {
    if (numerator.bits() <= 64 && denominator.bits() <= 64) {
        return CLeading::ofQuotient(numerator.low(), denominator.low(), twos);
    }
    // The quotient has 193 or 194 bits.
    const std::int64_t up = 193 - static_cast<std::int64_t>(numerator.bits()) +
                            static_cast<std::int64_t>(denominator.bits());
    const CDivision division(up > 0 ? numerator.shifted(up) : numerator,
                             up < 0 ? denominator.shifted(-up) : denominator);
    CLeading result = leadingOf(division.Quotient, twos - up);
    result.IsWhole = result.IsWhole && division.Rest.isZero();
    return result;
}

[[noreturn, gnu::cold]] void throwDifferent(std::string_view from, std::string_view to,
                                            const CMeaning& a, const CMeaning& b) {
    throw CError(eError::DIFFERENT_DIMENSIONS, concatenate({"cannot convert ", from, " to ", to,
                                                            ": ", a.kind(), " and ", b.kind()}));
}

void requireCompatible(const CMeaning& from, const CMeaning& to) {
    if (!from.isCompatibleWith(to)) {
        throwDifferent(from.toString(), to.toString(), from, to);
    }
}

struct CMemory {
    const void* Begin;
    std::size_t Bytes;

    const void* end() const { return static_cast<const unsigned char*>(Begin) + Bytes; }
};

// Throws if an array is null or if the arrays overlap. Arrays of the same type may be one and the same.
void requireArrays(const CMemory& values, const CMemory& results, bool areOfOneType) {
    if (values.Begin == nullptr || results.Begin == nullptr) {
        throw CError(eError::ARRAYS, "an array is null");
    }
    const std::less<const void*> before;
    if (!(areOfOneType && values.Begin == results.Begin) && before(values.Begin, results.end()) &&
        before(results.Begin, values.end())) {
        throw CError(eError::ARRAYS, "the arrays overlap");
    }
}

}  // namespace

// The conversion (A·x + B)/D with whole numbers, if the factor is a fraction.
struct CConversion::CLinear {
    CLinear() = default;
    CLinear(const CFraction& factor, const CFraction& offset) {
        const CSigned f = signedParts(factor);
        const CSigned d = signedParts(offset);
        const CWhole divisor = gcd(f.Denominator, d.Denominator);
        A = f.Numerator * (d.Denominator / divisor);
        B = d.Numerator * (f.Denominator / divisor);
        D = f.Denominator * (d.Denominator / divisor);
        TwosOfA = f.Twos;
        TwosOfB = d.Twos;
    }

    /// The same conversion with 64-bit numbers, if they suffice.
    std::optional<CShortLine> shortLine() const {
        const std::int64_t twos = B.isZero() ? TwosOfA : std::min(TwosOfA, TwosOfB);
        constexpr std::int64_t Most = 64;
        constexpr std::int64_t MostTwos = 10000;
        if (TwosOfA - twos > Most || (!B.isZero() && TwosOfB - twos > Most) || D.bits() > Most ||
            std::abs(twos) > MostTwos) {
            return std::nullopt;
        }
        const CWhole a = A.shifted(TwosOfA - twos);
        const CWhole b = B.isZero() ? B : B.size().shifted(TwosOfB - twos);
        if (a.bits() > Most || b.bits() > Most) {
            return std::nullopt;
        }
        return CShortLine{a.low(), b.low(), D.low(), static_cast<int>(twos), B.isNegative()};
    }

    CWhole A = 0;
    CWhole B = 0;
    CWhole D = 1;
    std::int64_t TwosOfA = 0;
    std::int64_t TwosOfB = 0;
};

// The conversion Factor·(x + Shift) + Offset. If the factor is a fraction, Shift is zero. If it is not,
// Shift or Offset is zero.
struct CConversion::CPlan final : CSlowWay {
    CPlan(const CMeaning& from, const CMeaning& to)
        : From(from), To(to), Factor(CFactor::ratio(from.factor(), to.factor())) {
        if (to.factor().isRational()) {
            Offset = (from.offset() - to.offset()) / to.factor().radicand();
        } else if (!from.offset().isZero()) {
            Shift = from.offset() / from.factor().radicand();
        }
        if (Factor.isRational()) {
            Offset = Offset + Factor.radicand() * Shift;
            Shift = {};
            Linear = CLinear(Factor.radicand(), Offset);
        } else {
            Bounds = enclose(Factor, FirstBits);
        }
        Fast = fastForm();
    }
    CPlan(const CPlan&) = delete;
    CPlan& operator=(const CPlan&) = delete;

    CFastForm fastForm() const {
        if (Factor.isRational()) {
            const auto line = Linear.shortLine();
            const CLeading factor = leadingOf(Linear.A, Linear.D, Linear.TwosOfA);
            if (Linear.B.isZero()) {
                return CFastForm(factor, line ? &*line : nullptr, this);
            }
            const CLeading center =
                leadingOf(Linear.B.size(), Linear.A, Linear.TwosOfB - Linear.TwosOfA);
            return CFastForm(factor, center, !Linear.B.isNegative(), line ? &*line : nullptr, this);
        }
        if (!hasOffset()) {
            // If both bounds have the same leading bits, the factor has them, too.
            CLeading low = leadingOf(Bounds.Low, Bounds.Twos);
            const CLeading high = leadingOf(Bounds.High, Bounds.Twos);
            if (std::equal(low.Word, low.Word + 3, high.Word) && low.Twos == high.Twos) {
                low.IsWhole = false;
                return CFastForm(low, nullptr, this);
            }
        }
        return CFastForm(hasOffset(), this);
    }

    bool hasOffset() const { return !Shift.isZero() || !Offset.isZero(); }

    CNearest convert(const CNumber& x, const CFormat& format) const override {
        if (Factor.isRational()) {
            CWhole product = Linear.A * x.Mantissa;
            if (x.IsNegative) {
                product = -product;
            }
            const std::int64_t twos = Linear.TwosOfA + x.Twos;
            if (Linear.B.isZero()) {
                return nearest({product, Linear.D, twos}, format);
            }
            if (product.isZero()) {
                return nearest({Linear.B, Linear.D, Linear.TwosOfB}, format);
            }
            const std::int64_t least = std::min(twos, Linear.TwosOfB);
            return nearest(
                {product.shifted(twos - least) + Linear.B.shifted(Linear.TwosOfB - least), Linear.D,
                 least},
                format);
        }
        CSmallFraction small(x.Mantissa);
        if (x.Mantissa != 0) {
            small.Twos += x.Twos;
            small.Negative = x.IsNegative;
        }
        const CFraction u = CFraction(small) + Shift;
        if (u.isZero()) {
            return nearest(signedParts(Offset), format);
        }
        return roundIrrational(Factor, Bounds, u, Offset, [&format](const CSigned& number) {
            return nearest(number, format);
        });
    }

    CMeaning From;
    CMeaning To;
    CFactor Factor;
    CFraction Shift;
    CFraction Offset;
    CLinear Linear;
    CEnclosure Bounds;
    CFastForm Fast{false, this};
};

CConversion::CConversion(const CMeaning& from, const CMeaning& to, eKinds kinds) {
    requireCompatible(from, to);
    if (kinds == eKinds::SAME) {
        requireSameMarks(from, to);
    }
    m_Plan = std::make_shared<const CPlan>(from, to);
    m_Form = &m_Plan->Fast;
    m_Convert = m_Form->One;
}

std::optional<CFraction> CConversion::convertOnce(const CFraction& x, const CMeaning& from,
                                                  const CMeaning& to) {
    if (!from.factor().isRational() || !to.factor().isRational()) {
        return CConversion(from, to).convert(x);
    }
    requireCompatible(from, to);
    CFraction inBaseUnits = x * from.factor().radicand();
    if (!from.offset().isZero() || !to.offset().isZero()) {
        inBaseUnits = inBaseUnits + from.offset() - to.offset();
    }
    return to.factor().isOne() ? inBaseUnits : inBaseUnits / to.factor().radicand();
}

CConversion::CConversion(const CConversion&) noexcept = default;
CConversion& CConversion::operator=(const CConversion&) noexcept = default;
CConversion::~CConversion() = default;

CConversion CConversion::between(std::string_view from, std::string_view to,
                                 const CCatalogue& catalogue, eKinds kinds) {
    const CMeaning a = catalogue.evaluate(from);
    const CMeaning b = catalogue.evaluate(to);
    if (!a.isCompatibleWith(b)) {
        throwDifferent(from, to, a, b);
    }
    return {a, b, kinds};
}

CConversion CConversion::ofDifferences(const CMeaning& from, const CMeaning& to, eKinds kinds) {
    return {from.difference(), to.difference(), kinds};
}

template <class In, class Out>
void CConversion::convertArray(const In* values, Out* results, std::size_t count) const {
    if (count != 0) {
        requireArrays({values, count * sizeof *values}, {results, count * sizeof *results},
                      std::is_same_v<In, Out>);
        m_Plan->Fast.convertAll(values, results, count);
    }
}

void CConversion::convertAll(const double* values, double* results, std::size_t count) const {
    convertArray(values, results, count);
}
void CConversion::convertAll(const double* values, float* results, std::size_t count) const {
    convertArray(values, results, count);
}
void CConversion::convertAll(const float* values, double* results, std::size_t count) const {
    convertArray(values, results, count);
}
void CConversion::convertAll(const float* values, float* results, std::size_t count) const {
    convertArray(values, results, count);
}
void CConversion::convertAll(const std::int16_t* values, double* results, std::size_t count) const {
    convertArray(values, results, count);
}
void CConversion::convertAll(const std::int16_t* values, float* results, std::size_t count) const {
    convertArray(values, results, count);
}
void CConversion::convertAll(const std::int32_t* values, double* results, std::size_t count) const {
    convertArray(values, results, count);
}
void CConversion::convertAll(const std::int32_t* values, float* results, std::size_t count) const {
    convertArray(values, results, count);
}
void CConversion::convertAll(const std::int64_t* values, double* results, std::size_t count) const {
    convertArray(values, results, count);
}
void CConversion::convertAll(const std::int64_t* values, float* results, std::size_t count) const {
    convertArray(values, results, count);
}

CConversion CConversion::ofCounts(const CFraction& scale, const CFraction& offset) const {
    return {from().shifted(offset).scaled(CFactor(scale)), to()};
}

bool CConversion::isExact(double x) const {
    return !std::isfinite(x) || (x == 0.0 && !m_Plan->hasOffset()) ||
           m_Plan->Fast.exactly(CNumber::ofDouble(x), CFormat::ofDouble()).IsExact;
}

std::optional<CFraction> CConversion::convert(const CFraction& x) const {
    const CFraction u = x + m_Plan->Shift;
    if (u.isZero()) {
        return m_Plan->Offset;
    }
    if (!m_Plan->Factor.isRational()) {
        return std::nullopt;
    }
    return m_Plan->Factor.radicand() * u + m_Plan->Offset;
}

std::string CConversion::convertText(std::string_view number, const CDecimalStyle& style) const {
    return convertText(CFraction::ofText(number), style);
}

std::string CConversion::convertText(const CFraction& x, const CDecimalStyle& style) const {
    constexpr std::size_t MostWhole = 17;
    requireStyle(style);
    const std::optional<CFraction> exact = convert(x);
    if (exact) {
        const CParts parts(*exact);
        if (style.Digits != 0) {
            return write(roundedDigits(parts, style.Digits), style);
        }
        if (const auto digits = wholeDigits(parts, MostWhole)) {
            return write(*digits, style);
        }
    } else if (style.Digits != 0) {
        const int count = style.Digits;
        return write(
            roundIrrational(m_Plan->Factor, m_Plan->Bounds, x + m_Plan->Shift, m_Plan->Offset,
                            [count](const CSigned& y) { return roundedTo(y, count); }),
            style);
    }
    const double nearest =
        exact ? exact->toDouble()
              : roundIrrational(m_Plan->Factor, m_Plan->Bounds, x + m_Plan->Shift, m_Plan->Offset,
                                [](const CSigned& y) { return rounded(y); });
    if (nearest == 0.0 || !std::isfinite(nearest)) {
        throw CError(eError::NUMBER_RANGE,
                     "the result is beyond the range of double; set a number of digits");
    }
    return write(shortestDigits(nearest), style);
}

std::string CConversion::factor() const { return m_Plan->Factor.toString(); }

[[gnu::cold]] std::string CConversion::offset() const {
    const COffset offset = exactOffset();
    if (offset.Sign == 0) {
        return "0";
    }
    return (offset.Sign < 0 ? "-" : "") + offset.Size.toString();
}

const CFactor& CConversion::exactFactor() const noexcept { return m_Plan->Factor; }

[[gnu::cold]] COffset CConversion::exactOffset() const {
    const bool isShift = !m_Plan->Shift.isZero();
    const CFraction& offset = isShift ? m_Plan->Shift : m_Plan->Offset;
    if (offset.isZero()) {
        return {};
    }
    const int sign = offset.isNegative() ? -1 : 1;
    const CFactor size = CFactor::ofPositive(sign < 0 ? -offset : offset);
    return {sign, isShift ? CFactor::product(m_Plan->Factor, size) : size};
}

const CMeaning& CConversion::from() const noexcept { return m_Plan->From; }
const CMeaning& CConversion::to() const noexcept { return m_Plan->To; }

bool CConversion::keepsMarks() const noexcept { return from().hasMarksOf(to()); }

CConversion CConversion::inverse() const { return {to(), from()}; }

}  // namespace mensor::exact

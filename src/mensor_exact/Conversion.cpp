#include "mensor_exact/Conversion.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "mensor_exact/Digits.h"
#include "mensor_exact/Enclosure.h"
#include "mensor_exact/Error.h"
#include "mensor_exact/Parts.h"
#include "mensor_exact/Rounding.h"

namespace mensor {
namespace exact {

namespace {

constexpr std::uint64_t ExponentBits = std::uint64_t{0x7FF} << 52;
constexpr std::uint64_t QuietBit = std::uint64_t{1} << 51;

// The precision that the bounds of an irrational factor begin with. A random double and 53 bits of its
// result need about 110; the worst of all doubles about 60 more.
constexpr int FirstBits = 256;

bool isFinite(std::uint64_t bits) { return (bits & ExponentBits) != ExponentBits; }
bool isNaN(std::uint64_t bits) { return (bits << 1) > (ExponentBits << 1); }

Whole shifted(const Whole& number, std::int64_t twos) {
    return number << static_cast<unsigned>(twos);
}

// numerator/denominator·2^twos, the numerator with its sign.
struct CSigned {
    Whole Numerator;
    Whole Denominator;
    std::int64_t Twos;
};

// Both fractions over one denominator, added.
CSigned sum(const CSigned& a, const CSigned& b) {
    const std::int64_t twos = std::min(a.Twos, b.Twos);
    return {shifted(a.Numerator, a.Twos - twos) * b.Denominator +
                shifted(b.Numerator, b.Twos - twos) * a.Denominator,
            a.Denominator * b.Denominator, twos};
}

CSigned signedParts(const CFraction& fraction) {
    const CParts parts(fraction);
    const Whole numerator = parts.numeratorWithFives();
    return {parts.Negative ? Whole(-numerator) : numerator, parts.denominatorWithFives(),
            parts.Twos};
}

CRounded rounded(const CSigned& number) {
    return number.Numerator < 0
               ? roundQuotient(true, -number.Numerator, number.Denominator, number.Twos)
               : roundQuotient(false, number.Numerator, number.Denominator, number.Twos);
}

CDigits roundedTo(const CSigned& number, int count) {
    CParts parts;
    parts.Negative = number.Numerator < 0;
    parts.Numerator = abs(number.Numerator);
    parts.Denominator = number.Denominator;
    parts.Twos = number.Twos;
    return roundedDigits(parts, count);
}

bool isSame(const CRounded& a, const CRounded& b) {
    return bitsOfDouble(a.Value) == bitsOfDouble(b.Value);
}
bool isSame(const CDigits& a, const CDigits& b) { return a == b; }

// Rounds factor·u + offset, which is irrational, by bounds that come nearer until both are rounded to the
// same. That ends: only at a border between two roundings would it not, and the borders are fractions.
template <class Round>
auto roundIrrational(const CFactor& factor, CEnclosure bounds, const CFraction& u,
                     const CFraction& offset, const Round& round) {
    const CSigned x = signedParts(u);
    const CSigned d = signedParts(offset);
    for (int bits = FirstBits;;) {
        const auto at = [&](const Whole& bound) {
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

[[noreturn]] void throwDifferent(const std::string& from, const std::string& to, const CMeaning& a,
                                 const CMeaning& b) {
    throw CError(eError::DIFFERENT_DIMENSIONS,
                 "cannot convert " + from + " to " + to + ": " + a.kind() + " and " + b.kind());
}

}  // namespace

// (A·x + B)/D with whole numbers, where the factor is a fraction.
struct CConversion::CLinear {
    CLinear() = default;
    CLinear(const CFraction& factor, const CFraction& offset) {
        const CSigned f = signedParts(factor);
        const CSigned d = signedParts(offset);
        const Whole divisor = gcd(f.Denominator, d.Denominator);
        A = f.Numerator * (d.Denominator / divisor);
        B = d.Numerator * (f.Denominator / divisor);
        D = f.Denominator * (d.Denominator / divisor);
        TwosOfA = f.Twos;
        TwosOfB = d.Twos;
    }

    Whole A = 0;
    Whole B = 0;
    Whole D = 1;
    std::int64_t TwosOfA = 0;
    std::int64_t TwosOfB = 0;
};

// factor·(x + Shift) + Offset. Where the factor is a fraction, the shift is zero; else one of the two is.
struct CConversion::CPlan {
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
    }

    bool hasOffset() const { return !Shift.isZero() || !Offset.isZero(); }

    // x is finite, and not zero where there is no offset.
    CRounded convert(double x) const {
        const CDoubleParts parts(x);
        if (Factor.isRational()) {
            Whole product = Linear.A * parts.Mantissa;
            if (parts.Negative) {
                product = -product;
            }
            const std::int64_t twos = Linear.TwosOfA + parts.Twos;
            if (Linear.B.is_zero()) {
                return rounded({product, Linear.D, twos});
            }
            if (product.is_zero()) {
                return rounded({Linear.B, Linear.D, Linear.TwosOfB});
            }
            const std::int64_t least = std::min(twos, Linear.TwosOfB);
            return rounded(
                {shifted(product, twos - least) + shifted(Linear.B, Linear.TwosOfB - least),
                 Linear.D, least});
        }
        const CFraction u = CFraction::ofDouble(x) + Shift;
        if (u.isZero()) {
            return rounded(signedParts(Offset));
        }
        return roundIrrational(Factor, Bounds, u, Offset,
                               [](const CSigned& number) { return rounded(number); });
    }

    CMeaning From;
    CMeaning To;
    CFactor Factor;
    CFraction Shift;
    CFraction Offset;
    CLinear Linear;
    CEnclosure Bounds;
};

CConversion::CConversion(const CMeaning& from, const CMeaning& to) {
    if (!from.isCompatibleWith(to)) {
        throwDifferent(from.toString(), to.toString(), from, to);
    }
    m_Plan = std::make_shared<const CPlan>(from, to);
}

CConversion::CConversion(const CConversion&) noexcept = default;
CConversion& CConversion::operator=(const CConversion&) noexcept = default;
CConversion::~CConversion() = default;

CConversion CConversion::between(std::string_view from, std::string_view to,
                                 const CCatalogue& catalogue) {
    const CMeaning a = catalogue.evaluate(from);
    const CMeaning b = catalogue.evaluate(to);
    if (!a.isCompatibleWith(b)) {
        throwDifferent(std::string(from), std::string(to), a, b);
    }
    return {a, b};
}

double CConversion::convert(double x) const {
    const std::uint64_t bits = bitsOfDouble(x);
    if (!isFinite(bits)) {
        return isNaN(bits) ? doubleOfBits(bits | QuietBit) : x;
    }
    if (bits << 1 == 0 && !m_Plan->hasOffset()) {
        return x;  // zero keeps its sign
    }
    return m_Plan->convert(x).Value;
}

bool CConversion::isExact(double x) const {
    const std::uint64_t bits = bitsOfDouble(x);
    return !isFinite(bits) || (bits << 1 == 0 && !m_Plan->hasOffset()) ||
           m_Plan->convert(x).IsExact;
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
    constexpr std::size_t MostWhole = 17;
    requireStyle(style);
    const CFraction x = CFraction::ofText(number);
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
                                [](const CSigned& y) { return rounded(y); })
                    .Value;
    if (nearest == 0.0 || !std::isfinite(nearest)) {
        throw CError(eError::NUMBER_RANGE,
                     "the result is beyond the doubles; ask for a number of digits");
    }
    return write(shortestDigits(nearest), style);
}

std::string CConversion::factor() const { return m_Plan->Factor.toString(); }

std::string CConversion::offset() const {
    const COffset offset = exactOffset();
    if (offset.Sign == 0) {
        return "0";
    }
    return (offset.Sign < 0 ? "-" : "") + offset.Size.toString();
}

const CFactor& CConversion::exactFactor() const noexcept { return m_Plan->Factor; }

COffset CConversion::exactOffset() const {
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

}  // namespace exact
}  // namespace mensor

#include "mensor_exact/Fraction.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <utility>

#include "mensor_exact/Digits.h"
#include "mensor_exact/Error.h"
#include "mensor_exact/Parts.h"
#include "mensor_exact/Rounding.h"
#include "mensor_exact/ShortLine.h"

namespace mensor::exact {

namespace {

// The limit keeps a hostile text or a large product from filling the memory.
constexpr std::size_t MostBits = 65536;
constexpr std::int64_t MostPower = 65536;

[[noreturn]] void throwTooLarge() {
    throw CError(eError::TOO_LARGE, "a number of more than 65536 bits");
}

[[noreturn]] void throwDivisionByZero() {
    throw CError(eError::DIVISION_BY_ZERO, "a division by zero");
}

std::size_t bitsOf(std::uint64_t number) {
    return number == 0 ? 0 : 64 - static_cast<std::size_t>(__builtin_clzll(number));
}

// The bits of 5^fives, from log2(5) = 2.3219...
std::size_t bitsOfFives(std::int64_t fives) {
    return static_cast<std::size_t>(fives) * 2322 / 1000 + 1;
}

// An upper bound of the bits that the parts of a fraction need. It is too large by at most three.
std::size_t boundOfBits(std::size_t numerator, std::size_t denominator, std::int64_t twos,
                        std::int64_t fives) {
    return numerator + denominator + static_cast<std::size_t>(twos < 0 ? -twos : twos) +
           (fives == 0 ? 0 : bitsOfFives(fives < 0 ? -fives : fives));
}

// Multiplies by 5^times. Does nothing if `times` is negative. Returns false if 64 bits are too few.
bool multiplyByFives(std::uint64_t& number, std::int32_t times) {
    for (; times > 0; --times) {
        if (__builtin_mul_overflow(number, std::uint64_t{5}, &number)) {
            return false;
        }
    }
    return true;
}

// Divides `number` by `prime` while the result is an integer. Returns the number of divisions.
std::int64_t strip(CWhole& number, const CWhole& prime) {
    std::int64_t count = 0;
    // Divides by ever higher powers first, then by ever lower ones.
    CWhole power = prime;
    std::int64_t step = 1;
    while (true) {
        const CDivision division(number, power);
        if (division.Rest.isZero()) {
            number = division.Quotient;
            count += step;
            power *= power;
            step *= 2;
        } else if (step == 1) {
            return count;
        } else {
            power = prime;
            step = 1;
        }
    }
}

std::int64_t stripTwos(CWhole& number) {
    const auto twos = static_cast<std::int64_t>(number.twos());
    number = number.shifted(-twos);
    return twos;
}

bool fits(const CWhole& number) { return number.bits() <= 64; }

std::int32_t narrow(std::int64_t power) {
    if (power > MostPower || power < -MostPower) {
        throwTooLarge();
    }
    return static_cast<std::int32_t>(power);
}

}  // namespace

CParts::CParts(const CFraction& fraction)
    : Twos(fraction.m_Small.Twos),
      Fives(fraction.m_Small.Fives),
      Negative(fraction.m_Small.Negative) {
    if (!fraction.isSmall()) {
        Numerator = fraction.m_Big.get()->Numerator;
        Denominator = fraction.m_Big.get()->Denominator;
    } else {
        Numerator = fraction.m_Small.Numerator;
        Denominator = fraction.m_Small.Denominator;
    }
}

void CParts::normalize() {
    if (Numerator.isZero()) {
        *this = CParts();
        return;
    }
    Twos += stripTwos(Numerator) - stripTwos(Denominator);
    Fives += strip(Numerator, 5) - strip(Denominator, 5);
    const CWhole divisor = gcd(Numerator, Denominator);
    if (!divisor.isOne()) {
        Numerator /= divisor;
        Denominator /= divisor;
    }
}

CFraction CParts::fraction() const {
    CFraction result;
    CSmallFraction& small = result.m_Small;
    small.Twos = narrow(Twos);
    small.Fives = narrow(Fives);
    small.Negative = Negative;
    if (fits(Numerator) && fits(Denominator)) {
        small.Numerator = Numerator.low();
        small.Denominator = Denominator.low();
    } else {
        result.m_Big = CBigPart(new CSharedQuotient({Numerator, Denominator}));
    }
    if (result.needsMoreThan(MostBits)) {
        throwTooLarge();
    }
    return result;
}

CWhole CParts::numeratorWithFives() const {
    return Fives > 0 ? Numerator * CWhole(5).power(Fives) : Numerator;
}

CWhole CParts::denominatorWithFives() const {
    return Fives < 0 ? Denominator * CWhole(5).power(-Fives) : Denominator;
}

CQuotient CParts::wholes() const {
    CQuotient result{numeratorWithFives(), denominatorWithFives()};
    CWhole& shifted = Twos < 0 ? result.Denominator : result.Numerator;
    shifted = shifted.shifted(Twos < 0 ? -Twos : Twos);
    return result;
}

std::size_t CParts::bits() const {
    const std::size_t bound = boundOfBits(Numerator.bits(), Denominator.bits(), Twos, Fives);
    if (bound > MostBits + 64) {
        return bound;  // larger than any limit
    }
    return numeratorWithFives().bits() + denominatorWithFives().bits() +
           static_cast<std::size_t>(Twos < 0 ? -Twos : Twos);
}

namespace {

// The operations on numbers of any size. They are cold, so the fast ones stay small.

[[gnu::cold]] CFraction sumOf(const CParts& x, const CParts& y) {
    CParts sum;
    sum.Twos = std::min(x.Twos, y.Twos);
    sum.Fives = std::min(x.Fives, y.Fives);
    const CWhole left = (x.Numerator * CWhole(5).power(x.Fives - sum.Fives) * y.Denominator)
                            .shifted(x.Twos - sum.Twos);
    const CWhole right = (y.Numerator * CWhole(5).power(y.Fives - sum.Fives) * x.Denominator)
                             .shifted(y.Twos - sum.Twos);
    sum.Numerator = x.Negative == y.Negative ? left + right : left - right;
    sum.Negative = x.Negative;
    if (sum.Numerator.isNegative()) {
        sum.Numerator = -sum.Numerator;
        sum.Negative = y.Negative;
    }
    sum.Denominator = x.Denominator * y.Denominator;
    sum.normalize();
    return sum.fraction();
}

[[gnu::cold]] CFraction productOf(const CParts& x, const CParts& y) {
    const CWhole g = gcd(x.Numerator, y.Denominator);
    const CWhole h = gcd(y.Numerator, x.Denominator);
    CParts product;
    product.Numerator = (x.Numerator / g) * (y.Numerator / h);
    product.Denominator = (x.Denominator / h) * (y.Denominator / g);
    product.Twos = x.Twos + y.Twos;
    product.Fives = x.Fives + y.Fives;
    product.Negative = x.Negative != y.Negative;
    return product.Numerator.isZero() ? CFraction() : product.fraction();
}

[[gnu::cold]] CFraction inverseOf(CParts parts) {
    std::swap(parts.Numerator, parts.Denominator);
    parts.Twos = -parts.Twos;
    parts.Fives = -parts.Fives;
    return parts.fraction();
}

[[gnu::cold]] CFraction powerOf(CParts parts, int exponent) {
    parts.Numerator = parts.Numerator.power(exponent);
    parts.Denominator = parts.Denominator.power(exponent);
    parts.Twos *= exponent;
    parts.Fives *= exponent;
    parts.Negative = parts.Negative && exponent % 2 != 0;
    return parts.fraction();
}

[[gnu::cold]] double roundParts(const CParts& parts) {
    return roundQuotient(parts.Negative, parts.numeratorWithFives(), parts.denominatorWithFives(),
                         parts.Twos)
        .Value;
}

}  // namespace

[[gnu::cold]] void CBigPart::share(const CSharedQuotient* quotient) noexcept {
    quotient->Owners.fetch_add(1, std::memory_order_relaxed);
}

[[gnu::cold]] void CBigPart::release(const CSharedQuotient* quotient) noexcept {
    if (quotient->Owners.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        delete quotient;
    }
}

CFraction::CFraction(std::int64_t whole)
    : m_Small(whole < 0 ? -static_cast<std::uint64_t>(whole) : static_cast<std::uint64_t>(whole)) {
    m_Small.Negative = whole < 0;
}

CFraction::CFraction(std::int64_t numerator, std::int64_t denominator)
    : CFraction(CFraction(numerator) / CFraction(denominator)) {}

CFraction CFraction::ofDouble(double value) {
    if (!std::isfinite(value)) {
        throw CError(eError::BAD_NUMBER, "infinity and NaN are not fractions");
    }
    const CNumber number = CNumber::ofDouble(value);
    CSmallFraction small(number.Mantissa);
    if (number.Mantissa != 0) {
        small.Twos += number.Twos;
        small.Negative = number.IsNegative;
    }
    return CFraction(small);
}

CFraction CFraction::ofText(std::string_view text) { return readDecimal(text).fraction(); }

std::size_t CFraction::bits() const {
    if (isZero()) {
        return 1;
    }
    if (isSmall() && m_Small.Fives == 0) {
        return boundOfBits(bitsOf(m_Small.Numerator), bitsOf(m_Small.Denominator), m_Small.Twos, 0);
    }
    return CParts(*this).bits();
}

bool CFraction::needsMoreThan(std::size_t most) const {
    const std::size_t numerator =
        isSmall() ? bitsOf(m_Small.Numerator) : m_Big.get()->Numerator.bits();
    const std::size_t denominator =
        isSmall() ? bitsOf(m_Small.Denominator) : m_Big.get()->Denominator.bits();
    return boundOfBits(numerator, denominator, m_Small.Twos, m_Small.Fives) > most && bits() > most;
}

double CFraction::toDouble() const {
    // The usual case: numerator and denominator have 64 bits each.
    std::uint64_t numerator = m_Small.Numerator;
    std::uint64_t denominator = m_Small.Denominator;
    if (isSmall() && multiplyByFives(numerator, m_Small.Fives) &&
        multiplyByFives(denominator, -m_Small.Fives)) {
        const CShortLine quotient{numerator, 0, denominator, m_Small.Twos, false};
        if (const auto nearest = quotient.convert({m_Small.Negative, 1, 0}, CFormat::ofDouble())) {
            return doubleOfBits(nearest->Bits);
        }
    }
    return roundParts(CParts(*this));
}

[[gnu::cold]] std::string CFraction::toString() const {
    constexpr std::size_t MostDigits = 17;
    const CParts parts(*this);
    if (const auto digits = wholeDigits(parts, MostDigits)) {
        return write(*digits, {});
    }
    const CQuotient wholes = parts.wholes();
    std::string text = (parts.Negative ? "-" : "") + wholes.Numerator.toString();
    return wholes.Denominator.isOne() ? text : text + "/" + wholes.Denominator.toString();
}

CFraction CFraction::operator-() const {
    CFraction result = *this;
    result.m_Small.Negative = !isZero() && !isNegative();
    return result;
}

CFraction CFraction::power(int exponent) const {
    if (exponent < 0) {
        return CFraction(1) / power(-exponent);
    }
    CSmallFraction small = m_Small;
    if (isSmall() && small.raise(exponent)) {
        CFraction result(small);
        if (result.needsMoreThan(MostBits)) {
            throwTooLarge();
        }
        return result;
    }
    if (exponent == 0) {
        return 1;
    }
    const auto times = static_cast<std::size_t>(exponent);
    if ((bits() - 1) * times > MostBits + 2 * times) {
        throwTooLarge();  // before computing it takes long
    }
    return powerOf(CParts(*this), exponent);
}

CFraction operator+(const CFraction& a, const CFraction& b) {
    CSmallFraction small = a.m_Small;
    if (a.isSmall() && b.isSmall() && small.add(b.m_Small)) {
        return CFraction(small);  // cannot be too large
    }
    return sumOf(CParts(a), CParts(b));
}

CFraction operator-(const CFraction& a, const CFraction& b) { return a + -b; }

CFraction operator*(const CFraction& a, const CFraction& b) {
    CSmallFraction small = a.m_Small;
    if (a.isSmall() && b.isSmall() && small.multiply(b.m_Small)) {
        const CFraction result(small);
        if (result.needsMoreThan(MostBits)) {
            throwTooLarge();
        }
        return result;
    }
    return productOf(CParts(a), CParts(b));
}

CFraction operator/(const CFraction& a, const CFraction& b) {
    if (b.isZero()) {
        throwDivisionByZero();
    }
    if (b.isSmall()) {
        return a * CFraction(b.m_Small.inverse());
    }
    return a * inverseOf(CParts(b));
}

bool operator==(const CFraction& a, const CFraction& b) noexcept {
    if (!(a.m_Small == b.m_Small) || a.isSmall() != b.isSmall()) {
        return false;
    }
    const CSharedQuotient* const x = a.m_Big.get();
    const CSharedQuotient* const y = b.m_Big.get();
    return x == y || (x->Numerator == y->Numerator && x->Denominator == y->Denominator);
}

}  // namespace mensor::exact

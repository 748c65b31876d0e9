#include "mensor_exact/Factor.h"

#include <numeric>
#include <string_view>
#include <utility>

#include "mensor_exact/Enclosure.h"
#include "mensor_exact/Error.h"
#include "mensor_exact/Parts.h"
#include "mensor_exact/Rounding.h"
#include "mensor_exact/concatenate.h"

namespace mensor::exact {

namespace {

constexpr int LargestRoot = CExponent::Largest;

[[noreturn]] void throwTooLarge() {
    throw CError(eError::TOO_LARGE, "a factor of more than 16384 bits");
}

// Replaces `number` by its root of this order if that is whole. Returns false if it is not.
bool takeRoot(CWhole& number, int order) {
    if (number.isOne()) {
        return true;
    }
    const CWhole root = rootOf(number, order);
    if (root.power(order) != number) {
        return false;
    }
    number = root;
    return true;
}

std::string powerText(std::string_view base, CExponent exponent) {
    if (exponent == CExponent(1)) {
        return std::string(base);
    }
    const bool isWhole = exponent.denominator() == 1;
    return concatenate({base, isWhole ? "^" : "^(", exponent.toString(), isWhole ? "" : ")"});
}

bool isWhole(std::string_view text) {
    return text.find_first_not_of("0123456789") == std::string_view::npos;
}

}  // namespace

CFactor::CFactor(CFraction fraction) : m_Radicand(std::move(fraction)) {
    if (m_Radicand.isZero() || m_Radicand.isNegative()) {
        throw CError(eError::NOT_POSITIVE,
                     "a factor must be positive, not " + m_Radicand.toString());
    }
    requireSize();
}

CFactor CFactor::pi() {
    CFactor result;
    result.m_Pi = 1;
    return result;
}

CFactor CFactor::ofPositive(CFraction fraction, CExponent pi) noexcept {
    CFactor result;
    result.m_Radicand = std::move(fraction);
    result.m_Pi = pi;
    return result;
}

void CFactor::requireSize() const {
    if (m_Radicand.needsMoreThan(MostBits)) {
        throwTooLarge();
    }
}

// Makes the root as small as possible: divides it by `order` while the radicand has a root of that order.
void CFactor::reduceRoot() {
    for (int order = 2; order <= m_Root; ++order) {
        while (m_Root % order == 0) {
            CParts parts(m_Radicand);
            if (parts.Twos % order != 0 || parts.Fives % order != 0 ||
                !takeRoot(parts.Numerator, order) || !takeRoot(parts.Denominator, order)) {
                break;
            }
            parts.Twos /= order;
            parts.Fives /= order;
            m_Radicand = parts.fraction();
            m_Root /= order;
        }
    }
}

CFactor CFactor::product(const CFactor& a, const CFactor& b) {
    CFactor result;
    result.m_Pi = a.m_Pi + b.m_Pi;
    if (a.m_Root == 1 && b.m_Root == 1) {  // the usual case, fast
        result.m_Radicand = a.m_Radicand * b.m_Radicand;
        return result;
    }
    result.m_Root = std::lcm(a.m_Root, b.m_Root);
    if (result.m_Root > LargestRoot) {
        throw CError(eError::EXPONENT_RANGE, "a factor with a root beyond 99");
    }
    result.m_Radicand =
        a.m_Radicand.power(result.m_Root / a.m_Root) * b.m_Radicand.power(result.m_Root / b.m_Root);
    result.reduceRoot();
    return result;
}

CFactor CFactor::ratio(const CFactor& a, const CFactor& b) {
    CFactor inverse;
    inverse.m_Radicand = CFraction(1) / b.m_Radicand;
    inverse.m_Root = b.m_Root;
    inverse.m_Pi = -b.m_Pi;
    return product(a, inverse);
}

CFactor CFactor::power(CExponent exponent) const {
    CFactor result;
    if (exponent.isZero()) {
        return result;
    }
    result.m_Pi = m_Pi * exponent;
    if (m_Radicand.isOne()) {
        return result;
    }
    const int divisor = std::gcd(m_Root, exponent.numerator());
    result.m_Root = m_Root / divisor * exponent.denominator();
    if (result.m_Root > LargestRoot) {
        throw CError(eError::EXPONENT_RANGE, "a factor with a root beyond 99");
    }
    const int times = exponent.numerator() / divisor;
    const auto size = static_cast<std::size_t>(times < 0 ? -times : times);
    if (m_Radicand.bits() * size > MostBits + 2 * size) {
        throwTooLarge();  // before computing it takes long
    }
    result.m_Radicand = m_Radicand.power(times);
    result.reduceRoot();
    result.requireSize();
    return result;
}

CFactor operator*(const CFactor& a, const CFactor& b) {
    CFactor result = CFactor::product(a, b);
    result.requireSize();
    return result;
}

CFactor operator/(const CFactor& a, const CFactor& b) {
    CFactor result = CFactor::ratio(a, b);
    result.requireSize();
    return result;
}

double CFactor::toDouble() const {
    if (isRational()) {
        return m_Radicand.toDouble();
    }
    for (int bits = 128;; bits *= 2) {  // ends, since an irrational number is never a tie
        const CEnclosure bounds = enclose(*this, bits);
        const double low = roundQuotient(false, bounds.Low, 1, bounds.Twos).Value;
        const double high = roundQuotient(false, bounds.High, 1, bounds.Twos).Value;
        if (low == high) {
            return low;
        }
    }
}

std::string CFactor::toString() const {
    const std::string number = m_Radicand.toString();
    if (isRational()) {
        return number;
    }
    if (m_Root != 1) {
        const bool isBare = isWhole(number);
        const std::string base = concatenate({isBare ? "" : "(", number, isBare ? "" : ")"});
        const std::string text = powerText(base, CExponent(1, m_Root));
        return m_Pi.isZero() ? text : concatenate({text, "·", powerText("π", m_Pi)});
    }
    const bool divides = m_Pi.numerator() < 0;
    const std::string pi = powerText("π", divides ? -m_Pi : m_Pi);
    const std::string_view all = number;
    const std::size_t slash = all.find('/');
    const std::string_view above = all.substr(0, slash);
    const std::string_view below = slash == std::string_view::npos ? "" : all.substr(slash + 1);
    if (!divides) {
        const bool isOne = above == "1";
        return concatenate({isOne ? "" : above, isOne || isWhole(above) ? "" : "·", pi,
                            below.empty() ? "" : "/", below});
    }
    return below.empty() ? concatenate({above, "/", pi})
                         : concatenate({above, "/(", below, "·", pi, ")"});
}

}  // namespace mensor::exact

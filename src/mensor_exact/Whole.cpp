#include "mensor_exact/Whole.h"

#include <cstdint>
#include <iomanip>
#include <istream>
#include <memory>
#include <new>
#include <numeric>
#include <ostream>
#include <utility>

// Boost includes <iostream>, which runs a constructor when the library is loaded. Only the classes of
// streams are needed, so the standard library is told that <iostream> was included.
#if defined(__GLIBCXX__) && !defined(_GLIBCXX_IOSTREAM)
#define _GLIBCXX_IOSTREAM 1  // NOLINT(bugprone-reserved-identifier)
#endif
// Boost throws plain exceptions of the standard library, not ones that can be cloned.
#define BOOST_EXCEPTION_DISABLE
// The faster product of very long numbers would take 3 kB. A stored number has at most 65536 bits. For such
// numbers the usual product is fast enough.
#define BOOST_MP_KARATSUBA_CUTOFF SIZE_MAX
#include <boost/multiprecision/cpp_int.hpp>

namespace mensor::exact {

namespace {

namespace mp = boost::multiprecision;

// The bits that need no allocated memory: enough for the sum of 2^-1074 and an offset, times a factor.
constexpr unsigned BitsInside = 2304;

using Number = mp::number<mp::cpp_int_backend<BitsInside, 0, mp::signed_magnitude, mp::unchecked,
                                              std::allocator<mp::limb_type>>,
                          mp::et_off>;

constexpr std::size_t LimbBits = Number::backend_type::limb_bits;

constexpr std::size_t BlockDigits = 18;
constexpr std::uint64_t Block = 1000000000000000000;

}  // namespace

// The number in a CWhole.
struct CNumberOf {
    static void* place(CWhole& whole) {
        static_assert(sizeof(Number) <= CWhole::Bytes && alignof(Number) <= alignof(CWhole));
        return whole.m_Storage;
    }
    static Number& get(CWhole& whole) { return *std::launder(static_cast<Number*>(place(whole))); }
    static const Number& get(const CWhole& whole) {
        return *std::launder(static_cast<const Number*>(static_cast<const void*>(whole.m_Storage)));
    }
};

namespace {

Number& number(CWhole& whole) { return CNumberOf::get(whole); }
const Number& number(const CWhole& whole) { return CNumberOf::get(whole); }

}  // namespace

CWhole::CWhole(int value) { new (CNumberOf::place(*this)) Number(value); }
CWhole::CWhole(std::int64_t value) { new (CNumberOf::place(*this)) Number(value); }
CWhole::CWhole(std::uint64_t value) { new (CNumberOf::place(*this)) Number(value); }
CWhole::CWhole(const CWhole& other) { new (CNumberOf::place(*this)) Number(number(other)); }
CWhole::CWhole(CWhole&& other) noexcept {
    new (CNumberOf::place(*this)) Number(std::move(number(other)));
}
CWhole& CWhole::operator=(const CWhole& other) {
    if (this != &other) {
        number(*this) = number(other);
    }
    return *this;
}
CWhole& CWhole::operator=(CWhole&& other) noexcept {
    number(*this) = std::move(number(other));
    return *this;
}
CWhole::~CWhole() { number(*this).~Number(); }

// Boost has templates for each combination of operands and for many special cases. Those used here are few, so
// that the library is small: one sum, one product, one division.

bool CWhole::isZero() const { return number(*this).is_zero(); }
bool CWhole::isNegative() const { return number(*this).sign() < 0; }
bool CWhole::isOdd() const { return (low() & 1) != 0; }
bool CWhole::isOne() const { return !isNegative() && bits() == 1; }

std::size_t CWhole::bits() const {
    const auto& backend = number(*this).backend();
    const std::size_t above = backend.size() - 1;
    const mp::limb_type top = backend.limbs()[above];
    return top == 0 ? 0 : LimbBits * above + 64 - static_cast<std::size_t>(__builtin_clzll(top));
}

std::size_t CWhole::twos() const {
    const mp::limb_type* const limbs = number(*this).backend().limbs();
    std::size_t zeros = 0;
    while (limbs[zeros] == 0) {
        ++zeros;
    }
    return LimbBits * zeros + static_cast<std::size_t>(__builtin_ctzll(limbs[zeros]));
}

std::uint64_t CWhole::low() const {
    const auto& backend = number(*this).backend();
    std::uint64_t low = backend.limbs()[0];
    if constexpr (sizeof(mp::limb_type) < sizeof low) {
        low |= backend.size() > 1 ? std::uint64_t{backend.limbs()[1]} << 32 : 0;
    }
    return low;
}

CWhole CWhole::operator-() const {
    CWhole result = *this;
    number(result).backend().negate();
    return result;
}

CWhole CWhole::size() const { return isNegative() ? -*this : *this; }

CWhole& CWhole::operator+=(const CWhole& other) {
    number(*this) += number(other);
    return *this;
}

CWhole& CWhole::operator-=(const CWhole& other) { return *this += -other; }
CWhole& CWhole::operator*=(const CWhole& other) { return *this = *this * other; }
CWhole& CWhole::operator/=(const CWhole& other) { return *this = *this / other; }

CWhole operator+(const CWhole& a, const CWhole& b) {
    CWhole result = a;
    result += b;
    return result;
}

CWhole operator-(const CWhole& a, const CWhole& b) { return a + -b; }

CWhole operator*(const CWhole& a, const CWhole& b) {
    CWhole result;
    mp::multiply(number(result), number(a), number(b));
    return result;
}

CWhole operator/(const CWhole& a, const CWhole& b) { return CDivision(a, b).Quotient; }

CWhole CWhole::shifted(std::int64_t twos) const {
    constexpr auto Bits = static_cast<std::int64_t>(LimbBits);
    const std::int64_t left = ((twos % Bits) + Bits) % Bits;
    const std::int64_t limbs = (twos - left) / Bits;  // negative if limbs are dropped
    const auto& from = number(*this).backend();
    const auto size = static_cast<std::int64_t>(from.size());
    const auto limb = [&from, size](std::int64_t i) {
        return i < 0 || i >= size ? 0 : from.limbs()[i];
    };
    CWhole result;
    if (isZero() || size + limbs < 0) {
        return result;
    }
    auto& to = number(result).backend();
    const auto count = static_cast<unsigned>(size + limbs + 1);
    to.resize(count, count);
    for (std::int64_t i = 0; i < size + limbs + 1; ++i) {
        const mp::limb_type below = left == 0 ? 0 : limb(i - limbs - 1) >> (Bits - left);
        to.limbs()[i] = (limb(i - limbs) << left) | below;
    }
    to.normalize();
    to.sign(from.sign());
    return result;
}

CWhole CWhole::power(std::int64_t exponent) const {
    CWhole result = 1;
    for (CWhole square = *this; exponent > 0; exponent /= 2) {
        if (exponent % 2 != 0) {
            result *= square;
        }
        if (exponent > 1) {
            square *= square;
        }
    }
    return result;
}

// Boost reads and writes digits with the help of the locale. The following functions do not.

CWhole CWhole::ofDigits(std::string_view digits) {
    CWhole result;
    while (!digits.empty()) {
        const std::size_t count =
            digits.size() % BlockDigits != 0 ? digits.size() % BlockDigits : BlockDigits;
        std::uint64_t block = 0;
        for (const char digit : digits.substr(0, count)) {
            block = 10 * block + static_cast<std::uint64_t>(digit - '0');
        }
        result = result * Block + block;
        digits.remove_prefix(count);
    }
    return result;
}

std::string CWhole::toString() const {
    std::string backwards;
    CWhole rest = size();
    do {
        CDivision division(rest, Block);
        rest = std::move(division.Quotient);
        std::uint64_t digits = division.Rest.low();
        for (std::size_t i = 0; i < BlockDigits && (digits != 0 || !rest.isZero()); ++i) {
            backwards += static_cast<char>('0' + digits % 10);
            digits /= 10;
        }
    } while (!rest.isZero());
    if (backwards.empty()) {
        return "0";
    }
    if (isNegative()) {
        backwards += '-';
    }
    return {backwards.rbegin(), backwards.rend()};
}

int CWhole::compare(const CWhole& other) const { return number(*this).compare(number(other)); }

// The algorithm of Euclid.
CWhole gcd(const CWhole& a, const CWhole& b) {
    CWhole result = a;
    CWhole next = b;
    while (result.bits() > 64 || next.bits() > 64) {
        if (next.isZero()) {
            return result;
        }
        CDivision division(result, next);
        result = std::move(next);
        next = std::move(division.Rest);
    }
    return std::gcd(result.low(), next.low());
}

CDivision::CDivision(const CWhole& dividend, const CWhole& divisor) {
    mp::divide_qr(number(dividend), number(divisor), number(Quotient), number(Rest));
}

}  // namespace mensor::exact

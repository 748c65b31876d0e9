#include "mensor_exact/Whole.h"

#include <iomanip>
#include <istream>
#include <memory>
#include <new>
#include <ostream>
#include <utility>

// Boost includes <iostream>, which runs a constructor when the library is loaded. Only the classes of
// streams are needed, so the standard library is told that <iostream> was included.
#if defined(__GLIBCXX__) && !defined(_GLIBCXX_IOSTREAM)
#define _GLIBCXX_IOSTREAM 1  // NOLINT(bugprone-reserved-identifier)
#endif
// Boost throws plain exceptions of the standard library, not ones that can be cloned.
#define BOOST_EXCEPTION_DISABLE
#include <boost/multiprecision/cpp_int.hpp>

namespace mensor::exact {

namespace {

namespace mp = boost::multiprecision;

// The bits that need no allocated memory: enough for the sum of 2^-1074 and an offset, times a factor.
constexpr unsigned BitsInside = 2304;

using Number = mp::number<mp::cpp_int_backend<BitsInside, 0, mp::signed_magnitude, mp::unchecked,
                                              std::allocator<mp::limb_type>>,
                          mp::et_off>;

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

bool CWhole::isZero() const { return number(*this).is_zero(); }
bool CWhole::isNegative() const { return number(*this).sign() < 0; }
bool CWhole::isOdd() const { return mp::bit_test(number(*this), 0); }
bool CWhole::isOne() const { return number(*this) == 1; }

std::size_t CWhole::bits() const {
    if (isZero()) {
        return 0;
    }
    return (isNegative() ? mp::msb(-number(*this)) : mp::msb(number(*this))) + 1;
}

std::size_t CWhole::twos() const { return mp::lsb(number(*this)); }
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

CWhole& CWhole::operator-=(const CWhole& other) {
    number(*this) -= number(other);
    return *this;
}

CWhole& CWhole::operator*=(const CWhole& other) {
    number(*this) *= number(other);
    return *this;
}

CWhole& CWhole::operator/=(const CWhole& other) {
    number(*this) /= number(other);
    return *this;
}

CWhole operator+(const CWhole& a, const CWhole& b) {
    CWhole result = a;
    result += b;
    return result;
}

CWhole operator-(const CWhole& a, const CWhole& b) {
    CWhole result = a;
    result -= b;
    return result;
}

CWhole operator*(const CWhole& a, const CWhole& b) {
    CWhole result;
    mp::multiply(number(result), number(a), number(b));
    return result;
}

CWhole operator/(const CWhole& a, const CWhole& b) {
    CWhole result = a;
    result /= b;
    return result;
}

CWhole CWhole::shifted(std::int64_t twos) const {
    CWhole result = *this;
    if (twos > 0) {
        number(result) <<= static_cast<unsigned long>(twos);
    } else if (twos < 0) {
        number(result) >>= static_cast<unsigned long>(-twos);
    }
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
        number(result) *= Block;
        number(result) += block;
        digits.remove_prefix(count);
    }
    return result;
}

std::string CWhole::toString() const {
    std::string backwards;
    CWhole rest = size();
    do {
        CWhole quotient;
        CWhole block;
        mp::divide_qr(number(rest), Number(Block), number(quotient), number(block));
        rest = std::move(quotient);
        std::uint64_t digits = block.low();
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

CWhole gcd(const CWhole& a, const CWhole& b) {
    CWhole result;
    number(result) = mp::gcd(number(a), number(b));
    return result;
}

CDivision::CDivision(const CWhole& dividend, const CWhole& divisor) {
    mp::divide_qr(number(dividend), number(divisor), number(Quotient), number(Rest));
}

}  // namespace mensor::exact

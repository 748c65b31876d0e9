#include "mensor_exact/Whole.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "mensor_exact/TwoWords.h"

namespace mensor::exact {

namespace {

constexpr int WordBits = 64;
constexpr std::size_t BlockDigits = 18;
constexpr std::uint64_t Block = 1000000000000000000;

// a·b + c + d, which is less than 2^128.
CTwoWords multiplied(std::uint64_t a, std::uint64_t b, std::uint64_t c, std::uint64_t d) {
    return product(a, b) + CTwoWords{0, c} + CTwoWords{0, d};
}

}  // namespace

CWhole::CWhole() noexcept = default;

CWhole::CWhole(std::uint64_t value) : m_Size(value != 0 ? 1 : 0) { m_Inside[0] = value; }

CWhole::CWhole(std::int64_t value)
    : CWhole(value < 0 ? 0 - static_cast<std::uint64_t>(value)
                       : static_cast<std::uint64_t>(value)) {
    m_Negative = value < 0;
}

CWhole::CWhole(const CWhole& other) : m_Negative(other.m_Negative) {
    reserve(other.m_Size);
    m_Size = other.m_Size;
    std::copy_n(other.words(), m_Size, words());
}

CWhole::CWhole(CWhole&& other) noexcept
    : m_Size(other.m_Size),
      m_Room(other.m_Room),
      m_Negative(other.m_Negative),
      m_Outside(std::move(other.m_Outside)) {
    if (!m_Outside) {
        std::copy_n(other.m_Inside, m_Size, m_Inside);
    }
    other.m_Size = 0;
    other.m_Room = WordsInside;
    other.m_Negative = false;
}

CWhole& CWhole::operator=(const CWhole& other) {
    if (this != &other) {
        reserve(other.m_Size);
        m_Size = other.m_Size;
        m_Negative = other.m_Negative;
        std::copy_n(other.words(), m_Size, words());
    }
    return *this;
}

CWhole& CWhole::operator=(CWhole&& other) noexcept {
    if (this != &other) {
        m_Size = other.m_Size;
        m_Negative = other.m_Negative;
        if (other.m_Outside) {
            m_Outside = std::move(other.m_Outside);
            m_Room = std::exchange(other.m_Room, WordsInside);
            other.m_Size = 0;
            other.m_Negative = false;
        } else {
            std::copy_n(other.m_Inside, m_Size, words());
        }
    }
    return *this;
}

// Makes space for `room` words. Keeps the words in use.
void CWhole::reserve(std::size_t room) {
    if (room > m_Room) {
        std::unique_ptr<std::uint64_t[]> larger(new std::uint64_t[room]);
        std::copy_n(words(), m_Size, larger.get());
        m_Outside = std::move(larger);
        m_Room = room;
    }
}

// Drops the highest words while they are zero.
void CWhole::trim() {
    while (m_Size > 0 && words()[m_Size - 1] == 0) {
        --m_Size;
    }
    m_Negative = m_Negative && m_Size > 0;
}

std::size_t CWhole::bits() const {
    return m_Size == 0
               ? 0
               : (m_Size - 1) * WordBits + static_cast<std::size_t>(bitsOf(words()[m_Size - 1]));
}

std::size_t CWhole::twos() const {
    std::size_t word = 0;
    while (words()[word] == 0) {
        ++word;
    }
    return word * WordBits + static_cast<std::size_t>(__builtin_ctzll(words()[word]));
}

std::uint64_t CWhole::low() const { return m_Size == 0 ? 0 : words()[0]; }

CWhole CWhole::operator-() const {
    CWhole result = *this;
    result.m_Negative = !m_Negative && m_Size > 0;
    return result;
}

CWhole CWhole::size() const {
    CWhole result = *this;
    result.m_Negative = false;
    return result;
}

int CWhole::compareSize(const CWhole& other) const {
    if (m_Size != other.m_Size) {
        return m_Size < other.m_Size ? -1 : 1;
    }
    for (std::size_t i = m_Size; i-- > 0;) {
        if (words()[i] != other.words()[i]) {
            return words()[i] < other.words()[i] ? -1 : 1;
        }
    }
    return 0;
}

int CWhole::compare(const CWhole& other) const {
    if (m_Negative != other.m_Negative) {
        return m_Negative ? -1 : 1;
    }
    return m_Negative ? other.compareSize(*this) : compareSize(other);
}

// Adds the absolute value of `other` with a sign. `other` may be this object.
void CWhole::add(const CWhole& other, bool isNegative) {
    const std::size_t most = std::max(m_Size, other.m_Size);
    reserve(most + 1);
    std::uint64_t* const result = words();
    const auto mine = [&](std::size_t i) { return i < m_Size ? result[i] : 0; };
    const auto theirs = [&](std::size_t i) { return i < other.m_Size ? other.words()[i] : 0; };
    std::uint64_t carry = 0;
    if (m_Negative == isNegative) {
        for (std::size_t i = 0; i < most; ++i) {
            const CTwoWords sum =
                CTwoWords{0, mine(i)} + CTwoWords{0, theirs(i)} + CTwoWords{0, carry};
            result[i] = sum.Low;
            carry = sum.High;
        }
        result[most] = carry;
        m_Size = most + 1;
    } else {
        const bool isLess = compareSize(other) < 0;
        for (std::size_t i = 0; i < most; ++i) {
            const std::uint64_t from = isLess ? theirs(i) : mine(i);
            const std::uint64_t less = isLess ? mine(i) : theirs(i);
            const CTwoWords rest = CTwoWords{1, from} - CTwoWords{0, less} - CTwoWords{0, carry};
            result[i] = rest.Low;
            carry = 1 - rest.High;
        }
        m_Size = most;
        m_Negative = isLess ? isNegative : m_Negative;
    }
    trim();
}

CWhole& CWhole::operator+=(const CWhole& other) {
    add(other, other.m_Negative);
    return *this;
}

CWhole& CWhole::operator-=(const CWhole& other) {
    add(other, !other.m_Negative);
    return *this;
}

CWhole& CWhole::operator*=(const CWhole& other) { return *this = *this * other; }
CWhole& CWhole::operator/=(const CWhole& other) { return *this = *this / other; }

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

// Multiplies word by word, as by hand.
CWhole operator*(const CWhole& a, const CWhole& b) {
    CWhole result;
    result.reserve(a.m_Size + b.m_Size);
    result.m_Size = a.m_Size + b.m_Size;
    std::uint64_t* const words = result.words();
    std::fill_n(words, result.m_Size, 0);
    for (std::size_t i = 0; i < a.m_Size; ++i) {
        std::uint64_t carry = 0;
        for (std::size_t j = 0; j < b.m_Size; ++j) {
            const CTwoWords sum = multiplied(a.words()[i], b.words()[j], words[i + j], carry);
            words[i + j] = sum.Low;
            carry = sum.High;
        }
        words[i + b.m_Size] = carry;
    }
    result.m_Negative = a.m_Negative != b.m_Negative;
    result.trim();
    return result;
}

CWhole operator/(const CWhole& a, const CWhole& b) { return CDivision(a, b).Quotient; }

CWhole CWhole::shifted(std::int64_t twos) const {
    const std::uint64_t distance =
        twos < 0 ? 0 - static_cast<std::uint64_t>(twos) : static_cast<std::uint64_t>(twos);
    const auto skipped = static_cast<std::size_t>(distance / WordBits);
    const auto bits = static_cast<int>(distance % WordBits);
    CWhole result;
    if (twos < 0 ? skipped >= m_Size : m_Size == 0) {
        return result;
    }
    const std::size_t size = twos < 0 ? m_Size - skipped : m_Size + skipped + 1;
    result.reserve(size);
    result.m_Size = size;
    result.m_Negative = m_Negative;
    const std::uint64_t* const from = words();
    std::uint64_t* const to = result.words();
    if (twos < 0) {
        for (std::size_t i = 0; i < size; ++i) {
            const std::uint64_t word = from[i + skipped];
            const std::uint64_t above = i + 1 < size ? from[i + skipped + 1] : 0;
            to[i] = bits == 0 ? word : shiftedLeft({above, word}, WordBits - bits).High;
        }
    } else {
        std::fill_n(to, skipped, 0);
        std::uint64_t below = 0;
        for (std::size_t i = 0; i <= m_Size; ++i) {
            const std::uint64_t word = i < m_Size ? from[i] : 0;
            to[i + skipped] = shiftedLeft({word, below}, bits).High;
            below = word;
        }
    }
    result.trim();
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

// Multiplies the absolute value by `factor`, and adds `more`.
void CWhole::multiplyAdd(std::uint64_t factor, std::uint64_t more) {
    reserve(m_Size + 1);
    for (std::size_t i = 0; i < m_Size; ++i) {
        const CTwoWords sum = multiplied(words()[i], factor, more, 0);
        words()[i] = sum.Low;
        more = sum.High;
    }
    words()[m_Size++] = more;
    trim();
}

// Divides the absolute value, and returns the rest.
std::uint64_t CWhole::divide(std::uint64_t divisor) {
    std::uint64_t rest = 0;
    for (std::size_t i = m_Size; i-- > 0;) {
        words()[i] = quotient({rest, words()[i]}, divisor, rest);
    }
    trim();
    return rest;
}

CWhole CWhole::ofDigits(std::string_view digits) {
    CWhole result;
    while (!digits.empty()) {
        const std::size_t count =
            digits.size() % BlockDigits != 0 ? digits.size() % BlockDigits : BlockDigits;
        std::uint64_t block = 0;
        for (const char digit : digits.substr(0, count)) {
            block = 10 * block + static_cast<std::uint64_t>(digit - '0');
        }
        result.multiplyAdd(Block, block);
        digits.remove_prefix(count);
    }
    return result;
}

std::string CWhole::toString() const {
    std::string backwards;
    CWhole rest = *this;
    do {
        std::uint64_t digits = rest.divide(Block);
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

// D. E. Knuth, The Art of Computer Programming 2, 4.3.1, algorithm D. The two highest words of the rest and
// the highest word of the divisor give a guess for each word of the quotient. It is too large by at most 2.
CDivision::CDivision(const CWhole& dividend, const CWhole& divisor) : Rest(dividend) {
    const std::size_t count = divisor.m_Size;
    if (dividend.compareSize(divisor) < 0) {
        return;
    }
    if (count == 1) {
        Quotient = std::move(Rest);
        Rest = CWhole(Quotient.divide(divisor.low()));
    } else {
        // The guess needs a divisor whose highest bit is set.
        const int shift = WordBits - bitsOf(divisor.words()[count - 1]);
        const CWhole by = divisor.shifted(shift);
        const std::size_t places = dividend.m_Size - count + 1;
        Rest = dividend.shifted(shift);
        Rest.reserve(dividend.m_Size + 1);
        if (Rest.m_Size == dividend.m_Size) {
            Rest.words()[Rest.m_Size++] = 0;
        }
        Quotient.reserve(places);
        Quotient.m_Size = places;
        const std::uint64_t first = by.words()[count - 1];
        const std::uint64_t second = by.words()[count - 2];
        for (std::size_t place = places; place-- > 0;) {
            std::uint64_t* const part = Rest.words() + place;
            std::uint64_t digit = ~std::uint64_t{0};
            std::uint64_t over = part[count - 1] + first;  // modulo 2^64
            bool isSure = over < first;
            if (part[count] < first) {
                digit = quotient({part[count], part[count - 1]}, first, over);
                isSure = false;
            }
            while (!isSure && CTwoWords{over, part[count - 2]} < product(digit, second)) {
                --digit;
                over += first;
                isSure = over < first;
            }
            std::uint64_t carry = 0;
            std::uint64_t borrow = 0;
            for (std::size_t i = 0; i <= count; ++i) {
                const CTwoWords less = multiplied(i < count ? by.words()[i] : 0, digit, carry, 0);
                const CTwoWords rest =
                    CTwoWords{1, part[i]} - CTwoWords{0, less.Low} - CTwoWords{0, borrow};
                carry = less.High;
                part[i] = rest.Low;
                borrow = 1 - rest.High;
            }
            if (borrow != 0) {  // the guess is still one too large
                --digit;
                carry = 0;
                for (std::size_t i = 0; i <= count; ++i) {
                    const CTwoWords sum = CTwoWords{0, part[i]} +
                                          CTwoWords{0, i < count ? by.words()[i] : 0} +
                                          CTwoWords{0, carry};
                    part[i] = sum.Low;
                    carry = sum.High;
                }
            }
            Quotient.words()[place] = digit;
        }
        Rest.trim();
        Rest = Rest.size().shifted(-shift);
    }
    Quotient.m_Negative = dividend.m_Negative != divisor.m_Negative;
    Quotient.trim();
    Rest.m_Negative = dividend.m_Negative;
    Rest.trim();
}

// D. H. Lehmer's form of Euclid's algorithm. It computes many quotients from the highest 64 bits alone. Then
// both numbers become sums of multiples of the old ones.
CWhole gcd(const CWhole& a, const CWhole& b) {
    CWhole x = a.compareSize(b) < 0 ? b : a;
    CWhole y = a.compareSize(b) < 0 ? a : b;
    while (y.m_Size > 1) {
        // The highest 64 bits of x, and the bits of y in the same positions.
        const std::int64_t below = static_cast<std::int64_t>(x.bits()) - WordBits;
        std::uint64_t high = x.shifted(-below).low();
        std::uint64_t other = y.shifted(-below).low();
        // The absolute values of previousX·x - previousY·y and lastX·x - lastY·y are the numbers after the
        // quotients so far.
        std::uint64_t previousX = 0;
        std::uint64_t previousY = 0;
        std::uint64_t lastX = 1;
        std::uint64_t lastY = 0;
        std::uint64_t nextX = 0;
        std::uint64_t nextY = 1;
        // Under this condition of G. E. Collins the quotient is that of the whole numbers.
        while (other >= nextY && high - other >= lastY + nextY) {
            const std::uint64_t factor = high / other;
            high = std::exchange(other, high % other);
            previousX = std::exchange(lastX, nextX);
            previousY = std::exchange(lastY, nextY);
            nextX = previousX + factor * lastX;
            nextY = previousY + factor * lastY;
        }
        if (previousY != 0) {
            CWhole newX = CWhole(previousX) * x - CWhole(previousY) * y;
            CWhole newY = CWhole(lastX) * x - CWhole(lastY) * y;
            x = newX.size();
            y = newY.size();
        } else {
            CWhole rest = CDivision(x, y).Rest;
            x = std::move(y);
            y = std::move(rest);
        }
    }
    if (y.isZero()) {
        return x;
    }
    const std::uint64_t rest = x.divide(y.low());
    return CWhole(std::gcd(rest, y.low()));
}

}  // namespace mensor::exact

// TwoWords.h: whole numbers of 128 bits, on every processor. Not installed.
//
// The functions use the 128-bit integers of the compiler if it has them. On 32-bit ARM it has
// none. The functions of `portable` work without them and give the same results.
#ifndef MENSOR_EXACT_TWOWORDS_H
#define MENSOR_EXACT_TWOWORDS_H

#include <cstdint>
#include <initializer_list>

namespace mensor::exact {

/// The number High·2^64 + Low.
struct CTwoWords {
    std::uint64_t High = 0;
    std::uint64_t Low = 0;
};

/// The number of bits of `number`; 0 for zero.
inline int bitsOf(std::uint64_t number) { return number == 0 ? 0 : 64 - __builtin_clzll(number); }

inline int bitsOf(const CTwoWords& a) { return a.High == 0 ? bitsOf(a.Low) : 64 + bitsOf(a.High); }

inline bool isZero(const CTwoWords& a) { return a.High == 0 && a.Low == 0; }

inline bool operator<(const CTwoWords& a, const CTwoWords& b) {
    return a.High != b.High ? a.High < b.High : a.Low < b.Low;
}

/// The sum, modulo 2^128.
inline CTwoWords operator+(const CTwoWords& a, const CTwoWords& b) {
    const std::uint64_t low = a.Low + b.Low;
    return {a.High + b.High + (low < a.Low ? 1 : 0), low};
}

/// The difference, modulo 2^128.
inline CTwoWords operator-(const CTwoWords& a, const CTwoWords& b) {
    return {a.High - b.High - (a.Low < b.Low ? 1 : 0), a.Low - b.Low};
}

/// a·2^count, modulo 2^128, for a count of 0 to 127.
inline CTwoWords shiftedLeft(const CTwoWords& a, int count) {
    if (count == 0) {
        return a;
    }
    if (count >= 64) {
        return {a.Low << (count - 64), 0};
    }
    return {a.High << count | a.Low >> (64 - count), a.Low << count};
}

namespace portable {

inline CTwoWords product(std::uint64_t a, std::uint64_t b) {
    const std::uint64_t mask = 0xFFFFFFFF;
    const std::uint64_t low = (a & mask) * (b & mask);
    const std::uint64_t left = (a >> 32) * (b & mask) + (low >> 32);
    const std::uint64_t right = (a & mask) * (b >> 32) + (left & mask);
    return {(a >> 32) * (b >> 32) + (left >> 32) + (right >> 32), right << 32 | (low & mask)};
}

// Long division with digits of 32 bits. Since the highest bit of the divisor is set, each guess of a
// digit is too large by at most 2.
inline std::uint64_t quotient(const CTwoWords& a, std::uint64_t divisor, std::uint64_t& rest) {
    const std::uint64_t mask = 0xFFFFFFFF;
    const int shift = __builtin_clzll(divisor);
    const std::uint64_t d = divisor << shift;
    const CTwoWords n = shiftedLeft(a, shift);
    std::uint64_t result = 0;
    std::uint64_t part = n.High;
    for (const std::uint64_t next : {n.Low >> 32, n.Low & mask}) {
        std::uint64_t digit = part / (d >> 32);
        std::uint64_t over = part % (d >> 32);
        while (digit > mask || digit * (d & mask) > (over << 32 | next)) {
            --digit;
            over += d >> 32;
            if (over > mask) {
                break;
            }
        }
        part =
            (part << 32 | next) - digit * d;  // modulo 2^64; the difference has less than 64 bits
        result = result << 32 | digit;
    }
    rest = part >> shift;
    return result;
}

}  // namespace portable

/// The product, with all its bits.
inline CTwoWords product(std::uint64_t a, std::uint64_t b) {
#ifdef __SIZEOF_INT128__
    const auto whole = __extension__ static_cast<unsigned __int128>(a) * b;
    return {static_cast<std::uint64_t>(whole >> 64), static_cast<std::uint64_t>(whole)};
#else
    return portable::product(a, b);
#endif
}

/// Returns the quotient, rounded down, and sets `rest`. `divisor` is greater than the high word of `a`,
/// so the quotient has at most 64 bits.
inline std::uint64_t quotient(const CTwoWords& a, std::uint64_t divisor, std::uint64_t& rest) {
#if defined(__x86_64__)
    std::uint64_t result = 0;
    __asm__("divq %4" : "=a"(result), "=d"(rest) : "a"(a.Low), "d"(a.High), "r"(divisor) : "cc");
    return result;
#else
    return portable::quotient(a, divisor, rest);
#endif
}

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_TWOWORDS_H

// Factors.cpp: exponents are computed with 64 bits. A result that does not fit an int throws.
#include "mensor/Factors.h"

#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>

#include "mensor/AlternateUnit.h"
#include "mensor/BaseUnit.h"
#include "mensor/ProductUnit.h"
#include "mensor/TransformedUnit.h"
#include "mensor/exact_class.h"
#include "mensor/require.h"

namespace mensor::detail {

namespace {

int checkedExponent(std::int64_t n) {
    if (n > std::numeric_limits<int>::max() || n < std::numeric_limits<int>::min()) {
        throw std::overflow_error("Exponent " + std::to_string(n) + " is out of range");
    }
    return static_cast<int>(n);
}

// The sum of two products of ints. It overflows only if both are the smallest int times itself.
std::int64_t sum(std::int64_t a, std::int64_t b) {
    std::int64_t result = 0;
    if (__builtin_add_overflow(a, b, &result)) {
        throw std::overflow_error("Exponent 9223372036854775808 is out of range");
    }
    return result;
}

// The factor `unit` to the power pow/root in lowest terms, if the root is not 1.
Factor reducedFraction(const CUnitPtr* unit, std::int64_t pow, std::int64_t root) {
    // Euclid's algorithm with the truncating remainder, as in greatestCommonDivisor: the sign of
    // the result is that of the last divisor that is not zero.
    std::int64_t divisor = pow < 0 ? -pow : pow;
    for (std::int64_t next = root; next != 0;) {
        const std::int64_t rest = divisor % next;
        divisor = next;
        next = rest;
    }
    if (divisor == 0) {
        throw std::invalid_argument("Exponent 0/0 of a factor");
    }
    const int reducedPow = checkedExponent(pow / divisor);
    return {unit, reducedPow, checkedExponent(root / divisor)};
}

// The factor `unit` to the power pow/root in lowest terms.
inline Factor reduced(const CUnitPtr* unit, std::int64_t pow, std::int64_t root) {
    return root == 1 ? Factor{unit, checkedExponent(pow), 1} : reducedFraction(unit, pow, root);
}

// The first factor of `unit` from `begin` on, or `end`.
inline const Factor* findUnit(const Factor* begin, const Factor* end, const CUnitPtr& unit) {
    while (begin != end && *begin->Unit != unit) {
        ++begin;
    }
    return begin;
}

// The product of two factors of the same unit in lowest terms.
Factor merged(const Factor& left, const Factor& right) {
    const std::int64_t pow =
        sum(std::int64_t{left.Pow} * right.Root, std::int64_t{right.Pow} * left.Root);
    const std::int64_t root = std::int64_t{left.Root} * right.Root;
    return pow == 0 ? Factor{left.Unit, 0, 1} : reduced(left.Unit, pow, root);
}

inline unsigned weightedHash(const CUnit& unit, int pow, int root) {
    const unsigned weight = 3U * static_cast<unsigned>(pow) - 2U * static_cast<unsigned>(root);
    return static_cast<unsigned>(unit.hashCode()) * weight;
}

Factors borrowed(const std::vector<CUnitRationalPower>& factors) {
    Factors result(factors.size());
    for (const CUnitRationalPower& factor : factors) {
        result.add({&factor.unit(), factor.getPow(), factor.getRoot()});
    }
    return result;
}

}  // namespace

std::atomic<bool> largeExponentsExist{false};

bool isOwnKind(const CUnit& unit) {
    return isExactly<CProductUnit>(unit) || isExactly<CTransformedUnit>(unit) ||
           isExactly<CBaseUnit>(unit) || isExactly<CAlternateUnit>(unit);
}

Factors factorsOf(const CUnitPtr& unit, GivenFactors& given) {
    if (isExactly<CProductUnit>(*unit)) {
        return borrowed(static_cast<const CProductUnit&>(*unit).factors());
    }
    if (!isOwnKind(*unit)) {
        return factorsOf(given.emplace_front(unit->elements()));
    }
    Factors itself;
    itself.add({&unit, 1, 1});
    return itself;
}

Factors factorsOf(const std::vector<CUnitRationalPower>& factors) {
    for (const CUnitRationalPower& factor : factors) {
        requireUnit(factor.unit(), "CProductUnit::getInstance");
    }
    return borrowed(factors);
}

Factors multiplied(const Factors& left, const Factors& right) {
    Factors result(left.size() + right.size());
    Factor* next = result.begin();
    for (const Factor& mine : left) {
        const Factor* const other = findUnit(right.begin(), right.end(), *mine.Unit);
        *next = mine;
        if (other != right.end()) {
            *next = merged(mine, *other);
        } else if (mine.Root != 1 && mine.Pow != 0) {
            *next = reducedFraction(mine.Unit, mine.Pow, mine.Root);
        }
        next += next->Pow != 0 ? 1 : 0;
    }
    for (const Factor& other : right) {
        if (findUnit(left.begin(), left.end(), *other.Unit) == left.end()) {
            *next++ = other;
        }
    }
    result.endAt(next);
    return result;
}

void raise(Factors& factors, int pow, int root) {
    for (Factor& factor : factors) {
        factor =
            reduced(factor.Unit, std::int64_t{factor.Pow} * pow, std::int64_t{factor.Root} * root);
    }
}

void invert(Factors& factors) {
    for (Factor& factor : factors) {
        factor.Pow = checkedExponent(-std::int64_t{factor.Pow});
    }
}

int hashOf(const Factors& factors) {
    unsigned sum = 0;
    for (const Factor& factor : factors) {
        sum += weightedHash(**factor.Unit, factor.Pow, factor.Root);
    }
    return static_cast<int>(sum);
}

int hashOf(const std::vector<CUnitRationalPower>& factors) {
    unsigned sum = 0;
    for (const CUnitRationalPower& factor : factors) {
        sum += weightedHash(*factor.unit(), factor.getPow(), factor.getRoot());
    }
    return static_cast<int>(sum);
}

}  // namespace mensor::detail

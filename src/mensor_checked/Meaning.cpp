#include "mensor_checked/Meaning.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <stdexcept>
#include <utility>

#include "mensor/ProductUnit.h"
#include "mensor/TransformedUnit.h"
#include "mensor_checked/Words.h"

namespace mensor {
namespace checked {

namespace {

// Kinds of units may be a client's own, which might lead back to themselves.
constexpr int DeepestExpansion = 100;

[[noreturn]] void throwOverflow() {
    throw std::overflow_error("an exponent leaves the range of 64 bits");
}

std::int64_t times(std::int64_t a, std::int64_t b) {
    std::int64_t result = 0;
    if (__builtin_mul_overflow(a, b, &result)) {
        throwOverflow();
    }
    return result;
}

std::int64_t plus(std::int64_t a, std::int64_t b) {
    std::int64_t result = 0;
    if (__builtin_add_overflow(a, b, &result)) {
        throwOverflow();
    }
    return result;
}

bool areClose(double a, double b) {
    constexpr double Tolerance = 1e-12;
    return a == b || std::fabs(a - b) <= Tolerance * std::max(std::fabs(a), std::fabs(b));
}

void appendFactor(std::string& text, const std::string& base, const CRational& exponent) {
    text += base;
    if (exponent == CRational(2)) {
        text += "²";
    } else if (exponent == CRational(3)) {
        text += "³";
    } else if (exponent != CRational(1)) {
        text += "^" + exponent.toString();
    }
}

CMeaning meaning(CUnit& unit, int depth);

CMeaning meaningOfElements(const std::vector<CUnitRationalPower>& elements, int depth) {
    CMeaning product;
    for (const CUnitRationalPower& element : elements) {
        product = product * meaning(*element.getUnit(), depth + 1)
                                .power(CRational(element.getPow(), element.getRoot()));
    }
    return product;
}

CMeaning transformed(const CMeaning& system, const CConverter& toSystem) {
    return system.shifted(toSystem.convert(0.0)).scaled(toSystem.derivative(0.0));
}

CMeaning meaning(CUnit& unit, int depth) {
    if (depth > DeepestExpansion) {
        throw std::logic_error("the expansion of a unit does not end");
    }
    if (dynamic_cast<CProductUnit*>(&unit) != nullptr) {
        return meaningOfElements(unit.elements(), depth);
    }
    if (const auto* scaled = dynamic_cast<CTransformedUnit*>(&unit)) {
        return transformed(meaning(*unit.getSystemUnit(), depth + 1), *scaled->toSystem());
    }
    // A base unit, an alternate one, or a client's kind, which may be anything.
    const std::vector<CUnitRationalPower> elements = unit.elements();
    const bool isItsOwn = elements.size() == 1 && elements[0].getUnit().get() == &unit;
    if (!isItsOwn) {
        return meaningOfElements(elements, depth);
    }
    const CUnitPtr system = unit.getSystemUnit();
    if (system.get() != &unit) {
        return transformed(meaning(*system, depth + 1), *unit.getConverterTo(system));
    }
    const CUnitPtr base = unit.baseUnits();
    if (base.get() != &unit) {
        return meaning(*base, depth + 1);
    }
    return CMeaning::base(mensor::toStdString(unit.getSymbol()));
}

}  // namespace

CRational::CRational(std::int64_t numerator, std::int64_t denominator)
    : m_Numerator(numerator), m_Denominator(denominator) {
    if (denominator == 0) {
        throw std::invalid_argument("a fraction with the denominator zero");
    }
    constexpr std::int64_t Least = std::numeric_limits<std::int64_t>::min();
    if (numerator == Least || denominator == Least) {
        throwOverflow();  // it has no positive counterpart
    }
    if (denominator == 1) {
        return;  // as most are
    }
    const std::int64_t divisor = std::gcd(numerator, denominator) * (denominator < 0 ? -1 : 1);
    m_Numerator /= divisor;
    m_Denominator /= divisor;
}

double CRational::toDouble() const {
    return static_cast<double>(m_Numerator) / static_cast<double>(m_Denominator);
}

std::string CRational::toString() const {
    const std::string numerator = std::to_string(m_Numerator);
    return m_Denominator == 1 ? numerator : numerator + ":" + std::to_string(m_Denominator);
}

CRational CRational::operator-() const { return {times(m_Numerator, -1), m_Denominator}; }

CRational operator+(const CRational& a, const CRational& b) {
    return {plus(times(a.m_Numerator, b.m_Denominator), times(b.m_Numerator, a.m_Denominator)),
            times(a.m_Denominator, b.m_Denominator)};
}

CRational operator*(const CRational& a, const CRational& b) {
    return {times(a.m_Numerator, b.m_Numerator), times(a.m_Denominator, b.m_Denominator)};
}

CMeaning CMeaning::base(std::string_view symbol) {
    CMeaning meaning;
    meaning.m_Exponents.push_back({std::string(symbol), 1});
    return meaning;
}

CRational CMeaning::exponentOf(std::string_view symbol) const {
    for (const CExponent& exponent : m_Exponents) {
        if (exponent.Base == symbol) {
            return exponent.Exponent;
        }
    }
    return 0;
}

CMeaning CMeaning::power(const CRational& exponent) const {
    if (exponent == CRational(1)) {
        CMeaning same = *this;
        same.m_Offset = 0.0;
        return same;
    }
    CMeaning result;
    if (exponent == CRational(0)) {
        return result;
    }
    for (const CExponent& mine : m_Exponents) {
        result.m_Exponents.push_back({mine.Base, mine.Exponent * exponent});
    }
    result.m_Factor = std::pow(m_Factor, exponent.toDouble());
    return result;
}

CMeaning CMeaning::scaled(double factor) const {
    CMeaning result = *this;
    result.m_Factor *= factor;
    return result;
}

CMeaning CMeaning::shifted(double offset) const {
    CMeaning result = *this;
    result.m_Offset += m_Factor * offset;
    return result;
}

CMeaning operator*(const CMeaning& a, const CMeaning& b) {
    CMeaning product = a;
    product.m_Factor *= b.m_Factor;
    product.m_Offset = 0.0;
    auto& exponents = product.m_Exponents;
    for (const CExponent& right : b.m_Exponents) {
        const auto place = std::lower_bound(
            exponents.begin(), exponents.end(), right,
            [](const CExponent& x, const CExponent& y) { return x.Base < y.Base; });
        if (place == exponents.end() || place->Base != right.Base) {
            exponents.insert(place, right);
        } else if ((place->Exponent = place->Exponent + right.Exponent) == CRational(0)) {
            exponents.erase(place);
        }
    }
    return product;
}

CMeaning operator/(const CMeaning& a, const CMeaning& b) { return a * b.power(-1); }

bool operator==(const CMeaning& a, const CMeaning& b) {
    return a.hasDimensionOf(b) && areClose(a.m_Factor, b.m_Factor) &&
           areClose(a.m_Offset, b.m_Offset);
}

std::string CMeaning::toString() const {
    std::string numerator;
    std::string denominator;
    int divisors = 0;
    for (const CExponent& exponent : m_Exponents) {
        const bool divides = exponent.Exponent.numerator() < 0;
        std::string& side = divides ? denominator : numerator;
        if (!side.empty()) {
            side += "·";
        }
        appendFactor(side, exponent.Base, divides ? -exponent.Exponent : exponent.Exponent);
        divisors += divides ? 1 : 0;
    }
    std::string text = numerator;
    if (numerator.empty()) {
        text = shortest(m_Factor);
    } else if (m_Factor != 1.0) {
        text = shortest(m_Factor) + " " + numerator;
    }
    if (divisors > 0) {
        text += divisors > 1 ? "/(" + denominator + ")" : "/" + denominator;
    }
    if (m_Offset != 0.0) {
        text += (m_Offset < 0 ? " - " : " + ") + shortest(std::fabs(m_Offset));
    }
    return text;
}

CMeaning meaningOf(const CUnitPtr& unit) {
    requireUnit(unit, "meaningOf");
    return meaning(*unit, 0);
}

}  // namespace checked
}  // namespace mensor

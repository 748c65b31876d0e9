// Algebra_fuzz.cpp: a stack machine whose operations are the bytes of the input. Each result is the
// registered unit with the hash code of its factors, which the fuzzer computes independently. (It may
// have other factors, since the hash code alone decides identity.) The same operation returns the same
// object again. Products commute. Only the documented exceptions are thrown. A converter gives the
// values of the two converters to the dimension, and its inverse undoes it.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Input.h"
#include "mensor/AddConverter.h"
#include "mensor/MultiplyConverter.h"
#include "mensor/SI.h"
#include "mensor/TransformedUnit.h"
#include "mensor/mensor_math.h"
#include "property.h"
#include "unit_texts.h"

using namespace mensor;

using mensor::fuzz::require;

namespace {

const std::vector<CUnitPtr>& catalogueUnits() {
    static const std::vector<CUnitPtr> units = [] {
        std::vector<CUnitPtr> all;
        for (const auto& named : CUnitFormat::names()) {
            all.push_back(named.second);
        }
        return all;
    }();
    return units;
}

// ---- arithmetic of factors, in lowest terms; no result if an exponent leaves the range of int

using Product = std::optional<test::Factors>;

bool isInt(std::int64_t n) {
    return n >= std::numeric_limits<int>::min() && n <= std::numeric_limits<int>::max();
}

std::optional<CUnitRationalPower> inLowestTerms(const CUnitPtr& unit, std::int64_t pow,
                                                std::int64_t root) {
    std::int64_t a = pow < 0 ? -pow : pow, b = root;
    while (b != 0) {
        a = std::exchange(b, a % b);
    }
    pow /= a;
    root /= a;
    constexpr std::int64_t Largest = std::numeric_limits<int>::max();
    if (pow > Largest || pow < -Largest - 1 || root > Largest) {
        return std::nullopt;
    }
    return CUnitRationalPower(unit, static_cast<int>(pow), static_cast<int>(root));
}

Product times(const test::Factors& left, const test::Factors& right, int sign) {
    test::Factors product = left;
    for (const CUnitRationalPower& factor : right) {
        const std::int64_t pow = sign * std::int64_t{factor.getPow()};
        if (!isInt(pow)) {
            return std::nullopt;
        }
        std::size_t i = 0;
        while (i < left.size() && left[i].getUnit() != factor.getUnit()) {
            ++i;
        }
        if (i == left.size()) {
            product.emplace_back(factor.getUnit(), static_cast<int>(pow), factor.getRoot());
            continue;
        }
        const auto merged = inLowestTerms(
            factor.getUnit(),
            std::int64_t{left[i].getPow()} * factor.getRoot() + pow * left[i].getRoot(),
            std::int64_t{left[i].getRoot()} * factor.getRoot());
        if (!merged) {
            return std::nullopt;
        }
        product[i] = *merged;
    }
    test::Factors rest;
    for (const CUnitRationalPower& factor : product) {
        if (factor.getPow() != 0) {
            rest.push_back(factor);
        }
    }
    return rest;
}

Product raised(const test::Factors& factors, int pow, int root) {
    test::Factors result;
    for (const CUnitRationalPower& factor : factors) {
        const auto power = inLowestTerms(factor.getUnit(), std::int64_t{factor.getPow()} * pow,
                                         std::int64_t{factor.getRoot()} * root);
        if (!power) {
            return std::nullopt;
        }
        result.push_back(*power);
    }
    return result;
}

unsigned hashOf(const test::Factors& factors) {
    unsigned hash = 0;
    for (const CUnitRationalPower& factor : factors) {
        hash += static_cast<unsigned>(factor.getUnit()->hashCode()) *
                (3U * static_cast<unsigned>(factor.getPow()) -
                 2U * static_cast<unsigned>(factor.getRoot()));
    }
    return hash;
}

void requireCanonical(const CUnitPtr& unit, const char* operation) {
    require(unit && (unit == CProductUnit::one() || Inside::id(unit) >= 2) &&
                (unit == CProductUnit::one() || Inside::canonical(unit) == unit),
            operation, "gives an unregistered unit");
}

// Checks that `operation` returns the registered unit with the hash code of `factors`, or throws if
// there are no factors.
template <class Operation>
CUnitPtr checkProduct(const char* name, const Product& factors, Operation operation) {
    CUnitPtr unit;
    const std::string outcome = outcomeOf([&] { unit = operation(); });
    if (!factors) {
        require(fuzz::isOverflow(outcome), name, ("ends with " + outcome).c_str());
        return nullptr;
    }
    require(outcome == "returned", name, ("ends with " + outcome).c_str());
    requireCanonical(unit, name);
    if (factors->empty()) {
        require(unit == CProductUnit::one(), name,
                "does not give the dimensionless unit for no factors");
    } else if (factors->size() == 1 && factors->front().getPow() == factors->front().getRoot()) {
        require(unit == factors->front().getUnit(), name,
                "does not give the unit of a single factor");
    } else {
        require(unit->hashCode() == static_cast<int>(hashOf(*factors)), name,
                "does not have the hash code of its factors");
    }
    require(operation() == unit, name, "gives another unit the second time");
    return unit;
}

CUnitPtr checkPower(const CUnitPtr& unit, int n) {
    const auto power = [&] { return unit->pow(n); };
    if (n == 0 || n == 1) {
        require(power() == (n == 1 ? unit : CProductUnit::one()), "a unit to the power 0 or 1",
                "is another unit");
        return power();
    }
    if (n == std::numeric_limits<int>::min()) {
        return checkProduct("a power", std::nullopt, power);
    }
    if (n > 0) {
        return checkProduct("a power", raised(unit->elements(), n, 1), power);
    }
    const Product positive = raised(unit->elements(), -n, 1);
    return checkProduct("a negative power",
                        positive ? times({}, unit->pow(-n)->elements(), -1) : std::nullopt, power);
}

CUnitPtr checkRoot(const CUnitPtr& unit, int n) {
    const auto root = [&] { return unit->root(n); };
    if (n == 0) {
        require(outcomeOf(root) == "std::invalid_argument: Root's order of zero",
                "a root of order 0", "is not refused");
        return nullptr;
    }
    if (n == 1) {
        require(root() == unit, "a root of order 1", "is another unit");
        return unit;
    }
    if (n == std::numeric_limits<int>::min()) {
        return checkProduct("a root", std::nullopt, root);
    }
    if (n > 0) {
        return checkProduct("a root", raised(unit->elements(), 1, n), root);
    }
    const Product positive = raised(unit->elements(), 1, -n);
    return checkProduct("a negative root",
                        positive ? times({}, unit->root(-n)->elements(), -1) : std::nullopt, root);
}

// ---- conversion

bool areSame(double a, double b) {
    return std::memcmp(&a, &b, sizeof a) == 0 || (std::isnan(a) && std::isnan(b));
}

bool endsWith(const std::string& text, const std::string& end) {
    return text.size() >= end.size() &&
           text.compare(text.size() - end.size(), end.size(), end) == 0;
}

std::string incompatible(const CUnitPtr& from, const CUnitPtr& to) {
    return "std::invalid_argument: " + toStdString(from->getSymbol()) + " is not compatible with " +
           toStdString(to->getSymbol()) + " in current context";
}

bool isNonLinear(const std::string& outcome) {
    return outcome.find("std::logic_error: Unit element ") == 0 &&
           endsWith(outcome, " is non-linear, cannot convert");
}

// A conversion may need new units, whose exponents may be out of range.
bool isRefusedConversion(const std::string& outcome) {
    return isNonLinear(outcome) || fuzz::isOverflow(outcome) ||
           (outcome.find("std::invalid_argument: ") == 0 &&
            endsWith(outcome, " in current context"));
}

void checkConversion(const CUnitPtr& from, const CUnitPtr& to, double value) {
    CUnitPtr fromDimension, toDimension;
    const std::string ofDimensions = outcomeOf([&] {
        fromDimension = from->getDimension();
        toDimension = to->getDimension();
    });
    CConverterPtr converter;
    const std::string outcome = outcomeOf([&] { converter = from->getConverterTo(to); });
    if (from == to) {
        require(outcome == "returned" && converter == CConverter::identity(), "a unit",
                "is not converted to itself by the identity");
        return;
    }
    if (ofDimensions != "returned") {
        require(fuzz::isOverflow(ofDimensions) && outcome == ofDimensions, "a conversion",
                ("ends with " + outcome).c_str());
        return;
    }
    requireCanonical(fromDimension, "a dimension");
    require(from->isCompatible(to) == (fromDimension == toDimension) &&
                to->isCompatible(from) == (fromDimension == toDimension),
            "two units", "with different dimensions are compatible, or the reverse");
    if (fromDimension != toDimension) {
        require(outcome == incompatible(from, to), "a conversion between different dimensions",
                ("ends with " + outcome).c_str());
        return;
    }
    // Made without the caches of the library.
    CConverterPtr expected;
    const std::string ofContext = outcomeOf([&] {
        const CConverterPtr there = from->getCtxToDimension();
        expected = to->getCtxToDimension()->inverse()->concatenate(there);
    });
    require(outcome == ofContext, "a conversion", ("ends with " + outcome).c_str());
    if (outcome != "returned") {
        require(isNonLinear(outcome), "a conversion", ("ends with " + outcome).c_str());
        return;
    }
    const double converted = converter->convert(value);
    require(areSame(converted, expected->convert(value)), "a value",
            "is converted to a wrong number");
    require(areSame(converted, from->convertValueToUnit(value, to)), "a value",
            "is converted to a wrong number by convertValueToUnit()");
    require(areSame(converter->derivative(value), expected->derivative(value)), "a converter",
            "has a wrong slope");
    // Checks this only if no digits are lost: the numbers have usual sizes, and the offsets, also two that
    // cancel, are not larger than the numbers.
    const CConverterPtr inverse = converter->inverse();
    const CConverterPtr there = from->getCtxToDimension(), back = to->getCtxToDimension();
    const auto isUsual = [](double x) { return std::fabs(x) > 1e-90 && std::fabs(x) < 1e90; };
    const auto outweighsOffset = [value](const CConverter& step) {
        return std::fabs(step.convert(0.0)) <= std::fabs(value * step.derivative(value));
    };
    if (isUsual(value) && isUsual(converter->derivative(value)) && outweighsOffset(*converter) &&
        isUsual(there->derivative(0.0)) && outweighsOffset(*there) &&
        isUsual(back->derivative(0.0))) {
        require(std::fabs(inverse->convert(converted) - value) <= 1e-9 * std::fabs(value),
                "a value", "is not undone by the inverse");
    }
}

// Returns `unit` scaled or shifted by `step`.
CUnitPtr checkTransformed(const CUnitPtr& unit, const CConverterPtr& step, bool isShift,
                          double number) {
    CUnitPtr result;
    const std::string outcome =
        outcomeOf([&] { result = isShift ? unit->add(number) : unit->multiply(number); });
    CUnitPtr system;
    CConverterPtr toSystem;
    const std::string expected = outcomeOf([&] {
        system = unit->getSystemUnit();
        toSystem = unit->getConverterTo(system)->concatenate(step);
    });
    if (expected != "returned" || outcome != "returned") {
        require(isRefusedConversion(outcome) && (expected == outcome || expected == "returned"),
                "a scaled or shifted unit", ("ends with " + outcome).c_str());
        return nullptr;
    }
    if (!result) {
        return nullptr;  // the hash code belongs to a unit of another kind
    }
    requireCanonical(result, "a scaled or shifted unit");
    require(result->hashCode() == static_cast<int>(static_cast<unsigned>(system->hashCode()) +
                                                   static_cast<unsigned>(toSystem->hashCode())),
            "a scaled or shifted unit", "has another hash code");
    require(std::dynamic_pointer_cast<CTransformedUnit>(result) != nullptr,
            "a scaled or shifted unit", "is of another kind");
    return result;
}

CUnitPtr checkAlternate(const CUnitPtr& unit, const std::string& symbol) {
    CUnitPtr result;
    const CUnitPtr holder = CUnit::searchSymbol(symbol);
    const std::string outcome = outcomeOf([&] { result = unit->alternate(symbol); });
    if (outcome != "returned") {
        const bool isNoSystemUnit = outcome.find("std::logic_error: Unit with Id[ ") == 0 &&
                                    endsWith(outcome, "] is not a system unit");
        const std::string taken =
            "std::logic_error: The symbol: " + symbol + " is currently associated to another unit.";
        require(isNoSystemUnit || fuzz::isOverflow(outcome) || (holder && outcome == taken), symbol,
                ("ends with " + outcome).c_str());
        return nullptr;
    }
    requireCanonical(result, "an alternate unit");
    require(result->hashCode() == hashFromString(symbol), symbol, "has another hash code");
    require(!holder || result == holder, symbol, "is the symbol of two units");
    return result;
}

int exponent(fuzz::CInput& input) {
    const int n = input.byte();
    if (n < 240) {
        return n % 16 - 5;
    }
    return static_cast<int>(input.word()) >> (n % 16);
}

double number(fuzz::CInput& input) {
    static const double usual[] = {1.0,  1000.0, 0.001,  -1.0, 0.0, 273.15,
                                   60.0, 1e24,   1e-300, 2.5,  1e9, 0.1};
    const std::size_t choice = input.below(16);
    return choice < 12 ? usual[choice] : input.real();
}

class CMachine {
public:
    explicit CMachine(fuzz::CInput input) : m_Input(input) {}

    void run() {
        while (!m_Input.empty()) {
            switch (m_Input.below(16)) {
                case 0:
                case 1:
                case 2: push(catalogueUnits()[m_Input.word() % catalogueUnits().size()]); break;
                case 3: push(at(m_Input.below(4))); break;
                case 4:
                case 5: {
                    const CUnitPtr right = pop();
                    multiply(pop(), right);
                    break;
                }
                case 6:
                case 7: {
                    const CUnitPtr right = pop();
                    divide(pop(), right);
                    break;
                }
                case 8: push(checkPower(pop(), exponent(m_Input))); break;
                case 9: push(checkRoot(pop(), exponent(m_Input))); break;
                case 10: {
                    const double factor = number(m_Input);
                    push(checkTransformed(pop(), std::make_shared<CMultiplyConverter>(factor),
                                          false, factor));
                    break;
                }
                case 11: {
                    const double offset = number(m_Input);
                    push(checkTransformed(pop(), std::make_shared<CAddConverter>(offset), true,
                                          offset));
                    break;
                }
                case 12: push(checkAlternate(pop(), m_Input.text(4).c_str())); break;
                case 13: push(dimension(pop())); break;
                default: checkConversion(at(0), at(1), number(m_Input));
            }
        }
        for (const CUnitPtr& unit : m_Stack) {
            fuzz::checkWriting(unit);
        }
    }

private:
    void push(const CUnitPtr& unit) {
        if (unit) {
            m_Stack.push_back(unit);
        }
    }

    // Returns the unit at `depth` from the top of the stack. The metre is at the bottom.
    CUnitPtr at(std::size_t depth) const {
        return depth < m_Stack.size() ? m_Stack[m_Stack.size() - 1 - depth] : SI::Meter();
    }

    CUnitPtr pop() {
        const CUnitPtr top = at(0);
        if (!m_Stack.empty()) {
            m_Stack.pop_back();
        }
        return top;
    }

    void multiply(const CUnitPtr& a, const CUnitPtr& b) {
        const CUnitPtr product = checkProduct("a product", times(a->elements(), b->elements(), 1),
                                              [&] { return a->multiply(b); });
        if (product) {
            require(b->multiply(a) == product, "a product", "does not commute");
        }
        push(product);
    }

    void divide(const CUnitPtr& a, const CUnitPtr& b) {
        const CUnitPtr quotient = checkProduct(
            "a quotient", times(a->elements(), b->elements(), -1), [&] { return a->divide(b); });
        require(a != b || !quotient || quotient == CProductUnit::one(), "a unit divided by itself",
                "is not the dimensionless unit");
        push(quotient);
    }

    CUnitPtr dimension(const CUnitPtr& unit) {
        CUnitPtr result;
        const std::string outcome = outcomeOf([&] { result = unit->getDimension(); });
        require(outcome == "returned" || fuzz::isOverflow(outcome), "a dimension",
                ("ends with " + outcome).c_str());
        return result;
    }

    fuzz::CInput m_Input;
    std::vector<CUnitPtr> m_Stack;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t LongestInput = 96;  // units stay until the process ends
    CMachine(fuzz::CInput(data, size < LongestInput ? size : LongestInput)).run();
    fuzz::checkTables();
    return 0;
}

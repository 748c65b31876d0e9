#include "mensor_checked/Checks.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <new>
#include <stdexcept>

#include "mensor/TransformedUnit.h"
#include "mensor/UnitFormat.h"

namespace mensor {
namespace checked {

namespace {

// What `meaning` is, without offset, where base units are mapped onto others by
// CBaseUnit::setDimension; none where none of its base units is.
std::optional<CMeaning> mapped(const CMeaning& meaning) {
    CMeaning product;
    bool isMapped = false;
    for (const CExponent& exponent : meaning.exponents()) {
        CMeaning factor = CMeaning::base(exponent.Base);
        const CUnitPtr base = CUnit::searchSymbol(exponent.Base);
        const CUnitPtr dimension = base ? base->getCtxDimension() : nullptr;
        if (dimension && dimension != base) {
            isMapped = true;
            factor = meaningOf(dimension).scaled(base->getCtxToDimension()->derivative(0.0));
        }
        product = product * factor.power(exponent.Exponent);
    }
    return isMapped ? std::optional<CMeaning>(product.scaled(meaning.factor())) : std::nullopt;
}

}  // namespace

void requireUnit(const CUnitPtr& unit, const char* function) {
    if (!unit) {
        throw std::invalid_argument(std::string(function) + ": the unit is an empty pointer");
    }
}

std::string quoted(const std::string& text) { return "\"" + text + "\""; }

std::string shortest(double x) {
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), x).ptr;
    return {digits.data(), end};
}

bool isNormal(double x) { return std::isnormal(x); }

std::string describe(const CUnitPtr& unit) {
    std::string text;
    try {
        text = unit->toStdString();
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception&) {  // a transformed unit without a label
    }
    return quoted(text.empty() ? meaningOf(unit).toString() : text);
}

void multiplyInto(std::vector<CElement>& product, const CUnitPtr& unit, const CRational& exponent) {
    const std::vector<CUnitRationalPower> elements = unit->elements();
    product.reserve(product.size() + elements.size());
    for (const CUnitRationalPower& element : elements) {
        const CUnitPtr part = element.getUnit();
        const CRational power = CRational(element.getPow(), element.getRoot()) * exponent;
        const auto known = std::find_if(product.begin(), product.end(),
                                        [&](const CElement& e) { return e.Unit == part; });
        if (known == product.end()) {
            product.push_back({part, power});
        } else {
            known->Exponent = known->Exponent + power;
        }
    }
}

bool haveSameElements(const std::vector<CElement>& a, const std::vector<CElement>& b) {
    std::size_t present = 0;
    for (const CElement& mine : a) {
        if (mine.Exponent == CRational(0)) {
            continue;
        }
        ++present;
        const bool isThere = std::any_of(b.begin(), b.end(), [&](const CElement& other) {
            return other.Unit == mine.Unit && other.Exponent == mine.Exponent;
        });
        if (!isThere) {
            return false;
        }
    }
    const auto inB = std::count_if(
        b.begin(), b.end(), [](const CElement& other) { return other.Exponent != CRational(0); });
    return present == static_cast<std::size_t>(inB);
}

std::vector<CElement> systemElements(const std::vector<CElement>& elements) {
    std::vector<CElement> product;
    for (const CElement& element : elements) {
        const bool isTransformed = dynamic_cast<CTransformedUnit*>(element.Unit.get()) != nullptr;
        multiplyInto(product, isTransformed ? element.Unit->getSystemUnit() : element.Unit,
                     element.Exponent);
    }
    return product;
}

std::optional<CDimensionFault> dimensionFault(const CUnitPtr& unit, const CMeaning& meaning) {
    const CUnitPtr dimension = unit->getDimension();
    const CConverterPtr converter = unit->getCtxToDimension();
    CMeaning known =
        meaningOf(dimension).shifted(converter->convert(0.0)).scaled(converter->derivative(0.0));
    CMeaning expected = meaning;
    if (const auto other = mapped(meaning)) {
        expected = *other;
        known = known.power(1);  // how offsets go through a mapping is the client's affair
    }
    if (known == expected) {
        return std::nullopt;
    }
    return CDimensionFault{dimension, known};
}

}  // namespace checked
}  // namespace mensor

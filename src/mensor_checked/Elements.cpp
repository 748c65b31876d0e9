#include "mensor_checked/Elements.h"

#include <algorithm>

#include "mensor/TransformedUnit.h"

namespace mensor::checked {

using exact::CExponent;

void multiplyInto(std::vector<CElement>& product, const CUnitPtr& unit, CExponent exponent) {
    const std::vector<CUnitRationalPower> elements = unit->elements();
    product.reserve(product.size() + elements.size());
    for (const CUnitRationalPower& element : elements) {
        const CUnitPtr part = element.getUnit();
        const CExponent power = CExponent(element.getPow(), element.getRoot()) * exponent;
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
        if (mine.Exponent.isZero()) {
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
    const auto inB = std::count_if(b.begin(), b.end(),
                                   [](const CElement& other) { return !other.Exponent.isZero(); });
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

}  // namespace mensor::checked

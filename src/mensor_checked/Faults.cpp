#include "mensor_checked/Faults.h"

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

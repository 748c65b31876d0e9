#include <cmath>
#include <stdexcept>
#include <string>
#include <vector>

#include "mensor/ProductUnit.h"
#include "mensor/SI.h"
#include "mensor_checked/Making.h"

namespace mensor {
namespace checked {

namespace {

template <CBaseUnitPtr (*Unit)()>
CUnitPtr base() {
    return Unit();
}

CUnitPtr unitNamed(const std::string& name) {
    struct CNamed {
        const char* Name;
        CUnitPtr (*Unit)();
    };
    constexpr CNamed Known[] = {{"A", base<SI::Ampere>},   {"K", base<SI::Kelvin>},
                                {"cd", base<SI::Candela>}, {"kg", base<SI::Kilogram>},
                                {"m", base<SI::Meter>},    {"mol", base<SI::Mole>},
                                {"s", base<SI::Second>}};
    for (const CNamed& known : Known) {
        if (name == known.Name) {
            return known.Unit();
        }
    }
    if (name == "bit") {
        return SI::Bit();
    }
    if (name == "rad") {
        return SI::Radian();
    }
    if (name == "sr") {
        return SI::Steradian();
    }
    return baseUnit(string_t(name.c_str()));
}

void multiplyBy(CUnitPtr& unit, const exact::CPower& factor) {
    CUnitPtr base = unitNamed(factor.Name);
    if (factor.Exponent.denominator() != 1) {
        base = root(base, factor.Exponent.denominator());
    }
    base = power(base, factor.Exponent.numerator());
    unit = unit ? product(unit, base) : base;
}

}  // namespace

CUnitPtr unitOf(const exact::CMeaning& meaning) {
    const double factor = meaning.factor().toDouble();
    const double offset = meaning.offset().toDouble();
    if (!std::isnormal(factor) || !std::isfinite(offset)) {
        throw std::invalid_argument("the size of the unit is beyond the range of doubles");
    }
    CUnitPtr unit;
    for (const std::vector<exact::CPower>& powers : {meaning.dimensions(), meaning.marks()}) {
        for (const exact::CPower& power : powers) {
            multiplyBy(unit, power);
        }
    }
    if (!unit) {
        unit = CProductUnit::one();
    }
    return factor == 1.0 && offset == 0.0 ? unit : affine(unit, factor, offset);
}

}  // namespace checked
}  // namespace mensor

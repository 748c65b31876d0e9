#include "mensor/io.h"

#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "mensor/AddConverter.h"
#include "mensor/Converter.h"
#include "mensor/MultiplyConverter.h"
#include "mensor/ProductUnit.h"
#include "mensor/TextStream.h"
#include "mensor/TransformedUnit.h"
#include "mensor/UnitFormat.h"

namespace mensor {

namespace {

// The label or symbol of `unit`. Empty if it has neither, or if asking for the symbol throws.
string_t nameOf(const CUnitPtr& unit) {
    try {
        return CUnitFormat::labelFor(unit);
    } catch (const std::logic_error&) {
        return string_t();  // getSymbol() of a transformed unit computes its converter, which may throw
    }
}

// Appends the steps of `converter` in the order of their application, "*1.8+32". A chain may have
// any length, so "..." replaces all steps after the eighth.
void appendSteps(stringstream_t& text, const CConverter& converter) {
    constexpr int MostSteps = 8;
    int steps = 0;
    std::vector<CConverterPtr> owners;
    std::vector<const CConverter*> ahead{&converter};
    while (!ahead.empty()) {
        const CConverter* const next = ahead.back();
        ahead.pop_back();
        if (const auto* chain = dynamic_cast<const CCompound*>(next)) {
            owners.push_back(chain->second());
            ahead.push_back(owners.back().get());
            owners.push_back(chain->first());
            ahead.push_back(owners.back().get());
        } else if (dynamic_cast<const CIdentity*>(next) != nullptr) {
            continue;
        } else if (++steps > MostSteps) {
            text << "...";
            return;
        } else if (const auto* factor = dynamic_cast<const CMultiplyConverter*>(next)) {
            text << '*' << factor->factor();
        } else if (const auto* offset = dynamic_cast<const CAddConverter*>(next)) {
            text << (offset->getOffset() < 0 ? "" : "+") << offset->getOffset();
        } else {
            text << "(?)";  // a client's own function
        }
    }
}

string_t describe(const CUnitPtr& unit);

string_t describeTransformed(const CTransformedUnit& unit, const CUnitPtr& systemUnit) {
    detail::CTextStream text;
    text << '[' << toStdString(describe(systemUnit));
    appendSteps(text, *unit.toSystem());
    text << ']';
    return string_t(text.str());
}

// The product in the standard notation. If a factor has no text, which that notation would omit,
// the factors are described one by one.
string_t describeProduct(const CUnitPtr& unit, const CProductUnit& product) {
    string_t factors;
    bool isComplete = true;
    for (const CUnitRationalPower& factor : product.factors()) {
        if (!factors.empty()) {
            factors += "·";
        }
        isComplete = isComplete && !nameOf(factor.unit()).empty();
        CStandardUnitFormat::append(factors, describe(factor.unit()), factor.getPow(),
                                    factor.getRoot());
    }
    return isComplete ? unit->toString() : factors;
}

string_t describe(const CUnitPtr& unit) {
    const string_t name = nameOf(unit);
    if (!name.empty()) {
        return name;
    }
    if (const auto* product = dynamic_cast<const CProductUnit*>(unit.get())) {
        return describeProduct(unit, *product);
    }
    if (const auto* transformed = dynamic_cast<const CTransformedUnit*>(unit.get())) {
        return describeTransformed(*transformed, unit->getSystemUnit());
    }
    return "[unit without text]";
}

}  // namespace

std::ostream& operator<<(std::ostream& stream, const CUnitPtr& unit) {
    return stream << (unit ? toStdString(describe(unit)) : std::string("[no unit]"));
}

std::ostream& operator<<(std::ostream& stream, const CValueWithUnit& value) {
    return stream << value.value() << ' ' << value.unit();
}

}  // namespace mensor

#include "mensor_checked/NewUnit.h"

#include "mensor/UnitFormat.h"
#include "mensor_checked/Making.h"
#include "mensor_checked/Meaning.h"
#include "mensor_checked/Names.h"
#include "mensor_checked/Reading.h"
#include "mensor_checked/Rounding.h"
#include "mensor_checked/Values.h"
#include "mensor_checked/Verify.h"
#include "mensor_checked/Words.h"

namespace mensor {
namespace checked {

namespace {

CMeaning meaningOf(const CDefinition& definition) {
    if (definition.Row != nullptr) {
        return *definition.Row;
    }
    return checked::meaningOf(definition.Unit)
        .shifted(exact::CFraction::ofDouble(definition.Offset))
        .scaled(exact::CFactor(exact::CFraction::ofDouble(definition.Factor)));
}

// Asked before anything is built: what is built stays.
void requireFreeName(const CDefinition& definition) {
    const CUnitPtr holder = unitNamed(definition.Symbol);
    if (holder && !areSame(checked::meaningOf(holder), meaningOf(definition), holder)) {
        throw CIdentityError("the name " + quoted(definition.Symbol) + " belongs to " +
                                 describe(holder) + ", which means " + meaningInWords(holder),
                             holder);
    }
}

CUnitPtr build(const CDefinition& definition) {
    return definition.IsAlternate ? alternateUnit(definition.Symbol, definition.Unit)
                                  : affine(definition.Unit, definition.Factor, definition.Offset);
}

void check(const CDefinition& definition, const CUnitPtr& unit) {
    if (unit->getDimension() != definition.Unit->getDimension()) {
        throw CIdentityError(quoted(definition.Symbol) + " has the dimension " +
                                 describe(unit->getDimension()) + " in place of " +
                                 describe(definition.Unit->getDimension()),
                             unit);
    }
    verify(unit, meaningOf(definition));
    const CUnitPtr read = readUnit(definition.Symbol);
    if (read != unit) {
        throw CIdentityError(quoted(definition.Symbol) + " reads as " + describe(read), read);
    }
    if (!textOf(unit)) {
        throw CIdentityError(describe(unit) + " has no text that reads back as the same", unit);
    }
}

}  // namespace

CUnitPtr CNaming::define(const CDefinition& definition) {
    requireFreeName(definition);
    const CUnitPtr unit = build(definition);
    name(unit, definition.Symbol, unit == definition.Unit);
    check(definition, unit);
    return unit;
}

// A label serves for writing, too, and a unit has but one; the second name is an alias.
void CNaming::name(const CUnitPtr& unit, const string_t& symbol, bool isAnother) {
    if (CUnitFormat::unitFor(symbol) == unit) {
        return;
    }
    m_Given.emplace_back(symbol, unit);
    if (isAnother || !CUnitFormat::labelFor(unit).empty()) {
        alias(unit, symbol);
    } else {
        label(unit, symbol);
    }
}

CNaming::~CNaming() {
    for (const auto& [symbol, unit] : m_Given) {
        CUnitFormat::detach(unit, symbol);
    }
}

}  // namespace checked
}  // namespace mensor

#include "mensor_checked/NewUnit.h"

#include "mensor/UnitFormat.h"
#include "mensor/mensor_global.h"
#include "mensor_checked/Meaning.h"
#include "mensor_checked/Names.h"
#include "mensor_checked/Reading.h"
#include "mensor_checked/Rounding.h"
#include "mensor_checked/Values.h"
#include "mensor_checked/Verify.h"
#include "mensor_checked/making.h"
#include "mensor_checked/words.h"

namespace mensor::checked {

namespace {

CMeaning meaningOf(const CNewUnit& wanted) {
    if (wanted.Row != nullptr) {
        return *wanted.Row;
    }
    return checked::meaningOf(wanted.Unit)
        .shifted(exact::CFraction::ofDouble(wanted.Offset))
        .scaled(exact::CFactor(exact::CFraction::ofDouble(wanted.Factor)));
}

[[noreturn]] void throwHeld(const std::string& name, const CUnitPtr& holder) {
    throw CIdentityError("the name " + quoted(name) + " belongs to " + describe(holder) +
                             ", which means " + meaningInWords(holder),
                         holder);
}

// Checks the name before anything is built, because built units stay registered.
void requireFreeName(const CNewUnit& wanted) {
    const CUnitPtr holder = unitNamed(wanted.Symbol);
    if (holder && !areSame(checked::meaningOf(holder), meaningOf(wanted), holder)) {
        throwHeld(wanted.Symbol, holder);
    }
}

CUnitPtr build(const CNewUnit& wanted) {
    return wanted.IsAlternate ? alternateUnit(wanted.Symbol, wanted.Unit)
                              : affine(wanted.Unit, wanted.Factor, wanted.Offset);
}

void check(const CNewUnit& wanted, const CUnitPtr& unit) {
    verify(unit, meaningOf(wanted));
    readUnit(wanted.Symbol);  // throws if the name can be given but not read, such as "k°F"
    if (!textOf(unit)) {
        throw CIdentityError(describe(unit) + " has no text that reads back as the same", unit);
    }
}

}  // namespace

CUnitPtr CNaming::define(const CNewUnit& wanted) {
    requireFreeName(wanted);
    const CUnitPtr unit = build(wanted);
    name(unit, wanted.Symbol, unit == wanted.Unit);
    check(wanted, unit);
    return unit;
}

bool CNaming::isNewAlternate(const CNewUnit& wanted) {
    requireFreeName(wanted);
    const string_t symbol(wanted.Symbol.c_str());
    const CUnitPtr holder = unitNamed(wanted.Symbol);
    if (holder && holder != CUnit::searchSymbol(symbol)) {
        throwHeld(wanted.Symbol, holder);
    }
    const CUnitPtr unit = CUnit::searchHashCode(hashFromString(symbol));
    if (unit && unit->getSymbol() != symbol) {
        throw CIdentityError("the unit with the symbol " + quoted(wanted.Symbol) +
                                 " would be the same object as " + describe(unit) +
                                 " here, which means " + meaningInWords(unit),
                             unit);
    }
    return !unit;
}

// The first name becomes the label, by which the library also writes the unit. Further names are aliases.
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

}  // namespace mensor::checked

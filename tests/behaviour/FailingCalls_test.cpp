// FailingCalls_test.cpp: the state after a call that throws, for every call of the public interface
// that can throw. Symbols, labels and aliases are as before. So are the units, except after calls
// that compute products or dimensions before they fail (docs/reliability.md lists them).
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "mensor/AlternateUnit.h"
#include "mensor/BaseUnit.h"
#include "mensor/MultiplyConverter.h"
#include "mensor/NonSI.h"
#include "mensor/ProductUnit.h"
#include "mensor/SI.h"
#include "mensor/TransformedUnit.h"
#include "mensor/Unit.h"
#include "mensor/UnitFormat.h"
#include "mensor/ValueWithUnit.h"
#include "mensor_checked/Audit.h"
#include "mensor_checked/Differences.h"
#include "mensor_checked/Meaning.h"
#include "mensor_checked/OwnUnits.h"
#include "mensor_checked/Reading.h"
#include "mensor_checked/Values.h"
#include "mensor_checked/Verify.h"
#include "mensor_checked/making.h"
#include "support/ClientUnit.h"
#include "support/Matchers.h"

namespace mensor {
namespace {

enum eUnits { STAY, MAY_GROW };

struct FailingCall {
    const char* Name;
    eUnits Units;
    std::function<void()> Call;
};

// New units, for which nothing is cached. Each call runs in a process of its own.
CUnitPtr product() { return CUnit::fromString("cd²·mg"); }
CUnitPtr offset() { return CUnit::fromString("°C·m"); }
CUnitPtr none() { return {}; }

// The pointer has another class than its object. The library refuses that. A sanitizer that checks
// the class at each call would stop the test earlier.
__attribute__((no_sanitize("vptr"))) void setNoDimension(const CBaseUnitPtr& cast) {
    cast->setDimension(none(), {});
}

const std::vector<FailingCall>& calls() {
    static const auto& Calls = *new std::vector<FailingCall>{
        // Empty pointers.
        {"product_with_none", STAY, [] { SI::Meter() * none(); }},
        {"quotient_by_none", STAY, [] { SI::Meter() / none(); }},
        {"product_of_none", STAY, [] { none() * CUnitPtr(SI::Meter()); }},
        {"scaled_none", STAY, [] { none() * 2.0; }},
        {"shifted_none", STAY, [] { none() + 2.0; }},
        {"power_of_none", STAY, [] { none() ^ 2; }},
        {"label_of_none", STAY, [] { CUnitFormat::label(none(), "q"); }},
        {"alias_of_none", STAY, [] { CUnitFormat::alias(none(), "q"); }},
        {"prefixed_labels_of_none", STAY, [] { CUnitFormat::labelPrefixedUnit({KILO}, none()); }},
        {"converter_to_none", STAY, [] { product()->getConverterTo(none()); }},
        {"value_in_none", STAY, [] { product()->convertValueToUnit(1, none()); }},
        {"compatible_with_none", STAY, [] { product()->isCompatible(none()); }},
        {"converted_to_none", STAY, [] { Convert(1, SI::Meter()).to(none()); }},
        {"transformed_none", STAY,
         [] { CTransformedUnit::getInstance(none(), std::make_shared<CMultiplyConverter>(2)); }},
        {"transformed_by_none", STAY, [] { CTransformedUnit::getInstance(product(), nullptr); }},
        {"alternate_of_none", STAY, [] { CAlternateUnit::getInstance("q", none()); }},
        {"product_unit_of_none", STAY,
         [] { CProductUnit::getInstance({CUnitRationalPower(none(), 1, 1)}, {}); }},
        // The algebra.
        {"root_of_order_zero", STAY, [] { product()->root(0); }},
        {"smallest_power", STAY, [] { product()->pow(std::numeric_limits<int>::min()); }},
        {"power_out_of_range", STAY, [] { product()->pow(std::numeric_limits<int>::max()); }},
        {"root_out_of_range", STAY, [] { product()->root(65536)->root(65536); }},
        {"alternate_of_a_scaled_unit", STAY, [] { NonSI::Hour()->alternate("q"); }},
        {"alternate_with_the_symbol_of_a_base_unit", STAY, [] { SI::Newton()->alternate("m"); }},
        {"alternate_of_a_product_with_a_taken_symbol", MAY_GROW,
         [] { (SI::Candela() * SI::Newton() * SI::Mole())->alternate("m"); }},
        {"base_units_of_a_scaled_unit", STAY, [] { NonSI::Hour()->baseUnits(); }},
        {"base_units_of_a_product_with_a_scaled_unit", MAY_GROW,
         [] { CUnit::fromString("cd^5·kat·h")->baseUnits(); }},
        {"refused_symbol", STAY, [] { CClientUnit::make("m", 123454321)->canonical(); }},
        {"dimension_of_a_unit_that_is_none", STAY,
         [] {
             SI::Meter()->setDimension(none(), {});
             setNoDimension(CBaseUnit::getInstance("rad"));
         }},
        // Conversion.
        {"converter_of_incompatible_units", MAY_GROW,
         [] { product()->getConverterTo(SI::Meter()); }},
        {"converter_to_an_incompatible_text", MAY_GROW,
         [] { SI::Meter()->getConverterTo("cd³·kat"); }},
        {"converter_to_a_text_that_is_none", STAY, [] { SI::Meter()->getConverterTo("cd³·xyz"); }},
        {"value_in_an_incompatible_unit", MAY_GROW,
         [] { product()->convertValueToUnit(1, SI::Meter()); }},
        {"converted_to_an_incompatible_unit", MAY_GROW,
         [] { Convert(1, product()).to(SI::Meter()); }},
        {"converter_of_a_product_with_an_offset", MAY_GROW,
         [] { offset()->getConverterTo(offset()->getDimension()); }},
        {"scaled_product_with_an_offset", MAY_GROW, [] { offset()->multiply(3.0); }},
        // Names.
        {"label_that_is_a_symbol", STAY, [] { CUnitFormat::label(product(), "m"); }},
        {"label_of_another_unit", STAY, [] { CUnitFormat::label(product(), "km"); }},
        {"text_of_a_unit_without_one", STAY, [] { (SI::Meter() * 3.5)->toString(); }},
        {"ASCII_text_of_a_unit_without_one", STAY,
         [] { CASCIIUnitFormat::instance()->format(SI::Meter() * 3.5, ""); }},
        // Texts.
        {"unknown_name", STAY, [] { CUnit::fromString("cd²·kat·xyz"); }},
        {"unknown_name_first", STAY, [] { CUnit::fromString("xyz·cd²·kat"); }},
        {"root_of_zero_in_a_text", STAY, [] { CUnit::fromString("cd²·kat^2:0"); }},
        {"exponent_beyond_int", STAY, [] { CUnit::fromString("cd²·kat^99999999999"); }},
        {"exponents_that_overflow", STAY, [] { CUnit::fromString("cd^2147483647·kat·cd"); }},
        {"exponent_that_is_no_int", STAY, [] { CUnitFormat::parseExponent("99999999999"); }},
        // Values.
        {"value_without_a_blank", STAY, [] { CValueWithUnit::fromString("2cd²·kat"); }},
        {"value_without_a_number", MAY_GROW, [] { CValueWithUnit::fromString("x cd²·kat"); }},
        {"value_of_an_unknown_unit", STAY, [] { CValueWithUnit::fromString("2 cd²·xyz"); }},
        {"value_as_an_incompatible_unit", MAY_GROW,
         [] { CValueWithUnit(1, product()).valueAs(SI::Meter()); }},
        {"sum_of_incompatible_values", MAY_GROW,
         [] { CValueWithUnit(1, product()) + CValueWithUnit(1, SI::Meter()); }},
        {"difference_of_incompatible_values", MAY_GROW,
         [] { CValueWithUnit(1, product()) - CValueWithUnit(1, SI::Meter()); }},
        {"order_of_incompatible_values", MAY_GROW,
         [] { (void)(CValueWithUnit(1, product()) < CValueWithUnit(1, SI::Meter())); }},
        {"text_of_a_value_without_a_unit", STAY, [] { CValueWithUnit(1, none()).toString(); }},
        // The companion.
        {"checked_unknown_name", STAY, [] { checked::readUnit("cd²·kat·xyz"); }},
        {"checked_collision", MAY_GROW, [] { checked::readUnit("1/(m·K)"); }},
        {"checked_offset", MAY_GROW, [] { checked::readUnit("°C·kat²"); }},
        {"checked_value", MAY_GROW, [] { checked::readValue("x cd²·kat"); }},
        {"checked_value_that_is_not_finite", STAY,
         [] { checked::writeValue(std::numeric_limits<double>::quiet_NaN(), SI::Meter()); }},
        {"checked_product_with_an_offset", MAY_GROW,
         [] { checked::product(SI::Celsius(), SI::Katal()); }},
        {"checked_label", STAY, [] { checked::label(SI::Meter() * 3.5, "m"); }},
        {"checked_alias", STAY, [] { checked::alias(SI::Meter() * 3.5, "m"); }},
        {"checked_base_unit", STAY, [] { checked::baseUnit("N"); }},
        {"checked_scale_by_zero", STAY, [] { checked::scaled(SI::Meter(), 0); }},
        {"checked_difference", MAY_GROW,
         [] { checked::convertDifference(1, product(), SI::Meter()); }},
        {"checked_difference_beyond_the_doubles", STAY,
         [] { checked::convertDifference(1e308, CUnit::fromString("km"), SI::Meter()); }},
        {"definitions_with_a_stray_number", STAY, [] { checked::defineUnits("qa = 3 m 2\n"); }},
        {"definitions_with_an_unknown_unit", MAY_GROW,
         [] { checked::defineUnits("qa = 3 m\nqb = 4 qa\nqc = 2 xyz\n"); }},
        {"definitions_with_a_taken_name", MAY_GROW,
         [] { checked::defineUnits("qa = 3 cd²·kat\nm = 4 qa\n"); }},
    };
    return Calls;
}

class FailingCalls : public ::testing::TestWithParam<std::size_t> {};

TEST_P(FailingCalls, LeaveTheTablesUnchanged) {
    const FailingCall& call = calls()[GetParam()];
    product()->root(65536);  // a unit that exists before the call
    offset();
    SI::Candela() * SI::Newton();
    (SI::Candela() * SI::Newton()) * SI::Mole();
    CUnit::fromString("cd^5·kat·h");
    SI::Meter() * 3.5;
    const Tables before;
    const std::size_t units = CUnit::instances().size();
    EXPECT_ANY_THROW(call.Call());
    const Tables after;
    EXPECT_TRUE(after.namesAreThoseOf(before));
    if (call.Units == STAY) {
        EXPECT_EQ(after, before);
    } else {
        EXPECT_GE(CUnit::instances().size(), units);
    }
}

INSTANTIATE_TEST_SUITE_P(, FailingCalls, ::testing::Range(std::size_t{0}, calls().size()),
                         [](const auto& row) { return std::string(calls()[row.param].Name); });

// Virtual functions of clients that return an empty pointer.

TEST(AClientsKind, IsRefusedIfItHasNoDimension) {
    const auto unit = freshClientUnit();
    unit->CtxDimension = [] { return CUnitPtr(); };
    EXPECT_THROW(unit->getDimension(), std::logic_error);
    EXPECT_THROW(unit->getConverterTo(SI::Meter()), std::logic_error);
    EXPECT_THROW((SI::Meter() * unit)->getDimension(), std::logic_error);
    EXPECT_EQ(CUnit::dimensions().count(unit), 0U);
    unit->CtxDimension = nullptr;
    EXPECT_EQ(unit->getDimension(), unit);
}

TEST(AClientsKind, IsRefusedIfItHasNoConverter) {
    const auto unit = freshClientUnit();
    unit->CtxDimension = [] { return CUnitPtr(SI::Meter()); };
    unit->CtxToDimension = [] { return CConverterPtr(); };
    EXPECT_THROW(unit->getConverterTo(SI::Meter()), std::logic_error);
    EXPECT_THROW(unit->convertValueToUnit(1, SI::Meter()), std::logic_error);
    const CUnitPtr area = SI::Meter() * unit;
    EXPECT_THROW(area->convertValueToUnit(1, SI::Meter() ^ 2), std::logic_error);
    EXPECT_THROW(unit * 3.0, std::logic_error);
    unit->CtxToDimension = [] { return std::make_shared<CMultiplyConverter>(2); };
    EXPECT_EQ(unit->convertValueToUnit(1, SI::Meter()), 2);
    const CUnitPtr scaled = unit * 3.0;
    unit->CtxToDimension = [] { return CConverterPtr(); };
    EXPECT_THROW(scaled->getCtxToDimension(), std::logic_error);
}

TEST(AClientsKind, IsRefusedIfItHasNoSystemUnit) {
    const auto unit = freshClientUnit();
    unit->SystemUnit = unit->BaseUnits = [] { return CUnitPtr(); };
    const CUnitPtr area = SI::Meter() * unit;
    EXPECT_THROW(area->getSystemUnit(), std::logic_error);
    EXPECT_THROW(area->baseUnits(), std::logic_error);
    EXPECT_ANY_THROW(unit * 3.0);
    EXPECT_ANY_THROW(unit->alternate(freshSymbol()));
}

TEST(AClientsKind, IsRefusedIfItsConverterHasNoInverse) {
    class CNoInverse : public CConverter {
    public:
        CConverterPtr inverse() override { return nullptr; }
        double convert(double x) const override { return x; }
        double derivative(double) const override { return 1; }
        bool isLinear() const override { return true; }
        bool equals(CConverterPtr) const override { return false; }
    };
    const auto unit = freshClientUnit();
    unit->CtxDimension = [] { return CUnitPtr(SI::Meter()); };
    unit->CtxToDimension = [] { return std::make_shared<CNoInverse>(); };
    EXPECT_THROW(SI::Meter()->getConverterTo(unit), std::logic_error);
    EXPECT_EQ(unit->convertValueToUnit(3, SI::Meter()), 3);
}

TEST(AClientsKind, MayRegisterAUnitWithItsHashCodeInGetSymbol) {
    const string_t symbol = freshSymbol();
    const int hash = hashFromString(symbol);
    const auto unit = CClientUnit::make(symbol, hash), twin = CClientUnit::make(symbol, hash);
    unit->Symbol = [&] {
        twin->canonical();
        return symbol;
    };
    const std::size_t before = CUnit::instances().size();
    EXPECT_EQ(unit->canonical(), twin);
    EXPECT_EQ(CUnit::instances().size(), before + 1);
    EXPECT_EQ(CUnit::searchSymbol(symbol), twin);
    EXPECT_EQ(CUnit::searchHashCode(hash), twin);
    EXPECT_EQ(twin->canonical(), twin);
}

// Refused definitions leave the caches on, and their names are free.
TEST(RefusedDefinitions, LeaveNoNameAndDoNotSwitchTheCachesOff) {
    EXPECT_THROW(checked::defineUnits("qa = 3 m\nqb = 4 qa\nqc = 2 xyz\n"),
                 checked::CDefinitionError);
    EXPECT_NE(CUnitFormat::namesVersion(), 0U);
    EXPECT_THROW(CUnit::fromString("qa"), std::invalid_argument);
    EXPECT_FALSE(checked::tryReadUnit("qb"));
    EXPECT_EQ(toStdString(CUnitFormat::labelFor(SI::Meter() * 3.0)), "");
    checked::defineUnits("qa = 5 m\n");
    EXPECT_EQ(CUnit::fromString("qa"), SI::Meter() * 5.0);
}

TEST(DetachedNames, CanBeAttachedToOtherUnits) {
    const CUnitPtr unit = SI::Meter() * 3.5, other = SI::Meter() * 4.5;
    CUnitFormat::label(unit, "qa");
    CUnitFormat::alias(unit, "qb");
    CUnitFormat::detach(other, "qa");  // no name of this unit
    CUnitFormat::detach(unit, "m");
    EXPECT_EQ(CUnit::fromString("qa"), unit);
    CUnitFormat::detach(unit, "qa");
    EXPECT_THROW(CUnit::fromString("qa"), std::invalid_argument);
    EXPECT_EQ(toStdString(CUnitFormat::labelFor(unit)), "");
    EXPECT_EQ(CUnit::fromString("qb"), unit);
    CUnitFormat::detach(unit, "qb");
    EXPECT_THROW(CUnit::fromString("qb"), std::invalid_argument);
    EXPECT_EQ(CUnitFormat::label(other, "qa"), other);
    EXPECT_EQ(CUnit::fromString("qa"), other);
}

TEST(CheckedNotes, ContainTheCurrentLabelOfAUnit) {
    const auto notes = [] { return checked::tryReadUnit("N·mm").Notes; };
    checked::readUnit("mN·m");
    for (int i = 0; i < 3; ++i) {
        EXPECT_THAT(notes(), ::testing::ElementsAre(::testing::HasSubstr("\"mN·m\"")));
    }
    CUnitFormat::label(CUnit::fromString("mN·m"), "qt");
    EXPECT_THAT(notes(), ::testing::ElementsAre(::testing::HasSubstr("\"qt\"")));
}

}  // namespace
}  // namespace mensor

// Catalogue_test.cpp: the tables right after load: every name, the unit that it denotes, and no
// other names.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "mensor/ProductUnit.h"
#include "mensor/SI.h"
#include "mensor/TransformedUnit.h"
#include "mensor/UnitFormat.h"
#include "support/Catalogue.h"
#include "support/ClientUnit.h"
#include "support/Matchers.h"

namespace mensor {
namespace {
using ::testing::StrEq, ::testing::ThrowsMessage;

std::set<std::string> textsOf(const std::map<string_t, CUnitPtr>& table) {
    std::set<std::string> texts;
    for (const auto& entry : table) {
        texts.insert(text(entry.first));
    }
    return texts;
}

TEST(Catalogue, EveryNameDenotesItsUnit) {
    for (const CatalogueRow& row : catalogueRows()) {
        SCOPED_TRACE(row.Name);
        const CUnitPtr unit = CUnitFormat::unitFor(row.Name);
        ASSERT_NE(unit, nullptr);
        EXPECT_EQ(CUnit::fromString(row.Name), unit);
        EXPECT_EQ(text(CUnitFormat::labelFor(unit)), row.Name);
        EXPECT_THAT(unit, PrintsAs(row.Name));
        EXPECT_THAT(unit->getSystemUnit(), PrintsAs(row.System));
        EXPECT_EQ(unit->isSystemUnit(), row.isSystemUnit());
        EXPECT_EQ(text(unit->getSymbol()), row.isSystemUnit() ? row.Name : "");

        const auto transformed = std::dynamic_pointer_cast<CTransformedUnit>(unit);
        ASSERT_EQ(transformed == nullptr, row.isSystemUnit());
        const CConverterPtr toSystem =
            transformed ? transformed->toSystem() : unit->getConverterTo(unit->getSystemUnit());
        EXPECT_EQ(bitsOf(toSystem->derivative(0.0)), row.SlopeBits);
        EXPECT_EQ(bitsOf(toSystem->convert(1.0)), row.OneBits);
        EXPECT_THAT(toSystem->convert(0.0), HasBitsOf(row.Name == "°C" ? 273.15 : 0.0));
        EXPECT_THAT(unit, ConvertsTo(unit->getSystemUnit(), 2.5, row.toSystem(2.5)));
        EXPECT_EQ(unit->getSystemUnit()->convertValueToUnit(2.5, unit), row.fromSystem(2.5));
    }
}

TEST(Catalogue, NoOtherNameIsKnown) {
    std::set<std::string> symbols, labels;
    for (const CatalogueRow& row : catalogueRows()) {
        EXPECT_TRUE((row.isSystemUnit() ? symbols : labels).insert(row.Name).second) << row.Name;
    }
    EXPECT_EQ(textsOf(CUnit::symbols()), symbols);
    EXPECT_EQ(textsOf(CUnitFormat::labelUnitMap()), labels);
    EXPECT_EQ(symbols.size(), 29U);
    EXPECT_EQ(labels.size(), 569U);
}

TEST(Catalogue, TheTwoLabelTablesAreInverse) {
    EXPECT_EQ(CUnitFormat::unitLabelMap().size(), CUnitFormat::labelUnitMap().size());
    for (const auto& [label, unit] : CUnitFormat::labelUnitMap()) {
        const auto back = CUnitFormat::unitLabelMap().find(unit);
        ASSERT_NE(back, CUnitFormat::unitLabelMap().end()) << toStdString(label);
        EXPECT_EQ(text(back->second), text(label));
    }
}

TEST(Catalogue, HasNoAliases) { EXPECT_TRUE(CUnitFormat::aliasUnitMap().empty()); }

TEST(Catalogue, IdsCountTheRegistrationsFromTwo) {
    for (const CatalogueRow& row : catalogueRows()) {
        EXPECT_EQ(Inside::id(CUnitFormat::unitFor(row.Name)), row.Id) << row.Name;
    }
    EXPECT_EQ(Inside::id(SI::Ampere()), 2);  // the first registered unit
    EXPECT_EQ(Inside::id(CProductUnit::one()), 0);

    std::set<int> ids;
    for (const auto& instance : CUnit::instances()) {
        ids.insert(Inside::id(instance.second));
    }
    std::set<int> expected{0};  // the dimensionless unit is counted as 1, but keeps the id 0
    for (int id = 2; id <= static_cast<int>(CUnit::instances().size()); ++id) {
        expected.insert(id);
    }
    EXPECT_EQ(ids, expected);
}

// 652 units: the dimensionless unit, 29 with a symbol, 569 with a label, the aeon, and 52 products
// from definitions and dimensions. Registering a transformed unit computes its converter, so all
// 570 of them and their system units are in the tables of dimensions.
TEST(Catalogue, HasTheseNumbersOfUnitsNamesAndDimensions) {
    EXPECT_EQ(CUnit::instances().size(), 652U);
    EXPECT_EQ(CUnit::dimensions().size(), 601U);
    EXPECT_EQ(CUnit::toDimensions().size(), 601U);
    for (const auto& [unit, dimension] : CUnit::dimensions()) {
        EXPECT_EQ(CUnit::toDimensions().count(unit), 1U);
        EXPECT_EQ(CUnit::instances().at(dimension->hashCode()), dimension);
    }
}

TEST(Catalogue, TheDimensionlessUnitHasTheKeyZero) {
    EXPECT_EQ(CUnit::instances().at(0), CProductUnit::one());
    EXPECT_EQ(CProductUnit::one()->hashCode(), 0);
    for (const auto& [hash, unit] : CUnit::instances()) {
        EXPECT_EQ(unit->hashCode(), hash);
    }
}

TEST(Catalogue, TheDimensionlessUnitPrintsAsOneButTheTextOneIsUnknown) {
    EXPECT_THAT(CProductUnit::one(), PrintsAs("One"));
    EXPECT_EQ(CUnitFormat::unitFor("One"), nullptr);
    EXPECT_THAT([] { CUnit::fromString("One"); },
                ThrowsMessage<std::invalid_argument>(StrEq("Label: One not recognized")));
}

// Tests both notations, with all units that have a label or symbol and with all products.
TEST(Catalogue, EveryPrintedUnitReadsBackAsTheSameObject) {
    std::vector<CUnitPtr> units;
    for (const auto& instance : CUnit::instances()) {
        units.push_back(instance.second);
    }
    std::vector<CUnitPtr> unprintable;
    for (const CUnitPtr& unit : units) {
        if (unit == CProductUnit::one()) {
            continue;
        }
        try {
            const std::string standard = unit->toStdString();
            const string_t ascii = CASCIIUnitFormat::instance()->format(unit, string_t());
            EXPECT_EQ(CUnit::fromString(standard), unit) << standard;
            EXPECT_EQ(CUnit::fromString(ascii), unit) << toStdString(ascii);
        } catch (const std::invalid_argument& error) {
            EXPECT_THAT(error.what(), StrEq("Cannot format given Object as a Unit"));
            unprintable.push_back(unit);
        }
    }
    ASSERT_EQ(unprintable.size(), 1U);  // the aeon, which has no label
    EXPECT_THAT(unprintable[0], ConvertsTo(SI::Second(), 1, 31556952e9));
}

TEST(Catalogue, ProductsHaveTheOrderOfTheDefinitionThatMadeThem) {
    const struct {
        const char* Read;
        const char* Printed;
    } rows[] = {
        {"kg·m²/s²", "m²·kg/s²"},  // the base units of N·m: m·kg/s² times m
        {"kg·m/s²", "m·kg/s²"},    // newton
        {"A·s", "s·A"},            // coulomb
        {"s·V", "V·s"},            // weber
        {"m·N", "N·m"},            // joule
        {"sr·cd", "cd·sr"},        // lumen
        {"kg m^2 s^-3 A^-2", "m²·kg/(s³·A²)"},
    };
    for (const auto& row : rows) {
        EXPECT_THAT(CUnit::fromString(row.Read), PrintsAs(row.Printed)) << row.Read;
    }
}

// Both hash codes are the same: 3420 - 5 * 115 - 5 * 75 = 2795 - 5 * 65.
TEST(Catalogue, UnitsWithTheSameHashCodeAreOneUnitEvenIfDimensionsDiffer) {
    EXPECT_EQ(CUnit::fromString("kg/(s·K)"), CUnit::fromString("Wb/A"));
    EXPECT_THAT(CUnit::fromString("kg/(s·K)"), PrintsAs("Wb/A"));
    EXPECT_TRUE(CUnit::fromString("kg/(s·K)")->isCompatible(SI::Henry()));
}

}  // namespace
}  // namespace mensor

// UnitFormat_labels_test.cpp: labels, aliases, and which unit a name denotes.
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "mensor/BaseUnit.h"
#include "mensor/ProductUnit.h"
#include "mensor/SI.h"
#include "mensor/UnitFormat.h"
#include "support/Matchers.h"
#include "support/outcome.h"

namespace mensor {
namespace {

// A unit with neither symbol nor label. Its dimension is a new base unit.
CUnitPtr unnamedUnit() { return CBaseUnit::getInstance(freshSymbol())->multiply(2); }

std::string labelOf(const CUnitPtr& unit) { return text(CUnitFormat::labelFor(unit)); }

// Every entry of one label table has a counterpart in the other.
void expectMirroredLabels() {
    const auto& unitOf = CUnitFormat::labelUnitMap();
    const auto& labelOf = CUnitFormat::unitLabelMap();
    EXPECT_EQ(unitOf.size(), labelOf.size());
    for (const auto& [label, unit] : unitOf) {
        const auto mirrored = labelOf.find(unit);
        ASSERT_NE(mirrored, labelOf.end())
            << "the unit labelled " << toStdString(label) << " has no label";
        EXPECT_EQ(text(mirrored->second), text(label));
    }
}

TEST(UnitLabels, AreReadAndWritten) {
    const CUnitPtr unit = unnamedUnit();
    EXPECT_EQ(CUnitFormat::label(unit, "furlong"), unit);
    EXPECT_EQ(CUnitFormat::unitFor("furlong"), unit);
    EXPECT_EQ(labelOf(unit), "furlong");
    EXPECT_EQ(CUnit::fromString("furlong"), unit);
    EXPECT_THAT(unit, PrintsAs("furlong"));
    EXPECT_EQ(CUnit::searchSymbol("furlong"), nullptr) << "a label is not a symbol";
}

TEST(UnitLabels, ReplaceTheSymbolInTheTextOfTheUnit) {
    const CUnitPtr newton = SI::Newton();
    CUnitFormat::label(newton, "newton");
    EXPECT_EQ(labelOf(newton), "newton");
    EXPECT_EQ(CUnitFormat::unitFor("newton"), newton);
    EXPECT_EQ(CUnitFormat::unitFor("N"), newton) << "the symbol still reads as the unit";
    EXPECT_EQ(text(newton->getSymbol()), "N");
}

TEST(UnitLabels, MayNotBeAKnownSymbol) {
    const CUnitPtr unit = unnamedUnit();
    CUnitFormat::label(unit, "furlong");
    const Tables before;
    EXPECT_EQ(outcomeOf([&] { CUnitFormat::label(unit, "m"); }),
              "std::invalid_argument: Label: m is a known symbol");
    EXPECT_EQ(outcomeOf([&] { CUnitFormat::label(unit, "Ω"); }),
              "std::invalid_argument: Label: Ω is a known symbol");
    EXPECT_EQ(outcomeOf([] { CUnitFormat::label(SI::Meter(), "m"); }),
              "std::invalid_argument: Label: m is a known symbol")
        << "not even the unit's own";
    EXPECT_EQ(Tables(), before);
    EXPECT_EQ(labelOf(unit), "furlong");
}

TEST(UnitLabels, BelongToOneUnit) {
    const CUnitPtr first = unnamedUnit();
    const CUnitPtr second = unnamedUnit();
    CUnitFormat::label(first, "x y·²");
    CUnitFormat::label(second, "other");
    const Tables before;
    EXPECT_EQ(outcomeOf([&] { CUnitFormat::label(second, "x y·²"); }),
              "std::invalid_argument: Label: x y·² is attached to a different unit "
              "(must be detached first)");
    EXPECT_EQ(outcomeOf([&] { CUnitFormat::label(second, "km"); }),
              "std::invalid_argument: Label: km is attached to a different unit "
              "(must be detached first)");
    EXPECT_EQ(Tables(), before);
    EXPECT_EQ(CUnitFormat::unitFor("x y·²"), first);
    EXPECT_EQ(labelOf(second), "other");
}

TEST(UnitLabels, ReplaceTheFormerLabel) {
    const CUnitPtr unit = unnamedUnit();
    CUnitFormat::label(unit, "furlong");
    const std::size_t count = CUnitFormat::labelUnitMap().size();
    CUnitFormat::label(unit, "fathom");
    EXPECT_EQ(CUnitFormat::labelUnitMap().size(), count);
    EXPECT_EQ(CUnitFormat::unitFor("furlong"), nullptr);
    EXPECT_EQ(CUnitFormat::unitFor("fathom"), unit);
    EXPECT_EQ(labelOf(unit), "fathom");
    expectMirroredLabels();

    const CUnitPtr next = unnamedUnit();
    CUnitFormat::label(next, "furlong");
    EXPECT_EQ(CUnitFormat::unitFor("furlong"), next) << "a replaced label is free";
}

TEST(UnitLabels, LeaveTheirTextToAliasesAndSymbolsWhenReplaced) {
    const CUnitPtr unit = unnamedUnit();
    CUnitFormat::label(unit, "qzx");
    CUnitFormat::label(unit, "qzy");
    CUnitFormat::label(unit, "qzz");
    const CUnitPtr symbolX = CBaseUnit::getInstance("qzx");
    const CUnitPtr symbolY = CBaseUnit::getInstance("qzy");
    CUnitFormat::alias(SI::Meter(), "qzx");
    EXPECT_EQ(CUnitFormat::unitFor("qzx"), SI::Meter());
    EXPECT_EQ(CUnitFormat::unitFor("qzy"), symbolY);
    EXPECT_NE(symbolX, symbolY);
}

TEST(UnitLabels, AttachedTwiceHaveOneEntryInEachTable) {
    const CUnitPtr unit = unnamedUnit();
    CUnitFormat::label(unit, "furlong");
    const Tables before;
    EXPECT_EQ(CUnitFormat::label(unit, "furlong"), unit);
    EXPECT_EQ(Tables(), before);
    EXPECT_EQ(CUnitFormat::labelUnitMap().count("furlong"), 1U);
    EXPECT_EQ(CUnitFormat::unitLabelMap().count(unit), 1U);
}

TEST(UnitLabels, StayWhenALaterSymbolIsTheSameButCannotBeAttachedAgain) {
    const CUnitPtr unit = unnamedUnit();
    CUnitFormat::label(unit, "qzx");
    CBaseUnit::getInstance("qzx");
    EXPECT_EQ(CUnitFormat::unitFor("qzx"), unit) << "a label is found before a symbol";
    const Tables before;
    EXPECT_EQ(outcomeOf([&] { CUnitFormat::label(unit, "qzx"); }),
              "std::invalid_argument: Label: qzx is a known symbol");
    EXPECT_EQ(Tables(), before);
}

TEST(UnitLabels, TheEmptyLabelMovesToTheLastUnitThatGetsIt) {
    const CUnitPtr first = CBaseUnit::getInstance(freshSymbol());
    const std::string symbol = labelOf(first);
    const CUnitPtr second = unnamedUnit();
    EXPECT_EQ(CUnitFormat::unitFor(""), nullptr);

    CUnitFormat::label(first, "furlong");
    CUnitFormat::label(first, "");
    EXPECT_EQ(CUnitFormat::unitFor(""), first);
    EXPECT_EQ(CUnitFormat::unitFor("furlong"), nullptr);
    EXPECT_EQ(labelOf(first), "") << "the empty label replaces the symbol";
    expectMirroredLabels();

    CUnitFormat::label(second, "");
    EXPECT_EQ(CUnitFormat::unitFor(""), second);
    EXPECT_EQ(labelOf(second), "");
    EXPECT_EQ(labelOf(first), symbol) << "the empty label was taken away";
    expectMirroredLabels();

    CUnitFormat::label(second, "");
    EXPECT_EQ(CUnitFormat::unitFor(""), second);
    EXPECT_EQ(CUnit::fromString(""), CProductUnit::one())
        << "the empty text does not denote the unit with the empty label";
    expectMirroredLabels();
}

TEST(UnitLabels, TheTwoLabelTablesStayConsistent) {
    expectMirroredLabels();
    std::vector<CUnitPtr> units;
    for (int i = 0; i < 8; ++i) {
        units.push_back(unnamedUnit());
    }
    const std::vector<std::string> labels = {"", "la", "lb", "lc", "ld", "m"};
    std::map<std::string, std::size_t> holder;  // the index of the unit with the label
    std::uint32_t state = 20240229;
    int refusals = 0;
    for (int round = 0; round < 2000; ++round) {
        state = state * 1664525U + 1013904223U;
        const std::size_t unit = (state >> 8) % units.size();
        const std::string& label = labels[(state >> 16) % labels.size()];
        const auto held = holder.find(label);
        const bool isTaken = held != holder.end() && held->second != unit && !label.empty();
        if (label == "m" || isTaken) {
            ++refusals;
            EXPECT_THROW(CUnitFormat::label(units[unit], label), std::invalid_argument);
        } else {
            for (auto entry = holder.begin(); entry != holder.end();) {
                entry = entry->second == unit ? holder.erase(entry) : std::next(entry);
            }
            holder[label] = unit;
            CUnitFormat::label(units[unit], label);
        }
        for (const std::string& each : labels) {
            const auto expected = holder.find(each);
            const auto found = CUnitFormat::labelUnitMap().find(each);
            ASSERT_EQ(found == CUnitFormat::labelUnitMap().end(), expected == holder.end()) << each;
            if (expected != holder.end()) {
                ASSERT_EQ(found->second, units[expected->second]) << each;
            }
        }
        ASSERT_NO_FATAL_FAILURE(expectMirroredLabels());
    }
    EXPECT_GT(refusals, 500);
}

TEST(UnitAliases, AreReadButNotWrittenAndAUnitMayHaveMany) {
    const CUnitPtr unit = CBaseUnit::getInstance(freshSymbol());
    const std::string symbol = labelOf(unit);
    EXPECT_EQ(CUnitFormat::alias(unit, "qa"), unit);
    EXPECT_EQ(CUnitFormat::alias(unit, "qb"), unit);
    EXPECT_EQ(CUnitFormat::unitFor("qa"), unit);
    EXPECT_EQ(CUnitFormat::unitFor("qb"), unit);
    EXPECT_EQ(CUnit::fromString("qa·qb"), unit->pow(2));
    EXPECT_EQ(labelOf(unit), symbol);
    EXPECT_THAT(unit, PrintsAs(symbol));
    EXPECT_EQ(CUnitFormat::aliasUnitMap().size(), 2U) << "the catalogue has no aliases";
}

TEST(UnitAliases, TheFirstUnitKeepsAnAliasWithoutAnError) {
    const CUnitPtr first = unnamedUnit();
    const CUnitPtr second = unnamedUnit();
    CUnitFormat::alias(first, "q");
    const Tables before;
    EXPECT_EQ(CUnitFormat::alias(second, "q"), second);
    EXPECT_EQ(CUnitFormat::unitFor("q"), first);
    EXPECT_EQ(Tables(), before);
}

TEST(UnitAliases, MayBeTheSameAsSymbolsAndLabels) {
    const CUnitPtr unit = unnamedUnit();
    CUnitFormat::alias(unit, "m");   // a symbol
    CUnitFormat::alias(unit, "km");  // a label
    CUnitFormat::alias(unit, "");
    EXPECT_EQ(CUnitFormat::unitFor("m"), unit);
    EXPECT_EQ(CUnitFormat::unitFor("km"), SI::Kilo(SI::Meter()));
    EXPECT_EQ(CUnitFormat::unitFor(""), unit);
    EXPECT_THAT(SI::Meter(), PrintsAs("m"));
}

TEST(UnitAliases, ChangeTheMeaningOfTextsThatWereReadBefore) {
    EXPECT_EQ(CUnit::fromString("m"), SI::Meter());
    EXPECT_EQ(CUnit::fromString("m²"), SI::Meter()->pow(2));
    CUnitFormat::alias(SI::Second(), "m");
    EXPECT_EQ(CUnit::fromString("m"), SI::Second());
    EXPECT_EQ(CUnit::fromString("m²"), SI::Second()->pow(2));
    CUnitFormat::label(SI::Ampere(), "amp");
    EXPECT_EQ(CUnit::fromString("amp"), SI::Ampere());
    CUnitFormat::label(SI::Ampere(), "ampere");
    EXPECT_THROW(CUnit::fromString("amp"), std::invalid_argument);
}

TEST(UnitNames, AreLookedUpAsLabelThenAliasThenSymbol) {
    const CUnitPtr labelled = unnamedUnit();
    const CUnitPtr aliased = unnamedUnit();
    CUnitFormat::label(labelled, "qzx");
    const CUnitPtr withSymbol = CBaseUnit::getInstance("qzx");
    CUnitFormat::alias(aliased, "qzx");
    EXPECT_EQ(CUnitFormat::unitFor("qzx"), labelled);
    CUnitFormat::label(labelled, "");
    EXPECT_EQ(CUnitFormat::unitFor("qzx"), aliased);
    CUnitFormat::aliasUnitMap().erase("qzx");
    EXPECT_EQ(CUnitFormat::unitFor("qzx"), withSymbol);
}

TEST(UnitNames, AreComparedExactly) {
    for (const char* text : {"Km", "KM", " km", "km ", "m\u00B2", "kbit", "kmin", "meter", "One",
                             "μm" /* Greek mu */, "Ω" /* Greek omega */, "k"}) {
        EXPECT_EQ(CUnitFormat::unitFor(text), nullptr) << text;
    }
    EXPECT_EQ(CUnitFormat::unitFor("µm"), SI::Micro(SI::Meter()));
}

TEST(UnitNames, LabelForIsEmptyForAUnitWithoutLabelAndSymbol) {
    EXPECT_EQ(labelOf(SI::Meter()), "m");
    EXPECT_EQ(labelOf(SI::Newton()), "N");
    EXPECT_EQ(labelOf(SI::Celsius()), "°C");
    EXPECT_EQ(labelOf(CProductUnit::one()), "One");
    EXPECT_EQ(labelOf(SI::Meter() / SI::Second()), "");
    EXPECT_EQ(labelOf(unnamedUnit()), "");
}

TEST(PrefixedLabels, DenoteTheMultiplesOfTheUnit) {
    const CUnitPtr unit = CBaseUnit::getInstance(freshSymbol());
    const std::string symbol = labelOf(unit);
    CUnitFormat::labelPrefixedUnit({KILO, MICRO, DECA}, unit);
    EXPECT_EQ(CUnitFormat::unitFor("k" + symbol), unit->multiply(1000));
    EXPECT_EQ(CUnitFormat::unitFor("µ" + symbol), unit->multiply(1e-6));
    EXPECT_EQ(CUnitFormat::unitFor("da" + symbol), unit->multiply(10));
    EXPECT_THAT(CUnit::fromString("k" + symbol), ConvertsTo(unit, 2.5, 2500));
    EXPECT_EQ(CUnitFormat::unitFor("m" + symbol), nullptr) << "this prefix was not requested";
    expectMirroredLabels();
}

TEST(PrefixedLabels, TheLabelsOfTheMetreExistAlready) {
    const Tables before;
    CUnitFormat::labelPrefixedUnit({KILO, MILLI}, SI::Meter());
    EXPECT_EQ(Tables(), before);
    EXPECT_EQ(CUnitFormat::unitFor("km"), SI::Meter()->multiply(1000));
    EXPECT_EQ(CUnitFormat::unitFor("mm"), SI::Meter()->multiply(0.001));
}

TEST(PrefixedLabels, AnEmptyListOfPrefixesAttachesNoLabel) {
    const Tables before;
    CUnitFormat::labelPrefixedUnit({}, SI::Meter());
    EXPECT_EQ(Tables(), before);
}

TEST(PrefixedLabels, ConsistOfThePrefixAndTheTextOfTheUnit) {
    const CUnitPtr base = CBaseUnit::getInstance(freshSymbol());
    const CUnitPtr labelled = CUnitFormat::label(base->multiply(7), "furlong");
    CUnitFormat::labelPrefixedUnit({KILO}, labelled);
    EXPECT_EQ(CUnitFormat::unitFor("kfurlong"), labelled->multiply(1000));

    const CUnitPtr speed = base / SI::Second();
    const std::string text = "k" + speed->toStdString();
    CUnitFormat::labelPrefixedUnit({KILO}, speed);
    EXPECT_THAT(speed->multiply(1000), PrintsAs(text));
    EXPECT_EQ(CUnitFormat::unitFor(text), speed->multiply(1000));
}

TEST(PrefixedLabels, LabelsAttachedBeforeAnErrorStay) {
    const CUnitPtr unit = CBaseUnit::getInstance(freshSymbol());
    const std::string symbol = labelOf(unit);
    const CUnitPtr other = CUnitFormat::label(unnamedUnit(), "m" + symbol);
    EXPECT_EQ(outcomeOf([&] {
                  CUnitFormat::labelPrefixedUnit({KILO, MILLI, MICRO}, unit);
              }),
              "std::invalid_argument: Label: m" + symbol +
                  " is attached to a different unit (must be detached first)");
    EXPECT_EQ(CUnitFormat::unitFor("k" + symbol), unit->multiply(1000));
    EXPECT_EQ(CUnitFormat::unitFor("m" + symbol), other);
    EXPECT_EQ(CUnitFormat::unitFor("µ" + symbol), nullptr) << "the error ends the list";
    expectMirroredLabels();

    CBaseUnit::getInstance("G" + symbol);
    EXPECT_EQ(outcomeOf([&] {
                  CUnitFormat::labelPrefixedUnit({MEGA, GIGA, TERA}, unit);
              }),
              "std::invalid_argument: Label: G" + symbol + " is a known symbol");
    EXPECT_EQ(CUnitFormat::unitFor("M" + symbol), unit->multiply(1e6));
    EXPECT_EQ(CUnitFormat::unitFor("T" + symbol), nullptr);
    expectMirroredLabels();
}

TEST(PrefixedLabels, NeedAUnitWithAText) {
    const CUnitPtr unit = unnamedUnit();
    const Tables before;
    EXPECT_EQ(outcomeOf([&] { CUnitFormat::labelPrefixedUnit({KILO}, unit); }),
              "std::invalid_argument: Cannot format given Object as a Unit");
    EXPECT_EQ(Tables(), before);
}

TEST(LabelTables, AreTheSameObjectsAtEachCall) {
    EXPECT_EQ(&CUnitFormat::labelUnitMap(), &CUnitFormat::labelUnitMap());
    EXPECT_EQ(&CUnitFormat::unitLabelMap(), &CUnitFormat::unitLabelMap());
    EXPECT_EQ(&CUnitFormat::aliasUnitMap(), &CUnitFormat::aliasUnitMap());
    CUnitFormat::label(unnamedUnit(), "furlong");
    EXPECT_EQ(CUnitFormat::labelUnitMap().count("furlong"), 1U);
}

TEST(Names, AreTheNamesThatUnitForFindsInItsOrder) {
    const CUnitPtr labelled = unnamedUnit();
    CUnitFormat::alias(SI::Second(), "qq");
    CUnitFormat::label(labelled, "qq");
    CUnitFormat::alias(SI::Second(), "kg");
    CUnitFormat::alias(SI::Second(), "qr");
    const auto names = CUnitFormat::names();
    EXPECT_EQ(names.at("qq"), labelled);
    EXPECT_EQ(names.at("kg"), SI::Second());
    EXPECT_EQ(names.at("qr"), SI::Second());
    EXPECT_EQ(names.at("km"), SI::Kilo(SI::Meter()));
    for (const auto& [name, unit] : names) {
        EXPECT_EQ(CUnitFormat::unitFor(name), unit) << text(name);
    }
    EXPECT_EQ(names.size(), CUnitFormat::labelUnitMap().size() + CUnit::symbols().size() + 1)
        << "all labels, all symbols, and the alias \"qr\", since the other aliases are labels or "
           "symbols";
}

TEST(Names, TheVersionChangesWhenANameMayDenoteAnotherUnit) {
    const unsigned version = CUnitFormat::namesVersion();
    EXPECT_NE(version, 0U);
    CUnit::fromString("kg·m/s^5");
    CUnitFormat::names();
    SI::Meter()->multiply(42);
    EXPECT_EQ(CUnitFormat::namesVersion(), version);
    CUnitFormat::alias(SI::Meter(), "qq");
    const unsigned aliased = CUnitFormat::namesVersion();
    EXPECT_NE(aliased, version);
    CUnitFormat::label(unnamedUnit(), "qr");
    EXPECT_NE(CUnitFormat::namesVersion(), aliased);
    EXPECT_NE(CUnitFormat::namesVersion(), version);
    CUnitFormat::aliasUnitMap();
    EXPECT_EQ(CUnitFormat::namesVersion(), 0U)
        << "from here on the client may change them without notice";
}

}  // namespace
}  // namespace mensor

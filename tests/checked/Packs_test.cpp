// Packs_test.cpp: each unit of a pack converts as its row and its source say. No name is known before its
// pack is registered. A pack that collides with another unit is refused and names that unit.
#include "mensor_checked/Packs.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "mensor/NonSI.h"
#include "mensor/SI.h"
#include "mensor/UnitFormat.h"
#include "mensor_checked/Audit.h"
#include "mensor_checked/Differences.h"
#include "mensor_checked/OwnUnits.h"
#include "mensor_checked/Values.h"
#include "mensor_checked/making.h"
#include "mensor_checked/registration_limit.h"
#include "support/ClientUnit.h"
#include "support/Matchers.h"

namespace mensor::checked {
namespace {

using ::testing::ElementsAreArray, ::testing::Eq, ::testing::HasSubstr, ::testing::IsEmpty;

constexpr ePack Most[] = {ePack::SI,      ePack::CUSTOMARY, ePack::US,
                          ePack::SCIENCE, ePack::OFFSETS,   ePack::COUNTING};

void registerMost() {
    for (const ePack pack : Most) {
        registerPack(pack);
    }
}

std::vector<CPackUnit> unitsOf(std::initializer_list<ePack> packs) {
    std::vector<CPackUnit> units;
    for (const CPackUnit& row : packUnits()) {
        if (std::find(packs.begin(), packs.end(), row.Pack) != packs.end()) {
            units.push_back(row);
        }
    }
    return units;
}

// Expects the unit, as the library's own parser reads it, to convert as its row says.
void expectToBeAsTheTableSays(const CPackUnit& row) {
    SCOPED_TRACE(row.Symbol);
    const CUnitPtr unit = CUnit::fromString(std::string(row.Symbol));
    const CUnitPtr parent = CUnit::fromString(row.Unit == "One" ? "" : std::string(row.Unit));
    EXPECT_TRUE(unit->isCompatible(parent));
    EXPECT_EQ(unit->getDimension(), parent->getDimension());
    EXPECT_EQ(bitsOf(unit->convertValueToUnit(0, parent)), bitsOf(row.Offset));
    const double one = unit->convertValueToUnit(1, parent);
    if (parent == parent->getSystemUnit()) {  // a single rounding
        EXPECT_EQ(bitsOf(one), bitsOf(row.Factor + row.Offset)) << exactly(one);
    } else {
        EXPECT_NEAR(one, row.Factor, 4e-16 * row.Factor);
    }
    EXPECT_EQ(readUnit(row.Symbol), unit);
    const auto written = textOf(unit);
    ASSERT_TRUE(written);
    EXPECT_EQ(readUnit(*written), unit);
    using exact::CFraction;
    EXPECT_NO_THROW(verify(unit, meaningOf(parent)
                                     .shifted(CFraction::ofDouble(row.Offset))
                                     .scaled(exact::CFactor(CFraction::ofDouble(row.Factor)))));
}

TEST(Packs, NoNameIsKnownBeforeItsPackIsRegistered) {
    for (const CPackUnit& row : packUnits()) {
        EXPECT_EQ(CUnitFormat::unitFor(std::string(row.Symbol)), nullptr) << row.Symbol;
    }
}

TEST(Packs, EachUnitConvertsByItsFactorAndOffset) {
    registerMost();
    for (const CPackUnit& row : packUnits()) {
        if (row.Pack != ePack::IMPERIAL) {
            expectToBeAsTheTableSays(row);
        }
    }
}

// Expects the bits in data/packs.tsv. Programs rely on them, so a change of a definition must not change
// them.
void expectTheRecordedBits(const std::set<std::string>& packs) {
    std::ifstream file(MENSOR_TEST_DATA "/packs.tsv");
    int count = 0;
    for (std::string line; std::getline(file, line);) {
        std::istringstream fields(line);
        std::vector<std::string> row;
        for (std::string field; std::getline(fields, field, '\t');) {
            row.push_back(field);
        }
        if (line[0] == '#' || packs.count(row.at(0)) == 0) {
            continue;
        }
        SCOPED_TRACE(line);
        ++count;
        const CUnitPtr unit = CUnit::fromString(row.at(1));
        const CUnitPtr system = unit->getSystemUnit();
        const auto bits = [](const std::string& hex) { return std::stoull(hex, nullptr, 16); };
        EXPECT_EQ(unit->hashCode(), std::stoi(row.at(2)));
        EXPECT_EQ(text(CUnitFormat::labelFor(unit)), row.at(3));
        EXPECT_THAT(system, PrintsAs(row.at(4)));
        EXPECT_EQ(bitsOf(unit->convertValueToUnit(0.0, system)), bits(row.at(5)));
        EXPECT_EQ(bitsOf(unit->convertValueToUnit(1.0, system)), bits(row.at(6)));
        EXPECT_EQ(bitsOf(unit->convertValueToUnit(0.1, system)), bits(row.at(7)));
        EXPECT_EQ(bitsOf(unit->convertValueToUnit(1e22, system)), bits(row.at(8)));
        EXPECT_EQ(bitsOf(system->convertValueToUnit(1.0, unit)), bits(row.at(9)));
        EXPECT_EQ(bitsOf(system->convertValueToUnit(0.1, unit)), bits(row.at(10)));
    }
    std::size_t expected = 0;
    for (const CPackUnit& row : packUnits()) {
        expected += packs.count(nameOf(row.Pack));
    }
    EXPECT_EQ(count, static_cast<int>(expected));
}

TEST(Packs, TheBitsOfConversionsDoNotChange) {
    registerMost();
    expectTheRecordedBits({"si", "customary", "us", "science", "offsets", "counting"});
}

TEST(Packs, TheBitsOfImperialConversionsDoNotChange) {
    registerPack(ePack::IMPERIAL);
    expectTheRecordedBits({"customary", "imperial"});
}

TEST(Packs, EachImperialUnitConvertsByItsFactorAndOffset) {
    registerPack(ePack::IMPERIAL);
    for (const CPackUnit& row : unitsOf({ePack::CUSTOMARY, ePack::IMPERIAL})) {
        expectToBeAsTheTableSays(row);
    }
}

TEST(Packs, CanBeRegisteredInReverseOrder) {
    for (auto pack = std::rbegin(Most); pack != std::rend(Most); ++pack) {
        registerPack(*pack);
    }
    std::vector<std::string> names;
    for (const CPackUnit& row : packUnits()) {
        if (row.Pack != ePack::IMPERIAL) {
            expectToBeAsTheTableSays(row);
            names.emplace_back(row.Symbol);
        }
    }
    EXPECT_THAT(audit(names), IsEmpty());
}

// No product among the everyday units has the identity of a unit of a pack.
TEST(Packs, CanBeRegisteredAfterTheEverydayUnits) {
    std::ifstream everyday(MENSOR_TEST_DATA "/everyday.tsv");
    int count = 0;
    for (std::string line; std::getline(everyday, line);) {
        count += tryReadUnit(line.substr(0, line.find('\t'))) ? 1 : 0;
    }
    EXPECT_GT(count, 500);
    registerMost();
    for (const CPackUnit& row : packUnits()) {
        if (row.Pack != ePack::IMPERIAL) {
            expectToBeAsTheTableSays(row);
        }
    }
}

TEST(Packs, NamesOfTheLibraryStay) {
    const auto labels = CUnitFormat::labelUnitMap();
    registerMost();
    for (const auto& [label, unit] : labels) {
        EXPECT_EQ(CUnitFormat::unitFor(label), unit) << text(label);
        EXPECT_EQ(text(CUnitFormat::labelFor(unit)), text(label));
    }
}

// Relations between units that do not follow directly from their own definitions.
TEST(Packs, UnitsHaveThePublishedRelations) {
    registerMost();
    registerPack(ePack::SCIENCE);
    NonSI::Psi();
    struct Row {
        const char* Value;
        const char* Unit;
        double Expected;
    };
    const Row rows[] = {
        {"1 ft", "in", 12},
        {"1 yd", "ft", 3},
        {"1 ton", "lb", 2000},
        {"1 qt", "pt", 2},
        {"1 pt", "fl_oz", 16},
        {"1 TWh", "GWh", 1000},
        {"1 GWh", "MWh", 1000},
        {"1 MWh", "kWh", 1000},
        {"1 kWh", "Wh", 1000},
        {"1 TeV", "GeV", 1000},
        {"1 GeV", "MeV", 1000},
        {"1 keV", "eV", 1000},
        {"1 eV", "meV", 1000},
        {"1 Ah", "mAh", 1000},
        {"1 TiB", "GiB", 1024},
        {"1 Tbit", "Gbit", 1000},
        {"1 Gbit", "Mbit", 1000},
        {"1 Gl", "Ml", 1000},
        {"1 Ml", "kl", 1000},
        {"1 hl", "dal", 10},
        {"1 bar_g", "mbar_g", 1000},
        {"1 bar_g", "kPa_g", 100},
        {"1 kPa_g", "Pa_g", 1000},
        {"1 mi", "in", 63360},
        {"1 mi", "yd", 1760},
        {"1 nmi", "m", 1852},
        {"640 ac", "mi²", 1},
        {"1 ac", "ft²", 43560},
        {"1 lb", "oz", 16},
        {"1 lb", "gr", 7000},
        {"1 st", "lb", 14},
        {"1 ton_US", "lb", 2000},
        {"1 ton_UK", "st", 160},
        {"1 gal_US", "in³", 231},
        {"1 gal_US", "qt_US", 4},
        {"1 qt_US", "pt_US", 2},
        {"1 pt_US", "fl_oz_US", 16},
        {"1 gal_UK", "qt_UK", 4},
        {"1 qt_UK", "pt_UK", 2},
        {"1 pt_UK", "fl_oz_UK", 20},
        {"1 gal_UK", "l", 4.54609},
        {"1 bbl", "gal_US", 42},
        {"1 gal", "gal_US", 1},
        {"1 lbf", "lb·grav", 1},
        {"1 kgf", "kg·grav", 1},
        {"1 hp", "ft·lbf/s", 550},
        {"1 dyn", "g·cm/s²", 1},
        {"1 erg", "dyn·cm", 1},
        {"760 Torr", "atm", 1},
        {"1 kcal", "cal", 1000},
        {"1 BTU/lb", "cal_IT/g", 5.0 / 9.0},
        {"1 kn", "nmi/h", 1},
        {"1 mph", "mi/h", 1},
        {"1 kWh", "MJ", 3.6},
        {"1 Ah", "C", 3600},
        {"1 eV", "J", 1.602176634e-19},
        {"1 GeV", "keV", 1e6},
        {"1 ly", "au", 9460730472580800.0 / 149597870700.0},
        {"1 pc", "ly", 3.261563777167433},
        {"1 pc", "au", 206264.80624709636},
        {"1 ha", "ac", 2.471053814671653},
        {"1 t", "kg", 1000},
        {"1 u", "Da", 1},
        {"1 u", "g", 1.66053906660e-24},
        {"1 Ci", "GBq", 37},
        {"100 rem", "Sv", 1},
        {"100 rd", "Gy", 1},
        {"1 G", "µT", 100},
        {"1 P", "g/(cm·s)", 1},
        {"1 cP", "mPa·s", 1},
        {"1 cSt", "mm²/s", 1},
        {"1 Å", "nm", 0.1},
        {"60 rpm", "rev/s", 1},
        {"1 MiB", "KiB", 1024},
        {"1 GiB", "MiB", 1024},
        {"1 KiB", "kbit", 8.192},
        {"1 %", "ppm", 1e4},
        {"1 ‰", "%", 0.1},
        {"1 ppm", "ppb", 1000},
        {"1 hl", "L", 100},
        {"1 m³", "kL", 1},
        {"1 hPa", "mbar", 1},
        {"1 K", "mK", 1000},
        {"1 klm", "lm", 1000},
        {"1 Mbit", "kbit", 1000},
        {"212 °F", "°C", 100},
        {"32 °F", "K", 273.15},
        {"-40 °F", "°C", -40},
        {"0 bar_g", "atm", 1},
        {"1 bar_g", "bar", 2.01325},
        {"-1 kPa_g", "Pa", 100325},
        {"0 psi_g", "lbf/in²", 14.695948775513},
    };
    for (const Row& row : rows) {
        const CValueWithUnit value = readValue(row.Value);
        EXPECT_NEAR(value.valueAs(readUnit(row.Unit)), row.Expected, 4e-13 * std::abs(row.Expected))
            << row.Value << " in " << row.Unit;
    }
}

TEST(Packs, DifferencesConvertWithoutTheOffset) {
    registerPack(ePack::OFFSETS);
    EXPECT_DOUBLE_EQ(convertDifference(9, readUnit("°F"), SI::Celsius()), 5);
    EXPECT_DOUBLE_EQ(convertDifference(1, readUnit("bar_g"), NonSI::Bar()), 1);
    EXPECT_DOUBLE_EQ(convertDifference(7, readUnit("Pa_g"), SI::Pascal()), 7);
}

TEST(Packs, RegisteringAgainChangesNothing) {
    registerMost();
    const Tables before;
    registerMost();
    EXPECT_EQ(Tables(), before);
}

TEST(Packs, USAndImperialExcludeEachOther) {
    registerPack(ePack::US);
    const Tables before;
    try {
        registerPack(ePack::IMPERIAL);
        FAIL();
    } catch (const CIdentityError& e) {
        EXPECT_STREQ(e.what(),
                     "the pack \"imperial\" is refused because of its unit \"ton\": the name "
                     "\"ton\" belongs "
                     "to \"ton_US\", which means \"907.18474 kg\"");
        EXPECT_EQ(e.inTheWay(), readUnit("ton_US"));
    }
    EXPECT_EQ(Tables(), before);
}

// The identity ignores offsets, so only one unit can have this size: the first one.
TEST(Packs, ThePackOffsetsIsRefusedAfterTheRankine) {
    const CUnitPtr rankine = label(scaled(SI::Kelvin(), 5.0 / 9.0), "°R");
    try {
        registerPack(ePack::OFFSETS);
        FAIL();
    } catch (const CIdentityError& e) {
        EXPECT_THAT(e.what(),
                    HasSubstr("the pack \"offsets\" is refused because of its unit \"°F\": "));
        EXPECT_THAT(e.what(),
                    HasSubstr("but the object is \"°R\", which means \"0.5555555555555556 K\""));
        EXPECT_EQ(e.inTheWay(), rankine);
    }
    EXPECT_EQ(CUnitFormat::unitFor("°F"), nullptr);
    EXPECT_EQ(CUnitFormat::unitFor("bar_g"), nullptr);
}

TEST(Packs, APackIsRefusedIfAUnitHasTheSameFactorInSinglePrecision) {
    const CUnitPtr almost = label(scaled(SI::Meter(), 0.30480001), "qft");
    try {
        registerPack(ePack::CUSTOMARY);
        FAIL();
    } catch (const CIdentityError& e) {
        EXPECT_THAT(e.what(),
                    HasSubstr("the pack \"customary\" is refused because of its unit \"ft\": "));
        EXPECT_EQ(e.inTheWay(), almost);
    }
    EXPECT_EQ(CUnitFormat::unitFor("in"), nullptr) << "a name stayed";
    EXPECT_EQ(text(CUnitFormat::labelFor(almost)), "qft");
}

TEST(Packs, APackIsRefusedIfANameHasAnotherMeaning) {
    const CUnitPtr tesla = alias(SI::Tesla(), "G");
    try {
        registerPack(ePack::SCIENCE);
        FAIL();
    } catch (const CIdentityError& e) {
        EXPECT_THAT(e.what(),
                    HasSubstr("because of its unit \"G\": the name \"G\" belongs to \"T\""));
        EXPECT_EQ(e.inTheWay(), tesla);
    }
    EXPECT_EQ(CUnitFormat::unitFor("eV"), nullptr) << "a name stayed";
    EXPECT_EQ(text(CUnitFormat::labelFor(CUnit::fromString("Mg"))), "Mg");
    EXPECT_EQ(CUnitFormat::unitFor("t"), nullptr) << "an alias stayed";
}

// The registry cannot remove the symbol of an alternate unit.
TEST(Packs, NoSymbolOfAnAlternateUnitStaysWhenAPackIsRefused) {
    const CUnitPtr inTheWay =
        CClientUnit::make("qBaud", hashFromString(string_t("Bd")))->canonical();
    const Tables before;
    try {
        registerPack(ePack::COUNTING);
        FAIL();
    } catch (const CIdentityError& e) {
        EXPECT_THAT(e.what(),
                    HasSubstr("because of its unit \"Bd\": the unit with the symbol \"Bd\" "
                              "would be the same object as \"qBaud\" here"));
        EXPECT_EQ(e.inTheWay(), inTheWay);
    }
    EXPECT_TRUE(Tables().namesAreThoseOf(before));
}

TEST(Packs, NoSymbolOfAnAlternateUnitStaysWhenAnotherUnitHasTheNameOfTheLastOne) {
    CUnitFormat::alias(readUnit("1/s"), "Bd");
    const Tables before;
    try {
        registerPack(ePack::COUNTING);
        FAIL();
    } catch (const CIdentityError& e) {
        EXPECT_THAT(e.what(), HasSubstr("the name \"Bd\" belongs to "));
    }
    EXPECT_TRUE(Tables().namesAreThoseOf(before));
}

TEST(Packs, NoSymbolOfAnAlternateUnitStaysWhenTheLimitOfNewUnitsIsReached) {
    const Tables before;
    for (std::size_t limit = 0;; ++limit) {
        setRegistrationLimit(limit);
        try {
            registerPack(ePack::COUNTING);
            break;
        } catch (const CIdentityError&) {
            EXPECT_TRUE(Tables().namesAreThoseOf(before)) << limit;
        }
    }
    EXPECT_NE(CUnit::searchSymbol("Bd"), nullptr);
}

TEST(Packs, RegisteringAPackAgainNeedsNoRoomForNewUnits) {
    alternateUnit("cps", readUnit("1/s"));
    setRegistrationLimit(registeredUnits() + 1000);
    registerPack(ePack::COUNTING);
    setRegistrationLimit(registeredUnits());
    registerPack(ePack::COUNTING);
    EXPECT_EQ(readUnit("Bd")->getSymbol(), string_t("Bd"));
}

TEST(Packs, ARefusedPackCanBeRegisteredOnceTheNameIsFree) {
    CUnitFormat::alias(SI::Tesla(), "G");
    EXPECT_THROW(registerPack(ePack::SCIENCE), CIdentityError);
    CUnitFormat::aliasUnitMap().erase("G");
    registerPack(ePack::SCIENCE);
    for (const CPackUnit& row : unitsOf({ePack::SCIENCE})) {
        expectToBeAsTheTableSays(row);
    }
}

TEST(Packs, RefusedUnitsCollideAsListed) {
    registerMost();
    for (const CRefusedUnit& row : refusedUnits()) {
        SCOPED_TRACE(row.Symbol);
        const CUnitPtr inTheWay = readUnit(row.InTheWay);
        try {
            affine(readUnit(row.Unit), row.Factor, row.Offset);
            ADD_FAILURE();
        } catch (const CIdentityError& e) {
            EXPECT_EQ(e.inTheWay(), inTheWay);
        }
    }
}

TEST(Packs, AreFoundByTheirNames) {
    for (const ePack pack : allPacks()) {
        EXPECT_EQ(packNamed(nameOf(pack)), pack);
        EXPECT_STRNE(descriptionOf(pack), "");
        EXPECT_EQ(unitsOf({pack}).empty(), pack == ePack::EVERYDAY) << "which has names only";
    }
    EXPECT_EQ(packNamed("Customary"), std::nullopt);
    EXPECT_THROW(registerPack(static_cast<ePack>(99)), std::invalid_argument);
}

// Rows of docs/packs.md.

std::string rowOfDocs(const CPackUnit& row) {
    std::ostringstream line;
    line << "| `" << row.Symbol << "` | ";
    if (row.IsAlternate) {
        line << "alternate unit of " << row.Unit;
    } else {
        line << row.Definition;
    }
    line << " | " << row.Name << " | " << row.Source << " |";
    return line.str();
}

std::string rowOfDocs(const CRefusedUnit& row) {
    return std::string("| `") + row.Symbol + "` | `" + row.InTheWay + "` | " + row.Why + " |";
}

TEST(Packs, ThePageListsAllUnitsOfTheTable) {
    std::vector<std::string> expected;
    for (const ePack pack : allPacks()) {
        for (const CPackUnit& row : packUnits()) {
            if (row.Pack == pack) {
                expected.push_back(rowOfDocs(row));
            }
        }
    }
    for (const CRefusedUnit& row : refusedUnits()) {
        expected.push_back(rowOfDocs(row));
    }
    std::vector<std::string> listed;
    std::ifstream docs(MENSOR_DOCS "/packs.md");
    for (std::string line; std::getline(docs, line);) {
        if (line.rfind("| `", 0) == 0) {
            listed.push_back(line);
        }
    }
    EXPECT_THAT(listed, ElementsAreArray(expected));
}

}  // namespace
}  // namespace mensor::checked

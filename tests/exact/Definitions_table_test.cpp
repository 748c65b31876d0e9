// Definitions_table_test.cpp: every row of definitions.def has the meaning of that unit in the registry
// and in its source, and the library reads it as an independent reader does.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "exact/DefinitionTable.h"
#include "mensor/NonSI.h"
#include "mensor/UnitFormat.h"
#include "mensor_checked/Packs.h"
#include "mensor_exact/Certificate.h"
#include "mensor_exact/Definitions.h"
#include "support/Catalogue.h"
#include "support/Matchers.h"

namespace mensor {
namespace {

using ::testing::ElementsAre;

// The labels and symbols of libmensor, without the prefixed degrees Celsius.
std::set<std::string> namesAfterLoad() {
    std::set<std::string> names;
    const std::string celsius = "°C";
    const auto take = [&](const auto& table) {
        for (const auto& entry : table) {
            const std::string name = text(entry.first);
            const std::size_t at = name.find(celsius);
            if (at == std::string::npos || at == 0) {
                names.insert(name);
            }
        }
    };
    take(CUnit::symbols());
    take(CUnitFormat::labelUnitMap());
    return names;
}

TEST(DefinitionTable, HasARowForEveryLabelAndSymbolOfTheRegistry) {
    const DefinitionTable table;
    const std::set<std::string> names = namesAfterLoad();
    EXPECT_EQ(names.size(), 569U + 29U - 20U);
    for (const std::string& name : names) {
        const DefinitionRow* const row = table.find(name);
        ASSERT_NE(row, nullptr) << name;
        EXPECT_EQ(row->Set, "CATALOGUE") << name;
    }
}

TEST(DefinitionTable, HasNoOtherNamesInTheCatalogueExceptPsi) {
    const std::set<std::string> names = namesAfterLoad();
    std::vector<std::string> unknown;
    for (const DefinitionRow& row : definitionRows()) {
        if (row.Set == "CATALOGUE" && names.count(row.Name) == 0) {
            unknown.push_back(row.Name);
        }
    }
    EXPECT_THAT(unknown, ElementsAre("psi"));
}

TEST(DefinitionTable, DoesNotHaveThePrefixedDegreesCelsius) {
    const DefinitionTable table;
    for (const CPrefix& prefix : prefixes()) {
        const std::string name = text(prefix.Symbol) + "°C";
        EXPECT_NE(CUnitFormat::unitFor(name), nullptr) << name;
        EXPECT_EQ(table.find(name), nullptr) << name;
    }
}

TEST(DefinitionTable, HasEachNameOnceInASet) {
    std::set<std::string> names;
    for (const DefinitionRow& row : definitionRows()) {
        EXPECT_TRUE(names.insert(row.Set + " " + row.Name).second) << row.Set << " " << row.Name;
    }
}

TEST(DefinitionTable, OnlyNamesOfUsAndImperialHaveTwoMeaningsAndNoDefinitionUsesThem) {
    const DefinitionTable table;
    std::map<std::string, std::set<std::string>> sets;
    for (const DefinitionRow& row : table.rows()) {
        sets[row.Name].insert(row.Set);
    }
    for (const DefinitionRow& row : table.rows()) {
        if (sets[row.Name].size() > 1) {
            EXPECT_THAT(sets[row.Name], ElementsAre("IMPERIAL", "US")) << row.Name;
        }
        for (const std::string& name : DefinitionTable::namesIn(row.Definition)) {
            EXPECT_EQ(sets[name].size(), 1U) << row.Name << " is defined by " << name;
        }
    }
}

TEST(DefinitionTable, EveryRowHasAnEnglishNameAndASource) {
    for (const DefinitionRow& row : definitionRows()) {
        EXPECT_FALSE(row.English.empty()) << row.Name;
        EXPECT_FALSE(row.Source.empty()) << row.Name;
        EXPECT_EQ(row.Kind == eRow::UNIT, !row.Definition.empty()) << row.Name;
    }
}

// ---- comparison with the registry ----

// The number of multiplications and additions of a converter.
int stepsOf(const CConverterPtr& converter) {
    if (const auto compound = std::dynamic_pointer_cast<CCompound>(converter)) {
        return stepsOf(compound->first()) + stepsOf(compound->second());
    }
    return std::dynamic_pointer_cast<CIdentity>(converter) ? 0 : 1;
}

// Returns the largest relative error after a number of roundings. Each rounding multiplies the result by a number
// between 1 - 2^-53 and 1 + 2^-53. Thus all of them multiply it by at most (1 + 2^-53)^roundings.
// 2^-150 is added for the error of the value of π in this test.
mpq_class largestError(int roundings) {
    const mpq_class one(1);
    mpq_class product(1);
    for (int i = 0; i < roundings; ++i) {
        product *= one + one / (mpz_class(1) << 53);
    }
    return mpq_class(product - one + one / (mpz_class(1) << 150));
}

void expectNear(double given, const mpq_class& exact, int roundings) {
    const mpq_class error = abs(mpq_class(given) - exact);
    const mpq_class allowed = largestError(roundings) * abs(exact);
    EXPECT_LE(error, allowed) << exactly(given) << ", not " << exact.get_d() << ", after "
                              << roundings << " roundings";
}

// Compares the row with the conversion of the registry.
//
// The registry converts a value to the system unit, whose factor is 1, in n steps. Each step multiplies
// by a double or adds one. Each double is the nearest to a number of the definition, so it has one
// rounding, and each step adds one more. Two steps are exact: 1 times the first double, and 0 plus an
// offset. So the factor of a unit without an offset has 2n - 1 roundings. The longest chains, those of
// the second of arc and the week, have four steps.
//
// An offset unit of the registry has at most one multiplication before the offset. So the result for 0
// and the slope have one rounding each.
void expectToBeWhatTheRegistryConverts(const DefinitionTable& table, const DefinitionRow& row) {
    SCOPED_TRACE(row.Name);
    const CUnitPtr unit = CUnitFormat::unitFor(row.Name);
    ASSERT_NE(unit, nullptr);
    const Reference meaning = table.meaningOf(row);

    const CUnitPtr system = unit->getSystemUnit();
    std::map<std::string, int> exponents;
    for (const CUnitRationalPower& element : system->baseUnits()->elements()) {
        ASSERT_EQ(element.getRoot(), 1);
        exponents[text(element.getUnit()->getSymbol())] = element.getPow();
    }
    EXPECT_EQ(meaning.Dimensions, exponents);

    ASSERT_EQ(system->getCtxToDimension(), CConverter::identity());
    const CConverterPtr converter = unit->getConverterTo(system);
    const int steps = stepsOf(converter);
    const mpq_class factor = meaning.factorWithPi();
    EXPECT_LE(steps, 4);
    if (meaning.Offset == 0) {
        EXPECT_EQ(bitsOf(converter->convert(0.0)), bitsOf(0.0));
        expectNear(converter->convert(1.0), factor, steps == 0 ? 0 : 2 * steps - 1);
    } else {
        EXPECT_LE(steps, 2);
        expectNear(converter->convert(0.0), meaning.zero(), 1);
        expectNear(converter->derivative(0.0), factor, steps - 1);
    }
}

TEST(DefinitionTable, UnitsOfTheCatalogueConvertAsInTheRegistry) {
    NonSI::Psi();
    const DefinitionTable table;
    int count = 0;
    for (const DefinitionRow& row : table.rows()) {
        if (row.Set == "CATALOGUE") {
            expectToBeWhatTheRegistryConverts(table, row);
            ++count;
        }
    }
    EXPECT_EQ(count, 569 + 29 - 20 + 1);
}

// The bound above is sharp enough to see two roundings.
TEST(DefinitionTable, TheNanogramOfTheRegistryHasTwoRoundingErrors) {
    const DefinitionTable table;
    const CUnitPtr nanogram = CUnitFormat::unitFor("ng");
    const mpq_class exact = table.meaningOf(*table.find("ng")).Factor;
    const mpq_class given(nanogram->convertValueToUnit(1, nanogram->getSystemUnit()));
    const mpq_class error = abs(given - exact);
    const mpq_class allowed = largestError(1) * exact;
    EXPECT_GT(error, allowed);
}

std::string setOf(checked::ePack pack) {
    static const std::map<checked::ePack, std::string> sets = {
        {checked::ePack::SI, "SI"},
        {checked::ePack::CUSTOMARY, "CUSTOMARY"},
        {checked::ePack::US, "US"},
        {checked::ePack::IMPERIAL, "IMPERIAL"},
        {checked::ePack::SCIENCE, "SCIENCE"},
        {checked::ePack::OFFSETS, "OFFSETS"},
        {checked::ePack::COUNTING, "COUNTING"}};
    return sets.at(pack);
}

void expectPacksToBeWhatTheRegistryConverts(const std::vector<checked::ePack>& packs) {
    std::set<std::string> sets;
    for (const checked::ePack pack : packs) {
        checked::registerPack(pack);
        sets.insert(setOf(pack));
    }
    const DefinitionTable table;
    for (const DefinitionRow& row : table.rows()) {
        if (sets.count(row.Set) != 0) {
            expectToBeWhatTheRegistryConverts(table, row);
        }
    }
}

TEST(DefinitionTable, UnitsOfThePacksConvertAsInTheRegistry) {
    using checked::ePack;
    expectPacksToBeWhatTheRegistryConverts(
        {ePack::SI, ePack::CUSTOMARY, ePack::US, ePack::SCIENCE, ePack::OFFSETS, ePack::COUNTING});
}

TEST(DefinitionTable, ImperialUnitsConvertAsInTheRegistry) {
    expectPacksToBeWhatTheRegistryConverts({checked::ePack::CUSTOMARY, checked::ePack::IMPERIAL});
}

TEST(DefinitionTable, EachPackHasTheRowsOfItsSetAndNoOthers) {
    std::set<std::string> units, rows;
    for (const checked::CPackUnit& unit : checked::packUnits()) {
        units.insert(setOf(unit.Pack) + " " + std::string(unit.Symbol));
    }
    for (const DefinitionRow& row : definitionRows()) {
        if (row.Set != "CATALOGUE") {
            rows.insert(row.Set + " " + row.Name);
        }
    }
    EXPECT_EQ(units, rows);
    EXPECT_EQ(rows.size(), 203U);
}

// ---- comparison with another reader ----

// Returns a number without roots as a quotient.
mpq_class quotientOf(const exact::CCertifiedNumber& number) {
    mpq_class result(mpz_class(number.Numerator), mpz_class(number.Denominator));
    return number.IsNegative ? mpq_class(-result) : result;
}

exact::CCatalogue catalogueOf(const std::string& set) {
    static const std::map<std::string, exact::ePack> packs = {
        {"CATALOGUE", exact::ePack::CATALOGUE}, {"SI", exact::ePack::SI},
        {"CUSTOMARY", exact::ePack::CUSTOMARY}, {"US", exact::ePack::US},
        {"IMPERIAL", exact::ePack::IMPERIAL},   {"SCIENCE", exact::ePack::SCIENCE},
        {"OFFSETS", exact::ePack::OFFSETS},     {"COUNTING", exact::ePack::COUNTING}};
    return exact::CCatalogue::builtIn().with(exact::ePack::CUSTOMARY).with(packs.at(set));
}

std::map<std::string, int> exponentsOf(const std::vector<exact::CPower>& powers) {
    std::map<std::string, int> exponents;
    for (const exact::CPower& power : powers) {
        EXPECT_EQ(power.Exponent.denominator(), 1) << power.Name;
        exponents[power.Name] = power.Exponent.numerator();
    }
    return exponents;
}

// A definition of the unit with these dimensions and the factor 1.
std::string coherentUnit(const std::map<std::string, int>& dimensions) {
    std::string text = "1";
    for (const auto& [name, exponent] : dimensions) {
        text += " " + name + "^" + std::to_string(exponent);
    }
    return text;
}

TEST(DefinitionTable, TheLibraryAndAnotherReaderAgreeOnEveryRow) {
    const DefinitionTable table;
    for (const DefinitionRow& row : table.rows()) {
        SCOPED_TRACE(row.Set + " " + row.Name);
        const exact::CCatalogue catalogue = catalogueOf(row.Set);
        const auto definition = catalogue.find(row.Name);
        ASSERT_TRUE(definition);
        EXPECT_EQ(definition->Name, row.Name);
        EXPECT_EQ(definition->Text, row.Definition);
        EXPECT_EQ(definition->English, row.English);
        EXPECT_EQ(definition->Source, row.Source);

        const Reference expected = table.meaningOf(row);
        const auto meaning = catalogue.meaning(row.Name);
        ASSERT_TRUE(meaning);
        EXPECT_EQ(exponentsOf(meaning->dimensions()), expected.Dimensions);
        EXPECT_EQ(exponentsOf(meaning->marks()), expected.Marks);
        if (row.Kind == eRow::UNIT) {
            EXPECT_EQ(*meaning, catalogue.evaluate(row.Definition));
        }
        const exact::CCertificate certificate =
            exact::certify(row.Name, coherentUnit(expected.Dimensions), catalogue);
        EXPECT_EQ(quotientOf(certificate.Factor), expected.Factor);
        EXPECT_EQ(certificate.Factor.Root, 1);
        EXPECT_EQ(certificate.Factor.Pi, std::to_string(expected.Pi));
        EXPECT_EQ(quotientOf(certificate.Offset), mpq_class(expected.Offset * expected.Factor));
    }
}

TEST(DefinitionTable, TheLibraryKnowsNoOtherNames) {
    std::map<std::string, std::set<std::string>> rows;
    for (const DefinitionRow& row : definitionRows()) {
        rows[row.Set].insert(row.Name);
    }
    for (const auto& [set, names] : rows) {
        const exact::CCatalogue catalogue = catalogueOf(set);
        const exact::ePack pack = catalogue.find(*names.begin())->Pack;
        std::set<std::string> known;
        for (const exact::CDefinition& definition : catalogue.definitions()) {
            if (definition.Pack == pack) {
                known.insert(std::string(definition.Name));
            }
        }
        EXPECT_EQ(known, names) << set;
    }
}

// The values of the sources, as fractions in lowest terms. They were written without the table.
struct Known {
    const char* Set;
    const char* Name;
    std::map<std::string, int> Dimensions;
    const char* Factor;
    int Pi = 0;
    const char* Zero = "0";  // the value 0 in base units
    std::map<std::string, int> Marks = {};
};

const std::map<std::string, int> Length{{"m", 1}}, Area{{"m", 2}}, Volume{{"m", 3}},
    Mass{{"kg", 1}}, Time{{"s", 1}}, Rate{{"s", -1}}, Speed{{"m", 1}, {"s", -1}},
    Charge{{"A", 1}, {"s", 1}}, Force{{"kg", 1}, {"m", 1}, {"s", -2}},
    Pressure{{"kg", 1}, {"m", -1}, {"s", -2}}, Energy{{"kg", 1}, {"m", 2}, {"s", -2}},
    Power{{"kg", 1}, {"m", 2}, {"s", -3}}, Dose{{"m", 2}, {"s", -2}}, Temperature{{"K", 1}},
    Number{};

const Known knownAnswers[] = {
    {"CATALOGUE", "Hz", Rate, "1"},
    {"CATALOGUE", "N", Force, "1"},
    {"CATALOGUE", "Pa", Pressure, "1"},
    {"CATALOGUE", "J", Energy, "1"},
    {"CATALOGUE", "W", Power, "1"},
    {"CATALOGUE", "C", Charge, "1"},
    {"CATALOGUE", "V", {{"kg", 1}, {"m", 2}, {"s", -3}, {"A", -1}}, "1"},
    {"CATALOGUE", "F", {{"kg", -1}, {"m", -2}, {"s", 4}, {"A", 2}}, "1"},
    {"CATALOGUE", "\u2126", {{"kg", 1}, {"m", 2}, {"s", -3}, {"A", -2}}, "1"},
    {"CATALOGUE", "S", {{"kg", -1}, {"m", -2}, {"s", 3}, {"A", 2}}, "1"},
    {"CATALOGUE", "Wb", {{"kg", 1}, {"m", 2}, {"s", -2}, {"A", -1}}, "1"},
    {"CATALOGUE", "T", {{"kg", 1}, {"s", -2}, {"A", -1}}, "1"},
    {"CATALOGUE", "H", {{"kg", 1}, {"m", 2}, {"s", -2}, {"A", -2}}, "1"},
    {"CATALOGUE", "lm", {{"cd", 1}}, "1", 0, "0", {{"sr", 1}}},
    {"CATALOGUE", "lx", {{"cd", 1}, {"m", -2}}, "1", 0, "0", {{"sr", 1}}},
    {"CATALOGUE", "Bq", Rate, "1"},
    {"CATALOGUE", "Gy", Dose, "1"},
    {"CATALOGUE", "Sv", Dose, "1"},
    {"CATALOGUE", "kat", {{"mol", 1}, {"s", -1}}, "1"},
    {"CATALOGUE", "°C", Temperature, "1", 0, "5463/20"},
    {"CATALOGUE", "g", Mass, "1/1000"},
    {"CATALOGUE", "Ym", Length, "1000000000000000000000000"},
    {"CATALOGUE", "EJ", Energy, "1000000000000000000"},
    {"CATALOGUE", "Mg", Mass, "1000"},
    {"CATALOGUE", "daN", Force, "10"},
    {"CATALOGUE", "dm", Length, "1/10"},
    {"CATALOGUE", "µPa", Pressure, "1/1000000"},
    {"CATALOGUE", "ymol", {{"mol", 1}}, "1/1000000000000000000000000"},
    {"CATALOGUE", "%", Number, "1/100"},
    {"CATALOGUE", "rev", Number, "2", 1, "0", {{"rad", 1}}},
    {"CATALOGUE", "°", Number, "1/180", 1, "0", {{"rad", 1}}},
    {"CATALOGUE", "′", Number, "1/10800", 1, "0", {{"rad", 1}}},
    {"CATALOGUE", "″", Number, "1/648000", 1, "0", {{"rad", 1}}},
    {"CATALOGUE", "grade", Number, "1/200", 1, "0", {{"rad", 1}}},
    {"CATALOGUE", "centiradian", Number, "1/100", 0, "0", {{"rad", 1}}},
    {"CATALOGUE", "byte", Number, "8", 0, "0", {{"bit", 1}}},
    {"CATALOGUE", "atm", Pressure, "101325"},
    {"CATALOGUE", "bar", Pressure, "100000"},
    {"CATALOGUE", "mbar", Pressure, "100"},
    {"CATALOGUE", "psi", Pressure, "172369/25"},
    {"CATALOGUE", "mm_Hg", Pressure, "66661/500"},
    {"CATALOGUE", "in_Hg", Pressure, "846597/250"},
    {"CATALOGUE", "l", Volume, "1/1000"},
    {"CATALOGUE", "µl", Volume, "1/1000000000"},
    {"CATALOGUE", "grav", {{"m", 1}, {"s", -2}}, "196133/20000"},
    {"CATALOGUE", "min", Time, "60"},
    {"CATALOGUE", "h", Time, "3600"},
    {"CATALOGUE", "d", Time, "86400"},
    {"CATALOGUE", "week", Time, "604800"},
    {"CATALOGUE", "month", Time, "2629746"},
    {"CATALOGUE", "year", Time, "31556952"},
    {"CATALOGUE", "year_calendar", Time, "31536000"},
    {"CATALOGUE", "day_sidereal", Time, "8616409/100"},
    {"CATALOGUE", "year_sidereal", Time, "1577907477/50"},
    {"SI", "hPa", Pressure, "100"},
    {"SI", "mK", Temperature, "1/1000"},
    {"SI", "klm", {{"cd", 1}}, "1000", 0, "0", {{"sr", 1}}},
    {"SI", "Tbit", Number, "1000000000000", 0, "0", {{"bit", 1}}},
    {"SI", "L", Volume, "1/1000"},
    {"SI", "hL", Volume, "1/10"},
    {"SI", "\u03BCL", Volume, "1/1000000000"},
    {"SI", "k\u03A9", {{"kg", 1}, {"m", 2}, {"s", -3}, {"A", -2}}, "1000"},
    {"SI", "\u03BCg", Mass, "1/1000000000"},
    {"CUSTOMARY", "in", Length, "127/5000"},
    {"CUSTOMARY", "ft", Length, "381/1250"},
    {"CUSTOMARY", "yd", Length, "1143/1250"},
    {"CUSTOMARY", "mi", Length, "201168/125"},
    {"CUSTOMARY", "nmi", Length, "1852"},
    {"CUSTOMARY", "ac", Area, "316160658/78125"},
    {"CUSTOMARY", "lb", Mass, "45359237/100000000"},
    {"CUSTOMARY", "oz", Mass, "45359237/1600000000"},
    {"CUSTOMARY", "gr", Mass, "6479891/100000000000"},
    {"CUSTOMARY", "st", Mass, "317514659/50000000"},
    {"CUSTOMARY", "ton_US", Mass, "45359237/50000"},
    {"CUSTOMARY", "ton_UK", Mass, "317514659/312500"},
    {"CUSTOMARY", "gal_US", Volume, "473176473/125000000000"},
    {"CUSTOMARY", "qt_US", Volume, "473176473/500000000000"},
    {"CUSTOMARY", "pt_US", Volume, "473176473/1000000000000"},
    {"CUSTOMARY", "fl_oz_US", Volume, "473176473/16000000000000"},
    {"CUSTOMARY", "gal_UK", Volume, "454609/100000000"},
    {"CUSTOMARY", "qt_UK", Volume, "454609/400000000"},
    {"CUSTOMARY", "pt_UK", Volume, "454609/800000000"},
    {"CUSTOMARY", "fl_oz_UK", Volume, "454609/16000000000"},
    {"CUSTOMARY", "bbl", Volume, "9936705933/62500000000"},
    {"CUSTOMARY", "lbf", Force, "8896443230521/2000000000000"},
    {"CUSTOMARY", "kgf", Force, "196133/20000"},
    {"CUSTOMARY", "dyn", Force, "1/100000"},
    {"CUSTOMARY", "Torr", Pressure, "20265/152"},
    {"CUSTOMARY", "hp", Power, "37284993579113511/50000000000000"},
    {"CUSTOMARY", "BTU", Energy, "52752792631/50000000"},
    {"CUSTOMARY", "cal", Energy, "523/125"},
    {"CUSTOMARY", "cal_IT", Energy, "10467/2500"},
    {"CUSTOMARY", "kcal", Energy, "4184"},
    {"CUSTOMARY", "erg", Energy, "1/10000000"},
    {"CUSTOMARY", "kn", Speed, "463/900"},
    {"CUSTOMARY", "mph", Speed, "1397/3125"},
    {"US", "gal", Volume, "473176473/125000000000"},
    {"US", "ton", Mass, "45359237/50000"},
    {"IMPERIAL", "gal", Volume, "454609/100000000"},
    {"IMPERIAL", "ton", Mass, "317514659/312500"},
    {"SCIENCE", "eV", Energy, "801088317/5000000000000000000000000000"},
    {"SCIENCE", "TeV", Energy, "801088317/5000000000000000"},
    {"SCIENCE", "Wh", Energy, "3600"},
    {"SCIENCE", "kWh", Energy, "3600000"},
    {"SCIENCE", "Ah", Charge, "3600"},
    {"SCIENCE", "mAh", Charge, "18/5"},
    {"SCIENCE", "Å", Length, "1/10000000000"},
    {"SCIENCE", "au", Length, "149597870700"},
    {"SCIENCE", "ly", Length, "9460730472580800"},
    {"SCIENCE", "pc", Length, "96939420213600000", -1},
    {"SCIENCE", "ha", Area, "10000"},
    {"SCIENCE", "t", Mass, "1000"},
    {"SCIENCE", "Da", Mass, "8302695333/5000000000000000000000000000000000000"},
    {"SCIENCE", "u", Mass, "8302695333/5000000000000000000000000000000000000"},
    {"SCIENCE", "Ci", Rate, "37000000000"},
    {"SCIENCE", "rem", Dose, "1/100"},
    {"SCIENCE", "rd", Dose, "1/100"},
    {"SCIENCE", "G", {{"kg", 1}, {"s", -2}, {"A", -1}}, "1/10000"},
    {"SCIENCE", "P", {{"kg", 1}, {"m", -1}, {"s", -1}}, "1/10"},
    {"SCIENCE", "cP", {{"kg", 1}, {"m", -1}, {"s", -1}}, "1/1000"},
    {"SCIENCE", "St", {{"m", 2}, {"s", -1}}, "1/10000"},
    {"SCIENCE", "cSt", {{"m", 2}, {"s", -1}}, "1/1000000"},
    {"OFFSETS", "°F", Temperature, "5/9", 0, "45967/180"},
    {"OFFSETS", "Pa_g", Pressure, "1", 0, "101325"},
    {"OFFSETS", "kPa_g", Pressure, "1000", 0, "101325"},
    {"OFFSETS", "mbar_g", Pressure, "100", 0, "101325"},
    {"OFFSETS", "bar_g", Pressure, "100000", 0, "101325"},
    {"OFFSETS", "psi_g", Pressure, "8896443230521/1290320000", 0, "101325"},
    {"COUNTING", "‰", Number, "1/1000"},
    {"COUNTING", "ppm", Number, "1/1000000"},
    {"COUNTING", "ppb", Number, "1/1000000000"},
    {"COUNTING", "rpm", Rate, "1/30", 1, "0", {{"rad", 1}}},
    {"COUNTING", "KiB", Number, "8192", 0, "0", {{"bit", 1}}},
    {"COUNTING", "TiB", Number, "8796093022208", 0, "0", {{"bit", 1}}},
    {"COUNTING", "cps", Rate, "1"},
    {"COUNTING", "Bd", Rate, "1"},
};

TEST(DefinitionTable, HasTheValuesOfTheSources) {
    const DefinitionTable table;
    for (const Known& known : knownAnswers) {
        SCOPED_TRACE(known.Name);
        bool isThere = false;
        for (const DefinitionRow& row : table.rows()) {
            if (row.Set != known.Set || row.Name != known.Name) {
                continue;
            }
            isThere = true;
            const Reference meaning = table.meaningOf(row);
            EXPECT_EQ(meaning.Dimensions, known.Dimensions);
            EXPECT_EQ(meaning.Marks, known.Marks);
            EXPECT_EQ(meaning.Factor, mpq_class(known.Factor));
            EXPECT_EQ(meaning.Pi, known.Pi);
            EXPECT_EQ(mpq_class(meaning.Offset * meaning.Factor), mpq_class(known.Zero));
        }
        EXPECT_TRUE(isThere);
    }
}

}  // namespace
}  // namespace mensor

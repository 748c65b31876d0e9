// Reading_everyday_test.cpp: everyday spellings are read, misleading texts are refused or have a note,
// and every text that a refusal offers is accepted.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <new>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "mensor_exact/Characters.h"
#include "mensor_exact/Conversion.h"
#include "mensor_exact/DefinitionFile.h"
#include "mensor_exact/Error.h"
#include "mensor_exact/Notes.h"
#include "mensor_exact/Reading.h"
#include "mensor_exact/Spelling.h"
#include "mensor_exact/TrapRows.h"
#include "mensor_exact/kinds.h"
#include "mensor_exact/sentences.h"
#include "support/Everyday.h"
#include "support/operator_new.h"
#include "support/thorough.h"
#include "support/trap_example.h"

namespace mensor::exact {
namespace {

using test::everyday;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr ePack OtherPacks[] = {ePack::CUSTOMARY, ePack::US, ePack::SCIENCE, ePack::OFFSETS,
                                ePack::COUNTING};

CCatalogue plain() { return CCatalogue::builtIn(); }
CCatalogue people() { return CCatalogue::builtIn().with(ePack::EVERYDAY); }

CCatalogue withoutEveryday() {
    CCatalogue catalogue = plain();
    for (const ePack pack : OtherPacks) {
        catalogue = catalogue.with(pack);
    }
    return catalogue;
}

CCatalogue everything() { return withoutEveryday().with(ePack::EVERYDAY); }

std::string meaningText(std::string_view text, const CCatalogue& catalogue = people()) {
    const CReading reading = tryRead(text, catalogue);
    return reading ? reading.Meaning->toString() : "refused";
}

CDiagnosis diagnosisOf(std::string_view text, const CCatalogue& catalogue = people(),
                       const CReadOptions& options = {}) {
    const CReading reading = tryRead(text, catalogue, options);
    EXPECT_FALSE(reading) << text << " is read";
    return reading ? CDiagnosis() : diagnose(reading.Refusal, catalogue);
}

CDiagnosis diagnosisOfValue(std::string_view text, const CCatalogue& catalogue = people()) {
    const CValueReading reading = tryReadValue(text, catalogue);
    EXPECT_FALSE(reading) << text << " is read";
    return reading ? CDiagnosis() : diagnose(reading.Refusal, catalogue);
}

std::vector<std::string> notesOf(std::string_view text, const CCatalogue& catalogue = people()) {
    std::vector<std::string> notes;
    const CReading reading = tryRead(text, catalogue);
    EXPECT_TRUE(reading) << text;
    for (const CNote& note : reading.Notes) {
        notes.push_back(note.words(text));
    }
    return notes;
}

std::vector<CDefinition> spellings() {
    std::vector<CDefinition> rows;
    for (const CDefinition& definition : people().definitions()) {
        if (definition.Pack == ePack::EVERYDAY) {
            rows.push_back(definition);
        }
    }
    return rows;
}

bool readsAsUnit(const std::string& text, const CCatalogue& catalogue) {
    return static_cast<bool>(tryRead(text, catalogue));
}

bool readsAsValue(const std::string& text, const CCatalogue& catalogue) {
    return static_cast<bool>(tryReadValue(text, catalogue));
}

// Expects that `isRead`, one of the two functions above, accepts every text that the diagnosis offers.
void expectOffersToBeRead(const std::string& text, const CDiagnosis& diagnosis,
                          const CCatalogue& catalogue, decltype(readsAsUnit)& isRead) {
    for (const std::string& reading : diagnosis.Readings) {
        ASSERT_TRUE(isRead(reading, catalogue)) << text << " offers " << reading;
    }
    for (const std::string& name : diagnosis.Suggestions) {
        std::string offered = text;
        offered.replace(diagnosis.Byte, diagnosis.Token.size(), name);
        ASSERT_TRUE(isRead(offered, catalogue)) << text << " suggests " << name;
    }
}

// ---- Spellings ----

TEST(EverydaySpellings, HaveTheMeaningsOfTheirRows) {
    ASSERT_GE(spellings().size(), 190U);
    for (const CDefinition& row : spellings()) {
        SCOPED_TRACE(row.Name);
        const CReading reading = tryRead(row.Name, people());
        ASSERT_TRUE(reading);
        if (!row.Text.empty() && row.Text != "%RH" && row.Text != "°R") {
            EXPECT_EQ(*reading.Meaning, everything().evaluate(row.Text));
        }
        EXPECT_FALSE(row.English.empty());
        EXPECT_FALSE(row.Source.empty()) << "why nobody can mean anything else";
    }
}

TEST(EverydaySpellings, ReplaceNoNameOfAnotherPack) {
    for (const CDefinition& row : spellings()) {
        for (const ePack pack : OtherPacks) {
            const CCatalogue catalogue = plain().with(pack);
            const CReading reading = tryRead(row.Name, catalogue);
            if (reading) {
                EXPECT_EQ(*reading.Meaning, read(row.Name, people())) << row.Name;
            }
        }
    }
}

TEST(EverydaySpellings, HaveTheSizesOfTheirSources) {
    const std::pair<const char*, const char*> rows[] = {
        {"mmHg", "133.322387415 kg/(m·s²)"},
        {"inHg", "3386.388640341 kg/(m·s²)"},
        {"mmH2O", "9.80665 kg/(m·s²)"},
        {"inH2O", "249.08891 kg/(m·s²)"},
        {"mmWC", "9.80665 kg/(m·s²)"},
        {"barg", "100000 kg/(m·s²) + 101325"},
        {"kPa(g)", "1000 kg/(m·s²) + 101325"},
        {"bara", "100000 kg/(m·s²)"},
        {"bar(a)", "100000 kg/(m·s²)"},
        {"psia", "6894.76 kg/(m·s²)"},
        {"kgf/cm2", "98066.5 kg/(m·s²)"},
        {"degC", "K + 273.15"},
        {"deg", "π/180 rad"},
        {"kOhm", "1000 kg·m²/(A²·s³)"},
        {"um", "0.000001 m"},
        {"uS/cm", "0.0001 A²·s³/(kg·m³)"},
        {"ug", "1e-9 kg"},
        {"ul", "1e-9 m³"},
        {"hrs", "3600 s"},
        {"in.", "0.0254 m"},
        {"lbs", "0.45359237 kg"},
        {"kVA", "1000 kg·m²/s³"},
        {"kWh", "3600000 kg·m²/s²"},
        {"mAh", "3.6 A·s"},
        {"gpm", "0.0000630901964 m³/s"},
        {"lpm", "1/60000 m³/s"},
        {"RPM", "π/30 rad/s"},
        {"ppmv", "0.000001"},
        {"%RH", "%RH"},
        {"Mt", "1000000000 kg"},
        {"MB", "8000000 bit"},
        {"KiB", "8192 bit"},
        {"mTorr", "6755/50666 kg/(m·s²)"},
        {"Nm", "kg·m²/s²"},
        {"\u03A9m", "kg·m³/(A²·s³)"},
        {"mPas", "0.001 kg/(m·s)"},
        {"t", "1000 kg"},
        {"kilometres", "1000 m"},
        {"Volt", "kg·m²/(A·s³)"},
        {"millilitres", "0.000001 m³"},
        {"megaohm", "1000000 kg·m²/(A²·s³)"},
        {"percent", "0.01"},
        {"degrees", "π/180 rad"},
    };
    for (const auto& [text, meaning] : rows) {
        if (std::string(text) != "mTorr") {
            EXPECT_EQ(meaningText(text), meaning) << text;
        }
    }
    EXPECT_EQ(read("mTorr", people()), everything().evaluate("101325/760000 Pa"));
}

TEST(EverydaySpellings, AreReadBeforeASign) {
    EXPECT_EQ(meaningText("lbf/in.²", everything()), meaningText("lbf/in²", everything()));
    EXPECT_EQ(meaningText("mmH2O/m"), "9.80665 kg/(m²·s²)");
    EXPECT_EQ(meaningText("1/(bar(a))"), meaningText("1/bar"));
    EXPECT_EQ(meaningText("in. s", everything()), meaningText("in·s", everything()))
        << "before a unit the point stays an operator";
    EXPECT_EQ(meaningText("kg.m2.s-2"), "kg·m²/s²");
}

TEST(EverydaySpellings, AreRefusedWithoutTheirPack) {
    EXPECT_EQ(meaningText("degC", plain()), "refused");
    EXPECT_EQ(meaningText("um", plain()), "refused");
    EXPECT_EQ(meaningText("metres", plain()), "refused");
    EXPECT_EQ(meaningText("mmH2O", plain()), "refused");
    EXPECT_FALSE(plain().has(ePack::EVERYDAY));
    EXPECT_TRUE(people().has(ePack::EVERYDAY));
}

TEST(EverydaySpellings, AreReplacedByNamesOfTheProgram) {
    const CCatalogue after = people().with({{"barg", "5 m"}, {"um", "7 s"}});
    EXPECT_EQ(meaningText("barg", after), "5 m");
    EXPECT_EQ(meaningText("um", after), "7 s");
    EXPECT_EQ(after.find("barg")->Pack, ePack::OWN);
    EXPECT_THAT(notesOf("barg", after), IsEmpty());
    const CCatalogue before = plain().with({{"barg", "5 m"}}).with(ePack::EVERYDAY);
    EXPECT_EQ(meaningText("barg", before), "5 m");
    int seen = 0;
    before.forEachName([&](std::string_view name, ePack) {
        seen += name == "barg" ? 1 : 0;
        return true;
    });
    EXPECT_EQ(seen, 1);
}

TEST(EverydaySpellings, AreListedOnceIfAnotherPackHasTheName) {
    std::set<std::string_view> names;
    everything().forEachName([&](std::string_view name, ePack) {
        EXPECT_TRUE(names.insert(name).second) << name;
        return true;
    });
}

TEST(EverydaySpellings, AreRefusedInAnyOtherCase) {
    for (const char* const text : {"KW", "Mhz", "kwh", "KPa", "hZ", "Kg", "BARG", "NM"}) {
        EXPECT_EQ(meaningText(text, everything()), "refused") << text;
    }
}

TEST(EverydayWords, ReplaceNoNameOfTheCatalogue) {
    withoutEveryday().forEachName([&](std::string_view name, ePack) {
        const auto word = everydayWord(name);
        if (word) {
            CMeaning meaning = *everything().meaning(word->Symbol);
            meaning = meaning.scaled(CFactor(CFraction(10)).power(word->Power));
            EXPECT_EQ(meaning, *withoutEveryday().meaning(name)) << name;
        }
        return true;
    });
}

TEST(EverydayWords, AreReadWithPrefixesAndInThePlural) {
    for (const char* const text : {"meter", "meters", "metre", "metres", "Meter", "Metres"}) {
        EXPECT_EQ(meaningText(text), "m") << text;
    }
    EXPECT_EQ(meaningText("microfarads"), meaningText("\u00B5F"));
    EXPECT_EQ(meaningText("Kilowatt"), "1000 kg·m²/s³");
    EXPECT_EQ(meaningText("kilobytes"), "8000 bit");
    EXPECT_EQ(meaningText("kilominutes"), "refused") << "minutes have no prefixes";
    EXPECT_EQ(meaningText("METER"), "refused");
    EXPECT_EQ(meaningText("kiloMeter"), "refused");
    EXPECT_EQ(meaningText("u"), "refused");
    EXPECT_EQ(meaningText("ukm"), "refused");
}

TEST(EverydaySpellings, DoNotChangeTextsThatAreReadWithoutThem) {
    const CCatalogue without = withoutEveryday();
    const CCatalogue with = everything();
    for (const test::Expression& expression : everyday()) {
        EXPECT_EQ(read(expression.Text, with), read(expression.Text)) << expression.Text;
    }
    std::vector<std::string> names;
    without.forEachName([&](std::string_view name, ePack) {
        names.emplace_back(name);
        return true;
    });
    const char* const signs[] = {"·", "/", " ", ".", "²·", "-1 ", "*", "(", ")", "", "2"};
    std::mt19937 random(20);
    int count = 0;
    for (int i = 0; i < 40000; ++i) {
        std::string text = names[random() % names.size()];
        for (auto n = random() % 3; n > 0; --n) {
            text += signs[random() % std::size(signs)] + names[random() % names.size()];
        }
        const CReading before = tryRead(text, without);
        if (before) {
            ++count;
            const CReading after = tryRead(text, with);
            ASSERT_TRUE(after) << text;
            ASSERT_EQ(*after.Meaning, *before.Meaning) << text;
        }
    }
    EXPECT_GT(count, 10000);
}

// ---- Traps ----

TEST(Traps, AreRefusedWithCorrections) {
    const std::pair<const char*, std::vector<std::string>> rows[] = {
        {"300° K", {"300 K"}},
        {"20° C", {"20 °C"}},
        {"68° F", {"68 °F"}},
        {"5 W/(m²·° K)", {"5 W/(m²·K)"}},
        {"5 deg C", {"5 °C"}},
        {"5 degrees Celsius", {"5 °C"}},
        {"5 W/mK", {"5 W/(m·K)", "5 kW/K"}},
        {"5 W/(mK)", {"5 W/(m·K)", "5 kW/K"}},
        {"5 mW/mK", {"5 mW/(m·K)", "5 W/K"}},
        {"5 J/kgK", {"5 J/(kg·K)", "5 J·K/kg"}},
        {"5 kJ/kgK", {"5 kJ/(kg·K)", "5 kJ·K/kg"}},
        {"5 bar g", {"5 barg", "5 bar_g"}},
        {"5 bar (g)", {"5 barg", "5 bar_g"}},
        {"30 psi g", {"30 psig", "30 psi_g"}},
        {"30 psi d", {"30 psi"}},
        {"1 bar abs", {"1 bar"}},
        {"230 V ac", {"230 V"}},
        {"24 V DC", {"24 V"}},
        {"120 kg N/ha", {"120 kg/ha"}},
        {"50 mg N/l", {"50 mg/l"}},
        {"50 mg CaCO3/l", {"50 mg/l"}},
        {"10 mg/l N", {"10 mg/l"}},
        {"3 g C/m²", {"3 g/m²"}},
        {"4 J/(kg C)", {"4 J/(kg·K)"}},
        {"50 % RH", {"50 %RH"}},
        {"5 kt", {"5 kn", "5 Gg"}},
        {"100 Nm³/h", {"100 m³/h"}},
        {"100 Nm3/h", {"100 m³/h"}},
        {"100 Sm^3/h", {"100 m³/h"}},
        {"5 Nm²", {"5 N·m²", "5 (N·m)²"}},
        {"5 grad", {"5 °", "5 grade"}},
        {"5 kmh", {"5 km/h"}},
        {"5 bar.g", {"5 barg", "5 bar_g"}},
        {"30 psi-g", {"30 psig", "30 psi_g"}},
        {"30 psi.a", {"30 psi"}},
        {"2 mbar rel", {"2 mbarg", "2 mbar_g"}},
        {"5 in bar", {"5 bar"}},
        {"5 mole %", {"5 %"}},
        {"5 mH20", {"5 mH2O"}},
        {"5 inH20", {"5 inH2O"}},
        {"5 T/h", {"5 t/h"}},
        {"5 MT/d", {"5 t/d"}},
        {"5 m³N/h", {"5 m³/h"}},
        {"5 m3(n)/h", {"5 m³/h"}},
        {"5 mg/m3N", {"5 mg/m³"}},
        {"5 kNm3/h", {"5 dam³/h"}},
        {"20 Grad C", {"20 °C"}},
        {"5 K ohm", {"5 kOhm"}},
        {"5 h·ft²·F/BTU", {"5 h·ft²·°R/BTU"}},
        {"400 V L-L", {"400 V"}},
        {"3 µm(p-p)", {"3 µm"}},
        {"12 ft head", {"12 ft"}},
        {"5 percent RH", {"5 %RH"}},
        {"5 G rms", {"5 grav", "5 gauss"}},
        {"5 std l/min", {"5 l/min"}},
        {"9 U/l", {"9 µmol/(min·l)"}},
        {"3 therm/d", {"3 therm_EC/d", "3 therm_US/d"}},
        {"3 MSCFD", {"3 Mcfd"}},
    };
    const CCatalogue catalogue = everything();
    for (const auto& [text, readings] : rows) {
        EXPECT_EQ(diagnosisOfValue(text, catalogue).Readings, readings) << text;
    }
}

TEST(Traps, ApplyInEveryCatalogue) {
    for (const char* const text : {"° K", "W/mK", "bar g", "psi d", "V ac", "kg N/m²", "mg N/l"}) {
        EXPECT_EQ(diagnosisOf(text, plain()).Code, eRefusal::MISLEADING) << text;
    }
    EXPECT_EQ(diagnosisOf("kPa(g)", plain()).Code, eRefusal::MISLEADING);
    EXPECT_THAT(diagnosisOf("kPa(g)", plain()).Packs, ElementsAre("everyday"));
}

// Returns true if the sentence has a text in quotation marks that is a unit or a value, but not the token.
bool namesAUnit(const CDiagnosis& diagnosis, const CCatalogue& catalogue) {
    const std::string& sentence = diagnosis.Sentence;
    for (std::size_t begin = sentence.find('"'); begin != std::string::npos;
         begin = sentence.find('"', begin + 1)) {
        const std::size_t end = sentence.find('"', begin + 1);
        if (end == std::string::npos) {
            return false;
        }
        const std::string quoted = sentence.substr(begin + 1, end - begin - 1);
        if (quoted != diagnosis.Token &&
            (tryRead(quoted, catalogue) || tryReadValue(quoted, catalogue))) {
            return true;
        }
        begin = end;
    }
    return false;
}

TEST(Notes, ANoteThatWasNeverSetHasNoWords) { EXPECT_EQ(CNote().words("km"), ""); }

TEST(Traps, EachRowIsFoundAndNamesAnAcceptedText) {
    const CCatalogue catalogue = everything();
    int count = 0;
    for (const CTrapRow& trap : TrapRows) {
        const std::string text = test::exampleOf(trap);
        SCOPED_TRACE(text);
        ++count;
        const CValueReading reading = tryReadValue(text, catalogue);
        if (trap.Place == ePlace::UNUSUAL || trap.Place == ePlace::TOLD ||
            trap.Place == ePlace::SHAPE) {
            EXPECT_TRUE(reading);
            ASSERT_EQ(reading.Notes.size(), 1U);
            EXPECT_EQ(reading.Notes.begin()->Trap->sentence(), trap.Sentence);
            continue;
        }
        EXPECT_FALSE(reading) << "is read";
        EXPECT_TRUE(reading.Refusal.Trap) << "another reason";
        if (reading || reading.Refusal.Trap == nullptr) {
            continue;
        }
        EXPECT_EQ(reading.Refusal.Trap->sentence(), trap.Sentence);
        EXPECT_EQ(reading.Refusal.Trap->first(), trap.First);
        EXPECT_EQ(reading.Refusal.Trap->second(), trap.Second);
        const CDiagnosis diagnosis = diagnose(reading.Refusal, catalogue);
        expectOffersToBeRead(text, diagnosis, catalogue, readsAsValue);
        EXPECT_TRUE(!diagnosis.Readings.empty() || namesAUnit(diagnosis, catalogue))
            << diagnosis.message();
        if (trap.Place == ePlace::UNKNOWN &&
            tryReadValue("5 " + std::string(trap.First), catalogue)) {
            EXPECT_THAT(diagnosis.Readings, Contains("5 " + std::string(trap.First)));
        }
    }
    EXPECT_GT(count, 2000);
}

TEST(Traps, ArbitraryUnitsCanBeDefined) {
    int count = 0;
    for (const CTrapRow& trap : TrapRows) {
        if (trap.Sentence.find("define it as a base unit") == std::string_view::npos) {
            continue;
        }
        const std::string name(trap.Text);
        if (!isName(name)) {
            continue;  // "TE/F", "Pt-Co"
        }
        ++count;
        const CDefinitionFile file = tryReadDefinitions(name + " = base unit\n", people());
        ASSERT_TRUE(file.Findings.empty()) << name;
        EXPECT_EQ(meaningText(name + "/l", file.Catalogue), "1000 " + name + "/m³");
    }
    EXPECT_GT(count, 50);
}

TEST(Traps, DoNotRefuseUsualProducts) {
    for (const char* const text :
         {"W/K",       "nV/mK",      "mK",    "K/mK",    "J/(kg K)",  "J/(kg·K)",      "bar m³",
          "bar·g",     "V·A",        "V A",   "kg m",    "g/(bar.g)", "C·m²/V",        "mH2",
          "mT/s",      "m³·N",       "in m",  "kg·N",    "mg·N/l",    "N·m²",          "° ",
          "°/s",       "m³/h",       "psi·d", "W·mK^-1", "A (s)",     "((Ys)^-2 (N))", "Wb (min)^2",
          "Wb (min)²", "(m F/kJ)·dm"}) {
        EXPECT_TRUE(tryRead(text, everything())) << text;
    }
}

TEST(Traps, DoNotApplyToNamesOfTheProgram) {
    const CCatalogue catalogue = plain().with({{"abs", "5 m"}, {"kt", "3 s"}});
    EXPECT_TRUE(tryRead("bar abs", catalogue));
    EXPECT_EQ(meaningText("kt", catalogue), "3 s");
    EXPECT_EQ(diagnosisOf("bar abs", plain()).Code, eRefusal::MISLEADING);
}

TEST(Traps, LookingUpATrapAllocatesNothing) {
    const CCatalogue catalogue = people();
    for (const char* const text : {"° K", "W/mK", "bar g", "pH", "Nm³", "5 bar(g)", "kt"}) {
        beforeAllocation = [](long) { throw std::bad_alloc(); };
        bool hasThrown = false;
        try {
            tryRead(text, catalogue);
        } catch (const std::bad_alloc&) {
            hasThrown = true;
        }
        beforeAllocation = nullptr;
        EXPECT_FALSE(hasThrown) << text;
    }
}

// ---- Notes ----

TEST(Notes, ExplainAName) {
    EXPECT_THAT(notesOf("pH"),
                ElementsAre("\"pH\" is the picohenry; the pH of a liquid has no unit"));
    EXPECT_THAT(notesOf("PS"), ElementsAre(HasSubstr("petasiemens")));
    EXPECT_THAT(notesOf("Grad"), ElementsAre(HasSubstr("10⁹ rad")));
    EXPECT_THAT(notesOf("Gs"), ElementsAre(HasSubstr("gauss")));
    EXPECT_THAT(notesOf("st", everything()), ElementsAre(HasSubstr("stone")));
    EXPECT_THAT(notesOf("psig"),
                ElementsAre("\"psig\" counts from one standard atmosphere, 101325 Pa"));
    EXPECT_THAT(notesOf("kg·m²/s²"), IsEmpty());
    EXPECT_THAT(notesOf("Mm³/d"), ElementsAre(HasSubstr("a million cubic metres is hm³")));
    EXPECT_THAT(notesOf("Mm²"), IsEmpty());
    EXPECT_EQ(notesOf("pH/PS").size(), 2U);
    const CValueReading value = tryReadValue("7 pH");
    ASSERT_EQ(value.Notes.size(), 1U);
    EXPECT_EQ(value.Notes.begin()->words("7 pH"),
              "\"pH\" is the picohenry; the pH of a liquid has no unit");
    EXPECT_TRUE(value.Notes.begin()->IsUnusual);
}

TEST(Notes, TheOptionStrictRefusesTextsWithNotes) {
    CReadOptions strict;
    strict.Strict = true;
    for (const char* const text : {"pH", "PS", "Grad", "Gs", "m/PS"}) {
        EXPECT_EQ(diagnosisOf(text, people(), strict).Code, eRefusal::MISLEADING) << text;
    }
    EXPECT_THAT(diagnosisOf("Grad", people(), strict).Readings, ElementsAre("°", "grade"));
    EXPECT_TRUE(tryRead("barg", people(), strict)) << "the note only tells which unit it is";
    EXPECT_EQ(tryReadValue("7 pH", people(), strict).Refusal.Code, eRefusal::MISLEADING);
}

TEST(Notes, AreAtMostFour) { EXPECT_EQ(notesOf("pH·PS·Grad·Gs·pH").size(), 4U); }

TEST(NotesOnMarks, NameTheMarkThatCountsAsOne) {
    const CMeaning rpm = read("rpm", people());
    const CMeaning perMinute = read("1/min");
    EXPECT_EQ(
        noteOnMarks("3000", "rpm", rpm, perMinute),
        "rad counts as 1 here: 3000 rpm is 314.159 rad/s; turns per minute are rpm, turns per "
        "second rev/s");
    EXPECT_EQ(noteOnMarks("5", "byte", read("byte"), read("rad")),
              "bit and rad count as 1 here: 5 byte is 40 bit");
    EXPECT_THAT(noteOnMarks("1", "Hz", read("Hz"), read("rad/s")),
                HasSubstr("rad counts as 1 here"));
    EXPECT_EQ(noteOnMarks("1", "rpm", rpm, read("rad/s")), "");
    EXPECT_EQ(noteOnMarks("1", "Hz", read("Hz"), perMinute), "");
}

TEST(NotesOnMarks, RequireSameMarksThrowsTheNote) {
    EXPECT_NO_THROW(requireSameMarks(read("rev/min"), read("rad/s")));
    try {
        requireSameMarks(read("rev/min"), read("1/min"));
        FAIL() << "not refused";
    } catch (const CError& error) {
        EXPECT_EQ(error.code(), eError::DIFFERENT_MARKS);
        EXPECT_THAT(error.what(), HasSubstr("rad counts as 1 here"));
    }
}

TEST(Kinds, TheConversionComparesKindsByOption) {
    const CMeaning turns = read("rev/min");
    const CMeaning perMinute = read("1/min");
    EXPECT_NO_THROW(CConversion(turns, perMinute));
    EXPECT_NO_THROW(CConversion(turns, read("rad/s"), eKinds::SAME));
    const auto codeOf = [](const auto& convert) {
        try {
            convert();
        } catch (const CError& error) {
            return error.code();
        }
        return eError::SYNTAX;
    };
    EXPECT_EQ(codeOf([&] { CConversion(turns, perMinute, eKinds::SAME); }),
              eError::DIFFERENT_MARKS);
    EXPECT_EQ(codeOf([&] { CConversion::between("byte", "rad", plain(), eKinds::SAME); }),
              eError::DIFFERENT_MARKS);
    EXPECT_EQ(codeOf([&] { CConversion::ofDifferences(turns, perMinute, eKinds::SAME); }),
              eError::DIFFERENT_MARKS);
    EXPECT_EQ(codeOf([&] { CConversion(turns, read("m"), eKinds::SAME); }),
              eError::DIFFERENT_DIMENSIONS);
}

// ---- Refusals ----

TEST(Advice, OffersWholeChains) {
    EXPECT_THAT(diagnosisOfValue("10 kg·m/s/s/h").Readings, ElementsAre("10 kg·m/(s·s·h)"));
    EXPECT_THAT(diagnosisOf("J/kg·K/s").Readings, ElementsAre("J/(kg·K·s)", "J·K/(kg·s)"));
    EXPECT_THAT(diagnosisOf("q/v").Readings, IsEmpty());
    EXPECT_THAT(diagnosisOf("1/m/s").Readings, ElementsAre("1/(m·s)", "s/m"));
    EXPECT_THAT(diagnosisOf("(W/m/K)²").Readings, ElementsAre("(W/(m·K))²", "(W·K/m)²"));
    EXPECT_THAT(diagnosisOf("J/kg/°C").Readings, ElementsAre("J/(kg·K)", "J·K/kg"));
    EXPECT_THAT(diagnosisOf("W/m2K").Readings, ElementsAre("W/(m2·K)", "W·K/m2"));
}

TEST(Advice, CopiesEachExponentOfAChain) {
    const char* const powers[] = {"K⁺¹",   "K⁻¹",   "K^(-1)", "K^-2", "K^+2",
                                  "K^1:2", "K^0.5", "K-1",    "K**2"};
    for (const std::string power : powers) {
        EXPECT_THAT(diagnosisOf("W/m²/" + power).Readings,
                    ElementsAre("W/(m²·" + power + ")", "W·" + power + "/m²"));
    }
    EXPECT_THAT(diagnosisOf("W/m²/K^2.m").Readings, ElementsAre("W/(m²·K^2·m)", "W·m/(m²·K^2)"));
    EXPECT_THAT(diagnosisOf("W/m²/K^2.").Readings, IsEmpty());
    EXPECT_THAT(diagnosisOf("1/m·s/K").Readings, ElementsAre("1/(m·s·K)", "s/(m·K)"));
    EXPECT_THAT(diagnosisOfValue("5.W/m²/K").Readings, ElementsAre("5. W/(m²·K)", "5. W·K/m²"))
        << "with a blank after the point";
}

TEST(Advice, OffersTheFractionThatADecimalExponentRounds) {
    EXPECT_THAT(diagnosisOf("m^0.333").Readings, ElementsAre("m^(1/3)"));
    EXPECT_THAT(diagnosisOf("m^-0.333").Readings, ElementsAre("m^(-1/3)"));
    EXPECT_THAT(diagnosisOf("m^(0.333)·s").Readings, ElementsAre("m^(1/3)·s"));
    EXPECT_THAT(diagnosisOf("m^2.333").Readings, ElementsAre("m^(7/3)"));
    EXPECT_THAT(diagnosisOf("m^0.07").Readings, IsEmpty()) << "no small fraction is near";
    EXPECT_THAT(diagnosisOf("m^0.33333333333333333333").Readings, IsEmpty()) << "too many digits";
}

TEST(Advice, CorrectsNumbers) {
    const CCatalogue all = everything();
    const std::pair<const char*, const char*> rows[] = {
        {"1/2 in", "0.5 in"},         {"1 1/2 in", "1.5 in"},       {"1h30min", "90 min"},
        {"5 /2 m", "2.5 m"},          {"1 / 2 in", "0.5 in"},       {"1 1 /2 in", "1.5 in"},
        {"5 /100km", "0.05km"},       {"1 h 30 min", "90 min"},     {"5 ft 6 in", "66 in"},
        {"1 000 m", "1000 m"},        {"1'000'000 m", "1000000 m"}, {"10^3 m", "1e3 m"},
        {"2×10³ m", "2e3 m"},         {"2 x 10^-3 m", "2e-3 m"},    {"2,5 km", "2.5 km"},
        {"1,234,567 m", "1234567 m"},
    };
    for (const auto& [text, meant] : rows) {
        EXPECT_THAT(diagnosisOfValue(text, all).Readings, ElementsAre(meant)) << text;
    }
    EXPECT_THAT(diagnosisOfValue("1/3 m").Readings, IsEmpty()) << "no decimal is 1/3";
    EXPECT_THAT(diagnosisOfValue("1 h 30 m").Readings, IsEmpty()) << "no sum";
    EXPECT_EQ(readValue("+5 m").Number, CFraction(5));
}

TEST(Advice, CorrectsSignsAndDecimalsInNumbers) {
    const std::pair<const char*, const char*> rows[] = {
        {"1 000.5 m", "1000.5 m"},
        {"-1'000.25 m", "-1000.25 m"},
        {"-10 000 m", "-10000 m"},
        {"-1.000.000 m", "-1000000 m"},
        {"-1.234,5 m", "-1234.5 m"},
        {"1_000_000 m", "1000000 m"},
        {"1,234,567.5 m", "1234567.5 m"},
        {"1,234,567,890 m", "1234567890 m"},
        {"1234,567 m", "1234.567 m"},
        {"1’000 m", "1000 m"},
        {"5x10^+3 m", "5e3 m"},
        {"-1,234.5 m", "-1234.5 m"},
        {"10^(3) m", "1e3 m"},
        {"10**3 m", "1e3 m"},
        {"-2×10⁻³ m", "-2e-3 m"},
        {"1-1/2 m", "1.5 m"},
        {"-3/8 m", "-0.375 m"},
        {"-1 h 30 min", "-90 min"},
        {"1 h 30 min 5 s 500 ms", "5405500 ms"},
    };
    for (const auto& [text, meant] : rows) {
        EXPECT_THAT(diagnosisOfValue(text).Readings, ElementsAre(meant)) << text;
    }
    EXPECT_THAT(diagnosisOfValue("1,234 m").Readings, ElementsAre("1.234 m", "1234 m"));
}

TEST(Advice, OffersNoCorrectionIfTheMeantNumberIsUnknown) {
    for (const char* const text : {"1,23,456 m",     "12,345,67 m",    "1,2,3 m",
                                   "1,, m",          "1 000 00 m",     "10^ m",
                                   "10^(3 m",        "1 234, m",       "x10^3 m",
                                   "5*10*3 m",       "2x10⁻ m",        "3 x 11^2 m",
                                   "2*10 m",         "1/0 m",          "1/7 m",
                                   "1/1234567890 m", "1234567890/2 m", "1 h 30",
                                   "1 h 30 °C",      "1 °C 30 K m",    "1 h 2 min 3 s 4 ms 5 ms",
                                   "1 h 30 xyzzy"}) {
        EXPECT_THAT(diagnosisOfValue(text).Readings, IsEmpty()) << text;
    }
}

TEST(Advice, NamesThePackOfAName) {
    const CDiagnosis pound = diagnosisOf("lb");
    EXPECT_EQ(pound.message(),
              "\"lb\" is in the pack customary (type --pack customary, or ask for "
              "ePack::CUSTOMARY)");
    EXPECT_THAT(pound.Packs, ElementsAre("customary"));
    EXPECT_THAT(diagnosisOf("gal").Packs, ElementsAre("us", "imperial"));
    EXPECT_THAT(diagnosisOf("degC", plain()).Packs, ElementsAre("everyday"));
    EXPECT_THAT(diagnosisOf("metres", plain()).Packs, ElementsAre("everyday"));
    EXPECT_THAT(diagnosisOf("Hp").Packs, ElementsAre("customary")) << "hp";
}

TEST(Advice, OffersTheSplitNameBeforeSimilarNames) {
    EXPECT_THAT(diagnosisOf("Nm", plain()).Readings, ElementsAre("N·m"));
    EXPECT_THAT(diagnosisOf("Nm", plain()).Suggestions, Not(Contains("nm")));
    EXPECT_THAT(diagnosisOf("ug", plain()).Readings, ElementsAre("\u00B5g"));
    EXPECT_THAT(diagnosisOf("U\u03A9").Readings, ElementsAre("\u00B5\u03A9"));
    EXPECT_THAT(diagnosisOf("mcg", plain()).Suggestions, Not(Contains("mg")));
    EXPECT_THAT(diagnosisOf("grad", plain()).Suggestions, Not(Contains("Grad")));
    EXPECT_THAT(diagnosisOf("kgK/s").Readings, ElementsAre("kg·K/s"));
}

TEST(Advice, PutsTheRightCaseFirst) {
    const std::pair<const char*, const char*> rows[] = {
        {"KW", "kW"},   {"Mhz", "MHz"}, {"kwh", "kWh"}, {"Kg", "kg"},    {"KPA", "kPa"},
        {"PSI", "psi"}, {"HZ", "Hz"},   {"Km", "km"},   {"MBAR", "mbar"}};
    for (const auto& [text, name] : rows) {
        const CDiagnosis diagnosis = diagnosisOf(text);
        ASSERT_FALSE(diagnosis.Suggestions.empty()) << text;
        EXPECT_EQ(diagnosis.Suggestions[0], name);
        EXPECT_LE(diagnosis.Suggestions.size(), 3U);
    }
    EXPECT_THAT(diagnosisOf("Kg").Suggestions, ElementsAre("kg"));
}

TEST(Advice, CorrectsTheCaseOfAllNames) {
    EXPECT_THAT(diagnosisOf("KM/H").Readings, ElementsAre("km/h"));
    EXPECT_THAT(diagnosisOf("KG/CM2").Readings, ElementsAre("kg/cm2"));
    EXPECT_THAT(diagnosisOf("M3/HR").Readings, ElementsAre("m³/hr"));
    EXPECT_THAT(diagnosisOf("KJ/KG").Readings, ElementsAre("kJ/kg"));
    EXPECT_THAT(diagnosisOf("MM/S").Readings, ElementsAre("mm/s")) << "Mm/S is not meant";
    EXPECT_THAT(diagnosisOf("Mpa(g)").Suggestions, ElementsAre("MPa"));
}

TEST(Advice, SuggestsAKnownNameInsteadOfItsPack) {
    const CDiagnosis diagnosis = diagnosisOf("fl");
    EXPECT_THAT(diagnosis.Suggestions, ElementsAre("fL"));
    EXPECT_THAT(diagnosis.Packs, IsEmpty());
    EXPECT_THAT(diagnosisOf("fl", plain()).Packs, ElementsAre("everyday"));
}

TEST(Advice, DividesTheValueByANumberInTheUnit) {
    EXPECT_THAT(diagnosisOfValue("5 l/100km").Readings, ElementsAre("0.05 l/km"));
    EXPECT_THAT(diagnosisOfValue("-7.5 kWh/100 km").Readings, ElementsAre("-0.075 kWh/km"));
    EXPECT_THAT(diagnosisOfValue("5 mg/24h").Readings, ElementsAre("5 mg/d"));
    for (const char* const hours : {"h", "hr", "hrs", "hour", "hours"}) {
        EXPECT_THAT(diagnosisOf(std::string("mmol/24 ") + hours).Readings, ElementsAre("mmol/d"));
    }
    EXPECT_THAT(diagnosisOf("mmol/24 m").Readings, IsEmpty());
    EXPECT_THAT(diagnosisOfValue("5e3 l/100km").Readings, IsEmpty());
    EXPECT_THAT(diagnosisOfValue("5.123456789012345678901 l/100km").Readings, IsEmpty());
    EXPECT_THAT(diagnosisOfValue("5 l/1000000000000000000000km").Readings, IsEmpty());
    EXPECT_THAT(diagnosisOfValue("1 m/3s").Readings, IsEmpty()) << "no decimal is 1/3";
    EXPECT_THAT(diagnosisOfValue("1 m/0s").Readings, IsEmpty());
    EXPECT_THAT(diagnosisOf("l/100km").Readings, IsEmpty()) << "there is no value";
    EXPECT_EQ(diagnosisOf("l/100km").Sentence,
              "a unit cannot contain the number 100; divide the value by it");
}

TEST(Advice, WritesADotForEachHyphen) {
    EXPECT_THAT(diagnosisOf("kW-h-m").Readings, ElementsAre("kW·h·m"));
    EXPECT_THAT(diagnosisOf("BTU/hr-ft2-F", everything()).Readings,
                ElementsAre("BTU/(hr·ft2·°R)", "BTU·ft2·°R/hr"));
    EXPECT_THAT(diagnosisOf("N-m/s-1").Readings, ElementsAre("N·m/s-1"));
}

TEST(Advice, LeavesOutRemarks) {
    const std::pair<const char*, const char*> rows[] = {
        {"5 µS/cm @25°C", "5 µS/cm"},
        {"5 cSt at 40 °C", "5 cSt"},
        {"5 W (thermal output)", "5 W"},
        {"5 rev./min", "5 rev/min"},
    };
    for (const auto& [text, offered] : rows) {
        EXPECT_THAT(diagnosisOfValue(text, everything()).Readings, ElementsAre(offered)) << text;
    }
    EXPECT_EQ(diagnosisOf("µS/cm @25°C").Sentence, "a remark is no part of a unit");
    EXPECT_THAT(diagnosisOfValue("m (s)").Readings, IsEmpty()) << "the number is missing";
}

TEST(Advice, WritesOneForThingsThatAreCounted) {
    EXPECT_THAT(diagnosisOfValue("5 pcs/kg").Readings, ElementsAre("5 1/kg"));
    EXPECT_THAT(diagnosisOfValue("5 h·pcs").Readings, ElementsAre("5 h·One"));
    EXPECT_THAT(diagnosisOfValue("5 (pcs)").Readings, ElementsAre("5 (1)"));
    EXPECT_THAT(diagnosisOfValue("5 kg·(pcs)").Readings, ElementsAre("5 kg·(1)"));
}

TEST(Advice, OffersNoDivisorForThingsThatAreCounted) {
    EXPECT_THAT(diagnosisOf("kg/pcs").Readings, ElementsAre("kg"));
    EXPECT_THAT(diagnosisOf("pcs/h").Readings, ElementsAre("1/h"));
    EXPECT_THAT(diagnosisOf("kg/(h·pcs)").Readings, ElementsAre("kg/(h·One)"));
}

TEST(Advice, OffersNoNameThatIsSimilarByAccident) {
    for (const char* const text : {"TDQ", "xcfm", "qbar", "kWq", "brq", "kqmw", "xy"}) {
        const CDiagnosis diagnosis = diagnosisOf(text, everything());
        EXPECT_THAT(diagnosis.Suggestions, IsEmpty()) << text;
        EXPECT_THAT(diagnosis.Readings, IsEmpty()) << text;
    }
    const std::pair<const char*, const char*> rows[] = {
        {"kgg", "kg"}, {"bra", "bar"}, {"mbr", "mbar"}, {"mbaar", "mbar"}, {"mabr", "mbar"}};
    for (const auto& [text, name] : rows) {
        EXPECT_THAT(diagnosisOf(text).Suggestions, Contains(name)) << text;
    }
}

TEST(Advice, SuggestsWordsForTypingErrors) {
    const std::pair<const char*, const char*> rows[] = {
        {"metr", "metre"},         {"secnd", "second"},       {"Kelvn", "kelvin"},
        {"kilometr", "kilometre"}, {"millivlt", "millivolt"}, {"hors", "hours"}};
    for (const auto& [text, word] : rows) {
        EXPECT_THAT(diagnosisOf(text).Suggestions, Contains(word)) << text;
    }
    EXPECT_THAT(diagnosisOf("secnd", plain()).Suggestions, IsEmpty());
}

TEST(Advice, SaysWhereToFindNames) {
    EXPECT_EQ(
        diagnosisOf("xyzzy").message(),
        "no unit has the name \"xyzzy\" (mensor list shows all names; a definition adds one)");
    EXPECT_EQ(diagnosisOf("xyzzy").Sentence, "no unit has the name \"xyzzy\"");
}

TEST(Advice, PrefersTheWantedQuantity) {
    const CMeaning power = read("W");
    const CMeaning mass = read("kg");
    const CReading reading = tryRead("mw", people());
    EXPECT_THAT(diagnose(reading.Refusal, people(), &power).Suggestions, ElementsAre("mW", "MW"));
    const CReading near = tryRead("kgg", people());
    for (const std::string& name : diagnose(near.Refusal, people(), &mass).Suggestions) {
        EXPECT_TRUE(read(name, people()).isCompatibleWith(mass)) << name;
    }
    EXPECT_THAT(diagnosisOf("km/hh").Suggestions, Contains("h"));
}

TEST(Advice, HasPlainSentences) {
    const std::pair<const char*, const char*> rows[] = {
        {"m^1:0", "the denominator is zero"},
        {"m)", "unmatched closing bracket"},
        {"(m", "this bracket is never closed"},
        {"m⁻", "superscript sign without a digit"},
        {"m 1000", "a unit cannot contain the number 1000"},
        {"J/°C",
         "\"°C\" is a scale with its own zero and cannot be part of a product; for differences "
         "write \"K\""},
        {"m ²", "no blank is allowed before an exponent"},
        {"", "the unit is missing"},
    };
    for (const auto& [text, sentence] : rows) {
        EXPECT_EQ(diagnosisOf(text).Sentence, sentence) << text;
    }
}

struct CForm {
    const char* Text;
    eRefusal Code;
    const char* Sentence;
    const char* First;
    const char* Second;
};

TEST(RefusalsOfForm, HaveTheMessageAndTheCorrectionsOfTheirRows) {
    const CForm rows[] = {
#define MENSOR_FORM(text, code, sentence, first, second) \
    {text, eRefusal::code, sentences::sentence, first, second},
#include "mensor_exact/refusals.def"
    };
    const CCatalogue catalogue = everything();
    for (const CForm& row : rows) {
        SCOPED_TRACE(row.Text);
        const CDiagnosis diagnosis = diagnosisOfValue(row.Text, catalogue);
        EXPECT_EQ(nameOf(diagnosis.Code), std::string(nameOf(row.Code)));
        std::string sentence = row.Sentence;
        if (const std::size_t place = sentence.find("{}"); place != std::string::npos) {
            sentence.replace(place, 2, diagnosis.Token);
        }
        EXPECT_EQ(diagnosis.Sentence.substr(0, sentence.size()), sentence);
        std::vector<std::string> offered;
        for (const char* const text : {row.First, row.Second}) {
            if (*text != '\0') {
                offered.emplace_back(text);
                EXPECT_TRUE(tryReadValue(text, catalogue)) << text;
            }
        }
        EXPECT_EQ(diagnosis.Readings, offered);
        EXPECT_THAT(diagnosis.Suggestions, IsEmpty());
        EXPECT_THAT(diagnosis.Packs, IsEmpty());
    }
}

TEST(Advice, OffersOnlyAcceptedTexts) {
    const CCatalogue catalogues[] = {plain(), people(), everything()};
    std::vector<std::string> texts = {
        "W/(m²·K)",     "kg·m/s/s/h", "10 kJ/kg·K", "5 bar(g)", "1 h 30 min", "1/2 in",
        "20 °C/min",    "lbf/in.²",   "100 Nm³/h",  "2,5 km",   "50 mg N/l",  "V/√Hz",
        "m^(1/2)",      "7 degC",     "3 ° C",      "5 mmH2O",  "KWh",        "J/kgK",
        "BTU/hr/ft2/F", "kmol",       "1e3 m3/h",   "[abc]",    "(m/s)²"};
    for (const test::Expression& expression : everyday()) {
        texts.push_back(expression.Text);
    }
    const std::string pieces[] = {"/", "·",   " ", "(", ")", "²",      "^",  "-",  "1", "2",
                                  ",", ".",   "K", "g", "m", "°",      "°C", "N",  "k", "M",
                                  "u", "bar", "[", "]", "√", "\u2060", "3",  "**", "h", "%"};
    std::mt19937 random(2020);
    const int count = test::casesOf(12000, 3000);
    int offered = 0;
    for (int i = 0; i < count; ++i) {
        std::string text = texts[random() % texts.size()];
        for (auto edits = 1 + random() % 3; edits > 0; --edits) {
            const std::size_t at = random() % (text.size() + 1);
            if ((at < text.size() && (text[at] & 0x80) != 0) || text.size() > 60) {
                continue;
            }
            switch (random() % 3) {
                case 0: text.insert(at, pieces[random() % std::size(pieces)]); break;
                case 1:
                    if (at < text.size()) {
                        text.erase(at, 1);
                    }
                    break;
                default: text.insert(at, texts[random() % texts.size()].substr(0, 3));
            }
        }
        const CCatalogue& catalogue = catalogues[random() % std::size(catalogues)];
        const CReading unit = tryRead(text, catalogue);
        if (!unit) {
            const CDiagnosis diagnosis = diagnose(unit.Refusal, catalogue);
            ASSERT_NO_FATAL_FAILURE(expectOffersToBeRead(text, diagnosis, catalogue, readsAsUnit));
            offered += diagnosis.Readings.empty() ? 0 : 1;
        }
        const CValueReading value = tryReadValue(text, catalogue);
        if (!value) {
            const CDiagnosis diagnosis = diagnose(value.Refusal, catalogue);
            ASSERT_NO_FATAL_FAILURE(expectOffersToBeRead(text, diagnosis, catalogue, readsAsValue));
        }
    }
    EXPECT_GT(offered, count / 12);
}

// ---- Plants ----

std::vector<std::string> split(const std::string& text, const std::string& separator) {
    std::vector<std::string> parts;
    std::size_t begin = 0;
    for (;;) {
        const std::size_t end = text.find(separator, begin);
        parts.push_back(text.substr(begin, end - begin));
        if (end == std::string::npos) {
            return parts;
        }
        begin = end + separator.size();
    }
}

// What the library answers to a text: its meaning, or the diagnosis.
struct Answer {
    std::string Meaning;
    std::optional<CDiagnosis> Refusal;
};

Answer answerToUnit(const std::string& text, const CCatalogue& catalogue) {
    const CReading unit = tryRead(text, catalogue);
    return unit ? Answer{unit.Meaning->toString(), std::nullopt}
                : Answer{"", diagnose(unit.Refusal, catalogue)};
}

Answer answerToValue(const std::string& text, const CCatalogue& catalogue) {
    const CValueReading value = tryReadValue(text, catalogue);
    return value ? Answer{value.Value->Number.toString() + " × " + value.Value->Unit.toString(),
                          std::nullopt}
                 : Answer{"", diagnose(value.Refusal, catalogue)};
}

std::vector<std::string> offersOf(const CDiagnosis& diagnosis) {
    std::vector<std::string> offers = diagnosis.Readings;
    offers.insert(offers.end(), diagnosis.Suggestions.begin(), diagnosis.Suggestions.end());
    return offers;
}

// Texts that plant engineers, programmers of gateways and of panels type. A row is "unit" or "value", the
// text, its meaning or the code of its refusal, and what the refusal offers.
TEST(PlantTexts, AreReadOrRefusedWithCorrections) {
    std::ifstream table(MENSOR_TEST_DATA "/plant_texts.tsv");
    const CCatalogue catalogue = everything();
    int count = 0;
    for (std::string line; std::getline(table, line);) {
        if (line[0] == '#') {
            continue;
        }
        ++count;
        const std::vector<std::string> row = split(line, "\t");
        ASSERT_EQ(row.size(), 4U) << line;
        const std::string& text = row[1];
        SCOPED_TRACE(text);
        const bool isValue = row[0] == "value";
        const Answer answer =
            isValue ? answerToValue(text, catalogue) : answerToUnit(text, catalogue);
        if (!answer.Refusal) {
            EXPECT_EQ(answer.Meaning, row[2]);
            continue;
        }
        EXPECT_EQ(nameOf(answer.Refusal->Code), row[2]);
        EXPECT_EQ(offersOf(*answer.Refusal),
                  row[3].empty() ? std::vector<std::string>() : split(row[3], " | "));
        expectOffersToBeRead(text, *answer.Refusal, catalogue,
                             isValue ? readsAsValue : readsAsUnit);
    }
    EXPECT_GT(count, 1500);
}

// ---- Characters ----

TEST(InvisibleCharacters, AreRefusedInTexts) {
    for (const char32_t c :
         {0x00ADU, 0x034FU, 0x061CU, 0x115FU, 0x180EU, 0x200BU, 0x202EU, 0x2060U, 0x2800U, 0x3164U,
          0xFE0FU, 0xFEFFU, 0xFFA0U, 0xFFF9U, 0x1D173U, 0xE0020U, 0xE01EFU}) {
        EXPECT_TRUE(isInvisible(c)) << std::hex << c;
    }
    for (const char32_t c : {0x41U, 0xB5U, 0xB0U, 0x3A9U, 0x606U, 0x2126U, 0x27FFU, 0x2801U,
                             0x3163U, 0x3165U, 0xFFFCU, 0xE1000U}) {
        EXPECT_FALSE(isInvisible(c)) << std::hex << c;
    }
    for (const char* const text : {"m\uFE0F", "\u3164m", "k\u061Cm", "m\u2800", "m\U000E0020"}) {
        const CDiagnosis diagnosis = diagnosisOf(text);
        EXPECT_EQ(diagnosis.Code, eRefusal::UNEXPECTED_CHARACTER) << text;
        EXPECT_EQ(diagnosis.Sentence, "there is an invisible character here");
        EXPECT_EQ(diagnosis.Readings.size(), 1U);
    }
}

TEST(InvisibleCharacters, AreRefusedInNames) {
    EXPECT_THROW(plain().with({{"sm\uFE0Foot", "5 m"}}), CError);
    EXPECT_THROW(plain().with({{"\u3164", "5 m"}}), CError);
    EXPECT_FALSE(isName("m\u2800"));
}

}  // namespace
}  // namespace mensor::exact

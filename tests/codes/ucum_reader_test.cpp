// ucum_reader_test.cpp: codes of UCUM with their meanings, and other texts with the place and the reason of
// their refusal.
#include <string>
#include <string_view>
#include <vector>

#include "codes/UcumGrammar.h"
#include "gmock/gmock.h"
#include "gtest/gtest.h"
#include "mensor_codes/Codes.h"
#include "mensor_exact/Error.h"
#include "mensor_exact/Reading.h"

using namespace mensor;
using codes::eSystem;
using exact::CFactor;
using exact::CFraction;
using exact::CMeaning;
using exact::eRefusal;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

CMeaning read(std::string_view code) { return codes::read(eSystem::UCUM, code); }

// The text must outlive the result.
codes::CReading tryRead(std::string_view code) { return codes::tryRead(eSystem::UCUM, code); }

bool isCode(std::string_view code) { return codes::isCode(eSystem::UCUM, code); }

TEST(Ucum, ReadsWhatInstrumentsAndLaboratoriesWrite) {
    const std::pair<const char*, const char*> same[] = {
        {"mg/dL", "0.01 kg/m³"},
        {"mmol/L", "mol/m³"},
        {"10*3/uL", "10^12/m³"},
        {"10*9/L", "10^12/m³"},
        {"10^12/L", "10^15/m³"},
        {"mm[Hg]", "133.322 Pa"},
        {"cm[H2O]", "98.0665 Pa"},
        {"m[H2O]{35Cel}", "9806.65 Pa"},
        {"kW.h", "3600000 J"},
        {"m3/h", "1/3600 m³/s"},
        {"km/h", "1/3.6 m/s"},
        {"L/min", "1/60000 m³/s"},
        {"W/(m2.K)", "kg/(s³·K)"},
        {"W/m2/K", "kg/(s³·K)"},
        {"umol/min/g", "1/60000 mol/(s·kg)"},
        {"mL/min/{1.73_m2}", "1/60000000 m³/s"},
        {"meq/L", "mol/m³"},
        {"ng/mL{FEU}", "10^-6 kg/m³"},
        {"/100{WBC}", "0.01"},
        {"g/(8.h){shift}", "1/28800000 kg/s"},
        {"{count}", "1"},
        {"{request}/s", "s^-1"},
        {"1", "1"},
        {"%", "0.01"},
        {"%{vol}", "0.01"},
        {"10*-3{a}", "0.001"},
        {"/min", "1/60 s^-1"},
        {"/m2", "m^-2"},
        {"kg.m/s2", "N"},
        {"kg.m.s-2", "N"},
        {"kg.m.s-02", "N"},
        {"m+2", "m²"},
        {"m0", "1"},
        {"4.[pi].10*-7.N/A2", "4e-7·π N/A^2"},
        {"KiBy", "8192 bit"},
        {"Mibit/s", "1048576 bit/s"},
        {"[in_i].[lbf_av]", "0.0254·4.4482216152605 J"},
        {"u", "1.66053906660e-27 kg"},
        {"ug", "10^-9 kg"},
        {"pH", "10^-12 kg·m²/(s²·A²)"},
        {"cd", "cd"},
        {"dar", "10 m²"},
        {"dag", "0.01 kg"},
        {"Pa", "kg/(m·s²)"},
        {"PA", "10^15 A"},
    };
    const exact::CCatalogue catalogue = exact::CCatalogue::builtIn();
    for (const auto& [code, definition] : same) {
        EXPECT_EQ(read(code), catalogue.evaluate(definition))
            << code << " is " << read(code).toString();
    }
}

TEST(Ucum, EvaluatesFromTheLeft) {
    EXPECT_EQ(read("m/s.kg"), read("m.kg/s"));
    EXPECT_EQ(read("m/s/kg"), read("m/(s.kg)"));
    EXPECT_EQ(read("m/(s/kg)"), read("m.kg/s"));
    EXPECT_EQ(read("/m.s"), read("s/m"));
    EXPECT_EQ(read("/m/s"), read("/(m.s)"));
    EXPECT_EQ(read("m/(s/(kg/(K/A)))"), read("m.kg.A/s/K"));
    EXPECT_EQ(read("(m/(s.(kg/K))).A"), read("m.A.K/s/kg"));
    EXPECT_EQ(read("((m/s))/((kg)/(K))"), read("m.K/s/kg"));
    EXPECT_EQ(read("12/5.m"), read("12.m/5"));
}

// Factors in UCUM are whole numbers, so a full stop is never a decimal point.
TEST(Ucum, AFullStopIsAlwaysAProduct) {
    EXPECT_EQ(read("1.5").toString(), "5");
    EXPECT_EQ(read("0010").toString(), "10");
    EXPECT_EQ(read("2.54.cm"), read("108.cm"));
}

TEST(Ucum, ReadsNumbersOfAnyLength) {
    EXPECT_EQ(read("9999999999999999999").toString(), "9999999999999999999");
    EXPECT_EQ(read("18446744073709551616.m").toString(), "18446744073709551616 m");
    EXPECT_EQ(read("m/340282366920938463463374607431768211456"),
              CMeaning::base("m").scaled(CFactor(CFraction(1, 2).power(128))));
    EXPECT_EQ(read("[ft_br]9/[ft_br]9").toString(), "1");
    EXPECT_EQ(read("18446744073709551557/18446744073709551557.m").toString(), "m");
    const std::string zeros(3000, '0');
    EXPECT_EQ(read(zeros + "7.m").toString(), "7 m");
    const std::string digits(4000, '9');
    EXPECT_EQ(read("m." + digits).factor().radicand(), CFraction::ofText(digits));
}

TEST(Ucum, ReadsHighPowersAndManyDimensions) {
    EXPECT_EQ(read("m99").exponentOf("m"), exact::CExponent(99));
    EXPECT_EQ(read("m-99").exponentOf("m"), exact::CExponent(-99));
    EXPECT_EQ(read("m49.m50").exponentOf("m"), exact::CExponent(99));
    EXPECT_EQ(read("m60/m50").exponentOf("m"), exact::CExponent(10));
    EXPECT_EQ(read("km60"),
              CMeaning::base("m").power(60).scaled(CFactor(CFraction(10).power(180))));
    EXPECT_EQ(read("[CFU]/[PFU]/[FFU]2.m"), CMeaning::base("[CFU]") * CMeaning::base("m") /
                                                CMeaning::base("[PFU]") /
                                                CMeaning::base("[FFU]").power(2));
    EXPECT_EQ(read("[pi]60").factor(), CFactor::pi().power(60));
    EXPECT_EQ(read("10*99"), CMeaning().scaled(CFactor(CFraction(10).power(99))));
}

TEST(Ucum, ACodeWhoseMeaningIsOutOfRangeIsRefused) {
    const std::pair<const char*, const char*> texts[] = {
        {"m100", "the exponent of \"m100\" is beyond 99"},
        {"m-100", "the exponent of \"m-100\" is beyond 99"},
        {"s.m99999999999999999999", "the exponent of \"m99999999999999999999\" is beyond 99"},
        {"m99.m", "the exponents of a base unit add up to more than 99"},
        {"/m99.m-1", "the exponents of a base unit add up to more than 99"},
        {"0", "the factor of a unit cannot be zero"},
        {"m/000", "the factor of a unit cannot be zero"},
        {"0.m", "the factor of a unit cannot be zero"},
        {"10*0.0", "the factor of a unit cannot be zero"},
    };
    for (const auto& [code, sentence] : texts) {
        const codes::CReading reading = tryRead(code);
        EXPECT_FALSE(reading) << code;
        EXPECT_EQ(reading.Refusal.Code, eRefusal::NO_MEANING) << code;
        EXPECT_EQ(codes::diagnose(reading.Refusal).message(), sentence) << code;
    }
    for (const char* factor : {".10*99", ".10*40", "/10*49", ".Ym40"}) {
        std::string large = "1";
        for (int i = 0; i < 200; ++i) {
            large += factor;
            large += i % 2 == 0 ? ".m-40" : "";
        }
        const codes::CReading reading = tryRead(large);
        EXPECT_FALSE(reading) << factor;
        EXPECT_EQ(reading.Refusal.Code, eRefusal::NO_MEANING) << factor;
    }
    std::string large = "m";
    for (int i = 0; i < 60; ++i) {
        large += ".10*99";
    }
    EXPECT_EQ(codes::diagnose(tryRead(large).Refusal).message(),
              "the exact factor needs more than 16384 bits");
    // 10^n has about 3.32 n bits.
    std::string longest = "10*99";
    for (int i = 0; i < 48; ++i) {
        longest += ".10*99";
    }
    EXPECT_TRUE(tryRead(longest));
    EXPECT_FALSE(tryRead(longest + ".10*99"));
}

struct Refused {
    const char* Text;
    eRefusal Code;
    std::size_t Position;
    const char* Token;
};

// The bytes before and after the text in memory do not matter.
TEST(Ucum, ReadsNoByteOutsideOfTheText) {
    const std::string_view whole = "(m2.[in_i]{a}/s-12)";
    for (std::size_t begin = 0; begin < whole.size(); ++begin) {
        for (std::size_t size = 0; size <= whole.size() - begin; ++size) {
            const std::string_view view = whole.substr(begin, size);
            const std::string copy(view);
            const codes::CReading reading = tryRead(view);
            const codes::CReading expected = tryRead(copy);
            ASSERT_EQ(reading.Meaning, expected.Meaning) << copy;
            ASSERT_TRUE(reading || reading.Refusal.Code == expected.Refusal.Code) << copy;
            ASSERT_EQ(isCode(view), UcumGrammar::accepts(copy)) << copy;
        }
    }
    EXPECT_EQ(read(std::string_view("m22", 2)).toString(), "m²");
    EXPECT_EQ(tryRead(std::string_view("()").substr(1)).Refusal.Code, eRefusal::STRAY_BRACKET);
}

TEST(Ucum, ACodeNeedNotHaveAMeaning) {
    for (const char* code : {"m", "[pH]", "dB", "J/Cel", "m100", "0"}) {
        EXPECT_TRUE(isCode(code)) << code;
    }
    for (const char* code : {"", "foo", "m/", "2m", "kmin"}) {
        EXPECT_FALSE(isCode(code)) << code;
    }
    EXPECT_TRUE(codes::isCode(eSystem::UNECE, "MTR"));
    EXPECT_TRUE(codes::isCode(eSystem::UNECE, "2N"));  // the decibel
    EXPECT_FALSE(codes::isCode(eSystem::UNECE, "m"));
}

TEST(Ucum, RefusesATextWithTheCodeAndThePlace) {
    const Refused texts[] = {
        {"", eRefusal::EMPTY, 0, ""},
        {"/", eRefusal::MISSING_UNIT, 0, "/"},
        {".", eRefusal::MISSING_UNIT, 0, "."},
        {"m/", eRefusal::MISSING_UNIT, 1, "/"},
        {"m.", eRefusal::MISSING_UNIT, 1, "."},
        {".m", eRefusal::MISSING_UNIT, 0, "."},
        {"m..s", eRefusal::MISSING_UNIT, 2, "."},
        {"m//s", eRefusal::MISSING_UNIT, 2, "/"},
        {"//m", eRefusal::MISSING_UNIT, 1, "/"},
        {"m/.s", eRefusal::MISSING_UNIT, 2, "."},
        {"()", eRefusal::MISSING_UNIT, 0, "()"},
        {"m.()", eRefusal::MISSING_UNIT, 2, "()"},
        {"(m/)", eRefusal::MISSING_UNIT, 2, "/"},
        {"(/m)", eRefusal::MISSING_UNIT, 1, "/"},
        {"m/(/s)", eRefusal::MISSING_UNIT, 3, "/"},
        {"(", eRefusal::OPEN_BRACKET, 0, "("},
        {"(m", eRefusal::OPEN_BRACKET, 0, "("},
        {"m.(s.(kg)", eRefusal::OPEN_BRACKET, 2, "("},
        {"m.(s.(kg", eRefusal::OPEN_BRACKET, 5, "("},
        {"[in_i", eRefusal::OPEN_BRACKET, 0, "["},
        {"{", eRefusal::OPEN_BRACKET, 0, "{"},
        {"m{a", eRefusal::OPEN_BRACKET, 1, "{"},
        {")", eRefusal::STRAY_BRACKET, 0, ")"},
        {"m)", eRefusal::STRAY_BRACKET, 1, ")"},
        {"(m))", eRefusal::STRAY_BRACKET, 3, ")"},
        {"in_i]", eRefusal::UNKNOWN_CODE, 0, "in_i"},
        {"m]", eRefusal::STRAY_BRACKET, 1, "]"},
        {"]", eRefusal::STRAY_BRACKET, 0, "]"},
        {"m}", eRefusal::STRAY_BRACKET, 1, "}"},
        {"{a}}", eRefusal::STRAY_BRACKET, 3, "}"},
        {"[a}b]", eRefusal::STRAY_BRACKET, 2, "}"},
        {"{a{b}}", eRefusal::UNEXPECTED_CHARACTER, 2, "{"},
        {"[a[b]]", eRefusal::UNEXPECTED_CHARACTER, 2, "["},
        {"[a{b}]", eRefusal::UNEXPECTED_CHARACTER, 2, "{"},
        {"m{a b}", eRefusal::UNEXPECTED_CHARACTER, 3, " "},
        {"m{\t}", eRefusal::UNEXPECTED_CHARACTER, 2, "\t"},
        {"m{ä}", eRefusal::UNEXPECTED_CHARACTER, 2, "ä"},
        {"[ä]", eRefusal::UNEXPECTED_CHARACTER, 1, "ä"},
        {"m s", eRefusal::UNEXPECTED_CHARACTER, 1, " "},
        {" m", eRefusal::UNEXPECTED_CHARACTER, 0, " "},
        {"m ", eRefusal::UNEXPECTED_CHARACTER, 1, " "},
        {"m\n", eRefusal::UNEXPECTED_CHARACTER, 1, "\n"},
        {"µm", eRefusal::UNEXPECTED_CHARACTER, 0, "µ"},
        {"°C", eRefusal::UNEXPECTED_CHARACTER, 0, "°"},
        {"m²", eRefusal::UNEXPECTED_CHARACTER, 1, "²"},
        {"N·m", eRefusal::UNEXPECTED_CHARACTER, 1, "·"},
        {"kΩ", eRefusal::UNEXPECTED_CHARACTER, 1, "Ω"},
        {"m\"", eRefusal::UNEXPECTED_CHARACTER, 1, "\""},
        {"m=1", eRefusal::UNEXPECTED_CHARACTER, 1, "="},
        {"m*s", eRefusal::UNEXPECTED_CHARACTER, 1, "*"},
        {"m^2", eRefusal::UNEXPECTED_CHARACTER, 1, "^"},
        {"2^3", eRefusal::UNEXPECTED_CHARACTER, 1, "^"},
        {"100*3", eRefusal::UNEXPECTED_CHARACTER, 3, "*"},
        {"10**3", eRefusal::UNEXPECTED_CHARACTER, 3, "*"},
        {"*", eRefusal::UNEXPECTED_CHARACTER, 0, "*"},
        {"^2", eRefusal::UNEXPECTED_CHARACTER, 0, "^"},
        {"10+3", eRefusal::UNEXPECTED_CHARACTER, 2, "+"},
        {"10+3/ul", eRefusal::UNEXPECTED_CHARACTER, 2, "+"},
        {"10-3", eRefusal::UNEXPECTED_CHARACTER, 2, "-"},
        {"-1", eRefusal::UNEXPECTED_CHARACTER, 0, "-"},
        {"+m", eRefusal::UNEXPECTED_CHARACTER, 0, "+"},
        {"m/-s", eRefusal::UNEXPECTED_CHARACTER, 2, "-"},
        {"(m)-1", eRefusal::UNEXPECTED_CHARACTER, 3, "-"},
        {"m{a}-1", eRefusal::UNEXPECTED_CHARACTER, 4, "-"},
        {"m-", eRefusal::MALFORMED_EXPONENT, 1, "-"},
        {"m+", eRefusal::MALFORMED_EXPONENT, 1, "+"},
        {"m-/s", eRefusal::MALFORMED_EXPONENT, 1, "-"},
        {"m--2", eRefusal::MALFORMED_EXPONENT, 1, "-"},
        {"10*-", eRefusal::MALFORMED_EXPONENT, 3, "-"},
        {"(m)2", eRefusal::MALFORMED_EXPONENT, 3, "2"},
        {"m{a}2", eRefusal::MALFORMED_EXPONENT, 4, "2"},
        {"{a}2", eRefusal::MALFORMED_EXPONENT, 3, "2"},
        {"{a}rad2{b}", eRefusal::MISSING_OPERATOR, 3, "r"},
        {"{a}m", eRefusal::MISSING_OPERATOR, 3, "m"},
        {"{a}{b}", eRefusal::MISSING_OPERATOR, 3, "{"},
        {"m{a}{b}", eRefusal::MISSING_OPERATOR, 4, "{"},
        {"2m", eRefusal::MISSING_OPERATOR, 1, "m"},
        {"m2s", eRefusal::MISSING_OPERATOR, 2, "s"},
        {"m(s)", eRefusal::MISSING_OPERATOR, 1, "("},
        {"(m)(s)", eRefusal::MISSING_OPERATOR, 3, "("},
        {"(m)s", eRefusal::MISSING_OPERATOR, 3, "s"},
        {"2[in_i]", eRefusal::MISSING_OPERATOR, 1, "["},
        {"2(m)", eRefusal::MISSING_OPERATOR, 1, "("},
        {"foo", eRefusal::UNKNOWN_CODE, 0, "foo"},
        {"m.foo/s", eRefusal::UNKNOWN_CODE, 2, "foo"},
        {"[foo]", eRefusal::UNKNOWN_CODE, 0, "[foo]"},
        {"[]", eRefusal::UNKNOWN_CODE, 0, "[]"},
        {"k", eRefusal::UNKNOWN_CODE, 0, "k"},
        {"mkg", eRefusal::UNKNOWN_CODE, 0, "mkg"},
        {"kmin", eRefusal::UNKNOWN_CODE, 0, "kmin"},
        {"m[in_i]", eRefusal::UNKNOWN_CODE, 0, "m[in_i]"},
        {"mm[Hg", eRefusal::OPEN_BRACKET, 2, "["},
        {"m\x80", eRefusal::MALFORMED_TEXT, 1, "\x80"},
    };
    for (const Refused& text : texts) {
        const codes::CReading reading = tryRead(text.Text);
        ASSERT_FALSE(reading) << text.Text;
        EXPECT_EQ(reading.Refusal.Code, text.Code)
            << text.Text << ": " << exact::nameOf(reading.Refusal.Code);
        EXPECT_EQ(reading.Refusal.Token.Begin, text.Position) << text.Text;
        EXPECT_EQ(reading.Refusal.Token.of(reading.Refusal.Text), text.Token) << text.Text;
        const exact::CDiagnosis diagnosis = codes::diagnose(reading.Refusal);
        EXPECT_FALSE(diagnosis.Sentence.empty()) << text.Text;
        EXPECT_EQ(diagnosis.Token, text.Token);
        EXPECT_FALSE(UcumGrammar::accepts(text.Text)) << text.Text;
    }
    const std::string nul("m\0", 2);
    EXPECT_EQ(tryRead(nul).Refusal.Code, eRefusal::MALFORMED_TEXT);
    EXPECT_EQ(tryRead(std::string("{\0}", 3)).Refusal.Code, eRefusal::MALFORMED_TEXT);
}

TEST(Ucum, SaysWhatIsWrongWithAText) {
    const auto messageOn = [](std::string_view code) {
        return codes::diagnose(tryRead(code).Refusal).message();
    };
    const std::pair<const char*, const char*> texts[] = {
        {"", "the text is empty; the unit one is \"1\""},
        {"foo", "UCUM has no unit \"foo\""},
        {"kmin",
         "UCUM has no unit \"kmin\": the unit at its end cannot have a prefix (did you mean "
         "\"min\"?)"},
        {"m/", "there is no unit after this sign"},
        {"(m/)", "there is no unit after this sign"},
        {"m//s", "there is no unit before this sign"},
        {"()", "there is nothing between these brackets"},
        {"m)", "unmatched closing bracket"},
        {"/)", "unmatched closing bracket"},
        {"]", "unmatched closing bracket"},
        {"m}", "unmatched closing bracket"},
        {"{a}}", "unmatched closing bracket"},
        {"[a}", "unmatched closing bracket"},
        {"{a", "this bracket is never closed"},
        {"{{", "an annotation cannot be inside square brackets or braces"},
        {"[[", "square brackets cannot be nested"},
        {"*", "this sign can only follow \"10\""},
        {"m*", "this sign can only follow \"10\"; an exponent needs no sign: \"m2\""},
        {"^", "this sign can only follow \"10\""},
        {"m^", "this sign can only follow \"10\"; an exponent needs no sign: \"m2\""},
        {"+1", "a sign can only precede the digits of an exponent"},
        {"-1", "a sign can only precede the digits of an exponent"},
        {"10+3", "a sign can only precede the digits of an exponent"},
        {"m-", "no digits of an exponent follow this sign"},
        {"(m)2", "an exponent must follow its unit directly"},
        {"{a}m",
         "an operator is missing here; a product is written \"a.b\" (write "
         "\"{a}.m\")"},
        {"{a}{b}", "a unit has at most one annotation"},
        {"m s", "a code of UCUM has no blanks"},
        {"m\"", "a code of UCUM has no quotation marks"},
        {"m=", "a code of UCUM has no equals signs"},
        {"m\t", "this is an invisible character"},
        {"m\x7F", "this is an invisible character"},
        {"m\x80", "this byte cannot be part of a text"},
        {"mä", "codes of UCUM are written in ASCII"},
        {"µfoo", "codes of UCUM are written in ASCII; the prefix micro is \"u\""},
        {"μfoo", "codes of UCUM are written in ASCII; the prefix micro is \"u\""},
        {"°foo",
         "codes of UCUM are written in ASCII; the degree Celsius is \"Cel\", the degree of "
         "arc \"deg\""},
        {"Ωfoo", "codes of UCUM are written in ASCII; the ohm is \"Ohm\""},
        {"\u2126foo", "codes of UCUM are written in ASCII; the ohm is \"Ohm\""},
        {"m·foo", "codes of UCUM are written in ASCII; a product is written \"a.b\""},
        {"m×foo", "codes of UCUM are written in ASCII; a product is written \"a.b\""},
        {"m²foo", "codes of UCUM are written in ASCII; exponents are plain digits: \"m2\""},
        {"m³foo", "codes of UCUM are written in ASCII; exponents are plain digits: \"m2\""},
        {"m¹foo", "codes of UCUM are written in ASCII; exponents are plain digits: \"m2\""},
        {"m⁻foo", "codes of UCUM are written in ASCII; exponents are plain digits: \"m2\""},
        {"/Cel", "\"Cel\" is a scale with its own zero and cannot be part of a product"},
        {"Cel2", "\"Cel\" is a scale with its own zero and cannot be part of a product"},
        {"m.mCel", "\"mCel\" is a scale with its own zero and cannot be part of a product"},
        {"m4294967298", "the exponent of \"m4294967298\" is beyond 99"},
        {"m100.Cel.0", "the exponent of \"m100\" is beyond 99"},
        {"0.m100", "the factor of a unit cannot be zero"},
    };
    for (const auto& [text, message] : texts) {
        EXPECT_EQ(messageOn(text), message) << text;
    }
    EXPECT_EQ(messageOn(std::string(5000, 'm')), "a code of UCUM has at most 4096 bytes");
    EXPECT_EQ(messageOn(std::string(65, '(')), "brackets are nested more than 64 deep");
    EXPECT_THROW(read("foo"), exact::CReadError);
    EXPECT_THROW(read("[pH]"), exact::CReadError);
}

TEST(Ucum, SuggestsACorrectionOfTheWholeText) {
    const auto readings = [](std::string_view code) {
        return codes::diagnose(tryRead(code).Refusal).Readings;
    };
    const std::pair<const char*, const char*> texts[] = {
        {"µg/m³", "ug/m3"}, {"μm", "um"},     {"°C", "Cel"}, {"N·m", "N.m"},
        {"N*m", "N.m"},     {"N×m", "N.m"},   {"m^2", "m2"}, {"m^-2", "m-2"},
        {"m⁻²", "m-2"},     {"kΩ", "kOhm"},   {"2m", "2.m"}, {"kg(m)", "kg.(m)"},
        {"m²s", "m2.s"},    {" mg", "mg"},    {"mg ", "mg"}, {"2·µm²·s^2", "2.um2.s2"},
        {"Å", "Ao"},        {"W/m²", "W/m2"}, {"m⁰", "m0"},  {"m¹⁴", "m14"}};
    for (const auto& [text, code] : texts) {
        EXPECT_THAT(readings(text), ElementsAre(code)) << text;
    }
    EXPECT_EQ(codes::diagnose(tryRead("µm").Refusal).message(),
              "codes of UCUM are written in ASCII; the prefix micro is \"u\" (write \"um\")");
    // People may multiply or divide by the kelvin in these texts.
    for (const char* text : {"W/m²·K", "J/kg*K", "W/m2K", "m s", "°", "µfoo", "m^", "m{a}{b}",
                             "m¹⁰⁰", "m)", "(m", "\x80", "ä"}) {
        EXPECT_THAT(readings(text), IsEmpty()) << text;
    }
    EXPECT_THAT(readings(" " + std::string(40, 'm')), IsEmpty());
    EXPECT_THAT(readings(std::string(15, ' ') + "m"), ElementsAre("m"));
    EXPECT_THAT(readings(std::string(16, ' ') + "m"), IsEmpty()) << "too many faults";
}

TEST(Ucum, SuggestsCodesForAnUnknownUnit) {
    const auto suggestions = [](std::string_view code) {
        return codes::diagnose(tryRead(code).Refusal).Suggestions;
    };
    EXPECT_THAT(suggestions("degC"), ElementsAre("Cel"));
    EXPECT_THAT(suggestions("5/mmHg"), ElementsAre("mm[Hg]"));
    EXPECT_THAT(suggestions("mcg/mL"), ElementsAre("ug"));
    EXPECT_THAT(suggestions("Sec"), ElementsAre("s"));
    EXPECT_THAT(suggestions("psi"), ElementsAre("[psi]"));
    EXPECT_THAT(suggestions("in"), ElementsAre("[in_i]", "[in_us]", "[in_br]"));
    EXPECT_THAT(suggestions("IU/L"), ElementsAre("[iU]", "[IU]"));
    EXPECT_THAT(suggestions("[in]"), ElementsAre("[in_i]", "[in_us]", "[in_br]"));
    EXPECT_THAT(suggestions("[in_i]x"), ElementsAre("[in_i]", "[cin_i]", "[kn_i]", "[sin_i]"));
    EXPECT_THAT(suggestions("CFU"), ElementsAre("[CFU]"));
    EXPECT_THAT(suggestions("KG"), Contains("kg"));
    EXPECT_THAT(suggestions("mIU"), Contains("m[IU]"));
    EXPECT_THAT(suggestions("MMOL"), ElementsAre("Mmol", "mmol"));
    EXPECT_THAT(suggestions("mEq/L"), Contains("meq"));
    EXPECT_THAT(suggestions("ohm"), ElementsAre("Ohm"));
    EXPECT_THAT(suggestions("kWh"), ElementsAre("kW.h"));
    EXPECT_THAT(suggestions("Nm"), Contains("nm"));
    EXPECT_THAT(suggestions("cal_IT2"), IsEmpty());  // this text is a code already
    EXPECT_THAT(suggestions("[arbU]"), Contains("[arb'U]"));
    EXPECT_THAT(suggestions("xyzzy"), IsEmpty());
    EXPECT_THAT(suggestions(std::string(33, 'm')), IsEmpty());
    EXPECT_THAT(suggestions("m s"), IsEmpty());
    for (const auto& [text, code] : {
#define MENSOR_CONFUSED(text, code) std::pair<const char*, const char*>{text, code},
#include "mensor_codes/ucum_confused.def"
#undef MENSOR_CONFUSED
         }) {
        EXPECT_FALSE(isCode(text)) << text;
        EXPECT_TRUE(isCode(code)) << code;
        ASSERT_THAT(suggestions(text), testing::Not(IsEmpty())) << text;
        EXPECT_EQ(suggestions(text)[0], code) << text;
    }
}

TEST(Ucum, AcceptsAnyPrintableAsciiInAnnotations) {
    std::string all;
    for (char c = '!'; c <= '~'; ++c) {
        all += c == '{' || c == '}' ? "" : std::string(1, c);
    }
    EXPECT_EQ(read("m{" + all + "}"), read("m"));
    EXPECT_EQ(read("{" + all + "}"), read("1"));
    EXPECT_EQ(read("{}"), read("1"));
    EXPECT_EQ(read("{a}.{b}"), read("1"));
    EXPECT_EQ(read("{a}/{b}"), read("1"));
    EXPECT_EQ(read("/{b}"), read("1"));
    EXPECT_EQ(read("m2{a}/s{b}"), read("m2/s"));
    EXPECT_EQ(read("(m/s){a}"), read("m/s"));
    EXPECT_EQ(read("{(}.m"), read("m"));
    EXPECT_EQ(read("10*{a}"), read("10"));
    for (int c = 0; c < 256; ++c) {
        const bool isAllowed = c >= '!' && c <= '~' && c != '{' && c != '}';
        const std::string text = std::string("m{") + static_cast<char>(c) + "}";
        EXPECT_EQ(static_cast<bool>(tryRead(text)), isAllowed) << c;
    }
}

TEST(Ucum, BoundsTheLengthAndTheDepth) {
    EXPECT_TRUE(tryRead("{" + std::string(4094, 'a') + "}"));
    EXPECT_EQ(tryRead("{" + std::string(4095, 'a') + "}").Refusal.Code, eRefusal::TOO_LONG);
    const auto nested = [](std::size_t depth) {
        return std::string(depth, '(') + "m" + std::string(depth, ')');
    };
    EXPECT_TRUE(tryRead(nested(64)));
    const codes::CReading deep = tryRead(nested(65));
    EXPECT_EQ(deep.Refusal.Code, eRefusal::TOO_DEEP);
    EXPECT_EQ(deep.Refusal.Token.Begin, 64U);
    EXPECT_EQ(tryRead(std::string(4096, '(')).Refusal.Code, eRefusal::TOO_DEEP);
    EXPECT_EQ(tryRead(std::string(1000000, 'm')).Refusal.Code, eRefusal::TOO_LONG);
    std::string flat = "m";
    for (int i = 0; i < 1000; ++i) {
        flat += i % 2 == 0 ? "/(m)" : ".(m)";
    }
    EXPECT_EQ(read(flat), read("m"));
}

// Each factor is one bracket deeper than the one before, and each bracket follows a "/".
TEST(Ucum, DividesByNestedBrackets) {
    std::string text = "m";
    for (int i = 0; i < 63; ++i) {
        text += "/(s";
    }
    text += "/(kg";
    text += std::string(64, ')');
    const CMeaning meaning = read(text);
    EXPECT_EQ(meaning.exponentOf("m"), exact::CExponent(1));
    EXPECT_EQ(meaning.exponentOf("s"), exact::CExponent(-1));
    EXPECT_EQ(meaning.exponentOf("kg"), exact::CExponent(1));
}

TEST(Ucum, ReadsRandomCodesOfItsGrammar) {
    UcumGenerator generator(1);
    int read = 0;
    for (int i = 0; i < 6000; ++i) {
        UcumGenerator::Expression expression;
        try {
            expression = generator.expression();
        } catch (const exact::CError&) {
            continue;  // the meaning is too large
        }
        if (expression.Text.size() > 4096) {
            continue;
        }
        const codes::CReading reading = tryRead(expression.Text);
        ASSERT_TRUE(reading) << expression.Text << ": "
                             << codes::diagnose(reading.Refusal).message();
        ASSERT_EQ(*reading.Meaning, expression.Meaning) << expression.Text;
        ++read;
    }
    EXPECT_GT(read, 5500);
}

// Changes a code at one or two places. The result is accepted if and only if the grammar accepts it.
TEST(Ucum, AgreesWithItsGrammarOnChangedCodes) {
    const std::string characters = "m()[]{}./+-0123456789*^ skgdaKi'_%\"=,µU";
    UcumGenerator generator(2);
    int valid = 0;
    int invalid = 0;
    for (int i = 0; i < 4000; ++i) {
        std::string text;
        try {
            text = generator.expression().Text;
        } catch (const exact::CError&) {
            continue;
        }
        if (text.size() > 40) {
            continue;
        }
        for (std::size_t changes = 1 + generator.below(2); changes > 0; --changes) {
            const std::size_t at = generator.below(text.size() + 1);
            const char c = characters[generator.below(characters.size())];
            switch (generator.below(4)) {
                case 0: text.insert(at, 1, c); break;
                case 1: text.erase(at, 1 + generator.below(3)); break;
                case 2: text.replace(at, 1, 1, c); break;
                default: std::swap(text[at % text.size()], text[at / 2 % text.size()]); break;
            }
            if (text.empty()) {
                break;
            }
        }
        const bool isValid = UcumGrammar::accepts(text);
        ASSERT_EQ(isCode(text), isValid)
            << text << ": " << codes::diagnose(tryRead(text).Refusal).message();
        (isValid ? valid : invalid) += 1;
    }
    EXPECT_GT(valid, 300);
    EXPECT_GT(invalid, 1000);
}

// All short texts of a few characters.
TEST(Ucum, AgreesWithItsGrammarOnAllShortTexts) {
    const std::string characters = "m1.0/(){}-*";
    std::vector<std::string> texts = {""};
    int valid = 0;
    for (std::size_t next = 0; next < texts.size(); ++next) {
        const std::string text = texts[next];
        const bool isValid = UcumGrammar::accepts(text);
        ASSERT_EQ(isCode(text), isValid) << "\"" << text << "\"";
        valid += isValid ? 1 : 0;
        if (text.size() < 4) {
            for (const char c : characters) {
                texts.push_back(text + c);
            }
        }
    }
    EXPECT_GT(valid, 300);
}

TEST(OpenTelemetry, HasTheCodesOfUcum) {
    for (const char* unit :
         {"1",           "%",        "s",     "ms",       "us",        "By", "KiBy", "MiBy",
          "By/s",        "bit/s",    "Cel",   "Hz",       "V",         "W",  "J",    "{request}",
          "{request}/s", "{packet}", "{cpu}", "{thread}", "{fault}/s", "m",  "kg"}) {
        const codes::CReading reading = codes::tryRead(eSystem::OPENTELEMETRY, unit);
        ASSERT_TRUE(reading) << unit;
        EXPECT_EQ(*reading.Meaning, read(unit)) << unit;
    }
    EXPECT_EQ(codes::codeFor(eSystem::OPENTELEMETRY, read("circ/min")).Code, "circ/min");
    EXPECT_EQ(codes::tryRead(eSystem::OPENTELEMETRY, "bytes").Refusal.System,
              eSystem::OPENTELEMETRY);
    EXPECT_EQ(codes::tryRead(eSystem::OPENTELEMETRY, "").Refusal.Code, eRefusal::EMPTY);
    EXPECT_STREQ(codes::nameOf(eSystem::OPENTELEMETRY), "OpenTelemetry");
}

TEST(OpenTelemetry, HasRevolutionsPerMinuteUnlikeUcum) {
    EXPECT_EQ(codes::read(eSystem::OPENTELEMETRY, "rpm"), read("circ/min"));
    EXPECT_FALSE(isCode("rpm"));
    EXPECT_FALSE(codes::isCode(eSystem::OPENTELEMETRY, "krpm"));
    EXPECT_FALSE(codes::isCode(eSystem::OPENTELEMETRY, "rpm/s"));
    EXPECT_EQ(codes::find(eSystem::OPENTELEMETRY, "rpm")->SameAs, "circ/min");
    EXPECT_EQ(codes::find(eSystem::OPENTELEMETRY, "m")->Name, "metre");
    EXPECT_FALSE(codes::find(eSystem::UCUM, "rpm"));
    const std::vector<codes::CCode> rows = codes::all(eSystem::OPENTELEMETRY);
    EXPECT_EQ(rows.size(), codes::all(eSystem::UCUM).size() + 1);
    EXPECT_EQ(rows.back().Code, "rpm");
    EXPECT_EQ(exact::CCatalogue::builtIn().evaluate(rows.back().Definition), read("circ/min"));
}

}  // namespace

// UnitFormat_test.cpp: the two notations, side by side.
#include "mensor/UnitFormat.h"

#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "mensor/BaseUnit.h"
#include "mensor/NonSI.h"
#include "mensor/ProductUnit.h"
#include "mensor/SI.h"
#include "support/Matchers.h"
#include "support/outcome.h"

namespace mensor {
namespace {

std::string standard(const CUnitPtr& unit, const string_t& buffer = string_t()) {
    return text(CStandardUnitFormat::instance()->format(unit, buffer));
}

std::string ascii(const CUnitPtr& unit, const string_t& buffer = string_t()) {
    return text(CASCIIUnitFormat::instance()->format(unit, buffer));
}

// A base unit that is in no product of the catalogue, so the test builds its products first and
// decides the order of their factors.
CUnitPtr base(const char* symbol) { return CBaseUnit::getInstance(symbol); }

struct Row {
    CUnitPtr Unit;
    const char* Standard;
    const char* ASCII;
};

void expectTexts(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        EXPECT_EQ(standard(row.Unit), row.Standard);
        EXPECT_EQ(ascii(row.Unit), row.ASCII);
        EXPECT_THAT(row.Unit, PrintsAs(row.Standard)) << "toString() writes the standard notation";
    }
}

TEST(UnitFormat, WritesAUnitByItsLabelOrSymbol) {
    expectTexts({
        {SI::Meter(), "m", "m"},
        {SI::Newton(), "N", "N"},
        {SI::Ohm(), "\u2126", "\u2126"},
        {SI::Kilo(SI::Meter()), "km", "km"},
        {SI::Micro(SI::Second()), "µs", "µs"},  // the plain notation does not change names
        {SI::Celsius(), "°C", "°C"},
        {SI::Milli(SI::Kelvin()), "m°C", "m°C"},
        {NonSI::SecondAngle(), "″", "″"},
        {CProductUnit::one(), "One", "One"},
    });
}

TEST(UnitFormat, WritesAProductFactorByFactor) {
    const CUnitPtr ell = base("ell"), loth = base("loth"), zoll = base("zoll"), mark = base("mark");
    expectTexts({
        // Numerators only
        {ell * loth, "ell·loth", "ell loth"},
        {ell->pow(2), "ell²", "ell^2"},
        {ell->pow(3), "ell³", "ell^3"},
        {ell->pow(4), "ell^4", "ell^4"},
        {ell->pow(10), "ell^10", "ell^10"},
        {ell->root(2), "ell^1:2", "ell^1:2"},
        {ell->pow(3)->root(2), "ell^3:2", "ell^3:2"},
        {ell->pow(2)->root(5), "ell^2:5", "ell^2:5"},
        {zoll->pow(2) * mark->root(3) * ell, "zoll²·mark^1:3·ell", "zoll^2 mark^1:3 ell"},
        // One divisor
        {ell / zoll, "ell/zoll", "ell zoll^-1"},
        {ell / zoll->pow(2), "ell/zoll²", "ell zoll^-2"},
        {ell / zoll->pow(4), "ell/zoll^4", "ell zoll^-4"},
        {ell / zoll->root(2), "ell/zoll^1:2", "ell zoll^-1:2"},
        {loth * ell->pow(2) / zoll->pow(2), "loth·ell²/zoll²", "loth ell^2 zoll^-2"},
        // Several divisors
        {ell / (loth * zoll), "ell/(loth·zoll)", "ell loth^-1 zoll^-1"},
        {loth * ell->pow(2) / zoll->pow(3) / mark, "loth·ell²/(zoll³·mark)",
         "loth ell^2 zoll^-3 mark^-1"},
        // Divisors only
        {zoll->pow(-1), "1/zoll", "zoll^-1"},
        {zoll->pow(-2), "1/zoll²", "zoll^-2"},
        {zoll->root(-2), "1/zoll^1:2", "zoll^-1:2"},
        {CProductUnit::one() / ell / zoll, "1/(ell·zoll)", "ell^-1 zoll^-1"},
        // The standard notation moves a factor after a divisor before the bar. The plain one keeps
        // the order.
        {ell / loth * mark, "ell·mark/loth", "ell loth^-1 mark"},
        {CProductUnit::one() / zoll * mark->pow(2) / ell * loth, "mark²·loth/(zoll·ell)",
         "zoll^-1 mark^2 ell^-1 loth"},
        // Factors with a symbol or a label
        {SI::Newton() * zoll, "N·zoll", "N zoll"},
        {SI::Kilo(SI::Meter()) / zoll, "km/zoll", "km zoll^-1"},
        {SI::Kilo(SI::Meter())->pow(2) * ell, "km²·ell", "km^2 ell"},
    });
}

TEST(UnitFormat, WritesProductsOfTheCatalogueInTheirOrder) {
    expectTexts({
        {SI::Kilogram() * SI::Meter()->pow(2) / SI::Second()->pow(2), "m²·kg/s²", "m^2 kg s^-2"},
        {SI::Volt()->getDimension(), "m²·kg/(s³·A)", "m^2 kg s^-3 A^-1"},
        {SI::Pascal()->getDimension(), "kg/(m·s²)", "m^-1 kg s^-2"},
        {SI::Hertz()->getDimension(), "1/s", "s^-1"},
        {SI::Meter() / SI::Second(), "m/s", "m s^-1"},
    });
}

TEST(UnitFormat, AppendsToTheBufferWithoutSeparator) {
    const CUnitPtr ell = base("ell"), zoll = base("zoll");
    const CUnitPtr product = ell * zoll->pow(2);
    const CUnitPtr inverse = ell->pow(-1) / zoll;
    EXPECT_EQ(standard(product, "x"), "xell·zoll²");
    EXPECT_EQ(ascii(product, "x"), "xell zoll^2");
    EXPECT_EQ(standard(inverse, "x"), "x1/(ell·zoll)");
    EXPECT_EQ(ascii(inverse, "x"), "xell^-1 zoll^-1");
    EXPECT_EQ(standard(SI::Meter(), "x²·"), "x²·m");
    EXPECT_EQ(ascii(SI::Meter(), "x²·"), "x²·m");
    EXPECT_EQ(standard(product, "2.5 "), "2.5 ell·zoll²");
    EXPECT_EQ(text(product->appendTo("x")), "xell·zoll²");
    EXPECT_EQ(text(product->toString()), text(product->appendTo(string_t())));
}

TEST(UnitFormat, AppendWritesOneFactor) {
    struct Factor {
        const char* Symbol;
        int Pow;
        int Root;
        const char* Written;
    };
    constexpr int largest = std::numeric_limits<int>::max();
    constexpr int smallest = std::numeric_limits<int>::min();
    for (const Factor& factor : std::vector<Factor>{
             {"m", 1, 1, "m"},
             {"m", 2, 1, "m²"},
             {"m", 3, 1, "m³"},
             {"m", 4, 1, "m^4"},
             {"m", 12, 1, "m^12"},
             {"m", 0, 1, "m^0"},
             {"m", -1, 1, "m^-1"},
             {"m", -2, 1, "m^-2"},
             {"m", 1, 2, "m^1:2"},
             {"m", 2, 2, "m^2:2"},
             {"m", 2, 3, "m^2:3"},
             {"m", 3, 2, "m^3:2"},
             {"m", -3, 2, "m^-3:2"},
             {"m", 1, -1, "m^1:-1"},
             {"m", 1, 0, "m^1:0"},
             {"", 1, 1, ""},
             {"", 2, 1, "²"},
             {"°µ", 2, 1, "°µ²"},
             {"m", largest, largest, "m^2147483647:2147483647"},
             {"m", smallest, smallest, "m^-2147483648:-2147483648"},
         }) {
        string_t buffer("kg·");
        CStandardUnitFormat::append(buffer, factor.Symbol, factor.Pow, factor.Root);
        EXPECT_EQ(text(buffer), std::string("kg·") + factor.Written);
    }
}

TEST(UnitFormat, WritesTheLabelOfAProductInsteadOfItsFactors) {
    const CUnitPtr ell = base("ell"), zoll = base("zoll");
    const CUnitPtr speed = ell / zoll;
    expectTexts({{speed, "ell/zoll", "ell zoll^-1"}});
    CUnitFormat::label(speed, "knot²");
    expectTexts({{speed, "knot²", "knot²"}});
    CUnitFormat::label(speed, "knot");
    expectTexts({{speed, "knot", "knot"}});
    CUnitFormat::label(ell, "Elle");
    expectTexts({{ell * zoll, "Elle·zoll", "Elle zoll"}});
    CUnitFormat::label(speed, "");
    expectTexts({{speed, "Elle/zoll", "Elle zoll^-1"}});
}

TEST(UnitFormat, WritesALabelledProductInsideAProduct) {
    const CUnitPtr ell = base("ell"), zoll = base("zoll");
    const CUnitPtr speed = ell / zoll;
    const CUnitPtr power = CProductUnit::getInstance({CUnitRationalPower(speed, 2, 1)}, {});
    expectTexts({{power, "²", "^2"}});  // the factor has no label yet, so nothing is written for it
    CUnitFormat::label(speed, "knot");
    expectTexts({{power, "knot²", "knot^2"}});
    EXPECT_THAT(speed->pow(2), PrintsAs("ell²/zoll²"))
        << "only getInstance makes a product of products";
}

TEST(UnitFormat, WritesNothingForAFactorWithoutName) {
    const CUnitPtr ell = base("ell");
    const CUnitPtr unnamed = base("zoll") * 7;
    expectTexts({
        {unnamed * ell, "ell", "ell"},  // nothing precedes ell, so there is no separator
        {unnamed->pow(2) * ell, "²·ell", "^2 ell"},
        {ell / unnamed, "ell/", "ell ^-1"},
    });
}

TEST(UnitFormat, RefusesATransformedUnitWithoutName) {
    const CUnitPtr unnamed = base("zoll") * 7;
    const std::string refused = "std::invalid_argument: Cannot format given Object as a Unit";
    EXPECT_EQ(outcomeOf([&] { standard(unnamed); }), refused);
    EXPECT_EQ(outcomeOf([&] { ascii(unnamed); }), refused);
    EXPECT_EQ(outcomeOf([&] { unnamed->toString(); }), refused);
    EXPECT_EQ(outcomeOf([&] { unnamed->appendTo("x"); }), refused);
    EXPECT_EQ(outcomeOf([] { NonSI::Aeon()->toStdString(); }), refused);

    const CUnitPtr ell = base("ell");
    CUnitFormat::label(ell, "");
    EXPECT_EQ(outcomeOf([&] { standard(ell); }), refused) << "the empty label replaces the symbol";
    EXPECT_EQ(outcomeOf([&] { ascii(ell); }), refused);

    CUnitFormat::label(unnamed, "dozen");
    expectTexts({{unnamed, "dozen", "dozen"}});
}

TEST(UnitFormat, EachNotationIsOneObject) {
    EXPECT_EQ(CStandardUnitFormat::instance(), CStandardUnitFormat::instance());
    EXPECT_EQ(CASCIIUnitFormat::instance(), CASCIIUnitFormat::instance());
    EXPECT_NE(CStandardUnitFormat::instance(), CASCIIUnitFormat::instance());
    EXPECT_NE(dynamic_cast<CStandardUnitFormat*>(CStandardUnitFormat::instance().get()), nullptr);
    EXPECT_NE(dynamic_cast<CASCIIUnitFormat*>(CASCIIUnitFormat::instance().get()), nullptr);
}

TEST(UnitFormat, IsAbstractAndItsStatesHaveFixedNumbers) {
    EXPECT_TRUE(std::is_abstract_v<CUnitFormat>);
    EXPECT_FALSE(std::has_virtual_destructor_v<CUnitFormat>);
    EXPECT_EQ(CUnitFormat::DEFAULT, 0);
    EXPECT_EQ(CUnitFormat::SYSTEM_NAME, 1);
    EXPECT_EQ(CUnitFormat::NAME, 2);
    EXPECT_EQ(CUnitFormat::EXPONENT, 3);
    EXPECT_EQ(CUnitFormat::MARKUP, 4);
    EXPECT_EQ(CUnitFormat::ESCAPE, 5);
}

}  // namespace
}  // namespace mensor

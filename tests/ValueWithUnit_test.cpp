// ValueWithUnit_test.cpp: conversion, arithmetic, comparison and the text of values with units.
#include "mensor/ValueWithUnit.h"

#include <cmath>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "mensor/BaseUnit.h"
#include "mensor/Converter.h"
#include "mensor/NonSI.h"
#include "mensor/ProductUnit.h"
#include "mensor/SI.h"
#include "support/Matchers.h"
#include "support/outcome.h"

namespace mensor {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double denormal = std::numeric_limits<double>::denorm_min();
const char* const incompatible =
    "std::invalid_argument: s is not compatible with m in current context";

const CUnitPtr metre = SI::Meter();
const CUnitPtr second = SI::Second();
const CUnitPtr kilometre = SI::Kilo(SI::Meter());

CValueWithUnit metres(double value) { return CValueWithUnit(value, metre); }
CValueWithUnit kilometres(double value) { return CValueWithUnit(value, kilometre); }

MATCHER_P2(IsQuantity, value, unit, "is " + exactly(value) + " " + unit->toStdString()) {
    *result_listener << "which is " << exactly(arg.value()) << " " << arg.unit()->toStdString();
    return bitsOf(arg.value()) == bitsOf(value) && arg.unit() == unit;
}

TEST(ValueWithUnit, StoresItsNumberAndUnit) {
    EXPECT_THAT(metres(-2.5), IsQuantity(-2.5, metre));
    EXPECT_THAT(metres(-0.0), IsQuantity(-0.0, metre));
    EXPECT_THAT(metres(infinity), IsQuantity(infinity, metre));
    EXPECT_TRUE(std::isnan(metres(nan).value()));
    EXPECT_EQ(CValueWithUnit(1, nullptr).unit(), nullptr);
}

TEST(ValueWithUnit, CopiesHaveTheirOwnNumberAndTheSameUnit) {
    const CValueWithUnit original = metres(2);
    CValueWithUnit copy = original;
    copy.setValue(3);
    copy.setUnit(second);
    EXPECT_THAT(original, IsQuantity(2.0, metre));
    EXPECT_THAT(copy, IsQuantity(3.0, second));
    copy = original;
    EXPECT_THAT(copy, IsQuantity(2.0, metre));
}

TEST(ValueWithUnit, SetUnitKeepsTheNumberAndChangeUnitConverts) {
    CValueWithUnit value = metres(1000);
    value.setUnit(kilometre);
    EXPECT_THAT(value, IsQuantity(1000.0, kilometre));
    value = metres(1000);
    value.changeUnit(kilometre);
    EXPECT_THAT(value, IsQuantity(1.0, kilometre));
    value.changeUnit(kilometre);
    EXPECT_THAT(value, IsQuantity(1.0, kilometre));
    value.setUnit(second);
    EXPECT_THAT(value, IsQuantity(1.0, second)) << "setUnit does not compare dimensions";
}

TEST(ValueWithUnit, ConvertsWithoutChangingItself) {
    const CValueWithUnit way = kilometres(2.5);
    EXPECT_THAT(way.valueAs(metre), HasBitsOf(2500.0));
    EXPECT_THAT(way.convertTo(metre), IsQuantity(2500.0, metre));
    EXPECT_THAT(way, IsQuantity(2.5, kilometre));
    EXPECT_THAT(way.valueAs(kilometre), HasBitsOf(2.5));
    EXPECT_THAT(CValueWithUnit(-0.0, metre).valueAs(metre), HasBitsOf(-0.0));
    EXPECT_THAT(kilometres(1e308).valueAs(metre), HasBitsOf(infinity));
}

TEST(ValueWithUnit, ConvertsTemperaturesWithTheirOffset) {
    const CValueWithUnit zero(0, SI::Celsius());
    EXPECT_THAT(zero.valueAs(SI::Kelvin()), HasBitsOf(273.15));
    EXPECT_THAT(CValueWithUnit(0, SI::Kelvin()).valueAs(SI::Celsius()), HasBitsOf(-273.15));
    EXPECT_THAT(zero + CValueWithUnit(300, SI::Kelvin()), IsQuantity(300 - 273.15, SI::Celsius()));
    EXPECT_THAT(CValueWithUnit(300, SI::Kelvin()) - CValueWithUnit(20, SI::Celsius()),
                IsQuantity(300 - (20 + 273.15), SI::Kelvin()));
}

TEST(ValueWithUnit, AddsAndSubtractsInTheUnitOfTheLeftValue) {
    EXPECT_THAT(kilometres(1) + metres(500), IsQuantity(1.5, kilometre));
    EXPECT_THAT(metres(500) + kilometres(1), IsQuantity(1500.0, metre));
    EXPECT_THAT(kilometres(1) - metres(500), IsQuantity(0.5, kilometre));
    EXPECT_THAT(metres(500) - kilometres(1), IsQuantity(-500.0, metre));

    CValueWithUnit sum = kilometres(1);
    EXPECT_EQ(&(sum += metres(500)), &sum);
    EXPECT_THAT(sum, IsQuantity(1.5, kilometre));
    EXPECT_EQ(&(sum -= metres(1000)), &sum);
    EXPECT_THAT(sum, IsQuantity(0.5, kilometre));
    const CValueWithUnit& itself = sum;
    sum += itself;
    EXPECT_THAT(sum, IsQuantity(1.0, kilometre));
    sum -= itself;
    EXPECT_THAT(sum, IsQuantity(0.0, kilometre));

    const CValueWithUnit left = kilometres(1);
    const CValueWithUnit right = metres(500);
    static_cast<void>(left + right);
    static_cast<void>(left - right);
    EXPECT_THAT(left, IsQuantity(1.0, kilometre));
    EXPECT_THAT(right, IsQuantity(500.0, metre));
}

TEST(ValueWithUnit, RefusesOtherDimensionsAndDoesNotChange) {
    CValueWithUnit time(1, second);
    const CValueWithUnit way = metres(2);
    CValueWithUnit sum = way;
    for (const std::string& outcome : {
             outcomeOf([&] { time.valueAs(metre); }),
             outcomeOf([&] { time.convertTo(metre); }),
             outcomeOf([&] { time.changeUnit(metre); }),
             outcomeOf([&] { sum += time; }),
             outcomeOf([&] { sum -= time; }),
             outcomeOf([&] { static_cast<void>(way + time); }),
             outcomeOf([&] { static_cast<void>(way - time); }),
             outcomeOf([&] { static_cast<void>(way == time); }),
             outcomeOf([&] { static_cast<void>(way != time); }),
             outcomeOf([&] { static_cast<void>(way < time); }),
             outcomeOf([&] { static_cast<void>(way > time); }),
         }) {
        EXPECT_EQ(outcome, incompatible);
    }
    EXPECT_THAT(time, IsQuantity(1.0, second));
    EXPECT_THAT(sum, IsQuantity(2.0, metre));
}

TEST(ValueWithUnit, StoresAnEmptyUnitButRefusesToUseIt) {
    CValueWithUnit value = metres(2);
    EXPECT_THROW(value.valueAs(nullptr), std::invalid_argument);
    EXPECT_THROW(value.changeUnit(nullptr), std::invalid_argument);
    EXPECT_THAT(value, IsQuantity(2.0, metre));
    value.setUnit(nullptr);
    EXPECT_THROW(value.valueAs(metre), std::invalid_argument);
    EXPECT_THROW(value.toString(), std::invalid_argument);
    EXPECT_THROW(static_cast<void>(value + metres(1)), std::invalid_argument);
}

TEST(ValueWithUnit, ComparesInTheUnitOfTheLeftValue) {
    EXPECT_TRUE(metres(1000) == kilometres(1));
    EXPECT_FALSE(metres(1000) != kilometres(1));
    EXPECT_TRUE(kilometres(1) == metres(1000));
    EXPECT_TRUE(metres(0) == kilometres(0));
    EXPECT_TRUE(metres(1) < kilometres(1));
    EXPECT_TRUE(kilometres(1) > metres(1));
    EXPECT_FALSE(metres(1) > kilometres(1));
    EXPECT_FALSE(kilometres(1) < metres(1));
    EXPECT_TRUE(metres(1) != kilometres(1));
    EXPECT_FALSE(metres(1000) < kilometres(1));
    EXPECT_FALSE(metres(1000) > kilometres(1));
    EXPECT_TRUE(CValueWithUnit(0, SI::Celsius()) == CValueWithUnit(273.15, SI::Kelvin()));
    EXPECT_TRUE(CValueWithUnit(-274, SI::Celsius()) < CValueWithUnit(0, SI::Kelvin()));
}

struct Pair {
    double Left;
    double Right;
    bool AreEqual;
};

// At 1e12 the tolerance is a difference of 1, which is exact.
TEST(ValueWithUnit, IsEqualWithinATrillionthOfTheSmaller) {
    const double within = 1e12 + 1;
    const double beyond = std::nextafter(within, infinity);
    const double below =
        1e12 - 1;  // smaller, so the tolerance is its trillionth, which is less than 1
    for (const Pair& pair : std::vector<Pair>{
             {1e12, within, true},
             {1e12, beyond, false},
             {1e12, below, false},
             {1e12, std::nextafter(below, infinity), true},
             {1, 1 + 1e-15, true},
             {1, 1 + 1e-11, false},
             {1e300, 1e300 * (1 + 4e-13), true},
             {1e300, 2e300, false},  // the scaled difference is infinite
             {1e-300, 1e-300 * (1 + 4e-13), true},
             {0, 0, true},
             {0, -0.0, true},
             {0, 1e-300, false},
             {0, denormal, false},
             {denormal, denormal, true},
             {denormal, 2 * denormal, false},
             {denormal, -denormal, false},
             {1, -1, false},
             {infinity, infinity, false},  // their difference is NaN
             {infinity, -infinity, true},  // both sides of the comparison are infinite
             {infinity, 1e308, false},
             {nan, nan, false},
             {nan, 1, false},
             {nan, 0, false},
             {nan, infinity, false},
         }) {
        SCOPED_TRACE(exactly(pair.Left) + " and " + exactly(pair.Right));
        for (const double sign : {1.0, -1.0}) {
            const CValueWithUnit left = metres(sign * pair.Left);
            const CValueWithUnit right = metres(sign * pair.Right);
            EXPECT_EQ(left == right, pair.AreEqual);
            EXPECT_EQ(right == left, pair.AreEqual);
            EXPECT_EQ(left != right, !pair.AreEqual);
            EXPECT_EQ(right != left, !pair.AreEqual);
            // The strict comparisons have no tolerance.
            EXPECT_EQ(left < right, left.value() < right.value());
            EXPECT_EQ(left > right, left.value() > right.value());
            EXPECT_EQ(right < left, right.value() < left.value());
        }
    }
    EXPECT_TRUE(metres(1) == metres(1 + 1e-15) && metres(1) < metres(1 + 1e-15));
    EXPECT_TRUE(metres(-1e-300) != metres(1e-300));
    EXPECT_TRUE(metres(infinity) > metres(1e308) && metres(-infinity) < metres(infinity));
    EXPECT_FALSE(metres(nan) < metres(1) || metres(nan) > metres(1) || metres(1) < metres(nan));
}

template <class T, class = void>
struct HasOrEqual : std::false_type {};
template <class T>
struct HasOrEqual<T, std::void_t<decltype(std::declval<T>() <= std::declval<T>())>>
    : std::true_type {};

TEST(ValueWithUnit, HasOnlyFourComparisons) {
    EXPECT_FALSE(HasOrEqual<CValueWithUnit>::value);
    EXPECT_TRUE(HasOrEqual<double>::value);
    EXPECT_FALSE(std::is_polymorphic_v<CValueWithUnit>);
    EXPECT_FALSE(std::is_polymorphic_v<Convert>);
}

TEST(ValueWithUnit, ConvertConvertsOneValue) {
    EXPECT_THAT(Convert(1.5, NonSI::Hour()).to(second), HasBitsOf(5400.0));
    EXPECT_THAT(Convert(-0.0, metre).to(metre), HasBitsOf(-0.0));
    EXPECT_THAT(Convert(infinity, kilometre).to(metre), HasBitsOf(infinity));
    EXPECT_TRUE(std::isnan(Convert(nan, kilometre).to(metre)));
    EXPECT_EQ(outcomeOf([] { Convert(1, second).to(metre); }), incompatible);
}

// The field of 63 bytes with the number, and the rest.
std::pair<std::string, std::string> fieldAndRest(const CValueWithUnit& value) {
    const std::string written = text(value.toString());
    return {written.substr(0, 63), written.substr(63)};
}

std::string zeroFilled(std::string digits) {
    digits.resize(63, '\0');
    return digits;
}

TEST(ValueWithUnit, WritesAFieldOf63BytesPaddedWithZerosABlankAndTheUnit) {
    const std::string written = text(metres(1.5).toString());
    EXPECT_EQ(written, "1.500000" + std::string(55, '\0') + " m");
    EXPECT_EQ(written.size(), 65U);
    EXPECT_STREQ(metres(1.5).toString().c_str(), "1.500000")
        << "a reader of C strings sees only the number";
    for (const auto& [value, digits] : std::vector<std::pair<double, std::string>>{
             {0, "0.000000"},
             {-0.0, "-0.000000"},
             {2500, "2500.000000"},
             {-1.25, "-1.250000"},
             {0.1, "0.100000"},
             {1e-7, "0.000000"},
             {5e-7, "0.000000"},  // less than half of the last digit
             {1.5e-6, "0.000002"},
             {9007199254740993, "9007199254740992.000000"},
             {1e22, "10000000000000000000000.000000"},
             {infinity, "inf"},
             {-infinity, "-inf"},
             {nan, "nan"},
         }) {
        EXPECT_EQ(fieldAndRest(metres(value)),
                  std::make_pair(zeroFilled(digits), std::string(" m")))
            << value;
    }
}

TEST(ValueWithUnit, CutsAHugeNumberAt63Characters) {
    // All digits of the doubles 1e55 and 1e56.
    const std::string e55 = "10000000000000000102350670204085511496304388135324745728";
    const std::string e56 = "100000000000000009190283508143378238084034459715684532224";
    EXPECT_EQ(fieldAndRest(metres(1e55)), std::make_pair(e55 + ".000000", std::string(" m")))
        << "it fills the whole field";
    EXPECT_EQ(fieldAndRest(metres(1e56)), std::make_pair(e56 + ".00000", std::string(" m")));
    EXPECT_EQ(fieldAndRest(metres(-1e55)), std::make_pair('-' + e55 + ".00000", std::string(" m")));
    EXPECT_EQ(fieldAndRest(metres(1e300)),
              std::make_pair(
                  std::string("100000000000000005250476025520442024870446858110815915491585411"),
                  std::string(" m")));
    EXPECT_EQ(fieldAndRest(metres(-std::numeric_limits<double>::max())),
              std::make_pair(
                  std::string("-17976931348623157081452742373170435679807056752584499659891747"),
                  std::string(" m")));
}

TEST(ValueWithUnit, WritesTheUnitInTheStandardNotation) {
    EXPECT_EQ(fieldAndRest(CValueWithUnit(2, metre / second->pow(2))).second, " m/s²");
    EXPECT_EQ(fieldAndRest(CValueWithUnit(2, SI::Celsius())).second, " °C");
    EXPECT_EQ(fieldAndRest(CValueWithUnit(2, CProductUnit::one())).second, " One");
    EXPECT_EQ(outcomeOf([] { CValueWithUnit(2, NonSI::Aeon()).toString(); }),
              "std::invalid_argument: Cannot format given Object as a Unit");
}

TEST(ValueWithUnit, ReadsBackWhatItWrote) {
    for (const double number : {1.5, -2500.0, 0.0, 0.125, 9007199254740992.0}) {
        for (const CUnitPtr& unit : {metre, SI::Celsius(), kilometre / second->pow(2)}) {
            const CValueWithUnit value(number, unit);
            EXPECT_THAT(CValueWithUnit::fromString(text(value.toString())),
                        IsQuantity(number, unit));
        }
    }
}

TEST(ValueWithUnit, ReadsANumberABlankAndAUnit) {
    struct Text {
        std::string Source;
        double Value;
        CUnitPtr Unit;
    };
    const CUnitPtr one = CProductUnit::one();
    for (const Text& row : std::vector<Text>{
             {"2.5 km", 2.5, kilometre},
             {"26.5 °C", 26.5, SI::Celsius()},
             {"-1 m/s²", -1, metre / second->pow(2)},
             {"+1e3 m", 1000, metre},
             {".5 m", 0.5, metre},
             {"5. m", 5, metre},
             {"-0 m", -0.0, metre},
             {"0x1p4 m", 16, metre},
             {"inf m", infinity, metre},
             {"-Infinity m", -infinity, metre},
             // The longest prefix that is a number counts
             {"5abc m", 5, metre},
             {"1.2.3 m", 1.2, metre},
             {"1,5 m", 1, metre},
             {"1e m", 1, metre},
             // Only a blank separates. Other white space before a number is skipped
             {"\t\n 5", 0, nullptr},
             {"\t\n5 m", 5, metre},
             // Parts after the second are ignored
             {"5 m s", 5, metre},
             {"5 m xyz", 5, metre},
             {"5 m ", 5, metre},
             // An empty part is the dimensionless unit
             {"5 ", 5, one},
             {"5  m", 5, one},
             {"5 1", 5, one},
             // Other white space belongs to the text of the unit, in which it separates
             {"5 m\ts", 5, metre * second},
             {"5 m\n", 5, metre},
         }) {
        SCOPED_TRACE(row.Source);
        if (row.Unit) {
            EXPECT_THAT(CValueWithUnit::fromString(row.Source), IsQuantity(row.Value, row.Unit));
        } else {
            EXPECT_EQ(outcomeOf([&] { CValueWithUnit::fromString(row.Source); }),
                      "std::invalid_argument: stod");
        }
    }
    EXPECT_TRUE(std::isnan(CValueWithUnit::fromString("nan m").value()));
}

TEST(ValueWithUnit, RefusesTextsThatAreNoValueWithUnit) {
    for (const auto& [source, outcome] : std::vector<std::pair<std::string, std::string>>{
             {"x m", "std::invalid_argument: stod"},
             {" 5 m", "std::invalid_argument: stod"},  // the first part is empty
             {" m", "std::invalid_argument: stod"},
             {" ", "std::invalid_argument: stod"},
             {"- m", "std::invalid_argument: stod"},
             {"1e999 m", "std::out_of_range: stod"},
             {"-1e999 m", "std::out_of_range: stod"},
             {"1e-999 m", "std::out_of_range: stod"},
             {"2.5 xyz", "std::invalid_argument: Label: xyz not recognized"},
             {"2.5 m^1:0", "std::invalid_argument: Root's order of zero"},
             {"2.5 m^3000000000", "std::out_of_range: Exponent 3000000000 is out of range"},
             // The unit is read first
             {"x xyz", "std::invalid_argument: Label: xyz not recognized"},
             {"1e999 xyz", "std::invalid_argument: Label: xyz not recognized"},
             {" xyz", "std::invalid_argument: Label: xyz not recognized"},
         }) {
        EXPECT_EQ(outcomeOf([&, &text = source] { CValueWithUnit::fromString(text); }), outcome)
            << '"' << source << '"';
    }
}

TEST(ValueWithUnit, TheMessageQuotesATextWithoutABlank) {
    for (const std::string source : {"", "5", "5m", "km", "5\tm", "5\u00A0m", "xyz"}) {
        const std::string outcome = outcomeOf([&] { CValueWithUnit::fromString(source); });
        EXPECT_EQ(outcome.substr(0, 23), "std::invalid_argument: ") << source;
        EXPECT_NE(outcome.find('"' + source + '"'), std::string::npos) << outcome;
    }
}

TEST(ValueWithUnit, ReadsSubnormalNumbersAsStodDoes) {
    EXPECT_THAT(CValueWithUnit::fromString("2.2250738585072014e-308 m"),
                IsQuantity(std::numeric_limits<double>::min(), metre));
    for (const std::string number : {"2e-308", "1e-310", "-1e-310", "4.9406564584124654e-324"}) {
        const std::string expected = outcomeOf([&] { static_cast<void>(std::stod(number)); });
        EXPECT_EQ(outcomeOf([&] { CValueWithUnit::fromString(number + " m"); }), expected)
            << number;
        EXPECT_EQ(expected, "std::out_of_range: stod") << "the GNU C library reports them";
    }
}

}  // namespace
}  // namespace mensor

// io_test.cpp: the text of units and values on a stream.
#include "mensor/io.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <iomanip>
#include <locale>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>

#include "mensor/AddConverter.h"
#include "mensor/AlternateUnit.h"
#include "mensor/BaseUnit.h"
#include "mensor/MultiplyConverter.h"
#include "mensor/NonSI.h"
#include "mensor/SI.h"
#include "mensor/TransformedUnit.h"
#include "mensor/UnitFormat.h"
#include "support/ClientUnit.h"
#include "support/Matchers.h"

namespace mensor {
namespace {

template <class Thing>
std::string written(const Thing& thing) {
    std::ostringstream stream;
    stream << thing;
    return stream.str();
}

TEST(Io, WritesAUnitInTheStandardNotation) {
    EXPECT_EQ(written(SI::Meter()), "m");
    EXPECT_EQ(written(CUnit::fromString("km")), "km");
    EXPECT_EQ(written(CUnit::fromString("µs")), "µs");
    EXPECT_EQ(written(SI::Celsius()), "°C");
    EXPECT_EQ(written(SI::Kelvin() / (SI::Second() * SI::Meter())), "K/(s·m)");
    EXPECT_EQ(written(SI::Meter() / SI::Meter()), "One");
}

TEST(Io, DescribesUnitsWithoutTextInBrackets) {
    EXPECT_EQ(written(SI::Meter() * 1609.344), "[m*1609.34]");
    EXPECT_EQ(written(NonSI::Bar() * 3), "[Pa*3*100000]");
    EXPECT_EQ(
        written(CTransformedUnit::getInstance(SI::Ampere(), std::make_shared<CAddConverter>(-2.5))),
        "[A-2.5]");
    EXPECT_EQ(written((SI::Meter() / SI::Second()) * 7), "[m/s*7]");
    EXPECT_EQ(written(CUnitPtr()), "[no unit]");
    EXPECT_EQ(written(CClientUnit::make("", 4711)->canonical()), "[unit without text]");
}

TEST(Io, DescribesAFactorThatTheNotationWouldOmit) {
    const CUnitPtr mile = SI::Meter() * 1609.344;
    const CUnitPtr speed = mile / SI::Second();
    ASSERT_EQ(speed->toStdString(), "1/s");
    EXPECT_EQ(written(speed), "[m*1609.34]·s^-1");
    CUnitFormat::label(mile, "mi");
    EXPECT_EQ(written(speed), "mi/s");
}

TEST(Io, AbbreviatesLongChainsAndConvertersOfClients) {
    class CQuadratic : public CConverter {
    public:
        CConverterPtr inverse() override { throw std::logic_error("none"); }
        double convert(double x) const override { return x * x + x; }
        double derivative(double x) const override { return 2 * x + 1.5; }
        bool isLinear() const override { return false; }
    };
    EXPECT_EQ(written(CTransformedUnit::getInstance(SI::Mole(), std::make_shared<CQuadratic>())),
              "[mol(?)]");
    CConverterPtr chain = std::make_shared<CMultiplyConverter>(1.5);
    for (int i = 0; i < 100000; ++i) {
        chain = std::make_shared<CMultiplyConverter>(1)->CConverter::concatenate(chain);
    }
    EXPECT_EQ(written(CTransformedUnit::getInstance(SI::Candela(), chain)),
              "[cd*1.5*1*1*1*1*1*1*1...]");
}

TEST(Io, DescribesAUnitWhoseGetSymbolThrows) {
    // getSymbol() computes the converter to the dimension, which throws for a factor with an
    // offset.
    const CUnitPtr unit = std::make_shared<CTransformedUnit>(
        SI::Celsius() * SI::Meter(), std::make_shared<CMultiplyConverter>(3));
    ASSERT_THROW(unit->getSymbol(), std::logic_error);
    EXPECT_EQ(written(unit), "[°C·m*3]");
}

TEST(Io, WritesPointersToAllKindsOfUnits) {
    EXPECT_EQ(written(CBaseUnit::getInstance("m")), "m");
    EXPECT_EQ(written(CAlternateUnit::getInstance("N", SI::Newton())), "N");
    EXPECT_EQ(written(std::static_pointer_cast<CTransformedUnit>(CUnit::fromString("km"))), "km");
    EXPECT_EQ(written(CTransformedUnitPtr()), "[no unit]");
    // Other pointers are written as addresses.
    const auto number = std::make_shared<int>(1);
    EXPECT_EQ(written(number), written(number.get()));
}

TEST(Io, WritesTheNumberOfAValueWithTheSettingsOfTheStream) {
    const CValueWithUnit value = CValueWithUnit::fromString("2.5 km");
    EXPECT_EQ(written(value), "2.5 km");
    EXPECT_EQ(written(CValueWithUnit(1.0 / 3, SI::Second())), "0.333333 s");
    EXPECT_EQ(written(CValueWithUnit(4, CUnitPtr())), "4 [no unit]");

    std::ostringstream stream;
    stream << std::fixed << std::setprecision(2) << std::setw(8) << value << '|' << std::setw(4)
           << SI::Meter() << '|' << std::left << std::setw(3) << SI::Meter() << '|';
    EXPECT_EQ(stream.str(), "    2.50 km|   m|m  |");
}

TEST(Io, WritesTheNumberWithTheLocaleOfTheStream) {
    struct Comma : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
    };
    std::ostringstream stream;
    stream.imbue(std::locale(std::locale::classic(), new Comma));
    stream << CValueWithUnit::fromString("2.5 km");
    EXPECT_EQ(stream.str(), "2,5 km");
}

}  // namespace
}  // namespace mensor

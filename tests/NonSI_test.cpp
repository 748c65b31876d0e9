// NonSI_test.cpp: the accessors of the units outside the SI, the exact bits of their factors, and
// their labels.
#include "mensor/NonSI.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "mensor/ProductUnit.h"
#include "mensor/SI.h"
#include "mensor/TransformedUnit.h"
#include "mensor/UnitFormat.h"
#include "support/Matchers.h"

namespace mensor {
namespace {
using ::testing::StrEq, ::testing::ThrowsMessage;

// The definition multiplies the parent. A value is multiplied by the factors of the chain one after
// the other, beginning with that of this unit. The slope is multiplied in the opposite order. Each
// product is rounded, so the last bits of the two may differ. The bits of 1 in the system unit and
// of the slope were computed outside the library.
struct Row {
    const char* Label;  // null: none
    CUnitPtr (*Get)();
    CUnitPtr (*Parent)();
    double Factor;
    const char* System;
    std::uint64_t One;
    std::uint64_t Slope;
};

CUnitPtr cubicMetre() { return SI::Meter()->pow(3); }
CUnitPtr metrePerSquareSecond() { return SI::Meter()->divide(SI::Second()->pow(2)); }
CUnitPtr second() { return SI::Second(); }

const Row ROWS[] = {
    {"%", NonSI::Percent, CProductUnit::one, 0.01, "One", 0x3F847AE147AE147B, 0x3F847AE147AE147B},
    {"", NonSI::None, CProductUnit::one, 1.0, "One", 0x3FF0000000000000, 0x3FF0000000000000},
    {"rev", NonSI::Revolution, SI::Radian, 6.283185307179586, "rad", 0x401921FB54442D18,
     0x401921FB54442D18},
    {"°", NonSI::DegreeAngle, NonSI::Revolution, 0.002777777777777778, "rad", 0x3F91DF46A2529D39,
     0x3F91DF46A2529D39},
    {"′", NonSI::MinuteAngle, NonSI::DegreeAngle, 0.016666666666666666, "rad", 0x3F33104B57CF96A4,
     0x3F33104B57CF96A3},
    {"″", NonSI::SecondAngle, NonSI::MinuteAngle, 0.016666666666666666, "rad", 0x3ED455A5B2FF8F9D,
     0x3ED455A5B2FF8F9D},
    {"centiradian", NonSI::CentiRadian, SI::Radian, 0.01, "rad", 0x3F847AE147AE147B,
     0x3F847AE147AE147B},
    {"grade", NonSI::Grade, NonSI::Revolution, 0.0025, "rad", 0x3F9015BF9217271A,
     0x3F9015BF9217271A},
    {"byte", NonSI::Byte, SI::Bit, 8.0, "bit", 0x4020000000000000, 0x4020000000000000},
    {"atm", NonSI::Atmosphere, SI::Pascal, 101325.0, "Pa", 0x40F8BCD000000000, 0x40F8BCD000000000},
    {"bar", NonSI::Bar, SI::Pascal, 100000.0, "Pa", 0x40F86A0000000000, 0x40F86A0000000000},
    {"psi", NonSI::Psi, SI::Pascal, 6894.76, "Pa", 0x40BAEEC28F5C28F6, 0x40BAEEC28F5C28F6},
    {"mbar", NonSI::MilliBar, NonSI::Bar, 0.001, "Pa", 0x4059000000000000, 0x4059000000000000},
    {"mm_Hg", NonSI::MillimeterOfMercury, SI::Pascal, 133.322, "Pa", 0x4060AA4DD2F1A9FC,
     0x4060AA4DD2F1A9FC},
    {"in_Hg", NonSI::InchOfMercury, SI::Pascal, 3386.388, "Pa", 0x40AA74C6A7EF9DB2,
     0x40AA74C6A7EF9DB2},
    {"l", NonSI::Liter, cubicMetre, 0.001, "m³", 0x3F50624DD2F1A9FC, 0x3F50624DD2F1A9FC},
    {"grav", NonSI::G, metrePerSquareSecond, 9.80665, "m/s²", 0x40239D013A92A305,
     0x40239D013A92A305},
    {"min", NonSI::Minute, second, 60.0, "s", 0x404E000000000000, 0x404E000000000000},
    {"h", NonSI::Hour, NonSI::Minute, 60.0, "s", 0x40AC200000000000, 0x40AC200000000000},
    {"d", NonSI::Day, NonSI::Hour, 24.0, "s", 0x40F5180000000000, 0x40F5180000000000},
    {"week", NonSI::Week, NonSI::Day, 7.0, "s", 0x4122750000000000, 0x4122750000000000},
    {"year_calendar", NonSI::YearCalendar, NonSI::Day, 365.0, "s", 0x417E133800000000,
     0x417E133800000000},
    {"year", NonSI::Year, second, 31556952.0, "s", 0x417E185580000000, 0x417E185580000000},
    {"month", NonSI::Month, NonSI::Year, 0.08333333333333333, "s", 0x4144103900000000,
     0x4144103900000000},
    {nullptr, NonSI::Aeon, NonSI::Year, 1e9, "s", 0x435C07385C89DC00, 0x435C07385C89DC00},
    {"day_sidereal", NonSI::DaySidereal, second, 86164.09, "s", 0x40F5094170A3D70A,
     0x40F5094170A3D70A},
    {"year_sidereal", NonSI::YearSidereal, second, 31558149.54, "s", 0x417E18A058A3D70A,
     0x417E18A058A3D70A},
};

TEST(NonSI, FactorsHaveTheBitsOfTheDefinitions) {
    for (const Row& row : ROWS) {
        SCOPED_TRACE(row.Label ? row.Label : "aeon");
        const auto unit = std::dynamic_pointer_cast<CTransformedUnit>(row.Get());
        ASSERT_NE(unit, nullptr);
        EXPECT_THAT(unit->getSystemUnit(), PrintsAs(row.System));
        EXPECT_EQ(bitsOf(unit->toSystem()->convert(1.0)), row.One);
        EXPECT_EQ(bitsOf(unit->toSystem()->derivative(0.0)), row.Slope);
        EXPECT_THAT(unit->toSystem()->convert(0.0), HasBitsOf(0.0));
        EXPECT_TRUE(unit->toSystem()->isLinear());
        EXPECT_EQ(bitsOf(unit->convertValueToUnit(1.0, unit->getSystemUnit())), row.One);
    }
}

TEST(NonSI, EachUnitIsAMultipleOfItsParent) {
    for (const Row& row : ROWS) {
        EXPECT_EQ(row.Get(), row.Parent()->multiply(row.Factor))
            << (row.Label ? row.Label : "aeon");
    }
}

TEST(NonSI, EachAccessorReturnsOneObjectOfItsOwn) {
    std::set<CUnitPtr> units;
    for (const Row& row : ROWS) {
        EXPECT_EQ(row.Get(), row.Get());
        units.insert(row.Get());
    }
    EXPECT_EQ(units.size(), 27U);  // 28 accessors, of which the octet is the byte
}

TEST(NonSI, OnlyPsiAndNoneAreNotBuiltAtLoad) {
    const Tables afterLoad;
    for (const Row& row : ROWS) {
        if (row.Get != NonSI::Psi && row.Get != NonSI::None) {
            row.Get();
        }
    }
    EXPECT_EQ(Tables(), afterLoad);
    const std::size_t built = CUnit::instances().size();
    NonSI::Psi();
    NonSI::None();
    EXPECT_EQ(CUnit::instances().size(), built + 2);
}

TEST(NonSI, OctetIsTheByte) {
    EXPECT_EQ(NonSI::Octet(), NonSI::Byte());
    EXPECT_EQ(NonSI::Octet(), NonSI::Octet());
    EXPECT_EQ(CUnitFormat::unitFor("octet"), nullptr);
}

TEST(NonSI, LabelsAreReadAndWritten) {
    for (const Row& row : ROWS) {
        const CUnitPtr unit = row.Get();  // the first call registers the label
        EXPECT_EQ(text(unit->getSymbol()), "");
        if (row.Label != nullptr) {
            SCOPED_TRACE(row.Label);
            EXPECT_EQ(CUnitFormat::unitFor(row.Label), unit);
            EXPECT_EQ(text(CUnitFormat::unitLabelMap().at(unit)), row.Label);
        }
    }
}

TEST(NonSI, TheLabelsOfAnglesAreTheDegreeSignAndThePrimes) {
    EXPECT_EQ(NonSI::DegreeAngle()->toStdString(), "\xC2\xB0");
    EXPECT_EQ(NonSI::MinuteAngle()->toStdString(), "\xE2\x80\xB2");
    EXPECT_EQ(NonSI::SecondAngle()->toStdString(), "\xE2\x80\xB3");
    EXPECT_EQ(CUnitFormat::unitFor("'"), nullptr);
    EXPECT_EQ(CUnitFormat::unitFor("\""), nullptr);
}

TEST(NonSI, TheYearIsTheMeanGregorianYearAndTheCalendarYearHas365Days) {
    EXPECT_THAT(NonSI::Year(), ConvertsTo(SI::Second(), 1, 31556952));
    EXPECT_THAT(NonSI::YearCalendar(), ConvertsTo(SI::Second(), 1, 31536000));
    EXPECT_THAT(NonSI::YearCalendar(), ConvertsTo(NonSI::Day(), 1, 365));
}

TEST(NonSI, AMonthIsATwelfthOfAYear) {
    EXPECT_THAT(NonSI::Month(), ConvertsTo(SI::Second(), 1, 2629746));
}

TEST(NonSI, HalfATurnIsPi) {
    constexpr double pi = 3.14159265358979323846;
    EXPECT_DOUBLE_EQ(NonSI::DegreeAngle()->convertValueToUnit(1, SI::Radian()), pi / 180);
    EXPECT_DOUBLE_EQ(NonSI::DegreeAngle()->convertValueToUnit(180, SI::Radian()), pi);
    EXPECT_DOUBLE_EQ(NonSI::Grade()->convertValueToUnit(200, SI::Radian()), pi);
    EXPECT_DOUBLE_EQ(NonSI::MinuteAngle()->convertValueToUnit(60, NonSI::DegreeAngle()), 1);
    EXPECT_DOUBLE_EQ(NonSI::SecondAngle()->convertValueToUnit(3600, NonSI::DegreeAngle()), 1);
}

TEST(NonSI, ALiterIsAThousandthOfACubicMetre) {
    EXPECT_THAT(NonSI::Liter(), ConvertsTo(SI::Meter() ^ 3, 1, 0.001));
}

TEST(NonSI, StandardGravityIsTheFactorOfG) {
    static_assert(NonSI::STANDARD_GRAVITY == 9.80665);
    EXPECT_THAT(NonSI::G(), ConvertsTo(SI::Meter() / (SI::Second() ^ 2), 1, 9.80665));
    EXPECT_EQ(CUnitFormat::unitFor("G"), nullptr);  // its label is "grav"
}

// The millibar and the hectopascal are both 100 Pa. The later label, "mbar", replaced "hPa".
TEST(NonSI, TheMillibarIsTheHectopascal) {
    EXPECT_EQ(NonSI::MilliBar(), SI::Hecto(SI::Pascal()));
    EXPECT_THAT(SI::Hecto(SI::Pascal()), PrintsAs("mbar"));
    EXPECT_EQ(NonSI::CentiRadian(), SI::Centi(SI::Radian()));
    EXPECT_THAT(SI::Centi(SI::Radian()), PrintsAs("centiradian"));
}

TEST(NonSI, PsiIsUnknownUntilItsFirstCall) {
    EXPECT_EQ(CUnitFormat::unitFor("psi"), nullptr);
    EXPECT_THAT([] { CUnit::fromString("psi"); },
                ThrowsMessage<std::invalid_argument>(StrEq("Label: psi not recognized")));
    const std::size_t units = CUnit::instances().size();
    const CUnitPtr psi = NonSI::Psi();
    EXPECT_EQ(CUnit::instances().size(), units + 1);
    EXPECT_EQ(CUnit::fromString("psi"), psi);
    EXPECT_THAT(psi, PrintsAs("psi"));
    EXPECT_THAT(psi, ConvertsTo(SI::Pascal(), 1, 6894.76));
}

TEST(NonSI, NoneIsUnknownUntilItsFirstCallAndThenHasTheEmptyLabel) {
    EXPECT_EQ(CUnitFormat::labelUnitMap().count(""), 0U);
    EXPECT_EQ(CUnitFormat::unitFor(""), nullptr);
    const std::size_t units = CUnit::instances().size();
    const CUnitPtr none = NonSI::None();
    EXPECT_EQ(CUnit::instances().size(), units + 1);
    EXPECT_EQ(CUnitFormat::labelUnitMap().at(""), none);
    EXPECT_EQ(text(CUnitFormat::unitLabelMap().at(none)), "");
    EXPECT_EQ(CUnitFormat::unitFor(""), none);
}

TEST(NonSI, NoneIsATransformedUnitWithoutText) {
    const CUnitPtr none = NonSI::None();
    EXPECT_NE(none, CProductUnit::one());
    EXPECT_EQ(none->getSystemUnit(), CProductUnit::one());
    EXPECT_THAT(none, ConvertsTo(CProductUnit::one(), 2.5, 2.5));
    EXPECT_EQ(text(CUnitFormat::labelFor(none)), "");
    EXPECT_THAT([&] { none->toString(); }, ThrowsMessage<std::invalid_argument>(
                                               StrEq("Cannot format given Object as a Unit")));
    EXPECT_EQ(CUnit::fromString(""),
              CProductUnit::one());  // the parser never looks up an empty name
}

TEST(NonSI, TheAeonHasNoText) {
    EXPECT_EQ(text(CUnitFormat::labelFor(NonSI::Aeon())), "");
    EXPECT_THAT(
        [] { NonSI::Aeon()->toString(); },
        ThrowsMessage<std::invalid_argument>(StrEq("Cannot format given Object as a Unit")));
    EXPECT_THAT(NonSI::Aeon(), ConvertsTo(SI::Second(), 1, 31556952e9));
}

TEST(NonSI, ConcurrentFirstCallsBuildOneUnit) {
    std::vector<CUnitPtr> units(8);
    std::vector<std::thread> threads;
    for (CUnitPtr& unit : units) {
        threads.emplace_back([&unit] { unit = NonSI::Psi(); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_THAT(units, ::testing::Each(CUnitFormat::unitFor("psi")));
}

}  // namespace
}  // namespace mensor

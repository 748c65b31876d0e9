// Differences_test.cpp: differences convert by the size of a unit, without its offset.
#include "mensor_checked/Differences.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <new>

#include "mensor/MultiplyConverter.h"
#include "mensor/NonSI.h"
#include "mensor/SI.h"
#include "mensor_checked/making.h"
#include "support/ClientUnit.h"
#include "support/Matchers.h"

namespace mensor {
namespace {

using checked::CDifference;
using checked::convertDifference;
using checked::difference;
using ::testing::HasSubstr;
using ::testing::ThrowsMessage;

CUnitPtr fahrenheit() { return checked::affine(SI::Kelvin(), 5.0 / 9.0, 459.67 * 5.0 / 9.0); }

TEST(Differences, DifferencesOfTemperaturesConvertWithoutTheOffset) {
    // These are the three examples of the page.
    const CValueWithUnit inside(20, SI::Celsius()), outside(15, SI::Celsius());
    EXPECT_EQ(difference(inside, outside).valueAs(SI::Kelvin()), 5);
    EXPECT_EQ(convertDifference(10, SI::Celsius(), SI::Kelvin()), 10);
    EXPECT_EQ((outside + CDifference(5, SI::Kelvin())).value(), 20);
    EXPECT_EQ((inside - CDifference(5, SI::Kelvin())).value(), 15);
}

TEST(Differences, ADifferenceHasTheUnitOfTheFirstValue) {
    const CDifference change =
        difference({1, SI::Kilo(SI::Meter())}, CValueWithUnit(250, SI::Meter()));
    EXPECT_EQ(change.unit(), SI::Kilo(SI::Meter()));
    EXPECT_EQ(change.value(), 0.75);
}

TEST(Differences, ADifferenceOfInfiniteValuesIsInfinite) {
    constexpr double Infinity = std::numeric_limits<double>::infinity();
    const CValueWithUnit far(Infinity, SI::Meter()), near(1, SI::Meter());
    EXPECT_EQ(difference(far, near).value(), Infinity);
    EXPECT_EQ(difference(near, far).value(), -Infinity);
    EXPECT_TRUE(std::isnan(difference(far, far).value()));
}

TEST(Differences, DifferencesOfFahrenheitConvertByItsSlope) {
    EXPECT_DOUBLE_EQ(convertDifference(10, SI::Celsius(), fahrenheit()), 18);
    EXPECT_DOUBLE_EQ(convertDifference(18, fahrenheit(), SI::Kelvin()), 10);
    EXPECT_DOUBLE_EQ(convertDifference(-9, fahrenheit(), SI::Celsius()), -5);
    const CValueWithUnit body(98.6, fahrenheit());
    const CValueWithUnit room(20, SI::Celsius());
    EXPECT_NEAR(difference(body, room).value(), 30.6, 1e-10);
    EXPECT_NEAR(difference(body, room).valueAs(SI::Celsius()), 17, 1e-10);
    EXPECT_NEAR((room + difference(body, room)).value(), 37, 1e-10);
}

TEST(Differences, DifferencesOfUnitsWithoutOffsetConvertAsValues) {
    for (const char* pair : {"km m", "h s", "psi Pa", "µm nm", "°/s rad/s", "kW·h J"}) {
        NonSI::Psi();
        const std::string both = pair;
        const auto blank = both.find(' ');
        const CUnitPtr from = CUnit::fromString(both.substr(0, blank));
        const CUnitPtr to = CUnit::fromString(both.substr(blank + 1));
        for (const double x : {0.1, -7.3, 1e300, 0.0}) {
            EXPECT_THAT(convertDifference(x, from, to), HasBitsOf(from->convertValueToUnit(x, to)))
                << pair;
        }
    }
    EXPECT_THAT(convertDifference(0.1, SI::Meter(), SI::Meter()), HasBitsOf(0.1));
    EXPECT_THAT(convertDifference(0.1, SI::Celsius(), SI::Celsius()), HasBitsOf(0.1));
}

TEST(Differences, RefuseIncompatibleUnitsAndEmptyPointers) {
    EXPECT_THAT(
        [] { convertDifference(1, SI::Meter(), SI::Second()); },
        ThrowsMessage<std::invalid_argument>("m is not compatible with s in current context"));
    EXPECT_THAT(
        [] { convertDifference(1, nullptr, SI::Second()); },
        ThrowsMessage<std::invalid_argument>("convertDifference: the unit is an empty pointer"));
    EXPECT_THROW(convertDifference(1, SI::Second(), nullptr), std::invalid_argument);
    EXPECT_THROW(CDifference(1, nullptr).valueAs(SI::Meter()), std::invalid_argument);
    EXPECT_THROW(difference({1, nullptr}, {1, SI::Meter()}), std::invalid_argument);
    EXPECT_THROW(difference({1, SI::Meter()}, {1, nullptr}), std::invalid_argument);
    EXPECT_THROW(difference({1, SI::Meter()}, {1, SI::Second()}), std::invalid_argument);
}

TEST(Differences, RefuseResultsBeyondTheRangeOfDouble) {
    const CUnitPtr km = CUnit::fromString("km");
    const CUnitPtr mm = CUnit::fromString("mm");
    EXPECT_THAT([&] { convertDifference(1e308, km, mm); },
                ThrowsMessage<std::range_error>(
                    "convertDifference: 1e+308 of \"km\" is beyond the range of double in \"mm\""));
    EXPECT_THROW(convertDifference(5e-324, mm, km), std::range_error);
    EXPECT_THROW(convertDifference(-1.5e308, SI::Celsius(), fahrenheit()), std::range_error);
    EXPECT_THROW(CDifference(1e308, km).valueAs(mm), std::range_error);
    EXPECT_EQ(convertDifference(HUGE_VAL, km, mm), HUGE_VAL);
    EXPECT_TRUE(std::isnan(convertDifference(std::nan(""), km, mm)));
    EXPECT_EQ(convertDifference(0.0, mm, km), 0.0);
    EXPECT_GT(convertDifference(1e-310, mm, SI::Meter()), 0.0) << "subnormal, not zero";
    EXPECT_THROW(difference(CValueWithUnit(1, mm), CValueWithUnit(1e308, km)), std::range_error);
    const CValueWithUnit large(1.5e308, mm);
    EXPECT_THROW(large + CDifference(1.5e308, mm), std::range_error);
    EXPECT_THROW(CValueWithUnit(-1.5e308, mm) - CDifference(1.5e308, mm), std::range_error);
}

TEST(Differences, RefuseAConverterThatIsNoStraightLine) {
    class CLogarithm : public CConverter {
    public:
        CConverterPtr inverse() override { return identity(); }
        double convert(double x) const override { return std::exp(x); }
        double derivative(double x) const override { return std::exp(x); }
        bool isLinear() const override { return false; }
    };
    const auto level = CClientUnit::make("qL", 4711);
    level->CtxDimension = [] { return SI::Watt()->getDimension(); };
    level->CtxToDimension = [] { return std::make_shared<CLogarithm>(); };
    EXPECT_THAT([&] { convertDifference(1, level, SI::Watt()); },
                ThrowsMessage<std::logic_error>(HasSubstr("has no constant size in \"W\"")));
}

TEST(Differences, AMessageThatNeedsMoreMemoryThanThereIsThrowsBadAlloc) {
    const auto own = freshClientUnit();
    own->SystemUnit = own->CtxDimension = [] { return CUnitPtr(SI::Meter()); };
    own->CtxToDimension = [] { return std::make_shared<CMultiplyConverter>(1e300); };
    EXPECT_THROW(convertDifference(1e300, own, SI::Meter()), std::range_error);
    own->Symbol = []() -> string_t { throw std::bad_alloc(); };
    EXPECT_THROW(convertDifference(1e300, own, SI::Meter()), std::bad_alloc);
}

}  // namespace
}  // namespace mensor

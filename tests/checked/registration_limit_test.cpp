// registration_limit_test.cpp: with a limit, any texts register a bounded number of units.
//
// The operator new of this program counts the bytes, including those of the library.
#include "mensor_checked/registration_limit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "mensor/SI.h"
#include "mensor/UnitFormat.h"
#include "mensor_checked/OwnUnits.h"
#include "mensor_checked/Packs.h"
#include "mensor_checked/Reading.h"
#include "mensor_checked/making.h"
#include "support/Matchers.h"
#include "support/Random.h"
#include "support/operator_new.h"
#include "support/thorough.h"

namespace mensor {
namespace {

using checked::eRefusal;
using checked::registeredUnits;
using checked::setRegistrationLimit;
using checked::tryReadUnit;
using test::CRandom;

// Returns a text of four factors, such as "km^3·mA^1/(ml^5·Gy^2)".
std::string line(CRandom& random) {
    static const std::vector<std::string> Names = {"m",   "km", "mA", "kg", "s",  "Gy",
                                                   "mol", "K",  "ml", "N",  "kJ", "bar",
                                                   "mV",  "h",  "cd", "Wb"};
    const auto factor = [&] {
        return Names[random(Names.size())] + "^" + std::to_string(1 + random(9));
    };
    return factor() + "·" + factor() + "/(" + factor() + "·" + factor() + ")";
}

TEST(RegistrationLimit, CountsWhatTheCompanionRegisters) {
    EXPECT_EQ(registeredUnits(), 0U);
    checked::readUnit("km");
    EXPECT_EQ(registeredUnits(), 0U) << "it is in the catalogue";
    SI::Meter()->multiply(12.0);
    EXPECT_EQ(registeredUnits(), 0U) << "the companion did not register it";
    const std::size_t before = CUnit::instances().size();
    checked::readUnit("km^3·mol^2");
    EXPECT_EQ(registeredUnits(), CUnit::instances().size() - before);
    EXPECT_GT(registeredUnits(), 0U);
}

TEST(RegistrationLimit, RefusesNewUnitsAndReadsKnownOnes) {
    const CUnitPtr known = checked::readUnit("km^3·mol^2");
    setRegistrationLimit(registeredUnits());
    const Tables before;
    const checked::CReading reading = tryReadUnit("km^3·mol^5");
    ASSERT_TRUE(reading.Refusal);
    EXPECT_EQ(reading.Refusal->Code, eRefusal::LIMIT_REACHED);
    EXPECT_STREQ(nameOf(reading.Refusal->Code), "LIMIT_REACHED");
    EXPECT_EQ(reading.Refusal->Sentence, "this unit is new, and no more units may be registered");
    EXPECT_THROW(checked::readUnit("km^3·mol^5"), checked::CReadError);
    EXPECT_THROW(checked::scaled(SI::Meter(), 12.0), CTooManyUnits);
    EXPECT_THROW(checked::registerPack(checked::ePack::CUSTOMARY), checked::CIdentityError);
    EXPECT_EQ(checked::tryDefineUnits("span = 0.23 m").Findings.at(0).Refusal.Code,
              eRefusal::LIMIT_REACHED);
    EXPECT_EQ(Tables(), before);
    EXPECT_EQ(checked::readUnit("km^3·mol^2"), known);
    EXPECT_EQ(checked::readUnit("mol^2·km^3"), known) << "another text";
    EXPECT_EQ(checked::readMeaning("km^3·mol^5").toString(), "1000000000 m³·mol^5");

    SI::Meter()->multiply(12.0);  // the library itself has no limit
    EXPECT_NE(checked::scaled(SI::Meter(), 12.0), nullptr);
    setRegistrationLimit(static_cast<std::size_t>(-1));
    EXPECT_TRUE(tryReadUnit("km^3·mol^5"));
}

// A thorough run reads a million lines, or fewer on slow platforms.
TEST(RegistrationLimit, KeepsUnitsAndBytesBoundedWhateverIsRead) {
    const int lines = !test::isThorough() ? test::casesOf(20000, 10000)
                      : test::IsSlow      ? 100000
                                          : 1000000;
    constexpr std::size_t Limit = 1000;
    setRegistrationLimit(Limit);
    CRandom random;
    int refused = 0;
    int read = 0;
    long bytesAtTenth = 0;
    for (int i = 0; i < lines; ++i) {
        if (i == lines / 10) {
            bytesAtTenth = liveBytes.load();
        }
        const checked::CReading reading = tryReadUnit(line(random));
        read += reading ? 1 : 0;
        refused += reading.Refusal && reading.Refusal->Code == eRefusal::LIMIT_REACHED ? 1 : 0;
    }
    EXPECT_LE(registeredUnits(), Limit);
    EXPECT_GT(registeredUnits(), Limit - 10);
    EXPECT_GT(read, 100);  // a line registers up to five units, and some of them collide
    EXPECT_GT(refused, lines / 2);
    // The cache of read texts has a bound of its own.
    EXPECT_LT(liveBytes.load() - bytesAtTenth, 100000);
}

}  // namespace
}  // namespace mensor

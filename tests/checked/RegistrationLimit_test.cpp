// RegistrationLimit_test.cpp: with a limit, texts of strangers leave a bounded number of units behind.
//
// The program's operator new counts the bytes, the library's included.
#include "mensor_checked/RegistrationLimit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "mensor/SI.h"
#include "mensor/UnitFormat.h"
#include "mensor_checked/Making.h"
#include "mensor_checked/OwnUnits.h"
#include "mensor_checked/Packs.h"
#include "mensor_checked/Reading.h"
#include "support/Matchers.h"
#include "support/OperatorNew.h"
#include "support/Thorough.h"

namespace mensor {
namespace {

using checked::eRefusal;
using checked::registeredUnits;
using checked::setRegistrationLimit;
using checked::tryReadUnit;

// The same numbers in every run, below `end`.
class CRandom {
public:
    std::size_t operator()(std::size_t end) {
        m_State = m_State * 6364136223846793005U + 1442695040888963407U;
        return static_cast<std::size_t>(m_State >> 33) % end;
    }

private:
    std::uint64_t m_State = 1;
};

// Four factors: "km^3·mA/(hl·Gy^2)".
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
    EXPECT_EQ(registeredUnits(), 0U) << "not by the companion";
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

    SI::Meter()->multiply(12.0);  // the library itself is free
    EXPECT_NE(checked::scaled(SI::Meter(), 12.0), nullptr);
    setRegistrationLimit(static_cast<std::size_t>(-1));
    EXPECT_TRUE(tryReadUnit("km^3·mol^5"));
}

// 10^6 lines if all tests are run, fewer where that takes many times as long.
TEST(RegistrationLimit, KeepsUnitsAndBytesBoundedWhateverIsRead) {
    const int lines = !test::isThorough() ? 20000 : test::IsSlow ? 100000 : 1000000;
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
    EXPECT_GT(read, 100);  // each line leaves up to five units, of which some collide
    EXPECT_GT(refused, lines / 2);
    // The remembered texts and units that are passing have their own bounds.
    EXPECT_LT(liveBytes.load() - bytesAtTenth, 100000);
}

}  // namespace
}  // namespace mensor

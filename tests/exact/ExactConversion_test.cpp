// ExactConversion_test.cpp: every result is the double nearest to the exact one.
#include "mensor_exact/Conversion.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "mensor_exact/Error.h"

namespace mensor {
namespace exact {
namespace {

CCatalogue everything() {
    CCatalogue catalogue = CCatalogue::builtIn();
    for (const ePack pack :
         {ePack::CUSTOMARY, ePack::US, ePack::SCIENCE, ePack::OFFSETS, ePack::COUNTING}) {
        catalogue = catalogue.with(pack);
    }
    return catalogue;
}

CConversion between(const char* from, const char* to) {
    return CConversion::between(from, to, everything());
}

TEST(ExactConversion, WritesTheDecimalThatPeopleExpect) {
    EXPECT_EQ(between("°F", "°C").convertText("98.6"), "37");
    EXPECT_EQ(between("g", "t").convertText("5"), "0.000005");
    EXPECT_EQ(between("°C", "K").convertText("-40"), "233.15");
}

TEST(ExactConversion, TellsItsFactorAndOffsetExactly) {
    EXPECT_EQ(between("°F", "°C").factor(), "5/9");
    EXPECT_EQ(between("°F", "°C").offset(), "-160/9");
    EXPECT_EQ(between("°", "rad").factor(), "π/180");
    EXPECT_EQ(between("rad", "°").factor(), "180/π");
    EXPECT_EQ(between("km", "m").offset(), "0");
}

TEST(ExactConversion, RefusesDifferentDimensions) {
    try {
        between("bar", "m");
        FAIL() << "not refused";
    } catch (const CError& error) {
        EXPECT_EQ(error.code(), eError::DIFFERENT_DIMENSIONS);
        EXPECT_STREQ(error.what(), "cannot convert bar to m: pressure and length");
    }
}

}  // namespace
}  // namespace exact
}  // namespace mensor

// MultiplyConverter_test.cpp: converters that multiply by a factor: values, chaining, equality and
// notation.
#include "mensor/MultiplyConverter.h"

#include <limits>
#include <memory>
#include <string>
#include <utility>

#include "mensor/AddConverter.h"
#include "mensor/ProductUnit.h"
#include "mensor/SI.h"
#include "mensor/mensor_math.h"
#include "support/ClientConverters.h"
#include "support/Matchers.h"

namespace mensor {
namespace {

const double Infinity = std::numeric_limits<double>::infinity();

CMultiplyConverterPtr scales(double factor) { return std::make_shared<CMultiplyConverter>(factor); }

CMultiplyConverterPtr asFactor(const CConverterPtr& converter) {
    return std::dynamic_pointer_cast<CMultiplyConverter>(converter);
}

TEST(MultiplyConverter, MultipliesByItsFactor) {
    for (const double factor : {1000.0, 0.001, -2.0, 0.0, 1.0, 1e300, Infinity}) {
        const CMultiplyConverterPtr c = scales(factor);
        EXPECT_THAT(c->factor(), HasBitsOf(factor));
        for (const double x : {0.5, -0.1, 21.5, -1e300}) {
            EXPECT_THAT(c->convert(x), HasBitsOf(x * factor));
            EXPECT_THAT(c->derivative(x), HasBitsOf(factor));
        }
        EXPECT_TRUE(c->isLinear());
    }
    EXPECT_THAT(scales(-2)->convert(0.0), HasBitsOf(-0.0));
}

TEST(MultiplyConverter, AFactorOfOneIsNotTheIdentity) {
    EXPECT_NE(scales(1.0), CConverter::identity());
    EXPECT_TRUE(scales(1.0)->equals(CConverter::identity()));
}

TEST(MultiplyConverter, TheInverseHasTheReciprocalFactor) {
    for (const double factor : {1000.0, 3.0, -0.1, 1.0}) {
        const CMultiplyConverterPtr inverse = asFactor(scales(factor)->inverse());
        ASSERT_TRUE(inverse);
        EXPECT_THAT(inverse->factor(), HasBitsOf(1.0 / factor));
    }
}

TEST(MultiplyConverter, TheInverseOfZeroHasAnInfiniteFactor) {
    EXPECT_THAT(asFactor(scales(0.0)->inverse())->factor(), HasBitsOf(Infinity));
    EXPECT_THAT(asFactor(scales(-0.0)->inverse())->factor(), HasBitsOf(-Infinity));
    EXPECT_THAT(asFactor(scales(Infinity)->inverse())->factor(), HasBitsOf(0.0));
}

TEST(MultiplyConverter, NeedsNoSharedOwnerToInvertOrConcatenate) {
    CConverterPtr inverse, folded;
    {
        CMultiplyConverter c(2);
        inverse = c.inverse();
        folded = c.concatenate(scales(3));
    }
    EXPECT_EQ(inverse->convert(10), 5);
    EXPECT_EQ(folded->convert(10), 60);
}

TEST(MultiplyConverter, ConcatenatesWithAFactorToTheProduct) {
    const CMultiplyConverterPtr folded = asFactor(scales(0.1)->concatenate(scales(3)));
    ASSERT_TRUE(folded);
    EXPECT_THAT(folded->factor(), HasBitsOf(0.1 * 3.0));
}

TEST(MultiplyConverter, AProductOfOneIsNotTheIdentityButEqualsIt) {
    const CConverterPtr folded = scales(1000)->concatenate(scales(0.001));
    ASSERT_TRUE(asFactor(folded));
    EXPECT_THAT(asFactor(folded)->factor(), HasBitsOf(1000 * 0.001));
    EXPECT_NE(folded, CConverter::identity());
    EXPECT_TRUE(folded->equals(CConverter::identity()));
}

TEST(MultiplyConverter, ConcatenatesWithAClientsFactorClassToTheProduct) {
    class CDozen : public CMultiplyConverter {
    public:
        CDozen() : CMultiplyConverter(12) {}
    };
    const CConverterPtr folded = scales(12)->concatenate(std::make_shared<CDozen>());
    ASSERT_TRUE(asFactor(folded));
    EXPECT_EQ(asFactor(folded)->factor(), 144);
}

TEST(MultiplyConverter, MakesACompoundWhenCalledThroughTheBaseClass) {
    const CConverterPtr a = scales(1000), b = scales(0.001);
    const auto compound = std::dynamic_pointer_cast<CCompound>(a->concatenate(b));
    ASSERT_TRUE(compound);
    EXPECT_EQ(compound->first(), b);
    EXPECT_EQ(compound->second(), a);
}

TEST(MultiplyConverter, MakesACompoundWithOtherClasses) {
    const CMultiplyConverterPtr c = scales(2);
    for (const CConverterPtr& other :
         {CConverterPtr(std::make_shared<CAddConverter>(1)),
          CConverterPtr(std::make_shared<CScaling>(3)),
          CConverterPtr(std::make_shared<CCompound>(scales(1), scales(2)))}) {
        const auto compound = std::dynamic_pointer_cast<CCompound>(c->concatenate(other));
        ASSERT_TRUE(compound);
        EXPECT_EQ(compound->first(), other);
        EXPECT_EQ(compound->second(), c);
    }
    EXPECT_EQ(c->concatenate(std::make_shared<CAddConverter>(1))->convert(3), 8);
    EXPECT_EQ(c->concatenate(CConverter::identity()), c);
}

// The class overrides neither equals() nor hashCode().
TEST(MultiplyConverter, EqualityAndHashCodeAreThoseOfTheBaseClass) {
    EXPECT_TRUE(scales(0.1)->equals(scales(0.1 + 1e-12)));
    EXPECT_TRUE(scales(3)->equals(std::make_shared<CScaling>(3)));
    EXPECT_TRUE(scales(6)->equals(std::make_shared<CCompound>(scales(2), scales(3))));
    EXPECT_FALSE(scales(1)->equals(std::make_shared<CAddConverter>(0)));
    EXPECT_FALSE(scales(2)->equals(scales(2.000001)));
    EXPECT_FALSE(scales(2)->equals(nullptr));
    EXPECT_EQ(scales(1000)->hashCode(), 0x447A0000);
    EXPECT_EQ(CConverterPtr(scales(1000))->hashCode(), 0x447A0000);
    EXPECT_EQ(scales(0.1)->hashCode(), floatToIntBits(0.1f));
}

TEST(MultiplyConverter, ItsSymbolIsTheUnitAndTheFactorWithSixDigits) {
    const struct {
        CUnitPtr Unit;
        double Factor;
        const char* Expected;
    } table[] = {
        {SI::Meter(), 1000, "[m*1000]"},
        {SI::Meter(), 1609.344, "[m*1609.34]"},
        {SI::Meter(), 1e-6, "[m*1e-06]"},
        {SI::Meter(), 1e24, "[m*1e+24]"},
        {SI::Meter(), 999999.5, "[m*1e+06]"},
        {SI::Meter(), 100000, "[m*100000]"},
        {SI::Meter(), 0.0001, "[m*0.0001]"},
        {SI::Meter(), -2.5, "[m*-2.5]"},
        {SI::Meter(), Infinity, "[m*inf]"},
        {SI::Ohm(), 2, "[\xE2\x84\xA6*2]"},
        {CProductUnit::one(), 0.01, "[One*0.01]"},
        {SI::Meter() / SI::Second(), 2, "[*2]"},  // products have no symbol
        {SI::Gram(), 2, "[*2]"},                  // a label is not a symbol
    };
    for (const auto& row : table) {
        EXPECT_EQ(text(scales(row.Factor)->getSymbol(row.Unit)), row.Expected);
        EXPECT_EQ(text(CConverterPtr(scales(row.Factor))->getSymbol(row.Unit)), "")
            << "the base class returns no symbol";
    }
}

TEST(MultiplyConverter, ItsSymbolShowsTheSlopeOfAClientsClass) {
    class CTwice : public CMultiplyConverter {
    public:
        CTwice() : CMultiplyConverter(1) {}
        double derivative(double) const override { return 2; }
    };
    EXPECT_EQ(text(CTwice().getSymbol(SI::Meter())), "[m*2]");
}

}  // namespace
}  // namespace mensor

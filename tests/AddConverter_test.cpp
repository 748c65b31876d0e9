// AddConverter_test.cpp: converters that add an offset: values, chaining, equality and notation.
#include "mensor/AddConverter.h"

#include <limits>
#include <memory>
#include <string>
#include <utility>

#include "mensor/MultiplyConverter.h"
#include "mensor/ProductUnit.h"
#include "mensor/SI.h"
#include "mensor/mensor_math.h"
#include "support/ClientConverters.h"
#include "support/Matchers.h"

namespace mensor {
namespace {

const double Infinity = std::numeric_limits<double>::infinity();

CAddConverterPtr adds(double offset) { return std::make_shared<CAddConverter>(offset); }

CAddConverterPtr asOffset(const CConverterPtr& converter) {
    return std::dynamic_pointer_cast<CAddConverter>(converter);
}

TEST(AddConverter, AddsItsOffset) {
    for (const double offset : {273.15, -273.15, 0.0, -0.0, 0.1, 1e300, Infinity}) {
        const CAddConverterPtr c = adds(offset);
        EXPECT_THAT(c->getOffset(), HasBitsOf(offset));
        for (const double x : {0.0, -0.0, 21.5, 0.2, -1e300}) {
            EXPECT_THAT(c->convert(x), HasBitsOf(x + offset));
            EXPECT_EQ(c->derivative(x), 1.0);
        }
        EXPECT_FALSE(c->isLinear());
    }
    EXPECT_THAT(adds(273.15)->convert(21.5), HasBitsOf(294.65));
}

TEST(AddConverter, AnOffsetOfZeroIsNotTheIdentity) {
    EXPECT_FALSE(adds(0.0)->isLinear());
    EXPECT_FALSE(adds(0.0)->equals(CConverter::identity()));
    EXPECT_NE(adds(0.0), CConverter::identity());
}

TEST(AddConverter, TheInverseHasTheNegatedOffset) {
    for (const double offset : {273.15, -0.1, 0.0}) {
        const CAddConverterPtr inverse = asOffset(adds(offset)->inverse());
        ASSERT_TRUE(inverse);
        EXPECT_THAT(inverse->getOffset(), HasBitsOf(-offset));
    }
    const CAddConverterPtr c = adds(1);
    EXPECT_NE(c->inverse(), c->inverse()) << "each call returns a new object";
}

TEST(AddConverter, NeedsNoSharedOwnerToInvertOrConcatenate) {
    CConverterPtr inverse, folded;
    {
        CAddConverter c(2);
        inverse = c.inverse();
        folded = c.concatenate(adds(3));
    }
    EXPECT_EQ(inverse->convert(10), 8);
    EXPECT_EQ(folded->convert(10), 15);
}

TEST(AddConverter, ConcatenatesWithAnOffsetToTheSum) {
    const CAddConverterPtr folded = asOffset(adds(0.1)->concatenate(adds(0.2)));
    ASSERT_TRUE(folded);
    EXPECT_THAT(folded->getOffset(), HasBitsOf(0.1 + 0.2));
}

TEST(AddConverter, ASumOfZeroIsNotTheIdentity) {
    const CConverterPtr folded = adds(273.15)->concatenate(adds(-273.15));
    ASSERT_TRUE(asOffset(folded));
    EXPECT_THAT(asOffset(folded)->getOffset(), HasBitsOf(0.0));
    EXPECT_FALSE(folded->isLinear());
    EXPECT_NE(folded, CConverter::identity());
}

TEST(AddConverter, ConcatenatesWithAClientsOffsetClassToTheSum) {
    class CZeroPoint : public CAddConverter {
    public:
        CZeroPoint() : CAddConverter(40) {}
    };
    const CConverterPtr folded = adds(2)->concatenate(std::make_shared<CZeroPoint>());
    ASSERT_TRUE(asOffset(folded));
    EXPECT_EQ(asOffset(folded)->getOffset(), 42);
}

TEST(AddConverter, MakesACompoundWhenCalledThroughTheBaseClass) {
    const CConverterPtr a = adds(1), b = adds(2);
    const auto compound = std::dynamic_pointer_cast<CCompound>(a->concatenate(b));
    ASSERT_TRUE(compound);
    EXPECT_EQ(compound->first(), b);
    EXPECT_EQ(compound->second(), a);
}

TEST(AddConverter, MakesACompoundWithOtherClasses) {
    const CAddConverterPtr c = adds(1);
    for (const CConverterPtr& other :
         {CConverterPtr(std::make_shared<CMultiplyConverter>(2)),
          CConverterPtr(std::make_shared<CSquare>()),
          CConverterPtr(std::make_shared<CCompound>(adds(1), adds(2)))}) {
        const auto compound = std::dynamic_pointer_cast<CCompound>(c->concatenate(other));
        ASSERT_TRUE(compound);
        EXPECT_EQ(compound->first(), other);
        EXPECT_EQ(compound->second(), c);
    }
    EXPECT_EQ(c->concatenate(std::make_shared<CMultiplyConverter>(2))->convert(3), 7);
    EXPECT_EQ(c->concatenate(CConverter::identity()), c);
}

TEST(AddConverter, EqualsAnOffsetThatIsTheSameAsAFloat) {
    EXPECT_TRUE(adds(0.1)->equals(adds(0.1 + 1e-12)));
    EXPECT_TRUE(adds(1e300)->equals(adds(Infinity)));
    EXPECT_FALSE(adds(0.1)->equals(adds(0.1000001)));
    EXPECT_FALSE(adds(0.1)->equals(adds(-0.1)));
    EXPECT_FALSE(adds(0.0)->equals(adds(-0.0))) << "the bits of the two zeros differ";
    EXPECT_TRUE(adds(std::numeric_limits<double>::quiet_NaN())
                    ->equals(adds(-std::numeric_limits<double>::quiet_NaN())));
}

TEST(AddConverter, EqualsNoOtherClass) {
    EXPECT_FALSE(adds(1)->equals(std::make_shared<CMultiplyConverter>(1)));
    EXPECT_FALSE(adds(0)->equals(CConverter::identity()));
    EXPECT_FALSE(adds(3)->equals(std::make_shared<CCompound>(adds(1), adds(2))));
    EXPECT_FALSE(adds(1)->equals(nullptr));
}

TEST(AddConverter, HasAHashCodeOfItsOwnThatTheBaseClassDoesNotUse) {
    EXPECT_EQ(adds(273.15)->hashCode(), 0x43889333);
    EXPECT_EQ(adds(0.0)->hashCode(), 0);
    EXPECT_EQ(adds(-0.0)->hashCode(), std::numeric_limits<int>::min());
    EXPECT_EQ(adds(0.1)->hashCode(), adds(0.1 + 1e-12)->hashCode());
    EXPECT_EQ(adds(std::numeric_limits<double>::quiet_NaN())->hashCode(), 0x7FC00000);
    EXPECT_EQ(CConverterPtr(adds(273.15))->hashCode(), floatToIntBits(1.0f));
}

TEST(AddConverter, ItsSymbolIsTheUnitAndTheOffsetWithSixDigits) {
    const struct {
        CUnitPtr Unit;
        double Offset;
        const char* Expected;
    } table[] = {
        {SI::Kelvin(), 273.15, "[K+273.15]"},
        {SI::Kelvin(), -273.15, "[K+-273.15]"},
        {SI::Kelvin(), 0.0, "[K+0]"},
        {SI::Kelvin(), -0.0, "[K+-0]"},
        {SI::Kelvin(), 1.0 / 3.0, "[K+0.333333]"},
        {SI::Meter(), 1234567.0, "[m+1.23457e+06]"},
        {SI::Meter(), 1e-6, "[m+1e-06]"},
        {SI::Ohm(), 1, "[\xE2\x84\xA6+1]"},
        {SI::Meter(), Infinity, "[m+inf]"},
        {CProductUnit::one(), 1, "[One+1]"},
        {SI::Meter() / SI::Second(), 1, "[+1]"},  // products have no symbol
        {SI::Celsius(), 1, "[+1]"},               // a label is not a symbol
    };
    for (const auto& row : table) {
        EXPECT_EQ(text(adds(row.Offset)->getSymbol(row.Unit)), row.Expected);
        EXPECT_EQ(text(CConverterPtr(adds(row.Offset))->getSymbol(row.Unit)), "")
            << "the base class returns no symbol";
    }
}

}  // namespace
}  // namespace mensor

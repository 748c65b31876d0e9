// DerivedUnit_test.cpp: the base class of all kinds of units except the base unit.
#include "mensor/DerivedUnit.h"

#include <memory>
#include <stdexcept>
#include <type_traits>

#include "mensor/AlternateUnit.h"
#include "mensor/BaseUnit.h"
#include "mensor/ProductUnit.h"
#include "mensor/SI.h"
#include "mensor/TransformedUnit.h"
#include "support/ClientUnit.h"
#include "support/Matchers.h"

namespace mensor {
namespace {

using ::testing::StrEq;
using ::testing::ThrowsMessage;

class COwnKind : public CDerivedUnit {
public:
    explicit COwnKind(const string_t& symbol) : CDerivedUnit(symbol) {}

    void calculateHashCode() override { m_HashCode = 1234567891; }
    CUnitPtr getCtxDimension() override { return SI::Meter(); }
    CUnitPtr getSystemUnit() override { return SI::Meter(); }
    bool equals(CUnitPtr that) const override { return that.get() == this; }
    CConverterPtr getCtxToDimension() override { return CConverter::identity(); }
};

TEST(DerivedUnit, IsTheBaseClassOfAllKindsExceptTheBaseUnit) {
    static_assert(std::is_base_of<CUnit, CDerivedUnit>::value, "");
    static_assert(std::is_base_of<CDerivedUnit, CAlternateUnit>::value, "");
    static_assert(std::is_base_of<CDerivedUnit, CProductUnit>::value, "");
    static_assert(std::is_base_of<CDerivedUnit, CTransformedUnit>::value, "");
    static_assert(!std::is_base_of<CDerivedUnit, CBaseUnit>::value, "");
    for (const CUnitPtr& unit : {SI::Newton(), SI::Celsius(), SI::Meter() / SI::Second()}) {
        EXPECT_TRUE(std::dynamic_pointer_cast<CDerivedUnit>(unit));
    }
    EXPECT_FALSE(std::dynamic_pointer_cast<CDerivedUnit>(CUnitPtr(SI::Meter())));
}

TEST(DerivedUnit, IsAbstractAndHasNoMembersOfItsOwn) {
    static_assert(std::is_abstract<CDerivedUnit>::value, "");
    static_assert(sizeof(CDerivedUnit) == sizeof(CUnit), "");
    static_assert(!std::is_constructible<CDerivedUnit, string_t>::value, "");
    SUCCEED();
}

TEST(DerivedUnit, BehavesLikeCUnitUnlessAKindOverrides) {
    const auto unit = std::make_shared<COwnKind>("q");
    EXPECT_EQ(text(unit->getSymbol()), "q");
    EXPECT_EQ(unit->hashCode(), 0);
    EXPECT_EQ(Inside::id(unit), 0);
    ASSERT_EQ(unit->elements().size(), 1U);
    EXPECT_EQ(unit->elements()[0].getUnit(), unit);
    EXPECT_THAT([&] { unit->baseUnits(); },
                ThrowsMessage<std::logic_error>(
                    StrEq("Unit with Id[ 0] and Symbol [q] is not a system unit")));
    EXPECT_FALSE(unit->isSystemUnit());
    EXPECT_THAT(unit, ConvertsTo(SI::Meter(), 2.0, 2.0));
    EXPECT_EQ(CUnit::searchSymbol("q"), nullptr) << "the constructor does not register it";
}

}  // namespace
}  // namespace mensor

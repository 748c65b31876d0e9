// Boundary_test.cpp: members that the headers show but clients cannot access.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

#include "mensor/AddConverter.h"
#include "mensor/AlternateUnit.h"
#include "mensor/BaseUnit.h"
#include "mensor/Converter.h"
#include "mensor/MultiplyConverter.h"
#include "mensor/ProductUnit.h"
#include "mensor/TransformedUnit.h"
#include "mensor/Unit.h"
#include "mensor/UnitFormat.h"
#include "mensor/UnitRationalPower.h"
#include "mensor/ValueWithUnit.h"

namespace mensor {
namespace {

// The names of all members below.
std::vector<std::string>& names() {
    static std::vector<std::string> list;
    return list;
}

// REACHABLE(name): Reachable_name<Class> is true if a client can write &Class::name.
#define REACHABLE(name)                                                                      \
    template <class Class, class = void>                                                     \
    struct Reachable_##name : std::false_type {};                                            \
    template <class Class>                                                                   \
    struct Reachable_##name<Class, std::void_t<decltype(&Class::name)>> : std::true_type {}; \
    [[maybe_unused]] const bool IsListed_##name = (names().emplace_back(#name), true);

REACHABLE(getSymbol)
REACHABLE(toSystem)
REACHABLE(m_Symbol)
REACHABLE(m_HashCode)
REACHABLE(m_Id)
REACHABLE(m_LookupVectorMutex)
REACHABLE(m_PowLookUp)
REACHABLE(requireConverterTo)
REACHABLE(readResolve)
REACHABLE(m_CachedEpoch)
REACHABLE(m_CachedDimension)
REACHABLE(m_CachedToDimension)
REACHABLE(getUnitByIndexOrExpandTable)
REACHABLE(m_Dimension)
REACHABLE(m_ToDimension)
REACHABLE(m_BaseUnits)
REACHABLE(_systemUnit)
REACHABLE(_toSystem)
REACHABLE(m_Elements)
REACHABLE(m_SystemUnitCach)
REACHABLE(elementsContains)
REACHABLE(m_Unit)
REACHABLE(m_Pow)
REACHABLE(m_Offset)
REACHABLE(m_Factor)
REACHABLE(m_First)
REACHABLE(m_Second)
REACHABLE(m_SecondIsReady)
REACHABLE(m_Plan)
REACHABLE(convertArray)
REACHABLE(m_Value)
REACHABLE(write)

TEST(Boundary, TheTestFindsPublicMembers) {
    EXPECT_TRUE(Reachable_getSymbol<CUnit>::value);
    EXPECT_TRUE(Reachable_toSystem<CTransformedUnit>::value);
}

// A member with another name would be out of reach, too.
TEST(Boundary, TheHeadersHaveAllMembersOfThisTest) {
    std::ostringstream headers;
    for (const auto& entry :
         std::filesystem::directory_iterator(MENSOR_TEST_DATA "/../../src/mensor")) {
        if (entry.path().extension() == ".h") {
            headers << std::ifstream(entry.path()).rdbuf();
        }
    }
    std::string words = headers.str();
    const auto isNoName = [](unsigned char c) { return std::isalnum(c) == 0 && c != '_'; };
    std::replace_if(words.begin(), words.end(), isNoName, ' ');
    for (const std::string& name : names()) {
        EXPECT_NE(words.find(" " + name + " "), std::string::npos) << name;
    }
}

TEST(Boundary, ClientsCannotAccessMembersThatAreNotPublic) {
    EXPECT_FALSE(Reachable_m_Symbol<CUnit>::value);
    EXPECT_FALSE(Reachable_m_HashCode<CUnit>::value);
    EXPECT_FALSE(Reachable_m_Id<CUnit>::value);
    EXPECT_FALSE(Reachable_m_LookupVectorMutex<CUnit>::value);
    EXPECT_FALSE(Reachable_m_PowLookUp<CUnit>::value);
    EXPECT_FALSE(Reachable_requireConverterTo<CUnit>::value);
    EXPECT_FALSE(Reachable_readResolve<CUnit>::value);
    EXPECT_FALSE(Reachable_m_CachedEpoch<CUnit>::value);
    EXPECT_FALSE(Reachable_m_CachedDimension<CUnit>::value);
    EXPECT_FALSE(Reachable_m_CachedToDimension<CUnit>::value);
    EXPECT_FALSE(Reachable_getUnitByIndexOrExpandTable<CUnit>::value);
    EXPECT_FALSE(Reachable_m_Dimension<CBaseUnit>::value);
    EXPECT_FALSE(Reachable_m_ToDimension<CBaseUnit>::value);
    EXPECT_FALSE(Reachable_m_BaseUnits<CAlternateUnit>::value);
    EXPECT_FALSE(Reachable__systemUnit<CTransformedUnit>::value);
    EXPECT_FALSE(Reachable__toSystem<CTransformedUnit>::value);
    EXPECT_FALSE(Reachable_m_Elements<CProductUnit>::value);
    EXPECT_FALSE(Reachable_m_SystemUnitCach<CProductUnit>::value);
    EXPECT_FALSE(Reachable_elementsContains<CProductUnit>::value);
    EXPECT_FALSE(Reachable_m_Unit<CUnitRationalPower>::value);
    EXPECT_FALSE(Reachable_m_Pow<CUnitRationalPower>::value);
    EXPECT_FALSE(Reachable_m_Offset<CAddConverter>::value);
    EXPECT_FALSE(Reachable_m_Factor<CMultiplyConverter>::value);
    EXPECT_FALSE(Reachable_m_First<CCompound>::value);
    EXPECT_FALSE(Reachable_m_Second<CCompound>::value);
    EXPECT_FALSE(Reachable_m_SecondIsReady<CCompound>::value);
    EXPECT_FALSE(Reachable_m_Plan<CCompound>::value);
    EXPECT_FALSE(Reachable_convertArray<CConverter>::value);
    EXPECT_FALSE(Reachable_m_Value<CValueWithUnit>::value);
    EXPECT_FALSE(Reachable_m_Unit<CValueWithUnit>::value);
    EXPECT_FALSE(Reachable_m_Value<Convert>::value);
    EXPECT_FALSE(Reachable_m_Unit<Convert>::value);
    EXPECT_FALSE(Reachable_write<CStandardUnitFormat>::value);
}

TEST(Boundary, ClientsCannotCopyOrConstructUnits) {
    EXPECT_FALSE((std::is_constructible_v<CBaseUnit, string_t>));
    EXPECT_FALSE(std::is_default_constructible_v<CProductUnit>);
    EXPECT_FALSE(std::is_copy_constructible_v<CTransformedUnit>);
    EXPECT_FALSE(std::is_copy_assignable_v<CAlternateUnit>);
    EXPECT_TRUE(std::has_virtual_destructor_v<CUnit>);
    EXPECT_TRUE(std::has_virtual_destructor_v<CConverter>);
}

}  // namespace
}  // namespace mensor

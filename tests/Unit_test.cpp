// Unit_test.cpp: identity and the tables of the process, the registration of units, and text.
// UnitAlgebra_test.cpp and UnitConversion_test.cpp test the rest.
#include "mensor/Unit.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <future>
#include <limits>
#include <memory>
#include <mutex>
#include <set>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "mensor/AlternateUnit.h"
#include "mensor/BaseUnit.h"
#include "mensor/NonSI.h"
#include "mensor/ProductUnit.h"
#include "mensor/SI.h"
#include "mensor/TransformedUnit.h"
#include "mensor/UnitFormat.h"
#include "support/ClientConverters.h"
#include "support/ClientUnit.h"
#include "support/Matchers.h"

namespace mensor {
namespace {

using ::testing::ElementsAre;
using ::testing::StrEq;
using ::testing::ThrowsMessage;

// A kind of unit that overrides only the pure virtual functions.
class CPlainUnit : public CUnit {
public:
    CPlainUnit(const string_t& symbol, int hash) : CUnit(symbol), m_Hash(hash) {}

    void calculateHashCode() override { m_HashCode = m_Hash; }
    CUnitPtr getCtxDimension() override { return shared_from_this(); }
    CUnitPtr getSystemUnit() override { return shared_from_this(); }
    bool equals(CUnitPtr) const override {
        ADD_FAILURE() << "equals() must not decide identity";
        return false;
    }
    CConverterPtr getCtxToDimension() override { return CConverter::identity(); }

    CUnitPtr canonical() { return getInstance(shared_from_this()); }
    CUnitPtr resolved() { return readResolve(); }

private:
    int m_Hash;
};

std::shared_ptr<CPlainUnit> plain(const string_t& symbol, int hash) {
    return std::make_shared<CPlainUnit>(symbol, hash);
}

int numberOfUnits() { return static_cast<int>(CUnit::instances().size()); }

// A hash code that no unit has.
int freshHash() {
    static int hash = 1700000000;
    do {
        ++hash;
    } while (CUnit::instances().count(hash) != 0);
    return hash;
}

// ---- the tables after loading

TEST(UnitTables, IdsBeginWith2InTheOrderOfRegistration) {
    EXPECT_EQ(Inside::id(SI::Ampere()), 2) << "the first unit of the catalogue";
    std::set<int> ids;
    for (const auto& [hash, unit] : CUnit::instances()) {
        ids.insert(Inside::id(unit));
    }
    ids.erase(Inside::id(CProductUnit::one()));
    ASSERT_EQ(ids.size(), CUnit::instances().size() - 1) << "each id is used once";
    EXPECT_EQ(*ids.begin(), 2);
    EXPECT_EQ(*ids.rbegin(), numberOfUnits());
}

TEST(UnitTables, ContainEveryUnitUnderItsHashCode) {
    EXPECT_GT(CUnit::instances().size(), 500U);
    for (const auto& [hash, unit] : CUnit::instances()) {
        ASSERT_TRUE(unit);
        EXPECT_EQ(unit->hashCode(), hash);
        unit->calculateHashCode();
        EXPECT_EQ(unit->hashCode(), hash) << "computed again";
    }
    EXPECT_EQ(SI::Meter()->hashCode(), 109);
    EXPECT_EQ(CUnit::instances().at(109), SI::Meter());
}

TEST(UnitTables, ContainEverySymbolAndNoOtherName) {
    EXPECT_EQ(CUnit::symbols().count(string_t()), 0U);
    for (const auto& [symbol, unit] : CUnit::symbols()) {
        EXPECT_EQ(text(unit->getSymbol()), text(symbol));
        EXPECT_EQ(CUnit::instances().at(unit->hashCode()), unit);
    }
    std::size_t withSymbol = 0;
    for (const auto& [hash, unit] : CUnit::instances()) {
        withSymbol += unit != CProductUnit::one() && !unit->getSymbol().empty();
    }
    EXPECT_EQ(CUnit::symbols().size(), withSymbol);
}

TEST(UnitTables, ContainTheDimensionlessUnitUnderZeroWithoutIdAndSymbol) {
    const CUnitPtr one = CProductUnit::one();
    EXPECT_EQ(CUnit::instances().at(0), one);
    EXPECT_EQ(Inside::id(one), 0);
    EXPECT_EQ(text(one->getSymbol()), "One");
    EXPECT_EQ(CUnit::symbols().count("One"), 0U);
    EXPECT_EQ(CUnit::searchSymbol("One"), nullptr);
}

TEST(UnitTables, AreTheSameObjectsAtEachCall) {
    EXPECT_EQ(&CUnit::symbols(), &CUnit::symbols());
    EXPECT_EQ(&CUnit::instances(), &CUnit::instances());
    EXPECT_EQ(&CUnit::dimensions(), &CUnit::dimensions());
    EXPECT_EQ(&CUnit::toDimensions(), &CUnit::toDimensions());
    EXPECT_EQ(&CUnit::mutex(), &CUnit::mutex());
}

// This happens at load, at the first use of the table.
TEST(UnitTables, AnEmptyTableOfInstancesGetsTheDimensionlessUnit) {
    std::map<int, CUnitPtr> loaded;
    loaded.swap(CUnit::instances());
    ASSERT_EQ(CUnit::instances().size(), 1U);
    EXPECT_EQ(CUnit::instances().begin()->first, 0);
    EXPECT_EQ(CUnit::instances().begin()->second, CProductUnit::one());

    const CUnitPtr first = plain(string_t(), 4711)->canonical();
    const CUnitPtr second = plain(string_t(), 4712)->canonical();
    EXPECT_EQ(Inside::id(first), 2);
    EXPECT_EQ(Inside::id(second), 3);
    EXPECT_EQ(CUnit::instances().size(), 3U);
    loaded.swap(CUnit::instances());
}

TEST(UnitTables, ATableThatIsNotEmptyKeepsTheChangesOfTheClient) {
    std::map<int, CUnitPtr> loaded = CUnit::instances();
    CUnit::instances().erase(0);
    EXPECT_EQ(CUnit::instances().size(), loaded.size() - 1);
    loaded.swap(CUnit::instances());
}

TEST(UnitTables, TheDimensionlessUnitIsAddedUnderItsPresentHashCode) {
    std::map<int, CUnitPtr> loaded;
    loaded.swap(CUnit::instances());
    Inside::hashCode(CProductUnit::one()) = 77;
    EXPECT_EQ(CUnit::instances().begin()->first, 77) << "it is not computed";
    EXPECT_EQ(Inside::id(CProductUnit::one()), 0);
    Inside::hashCode(CProductUnit::one()) = 0;
    loaded.swap(CUnit::instances());
}

TEST(SearchSymbol, FindsTheUnitWithExactlyThisSymbol) {
    EXPECT_EQ(CUnit::searchSymbol("m"), SI::Meter());
    EXPECT_EQ(CUnit::searchSymbol("kg"), SI::Kilogram());
    EXPECT_EQ(CUnit::searchSymbol("\xE2\x84\xA6"), SI::Ohm());
    EXPECT_EQ(CUnit::searchSymbol("\xCE\xA9"), nullptr) << "the Greek letter is another symbol";
    for (const char* unknown : {"", " m", "m ", "M", "met", "xyz", "m\xC2", "\xFF"}) {
        EXPECT_EQ(CUnit::searchSymbol(unknown), nullptr) << unknown;
    }
    EXPECT_EQ(CUnit::searchSymbol(std::string("m\0", 2)), nullptr);
    EXPECT_EQ(CUnit::searchSymbol(std::string(100000, 'm')), nullptr);
}

TEST(SearchSymbol, IgnoresLabelsAndAliases) {
    CUnitFormat::alias(SI::Meter(), "metre");
    for (const char* name : {"km", "g", "°C", "%", "bar", "metre"}) {
        ASSERT_TRUE(CUnitFormat::unitFor(name)) << name;
        EXPECT_EQ(CUnit::searchSymbol(name), nullptr) << name;
    }
}

// ---- registration

TEST(GetInstance, RegistersANewUnitWithTheNextId) {
    const int before = numberOfUnits();
    const string_t symbol = freshSymbol();
    const auto unit = plain(symbol, freshHash());
    EXPECT_EQ(unit->hashCode(), 0) << "not computed yet";
    EXPECT_EQ(Inside::id(unit), 0);

    EXPECT_EQ(unit->canonical(), unit);
    EXPECT_EQ(Inside::id(unit), before + 1);
    EXPECT_EQ(numberOfUnits(), before + 1);
    EXPECT_EQ(CUnit::instances().at(unit->hashCode()), unit);
    EXPECT_EQ(CUnit::searchSymbol(symbol), unit);
    for (int i = 2; i < 100; ++i) {
        ASSERT_EQ(Inside::id(plain(string_t(), freshHash())->canonical()), before + i);
    }
}

TEST(GetInstance, AKnownUnitUsesNoId) {
    const CUnitPtr known = plain(freshSymbol(), freshHash())->canonical();
    const Tables before;
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(Inside::canonical(known), known);
        EXPECT_EQ(plain(known->getSymbol(), known->hashCode())->canonical(), known);
        EXPECT_EQ(CBaseUnit::getInstance("m"), SI::Meter());
    }
    EXPECT_EQ(Tables(), before);
    EXPECT_EQ(Inside::id(plain(string_t(), freshHash())->canonical()), Inside::id(known) + 1);
}

TEST(GetInstance, TheHashCodeAloneDecidesIdentity) {
    const CUnitPtr known = plain(freshSymbol(), freshHash())->canonical();
    const Tables before;
    const string_t other = freshSymbol();
    const auto candidate = plain(other, known->hashCode());
    EXPECT_EQ(candidate->canonical(), known);
    EXPECT_EQ(CUnit::searchSymbol(other), nullptr)
        << "the symbol of the candidate is not registered";
    EXPECT_EQ(candidate->hashCode(), known->hashCode());
    EXPECT_EQ(Inside::id(candidate), 0);
    EXPECT_EQ(plain("m", known->hashCode())->canonical(), known)
        << "even if the symbol belongs to another unit";
    EXPECT_EQ(Tables(), before);
}

TEST(GetInstance, AsksForTheSymbolOnlyIfTheHashCodeIsNew) {
    const int hash = freshHash();
    const auto known = CClientUnit::make(freshSymbol(), hash);
    known->canonical();
    ASSERT_FALSE(known->Asked.empty());
    EXPECT_EQ(known->Asked.front(), "calculateHashCode");
    EXPECT_EQ(std::count(known->Asked.begin(), known->Asked.end(), "getSymbol"), 1);

    const auto again = CClientUnit::make(freshSymbol(), hash);
    again->canonical();
    EXPECT_THAT(again->Asked, ElementsAre("calculateHashCode"));
}

TEST(GetInstance, DropsTheCandidateIfTheHashCodeIsKnown) {
    const CUnitPtr known = plain(freshSymbol(), freshHash())->canonical();
    std::shared_ptr<CPlainUnit> candidate = plain(freshSymbol(), known->hashCode());
    const std::weak_ptr<CUnit> weak = candidate;
    candidate->canonical();
    candidate.reset();
    EXPECT_TRUE(weak.expired());
}

TEST(GetInstance, TheTableOwnsTheUnit) {
    std::shared_ptr<CPlainUnit> unit = plain(string_t(), freshHash());
    const std::weak_ptr<CUnit> weak = unit;
    const int hash = unit->canonical()->hashCode();
    unit.reset();
    EXPECT_FALSE(weak.expired());
    EXPECT_EQ(CUnit::instances().at(hash), weak.lock());
}

TEST(GetInstance, RegistersAUnitWithoutSymbolByItsHashCode) {
    const std::size_t symbols = CUnit::symbols().size();
    const CUnitPtr unit = plain(string_t(), freshHash())->canonical();
    EXPECT_EQ(CUnit::symbols().size(), symbols);
    EXPECT_EQ(CUnit::searchSymbol(""), nullptr);
    EXPECT_EQ(plain(string_t(), unit->hashCode())->canonical(), unit);
}

TEST(GetInstance, AcceptsAnyIntAsHashCode) {
    for (const int hash : {std::numeric_limits<int>::min(), -1, std::numeric_limits<int>::max()}) {
        const CUnitPtr unit = plain(string_t(), hash)->canonical();
        EXPECT_EQ(unit->hashCode(), hash);
        EXPECT_EQ(CUnit::instances().at(hash), unit);
    }
    EXPECT_EQ(plain(freshSymbol(), 0)->canonical(), CProductUnit::one())
        << "the hash code 0 belongs to the dimensionless unit";
}

TEST(GetInstance, RefusesTheSymbolOfAnotherUnit) {
    const struct {
        const char* Symbol;
        const char* Message;
    } table[] = {
        {"m", "The symbol: m is currently associated to another unit."},
        {"mol", "The symbol: mol is currently associated to another unit."},
        {"\xE2\x84\xA6", "The symbol: \xE2\x84\xA6 is currently associated to another unit."},
    };
    for (const auto& row : table) {
        const auto candidate = plain(row.Symbol, freshHash());
        EXPECT_THAT([&] { candidate->canonical(); },
                    ThrowsMessage<std::logic_error>(StrEq(row.Message)));
    }
}

TEST(GetInstance, ARefusedUnitChangesNoTable) {
    const CUnitPtr metre = SI::Meter();
    std::shared_ptr<CPlainUnit> candidate = plain("m", freshHash());
    const std::weak_ptr<CUnit> weak = candidate;
    const Tables before;
    for (int i = 0; i < 2; ++i) {
        EXPECT_THROW(candidate->canonical(), std::logic_error);
        EXPECT_EQ(Tables(), before);
        EXPECT_EQ(Inside::id(candidate), 0);
    }
    EXPECT_EQ(CUnit::searchSymbol("m"), metre);
    EXPECT_TRUE(isFree(CUnit::mutex()));
    candidate.reset();
    EXPECT_TRUE(weak.expired());

    const CUnitPtr next = plain(string_t(), freshHash())->canonical();
    EXPECT_EQ(Inside::id(next), numberOfUnits()) << "the refusal used no id";
}

// A kind whose getSymbol() computes its converter, as in a transformed unit.
class CAskingUnit : public CPlainUnit {
public:
    using CPlainUnit::CPlainUnit;
    CUnitPtr getCtxDimension() override { return SI::Meter(); }
    string_t getSymbol() override {
        EXPECT_EQ(getDimension(), SI::Meter());
        EXPECT_EQ(getConverterTo(SI::Meter())->convert(1), 1);
        if (Fails) {
            throw std::range_error("no symbol");
        }
        return CPlainUnit::getSymbol();
    }
    bool Fails = false;
};

TEST(GetInstance, ARefusedUnitLeavesNoEntryInTheTablesOfDimensions) {
    for (const bool fails : {false, true}) {
        auto candidate = std::make_shared<CAskingUnit>("m", freshHash());
        candidate->Fails = fails;
        const std::weak_ptr<CUnit> weak = candidate;
        const Tables before;
        EXPECT_THROW(candidate->canonical(), std::exception);
        EXPECT_EQ(Tables(), before);
        EXPECT_EQ(CUnit::dimensions().count(candidate), 0U);
        EXPECT_EQ(CUnit::toDimensions().count(candidate), 0U);
        candidate.reset();
        EXPECT_TRUE(weak.expired());
    }
}

TEST(GetInstance, PassesOnTheExceptionOfAKindAndRegistersNothing) {
    class CNoHash : public CPlainUnit {
    public:
        CNoHash() : CPlainUnit("x", 1) {}
        void calculateHashCode() override { throw std::range_error("no hash"); }
    };
    const auto noHash = std::make_shared<CNoHash>();
    const auto noSymbol = std::make_shared<CAskingUnit>(freshSymbol(), freshHash());
    noSymbol->Fails = true;
    const Tables before;
    EXPECT_THAT([&] { noHash->canonical(); }, ThrowsMessage<std::range_error>(StrEq("no hash")));
    EXPECT_THAT([&] { noSymbol->canonical(); },
                ThrowsMessage<std::range_error>(StrEq("no symbol")));
    EXPECT_EQ(Tables(), before);
    EXPECT_TRUE(isFree(CUnit::mutex()));
    noSymbol->Fails = false;
    EXPECT_EQ(noSymbol->canonical(), noSymbol) << "the second call succeeds";
}

TEST(GetInstance, RefusesAnEmptyPointer) {
    const Tables before;
    EXPECT_THROW(Inside::canonical(nullptr), std::invalid_argument);
    EXPECT_EQ(Tables(), before);
}

TEST(GetInstance, AKindMayRegisterOtherUnitsMeanwhile) {
    class CBuilding : public CPlainUnit {
    public:
        using CPlainUnit::CPlainUnit;
        void calculateHashCode() override {
            CPlainUnit::calculateHashCode();
            EXPECT_FALSE(isFree(mutex())) << "the lock is held while a kind is called";
            Part = CBaseUnit::getInstance(freshSymbol());
        }
        CUnitPtr Part;
    };
    const auto unit = std::make_shared<CBuilding>(freshSymbol(), freshHash());
    EXPECT_EQ(unit->canonical(), unit);
    EXPECT_EQ(Inside::id(unit), Inside::id(unit->Part) + 1);
    EXPECT_TRUE(isFree(CUnit::mutex()));
}

TEST(ReadResolve, ReturnsTheRegisteredUnit) {
    const CUnitPtr known = plain(string_t(), freshHash())->canonical();
    EXPECT_EQ(plain(string_t(), known->hashCode())->resolved(), known);
    const auto unit = plain(string_t(), freshHash());
    EXPECT_EQ(unit->resolved(), unit);
    EXPECT_EQ(CUnit::instances().at(unit->hashCode()), unit);
}

// ---- the lock

TEST(UnitMutex, IsRecursive) {
    const std::lock_guard<std::recursive_mutex> outer(CUnit::mutex());
    const std::lock_guard<std::recursive_mutex> inner(CUnit::mutex());
    EXPECT_EQ(CUnit::searchSymbol("m"), SI::Meter());
    EXPECT_EQ(SI::Meter()->getDimension(), SI::Meter());
    EXPECT_FALSE(isFree(CUnit::mutex()));
}

TEST(UnitMutex, LookupsRegistrationAndDimensionsLockTheMutex) {
    const CUnitPtr metre = SI::Meter();
    const auto unit = plain(string_t(), freshHash());
    const auto other = CClientUnit::make(string_t(), freshHash());
    other->CtxDimension = [&] { return metre; };
    const std::pair<const char*, std::function<void()>> table[] = {
        {"searchSymbol", [] { CUnit::searchSymbol("m"); }},
        {"getInstance", [&] { unit->canonical(); }},
        {"getDimension", [&] { metre->getDimension(); }},
        {"getConverterTo, first asked", [&] { other->getConverterTo(metre); }},
        {"unitFor", [] { CUnitFormat::unitFor("km"); }},
    };
    for (const auto& [name, call] : table) {
        std::unique_lock<std::recursive_mutex> lock(CUnit::mutex());
        std::promise<void> started;
        std::future<void> done = std::async(std::launch::async, [&started, &call = call] {
            started.set_value();
            call();
        });
        started.get_future().wait();
        EXPECT_EQ(done.wait_for(std::chrono::milliseconds(30)), std::future_status::timeout)
            << name;
        lock.unlock();
        EXPECT_EQ(done.wait_for(std::chrono::seconds(30)), std::future_status::ready) << name;
    }
}

// ---- functions with a default that a kind may override

TEST(Unit, HasItsSymbolFromTheConstructorAndItsHashCodeAndIdFromRegistration) {
    const string_t symbol = freshSymbol();
    const auto unit = plain(symbol, freshHash());
    EXPECT_EQ(text(unit->getSymbol()), text(symbol));
    EXPECT_EQ(unit->hashCode(), 0);
    EXPECT_EQ(Inside::id(unit), 0);
    EXPECT_TRUE(Inside::multiplyLookUp(unit).empty());
    EXPECT_TRUE(Inside::divideLookUp(unit).empty());
    EXPECT_TRUE(Inside::rootLookUp(unit).empty());
    EXPECT_TRUE(Inside::powLookUp(unit).empty());
    unit->setId(4711);
    EXPECT_EQ(Inside::id(unit), 4711);
    unit->calculateHashCode();
    EXPECT_NE(unit->hashCode(), 0);
    EXPECT_EQ(CUnit::instances().count(unit->hashCode()), 0U) << "neither call registers it";
}

TEST(Unit, IsItsOwnOnlyFactor) {
    for (const CUnitPtr& unit : {CUnitPtr(plain(string_t(), freshHash())), CUnitPtr(SI::Meter()),
                                 SI::Newton(), SI::Celsius()}) {
        const std::vector<CUnitRationalPower> elements = unit->elements();
        ASSERT_EQ(elements.size(), 1U);
        EXPECT_EQ(elements[0].getUnit(), unit);
        EXPECT_EQ(elements[0].getPow(), 1);
        EXPECT_EQ(elements[0].getRoot(), 1);
    }
}

TEST(Unit, HasNoBaseUnitsByDefault) {
    const string_t symbol = freshSymbol();
    const auto unit = plain(symbol, freshHash());
    const std::string rest = "] and Symbol [" + text(symbol) + "] is not a system unit";
    EXPECT_THAT([&] { unit->baseUnits(); },
                ThrowsMessage<std::logic_error>(StrEq("Unit with Id[ 0" + rest)));
    unit->canonical();
    EXPECT_THAT([&] { unit->baseUnits(); },
                ThrowsMessage<std::logic_error>(
                    StrEq("Unit with Id[ " + std::to_string(Inside::id(unit)) + rest)));
    EXPECT_THAT([&] { SI::Celsius()->baseUnits(); },
                ThrowsMessage<std::logic_error>(StrEq("Unit with Id[ " +
                                                      std::to_string(Inside::id(SI::Celsius())) +
                                                      "] and Symbol [] is not a system unit")));
    unit->setId(-5);
    EXPECT_THAT([&] { unit->baseUnits(); },
                ThrowsMessage<std::logic_error>(StrEq("Unit with Id[ -5" + rest)));
}

TEST(Unit, IsASystemUnitIfItIsItsOwnSystemUnit) {
    for (const CUnitPtr& unit :
         {CUnitPtr(SI::Meter()), SI::Newton(), SI::Radian(), CProductUnit::one(),
          SI::Meter() / SI::Second(), SI::Newton() * SI::Meter(), SI::Meter()->root(2),
          CUnitPtr(plain(string_t(), 1))}) {
        EXPECT_TRUE(unit->isSystemUnit());
    }
    for (const CUnitPtr& unit :
         {SI::Gram(), SI::Celsius(), CUnit::fromString("km"), CUnit::fromString("km/s"),
          CUnit::fromString("m/h"), NonSI::Percent()}) {
        EXPECT_FALSE(unit->isSystemUnit()) << unit->toStdString();
    }
    const auto client = CClientUnit::make(string_t(), freshHash());
    client->SystemUnit = [] { return SI::Meter(); };
    EXPECT_FALSE(client->isSystemUnit());
}

TEST(Unit, ThrowsWithoutASharedOwner) {
    CPlainUnit onTheStack("x", 1);
    EXPECT_THROW(onTheStack.elements(), std::bad_weak_ptr);
    EXPECT_THROW(onTheStack.toString(), std::bad_weak_ptr);
    EXPECT_THROW(onTheStack.pow(1), std::bad_weak_ptr);
    EXPECT_THROW(onTheStack.multiply(2.0), std::bad_weak_ptr);
    EXPECT_THROW(onTheStack.getDimension(), std::bad_weak_ptr);
    EXPECT_THROW(onTheStack.resolved(), std::bad_weak_ptr);
    EXPECT_TRUE(isFree(CUnit::mutex()));
}

TEST(Unit, CannotBeCopied) {
    static_assert(std::is_abstract<CUnit>::value, "");
    static_assert(std::has_virtual_destructor<CUnit>::value, "");
    static_assert(!std::is_copy_constructible<CPlainUnit>::value, "");
    static_assert(!std::is_copy_assignable<CPlainUnit>::value, "");
    static_assert(!std::is_move_constructible<CPlainUnit>::value, "");
}

// ---- text

TEST(UnitText, IsTheStandardNotation) {
    for (const char* name : {"m", "kg", "km", "°C", "%", "rad", "m/s", "1/s", "m^4"}) {
        const CUnitPtr unit = CUnit::fromString(name);
        EXPECT_THAT(unit, PrintsAs(name));
        EXPECT_EQ(text(unit->toString()), name);
        EXPECT_EQ(text(unit->toString()),
                  text(CStandardUnitFormat::instance()->format(unit, string_t())));
    }
    EXPECT_EQ(CUnit::fromString("m²")->toStdString(), "m\xC2\xB2");
}

TEST(UnitText, AppendToKeepsTheGivenText) {
    for (const CUnitPtr& unit :
         {CUnitPtr(SI::Meter()), SI::Joule(), SI::Meter() / (SI::Second() ^ 2),
          CProductUnit::one() / (SI::Meter() * SI::Second()), SI::Celsius()}) {
        EXPECT_EQ(text(unit->appendTo(string_t())), unit->toStdString());
        for (const char* before : {"x", "2.5 ", "·", "kg/"}) {
            EXPECT_EQ(text(unit->appendTo(before)), before + unit->toStdString());
        }
    }
}

TEST(UnitText, AClientsKindHasItsLabelOrItsSymbolOrNoText) {
    const string_t symbol = freshSymbol(), label = freshSymbol();
    const auto unit = plain(symbol, freshHash());
    unit->canonical();
    EXPECT_THAT(unit, PrintsAs(text(symbol)));
    EXPECT_EQ(CUnit::fromString(symbol), unit);
    CUnitFormat::label(unit, label);
    EXPECT_THAT(unit, PrintsAs(text(label)));

    const CUnitPtr nameless = plain(string_t(), freshHash())->canonical();
    for (const auto& call : {std::function<void()>([&] { nameless->toString(); }),
                             std::function<void()>([&] { nameless->toStdString(); }),
                             std::function<void()>([&] { nameless->appendTo("x"); })}) {
        EXPECT_THAT(call, ThrowsMessage<std::invalid_argument>(
                              StrEq("Cannot format given Object as a Unit")));
    }
}

TEST(UnitText, ReadsAsTheUnitOrIsRefused) {
    EXPECT_EQ(CUnit::fromString("m"), SI::Meter());
    EXPECT_EQ(CUnit::fromString("m/s"), SI::Meter() / SI::Second());
    EXPECT_EQ(CUnit::fromString(""), CProductUnit::one());
    const Tables before;
    EXPECT_THAT([] { CUnit::fromString("xyz"); },
                ThrowsMessage<std::invalid_argument>(StrEq("Label: xyz not recognized")));
    EXPECT_THAT([] { CUnit::fromString("One"); },
                ThrowsMessage<std::invalid_argument>(StrEq("Label: One not recognized")));
    EXPECT_EQ(Tables(), before);
}

// ---- a client's kind

TEST(ClientUnit, WorksInAlgebraAndConversion) {
    const auto unit = CClientUnit::make(freshSymbol(), freshHash());
    unit->CtxDimension = [] { return SI::Meter(); };
    unit->CtxToDimension = [] { return std::make_shared<CScaling>(4); };
    ASSERT_EQ(unit->canonical(), unit);
    EXPECT_THAT(unit, ConvertsTo(SI::Meter(), 2.5, 10.0));
    EXPECT_THAT(SI::Meter(), ConvertsTo(unit, 10.0, 2.5));
    EXPECT_THAT(unit, ConvertsTo(CUnit::fromString("km"), 250.0, 1.0));
    const CUnitPtr speed = unit / SI::Second();
    EXPECT_TRUE(speed->isCompatible(SI::Meter() / SI::Second()));
    EXPECT_EQ(speed->multiply(SI::Second()), unit);
    EXPECT_THAT(speed, PrintsAs(text(unit->getSymbol()) + "/s"));
}

TEST(ClientUnit, MayHaveANonLinearConverterExceptInAProduct) {
    const auto unit = CClientUnit::make(freshSymbol(), freshHash());
    unit->CtxDimension = [] { return SI::Meter(); };
    unit->CtxToDimension = [] { return std::make_shared<CSquare>(); };
    unit->canonical();
    EXPECT_THAT(unit, ConvertsTo(SI::Meter(), 3.0, 9.0));
    EXPECT_THAT(SI::Meter(), ConvertsTo(unit, 9.0, 3.0));
    const CUnitPtr speed = unit / SI::Second();
    EXPECT_THAT([&] { speed->getConverterTo(SI::Meter() / SI::Second()); },
                ThrowsMessage<std::logic_error>(StrEq("Unit element " + text(unit->getSymbol()) +
                                                      " is non-linear, cannot convert")));
}

}  // namespace
}  // namespace mensor

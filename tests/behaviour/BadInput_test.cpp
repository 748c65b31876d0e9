// BadInput_test.cpp: refused input, the exceptions, and that a refusal changes no table.
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "mensor/AddConverter.h"
#include "mensor/AlternateUnit.h"
#include "mensor/BaseUnit.h"
#include "mensor/MultiplyConverter.h"
#include "mensor/NonSI.h"
#include "mensor/ProductUnit.h"
#include "mensor/SI.h"
#include "mensor/TransformedUnit.h"
#include "mensor/UnitFormat.h"
#include "mensor/ValueWithUnit.h"
#include "support/ClientUnit.h"
#include "support/Matchers.h"
#include "support/outcome.h"

namespace mensor {
namespace {

constexpr int largest = std::numeric_limits<int>::max();
constexpr int smallest = std::numeric_limits<int>::min();

struct Refusal {
    std::string What;
    std::function<void()> Call;
    std::string Outcome;
};

// Each call has the given outcome and leaves the tables as they were. The tables of dimensions are
// not compared, because isCompatible() fills them.
void expectRefused(const std::vector<Refusal>& refusals) {
    for (const Refusal& refusal : refusals) {
        SCOPED_TRACE(refusal.What);
        const Tables before;
        EXPECT_EQ(outcomeOf(refusal.Call), refusal.Outcome);
        EXPECT_EQ(Tables(), before);
    }
}

Refusal parsing(const std::string& text, const std::string& outcome) {
    return {"parsing \"" + text + '"', [text] { CUnit::fromString(text); }, outcome};
}

int wrappedProduct(int left, int right) {
    return static_cast<int>(static_cast<unsigned>(left) * static_cast<unsigned>(right));
}

TEST(BadInput, ATextThatIsNotAUnitIsRefused) {
    expectRefused({
        parsing("xyz", "std::invalid_argument: Label: xyz not recognized"),
        parsing("[a b]", "std::invalid_argument: Label: [a b] not recognized"),
        parsing("m⁻¹", "std::invalid_argument: Label: m⁻ not recognized"),
        parsing("m:1:0", "std::invalid_argument: Root's order of zero"),
        parsing("m\xC2", "std::invalid_argument: Label: m\xC2 not recognized"),
    });
    expectRefused({
        {"converting to an unknown unit", [] { SI::Meter()->getConverterTo("xyz"); },
         "std::invalid_argument: Label: xyz not recognized"},
    });
}

// Valid factors, whose product is new, precede the refused part.
TEST(BadInput, ARefusedTextRegistersNothing) {
    expectRefused({
        parsing("kg^17·xyz", "std::invalid_argument: Label: xyz not recognized"),
        parsing("kg^17·cd·[x]", "std::invalid_argument: Label: [x] not recognized"),
        parsing("kg^17:0", "std::invalid_argument: Root's order of zero"),
        parsing("kg^17·m^1:0", "std::invalid_argument: Root's order of zero"),
        parsing("kg^17·m^2147483648", "std::out_of_range: Exponent 2147483648 is out of range"),
        parsing("kg^17:2147483648", "std::out_of_range: Exponent 2147483648 is out of range"),
        parsing("kg^17·m^2147483647·m", "std::overflow_error: Exponent 2147483648 is out of range"),
        parsing("kg^17/(m^2147483647·m^2)",
                "std::overflow_error: Exponent -2147483649 is out of range"),
        parsing("kg^17·m^1:46339·m^1:46349",
                "std::overflow_error: Exponent 2147766311 is out of range"),
        {"a value with such a unit", [] { CValueWithUnit::fromString("1 kg^17·xyz"); },
         "std::invalid_argument: Label: xyz not recognized"},
    });
}

TEST(BadInput, ATextWithAnUnregisteredUnitIsRefusedIfItsExponentOverflows) {
    const CUnitPtr registered = CBaseUnit::getInstance("bushel");
    CUnitFormat::alias(CClientUnit::make("", registered->hashCode()), "unregistered");
    CUnitFormat::unitFor("unregistered")->calculateHashCode();
    expectRefused({parsing("unregistered·unregistered^2147483647",
                           "std::overflow_error: Exponent 2147483648 is out of range")});
}

TEST(BadInput, ATextWithANegativeRootIsRefusedIfItsExponentOverflows) {
    const CUnitPtr base = CBaseUnit::getInstance("firkin");
    const auto client = CClientUnit::make("", wrappedProduct(7, base->hashCode()));
    client->Elements = [=] { return std::vector{CUnitRationalPower(base, largest, 1)}; };
    client->canonical();
    EXPECT_EQ(CUnit::fromString("firkin^1:-2·firkin^5000"), base->root(-2) * (base ^ 5000));
}

TEST(BadInput, ExponentsThatDoNotFitAnIntAreRefused) {
    // Valid units at the limit, so that only exponents beyond it are refused below.
    const CUnitPtr huge = SI::Meter()->pow(largest);
    const CUnitPtr deep = SI::Meter()->root(largest);
    const CUnitPtr root = SI::Meter()->root(2);
    const CUnitPtr inverse = SI::Meter()->pow(-1);
    const CUnitPtr second = SI::Second();
    const CUnitPtr product = huge * second;
    expectRefused({
        parsing("m^2147483648", "std::out_of_range: Exponent 2147483648 is out of range"),
        parsing("m^-2147483648", "std::out_of_range: Exponent -2147483648 is out of range"),
        parsing("m^1:9999999999", "std::out_of_range: Exponent 9999999999 is out of range"),
        {"the power of a power", [&] { huge->pow(2); },
         "std::overflow_error: Exponent 4294967294 is out of range"},
        {"the root of a root", [&] { deep->root(2); },
         "std::overflow_error: Exponent 4294967294 is out of range"},
        {"the negative power of a power", [&] { huge->pow(-2); },
         "std::overflow_error: Exponent 4294967294 is out of range"},
        {"a product", [&] { huge->multiply(SI::Meter()); },
         "std::overflow_error: Exponent 2147483648 is out of range"},
        {"a product with itself", [&] { huge->multiply(huge); },
         "std::overflow_error: Exponent 4294967294 is out of range"},
        {"a product with a root", [&] { huge->multiply(root); },
         "std::overflow_error: Exponent 4294967295 is out of range"},
        {"a quotient", [&] { huge->divide(inverse); },
         "std::overflow_error: Exponent 2147483648 is out of range"},
        {"the power of a product", [&] { product->pow(2); },
         "std::overflow_error: Exponent 4294967294 is out of range"},
        {"the smallest power", [&] { second->pow(smallest); },
         "std::overflow_error: Exponent -2147483648 is out of range"},
        {"the smallest root", [&] { second->root(smallest); },
         "std::overflow_error: Exponent -2147483648 is out of range"},
        {"the smallest power by operator", [&] { static_cast<void>(second ^ smallest); },
         "std::overflow_error: Exponent -2147483648 is out of range"},
    });
    // A refusal leaves nothing in a cache: later results are computed as before.
    EXPECT_EQ(huge->root(largest), SI::Meter());
    EXPECT_EQ(deep->pow(largest), SI::Meter());
    EXPECT_EQ(huge->divide(huge), CProductUnit::one());
}

TEST(BadInput, HugePowersAndRootsAreRegisteredButNotCached) {
    const CUnitPtr metre = SI::Meter();
    for (const int n : {4097, 1000003, 2000000000, largest}) {
        EXPECT_EQ(metre->pow(n), metre->pow(n)) << n;
        EXPECT_EQ(metre->root(n), metre->root(n)) << n;
        EXPECT_EQ(metre->pow(n)->root(n), metre) << n;
        EXPECT_EQ(metre->pow(-n), CProductUnit::one() / metre->pow(n)) << n;
    }
    EXPECT_EQ(metre->pow(4096)->multiply(metre), metre->pow(4097));
    EXPECT_EQ(metre->pow(4097)->divide(metre), metre->pow(4096));
    EXPECT_EQ(Inside::powLookUp(metre).size(), 4095U) << "entries for 2 to 4096";
    EXPECT_LE(Inside::rootLookUp(metre).size(), 4095U);
}

TEST(BadInput, ARootOfOrderZeroIsRefused) {
    const std::string outcome = "std::invalid_argument: Root's order of zero";
    const CUnitPtr speed = SI::Meter() / SI::Second();
    expectRefused({
        {"of a base unit", [] { SI::Meter()->root(0); }, outcome},
        {"of a product", [&] { speed->root(0); }, outcome},
        {"of the dimensionless unit", [] { CProductUnit::one()->root(0); }, outcome},
    });
}

TEST(BadInput, SymbolsInUseAreRefused) {
    expectRefused({
        {"alternate with the symbol of a base unit", [] { SI::Second()->alternate("m"); },
         "std::logic_error: The symbol: m is currently associated to another unit."},
        {"alternate with the own symbol of a base unit", [] { SI::Meter()->alternate("m"); },
         "std::logic_error: The symbol: m is currently associated to another unit."},
        {"a unit of another hash with a symbol in use",
         [] { CClientUnit::make("m", 47110815)->canonical(); },
         "std::logic_error: The symbol: m is currently associated to another unit."},
        {"a label that is a symbol", [] { CUnitFormat::label(SI::Second(), "m"); },
         "std::invalid_argument: Label: m is a known symbol"},
        {"a label of another unit", [] { CUnitFormat::label(SI::Second(), "km"); },
         "std::invalid_argument: Label: km is attached to a different unit "
         "(must be detached first)"},
    });
}

TEST(BadInput, AlternateUnitsOfUnitsThatAreNotSystemUnitsAreRefused) {
    const CUnitPtr kilometre = SI::Kilo(SI::Meter());
    const std::string message = "Unit with Id[ " + std::to_string(Inside::id(kilometre)) +
                                "] and Symbol [] is not a system unit";
    expectRefused({
        {"their expansion", [&] { kilometre->baseUnits(); }, "std::logic_error: " + message},
        {"a symbol for them", [&] { kilometre->alternate("qzx"); }, "std::logic_error: " + message},
        {"a known symbol for them", [&] { kilometre->alternate("N"); },
         "std::logic_error: " + message},
    });
}

TEST(BadInput, UnitsWithDifferentDimensionsDoNotConvert) {
    const CUnitPtr speed = SI::Meter() / SI::Second();
    const CUnitPtr rate = SI::Celsius() / SI::Second();
    const CUnitPtr perSecond = SI::Kelvin() / SI::Second();
    expectRefused({
        {"two base units", [] { SI::Meter()->getConverterTo(SI::Second()); },
         "std::invalid_argument: m is not compatible with s in current context"},
        {"units without symbols", [&] { speed->convertValueToUnit(1, SI::Celsius()); },
         "std::invalid_argument:  is not compatible with  in current context"},
        {"a unit given as text", [] { SI::Newton()->getConverterTo("J"); },
         "std::invalid_argument: N is not compatible with J in current context"},
        {"a factor with an offset", [&] { rate->getConverterTo(perSecond); },
         "std::logic_error: Unit element  is non-linear, cannot convert"},
    });
}

TEST(BadInput, WritingAUnitWithoutTextIsRefused) {
    const CUnitPtr unnamed = CBaseUnit::getInstance(freshSymbol())->multiply(7);
    const std::string outcome = "std::invalid_argument: Cannot format given Object as a Unit";
    expectRefused({
        {"in the standard notation", [&] { unnamed->toString(); }, outcome},
        {"in ASCII", [&] { CASCIIUnitFormat::instance()->format(unnamed, "x"); }, outcome},
        {"in a value", [&] { CValueWithUnit(1, unnamed).toString(); }, outcome},
        {"in prefixed labels", [&] { CUnitFormat::labelPrefixedUnit({KILO}, unnamed); }, outcome},
    });
}

TEST(BadInput, EqualsIsFalseForAnEmptyPointerAndForAnotherKind) {
    const CUnitPtr kilometre = SI::Kilo(SI::Meter());
    for (const CUnitPtr& unit : {CUnitPtr(SI::Meter()), SI::Newton(), kilometre,
                                 SI::Meter() / SI::Second(), CProductUnit::one()}) {
        EXPECT_FALSE(unit->equals(nullptr)) << unit->toStdString();
        EXPECT_TRUE(unit->equals(unit)) << unit->toStdString();
    }
    EXPECT_FALSE(kilometre->equals(SI::Meter())) << "the system unit is of another kind";
}

// A transformation returns an empty pointer if its hash code belongs to a unit of another kind.
TEST(BadInput, AnEmptyUnitIsRefusedByEveryFunction) {
    const CUnitPtr none = SI::Meter()->multiply(0.0);
    EXPECT_EQ(none, nullptr);
    const CUnitPtr metre = SI::Meter();
    const auto adding = std::make_shared<CAddConverter>(1);
    int calls = 0;
    for (const std::function<void()>& call : std::vector<std::function<void()>>{
             [&] { metre->multiply(none); },
             [&] { metre->divide(none); },
             [&] { metre->isCompatible(none); },
             [&] { metre->getConverterTo(none); },
             [&] { metre->convertValueToUnit(1, none); },
             [&] { CProductUnit::getProductInstance(none, metre); },
             [&] { CProductUnit::getQuotientInstance(metre, none); },
             [&] { CProductUnit::getRootInstance(none, 2); },
             [&] { CProductUnit::getPowInstance(none, 2); },
             [&] { CProductUnit::getInstance({CUnitRationalPower()}, {}); },
             [&] { CProductUnit::getInstance({}, {CUnitRationalPower(none, 1, 1)}); },
             [&] { CTransformedUnit::getInstance(none, adding); },
             [&] { CTransformedUnit::getInstance(metre, nullptr); },
             [&] { CTransformedUnit unit(none, adding); },
             [&] { CTransformedUnit unit(metre, nullptr); },
             [&] { CAlternateUnit::getInstance("qzx", none); },
             [&] { CUnitFormat::label(none, "qzx"); },
             [&] { CUnitFormat::alias(none, "qzx"); },
             [&] { CUnitFormat::labelPrefixedUnit({KILO}, none); },
             [&] { Convert(1, none).to(metre); },
             [&] { Convert(1, metre).to(none); },
             [&] { CValueWithUnit(1, none).valueAs(metre); },
             [&] { CValueWithUnit(1, none).toString(); },
             [&] { CValueWithUnit(1, metre).changeUnit(none); },
             [&] { static_cast<void>(CValueWithUnit(1, metre) + CValueWithUnit(1, none)); },
             [&] { static_cast<void>(CValueWithUnit(1, none) == CValueWithUnit(1, metre)); },
         }) {
        const Tables before;
        const std::string outcome = outcomeOf(call);
        EXPECT_EQ(outcome.substr(0, 23), "std::invalid_argument: ") << "call " << calls;
        EXPECT_NE(outcome.find("empty"), std::string::npos) << "call " << calls << ": " << outcome;
        EXPECT_EQ(Tables(), before) << "call " << calls;
        ++calls;
    }
    EXPECT_EQ(CUnitFormat::unitFor("qzx"), nullptr);
}

TEST(BadInput, TheMessageQuotesAValueWithoutABlank) {
    for (const std::string text : {"", "5", "2.5km", "5\tm"}) {
        const Tables before;
        const std::string outcome = outcomeOf([&] { CValueWithUnit::fromString(text); });
        EXPECT_EQ(outcome.substr(0, 23), "std::invalid_argument: ");
        EXPECT_NE(outcome.find('"' + text + '"'), std::string::npos) << outcome;
        EXPECT_EQ(Tables(), before);
    }
}

TEST(BadInput, AValueWithAnInvalidNumberIsRefused) {
    expectRefused({
        {"no digits", [] { CValueWithUnit::fromString("x m"); }, "std::invalid_argument: stod"},
        {"too large", [] { CValueWithUnit::fromString("1e999 m"); }, "std::out_of_range: stod"},
        {"too small", [] { CValueWithUnit::fromString("1e-320 m"); }, "std::out_of_range: stod"},
    });
}

TEST(BadInput, AnObjectWithoutSharedOwnerThrowsInsteadOfReturningItself) {
    CTransformedUnit kilometre(SI::Meter(), std::make_shared<CMultiplyConverter>(1000));
    EXPECT_EQ(outcomeOf([&] { kilometre.elements(); }), "std::bad_weak_ptr: bad_weak_ptr");
    EXPECT_EQ(outcomeOf([&] { kilometre.getDimension(); }), "std::bad_weak_ptr: bad_weak_ptr");
    EXPECT_EQ(outcomeOf([&] { kilometre.toString(); }), "std::bad_weak_ptr: bad_weak_ptr");
    CAddConverter adding(1);
    EXPECT_EQ(outcomeOf([&] { adding.concatenate(CConverter::identity()); }),
              "std::bad_weak_ptr: bad_weak_ptr");
    EXPECT_THAT(adding.inverse()->convert(3), HasBitsOf(2.0)) << "inverse() returns a new object";
}

}  // namespace
}  // namespace mensor

// Meaning_test.cpp: the exact meanings of units of the registry.
#include "mensor_checked/Meaning.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <string>

#include "mensor/AddConverter.h"
#include "mensor/BaseUnit.h"
#include "mensor/MultiplyConverter.h"
#include "mensor/NonSI.h"
#include "mensor/ProductUnit.h"
#include "mensor/SI.h"
#include "mensor/TransformedUnit.h"
#include "mensor/UnitFormat.h"
#include "mensor_checked/Packs.h"
#include "mensor_exact/Definitions.h"
#include "mensor_exact/Error.h"
#include "support/ClientUnit.h"
#include "support/Matchers.h"

namespace mensor {
namespace {

using checked::CMeaning;
using checked::meaningOf;
using exact::CCatalogue;
using exact::CExponent;
using exact::CFactor;
using exact::CFraction;
using ::testing::ThrowsMessage;

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

CMeaning base(const char* symbol) { return CMeaning::base(symbol); }

CMeaning newton() { return base("kg") * base("m") / base("s").power(2); }

CFactor factor(double exactly) { return CFactor(CFraction::ofDouble(exactly)); }

exact::eError codeOf(const CUnitPtr& unit) {
    try {
        meaningOf(unit);
    } catch (const exact::CError& error) {
        return error.code();
    }
    ADD_FAILURE() << "the unit has a meaning";
    return {};
}

// A scaling of a client's own class.
class ClientConverter : public CConverter {
public:
    ClientConverter(double slope, double zero) : m_Slope(slope), m_Zero(zero) {}
    CConverterPtr inverse() override {
        return std::make_shared<ClientConverter>(1 / m_Slope, -m_Zero / m_Slope);
    }
    double convert(double x) const override { return m_Slope * x + m_Zero; }
    double derivative(double) const override { return m_Slope; }
    bool isLinear() const override { return m_Zero == 0; }

private:
    double m_Slope, m_Zero;
};

TEST(Meaning, AUnitOfTheCatalogueHasTheMeaningOfItsDefinition) {
    EXPECT_EQ(meaningOf(SI::Meter()), base("m"));
    EXPECT_EQ(meaningOf(SI::Newton()), newton());
    EXPECT_EQ(meaningOf(SI::Kilo(SI::Newton())), newton().scaled(CFactor(CFraction(1000))));
    EXPECT_EQ(meaningOf(SI::Milli(SI::Meter())).factor().toString(), "0.001");
    EXPECT_EQ(meaningOf(NonSI::Liter()).toString(), "0.001 m³");
    EXPECT_EQ(meaningOf(NonSI::Month()).toString(), "2629746 s");
    EXPECT_EQ(meaningOf(SI::Celsius()).toString(), "K + 273.15");
    EXPECT_EQ(meaningOf(CProductUnit::one()), CMeaning());
    EXPECT_EQ(meaningOf(SI::Volt() / (SI::Hertz()->root(2))),
              newton() * base("m") / base("A") * base("s").power(CExponent(-1, 2)));
}

TEST(Meaning, KeepsRadiansSteradiansAndBits) {
    EXPECT_EQ(meaningOf(SI::Radian()), base("rad"));
    EXPECT_EQ(meaningOf(SI::Lumen()), base("cd") * base("sr"));
    EXPECT_EQ(meaningOf(NonSI::Revolution()).toString(), "2π rad");
    EXPECT_EQ(meaningOf(NonSI::Byte()).toString(), "8 bit");
    EXPECT_EQ(meaningOf(SI::Radian() / SI::Second()), base("rad") / base("s"));
}

// Compares each unit of the library, by the name that it has after load.
TEST(Meaning, EveryNameOfTheCatalogueHasTheMeaningOfItsRow) {
    int count = 0;
    CCatalogue::builtIn().forEachName([&](std::string_view known, exact::ePack pack) {
        const std::string name(known);
        CUnitPtr unit = CUnitFormat::unitFor(name);
        if (unit == nullptr && name == "psi") {
            unit = NonSI::Psi();
        }
        if (pack == exact::ePack::CATALOGUE) {
            EXPECT_EQ(meaningOf(unit), *CCatalogue::builtIn().meaning(name)) << name;
            ++count;
        }
        return true;
    });
    EXPECT_EQ(count, 569 + 29 - 20 + 1);
}

TEST(Meaning, APrefixedKelvinHasNoOffset) {
    const CUnitPtr millikelvin = SI::Kelvin()->multiply(0.001);
    ASSERT_EQ(toStdString(CUnitFormat::labelFor(millikelvin)), "m°C");
    EXPECT_EQ(meaningOf(millikelvin).toString(), "0.001 K");
}

TEST(Meaning, DoesNotChangeWhenALabelMoves) {
    const CUnitPtr millimetre = SI::Milli(SI::Meter());
    CUnitFormat::detach(millimetre, "mm");
    CUnitFormat::label(SI::Meter()->multiply(0.2), "mm");
    EXPECT_EQ(meaningOf(millimetre).factor().toString(), "0.001");
    EXPECT_EQ(meaningOf(CUnitFormat::unitFor("mm")), base("m").scaled(factor(0.2)));
}

TEST(Meaning, AClientsUnitHasTheMeaningOfItsDoubles) {
    EXPECT_EQ(meaningOf(SI::Meter()->multiply(0.3)).factor(), factor(0.3));
    EXPECT_NE(meaningOf(SI::Meter()->multiply(0.3)).factor(), CFactor(CFraction(3, 10)));
    // Not registered, because the registry already has a unit with this slope.
    const auto converter = std::make_shared<CCompound>(
        std::make_shared<CMultiplyConverter>(0.9),
        std::make_shared<CCompound>(std::make_shared<CAddConverter>(0.7),
                                    std::make_shared<CMultiplyConverter>(0.31)));
    const CUnitPtr chain = std::make_shared<CTransformedUnit>(SI::Meter(), converter);
    EXPECT_EQ(meaningOf(chain),
              base("m").scaled(factor(0.31)).shifted(CFraction::ofDouble(0.7)).scaled(factor(0.9)));
    const CUnitPtr tenth = SI::Meter()->multiply(0.3) / SI::Second();
    EXPECT_EQ(meaningOf(tenth), base("m").scaled(factor(0.3)) / base("s"));
}

TEST(Meaning, AUnitOfAPackHasTheMeaningOfItsRowAfterRegistration) {
    const CUnitPtr unit = SI::Meter()->multiply(0.0254);
    EXPECT_EQ(meaningOf(unit).factor(), factor(0.0254));
    checked::registerPack(checked::ePack::CUSTOMARY);
    ASSERT_EQ(CUnitFormat::unitFor("in"), unit);
    EXPECT_EQ(meaningOf(unit).factor(), CFactor(CFraction(127, 5000)));
}

TEST(Meaning, EachUnitOfThePacksHasTheMeaningOfItsRow) {
    using checked::ePack;
    const std::pair<ePack, exact::ePack> packs[] = {
        {ePack::SI, exact::ePack::SI},           {ePack::CUSTOMARY, exact::ePack::CUSTOMARY},
        {ePack::US, exact::ePack::US},           {ePack::SCIENCE, exact::ePack::SCIENCE},
        {ePack::OFFSETS, exact::ePack::OFFSETS}, {ePack::COUNTING, exact::ePack::COUNTING}};
    for (const auto& [pack, definitions] : packs) {
        checked::registerPack(pack);
        const CCatalogue catalogue =
            CCatalogue::builtIn().with(exact::ePack::CUSTOMARY).with(definitions);
        for (const checked::CPackUnit& row : checked::packUnits()) {
            if (row.Pack == pack) {
                const std::string name(row.Symbol);
                EXPECT_EQ(meaningOf(CUnitFormat::unitFor(name)), *catalogue.meaning(name)) << name;
            }
        }
    }
}

TEST(Meaning, AClientsConverterHasTheMeaningOfItsScalingAtZero) {
    const auto own = std::make_shared<ClientConverter>(0.1, 7.0);
    const CUnitPtr unit = std::make_shared<CTransformedUnit>(SI::Meter(), own);
    EXPECT_EQ(meaningOf(unit), base("m").shifted(CFraction(7)).scaled(factor(0.1)));
}

TEST(Meaning, AVeryLongChainHasAMeaning) {
    CConverterPtr chain = std::make_shared<CMultiplyConverter>(2.0);
    for (int i = 0; i < 100000; ++i) {
        const double step = i % 2 == 0 ? 0.5 : 2.0;
        chain = std::make_shared<CCompound>(chain, std::make_shared<CMultiplyConverter>(step));
    }
    const CUnitPtr unit = std::make_shared<CTransformedUnit>(SI::Meter(), chain);
    EXPECT_EQ(meaningOf(unit).factor(), CFactor(CFraction(2)));
}

TEST(Meaning, IsMissingForFactorsThatAreNotPositive) {
    EXPECT_EQ(codeOf(SI::Meter()->multiply(-3.0)), exact::eError::NOT_POSITIVE);
    const auto zero = std::make_shared<CMultiplyConverter>(0.0);
    EXPECT_EQ(codeOf(std::make_shared<CTransformedUnit>(SI::Meter(), zero)),
              exact::eError::NOT_POSITIVE);
    EXPECT_EQ(codeOf(SI::Meter()->multiply(NaN)), exact::eError::BAD_NUMBER);
    EXPECT_EQ(codeOf(SI::Meter()->multiply(std::numeric_limits<double>::infinity())),
              exact::eError::BAD_NUMBER);
    EXPECT_EQ(codeOf(SI::Meter()->pow(60) * SI::Milli(SI::Meter())->pow(60)),
              exact::eError::EXPONENT_RANGE);
    EXPECT_EQ(checked::tryMeaningOf(SI::Meter()->multiply(-3.0)), std::nullopt);
    EXPECT_EQ(checked::tryMeaningOf(SI::Meter()), base("m"));
}

TEST(Meaning, RegistersNothing) {
    const CUnitPtr unit = CUnit::fromString("kg·cm^3·A^-2/h^4");
    const Tables before;
    meaningOf(unit);
    EXPECT_EQ(Tables(), before);
}

TEST(Meaning, AClientsClassOfUnitHasTheMeaningOfItsElements) {
    const auto own = CClientUnit::make("qx", 4711);
    EXPECT_EQ(meaningOf(own), base("qx"));
    own->BaseUnits = [] { return CUnitPtr(SI::Meter()); };
    EXPECT_EQ(meaningOf(own), base("m"));
    own->Elements = [] {
        return std::vector<CUnitRationalPower>{{SI::Meter(), 1, 2}, {SI::Second(), -1, 1}};
    };
    EXPECT_EQ(meaningOf(own), base("m").power(CExponent(1, 2)) / base("s"));
    own->Elements = [] { return std::vector<CUnitRationalPower>{{SI::Second(), 2, 1}}; };
    EXPECT_EQ(meaningOf(own), base("s").power(2)) << "one element, which is another unit";
}

// A new base unit may have a symbol that is a label of a scaled unit.
TEST(Meaning, ABaseUnitDoesNotHaveTheMeaningOfALabel) {
    ASSERT_NE(CUnitFormat::unitFor("km"), nullptr);
    EXPECT_EQ(meaningOf(CBaseUnit::getInstance("km")), base("km"));
}

TEST(Meaning, AnUnregisteredUnitHasTheMeaningOfItsOwnDoubles) {
    const CUnitPtr minute = NonSI::MinuteAngle();
    ASSERT_EQ(meaningOf(minute).factor().piExponent(), 1);
    const CUnitPtr own = std::make_shared<CTransformedUnit>(
        SI::Radian(), std::dynamic_pointer_cast<CTransformedUnit>(minute)->toSystem());
    own->calculateHashCode();
    ASSERT_EQ(own->hashCode(), minute->hashCode());
    EXPECT_EQ(meaningOf(own).factor().piExponent(), 0);
}

// A client registers a unit with the hash code of the psi before the first call of NonSI::Psi().
TEST(Meaning, AUnitWithTheHashCodeOfThePsiDoesNotHaveItsMeaning) {
    const auto own = CClientUnit::make("", SI::Pascal()->hashCode());
    own->calculateHashCode();
    const CUnitPtr unit =
        CTransformedUnit::getInstance(own, std::make_shared<CMultiplyConverter>(6894.76));
    own->Elements = [] { return std::vector<CUnitRationalPower>{{SI::Meter(), 2, 1}}; };
    EXPECT_EQ(meaningOf(unit), base("m").power(2).scaled(factor(6894.76)));
    own->Elements = [] {
        return std::vector<CUnitRationalPower>{{SI::Pascal(), 1, 1}, {SI::Radian(), 1, 1}};
    };
    EXPECT_EQ(meaningOf(unit), (base("rad") * meaningOf(SI::Pascal())).scaled(factor(6894.76)));
    own->Elements = [] { return std::vector<CUnitRationalPower>{{SI::Pascal(), 1, 1}}; };
    EXPECT_EQ(meaningOf(unit), *CCatalogue::builtIn().meaning("psi")) << "this is the psi";
}

TEST(Meaning, AClientsClassOfUnitHasTheMeaningOfItsConverterToItsSystemUnit) {
    const auto own = CClientUnit::make("qx", 4711);
    own->SystemUnit = own->CtxDimension = [] { return CUnitPtr(SI::Meter()); };
    own->CtxToDimension = [] { return std::make_shared<CMultiplyConverter>(2.5); };
    EXPECT_EQ(meaningOf(own), base("m").scaled(factor(2.5)));
}

TEST(Meaning, AClientsClassOfUnitDoesNotHaveTheMeaningOfItsSymbol) {
    const auto own = CClientUnit::make("N", 4711);
    EXPECT_EQ(meaningOf(own), base("N"));
}

TEST(Meaning, AnEndlessExpansionIsRefused) {
    const auto own = CClientUnit::make("qx", 4711);
    const auto other = CClientUnit::make("qy", 4712);
    CClientUnit* const first = own.get();
    own->BaseUnits = [other] { return other; };
    other->BaseUnits = [first] { return first->shared_from_this(); };
    EXPECT_THROW(meaningOf(own), std::logic_error);
}

TEST(Meaning, RefusesAnEmptyPointer) {
    EXPECT_THAT([] { meaningOf(nullptr); },
                ThrowsMessage<std::invalid_argument>("meaningOf: the unit is an empty pointer"));
}

}  // namespace
}  // namespace mensor

// Converter_test.cpp: the identity, chaining and equality in the base class, and compounds of any
// depth.
#include "mensor/Converter.h"

#include <cstddef>
#include <functional>
#include <limits>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "mensor/AddConverter.h"
#include "mensor/MultiplyConverter.h"
#include "mensor/ProductUnit.h"
#include "mensor/SI.h"
#include "mensor/mensor_math.h"
#include "support/ClientConverters.h"
#include "support/Matchers.h"
#include "support/thorough.h"
#include "support/threads.h"

namespace mensor {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const double Infinity = std::numeric_limits<double>::infinity();
const double NotANumber = std::numeric_limits<double>::quiet_NaN();

CConverterPtr adds(double offset) { return std::make_shared<CAddConverter>(offset); }
CConverterPtr scales(double factor) { return std::make_shared<CMultiplyConverter>(factor); }
CCompoundPtr chain(CConverterPtr first, CConverterPtr second) {
    return std::make_shared<CCompound>(std::move(first), std::move(second));
}

CCompoundPtr asCompound(const CConverterPtr& converter) {
    return std::dynamic_pointer_cast<CCompound>(converter);
}

// A converter of each class, and one of a client's class.
std::vector<CConverterPtr> oneOfEach() {
    return {CConverter::identity(),
            adds(273.15),
            scales(1000),
            chain(scales(1.8), adds(32)),
            std::make_shared<CScaling>(3),
            std::make_shared<CSquare>()};
}

// ---- the identity

TEST(Identity, IsOneObjectInTheProcess) {
    EXPECT_EQ(CConverter::identity(), CConverter::identity());
    EXPECT_NE(std::dynamic_pointer_cast<CIdentity>(CConverter::identity()), nullptr);
    EXPECT_EQ(SI::Meter()->getConverterTo(SI::Meter()), CConverter::identity());
}

TEST(Identity, ReturnsTheSameBits) {
    for (const double x : {0.0, -0.0, 2.5, -1e300, 5e-324, Infinity, -Infinity, NotANumber}) {
        EXPECT_THAT(CConverter::identity()->convert(x), HasBitsOf(x));
        EXPECT_EQ(CConverter::identity()->derivative(x), 1.0);
    }
    EXPECT_TRUE(CConverter::identity()->isLinear());
}

TEST(Identity, IsItsOwnInverseAndConcatenatesWithItselfToItself) {
    const CConverterPtr identity = CConverter::identity();
    EXPECT_EQ(identity->inverse(), identity);
    EXPECT_EQ(identity->concatenate(identity), identity);
}

TEST(Identity, MakesACompoundWhenCalledThroughTheBaseClass) {
    const CConverterPtr c = scales(1000);
    const CCompoundPtr compound = asCompound(CConverter::identity()->concatenate(c));
    ASSERT_TRUE(compound);
    EXPECT_EQ(compound->first(), c);
    EXPECT_EQ(compound->second(), CConverter::identity());
}

TEST(Identity, ConcatenateThroughTheOwnClassReturnsTheOtherConverter) {
    const auto identity = std::static_pointer_cast<CIdentity>(CConverter::identity());
    for (const CConverterPtr& c : oneOfEach()) {
        EXPECT_EQ(identity->concatenate(c), c);
    }
    CIdentity onTheStack;
    const CConverterPtr c = adds(1);
    EXPECT_EQ(onTheStack.concatenate(c), c);
}

TEST(Identity, EqualsEveryScalingThatIsOneInSinglePrecision) {
    const CConverterPtr identity = CConverter::identity();
    EXPECT_TRUE(identity->equals(identity));
    EXPECT_TRUE(identity->equals(scales(1)));
    EXPECT_TRUE(identity->equals(scales(1 + 1e-9)));
    EXPECT_TRUE(scales(1 + 1e-9)->equals(identity));
    EXPECT_TRUE(identity->equals(std::make_shared<CScaling>(1)));
    EXPECT_TRUE(identity->equals(chain(scales(4), scales(0.25))))
        << "a compound of factors is linear";
    EXPECT_FALSE(chain(scales(4), scales(0.25))->equals(identity))
        << "a compound equals only compounds";
    EXPECT_FALSE(identity->equals(scales(1 + 1e-6)));
    EXPECT_FALSE(identity->equals(adds(0))) << "not a scaling";
}

// The identity is recognised by its address, so a second object of the class is an ordinary step.
TEST(Identity, AnotherObjectOfTheClassIsAnOrdinaryStep) {
    const CConverterPtr second = std::make_shared<CIdentity>();
    const CConverterPtr c = scales(2);
    const CCompoundPtr compound = asCompound(c->concatenate(second));
    ASSERT_TRUE(compound);
    EXPECT_EQ(compound->first(), second);
    EXPECT_EQ(second->inverse(), second);
}

TEST(Identity, ThrowsWhenInvertedWithoutASharedOwner) {
    CIdentity onTheStack;
    EXPECT_THROW(onTheStack.inverse(), std::bad_weak_ptr);
    EXPECT_EQ(onTheStack.convert(2), 2);
}

// ---- the base class

TEST(Converter, TheHashCodeIsTheSlopeAtZeroInSinglePrecision) {
    EXPECT_EQ(CConverter::identity()->hashCode(), 0x3F800000);
    EXPECT_EQ(scales(1000)->hashCode(), 0x447A0000);
    EXPECT_EQ(scales(0.1)->hashCode(), floatToIntBits(0.1f));
    EXPECT_EQ(std::make_shared<CScaling>(1000)->hashCode(), 0x447A0000);
    EXPECT_EQ(chain(scales(4), scales(250))->hashCode(), 0x447A0000);
    EXPECT_EQ(chain(adds(3), std::make_shared<CSquare>())->hashCode(), floatToIntBits(6.0f));
    EXPECT_EQ(std::make_shared<CSquare>()->hashCode(), 0);
    EXPECT_EQ(scales(NotANumber)->hashCode(), 0x7FC00000);
    EXPECT_EQ(scales(-NotANumber)->hashCode(), 0x7FC00000);
    EXPECT_EQ(scales(1e300)->hashCode(), 0x7F800000) << "infinite as a float";
    EXPECT_EQ(scales(1e-300)->hashCode(), 0) << "zero as a float";
}

TEST(Converter, AllOffsetsHaveTheSameHashCodeThroughTheBaseClass) {
    EXPECT_EQ(adds(273.15)->hashCode(), 0x3F800000);
    EXPECT_EQ(adds(-7)->hashCode(), 0x3F800000);
}

TEST(Converter, EqualsAScalingWithTheSameSlopeInSinglePrecision) {
    EXPECT_TRUE(scales(0.1)->equals(scales(0.1 + 1e-12)));
    EXPECT_TRUE(scales(2)->equals(std::make_shared<CScaling>(2)));
    EXPECT_TRUE(std::make_shared<CScaling>(2)->equals(scales(2)));
    EXPECT_TRUE(scales(6)->equals(chain(scales(2), scales(3))));
    EXPECT_TRUE(scales(1e300)->equals(scales(1e200))) << "both infinite as floats";
    EXPECT_TRUE(scales(1e-60)->equals(scales(0.0)));
    EXPECT_TRUE(scales(NotANumber)->equals(scales(NotANumber)));
    EXPECT_FALSE(scales(0.1)->equals(scales(0.1000001)));
    EXPECT_FALSE(scales(0.0)->equals(scales(-0.0)));
    EXPECT_FALSE(scales(2)->equals(scales(-2)));
}

TEST(Converter, ANonLinearConverterEqualsNothingNotEvenItself) {
    const CConverterPtr square = std::make_shared<CSquare>();
    EXPECT_FALSE(square->equals(square));
    const CConverterPtr bent = std::make_shared<CBent>();
    EXPECT_EQ(bent->hashCode(), CConverter::identity()->hashCode());
    EXPECT_FALSE(bent->equals(CConverter::identity()));
    EXPECT_FALSE(CConverter::identity()->equals(bent));
    EXPECT_FALSE(scales(1)->equals(adds(5)));
}

TEST(Converter, EqualsNoEmptyPointer) {
    for (const CConverterPtr& c : oneOfEach()) {
        EXPECT_FALSE(c->equals(nullptr));
    }
}

TEST(Converter, ConcatenatedWithTheIdentityIsItself) {
    for (const CConverterPtr& c : oneOfEach()) {
        EXPECT_EQ(c->concatenate(CConverter::identity()), c);
    }
    const auto offset = std::make_shared<CAddConverter>(1);
    EXPECT_EQ(offset->concatenate(CConverter::identity()), offset);
    const auto factor = std::make_shared<CMultiplyConverter>(2);
    EXPECT_EQ(factor->concatenate(CConverter::identity()), factor);
    const auto compound = chain(offset, factor);
    EXPECT_EQ(compound->concatenate(CConverter::identity()), compound);
}

TEST(Converter, ConcatenateAppliesTheOtherConverterFirst) {
    for (const CConverterPtr& a : oneOfEach()) {
        for (const CConverterPtr& b : oneOfEach()) {
            const CConverterPtr ab = a->concatenate(b);
            for (const double x : {-3.7, 0.0, 0.1, 20.0}) {
                EXPECT_THAT(ab->convert(x), HasBitsOf(a->convert(b->convert(x))));
            }
            if (b != CConverter::identity()) {
                ASSERT_TRUE(asCompound(ab));
                EXPECT_EQ(asCompound(ab)->first(), b);
                EXPECT_EQ(asCompound(ab)->second(), a);
            }
        }
    }
}

TEST(Converter, ConcatenateReturnsANewObjectAtEachCall) {
    const CConverterPtr a = scales(2), b = adds(1);
    EXPECT_NE(a->concatenate(b), a->concatenate(b));
}

TEST(Converter, ConcatenateThroughTheBaseClassAlwaysMakesACompound) {
    EXPECT_TRUE(asCompound(scales(1000)->concatenate(scales(0.001))));
    EXPECT_TRUE(asCompound(adds(1)->concatenate(adds(-1))));
}

TEST(Converter, ThrowsWhenConcatenatedWithoutASharedOwner) {
    CSquare square;
    CAddConverter offset(1);
    CMultiplyConverter factor(2);
    CCompound compound(adds(1), scales(2));
    for (const CConverterPtr& other : {adds(1), CConverter::identity()}) {
        EXPECT_THROW(square.concatenate(other), std::bad_weak_ptr);
        EXPECT_THROW(compound.concatenate(other), std::bad_weak_ptr);
        EXPECT_THROW(static_cast<CConverter&>(offset).concatenate(other), std::bad_weak_ptr);
        EXPECT_THROW(factor.concatenate(other), std::bad_weak_ptr);
    }
}

TEST(Converter, ConcatenateRefusesAnEmptyPointer) {
    for (const CConverterPtr& c : oneOfEach()) {
        EXPECT_THROW(c->concatenate(nullptr), std::invalid_argument);
    }
    EXPECT_THROW(CCompound(nullptr, adds(1)), std::invalid_argument);
    EXPECT_THROW(CCompound(adds(1), nullptr), std::invalid_argument);
}

TEST(Converter, HasNoSymbolThroughTheBaseClass) {
    for (const CConverterPtr& c : oneOfEach()) {
        for (const CUnitPtr& unit : {CUnitPtr(SI::Meter()), SI::Newton(), CProductUnit::one()}) {
            EXPECT_EQ(text(c->getSymbol(unit)), "");
        }
        EXPECT_EQ(text(c->getSymbol(nullptr)), "");
    }
}

TEST(Converter, ClientsCanDeriveFromIt) {
    static_assert(std::is_abstract<CConverter>::value, "");
    static_assert(std::has_virtual_destructor<CConverter>::value, "");
    static_assert(std::is_base_of<std::enable_shared_from_this<CConverter>, CConverter>::value, "");
    const CConverterPtr square = std::make_shared<CSquare>();
    const CConverterPtr back = square->inverse()->concatenate(square);
    EXPECT_EQ(back->convert(1.5), 1.5);
    EXPECT_EQ(back->derivative(2), 1.0);
    EXPECT_EQ(back->inverse()->convert(4), 4);
}

// ---- compounds

TEST(Compound, AppliesItsFirstStepAndThenItsSecond) {
    EXPECT_EQ(chain(scales(2), adds(1))->convert(3), 7);
    EXPECT_EQ(chain(adds(1), scales(2))->convert(3), 8);
    EXPECT_EQ(chain(std::make_shared<CSquare>(), adds(1))->convert(3), 10);
}

// Each of two steps rounds its result. The product of both factors would round once.
TEST(Compound, RoundsAtEveryStep) {
    EXPECT_THAT(chain(scales(0.7), scales(5))->convert(3), HasBitsOf(3 * 0.7 * 5));
    EXPECT_NE(bitsOf(3 * 0.7 * 5), bitsOf(3 * (0.7 * 5))) << "otherwise the test shows nothing";
    EXPECT_THAT(chain(adds(1e16), adds(-1e16))->convert(1), HasBitsOf(0.0));
}

TEST(Compound, ReturnsItsTwoSteps) {
    const CConverterPtr first = scales(2), second = adds(1);
    const CCompoundPtr compound = chain(first, second);
    EXPECT_EQ(compound->first(), first);
    EXPECT_EQ(compound->second(), second);
}

TEST(Compound, ItsSlopeFollowsTheChainRule) {
    const auto square = [] { return std::make_shared<CSquare>(); };
    EXPECT_EQ(chain(square(), scales(3))->derivative(5), 30);
    EXPECT_EQ(chain(scales(3), square())->derivative(5), 3 * 30);
    EXPECT_EQ(chain(square(), square())->derivative(2), 4 * 8);
    EXPECT_EQ(chain(chain(square(), adds(1)), square())->derivative(2), 4 * 10);
    EXPECT_EQ(chain(square(), chain(adds(1), square()))->derivative(2), 4 * 10);
    EXPECT_EQ(chain(adds(2), square())->derivative(0.0), 4);
}

// The second step computes its slope at the result of the first step. It does not convert that
// value, so it may be unable to.
TEST(Compound, ComputesTheSlopeOfItsFirstStepFirst) {
    CLogged::Log log;
    const auto a = std::make_shared<CLogged>("a", log), b = std::make_shared<CLogged>("b", log);
    chain(a, b)->derivative(0);
    EXPECT_THAT(log, ElementsAre("a.derivative", "a.convert", "b.derivative"));
}

TEST(Compound, CallsEachStepOnceInOrder) {
    CLogged::Log log;
    const auto a = std::make_shared<CLogged>("a", log), b = std::make_shared<CLogged>("b", log);
    const auto c = std::make_shared<CLogged>("c", log);
    EXPECT_EQ(chain(chain(a, b), c)->convert(0), 3);
    EXPECT_EQ(chain(a, chain(b, c))->convert(0), 3);
    EXPECT_THAT(log, ElementsAre("a.convert", "b.convert", "c.convert",  //
                                 "a.convert", "b.convert", "c.convert"));
}

TEST(Compound, IsLinearEvenIfItsSecondStepIsAnOffset) {
    EXPECT_TRUE(chain(scales(1.8), adds(32))->isLinear());
    EXPECT_FALSE(chain(adds(32), scales(1.8))->isLinear());
    EXPECT_TRUE(chain(scales(2), std::make_shared<CSquare>())->isLinear());
    EXPECT_TRUE(chain(chain(scales(2), adds(1)), adds(1))->isLinear());
    EXPECT_FALSE(chain(chain(adds(1), scales(2)), scales(2))->isLinear());
}

TEST(Compound, IsLinearCallsTheFirstStepTwiceAndNeverTheSecond) {
    CLogged::Log log;
    const auto a = std::make_shared<CLogged>("a", log), b = std::make_shared<CLogged>("b", log);
    b->IsLinear = false;
    EXPECT_TRUE(chain(a, b)->isLinear());
    EXPECT_THAT(log, ElementsAre("a.isLinear", "a.isLinear"));
    log.clear();
    a->IsLinear = false;
    EXPECT_FALSE(chain(a, b)->isLinear());
    EXPECT_THAT(log, ElementsAre("a.isLinear"));
}

TEST(Compound, IsNotLinearIfTheSecondCallOfItsFirstStepReturnsFalse) {
    class CWavering : public CScaling {
    public:
        using CScaling::CScaling;
        bool isLinear() const override { return std::exchange(m_Answer, false); }

    private:
        mutable bool m_Answer = true;
    };
    EXPECT_FALSE(chain(std::make_shared<CWavering>(2), scales(2))->isLinear());
}

TEST(Compound, ItsInverseIsTheInversesInReverseOrder) {
    CLogged::Log log;
    const auto a = std::make_shared<CLogged>("a", log), b = std::make_shared<CLogged>("b", log);
    const CCompoundPtr inverse = asCompound(chain(a, b)->inverse());
    ASSERT_TRUE(inverse);
    EXPECT_THAT(log, ElementsAre("b.inverse", "a.inverse"));
    log.clear();
    inverse->convert(0);
    EXPECT_THAT(log, ElementsAre("b'.convert", "a'.convert"));
}

TEST(Compound, ItsInverseKeepsTheIdentityAsAStep) {
    const CCompoundPtr inverse = asCompound(chain(scales(4), CConverter::identity())->inverse());
    ASSERT_TRUE(inverse);
    EXPECT_EQ(inverse->first(), CConverter::identity());
    EXPECT_EQ(inverse->second()->convert(1), 0.25);
}

TEST(Compound, ItsInverseUndoesItUpToRounding) {
    for (const CConverterPtr& a : oneOfEach()) {
        for (const CConverterPtr& b : oneOfEach()) {
            const CCompoundPtr compound = chain(a, b);
            for (const double x : {0.0, 0.3, 21.5, 1e6}) {
                EXPECT_NEAR(compound->inverse()->convert(compound->convert(x)), x, 1e-9 * (1 + x));
            }
        }
    }
}

TEST(Compound, EqualsACompoundWithEqualSteps) {
    const CCompoundPtr compound = chain(scales(1.8), adds(32));
    EXPECT_TRUE(compound->equals(compound));
    EXPECT_TRUE(compound->equals(chain(scales(1.8 + 1e-12), adds(32 + 1e-12))));
    EXPECT_TRUE(chain(scales(1), scales(2))->equals(chain(CConverter::identity(), scales(2))));
    EXPECT_FALSE(compound->equals(chain(adds(32), scales(1.8))));
    EXPECT_FALSE(compound->equals(chain(scales(1.8), adds(33))));
    EXPECT_FALSE(compound->equals(chain(scales(1.9), adds(32))));
}

TEST(Compound, IsUnequalToAnotherClassWithTheSameConversion) {
    EXPECT_FALSE(chain(scales(2), scales(3))->equals(scales(6)));
    EXPECT_FALSE(chain(CConverter::identity(), scales(6))->equals(scales(6)));
    EXPECT_FALSE(chain(adds(1), adds(1))->equals(adds(2)));
}

TEST(Compound, IsUnequalToAnotherNestingWithTheSameConversion) {
    const CConverterPtr a = scales(2), b = scales(3), c = scales(5);
    EXPECT_FALSE(chain(chain(a, b), c)->equals(chain(a, chain(b, c))));
    EXPECT_TRUE(chain(chain(a, b), c)->equals(chain(chain(a, b), c)));
    EXPECT_TRUE(chain(scales(6), c)->equals(chain(chain(a, b), c)))
        << "a factor equals any converter with the same slope";
}

TEST(Compound, ComparesTheSecondStepsOnlyIfTheFirstAreEqual) {
    CLogged::Log log;
    const auto a = std::make_shared<CLogged>("a", log), b = std::make_shared<CLogged>("b", log);
    EXPECT_TRUE(chain(a, b)->equals(chain(scales(1), scales(2))));
    EXPECT_THAT(log, ElementsAre("a.equals", "b.equals"));
    log.clear();
    a->Equals = false;
    EXPECT_FALSE(chain(a, b)->equals(chain(scales(1), scales(2))));
    EXPECT_THAT(log, ElementsAre("a.equals"));
}

TEST(Compound, KeepsItsNestingAndItsSteps) {
    const CConverterPtr a = scales(2), b = scales(0.5), c = adds(0);
    const CCompoundPtr outer = asCompound(c->concatenate(b->concatenate(a)));
    ASSERT_TRUE(outer);
    EXPECT_EQ(outer->second(), c);
    const CCompoundPtr inner = asCompound(outer->first());
    ASSERT_TRUE(inner);
    EXPECT_EQ(inner->first(), a);
    EXPECT_EQ(inner->second(), b);

    const CCompoundPtr other = asCompound(c->concatenate(b)->concatenate(a));
    ASSERT_TRUE(other);
    EXPECT_EQ(other->first(), a);
    EXPECT_TRUE(asCompound(other->second()));
}

TEST(Compound, NeedsNoSharedOwnerToConvertCompareAndInvert) {
    CConverterPtr inverse;
    {
        CCompound compound(scales(1.8), adds(32));
        EXPECT_EQ(compound.convert(100), 212);
        EXPECT_TRUE(compound.equals(chain(scales(1.8), adds(32))));
        EXPECT_EQ(compound.hashCode(), floatToIntBits(1.8f));
        inverse = compound.inverse();
    }
    EXPECT_NEAR(inverse->convert(212), 100, 1e-12);
}

TEST(Compound, OwnsItsStepsAndReleasesThem) {
    CConverterPtr first = scales(2);
    const std::weak_ptr<CConverter> weak = first;
    CConverterPtr compound = chain(chain(std::move(first), adds(1)), adds(1));
    EXPECT_EQ(compound->convert(1), 4);
    ASSERT_FALSE(weak.expired());
    compound.reset();
    EXPECT_TRUE(weak.expired());
}

TEST(Compound, ItsDestructorKeepsAStepThatHasAnotherOwner) {
    const CConverterPtr shared = chain(chain(scales(2), adds(1)), std::make_shared<CScaling>(3));
    {
        const CConverterPtr left = chain(shared, shared), right = chain(adds(1), left);
        EXPECT_EQ(right->convert(0), ((1.0 * 2 + 1) * 3 * 2 + 1) * 3);
    }
    EXPECT_EQ(shared->convert(1), 9);
}

TEST(Compound, PassesOnTheExceptionOfAStep) {
    class CRefusing : public CScaling {
    public:
        CRefusing() : CScaling(1) {}
        double convert(double x) const override {
            return x < 0 ? throw std::domain_error("below zero") : x;
        }
    };
    const CConverterPtr compound = chain(chain(adds(-1), std::make_shared<CRefusing>()), scales(2));
    EXPECT_THROW(compound->convert(0), std::domain_error);
    EXPECT_EQ(compound->convert(3), 4);
}

// A client's subclass overrides the functions, alone and as a step.
TEST(Compound, CallsTheFunctionsOfAClientsSubclass) {
    class CRounded : public CCompound {
    public:
        using CCompound::CCompound;
        double convert(double x) const override { return std::floor(CCompound::convert(x)); }
        double derivative(double) const override { return 0; }
        bool isLinear() const override { return false; }
        CConverterPtr inverse() override { return CConverter::identity(); }
        bool equals(CConverterPtr other) const override {
            return std::dynamic_pointer_cast<CRounded>(other) != nullptr;
        }
    };
    const auto rounded = std::make_shared<CRounded>(scales(2.5), adds(1));
    EXPECT_EQ(rounded->convert(1), 3);
    const CCompoundPtr outer = chain(rounded, scales(10));
    EXPECT_EQ(outer->convert(1), 30);
    EXPECT_EQ(outer->derivative(1), 0);
    EXPECT_FALSE(outer->isLinear());
    EXPECT_EQ(outer->inverse()->convert(30), 3);
    EXPECT_TRUE(outer->equals(chain(std::make_shared<CRounded>(adds(1), adds(2)), scales(10))));
    EXPECT_FALSE(outer->equals(chain(chain(scales(2.5), adds(1)), scales(10))));
    EXPECT_TRUE(chain(scales(2.5), adds(1))->equals(rounded))
        << "both are compounds with equal steps";
}

// ---- compounds give the results of their nested steps

// The definition of a compound, computed with the nested steps that it returns.
namespace nest {

double convert(const CConverterPtr& c, double x) {
    const CCompoundPtr compound = asCompound(c);
    return compound ? convert(compound->second(), convert(compound->first(), x)) : c->convert(x);
}

double derivative(const CConverterPtr& c, double x) {
    const CCompoundPtr compound = asCompound(c);
    return compound ? derivative(compound->first(), x) *
                          derivative(compound->second(), convert(compound->first(), x))
                    : c->derivative(x);
}

bool isLinear(const CConverterPtr& c) {
    const CCompoundPtr compound = asCompound(c);
    return compound ? isLinear(compound->first()) : c->isLinear();
}

CConverterPtr inverse(const CConverterPtr& c) {
    const CCompoundPtr compound = asCompound(c);
    return compound ? chain(inverse(compound->second()), inverse(compound->first())) : c->inverse();
}

bool equals(const CConverterPtr& a, const CConverterPtr& b) {
    const CCompoundPtr left = asCompound(a), right = asCompound(b);
    if (!left) {
        return a->equals(b);
    }
    return right && equals(left->first(), right->first()) &&
           equals(left->second(), right->second());
}

// Returns whether two compounds have the same nesting, and steps of the same classes that convert
// the same.
bool areAlike(const CConverterPtr& a, const CConverterPtr& b) {
    const CCompoundPtr left = asCompound(a), right = asCompound(b);
    if (left || right) {
        return left && right && areAlike(left->first(), right->first()) &&
               areAlike(left->second(), right->second());
    }
    const CConverter &stepOfA = *a, &stepOfB = *b;
    return typeid(stepOfA) == typeid(stepOfB) && bitsOf(a->convert(7)) == bitsOf(b->convert(7));
}

}  // namespace nest

class RandomChains {
public:
    explicit RandomChains(unsigned seed) : m_Random(seed) {}

    // A compound of `steps` steps with random nesting.
    CConverterPtr next(int steps) {
        if (steps == 1) {
            return step();
        }
        const int first = 1 + below(steps - 1);
        CConverterPtr left = next(first);
        return chain(std::move(left), next(steps - first));
    }

    int below(int end) { return static_cast<int>(m_Random() % static_cast<unsigned>(end)); }

private:
    CConverterPtr step() {
        const double constant = (below(2001) - 1000) / 64.0 + 0.1;
        switch (below(8)) {
            case 0:
            case 1: return adds(constant);
            case 2:
            case 3: return scales(constant / 8);
            case 4: return CConverter::identity();
            case 5: return std::make_shared<CIdentity>();
            case 6: return std::make_shared<CScaling>(constant / 8);
            default: return std::make_shared<CBent>(constant / 1024);
        }
    }

    std::mt19937 m_Random;  // the same numbers on every platform
};

TEST(Compound, AnyNestingGivesTheResultsOfItsSteps) {
    RandomChains chains(20240719);
    for (int round = 0; round < 400; ++round) {
        const int steps = 2 + chains.below(round % 4 == 0 ? 120 : 12);
        SCOPED_TRACE(testing::Message() << "round " << round << ", " << steps << " steps");
        const CConverterPtr c = chains.next(steps), other = chains.next(2 + chains.below(2));
        for (const double x : {0.0, -0.0, 1.0, -37.7, 1e-8}) {
            ASSERT_THAT(c->convert(x), HasBitsOf(nest::convert(c, x)));
            ASSERT_THAT(c->derivative(x), HasBitsOf(nest::derivative(c, x)));
        }
        ASSERT_EQ(c->isLinear(), nest::isLinear(c));
        ASSERT_TRUE(nest::areAlike(c->inverse(), nest::inverse(c)));
        ASSERT_EQ(c->equals(c), nest::equals(c, c));
        ASSERT_EQ(c->equals(other), nest::equals(c, other));
        ASSERT_EQ(other->equals(c), nest::equals(other, c));
    }
}

// Non-linear steps: a slope is right only if all steps before it have converted the value.
TEST(Compound, TheSlopeOfADeepChainFollowsTheChainRule) {
    const auto bent = [](int i) { return std::make_shared<CBent>((i % 7 - 3) / 64.0); };
    CConverterPtr inFirst = bent(0), inSecond = bent(0), byTurns = bent(0);
    for (int i = 1; i < 80; ++i) {
        inFirst = chain(inFirst, bent(i));
        inSecond = chain(bent(i), inSecond);
        byTurns = i % 2 == 0 ? chain(byTurns, bent(i)) : chain(bent(i), byTurns);
    }
    const CConverterPtr inBoth = chain(inFirst, inSecond);
    for (const CConverterPtr& c : {inFirst, inSecond, byTurns, inBoth}) {
        EXPECT_THAT(c->derivative(0.5), HasBitsOf(nest::derivative(c, 0.5)));
    }
}

// ---- deep compounds

const int Depth = test::casesOf(100000, 30000);
constexpr std::size_t SmallStack = 256 * 1024;

// A step of each class in turn. The values stay finite and do not become zero.
CConverterPtr stepOf(int i, double firstOffset) {
    switch (i % 4) {
        case 0: return adds(i == 0 ? firstOffset : 0.25);
        case 1: return scales(i % 8 == 1 ? 3.0 : 1.0 / 3.0);
        case 2: return std::make_shared<CScaling>(i % 8 == 2 ? 0.7 : 1 / 0.7);
        default: return i % 8 == 3 ? CConverter::identity() : adds(-0.5);
    }
}

// The steps 0, 1, 2 ... as ((0 1) 2) ...
CConverterPtr nestedInFirst(double firstOffset) {
    CConverterPtr c = stepOf(0, firstOffset);
    for (int i = 1; i < Depth; ++i) {
        c = chain(std::move(c), stepOf(i, firstOffset));
    }
    return c;
}

// The same as (0 (1 (2 ...
CConverterPtr nestedInSecond(double firstOffset) {
    CConverterPtr c = stepOf(Depth - 1, firstOffset);
    for (int i = Depth - 2; i >= 0; --i) {
        c = chain(stepOf(i, firstOffset), std::move(c));
    }
    return c;
}

double convertedStepByStep(double x) {
    for (int i = 0; i < Depth; ++i) {
        x = stepOf(i, 0.25)->convert(x);
    }
    return x;
}

TEST(DeepCompound, NestedInTheFirstStepNeedsLittleStack) {
    runWithStack(SmallStack, [] {
        CConverterPtr c = nestedInFirst(0.25);
        EXPECT_THAT(c->convert(20), HasBitsOf(convertedStepByStep(20)));
        double slope = stepOf(0, 0.25)->derivative(0);
        for (int i = 1; i < Depth; ++i) {
            slope = slope * stepOf(i, 0.25)->derivative(0);
        }
        EXPECT_THAT(c->derivative(20), HasBitsOf(slope));
        EXPECT_FALSE(c->isLinear());
        EXPECT_EQ(c->hashCode(), floatToIntBits(static_cast<float>(slope)));
        CConverterPtr inverse = c->inverse();
        EXPECT_NEAR(inverse->convert(c->convert(20)), 20, 1e-6);
        EXPECT_TRUE(c->equals(nestedInFirst(0.25)));
        EXPECT_FALSE(c->equals(nestedInFirst(0.26))) << "only the innermost step differs";
        inverse.reset();
        c.reset();
    });
}

TEST(DeepCompound, NestedInTheSecondStepNeedsLittleStack) {
    runWithStack(SmallStack, [] {
        CConverterPtr c = nestedInSecond(0.25);
        EXPECT_THAT(c->convert(20), HasBitsOf(convertedStepByStep(20)));
        double slope = stepOf(Depth - 1, 0.25)->derivative(0);
        for (int i = Depth - 2; i >= 0; --i) {
            slope = stepOf(i, 0.25)->derivative(0) * slope;
        }
        EXPECT_THAT(c->derivative(20), HasBitsOf(slope));
        EXPECT_FALSE(c->isLinear());
        EXPECT_EQ(c->hashCode(), floatToIntBits(static_cast<float>(slope)));
        CConverterPtr inverse = c->inverse();
        EXPECT_NEAR(inverse->convert(c->convert(20)), 20, 1e-6);
        EXPECT_TRUE(c->equals(nestedInSecond(0.25)));
        EXPECT_FALSE(c->equals(nestedInSecond(0.26)));
        inverse.reset();
        c.reset();
    });
}

TEST(DeepCompound, NestedInBothStepsAlternatelyNeedsLittleStack) {
    runWithStack(SmallStack, [] {
        const auto build = [](double last) {
            CConverterPtr c = adds(last);
            for (int i = 0; i < Depth; ++i) {
                c = i % 2 == 0 ? chain(std::move(c), adds(0.25)) : chain(adds(0.25), std::move(c));
            }
            return c;
        };
        CConverterPtr c = build(0.25);
        EXPECT_EQ(c->convert(1), 1 + (Depth + 1) * 0.25);
        EXPECT_EQ(c->derivative(1), 1);
        CConverterPtr inverse = c->inverse();
        EXPECT_EQ(inverse->convert(c->convert(1)), 1);
        EXPECT_TRUE(c->equals(build(0.25)));
        EXPECT_FALSE(c->equals(build(0.5)));
        inverse.reset();
        c.reset();
    });
}

TEST(DeepCompound, MadeOfPairsNeedsLittleStack) {
    runWithStack(SmallStack, [] {
        const CConverterPtr leaf = adds(0.25);
        CConverterPtr inFirst = leaf, inSecond = leaf;
        for (int i = 0; i < Depth; ++i) {
            inFirst = chain(std::move(inFirst), chain(leaf, leaf));
            inSecond = chain(chain(leaf, leaf), std::move(inSecond));
        }
        EXPECT_EQ(inFirst->convert(0), (2 * Depth + 1) * 0.25);
        EXPECT_EQ(inSecond->convert(0), (2 * Depth + 1) * 0.25);
        inFirst.reset();
        inSecond.reset();
        EXPECT_EQ(leaf.use_count(), 1);
    });
}

// Made as units make chains: through the base class, with few different steps.
TEST(DeepCompound, ChainedByConcatenateNeedsLittleStack) {
    runWithStack(SmallStack, [] {
        const CConverterPtr twice = scales(2), half = scales(0.5);
        CConverterPtr c = twice;
        for (int i = 1; i < Depth; ++i) {
            c = (i % 2 == 0 ? twice : half)->concatenate(c);
        }
        EXPECT_EQ(c->convert(3), 3);
        EXPECT_TRUE(c->isLinear());
        EXPECT_TRUE(CConverter::identity()->equals(c));
        CConverterPtr around = adds(1);
        for (int i = 0; i < Depth; ++i) {
            around = around->concatenate(i % 2 == 0 ? twice : half);
        }
        EXPECT_EQ(around->convert(3), 4);
        EXPECT_EQ(c.use_count(), 1);
        c.reset();
        around.reset();
        EXPECT_EQ(twice.use_count(), 1) << "the chains own no step any more";
    });
}

// A client's converter may own a chain. Destroying it then destroys that chain within the
// destructor of another.
TEST(DeepCompound, AClientsConverterMayOwnOne) {
    class COwner : public CScaling {
    public:
        explicit COwner(CConverterPtr owned) : CScaling(1), m_Owned(std::move(owned)) {}

    private:
        CConverterPtr m_Owned;
    };
    runWithStack(SmallStack, [] {
        const CConverterPtr leaf = adds(1);
        CConverterPtr c = leaf;
        for (int i = 0; i < 1000; ++i) {
            c = chain(
                c, i % 100 == 0 ? std::make_shared<COwner>(chain(chain(leaf, leaf), leaf)) : leaf);
        }
        EXPECT_EQ(c->convert(0), 991);
        c.reset();
        EXPECT_EQ(leaf.use_count(), 1);
    });
}

}  // namespace
}  // namespace mensor

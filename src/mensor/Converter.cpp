// Converter.cpp: converters, their chaining, and the flat plan by which a chain is run.
//
// A chain is a binary tree of compounds whose shape tells how it was made, and stays so for first(),
// second(), equals() and inverse(). But what convert() computes is only the row of its leaves from
// left to right, so each compound keeps that row (the plan) and runs it in one loop. No constants are
// combined: the same operations on the same operands in the same order give the same bits. Identities
// are left out, since they hand on the very bits they are given.
//
// Nothing here recurses over a chain, so its length is not bounded by the stack.
#include "mensor/Converter.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <utility>
#include <vector>

#include "mensor/AddConverter.h"
#include "mensor/MultiplyConverter.h"
#include "mensor/Unit.h"
#include "mensor/arrays.h"
#include "mensor/exact_class.h"
#include "mensor/kept.h"
#include "mensor/mensor_math.h"
#include "mensor/require.h"
#include "mensor/tables.h"

namespace mensor {

using detail::CKept;
using detail::isExactly;

namespace {

// How deep into a chain recursion goes before a list takes over.
constexpr int RecursionLevels = 16;

// Subclasses that clients derive from CCompound are steps of their own: only they know what they do.
const CCompound* asCompound(const CConverter& converter) {
    return isExactly<CCompound>(converter) ? static_cast<const CCompound*>(&converter) : nullptr;
}

}  // namespace

CConverter::CConverter() = default;
CConverter::CConverter(const CConverter&) = default;
CConverter& CConverter::operator=(const CConverter&) = default;
CConverter::~CConverter() = default;

bool CConverter::equals(CConverterPtr other) const {
    return other && isLinear() && other->isLinear() && hashCode() == other->hashCode();
}

int CConverter::hashCode() const { return floatToIntBits(static_cast<float>(derivative(0.0))); }

CConverterPtr CConverter::concatenate(CConverterPtr other) {
    if (other == detail::theIdentity()) {
        return shared_from_this();
    }
    return std::make_shared<CCompound>(std::move(other), shared_from_this());
}

void CConverter::convertAll(const double* values, double* results, std::size_t count) const {
    if (count == 0) {
        return;
    }
    if (values == nullptr || results == nullptr) {
        throw std::invalid_argument("CConverter::convertAll: an array is null");
    }
    const std::less<const double*> before;
    if (values != results && before(values, results + count) && before(results, values + count)) {
        throw std::invalid_argument("CConverter::convertAll: the arrays overlap in part");
    }
    convertArray(values, results, count);
}

void CConverter::convertArray(const double* values, double* results, std::size_t count) const {
    for (std::size_t i = 0; i < count; ++i) {
        results[i] = convert(values[i]);
    }
}

string_t CConverter::getSymbol(CUnitPtr) const { return string_t(); }

std::atomic<const CConverterPtr*> detail::createdIdentity{nullptr};

const CConverterPtr& detail::createIdentity() {
    static const CKept<CConverterPtr> Identity(std::make_shared<CIdentity>());
    createdIdentity.store(&*Identity, std::memory_order_release);
    return *Identity;
}

CConverterPtr CConverter::identity() { return detail::theIdentity(); }

CIdentity::CIdentity() = default;
CIdentity::~CIdentity() = default;

CConverterPtr CIdentity::inverse() { return shared_from_this(); }
double CIdentity::convert(double x) const { return x; }
double CIdentity::derivative(double) const { return 1.0; }
bool CIdentity::isLinear() const { return true; }
CConverterPtr CIdentity::concatenate(CConverterPtr other) { return other; }

void CIdentity::convertArray(const double* values, double* results, std::size_t count) const {
    if (!isExactly<CIdentity>(*this)) {
        CConverter::convertArray(values, results, count);
        return;
    }
    std::memmove(results, values, count * sizeof(double));
}

// The steps of a child: its plan if it is a compound, else the one step, written to `own`.
inline CCompound::Plan CCompound::planOf(const CConverter& child, Step& own) {
    if (const CCompound* compound = asCompound(child)) {
        return {compound->m_Steps, compound->m_StepCount};
    }
    if (isExactly<CIdentity>(child)) {
        return {&own, 0};
    }
    if (isExactly<CMultiplyConverter>(child)) {
        own.Kind = Step::MULTIPLY;
        own.Constant = static_cast<const CMultiplyConverter&>(child).factor();
    } else if (isExactly<CAddConverter>(child)) {
        own.Kind = Step::ADD;
        own.Constant = static_cast<const CAddConverter&>(child).getOffset();
    } else {
        own.Kind = Step::CALL;
        own.Converter = &child;
    }
    return {&own, 1};
}

CCompound::CCompound(CConverterPtr first, CConverterPtr second)
    : m_First(std::move(first)), m_Second(std::move(second)), m_SecondIsReady(true) {
    if (!m_First || !m_Second) {
        throw std::invalid_argument("A compound converter needs two converters");
    }
    const Plan ofFirst = planOf(*m_First, m_OwnStep);
    Step ownOfSecond;
    const Plan ofSecond = planOf(*m_Second, ownOfSecond);
    join(ofFirst, ofSecond, ofSecond.Steps == &ownOfSecond);
}

struct CCompound::InverseOf {
    const CConverterPtr& Converter;
};

CCompound::CCompound(const CConverterPtr& first, InverseOf second)
    : m_First(first), m_Second(second.Converter), m_SecondIsReady(false) {
    const Plan ofFirst = planOf(*m_First, m_OwnStep);
    Step ownOfSecond;
    const Plan toInvert = planOf(*m_Second, ownOfSecond);
    Step inverted[LongestPlan];
    for (std::size_t i = 0; i < toInvert.Count; ++i) {
        // As the converters of these kinds invert themselves.
        Step& step = inverted[toInvert.Count - 1 - i];
        step = toInvert.Steps[i];
        step.Constant = step.Kind == Step::ADD ? -step.Constant : 1.0 / step.Constant;
    }
    join(ofFirst, {inverted, toInvert.Count}, true);
}

// toInvert->inverse()->concatenate(first). Where only the library's own converters are to be inverted,
// nobody can tell whether that is done now or when the result is asked for its second step.
CConverterPtr CCompound::throughInverse(const CConverterPtr& first, const CConverterPtr& toInvert) {
    Step own;
    const Plan plan = planOf(*toInvert, own);
    const bool isOwnKind = plan.Steps != nullptr &&
                           std::none_of(plan.Steps, plan.Steps + plan.Count,
                                        [](const Step& step) { return step.Kind == Step::CALL; });
    if (!isOwnKind || first == detail::theIdentity() || toInvert == detail::theIdentity()) {
        return requireGiven(toInvert->inverse(), "inverse")->concatenate(first);
    }
    return std::make_shared<CCompound>(first, InverseOf{toInvert});
}

inline const CConverterPtr& CCompound::secondStep() const {
    if (!m_SecondIsReady.load(std::memory_order_acquire)) {
        invertSecond();
    }
    return m_Second;
}

void CCompound::invertSecond() const {
    // Recursive, since what is inverted may have a second step that waits to be inverted, too. Held over
    // the library's own converters only, which take no other lock.
    static std::recursive_mutex mutex;
    const detail::Lock lock(mutex);
    if (!m_SecondIsReady.load(std::memory_order_relaxed)) {
        m_Second = inverseOf(m_Second, RecursionLevels);
        m_SecondIsReady.store(true, std::memory_order_release);
    }
}

// Sets the plan from those of the two children.
void CCompound::join(Plan first, Plan second, bool secondIsTemporary) {
    const std::size_t count = first.Count + second.Count;
    m_StepCount = static_cast<std::uint32_t>(count);
    if (count > LongestPlan) {
        m_Steps = nullptr;
        m_StepCount = LongestPlan + 1;  // more than any plan has: no chain with this one has one
    } else if (second.Count == 0) {
        m_Steps = first.Steps;
    } else if (first.Count == 0 && !secondIsTemporary) {
        m_Steps = second.Steps;
    } else if (count == 1) {
        m_OwnStep = second.Steps[0];
        m_Steps = &m_OwnStep;
    } else {
        m_OwnSteps.reset(new Step[count]);
        std::copy_n(first.Steps, first.Count, m_OwnSteps.get());
        std::copy_n(second.Steps, second.Count, m_OwnSteps.get() + first.Count);
        m_Steps = m_OwnSteps.get();
    }
}

namespace {

// Whether letting go of this pointer is likely to destroy a compound.
bool isLastOwnerOfCompound(const CConverterPtr& converter) {
    return converter.use_count() == 1 && asCompound(*converter) != nullptr;
}

}  // namespace

// To destroy a chain level by level would need a stack as deep as the chain; to keep a list of what is
// left, memory, of which there may be none. So the compounds that die with this one are turned until
// none hangs on a first step, ((a b) c) becoming (a (b c)), and taken off one by one. Their pointers are
// copied, not moved: use_count() only looks, while a copy acquires what former owners still did.
CCompound::~CCompound() {
    while (true) {
        if (isLastOwnerOfCompound(m_First)) {
            CConverterPtr turned = m_First;
            auto& inner = static_cast<CCompound&>(*turned);
            m_First = std::move(inner.m_First);
            inner.m_First = std::move(inner.m_Second);
            inner.m_Second = std::move(m_Second);
            m_Second = std::move(turned);
        } else if (isLastOwnerOfCompound(m_Second)) {
            const CConverterPtr emptied = m_Second;
            auto& inner = static_cast<CCompound&>(*emptied);
            m_First = std::move(inner.m_First);
            m_Second = std::move(inner.m_Second);
        } else {
            return;
        }
    }
}

inline double CCompound::run(const Step& step, double x) {
    if (step.Kind == Step::MULTIPLY) {
        return x * step.Constant;
    }
    if (step.Kind == Step::ADD) {
        return x + step.Constant;
    }
    return step.Converter->convert(x);
}

double CCompound::convert(double x) const {
    // Nearly all chains are one factor or one offset. A chain that has no plan does not count one step.
    if (m_StepCount == 1 &&
        m_Steps->Kind != Step::CALL) {  // NOLINT(clang-analyzer-core.NullDereference)
        return run(*m_Steps, x);
    }
    return m_Steps == nullptr ? walk(x) : runPlan(x);
}

double CCompound::runPlan(double x) const {
    for (const Step *step = m_Steps, *end = m_Steps + m_StepCount; step != end; ++step) {
        x = run(*step, x);
    }
    return x;
}

void CCompound::convertArray(const double* values, double* results, std::size_t count) const {
    if (m_Steps == nullptr || !isExactly<CCompound>(*this)) {
        CConverter::convertArray(values, results, count);
        return;
    }
    if (m_StepCount == 0) {
        std::memmove(results, values, count * sizeof(double));
        return;
    }
    if (m_StepCount == 1) {
        runAll(*m_Steps, values, results, count);
        return;
    }
    // Step by step over pieces that stay in the nearest cache: from `values` into `results`, and from
    // then on in place.
    constexpr std::size_t Piece = 1024;
    for (std::size_t done = 0; done < count;) {
        const std::size_t size = std::min(Piece, count - done);
        const double* from = values + done;
        double* const to = results + done;
        for (const Step *step = m_Steps, *end = m_Steps + m_StepCount; step != end; ++step) {
            runAll(*step, from, to, size);
            from = to;
        }
        done += size;
    }
}

void CCompound::runAll(const Step& step, const double* from, double* to, std::size_t count) {
    const bool isVectorisable = step.Kind != Step::CALL && step.Constant == step.Constant;
    if (isVectorisable && step.Kind == Step::ADD) {
        detail::addAll(from, to, count, step.Constant);
    } else if (isVectorisable) {
        detail::multiplyAll(from, to, count, step.Constant);
    } else {
        for (std::size_t i = 0; i < count; ++i) {
            to[i] = run(step, from[i]);
        }
    }
}

// convert() for a chain without a plan: down to the compounds that have one.
double CCompound::walk(double x) const {
    std::vector<const CConverter*> ahead{secondStep().get(), m_First.get()};
    while (!ahead.empty()) {
        const CConverter* next = ahead.back();
        ahead.pop_back();
        const CCompound* compound = asCompound(*next);
        if (compound != nullptr && compound->m_Steps == nullptr) {
            ahead.push_back(compound->secondStep().get());
            ahead.push_back(compound->m_First.get());
        } else {
            x = next->convert(x);
        }
    }
    return x;
}

double CCompound::derivative(double x) const {
    const double ofFirst = slopeOf(*m_First, x, false, RecursionLevels);
    return ofFirst * slopeOf(*secondStep(), x, true, RecursionLevels);
}

// The slope of `converter` at `x`, and the step of `x` over it unless it is the last one. A compound's
// slope is multiplied where both its children's are known, as its nesting says: the order of the
// multiplications decides the last bits. A few levels by recursion, what lies deeper with a list.
double CCompound::slopeOf(const CConverter& converter, double& x, bool isLast, int levels) {
    const CCompound* compound = asCompound(converter);
    if (compound == nullptr) {
        const double slope = converter.derivative(x);
        if (!isLast) {
            x = converter.convert(x);
        }
        return slope;
    }
    if (levels == 0) {
        return slopeOfChain(*compound, x, isLast);
    }
    const double ofFirst = slopeOf(*compound->m_First, x, false, levels - 1);
    return ofFirst * slopeOf(*compound->secondStep(), x, isLast, levels - 1);
}

double CCompound::slopeOfChain(const CCompound& chain, double& x, bool isLast) {
    struct Visit {
        const CConverter* Converter;
        bool ChildrenDone;
        bool IsLast;
    };
    std::vector<Visit> ahead{{&chain, false, isLast}};
    std::vector<double> slopes;
    while (!ahead.empty()) {
        const Visit visit = ahead.back();
        ahead.pop_back();
        if (visit.ChildrenDone) {
            const double ofSecond = slopes.back();
            slopes.pop_back();
            slopes.back() = slopes.back() * ofSecond;
        } else if (const CCompound* compound = asCompound(*visit.Converter)) {
            ahead.push_back({compound, true, false});
            ahead.push_back({compound->secondStep().get(), false, visit.IsLast});
            ahead.push_back({compound->m_First.get(), false, false});
        } else {
            slopes.push_back(slopeOf(*visit.Converter, x, visit.IsLast, 0));
        }
    }
    return slopes.back();
}

bool CCompound::isLinear() const {
    const CConverter* first = m_First.get();
    while (const CCompound* compound = asCompound(*first)) {
        first = compound->m_First.get();
    }
    // The first step is asked twice and the second never: how a chain answers is part of the
    // identity of the units built on it.
    return first->isLinear() && first->isLinear();
}

// A few levels by recursion, which is quick; what lies deeper with a list.
CConverterPtr CCompound::inverseOf(const CConverterPtr& converter, int levels) {
    if (converter == detail::theIdentity()) {
        return converter;
    }
    const CCompound* compound = asCompound(*converter);
    if (compound == nullptr) {
        return requireGiven(converter->inverse(), "inverse");
    }
    if (levels == 0) {
        return inverseOfChain(*converter);
    }
    CConverterPtr ofSecond = inverseOf(compound->secondStep(), levels - 1);
    return std::make_shared<CCompound>(std::move(ofSecond),
                                       inverseOf(compound->m_First, levels - 1));
}

CConverterPtr CCompound::inverse() {
    CConverterPtr ofSecond = inverseOf(secondStep(), RecursionLevels);
    return std::make_shared<CCompound>(std::move(ofSecond), inverseOf(m_First, RecursionLevels));
}

CConverterPtr CCompound::inverseOfChain(CConverter& chain) {
    struct Visit {
        CConverter* Converter;
        bool ChildrenDone;
    };
    std::vector<Visit> ahead{{&chain, false}};
    std::vector<CConverterPtr> inverses;
    while (!ahead.empty()) {
        const Visit visit = ahead.back();
        ahead.pop_back();
        if (visit.ChildrenDone) {
            CConverterPtr ofFirst = std::move(inverses.back());
            inverses.pop_back();
            CConverterPtr ofSecond = std::move(inverses.back());
            inverses.back() = std::make_shared<CCompound>(std::move(ofSecond), std::move(ofFirst));
        } else if (const CCompound* compound = asCompound(*visit.Converter)) {
            ahead.push_back({visit.Converter, true});
            ahead.push_back({compound->m_First.get(), false});
            ahead.push_back({compound->secondStep().get(), false});  // on top: inverted first
        } else {
            inverses.push_back(requireGiven(visit.Converter->inverse(), "inverse"));
        }
    }
    return std::move(inverses.back());
}

bool CCompound::equals(CConverterPtr other) const {
    const CCompound* that = dynamic_cast<const CCompound*>(other.get());
    if (that == nullptr) {
        return false;
    }
    struct Pair {
        const CConverterPtr* Mine;
        const CConverterPtr* Theirs;
    };
    std::vector<Pair> ahead{{&secondStep(), &that->secondStep()}, {&m_First, &that->m_First}};
    while (!ahead.empty()) {
        const Pair pair = ahead.back();
        ahead.pop_back();
        if (const CCompound* mine = asCompound(**pair.Mine)) {
            const CCompound* theirs = dynamic_cast<const CCompound*>(pair.Theirs->get());
            if (theirs == nullptr) {
                return false;
            }
            ahead.push_back({&mine->secondStep(), &theirs->secondStep()});
            ahead.push_back({&mine->m_First, &theirs->m_First});
        } else if (!(*pair.Mine)->equals(*pair.Theirs)) {
            return false;
        }
    }
    return true;
}

CConverterPtr CCompound::first() const { return m_First; }
CConverterPtr CCompound::second() const { return secondStep(); }

Convert::Convert(double value, std::shared_ptr<CUnit> unit)
    : m_Value(value), m_Unit(std::move(unit)) {}

double Convert::to(std::shared_ptr<CUnit> unit) const {
    requireUnit(m_Unit, "Convert::to");
    return m_Unit->convertValueToUnit(m_Value, std::move(unit));
}

}  // namespace mensor

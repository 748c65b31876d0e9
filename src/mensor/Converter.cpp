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
#include <new>
#include <stdexcept>
#include <typeinfo>
#include <utility>
#include <vector>

#include "mensor/AddConverter.h"
#include "mensor/MultiplyConverter.h"
#include "mensor/Unit.h"
#include "mensor/arrays.h"
#include "mensor/mensor_math.h"
#include "mensor/tables.h"

namespace mensor {

namespace {

// By address: a class has one type information in the process.
template <class Class>
bool isExactly(const CConverter& converter) {
    return &typeid(converter) == &typeid(Class);
}

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

const CConverterPtr& detail::theIdentity() {
    static const CConverterPtr Identity = std::make_shared<CIdentity>();
    return Identity;
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
    std::memmove(results, values, count * sizeof(double));
}

CCompound::CCompound(CConverterPtr first, CConverterPtr second)
    : m_First(std::move(first)),
      m_Second(std::move(second)),
      m_Steps(nullptr),
      m_StepCount(0),
      m_OwnStep{Step::CALL, {0.0}} {
    if (!m_First || !m_Second) {
        throw std::invalid_argument("A compound converter needs two converters");
    }
    plan();
}

namespace {

// Children that a destructor higher up this thread's stack will release: it does so in a loop, so a
// chain of any length is destroyed with a bounded stack.
using Pending = std::vector<CConverterPtr>;
thread_local Pending* pendingOfThread = nullptr;

// A hint: whether letting go of this pointer is likely to destroy a compound.
bool isLastOwnerOfCompound(const CConverterPtr& converter) {
    return converter && converter.use_count() == 1 && asCompound(*converter) != nullptr;
}

void release(CConverterPtr& child) {
    if (!isLastOwnerOfCompound(child)) {
        return;  // the member's own destructor does
    }
    try {
        pendingOfThread->push_back(std::move(child));
    } catch (const std::bad_alloc&) {
        // No memory for the list: the member's own destructor releases the child one level deeper.
    }
}

}  // namespace

CCompound::~CCompound() {
    if (!isLastOwnerOfCompound(m_First) && !isLastOwnerOfCompound(m_Second)) {
        return;
    }
    if (pendingOfThread != nullptr) {
        release(m_First);
        release(m_Second);
        return;
    }
    Pending pending;
    pendingOfThread = &pending;
    release(m_First);
    release(m_Second);
    while (!pending.empty()) {
        const CConverterPtr next = std::move(pending.back());
        pending.pop_back();
    }
    pendingOfThread = nullptr;
}

// The steps that `step`, a child of this compound, contributes: its plan, or the one step `own`.
void CCompound::countSteps(const CConverter& step, const Step*& steps, std::size_t& count,
                           Step& own) const {
    if (const CCompound* compound = asCompound(step)) {
        steps = compound->m_Steps;
        count = compound->m_StepCount;
        return;
    }
    steps = &own;
    count = 1;
    if (isExactly<CIdentity>(step)) {
        count = 0;
    } else if (isExactly<CMultiplyConverter>(step)) {
        own.Kind = Step::MULTIPLY;
        own.Constant = static_cast<const CMultiplyConverter&>(step).factor();
    } else if (isExactly<CAddConverter>(step)) {
        own.Kind = Step::ADD;
        own.Constant = static_cast<const CAddConverter&>(step).getOffset();
    } else {
        own.Kind = Step::CALL;
        own.Converter = &step;
    }
}

void CCompound::plan() {
    Step ownOfFirst{Step::CALL, {0.0}};
    Step ownOfSecond{Step::CALL, {0.0}};
    const Step* first = nullptr;
    const Step* second = nullptr;
    std::size_t countOfFirst = 0;
    std::size_t countOfSecond = 0;
    countSteps(*m_First, first, countOfFirst, ownOfFirst);
    countSteps(*m_Second, second, countOfSecond, ownOfSecond);

    m_StepCount = countOfFirst + countOfSecond;
    if (m_StepCount == 0) {
        m_Steps = &m_OwnStep;
    } else if (m_StepCount > LongestPlan) {
        m_Steps = nullptr;
        m_StepCount = LongestPlan + 1;  // one more than any plan, so no chain above this has a plan
    } else if (countOfFirst == 0 || countOfSecond == 0) {
        const Step* only = countOfFirst == 0 ? second : first;
        if (only == &ownOfFirst || only == &ownOfSecond) {
            m_OwnStep = *only;
            only = &m_OwnStep;
        }
        m_Steps = only;
    } else {
        m_OwnSteps.reset(new Step[m_StepCount]);
        std::copy(first, first + countOfFirst, m_OwnSteps.get());
        std::copy(second, second + countOfSecond, m_OwnSteps.get() + countOfFirst);
        m_Steps = m_OwnSteps.get();
    }
}

inline double CCompound::run(const Step& step, double x) {
    switch (step.Kind) {
        case Step::ADD:
            return x + step.Constant;
        case Step::MULTIPLY:
            return x * step.Constant;
        case Step::CALL:
            break;
    }
    return step.Converter->convert(x);
}

double CCompound::convert(double x) const {
    if (m_Steps == nullptr) {
        return walk(x);
    }
    for (const Step *step = m_Steps, *end = m_Steps + m_StepCount; step != end; ++step) {
        x = run(*step, x);
    }
    return x;
}

void CCompound::convertArray(const double* values, double* results, std::size_t count) const {
    if (m_Steps == nullptr) {
        CConverter::convertArray(values, results, count);
        return;
    }
    if (m_StepCount == 0) {
        std::memmove(results, values, count * sizeof(double));
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
    std::vector<const CConverter*> ahead{m_Second.get(), m_First.get()};
    while (!ahead.empty()) {
        const CConverter* next = ahead.back();
        ahead.pop_back();
        const CCompound* compound = asCompound(*next);
        if (compound != nullptr && compound->m_Steps == nullptr) {
            ahead.push_back(compound->m_Second.get());
            ahead.push_back(compound->m_First.get());
        } else {
            x = next->convert(x);
        }
    }
    return x;
}

double CCompound::derivative(double x) const {
    // Leaves from left to right, each at the value that the steps before it give; a compound's
    // slope is multiplied where both its children's are known, as its nesting says: the order of
    // the multiplications decides the last bits.
    struct Visit {
        const CConverter* Converter;
        bool ChildrenDone;
    };
    std::vector<Visit> ahead{{this, false}};
    std::vector<double> slopes;
    std::size_t unvisited = 1;
    while (!ahead.empty()) {
        const Visit visit = ahead.back();
        ahead.pop_back();
        if (visit.ChildrenDone) {
            const double ofSecond = slopes.back();
            slopes.pop_back();
            slopes.back() = slopes.back() * ofSecond;
        } else if (const CCompound* compound = visit.Converter == this ? this
                                                                       : asCompound(*visit.Converter)) {
            ahead.push_back({compound, true});
            ahead.push_back({compound->m_Second.get(), false});
            ahead.push_back({compound->m_First.get(), false});
            ++unvisited;  // two more, this one less
        } else {
            slopes.push_back(visit.Converter->derivative(x));
            if (--unvisited > 0) {
                x = visit.Converter->convert(x);
            }
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
        return converter->inverse();
    }
    if (levels == 0) {
        return inverseOfChain(*converter);
    }
    CConverterPtr ofSecond = inverseOf(compound->m_Second, levels - 1);
    return std::make_shared<CCompound>(std::move(ofSecond),
                                       inverseOf(compound->m_First, levels - 1));
}

CConverterPtr CCompound::inverse() {
    constexpr int Levels = 16;
    CConverterPtr ofSecond = inverseOf(m_Second, Levels);
    return std::make_shared<CCompound>(std::move(ofSecond), inverseOf(m_First, Levels));
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
            ahead.push_back({compound->m_Second.get(), false});  // on top: inverted first
        } else {
            inverses.push_back(visit.Converter->inverse());
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
    std::vector<Pair> ahead{{&m_Second, &that->m_Second}, {&m_First, &that->m_First}};
    while (!ahead.empty()) {
        const Pair pair = ahead.back();
        ahead.pop_back();
        if (const CCompound* mine = asCompound(**pair.Mine)) {
            const CCompound* theirs = dynamic_cast<const CCompound*>(pair.Theirs->get());
            if (theirs == nullptr) {
                return false;
            }
            ahead.push_back({&mine->m_Second, &theirs->m_Second});
            ahead.push_back({&mine->m_First, &theirs->m_First});
        } else if (!(*pair.Mine)->equals(*pair.Theirs)) {
            return false;
        }
    }
    return true;
}

CConverterPtr CCompound::first() const { return m_First; }
CConverterPtr CCompound::second() const { return m_Second; }

Convert::Convert(double value, std::shared_ptr<CUnit> unit)
    : m_Value(value), m_Unit(std::move(unit)) {}

double Convert::to(std::shared_ptr<CUnit> unit) const {
    return m_Unit->convertValueToUnit(m_Value, std::move(unit));
}

}  // namespace mensor

// Converter.cpp: the base of converters, the identity, compounds and Convert. Chain.cpp walks over
// chains of compounds, FlatPlan.cpp runs them.
#include "mensor/Converter.h"

#include <cstring>
#include <functional>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

#include "mensor/Chain.h"
#include "mensor/Unit.h"
#include "mensor/exact_class.h"
#include "mensor/identity.h"
#include "mensor/mensor_math.h"
#include "mensor/require.h"

namespace mensor {

using detail::Chain;
using detail::isExactly;

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

CCompound::CCompound(CConverterPtr first, CConverterPtr second)
    : m_First(std::move(first)), m_Second(std::move(second)), m_SecondIsReady(true) {
    if (!m_First || !m_Second) {
        throw std::invalid_argument("A compound converter needs two converters");
    }
    m_Plan.set(*m_First, *m_Second);
}

CCompound::CCompound(const CConverterPtr& first, InverseOf second)
    : m_First(first), m_Second(second.Converter), m_SecondIsReady(false) {
    m_Plan.setInverse(*m_First, *m_Second);
}

namespace {

// Returns whether dropping this pointer is likely to destroy a compound.
bool isLastOwnerOfCompound(const CConverterPtr& converter) {
    return converter.use_count() == 1 && Chain::asCompound(*converter) != nullptr;
}

}  // namespace

// Destroys a chain of any length without recursion, which would need a stack as deep as the chain,
// and without a list, because there may be no memory for it. Compounds on the first step are
// rotated, ((a b) c) to (a (b c)), until the first step is none, and then taken off one by one. The
// pointers are copied, not moved: use_count() does not synchronise with former owners, but a copy
// does.
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

double CCompound::convert(double x) const {
    if (m_Plan.isOneOperation()) {
        return m_Plan.runOne(x);
    }
    return m_Plan.exists() ? m_Plan.run(x) : Chain::convert(*this, x);
}

void CCompound::convertArray(const double* values, double* results, std::size_t count) const {
    if (m_Plan.exists() && isExactly<CCompound>(*this)) {
        m_Plan.runAll(values, results, count);
    } else {
        CConverter::convertArray(values, results, count);
    }
}

double CCompound::derivative(double x) const {
    const double ofFirst = Chain::slope(*m_First, x, false);
    return ofFirst * Chain::slope(*Chain::second(*this), x, true);
}

bool CCompound::isLinear() const {
    const CConverter* first = m_First.get();
    while (const CCompound* compound = Chain::asCompound(*first)) {
        first = compound->m_First.get();
    }
    // Calls the first step twice and the second step never. A client's class can observe this, and
    // the identity of units depends on the answer.
    return first->isLinear() && first->isLinear();
}

CConverterPtr CCompound::inverse() {
    CConverterPtr ofSecond = Chain::inverse(Chain::second(*this));
    return std::make_shared<CCompound>(std::move(ofSecond), Chain::inverse(m_First));
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
    std::vector<Pair> ahead{{&Chain::second(*this), &Chain::second(*that)},
                            {&m_First, &that->m_First}};
    while (!ahead.empty()) {
        const Pair pair = ahead.back();
        ahead.pop_back();
        if (const CCompound* mine = Chain::asCompound(**pair.Mine)) {
            const CCompound* theirs = dynamic_cast<const CCompound*>(pair.Theirs->get());
            if (theirs == nullptr) {
                return false;
            }
            ahead.push_back({&Chain::second(*mine), &Chain::second(*theirs)});
            ahead.push_back({&mine->m_First, &theirs->m_First});
        } else if (!(*pair.Mine)->equals(*pair.Theirs)) {
            return false;
        }
    }
    return true;
}

CConverterPtr CCompound::first() const { return m_First; }
CConverterPtr CCompound::second() const { return Chain::second(*this); }

Convert::Convert(double value, std::shared_ptr<CUnit> unit)
    : m_Value(value), m_Unit(std::move(unit)) {}

double Convert::to(std::shared_ptr<CUnit> unit) const {
    requireUnit(m_Unit, "Convert::to");
    return m_Unit->convertValueToUnit(m_Value, std::move(unit));
}

}  // namespace mensor

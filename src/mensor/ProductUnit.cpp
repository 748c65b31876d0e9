// ProductUnit.cpp: products of rational powers, normalised by merging factors of the same unit
// object. Exponents are computed in 64 bits and must fit an int when they are stored.
#include "mensor/ProductUnit.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <stdexcept>

#include "mensor/MultiplyConverter.h"
#include "mensor/factors.h"
#include "mensor/kept.h"
#include "mensor/require.h"
#include "mensor/text_stream.h"

namespace mensor {

namespace {

using Elements = detail::Factors;

int checkedExponent(std::int64_t n) {
    if (n > std::numeric_limits<int>::max() || n < std::numeric_limits<int>::min()) {
        detail::CTextStream message;
        message << "Exponent " << n << " is out of range";
        throw std::overflow_error(message.str());
    }
    return static_cast<int>(n);
}

// Of two products of ints; only those of the smallest int with itself can overflow.
std::int64_t sum(std::int64_t a, std::int64_t b) {
    std::int64_t result = 0;
    if (__builtin_add_overflow(a, b, &result)) {
        throw std::overflow_error("Exponent 9223372036854775808 is out of range");
    }
    return result;
}

// `unit` to the power pow/root in lowest terms.
CUnitRationalPower reduced(CUnitPtr unit, std::int64_t pow, std::int64_t root) {
    // Euclid's rule with the truncating remainder, as greatestCommonDivisor: the sign is that of the
    // last divisor that was not zero.
    std::int64_t divisor = pow < 0 ? -pow : pow;
    for (std::int64_t next = root; next != 0;) {
        const std::int64_t rest = divisor % next;
        divisor = next;
        next = rest;
    }
    if (divisor == 0) {
        throw std::invalid_argument("Exponent 0/0 of a factor");
    }
    const int reducedPow = checkedExponent(pow / divisor);
    const int reducedRoot = checkedExponent(root / divisor);
    return CUnitRationalPower(std::move(unit), reducedPow, reducedRoot);
}

const CUnitRationalPower* findUnit(const Elements& elements, const CUnitPtr& unit) {
    for (const CUnitRationalPower& element : elements) {
        if (element.unit() == unit) {
            return &element;
        }
    }
    return nullptr;
}

void requireUnits(const Elements& elements) {
    for (const CUnitRationalPower& element : elements) {
        requireUnit(element.unit(), "CProductUnit::getInstance");
    }
}

// The product of what `ofFactor` makes of each factor's unit, raised as the factor is.
template <class OfFactor>
CUnitPtr fold(const Elements& elements, OfFactor ofFactor) {
    CUnitPtr product = CProductUnit::one();
    for (const CUnitRationalPower& element : elements) {
        const CUnitPtr factor = requireGiven(ofFactor(*element.unit()), "unit of a factor");
        product = product->multiply(factor->pow(element.getPow())->root(element.getRoot()));
    }
    return product;
}

}  // namespace

namespace detail {

Factors multiplied(const Factors& left, const Factors& right) {
    Factors result;
    result.reserve(left.size() + right.size());
    for (const CUnitRationalPower& mine : left) {
        std::int64_t pow = mine.getPow();
        std::int64_t root = mine.getRoot();
        if (const CUnitRationalPower* other = findUnit(right, mine.unit())) {
            pow = sum(pow * other->getRoot(), other->getPow() * root);
            root = root * other->getRoot();
        }
        if (pow != 0) {
            result.push_back(reduced(mine.unit(), pow, root));
        }
    }
    for (const CUnitRationalPower& other : right) {
        if (findUnit(left, other.unit()) == nullptr) {
            result.push_back(other);
        }
    }
    return result;
}

Factors raised(Factors factors, int pow, int root) {
    for (CUnitRationalPower& factor : factors) {
        factor = reduced(factor.unit(), std::int64_t{factor.getPow()} * pow,
                         std::int64_t{factor.getRoot()} * root);
    }
    return factors;
}

std::atomic<bool> largeExponentsExist{false};

int hashOf(const Factors& factors) {
    unsigned sum = 0;
    for (const CUnitRationalPower& factor : factors) {
        const unsigned weight = 3U * static_cast<unsigned>(factor.getPow()) -
                                2U * static_cast<unsigned>(factor.getRoot());
        sum += static_cast<unsigned>(factor.unit()->hashCode()) * weight;
    }
    return static_cast<int>(sum);
}

}  // namespace detail

CProductUnit::CProductUnit() : CDerivedUnit("One") {}
CProductUnit::CProductUnit(const Elements& elements)
    : CDerivedUnit(string_t()), m_Elements(elements) {
    constexpr int LargestPow = 64;
    constexpr int LargestRoot = 8;
    for (const CUnitRationalPower& element : m_Elements) {
        if (element.getPow() > LargestPow || element.getPow() < -LargestPow ||
            element.getRoot() > LargestRoot) {
            detail::largeExponentsExist.store(true, std::memory_order_relaxed);
        }
    }
}
CProductUnit::~CProductUnit() = default;

CUnitPtr CProductUnit::one() {
    static const detail::CKept<CUnitPtr> One(new CProductUnit);
    return *One;
}

CUnitPtr CProductUnit::getInstance(const Elements& LeftElements, const Elements& RightElements) {
    requireUnits(LeftElements);
    requireUnits(RightElements);
    const Elements result = detail::multiplied(LeftElements, RightElements);
    if (result.empty()) {
        return one();
    }
    if (result.size() == 1 && result[0].getPow() == result[0].getRoot()) {
        return result[0].getUnit();
    }
    return CUnit::getInstance(CUnitPtr(new CProductUnit(result)));
}

CUnitPtr CProductUnit::getProductInstance(CUnitPtr left, CUnitPtr right) {
    requireUnit(left, "CProductUnit::getProductInstance");
    requireUnit(right, "CProductUnit::getProductInstance");
    return getInstance(left->elements(), right->elements());
}

CUnitPtr CProductUnit::getQuotientInstance(CUnitPtr left, CUnitPtr right) {
    requireUnit(left, "CProductUnit::getQuotientInstance");
    requireUnit(right, "CProductUnit::getQuotientInstance");
    Elements divisors = right->elements();
    for (CUnitRationalPower& divisor : divisors) {
        divisor.setPow(checkedExponent(-std::int64_t{divisor.getPow()}));
    }
    return getInstance(left->elements(), divisors);
}

CUnitPtr CProductUnit::getRootInstance(CUnitPtr unit, int n) {
    requireUnit(unit, "CProductUnit::getRootInstance");
    return getInstance(detail::raised(unit->elements(), 1, n), Elements());
}

CUnitPtr CProductUnit::getPowInstance(CUnitPtr unit, int n) {
    requireUnit(unit, "CProductUnit::getPowInstance");
    return getInstance(detail::raised(unit->elements(), n, 1), Elements());
}

int CProductUnit::size() const { return static_cast<int>(m_Elements.size()); }
CUnitRationalPower CProductUnit::get(int index) const {
    return m_Elements[static_cast<std::size_t>(index)];
}
Elements CProductUnit::elements() { return m_Elements; }

void CProductUnit::calculateHashCode() { m_HashCode = detail::hashOf(m_Elements); }

CUnitPtr CProductUnit::getCtxDimension() {
    return fold(m_Elements, [](CUnit& unit) { return unit.getCtxDimension(); });
}

CUnitPtr CProductUnit::getSystemUnit() {
    // Threads that ask for it first at once compute the same canonical unit. The shared pointer is
    // read and written atomically rather than under a mutex: this runs with either lock held.
    CUnitPtr system = std::atomic_load(&m_SystemUnitCach);
    if (!system) {
        system = fold(m_Elements, [](CUnit& unit) { return unit.getSystemUnit(); });
        // A product that is its own system unit must not own itself, or nothing would ever free it.
        const bool isThis = system.get() == this;
        std::atomic_store(&m_SystemUnitCach, isThis ? CUnitPtr(CUnitPtr(), this) : system);
    }
    return system.get() == this ? shared_from_this() : system;
}

CUnitPtr CProductUnit::baseUnits() {
    return fold(m_Elements, [](CUnit& unit) { return unit.baseUnits(); });
}

bool CProductUnit::equals(CUnitPtr that) const {
    if (that == shared_from_this()) {
        return true;
    }
    if (!that) {
        return false;
    }
    const Elements others = that->elements();
    return others.size() == m_Elements.size() && elementsContains(others);
}

bool CProductUnit::elementsContainsOtherSingle(const CUnitRationalPower& element) const {
    for (const CUnitRationalPower& mine : m_Elements) {
        if (mine == element) {
            return true;
        }
    }
    return false;
}

bool CProductUnit::elementsContains(const Elements& elements) const {
    for (const CUnitRationalPower& element : elements) {
        if (!elementsContainsOtherSingle(element)) {
            return false;
        }
    }
    return true;
}

CConverterPtr CProductUnit::getCtxToDimension() {
    double factor = 1.0;
    for (const CUnitRationalPower& element : m_Elements) {
        const CConverterPtr converter =
            requireGiven(element.unit()->getCtxToDimension(), "getCtxToDimension");
        if (!converter->isLinear()) {
            detail::CTextStream message;
            message << "Unit element " << mensor::toStdString(element.unit()->getSymbol())
                    << " is non-linear, cannot convert";
            throw std::logic_error(message.str());
        }
        factor *= std::pow(converter->derivative(0.0), static_cast<double>(element.getPow()) /
                                                           static_cast<double>(element.getRoot()));
    }
    if (std::fabs(factor - 1.0) < 1e-9) {
        return CConverter::identity();
    }
    return std::make_shared<CMultiplyConverter>(factor);
}

}  // namespace mensor

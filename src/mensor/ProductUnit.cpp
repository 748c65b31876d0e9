// ProductUnit.cpp: products of rational powers. Factors of the same unit object are merged. A
// registered product is found by its hash code before a new one is built.
#include "mensor/ProductUnit.h"

#include <cmath>
#include <memory>
#include <stdexcept>
#include <utility>

#include "mensor/Factors.h"
#include "mensor/Kept.h"
#include "mensor/MultiplyConverter.h"
#include "mensor/Tables.h"
#include "mensor/TextStream.h"
#include "mensor/UnitAlgebra.h"
#include "mensor/require.h"

namespace mensor {

namespace {

using Elements = std::vector<CUnitRationalPower>;

// Calls `ofFactor` for the unit of each factor, raises the result to the exponent of the factor,
// and returns the product of all.
template <class OfFactor>
CUnitPtr fold(const Elements& elements, OfFactor ofFactor) {
    const detail::Lock lock(detail::tables().Mutex);
    CUnitPtr product = CProductUnit::one();
    for (const CUnitRationalPower& element : elements) {
        const CUnitPtr factor = requireGiven(ofFactor(*element.unit()), "unit of a factor");
        product = detail::UnitAlgebra::multiplyUncached(
            product,
            detail::UnitAlgebra::raiseUncached(factor, element.getPow(), element.getRoot()));
    }
    return product;
}

}  // namespace

CProductUnit::CProductUnit() : CDerivedUnit("One") {}
CProductUnit::CProductUnit(Elements elements)
    : CDerivedUnit(string_t()), m_Elements(std::move(elements)) {
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

CUnitPtr CProductUnit::registered(Elements elements) {
    return CUnit::getInstance(CUnitPtr(new CProductUnit(std::move(elements))));
}

struct detail::Products {
    // The registered product of merged and reduced factors.
    static CUnitPtr canonical(const Factors& factors) {
        if (factors.size() == 0) {
            return CProductUnit::one();
        }
        const Factor& first = *factors.begin();
        if (factors.size() == 1 && first.Pow == first.Root) {
            return *first.Unit;
        }
        CUnitPtr known = find(hashOf(factors));
        return known ? known : CProductUnit::registered(elements(factors));
    }

    static CUnitPtr raised(const CUnitPtr& unit, int pow, int root) {
        GivenFactors given;
        Factors factors = factorsOf(unit, given);
        raise(factors, pow, root);
        return canonical(multiplied(factors, Factors()));
    }

private:
    static CUnitPtr find(int hash) {
        const Lock lock(tables().Mutex);
        const auto found = tables().Instances.find(hash);
        return found != tables().Instances.end() ? found->second : nullptr;
    }

    static Elements elements(const Factors& factors) {
        Elements elements;
        elements.reserve(factors.size());
        for (const Factor& factor : factors) {
            elements.emplace_back(*factor.Unit, factor.Pow, factor.Root);
        }
        return elements;
    }
};

CUnitPtr CProductUnit::getInstance(const Elements& LeftElements, const Elements& RightElements) {
    const detail::Factors left = detail::factorsOf(LeftElements);
    return detail::Products::canonical(detail::multiplied(left, detail::factorsOf(RightElements)));
}

CUnitPtr CProductUnit::getProductInstance(CUnitPtr left, CUnitPtr right) {
    requireUnit(left, "CProductUnit::getProductInstance");
    requireUnit(right, "CProductUnit::getProductInstance");
    detail::GivenFactors given;
    const detail::Factors factors = detail::factorsOf(left, given);
    return detail::Products::canonical(
        detail::multiplied(factors, detail::factorsOf(right, given)));
}

CUnitPtr CProductUnit::getQuotientInstance(CUnitPtr left, CUnitPtr right) {
    requireUnit(left, "CProductUnit::getQuotientInstance");
    requireUnit(right, "CProductUnit::getQuotientInstance");
    detail::GivenFactors given;
    detail::Factors divisors = detail::factorsOf(right, given);
    detail::invert(divisors);
    return detail::Products::canonical(
        detail::multiplied(detail::factorsOf(left, given), divisors));
}

CUnitPtr CProductUnit::getRootInstance(CUnitPtr unit, int n) {
    requireUnit(unit, "CProductUnit::getRootInstance");
    return detail::Products::raised(unit, 1, n);
}

CUnitPtr CProductUnit::getPowInstance(CUnitPtr unit, int n) {
    requireUnit(unit, "CProductUnit::getPowInstance");
    return detail::Products::raised(unit, n, 1);
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
    // Concurrent first calls compute the same registered unit. The shared pointer is read and
    // written atomically, not under a mutex, because the caller may hold either of the two.
    CUnitPtr system = std::atomic_load(&m_SystemUnitCach);
    if (!system) {
        system = fold(m_Elements, [](CUnit& unit) { return unit.getSystemUnit(); });
        // A product that is its own system unit must not own itself, or it would never be freed.
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

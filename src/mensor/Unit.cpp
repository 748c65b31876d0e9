#include "mensor/Unit.h"

#include <limits>
#include <stdexcept>
#include <string>
#include <utility>

#include "mensor/AddConverter.h"
#include "mensor/AlternateUnit.h"
#include "mensor/MultiplyConverter.h"
#include "mensor/ProductUnit.h"
#include "mensor/RegistrationBound.h"
#include "mensor/Tables.h"
#include "mensor/TextStream.h"
#include "mensor/TransformedUnit.h"
#include "mensor/UnitAlgebra.h"
#include "mensor/UnitConversion.h"
#include "mensor/UnitFormat.h"
#include "mensor/UnitParser.h"
#include "mensor/identity.h"
#include "mensor/require.h"

namespace mensor {

using detail::Lock;
using detail::tables;
using detail::UnitAlgebra;
using detail::UnitConversion;

namespace {

// Powers and roots beyond this are not cached. A cache has an entry for each number up to the
// largest, so the text "m^2000000000" would need all memory.
constexpr int LargestCachedExponent = 4096;

// A negative power is computed from the positive one, and the smallest int has no positive
// counterpart.
void requireNegatable(int n) {
    if (n == std::numeric_limits<int>::min()) {
        throw std::overflow_error("Exponent " + std::to_string(n) + " is out of range");
    }
}

// The table of instances. If it is empty, the dimensionless unit is added with the hash code that
// it has at this moment: it is never registered, so its hash code may not have been computed.
std::map<int, CUnitPtr>& seededInstances() {
    auto& instances = tables().Instances;
    if (instances.empty()) {
        const CUnitPtr one = CProductUnit::one();
        instances.emplace(one->hashCode(), one);
    }
    return instances;
}

// Removes from the tables what registering `unit` has added, unless it succeeds. Entries that were
// there before stay: a conversion of the unit before its registration may have added them.
class CRegistration {
public:
    explicit CRegistration(const CUnitPtr& unit)
        : m_Unit(unit),
          m_Symbol(tables().Symbols.end()),
          m_HadDimension(tables().Dimensions.count(unit) != 0),
          m_HadToDimension(tables().ToDimensions.count(unit) != 0) {}

    ~CRegistration() {
        if (!m_Unit) {
            return;
        }
        if (m_Symbol != tables().Symbols.end()) {
            tables().Symbols.erase(m_Symbol);
        }
        // getSymbol() of a transformed unit computes its converter.
        if (!m_HadDimension) {
            tables().Dimensions.erase(m_Unit);
        }
        if (!m_HadToDimension) {
            tables().ToDimensions.erase(m_Unit);
        }
    }

    CRegistration(const CRegistration&) = delete;
    CRegistration& operator=(const CRegistration&) = delete;

    void insertSymbol(const string_t& symbol) {
        const auto [position, isNew] = tables().Symbols.emplace(symbol, m_Unit);
        if (!isNew) {
            throwSymbolIsTaken(symbol);
        }
        m_Symbol = position;
    }

    void succeeded() { m_Unit = nullptr; }

private:
    CUnitPtr m_Unit;
    std::map<string_t, CUnitPtr>::iterator m_Symbol;
    bool m_HadDimension;
    bool m_HadToDimension;
};

}  // namespace

CUnit::CUnit(const string_t& symbol)
    : m_Symbol(symbol),
      m_HashCode(0),
      m_Id(0),
      m_CachedEpoch(0),
      m_CachedDimension(nullptr),
      m_CachedToDimension(nullptr) {}
CUnit::~CUnit() = default;

std::vector<CUnitRationalPower> CUnit::elements() {
    return {CUnitRationalPower(shared_from_this(), 1, 1)};
}

CUnitPtr CUnit::baseUnits() {
    detail::CTextStream message;
    message << "Unit with Id[ " << std::to_string(m_Id) << "] and Symbol ["
            << mensor::toStdString(m_Symbol) << "] is not a system unit";
    throw std::logic_error(message.str());
}

string_t CUnit::getSymbol() { return m_Symbol; }

void CUnit::setId(int id) { m_Id = id; }
bool CUnit::isSystemUnit() { return getSystemUnit().get() == this; }

CUnitPtr CUnit::getInstance(CUnitPtr unit) {
    requireUnit(unit, "CUnit::getInstance");
    const Lock lock(tables().Mutex);
    unit->calculateHashCode();
    auto& known = seededInstances();
    const auto found = known.find(unit->m_HashCode);
    if (found != known.end()) {
        return found->second;
    }
    if (known.size() >= tables().MostInstances) {
        throw CTooManyUnits();
    }
    CRegistration registration(unit);
    const string_t symbol = unit->getSymbol();
    const auto twin = known.find(unit->m_HashCode);
    if (twin != known.end()) {
        return twin
            ->second;  // getSymbol() of a client's kind has registered a unit with this hash code
    }
    if (!symbol.empty()) {
        registration.insertSymbol(symbol);
    }
    known.emplace(unit->m_HashCode, unit);
    unit->setId(static_cast<int>(known.size()));
    registration.succeeded();
    return unit;
}

CUnitPtr CUnit::readResolve() { return getInstance(shared_from_this()); }

CUnitPtr CUnit::searchSymbol(const string_t& symbol) {
    const Lock lock(tables().Mutex);
    const auto found = tables().Symbols.find(symbol);
    return found == tables().Symbols.end() ? nullptr : found->second;
}

CUnitPtr CUnit::searchHashCode(int hashCode) {
    const Lock lock(tables().Mutex);
    const auto& instances = seededInstances();
    const auto found = instances.find(hashCode);
    return found == instances.end() ? nullptr : found->second;
}

// From here on the client may change the table without the library noticing.
std::map<string_t, CUnitPtr>& CUnit::symbols() {
    detail::tablesHandedOut.store(true);
    return tables().Symbols;
}

std::map<int, CUnitPtr>& CUnit::instances() {
    detail::tablesHandedOut.store(true);
    return seededInstances();
}

std::map<CUnitPtr, CUnitPtr>& CUnit::dimensions() {
    detail::tablesHandedOut.store(true);
    return tables().Dimensions;
}

std::map<CUnitPtr, CConverterPtr>& CUnit::toDimensions() {
    detail::tablesHandedOut.store(true);
    return tables().ToDimensions;
}

std::recursive_mutex& CUnit::mutex() { return tables().Mutex; }

CUnitPtr CUnit::getDimension() {
    const Lock lock(tables().Mutex);
    return UnitConversion::dimensionLocked(shared_from_this());
}

bool CUnit::isCompatible(CUnitPtr that) {
    requireUnit(that, "CUnit::isCompatible");
    if (that.get() == this) {
        return true;
    }
    if (UnitConversion::cachedToDimension(*this) != nullptr &&
        UnitConversion::cachedToDimension(*that) != nullptr) {
        return UnitConversion::haveSameCachedDimension(*this, *that);
    }
    const CUnitPtr dimension = getDimension();
    return dimension == that->getDimension();
}

void CUnit::requireConverterTo(const CUnitPtr& that) {
    if (that.get() != this) {
        UnitConversion::useConverters(*this, that,
                                      [](const CConverterPtr& ofThis, const CConverterPtr& ofThat) {
                                          if (ofThat != detail::theIdentity()) {
                                              UnitConversion::chain(ofThis, ofThat);
                                          }
                                      });
    }
}

CConverterPtr CUnit::getConverterTo(CUnitPtr that) {
    requireUnit(that, "CUnit::getConverterTo");
    if (that.get() == this) {
        return detail::theIdentity();
    }
    return UnitConversion::useConverters(*this, that, UnitConversion::chain);
}

CConverterPtr CUnit::getConverterTo(const string_t& text) {
    return getConverterTo(fromString(text));
}

double CUnit::convertValueToUnit(double value, CUnitPtr that) {
    requireUnit(that, "CUnit::convertValueToUnit");
    if (that.get() == this) {
        return value;
    }
    return UnitConversion::useConverters(
        *this, that, [value](const CConverterPtr& ofThis, const CConverterPtr& ofThat) {
            // If `that` is its own dimension, the chain would end with the identity, so none is
            // built.
            return ofThat == detail::theIdentity()
                       ? ofThis->convert(value)
                       : UnitConversion::chain(ofThis, ofThat)->convert(value);
        });
}

CUnitPtr CUnit::add(double offset) {
    return CTransformedUnit::getInstance(shared_from_this(),
                                         std::make_shared<CAddConverter>(offset));
}

CUnitPtr CUnit::multiply(double factor) {
    return CTransformedUnit::getInstance(shared_from_this(),
                                         std::make_shared<CMultiplyConverter>(factor));
}

CUnitPtr CUnit::getUnitByIndexOrExpandTable(int index, std::vector<CUnitPtr>& table) {
    if (index < 0) {
        throw std::out_of_range("Id " + std::to_string(index) + " of a unit is negative");
    }
    if (index >= static_cast<int>(table.size())) {
        table.resize(static_cast<std::size_t>(index) + 1);
    }
    return table[static_cast<std::size_t>(index)];
}

// Units that were never registered have id 0, like the dimensionless unit, and share its entry in
// the caches: the first result there is the result for all of them.
CUnitPtr CUnit::multiply(CUnitPtr that) {
    requireUnit(that, "CUnit::multiply");
    return UnitAlgebra::lookUp(*this, that->m_Id, m_MultiplyLookUp, [&] {
        return CProductUnit::getProductInstance(shared_from_this(), that);
    });
}

CUnitPtr CUnit::divide(CUnitPtr that) {
    requireUnit(that, "CUnit::divide");
    return UnitAlgebra::lookUp(*this, that->m_Id, m_DivideLookUp, [&] {
        return CProductUnit::getQuotientInstance(shared_from_this(), that);
    });
}

CUnitPtr CUnit::pow(int n) {
    if (n == 1) {
        return shared_from_this();
    }
    if (n == 0) {
        return CProductUnit::one();
    }
    if (n < 0) {
        requireNegatable(n);
        return CProductUnit::one()->divide(pow(-n));
    }
    const auto make = [&] { return CProductUnit::getPowInstance(shared_from_this(), n); };
    return n > LargestCachedExponent ? UnitAlgebra::makeLocked(*this, make)
                                     : UnitAlgebra::lookUp(*this, n - 2, m_PowLookUp, make);
}

CUnitPtr CUnit::root(int n) {
    if (n == 1) {
        return shared_from_this();
    }
    if (n == 0) {
        throw std::invalid_argument("Root's order of zero");
    }
    if (n < 0) {
        requireNegatable(n);
        return CProductUnit::one()->divide(root(-n));
    }
    const auto make = [&] { return CProductUnit::getRootInstance(shared_from_this(), n); };
    return n > LargestCachedExponent ? UnitAlgebra::makeLocked(*this, make)
                                     : UnitAlgebra::lookUp(*this, n - 2, m_RootLookUp, make);
}

CUnitPtr CUnit::alternate(const string_t& symbol) {
    return CAlternateUnit::getInstance(symbol, shared_from_this());
}

string_t CUnit::toString() { return appendTo(string_t()); }
std::string CUnit::toStdString() { return mensor::toStdString(toString()); }

string_t CUnit::appendTo(string_t text) {
    return CStandardUnitFormat::write(shared_from_this(), std::move(text));
}

CUnitPtr CUnit::fromString(const string_t& text) { return detail::CUnitParser::parse(text); }

CUnitPtr operator+(const CUnitPtr& unit, double offset) {
    requireUnit(unit, "operator+");
    return unit->add(offset);
}

CUnitPtr operator*(const CUnitPtr& unit, double factor) {
    requireUnit(unit, "operator*");
    return unit->multiply(factor);
}

CUnitPtr operator*(const CUnitPtr& left, const CUnitPtr& right) {
    requireUnit(left, "operator*");
    return left->multiply(right);
}

CUnitPtr operator/(const CUnitPtr& left, const CUnitPtr& right) {
    requireUnit(left, "operator/");
    return left->divide(right);
}

CUnitPtr operator^(const CUnitPtr& unit, int n) {
    requireUnit(unit, "operator^");
    return unit->pow(n);
}

}  // namespace mensor

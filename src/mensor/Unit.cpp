#include "mensor/Unit.h"

#include <limits>
#include <stdexcept>
#include <string>
#include <utility>

#include "mensor/AddConverter.h"
#include "mensor/AlternateUnit.h"
#include "mensor/MultiplyConverter.h"
#include "mensor/ProductUnit.h"
#include "mensor/TransformedUnit.h"
#include "mensor/UnitFormat.h"
#include "mensor/parsing.h"
#include "mensor/require.h"
#include "mensor/tables.h"
#include "mensor/text_stream.h"

namespace mensor {

using detail::Lock;
using detail::tables;

namespace {

// Powers and roots beyond this are computed anew each time: a slot for each number up to the
// exponent of a text such as "m^2000000000" would exhaust the memory.
constexpr int LargestCachedExponent = 4096;

// The reciprocal of the smallest int's power has no positive counterpart to be computed from.
void requireNegatable(int n) {
    if (n == std::numeric_limits<int>::min()) {
        throw std::overflow_error("Exponent " + std::to_string(n) + " is out of range");
    }
}

// The table of instances, which is never seen empty. The dimensionless unit goes in under whatever
// its hash code is at this moment: it is not registered, and its hash need not have been computed.
std::map<int, CUnitPtr>& seededInstances() {
    auto& instances = tables().Instances;
    if (instances.empty()) {
        const CUnitPtr one = CProductUnit::one();
        instances.emplace(one->hashCode(), one);
    }
    return instances;
}

bool isRegistered(const CUnitPtr& unit) {
    const auto found = tables().Instances.find(unit->hashCode());
    return found != tables().Instances.end() && found->second == unit;
}

// What registering `unit` has put into the tables so far; taken out again unless it succeeds. What was
// there before stays: conversions of the unit that was not registered yet may have put it there.
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
        // Asking for a symbol may have asked for a converter.
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
      m_RememberedEpoch(0),
      m_RememberedDimension(nullptr),
      m_RememberedToDimension(nullptr) {}
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
    CRegistration registration(unit);
    const string_t symbol = unit->getSymbol();
    const auto twin = known.find(unit->m_HashCode);
    if (twin != known.end()) {
        return twin->second;  // a client's kind has registered it while it was asked
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

// From here on the client can change the table unseen.
std::map<string_t, CUnitPtr>& CUnit::symbols() {
    detail::handedOut.store(true);
    return tables().Symbols;
}

std::map<int, CUnitPtr>& CUnit::instances() {
    detail::handedOut.store(true);
    return seededInstances();
}

std::map<CUnitPtr, CUnitPtr>& CUnit::dimensions() {
    detail::handedOut.store(true);
    return tables().Dimensions;
}

std::map<CUnitPtr, CConverterPtr>& CUnit::toDimensions() {
    detail::handedOut.store(true);
    return tables().ToDimensions;
}

std::recursive_mutex& CUnit::mutex() { return tables().Mutex; }

// The converter to the dimension as toDimensions() holds it, or none if it must be looked up. When it
// is there, m_RememberedDimension is too.
const CConverterPtr* CUnit::rememberedToDimension() const {
    if (m_RememberedEpoch.load(std::memory_order_acquire) !=
            detail::contextEpoch.load(std::memory_order_acquire) ||
        detail::handedOut.load(std::memory_order_acquire)) {
        return nullptr;
    }
    return m_RememberedToDimension.load(std::memory_order_relaxed);
}

// `toDimension` is the entry of `unit` in toDimensions(), which stays where it is if the unit is
// registered. Of other units nothing is remembered. The caller holds mutex().
void CUnit::rememberDimension(const CUnitPtr& unit, const CUnitPtr& dimension,
                              const CConverterPtr& toDimension) {
    if (detail::handedOut.load(std::memory_order_relaxed) || !isRegistered(unit)) {
        return;
    }
    unit->m_RememberedDimension.store(dimension.get(), std::memory_order_relaxed);
    unit->m_RememberedToDimension.store(&toDimension, std::memory_order_relaxed);
    unit->m_RememberedEpoch.store(detail::contextEpoch.load(std::memory_order_relaxed),
                                  std::memory_order_release);
}

CUnitPtr CUnit::getDimension() {
    const Lock lock(tables().Mutex);
    return dimensionLocked(shared_from_this());
}

// The entry of `unit` in dimensions(), made if there is none. The caller holds mutex().
const CUnitPtr& CUnit::dimensionLocked(const CUnitPtr& unit) {
    auto& dimensions = tables().Dimensions;
    const auto found = dimensions.find(unit);
    if (found != dimensions.end()) {
        return found->second;
    }
    const CUnitPtr dimension = requireGiven(unit->getCtxDimension(), "getCtxDimension");
    return dimensions.emplace(unit, dimension).first->second;
}

// The converter of `unit` to its dimension, as toDimensions() holds it. The entry is made if there is
// none and stays empty if the unit cannot say. The caller holds mutex().
CConverterPtr CUnit::toDimensionLocked(const CUnitPtr& unit, const CUnitPtr& dimension) {
    auto& toDimensions = tables().ToDimensions;
    if (!toDimensions[unit]) {
        CConverterPtr toDimension = requireGiven(unit->getCtxToDimension(), "getCtxToDimension");
        toDimensions[unit] = std::move(toDimension);
    }
    const CConverterPtr& toDimension = toDimensions[unit];
    rememberDimension(unit, dimension, toDimension);
    return toDimension;
}

bool CUnit::isCompatible(CUnitPtr that) {
    requireUnit(that, "CUnit::isCompatible");
    if (that.get() == this) {
        return true;
    }
    if (rememberedToDimension() != nullptr && that->rememberedToDimension() != nullptr) {
        return m_RememberedDimension.load(std::memory_order_relaxed) ==
               that->m_RememberedDimension.load(std::memory_order_relaxed);
    }
    const CUnitPtr dimension = getDimension();
    return dimension == that->getDimension();
}

// fromThat->inverse()->concatenate(fromThis), where most often the first is the identity.
CConverterPtr CUnit::chain(const CConverterPtr& fromThis, const CConverterPtr& fromThat) {
    const CConverterPtr& identity = detail::theIdentity();
    if (fromThat != identity) {
        return CCompound::throughInverse(fromThis, fromThat);
    }
    return fromThis == identity ? identity : std::make_shared<CCompound>(fromThis, identity);
}

// What `use` makes of the converters of this unit and of `that` to their dimension.
template <class Use>
inline auto CUnit::useRouteTo(const CUnitPtr& that, Use use) {
    const CConverterPtr* const fromThis = rememberedToDimension();
    const CConverterPtr* const fromThat = that->rememberedToDimension();
    if (fromThis != nullptr && fromThat != nullptr &&
        m_RememberedDimension.load(std::memory_order_relaxed) ==
            that->m_RememberedDimension.load(std::memory_order_relaxed)) {
        return use(*fromThis, *fromThat);
    }
    const Route route = lookUpRouteTo(that);
    return use(route.FromThis, route.FromThat);
}

// The route by way of the tables, all under one lock. It is a copy: without the lock, the entry of a
// unit that is not registered may be gone at any time.
CUnit::Route CUnit::lookUpRouteTo(const CUnitPtr& that) {
    const Lock lock(tables().Mutex);
    const CUnitPtr self = shared_from_this();
    const CUnitPtr dimension = dimensionLocked(self);
    if (dimension != dimensionLocked(that)) {
        detail::CTextStream message;
        message << mensor::toStdString(getSymbol()) << " is not compatible with "
                << mensor::toStdString(that->getSymbol()) << " in current context";
        throw std::invalid_argument(message.str());
    }
    CConverterPtr fromThis = toDimensionLocked(self, dimension);
    return {std::move(fromThis), toDimensionLocked(that, dimension)};
}

void CUnit::requireConverterTo(const CUnitPtr& that) {
    if (that.get() != this) {
        useRouteTo(that, [](const CConverterPtr& fromThis, const CConverterPtr& fromThat) {
            if (fromThat != detail::theIdentity()) {
                chain(fromThis, fromThat);
            }
        });
    }
}

CConverterPtr CUnit::getConverterTo(CUnitPtr that) {
    requireUnit(that, "CUnit::getConverterTo");
    if (that.get() == this) {
        return detail::theIdentity();
    }
    return useRouteTo(that, chain);
}

CConverterPtr CUnit::getConverterTo(const string_t& text) {
    return getConverterTo(fromString(text));
}

double CUnit::convertValueToUnit(double value, CUnitPtr that) {
    requireUnit(that, "CUnit::convertValueToUnit");
    if (that.get() == this) {
        return value;
    }
    return useRouteTo(that, [value](const CConverterPtr& fromThis, const CConverterPtr& fromThat) {
        // To a unit that is its own dimension the chain ends with the identity: no need to build it.
        return fromThat == detail::theIdentity() ? fromThis->convert(value)
                                                 : chain(fromThis, fromThat)->convert(value);
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

// The caller holds the m_LookupVectorMutex of the unit that the table belongs to.
CUnitPtr CUnit::getUnitByIndexOrExpandTable(int index, std::vector<CUnitPtr>& table) {
    if (index < 0) {
        throw std::out_of_range("Id " + std::to_string(index) + " of a unit is negative");
    }
    if (index >= static_cast<int>(table.size())) {
        table.resize(static_cast<std::size_t>(index) + 1);
    }
    return table[static_cast<std::size_t>(index)];
}

// The locks of the algebra. A hit takes the unit's own mutex alone and asks nobody. A miss lets go of
// it, takes the mutex of the process and then the unit's again, so that wherever two locks are held the
// process's came first, and no thread can wait for another in a circle. tests/model/locks.pml models
// the two functions below, and scripts/check compares what it quotes of them.

// The canonical result in the slot, which `make` fills if it is empty.
template <class Make>
inline CUnitPtr CUnit::lookUp(int index, std::vector<CUnitPtr>& table, Make make) {
    {
        const Lock lock(m_LookupVectorMutex);
        const auto slot = static_cast<std::size_t>(index);
        if (slot < table.size() && table[slot]) {
            return table[slot];
        }
    }
    return fill(index, table, make);
}

// Apart from lookUp(), so that what is there already costs no more than the way to it.
template <class Make>
[[gnu::noinline]] CUnitPtr CUnit::fill(int index, std::vector<CUnitPtr>& table, const Make& make) {
    const Lock processLock(tables().Mutex);
    const Lock lock(m_LookupVectorMutex);
    CUnitPtr result = getUnitByIndexOrExpandTable(index, table);
    if (!result) {
        result = make();
        table[static_cast<std::size_t>(index)] = result;
    }
    return result;
}

// Results without a slot are made as those with one, with both locks held.
template <class Make>
CUnitPtr CUnit::makeLocked(const Make& make) {
    const Lock processLock(tables().Mutex);
    const Lock lock(m_LookupVectorMutex);
    return make();
}

// Units that were never registered have id 0, as the dimensionless unit has, and share its slot: the
// first result there is the result for all of them.
CUnitPtr CUnit::multiply(CUnitPtr that) {
    requireUnit(that, "CUnit::multiply");
    return lookUp(that->m_Id, m_MultiplyLookUp,
                  [&] { return CProductUnit::getProductInstance(shared_from_this(), that); });
}

CUnitPtr CUnit::divide(CUnitPtr that) {
    requireUnit(that, "CUnit::divide");
    return lookUp(that->m_Id, m_DivideLookUp,
                  [&] { return CProductUnit::getQuotientInstance(shared_from_this(), that); });
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
    return n > LargestCachedExponent ? makeLocked(make) : lookUp(n - 2, m_PowLookUp, make);
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
    return n > LargestCachedExponent ? makeLocked(make) : lookUp(n - 2, m_RootLookUp, make);
}

CUnitPtr CUnit::alternate(const string_t& symbol) {
    return CAlternateUnit::getInstance(symbol, shared_from_this());
}

string_t CUnit::toString() { return appendTo(string_t()); }
std::string CUnit::toStdString() { return mensor::toStdString(toString()); }

string_t CUnit::appendTo(string_t text) {
    return CStandardUnitFormat::write(shared_from_this(), std::move(text));
}

CUnitPtr CUnit::fromString(const string_t& text) { return detail::parse(text); }

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

#include "mensor/Unit.h"

#include <limits>
#include <stdexcept>
#include <utility>

#include "mensor/AddConverter.h"
#include "mensor/AlternateUnit.h"
#include "mensor/MultiplyConverter.h"
#include "mensor/ProductUnit.h"
#include "mensor/TransformedUnit.h"
#include "mensor/UnitFormat.h"
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
        detail::CTextStream message;
        message << "Exponent " << n << " is out of range";
        throw std::overflow_error(message.str());
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

// What registering `unit` has put into the tables so far; taken out again unless it succeeds.
class CRegistration {
public:
    explicit CRegistration(const CUnitPtr& unit) : m_Unit(unit), m_Symbol(tables().Symbols.end()) {}

    ~CRegistration() {
        if (!m_Unit) {
            return;
        }
        if (m_Symbol != tables().Symbols.end()) {
            tables().Symbols.erase(m_Symbol);
        }
        tables().Dimensions.erase(m_Unit);  // asking for a symbol may have asked for a converter
        tables().ToDimensions.erase(m_Unit);
        detail::advance(detail::contextEpoch);
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
    message << "Unit with Id[ " << m_Id << "] and Symbol [" << m_Symbol << "] is not a system unit";
    throw std::logic_error(message.str());
}

string_t CUnit::getSymbol() { return m_Symbol; }

void CUnit::setId(int id) { m_Id = id; }
int CUnit::hashCode() const { return m_HashCode; }
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

// `toDimension` is the entry in toDimensions(), which stays where it is. The caller holds mutex().
void CUnit::rememberDimension(const CUnit* dimension, const CConverterPtr& toDimension) {
    m_RememberedDimension.store(dimension, std::memory_order_relaxed);
    m_RememberedToDimension.store(&toDimension, std::memory_order_relaxed);
    m_RememberedEpoch.store(detail::contextEpoch.load(std::memory_order_relaxed),
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
    const CUnitPtr dimension = unit->getCtxDimension();
    return dimensions.emplace(unit, dimension).first->second;
}

// The entry of `unit` in toDimensions(), which stays empty if the unit cannot say. The caller holds
// mutex().
const CConverterPtr& CUnit::toDimensionLocked(const CUnitPtr& unit) {
    CConverterPtr& toDimension = tables().ToDimensions[unit];
    if (!toDimension) {
        toDimension = unit->getCtxToDimension();
    }
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

// toThat->inverse()->concatenate(fromThis), where most often the first is the identity.
CConverterPtr CUnit::chain(const Route& route) {
    const CConverterPtr& identity = detail::theIdentity();
    if (*route.FromThat != identity) {
        return CCompound::throughInverse(*route.FromThis, *route.FromThat);
    }
    return *route.FromThis == identity ? identity
                                       : std::make_shared<CCompound>(*route.FromThis, identity);
}

inline CUnit::Route CUnit::routeTo(const CUnitPtr& that) {
    const CConverterPtr* const fromThis = rememberedToDimension();
    const CConverterPtr* const fromThat = that->rememberedToDimension();
    if (fromThis != nullptr && fromThat != nullptr &&
        m_RememberedDimension.load(std::memory_order_relaxed) ==
            that->m_RememberedDimension.load(std::memory_order_relaxed)) {
        return {fromThis, fromThat};
    }
    return lookUpRouteTo(that);
}

// routeTo() by way of the tables, all under one lock.
CUnit::Route CUnit::lookUpRouteTo(const CUnitPtr& that) {
    const Lock lock(tables().Mutex);
    const CUnitPtr self = shared_from_this();
    Route route{rememberedToDimension(), that->rememberedToDimension()};
    const CUnit* const thisDimension = route.FromThis != nullptr
                                           ? m_RememberedDimension.load(std::memory_order_relaxed)
                                           : dimensionLocked(self).get();
    const CUnit* const thatDimension =
        route.FromThat != nullptr ? that->m_RememberedDimension.load(std::memory_order_relaxed)
                                  : dimensionLocked(that).get();
    if (thisDimension != thatDimension) {
        detail::CTextStream message;
        message << getSymbol() << " is not compatible with " << that->getSymbol()
                << " in current context";
        throw std::invalid_argument(message.str());
    }
    if (route.FromThis == nullptr) {
        route.FromThis = &toDimensionLocked(self);
        rememberDimension(thisDimension, *route.FromThis);
    }
    if (route.FromThat == nullptr) {
        route.FromThat = &toDimensionLocked(that);
        that->rememberDimension(thatDimension, *route.FromThat);
    }
    return route;
}

void CUnit::requireConverterTo(const CUnitPtr& that) {
    if (that.get() != this) {
        const Route route = routeTo(that);
        if (*route.FromThat != detail::theIdentity()) {
            chain(route);
        }
    }
}

CConverterPtr CUnit::getConverterTo(CUnitPtr that) {
    requireUnit(that, "CUnit::getConverterTo");
    if (that.get() == this) {
        return detail::theIdentity();
    }
    return chain(routeTo(that));
}

CConverterPtr CUnit::getConverterTo(const string_t& text) {
    return getConverterTo(fromString(text));
}

double CUnit::convertValueToUnit(double value, CUnitPtr that) {
    requireUnit(that, "CUnit::convertValueToUnit");
    if (that.get() == this) {
        return value;
    }
    const Route route = routeTo(that);
    // To a unit that is its own dimension the chain ends with the identity: no need to build it.
    return *route.FromThat == detail::theIdentity() ? (*route.FromThis)->convert(value)
                                                    : chain(route)->convert(value);
}

CUnitPtr CUnit::add(double offset) {
    return CTransformedUnit::getInstance(shared_from_this(),
                                         std::make_shared<CAddConverter>(offset));
}

CUnitPtr CUnit::multiply(double factor) {
    return CTransformedUnit::getInstance(shared_from_this(),
                                         std::make_shared<CMultiplyConverter>(factor));
}

// Each caller holds the unit's m_LookupVectorMutex.
CUnitPtr CUnit::getUnitByIndexOrExpandTable(int index, std::vector<CUnitPtr>& table) {
    if (index < 0) {
        throw std::out_of_range("Id " + std::to_string(index) + " of a unit is negative");
    }
    if (index >= static_cast<int>(table.size())) {
        table.resize(static_cast<std::size_t>(index) + 1);
    }
    return table[static_cast<std::size_t>(index)];
}

// The canonical result in the slot, which `make` fills if it is empty.
template <class Make>
inline CUnitPtr CUnit::lookUp(int index, std::vector<CUnitPtr>& table, Make make) {
    const auto slot = static_cast<std::size_t>(index);
    if (slot < table.size() && table[slot]) {
        return table[slot];
    }
    return fill(index, table, make);
}

// Apart from lookUp(), so that what is there already costs no more than the way to it.
template <class Make>
[[gnu::noinline]] CUnitPtr CUnit::fill(int index, std::vector<CUnitPtr>& table, const Make& make) {
    getUnitByIndexOrExpandTable(index, table);
    CUnitPtr result = make();
    table[static_cast<std::size_t>(index)] = result;
    return result;
}

// Units that were never registered have id 0, as the dimensionless unit has, and share its slot: the
// first result there is the result for all of them.
CUnitPtr CUnit::multiply(CUnitPtr that) {
    requireUnit(that, "CUnit::multiply");
    const Lock lock(m_LookupVectorMutex);
    return lookUp(that->m_Id, m_MultiplyLookUp,
                  [&] { return CProductUnit::getProductInstance(shared_from_this(), that); });
}

CUnitPtr CUnit::divide(CUnitPtr that) {
    requireUnit(that, "CUnit::divide");
    const Lock lock(m_LookupVectorMutex);
    return lookUp(that->m_Id, m_DivideLookUp,
                  [&] { return CProductUnit::getQuotientInstance(shared_from_this(), that); });
}

CUnitPtr CUnit::pow(int n) {
    if (n == 1) {
        return shared_from_this();
    }
    const Lock lock(m_LookupVectorMutex);
    if (n > LargestCachedExponent) {
        return CProductUnit::getPowInstance(shared_from_this(), n);
    }
    if (n > 1) {
        return lookUp(n - 2, m_PowLookUp,
                      [&] { return CProductUnit::getPowInstance(shared_from_this(), n); });
    }
    if (n == 0) {
        return CProductUnit::one();
    }
    requireNegatable(n);
    return CProductUnit::one()->divide(pow(-n));
}

CUnitPtr CUnit::root(int n) {
    if (n == 1) {
        return shared_from_this();
    }
    const Lock lock(m_LookupVectorMutex);
    if (n > LargestCachedExponent) {
        return CProductUnit::getRootInstance(shared_from_this(), n);
    }
    if (n > 1) {
        return lookUp(n - 2, m_RootLookUp,
                      [&] { return CProductUnit::getRootInstance(shared_from_this(), n); });
    }
    if (n == 0) {
        throw std::invalid_argument("Root's order of zero");
    }
    requireNegatable(n);
    return CProductUnit::one()->divide(root(-n));
}

CUnitPtr CUnit::alternate(const string_t& symbol) {
    return CAlternateUnit::getInstance(symbol, shared_from_this());
}

string_t CUnit::toString() { return appendTo(string_t()); }
std::string CUnit::toStdString() { return mensor::toStdString(toString()); }

string_t CUnit::appendTo(string_t text) {
    return CStandardUnitFormat::write(shared_from_this(), std::move(text));
}

CUnitPtr CUnit::fromString(const string_t& text) { return CUnitFormat::parseUnit(text); }

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

// ClientUnit.h: a kind of unit as a client may write one.
//
//     const auto own = freshClientUnit();
//     own->CtxToDimension = [] { return std::make_shared<CMultiplyConverter>(2); };
//     own->getConverterTo(SI::Meter());
//     EXPECT_THAT(own->Asked, Contains("getCtxToDimension"));
//
//     EXPECT_EQ(Inside::powLookUp(SI::Meter()).size(), 4U);
#ifndef MENSOR_TESTS_CLIENTUNIT_H
#define MENSOR_TESTS_CLIENTUNIT_H

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "mensor/Converter.h"
#include "mensor/Unit.h"
#include "mensor/mensor_global.h"
#include "support/Inside.h"
#include "support/Matchers.h"

namespace mensor {

/// A system unit with a dimension of its own, unless a hook returns something else. `canonical()`
/// registers it. A hook must not own the unit.
class CClientUnit : public CUnit {
public:
    CClientUnit(const string_t& symbol, int hash) : CUnit(symbol), Hash(hash) {}

    static std::shared_ptr<CClientUnit> make(const string_t& symbol, int hash) {
        return std::make_shared<CClientUnit>(symbol, hash);
    }

    /// The registered unit with the hash code of this one; registers this one if there is none.
    CUnitPtr canonical() { return getInstance(shared_from_this()); }

    int Hash;  ///< the result of calculateHashCode()
    std::function<CUnitPtr()> CtxDimension, SystemUnit, BaseUnits;
    std::function<CConverterPtr()> CtxToDimension;
    std::function<std::vector<CUnitRationalPower>()> Elements;
    std::function<string_t()> Symbol;
    std::vector<std::string> Asked;  ///< the virtual functions that were called, in order

    void calculateHashCode() override {
        Asked.push_back("calculateHashCode");
        m_HashCode = Hash;
    }
    CUnitPtr getCtxDimension() override {
        Asked.push_back("getCtxDimension");
        return CtxDimension ? CtxDimension() : shared_from_this();
    }
    CUnitPtr getSystemUnit() override {
        Asked.push_back("getSystemUnit");
        return SystemUnit ? SystemUnit() : shared_from_this();
    }
    bool equals(CUnitPtr that) const override { return that.get() == this; }
    std::vector<CUnitRationalPower> elements() override {
        Asked.push_back("elements");
        return Elements ? Elements() : CUnit::elements();
    }
    CConverterPtr getCtxToDimension() override {
        Asked.push_back("getCtxToDimension");
        return CtxToDimension ? CtxToDimension() : CConverter::identity();
    }
    CUnitPtr baseUnits() override {
        Asked.push_back("baseUnits");
        return BaseUnits ? BaseUnits() : shared_from_this();
    }
    string_t getSymbol() override {
        Asked.push_back("getSymbol");
        return Symbol ? Symbol() : CUnit::getSymbol();
    }
};

/// A registered client unit with a new symbol. `Asked` is empty.
inline std::shared_ptr<CClientUnit> freshClientUnit() {
    const string_t symbol = freshSymbol();
    auto unit = CClientUnit::make(symbol, hashFromString(symbol));
    unit->canonical();
    unit->Asked.clear();
    return unit;
}

/// Returns whether another thread could lock `mutex` now.
inline bool isFree(std::recursive_mutex& mutex) {
    bool isFree = false;
    std::thread([&] {
        if (mutex.try_lock()) {
            isFree = true;
            mutex.unlock();
        }
    }).join();
    return isFree;
}

}  // namespace mensor

#endif  // MENSOR_TESTS_CLIENTUNIT_H

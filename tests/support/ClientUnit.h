// ClientUnit.h: a kind of unit as a client may write one, and a look inside all units.
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

/// A system unit of its own dimension, unless a hook says otherwise. It counts as registered only
/// after `canonical()`. Hooks must not own the unit.
class CClientUnit : public CUnit {
public:
    CClientUnit(const string_t& symbol, int hash) : CUnit(symbol), Hash(hash) {}

    static std::shared_ptr<CClientUnit> make(const string_t& symbol, int hash) {
        return std::make_shared<CClientUnit>(symbol, hash);
    }

    /// The canonical unit for this one, registered now if its hash is new.
    CUnitPtr canonical() { return getInstance(shared_from_this()); }

    int Hash;  ///< what calculateHashCode() gives
    std::function<CUnitPtr()> CtxDimension, SystemUnit, BaseUnits;
    std::function<CConverterPtr()> CtxToDimension;
    std::function<std::vector<CUnitRationalPower>()> Elements;
    std::function<string_t()> Symbol;
    std::vector<std::string> Asked;  ///< the virtual members called, in order

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

/// A registered one, with a symbol and a hash of its own, that has not been asked anything.
inline std::shared_ptr<CClientUnit> freshClientUnit() {
    const string_t symbol = freshSymbol();
    auto unit = CClientUnit::make(symbol, hashFromString(symbol));
    unit->canonical();
    unit->Asked.clear();
    return unit;
}

/// Whether another thread could lock `mutex` now.
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

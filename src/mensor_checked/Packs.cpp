#include "mensor_checked/Packs.h"

#include <new>
#include <stdexcept>
#include <string>

#include "mensor_checked/Checks.h"
#include "mensor_checked/Define.h"
#include "mensor_checked/Reading.h"

namespace mensor {
namespace checked {

namespace {

struct CPackRow {
    ePack Pack;
    const char* Name;
    const char* Description;
};

constexpr CPackRow Rows[] = {
    {ePack::SI, "si",
     "spellings of the SI that the library lacks: hPa, mK, klm, mL, Greek letters"},
    {ePack::CUSTOMARY, "customary", "US customary, imperial and older technical units"},
    {ePack::US, "us", "customary; gal, qt, pt, fl_oz and ton as in the United States"},
    {ePack::IMPERIAL, "imperial", "customary; gal, qt, pt, fl_oz and ton as in the United Kingdom"},
    {ePack::SCIENCE, "science", "energy, physics, astronomy, chemistry"},
    {ePack::OFFSETS, "offsets", "the degree Fahrenheit and gauge pressures"},
    {ePack::COUNTING, "counting", "parts, revolutions, counts, binary multiples of the byte"},
};

const CPackRow& rowOf(ePack pack) {
    for (const CPackRow& row : Rows) {
        if (row.Pack == pack) {
            return row;
        }
    }
    throw std::invalid_argument("there is no pack of number " +
                                std::to_string(static_cast<int>(pack)));
}

[[noreturn]] void refuse(const CPackUnit& row, const std::exception& reason,
                         const CUnitPtr& inTheWay) {
    throw CIdentityError("the pack " + quoted(nameOf(row.Pack)) + " is refused for its unit " +
                             quoted(row.Symbol) + ": " + reason.what(),
                         inTheWay);
}

void define(CNaming& naming, const CPackUnit& row) {
    try {
        naming.define({row.Symbol, row.Factor, readUnit(row.Unit), row.Offset, row.IsAlternate});
    } catch (const CIdentityError& e) {
        refuse(row, e, e.inTheWay());
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& e) {
        refuse(row, e, nullptr);
    }
}

}  // namespace

// The tables below are never destroyed: built on first use, they would be destroyed before the statics of
// clients, which may still register packs.

const std::vector<CPackUnit>& packUnits() {
    static const std::vector<CPackUnit>& Units = *new std::vector<CPackUnit>{
#define PACK_UNIT(pack, symbol, factor, unit, offset, name, source) \
    {ePack::pack, symbol, factor, #factor, unit, offset, #offset, false, name, source},
#define PACK_ALTERNATE(pack, symbol, unit, name, source) \
    {ePack::pack, symbol, 1.0, "1.0", unit, 0.0, "0", true, name, source},
#define PACK_REFUSED(pack, symbol, factor, unit, offset, inTheWay, why)
#include "mensor_checked/packs.def"
    };
    return Units;
}

const std::vector<CRefusedUnit>& refusedUnits() {
    static const std::vector<CRefusedUnit>& Units = *new std::vector<CRefusedUnit>{
#define PACK_UNIT(pack, symbol, factor, unit, offset, name, source)
#define PACK_ALTERNATE(pack, symbol, unit, name, source)
#define PACK_REFUSED(pack, symbol, factor, unit, offset, inTheWay, why) \
    {ePack::pack, symbol, factor, unit, offset, inTheWay, why},
#include "mensor_checked/packs.def"
    };
    return Units;
}

const std::vector<ePack>& allPacks() {
    static const std::vector<ePack>& Packs = *new std::vector<ePack>([] {
        std::vector<ePack> packs;
        for (const CPackRow& row : Rows) {
            packs.push_back(row.Pack);
        }
        return packs;
    }());
    return Packs;
}

const char* nameOf(ePack pack) { return rowOf(pack).Name; }

const char* descriptionOf(ePack pack) { return rowOf(pack).Description; }

std::optional<ePack> packNamed(std::string_view name) {
    for (const CPackRow& row : Rows) {
        if (row.Name == name) {
            return row.Pack;
        }
    }
    return std::nullopt;
}

void registerPack(ePack pack) {
    rowOf(pack);
    const Lock lock;
    if (pack == ePack::US || pack == ePack::IMPERIAL) {
        registerPack(ePack::CUSTOMARY);
    }
    CNaming naming;
    for (const CPackUnit& row : packUnits()) {
        if (row.Pack == pack) {
            define(naming, row);
        }
    }
    naming.keep();
}

}  // namespace checked
}  // namespace mensor

#include "mensor_checked/Packs.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "mensor_checked/Lock.h"
#include "mensor_checked/NewUnit.h"
#include "mensor_checked/Reading.h"
#include "mensor_checked/Verify.h"
#include "mensor_checked/everyday_names.h"
#include "mensor_checked/making.h"
#include "mensor_checked/rows.h"
#include "mensor_checked/words.h"
#include "mensor_exact/Conversion.h"
#include "mensor_exact/Definitions.h"

namespace mensor::checked {

namespace {

struct CPackRow {
    ePack Pack;
    exact::ePack Definitions;
};

constexpr CPackRow Rows[] = {
    {ePack::SI, exact::ePack::SI},
    {ePack::CUSTOMARY, exact::ePack::CUSTOMARY},
    {ePack::US, exact::ePack::US},
    {ePack::IMPERIAL, exact::ePack::IMPERIAL},
    {ePack::SCIENCE, exact::ePack::SCIENCE},
    {ePack::OFFSETS, exact::ePack::OFFSETS},
    {ePack::COUNTING, exact::ePack::COUNTING},
    {ePack::EVERYDAY, exact::ePack::EVERYDAY},
};

const CPackRow& packRow(ePack pack) {
    for (const CPackRow& row : Rows) {
        if (row.Pack == pack) {
            return row;
        }
    }
    throw std::invalid_argument("no pack has the number " + std::to_string(static_cast<int>(pack)));
}

// The units that are built on another unit than the one that their definition names.
//
// The identity of a unit in the registry includes the unit that it is built on. A factor to a system unit
// is rounded only once. A gauge pressure is built on kg/(m·s²) and not on the pascal: the identity counts
// the system unit and the slope but not the offset, so on the pascal the bar_g would be the bar. The
// centipoise is the product mPa·s: 0.001 Pa·s has the same identity.
struct CBuiltOn {
    std::string_view Unit;
    std::string_view Symbols[11];  // unused places are empty
};

constexpr CBuiltOn BuiltOn[] = {
    {"m", {"in", "mi", "Å", "pc"}},
    {"m²", {"ac"}},
    {"m³", {"gal_US", "qt_US", "pt_US", "fl_oz_US", "gal_UK", "qt_UK", "pt_UK", "fl_oz_UK", "bbl"}},
    {"kg", {"oz", "gr", "st", "ton_US", "ton_UK", "u"}},
    {"N", {"lbf"}},
    {"Pa", {"Torr"}},
    {"W", {"hp"}},
    {"J", {"kcal", "meV", "keV", "MeV", "GeV", "TeV", "Wh", "kWh", "MWh", "GWh", "TWh"}},
    {"C", {"Ah", "mAh"}},
    {"m/s", {"kn", "mph"}},
    {"rad/s", {"rpm"}},
    {"1/s", {"cps", "Bd"}},
    {"mPa·s", {"cP"}},
    {"kg/(m·s²)", {"Pa_g", "kPa_g", "mbar_g", "bar_g", "psi_g"}},
};

// Units with a symbol of their own, like the hertz. The other units are multiples of another unit.
constexpr std::string_view Alternates[] = {"cps", "Bd"};

template <std::size_t N>
bool isIn(const std::string_view (&symbols)[N], std::string_view symbol) {
    return std::find(std::begin(symbols), std::end(symbols), symbol) != std::end(symbols);
}

// Returns the unit that the registry builds the unit on.
std::string_view baseOf(const exact::CDefinition& definition) {
    for (const CBuiltOn& row : BuiltOn) {
        if (isIn(row.Symbols, definition.Name)) {
            return row.Unit;
        }
    }
    const std::string_view unit = unitUnder(definition.Text);
    return unit.empty() ? "One" : unit;
}

CPackUnit unitOf(const CPackRow& pack, const exact::CDefinition& definition,
                 const exact::CCatalogue& catalogue) {
    CPackUnit unit{};
    unit.Pack = pack.Pack;
    unit.Symbol = definition.Name;
    unit.Definition = definition.Text;
    unit.Name = definition.English;
    unit.Source = definition.Source;
    unit.Unit = baseOf(definition);
    unit.IsAlternate = isIn(Alternates, definition.Name);
    const exact::CConversion conversion(
        *catalogue.meaning(definition.Name),
        unit.Unit == "One" ? exact::CMeaning() : catalogue.evaluate(unit.Unit));
    unit.Factor = conversion.exactFactor().toDouble();
    const exact::COffset offset = conversion.exactOffset();
    unit.Offset = offset.Sign * offset.Size.toDouble();
    return unit;
}

// Each pack has a catalogue of its own, because US and IMPERIAL have the same names.
exact::CCatalogue catalogueOf(const CPackRow& pack) {
    return exact::CCatalogue::builtIn().with(exact::ePack::CUSTOMARY).with(pack.Definitions);
}

// Makes the unit of a name of the pack EVERYDAY.
CUnitPtr makeUnit(const CMeaning& meaning, std::string& fault) {
    try {
        return checked::unitOf(meaning);
    } catch (const CIdentityError& error) {
        fault = error.what();
        return nullptr;
    }
}

[[noreturn]] void refuse(const CPackUnit& row, const std::exception& reason,
                         const CUnitPtr& inTheWay) {
    throw CIdentityError("the pack " + quoted(nameOf(row.Pack)) +
                             " is refused because of its unit " + quoted(std::string(row.Symbol)) +
                             ": " + reason.what(),
                         inTheWay);
}

// The rows of one pack, and what they mean.
struct CPackUnits {
    explicit CPackUnits(const CPackRow& pack) : Catalogue(catalogueOf(pack)) {
        for (const CPackUnit& row : packUnits()) {
            if (row.Pack == pack.Pack) {
                (row.IsAlternate ? Alternates : Others).push_back(&row);
            }
        }
    }

    exact::CCatalogue Catalogue;
    std::vector<const CPackUnit*> Others;
    std::vector<const CPackUnit*> Alternates;
};

// Registers the rows of a pack. All functions throw a CIdentityError that names the row.
class CPackMaker {
public:
    explicit CPackMaker(const CPackRow& pack) : m_Units(pack) {}

    // The registry cannot remove the symbol of an alternate unit, so these units are made last.
    void make() {
        for (const CPackUnit* const row : m_Units.Others) {
            define(*row);
        }
        std::size_t countOfNew = 0;
        for (const CPackUnit* const row : m_Units.Alternates) {
            work(*row, [&](const CNewUnit& wanted) {
                countOfNew += CNaming::isNewAlternate(wanted) ? 1U : 0U;
                Lock().requireRoom(countOfNew);
            });
        }
        for (const CPackUnit* const row : m_Units.Alternates) {
            define(*row);
        }
        for (const auto& [unit, meaning] : m_Meanings) {
            setRow(unit, meaning);
        }
        m_Naming.keep();
    }

private:
    void define(const CPackUnit& row) {
        work(row, [this](const CNewUnit& wanted) {
            m_Meanings.emplace_back(m_Naming.define(wanted), *wanted.Row);
        });
    }

    template <class Work>
    void work(const CPackUnit& row, const Work& work) {
        const CMeaning meaning = *m_Units.Catalogue.meaning(row.Symbol);
        try {
            work({std::string(row.Symbol), row.Factor, readUnit(row.Unit), row.Offset,
                  row.IsAlternate, &meaning});
        } catch (const CIdentityError& e) {
            refuse(row, e, e.inTheWay());
        } catch (const std::bad_alloc&) {
            throw;
        } catch (const std::exception& e) {
            refuse(row, e, nullptr);
        }
    }

    const CPackUnits m_Units;
    CNaming m_Naming;
    std::vector<std::pair<CUnitPtr, CMeaning>> m_Meanings;
};

}  // namespace

// The tables below are never destroyed. They are built on first use, so they would be destroyed before
// statics of clients, whose destructors may still register packs.

const std::vector<CPackUnit>& packUnits() {
    static const std::vector<CPackUnit>& Units = *new std::vector<CPackUnit>([] {
        std::vector<CPackUnit> units;
        for (const CPackRow& pack : Rows) {
            if (pack.Pack == ePack::EVERYDAY) {
                continue;
            }
            const exact::CCatalogue catalogue = catalogueOf(pack);
            for (const exact::CDefinition& definition : catalogue.definitions()) {
                if (definition.Pack == pack.Definitions) {
                    units.push_back(unitOf(pack, definition, catalogue));
                }
            }
        }
        return units;
    }());
    return Units;
}

const std::vector<CRefusedUnit>& refusedUnits() {
    static const std::vector<CRefusedUnit>& Units = *new std::vector<CRefusedUnit>{
        {ePack::SCIENCE, "Da_2022", 1.66053906892e-27, "kg", 0, "Da",
         "the dalton of CODATA 2022 differs from that of the SI brochure in the tenth digit, and "
         "the identity includes only seven"},
        {ePack::OFFSETS, "°R", 5.0 / 9.0, "K", 0, "°F",
         "the degree Rankine has the size of the degree Fahrenheit; the identity does not include "
         "its zero at 0 K"},
        {ePack::OFFSETS, "K_w", 1.0, "K", 273.16, "°C",
         "a unit of the size of the kelvin has the identity of the degree Celsius, whatever its "
         "offset"},
        {ePack::OFFSETS, "bar_p", 1e5, "Pa", 101325.0, "bar",
         "a bar that is built on the pascal has the identity of the bar, whatever its offset"},
        {ePack::OFFSETS, "bar_b", 1e5, "kg/(m·s²)", 100000.0, "bar_g",
         "a gauge pressure that counts from 1 bar has the identity of the bar_g, which counts from "
         "1 atm"},
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

const char* nameOf(ePack pack) { return exact::nameOf(packRow(pack).Definitions); }

const char* descriptionOf(ePack pack) { return exact::descriptionOf(packRow(pack).Definitions); }

std::optional<ePack> packNamed(std::string_view name) {
    for (const CPackRow& row : Rows) {
        if (nameOf(row.Pack) == name) {
            return row.Pack;
        }
    }
    return std::nullopt;
}

void registerPack(ePack pack) {
    packRow(pack);
    const Lock lock;
    if (pack == ePack::EVERYDAY) {
        readEverydayNames(makeUnit);
        return;
    }
    if (pack == ePack::US || pack == ePack::IMPERIAL) {
        registerPack(ePack::CUSTOMARY);
    }
    CPackMaker(packRow(pack)).make();
}

}  // namespace mensor::checked

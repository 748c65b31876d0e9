// Labels_fuzz.cpp: compares labels, aliases and symbols with a simple model, in any sequence of
// operations. A unit has one label and a label one unit. The first alias wins. A label is looked up
// before an alias, and an alias before a symbol. A conflict is refused with the documented message
// and changes nothing. Reading and writing follow each change at once. The bytes of the input are
// operations.
//
// Names cannot be removed, and a process tries many inputs. So that an input means the same in any
// order, its texts begin with a character of their own, and each of the units that it names gets a
// label of its own first.
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "Input.h"
#include "mensor/AlternateUnit.h"
#include "mensor/BaseUnit.h"
#include "mensor/SI.h"
#include "property.h"
#include "unit_texts.h"

using namespace mensor;
using mensor::fuzz::require;

namespace {

// Units of every kind, with and without a symbol.
const std::vector<CUnitPtr>& pool() {
    static const std::vector<CUnitPtr> units = {
        SI::Meter()->multiply(3.5),
        SI::Second()->multiply(7.25),
        SI::Kelvin()->multiply(1.75)->add(12.5),
        SI::Meter()->multiply(SI::Candela()),
        SI::Mole()->divide(SI::Second()->pow(2)),
        SI::Meter()->root(7),
        SI::Lux(),
        CBaseUnit::getInstance("bq"),
        SI::Meter()->multiply(SI::Ampere())->alternate("ma_"),
    };
    return units;
}

// All names of the process.
class CNames {
public:
    // After loading there are symbols and labels, and no alias.
    CNames() {
        for (const auto& [name, unit] : CUnitFormat::names()) {
            if (unit->getSymbol() == name) {
                m_Symbols[toStdString(name)] = unit;
            } else {
                m_Labelled[toStdString(name)] = unit;
                m_Labels[unit] = toStdString(name);
            }
        }
    }

    // The outcome of labelling.
    std::string label(const CUnitPtr& unit, const std::string& label) {
        if (!unit) {
            return "std::invalid_argument: CUnitFormat::label: the unit is an empty pointer";
        }
        const auto holder = m_Labelled.find(label);
        if (!label.empty() && m_Symbols.count(label) != 0) {
            return refusal("Label: " + label + " is a known symbol");
        }
        if (!label.empty() && holder != m_Labelled.end() && holder->second != unit) {
            return refusal("Label: " + label +
                           " is attached to a different unit (must be detached first)");
        }
        if (holder != m_Labelled.end()) {
            m_Labels.erase(holder->second);
            m_Labelled.erase(holder);
        }
        if (m_Labels.count(unit) != 0) {
            m_Labelled.erase(m_Labels[unit]);
        }
        m_Labels[unit] = label;
        m_Labelled[label] = unit;
        return "returned";
    }

    void alias(const CUnitPtr& unit, const std::string& alias) { m_Aliases.emplace(alias, unit); }

    // `unit` is the result of registering `symbol`.
    void registered(const std::string& symbol, const CUnitPtr& unit) {
        if (toStdString(unit->getSymbol()) == symbol) {
            const bool isFirst = m_Symbols.emplace(symbol, unit).first->second == unit;
            require(isFirst, symbol, "is the symbol of two units");
        } else {
            require(unit->hashCode() == hashFromString(symbol), symbol,
                    "gives a unit of another symbol and another hash");
        }
    }

    std::string nameOf(const CUnitPtr& unit) const {
        const auto label = m_Labels.find(unit);
        return label != m_Labels.end() ? label->second : toStdString(unit->getSymbol());
    }

    CUnitPtr unitFor(const std::string& name) const {
        for (const auto* units : {&m_Labelled, &m_Aliases, &m_Symbols}) {
            const auto found = units->find(name);
            if (found != units->end()) {
                return found->second;
            }
        }
        return nullptr;
    }

    bool isSymbol(const std::string& name) const { return m_Symbols.count(name) != 0; }

private:
    static std::string refusal(const std::string& message) {
        return std::string("std::invalid_argument: ") +
               message.c_str();  // stops at the first zero byte
    }

    std::map<std::string, CUnitPtr> m_Labelled, m_Aliases, m_Symbols;
    std::map<CUnitPtr, std::string> m_Labels;
};

class CSession {
public:
    explicit CSession(fuzz::CInput input) : m_Input(input) {
        static char32_t own = 0x10000;
        const std::string first = toStdString(string_t(own++));
        m_Texts = {"", "m", "km", "g"};
        for (int i = 0; i < 4; ++i) {
            m_Texts.push_back(first + m_Input.text(3));
        }
        m_Texts.push_back("k" + m_Texts[4]);  // a text that a prefix may give
        m_Texts.push_back("c" + m_Texts[4]);
        for (std::size_t i = 0; i < pool().size(); ++i) {
            label(pool()[i], "~" + std::to_string(i));
        }
    }

    void run() {
        while (!m_Input.empty()) {
            const CUnitPtr& unit = pool()[m_Input.below(pool().size())];
            const std::string& text = m_Texts[m_Input.below(m_Texts.size())];
            switch (m_Input.below(8)) {
                case 0:
                case 1: label(unit, text); break;
                case 2:
                    require(CUnitFormat::alias(unit, text) == unit, text,
                            "is not accepted as an alias");
                    names().alias(unit, text);
                    break;
                case 3: labelPrefixed(unit); break;
                case 4:
                    registerSymbol(text, [&] { return CUnitPtr(CBaseUnit::getInstance(text)); });
                    break;
                case 5: registerSymbol(text, [&] { return pool()[3]->alternate(text); }); break;
                case 6:
                    fuzz::checkReading(text + "²/" + m_Texts[m_Input.below(m_Texts.size())]);
                    break;
                default:
                    fuzz::checkReading(text);
                    fuzz::checkWriting(unit);
                    fuzz::checkWriting(unit->divide(pool()[m_Input.below(pool().size())]));
            }
            compare();
        }
    }

private:
    static CNames& names() {
        static CNames names;
        return names;
    }

    static void label(const CUnitPtr& unit, const std::string& label) {
        const std::string outcome = outcomeOf([&] { CUnitFormat::label(unit, label); });
        require(outcome == names().label(unit, label), label,
                ("is attached as a label with the outcome " + outcome).c_str());
    }

    void labelPrefixed(const CUnitPtr& unit) {
        const std::vector<ePrefix> choices = {KILO, CENTI, KILO, MICRO};
        const std::size_t from = m_Input.below(4);
        const std::vector<ePrefix> chosen(choices.begin() + static_cast<std::ptrdiff_t>(from),
                                          choices.end());
        const auto base = test::written(unit, test::Notation::STANDARD);
        const std::string outcome =
            outcomeOf([&] { CUnitFormat::labelPrefixedUnit(chosen, unit); });
        std::string expected =
            base ? "returned" : "std::invalid_argument: Cannot format given Object as a Unit";
        for (std::size_t i = 0; i < chosen.size() && expected == "returned"; ++i) {
            expected = names().label(unit->multiply(prefix(chosen[i]).Factor),
                                     toStdString(prefix(chosen[i]).Symbol) + *base);
        }
        require(outcome == expected, base.value_or("a unit without a text"),
                ("is labelled with prefixes, with the outcome " + outcome).c_str());
    }

    template <class Register>
    static void registerSymbol(const std::string& symbol, Register create) {
        CUnitPtr unit;
        const std::string outcome = outcomeOf([&] { unit = create(); });
        if (outcome == "returned") {
            names().registered(symbol, unit);
            return;
        }
        const std::string taken =
            "std::logic_error: The symbol: " + symbol + " is currently associated to another unit.";
        require(names().isSymbol(symbol) && outcome == taken.c_str(), symbol,
                ("is registered as a symbol, with the outcome " + outcome).c_str());
    }

    void compare() const {
        for (const CUnitPtr& unit : pool()) {
            require(toStdString(CUnitFormat::labelFor(unit)) == names().nameOf(unit),
                    names().nameOf(unit), "is not the name of its unit");
        }
        for (const std::string& text : m_Texts) {
            require(CUnitFormat::unitFor(text) == names().unitFor(text), text,
                    "denotes another unit");
        }
    }

    fuzz::CInput m_Input;
    std::vector<std::string> m_Texts;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t LongestInput = 128;
    CSession(fuzz::CInput(data, size < LongestInput ? size : LongestInput)).run();
    fuzz::checkTables();
    return 0;
}

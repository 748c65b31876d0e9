// catalogue.cpp: prints the catalogue of the library, as a page or as data.
//
//     catalogue markdown > docs/catalogue.md
//     catalogue json > catalogue.json
//     catalogue convert 2.5 km              "2500<tab>m" and so on, for the test of the site
//
// This source has the names of quantities, the definitions in words and the published values. Every
// symbol, label and factor comes from the library.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <iterator>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <mensor/NonSI.h>
#include <mensor/SI.h>
#include <mensor/UnitFormat.h>

using namespace mensor;

namespace {

constexpr double PI = 3.14159265358979323846;

struct SiRow {
    const char* Accessor;
    CUnitPtr Unit;
    const char* Quantity;
    const char* Definition;
};

std::vector<SiRow> siRows() {
    return {
        {"Ampere", SI::Ampere(), "electric current", "base unit"},
        {"Candela", SI::Candela(), "luminous intensity", "base unit"},
        {"Kelvin", SI::Kelvin(), "thermodynamic temperature", "base unit"},
        {"Kilogram", SI::Kilogram(), "mass", "base unit"},
        {"Meter", SI::Meter(), "length", "base unit"},
        {"Mole", SI::Mole(), "amount of substance", "base unit"},
        {"Second", SI::Second(), "time", "base unit"},
        {"Radian", SI::Radian(), "plane angle", "1"},
        {"Steradian", SI::Steradian(), "solid angle", "1"},
        {"Bit", SI::Bit(), "information", "1; not of the SI, but built like its units"},
        {"Hertz", SI::Hertz(), "frequency", "1/s"},
        {"Becquerel", SI::Becquerel(), "activity", "1/s; another unit than the hertz"},
        {"Gram", SI::Gram(), "mass", "0.001 kg"},
        {"Newton", SI::Newton(), "force", "m·kg/s²"},
        {"Joule", SI::Joule(), "energy", "N·m"},
        {"Watt", SI::Watt(), "power", "J/s"},
        {"Volt", SI::Volt(), "electric potential difference", "W/A"},
        {"Ohm", SI::Ohm(), "electric resistance", "V/A; the symbol is U+2126"},
        {"Weber", SI::Weber(), "magnetic flux", "V·s"},
        {"Henry", SI::Henry(), "inductance", "Wb/A"},
        {"Gray", SI::Gray(), "absorbed dose", "J/kg"},
        {"Sievert", SI::Sievert(), "dose equivalent", "J/kg; another unit than the gray"},
        {"Pascal", SI::Pascal(), "pressure", "N/m²"},
        {"Coulomb", SI::Coulomb(), "electric charge", "s·A"},
        {"Farad", SI::Farad(), "capacitance", "C/V"},
        {"Siemens", SI::Siemens(), "electric conductance", "A/V"},
        {"Tesla", SI::Tesla(), "magnetic flux density", "Wb/m²"},
        {"Celsius", SI::Celsius(), "Celsius temperature", "t/°C = T/K − 273.15"},
        {"Lumen", SI::Lumen(), "luminous flux", "cd·sr"},
        {"Lux", SI::Lux(), "illuminance", "lm/m²"},
        {"Katal", SI::Katal(), "catalytic activity", "mol/s"},
    };
}

struct NonSiRow {
    const char* Accessor;
    CUnitPtr Unit;
    double Published;  // in the system unit
    const char* Remark;
};

std::vector<NonSiRow> nonSiRows() {
    constexpr const char* TABLE8 = "SI brochure, 9th edition, table 8";
    return {
        {"Percent", NonSI::Percent(), 0.01, "ISO 80000-1"},
        {"None", NonSI::None(), 1, "the number one, with the empty label; not built at load"},
        {"Revolution", NonSI::Revolution(), 2 * PI, "ISO 80000-3: 2π rad"},
        {"DegreeAngle", NonSI::DegreeAngle(), PI / 180, TABLE8},
        {"MinuteAngle", NonSI::MinuteAngle(), PI / 10800, TABLE8},
        {"SecondAngle", NonSI::SecondAngle(), PI / 648000, TABLE8},
        {"CentiRadian", NonSI::CentiRadian(), 0.01, "0.01 rad; its label replaced crad"},
        {"Grade", NonSI::Grade(), PI / 200, "NIST SP 811, the gon: π/200 rad"},
        {"Byte", NonSI::Byte(), 8, "IEC 80000-13"},
        {"Octet", NonSI::Octet(), 8, "the same object as the byte"},
        {"Atmosphere", NonSI::Atmosphere(), 101325, "10th CGPM (1954), resolution 4"},
        {"Bar", NonSI::Bar(), 100000, "NIST SP 811"},
        {"Psi", NonSI::Psi(), 0.45359237 * 9.80665 / (0.0254 * 0.0254),
         "a short decimal by choice; the exact value is 0.45359237 kg · 9.80665 m/s² / (0.0254 "
         "m)². Not "
         "built "
         "at load: read only after the accessor was called"},
        {"MilliBar", NonSI::MilliBar(), 100, "0.001 bar; its label replaced hPa"},
        {"MillimeterOfMercury", NonSI::MillimeterOfMercury(), 133.322387415,
         "a short decimal by choice; the conventional value is 13 595.1 kg/m³ · 9.80665 m/s² · 1 "
         "mm"},
        {"InchOfMercury", NonSI::InchOfMercury(), 3386.388640341,
         "a short decimal by choice; the conventional value is that of 25.4 mm of mercury"},
        {"Liter", NonSI::Liter(), 0.001, "12th CGPM (1964), resolution 6"},
        {"G", NonSI::G(), 9.80665, "3rd CGPM (1901)"},
        {"Minute", NonSI::Minute(), 60, TABLE8},
        {"Hour", NonSI::Hour(), 3600, TABLE8},
        {"Day", NonSI::Day(), 86400, TABLE8},
        {"Week", NonSI::Week(), 604800, "7 days"},
        {"YearCalendar", NonSI::YearCalendar(), 31536000, "365 days"},
        {"Year", NonSI::Year(), 31556952,
         "the mean Gregorian year, 365.2425 days; not the tropical year of 31 556 925 s"},
        {"Month", NonSI::Month(), 2629746, "a twelfth of the mean Gregorian year"},
        {"Aeon", NonSI::Aeon(), 31556952e9, "10⁹ years; it has no label and no text"},
        {"DaySidereal", NonSI::DaySidereal(), 86400 / 1.00273790935079,
         "rounded to 0.01 s, as NIST SP 811 has it; IERS: a day by 1.002 737 909 350 79"},
        {"YearSidereal", NonSI::YearSidereal(), 365.256363004 * 86400,
         "rounded by choice; IERS: 365.256 363 004 days"},
    };
}

const std::map<std::string, const char*>& quantities() {
    static const std::map<std::string, const char*> names{
        {"A", "Electric current"},
        {"cd", "Luminous intensity and flux"},
        {"K", "Temperature"},
        {"kg", "Mass"},
        {"m", "Length"},
        {"mol", "Amount of substance"},
        {"s", "Time"},
        {"One", "Numbers, angles and information"},
        {"1/s", "Frequency and activity"},
        {"m·kg/s²", "Force"},
        {"m²·kg/s²", "Energy"},
        {"m²·kg/s³", "Power"},
        {"kg/(m·s²)", "Pressure"},
        {"s·A", "Electric charge"},
        {"m³", "Volume"},
        {"m²·kg/(s³·A)", "Electric potential difference"},
        {"mol/s", "Catalytic activity"},
        {"m²·kg/(s³·A²)", "Electric resistance"},
        {"m²·kg/(s²·A)", "Magnetic flux"},
        {"m²·kg/(s²·A²)", "Inductance"},
        {"m²/s²", "Absorbed dose and dose equivalent"},
        {"kg/(s²·A)", "Magnetic flux density"},
        {"s^4·A²/(m²·kg)", "Capacitance"},
        {"A²·s³/(m²·kg)", "Electric conductance"},
        {"cd/m²", "Illuminance"},
        {"m/s²", "Acceleration"}};
    return names;
}

std::string shortest(double number) {
    char digits[32];
    return std::string(digits, std::to_chars(digits, std::end(digits), number).ptr);
}

// A unit in terms of another: x -> factor x + offset.
struct Affine {
    double Factor;
    double Offset;

    std::string in(const std::string& unit) const {
        return shortest(Factor) + ' ' + unit +
               (Offset == 0 ? "" : " + " + shortest(Offset) + ' ' + unit);
    }
};

Affine affine(const CUnitPtr& unit, const CUnitPtr& target) {
    const CConverterPtr converter = unit->getConverterTo(target);
    return {converter->convert(0) == 0 ? converter->convert(1) : converter->derivative(0),
            converter->convert(0)};
}

std::string nameOf(const CUnitPtr& unit) { return toStdString(CUnitFormat::labelFor(unit)); }

struct Entry {
    std::string Name;
    CUnitPtr Unit;
    Affine Size;  // in the dimension
};

// Every name that the library reads, by dimension, largest unit first.
std::map<std::string, std::vector<Entry>> entries() {
    std::map<std::string, CUnitPtr> units;
    {
        const std::lock_guard<std::recursive_mutex> lock(CUnit::mutex());
        for (const auto& [symbol, unit] : CUnit::symbols())
            units.emplace(toStdString(symbol), unit);
        for (const auto& [label, unit] : CUnitFormat::labelUnitMap())
            if (!toStdString(label).empty())
                units.emplace(toStdString(label), unit);
    }
    std::map<std::string, std::vector<Entry>> groups;
    for (const auto& [name, unit] : units) {
        const CUnitPtr dimension = unit->getDimension();
        groups[dimension->toStdString()].push_back({name, unit, affine(unit, dimension)});
    }
    for (auto& [dimension, group] : groups)
        std::stable_sort(group.begin(), group.end(), [](const Entry& a, const Entry& b) {
            return a.Size.Factor > b.Size.Factor;
        });
    return groups;
}

std::string quantityOf(const std::string& dimension) {
    const auto name = quantities().find(dimension);
    return name == quantities().end() ? dimension : name->second;
}

void writeMarkdown() {
    std::cout << R"(# Catalogue

Every unit, symbol, label and factor of the library, written by a program that uses the library. A test
compares this page with its output. `scripts/docs --update` rewrites it.

All units are built while the library is loaded, except `NonSI::Psi` and `NonSI::None`, which the first call
builds. Definitions and prefixes are those of the SI brochure, 9th edition (BIPM, 2019).

## SI

| Accessor | Text | Quantity | Definition | In base units |
|---|---|---|---|---|
)";
    for (const SiRow& row : siRows()) {
        const CUnitPtr base = row.Unit->getDimension();
        const std::string text = base->toStdString() == "One" ? "1" : base->toStdString();
        const Affine size = affine(row.Unit, base);
        std::cout << "| `SI::" << row.Accessor << "` | `" << nameOf(row.Unit) << "` | "
                  << row.Quantity << " | " << row.Definition << " | "
                  << (size.Factor == 1 && size.Offset == 0 ? text : size.in(text)) << " |\n";
    }
    std::cout << R"(
## Outside the SI

"Factor" is the factor of the library, with all digits of the double. "Off by" is its relative difference from
the published value. Differences in the sixteenth digit come from chains of factors, which are rounded at
each step.

| Accessor | Text | Factor | Off by | Source, or why it differs |
|---|---|---|---|---|
)";
    for (const NonSiRow& row : nonSiRows()) {
        const CUnitPtr system = row.Unit->getSystemUnit();
        const double factor = row.Unit->convertValueToUnit(1, system);
        char off[32] = "0";
        if (factor != row.Published)
            std::snprintf(off, sizeof off, "%.1e", (factor - row.Published) / row.Published);
        const std::string name = nameOf(row.Unit);
        const std::string unit = system->toStdString();
        std::cout << "| `NonSI::" << row.Accessor << "` | "
                  << (name.empty() ? "" : "`" + name + "`") << " | " << shortest(factor)
                  << (unit == "One" ? "" : " " + unit) << " | " << off << " | " << row.Remark
                  << " |\n";
    }
    std::cout << R"(
## Prefixes

| Prefix | Symbol | Factor |
|---|---|---|
)";
    static const char* const names[] = {
        "Yotta", "Zetta", "Exa",   "Peta",  "Tera", "Giga", "Mega",  "Kilo", "Hecto", "Deka",
        "Deci",  "Centi", "Milli", "Micro", "Nano", "Pico", "Femto", "Atto", "Zepto", "Yocto"};
    for (std::size_t i = 0; i < prefixes().size(); ++i)
        std::cout << "| `SI::" << names[i] << "` | `" << toStdString(prefixes()[i].Symbol) << "` | "
                  << shortest(prefixes()[i].Factor) << " |\n";
    std::cout << R"(
Names are not split into prefix and unit: each prefixed name below is a label. Every SI unit has all twenty
prefixes, except the kilogram (the gram has them), the lumen and the bit. The litre has six. If a unit gets two
labels, the later one stays: `mbar` replaced `hPa`, and `centiradian` replaced `crad`. `m°C` replaced `mK`, and so
for all prefixed kelvins, because the hash code ignores offsets. So 1 m°C is 0.001 K.

## Every name

)";
    for (const auto& [dimension, group] : entries()) {
        std::cout << "### " << quantityOf(dimension) << "\n\n| Name | Is |\n|---|---|\n";
        for (const Entry& entry : group)
            std::cout << "| `" << entry.Name << "` | "
                      << entry.Size.in(dimension == "One" ? "" : dimension) << " |\n";
        std::cout << '\n';
    }
}

std::string quoted(const std::string& text) {
    std::string result = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\')
            result += '\\';
        result += c;
    }
    return result + '"';
}

void writeJson() {
    std::cout << "[\n";
    const char* comma = "";
    for (const auto& [dimension, group] : entries()) {
        for (const Entry& entry : group) {
            std::cout << comma << "{\"name\":" << quoted(entry.Name)
                      << ",\"quantity\":" << quoted(quantityOf(dimension))
                      << ",\"dimension\":" << quoted(dimension)
                      << ",\"factor\":" << shortest(entry.Size.Factor)
                      << ",\"offset\":" << shortest(entry.Size.Offset) << '}';
            comma = ",\n";
        }
    }
    std::cout << "\n]\n";
}

void writeConversions(double value, const std::string& name) {
    const CUnitPtr unit = CUnitFormat::unitFor(name);
    for (const auto& [dimension, group] : entries())
        for (const Entry& entry : group)
            if (unit->isCompatible(entry.Unit))
                std::cout << shortest(unit->convertValueToUnit(value, entry.Unit)) << '\t'
                          << entry.Name << '\n';
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 2 && std::strcmp(argv[1], "markdown") == 0) {
        writeMarkdown();
    } else if (argc == 2 && std::strcmp(argv[1], "json") == 0) {
        NonSI::Psi();
        writeJson();
    } else if (argc == 4 && std::strcmp(argv[1], "convert") == 0) {
        NonSI::Psi();
        writeConversions(std::strtod(argv[2], nullptr), argv[3]);
    } else {
        std::cerr << "usage: catalogue markdown | json | convert NUMBER UNIT\n";
        return 2;
    }
    return std::cout.flush() ? 0 : 1;
}

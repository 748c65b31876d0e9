// transcript.cpp: prints results of the libraries as a text that is the same on every platform.
//
// usage: transcript             all sections
//        transcript SECTION...  these sections; the output of a section does not depend on the others
//        transcript --sums      the checksum, the number of lines and the name of each section
//
// Doubles are printed as their bits. Only results of the math library's pow() are rounded to 15 digits, because
// their last digit differs between platforms. Nothing else in a section may depend on such a result. A NaN is
// printed without its sign, which also differs.
#include <sys/wait.h>
#include <unistd.h>

#include <cinttypes>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iomanip>
#include <iostream>
#include <limits>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "mensor/AddConverter.h"
#include "mensor/BaseUnit.h"
#include "mensor/MultiplyConverter.h"
#include "mensor/ProductUnit.h"
#include "mensor/SI.h"
#include "mensor/TransformedUnit.h"
#include "mensor/Unit.h"
#include "mensor/UnitFormat.h"
#include "mensor/ValueWithUnit.h"
#include "mensor/io.h"
#include "mensor/mensor_global.h"
#include "mensor/mensor_math.h"
#include "mensor_checked/Reading.h"
#include "mensor_checked/Values.h"
#include "support/Fork.h"
#include "support/Inside.h"
#include "support/Utf8Texts.h"
#include "support/outcome.h"

namespace mensor {
namespace {

const double Samples[] = {0.0,
                          -0.0,
                          1.0,
                          -1.0,
                          0.1,
                          1.0 / 3.0,
                          2.5,
                          -273.15,
                          37.7,
                          1e-9,
                          6.02214076e23,
                          123456789.123456789,
                          -98765.4321,
                          1e300,
                          -1e-300,
                          std::numeric_limits<double>::max(),
                          std::numeric_limits<double>::min(),
                          std::numeric_limits<double>::denorm_min(),
                          1e-310,
                          std::numeric_limits<double>::infinity(),
                          std::numeric_limits<double>::quiet_NaN()};
constexpr std::size_t SampleCount = sizeof Samples / sizeof *Samples;

// Printing.

std::string bits(double x) {
    if (std::isnan(x)) {
        return "nan";
    }
    std::uint64_t pattern = 0;
    std::memcpy(&pattern, &x, sizeof pattern);
    char digits[17];
    std::snprintf(digits, sizeof digits, "%016" PRIx64, pattern);
    return digits;
}

std::string rounded(double x) {
    if (std::isnan(x)) {
        return "nan";
    }
    char digits[32];
    std::snprintf(digits, sizeof digits, "%.14e", x);
    return digits;
}

// Returns the text on one line.
std::string quoted(const std::string& text) {
    std::string result = "\"";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= 0x20 && byte != 0x7F) {
            result += c;
        } else {
            char escaped[5];
            std::snprintf(escaped, sizeof escaped, "\\x%02X", static_cast<unsigned>(byte));
            result += escaped;
        }
    }
    return result + '"';
}

std::string quoted(const string_t& text) { return quoted(toStdString(text)); }

std::string formatted(const CUnitFormatPtr& format, const CUnitPtr& unit) {
    std::string text;
    const std::string outcome = outcomeOf([&] { text = quoted(format->format(unit, string_t())); });
    return outcome == "returned" ? text : outcome;
}

// Prints everything about a unit except its conversions.
std::string described(const CUnitPtr& unit) {
    if (!unit) {
        return "no unit";
    }
    std::ostringstream out;
    out << '#' << Inside::id(unit) << " hash " << unit->hashCode() << ' '
        << formatted(CStandardUnitFormat::instance(), unit) << ' '
        << formatted(CASCIIUnitFormat::instance(), unit) << " symbol " << quoted(unit->getSymbol())
        << " of " << unit->elements().size();
    return out.str();
}

std::string read(const string_t& text) {
    CUnitPtr unit;
    const std::string outcome = outcomeOf([&] { unit = CUnit::fromString(text); });
    return outcome == "returned" ? described(unit) : quoted(outcome);
}

// Random numbers that are the same on every platform.
class Random {
public:
    unsigned below(std::size_t count) {
        m_State = m_State * 1664525U + 1013904223U;
        return static_cast<unsigned>((m_State >> 8) % count);
    }

private:
    std::uint32_t m_State = 20240719;
};

// Returns a random text of names, and of signs that the parsers distinguish. Some texts are cut inside a
// character.
std::string randomText(Random& random, const std::vector<std::string>& names) {
    static const std::vector<std::string> Pieces = {
        "·",  "*",        "/",    " ",    "^2",   "^-1",  "^1:2", "-1",   "²",      "³",
        "[",  "]",        "<b>",  "<",    "&",    ";",    "(",    ")",    "1",      "√",
        "10", "^",        "¹",    "⁻",    ".",    "+",    "µ",    "°",    "\u2126", "\u00A0",
        "\t", "&middot;", "\xC2", "\x80", "\xFF", "\xE2", "\xB2", "\xB5", "\xB7",   "\xF0"};
    std::string text;
    for (unsigned count = random.below(5); count > 0; --count) {
        if (random.below(4) != 0) {
            text += names[random.below(names.size())];
        }
        text += Pieces[random.below(random.below(3) == 0 ? Pieces.size() : 10)];
    }
    return text;
}

std::vector<std::string> namesOfUnits() {
    std::vector<std::string> names;
    for (const auto& [name, unit] : CUnitFormat::names()) {
        names.push_back(toStdString(name));
    }
    return names;
}

std::map<int, CUnitPtr> unitsById() {
    std::map<int, CUnitPtr> units;
    for (const auto& [hash, unit] : CUnit::instances()) {
        units[Inside::id(unit)] = unit;
    }
    return units;
}

// The sections.

void catalogue(std::ostream& out) {
    for (const CPrefix& prefix : prefixes()) {
        out << quoted(prefix.Symbol) << ' ' << bits(prefix.Factor) << '\n';
    }
    for (const auto& [name, unit] : CUnitFormat::names()) {
        out << quoted(name) << " is " << described(unit) << '\n';
    }
    for (const auto& [hash, unit] : CUnit::instances()) {
        out << hash << " is #" << Inside::id(unit) << '\n';
    }
    for (const auto& [symbol, unit] : CUnit::symbols()) {
        out << quoted(symbol) << " is symbol of #" << Inside::id(unit) << '\n';
    }
    for (const auto& [label, unit] : CUnitFormat::labelUnitMap()) {
        out << quoted(label) << " is label of #" << Inside::id(unit) << '\n';
    }
    for (const auto& [alias, unit] : CUnitFormat::aliasUnitMap()) {
        out << quoted(alias) << " is alias of #" << Inside::id(unit) << '\n';
    }
    for (const auto& [id, unit] : unitsById()) {
        out << described(unit) << ", dimension " << unit->getDimension() << ", system unit "
            << unit->getSystemUnit() << '\n';
    }
}

// Converts every unit to its system unit and back. The catalogue multiplies and adds, and raises only 1 to powers.
void conversions(std::ostream& out) {
    for (const auto& [id, unit] : unitsById()) {
        const CUnitPtr system = unit->getSystemUnit();
        const CConverterPtr there = unit->getConverterTo(system),
                            back = system->getConverterTo(unit);
        out << '#' << id << ' ' << unit << ": hash " << there->hashCode() << ' '
            << there->isLinear() << ' ' << bits(there->derivative(0)) << ' '
            << bits(back->derivative(1)) << '\n';
        double atOnce[SampleCount];
        there->convertAll(Samples, atOnce, SampleCount);
        for (std::size_t i = 0; i < SampleCount; ++i) {
            out << "  " << bits(there->convert(Samples[i])) << ' ' << bits(atOnce[i]) << ' '
                << bits(back->convert(Samples[i])) << '\n';
        }
    }
}

// Converts between every pair of compatible units.
void pairs(std::ostream& out) {
    const std::map<int, CUnitPtr> units = unitsById();
    for (const auto& [id, from] : units) {
        out << '#' << id << ':';
        for (const auto& [otherId, to] : units) {
            if (from->isCompatible(to)) {
                out << ' ' << otherId << '=' << bits(from->convertValueToUnit(37.7, to));
            }
        }
        out << '\n';
    }
}

// The ids and texts of new units depend on the order in which they are made.
void algebra(std::ostream& out) {
    std::vector<CUnitPtr> units;
    for (const auto& [symbol, unit] : CUnit::symbols()) {
        units.push_back(unit);
    }
    for (const auto& [id, left] : unitsById()) {
        for (const CUnitPtr& right : units) {
            out << left << " by " << right << ": " << described(left * right) << "; "
                << described(left / right) << ", dimension " << (left / right)->getDimension()
                << '\n';
        }
    }
    for (const CUnitPtr& unit : units) {
        for (const int n : {-7, -3, -2, -1, 0, 1, 2, 3, 4, 17}) {
            out << unit << " ^ " << n << ": " << described(unit->pow(n)) << '\n';
            out << unit << " : " << n << ": "
                << (n == 0 ? outcomeOf([&] { unit->root(n); }) : described(unit->root(n))) << '\n';
        }
        out << described(unit->pow(3)->root(2)->pow(4)) << ' ' << described(unit->pow(6)->root(-4))
            << '\n';
    }
    for (const CUnitPtr& unit : units) {
        for (const double x : {1.0, 2.0, -3.0, 0.1, 1e10, 1.0 / 3.0, 1e-310, 1e300}) {
            out << (unit * x) << ' ' << described(unit * x) << ' ' << (unit + x) << ' '
                << described(unit + x) << '\n';
        }
    }
}

// Powers, roots and products of scaled units. Only here, the math library computes factors.
void powers(std::ostream& out) {
    const std::map<int, CUnitPtr> units = unitsById();
    CUnitPtr former = SI::Meter();
    for (const auto& [id, unit] : units) {
        if (!unit->getConverterTo(unit->getSystemUnit())->isLinear()) {
            continue;  // an offset has no power
        }
        std::vector<CUnitPtr> made = {unit * former, unit / former};
        for (const int n : {-3, -2, 2, 3, 5}) {
            made.push_back(unit->pow(n));
            made.push_back(unit->root(n));
        }
        made.push_back(unit->pow(3)->root(2) * former);
        for (const CUnitPtr& product : made) {
            double value = 0.0;
            const std::string outcome = outcomeOf(
                [&] { value = product->convertValueToUnit(37.7, product->getSystemUnit()); });
            out << '#' << id << ' ' << product << ": "
                << (outcome == "returned" ? rounded(value) : outcome) << '\n';
        }
        former = unit;
    }
}

void parsing(std::ostream& out) {
    const std::vector<std::string> names = namesOfUnits();
    Random random;
    for (int i = 0; i < 6000; ++i) {
        const std::string text = randomText(random, names);
        out << quoted(text) << " is " << read(text) << '\n';
    }
}

void malformed(std::ostream& out) {
    for (const test::Utf8Text& row : test::utf8Texts()) {
        const string_t text = row.Bytes;
        out << row.What << ": " << text.length() << " points, " << text.size() << " bytes, hash "
            << hashFromString(text) << ':' << std::hex;
        for (std::size_t i = 0; i < text.length(); ++i) {
            out << ' ' << static_cast<std::uint32_t>(text[i]);
        }
        out << std::dec << "; less than";
        for (const test::Utf8Text& other : test::utf8Texts()) {
            out << ' ' << (text < string_t(other.Bytes));
        }
        out << '\n' << read(text) << "; " << read("m" + text) << "; " << read("m/" + text + "·s");
        out << "; exponent " << outcomeOf([&] { CUnitFormat::parseExponent(text); }) << '\n';
        CUnitPtr unit;
        const std::string outcome =
            outcomeOf([&] { unit = CBaseUnit::getInstance(string_t("q" + row.Bytes)); });
        out << quoted(outcome) << ' ' << described(unit) << ' '
            << (unit ? described(SI::Second() / (unit ^ 2)) : "") << '\n';
    }
    for (int first = 0; first < 256; ++first) {
        for (const char* rest : {"", "\x80", "\xBF", "m", "\x80\x80\x80\x80\x80"}) {
            const std::string text = test::bytes({first}) + rest;
            out << quoted(text) << ' ' << hashFromString(text) << ' ' << string_t(text).length()
                << ' ' << read(text) << '\n';
        }
    }
}

void characters(std::ostream& out) {
    const auto describe = [&out](std::uint32_t c) {
        out << std::hex << c << std::dec << ' ' << CUnitFormat::isUnitIdentifierPart(c)
            << CUnitFormat::isExponent(c) << ' ' << hashFromString(string_t(static_cast<char_t>(c)))
            << '\n';
    };
    for (std::uint32_t c = 0; c < 0x300; ++c) {
        describe(c);
    }
    for (const std::uint32_t c :
         {0x2070U, 0x207BU, 0x2126U, 0x22C5U, 0xD800U, 0xFFFDU, 0xFFFFU, 0x10FFFFU}) {
        describe(c);
    }
    for (const std::string text :
         {"", "0", "7", "-7", "7-", "+7", "¹²", "1²3", "--3", "x", "\x80", "²\xC2", "2147483647",
          "-2147483647", "2147483648", "-2147483648", "99999999999999999999"}) {
        int n = 0;
        const std::string outcome = outcomeOf([&] { n = CUnitFormat::parseExponent(text); });
        out << quoted(text) << ' ' << outcome << ' ' << n << '\n';
    }
}

void numbers(std::ostream& out) {
    for (const double x : Samples) {
        out << bits(x) << ' ' << floatToIntBits(static_cast<float>(x)) << '\n';
    }
    for (const int a : {0, 1, 4, 12, 18, 97, 2147483647}) {
        for (const int b : {0, 1, 6, 18, 194, 2147483647}) {
            out << greatestCommonDivisor(a, b) << ' ' << greatestCommonDivisor(-a, b) << ' '
                << greatestCommonDivisor(a, -b) << ' ' << greatestCommonDivisor(-a, -b) << '\n';
        }
    }
    const CConverterPtr identity = CConverter::identity();
    for (const double x : Samples) {
        CMultiplyConverter times(x);
        CAddConverter plus(x);
        out << quoted(times.getSymbol(SI::Meter())) << ' ' << times.hashCode() << ' '
            << times.equals(identity) << ' ' << quoted(plus.getSymbol(SI::Kelvin())) << ' '
            << plus.hashCode() << ' ' << plus.equals(identity) << '\n';
    }
}

void values(std::ostream& out) {
    const std::vector<std::string> units = {"m", "km", "°C", "K",        "h",
                                            "s", "µl", "%",  "kg·m²/s²", "bar"};
    for (const double x : Samples) {
        for (const std::string& unit : units) {
            const CValueWithUnit value(x, CUnit::fromString(unit));
            std::ostringstream stream;
            stream << value << '|' << std::scientific << std::setprecision(12) << std::setw(30)
                   << value;
            out << quoted(std::isnan(x) ? "nan" : toStdString(value.toString())) << ' '
                << (std::isnan(x) ? "nan" : quoted(stream.str())) << ' '
                << quoted(outcomeOf([&] { checked::writeValue(value); })) << '\n';
        }
    }
    for (const std::string number :
         {"1", "-2.5", "1e3", ".5", "0x1p-3", "1e400", "1e-320", "", "x", "5abc", "+7", "1,5",
          "inf", "  3", "179769313486231580793728971405301e275", "4.9406564584124654e-324"}) {
        for (const std::string unit : {" km", "  m", " m s", "", " xyz", " °C", " \xC2"}) {
            double x = 0.0, kept = 0.0;
            const std::string text = number + unit;
            const std::string outcome =
                outcomeOf([&] { x = CValueWithUnit::fromString(text).value(); });
            const checked::CValueReading reading = checked::tryReadValue(text);
            kept = reading.Value;
            out << quoted(text) << ' ' << quoted(outcome) << ' ' << bits(x) << "; "
                << (reading ? bits(kept) : quoted(reading.Refusal->message())) << '\n';
        }
    }
    const CValueWithUnit kilometre(1.1, SI::Kilo(SI::Meter()));
    for (const double x : Samples) {
        const CValueWithUnit other(x, SI::Meter());
        out << bits((kilometre + other).value()) << ' ' << bits((other - kilometre).value()) << ' '
            << (kilometre == other) << (kilometre != other) << (kilometre < other)
            << (kilometre > other) << '\n';
    }
    out << quoted(outcomeOf([&] {
        static_cast<void>(kilometre + CValueWithUnit(1, SI::Second()));
    })) << '\n';
}

// The companion: the units that it reads, and the messages of its refusals.
void companion(std::ostream& out) {
    const std::vector<std::string> names = namesOfUnits();
    Random random;
    for (int i = 0; i < 1500; ++i) {
        const std::string text = randomText(random, names);
        const checked::CReading reading = checked::tryReadUnit(text);
        out << quoted(text) << " is ";
        if (reading) {
            out << described(reading.Unit) << ' ' << checked::textOf(reading.Unit).value_or("none");
        } else {
            out << checked::nameOf(reading.Refusal->Code) << ' ' << reading.Refusal->Position << ' '
                << quoted(reading.Refusal->message()) << ' ' << quoted(reading.Refusal->caret());
        }
        out << '\n';
    }
}

struct Section {
    const char* Name;
    void (*Print)(std::ostream& out);
};

const Section Sections[] = {
    {"catalogue", catalogue}, {"conversions", conversions}, {"pairs", pairs},
    {"algebra", algebra},     {"powers", powers},           {"parsing", parsing},
    {"malformed", malformed}, {"characters", characters},   {"numbers", numbers},
    {"values", values},       {"companion", companion},
};

// FNV-1a in 64 bits.
std::uint64_t checksum(const std::string& text) {
    std::uint64_t sum = 0xCBF29CE484222325U;
    for (const char c : text) {
        sum = (sum ^ static_cast<unsigned char>(c)) * 0x100000001B3U;
    }
    return sum;
}

void print(const Section& section, bool sumOnly) {
    std::ostringstream out;
    section.Print(out);
    const std::string text = out.str();
    if (!sumOnly) {
        std::cout << "== " << section.Name << '\n' << text;
        return;
    }
    std::size_t lines = 0;
    for (const char c : text) {
        lines += c == '\n' ? 1U : 0U;
    }
    char sum[64];
    std::snprintf(sum, sizeof sum, "%016" PRIx64 " %6zu ", checksum(text), lines);
    std::cout << sum << section.Name << '\n';
}

// Runs each section in a new process, because registered units stay.
bool printApart(const Section& section, bool sumOnly) {
    std::cout.flush();
    const pid_t child = forkAtRest();
    if (child == 0) {
        print(section, sumOnly);
        _exit(std::cout.flush()
                  ? 0
                  : 1);  // exit() would wait for threads that only the parent process has
    }
    int status = 1;
    return child > 0 && waitpid(child, &status, 0) == child && status == 0;
}

}  // namespace
}  // namespace mensor

int main(int count, char** arguments) {
    using namespace mensor;
    const std::vector<std::string> wanted(arguments + 1, arguments + count);
    const bool sumOnly = wanted.size() == 1 && wanted[0] == "--sums";
    bool succeeded = true;
    for (const Section& section : Sections) {
        bool isWanted = wanted.empty() || sumOnly;
        for (const std::string& name : wanted) {
            isWanted = isWanted || name == section.Name;
        }
        succeeded = succeeded && (!isWanted || printApart(section, sumOnly));
    }
    return succeeded ? 0 : 1;
}

// DefinitionFile_fuzz.cpp: a definition file is accepted as a whole, or defines nothing. Each line of
// an accepted file has the form of the grammar, and its unit has exactly the meaning that a calculation with
// GMP gives. The definition in the catalogue has the same meaning. Each finding of a
// refused file has a position in its line, and every line that it offers instead is accepted.
#include <gmpxx.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <numeric>
#include <optional>
#include <regex>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "Input.h"
#include "exact/DefinitionTable.h"
#include "mensor_exact/DefinitionFile.h"
#include "mensor_exact/Reading.h"
#include "property.h"
#include "support/Mathematics.h"

using namespace mensor;
using mensor::exact::CCatalogue;
using mensor::exact::CDefinitionFile;
using mensor::exact::CMeaning;
using mensor::exact::CPower;
using mensor::fuzz::fail;
using mensor::test::Fraction;

namespace {

std::vector<std::string> linesOf(std::string text) {
    if (text.compare(0, 3, "\xEF\xBB\xBF") == 0) {
        text.erase(0, 3);
    }
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        lines.push_back(line);
    }
    return lines;
}

// Returns the line without its comment and without blanks at its ends.
std::string definitionIn(const std::string& line) {
    static const std::regex Comment("(^|[ \t])#[^]*$");
    static const std::regex Ends("^[ \t]+|[ \t]+$");
    return std::regex_replace(std::regex_replace(line, Comment, ""), Ends, "");
}

// The exact number of a text like "9/10", "-160/9" or "1e-24".
mpq_class exactNumber(std::string text) {
    for (char& c : text) {
        c = c == 'E' ? 'e' : c;
    }
    const bool isNegative = text[0] == '-';
    const std::vector<std::string> parts = split(text.substr(isNegative ? 1 : 0), "/");
    mpq_class number = decimal(parts[0]);
    if (parts.size() > 1) {
        number /= decimal(parts[1]);
    }
    return isNegative ? mpq_class(-number) : number;
}

// A quantity that GMP computes: Radicand^(1/Root)·π^Pi base units, and the zero in base units.
struct ExactQuantity {
    std::map<std::string, Fraction>
        Exponents;  // of dimensions and marks; not zero, in lowest terms
    mpq_class Radicand = 1;
    std::int64_t Root = 1;
    Fraction Pi{0, 1};
    mpq_class Offset = 0;

    ExactQuantity to(Fraction power) const {
        if (power == Fraction{1, 1}) {
            return *this;
        }
        ExactQuantity result;
        if (power.first != 0) {
            for (const auto& [base, exponent] : Exponents) {
                result.Exponents[base] = product(exponent, power);
            }
            result.Radicand = raised(Radicand, power.first);
            result.Root = Root * power.second;
            result.Pi = product(Pi, power);
        }
        return result;
    }

    ExactQuantity times(const ExactQuantity& other) const {
        ExactQuantity result = *this;
        for (const auto& [base, exponent] : other.Exponents) {
            Fraction& mine = result.Exponents.emplace(base, Fraction{0, 1}).first->second;
            mine = sum(mine, exponent);
            if (mine.first == 0) {
                result.Exponents.erase(base);
            }
        }
        result.Root = std::lcm(Root, other.Root);
        result.Radicand =
            raised(Radicand, result.Root / Root) * raised(other.Radicand, result.Root / other.Root);
        result.Pi = sum(Pi, other.Pi);
        result.Offset = 0;
        return result;
    }

    ExactQuantity over(const ExactQuantity& other) const { return times(other.to({-1, 1})); }

    friend bool operator==(const ExactQuantity& a, const ExactQuantity& b) {
        const std::int64_t root = std::lcm(a.Root, b.Root);
        return a.Exponents == b.Exponents && a.Pi == b.Pi && a.Offset == b.Offset &&
               raised(a.Radicand, root / a.Root) == raised(b.Radicand, root / b.Root);
    }

private:
    static Fraction product(Fraction a, Fraction b) {
        return test::lowest(a.first * b.first, a.second * b.second);
    }

    static Fraction sum(Fraction a, Fraction b) {
        return test::lowest(a.first * b.second + b.first * a.second, a.second * b.second);
    }

    // @throws std::invalid_argument  the result is too large to be computed.
    static mpq_class raised(const mpq_class& number, std::int64_t exponent) {
        const auto times = static_cast<unsigned long>(std::abs(exponent));
        mpz_class above;
        mpz_class below;
        if ((mpz_sizeinbase(number.get_num_mpz_t(), 2) +
             mpz_sizeinbase(number.get_den_mpz_t(), 2)) *
                times >
            1000000) {
            throw std::invalid_argument("a large number");
        }
        mpz_pow_ui(above.get_mpz_t(), number.get_num_mpz_t(), times);
        mpz_pow_ui(below.get_mpz_t(), number.get_den_mpz_t(), times);
        mpq_class result = exponent < 0 ? mpq_class(below, above) : mpq_class(above, below);
        result.canonicalize();
        return result;
    }
};

ExactQuantity quantityOf(const Reference& reference) {
    ExactQuantity quantity;
    for (const auto* powers : {&reference.Dimensions, &reference.Marks}) {
        for (const auto& [name, exponent] : *powers) {
            quantity.Exponents[name] = {exponent, 1};
        }
    }
    quantity.Radicand = reference.Factor;
    quantity.Pi = {reference.Pi, 1};
    quantity.Offset = reference.Offset * reference.Factor;
    return quantity;
}

ExactQuantity quantityOf(const CMeaning& meaning) {
    ExactQuantity quantity;
    for (const auto& powers : {meaning.dimensions(), meaning.marks()}) {
        for (const CPower& power : powers) {
            quantity.Exponents[power.Name] = {power.Exponent.numerator(),
                                              power.Exponent.denominator()};
        }
    }
    quantity.Radicand = exactNumber(meaning.factor().radicand().toString());
    quantity.Root = meaning.factor().root();
    const exact::CExponent pi = meaning.factor().piExponent();
    quantity.Pi = {pi.numerator(), pi.denominator()};
    quantity.Offset = exactNumber(meaning.offset().toString());
    return quantity;
}

// The built-in units, computed from the rows of their definitions.
const std::map<std::string, ExactQuantity>& builtInUnits() {
    static const std::map<std::string, ExactQuantity> Units = [] {
        std::map<std::string, ExactQuantity> units;
        const DefinitionTable table;
        for (const DefinitionRow& row : table.rows()) {
            if (row.Set == "CATALOGUE" || row.Set == "SI") {
                units.emplace(row.Name, quantityOf(table.meaningOf(row)));
            }
        }
        return units;
    }();
    return Units;
}

// The units of a file, calculated line by line.
class CalculatedFile {
public:
    // Calculates an accepted line. Returns the name that it defines.
    std::string add(const std::string& line) {
        static const std::string Number = "([0-9]*\\.?[0-9]*(?:[eE][+-]?[0-9]+)?)";
        static const std::regex Form(
            "^(?:replace[ \t]+)?([^]*?)[ \t]*=[ \t]*(?:(base[ \t]+unit)|" + Number + "(?:/" +
            Number + ")?[ \t]*([^,]*?)[ \t]*(?:,[ \t]*zero[ \t]+at[ \t]*([^0-9.\\s]+)" + "[ \t]*" +
            Number + "(?:/" + Number + ")?[ \t]*([^,]*))?)$");
        std::smatch parts;
        if (!std::regex_match(line, parts, Form)) {
            fail(line, "is accepted, but does not have the form of the grammar");
        }
        const std::string name = parts[1];
        ExactQuantity unit;
        try {
            if (parts[2].matched) {
                unit.Exponents[name] = {1, 1};
            } else {
                const ExactQuantity size = calculated(parts[5]);
                ExactQuantity number;
                number.Radicand = numberOf(parts[3], parts[4]);
                unit = size.times(number);
                unit.Offset = size.Offset;
                if (parts[6].matched) {
                    const ExactQuantity zero = calculated(parts[9]);
                    const bool isPlus = parts[6] == "+" || parts[6] == "\uFF0B";
                    const mpq_class value = numberOf(parts[7], parts[8]) * zero.Radicand;
                    unit.Offset = (isPlus ? value : mpq_class(-value)) + zero.Offset;
                }
            }
        } catch (const std::invalid_argument&) {  // the calculation does not know a name
            m_Units[plain(name)] = std::nullopt;
            return name;
        }
        // Another spelling of the same name may have another meaning.
        const bool isSure = plain(name) == name;
        m_Units[plain(name)] = isSure ? std::optional(unit) : std::nullopt;
        return name;
    }

    void compare(const CDefinitionFile& file) const {
        for (const auto& [name, unit] : m_Units) {
            if (unit && !(quantityOf(exact::read(name, file.Catalogue)) == *unit)) {
                fail(name, "means another unit");
            }
        }
    }

private:
    static mpq_class numberOf(const std::string& above, const std::string& below) {
        return exactNumber(below.empty() ? above : above + "/" + below);
    }

    ExactQuantity calculated(const std::string& text) const {
        const auto named = [this](const std::string& name) -> const ExactQuantity* {
            const auto own = m_Units.find(name);
            if (own != m_Units.end()) {
                return own->second ? &*own->second : nullptr;
            }
            const auto builtIn = builtInUnits().find(name);
            return builtIn == builtInUnits().end() ? nullptr : &builtIn->second;
        };
        return test::Calculation<ExactQuantity, decltype(named)>(text, named).result();
    }

    static std::string plain(const std::string& name) {
        return test::Calculation<test::Quantity, std::nullptr_t>::plain(name);
    }

    // The latest meaning of each name. Empty if it is not calculated.
    std::map<std::string, std::optional<ExactQuantity>> m_Units;
};

void checkAccepted(const std::string& text, const CDefinitionFile& file) {
    std::vector<std::string> definitions;
    for (const std::string& line : linesOf(text)) {
        const std::string definition = definitionIn(line);
        if (!definition.empty()) {
            definitions.push_back(definition);
        }
    }
    if (definitions.size() != file.Names.size()) {
        fail(text, "has a wrong number of definitions");
    }
    CalculatedFile calculated;
    for (std::size_t i = 0; i < definitions.size(); ++i) {
        if (calculated.add(definitions[i]) != file.Names[i]) {
            fail(definitions[i], "has a wrong name");
        }
    }
    calculated.compare(file);
    for (const exact::CDefinition& definition : file.Catalogue.definitions()) {
        const bool isOwn = definition.Pack == exact::ePack::OWN && !definition.Text.empty();
        if (isOwn &&
            file.Catalogue.evaluate(definition.Text) != *file.Catalogue.meaning(definition.Name)) {
            fail(definition.Text, "is not a definition of its unit");
        }
    }
}

// Returns whether the readings are whole lines and not texts for a unit in the line.
bool isOfLine(const exact::CDiagnosis& refusal) {
    return refusal.Code == exact::eRefusal::NAME_TAKEN ||
           refusal.Code == exact::eRefusal::NO_NUMBER ||
           refusal.Sentence.find("\", zero at\"") != std::string::npos;
}

void checkRefused(const std::string& text, const CDefinitionFile& file) {
    if (!file.Names.empty() || !file.Taken.empty() ||
        file.Catalogue.definitions().size() != CCatalogue::builtIn().definitions().size()) {
        fail(text, "is refused, but has defined something");
    }
    const std::vector<std::string> lines = linesOf(text);
    std::string accepted;
    std::size_t next = 0;
    for (const exact::CLineFinding& finding : file.Findings) {
        for (; next + 1 < finding.Line; ++next) {
            accepted += lines.at(next) + "\n";
        }
        ++next;
        const exact::CDiagnosis& refusal = finding.Refusal;
        if (refusal.Text != lines.at(finding.Line - 1) || refusal.Sentence.empty() ||
            refusal.Byte > refusal.Text.size() ||
            refusal.Text.compare(refusal.Byte, refusal.Token.size(), refusal.Token) != 0) {
            fail(refusal.Text, "has a refusal that does not fit the line");
        }
        refusal.caret();
        for (const std::string& reading : refusal.Readings) {
            if (isOfLine(refusal) && !exact::tryReadDefinitions(accepted + reading)) {
                fail(refusal.Text, "is refused with an offer that is refused, too: " + reading);
            }
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto input = fuzz::shortText(data, size, 200);
    if (!input) {
        return 0;
    }
    const CDefinitionFile file = exact::tryReadDefinitions(*input);
    if (file) {
        checkAccepted(*input, file);
    } else {
        checkRefused(*input, file);
    }
    return 0;
}

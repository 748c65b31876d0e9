// DefinitionFile_fuzz.cpp: a definition file is accepted as a whole, or defines nothing. Each line of
// an accepted file has the form of the grammar, and its unit has the meaning that a direct calculation
// with doubles gives. The definition in the catalogue has exactly the same meaning. Each finding of a
// refused file has a position in its line, and every line that it offers instead is accepted.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <regex>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "Input.h"
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
using mensor::test::Quantity;

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

Quantity quantityOf(const CMeaning& meaning) {
    Quantity quantity;
    for (const CPower& power : meaning.dimensions()) {
        quantity.Exponents[power.Name] = {power.Exponent.numerator(), power.Exponent.denominator()};
    }
    quantity.Factor = meaning.factor().toDouble();
    quantity.Offset = meaning.offset().toDouble();
    return quantity;
}

double numberOf(const std::string& above, const std::string& below) {
    const double divisor = below.empty() ? 1.0 : std::strtod(below.c_str(), nullptr);
    return std::strtod(above.c_str(), nullptr) / divisor;
}

// Checks an accepted line. Returns the name that it defines.
std::string checkLine(const std::string& line, const CDefinitionFile& file) {
    static const std::string Number = "([0-9]*\\.?[0-9]*(?:[eE][+-]?[0-9]+)?)";
    static const std::regex Form("^(?:replace[ \t]+)?([^]*?)[ \t]*=[ \t]*(?:(base[ \t]+unit)|" +
                                 Number + "(?:/" + Number +
                                 ")?[ \t]*([^,]*?)[ \t]*(?:,[ \t]*zero[ \t]+at[ \t]*([^0-9.\\s]+)" +
                                 "[ \t]*" + Number + "(?:/" + Number + ")?[ \t]*([^,]*))?)$");
    std::smatch parts;
    if (!std::regex_match(line, parts, Form)) {
        fail(line, "is accepted, but does not have the form of the grammar");
    }
    const std::string name = parts[1];
    for (const std::string& own : file.Names) {  // its unit may be defined by another line
        if (parts.str(5).find(own) != std::string::npos ||
            parts.str(9).find(own) != std::string::npos) {
            return name;
        }
    }
    const CMeaning meaning = exact::read(name, file.Catalogue);
    Quantity expected;
    try {
        if (parts[2].matched) {
            expected.Exponents[name] = {1, 1};
        } else {
            const Quantity unit = test::calculated(parts[5]);
            const double number = numberOf(parts[3], parts[4]);
            expected = unit.times(number);
            expected.Offset = unit.Offset;
            if (parts[6].matched) {
                const Quantity zeroUnit = test::calculated(parts[9]);
                const std::string sign = parts[6];
                const bool isPlus = sign == "+" || sign == "\uFF0B";
                const double zero = (isPlus ? 1.0 : -1.0) * numberOf(parts[7], parts[8]);
                expected.Offset = zero * zeroUnit.Factor + zeroUnit.Offset;
            }
        }
    } catch (const std::invalid_argument&) {
        return name;  // the calculation does not know a name in it
    }
    const bool isInRange = std::isnormal(expected.Factor) && std::isfinite(expected.Offset);
    if (isInRange && !areSame(quantityOf(meaning), expected)) {
        fail(line, "means another unit");
    }
    return name;
}

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
    for (std::size_t i = 0; i < definitions.size(); ++i) {
        if (checkLine(definitions[i], file) != file.Names[i]) {
            fail(definitions[i], "has a wrong name");
        }
    }
    file.Catalogue.forEach([&](const exact::CDefinition& definition) {
        const bool isOwn = definition.Pack == exact::ePack::OWN && !definition.Text.empty();
        if (isOwn &&
            file.Catalogue.evaluate(definition.Text) != *file.Catalogue.meaning(definition.Name)) {
            fail(std::string(definition.Text), "is not a definition of its unit");
        }
        return true;
    });
}

// Whether the readings are whole lines and not texts for a unit in the line.
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

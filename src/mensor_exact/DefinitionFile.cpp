#include "mensor_exact/DefinitionFile.h"

#include <functional>
#include <map>
#include <optional>
#include <string_view>
#include <utility>

#include "mensor_exact/DefinitionLine.h"
#include "mensor_exact/DefinitionReader.h"
#include "mensor_exact/Error.h"
#include "mensor_exact/OwnDefinitions.h"
#include "mensor_exact/Reading.h"
#include "mensor_exact/concatenate.h"

namespace mensor::exact {

namespace {

// Thrown for a refused line.
struct Refused {
    CDiagnosis Diagnosis;
};

// The definition that a line gives to its name.
struct CDefined {
    std::string Text;  // a definition in the notation of Definitions.h
    CMeaning Meaning;
};

class CFileReader {
public:
    CFileReader(std::string_view text, const CCatalogue& catalogue, std::string_view source)
        : m_Text(text), m_Given(catalogue), m_Source(source), m_Builder(catalogue) {}

    CDefinitionFile read() {
        CDefinitionFile result{m_Given, {}, {}, {}};
        for (CDefinitionLines lines(m_Text); lines.next();) {
            try {
                m_Number = lines.number();
                define(lines.line(), lines.number(), result);
            } catch (Refused& refused) {
                result.Findings.push_back({lines.number(), std::move(refused.Diagnosis)});
            }
        }
        if (result) {
            result.Catalogue = m_Builder.catalogue();
        } else {
            result.Names.clear();
            result.Taken.clear();
        }
        return result;
    }

private:
    const CCatalogue& catalogue() const { return m_Builder.catalogue(); }

    void define(std::string_view line, std::size_t number, CDefinitionFile& result) {
        CDefinitionLine parts;
        if (auto diagnosis = takeApart(line, parts)) {
            keepReadings(*diagnosis, [&](std::string_view other) { return isDefinition(other); });
            throw Refused{*std::move(diagnosis)};
        }
        CDefined defined = evaluate(line, parts);
        const std::string name(parts.Name.of(line));
        const std::optional<CMeaning> before = tryRead(name, catalogue()).Meaning;
        result.Names.push_back(name);
        if (before != defined.Meaning) {
            m_Builder.add(name, {std::move(defined.Text), "", sourceOf(number), defined.Meaning},
                          catalogue().packOf(name).has_value());
            if (before) {
                result.Taken.push_back({number, name, before->toString()});
            }
        }
    }

    // Returns the definition in a line of the right form.
    CDefined evaluate(std::string_view line, const CDefinitionLine& parts) {
        requireName(line, parts.Name);
        CDefined defined = meaningOf(line, parts);
        requireFree(line, parts, defined.Meaning);
        return defined;
    }

    bool isDefinition(std::string_view line) {
        CDefinitionLine parts;
        if (takeApart(line, parts)) {
            return false;
        }
        try {
            evaluate(line, parts);
            return true;
        } catch (const Refused&) {
            return false;
        }
    }

    // Refuses a name that a definition could not contain.
    static void requireName(std::string_view line, CSpan name) {
        CDefinitionReader reader(name.of(line));
        const CTerm term = reader.next();
        if (term.Kind != eTerm::NAME || term.Text != name.of(line)) {
            refuse(eRefusal::UNEXPECTED_CHARACTER, line, name,
                   quoted(name.of(line)) + " cannot be the name of a unit");
        }
    }

    void requireFree(std::string_view line, const CDefinitionLine& parts,
                     const CMeaning& meaning) const {
        const std::string_view name = parts.Name.of(line);
        const std::optional<CDefinition> holder = catalogue().find(name);
        const std::optional<CMeaning> before =
            name == "One" ? CMeaning() : catalogue().meaning(name);
        if (!before || *before == meaning) {
            return;
        }
        const bool isBase = name == "One" || holder->Text.empty();
        const bool isOwn = !isBase && holder->Pack == ePack::OWN;
        if (parts.TakesAway && !isBase && !isOwn) {
            return;
        }
        CDiagnosis diagnosis = diagnose(eRefusal::NAME_TAKEN, name, {0, name.size()},
                                        concatenate({"the name ", quoted(name),
                                                     isBase  ? " is taken by a base unit"
                                                     : isOwn ? " is defined already: it means "
                                                             : " is taken: it means ",
                                                     isBase ? "" : quoted(before->toString())}));
        if (!isBase && !isOwn) {
            diagnosis.Readings = {"replace " + std::string(name)};
        }
        throw Refused{inLine(std::move(diagnosis), line, parts.Name)};
    }

    CDefined meaningOf(std::string_view line, const CDefinitionLine& parts) {
        const std::string_view name = parts.Name.of(line);
        if (!parts.Size) {
            return {"", CMeaning::base(name)};
        }
        const CMeaning unit = read(line, parts.Size->Unit);
        try {
            CMeaning meaning = unit.scaled(CFactor(parts.Size->Number));
            if (parts.Zero) {
                meaning = withZero(line, meaning.difference(), *parts.Zero);
            }
            return {textOf(line, parts, unit, meaning), meaning};
        } catch (const CError& error) {
            if (error.code() == eError::OFFSET_NOT_RATIONAL) {
                refuse(eRefusal::FACTOR_RANGE, line, parts.Zero->whole(),
                       "a unit whose size has π or a root cannot have a zero of its own");
            }
            refuse(eRefusal::FACTOR_RANGE, line, parts.Size->whole(),
                   "the exact size of this unit needs more than 16384 bits");
        }
    }

    // Returns `unit` with the zero point `zero`.
    CMeaning withZero(std::string_view line, const CMeaning& unit, const CLineValue& zero) {
        const CMeaning zeroUnit = read(line, zero.Unit);
        if (!zeroUnit.isCompatibleWith(unit)) {
            refuse(eRefusal::DIFFERENT_DIMENSIONS, line, zero.Unit,
                   concatenate({quoted(zero.Unit.of(line)), " is ", zeroUnit.kind(),
                                ", and the unit is ", unit.kind()}));
        }
        if (!unit.factor().isRational() || !zeroUnit.factor().isRational()) {
            throw CError(eError::OFFSET_NOT_RATIONAL, "");
        }
        const CFraction inBaseUnits =
            zero.Number * zeroUnit.factor().radicand() + zeroUnit.offset();
        return unit.shifted(inBaseUnits / unit.factor().radicand());
    }

    // Returns the text of the definition. An offset unit cannot be part of a product, so it is written in base
    // units.
    std::string textOf(std::string_view line, const CDefinitionLine& parts, const CMeaning& unit,
                       const CMeaning& meaning) const {
        if (!unit.offset().isZero()) {
            return definitionOf(meaning);
        }
        const std::string units = notationOf(parts.Size->Unit.of(line), catalogue());
        std::string text = parts.Size->Number.toString();
        if (text == "1") {
            text = units;
        } else if (units != "1") {
            text += " " + units;
        }
        if (!meaning.offset().isZero()) {
            text += ", offset " + (meaning.offset() / meaning.factor().radicand()).toString();
        }
        return text;
    }

    // Returns the meaning of the unit at `part` of the line.
    CMeaning read(std::string_view line, CSpan part) {
        CReading reading = tryRead(part.of(line), catalogue());
        if (!reading) {
            CDiagnosis diagnosis = diagnose(reading.Refusal, catalogue());
            if (diagnosis.Code == eRefusal::UNKNOWN_NAME) {
                tellOtherLine(diagnosis);
            }
            throw Refused{inLine(std::move(diagnosis), line, part)};
        }
        return *std::move(reading.Meaning);
    }

    // If another line defines the unknown name, adds that line to the message.
    void tellOtherLine(CDiagnosis& diagnosis) {
        if (m_Lines.empty()) {
            for (CDefinitionLines lines(m_Text); lines.next();) {
                CDefinitionLine parts;
                if (!takeApart(lines.line(), parts) || parts.Name.End > 0) {
                    m_Lines.emplace(parts.Name.of(lines.line()), lines.number());
                }
            }
        }
        const auto other = m_Lines.find(diagnosis.Token);
        if (other == m_Lines.end() || other->second == m_Number) {
            return;
        }
        const std::string number = std::to_string(other->second);
        diagnosis.Sentence += other->second < m_Number
                                  ? "; line " + number + ", which defines it, is refused"
                                  : "; line " + number + " defines it and must come first";
        diagnosis.Suggestions.clear();
    }

    std::string sourceOf(std::size_t line) const {
        return m_Source.empty() ? std::string()
                                : concatenate({m_Source, ":", std::to_string(line)});
    }

    [[noreturn]] static void refuse(eRefusal code, std::string_view line, CSpan span,
                                    std::string sentence) {
        throw Refused{diagnose(code, line, span, std::move(sentence))};
    }

    const std::string_view m_Text;
    const CCatalogue& m_Given;
    const std::string_view m_Source;
    CCatalogueBuilder m_Builder;
    std::size_t m_Number = 0;  // the number of the current line
    std::map<std::string_view, std::size_t, std::less<>>
        m_Lines;  // the line of each name; filled at the first use
};

// Returns "line 2: a second division needs brackets (and 1 more)".
std::string firstOf(const std::vector<CLineFinding>& findings) {
    std::string message = "no line is refused";
    if (!findings.empty()) {
        message = "line " + std::to_string(findings[0].Line) + ": " + findings[0].Refusal.message();
    }
    if (findings.size() > 1) {
        message += " (and " + std::to_string(findings.size() - 1) + " more)";
    }
    return message;
}

}  // namespace

CDefinitionFile tryReadDefinitions(std::string_view text, const CCatalogue& catalogue,
                                   std::string_view source) {
    return CFileReader(text, catalogue, source).read();
}

CCatalogue readDefinitions(std::string_view text, const CCatalogue& catalogue,
                           std::string_view source) {
    CDefinitionFile file = tryReadDefinitions(text, catalogue, source);
    if (!file) {
        throw CDefinitionError(std::move(file.Findings));
    }
    return file.Catalogue;
}

CDefinitionError::CDefinitionError(std::vector<CLineFinding> findings)
    : std::invalid_argument(firstOf(findings)), m_Findings(std::move(findings)) {}
CDefinitionError::CDefinitionError(const CDefinitionError&) = default;
CDefinitionError& CDefinitionError::operator=(const CDefinitionError&) = default;
CDefinitionError::~CDefinitionError() = default;

const std::vector<CLineFinding>& CDefinitionError::findings() const noexcept { return m_Findings; }

}  // namespace mensor::exact

#include "mensor_exact/Certificate.h"

#include <algorithm>
#include <set>
#include <utility>

#include "mensor_exact/Conversion.h"
#include "mensor_exact/DefinitionReader.h"
#include "mensor_exact/OwnDefinitions.h"
#include "mensor_exact/Parts.h"
#include "mensor_exact/Table.h"
#include "mensor_exact/concatenate.h"

namespace mensor::exact {

namespace {

// Collects the definitions that a text uses, also through other definitions. Not recursive, since a chain
// of definitions may be long.
class CCollector {
public:
    explicit CCollector(const CCatalogue& catalogue) : m_Catalogue(catalogue) {}

    void add(std::string_view text) { addNames(text, m_Waiting); }

    // Returns the definitions. Each is before the ones that it uses.
    std::vector<CCertifiedDefinition> collect() {
        std::vector<CCertifiedDefinition> result;
        while (!m_Waiting.empty()) {
            const std::string_view name = m_Waiting.back();
            if (m_Done.count(name) != 0) {
                m_Waiting.pop_back();
                continue;
            }
            const CDefinition definition = definitionOf(name);
            const std::string text = textOf(definition);
            const std::size_t before = m_Waiting.size();
            addNames(text, m_Waiting);
            if (m_Waiting.size() == before) {
                m_Done.insert(definition.Name);
                result.push_back(
                    {std::string(definition.Name), text, definition.English, definition.Source});
                m_Waiting.pop_back();
            }
        }
        std::reverse(result.begin(), result.end());
        return result;
    }

private:
    static constexpr std::uint32_t AllPacks = 0xFFFFFFFF;

    // The conversion was built before, so every name is known, and no definition leads back to itself.
    // The definition of a unit may use a unit of a pack that the catalogue does not have.
    CDefinition definitionOf(std::string_view name) const {
        const std::optional<CDefinition> found = m_Catalogue.find(name);
        return found ? *found : CTable::definition(CTable::find(name, AllPacks));
    }

    CMeaning meaningOf(std::string_view name) const {
        std::optional<CMeaning> found = m_Catalogue.meaning(name);
        return found ? *std::move(found) : CTable::meaning(CTable::find(name, AllPacks));
    }

    void addNames(std::string_view text, std::vector<std::string_view>& names) const {
        CDefinitionReader reader(text);
        for (CTerm term = reader.next(); term.isFactor(); term = reader.next()) {
            if (term.Kind == eTerm::NAME && m_Done.count(term.Text) == 0) {
                names.push_back(definitionOf(term.Text).Name);
            }
        }
    }

    // Returns the text of the definition. If a built-in definition uses a name that the program has given
    // another meaning, its text is written in base units instead.
    std::string textOf(const CDefinition& definition) const {
        CDefinitionReader reader(definition.Text);
        for (CTerm term = reader.next(); term.isFactor() && definition.Pack != ePack::OWN;
             term = reader.next()) {
            if (term.Kind == eTerm::NAME && m_Catalogue.packOf(term.Text) == ePack::OWN) {
                return exact::definitionOf(meaningOf(definition.Name));
            }
        }
        return definition.Text;
    }

    const CCatalogue& m_Catalogue;
    std::vector<std::string_view> m_Waiting;
    std::set<std::string_view> m_Done;
};

CCertifiedNumber certified(const CFactor& factor, std::string text) {
    const CQuotient wholes = CParts(factor.radicand()).wholes();
    return {false,         wholes.Numerator.toString(),    wholes.Denominator.toString(),
            factor.root(), factor.piExponent().toString(), std::move(text)};
}

// ---- JSON ----

std::string jsonText(std::string_view text) {
    std::string result = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            result += '\\';
            result += c;
        } else if (static_cast<unsigned char>(c) < 0x20) {
            constexpr char Hex[] = "0123456789abcdef";
            result += "\\u00";
            result += Hex[c >> 4];
            result += Hex[c & 15];
        } else {
            result += c;
        }
    }
    return result + '"';
}

std::string_view json(bool value) { return value ? "true" : "false"; }

std::string json(const CCertifiedNumber& number) {
    return concatenate({"{\"negative\": ", json(number.IsNegative), ", \"numerator\": \"",
                        number.Numerator, "\", \"denominator\": \"", number.Denominator,
                        "\", \"root\": ", std::to_string(number.Root), ", \"pi\": \"", number.Pi,
                        "\", \"text\": ", jsonText(number.Text), "}"});
}

std::string json(const CCertifiedDefinition& definition) {
    return concatenate({"{\"name\": ", jsonText(definition.Name), ", \"definition\": ",
                        definition.Text.empty() ? "null" : jsonText(definition.Text),
                        ", \"english\": ", jsonText(definition.English),
                        ", \"source\": ", jsonText(definition.Source), "}"});
}

}  // namespace

std::string CCertificate::toText() const {
    const bool isScaled = Factor.Text != "1";
    std::string text =
        concatenate({"x ", From, " = ", isScaled ? Factor.Text : "", isScaled ? "·x" : "x"});
    if (Offset.Text != "0") {
        const std::string_view offset = Offset.Text;
        text += concatenate(
            {Offset.IsNegative ? " - " : " + ", offset.substr(Offset.IsNegative ? 1 : 0)});
    }
    text += concatenate({" ", To, "\n"});
    for (const CCertifiedDefinition& definition : Definitions) {
        const bool isNamed = !definition.English.empty();
        text +=
            concatenate({"  ", definition.Name, " = ",
                         definition.Text.empty() ? "base unit" : std::string_view(definition.Text),
                         isNamed ? " (" : "", definition.English, isNamed ? ")" : "",
                         definition.Source.empty() ? "" : ": ", definition.Source, "\n"});
    }
    if (!KeepsMarks) {
        text += "  The two differ by radian, steradian or bit, which count as 1.\n";
    }
    return concatenate({text, "  ", Rounded, "\n  mensor ", Version, "\n"});
}

std::string CCertificate::toJson() const {
    std::string definitions;
    for (const CCertifiedDefinition& definition : Definitions) {
        definitions += definitions.empty() ? "" : ", ";
        definitions += json(definition);
    }
    return concatenate({"{\"from\": ", jsonText(From), ", \"to\": ", jsonText(To),
                        ", \"units\": ", jsonText(Units), ", \"keepsMarks\": ", json(KeepsMarks),
                        ", \"definitions\": [", definitions, "], \"factor\": ", json(Factor),
                        ", \"offset\": ", json(Offset), ", \"rounded\": ", jsonText(Rounded),
                        ", \"version\": ", jsonText(Version), "}"});
}

CCertificate certify(std::string_view from, std::string_view to, const CCatalogue& catalogue) {
    const CConversion conversion = CConversion::between(from, to, catalogue);
    CCertificate result;
    result.From = from;
    result.To = to;
    result.Units = conversion.to().unitsText();
    result.KeepsMarks = conversion.keepsMarks();
    CCollector collector(catalogue);
    collector.add(to);
    collector.add(from);
    result.Definitions = collector.collect();
    result.Factor = certified(conversion.exactFactor(), conversion.factor());
    const COffset offset = conversion.exactOffset();
    result.Offset = certified(offset.Size, conversion.offset());
    result.Offset.IsNegative = offset.Sign < 0;
    if (offset.Sign == 0) {
        result.Offset.Numerator = "0";
    }
    result.Rounded =
        "Only the result is rounded, once, to the nearest double, ties to even: by at most half a "
        "unit "
        "in its last place.";
    result.Version = MENSOR_EXACT_VERSION;
    return result;
}

}  // namespace mensor::exact

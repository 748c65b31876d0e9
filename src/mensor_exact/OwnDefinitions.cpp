#include "mensor_exact/OwnDefinitions.h"

#include "mensor_exact/DefinitionReader.h"
#include "mensor_exact/Parts.h"
#include "mensor_exact/concatenate.h"

namespace mensor::exact {

namespace {

// Returns the definition of a factor. CFactor::toString() is one, unless it has the root of a quotient.
std::string definitionOf(const CFactor& factor) {
    if (factor.root() == 1 || CParts(factor.radicand()).wholes().Denominator.isOne()) {
        return factor.toString();
    }
    const CQuotient wholes = CParts(factor.radicand()).wholes();
    const std::string power = "^(1/" + std::to_string(factor.root()) + ")";
    const CExponent pi = factor.piExponent();
    return concatenate({wholes.Numerator.toString(), power, "/", wholes.Denominator.toString(),
                        power, pi.isZero() ? "" : "·π^(", pi.isZero() ? "" : pi.toString(),
                        pi.isZero() ? "" : ")"});
}

}  // namespace

bool uses(std::string_view text, std::string_view name) {
    CDefinitionReader reader(text);
    for (CTerm term = reader.next(); term.isFactor(); term = reader.next()) {
        if (term.Kind == eTerm::NAME && term.Text == name) {
            return true;
        }
    }
    return false;
}

std::string definitionOf(const CMeaning& meaning) {
    const std::string units = meaning.unitsText();
    std::string text = meaning.factor().isOne() ? units : definitionOf(meaning.factor());
    if (!meaning.factor().isOne() && units != "1") {
        text += " " + units;
    }
    if (!meaning.offset().isZero()) {
        // If there is an offset, the factor is a fraction.
        text += ", offset " + (meaning.offset() / meaning.factor().radicand()).toString();
    }
    return text;
}

void COwnDefinitions::add(std::string_view name, CEntry entry, bool takesAway) {
    if (takesAway) {
        if (uses(entry.Text, name)) {
            entry.Text = definitionOf(entry.Meaning);
        }
        for (auto& [other, own] : Entries) {
            if (uses(own.Text, name)) {
                own.Text = definitionOf(own.Meaning);
            }
        }
    }
    Entries.emplace(name, std::move(entry));
    TakesAway = TakesAway || takesAway;
}

CCatalogueBuilder::CCatalogueBuilder(const CCatalogue& catalogue)
    : m_Own(catalogue.m_Own == nullptr ? std::make_shared<COwnDefinitions>()
                                       : std::make_shared<COwnDefinitions>(*catalogue.m_Own)),
      m_Catalogue(catalogue) {
    m_Catalogue.m_Own = m_Own;
}

}  // namespace mensor::exact

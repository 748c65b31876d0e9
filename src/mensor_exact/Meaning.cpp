#include "mensor_exact/Meaning.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "mensor_exact/Error.h"
#include "mensor_exact/ShortText.h"
#include "mensor_exact/UnitsWriter.h"
#include "mensor_exact/concatenate.h"
#include "mensor_exact/slots.h"

namespace mensor::exact {

namespace {

// The name of a quantity and its exponents, in the order of SlotNames.
struct CKind {
    std::int8_t A, K, cd, kg, m, mol, s;
    CShortText<21> Name;
};

constexpr CKind Kinds[] = {
    {0, 0, 0, 0, 1, 0, 0, "length"},
    {0, 0, 0, 1, 0, 0, 0, "mass"},
    {0, 0, 0, 0, 0, 0, 1, "time"},
    {1, 0, 0, 0, 0, 0, 0, "electric current"},
    {0, 1, 0, 0, 0, 0, 0, "temperature"},
    {0, 0, 0, 0, 0, 1, 0, "amount of substance"},
    {0, 0, 1, 0, 0, 0, 0, "luminous intensity"},
    {0, 0, 0, 0, 2, 0, 0, "area"},
    {0, 0, 0, 0, 3, 0, 0, "volume"},
    {0, 0, 0, 0, 1, 0, -1, "speed"},
    {0, 0, 0, 0, 1, 0, -2, "acceleration"},
    {0, 0, 0, 0, 0, 0, -1, "frequency"},
    {0, 0, 0, 1, 1, 0, -2, "force"},
    {0, 0, 0, 1, -1, 0, -2, "pressure"},
    {0, 0, 0, 1, 2, 0, -2, "energy"},
    {0, 0, 0, 1, 2, 0, -3, "power"},
    {0, 0, 0, 1, -3, 0, 0, "density"},
    {0, 0, 0, 1, 0, 0, -1, "mass flow"},
    {0, 0, 0, 0, 3, 0, -1, "volume flow"},
    {0, 0, 0, 1, -1, 0, -1, "viscosity"},
    {0, 0, 0, 0, 2, 0, -1, "kinematic viscosity"},
    {0, 0, 0, 0, 2, 0, -2, "absorbed dose"},
    {1, 0, 0, 0, 0, 0, 1, "electric charge"},
    {-1, 0, 0, 1, 2, 0, -3, "voltage"},
    {-2, 0, 0, 1, 2, 0, -3, "electric resistance"},
    {2, 0, 0, -1, -2, 0, 3, "electric conductance"},
    {2, 0, 0, -1, -2, 0, 4, "capacitance"},
    {-2, 0, 0, 1, 2, 0, -2, "inductance"},
    {-1, 0, 0, 1, 2, 0, -2, "magnetic flux"},
    {-1, 0, 0, 1, 0, 0, -2, "magnetic flux density"},
    {0, 0, 1, 0, -2, 0, 0, "illuminance"},
    {0, 0, 0, 0, 0, 1, -1, "catalytic activity"},
};

[[noreturn, gnu::cold]] void throwOffset(const CMeaning& meaning) {
    throw CError(eError::OFFSET_IN_PRODUCT,
                 concatenate({"a unit with an offset, ", meaning.toString(), ", in a product"}));
}

void requireNoOffset(const CMeaning& meaning) {
    if (!meaning.offset().isZero()) {
        throwOffset(meaning);
    }
}

[[noreturn]] void throwNotRational() {
    throw CError(eError::OFFSET_NOT_RATIONAL,
                 "a unit whose factor has π or a root cannot have an offset");
}

// Multiplies the dimensions that are not in the SI. Few units have such a dimension.
[[gnu::cold]] std::vector<CPower> multiplied(std::vector<CPower> powers,
                                             const std::vector<CPower>& others,
                                             CExponent exponent) {
    for (const CPower& power : others) {
        const auto place =
            std::lower_bound(powers.begin(), powers.end(), power,
                             [](const CPower& a, const CPower& b) { return a.Name < b.Name; });
        const CExponent added = power.Exponent * exponent;
        if (place == powers.end() || place->Name != power.Name) {
            powers.insert(place, {power.Name, added});
        } else if ((place->Exponent = place->Exponent + added).isZero()) {
            powers.erase(place);
        }
    }
    return powers;
}

}  // namespace

CMeaning::CMeaning() noexcept = default;
CMeaning::CMeaning(const CMeaning& other) = default;
[[gnu::hot]] CMeaning::CMeaning(CMeaning&& other) noexcept = default;
CMeaning& CMeaning::operator=(const CMeaning& other) {
    CMeaning copy = other;  // if this throws, nothing has changed
    return *this = std::move(copy);
}
CMeaning& CMeaning::operator=(CMeaning&& other) noexcept = default;
[[gnu::hot]] CMeaning::~CMeaning() = default;

CMeaning::CMeaning(const CSmallMeaning& small)
    : m_Factor(small.Factor, static_cast<int>(small.Pi)), m_Offset(small.Offset) {
    static_assert(CSmallMeaning::Slots == Slots);
    for (std::size_t slot = 0; slot < Slots; ++slot) {
        const int halves{small.Halves[slot]};
        m_Exponents[slot] = halves % 2 == 0 ? CExponent(halves / 2) : CExponent(halves, 2);
    }
    if (small.OwnHalves != 0) {
        m_Others.push_back({std::string(small.Own), CExponent(small.OwnHalves, 2)});
    }
}

bool CMeaning::toSmall(CSmallMeaning& small) const noexcept {
    small = CSmallMeaning();
    const auto toHalves = [](CExponent exponent, std::int8_t& halves) {
        const int value = exponent.numerator() * 2 / exponent.denominator();
        halves = static_cast<std::int8_t>(value);
        return exponent.denominator() <= 2 && value >= -CSmallMeaning::LargestHalf &&
               value <= CSmallMeaning::LargestHalf;
    };
    if (m_Factor.root() != 1 || m_Others.size() > 1 || !toHalves(m_Factor.piExponent(), small.Pi) ||
        small.Pi % 2 != 0 || !m_Factor.radicand().toSmall(small.Factor) ||
        !m_Offset.toSmall(small.Offset)) {
        return false;
    }
    small.Pi = static_cast<std::int8_t>(small.Pi / 2);
    for (std::size_t slot = 0; slot < Slots; ++slot) {
        if (!toHalves(m_Exponents[slot], small.Halves[slot])) {
            return false;
        }
    }
    if (!m_Others.empty()) {
        small.Own = m_Others[0].Name;
        return toHalves(m_Others[0].Exponent, small.OwnHalves);
    }
    return true;
}

[[gnu::cold]] CMeaning CMeaning::base(std::string_view name) {
    static_assert(SlotCount == Slots);
    if (name.empty()) {
        throw CError(eError::SYNTAX, "a dimension without a name");
    }
    CMeaning result;
    const std::size_t slot = slotOf(name);
    if (slot < Slots) {
        result.m_Exponents[slot] = 1;
    } else {
        result.m_Others.push_back({std::string(name), 1});
    }
    return result;
}

[[gnu::cold]] std::vector<CPower> CMeaning::dimensions() const {
    std::vector<CPower> result;
    for (std::size_t slot = 0; slot < Dimensions; ++slot) {
        if (!m_Exponents[slot].isZero()) {
            result.push_back({std::string(SlotNames[slot]), m_Exponents[slot]});
        }
    }
    result.insert(result.end(), m_Others.begin(), m_Others.end());
    return result;
}

[[gnu::cold]] std::vector<CPower> CMeaning::marks() const {
    std::vector<CPower> result;
    for (std::size_t slot = Dimensions; slot < Slots; ++slot) {
        if (!m_Exponents[slot].isZero()) {
            result.push_back({std::string(SlotNames[slot]), m_Exponents[slot]});
        }
    }
    return result;
}

[[gnu::cold]] CExponent CMeaning::exponentOf(std::string_view name) const noexcept {
    const std::size_t slot = slotOf(name);
    if (slot < Slots) {
        return m_Exponents[slot];
    }
    for (const CPower& power : m_Others) {
        if (power.Name == name) {
            return power.Exponent;
        }
    }
    return 0;
}

bool CMeaning::isCompatibleWith(const CMeaning& other) const noexcept {
    return std::equal(m_Exponents.begin(), m_Exponents.begin() + Dimensions,
                      other.m_Exponents.begin()) &&
           m_Others == other.m_Others;
}

bool CMeaning::hasMarksOf(const CMeaning& other) const noexcept {
    return std::equal(m_Exponents.begin() + Dimensions, m_Exponents.end(),
                      other.m_Exponents.begin() + Dimensions);
}

[[gnu::cold]] CMeaning CMeaning::scaled(const CFactor& factor) const {
    CMeaning result = *this;
    result.m_Factor = m_Factor * factor;
    if (!m_Offset.isZero() && !result.m_Factor.isRational()) {
        throwNotRational();
    }
    return result;
}

[[gnu::cold]] CMeaning CMeaning::shifted(const CFraction& offset) const {
    if (offset.isZero()) {
        return *this;
    }
    if (!m_Factor.isRational()) {
        throwNotRational();
    }
    CMeaning result = *this;
    result.m_Offset = m_Offset + m_Factor.radicand() * offset;
    if (result.m_Offset.needsMoreThan(CFactor::MostBits)) {
        throw CError(eError::TOO_LARGE, "an offset of more than 16384 bits");
    }
    return result;
}

[[gnu::cold]] CMeaning CMeaning::difference() const {
    CMeaning result = *this;
    result.m_Offset = {};
    return result;
}

// Multiplies everything except the exponents of the slots by other^exponent.
void CMeaning::multiplyRest(const CMeaning& other, CExponent exponent) {
    CFactor factor = exponent == CExponent(1)    ? m_Factor * other.m_Factor
                     : exponent == CExponent(-1) ? m_Factor / other.m_Factor
                                                 : m_Factor * other.m_Factor.power(exponent);
    if (!other.m_Others.empty()) {
        m_Others = multiplied(m_Others, other.m_Others, exponent);
    }
    m_Factor = std::move(factor);
}

[[gnu::hot]] void CMeaning::multiplyBy(const CMeaning& other, CExponent exponent) {
    requireNoOffset(*this);
    requireNoOffset(other);
    if (exponent.isZero()) {
        return;
    }
    CExponents exponents = m_Exponents;
    for (std::size_t slot = 0; slot < Slots; ++slot) {
        if (!other.m_Exponents[slot].isZero()) {
            exponents[slot] = exponents[slot] + other.m_Exponents[slot] * exponent;
        }
    }
    if (!other.m_Factor.isOne() || !other.m_Others.empty()) {
        multiplyRest(other, exponent);
    }
    m_Exponents = exponents;
}

CMeaning CMeaning::power(CExponent exponent) const {
    if (exponent == CExponent(1)) {
        return *this;
    }
    CMeaning result;
    result.multiplyBy(*this, exponent);
    return result;
}

CMeaning operator*(const CMeaning& a, const CMeaning& b) {
    CMeaning result = a;
    result.multiplyBy(b);
    return result;
}

CMeaning operator/(const CMeaning& a, const CMeaning& b) {
    CMeaning result = a;
    result.multiplyBy(b, -1);
    return result;
}

[[gnu::cold]] bool operator==(const CMeaning& a, const CMeaning& b) noexcept {
    return a.m_Exponents == b.m_Exponents && a.m_Others == b.m_Others && a.m_Factor == b.m_Factor &&
           a.m_Offset == b.m_Offset;
}

[[gnu::cold]] std::string CMeaning::unitsText() const {
    CUnitsWriter writer;
    for (std::size_t slot = 0; slot < Slots; ++slot) {
        writer.add(SlotNames[slot], m_Exponents[slot]);
    }
    for (const CPower& power : m_Others) {
        writer.add(power.Name, power.Exponent);
    }
    return writer.text();
}

[[gnu::cold]] std::string CMeaning::toString() const {
    const std::string units = unitsText();
    const std::string factor = m_Factor.toString();
    std::string text = units;
    if (units == "1") {
        text = factor;
    } else if (!m_Factor.isOne()) {
        text = factor + " " + units;
    }
    if (!m_Offset.isZero()) {
        text +=
            m_Offset.isNegative() ? " - " + (-m_Offset).toString() : " + " + m_Offset.toString();
    }
    return text;
}

// Returns an empty text if the library has no name for these dimensions.
[[gnu::cold]] std::string_view CMeaning::nameOfKind() const noexcept {
    if (!m_Others.empty()) {
        return {};
    }
    for (const CKind& kind : Kinds) {
        const std::array<CExponent, Dimensions> exponents = {kind.A, kind.K,   kind.cd, kind.kg,
                                                             kind.m, kind.mol, kind.s};
        if (std::equal(exponents.begin(), exponents.end(), m_Exponents.begin())) {
            return kind.Name;
        }
    }
    return {};
}

[[gnu::cold]] bool CMeaning::hasNamedKind() const noexcept {
    const bool hasNone =
        m_Others.empty() && std::all_of(m_Exponents.begin(), m_Exponents.begin() + Dimensions,
                                        [](CExponent e) { return e == CExponent(0); });
    return hasNone || !nameOfKind().empty();
}

[[gnu::cold]] std::string CMeaning::kind() const {
    const std::vector<CPower> own = dimensions();
    if (own.empty()) {
        const std::vector<CPower> marked = marks();
        if (marked.size() == 1 && marked[0].Exponent == CExponent(1)) {
            return marked[0].Name == "rad"  ? "angle"
                   : marked[0].Name == "sr" ? "solid angle"
                                            : "information";
        }
        return "number";
    }
    const std::string_view name = nameOfKind();
    if (!name.empty()) {
        return std::string(name);
    }
    CUnitsWriter writer;
    for (const CPower& power : own) {
        writer.add(power.Name, power.Exponent);
    }
    return writer.text();
}

}  // namespace mensor::exact

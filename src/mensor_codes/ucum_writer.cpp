// ucum_writer.cpp: writes a single atom if there is one with this meaning, else a code of ucum_usual.def, else
// the cheapest of these. Each unit, exponent and prefix has a cost, so that short codes win.
//
//     an atom with a prefix or an exponent                   "mm[Hg]", "[in_i]2"
//     units of the SI with one prefix or a power of ten      "kJ/(kg.K)", "10*5.K/m"
//     a power of a unit outside the SI and one of the above  "uL/h", "[lb_av]/[ft_i]2"
#include "mensor_codes/ucum_writer.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "mensor_codes/CodeTable.h"
#include "mensor_codes/UcumAtoms.h"
#include "mensor_codes/ucum_reader.h"
#include "mensor_exact/Exponent.h"
#include "mensor_exact/slots.h"

namespace mensor::codes {

namespace {

using exact::CSmallFraction;
using exact::CSmallMeaning;

constexpr int UnitCost = 2;        // an atom, or a unit of the SI in a product
constexpr int OtherUnitCost = 6;   // a unit outside the SI in a product
constexpr int PowerOfTenCost = 6;  // a factor such as "10*5"
constexpr int DivisorCost = 1;     // a prefix in a divisor
constexpr int SynonymCost = 20;    // an atom for which another code is preferred

constexpr std::string_view Usual[] = {
#define MENSOR_USUAL(code) code,
#include "mensor_codes/ucum_usual.def"
#undef MENSOR_USUAL
};

// Units of the SI with special names. They make products shorter, and their factor is one.
constexpr std::string_view Named[] = {"N", "Pa", "J",   "W", "C", "V",  "F",
                                      "S", "Wb", "Ohm", "T", "H", "lm", "lx"};

// Units outside the SI that are used in products.
constexpr std::string_view Others[] = {
    "min",     "h",        "d",       "wk",       "mo",       "a",        "L",
    "dL",      "mL",       "uL",      "t",        "bar",      "mbar",     "deg",
    "'",       "''",       "gon",     "circ",     "eV",       "u",        "cal",
    "kcal",    "[Btu_IT]", "[Btu]",   "[in_i]",   "[ft_i]",   "[yd_i]",   "[mi_i]",
    "[nmi_i]", "[lb_av]",  "[oz_av]", "[lbf_av]", "[gal_us]", "[gal_br]", "[psi]",
    "atm",     "By",       "[degR]",  "[gr]",     "mm[Hg]",   "[g]",      "U"};

// A unit with an exponent.
struct CPower {
    std::string Unit;
    int Exponent;
};

struct CProduct {
    std::vector<CPower> Powers;
    int Tens = 0;  // the exponent of a power of ten before them
    int Cost = 0;
};

std::string prefixed(const CUcumPrefix* prefix, std::string_view unit) {
    return std::string(prefix != nullptr ? prefix->Symbol : std::string_view()).append(unit);
}

// Finds the prefix with this factor; null for the factor 1. Returns false if there is none.
bool findPrefix(const CSmallFraction& factor, const CUcumPrefix*& prefix) {
    prefix = nullptr;
    if (factor == CSmallFraction(1)) {
        return true;
    }
    for (const CUcumPrefix& candidate : UcumPrefixes) {
        if (candidate.Factor == factor) {
            prefix = &candidate;
            return true;
        }
    }
    return false;
}

// Returns whether the meaning has a factor 10^tens.
bool isPowerOfTen(const CSmallMeaning& meaning, int& tens) {
    tens = meaning.Factor.Twos;
    return meaning.Pi == 0 && meaning.Factor == CSmallFraction(1, meaning.Factor.Twos);
}

CSmallMeaning meaningOf(std::string_view code) {
    CUcumUnit unit;
    findUcumUnit(code, unit);
    CSmallMeaning meaning = CUcumAtoms::meaning(unit.Atom);
    if (unit.Prefix != nullptr) {
        meaning.Factor.multiply(unit.Prefix->Factor);
    }
    return meaning;
}

std::string textOf(const CProduct& product) {
    std::string above;
    std::string below;
    int divisors = 0;
    if (product.Tens != 0) {
        above = "10*" + std::to_string(product.Tens);
    }
    for (const CPower& power : product.Powers) {
        std::string& side = power.Exponent > 0 ? above : below;
        side += side.empty() ? "" : ".";
        side += power.Unit;
        if (std::abs(power.Exponent) != 1) {
            side += std::to_string(std::abs(power.Exponent));
        }
        divisors += power.Exponent < 0 ? 1 : 0;
    }
    if (divisors > 0) {
        above += divisors > 1 ? "/(" + below + ")" : "/" + below;
    }
    return above.empty() ? "1" : above;
}

// Finds the cheapest product for a meaning whose numbers fit into 64 bits.
class CSearch {
public:
    explicit CSearch(const CSmallMeaning& meaning) : m_Meaning(meaning) {
        m_Atoms.reserve(CUcumAtoms::size());
        for (std::size_t row = 0; row < CUcumAtoms::size(); ++row) {
            if (!CUcumAtoms::isRefused(row)) {
                m_Atoms.push_back({row, CUcumAtoms::meaning(row)});
            }
        }
    }

    // Returns the atom with this meaning, or "1" for the number one. Empty if there is none.
    std::string atomAlone() const {
        if (m_Meaning == CSmallMeaning()) {
            return "1";
        }
        for (const CAtom& atom : m_Atoms) {
            if (atom.Meaning == m_Meaning && !CUcumAtoms::isSynonym(atom.Row)) {
                return std::string(CUcumAtoms::codeOf(atom.Row));
            }
        }
        return {};
    }

    // Returns the cheapest product. Empty if there is none.
    std::string product() {
        atom(m_Meaning, {});
        if (!m_Meaning.Offset.isZero()) {
            return text();
        }
        coherent(m_Meaning, {});
        if (m_Meaning.hasUnitsOf(CSmallMeaning())) {
            return text();
        }
        for (const int exponent : {2, 3, -1, -2, -3}) {
            atomPower(exponent);
        }
        if (m_IsFound && m_Best.Cost <= OtherUnitCost + UnitCost) {
            return text();  // no product below is cheaper
        }
        for (const std::string_view other : Others) {
            const CSmallMeaning unit = meaningOf(other);
            for (const int exponent : {-1, 1, -2, 2, -3, 3}) {
                CSmallMeaning rest = m_Meaning;
                if (rest.multiply(unit, -2 * exponent)) {
                    CProduct product;
                    product.Powers.push_back({std::string(other), exponent});
                    product.Cost = OtherUnitCost + costOf(exponent);
                    atom(rest, product);
                    coherent(rest, product);
                }
            }
        }
        return text();
    }

private:
    struct CAtom {
        std::size_t Row;
        CSmallMeaning Meaning;
    };

    static int costOf(const CAtom& atom) {
        return UnitCost + (CUcumAtoms::isSynonym(atom.Row) ? SynonymCost : 0);
    }
    static int costOf(int exponent) { return std::abs(exponent) - 1; }
    static int costOf(const CUcumPrefix* prefix) {
        if (prefix == nullptr) {
            return 0;
        }
        switch (prefix->Symbol[0]) {
            case 'k':
            case 'M':
            case 'G':
            case 'm':
            case 'u':
            case 'n':
            case 'p': return 1;
            case 'd':
            case 'c':
            case 'h': return 3;
            default: return 2;
        }
    }

    std::string text() const { return m_IsFound ? textOf(m_Best) : std::string(); }

    // Keeps the product of both if it is the cheapest so far. Factors of `first` precede those of `second`.
    void offer(const CProduct& first, const CProduct& second) {
        const int cost = first.Cost + second.Cost;
        if (m_IsFound && m_Best.Cost <= cost) {
            return;
        }
        m_IsFound = true;
        m_Best.Cost = cost;
        m_Best.Tens = second.Tens;
        m_Best.Powers = second.Powers;
        m_Best.Powers.insert(m_Best.Powers.begin(), first.Powers.begin(), first.Powers.end());
    }

    // Offers atoms with or without a prefix.
    void atom(const CSmallMeaning& meaning, const CProduct& before) {
        for (const CAtom& atom : m_Atoms) {
            if (!atom.Meaning.hasUnitsOf(meaning) || atom.Meaning.Pi != meaning.Pi ||
                !(atom.Meaning.Offset == meaning.Offset)) {
                continue;
            }
            CSmallFraction factor = meaning.Factor;
            const CUcumPrefix* prefix = nullptr;
            if (factor.multiply(atom.Meaning.Factor.inverse()) && findPrefix(factor, prefix) &&
                (prefix == nullptr || CUcumAtoms::takesPrefixes(atom.Row))) {
                CProduct product;
                product.Powers.push_back({prefixed(prefix, CUcumAtoms::codeOf(atom.Row)), 1});
                product.Cost = costOf(atom) + costOf(prefix);
                offer(before, product);
            }
        }
    }

    // Offers atoms with an exponent, with or without a prefix.
    void atomPower(int exponent) {
        for (const CAtom& atom : m_Atoms) {
            CSmallMeaning power;
            if (!power.multiply(atom.Meaning, 2 * exponent) || !power.hasUnitsOf(m_Meaning) ||
                power.Pi != m_Meaning.Pi) {
                continue;
            }
            const auto tryPrefix = [&](const CUcumPrefix* prefix) {
                CSmallFraction factor = prefix != nullptr ? prefix->Factor : CSmallFraction(1);
                factor = exponent < 0 ? factor.inverse() : factor;
                if (factor.raise(std::abs(exponent)) && factor.multiply(power.Factor) &&
                    factor == m_Meaning.Factor) {
                    CProduct product;
                    product.Powers.push_back(
                        {prefixed(prefix, CUcumAtoms::codeOf(atom.Row)), exponent});
                    product.Cost = costOf(atom) + costOf(exponent) + costOf(prefix);
                    offer({}, product);
                }
            };
            tryPrefix(nullptr);
            for (const CUcumPrefix& prefix : UcumPrefixes) {
                if (CUcumAtoms::takesPrefixes(atom.Row)) {
                    tryPrefix(&prefix);
                }
            }
        }
    }

    // Offers products of base units, with or without one unit of Named. The meaning has no offset.
    void coherent(const CSmallMeaning& meaning, const CProduct& before) {
        int tens = 0;
        if (!isPowerOfTen(meaning, tens)) {
            return;
        }
        std::vector<CPower> powers;
        if (bases(meaning, powers)) {
            offerPrefixed(powers, tens, before);
        }
        for (const std::string_view name : Named) {
            const CSmallMeaning unit = meaningOf(name);
            for (const int exponent : {1, -1}) {
                CSmallMeaning rest = meaning;
                if (!rest.multiply(unit, -2 * exponent)) {
                    continue;
                }
                powers.assign(1, {std::string(name), exponent});
                if (bases(rest, powers)) {
                    offerPrefixed(powers, tens, before);
                }
            }
        }
    }

    // Appends the base units of a meaning. Returns false if UCUM has no units for them.
    static bool bases(const CSmallMeaning& meaning, std::vector<CPower>& powers) {
        constexpr std::size_t Order[] = {3, 4, 5, 2, 0, 1, 6, 7, 8, 9};  // kg first, then m
        for (const std::size_t slot : Order) {
            const std::int8_t halves = meaning.Halves[slot];
            if (halves % 2 != 0) {
                return false;
            }
            if (halves != 0) {
                powers.push_back({std::string(exact::SlotNames[slot]), halves / 2});
            }
        }
        if (meaning.OwnHalves == 0) {
            return true;
        }
        const bool isArbitrary = CUcumAtoms::find(meaning.Own) != CUcumAtoms::None;
        powers.push_back({std::string(meaning.Own), meaning.OwnHalves / 2});
        return isArbitrary && meaning.OwnHalves % 2 == 0;
    }

    // Offers the product with the power of ten as a prefix of one unit, or as the first factor.
    void offerPrefixed(const std::vector<CPower>& powers, int tens, const CProduct& before) {
        CProduct product;
        product.Powers = powers;
        for (const CPower& power : powers) {
            product.Cost += UnitCost + costOf(power.Exponent);
        }
        if (tens == 0) {
            offer(before, product);
            return;
        }
        for (std::size_t i = 0; i < powers.size(); ++i) {
            CProduct changed = product;
            if (addPrefix(changed.Powers[i], tens, changed.Cost)) {
                offer(before, changed);
            }
        }
        if (std::abs(tens) <= exact::CExponent::Largest) {
            product.Tens = tens;
            product.Cost += PowerOfTenCost;
            offer(before, product);
        }
    }

    // Turns the power of ten into a prefix of one unit. Returns false if there is no such prefix.
    static bool addPrefix(CPower& power, int tens, int& cost) {
        if (tens % power.Exponent != 0) {
            return false;
        }
        constexpr int Kilo = 3;
        const bool isMass = power.Unit == "kg";
        const int own = tens / power.Exponent + (isMass ? Kilo : 0);
        const std::string unit = isMass ? "g" : power.Unit;
        const std::size_t atom = CUcumAtoms::find(unit);
        const CUcumPrefix* prefix = nullptr;
        if (!findPrefix(CSmallFraction(1, own), prefix) || !CUcumAtoms::takesPrefixes(atom)) {
            return false;
        }
        power.Unit = prefixed(prefix, unit);
        cost += costOf(prefix) + (power.Exponent < 0 ? DivisorCost : 0);
        return true;
    }

    const CSmallMeaning& m_Meaning;
    std::vector<CAtom> m_Atoms;
    CProduct m_Best;
    bool m_IsFound = false;
};

void findSynonyms(const exact::CMeaning& meaning, CMatch& match) {
    for (std::size_t row = 0; row < CUcumAtoms::size(); ++row) {
        const std::string_view code = CUcumAtoms::codeOf(row);
        if (!CUcumAtoms::isRefused(row) && code != match.Code &&
            exact::CMeaning(CUcumAtoms::meaning(row)) == meaning) {
            match.Synonyms.emplace_back(code);
        }
    }
}

// Finds the nearest of all atoms and usual codes.
void findNearest(const exact::CMeaning& meaning, CMatch& match) {
    if (!meaning.offset().isZero()) {
        return;
    }
    const double size = std::log(meaning.factor().toDouble());
    double least = HUGE_VAL;
    const auto offer = [&](std::string_view code, const exact::CMeaning& other) {
        if (!other.offset().isZero() || !other.isCompatibleWith(meaning) ||
            !other.hasMarksOf(meaning)) {
            return;
        }
        const double distance = std::fabs(std::log(other.factor().toDouble()) - size);
        if (distance < least) {
            least = distance;
            match.Nearest = code;
            match.Deviation = deviation(other.factor(), meaning.factor());
        }
    };
    for (std::size_t row = 0; row < CUcumAtoms::size(); ++row) {
        if (!CUcumAtoms::isRefused(row) && !CUcumAtoms::isSynonym(row)) {
            offer(CUcumAtoms::codeOf(row), exact::CMeaning(CUcumAtoms::meaning(row)));
        }
    }
    for (const std::string_view code : Usual) {
        offer(code, *readUcum(eSystem::UCUM, code).Meaning);
    }
}

// Returns the first usual code of this meaning. Empty if there is none.
std::string_view usualCode(const exact::CMeaning& meaning) {
    for (const std::string_view code : Usual) {
        if (*readUcum(eSystem::UCUM, code).Meaning == meaning) {
            return code;
        }
    }
    return {};
}

}  // namespace

CMatch ucumCodeFor(const exact::CMeaning& meaning) {
    CMatch match;
    CSmallMeaning small;
    if (meaning.toSmall(small)) {
        CSearch search(small);
        match.Code = search.atomAlone();
        if (match.Code.empty()) {
            match.Code = usualCode(meaning);
        }
        if (match.Code.empty()) {
            match.Code = search.product();
        }
    }
    findSynonyms(meaning, match);
    if (match.Code.empty()) {
        findNearest(meaning, match);
    }
    return match;
}

}  // namespace mensor::codes

// collisions.cpp: prints the products and quotients of two SI units that have the hash code of
// another unit, as a table of docs/reliability.md.
//
// They are computed from the hash codes, without building the products: the hash code of a product
// is the sum of the hash codes of its factors, each times 3·power − 2·root. A row is one hash code.
#include <iostream>
#include <map>
#include <set>
#include <string>
#include <vector>

#include <mensor/ProductUnit.h>
#include <mensor/SI.h>
#include <mensor/UnitFormat.h>
#include <mensor_checked/Meaning.h>

using namespace mensor;
using checked::CMeaning;

namespace {

struct Expression {
    std::string Text;
    CMeaning Meaning;
};

std::map<int, std::vector<Expression>> expressions;

// A radian, a steradian and a bit count as 1.
bool haveSameSize(const CMeaning& a, const CMeaning& b) {
    return a.isCompatibleWith(b) && a.factor() == b.factor() && a.offset() == b.offset();
}

void add(unsigned hash, const std::string& text, const CMeaning& meaning) {
    for (const Expression& other : expressions[static_cast<int>(hash)]) {
        if (haveSameSize(other.Meaning, meaning)) {
            return;  // both texts denote the same unit
        }
    }
    expressions[static_cast<int>(hash)].push_back({text, meaning});
}

}  // namespace

int main() {
    const std::vector<CUnitPtr> units{
        SI::Ampere(),  SI::Candela(),   SI::Kelvin(),  SI::Kilogram(),  SI::Meter(),
        SI::Mole(),    SI::Second(),    SI::Radian(),  SI::Steradian(), SI::Bit(),
        SI::Hertz(),   SI::Becquerel(), SI::Newton(),  SI::Joule(),     SI::Watt(),
        SI::Volt(),    SI::Ohm(),       SI::Weber(),   SI::Henry(),     SI::Gray(),
        SI::Sievert(), SI::Pascal(),    SI::Coulomb(), SI::Farad(),     SI::Siemens(),
        SI::Tesla(),   SI::Lumen(),     SI::Lux(),     SI::Katal()};
    const auto hash = [](const CUnitPtr& unit) { return static_cast<unsigned>(unit->hashCode()); };
    const auto name = [](const CUnitPtr& unit) { return toStdString(unit->getSymbol()); };

    add(0, "One", CMeaning());
    for (const CUnitPtr& a : units) {
        const CMeaning meaning = checked::meaningOf(a);
        add(hash(a), name(a), meaning);
        add(4U * hash(a), name(a) + "²", meaning.power(2));
        add(7U * hash(a), name(a) + "³", meaning.power(3));
        add(0U - 5U * hash(a), "1/" + name(a), meaning.power(-1));
        add(0U - 8U * hash(a), "1/" + name(a) + "²", meaning.power(-2));
    }
    for (std::size_t i = 0; i < units.size(); ++i) {
        for (std::size_t k = 0; k < units.size(); ++k) {
            const CUnitPtr &a = units[i], &b = units[k];
            const CMeaning left = checked::meaningOf(a), right = checked::meaningOf(b);
            if (i < k)
                add(hash(a) + hash(b), name(a) + "·" + name(b), left * right);
            if (i != k)
                add(hash(a) - 5U * hash(b), name(a) + "/" + name(b), left / right);
            if (i < k)
                add(0U - 5U * hash(a) - 5U * hash(b), "1/(" + name(a) + "·" + name(b) + ")",
                    (left * right).power(-1));
        }
    }

    std::set<std::string> rows;
    for (const auto& [code, group] : expressions) {
        if (group.size() > 1) {
            std::string row = "|";
            for (const Expression& expression : group) {
                row += (row.size() > 1 ? ", `" : " `") + expression.Text + "`";
            }
            rows.insert(row + " |\n");
        }
    }
    std::cout << "| One object for all of these |\n|---|\n";
    for (const std::string& row : rows) {
        std::cout << row;
    }
}

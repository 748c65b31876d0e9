// Growth_test.cpp: a unit from a text needs a bounded amount of memory, however many units there are.
//
// The operator new of this program counts the bytes, including those of the library.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <exception>
#include <iostream>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "mensor/ProductUnit.h"
#include "mensor/SI.h"
#include "mensor/Unit.h"
#include "mensor/UnitFormat.h"
#include "support/ClientUnit.h"
#include "support/Fork.h"
#include "support/Inside.h"
#include "support/Matchers.h"
#include "support/Random.h"
#include "support/operator_new.h"

namespace mensor {
namespace {

using test::CRandom;

#if defined(__arm__)
constexpr long BytesOfAUnit = 400, BytesOfAFactor = 16;
#else
constexpr long BytesOfAUnit = 700, BytesOfAFactor = 24;
#endif

// The names that consist of letters, in the order of the table.
std::vector<std::string> names() {
    std::vector<std::string> names;
    for (const auto& entry : CUnitFormat::names()) {
        const std::string name = text(entry.first);
        bool isPlain = !name.empty();
        for (const char c : name) {
            isPlain = isPlain && ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'));
        }
        if (isPlain) {
            names.push_back(name);
        }
    }
    return names;
}

struct Piece {
    std::string Name;
    int Pow;
    int Root;
};

using Pieces = std::vector<Piece>;

std::string textOf(const Pieces& pieces) {
    std::string text;
    for (const Piece& piece : pieces) {
        text += (text.empty() ? "" : "·") + piece.Name + "^" + std::to_string(piece.Pow) + ":" +
                std::to_string(piece.Root);
    }
    return text;
}

// `count` texts of `length` factors, each of a random name of `names`, a random exponent up to
// `pow` and a random root up to `root`.
std::vector<Pieces> shape(const std::vector<std::string>& names, std::size_t count,
                          std::size_t length, int pow = 1, int root = 1) {
    CRandom random;
    std::vector<Pieces> texts(count);
    for (Pieces& pieces : texts) {
        for (std::size_t i = 0; i < length; ++i) {
            const int sign = random(2) == 0 ? 1 : -1;
            pieces.push_back({names[random(names.size())],
                              sign * static_cast<int>(1 + random(static_cast<std::size_t>(pow))),
                              static_cast<int>(1 + random(static_cast<std::size_t>(root)))});
        }
    }
    return texts;
}

// Returns a text of `count` different names.
std::vector<Pieces> differentNames(const std::vector<std::string>& names, std::size_t count) {
    Pieces pieces;
    for (std::size_t i = 0; i < count; ++i) {
        pieces.push_back({names[i * names.size() / count], 1, 1});
    }
    return {pieces};
}

std::map<std::string, std::vector<Pieces>> shapes() {
    const std::vector<std::string> all = names();
    std::vector<std::string> prefixed;
    for (const std::string& name : all) {
        if (name.size() > 1 && (name[0] == 'k' || name[0] == 'm' || name[0] == 'M')) {
            prefixed.push_back(name);
        }
    }
    return {{"short and many", shape(all, 2000, 2)},
            {"of four factors", shape(all, 500, 4, 3)},
            {"long and few", shape(all, 3, 200)},
            {"powers", shape({"m", "s", "kg", "A"}, 500, 2, 60)},
            {"roots", shape({"m", "s", "kg", "A", "mol"}, 300, 3, 5, 6)},
            {"different names", differentNames(all, 300)},
            {"prefixed names", shape(prefixed, 1000, 3, 2)}};
}

// The texts of shapes().
std::map<std::string, std::vector<string_t>> writtenShapes() {
    std::map<std::string, std::vector<string_t>> written;
    for (const auto& [name, texts] : shapes()) {
        for (const Pieces& pieces : texts) {
            written[name].push_back(textOf(pieces));
        }
    }
    return written;
}

// The bytes on the heap, including the overhead of the allocator.
long bytesOnTheHeap() { return liveBytes + liveBlocks * static_cast<long>(sizeof(std::size_t)); }

// Compares bytes and units before and after.
class CGrowth {
public:
    CGrowth() : m_Units(CUnit::instances().size()), m_Bytes(bytesOnTheHeap()) {}

    // Checks the bytes of all units that were registered since the object was made.
    void expectBounded(const std::string& name) const {
        const long bytes = bytesOnTheHeap() - m_Bytes;
        long units = 0, factors = 0;
        for (const auto& entry : CUnit::instances()) {
            if (static_cast<std::size_t>(Inside::id(entry.second)) > m_Units) {
                ++units;
                factors += static_cast<long>(entry.second->elements().size());
            }
        }
        EXPECT_GT(units, 100) << name;
        EXPECT_LE(bytes, units * BytesOfAUnit + factors * BytesOfAFactor)
            << name << ": " << units << " units of " << factors << " factors took " << bytes
            << " bytes";
        std::cout << name << ": " << units << " units of " << factors << " factors, "
                  << (bytes - factors * BytesOfAFactor) / units << " bytes each and "
                  << BytesOfAFactor << " for each factor\n";
    }

private:
    std::size_t m_Units;
    long m_Bytes;
};

TEST(Growth, AUnitFromATextNeedsABoundedNumberOfBytes) {
    for (const auto& [name, texts] : writtenShapes()) {
        const CGrowth growth;
        for (const string_t& text : texts) {
            CUnit::fromString(text);
        }
        growth.expectBounded(name);
    }
}

TEST(Growth, AUnitWithACachedDimensionNeedsABoundedNumberOfBytes) {
    for (const auto& [name, texts] : writtenShapes()) {
        const CGrowth growth;
        for (const string_t& text : texts) {
            const CUnitPtr unit = CUnit::fromString(text);
            unit->getSystemUnit();
            try {
                unit->getConverterTo(unit->getDimension());
                unit->baseUnits();
            } catch (const std::logic_error&) {
                // A factor has an offset or is not a system unit.
            }
        }
        growth.expectBounded(name);
    }
}

// The number of entries in all caches of the algebra, without the entry 0 of the products.
std::size_t cacheEntries() {
    std::size_t count = 0;
    for (const auto& entry : CUnit::instances()) {
        const CUnitPtr& unit = entry.second;
        for (const auto* table : {&Inside::multiplyLookUp(unit), &Inside::divideLookUp(unit)}) {
            count += table->size() > 1 ? table->size() : 0;
        }
        count += Inside::powLookUp(unit).size() + Inside::rootLookUp(unit).size();
    }
    return count;
}

TEST(Growth, TextsAndDimensionsFillNoCacheEntryExceptTheFirst) {
    CUnit::fromString("m");
    const std::size_t before = cacheEntries();
    for (const char* text :
         {"m·kg·cd", "m^5", "m^-7/kg^3", "m^1:3", "m^-1:3", "cd^4:3/(s·mol^2)"}) {
        const CUnitPtr unit = CUnit::fromString(text);
        EXPECT_NE(unit, CProductUnit::one()) << text;
        unit->getSystemUnit();
        unit->baseUnits();
        unit->getConverterTo(unit->getDimension());
    }
    EXPECT_EQ(cacheEntries(), before);
}

TEST(Growth, TheAlgebraOfAClientFillsTheCaches) {
    const CUnitPtr unit = SI::Meter();
    const CUnitPtr other = CUnit::fromString("cd^9");
    unit->multiply(other);
    EXPECT_EQ(Inside::multiplyLookUp(unit).size(), static_cast<std::size_t>(Inside::id(other)) + 1);
    EXPECT_EQ(Inside::multiplyLookUp(unit).back(), unit->multiply(other));
    unit->pow(17);
    EXPECT_EQ(Inside::powLookUp(unit).size(), 16U);
}

// If a client puts a result into a cache, parsing a text returns that result.
TEST(Growth, TextsUseTheFilledCacheEntries) {
    const CUnitPtr m = SI::Meter(), s = SI::Second(), m5 = m->pow(5), one = CProductUnit::one();
    const CUnitPtr root = m->root(7), product = m->multiply(s), quotient = one->divide(m5);
    const CUnitPtr marker = SI::Lumen();
    Inside::powLookUp(m)[3] = marker;
    EXPECT_EQ(CUnit::fromString("m^5"), marker);
    Inside::powLookUp(m)[3] = m5;
    Inside::rootLookUp(m)[5] = marker;
    EXPECT_EQ(CUnit::fromString("m^1:7"), marker);
    Inside::rootLookUp(m)[5] = root;
    Inside::multiplyLookUp(m)[static_cast<std::size_t>(Inside::id(s))] = marker;
    EXPECT_EQ(CUnit::fromString("m·s"), marker);
    Inside::multiplyLookUp(m)[static_cast<std::size_t>(Inside::id(s))] = product;
    Inside::divideLookUp(one)[static_cast<std::size_t>(Inside::id(m5))] = marker;
    EXPECT_EQ(CUnit::fromString("m^-5"), marker);
    Inside::divideLookUp(one)[static_cast<std::size_t>(Inside::id(m5))] = quotient;
}

// Units that were never registered have the id 0, like the dimensionless unit.
TEST(Growth, TextsFillTheFirstCacheEntryWhichUnregisteredUnitsShare) {
    const auto first = CClientUnit::make("first", 777001),
               second = CClientUnit::make("second", 777002);
    CUnitFormat::label(first, "first");
    CUnitFormat::label(second, "second");
    const CUnitPtr product = CUnit::fromString("cd·first");
    EXPECT_EQ(CUnit::fromString("cd·second"), product);
    ASSERT_EQ(Inside::multiplyLookUp(SI::Candela()).empty(), false);
    EXPECT_EQ(Inside::multiplyLookUp(SI::Candela())[0], product);
    EXPECT_EQ(SI::Candela()->multiply(second), product);
    const CUnitPtr reciprocal = CUnit::fromString("1/first");
    EXPECT_EQ(Inside::divideLookUp(CProductUnit::one())[0], CProductUnit::one()->divide(second));
    EXPECT_EQ(CUnit::fromString("1/second"), reciprocal);
    EXPECT_EQ(CUnit::fromString("first^3:2"), first->pow(3)->root(2));
}

// All units in the order of their registration: id, hash code, symbol, label and factors.
std::string dump() {
    std::map<int, std::string> lines;
    for (const auto& [hash, unit] : CUnit::instances()) {
        std::string line = std::to_string(hash) + " " + text(Inside::symbol(unit)) + " " +
                           text(CUnitFormat::labelFor(unit));
        for (const CUnitRationalPower& factor : unit->elements()) {
            line += " " + std::to_string(Inside::id(factor.getUnit())) + "^" +
                    std::to_string(factor.getPow()) + ":" + std::to_string(factor.getRoot());
        }
        lines[Inside::id(unit)] = line;
    }
    std::string all;
    for (const auto& [id, line] : lines) {
        all += std::to_string(id) + " " + line + "\n";
    }
    return all;
}

// Calls `ofFactor` for each factor and multiplies the results with the public algebra.
template <class OfFactor>
CUnitPtr folded(const CUnitPtr& unit, OfFactor ofFactor) {
    CUnitPtr product = CProductUnit::one();
    for (const CUnitRationalPower& factor : unit->elements()) {
        product = product->multiply(
            ofFactor(factor.getUnit())->pow(factor.getPow())->root(factor.getRoot()));
    }
    return product;
}

// Computes the dimension of every third unit, the system unit of every fifth and the base units of
// every seventh, so that these computations use units that no text has used.
template <class Read, class Fold>
std::string dumpAfter(Read read, Fold fold) {
    const auto answer = [](const auto& ask) {
        try {
            return std::to_string(Inside::id(ask()));
        } catch (const std::exception& error) {
            return std::string(error.what());
        }
    };
    const std::map<std::string, std::vector<Pieces>> all = shapes();
    std::string answers;
    int number = 0;
    for (const auto& entry : all) {
        for (const Pieces& pieces : entry.second) {
            CUnitPtr unit;
            answers += answer([&] { return unit = read(pieces); });
            if (unit && ++number % 3 == 0) {
                answers += " " + answer([&] {
                               fold(unit, [](const CUnitPtr& u) { return u->getCtxDimension(); });
                               return unit->getDimension();
                           });
            }
            if (unit && number % 5 == 0) {
                answers += " " + answer([&] {
                               fold(unit, [](const CUnitPtr& u) { return u->getSystemUnit(); });
                               return unit->getSystemUnit();
                           });
            }
            if (unit && number % 7 == 0) {
                answers += " " + answer([&] {
                               fold(unit, [](const CUnitPtr& u) { return u->baseUnits(); });
                               return unit->baseUnits();
                           });
            }
            answers += "\n";
        }
    }
    return answers + dump();
}

TEST(Growth, TextsAndDimensionsRegisterTheSameUnitsAsTheAlgebraOfAClient) {
    const auto byTexts = inChild([](std::string& result) {
        result = dumpAfter([](const Pieces& pieces) { return CUnit::fromString(textOf(pieces)); },
                           [](const CUnitPtr&, const auto&) {});
        return 0;
    });
    const auto byAlgebra = inChild([](std::string& result) {
        result = dumpAfter(
            [](const Pieces& pieces) {
                CUnitPtr product = CProductUnit::one();
                for (const Piece& piece : pieces) {
                    product = product->multiply(
                        CUnitFormat::unitFor(piece.Name)->pow(piece.Pow)->root(piece.Root));
                }
                return product;
            },
            [](const CUnitPtr& unit, const auto& ofFactor) {
                if (dynamic_cast<CProductUnit*>(unit.get()) != nullptr) {
                    folded(unit, ofFactor);
                }
            });
        return 0;
    });
    EXPECT_EQ(byTexts.Status, 0);
    EXPECT_GT(byTexts.Text.size(), 100'000U);
    EXPECT_TRUE(byTexts.Text == byAlgebra.Text);
}

}  // namespace
}  // namespace mensor

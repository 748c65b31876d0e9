// Matchers.h: matchers and helpers for texts, numbers, units and the tables of the process.
//
//     EXPECT_THAT(kilometre, ConvertsTo(SI::Meter(), 1, 1000));   // bit for bit
//     EXPECT_THAT(factor, HasBitsOf(0.001));
//     EXPECT_THAT(SI::Meter() / SI::Second(), PrintsAs("m/s"));
//     EXPECT_EQ(text(unit->getSymbol()), "m");
//     const CUnitPtr unit = freshUnit();
//
//     const Tables before;
//     EXPECT_THROW(..., std::logic_error);
//     EXPECT_EQ(Tables(), before);
#ifndef MENSOR_TESTS_MATCHERS_H
#define MENSOR_TESTS_MATCHERS_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <iomanip>
#include <limits>
#include <map>
#include <mutex>
#include <ostream>
#include <sstream>
#include <string>

#include "mensor/BaseUnit.h"
#include "mensor/Unit.h"
#include "mensor/UnitFormat.h"
#include "mensor/mensor_global.h"

namespace mensor {

/// The bytes of `s`. A failure prints a std::string as text.
inline std::string text(const string_t& s) { return toStdString(s); }

/// The IEEE 754 bits of `x`.
inline std::uint64_t bitsOf(double x) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &x, sizeof bits);
    return bits;
}

/// `x` with all its digits and its bits, for messages.
inline std::string exactly(double x) {
    std::ostringstream out;
    out << std::setprecision(17) << x << " (0x" << std::hex << std::setw(16) << std::setfill('0')
        << bitsOf(x) << ")";
    return out.str();
}

/// Returns a symbol that no unit has, the same one in every run. Its five letters give it a hash
/// code of its own. The hash codes of products, which are sums of such hash codes, are not equal by
/// chance.
///
/// The function does not look at CUnit::instances(): that would switch the caches of the library
/// off, which are on in most programs.
inline string_t freshSymbol() {
    static std::uint32_t state = 1;
    const std::lock_guard<std::recursive_mutex> lock(CUnit::mutex());
    for (;;) {
        state = state * 1664525U + 1013904223U;
        std::string symbol = "q";
        for (std::uint32_t rest = state >> 8; symbol.size() < 5; rest /= 26) {
            symbol += static_cast<char>('a' + rest % 26);
        }
        if (!CUnitFormat::unitFor(symbol)) {
            return symbol;
        }
    }
}

/// A base unit with a new symbol.
inline CBaseUnitPtr freshUnit() { return CBaseUnit::getInstance(freshSymbol()); }

/// A text with the hash code `hash`, which must be positive: a symbol with the identity of another
/// unit.
inline string_t symbolWithHash(int hash) {
    constexpr int LargestCodePoint = 0xD7FF;  // below the surrogates
    if (hash <= LargestCodePoint) {
        return string_t(static_cast<char_t>(hash));
    }
    const int last = 0x100 + (hash - 0x100) % 31;
    string_t symbol = symbolWithHash((hash - last) / 31);
    symbol.push_back(static_cast<char_t>(last));
    return symbol;
}

/// The double `expected`, bit for bit.
MATCHER_P(HasBitsOf, expected, "is " + exactly(expected)) {
    *result_listener << "which is " << exactly(arg);
    return bitsOf(arg) == bitsOf(expected);
}

/// `expected` or one of its two neighbours. Only for results of `pow` of the math library, whose
/// last bit may differ between platforms.
MATCHER_P(WithinOneUlp, expected, "is within one unit in the last place of " + exactly(expected)) {
    *result_listener << "which is " << exactly(arg);
    constexpr double infinity = std::numeric_limits<double>::infinity();
    return std::nextafter(expected, -infinity) <= arg && arg <= std::nextafter(expected, infinity);
}

/// `x` of this unit is the double `y` of `unit`, bit for bit.
MATCHER_P3(ConvertsTo, unit, x, y, "converts " + exactly(x) + " to " + exactly(y)) {
    const double converted = arg->convertValueToUnit(x, unit);
    *result_listener << "which converts it to " << exactly(converted);
    return bitsOf(converted) == bitsOf(y);
}

/// The unit is `expected` in the standard notation.
MATCHER_P(PrintsAs, expected, std::string("prints as \"") + expected + "\"") {
    const std::string printed = arg->toStdString();
    *result_listener << "which prints as \"" << printed << "\"";
    return printed == expected;
}

/// A copy of the tables of units and names. The tables of dimensions are not included, because a
/// mere query fills them.
class Tables {
public:
    Tables() {
        const std::lock_guard<std::recursive_mutex> lock(CUnit::mutex());
        m_Symbols = CUnit::symbols();
        m_Instances = CUnit::instances();
        m_LabelUnits = CUnitFormat::labelUnitMap();
        m_UnitLabels = CUnitFormat::unitLabelMap();
        m_AliasUnits = CUnitFormat::aliasUnitMap();
    }

    friend bool operator==(const Tables& left, const Tables& right) {
        return left.m_Symbols == right.m_Symbols && left.m_Instances == right.m_Instances &&
               left.m_LabelUnits == right.m_LabelUnits && left.m_UnitLabels == right.m_UnitLabels &&
               left.m_AliasUnits == right.m_AliasUnits;
    }

    /// Returns whether symbols, labels and aliases are the same.
    bool namesAreThoseOf(const Tables& other) const {
        return m_Symbols == other.m_Symbols && m_LabelUnits == other.m_LabelUnits &&
               m_UnitLabels == other.m_UnitLabels && m_AliasUnits == other.m_AliasUnits;
    }

    friend void PrintTo(const Tables& tables, std::ostream* out) {
        *out << tables.m_Symbols.size() << " symbols, " << tables.m_Instances.size()
             << " instances, " << tables.m_LabelUnits.size() << " labels of "
             << tables.m_UnitLabels.size() << " units, " << tables.m_AliasUnits.size()
             << " aliases";
    }

private:
    std::map<string_t, CUnitPtr> m_Symbols;
    std::map<int, CUnitPtr> m_Instances;
    std::map<string_t, CUnitPtr> m_LabelUnits;
    std::map<CUnitPtr, string_t> m_UnitLabels;
    std::map<string_t, CUnitPtr> m_AliasUnits;
};

}  // namespace mensor

#endif  // MENSOR_TESTS_MATCHERS_H

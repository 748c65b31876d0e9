// unit_texts.h: the properties of reading and writing units, for several fuzzers.
#ifndef MENSOR_FUZZ_UNIT_TEXTS_H
#define MENSOR_FUZZ_UNIT_TEXTS_H

#include <cstddef>
#include <string>

#include "mensor/Unit.h"
#include "mensor/UnitFormat.h"
#include "property.h"
#include "support/Notation.h"
#include "support/outcome.h"

namespace mensor::fuzz {

/// Returns whether `outcome` is "std::overflow_error: Exponent -2147483649 is out of range", with
/// any number.
inline bool isOverflow(const std::string& outcome) {
    const std::string before = "std::overflow_error: Exponent ", behind = " is out of range";
    if (outcome.size() <= before.size() + behind.size() ||
        outcome.compare(0, before.size(), before) != 0 ||
        outcome.compare(outcome.size() - behind.size(), behind.size(), behind) != 0) {
        return false;
    }
    const std::string number =
        outcome.substr(before.size(), outcome.size() - before.size() - behind.size());
    return number.find_first_not_of("0123456789", number[0] == '-' ? 1 : 0) == std::string::npos;
}

/// The number of registered units, if they can be counted without switching the caches off.
inline std::size_t unitCount() { return areCachesOff() ? CUnit::instances().size() : 0; }

/// Reads `text` and returns the outcome.
inline std::string checkReading(const std::string& text) {
    const test::Asked asked = test::askedBy(text);
    const std::size_t before = unitCount();
    CUnitPtr unit;
    const std::string outcome = outcomeOf([&] { unit = CUnit::fromString(text); });
    if (outcome != "returned") {
        require(unitCount() == before, text, "is refused and registers units");
        // what() ends at the first zero byte.
        const std::string expected =
            asked.Refusal.empty() ? outcomeOf([&] { asked.unit(); }) : asked.Refusal.c_str();
        require(outcome == expected, text, ("ends with " + outcome).c_str());
    } else if (!asked.Refusal.empty()) {
        fail(text, "is read, but should be refused with " + asked.Refusal);
    } else {
        require(unit == asked.unit(), text, "is another unit");
    }
    // Texts of more than 31 bytes are never cached, and leading blanks have no meaning.
    for (const std::string& same : {text, std::string(32, ' ') + text}) {
        CUnitPtr again;
        require(outcomeOf([&] { again = CUnit::fromString(same); }) == outcome && again == unit,
                same, "has another outcome the second time");
    }
    return outcome;
}

/// Writes `unit` in both notations and reads it again.
inline void checkWriting(const CUnitPtr& unit) {
    for (const auto notation : {test::Notation::STANDARD, test::Notation::ASCII}) {
        const CUnitFormatPtr format = notation == test::Notation::STANDARD
                                          ? CStandardUnitFormat::instance()
                                          : CASCIIUnitFormat::instance();
        const auto expected = test::written(unit, notation);
        string_t text;
        const std::string outcome = outcomeOf([&] { text = format->format(unit, string_t()); });
        if (!expected) {
            require(outcome == "std::invalid_argument: Cannot format given Object as a Unit",
                    "a unit without a text", ("ends with " + outcome).c_str());
            continue;
        }
        require(outcome == "returned", *expected, "is not written");
        require(toStdString(text) == *expected, *expected, "is written wrongly");
        require(format->format(unit, "0 ") == string_t("0 ") + text, *expected,
                "is appended wrongly to a text");
        if (test::readsBack(unit, notation)) {
            require(CUnit::fromString(text) == unit, *expected, "does not read back");
        }
    }
}

}  // namespace mensor::fuzz

#endif  // MENSOR_FUZZ_UNIT_TEXTS_H

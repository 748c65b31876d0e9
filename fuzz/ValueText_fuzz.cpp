// ValueText_fuzz.cpp: a text gives the value of its first two parts, or exactly the exception that
// the notation of units or std::stod throws. If both throw, the exception is that of the unit. A
// value is written with a field of 63 bytes, and its text reads as the number in that field. For
// two values, one in each line, the sum, the difference, the conversion and the comparisons are
// those of the converter between their units.
#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "Input.h"
#include "mensor/ValueWithUnit.h"
#include "property.h"
#include "unit_texts.h"

using namespace mensor;
using mensor::fuzz::require;

namespace {

bool areSame(double a, double b) {
    return std::memcmp(&a, &b, sizeof a) == 0 || (std::isnan(a) && std::isnan(b));
}

struct Number {
    double Value;
    std::string Refusal;
};

// The number as std::stod reads it.
Number numberIn(const std::string& text) {
    char* end = nullptr;
    errno = 0;
    const double value = std::strtod(text.c_str(), &end);
    if (end == text.c_str()) {
        return {0.0, "std::invalid_argument: stod"};
    }
    return {value, errno == ERANGE ? "std::out_of_range: stod" : ""};
}

// Returns the outcome and stores the value in `value`.
std::string checkReading(const std::string& text, CValueWithUnit& value) {
    const std::string outcome = outcomeOf([&] { value = CValueWithUnit::fromString(text); });
    const std::size_t blank = text.find(' ');
    if (blank == std::string::npos) {
        const std::string expected =
            "std::invalid_argument: No blank between number and unit in \"" + text + "\"";
        require(outcome == expected.c_str(), text, ("ends with " + outcome).c_str());
        return outcome;
    }
    const std::string unitText =
        text.substr(blank + 1, text.find(' ', blank + 1) - std::min(blank + 1, text.size()));
    const std::string ofUnit = fuzz::checkReading(unitText);
    const Number number = numberIn(text.substr(0, blank));
    if (ofUnit != "returned") {
        require(outcome == ofUnit, text, ("ends with " + outcome).c_str());
    } else if (!number.Refusal.empty()) {
        require(outcome == number.Refusal, text, ("ends with " + outcome).c_str());
    } else {
        require(outcome == "returned", text, ("ends with " + outcome).c_str());
        require(value.unit() == CUnit::fromString(unitText), text, "has another unit");
        require(areSame(value.value(), number.Value), text, "has another number");
    }
    return outcome;
}

void checkWriting(const CValueWithUnit& value) {
    const auto unitText = test::written(value.unit(), test::Notation::STANDARD);
    string_t text;
    const std::string outcome = outcomeOf([&] { text = value.toString(); });
    if (!unitText) {
        require(outcome == "std::invalid_argument: Cannot format given Object as a Unit", "a value",
                ("ends with " + outcome).c_str());
        return;
    }
    std::array<char, 512> digits{};
    std::snprintf(digits.data(), digits.size(), "%f", value.value());
    std::string field = std::string(digits.data()).substr(0, 63);
    field.resize(63);
    require(toStdString(text) == field + " " + *unitText, *unitText,
            "is written wrongly in a value");
    if (test::readsBack(value.unit(), test::Notation::STANDARD) &&
        unitText->find(' ') == std::string::npos) {
        const CValueWithUnit back = CValueWithUnit::fromString(toStdString(text));
        require(back.unit() == value.unit(), *unitText, "reads back as another unit");
        require(areSame(back.value(), numberIn(field).Value), field,
                "reads back as another number");
        require(
            !(std::fabs(value.value()) < 1e9) || std::fabs(back.value() - value.value()) < 0.6e-6,
            field, "reads back as a number far away");
    }
}

void checkPair(const CValueWithUnit& a, const CValueWithUnit& b) {
    double converted = 0.0;
    const std::string outcome =
        outcomeOf([&] { converted = b.unit()->getConverterTo(a.unit())->convert(b.value()); });
    bool isCompatible = false;
    const std::string compatibility =
        outcomeOf([&] { isCompatible = b.unit()->isCompatible(a.unit()); });
    if (compatibility != "returned") {
        require(fuzz::isOverflow(compatibility) && outcome == compatibility, "two values",
                ("end with " + compatibility).c_str());
    } else {
        require(isCompatible == (outcome.find("is not compatible") == std::string::npos),
                "two values", "are compatible in one way and not in the other");
    }
    const auto requireSame = [&](const std::string& other) {
        require(other == outcome, "two values", ("end with " + other).c_str());
    };
    CValueWithUnit sum = a, difference = a, changed = b;
    bool isEqual = false, isOther = false, isLess = false, isGreater = false;
    requireSame(outcomeOf([&] { sum = a + b; }));
    requireSame(outcomeOf([&] { difference = a - b; }));
    requireSame(outcomeOf([&] { isEqual = a == b; }));
    requireSame(outcomeOf([&] { isOther = a != b; }));
    requireSame(outcomeOf([&] { isLess = a < b; }));
    requireSame(outcomeOf([&] { isGreater = a > b; }));
    requireSame(outcomeOf([&] { changed.changeUnit(a.unit()); }));
    if (outcome != "returned") {
        require(areSame(changed.value(), b.value()) && changed.unit() == b.unit(), "a value",
                "is changed though refused");
        return;
    }
    const double x = a.value();
    require(areSame(sum.value(), x + converted) && sum.unit() == a.unit(), "a sum",
            "has another value");
    require(areSame(difference.value(), x - converted), "a difference", "has another value");
    require(areSame(changed.value(), converted) && changed.unit() == a.unit(), "a value",
            "is converted to a wrong number");
    const double smaller = std::fmin(std::fabs(x), std::fabs(converted));
    const bool areNumbers = !std::isnan(x) && !std::isnan(converted);
    require(isEqual == (areNumbers && std::fabs(x - converted) * 1e12 <= smaller), "two values",
            "are equal although they differ, or the reverse");
    require(isOther == !isEqual && isLess == (x < converted) && isGreater == (x > converted),
            "two values", "do not compare as their numbers in one unit");
    if (std::isfinite(x) && a.unit() == b.unit() && areSame(x, b.value())) {
        require(isEqual, "a value", "is not equal to itself");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto input = fuzz::shortText(data, size, 96);
    if (!input) {
        return 0;
    }
    const std::string& texts = *input;
    const std::size_t lineEnd = texts.find('\n');
    CValueWithUnit first(0.0, CProductUnit::one()), second = first;
    const bool isFirst = checkReading(texts.substr(0, lineEnd), first) == "returned";
    if (isFirst) {
        checkWriting(first);
    }
    if (lineEnd != std::string::npos &&
        checkReading(texts.substr(lineEnd + 1), second) == "returned" && isFirst) {
        checkPair(first, second);
    }
    fuzz::checkTables();
    return 0;
}

#include "mensor_exact/kinds.h"

#include <vector>

#include "mensor_exact/Conversion.h"
#include "mensor_exact/Error.h"
#include "mensor_exact/concatenate.h"

namespace mensor::exact {

namespace {

// "rad", "bit and rad": the marks of which the two units have different exponents.
std::string differingMarks(const CMeaning& from, const CMeaning& to) {
    std::string list;
    for (const char* const mark : {"bit", "rad", "sr"}) {
        if (from.exponentOf(mark) != to.exponentOf(mark)) {
            list += (list.empty() ? "" : " and ") + std::string(mark);
        }
    }
    return list;
}

bool areTurnsMeant(const CMeaning& from, const CMeaning& to) {
    return from.exponentOf("rad") != to.exponentOf("rad") && from.exponentOf("s") == CExponent(-1);
}

// Returns a number such as "314.16". Six digits are enough for a note.
std::string shortened(std::string_view number, const CMeaning& from, const CMeaning& to) {
    CDecimalStyle style;
    style.Digits = 6;
    return CConversion(from, to).convertText(number, style);
}

// The same quantity in base units and marks alone.
CMeaning baseUnits(const CMeaning& unit) {
    CMeaning base;
    for (const std::vector<CPower>& powers : {unit.dimensions(), unit.marks()}) {
        for (const CPower& power : powers) {
            base = base * CMeaning::base(power.Name).power(power.Exponent);
        }
    }
    return base;
}

}  // namespace

std::string noteOnMarks(std::string_view number, std::string_view unit, const CMeaning& from,
                        const CMeaning& to) {
    if (from.hasMarksOf(to)) {
        return {};
    }
    const CMeaning base = baseUnits(from);
    const std::string marks = differingMarks(from, to);
    std::string note = marks + (marks.size() > 4 ? " count as 1 here" : " counts as 1 here");
    if (from != base && !from.marks().empty()) {
        note += concatenate({": ", number, " ", unit, " is ", shortened(number, from, base), " ",
                             base.unitsText()});
    }
    if (areTurnsMeant(from, to)) {
        note += "; turns per minute are rpm, turns per second rev/s";
    }
    return note;
}

void requireSameMarks(const CMeaning& from, const CMeaning& to) {
    if (!from.hasMarksOf(to)) {
        throw CError(eError::DIFFERENT_MARKS,
                     concatenate({"cannot convert ", from.toString(), " to ", to.toString(), ": ",
                                  noteOnMarks("1", from.toString(), from, to)}));
    }
}

}  // namespace mensor::exact

// CheckedRead_fuzz.cpp: if the companion accepts a text, the unit that it gives converts in the library
// with the exponents, the factor and the offset that a direct calculation from the text gives. A text
// that is refused for its form has no unit, but a position and a sentence.
#include <cstddef>
#include <cstdint>
#include <string>

#include "Input.h"
#include "mensor_checked/Reading.h"
#include "mensor_checked/Values.h"
#include "property.h"
#include "support/Mathematics.h"

using namespace mensor;
using mensor::fuzz::fail;

namespace {

void checkUnit(const std::string& text, const CUnitPtr& unit) {
    if (!areSame(test::measured(unit), test::calculated(text))) {
        fail(text, "means another unit");
    }
    if (checked::tryReadUnit(text).Unit != unit) {
        fail(text, "is another unit the second time");
    }
    const auto written = checked::textOf(unit);
    if (written && checked::readUnit(*written) != unit) {
        fail(text, "is written as another unit");
    }
}

void checkDiagnosis(const std::string& text, const checked::CDiagnosis& diagnosis) {
    if (diagnosis.Text != text || diagnosis.Sentence.empty() || diagnosis.Byte > text.size() ||
        text.compare(diagnosis.Byte, diagnosis.Token.size(), diagnosis.Token) != 0) {
        fail(text, "has a refusal that does not fit the text");
    }
    diagnosis.message();
    diagnosis.caret();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto input = fuzz::shortText(data, size, 64);
    if (!input) {
        return 0;
    }
    const std::string& text = *input;
    const checked::CReading unit = checked::tryReadUnit(text);
    if (unit) {
        checkUnit(text, unit.Unit);
    } else {
        checkDiagnosis(text, *unit.Refusal);
    }
    const checked::CValueReading value = checked::tryReadValue(text);
    if (!value) {
        checkDiagnosis(text, *value.Refusal);
    } else if (const auto written = checked::textOf(value.Unit)) {
        const CValueWithUnit back =
            checked::readValue(checked::writeValue(value.Value, value.Unit));
        if (back.value() != value.Value || back.unit() != value.Unit) {
            fail(text, "is a value whose text does not read back");
        }
    }
    fuzz::checkTables();
    return 0;
}

#include "mensor_checked/Values.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>
#include <utility>

#include "mensor/ProductUnit.h"
#include "mensor/UnitFormat.h"
#include "mensor_checked/Lock.h"
#include "mensor_checked/Names.h"
#include "mensor_checked/Parsing.h"
#include "mensor_checked/unit_reader.h"
#include "mensor_checked/words.h"
#include "mensor_exact/Exponent.h"
#include "mensor_exact/NumberText.h"
#include "mensor_exact/utf8.h"

namespace mensor::checked {

namespace {

using exact::countCodePoints;

class CValueReader {
public:
    CValueReader(std::string_view text, const CReadOptions& options)
        : m_Text(text), m_Options(options) {}

    // @throws Refused
    CValueReading read() {
        exact::CRefusal refusal;
        if (!exact::findNumber(m_Text, m_Options.NotFinite, m_Number, refusal)) {
            throw Refused{diagnosisOf(refusal)};
        }
        const double size = number();
        CReading reading = checked::read(m_Text.substr(m_Number.UnitBegin), m_Options, false);
        if (reading.Refusal) {
            // The number before the unit may have caused the error ("1 000 m"), so the refusal of the
            // whole text comes first.
            if (auto fault = formFault(m_Text, m_Number.UnitBegin, m_Options)) {
                throw Refused{std::move(*fault)};
            }
            throw Refused{ofWhole(std::move(*reading.Refusal))};
        }
        return {m_Number.IsNegative ? -size : size, std::move(reading.Unit), std::nullopt,
                std::move(reading.Notes)};
    }

private:
    // Returns the number without its sign.
    double number() const {
        if (m_Number.Kind == exact::eNumber::NAN_WORD) {
            return std::numeric_limits<double>::quiet_NaN();
        }
        if (m_Number.Kind == exact::eNumber::INFINITY_WORD) {
            return std::numeric_limits<double>::infinity();
        }
        const std::string_view digits = m_Number.Size.of(m_Text);
        double x = 0.0;
        const auto error = std::from_chars(digits.data(), digits.data() + digits.size(), x).ec;
        if (error == std::errc::result_out_of_range) {
            throw Refused{diagnose(eRefusal::NUMBER_RANGE, m_Text, m_Number.Whole,
                                   "this number is beyond the range of double")};
        }
        return x;
    }

    // Returns the diagnosis of the unit with positions that count from the start of the whole text.
    CDiagnosis ofWhole(CDiagnosis diagnosis) const {
        const std::size_t begin = m_Number.UnitBegin;
        diagnosis.Text = m_Text;
        diagnosis.Position += countCodePoints(m_Text.substr(0, begin));
        diagnosis.Byte += begin;
        const bool isCollision = diagnosis.Code == eRefusal::COLLISION ||
                                 diagnosis.Code == eRefusal::DIMENSION_COLLISION;
        if (!isCollision) {
            const std::string before =
                std::string(m_Text.substr(0, begin)) + (begin == m_Number.Whole.End ? " " : "");
            for (std::string& reading : diagnosis.Readings) {
                reading.insert(0, before);
            }
        }
        return diagnosis;
    }

    const std::string_view m_Text;
    const CReadOptions& m_Options;
    exact::CNumberText m_Number;
};

// Returns the first name that reads as `unit`, or none.
std::optional<std::string> readableName(const CUnitPtr& unit) {
    for (std::string& name : namesOf(unit)) {
        if (read(name, {}, false).Unit == unit) {
            return std::move(name);
        }
    }
    return std::nullopt;
}

std::string powerText(const std::string& name, exact::CExponent exponent) {
    if (exponent == 1) {
        return name;
    }
    if (exponent == 2 || exponent == 3) {
        return name + (exponent == 2 ? "²" : "³");
    }
    const std::string digits = exponent.toString();
    return name + "^" + (exponent.denominator() == 1 ? digits : "(" + digits + ")");
}

// Returns the product, written with names that read back, or none. It is needed where the library's own
// text does not read back: the library writes the millikelvin as "m°C", although a pack has given it the
// alias "mK".
std::optional<std::string> productText(const CUnitPtr& unit) {
    std::string numerator;
    std::string denominator;
    int divisors = 0;
    for (const CUnitRationalPower& element : unit->elements()) {
        const std::optional<std::string> name = readableName(element.getUnit());
        if (!name) {
            return std::nullopt;
        }
        const exact::CExponent exponent(element.getPow(), element.getRoot());
        const bool divides = exponent.numerator() < 0;
        std::string& side = divides ? denominator : numerator;
        side += (side.empty() ? "" : "·") + powerText(*name, divides ? -exponent : exponent);
        divisors += divides ? 1 : 0;
    }
    if (divisors > 1) {
        denominator = "(" + denominator + ")";
    }
    return (numerator.empty() ? "1" : numerator) + (divisors > 0 ? "/" + denominator : "");
}

std::optional<std::string> ifReadBack(std::string text, const CUnitPtr& unit) {
    return read(text, {}, false).Unit == unit ? std::optional<std::string>(std::move(text))
                                              : std::nullopt;
}

}  // namespace

CValueReading tryReadValue(std::string_view text, const CReadOptions& options) {
    const Lock lock;
    try {
        return CValueReader(text, options).read();
    } catch (Refused& refused) {
        CValueReading value;
        value.Refusal = std::move(refused.Diagnosis);
        return value;
    }
}

CValueWithUnit readValue(std::string_view text, const CReadOptions& options) {
    CValueReading value = tryReadValue(text, options);
    if (value.Refusal) {
        throw CReadError(std::move(*value.Refusal));
    }
    return {value.Value, value.Unit};
}

CWriteError::CWriteError(const std::string& message) : std::invalid_argument(message) {}
CWriteError::~CWriteError() = default;

std::optional<std::string> textOf(const CUnitPtr& unit) {
    requireUnit(unit, "textOf");
    const Lock lock;
    for (const CUnitFormatPtr& format :
         {CStandardUnitFormat::instance(), CASCIIUnitFormat::instance()}) {
        std::string text;
        try {
            text = mensor::toStdString(format->format(unit, string_t()));
        } catch (const std::invalid_argument&) {
            continue;  // neither label nor symbol nor product
        }
        if (auto readable = ifReadBack(std::move(text), unit)) {
            return readable;
        }
    }
    if (dynamic_cast<CProductUnit*>(unit.get()) == nullptr) {
        return readableName(unit);
    }
    std::optional<std::string> text = productText(unit);
    return text ? ifReadBack(*std::move(text), unit) : std::nullopt;
}

std::string writeValue(double value, const CUnitPtr& unit, const CReadOptions& options) {
    requireUnit(unit, "writeValue");
    if (!std::isfinite(value) && !options.NotFinite) {
        throw CWriteError("the value " + shortest(value) + " is not finite");
    }
    const std::optional<std::string> text = textOf(unit);
    if (!text) {
        throw CWriteError("the unit " + describe(unit) +
                          " has no text that reads back as the same");
    }
    return (std::isnan(value) ? "nan" : shortest(value)) + " " + *text;
}

std::string writeValue(const CValueWithUnit& value, const CReadOptions& options) {
    return writeValue(value.value(), value.unit(), options);
}

}  // namespace mensor::checked

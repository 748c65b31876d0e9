#include "mensor_checked/Differences.h"

#include <cmath>
#include <stdexcept>
#include <string>
#include <utility>

#include "mensor_checked/Lock.h"
#include "mensor_checked/words.h"

namespace mensor::checked {

namespace {

double converted(double x, const CUnitPtr& from, const CUnitPtr& to) {
    const CConverterPtr converter = from->getConverterTo(to);
    const double zero = converter->convert(0.0);
    if (zero == 0.0) {
        return converter->convert(x);
    }
    const double slope = converter->derivative(0.0);
    if (slope != converter->derivative(1.0)) {
        throw std::logic_error("convertDifference: " + describe(from) +
                               " has no constant size in " + describe(to));
    }
    return x * slope;
}

// Throws if the result is infinite although it was computed from finite numbers.
double requireFinite(double result, double a, double b, const char* function) {
    if (std::isfinite(a) && std::isfinite(b) && !std::isfinite(result)) {
        throw std::range_error(std::string(function) +
                               ": the result is beyond the range of double");
    }
    return result;
}

}  // namespace

double convertDifference(double x, const CUnitPtr& from, const CUnitPtr& to) {
    requireUnit(from, "convertDifference");
    requireUnit(to, "convertDifference");
    const Lock lock;
    const double result = converted(x, from, to);
    if ((std::isfinite(x) && !std::isfinite(result)) || (x != 0.0 && result == 0.0)) {
        throw std::range_error("convertDifference: " + shortest(x) + " of " + describe(from) +
                               " is beyond the range of double in " + describe(to));
    }
    return result;
}

CDifference::CDifference(double value, CUnitPtr unit) : m_Value(value), m_Unit(std::move(unit)) {}

double CDifference::valueAs(const CUnitPtr& unit) const {
    return convertDifference(m_Value, m_Unit, unit);
}

CDifference difference(const CValueWithUnit& a, const CValueWithUnit& b) {
    requireUnit(a.unit(), "difference");
    requireUnit(b.unit(), "difference");
    const Lock lock;
    const double value = a.value() - b.valueAs(a.unit());
    return {requireFinite(value, a.value(), b.value(), "difference"), a.unit()};
}

CValueWithUnit operator+(const CValueWithUnit& a, const CDifference& change) {
    const double value = a.value() + change.valueAs(a.unit());
    return {requireFinite(value, a.value(), change.value(), "operator+"), a.unit()};
}

CValueWithUnit operator-(const CValueWithUnit& a, const CDifference& change) {
    const double value = a.value() - change.valueAs(a.unit());
    return {requireFinite(value, a.value(), change.value(), "operator-"), a.unit()};
}

}  // namespace mensor::checked

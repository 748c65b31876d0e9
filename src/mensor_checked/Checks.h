// Checks.h: what the sources of the companion share. For its own use; not installed.
#ifndef MENSOR_CHECKED_CHECKS_H
#define MENSOR_CHECKED_CHECKS_H

#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "mensor/Unit.h"
#include "mensor_checked/Meaning.h"

namespace mensor {
namespace checked {

/// Held from the first question to the library to the last; see WarmUp.h.
class Lock {
public:
    Lock() : m_Guard(CUnit::mutex()) {}

private:
    const std::lock_guard<std::recursive_mutex> m_Guard;
};

/// @throws std::invalid_argument  "product: the unit is an empty pointer".
void requireUnit(const CUnitPtr& unit, const char* function);

/// `text` in double quotes.
std::string quoted(const std::string& text);

/// The shortest digits that read back as the same double.
std::string shortest(double x);

/// Whether `x` is a number that a unit can have for its factor.
bool isNormal(double x);

/// `unit` for a message: its text, else what it means. Quoted.
std::string describe(const CUnitPtr& unit);

/// A unit to a power, as products of units are made of.
struct CElement {
    CUnitPtr Unit;
    CRational Exponent;
};

/// Multiplies `unit` to the power `exponent` into a product, element by element.
void multiplyInto(std::vector<CElement>& product, const CUnitPtr& unit, const CRational& exponent);

/// Whether both are the same product, whatever the order. Products of the same elements mean the same,
/// without any computing, and are written alike.
bool haveSameElements(const std::vector<CElement>& a, const std::vector<CElement>& b);

/// The product with each scaled unit replaced by its system unit: of N·mm and of mN·m it is N·m.
std::vector<CElement> systemElements(const std::vector<CElement>& elements);

/// A unit that the library would convert wrongly.
struct CDimensionFault {
    CUnitPtr Dimension;  ///< what the library takes for its dimension
    CMeaning Known;      ///< what the unit means by that dimension and the converter to it
};

/// Compares the dimension of `unit` and the converter to it with `meaning`, its meaning, in the
/// current context. Passes on what the library throws. The caller holds the lock.
std::optional<CDimensionFault> dimensionFault(const CUnitPtr& unit, const CMeaning& meaning);

}  // namespace checked
}  // namespace mensor

#endif  // MENSOR_CHECKED_CHECKS_H

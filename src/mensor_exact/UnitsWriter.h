// UnitsWriter.h: writes a product of powers of units. For the library's own use; not installed.
#ifndef MENSOR_EXACT_UNITSWRITER_H
#define MENSOR_EXACT_UNITSWRITER_H

#include <string>
#include <string_view>

#include "mensor_exact/Exponent.h"

namespace mensor::exact {

/// Writes "kg·m/(A·s²)": the negative powers stand behind a stroke. Definitions (Definitions.h) and the
/// reader (Reading.h) both read it.
class CUnitsWriter {
public:
    void add(std::string_view name, CExponent exponent);

    std::string text() const;  ///< "1" if there is nothing

private:
    std::string m_Above;
    std::string m_Below;
    int m_Divisors = 0;
};

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_UNITSWRITER_H

// UnitsWriter.h: writes a product of powers of units. Not installed.
#ifndef MENSOR_EXACT_UNITSWRITER_H
#define MENSOR_EXACT_UNITSWRITER_H

#include <string>
#include <string_view>

#include "mensor_exact/Exponent.h"

namespace mensor::exact {

/// Writes "kg·m/(A·s²)", with the negative powers after a slash. The result is a definition
/// (Definitions.h), and Reading.h can read it, too.
class CUnitsWriter {
public:
    void add(std::string_view name, CExponent exponent);

    std::string text() const;  ///< "1" if there are no units

private:
    std::string m_Above;
    std::string m_Below;
    int m_Divisors = 0;
};

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_UNITSWRITER_H

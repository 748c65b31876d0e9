// Error.h: the one exception of the library, with a code that says what was refused.
//
//     try {
//         exact::CConversion::between("bar", "m");
//     } catch (const exact::CError& error) {
//         error.code();  // eError::DIFFERENT_DIMENSIONS
//         error.what();  // "cannot convert bar to m: pressure and length"
//     }
//
// Beside it, only std::bad_alloc is thrown. Whatever is thrown leaves every object as it was.
#ifndef MENSOR_EXACT_ERROR_H
#define MENSOR_EXACT_ERROR_H

#include <stdexcept>
#include <string>

#include "mensor_exact/exact_export.h"

namespace mensor::exact {

/// What was refused.
enum class eError {
    SYNTAX,                ///< a text that is no definition
    BAD_NUMBER,            ///< a text that is no decimal number, or a double that is not finite
    UNKNOWN_NAME,          ///< no definition has this name
    NAME_TAKEN,            ///< the catalogue has this name already
    CYCLE,                 ///< a definition that leads back to itself
    DIVISION_BY_ZERO,      ///< a denominator of zero
    NOT_POSITIVE,          ///< a factor of zero or below
    OFFSET_IN_PRODUCT,     ///< a unit with an offset in a product, quotient or power
    OFFSET_NOT_RATIONAL,   ///< an offset beside a factor with π or a root
    EXPONENT_RANGE,        ///< a numerator or denominator of an exponent beyond 99
    TOO_LARGE,             ///< a number of more bits than the library takes
    DIFFERENT_DIMENSIONS,  ///< a conversion between different kinds of quantities
    NUMBER_RANGE,          ///< a result that must be rounded, and is beyond the doubles
    OPTIONS,               ///< options that contradict each other or are out of range
    ARRAYS,                ///< arrays that overlap in part, or a null one
    DIFFERENT_MARKS,  ///< a conversion in which the radian, the steradian or the bit counts as 1
};

/// A refusal.
///
/// Class contract: caller serialises changes of one object; distinct objects any thread.
class MENSOR_EXACT_API CError : public std::invalid_argument {
public:
    CError(eError code, const std::string& message);
    ~CError() override;
    CError(const CError&);
    CError& operator=(const CError&);

    eError code() const noexcept { return m_Code; }

private:
    eError m_Code;
};

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_ERROR_H

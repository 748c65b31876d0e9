// Error.h: the exception of the library, with a code for the reason.
//
//     try {
//         exact::CConversion::between("bar", "m");
//     } catch (const exact::CError& error) {
//         error.code();  // eError::DIFFERENT_DIMENSIONS
//         error.what();  // "cannot convert bar to m: pressure and length"
//     }
//
// The library also throws std::bad_alloc. Functions that read texts of people throw CReadError or
// CDefinitionError instead (Reading.h, DefinitionFile.h). After an exception every object is as it was.
#ifndef MENSOR_EXACT_ERROR_H
#define MENSOR_EXACT_ERROR_H

#include <stdexcept>
#include <string>

#include "mensor_exact/exact_export.h"

namespace mensor::exact {

/// The reason of an error.
enum class eError {
    SYNTAX,                ///< a text that is not a definition
    BAD_NUMBER,            ///< a text that is not a decimal number, or a double that is not finite
    UNKNOWN_NAME,          ///< a name that no definition has
    NAME_TAKEN,            ///< a new name that the catalogue has already
    CYCLE,                 ///< a definition that uses itself, perhaps through others
    DIVISION_BY_ZERO,      ///< a denominator of zero
    NOT_POSITIVE,          ///< a factor that is zero or negative
    OFFSET_IN_PRODUCT,     ///< an offset unit in a product, quotient or power
    OFFSET_NOT_RATIONAL,   ///< an offset of a unit whose factor has π or a root
    EXPONENT_RANGE,        ///< a numerator or denominator of an exponent beyond 99
    TOO_LARGE,             ///< a number with more bits than the library allows
    DIFFERENT_DIMENSIONS,  ///< a conversion between different kinds of quantities
    NUMBER_RANGE,          ///< a result to be rounded that is beyond the range of double
    OPTIONS,               ///< options that contradict each other or are out of range
    ARRAYS,                ///< arrays that overlap in part, or a null one
    DIFFERENT_MARKS,  ///< a conversion in which the radian, the steradian or the bit counts as 1
};

/// An error of the exact library.
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

// converting.h: converters of the library that round each result once.
//
//     const CConverterPtr toTonnes = checked::converter(SI::Gram(), checked::readUnit("Mg"));
//     toTonnes->convert(5);                                   // 5e-6, the double nearest to it
//     SI::Gram()->getConverterTo(SI::Mega(SI::Gram()));       // the registry's may round three times
//
//     // Where the registry has no object for a unit, its meaning is enough:
//     checked::converter(checked::readMeaning("kg/(s·K)"), checked::readMeaning("g/(s·K)"));
#ifndef MENSOR_CHECKED_CONVERTING_H
#define MENSOR_CHECKED_CONVERTING_H

#include "mensor/Converter.h"
#include "mensor/Unit.h"
#include "mensor_checked/Meaning.h"
#include "mensor_checked/checked_export.h"
#include "mensor_exact/Conversion.h"

namespace mensor::checked {

using exact::eKinds;

/// Returns the converter from values of `from` to values of `to`. It rounds each result once, to the
/// nearest double (exact::CConversion). From a unit to itself it is CConverter::identity().
///
/// A unit without a row in the table of definitions means what its doubles say (Meaning.h). In two cases
/// only the registry can convert, so its own converter is returned: a client has made the units compatible
/// by CBaseUnit::setDimension, or a unit has a client's own class of converter.
///
/// The converter may be chained, inverted, shared by threads, and passed to the functions of the library
/// like any other. Its inverse also rounds once; a chain of two rounds twice. It equals another converter
/// of its class if both have the same exact conversion. As every scaling does, it also equals any scaling
/// whose slope is the same in single precision.
/// @throws std::invalid_argument  a unit is empty.
/// @throws exact::CError  DIFFERENT_DIMENSIONS (also a std::invalid_argument): the units are not
///     compatible; DIFFERENT_MARKS: with eKinds::SAME, if the radian, the steradian or the bit would
///     count as 1. Other codes: as meaningOf and exact::CConversion.
/// @par Threads  Any thread, locks CUnit::mutex() (see warm_up.h).
MENSOR_CHECKED_API CConverterPtr converter(const CUnitPtr& from, const CUnitPtr& to,
                                           eKinds kinds = eKinds::COMPATIBLE);

/// Returns the converter from one meaning to another. It serves texts that are refused as COLLISION or
/// DIMENSION_COLLISION (readMeaning).
/// @throws exact::CError  as exact::CConversion.
/// @par Threads  Any thread; takes no lock.
MENSOR_CHECKED_API CConverterPtr converter(const CMeaning& from, const CMeaning& to,
                                           eKinds kinds = eKinds::COMPATIBLE);

}  // namespace mensor::checked

#endif  // MENSOR_CHECKED_CONVERTING_H

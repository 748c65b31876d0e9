// Converting.h: converters of the library whose every result is right.
//
//     const CConverterPtr toTonnes = checked::converter(SI::Gram(), checked::readUnit("Mg"));
//     toTonnes->convert(5);                                   // 5e-6, the double nearest to it
//     SI::Gram()->getConverterTo(SI::Mega(SI::Gram()));       // what the registry has may round thrice
//
//     // Where the registry has no object for a unit, its meaning will do:
//     checked::converter(checked::readMeaning("kg/(s·K)"), checked::readMeaning("g/(s·K)"));
#ifndef MENSOR_CHECKED_CONVERTING_H
#define MENSOR_CHECKED_CONVERTING_H

#include "mensor/Converter.h"
#include "mensor/Unit.h"
#include "mensor_checked/Meaning.h"
#include "mensor_checked/checked_export.h"

namespace mensor {
namespace checked {

/// The converter that takes values of `from` to values of `to`, each result rounded once, to the nearest
/// double (exact::CConversion). For one and the same unit it is CConverter::identity().
///
/// A unit without a row in the table of definitions means what its doubles say (Meaning.h). What only the
/// registry can convert comes back with the registry's own converter: units that are compatible since a
/// client has mapped base units (CBaseUnit::setDimension), and units with a client's own class of
/// converter.
///
/// It is a converter like any other: it may be chained, inverted, shared by threads, and handed to the
/// functions of the library. Its inverse rounds correctly, too; a chain of two rounds twice. It equals a
/// converter of its kind for the same exact conversion; and as every scaling does, any scaling of the same
/// slope in single precision.
/// @throws std::invalid_argument  a unit is empty; or, as exact::CError with DIFFERENT_DIMENSIONS, the
///     units are not compatible.
/// @throws exact::CError  as meaningOf and exact::CConversion.
/// @par Threads  Any thread, locks CUnit::mutex() (see WarmUp.h).
MENSOR_CHECKED_API CConverterPtr converter(const CUnitPtr& from, const CUnitPtr& to);

/// The same from one meaning to another: for texts that are refused as COLLISION or
/// DIMENSION_COLLISION (readMeaning).
/// @throws exact::CError  as exact::CConversion.
/// @par Threads  Any thread; takes no lock.
MENSOR_CHECKED_API CConverterPtr converter(const CMeaning& from, const CMeaning& to);

}  // namespace checked
}  // namespace mensor

#endif  // MENSOR_CHECKED_CONVERTING_H

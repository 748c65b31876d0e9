// UnitRegistry.h: fills the tables while the library is loaded. Clients do not need it.
#ifndef MENSOR_UNITREGISTRY_H
#define MENSOR_UNITREGISTRY_H

#include "mensor/mensor_export.h"

namespace mensor {

/// The constructor builds the catalogue and its labels. The library creates one object, as the last
/// step of loading.
///
/// Class contract: any thread, locks what the algebra of CUnit and its labels lock.
class MENSOR_API CUnitRegistry {
public:
    /// Registers the SI units, then the others. An exception ends that group and is logged on the
    /// log4cplus logger "StdCoutLogger" if the program uses log4cplus. The constructor does not
    /// throw.
    CUnitRegistry();
};

}  // namespace mensor

#endif  // MENSOR_UNITREGISTRY_H

// UnitRegistry.h: fills the tables while the library is loaded; clients have no use for it.
#ifndef MENSOR_UNITREGISTRY_H
#define MENSOR_UNITREGISTRY_H

#include "mensor/mensor_export.h"

namespace mensor {

/// Its constructor builds the catalogue and labels it. The library makes the one object there is,
/// as the last step of loading.
///
/// Class contract: any thread, locks what the algebra of CUnit and its labels lock.
class MENSOR_API CUnitRegistry {
public:
    /// Registers the SI units, then the others. A failure ends its half of the work, is logged on
    /// the log4cplus logger "StdCoutLogger" where the program uses log4cplus, and never leaves the constructor.
    CUnitRegistry();
};

}  // namespace mensor

#endif  // MENSOR_UNITREGISTRY_H

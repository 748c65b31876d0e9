// mensor.h: includes all public headers of the library.
//
//     #include <mensor/mensor.h>
//
//     using namespace mensor;
//     CValueWithUnit::fromString("2.5 km").valueAs(SI::Meter());   // 2500
//
// Each header below can also be included alone. The companion, mensor::checked, has its own headers
// in mensor_checked/.
#ifndef MENSOR_MENSOR_H
#define MENSOR_MENSOR_H

#include "mensor/AddConverter.h"
#include "mensor/AlternateUnit.h"
#include "mensor/BaseUnit.h"
#include "mensor/Converter.h"
#include "mensor/DerivedUnit.h"
#include "mensor/MultiplyConverter.h"
#include "mensor/NonSI.h"
#include "mensor/ProductUnit.h"
#include "mensor/RegistrationBound.h"
#include "mensor/SI.h"
#include "mensor/TransformedUnit.h"
#include "mensor/Unit.h"
#include "mensor/UnitFormat.h"
#include "mensor/UnitRationalPower.h"
#include "mensor/UnitRegistry.h"
#include "mensor/ValueWithUnit.h"
#include "mensor/io.h"
#include "mensor/mensor_global.h"
#include "mensor/mensor_math.h"

#endif  // MENSOR_MENSOR_H

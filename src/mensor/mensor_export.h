// mensor_export.h: the names that the library exports. MENSOR_API exports a class or function from
// libmensor.so. Everything else is compiled with hidden visibility. MENSOR_LOCAL hides a private
// member of an exported class.
#ifndef MENSOR_MENSOR_EXPORT_H
#define MENSOR_MENSOR_EXPORT_H

#define MENSOR_API __attribute__((visibility("default")))
#define MENSOR_LOCAL __attribute__((visibility("hidden")))

// Internal classes that the public ones name as friends.
namespace mensor::detail {
struct Chain;           // walks over chains of converters
struct DebugLayout;     // has the offsets of the members of classes, for debuggers
struct Products;        // builds products
struct UnitAlgebra;     // the caches of the algebra
struct UnitConversion;  // dimensions and converters between units
}  // namespace mensor::detail

#endif  // MENSOR_MENSOR_EXPORT_H

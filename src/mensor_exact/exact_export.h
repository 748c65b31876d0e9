// exact_export.h: MENSOR_EXACT_API marks the names that libmensor_exact.so exports. All others are hidden.
// MENSOR_EXACT_LOCAL hides a part of a class that is exported.
#ifndef MENSOR_EXACT_EXACT_EXPORT_H
#define MENSOR_EXACT_EXACT_EXPORT_H

#define MENSOR_EXACT_API __attribute__((visibility("default")))
#define MENSOR_EXACT_LOCAL __attribute__((visibility("hidden")))

#endif  // MENSOR_EXACT_EXACT_EXPORT_H

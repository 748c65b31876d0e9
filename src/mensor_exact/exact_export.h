// exact_export.h: MENSOR_EXACT_API marks the names that libmensor_exact.so exports. All others are
// hidden.
#ifndef MENSOR_EXACT_EXACT_EXPORT_H
#define MENSOR_EXACT_EXACT_EXPORT_H

#define MENSOR_EXACT_API __attribute__((visibility("default")))

#endif  // MENSOR_EXACT_EXACT_EXPORT_H

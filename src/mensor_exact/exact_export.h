// exact_export.h: the boundary of the library. What bears MENSOR_EXACT_API is exported from
// libmensor_exact.so; everything else is compiled with hidden visibility and stays inside.
#ifndef MENSOR_EXACT_EXACT_EXPORT_H
#define MENSOR_EXACT_EXACT_EXPORT_H

#define MENSOR_EXACT_API __attribute__((visibility("default")))

#endif  // MENSOR_EXACT_EXACT_EXPORT_H

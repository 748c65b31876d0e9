// mensor_export.h: the boundary of the library. What bears MENSOR_API is exported from
// libmensor.so; everything else is compiled with hidden visibility and stays inside.
#ifndef MENSOR_MENSOR_EXPORT_H
#define MENSOR_MENSOR_EXPORT_H

#define MENSOR_API __attribute__((visibility("default")))

#endif  // MENSOR_MENSOR_EXPORT_H

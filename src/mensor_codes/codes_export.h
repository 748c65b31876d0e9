// codes_export.h: the boundary of the library. What bears MENSOR_CODES_API is exported from
// libmensor_codes.so; everything else is compiled with hidden visibility and stays inside.
#ifndef MENSOR_CODES_CODES_EXPORT_H
#define MENSOR_CODES_CODES_EXPORT_H

#define MENSOR_CODES_API __attribute__((visibility("default")))

#endif  // MENSOR_CODES_CODES_EXPORT_H

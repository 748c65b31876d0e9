// codes_export.h: MENSOR_CODES_API marks what libmensor_codes.so exports. Everything else has hidden
// visibility.
#ifndef MENSOR_CODES_CODES_EXPORT_H
#define MENSOR_CODES_CODES_EXPORT_H

#define MENSOR_CODES_API __attribute__((visibility("default")))

#endif  // MENSOR_CODES_CODES_EXPORT_H

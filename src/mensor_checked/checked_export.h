// checked_export.h: MENSOR_CHECKED_API marks what libmensor_checked.so exports. Everything else has hidden
// visibility.
#ifndef MENSOR_CHECKED_CHECKED_EXPORT_H
#define MENSOR_CHECKED_CHECKED_EXPORT_H

#define MENSOR_CHECKED_API __attribute__((visibility("default")))

#endif  // MENSOR_CHECKED_CHECKED_EXPORT_H

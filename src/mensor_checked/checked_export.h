// checked_export.h: the boundary of the companion. What bears MENSOR_CHECKED_API is exported from
// libmensor_checked.so; everything else is compiled with hidden visibility and stays inside.
#ifndef MENSOR_CHECKED_CHECKED_EXPORT_H
#define MENSOR_CHECKED_CHECKED_EXPORT_H

#define MENSOR_CHECKED_API __attribute__((visibility("default")))

#endif  // MENSOR_CHECKED_CHECKED_EXPORT_H

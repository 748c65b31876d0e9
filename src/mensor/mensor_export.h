// mensor_export.h: the boundary of the library. What bears MENSOR_API is exported from
// libmensor.so; everything else is compiled with hidden visibility and stays inside. MENSOR_LOCAL
// keeps a private helper of an exported class inside, too.
#ifndef MENSOR_MENSOR_EXPORT_H
#define MENSOR_MENSOR_EXPORT_H

#define MENSOR_API __attribute__((visibility("default")))
#define MENSOR_LOCAL __attribute__((visibility("hidden")))

namespace mensor {
namespace detail {
struct DebugLayout;  // tells debuggers where the members of the classes are
}
}  // namespace mensor

#endif  // MENSOR_MENSOR_EXPORT_H

// Concatenate.h: texts put together. For the library's own use; not installed.
#ifndef MENSOR_EXACT_CONCATENATE_H
#define MENSOR_EXACT_CONCATENATE_H

#include <initializer_list>
#include <string>
#include <string_view>

namespace mensor::exact {

/// All of `texts`, one behind the other. One call is a fraction of the code that as many "+" are.
std::string concatenate(std::initializer_list<std::string_view> texts);

/// `text` in quotation marks, shortened where it is long.
std::string quoted(std::string_view text);

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_CONCATENATE_H

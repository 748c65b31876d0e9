// concatenate.h: joins and quotes texts, for messages. Not installed.
#ifndef MENSOR_EXACT_CONCATENATE_H
#define MENSOR_EXACT_CONCATENATE_H

#include <initializer_list>
#include <string>
#include <string_view>

namespace mensor::exact {

/// Joins `texts`. One call needs much less code than a chain of "+".
std::string concatenate(std::initializer_list<std::string_view> texts);

/// Returns the sentence with `text` in place of its first "{}".
std::string withText(std::string sentence, std::string_view text);

/// Returns `text` in quotation marks. A long text is cut and ends in "...".
std::string quoted(std::string_view text);

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_CONCATENATE_H

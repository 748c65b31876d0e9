// exact_class.h: whether an object is of a class itself, not of one that clients derived from it and
// whose functions only they know. For the library's own use; not installed.
#ifndef MENSOR_EXACT_CLASS_H
#define MENSOR_EXACT_CLASS_H

#include <typeinfo>

namespace mensor {
namespace detail {

// By address: a class has one type information in the process.
template <class Class, class Base>
bool isExactly(const Base& object) {
    return &typeid(object) == &typeid(Class);
}

}  // namespace detail
}  // namespace mensor

#endif  // MENSOR_EXACT_CLASS_H

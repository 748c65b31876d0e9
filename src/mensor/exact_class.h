// exact_class.h: checks that an object is of a class itself and not of a derived class. A class
// that a client derives may override any virtual function. Not installed.
#ifndef MENSOR_EXACT_CLASS_H
#define MENSOR_EXACT_CLASS_H

#include <typeinfo>

namespace mensor::detail {

// Compares addresses, because a class has one type_info object in the process.
template <class Class, class Base>
bool isExactly(const Base& object) {
    return &typeid(object) == &typeid(Class);
}

}  // namespace mensor::detail

#endif  // MENSOR_EXACT_CLASS_H

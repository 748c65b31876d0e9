// require.h: checks that throw, used by several sources. Not installed.
#ifndef MENSOR_REQUIRE_H
#define MENSOR_REQUIRE_H

#include <stdexcept>
#include <string>

#include "mensor/TextStream.h"
#include "mensor/Unit.h"

namespace mensor {

// Refuses an empty pointer, as a failed lookup returns it. It must not get into a table.
inline void requireUnit(const CUnitPtr& unit, const char* function) {
    if (!unit) {
        throw std::invalid_argument(std::string(function) + ": the unit is an empty pointer");
    }
}

// Returns `given`, the result of a virtual function of a unit or converter. Refuses an empty
// pointer, which only the class of a client can return.
template <class Pointer>
Pointer requireGiven(Pointer given, const char* function) {
    if (!given) {
        throw std::logic_error(std::string("A client's ") + function + " gives an empty pointer");
    }
    return given;
}

[[noreturn]] inline void throwSymbolIsTaken(const string_t& symbol) {
    detail::CTextStream message;
    message << "The symbol: " << toStdString(symbol) << " is currently associated to another unit.";
    throw std::logic_error(message.str());
}

}  // namespace mensor

#endif  // MENSOR_REQUIRE_H

// require.h: refusals that several sources share. For the library's own use; not installed.
#ifndef MENSOR_REQUIRE_H
#define MENSOR_REQUIRE_H

#include <stdexcept>
#include <string>

#include "mensor/Unit.h"
#include "mensor/text_stream.h"

namespace mensor {

// An empty pointer is what a lookup or a refused transformation gives; it must not get into a table.
inline void requireUnit(const CUnitPtr& unit, const char* function) {
    if (!unit) {
        throw std::invalid_argument(std::string(function) + ": the unit is an empty pointer");
    }
}

// What a virtual function of a unit or converter gives. Those of the library never give an empty pointer.
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

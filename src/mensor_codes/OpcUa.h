// OpcUa.h: reads and makes the units of OPC UA servers.
//
//     opcUaUnit("MTR").UnitId;         // 5067858
//     codeOfUnitId(4405297);           // "C81"
//     readOpcUa({"http://www.opcfoundation.org/UA/units/un/cefact", 4408652, "°C", "degree Celsius"})
//         .toString();                 // "K + 273.15"
//
// A unit id is a code of UN/CEFACT as a number: eight bits for each character, the first in the highest bits.
#ifndef MENSOR_CODES_OPCUA_H
#define MENSOR_CODES_OPCUA_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "mensor_codes/codes_export.h"
#include "mensor_exact/Meaning.h"

namespace mensor::codes {

/// The namespace of unit ids that are codes of UN/CEFACT.
inline constexpr std::string_view OpcUaNamespace =
    "http://www.opcfoundation.org/UA/units/un/cefact";

/// The structure EUInformation of OPC UA. Texts are UTF-8. The texts that mensor gives are English.
///
/// Class contract: caller serialises changes of one object; distinct objects any thread.
struct CEUInformation {
    std::string NamespaceUri;
    std::int32_t UnitId = -1;  ///< -1 if there is none
    std::string DisplayName;
    std::string Description;
};

/// Returns the unit of a code of UN/CEFACT, also of a code without an exact meaning.
/// @throws exact::CReadError  UNKNOWN_CODE.
/// @par Threads  Any thread; takes no lock.
MENSOR_CODES_API CEUInformation opcUaUnit(std::string_view code);

/// Returns the unit id of a code of one to three digits and capital letters, or none for any other text.
/// Does not check that the code is in the table.
/// @par Threads  Any thread; takes no lock.
MENSOR_CODES_API std::optional<std::int32_t> unitIdOf(std::string_view code);

/// Returns the code of a unit id, or an empty text if the id is not made of one to three digits and capital
/// letters. Does not check that the code is in the table.
/// @par Threads  Any thread; takes no lock.
MENSOR_CODES_API std::string codeOfUnitId(std::int32_t unitId);

/// Returns what the unit means by its id. Its names are ignored, because servers may write anything there.
/// @throws exact::CReadError  UNKNOWN_CODE: another namespace, or an id of no code; NO_MEANING.
/// @par Threads  Any thread; takes no lock.
MENSOR_CODES_API exact::CMeaning readOpcUa(const CEUInformation& unit);

}  // namespace mensor::codes

#endif  // MENSOR_CODES_OPCUA_H

// OpcUa.h: units as OPC UA servers give them.
//
//     opcUaUnit("MTR").UnitId;         // 5067858
//     codeOfUnitId(4405297);           // "C81"
//     readOpcUa({"http://www.opcfoundation.org/UA/units/un/cefact", 4408652, "°C", "degree Celsius"})
//         .toString();                 // "K + 273.15"
//
// A unit id is the code of UN/CEFACT: its characters, eight bits each, the first one highest.
#ifndef MENSOR_CODES_OPCUA_H
#define MENSOR_CODES_OPCUA_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "mensor_codes/codes_export.h"
#include "mensor_exact/Meaning.h"

namespace mensor {
namespace codes {

/// The namespace of unit ids that are codes of UN/CEFACT.
inline constexpr std::string_view OpcUaNamespace =
    "http://www.opcfoundation.org/UA/units/un/cefact";

/// The structure EUInformation of OPC UA. Texts are UTF-8, and in English where mensor gives them.
///
/// Class contract: caller serialises changes of one object; distinct objects any thread.
struct CEUInformation {
    std::string NamespaceUri;
    std::int32_t UnitId = -1;  ///< -1: there is none
    std::string DisplayName;
    std::string Description;
};

/// The unit of a code of UN/CEFACT, also of one that has no exact meaning.
/// @throws exact::CReadError  UNKNOWN_CODE.
/// @par Threads  Any thread; takes no lock.
MENSOR_CODES_API CEUInformation opcUaUnit(std::string_view code);

/// The unit id of a code: one to three characters of ASCII. Empty if it is none. The code need not be
/// in the table.
/// @par Threads  Any thread; takes no lock.
MENSOR_CODES_API std::optional<std::int32_t> unitIdOf(std::string_view code);

/// The code of a unit id; empty if the id is not made from one to three digits and capital letters. The
/// code need not be in the table.
/// @par Threads  Any thread; takes no lock.
MENSOR_CODES_API std::string codeOfUnitId(std::int32_t unitId);

/// What the unit means, by its id. Names are not looked at: servers write them as they like.
/// @throws exact::CReadError  UNKNOWN_CODE: another namespace, or an id of no code; NO_MEANING.
/// @par Threads  Any thread; takes no lock.
MENSOR_CODES_API exact::CMeaning readOpcUa(const CEUInformation& unit);

}  // namespace codes
}  // namespace mensor

#endif  // MENSOR_CODES_OPCUA_H

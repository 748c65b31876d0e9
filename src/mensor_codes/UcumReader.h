// UcumReader.h: expressions of UCUM. For the library's own use; not installed.
//
//     expression = [ "/" ] term
//     term       = component { ( "." | "/" ) component }
//     component  = unit [ exponent ] [ annotation ]
//                | factor [ annotation ]
//                | annotation
//                | "(" term ")" [ annotation ]
//     unit       = atom | prefix atom                     prefixes only before atoms that take them
//     exponent   = [ "+" | "-" ] digits
//     factor     = digits
//     annotation = "{" { printable ASCII but blanks and braces } "}"
//
// "." and "/" are evaluated from the left: "a/b.c" is (a/b)·c. The grammar of UCUM has annotations behind
// units alone. Codes that UCUM itself lists have them behind factors and brackets, too: "/100{WBC}" and
// "g/(8.h){shift}".
#ifndef MENSOR_CODES_UCUMREADER_H
#define MENSOR_CODES_UCUMREADER_H

#include <string_view>

#include "mensor_codes/Codes.h"

namespace mensor {
namespace codes {

/// What an expression means. A valid one without a meaning is refused with NO_MEANING, and nothing else
/// is. `system` is the one that refusals name.
///
/// Only std::bad_alloc may pass. Needs no memory beside the result for everyday texts.
CReading readUcum(eSystem system, std::string_view text);

}  // namespace codes
}  // namespace mensor

#endif  // MENSOR_CODES_UCUMREADER_H

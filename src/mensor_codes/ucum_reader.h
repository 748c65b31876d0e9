// ucum_reader.h: reads expressions of UCUM. For the library's own use; not installed.
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
//     annotation = "{" { printable ASCII except blanks and braces } "}"
//
// "." and "/" are evaluated from the left: "a/b.c" is (a/b)·c. In the grammar of UCUM, annotations follow
// only units. In codes that UCUM itself lists, they also follow factors and brackets: "/100{WBC}" and
// "g/(8.h){shift}".
#ifndef MENSOR_CODES_UCUM_READER_H
#define MENSOR_CODES_UCUM_READER_H

#include <string_view>

#include "mensor_codes/Codes.h"

namespace mensor::codes {

/// Returns what an expression means. The refusal NO_MEANING is for a valid expression without a meaning,
/// all others are for expressions that are not valid. Refusals name `system`.
///
/// Throws nothing but std::bad_alloc. Allocates memory only if the result does not fit into 64-bit numbers.
CReading readUcum(eSystem system, std::string_view text);

}  // namespace mensor::codes

#endif  // MENSOR_CODES_UCUM_READER_H

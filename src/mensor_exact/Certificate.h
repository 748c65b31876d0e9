// Certificate.h: the proof of a conversion, for people and for programs that check it.
//
//     certify("mph", "km/h", catalogue).toText();
//
//     x mph = 1.609344·x km/h
//       km = 10^3 m (kilometre): SI brochure, 9th ed., table 7
//       mph = mi/h (mile per hour): NIST SP 811 (2008), B.8
//       ...
//
// A certificate lists every definition that the two units need, down to the base units, with its source.
// A program that does not use this library can multiply them and compare.
#ifndef MENSOR_EXACT_CERTIFICATE_H
#define MENSOR_EXACT_CERTIFICATE_H

#include <string>
#include <string_view>
#include <vector>

#include "mensor_exact/Definitions.h"
#include "mensor_exact/exact_export.h"

namespace mensor::exact {

/// One definition of a certificate.
struct CCertifiedDefinition {
    std::string Name;
    std::string Text;  ///< empty for a base unit or a mark
    std::string English;
    std::string Source;
};

/// ±(Numerator/Denominator)^(1/Root)·π^Pi, in lowest terms.
struct CCertifiedNumber {
    bool IsNegative = false;
    std::string Numerator;    ///< decimal digits
    std::string Denominator;  ///< decimal digits
    int Root = 1;
    std::string Pi;    ///< "0", "-1", "1/2"
    std::string Text;  ///< the number as one text, as CConversion::factor and offset write it
};

/// The proof of a conversion: a value x in `From` is Factor·x + Offset in `To`.
///
/// Class contract: caller serialises changes of one object; distinct objects any thread.
struct MENSOR_EXACT_API CCertificate {
    std::string From;
    std::string To;
    std::string Units;                              ///< the base units of both: "m/s"
    bool KeepsMarks = true;                         ///< as CConversion::keepsMarks
    std::vector<CCertifiedDefinition> Definitions;  ///< each after the definitions that use it
    CCertifiedNumber Factor;
    CCertifiedNumber Offset;
    std::string Rounded;  ///< which number is rounded, and the largest error
    std::string Version;  ///< the version of the library

    /// Returns lines for people, as above.
    std::string toText() const;

    /// Returns one JSON object. Numbers of any size are strings.
    ///
    ///     {"from": "°F", "to": "°C", "units": "K", "keepsMarks": true,
    ///      "definitions": [{"name": "°F", "definition": "5/9 K, offset 459.67",
    ///                       "english": "degree Fahrenheit", "source": "..."},
    ///                      {"name": "K", "definition": null, ...}],
    ///      "factor": {"negative": false, "numerator": "5", "denominator": "9", "root": 1, "pi": "0",
    ///                 "text": "5/9"},
    ///      "offset": {...}, "rounded": "...", "version": "1.0.0"}
    std::string toJson() const;
};

/// Returns the certificate of CConversion::between(from, to, catalogue).
/// @throws CError  what CConversion::between throws.
MENSOR_EXACT_API CCertificate certify(std::string_view from, std::string_view to,
                                      const CCatalogue& catalogue = CCatalogue::builtIn());

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_CERTIFICATE_H

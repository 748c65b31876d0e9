// Certificate.h: why a conversion is what it is, for people and for programs that check it.
//
//     certify("mph", "km/h", catalogue).toText();
//
//     1 mph = 1.609344 km/h
//     mph   mi/h       NIST SP 811 (2008), B.8
//     ...
//
// A certificate lists the definition of every name that the two units rest on, down to the base units,
// with its source. A program that has nothing of this library can multiply them and compare.
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
    std::string Text;  ///< empty: a base unit or a mark
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
    std::string Text;  ///< all of it, as CConversion::factor and offset write it
};

/// The proof of a conversion: a value x in `From` is Factor·x + Offset in `To`.
///
/// Class contract: caller serialises changes of one object; distinct objects any thread.
struct MENSOR_EXACT_API CCertificate {
    std::string From;
    std::string To;
    std::string Units;       ///< the base units that both come down to: "m/s"
    bool KeepsMarks = true;  ///< as CConversion::keepsMarks
    std::vector<CCertifiedDefinition> Definitions;  ///< each behind those that use it
    CCertifiedNumber Factor;
    CCertifiedNumber Offset;
    std::string Rounded;  ///< what is rounded, and by how much at most
    std::string Version;  ///< of the library

    /// Lines for people.
    std::string toText() const;

    /// One JSON object, with these keys; numbers of any size are strings.
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

/// The certificate of CConversion::between(from, to, catalogue).
/// @throws CError  as that does.
MENSOR_EXACT_API CCertificate certify(std::string_view from, std::string_view to,
                                      const CCatalogue& catalogue = CCatalogue::builtIn());

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_CERTIFICATE_H

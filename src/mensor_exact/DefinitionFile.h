// DefinitionFile.h: a program's own units, from a text that people edit.
//
//     # units.txt
//     smoot = 1.7018 m                    # name = number unit
//     span  = 9/10 ft                     # a fraction; units of lines above may be used
//     °X    = 5/4 K, zero at +273.15 K    # a zero of its own: 0 °X is 273.15 K
//     EUR   = base unit                   # a dimension of its own
//     replace lb = 0.5 kg                 # takes the name away from another unit
//
//     const auto file = exact::tryReadDefinitions(contentsOf("units.txt"), catalogue, "units.txt");
//     for (const auto& finding : file.Findings)
//         std::cerr << "units.txt:" << finding.Line << ": " << finding.Refusal.message() << '\n';
//     exact::read("EUR/smoot", file.Catalogue);
//
//     file       = { line "\n" }
//     line       = [ definition ] [ "#" anything ]         the "#" at the beginning or after a blank
//     definition = [ "replace" blanks ] name "=" ( "base unit" | size [ "," zero ] )
//     size       = number unit
//     zero       = "zero at" ( "+" | "-" ) number unit     what 0 of the new unit is
//     number     = decimal [ "/" decimal ]                 digits, a point, an exponent; no blanks
//
// All parts may have blanks in between. Names and units are those of docs/reading.md. A number after a
// unit without "zero at" is refused: "5 m 2" may be meant as 5 m² or as a zero at 2 m. If one line is
// refused, no line counts.
#ifndef MENSOR_EXACT_DEFINITIONFILE_H
#define MENSOR_EXACT_DEFINITIONFILE_H

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "mensor_exact/Definitions.h"
#include "mensor_exact/Diagnosis.h"
#include "mensor_exact/exact_export.h"

namespace mensor::exact {

/// One line that is refused.
struct CLineFinding {
    std::size_t Line;    ///< from 1
    CDiagnosis Refusal;  ///< of the line without its end
};

/// A text that was read as another unit before the file.
struct CTakenName {
    std::size_t Line;    ///< from 1: the line that takes it away
    std::string Name;    ///< "lb"; also a name that was another spelling so far, as "℃" of "°C"
    std::string Before;  ///< what it meant: "0.45359237 kg"
};

/// The result of reading a file.
struct CDefinitionFile {
    CCatalogue Catalogue;                ///< with the units of the file; the given one when refused
    std::vector<std::string> Names;      ///< of the units, as defined; empty when refused
    std::vector<CTakenName> Taken;       ///< the names that mean something else now; as above
    std::vector<CLineFinding> Findings;  ///< the lines that are refused; empty when all is well

    explicit operator bool() const { return Findings.empty(); }
};

/// A file that is refused; what() tells the first line.
///
/// Class contract: caller serialises changes of one object; distinct objects any thread.
class MENSOR_EXACT_API CDefinitionError : public std::invalid_argument {
public:
    explicit CDefinitionError(std::vector<CLineFinding> findings);
    ~CDefinitionError() override;
    CDefinitionError(const CDefinitionError&);
    CDefinitionError& operator=(const CDefinitionError&);

    const std::vector<CLineFinding>& findings() const noexcept;

private:
    std::vector<CLineFinding> m_Findings;
};

/// Reads the definitions in `text`. Every line is tried, and all lines that are refused are reported.
///
/// A name that means the same already may be defined again. A name that means something else is taken
/// away only by "replace"; the names of base units never are. Other spellings of a name, as "℃" of
/// "°C", need no "replace", and are reported as taken. Units of the catalogue keep their meanings
/// whatever names are taken away.
/// @param source  what certificates call the text; "units.txt" gives "units.txt:3"
/// @par Threads  Any thread; takes no lock.
MENSOR_EXACT_API CDefinitionFile
tryReadDefinitions(std::string_view text, const CCatalogue& catalogue = CCatalogue::builtIn(),
                   std::string_view source = {});

/// The same; gives the catalogue.
/// @throws CDefinitionError  a line is refused.
/// @par Threads  Any thread; takes no lock.
MENSOR_EXACT_API CCatalogue readDefinitions(std::string_view text,
                                            const CCatalogue& catalogue = CCatalogue::builtIn(),
                                            std::string_view source = {});

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_DEFINITIONFILE_H

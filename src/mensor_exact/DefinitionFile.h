// DefinitionFile.h: reads a program's own units from a text that people edit.
//
//     # units.txt
//     smoot = 1.7018 m                    # name = number unit
//     span  = 9/10 ft                     # a fraction; units of lines above may be used
//     °X    = 5/4 K, zero at +273.15 K    # with an offset: 0 °X is 273.15 K
//     EUR   = base unit                   # a dimension of its own
//     replace lb = 0.5 kg                 # gives the name to another unit
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
//     zero       = "zero at" ( "+" | "-" ) number unit     the value of 0 of the new unit
//     number     = decimal [ "/" decimal ]                 digits, a point, an exponent; no blanks
//
// All parts may have blanks in between. Names and units are those of docs/reading.md. A number after a
// unit without "zero at" is refused: "5 m 2" may mean 5 m² or a zero at 2 m. If one line is refused, the file
// changes nothing.
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

/// A refused line.
struct CLineFinding {
    std::size_t Line;    ///< from 1
    CDiagnosis Refusal;  ///< of the line, without the line break
};

/// A name whose meaning the file changes.
struct CTakenName {
    std::size_t Line;    ///< from 1: the line that changes the meaning
    std::string Name;    ///< "lb"; may be a former spelling, as "℃" of "°C"
    std::string Before;  ///< its old meaning: "0.45359237 kg"
};

/// The result of reading a file.
struct CDefinitionFile {
    CCatalogue Catalogue;                ///< with the units of the file; the given one when refused
    std::vector<std::string> Names;      ///< of the units, as defined; empty when refused
    std::vector<CTakenName> Taken;       ///< the names with a new meaning; empty when refused
    std::vector<CLineFinding> Findings;  ///< the lines that are refused; empty when all is well

    explicit operator bool() const { return Findings.empty(); }
};

/// Thrown for a refused file. what() names the first refused line.
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

/// Reads the definitions in `text`. Reads every line, and reports all refused lines.
///
/// A line may define a name again with the same meaning. A new meaning needs "replace"; the name of a base
/// unit never gets one. Another spelling of a name, as "℃" of "°C", needs no "replace", and the result lists
/// it under `Taken`. The units that the catalogue has already keep their meanings.
/// @param source  the name of the text in certificates: "units.txt" gives "units.txt:3"
/// @par Threads  Any thread; takes no lock.
MENSOR_EXACT_API CDefinitionFile
tryReadDefinitions(std::string_view text, const CCatalogue& catalogue = CCatalogue::builtIn(),
                   std::string_view source = {});

/// The same as tryReadDefinitions(), but returns the catalogue.
/// @throws CDefinitionError  a line is refused.
/// @par Threads  Any thread; takes no lock.
MENSOR_EXACT_API CCatalogue readDefinitions(std::string_view text,
                                            const CCatalogue& catalogue = CCatalogue::builtIn(),
                                            std::string_view source = {});

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_DEFINITIONFILE_H

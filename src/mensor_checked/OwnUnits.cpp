#include "mensor_checked/OwnUnits.h"

#include <cmath>
#include <new>
#include <utility>

#include "mensor_checked/Lock.h"
#include "mensor_checked/NewUnit.h"
#include "mensor_checked/Parsing.h"
#include "mensor_checked/Verify.h"
#include "mensor_checked/making.h"
#include "mensor_checked/unit_reader.h"
#include "mensor_checked/words.h"
#include "mensor_exact/DefinitionLine.h"

namespace mensor::checked {

namespace {

using exact::CDefinitionLine;
using exact::CDefinitionLines;
using exact::CLineValue;

// Thrown for a line whose unit or name belongs to another unit.
struct CObstacle {
    CDiagnosis Diagnosis;
    CUnitPtr InTheWay;
};

// Makes the unit of one line. All functions throw Refused or CObstacle.
class CLineMaker {
public:
    CLineMaker(std::string_view line, const CDefinitionLine& parts, CNaming& naming)
        : m_Line(line), m_Parts(parts), m_Naming(naming) {}

    // Registers the unit and returns its name.
    std::string define() const {
        std::string symbol(m_Parts.Name.of(m_Line));
        if (m_Parts.Size) {
            const CUnitPtr unit = readUnit(m_Parts.Size->Unit);
            const double factor = numberOf(*m_Parts.Size);
            const double offset = m_Parts.Zero ? zeroIn(unit) : 0.0;
            make([&] { m_Naming.define({symbol, factor, unit, offset}); });
        } else {
            make([&] { baseUnit(symbol); });
        }
        return symbol;
    }

private:
    double numberOf(const CLineValue& value) const {
        const double number = value.Number.toDouble();
        if (!value.Number.isZero() && !std::isnormal(number)) {
            refuse(eRefusal::FACTOR_RANGE, value.NumberText,
                   "this number is beyond the range of double");
        }
        return number;
    }

    // Returns the zero of the new unit as a value in `unit`.
    double zeroIn(const CUnitPtr& unit) const {
        const CLineValue& zero = *m_Parts.Zero;
        const CUnitPtr zeroUnit = readUnit(zero.Unit);
        const double number = numberOf(zero);
        if (zeroUnit == unit) {
            return number;
        }
        if (!zeroUnit->isCompatible(unit)) {
            refuse(eRefusal::DIFFERENT_DIMENSIONS, zero.Unit,
                   describe(zeroUnit) + " is not compatible with " + describe(unit));
        }
        return zeroUnit->convertValueToUnit(number, unit);
    }

    CUnitPtr readUnit(CSpan span) const {
        CReading reading = read(span.of(m_Line), {}, false);
        if (reading.Refusal) {
            throw Refused{exact::inLine(*std::move(reading.Refusal), m_Line, span)};
        }
        return reading.Unit;
    }

    template <class Make>
    void make(const Make& make) const {
        try {
            make();
        } catch (const CIdentityError& e) {
            std::string sentence = e.what();
            if (m_Parts.TakesAway) {
                sentence += "; \"replace\" cannot change a name of the registry";
            }
            throw CObstacle{
                diagnose(eRefusal::COLLISION, m_Line, m_Parts.Name, std::move(sentence)),
                e.inTheWay()};
        } catch (const CReadError& e) {  // the new name cannot be read back
            refuse(e.diagnosis().Code, m_Parts.Name, e.what());
        } catch (const CTooManyUnits& e) {
            refuse(eRefusal::LIMIT_REACHED, m_Parts.Name, e.what());
        } catch (const std::bad_alloc&) {
            throw;
        } catch (const std::exception& e) {
            refuse(eRefusal::REFUSED_BY_LIBRARY, m_Parts.Name, e.what());
        }
    }

    [[noreturn]] void refuse(eRefusal code, CSpan span, const std::string& sentence) const {
        throw Refused{diagnose(code, m_Line, span, sentence)};
    }

    const std::string_view m_Line;
    const CDefinitionLine& m_Parts;
    CNaming& m_Naming;
};

// Returns whether a line that a refusal suggests can be read.
bool isReadable(std::string_view line) {
    CDefinitionLine parts;
    return !takeApart(line, parts) && (!parts.Size || read(parts.Size->Unit.of(line), {}, false)) &&
           (!parts.Zero || read(parts.Zero->Unit.of(line), {}, false));
}

}  // namespace

CDefinitions tryDefineUnits(std::string_view table) {
    const Lock lock;
    CNaming naming;
    CDefinitions result;
    for (CDefinitionLines lines(table); lines.next();) {
        CDefinitionLine parts;
        if (auto refusal = takeApart(lines.line(), parts)) {
            keepReadings(*refusal, isReadable);
            result.Findings.push_back({{lines.number(), *std::move(refusal)}, nullptr});
            continue;
        }
        try {
            result.Names.push_back(CLineMaker(lines.line(), parts, naming).define());
        } catch (Refused& refused) {
            result.Findings.push_back({{lines.number(), std::move(refused.Diagnosis)}, nullptr});
        } catch (CObstacle& obstacle) {
            result.Findings.push_back(
                {{lines.number(), std::move(obstacle.Diagnosis)}, obstacle.InTheWay});
        }
    }
    if (result) {
        naming.keep();
    } else {
        result.Names.clear();
    }
    return result;
}

std::vector<std::string> defineUnits(std::string_view table) {
    CDefinitions result = tryDefineUnits(table);
    if (!result) {
        throw CDefinitionError({result.Findings.begin(), result.Findings.end()});
    }
    return std::move(result.Names);
}

}  // namespace mensor::checked

#include "mensor_checked/OwnUnits.h"

#include <cmath>
#include <new>
#include <utility>
#include <vector>

#include "mensor_checked/Lock.h"
#include "mensor_checked/Names.h"
#include "mensor_checked/NewUnit.h"
#include "mensor_checked/Parsing.h"
#include "mensor_checked/PlannedNames.h"
#include "mensor_checked/Verify.h"
#include "mensor_checked/making.h"
#include "mensor_checked/unit_reader.h"
#include "mensor_checked/words.h"
#include "mensor_exact/DefinitionLine.h"
#include "mensor_exact/Error.h"

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

    std::string name() const { return std::string(m_Parts.Name.of(m_Line)); }

    // True if the unit is a new base unit or needs one. Such a unit has a planned name at first.
    bool isPlanned(CPlannedNames& planned) const {
        if (!m_Parts.Size && unitNamed(name()) == nullptr) {
            return true;
        }
        if (planned.empty() || planned.find(name()) != nullptr) {
            return !planned.empty();
        }
        planned.forgetUses();
        for (const std::optional<CLineValue>* value : {&m_Parts.Size, &m_Parts.Zero}) {
            if (*value) {
                readForMeaning((*value)->Unit.of(m_Line), {});
            }
        }
        return planned.isUsed();
    }

    // Checks the line as far as that is possible without making units, and plans its name.
    void plan(CPlannedNames& planned, std::size_t number) const {
        const CMeaning wanted = m_Parts.Size ? meaning() : CMeaning::base(name());
        if (const CUnitPtr holder = unitNamed(name())) {
            throwHeld(describe(holder) + ", which means " + meaningInWords(holder), holder);
        }
        if (const CPlannedNames::CEntry* const entry = planned.find(name())) {
            if (entry->Meaning != wanted) {
                throwHeld("line " + std::to_string(entry->Line) + ", where it means " +
                              inWords(entry->Meaning),
                          nullptr);
            }
            return;
        }
        if (!m_Parts.Size) {
            requireIdentity(planned);
        }
        planned.add(name(), {wanted, number});
    }

    // Registers the unit.
    void define() const {
        const std::string symbol = name();
        if (m_Parts.Size) {
            const CUnitPtr unit = readUnit(m_Parts.Size->Unit);
            const double factor = numberOf(*m_Parts.Size);
            const double offset = m_Parts.Zero ? zeroIn(unit) : 0.0;
            make([&] { m_Naming.define({symbol, factor, unit, offset}); });
        } else {
            make([&] { baseUnit(symbol); });
        }
    }

private:
    // Returns what the unit means. The units in the line may have planned names.
    CMeaning meaning() const {
        try {
            CMeaning meaning = readMeaning(m_Parts.Size->Unit);
            if (m_Parts.Zero) {
                const CMeaning zero = readMeaning(m_Parts.Zero->Unit);
                if (!zero.isCompatibleWith(meaning)) {
                    refuse(eRefusal::DIFFERENT_DIMENSIONS, m_Parts.Zero->Unit,
                           inWords(zero) + " is not compatible with " + inWords(meaning));
                }
                numberOf(*m_Parts.Zero);
            }
            numberOf(*m_Parts.Size);
            meaning = meaning.scaled(exact::CFactor(m_Parts.Size->Number));
            if (std::isnormal(meaning.factor().toDouble())) {
                return meaning;
            }
        } catch (const exact::CError& error) {
            refuse(eRefusal::FACTOR_RANGE, m_Parts.Size->whole(),
                   std::string("the size of this unit cannot be computed: ") + error.what());
        }
        refuse(eRefusal::REFUSED_BY_LIBRARY, m_Parts.Name,
               "the size of this unit is beyond the range of double");
    }

    CMeaning readMeaning(CSpan span) const {
        CMeaningReading reading = readForMeaning(span.of(m_Line), {});
        if (reading.Refusal) {
            throw Refused{exact::inLine(*std::move(reading.Refusal), m_Line, span)};
        }
        return *std::move(reading.Meaning);
    }

    // Refuses a new base unit that would be the same object as another unit.
    void requireIdentity(const CPlannedNames& planned) const {
        const CUnitPtr other = CUnit::searchHashCode(hashFromString(string_t(name().c_str())));
        const std::string same = planned.sameAs(name());
        if (other || !same.empty()) {
            throw CObstacle{
                diagnose(
                    eRefusal::COLLISION, m_Line, m_Parts.Name,
                    "the unit with the symbol " + quoted(name()) + " is the same object as " +
                        (other ? describe(other) + " here, which means " + meaningInWords(other)
                               : "that of " + quoted(same))),
                other};
        }
    }

    [[noreturn]] void throwHeld(const std::string& holder, const CUnitPtr& inTheWay) const {
        throw CObstacle{diagnose(eRefusal::COLLISION, m_Line, m_Parts.Name,
                                 "the name " + quoted(name()) + " belongs to " + holder),
                        inTheWay};
    }

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

// Returns whether a line that a refusal suggests can be read. No refusal suggests a base unit.
bool isReadable(std::string_view line) {
    CDefinitionLine parts;
    return !takeApart(line, parts) && readForMeaning(parts.Size->Unit.of(line), {}) &&
           (!parts.Zero || readForMeaning(parts.Zero->Unit.of(line), {}));
}

// A line whose unit is made when all other lines are accepted.
struct CPlannedLine {
    std::size_t Number;
    std::string_view Line;
    CDefinitionLine Parts;
};

// Calls `work`. Adds what it throws to the findings.
template <class Work>
void tryLine(std::size_t number, CDefinitions& result, const Work& work) {
    try {
        work();
    } catch (Refused& refused) {
        result.Findings.push_back({{number, std::move(refused.Diagnosis)}, nullptr});
    } catch (CObstacle& obstacle) {
        result.Findings.push_back({{number, std::move(obstacle.Diagnosis)}, obstacle.InTheWay});
    }
}

// Makes the units of all lines that need no new base unit, and returns the other lines.
std::vector<CPlannedLine> defineOthers(std::string_view table, CNaming& naming,
                                       CDefinitions& result) {
    CPlannedNames planned;
    std::vector<CPlannedLine> waiting;
    for (CDefinitionLines lines(table); lines.next();) {
        CDefinitionLine parts;
        if (auto refusal = takeApart(lines.line(), parts)) {
            keepReadings(*refusal, isReadable);
            result.Findings.push_back({{lines.number(), *std::move(refusal)}, nullptr});
            continue;
        }
        tryLine(lines.number(), result, [&] {
            const CLineMaker line(lines.line(), parts, naming);
            if (line.isPlanned(planned)) {
                line.plan(planned, lines.number());
                waiting.push_back({lines.number(), lines.line(), parts});
            } else {
                line.define();
            }
            result.Names.push_back(line.name());
        });
    }
    return waiting;
}

}  // namespace

CDefinitions tryDefineUnits(std::string_view table) {
    const Lock lock;
    CNaming naming;
    CDefinitions result;
    for (const CPlannedLine& line : defineOthers(table, naming, result)) {
        if (result) {
            tryLine(line.Number, result,
                    [&] { CLineMaker(line.Line, line.Parts, naming).define(); });
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

// TableSystem.h: a system whose codes are the rows of a table. For the library's own use; not installed.
#ifndef MENSOR_CODES_TABLESYSTEM_H
#define MENSOR_CODES_TABLESYSTEM_H

#include "mensor_codes/CodeTable.h"
#include "mensor_codes/System.h"

namespace mensor::codes {

/// CTable is a CCodeTable.
template <class CTable, eSystem System>
class CTableSystem final : public CSystem {
public:
    /// @param name     the name of the system
    /// @param unknown  the sentence of a refusal if the system does not have the code
    constexpr CTableSystem(const char* name, const char* unknown)
        : m_Name(name), m_Unknown(unknown) {}

    const char* name() const override { return m_Name; }

    CReading tryRead(std::string_view code) const override {
        CReading reading;  // the only local of its type, so that it is not copied on return
        const std::size_t row = CTable::find(code);
        if (row == CTable::None) {
            reading.Refusal =
                code.empty()
                    ? refusalOf(System, code, exact::eRefusal::EMPTY, "an empty text is no code")
                    : refusalOf(System, code, exact::eRefusal::UNKNOWN_CODE, m_Unknown);
        } else if (CTable::isRefused(row)) {
            reading.Refusal =
                refusalOf(System, code, exact::eRefusal::NO_MEANING, CTable::reason(row));
        } else {
            reading.Meaning.emplace(CTable::smallMeaning(row));
        }
        return reading;
    }

    std::optional<CCode> find(std::string_view code) const override {
        const std::size_t row = CTable::find(code);
        if (row == CTable::None) {
            return std::nullopt;
        }
        return CTable::code(row);
    }

    void forEach(const std::function<void(const CCode&)>& visit) const override {
        CTable::forEach(visit);
    }

    CMatch codeFor(const exact::CMeaning& meaning) const override {
        return CTable::codeFor(meaning);
    }

private:
    const char* m_Name;
    const char* m_Unknown;
};

}  // namespace mensor::codes

#endif  // MENSOR_CODES_TABLESYSTEM_H

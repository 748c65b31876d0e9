// System.h: the base class of the systems of codes. For the library's own use; not installed.
#ifndef MENSOR_CODES_SYSTEM_H
#define MENSOR_CODES_SYSTEM_H

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "mensor_codes/Codes.h"

namespace mensor::codes {

/// One system of codes. All objects are constants of the library.
class CSystem {
public:
    virtual const char* name() const = 0;

    /// Does the work of codes::tryRead().
    virtual CReading tryRead(std::string_view code) const = 0;

    /// Does the work of codes::find().
    virtual std::optional<CCode> find(std::string_view code) const = 0;

    /// Calls `visit` for each row, in the order of the table.
    virtual void forEach(const std::function<void(const CCode&)>& visit) const = 0;

    /// Does the work of codes::codeFor().
    virtual CMatch codeFor(const exact::CMeaning& meaning) const = 0;

    /// Returns codes that the refused `token` may have meant: those that differ only in case.
    virtual std::vector<std::string> suggestions(std::string_view token) const;

    /// Returns texts that a refused text may have meant as a whole. Empty for most systems.
    virtual std::vector<std::string> readings(const CRefusal& refusal) const;

protected:
    constexpr CSystem() = default;
    ~CSystem() = default;
};

const CSystem& unece();
const CSystem& opcUa();
const CSystem& ucum();
const CSystem& senml();
const CSystem& openTelemetry();

const CSystem& systemOf(eSystem system);

/// Returns the refusal of a whole text.
inline CRefusal refusalOf(eSystem system, std::string_view text, exact::eRefusal code,
                          std::string_view sentence) {
    return {code, system, text, {0, text.size()}, sentence};
}

}  // namespace mensor::codes

#endif  // MENSOR_CODES_SYSTEM_H

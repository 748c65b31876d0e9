// System.h: what each system of codes does for the interface. For the library's own use; not installed.
#ifndef MENSOR_CODES_SYSTEM_H
#define MENSOR_CODES_SYSTEM_H

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "mensor_codes/Codes.h"

namespace mensor {
namespace codes {

/// One system. Objects are constants of the library.
class CSystem {
public:
    virtual const char* name() const = 0;

    /// As codes::tryRead().
    virtual CReading tryRead(std::string_view code) const = 0;

    /// As codes::find().
    virtual std::optional<CCode> find(std::string_view code) const = 0;

    /// Calls `visit` for each row, in the order of the table, until it returns false.
    virtual void forEach(const std::function<bool(const CCode&)>& visit) const = 0;

    /// As codes::codeFor().
    virtual CMatch codeFor(const exact::CMeaning& meaning) const = 0;

    /// Codes that `token`, which is refused, may have meant: those that differ in capital letters alone.
    virtual std::vector<std::string> suggestions(std::string_view token) const;

    /// What a whole text that is refused may have meant; mostly nothing.
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

/// The refusal of a whole code.
inline CRefusal refusalOf(eSystem system, std::string_view text, exact::eRefusal code,
                          std::string_view sentence) {
    return {code, system, text, {0, text.size()}, sentence};
}

}  // namespace codes
}  // namespace mensor

#endif  // MENSOR_CODES_SYSTEM_H

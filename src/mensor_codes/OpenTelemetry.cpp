#include "mensor_codes/System.h"

namespace mensor {
namespace codes {

namespace {

class COpenTelemetry final : public CSystem {
public:
    const char* name() const override { return "OpenTelemetry"; }

    CReading tryRead(std::string_view text) const override {
        return refused(eSystem::OPENTELEMETRY, text, exact::eRefusal::UNKNOWN_CODE,
                       "{} is no unit of OpenTelemetry");
    }

    std::optional<CCode> find(std::string_view /*code*/) const override { return std::nullopt; }

    void forEach(const std::function<bool(const CCode&)>& /*visit*/) const override {}

    CMatch codeFor(const exact::CMeaning& /*meaning*/) const override { return {}; }
};

constexpr COpenTelemetry System;

}  // namespace

const CSystem& openTelemetry() { return System; }

}  // namespace codes
}  // namespace mensor

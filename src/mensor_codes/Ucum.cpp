#include "mensor_codes/System.h"

namespace mensor {
namespace codes {

namespace {

class CUcum final : public CSystem {
public:
    const char* name() const override { return "UCUM"; }

    CReading tryRead(std::string_view text) const override {
        return refused(eSystem::UCUM, text, exact::eRefusal::UNKNOWN_CODE, "{} is no code of UCUM");
    }

    std::optional<CCode> find(std::string_view /*code*/) const override { return std::nullopt; }

    void forEach(const std::function<bool(const CCode&)>& /*visit*/) const override {}

    CMatch codeFor(const exact::CMeaning& /*meaning*/) const override { return {}; }
};

constexpr CUcum System;

}  // namespace

const CSystem& ucum() { return System; }

}  // namespace codes
}  // namespace mensor

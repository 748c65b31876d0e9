#include "mensor_codes/System.h"
#include "mensor_codes/UcumAtoms.h"
#include "mensor_codes/ucum_reader.h"
#include "mensor_codes/ucum_suggestions.h"
#include "mensor_codes/ucum_writer.h"

namespace mensor::codes {

namespace {

// UCUM, and the base class of systems that use its codes.
class CUcum : public CSystem {
public:
    constexpr CUcum(eSystem system, const char* name) : m_System(system), m_Name(name) {}

    const char* name() const override { return m_Name; }

    CReading tryRead(std::string_view text) const override { return readUcum(m_System, text); }

    std::optional<CCode> find(std::string_view code) const override {
        const std::size_t row = CUcumAtoms::find(code);
        return row == CUcumAtoms::None ? std::nullopt : std::optional<CCode>(CUcumAtoms::code(row));
    }

    void forEach(const std::function<void(const CCode&)>& visit) const override {
        for (std::size_t row = 0; row < CUcumAtoms::size(); ++row) {
            visit(CUcumAtoms::code(row));
        }
    }

    CMatch codeFor(const exact::CMeaning& meaning) const override { return ucumCodeFor(meaning); }

    std::vector<std::string> suggestions(std::string_view token) const override {
        return ucumSuggestions(token);
    }

    std::vector<std::string> readings(const CRefusal& refusal) const override {
        return ucumReadings(refusal);
    }

private:
    eSystem m_System;
    const char* m_Name;
};

// The codes of UCUM, and "rpm", which OpenTelemetry's conventions use for fans.
class COpenTelemetry final : public CUcum {
public:
    constexpr COpenTelemetry() : CUcum(eSystem::OPENTELEMETRY, "OpenTelemetry") {}

    CReading tryRead(std::string_view text) const override {
        return CUcum::tryRead(text == Rpm ? SameAsRpm : text);
    }

    std::optional<CCode> find(std::string_view code) const override {
        return code == Rpm ? rpm() : CUcum::find(code);
    }

    void forEach(const std::function<void(const CCode&)>& visit) const override {
        CUcum::forEach(visit);
        visit(rpm());
    }

private:
    static constexpr std::string_view Rpm = "rpm";
    static constexpr std::string_view SameAsRpm = "circ/min";

    static CCode rpm() {
        CCode code;
        code.Code = Rpm;
        code.Symbol = Rpm;
        code.Name = "revolution per minute";
        code.Definition = "2π/60 rad/s";
        code.Source = "OpenTelemetry's conventions for hardware";
        code.SameAs = SameAsRpm;
        return code;
    }
};

constexpr CUcum Ucum(eSystem::UCUM, "UCUM");
constexpr COpenTelemetry OpenTelemetry;

}  // namespace

const CSystem& ucum() { return Ucum; }
const CSystem& openTelemetry() { return OpenTelemetry; }

}  // namespace mensor::codes

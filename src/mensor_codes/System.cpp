#include "mensor_codes/System.h"

namespace mensor::codes {

namespace {

bool differInCaseOnly(std::string_view a, std::string_view b) {
    const auto lower = [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    };
    if (a.size() != b.size() || a == b) {
        return false;
    }
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (lower(a[i]) != lower(b[i])) {
            return false;
        }
    }
    return true;
}

}  // namespace

std::vector<std::string> CSystem::suggestions(std::string_view token) const {
    std::vector<std::string> codes;
    forEach([&](const CCode& code) {
        if (differInCaseOnly(code.Code, token)) {
            codes.push_back(code.Code);
        }
    });
    return codes;
}

std::vector<std::string> CSystem::readings(const CRefusal& /*refusal*/) const { return {}; }

const CSystem& systemOf(eSystem system) {
    switch (system) {
        case eSystem::UNECE: return unece();
        case eSystem::OPCUA: return opcUa();
        case eSystem::UCUM: return ucum();
        case eSystem::SENML: return senml();
        case eSystem::OPENTELEMETRY: return openTelemetry();
    }
    return unece();
}

}  // namespace mensor::codes

#include "mensor_checked/Audit.h"

#include <utility>

namespace mensor::checked {

std::vector<CFinding> audit(const std::vector<std::string>& texts, const CReadOptions& options) {
    std::vector<CFinding> findings;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        CReading reading = tryReadUnit(texts[i], options);
        if (reading.Refusal) {
            findings.push_back({i, std::move(*reading.Refusal)});
        }
    }
    return findings;
}

}  // namespace mensor::checked

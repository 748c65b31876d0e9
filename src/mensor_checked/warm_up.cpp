#include "mensor_checked/warm_up.h"

#include <exception>
#include <new>
#include <utility>

#include "mensor/UnitFormat.h"
#include "mensor_checked/Lock.h"
#include "mensor_checked/Values.h"
#include "mensor_checked/unit_reader.h"

namespace mensor::checked {

namespace {

// Makes the library cache the dimension of the unit and the converter to it. Every conversion of the unit
// uses these two.
void warm(const CUnitPtr& unit) {
    try {
        const CUnitPtr dimension = unit->getDimension();
        unit->getConverterTo(dimension);
        dimension->getDimension();
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception&) {
        // Some units cannot be converted, such as a product with an offset unit. Nothing is cached for them.
    }
}

}  // namespace

std::vector<CFinding> warmUp(const std::vector<std::string>& texts, const CReadOptions& options) {
    const Lock lock;
    for (const auto& [name, unit] : CUnitFormat::names()) {
        warm(unit);
        read(mensor::toStdString(name), options, true);
    }
    std::vector<CFinding> findings;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        CReading reading = read(texts[i], options, true);
        if (reading.Refusal) {
            findings.push_back({i, std::move(*reading.Refusal)});
            continue;
        }
        warm(reading.Unit);
        if (const auto text = textOf(reading.Unit)) {  // writing a value reads this text back
            read(*text, {}, true);
        }
    }
    return findings;
}

}  // namespace mensor::checked

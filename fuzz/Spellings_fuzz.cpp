// Spellings_fuzz.cpp: everyday spellings change the meaning of no text that is read without them. What a
// refusal offers is read.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "Input.h"
#include "mensor_exact/Definitions.h"
#include "mensor_exact/Reading.h"
#include "property.h"

using namespace mensor;
using mensor::exact::CCatalogue;
using mensor::exact::ePack;
using mensor::fuzz::fail;

namespace {

CCatalogue withOtherPacks() {
    return CCatalogue::builtIn()
        .with(ePack::CUSTOMARY)
        .with(ePack::US)
        .with(ePack::SCIENCE)
        .with(ePack::OFFSETS)
        .with(ePack::COUNTING);
}

bool isRead(const std::string& text, const CCatalogue& catalogue, bool isValue) {
    return isValue ? static_cast<bool>(exact::tryReadValue(text, catalogue))
                   : static_cast<bool>(exact::tryRead(text, catalogue));
}

void checkOffers(const exact::CRefusal& refusal, const CCatalogue& catalogue, bool isValue) {
    const exact::CDiagnosis diagnosis = exact::diagnose(refusal, catalogue);
    for (const std::string& reading : diagnosis.Readings) {
        if (!isRead(reading, catalogue, isValue)) {
            fail(diagnosis.Text, "is refused and offers a text that is refused: " + reading);
        }
    }
    for (const std::string& name : diagnosis.Suggestions) {
        if (!isRead(refusal.replaced(name), catalogue, isValue)) {
            fail(diagnosis.Text, "is refused and suggests a text that is refused: " + name);
        }
    }
    CCatalogue extended = catalogue;
    std::vector<std::string> packs = diagnosis.MorePacks;
    if (!diagnosis.Packs.empty()) {
        packs.insert(packs.begin(), diagnosis.Packs[0]);
    }
    for (const std::string& name : packs) {
        const ePack pack = *exact::packNamed(name);
        if (pack == ePack::US || pack == ePack::IMPERIAL) {
            extended = extended.with(ePack::CUSTOMARY);
        }
        extended = extended.with(pack);
    }
    for (const std::string& reading : diagnosis.WithPacks) {
        if (!isRead(reading, extended, isValue)) {
            fail(diagnosis.Text,
                 "is refused and offers with packs a text that is refused: " + reading);
        }
    }
}

void check(const std::string& text, const CCatalogue& without, const CCatalogue& with) {
    const exact::CReading before = exact::tryRead(text, without);
    const exact::CReading after = exact::tryRead(text, with);
    if (before && !after) {
        fail(text, "is refused with everyday spellings");
    }
    if (before && *before.Meaning != *after.Meaning) {
        fail(text, "means another unit with everyday spellings");
    }
    if (!before) {
        checkOffers(before.Refusal, without, false);
    }
    if (!after) {
        checkOffers(after.Refusal, with, false);
    }
    const exact::CValueReading valueBefore = exact::tryReadValue(text, without);
    const exact::CValueReading valueAfter = exact::tryReadValue(text, with);
    if (valueBefore && (!valueAfter || valueAfter.Value->Unit != valueBefore.Value->Unit ||
                        valueAfter.Value->Number != valueBefore.Value->Number)) {
        fail(text, "is another value with everyday spellings");
    }
    if (!valueAfter) {
        checkOffers(valueAfter.Refusal, with, true);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const CCatalogue Plain = CCatalogue::builtIn();
    static const CCatalogue People = Plain.with(ePack::EVERYDAY);
    static const CCatalogue Others = withOtherPacks();
    static const CCatalogue All = Others.with(ePack::EVERYDAY);
    const auto input = fuzz::shortText(data, size, 64);
    if (input) {
        check(*input, Plain, People);
        check(*input, Others, All);
    }
    return 0;
}

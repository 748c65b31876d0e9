// operations.cpp: runs fixed operations under callgrind, one part for each line of budgets.txt.
//
// It counts instructions instead of time, because a count is the same on a busy machine. Each part
// writes its count to a file of its own (CALLGRIND_DUMP_STATS_AT). The cost of the loop is the part
// "nothing", which count.cmake subtracts from all others.
#include <cstddef>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include <valgrind/callgrind.h>

#include "mensor/NonSI.h"
#include "mensor/SI.h"
#include "mensor/UnitFormat.h"
#include "mensor/ValueWithUnit.h"
#include "typical_texts.h"

using namespace mensor;

namespace {

constexpr int Repetitions = 1000;  // as in count.cmake

// Keeps the compiler from removing work whose result is not used.
template <class Result>
void keep(const Result& result) {
    asm volatile("" : : "r"(&result) : "memory");
}

// The first rounds fill the caches of the library. The later rounds are the usual case.
template <class Work>
[[gnu::noinline]] void repeat(int times, const Work& work) {
    for (int i = 0; i < times; ++i) {
        work(i);
    }
}

template <class Work>
void count(const char* name, const Work& work) {
    repeat(100, work);
    CALLGRIND_ZERO_STATS;
    repeat(Repetitions, work);
    CALLGRIND_DUMP_STATS_AT(name);
}

}  // namespace

int main() {
    count("nothing", [](int i) { keep(i); });

    const string_t km = "km", energy = "kg*m^2/s^2";
    count("parse km", [&](int) { keep(CUnit::fromString(km)); });
    count("parse kg*m^2/s^2", [&](int) { keep(CUnit::fromString(energy)); });

    // Repetitions is a multiple of the number of texts, so that all texts count the same.
    const std::vector<string_t> mix(std::begin(TypicalTexts), std::end(TypicalTexts));
    static_assert(Repetitions % (std::size(TypicalTexts)) == 0);
    count("parse a mix of 50",
          [&](int i) { keep(CUnit::fromString(mix[static_cast<std::size_t>(i) % mix.size()])); });

    count("throw and catch an error", [&](int) {
        try {
            throw std::invalid_argument("Label: xyz not recognized");
        } catch (const std::invalid_argument& error) {
            keep(error.what());
        }
    });
    const string_t unknown = "xyz";
    count("refuse an unknown name", [&](int) {
        try {
            keep(CUnit::fromString(unknown));
        } catch (const std::invalid_argument& error) {
            keep(error.what());
        }
    });

    const CUnitPtr metre = SI::Meter(), newton = SI::Newton();
    count("multiply, cached", [&](int) { keep(newton->multiply(metre)); });
    count("divide, cached", [&](int) { keep(newton->divide(metre)); });
    count("pow, cached", [&](int) { keep(metre->pow(3)); });

    const CUnitPtr kilometre = CUnit::fromString(km);
    count("look up km to m", [&](int) { keep(kilometre->getConverterTo(metre)); });

    const CUnitPtr hour = NonSI::Hour(), minute = NonSI::Minute();
    count("look up h to min", [&](int) { keep(hour->getConverterTo(minute)); });

    const CConverterPtr converter = kilometre->getConverterTo(metre);
    count("convert km to m", [&](int i) { keep(converter->convert(i)); });

    const CUnitFormatPtr format = CStandardUnitFormat::instance();
    const CUnitPtr joules = CUnit::fromString(energy);
    count("format km", [&](int) { keep(format->format(kilometre, string_t())); });
    count("format kg·m²/s²", [&](int) { keep(format->format(joules, string_t())); });

    const std::string request = "2.5 km";
    count("request 2.5 km in m",
          [&](int) { keep(CValueWithUnit::fromString(request).valueAs(metre)); });

    // Hands a table out, so the caches are off from here on: each text is parsed, and each name and
    // converter is looked up in the tables.
    CUnit::symbols();
    count("parse km, tables handed out", [&](int) { keep(CUnit::fromString(km)); });
    count("parse kg*m^2/s^2, tables handed out", [&](int) { keep(CUnit::fromString(energy)); });
    count("parse a mix of 50, tables handed out",
          [&](int i) { keep(CUnit::fromString(mix[static_cast<std::size_t>(i) % mix.size()])); });
    count("look up km to m, tables handed out",
          [&](int) { keep(kilometre->getConverterTo(metre)); });
    count("request 2.5 km in m, tables handed out",
          [&](int) { keep(CValueWithUnit::fromString(request).valueAs(metre)); });
    return 0;
}

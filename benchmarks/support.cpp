#include "support.h"

#include <sched.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>

#include "Report.h"
#include "mensor/Unit.h"

ut_system* udunits() {
    static ut_system* const system = [] {
        ut_set_error_message_handler(ut_ignore);
        ut_system* const read = ut_read_xml(nullptr);
        if (!read) {
            std::fputs("UDUNITS-2 cannot read its database\n", stderr);
            std::exit(1);
        }
        return read;
    }();
    return system;
}

ut_unit* udunit(const std::string& text) {
    ut_unit* const unit = ut_parse(udunits(), text.c_str(), UT_UTF8);
    if (!unit) {
        std::fprintf(stderr, "UDUNITS-2 cannot read \"%s\"\n", text.c_str());
        std::exit(1);
    }
    return unit;
}

cv_converter* udunitsConverter(const std::string& from, const std::string& to) {
    cv_converter* const converter = ut_get_converter(udunit(from), udunit(to));
    if (!converter) {
        std::fprintf(stderr, "UDUNITS-2 cannot convert %s to %s\n", from.c_str(), to.c_str());
        std::exit(1);
    }
    return converter;
}

void addUdunitsLookUp(const std::string& work, const std::string& from, const std::string& to) {
    add(work, "UDUNITS-2", [from, to](benchmark::State& state) {
        ut_unit* const source = udunit(from);
        ut_unit* const target = udunit(to);
        for (auto _ : state) {
            cv_converter* const converter = ut_get_converter(source, target);
            benchmark::DoNotOptimize(converter);
            cv_free(converter);
        }
    });
}

std::vector<std::size_t> randomOrder(std::size_t count) {
    std::mt19937 random(1);
    std::vector<std::size_t> order(8192);
    for (std::size_t& index : order) {
        index = random() % count;
    }
    return order;
}

bool pinToCore(int number) {
    static const cpu_set_t given = [] {
        cpu_set_t set;
        CPU_ZERO(&set);
        sched_getaffinity(0, sizeof set, &set);
        return set;
    }();
    for (std::size_t core = CPU_SETSIZE; core-- > 0;) {
        if (CPU_ISSET(core, &given) && number-- == 0) {
            cpu_set_t one;
            CPU_ZERO(&one);
            CPU_SET(core, &one);
            return sched_setaffinity(0, sizeof one, &one) == 0;
        }
    }
    return false;
}

int main(int argc, char** argv) {
    pinToCore(0);
    benchmark::Initialize(&argc, argv);
    std::string folder;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--handed-out") == 0) {
            mensor::CUnit::symbols();  // hands a table out, so the caches are off
        } else {
            folder = argv[i];
        }
    }
    CReport report(folder);
    benchmark::RunSpecifiedBenchmarks(&report);
    benchmark::Shutdown();
    return report.failed() ? 1 : 0;
}

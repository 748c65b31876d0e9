// Hardening_benchmark.cpp: the cost of hardening. It runs the same programs with the library and with
// one that was built with MENSOR_HARDENING=OFF. scripts/bench puts that into the folder that the
// environment variable MENSOR_UNHARDENED names.
#include <cstdlib>
#include <string>

#include "programs.h"
#include "support.h"

namespace {

const char* const Folder = std::getenv("MENSOR_UNHARDENED");

// While the object exists, programs that are started load the library without hardening.
class CWithoutHardening {
public:
    CWithoutHardening() { setenv("LD_LIBRARY_PATH", Folder, 1); }
    ~CWithoutHardening() { unsetenv("LD_LIBRARY_PATH"); }
    CWithoutHardening(const CWithoutHardening&) = delete;
    CWithoutHardening& operator=(const CWithoutHardening&) = delete;
};

const bool added = [] {
    if (Folder == nullptr) {
        return false;
    }
    const auto addBoth = [](const std::string& work, auto seconds) {
        const auto measure = [seconds](benchmark::State& state) {
            for (auto _ : state) {
                state.SetIterationTime(seconds());
            }
        };
        add(work, "mensor", measure)->UseManualTime()->Iterations(3);
        add(work, "not hardened",
            [measure](benchmark::State& state) {
                const CWithoutHardening without;
                measure(state);
            })
            ->UseManualTime()
            ->Iterations(3);
    };
    addBoth("hardened, start a process", [] { return timeOf("load_mensor"); });
    for (const char* what : {"parse", "look up", "convert", "format", "request"}) {
        addBoth(std::string("hardened, ") + what,
                [what] { return 1e-9 * std::stod(outputOf("work", {what})); });
    }
    return true;
}();

}  // namespace

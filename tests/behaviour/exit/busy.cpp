// busy.cpp: a plugin whose threads convert, read and write until they are stopped.
#include <atomic>
#include <cstdlib>
#include <iostream>
#include <thread>
#include <vector>

#include "mensor/NonSI.h"
#include "mensor/ProductUnit.h"
#include "mensor/SI.h"
#include "mensor/Unit.h"
#include "mensor/UnitFormat.h"
#include "mensor/ValueWithUnit.h"
#include "mensor_checked/Reading.h"
#include "mensor_checked/Values.h"

using namespace mensor;

namespace {

// Never destroyed, since a thread that is not stopped uses them until the process ends.
std::atomic<bool> isStopped{false};
std::atomic<int> working{0};
std::vector<std::thread>& threads = *new std::vector<std::thread>;

void require(bool isRight, const char* what) {
    if (!isRight) {
        std::cerr << "wrong: " << what << std::endl;
        std::_Exit(1);
    }
}

void work() {
    require(CUnit::fromString("km/h")->convertValueToUnit(90, SI::Meter() / SI::Second()) == 25,
            "value");
    require(CValueWithUnit::fromString("2.5 kN·m").valueAs(SI::Joule()) == 2500, "text");
    require((CUnit::fromString("W/m²")->root(2) ^ 2)->toStdString() == "W/m²", "notation");
    require(SI::Kilo(NonSI::Hour())->convertValueToUnit(1, NonSI::Hour()) == 1000, "prefix");
    require(prefix(KILO).Factor == 1000 && CProductUnit::one() != nullptr, "catalogue");
    require(toStdString(CASCIIUnitFormat::instance()->format(SI::Newton() / SI::Meter(), "")) ==
                "N m^-1",
            "ASCII");
    require(NonSI::Psi()->isCompatible(SI::Pascal()) && NonSI::None() != nullptr, "accessors");
    require(checked::readUnit("W/(m² K)") != nullptr, "checked unit");
    require(checked::writeValue(0.5, SI::Newton()) == "0.5 N", "checked text");
}

}  // namespace

// Starts threads and returns when all of them are working.
extern "C" void startWork() {
    constexpr int Count = 4;
    for (int i = 0; i < Count; ++i) {
        threads.emplace_back([] {
            work();
            for (++working; !isStopped;) {
                work();
            }
        });
    }
    while (working < Count) {
        std::this_thread::yield();
    }
}

// Stops the threads, and works once more.
extern "C" void stopWork() {
    isStopped = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
    work();
}

// Exit_test.cpp: what is registered is destroyed when the process ends.
//
// The tables are destroyed after main(), when no test can look. So a test announces how many units are
// to go, and leaves something to write in a stream of its own: flushing that is the last thing that the
// process does, after all destructors, and ends it with a failure if the units are still there.
#include <unistd.h>

#include <cstddef>
#include <cstdio>
#include <memory>

#include "mensor/BaseUnit.h"
#include "mensor/ProductUnit.h"
#include "mensor/SI.h"
#include "mensor/Unit.h"
#include "support/ClientUnit.h"
#include "support/Matchers.h"

namespace mensor {
namespace {

int announced = 0;
int destroyed = 0;

ssize_t checkAtTheEnd(void*, const char*, std::size_t size) {
    if (destroyed != announced) {
        constexpr char Message[] = "not all units were destroyed at exit\n";
        if (write(STDERR_FILENO, Message, sizeof Message - 1) != 0) {
            _exit(1);
        }
    }
    return static_cast<ssize_t>(size);
}

std::FILE* const stream = [] {
    cookie_io_functions_t functions{};
    functions.write = checkAtTheEnd;
    std::FILE* const result = fopencookie(nullptr, "w", functions);
    std::fputc('\n', result);
    return result;
}();

class CMortal : public CClientUnit {
public:
    using CClientUnit::CClientUnit;
    ~CMortal() override { ++destroyed; }
};

CUnitPtr announcedUnit() {
    EXPECT_NE(stream, nullptr);
    ++announced;
    const string_t symbol = freshSymbol();
    return std::make_shared<CMortal>(symbol, hashFromString(symbol))->canonical();
}

TEST(Exit, DestroysAUnitThatNothingElseHolds) { announcedUnit(); }

// A unit remembers what was made of it, and that holds the unit.
TEST(Exit, DestroysAUnitThoughItsProductsHoldIt) {
    const CUnitPtr unit = announcedUnit();
    const CUnitPtr speed = unit / SI::Second();
    EXPECT_EQ(speed * SI::Second(), unit);
    EXPECT_NE((unit ^ 2)->root(3), nullptr);
    EXPECT_NE(unit->root(2) / SI::Meter(), nullptr);
}

// A product is its own system unit and remembers it.
TEST(Exit, DestroysAUnitWhoseProductsRememberTheirSystemUnit) {
    const CUnitPtr speed = announcedUnit() / SI::Second();
    EXPECT_EQ(speed->getSystemUnit(), speed);
    EXPECT_EQ((speed * 3.6)->getSystemUnit(), speed);
    EXPECT_THAT(speed * 3.6, ConvertsTo(speed, 1.0, 3.6));
}

// A client's unit whose system unit, another one of the client, was made of a product of it.
TEST(Exit, DestroysAUnitWhoseSystemUnitHoldsAProductOfIt) {
    const CUnitPtr unit = announcedUnit(), product = unit / SI::Second();
    const auto system = freshClientUnit();
    system->BaseUnits = [product] { return product; };
    static_cast<CMortal&>(*unit).SystemUnit = [held = std::weak_ptr<CUnit>(system)] {
        return held.lock();
    };
    EXPECT_EQ(product->getSystemUnit(), system / SI::Second());
}

// A base unit that a client mapped onto something that rests on it.
TEST(Exit, DestroysAUnitThatADimensionHolds) {
    const CUnitPtr unit = announcedUnit();
    const CBaseUnitPtr base = CBaseUnit::getInstance(freshSymbol());
    base->setDimension(base * unit, CConverter::identity());
    EXPECT_EQ(base->getCtxDimension(), base * unit);
}

}  // namespace
}  // namespace mensor

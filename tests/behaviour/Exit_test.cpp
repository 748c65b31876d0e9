// Exit_test.cpp: registered units are not destroyed when the process ends. behaviour/exit has
// programs whose threads run on while it ends.
//
// A test cannot run code after main(). So it leaves unwritten output in a stream with functions of
// its own. Flushing that stream is the last act of the process, after all destructors. It makes the
// process fail if a unit was destroyed.
#include <unistd.h>

#include <cstddef>
#include <cstdio>
#include <memory>

#include "mensor/SI.h"
#include "mensor/Unit.h"
#include "mensor/UnitFormat.h"
#include "support/ClientUnit.h"
#include "support/Matchers.h"

namespace mensor {
namespace {

int destroyed = 0;

ssize_t checkAtTheEnd(void*, const char*, std::size_t size) {
    if (destroyed != 0) {
        constexpr char Message[] = "a unit was destroyed at exit\n";
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

class CObserved : public CClientUnit {
public:
    using CClientUnit::CClientUnit;
    ~CObserved() override { ++destroyed; }
};

CUnitPtr observedUnit() {
    EXPECT_NE(stream, nullptr);
    const string_t symbol = freshSymbol();
    return std::make_shared<CObserved>(symbol, hashFromString(symbol))->canonical();
}

TEST(Exit, DestroysNoRegisteredUnit) { observedUnit(); }

TEST(Exit, DestroysNoUnitOfAProduct) {
    const CUnitPtr unit = observedUnit();
    EXPECT_EQ((unit / SI::Second()) * SI::Second(), unit);
    EXPECT_EQ((unit / SI::Second())->getSystemUnit(), unit / SI::Second());
}

// A unit that only the table of aliases or a table of dimensions owns.
TEST(Exit, DestroysNoUnitThatATableOwns) {
    const string_t symbol = freshSymbol();
    const auto unit = std::make_shared<CObserved>(symbol, hashFromString(symbol));
    CUnitFormat::alias(unit, freshSymbol());
    const auto other = std::make_shared<CObserved>(symbol, hashFromString(symbol));
    EXPECT_EQ(other->getDimension(), other);
}

}  // namespace
}  // namespace mensor

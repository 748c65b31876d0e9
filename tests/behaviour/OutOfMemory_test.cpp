// OutOfMemory_test.cpp: whichever allocation fails, a unit is registered as a whole or not at all.
//
// The program replaces operator new, the library's included: an armed one refuses the allocation that a
// test has chosen. Each operation is tried with its first, second, third ... allocation refused until
// it succeeds.
#include <cstddef>
#include <cstdlib>
#include <functional>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "mensor/BaseUnit.h"
#include "mensor/ProductUnit.h"
#include "mensor/SI.h"
#include "mensor/Unit.h"
#include "mensor/UnitFormat.h"
#include "support/ClientUnit.h"
#include "support/Matchers.h"

namespace {

thread_local int allocationsLeft = -1;  // to be granted before one is refused; negative: all

void* allocate(std::size_t size) {
    if (allocationsLeft == 0) {
        return nullptr;
    }
    if (allocationsLeft > 0) {
        --allocationsLeft;
    }
    return std::malloc(size != 0 ? size : 1);
}

// Not inlined, lest the compiler see only half of the pair and warn of a mismatch.
__attribute__((noinline)) void release(void* memory) { std::free(memory); }

}  // namespace

void* operator new(std::size_t size) {
    void* const memory = allocate(size);
    return memory != nullptr ? memory : throw std::bad_alloc();
}
void* operator new[](std::size_t size) { return operator new(size); }
void operator delete(void* memory) noexcept { release(memory); }
void operator delete[](void* memory) noexcept { release(memory); }
void operator delete(void* memory, std::size_t) noexcept { release(memory); }
void operator delete[](void* memory, std::size_t) noexcept { release(memory); }

namespace mensor {
namespace {

// What `operation` gives with `granted` allocations; none if that is too few.
CUnitPtr tryWith(int granted, const std::function<CUnitPtr()>& operation) {
    CUnitPtr result;
    allocationsLeft = granted;
    try {
        result = operation();
    } catch (const std::bad_alloc&) {
    }
    allocationsLeft = -1;
    return result;
}

TEST(OutOfMemory, LeavesTheTablesOfUnitsAndTextsAsTheyWere) {
    const CBaseUnitPtr a = CBaseUnit::getInstance(freshSymbol());
    const CBaseUnitPtr b = CBaseUnit::getInstance(freshSymbol());
    const CUnitPtr ratio = a / b;
    ratio->baseUnits();  // registers what it is folded from, and that may stay
    const string_t base = freshSymbol(), client = freshSymbol(), own = freshSymbol();
    const string_t label = freshSymbol(), alias = freshSymbol();
    const int hash = hashFromString(client);
    const std::pair<const char*, std::function<CUnitPtr()>> operations[] = {
        {"base unit", [&] { return CBaseUnit::getInstance(base); }},
        {"client's unit", [&] { return CClientUnit::make(client, hash)->canonical(); }},
        {"product", [&] { return a * b; }},
        {"quotient", [&] { return b / a; }},
        {"power", [&] { return a ^ 3; }},
        {"root", [&] { return a->root(5); }},
        {"scaled", [&] { return a * 1000.0; }},
        {"shifted", [&] { return b + 40.0; }},
        {"alternate", [&] { return ratio->alternate(own); }},
        {"label", [&] { return CUnitFormat::label(a, label); }},
        {"alias", [&] { return CUnitFormat::alias(b, alias); }},
    };
    for (const auto& [name, operation] : operations) {
        SCOPED_TRACE(name);
        const Tables before;
        CUnitPtr result;
        int granted = 0;
        for (; granted < 1000; ++granted) {
            result = tryWith(granted, operation);
            if (result) {
                break;
            }
            ASSERT_EQ(Tables(), before) << "after " << granted << " allocations";
            ASSERT_TRUE(isFree(CUnit::mutex()));
            ASSERT_TRUE(isFree(Inside::lookupMutex(a)));
        }
        ASSERT_TRUE(result);
        EXPECT_GT(granted, 0) << "or nothing was refused";
        EXPECT_FALSE(Tables() == before);
        EXPECT_EQ(operation(), result);
        EXPECT_EQ(CUnit::instances().at(result->hashCode()), result);
    }
}

}  // namespace
}  // namespace mensor

// first_time.cpp: prints the nanoseconds of one operation whose result is new.
//
// usage: first_time WHO WHAT   WHO: mensor, UDUNITS-2; WHAT: multiply, divide, pow, parse
//
// Both libraries work on the named units of the SI: each with each, or each to the powers 2 to 5. A few
// of the results exist already in the catalogue of mensor. "parse" reads new texts of two names. The
// products exist already.
#include <udunits2.h>

#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

#include "mensor/Unit.h"

using namespace mensor;

namespace {

const char* const Names[] = {"m", "s",  "kg", "A",  "K",  "mol", "cd", "rad", "Hz",
                             "N", "Pa", "J",  "W",  "C",  "V",   "F",  "S",   "Wb",
                             "T", "H",  "lm", "lx", "Bq", "Gy",  "Sv", "kat"};

struct Mensor {
    using unit_t = CUnitPtr;
    unit_t read(const std::string& text) { return CUnit::fromString(text); }
    void multiply(const unit_t& left, const unit_t& right) { left->multiply(right); }
    void divide(const unit_t& left, const unit_t& right) { left->divide(right); }
    void pow(const unit_t& unit, int n) { unit->pow(n); }
    string_t prepare(const std::string& text) { return text; }
    void parse(const string_t& text) { CUnit::fromString(text); }
};

struct Udunits {
    using unit_t = ut_unit*;
    ut_system* System = [] {
        ut_set_error_message_handler(ut_ignore);
        return ut_read_xml(nullptr);
    }();
    unit_t read(const std::string& text) { return ut_parse(System, text.c_str(), UT_UTF8); }
    void multiply(unit_t left, unit_t right) { ut_free(ut_multiply(left, right)); }
    void divide(unit_t left, unit_t right) { ut_free(ut_divide(left, right)); }
    void pow(unit_t unit, int n) { ut_free(ut_raise(unit, n)); }
    std::string prepare(const std::string& text) { return text; }
    void parse(const std::string& text) { ut_free(read(text)); }
};

template <class Library>
double nanosecondsPerOperation(Library library, const std::string& what) {
    std::vector<typename Library::unit_t> units;
    std::vector<decltype(library.prepare(""))> texts;
    for (const char* name : Names) {
        units.push_back(library.read(name));
        for (const char* other : Names) {
            if (what == "parse") {
                library.parse(library.prepare(std::string(name) + "*" + other));
                texts.push_back(library.prepare(std::string(name) + " " + other));
            }
        }
    }

    int count = 0;
    const auto before = std::chrono::steady_clock::now();
    for (const auto& text : texts) {
        library.parse(text);
        ++count;
    }
    if (what != "parse") {
        for (const auto& left : units) {
            if (what == "pow") {
                for (int n = 2; n <= 5; ++n, ++count) {
                    library.pow(left, n);
                }
                continue;
            }
            for (const auto& right : units) {
                what == "multiply" ? library.multiply(left, right) : library.divide(left, right);
                ++count;
            }
        }
    }
    const std::chrono::duration<double, std::nano> time = std::chrono::steady_clock::now() - before;
    return time.count() / count;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        return 2;
    }
    const std::string who = argv[1], what = argv[2];
    std::printf("%f\n", who == "mensor" ? nanosecondsPerOperation(Mensor(), what)
                                        : nanosecondsPerOperation(Udunits(), what));
    return 0;
}

// texts.cpp: parses texts of 1 kB to 1 MB under callgrind, each in a part of its own, "KIND
// LENGTH". Other tests check the results; this program only parses each text once.
#include <exception>
#include <string>

#include <valgrind/callgrind.h>

#include "mensor/BaseUnit.h"
#include "mensor/ValueWithUnit.h"
#include "mensor_checked/Reading.h"

using namespace mensor;

namespace {

std::string repeated(const std::string& piece, std::size_t length) {
    std::string text;
    text.reserve(length + piece.size());
    while (text.size() < length) {
        text += piece;
    }
    return text;
}

template <class Parse>
void count(const std::string& kind, std::size_t length, const Parse& parse) {
    const std::string name = kind + ' ' + std::to_string(length);
    CALLGRIND_ZERO_STATS;
    try {
        parse();
    } catch (const std::exception&) {
    }
    CALLGRIND_DUMP_STATS_AT(name.c_str());
}

const std::string LongName(400, 'x');

const struct {
    const char* Kind;
    std::string Begin, Piece;
} Texts[] = {
    {"a long name by turns", "", LongName + '/'},
    {"unknown name", "", "y"},
    {"unknown name of three bytes each", "", "\u20AC"},
    {"opening brackets", "", "["},
    {"tags", "m", "<i>"},
    {"open entities", "m", "&"},
    {"digits", "m", "0"},
    {"exponents", "m", "^2"},
    {"slashes", "m", "/"},
    {"torn characters", "", "\xF0"},
};

}  // namespace

int main() {
    CBaseUnit::getInstance(LongName);
    for (const std::size_t length : {1000U, 10000U, 100000U, 1000000U}) {
        for (const auto& [kind, begin, piece] : Texts) {
            const std::string text = begin + repeated(piece, length);
            count(kind, length, [&] { CUnit::fromString(text); });
        }
        const std::string digits = repeated("7", length);
        count("value of many digits", length, [&] { CValueWithUnit::fromString(digits + " m"); });
    }
    // More expensive, so no longer texts: the factors register products, or cancel each other.
    for (const std::size_t length : {1000U, 10000U, 100000U}) {
        for (const char* piece : {"cd·", "cd/"}) {
            const std::string text = repeated(piece, length);
            count(piece, length, [&] { CUnit::fromString(text); });
        }
    }
    // The companion reads no more than 4096 characters.
    for (const std::size_t length : {400U, 4000U}) {
        const std::string text = repeated("A*", length);
        count("one name, checked", length, [&] { checked::tryReadUnit(text); });
        const std::string brackets = repeated("(", length);
        count("brackets, checked", length, [&] { checked::tryReadUnit(brackets); });
        const std::string name = repeated("x", length);
        count("unknown name, checked", length, [&] { checked::tryReadUnit(name); });
    }
    return 0;
}

#include "mensor_exact/Traps.h"

#include <cstddef>
#include <iterator>

#include "mensor_exact/NameIndex.h"

namespace mensor::exact {

namespace {

// All texts, one after the other: pointers would have to be relocated when the library is loaded.
constexpr char Texts[] =
#define MENSOR_TRAP(place, text, sentence, first, second) text first second
#define MENSOR_BEHIND(place, left, right, sentence, first, second) right left first second
#define MENSOR_NAMED(verdict, text, sentence, first, second) text first second
#include "mensor_exact/traps.def"
#define MENSOR_REFUSAL(text, sentence, first, second) text first second
#include "mensor_exact/refusals.def"
    ;

struct CRow {
    ePlace Place;
    std::string_view Sentence;
    std::size_t Lengths[4];
};

// NOLINTBEGIN(bugprone-macro-parentheses): the arguments are literals, and the rows lists.
constexpr CRow Written[] = {
#define MENSOR_TRAP(place, text, sentence, first, second) \
    {ePlace::place,                                       \
     {sentence, sizeof sentence - 1},                     \
     {sizeof text - 1, 0, sizeof first - 1, sizeof second - 1}},
#define MENSOR_BEHIND(place, left, right, sentence, first, second) \
    {ePlace::place,                                                \
     {sentence, sizeof sentence - 1},                              \
     {sizeof right - 1, sizeof left - 1, sizeof first - 1, sizeof second - 1}},
#define MENSOR_NAMED(verdict, text, sentence, first, second) \
    {ePlace::verdict,                                        \
     {sentence, sizeof sentence - 1},                        \
     {sizeof text - 1, 0, sizeof first - 1, sizeof second - 1}},
#include "mensor_exact/traps.def"
#define MENSOR_REFUSAL(text, sentence, first, second) \
    {ePlace::UNKNOWN,                                 \
     {sentence, sizeof sentence - 1},                 \
     {sizeof text - 1, 0, sizeof first - 1, sizeof second - 1}},
#include "mensor_exact/refusals.def"
};
// NOLINTEND(bugprone-macro-parentheses)

constexpr std::size_t RowCount = std::size(Written);

// Each sentence once. Rows know it by its number.
struct CSentences {
    static constexpr std::size_t Most = 250;
    const char* All[Most] = {};
    std::size_t Rows[Most] = {};  // the first one of each
    std::uint8_t Numbers[RowCount] = {};
};

// Rows of one sentence mostly follow each other, so the latest ones are compared first.
constexpr CSentences makeSentences() {
    CSentences sentences;
    std::size_t count = 0;
    for (std::size_t row = 0; row < RowCount; ++row) {
        std::size_t number = count;
        while (number > 0 &&
               !isEqual(Written[sentences.Rows[number - 1]].Sentence, Written[row].Sentence)) {
            --number;
        }
        if (number == 0) {
            sentences.All[count] = Written[row].Sentence.data();
            sentences.Rows[count] = row;
            number = ++count;
        }
        sentences.Numbers[row] = static_cast<std::uint8_t>(number - 1);
    }
    return sentences;
}

constexpr CSentences Numbered = makeSentences();

struct CSentenceTexts {
    const char* All[CSentences::Most] = {};
};

constexpr CSentenceTexts makeSentenceTexts() {
    CSentenceTexts texts;
    for (std::size_t i = 0; i < CSentences::Most; ++i) {
        texts.All[i] = Numbered.All[i];
    }
    return texts;
}

constexpr CSentenceTexts Sentences = makeSentenceTexts();

struct CRows {
    CTrap Rows[RowCount] = {};
};

constexpr CRows makeRows() {
    static_assert(sizeof Texts < 65536);
    CRows rows;
    std::size_t start = 0;
    for (std::size_t row = 0; row < RowCount; ++row) {
        CTrap& trap = rows.Rows[row];
        trap.Place = Written[row].Place;
        trap.SentenceNumber = Numbered.Numbers[row];
        trap.Start = static_cast<std::uint16_t>(start);
        for (std::size_t i = 0; i < 4; ++i) {
            trap.Lengths[i] = static_cast<std::uint8_t>(Written[row].Lengths[i]);
            start += Written[row].Lengths[i];
        }
    }
    return rows;
}

constexpr CRows All = makeRows();

struct CMember {
    ePlace Class;
    char Name[11];
};

constexpr CMember Members[] = {
#define MENSOR_CLASS(place, text) {ePlace::place, text},
#include "mensor_exact/traps.def"
};

constexpr std::string_view textOf(std::size_t row) {
    return {Texts + All.Rows[row].Start, All.Rows[row].Lengths[0]};
}

constexpr CNameIndex<RowCount> Index(textOf);

// The first row with this text that `isRight` says is the right one.
template <class IsRight>
const CTrap* find(std::string_view text, const IsRight& isRight) {
    constexpr std::size_t Longest = 32;  // as no row is
    if (text.size() > Longest) {
        return nullptr;
    }
    const std::size_t row = Index.find(
        text, [&](std::size_t i) { return isEqual(textOf(i), text) && isRight(All.Rows[i]); });
    return row == Index.None ? nullptr : &All.Rows[row];
}

}  // namespace

std::string_view CTrap::piece(std::size_t index) const noexcept {
    std::size_t start = Start;
    for (std::size_t i = 0; i < index; ++i) {
        start += Lengths[i];
    }
    return {Texts + start, Lengths[index]};
}

const char* CTrap::sentence() const noexcept { return Sentences.All[SentenceNumber]; }

const CTrap* trapsBegin() noexcept { return std::begin(All.Rows); }
const CTrap* trapsEnd() noexcept { return std::end(All.Rows); }

const CTrap* findTrap(ePlace place, std::string_view text, std::string_view behind) noexcept {
    return find(text,
                [&](const CTrap& row) { return row.Place == place && row.behind() == behind; });
}

const CTrap* findNote(std::string_view name) noexcept {
    return find(name, [](const CTrap& row) {
        return row.Place == ePlace::UNUSUAL || row.Place == ePlace::TOLD;
    });
}

bool isMember(std::string_view name, ePlace place) noexcept {
    for (const CMember& member : Members) {
        if (member.Class == place && member.Name == name) {
            return true;
        }
    }
    return false;
}

const CTrap* findPair(std::string_view name, std::string_view next, bool isBelow) noexcept {
    const CTrap* const below = isBelow ? findTrap(ePlace::MASS_BELOW, next) : nullptr;
    if (below != nullptr && isMember(name, ePlace::MASS)) {
        return below;
    }
    return find(next, [&](const CTrap& row) {
        return row.Place == ePlace::APART ? row.behind() == name
               : row.Place == ePlace::MASS_PER
                   ? !isBelow && isMember(name, ePlace::MASS)
                   : row.Place < ePlace::MASS_PER && isMember(name, row.Place);
    });
}

const CTrap* findApart(std::string_view name, std::string_view next) noexcept {
    return find(next, [&](const CTrap& row) {
        return row.Place == ePlace::APART
                   ? row.behind() == name
                   : row.Place == ePlace::DEGREE && isMember(name, ePlace::DEGREE);
    });
}

}  // namespace mensor::exact

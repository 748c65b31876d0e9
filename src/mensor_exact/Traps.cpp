#include "mensor_exact/Traps.h"

#include <cstddef>
#include <iterator>

#include "mensor_exact/NameIndex.h"

namespace mensor::exact {

namespace {

// All texts, one after the other. An array of pointers would need relocations at load time.
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

// NOLINTBEGIN(bugprone-macro-parentheses): the arguments are literals, and the rows are lists.
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

// Holds each sentence once. A row has the number of its sentence.
struct CSentences {
    static constexpr std::size_t Most = 250;
    const char* All[Most] = {};
    std::size_t Rows[Most] = {};  // the first row with each sentence
    std::uint8_t Numbers[RowCount] = {};
};

// Compares the latest sentences first: rows with one sentence are mostly next to each other.
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

constexpr bool isNote(ePlace place) { return place == ePlace::UNUSUAL || place == ePlace::TOLD; }

// Holds one bit for each hash of a name with a note. Few other names have such a hash.
struct CNoteHashes {
    static constexpr std::size_t Count = 1024;
    std::uint64_t Bits[Count / 64] = {};

    static constexpr std::uint64_t bitOf(std::size_t hash) { return std::uint64_t{1} << hash % 64; }
    constexpr bool has(std::size_t hash) const {
        return (Bits[hash % Count / 64] & bitOf(hash)) != 0;
    }
};

constexpr CNoteHashes makeNoteHashes() {
    CNoteHashes hashes;
    for (std::size_t row = 0; row < RowCount; ++row) {
        if (isNote(All.Rows[row].Place)) {
            const std::size_t hash = Index.placeOf(textOf(row));
            hashes.Bits[hash % CNoteHashes::Count / 64] |= CNoteHashes::bitOf(hash);
        }
    }
    return hashes;
}

constexpr CNoteHashes NoteHashes = makeNoteHashes();

// Returns the first row with this text for which `isPlace` and `isRight` return true, or null. `isPlace` is
// cheap and excludes most of the rows.
template <class IsPlace, class IsRight>
const CTrap* find(std::string_view text, const IsPlace& isPlace, const IsRight& isRight) {
    constexpr std::size_t Longest = 32;  // no row is longer
    if (text.size() > Longest) {
        return nullptr;
    }
    const std::size_t row = Index.find(text, [&](std::size_t i) {
        return isPlace(All.Rows[i].Place) && isEqual(textOf(i), text) && isRight(All.Rows[i]);
    });
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
    return find(
        text, [place](ePlace other) { return other == place; },
        [behind](const CTrap& row) { return row.behind() == behind; });
}

bool hasTrap(ePlace place, std::string_view text) noexcept {
    return find(
               text, [place](ePlace other) { return other == place; },
               [](const CTrap&) { return true; }) != nullptr;
}

const CTrap* findNote(std::string_view name) noexcept {
    if (!NoteHashes.has(Index.placeOf(name))) {
        return nullptr;
    }
    return find(name, isNote, [](const CTrap&) { return true; });
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
    return find(
        next, [](ePlace place) { return place <= ePlace::APART; },
        [&](const CTrap& row) {
            return row.Place == ePlace::APART      ? row.behind() == name
                   : row.Place == ePlace::MASS_PER ? !isBelow && isMember(name, ePlace::MASS)
                                                   : isMember(name, row.Place);
        });
}

const CTrap* findApart(std::string_view name, std::string_view next) noexcept {
    return find(
        next, [](ePlace place) { return place == ePlace::APART || place == ePlace::DEGREE; },
        [name](const CTrap& row) {
            return row.Place == ePlace::APART ? row.behind() == name
                                              : isMember(name, ePlace::DEGREE);
        });
}

}  // namespace mensor::exact

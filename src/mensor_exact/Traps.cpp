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

// The number of the sentence of each row, and the first row with each sentence.
struct CSentences {
    static constexpr std::size_t Most = 250;
    std::size_t Rows[Most] = {};
    std::uint8_t Numbers[RowCount] = {};
    std::size_t Count = 0;
};

// Compares the latest sentences first: rows with one sentence are mostly next to each other.
constexpr CSentences makeSentences() {
    CSentences sentences;
    for (std::size_t row = 0; row < RowCount; ++row) {
        std::size_t number = sentences.Count;
        while (number > 0 &&
               !isEqual(Written[sentences.Rows[number - 1]].Sentence, Written[row].Sentence)) {
            --number;
        }
        if (number == 0) {
            sentences.Rows[sentences.Count] = row;
            number = ++sentences.Count;
        }
        sentences.Numbers[row] = static_cast<std::uint8_t>(number - 1);
    }
    return sentences;
}

constexpr CSentences Numbered = makeSentences();

constexpr std::size_t sizeOfSentences() {
    std::size_t size = 0;
    for (std::size_t i = 0; i < Numbered.Count; ++i) {
        size += Written[Numbered.Rows[i]].Sentence.size() + 1;
    }
    return size;
}

// Holds each sentence once, with a zero at its end.
struct CSentenceTexts {
    char All[sizeOfSentences()] = {};
    std::uint16_t Starts[Numbered.Count] = {};
};

constexpr CSentenceTexts makeSentenceTexts() {
    static_assert(sizeOfSentences() < 65536);
    CSentenceTexts texts;
    std::size_t end = 0;
    for (std::size_t i = 0; i < Numbered.Count; ++i) {
        texts.Starts[i] = static_cast<std::uint16_t>(end);
        for (const char c : Written[Numbered.Rows[i]].Sentence) {
            texts.All[end++] = c;
        }
        ++end;
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

constexpr std::string_view behindOf(std::size_t row) {
    const CTrap& trap = All.Rows[row];
    return {Texts + trap.Start + trap.Lengths[0], trap.Lengths[1]};
}

// Dense, since Hashes ends most look-ups before.
constexpr CNameIndex<RowCount, RowCount * 5 / 4> Index(textOf);

constexpr bool isNote(ePlace place) { return place == ePlace::UNUSUAL || place == ePlace::TOLD; }

// Returns whether the reader looks for rows of this place in texts that it accepts.
constexpr bool isCommon(ePlace place) { return place >= ePlace::HEAT && place <= ePlace::TOLD; }

// Holds one bit for each hash of a common row. Few other texts have such a hash, so most look-ups end here.
struct CHashes {
    static constexpr std::size_t Count = 4096;
    std::uint64_t Bits[Count / 64] = {};

    constexpr void add(std::size_t hash) { Bits[hash / 64] |= std::uint64_t{1} << hash % 64; }
    constexpr bool has(std::size_t hash) const { return (Bits[hash / 64] >> hash % 64 & 1) != 0; }

    static constexpr std::size_t hashOf(ePlace place, std::string_view text,
                                        std::string_view behind) {
        const std::uint32_t seed = isNote(place) ? 0 : static_cast<std::uint32_t>(place);
        const std::uint32_t hash = hashOfName(behind, hashOfName(text) + seed);
        return (hash ^ hash >> 15) % Count;
    }
};

constexpr CHashes makeHashes() {
    CHashes hashes;
    for (std::size_t row = 0; row < RowCount; ++row) {
        const ePlace place = All.Rows[row].Place;
        if (isCommon(place)) {
            hashes.add(CHashes::hashOf(place, textOf(row), {}));
            hashes.add(CHashes::hashOf(place, textOf(row), behindOf(row)));
        }
    }
    return hashes;
}

constexpr CHashes Hashes = makeHashes();

// A quick test that excludes most texts. If it returns false, no row has this place and these
// texts.
bool mayHave(ePlace place, std::string_view text, std::string_view behind) {
    return !isCommon(place) || Hashes.has(CHashes::hashOf(place, text, behind));
}

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

const char* CTrap::sentence() const noexcept {
    return Sentences.All + Sentences.Starts[SentenceNumber];
}

const CTrap* trapsBegin() noexcept { return std::begin(All.Rows); }
const CTrap* trapsEnd() noexcept { return std::end(All.Rows); }

const CTrap* findTrap(ePlace place, std::string_view text, std::string_view behind) noexcept {
    if (!mayHave(place, text, behind)) {
        return nullptr;
    }
    return find(
        text, [place](ePlace other) { return other == place; },
        [behind](const CTrap& row) { return row.behind() == behind; });
}

bool hasTrap(ePlace place, std::string_view text) noexcept {
    return mayHave(place, text, {}) && find(
                                           text, [place](ePlace other) { return other == place; },
                                           [](const CTrap&) { return true; }) != nullptr;
}

const CTrap* findNote(std::string_view name) noexcept {
    if (!mayHave(ePlace::TOLD, name, {})) {
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
        next,
        [](ePlace place) {
            return place == ePlace::APART || place == ePlace::DEGREE || place == ePlace::PRESSURE;
        },
        [name](const CTrap& row) {
            return row.Place == ePlace::APART ? row.behind() == name : isMember(name, row.Place);
        });
}

}  // namespace mensor::exact

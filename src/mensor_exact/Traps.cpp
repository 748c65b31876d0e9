#include "mensor_exact/Traps.h"

#include <cstddef>
#include <iterator>

#include "mensor_exact/NameIndex.h"

namespace mensor::exact {

namespace {

struct CWritten {
    ePlace Place;
    std::string_view Text;
    std::string_view Sentence;
    std::string_view Behind;
    std::string_view First;
    std::string_view Second;
};

// NOLINTBEGIN(bugprone-macro-parentheses): the arguments are literals, and the rows are lists.
// Only the compiler reads this array, whose pointers would need relocations at load time.
constexpr CWritten Written[] = {
#define MENSOR_TRAP(place, text, sentence, first, second) \
    {ePlace::place, text, sentence, "", first, second},
#define MENSOR_BEHIND(place, left, right, sentence, first, second) \
    {ePlace::place, right, sentence, left, first, second},
#define MENSOR_NAMED(verdict, text, sentence, first, second) \
    {ePlace::verdict, text, sentence, "", first, second},
#include "mensor_exact/traps.def"
#define MENSOR_REFUSAL(text, sentence, first, second) \
    {ePlace::UNKNOWN, text, sentence, "", first, second},
#include "mensor_exact/refusals.def"
};
// NOLINTEND(bugprone-macro-parentheses)

constexpr std::size_t RowCount = std::size(Written);

// Numbers things in the order in which they appear first. Equal things get the same number.
struct CNumbers {
    static constexpr std::size_t Places = 16384;
    std::size_t FirstOf[Places] = {};     // for each number the first thing with it
    std::uint16_t NumberAt[Places] = {};  // a hash table: a number plus 1; 0 if the place is empty
    std::uint16_t Number[4 * RowCount] = {};  // for each thing its number
    std::size_t Count = 0;

    template <class IsSame>
    constexpr void add(std::size_t thing, std::uint32_t hash, const IsSame& isSame) {
        std::size_t place = (hash ^ hash >> 15) % Places;
        while (NumberAt[place] != 0 && !isSame(FirstOf[NumberAt[place] - 1], thing)) {
            place = (place + 1) % Places;
        }
        if (NumberAt[place] == 0) {
            FirstOf[Count] = thing;
            NumberAt[place] = static_cast<std::uint16_t>(++Count);
        }
        Number[thing] = static_cast<std::uint16_t>(NumberAt[place] - 1);
    }
};

// The texts of all rows: four for each row.
constexpr std::size_t TextCount = 4 * RowCount;

constexpr std::string_view writtenText(std::size_t i) {
    const CWritten& row = Written[i / 4];
    return i % 4 == 0 ? row.Text : i % 4 == 1 ? row.Behind : i % 4 == 2 ? row.First : row.Second;
}

constexpr CNumbers numberTexts() {
    CNumbers numbers;
    for (std::size_t i = 0; i < TextCount; ++i) {
        numbers.add(i, hashOfName(writtenText(i)), [](std::size_t a, std::size_t b) {
            return isEqual(writtenText(a), writtenText(b));
        });
    }
    return numbers;
}

constexpr CNumbers NumberedTexts = numberTexts();

constexpr CNumbers numberSentences() {
    CNumbers numbers;
    for (std::size_t row = 0; row < RowCount; ++row) {
        numbers.add(row, hashOfName(Written[row].Sentence), [](std::size_t a, std::size_t b) {
            return isEqual(Written[a].Sentence, Written[b].Sentence);
        });
    }
    return numbers;
}

constexpr CNumbers NumberedSentences = numberSentences();

// The rows that differ in more than the place and the text.
constexpr CNumbers numberAnswers() {
    CNumbers numbers;
    for (std::size_t row = 0; row < RowCount; ++row) {
        std::uint32_t hash = NumberedSentences.Number[row];
        for (std::size_t i = 4 * row + 1; i < 4 * row + 4; ++i) {
            hash = hash * 16777619U + NumberedTexts.Number[i];
        }
        numbers.add(row, hash, [](std::size_t a, std::size_t b) {
            return NumberedSentences.Number[a] == NumberedSentences.Number[b] &&
                   NumberedTexts.Number[4 * a + 1] == NumberedTexts.Number[4 * b + 1] &&
                   NumberedTexts.Number[4 * a + 2] == NumberedTexts.Number[4 * b + 2] &&
                   NumberedTexts.Number[4 * a + 3] == NumberedTexts.Number[4 * b + 3];
        });
    }
    return numbers;
}

constexpr CNumbers NumberedAnswers = numberAnswers();

constexpr std::size_t sizeOfTexts() {
    std::size_t size = 0;
    for (std::size_t i = 0; i < NumberedTexts.Count; ++i) {
        size += writtenText(NumberedTexts.FirstOf[i]).size();
    }
    return size;
}

constexpr std::size_t sizeOfSentences() {
    std::size_t size = 0;
    for (std::size_t i = 0; i < NumberedSentences.Count; ++i) {
        size += Written[NumberedSentences.FirstOf[i]].Sentence.size() + 1;
    }
    return size;
}

// Holds each text and each sentence once. A sentence has a zero at its end.
struct CTexts {
    char All[sizeOfTexts()] = {};
    char Sentences[sizeOfSentences()] = {};
};

// What the rows share, and their rows.
struct CRows {
    CTexts Texts;
    CTrap Rows[RowCount] = {};
    CTrap::CAnswer Answers[NumberedAnswers.Count] = {};
};

constexpr CRows makeRows() {
    static_assert(sizeOfTexts() < 65536 && sizeOfSentences() < 65536);
    CRows rows;
    CTrap::CPiece pieces[NumberedTexts.Count] = {};
    std::size_t end = 0;
    for (std::size_t i = 0; i < NumberedTexts.Count; ++i) {
        const std::string_view text = writtenText(NumberedTexts.FirstOf[i]);
        pieces[i].Start = static_cast<std::uint16_t>(end);
        pieces[i].Length = static_cast<std::uint8_t>(text.size());
        for (const char c : text) {
            rows.Texts.All[end++] = c;
        }
    }
    std::uint16_t sentences[NumberedSentences.Count] = {};
    end = 0;
    for (std::size_t i = 0; i < NumberedSentences.Count; ++i) {
        sentences[i] = static_cast<std::uint16_t>(end);
        for (const char c : Written[NumberedSentences.FirstOf[i]].Sentence) {
            rows.Texts.Sentences[end++] = c;
        }
        ++end;
    }
    for (std::size_t i = 0; i < NumberedAnswers.Count; ++i) {
        const std::size_t row = NumberedAnswers.FirstOf[i];
        CTrap::CAnswer& answer = rows.Answers[i];
        answer.Behind = pieces[NumberedTexts.Number[4 * row + 1]];
        answer.First = pieces[NumberedTexts.Number[4 * row + 2]];
        answer.Second = pieces[NumberedTexts.Number[4 * row + 3]];
        answer.Sentence = sentences[NumberedSentences.Number[row]];
    }
    for (std::size_t row = 0; row < RowCount; ++row) {
        rows.Rows[row].Text = pieces[NumberedTexts.Number[4 * row]];
        rows.Rows[row].Answer = NumberedAnswers.Number[row];
        rows.Rows[row].Place = Written[row].Place;
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
    const CTrap::CPiece text = All.Rows[row].Text;
    return {All.Texts.All + text.Start, text.Length};
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
            hashes.add(CHashes::hashOf(place, textOf(row), Written[row].Behind));
        }
    }
    return hashes;
}

constexpr CHashes Hashes = makeHashes();

// A quick test that excludes most texts. If it returns false, no row has this place and these
// texts.
[[gnu::hot]] bool mayHave(ePlace place, std::string_view text, std::string_view behind) {
    return !isCommon(place) || Hashes.has(CHashes::hashOf(place, text, behind));
}

// Returns the first row with this text for which `isPlace` and `isRight` return true, or null. `isPlace` is
// cheap and excludes most of the rows.
template <class IsPlace, class IsRight>
[[gnu::hot]] const CTrap* find(std::string_view text, const IsPlace& isPlace,
                               const IsRight& isRight) {
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

std::string_view CTrap::textOf(CPiece piece) noexcept {
    return {All.Texts.All + piece.Start, piece.Length};
}

const CTrap::CAnswer& CTrap::answer() const noexcept { return All.Answers[Answer]; }

const char* CTrap::sentence() const noexcept { return All.Texts.Sentences + answer().Sentence; }

const CTrap* trapsBegin() noexcept { return std::begin(All.Rows); }
const CTrap* trapsEnd() noexcept { return std::end(All.Rows); }

[[gnu::hot]] const CTrap* findTrap(ePlace place, std::string_view text,
                                   std::string_view behind) noexcept {
    if (!mayHave(place, text, behind)) {
        return nullptr;
    }
    return find(
        text, [place](ePlace other) { return other == place; },
        [behind](const CTrap& row) { return row.behind() == behind; });
}

[[gnu::hot]] bool hasTrap(ePlace place, std::string_view text) noexcept {
    return mayHave(place, text, {}) && find(
                                           text, [place](ePlace other) { return other == place; },
                                           [](const CTrap&) { return true; }) != nullptr;
}

[[gnu::hot]] const CTrap* findNote(std::string_view name) noexcept {
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

#include "mensor_exact/Traps.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

#include "mensor_exact/NameIndex.h"
#include "mensor_exact/PackedText.h"
#include "mensor_exact/TrapRows.h"

namespace mensor::exact {

namespace {

constexpr std::size_t RowCount = std::size(TrapRows);

// Numbers things in the order in which they appear first. Equal things get the same number.
struct CNumbers {
    static constexpr std::size_t Places = 16384;
    std::size_t FirstOf[Places] = {};     // for each number, the first thing that has it
    std::uint16_t NumberAt[Places] = {};  // a hash table: a number plus 1; 0 if the place is empty
    std::uint16_t Number[2 * RowCount] = {};  // for each thing, its number
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

// The words of the answers. Each row has two items: the word First alone, and the words Behind and Second
// together, because few rows have both.
struct CWords {
    std::string_view First;
    std::string_view Second;
    bool HasSecond;  // true for the second item, even if its words are empty
};

constexpr CWords wordsOf(std::size_t i) {
    const CTrapRow& row = TrapRows[i / 2];
    return i % 2 == 0 ? CWords{row.First, {}, false} : CWords{row.Behind, row.Second, true};
}

constexpr CNumbers numberWords() {
    CNumbers numbers;
    for (std::size_t i = 0; i < 2 * RowCount; ++i) {
        const CWords words = wordsOf(i);
        numbers.add(
            i, hashOfName(words.Second, hashOfName(words.First)), [](std::size_t a, std::size_t b) {
                const CWords left = wordsOf(a);
                const CWords right = wordsOf(b);
                return left.HasSecond == right.HasSecond && isEqual(left.First, right.First) &&
                       isEqual(left.Second, right.Second);
            });
    }
    return numbers;
}

constexpr CNumbers NumberedWords = numberWords();

constexpr CNumbers numberSentences() {
    CNumbers numbers;
    for (std::size_t row = 0; row < RowCount; ++row) {
        numbers.add(row, hashOfName(TrapRows[row].Sentence), [](std::size_t a, std::size_t b) {
            return isEqual(TrapRows[a].Sentence, TrapRows[b].Sentence);
        });
    }
    return numbers;
}

constexpr CNumbers NumberedSentences = numberSentences();

// Numbers the answers. Rows that differ in their text alone have the same answer.
constexpr CNumbers numberAnswers() {
    CNumbers numbers;
    for (std::size_t row = 0; row < RowCount; ++row) {
        const std::uint32_t hash = NumberedSentences.Number[row] * 16777619U +
                                   NumberedWords.Number[2 * row] * 257U +
                                   NumberedWords.Number[2 * row + 1];
        numbers.add(row, hash, [](std::size_t a, std::size_t b) {
            return TrapRows[a].Place == TrapRows[b].Place &&
                   NumberedSentences.Number[a] == NumberedSentences.Number[b] &&
                   NumberedWords.Number[2 * a] == NumberedWords.Number[2 * b] &&
                   NumberedWords.Number[2 * a + 1] == NumberedWords.Number[2 * b + 1];
        });
    }
    return numbers;
}

constexpr CNumbers NumberedAnswers = numberAnswers();

constexpr auto WrittenSentences =
    writeTexts<NumberedSentences.Count>([](std::size_t i, const auto& write) {
        packText(TrapRows[NumberedSentences.FirstOf[i]].Sentence, write);
    });

constexpr auto Sentences = shrunk<WrittenSentences.Size>(WrittenSentences);

// The words, each with a zero at its end.
constexpr auto WrittenWords = writeTexts<NumberedWords.Count>([](std::size_t i, const auto& write) {
    const CWords words = wordsOf(NumberedWords.FirstOf[i]);
    for (const char c : words.First) {
        write(static_cast<unsigned char>(c));
    }
    write('\0');
    if (words.HasSecond) {
        for (const char c : words.Second) {
            write(static_cast<unsigned char>(c));
        }
        write('\0');
    }
});

// The order in which answers are stored. Answers of many rows come first, because their numbers need one byte.
struct CRanks {
    std::uint16_t RankOf[NumberedAnswers.Count] = {};  // for each number of an answer
};

constexpr CRanks rankAnswers() {
    std::size_t uses[NumberedAnswers.Count] = {};
    for (std::size_t row = 0; row < RowCount; ++row) {
        ++uses[NumberedAnswers.Number[row]];
    }
    std::size_t before[RowCount + 2] = {};  // the number of answers with more uses
    for (const std::size_t count : uses) {
        ++before[count - 1];
    }
    for (std::size_t count = RowCount; count-- > 0;) {
        before[count] += before[count + 1];
    }
    CRanks ranks;
    for (std::size_t i = 0; i < NumberedAnswers.Count; ++i) {
        ranks.RankOf[i] = static_cast<std::uint16_t>(before[uses[i]]++);
    }
    return ranks;
}

constexpr CRanks Ranks = rankAnswers();

struct CAnswers {
    CTrap Row[NumberedAnswers.Count] = {};
    char Words[WrittenWords.Size] = {};
};

constexpr CAnswers makeAnswers() {
    static_assert(NumberedSentences.Count <= 256);
    CAnswers answers;
    for (std::size_t i = 0; i < NumberedAnswers.Count; ++i) {
        const std::size_t row = NumberedAnswers.FirstOf[i];
        CTrap& answer = answers.Row[Ranks.RankOf[i]];
        answer.Place = TrapRows[row].Place;
        answer.Sentence = static_cast<std::uint8_t>(NumberedSentences.Number[row]);
        answer.First = WrittenWords.Starts[NumberedWords.Number[2 * row]];
        answer.BehindAndSecond = WrittenWords.Starts[NumberedWords.Number[2 * row + 1]];
    }
    for (std::size_t i = 0; i < WrittenWords.Size; ++i) {
        answers.Words[i] = WrittenWords.Bytes[i];
    }
    return answers;
}

constexpr CAnswers Answers = makeAnswers();

// The numbers of the rows, sorted by their texts. Rows with the same text are in the order of the files.
struct COrder {
    std::uint16_t Row[RowCount] = {};
};

constexpr COrder sortRows() {
    COrder order;
    for (std::size_t i = 0; i < RowCount; ++i) {
        order.Row[i] = static_cast<std::uint16_t>(i);
    }
    for (std::size_t size = 1; size < RowCount; size *= 2) {  // merges sorted pieces of this size
        const COrder before = order;
        for (std::size_t begin = 0; begin < RowCount; begin += 2 * size) {
            const std::size_t middle = begin + size < RowCount ? begin + size : RowCount;
            const std::size_t end = middle + size < RowCount ? middle + size : RowCount;
            std::size_t left = begin;
            std::size_t right = middle;
            for (std::size_t i = begin; i < end; ++i) {
                const bool isRight =
                    left == middle || (right < end && TrapRows[before.Row[right]].Text <
                                                          TrapRows[before.Row[left]].Text);
                order.Row[i] = before.Row[isRight ? right++ : left++];
            }
        }
    }
    return order;
}

constexpr COrder Order = sortRows();

// All texts, with the answers of their rows:
//
//     one byte         the number of bytes of the text
//     the text
//     for each row     the number of its answer in one byte or two, as writeAnswer() writes it
constexpr std::size_t LongestText = 15;

// Smaller numbers of answers need one byte. All others need two: the rest of the first byte counts in steps of
// 256.
constexpr std::size_t ShortAnswers = 124;
constexpr std::size_t MoreRows = 0x80;  // in the first byte: another row with the same text follows

static_assert(NumberedAnswers.Count <= ShortAnswers + (MoreRows - ShortAnswers) * 256);

// Reads a number of an answer and moves `at` behind it.
std::size_t readAnswer(const std::uint8_t*& at, bool& hasMore) {
    hasMore = *at >= MoreRows;
    const std::size_t first = *at++ % MoreRows;
    return first < ShortAnswers ? first : ShortAnswers + (first - ShortAnswers) * 256 + *at++;
}

struct CWrittenRows {
    std::uint8_t Bytes[20 * RowCount] = {};
    std::uint16_t Starts[RowCount] = {};  // for each text
    std::size_t Size = 0;
    std::size_t Texts = 0;
    bool IsGood = true;

    constexpr void write(std::size_t byte) { Bytes[Size++] = static_cast<std::uint8_t>(byte); }

    constexpr void writeText(std::string_view text) {
        IsGood = IsGood && !text.empty() && text.size() <= LongestText;
        Starts[Texts++] = static_cast<std::uint16_t>(Size);
        write(text.size());
        for (const char c : text) {
            write(static_cast<std::uint8_t>(c));
        }
    }

    constexpr void writeAnswer(std::size_t answer, bool hasMore) {
        const std::size_t more = hasMore ? MoreRows : 0;
        if (answer < ShortAnswers) {
            write(answer + more);
            return;
        }
        write(ShortAnswers + (answer - ShortAnswers) / 256 + more);
        write((answer - ShortAnswers) % 256);
    }
};

constexpr std::string_view sortedText(std::size_t i) { return TrapRows[Order.Row[i]].Text; }

constexpr CWrittenRows writeRows() {
    CWrittenRows rows;
    for (std::size_t i = 0; i < RowCount; ++i) {
        const std::string_view text = sortedText(i);
        if (i == 0 || !isEqual(text, sortedText(i - 1))) {
            rows.writeText(text);
        }
        const bool isLast = i + 1 == RowCount || !isEqual(text, sortedText(i + 1));
        rows.writeAnswer(Ranks.RankOf[NumberedAnswers.Number[Order.Row[i]]], !isLast);
    }
    return rows;
}

constexpr CWrittenRows WrittenRows = writeRows();

static_assert(WrittenRows.IsGood, "a text is empty or has more than 15 bytes");
static_assert(WrittenRows.Size < 65535);

// The texts, and a hash table of them.
struct CTrapTexts {
    static constexpr std::size_t Places = WrittenRows.Texts * 3 / 2;
    std::uint8_t Bytes[WrittenRows.Size] = {};
    std::uint16_t StartAt[Places] = {};  // where a text begins, plus 1; 0 if the place is empty

    static constexpr std::size_t placeOf(std::string_view text) {
        const std::uint32_t hash = hashOfName(text);
        return (hash ^ hash >> 15) % Places;
    }
};

constexpr CTrapTexts makeTrapTexts() {
    CTrapTexts texts;
    for (std::size_t i = 0; i < WrittenRows.Size; ++i) {
        texts.Bytes[i] = WrittenRows.Bytes[i];
    }
    std::size_t count = 0;
    for (std::size_t i = 0; i < RowCount; ++i) {
        const std::string_view text = sortedText(i);
        if (i > 0 && isEqual(text, sortedText(i - 1))) {
            continue;
        }
        std::size_t place = CTrapTexts::placeOf(text);
        while (texts.StartAt[place] != 0) {
            place = (place + 1) % CTrapTexts::Places;
        }
        texts.StartAt[place] = static_cast<std::uint16_t>(WrittenRows.Starts[count++] + 1);
    }
    return texts;
}

constexpr CTrapTexts Texts = makeTrapTexts();

// The names of the classes, each with a zero at its end, sorted by class.
constexpr std::size_t ClassCount = static_cast<std::size_t>(ePlace::UNKNOWN) + 1;

constexpr std::size_t sizeOfMembers() {
    std::size_t size = 0;
    for (const CTrapMember& member : TrapMembers) {
        size += member.Name.size() + 1;
    }
    return size;
}

static_assert(sizeOfMembers() < 65536, "the starts of the names have 16 bits");

struct CMembers {
    char Names[sizeOfMembers()] = {};
    std::uint16_t Starts[ClassCount + 1] = {};  // of each class; the last one is the end
};

constexpr CMembers makeMembers() {
    CMembers members;
    std::size_t end = 0;
    for (std::size_t place = 0; place < ClassCount; ++place) {
        for (const CTrapMember& member : TrapMembers) {
            if (static_cast<std::size_t>(member.Class) == place) {
                for (const char c : member.Name) {
                    members.Names[end++] = c;
                }
                ++end;
            }
        }
        members.Starts[place + 1] = static_cast<std::uint16_t>(end);
    }
    return members;
}

constexpr CMembers Members = makeMembers();

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
    for (const CTrapRow& row : TrapRows) {
        if (isCommon(row.Place)) {
            hashes.add(CHashes::hashOf(row.Place, row.Text, {}));
            hashes.add(CHashes::hashOf(row.Place, row.Text, row.Behind));
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

// Returns where the answers of this text begin, or null.
const std::uint8_t* answersTo(std::string_view text) {
    for (std::size_t place = CTrapTexts::placeOf(text); Texts.StartAt[place] != 0;
         place = (place + 1) % CTrapTexts::Places) {
        const std::uint8_t* const at = Texts.Bytes + Texts.StartAt[place] - 1;
        const std::string_view known(reinterpret_cast<const char*>(at + 1), *at);
        if (known == text) {
            return at + 1 + known.size();
        }
    }
    return nullptr;
}

// Returns the answer of the first row with this text for which `isRight` returns true, or null.
template <class IsRight>
const CTrap* find(std::string_view text, const IsRight& isRight) {
    const std::uint8_t* at = text.size() <= LongestText ? answersTo(text) : nullptr;
    bool hasMore = at != nullptr;
    while (hasMore) {
        const CTrap& row = Answers.Row[readAnswer(at, hasMore)];
        if (isRight(row)) {
            return &row;
        }
    }
    return nullptr;
}

}  // namespace

std::string_view CTrap::textAt(std::size_t start) noexcept { return Answers.Words + start; }

std::string CTrap::sentence() const {
    return unpacked(Sentences.Bytes + Sentences.Starts[Sentence]);
}

[[gnu::hot]] const CTrap* findTrap(ePlace place, std::string_view text,
                                   std::string_view behind) noexcept {
    return !mayHave(place, text, behind) ? nullptr : find(text, [&](const CTrap& row) {
        return row.Place == place && row.behind() == behind;
    });
}

[[gnu::hot]] bool hasTrap(ePlace place, std::string_view text) noexcept {
    return mayHave(place, text, {}) &&
           find(text, [place](const CTrap& row) { return row.Place == place; }) != nullptr;
}

[[gnu::hot]] const CTrap* findNote(std::string_view name) noexcept {
    return !mayHave(ePlace::TOLD, name, {})
               ? nullptr
               : find(name, [](const CTrap& row) { return isNote(row.Place); });
}

bool isMember(std::string_view name, ePlace place) noexcept {
    const std::size_t number = static_cast<std::size_t>(place);
    const char* const end = Members.Names + Members.Starts[number + 1];
    for (const char* member = Members.Names + Members.Starts[number]; member != end;) {
        const std::string_view known = member;
        if (known == name) {
            return true;
        }
        member += known.size() + 1;
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
                   : row.Place < ePlace::APART && isMember(name, row.Place);
    });
}

const CTrap* findApart(std::string_view name, std::string_view next) noexcept {
    return find(next, [name](const CTrap& row) {
        return row.Place == ePlace::APART
                   ? row.behind() == name
                   : (row.Place == ePlace::DEGREE || row.Place == ePlace::PRESSURE) &&
                         isMember(name, row.Place);
    });
}

}  // namespace mensor::exact

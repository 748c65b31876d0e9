// Traps_test.cpp: the packed table of traps gives the same answers as a search through the rows of its files.
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "mensor_exact/TrapRows.h"

namespace mensor::exact {
namespace {

using CRowsOfText = std::map<std::string_view, std::vector<const CTrapRow*>>;

const CRowsOfText& rowsOfTexts() {
    static const CRowsOfText Rows = [] {
        CRowsOfText rows;
        for (const CTrapRow& row : TrapRows) {
            rows[row.Text].push_back(&row);
        }
        return rows;
    }();
    return Rows;
}

// Texts that no row has, but that are similar to texts of rows.
std::set<std::string> otherTexts() {
    std::set<std::string> texts = {"", "\x01", "\xFF", "metre", std::string(40, 'a')};
    for (const CTrapRow& row : TrapRows) {
        const std::string text(row.Text);
        for (const std::string& other :
             {text.substr(0, text.size() - 1), text + "\x01", text + text, text + "zzzzzzzzzzzz",
              text.substr(1), text.substr(0, text.size() - 1) + "~"}) {
            if (rowsOfTexts().count(other) == 0) {
                texts.insert(other);
            }
        }
    }
    return texts;
}

bool isMemberInFile(std::string_view name, ePlace place) {
    for (const CTrapMember& member : TrapMembers) {
        if (member.Class == place && member.Name == name) {
            return true;
        }
    }
    return false;
}

// Names before a trap: members of classes, texts of rows, and a name that is neither.
std::set<std::string_view> names() {
    std::set<std::string_view> names = {"", "m", "zzz"};
    for (const CTrapRow& row : TrapRows) {
        names.insert(row.Behind);
    }
    for (const CTrapMember& member : TrapMembers) {
        names.insert(member.Name);
    }
    return names;
}

bool isAnswerOf(const CTrap* answer, const CTrapRow* row) {
    if (answer == nullptr || row == nullptr) {
        return answer == nullptr && row == nullptr;
    }
    return answer->Place == row->Place && answer->sentence() == row->Sentence &&
           answer->behind() == row->Behind && answer->first() == row->First &&
           answer->second() == row->Second;
}

template <class Fits>
const CTrapRow* firstRow(const std::vector<const CTrapRow*>& rows, const Fits& fits) {
    for (const CTrapRow* const row : rows) {
        if (fits(*row)) {
            return row;
        }
    }
    return nullptr;
}

TEST(TrapTable, HasEachRow) {
    for (const CTrapRow& row : TrapRows) {
        const CTrapRow* const first =
            firstRow(rowsOfTexts().at(row.Text), [&row](const CTrapRow& other) {
                return other.Place == row.Place && other.Behind == row.Behind;
            });
        EXPECT_TRUE(isAnswerOf(findTrap(row.Place, row.Text, row.Behind), first))
            << row.Behind << " " << row.Text;
    }
}

TEST(TrapTable, HasNoOtherTexts) {
    const std::set<std::string> texts = otherTexts();
    EXPECT_GT(texts.size(), 5000U);
    for (const std::string& text : texts) {
        for (int place = 0; place <= static_cast<int>(ePlace::UNKNOWN); ++place) {
            EXPECT_EQ(findTrap(static_cast<ePlace>(place), text), nullptr) << text << " " << place;
        }
        EXPECT_EQ(findNote(text), nullptr) << text;
        EXPECT_EQ(findApart("", text), nullptr) << text;
        EXPECT_EQ(findPair("bar", text, false), nullptr) << text;
    }
}

TEST(TrapTable, FindsATextOnlyInItsPlaces) {
    for (const auto& [text, rows] : rowsOfTexts()) {
        for (int i = 0; i <= static_cast<int>(ePlace::UNKNOWN); ++i) {
            const auto place = static_cast<ePlace>(i);
            const CTrapRow* const row = firstRow(rows, [place](const CTrapRow& other) {
                return other.Place == place && other.Behind.empty();
            });
            EXPECT_TRUE(isAnswerOf(findTrap(place, text), row)) << text << " " << i;
        }
    }
}

TEST(TrapTable, FindsTheFirstNoteOfTheFile) {
    for (const auto& [text, rows] : rowsOfTexts()) {
        const CTrapRow* const row = firstRow(rows, [](const CTrapRow& other) {
            return other.Place == ePlace::UNUSUAL || other.Place == ePlace::TOLD;
        });
        EXPECT_TRUE(isAnswerOf(findNote(text), row)) << text;
    }
}

TEST(TrapTable, FindsTheFirstRowForTwoNames) {
    const std::set<std::string_view> all = names();
    EXPECT_GT(all.size(), 100U);
    for (const auto& [text, rows] : rowsOfTexts()) {
        for (const std::string_view name : all) {
            const CTrapRow* const apart = firstRow(rows, [name = name](const CTrapRow& row) {
                return row.Place == ePlace::APART ? row.Behind == name
                       : row.Place == ePlace::DEGREE || row.Place == ePlace::PRESSURE
                           ? isMemberInFile(name, row.Place)
                           : false;
            });
            ASSERT_TRUE(isAnswerOf(findApart(name, text), apart)) << name << " " << text;
            for (const bool isBelow : {false, true}) {
                const CTrapRow* pair = firstRow(rows, [&, name = name](const CTrapRow& row) {
                    return isBelow && row.Place == ePlace::MASS_BELOW &&
                           isMemberInFile(name, ePlace::MASS);
                });
                if (pair == nullptr) {
                    pair = firstRow(rows, [&, name = name](const CTrapRow& row) {
                        switch (row.Place) {
                            case ePlace::APART: return row.Behind == name;
                            case ePlace::MASS_PER:
                                return !isBelow && isMemberInFile(name, ePlace::MASS);
                            case ePlace::DEGREE:
                            case ePlace::PRESSURE:
                            case ePlace::ELECTRIC:
                            case ePlace::MASS:
                            case ePlace::PERCENT: return isMemberInFile(name, row.Place);
                            default: return false;
                        }
                    });
                }
                ASSERT_TRUE(isAnswerOf(findPair(name, text, isBelow), pair))
                    << name << " " << text << " " << isBelow;
            }
        }
    }
}

}  // namespace
}  // namespace mensor::exact

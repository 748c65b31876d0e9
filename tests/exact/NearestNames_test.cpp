// NearestNames_test.cpp: CNearestNames finds the known names that are similar to an unknown one.
#include "mensor_exact/NearestNames.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "mensor_exact/Definitions.h"

namespace mensor::exact {
namespace {

constexpr std::size_t Longest = 24;  // letters of an unknown name

// All names of the built-in catalogue in ASCII with at least `shortest` letters.
std::vector<std::string> asciiNames(std::size_t shortest) {
    std::vector<std::string> names;
    for (const CDefinition& definition : CCatalogue::builtIn().definitions()) {
        const std::string name(definition.Name);
        bool isAscii = true;
        for (const char c : name) {
            isAscii = isAscii && (c & 0x80) == 0;
        }
        if (isAscii && name.size() >= shortest && name.size() < Longest) {
            names.push_back(name);
        }
    }
    return names;
}

// The texts that are one edit away from `name`.
std::vector<std::string> edited(const std::string& name) {
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < name.size(); ++i) {
        texts.push_back(std::string(name).erase(i, 1));
        for (const std::string_view other : {"x", "%", "\u00B5", "\u2126"}) {
            texts.push_back(std::string(name).insert(i, other));
            texts.push_back(std::string(name).replace(i, 1, other));
        }
        if (i > 0) {
            std::string swapped = name;
            std::swap(swapped[i - 1], swapped[i]);
            texts.push_back(swapped);
        }
    }
    return texts;
}

TEST(NearestNames, FindsNamesAtOneEdit) {
    for (const std::string& name : asciiNames(3)) {
        for (const std::string& text : edited(name)) {
            EXPECT_TRUE(CNearestNames(text).isNear(name)) << text << " and " << name;
        }
    }
}

TEST(NearestNames, FindsNamesAtTwoEditsIfTheNameHasFiveLetters) {
    EXPECT_TRUE(CNearestNames("xouley").isNear("Joule"));
    EXPECT_TRUE(CNearestNames("oule\u2126").isNear("joule"));
    EXPECT_TRUE(CNearestNames("\u00B5\u2126ule").isNear("joule"));
    EXPECT_TRUE(CNearestNames("jou\u00B5le").isNear("j\u2126oule"));
    EXPECT_FALSE(CNearestNames("xoulyz").isNear("joule"));
    EXPECT_FALSE(CNearestNames("xyule\u2126").isNear("joule"));
    EXPECT_FALSE(CNearestNames("jo").isNear("joul"));
    EXPECT_FALSE(CNearestNames("jouley").isNear("jou"));
    EXPECT_TRUE(CNearestNames("mol").isNear("mil"));
    EXPECT_FALSE(CNearestNames("mol").isNear("mit"));
}

TEST(NearestNames, NamesOfOneLetterMatchOnlyInOtherCase) {
    EXPECT_TRUE(CNearestNames("M").isNear("m"));
    EXPECT_FALSE(CNearestNames("M").isNear("k"));
    EXPECT_FALSE(CNearestNames("M").isNear("mm"));
    EXPECT_FALSE(CNearestNames("\u00B5").isNear("\u2126"));
}

TEST(NearestNames, ReturnsTheTwelveBestInOrder) {
    CNearestNames nearest("Joule");
    for (const std::string_view name :
         {"jouleab", "joulea", "jOuLE", "joulec", "joulee", "joulef", "joule", "jouleg", "jouleb",
          "jouleh", "joulei", "joulej", "joulek", "joulel", "Jouled", "wattage"}) {
        nearest.add(name);
    }
    std::string found;
    for (const CNearestNames::CNear& near : nearest.best()) {
        found += near.Name + " ";
    }
    EXPECT_EQ(found,
              "joule jOuLE Jouled joulea jouleb joulec joulee joulef jouleg jouleh joulei joulej ");
}

}  // namespace
}  // namespace mensor::exact

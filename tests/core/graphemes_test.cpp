#include "core/text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unicode/brkiter.h>
#include <unicode/unistr.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

#include "tests/core/unicode_samples.h"

namespace ferrowyn::text {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// What ICU's rules say about the whole text, without any shortcut.
std::vector<std::string> charactersByTheRules(const std::string& text) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::BreakIterator> breaks(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    const auto units = icu::UnicodeString::fromUTF8(text);
    breaks->setText(units);
    std::vector<std::string> result;
    for (auto start = breaks->first(), end = breaks->next(); end != icu::BreakIterator::DONE;
         start = end, end = breaks->next()) {
        std::string character;
        units.tempSubStringBetween(start, end).toUTF8String(character);
        result.push_back(character);
    }
    return result;
}

TEST(Graphemes, AsciiTextHasOneCharacterAByteExceptALineEnd) {
    EXPECT_THAT(characters("a b"), ElementsAre("a", " ", "b"));
    EXPECT_THAT(characters("a\r\nb"), ElementsAre("a", "\r\n", "b"));
    EXPECT_THAT(characters("\n\r"), ElementsAre("\n", "\r"));
    EXPECT_THAT(characters(""), IsEmpty());
}

TEST(Graphemes, ScalarsThatCombineAreOneCharacter) {
    EXPECT_THAT(characters("e\u0301a"), ElementsAre("e\u0301", "a"));
    EXPECT_THAT(characters("👩‍💻!👍🏽"), ElementsAre("👩‍💻", "!", "👍🏽"));
    EXPECT_THAT(characters("🇩🇪🇫🇷x"), ElementsAre("🇩🇪", "🇫🇷", "x"));
    EXPECT_THAT(characters("\u1112\u1161\u11ABx"), ElementsAre("\u1112\u1161\u11AB", "x"));
    EXPECT_THAT(characters("ที่นี่"), ElementsAre("ที่", "นี่"));
    EXPECT_THAT(characters("i\u0307s"), ElementsAre("i\u0307", "s"));
    EXPECT_THAT(characters("\u0301a"), ElementsAre("\u0301", "a"));
}

TEST(Graphemes, AgreeWithTheRulesOnGeneratedTexts) {
    std::mt19937 random(20240607);
    for (int round = 0; round < 20000; ++round) {
        const std::string text = unicode_samples::randomText(random, 12);
        const auto found = characters(text);
        const auto expected = charactersByTheRules(text);
        ASSERT_EQ(std::vector<std::string>(found.begin(), found.end()), expected) << text;
        ASSERT_EQ(characterCount(text), expected.size()) << text;
    }
}

TEST(Graphemes, CountsCharacters) {
    EXPECT_EQ(characterCount(""), 0U);
    EXPECT_EQ(characterCount("plain"), 5U);
    EXPECT_EQ(characterCount("a\r\n"), 2U);
    EXPECT_EQ(characterCount("👨‍👩‍👧‍👦é"), 2U);
}

TEST(Graphemes, RemovingTheLastCharacterRemovesAllOfIt) {
    std::string text = "ab\r\ne\u0301👩‍💻🇩🇪";
    for (const auto* const left : {"ab\r\ne\u0301👩‍💻", "ab\r\ne\u0301", "ab\r\n", "ab", "a", "", ""}) {
        removeLastCharacter(text);
        EXPECT_EQ(text, left);
    }
}

TEST(Graphemes, BytesThatAreNoUtf8AreCharactersToo) {
    std::string text = "a\xFF";
    EXPECT_EQ(characterCount(text), 2U);
    removeLastCharacter(text);
    EXPECT_EQ(text, "a");
}

}  // namespace
}  // namespace ferrowyn::text

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

using testing::ElementsAre;
using testing::IsEmpty;

TEST(Text, LowercasesAsciiWithoutTouchingAnythingElse) {
    EXPECT_EQ(lowercased("Hello, WORLD [42] @Z`"), "hello, world [42] @z`");
    EXPECT_EQ(lowercased(""), "");
}

TEST(Text, LowercasesWithTheFullUnicodeMapping) {
    EXPECT_EQ(lowercased("ÄÖÜ Straße"), "äöü straße");
    EXPECT_EQ(lowercased("İstanbul"), "i\u0307stanbul");
    EXPECT_EQ(lowercased("ΟΔΟΣ ΣΟΦΟΣ"), "οδος σοφος");
    EXPECT_EQ(lowercased("ЖУРНАЛ"), "журнал");
}

TEST(Text, UppercasesWithTheFullUnicodeMapping) {
    EXPECT_EQ(uppercased("straße ﬁ"), "STRASSE FI");
}

TEST(Text, TellsUpperFromLowerCaseForWholeCharacters) {
    for (const auto* const upper : {"A", "Z", "Ä", "A\u0308", "İ", "Σ", "Ж", "\u24B6"}) {
        EXPECT_TRUE(isUppercase(upper)) << upper;
        EXPECT_FALSE(isLowercase(upper)) << upper;
    }
    for (const auto* const lower : {"a", "z", "ä", "a\u0308", "ß", "ς", "ж", "ª"}) {
        EXPECT_TRUE(isLowercase(lower)) << lower;
        EXPECT_FALSE(isUppercase(lower)) << lower;
    }
    // A titlecase digraph is neither, and most scripts have no case.
    for (const auto* const neither : {"", "1", " ", "\u01C5", "漢", "ท", "א", "한", "👍", "🇩🇪"}) {
        EXPECT_FALSE(isUppercase(neither)) << neither;
        EXPECT_FALSE(isLowercase(neither)) << neither;
    }
}

TEST(Text, TrimmingWhitespaceTakesSpacesAndTabsAndLeavesNewlines) {
    EXPECT_EQ(trimmingWhitespace(" \t a b\t "), "a b");
    EXPECT_EQ(trimmingWhitespace("\u00A0\u2003\u3000x\u202F"), "x");
    EXPECT_EQ(trimmingWhitespace("\n a \n"), "\n a \n");
    EXPECT_EQ(trimmingWhitespace(" \t\u00A0 "), "");
    EXPECT_EQ(trimmingWhitespace(""), "");
}

TEST(Text, TrimmingWhitespaceAndNewlinesTakesBoth) {
    EXPECT_EQ(trimmingWhitespaceAndNewlines("\r\n\v\f \t\u0085\u2028\u2029 é x \u3000\n"), "é x");
    EXPECT_EQ(trimmingWhitespaceAndNewlines(" \n "), "");
    // Invisible, but no white space: a title may begin with a direction mark.
    EXPECT_EQ(trimmingWhitespaceAndNewlines("\u200E x \u200B"), "\u200E x \u200B");
}

TEST(Text, TrimmingSurvivesBytesThatAreNoUtf8) {
    EXPECT_EQ(trimmingWhitespaceAndNewlines(" \xFF\x80 a \xC3 "), "\xFF\x80 a \xC3");
}

TEST(Text, ControlCharactersAreThoseOfTheControlAndFormatCategories) {
    for (const char32_t scalar : {U'\0', U'\x1B', U'\x7F', U'\x85', U'\u00AD', U'\u200D', U'\u202E', U'\uFEFF'}) {
        EXPECT_TRUE(isControlCharacter(scalar)) << static_cast<unsigned>(scalar);
    }
    for (const char32_t scalar : {U' ', U'a', U'\u00A0', U'é', U'\uF700', U'\u2028', U'\U0001F600'}) {
        EXPECT_FALSE(isControlCharacter(scalar)) << static_cast<unsigned>(scalar);
    }
}

TEST(Text, FindsAControlCharacterAnywhereInAText) {
    EXPECT_FALSE(containsControlCharacter("plain é 漢 👍"));
    EXPECT_FALSE(containsControlCharacter(""));
    EXPECT_TRUE(containsControlCharacter("a\x1B"));
    EXPECT_TRUE(containsControlCharacter("é\u200E!"));
}

TEST(Text, StandardCompareOrdersNumbersByValueAndIgnoresCase) {
    EXPECT_TRUE(localizedStandardCompare("Window 2", "Window 10") < 0);
    EXPECT_TRUE(localizedStandardCompare("window 10", "Window 2") > 0);
    EXPECT_TRUE(localizedStandardCompare("mail", "MAIL") == 0);
    EXPECT_TRUE(localizedStandardCompare("Calendar", "mail") < 0);
    EXPECT_TRUE(localizedStandardCompare("Notes", "mail") > 0);
    EXPECT_TRUE(localizedStandardCompare("", "a") < 0);
    EXPECT_TRUE(localizedStandardCompare("cafe\u0301", "café") == 0);
    EXPECT_TRUE(localizedStandardCompare("cafe", "café") < 0);
    EXPECT_TRUE(localizedStandardCompare("éclair", "zebra") < 0);
}

TEST(Text, KnowsPureAscii) {
    EXPECT_TRUE(isAscii(""));
    EXPECT_TRUE(isAscii(std::string(100, 'x') + "\x7F"));
    EXPECT_FALSE(isAscii(std::string(100, 'x') + "é"));
}

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

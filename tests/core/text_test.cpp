#include "core/text.h"

#include <gtest/gtest.h>

#include <string>

namespace ferrowyn::text {
namespace {

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

}  // namespace
}  // namespace ferrowyn::text

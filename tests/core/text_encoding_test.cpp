#include "core/text_encoding.h"

#include <gtest/gtest.h>

#include <string>

namespace ferrowyn::text {
namespace {

TEST(TextEncoding, TellsValidUtf8) {
    for (const auto* const valid : {"", "plain", "é", "漢字", "👍", "\uFFFD"}) {
        EXPECT_TRUE(isValidUtf8(valid)) << valid;
    }
    // A lone trail byte, a cut sequence, an overlong form, a surrogate, a value beyond Unicode.
    for (const auto* const invalid : {"\x80", "\xC3", "a\xE6\xBC", "\xC0\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80"}) {
        EXPECT_FALSE(isValidUtf8(invalid));
    }
}

TEST(TextEncoding, RepairsIllFormedSequencesAndKeepsTheRest) {
    EXPECT_EQ(repairedUtf8("Résumé"), "Résumé");
    EXPECT_EQ(repairedUtf8("caf\xE9 noir"), "caf\uFFFD noir");
    EXPECT_EQ(repairedUtf8("\xE6\xBC!"), "\uFFFD!");
    EXPECT_EQ(repairedUtf8("\xFF\xFE"), "\uFFFD\uFFFD");
    EXPECT_EQ(repairedUtf8("end\xF0\x9F\x91"), "end\uFFFD");
}

TEST(TextEncoding, WhatIsRepairedIsValid) {
    for (int first = 0; first < 256; ++first) {
        for (int second = 0; second < 256; ++second) {
            const std::string bytes{static_cast<char>(first), static_cast<char>(second), 'x'};
            EXPECT_TRUE(isValidUtf8(repairedUtf8(bytes))) << first << ' ' << second;
        }
    }
}

TEST(TextEncoding, ConvertsUtf16BothWays) {
    EXPECT_EQ(utf8FromUtf16(u"aé漢👍"), "aé漢👍");
    EXPECT_EQ(utf16FromUtf8("aé漢👍"), u"aé漢👍");
    EXPECT_EQ(utf8FromUtf16(u""), "");
    EXPECT_EQ(utf16FromUtf8(""), u"");
}

TEST(TextEncoding, UnpairedSurrogatesAndIllFormedBytesBecomeReplacementCharacters) {
    EXPECT_EQ(utf8FromUtf16(std::u16string{u'a', char16_t{0xD83D}}), "a\uFFFD");
    EXPECT_EQ(utf8FromUtf16(std::u16string{char16_t{0xDC4D}, u'a'}), "\uFFFDa");
    EXPECT_EQ(utf8FromUtf16(std::u16string{char16_t{0xD83D}, u'a'}), "\uFFFDa");
    EXPECT_EQ(utf16FromUtf8("a\xFFz"), u"a\uFFFDz");
}

TEST(TextEncoding, ControlsAreShownAsQuestionMarks) {
    EXPECT_EQ(withoutControls("plain é 漢 👍 ~"), "plain é 漢 👍 ~");
    EXPECT_EQ(withoutControls(std::string("\0a\x1B[2J\x1F \x7F", 9)), "?a?[2J? ?");
    EXPECT_EQ(withoutControls("\u0080\u009B\u009F\u00A0"), "???\u00A0") << "the second set, and what follows it";
    EXPECT_EQ(withoutControls("\u0100\u00C0"), "\u0100\u00C0") << "the same bytes in other characters";
    EXPECT_EQ(withoutControls(std::string_view("\xC2\x80").substr(0, 1)), "\xC2") << "cut off";
    EXPECT_EQ(withoutControls("\n"), "?");
    EXPECT_EQ(withoutControls(""), "");
}

TEST(TextEncoding, ReadsOtherEncodingsByTheirNames) {
    EXPECT_EQ(utf8FromEncoding("\xCF\xF0\xE8", "windows-1251"), "При");
    EXPECT_EQ(utf8FromEncoding("\xC6\xFC\xCB\xDC", "EUC-JP"), "日本");
    EXPECT_EQ(utf8FromEncoding("a\xFF", "EUC-JP"), "a\uFFFD");
    EXPECT_EQ(utf8FromEncoding("", "EUC-JP"), "");
    EXPECT_EQ(utf8FromEncoding("a", "no-such-encoding"), std::nullopt);
}

}  // namespace
}  // namespace ferrowyn::text

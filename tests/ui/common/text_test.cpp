#include <gtest/gtest.h>

#include <QFontMetricsF>

#include "ui/common/display_text.h"
#include "ui/common/text_line.h"

namespace ferrowyn {
namespace {

using display_text::Range;

TEST(DisplayTextTest, ControlCharactersAndNewlinesBecomeSpaces) {
    EXPECT_EQ(display_text::singleLine("a\nb\tc\x1B"
                                       "d\xE2\x80\xA8"
                                       "e"),
              QStringLiteral("a b c d e"));
    EXPECT_EQ(display_text::singleLine("a\r\nb"), QStringLiteral("a  b"))
        << "one for each, so that positions stay true";
}

TEST(DisplayTextTest, VeryLongTextsAreCutBeforeTheyAreShaped) {
    const QString cut = display_text::singleLine(std::string(3'000'000, 'x'));
    EXPECT_EQ(cut.size(), display_text::maximumLength + 1);
    EXPECT_TRUE(cut.endsWith(QChar(u'…')));
    std::string emoji;
    for (int count = 0; count < 2000; ++count) {
        emoji += "\xF0\x9F\x9A\x80";
    }
    const QString cutEmoji = display_text::singleLine(emoji);
    EXPECT_FALSE(cutEmoji.contains(QChar(QChar::ReplacementCharacter))) << "cut between characters";
    EXPECT_TRUE(cutEmoji.isValidUtf16());
}

TEST(DisplayTextTest, TextsOfZeroWidthHaveNothingToSee) {
    EXPECT_FALSE(display_text::hasVisibleCharacters(QStringLiteral("\u200B\u2060\u00AD \u3164")));
    EXPECT_FALSE(display_text::hasVisibleCharacters(QString()));
    EXPECT_TRUE(display_text::hasVisibleCharacters(QStringLiteral("\u200Bx")));
}

TEST(DisplayTextTest, CharacterPositionsBecomeUtf16Ranges) {
    EXPECT_EQ(display_text::rangesOfCharacters("report", {0, 1, 2, 5}), (std::vector<Range>{{0, 3}, {5, 1}}));
    // A rocket takes two units; an e with a combining accent is one character of two units.
    EXPECT_EQ(display_text::rangesOfCharacters("\xF0\x9F\x9A\x80 e\xCC\x81x", {0, 2, 3}),
              (std::vector<Range>{{0, 2}, {3, 3}}));
    EXPECT_TRUE(display_text::rangesOfCharacters("ab", {}).empty());
    EXPECT_TRUE(display_text::rangesOfCharacters("ab", {7, -1}).empty()) << "no such characters";
}

TEST(TextLineTest, IsElidedAtItsEndAndFitsTheWidth) {
    const QString text = QStringLiteral("a title that is much too long for so little room");
    const TextLine line(text, TextStyle::rowTitle, 120);
    EXPECT_LE(line.width(), 120);
    EXPECT_GT(line.width(), 90) << "no more is cut than needed";
    EXPECT_TRUE(line.shownText().endsWith(QChar(u'…')));
    EXPECT_TRUE(text.startsWith(line.shownText().chopped(1)));
    EXPECT_EQ(TextLine(text, TextStyle::rowTitle, 2000).shownText(), text);
}

TEST(TextLineTest, ARightToLeftTextLosesItsLogicalEnd) {
    const QString text = QStringLiteral("שלום עולם זה משפט ארוך מאוד שלא נכנס");
    const TextLine line(text, TextStyle::rowTitle, 90);
    EXPECT_LE(line.width(), 90);
    EXPECT_TRUE(line.shownText().endsWith(QChar(u'…')));
    EXPECT_TRUE(text.startsWith(line.shownText().chopped(1)));
}

TEST(TextLineTest, AWidthTooSmallForAnythingLeavesTheEllipsis) {
    EXPECT_EQ(TextLine(QStringLiteral("word"), TextStyle::rowTitle, 0).shownText().back(), QChar(u'…'));
    EXPECT_EQ(TextLine(QString(), TextStyle::rowTitle, 0).width(), 0);
}

TEST(TextLinesTest, ATextIsShapedOnceForTheSameLook) {
    TextLines lines;
    (void)lines.line(QStringLiteral("same"), TextStyle::rowTitle, 100);
    (void)lines.line(QStringLiteral("same"), TextStyle::rowTitle, 100);
    EXPECT_EQ(lines.shapedLineCount(), 1);
    (void)lines.line(QStringLiteral("same"), TextStyle::rowAppName, 100);
    (void)lines.line(QStringLiteral("same"), TextStyle::rowTitle, 100, {{{0, 1}}, Qt::red, false});
    EXPECT_EQ(lines.shapedLineCount(), 3);
    lines.clear();
    (void)lines.line(QStringLiteral("same"), TextStyle::rowTitle, 100);
    EXPECT_EQ(lines.shapedLineCount(), 4);
}

}  // namespace
}  // namespace ferrowyn

#include "platform/x11/x11_text.h"

namespace ferrowyn {
namespace {

std::string read(std::string_view text) {
    return compoundTextToUtf8(text, false);
}

TEST(X11CompoundText, StartsAsAsciiAndLatin1) {
    EXPECT_EQ(read("plain"), "plain");
    EXPECT_EQ(read("caf\xE9"), "café");
    EXPECT_EQ(read(""), "");
}

TEST(X11CompoundText, ReadsUtf8BetweenItsEscapes) {
    EXPECT_EQ(read("\x1B%G\xE2\x82\xAC\x1B%@ ok \xE9"), "€ ok é");
}

TEST(X11CompoundText, ReadsEastAsianSetsInEitherHalf) {
    EXPECT_EQ(read("\x1B$(BF|K\\8l\x1B(B - a"), "日本語 - a");
    EXPECT_EQ(read("\x1B$BF|K\\8l\x1B(B"), "日本語");
    EXPECT_EQ(read("\x1B$)B\xC6\xFC\xCB\xDC\xB8\xEC"
                   "a"),
              "日本語a");
    EXPECT_EQ(read("\x1B)I\xB1\xB2"), "ｱｲ");
    EXPECT_EQ(read("\x1B$)C\xC7\xD1\xB1\xDB"), "한글");
    EXPECT_EQ(read("\x1B$(AVPND\x1B(B"), "中文");
    EXPECT_EQ(read("\x1B$(GD!\x1B(B"), "一");
    EXPECT_EQ(read("\x1B$(BF| K\\8l\n\x1B(B"), "日 本語\n") << "spaces and controls belong to no set";
    EXPECT_EQ(read("\x1B)B\xE9\x1B)J\xE1"), "ia") << "ASCII in the right half";
}

TEST(X11CompoundText, ReadsTheSetsOfOtherAlphabets) {
    EXPECT_EQ(read("\x1B-L\xBF\xE0\xD8"), "При");
    EXPECT_EQ(read("\x1B-F\xC1\xE8"), "Αθ");
    EXPECT_EQ(read("\x1B-H\xE9\xEC"), "יל");
    EXPECT_EQ(read("\x1B-B\xB1\xE6 \x1B-A\xE6"), "ąć æ");
}

TEST(X11CompoundText, ReadsSegmentsInANamedEncoding) {
    const std::string big5 = std::string("big5-0\x02") + "\xA4\xA4\xA4\xE5";
    const std::string segment =
        std::string("\x1B%/2\x80") + static_cast<char>(0x80 + static_cast<int>(big5.size())) + big5;
    EXPECT_EQ(read("a" + segment + "b"), "a中文b");
    EXPECT_EQ(read("\x1B%/2\x80\x8Bno-such-0\x02xb"),
              "\xEF\xBF\xBD"
              "b");
}

TEST(X11CompoundText, ShowsWhatItCannotReadAsUnknown) {
    EXPECT_EQ(read("\x1B$)Z\xA1\xA1"
                   "a"),
              "\xEF\xBF\xBD"
              "a");
    EXPECT_EQ(read("\x1B$(BF"), "\xEF\xBF\xBD");
    EXPECT_EQ(compoundTextToUtf8("\x1B$(BF|K", true), "日");
    EXPECT_EQ(compoundTextToUtf8("\x1B%/2\x80\xA0"
                                 "big5\x02\xA4\xA4\xA4",
                                 true),
              "中");
    EXPECT_EQ(compoundTextToUtf8("\x1B%/2\x80\xA0"
                                 "big",
                                 true),
              "");
    EXPECT_EQ(read("a\x1B"), "a");
    EXPECT_EQ(read("a\x1B$("), "a");
    EXPECT_EQ(read("a\x1B%/2\x80"), "a");
    EXPECT_EQ(read("a\x1B%/2\x8F\x8Fxyz"), "a\xEF\xBF\xBD");
}

}  // namespace
}  // namespace ferrowyn

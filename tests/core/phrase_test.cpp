#include "core/texts.h"

#include <gtest/gtest.h>

namespace ferrowyn {
namespace {

TEST(PhraseTest, ArgumentsReplaceTheirPlaceholders) {
    EXPECT_EQ((Phrase{"About %1, version %2", {"Ferrowyn", "1.2"}}.untranslated()), "About Ferrowyn, version 1.2");
    // A translation may turn the order round, or say one twice.
    EXPECT_EQ(withArguments("%2 (%1, %1)", {"a", "b"}), "b (a, a)");
}

TEST(PhraseTest, ArgumentsAreNotReadAgain) {
    EXPECT_EQ((Phrase{"Remove %1 from %2", {"%2", "x"}}.untranslated()), "Remove %2 from x");
    EXPECT_EQ(Phrase::verbatim("100 %1 sure").untranslated(), "100 %1 sure");
}

TEST(PhraseTest, PlaceholdersWithoutAnArgumentStay) {
    EXPECT_EQ((Phrase{"%1 and %2", {"one"}}.untranslated()), "one and %2");
    EXPECT_EQ((Phrase{"50 % of %", {"one"}}.untranslated()), "50 % of %");
    EXPECT_EQ((Phrase{"%0", {"one"}}.untranslated()), "%0");
}

TEST(PhraseTest, MarkingATextForTranslationLeavesItAlone) {
    static_assert(translatable("Ferrowyn", "Close") == "Close");
    EXPECT_EQ((Phrase{translatable("Ferrowyn", "Close"), {}}.untranslated()), "Close");
}

}  // namespace
}  // namespace ferrowyn

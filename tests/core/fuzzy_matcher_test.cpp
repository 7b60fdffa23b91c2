#include "core/fuzzy_matcher.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <string>
#include <vector>

#include "tests/core/reference_fuzzy_matcher.h"
#include "tests/core/session_doubles.h"
#include "tests/core/unicode_samples.h"

namespace ferrowyn {
namespace {

using FuzzyMatcher::Match;
using FuzzyMatcher::match;
using FuzzyMatcher::wordStartIndices;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;
using unicode_samples::randomAsciiText;
using unicode_samples::randomQueryFor;
using unicode_samples::randomText;

std::int64_t scoreOf(std::string_view query, std::string_view text) {
    const auto found = match(query, text);
    EXPECT_TRUE(found) << query << " in " << text;
    return found ? found->score : -1'000'000;
}

TEST(FuzzyMatcher, AnEmptyQueryMatchesAnythingWithoutScore) {
    EXPECT_THAT(match("", "Safari"), Optional(Match{0, {}}));
    EXPECT_THAT(match("", ""), Optional(Match{0, {}}));
    EXPECT_THAT(match("", testWindow(1, "Inbox", "Mail")), Optional(Match{0, {}}));
}

TEST(FuzzyMatcher, NothingMatchesAnEmptyText) {
    EXPECT_EQ(match("a", ""), std::nullopt);
}

TEST(FuzzyMatcher, ATextShorterThanTheQueryDoesNotMatch) {
    EXPECT_EQ(match("abc", "ab"), std::nullopt);
    EXPECT_EQ(match("é\u0301é", "é"), std::nullopt);
}

TEST(FuzzyMatcher, APrefixScoresItsCharactersAndThePrefixBonus) {
    EXPECT_THAT(match("saf", "Safari"), Optional(Match{487, {0, 1, 2}}));
}

TEST(FuzzyMatcher, TheWholeTextEarnsItsBonusInsteadOfThePrefixBonus) {
    // 25 + 1 at the start, five times 30 + 1 after it.
    EXPECT_EQ(scoreOf("safari", "safari"), 26 + 5 * 31 + 1000);
    EXPECT_EQ(scoreOf("SAFARI", "Safari"), 25 + 5 * 31 + 1000);
}

TEST(FuzzyMatcher, AWordOfTheTextEarnsTheWordBonus) {
    EXPECT_THAT(match("mail", "Apple Mail"), Optional(Match{305, {6, 7, 8, 9}}));
}

TEST(FuzzyMatcher, TheWordBonusDoesNotDependOnThePlacesThatWereFound) {
    // The scan takes the o of "foo" first; "one" still stands as a word later.
    EXPECT_THAT(match("one", "foo one"), Optional(Match{-2 + 1 - 3 * 3 + 1 + 30 + 1 + 200, {1, 5, 6}}));
    // Together, but not from the start of a word on.
    EXPECT_EQ(scoreOf("ne", "foo one"), -10 + 1 + 31);
}

TEST(FuzzyMatcher, TheScanTakesFirstPlacesAndNeverGoesBack) {
    EXPECT_THAT(match("ab", "a-b ab"), Optional(Match{25 + 1 - 3 + 25 + 1 + 200, {0, 2}}));
    EXPECT_EQ(match("ba", "abb"), std::nullopt);
}

TEST(FuzzyMatcher, ALateStartCostsTwoACharacterAndAtMostThirty) {
    EXPECT_EQ(scoreOf("z", "aaz"), -4 + 1);
    EXPECT_EQ(scoreOf("z", std::string(15, 'a') + "z"), -30 + 1 - 2);
    EXPECT_EQ(scoreOf("z", std::string(23, 'a') + "z"), -30 + 1 - 3);
}

TEST(FuzzyMatcher, SkippedCharactersCostThreeEachWithoutLimit) {
    EXPECT_EQ(scoreOf("az", "abz"), 25 + 1 - 3 + 1);
    EXPECT_EQ(scoreOf("az", "a" + std::string(400, 'b') + "z"), 25 + 1 - 1200 + 1 - 402 / 8);
}

TEST(FuzzyMatcher, EverySeparatorStartsAWord) {
    for (const auto* const separator : {" ", "-", "_", ".", "/", ":", "—", "–"}) {
        EXPECT_EQ(scoreOf("z", std::string("a") + separator + "z"), -4 + 25 + 1 + 200) << separator;
    }
    for (const auto* const other : {"+", ",", "\\", "|", "'", "‐", "\t", "é", "-\u0301"}) {
        EXPECT_EQ(scoreOf("z", std::string("a") + other + "z"), -4 + 1) << other;
    }
}

TEST(FuzzyMatcher, ACamelCaseHumpEarnsTwenty) {
    EXPECT_EQ(scoreOf("v", "myView"), -4 + 20);
    EXPECT_EQ(scoreOf("v", "MYView"), -4);
    EXPECT_EQ(scoreOf("ö", "myÖl"), -4 + 20);
    EXPECT_EQ(scoreOf("v", "1View"), -2);
}

TEST(FuzzyMatcher, OnlyCharactersThatAreLowerCaseInTheTextEarnTheExactPoint) {
    EXPECT_EQ(scoreOf("A", "xa"), -2 + 1);
    EXPECT_EQ(scoreOf("A", "xA"), -2 + 20);
    EXPECT_EQ(scoreOf("7", "x7"), -2 + 1);
}

TEST(FuzzyMatcher, EveryEightCharactersCostOne) {
    const std::string tail79(79, 'b');
    EXPECT_EQ(scoreOf("a", "a" + tail79), 26 + 400 - 10);
    EXPECT_EQ(scoreOf("a", "abbbbbb"), 26 + 400);
    EXPECT_EQ(scoreOf("a", "abbbbbbb"), 26 + 400 - 1);
}

TEST(FuzzyMatcher, PositionsAndLengthsCountCharacters) {
    EXPECT_THAT(match("x", "👩‍💻🇩🇪e\u0301x"), Optional(Match{-6 + 1, {3}}));
    // Eight family emoji are eight characters, not eighty.
    std::string families;
    for (int i = 0; i < 8; ++i) {
        families += "👨‍👩‍👧‍👦";
    }
    EXPECT_EQ(scoreOf("👨‍👩‍👧‍👦", families), 25 + 1 + 400 - 1);
}

TEST(FuzzyMatcher, APartOfACharacterDoesNotMatchIt) {
    EXPECT_EQ(match("e", "e\u0301"), std::nullopt);
    EXPECT_EQ(match("👩", "👩‍💻"), std::nullopt);
    EXPECT_EQ(match("\n", "\r\n"), std::nullopt);
    EXPECT_TRUE(match("\r\n", "a\r\nb"));
}

TEST(FuzzyMatcher, CanonicallyEquivalentCharactersAreEqual) {
    const Match whole{26 + 3 * 31 + 1000, {0, 1, 2, 3}};
    EXPECT_THAT(match("café", "cafe\u0301"), Optional(whole));
    EXPECT_THAT(match("cafe\u0301", "café"), Optional(whole));
    EXPECT_THAT(match("CAFÉ", "cafe\u0301"), Optional(whole));
    EXPECT_TRUE(match("\u1112\u1161\u11AB", "한"));
    EXPECT_TRUE(match("한", "\u1112\u1161\u11AB글"));
    // One scalar that stands for another one.
    EXPECT_TRUE(match("\u8C48", "\uF900"));
    EXPECT_TRUE(match("\uF900", "\u8C48"));
    // Two marks in either order, with no composed scalar for both.
    EXPECT_TRUE(match("q\u0323\u0307", "q\u0307\u0323"));
    EXPECT_EQ(match("q\u0323\u0307", "q\u0307"), std::nullopt);
}

TEST(FuzzyMatcher, TheKelvinSignIsAK) {
    EXPECT_TRUE(match("\u212A", "bank"));
    EXPECT_TRUE(match("k", "300 \u212A"));
}

TEST(FuzzyMatcher, SpecialCaseMappingsMatchInEitherCase) {
    EXPECT_THAT(match("straße", "STRAẞE"), Optional(::testing::Field(&Match::score, ::testing::Ge(1000))));
    EXPECT_EQ(match("strasse", "Straße"), std::nullopt);
    EXPECT_TRUE(match("İst", "i\u0307stanbul"));
    EXPECT_EQ(scoreOf("ΟΔΟΣ", "οδος"), 26 + 3 * 31 + 1000);
    EXPECT_TRUE(match("עברית", "כותרת עברית"));
    EXPECT_TRUE(match("ไทย", "ภาษาไทย"));
}

TEST(FuzzyMatcher, WordStartsArePositionZeroAndThoseAfterSeparators) {
    EXPECT_THAT(wordStartIndices("a b--c"), ElementsAre(0, 2, 4, 5));
    EXPECT_THAT(wordStartIndices("x_y.z/q:w—v–u"), ElementsAre(0, 2, 4, 6, 8, 10, 12));
    EXPECT_THAT(wordStartIndices("é 👩‍💻 x"), ElementsAre(0, 2, 4));
    EXPECT_THAT(wordStartIndices("end-"), ElementsAre(0));
    EXPECT_THAT(wordStartIndices(""), IsEmpty());
}

TEST(FuzzyMatcher, AWindowIsFoundByItsApplicationsNameWithoutTheTitleBonus) {
    EXPECT_THAT(match("mail", testWindow(1, "Inbox", "Mail")), Optional(Match{25 + 3 * 31 + 1000, {0, 1, 2, 3}}));
}

TEST(FuzzyMatcher, ATitleThatScoresBestIsRaisedByTen) {
    EXPECT_THAT(match("inb", testWindow(1, "Inbox", "Mail")), Optional(Match{25 + 2 * 31 + 400 + 10, {0, 1, 2}}));
}

TEST(FuzzyMatcher, ATitleThatTiesWithTheNameWins) {
    EXPECT_THAT(match("mail", testWindow(1, "Mail", "Mail")), Optional(Match{25 + 3 * 31 + 1000 + 10, {0, 1, 2, 3}}));
}

TEST(FuzzyMatcher, NameAndTitleTogetherMatchWhatNeitherDoes) {
    // The last b of "Mail New b" stands at 9, after the space that was taken at 4.
    const auto found = match("mi b", testWindow(1, "New b", "Mail"));
    EXPECT_THAT(found, Optional(::testing::Field(&Match::matchedIndices, ElementsAre(0, 2, 4, 9))));
    EXPECT_EQ(match("inboxmail", testWindow(1, "Inbox", "Mail")), std::nullopt);
    EXPECT_TRUE(match("mailinbox", testWindow(1, "Inbox", "Mail")));
}

TEST(FuzzyMatcher, ABlankTitleIsMatchedAsTheApplicationsName) {
    EXPECT_THAT(match("mail", testWindow(1, "   ", "Mail")), Optional(Match{25 + 3 * 31 + 1000 + 10, {0, 1, 2, 3}}));
}

TEST(FuzzyMatcher, AWindowWithoutAnyTextMatchesNothing) {
    EXPECT_EQ(match("a", testWindow(1, "", "")), std::nullopt);
}

TEST(FuzzyMatcher, ScoringManyWindowsGivesTheSameScoresAndTheTitlesOwnPositions) {
    const FuzzyMatcher::Query query("mail");
    std::vector<std::int32_t> positions{7, 8, 9};
    EXPECT_EQ(FuzzyMatcher::score(query, testWindow(1, "Inbox", "Mail"), positions), 25 + 3 * 31 + 1000);
    EXPECT_THAT(positions, IsEmpty());
    EXPECT_EQ(FuzzyMatcher::score(query, testWindow(1, "  My Mail", "Mail"), positions), 25 + 3 * 31 + 1000);
    EXPECT_THAT(positions, ElementsAre(0, 4, 5, 6));
    EXPECT_EQ(FuzzyMatcher::score(query, testWindow(1, "Terminal", "Kitty"), positions), std::nullopt);
    EXPECT_THAT(positions, IsEmpty());
    EXPECT_EQ(FuzzyMatcher::score(FuzzyMatcher::Query(""), testWindow(1, "x"), positions), 0);
}

std::string shown(const std::optional<FuzzyMatcher::Match>& match) {
    return match ? std::to_string(match->score) + " at " + testing::PrintToString(match->matchedIndices) : "none";
}

/// How many pairs of so many are compared: a tenth where a sanitizer slows each one down.
constexpr int pairs(int all) {
#ifdef FERROWYN_SANITIZED
    return all / 10;
#else
    return all;
#endif
}

/// Counts what matched, so that a generator that only makes mismatches cannot pass.
class FuzzyMatcherAgreesWithTheReference : public testing::Test {
protected:
    void compare(const std::string& query, const std::string& text) {
        const auto expected = ReferenceFuzzyMatcher::match(query, text);
        const auto actual = FuzzyMatcher::match(query, text);
        ASSERT_EQ(actual, expected) << "query '" << query << "' text '" << text << "': " << shown(actual)
                                    << " instead of " << shown(expected);
        matches += expected ? 1 : 0;
    }

    void compare(const std::string& query, const AppWindow& window) {
        const auto expected = ReferenceFuzzyMatcher::match(query, window);
        const auto actual = FuzzyMatcher::match(query, window);
        ASSERT_EQ(actual, expected) << "query '" << query << "' title '" << window.title << "' application '"
                                    << window.appName << "': " << shown(actual) << " instead of " << shown(expected);
        std::vector<std::int32_t> titleIndices;
        const auto score = FuzzyMatcher::score(FuzzyMatcher::Query(query), window, titleIndices);
        ASSERT_EQ(score.has_value(), expected.has_value());
        if (score) {
            const auto byTitle = ReferenceFuzzyMatcher::match(query, window.displayTitle());
            ASSERT_EQ(*score, expected->score);
            ASSERT_EQ(titleIndices, byTitle ? byTitle->matchedIndices : std::vector<std::int32_t>{});
        }
        matches += expected ? 1 : 0;
    }

    std::mt19937 random{1848};
    int matches = 0;
};

TEST_F(FuzzyMatcherAgreesWithTheReference, OnUnicodeTexts) {
    for (int round = 0; round < pairs(85000) && !HasFatalFailure(); ++round) {
        const std::string text = randomText(random, 14);
        compare(randomQueryFor(random, text), text);
    }
    EXPECT_GT(matches, pairs(45000));
}

TEST_F(FuzzyMatcherAgreesWithTheReference, OnAsciiTexts) {
    for (int round = 0; round < pairs(30000) && !HasFatalFailure(); ++round) {
        const std::string text = randomAsciiText(random, 40);
        compare(round % 2 == 0 ? randomQueryFor(random, text) : randomAsciiText(random, 4), text);
    }
    EXPECT_GT(matches, pairs(10000));
}

TEST_F(FuzzyMatcherAgreesWithTheReference, OnWindows) {
    for (int round = 0; round < pairs(20000) && !HasFatalFailure(); ++round) {
        const bool isAscii = round % 3 == 0;
        const AppWindow window = testWindow(1, isAscii ? randomAsciiText(random, 12) : randomText(random, 8),
                                            isAscii ? randomAsciiText(random, 5) : randomText(random, 4));
        const std::string all = window.appName + " " + window.title;
        compare(randomQueryFor(random, round % 2 == 0 ? window.title : all), window);
    }
    EXPECT_GT(matches, pairs(8000));
}

TEST_F(FuzzyMatcherAgreesWithTheReference, OnWordStarts) {
    for (int round = 0; round < pairs(5000) && !HasFatalFailure(); ++round) {
        const std::string text = randomText(random, 14);
        ASSERT_EQ(FuzzyMatcher::wordStartIndices(text), ReferenceFuzzyMatcher::wordStartIndices(text)) << text;
    }
}

TEST_F(FuzzyMatcherAgreesWithTheReference, OnPlainTextTreatedAsUnicode) {
    // A character without case far behind the match sends the same text down the other path.
    for (int round = 0; round < pairs(20000) && !HasFatalFailure(); ++round) {
        const std::string text = randomAsciiText(random, 20);
        const std::string query = randomAsciiText(random, 3);
        const auto plain = FuzzyMatcher::match(query, text + "|");
        const auto unicode = FuzzyMatcher::match(query, text + "漢");
        ASSERT_EQ(plain, unicode) << "query '" << query << "' text '" << text << "'";
        matches += plain ? 1 : 0;
    }
    EXPECT_GT(matches, pairs(5000));
}

/// The windows of a list, with titles that need a preparation.
SharedWindow::List accentedWindows(int count) {
    std::vector<AppWindow> windows;
    for (int number = 1; number <= count; ++number) {
        AppWindow window;
        window.id = static_cast<WindowId>(number);
        window.appName = "Éditeur " + std::to_string(number);
        window.title = "Fenêtre " + std::to_string(number);
        windows.push_back(std::move(window));
    }
    return std::make_shared<const std::vector<AppWindow>>(std::move(windows));
}

TEST(TextPreparation, PreparesAFewWindowsInEachTurnOfTheLoop) {
    TaskQueue tasks;
    TextPreparation preparation(tasks.post());
    auto& cache = PreparedTextCache::ofThisThread();
    const std::size_t before = cache.size();
    preparation.start(accentedWindows(20));
    EXPECT_EQ(cache.size(), before);
    for (const std::size_t windows : {8U, 16U, 20U}) {
        ASSERT_EQ(tasks.size(), 1U);
        tasks.run();
        EXPECT_EQ(cache.size(), before + 3 * windows);
    }
    EXPECT_EQ(tasks.size(), 0U);
}

TEST(TextPreparation, PreparesNoMoreTextsThanTheCacheKeepsStartingWithTheFirst) {
    TaskQueue tasks;
    TextPreparation preparation(tasks.post());
    const auto runAll = [&] {
        while (tasks.size() > 0) {
            tasks.run();
        }
    };
    preparation.start(accentedWindows(3000));
    runAll();
    auto& cache = PreparedTextCache::ofThisThread();
    EXPECT_FALSE(cache.prepareAhead("Fenêtre 1")) << "prepared first, and still there";
    EXPECT_FALSE(cache.prepareAhead("Fenêtre 682"));
    EXPECT_TRUE(cache.prepareAhead("Fenêtre 683"));

    AppWindow window;
    window.title = "Fenêtre of the next list";
    preparation.start(std::make_shared<const std::vector<AppWindow>>(1, window));
    runAll();
    EXPECT_FALSE(cache.prepareAhead("Fenêtre of the next list")) << "each list has its share";
}

TEST(TextPreparation, PostsNothingForAnEmptyListOrPlainTexts) {
    TaskQueue tasks;
    TextPreparation preparation(tasks.post());
    preparation.start(nullptr);
    preparation.start(accentedWindows(0));
    AppWindow plain;
    plain.title = "Plain";
    preparation.start(std::make_shared<const std::vector<AppWindow>>(1, plain));
    EXPECT_EQ(tasks.size(), 0U);
}

TEST(TextPreparation, ATurnThatTheListDidNotWaitForPreparesNothing) {
    TaskQueue tasks;
    TextPreparation preparation(tasks.post());
    preparation.start(accentedWindows(1));
    preparation.start(nullptr);
    const std::size_t before = PreparedTextCache::ofThisThread().size();
    tasks.run();
    EXPECT_EQ(PreparedTextCache::ofThisThread().size(), before);
}

TEST(TextPreparation, ATurnAfterItsEndPreparesNothing) {
    TaskQueue tasks;
    std::optional<TextPreparation> preparation(tasks.post());
    preparation->start(accentedWindows(1));
    preparation.reset();
    const std::size_t before = PreparedTextCache::ofThisThread().size();
    tasks.run();
    EXPECT_EQ(PreparedTextCache::ofThisThread().size(), before);
}

}  // namespace
}  // namespace ferrowyn

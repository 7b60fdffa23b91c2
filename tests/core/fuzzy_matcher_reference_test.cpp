#include <gtest/gtest.h>

#include <random>
#include <string>

#include "core/fuzzy_matcher.h"
#include "tests/core/reference_fuzzy_matcher.h"
#include "tests/core/test_window.h"
#include "tests/core/unicode_samples.h"

namespace ferrowyn {
namespace {

using unicode_samples::randomAsciiText;
using unicode_samples::randomQueryFor;
using unicode_samples::randomText;

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

}  // namespace
}  // namespace ferrowyn

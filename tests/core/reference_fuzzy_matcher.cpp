#include "tests/core/reference_fuzzy_matcher.h"

#include <unicode/brkiter.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>

namespace ferrowyn::ReferenceFuzzyMatcher {

namespace {

/// Composed, so that comparing strings compares characters.
using Characters = std::vector<icu::UnicodeString>;

const icu::Normalizer2& composer() {
    UErrorCode status = U_ZERO_ERROR;
    return *icu::Normalizer2::getNFCInstance(status);
}

icu::UnicodeString composed(const icu::UnicodeString& text) {
    UErrorCode status = U_ZERO_ERROR;
    return composer().normalize(text, status);
}

icu::UnicodeString lowercased(icu::UnicodeString text) {
    return text.toLower(icu::Locale::getRoot());
}
icu::UnicodeString uppercased(icu::UnicodeString text) {
    return text.toUpper(icu::Locale::getRoot());
}

Characters charactersOf(const icu::UnicodeString& text) {
    UErrorCode status = U_ZERO_ERROR;
    static const std::unique_ptr<icu::BreakIterator> breaks(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    breaks->setText(text);
    Characters characters;
    for (auto start = breaks->first(), end = breaks->next(); end != icu::BreakIterator::DONE;
         start = end, end = breaks->next()) {
        characters.push_back(composed(text.tempSubStringBetween(start, end)));
    }
    return characters;
}

bool isSeparator(const icu::UnicodeString& character) {
    static const std::array<icu::UnicodeString, 8> separators{u" ", u"-", u"_", u".", u"/", u":", u"—", u"–"};
    return std::find(separators.begin(), separators.end(), character) != separators.end();
}

bool isUppercase(const icu::UnicodeString& character) {
    if (character.countChar32() == 1 && u_isUUppercase(character.char32At(0))) {
        return true;
    }
    return composed(uppercased(character)) == character && composed(lowercased(character)) != character;
}

bool isLowercase(const icu::UnicodeString& character) {
    if (character.countChar32() == 1 && u_isULowercase(character.char32At(0))) {
        return true;
    }
    return composed(lowercased(character)) == character && composed(uppercased(character)) != character;
}

std::vector<std::size_t> wordStarts(const Characters& text) {
    std::vector<std::size_t> starts;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (i == 0 || isSeparator(text[i - 1])) {
            starts.push_back(i);
        }
    }
    return starts;
}

bool standsAt(const Characters& query, const Characters& text, std::size_t start) {
    return start + query.size() <= text.size() &&
           std::equal(query.begin(), query.end(), text.begin() + static_cast<std::ptrdiff_t>(start));
}

}  // namespace

std::optional<FuzzyMatcher::Match> match(const std::string& query, const std::string& text) {
    if (query.empty()) {
        return FuzzyMatcher::Match{};
    }
    if (text.empty()) {
        return std::nullopt;
    }
    const icu::UnicodeString wholeText = icu::UnicodeString::fromUTF8(text);
    const Characters q = charactersOf(lowercased(icu::UnicodeString::fromUTF8(query)));
    const Characters t = charactersOf(wholeText);
    const Characters l = charactersOf(lowercased(wholeText));
    if (t.size() < q.size()) {
        return std::nullopt;
    }

    std::vector<std::size_t> positions;
    std::size_t from = 0;
    for (const auto& character : q) {
        const auto found = std::find(l.begin() + static_cast<std::ptrdiff_t>(from), l.end(), character);
        if (found == l.end()) {
            return std::nullopt;
        }
        positions.push_back(static_cast<std::size_t>(found - l.begin()));
        from = positions.back() + 1;
    }

    std::int64_t score = 0;
    for (std::size_t i = 0; i < positions.size(); ++i) {
        const std::size_t p = positions[i];
        const auto place = static_cast<std::int64_t>(p);
        if (i == 0) {
            score += std::max<std::int64_t>(-2 * place, -30);
        } else {
            const auto previous = static_cast<std::int64_t>(positions[i - 1]);
            score += place == previous + 1 ? 30 : -3 * (place - previous - 1);
        }
        if (p == 0 || isSeparator(t.at(p - 1))) {
            score += 25;
        }
        if (p > 0 && p < t.size() && isUppercase(t[p]) && isLowercase(t[p - 1])) {
            score += 20;
        }
        if (p < t.size() && t[p] == q[i]) {
            score += 1;
        }
    }

    if (l == q) {
        score += 1000;
    } else if (standsAt(q, l, 0)) {
        score += 400;
    } else {
        const auto starts = wordStarts(t);
        if (std::any_of(starts.begin(), starts.end(), [&](std::size_t start) { return standsAt(q, l, start); })) {
            score += 200;
        }
    }
    score -= static_cast<std::int64_t>(t.size() / 8);
    return FuzzyMatcher::Match{score, {positions.begin(), positions.end()}};
}

std::optional<FuzzyMatcher::Match> match(const std::string& query, const AppWindow& window) {
    if (query.empty()) {
        return FuzzyMatcher::Match{};
    }
    const std::string title = window.displayTitle();
    const auto byTitle = match(query, title);
    const auto byName = match(query, window.appName);
    const auto byBoth = match(query, window.appName + " " + title);
    auto best = byTitle;
    for (const auto& candidate : {byName, byBoth}) {
        if (candidate && (!best || candidate->score > best->score)) {
            best = candidate;
        }
    }
    if (best && byTitle && byTitle->score == best->score) {
        best = byTitle;
        best->score += 10;
    }
    return best;
}

std::vector<std::int32_t> wordStartIndices(const std::string& text) {
    const auto starts = wordStarts(charactersOf(icu::UnicodeString::fromUTF8(text)));
    return {starts.begin(), starts.end()};
}

}  // namespace ferrowyn::ReferenceFuzzyMatcher

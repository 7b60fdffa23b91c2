#include "core/fuzzy_matcher.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

#include "core/prepared_text.h"
#include "core/text.h"

namespace ferrowyn::FuzzyMatcher {

namespace {

// The parts of a score. Sums stay far inside 64 bits: texts are shorter than 4 GiB.
constexpr std::int64_t lateStartCost = 2;
constexpr std::int64_t greatestLateStartCost = 30;
constexpr std::int64_t consecutiveBonus = 30;
constexpr std::int64_t skippedCharacterCost = 3;
constexpr std::int64_t wordStartBonus = 25;
constexpr std::int64_t humpBonus = 20;
constexpr std::int64_t exactCharacterBonus = 1;
constexpr std::int64_t wholeTextBonus = 1000;
constexpr std::int64_t prefixBonus = 400;
constexpr std::int64_t wholeWordsBonus = 200;
constexpr std::int64_t charactersPerLengthPenalty = 8;
/// Prefers a window whose title matches to one whose application's name matches equally well.
constexpr std::int64_t titleBonus = 10;

using Positions = std::vector<std::int32_t>;

constexpr auto asciiSeparators = [] {
    std::array<bool, 0x80> table{};
    for (const char32_t separator : wordSeparators) {
        if (separator < table.size()) {
            table[separator] = true;
        }
    }
    return table;
}();

/// A query and a text in which every byte is one character. Works directly on the bytes.
class AsciiTexts {
public:
    static constexpr std::size_t notFound = std::string_view::npos;

    AsciiTexts(std::string_view query, std::string_view text) : query_(query), text_(text) {}

    [[nodiscard]] std::size_t queryLength() const { return query_.size(); }
    [[nodiscard]] std::size_t characterCount() const { return text_.size(); }
    [[nodiscard]] std::size_t lowercasedCount() const { return text_.size(); }
    [[nodiscard]] std::size_t find(std::size_t queryPosition, std::size_t from) const {
        return plain_ascii::findIgnoringCase(text_, from, query_[queryPosition]);
    }
    [[nodiscard]] bool areEqual(std::size_t position, std::size_t queryPosition) const {
        return plain_ascii::lower(text_[position]) == query_[queryPosition];
    }
    [[nodiscard]] bool startsWord(std::size_t position) const {
        return position == 0 || asciiSeparators[static_cast<unsigned char>(text_[position - 1])];
    }
    [[nodiscard]] bool isHump(std::size_t position) const {
        return position > 0 && plain_ascii::isUpper(text_[position]) && plain_ascii::isLower(text_[position - 1]);
    }
    [[nodiscard]] bool isLowercaseForm(std::size_t position) const { return !plain_ascii::isUpper(text_[position]); }

private:
    std::string_view query_;
    std::string_view text_;
};

/// The same interface for any text.
class PreparedTexts {
public:
    static constexpr std::size_t notFound = CharacterCodes::notFound;

    PreparedTexts(const CharacterCodes& query, const PreparedText& text) : query_(query), text_(text) {}

    [[nodiscard]] std::size_t queryLength() const { return query_.size(); }
    [[nodiscard]] std::size_t characterCount() const { return text_.characterCount(); }
    [[nodiscard]] std::size_t lowercasedCount() const { return text_.lowercased().size(); }
    [[nodiscard]] std::size_t find(std::size_t queryPosition, std::size_t from) const {
        return text_.lowercased().find(query_, queryPosition, from);
    }
    [[nodiscard]] bool areEqual(std::size_t position, std::size_t queryPosition) const {
        return text_.lowercased().areEqual(position, query_, queryPosition);
    }
    [[nodiscard]] bool startsWord(std::size_t position) const { return text_.startsWord(position); }
    [[nodiscard]] bool isHump(std::size_t position) const { return text_.isHump(position); }
    [[nodiscard]] bool isLowercaseForm(std::size_t position) const { return text_.isLowercaseForm(position); }

private:
    const CharacterCodes& query_;
    const PreparedText& text_;
};

/// Finds for each character of the query its first position after the previous one, without backtracking. False when a
/// character is not found.
template <typename Texts>
bool findPositions(const Texts& texts, Positions& positions) {
    positions.clear();
    if (texts.characterCount() < texts.queryLength()) {
        return false;
    }
    std::size_t from = 0;
    for (std::size_t i = 0; i < texts.queryLength(); ++i) {
        const std::size_t position = texts.find(i, from);
        if (position == Texts::notFound) {
            positions.clear();
            return false;
        }
        positions.push_back(static_cast<std::int32_t>(position));
        from = position + 1;
    }
    return true;
}

template <typename Texts>
bool standsAt(const Texts& texts, std::size_t start) {
    for (std::size_t i = 0; i < texts.queryLength(); ++i) {
        if (!texts.areEqual(start + i, i)) {
            return false;
        }
    }
    return true;
}

/// Whether the whole query occurs without gaps at the start of a word.
template <typename Texts>
bool standsAtAWordStart(const Texts& texts, std::size_t firstPosition) {
    // Only a position of the query's first character can be the start; `firstPosition` is the first of them.
    for (std::size_t start = firstPosition; start != Texts::notFound; start = texts.find(0, start + 1)) {
        if (start + texts.queryLength() > texts.lowercasedCount()) {
            return false;
        }
        if (start < texts.characterCount() && texts.startsWord(start) && standsAt(texts, start)) {
            return true;
        }
    }
    return false;
}

template <typename Texts>
std::int64_t bonusForTheWhole(const Texts& texts, const Positions& positions) {
    // The scan takes the first positions, so it finds a prefix of the text at position 0. A prefix as long as the text
    // is the whole text.
    if (static_cast<std::size_t>(positions.back()) + 1 == texts.queryLength()) {
        return texts.lowercasedCount() == texts.queryLength() ? wholeTextBonus : prefixBonus;
    }
    return standsAtAWordStart(texts, static_cast<std::size_t>(positions.front())) ? wholeWordsBonus : 0;
}

/// The score of a match, and the part of it for standing without gaps at the start of the text or of a word.
struct Score {
    std::int64_t value;
    std::int64_t bonusForTheWhole;
};

template <typename Texts>
Score scoreOf(const Texts& texts, const Positions& positions) {
    std::int64_t score = -std::min(lateStartCost * positions.front(), greatestLateStartCost);
    std::int64_t previous = positions.front() - 1;
    for (const std::int64_t position : positions) {
        if (position != positions.front()) {
            const std::int64_t skipped = position - previous - 1;
            score += skipped == 0 ? consecutiveBonus : -skippedCharacterCost * skipped;
        }
        const auto place = static_cast<std::size_t>(position);
        score += texts.startsWord(place) ? wordStartBonus : 0;
        score += texts.isHump(place) ? humpBonus : 0;
        score += texts.isLowercaseForm(place) ? exactCharacterBonus : 0;
        previous = position;
    }
    const std::int64_t bonus = bonusForTheWhole(texts, positions);
    return {score + bonus - static_cast<std::int64_t>(texts.characterCount()) / charactersPerLengthPenalty, bonus};
}

template <typename Texts>
std::optional<Score> scoreTexts(const Texts& texts, Positions& positions) {
    if (!findPositions(texts, positions)) {
        return std::nullopt;
    }
    return scoreOf(texts, positions);
}

/// The query must not be empty. Replaces the positions; they are empty when there is no match.
std::optional<Score> scorePlain(const Query& query, std::string_view text, Positions& positions) {
    if (!query.asciiCharacters()) {
        positions.clear();
        return std::nullopt;
    }
    return scoreTexts(AsciiTexts(*query.asciiCharacters(), text), positions);
}

std::optional<Score> scoreAny(const Query& query, std::string_view text, bool isPlain, Positions& positions) {
    if (isPlain) {
        return scorePlain(query, text, positions);
    }
    const PreparedText& prepared = PreparedTextCache::ofThisThread().prepared(text);
    return scoreTexts(PreparedTexts(query.characters(), prepared), positions);
}

/// Whether a query occurs in the plain text `name` + " " + `title`, without building that text.
bool occursAcross(const Query& query, std::string_view name, std::string_view title) {
    if (!query.asciiCharacters()) {
        return false;
    }
    const std::string& wanted = *query.asciiCharacters();
    std::size_t next = 0;
    const auto take = [&](std::string_view part) {
        std::size_t from = 0;
        while (next < wanted.size()) {
            const std::size_t position = plain_ascii::findIgnoringCase(part, from, wanted[next]);
            if (position == std::string_view::npos) {
                return;
            }
            from = position + 1;
            ++next;
        }
    };
    take(name);
    take(" ");
    take(title);
    return next == wanted.size();
}

/// Buffers that are reused from window to window.
struct Scratch {
    std::string combined;
    Positions name;
    Positions both;
};

struct Best {
    std::int64_t score;
    const Positions* positions;
};

/// The best of title, name and both together; with equal scores the first. `titlePositions` is filled in every case.
std::optional<Best> bestOf(const Query& query, const AppWindow& window, Scratch& scratch, Positions& titlePositions) {
    const std::string_view title = window.displayTitleView();
    const bool isNamePlain = plain_ascii::isPlain(window.appName);
    const bool isTitlePlain = plain_ascii::isPlain(title);
    // Most windows do not match. A query that does not occur in name and title together occurs in neither of them.
    if (isNamePlain && isTitlePlain && !occursAcross(query, window.appName, title)) {
        titlePositions.clear();
        return std::nullopt;
    }
    std::optional<Best> best;
    const auto consider = [&best](const std::optional<Score>& score, const Positions& positions) {
        if (score && (!best || score->value > best->score)) {
            best = Best{score->value, &positions};
        }
    };
    consider(scoreAny(query, title, isTitlePlain, titlePositions), titlePositions);
    const auto nameScore = scoreAny(query, window.appName, isNamePlain, scratch.name);
    consider(nameScore, scratch.name);
    // The combined text begins with the name, so a query found in the name has the same positions there. The longer
    // text scores no better, unless the query occurs without gaps at the start of a word in the title only.
    if (!(isNamePlain && nameScore && nameScore->bonusForTheWhole > 0)) {
        scratch.combined.assign(window.appName).append(1, ' ').append(title);
        consider(scoreAny(query, scratch.combined, isNamePlain && isTitlePlain, scratch.both), scratch.both);
    }
    if (best && best->positions == &titlePositions) {
        best->score += titleBonus;
    }
    return best;
}

Scratch& scratchOfThisThread() {
    thread_local Scratch scratch;
    return scratch;
}

}  // namespace

Query::Query(std::string_view query) : characters_(text::lowercased(query)) {
    if (!characters_.isAscii()) {
        return;
    }
    std::string ascii(characters_.size(), '\0');
    for (std::size_t i = 0; i < ascii.size(); ++i) {
        ascii[i] = static_cast<char>(characters_.scalar(i));
    }
    asciiCharacters_ = std::move(ascii);
}

std::optional<Match> match(std::string_view query, std::string_view text) {
    Match result;
    const Query prepared(query);
    if (prepared.isEmpty()) {
        return result;
    }
    const auto score = scoreAny(prepared, text, plain_ascii::isPlain(text), result.matchedIndices);
    if (!score) {
        return std::nullopt;
    }
    result.score = score->value;
    return result;
}

std::optional<Match> match(std::string_view query, const AppWindow& window) {
    const Query prepared(query);
    if (prepared.isEmpty()) {
        return Match{};
    }
    Positions titlePositions;
    const auto best = bestOf(prepared, window, scratchOfThisThread(), titlePositions);
    if (!best) {
        return std::nullopt;
    }
    return Match{best->score, *best->positions};
}

std::optional<std::int64_t> score(const Query& query, const AppWindow& window,
                                  std::vector<std::int32_t>& titleIndices) {
    if (query.isEmpty()) {
        titleIndices.clear();
        return 0;
    }
    const auto best = bestOf(query, window, scratchOfThisThread(), titleIndices);
    return best ? std::optional(best->score) : std::nullopt;
}

bool needsPreparation(const AppWindow& window) {
    return !plain_ascii::isPlain(window.displayTitleView()) || !plain_ascii::isPlain(window.appName);
}

bool prepareAhead(const AppWindow& window) {
    const std::string_view title = window.displayTitleView();
    const bool isNamePlain = plain_ascii::isPlain(window.appName);
    const bool isTitlePlain = plain_ascii::isPlain(title);
    if (isNamePlain && isTitlePlain) {
        return false;
    }
    PreparedTextCache& cache = PreparedTextCache::ofThisThread();
    const bool isTitleNew = !isTitlePlain && cache.prepareAhead(title);
    const bool isNameNew = !isNamePlain && cache.prepareAhead(window.appName);
    std::string& combined = scratchOfThisThread().combined;
    combined.assign(window.appName).append(1, ' ').append(title);
    return cache.prepareAhead(combined) || isTitleNew || isNameNew;
}

std::vector<std::int32_t> wordStartIndices(std::string_view text) {
    const CharacterCodes characters(text);
    std::vector<std::int32_t> starts;
    for (std::size_t position = 0; position < characters.size(); ++position) {
        if (position == 0 || isWordSeparator(characters.scalar(position - 1))) {
            starts.push_back(static_cast<std::int32_t>(position));
        }
    }
    return starts;
}

}  // namespace ferrowyn::FuzzyMatcher

namespace ferrowyn {

TextPreparation::TextPreparation(PostTask post) : turn_(std::move(post), [this] { prepareSome(); }) {}

void TextPreparation::start(SharedWindow::List windows) {
    windows_ = std::move(windows);
    next_ = 0;
    prepared_ = 0;
    requestIfNeeded();
}

void TextPreparation::requestIfNeeded() {
    if (windows_ == nullptr || prepared_ == mostWindows) {
        return;
    }
    const auto first = std::find_if(windows_->begin() + static_cast<std::ptrdiff_t>(next_), windows_->end(),
                                    FuzzyMatcher::needsPreparation);
    next_ = static_cast<std::size_t>(first - windows_->begin());
    if (first != windows_->end()) {
        turn_.request();
    }
}

void TextPreparation::prepareSome() {
    if (windows_ == nullptr) {
        return;
    }
    std::size_t inThisTurn = 0;
    while (next_ < windows_->size() && inThisTurn < windowsInOneTurn && prepared_ < mostWindows) {
        const AppWindow& window = (*windows_)[next_++];
        prepared_ += FuzzyMatcher::needsPreparation(window) ? 1 : 0;
        inThisTurn += FuzzyMatcher::prepareAhead(window) ? 1 : 0;
    }
    requestIfNeeded();
}

}  // namespace ferrowyn

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/app_window.h"
#include "core/posted_work.h"
#include "core/prepared_text.h"

/// Scores how well a typed query matches a text. Pure functions on UTF-8; positions count user-perceived characters.
/// Any thread.
namespace ferrowyn::FuzzyMatcher {

struct Match {
    /// Higher is better; may be negative.
    std::int64_t score = 0;
    /// The positions of the query's characters in the text, ascending, one for each character.
    std::vector<std::int32_t> matchedIndices;
    friend bool operator==(const Match&, const Match&) = default;
};

/// A query prepared for matching it with many texts.
class Query {
public:
    explicit Query(std::string_view query);

    [[nodiscard]] bool isEmpty() const { return characters_.size() == 0; }
    /// The characters of the lowercased query.
    [[nodiscard]] const CharacterCodes& characters() const { return characters_; }
    /// The same characters when all of them are ASCII, else nothing. Only such a query can match an ASCII text.
    [[nodiscard]] const std::optional<std::string>& asciiCharacters() const { return asciiCharacters_; }

private:
    CharacterCodes characters_;
    std::optional<std::string> asciiCharacters_;
};

/// Nothing when the text does not contain the query's characters in their order.
[[nodiscard]] std::optional<Match> match(std::string_view query, std::string_view text);

/// The best score of the window's title, its application's name, and both together. The indices are positions in the
/// text that scored best.
[[nodiscard]] std::optional<Match> match(std::string_view query, const AppWindow& window);

/// The same score, for scoring many windows. Replaces `titleIndices` by the positions in the window's display title
/// that match the query; empty when the title alone does not match.
[[nodiscard]] std::optional<std::int64_t> score(const Query& query, const AppWindow& window,
                                                std::vector<std::int32_t>& titleIndices);

/// Whether scoring the window is faster when its texts are prepared ahead. Plain ASCII texts need no preparation.
[[nodiscard]] bool needsPreparation(const AppWindow& window);
/// Prepares the window's texts for later scores on this thread. False when there was nothing to do.
bool prepareAhead(const AppWindow& window);

/// Position 0 and every position after a word separator.
[[nodiscard]] std::vector<std::int32_t> wordStartIndices(std::string_view text);

}  // namespace ferrowyn::FuzzyMatcher

namespace ferrowyn {

/// Prepares the texts of the windows in a list for the first keystroke of a session, a few in each turn of the loop, so
/// that a key press never waits for all of them. Main thread.
class TextPreparation {
public:
    /// A key press may have to wait for this many windows: about a quarter of a millisecond.
    static constexpr std::size_t windowsInOneTurn = 8;
    /// A window has up to three texts. More texts than one generation of the cache holds would push out the first ones,
    /// which belong to the most recently used windows.
    static constexpr std::size_t mostWindows = PreparedTextCache::generationSize / 3;

    explicit TextPreparation(PostTask post);

    /// Starts again with this list, most recently used windows first. Null stands for an empty list.
    void start(SharedWindow::List windows);

private:
    void requestIfNeeded();
    void prepareSome();

    SharedWindow::List windows_;
    /// The index of the next window to prepare.
    std::size_t next_ = 0;
    /// How many of the windows before `next_` were added to the cache.
    std::size_t prepared_ = 0;
    CoalescedTask turn_;
};

}  // namespace ferrowyn

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
    /// Where the query's characters stand in the text, ascending, one each.
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
    /// The same when all of them are ASCII characters: no other query can match an ASCII text.
    [[nodiscard]] const std::optional<std::string>& asciiCharacters() const { return asciiCharacters_; }

private:
    CharacterCodes characters_;
    std::optional<std::string> asciiCharacters_;
};

/// Nothing when the query's characters do not occur in the text in their order.
[[nodiscard]] std::optional<Match> match(std::string_view query, std::string_view text);

/// The score of a window by its title, its application's name, or both together. The indices are those in whichever
/// of the three scored best.
[[nodiscard]] std::optional<Match> match(std::string_view query, const AppWindow& window);

/// The same score, for many windows in a row. Replaces `titleIndices` by the positions in the window's display title
/// that match the query by itself; empty when it does not.
[[nodiscard]] std::optional<std::int64_t> score(const Query& query, const AppWindow& window,
                                                std::vector<std::int32_t>& titleIndices);

/// Whether scoring the window asks for a preparation that is worth doing ahead: not with plain ASCII texts.
[[nodiscard]] bool needsPreparation(const AppWindow& window);
/// Does it for later scores on this thread. Whether there was anything to do.
bool prepareAhead(const AppWindow& window);

/// Position 0 and every position after a word separator.
[[nodiscard]] std::vector<std::int32_t> wordStartIndices(std::string_view text);

}  // namespace ferrowyn::FuzzyMatcher

namespace ferrowyn {

/// Prepares the texts of the windows in a list for the first keystroke of a session, a few in each turn of the loop, so
/// that a key press never waits for all of them. Main thread.
class TextPreparation {
public:
    /// A key press that comes meanwhile waits for them: a quarter of a millisecond.
    static constexpr std::size_t windowsInOneTurn = 8;
    /// A window has up to three texts. What is prepared beyond one generation of the cache pushes out what was prepared
    /// first, which is that of the windows used last.
    static constexpr std::size_t mostWindows = PreparedTextCache::generationSize / 3;

    explicit TextPreparation(PostTask post);

    /// Begins anew with this list, which may be null for none; the windows used last stand first.
    void start(SharedWindow::List windows);

private:
    void requestIfNeeded();
    void prepareSome();

    SharedWindow::List windows_;
    /// The windows before it are done.
    std::size_t next_ = 0;
    /// How many of those take room in the cache.
    std::size_t prepared_ = 0;
    CoalescedTask turn_;
};

}  // namespace ferrowyn

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "core/app_window.h"

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

/// Nothing when the query's characters do not occur in the text in their order.
[[nodiscard]] std::optional<Match> match(std::string_view query, std::string_view text);

/// The score of a window by its title, its application's name, or both together.
[[nodiscard]] std::optional<Match> match(std::string_view query, const AppWindow& window);

/// Position 0 and every position after a word separator.
[[nodiscard]] std::vector<std::int32_t> wordStartIndices(std::string_view text);

}  // namespace ferrowyn::FuzzyMatcher

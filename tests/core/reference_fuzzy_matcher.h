#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/app_window.h"
#include "core/fuzzy_matcher.h"

/// The matching rules one after the other, on lists of ICU strings, without any shortcut: what the program's matcher is
/// compared with, in its results and in its speed.
namespace ferrowyn::ReferenceFuzzyMatcher {

[[nodiscard]] std::optional<FuzzyMatcher::Match> match(const std::string& query, const std::string& text);
[[nodiscard]] std::optional<FuzzyMatcher::Match> match(const std::string& query, const AppWindow& window);
[[nodiscard]] std::vector<std::int32_t> wordStartIndices(const std::string& text);

}  // namespace ferrowyn::ReferenceFuzzyMatcher

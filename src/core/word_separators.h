#pragma once

#include <algorithm>
#include <array>

namespace ferrowyn {

/// The character after one of these starts a word.
inline constexpr std::array<char32_t, 8> wordSeparators{U' ', U'-', U'_', U'.', U'/', U':', U'\u2014', U'\u2013'};

[[nodiscard]] constexpr bool isWordSeparator(char32_t scalar) {
    return std::find(wordSeparators.begin(), wordSeparators.end(), scalar) != wordSeparators.end();
}

}  // namespace ferrowyn

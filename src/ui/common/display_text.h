#pragma once

#include <QString>
#include <cstdint>
#include <string_view>
#include <vector>

/// Titles come from other programs and may hold anything. Pure functions on text; any thread.
namespace ferrowyn::display_text {

/// UTF-16 units of a text: [start, start + length).
struct Range {
    int start = 0;
    int length = 0;
    friend bool operator==(const Range&, const Range&) = default;
};

/// Longer texts than this many UTF-16 units never fit the panel; what follows is cut before anything is shaped.
inline constexpr int maximumLength = 600;

[[nodiscard]] QString fromUtf8(std::string_view utf8);
/// One line: control characters, newlines and paragraph separators become spaces, each one of them one space, so that
/// positions stay true. Too long a text is cut and ends in "…".
[[nodiscard]] QString singleLine(std::string_view utf8);
/// Whether anything of the text can be seen: not for zero-width and format characters and white space alone.
[[nodiscard]] bool hasVisibleCharacters(const QString& text);
/// Where the user-perceived characters with these ascending positions stand; neighbours become one range. Positions
/// beyond the text are left out.
[[nodiscard]] std::vector<Range> rangesOfCharacters(std::string_view utf8, const std::vector<std::int32_t>& positions);

}  // namespace ferrowyn::display_text

#pragma once

#include <QString>
#include <cstdint>
#include <string_view>
#include <vector>

/// Texts of other programs, which may contain any characters, made safe to show. Pure functions; any thread.
namespace ferrowyn::display_text {

/// A range of UTF-16 units, [start, start + length).
struct Range {
    int start = 0;
    int length = 0;
    friend bool operator==(const Range&, const Range&) = default;
};

/// No text of this many UTF-16 units fits the panel. Longer ones are cut before they are shaped, because shaping
/// is slow.
inline constexpr int maximumLength = 600;

[[nodiscard]] QString fromUtf8(std::string_view utf8);
/// The text on one line. Each control character, line break and paragraph separator becomes one space, so that
/// positions stay valid. A text longer than `maximumLength` is cut and ends in "…".
[[nodiscard]] QString singleLine(std::string_view utf8);
/// Whether the text shows anything: false for white space, zero-width and format characters alone.
[[nodiscard]] bool hasVisibleCharacters(const QString& text);
/// The ranges of the user-perceived characters at these ascending positions. Neighbours share a range; positions beyond
/// the text are ignored.
[[nodiscard]] std::vector<Range> rangesOfCharacters(std::string_view utf8, const std::vector<std::int32_t>& positions);

}  // namespace ferrowyn::display_text

#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Functions on UTF-8 text that need Unicode's tables. Pure; any thread. Invalid UTF-8 counts as characters that belong
/// to no set; text from outside is repaired when it comes in (`text_encoding.h`). Positions and lengths are bytes
/// unless a name says characters: those are user-perceived characters (extended grapheme clusters).
namespace ferrowyn::text {

[[nodiscard]] bool isAscii(std::string_view text);

/// Full Unicode lower casing, independent of the user's language: İ becomes i with a dot above, a sigma that ends a
/// word becomes ς.
[[nodiscard]] std::string lowercased(std::string_view text);
/// Full Unicode upper casing, independent of the user's language: ß becomes SS.
[[nodiscard]] std::string uppercased(std::string_view text);

/// Whether one user-perceived character, combining marks included, is upper case: it has the property, or lower casing
/// changes it and upper casing does not.
[[nodiscard]] bool isUppercase(std::string_view character);
[[nodiscard]] bool isLowercase(std::string_view character);

/// Without leading and trailing spaces of any kind and tabs; newlines stay. A view into the argument.
[[nodiscard]] std::string_view trimmingWhitespace(std::string_view text);
/// Without leading and trailing spaces, tabs and newlines of any kind. A view into the argument.
[[nodiscard]] std::string_view trimmingWhitespaceAndNewlines(std::string_view text);

/// Whether the scalar is a control or a format character. Keys like Escape or the arrows may carry such characters
/// instead of text.
[[nodiscard]] bool isControlCharacter(char32_t scalar);
[[nodiscard]] bool containsControlCharacter(std::string_view text);

/// The order in which a person expects names in a list: case is ignored, digit runs are numbers ("Window 2" before
/// "Window 10"), letters follow the user's language.
[[nodiscard]] std::weak_ordering localizedStandardCompare(std::string_view a, std::string_view b);

/// Replaces `ends` by the byte offset after each character, ascending; the caller can reuse the vector for many texts.
/// The text must be shorter than 4 GiB.
void findCharacterEnds(std::string_view text, std::vector<std::uint32_t>& ends);

/// Views into the argument, one for each character.
[[nodiscard]] std::vector<std::string_view> characters(std::string_view text);
[[nodiscard]] std::size_t characterCount(std::string_view text);

/// Removes the whole last character. Does nothing when the text is empty.
void removeLastCharacter(std::string& text);

}  // namespace ferrowyn::text

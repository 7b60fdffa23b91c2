#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// User-perceived characters (extended grapheme clusters) of UTF-8 text. Pure functions; any thread.
namespace ferrowyn::text {

/// Replaces `ends` by the byte offset behind each character, ascending. For callers that keep the vector from one text
/// to the next; texts are shorter than 4 GiB.
void findCharacterEnds(std::string_view text, std::vector<std::uint32_t>& ends);

/// Views into the argument, one a character.
[[nodiscard]] std::vector<std::string_view> characters(std::string_view text);
[[nodiscard]] std::size_t characterCount(std::string_view text);

/// Removes the whole last character; nothing to remove is harmless.
void removeLastCharacter(std::string& text);

}  // namespace ferrowyn::text

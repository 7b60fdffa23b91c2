#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Between UTF-8, which the program uses throughout, and what comes from outside. Pure functions; any thread.
namespace ferrowyn::text {

[[nodiscard]] bool isValidUtf8(std::string_view bytes);

/// The text with U+FFFD for every ill-formed sequence.
[[nodiscard]] std::string repairedUtf8(std::string_view bytes);

/// An unpaired surrogate becomes U+FFFD.
[[nodiscard]] std::string utf8FromUtf16(std::u16string_view units);
/// An ill-formed sequence becomes U+FFFD.
[[nodiscard]] std::u16string utf16FromUtf8(std::string_view bytes);

/// The bytes, read in the encoding of this name (as the Unicode libraries know it), with U+FFFD for what means nothing
/// there; nothing when the encoding is unknown.
[[nodiscard]] std::optional<std::string> utf8FromEncoding(std::string_view bytes, const std::string& encoding);

/// UTF-8 text with "?" for every control character, so that what another program says cannot command a terminal.
[[nodiscard]] std::string withoutControls(std::string_view text);

/// At most `maximumBytes` of the text, cut before a scalar, never inside one.
[[nodiscard]] std::string_view prefixOfBytes(std::string_view text, std::size_t maximumBytes);

}  // namespace ferrowyn::text

#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Converts between UTF-8, which the program uses everywhere, and the encodings of text from outside. Pure functions;
/// any thread.
namespace ferrowyn::text {

[[nodiscard]] bool isValidUtf8(std::string_view bytes);

/// The text with U+FFFD for every ill-formed sequence.
[[nodiscard]] std::string repairedUtf8(std::string_view bytes);

/// An unpaired surrogate becomes U+FFFD.
[[nodiscard]] std::string utf8FromUtf16(std::u16string_view units);
/// An ill-formed sequence becomes U+FFFD.
[[nodiscard]] std::u16string utf16FromUtf8(std::string_view bytes);

/// Converts the bytes from the encoding with this name (one that ICU knows). Bytes that have no meaning in it become
/// U+FFFD. Nothing when the encoding is unknown.
[[nodiscard]] std::optional<std::string> utf8FromEncoding(std::string_view bytes, const std::string& encoding);

/// The text with "?" in place of every control character, so that text from another program cannot control a terminal.
[[nodiscard]] std::string withoutControls(std::string_view text);

}  // namespace ferrowyn::text

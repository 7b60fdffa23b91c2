#pragma once

#include <string>
#include <string_view>

namespace ferrowyn {

/// The encoding of a text property, which its type names.
enum class X11TextEncoding { utf8, latin1, compoundText };

/// Converts the text of a property to valid UTF-8. Each maximal ill-formed piece becomes one U+FFFD. The text ends at
/// the first NUL, which old clients append. `isCut` means that the property is longer than `bytes`; then an incomplete
/// last character is left out.
[[nodiscard]] std::string textFromProperty(std::string_view bytes, X11TextEncoding encoding, bool isCut);

/// Converts COMPOUND_TEXT, the encoding of X clients before UTF-8, in which escape sequences switch between character
/// sets. Some clients, such as xterm, still write their titles only in it. The result is valid UTF-8; text in an
/// unknown character set becomes U+FFFD. `isCut` is as in `textFromProperty`.
[[nodiscard]] std::string compoundTextToUtf8(std::string_view text, bool isCut);

}  // namespace ferrowyn

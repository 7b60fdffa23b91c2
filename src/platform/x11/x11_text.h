#pragma once

#include <string>
#include <string_view>

namespace ferrowyn {

/// How the bytes of a text property are to be read.
enum class X11TextEncoding { utf8, latin1, compoundText };

/// The text of a property as valid UTF-8. Bytes that mean nothing in the encoding become U+FFFD, one for each maximal
/// ill-formed piece; the text ends at the first NUL, which old clients append. `isCut` says that the property went on:
/// a character that the cut split in two is then left out.
[[nodiscard]] std::string textFromProperty(std::string_view bytes, X11TextEncoding encoding, bool isCut);

/// The text form that X clients used before UTF-8: escape sequences switch between national character sets. Some, such
/// as xterm, still write their titles in it and in no other. The result is valid UTF-8; what no converter knows becomes
/// U+FFFD. `isCut` says that the text went on: a character that the cut split in two is then left out.
[[nodiscard]] std::string compoundTextToUtf8(std::string_view text, bool isCut);

}  // namespace ferrowyn

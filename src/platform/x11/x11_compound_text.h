#pragma once

#include <string>
#include <string_view>

namespace ferrowyn {

/// The text form that X clients used before UTF-8: escape sequences switch between national character sets. Some, such
/// as xterm, still write their titles in it and in no other. The result is valid UTF-8; what no converter knows becomes
/// U+FFFD. `isCut` says that the text went on: a character that the cut split in two is then left out.
[[nodiscard]] std::string compoundTextToUtf8(std::string_view text, bool isCut);

}  // namespace ferrowyn

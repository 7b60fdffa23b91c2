#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/user_defaults.h"

namespace ferrowyn {

/// A value as it stands in an INI file; see `IniDocument`.
[[nodiscard]] std::string formatIniValue(const DefaultsValue& value);
/// Nothing when it begins as a quoted text or a list and does not end as one.
[[nodiscard]] std::optional<DefaultsValue> parseIniValue(std::string_view text);

[[nodiscard]] std::string quotedIniText(std::string_view content);
/// Takes a quoted text from the front of `rest`; nothing when there is none.
[[nodiscard]] std::optional<std::string> takeQuotedIniText(std::string_view& rest);

/// Without spaces and tabs at both ends.
[[nodiscard]] std::string_view trimmedBlanks(std::string_view text);

}  // namespace ferrowyn
